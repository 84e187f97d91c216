// The tool scene's particle system node: its restart rules, a definition that follows its
// resource, its bounds and its control points.

#include <gtest/gtest.h>

#include "core/host/resourcesystem.h"
#include "core/particles/particlesystemresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/platform/platformtime.h"
#include "tests/particleslib/particlemgrtestsupport.h"
#include "tools/toolscene/itoolsceneparticlelistener.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolsceneparticlesystem.h"

namespace
{
double s_flNow = 1000.0;
double FakeNow()
{
	return s_flNow;
}

class CCountingListener final : public IToolSceneParticleListener
{
public:
	void OnParticleSystemRestarted( CToolSceneParticleSystem * ) override { ++m_nRestarts; }
	int m_nRestarts = 0;
};

class ToolSceneParticleSystemTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		SetParticleSystemMgr( HostParticleSystemMgrRuntime() );
		Plat_SetFloatTimeOverride( &FakeNow );
		m_System.SetListener( &m_Listener );
	}
	void TearDown() override { Plat_ClearFloatTimeOverride(); }
	// Frames of a twentieth of a second; the wall clock moves with them.
	void Run( float flSeconds )
	{
		for ( int i = 0; i < int( flSeconds * 20.0f + 0.5f ); ++i )
		{
			s_flNow += 0.05;
			m_Scene.Update( 0.05f, 1.0f );
		}
	}
	float Age() const { return m_System.GetCollection() ? m_System.GetCollection()->GetCurrentTime() : -1.0f; }

	CToolScene m_Scene;
	CToolSceneParticleSystem m_System{ &m_Scene };
	CCountingListener m_Listener;
};

// Three seconds of emission, particles that live half a second.
const char *ThreeSecondBody()
{
	return "m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 20.0 m_flEmissionDuration = 3.0 } ]\n"
		   "m_Initializers = [ { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 0.5 m_fLifetimeMax = 0.5 } ]\n"
		   "m_Operators = [ { _class = \"C_OP_Decay\" } ]\n"
		   "m_Renderers = [ { _class = \"C_OP_RenderSprites\" } ]";
}
} // namespace

TEST_F( ToolSceneParticleSystemTest, WithoutADefinitionNothingRunsAndNothingRestarts )
{
	EXPECT_TRUE( m_System.IsEnded() );
	Run( 1.0f );
	EXPECT_EQ( m_System.GetEffect(), nullptr );
	EXPECT_EQ( m_Listener.m_nRestarts, 0 );
	Vector vMin, vMax;
	EXPECT_FALSE( m_System.GetBounds( &vMin, &vMax ) );
}

TEST_F( ToolSceneParticleSystemTest, AutoRestartWaitsItsTimeAfterTheEndNotAfterTheStart )
{
	m_System.SetAutoRestartTime( 2.0f );
	m_System.SetDefinition( CompileNamedDefinition( "particles/burst.tfxs", BurstBody() ) );
	ASSERT_EQ( m_Listener.m_nRestarts, 1 );
	// The burst ends within a few frames; the restart comes two seconds after that.
	Run( 0.3f );
	EXPECT_TRUE( m_System.IsEnded() );
	Run( 1.5f );
	EXPECT_EQ( m_Listener.m_nRestarts, 1 ) << "two seconds after the start is too early";
	Run( 0.6f );
	EXPECT_EQ( m_Listener.m_nRestarts, 2 );
}

TEST_F( ToolSceneParticleSystemTest, AutoRestartTimeZeroRestartsAsSoonAsItEnds )
{
	m_System.SetAutoRestartTime( 0.0f );
	m_System.SetForcedRestartTime( 0.0f );
	m_System.SetDefinition( CompileNamedDefinition( "particles/burst.tfxs", BurstBody() ) );
	Run( 1.0f );
	EXPECT_GE( m_Listener.m_nRestarts, 3 );
}

TEST_F( ToolSceneParticleSystemTest, ForcedRestartStopsAtItsTimeAndRestartsWhenTheEndCapIsOver )
{
	m_System.SetForcedRestartTime( 1.0f );
	m_System.SetForcedRestartEndcap( true );
	m_System.SetDefinition( CompileNamedDefinition( "particles/forced.tfxs", ThreeSecondBody() ) );
	Run( 1.1f );
	// Stopped at an age of one second; the particles live on for half a second.
	EXPECT_EQ( m_Listener.m_nRestarts, 1 );
	EXPECT_GT( m_System.GetCollection()->GetActiveParticleCount( true ), 0 );
	Run( 0.6f );
	EXPECT_EQ( m_Listener.m_nRestarts, 2 );
	EXPECT_LT( Age(), 0.5f ) << "the restart reads the collection's own age, not the scene's clock";
	EXPECT_GT( m_Scene.GetTime(), 1.5f );
}

TEST_F( ToolSceneParticleSystemTest, ForcedRestartWithoutEndCapDropsTheParticlesAtOnce )
{
	m_System.SetForcedRestartTime( 1.0f );
	m_System.SetForcedRestartEndcap( false );
	m_System.SetDefinition( CompileNamedDefinition( "particles/forced.tfxs", ThreeSecondBody() ) );
	Run( 1.2f );
	EXPECT_EQ( m_Listener.m_nRestarts, 2 );
}

TEST_F( ToolSceneParticleSystemTest, ForcedRestartTimeZeroHasNoEffect )
{
	m_System.SetForcedRestartTime( 0.0f );
	m_System.SetDefinition( CompileNamedDefinition( "particles/long.tfxs", ContinuousBody() ) );
	Run( 4.0f );
	EXPECT_EQ( m_Listener.m_nRestarts, 1 );
	EXPECT_NEAR( Age(), 4.0f, 1e-3f );
}

