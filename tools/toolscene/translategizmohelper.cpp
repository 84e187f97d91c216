#include "tools/toolscene/translategizmohelper.h"

#include <cmath>
#include <cstdio>

#include "tools/toolscene/gizmoevents.h"
#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

using namespace ToolSceneMath;

bool CTranslateGizmoHelper::StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	m_vPlaneNormal = ChooseDragPlaneNormal( camera, ray, m_nPart );
	m_vStartHit = PlaneHit( camera, ray, m_vPlaneNormal, m_Drag.m_vStartPosition );
	return true;
}

Vector CTranslateGizmoHelper::Constrain( int nPart, const Vector &vOffset ) const
{
	if ( GizmoIsAxisPart( nPart ) )
	{
		const Vector vAxis = GetAxis( GizmoAxisIndex( nPart ) );
		return Scale( vAxis, Dot( vOffset, vAxis ) );
	}
	// A plane handle and the free handle move in the drag's plane.
	return Sub( vOffset, Scale( m_vPlaneNormal, Dot( vOffset, m_vPlaneNormal ) ) );
}

Vector CTranslateGizmoHelper::SnapOffset( int nPart, const Vector &vStart, const Vector &vOffset, Vector *pSnapOffset ) const
{
	*pSnapOffset = Vector();
	if ( !IsSnapping() )
		return vOffset;
	Vector vSnapped;
	const int nSnapped = m_pSnapper->SnapPoint( Add( vStart, vOffset ), &vSnapped );
	if ( nSnapped != 1 )
		return vOffset;
	const Vector vResult = Constrain( nPart, Sub( vSnapped, vStart ) );
	*pSnapOffset = Sub( vOffset, vResult );
	return vResult;
}

void CTranslateGizmoHelper::SetOffset( const Vector &vOffset, const Vector &vSnapOffset )
{
	m_Drag.m_Transform = GizmoMatrix_t::Translation( vOffset );
	m_Drag.m_vTranslation = vOffset;
	m_Drag.m_vSnapOffset = vSnapOffset;
}

void CTranslateGizmoHelper::StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	const Vector vHit = PlaneHit( camera, ray, m_vPlaneNormal, m_Drag.m_vStartPosition );
	const Vector vOffset = Constrain( m_nPart, Sub( vHit, m_vStartHit ) );
	Vector vSnapOffset;
	SetOffset( SnapOffset( m_nPart, m_Drag.m_vStartPosition, vOffset, &vSnapOffset ), vSnapOffset );
	char szText[ 64 ];
	snprintf( szText, sizeof( szText ), "%.2f", double( Length( m_Drag.m_vTranslation ) ) );
	PublishStatus( szText );
}

void CTranslateGizmoHelper::PublishStatus( const std::string &text ) const
{
	EventGizmoLengthChanged_t event;
	event.m_Text = text;
	AxisMarks( m_Drag.m_nPart != GIZMO_PART_NONE ? m_Drag.m_nPart : m_nTypedPart, m_eMode, event.m_Axes );
	GizmoEventDispatcher().Dispatch( event );
}

bool CTranslateGizmoHelper::ApplyTypedText( const std::string &text )
{
	float flValue = 0.0f;
	if ( !GizmoParseTypedValue( text.c_str(), &flValue ) )
		return false;
	const Vector vDirection = GetAxis( GizmoIsAxisPart( m_Drag.m_nPart ) ? GizmoAxisIndex( m_Drag.m_nPart ) : 0 );
	SetOffset( Scale( vDirection, flValue ), Vector() );
	return true;
}

void CTranslateGizmoHelper::Nudge( const ToolSceneView_t &camera, int nDirection )
{
	if ( nDirection < 0 || nDirection > 3 )
		return;
	ClearTyped();
	Vector vRight, vUp;
	ChooseNudgeAxes( camera, &vRight, &vUp );
	const float flStep = IsSnapping() && GetSnapSize() > 0.0f ? GetSnapSize() : 1.0f;
	const Vector vDirection = nDirection < 2 ? vRight : vUp;
	const float flSign = ( nDirection % 2 ) == 0 ? 1.0f : -1.0f;
	m_Drag.Reset();
	m_Drag.m_nPart = GIZMO_PART_CENTER;
	FillStart();
	SetOffset( Scale( vDirection, flStep * flSign ), Vector() );
	RunOneStep( 0 );
}

// ---------------------------------------------------------------------------------------
// Pivot

void CPivotTranslateGizmoHelper::OnHide()
{
	CTranslateGizmoHelper::OnHide();
	if ( m_bVertexPickPending )
	{
		m_bVertexPickPending = false;
		if ( m_pListener )
			m_pListener->OnGizmoCancelled();
	}
}

Vector CPivotTranslateGizmoHelper::PickVertex( const ToolSceneView_t &camera, const GizmoRay_t &ray ) const
{
	float flX = 0.0f, flY = 0.0f;
	GizmoRayToScreen( camera, ray, &flX, &flY );
	std::vector<Vector> corners;
	GetBoundsCorners( &corners );
	Vector vBest = m_Frame.m_vPivot;
	float flBest = -1.0f;
	for ( const Vector &vCorner : corners )
	{
		float sx, sy;
		if ( !camera.WorldToScreen( vCorner, &sx, &sy ) )
			continue;
		const float flDistance = ( sx - flX ) * ( sx - flX ) + ( sy - flY ) * ( sy - flY );
		if ( flBest < 0.0f || flDistance < flBest )
		{
			flBest = flDistance;
			vBest = vCorner;
		}
	}
	return vBest;
}

bool CPivotTranslateGizmoHelper::StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	m_Drag.m_vStartPosition = m_Frame.m_vPivot;
	m_vStartSnapOffset = Vector();
	if ( PicksVertex() )
	{
		SetOffset( Sub( PickVertex( camera, ray ), m_Frame.m_vPivot ), Vector() );
		return true;
	}
	CTranslateGizmoHelper::StartDrag( camera, ray );
	if ( IsSnapping() )
	{
		Vector vSnapped;
		if ( m_pSnapper->SnapPoint( m_Frame.m_vPivot, &vSnapped ) == 1 )
			m_vStartSnapOffset = Sub( vSnapped, m_Frame.m_vPivot );
	}
	SetOffset( m_vStartSnapOffset, Vector() );
	return true;
}

void CPivotTranslateGizmoHelper::StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	if ( PicksVertex() )
	{
		SetOffset( Sub( PickVertex( camera, ray ), m_Frame.m_vPivot ), Vector() );
		return;
	}
	CTranslateGizmoHelper::StepDrag( camera, ray );
}
