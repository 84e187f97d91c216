// What the view gives the simulation: cameras for camera-driven inputs, and models on
// control points and in model variables for particles born on a model.

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <type_traits>

#include "core/host/resourcesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/particlemodel.h"
#include "core/particles/sim/particleinputs.h"
#include "core/particles/sim/particlesimmath.h"
#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
KeyValues3 ParseGeneric( const char *pBody )
{
	KeyValues3 kv;
	CUtlString error;
	std::string text = std::string( "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n" ) + pBody;
	EXPECT_TRUE( LoadKV3FromText( &kv, &error, text.c_str(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get();
	return kv;
}

template <typename Input> Input LoadInput( const char *pBody, bool bPerParticle = false )
{
	Input input;
	CUtlString error;
	KeyValues3 kv = ParseGeneric( pBody );
	EXPECT_TRUE( input.Load( &kv, &error ) ) << error.Get();
	ParticleInputCompileContext_t context;
	if constexpr ( std::is_same_v<Input, CSimFloatInput> || std::is_same_v<Input, CSimVecInput> )
		input.Compile( &context, bPerParticle );
	else
		input.Compile( &context );
	return input;
}

ParticleCamera_t Camera( const Vector &vPosition, const Vector &vForward, float flFov = 90.0f )
{
	ParticleCamera_t camera;
	camera.m_vPosition = vPosition;
	camera.m_vForward = vForward;
	camera.m_flFovDegrees = flFov;
	return camera;
}

// Three particles standing still, control point 0 at the origin.
class ParticleCameras : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pDef = CompileBody( R"(m_flConstantLifespan = 100.0
			m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 3 } ])" );
		ASSERT_TRUE( m_pDef );
		m_pCollection = MakeCollection( m_pDef );
		Step( m_pCollection.get(), 2 );
		ASSERT_EQ( m_pCollection->Count(), 3 );
	}

	void PlaceParticle( int i, const Vector &v )
	{
		for ( int k = 0; k < 3; ++k )
			m_pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ] = v[ k ];
	}

	ParticleDefinitionPtr_t m_pDef;
	std::unique_ptr<CParticleCollection> m_pCollection;
};
} // namespace

TEST_F( ParticleCameras, ClosestCameraDistanceFollowsTheCameraAndFallsBackWithoutOne )
{
	CSimFloatInput input = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_CLOSEST_CAMERA_DISTANCE\" m_flNoCameraFallback = 7.5 }" );
	EXPECT_FLOAT_EQ( input.EvaluateCollection( *m_pCollection ), 7.5f );

	ParticleCamera_t far = Camera( Vector( 300, 0, 0 ), Vector( -1, 0, 0 ) );
	m_pCollection->SetCameras( &far, 1 );
	float flFar = input.EvaluateCollection( *m_pCollection );
	EXPECT_FLOAT_EQ( flFar, 300.0f );

	ParticleCamera_t nearer = Camera( Vector( 0, 40, 30 ), Vector( 0, -1, 0 ) );
	m_pCollection->SetCameras( &nearer, 1 );
	EXPECT_FLOAT_EQ( input.EvaluateCollection( *m_pCollection ), 50.0f );

	// Of several cameras the nearest counts; the system's own origin moves with control point 0.
	ParticleCamera_t both[] = { far, nearer };
	m_pCollection->SetCameras( both, 2 );
	EXPECT_FLOAT_EQ( input.EvaluateCollection( *m_pCollection ), 50.0f );
	m_pCollection->SetControlPoint( 0, Vector( 290, 0, 0 ) );
	EXPECT_FLOAT_EQ( input.EvaluateCollection( *m_pCollection ), 10.0f );

	m_pCollection->ClearCameras();
	EXPECT_EQ( m_pCollection->GetCameraCount(), 0 );
	EXPECT_FLOAT_EQ( input.EvaluateCollection( *m_pCollection ), 7.5f );
}

TEST_F( ParticleCameras, CameraDistanceDrivesASimulatedValue )
{
	// The emission rate is the camera distance: the nearer camera gets fewer particles.
	ParticleDefinitionPtr_t pDef = CompileBody( R"(m_flConstantLifespan = 100.0 m_nMaxParticles = 10000
		m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = { m_nType = "PF_TYPE_CLOSEST_CAMERA_DISTANCE" m_flNoCameraFallback = 0.0 } } ])" );
	ASSERT_TRUE( pDef );
	auto count = [ & ]( const ParticleCamera_t *pCamera ) {
		auto pCollection = MakeCollection( pDef );
		if ( pCamera )
			pCollection->SetCameras( pCamera, 1 );
		Step( pCollection.get(), 60 );
		return pCollection->GetActiveParticleCount( false );
	};
	ParticleCamera_t far = Camera( Vector( 0, 0, 400 ), Vector( 0, 0, -1 ) );
	ParticleCamera_t nearer = Camera( Vector( 0, 0, 100 ), Vector( 0, 0, -1 ) );
	int nFar = count( &far ), nNear = count( &nearer );
	EXPECT_NEAR( nFar, 400, 8 );
	EXPECT_NEAR( nNear, 100, 4 );
	EXPECT_EQ( count( nullptr ), 0 );
}

