// Results worked out by hand: motion, drag, lifetimes and children behave the same at
// every frame rate and wherever the system stands.

#include <gtest/gtest.h>

#include <cmath>

#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
// One particle born at the control point, moving along x at the given speed.
std::string MoverBody( float flSpeed, const char *pMovement )
{
	char szSpeed[ 32 ];
	snprintf( szSpeed, sizeof( szSpeed ), "%g", double( flSpeed ) );
	return std::string( R"(m_flConstantRadius = 0.0 m_flConstantLifespan = 100.0
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 1 } ]
		m_Initializers = [ { _class = "C_INIT_InitialVelocityNoise" m_vecOutputMin = [ )" ) +
		   szSpeed + ", 0.0, 0.0 ] m_vecOutputMax = [ " + szSpeed + ", 0.0, 0.0 ] } ]\n m_Operators = [ " + pMovement + " ]";
}

float ParticleX( const CParticleCollection &collection )
{
	return collection.Count() > 0 ? collection.Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ 0 ] : NAN;
}

class ParticleFrameRate : public testing::TestWithParam<int>
{
};
} // namespace

// Drag 0.5 halves the speed each second: 100 units/s travel 100 (1 - 0.5^5) / ln 2 in 5 s.
TEST_P( ParticleFrameRate, DragTakesItsShareOfSpeedPerSecondNotPerStep )
{
	const int nFps = GetParam();
	auto pCollection = MakeCollection( CompileBody( "m_nBehaviorVersion = 12\n" + MoverBody( 100.0f, R"({ _class = "C_OP_BasicMovement" m_fDrag = 0.5 })" ) ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), nFps, 1.0f / float( nFps ) );
	float flSpeedAfterOneSecond = ( ParticleX( *pCollection ) - pCollection->Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 0 )[ 0 ] ) / pCollection->GetPreviousDt();
	EXPECT_NEAR( flSpeedAfterOneSecond, 50.0f, 1.0f ) << nFps << " fps";
	Step( pCollection.get(), 4 * nFps, 1.0f / float( nFps ) );
	const double flExpected = 100.0 * ( 1.0 - std::pow( 0.5, 5.0 ) ) / std::log( 2.0 );
	EXPECT_NEAR( ParticleX( *pCollection ), flExpected, 0.015 * flExpected ) << nFps << " fps";
}

// A file made before drag went per second (behaviour version 11) keeps the drag it was
// tuned with until it is upgraded: the share goes in every step.
TEST_P( ParticleFrameRate, DragOfAnOlderFileTakesItsSharePerStep )
{
	const int nFps = GetParam();
	for ( const char *pVersion : { "", "m_nBehaviorVersion = 10\n" } )
	{
		auto pCollection = MakeCollection( CompileBody( pVersion + MoverBody( 100.0f, R"({ _class = "C_OP_BasicMovement" m_fDrag = 0.1 })" ) ) );
		ASSERT_TRUE( pCollection );
		Step( pCollection.get(), nFps, 1.0f / float( nFps ) );
		const float flSpeed = ( ParticleX( *pCollection ) - pCollection->Stream( PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, 0 )[ 0 ] ) / pCollection->GetPreviousDt();
		EXPECT_NEAR( flSpeed, 100.0 * std::pow( 0.9, double( nFps ) ), 0.02 * 100.0 * std::pow( 0.9, double( nFps ) ) + 1e-4 ) << nFps << " fps, '" << pVersion << "'";
	}
}

// Gravity alone lands where s = g t^2 / 2 says, at every rate.
TEST_P( ParticleFrameRate, GravityMovesTheSameDistanceAtEveryRate )
{
	const int nFps = GetParam();
	auto pCollection = MakeCollection( CompileBody( MoverBody( 0.0f, R"({ _class = "C_OP_BasicMovement" m_Gravity = [ -100.0, 0.0, 0.0 ] })" ) ) );
	Step( pCollection.get(), 2 * nFps, 1.0f / float( nFps ) );
	EXPECT_NEAR( ParticleX( *pCollection ), -200.0f, 200.0f * 0.02f ) << nFps << " fps";
}

