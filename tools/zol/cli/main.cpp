// zol: the particle effects editor's command line.

#include <cstdio>
#include <cstring>

#include "tools/zol/cli/clicommand.h"

std::vector<ZolCliCommand_t> &ZolCliCommands()
{
	static std::vector<ZolCliCommand_t> s_Commands;
	return s_Commands;
}

static void PrintHelp( FILE *pOut )
{
	fprintf( pOut, "usage: zol COMMAND [ARGS...]\n\ncommands:\n" );
	for ( const ZolCliCommand_t &command : ZolCliCommands() )
		fprintf( pOut, "  zol %-32s %s\n", command.m_pUsage, command.m_pHelp );
	fprintf( pOut, "  zol %-32s %s\n", "--help", "shows this list" );
}

int main( int argc, char **argv )
{
	if ( argc < 2 )
	{
		PrintHelp( stderr );
		return 2;
	}
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
	fprintf( stderr, "zol: unknown command \"%s\"\n\n", argv[ 1 ] );
	PrintHelp( stderr );
	return 2;
}
