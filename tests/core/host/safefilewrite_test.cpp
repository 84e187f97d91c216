// The safe write layer: what it refuses and leaves untouched, links, permissions, the
// moment before the rename, and two processes saving one file at once.

#include "core/host/safefilewrite.h"

#include <gtest/gtest.h>

#include <spawn.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/filesystem.h"
#include "tests/core/host/hosttestsupport.h"

extern char **environ;

namespace
{
namespace fs = std::filesystem;

// The child side of the concurrency test runs in a process of its own: this test binary
// started again with the variables below, so nothing of the parent's threads is inherited.
constexpr const char *CHILD_TARGET_ENV = "ZOL_SAFE_WRITE_CHILD_TARGET";
constexpr const char *CHILD_FILL_ENV = "ZOL_SAFE_WRITE_CHILD_FILL";
constexpr int CONCURRENT_WRITES = 150;
constexpr size_t CONCURRENT_SIZE = 96 * 1024;

bool Write( const fs::path &path, const std::string &text, CUtlString *pError = nullptr )
{
	return SafeWriteFile( path.c_str(), text.data(), text.size(), pError );
}

fs::perms Permissions( const fs::path &path )
{
	return fs::status( path ).permissions() & fs::perms::mask;
}

// Temporary files left in the directory: hidden files are only ever those.
std::vector<std::string> Temporaries( const fs::path &directory )
{
	std::vector<std::string> temporaries;
	for ( const fs::directory_entry &entry : fs::directory_iterator( directory ) )
	{
		std::string name = entry.path().filename().string();
		if ( name[ 0 ] == '.' )
			temporaries.push_back( name );
	}
	return temporaries;
}

bool Exists( const fs::path &path )
{
	std::error_code error;
	return fs::exists( fs::symlink_status( path, error ) );
}

class SafeWriteTest : public ::testing::Test
{
protected:
	fs::path Path( const char *pRelative ) const { return m_Scratch.Root() / pRelative; }

	CHostScratchDirectory m_Scratch;
};

std::string g_HookTemporary;
std::string g_HookTargetText;
std::string g_HookTemporaryText;

void RecordBeforeRename( const char *pTemporaryPath, const char *pTargetPath )
{
	g_HookTemporary = pTemporaryPath;
	std::ifstream target( pTargetPath, std::ios::binary );
	g_HookTargetText.assign( std::istreambuf_iterator<char>( target ), std::istreambuf_iterator<char>() );
	std::ifstream temporary( pTemporaryPath, std::ios::binary );
	g_HookTemporaryText.assign( std::istreambuf_iterator<char>( temporary ), std::istreambuf_iterator<char>() );
}
} // namespace

TEST_F( SafeWriteTest, NewFileGetsItsDirectoriesAndLeavesNothingElseBehind )
{
	CUtlString error;
	ASSERT_TRUE( Write( Path( "content/particles/new/a.tfxs" ), "first", &error ) ) << error.Get();
	EXPECT_EQ( m_Scratch.Read( "content/particles/new/a.tfxs" ), "first" );
	// In-memory paths with backslashes name the same file.
	std::string memoryPath = Path( "content/particles/new/a.tfxs" ).string();
	std::replace( memoryPath.begin(), memoryPath.end(), '/', '\\' );
	ASSERT_TRUE( SafeWriteFile( memoryPath.c_str(), "second", 6, &error ) ) << error.Get();
	EXPECT_EQ( m_Scratch.Read( "content/particles/new/a.tfxs" ), "second" );
	EXPECT_TRUE( Temporaries( Path( "content/particles/new" ) ).empty() );
}

TEST_F( SafeWriteTest, CheckAcceptsWhatAWriteWouldWriteAndMakesNothing )
{
	CUtlString message;
	EXPECT_TRUE( SafeWriteCheck( Path( "new/deeper/a.tfxs" ).c_str(), &message ) ) << message.Get();
	EXPECT_FALSE( Exists( Path( "new" ) ) );
	ASSERT_TRUE( Write( Path( "b.tfxs" ), "text" ) );
	EXPECT_TRUE( SafeWriteCheck( Path( "b.tfxs" ).c_str(), &message ) ) << message.Get();
	EXPECT_EQ( m_Scratch.Read( "b.tfxs" ), "text" );
}

TEST_F( SafeWriteTest, ReplacedFileKeepsItsPermissions )
{
	m_Scratch.Write( "a.tfxs", "old" );
	fs::permissions( Path( "a.tfxs" ), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read );
	ASSERT_TRUE( Write( Path( "a.tfxs" ), "new" ) );
	EXPECT_EQ( m_Scratch.Read( "a.tfxs" ), "new" );
	EXPECT_EQ( Permissions( Path( "a.tfxs" ) ), fs::perms::owner_read | fs::perms::owner_write | fs::perms::group_read );
}

// What is refused, and stays exactly as it was. The tests run as root, which access()
// would let write anything: the mode bits decide.
struct RefusalCase_t
{
	const char *m_pName;
	void ( *m_fnPrepare )( const fs::path &root );
	const char *m_pTarget;
	const char *m_pReason;
};

