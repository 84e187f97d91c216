#pragma once
// The bias curves of biased randoms and biased remaps: x in 0..1 to 0..1, shaped by a
// parameter in -1..1 (0 leaves the standard and exponential curves straight).

#include "particleslib/particleinputenums.h"

float ParticleBiasCurve( ParticleFloatBiasType_t eType, float flParameter, float x );
