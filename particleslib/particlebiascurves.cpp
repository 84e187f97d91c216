#include "particleslib/particlebiascurves.h"

#include <algorithm>
#include <cmath>

namespace
{
float Clamp( float flValue, float flLow, float flHigh ) { return std::min( std::max( flValue, flLow ), flHigh ); }

// x / (k (1 - x) + 1) with k = 1 / b - 2: b of 0.5 is the identity.
float Bias( float x, float k ) { return x / ( k * ( 1.0f - x ) + 1.0f ); }
} // namespace

float ParticleBiasCurve( ParticleFloatBiasType_t eType, float flParameter, float x )
{
	switch ( eType )
	{
	case PF_BIAS_TYPE_STANDARD:
	case PF_BIAS_TYPE_GAIN:
	{
		float b = Clamp( ( flParameter + 1.0f ) * 0.5f, 0.0f, 1.0f );
		if ( b <= 0.0f )
			return 0.0f;
		if ( b >= 1.0f )
			return 1.0f;
		float k = 1.0f / b - 2.0f;
		if ( eType == PF_BIAS_TYPE_STANDARD )
			return Bias( x, k );
		return x < 0.5f ? 0.5f * Bias( 2.0f * x, k ) : 1.0f - 0.5f * Bias( 2.0f - 2.0f * x, k );
	}
	case PF_BIAS_TYPE_EXPONENTIAL:
	{
		float e = flParameter < 0.0f ? 20.0f - Clamp( flParameter + 1.0f, 0.0f, 1.0f ) * 19.0f : 1.0f - Clamp( flParameter, 0.0f, 1.0f );
		if ( e <= 0.0f || x >= 1.0f )
			return 1.0f;
		if ( x <= 0.0f )
			return 0.0f;
		return std::exp( std::log( x ) * Clamp( e, 0.0f, 20.0f ) );
	}
	default: return x;
	}
}
