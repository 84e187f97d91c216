#pragma once
// Force generators: functions that push particles, summed before movement.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particleinputliterals.h"

class C_OP_TurbulenceForce : public CParticleFunctionForce
{
	SCHEMA_DERIVED_CLASS( C_OP_TurbulenceForce, CParticleFunctionForce, { "MPropertyFriendlyName", "Turbulence Force" } )
	// Two octaves of noise: a coarse one and a finer one, each with its own strength per axis.
	SCHEMA_FIELD( float, m_flNoiseCoordScale0, 0.5f, { "MPropertyFriendlyName", "noise scale 0" } )
	SCHEMA_FIELD( Vector, m_vecNoiseAmount0, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "noise amount 0" } )
	SCHEMA_FIELD( float, m_flNoiseCoordScale1, 1.0f, { "MPropertyFriendlyName", "noise scale 1" } )
	SCHEMA_FIELD( Vector, m_vecNoiseAmount1, ( Vector( 0.5f, 0.5f, 0.5f ) ), { "MPropertyFriendlyName", "noise amount 1" } )
};

class C_OP_AttractToControlPoint : public CParticleFunctionForce
{
	SCHEMA_DERIVED_CLASS( C_OP_AttractToControlPoint, CParticleFunctionForce, { "MPropertyFriendlyName", "Pull towards control point" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_vecComponentScale, "CPerParticleVecInput", ParticleVecLiteral( Vector( 1.0f, 1.0f, 1.0f ) ),
							  { "MPropertyFriendlyName", "component scale" } )
	// Negative pushes away.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_fForceAmount, "CPerParticleFloatInput", ParticleFloatLiteral( 100.0f ), { "MPropertyFriendlyName", "amount of force" } )
	// The force falls off with the distance to this power.
	SCHEMA_FIELD( float, m_fFalloffPower, 2.0f, { "MPropertyFriendlyName", "falloff power" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_TransformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "input position" } )
	// A floor under the fallen-off force, when m_bApplyMinForce is set.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_fForceAmountMin, "CPerParticleFloatInput", {}, { "MPropertyFriendlyName", "min force" }, { "MParticleInputOptional" } )
	SCHEMA_FIELD( bool, m_bApplyMinForce, false, { "MPropertyFriendlyName", "apply min force" } )
};

class C_OP_TwistAroundAxis : public CParticleFunctionForce
{
	SCHEMA_DERIVED_CLASS( C_OP_TwistAroundAxis, CParticleFunctionForce, { "MPropertyFriendlyName", "Twist around axis" } )
	// A vortex: the force is tangent to circles around the axis through the control point.
	SCHEMA_FIELD( float, m_fForceAmount, 0.0f, { "MPropertyFriendlyName", "amount of force" } )
	SCHEMA_FIELD( Vector, m_TwistAxis, ( Vector( 0.0f, 0.0f, 1.0f ) ), { "MPropertyFriendlyName", "twist axis" } )
	SCHEMA_FIELD( bool, m_bLocalSpace, false, { "MPropertyFriendlyName", "object local space axis 0/1" } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point" } )
};

class C_OP_RandomForce : public CParticleFunctionForce
{
	SCHEMA_DERIVED_CLASS( C_OP_RandomForce, CParticleFunctionForce, { "MPropertyFriendlyName", "Random Force" } )
	// A new random force each step, between the two per axis.
	SCHEMA_FIELD( Vector, m_MinForce, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "min force" } )
	SCHEMA_FIELD( Vector, m_MaxForce, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "max force" } )
};
