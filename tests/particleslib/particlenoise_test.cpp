#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "particleslib/particlebiascurves.h"
#include "particleslib/particlefloatinput.h"
#include "core/particles/sim/particlenoise.h"
#include "particleslib/particlenoisepreview.h"

TEST( ParticleBiasCurves, StraightAtZeroAndShapedOtherwise )
{
	for ( float x : { 0.0f, 0.2f, 0.5f, 0.9f, 1.0f } )
	{
		EXPECT_FLOAT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_STANDARD, 0.0f, x ), x );
		EXPECT_FLOAT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_EXPONENTIAL, 0.0f, x ), x );
		EXPECT_FLOAT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_GAIN, 0.0f, x ), x );
	}
	// b = 0.75, k = -2/3: 0.5 / (1 - 1/3).
	EXPECT_NEAR( ParticleBiasCurve( PF_BIAS_TYPE_STANDARD, 0.5f, 0.5f ), 0.75f, 1e-6f );
	// Gain is symmetric about the middle.
	EXPECT_NEAR( ParticleBiasCurve( PF_BIAS_TYPE_GAIN, 0.5f, 0.5f ), 0.5f, 1e-6f );
	EXPECT_NEAR( ParticleBiasCurve( PF_BIAS_TYPE_GAIN, 0.5f, 0.2f ) + ParticleBiasCurve( PF_BIAS_TYPE_GAIN, 0.5f, 0.8f ), 1.0f, 1e-6f );
	EXPECT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_STANDARD, -1.0f, 0.7f ), 0.0f );
	EXPECT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_GAIN, 1.0f, 0.1f ), 1.0f );
	EXPECT_NEAR( ParticleBiasCurve( PF_BIAS_TYPE_EXPONENTIAL, -1.0f, 0.9f ), std::pow( 0.9f, 20.0f ), 1e-6f );
	EXPECT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_EXPONENTIAL, 1.0f, 0.3f ), 1.0f );
	EXPECT_EQ( ParticleBiasCurve( PF_BIAS_TYPE_EXPONENTIAL, 0.5f, 0.0f ), 0.0f );
}

TEST( ParticleNoise, ValueNoiseMatchesItsLatticeAndStaysInRange )
{
	uint32_t h = ParticleNoiseHash( 3, -2, 7 );
	float flCorner = ( float( h & 0xFFFFu ) / 65535.0f - 0.5f ) * 2.0f;
	EXPECT_NEAR( ParticleValueNoise( Vector( 3, -2, 7 ) ), flCorner, 1e-5f );
	for ( float t = -5.0f; t < 5.0f; t += 0.37f )
	{
		Vector v( t, t * 0.5f, -t );
		float flValue = ParticleValueNoise( v );
		EXPECT_GE( flValue, -1.0f );
		EXPECT_LE( flValue, 1.0f );
		// Continuous: a tiny step moves the value a little.
		EXPECT_NEAR( ParticleValueNoise( Vector( t + 1e-4f, t * 0.5f, -t ) ), flValue, 1e-2f );
		EXPECT_NEAR( ParticleGradientNoise( Vector( t + 1e-4f, t * 0.5f, -t ) ), ParticleGradientNoise( v ), 1e-2f );
	}
	// Gradient noise vanishes on the lattice.
	EXPECT_FLOAT_EQ( ParticleGradientNoise( Vector( 4, 5, -6 ) ), 0.0f );
}

TEST( ParticleNoise, WorleyDependsOnSeedAndIsZeroDistanceAtAFeature )
{
	uint32_t h = ParticleNoiseHash( 0, 0, 0, 77 );
	Vector vFeature( float( h & 0xFFu ) / 255.0f * 0.5f, float( ( h >> 8 ) & 0xFFu ) / 255.0f * 0.5f, float( ( h >> 16 ) & 0xFFu ) / 255.0f * 0.5f );
	EXPECT_NEAR( ParticleWorleyNoise( vFeature, 0.5f, 77 ), -1.0f, 1e-4f );
	EXPECT_NE( ParticleNoiseHash( 1, 2, 3, 0 ), ParticleNoiseHash( 1, 2, 3, 1 ) );
	float flCurl = ParticleCurlNoise( Vector( 0.3f, 0.4f, 0.5f ) );
	EXPECT_GE( flCurl, -1.0f );
	EXPECT_LE( flCurl, 1.0f );
	const float nan = std::numeric_limits<float>::quiet_NaN();
	EXPECT_FALSE( std::isnan( ParticleValueNoise( Vector( nan, 1e30f, -1e30f ) ) ) );
}

TEST( ParticleNoisePreview, SizeAnimationAndModifiers )
{
	CParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_NOISE;
	std::vector<uint8_t> still, later;
	BuildParticleNoisePreview( input, 64, 0.0f, &still );
	ASSERT_EQ( still.size(), size_t( 64 * PARTICLE_NOISE_PREVIEW_HEIGHT ) );
	BuildParticleNoisePreview( input, 64, 5.0f, &later );
	EXPECT_EQ( still, later ); // no offset rate: time changes nothing
	bool bVaries = false;
	for ( uint8_t nGrey : still )
		bVaries = bVaries || nGrey != still[ 0 ];
	EXPECT_TRUE( bVaries );

	input.m_vecNoiseOffsetRate = Vector( 10, 0, 0 );
	BuildParticleNoisePreview( input, 64, 5.0f, &later );
	EXPECT_NE( still, later );

	input.m_nNoiseModifier = static_cast<PFNoiseModifier_t>( 9 );
	BuildParticleNoisePreview( input, 8, 0.0f, &later );
	for ( uint8_t nGrey : later )
		EXPECT_EQ( nGrey, 255 );

	for ( int nTurbulence = PF_NOISE_TURB_NONE; nTurbulence <= PF_NOISE_TURB_ALTERNATE; ++nTurbulence )
		for ( int nType = PF_NOISE_TYPE_PERLIN; nType <= PF_NOISE_TYPE_CURL; ++nType )
		{
			input.m_nNoiseTurbulence = static_cast<PFNoiseTurbulence_t>( nTurbulence );
			input.m_nNoiseType = static_cast<PFNoiseType_t>( nType );
			input.m_nNoiseModifier = PF_NOISE_MODIFIER_RINGS;
			input.SetNoiseOctaves( 4 );
			BuildParticleNoisePreview( input, 16, 1.0f, &later );
			EXPECT_EQ( later.size(), size_t( 16 * PARTICLE_NOISE_PREVIEW_HEIGHT ) );
		}
	BuildParticleNoisePreview( input, 0, 0.0f, &later );
	EXPECT_TRUE( later.empty() );
}

