// The editor's asset maintenance, driven as an artist drives it: the stale version bar and
// its dialog, the reference navigator reached from the View menu, and the conversion of a
// control point to a variable. Each ends where the command line ends: the same files, the
// same chart, the same converted documents.

#include <gtest/gtest.h>

#include <QAction>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QDockWidget>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QMenuBar>
#include <QProcess>
#include <QPushButton>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QtTest/QTest>

#include <cstdlib>
#include <memory>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/host/iasset.h"
#include "core/kv3/keyvalues3.h"
#include "core/particles/particlebehaviorversion.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/zol/editor/assetmaintenance/particledefinitionitem.h"
#include "tools/zol/editor/assetmaintenance/staleversionconfigdialog.h"
#include "tools/zol/editor/assetmaintenance/zolreferencenavigatorwidget.h"
#include "tools/zol/editor/assetmaintenance/zolstaleversiontoolbar.h"
#include "tools/zol/editor/assetmaintenance/zolvariableconvertdialog.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariableconversion.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace fs = std::filesystem;

namespace
{
const char *const HEADER = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n";

std::string Definition( int nVersion, const std::string &body )
{
	return std::string( HEADER ) + "{\n\t_class = \"CParticleSystemDefinition\"\n\tm_nBehaviorVersion = " + std::to_string( nVersion ) + "\n" + body + "}\n";
}

std::string Child( const char *pRef, bool bDisabled = false )
{
	return std::string( "\t\t{ m_ChildRef = resource:\"" ) + pRef + "\"" + ( bDisabled ? " m_bDisableChild = true" : "" ) + " },\n";
}

const std::string OLD_OPERATORS = "\tm_Operators = [\n"
								  "\t\t{ _class = \"C_OP_ColorInterpolate\" m_bEaseInOut = true },\n"
								  "\t\t{ _class = \"C_OP_NoiseSimplex\" m_nFieldOutput = 7 },\n"
								  "\t]\n";

// With ZOL_TEST_SHOT_DIR set, a picture of the widget as the test left it, for looking at.
void SaveShot( QWidget *pWidget, const char *pName )
{
	const char *pDirectory = getenv( "ZOL_TEST_SHOT_DIR" );
	if ( pDirectory && *pDirectory )
		pWidget->grab().save( QString( "%1/%2.png" ).arg( pDirectory, pName ) );
}

class AssetMaintenanceTest : public ZolWindowAppTest
{
protected:
	void Write( const char *pContentPath, const std::string &text ) { WriteText( m_Root / "content" / pContentPath, text ); }
	std::string ReadContent( const char *pContentPath ) { return ReadText( m_Root / "content" / pContentPath ); }
	void Rescan() { m_Services.GetAssetSystem()->Rescan(); }

	// A copy of the content tree as it stands now, for the command line to work on.
	fs::path CopyContent( const char *pName )
	{
		fs::path copy = m_Root / pName / "content";
		fs::create_directories( copy.parent_path() );
		fs::copy( m_Root / "content", copy, fs::copy_options::recursive );
		return copy;
	}

	// zol with the test's game root, in the content root given; its standard output.
	std::string RunZol( const fs::path &content, const QStringList &args, int *pStatus = nullptr )
	{
		QProcess process;
		process.setWorkingDirectory( QString::fromStdString( content.string() ) );
		QStringList all{ "--game", QString::fromStdString( ( m_Root / "game" ).string() ), "--content", QString::fromStdString( content.string() ) };
		process.start( ZOL_EXECUTABLE, all + args );
		EXPECT_TRUE( process.waitForFinished( 120000 ) );
		if ( pStatus )
			*pStatus = process.exitCode();
		return process.readAllStandardOutput().toStdString();
	}

	// The text a save writes, less the control point configurations: a session makes a
	// "preview" one when it opens a file that has none, which no batch run does.
	static std::string SaveText( const CZolDoc *pDoc )
	{
		CUtlBuffer buffer;
		CUtlString error;
		EXPECT_TRUE( pDoc->SaveToBuffer( &buffer, &error, []( KeyValues3 *pTree ) { pTree->RemoveMember( "m_controlPointConfigurations" ); } ) ) << error.Get();
		return std::string( reinterpret_cast<const char *>( buffer.Base() ), buffer.Size() );
	}

