// The tool scene: its clock, the order of a step, the physics fixed step, visibility of
// the tree, the follow camera and what the lib host and query answer.

#include <gtest/gtest.h>

#include <string>

#include <cmath>
#include <limits>

#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/platform/platformtime.h"
#include "particleslib/particleproperty.h"
#include "tests/particleslib/particlemgrtestsupport.h"
#include "tools/toolscene/bindablecamera.h"
#include "tools/toolscene/particleslibhost_toolscene.h"
#include "tools/toolscene/particlesystemquery_toolscene.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolsceneclock.h"
#include "tools/toolscene/toolscenemodel.h"
#include "tools/toolscene/toolscenenodegroup.h"
#include "tools/toolscene/toolsceneparticlesystem.h"

namespace
{
double s_flNow = 100.0;
double FakeNow()
{
	return s_flNow;
}

class ToolSceneClockTest : public ::testing::Test
{
protected:
	void SetUp() override { Plat_SetFloatTimeOverride( &FakeNow ); }
	void TearDown() override { Plat_ClearFloatTimeOverride(); }
	CScopedConVars m_ConVars;
};

// What a node sees of the rest of the frame when the scene updates it.
class CRecordingNode final : public CToolSceneNode
{
public:
	using CToolSceneNode::CToolSceneNode;
	void Update( float flStep ) override
	{
		m_flStep = flStep;
		m_nHostFrame = m_pScene->GetParticleHost()->GetFrameNumber();
		m_nPhysicsSubSteps = m_pScene->GetPhysicsWorld().GetTotalSubSteps();
		m_flWorldTime = m_pScene->GetSceneWorld()->GetTime();
		m_flHostTime = m_pScene->GetParticleHost()->GetTime();
	}
	float m_flStep = -1.0f;
	int m_nHostFrame = -1;
	long long m_nPhysicsSubSteps = -1;
	float m_flWorldTime = -1.0f;
	float m_flHostTime = -1.0f;
};
} // namespace

TEST_F( ToolSceneClockTest, AOneSecondFrameAdvancesAtMostPointThree )
{
	CToolSceneClock clock;
	s_flNow += 1.0;
	EXPECT_FLOAT_EQ( clock.Advance(), 0.3f );
	s_flNow += 0.02;
	EXPECT_NEAR( clock.Advance(), 0.02f, 1e-6f );
	// A clock that goes back gives no time at all.
	s_flNow -= 5.0;
	EXPECT_EQ( clock.Advance(), 0.0f );
}

TEST_F( ToolSceneClockTest, HostFramerateGivesExactFrames )
{
	m_ConVars.Set( "host_framerate", "30" );
	CToolSceneClock clock;
	double flStart = clock.GetLastTime();
	for ( int i = 0; i < 3; ++i )
		EXPECT_FLOAT_EQ( clock.Advance(), 1.0f / 30.0f );
	EXPECT_NEAR( clock.GetLastTime() - flStart, 0.1, 1e-9 );
}

TEST( ToolScene, NodesUpdateBeforeParticlesThenPhysicsThenTheWorldTakesTheTime )
{
	SetParticleSystemMgr( HostParticleSystemMgrRuntime() );
	CToolScene scene;
	CRecordingNode node( &scene );
	CToolSceneParticleSystem system( &scene );
	system.SetDefinition( CompileNamedDefinition( "particles/order.tfxs", ContinuousBody() ) );
	scene.Update( 0.05f, 1.0f );
	// In the first frame the node sees the host's time already, but no particle frame, no
	// physics step and no world time yet.
	EXPECT_FLOAT_EQ( node.m_flStep, 0.05f );
	EXPECT_FLOAT_EQ( node.m_flHostTime, 0.05f );
	EXPECT_EQ( node.m_nHostFrame, 0 );
	EXPECT_EQ( node.m_nPhysicsSubSteps, 0 );
	EXPECT_EQ( node.m_flWorldTime, 0.0f );
	EXPECT_EQ( scene.GetParticleHost()->GetFrameNumber(), 1 );
	EXPECT_EQ( scene.GetPhysicsWorld().GetTotalSubSteps(), 2 );
	EXPECT_FLOAT_EQ( scene.GetSceneWorld()->GetTime(), 0.05f );
	EXPECT_FLOAT_EQ( system.GetCollection()->GetCurrentTime(), 0.05f );
	// The step is the time times the rate.
	scene.Update( 0.1f, 0.5f );
	EXPECT_FLOAT_EQ( node.m_flStep, 0.05f );
	EXPECT_FLOAT_EQ( scene.GetTime(), 0.1f );
}

struct PhysicsCase_t
{
	float m_flTime;
	float m_flRate;
	int m_nSubSteps;
	float m_flAccumulatorLeft;
};

class ToolScenePhysicsTest : public ::testing::TestWithParam<PhysicsCase_t>
{
};