TEST_F( ToolSceneParticleSystemTest, StopTurnsAutoRestartOffSoTheSystemStaysEnded )
{
	m_System.SetDefinition( CompileNamedDefinition( "particles/forced.tfxs", ThreeSecondBody() ) );
	Run( 0.5f );
	m_System.Stop( false );
	EXPECT_FALSE( m_System.IsAutoRestart() );
	Run( 2.0f );
	EXPECT_TRUE( m_System.IsEnded() );
	EXPECT_EQ( m_Listener.m_nRestarts, 1 );
	// A restart by hand runs it again, still without automatic restarts.
	m_System.Restart();
	EXPECT_FALSE( m_System.IsEnded() );
}

TEST_F( ToolSceneParticleSystemTest, ANewVersionOfTheResourceRestartsAndAFailedOneKeepsTheLastGood )
{
	CResourceSystem resources;
	SetResourceSystem( &resources );
	CResourceBinding *pBinding = resources.FindOrCreateBinding( "particles/edited.tfxs" );
	ParticleDefinitionPtr_t pFirst = CompileNamedDefinition( "particles/edited.tfxs", ContinuousBody() );
	resources.ReplaceResourceData( pBinding, std::make_shared<CParticleSystemResourceData>( pFirst ) );
	m_System.SetDefinitionResource( CResourceHandle( pBinding ) );
	EXPECT_EQ( m_System.GetDefinition(), pFirst );
	Run( 0.5f );
	ASSERT_EQ( m_Listener.m_nRestarts, 1 );

	ParticleDefinitionPtr_t pSecond = CompileNamedDefinition( "particles/edited.tfxs", BurstBody() );
	resources.ReplaceResourceData( pBinding, std::make_shared<CParticleSystemResourceData>( pSecond ) );
	Run( 0.05f );
	EXPECT_EQ( m_System.GetDefinition(), pSecond );
	EXPECT_EQ( m_Listener.m_nRestarts, 2 );

	// Data that isn't a compiled system changes the version but not what runs.
	const char bytes[] = "not a definition";
	resources.ReplaceResourceData( pBinding, std::make_shared<CBinaryResourceData>( bytes, sizeof( bytes ) ) );
	m_System.SetAutoRestart( false );
	Run( 0.05f );
	EXPECT_EQ( m_System.GetDefinition(), pSecond );
	EXPECT_EQ( m_Listener.m_nRestarts, 2 );
	m_System.SetDefinitionResource( CResourceHandle() );
	SetResourceSystem( nullptr );
}

TEST_F( ToolSceneParticleSystemTest, BoundsWidenForThreeSecondsThenStand )
{
	// Particles fly up forever: the box grows as long as anyone looks.
	std::string body = std::string( "m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 30.0 } ]\n" ) +
					   "m_Initializers = [ { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 100.0 m_fLifetimeMax = 100.0 },\n"
					   "  { _class = \"C_INIT_InitialVelocityNoise\" m_vecOutputMin = [ 0.0, 0.0, 100.0 ] m_vecOutputMax = [ 0.0, 0.0, 100.0 ] } ]\n"
					   "m_Operators = [ { _class = \"C_OP_BasicMovement\" }, { _class = \"C_OP_Decay\" } ]\n"
					   "m_Renderers = [ { _class = \"C_OP_RenderSprites\" } ]";
	m_System.SetDefinition( CompileNamedDefinition( "particles/rising.tfxs", body ) );
	Run( 1.0f );
	Vector vMin, vMax;
	ASSERT_TRUE( m_System.GetBounds( &vMin, &vMax ) );
	float flEarly = vMax.z - vMin.z;
	Run( 2.5f );
	ASSERT_TRUE( m_System.GetBounds( &vMin, &vMax ) );
	float flSettled = vMax.z - vMin.z;
	EXPECT_GT( flSettled, flEarly );
	Run( 2.0f );
	ASSERT_TRUE( m_System.GetBounds( &vMin, &vMax ) );
	EXPECT_FLOAT_EQ( vMax.z - vMin.z, flSettled );
	// The report is the box shrunk to 80% about its centre.
	IParticleCollection *pCollection = m_System.GetCollection();
	EXPECT_LT( vMax.z, pCollection->GetBoundsMax().z );
}

TEST_F( ToolSceneParticleSystemTest, ControlPointsSetOnTheNodeOutliveRestarts )
{
	m_System.SetDefinition( CompileNamedDefinition( "particles/points.tfxs", ContinuousBody() ) );
	m_System.SetOrigin( Vector( 0, 0, 10 ) );
	m_System.SetControlPoint( 1, Vector( 5, 0, 0 ) );
	Run( 0.1f );
	EXPECT_EQ( m_System.GetCollection()->GetControlPointPosition( 1 ), Vector( 5, 0, 10 ) );
	EXPECT_EQ( m_System.GetCollection()->GetControlPointPosition( 0 ), Vector( 0, 0, 10 ) ) << "point 0 follows the node";
	m_System.Restart();
	EXPECT_EQ( m_System.GetCollection()->GetControlPointPosition( 1 ), Vector( 5, 0, 10 ) );
	m_System.SetControlPoint( 0, Vector( 0, 3, 0 ) );
	m_System.SetOrigin( Vector( 0, 0, 20 ) );
	Run( 0.1f );
	EXPECT_EQ( m_System.GetCollection()->GetControlPointPosition( 0 ), Vector( 0, 3, 10 ) ) << "a point placed by hand no longer follows";
}
