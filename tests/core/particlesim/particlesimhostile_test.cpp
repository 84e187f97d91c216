// Hostile definitions: each is refused with a message that names the problem, or bounded,
// never a hang, an exhausted memory, an overflow or a silent wrong answer.

#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>

#include "core/platform/platformfile.h"
#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
std::string CompileError( const std::string &body, const std::map<std::string, std::string> &children = {} )
{
	CUtlString error;
	ParticleDefinitionPtr_t pDef = CompileText( DefinitionText( body ), &error, children );
	EXPECT_EQ( pDef, nullptr ) << body;
	return error.Get();
}

struct EmissionCase_t
{
	const char *m_pName;
	const char *m_pEmitters;
};

class ParticleHostileEmission : public testing::TestWithParam<EmissionCase_t>
{
};
} // namespace

TEST( ParticleHostile, PreSimulationIsBounded )
{
	for ( const char *pTime : { "1e9", "1e300" } )
	{
		ParticleDefinitionPtr_t pDef = CompileBody( std::string( "m_flPreSimulationTime = " ) + pTime );
		ASSERT_TRUE( pDef ) << pTime;
		EXPECT_EQ( pDef->m_flPreSimulationTime, PARTICLE_MAX_PRESIMULATION_SECONDS );
		EXPECT_NE( strstr( pDef->m_Warnings.Get(), "m_flPreSimulationTime" ), nullptr ) << pDef->m_Warnings.Get();
		auto pCollection = MakeCollection( pDef );
		Step( pCollection.get(), 1 );
		EXPECT_NEAR( pCollection->GetCurrentTime(), PARTICLE_MAX_PRESIMULATION_SECONDS + 1.0f / 60.0f, 0.05f );
	}
}

