#include "zoldoc_lib/zolfileio.h"

#include <cstdio>
#include <filesystem>
#include <string>
#include <system_error>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/platform/platformfile.h"
#include "core/text/utlstring.h"

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

bool ZolReadWholeFile( const char *pPath, const char *pPathId, CUtlBuffer *pBuffer, CUtlString *pReason )
{
	if ( !pPath || !*pPath )
	{
		if ( pReason )
			pReason->Set( "no file name given" );
		return false;
	}
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
	return Plat_ReadWholeFile( ToFilePath( pPath ).string().c_str(), pBuffer, pReason );
}

bool ZolWriteWholeFile( const char *pPath, const CUtlBuffer &buffer )
{
	if ( !pPath || !*pPath )
		return false;
	std::filesystem::path target = ToFilePath( pPath );
	std::error_code error;
	if ( target.has_parent_path() )
		std::filesystem::create_directories( target.parent_path(), error );

	std::filesystem::path temporary = target;
	temporary += ".tmp_save";
	FILE *pFile = fopen( temporary.string().c_str(), "wb" );
	if ( !pFile )
		return false;
	bool bWritten = fwrite( buffer.Base(), 1, buffer.Size(), pFile ) == buffer.Size();
	bWritten = fflush( pFile ) == 0 && bWritten;
	bWritten = fclose( pFile ) == 0 && bWritten;
	if ( bWritten )
	{
		std::filesystem::rename( temporary, target, error );
		bWritten = !error;
	}
	if ( !bWritten )
		std::filesystem::remove( temporary, error );
	return bWritten;
}
