// Upgrading definitions to the current behaviour version: what the change does told line by
// line, the lowest version of a tree, and the walk over children: open ones in memory,
// closed ones written only when their text changes, each file once, and bad files passed
// over with a report line while the others are done.

#include <gtest/gtest.h>

#include <filesystem>
#include <cstring>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/host/iasset.h"
#include "tests/zoldoc/zolmaintenancetestsupport.h"
#include "zoldoc_lib/zolbatchdocuments.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfilereport.h"
#include "zoldoc_lib/zolversionupgrade.h"
#include "tools/toolutils2/undo/undohistory.h"

namespace fs = std::filesystem;

namespace
{
// Two operators whose behaviour changed since version 4: an option that went, and a class
// replaced by its successor.
const std::string OLD_OPERATORS = "\tm_Operators = [\n"
								  "\t\t{ _class = \"C_OP_ColorInterpolate\" m_bEaseInOut = true },\n"
								  "\t\t{ _class = \"C_OP_NoiseSimplex\" m_nFieldOutput = 7 },\n"
								  "\t]\n";

std::string Lines( const CZolFileReport &report )
{
	CUtlVector<CUtlString> lines;
	report.GetSortedLines( &lines );
	std::string text;
	for ( const CUtlString &line : lines )
		text += std::string( line.Get() ) + "\n";
	return text;
}

class ZolVersionUpgrade : public ZolMaintenanceFixture
{
protected:
	fs::file_time_type Stamp( const std::string &name ) const { return fs::last_write_time( PathOf( name ) ); }
};
} // namespace

TEST_F( ZolVersionUpgrade, TheChangesOfAnUpgradeAreToldInListOrder )
{
	Write( "old", Definition( 4, OLD_OPERATORS ) );
	Start();
	CZolDoc doc( false );
	CUtlString error;
	ASSERT_TRUE( doc.LoadFromFile( PathOf( "old" ).c_str(), "", &error ) ) << error.Get();
	CUtlVector<CUtlString> changes;
	doc.UpdateToCurrentVersion( &changes );
	ASSERT_EQ( changes.Count(), 2 );
	EXPECT_STREQ( changes[ 0 ].Get(), "Operators #1 Color Fade: drops ease in and out (m_bEaseInOut)" );
	EXPECT_STREQ( changes[ 1 ].Get(), "Operators #2 Noise Scalar (simplex noise): becomes Noise Scalar (C_OP_Noise)" );
	EXPECT_TRUE( doc.IsCurrentBehaviorVersion() );
}

TEST_F( ZolVersionUpgrade, LowestVersionCountsEnabledChildrenAndOpenOnesAsEdited )
{
	// top (12) -> mid (7) -> low (3); top -> off (1, switched off); top -> missing.
	Write( "top", Definition( 12, Children( { "mid", "-off", "missing" } ) ) );
	Write( "mid", Definition( 7, Children( { "low" } ) ) );
	Write( "low", Definition( 3, "" ) );
	Write( "off", Definition( 1, "" ) );
	Start();
	CZolFileReport report;
	CZolVersionUpgrade upgrade( &m_Editor, &report );
	CZolDoc *pTop = Open( "top" );
	EXPECT_EQ( upgrade.GetLowestVersion( *pTop, Asset( "top" ) ), 3 );
	// The open mid no longer refers to low: its unsaved state counts, not its file.
	CZolDoc *pMid = Open( "mid" );
	pMid->RemoveElement( PARTICLE_FUNCTION_CHILDREN, pMid->ResolveElementRef( { PARTICLE_FUNCTION_CHILDREN, 0 } ) );
	EXPECT_EQ( upgrade.GetLowestVersion( *pTop, Asset( "top" ) ), 7 );
	EXPECT_TRUE( report.IsEmpty() ) << Lines( report );
}

