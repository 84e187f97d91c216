#pragma once
// Particle system definitions reach the runtime through the resource system: a "tfxs"
// resource holds the compiled definition. The compiler turns a definition's text into it;
// children are read from their files under the content root, each compile on its own
// (no stale cache).

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

// The compiled definition of a resource name ("particles/error/error.tfxs"). A resource
// not yet loaded is loaded through its asset. Null, with the reason in pError, for an empty
// name, a missing resource or one that doesn't compile.
ParticleDefinitionPtr_t FindParticleSystemDefinition( const char *pResourceName, CUtlString *pError );
