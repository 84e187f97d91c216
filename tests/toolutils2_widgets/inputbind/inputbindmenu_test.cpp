// The help menu's command list, its entries, and the input debugger, driven with real Qt
// events: what the user types and clicks runs commands, and the debugger shows what the
// bind manager made of the keys.

#include <gtest/gtest.h>

#include <QApplication>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPointer>
#include <QTest>
#include <QUrl>
#include <memory>
#include <string>
#include <vector>

#include "core/host/filesystem.h"
#include "core/host/scriptedprompt.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/bindablewidgetinfo.h"
#include "tools/toolutils2/widgets/inputbind/bindnamefilterwidget.h"
#include "tools/toolutils2/widgets/inputbind/inputbindcommandlist.h"
#include "tools/toolutils2/widgets/inputbind/inputbindeditor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmenu.h"
#include "tools/toolutils2/widgets/inputbind/inputdebugger.h"
#include "tools/toolutils2/widgets/inputbind/inputkeystatevisualizer.h"

namespace
{
class CMenuTestTarget final : public IBindTarget
{
public:
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	std::vector<std::string> m_Calls;
};

using MenuTestCommand_t = CBindTargetDescriptor<CMenuTestTarget>::CSpecificTargetBindableCommand;

void BuildMenuTestCommands( CBindTargetDescriptor<CMenuTestTarget> &d )
{
	for ( const char *pName : { "MenuTestOpen", "MenuTestClose", "MenuTestRename" } )
		d.AddCommand( pName ).SetHandler( BIND_STAGE_CLICK, [ pName ]( CMenuTestTarget *pTarget ) { pTarget->m_Calls.push_back( pName ); } );
}

CBindTargetDescriptor<CMenuTestTarget> s_MenuDescriptor( "MenuTest", "CMenuTestTarget", &BuildMenuTestCommands );

const CBindTargetDescriptorBase *CMenuTestTarget::GetBindTargetDescriptor() const
{
	return &s_MenuDescriptor;
}

void LoadMenuTestBindings()
{
	static bool s_bLoaded = false;
	if ( s_bLoaded )
		return;
	s_bLoaded = true;
	const char *pText = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n"
						"{ m_Bindings = [ { m_Input = \"F9\" m_Context = \"MenuTest\" m_Command = \"MenuTestRename\" } ] }\n";
	CUtlString strError;
	CInputBindEngine &engine = CQInputBindManager::Get()->GetEngine();
	ASSERT_EQ( engine.GetBindingList().LoadFromText( pText, strlen( pText ), "menutest", &strError ), BINDING_LOAD_OK ) << strError.Get();
	engine.MarkDirty();
}

// A tool window with a bindable panel inside it, the panel focused.
class QtInputBindMenu : public ::testing::Test
{
protected:
	void SetUp() override
	{
		LoadMenuTestBindings();
		m_pWindow = std::make_unique<QWidget>();
		m_pWindow->resize( 300, 200 );
		m_pPanel = new QWidget( m_pWindow.get() );
		m_pPanel->setObjectName( "panel" );
		m_pPanel->setGeometry( 0, 0, 150, 100 );
		m_pPlain = new QLineEdit( m_pWindow.get() );
		m_pPlain->setGeometry( 150, 0, 150, 30 );
		CQInputBindManager::Get()->RegisterTarget( m_pPanel, &m_Target );
		m_pMenu = new CQInputBindMenu( "Help", m_pWindow.get() );
		m_pWindow->show();
		QApplication::setActiveWindow( m_pWindow.get() );
		m_pPanel->setFocus();
		QApplication::processEvents();
	}
	void TearDown() override
	{
		CQInputBindManager::Get()->UnregisterTarget( &m_Target );
		m_pWindow.reset();
		CQInputBindMenu::SetUrlOpener( {} );
	}

