#pragma once
// The tool scene's geometry: frames from angles, and the 4-by-4 matrices of a view. World
// space has Z up; angles are pitch, yaw and roll in degrees; a frame's right axis points
// to -Y at zero angles, as the particle runtime's control points do.

#include <cmath>

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/particles/sim/particlesimmath.h"

namespace ToolSceneMath
{
using namespace ParticleMath;

constexpr float PI = 3.14159265358979f;
inline float DegToRad( float flDegrees ) { return flDegrees * ( PI / 180.0f ); }
inline float RadToDeg( float flRadians ) { return flRadians * ( 180.0f / PI ); }

inline void AngleVectors( const QAngle &angles, Vector *pForward, Vector *pRight, Vector *pUp )
{
	float sp = std::sin( DegToRad( angles.x ) ), cp = std::cos( DegToRad( angles.x ) );
	float sy = std::sin( DegToRad( angles.y ) ), cy = std::cos( DegToRad( angles.y ) );
	float sr = std::sin( DegToRad( angles.z ) ), cr = std::cos( DegToRad( angles.z ) );
	if ( pForward )
		*pForward = Vector( cp * cy, cp * sy, -sp );
	if ( pRight )
		*pRight = Vector( -sr * sp * cy + cr * sy, -sr * sp * sy - cr * cy, -sr * cp );
	if ( pUp )
		*pUp = Vector( cr * sp * cy + sr * sy, cr * sp * sy - sr * cy, cr * cp );
}

// Pitch and yaw that look along a direction; roll 0.
inline QAngle VectorAngles( const Vector &vForward )
{
	float flYaw = 0.0f, flPitch = 0.0f;
	if ( vForward.x == 0.0f && vForward.y == 0.0f )
		flPitch = vForward.z > 0.0f ? -90.0f : 90.0f;
	else
	{
		flYaw = RadToDeg( std::atan2( vForward.y, vForward.x ) );
		flPitch = RadToDeg( std::atan2( -vForward.z, std::sqrt( vForward.x * vForward.x + vForward.y * vForward.y ) ) );
	}
	return QAngle( flPitch, flYaw, 0.0f );
}

// Angles of a frame given by its axes.
inline QAngle AxesToAngles( const Vector &vForward, const Vector &vUp )
{
	QAngle angles = VectorAngles( vForward );
	Vector vFlatRight, vFlatUp;
	AngleVectors( angles, nullptr, &vFlatRight, &vFlatUp );
	// Rolled, up is cos(roll) of the unrolled up plus sin(roll) of the unrolled right.
	angles.z = RadToDeg( std::atan2( Dot( vUp, vFlatRight ), Dot( vUp, vFlatUp ) ) );
	return angles;
}

inline bool IsFiniteVector( const Vector &v )
{
	return std::isfinite( v.x ) && std::isfinite( v.y ) && std::isfinite( v.z );
}

// Row-major: a point p maps to M * (p, 1).
struct Matrix4_t
{
	float m[ 4 ][ 4 ] = {};

	static Matrix4_t Identity()
	{
		Matrix4_t r;
		for ( int i = 0; i < 4; ++i )
			r.m[ i ][ i ] = 1.0f;
		return r;
	}
	Matrix4_t operator*( const Matrix4_t &b ) const
	{
		Matrix4_t r;
		for ( int i = 0; i < 4; ++i )
			for ( int j = 0; j < 4; ++j )
				r.m[ i ][ j ] = m[ i ][ 0 ] * b.m[ 0 ][ j ] + m[ i ][ 1 ] * b.m[ 1 ][ j ] + m[ i ][ 2 ] * b.m[ 2 ][ j ] + m[ i ][ 3 ] * b.m[ 3 ][ j ];
		return r;
	}
	// The homogeneous result of M * (p, 1).
	void Transform( const Vector &p, float pOut[ 4 ] ) const
	{
		for ( int i = 0; i < 4; ++i )
			pOut[ i ] = m[ i ][ 0 ] * p.x + m[ i ][ 1 ] * p.y + m[ i ][ 2 ] * p.z + m[ i ][ 3 ];
	}
};

// World to view: the eye at the origin looking down -Z, up is +Y.
inline Matrix4_t ViewMatrix( const Vector &vEye, const Vector &vForward, const Vector &vRight, const Vector &vUp )
{
	Matrix4_t r = Matrix4_t::Identity();
	const Vector *rows[ 3 ] = { &vRight, &vUp, &vForward };
	for ( int i = 0; i < 3; ++i )
	{
		float flSign = i == 2 ? -1.0f : 1.0f;
		r.m[ i ][ 0 ] = flSign * rows[ i ]->x;
		r.m[ i ][ 1 ] = flSign * rows[ i ]->y;
		r.m[ i ][ 2 ] = flSign * rows[ i ]->z;
		r.m[ i ][ 3 ] = -flSign * Dot( *rows[ i ], vEye );
	}
	return r;
}

// OpenGL clip space from a vertical field of view in degrees.
inline Matrix4_t PerspectiveMatrix( float flFovYDegrees, float flAspect, float flNear, float flFar )
{
	float f = 1.0f / std::tan( DegToRad( flFovYDegrees ) * 0.5f );
	Matrix4_t r;
	r.m[ 0 ][ 0 ] = f / flAspect;
	r.m[ 1 ][ 1 ] = f;
	r.m[ 2 ][ 2 ] = ( flFar + flNear ) / ( flNear - flFar );
	r.m[ 2 ][ 3 ] = 2.0f * flFar * flNear / ( flNear - flFar );
	r.m[ 3 ][ 2 ] = -1.0f;
	return r;
}
} // namespace ToolSceneMath