TEST( ParticleHostile, AnyFrameLengthIsSplitIntoBoundedSubSteps )
{
	auto pCollection = MakeCollection( CompileBody( R"(m_flMaximumTimeStep = 0.0001
		m_Emitters = [ { _class = "C_OP_ContinuousEmitter" m_flEmitRate = 10.0 } ] m_Operators = [ { _class = "C_OP_BasicMovement" } ])" ) );
	auto tStart = std::chrono::steady_clock::now();
	pCollection->Simulate( 1e9f );
	pCollection->Simulate( INFINITY );
	pCollection->Simulate( NAN );
	EXPECT_LT( std::chrono::duration<double>( std::chrono::steady_clock::now() - tStart ).count(), 5.0 );
	EXPECT_NEAR( pCollection->GetCurrentTime(), 1e9f, 1e3f ) << "an infinite or NaN step is no step";
}

// Every case asks for far more than the 100 places there are; all 100 fill.
TEST_P( ParticleHostileEmission, CountsBeyondAnIntAreCutToTheRoom )
{
	auto pCollection = MakeCollection( CompileBody( std::string( "m_nMaxParticles = 100 m_Emitters = [ " ) + GetParam().m_pEmitters + " ]" ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 2 );
	EXPECT_EQ( pCollection->GetActiveParticleCount( false ), 100 );
}

INSTANTIATE_TEST_SUITE_P( Emitters, ParticleHostileEmission,
	testing::Values( EmissionCase_t{ "Burst3e9", R"({ _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 3e9 })" },
		EmissionCase_t{ "TwoBursts2e9", R"({ _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 2e9 }, { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 2e9 })" },
		EmissionCase_t{ "Rate1e30", R"({ _class = "C_OP_ContinuousEmitter" m_flEmitRate = 1e30 })" },
		EmissionCase_t{ "RateInfinite", R"({ _class = "C_OP_ContinuousEmitter" m_flEmitRate = 1e300 })" },
		EmissionCase_t{ "Maintain1e30", R"({ _class = "C_OP_MaintainEmitter" m_nParticlesToMaintain = 1e30 })" },
		EmissionCase_t{ "PerFrameLimitBeyondAnInt", R"({ _class = "C_OP_ContinuousEmitter" m_flEmitRate = 1e30 m_nLimitPerUpdate = 1e12 })" } ),
	[]( const testing::TestParamInfo<EmissionCase_t> &info ) { return info.param.m_pName; } );

namespace
{
struct BoundsCase_t
{
	const char *m_pName;
	const char *m_pBody;
	int m_nNonFinite; // particles left out of the bounds
};

class ParticleHostileBounds : public testing::TestWithParam<BoundsCase_t>
{
};
} // namespace

// Bounds are finite and in order whatever the particles hold; what they can't hold is counted.
TEST_P( ParticleHostileBounds, BoundsAreNeverInvertedAndNonFiniteParticlesAreCounted )
{
	auto pCollection = MakeCollection( CompileBody( std::string( R"(m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 5 } ] )" ) + GetParam().m_pBody ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 2 );
	EXPECT_EQ( pCollection->GetNonFiniteParticleCount(), GetParam().m_nNonFinite );
	EXPECT_EQ( pCollection->AreBoundsValid(), GetParam().m_nNonFinite < 5 );
	if ( !pCollection->AreBoundsValid() )
		return;
	Vector vMin = pCollection->GetBoundsMin(), vMax = pCollection->GetBoundsMax();
	for ( int k = 0; k < 3; ++k )
	{
		EXPECT_TRUE( std::isfinite( vMin[ k ] ) && std::isfinite( vMax[ k ] ) ) << vMin[ k ] << " " << vMax[ k ];
		EXPECT_LE( vMin[ k ], vMax[ k ] );
	}
}

INSTANTIATE_TEST_SUITE_P( Values, ParticleHostileBounds,
	testing::Values( BoundsCase_t{ "HugeRadius", "m_flConstantRadius = 1e308", 5 }, BoundsCase_t{ "HugeNegativeRadius", "m_flConstantRadius = -1e308", 5 },
		BoundsCase_t{ "NegativeRadius", "m_flConstantRadius = -100", 0 }, BoundsCase_t{ "LargestFloatRadius", "m_flConstantRadius = 3e38", 0 },
		BoundsCase_t{ "InfiniteSpeed",
			R"(m_Initializers = [ { _class = "C_INIT_InitialVelocityNoise" m_vecOutputMin = [ 1e308, 0, 0 ] m_vecOutputMax = [ 1e308, 0, 0 ] } ]
			   m_Operators = [ { _class = "C_OP_BasicMovement" } ])",
			5 },
		BoundsCase_t{ "NaNPosition",
			R"(m_Initializers = [ { _class = "C_INIT_InitialVelocityNoise" m_vecOutputMin = [ 1e308, 0, 0 ] m_vecOutputMax = [ -1e308, 0, 0 ] } ]
			   m_Operators = [ { _class = "C_OP_BasicMovement" } ])",
			5 } ),
	[]( const testing::TestParamInfo<BoundsCase_t> &info ) { return info.param.m_pName; } );

TEST( ParticleHostile, ATreeBeyondTheBudgetIsRefusedWithItsSize )
{
	// Ten children of ten children of ten children of ten: 11,111 systems from four small files.
	std::map<std::string, std::string> children;
	std::string tenOf[ 4 ];
	for ( int nLevel = 3; nLevel >= 0; --nLevel )
	{
		std::string list;
		for ( int i = 0; i < 10 && nLevel < 3; ++i )
			list += "{ m_ChildRef = \"particles/level" + std::to_string( nLevel + 1 ) + ".tfxs\" },";
		children[ "particles/level" + std::to_string( nLevel ) + ".tfxs" ] = DefinitionText( "m_nMaxParticles = 10 m_Children = [ " + list + " ]" );
	}
	std::string error = CompileError( "m_Children = [ { m_ChildRef = \"particles/level0.tfxs\" } ]", children );
	EXPECT_NE( error.find( "at most 1024 systems and 4194304 particles" ), std::string::npos ) << error;

	// Few systems, each at the particle cap.
	std::map<std::string, std::string> big = { { "particles/big.tfxs", DefinitionText( "m_nMaxParticles = 4194304" ) } };
	error = CompileError( R"(m_Children = [ { m_ChildRef = "particles/big.tfxs" }, { m_ChildRef = "particles/big.tfxs" } ])", big );
	EXPECT_NE( error.find( "m_Children[0] ('particles/big.tfxs')" ), std::string::npos ) << error;

	// A tree within the budget compiles and counts itself.
	ParticleDefinitionPtr_t pDef = CompileBody( "m_nMaxParticles = 10 m_Children = [ { m_ChildRef = \"particles/level2.tfxs\" } ]", children );
	ASSERT_TRUE( pDef );
	EXPECT_EQ( pDef->m_nTreeSystems, 1 + 1 + 10 );
	EXPECT_EQ( pDef->m_nTreeParticles, 10 * 12 );
}

// A force generator among the operators would write forces its collection never made room for.
TEST( ParticleHostile, AFunctionInAnotherListThanItsOwnIsRefused )
{
	EXPECT_NE( CompileError( R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" }, { _class = "C_OP_TwistAroundAxis" m_fForceAmount = 60.0 } ])" )
				   .find( "m_Operators[1]: 'C_OP_TwistAroundAxis' belongs in m_ForceGenerators, not in m_Operators" ),
		std::string::npos );
	EXPECT_NE( CompileError( R"(m_Emitters = [ { _class = "C_OP_Decay" } ])" ).find( "belongs in m_Operators" ), std::string::npos );
	// A name written in another case finds the same function, and the same list.
	EXPECT_NE( CompileError( R"(m_Emitters = [ { _class = "C_OP_ContinuousEmitter" } ]
		m_Operators = [ { _class = "C_OP_TwisTAroundAxis" m_fForceAmount = 60.0 } ])" )
				   .find( "belongs in m_ForceGenerators, not in m_Operators" ),
		std::string::npos );
}

TEST( ParticleHostile, AChildReferenceThatIsNoNameSaysWhatItIs )
{
	EXPECT_NE( CompileError( "m_Children = [ { m_ChildRef = 42 } ]" ).find( "m_ChildRef is a 'int', not the name of a system file" ), std::string::npos );
	EXPECT_NE( CompileError( "m_Children = [ { m_flDelay = 1.0 } ]" ).find( "has no m_ChildRef" ), std::string::npos );
}

namespace
{
// Definition files on disk below a content root of their own.
class ParticleHostileFiles : public testing::Test
{
protected:
	void SetUp() override
	{
		m_Root = std::filesystem::temp_directory_path() / ( "zol_simhostile_" + std::to_string( ::getpid() ) + "_" + testing::UnitTest::GetInstance()->current_test_info()->name() );
		std::filesystem::remove_all( m_Root );
		std::filesystem::create_directories( m_Root / "particles" );
	}
	void TearDown() override { std::filesystem::remove_all( m_Root ); }

	void Write( const std::string &name, const std::string &body ) const { std::ofstream( m_Root / "particles" / name ) << DefinitionText( body ); }
	std::string ChildOf( const std::string &ref ) const { return "m_Children = [ { m_ChildRef = \"" + ref + "\" } ]"; }

	std::string Compile( const std::string &name, ParticleDefinitionPtr_t *pOut = nullptr ) const
	{
		CParticleDefinitionFileCompiler compiler( m_Root.string().c_str(),
			[]( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pError ) { return Plat_ReadWholeFile( pPath, pBuffer, pError ); } );
		CUtlString error;
		ParticleDefinitionPtr_t pDef = compiler.Compile( ( "particles/" + name ).c_str(), &error );
		if ( pOut )
			*pOut = pDef;
		return pDef ? std::string() : std::string( error.Get() );
	}

	std::filesystem::path m_Root;
};
} // namespace

TEST_F( ParticleHostileFiles, ChildrenResolveOnlyInsideTheRoots )
{
	for ( const char *pRef : { "/dev/zero", "../../etc/passwd", "particles/../../outside.tfxs", "/etc/passwd" } )
	{
		Write( "parent.tfxs", ChildOf( pRef ) );
		std::string error = Compile( "parent.tfxs" );
		EXPECT_NE( error.find( "outside the content and game roots" ), std::string::npos ) << pRef << ": " << error;
	}
	// A name inside the root that is no regular file is refused by the read.
	std::filesystem::create_symlink( "/dev/zero", m_Root / "particles" / "zero.tfxs" );
	Write( "parent.tfxs", ChildOf( "particles/zero.tfxs" ) );
	std::string error = Compile( "parent.tfxs" );
	EXPECT_NE( error.find( "zero.tfxs: not a regular file" ), std::string::npos ) << error;
}

TEST_F( ParticleHostileFiles, AChainDeeperThanTheLimitIsRefused )
{
	for ( int i = 0; i < PARTICLE_MAX_CHILD_DEPTH + 8; ++i )
		Write( "d" + std::to_string( i ) + ".tfxs", ChildOf( "particles/d" + std::to_string( i + 1 ) + ".tfxs" ) );
	std::string error = Compile( "d0.tfxs" );
	EXPECT_NE( error.find( "children nest deeper than 32 levels" ), std::string::npos ) << error;
	// A chain within the limit compiles.
	Write( "d" + std::to_string( PARTICLE_MAX_CHILD_DEPTH + 8 ) + ".tfxs", "" );
	EXPECT_EQ( Compile( "d10.tfxs" ), "" );
}

TEST_F( ParticleHostileFiles, NamesDifferingOnlyInCaseAreAClashNamingBothFiles )
{
	Write( "Fire.tfxs", ChildOf( "particles/fire.tfxs" ) );
	Write( "fire.tfxs", R"(m_nMaxParticles = 7)" );
	Write( "parent.tfxs", ChildOf( "particles/FIRE.tfxs" ) );
	for ( const char *pName : { "Fire.tfxs", "fire.tfxs", "parent.tfxs" } )
	{
		std::string error = Compile( pName );
		EXPECT_NE( error.find( "Fire.tfxs' and '" ), std::string::npos ) << pName << ": " << error;
		EXPECT_NE( error.find( "/particles/fire.tfxs' differ only in letter case" ), std::string::npos ) << pName << ": " << error;
	}
	// With one spelling on disk, any case of the name finds it.
	std::filesystem::remove( m_Root / "particles" / "Fire.tfxs" );
	ParticleDefinitionPtr_t pDef;
	EXPECT_EQ( Compile( "parent.tfxs", &pDef ), "" );
	ASSERT_TRUE( pDef );
	EXPECT_EQ( pDef->m_Children[ 0 ].m_pDefinition->m_nMaxParticles, 7 );
}
