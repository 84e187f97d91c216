#pragma once
// The preview image of a noise float input: the same shaped noise the simulation samples
// (core/particles/sim/particlenoise.h), laid out over a strip of pixels.

#include <cstdint>
#include <vector>

class CParticleFloatInput;
struct ParticleNoiseShape_t;

constexpr int PARTICLE_NOISE_PREVIEW_HEIGHT = 48;

// The shape of the input's noise (kind, octaves, turbulence, modifier, cellular jitter and seed).
ParticleNoiseShape_t GetParticleNoiseShape( const CParticleFloatInput &input );

// The grey levels (0..255, row by row, nWidth by PARTICLE_NOISE_PREVIEW_HEIGHT) of the
// preview of the input's noise at flTime seconds; the image is opaque.
void BuildParticleNoisePreview( const CParticleFloatInput &input, int nWidth, float flTime, std::vector<uint8_t> *pGrey );
