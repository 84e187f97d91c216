// Model files: what a good one gives, what a broken one says, where sampled points land,
// and how models come out of the resource system.

#include <gtest/gtest.h>

#include <cmath>
#include <fstream>
#include <memory>
#include <sstream>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/host/resourcesystem.h"
#include "core/particles/particlemodel.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/particlerandom.h"

namespace
{
const char *const HEADER = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";

std::string ModelText( const std::string &body )
{
	return std::string( HEADER ) + "{\n" + body + "\n}\n";
}

bool LoadModel( CParticleModel *pModel, const std::string &body, CUtlString *pError )
{
	std::string text = ModelText( body );
	return pModel->LoadFromText( text.data(), text.size(), "models/test.tmsh", pError );
}

std::string ReadFile( const std::string &path )
{
	std::ifstream file( path, std::ios::binary );
	std::stringstream text;
	text << file.rdbuf();
	return text.str();
}

// Distance of a point from the surface of an axis-aligned box (0 on a face).
float DistanceFromBoxSurface( const Vector &p, const Vector &vMin, const Vector &vMax )
{
	float flBest = 1e30f;
	for ( int k = 0; k < 3; ++k )
		flBest = std::min( { flBest, std::fabs( p[ k ] - vMin[ k ] ), std::fabs( p[ k ] - vMax[ k ] ) } );
	return flBest;
}

bool InBox( const Vector &p, const Vector &vMin, const Vector &vMax, float flTolerance = 1e-3f )
{
	for ( int k = 0; k < 3; ++k )
	{
		if ( p[ k ] < vMin[ k ] - flTolerance || p[ k ] > vMax[ k ] + flTolerance )
			return false;
	}
	return true;
}
} // namespace

TEST( ParticleModel, TheShippedCrateLoadsWithItsHitboxAndAttachment )
{
	std::string text = ReadFile( std::string( ZOL_SOURCE_DIR ) + "/content/content/models/crate.tmsh" );
	ASSERT_FALSE( text.empty() );
	CParticleModel model;
	CUtlString error;
	ASSERT_TRUE( model.LoadFromText( text.data(), text.size(), "models/crate.tmsh", &error ) ) << error.Get();
	EXPECT_STREQ( model.GetName(), "models/crate.tmsh" );
	EXPECT_EQ( model.GetVertices().size(), 8u );
	EXPECT_EQ( model.GetTriangleCount(), 12 );
	ASSERT_EQ( model.GetHitboxes().size(), 1u );
	EXPECT_STREQ( model.GetHitboxes()[ 0 ].m_Name.Get(), "body" );
	const ParticleModelAttachment_t *pLid = model.FindAttachment( "LID" );
	ASSERT_NE( pLid, nullptr );
	EXPECT_FLOAT_EQ( pLid->m_Frame.m_vOrigin.z, 32.0f );
	EXPECT_EQ( model.FindAttachment( "handle" ), nullptr );

	// Its skins, lid and animations, which the preview controls list.
	ASSERT_EQ( model.GetMaterialGroups().size(), 3u );
	EXPECT_STREQ( model.GetMaterialGroups()[ 1 ].m_Name.Get(), "charred" );
	ASSERT_NE( model.FindMaterialGroup( "PAINTED" ), nullptr );
	EXPECT_FLOAT_EQ( model.FindMaterialGroup( "painted" )->m_vColor.z, 150.0f );
	ASSERT_EQ( model.GetBodyGroups().size(), 1u );
	ASSERT_EQ( model.GetBodyGroups()[ 0 ].m_Choices.size(), 2u );
	EXPECT_STREQ( model.GetBodyGroups()[ 0 ].m_Choices[ 1 ].m_Name.Get(), "open" );
	ASSERT_EQ( model.GetSequences().size(), 3u );
	ASSERT_NE( model.FindSequence( "lid_open" ), nullptr );
	EXPECT_FALSE( model.FindSequence( "lid_open" )->m_bLooping );
	EXPECT_EQ( model.FindSequence( "rattle" )->m_nFrameCount, 24 );
}