TEST_F( ZolVersionUpgrade, RecursiveWalkUpgradesOpenChildrenInMemoryAndWritesClosedOnes )
{
	Write( "root", Definition( 4, OLD_OPERATORS + Children( { "a/open", "b/closed", "-b/off", "gone" } ) ) );
	Write( "a/open", Definition( 5, OLD_OPERATORS ) );
	Write( "b/closed", Definition( 6, OLD_OPERATORS + Children( { "root", "b/closed" } ) ) );
	Write( "b/off", Definition( 2, OLD_OPERATORS ) );
	Start();
	const std::string openText = Read( "a/open" );
	const std::string offText = Read( "b/off" );
	CZolDoc *pRoot = Open( "root" );
	CZolDoc *pOpenChild = Open( "a/open" );

	CZolFileReport report;
	CZolVersionUpgrade upgrade( &m_Editor, &report );
	int nWritten = 0;
	upgrade.SetBeforeWrite( [ & ]( IAsset * ) { ++nWritten; } );
	ASSERT_TRUE( upgrade.UpgradeOpenDocument( pRoot, Asset( "root" ) ) );
	upgrade.UpgradeChildren( *pRoot, Asset( "root" ) );

	// The open child changed in memory, with an undo unit, and its file didn't.
	EXPECT_TRUE( pOpenChild->IsCurrentBehaviorVersion() );
	EXPECT_TRUE( pOpenChild->GetUndoHistory()->CanUndo() );
	EXPECT_EQ( Read( "a/open" ), openText );
	// The closed one was written; the switched-off one wasn't touched; the cycle back to
	// the root and the self-reference ended the walk.
	EXPECT_NE( Read( "b/closed" ).find( "m_nBehaviorVersion = 12" ), std::string::npos );
	EXPECT_NE( Read( "b/closed" ).find( "C_OP_Noise\"" ), std::string::npos );
	EXPECT_EQ( Read( "b/off" ), offText );
	EXPECT_EQ( nWritten, 1 );
	EXPECT_EQ( upgrade.GetWrittenCount(), 1 );
	EXPECT_EQ( upgrade.GetChangedCount(), 3 );
	EXPECT_EQ( Lines( report ), "particles/a/open.tfxs: upgraded in memory (unsaved) from behavior version 5 to 12\n"
								"particles/a/open.tfxs: Operators #1 Color Fade: drops ease in and out (m_bEaseInOut)\n"
								"particles/a/open.tfxs: Operators #2 Noise Scalar (simplex noise): becomes Noise Scalar (C_OP_Noise)\n"
								"particles/b/closed.tfxs: upgraded from behavior version 6 to 12\n"
								"particles/b/closed.tfxs: Operators #1 Color Fade: drops ease in and out (m_bEaseInOut)\n"
								"particles/b/closed.tfxs: Operators #2 Noise Scalar (simplex noise): becomes Noise Scalar (C_OP_Noise)\n"
								"particles/root.tfxs: upgraded in memory (unsaved) from behavior version 4 to 12\n"
								"particles/root.tfxs: Operators #1 Color Fade: drops ease in and out (m_bEaseInOut)\n"
								"particles/root.tfxs: Operators #2 Noise Scalar (simplex noise): becomes Noise Scalar (C_OP_Noise)\n"
								"particles/root.tfxs: warning: child 'particles/gone.tfxs' not found; it is passed over\n" );
}

