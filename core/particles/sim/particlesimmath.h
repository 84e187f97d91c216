#pragma once
// Small vector arithmetic for the simulation. The shared Vector type carries no
// operators, so the runtime keeps its own here rather than widen that type for everyone.

#include <cmath>

#include "core/mathlib/vector.h"

namespace ParticleMath
{
inline Vector Add( const Vector &a, const Vector &b ) { return Vector( a.x + b.x, a.y + b.y, a.z + b.z ); }
inline Vector Sub( const Vector &a, const Vector &b ) { return Vector( a.x - b.x, a.y - b.y, a.z - b.z ); }
inline Vector Scale( const Vector &a, float s ) { return Vector( a.x * s, a.y * s, a.z * s ); }
inline Vector Mul( const Vector &a, const Vector &b ) { return Vector( a.x * b.x, a.y * b.y, a.z * b.z ); }
inline float Dot( const Vector &a, const Vector &b ) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vector Cross( const Vector &a, const Vector &b ) { return Vector( a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x ); }
inline float Length( const Vector &a ) { return std::sqrt( Dot( a, a ) ); }
inline Vector Lerp( const Vector &a, const Vector &b, float t ) { return Vector( a.x + ( b.x - a.x ) * t, a.y + ( b.y - a.y ) * t, a.z + ( b.z - a.z ) * t ); }
inline Vector Normalized( const Vector &a )
{
	float flLength = Length( a );
	return flLength > 1e-12f ? Scale( a, 1.0f / flLength ) : Vector( 0.0f, 0.0f, 0.0f );
}
inline float Clamp( float v, float lo, float hi ) { return v < lo ? lo : ( v > hi ? hi : v ); }
inline float Lerp( float a, float b, float t ) { return a + ( b - a ) * t; }
inline float Saturate( float v ) { return Clamp( v, 0.0f, 1.0f ); }

// Where a point given in a control point's frame lies in the world.
inline Vector LocalToWorld( const Vector &origin, const Vector &forward, const Vector &right, const Vector &up, const Vector &local )
{
	return Add( origin, Add( Scale( forward, local.x ), Add( Scale( right, -local.y ), Scale( up, local.z ) ) ) );
}

// v turned by roll about x, then pitch about y, then yaw about z; all in degrees.
inline Vector RotateByDegrees( const Vector &v, float flPitch, float flYaw, float flRoll )
{
	constexpr float DEG_TO_RAD = 3.14159265358979f / 180.0f;
	float sr = std::sin( flRoll * DEG_TO_RAD ), cr = std::cos( flRoll * DEG_TO_RAD );
	float sp = std::sin( flPitch * DEG_TO_RAD ), cp = std::cos( flPitch * DEG_TO_RAD );
	float sy = std::sin( flYaw * DEG_TO_RAD ), cy = std::cos( flYaw * DEG_TO_RAD );
	Vector a( v.x, v.y * cr - v.z * sr, v.y * sr + v.z * cr );
	Vector b( a.x * cp + a.z * sp, a.y, -a.x * sp + a.z * cp );
	return Vector( b.x * cy - b.y * sy, b.x * sy + b.y * cy, b.z );
}

// v turned by flDegrees about the unit axis (Rodrigues).
inline Vector RotateAboutAxis( const Vector &v, const Vector &axis, float flDegrees )
{
	float flRadians = flDegrees * 3.14159265358979f / 180.0f;
	float s = std::sin( flRadians ), c = std::cos( flRadians );
	return Add( Add( Scale( v, c ), Scale( Cross( axis, v ), s ) ), Scale( axis, Dot( axis, v ) * ( 1.0f - c ) ) );
}
} // namespace ParticleMath