// A count kept with a half-second life: a whole generation dies on one frame, and the
// refill of that same frame replaces it.
TEST_P( ParticleFrameRate, AMaintainedCountNeverDrops )
{
	const int nFps = GetParam();
	auto pCollection = MakeCollection( CompileBody( R"(m_flConstantLifespan = 0.5
		m_Emitters = [ { _class = "C_OP_MaintainEmitter" m_nParticlesToMaintain = 12 } ]
		m_Operators = [ { _class = "C_OP_Decay" } ])" ) );
	ASSERT_TRUE( pCollection );
	for ( int nFrame = 1; nFrame <= 4 * nFps; ++nFrame )
	{
		pCollection->Simulate( 1.0f / float( nFps ) );
		ASSERT_EQ( pCollection->GetActiveParticleCount( false ), 12 ) << "frame " << nFrame << " at " << nFps << " fps";
	}
}

TEST_P( ParticleFrameRate, AFadeAndKillCountIsKeptToo )
{
	const int nFps = GetParam();
	auto pCollection = MakeCollection( CompileBody( R"(m_flConstantLifespan = 0.5
		m_Emitters = [ { _class = "C_OP_MaintainEmitter" m_nParticlesToMaintain = 12 } ]
		m_Operators = [ { _class = "C_OP_FadeAndKill" } ])" ) );
	for ( int nFrame = 1; nFrame <= 2 * nFps; ++nFrame )
	{
		pCollection->Simulate( 1.0f / float( nFps ) );
		ASSERT_EQ( pCollection->GetActiveParticleCount( false ), 12 ) << "frame " << nFrame << " at " << nFps << " fps";
	}
}

INSTANTIATE_TEST_SUITE_P( Rates, ParticleFrameRate, testing::Values( 30, 60, 120 ), []( const testing::TestParamInfo<int> &info ) { return std::to_string( info.param ) + "fps"; } );

namespace
{
class ParticleFarFromOrigin : public testing::TestWithParam<float>
{
};
} // namespace

// The child starts a hair after the parent's frame at 0.5 s, so its first step is tiny;
// its particle must still move 250 units in the second after.
TEST_P( ParticleFarFromOrigin, ADelayedChildMovesAtItsSpeed )
{
	const float flX = GetParam();
	std::map<std::string, std::string> children = { { "particles/mover.tfxs", DefinitionText( MoverBody( 250.0f, R"({ _class = "C_OP_BasicMovement" })" ) ) } };
	auto pCollection = MakeCollection( CompileBody( R"(m_Children = [ { m_ChildRef = "particles/mover.tfxs" m_flDelay = 0.5 } ])", children ) );
	ASSERT_TRUE( pCollection );
	pCollection->SetControlPoint( 0, Vector( flX, 0.0f, 0.0f ) );
	Step( pCollection.get(), 90 );
	const CParticleCollection *pChild = static_cast<const CParticleCollection *>( pCollection->GetFirstChild() );
	ASSERT_EQ( pChild->Count(), 1 );
	EXPECT_NEAR( ParticleX( *pChild ) - flX, 250.0f, 250.0f * 0.002f ) << "at x = " << flX;
}

INSTANTIATE_TEST_SUITE_P( Places, ParticleFarFromOrigin, testing::Values( 0.0f, 100.0f, 1000.0f, 10000.0f ) );

TEST( ParticleTime, TenMinutesAtSixtyFramesAreTenMinutes )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 1.0 } ])" ) );
	Step( pCollection.get(), 600 * 60 );
	EXPECT_NEAR( pCollection->GetCurrentTime(), 600.0f, 1e-3f );
	// One particle a second, every second: none lost or gained to drift.
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 600 );
}
