// The manager of live effects: the frame's step, the queue of commands, removal after the
// frame, cost order, the thread pool, the count report, creation with its fallback and
// aggregation, control point limits, retirement and replacement.

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "core/console/concommand.h"
#include "core/logging/logging.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/platform/dbgassert.h"
#include "particleslib/particleeffect.h"
#include "particleslib/particlemgr.h"
#include "particlemgrtestsupport.h"

namespace
{
// Collects what the general channel says.
class CCaptureLog final : public ILoggingListener
{
public:
	CCaptureLog() { LoggingSystem_AddListener( this ); }
	~CCaptureLog() { LoggingSystem_RemoveListener( this ); }
	void Log( const LoggingContext_t &, const char *pMessage ) override { m_Text += pMessage; }
	std::string m_Text;
};

std::vector<std::string> s_Asserts;
bool CountAssert( const char *, int, const char *, const char *pMessage )
{
	s_Asserts.push_back( pMessage ? pMessage : "" );
	return false;
}

class ParticleMgrTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		SetParticleSystemMgr( HostParticleSystemMgrRuntime() );
		m_ConVars.Set( "r_threaded_particles", "0" );
		m_Mgr.Init( &m_Host );
		s_Asserts.clear();
		m_pPreviousAssert = SetAssertHandler( CountAssert );
	}
	void TearDown() override
	{
		SetAssertHandler( m_pPreviousAssert );
		m_pProperty.reset();
		m_Mgr.Shutdown();
		HostParticleSystemMgrRuntime()->SetDefinitionFinder( nullptr );
	}
	// One frame as the tool scene runs it.
	void Frame( float flDt )
	{
		m_Mgr.Simulate( flDt, 1.0f, false );
		m_Mgr.PostUpdate();
	}
	CNewParticleEffect *Create( const ParticleDefinitionPtr_t &pDefinition, ParticleAttachment_t nAttach = PATTACH_ABSORIGIN_FOLLOW )
	{
		return m_pProperty->Create( pDefinition, nAttach );
	}

	CScopedConVars m_ConVars;
	CFakeLibHost m_Host;
	CParticleMgr m_Mgr;
	CFakePropertyOuter m_Outer;
	std::unique_ptr<CParticleProperty> m_pProperty = std::make_unique<CParticleProperty>( &m_Mgr, &m_Outer );
	AssertHandlerFn_t m_pPreviousAssert = nullptr;
};
} // namespace

TEST_F( ParticleMgrTest, ConsoleVariablesAndCommandsAreRegistered )
{
	for ( const char *pName : { "cl_particle_simulate", "r_freezeparticles", "r_particle_timescale", "cl_particle_max_count", "cl_particle_retire_cost",
			  "r_threaded_particles", "r_limit_particle_job_duration", "cl_particle_fallback_base", "cl_particle_fallback_multiplier",
			  "cl_particle_sim_fallback_base_multiplier", "cl_particle_sim_fallback_threshold_ms", "cl_aggregate_particles", "cl_particle_batch_mode" } )
		EXPECT_NE( ConsoleRegistry().FindVar( pName ), nullptr ) << pName;
	Create( CompileNamedDefinition( "particles/dump_me.tfxs", ContinuousBody() ) );
	Frame( 0.05f );
	CCaptureLog log;
	ASSERT_TRUE( ConsoleRegistry().Execute( "cl_particles_dumplist dump_me" ) );
	EXPECT_NE( log.m_Text.find( "particles/dump_me.tfxs" ), std::string::npos ) << log.m_Text;
	EXPECT_NE( ConsoleRegistry().FindCommand( "cl_particles_dumpsimlist" ), nullptr );
}

// The step of a frame: at most a tenth of the frame time's scale, then the time scale.
struct StepCase_t
{
	float m_flFrame;
	const char *m_pTimeScale;
	float m_flExpectedAge;
};

class ParticleMgrStepTest : public ParticleMgrTest, public ::testing::WithParamInterface<StepCase_t>
{
};

