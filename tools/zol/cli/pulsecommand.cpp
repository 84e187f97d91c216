// zol pulse check|disasm|run FILE: compiled Pulse graphs ("*.tpulsec") from the command
// line. check loads and validates only; disasm prints the definition's text form; run
// runs it on a virtual clock and prints every line the graph logs.

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsegraphrunner.h"
#include "tools/zol/cli/clicommand.h"

namespace
{
const char *const s_pUsage =
	"usage: zol pulse check FILE...\n"
	"       zol pulse disasm FILE\n"
	"       zol pulse run FILE [--method NAME] [--event NAME] [--arg NAME=VALUE]... [--seconds S] [--dt D]\n";

int Usage( const char *pProblem )
{
	fprintf( stderr, "zol pulse: %s\n%s", pProblem, s_pUsage );
	return 2;
}

// Reports name a graph by its path below the content root ("pulse/samples/hello.tpulsec"),
// or as given when it lies elsewhere.
std::string ResourceName( const char *pPath )
{
	std::filesystem::path absolute = std::filesystem::absolute( pPath ).lexically_normal();
	for ( std::filesystem::path dir = absolute.parent_path(); dir.has_relative_path(); dir = dir.parent_path() )
	{
		if ( dir.filename() == "content" )
			return absolute.lexically_relative( dir ).generic_string();
	}
	return pPath;
}

void PrintMessages( const char *pPath, const std::vector<CUtlString> &messages )
{
	for ( const CUtlString &message : messages )
		fprintf( stderr, "%s: %s\n", pPath, message.Get() );
}

// Loads and binds; on refusal prints every reason and answers null.
CPulseGraphDefHandle LoadGraph( const char *pPath, PulseGraphMessages_t *pMessages )
{
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadFile( pPath, ResourceName( pPath ).c_str(), pMessages );
	PrintMessages( pPath, pMessages->m_Errors );
	PrintMessages( pPath, pMessages->m_Warnings );
	return hDef;
}

int RunCheck( int argc, char **argv )
{
	int nStatus = 0;
	for ( int i = 2; i < argc; ++i )
	{
		PulseGraphMessages_t messages;
		if ( !LoadGraph( argv[ i ], &messages ) )
			nStatus = 1;
	}
	return nStatus;
}

int RunDisasm( const char *pPath )
{
	// A definition that binding refuses still prints as it was loaded, then its faults.
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadFile( pPath, ResourceName( pPath ).c_str(), &messages, false );
	bool bBound = hDef && PulseGraphDef_Bind( hDef.Get(), &messages );
	if ( hDef )
	{
		CUtlString dump;
		hDef->Dump( &dump );
		fputs( dump.Get(), stdout );
		fflush( stdout );
	}
	PrintMessages( pPath, messages.m_Errors );
	PrintMessages( pPath, messages.m_Warnings );
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

	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = LoadGraph( pPath, &messages );
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
	if ( strcmp( argv[ 1 ], "disasm" ) == 0 )
		return argc == 3 ? RunDisasm( argv[ 2 ] ) : Usage( "disasm takes one file" );
	if ( strcmp( argv[ 1 ], "run" ) == 0 )
		return RunRun( argc, argv );
	return Usage( ( std::string( "unknown subcommand " ) + argv[ 1 ] ).c_str() );
}
} // namespace

static CZolCliCommandRegistrar s_PulseCommand( { "pulse", "pulse check|disasm|run FILE ...",
												 "loads and validates compiled Pulse graphs (check), prints one as text (disasm) or runs it (run)", RunPulse } );
