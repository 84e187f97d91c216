#include "tools/toolscene/scalegizmohelper.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "core/console/convar.h"
#include "tools/toolscene/gizmoconvars.h"
#include "tools/toolscene/gizmoevents.h"
#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

using namespace ToolSceneMath;

// A pixel of horizontal move is a hundredth of scale.
static constexpr float UNIFORM_SCALE_PER_PIXEL = 0.01f;
// A component of the drag direction smaller than this leaves its axis unscaled.
static constexpr float SCALED_COMPONENT_LIMIT = 0.001f;

float CScaleGizmoHelper::ClampScale( float flScale )
{
	return std::clamp( flScale, GIZMO_MIN_SCALE, GIZMO_MAX_SCALE );
}

uint32_t CScaleGizmoHelper::GetEndFlags() const
{
	// Scaling a box of the world's axes in world space scales its bounds.
	return m_Frame.m_nBoundsMode == 1 && IsWorldSpace() ? 8 : 0;
}

void CScaleGizmoHelper::SetScale( const Vector &vScale )
{
	m_Drag.m_vScale = vScale;
	m_Drag.m_vScaleCentre = m_Frame.m_vPivot;
	m_Drag.m_Transform = GizmoMatrix_t::ScaleInFrame( m_Orientation, vScale, m_Frame.m_vPivot );
}

Vector CScaleGizmoHelper::ConstrainedHit( const ToolSceneView_t &camera, const GizmoRay_t &ray ) const
{
	const Vector vHit = PlaneHit( camera, ray, m_vPlaneNormal, m_Drag.m_vStartPosition );
	if ( !GizmoIsAxisPart( m_nPart ) )
		return vHit;
	const Vector vAxis = GetAxis( GizmoAxisIndex( m_nPart ) );
	return Add( m_Drag.m_vStartPosition, Scale( vAxis, Dot( Sub( vHit, m_Drag.m_vStartPosition ), vAxis ) ) );
}

bool CScaleGizmoHelper::StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	if ( m_nPart == GIZMO_PART_UNIFORM || m_nPart == GIZMO_PART_CENTER )
	{
		float flY;
		return GizmoRayToScreen( camera, ray, &m_flStartX, &flY );
	}
	m_vPlaneNormal = ChooseDragPlaneNormal( camera, ray, m_nPart );
	m_vStartPoint = ConstrainedHit( camera, ray );
	// A start on the pivot has no distance to compare with.
	return Length( Sub( m_vStartPoint, m_Frame.m_vPivot ) ) > 1e-4f;
}

void CScaleGizmoHelper::StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	char szText[ 64 ];
	if ( m_nPart == GIZMO_PART_UNIFORM || m_nPart == GIZMO_PART_CENTER )
	{
		float flX = m_flStartX, flY;
		GizmoRayToScreen( camera, ray, &flX, &flY );
		const float s = ClampScale( 1.0f + ( flX - m_flStartX ) * UNIFORM_SCALE_PER_PIXEL );
		SetScale( Vector( s, s, s ) );
		snprintf( szText, sizeof( szText ), "%.3f", double( s ) );
		PublishStatus( szText );
		return;
	}
	const Vector vPivot = m_Frame.m_vPivot;
	const Vector vFromPivot = Sub( m_vStartPoint, vPivot );
	const float flStartDistance = Length( vFromPivot );
	const Vector d = Scale( vFromPivot, 1.0f / flStartDistance );
	float s = std::max( 0.0f, Dot( Sub( ConstrainedHit( camera, ray ), vPivot ), d ) ) / flStartDistance;
	if ( IsSnapping() )
		s = m_pSnapper->SnapDistance( s * flStartDistance ) / flStartDistance;
	s = ClampScale( s );
	Vector vScale( 1.0f, 1.0f, 1.0f );
	for ( int i = 0; i < 3; ++i )
	{
		if ( std::fabs( Dot( d, GetAxis( i ) ) ) > SCALED_COMPONENT_LIMIT )
			vScale[ i ] = s;
	}
	SetScale( vScale );
	snprintf( szText, sizeof( szText ), "%.3f", double( s ) );
	PublishStatus( szText );
}

bool CScaleGizmoHelper::ApplyTypedText( const std::string &text )
{
	float flFirst = 1.0f, flSecond = 1.0f;
	bool bTwo = false;
	if ( !GizmoParseTypedPair( text.c_str(), &flFirst, &flSecond, &bTwo ) )
		return false;
	flFirst = ClampScale( flFirst );
	flSecond = ClampScale( bTwo ? flSecond : flFirst );
	const uint32_t nMask = GizmoIsAxisPart( m_Drag.m_nPart ) || GizmoIsPlanePart( m_Drag.m_nPart ) ? GizmoPartAxisMask( m_Drag.m_nPart, m_eMode ) : 7;
	Vector vScale( 1.0f, 1.0f, 1.0f );
	int nUsed = 0;
	for ( int i = 0; i < 3; ++i )
	{
		if ( nMask & ( 1u << i ) )
			vScale[ i ] = nUsed++ == 0 ? flFirst : flSecond;
	}
	SetScale( vScale );
	return true;
}

void CScaleGizmoHelper::PublishStatus( const std::string &text ) const
{
	EventGizmoScaleChanged_t event;
	event.m_Text = text;
	AxisMarks( m_Drag.m_nPart != GIZMO_PART_NONE ? m_Drag.m_nPart : m_nTypedPart, m_eMode, event.m_Axes );
	GizmoEventDispatcher().Dispatch( event );
}

// ---------------------------------------------------------------------------------------
// Box scale

