#pragma once
// Lattice noises for noise inputs and turbulence, each in about -1 .. 1.

#include <cstdint>

uint32_t ParticleNoiseHash( uint32_t nValue );
float ParticleValueNoise( float x, float y, float z );
float ParticleGradientNoise( float x, float y, float z );
float ParticleWorleyNoise( float x, float y, float z, float flJitter, uint32_t nSeed );
// nType: 0 value, 1 gradient, 2 cellular, 3 curl (its first component).
float ParticleNoise( int nType, float x, float y, float z );
