#include "core/host/filesystem.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/text/pathtools.h"
#include "tests/core/host/hosttestsupport.h"

namespace
{
class FileSystemTest : public ::testing::Test
{
protected:
	FileSystemTest()
	{
		m_FileSystem.SetupFromRoots( m_Scratch.Game().string().c_str(), m_Scratch.Content().string().c_str() );
	}

	std::string ReadText( const char *pFileName, const char *pPathID )
	{
		CUtlBuffer buffer;
		CUtlString error;
		if ( !m_FileSystem.ReadFile( pFileName, pPathID, &buffer, &error ) )
			return std::string( "<failed: " ) + error.Get() + ">";
		return std::string( (const char *)buffer.Base(), buffer.TellPut() );
	}

	CHostScratchDirectory m_Scratch;
	CFileSystem m_FileSystem;
};

CUtlBuffer TextBuffer( const char *pText )
{
	CUtlBuffer buffer;
	buffer.PutString( pText );
	return buffer;
}
} // namespace

TEST_F( FileSystemTest, PathIdsNameTheirRoots )
{
	m_Scratch.Write( "content/particles/a.tfxs", "content" );
	m_Scratch.Write( "game/gameinfo.gi", "game" );

	EXPECT_EQ( ReadText( "particles/a.tfxs", "CONTENT" ), "content" );
	EXPECT_EQ( ReadText( "particles/a.tfxs", "CONTENTROOT" ), "content" );
	EXPECT_EQ( ReadText( "gameinfo.gi", "GAME" ), "game" );
	EXPECT_EQ( ReadText( "gameinfo.gi", "gameroot" ), "game" );
	EXPECT_FALSE( m_FileSystem.FileExists( "gameinfo.gi", "CONTENT" ) );
	EXPECT_FALSE( m_FileSystem.FileExists( "particles/a.tfxs", "GAME" ) );
	// No path id: every search path.
	EXPECT_TRUE( m_FileSystem.FileExists( "particles/a.tfxs" ) );
}

TEST_F( FileSystemTest, FirstSearchPathOfAnIdWins )
{
	m_Scratch.Write( "mod/particles/a.tfxs", "mod" );
	m_Scratch.Write( "content/particles/a.tfxs", "base" );
	m_Scratch.Write( "content/particles/b.tfxs", "base b" );
	m_FileSystem.AddSearchPath( ( m_Scratch.Root() / "mod" ).string().c_str(), "CONTENT", true );

	EXPECT_EQ( ReadText( "particles/a.tfxs", "CONTENT" ), "mod" );
	EXPECT_EQ( ReadText( "particles/b.tfxs", "CONTENT" ), "base b" );

	CUtlVector<CUtlString> paths;
	ASSERT_EQ( m_FileSystem.GetSearchPaths( "CONTENT", &paths ), 2 );
	EXPECT_NE( std::string( paths[ 0 ].Get() ).find( "mod" ), std::string::npos );
	// Paths in memory use backslashes.
	EXPECT_EQ( std::string( paths[ 1 ].Get() ).find( '/' ), std::string::npos );

	// Writes go to the first search path.
	ASSERT_TRUE( m_FileSystem.WriteFile( "particles/new.tfxs", "CONTENT", TextBuffer( "new" ) ) );
	EXPECT_EQ( m_Scratch.Read( "mod/particles/new.tfxs" ), "new" );
}

TEST_F( FileSystemTest, NamesMatchIgnoringCaseWithEitherSlash )
{
	m_Scratch.Write( "content/Particles/Samples/Fire.tfxs", "fire" );

	EXPECT_EQ( ReadText( "particles\\samples\\FIRE.TFXS", "CONTENT" ), "fire" );
	EXPECT_EQ( ReadText( "PARTICLES/samples/fire.tfxs", "CONTENT" ), "fire" );
	std::string absolute = ( m_Scratch.Content() / "particles" / "SAMPLES" / "fire.tfxs" ).string();
	EXPECT_TRUE( m_FileSystem.FileExists( absolute.c_str() ) );

	// A write under another case replaces the existing file instead of adding a twin.
	ASSERT_TRUE( m_FileSystem.WriteFile( "particles/samples/FIRE.tfxs", "CONTENT", TextBuffer( "hotter" ) ) );
	EXPECT_EQ( m_Scratch.Read( "content/Particles/Samples/Fire.tfxs" ), "hotter" );
	CUtlVector<CUtlString> files;
	EXPECT_EQ( m_FileSystem.FindFiles( "particles/samples/*", "CONTENT", FILE_FIND_FILES, &files ), 1 );
}

