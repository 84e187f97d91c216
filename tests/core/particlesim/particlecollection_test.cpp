// A collection does what its functions say over time: emission, death, children,
// control points, reproducible randomness.

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
const char *const BURST_OF_37 = R"(
	m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 37 } ]
	m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 5.0 m_fSpeedMax = 20.0 } ]
	m_Operators = [ { _class = "C_OP_BasicMovement" } ]
	m_Renderers = [ { _class = "C_OP_RenderSprites" } ]
)";

std::vector<float> Positions( const IParticleCollection &collection )
{
	ParticleDrawData_t data;
	std::vector<float> out;
	if ( !collection.GetDrawData( 0, &data ) )
		return out;
	for ( int i = 0; i < data.m_nCount; ++i )
		for ( int k = 0; k < 3; ++k )
			out.push_back( data.m_pPosition[ k ][ i ] );
	return out;
}
} // namespace

TEST( ParticleCollection, InstantaneousEmitterMakesExactlyItsCountOnce )
{
	auto pCollection = MakeCollection( CompileBody( BURST_OF_37 ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 1 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 37 );
	Step( pCollection.get(), 30 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 37 ) << "a burst must not repeat";
}

TEST( ParticleCollection, ContinuousEmitterKeepsItsRateAcrossFrameRates )
{
	const char *pBody = R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 90.0 } ]
		m_flConstantLifespan = 100.0 m_Operators = [ { _class = "C_OP_Decay" } ])";
	for ( int nFps : { 24, 60, 144 } )
	{
		auto pCollection = MakeCollection( CompileBody( pBody ) );
		Step( pCollection.get(), nFps * 2, 1.0f / float( nFps ) );
		EXPECT_NEAR( pCollection->GetActiveParticleCount( false ), 180, 1 ) << nFps << " fps";
	}
}

TEST( ParticleCollection, EmissionStopsAtTheParticleLimit )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_nMaxParticles = 10
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 50 } ])" ) );
	Step( pCollection.get(), 2 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 10 );
	EXPECT_EQ( pCollection->GetAllocatedParticleCount(), 10 );
}

TEST( ParticleCollection, DecayRemovesParticlesAtTheEndOfTheirLife )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 20 } ]
		m_Initializers = [ { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 0.5 m_fLifetimeMax = 0.5 } ]
		m_Operators = [ { _class = "C_OP_Decay" } ])" ) );
	Step( pCollection.get(), 5, 0.1f ); // born at 0.1, 0.4 old
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 20 );
	EXPECT_FALSE( pCollection->IsFinished() );
	Step( pCollection.get(), 1, 0.1f ); // 0.5 old: the end of life
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 0 );
	EXPECT_TRUE( pCollection->IsFinished() );
}

TEST( ParticleCollection, ParticlesWithoutDecayLiveOn )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 5 } ])" ) );
	Step( pCollection.get(), 120 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 5 );
	EXPECT_TRUE( pCollection->WillNotEndOnStop() );
	pCollection->StopEmission( false, false, false, false );
	Step( pCollection.get(), 120 );
	EXPECT_FALSE( pCollection->IsFinished() ) << "as it said";
}

// Whether a stop ends the tree: a system that emits needs something that ends lives;
// one that emits nothing never holds the tree up, its children may.
TEST( ParticleCollection, WillNotEndOnStopLooksForWhatEndsLivesInTheWholeTree )
{
	const char *pEmits = R"(m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 5 } ])";
	auto fnWillNotEnd = [ & ]( const std::string &body, const std::string &child = "" ) {
		std::map<std::string, std::string> children;
		std::string parent = body;
		if ( !child.empty() )
		{
			children[ "particles/child.tfxs" ] = DefinitionText( child );
			parent += R"( m_Children = [ { m_ChildRef = "particles/child.tfxs" } ])";
		}
		auto pCollection = MakeCollection( CompileBody( parent, children ) );
		EXPECT_TRUE( pCollection ) << parent;
		return pCollection && pCollection->WillNotEndOnStop();
	};
	const std::string decays = std::string( pEmits ) + R"( m_Operators = [ { _class = "C_OP_Decay" } ])";
	EXPECT_FALSE( fnWillNotEnd( decays ) );
	EXPECT_FALSE( fnWillNotEnd( std::string( pEmits ) + R"( m_Operators = [ { _class = "C_OP_FadeAndKill" } ])" ) );
	EXPECT_FALSE( fnWillNotEnd( std::string( pEmits ) + R"( m_Operators = [ { _class = "C_OP_AlphaDecay" } ])" ) );
	EXPECT_TRUE( fnWillNotEnd( std::string( pEmits ) + R"( m_Operators = [ { _class = "C_OP_BasicMovement" } ])" ) );
	EXPECT_FALSE( fnWillNotEnd( "m_nMaxParticles = 10" ) ) << "nothing emitted, nothing kept";
	EXPECT_TRUE( fnWillNotEnd( decays, pEmits ) ) << "a child that keeps its particles";
	EXPECT_TRUE( fnWillNotEnd( "m_nMaxParticles = 10", pEmits ) );
	EXPECT_FALSE( fnWillNotEnd( decays, decays ) );
}