TEST( ParticleModel, BodyGroupsShowTheChosenTrianglesOnly )
{
	CParticleModel model;
	CUtlString error;
	// Four triangles: two of the body, the lid (2), a handle (3) of the other choice.
	ASSERT_TRUE( LoadModel( &model,
		"m_Vertices = [ [ 0, 0, 0 ], [ 1, 0, 0 ], [ 0, 1, 0 ], [ 0, 0, 1 ] ] m_Triangles = [ 0, 1, 2, 0, 1, 3, 0, 2, 3, 1, 2, 3 ]\n"
		"m_BodyGroups = [ { m_name = \"top\" m_Choices = [ { m_name = \"lid\" m_nFirstTriangle = 2 m_nTriangleCount = 1 },\n"
		"  { m_name = \"handle\" m_nFirstTriangle = 3 m_nTriangleCount = 1 }, { m_name = \"none\" } ] } ]",
		&error ) )
		<< error.Get();
	auto pModel = std::make_shared<CParticleModel>( model );
	struct Case_t
	{
		int m_nChoice;
		int m_nTriangles;
	} cases[] = { { 0, 3 }, { 1, 3 }, { 2, 2 }, { 7, 3 } };
	for ( const Case_t &c : cases )
	{
		ParticleModelPtr_t pShown = ParticleModelWithBodyGroups( pModel, { c.m_nChoice } );
		EXPECT_EQ( pShown->GetTriangleCount(), c.m_nTriangles ) << "choice " << c.m_nChoice;
	}
	ParticleModelPtr_t pHandle = ParticleModelWithBodyGroups( pModel, { 1 } );
	EXPECT_EQ( pHandle->GetTriangles()[ 6 ], 1 ) << "the handle's triangle stands third";
	// A model without body groups is shown as it is.
	ParticleModelPtr_t pPlain = std::make_shared<CParticleModel>();
	EXPECT_EQ( ParticleModelWithBodyGroups( pPlain, { 1 } ), pPlain );
}

