#include "particleslib/particlenoisepreview.h"

#include <algorithm>
#include <cmath>

#include "core/particles/sim/particlenoise.h"
#include "particleslib/particlefloatinput.h"

ParticleNoiseShape_t GetParticleNoiseShape( const CParticleFloatInput &input )
{
	ParticleNoiseShape_t shape;
	shape.m_nType = input.m_nNoiseType;
	shape.m_nOctaves = input.m_nNoiseOctaves;
	shape.m_nTurbulence = input.m_nNoiseTurbulence;
	shape.m_nModifier = input.m_nNoiseModifier;
	shape.m_flTurbulenceScale = input.m_flNoiseTurbulenceScale;
	shape.m_flTurbulenceMix = input.m_flNoiseTurbulenceMix;
	shape.SetOffset( input.m_flNoiseOffset );
	return shape;
}

void BuildParticleNoisePreview( const CParticleFloatInput &input, int nWidth, float flTime, std::vector<uint8_t> *pGrey )
{
	nWidth = std::max( nWidth, 0 );
	pGrey->assign( static_cast<size_t>( nWidth ) * PARTICLE_NOISE_PREVIEW_HEIGHT, 0 );
	const ParticleNoiseShape_t shape = GetParticleNoiseShape( input );
	const float o = input.m_flNoiseOffset * 0.1f;
	const float flStep = input.m_flNoiseImgPreviewScale * input.m_flNoiseScale * 0.1f;
	const Vector r( input.m_vecNoiseOffsetRate.x * flTime, input.m_vecNoiseOffsetRate.y * flTime, input.m_vecNoiseOffsetRate.z * flTime );
	const float flBase = input.m_flNoiseOffset + o;
	for ( int y = 0; y < PARTICLE_NOISE_PREVIEW_HEIGHT; ++y )
	{
		for ( int x = 0; x < nWidth; ++x )
		{
			// The z rate moves the image vertically; the y rate runs through the third coordinate.
			const Vector vPos( float( x ) * flStep + r.x * 0.1f + flBase, float( y ) * flStep + r.z * 0.1f + flBase, flStep + r.y * 0.1f + flBase );
			float flGrey = std::clamp( ParticleShapedNoise( shape, vPos ), 0.0f, 1.0f ) * 255.0f;
			( *pGrey )[ static_cast<size_t>( y ) * static_cast<size_t>( nWidth ) + static_cast<size_t>( x ) ] =
				static_cast<uint8_t>( std::isnan( flGrey ) ? 0.0f : flGrey );
		}
	}
}
