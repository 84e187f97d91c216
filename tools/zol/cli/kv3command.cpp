// zol kv3 fmt|check FILE...: parse KV3 text files; print them back in canonical form
// or only report errors as FILE:line:col: message.

#include <cstdio>
#include <cstring>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/platform/platformfile.h"
#include "tools/zol/cli/clicommand.h"

// Parses one file, keeping a definition file's format so that its canonical form stays
// a definition; on failure prints "FILE:line:col: message" to stderr.
static bool LoadKV3File( const char *pPath, KeyValues3 *pKV, const KV3ID_t **ppFormat )
{
	CUtlBuffer buffer;
	CUtlString error;
	if ( !Plat_ReadWholeFile( pPath, &buffer, &error ) )
	{
		fprintf( stderr, "%s: %s\n", pPath, error.Get() );
		return false;
	}
	*ppFormat = &KV3_FORMAT_TFXS;
	if ( LoadKV3( pKV, &error, &buffer, KV3_FORMAT_TFXS, pPath ) )
		return true;
	buffer.SeekGet( 0 );
	*ppFormat = &KV3_FORMAT_GENERIC;
	if ( LoadKV3( pKV, &error, &buffer, KV3_FORMAT_GENERIC, pPath, KV3_LOAD_ANY_FORMAT ) )
		return true;
	fprintf( stderr, "%s:%s\n", pPath, error.Get() );
	return false;
}

static int RunKV3( int argc, char **argv )
{
	if ( argc < 3 || ( strcmp( argv[ 1 ], "fmt" ) && strcmp( argv[ 1 ], "check" ) ) )
	{
		fprintf( stderr, "usage: zol kv3 fmt FILE...\n       zol kv3 check FILE...\n" );
		return 2;
	}
	bool bFormat = !strcmp( argv[ 1 ], "fmt" );
	for ( int i = 2; i < argc; ++i )
	{
		if ( !*argv[ i ] )
		{
			fprintf( stderr, "zol kv3: an empty file name\nusage: zol kv3 fmt FILE...\n       zol kv3 check FILE...\n" );
			return 2;
		}
	}
	int nStatus = 0;
	for ( int i = 2; i < argc; ++i )
	{
		KeyValues3 kv;
		const KV3ID_t *pFormat = nullptr;
		if ( !LoadKV3File( argv[ i ], &kv, &pFormat ) )
		{
			nStatus = 1;
			continue;
		}
		if ( !bFormat )
			continue;
		CUtlBuffer out;
		CUtlString error;
		if ( !SaveKV3( KV3_ENCODING_TEXT, *pFormat, &kv, &error, &out ) )
		{
			fprintf( stderr, "%s: %s\n", argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		fwrite( out.Base(), 1, out.TellPut(), stdout );
	}
	return nStatus;
}

static CZolCliCommandRegistrar s_KV3Command( { "kv3", "kv3 fmt|check FILE...", "prints KV3 files in canonical form (fmt) or only reports their errors (check)", RunKV3 } );