TEST_P( ParticleMgrStepTest, CollectionAgesByTheFramesStep )
{
	const StepCase_t &c = GetParam();
	m_ConVars.Set( "r_particle_timescale", c.m_pTimeScale );
	CNewParticleEffect *pEffect = Create( CompileNamedDefinition( "particles/step.tfxs", ContinuousBody() ) );
	ASSERT_NE( pEffect, nullptr );
	m_Host.m_AttachmentOrder.clear();
	Frame( c.m_flFrame );
	EXPECT_FLOAT_EQ( pEffect->m_pParticles->GetCurrentTime(), c.m_flExpectedAge );
	EXPECT_FLOAT_EQ( m_Mgr.GetFrameStep(), c.m_flExpectedAge );
	// Listed and updated even when the step is 0: its control point 0 was asked for.
	EXPECT_FALSE( m_Host.m_AttachmentOrder.empty() );
}

std::string StepCaseName( const ::testing::TestParamInfo<StepCase_t> &info )
{
	static const char *const s_Names[] = { "LongFrameAtMostATenth", "ShortFrame", "HalfTimeScale", "ZeroTimeScale" };
	return s_Names[ info.index ];
}

INSTANTIATE_TEST_SUITE_P( Frames, ParticleMgrStepTest,
	::testing::Values( StepCase_t{ 0.5f, "1", 0.1f }, StepCase_t{ 0.05f, "1", 0.05f }, StepCase_t{ 0.05f, "0.5", 0.025f }, StepCase_t{ 0.05f, "0", 0.0f } ), StepCaseName );

TEST_F( ParticleMgrTest, FrozenParticlesDontStep )
{
	CNewParticleEffect *pEffect = Create( CompileNamedDefinition( "particles/frozen.tfxs", ContinuousBody() ) );
	Frame( 0.05f );
	m_ConVars.Set( "r_freezeparticles", "1" );
	Frame( 0.05f );
	EXPECT_FLOAT_EQ( pEffect->m_pParticles->GetCurrentTime(), 0.05f );
	m_ConVars.Set( "cl_particle_simulate", "0" );
	m_ConVars.Set( "r_freezeparticles", "0" );
	Frame( 0.05f );
	EXPECT_FLOAT_EQ( pEffect->m_pParticles->GetCurrentTime(), 0.05f );
}

TEST_F( ParticleMgrTest, QueuedCommandsRunInOrderInsideTheNextStep )
{
	CNewParticleEffect *pEffect = Create( CompileNamedDefinition( "particles/queue.tfxs", ContinuousBody() ) );
	for ( int i = 0; i < 10; ++i )
		Frame( 0.05f );
	const int nBefore = pEffect->m_pParticles->GetActiveParticleCount( false );
	ASSERT_GT( nBefore, 0 );
	// Nothing happens at the call: the next step runs them.
	pEffect->StopEmission( false, true, false, false );
	pEffect->Restart();
	EXPECT_EQ( pEffect->m_pParticles->GetActiveParticleCount( false ), nBefore );
	EXPECT_FLOAT_EQ( pEffect->m_pParticles->GetCurrentTime(), 0.5f );
	Frame( 0.05f );
	// The stop removed every particle, then the restart started the clock again and
	// emission went on: the system emits as a new one.
	EXPECT_FLOAT_EQ( pEffect->m_pParticles->GetCurrentTime(), 0.05f );
	EXPECT_LT( pEffect->m_pParticles->GetActiveParticleCount( false ), nBefore );
	EXPECT_FALSE( pEffect->m_pParticles->IsFinished() );
}

TEST_F( ParticleMgrTest, FinishedEffectsGoOnlyAfterTheFrameUnlessKept )
{
	ParticleDefinitionPtr_t pBurst = CompileNamedDefinition( "particles/burst.tfxs", BurstBody() );
	CNewParticleEffect *pGoes = Create( pBurst );
	CNewParticleEffect *pStays = Create( pBurst );
	pStays->m_bDontRemove = true;
	CParticleEffectHandle handle( pGoes );
	for ( int i = 0; i < 20 && !pGoes->m_bRemove; ++i )
	{
		m_Mgr.Simulate( 0.05f, 1.0f, false );
		if ( !pGoes->m_bRemove )
			m_Mgr.PostUpdate();
	}
	// Marked in the step, still linked until PostUpdate.
	ASSERT_TRUE( pGoes->m_bRemove );
	EXPECT_EQ( m_Mgr.GetEffectCount(), 2 );
	m_Mgr.PostUpdate();
	EXPECT_EQ( m_Mgr.GetEffectCount(), 1 );
	EXPECT_EQ( m_Mgr.GetFirstEffect(), pStays );
	EXPECT_FALSE( handle );
	EXPECT_EQ( m_pProperty->GetEffectCount(), 1 );
	EXPECT_EQ( m_Outer.m_RemovedIndices.size(), 1u );
	EXPECT_TRUE( pStays->IsFinished() );
}

