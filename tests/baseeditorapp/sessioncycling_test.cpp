// Which session the cycling popup selects, and what the framework tells the main window
// about sessions joining, leaving and becoming current.

#include <gtest/gtest.h>

#include <vector>

#include "core/host/scriptedprompt.h"
#include "core/platform/platformmode.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/ibaseeditorwindow.h"
#include "tools/toolutils2/baseeditorapp/sessioncycling.h"

namespace
{
// A window that only records what the framework tells it.
class CRecordingWindow final : public IBaseEditorWindow
{
public:
	void BringUp() override { ++m_nBringUps; }
	void TakeFocus() override {}
	void SetWindowTitleText( const char * ) override {}
	void SaveLayout( KeyValues3 * ) override {}
	void RestoreLayout( const KeyValues3 * ) override {}
	void OnSessionAdded( CBaseEditorSession *pSession ) override { m_Added.push_back( pSession ); }
	void OnSessionRemoved( CBaseEditorSession *pSession ) override { m_Removed.push_back( pSession ); }
	void OnActiveSessionChanged( CBaseEditorSession *pSession ) override { m_Activated.push_back( pSession ); }
	void ShowSessionCycling( int nSelected ) override { m_CyclingShown.push_back( nSelected ); }

	int m_nBringUps = 0;
	std::vector<CBaseEditorSession *> m_Added;
	std::vector<CBaseEditorSession *> m_Removed;
	std::vector<CBaseEditorSession *> m_Activated;
	std::vector<int> m_CyclingShown;
};

class CCycleSession final : public CSimpleSharedWindowEditorSession
{
public:
	using CSimpleSharedWindowEditorSession::CSimpleSharedWindowEditorSession;
	bool New( const char *pName ) override
	{
		StoreFileName( pName );
		return true;
	}
	int Open( const char *, CUtlString * ) override { return EDITOR_OPEN_LOADED; }
	bool Reload() override { return true; }
	bool SaveToFile( const char *, const char *, bool ) override { return true; }
};

class CCycleApp final : public CBaseEditorApp
{
public:
	CBaseEditorSession *CreateSession() override { return new CCycleSession( this ); }
	void DestroySession( CBaseEditorSession *pSession ) override { delete pSession; }
	IBaseEditorWindow *GetMainWindow() override { return &m_Window; }

	CRecordingWindow m_Window;
};

class SessionCyclingTest : public ::testing::Test
{
protected:
	void SetUp() override { Plat_SetTestMode( true ); }
	void TearDown() override
	{
		m_App.CloseAllSessions();
		EXPECT_FALSE( m_Prompt.HasFailures() );
	}

	std::vector<CBaseEditorSession *> MakeSessions( int nCount )
	{
		std::vector<CBaseEditorSession *> sessions;
		for ( int i = 0; i < nCount; ++i )
			sessions.push_back( m_App.NewSession() );
		return sessions;
	}

	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	CCycleApp m_App;
};
} // namespace

TEST( SessionCycleStep, MovesOneStepAndWrapsAtBothEnds )
{
	EXPECT_EQ( StepSessionCycle( 0, 3, true ), 1 );
	EXPECT_EQ( StepSessionCycle( 2, 3, true ), 0 );
	EXPECT_EQ( StepSessionCycle( 1, 3, false ), 0 );
	EXPECT_EQ( StepSessionCycle( 0, 3, false ), 2 );
	// A single session cycles onto itself either way.
	EXPECT_EQ( StepSessionCycle( 0, 1, true ), 0 );
	EXPECT_EQ( StepSessionCycle( 0, 1, false ), 0 );
}

TEST( SessionCycleStep, WithoutACurrentEntryStartsAtTheEndItMovesFrom )
{
	EXPECT_EQ( StepSessionCycle( -1, 4, true ), 0 );
	EXPECT_EQ( StepSessionCycle( -1, 4, false ), 3 );
	// An index left over from a longer list counts as none.
	EXPECT_EQ( StepSessionCycle( 7, 4, true ), 0 );
	EXPECT_EQ( StepSessionCycle( 0, 0, true ), -1 );
	EXPECT_EQ( StepSessionCycle( -1, 0, false ), -1 );
}

TEST_F( SessionCyclingTest, StartsFromTheActiveSessionAndWraps )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( 3 );
	ASSERT_EQ( m_App.GetActiveSession(), sessions[ 2 ] );

	EXPECT_EQ( m_App.OpenSessionCycling( true ), 0 );
	EXPECT_EQ( m_App.OpenSessionCycling( false ), 1 );

	m_App.SetActiveEditorSession( sessions[ 0 ], false, false );
	EXPECT_EQ( m_App.OpenSessionCycling( false ), 2 );
	EXPECT_EQ( m_App.OpenSessionCycling( true ), 1 );
	EXPECT_EQ( m_App.m_Window.m_CyclingShown, ( std::vector<int>{ 0, 1, 2, 1 } ) );
}

TEST_F( SessionCyclingTest, OpeningTheCycleChangesNeitherTheActiveSessionNorTheHistory )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( 2 );
	int nHistory = m_App.GetSessionHistory().Count();
	m_App.OpenSessionCycling( true );
	EXPECT_EQ( m_App.GetActiveSession(), sessions[ 1 ] );
	EXPECT_EQ( m_App.GetSessionHistory().Count(), nHistory );
}

TEST_F( SessionCyclingTest, WithNoSessionsTheCycleSelectsNothing )
{
	EXPECT_EQ( m_App.OpenSessionCycling( true ), -1 );
	EXPECT_EQ( m_App.m_Window.m_CyclingShown, std::vector<int>{ -1 } );
}

TEST_F( SessionCyclingTest, TheWindowHearsOfEachSessionBeforeItBecomesCurrent )
{
	CBaseEditorSession *pFirst = m_App.NewSession();
	ASSERT_EQ( m_App.m_Window.m_Added, std::vector<CBaseEditorSession *>{ pFirst } );
	ASSERT_EQ( m_App.m_Window.m_Activated, std::vector<CBaseEditorSession *>{ pFirst } );
	// The new session went into the history even though the window knew of it first.
	EXPECT_EQ( m_App.GetSessionHistory().Count(), 1 );

	CBaseEditorSession *pSecond = m_App.NewSession();
	m_App.SetActiveEditorSession( pFirst, true, false );
	EXPECT_EQ( m_App.m_Window.m_Activated, ( std::vector<CBaseEditorSession *>{ pFirst, pSecond, pFirst } ) );
	// Making the active session active again tells nobody.
	m_App.SetActiveEditorSession( pFirst, false, false );
	EXPECT_EQ( m_App.m_Window.m_Activated.size(), 3u );
}

TEST_F( SessionCyclingTest, TheWindowHearsOfAClosedSessionOnlyWhenItReallyCloses )
{
	std::vector<CBaseEditorSession *> sessions = MakeSessions( 2 );
	sessions[ 0 ]->SetModified( true );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_CANCEL, "Save changes?" );
	EXPECT_FALSE( m_App.CloseSession( sessions[ 0 ] ) );
	EXPECT_TRUE( m_App.m_Window.m_Removed.empty() );

	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
	EXPECT_TRUE( m_App.CloseSession( sessions[ 0 ] ) );
	EXPECT_EQ( m_App.m_Window.m_Removed, std::vector<CBaseEditorSession *>{ sessions[ 0 ] } );
	EXPECT_EQ( m_App.FindSessionIndex( sessions[ 1 ] ), 0 );
	EXPECT_EQ( m_App.FindSessionIndex( sessions[ 0 ] ), -1 );
}