TEST( ParticleCollection, ChildStartsAfterItsDelay )
{
	std::map<std::string, std::string> children = { { "particles/child.tfxs",
		DefinitionText( R"(m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 10 } ])" ) } };
	auto pCollection = MakeCollection( CompileBody( R"(m_Children = [ { m_ChildRef = "particles/child.tfxs" m_flDelay = 0.5 } ])", children ) );
	ASSERT_TRUE( pCollection );
	ASSERT_NE( pCollection->GetFirstChild(), nullptr );
	Step( pCollection.get(), 4, 0.1f );
	EXPECT_EQ( pCollection->GetActiveParticleCount( true ), 0 ) << "0.4 s is before the delay";
	Step( pCollection.get(), 2, 0.1f );
	EXPECT_EQ( pCollection->GetActiveParticleCount( true ), 10 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 0 );
	EXPECT_EQ( pCollection->GetFirstChild()->GetFirstRunTime(), 0.5f );
}

TEST( ParticleCollection, EndCapChildRunsOnlyWhenStoppedWithEndCap )
{
	std::map<std::string, std::string> children = { { "particles/cap.tfxs",
		DefinitionText( R"(m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 4 } ])" ) } };
	const char *pBody = R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 10.0 } ]
		m_Children = [ { m_ChildRef = "particles/cap.tfxs" m_bEndCap = true } ])";
	auto pWithCap = MakeCollection( CompileBody( pBody, children ) );
	auto pWithoutCap = MakeCollection( CompileBody( pBody, children ) );
	Step( pWithCap.get(), 30 );
	EXPECT_EQ( pWithCap->GetFirstChild()->GetActiveParticleCount( false ), 0 );

	pWithCap->StopEmission( false, false, false, true );
	pWithoutCap->StopEmission( false, false, false, false );
	int nParentCount = pWithCap->GetActiveParticleCount( false );
	Step( pWithCap.get(), 30 );
	Step( pWithoutCap.get(), 30 );
	EXPECT_EQ( pWithCap->GetFirstChild()->GetActiveParticleCount( false ), 4 );
	EXPECT_EQ( pWithoutCap->GetFirstChild()->GetActiveParticleCount( false ), 0 );
	EXPECT_EQ( pWithCap->GetActiveParticleCount( false ), nParentCount ) << "no emission after a stop";
}

TEST( ParticleCollection, StopEmissionCanRemoveAllParticlesAndRestartResumes )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 60.0 } ])" ) );
	Step( pCollection.get(), 60 );
	EXPECT_GT( pCollection->GetActiveParticleCount( false ), 50 );
	pCollection->StopEmission( false, true, false, false );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 0 );
	Step( pCollection.get(), 10 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 0 );
	pCollection->Restart( false, Vector() );
	EXPECT_EQ( pCollection->GetCurrentTime(), 0.0f );
	Step( pCollection.get(), 60 );
	EXPECT_GT( pCollection->GetActiveParticleCount( false ), 50 );
}

