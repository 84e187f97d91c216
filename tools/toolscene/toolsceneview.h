#pragma once
// One view of a tool scene: where the camera is, how wide it sees and how big the picture
// is. Everything that draws or picks measures against it.

#include "core/mathlib/vector.h"
#include "core/particles/sim/particlecamera.h"
#include "tools/toolscene/toolscenemath.h"

struct ToolSceneView_t
{
	Vector m_vEye;
	Vector m_vForward{ 1.0f, 0.0f, 0.0f };
	Vector m_vRight{ 0.0f, -1.0f, 0.0f };
	Vector m_vUp{ 0.0f, 0.0f, 1.0f };
	// Vertical field of view.
	float m_flFovY = 60.0f;
	int m_nWidth = 640;
	int m_nHeight = 480;
	float m_flNear = 1.0f;
	float m_flFar = 50000.0f;

	ToolSceneMath::Matrix4_t m_View;
	ToolSceneMath::Matrix4_t m_Projection;
	ToolSceneMath::Matrix4_t m_ViewProjection;

	// Looks from vEye at vTarget, Z up.
	void LookAt( const Vector &vEye, const Vector &vTarget );
	// Fills the matrices from the fields above.
	void Compute();
	float GetAspect() const { return m_nHeight > 0 ? float( m_nWidth ) / float( m_nHeight ) : 1.0f; }
	float GetHorizontalFov() const;
	// Pixel position (x right, y down, 0 at the top left corner) and depth along forward;
	// false behind the eye.
	bool WorldToScreen( const Vector &vPoint, float *pX, float *pY ) const;
	// The camera as camera-driven particle inputs see it.
	ParticleCamera_t GetParticleCamera() const;
};
