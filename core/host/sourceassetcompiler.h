#pragma once
// The compiler of types that have none of their own: a particle system definition is
// read as KV3 (so syntax errors still show), any other type keeps its bytes.

#include "core/host/iassetcompiler.h"
#include "core/host/resourcetype.h"

class CSourceAssetCompiler final : public IAssetCompiler
{
public:
	explicit CSourceAssetCompiler( ResourceType_t nType ) : m_nType( nType ) {}
	bool Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError ) override;

private:
	ResourceType_t m_nType;
};