TEST_F( ParticleMgrTest, DearestEffectsStepFirstAndCostsAverage )
{
	ParticleDefinitionPtr_t pDefinition = CompileNamedDefinition( "particles/cost.tfxs", ContinuousBody() );
	CFakeParticleEntity owners[ 3 ];
	CNewParticleEffect *pEffects[ 3 ];
	for ( int i = 0; i < 3; ++i )
	{
		pEffects[ i ] = Create( pDefinition );
		m_pProperty->AddControlPoint( pEffects[ i ], 0, &owners[ i ], PATTACH_ABSORIGIN_FOLLOW );
	}
	Frame( 0.02f );
	for ( CNewParticleEffect *pEffect : pEffects )
		EXPECT_GT( pEffect->m_nSimCostTicks, 0 );
	pEffects[ 0 ]->m_nSimCostTicks = 300;
	pEffects[ 1 ]->m_nSimCostTicks = 1000000000;
	pEffects[ 2 ]->m_nSimCostTicks = 900000000;
	m_Host.m_AttachmentOrder.clear();
	Frame( 0.02f );
	ASSERT_EQ( m_Host.m_AttachmentOrder.size(), 3u );
	EXPECT_EQ( m_Host.m_AttachmentOrder[ 0 ], &owners[ 1 ] );
	EXPECT_EQ( m_Host.m_AttachmentOrder[ 1 ], &owners[ 2 ] );
	EXPECT_EQ( m_Host.m_AttachmentOrder[ 2 ], &owners[ 0 ] );
	// The average takes a sixteenth of the new measure: a huge cost falls only slowly.
	EXPECT_GT( pEffects[ 1 ]->m_nSimCostTicks, 1000000000 / 16 * 15 - 1 );
}

class ParticleMgrThreadTest : public ParticleMgrTest, public ::testing::WithParamInterface<const char *>
{
};

TEST_P( ParticleMgrThreadTest, EveryEffectStepsExactlyOnceOnThePool )
{
	m_ConVars.Set( "r_threaded_particles", "1" );
	m_ConVars.Set( "r_limit_particle_job_duration", GetParam() );
	ParticleDefinitionPtr_t pDefinition = CompileNamedDefinition( "particles/threads.tfxs", ContinuousBody() );
	std::vector<CNewParticleEffect *> effects;
	for ( int i = 0; i < 40; ++i )
		effects.push_back( Create( pDefinition ) );
	for ( int i = 0; i < 4; ++i )
		Frame( 0.025f );
	for ( CNewParticleEffect *pEffect : effects )
		EXPECT_FLOAT_EQ( pEffect->m_pParticles->GetCurrentTime(), 0.1f );
}

INSTANTIATE_TEST_SUITE_P( JobKinds, ParticleMgrThreadTest, ::testing::Values( "0", "1" ) );

TEST_F( ParticleMgrTest, TooManySystemsAreReportedOnceWhenTheLimitIsReached )
{
	Create( CompileNamedDefinition( "particles/many_a.tfxs", ContinuousBody() ) );
	Create( CompileNamedDefinition( "particles/many_a.tfxs", ContinuousBody() ) );
	Create( CompileNamedDefinition( "particles/many_b.tfxs", "m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 0.0 } ]" ) );
	{
		CCaptureLog log;
		Frame( 0.05f );
		EXPECT_EQ( log.m_Text.find( "Too many" ), std::string::npos ) << "no limit by default";
	}
	m_ConVars.Set( "cl_particle_max_count", "3" );
	CCaptureLog log;
	Frame( 0.05f );
	Frame( 0.05f );
	size_t nFirst = log.m_Text.find( "Too many simultaneously active particle systems!\n" );
	ASSERT_NE( nFirst, std::string::npos ) << log.m_Text;
	EXPECT_EQ( log.m_Text.find( "Too many", nFirst + 1 ), std::string::npos ) << "once while it stays over";
	EXPECT_NE( log.m_Text.find( "Name\t\t\t\t\tCount\t\tParticle Count\n" ), std::string::npos );
	// Grouped by name, most particles first.
	size_t nA = log.m_Text.find( "particles/many_a.tfxs\t\t    2" );
	size_t nB = log.m_Text.find( "particles/many_b.tfxs\t\t    1" );
	ASSERT_NE( nA, std::string::npos ) << log.m_Text;
	ASSERT_NE( nB, std::string::npos ) << log.m_Text;
	EXPECT_LT( nA, nB );
}

