#pragma once
// Two floats.

class Vector2D
{
public:
	constexpr Vector2D() = default;
	constexpr Vector2D( float flX, float flY ) : x( flX ), y( flY ) {}

	float &operator[]( int i ) { return ( &x )[ i ]; }
	const float &operator[]( int i ) const { return ( &x )[ i ]; }
	bool operator==( const Vector2D &other ) const = default;

	float x = 0.0f;
	float y = 0.0f;
};
