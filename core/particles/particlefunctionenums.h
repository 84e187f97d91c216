#pragma once
// Enumerations that particle function fields store by name.

#include <cstdint>

#include "core/schema/schemadeclare.h"

// How a set or init function combines its value with the attribute's.
enum ParticleSetMethod_t : int32_t
{
	PARTICLE_SET_REPLACE_VALUE = 0,
	PARTICLE_SET_SCALE_INITIAL_VALUE = 1,
	PARTICLE_SET_ADD_TO_INITIAL_VALUE = 2,
	PARTICLE_SET_RAMP_CURRENT_VALUE = 3,
	PARTICLE_SET_SCALE_CURRENT_VALUE = 4,
	PARTICLE_SET_ADD_TO_CURRENT_VALUE = 5,
};
SCHEMA_ENUM_BEGIN( ParticleSetMethod_t )
	SCHEMA_ENUMERATOR( PARTICLE_SET_REPLACE_VALUE, { "MPropertyFriendlyName", "Set Value" } )
	SCHEMA_ENUMERATOR( PARTICLE_SET_SCALE_INITIAL_VALUE, { "MPropertyFriendlyName", "Scale Initial Value" } )
	SCHEMA_ENUMERATOR( PARTICLE_SET_ADD_TO_INITIAL_VALUE, { "MPropertyFriendlyName", "Add to Initial Value" } )
	SCHEMA_ENUMERATOR( PARTICLE_SET_RAMP_CURRENT_VALUE, { "MPropertyFriendlyName", "Ramp Current Value at Input Rate Per Second" } )
	SCHEMA_ENUMERATOR( PARTICLE_SET_SCALE_CURRENT_VALUE, { "MPropertyFriendlyName", "Scale Current Value" } )
	SCHEMA_ENUMERATOR( PARTICLE_SET_ADD_TO_CURRENT_VALUE, { "MPropertyFriendlyName", "Add to Current Value" } )
SCHEMA_ENUM_END()

// Which way a sprite faces.
enum ParticleOrientation_t : int32_t
{
	PARTICLE_ORIENTATION_SCREEN_ALIGNED = 0,
	PARTICLE_ORIENTATION_SCREEN_Z_ALIGNED = 1,
	PARTICLE_ORIENTATION_WORLD_Z_ALIGNED = 2,
	PARTICLE_ORIENTATION_ALIGN_TO_PARTICLE_NORMAL = 3,
};
SCHEMA_ENUM_BEGIN( ParticleOrientation_t )
	SCHEMA_ENUMERATOR( PARTICLE_ORIENTATION_SCREEN_ALIGNED, { "MPropertyFriendlyName", "Screen Aligned" } )
	SCHEMA_ENUMERATOR( PARTICLE_ORIENTATION_SCREEN_Z_ALIGNED, { "MPropertyFriendlyName", "Screen Z Aligned" } )
	SCHEMA_ENUMERATOR( PARTICLE_ORIENTATION_WORLD_Z_ALIGNED, { "MPropertyFriendlyName", "World Z Aligned" } )
	SCHEMA_ENUMERATOR( PARTICLE_ORIENTATION_ALIGN_TO_PARTICLE_NORMAL, { "MPropertyFriendlyName", "Align to Particle Normal" } )
SCHEMA_ENUM_END()

// What a particle does when it meets the collision plane.
enum ParticleCollisionResponse_t : int32_t
{
	PARTICLE_COLLISION_BOUNCE = 0,
	PARTICLE_COLLISION_SLIDE = 1,
	PARTICLE_COLLISION_KILL = 2,
};
SCHEMA_ENUM_BEGIN( ParticleCollisionResponse_t )
	SCHEMA_ENUMERATOR( PARTICLE_COLLISION_BOUNCE, { "MPropertyFriendlyName", "Bounce" } )
	SCHEMA_ENUMERATOR( PARTICLE_COLLISION_SLIDE, { "MPropertyFriendlyName", "Slide" } )
	SCHEMA_ENUMERATOR( PARTICLE_COLLISION_KILL, { "MPropertyFriendlyName", "Kill" } )
SCHEMA_ENUM_END()
