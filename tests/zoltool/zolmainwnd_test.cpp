// The main window as an artist meets it: the default layout, the View menu, the layout
// kept across restarts, and the recent directories of the File menu.

#include <gtest/gtest.h>

#include <QAction>
#include <QApplication>
#include <QDockWidget>
#include <QFileInfo>
#include <QLineEdit>
#include <QListWidget>
#include <QStatusBar>
#include <QMenu>
#include <QMenuBar>
#include <QTableWidget>
#include <QUrl>
#include <QtTest/QTest>

#include <filesystem>
#include <string>

#include "core/console/consoleregistry.h"
#include "core/console/convar.h"
#include "core/host/resourcetype.h"
#include "core/kv3/keyvalues3.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/zol/editor/functionlist/particlefunctionlist.h"
#include "tools/zol/editor/particlepreview.h"
#include "tools/zol/editor/zolassetpane.h"
#include "zoldoc_lib/zoldoc.h"
#include "tools/toolutils2/widgets/inputbind/inputbindeditor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/inputbind/bindnamefilterwidget.h"
#include "tools/toolutils2/widgets/inputbind/inputbindcommandlist.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmenu.h"
#include "tools/toolutils2/widgets/inputbind/inputdebugger.h"

namespace fs = std::filesystem;

namespace
{

class ZolMainWndTest : public ZolWindowAppTest
{
protected:
	std::vector<QDockWidget *> Docks() const
	{
		return { m_pWindow->GetPropertyDock(), m_pWindow->GetFunctionDock(), m_pWindow->GetControlsDock(), m_pWindow->GetUndoDock(),
			m_pWindow->findChild<QDockWidget *>( "ZOL2_AssetPaneDock" ) };
	}

	QAction *ViewAction( const QString &text ) const
	{
		for ( QAction *pAction : m_pWindow->GetViewMenu()->actions() )
		{
			if ( pAction->text() == text )
				return pAction;
		}
		return nullptr;
	}

