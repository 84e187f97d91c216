#pragma once
// Moving along an axis, in a plane or in the view: the pointer's hit on a plane through the
// start gives the offset, limited to the handle's axis or plane and snapped to the grid.

#include "tools/toolscene/basegizmohelper.h"
#include "tools/toolscene/gizmorenderdata.h"

class CTranslateGizmoHelper : public CBaseGizmoHelper
{
public:
	explicit CTranslateGizmoHelper( IGizmoOuter *pOuter, GizmoMode_t eMode = GIZMO_MODE_TRANSLATE ) : CBaseGizmoHelper( eMode, pOuter ) {}

	void Nudge( const ToolSceneView_t &camera, int nDirection ) override;
	CBaseGizmoRenderData *GetRenderData() override { return &m_RenderData; }
	// The plane of the running drag.
	const Vector &GetDragPlaneNormal() const { return m_vPlaneNormal; }

protected:
	bool StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	void StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	uint32_t GetEndFlags() const override { return IsWorldSpace() ? uint32_t( GIZMO_DRAG_WORLD_SPACE ) : 0u; }
	bool ApplyTypedText( const std::string &text ) override;
	void PublishStatus( const std::string &text ) const override;

	// The offset limited to the handle: along its axis, or in its plane.
	Vector Constrain( int nPart, const Vector &vOffset ) const;
	// The record of a move by an offset; the snap offset is what the grid took off.
	void SetOffset( const Vector &vOffset, const Vector &vSnapOffset );
	// The offset snapped to the grid from the start point, and what snapping took off.
	Vector SnapOffset( int nPart, const Vector &vStart, const Vector &vOffset, Vector *pSnapOffset ) const;

	Vector m_vPlaneNormal;
	Vector m_vStartHit;

private:
	CTranslateGizmoRenderData m_RenderData;
};

// The same drag, moving only the pivot. With bounds mode 2 and a vertex pick pending, the
// corner of the bounds nearest the pointer is where the pivot goes.
class CPivotTranslateGizmoHelper : public CTranslateGizmoHelper
{
public:
	explicit CPivotTranslateGizmoHelper( IGizmoOuter *pOuter ) : CTranslateGizmoHelper( pOuter, GIZMO_MODE_PIVOT_TRANSLATE ) {}

	void SetVertexPickPending( bool bPending ) { m_bVertexPickPending = bPending; }
	bool IsVertexPickPending() const { return m_bVertexPickPending; }
	void OnHide() override;

protected:
	bool StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;
	void StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray ) override;

private:
	bool PicksVertex() const { return m_Frame.m_nBoundsMode == 2 && m_bVertexPickPending; }
	// The bounds corner whose picture lies nearest the ray's pixel.
	Vector PickVertex( const ToolSceneView_t &camera, const GizmoRay_t &ray ) const;

	bool m_bVertexPickPending = false;
	Vector m_vStartSnapOffset;
};
