#include "core/text/friendlyname.h"
#include "core/text/utlstring.h"

#include <gtest/gtest.h>

#include <string>

struct FriendlyNameCase_t
{
	const char *m_pCppName;
	const char *m_pExpected;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] static void PrintTo( const FriendlyNameCase_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pCppName;
}

class FriendlyNameFromCppName : public testing::TestWithParam<FriendlyNameCase_t>
{
};

TEST_P( FriendlyNameFromCppName, ReadsAsWords )
{
	const FriendlyNameCase_t &testCase = GetParam();
	CUtlString friendly;
	EXPECT_TRUE( V_TryAndMakeFriendlyNameFromCppName( testCase.m_pCppName, &friendly ) );
	EXPECT_STREQ( friendly.Get(), testCase.m_pExpected ) << "from " << testCase.m_pCppName;

	char buffer[ 64 ];
	EXPECT_TRUE( V_TryAndMakeFriendlyNameFromCppName( testCase.m_pCppName, buffer, sizeof( buffer ) ) );
	EXPECT_STREQ( buffer, testCase.m_pExpected );
}

INSTANTIATE_TEST_SUITE_P( MembersAndClasses, FriendlyNameFromCppName,
	testing::Values(
		FriendlyNameCase_t{ "m_flRadiusScale", "Radius Scale" },
		FriendlyNameCase_t{ "m_nControlPointNumber", "Control Point Number" },
		FriendlyNameCase_t{ "m_bEnableNamedValues", "Enable Named Values" },
		FriendlyNameCase_t{ "m_vecOffset", "Offset" },
		FriendlyNameCase_t{ "m_PreEmissionOperators", "Pre Emission Operators" },
		FriendlyNameCase_t{ "m_nCP1", "CP 1" },
		FriendlyNameCase_t{ "m_vecCP1Pos", "CP 1 Pos" },
		FriendlyNameCase_t{ "m_bUseOBB", "Use OBB" },
		FriendlyNameCase_t{ "m_hTexture", "Texture" },
		FriendlyNameCase_t{ "m_name", "Name" },
		FriendlyNameCase_t{ "C_OP_FadeAndKill", "Fade And Kill" },
		FriendlyNameCase_t{ "C_INIT_RandomRadius", "Random Radius" },
		FriendlyNameCase_t{ "CParticleSystemDefinition", "Particle System Definition" },
		FriendlyNameCase_t{ "HTMLParser", "HTML Parser" },
		FriendlyNameCase_t{ "_my_subclass_name", "My Subclass Name" },
		FriendlyNameCase_t{ "radiusScale", "Radius Scale" },
		FriendlyNameCase_t{ "m_bUse2DSpace", "Use 2D Space" },
		FriendlyNameCase_t{ "m_nEvery3rdParticle", "Every 3rd Particle" } ) );

TEST( FriendlyNameFromCppName, GivesUpOnNamesWithoutLetters )
{
	CUtlString friendly;
	EXPECT_FALSE( V_TryAndMakeFriendlyNameFromCppName( "___", &friendly ) );
	EXPECT_STREQ( friendly.Get(), "___" );
	EXPECT_FALSE( V_TryAndMakeFriendlyNameFromCppName( nullptr, &friendly ) );
	EXPECT_STREQ( friendly.Get(), "" );
}

TEST( FriendlyNameFromCppName, CutsToTheBufferSize )
{
	char buffer[ 8 ];
	V_TryAndMakeFriendlyNameFromCppName( "m_flRadiusScale", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "Radius " );
}
