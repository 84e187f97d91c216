// The session cycling popup: what it shows, how the selection moves, and that closing it
// in any way makes the selected session current with history.

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>

#include <QApplication>
#include <QDir>
#include <QFile>
#include <QLabel>
#include <QPointer>
#include <QPushButton>

#include "core/host/filesystem.h"
#include "tests/toolutils2_widgets/baseeditorwnd/mditestapp.h"
#include "tools/toolutils2/widgets/baseeditorwnd/gameimagepaths.h"
#include "tools/toolutils2/widgets/baseeditorwnd/sessioncyclewidget.h"

namespace
{
// Points "game:" at the content shipped with the source.
void RegisterShippedGameImages()
{
	namespace fs = std::filesystem;
	fs::path root = fs::path( ZOL_SOURCE_DIR ) / "content";
	CFileSystem fileSystem;
	fileSystem.SetupFromRoots( ( root / "game" ).c_str(), ( root / "content" ).c_str() );
	SetFileSystem( &fileSystem );
	RegisterGameImageSearchPaths();
	SetFileSystem( nullptr );
}

class SessionCycleWidgetTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pApp = std::make_unique<CMdiTestApp>();
		RegisterShippedGameImages();
		Window()->show();
		QApplication::processEvents();
	}
	void TearDown() override
	{
		m_pApp.reset();
		EXPECT_FALSE( m_Prompt.HasFailures() );
	}

	CQBaseEditorMdiWnd *Window() const { return m_pApp->GetWindow(); }

	// Sessions with the given base names, the last one current.
	std::vector<CBaseEditorSession *> MakeSessions( std::initializer_list<const char *> names )
	{
		std::vector<CBaseEditorSession *> sessions;
		for ( const char *pName : names )
		{
			CBaseEditorSession *pSession = m_pApp->NewSession();
			CUtlString strPath;
			strPath.Format( "\\content\\particles\\%s.tfxs", pName );
			pSession->SetFileName( strPath );
			sessions.push_back( pSession );
		}
		return sessions;
	}

	// Opens the popup as the framework does, held open until the test lets go.
	CQSessionCycleWidget *OpenCycle( bool bForward )
	{
		m_pApp->OpenSessionCycling( bForward );
		CQSessionCycleWidget *pWidget = Window()->GetSessionCycleWidget();
		if ( pWidget )
			pWidget->SetKeepActiveQuery( [ this ]() { return m_bKeepActiveHeld; } );
		return pWidget;
	}

	static QStringList ButtonTexts( const CQSessionCycleWidget *pWidget )
	{
		QStringList texts;
		for ( int i = 0; i < pWidget->GetSessionButtonCount(); ++i )
			texts << pWidget->GetSessionButton( i )->text();
		return texts;
	}

	static void RunDeferredDeletes() { QCoreApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete ); }

	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	std::unique_ptr<CMdiTestApp> m_pApp;
	bool m_bKeepActiveHeld = true;
};
} // namespace

TEST_F( SessionCycleWidgetTest, IsAFramelessToolWindowOfFixedSizeCentredOnTheMainWindow )
{
	MakeSessions( { "fire" } );
	Window()->setGeometry( 100, 80, 900, 700 );
	QPointer<CQSessionCycleWidget> pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	EXPECT_TRUE( pWidget->windowFlags().testFlag( Qt::FramelessWindowHint ) );
	EXPECT_EQ( pWidget->windowType(), Qt::Tool );
	EXPECT_TRUE( pWidget->testAttribute( Qt::WA_DeleteOnClose ) );
	EXPECT_EQ( pWidget->frameShape(), QFrame::Box );
	EXPECT_EQ( pWidget->lineWidth(), 1 );
	EXPECT_EQ( pWidget->size(), QSize( 400, 300 ) );
	EXPECT_TRUE( pWidget->isVisible() );
	QPoint windowCentre = Window()->frameGeometry().center();
	QPoint popupCentre = pWidget->frameGeometry().center();
	EXPECT_LE( ( windowCentre - popupCentre ).manhattanLength(), 2 );
}

TEST_F( SessionCycleWidgetTest, ButtonsShowBaseNamesWithAStarForUnsavedChanges )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke", "sparks" } );
	sessions[ 1 ]->SetModified( true );
	CQSessionCycleWidget *pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	EXPECT_EQ( ButtonTexts( pWidget ), ( QStringList{ "fire", "smoke *", "sparks" } ) );
	EXPECT_FALSE( pWidget->GetSessionButton( 0 )->icon().pixmap( 16, 16 ).isNull() );
}

TEST_F( SessionCycleWidgetTest, TheSelectedSessionIsBoldAndItsFileIsShownBelow )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke", "sparks" } );
	m_pApp->SetActiveEditorSession( sessions[ 0 ], false, false );
	CQSessionCycleWidget *pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	ASSERT_EQ( pWidget->GetSelectedIndex(), 1 );
	for ( int i = 0; i < 3; ++i )
		EXPECT_EQ( pWidget->GetSessionButton( i )->font().weight(), i == 1 ? 75 : 50 ) << i;
	EXPECT_EQ( pWidget->GetFileNameLabel()->text(), QString::fromUtf8( sessions[ 1 ]->GetFileName() ) );

	pWidget->SelectNextSession();
	EXPECT_EQ( pWidget->GetSessionButton( 1 )->font().weight(), 50 );
	EXPECT_EQ( pWidget->GetSessionButton( 2 )->font().weight(), 75 );
	EXPECT_EQ( pWidget->GetFileNameLabel()->text(), QString::fromUtf8( sessions[ 2 ]->GetFileName() ) );
}

