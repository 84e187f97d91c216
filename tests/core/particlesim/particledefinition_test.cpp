// Compiling definitions: what a definition tells of its control points and named values,
// which functions take part, and clear refusals of bad input.

#include <gtest/gtest.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/sim/particlecontrolpointuse.h"
#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
bool ReadFile( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pError )
{
	std::ifstream file( pPath, std::ios::binary );
	if ( !file )
	{
		pError->Set( "cannot open file" );
		return false;
	}
	std::stringstream text;
	text << file.rdbuf();
	pBuffer->PutString( text.str().c_str() );
	return true;
}

std::string CompileError( const std::string &body, const std::map<std::string, std::string> &children = {} )
{
	CUtlString error;
	ParticleDefinitionPtr_t pDef = CompileText( DefinitionText( body ), &error, children );
	EXPECT_EQ( pDef, nullptr ) << body;
	return error.Get();
}

KeyValues3 Table( const char *pText )
{
	KeyValues3 kv;
	CUtlString error;
	std::string text = std::string( "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n" ) + pText;
	EXPECT_TRUE( LoadKV3FromText( &kv, &error, text.c_str(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get();
	return kv;
}
} // namespace

TEST( ParticleDefinition, ShippedSamplesCompileWithTheirChildren )
{
	std::filesystem::path samples = std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content/particles/samples";
	int nCompiled = 0;
	for ( const auto &entry : std::filesystem::directory_iterator( samples ) )
	{
		if ( entry.path().extension() != ".tfxs" )
			continue;
		std::string path = entry.path().string();
		CParticleDefinitionFileCompiler compiler( CParticleDefinitionFileCompiler::FindContentRoot( path.c_str() ).Get(), ReadFile );
		CUtlString error;
		ParticleDefinitionPtr_t pDef = compiler.Compile( path.c_str(), &error );
		ASSERT_TRUE( pDef ) << path << ": " << error.Get();
		EXPECT_FALSE( pDef->GetFunctions( PARTICLE_FUNCTION_RENDERER ).empty() && pDef->m_Children.empty() ) << path;
		++nCompiled;
	}
	EXPECT_GE( nCompiled, 5 );
}

TEST( ParticleDefinition, ContentRootIsAboveTheParticlesFolder )
{
	EXPECT_STREQ( CParticleDefinitionFileCompiler::FindContentRoot( "/a/b/content/particles/samples/x.tfxs" ).Get(), "/a/b/content" );
	EXPECT_STREQ( CParticleDefinitionFileCompiler::FindContentRoot( "/a/elsewhere/x.tfxs" ).Get(), "/a/elsewhere" );
}

TEST( ParticleDefinition, UsageMatchesWhatFunctionsReadAndWrite )
{
	std::map<std::string, std::string> children = { { "kid.tfxs", DefinitionText( R"(
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_nControlPointNumber = 7 } ])" ) } };
	ParticleDefinitionPtr_t pDef = CompileBody( R"(m_nBehaviorVersion = 12
		m_PreEmissionOperators = [ { _class = "C_OP_SetSingleControlPointPosition" m_nCP1 = 3 m_vecCP1Pos = [ 0.0, 0.0, 50.0 ] } ]
		m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = { m_nType = "PF_TYPE_CONTROL_POINT_COMPONENT" m_nControlPoint = 4 } } ]
		m_Initializers = [
			{ _class = "C_INIT_RandomRadius" m_bDisableOperator = true },
			{ _class = "C_INIT_CreateWithinSphere" m_nControlPointNumber = 3 },
			{ _class = "C_INIT_InitVec" m_nOutputField = 6 m_InputValue = { m_nType = "PVEC_TYPE_NAMED_VALUE" m_NamedValue = "Tint" } } ]
		m_Children = [ { m_ChildRef = "kid.tfxs" m_bDisableChild = true }, { m_ChildRef = "kid.tfxs" } ])",
		children );
	ASSERT_TRUE( pDef );
	const CParticleDefinitionUsage &usage = pDef->m_Usage;
	ParticleParamID_t cp3 = ParticleParamID_t::ControlPoint( 3 ), cp4 = ParticleParamID_t::ControlPoint( 4 ), cp7 = ParticleParamID_t::ControlPoint( 7 );

	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR, 0, cp3 ), 2 );
	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_INITIALIZER, 0, cp3 ), 1 ) << "the disabled initializer takes no runtime index";
	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_EMITTER, 0, cp4 ), 1 );
	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_INITIALIZER, 1, cp3 ), 0 );
	EXPECT_EQ( usage.GetUsageKind( cp4, 0 ), 2 );
	EXPECT_TRUE( usage.IsDriven( cp3 ) ) << "the pre-emission operator sets all three components";
	EXPECT_FALSE( usage.IsDriven( cp4 ) );
	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_CHILDREN, 0, cp7 ), 1 ) << "from version 5 a disabled child takes no index";
	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_CHILDREN, 1, cp7 ), 0 );
	EXPECT_FALSE( usage.Has( ParticleParamID_t::ControlPoint( 0 ) ) );

	ParticleParamID_t tint = ParticleParamID_t::Named( "tint" );
	ASSERT_TRUE( usage.Has( tint ) );
	EXPECT_STREQ( usage.GetNamedValueType( tint ), "PVAL_VEC3" );
	EXPECT_EQ( usage.GetFunctionFlags( PARTICLE_FUNCTION_INITIALIZER, 1, tint ), 1 );
	ASSERT_EQ( pDef->GetFunctions( PARTICLE_FUNCTION_INITIALIZER ).size(), 2u );
	EXPECT_EQ( pDef->m_Children.size(), 1u );

	CUtlVector<ParticleParamID_t> keys;
	usage.GetKeys( &keys );
	EXPECT_EQ( keys.Count(), 4 ); // points 3, 4 and 7, and the named value
}

