#pragma once
// How the runtime stores each particle attribute: one float array per component, three
// for a vector, and the value a particle starts with before any initializer runs.

#include "core/particles/particleattributes.h"

inline bool IsValidParticleAttribute( int nAttribute ) { return nAttribute >= 0 && nAttribute < PARTICLE_ATTRIBUTE_COUNT; }

// 3 for vectors, 1 for everything else (floats, integers and handles are all kept as floats), 0 outside the range.
inline int GetParticleAttributeComponentCount( int nAttribute )
{
	if ( !IsValidParticleAttribute( nAttribute ) )
		return 0;
	return ( PARTICLE_ATTRIBUTE_VECTOR_MASK & ParticleAttributeBit( nAttribute ) ) ? 3 : 1;
}

inline float GetParticleAttributeDefault( int nAttribute, int nComponent )
{
	switch ( nAttribute )
	{
	case PARTICLE_ATTRIBUTE_LIFE_DURATION:
	case PARTICLE_ATTRIBUTE_ALPHA:
	case PARTICLE_ATTRIBUTE_ALPHA_ALTERNATE:
	case PARTICLE_ATTRIBUTE_GLOW_ALPHA:
	case PARTICLE_ATTRIBUTE_COLOR:
	case PARTICLE_ATTRIBUTE_GLOW_COLOR:
		return 1.0f;
	case PARTICLE_ATTRIBUTE_RADIUS:
		return 5.0f;
	case PARTICLE_ATTRIBUTE_TRAIL_LENGTH:
		return 0.1f;
	case PARTICLE_ATTRIBUTE_NORMAL:
		return nComponent == 2 ? 1.0f : 0.0f;
	default:
		return 0.0f;
	}
}
