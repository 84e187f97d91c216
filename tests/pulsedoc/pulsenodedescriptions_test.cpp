// Node descriptions: the runtime's cells and library functions become node shapes, the
// shipped game's FGD adds its events, and a description file with faults says which file
// and what, without taking the good classes with it.

#include <gtest/gtest.h>

#include <string>

#include "pulsedoctest.h"

namespace
{
TEST( PulseNodeDescriptions, TheRuntimesCellsAndLibraryFunctionsHaveShapes )
{
	const CPulseNodeDescriptions &runtime = CPulseNodeDescriptions::GetRuntimeDescriptions();
	const PulseGenericShape_t *pWait = runtime.FindShape( "CPulseCell_Inflow_Wait" );
	ASSERT_NE( pWait, nullptr );
	const PulseGenericShape_t::Param_t *pDuration = pWait->FindInparam( "flDurationSec" );
	ASSERT_NE( pDuration, nullptr );
	EXPECT_EQ( pDuration->m_Type.GetBaseType(), PVAL_FLOAT );
	EXPECT_FALSE( pWait->m_Inflows.empty() );
	EXPECT_TRUE( pWait->m_Problems.IsEmpty() ) << pWait->m_Problems.Get();

	const PulseGenericShape_t *pTestMode = runtime.FindShape( "CPulseTestScriptLib::IsInTestMode" );
	ASSERT_NE( pTestMode, nullptr );
	EXPECT_TRUE( pTestMode->m_bLibraryMethod );
	ASSERT_EQ( pTestMode->m_Outparams.size(), 1u );
	EXPECT_EQ( pTestMode->m_Outparams[ 0 ].m_Type.GetBaseType(), PVAL_BOOL );

	EXPECT_EQ( runtime.FindShape( "OnRoll" ), nullptr ) << "the game's events are not the runtime's";
	EXPECT_EQ( runtime.FindShape( "CPulseCell_NoSuchCell" ), nullptr );
}

TEST( PulseNodeDescriptions, TheShippedGamesEventsComeFromItsDescriptionFiles )
{
	const CPulseNodeDescriptions &game = PulseDocTestDescriptions();
	std::vector<CUtlString> events;
	game.GatherClassesWith( "is_pulse_global_event", &events );
	std::vector<std::string> names;
	for ( const CUtlString &event : events )
		names.emplace_back( event.Get() );
	EXPECT_EQ( names, ( std::vector<std::string>{ "OnRoll", "OnDamage", "OnReset" } ) );

	const PulseGenericShape_t *pRoll = game.FindShape( "onroll" );
	ASSERT_NE( pRoll, nullptr ) << "classes are found ignoring case";
	EXPECT_TRUE( pRoll->m_bGlobalEvent );
	ASSERT_EQ( pRoll->m_Outparams.size(), 1u );
	EXPECT_STREQ( pRoll->m_Outparams[ 0 ].m_Name.Get(), "value" );
	EXPECT_EQ( pRoll->m_Outparams[ 0 ].m_Type.GetBaseType(), PVAL_INT );
	// The runtime's shapes are there too.
	EXPECT_NE( game.FindShape( "CPulseCell_Inflow_Wait" ), nullptr );
}

TEST( PulseNodeDescriptions, AFileWithFaultsIsReportedByName )
{
	CPulseNodeDescriptions descriptions;
	CUtlString report;
	const char *pBroken = "@PointClass metadata { is_pulse_global_event = true } = OnGood : \"Fine.\" [ ]\n"
						  "@PointClass = OnBad : \"unterminated [\n";
	EXPECT_FALSE( descriptions.LoadText( pBroken, "pulse/broken_events.fgd", "", &report ) );
	EXPECT_NE( std::string( report.Get() ).find( "pulse/broken_events.fgd" ), std::string::npos ) << report.Get();

	EXPECT_NE( descriptions.FindShape( "OnGood" ), nullptr ) << "the class before the fault stays";

	// A game root without gameinfo.gi names no files: nothing is added, and that is no fault.
	CPulseNodeDescriptions bare;
	CUtlString bareReport;
	EXPECT_TRUE( bare.LoadGameDescriptions( "/nonexistent/game", &bareReport ) ) << bareReport.Get();
	std::vector<CUtlString> events;
	bare.GatherClassesWith( "is_pulse_global_event", &events );
	EXPECT_TRUE( events.empty() );
}

TEST( PulseNodeDescriptions, AnEventParameterOfNoTypeIsAProblemOfItsShape )
{
	CPulseNodeDescriptions descriptions;
	CUtlString report;
	const char *pText = "@PointClass metadata { is_pulse_global_event = true pulse_outparams = { amount = { type = \"PVAL_LOTS\" } } } = "
						"OnOdd : \"An event whose argument has no type.\" [ ]\n";
	ASSERT_TRUE( descriptions.LoadText( pText, "pulse/odd.fgd", "", &report ) ) << report.Get();
	const PulseGenericShape_t *pOdd = descriptions.FindShape( "OnOdd" );
	ASSERT_NE( pOdd, nullptr );
	EXPECT_NE( std::string( pOdd->m_Problems.Get() ).find( "PVAL_LOTS" ), std::string::npos ) << pOdd->m_Problems.Get();
}
} // namespace
