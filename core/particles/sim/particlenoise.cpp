#include "core/particles/sim/particlenoise.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <numbers>

namespace
{
float Clamp( float flValue, float flLow, float flHigh ) { return std::min( std::max( flValue, flLow ), flHigh ); }
float Lerp( float a, float b, float t ) { return a + ( b - a ) * t; }
float Fade( float t ) { return t * t * t * ( t * ( t * 6.0f - 15.0f ) + 10.0f ); }

struct Cell_t
{
	int32_t m_nIndex[ 3 ];
	float m_flFraction[ 3 ];
};

Cell_t FindCell( const Vector &vPos )
{
	Cell_t cell;
	for ( int i = 0; i < 3; ++i )
	{
		// A position that is no number samples the origin rather than poisoning the image.
		float flCoord = std::isfinite( vPos[ i ] ) ? vPos[ i ] : 0.0f;
		float flFloor = std::floor( flCoord );
		// Far-away positions wrap rather than overflow.
		cell.m_nIndex[ i ] = static_cast<int32_t>( static_cast<int64_t>( std::fmod( flFloor, 2147483648.0f ) ) );
		cell.m_flFraction[ i ] = flCoord - flFloor;
	}
	return cell;
}

// The twelve edge directions of a cube, four of them repeated, picked by four hash bits.
float GradientDot( uint32_t nHash, float x, float y, float z )
{
	switch ( nHash & 15u )
	{
	case 0: return x + y;
	case 1: return -x + y;
	case 2: return x - y;
	case 3: return -x - y;
	case 4: return x + z;
	case 5: return -x + z;
	case 6: return x - z;
	case 7: return -x - z;
	case 8: return y + z;
	case 9: return -y + z;
	case 10: return y - z;
	case 11: return -y - z;
	case 12: return x + y;
	case 13: return -y + z;
	case 14: return -x + y;
	default: return -y - z;
	}
}

template <typename CornerFn> float BlendCorners( float u, float v, float w, CornerFn corner )
{
	float c[ 2 ][ 2 ][ 2 ];
	for ( int dz = 0; dz < 2; ++dz )
		for ( int dy = 0; dy < 2; ++dy )
			for ( int dx = 0; dx < 2; ++dx )
				c[ dz ][ dy ][ dx ] = corner( dx, dy, dz );
	float x00 = Lerp( c[ 0 ][ 0 ][ 0 ], c[ 0 ][ 0 ][ 1 ], u ), x10 = Lerp( c[ 0 ][ 1 ][ 0 ], c[ 0 ][ 1 ][ 1 ], u );
	float x01 = Lerp( c[ 1 ][ 0 ][ 0 ], c[ 1 ][ 0 ][ 1 ], u ), x11 = Lerp( c[ 1 ][ 1 ][ 0 ], c[ 1 ][ 1 ][ 1 ], u );
	return Lerp( Lerp( x00, x10, v ), Lerp( x01, x11, v ), w );
}

Vector Scaled( const Vector &v, float s ) { return Vector( v.x * s, v.y * s, v.z * s ); }
Vector Sum( const Vector &a, const Vector &b ) { return Vector( a.x + b.x, a.y + b.y, a.z + b.z ); }

// A sine-like wave with period 2 built from parabolas.
float ParabolicSine( float v )
{
	float flAbs = std::fabs( v );
	float flInteger = std::floor( flAbs );
	float f = flAbs - flInteger;
	float w = 4.0f * f * ( 1.0f - f );
	bool bOdd = std::fmod( flInteger, 2.0f ) != 0.0f;
	if ( bOdd )
		w = -w;
	if ( v < 0.0f )
		w = -w;
	return w;
}
} // namespace

uint32_t ParticleNoiseHash( int32_t x, int32_t y, int32_t z, uint32_t nSeed )
{
	uint32_t h = static_cast<uint32_t>( x ) + ( static_cast<uint32_t>( y ) << 10 ) + ( static_cast<uint32_t>( z ) << 20 );
	h *= 0x4C9E2D51u;
	h = std::rotl( h, 15 );
	h *= 0x1B873593u;
	h ^= nSeed;
	h = std::rotl( h, 13 );
	h *= 0x04B2AE35u;
	h ^= h >> 16;
	return h;
}