	// Opens Help > Command Filter as the mouse would.
	CQInputBindCommandList *OpenCommandFilter()
	{
		m_pMenu->popup( QPoint( 0, 0 ) );
		QApplication::processEvents();
		QMenu *pSubmenu = m_pMenu->GetCommandFilterMenu();
		// A click on the entry opens the submenu after the style's short delay.
		QTest::mouseClick( m_pMenu, Qt::LeftButton, Qt::NoModifier, m_pMenu->actionGeometry( pSubmenu->menuAction() ).center() );
		EXPECT_TRUE( QTest::qWaitFor( [ pSubmenu ]() { return pSubmenu->isVisible(); }, 2000 ) );
		return m_pMenu->GetCommandList();
	}

	void CloseMenus()
	{
		m_pMenu->GetCommandFilterMenu()->hide();
		m_pMenu->hide();
		QApplication::processEvents();
	}

	std::unique_ptr<QWidget> m_pWindow;
	QWidget *m_pPanel = nullptr;
	QLineEdit *m_pPlain = nullptr;
	CQInputBindMenu *m_pMenu = nullptr;
	CMenuTestTarget m_Target;
};

TEST_F( QtInputBindMenu, EntriesAndCommandListOfTheFocusedPanel )
{
	QStringList texts;
	for ( QAction *pAction : m_pMenu->actions() )
		texts.append( pAction->text() );
	EXPECT_EQ( texts.mid( 0, 3 ), QStringList( { "Visit Developer Help URL", "Show Key Bindings", "About..." } ) );
	EXPECT_EQ( texts.last(), QStringLiteral( "Command Filter" ) );

	CQInputBindCommandList *pList = OpenCommandFilter();
	const QStringList shown = pList->GetShownCommands();
	// The panel's commands first (its own key shown), the global ones after them.
	ASSERT_GE( shown.size(), 3 );
	EXPECT_EQ( shown.mid( 0, 3 ), QStringList( { "MenuTest.MenuTestOpen", "MenuTest.MenuTestClose", "MenuTest.MenuTestRename [F9]" } ) );
	EXPECT_GT( shown.size(), 3 ) << "the global commands are listed as well";
	CloseMenus();

	// With the focus in a widget that has no commands, only the global ones are left.
	m_pPlain->setFocus();
	QApplication::processEvents();
	pList = OpenCommandFilter();
	EXPECT_FALSE( pList->GetShownCommands().join( ' ' ).contains( "MenuTest." ) );
	EXPECT_EQ( pList->GetShownCommands().size(), shown.size() - 3 );
}

TEST_F( QtInputBindMenu, TypedWordsNarrowTheListAndAClickRunsTheCommand )
{
	CQInputBindCommandList *pList = OpenCommandFilter();
	QLineEdit *pEdit = pList->GetFilter()->GetEdit();
	EXPECT_TRUE( pEdit->hasFocus() ) << "the filter takes the keys as soon as the list opens";
	QTest::keyClicks( pEdit, "rename MENU" );
	ASSERT_EQ( pList->GetShownCommands(), QStringList( { "MenuTest.MenuTestRename [F9]" } ) );

	QListWidget *pRows = pList->GetList();
	QListWidgetItem *pItem = pRows->findItems( "MenuTest.MenuTestRename [F9]", Qt::MatchExactly ).value( 0 );
	ASSERT_NE( pItem, nullptr );
	QTest::mouseClick( pRows->viewport(), Qt::LeftButton, Qt::NoModifier, pRows->visualItemRect( pItem ).center() );
	QApplication::processEvents();
	EXPECT_EQ( m_Target.m_Calls, std::vector<std::string>( { "MenuTestRename" } ) );
	EXPECT_FALSE( m_pMenu->isVisible() );
	EXPECT_FALSE( m_pMenu->GetCommandFilterMenu()->isVisible() );
}

TEST_F( QtInputBindMenu, ReturnRunsTheFirstShownCommandAndNothingWhenNoneIsShown )
{
	CQInputBindCommandList *pList = OpenCommandFilter();
	QLineEdit *pEdit = pList->GetFilter()->GetEdit();
	QTest::keyClicks( pEdit, "menutest clo" );
	QTest::keyClick( pEdit, Qt::Key_Return );
	EXPECT_EQ( m_Target.m_Calls, std::vector<std::string>( { "MenuTestClose" } ) );

	pList = OpenCommandFilter();
	EXPECT_TRUE( pList->GetFilter()->GetText().isEmpty() ) << "each opening starts unfiltered";
	QTest::keyClicks( pList->GetFilter()->GetEdit(), "no such command" );
	EXPECT_TRUE( pList->GetShownCommands().isEmpty() );
	QTest::keyClick( pList->GetFilter()->GetEdit(), Qt::Key_Return );
	EXPECT_EQ( m_Target.m_Calls.size(), 1u );
	CloseMenus();
}

TEST_F( QtInputBindMenu, DeveloperHelpOpensTheHelpFileOfTheFocusedContextOrSaysThereIsNone )
{
	CScriptedPrompt prompt;
	CScopedPrompt scopedPrompt( &prompt );
	std::vector<QUrl> opened;
	CQInputBindMenu::SetUrlOpener( [ &opened ]( const QUrl &url ) {
		opened.push_back( url );
		return true;
	} );
	CFileSystem fileSystem;
	fileSystem.SetupFromRoots( ZOL_SOURCE_DIR "/content/game", ZOL_SOURCE_DIR "/content/content" );
	IFileSystem *pPrevious = GetFileSystem();
	SetFileSystem( &fileSystem );

	// The panel has no help: the user is told so, nothing opens.
	m_pMenu->VisitDeveloperHelp();
	EXPECT_TRUE( opened.empty() );
	ASSERT_EQ( prompt.GetRecords().Count(), 1 );
	EXPECT_STREQ( prompt.GetRecords()[ 0 ].m_strTitle.Get(), "Developer Help" );
	EXPECT_NE( strstr( prompt.GetRecords()[ 0 ].m_strText.Get(), "no developer help for \"MenuTest\"" ), nullptr ) << prompt.GetRecords()[ 0 ].m_strText.Get();

	// The window around it is about the particle functions, whose help ships.
	CMenuTestTarget outerTarget;
	CQInputBindManager::Get()->RegisterTarget( m_pWindow.get(), &outerTarget );
	CQBindableWidgetInfo::FromObject( m_pWindow.get() )->GetTargets().SetHelpContext( "particles" );
	m_pMenu->popup( QPoint( 0, 0 ) );
	QApplication::processEvents();
	QTest::mouseClick( m_pMenu, Qt::LeftButton, Qt::NoModifier, m_pMenu->actionGeometry( m_pMenu->GetHelpUrlAction() ).center() );
	QApplication::processEvents();
	ASSERT_EQ( opened.size(), 1u );
	EXPECT_TRUE( opened[ 0 ].isLocalFile() );
	EXPECT_TRUE( opened[ 0 ].toLocalFile().endsWith( "/content/game/tools/help/particles_help.txt" ) ) << opened[ 0 ].toString().toStdString();
	EXPECT_EQ( prompt.GetRecords().Count(), 1 );
	CQInputBindManager::Get()->UnregisterTarget( &outerTarget );
	SetFileSystem( pPrevious );
}

TEST_F( QtInputBindMenu, KeyBindingsOpensOneWindowAndAboutIsAMessage )
{
	CScriptedPrompt prompt;
	CScopedPrompt scopedPrompt( &prompt );
	m_pMenu->SetAboutText( "Zol test tool" );
	m_pMenu->GetAboutAction()->trigger();
	ASSERT_EQ( prompt.GetRecords().Count(), 1 );
	EXPECT_STREQ( prompt.GetRecords()[ 0 ].m_strText.Get(), "Zol test tool" );

	m_pMenu->GetKeyBindingsAction()->trigger();
	CQInputBindEditor *pEditor = m_pMenu->GetInputBindEditor();
	ASSERT_NE( pEditor, nullptr );
	EXPECT_TRUE( pEditor->isVisible() );
	EXPECT_EQ( pEditor->window(), pEditor ) << "a window of its own";
	m_pMenu->GetKeyBindingsAction()->trigger();
	EXPECT_EQ( m_pMenu->GetInputBindEditor(), pEditor );
}

// ---------------------------------------------------------------------------------------
// The input debugger

class QtInputDebugger : public QtInputBindMenu
{
protected:
	void SetUp() override
	{
		QtInputBindMenu::SetUp();
		m_pDebugger = std::make_unique<CQInputDebugger>( CQInputBindManager::Get(), "Test" );
		m_pDebugger->show();
		// The new window's activation arrives with the events; the tool window takes it back.
		QApplication::processEvents();
		QApplication::setActiveWindow( m_pWindow.get() );
		m_pPanel->setFocus();
		QApplication::processEvents();
	}
	void TearDown() override
	{
		m_pDebugger.reset();
		QtInputBindMenu::TearDown();
	}
	std::unique_ptr<CQInputDebugger> m_pDebugger;
};

TEST_F( QtInputDebugger, KeyPressAndReleaseOnABindablePanelAreTracedWithTheirCommand )
{
	EXPECT_EQ( m_pDebugger->windowTitle(), QStringLiteral( "Input Debugger [Test]" ) );
	QTest::keyPress( m_pPanel, Qt::Key_F9 );
	QApplication::processEvents();
	EXPECT_EQ( m_pDebugger->GetKeyStateVisualizer()->GetDownCodes(), QStringList( { "F9" } ) );
	QTest::keyRelease( m_pPanel, Qt::Key_F9 );
	QApplication::processEvents();
	EXPECT_TRUE( m_pDebugger->GetKeyStateVisualizer()->GetDownCodes().isEmpty() );
	EXPECT_EQ( m_Target.m_Calls, std::vector<std::string>( { "MenuTestRename" } ) );

	const QStringList lines = m_pDebugger->GetTraceLines();
	const int nPress = lines.indexOf( "F9 PRESS" );
	const int nRelease = lines.indexOf( "F9 RELEASE" );
	ASSERT_GE( nPress, 0 ) << lines.join( '\n' ).toStdString();
	ASSERT_GT( nRelease, nPress ) << lines.join( '\n' ).toStdString();
	// Each event's trace lines follow it.
	EXPECT_GT( lines.indexOf( "    - Add Active Code: F9" ), nPress );
	const int nBegin = lines.indexOf( "    EXEC-BEGIN: MenuTest.MenuTestRename" );
	EXPECT_GT( nBegin, nPress );
	EXPECT_LT( nBegin, nRelease );
	EXPECT_GT( lines.indexOf( "    - Remove Active Code: F9" ), nRelease );

	// Hidden, it no longer listens.
	m_pDebugger->hide();
	EXPECT_EQ( CQInputBindManager::Get()->GetEngine().GetTraceListener(), nullptr );
	QTest::keyClick( m_pPanel, Qt::Key_F9 );
	EXPECT_EQ( m_pDebugger->GetTraceLines(), lines );
	m_pDebugger->show();
	m_pDebugger->ClearTrace();
	EXPECT_TRUE( m_pDebugger->GetTraceLines().isEmpty() );
}

TEST_F( QtInputDebugger, FocusChainListsEachTargetFromTheFocusOutwardsOrNoWidget )
{
	CMenuTestTarget outerTarget;
	CQInputBindManager::Get()->RegisterTarget( m_pWindow.get(), &outerTarget );
	m_pDebugger->RefreshState();
	QStringList chain = m_pDebugger->GetChainView()->toPlainText().split( '\n' );
	ASSERT_GE( chain.size(), 3 ) << chain.join( '\n' ).toStdString();
	EXPECT_EQ( chain[ 0 ], QStringLiteral( "MenuTest [W = QWidget \"panel\", C = CMenuTestTarget, Instance = %1, Mode = 0x0]" ).arg( m_Target.GetBindInstanceId() ) );
	EXPECT_EQ( chain[ 1 ], QStringLiteral( "MenuTest [W = QWidget, C = CMenuTestTarget, Instance = %1, Mode = 0x0]" ).arg( outerTarget.GetBindInstanceId() ) );
	EXPECT_NE( m_Target.GetBindInstanceId(), outerTarget.GetBindInstanceId() );
	EXPECT_TRUE( chain.last().contains( "W = GlobalTopLevel" ) ) << chain.last().toStdString();

	// The chain follows the focus without a key being pressed.
	m_pPlain->setFocus();
	QApplication::processEvents();
	chain = m_pDebugger->GetChainView()->toPlainText().split( '\n' );
	EXPECT_EQ( chain[ 0 ], QStringLiteral( "MenuTest [W = QWidget, C = CMenuTestTarget, Instance = %1, Mode = 0x0]" ).arg( outerTarget.GetBindInstanceId() ) );

	m_pPlain->clearFocus();
	QApplication::processEvents();
	ASSERT_EQ( QApplication::focusWidget(), nullptr );
	chain = m_pDebugger->GetChainView()->toPlainText().split( '\n' );
	EXPECT_EQ( chain.first(), QStringLiteral( "[NoWidget]" ) );
	EXPECT_TRUE( chain.last().contains( "W = GlobalTopLevel" ) );
	CQInputBindManager::Get()->UnregisterTarget( &outerTarget );
}

} // namespace