TEST_F( ParticleMgrTest, MissingDefinitionRunsTheErrorSystem )
{
	ParticleDefinitionPtr_t pError = CompileNamedDefinition( "particles/error/error.tfxs", ContinuousBody() );
	std::string asked;
	HostParticleSystemMgrRuntime()->SetDefinitionFinder( [ & ]( const char *pName, CUtlString * ) {
		asked = pName;
		return pError;
	} );
	ParticleEffectCreateParams_t params;
	params.m_pName = "particles/gone.tfxs";
	CNewParticleEffect *pEffect = m_pProperty->Create( params );
	ASSERT_NE( pEffect, nullptr );
	EXPECT_EQ( pEffect->GetDefinition(), pError );
	EXPECT_EQ( asked, "particles/error/error.tfxs" );
	ASSERT_EQ( m_Host.m_UnknownSystems.size(), 1u );
	EXPECT_EQ( m_Host.m_UnknownSystems[ 0 ], "particles/gone.tfxs" );
}

TEST_F( ParticleMgrTest, MissingDefinitionAndMissingErrorSystemStopTheProcess )
{
	HostParticleSystemMgrRuntime()->SetDefinitionFinder( []( const char *, CUtlString *pError ) {
		pError->Set( "not here" );
		return ParticleDefinitionPtr_t();
	} );
	ParticleEffectCreateParams_t params;
	params.m_pName = "particles/gone.tfxs";
	GTEST_FLAG_SET( death_test_style, "threadsafe" );
	EXPECT_DEATH( m_pProperty->Create( params ), "Failed to create unknown particle system 'particles/gone.tfxs', and failed to create error particle system" );
}

TEST_F( ParticleMgrTest, ControlPointNumbersAboveTheLimitReportOnceAndChangeNothing )
{
	CNewParticleEffect *pEffect = Create( CompileNamedDefinition( "particles/points.tfxs", ContinuousBody() ) );
	CFakeParticleEntity target( Vector( 5, 6, 7 ) );
	m_pProperty->AddControlPoint( pEffect, 63, &target, PATTACH_ABSORIGIN_FOLLOW );
	EXPECT_TRUE( pEffect->m_pParticles->IsControlPointSet( 63 ) );
	EXPECT_EQ( pEffect->m_pParticles->GetControlPointPosition( 63 ), Vector( 5, 6, 7 ) );
	EXPECT_TRUE( s_Asserts.empty() );
	const size_t nRecords = m_pProperty->GetEntry( 0 ).m_ControlPoints.size();
	m_pProperty->AddControlPoint( pEffect, 64, &target, PATTACH_ABSORIGIN_FOLLOW );
	m_pProperty->AddControlPoint( pEffect, 64, &target, PATTACH_ABSORIGIN_FOLLOW );
	m_pProperty->SetControlPoint( 0, 70, &target, PATTACH_ABSORIGIN_FOLLOW );
	ASSERT_EQ( s_Asserts.size(), 2u ) << "one report per failing call site";
	EXPECT_EQ( s_Asserts[ 0 ], "CParticleProperty::AddControlPoint: Out of range control point 64 in particles/points.tfxs" );
	EXPECT_EQ( s_Asserts[ 1 ], "CParticleProperty::SetControlPoint: Out of range control point 70 in particles/points.tfxs" );
	EXPECT_EQ( m_pProperty->GetEntry( 0 ).m_ControlPoints.size(), nRecords );
	m_pProperty->SetControlPoint( 3, 1, &target, PATTACH_ABSORIGIN_FOLLOW );
	ASSERT_EQ( s_Asserts.size(), 3u );
	EXPECT_EQ( s_Asserts[ 2 ], "CParticleProperty::SetControlPoint: Out of range effect index 3 (count = 1) when setting control point" );
}

