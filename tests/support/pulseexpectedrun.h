#pragma once
// The expected-output files of Pulse runs, shared by the runtime's and the documents' tests
// (and read by tests/cli/pulse*_cli_test.sh): a "*.out" file names the run in its first
// line ("# zol pulse run FILE OPTIONS") and holds the lines the run logs, "# exit 1" marks
// a run that must fail; a "*.err" file names a broken file ("# zol pulse check FILE") and
// holds the messages that refuse it.

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "pulse_runtime_lib/system/pulsegraphrunner.h"

struct ExpectedPulseRun_t
{
	std::string m_Name; // the expected file's name
	std::vector<std::string> m_Command; // after "zol pulse"
	bool m_bFails = false;
	std::vector<std::string> m_Lines;
};

inline ExpectedPulseRun_t ReadExpectedPulseRun( const std::filesystem::path &path )
{
	ExpectedPulseRun_t expected;
	expected.m_Name = path.filename().string();
	std::ifstream file( path );
	std::string line;
	while ( std::getline( file, line ) )
	{
		if ( line.rfind( "# zol pulse ", 0 ) == 0 )
		{
			std::istringstream words( line.substr( 12 ) );
			for ( std::string word; words >> word; )
				expected.m_Command.push_back( word );
		}
		else if ( line == "# exit 1" )
			expected.m_bFails = true;
		else
			expected.m_Lines.push_back( line );
	}
	return expected;
}

// Every expected file of the extension (".out", ".err") in the folder, by name.
inline std::vector<ExpectedPulseRun_t> AllExpectedPulseRuns( const std::filesystem::path &dir, const char *pExtension )
{
	std::vector<ExpectedPulseRun_t> runs;
	for ( const auto &entry : std::filesystem::directory_iterator( dir ) )
	{
		if ( entry.path().extension() == pExtension )
			runs.push_back( ReadExpectedPulseRun( entry.path() ) );
	}
	std::sort( runs.begin(), runs.end(), []( const ExpectedPulseRun_t &a, const ExpectedPulseRun_t &b ) { return a.m_Name < b.m_Name; } );
	return runs;
}

// The run options of a command line, as `zol pulse run` reads them.
inline PulseRunOptions_t PulseRunOptionsOf( const std::vector<std::string> &command )
{
	PulseRunOptions_t options;
	for ( size_t i = 2; i + 1 < command.size(); i += 2 )
	{
		const std::string &option = command[ i ], &value = command[ i + 1 ];
		if ( option == "--method" || option == "--event" )
			options.m_Requests.push_back( { option == "--method" ? PulseRunRequest_t::METHOD : PulseRunRequest_t::EVENT, CUtlString( value.c_str() ), {} } );
		else if ( option == "--arg" && !options.m_Requests.empty() )
		{
			const size_t nEquals = value.find( '=' );
			options.m_Requests.back().m_Args.emplace_back( CUtlString( value.substr( 0, nEquals ).c_str() ), CUtlString( value.substr( nEquals + 1 ).c_str() ) );
		}
		else if ( option == "--seconds" )
			options.m_flSeconds = atof( value.c_str() );
		else if ( option == "--dt" )
			options.m_flStep = atof( value.c_str() );
	}
	return options;
}
