#pragma once
// The behaviours of the function classes, by family. Each family's file lists its
// classes; the registry looks a class up among all of them.

#include <memory>

#include "core/particles/particlefunctionenums.h"
#include "core/particles/sim/particlesimfunction.h"

struct ParticleSimFunctionEntry_t
{
	const char *m_pClassName;
	ParticleSimFunctionFactory_t m_pfnCreate;
};

template <typename T> std::unique_ptr<CParticleSimFunction> CreateParticleSimFunction()
{
	return std::make_unique<T>();
}

// Each answers its family's table and its length.
const ParticleSimFunctionEntry_t *GetParticleEmitterFunctions( int *pCount );
const ParticleSimFunctionEntry_t *GetParticleInitializerFunctions( int *pCount );
const ParticleSimFunctionEntry_t *GetParticleOperatorFunctions( int *pCount );
const ParticleSimFunctionEntry_t *GetParticleForceAndConstraintFunctions( int *pCount );
const ParticleSimFunctionEntry_t *GetParticleRendererFunctions( int *pCount );

// The names of the set methods, by value, as files store them.
extern const char *const g_ParticleSetMethodNames[ 6 ];

// Combines pValues into pTarget for n particles.
void ApplyParticleSetMethod( int nMethod, float *pTarget, const float *pValues, int n );
