#include "tests/particleslib/noisepreviewsupport.h"

#include <gtest/gtest.h>

#include "core/kv3transfer/kv3transferobject.h"
#include "particleslib/particlefloatinput.h"
#include "particleslib/particlenoisepreview.h"

bool BuildNoisePreviewOfKV3( const KeyValues3 &kv, int nWidth, std::vector<uint8_t> *pGrey, float *pUnit )
{
	CParticleFloatInput input;
	CUtlString error;
	if ( !LoadKV3ObjectInPlace( &input, &kv, &error ) )
	{
		ADD_FAILURE() << error.Get();
		return false;
	}
	BuildParticleNoisePreview( input, nWidth, 0.0f, pGrey );
	*pUnit = input.m_flNoiseImgPreviewScale * 0.1f;
	return true;
}

int NoisePreviewHeight()
{
	return PARTICLE_NOISE_PREVIEW_HEIGHT;
}
