// The noise preview of the float input editor and the simulation sample the same noise:
// what a pixel shows is what a particle at that place gets.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/particles/sim/particleinputs.h"
#include "tests/core/particlesim/particlesimtestsupport.h"
#include "tests/particleslib/noisepreviewsupport.h"
#include "tests/particleslib/particleinputtestsupport.h"

TEST( ParticleNoisePreview, ThePreviewShowsWhatTheSimulationComputes )
{
	ParticleDefinitionPtr_t pDef = CompileBody( "" );
	ASSERT_TRUE( pDef );
	auto pCollection = MakeCollection( pDef );
	const char *const cases[] = {
		"",
		"m_nNoiseType = \"PF_NOISE_TYPE_SIMPLEX\" m_nNoiseOctaves = 3 m_flNoiseScale = 0.37",
		"m_nNoiseType = \"PF_NOISE_TYPE_WORLEY\" m_flNoiseOffset = 2.5 m_nNoiseModifier = \"PF_NOISE_MODIFIER_RINGS\"",
		"m_nNoiseType = \"PF_NOISE_TYPE_CURL\" m_nNoiseTurbulence = \"PF_NOISE_TURB_FEEDBACK\" m_flNoiseTurbulenceMix = 0.8",
		"m_nNoiseTurbulence = \"PF_NOISE_TURB_ALTERNATE\" m_nNoiseModifier = \"PF_NOISE_MODIFIER_CLUMPS\" m_flNoiseImgPreviewScale = 3",
	};
	for ( const char *pFields : cases )
	{
		std::string text = std::string( "{ m_nType = \"PF_TYPE_PARTICLE_NOISE\" m_nControlPoint = 1 " ) + pFields + " }";
		KeyValues3 kv = ParseKV3Body( text.c_str() );
		const int nWidth = 24;
		std::vector<uint8_t> preview;
		float flUnit = 0.0f;
		ASSERT_TRUE( BuildNoisePreviewOfKV3( kv, nWidth, &preview, &flUnit ) );
		CSimFloatInput sim;
		CUtlString error;
		ASSERT_TRUE( sim.Load( &kv, &error ) ) << error.Get();
		sim.Compile( nullptr, false );

		bool bVaries = false;
		for ( int y = 0; y < NoisePreviewHeight(); y += 5 )
		{
			for ( int x = 0; x < nWidth; x += 3 )
			{
				pCollection->SetControlPoint( 1, Vector( float( x ) * flUnit, float( y ) * flUnit, flUnit ) );
				float flGrey = sim.EvaluateCollection( *pCollection ) * 255.0f;
				int nPixel = preview[ size_t( y * nWidth + x ) ];
				// The pixel is the grey level cut to a whole number.
				EXPECT_NEAR( flGrey, float( nPixel ) + 0.5f, 0.51f ) << text << " at " << x << "," << y;
				bVaries = bVaries || nPixel != preview[ 0 ];
			}
		}
		EXPECT_TRUE( bVaries ) << text;
	}
}