TEST_F( FileSystemTest, WriteMakesDirectoriesAndReadsBackTheSameBytes )
{
	CUtlBuffer buffer;
	const char binary[] = { 'a', '\0', '\n', '\r', 'b' };
	buffer.Put( binary, sizeof( binary ) );
	ASSERT_TRUE( m_FileSystem.WriteFile( "deep/er/file.bin", "CONTENT", buffer ) );

	CUtlBuffer readBack;
	ASSERT_TRUE( m_FileSystem.ReadFile( "deep/er/file.bin", "CONTENT", &readBack ) );
	ASSERT_EQ( readBack.TellPut(), sizeof( binary ) );
	EXPECT_EQ( memcmp( readBack.Base(), binary, sizeof( binary ) ), 0 );
}

TEST_F( FileSystemTest, FailedWriteLeavesTheOldFileAndNoLeftovers )
{
	m_Scratch.Write( "content/particles/locked.tfxs", "old contents" );
	std::filesystem::path locked = m_Scratch.Content() / "particles" / "locked.tfxs";
	std::filesystem::permissions( locked, std::filesystem::perms::owner_read | std::filesystem::perms::group_read );

	CUtlString error;
	EXPECT_FALSE( m_FileSystem.IsFileWritable( "particles/locked.tfxs", "CONTENT" ) );
	EXPECT_FALSE( m_FileSystem.WriteFile( "particles/locked.tfxs", "CONTENT", TextBuffer( "new" ), &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "read only" ), std::string::npos );
	EXPECT_EQ( m_Scratch.Read( "content/particles/locked.tfxs" ), "old contents" );

	// A rename that can't happen (a directory stands where the file goes).
	std::filesystem::create_directories( m_Scratch.Content() / "particles" / "dir.tfxs" / "inside" );
	EXPECT_FALSE( m_FileSystem.WriteFile( "particles/dir.tfxs", "CONTENT", TextBuffer( "new" ), &error ) );
	EXPECT_TRUE( std::filesystem::is_directory( m_Scratch.Content() / "particles" / "dir.tfxs" / "inside" ) );

	int nEntries = 0;
	for ( const auto &entry : std::filesystem::directory_iterator( m_Scratch.Content() / "particles" ) )
	{
		EXPECT_EQ( entry.path().extension().string().find( ".tmp" ), std::string::npos ) << entry.path();
		++nEntries;
	}
	EXPECT_EQ( nEntries, 2 );
}

TEST_F( FileSystemTest, ReadOfAMissingFileSaysWhichFile )
{
	CUtlBuffer buffer;
	CUtlString error;
	EXPECT_FALSE( m_FileSystem.ReadFile( "particles/missing.tfxs", "CONTENT", &buffer, &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "particles/missing.tfxs" ), std::string::npos );
}

TEST_F( FileSystemTest, ListingByPatternFlatAndRecursive )
{
	m_Scratch.Write( "content/particles/b.tfxs", "" );
	m_Scratch.Write( "content/particles/A.TFXS", "" );
	m_Scratch.Write( "content/particles/c.tmsh", "" );
	m_Scratch.Write( "content/particles/sub/d.tfxs", "" );
	m_Scratch.Write( "content/particles/sub/deeper/e.tfxs_autosave", "" );

	CUtlVector<CUtlString> flat;
	ASSERT_EQ( m_FileSystem.FindFiles( "particles/*.tfxs", "CONTENT", FILE_FIND_FILES, &flat ), 2 );
	EXPECT_STREQ( flat[ 0 ].UnqualifiedFilename(), "A.TFXS" );
	EXPECT_STREQ( flat[ 1 ].UnqualifiedFilename(), "b.tfxs" );

	CUtlVector<CUtlString> recursive;
	EXPECT_EQ( m_FileSystem.FindFiles( "particles/*.tfxs*", "CONTENT", FILE_FIND_FILES | FILE_FIND_RECURSIVE, &recursive ), 4 );

	CUtlVector<CUtlString> directories;
	EXPECT_EQ( m_FileSystem.FindFiles( "particles/*", "CONTENT", FILE_FIND_DIRECTORIES, &directories ), 1 );

	// An absolute pattern works without a path id.
	CUtlVector<CUtlString> absolute;
	std::string pattern = ( m_Scratch.Content() / "particles" / "sub" / "?.tfxs" ).string();
	ASSERT_EQ( m_FileSystem.FindFiles( pattern.c_str(), nullptr, FILE_FIND_FILES, &absolute ), 1 );
	EXPECT_TRUE( m_FileSystem.FileExists( absolute[ 0 ].Get() ) );
}