TEST_F( ParticleCameras, RendererCameraDistanceAndFacingMeasureTheControlPointOrTheBoundsCentre )
{
	m_pCollection->SetControlPoint( 2, Vector( 0, 0, 100 ) );
	CSimFloatInput distance = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_RENDERER_CAMERA_DISTANCE\" m_nControlPoint = 2 m_flNoCameraFallback = -1 }" );
	CSimFloatInput facing = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT\" m_nControlPoint = 2 m_flNoCameraFallback = 2 }" );
	EXPECT_FLOAT_EQ( distance.EvaluateCollection( *m_pCollection ), -1.0f );
	EXPECT_FLOAT_EQ( facing.EvaluateCollection( *m_pCollection ), 2.0f );

	ParticleCamera_t camera = Camera( Vector( 0, 0, 0 ), Vector( 0, 0, 5 ) ); // not unit: the collection normalises
	m_pCollection->SetCameras( &camera, 1 );
	EXPECT_FLOAT_EQ( distance.EvaluateCollection( *m_pCollection ), 100.0f );
	EXPECT_NEAR( facing.EvaluateCollection( *m_pCollection ), 1.0f, 1e-5f );
	camera.m_vForward = Vector( 1, 0, 0 );
	m_pCollection->SetCameras( &camera, 1 );
	EXPECT_NEAR( facing.EvaluateCollection( *m_pCollection ), 0.0f, 1e-5f );
	camera.m_vForward = Vector( 0, 0, -1 );
	m_pCollection->SetCameras( &camera, 1 );
	EXPECT_NEAR( facing.EvaluateCollection( *m_pCollection ), -1.0f, 1e-5f );

	// Measured from the middle of the particles instead of the point.
	CSimFloatInput fromBounds = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_RENDERER_CAMERA_DISTANCE\" m_nControlPoint = 2 m_bUseBoundsCenter = true }" );
	PlaceParticle( 0, Vector( 10, 0, 0 ) );
	PlaceParticle( 1, Vector( 30, 0, 0 ) );
	PlaceParticle( 2, Vector( 20, 0, 0 ) );
	m_pCollection->RecalculateBounds();
	ASSERT_TRUE( m_pCollection->AreBoundsValid() );
	EXPECT_NEAR( fromBounds.EvaluateCollection( *m_pCollection ), 20.0f, 1e-3f );
}

TEST_F( ParticleCameras, ScreenSpaceInputsSeeWhereEachParticleShows )
{
	// Looking down +x with a 90 degree view: at depth 10 the edge of the screen is 10 to the side.
	ParticleCamera_t camera = Camera( Vector( 0, 0, 0 ), Vector( 1, 0, 0 ), 90.0f );
	m_pCollection->SetCameras( &camera, 1 );
	PlaceParticle( 0, Vector( 10, 0, 0 ) );
	PlaceParticle( 1, Vector( 10, 5, 0 ) );
	PlaceParticle( 2, Vector( -10, 0, 0 ) );
	CSimFloatInput distance = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE\" }", true );
	CSimFloatInput facing = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT\" }", true );
	float flDistance[ 3 ], flFacing[ 3 ];
	distance.EvaluatePerParticle( *m_pCollection, 0, 3, flDistance );
	facing.EvaluatePerParticle( *m_pCollection, 0, 3, flFacing );
	EXPECT_NEAR( flDistance[ 0 ], 0.0f, 1e-5f );
	EXPECT_NEAR( flDistance[ 1 ], 0.5f, 1e-4f );
	EXPECT_GT( flDistance[ 2 ], 1000.0f ); // behind the camera: far off screen
	EXPECT_NEAR( flFacing[ 0 ], 1.0f, 1e-5f );
	EXPECT_NEAR( flFacing[ 1 ], 10.0f / std::sqrt( 125.0f ), 1e-5f );
	EXPECT_NEAR( flFacing[ 2 ], -1.0f, 1e-5f );

	// A narrower view puts the same particle nearer the edge.
	camera.m_flFovDegrees = 60.0f;
	m_pCollection->SetCameras( &camera, 1 );
	distance.EvaluatePerParticle( *m_pCollection, 0, 3, flDistance );
	EXPECT_NEAR( flDistance[ 1 ], 0.5f / std::tan( 30.0f * 3.14159265f / 180.0f ), 1e-4f );

	m_pCollection->ClearCameras();
	CSimFloatInput fallback = LoadInput<CSimFloatInput>( "{ m_nType = \"PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE\" m_flNoCameraFallback = 3 }", true );
	fallback.EvaluatePerParticle( *m_pCollection, 0, 3, flDistance );
	EXPECT_FLOAT_EQ( flDistance[ 1 ], 3.0f );
}

