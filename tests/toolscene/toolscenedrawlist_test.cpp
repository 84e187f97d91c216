// What a frame draws, filled on the CPU: sprite instances sorted far to near unless they
// add, trails from head to tail, model particles (a stand-in for a missing model), and
// control point markers.

#include <gtest/gtest.h>

#include "core/particles/sim/iparticlecollection.h"
#include "tests/particleslib/particlemgrtestsupport.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/toolsceneview.h"

namespace
{
class ToolSceneDrawListTest : public ::testing::Test
{
protected:
	void SetUp() override { SetParticleSystemMgr( HostParticleSystemMgrRuntime() ); }
	const CToolSceneDrawList &Draw( const std::string &body, float flSeconds )
	{
		m_System.SetDefinition( CompileNamedDefinition( "particles/draw.tfxs", body ) );
		for ( int i = 0; i < int( flSeconds * 60.0f ); ++i )
			m_Scene.Update( 1.0f / 60.0f, 1.0f );
		m_View.LookAt( Vector( -200, 0, 0 ), Vector( 0, 0, 0 ) );
		m_View.Compute();
		m_Scene.BuildDrawList( m_DrawList, m_View );
		return m_DrawList;
	}
	float Depth( const float p[ 3 ] ) const { return ToolSceneMath::Dot( ToolSceneMath::Sub( Vector( p[ 0 ], p[ 1 ], p[ 2 ] ), m_View.m_vEye ), m_View.m_vForward ); }

	CToolScene m_Scene;
	CToolSceneParticleSystem m_System{ &m_Scene };
	CToolSceneDrawList m_DrawList;
	ToolSceneView_t m_View;
};

// Particles spread along the view's axis, so that their order matters.
std::string SpreadBody( const char *pRenderer )
{
	return std::string( "m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 200.0 } ]\n" ) +
		   "m_Initializers = [ { _class = \"C_INIT_CreateWithinSphere\" m_fRadiusMax = 80.0 m_fSpeedMin = 10.0 m_fSpeedMax = 60.0 },\n"
		   "  { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 2.0 m_fLifetimeMax = 2.0 } ]\n"
		   "m_Operators = [ { _class = \"C_OP_BasicMovement\" }, { _class = \"C_OP_Decay\" } ]\n"
		   "m_Renderers = [ " +
		   pRenderer + " ]";
}
} // namespace

TEST_F( ToolSceneDrawListTest, BlendedSpritesComeFarToNear )
{
	const CToolSceneDrawList &drawList = Draw( SpreadBody( "{ _class = \"C_OP_RenderSprites\" m_hTexture = resource:\"materials/particle/soft_disc.timg\" }" ), 0.5f );
	ASSERT_EQ( drawList.GetSpriteBatches().size(), 1u );
	const ToolSceneBatch_t &batch = drawList.GetSpriteBatches()[ 0 ];
	EXPECT_EQ( batch.m_Texture, "materials/particle/soft_disc.timg" );
	EXPECT_EQ( batch.m_eBlend, TOOLSCENE_BLEND_ALPHA );
	ASSERT_EQ( batch.m_nCount, m_System.GetCollection()->GetActiveParticleCount( false ) );
	ASSERT_GT( batch.m_nCount, 50 );
	const auto &sprites = drawList.GetSprites();
	for ( int i = 1; i < batch.m_nCount; ++i )
		ASSERT_GE( Depth( sprites[ size_t( i - 1 ) ].m_Position ), Depth( sprites[ size_t( i ) ].m_Position ) ) << "sprite " << i;
	EXPECT_GT( sprites[ 0 ].m_flRadius, 0.0f );
	EXPECT_FLOAT_EQ( sprites[ 0 ].m_Color[ 3 ], 1.0f );
}

TEST_F( ToolSceneDrawListTest, AddedSpritesKeepTheirColourAndSayHowTheyBlend )
{
	const CToolSceneDrawList &drawList =
		Draw( std::string( "m_ConstantColor = [ 255, 0, 0, 255 ]\n" ) + SpreadBody( "{ _class = \"C_OP_RenderSprites\" m_bAdditive = true m_flOverbrightFactor = 2.0 }" ), 0.2f );
	ASSERT_EQ( drawList.GetSpriteBatches().size(), 1u );
	EXPECT_EQ( drawList.GetSpriteBatches()[ 0 ].m_eBlend, TOOLSCENE_BLEND_ADDITIVE );
	EXPECT_FLOAT_EQ( drawList.GetSpriteBatches()[ 0 ].m_flOverbright, 2.0f );
	ASSERT_FALSE( drawList.GetSprites().empty() );
	EXPECT_FLOAT_EQ( drawList.GetSprites()[ 0 ].m_Color[ 0 ], 1.0f );
	EXPECT_FLOAT_EQ( drawList.GetSprites()[ 0 ].m_Color[ 1 ], 0.0f );
}

TEST_F( ToolSceneDrawListTest, TrailsRunFromTheHeadBackAlongTheMotion )
{
	const CToolSceneDrawList &drawList = Draw( SpreadBody( "{ _class = \"C_OP_RenderTrails\" m_flMaxLength = 30.0 }" ), 0.5f );
	ASSERT_EQ( drawList.GetTrailBatches().size(), 1u );
	ASSERT_FALSE( drawList.GetTrails().empty() );
	int nWithLength = 0;
	for ( const ToolSceneTrailInstance_t &trail : drawList.GetTrails() )
	{
		Vector d = ToolSceneMath::Sub( Vector( trail.m_Head[ 0 ], trail.m_Head[ 1 ], trail.m_Head[ 2 ] ), Vector( trail.m_Tail[ 0 ], trail.m_Tail[ 1 ], trail.m_Tail[ 2 ] ) );
		EXPECT_LE( ToolSceneMath::Length( d ), 30.0f + 1e-3f );
		nWithLength += ToolSceneMath::Length( d ) > 0.1f;
	}
	EXPECT_GT( nWithLength, 0 );
}

TEST_F( ToolSceneDrawListTest, ModelParticlesOfAMissingModelShowTheStandIn )
{
	const CToolSceneDrawList &drawList =
		Draw( SpreadBody( "{ _class = \"C_OP_RenderModels\" m_ModelList = [ { m_model = resource:\"models/nowhere.tmsh\" } ] }" ), 0.2f );
	ASSERT_EQ( drawList.GetModelBatches().size(), 1u );
	EXPECT_EQ( drawList.GetModelBatches()[ 0 ].m_pModel, CToolSceneDrawList::GetStandInModel() );
	EXPECT_EQ( int( drawList.GetModels().size() ), drawList.GetModelBatches()[ 0 ].m_nCount );
	EXPECT_GT( CToolSceneDrawList::GetStandInModel()->GetTriangleCount(), 0 );
}

TEST_F( ToolSceneDrawListTest, ControlPointMarkersOnlyWhenAsked )
{
	std::string body = SpreadBody( "{ _class = \"C_OP_RenderSprites\" }" );
	const size_t nWithout = Draw( body, 0.1f ).GetLines().size();
	m_System.SetDrawControlPoints( true );
	m_Scene.BuildDrawList( m_DrawList, m_View );
	// Control point 0 is set: one cross of three lines, two ends each.
	EXPECT_EQ( m_DrawList.GetLines().size(), nWithout + 6 );
}