TEST_F( ParticleMgrTest, FollowingControlPointsTrackTheirEntityEveryStep )
{
	CNewParticleEffect *pEffect = Create( CompileNamedDefinition( "particles/follow.tfxs", ContinuousBody() ) );
	CFakeParticleEntity target( Vector( 1, 2, 3 ) );
	m_pProperty->AddControlPoint( pEffect, 2, &target, PATTACH_ABSORIGIN_FOLLOW, false, 0, Vector( 0, 0, 10 ) );
	EXPECT_EQ( pEffect->m_pParticles->GetControlPointPosition( 2 ), Vector( 1, 2, 13 ) );
	target.m_vOrigin = Vector( 4, 4, 4 );
	Frame( 0.02f );
	EXPECT_EQ( pEffect->m_pParticles->GetControlPointPosition( 2 ), Vector( 4, 4, 14 ) );
	m_pProperty->RemoveControlPoint( pEffect, 2 );
	target.m_vOrigin = Vector( 9, 9, 9 );
	Frame( 0.02f );
	EXPECT_EQ( pEffect->m_pParticles->GetControlPointPosition( 2 ), Vector( 0, 0, 0 ) ) << "a removed point goes to the world origin";
}

TEST_F( ParticleMgrTest, NearbyEffectsOfOneDefinitionAggregate )
{
	std::string body = std::string( ContinuousBody() ) + "\nm_flAggregateRadius = 50.0";
	ParticleDefinitionPtr_t pDefinition = CompileNamedDefinition( "particles/aggregate.tfxs", body );
	ParticleEffectCreateParams_t params;
	params.m_pDefinition = pDefinition;
	params.m_nAttachType = PATTACH_WORLDORIGIN;
	params.m_vAggregationPosition = Vector( 0, 0, 0 );
	CNewParticleEffect *pFirst = m_pProperty->Create( params );
	ASSERT_NE( pFirst, nullptr );
	params.m_vAggregationPosition = Vector( 30, 0, 0 );
	EXPECT_EQ( m_pProperty->Create( params ), pFirst );
	EXPECT_TRUE( m_pProperty->GetEntry( 0 ).m_bAggregated );
	EXPECT_EQ( pFirst->m_vecAggregationCenter, Vector( 30, 0, 0 ) );
	EXPECT_TRUE( pFirst->HasQueuedCommands() ) << "the aggregate restart waits for the step";
	params.m_vAggregationPosition = Vector( 200, 0, 0 );
	CNewParticleEffect *pFar = m_pProperty->Create( params );
	EXPECT_NE( pFar, pFirst );
	m_ConVars.Set( "cl_aggregate_particles", "0" );
	params.m_vAggregationPosition = Vector( 200, 1, 0 );
	EXPECT_NE( m_pProperty->Create( params ), pFar );
	EXPECT_EQ( m_pProperty->GetEffectCount(), 3 );
}

TEST_F( ParticleMgrTest, BatchedSystemsRestartInsteadOfRunningTwice )
{
	ParticleDefinitionPtr_t pDefinition = CompileNamedDefinition( "particles/batch.tfxs", ContinuousBody() );
	m_ConVars.Set( "cl_particle_batch_mode", "2" );
	CNewParticleEffect *pFirst = Create( pDefinition, PATTACH_CUSTOMORIGIN );
	EXPECT_EQ( Create( pDefinition, PATTACH_CUSTOMORIGIN ), pFirst );
	EXPECT_NE( Create( pDefinition, PATTACH_ABSORIGIN_FOLLOW ), pFirst ) << "only custom origins batch";
	m_ConVars.Set( "cl_particle_batch_mode", "1" );
	EXPECT_NE( Create( pDefinition, PATTACH_CUSTOMORIGIN ), pFirst ) << "mode 1 batches only definitions that ask";
}

TEST_F( ParticleMgrTest, ReplaceWithCarriesControlPointsHandlesAndTheEntry )
{
	CNewParticleEffect *pOld = Create( CompileNamedDefinition( "particles/old.tfxs", ContinuousBody() ) );
	pOld->SetControlPoint( 5, Vector( 1, 2, 3 ) );
	CParticleEffectHandle handle( pOld );
	ParticleDefinitionPtr_t pFallback = CompileNamedDefinition( "particles/fallback.tfxs", BurstBody() );
	CNewParticleEffect *pNew = pOld->ReplaceWith( pFallback );
	ASSERT_NE( pNew, nullptr );
	EXPECT_TRUE( pOld->m_bRemove );
	EXPECT_EQ( handle.Get(), pNew );
	EXPECT_EQ( pNew->m_pParticles->GetControlPointPosition( 5 ), Vector( 1, 2, 3 ) );
	EXPECT_EQ( m_pProperty->GetEffect( 0 ), pNew );
	EXPECT_EQ( pNew->m_pOwningParticleProperty, m_pProperty.get() );
	EXPECT_EQ( pOld->ReplaceWith( nullptr ), nullptr ) << "no definition, no replacement";
	Frame( 0.02f );
	EXPECT_EQ( m_Mgr.GetEffectCount(), 1 );
}

