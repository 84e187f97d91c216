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
