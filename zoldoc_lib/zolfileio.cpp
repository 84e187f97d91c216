#include "zoldoc_lib/zolfileio.h"

#include <cstdio>
#include <filesystem>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/host/safefilewrite.h"
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

bool ZolWriteWholeFile( const char *pPath, const CUtlBuffer &buffer, CUtlString *pError )
{
	return SafeWriteFile( pPath, buffer, pError );
}
