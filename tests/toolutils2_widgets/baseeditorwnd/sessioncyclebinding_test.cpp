// The popup's commands through the bind engine: KeepActive stays held from a key that was
// already down when the popup came up, Tab moves the selection, letting go closes it on
// the selected session.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include <QPointer>

#include "tests/toolutils2_widgets/baseeditorwnd/mditestapp.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/inputbind/bindtargetset.h"
#include "tools/toolutils2/inputbind/inputbindengine.h"
#include "tools/toolutils2/widgets/baseeditorwnd/sessioncyclewidget.h"

namespace
{
const char *const s_pBindings = R"(--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---
{
	m_Bindings =
	[
		{ m_Input = "Ctrl" m_Context = "SessionCycleWidget" m_Command = "KeepActive" },
		{ m_Input = "Ctrl+Tab" m_Context = "SessionCycleWidget" m_Command = "NextSession" },
		{ m_Input = "Ctrl+Shift+Tab" m_Context = "SessionCycleWidget" m_Command = "PreviousSession" },
	]
}
)";

// The focus chain is the popup alone, while it is up; keys are as the test sets them.
class CPopupChainHost final : public IInputBindEngineHost
{
public:
	void BuildFocusChain( std::vector<BindChainLink_t> *pChain ) override
	{
		pChain->clear();
		if ( m_pPopup )
			pChain->push_back( { m_pPopup, &m_Targets, true } );
	}
	bool IsCodePhysicallyDown( InputCode_t nCode ) override { return m_pEngine && m_pEngine->IsKeyDown( nCode ); }
	void OnMouseCaptureStart( void *, uint32_t ) override {}
	void OnMouseCaptureStop( void *, uint32_t ) override {}
	void PinCapturedCursor() override {}
	void OnBindingsChanged() override {}

	CInputBindEngine *m_pEngine = nullptr;
	void *m_pPopup = nullptr;
	CBindTargetSet m_Targets;
};

class SessionCycleBindingTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pApp = std::make_unique<CMdiTestApp>();
		m_Host.m_pEngine = &m_Engine;
		CUtlString strError;
		ASSERT_EQ( m_Engine.GetBindingList().LoadFromText( s_pBindings, std::strlen( s_pBindings ), "test bindings", &strError ), BINDING_LOAD_OK ) << strError.Get();
		for ( const char *pName : { "fire", "smoke", "sparks" } )
		{
			CBaseEditorSession *pSession = m_pApp->NewSession();
			CUtlString strPath;
			strPath.Format( "\\content\\particles\\%s.tfxs", pName );
			pSession->SetFileName( strPath );
			m_Sessions.push_back( pSession );
		}
	}
	void TearDown() override
	{
		m_Host.m_pPopup = nullptr;
		m_pApp.reset();
		EXPECT_FALSE( m_Prompt.HasFailures() );
	}

	void Key( const char *pName, bool bDown )
	{
		InputCode_t nCode = InputCodeFromName( pName );
		m_Engine.SetKeyState( nCode, bDown );
		m_Engine.HandleInputCode( nCode, bDown ? INPUT_EVENT_PRESS : INPUT_EVENT_RELEASE, INPUT_EVENT_TRACK_ACTIVE );
	}

	// The popup comes up as the framework opens it and joins the focus chain.
	CQSessionCycleWidget *OpenPopup()
	{
		m_pApp->OpenSessionCycling( true );
		CQSessionCycleWidget *pWidget = m_pApp->GetWindow()->GetSessionCycleWidget();
		if ( !pWidget )
			return nullptr;
		pWidget->SetKeepActiveQuery( [ pWidget ]() { return pWidget->IsKeepActiveCommandHeld(); } );
		m_Host.m_Targets.AddTarget( pWidget );
		m_Host.m_pPopup = pWidget;
		m_Engine.MarkDirty();
		m_Engine.UpdateActiveBindings();
		return pWidget;
	}

	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	std::unique_ptr<CMdiTestApp> m_pApp;
	std::vector<CBaseEditorSession *> m_Sessions;
	CPopupChainHost m_Host;
	CInputBindEngine m_Engine{ &m_Host };
};
} // namespace