class SafeWriteRefusal : public SafeWriteTest, public ::testing::WithParamInterface<RefusalCase_t>
{
};

TEST_P( SafeWriteRefusal, IsToldWithTheFileAndLeavesItUntouched )
{
	const RefusalCase_t &refusal = GetParam();
	refusal.m_fnPrepare( m_Scratch.Root() );
	fs::path target = Path( refusal.m_pTarget );
	bool bExisted = Exists( target );
	std::error_code error;
	bool bRegular = fs::is_regular_file( target, error );
	fs::perms permissions = bRegular ? Permissions( target ) : fs::perms::none;
	std::string before = bRegular ? m_Scratch.Read( refusal.m_pTarget ) : "";

	// A dry run's check refuses with the same words and touches nothing.
	CUtlString checked;
	EXPECT_FALSE( SafeWriteCheck( target.c_str(), &checked ) );
	ASSERT_EQ( Exists( target ), bExisted );

	CUtlString message;
	EXPECT_FALSE( Write( target, "replacement", &message ) );
	EXPECT_STREQ( checked.Get(), message.Get() );
	EXPECT_NE( strstr( message.Get(), target.c_str() ), nullptr ) << message.Get();
	EXPECT_NE( strstr( message.Get(), refusal.m_pReason ), nullptr ) << message.Get();
	ASSERT_EQ( Exists( target ), bExisted );
	if ( bRegular )
	{
		EXPECT_EQ( Permissions( target ), permissions );
		EXPECT_EQ( m_Scratch.Read( refusal.m_pTarget ), before );
	}
	EXPECT_TRUE( Temporaries( target.parent_path() ).empty() );
}

