#include "core/host/hostpaths.h"

#include <gtest/gtest.h>

#include <filesystem>

#include "tests/core/host/hosttestsupport.h"

TEST( HostPaths, NormalizedFormsUseOneSeparatorKindAndNoDots )
{
	EXPECT_STREQ( Host_NormalizePath( "particles//samples/./x/../fire.tfxs" ).Get(), "particles\\samples\\fire.tfxs" );
	EXPECT_STREQ( Host_NormalizePath( "c:/content\\particles\\" ).Get(), "c:\\content\\particles" );
	EXPECT_STREQ( Host_DiskPath( "a\\b\\c.tfxs" ).Get(), "a/b/c.tfxs" );
	EXPECT_STREQ( Host_JoinPath( "c:\\content\\", "/particles/a.tfxs" ).Get(), "c:\\content\\particles\\a.tfxs" );
	EXPECT_STREQ( Host_NormalizePath( "" ).Get(), "" );
	EXPECT_STREQ( Host_NormalizePath( "." ).Get(), "" );
}

TEST( HostPaths, WildcardsMatchIgnoringCaseWithBacktracking )
{
	EXPECT_TRUE( Host_WildcardMatch( "*.tfxs", "Fire.TFXS" ) );
	EXPECT_FALSE( Host_WildcardMatch( "*.tfxs", "fire.tfxs_autosave" ) );
	EXPECT_TRUE( Host_WildcardMatch( "*.*_autosave", "fire004.tfxs_autosave" ) );
	EXPECT_TRUE( Host_WildcardMatch( "*a*b", "xaxxaxb" ) );
	EXPECT_FALSE( Host_WildcardMatch( "*a*b", "xaxxaxbc" ) );
	EXPECT_TRUE( Host_WildcardMatch( "f?re.*", "fire.tfxs" ) );
	EXPECT_FALSE( Host_WildcardMatch( "f?re.*", "fre.tfxs" ) );
	EXPECT_TRUE( Host_WildcardMatch( "*", "" ) );
	EXPECT_FALSE( Host_WildcardMatch( "?", "" ) );
}

TEST( HostPaths, InsideAWholeDirectoryOnly )
{
	EXPECT_STREQ( Host_PathInside( "C:\\Content\\particles\\a.tfxs", "c:/content/" ), "particles\\a.tfxs" );
	EXPECT_STREQ( Host_PathInside( "c:/content//a.tfxs", "c:\\content" ), "a.tfxs" );
	EXPECT_EQ( Host_PathInside( "c:/contentfoo/a.tfxs", "c:/content" ), nullptr );
	EXPECT_EQ( Host_PathInside( "c:/cont", "c:/content" ), nullptr );
	EXPECT_EQ( Host_PathInside( "c:/content", "" ), nullptr );
}

TEST( HostPaths, FindsFilesWhateverTheCaseOfEachComponent )
{
	CHostScratchDirectory scratch;
	scratch.Write( "content/Particles/Samples/Fire.tfxs", "fire" );

	CUtlString disk;
	std::string asked = ( scratch.Content() / "PARTICLES" / "samples" / "FIRE.TFXS" ).string();
	ASSERT_TRUE( Host_FindOnDisk( asked.c_str(), &disk ) );
	EXPECT_TRUE( std::filesystem::equivalent( disk.Get(), scratch.Content() / "Particles" / "Samples" / "Fire.tfxs" ) );
	EXPECT_FALSE( Host_FindOnDisk( ( scratch.Content() / "particles" / "none.tfxs" ).string().c_str(), &disk ) );

	// A new file goes into the existing directories as they are spelt on disk.
	CUtlString target = Host_DiskPathForWrite( ( scratch.Content() / "PARTICLES" / "new" / "a.tfxs" ).string().c_str() );
	EXPECT_EQ( std::filesystem::path( target.Get() ).parent_path().parent_path(), scratch.Content() / "Particles" );
}

TEST( HostPaths, BelowARootTwoSpellingsOfOneNameAreAClash )
{
	CHostScratchDirectory scratch;
	scratch.Write( "content/particles/Fire.tfxs", "a" );
	scratch.Write( "content/particles/fire.tfxs", "b" );
	scratch.Write( "content/Particles2/smoke.tfxs", "c" );
	const std::string root = scratch.Content().string();

	CUtlString disk, clash;
	EXPECT_EQ( Host_FindOnDiskBelow( root.c_str(), "particles/FIRE.tfxs", &disk, &clash ), HOST_FIND_AMBIGUOUS );
	EXPECT_EQ( std::string( clash.Get() ), "'" + root + "/particles/Fire.tfxs' and '" + root + "/particles/fire.tfxs'" );
	EXPECT_EQ( Host_FindOnDiskBelow( root.c_str(), "particles2\\SMOKE.tfxs", &disk ), HOST_FIND_FOUND );
	EXPECT_EQ( std::string( disk.Get() ), root + "/Particles2/smoke.tfxs" );
	// Nothing above the root is reached, and what is missing is missing.
	EXPECT_EQ( Host_FindOnDiskBelow( root.c_str(), "../game", &disk ), HOST_FIND_MISSING );
	EXPECT_EQ( Host_FindOnDiskBelow( root.c_str(), "particles/none.tfxs", &disk ), HOST_FIND_MISSING );
}
