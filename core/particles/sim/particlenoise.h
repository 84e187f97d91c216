#pragma once
// Lattice noises, each in about -1 .. 1, and the shaped noise of noise inputs (octaves,
// turbulence, modifier). The simulation and the editor's noise preview both sample here,
// so what the preview shows is what the particles get.

#include <cstdint>

#include "core/mathlib/vector.h"

// 32-bit mixing of one value (per-particle salts and the like).
uint32_t ParticleNoiseHash( uint32_t nValue );
// The lattice hash: mixing of x + (y << 10) + (z << 20), with an optional seed mixed in half way.
uint32_t ParticleNoiseHash( int32_t x, int32_t y, int32_t z, uint32_t nSeed = 0 );

float ParticleValueNoise( const Vector &vPos );
float ParticleGradientNoise( const Vector &vPos );
float ParticleWorleyNoise( const Vector &vPos, float flJitter, uint32_t nSeed );
// The first component of the curl of three offset gradient fields.
float ParticleCurlNoise( const Vector &vPos );
inline float ParticleValueNoise( float x, float y, float z ) { return ParticleValueNoise( Vector( x, y, z ) ); }
inline float ParticleGradientNoise( float x, float y, float z ) { return ParticleGradientNoise( Vector( x, y, z ) ); }

// nType is a PFNoiseType_t: 0 value ("Perlin"), 1 gradient ("Simplex"), 2 cellular, 3 curl.
// Jitter and seed matter to the cellular kind only.
float ParticleNoise( int nType, const Vector &vPos, float flJitter = 0.9f, uint32_t nSeed = 0 );

// What shapes a noise input's value, from its fields.
struct ParticleNoiseShape_t
{
	int m_nType = 0;
	int m_nOctaves = 1; // 1 .. 4
	int m_nTurbulence = 0;
	int m_nModifier = 0;
	float m_flTurbulenceScale = 1.0f;
	float m_flTurbulenceMix = 0.5f;
	// The cellular jitter and seed, both drawn from the input's offset.
	float m_flJitter = 0.75f;
	uint32_t m_nSeed = 0;

	void SetOffset( float flNoiseOffset );
};

// The shaped noise at a position: octaves, turbulence, normalising and the modifier. The
// result is about 0 .. 1 (callers clamp).
float ParticleShapedNoise( const ParticleNoiseShape_t &shape, const Vector &vPos );
