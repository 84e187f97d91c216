// zol: the particle effects editor's command line.

#include <cstdio>
#include <cstring>

#include "tools/zol/cli/clicommand.h"
#ifdef ZOL_HAS_TOOLS_HOST
#include "tools/zol/host/toolshost.h"
#else
// Built without the editor: the command line alone.
static int RunToolsHost( int, char ** )
{
	fprintf( stderr, "zol: this build has no editor; give a command\n" );
	return 2;
}
#endif

std::vector<ZolCliCommand_t> &ZolCliCommands()
{
	static std::vector<ZolCliCommand_t> s_Commands;
	return s_Commands;
}

static void PrintHelp( FILE *pOut )
{
	fprintf( pOut, "usage: zol [--game DIR] [--content DIR] [--screenshot PATH [--frames N]] [FILE...]\n       zol COMMAND [ARGS...]\n\nWithout a command, zol starts the editor.\n\ncommands:\n" );
	for ( const ZolCliCommand_t &command : ZolCliCommands() )
		fprintf( pOut, "  zol %-32s %s\n", command.m_pUsage, command.m_pHelp );
	fprintf( pOut, "  zol %-32s %s\n", "--help", "shows this list" );
}

int main( int argc, char **argv )
{
	// No subcommand: the editor, with its options and the files to open.
	if ( argc < 2 || ( argv[ 1 ][ 0 ] == '-' && argv[ 1 ][ 1 ] == '-' && strcmp( argv[ 1 ], "--help" ) ) )
		return RunToolsHost( argc, argv );
	if ( !strcmp( argv[ 1 ], "--help" ) || !strcmp( argv[ 1 ], "-h" ) || !strcmp( argv[ 1 ], "help" ) )
	{
		PrintHelp( stdout );
		return 0;
	}
	for ( const ZolCliCommand_t &command : ZolCliCommands() )
	{
		if ( !strcmp( argv[ 1 ], command.m_pName ) )
			return command.m_pfnRun( argc - 1, argv + 1 );
	}
	// A file to open rather than a command.
	if ( strchr( argv[ 1 ], '.' ) || strchr( argv[ 1 ], '/' ) )
		return RunToolsHost( argc, argv );
	fprintf( stderr, "zol: unknown command \"%s\"\n\n", argv[ 1 ] );
	PrintHelp( stderr );
	return 2;
}
