// Pixels of the tool scene's OpenGL renderer, through a real context: where a particle
// lands, how blending adds, textures and their stand-in.

#include <gtest/gtest.h>

#include <cmath>

#include "core/host/hostservices.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/sim/iparticlecollection.h"
#include "rendertestsupport.h"
#include "tests/particleslib/particlemgrtestsupport.h"
#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolsceneparticlesystem.h"
#include "tools/toolscene/toolsceneview.h"

namespace
{
// One particle that stays where it is born, at control point 0.
std::string OneParticle( const char *pColor, float flRadius, const char *pRenderer )
{
	return std::string( "m_ConstantColor = " ) + pColor + "\nm_flConstantRadius = " + std::to_string( flRadius ) +
		   "\nm_Emitters = [ { _class = \"C_OP_InstantaneousEmitter\" m_nParticlesToEmit = 1 } ]\n"
		   "m_Initializers = [ { _class = \"C_INIT_CreateWithinSphere\" m_fRadiusMax = 0.0 },"
		   " { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 100.0 m_fLifetimeMax = 100.0 } ]\n"
		   "m_Operators = [ { _class = \"C_OP_Decay\" } ]\n"
		   "m_Renderers = [ " +
		   pRenderer + " ]";
}

class ToolSceneRenderTest : public ::testing::Test
{
protected:
	void SetUp() override { SetParticleSystemMgr( HostParticleSystemMgrRuntime() ); }
	CToolSceneParticleSystem *AddSystem( const std::string &body, const Vector &vOrigin )
	{
		auto *pSystem = new CToolSceneParticleSystem( &m_Scene );
		m_Systems.emplace_back( pSystem );
		pSystem->SetOrigin( vOrigin );
		pSystem->SetDefinition( CompileNamedDefinition( "particles/pixel_test.tfxs", body ) );
		return pSystem;
	}
	ToolSceneView_t View() const
	{
		ToolSceneView_t view;
		view.LookAt( Vector( -150, 0, 0 ), Vector( 0, 0, 0 ) );
		view.m_flFovY = 60.0f;
		view.m_nWidth = 256;
		view.m_nHeight = 256;
		view.Compute();
		return view;
	}

	CToolScene m_Scene;
	std::vector<std::unique_ptr<CToolSceneParticleSystem>> m_Systems;
};
} // namespace

TEST_F( ToolSceneRenderTest, AParticleLandsWhereTheProjectionSaysWithItsColourAndRadius )
{
	COffscreenToolSceneWindow *pWindow = RenderWindow();
	ASSERT_NE( pWindow, nullptr );
	const Vector vPlace( 0, -30, 20 );
	AddSystem( OneParticle( "[ 255, 64, 0, 255 ]", 10.0f, "{ _class = \"C_OP_RenderSprites\" }" ), vPlace );
	m_Scene.Update( 1.0f / 60.0f, 1.0f );
	ToolSceneView_t view = View();
	QImage image = pWindow->Render( m_Scene, view );
	ASSERT_EQ( image.width(), 256 );
	float cx, cy, rx, ry;
	ASSERT_TRUE( view.WorldToScreen( vPlace, &cx, &cy ) );
	ASSERT_TRUE( view.WorldToScreen( ToolSceneMath::Add( vPlace, ToolSceneMath::Scale( view.m_vRight, 10.0f ) ), &rx, &ry ) );
	const float h = rx - cx;
	// Right of the centre of the picture (world -y is screen right) and above it.
	EXPECT_GT( cx, 140.0f );
	EXPECT_LT( cy, 110.0f );
	ASSERT_GT( h, 10.0f );
	EXPECT_PIXEL_NEAR( image, cx, cy, 255, 64, 0, 2 );
	for ( float d : { -0.8f, 0.8f } )
	{
		EXPECT_PIXEL_NEAR( image, cx + d * h, cy, 255, 64, 0, 2 );
		EXPECT_PIXEL_NEAR( image, cx, cy + d * h, 255, 64, 0, 2 );
		EXPECT_PIXEL_NEAR( image, cx + d * h * 1.5f, cy, 0, 0, 0, 2 );
		EXPECT_PIXEL_NEAR( image, cx, cy + d * h * 1.5f, 0, 0, 0, 2 );
	}
	EXPECT_PIXEL_NEAR( image, 128, 128, 0, 0, 0, 2 );
}