TEST( ParticleModel, BrokenFilesSayWhatIsWrongAndLeaveTheModelEmpty )
{
	struct Case_t
	{
		const char *m_pBody;
		const char *m_pExpected;
	};
	const Case_t cases[] = {
		{ "m_Vertices = [ [ 0, 0, 0 ], [ 1, 0 ] ]", "m_Vertices[1]" },
		{ "m_Vertices = [ [ 0, 0, 0 ] ] m_Triangles = [ 0, 0, 3 ]", "m_Triangles[2]" },
		{ "m_Vertices = [ [ 0, 0, 0 ] ] m_Triangles = [ 0, 0 ]", "multiple of three" },
		{ "m_Vertices = [ [ 0, 0, 0 ] ] m_Triangles = [ 0, 0, -1 ]", "m_Triangles[2]" },
		{ "m_Vertices = \"lots\"", "m_Vertices is not an array" },
		{ "m_HitBoxes = [ { m_name = \"a\" m_nShape = \"cone\" } ]", "unknown shape \"cone\"" },
		{ "m_HitBoxes = [ { m_name = \"a\" m_vMinBounds = [ 1, 0, 0 ] m_vMaxBounds = [ 0, 1, 1 ] } ]", "m_vMinBounds lies above" },
		{ "m_HitBoxes = [ { m_name = \"a\" m_vMinBounds = [ 0, 0, 0 ] } ]", "needs m_vMinBounds and m_vMaxBounds" },
		{ "m_HitBoxes = [ { m_name = \"head\" m_nShape = \"sphere\" m_flRadius = 0 } ]", "positive m_flRadius" },
		{ "m_HitBoxes = [ { m_nShape = \"sphere\" m_flRadius = 2 } ]", "m_HitBoxes[0] has no m_name" },
		{ "m_Attachments = [ { m_name = \"tip\" m_vOrigin = [ 0, \"x\", 0 ] } ]", "m_Attachments[0]: m_vOrigin" },
		{ "m_Attachments = [ 5 ]", "m_Attachments[0] is not a table" },
		{ "m_MaterialGroups = [ { m_name = \"red\" m_vColor = [ 300, 0, 0 ] } ]", "m_vColor goes from 0 to 255" },
		{ "m_BodyGroups = [ { m_name = \"lid\" } ]", "m_Choices is not an array" },
		{ "m_Vertices = [ [ 0, 0, 0 ] ] m_Triangles = [ 0, 0, 0 ] m_BodyGroups = [ { m_name = \"lid\" m_Choices = [ { m_name = \"on\" m_nFirstTriangle = 1 m_nTriangleCount = 1 } ] } ]",
			"lie past the model's 1" },
		{ "m_Sequences = [ { m_name = \"run\" m_nFrameCount = 0 } ]", "m_nFrameCount is not a whole number of at least 1" },
		{ "m_Sequences = [ { m_name = \"run\" m_flFps = -3 } ]", "m_flFps is not a rate" },
		{ "m_Sequences = [ { m_nFrameCount = 3 } ]", "m_Sequences[0] has no m_name" },
	};
	for ( const Case_t &c : cases )
	{
		CParticleModel model;
		CUtlString error;
		EXPECT_FALSE( LoadModel( &model, c.m_pBody, &error ) ) << c.m_pBody;
		EXPECT_NE( std::string( error.Get() ).find( c.m_pExpected ), std::string::npos ) << error.Get();
		EXPECT_NE( std::string( error.Get() ).find( "models/test.tmsh" ), std::string::npos ) << error.Get();
		EXPECT_TRUE( model.GetVertices().empty() && model.GetHitboxes().empty() && model.GetAttachments().empty() );
	}

	// Text that isn't KV3 at all: the parser's position is passed on.
	CParticleModel model;
	CUtlString error;
	const char broken[] = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n{ m_Vertices = [ [ 0, 0";
	EXPECT_FALSE( model.LoadFromText( broken, sizeof( broken ) - 1, "models/broken.tmsh", &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "models/broken.tmsh: 2:" ), std::string::npos ) << error.Get();
	EXPECT_FALSE( model.LoadFromText( "", 0, "models/empty.tmsh", &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "models/empty.tmsh" ), std::string::npos ) << error.Get();
}

TEST( ParticleModel, HitboxSamplesLieOnOrInTheHitbox )
{
	CParticleModel model;
	CUtlString error;
	ASSERT_TRUE( LoadModel( &model, R"(m_HitBoxes = [
		{ m_name = "body" m_vMinBounds = [ -2, -4, 0 ] m_vMaxBounds = [ 2, 4, 10 ] m_vOrigin = [ 100, 0, 0 ] },
		{ m_name = "turned" m_vMinBounds = [ -1, -20, -1 ] m_vMaxBounds = [ 1, 20, 1 ] m_angRotation = [ 0, 90, 0 ] m_HitboxSet = "extra" },
		{ m_name = "head" m_nShape = "sphere" m_flRadius = 3 m_vOrigin = [ 0, 0, 50 ] m_HitboxSet = "extra" } ])",
		&error ) )
		<< error.Get();
	CParticleRandom random( 3 );
	const Vector vOne( 1.0f, 1.0f, 1.0f );
	for ( int i = 0; i < 200; ++i )
	{
		Vector p = model.SampleHitbox( 0, false, vOne, random );
		EXPECT_TRUE( InBox( p, Vector( 98, -4, 0 ), Vector( 102, 4, 10 ) ) ) << p.x << " " << p.y << " " << p.z;
		EXPECT_NEAR( DistanceFromBoxSurface( p, Vector( 98, -4, 0 ), Vector( 102, 4, 10 ) ), 0.0f, 1e-3f );

		Vector q = model.SampleHitbox( 0, true, Vector( 0.5f, 0.5f, 0.5f ), random );
		EXPECT_TRUE( InBox( q, Vector( 99, -2, 0 ), Vector( 101, 2, 5 ) ) ) << q.x << " " << q.y << " " << q.z;

		// Turned a quarter about z: its long side runs along x.
		Vector t = model.SampleHitbox( 1, true, vOne, random );
		EXPECT_TRUE( InBox( t, Vector( -20, -1, -1 ), Vector( 20, 1, 1 ) ) ) << t.x << " " << t.y << " " << t.z;
		EXPECT_TRUE( model.IsInHitbox( 1, t, vOne, 1e-3f ) );

		Vector s = model.SampleHitbox( 2, false, vOne, random );
		EXPECT_NEAR( std::sqrt( s.x * s.x + s.y * s.y + ( s.z - 50 ) * ( s.z - 50 ) ), 3.0f, 1e-3f );
	}
	EXPECT_FALSE( model.IsInHitbox( 1, Vector( 0, 10, 0 ), vOne, 1e-3f ) );

	std::vector<int> set;
	model.GetHitboxesOfSet( "EXTRA", &set );
	EXPECT_EQ( set, ( std::vector<int>{ 1, 2 } ) );
	model.GetHitboxesOfSet( "nosuchset", &set );
	EXPECT_EQ( set, ( std::vector<int>{ 0, 1, 2 } ) );
}

TEST( ParticleModel, SurfaceSamplesLieOnTheTrianglesByArea )
{
	CParticleModel model;
	CUtlString error;
	// A big square at z 0 and a tiny triangle at z 10: nearly every sample is on the square.
	ASSERT_TRUE( LoadModel( &model, R"(m_Vertices = [ [ 0, 0, 0 ], [ 10, 0, 0 ], [ 10, 10, 0 ], [ 0, 10, 0 ], [ 0, 0, 10 ], [ 0.1, 0, 10 ], [ 0, 0.1, 10 ] ]
		m_Triangles = [ 0, 1, 2, 0, 2, 3, 4, 5, 6 ])",
		&error ) )
		<< error.Get();
	CParticleRandom random( 9 );
	int nOnSquare = 0;
	for ( int i = 0; i < 1000; ++i )
	{
		Vector p;
		ASSERT_TRUE( model.SampleSurface( random, &p ) );
		bool bSquare = p.z == 0.0f && InBox( p, Vector( 0, 0, 0 ), Vector( 10, 10, 0 ) );
		bool bTiny = p.z == 10.0f && p.x >= 0.0f && p.y >= 0.0f && p.x + p.y <= 0.1f + 1e-4f;
		EXPECT_TRUE( bSquare || bTiny ) << p.x << " " << p.y << " " << p.z;
		nOnSquare += bSquare ? 1 : 0;
	}
	EXPECT_GT( nOnSquare, 990 );

	CParticleModel empty;
	ASSERT_TRUE( LoadModel( &empty, "", &error ) );
	Vector p;
	EXPECT_FALSE( empty.SampleSurface( random, &p ) );
}

