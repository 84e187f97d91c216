#include "core/platform/platformfile.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <functional>
#include <sys/stat.h>
#include <unistd.h>

#include "core/containers/utlbuffer.h"

namespace
{
void SetReason( CUtlString *pReason, const char *pText )
{
	if ( pReason )
		pReason->Set( pText );
}

bool ReadRegularFile( const char *pPath, size_t nMaxBytes, unsigned nFlags, CUtlString *pReason, const std::function<void( const char *, size_t )> &fnAppend )
{
	if ( !pPath || !*pPath )
	{
		SetReason( pReason, "no file name given" );
		return false;
	}
	// Opened without blocking, so that a pipe with no writer can't hold the open; what it
	// is comes from the open descriptor, so nothing can swap the file in between.
	int nFile = open( pPath, O_RDONLY | O_NONBLOCK | O_CLOEXEC );
	if ( nFile < 0 )
	{
		SetReason( pReason, strerror( errno ) );
		return false;
	}
	struct stat info;
	if ( fstat( nFile, &info ) != 0 )
	{
		SetReason( pReason, strerror( errno ) );
		close( nFile );
		return false;
	}
	if ( S_ISDIR( info.st_mode ) )
	{
		SetReason( pReason, "is a directory, not a file" );
		close( nFile );
		return false;
	}
	const bool bPipe = S_ISFIFO( info.st_mode ) && ( nFlags & PLAT_READ_ALLOW_PIPE );
	if ( bPipe )
	{
		// A writer may be on its way: the pipe is read waiting for it from here on.
		fcntl( nFile, F_SETFL, fcntl( nFile, F_GETFL ) & ~O_NONBLOCK );
	}
	else if ( !S_ISREG( info.st_mode ) )
	{
		SetReason( pReason, "not a regular file (a device, pipe or socket)" );
		close( nFile );
		return false;
	}
	CUtlString limit;
	limit.Format( "larger than the limit of %zu MiB", nMaxBytes >> 20 );
	if ( !bPipe && ( info.st_size < 0 || uint64_t( info.st_size ) > nMaxBytes ) )
	{
		SetReason( pReason, nMaxBytes >= ( size_t( 1 ) << 20 ) ? limit.Get() : "larger than the limit" );
		close( nFile );
		return false;
	}
	char chunk[ 64 * 1024 ];
	size_t nTotal = 0;
	for ( ;; )
	{
		ssize_t nRead = read( nFile, chunk, sizeof( chunk ) );
		if ( nRead < 0 && errno == EINTR )
			continue;
		if ( nRead < 0 )
		{
			CUtlString reason;
			reason.Format( "read error: %s", strerror( errno ) );
			SetReason( pReason, reason.Get() );
			close( nFile );
			return false;
		}
		if ( nRead == 0 )
			break;
		// A file that grows while it is read is held to the same limit.
		nTotal += size_t( nRead );
		if ( nTotal > nMaxBytes )
		{
			SetReason( pReason, nMaxBytes >= ( size_t( 1 ) << 20 ) ? limit.Get() : "larger than the limit" );
			close( nFile );
			return false;
		}
		fnAppend( chunk, size_t( nRead ) );
	}
	close( nFile );
	return true;
}
} // namespace

bool Plat_ReadWholeFile( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pReason, size_t nMaxBytes, unsigned nFlags )
{
	return ReadRegularFile( pPath, nMaxBytes, nFlags, pReason, [ pBuffer ]( const char *pData, size_t nSize ) { pBuffer->Put( pData, nSize ); } );
}

bool Plat_ReadWholeFile( const char *pPath, std::string *pText, CUtlString *pReason, size_t nMaxBytes, unsigned nFlags )
{
	return ReadRegularFile( pPath, nMaxBytes, nFlags, pReason, [ pText ]( const char *pData, size_t nSize ) { pText->append( pData, nSize ); } );
}
