#pragma once
// Euler angles in degrees: pitch, yaw, roll.

class QAngle
{
public:
	constexpr QAngle() = default;
	constexpr QAngle( float flPitch, float flYaw, float flRoll ) : x( flPitch ), y( flYaw ), z( flRoll ) {}

	float &operator[]( int i ) { return ( &x )[ i ]; }
	const float &operator[]( int i ) const { return ( &x )[ i ]; }
	bool operator==( const QAngle &other ) const = default;

	float x = 0.0f;
	float y = 0.0f;
	float z = 0.0f;
};
