#include "tools/toolscene/toolscenegizmolibgizmo.h"

#include "tools/toolscene/gizmoconvars.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"

static void BuildToolSceneGizmoCommands( CBindTargetDescriptor<CToolSceneGizmoLibGizmo> &d )
{
	d.AddCommand( "Drag" )
		.SetHandler( BIND_STAGE_PRESS, []( CToolSceneGizmoLibGizmo *pGizmo ) { pGizmo->OnDragPress(); } )
		.SetHandler( BIND_STAGE_DRAG, []( CToolSceneGizmoLibGizmo *pGizmo ) { pGizmo->OnDragMove(); } )
		.SetHandler( BIND_STAGE_RELEASE, []( CToolSceneGizmoLibGizmo *pGizmo ) { pGizmo->OnDragRelease(); } );
	d.AddClickCommand( "IncreaseGizmoSize", []( CToolSceneGizmoLibGizmo *pGizmo ) { pGizmo->IncreaseSize(); } );
	d.AddClickCommand( "DecreaseGizmoSize", []( CToolSceneGizmoLibGizmo *pGizmo ) { pGizmo->DecreaseSize(); } );
}

static CBindTargetDescriptor<CToolSceneGizmoLibGizmo> s_ToolSceneGizmoCommands( "ToolSceneGizmo", "CToolSceneGizmoLibGizmo", &BuildToolSceneGizmoCommands );

CToolSceneGizmoLibGizmo::CToolSceneGizmoLibGizmo( CToolScene *pScene ) : CToolSceneNode( pScene ), m_Gizmo( this ) {}

CToolSceneGizmoLibGizmo::~CToolSceneGizmoLibGizmo() = default;

const CBindTargetDescriptorBase *CToolSceneGizmoLibGizmo::GetBindTargetDescriptor() const
{
	return &s_ToolSceneGizmoCommands;
}

bool CToolSceneGizmoLibGizmo::GetPointerRay( ToolSceneView_t *pView, GizmoRay_t *pRay ) const
{
	float flX, flY;
	if ( !m_pWindow || !m_pWindow->GetPointerPosition( &flX, &flY ) )
		return false;
	*pView = m_pWindow->GetSceneView();
	*pRay = GizmoRayFromScreen( *pView, flX, flY );
	return true;
}

void CToolSceneGizmoLibGizmo::OnDragPress()
{
	ToolSceneView_t view;
	GizmoRay_t ray;
	if ( !IsVisible() || !GetPointerRay( &view, &ray ) )
		return;
	m_Gizmo.OnHover( view, FindPart( view, ray ) );
	m_Gizmo.BeginDrag( &view, ray );
}

void CToolSceneGizmoLibGizmo::OnDragMove()
{
	ToolSceneView_t view;
	GizmoRay_t ray;
	if ( m_Gizmo.IsDragging() && GetPointerRay( &view, &ray ) )
		m_Gizmo.ContinueDrag( &view, ray );
}

void CToolSceneGizmoLibGizmo::OnDragRelease()
{
	if ( !m_Gizmo.IsDragging() )
		return;
	ToolSceneView_t view = m_pWindow ? m_pWindow->GetSceneView() : ToolSceneView_t();
	m_Gizmo.EndDrag( &view );
}

void CToolSceneGizmoLibGizmo::OnPointerMoved( float flX, float flY )
{
	if ( !m_pWindow || m_Gizmo.IsDragging() )
		return;
	const ToolSceneView_t view = m_pWindow->GetSceneView();
	m_Gizmo.OnHover( view, IsVisible() ? FindPart( view, GizmoRayFromScreen( view, flX, flY ) ) : GIZMO_PART_NONE );
}

void CToolSceneGizmoLibGizmo::AddToDrawList( CToolSceneDrawList &drawList, const ToolSceneView_t &view ) const
{
	m_Gizmo.Build( view, &drawList, nullptr );
}

int CToolSceneGizmoLibGizmo::FindPart( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	if ( !IsVisible() )
		return GIZMO_PART_NONE;
	m_Hits.Clear();
	m_Gizmo.Build( camera, nullptr, &m_Hits );
	return m_Hits.FindPart( camera, ray );
}

void CToolSceneGizmoLibGizmo::DecreaseSize()
{
	GizmoDecreaseAxisLength();
	Invalidate();
}

void CToolSceneGizmoLibGizmo::IncreaseSize()
{
	GizmoIncreaseAxisLength();
	Invalidate();
}

void CToolSceneGizmoLibGizmo::Invalidate()
{
	if ( m_pWindow )
		m_pWindow->RequestRedraw();
}
