#include "core/platform/dbgassert.h"
#include "core/platform/fatalerror.h"
#include "tests/core/support/capturelogginglistener.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace
{

struct AssertRecord_t
{
	std::string m_strFile;
	int m_nLine;
	std::string m_strExpression;
	std::string m_strMessage;
};

std::vector<AssertRecord_t> s_Asserts;

bool RecordAssert( const char *pFile, int nLine, const char *pExpression, const char *pMessage )
{
	s_Asserts.push_back( { pFile, nLine, pExpression, pMessage ? pMessage : "" } );
	return false;
}

class AssertHandler : public testing::Test
{
protected:
	void SetUp() override
	{
		s_Asserts.clear();
		m_pPrevious = SetAssertHandler( &RecordAssert );
	}
	void TearDown() override { SetAssertHandler( m_pPrevious ); }

	AssertHandlerFn_t m_pPrevious = nullptr;
};

} // namespace

TEST_F( AssertHandler, SeesFailedConditionsWithWhereAndWhat )
{
	int nCount = 3;
	Assert( nCount == 3 );
	EXPECT_TRUE( s_Asserts.empty() );

	int nLine = __LINE__ + 1;
	Assert( nCount < 0 );
	ASSERT_EQ( s_Asserts.size(), 1u );
	EXPECT_EQ( s_Asserts[ 0 ].m_nLine, nLine );
	EXPECT_EQ( s_Asserts[ 0 ].m_strExpression, "nCount < 0" );
	EXPECT_NE( s_Asserts[ 0 ].m_strFile.find( "assert_test.cpp" ), std::string::npos );

	AssertMsg( nCount > 5, "count was %d", nCount );
	ASSERT_EQ( s_Asserts.size(), 2u );
	EXPECT_EQ( s_Asserts[ 1 ].m_strMessage, "count was 3" );
}

TEST_F( AssertHandler, HandlerDecidesWhetherTheCallerStops )
{
	SetAssertHandler( []( const char *, int, const char *, const char * ) { return true; } );
	EXPECT_TRUE( Assert_ConditionFailed( "file.cpp", 1, "x", nullptr ) );
	SetAssertHandler( &RecordAssert );
	EXPECT_FALSE( Assert_ConditionFailed( "file.cpp", 1, "x", nullptr ) );
}

TEST( AssertDefault, ReportsThroughLogging )
{
	CCaptureLoggingListener capture;
	bool bStop = Assert_ConditionFailed( "emitter.cpp", 42, "pEmitter != nullptr", "no emitter" );
	EXPECT_FALSE( bStop ); // no debugger attached under test
	auto messages = capture.Messages();
	ASSERT_EQ( messages.size(), 1u );
	EXPECT_EQ( messages[ 0 ].m_eSeverity, LS_ASSERT );
	EXPECT_EQ( messages[ 0 ].m_strText, "emitter.cpp(42): Assertion failed: pEmitter != nullptr (no emitter)\n" );
}

static void ShowFatalText( const char *pMessage )
{
	fprintf( stderr, "hook saw: %s", pMessage );
}

TEST( PlatFatalErrorDeathTest, LogsRunsTheHookAndStops )
{
	EXPECT_DEATH(
		{
			Plat_SetFatalErrorHook( &ShowFatalText );
			Plat_FatalError( "Cannot register an attribute editor factory before we're connected to the %s.\n", "Property Editor System" );
		},
		"hook saw: Cannot register an attribute editor factory before we're connected to the Property Editor System" );
}
