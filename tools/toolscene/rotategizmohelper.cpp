#include "tools/toolscene/rotategizmohelper.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

#include "tools/toolscene/gizmoevents.h"
#include "tools/toolscene/igizmolistener.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

using namespace ToolSceneMath;

static constexpr float DEGREES_PER_RADIAN = 57.295776f;
// A ring whose axis is this close to square with the line of sight is seen edge on.
static constexpr float RING_FACING_LIMIT = 0.1f;
static constexpr float NUDGE_DEGREES = 45.0f;

float CRotateGizmoHelper::UnwrapAngle( float flRaw, float flStart, float flAccumulated )
{
	// A step of more than half a turn crossed the ring's 0/360 seam: it goes back by a
	// turn the way it came. The jump's own direction says which way, also on the first
	// step, when the accumulated angle has no sign yet.
	const float flJump = flRaw - flStart - flAccumulated;
	if ( flJump > 180.0f )
		flRaw -= 360.0f;
	else if ( flJump < -180.0f )
		flRaw += 360.0f;
	return std::fmod( flRaw - flStart, 360.0f );
}

float CRotateGizmoHelper::RingAngle( const Vector &vHit, int nAxis ) const
{
	const Vector vLocal = Sub( vHit, m_Drag.m_vStartPosition );
	const Vector vU = GetAxis( ( nAxis + 1 ) % 3 ), vV = GetAxis( ( nAxis + 2 ) % 3 );
	float flAngle = std::atan2( Dot( vLocal, vV ), Dot( vLocal, vU ) ) * DEGREES_PER_RADIAN;
	if ( flAngle < 0.0f )
		flAngle += 360.0f;
	return flAngle;
}

Vector CRotateGizmoHelper::TrackballHit( const ToolSceneView_t &camera, const GizmoRay_t &ray ) const
{
	const Vector vCentre = m_Drag.m_vStartPosition;
	const Vector vToCentre = Sub( vCentre, ray.m_vOrigin );
	const float flAlong = Dot( vToCentre, ray.m_vDirection );
	const float flMissSq = Dot( vToCentre, vToCentre ) - flAlong * flAlong;
	const float flRadiusSq = m_flRadius * m_flRadius;
	if ( flMissSq <= flRadiusSq )
		return Add( ray.m_vOrigin, Scale( ray.m_vDirection, flAlong - std::sqrt( flRadiusSq - flMissSq ) ) );
	// Off the sphere: the hit on the plane through the centre that faces the eye, at the
	// sphere's radius from the centre.
	const Vector vFacing = Normalized( Sub( camera.m_vEye, vCentre ) );
	const Vector vPlaneHit = PlaneHit( camera, ray, vFacing, vCentre );
	return Add( vCentre, Scale( Normalized( Sub( vPlaneHit, vCentre ) ), m_flRadius ) );
}

void CRotateGizmoHelper::SetRotation( const Vector &vAxis, float flDegrees )
{
	m_Drag.m_flAngle = flDegrees;
	m_Drag.m_Transform = GizmoMatrix_t::Rotation( vAxis, flDegrees, m_Drag.m_vStartPosition );
	m_Drag.m_vRotation = Vector();
	if ( GizmoIsAxisPart( m_Drag.m_nPart ) )
		m_Drag.m_vRotation[ GizmoAxisIndex( m_Drag.m_nPart ) ] = flDegrees;
}

bool CRotateGizmoHelper::StartDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	m_flAngle = 0.0f;
	m_flStartAngle = 0.0f;
	m_bEdgeOn = false;
	if ( m_nPart == GIZMO_PART_TRACKBALL )
	{
		m_flRadius = std::max( GetDrawnLength( camera ), 1e-3f );
		m_vStartDirection = Normalized( Sub( TrackballHit( camera, ray ), m_Drag.m_vStartPosition ) );
		return true;
	}
	if ( !GizmoIsAxisPart( m_nPart ) )
		return false;
	const int nAxis = GizmoAxisIndex( m_nPart );
	const Vector vAxis = GetAxis( nAxis );
	const Vector vSight = Normalized( Sub( m_Drag.m_vStartPosition, camera.m_vEye ) );
	if ( std::fabs( Dot( vAxis, vSight ) ) > RING_FACING_LIMIT )
	{
		m_flStartAngle = RingAngle( PlaneHit( camera, ray, vAxis, m_Drag.m_vStartPosition ), nAxis );
		return true;
	}
	// Edge on: the pointer's move across the axis's picture turns it.
	m_bEdgeOn = true;
	GizmoRayToScreen( camera, ray, &m_flStartMouse[ 0 ], &m_flStartMouse[ 1 ] );
	float x0 = 0.0f, y0 = 0.0f, x1 = 0.0f, y1 = 0.0f;
	camera.WorldToScreen( m_Drag.m_vStartPosition, &x0, &y0 );
	camera.WorldToScreen( Add( m_Drag.m_vStartPosition, vAxis ), &x1, &y1 );
	const float flLength = std::sqrt( ( x1 - x0 ) * ( x1 - x0 ) + ( y1 - y0 ) * ( y1 - y0 ) );
	const float dx = flLength > 1e-6f ? ( x1 - x0 ) / flLength : 1.0f, dy = flLength > 1e-6f ? ( y1 - y0 ) / flLength : 0.0f;
	m_flPerpendicular[ 0 ] = -dy;
	m_flPerpendicular[ 1 ] = dx;
	return true;
}