float ParticleValueNoise( const Vector &vPos )
{
	Cell_t cell = FindCell( vPos );
	float v = BlendCorners( cell.m_flFraction[ 0 ], cell.m_flFraction[ 1 ], cell.m_flFraction[ 2 ], [ & ]( int dx, int dy, int dz ) {
		uint32_t h = ParticleNoiseHash( cell.m_nIndex[ 0 ] + dx, cell.m_nIndex[ 1 ] + dy, cell.m_nIndex[ 2 ] + dz );
		return static_cast<float>( h & 0xFFFFu ) * ( 1.0f / 65535.0f );
	} );
	return ( v - 0.5f ) * 2.0f;
}

float ParticleGradientNoise( const Vector &vPos )
{
	Cell_t cell = FindCell( vPos );
	const float *f = cell.m_flFraction;
	return BlendCorners( Fade( f[ 0 ] ), Fade( f[ 1 ] ), Fade( f[ 2 ] ), [ & ]( int dx, int dy, int dz ) {
		uint32_t h = ParticleNoiseHash( cell.m_nIndex[ 0 ] + dx, cell.m_nIndex[ 1 ] + dy, cell.m_nIndex[ 2 ] + dz );
		return GradientDot( h, f[ 0 ] - float( dx ), f[ 1 ] - float( dy ), f[ 2 ] - float( dz ) );
	} );
}

float ParticleWorleyNoise( const Vector &vPos, float flJitter, uint32_t nSeed )
{
	Cell_t cell = FindCell( vPos );
	float flBest = 1e30f;
	for ( int dz = -1; dz <= 1; ++dz )
		for ( int dy = -1; dy <= 1; ++dy )
			for ( int dx = -1; dx <= 1; ++dx )
			{
				uint32_t h = ParticleNoiseHash( cell.m_nIndex[ 0 ] + dx, cell.m_nIndex[ 1 ] + dy, cell.m_nIndex[ 2 ] + dz, nSeed );
				// The feature point relative to the position's own cell corner.
				float fx = float( dx ) + float( h & 0xFFu ) / 255.0f * flJitter - cell.m_flFraction[ 0 ];
				float fy = float( dy ) + float( ( h >> 8 ) & 0xFFu ) / 255.0f * flJitter - cell.m_flFraction[ 1 ];
				float fz = float( dz ) + float( ( h >> 16 ) & 0xFFu ) / 255.0f * flJitter - cell.m_flFraction[ 2 ];
				flBest = std::min( flBest, fx * fx + fy * fy + fz * fz );
			}
	return Clamp( flBest, 0.0f, 1.0f ) * 2.0f - 1.0f;
}

float ParticleCurlNoise( const Vector &vPos )
{
	// Three independent fields from offset samples; the x component of their curl
	// (dFz/dy - dFy/dz) by central differences is the scalar the preview shows.
	const Vector vOffset1( 43.256f, -67.89f, 1338.2f );
	const Vector vOffset2 = Sum( vOffset1, Vector( -129.856f, -967.23f, 2338.98f ) );
	const float h = 0.01f;
	auto field = [ & ]( const Vector &vBase, const Vector &vDelta ) { return ParticleGradientNoise( Sum( vBase, vDelta ) ); };
	Vector vFieldY = Sum( vPos, vOffset1 );
	Vector vFieldZ = Sum( vPos, vOffset2 );
	float dFzdy = ( field( vFieldZ, Vector( 0, h, 0 ) ) - field( vFieldZ, Vector( 0, -h, 0 ) ) ) / ( 2.0f * h );
	float dFydz = ( field( vFieldY, Vector( 0, 0, h ) ) - field( vFieldY, Vector( 0, 0, -h ) ) ) / ( 2.0f * h );
	return Clamp( ( dFzdy - dFydz ) * 0.25f, -1.0f, 1.0f );
}

uint32_t ParticleNoiseHash( uint32_t nValue )
{
	uint32_t k = nValue * 0x4C9E2D51u;
	k = std::rotl( k, 15 );
	k *= 0x1B873593u;
	k = std::rotl( k, 13 );
	k *= 0x04B2AE35u;
	return k ^ ( k >> 16 );
}

