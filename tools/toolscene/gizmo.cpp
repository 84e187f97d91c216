#include "tools/toolscene/gizmo.h"

#include "tools/toolscene/gizmorenderdata.h"
#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/rotategizmohelper.h"
#include "tools/toolscene/scalegizmohelper.h"
#include "tools/toolscene/translategizmohelper.h"

CGizmo::CGizmo( IGizmoOuter *pOuter )
	: m_pOuter( pOuter ), m_pTranslate( std::make_unique<CTranslateGizmoHelper>( pOuter ) ),
	  m_pPivotTranslate( std::make_unique<CPivotTranslateGizmoHelper>( pOuter ) ), m_pRotate( std::make_unique<CRotateGizmoHelper>( pOuter ) ),
	  m_pScale( std::make_unique<CScaleGizmoHelper>( pOuter ) ), m_pBoxScale( std::make_unique<CBoxScaleGizmoHelper>( pOuter ) )
{
	m_pCurrent = m_pTranslate.get();
}

CGizmo::~CGizmo() = default;

CBaseGizmoHelper *CGizmo::GetHelper( GizmoMode_t eMode ) const
{
	switch ( eMode )
	{
	case GIZMO_MODE_TRANSLATE: return m_pTranslate.get();
	case GIZMO_MODE_PIVOT_TRANSLATE: return m_pPivotTranslate.get();
	case GIZMO_MODE_ROTATE: return m_pRotate.get();
	case GIZMO_MODE_SCALE: return m_pScale.get();
	case GIZMO_MODE_BOX_SCALE: return m_pBoxScale.get();
	default: return nullptr;
	}
}

void CGizmo::SetListeners( IGizmoListener *pListener, const IGizmoSnapper *pSnapper )
{
	for ( int nMode = 0; nMode < GIZMO_MODE_COUNT; ++nMode )
		GetHelper( GizmoMode_t( nMode ) )->SetListeners( pListener, pSnapper );
}

void CGizmo::SetMode( int nMode, const GizmoFrame_t &frame )
{
	m_pCurrent->OnHide();
	CBaseGizmoHelper *pNew = nMode >= 0 && nMode < GIZMO_MODE_COUNT ? GetHelper( GizmoMode_t( nMode ) ) : m_pCurrent;
	const bool bChanged = pNew != m_pCurrent;
	if ( bChanged )
	{
		// A drag ends with its notifications before its helper goes.
		if ( m_pCurrent->IsDragging() )
			m_pCurrent->EndDrag( &m_DragCamera );
		m_pCurrent->Reset( true );
		m_pCurrent = pNew;
		m_eMode = GizmoMode_t( nMode );
		m_pCurrent->Reset( true );
	}
	m_pCurrent->OnShow();
	m_LastFrame = frame;
	m_pCurrent->SetFrame( frame );
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

void CGizmo::BeginDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray )
{
	if ( pCamera )
		m_DragCamera = *pCamera;
	m_pCurrent->BeginDrag( pCamera, ray );
}

void CGizmo::ContinueDrag( const ToolSceneView_t *pCamera, const GizmoRay_t &ray )
{
	if ( pCamera )
		m_DragCamera = *pCamera;
	m_pCurrent->ContinueDrag( pCamera, ray );
}

void CGizmo::Nudge( const ToolSceneView_t &camera, int nDirection, int nMode )
{
	if ( nMode == m_eMode )
	{
		m_pCurrent->Nudge( camera, nDirection );
		return;
	}
	if ( nMode != GIZMO_MODE_TRANSLATE && nMode != GIZMO_MODE_ROTATE )
		return;
	CBaseGizmoHelper *pHelper = GetHelper( GizmoMode_t( nMode ) );
	pHelper->SetFrame( m_LastFrame );
	pHelper->OnShow();
	pHelper->Nudge( camera, nDirection );
	pHelper->OnHide();
	if ( m_pOuter )
		m_pOuter->Invalidate();
}

void CGizmo::Build( const ToolSceneView_t &view, CToolSceneDrawList *pDrawList, CGizmoHitList *pHits ) const
{
	m_pCurrent->GetRenderData()->Build( *m_pCurrent, view, m_bEnabled, pDrawList, pHits );
}
