// zol pulse check|compile|disasm|run|fmt FILE: Pulse documents ("*.tpulse") and compiled
// graphs ("*.tpulsec") from the command line, told apart by their root's class. check
// validates (a document: and compiles); compile writes a document's compiled graph;
// disasm prints a graph's text form; run runs it on a virtual clock and prints every line
// the graph logs; fmt prints a document as it saves.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/host/safefilewrite.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsegraphrunner.h"
#include "pulsedoc_lib/compiler/pulsegraphcompiler.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsenodedescriptions.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clipulse.h"

namespace
{
const char *const s_pUsage =
	"usage: zol pulse check FILE...\n"
	"       zol pulse compile DOC [-o OUT] [--verbosity N]\n"
	"       zol pulse disasm FILE\n"
	"       zol pulse run FILE [--method NAME] [--event NAME] [--arg NAME=VALUE]... [--seconds S] [--dt D]\n"
	"       zol pulse fmt DOC\n";

int Usage( const char *pProblem )
{
	fprintf( stderr, "zol pulse: %s\n%s", pProblem, s_pUsage );
	return 2;
}

int RunCheck( int argc, char **argv )
{
	int nStatus = 0;
	for ( int i = 2; i < argc; ++i )
	{
		if ( !ZolCliLoadPulseGraph( argv[ i ] ) )
			nStatus = 1;
	}
	return nStatus;
}

int RunCompile( int argc, char **argv )
{
	const char *pPath = nullptr, *pOut = nullptr;
	long long nVerbosity = 0;
	for ( int i = 2; i < argc; ++i )
	{
		if ( strcmp( argv[ i ], "-o" ) == 0 && i + 1 < argc )
			pOut = argv[ ++i ];
		else if ( strcmp( argv[ i ], "--verbosity" ) == 0 && i + 1 < argc )
		{
			if ( !ZolCliParseInt( argv[ ++i ], 0, 2, &nVerbosity ) )
				return Usage( "--verbosity takes 0, 1 or 2" );
		}
		else if ( argv[ i ][ 0 ] == '-' )
			return Usage( ( std::string( "unknown or incomplete option " ) + argv[ i ] ).c_str() );
		else if ( !pPath )
			pPath = argv[ i ];
		else
			return Usage( "compile takes one document" );
	}
	if ( !pPath )
		return Usage( "no document given" );
	std::string content;
	ZolCliPulseFileKind_t eKind = ZolCliPulseFileKind( pPath, &content );
	if ( eKind == ZOL_PULSE_FILE_UNREADABLE )
		return 1;
	if ( eKind != ZOL_PULSE_FILE_DOCUMENT )
	{
		fprintf( stderr, "%s: not a Pulse document (its root is no 'CPulseDoc_Root'); compile takes a document\n", pPath );
		return 1;
	}
	PulseDocCompileResult_t result;
	if ( !ZolCliCompilePulseDocument( pPath, content, &result, int( nVerbosity ) ) )
		return 1;
	CUtlString text;
	if ( !SaveKV3ToString( &result.m_Definition, &text, KV3_FORMAT_GENERIC ) )
	{
		fprintf( stderr, "%s: the compiled graph could not be written as KV3 text\n", pPath );
		return 1;
	}
	if ( !pOut )
	{
		fputs( text.Get(), stdout );
		return 0;
	}
	CUtlString error;
	if ( !SafeWriteFile( pOut, text.Get(), text.Length(), &error ) )
	{
		fprintf( stderr, "zol pulse compile: %s\n", error.Get() );
		return 1;
	}
	return 0;
}

int RunFormat( const char *pPath )
{
	std::string content;
	ZolCliPulseFileKind_t eKind = ZolCliPulseFileKind( pPath, &content );
	if ( eKind == ZOL_PULSE_FILE_UNREADABLE )
		return 1;
	if ( eKind != ZOL_PULSE_FILE_DOCUMENT )
	{
		fprintf( stderr, "%s: not a Pulse document (its root is no 'CPulseDoc_Root')\n", pPath );
		return 1;
	}
	CPulseNodeDescriptions descriptions;
	CUtlString report;
	descriptions.LoadGameDescriptions( ZolCliGameRootFor( pPath ).c_str(), &report );
	CPulseDoc doc( &descriptions );
	CPulseDocMessages messages;
	bool bLoaded = doc.LoadText( content.data(), content.size(), &messages );
	for ( const PulseDocMessage_t &message : messages.GetMessages() )
		fprintf( stderr, "%s: %s\n", pPath, message.ToText().Get() );
	CUtlString text, error;
	if ( !bLoaded || !doc.SaveText( &text, &error ) )
	{
		if ( !error.IsEmpty() )
			fprintf( stderr, "%s: %s\n", pPath, error.Get() );
		return 1;
	}
	fputs( text.Get(), stdout );
	return 0;
}

int RunDisasm( const char *pPath )
{
	// A definition that binding refuses still prints as it was loaded, then its faults.
	CPulseGraphDefHandle hDef = ZolCliLoadPulseGraph( pPath, false );
	PulseGraphMessages_t messages;
	bool bBound = hDef && PulseGraphDef_Bind( hDef.Get(), &messages );
	if ( hDef )
	{
		CUtlString dump;
		hDef->Dump( &dump );
		fputs( dump.Get(), stdout );
		fflush( stdout );
	}
	for ( const std::vector<CUtlString> *pList : { &messages.m_Errors, &messages.m_Warnings } )
	{
		for ( const CUtlString &message : *pList )
			fprintf( stderr, "%s: %s\n", pPath, message.Get() );
	}
	return bBound ? 0 : 1;
}

bool ParseSeconds( const char *pText, double flMax, double *pValue )
{
	char *pEnd = nullptr;
	double flValue = strtod( pText, &pEnd );
	if ( !*pText || *pEnd || !( flValue > 0.0 ) || flValue > flMax )
		return false;
	*pValue = flValue;
	return true;
}

int RunRun( int argc, char **argv )
{
	const char *pPath = nullptr;
	PulseRunOptions_t options;
	std::vector<std::pair<CUtlString, CUtlString>> pendingArgs; // before any --method or --event
	for ( int i = 2; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		bool bHasValue = i + 1 < argc;
		if ( ( strcmp( pArg, "--method" ) == 0 || strcmp( pArg, "--event" ) == 0 ) && bHasValue )
		{
			PulseRunRequest_t request;
			request.m_eKind = pArg[ 2 ] == 'm' ? PulseRunRequest_t::METHOD : PulseRunRequest_t::EVENT;
			request.m_Name.Set( argv[ ++i ] );
			options.m_Requests.push_back( request );
		}
		else if ( strcmp( pArg, "--arg" ) == 0 && bHasValue )
		{
			const char *pText = argv[ ++i ];
			const char *pEquals = strchr( pText, '=' );
			if ( !pEquals || pEquals == pText )
				return Usage( "--arg takes NAME=VALUE" );
			std::pair<CUtlString, CUtlString> arg( CUtlString( pText, size_t( pEquals - pText ) ), CUtlString( pEquals + 1 ) );
			// An argument belongs to the --method or --event before it.
			if ( options.m_Requests.empty() )
				pendingArgs.push_back( arg );
			else
				options.m_Requests.back().m_Args.push_back( arg );
		}
		else if ( strcmp( pArg, "--seconds" ) == 0 && bHasValue )
		{
			if ( !ParseSeconds( argv[ ++i ], 86400.0, &options.m_flSeconds ) )
				return Usage( "--seconds takes a number above 0 and at most 86400" );
		}
		else if ( strcmp( pArg, "--dt" ) == 0 && bHasValue )
		{
			if ( !ParseSeconds( argv[ ++i ], 60.0, &options.m_flStep ) )
				return Usage( "--dt takes a number above 0 and at most 60" );
		}
		else if ( pArg[ 0 ] == '-' )
		{
			return Usage( ( std::string( "unknown or incomplete option " ) + pArg ).c_str() );
		}
		else if ( !pPath )
		{
			pPath = pArg;
		}
		else
		{
			return Usage( "only one file can be run at a time" );
		}
	}
	if ( !pPath )
		return Usage( "no file given" );

	CPulseGraphDefHandle hDef = ZolCliLoadPulseGraph( pPath );
	if ( !hDef )
		return 1;
	if ( options.m_Requests.empty() )
		options.m_DefaultArgs = pendingArgs;
	else
		options.m_Requests.front().m_Args.insert( options.m_Requests.front().m_Args.begin(), pendingArgs.begin(), pendingArgs.end() );

	// The graph's lines go to stdout, in order, and nothing else of the Pulse channel to stderr.
	ILoggingListener *pStderr = LoggingSystem_GetDefaultListener();
	LoggingSystem_RemoveListener( pStderr );
	PulseRunResult_t result;
	bool bOk = PulseRunGraph( hDef, options, &result );
	LoggingSystem_AddListener( pStderr );
	for ( const CUtlString &line : result.m_Lines )
		printf( "%s\n", line.Get() );
	fflush( stdout );
	if ( !bOk )
	{
		fprintf( stderr, "zol pulse run: %s: %s\n", pPath, result.m_Reason.Get() );
		return 1;
	}
	if ( result.m_nYieldedAtEnd > 0 )
		fprintf( stderr, "zol pulse run: %s: %d cursor(s) still waiting at %.2f s\n", pPath, result.m_nYieldedAtEnd, result.m_flEndTime );
	return 0;
}

int RunPulse( int argc, char **argv )
{
	if ( argc < 3 )
		return Usage( "give a subcommand and a file" );
	if ( strcmp( argv[ 1 ], "check" ) == 0 )
		return RunCheck( argc, argv );
	if ( strcmp( argv[ 1 ], "compile" ) == 0 )
		return RunCompile( argc, argv );
	if ( strcmp( argv[ 1 ], "fmt" ) == 0 )
		return argc == 3 ? RunFormat( argv[ 2 ] ) : Usage( "fmt takes one document" );
	if ( strcmp( argv[ 1 ], "disasm" ) == 0 )
		return argc == 3 ? RunDisasm( argv[ 2 ] ) : Usage( "disasm takes one file" );
	if ( strcmp( argv[ 1 ], "run" ) == 0 )
		return RunRun( argc, argv );
	return Usage( ( std::string( "unknown subcommand " ) + argv[ 1 ] ).c_str() );
}
} // namespace

static CZolCliCommandRegistrar s_PulseCommand( { "pulse", "pulse check|compile|disasm|run|fmt FILE ...",
												 "checks Pulse documents and compiled graphs, compiles a document, prints a graph as text, runs one, prints a document as it saves",
												 RunPulse } );
