#pragma once
// Turning about an axis (a ring) or freely (the trackball inside the rings). A ring seen
// from the side is turned by the pointer's move across the axis on screen; the angle keeps
// counting past a half turn without a jump.

#include "tools/toolscene/basegizmohelper.h"
#include "tools/toolscene/gizmorenderdata.h"

class CRotateGizmoHelper : public CBaseGizmoHelper
{
public:
	explicit CRotateGizmoHelper( IGizmoOuter *pOuter ) : CBaseGizmoHelper( GIZMO_MODE_ROTATE, pOuter ) {}

	void Nudge( const ToolSceneView_t &camera, int nDirection ) override;
	CBaseGizmoRenderData *GetRenderData() override { return &m_RenderData; }
	bool IsEdgeOn() const { return m_bEdgeOn; }

	// The next accumulated angle from a raw angle around the ring, the start angle and the
	// last accumulated one (all degrees).
	static float UnwrapAngle( float flRaw, float flStart, float flAccumulated );

protected:
	bool StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	void StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	uint32_t GetEndFlags() const override { return GIZMO_DRAG_ROTATION | ( IsWorldSpace() ? uint32_t( GIZMO_DRAG_WORLD_SPACE ) : 0u ); }
	bool ApplyTypedText( const std::string &text ) override;
	void PublishStatus( const std::string &text ) const override;

private:
	// The angle of a plane hit around the ring's axis, 0 to 360.
	float RingAngle( const Vector &vHit, int nAxis ) const;
	// The trackball's hit: on its sphere, or on the plane that faces the eye, at the radius.
	Vector TrackballHit( const ToolSceneView_t &camera, const GizmoRay_t &ray ) const;
	void SetRotation( const Vector &vAxis, float flDegrees );

	CRotateGizmoRenderData m_RenderData;
	bool m_bEdgeOn = false;
	float m_flStartAngle = 0.0f;
	float m_flAngle = 0.0f;
	float m_flStartMouse[ 2 ] = {};
	float m_flPerpendicular[ 2 ] = {};
	float m_flRadius = 1.0f;
	Vector m_vStartDirection;
};
