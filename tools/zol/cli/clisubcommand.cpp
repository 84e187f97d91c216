// Dispatch of two-word commands: "zol tfxs diff ..." reaches the run function that the
// word "diff" registered under the group "tfxs".

#include <cstdio>
#include <cstring>
#include <vector>

#include "tools/zol/cli/clicommand.h"

namespace
{
struct Subcommand_t
{
	const char *m_pGroup;
	const char *m_pWord;
	const char *m_pUsage;
	int ( *m_pfnRun )( int argc, char **argv );
};

std::vector<Subcommand_t> &Subcommands()
{
	static std::vector<Subcommand_t> s_Subcommands;
	return s_Subcommands;
}

int RunGroup( int argc, char **argv )
{
	for ( const Subcommand_t &subcommand : Subcommands() )
	{
		if ( argc >= 2 && !strcmp( argv[ 0 ], subcommand.m_pGroup ) && !strcmp( argv[ 1 ], subcommand.m_pWord ) )
			return subcommand.m_pfnRun( argc, argv );
	}
	fprintf( stderr, "usage:\n" );
	for ( const Subcommand_t &subcommand : Subcommands() )
	{
		if ( !strcmp( argv[ 0 ], subcommand.m_pGroup ) )
			fprintf( stderr, "  zol %s\n", subcommand.m_pUsage );
	}
	return 2;
}
} // namespace

CZolCliSubcommandRegistrar::CZolCliSubcommandRegistrar( const char *pGroup, const char *pWord, const char *pUsage, const char *pHelp,
														int ( *pfnRun )( int argc, char **argv ) )
{
	Subcommands().push_back( { pGroup, pWord, pUsage, pfnRun } );
	ZolCliCommands().push_back( { pGroup, pUsage, pHelp, RunGroup } );
}