	// Opens the menu as a click on its title would and clicks the entry.
	static void ClickEntry( QMenu *pMenu, QAction *pAction )
	{
		pMenu->popup( QPoint( 0, 0 ) );
		QApplication::processEvents();
		ASSERT_TRUE( pMenu->isVisible() );
		QTest::mouseClick( pMenu, Qt::LeftButton, Qt::NoModifier, pMenu->actionGeometry( pAction ).center() );
		QApplication::processEvents();
	}
};

TEST_F( ZolMainWndTest, DefaultLayoutGivesEveryPanelRoomForItsWordsAndThePreviewTheMiddle )
{
	m_pWindow->resize( 1600, 1000 );
	m_pWindow->ResetLayout();
	QApplication::processEvents();
	for ( QDockWidget *pDock : Docks() )
	{
		ASSERT_NE( pDock, nullptr );
		EXPECT_TRUE( pDock->isVisible() ) << pDock->objectName().toStdString();
		EXPECT_FALSE( pDock->isFloating() ) << pDock->objectName().toStdString();
		// Locked from the start: nothing to drag away or close by accident.
		EXPECT_EQ( pDock->features(), QDockWidget::NoDockWidgetFeatures ) << pDock->objectName().toStdString();
	}
	// Property names and function names need their room; a dock squeezed to its minimum
	// cuts them off.
	EXPECT_GE( m_pWindow->GetPropertyDock()->width(), 400 );
	EXPECT_GE( m_pWindow->GetFunctionDock()->width(), 270 );
	EXPECT_GE( m_pWindow->GetControlsDock()->width(), 400 );
	EXPECT_GE( m_pWindow->GetPreview()->width(), 320 );
	// Functions, properties, preview and controls from left to right.
	auto left = [ & ]( QWidget *pWidget ) { return pWidget->mapTo( m_pWindow, QPoint( 0, 0 ) ).x(); };
	EXPECT_LT( left( m_pWindow->GetFunctionDock() ), left( m_pWindow->GetPropertyDock() ) );
	EXPECT_LT( left( m_pWindow->GetPropertyDock() ), left( m_pWindow->GetPreview() ) );
	EXPECT_LT( left( m_pWindow->GetPreview() ), left( m_pWindow->GetControlsDock() ) );
	// The controls' form scrolls in a small window rather than pushing the preview out.
	m_pWindow->resize( 1280, 800 );
	m_pWindow->ResetLayout();
	QApplication::processEvents();
	EXPECT_GE( m_pWindow->GetPreview()->width(), 320 );
	EXPECT_GE( m_pWindow->GetPropertyDock()->width(), 360 );
}

TEST_F( ZolMainWndTest, ViewMenuHidesAndShowsEachPanelOnceUnlockedAndDefaultLayoutBringsThemAllBack )
{
	// Locked, as the window starts: no panel can be closed, not even from the menu.
	for ( QDockWidget *pDock : Docks() )
	{
		QAction *pToggle = ViewAction( pDock->windowTitle() );
		ASSERT_NE( pToggle, nullptr ) << pDock->windowTitle().toStdString();
		EXPECT_FALSE( pToggle->isEnabled() ) << pDock->windowTitle().toStdString();
	}
	QAction *pLock = ViewAction( "&Toggle Window Lock" );
	ASSERT_NE( pLock, nullptr );
	ClickEntry( m_pWindow->GetViewMenu(), pLock );
	EXPECT_TRUE( m_pWindow->GetUndoDock()->features().testFlag( QDockWidget::DockWidgetClosable ) );
	EXPECT_TRUE( m_pWindow->GetUndoDock()->features().testFlag( QDockWidget::DockWidgetFloatable ) );

	for ( QDockWidget *pDock : Docks() )
	{
		ClickEntry( m_pWindow->GetViewMenu(), ViewAction( pDock->windowTitle() ) );
		EXPECT_FALSE( pDock->isVisible() ) << pDock->windowTitle().toStdString();
	}
	ClickEntry( m_pWindow->GetViewMenu(), ViewAction( "Undo" ) );
	EXPECT_TRUE( m_pWindow->GetUndoDock()->isVisible() );
	m_pWindow->GetFunctionDock()->setFloating( true );
	ClickEntry( m_pWindow->GetViewMenu(), ViewAction( "Default Layout" ) );
	for ( QDockWidget *pDock : Docks() )
	{
		EXPECT_TRUE( pDock->isVisible() ) << pDock->windowTitle().toStdString();
		EXPECT_FALSE( pDock->isFloating() ) << pDock->windowTitle().toStdString();
	}

	ClickEntry( m_pWindow->GetViewMenu(), pLock );
	EXPECT_EQ( m_pWindow->GetUndoDock()->features(), QDockWidget::NoDockWidgetFeatures );

	QAction *pInformation = ViewAction( "&Display System Information" );
	ASSERT_NE( pInformation, nullptr );
	EXPECT_TRUE( pInformation->isChecked() );
}

TEST_F( ZolMainWndTest, LayoutComesBackAfterARestartAndABrokenOrOlderOneLeavesTheDefault )
{
	m_pWindow->resize( 1600, 1000 );
	m_pWindow->ResetLayout();
	QApplication::processEvents();
	m_pWindow->OnToggleWindwLock( false );
	m_pWindow->GetUndoDock()->hide();
	m_pWindow->resizeDocks( { m_pWindow->GetPropertyDock() }, { 450 }, Qt::Horizontal );
	QApplication::processEvents();
	const int nPropertyWidth = m_pWindow->GetPropertyDock()->width();
	ASSERT_GT( nPropertyWidth, 420 );

	// What closing writes to the settings file and the next start reads from it.
	m_pApp->SaveSettings( m_pWindow );
	KeyValues3 saved;
	saved.SetToEmptyTable();
	m_pWindow->SaveLayout( &saved );
	ASSERT_NE( saved.FindMember( "property_editor_settings" ), nullptr );
	m_pWindow->ResetLayout();
	QApplication::processEvents();
	ASSERT_TRUE( m_pWindow->GetUndoDock()->isVisible() );
	m_pWindow->RestoreLayout( &saved );
	QApplication::processEvents();
	EXPECT_FALSE( m_pWindow->GetUndoDock()->isVisible() );
	EXPECT_NEAR( m_pWindow->GetPropertyDock()->width(), nPropertyWidth, 4 );

	// A start restores the layout before the window shows: the first showing keeps it.
	m_pWindow->hide();
	m_pWindow->ResetLayout();
	m_pWindow->RestoreLayout( &saved );
	m_pWindow->show();
	QApplication::processEvents();
	EXPECT_FALSE( m_pWindow->GetUndoDock()->isVisible() );
	EXPECT_NEAR( m_pWindow->GetPropertyDock()->width(), nPropertyWidth, 4 );

	// A state that does not decode and one saved by a build with another layout leave the
	// default layout standing.
	const QByteArray older = m_pWindow->saveState( 1 ).toBase64();
	for ( const char *pState : { "not a layout", older.constData() } )
	{
		m_pWindow->ResetLayout();
		QApplication::processEvents();
		const int nDefaultWidth = m_pWindow->GetPropertyDock()->width();
		KeyValues3 broken;
		broken.SetToEmptyTable();
		broken.SetMemberString( "state", pState );
		m_pWindow->RestoreLayout( &broken );
		QApplication::processEvents();
		for ( QDockWidget *pDock : Docks() )
			EXPECT_TRUE( pDock->isVisible() ) << pDock->objectName().toStdString() << " after " << pState;
		EXPECT_EQ( m_pWindow->GetPropertyDock()->width(), nDefaultWidth );
	}
}

TEST_F( ZolMainWndTest, RecentDirectoriesShowTenThatExistAndOpenTheClickedOne )
{
	QMenu *pMenu = m_pWindow->GetRecentDirectoriesMenu();
	ASSERT_NE( pMenu, nullptr );
	ASSERT_TRUE( m_pWindow->GetFileMenu()->actions().contains( pMenu->menuAction() ) );
	pMenu->popup( QPoint( 0, 0 ) );
	QApplication::processEvents();
	ASSERT_EQ( pMenu->actions().size(), 1 );
	EXPECT_EQ( pMenu->actions()[ 0 ]->text(), QStringLiteral( "<No recent directories>" ) );
	EXPECT_FALSE( pMenu->actions()[ 0 ]->isEnabled() );
	pMenu->hide();

	// Twelve directories, the newest first; one is deleted since it was opened.
	for ( int i = 0; i < 12; ++i )
	{
		fs::create_directories( m_Root / "content/dirs" / ( "d" + std::to_string( i ) ) );
		m_pApp->OpenDirectory( MemoryPath( m_Root / "content/dirs" / ( "d" + std::to_string( i ) ) ) );
	}
	fs::remove_all( m_Root / "content/dirs/d10" );
	m_pApp->OpenDirectory( MemoryPath( m_Root / "content/particles/other" ) );
	ASSERT_EQ( m_pApp->GetRecentDirectories().size(), 13u );

	pMenu->popup( QPoint( 0, 0 ) );
	QApplication::processEvents();
	const QList<QAction *> entries = pMenu->actions();
	ASSERT_EQ( entries.size(), CQZolMainWnd::MAX_RECENT_DIRECTORIES_SHOWN );
	// The content root's prefix is left out; the separator is the platform's.
	EXPECT_EQ( entries[ 0 ]->text().toStdString(), "&1 - particles/other" );
	EXPECT_EQ( entries[ 1 ]->text().toStdString(), "&2 - dirs/d11" );
	EXPECT_EQ( entries[ 2 ]->text().toStdString(), "&3 - dirs/d9" );
	EXPECT_EQ( entries[ 9 ]->text().toStdString(), "&10 - dirs/d2" );
	pMenu->hide();

	// Opening an older entry opens its files again and moves it to the front.
	m_pApp->OpenDirectory( MemoryPath( m_Root / "content/dirs/d0" ) );
	ASSERT_TRUE( m_pApp->CloseAllSessions() );
	const size_t nSessions = m_pApp->GetSessions().size();
	pMenu->popup( QPoint( 0, 0 ) );
	QApplication::processEvents();
	QAction *pOther = nullptr;
	for ( QAction *pAction : pMenu->actions() )
	{
		if ( pAction->text().endsWith( QStringLiteral( "particles/other" ) ) )
			pOther = pAction;
	}
	ASSERT_NE( pOther, nullptr );
	QTest::mouseClick( pMenu, Qt::LeftButton, Qt::NoModifier, pMenu->actionGeometry( pOther ).center() );
	QApplication::processEvents();
	EXPECT_EQ( m_pApp->GetSessions().size(), nSessions + 2 ) << "holder.tfxs and lonely.tfxs";
	EXPECT_STREQ( m_pApp->GetRecentDirectories()[ 0 ], MemoryPath( m_Root / "content/particles/other" ) );
}

} // namespace

