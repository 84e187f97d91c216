#pragma once
// Four floats.

class Vector4D
{
public:
	constexpr Vector4D() = default;
	constexpr Vector4D( float flX, float flY, float flZ, float flW ) : x( flX ), y( flY ), z( flZ ), w( flW ) {}

	float &operator[]( int i ) { return ( &x )[ i ]; }
	const float &operator[]( int i ) const { return ( &x )[ i ]; }
	bool operator==( const Vector4D &other ) const = default;

	float x = 0.0f;
	float y = 0.0f;
	float z = 0.0f;
	float w = 0.0f;
};