float ParticleNoise( int nType, const Vector &vPos, float flJitter, uint32_t nSeed )
{
	switch ( nType )
	{
	case 1: return ParticleGradientNoise( vPos );
	case 2: return ParticleWorleyNoise( vPos, flJitter, nSeed );
	case 3: return ParticleCurlNoise( vPos );
	default: return ParticleValueNoise( vPos );
	}
}

void ParticleNoiseShape_t::SetOffset( float flNoiseOffset )
{
	const float o = flNoiseOffset * 0.1f;
	m_flJitter = Clamp( std::remainder( o + 1.7234f, 0.64832598f ), 0.0f, 1.0f ) * 0.2f + 0.75f;
	m_nSeed = std::bit_cast<uint32_t>( o );
}

float ParticleShapedNoise( const ParticleNoiseShape_t &shape, const Vector &vPos )
{
	constexpr int TYPE_WORLEY = 2, TYPE_SIMPLEX = 1;
	const int nOctaves = std::min( std::max( shape.m_nOctaves, 1 ), 4 );
	const int nType = shape.m_nType;
	const float S = shape.m_flTurbulenceScale;
	const float M = shape.m_flTurbulenceMix;
	static const float s_AmplitudeSums[ 4 ] = { 1.0f, 1.5f, 1.75f, 1.875f };
	const float pi = std::numbers::pi_v<float>;

	float a = 1.0f, s = 0.0f;
	for ( int nOctave = 0; nOctave < nOctaves; ++nOctave )
	{
		s += ParticleNoise( nType, Scaled( vPos, 1.0f / a ), shape.m_flJitter, shape.m_nSeed ) * a;
		a *= 0.5f;
	}

	float v = s;
	const Vector P = Scaled( vPos, S );
	switch ( shape.m_nTurbulence )
	{
	case 1: // highlight
	{
		float n = ParticleNoise( nType, Sum( P, Vector( 2.804f, 1.98f, 2.43f ) ), 0.9f, std::bit_cast<uint32_t>( 132.0f ) );
		v = v * ( 1.0f - M ) + ( 1.0f - std::fabs( n ) * 2.0f ) * M;
		break;
	}
	case 2: // feedback
	{
		float n = ParticleNoise( nType, Sum( P, Scaled( Vector( 1.804f, 2.98f, 1.43f ), v ) ), 0.9f, std::bit_cast<uint32_t>( 324.0f ) );
		v = v * ( 1.0f - M ) + n * M;
		break;
	}
	case 3: // loopy
	{
		float n = ParticleNoise( nType, Sum( P, Scaled( Vector( 1.244f, -1.15f, 2.37f ), ParabolicSine( v ) ) ), 0.9f, std::bit_cast<uint32_t>( 132.0f ) );
		v = v * ( 1.0f - M ) + n * M;
		break;
	}
	case 4: // contrast
	{
		float n = ParticleNoise( nType, Sum( P, Scaled( Vector( 2.93f, 2.734f, 2.13f ), 2.0f - v ) ), 0.9f, std::bit_cast<uint32_t>( 132.0f ) );
		v = v * ( 1.0f - M ) + Clamp( 2.0f * n, -1.0f, 1.0f ) * M;
		break;
	}
	case 5: // alternate
	{
		int nAlternate = nType == TYPE_WORLEY ? TYPE_SIMPLEX : TYPE_WORLEY;
		float n = ParticleNoise( nAlternate, Sum( P, Scaled( Vector( 3.393f, 3.734f, 3.313f ), v ) ), 0.97f, std::bit_cast<uint32_t>( 22.0f ) );
		v = v * ( 1.0f - M ) + ( 1.0f - ( 1.0f - v * n ) ) * M;
		break;
	}
	default: break;
	}

	v /= s_AmplitudeSums[ nOctaves - 1 ];
	switch ( shape.m_nModifier )
	{
	case 0: return 0.5f * v + 0.5f;
	case 1: // lines
	{
		float flSine = std::sin( 3.0f * pi * v );
		return flSine * flSine;
	}
	case 2: // clumps
	{
		float flAbs = std::fabs( v );
		return -0.5f + flAbs / 0.75f + flAbs / 1.5f + flAbs / 3.0f + flAbs / 6.0f;
	}
	case 3: return ( std::min( std::fabs( std::sin( pi * v ) ), 1.0f ) + 0.25f ) / 1.25f; // rings
	default: return 1.0f;
	}
}
