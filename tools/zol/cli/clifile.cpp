#include "tools/zol/cli/clifile.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

bool ZolCliReadFile( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pError )
{
	FILE *pFile = fopen( pPath, "rb" );
	if ( !pFile )
	{
		pError->Format( "cannot open file: %s", strerror( errno ) );
		return false;
	}
	char chunk[ 64 * 1024 ];
	size_t nRead;
	while ( ( nRead = fread( chunk, 1, sizeof( chunk ), pFile ) ) > 0 )
		pBuffer->Put( chunk, nRead );
	bool bFailed = ferror( pFile ) != 0;
	fclose( pFile );
	if ( bFailed )
	{
		pError->Set( "read error" );
		return false;
	}
	return true;
}
