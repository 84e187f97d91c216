#pragma once
// The noise functions behind a noise float input's preview, and the preview image itself.
// Results lie roughly in -1..1.

#include <cstdint>
#include <vector>

#include "core/mathlib/vector.h"

class CParticleFloatInput;

// The lattice hash: 32-bit mixing of x + (y << 10) + (z << 20), with an optional seed
// pattern mixed in half way.
uint32_t ParticleNoiseHash( int32_t x, int32_t y, int32_t z, uint32_t nSeed = 0 );

float ParticleValueNoise( const Vector &vPos );
float ParticleGradientNoise( const Vector &vPos );
float ParticleWorleyNoise( const Vector &vPos, float flJitter, uint32_t nSeed );
float ParticleCurlNoise( const Vector &vPos );

constexpr int PARTICLE_NOISE_PREVIEW_HEIGHT = 48;

// The grey levels (0..255, row by row, nWidth by PARTICLE_NOISE_PREVIEW_HEIGHT) of the
// preview of the input's noise at flTime seconds; the image is opaque.
void BuildParticleNoisePreview( const CParticleFloatInput &input, int nWidth, float flTime, std::vector<uint8_t> *pGrey );
