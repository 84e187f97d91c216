#pragma once
// Scaling: uniformly by the pointer's horizontal move, or along an axis or a plane by how
// far the pointer's hit lies from the pivot compared with the start. Every factor stays in
// [0.001, 10000].

#include "tools/toolscene/basegizmohelper.h"
#include "tools/toolscene/gizmorenderdata.h"

class CScaleGizmoHelper : public CBaseGizmoHelper
{
public:
	explicit CScaleGizmoHelper( IGizmoOuter *pOuter ) : CBaseGizmoHelper( GIZMO_MODE_SCALE, pOuter ) {}

	CBaseGizmoRenderData *GetRenderData() override { return &m_RenderData; }
	static float ClampScale( float flScale );

protected:
	bool StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	void StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	uint32_t GetEndFlags() const override;
	bool ApplyTypedText( const std::string &text ) override;
	bool AllowsNegativeTyped() const override { return false; }
	void PublishStatus( const std::string &text ) const override;

private:
	// The record of a scale by factors along the orientation's axes, about the pivot.
	void SetScale( const Vector &vScale );
	// The hit, projected on the axis through the start for an axis handle.
	Vector ConstrainedHit( const ToolSceneView_t &camera, const GizmoRay_t &ray ) const;

	CScaleGizmoRenderData m_RenderData;
	Vector m_vPlaneNormal;
	Vector m_vStartPoint;
	float m_flStartX = 0.0f;
};

// Scaling a box by one of its faces, about the opposite face.
class CBoxScaleGizmoHelper : public CBaseGizmoHelper
{
public:
	explicit CBoxScaleGizmoHelper( IGizmoOuter *pOuter ) : CBaseGizmoHelper( GIZMO_MODE_BOX_SCALE, pOuter ) {}

	CBaseGizmoRenderData *GetRenderData() override { return &m_RenderData; }

protected:
	bool StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	void StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	uint32_t GetEndFlags() const override { return GIZMO_DRAG_BOX_SCALE | ( IsWorldSpace() ? uint32_t( GIZMO_DRAG_WORLD_SPACE ) : 0u ); }
	bool ApplyTypedText( const std::string &text ) override;
	bool AllowsNegativeTyped() const override { return false; }
	void PublishStatus( const std::string &text ) const override;

private:
	// The face's axis (0-2) and side (+1 or -1) of a handle; false for another part.
	static bool FaceOfPart( int nPart, int *pAxis, float *pSide );
	// The face of a handle and the box's measures; false for another part or a flat box.
	bool SetupFace( int nPart );
	// The record of a scale by a factor along the face's axis, about the opposite face.
	void SetFaceScale( float flRatio, float flSnapRatio );

	CBoxScaleGizmoRenderData m_RenderData;
	int m_nAxis = 0;
	float m_flSide = 1.0f;
	Vector m_vPlaneNormal;
	Vector m_vOpposite; // the centre of the opposite face, which stays
	Vector m_vFaceAxis; // from the opposite face to the handle's, unit
	float m_flStartSize = 1.0f;
	Vector m_vSize;     // the box's extent along its three axes
};
