#pragma once
// Pre-emission operators: run before the emitters each step, usually to place control points.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"

class C_OP_SetSingleControlPointPosition : public CParticleFunctionPreEmission
{
	SCHEMA_DERIVED_CLASS( C_OP_SetSingleControlPointPosition, CParticleFunctionPreEmission, { "MPropertyFriendlyName", "Set Single Control Point Position" } )
	// Only on the first step, so that the point can move freely afterwards.
	SCHEMA_FIELD( bool, m_bSetOnce, false, { "MPropertyFriendlyName", "set once" } )
	SCHEMA_FIELD( int32_t, m_nCP1, 1, { "MPropertyFriendlyName", "control point number" } )
	SCHEMA_FIELD( Vector, m_vecCP1Pos, ( Vector( 128.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "control point location" } )
	// Without a transform the location is in world space.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_transformInput, "CParticleTransformInput", {}, { "MPropertyFriendlyName", "control point offset transform" }, { "MParticleInputOptional" } )
};
