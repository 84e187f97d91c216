// Every shipped document against its expected output (tests/pulsedoc/expected): a "*.out"
// file names the run in its first line ("# zol pulse run FILE OPTIONS") and holds the lines
// it logs; a "*.err" file names a broken document ("# zol pulse check FILE") and holds the
// messages that refuse it. Every document that compiles gives a definition the runtime's
// validator accepts, and every document saves back to the bytes it was loaded from.
// tests/cli/pulsedoc_cli_test.sh checks `zol pulse` against the same files.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoctest.h"

namespace
{
namespace fs = std::filesystem;

struct ExpectedDoc_t
{
	std::string m_Name;
	std::vector<std::string> m_Command; // after "zol pulse"
	std::vector<std::string> m_Lines;
};

ExpectedDoc_t ReadExpected( const fs::path &path )
{
	ExpectedDoc_t expected;
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
		else
			expected.m_Lines.push_back( line );
	}
	return expected;
}

std::vector<ExpectedDoc_t> AllExpected( const char *pExtension )
{
	std::vector<ExpectedDoc_t> all;
	for ( const auto &entry : fs::directory_iterator( PulseDocTestSourceDir() + "/tests/pulsedoc/expected" ) )
	{
		if ( entry.path().extension() == pExtension )
			all.push_back( ReadExpected( entry.path() ) );
	}
	std::sort( all.begin(), all.end(), []( const ExpectedDoc_t &a, const ExpectedDoc_t &b ) { return a.m_Name < b.m_Name; } );
	return all;
}

std::vector<std::string> AllDocuments()
{
	std::vector<std::string> paths;
	for ( const auto &entry : fs::recursive_directory_iterator( PulseDocTestSourceDir() + "/content/content/pulse/documents" ) )
	{
		if ( entry.path().extension() == ".tpulse" )
			paths.push_back( fs::relative( entry.path(), PulseDocTestSourceDir() ).string() );
	}
	std::sort( paths.begin(), paths.end() );
	return paths;
}

std::string ReadFile( const std::string &path )
{
	std::ifstream file( PulseDocTestSourceDir() + "/" + path, std::ios::binary );
	return std::string( std::istreambuf_iterator<char>( file ), {} );
}

std::string NameOf( const std::string &text )
{
	std::string name = fs::path( text ).stem().string();
	std::replace_if( name.begin(), name.end(), []( char c ) { return !isalnum( static_cast<unsigned char>( c ) ); }, '_' );
	return name;
}

// The run options of a command line, as `zol pulse run` reads them.
PulseRunOptions_t ParseOptions( const std::vector<std::string> &command )
{
	PulseRunOptions_t options;
	for ( size_t i = 2; i + 1 < command.size(); i += 2 )
	{
		const std::string &option = command[ i ], &value = command[ i + 1 ];
		if ( option == "--method" || option == "--event" )
			options.m_Requests.push_back( { option == "--method" ? PulseRunRequest_t::METHOD : PulseRunRequest_t::EVENT, CUtlString( value.c_str() ), {} } );
		else if ( option == "--arg" && !options.m_Requests.empty() )
		{
			size_t nEquals = value.find( '=' );
			options.m_Requests.back().m_Args.emplace_back( CUtlString( value.substr( 0, nEquals ).c_str() ), CUtlString( value.substr( nEquals + 1 ).c_str() ) );
		}
		else if ( option == "--seconds" )
			options.m_flSeconds = std::stod( value );
	}
	return options;
}

class PulseDocRunTest : public testing::TestWithParam<ExpectedDoc_t>
{
};

TEST_P( PulseDocRunTest, RunsAndLogsTheExpectedLines )
{
	const ExpectedDoc_t &expected = GetParam();
	ASSERT_GE( expected.m_Command.size(), 2u );
	EXPECT_EQ( RunPulseDoc( ReadFile( expected.m_Command[ 1 ] ), ParseOptions( expected.m_Command ) ), expected.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Documents, PulseDocRunTest, testing::ValuesIn( AllExpected( ".out" ) ),
						  []( const testing::TestParamInfo<ExpectedDoc_t> &info ) { return NameOf( info.param.m_Name ); } );

class PulseDocBrokenTest : public testing::TestWithParam<ExpectedDoc_t>
{
};

TEST_P( PulseDocBrokenTest, IsRefusedWithItsMessages )
{
	const ExpectedDoc_t &expected = GetParam();
	ASSERT_EQ( expected.m_Command.size(), 2u );
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( ReadFile( expected.m_Command[ 1 ] ) );
	EXPECT_FALSE( pCompiled->m_bCompiled );
	std::vector<std::string> lines;
	for ( const PulseDocMessage_t &message : pCompiled->m_Messages.GetMessages() )
		lines.emplace_back( message.ToText().Get() );
	EXPECT_EQ( lines, expected.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Documents, PulseDocBrokenTest, testing::ValuesIn( AllExpected( ".err" ) ),
						  []( const testing::TestParamInfo<ExpectedDoc_t> &info ) { return NameOf( info.param.m_Name ); } );

class PulseDocFileTest : public testing::TestWithParam<std::string>
{
};

TEST_P( PulseDocFileTest, SavesToTheBytesItWasLoadedFrom )
{
	std::string text = ReadFile( GetParam() );
	CPulseDoc doc( &PulseDocTestDescriptions() );
	CPulseDocMessages messages;
	ASSERT_TRUE( doc.LoadText( text.data(), text.size(), &messages ) ) << messages.ToText().Get();
	CUtlString saved, error;
	ASSERT_TRUE( doc.SaveText( &saved, &error ) ) << error.Get();
	EXPECT_EQ( std::string( saved.Get() ), text );
}

TEST_P( PulseDocFileTest, WhatCompilesPassesTheRuntimesValidator )
{
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( ReadFile( GetParam() ) );
	if ( !pCompiled->m_bCompiled )
	{
		EXPECT_FALSE( pCompiled->m_Result.m_bGenerated ) << "generated but refused by the runtime: " << pCompiled->Messages();
		return;
	}
	std::vector<CUtlString> messages;
	EXPECT_TRUE( PulseGraphDef_Validate( pCompiled->m_Result.m_Definition, &messages ) );
	EXPECT_TRUE( messages.empty() ) << messages.front().Get();
}

INSTANTIATE_TEST_SUITE_P( Documents, PulseDocFileTest, testing::ValuesIn( AllDocuments() ),
						  []( const testing::TestParamInfo<std::string> &info ) { return NameOf( info.param ); } );
} // namespace
