#pragma once
// The gizmo: one facade over the five helpers, of which the mode picks one. It knows
// nothing of what it moves; its owner places it with a frame and a mode, and its listener
// hears the steps of each drag.

#include <memory>

#include "tools/toolscene/basegizmohelper.h"
#include "tools/toolscene/toolsceneview.h"

class CTranslateGizmoHelper;
class CPivotTranslateGizmoHelper;
class CRotateGizmoHelper;
class CScaleGizmoHelper;
class CBoxScaleGizmoHelper;
class CGizmoHitList;
class CToolSceneDrawList;

class CGizmo
{
public:
	explicit CGizmo( IGizmoOuter *pOuter );
	~CGizmo();
	CGizmo( const CGizmo & ) = delete;
	CGizmo &operator=( const CGizmo & ) = delete;

	// Hides the current helper, ends its drag when the mode changes, shows the mode's
	// helper at the frame. A mode outside the table keeps the helper it had.
	void SetMode( int nMode, const GizmoFrame_t &frame );
	GizmoMode_t GetMode() const { return m_eMode; }
	void SetEnabled( bool bEnabled ) { m_bEnabled = bEnabled; }
	bool IsEnabled() const { return m_bEnabled; }
	// Given to all five helpers.
	void SetListeners( IGizmoListener *pListener, const IGizmoSnapper *pSnapper );

	CBaseGizmoHelper *GetHelper() const { return m_pCurrent; }
	CBaseGizmoHelper *GetHelper( GizmoMode_t eMode ) const;

	// Forwarded to the current helper.
	void SetFrame( const GizmoFrame_t &frame ) { m_pCurrent->SetFrame( frame ); }
	void OnHover( const ToolSceneView_t &camera, int nPart ) { m_pCurrent->OnHover( camera, nPart ); }
	void BeginDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray );
	void ContinueDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray );
	void EndDrag( const ToolSceneView_t *pCamera ) { m_pCurrent->EndDrag( pCamera ); }
	bool IsDragging() const { return m_pCurrent->IsDragging(); }
	void BeginTyping() { m_pCurrent->BeginTyping(); }
	bool IsTyping() const { return m_pCurrent->IsTyping(); }
	void TypeCharacter( char c ) { m_pCurrent->TypeCharacter( c ); }
	bool ApplyTyped( const char *pText ) { return m_pCurrent->ApplyTyped( pText ); }
	void ClearTyped() { m_pCurrent->ClearTyped(); }

	// A keyboard step. In the current mode the current helper takes it; in mode 0 or 2
	// otherwise, the translate or rotate helper steps once from the present frame.
	void Nudge( const ToolSceneView_t &camera, int nDirection, int nMode );

	// Draws the current helper and registers its handles (either may be null).
	void Build( const ToolSceneView_t &view, CToolSceneDrawList *pDrawList, CGizmoHitList *pHits ) const;

private:
	IGizmoOuter *m_pOuter;
	GizmoMode_t m_eMode = GIZMO_MODE_TRANSLATE;
	bool m_bEnabled = true;
	// The frame of the last SetMode, for a helper that steps in for one nudge.
	GizmoFrame_t m_LastFrame;
	// The camera of the running drag, to end it when the mode changes.
	ToolSceneView_t m_DragCamera;
	CBaseGizmoHelper *m_pCurrent = nullptr;
	std::unique_ptr<CTranslateGizmoHelper> m_pTranslate;
	std::unique_ptr<CPivotTranslateGizmoHelper> m_pPivotTranslate;
	std::unique_ptr<CRotateGizmoHelper> m_pRotate;
	std::unique_ptr<CScaleGizmoHelper> m_pScale;
	std::unique_ptr<CBoxScaleGizmoHelper> m_pBoxScale;
};
