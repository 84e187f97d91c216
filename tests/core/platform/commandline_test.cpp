#include "core/platform/commandline.h"

#include <gtest/gtest.h>

TEST( CommandLine, FindsParametersAndTheirValuesIgnoringCase )
{
	CCommandLine commandLine;
	const char *argv[] = { "zol", "-game", "samples", "-THREADS", "3", "-scale", "-1.5", "-testmode", "+map", "start" };
	commandLine.CreateCmdLine( 10, argv );

	EXPECT_EQ( commandLine.ParmCount(), 10 );
	EXPECT_STREQ( commandLine.GetParm( 0 ), "zol" );
	EXPECT_STREQ( commandLine.GetParm( 99 ), "" );
	EXPECT_EQ( commandLine.FindParm( "-threads" ), 3 );
	EXPECT_EQ( commandLine.FindParm( "-missing" ), 0 );
	EXPECT_TRUE( commandLine.HasParm( "-TestMode" ) );

	EXPECT_STREQ( commandLine.ParmValue( "-game", "default" ), "samples" );
	EXPECT_STREQ( commandLine.ParmValue( "-missing", "default" ), "default" );
	EXPECT_EQ( commandLine.ParmValue( "-threads", 1 ), 3 );
	EXPECT_FLOAT_EQ( commandLine.ParmValue( "-scale", 1.0f ), -1.5f ); // a negative number is a value
	EXPECT_STREQ( commandLine.ParmValue( "+map" ), "start" );

	// A switch followed by another switch has no value.
	const char *pValue = "unchanged";
	EXPECT_STREQ( commandLine.CheckParm( "-testmode", &pValue ), "-testmode" );
	EXPECT_STREQ( commandLine.CheckParm( "-testmode" ), "-testmode" );
	EXPECT_EQ( commandLine.ParmValue( "-testmode", 7 ), 7 );
}

TEST( CommandLine, NumericValuesThatAreNotNumbersGiveTheDefault )
{
	CCommandLine commandLine;
	commandLine.CreateCmdLine( "zol -threads many -budget 1500us" );
	EXPECT_EQ( commandLine.ParmValue( "-threads", 2 ), 2 );
	EXPECT_EQ( commandLine.ParmValue( "-budget", 100 ), 100 );
	EXPECT_STREQ( commandLine.ParmValue( "-threads", "" ), "many" );
}

TEST( CommandLine, SplitsTextWithQuotes )
{
	CCommandLine commandLine;
	commandLine.CreateCmdLine( "  zol.exe -file \"C:\\my content\\fire.tfxs\" -title \"say \\\"hi\\\"\"  -x" );
	ASSERT_EQ( commandLine.ParmCount(), 6 );
	EXPECT_STREQ( commandLine.ParmValue( "-file" ), "C:\\my content\\fire.tfxs" );
	EXPECT_STREQ( commandLine.ParmValue( "-title" ), "say \"hi\"" );
	EXPECT_STREQ( commandLine.GetCmdLine(), "zol.exe -file \"C:\\my content\\fire.tfxs\" -title \"say \\\"hi\\\"\" -x" );
}

TEST( CommandLine, AppendAndRemoveKeepNamesWithTheirValues )
{
	CCommandLine commandLine;
	commandLine.CreateCmdLine( "zol -a 1 -b -a 2" );
	commandLine.RemoveParm( "-a" );
	EXPECT_STREQ( commandLine.GetCmdLine(), "zol -b" );
	commandLine.AppendParm( "-b", "5" );
	commandLine.AppendParm( "-c", nullptr );
	EXPECT_STREQ( commandLine.GetCmdLine(), "zol -b 5 -c" );
	commandLine.AppendParm( "-b", "6" );
	EXPECT_EQ( commandLine.ParmValue( "-b", 0 ), 6 );
}

TEST( CommandLine, ProcessWideInstanceIsShared )
{
	EXPECT_EQ( CommandLine(), CommandLine() );
}
