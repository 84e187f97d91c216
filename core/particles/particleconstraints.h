#pragma once
// Constraints: functions that keep particles within limits after they move.

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particlefunctionenums.h"
#include "core/particles/particleinputliterals.h"

class C_OP_PlanarConstraint : public CParticleFunctionConstraint
{
	SCHEMA_DERIVED_CLASS( C_OP_PlanarConstraint, CParticleFunctionConstraint, { "MPropertyFriendlyName", "Constrain to Plane" },
						  { "MParticleWrittenAttributes", 0x1 } )
	// Relative to the control point unless the global flags say otherwise.
	SCHEMA_FIELD( Vector, m_PlanePoint, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "plane point" } )
	SCHEMA_FIELD( Vector, m_PlaneNormal, ( Vector( 0.0f, 0.0f, 1.0f ) ), { "MPropertyFriendlyName", "plane normal" } )
	// 0 .. 1: share of the speed kept, reflected, on contact.
	SCHEMA_FIELD( float, m_flBounce, 0.0f, { "MPropertyFriendlyName", "bounce" } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point number" } )
	SCHEMA_FIELD( bool, m_bGlobalOrigin, false, { "MPropertyFriendlyName", "global origin" } )
	SCHEMA_FIELD( bool, m_bGlobalNormal, false, { "MPropertyFriendlyName", "global normal" } )
	// The particle's radius, scaled by this, keeps it off the plane.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flRadiusScale, "CPerParticleFloatInput", ParticleFloatLiteral( 1.0f ), { "MPropertyFriendlyName", "radius scale" } )
	// Particles farther than this from the control point ignore the plane.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flMaximumDistanceToCP, "CParticleCollectionFloatInput", ParticleFloatLiteral( 100000.0f ),
							  { "MPropertyFriendlyName", "falloff distance" }, { "MParticleAdvancedField" } )
};

class C_OP_ConstrainDistance : public CParticleFunctionConstraint
{
	SCHEMA_DERIVED_CLASS( C_OP_ConstrainDistance, CParticleFunctionConstraint, { "MPropertyFriendlyName", "Constrain distance to control point" },
						  { "MParticleWrittenAttributes", 0x1 } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_fMinDistance, "CParticleCollectionFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "minimum distance" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_fMaxDistance, "CParticleCollectionFloatInput", ParticleFloatLiteral( 100.0f ), { "MPropertyFriendlyName", "maximum distance" } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point number" } )
	SCHEMA_FIELD( Vector, m_CenterOffset, ( Vector( 0.0f, 0.0f, 0.0f ) ), { "MPropertyFriendlyName", "offset of center" } )
	SCHEMA_FIELD( bool, m_bGlobalCenter, false, { "MPropertyFriendlyName", "global center point" } )
};

class C_OP_CollideWithPlane : public CParticleFunctionConstraint
{
	SCHEMA_DERIVED_CLASS( C_OP_CollideWithPlane, CParticleFunctionConstraint, { "MPropertyFriendlyName", "Collision via ground plane" },
						  { "MParticleExclusionGroup", -1 }, { "MParticleWrittenAttributes", 0x1 } )
	// Height of the ground above the control point.
	SCHEMA_FIELD( float, m_flPlaneOffset, 0.0f, { "MPropertyFriendlyName", "plane offset" } )
	SCHEMA_FIELD( int32_t, m_nControlPointNumber, 0, { "MPropertyFriendlyName", "control point number" } )
	SCHEMA_FIELD( ParticleCollisionResponse_t, m_nResponse, PARTICLE_COLLISION_BOUNCE, { "MPropertyFriendlyName", "collision response" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flBounceAmount, "CPerParticleFloatInput", ParticleFloatLiteral( 0.5f ), { "MPropertyFriendlyName", "bounce" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flSlideAmount, "CPerParticleFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "slide" } )
	SCHEMA_FIELD( float, m_flRadiusScale, 1.0f, { "MPropertyFriendlyName", "radius scale" } )
	// Below this speed a bouncing particle comes to rest.
	SCHEMA_FIELD( float, m_flMinSpeed, 0.0f, { "MPropertyFriendlyName", "minimum speed to kill on collision" }, { "MParticleAdvancedField" } )
};
