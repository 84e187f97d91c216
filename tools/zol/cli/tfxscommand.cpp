// zol tfxs check|fmt: load particle system definition files as the editor does, and report
// why one is refused or what was read leniently, or print the text a save would write.
// check also compiles each file with its children as zol sim and the preview run it, so
// that it refuses every file they would.

#include <cstdio>
#include <cstring>
#include <string>

#include "core/containers/utlbuffer.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clidefinition.h"
#include "tools/zol/cli/clitfxs.h"
#include "zoldoc_lib/zoldoc.h"

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
	ConnectParticleHostForDefinition( argv[ 2 ] );

	int nStatus = 0;
	FILE *pReport = bFormat ? stderr : stdout;
	for ( int i = 2; i < argc; ++i )
	{
		CZolDoc doc( false );
		CUtlString error;
		if ( !doc.LoadFromFile( argv[ i ], "", &error ) )
		{
			PrintFileLines( pReport, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		PrintFileLines( pReport, argv[ i ], doc.GetLoadWarnings().Get() );
		if ( bCheck )
		{
			// What the preview and zol sim would make of it: function fields, inputs and
			// the whole tree of children. Their messages name their files.
			CUtlString warnings;
			if ( !ZolCliCompileDefinition( argv[ i ], &error, &warnings ) )
			{
				PrintFileLines( pReport, nullptr, error.Get() );
				nStatus = 1;
			}
			PrintFileLines( pReport, nullptr, warnings.Get() );
			continue;
		}
		CUtlBuffer buffer;
		if ( !doc.SaveToBuffer( &buffer, &error ) )
		{
			PrintFileLines( stderr, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		fwrite( buffer.Base(), 1, buffer.Size(), stdout );
	}
	return nStatus;
}

static CZolCliSubcommandRegistrar s_TfxsCheck( "tfxs", "check", "tfxs check FILE...",
	"reports why particle system definitions are refused (as zol sim and the preview would) or read leniently", RunTfxs );
static CZolCliSubcommandRegistrar s_TfxsFormat( "tfxs", "fmt", "tfxs fmt FILE", "prints a definition as a save writes it", RunTfxs );