void CRotateGizmoHelper::StepDrag( const ToolSceneView_t &camera, const GizmoRay_t &ray )
{
	if ( m_nPart == GIZMO_PART_TRACKBALL )
	{
		const Vector vNow = Normalized( Sub( TrackballHit( camera, ray ), m_Drag.m_vStartPosition ) );
		const float flAngle = std::acos( std::clamp( Dot( m_vStartDirection, vNow ), -1.0f, 1.0f ) ) * DEGREES_PER_RADIAN;
		const Vector vAxis = Normalized( Cross( m_vStartDirection, vNow ) );
		if ( Length( vAxis ) < 1e-6f )
			SetRotation( GetAxis( 2 ), 0.0f );
		else
			SetRotation( vAxis, flAngle );
	}
	else
	{
		const int nAxis = GizmoAxisIndex( m_nPart );
		float flRaw;
		if ( m_bEdgeOn )
		{
			float flX = m_flStartMouse[ 0 ], flY = m_flStartMouse[ 1 ];
			GizmoRayToScreen( camera, ray, &flX, &flY );
			flRaw = 0.5f * ( ( flX - m_flStartMouse[ 0 ] ) * m_flPerpendicular[ 0 ] + ( flY - m_flStartMouse[ 1 ] ) * m_flPerpendicular[ 1 ] );
		}
		else
			flRaw = RingAngle( PlaneHit( camera, ray, GetAxis( nAxis ), m_Drag.m_vStartPosition ), nAxis );
		// The accumulated angle goes on unsnapped, so that snapping never sticks.
		m_flAngle = UnwrapAngle( flRaw, m_flStartAngle, m_flAngle );
		const float flAngle = m_pSnapper && m_pSnapper->IsAngleSnapOn() ? m_pSnapper->SnapAngle( m_flAngle ) : m_flAngle;
		SetRotation( GetAxis( nAxis ), flAngle );
	}
	char szText[ 64 ];
	snprintf( szText, sizeof( szText ), "%.2f", double( m_Drag.m_flAngle ) );
	PublishStatus( szText );
}

void CRotateGizmoHelper::PublishStatus( const std::string &text ) const
{
	EventGizmoAngleChanged_t event;
	event.m_Text = text;
	const int nPart = m_Drag.m_nPart != GIZMO_PART_NONE ? m_Drag.m_nPart : m_nTypedPart;
	// The mark follows the part; the trackball marks all three.
	for ( int i = 0; i < 3; ++i )
		event.m_Axes[ i ] = nPart == GIZMO_PART_TRACKBALL || ( GizmoIsAxisPart( nPart ) && GizmoAxisIndex( nPart ) == i ) ? 1.0f : 0.0f;
	GizmoEventDispatcher().Dispatch( event );
}

bool CRotateGizmoHelper::ApplyTypedText( const std::string &text )
{
	float flDegrees = 0.0f;
	if ( !GizmoParseTypedValue( text.c_str(), &flDegrees ) )
		return false;
	if ( !GizmoIsAxisPart( m_Drag.m_nPart ) )
		m_Drag.m_nPart = GIZMO_PART_Z;
	SetRotation( GetAxis( GizmoAxisIndex( m_Drag.m_nPart ) ), flDegrees );
	return true;
}

void CRotateGizmoHelper::Nudge( const ToolSceneView_t &camera, int nDirection )
{
	if ( nDirection < 0 || nDirection > 3 )
		return;
	ClearTyped();
	Vector vRight, vUp;
	ChooseNudgeAxes( camera, &vRight, &vUp );
	// Right and left turn about the screen's right axis, up and down about its up axis.
	static const float s_Signs[ 4 ] = { 1.0f, -1.0f, -1.0f, 1.0f };
	const Vector vAxis = nDirection < 2 ? vRight : vUp;
	m_Drag.Reset();
	FillStart();
	m_Drag.m_nPart = GIZMO_PART_TRACKBALL;
	for ( int i = 0; i < 3; ++i )
	{
		if ( std::fabs( std::fabs( Dot( vAxis, GetAxis( i ) ) ) - 1.0f ) < 1e-4f )
			m_Drag.m_nPart = GIZMO_PART_X + i;
	}
	const float flDegrees = NUDGE_DEGREES * s_Signs[ nDirection ];
	m_Drag.m_flAngle = flDegrees;
	// The position stays: about the pivot in world space, about the position otherwise.
	const Vector vCentre = IsWorldSpace() ? m_Frame.m_vPivot : m_Frame.m_vPosition;
	m_Drag.m_Transform = GizmoMatrix_t::Rotation( vAxis, flDegrees, vCentre );
	m_Drag.m_vRotation = Vector();
	if ( GizmoIsAxisPart( m_Drag.m_nPart ) )
		m_Drag.m_vRotation[ GizmoAxisIndex( m_Drag.m_nPart ) ] = Dot( vAxis, GetAxis( GizmoAxisIndex( m_Drag.m_nPart ) ) ) > 0.0f ? flDegrees : -flDegrees;
	RunOneStep( 0 );
}
