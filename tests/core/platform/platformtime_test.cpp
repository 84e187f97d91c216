#include "core/platform/platformtime.h"

#include <gtest/gtest.h>

#include <thread>

class PlatFloatTime : public testing::Test
{
protected:
	void TearDown() override { Plat_ClearFloatTimeOverride(); }
};

TEST_F( PlatFloatTime, RunsForwardInSeconds )
{
	double flStart = Plat_FloatTime();
	std::this_thread::sleep_for( std::chrono::milliseconds( 20 ) );
	double flElapsed = Plat_FloatTime() - flStart;
	EXPECT_GE( flElapsed, 0.015 );
	EXPECT_LT( flElapsed, 5.0 );
}

TEST_F( PlatFloatTime, FixedOverrideStopsTheClock )
{
	Plat_SetFloatTimeOverride( 1234.5 );
	EXPECT_DOUBLE_EQ( Plat_FloatTime(), 1234.5 );
	std::this_thread::sleep_for( std::chrono::milliseconds( 5 ) );
	EXPECT_DOUBLE_EQ( Plat_FloatTime(), 1234.5 );
}

static double s_flFakeNow = 0.0;

TEST_F( PlatFloatTime, FunctionOverrideLetsATestDriveTime )
{
	Plat_SetFloatTimeOverride( []() { return s_flFakeNow; } );
	s_flFakeNow = 10.0;
	EXPECT_DOUBLE_EQ( Plat_FloatTime(), 10.0 );
	s_flFakeNow = 70.25;
	EXPECT_DOUBLE_EQ( Plat_FloatTime(), 70.25 );
}

TEST_F( PlatFloatTime, ClearingTheOverrideReturnsToTheRealClock )
{
	Plat_SetFloatTimeOverride( -1.0 );
	Plat_ClearFloatTimeOverride();
	EXPECT_GE( Plat_FloatTime(), 0.0 );
}

TEST( PlatClockTicks, MeasureMicroseconds )
{
	uint64_t nStart = Plat_GetClockTicks();
	std::this_thread::sleep_for( std::chrono::milliseconds( 2 ) );
	EXPECT_GE( Plat_MicrosecondsSince( nStart ), 1500.0 );
	Plat_SetFloatTimeOverride( 0.0 ); // the tick clock is never overridden
	EXPECT_GT( Plat_GetClockTicks(), nStart );
	Plat_ClearFloatTimeOverride();
}