TEST_P( ToolScenePhysicsTest, FixedStepsAtMostThreeAFrame )
{
	const PhysicsCase_t &c = GetParam();
	CToolScene scene;
	scene.Update( c.m_flTime, c.m_flRate );
	EXPECT_EQ( scene.GetPhysicsWorld().GetTotalSubSteps(), c.m_nSubSteps );
	EXPECT_NEAR( scene.GetPhysicsAccumulator(), c.m_flAccumulatorLeft, 1e-5f );
	// The world gets the scene's time whatever the rate.
	EXPECT_FLOAT_EQ( scene.GetSceneWorld()->GetTime(), c.m_flTime * c.m_flRate );
}

std::string PhysicsCaseName( const ::testing::TestParamInfo<PhysicsCase_t> &info )
{
	static const char *const s_Names[] = { "OneStep", "NotYetAStep", "RateEightThreeThenNone", "RateZeroNone" };
	return s_Names[ info.index ];
}

INSTANTIATE_TEST_SUITE_P( Rates, ToolScenePhysicsTest,
	::testing::Values( PhysicsCase_t{ 0.02f, 1.0f, 1, 0.02f - 0.016666668f }, PhysicsCase_t{ 0.01f, 1.0f, 0, 0.01f },
		// At rate 8 the fixed step is 4 sixtieths: a large accumulator runs three and falls to 0.
		PhysicsCase_t{ 0.3f, 8.0f, 3, 0.0f }, PhysicsCase_t{ 0.3f, 0.0f, 0, 0.0f } ), PhysicsCaseName );

TEST( ToolScene, PhysicsFixedStepFollowsTheRateUpToFour )
{
	EXPECT_FLOAT_EQ( CToolScene::GetPhysicsFixedStep( 1.0f ), 0.016666668f );
	EXPECT_FLOAT_EQ( CToolScene::GetPhysicsFixedStep( 8.0f ), 4.0f * 0.016666668f );
}

TEST( ToolScene, HidingAParentHidesItsChildrenAndShowingRestoresEachOwnFlag )
{
	CToolScene scene;
	CToolSceneNodeGroup parent( &scene );
	CToolSceneNodeGroup shown( &scene ), hidden( &scene );
	parent.AddChild( &shown );
	parent.AddChild( &hidden );
	hidden.SetVisible( false );
	parent.SetVisible( false );
	EXPECT_FALSE( shown.IsEffectivelyVisible() );
	EXPECT_FALSE( hidden.IsEffectivelyVisible() );
	parent.SetVisible( true );
	EXPECT_TRUE( shown.IsEffectivelyVisible() );
	EXPECT_FALSE( hidden.IsEffectivelyVisible() );
	EXPECT_EQ( scene.GetNodeCount(), 3 );
}

TEST( BindableCamera, FollowFramesTheSceneAndIgnoresUnusableBounds )
{
	CBindableCamera camera;
	camera.FollowBounds( true, Vector( -10, -10, 0 ), Vector( 10, 10, 40 ) );
	EXPECT_EQ( camera.GetPivot(), Vector( 0, 0, 20 ) );
	float flDistance = camera.GetDistance();
	const float flInf = std::numeric_limits<float>::infinity();
	camera.FollowBounds( true, Vector( -flInf, 0, 0 ), Vector( 10, 10, 10 ) );
	camera.FollowBounds( true, Vector( 0, 0, 0 ), Vector( 1e6f, 0, 0 ) );
	camera.FollowBounds( true, Vector( std::nanf( "" ), 0, 0 ), Vector( 1, 1, 1 ) );
	EXPECT_EQ( camera.GetPivot(), Vector( 0, 0, 20 ) );
	EXPECT_FLOAT_EQ( camera.GetDistance(), flDistance );
	// Replaced, not widened, unless tracking.
	camera.FollowBounds( true, Vector( 0, 0, 0 ), Vector( 2, 2, 2 ) );
	EXPECT_EQ( camera.GetPivot(), Vector( 1, 1, 1 ) );
	camera.SetTrackingMode( true );
	camera.FollowBounds( true, Vector( 10, 10, 10 ), Vector( 12, 12, 12 ) );
	EXPECT_EQ( camera.GetFramedMin(), Vector( 0, 0, 0 ) );
	EXPECT_EQ( camera.GetFramedMax(), Vector( 12, 12, 12 ) );
}

TEST( BindableCamera, PanningOrPlacingStopsTheFollowUntilAReset )
{
	CBindableCamera camera;
	camera.Orbit( 30, 10 );
	EXPECT_TRUE( camera.IsFollowingScene() );
	camera.Pan( 20, 0, 400 );
	EXPECT_FALSE( camera.IsFollowingScene() );
	Vector vPivot = camera.GetPivot();
	camera.FollowBounds( true, Vector( 100, 100, 100 ), Vector( 110, 110, 110 ) );
	EXPECT_EQ( camera.GetPivot(), vPivot );
	camera.Reset( true, true );
	EXPECT_TRUE( camera.IsFollowingScene() );
	camera.SetPositionAndTarget( Vector( 64, 0, 4 ), Vector( 0, 0, 4 ) );
	EXPECT_FALSE( camera.IsFollowingScene() );
	Vector vEye = camera.GetEye();
	EXPECT_NEAR( vEye.x, 64.0f, 1e-3f );
	EXPECT_NEAR( vEye.z, 4.0f, 1e-3f );
	// Zooming in brings the eye closer to the pivot.
	float flBefore = camera.GetDistance();
	camera.Zoom( 2.0f );
	EXPECT_LT( camera.GetDistance(), flBefore );
}