	CQZolStaleVersionToolBar *Bar() const { return m_pWindow->GetStaleVersionToolBar(); }
	CQZolReferenceNavigatorWidget *Navigator() const { return m_pWindow->GetReferenceNavigator(); }

	// The answer to the upgrade's question, given in the real dialog: what it listed, then
	// a click on Ok or Cancel.
	void AnswerUpgrade( bool bAccept )
	{
		Bar()->SetConfirmFn( [ this, bAccept ]( int nFromVersion ) {
			CQStaleVersionConfigDialog dialog( nFromVersion, m_pWindow );
			dialog.show();
			m_Asked.push_back( nFromVersion );
			m_Listed.clear();
			for ( int i = 0; i < dialog.GetChangeList()->count(); ++i )
				m_Listed.push_back( dialog.GetChangeList()->item( i )->text().toStdString() );
			SaveShot( &dialog, "stale_version_dialog" );
			QTest::mouseClick( dialog.GetButtons()->button( bAccept ? QDialogButtonBox::Ok : QDialogButtonBox::Cancel ), Qt::LeftButton );
			return dialog.result() == QDialog::Accepted;
		} );
	}

	void ShowNavigator()
	{
		QMenu *pView = nullptr;
		for ( QAction *pAction : m_pWindow->menuBar()->actions() )
		{
			if ( pAction->text() == "&View" )
				pView = pAction->menu();
		}
		ASSERT_NE( pView, nullptr );
		QAction *pShow = nullptr;
		for ( QAction *pAction : pView->actions() )
		{
			if ( pAction->text() == "Show Reference Navigator" )
				pShow = pAction;
		}
		ASSERT_NE( pShow, nullptr );
		pShow->trigger();
		ASSERT_TRUE( m_pWindow->GetReferenceNavigatorDock()->isVisible() );
	}

	// The items of the navigator in order, depth first.
	std::vector<CQParticleDefinitionItem *> Items() const
	{
		std::vector<CQParticleDefinitionItem *> items;
		std::function<void( QTreeWidgetItem * )> walk = [ & ]( QTreeWidgetItem *pItem ) {
			items.push_back( static_cast<CQParticleDefinitionItem *>( pItem ) );
			for ( int i = 0; i < pItem->childCount(); ++i )
				walk( pItem->child( i ) );
		};
		for ( int i = 0; i < Navigator()->GetTree()->topLevelItemCount(); ++i )
			walk( Navigator()->GetTree()->topLevelItem( i ) );
		return items;
	}

	void TearDown() override
	{
		if ( m_pWindow )
			Bar()->SetConfirmFn( nullptr );
		ZolWindowAppTest::TearDown();
	}

	std::vector<int> m_Asked;
	std::vector<std::string> m_Listed;
};
} // namespace

