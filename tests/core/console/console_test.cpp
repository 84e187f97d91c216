#include "core/console/concommand.h"
#include "core/console/consoleregistry.h"
#include "core/console/convar.h"
#include "core/text/strtools.h"
#include "tests/core/support/capturelogginglistener.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// Registered at static-init time, like the variables of the editor's own files.
static ConVar s_TestDetailLevel( "test_particle_max_detail_level", "3", FCVAR_NONE, "Highest detail level shown.", true, 0.0f, true, 3.0f );
static ConVar s_TestTimeScale( "test_particle_timescale", "1.0", FCVAR_ARCHIVE, "Scales particle simulation time." );

TEST( ConVar, ReadsItsDefaultInEveryType )
{
	EXPECT_EQ( s_TestDetailLevel.GetInt(), 3 );
	EXPECT_FLOAT_EQ( s_TestDetailLevel.GetFloat(), 3.0f );
	EXPECT_TRUE( s_TestDetailLevel.GetBool() );
	EXPECT_STREQ( s_TestDetailLevel.GetString(), "3" );
	EXPECT_FLOAT_EQ( s_TestTimeScale.GetFloat(), 1.0f );
	EXPECT_TRUE( s_TestTimeScale.IsFlagSet( FCVAR_ARCHIVE ) );
	EXPECT_EQ( ConsoleRegistry().FindVar( "TEST_PARTICLE_TIMESCALE" ), &s_TestTimeScale );
}

TEST( ConVar, SettingTextUpdatesEveryType )
{
	ConVar var( "test_set_text", "0" );
	var.SetValue( "0.75" );
	EXPECT_FLOAT_EQ( var.GetFloat(), 0.75f );
	EXPECT_EQ( var.GetInt(), 0 );
	EXPECT_TRUE( var.GetBool() );
	var.SetValue( "true" );
	EXPECT_EQ( var.GetInt(), 1 );
	var.SetValue( "false" );
	EXPECT_FALSE( var.GetBool() );
	var.SetValue( "hello world" );
	EXPECT_STREQ( var.GetString(), "hello world" );
	EXPECT_EQ( var.GetInt(), 0 );
	var.SetValue( "16777217" ); // more than a float holds exactly
	EXPECT_EQ( var.GetInt(), 16777217 );
	var.SetValue( 2.5f );
	EXPECT_STREQ( var.GetString(), "2.5" );
	var.Revert();
	EXPECT_STREQ( var.GetString(), "0" );
}

TEST( ConVar, ValuesOutsideTheBoundsAreClamped )
{
	ConVar var( "test_clamped", "1", FCVAR_NONE, "", true, 0.0f, true, 3.0f );
	var.SetValue( 7 );
	EXPECT_EQ( var.GetInt(), 3 );
	EXPECT_STREQ( var.GetString(), "3" );
	var.SetValue( "-2.5" );
	EXPECT_FLOAT_EQ( var.GetFloat(), 0.0f );
	EXPECT_STREQ( var.GetString(), "0" );
	var.SetValue( "2" );
	EXPECT_EQ( var.GetInt(), 2 );
	float flMin = -1.0f, flMax = -1.0f;
	EXPECT_TRUE( var.GetMin( &flMin ) );
	EXPECT_TRUE( var.GetMax( &flMax ) );
	EXPECT_FLOAT_EQ( flMin, 0.0f );
	EXPECT_FLOAT_EQ( flMax, 3.0f );
}

TEST( ConVar, ChangeCallbacksSeeTheOldValueOnlyOnRealChanges )
{
	std::vector<std::string> changes;
	ConVar var( "test_callback", "1", FCVAR_NONE, "", false, 0.0f, false, 0.0f, [ & ]( ConVar *pVar, const char *pOld, float flOld ) {
		changes.push_back( std::string( pOld ) + "->" + pVar->GetString() + " (" + std::to_string( int( flOld ) ) + ")" );
	} );
	var.SetValue( "2" );
	var.SetValue( "2" ); // unchanged: no call
	var.SetValue( 5 );
	EXPECT_EQ( changes, ( std::vector<std::string>{ "1->2 (1)", "2->5 (2)" } ) );

	int nSecond = var.AddChangeCallback( [ & ]( ConVar *, const char *, float ) { changes.push_back( "second" ); } );
	var.SetValue( 6 );
	var.RemoveChangeCallback( nSecond );
	var.SetValue( 7 );
	EXPECT_EQ( changes.size(), 5u );
	EXPECT_EQ( changes[ 3 ], "second" );
}

TEST( ConVar, CallbackThatSetsTheVariableDoesNotLoop )
{
	int nCalls = 0;
	ConVar var( "test_callback_loop", "0" );
	var.AddChangeCallback( [ & ]( ConVar *pVar, const char *, float ) {
		++nCalls;
		pVar->SetValue( pVar->GetInt() + 1 );
	} );
	var.SetValue( 10 );
	EXPECT_EQ( nCalls, 1 );
	EXPECT_EQ( var.GetInt(), 11 );
}