class ParticleModelResources : public ::testing::Test
{
protected:
	void SetUp() override { SetResourceSystem( &m_Resources ); }
	void TearDown() override { SetResourceSystem( nullptr ); }

	void Publish( const char *pName, const std::string &text )
	{
		m_Resources.ReplaceResourceData( m_Resources.FindOrCreateBinding( pName ), std::make_shared<CBinaryResourceData>( text.data(), text.size() ) );
	}

	CResourceSystem m_Resources;
};

TEST_F( ParticleModelResources, ModelsComeFromTheResourceAndFollowItsReload )
{
	Publish( "models/box.tmsh", ModelText( "m_HitBoxes = [ { m_name = \"a\" m_vMinBounds = [ 0, 0, 0 ] m_vMaxBounds = [ 1, 1, 1 ] } ]" ) );
	CUtlString error;
	ParticleModelPtr_t pModel = FindParticleModel( "Models\\Box.tmsh", &error );
	ASSERT_TRUE( pModel ) << error.Get();
	EXPECT_EQ( pModel->GetHitboxes().size(), 1u );
	EXPECT_EQ( FindParticleModel( "models/box.tmsh", &error ), pModel ); // parsed once per version

	Publish( "models/box.tmsh", ModelText( "m_HitBoxes = [ { m_name = \"a\" m_vMinBounds = [ 0, 0, 0 ] m_vMaxBounds = [ 1, 1, 1 ] }, "
										   "{ m_name = \"b\" m_nShape = \"sphere\" m_flRadius = 1 } ]" ) );
	ParticleModelPtr_t pReloaded = FindParticleModel( "models/box.tmsh", &error );
	ASSERT_TRUE( pReloaded ) << error.Get();
	EXPECT_EQ( pReloaded->GetHitboxes().size(), 2u );
	EXPECT_EQ( pModel->GetHitboxes().size(), 1u ); // a holder of the old version keeps it whole
}

TEST_F( ParticleModelResources, MissingAndMalformedModelsGiveAReason )
{
	CUtlString error;
	EXPECT_FALSE( FindParticleModel( "models/nothing.tmsh", &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "models/nothing.tmsh" ), std::string::npos ) << error.Get();
	EXPECT_FALSE( FindParticleModel( "", &error ) );
	EXPECT_FALSE( error.IsEmpty() );

	Publish( "models/bad.tmsh", ModelText( "m_Triangles = [ 0, 1, 2 ]" ) );
	EXPECT_FALSE( FindParticleModel( "models/bad.tmsh", &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "m_Triangles[0]" ), std::string::npos ) << error.Get();
	// Asking again gives the same reason, not a crash or a half model.
	CUtlString again;
	EXPECT_FALSE( FindParticleModel( "models/bad.tmsh", &again ) );
	EXPECT_STREQ( again.Get(), error.Get() );

	// Compiled resources hold the model itself.
	CParticleModelCompiler compiler;
	std::string text = ModelText( "m_Vertices = [ [ 1, 2, 3 ] ]" );
	CUtlBuffer source( text.data(), text.size() );
	std::unique_ptr<CResourceData> pData;
	ASSERT_TRUE( compiler.Compile( source, "models/one.tmsh", &pData, &error ) ) << error.Get();
	m_Resources.ReplaceResourceData( m_Resources.FindOrCreateBinding( "models/one.tmsh" ), std::shared_ptr<const CResourceData>( std::move( pData ) ) );
	ParticleModelPtr_t pModel = FindParticleModel( "models/one.tmsh", &error );
	ASSERT_TRUE( pModel ) << error.Get();
	EXPECT_EQ( pModel->GetVertices().size(), 1u );
	std::string bad = ModelText( "m_Vertices = 3" );
	CUtlBuffer badSource( bad.data(), bad.size() );
	EXPECT_FALSE( compiler.Compile( badSource, "models/bad2.tmsh", &pData, &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "models/bad2.tmsh" ), std::string::npos ) << error.Get();
}
