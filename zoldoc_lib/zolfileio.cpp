#include "zoldoc_lib/zolfileio.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/host/safefilewrite.h"

namespace
{
// Paths in memory may use backslashes; the plain file API wants the platform's separator.
std::filesystem::path ToFilePath( const char *pPath )
{
	std::string path( pPath );
#ifndef _WIN32
	for ( char &c : path )
	{
		if ( c == '\\' )
			c = '/';
	}
#endif
	return std::filesystem::path( path );
}
} // namespace

bool ZolReadWholeFile( const char *pPath, const char *pPathId, CUtlBuffer *pBuffer )
{
	if ( !pPath || !*pPath )
		return false;
	// A path id needs the host's search paths; without an id the path is taken as given.
	if ( pPathId && *pPathId )
	{
		if ( IFileSystem *pFileSystem = GetFileSystem() )
		{
			CUtlBuffer read;
			if ( pFileSystem->ReadFile( pPath, pPathId, &read ) )
			{
				pBuffer->Put( read.Base(), read.Size() );
				return true;
			}
		}
	}
	FILE *pFile = fopen( ToFilePath( pPath ).string().c_str(), "rb" );
	if ( !pFile )
		return false;
	char chunk[ 64 * 1024 ];
	size_t nRead;
	while ( ( nRead = fread( chunk, 1, sizeof( chunk ), pFile ) ) > 0 )
		pBuffer->Put( chunk, nRead );
	bool bFailed = ferror( pFile ) != 0;
	fclose( pFile );
	return !bFailed;
}

bool ZolWriteWholeFile( const char *pPath, const CUtlBuffer &buffer, CUtlString *pError )
{
	return SafeWriteFile( pPath, buffer, pError );
}
