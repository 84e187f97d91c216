#pragma once
// The run-time form of one function of a definition. Each class reads its fields once at
// compile, then works on whole runs of particles per call: an emitter answers how many to
// make, an initializer fills the new particles, the others update all of them. No KV3 is
// touched and no call is made per particle while stepping.

#include <cstdint>
#include <memory>

#include "core/containers/utlvector.h"
#include "core/particles/particlefunctiontype.h"
#include "core/particles/sim/controlpointusage.h"
#include "core/particles/sim/particledrawdata.h"
#include "core/particles/sim/particleinputs.h"
#include "core/text/utlstring.h"

class KeyValues3;
class CParticleCollection;
class CParticleFunctionReader;

// Per-collection state of an emitter.
struct ParticleEmitterState_t
{
	double m_flAccumulated = 0.0;
	bool m_bEmittedOnce = false;
};

class CParticleSimFunction
{
public:
	virtual ~CParticleSimFunction() = default;

	// Reads the fields; a bad value leaves a text in the reader and fails the compile.
	virtual void Read( CParticleFunctionReader &reader ) = 0;

	// Emitters.
	// The count is at least 0; it may exceed what the collection has room for.
	virtual int Emit( CParticleCollection &, ParticleEmitterState_t &, double /*flTime*/, float /*flDt*/ ) const { return 0; }
	// Whether the emitter will make no more particles from this time on.
	virtual bool IsEmissionFinished( const ParticleEmitterState_t &, double /*flTime*/ ) const { return true; }
	// Initializers, on [nStart, nStart + nCount).
	virtual void InitNewParticles( CParticleCollection &, int /*nStart*/, int /*nCount*/ ) const {}
	// Pre-emission operators, operators, forces and constraints, on every particle.
	virtual void Operate( CParticleCollection &, float /*flDt*/ ) const {}
	// Operators that end lives by age: marks the particles whose life is over at the
	// collection's time. Runs before emission, so that a refill sees the places they free.
	virtual void KillExpired( CParticleCollection & ) const {}
	// Renderers.
	virtual void FillDrawData( const CParticleCollection &, ParticleDrawData_t * ) const {}

	// Control points and named values this function touches beyond those of its inputs.
	virtual void CollectOwnControlPointUsage( CUtlVector<HostControlPointUsage_t> * ) const {}

	const char *GetClassName() const { return m_ClassName.Get(); }
	ParticleFunctionType_t GetFunctionType() const { return m_eType; }

	// Filled by the compile from the fields read and the function's own declarations.
	CUtlString m_ClassName;
	ParticleFunctionType_t m_eType = PARTICLE_FUNCTION_OPERATOR;
	int m_nRuntimeIndex = 0;
	uint64_t m_nWrittenAttributes = 0;
	uint64_t m_nReadAttributes = 0;
	uint64_t m_nReadInitialAttributes = 0;
	CUtlVector<HostControlPointUsage_t> m_ControlPointUsage;
	// Whether this class's behaviour is known; unknown registered classes compile as no-ops.
	bool m_bHasBehaviour = true;
	// Runs in a culled step too: functions that end lives, so culled systems still finish.
	bool m_bRunsWhenCulled = false;
	// Ends particles' lives (by age, fade, alpha or collision). A system that emits and has
	// none of these keeps its particles for ever once emission stops.
	bool m_bEndsLives = false;
};

using ParticleSimFunctionFactory_t = std::unique_ptr<CParticleSimFunction> ( * )();

// The factory of a class by name (case ignored), or null.
// Class names match in any case; ppClassName, when given, gets the name as registered.
ParticleSimFunctionFactory_t FindParticleSimFunctionFactory( const char *pClassName, const char **ppClassName = nullptr );
