#pragma once
// A camera of the view that shows a collection: camera-driven inputs (distance, facing,
// place on screen) measure against it. A headless run has none.

#include "core/mathlib/vector.h"

struct ParticleCamera_t
{
	Vector m_vPosition;
	Vector m_vForward{ 1.0f, 0.0f, 0.0f }; // unit length
	// Horizontal field of view in degrees; screen-space inputs measure with it.
	float m_flFovDegrees = 90.0f;
};
