#pragma once
// Small float helpers that later code calls by these names.

#include <cmath>

// Remainder with the sign of the dividend (C fmod: NaN for a zero divisor).
inline double V_fmodd( double x, double y )
{
	return std::fmod( x, y );
}

inline float V_fmodf( float x, float y )
{
	return std::fmod( x, y );
}

// Rounds halves away from zero.
inline float V_roundf( float x )
{
	return std::round( x );
}

// acos with the argument clamped to [-1, 1], so rounding error can't give NaN.
inline float V_acosf( float x )
{
	return std::acos( x < -1.0f ? -1.0f : ( x > 1.0f ? 1.0f : x ) );
}
