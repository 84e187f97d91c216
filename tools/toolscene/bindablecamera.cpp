#include "tools/toolscene/bindablecamera.h"

#include <algorithm>
#include <cmath>

#include "tools/toolscene/toolscenecamera.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"

using namespace ToolSceneMath;

// A three-quarter view from the front right, a little above.
static constexpr float DEFAULT_YAW = 215.0f;
static constexpr float DEFAULT_PITCH = 20.0f;
static constexpr float DEFAULT_DISTANCE = 160.0f;
static constexpr float MIN_DISTANCE = 1.0f;
static constexpr float MAX_DISTANCE = 100000.0f;
static constexpr float ORBIT_DEGREES_PER_PIXEL = 0.4f;
static constexpr float FAR_BOUNDS_LENGTH_SQUARED = 999999995904.0f;
// Room around the framed box.
static constexpr float FRAME_MARGIN = 1.25f;

CBindableCamera::CBindableCamera() : m_vPivot( 0.0f, 0.0f, 16.0f ), m_flYaw( DEFAULT_YAW ), m_flPitch( DEFAULT_PITCH ), m_flDistance( DEFAULT_DISTANCE )
{
}

Vector CBindableCamera::GetEye() const
{
	Vector vForward;
	AngleVectors( QAngle( m_flPitch, m_flYaw, 0.0f ), &vForward, nullptr, nullptr );
	return Sub( m_vPivot, Scale( vForward, m_flDistance ) );
}

void CBindableCamera::ApplyTo( CToolSceneCamera *pCamera ) const
{
	pCamera->SetOrigin( GetEye() );
	pCamera->SetAngles( QAngle( m_flPitch, m_flYaw, 0.0f ) );
	pCamera->SetFov( m_flFovY );
}

ToolSceneView_t CBindableCamera::GetView( int nWidth, int nHeight ) const
{
	ToolSceneView_t view;
	view.m_vEye = GetEye();
	AngleVectors( QAngle( m_flPitch, m_flYaw, 0.0f ), &view.m_vForward, &view.m_vRight, &view.m_vUp );
	view.m_flFovY = m_flFovY;
	view.m_nWidth = std::max( nWidth, 1 );
	view.m_nHeight = std::max( nHeight, 1 );
	view.Compute();
	return view;
}

void CBindableCamera::Orbit( float flDeltaX, float flDeltaY )
{
	m_flYaw = std::fmod( m_flYaw - flDeltaX * ORBIT_DEGREES_PER_PIXEL, 360.0f );
	m_flPitch = std::clamp( m_flPitch + flDeltaY * ORBIT_DEGREES_PER_PIXEL, -89.0f, 89.0f );
}

void CBindableCamera::Pan( float flDeltaX, float flDeltaY, int nViewHeight )
{
	// The pivot moves so the point under the mouse stays under it, at the pivot's depth.
	Vector vForward, vRight, vUp;
	AngleVectors( QAngle( m_flPitch, m_flYaw, 0.0f ), &vForward, &vRight, &vUp );
	float flUnitsPerPixel = 2.0f * m_flDistance * std::tan( DegToRad( m_flFovY ) * 0.5f ) / float( std::max( nViewHeight, 1 ) );
	m_vPivot = Add( m_vPivot, Add( Scale( vRight, -flDeltaX * flUnitsPerPixel ), Scale( vUp, flDeltaY * flUnitsPerPixel ) ) );
	m_bFollowScene = false;
}

void CBindableCamera::Zoom( float flSteps )
{
	float flFactor = std::pow( 0.9f, flSteps );
	m_flDistance = std::clamp( m_flDistance * flFactor, MIN_DISTANCE, MAX_DISTANCE );
	m_flZoomScale = std::clamp( m_flZoomScale * flFactor, 0.01f, 100.0f );
}

void CBindableCamera::Reset( bool bClearOffset, bool bFollowScene )
{
	if ( bClearOffset )
	{
		m_flYaw = DEFAULT_YAW;
		m_flPitch = DEFAULT_PITCH;
		m_flZoomScale = 1.0f;
		m_flDistance = DEFAULT_DISTANCE;
		m_vPivot = Vector( 0.0f, 0.0f, 16.0f );
	}
	m_bFollowScene = bFollowScene;
	m_bHaveFramed = false;
}

void CBindableCamera::SetPositionAndTarget( const Vector &vEye, const Vector &vTarget )
{
	Vector vDir = Sub( vTarget, vEye );
	float flLength = Length( vDir );
	if ( flLength < 1e-4f )
		return;
	QAngle angles = VectorAngles( vDir );
	m_flPitch = angles.x;
	m_flYaw = angles.y;
	m_flDistance = flLength;
	m_vPivot = vTarget;
	m_bFollowScene = false;
}

bool CBindableCamera::IsUsableBoundsValue( const Vector &v )
{
	return IsFiniteVector( v ) && Dot( v, v ) < FAR_BOUNDS_LENGTH_SQUARED;
}

void CBindableCamera::FrameBounds( const Vector &vMin, const Vector &vMax )
{
	if ( !IsUsableBoundsValue( vMin ) || !IsUsableBoundsValue( vMax ) )
		return;
	m_vPivot = Scale( Add( vMin, vMax ), 0.5f );
	float flRadius = std::max( Length( Sub( vMax, vMin ) ) * 0.5f, 4.0f );
	float flFitDistance = flRadius * FRAME_MARGIN / std::sin( DegToRad( m_flFovY ) * 0.5f );
	m_flDistance = std::clamp( flFitDistance * m_flZoomScale, MIN_DISTANCE, MAX_DISTANCE );
}

void CBindableCamera::FollowBounds( bool bHaveBounds, const Vector &vMin, const Vector &vMax )
{
	if ( !m_bFollowScene || !bHaveBounds || !IsUsableBoundsValue( vMin ) || !IsUsableBoundsValue( vMax ) )
		return;
	Vector vNewMin = vMin, vNewMax = vMax;
	if ( m_bTracking && m_bHaveFramed )
	{
		for ( int i = 0; i < 3; ++i )
		{
			vNewMin[ i ] = std::min( vNewMin[ i ], m_vFramedMin[ i ] );
			vNewMax[ i ] = std::max( vNewMax[ i ], m_vFramedMax[ i ] );
		}
	}
	m_vFramedMin = vNewMin;
	m_vFramedMax = vNewMax;
	m_bHaveFramed = true;
	FrameBounds( vNewMin, vNewMax );
}
