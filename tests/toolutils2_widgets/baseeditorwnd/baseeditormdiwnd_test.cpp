// The multi-document window: sub-windows follow the sessions, activating one makes its
// session current without touching the history, and closing one closes its session with
// the save question first.

#include <gtest/gtest.h>

#include <memory>

#include <QApplication>
#include <QMenu>
#include <QMenuBar>
#include <QPointer>

#include "tests/toolutils2_widgets/baseeditorwnd/mditestapp.h"
#include "tools/toolutils2/widgets/baseeditorwnd/mdiarea.h"

namespace
{
class BaseEditorMdiWndTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pApp = std::make_unique<CMdiTestApp>();
		Window()->show();
		QApplication::processEvents();
	}
	void TearDown() override
	{
		m_pApp.reset();
		EXPECT_FALSE( m_Prompt.HasFailures() );
		EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
	}

	CQBaseEditorMdiWnd *Window() const { return m_pApp->GetWindow(); }
	CQMdiArea *Area() const { return Window()->GetMdiArea(); }
	static void RunDeferredDeletes() { QCoreApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete ); }

	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	std::unique_ptr<CMdiTestApp> m_pApp;
};
} // namespace

TEST_F( BaseEditorMdiWndTest, EachNewSessionGetsItsOwnSubWindowInTheArea )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	CBaseEditorSession *pB = m_pApp->NewSession();
	ASSERT_TRUE( pA && pB );
	ASSERT_EQ( Area()->subWindowList().size(), 2 );
	QMdiSubWindow *pSubA = Window()->FindSubWindow( pA );
	QMdiSubWindow *pSubB = Window()->FindSubWindow( pB );
	ASSERT_TRUE( pSubA && pSubB );
	EXPECT_NE( pSubA, pSubB );
	EXPECT_TRUE( Area()->subWindowList().contains( pSubA ) );
	EXPECT_TRUE( pSubA->testAttribute( Qt::WA_DeleteOnClose ) );
	EXPECT_EQ( Window()->FindSubWindowSession( pSubB ), pB );
	// The newest session is current, with its sub-window active in the area.
	EXPECT_EQ( m_pApp->GetActiveSession(), pB );
	EXPECT_EQ( Area()->activeSubWindow(), pSubB );
}

TEST_F( BaseEditorMdiWndTest, ANewSessionEntersTheHistoryEvenThoughItsSubWindowShowsFirst )
{
	m_pApp->NewSession();
	m_pApp->NewSession();
	EXPECT_EQ( m_pApp->GetSessionHistory().Count(), 2 );
	EXPECT_EQ( m_pApp->GetSessionHistory().GetPosition(), 1 );
}

TEST_F( BaseEditorMdiWndTest, ActivatingASubWindowMakesItsSessionCurrentWithoutHistory )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	CBaseEditorSession *pB = m_pApp->NewSession();
	ASSERT_EQ( m_pApp->GetActiveSession(), pB );
	const int nHistoryCount = m_pApp->GetSessionHistory().Count();
	const int nHistoryPosition = m_pApp->GetSessionHistory().GetPosition();

	Area()->setActiveSubWindow( Window()->FindSubWindow( pA ) );
	QApplication::processEvents();

	EXPECT_EQ( m_pApp->GetActiveSession(), pA );
	EXPECT_EQ( m_pApp->GetSessionHistory().Count(), nHistoryCount );
	EXPECT_EQ( m_pApp->GetSessionHistory().GetPosition(), nHistoryPosition );
	// The history still stands on B: the area's choice didn't enter it.
	EXPECT_EQ( m_pApp->GetSessionHistory().GetEntry( nHistoryPosition ), pB );
}

TEST_F( BaseEditorMdiWndTest, TheAreaFollowsTheFrameworksCurrentSession )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	m_pApp->NewSession();
	m_pApp->SetActiveEditorSession( pA, false, false );
	EXPECT_EQ( Area()->activeSubWindow(), Window()->FindSubWindow( pA ) );

	// Back through the history moves the area as well.
	m_pApp->ActivatePreviousEditorSession();
	m_pApp->ActivatePreviousEditorSession();
	EXPECT_EQ( Area()->activeSubWindow(), Window()->FindSubWindow( m_pApp->GetActiveSession() ) );
	EXPECT_EQ( m_pApp->GetActiveSession(), pA );
}

TEST_F( BaseEditorMdiWndTest, CancellingTheSaveQuestionKeepsTheSessionAndItsSubWindow )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	pA->SetModified( true );
	QPointer<QMdiSubWindow> pSubA = Window()->FindSubWindow( pA );
	ASSERT_TRUE( pSubA );

	m_Prompt.ExpectQuestion( PROMPT_BUTTON_CANCEL, "Save changes?" );
	EXPECT_FALSE( pSubA->close() );
	RunDeferredDeletes();

	ASSERT_TRUE( pSubA );
	EXPECT_EQ( m_pApp->GetSessions().size(), 1u );
	EXPECT_EQ( m_pApp->GetActiveSession(), pA );
	EXPECT_TRUE( pA->IsModified() );
	EXPECT_TRUE( Area()->subWindowList().contains( pSubA ) );
	EXPECT_EQ( Window()->FindSubWindow( pA ), pSubA );
}