TEST_F( AssetMaintenanceTest, TheBarShowsAnOldSystemAndUpgradesItInOneUndoStep )
{
	CZolSession *pDust = Open( "particles/samples/old_dust.tfxs" );
	ASSERT_NE( pDust, nullptr );
	ASSERT_EQ( m_pApp->GetPreviewSession(), pDust );
	EXPECT_TRUE( Bar()->isVisible() );
	EXPECT_EQ( Bar()->GetLabel()->text(), QString( "This particle system is using old behavior version 4, while current version is %1!" ).arg( PARTICLE_CURRENT_BEHAVIOR_VERSION ) );
	const std::string onDisk = ReadContent( "particles/samples/old_dust.tfxs" );
	SaveShot( m_pWindow, "stale_version_bar" );

	// Cancel changes nothing.
	AnswerUpgrade( false );
	QTest::mouseClick( Bar()->GetUpgradeButton(), Qt::LeftButton );
	ASSERT_EQ( m_Asked, std::vector<int>{ 4 } );
	ASSERT_EQ( m_Listed.size(), size_t( PARTICLE_CURRENT_BEHAVIOR_VERSION - 4 ) );
	EXPECT_EQ( m_Listed[ 0 ], std::string( "* " ) + GetParticleBehaviorVersionChange( 5 ) );
	EXPECT_EQ( pDust->GetDoc()->GetBehaviorVersion(), 4 );
	EXPECT_FALSE( pDust->GetDoc()->GetUndoHistory()->CanUndo() );

	AnswerUpgrade( true );
	QTest::mouseClick( Bar()->GetUpgradeButton(), Qt::LeftButton );
	EXPECT_TRUE( pDust->GetDoc()->IsCurrentBehaviorVersion() );
	EXPECT_STREQ( pDust->GetDoc()->GetUndoHistory()->GetUndoName(), "Update to Current Version" );
	EXPECT_FALSE( Bar()->isVisible() );
	EXPECT_EQ( ReadContent( "particles/samples/old_dust.tfxs" ), onDisk ) << "the upgrade waits to be saved";
	// What a save writes is what zol upgrade writes.
	const fs::path copy = CopyContent( "cli" );
	fs::copy_file( m_Root / "content/particles/samples/old_dust.tfxs", copy / "particles/samples/old_dust.tfxs", fs::copy_options::overwrite_existing );
	int nStatus = -1;
	RunZol( copy, { "upgrade", "particles/samples/old_dust.tfxs" }, &nStatus );
	EXPECT_EQ( nStatus, 0 );
	EXPECT_EQ( SaveText( pDust->GetDoc() ), ReadText( copy / "particles/samples/old_dust.tfxs" ) );

	// Undo brings the old version, and the bar, back.
	pDust->GetDoc()->Undo();
	EXPECT_EQ( pDust->GetDoc()->GetBehaviorVersion(), 4 );
	EXPECT_TRUE( Bar()->isVisible() );
	// A current system hides it.
	ASSERT_NE( Open( "particles/samples/fire.tfxs" ), nullptr );
	EXPECT_FALSE( Bar()->isVisible() );
}

TEST_F( AssetMaintenanceTest, UpgradingWithChildrenStartsAtTheTreesLowestVersionAndMatchesTheCommandLine )
{
	Write( "particles/tree/top.tfxs", Definition( 10, "\tm_Children = [\n" + Child( "particles/tree/open_kid.tfxs" ) + Child( "particles/other/closed_kid.tfxs" ) +
														 Child( "particles/tree/off.tfxs", true ) + Child( "particles/tree/gone.tfxs" ) + Child( "particles/tree/top.tfxs" ) +
														 "\t]\n" ) );
	Write( "particles/tree/open_kid.tfxs", Definition( 5, OLD_OPERATORS ) );
	Write( "particles/other/closed_kid.tfxs", Definition( 3, OLD_OPERATORS ) );
	Write( "particles/tree/off.tfxs", Definition( 2, OLD_OPERATORS ) );
	Rescan();
	const fs::path copy = CopyContent( "cli" );
	CZolSession *pKid = Open( "particles/tree/open_kid.tfxs" );
	CZolSession *pTop = Open( "particles/tree/top.tfxs" );
	ASSERT_TRUE( pKid && pTop );
	EXPECT_TRUE( Bar()->isVisible() );
	const std::string offText = ReadContent( "particles/tree/off.tfxs" );

	AnswerUpgrade( true );
	m_Prompt.ExpectMessage( "Upgrade Version + Children" );
	QTest::mouseClick( Bar()->GetUpgradeChildrenButton(), Qt::LeftButton );
	// The question starts at the lowest version of the tree: the switched-off child's 2 doesn't count.
	ASSERT_EQ( m_Asked, std::vector<int>{ 3 } );
	EXPECT_EQ( m_Listed.size(), size_t( PARTICLE_CURRENT_BEHAVIOR_VERSION - 3 ) );
	const CScriptedPrompt::Record_t *pReport = m_Prompt.FindRecord( "Upgrade Version + Children" );
	ASSERT_NE( pReport, nullptr );
	EXPECT_NE( std::string( pReport->m_strText.Get() ).find( "particles/tree/top.tfxs: warning: child 'particles/tree/gone.tfxs' not found" ), std::string::npos )
		<< pReport->m_strText.Get();

	EXPECT_TRUE( pTop->GetDoc()->IsCurrentBehaviorVersion() );
	EXPECT_TRUE( pKid->GetDoc()->IsCurrentBehaviorVersion() );
	EXPECT_TRUE( pKid->GetDoc()->GetUndoHistory()->CanUndo() );
	EXPECT_EQ( ReadContent( "particles/tree/off.tfxs" ), offText );
	EXPECT_NE( std::string( m_pApp->GetLastStatusMessage() ).find( "Upgraded 3 particle systems; 1 written" ), std::string::npos ) << m_pApp->GetLastStatusMessage();

	// The command line on the same tree writes what the editor wrote and holds in memory.
	int nStatus = -1;
	const std::string out = RunZol( copy, { "upgrade", "--recursive", "particles/tree/top.tfxs" }, &nStatus );
	EXPECT_EQ( nStatus, 0 ) << out;
	EXPECT_EQ( ReadContent( "particles/other/closed_kid.tfxs" ), ReadText( copy / "particles/other/closed_kid.tfxs" ) );
	EXPECT_EQ( SaveText( pKid->GetDoc() ), ReadText( copy / "particles/tree/open_kid.tfxs" ) );
	EXPECT_EQ( SaveText( pTop->GetDoc() ), ReadText( copy / "particles/tree/top.tfxs" ) );
	EXPECT_EQ( ReadText( copy / "particles/tree/off.tfxs" ), offText );
}