namespace
{
TEST_F( QtInputBindMenu, GlobalShowInputDebuggerCommandOpensOneDebuggerOwnedByTheWindow )
{
	IBindTarget *pGlobal = CQInputBindManager::Get()->GetGlobalInfo()->GetTargets().GetTargets().front();
	ASSERT_TRUE( CQInputBindManager::Get()->InvokeCommand( pGlobal, BindToken( "ShowInputDebugger" ) ) );
	CQInputDebugger *pDebugger = m_pWindow->findChild<CQInputDebugger *>();
	ASSERT_NE( pDebugger, nullptr );
	EXPECT_TRUE( pDebugger->isVisible() );
	EXPECT_TRUE( pDebugger->isWindow() );
	ASSERT_TRUE( CQInputBindManager::Get()->InvokeCommand( pGlobal, BindToken( "ShowInputDebugger" ) ) );
	EXPECT_EQ( m_pWindow->findChildren<CQInputDebugger *>().size(), 1 ) << "the open one is shown again";
}
} // namespace

namespace
{
TEST_F( QtInputBindMenu, GlobalAllCommandsPopupListsTheFocusedPanelsCommandsAndRunsOne )
{
	IBindTarget *pGlobal = CQInputBindManager::Get()->GetGlobalInfo()->GetTargets().GetTargets().front();
	ASSERT_TRUE( CQInputBindManager::Get()->InvokeCommand( pGlobal, BindToken( "ShowAllCommandsPopup" ) ) );
	QApplication::processEvents();
	QPointer<QMenu> pPopup = m_pWindow->findChild<QMenu *>( "AllCommandsPopup" );
	ASSERT_FALSE( pPopup.isNull() );
	EXPECT_TRUE( pPopup->isVisible() );
	CQInputBindCommandList *pList = pPopup->findChild<CQInputBindCommandList *>();
	ASSERT_NE( pList, nullptr );
	EXPECT_TRUE( pList->GetShownCommands().contains( "MenuTest.MenuTestOpen" ) );
	QTest::keyClicks( pList->GetFilter()->GetEdit(), "testopen" );
	QTest::keyClick( pList->GetFilter()->GetEdit(), Qt::Key_Return );
	QApplication::processEvents();
	EXPECT_EQ( m_Target.m_Calls, std::vector<std::string>( { "MenuTestOpen" } ) );
	QCoreApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete );
	EXPECT_TRUE( pPopup.isNull() ) << "a dismissed popup does not pile up in the window";
}
} // namespace
