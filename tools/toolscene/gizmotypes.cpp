#include "tools/toolscene/gizmotypes.h"

#include <charconv>
#include <cmath>
#include <cstring>

#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"

using namespace ToolSceneMath;

int GizmoPlaneNormalAxis( int nPart )
{
	switch ( nPart )
	{
	case GIZMO_PART_XY: return 2;
	case GIZMO_PART_YZ: return 0;
	case GIZMO_PART_XZ: return 1;
	default: return -1;
	}
}

uint32_t GizmoPartAxisMask( int nPart, GizmoMode_t eMode )
{
	switch ( nPart )
	{
	case GIZMO_PART_CENTER: return 7;
	case GIZMO_PART_UNIFORM: return eMode == GIZMO_MODE_SCALE ? 7 : 0;
	case GIZMO_PART_X: return 1;
	case GIZMO_PART_Y: return 2;
	case GIZMO_PART_Z: return 4;
	case GIZMO_PART_XY: return 1 | 2;
	case GIZMO_PART_YZ: return 2 | 4;
	case GIZMO_PART_XZ: return 1 | 4;
	default: return 0;
	}
}

// ---------------------------------------------------------------------------------------
// Frames

GizmoMatrix_t GizmoMatrix_t::FromAxes( const Vector &vX, const Vector &vY, const Vector &vZ, const Vector &vOrigin )
{
	GizmoMatrix_t r;
	r.SetAxis( 0, vX );
	r.SetAxis( 1, vY );
	r.SetAxis( 2, vZ );
	r.SetOrigin( vOrigin );
	return r;
}

GizmoMatrix_t GizmoMatrix_t::FromAngles( const QAngle &angles, const Vector &vOrigin )
{
	Vector vForward, vRight, vUp;
	AngleVectors( angles, &vForward, &vRight, &vUp );
	return FromAxes( vForward, Scale( vRight, -1.0f ), vUp, vOrigin );
}

GizmoMatrix_t GizmoMatrix_t::Translation( const Vector &vOffset )
{
	GizmoMatrix_t r;
	r.SetOrigin( vOffset );
	return r;
}

GizmoMatrix_t GizmoMatrix_t::Rotation( const Vector &vAxis, float flDegrees, const Vector &vCentre )
{
	GizmoMatrix_t r;
	for ( int i = 0; i < 3; ++i )
	{
		Vector vBasis;
		vBasis[ i ] = 1.0f;
		r.SetAxis( i, RotateAboutAxis( vBasis, vAxis, flDegrees ) );
	}
	// Turning about the centre leaves the centre where it is.
	r.SetOrigin( Sub( vCentre, r.TransformVector( vCentre ) ) );
	return r;
}

GizmoMatrix_t GizmoMatrix_t::ScaleInFrame( const GizmoMatrix_t &frame, const Vector &vScale, const Vector &vCentre )
{
	// R S R^T about the centre: each of the frame's axes stretched by its factor.
	GizmoMatrix_t r;
	for ( int i = 0; i < 3; ++i )
	{
		Vector vBasis;
		vBasis[ i ] = 1.0f;
		Vector vOut;
		for ( int a = 0; a < 3; ++a )
		{
			Vector vAxis = Normalized( frame.GetAxis( a ) );
			vOut = Add( vOut, Scale( vAxis, Dot( vAxis, vBasis ) * vScale[ a ] ) );
		}
		r.SetAxis( i, vOut );
	}
	r.SetOrigin( Sub( vCentre, r.TransformVector( vCentre ) ) );
	return r;
}

void GizmoMatrix_t::SetAxis( int i, const Vector &v )
{
	m[ 0 ][ i ] = v.x;
	m[ 1 ][ i ] = v.y;
	m[ 2 ][ i ] = v.z;
}

void GizmoMatrix_t::SetOrigin( const Vector &v )
{
	SetAxis( 3, v );
}

Vector GizmoMatrix_t::TransformPoint( const Vector &p ) const
{
	return Add( TransformVector( p ), GetOrigin() );
}

Vector GizmoMatrix_t::TransformVector( const Vector &v ) const
{
	return Vector( m[ 0 ][ 0 ] * v.x + m[ 0 ][ 1 ] * v.y + m[ 0 ][ 2 ] * v.z, m[ 1 ][ 0 ] * v.x + m[ 1 ][ 1 ] * v.y + m[ 1 ][ 2 ] * v.z,
		m[ 2 ][ 0 ] * v.x + m[ 2 ][ 1 ] * v.y + m[ 2 ][ 2 ] * v.z );
}

GizmoMatrix_t GizmoMatrix_t::operator*( const GizmoMatrix_t &b ) const
{
	GizmoMatrix_t r;
	for ( int i = 0; i < 4; ++i )
		r.SetAxis( i, i < 3 ? TransformVector( b.GetAxis( i ) ) : TransformPoint( b.GetOrigin() ) );
	return r;
}

QAngle GizmoMatrix_t::ToAngles() const
{
	return AxesToAngles( Normalized( GetAxis( 0 ) ), Normalized( GetAxis( 2 ) ) );
}

