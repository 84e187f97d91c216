#include "core/particles/sim/particlenoise.h"

#include <cmath>

namespace
{
inline uint32_t RotateLeft( uint32_t v, int n )
{
	return ( v << n ) | ( v >> ( 32 - n ) );
}

inline uint32_t CellHash( int x, int y, int z )
{
	return ParticleNoiseHash( uint32_t( x ) + ( uint32_t( y ) << 10 ) + ( uint32_t( z ) << 20 ) );
}

inline float Fade( float t )
{
	return t * t * t * ( t * ( t * 6.0f - 15.0f ) + 10.0f );
}

inline float Lerp( float a, float b, float t )
{
	return a + ( b - a ) * t;
}

// The twelve edge directions of a cube, picked by the low four bits.
inline float Gradient( uint32_t nHash, float x, float y, float z )
{
	int h = int( nHash & 15 );
	float u = h < 8 ? x : y;
	float v = h < 4 ? y : ( h == 12 || h == 14 ? x : z );
	return ( ( h & 1 ) ? -u : u ) + ( ( h & 2 ) ? -v : v );
}
} // namespace

uint32_t ParticleNoiseHash( uint32_t nValue )
{
	uint32_t k = nValue * 0x4C9E2D51u;
	k = RotateLeft( k, 15 );
	k *= 0x1B873593u;
	k = RotateLeft( k, 13 );
	k *= 0x04B2AE35u;
	return k ^ ( k >> 16 );
}

float ParticleValueNoise( float x, float y, float z )
{
	float fx = std::floor( x ), fy = std::floor( y ), fz = std::floor( z );
	int ix = int( fx ), iy = int( fy ), iz = int( fz );
	float tx = x - fx, ty = y - fy, tz = z - fz;
	auto corner = [ & ]( int dx, int dy, int dz ) { return float( CellHash( ix + dx, iy + dy, iz + dz ) & 0xFFFF ) * ( 1.0f / 65535.0f ); };
	float v = Lerp( Lerp( Lerp( corner( 0, 0, 0 ), corner( 1, 0, 0 ), tx ), Lerp( corner( 0, 1, 0 ), corner( 1, 1, 0 ), tx ), ty ),
		Lerp( Lerp( corner( 0, 0, 1 ), corner( 1, 0, 1 ), tx ), Lerp( corner( 0, 1, 1 ), corner( 1, 1, 1 ), tx ), ty ), tz );
	return ( v - 0.5f ) * 2.0f;
}

float ParticleGradientNoise( float x, float y, float z )
{
	float fx = std::floor( x ), fy = std::floor( y ), fz = std::floor( z );
	int ix = int( fx ), iy = int( fy ), iz = int( fz );
	float tx = x - fx, ty = y - fy, tz = z - fz;
	float u = Fade( tx ), v = Fade( ty ), w = Fade( tz );
	auto g = [ & ]( int dx, int dy, int dz ) { return Gradient( CellHash( ix + dx, iy + dy, iz + dz ), tx - float( dx ), ty - float( dy ), tz - float( dz ) ); };
	return Lerp( Lerp( Lerp( g( 0, 0, 0 ), g( 1, 0, 0 ), u ), Lerp( g( 0, 1, 0 ), g( 1, 1, 0 ), u ), v ),
		Lerp( Lerp( g( 0, 0, 1 ), g( 1, 0, 1 ), u ), Lerp( g( 0, 1, 1 ), g( 1, 1, 1 ), u ), v ), w );
}

float ParticleWorleyNoise( float x, float y, float z, float flJitter, uint32_t nSeed )
{
	int ix = int( std::floor( x ) ), iy = int( std::floor( y ) ), iz = int( std::floor( z ) );
	float flBest = 1e30f;
	for ( int dz = -1; dz <= 1; ++dz )
		for ( int dy = -1; dy <= 1; ++dy )
			for ( int dx = -1; dx <= 1; ++dx )
			{
				uint32_t h = ParticleNoiseHash( ( uint32_t( ix + dx ) + ( uint32_t( iy + dy ) << 10 ) + ( uint32_t( iz + dz ) << 20 ) ) ^ nSeed );
				float px = float( ix + dx ) + float( h & 255 ) / 255.0f * flJitter;
				float py = float( iy + dy ) + float( ( h >> 8 ) & 255 ) / 255.0f * flJitter;
				float pz = float( iz + dz ) + float( ( h >> 16 ) & 255 ) / 255.0f * flJitter;
				float d = ( px - x ) * ( px - x ) + ( py - y ) * ( py - y ) + ( pz - z ) * ( pz - z );
				flBest = d < flBest ? d : flBest;
			}
	float flClamped = flBest < 0.0f ? 0.0f : ( flBest > 1.0f ? 1.0f : flBest );
	return flClamped * 2.0f - 1.0f;
}

float ParticleNoise( int nType, float x, float y, float z )
{
	switch ( nType )
	{
	case 1:
		return ParticleGradientNoise( x, y, z );
	case 2:
		return ParticleWorleyNoise( x, y, z, 0.9f, 0 );
	case 3:
	{
		// The curl's first component: the difference of two offset fields' slopes.
		const float e = 0.01f;
		float a = ParticleGradientNoise( x + 43.256f, y + e - 67.89f, z + 1338.2f ) - ParticleGradientNoise( x + 43.256f, y - e - 67.89f, z + 1338.2f );
		float b = ParticleGradientNoise( x - 86.6f, y - 1035.12f, z + e + 3677.18f ) - ParticleGradientNoise( x - 86.6f, y - 1035.12f, z - e + 3677.18f );
		return ( a - b ) / ( 2.0f * e ) * 0.25f;
	}
	default:
		return ParticleValueNoise( x, y, z );
	}
}