TEST_F( FileSystemTest, RelativeAndAbsolutePathsConvertBothWays )
{
	m_Scratch.Write( "content/particles/samples/fire.tfxs", "" );

	CUtlString full;
	ASSERT_TRUE( m_FileSystem.RelativePathToFullPath( "particles/samples/fire.tfxs", "CONTENT", &full ) );
	EXPECT_TRUE( V_IsAbsolutePath( full.Get() ) );

	CUtlString relative;
	ASSERT_TRUE( m_FileSystem.FullPathToRelativePath( full.Get(), "CONTENTROOT", &relative ) );
	EXPECT_STREQ( relative.Get(), "particles\\samples\\fire.tfxs" );

	// Either slash, any case, and dotted segments.
	std::string mixed = m_Scratch.Content().string() + "/PARTICLES/x/../samples/fire.tfxs";
	ASSERT_TRUE( m_FileSystem.FullPathToRelativePath( mixed.c_str(), "CONTENTROOT", &relative ) );
	EXPECT_STREQ( relative.Get(), "PARTICLES\\samples\\fire.tfxs" );

	EXPECT_FALSE( m_FileSystem.FullPathToRelativePath( full.Get(), "GAMEROOT", &relative ) );
	// A sibling whose name starts like the root is not inside it.
	std::string sibling = m_Scratch.Root().string() + "/contentfoo/a.tfxs";
	EXPECT_FALSE( m_FileSystem.FullPathToRelativePath( sibling.c_str(), "CONTENTROOT", &relative ) );
	EXPECT_FALSE( m_FileSystem.RelativePathToFullPath( "particles/none.tfxs", "CONTENT", &full ) );
}

TEST_F( FileSystemTest, ModificationStampChangesOnWrite )
{
	ASSERT_TRUE( m_FileSystem.WriteFile( "a.txt", "CONTENT", TextBuffer( "1" ) ) );
	int64_t nFirst = m_FileSystem.GetFileTime( "a.txt", "CONTENT" );
	EXPECT_GT( nFirst, 0 );
	std::filesystem::last_write_time( m_Scratch.Content() / "a.txt", std::filesystem::last_write_time( m_Scratch.Content() / "a.txt" ) - std::chrono::seconds( 5 ) );
	int64_t nOlder = m_FileSystem.GetFileTime( "a.txt", "CONTENT" );
	ASSERT_TRUE( m_FileSystem.WriteFile( "a.txt", "CONTENT", TextBuffer( "2" ) ) );
	EXPECT_GT( m_FileSystem.GetFileTime( "a.txt", "CONTENT" ), nOlder );
	EXPECT_EQ( m_FileSystem.GetFileTime( "missing.txt", "CONTENT" ), 0 );
}

TEST_F( FileSystemTest, PathValidity )
{
	EXPECT_TRUE( m_FileSystem.IsPathValid( "c:\\content\\particles\\a.tfxs" ) );
	EXPECT_FALSE( m_FileSystem.IsPathValid( "" ) );
	EXPECT_FALSE( m_FileSystem.IsPathValid( "particles/a?.tfxs" ) );
	EXPECT_FALSE( m_FileSystem.IsPathValid( "particles/a:b.tfxs" ) );
	EXPECT_FALSE( m_FileSystem.IsPathValid( std::string( 260, 'a' ).c_str() ) );
	EXPECT_TRUE( m_FileSystem.IsPathValid( std::string( 259, 'a' ).c_str() ) );
}

TEST_F( FileSystemTest, UnmodifiableDirectoriesAndReadOnlyDirectories )
{
	m_Scratch.Write( "base/particles/a.tfxs", "" );
	m_Scratch.Write( "content/particles/b.tfxs", "" );
	std::string base = ( m_Scratch.Root() / "base" ).string();
	m_FileSystem.AddSearchPath( base.c_str(), "CONTENT" );
	m_FileSystem.SetDirectoryUnmodifiable( base.c_str(), true );

	EXPECT_TRUE( m_FileSystem.IsPathUnmodifiable( ( m_Scratch.Root() / "base" / "particles" / "a.tfxs" ).string().c_str() ) );
	EXPECT_TRUE( m_FileSystem.IsPathUnmodifiable( base.c_str() ) );
	EXPECT_FALSE( m_FileSystem.IsPathUnmodifiable( "particles/b.tfxs", "CONTENT" ) );
	// A file that doesn't exist yet is judged by the directory it would go into.
	EXPECT_FALSE( m_FileSystem.IsPathUnmodifiable( "particles/new/deeper/c.tfxs", "CONTENT" ) );

	std::filesystem::path locked = m_Scratch.Content() / "locked";
	std::filesystem::create_directories( locked );
	std::filesystem::permissions( locked, std::filesystem::perms::owner_read | std::filesystem::perms::owner_exec );
	EXPECT_TRUE( m_FileSystem.IsPathUnmodifiable( "locked/c.tfxs", "CONTENT" ) );
	std::filesystem::permissions( locked, std::filesystem::perms::owner_all );

	m_FileSystem.SetDirectoryUnmodifiable( base.c_str(), false );
	EXPECT_FALSE( m_FileSystem.IsPathUnmodifiable( base.c_str() ) );
}
