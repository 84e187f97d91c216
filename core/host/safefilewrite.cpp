#include "core/host/safefilewrite.h"

#include <fcntl.h>
#include <linux/fs.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <random>
#include <string>
#include <system_error>

#include "core/containers/utlbuffer.h"
#include "core/host/hostpaths.h"
#include "core/text/utlstring.h"

namespace fs = std::filesystem;

namespace
{
std::atomic<SafeWriteBeforeRenameFn_t> g_fnBeforeRename{ nullptr };

// Links are followed this deep, as the system itself does, before a loop is assumed.
constexpr int MAX_LINK_DEPTH = 40;
// Room left in a file name for the temporary's dot and suffix.
constexpr size_t MAX_TEMPORARY_BASE = 200;

bool Refuse( CUtlString *pError, const char *pPath, const std::string &reason )
{
	if ( pError )
		pError->Format( "Cannot write '%s': %s", pPath, reason.c_str() );
	return false;
}

std::string ErrnoText( const char *pWhat, int nErrno )
{
	return std::string( pWhat ) + ": " + strerror( nErrno );
}

// Follows the links at the end of the path to the file they name; a dangling link names
// the file a write creates.
bool FollowLinks( std::string *pPath, std::string *pReason )
{
	for ( int nDepth = 0; nDepth < MAX_LINK_DEPTH; ++nDepth )
	{
		struct stat info;
		if ( lstat( pPath->c_str(), &info ) != 0 || !S_ISLNK( info.st_mode ) )
			return true;
		std::error_code error;
		fs::path target = fs::read_symlink( *pPath, error );
		if ( error )
		{
			*pReason = "the link '" + *pPath + "' can't be read: " + error.message();
			return false;
		}
		if ( target.is_relative() )
			target = fs::path( *pPath ).parent_path() / target;
		*pPath = target.lexically_normal().string();
	}
	*pReason = "its links lead round in a loop";
	return false;
}

// Whether the system marks the file immutable or append-only (neither of which a rename
// may replace); false where the file system has no such marks.
bool IsMarkedUnchangeable( const char *pPath )
{
	int fd = open( pPath, O_RDONLY | O_NONBLOCK | O_CLOEXEC | O_NOFOLLOW );
	if ( fd < 0 )
		return false;
	int nFlags = 0;
	bool bMarked = ioctl( fd, FS_IOC_GETFLAGS, &nFlags ) == 0 && ( nFlags & ( FS_IMMUTABLE_FL | FS_APPEND_FL ) ) != 0;
	close( fd );
	return bMarked;
}

// The reason a file that exists may not be replaced; empty when it may.
std::string CheckExistingTarget( const std::string &path, const struct stat &info )
{
	if ( S_ISDIR( info.st_mode ) )
		return "it is a directory";
	if ( !S_ISREG( info.st_mode ) )
		return "it is not a regular file";
	if ( !( info.st_mode & S_IWUSR ) )
		return "the file is read only";
	if ( IsMarkedUnchangeable( path.c_str() ) )
		return "the file is marked as unchangeable (immutable or append-only)";
	return std::string();
}

// A new file beside the target whose name no other writer can have chosen; -1 with the
// reason when none can be made.
int CreateTemporary( const fs::path &directory, const std::string &targetName, std::string *pTemporary, std::string *pReason )
{
	static std::atomic<unsigned> s_nCounter{ 0 };
	thread_local std::mt19937 s_Random( std::random_device{}() ^ unsigned( getpid() ) );
	std::string base = targetName.substr( 0, MAX_TEMPORARY_BASE );
	for ( int nTry = 0; nTry < 100; ++nTry )
	{
		char szSuffix[ 64 ];
		snprintf( szSuffix, sizeof( szSuffix ), ".%d.%u.%08x.tmp", int( getpid() ), s_nCounter.fetch_add( 1 ), unsigned( s_Random() ) );
		*pTemporary = ( directory / ( "." + base + szSuffix ) ).string();
		// The usual permissions of a new file: the process's umask applies.
		int fd = open( pTemporary->c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666 );
		if ( fd >= 0 )
			return fd;
		if ( errno != EEXIST )
		{
			*pReason = ErrnoText( ( "a temporary file can't be made in '" + directory.string() + "'" ).c_str(), errno );
			return -1;
		}
	}
	*pReason = "no unused temporary name was found in '" + directory.string() + "'";
	return -1;
}

bool WriteAll( int fd, const void *pData, size_t nSize )
{
	const char *pNext = static_cast<const char *>( pData );
	while ( nSize > 0 )
	{
		ssize_t nWritten = write( fd, pNext, nSize );
		if ( nWritten < 0 )
		{
			if ( errno == EINTR )
				continue;
			return false;
		}
		pNext += nWritten;
		nSize -= size_t( nWritten );
	}
	return true;
}

// Makes the rename itself survive a power cut; a failure here leaves a complete file of
// either version, so it isn't reported.
void SyncDirectory( const fs::path &directory )
{
	int fd = open( directory.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC );
	if ( fd < 0 )
		return;
	fsync( fd );
	close( fd );
}

// The file a write of pPath replaces, after its links, and whether it exists; false with
// the reason when the target may not be replaced.
bool FindWriteTarget( const char *pPath, std::string *pTarget, struct stat *pInfo, bool *pExists, std::string *pReason )
{
	// Directories are found whatever the case of their names; the file keeps its name as
	// spelt, so of two files that differ only in case the one named is written.
	fs::path spelt( Host_DiskPath( pPath ).Get() );
	*pTarget = spelt.has_parent_path() ? ( fs::path( Host_DiskPathForWrite( spelt.parent_path().c_str() ).Get() ) / spelt.filename() ).string() : spelt.string();
	if ( !FollowLinks( pTarget, pReason ) )
		return false;
	*pExists = stat( pTarget->c_str(), pInfo ) == 0;
	if ( *pExists )
		*pReason = CheckExistingTarget( *pTarget, *pInfo );
	return pReason->empty();
}
} // namespace

