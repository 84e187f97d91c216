// Whole-file reads refuse what isn't a regular file and what is beyond the size limit, and
// say why; every reader of files (the file system, the game information) goes through them.

#include "core/platform/platformfile.h"

#include <gtest/gtest.h>

#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/host/filesystem.h"
#include "core/keyvalues/keyvalues.h"
#include "tests/core/host/hosttestsupport.h"

namespace
{
struct RefusedRead_t
{
	const char *m_pName;
	std::string m_Path;
	const char *m_pReason;
};

std::string Refusal( const std::string &path, size_t nLimit = PLAT_MAX_READ_FILE_BYTES )
{
	CUtlBuffer buffer;
	CUtlString reason;
	if ( Plat_ReadWholeFile( path.c_str(), &buffer, &reason, nLimit ) )
		return "<read " + std::to_string( buffer.TellPut() ) + " bytes>";
	return reason.Get();
}
} // namespace

TEST( PlatformFile, ReadsARegularFileWhole )
{
	CHostScratchDirectory scratch;
	scratch.Write( "content/a.txt", std::string( 100000, 'x' ) );
	CUtlBuffer buffer;
	CUtlString reason;
	ASSERT_TRUE( Plat_ReadWholeFile( ( scratch.Content() / "a.txt" ).c_str(), &buffer, &reason ) ) << reason.Get();
	EXPECT_EQ( buffer.TellPut(), 100000u );
	std::string text;
	ASSERT_TRUE( Plat_ReadWholeFile( ( scratch.Content() / "a.txt" ).c_str(), &text, &reason, 100000 ) );
	EXPECT_EQ( text.size(), 100000u );
}

TEST( PlatformFile, RefusesWhatIsNoRegularFileOrTooLargeWithTheReason )
{
	CHostScratchDirectory scratch;
	scratch.Write( "content/big.txt", std::string( 2000, 'x' ) );
	const std::filesystem::path fifo = scratch.Content() / "pipe";
	ASSERT_EQ( mkfifo( fifo.c_str(), 0600 ), 0 );
	std::filesystem::create_symlink( "/dev/zero", scratch.Content() / "zero.tfxs" );

	EXPECT_EQ( Refusal( "/dev/zero" ), "not a regular file (a device, pipe or socket)" );
	EXPECT_EQ( Refusal( ( scratch.Content() / "zero.tfxs" ).string() ), "not a regular file (a device, pipe or socket)" );
	EXPECT_EQ( Refusal( fifo.string() ), "not a regular file (a device, pipe or socket)" ) << "a pipe without a writer must not block";
	EXPECT_EQ( Refusal( scratch.Content().string() ), "is a directory, not a file" );
	EXPECT_EQ( Refusal( ( scratch.Content() / "none.txt" ).string() ), "No such file or directory" );
	EXPECT_EQ( Refusal( "" ), "no file name given" );
	EXPECT_EQ( Refusal( ( scratch.Content() / "big.txt" ).string(), 1999 ), "larger than the limit" );
	EXPECT_EQ( Refusal( ( scratch.Content() / "big.txt" ).string(), 2000 ), "<read 2000 bytes>" );
}

// What a shell's "<(...)" hands over (a pipe named /dev/fd/N) is read when the caller
// allows pipes, within the limit; a pipe no one writes to reads as empty; devices never.
TEST( PlatformFile, PipesAreReadOnlyWhenAllowedAndWithinTheLimit )
{
	auto fnPipeHolding = []( size_t nBytes, int *pReadEnd ) {
		int ends[ 2 ];
		EXPECT_EQ( pipe( ends ), 0 );
		const std::string text( nBytes, 'p' );
		EXPECT_EQ( write( ends[ 1 ], text.data(), text.size() ), ssize_t( nBytes ) );
		close( ends[ 1 ] );
		*pReadEnd = ends[ 0 ];
		return "/dev/fd/" + std::to_string( ends[ 0 ] );
	};
	int nReadEnd;
	std::string path = fnPipeHolding( 3000, &nReadEnd );
	std::string text;
	CUtlString reason;
	EXPECT_FALSE( Plat_ReadWholeFile( path.c_str(), &text, &reason ) );
	EXPECT_STREQ( reason.Get(), "not a regular file (a device, pipe or socket)" );
	EXPECT_TRUE( Plat_ReadWholeFile( path.c_str(), &text, &reason, PLAT_MAX_READ_FILE_BYTES, PLAT_READ_ALLOW_PIPE ) ) << reason.Get();
	EXPECT_EQ( text.size(), 3000u );
	close( nReadEnd );

	path = fnPipeHolding( 5000, &nReadEnd );
	text.clear();
	EXPECT_FALSE( Plat_ReadWholeFile( path.c_str(), &text, &reason, 4096, PLAT_READ_ALLOW_PIPE ) );
	EXPECT_STREQ( reason.Get(), "larger than the limit" );
	close( nReadEnd );

	CHostScratchDirectory scratch;
	const std::filesystem::path fifo = scratch.Content() / "pipe";
	ASSERT_EQ( mkfifo( fifo.c_str(), 0600 ), 0 );
	text.clear();
	EXPECT_TRUE( Plat_ReadWholeFile( fifo.c_str(), &text, &reason, PLAT_MAX_READ_FILE_BYTES, PLAT_READ_ALLOW_PIPE ) );
	EXPECT_TRUE( text.empty() );

	EXPECT_FALSE( Plat_ReadWholeFile( "/dev/zero", &text, &reason, PLAT_MAX_READ_FILE_BYTES, PLAT_READ_ALLOW_PIPE ) );
	EXPECT_STREQ( reason.Get(), "not a regular file (a device, pipe or socket)" );
}

TEST( PlatformFile, TheFileSystemAndGameInformationRefuseDevicesByName )
{
	CHostScratchDirectory scratch;
	CFileSystem fileSystem;
	fileSystem.SetupFromRoots( scratch.Game().string().c_str(), scratch.Content().string().c_str() );
	CUtlBuffer buffer;
	CUtlString error;
	EXPECT_FALSE( fileSystem.ReadFile( "/dev/zero", nullptr, &buffer, &error ) );
	EXPECT_STREQ( error.Get(), "Unable to read '/dev/zero': not a regular file (a device, pipe or socket)" );
	EXPECT_EQ( buffer.TellPut(), 0u );

	KeyValues keyValues;
	EXPECT_FALSE( keyValues.LoadFromFile( "/dev/zero", &error ) );
	EXPECT_STREQ( error.Get(), "/dev/zero: not a regular file (a device, pipe or socket)" );
}
