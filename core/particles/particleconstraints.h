#pragma once
// Constraints: functions that keep particles within limits after they move.

#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"

class C_OP_PlanarConstraint : public CParticleFunctionConstraint
{
	SCHEMA_DERIVED_CLASS( C_OP_PlanarConstraint, CParticleFunctionConstraint, { "MPropertyFriendlyName", "Planar Constraint" } )
	SCHEMA_FIELD( Vector, m_PlanePoint, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "plane point" } )
	SCHEMA_FIELD( Vector, m_PlaneNormal, ( Vector( 0.0f, 0.0f, 1.0f ) ), { "MPropertyFriendlyName", "plane normal" } )
	SCHEMA_FIELD( float, m_flBounce, 0.0f, { "MPropertyFriendlyName", "bounce" } )
};