bool SafeWriteCheck( const char *pPath, CUtlString *pError )
{
	if ( !pPath || !*pPath )
		return Refuse( pError, "", "no file name was given" );
	std::string target, reason;
	struct stat info;
	bool bExists = false;
	if ( !FindWriteTarget( pPath, &target, &info, &bExists, &reason ) )
		return Refuse( pError, pPath, reason );
	// The nearest directory that exists decides: a write makes the rest of the chain in it.
	std::error_code error;
	fs::path directory = fs::path( target ).parent_path();
	while ( !directory.empty() && !fs::exists( directory, error ) && directory != directory.root_path() )
		directory = directory.parent_path();
	struct stat directoryInfo;
	if ( directory.empty() )
		directory = ".";
	if ( stat( directory.c_str(), &directoryInfo ) != 0 || !S_ISDIR( directoryInfo.st_mode ) )
		return Refuse( pError, pPath, "its directory '" + directory.string() + "' can't be made" );
	if ( !( directoryInfo.st_mode & S_IWUSR ) )
		return Refuse( pError, pPath, "its directory '" + directory.string() + "' is read only" );
	if ( pError )
		pError->Clear();
	return true;
}

bool SafeWriteFile( const char *pPath, const void *pData, size_t nSize, CUtlString *pError )
{
	if ( !pPath || !*pPath )
		return Refuse( pError, "", "no file name was given" );
	if ( nSize > 0 && !pData )
		return Refuse( pError, pPath, "there is no data" );

	std::string target, reason;
	struct stat info;
	bool bExists = false;
	if ( !FindWriteTarget( pPath, &target, &info, &bExists, &reason ) )
		return Refuse( pError, pPath, reason );

	fs::path directory = fs::path( target ).parent_path();
	if ( directory.empty() )
		directory = ".";
	std::error_code error;
	fs::create_directories( directory, error );
	struct stat directoryInfo;
	if ( error || stat( directory.c_str(), &directoryInfo ) != 0 || !S_ISDIR( directoryInfo.st_mode ) )
		return Refuse( pError, pPath, "its directory '" + directory.string() + "' can't be made" + ( error ? ": " + error.message() : std::string() ) );
	if ( !( directoryInfo.st_mode & S_IWUSR ) )
		return Refuse( pError, pPath, "its directory '" + directory.string() + "' is read only" );

	std::string temporary;
	int fd = CreateTemporary( directory, fs::path( target ).filename().string(), &temporary, &reason );
	if ( fd < 0 )
		return Refuse( pError, pPath, reason );

	bool bWritten = WriteAll( fd, pData, nSize );
	int nWriteErrno = errno;
	if ( bWritten && bExists )
	{
		// The new file takes the old one's place with its permissions and, where the
		// process may change it, its owner.
		fchmod( fd, info.st_mode & 07777 );
		if ( info.st_uid != geteuid() || info.st_gid != getegid() )
		{
			if ( fchown( fd, info.st_uid, info.st_gid ) != 0 )
				fchmod( fd, info.st_mode & 0777 );
		}
	}
	if ( bWritten && fsync( fd ) != 0 )
	{
		bWritten = false;
		nWriteErrno = errno;
	}
	if ( close( fd ) != 0 && bWritten )
	{
		bWritten = false;
		nWriteErrno = errno;
	}
	if ( !bWritten )
	{
		unlink( temporary.c_str() );
		return Refuse( pError, pPath, ErrnoText( "writing failed, the file is as it was", nWriteErrno ) );
	}

	if ( SafeWriteBeforeRenameFn_t fnHook = g_fnBeforeRename.load() )
		fnHook( temporary.c_str(), target.c_str() );

	if ( rename( temporary.c_str(), target.c_str() ) != 0 )
	{
		int nRenameErrno = errno;
		unlink( temporary.c_str() );
		return Refuse( pError, pPath, ErrnoText( "the new file could not replace the old one, which is as it was", nRenameErrno ) );
	}
	SyncDirectory( directory );
	if ( pError )
		pError->Clear();
	return true;
}

bool SafeWriteFile( const char *pPath, const CUtlBuffer &buffer, CUtlString *pError )
{
	return SafeWriteFile( pPath, buffer.Base(), buffer.TellPut(), pError );
}

SafeWriteBeforeRenameFn_t SafeWrite_SetBeforeRenameHook( SafeWriteBeforeRenameFn_t fnHook )
{
	return g_fnBeforeRename.exchange( fnHook );
}