TEST_F( SessionCycleWidgetTest, NextAndPreviousWrapAroundTheSessions )
{
	MakeSessions( { "fire", "smoke", "sparks" } );
	CQSessionCycleWidget *pWidget = OpenCycle( false );
	ASSERT_TRUE( pWidget );
	EXPECT_EQ( pWidget->GetSelectedIndex(), 1 );
	pWidget->SelectNextSession();
	pWidget->SelectNextSession();
	EXPECT_EQ( pWidget->GetSelectedIndex(), 0 );
	pWidget->SelectPreviousSession();
	EXPECT_EQ( pWidget->GetSelectedIndex(), 2 );
}

TEST_F( SessionCycleWidgetTest, CyclingAgainWhileItIsUpMovesTheSelectionOfTheSamePopup )
{
	MakeSessions( { "fire", "smoke", "sparks" } );
	CQSessionCycleWidget *pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	EXPECT_EQ( pWidget->GetSelectedIndex(), 0 );
	m_pApp->OpenSessionCycling( false );
	EXPECT_EQ( Window()->GetSessionCycleWidget(), pWidget );
	EXPECT_EQ( pWidget->GetSelectedIndex(), 1 );
}

TEST_F( SessionCycleWidgetTest, WithoutSessionsItSaysThereIsNone )
{
	QPointer<CQSessionCycleWidget> pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	EXPECT_EQ( pWidget->GetSessionButtonCount(), 0 );
	EXPECT_EQ( pWidget->GetFileNameLabel()->text(), "(No Active Session)" );
	pWidget->close();
	RunDeferredDeletes();
	EXPECT_FALSE( pWidget );
	EXPECT_EQ( m_pApp->GetActiveSession(), nullptr );
}

TEST_F( SessionCycleWidgetTest, ASessionClosedWhileItIsUpIsNotActivated )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke" } );
	CQSessionCycleWidget *pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	ASSERT_EQ( pWidget->GetSelectedIndex(), 0 );
	ASSERT_TRUE( m_pApp->CloseSession( sessions[ 0 ] ) );
	pWidget->SetSelectedIndex( 0 );
	EXPECT_EQ( pWidget->GetFileNameLabel()->text(), "(No Active Session)" );
	pWidget->close();
	EXPECT_EQ( m_pApp->GetActiveSession(), sessions[ 1 ] );
	EXPECT_EQ( m_pApp->GetSessions().size(), 1u );
}

TEST_F( SessionCycleWidgetTest, ClosingActivatesTheSelectedSessionWithHistoryAndShowsTheWindow )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke" } );
	const int nHistory = m_pApp->GetSessionHistory().Count();
	QPointer<CQSessionCycleWidget> pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	Window()->hide();

	pWidget->close();
	EXPECT_EQ( m_pApp->GetActiveSession(), sessions[ 0 ] );
	EXPECT_EQ( m_pApp->GetSessionHistory().Count(), nHistory + 1 );
	EXPECT_EQ( m_pApp->GetSessionHistory().GetEntry( m_pApp->GetSessionHistory().GetPosition() ), sessions[ 0 ] );
	EXPECT_TRUE( Window()->isVisible() );
	RunDeferredDeletes();
	EXPECT_FALSE( pWidget );
	EXPECT_EQ( Window()->GetSessionCycleWidget(), nullptr );
}

TEST_F( SessionCycleWidgetTest, ClickingAButtonActivatesThatSessionAndCloses )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke", "sparks" } );
	QPointer<CQSessionCycleWidget> pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	pWidget->GetSessionButton( 1 )->click();
	EXPECT_EQ( m_pApp->GetActiveSession(), sessions[ 1 ] );
	RunDeferredDeletes();
	EXPECT_FALSE( pWidget );
}

TEST_F( SessionCycleWidgetTest, LosingActivationClosesItOnTheSelectedSession )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke" } );
	QPointer<CQSessionCycleWidget> pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	QEvent deactivate( QEvent::WindowDeactivate );
	QApplication::sendEvent( pWidget, &deactivate );
	EXPECT_EQ( m_pApp->GetActiveSession(), sessions[ 0 ] );
	RunDeferredDeletes();
	EXPECT_FALSE( pWidget );
}

TEST_F( SessionCycleWidgetTest, StaysWhileKeepActiveIsHeldAndClosesWhenItIsLetGo )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( { "fire", "smoke" } );
	QPointer<CQSessionCycleWidget> pWidget = OpenCycle( true );
	ASSERT_TRUE( pWidget );
	pWidget->CheckForKeepActive();
	EXPECT_TRUE( pWidget->isVisible() );
	EXPECT_EQ( m_pApp->GetActiveSession(), sessions[ 1 ] );

	m_bKeepActiveHeld = false;
	pWidget->CheckForKeepActive();
	EXPECT_EQ( m_pApp->GetActiveSession(), sessions[ 0 ] );
	RunDeferredDeletes();
	EXPECT_FALSE( pWidget );
}

TEST( GameImagePaths, TheShippedDocumentIconResolvesThroughTheGameSearchPaths )
{
	QDir::setSearchPaths( "game", {} );
	EXPECT_FALSE( QFile::exists( "game:tools/images/common/document.png" ) );
	RegisterShippedGameImages();
	EXPECT_TRUE( QFile::exists( "game:tools/images/common/document.png" ) );
	EXPECT_FALSE( QIcon( "game:tools/images/common/document.png" ).pixmap( 16, 16 ).isNull() );
	EXPECT_FALSE( QFile::exists( "game:tools/images/common/no_such_image.png" ) );
}