TEST_F( ParticleCameras, ClosestCameraPositionAndChildrenSeeTheSameCameras )
{
	CSimVecInput input = LoadInput<CSimVecInput>( "{ m_nType = \"PVEC_TYPE_CLOSEST_CAMERA_POSITION\" }" );
	m_pCollection->SetControlPoint( 0, Vector( 1, 2, 3 ) );
	Vector v = input.EvaluateCollection( *m_pCollection );
	EXPECT_FLOAT_EQ( v.z, 3.0f ); // no camera: where the system stands

	ParticleCamera_t cameras[] = { Camera( Vector( 0, 0, 500 ), Vector( 0, 0, -1 ) ), Camera( Vector( 30, 2, 3 ), Vector( -1, 0, 0 ) ) };
	m_pCollection->SetCameras( cameras, 2 );
	v = input.EvaluateCollection( *m_pCollection );
	EXPECT_FLOAT_EQ( v.x, 30.0f );

	ParticleDefinitionPtr_t pParent = CompileBody( R"(m_Children = [ { m_ChildRef = "child.tfxs" } ])", { { "child.tfxs", DefinitionText( "" ) } } );
	ASSERT_TRUE( pParent );
	auto pCollection = MakeCollection( pParent );
	pCollection->SetCameras( cameras, 2 );
	ASSERT_NE( pCollection->GetFirstChild(), nullptr );
	EXPECT_EQ( pCollection->GetFirstChild()->GetCameraCount(), 2 );
	const auto &child = static_cast<const CParticleCollection &>( *pCollection->GetFirstChild() );
	EXPECT_FLOAT_EQ( input.EvaluateCollection( child ).x, 30.0f ); // without cameras it would be the origin
}

namespace
{
const char *const CRATE_TEXT = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
							   "{ m_HitBoxes = [ { m_name = \"body\" m_vMinBounds = [ -16, -16, 0 ] m_vMaxBounds = [ 16, 16, 32 ] },"
							   "  { m_name = \"flag\" m_vMinBounds = [ 0, 0, 40 ] m_vMaxBounds = [ 1, 1, 41 ] m_HitboxSet = \"top\" } ] }";

// Models published through the resource system, as the editor's asset compile does.
class ParticleModels : public ::testing::Test
{
protected:
	void SetUp() override
	{
		SetResourceSystem( &m_Resources );
		Publish( "models/crate.tmsh", CRATE_TEXT );
	}
	void TearDown() override { SetResourceSystem( nullptr ); }

	void Publish( const char *pName, const std::string &text )
	{
		m_Resources.ReplaceResourceData( m_Resources.FindOrCreateBinding( pName ), std::make_shared<CBinaryResourceData>( text.data(), text.size() ) );
	}

	static std::string CreateOnModel( const char *pModelInput, const char *pExtra = "" )
	{
		return std::string( "m_flConstantLifespan = 100.0 m_Emitters = [ { _class = \"C_OP_InstantaneousEmitter\" m_nParticlesToEmit = 200 } ]\n"
							"m_Initializers = [ { _class = \"C_INIT_CreateOnModel\" m_modelInput = " ) +
			   pModelInput + " " + pExtra + " } ]";
	}

	// Every particle's position, relative to pOrigin, in the box.
	static int CountInBox( const CParticleCollection &c, const Vector &vMin, const Vector &vMax )
	{
		int nIn = 0;
		for ( int i = 0; i < c.Count(); ++i )
		{
			bool bIn = true;
			for ( int k = 0; k < 3; ++k )
			{
				float p = c.Stream( PARTICLE_ATTRIBUTE_POSITION, k )[ i ];
				bIn = bIn && p >= vMin[ k ] - 1e-3f && p <= vMax[ k ] + 1e-3f;
			}
			nIn += bIn ? 1 : 0;
		}
		return nIn;
	}

