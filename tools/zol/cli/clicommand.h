#pragma once
// The zol executable's subcommands. Each command file registers itself with a
// CZolCliCommandRegistrar at static-initialisation time; main dispatches by name.

#include <vector>

struct ZolCliCommand_t
{
	const char *m_pName;  // first word, e.g. "kv3"
	const char *m_pUsage; // e.g. "kv3 fmt FILE..."
	const char *m_pHelp;  // one line
	// argv[0] is the command's name; returns the process exit status.
	int ( *m_pfnRun )( int argc, char **argv );
};

std::vector<ZolCliCommand_t> &ZolCliCommands();

struct CZolCliCommandRegistrar
{
	explicit CZolCliCommandRegistrar( const ZolCliCommand_t &command ) { ZolCliCommands().push_back( command ); }
};

// A command of two words ("tfxs diff"). Each word registers itself, in its own file, under
// its group; the group's entries all run one dispatcher, which main finds by the first word
// and which runs the word given second. argv[0] is the group, argv[1] the word.
struct CZolCliSubcommandRegistrar
{
	CZolCliSubcommandRegistrar( const char *pGroup, const char *pWord, const char *pUsage, const char *pHelp, int ( *pfnRun )( int argc, char **argv ) );
};
