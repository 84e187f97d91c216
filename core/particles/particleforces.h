#pragma once
// Force generators: functions that push particles, summed before movement.

#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"

class C_OP_TurbulenceForce : public CParticleFunctionForce
{
	SCHEMA_DERIVED_CLASS( C_OP_TurbulenceForce, CParticleFunctionForce, { "MPropertyFriendlyName", "Turbulence Force" } )
	SCHEMA_FIELD( float, m_flNoiseCoordScale0, 0.5f, { "MPropertyFriendlyName", "noise scale 0" } )
	SCHEMA_FIELD( Vector, m_vecNoiseAmount0, ( Vector( 1.0f, 1.0f, 1.0f ) ), { "MPropertyFriendlyName", "noise amount 0" } )
};