TEST_F( ParticleMgrTest, RetirementReplacesNewSystemsThatCoverTooMuchOfTheScreen )
{
	ParticleDefinitionPtr_t pFallback = CompileNamedDefinition( "particles/cheap.tfxs", BurstBody() );
	HostParticleSystemMgrRuntime()->SetDefinitionFinder( [ & ]( const char *, CUtlString * ) { return pFallback; } );
	std::string body = std::string( ContinuousBody() ) + "\nm_flCullRadius = 100.0\nm_hFallback = resource:\"particles/cheap.tfxs\"";
	ParticleDefinitionPtr_t pDefinition = CompileNamedDefinition( "particles/dear.tfxs", body );
	// A view 200 units away looking at the origin: the system's cull sphere fills much of it.
	ParticleLibView_t view;
	view.m_flFovDegrees = 90.0f;
	view.m_vEye = Vector( -200, 0, 0 );
	view.m_nWidth = 640;
	view.m_nHeight = 480;
	ParticleViewMatrix_t matrix;
	// x to the screen's right is -y; the picture's centre is (320, 240); w is the depth.
	matrix.m[ 0 ][ 1 ] = -320.0f;
	matrix.m[ 0 ][ 0 ] = 320.0f;
	matrix.m[ 0 ][ 3 ] = 320.0f * 200.0f;
	matrix.m[ 1 ][ 2 ] = -320.0f;
	matrix.m[ 1 ][ 0 ] = 240.0f;
	matrix.m[ 1 ][ 3 ] = 240.0f * 200.0f;
	matrix.m[ 3 ][ 0 ] = 1.0f;
	matrix.m[ 3 ][ 3 ] = 200.0f;
	m_Host.m_Views = { view };
	m_Host.m_Matrices = { matrix };
	m_ConVars.Set( "cl_particle_retire_cost", "10" );
	CNewParticleEffect *pEffect = Create( pDefinition );
	CParticleEffectHandle handle( pEffect );
	Frame( 0.02f );
	ASSERT_TRUE( handle );
	EXPECT_EQ( handle->GetDefinition(), pFallback );
	m_ConVars.Set( "cl_particle_retire_cost", "0" );
	CParticleEffectHandle kept( Create( pDefinition ) );
	Frame( 0.02f );
	EXPECT_EQ( kept->GetDefinition(), pDefinition ) << "a budget of 0 retires nothing";
}

TEST_F( ParticleMgrTest, StopParticlesImmediatelyDropsTheEntryAndRemovesAfterTheFrame )
{
	CNewParticleEffect *pEffect = Create( CompileNamedDefinition( "particles/stop.tfxs", ContinuousBody() ) );
	Frame( 0.1f );
	m_pProperty->StopParticlesImmediately( pEffect );
	EXPECT_EQ( m_pProperty->GetEffectCount(), 0 );
	EXPECT_TRUE( pEffect->m_bRemove );
	Frame( 0.02f );
	EXPECT_EQ( m_Mgr.GetEffectCount(), 0 );
}

TEST_F( ParticleMgrTest, RestartAcrossManagersQueuesOnEveryEffectOfTheName )
{
	CFakeLibHost otherHost;
	CParticleMgr other;
	other.Init( &otherHost );
	CFakePropertyOuter otherOuter;
	CParticleProperty otherProperty( &other, &otherOuter );
	ParticleDefinitionPtr_t pDefinition = CompileNamedDefinition( "particles/global.tfxs", ContinuousBody() );
	CNewParticleEffect *pHere = Create( pDefinition );
	CNewParticleEffect *pThere = otherProperty.Create( pDefinition, PATTACH_ABSORIGIN_FOLLOW );
	Create( CompileNamedDefinition( "particles/other.tfxs", ContinuousBody() ) );
	EXPECT_EQ( CParticleMgr::RestartEffectsEverywhere( "PARTICLES/GLOBAL.TFXS" ), 2 );
	EXPECT_TRUE( pHere->HasQueuedCommands() );
	EXPECT_TRUE( pThere->HasQueuedCommands() );
	otherProperty.StopAll();
	other.Shutdown();
}