TEST_F( AssetMaintenanceTest, ASystemNewerThanTheEditorIsNotBroughtDown )
{
	Write( "particles/newer.tfxs", Definition( PARTICLE_CURRENT_BEHAVIOR_VERSION + 2, "" ) );
	Rescan();
	CZolSession *pNewer = Open( "particles/newer.tfxs" );
	ASSERT_NE( pNewer, nullptr );
	EXPECT_TRUE( Bar()->isVisible() );
	AnswerUpgrade( true );
	m_Prompt.ExpectMessage( "Upgrade Version" );
	QTest::mouseClick( Bar()->GetUpgradeButton(), Qt::LeftButton );
	m_Prompt.ExpectMessage( "Upgrade Version" );
	QTest::mouseClick( Bar()->GetUpgradeChildrenButton(), Qt::LeftButton );
	EXPECT_TRUE( m_Asked.empty() );
	EXPECT_EQ( pNewer->GetDoc()->GetBehaviorVersion(), PARTICLE_CURRENT_BEHAVIOR_VERSION + 2 );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
}

TEST_F( AssetMaintenanceTest, TheNavigatorDrawsTheCommandLinesChartAndHighlightsTwins )
{
	// The campfire's sparks also stand under a second system, so they show twice.
	Write( "particles/other/showcase.tfxs", Definition( 12, "\tm_Children = [\n" + Child( "particles/samples/sparks.tfxs" ) + Child( "particles/samples/smoke.tfxs", true ) + "\t]\n" ) );
	Rescan();
	ASSERT_NE( Open( "particles/samples/campfire.tfxs" ), nullptr );
	ASSERT_NE( Open( "particles/other/showcase.tfxs" ), nullptr );
	ShowNavigator();

	QTreeWidget *pTree = Navigator()->GetTree();
	QStringList headers;
	for ( int i = 0; i < pTree->columnCount(); ++i )
		headers << pTree->headerItem()->text( i );
	EXPECT_EQ( headers, ( QStringList{ "File", "CP0", "CP1", "FireHeight", "" } ) );
	EXPECT_EQ( pTree->columnWidth( 0 ), 400 );
	EXPECT_EQ( pTree->columnWidth( 1 ), 36 );

	// The command line's chart of the same systems, cell by cell.
	const fs::path copy = CopyContent( "cli" );
	int nStatus = -1;
	const QJsonObject json = QJsonDocument::fromJson( QByteArray::fromStdString( RunZol( copy, { "refs", "--json", "particles/samples/campfire.tfxs",
																							 "particles/other/showcase.tfxs" },
																					 &nStatus ) ) )
								 .object();
	EXPECT_EQ( nStatus, 0 );
	std::vector<CQParticleDefinitionItem *> items = Items();
	std::vector<std::string> expected;
	for ( const QJsonValue &tree : json[ "trees" ].toArray() )
	{
		for ( const QJsonValue &row : tree.toObject()[ "rows" ].toArray() )
		{
			std::string line = row.toObject()[ "name" ].toString().toStdString();
			const QJsonObject cells = row.toObject()[ "cells" ].toObject();
			for ( int nColumn = 1; nColumn < headers.size() - 1; ++nColumn )
				line += " " + std::to_string( cells[ headers[ nColumn ] ].toObject()[ "glyph" ].toInt( 0 ) );
			expected.push_back( line );
		}
	}
	std::vector<std::string> shown;
	for ( CQParticleDefinitionItem *pItem : items )
	{
		std::string line = pItem->text( 0 ).toStdString();
		for ( int nColumn = 1; nColumn < headers.size() - 1; ++nColumn )
		{
			const ZolReferenceCell_t *pCell = pItem->GetCell( nColumn );
			line += " " + std::to_string( pCell ? pCell->m_nGlyph : 0 );
		}
		shown.push_back( line );
	}
	EXPECT_EQ( shown, expected );
	// The trees stand in name order: the showcase's, then the campfire's.
	ASSERT_EQ( items.size(), 9u );
	EXPECT_EQ( shown[ 0 ], "Outside World 1 0 0" );
	EXPECT_EQ( shown[ 4 ], "Outside World 1 0 1" );
	EXPECT_EQ( shown[ 5 ], "particles/samples/campfire.tfxs 2 5 3" );
	CQParticleDefinitionItem *pCampfire = items[ 5 ];

	// Open systems are bold, a switched-off child struck out.
	EXPECT_TRUE( pCampfire->font( 0 ).bold() );
	EXPECT_FALSE( items[ 6 ]->font( 0 ).bold() );
	CQParticleDefinitionItem *pOffSmoke = nullptr;
	CQParticleDefinitionItem *pSparks = nullptr;
	for ( CQParticleDefinitionItem *pItem : items )
	{
		if ( pItem->text( 0 ) == "particles/samples/smoke.tfxs" && pItem->font( 0 ).strikeOut() )
			pOffSmoke = pItem;
		if ( pItem->text( 0 ) == "particles/samples/sparks.tfxs" && !pSparks )
			pSparks = pItem;
	}
	ASSERT_NE( pOffSmoke, nullptr );
	ASSERT_NE( pSparks, nullptr );

	// A click highlights a row and its twin in the other tree; the next click moves it.
	ASSERT_EQ( pSparks->GetTwins().size(), 1u );
	pTree->scrollToItem( pSparks );
	QTest::mouseClick( pTree->viewport(), Qt::LeftButton, Qt::NoModifier, pTree->visualItemRect( pSparks ).center() );
	EXPECT_EQ( Navigator()->GetLastClickedItem(), pSparks );
	EXPECT_TRUE( pSparks->GetTwins()[ 0 ]->IsHighlighted() );
	EXPECT_EQ( pSparks->GetTwins()[ 0 ]->foreground( 0 ).color(), QColor( 219, 112, 147 ) );
	QTest::mouseClick( pTree->viewport(), Qt::LeftButton, Qt::NoModifier, pTree->visualItemRect( pCampfire ).center() );
	EXPECT_FALSE( pSparks->IsHighlighted() );
	EXPECT_EQ( pSparks->foreground( 0 ).color(), QColor( 192, 192, 192 ) );

	// The writer's cell of control point 1 is drawn with its red arrow.
	pTree->scrollToItem( pCampfire );
	const QRect cell = pTree->visualItemRect( pCampfire ).intersected( QRect( pTree->columnViewportPosition( 2 ), 0, pTree->columnWidth( 2 ), 100000 ) );
	const QImage picture = pTree->viewport()->grab( cell ).toImage();
	bool bVioletRed = false;
	for ( int y = 0; y < picture.height(); ++y )
		for ( int x = 0; x < picture.width(); ++x )
			bVioletRed |= picture.pixelColor( x, y ) == QColor( 219, 112, 147 );
	EXPECT_TRUE( bVioletRed ) << "the campfire reads and writes control point 1";

	SaveShot( m_pWindow->GetReferenceNavigatorDock(), "reference_navigator" );

	// A double click opens a system in the editor.
	ASSERT_EQ( m_pApp->GetSessions().size(), 2u );
	pTree->scrollToItem( pSparks );
	const QPoint sparksAt = pTree->visualItemRect( pSparks ).center();
	QTest::mouseClick( pTree->viewport(), Qt::LeftButton, Qt::NoModifier, sparksAt );
	QTest::mouseDClick( pTree->viewport(), Qt::LeftButton, Qt::NoModifier, sparksAt );
	EXPECT_EQ( m_pApp->GetSessions().size(), 3u );
	ASSERT_NE( m_pApp->GetActiveZolSession(), nullptr );
	EXPECT_EQ( m_pApp->GetActiveZolSession()->GetAsset(), Asset( "particles/samples/sparks.tfxs" ) );
}

