#include "core/text/pathtools.h"
#include "core/text/strtools.h"

#include <gtest/gtest.h>

struct PathsMatchCase_t
{
	const char *m_pA;
	const char *m_pB;
	bool m_bMatch;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] static void PrintTo( const PathsMatchCase_t &testCase, std::ostream *pOut )
{
	*pOut << testing::PrintToString( testCase.m_pA ) << " vs " << testing::PrintToString( testCase.m_pB );
}

class PathsMatch : public testing::TestWithParam<PathsMatchCase_t>
{
};

TEST_P( PathsMatch, ComparesAsTheSamePlace )
{
	const PathsMatchCase_t &testCase = GetParam();
	EXPECT_EQ( V_PathsMatch( testCase.m_pA, testCase.m_pB ), testCase.m_bMatch ) << testCase.m_pA << " vs " << testCase.m_pB;
	EXPECT_EQ( V_PathsMatch( testCase.m_pB, testCase.m_pA ), testCase.m_bMatch ) << "not symmetric";
}

INSTANTIATE_TEST_SUITE_P( CaseAndSeparators, PathsMatch,
	testing::Values(
		PathsMatchCase_t{ "particles/fire/embers.tfxs", "particles/fire/embers.tfxs", true },
		PathsMatchCase_t{ "Particles/Fire/Embers.TFXS", "particles/fire/embers.tfxs", true },
		PathsMatchCase_t{ "particles\\fire\\embers.tfxs", "particles/fire/embers.tfxs", true },
		PathsMatchCase_t{ "particles//fire\\\\embers.tfxs", "particles/fire/embers.tfxs", true },
		PathsMatchCase_t{ "content/particles/", "content\\particles", true },
		PathsMatchCase_t{ "", nullptr, true },
		PathsMatchCase_t{ "particles/fire", "particles/fires", false },
		PathsMatchCase_t{ "particles/fire/a.tfxs", "particles/fire.a.tfxs", false },
		PathsMatchCase_t{ "/particles", "particles", false },
		PathsMatchCase_t{ "/", "", false } ) );

TEST( PathTools, UnqualifiedFileNameTakesTheLastPartOfEitherSlash )
{
	EXPECT_STREQ( V_UnqualifiedFileName( "a/b\\c.tfxs" ), "c.tfxs" );
	EXPECT_STREQ( V_UnqualifiedFileName( "c.tfxs" ), "c.tfxs" );
	EXPECT_STREQ( V_UnqualifiedFileName( "a/b/" ), "" );
	EXPECT_STREQ( V_UnqualifiedFileName( nullptr ), "" );
}

TEST( PathTools, ExtensionBelongsToTheFileNameOnly )
{
	char buffer[ 64 ];
	V_FileExtension( "particles/fire.v2/embers.tfxs", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "tfxs" );
	V_FileExtension( "particles/fire.v2/embers", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "" );
	EXPECT_EQ( V_GetFileExtension( "fire.v2/embers" ), nullptr );

	V_StripExtension( "particles/fire.v2/embers.tfxs", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "particles/fire.v2/embers" );
	V_StripExtension( "particles/fire.v2/embers", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "particles/fire.v2/embers" );

	V_FileBase( "particles\\fire\\embers.tfxs_autosave", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "embers" );
}

TEST( PathTools, StripExtensionWorksInPlace )
{
	char path[] = "a/b/c.tfxs";
	V_StripExtension( path, path, sizeof( path ) );
	EXPECT_STREQ( path, "a/b/c" );
}

TEST( PathTools, ComposeFileNamePutsExactlyOneSeparatorBetween )
{
	char buffer[ 64 ];
	V_ComposeFileName( "content/particles/", "/fire.tfxs", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "content/particles\\fire.tfxs" );
	V_ComposeFileName( "content", "fire.tfxs", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "content\\fire.tfxs" );
	V_ComposeFileName( "", "fire.tfxs", buffer, sizeof( buffer ) );
	EXPECT_STREQ( buffer, "fire.tfxs" );
	V_ComposeFileName( "content/particles", "fire.tfxs", buffer, 12 );
	EXPECT_STREQ( buffer, "content/par" );
}

TEST( PathTools, FixSlashesAndDoubleSlashes )
{
	char path[] = "a//b\\\\c/d";
	V_FixSlashes( path );
	EXPECT_STREQ( path, "a\\\\b\\\\c\\d" );
	V_FixDoubleSlashes( path );
	EXPECT_STREQ( path, "a\\b\\c\\d" );

	char share[] = "//server//share";
	V_FixDoubleSlashes( share );
	EXPECT_STREQ( share, "//server/share" );
}

TEST( PathTools, StripFilenameAndTrailingSlash )
{
	char path[] = "a/b/c.txt";
	V_StripFilename( path );
	EXPECT_STREQ( path, "a/b" );
	char bare[] = "c.txt";
	V_StripFilename( bare );
	EXPECT_STREQ( bare, "" );
	char dir[] = "a/b//";
	V_StripTrailingSlash( dir );
	EXPECT_STREQ( dir, "a/b" );
}

TEST( PathTools, AbsolutePathsOfBothPlatforms )
{
	EXPECT_TRUE( V_IsAbsolutePath( "/home/x" ) );
	EXPECT_TRUE( V_IsAbsolutePath( "C:\\content" ) );
	EXPECT_TRUE( V_IsAbsolutePath( "c:/content" ) );
	EXPECT_FALSE( V_IsAbsolutePath( "content/particles" ) );
	EXPECT_FALSE( V_IsAbsolutePath( "c:content" ) );
}
