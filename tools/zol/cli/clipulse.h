#pragma once
// What `zol pulse` shares: a file is a Pulse document or a compiled graph by the class of
// its root ("CPulseDoc_Root" or not), whatever its extension; a document is compiled with
// the node descriptions of its game root; every message is printed as "FILE: text"
// ("FILE: node N: text" when it is about a node).

#include <string>

#include "pulse_runtime_lib/graph/pulsegraphdef.h"

struct PulseDocCompileResult_t;

enum ZolCliPulseFileKind_t
{
	ZOL_PULSE_FILE_UNREADABLE, // reported
	ZOL_PULSE_FILE_DOCUMENT,
	ZOL_PULSE_FILE_COMPILED,
};

// Reads the file whole and looks at its root; an unreadable file is reported.
ZolCliPulseFileKind_t ZolCliPulseFileKind( const char *pPath, std::string *pContent );

// "pulse/samples/hello.tpulsec" for a file below a "content" folder, else the path.
std::string ZolCliPulseResourceName( const char *pPath );

// Loads and compiles a document, printing every message; false when it was refused. The
// result holds the bound definition on success.
bool ZolCliCompilePulseDocument( const char *pPath, const std::string &content, PulseDocCompileResult_t *pResult, int nVerbosity = 0 );

// A compiled graph or a document, loaded, bound and ready to run; messages printed. Null
// when refused.
CPulseGraphDefHandle ZolCliLoadPulseGraph( const char *pPath, bool bBind = true );