// ---------------------------------------------------------------------------------------
// The asset pane

namespace
{

QListWidgetItem *ItemNamed( QListWidget *pList, const QString &name )
{
	for ( int i = 0; i < pList->count(); ++i )
	{
		if ( pList->item( i )->text() == name )
			return pList->item( i );
	}
	return nullptr;
}

std::vector<std::string> ShownNames( QListWidget *pList )
{
	std::vector<std::string> names;
	for ( int i = 0; i < pList->count(); ++i )
	{
		if ( !pList->item( i )->isHidden() )
			names.push_back( pList->item( i )->text().toStdString() );
	}
	return names;
}

TEST_F( ZolMainWndTest, AssetPaneBrowsesEverySystemNarrowsByTypingAndOpensWithADoubleClick )
{
	CQZolAssetPane *pPane = m_pWindow->GetAssetPane();
	ASSERT_NE( pPane, nullptr );
	QListWidget *pList = pPane->GetList();
	ASSERT_EQ( pPane->GetView(), CQZolAssetPane::VIEW_BROWSE_ALL );
	CUtlVector<IAsset *> systems;
	m_Services.GetAssetSystem()->GetAssets( &systems, RESOURCE_TYPE_PARTICLE_SYSTEM );
	ASSERT_GT( systems.Count(), 5 );
	EXPECT_EQ( pList->count(), systems.Count() );
	ASSERT_NE( ItemNamed( pList, "particles/samples/campfire.tfxs" ), nullptr );

	QTest::keyClicks( pPane->GetFilterEdit(), "OTHER/" );
	EXPECT_EQ( ShownNames( pList ), ( std::vector<std::string>{ "particles/other/holder.tfxs", "particles/other/lonely.tfxs" } ) );

	QListWidgetItem *pLonely = ItemNamed( pList, "particles/other/lonely.tfxs" );
	const QPoint at = pList->visualItemRect( pLonely ).center();
	QTest::mouseClick( pList->viewport(), Qt::LeftButton, Qt::NoModifier, at );
	QTest::mouseDClick( pList->viewport(), Qt::LeftButton, Qt::NoModifier, at );
	QApplication::processEvents();
	CZolSession *pLonelySession = static_cast<CZolSession *>( m_pApp->GetActiveSession() );
	ASSERT_NE( pLonelySession, nullptr );
	EXPECT_EQ( pLonelySession->GetAsset(), Asset( "particles/other/lonely.tfxs" ) );
	EXPECT_EQ( m_pWindow->statusBar()->currentMessage().toStdString(), "particles/other/lonely.tfxs" );

	// Enter on the other one opens it too; a filter that matches nothing empties the list.
	pList->setCurrentItem( ItemNamed( pList, "particles/other/holder.tfxs" ) );
	QTest::keyClick( pList, Qt::Key_Return );
	EXPECT_EQ( static_cast<CZolSession *>( m_pApp->GetActiveSession() )->GetAsset(), Asset( "particles/other/holder.tfxs" ) );
	EXPECT_EQ( m_pApp->GetSessions().size(), 2u );
	pPane->GetFilterEdit()->setText( "no such system" );
	EXPECT_TRUE( ShownNames( pList ).empty() );
}

TEST_F( ZolMainWndTest, AssetPaneShowsTheOpenSystemsWithTheShownOneSelectedAndSwitchesOnlyOutsideTestMode )
{
	CQZolAssetPane *pPane = m_pWindow->GetAssetPane();
	QListWidget *pList = pPane->GetList();
	pPane->SetView( CQZolAssetPane::VIEW_OPEN );
	EXPECT_EQ( pList->count(), 0 );
	CZolSession *pFire = Open( "particles/samples/fire.tfxs" );
	CZolSession *pSmoke = Open( "particles/samples/smoke.tfxs" );
	ASSERT_TRUE( pFire && pSmoke );
	ASSERT_EQ( pList->count(), 2 );
	EXPECT_EQ( pPane->GetSelectedAssets(), std::vector<IAsset *>{ pSmoke->GetAsset() } );

	// A click selects and, under tests, shows no other session.
	QListWidgetItem *pFireItem = ItemNamed( pList, "particles/samples/fire.tfxs" );
	ASSERT_NE( pFireItem, nullptr );
	QTest::mouseClick( pList->viewport(), Qt::LeftButton, Qt::NoModifier, pList->visualItemRect( pFireItem ).center() );
	EXPECT_EQ( m_pApp->GetActiveSession(), pSmoke );

	ConVar *pTestMode = ConsoleRegistry().FindVar( "zol_disable_test_mode" );
	ASSERT_NE( pTestMode, nullptr );
	pTestMode->SetValue( 1 );
	QListWidgetItem *pSmokeItem = ItemNamed( pList, "particles/samples/smoke.tfxs" );
	QTest::mouseClick( pList->viewport(), Qt::LeftButton, Qt::NoModifier, pList->visualItemRect( pSmokeItem ).center() );
	EXPECT_EQ( m_pApp->GetActiveSession(), pSmoke );
	QTest::mouseClick( pList->viewport(), Qt::LeftButton, Qt::NoModifier, pList->visualItemRect( pFireItem ).center() );
	EXPECT_EQ( m_pApp->GetActiveSession(), pFire );
	// Two selected: nothing changes.
	pSmokeItem = ItemNamed( pList, "particles/samples/smoke.tfxs" );
	QTest::mouseClick( pList->viewport(), Qt::LeftButton, Qt::ControlModifier, pList->visualItemRect( pSmokeItem ).center() );
	EXPECT_EQ( pPane->GetSelectedAssets().size(), 2u );
	EXPECT_EQ( m_pApp->GetActiveSession(), pFire );
	pTestMode->SetValue( 0 );

	// A closed system leaves the view.
	pFire->SetModified( false );
	ASSERT_TRUE( m_pApp->CloseSession( pFire ) );
	ASSERT_EQ( pList->count(), 1 );
	EXPECT_EQ( pList->item( 0 )->text().toStdString(), "particles/samples/smoke.tfxs" );
}

} // namespace