TEST( ParticleCollection, ControlPointMoveChangesWhereParticlesAppear )
{
	auto pDef = CompileBody( R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 60.0 } ]
		m_flConstantLifespan = 100.0
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 1.0 } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])" );
	auto pCollection = MakeCollection( pDef );
	pCollection->SetControlPoint( 0, Vector( 500.0f, -200.0f, 30.0f ) );
	Step( pCollection.get(), 10 );
	std::vector<float> before = Positions( *pCollection );
	ASSERT_EQ( before.size(), 30u );
	for ( size_t i = 0; i < before.size(); i += 3 )
	{
		EXPECT_NEAR( before[ i ], 500.0f, 1.01f );
		EXPECT_NEAR( before[ i + 1 ], -200.0f, 1.01f );
	}
	pCollection->SetControlPoint( 0, Vector( 0.0f, 0.0f, 0.0f ) );
	EXPECT_TRUE( pCollection->IsControlPointSet( 0 ) );
	Step( pCollection.get(), 10 );
	std::vector<float> after = Positions( *pCollection );
	int nNearOrigin = 0;
	for ( size_t i = 0; i < after.size(); i += 3 )
		nNearOrigin += std::fabs( after[ i ] ) <= 1.01f ? 1 : 0;
	EXPECT_EQ( nNearOrigin, 10 ) << "the newest ten are born at the moved point";
	EXPECT_TRUE( pCollection->AreBoundsValid() );
	EXPECT_LE( pCollection->GetBoundsMin().x, -1.0f );
	EXPECT_GE( pCollection->GetBoundsMax().x, 500.0f );
}

TEST( ParticleCollection, ControlPointsReachChildren )
{
	std::map<std::string, std::string> children = { { "c.tfxs", DefinitionText( "" ) } };
	auto pCollection = MakeCollection( CompileBody( R"(m_Children = [ { m_ChildRef = "c.tfxs" } ])", children ) );
	pCollection->SetControlPoint( 5, Vector( 1.0f, 2.0f, 3.0f ) );
	pCollection->SetControlPointOrientation( 5, Vector( 0, 1, 0 ), Vector( 1, 0, 0 ), Vector( 0, 0, 1 ) );
	pCollection->SetControlPointVelocity( 5, Vector( 0, 0, 9 ) );
	IParticleCollection *pChild = pCollection->GetFirstChild();
	EXPECT_EQ( pChild->GetControlPointPosition( 5 ), Vector( 1.0f, 2.0f, 3.0f ) );
	Vector vForward;
	pChild->GetControlPointOrientation( 5, &vForward, nullptr, nullptr );
	EXPECT_EQ( vForward, Vector( 0, 1, 0 ) );
	EXPECT_EQ( pChild->GetControlPointVelocity( 5 ), Vector( 0, 0, 9 ) );
	pCollection->SetControlPoint( 64, Vector( 1, 1, 1 ) );
	EXPECT_FALSE( pCollection->IsControlPointSet( 64 ) );
	EXPECT_FALSE( pCollection->IsControlPointSet( 7 ) );
}

TEST( ParticleCollection, SameSeedReplaysAndOtherSeedsDiffer )
{
	const char *pBody = R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 200.0 } ]
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 10.0 m_fSpeedMin = 5.0 m_fSpeedMax = 50.0 },
			{ _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 0.2 m_fLifetimeMax = 1.5 },
			{ _class = "C_INIT_InitFloat" m_nOutputField = 3 m_InputValue = { m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMin = 1.0 m_flRandomMax = 4.0 } } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -100.0 ] }, { _class = "C_OP_Decay" } ]
		m_ForceGenerators = [ { _class = "C_OP_TurbulenceForce" } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])";
	auto pDef = CompileBody( pBody );
	auto pA = MakeCollection( pDef, 42 );
	auto pB = MakeCollection( pDef, 42 );
	auto pC = MakeCollection( pDef, 43 );
	Step( pA.get(), 300 );
	Step( pB.get(), 300 );
	Step( pC.get(), 300 );
	EXPECT_GT( pA->GetActiveParticleCount( false ), 0 );
	EXPECT_EQ( Positions( *pA ), Positions( *pB ) );
	EXPECT_NE( Positions( *pA ), Positions( *pC ) );
}

TEST( ParticleCollection, GravityPullsAndThePlaneHolds )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 8 } ]
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 4.0 m_vecDistanceBias = [ 1.0, 1.0, 0.0 ] } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -600.0 ] } ]
		m_Constraints = [ { _class = "C_OP_PlanarConstraint" m_PlanePoint = [ 0.0, 0.0, -50.0 ] m_flBounce = 0.0 } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])" ) );
	Step( pCollection.get(), 6 );
	std::vector<float> early = Positions( *pCollection );
	for ( size_t i = 2; i < early.size(); i += 3 )
		EXPECT_LT( early[ i ], 0.0f ) << "falling";
	Step( pCollection.get(), 120 );
	for ( size_t i = 2; i < Positions( *pCollection ).size(); i += 3 )
		EXPECT_NEAR( Positions( *pCollection )[ i ], -50.0f, 0.5f ) << "resting on the plane";
}

