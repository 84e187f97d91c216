#pragma once
// A rigid frame as three axes and an origin: the offset of a control point from what it
// follows.

#include "core/mathlib/vector.h"

struct ParticleFrame_t
{
	Vector m_vForward{ 1.0f, 0.0f, 0.0f };
	Vector m_vRight{ 0.0f, -1.0f, 0.0f };
	Vector m_vUp{ 0.0f, 0.0f, 1.0f };
	Vector m_vOrigin;

	static ParticleFrame_t Identity() { return ParticleFrame_t(); }
	static ParticleFrame_t Translation( const Vector &vOrigin )
	{
		ParticleFrame_t frame;
		frame.m_vOrigin = vOrigin;
		return frame;
	}
};

// The largest float in all three components: no vector at all.
constexpr float PARTICLE_NO_VECTOR_COMPONENT = 3.402823466e+38f;
constexpr Vector ParticleNoVector() { return Vector( PARTICLE_NO_VECTOR_COMPONENT, PARTICLE_NO_VECTOR_COMPONENT, PARTICLE_NO_VECTOR_COMPONENT ); }
inline bool IsParticleNoVector( const Vector &v ) { return v.x == PARTICLE_NO_VECTOR_COMPONENT && v.y == PARTICLE_NO_VECTOR_COMPONENT && v.z == PARTICLE_NO_VECTOR_COMPONENT; }