TEST( ParticleDefinition, DefaultOffsetsComeWithTheUsageKind )
{
	CParticleDefinitionUsage usage;
	usage.Add( PARTICLE_FUNCTION_OPERATOR, 2, HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( 1 ), 5, CONTROL_POINT_ACCESS_READ ) );
	Vector vOffset;
	ASSERT_TRUE( usage.GetDefaultOffset( ParticleParamID_t::ControlPoint( 1 ), &vOffset ) );
	EXPECT_EQ( vOffset, Vector( 0, 0, 1 ) );
	usage.Add( PARTICLE_FUNCTION_OPERATOR, 3, HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( 2 ), 2, CONTROL_POINT_ACCESS_READ ) );
	EXPECT_FALSE( usage.GetDefaultOffset( ParticleParamID_t::ControlPoint( 2 ), &vOffset ) );
	CParticleDefinitionUsage same;
	same.Add( PARTICLE_FUNCTION_OPERATOR, 2, HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( 1 ), 5, CONTROL_POINT_ACCESS_READ ) );
	EXPECT_FALSE( same == usage );
	same.Add( PARTICLE_FUNCTION_OPERATOR, 3, HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( 2 ), 2, CONTROL_POINT_ACCESS_READ ) );
	EXPECT_TRUE( same == usage );
}

TEST( ParticleDefinition, DeclaredAndFallbackNamedValuesHaveKeys )
{
	ParticleDefinitionPtr_t pDef = CompileBody( R"(
		m_NamedValueLocals = [ { m_Name = "Heat" m_ValueType = "PVAL_FLOAT" } ]
		m_Operators = [ { _class = "C_OP_SetFloat" m_InputValue = { m_nType = "PF_TYPE_NAMED_VALUE" m_NamedValue = "Missing" } } ])" );
	ASSERT_TRUE( pDef );
	EXPECT_STREQ( pDef->m_Usage.GetNamedValueType( ParticleParamID_t::Named( "Heat" ) ), "PVAL_FLOAT" );
	EXPECT_STREQ( pDef->m_Usage.GetNamedValueType( ParticleParamID_t::Named( "Missing" ) ), "PVAL_FLOAT" );
	EXPECT_EQ( pDef->m_NamedValues.Count(), 2 );
	EXPECT_FALSE( pDef->m_NamedValues.Get( 1 ).m_bDeclared );
}

TEST( ParticleDefinition, FunctionControlPointUsesForTheFunctionList )
{
	KeyValues3 sphere = Table( R"({ _class = "C_INIT_CreateWithinSphere" m_nControlPointNumber = 2 })" );
	CUtlVector<ParticleControlPointUse_t> uses;
	GetParticleFunctionControlPointUses( &sphere, &uses );
	ASSERT_EQ( uses.Count(), 1 );
	EXPECT_EQ( uses[ 0 ].m_ID.m_nNumber, 2 );
	EXPECT_EQ( uses[ 0 ].m_nFlags, 1 );
	EXPECT_EQ( GetParticleFunctionWrittenAttributes( &sphere ), ( uint64_t( 1 ) << 0 ) | ( uint64_t( 1 ) << 2 ) );

	KeyValues3 setter = Table( R"({ _class = "C_OP_SetSingleControlPointPosition" m_nCP1 = 2 m_vecCP1Pos = { m_nType = "PVEC_TYPE_CP_VALUE" m_nControlPoint = 2 } })" );
	GetParticleFunctionControlPointUses( &setter, &uses );
	ASSERT_EQ( uses.Count(), 1 ) << "a read and a write of one point are one record";
	EXPECT_EQ( uses[ 0 ].m_nFlags, 3 );

	KeyValues3 unknown = Table( R"({ _class = "C_OP_NoSuchThing" })" );
	GetParticleFunctionControlPointUses( &unknown, &uses );
	EXPECT_EQ( uses.Count(), 0 );
	CUtlVector<HostControlPointUsage_t> usage;
	KeyValues3 initFloat = Table( R"({ _class = "C_INIT_InitFloat" m_InputValue = { m_nType = "PF_TYPE_CONTROL_POINT_SPEED" m_nControlPoint = 9 } })" );
	GetParticleFunctionControlPointUsage( &initFloat, &usage );
	ASSERT_EQ( usage.Count(), 1 );
	EXPECT_EQ( usage[ 0 ].m_nUsageKind, 2 );
}