	CResourceSystem m_Resources;
};
} // namespace

TEST_F( ParticleModels, ParticlesAreBornOnTheHitboxesOfTheControlPointsModel )
{
	ParticleDefinitionPtr_t pDef = CompileBody( CreateOnModel( "{ m_nType = \"PM_TYPE_CONTROL_POINT\" m_nControlPoint = 1 }" ) );
	ASSERT_TRUE( pDef );
	auto pCollection = MakeCollection( pDef );
	pCollection->SetControlPoint( 1, Vector( 100, 0, 0 ) );
	EXPECT_TRUE( pCollection->SetControlPointModel( 1, "models/crate.tmsh" ) );
	ASSERT_NE( pCollection->GetControlPointModel( 1 ), nullptr );
	Step( pCollection.get(), 1 );
	ASSERT_EQ( pCollection->Count(), 200 );
	// Only the default set's body: on its surface, moved to the control point.
	EXPECT_EQ( CountInBox( *pCollection, Vector( 84, -16, 0 ), Vector( 116, 16, 32 ) ), 200 );
	int nOnSurface = 0;
	for ( int i = 0; i < pCollection->Count(); ++i )
	{
		Vector p( pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ] - 100.0f, pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ],
			pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ] );
		bool bOnFace = std::fabs( std::fabs( p.x ) - 16.0f ) < 1e-3f || std::fabs( std::fabs( p.y ) - 16.0f ) < 1e-3f || std::fabs( p.z ) < 1e-3f ||
					   std::fabs( p.z - 32.0f ) < 1e-3f;
		nOnSurface += bOnFace ? 1 : 0;
	}
	EXPECT_EQ( nOnSurface, 200 );
}

TEST_F( ParticleModels, ForcedInsideTurnedAndOtherSets )
{
	// Inside the hitbox set "top" only, with the model turned a quarter about z at its point.
	ParticleDefinitionPtr_t pDef = CompileBody(
		CreateOnModel( "{ m_nType = \"PM_TYPE_CONTROL_POINT\" m_nControlPoint = 0 }", "m_nForceInModel = 1 m_HitboxSetName = \"top\"" ) );
	ASSERT_TRUE( pDef );
	auto pCollection = MakeCollection( pDef );
	pCollection->SetControlPointModel( 0, "models/crate.tmsh" );
	pCollection->SetControlPointOrientation( 0, Vector( 0, 1, 0 ), Vector( 1, 0, 0 ), Vector( 0, 0, 1 ) );
	Step( pCollection.get(), 1 );
	ASSERT_EQ( pCollection->Count(), 200 );
	// Local (x, y) goes to world (-y, x): the flag's 0..1 square lands at x -1..0, y 0..1.
	EXPECT_EQ( CountInBox( *pCollection, Vector( -1, 0, 40 ), Vector( 0, 1, 41 ) ), 200 );
	EXPECT_FLOAT_EQ( pCollection->Stream( PARTICLE_ATTRIBUTE_HITBOX_INDEX )[ 0 ], 1.0f );
}

TEST_F( ParticleModels, AModelVariableTakesTheModelItIsGiven )
{
	ParticleDefinitionPtr_t pDef = CompileBody( std::string( "m_NamedValueLocals = [ { m_Name = \"Prop\" m_ValueType = \"PVAL_RESOURCE:tmsh\" "
															 "m_DefaultConfig = { m_ConfigValue = \"models/crate.tmsh\" } } ]\n" ) +
												CreateOnModel( "{ m_nType = \"PM_TYPE_NAMED_VALUE_MODEL\" m_NamedValue = \"prop\" }" ) );
	ASSERT_TRUE( pDef );
	// The declared default is used as it stands.
	auto pCollection = MakeCollection( pDef );
	Step( pCollection.get(), 1 );
	EXPECT_EQ( CountInBox( *pCollection, Vector( -16, -16, 0 ), Vector( 16, 16, 32 ) ), 200 );

	// Another model given by name replaces it.
	Publish( "models/pole.tmsh", "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
								 "{ m_HitBoxes = [ { m_name = \"pole\" m_vMinBounds = [ 0, 0, 500 ] m_vMaxBounds = [ 1, 1, 600 ] } ] }" );
	auto pSecond = MakeCollection( pDef );
	EXPECT_TRUE( pSecond->SetNamedValueModel( ParticleParamID_t::Named( "Prop" ), "models/pole.tmsh" ) );
	Step( pSecond.get(), 1 );
	EXPECT_EQ( CountInBox( *pSecond, Vector( 0, 0, 500 ), Vector( 1, 1, 600 ) ), 200 );

	CSimModelInput input;
	KeyValues3 kv = ParseGeneric( "{ m_nType = \"PM_TYPE_NAMED_VALUE_MODEL\" m_NamedValue = \"Prop\" }" );
	CUtlString error;
	ASSERT_TRUE( input.Load( &kv, &error ) );
	ParticleInputCompileContext_t context;
	context.m_pBindings = const_cast<CHostNamedValueBindings *>( &pDef->m_NamedValues );
	input.Compile( &context );
	EXPECT_STREQ( input.GetModelName( *pSecond ), "models/pole.tmsh" );

	// A name that is no model leaves the variable empty, and the stand-in takes over.
	EXPECT_FALSE( pSecond->SetNamedValueModel( ParticleParamID_t::Named( "Prop" ), "models/missing.tmsh" ) );
	EXPECT_EQ( input.GetModel( *pSecond ), nullptr );
	EXPECT_STREQ( input.GetModelName( *pSecond ), "" );
	EXPECT_FALSE( pSecond->SetNamedValueModel( ParticleParamID_t::Named( "NoSuchVariable" ), "models/crate.tmsh" ) );
}