namespace
{

TEST_F( ZolMainWndTest, HelpMenuShowsEveryLoadedKeyBinding )
{
	CQInputBindMenu *pHelp = m_pWindow->GetHelpMenu();
	ASSERT_NE( pHelp, nullptr );
	ASSERT_EQ( m_pWindow->menuBar()->actions().last()->menu(), pHelp );
	EXPECT_EQ( m_pWindow->menuBar()->actions().last()->text(), QStringLiteral( "&Help" ) );
	QAction *pShow = pHelp->GetKeyBindingsAction();
	ASSERT_EQ( pHelp->actions().value( 1 ), pShow );
	EXPECT_EQ( pShow->text(), QStringLiteral( "Show Key Bindings" ) );
	ClickEntry( pHelp, pShow );
	CQInputBindEditor *pEditor = m_pWindow->GetInputBindEditor();
	ASSERT_NE( pEditor, nullptr );
	EXPECT_TRUE( pEditor->isVisible() );
	const size_t nBindings = CQInputBindManager::Get()->GetEngine().GetBindingList().GetBindings().size();
	ASSERT_GT( nBindings, 0u );
	EXPECT_EQ( pEditor->GetTable()->rowCount(), int( nBindings ) );
	// A second time shows the same window.
	ClickEntry( pHelp, pShow );
	EXPECT_EQ( m_pWindow->GetInputBindEditor(), pEditor );
}

TEST_F( ZolMainWndTest, CommandFilterOfTheFunctionListUndoesAnEditAndItsDeveloperHelpIsTheFunctionsHelp )
{
	CZolSession *pSession = Open( "particles/samples/embers.tfxs" );
	ASSERT_NE( pSession, nullptr );
	QApplication::processEvents();
	ASSERT_NE( pSession->GetDoc()->AddFunction( "", "C_OP_Decay", PARTICLE_FUNCTION_OPERATOR ), nullptr );
	const int nSteps = pSession->GetDoc()->GetUndoHistory()->GetStepCount();
	ASSERT_GT( nSteps, 0 );
	m_pWindow->GetFunctionList()->setFocus();
	QApplication::processEvents();

	// Help > Command Filter, "undo", Enter: the session's Undo runs as Ctrl+Z would.
	CQInputBindMenu *pHelp = m_pWindow->GetHelpMenu();
	pHelp->popup( QPoint( 0, 0 ) );
	QApplication::processEvents();
	QTest::mouseClick( pHelp, Qt::LeftButton, Qt::NoModifier, pHelp->actionGeometry( pHelp->GetCommandFilterMenu()->menuAction() ).center() );
	ASSERT_TRUE( QTest::qWaitFor( [ pHelp ]() { return pHelp->GetCommandFilterMenu()->isVisible(); }, 2000 ) );
	CQInputBindCommandList *pList = pHelp->GetCommandList();
	QTest::keyClicks( pList->GetFilter()->GetEdit(), "session.undo" );
	ASSERT_EQ( pList->GetShownCommands().size(), 1 );
	EXPECT_TRUE( pList->GetShownCommands()[ 0 ].startsWith( "ZolSession.Undo [" ) ) << pList->GetShownCommands()[ 0 ].toStdString();
	QTest::keyClick( pList->GetFilter()->GetEdit(), Qt::Key_Return );
	QApplication::processEvents();
	EXPECT_EQ( pSession->GetDoc()->GetUndoHistory()->GetStepCount(), nSteps - 1 );
	EXPECT_FALSE( pHelp->isVisible() );

	std::vector<QUrl> opened;
	CQInputBindMenu::SetUrlOpener( [ &opened ]( const QUrl &url ) {
		opened.push_back( url );
		return true;
	} );
	m_pWindow->GetFunctionList()->setFocus();
	ClickEntry( pHelp, pHelp->GetHelpUrlAction() );
	CQInputBindMenu::SetUrlOpener( {} );
	ASSERT_EQ( opened.size(), 1u );
	EXPECT_TRUE( opened[ 0 ].toLocalFile().endsWith( "/game/tools/help/particles_help.txt" ) ) << opened[ 0 ].toString().toStdString();
	EXPECT_TRUE( QFileInfo::exists( opened[ 0 ].toLocalFile() ) );
}

TEST_F( ZolMainWndTest, HelpMenuOpensTheInputDebuggerOfTheEditor )
{
	CQInputBindMenu *pHelp = m_pWindow->GetHelpMenu();
	QAction *pDebugger = nullptr;
	for ( QAction *pAction : pHelp->actions() )
	{
		if ( pAction->text() == QStringLiteral( "Input Debugger" ) )
			pDebugger = pAction;
	}
	ASSERT_NE( pDebugger, nullptr );
	ClickEntry( pHelp, pDebugger );
	CQInputDebugger *pWindow = m_pWindow->GetInputDebugger();
	ASSERT_NE( pWindow, nullptr );
	EXPECT_TRUE( pWindow->isVisible() );
	EXPECT_EQ( pWindow->windowTitle(), QStringLiteral( "Input Debugger [Zol]" ) );
	EXPECT_EQ( CQInputBindManager::Get()->GetEngine().GetTraceListener(), pWindow );
	pWindow->close();
	EXPECT_EQ( CQInputBindManager::Get()->GetEngine().GetTraceListener(), nullptr );
}

} // namespace
