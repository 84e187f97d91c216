#pragma once
// Compiles a particle system definition's text into the runtime's definition, so that the
// resource of a "*.tfxs" asset is something the preview can simulate. Children are read
// from their files under the content root, each compile on its own (no stale cache).

#include "core/host/iassetcompiler.h"
#include "core/particles/sim/particleruntimedefinition.h"

// The resource data of a compiled particle system definition.
class CParticleSystemResourceData final : public CResourceData
{
public:
	explicit CParticleSystemResourceData( ParticleDefinitionPtr_t pDefinition ) : m_pDefinition( std::move( pDefinition ) ) {}
	const ParticleDefinitionPtr_t &GetDefinition() const { return m_pDefinition; }

private:
	ParticleDefinitionPtr_t m_pDefinition;
};

class CParticleAssetCompiler final : public IAssetCompiler
{
public:
	bool Compile( const CUtlBuffer &source, const char *pResourceName, std::unique_ptr<CResourceData> *pResult, CUtlString *pError ) override;
};