TEST( ParticleCollection, FadesAndInterpolationsFollowAge )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_ConstantColor = [ 255, 0, 0, 255 ] m_flConstantRadius = 10.0 m_flConstantLifespan = 1.0
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 1 } ]
		m_Operators = [ { _class = "C_OP_Decay" }, { _class = "C_OP_FadeOutSimple" m_flFadeOutTime = 0.5 },
			{ _class = "C_OP_InterpolateRadius" m_flEndScale = 0.0 }, { _class = "C_OP_ColorInterpolate" m_ColorFade = [ 0, 0, 255, 255 ] } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])" ) );
	Step( pCollection.get(), 1, 0.1f ); // born at 0.1
	Step( pCollection.get(), 7, 0.1f ); // 0.7 old
	ParticleDrawData_t data;
	ASSERT_TRUE( pCollection->GetDrawData( 0, &data ) );
	ASSERT_EQ( data.m_nCount, 1 );
	EXPECT_NEAR( data.m_pAlpha[ 0 ], 0.6f, 1e-3f );
	EXPECT_NEAR( data.m_pRadius[ 0 ], 3.0f, 1e-3f );
	EXPECT_NEAR( data.m_pColor[ 0 ][ 0 ], 0.3f, 1e-3f );
	EXPECT_NEAR( data.m_pColor[ 2 ][ 0 ], 0.7f, 1e-3f );
	EXPECT_EQ( data.m_eKind, PARTICLE_RENDERER_SPRITES );
}

TEST( ParticleCollection, TrailDrawDataPointsBackAlongTheMotion )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 1 } ]
		m_Initializers = [ { _class = "C_INIT_InitVec" m_nOutputField = 2 m_InputValue = [ -10.0, 0.0, 0.0 ] },
			{ _class = "C_INIT_RandomTrailLength" m_flMinLength = 0.5 m_flMaxLength = 0.5 } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" } ]
		m_Renderers = [ { _class = "C_OP_RenderTrails" m_flMaxLength = 1000.0 } ])" ) );
	Step( pCollection.get(), 5, 0.1f ); // moving +x at 100 units a second
	ParticleDrawData_t data;
	ASSERT_TRUE( pCollection->GetDrawData( 0, &data ) );
	EXPECT_EQ( data.m_eKind, PARTICLE_RENDERER_TRAILS );
	float flSpeed = ( data.m_pPosition[ 0 ][ 0 ] - data.m_pPrevPosition[ 0 ][ 0 ] ) / 0.1f;
	ASSERT_GT( flSpeed, 0.0f );
	Vector vTail = data.GetTrailTail( 0 );
	EXPECT_NEAR( data.m_pPosition[ 0 ][ 0 ] - vTail.x, flSpeed * 0.5f, 0.01f * flSpeed ) << "half a second of motion behind";
	EXPECT_NEAR( vTail.y, data.m_pPosition[ 1 ][ 0 ], 1e-3f );
	data.m_flMaxLength = 20.0f;
	EXPECT_NEAR( data.m_pPosition[ 0 ][ 0 ] - data.GetTrailTail( 0 ).x, 20.0f, 1e-3f ) << "never longer than the maximum";
	EXPECT_FALSE( pCollection->GetDrawData( 1, &data ) );
}

TEST( ParticleCollection, NamedValuesComeFromTheDefaultConfigurationAndCanBeSet )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_NamedValueLocals = [ { m_Name = "Size" m_ValueType = "PVAL_FLOAT" m_DefaultConfig = { m_ConfigValue = 7.0 } } ]
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 1 } ]
		m_Operators = [ { _class = "C_OP_SetFloat" m_nOutputField = 3 m_InputValue = { m_nType = "PF_TYPE_NAMED_VALUE" m_NamedValue = "size" } } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])" ) );
	ParticleParamID_t size = ParticleParamID_t::Named( "Size" );
	EXPECT_EQ( pCollection->GetNamedValueFloat( size ), 7.0f );
	Step( pCollection.get(), 1 );
	ParticleDrawData_t data;
	pCollection->GetDrawData( 0, &data );
	EXPECT_EQ( data.m_pRadius[ 0 ], 7.0f );
	EXPECT_TRUE( pCollection->SetNamedValueFloat( size, 3.0f ) );
	Step( pCollection.get(), 1 );
	pCollection->GetDrawData( 0, &data );
	EXPECT_EQ( data.m_pRadius[ 0 ], 3.0f );
	EXPECT_FALSE( pCollection->SetNamedValueFloat( ParticleParamID_t::Named( "Unknown" ), 1.0f ) );
}

