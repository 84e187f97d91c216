#pragma once
// What a renderer needs of one collection for one frame. The arrays point into the
// collection's own storage (one array per attribute component), valid until its next step.

#include "core/mathlib/vector.h"

enum ParticleRendererKind_t : int
{
	PARTICLE_RENDERER_SPRITES = 0,
	PARTICLE_RENDERER_TRAILS,
	PARTICLE_RENDERER_MODELS,
	PARTICLE_RENDERER_OTHER,
};

struct ParticleDrawData_t
{
	ParticleRendererKind_t m_eKind = PARTICLE_RENDERER_OTHER;
	const char *m_pClassName = "";
	const char *m_pResource = ""; // texture or model
	int m_nCount = 0;

	// Every kind.
	const float *m_pPosition[ 3 ] = {};
	const float *m_pRadius = nullptr;
	const float *m_pColor[ 3 ] = {}; // 0 .. 1
	const float *m_pAlpha = nullptr;
	float m_flAlphaScale = 1.0f;
	float m_flAddSelfAmount = 0.0f;
	// Sprites: added onto what lies behind instead of blended over it; colour brightened.
	bool m_bAdditive = false;
	float m_flOverbrightFactor = 1.0f;
	// Sprites: which way they face (ParticleOrientation_t: 0 the screen, 1 the screen turned
	// about world Z only, 2 up along world Z, 3 along each particle's normal).
	int m_nOrientation = 0;
	const float *m_pNormal[ 3 ] = {};

	// Sprites: roll in degrees. Models: roll, yaw and pitch in degrees.
	const float *m_pRotation = nullptr;
	const float *m_pYaw = nullptr;
	const float *m_pPitch = nullptr;

	// Trails: the tail lies back along the motion from the previous position, as long as
	// the trail length attribute times the speed, at most m_flMaxLength.
	const float *m_pPrevPosition[ 3 ] = {};
	const float *m_pTrailLength = nullptr;
	const float *m_pCreationTime = nullptr;
	float m_flMaxLength = 0.0f;
	float m_flLengthFadeInTime = 0.0f;
	float m_flCurrentTime = 0.0f;
	float m_flStepDt = 0.0f;

	// Models: uniform scale is the radius.
	Vector GetTrailTail( int i ) const;
};
