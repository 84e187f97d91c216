#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "tests/core/support/capturelogginglistener.h"

#include <gtest/gtest.h>

#include <thread>
#include <vector>

TEST( Logging, PredefinedChannelsExistByName )
{
	EXPECT_EQ( LoggingSystem_FindChannel( "General" ), LOG_GENERAL );
	EXPECT_EQ( LoggingSystem_FindChannel( "zol" ), LOG_ZOL );
	EXPECT_EQ( LoggingSystem_FindChannel( "PULSE" ), LOG_PULSE );
	EXPECT_STREQ( LoggingSystem_GetChannelName( LOG_ZOL ), "Zol" );
	EXPECT_EQ( LoggingSystem_FindChannel( "NoSuchChannel" ), INVALID_LOGGING_CHANNEL_ID );
}

TEST( Logging, RegisteringTheSameNameTwiceGivesOneChannel )
{
	LoggingChannelID_t nFirst = LoggingSystem_RegisterLoggingChannel( "TestRegisterTwice" );
	LoggingChannelID_t nSecond = LoggingSystem_RegisterLoggingChannel( "testregistertwice", LS_ERROR );
	EXPECT_NE( nFirst, INVALID_LOGGING_CHANNEL_ID );
	EXPECT_EQ( nFirst, nSecond );
	EXPECT_EQ( LoggingSystem_GetChannelMinimumSeverity( nFirst ), LS_MESSAGE ); // the first registration stands
}

TEST( Logging, ChannelDropsMessagesBelowItsMinimumSeverity )
{
	LoggingChannelID_t nChannel = LoggingSystem_RegisterLoggingChannel( "TestSeverity", LS_WARNING );
	EXPECT_FALSE( LoggingSystem_IsChannelEnabled( nChannel, LS_MESSAGE ) );
	EXPECT_TRUE( LoggingSystem_IsChannelEnabled( nChannel, LS_WARNING ) );
	EXPECT_TRUE( LoggingSystem_IsChannelEnabled( nChannel, LS_ERROR ) );

	CCaptureLoggingListener capture;
	LoggingSystem_Log( nChannel, LS_MESSAGE, "quiet %d\n", 1 );
	LoggingSystem_Log( nChannel, LS_WARNING, "WARNING: Failed to save file '%s': %s\n", "fire.tfxs", "read-only" );
	ASSERT_EQ( capture.Messages().size(), 1u );
	EXPECT_EQ( capture.Messages()[ 0 ].m_strText, "WARNING: Failed to save file 'fire.tfxs': read-only\n" );
	EXPECT_EQ( capture.Messages()[ 0 ].m_eSeverity, LS_WARNING );
	EXPECT_EQ( capture.Messages()[ 0 ].m_nChannel, nChannel );

	LoggingSystem_SetChannelMinimumSeverity( nChannel, LS_HIGHEST_SEVERITY );
	LoggingSystem_Log( nChannel, LS_ERROR, "silenced\n" );
	LoggingSystem_SetChannelMinimumSeverity( nChannel, LS_DETAILED );
	LoggingSystem_Log( nChannel, LS_DETAILED, "verbose\n" );
	EXPECT_EQ( capture.CountContaining( "silenced" ), 0 );
	EXPECT_EQ( capture.CountContaining( "verbose" ), 1 );
}

TEST( Logging, InvalidChannelIsNeverEnabled )
{
	CCaptureLoggingListener capture;
	EXPECT_FALSE( LoggingSystem_IsChannelEnabled( INVALID_LOGGING_CHANNEL_ID, LS_ERROR ) );
	EXPECT_FALSE( LoggingSystem_IsChannelEnabled( 100000, LS_ERROR ) );
	LoggingSystem_Log( 100000, LS_ERROR, "nowhere\n" );
	EXPECT_TRUE( capture.Messages().empty() );
}

TEST( Logging, MsgAndWarningGoToTheGeneralChannel )
{
	CCaptureLoggingListener capture;
	Msg( "hello %s\n", "msg" );
	Warning( "careful %d\n", 3 );
	auto messages = capture.Messages();
	ASSERT_EQ( messages.size(), 2u );
	EXPECT_EQ( messages[ 0 ].m_nChannel, LOG_GENERAL );
	EXPECT_EQ( messages[ 0 ].m_eSeverity, LS_MESSAGE );
	EXPECT_EQ( messages[ 1 ].m_eSeverity, LS_WARNING );
	EXPECT_EQ( messages[ 1 ].m_strText, "careful 3\n" );
}

TEST( Logging, LongMessagesArriveWhole )
{
	CCaptureLoggingListener capture;
	std::string longText( 5000, 'q' );
	Msg( "%s\n", longText.c_str() );
	ASSERT_EQ( capture.Messages().size(), 1u );
	EXPECT_EQ( capture.Messages()[ 0 ].m_strText, longText + "\n" );
}

TEST( Logging, RemovedListenerHearsNothingMore )
{
	CCaptureLoggingListener capture;
	{
		CCaptureLoggingListener shortLived;
		Msg( "both\n" );
		EXPECT_EQ( shortLived.Messages().size(), 1u );
	}
	Msg( "one\n" );
	EXPECT_EQ( capture.Messages().size(), 2u );
}

TEST( Logging, MessagesFromManyThreadsAllArrive )
{
	CCaptureLoggingListener capture;
	std::vector<std::thread> threads;
	for ( int t = 0; t < 4; ++t )
	{
		threads.emplace_back( [ t ] {
			for ( int i = 0; i < 200; ++i )
				LoggingSystem_Log( LOG_PULSE, LS_MESSAGE, "thread-log %d %d\n", t, i );
		} );
	}
	for ( std::thread &thread : threads )
		thread.join();
	EXPECT_EQ( capture.CountContaining( "thread-log" ), 800 );
}

static void ReportFailingBudgetRead()
{
	Log_Once( LOG_ZOL, LS_WARNING, "log-once call site fired\n" );
}

TEST( LogOnce, CallSiteFiresOncePerProcess )
{
	CCaptureLoggingListener capture;
	for ( int i = 0; i < 50; ++i )
		ReportFailingBudgetRead();
	EXPECT_EQ( capture.CountContaining( "log-once call site fired" ), 1 );
}

TEST( LogOnce, KeyFiresOncePerKeyFromAnyCallSite )
{
	CCaptureLoggingListener capture;
	int nFired = 0;
	for ( int i = 0; i < 10; ++i )
	{
		nFired += LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, "missing:embers.tfxs", "Missing %s\n", "embers.tfxs" ) ? 1 : 0;
		nFired += LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, "missing:smoke.tfxs", "Missing %s\n", "smoke.tfxs" ) ? 1 : 0;
	}
	EXPECT_EQ( nFired, 2 );
	EXPECT_EQ( capture.CountContaining( "Missing embers.tfxs" ), 1 );
	EXPECT_EQ( capture.CountContaining( "Missing smoke.tfxs" ), 1 );
}