TEST( ParticleCollection, ProfilerFiguresAreMeasuredOnlyWhenAsked )
{
	auto pCollection = MakeCollection( CompileBody( BURST_OF_37 ) );
	Step( pCollection.get(), 2 );
	ParticleProfileStats_t stats;
	pCollection->GetProfileStats( &stats );
	EXPECT_EQ( stats.m_nCount, 0 );
	pCollection->SetMeasuring( true );
	Step( pCollection.get(), 2 );
	pCollection->GetProfileStats( &stats );
	EXPECT_EQ( stats.m_nCount, 37 );
	EXPECT_EQ( stats.m_nAllocated, 1000 );
	EXPECT_GE( stats.m_flSimulationUS, 0.0f );
}

TEST( ParticleCollection, CulledStepAgesWithoutMoving )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 3 } ]
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fSpeedMin = 100.0 m_fSpeedMax = 100.0 } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" }, { _class = "C_OP_Decay" } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])" ) );
	pCollection->SimulateCulled( 0.1f );
	std::vector<float> before = Positions( *pCollection );
	ASSERT_EQ( before.size(), 9u );
	pCollection->SimulateCulled( 0.5f );
	EXPECT_EQ( Positions( *pCollection ), before );
	pCollection->SimulateCulled( 0.5f );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 0 ) << "a second of life is over";
}

TEST( ParticleCollection, MaintainEmitterReplacesTheDead )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_MaintainEmitter" m_nParticlesToMaintain = 25 } ]
		m_Initializers = [ { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 0.1 m_fLifetimeMax = 0.3 },
			{ _class = "C_INIT_CreateWithinBox" m_vecMin = [ -1.0, -1.0, -1.0 ] m_vecMax = [ 1.0, 1.0, 1.0 ] } ]
		m_Operators = [ { _class = "C_OP_Decay" } ])" ) );
	for ( int i = 0; i < 60; ++i )
	{
		pCollection->Simulate( 1.0f / 60.0f );
		EXPECT_LE( pCollection->GetActiveParticleCount( false ), 25 );
	}
	EXPECT_GE( pCollection->GetActiveParticleCount( false ), 20 ) << "a second on, the dead are replaced";
	EXPECT_FALSE( pCollection->IsFinished() );
}

TEST( ParticleCollection, LongFramesAreSplitIntoStableSteps )
{
	const char *pBody = R"(m_flConstantLifespan = 100.0
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 4 } ]
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 3.0 m_fSpeedMin = 20.0 m_fSpeedMax = 20.0 } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -100.0 ] } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" } ])";
	auto pDef = CompileBody( pBody );
	auto pLong = MakeCollection( pDef, 9 );
	auto pShort = MakeCollection( pDef, 9 );
	pLong->Simulate( 1.0f );
	Step( pShort.get(), 10, 0.1f );
	std::vector<float> a = Positions( *pLong ), b = Positions( *pShort );
	ASSERT_EQ( a.size(), b.size() );
	for ( size_t i = 0; i < a.size(); ++i )
		EXPECT_NEAR( a[ i ], b[ i ], 1e-3f );
}

TEST( ParticleCollection, InitialParticlesAndPreSimulationStartTheSystemRunning )
{
	auto pInitial = MakeCollection( CompileBody( R"(m_nInitialParticles = 12)" ) );
	EXPECT_EQ( pInitial->GetActiveParticleCount( false ), 12 );
	auto pWarm = MakeCollection( CompileBody( R"(m_flPreSimulationTime = 1.0 m_flConstantLifespan = 100.0
		m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 30.0 } ])" ) );
	pWarm->Simulate( 1.0f / 60.0f );
	EXPECT_NEAR( pWarm->GetActiveParticleCount( false ), 30, 2 ) << "a second of emission before the first frame";
}

TEST( ParticleCollection, DetailLevelIsCappedByTheDefinition )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_nMaxDetailLevel = 1)" ) );
	EXPECT_EQ( pCollection->GetMaxDetailLevel(), 1 );
	pCollection->SetMaxDetailLevel( 3 );
	EXPECT_EQ( pCollection->GetMaxDetailLevel(), 1 );
	pCollection->SetMaxDetailLevel( 0 );
	EXPECT_EQ( pCollection->GetMaxDetailLevel(), 0 );
}
