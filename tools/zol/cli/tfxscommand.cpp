// zol tfxs check|fmt: load particle system definition files as the editor does, and report
// why one is refused or what was read leniently, or print the text a save would write.
// check also compiles each file with its children as zol sim and the preview run it, so
// that it refuses every file they would.

#include <cstdio>
#include <cstring>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/iparticlesystemmgr.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clidefinition.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"

// Each line of a text, as "FILE: line" (or the line alone when it names its file already).
static void PrintLines( FILE *pOut, const char *pFile, const char *pText )
{
	const char *pLine = pText;
	while ( pLine && *pLine )
	{
		const char *pEnd = strchr( pLine, '\n' );
		size_t nLength = pEnd ? size_t( pEnd - pLine ) : strlen( pLine );
		if ( nLength && pFile )
			fprintf( pOut, "%s: %.*s\n", pFile, int( nLength ), pLine );
		else if ( nLength )
			fprintf( pOut, "%.*s\n", int( nLength ), pLine );
		pLine = pEnd ? pEnd + 1 : nullptr;
	}
}

static int RunTfxs( int argc, char **argv )
{
	const char *pUsage = "usage: zol tfxs check FILE...\n       zol tfxs fmt FILE\n";
	const bool bCheck = argc >= 3 && !strcmp( argv[ 1 ], "check" );
	const bool bFormat = argc == 3 && !strcmp( argv[ 1 ], "fmt" );
	if ( !bCheck && !bFormat )
	{
		fprintf( stderr, "%s", pUsage );
		return 2;
	}
	for ( int i = 2; i < argc; ++i )
	{
		if ( !*argv[ i ] || argv[ i ][ 0 ] == '-' )
		{
			fprintf( stderr, "zol tfxs: %s\n%s", *argv[ i ] ? ( std::string( "unknown option " ) + argv[ i ] ).c_str() : "an empty file name", pUsage );
			return 2;
		}
	}
	SetParticleSystemMgr( HostParticleSystemMgr() );
	SetParticleGameRoot( ZolCliGameRootFor( argv[ 2 ] ).c_str() );

	int nStatus = 0;
	FILE *pReport = bFormat ? stderr : stdout;
	for ( int i = 2; i < argc; ++i )
	{
		CZolDoc doc( false );
		CUtlString error;
		if ( !doc.LoadFromFile( argv[ i ], "", &error ) )
		{
			PrintLines( pReport, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		PrintLines( pReport, argv[ i ], doc.GetLoadWarnings().Get() );
		if ( bCheck )
		{
			// What the preview and zol sim would make of it: function fields, inputs and
			// the whole tree of children.
			CUtlString warnings;
			if ( !ZolCliCompileDefinition( argv[ i ], &error, &warnings ) )
			{
				PrintLines( pReport, nullptr, error.Get() );
				nStatus = 1;
			}
			PrintLines( pReport, nullptr, warnings.Get() );
			continue;
		}
		CUtlBuffer buffer;
		if ( !doc.SaveToBuffer( &buffer, &error ) )
		{
			PrintLines( stderr, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		fwrite( buffer.Base(), 1, buffer.Size(), stdout );
	}
	return nStatus;
}

static CZolCliCommandRegistrar s_TfxsCommand( { "tfxs", "tfxs check|fmt FILE...",
	"reports why particle system definitions are refused or read leniently (check), or prints one as a save writes it (fmt)", RunTfxs } );