TEST_F( ZolVersionUpgrade, DryRunChangesNothingAndASecondRunFindsNothingToDo )
{
	Write( "top", Definition( 4, OLD_OPERATORS + Children( { "kid" } ) ) );
	Write( "kid", Definition( 12, Children( { "top" } ) ) );
	Start();
	const std::string before = Read( "top" );
	const fs::file_time_type stamp = Stamp( "top" );
	CZolBatchDocuments files;

	CZolFileReport dryReport;
	CZolVersionUpgrade dry( &files, &dryReport );
	dry.SetDryRun( true );
	dry.UpgradeAsset( Asset( "top" ), true );
	EXPECT_EQ( Read( "top" ), before );
	EXPECT_EQ( Stamp( "top" ), stamp );
	EXPECT_EQ( dry.GetChangedCount(), 1 );
	EXPECT_EQ( dry.GetWrittenCount(), 0 );

	CZolFileReport realReport;
	CZolVersionUpgrade real( &files, &realReport );
	real.UpgradeAsset( Asset( "top" ), true );
	EXPECT_EQ( real.GetWrittenCount(), 1 );
	// The dry run said exactly what the real run did.
	std::string dryLines = Lines( dryReport );
	std::string realLines = Lines( realReport );
	EXPECT_EQ( dryLines.replace( dryLines.find( "would upgrade" ), strlen( "would upgrade" ), "upgraded" ), realLines );

	const std::string after = Read( "top" );
	const fs::file_time_type afterStamp = Stamp( "top" );
	CZolFileReport againReport;
	CZolVersionUpgrade again( &files, &againReport );
	again.UpgradeAsset( Asset( "top" ), true );
	EXPECT_EQ( again.GetChangedCount(), 0 );
	EXPECT_TRUE( againReport.IsEmpty() ) << Lines( againReport );
	EXPECT_EQ( Read( "top" ), after );
	EXPECT_EQ( Stamp( "top" ), afterStamp );
}

TEST_F( ZolVersionUpgrade, NewerAndReadOnlyFilesAreReportedAndTheOthersDone )
{
	Write( "top", Definition( 12, Children( { "newer", "locked", "fine", "broken" } ) ) );
	Write( "newer", Definition( 14, "" ) );
	Write( "locked", Definition( 3, OLD_OPERATORS ) );
	Write( "fine", Definition( 3, OLD_OPERATORS ) );
	Write( "broken", "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n{ _class = \n" );
	Start();
	fs::permissions( PathOf( "locked" ), fs::perms::owner_write | fs::perms::group_write | fs::perms::others_write, fs::perm_options::remove );
	const std::string newerText = Read( "newer" );
	const std::string lockedText = Read( "locked" );
	CZolBatchDocuments files;
	CZolFileReport report;
	CZolVersionUpgrade upgrade( &files, &report );
	upgrade.UpgradeAsset( Asset( "top" ), true );

	EXPECT_EQ( Read( "newer" ), newerText );
	EXPECT_EQ( Read( "locked" ), lockedText );
	EXPECT_NE( Read( "fine" ).find( "m_nBehaviorVersion = 12" ), std::string::npos );
	EXPECT_EQ( report.GetCount( ZOL_FINDING_ERROR ), 3 ) << Lines( report );
	const std::string lines = Lines( report );
	EXPECT_NE( lines.find( "particles/newer.tfxs: error: behavior version 14 is newer than this editor's 12" ), std::string::npos ) << lines;
	EXPECT_NE( lines.find( "particles/locked.tfxs: error: not upgraded: the file is read only" ), std::string::npos ) << lines;
	EXPECT_NE( lines.find( "particles/broken.tfxs: error: " ), std::string::npos ) << lines;
}

TEST_F( ZolVersionUpgrade, FunctionsOfUnknownClassesAreKeptThroughAnUpgrade )
{
	// A class this build doesn't know (written by a newer tool) mustn't vanish on the way.
	Write( "mixed", Definition( 4, "\tm_Operators = [\n\t\t{ _class = \"C_OP_FromTheFuture\" m_flSomething = 2.0 },\n\t\t{ _class = \"C_OP_Decay\" },\n\t]\n" ) );
	Start();
	CZolBatchDocuments files;
	CZolFileReport report;
	CZolVersionUpgrade upgrade( &files, &report );
	upgrade.UpgradeAsset( Asset( "mixed" ), false );
	EXPECT_NE( Read( "mixed" ).find( "C_OP_FromTheFuture" ), std::string::npos ) << Read( "mixed" );
	EXPECT_NE( Read( "mixed" ).find( "m_nBehaviorVersion = 12" ), std::string::npos );
}