TEST_F( AssetMaintenanceTest, NoOpenSystemLeavesTheNavigatorEmpty )
{
	ShowNavigator();
	EXPECT_EQ( Navigator()->GetTree()->topLevelItemCount(), 0 );
	EXPECT_EQ( Navigator()->GetTree()->columnCount(), 2 );
	EXPECT_EQ( Navigator()->GetTree()->headerItem()->text( 0 ), "File" );
}

TEST_F( AssetMaintenanceTest, ConvertingAControlPointInTheDialogWritesWhatTheCommandLineWrites )
{
	Write( "particles/conv/torch.tfxs",
		Definition( 12, "\tm_Initializers = [ { _class = \"C_INIT_InitVec\" m_InputValue = { m_nType = \"PVEC_TYPE_CP_VALUE\" m_nControlPoint = 3 } } ]\n"
						"\tm_Children = [\n" +
							Child( "particles/conv/flame.tfxs" ) + "\t]\n" ) );
	Write( "particles/conv/flame.tfxs",
		Definition( 12, "\tm_Initializers = [ { _class = \"C_INIT_RingWave\" m_TransformInput = { m_nType = \"PT_TYPE_CONTROL_POINT\" m_nControlPoint = 3 } } ]\n" ) );
	Rescan();
	const fs::path copy = CopyContent( "cli" );
	const std::string torchText = ReadContent( "particles/conv/torch.tfxs" );
	CZolSession *pTorch = Open( "particles/conv/torch.tfxs" );
	ASSERT_NE( pTorch, nullptr );

	// Reached from the navigator: a right click on the torch's cell of control point 3.
	ShowNavigator();
	std::vector<CQParticleDefinitionItem *> items = Items();
	ASSERT_GE( items.size(), 2u );
	int nColumn = -1;
	for ( int i = 1; i < Navigator()->GetTree()->columnCount(); ++i )
		nColumn = Navigator()->GetControlPointOfColumn( i ) == 3 ? i : nColumn;
	ASSERT_GT( nColumn, 0 );
	QTreeWidget *pTree = Navigator()->GetTree();
	const QPoint where( pTree->columnViewportPosition( nColumn ) + 5, pTree->visualItemRect( items[ 1 ] ).center().y() );
	std::unique_ptr<QMenu> pMenu( Navigator()->CreateContextMenu( where ) );
	ASSERT_NE( pMenu, nullptr );
	ASSERT_EQ( pMenu->actions().size(), 1 );
	EXPECT_EQ( pMenu->actions()[ 0 ]->text(), "Convert Control Point #3 to Variable... " );
	pMenu->actions()[ 0 ]->trigger();

	CQZolVariableConvertDialog *pDialog = m_pApp->GetVariableConvertDialog();
	ASSERT_NE( pDialog, nullptr );
	EXPECT_TRUE( pDialog->isVisible() );
	EXPECT_EQ( pDialog->windowTitle(), "Convert Control Point #3 to Variable" );
	EXPECT_EQ( pDialog->GetNameEdit()->text(), "Placeholder" );
	EXPECT_EQ( pDialog->GetTypeBox()->currentData().toString(), "PVAL_TRANSFORM" );
	EXPECT_EQ( pDialog->GetStatusLabel()->text(), "" );
	QString report = pDialog->GetReport()->toPlainText();
	EXPECT_TRUE( report.contains( "Build Action List: \n(no messages)" ) ) << report.toStdString();
	EXPECT_TRUE( report.contains( "Info torch: Variable 'Placeholder' of type 'PVAL_TRANSFORM' will be added." ) ) << report.toStdString();

	// Typing the name runs the dry run again with it.
	pDialog->GetNameEdit()->selectAll();
	QTest::keyClicks( pDialog->GetNameEdit(), "Lean" );
	report = pDialog->GetReport()->toPlainText();
	EXPECT_TRUE( report.contains( "Info flame:Position Along Ring: 'ring transform' (m_TransformInput) will be converted." ) ) << report.toStdString();
	EXPECT_TRUE( report.contains( "Variable 'Lean' of type" ) );
	EXPECT_FALSE( report.contains( "Placeholder" ) );

	// A link opens its system with its function selected.
	QMetaObject::invokeMethod( pDialog->GetReport(), "anchorClicked", Q_ARG( QUrl, QUrl( "#particles/conv/flame.tfxs:2:0" ) ) );
	CZolSession *pFlame = m_pApp->GetActiveZolSession();
	ASSERT_NE( pFlame, nullptr );
	EXPECT_EQ( pFlame->GetAsset(), Asset( "particles/conv/flame.tfxs" ) );
	ASSERT_EQ( pFlame->GetDoc()->GetSelection().Count(), 1 );
	EXPECT_EQ( pFlame->GetDoc()->GetSelection()[ 0 ].m_nType, 2 );

	SaveShot( pDialog, "convert_dialog_dry_run" );
	QTest::mouseClick( pDialog->GetApplyButton(), Qt::LeftButton );
	SaveShot( pDialog, "convert_dialog_applied" );
	EXPECT_FALSE( pDialog->GetApplyButton()->isEnabled() );
	EXPECT_TRUE( pDialog->GetReport()->toPlainText().contains( "Modify Documents:" ) );
	EXPECT_EQ( pDialog->GetStatusLabel()->text(), "" );
	EXPECT_STREQ( pTorch->GetDoc()->GetUndoHistory()->GetUndoName(), "Add Variable Lean and convert usage." );

	// The command line's conversion of the same family writes what the editor holds.
	int nStatus = -1;
	const std::string out = RunZol( copy, { "convert-cp", "--cp", "3", "--name", "Lean", "particles/conv/torch.tfxs" }, &nStatus );
	EXPECT_EQ( nStatus, 0 ) << out;
	EXPECT_EQ( SaveText( pTorch->GetDoc() ), ReadText( copy / "particles/conv/torch.tfxs" ) );
	EXPECT_EQ( SaveText( pFlame->GetDoc() ), ReadText( copy / "particles/conv/flame.tfxs" ) );
	// Nothing was written by the editor: the user saves.
	EXPECT_EQ( ReadContent( "particles/conv/torch.tfxs" ), torchText );
	EXPECT_TRUE( pTorch->IsModified() );
}