bool GizmoMatrix_t::IsIdentity( float flTolerance ) const
{
	for ( int i = 0; i < 3; ++i )
		for ( int j = 0; j < 4; ++j )
		{
			if ( std::fabs( m[ i ][ j ] - ( i == j ? 1.0f : 0.0f ) ) > flTolerance )
				return false;
		}
	return true;
}

void ZolGizmoDrag::Reset()
{
	*this = ZolGizmoDrag();
}

// ---------------------------------------------------------------------------------------
// Rays

bool GizmoIsOrthographic( const ToolSceneView_t &view )
{
	return view.m_flFovY == -1.0f;
}

GizmoRay_t GizmoRayFromScreen( const ToolSceneView_t &view, float flX, float flY )
{
	const float flNdcX = view.m_nWidth > 0 ? flX / float( view.m_nWidth ) * 2.0f - 1.0f : 0.0f;
	const float flNdcY = view.m_nHeight > 0 ? 1.0f - flY / float( view.m_nHeight ) * 2.0f : 0.0f;
	const float flTan = std::tan( DegToRad( view.m_flFovY ) * 0.5f );
	GizmoRay_t ray;
	ray.m_vOrigin = view.m_vEye;
	ray.m_vDirection = Normalized( Add( view.m_vForward, Add( Scale( view.m_vRight, flNdcX * flTan * view.GetAspect() ), Scale( view.m_vUp, flNdcY * flTan ) ) ) );
	return ray;
}

bool GizmoRayToScreen( const ToolSceneView_t &view, const GizmoRay_t &ray, float *pX, float *pY )
{
	// A point well in front of the eye along the ray projects to the pixel.
	const float flAlong = Dot( ray.m_vDirection, view.m_vForward );
	if ( !( flAlong > 1e-4f ) )
		return false;
	return view.WorldToScreen( Add( ray.m_vOrigin, Scale( ray.m_vDirection, view.m_flNear * 4.0f / flAlong ) ), pX, pY );
}

// ---------------------------------------------------------------------------------------
// Typed values

// Reads a number at p (after blanks and an optional '+'); answers the end, or null.
static const char *ReadNumber( const char *p, const char *pEnd, float *pValue )
{
	while ( p < pEnd && ( *p == ' ' || *p == '\t' ) )
		++p;
	if ( p < pEnd && *p == '+' )
		++p;
	const std::from_chars_result result = std::from_chars( p, pEnd, *pValue );
	if ( result.ec != std::errc() || !std::isfinite( *pValue ) )
		return nullptr;
	return result.ptr;
}

static bool OnlyBlanksLeft( const char *p, const char *pEnd )
{
	while ( p < pEnd && ( *p == ' ' || *p == '\t' ) )
		++p;
	return p == pEnd;
}

bool GizmoParseTypedValue( const char *pText, float *pValue )
{
	if ( !pText )
		return false;
	const char *pEnd = pText + strlen( pText );
	const char *p = ReadNumber( pText, pEnd, pValue );
	return p && OnlyBlanksLeft( p, pEnd );
}

bool GizmoParseTypedPair( const char *pText, float *pFirst, float *pSecond, bool *pHasSecond )
{
	*pHasSecond = false;
	if ( !pText )
		return false;
	const char *pEnd = pText + strlen( pText );
	const char *p = ReadNumber( pText, pEnd, pFirst );
	if ( !p )
		return false;
	if ( OnlyBlanksLeft( p, pEnd ) )
		return true;
	// One separator character, then the second number.
	p = ReadNumber( p + 1, pEnd, pSecond );
	if ( !p || !OnlyBlanksLeft( p, pEnd ) )
		return false;
	*pHasSecond = true;
	return true;
}

// ---------------------------------------------------------------------------------------
// Colours

static const uint8_t s_GizmoColors[ GIZMO_COLOR_COUNT ][ 4 ] = {
	{ 200, 30, 30, 255 }, { 50, 200, 30, 255 }, { 30, 110, 200, 255 }, { 255, 230, 0, 255 }, { 255, 255, 0, 120 }, { 100, 100, 100, 255 }, { 120, 120, 120, 128 },
	{ 180, 180, 180, 255 }, { 255, 255, 0, 255 }, { 255, 255, 255, 255 }, { 0, 235, 200, 255 }, { 200, 30, 30, 255 }, { 50, 200, 30, 255 }, { 0, 156, 200, 255 },
	{ 200, 60, 200, 255 }, { 0, 110, 200, 255 }, { 200, 60, 200, 255 }, { 255, 255, 255, 255 }, { 50, 200, 30, 255 }, { 200, 60, 200, 255 }, { 255, 255, 0, 255 },
};

void GizmoGetColor( int nIndex, uint8_t rgba[ 4 ] )
{
	for ( int i = 0; i < 4; ++i )
		rgba[ i ] = nIndex >= 0 && nIndex < GIZMO_COLOR_COUNT ? s_GizmoColors[ nIndex ][ i ] : 255;
}

void GizmoGetColor( int nIndex, float rgba[ 4 ] )
{
	uint8_t bytes[ 4 ];
	GizmoGetColor( nIndex, bytes );
	for ( int i = 0; i < 4; ++i )
		rgba[ i ] = float( bytes[ i ] ) / 255.0f;
}