TEST_F( BaseEditorMdiWndTest, ClosingASubWindowClosesItsSessionAndDeletesTheSubWindowLater )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	CBaseEditorSession *pB = m_pApp->NewSession();
	pA->SetModified( true );
	QPointer<QMdiSubWindow> pSubA = Window()->FindSubWindow( pA );

	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
	EXPECT_TRUE( pSubA->close() );
	ASSERT_EQ( m_pApp->GetSessions().size(), 1u );
	EXPECT_EQ( m_pApp->GetSessions()[ 0 ], pB );
	EXPECT_EQ( Area()->subWindowList().size(), 1 );
	EXPECT_FALSE( Area()->subWindowList().contains( pSubA.data() ) );
	RunDeferredDeletes();
	EXPECT_FALSE( pSubA );
}

TEST_F( BaseEditorMdiWndTest, ClosingTheSessionFromTheFrameworkAsksOnceAndTakesItsSubWindow )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	pA->SetModified( true );
	QPointer<QMdiSubWindow> pSubA = Window()->FindSubWindow( pA );

	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
	EXPECT_TRUE( m_pApp->CloseSession( pA ) );
	RunDeferredDeletes();
	EXPECT_FALSE( pSubA );
	EXPECT_TRUE( Area()->subWindowList().isEmpty() );
	EXPECT_EQ( m_Prompt.CountRecords( PROMPT_KIND_QUESTION ), 1 );
}

TEST_F( BaseEditorMdiWndTest, ClosingTheWindowWithACancelledSaveKeepsEverySubWindow )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	CBaseEditorSession *pB = m_pApp->NewSession();
	pA->SetModified( true );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_CANCEL, "Save changes?" );
	Window()->close();
	RunDeferredDeletes();
	EXPECT_EQ( m_pApp->GetSessions().size(), 2u );
	EXPECT_EQ( Area()->subWindowList().size(), 2 );
	EXPECT_TRUE( Window()->FindSubWindow( pA ) && Window()->FindSubWindow( pB ) );
	EXPECT_TRUE( Window()->isVisible() );
}

TEST_F( BaseEditorMdiWndTest, TheWindowMenuIsInTheMenuBarAndListsTheSubWindows )
{
	QMenu *pWindowMenu = Area()->GetWindowMenu();
	ASSERT_TRUE( pWindowMenu );
	EXPECT_TRUE( Window()->menuBar()->actions().contains( pWindowMenu->menuAction() ) );

	CBaseEditorSession *pA = m_pApp->NewSession();
	CBaseEditorSession *pB = m_pApp->NewSession();
	Area()->UpdateWindowMenu();
	int nListed = 0;
	QAction *pEntryForA = nullptr;
	for ( QAction *pAction : pWindowMenu->actions() )
	{
		if ( !pAction->isCheckable() )
			continue;
		++nListed;
		if ( pAction->text().endsWith( QString::fromUtf8( pA->GetFileName() ) ) )
			pEntryForA = pAction;
		EXPECT_EQ( pAction->isChecked(), pAction->text().endsWith( QString::fromUtf8( pB->GetFileName() ) ) );
	}
	EXPECT_EQ( nListed, 2 );
	ASSERT_TRUE( pEntryForA );
	pEntryForA->trigger();
	EXPECT_EQ( m_pApp->GetActiveSession(), pA );
}

TEST( BaseEditorMdiWndSharedView, AReplacedAreaLeavesTheSharedViewInTheMiddleAndSessionsWork )
{
	CScriptedPrompt prompt;
	CScopedPrompt scopedPrompt( &prompt );
	CMdiTestApp app( true );
	CQSharedViewTestWnd *pWindow = static_cast<CQSharedViewTestWnd *>( app.GetWindow() );
	EXPECT_EQ( pWindow->GetMdiArea(), nullptr );
	EXPECT_EQ( pWindow->centralWidget(), pWindow->m_pSharedView );
	for ( QAction *pAction : pWindow->menuBar()->actions() )
		EXPECT_NE( pAction->text(), "&Window" );

	CBaseEditorSession *pA = app.NewSession();
	CBaseEditorSession *pB = app.NewSession();
	EXPECT_EQ( pWindow->FindSubWindow( pA ), nullptr );
	app.SetActiveEditorSession( pA, false, false );
	EXPECT_EQ( app.GetActiveSession(), pA );
	EXPECT_TRUE( app.CloseSession( pB ) );
	EXPECT_EQ( app.GetSessions().size(), 1u );
	EXPECT_FALSE( prompt.HasFailures() );
}

TEST_F( BaseEditorMdiWndTest, AfterAClosedSessionTheAreaShowsWhatTheFrameworkMadeCurrent )
{
	CBaseEditorSession *pA = m_pApp->NewSession();
	CBaseEditorSession *pB = m_pApp->NewSession();
	ASSERT_TRUE( m_pApp->CloseSession( pB ) );
	// Without a tool's choice of another session nothing is current, and no sub-window
	// may look as if its session were.
	EXPECT_EQ( m_pApp->GetActiveSession(), nullptr );
	EXPECT_EQ( Area()->activeSubWindow(), nullptr );

	// So picking the one left makes it current.
	Area()->setActiveSubWindow( Window()->FindSubWindow( pA ) );
	EXPECT_EQ( m_pApp->GetActiveSession(), pA );
}