TEST( ParticleDefinition, CompileErrorsSayWhatIsWrong )
{
	CUtlString error;
	EXPECT_EQ( CompileText( "{ not kv3", &error ), nullptr );
	EXPECT_FALSE( error.IsEmpty() );

	std::string wrongClass = DefinitionText( "" );
	wrongClass.replace( wrongClass.find( "CParticleSystemDefinition" ), strlen( "CParticleSystemDefinition" ), "CSomethingElse" );
	EXPECT_EQ( CompileText( wrongClass, &error ), nullptr );
	EXPECT_STREQ( error.Get(), "File does not contain a root object of type 'CParticleSystemDefinition'" );

	EXPECT_NE( CompileError( R"(m_Operators = [ { _class = "C_OP_Teleport" } ])" ).find( "unknown particle function class 'C_OP_Teleport'" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Operators = [ { m_fDrag = 1.0 } ])" ).find( "m_Operators[0] has no _class" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Operators = { _class = "C_OP_Decay" })" ).find( "not an array" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Initializers = [ 5 ])" ).find( "m_Initializers[0] is a" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Initializers = [ { _class = "C_INIT_InitFloat" m_nOutputField = 77 } ])" ).find( "77 is not a particle attribute" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Operators = [ { _class = "C_OP_SetVec" m_InputValue = [ 1.0 ] } ])" ).find( "m_Operators[0] (C_OP_SetVec)" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_PreEmissionOperators = [ { _class = "C_OP_SetSingleControlPointPosition" m_nCP1 = 64 } ])" ).find( "out of range" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Children = [ { m_ChildRef = "missing.tfxs" } ])" ).find( "Child 'missing.tfxs': no such file" ), std::string::npos );
	EXPECT_NE( CompileError( R"(m_Children = [ { m_flDelay = 1.0 } ])" ).find( "it has no m_ChildRef" ), std::string::npos );
}

TEST( ParticleDefinition, ASystemThatContainsItselfIsRefused )
{
	std::filesystem::path root = std::filesystem::temp_directory_path() / ( "zol_particlesim_" + std::to_string( ::getpid() ) );
	std::filesystem::create_directories( root / "particles" );
	auto write = [ & ]( const char *pName, const std::string &body ) { std::ofstream( root / "particles" / pName ) << DefinitionText( body ); };
	write( "a.tfxs", R"(m_Children = [ { m_ChildRef = "particles/b.tfxs" } ])" );
	write( "b.tfxs", R"(m_Children = [ { m_ChildRef = "particles/a.tfxs" } ])" );
	CParticleDefinitionFileCompiler compiler( root.string().c_str(), ReadFile );
	CUtlString error;
	EXPECT_EQ( compiler.Compile( "particles/a.tfxs", &error ), nullptr );
	EXPECT_NE( strstr( error.Get(), "its own child" ), nullptr ) << error.Get();
	std::filesystem::remove_all( root );
}