bool CBoxScaleGizmoHelper::FaceOfPart( int nPart, int *pAxis, float *pSide )
{
	if ( nPart >= GIZMO_PART_BOX_MAX_X && nPart < GIZMO_PART_BOX_MAX_X + 3 )
	{
		*pAxis = nPart - GIZMO_PART_BOX_MAX_X;
		*pSide = 1.0f;
		return true;
	}
	if ( nPart >= GIZMO_PART_BOX_MIN_X && nPart < GIZMO_PART_BOX_MIN_X + 3 )
	{
		*pAxis = nPart - GIZMO_PART_BOX_MIN_X;
		*pSide = -1.0f;
		return true;
	}
	return false;
}

bool CBoxScaleGizmoHelper::SetupFace( int nPart )
{
	if ( !FaceOfPart( nPart, &m_nAxis, &m_flSide ) )
		return false;
	const bool bWorld = IsWorldSpace();
	const Vector vMin = bWorld ? m_Frame.m_vBoundsMinWorld : m_Frame.m_vBoundsMinLocal;
	const Vector vMax = bWorld ? m_Frame.m_vBoundsMaxWorld : m_Frame.m_vBoundsMaxLocal;
	m_vSize = Sub( vMax, vMin );
	m_flStartSize = m_vSize[ m_nAxis ];
	if ( !( m_flStartSize > 1e-4f ) )
		return false;
	Vector vOppositeLocal = Scale( Add( vMin, vMax ), 0.5f );
	vOppositeLocal[ m_nAxis ] = m_flSide > 0.0f ? vMin[ m_nAxis ] : vMax[ m_nAxis ];
	m_vOpposite = bWorld ? vOppositeLocal : m_Orientation.TransformPoint( vOppositeLocal );
	m_vFaceAxis = Scale( GetAxis( m_nAxis ), m_flSide );
	return true;
}

bool CBoxScaleGizmoHelper::StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	if ( !SetupFace( m_nPart ) )
		return false;
	// The plane holds the face's axis and faces the eye as well as it can.
	m_vPlaneNormal = ChooseDragPlaneNormal( camera, ray, GIZMO_PART_X + m_nAxis );
	return true;
}

void CBoxScaleGizmoHelper::SetFaceScale( float flRatio, float flSnapRatio )
{
	m_Drag.m_vScale = Vector( 1.0f, 1.0f, 1.0f );
	m_Drag.m_vScale[ m_nAxis ] = flRatio;
	m_Drag.m_vScaleCentre = m_vOpposite;
	m_Drag.m_vSnapOffset = Vector();
	m_Drag.m_vSnapOffset[ m_nAxis ] = flSnapRatio;
	if ( !brakel_gizmo_compute_matrix.GetBool() )
	{
		m_Drag.m_Transform = GizmoMatrix_t::Identity();
		return;
	}
	if ( toolscene_gizmo_algorithm.GetInt() == 0 )
	{
		// Scale about the frame's origin, then move the opposite face back where it was.
		GizmoMatrix_t scale = GizmoMatrix_t::ScaleInFrame( m_Orientation, m_Drag.m_vScale, Vector() );
		scale.SetOrigin( Sub( m_vOpposite, scale.TransformVector( m_vOpposite ) ) );
		m_Drag.m_Transform = scale;
	}
	else
		m_Drag.m_Transform = GizmoMatrix_t::ScaleInFrame( m_Orientation, m_Drag.m_vScale, m_vOpposite );
}

void CBoxScaleGizmoHelper::StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	Vector vHit = PlaneHit( camera, ray, m_vPlaneNormal, m_vOpposite );
	float flSize = Dot( Sub( vHit, m_vOpposite ), m_vFaceAxis );
	float flSnapRatio = 0.0f;
	if ( IsSnapping() )
	{
		const Vector vFace = Add( m_vOpposite, Scale( m_vFaceAxis, flSize ) );
		Vector vSnapped;
		if ( m_pSnapper->SnapPoint( vFace, &vSnapped ) == 1 )
		{
			const float flSnappedSize = Dot( Sub( vSnapped, m_vOpposite ), m_vFaceAxis );
			flSnapRatio = std::fabs( flSnappedSize ) > 1e-6f ? flSize / flSnappedSize : 0.0f;
			flSize = flSnappedSize;
		}
	}
	const float flRatio = CScaleGizmoHelper::ClampScale( flSize / m_flStartSize );
	SetFaceScale( flRatio, flSnapRatio );
	char szText[ 64 ];
	snprintf( szText, sizeof( szText ), "%.2f", double( m_flStartSize * flRatio ) );
	PublishStatus( szText );
}

bool CBoxScaleGizmoHelper::ApplyTypedText( const std::string &text )
{
	float flFirst = 1.0f, flSecond = 1.0f;
	bool bTwo = false;
	if ( !GizmoParseTypedPair( text.c_str(), &flFirst, &flSecond, &bTwo ) )
		return false;
	if ( !SetupFace( m_Drag.m_nPart ) && !SetupFace( GIZMO_PART_BOX_MAX_X ) )
		return false;
	SetFaceScale( CScaleGizmoHelper::ClampScale( flFirst ), 0.0f );
	return true;
}

void CBoxScaleGizmoHelper::PublishStatus( const std::string &text ) const
{
	EventGizmoScaleChanged_t event;
	event.m_Text = text;
	event.m_Axes[ m_nAxis ] = 1.0f;
	event.m_Size[ 0 ] = m_flStartSize * m_Drag.m_vScale[ m_nAxis ];
	event.m_Size[ 1 ] = m_vSize[ ( m_nAxis + 1 ) % 3 ];
	GizmoEventDispatcher().Dispatch( event );
}
