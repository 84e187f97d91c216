#pragma once
// Models reach the particle runtime through the resource system: a "tmsh" resource holds
// a CParticleModel once compiled (or its source bytes, which are read on first use).

#include "core/host/iassetcompiler.h"
#include "core/particles/particlemodel.h"

class CParticleModelResourceData final : public CResourceData
{
public:
	explicit CParticleModelResourceData( ParticleModelPtr_t pModel ) : m_pModel( std::move( pModel ) ) {}
	const ParticleModelPtr_t &GetModel() const { return m_pModel; }

private:
	ParticleModelPtr_t m_pModel;
};

// Compiles "tmsh" sources; a malformed one fails with the reason.
class CParticleModelCompiler final : public IAssetCompiler
{
public:
	bool Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError ) override;
};

// The model of a resource name ("models/crate.tmsh"). A resource not yet loaded is loaded
// through its asset. Null, with the reason in pError, for an empty name, a missing resource
// or a malformed model.
ParticleModelPtr_t FindParticleModel( const char *pResourceName, CUtlString *pError );
