#pragma once
// The camera of a scene view: it orbits a pivot at a distance, and, while it follows the
// scene, frames the scene's bounds each frame. The user's orbit and zoom stay on top of
// the framing; a pan, or placing the camera, stops the following until a reset.

#include "core/mathlib/vector.h"

class CToolSceneCamera;
struct ToolSceneView_t;

class CBindableCamera
{
public:
	CBindableCamera();

	// Writes the camera's place into the scene's camera node.
	void ApplyTo( CToolSceneCamera *pCamera ) const;
	// The view of a picture of that many pixels from where the camera is.
	ToolSceneView_t GetView( int nWidth, int nHeight ) const;
	Vector GetEye() const;
	const Vector &GetPivot() const { return m_vPivot; }
	float GetDistance() const { return m_flDistance; }
	float GetYaw() const { return m_flYaw; }
	float GetPitch() const { return m_flPitch; }
	float GetFov() const { return m_flFovY; }
	void SetFov( float flFovY ) { m_flFovY = flFovY; }

	// Mouse moves, in pixels of a view that many pixels high.
	void Orbit( float flDeltaX, float flDeltaY );
	void Pan( float flDeltaX, float flDeltaY, int nViewHeight );
	// Positive steps move closer; each step is a tenth of the distance.
	void Zoom( float flSteps );

	// Both true: the user's offset goes and the camera follows and frames the scene anew.
	void Reset( bool bClearOffset, bool bFollowScene );
	// Places the camera; the camera stops following.
	void SetPositionAndTarget( const Vector &vEye, const Vector &vTarget );
	void SetPivot( const Vector &vPivot ) { m_vPivot = vPivot; }

	bool IsFollowingScene() const { return m_bFollowScene; }
	// Tracking: the framed box only widens from frame to frame; otherwise it is replaced.
	void SetTrackingMode( bool bTracking ) { m_bTracking = bTracking; }
	bool IsTrackingMode() const { return m_bTracking; }
	// Frames a box: ignored when not finite or absurdly far (squared length 999999995904 or more).
	void FrameBounds( const Vector &vMin, const Vector &vMax );
	// Frames the scene's bounds as the follow mode says; nothing happens without bounds.
	void FollowBounds( bool bHaveBounds, const Vector &vMin, const Vector &vMax );
	bool HasFramedBounds() const { return m_bHaveFramed; }
	const Vector &GetFramedMin() const { return m_vFramedMin; }
	const Vector &GetFramedMax() const { return m_vFramedMax; }

	static bool IsUsableBoundsValue( const Vector &v );

private:
	Vector m_vPivot;
	float m_flYaw;
	float m_flPitch;
	float m_flDistance;
	float m_flFovY = 60.0f;
	// The user's zoom over the framed distance.
	float m_flZoomScale = 1.0f;
	bool m_bFollowScene = true;
	bool m_bTracking = false;
	bool m_bHaveFramed = false;
	Vector m_vFramedMin, m_vFramedMax;
};