TEST( ConsoleRegistry, DuplicateNamesKeepTheFirstRegistration )
{
	CCaptureLoggingListener capture;
	ConVar first( "test_duplicate", "1" );
	ConVar second( "TEST_DUPLICATE", "2" );
	EXPECT_TRUE( first.IsRegistered() );
	EXPECT_FALSE( second.IsRegistered() );
	EXPECT_EQ( ConsoleRegistry().FindVar( "test_duplicate" ), &first );
	EXPECT_EQ( capture.CountContaining( "already registered" ), 1 );
}

TEST( ConsoleRegistry, DestroyedVariablesLeaveTheRegistry )
{
	{
		ConVar scoped( "test_scoped", "1" );
		EXPECT_NE( ConsoleRegistry().Find( "test_scoped" ), nullptr );
	}
	EXPECT_EQ( ConsoleRegistry().Find( "test_scoped" ), nullptr );
}

TEST( ConsoleRegistry, ExecutesCommandsWithQuotedArguments )
{
	std::vector<std::string> received;
	ConCommand command(
		"test_dumplist",
		[ & ]( const CCommand &args ) {
			for ( int i = 0; i < args.ArgC(); ++i )
				received.push_back( args[ i ] );
			received.push_back( std::string( "|" ) + args.ArgS() );
		},
		"Dump all new particles, optional name substring." );

	CUtlString error;
	EXPECT_TRUE( ConsoleRegistry().Execute( "Test_DumpList \"fire embers\" smoke", &error ) ) << error.Get();
	// The name arrives as typed; the lookup ignored case.
	EXPECT_EQ( received, ( std::vector<std::string>{ "Test_DumpList", "fire embers", "smoke", "|\"fire embers\" smoke" } ) );
	received.clear();
	EXPECT_TRUE( ConsoleRegistry().Execute( "test_dumplist", &error ) );
	EXPECT_EQ( received, ( std::vector<std::string>{ "test_dumplist", "|" } ) );
}

TEST( ConsoleRegistry, SetsVariablesAndRunsSeveralCommandsInOneText )
{
	ConVar scale( "test_exec_scale", "1" );
	ConVar title( "test_exec_title", "" );
	int nCalls = 0;
	ConCommand count( "test_exec_count", [ & ]( const CCommand & ) { ++nCalls; } );

	CUtlString error;
	EXPECT_TRUE( ConsoleRegistry().Execute( "test_exec_scale 0.5; test_exec_count\ntest_exec_title \"a; b\" // comment; test_exec_count", &error ) ) << error.Get();
	EXPECT_FLOAT_EQ( scale.GetFloat(), 0.5f );
	EXPECT_STREQ( title.GetString(), "a; b" );
	EXPECT_EQ( nCalls, 1 );
}

TEST( ConsoleRegistry, ReportsUnknownNamesAndReadOnlyVariables )
{
	ConVar locked( "test_readonly", "4", FCVAR_READONLY );
	int nCalls = 0;
	ConCommand count( "test_after_failure", [ & ]( const CCommand & ) { ++nCalls; } );
	CUtlString error;
	EXPECT_FALSE( ConsoleRegistry().Execute( "no_such_command 1; test_readonly 9; test_after_failure", &error ) );
	EXPECT_STREQ( error.Get(), "Unknown command \"no_such_command\"\n\"test_readonly\" is read-only\n" );
	EXPECT_EQ( locked.GetInt(), 4 );
	EXPECT_EQ( nCalls, 1 ); // the rest of the text still ran
}

TEST( ConsoleRegistry, NamingAVariableAloneDescribesIt )
{
	CCaptureLoggingListener capture;
	EXPECT_TRUE( ConsoleRegistry().Execute( "test_particle_max_detail_level" ) );
	EXPECT_EQ( capture.CountContaining( "\"test_particle_max_detail_level\" = \"3\" ( def. \"3\" ) min. 0 max. 3\n - Highest detail level shown.\n" ), 1 );
}

TEST( ConsoleRegistry, ListsVisibleEntriesWithHelp )
{
	ConVar hidden( "test_list_hidden", "1", FCVAR_HIDDEN, "never shown" );
	ConVar shown( "test_list_shown", "2", FCVAR_NONE, "shown help" );
	CUtlString list;
	ConsoleRegistry().ListAll( &list, "test_list" );
	std::string text = list.Get();
	EXPECT_NE( text.find( "test_list_shown" ), std::string::npos );
	EXPECT_NE( text.find( "shown help" ), std::string::npos );
	EXPECT_EQ( text.find( "test_list_hidden" ), std::string::npos );
	EXPECT_EQ( text.find( "test_particle" ), std::string::npos ); // prefix filter

	std::vector<ConCommandBase *> all = ConsoleRegistry().GetAll();
	for ( size_t i = 1; i < all.size(); ++i )
		EXPECT_LT( V_stricmp_fast( all[ i - 1 ]->GetName(), all[ i ]->GetName() ), 0 );
}

TEST( CCommand, FindsNamedArguments )
{
	CCommand args( "dump -limit 20 -name \"big fire\"" );
	EXPECT_EQ( args.FindArgInt( "-LIMIT", 0 ), 20 );
	EXPECT_STREQ( args.FindArg( "-name" ), "big fire" );
	EXPECT_EQ( args.FindArg( "-missing" ), nullptr );
	EXPECT_STREQ( args.Arg( 42 ), "" );
}