TEST( ParticleDefinition, TheSampleAndPresetClassesAllHaveBehaviour )
{
	// One of each class the shipped samples and the presets use, each in its own list.
	ParticleDefinitionPtr_t pDef = CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_ContinuousEmitter" }, { _class = "C_OP_InstantaneousEmitter" } ]
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" }, { _class = "C_INIT_InitFloat" }, { _class = "C_INIT_InitVec" },
			{ _class = "C_INIT_RandomRadius" }, { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 1.0 m_fLifetimeMax = 1.0 }, { _class = "C_INIT_RandomRotation" },
			{ _class = "C_INIT_InitialVelocityNoise" } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" }, { _class = "C_OP_Decay" }, { _class = "C_OP_FadeInSimple" }, { _class = "C_OP_FadeOutSimple" },
			{ _class = "C_OP_InterpolateRadius" }, { _class = "C_OP_ColorInterpolate" }, { _class = "C_OP_SpinUpdate" }, { _class = "C_OP_SetFloat" },
			{ _class = "C_OP_SetVec" } ]
		m_ForceGenerators = [ { _class = "C_OP_TurbulenceForce" } ]
		m_Constraints = [ { _class = "C_OP_PlanarConstraint" } ]
		m_Renderers = [ { _class = "C_OP_RenderSprites" }, { _class = "C_OP_RenderTrails" } ])" );
	ASSERT_TRUE( pDef );
	int nFunctions = 0;
	for ( int nList = 0; nList < PARTICLE_FUNCTION_CLASS_LIST_COUNT; ++nList )
	{
		for ( const auto &pFunction : pDef->GetFunctions( nList ) )
		{
			EXPECT_TRUE( pFunction->m_bHasBehaviour ) << pFunction->GetClassName();
			++nFunctions;
		}
	}
	EXPECT_EQ( nFunctions, 22 );
	auto pCollection = MakeCollection( pDef );
	Step( pCollection.get(), 1 );
	// The instantaneous emitter's default of 100 and the continuous one's first particles.
	EXPECT_GE( pCollection->GetActiveParticleCount( false ), 100 );
	EXPECT_EQ( pCollection->GetRendererCount(), 2 );
}

TEST( ParticleDefinition, DeclaredClassesWithoutBehaviourCompileAsNoOps )
{
	// The editor accepts every declared class, so the preview must not refuse one; a bare
	// base class is declared but has nothing to do.
	ParticleDefinitionPtr_t pDef = CompileBody( R"(m_Initializers = [ { _class = "CParticleFunctionInitializer" }, { _class = "C_INIT_CreateWithinBox" } ])" );
	ASSERT_TRUE( pDef );
	ASSERT_EQ( pDef->GetFunctions( PARTICLE_FUNCTION_INITIALIZER ).size(), 2u );
	EXPECT_FALSE( pDef->GetFunctions( PARTICLE_FUNCTION_INITIALIZER )[ 0 ]->m_bHasBehaviour );
	EXPECT_TRUE( pDef->GetFunctions( PARTICLE_FUNCTION_INITIALIZER )[ 1 ]->m_bHasBehaviour );
}

TEST( ParticleDefinition, RendererWithoutBehaviourGivesNoDrawData )
{
	// Draw data always matches the particles: a renderer the preview skips is no renderer
	// of the collection, so the scene never draws an empty or stale list for it.
	ParticleDefinitionPtr_t pDef = CompileBody( R"(m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 5 } ]
		m_Renderers = [ { _class = "CParticleFunctionRenderer" }, { _class = "C_OP_RenderSprites" } ])" );
	ASSERT_TRUE( pDef );
	ASSERT_EQ( pDef->GetFunctions( PARTICLE_FUNCTION_RENDERER ).size(), 2u );
	auto pCollection = MakeCollection( pDef );
	Step( pCollection.get(), 1 );
	ASSERT_EQ( pCollection->GetRendererCount(), 1 );
	ParticleDrawData_t data;
	ASSERT_TRUE( pCollection->GetDrawData( 0, &data ) );
	EXPECT_STREQ( data.m_pClassName, "C_OP_RenderSprites" );
	EXPECT_EQ( data.m_nCount, 5 );
}

TEST( ParticleDefinition, SampleUsageNamesThePointsItsFunctionsRead )
{
	std::string path = std::string( ZOL_SOURCE_DIR ) + "/content/content/particles/samples/sparks.tfxs";
	CParticleDefinitionFileCompiler compiler( CParticleDefinitionFileCompiler::FindContentRoot( path.c_str() ).Get(), ReadFile );
	CUtlString error;
	ParticleDefinitionPtr_t pDef = compiler.Compile( path.c_str(), &error );
	ASSERT_TRUE( pDef ) << error.Get();
	ParticleParamID_t cp0 = ParticleParamID_t::ControlPoint( 0 );
	// The sphere spawns around point 0 and the plane stands relative to it.
	EXPECT_EQ( pDef->m_Usage.GetFunctionFlags( PARTICLE_FUNCTION_INITIALIZER, 0, cp0 ), 1 );
	EXPECT_EQ( pDef->m_Usage.GetFunctionFlags( PARTICLE_FUNCTION_CONSTRAINT, 0, cp0 ), 1 );
	EXPECT_EQ( pDef->m_Usage.GetFunctionFlags( PARTICLE_FUNCTION_OPERATOR, 0, cp0 ), 0 );
	EXPECT_EQ( pDef->m_Usage.GetUsageKind( cp0, 0 ), 2 );
	EXPECT_FALSE( pDef->m_Usage.IsDriven( cp0 ) );
	EXPECT_EQ( pDef->m_Usage.Count(), 1 );
}
