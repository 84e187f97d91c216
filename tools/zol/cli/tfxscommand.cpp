// zol tfxs check|fmt: load particle system definition files as the editor does, and report
// why one is refused or what was read leniently, or print the text a save would write.

#include <cstdio>
#include <cstring>

#include "core/containers/utlbuffer.h"
#include "tools/zol/cli/clicommand.h"
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
	ConnectParticleHostForDefinition( argv[ 2 ] );

	int nStatus = 0;
	for ( int i = 2; i < argc; ++i )
	{
		CZolDoc doc( false );
		CUtlString error;
		if ( !doc.LoadFromFile( argv[ i ], "", &error ) )
		{
			PrintFileLines( bFormat ? stderr : stdout, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		PrintFileLines( bFormat ? stderr : stdout, argv[ i ], doc.GetLoadWarnings().Get() );
		if ( !bFormat )
			continue;
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
	"reports why particle system definitions are refused or read leniently", RunTfxs );
static CZolCliSubcommandRegistrar s_TfxsFormat( "tfxs", "fmt", "tfxs fmt FILE", "prints a definition as a save writes it", RunTfxs );