TEST( ParticlesLibHostToolScene, AttachmentFramesByType )
{
	CToolScene scene;
	CToolSceneModel model( &scene );
	model.SetOrigin( Vector( 10, 0, 0 ) );
	auto pModel = std::make_shared<CParticleModel>();
	CUtlString strError;
	const char text[] = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
						"{ m_Vertices = [ [ -4, -4, 0 ], [ 4, 4, 20 ] ] m_Triangles = [] m_Attachments = [ { m_name = \"Top\" m_vOrigin = [ 0, 0, 20 ] } ] }";
	ASSERT_TRUE( pModel->LoadFromText( text, sizeof( text ) - 1, "test", &strError ) ) << strError.Get();
	model.SetModel( pModel );
	CParticlesLibHost_ToolScene *pHost = scene.GetParticleHost();
	ParticleControlPointRecord_t record;
	record.m_pEntity = &model;
	Vector o, f, r, u;
	record.m_nAttachType = PATTACH_ABSORIGIN_FOLLOW;
	record.m_matOffset = ParticleFrame_t::Translation( Vector( 0, 0, 5 ) );
	ASSERT_TRUE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) );
	EXPECT_EQ( o, Vector( 10, 0, 5 ) );
	record.m_nAttachType = PATTACH_POINT_FOLLOW;
	record.m_nAttachmentIndex = model.LookupAttachment( "top" );
	EXPECT_EQ( record.m_nAttachmentIndex, 0 );
	ASSERT_TRUE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) );
	EXPECT_EQ( o, Vector( 10, 0, 20 ) );
	record.m_nAttachmentIndex = model.LookupAttachment( "missing" );
	EXPECT_FALSE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) );
	record.m_nAttachType = PATTACH_OVERHEAD_FOLLOW;
	ASSERT_TRUE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) );
	EXPECT_EQ( o, Vector( 10, 0, 20 ) );
	record.m_nAttachType = PATTACH_CENTER_FOLLOW;
	ASSERT_TRUE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) );
	EXPECT_EQ( o, Vector( 10, 0, 10 ) );
	for ( ParticleAttachment_t eType : { PATTACH_CUSTOMORIGIN_FOLLOW, PATTACH_EYES_FOLLOW, PATTACH_MAIN_VIEW, PATTACH_WATERWAKE } )
	{
		record.m_nAttachType = eType;
		EXPECT_FALSE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) ) << eType;
	}
	record.m_pEntity = nullptr;
	record.m_nAttachType = PATTACH_CENTER_FOLLOW;
	EXPECT_FALSE( pHost->GetAttachmentFrame( record, &o, &f, &r, &u ) );
	std::vector<ParticleLibView_t> views;
	std::vector<ParticleViewMatrix_t> matrices;
	EXPECT_FALSE( pHost->GetViews( &views, &matrices ) ) << "no retirement or view culling in a tool scene";
}

TEST( ParticleSystemQueryToolScene, GravityAndWaterFollowThePreviewSettings )
{
	CScopedConVars conVars;
	CToolScene scene;
	CParticleSystemQuery_ToolScene *pQuery = scene.GetParticleQuery();
	Vector points[ 2 ] = { Vector( 0, 0, 0 ), Vector( 50, 50, 50 ) }, gravity[ 2 ];
	pQuery->GetGravity( points, 2, gravity );
	EXPECT_EQ( gravity[ 0 ], Vector( 0, 0, -800 ) );
	EXPECT_EQ( gravity[ 1 ], Vector( 0, 0, -800 ) );
	conVars.Set( "zol_preview_gravity", "1 2 -3" );
	pQuery->GetGravity( points, 1, gravity );
	EXPECT_EQ( gravity[ 0 ], Vector( 1, 2, -3 ) );
	EXPECT_FALSE( pQuery->IsInWater( Vector( -1, -1, -10 ), Vector( 1, 1, -5 ) ) );
	conVars.Set( "zol_preview_underwater", "1" );
	EXPECT_TRUE( pQuery->IsInWater( Vector( -1, -1, -10 ), Vector( 1, 1, -5 ) ) );
	EXPECT_FALSE( pQuery->IsInWater( Vector( 20000, -1, -10 ), Vector( 20001, 1, -5 ) ) );
	EXPECT_FALSE( pQuery->IsInWater( Vector( -1, -1, 5 ), Vector( 1, 1, 10 ) ) );
	ParticleTraceResult_t trace;
	pQuery->TraceLine( Vector( 0, 0, 10 ), Vector( 0, 0, -10 ), &trace );
	EXPECT_FLOAT_EQ( trace.m_flFraction, 0.5f );
	EXPECT_EQ( trace.m_vEnd, Vector( 0, 0, 0 ) );
	EXPECT_EQ( pQuery->GetUpVector(), Vector( 0, 0, 1 ) );
}