TEST_F( SessionCycleBindingTest, ThePopupPublishesItsCommandsUnderItsContext )
{
	CQSessionCycleWidget *pWidget = OpenPopup();
	ASSERT_TRUE( pWidget );
	const CBindTargetDescriptorBase *pDescriptor = pWidget->GetBindTargetDescriptor();
	ASSERT_TRUE( pDescriptor );
	EXPECT_STREQ( pDescriptor->GetTargetName(), "SessionCycleWidget" );
	EXPECT_EQ( pDescriptor->GetNameToken(), BindToken( "sessioncyclewidget" ) );
	const CBindableCommand *pKeepActive = pDescriptor->FindCommand( "KeepActive" );
	ASSERT_TRUE( pKeepActive );
	// Only a modifier command starts for a key already held when the popup appears.
	EXPECT_TRUE( pKeepActive->IsModifierCommand() );
	EXPECT_TRUE( pKeepActive->HasHandler( BIND_STAGE_PRESS ) );
	EXPECT_TRUE( pKeepActive->HasHandler( BIND_STAGE_RELEASE ) );
	EXPECT_TRUE( pKeepActive->HasHandler( BIND_STAGE_CANCELLED ) );
	EXPECT_TRUE( pDescriptor->FindCommand( "NextSession" ) );
	EXPECT_TRUE( pDescriptor->FindCommand( "PreviousSession" ) );
}

TEST_F( SessionCycleBindingTest, AKeyHeldBeforeThePopupCameUpKeepsItActive )
{
	Key( "Ctrl", true );
	QPointer<CQSessionCycleWidget> pWidget = OpenPopup();
	ASSERT_TRUE( pWidget );
	EXPECT_TRUE( pWidget->IsKeepActiveCommandHeld() );
	pWidget->CheckForKeepActive();
	EXPECT_TRUE( pWidget->isVisible() );
	EXPECT_EQ( m_pApp->GetActiveSession(), m_Sessions[ 2 ] );
}

TEST_F( SessionCycleBindingTest, TabMovesTheSelectionAndLettingGoActivatesIt )
{
	Key( "Ctrl", true );
	QPointer<CQSessionCycleWidget> pWidget = OpenPopup();
	ASSERT_TRUE( pWidget );
	ASSERT_EQ( pWidget->GetSelectedIndex(), 0 );
	Key( "Tab", true );
	Key( "Tab", false );
	EXPECT_EQ( pWidget->GetSelectedIndex(), 1 );
	Key( "Shift", true );
	Key( "Tab", true );
	Key( "Tab", false );
	Key( "Shift", false );
	EXPECT_EQ( pWidget->GetSelectedIndex(), 0 );
	Key( "Tab", true );
	Key( "Tab", false );
	Key( "Tab", true );
	Key( "Tab", false );
	EXPECT_EQ( pWidget->GetSelectedIndex(), 2 );

	Key( "Ctrl", false );
	EXPECT_FALSE( pWidget->IsKeepActiveCommandHeld() );
	pWidget->CheckForKeepActive();
	EXPECT_EQ( m_pApp->GetActiveSession(), m_Sessions[ 2 ] );
	m_Host.m_pPopup = nullptr;
	QCoreApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete );
	EXPECT_FALSE( pWidget );
}

TEST_F( SessionCycleBindingTest, WithoutTheKeyThePopupClosesAtTheFirstCheck )
{
	QPointer<CQSessionCycleWidget> pWidget = OpenPopup();
	ASSERT_TRUE( pWidget );
	EXPECT_FALSE( pWidget->IsKeepActiveCommandHeld() );
	pWidget->CheckForKeepActive();
	EXPECT_EQ( m_pApp->GetActiveSession(), m_Sessions[ 0 ] );
	m_Host.m_pPopup = nullptr;
	QCoreApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete );
	EXPECT_FALSE( pWidget );
}