INSTANTIATE_TEST_SUITE_P( Targets, SafeWriteRefusal,
	::testing::Values(
		RefusalCase_t{ "ReadOnlyFile",
			[]( const fs::path &root ) {
				std::ofstream( root / "a.tfxs" ) << "checked in";
				fs::permissions( root / "a.tfxs", fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read );
			},
			"a.tfxs", "read only" },
		RefusalCase_t{ "ReadOnlyFileBehindALink",
			[]( const fs::path &root ) {
				std::ofstream( root / "a.tfxs" ) << "checked in";
				fs::permissions( root / "a.tfxs", fs::perms::owner_read );
				fs::create_symlink( "a.tfxs", root / "link.tfxs" );
			},
			"link.tfxs", "read only" },
		RefusalCase_t{ "ReadOnlyDirectory",
			[]( const fs::path &root ) {
				fs::create_directories( root / "locked" );
				std::ofstream( root / "locked/other.tfxs" ) << "x";
				fs::permissions( root / "locked", fs::perms::owner_read | fs::perms::owner_exec );
			},
			"locked/a.tfxs", "is read only" },
		RefusalCase_t{ "Directory", []( const fs::path &root ) { fs::create_directories( root / "a.tfxs" ); }, "a.tfxs", "is a directory" },
		RefusalCase_t{ "LinkLoop",
			[]( const fs::path &root ) {
				fs::create_symlink( "b.tfxs", root / "a.tfxs" );
				fs::create_symlink( "a.tfxs", root / "b.tfxs" );
			},
			"a.tfxs", "loop" } ),
	[]( const ::testing::TestParamInfo<RefusalCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST_F( SafeWriteTest, LinkIsWrittenThroughAndStaysALink )
{
	m_Scratch.Write( "shared/fire.tfxs", "old" );
	fs::create_directories( Path( "content" ) );
	// A relative link, and a link to that link.
	fs::create_symlink( "../shared/fire.tfxs", Path( "content/fire.tfxs" ) );
	fs::create_symlink( Path( "content/fire.tfxs" ), Path( "content/again.tfxs" ) );

	ASSERT_TRUE( Write( Path( "content/again.tfxs" ), "new" ) );
	EXPECT_TRUE( fs::is_symlink( Path( "content/fire.tfxs" ) ) );
	EXPECT_TRUE( fs::is_symlink( Path( "content/again.tfxs" ) ) );
	EXPECT_EQ( m_Scratch.Read( "shared/fire.tfxs" ), "new" );
	EXPECT_TRUE( Temporaries( Path( "content" ) ).empty() );
	EXPECT_TRUE( Temporaries( Path( "shared" ) ).empty() );

	// A link whose file is gone makes the file it names.
	fs::remove( Path( "shared/fire.tfxs" ) );
	ASSERT_TRUE( Write( Path( "content/fire.tfxs" ), "again" ) );
	EXPECT_TRUE( fs::is_symlink( Path( "content/fire.tfxs" ) ) );
	EXPECT_EQ( m_Scratch.Read( "shared/fire.tfxs" ), "again" );
}

TEST_F( SafeWriteTest, BeforeTheRenameTheTemporaryIsCompleteBesideAnUntouchedTarget )
{
	m_Scratch.Write( "content/a.tfxs", "old" );
	SafeWriteBeforeRenameFn_t fnPrevious = SafeWrite_SetBeforeRenameHook( &RecordBeforeRename );
	bool bWritten = Write( Path( "content/a.tfxs" ), "the new contents" );
	SafeWrite_SetBeforeRenameHook( fnPrevious );
	ASSERT_TRUE( bWritten );

	EXPECT_EQ( g_HookTargetText, "old" );
	EXPECT_EQ( g_HookTemporaryText, "the new contents" );
	fs::path temporary( g_HookTemporary );
	EXPECT_EQ( temporary.parent_path(), Path( "content" ) );
	// Hidden, and no pattern for the target's kind matches it.
	EXPECT_EQ( temporary.filename().string()[ 0 ], '.' );
	EXPECT_EQ( temporary.extension(), ".tmp" );
	EXPECT_FALSE( fs::exists( temporary ) );
	EXPECT_EQ( m_Scratch.Read( "content/a.tfxs" ), "the new contents" );
}

TEST_F( SafeWriteTest, FileSystemRefusesADirectoryMarkedUnmodifiable )
{
	CFileSystem fileSystem;
	fileSystem.SetupFromRoots( m_Scratch.Game().c_str(), m_Scratch.Content().c_str() );
	fileSystem.SetDirectoryUnmodifiable( ( m_Scratch.Content() / "base" ).c_str(), true );
	CUtlBuffer buffer;
	buffer.PutString( "x" );
	CUtlString error;
	EXPECT_FALSE( fileSystem.WriteFile( "base/a.tfxs", "CONTENT", buffer, &error ) );
	EXPECT_NE( strstr( error.Get(), "a.tfxs" ), nullptr ) << error.Get();
	EXPECT_FALSE( fs::exists( m_Scratch.Content() / "base/a.tfxs" ) );
	EXPECT_TRUE( fileSystem.WriteFile( "other/a.tfxs", "CONTENT", buffer, &error ) ) << error.Get();
}

// Started as a process of its own by the test below; does nothing in a normal run.
TEST( SafeWriteChild, WritesItsFillOverAndOver )
{
	const char *pTarget = getenv( CHILD_TARGET_ENV );
	const char *pFill = getenv( CHILD_FILL_ENV );
	if ( !pTarget || !pFill )
		GTEST_SKIP() << "only run as the child of ConcurrentSavesNeverLeaveACorruptFile";
	std::string text( CONCURRENT_SIZE, pFill[ 0 ] );
	for ( int i = 0; i < CONCURRENT_WRITES; ++i )
	{
		CUtlString error;
		ASSERT_TRUE( SafeWriteFile( pTarget, text.data(), text.size(), &error ) ) << error.Get();
	}
}

TEST_F( SafeWriteTest, ConcurrentSavesNeverLeaveACorruptFile )
{
	fs::path target = Path( "content/fire.tfxs" );
	ASSERT_TRUE( Write( target, std::string( CONCURRENT_SIZE, 'o' ) ) );
	std::string targetVariable = std::string( CHILD_TARGET_ENV ) + "=" + target.string();
	std::vector<pid_t> children;
	for ( const char *pFill : { "A", "B" } )
	{
		std::string fillVariable = std::string( CHILD_FILL_ENV ) + "=" + pFill;
		std::vector<std::string> environment = { targetVariable, fillVariable };
		for ( char **ppVariable = environ; *ppVariable; ++ppVariable )
			environment.emplace_back( *ppVariable );
		std::vector<char *> envp;
		for ( std::string &variable : environment )
			envp.push_back( variable.data() );
		envp.push_back( nullptr );
		std::string filter = "--gtest_filter=SafeWriteChild.WritesItsFillOverAndOver";
		char *argv[] = { const_cast<char *>( "/proc/self/exe" ), filter.data(), nullptr };
		pid_t pid = 0;
		ASSERT_EQ( posix_spawn( &pid, "/proc/self/exe", nullptr, nullptr, argv, envp.data() ), 0 );
		children.push_back( pid );
	}

	// Whatever moment a reader comes, it finds one whole version.
	int nReads = 0;
	std::vector<int> statuses( children.size(), -1 );
	for ( bool bRunning = true; bRunning; ++nReads )
	{
		bRunning = false;
		for ( size_t i = 0; i < children.size(); ++i )
		{
			if ( statuses[ i ] == -1 && waitpid( children[ i ], &statuses[ i ], WNOHANG ) == 0 )
			{
				statuses[ i ] = -1;
				bRunning = true;
			}
		}
		std::string text = m_Scratch.Read( "content/fire.tfxs" );
		ASSERT_EQ( text.size(), CONCURRENT_SIZE ) << "after " << nReads << " reads";
		ASSERT_TRUE( text.find_first_not_of( text[ 0 ] ) == std::string::npos ) << "a mixed file after " << nReads << " reads";
	}
	for ( int nStatus : statuses )
		EXPECT_TRUE( WIFEXITED( nStatus ) && WEXITSTATUS( nStatus ) == 0 ) << "a writer failed";
	std::string last = m_Scratch.Read( "content/fire.tfxs" );
	EXPECT_TRUE( last == std::string( CONCURRENT_SIZE, 'A' ) || last == std::string( CONCURRENT_SIZE, 'B' ) );
	EXPECT_TRUE( Temporaries( Path( "content" ) ).empty() );
}
