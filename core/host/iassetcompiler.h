#pragma once
// Turns an asset's source into resource data. One compiler per asset type is registered
// with the asset system; types without one keep their source (a KV3 tree for KV3 text
// types, the bytes for the others).

#include <memory>

#include "core/host/resourcedata.h"
#include "core/text/utlstring.h"

class CUtlBuffer;

class IAssetCompiler
{
public:
	// Compiles the whole buffer (from 0 to its put position). On success fills pResult
	// and answers true; otherwise answers false with a message in pError and leaves
	// pResult empty. pResourceName names what is compiled, for messages.
	virtual bool Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError ) = 0;

protected:
	~IAssetCompiler() = default;
};