TEST_F( ParticleModels, WithoutAModelTheStandInSphereStays )
{
	Publish( "models/broken.tmsh", "not a model" );
	for ( const char *pInput : { "{ m_nType = \"PM_TYPE_CONTROL_POINT\" m_nControlPoint = 3 }", "{ m_nType = \"PM_TYPE_NAMED_VALUE_EHANDLE\" m_NamedValue = \"who\" }" } )
	{
		ParticleDefinitionPtr_t pDef = CompileBody( CreateOnModel( pInput ) );
		ASSERT_TRUE( pDef );
		auto pCollection = MakeCollection( pDef );
		EXPECT_FALSE( pCollection->SetControlPointModel( 3, "models/broken.tmsh" ) );
		EXPECT_EQ( pCollection->GetControlPointModel( 3 ), nullptr );
		Step( pCollection.get(), 1 );
		ASSERT_EQ( pCollection->Count(), 200 );
		for ( int i = 0; i < pCollection->Count(); ++i )
		{
			Vector p( pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ], pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ],
				pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ] );
			EXPECT_NEAR( ParticleMath::Length( p ), 8.0f, 1e-3f );
		}
	}
}

TEST_F( ParticleModels, ChildrenCarryTheParentsControlPointModels )
{
	ParticleDefinitionPtr_t pParent = CompileBody( R"(m_Children = [ { m_ChildRef = "child.tfxs" } ])",
		{ { "child.tfxs", DefinitionText( CreateOnModel( "{ m_nType = \"PM_TYPE_CONTROL_POINT\" m_nControlPoint = 0 }" ) ) } } );
	ASSERT_TRUE( pParent );
	auto pCollection = MakeCollection( pParent );
	ASSERT_TRUE( pCollection->SetControlPointModel( 0, "models/crate.tmsh" ) );
	ASSERT_NE( pCollection->GetFirstChild(), nullptr );
	EXPECT_NE( pCollection->GetFirstChild()->GetControlPointModel( 0 ), nullptr );
	EXPECT_TRUE( pCollection->SetControlPointModel( 0, "" ) );
	EXPECT_EQ( pCollection->GetFirstChild()->GetControlPointModel( 0 ), nullptr );
}

TEST_F( ParticleModels, TheModelsRendererDrawsTheBoundModelElseItsOwn )
{
	ParticleDefinitionPtr_t pDef = CompileBody( R"(m_Renderers = [ { _class = "C_OP_RenderModels" m_ModelList = [ { m_model = "models/listed.tmsh" } ]
		m_modelInput = { m_nType = "PM_TYPE_CONTROL_POINT" m_nControlPoint = 2 } } ])" );
	ASSERT_TRUE( pDef );
	auto pCollection = MakeCollection( pDef );
	ASSERT_EQ( pCollection->GetRendererCount(), 1 );
	ParticleDrawData_t data;
	ASSERT_TRUE( pCollection->GetDrawData( 0, &data ) );
	EXPECT_STREQ( data.m_pResource, "models/listed.tmsh" );
	ASSERT_TRUE( pCollection->SetControlPointModel( 2, "models/crate.tmsh" ) );
	ASSERT_TRUE( pCollection->GetDrawData( 0, &data ) );
	EXPECT_STREQ( data.m_pResource, "models/crate.tmsh" );
}
