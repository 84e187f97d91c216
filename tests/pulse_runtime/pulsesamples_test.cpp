// Every shipped sample against its expected output (tests/pulse_runtime/expected): a
// "*.out" file names the run in its first line ("# zol pulse run FILE OPTIONS") and holds
// the lines the run logs; "# exit 1" marks a run that must fail. A "*.err" file names a
// broken graph and holds the messages that refuse it. `zol pulse` is checked against the
// same files by tests/cli/pulse_cli_test.sh.

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsegraphrunner.h"
#include "tests/support/pulseexpectedrun.h"

namespace
{
const std::filesystem::path s_Source( ZOL_SOURCE_DIR );

using ExpectedRun_t = ExpectedPulseRun_t;

std::vector<ExpectedRun_t> AllExpected( const char *pExtension )
{
	return AllExpectedPulseRuns( s_Source / "tests/pulse_runtime/expected", pExtension );
}

std::string NameOf( const testing::TestParamInfo<ExpectedRun_t> &info )
{
	std::string name = std::filesystem::path( info.param.m_Name ).stem().string();
	return name;
}

std::string ResourceName( const std::string &path )
{
	return path.substr( std::string( "content/content/" ).size() );
}

class PulseSampleRunTest : public testing::TestWithParam<ExpectedRun_t>
{
};

TEST_P( PulseSampleRunTest, LogsTheExpectedLines )
{
	const ExpectedRun_t &expected = GetParam();
	ASSERT_GE( expected.m_Command.size(), 2u );
	ASSERT_EQ( expected.m_Command[ 0 ], "run" );
	PulseGraphMessages_t messages;
	std::string path = expected.m_Command[ 1 ];
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadFile( ( s_Source / path ).c_str(), ResourceName( path ).c_str(), &messages );
	ASSERT_TRUE( hDef ) << messages.ToText().Get();
	EXPECT_TRUE( messages.m_Warnings.empty() ) << messages.ToText().Get();

	PulseRunResult_t result;
	bool bOk = PulseRunGraph( hDef, PulseRunOptionsOf( expected.m_Command ), &result );
	EXPECT_EQ( bOk, !expected.m_bFails ) << result.m_Reason.Get();
	EXPECT_FALSE( result.m_bRefused ) << result.m_Reason.Get();
	std::vector<std::string> lines;
	for ( const CUtlString &line : result.m_Lines )
		lines.emplace_back( line.Get() );
	EXPECT_EQ( lines, expected.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Samples, PulseSampleRunTest, testing::ValuesIn( AllExpected( ".out" ) ), NameOf );

class PulseBrokenSampleTest : public testing::TestWithParam<ExpectedRun_t>
{
};

TEST_P( PulseBrokenSampleTest, IsRefusedWithItsReasons )
{
	const ExpectedRun_t &expected = GetParam();
	ASSERT_EQ( expected.m_Command.size(), 2u );
	ASSERT_EQ( expected.m_Command[ 0 ], "check" );
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadFile( ( s_Source / expected.m_Command[ 1 ] ).c_str(), nullptr, &messages );
	EXPECT_FALSE( hDef );
	std::vector<std::string> lines;
	for ( const std::vector<CUtlString> *pList : { &messages.m_Errors, &messages.m_Warnings } )
	{
		for ( const CUtlString &message : *pList )
			lines.emplace_back( message.Get() );
	}
	EXPECT_EQ( lines, expected.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Broken, PulseBrokenSampleTest, testing::ValuesIn( AllExpected( ".err" ) ), NameOf );

// Every sample and broken graph has its expected file, so none goes unchecked.
TEST( PulseSamples, EachHasAnExpectedOutput )
{
	for ( const char *pDir : { "samples", "broken" } )
	{
		for ( const auto &entry : std::filesystem::directory_iterator( s_Source / "content/content/pulse" / pDir ) )
		{
			std::string stem = entry.path().stem().string();
			const char *pExtension = std::string( pDir ) == "samples" ? ".out" : ".err";
			EXPECT_TRUE( std::filesystem::exists( s_Source / "tests/pulse_runtime/expected" / ( stem + pExtension ) ) ) << entry.path();
		}
	}
}
} // namespace
