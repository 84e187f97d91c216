// zol: the particle effects editor's command line.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "tools/zol/cli/cliargs.h"
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

static void PrintCommands( FILE *pOut )
{
	for ( const ZolCliCommand_t &command : ZolCliCommands() )
		fprintf( pOut, "  zol %-32s %s\n", command.m_pUsage, command.m_pHelp );
	fprintf( pOut, "  zol %-32s %s\n", "--help", "shows this list" );
}

static void PrintHelp( FILE *pOut )
{
	fprintf( pOut, "usage: zol [--game DIR] [--content DIR] [--screenshot PATH [--frames N]] [FILE...]\n       zol [--game DIR] [--content DIR] COMMAND [ARGS...]\n\n"
				   "Without a command, zol starts the editor. --game and --content may stand before or after the command word.\n\ncommands:\n" );
	PrintCommands( pOut );
}

// Whether Qt will find a display to open windows on: a platform that needs none
// (offscreen, minimal, vnc, ...), or an X or Wayland display that is set.
static bool HasDisplay()
{
	const char *pPlatform = getenv( "QT_QPA_PLATFORM" );
	const char *pDisplay = getenv( "DISPLAY" );
	const char *pWayland = getenv( "WAYLAND_DISPLAY" );
	const bool bX = pDisplay && *pDisplay;
	const bool bWayland = pWayland && *pWayland;
	if ( !pPlatform || !*pPlatform )
		return bX || bWayland;
	if ( !strncmp( pPlatform, "xcb", 3 ) )
		return bX;
	if ( !strncmp( pPlatform, "wayland", 7 ) )
		return bWayland;
	return true;
}

static int StartEditor( int argc, char **argv )
{
	if ( !HasDisplay() )
	{
		fprintf( stderr, "zol: the editor needs a display, and none is set (DISPLAY is empty).\n"
						 "Run it on a desktop, or headless under a virtual display: xvfb-run zol [FILE...]\n"
						 "These commands need no display:\n" );
		PrintCommands( stderr );
		return 2;
	}
	return RunToolsHost( argc, argv );
}

int main( int argc, char **argv )
{
	// --game and --content belong to every command and to the editor: they are taken out
	// wherever they stand, so that the command word is found after them.
	std::vector<char *> args( argv, argv + argc );
	args.push_back( nullptr );
	int nArgs = argc;
	ZolCliRoots_t roots;
	if ( !ZolCliTakeRoots( &nArgs, args.data(), &roots ) )
		return 2;
	ZolCliSetRoots( roots );

	// No subcommand: the editor, with its options and the files to open.
	if ( nArgs < 2 || ( args[ 1 ][ 0 ] == '-' && args[ 1 ][ 1 ] == '-' && strcmp( args[ 1 ], "--help" ) ) )
		return StartEditor( argc, argv );
	if ( !strcmp( args[ 1 ], "--help" ) || !strcmp( args[ 1 ], "-h" ) || !strcmp( args[ 1 ], "help" ) )
	{
		PrintHelp( stdout );
		return 0;
	}
	for ( const ZolCliCommand_t &command : ZolCliCommands() )
	{
		if ( !strcmp( args[ 1 ], command.m_pName ) )
			return command.m_pfnRun( nArgs - 1, args.data() + 1 );
	}
	// A file to open rather than a command.
	if ( strchr( args[ 1 ], '.' ) || strchr( args[ 1 ], '/' ) )
		return StartEditor( argc, argv );
	fprintf( stderr, "zol: unknown command \"%s\"\n\n", args[ 1 ] );
	PrintHelp( stderr );
	return 2;
}
