// zol tfxs merge: three-way merge of particle system definitions, saved as the editor saves;
// also a merge driver for version control ("zol tfxs merge %O %A %B -o %A").

#include <cstdio>
#include <cstring>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/text/utlstring.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clitfxs.h"
#include "zoldoc_lib/zoldefinitionmerge.h"
#include "zoldoc_lib/zoldoc.h"

namespace
{
int RunTfxsMerge( int argc, char **argv )
{
	const char *pUsage = "usage: zol tfxs merge BASE OURS THEIRS [-o OUT]\n";
	std::vector<const char *> files;
	const char *pOutput = nullptr;
	for ( int i = 2; i < argc; ++i )
	{
		if ( !strcmp( argv[ i ], "-o" ) || !strcmp( argv[ i ], "--output" ) )
		{
			if ( i + 1 >= argc )
				return fprintf( stderr, "zol tfxs merge: %s needs a file\n%s", argv[ i ], pUsage ), 2;
			pOutput = argv[ ++i ];
		}
		else if ( argv[ i ][ 0 ] == '-' && argv[ i ][ 1 ] )
		{
			return fprintf( stderr, "zol tfxs merge: unknown option \"%s\"\n%s", argv[ i ], pUsage ), 2;
		}
		else
		{
			files.push_back( argv[ i ] );
		}
	}
	if ( files.size() != 3 )
		return fprintf( stderr, "%s", pUsage ), 2;
	ConnectParticleHostForDefinition( files[ 1 ] );

	CZolDoc merged( false );
	std::vector<ZolMergeConflict_t> conflicts;
	CUtlString error;
	if ( !MergeDefinitionFiles( files[ 0 ], files[ 1 ], files[ 2 ], &merged, &conflicts, &error ) )
		return fprintf( stderr, "%s\n", error.Get() ), 2;

	if ( pOutput )
	{
		if ( !merged.SaveToFile( pOutput, &error ) )
		{
			PrintFileLines( stderr, pOutput, error.Get() );
			return 2;
		}
	}
	else
	{
		CUtlBuffer text;
		if ( !merged.SaveToBuffer( &text, &error ) )
			return fprintf( stderr, "%s\n", error.Get() ), 2;
		fwrite( text.Base(), 1, text.Size(), stdout );
	}

	for ( const ZolMergeConflict_t &conflict : conflicts )
	{
		CUtlString line;
		FormatMergeConflict( conflict, &line );
		fprintf( stderr, "conflict: %s\n", line.Get() );
	}
	if ( !conflicts.empty() )
		fprintf( stderr, "%zu conflict%s; the result keeps ours where the sides disagree\n", conflicts.size(), conflicts.size() == 1 ? "" : "s" );
	return conflicts.empty() ? 0 : 1;
}
} // namespace

static CZolCliSubcommandRegistrar s_TfxsMerge( "tfxs", "merge", "tfxs merge BASE OURS THEIRS [-o OUT]",
	"merges two definitions' changes since BASE, saved as the editor saves (to stdout without -o); exit 1 on conflicts, which keep ours", RunTfxsMerge );
