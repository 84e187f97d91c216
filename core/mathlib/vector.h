#pragma once
// Three floats: positions, directions, scales.

class Vector
{
public:
	constexpr Vector() = default;
	constexpr Vector( float flX, float flY, float flZ ) : x( flX ), y( flY ), z( flZ ) {}

	float &operator[]( int i ) { return ( &x )[ i ]; }
	const float &operator[]( int i ) const { return ( &x )[ i ]; }
	bool operator==( const Vector &other ) const = default;

	float x = 0.0f;
	float y = 0.0f;
	float z = 0.0f;
};
