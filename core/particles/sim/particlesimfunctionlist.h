#pragma once
// The behaviours of the function classes, by family. Each family's file lists its
// classes; the registry looks a class up among all of them.

#include <memory>

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

// How an initializer or setter combines its value with what the attribute holds.
enum ParticleSetMethod_t : int
{
	PARTICLE_SET_REPLACE_VALUE = 0,
	PARTICLE_SET_SCALE_INITIAL_VALUE,
	PARTICLE_SET_ADD_TO_INITIAL_VALUE,
	PARTICLE_SET_RAMP_CURRENT_VALUE,
	PARTICLE_SET_SCALE_CURRENT_VALUE,
	PARTICLE_SET_ADD_TO_CURRENT_VALUE,
};
extern const char *const g_ParticleSetMethodNames[ 6 ];

// Combines pValues into pTarget for n particles.
void ApplyParticleSetMethod( int nMethod, float *pTarget, const float *pValues, int n );