TEST_F( ToolSceneRenderTest, AdditiveSpritesAddAndBlendedOnesCover )
{
	COffscreenToolSceneWindow *pWindow = RenderWindow();
	ASSERT_NE( pWindow, nullptr );
	AddSystem( OneParticle( "[ 64, 0, 32, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" m_bAdditive = true }" ), Vector( 0, 20, 0 ) );
	AddSystem( OneParticle( "[ 0, 128, 32, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" m_bAdditive = true }" ), Vector( 0, 20, 0 ) );
	AddSystem( OneParticle( "[ 64, 0, 32, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" }" ), Vector( 0, -20, 0 ) );
	AddSystem( OneParticle( "[ 0, 128, 32, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" }" ), Vector( 0, -20, 0 ) );
	m_Scene.Update( 1.0f / 60.0f, 1.0f );
	ToolSceneView_t view = View();
	QImage image = pWindow->Render( m_Scene, view );
	float ax, ay, bx, by;
	ASSERT_TRUE( view.WorldToScreen( Vector( 0, 20, 0 ), &ax, &ay ) );
	ASSERT_TRUE( view.WorldToScreen( Vector( 0, -20, 0 ), &bx, &by ) );
	EXPECT_PIXEL_NEAR( image, ax, ay, 64, 128, 64, 2 );
	// Opaque blended sprites: the one drawn last covers, nothing adds.
	QRgb covered = image.pixel( int( bx ), int( by ) );
	EXPECT_TRUE( ColorDistance( covered, 64, 0, 32 ) <= 2 || ColorDistance( covered, 0, 128, 32 ) <= 2 ) << QColor( covered ).name().toStdString();
}

TEST_F( ToolSceneRenderTest, HalfTransparentSpritesBlendOverTheBackground )
{
	COffscreenToolSceneWindow *pWindow = RenderWindow();
	ASSERT_NE( pWindow, nullptr );
	AddSystem( OneParticle( "[ 200, 100, 0, 128 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" }" ), Vector( 0, 0, 0 ) );
	m_Scene.Update( 1.0f / 60.0f, 1.0f );
	QImage image = pWindow->Render( m_Scene, View() );
	EXPECT_PIXEL_NEAR( image, 128, 128, 100, 50, 0, 3 );
}

TEST_F( ToolSceneRenderTest, TexturesShapeSpritesAndAMissingOneShowsAStandIn )
{
	COffscreenToolSceneWindow *pWindow = RenderWindow();
	ASSERT_NE( pWindow, nullptr );
	CHostServices services;
	CUtlString strError;
	ASSERT_TRUE( services.Init( ZOL_SOURCE_DIR "/content/game", ZOL_SOURCE_DIR "/content/content", &strError ) ) << strError.Get();
	AddSystem( OneParticle( "[ 255, 255, 255, 255 ]", 20.0f, "{ _class = \"C_OP_RenderSprites\" m_hTexture = resource:\"materials/particle/soft_disc.timg\" }" ),
		Vector( 0, 25, 0 ) );
	AddSystem( OneParticle( "[ 255, 255, 255, 255 ]", 20.0f, "{ _class = \"C_OP_RenderSprites\" m_hTexture = resource:\"materials/particle/missing.timg\" }" ),
		Vector( 0, -25, 0 ) );
	m_Scene.Update( 1.0f / 60.0f, 1.0f );
	ToolSceneView_t view = View();
	const int nStandInsBefore = pWindow->GetRenderer().GetStandInTextureCount();
	QImage image = pWindow->Render( m_Scene, view );
	pWindow->Render( m_Scene, view );
	EXPECT_EQ( pWindow->GetRenderer().GetStandInTextureCount(), nStandInsBefore + 1 ) << "reported once";
	float dx, dy, rx, ry;
	ASSERT_TRUE( view.WorldToScreen( Vector( 0, 25, 0 ), &dx, &dy ) );
	ASSERT_TRUE( view.WorldToScreen( Vector( 0, 25, 19 ), &rx, &ry ) );
	// The disc: bright in the middle, nothing in the corner of its square.
	EXPECT_GT( qRed( image.pixel( int( dx ), int( dy ) ) ), 200 );
	EXPECT_LT( qRed( image.pixel( int( dx + ( dy - ry ) ), int( ry ) ) ), 10 );
	// The stand-in: a magenta checker over the whole square.
	ASSERT_TRUE( view.WorldToScreen( Vector( 0, -25, 0 ), &dx, &dy ) );
	int nMagenta = 0;
	for ( int y = int( dy ) - 10; y <= int( dy ) + 10; ++y )
		for ( int x = int( dx ) - 10; x <= int( dx ) + 10; ++x )
			nMagenta += ColorDistance( image.pixel( x, y ), 255, 0, 255 ) <= 4;
	EXPECT_GT( nMagenta, 100 );
}

// Sprites that face the screen, turn about world Z only, lie flat on world Z, or follow
// their particle's normal: from the side a flat one is only an edge, from above the
// upright ones are.
TEST_F( ToolSceneRenderTest, SpritesFaceAsTheirOrientationSays )
{
	COffscreenToolSceneWindow *pWindow = RenderWindow();
	ASSERT_NE( pWindow, nullptr );
	const Vector vFlat( 0, 35, 0 ), vUpright( 0, 0, 0 ), vNormal( 0, -35, 0 );
	AddSystem( OneParticle( "[ 255, 0, 0, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" m_nOrientationType = \"PARTICLE_ORIENTATION_WORLD_Z_ALIGNED\" }" ), vFlat );
	AddSystem( OneParticle( "[ 0, 255, 0, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" m_nOrientationType = \"PARTICLE_ORIENTATION_SCREEN_Z_ALIGNED\" }" ), vUpright );
	std::string facing = OneParticle( "[ 0, 0, 255, 255 ]", 12.0f, "{ _class = \"C_OP_RenderSprites\" m_nOrientationType = \"PARTICLE_ORIENTATION_ALIGN_TO_PARTICLE_NORMAL\" }" );
	const std::string lifetime = "{ _class = \"C_INIT_RandomLifeTime\"";
	facing.insert( facing.find( lifetime ), "{ _class = \"C_INIT_InitVec\" m_nOutputField = 21 m_InputValue = { m_nType = \"PVEC_TYPE_LITERAL\" m_vLiteralValue = [ -1.0, 0.0, 0.0 ] } }, " );
	AddSystem( facing, vNormal );
	m_Scene.Update( 1.0f / 60.0f, 1.0f );

	// Edge-on: the pixel at four fifths of the radius off the sprite's centre, across the edge.
	auto fnCovers = [ & ]( const QImage &image, const ToolSceneView_t &view, const Vector &vPlace, int r, int g, int b ) {
		float cx, cy, ux, uy;
		EXPECT_TRUE( view.WorldToScreen( vPlace, &cx, &cy ) );
		EXPECT_TRUE( view.WorldToScreen( ToolSceneMath::Add( vPlace, ToolSceneMath::Scale( view.m_vUp, 12.0f ) ), &ux, &uy ) );
		const float h = cy - uy;
		return ColorDistance( image.pixel( int( cx ), int( cy - 0.8f * h ) ), r, g, b ) <= 4 && ColorDistance( image.pixel( int( cx ), int( cy + 0.8f * h ) ), r, g, b ) <= 4;
	};
	ToolSceneView_t side = View();
	QImage image = pWindow->Render( m_Scene, side );
	EXPECT_FALSE( fnCovers( image, side, vFlat, 255, 0, 0 ) ) << "flat on the ground, seen from the side";
	EXPECT_TRUE( fnCovers( image, side, vUpright, 0, 255, 0 ) );
	EXPECT_TRUE( fnCovers( image, side, vNormal, 0, 0, 255 ) ) << "its normal points at the camera";

	ToolSceneView_t above = View();
	above.LookAt( Vector( -25, 0, 150 ), Vector( 0, 0, 0 ) );
	above.Compute();
	image = pWindow->Render( m_Scene, above );
	EXPECT_TRUE( fnCovers( image, above, vFlat, 255, 0, 0 ) ) << "flat on the ground, seen from above";
	EXPECT_FALSE( fnCovers( image, above, vUpright, 0, 255, 0 ) ) << "upright, seen from above";
	EXPECT_FALSE( fnCovers( image, above, vNormal, 0, 0, 255 ) );
}
