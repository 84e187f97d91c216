#pragma once
// The seam for the small Pulse instance (CParticleCollectionBindingInstance) that runs a
// collection's bindings. Compiled definitions carry no binding graph until the Pulse graph
// runtime exists, so none asks for an instance and an effect makes none; this is where
// the effect will make and attach one.

class CParticleRuntimeDefinition;

inline bool ParticleDefinitionNeedsBindingInstance( const CParticleRuntimeDefinition & )
{
	return false;
}
