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

#include "core/kv3/kv3serialize.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoctest.h"
#include "tests/support/pulseexpectedrun.h"

namespace
{
namespace fs = std::filesystem;

using ExpectedDoc_t = ExpectedPulseRun_t;

std::vector<ExpectedDoc_t> AllExpected( const char *pExtension )
{
	return AllExpectedPulseRuns( PulseDocTestSourceDir() + "/tests/pulsedoc/expected", pExtension );
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

class PulseDocRunTest : public testing::TestWithParam<ExpectedDoc_t>
{
};

TEST_P( PulseDocRunTest, RunsAndLogsTheExpectedLines )
{
	const ExpectedDoc_t &expected = GetParam();
	ASSERT_GE( expected.m_Command.size(), 2u );
	EXPECT_EQ( RunPulseDoc( ReadFile( expected.m_Command[ 1 ] ), PulseRunOptionsOf( expected.m_Command ) ), expected.m_Lines );
}

// Detaching every register after its last read (not only arrays) must not change what
// a graph does: a value read after its register was freed would log differently.
TEST_P( PulseDocRunTest, RunsTheSameWithEveryRegisterTemporary )
{
	const ExpectedDoc_t &expected = GetParam();
	ASSERT_GE( expected.m_Command.size(), 2u );
	PulseCompileOptions_t options;
	options.m_bEveryRegisterIsTemporary = true;
	EXPECT_EQ( RunPulseDoc( ReadFile( expected.m_Command[ 1 ] ), PulseRunOptionsOf( expected.m_Command ), options ), expected.m_Lines );
}

// The analysis log of a verbose compile says what it found, and asking for it changes
// nothing in the compiled graph.
TEST_P( PulseDocRunTest, AVerboseCompileLogsItsAnalysisAndCompilesTheSameGraph )
{
	const std::string text = ReadFile( GetParam().m_Command.at( 1 ) );
	std::unique_ptr<PulseDocCompiled_t> pQuiet = CompilePulseDocText( text );
	ASSERT_TRUE( pQuiet->m_bCompiled ) << pQuiet->Messages();
	EXPECT_STREQ( pQuiet->m_Result.m_Log.Get(), "" );
	CUtlString quiet;
	ASSERT_TRUE( SaveKV3ToString( &pQuiet->m_Result.m_Definition, &quiet, KV3_FORMAT_GENERIC ) );
	for ( int nVerbosity : { 1, 2 } )
	{
		PulseCompileOptions_t options;
		options.m_nVerbosity = nVerbosity;
		std::unique_ptr<PulseDocCompiled_t> pVerbose = CompilePulseDocText( text, options );
		ASSERT_TRUE( pVerbose->m_bCompiled ) << pVerbose->Messages();
		const std::string log = pVerbose->m_Result.m_Log.Get();
		EXPECT_NE( log.find( "Complete!" ), std::string::npos ) << log;
		EXPECT_EQ( log.find( "Dominator Iteration" ) != std::string::npos, nVerbosity >= 2 ) << log;
		CUtlString verbose;
		ASSERT_TRUE( SaveKV3ToString( &pVerbose->m_Result.m_Definition, &verbose, KV3_FORMAT_GENERIC ) );
		EXPECT_EQ( std::string( verbose.Get() ), std::string( quiet.Get() ) ) << "verbosity " << nVerbosity;
	}
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