TEST_F( AssetMaintenanceTest, AConversionThatCannotBeUnifiedSaysSoInRed )
{
	Write( "particles/conv/lantern.tfxs",
		Definition( 12, "\tm_Initializers = [\n"
						"\t\t{ _class = \"C_INIT_InitVec\" m_InputValue = { m_nType = \"PVEC_TYPE_CP_VALUE\" m_nControlPoint = 3 } },\n"
						"\t\t{ _class = \"C_INIT_InitFloat\" m_InputValue = { m_nType = \"PF_TYPE_CONTROL_POINT_COMPONENT\" m_nControlPoint = 3 } },\n"
						"\t]\n" ) );
	Rescan();
	CZolSession *pLantern = Open( "particles/conv/lantern.tfxs" );
	ASSERT_NE( pLantern, nullptr );
	m_pApp->ShowVariableConvertDialog( pLantern, 3 );
	CQZolVariableConvertDialog *pDialog = m_pApp->GetVariableConvertDialog();
	EXPECT_EQ( pDialog->GetStatusLabel()->text(), "Errors reported, proceed with caution" );
	EXPECT_EQ( pDialog->GetStatusLabel()->styleSheet(), "color: red;" );
	EXPECT_TRUE( pDialog->GetReport()->toPlainText().contains(
		"Error lantern:Init Float: Access type cannot be unified! CP index 3 is type PVAL_FLOAT, prior type was PVAL_VEC3" ) )
		<< pDialog->GetReport()->toPlainText().toStdString();
	SaveShot( pDialog, "convert_dialog_errors" );
	// Choosing a float type turns the vector's conversion into the error instead.
	pDialog->GetTypeBox()->setCurrentIndex( pDialog->GetTypeBox()->findData( "PVAL_FLOAT" ) );
	EXPECT_EQ( pDialog->GetPlan()->GetVariableType(), CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_TRUE( pDialog->GetReport()->toPlainText().contains( "Error lantern:Init Vec: Failed to convert field 'm_InputValue'." ) );
	EXPECT_FALSE( pLantern->GetDoc()->GetUndoHistory()->CanUndo() );
}
