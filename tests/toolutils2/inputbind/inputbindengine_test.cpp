// The gesture engine fed by hand: key state, a focus chain of target sets, a clock and
// mouse deltas, as the widget side feeds it.

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/platform/platformtime.h"
#include "inputbindtesttarget.h"
#include "tools/toolutils2/inputbind/bindtargetset.h"
#include "tools/toolutils2/inputbind/inputbindengine.h"

namespace
{
using Calls = std::vector<std::string>;

class CTestHost final : public IInputBindEngineHost
{
public:
	void BuildFocusChain( std::vector<BindChainLink_t> *pChain ) override { *pChain = m_Chain; }
	bool IsCodePhysicallyDown( InputCode_t nCode ) override { return m_Down[ nCode ]; }
	void OnMouseCaptureStart( void *, uint32_t ) override { ++m_nCaptureStarts; }
	void OnMouseCaptureStop( void *, uint32_t ) override { ++m_nCaptureStops; }
	void PinCapturedCursor() override {}
	void OnBindingsChanged() override { ++m_nBindingChanges; }

	std::vector<BindChainLink_t> m_Chain;
	bool m_Down[ INPUT_CODE_COUNT ] = {};
	int m_nCaptureStarts = 0;
	int m_nCaptureStops = 0;
	int m_nBindingChanges = 0;
};

int s_nFakeWidgetA = 0;
int s_nFakeWidgetB = 0;

class InputBindEngineTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		Plat_SetFloatTimeOverride( 100.0 );
		m_WidgetA.AddTarget( &m_TargetA );
		m_WidgetB.AddTarget( &m_TargetB );
		m_Host.m_Chain = { { &s_nFakeWidgetA, &m_WidgetA, true } };
	}
	void TearDown() override { Plat_ClearFloatTimeOverride(); }

	void Load( const std::vector<std::pair<std::string, std::string>> &bindings, const std::string &macros = "" )
	{
		std::string text = InputBindTestFile( bindings, macros );
		CUtlString strError;
		ASSERT_EQ( m_Engine.GetBindingList().LoadFromText( text.data(), text.size(), "test", &strError ), BINDING_LOAD_OK ) << strError.Get();
		m_Engine.MarkDirty();
	}
	void Press( InputCode_t nCode )
	{
		m_Host.m_Down[ nCode ] = true;
		m_Engine.SetKeyState( nCode, true );
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_PRESS, INPUT_EVENT_TRACK_ACTIVE );
	}
	void Release( InputCode_t nCode )
	{
		m_Host.m_Down[ nCode ] = false;
		m_Engine.SetKeyState( nCode, false );
		m_Engine.HandleInputCode( nCode, INPUT_EVENT_RELEASE, INPUT_EVENT_TRACK_ACTIVE );
	}
	void Frame( float flDeltaX = 0.0f, float flDeltaY = 0.0f )
	{
		m_Engine.RunMouseFrame( flDeltaX, flDeltaY );
		m_Engine.RunPostFrame();
	}

	CTestHost m_Host;
	CInputBindEngine m_Engine{ &m_Host };
	CInputBindTestTarget m_TargetA;
	CInputBindTestTarget m_TargetB;
	CBindTargetSet m_WidgetA;
	CBindTargetSet m_WidgetB;
};
} // namespace

TEST_F( InputBindEngineTest, CtrlSRunsOnlyTheLongerSequenceWhenSAloneIsAlsoBound )
{
	Load( { { "S", "Select" }, { "Ctrl+S", "Save" } } );
	Press( KEY_CTRL );
	Press( KEY_A + ( 'S' - 'A' ) );
	EXPECT_EQ( m_TargetA.CallsOf( "Save" ), ( Calls{ "Save.0", "Save.5" } ) );
	EXPECT_TRUE( m_TargetA.CallsOf( "Select" ).empty() );

	Release( KEY_A + ( 'S' - 'A' ) );
	Release( KEY_CTRL );
	Press( KEY_A + ( 'S' - 'A' ) );
	EXPECT_EQ( m_TargetA.CallsOf( "Select" ), ( Calls{ "Select.0", "Select.5" } ) );
	EXPECT_EQ( m_TargetA.CallsOf( "Save" ).size(), 3u ) << "Save released once, and not run again by S alone";
}

TEST_F( InputBindEngineTest, MouseDragUnderThresholdRunsPressClickReleaseAndNoDrag )
{
	Load( { { "LMouse", "Orbit" } } );
	Press( MOUSE_LEFT );
	Frame( 3.0f, 2.0f ); // 3.6 px: under the threshold
	Release( MOUSE_LEFT );
	EXPECT_EQ( m_TargetA.CallsOf( "Orbit" ), ( Calls{ "Orbit.0", "Orbit.5", "Orbit.6" } ) );
}

TEST_F( InputBindEngineTest, MouseDragPastThresholdStartsDragAndNeverClicks )
{
	Load( { { "LMouse", "Orbit" } } );
	Press( MOUSE_LEFT );
	Frame( 3.0f, 0.0f );
	Frame( 3.0f, 0.0f ); // 6 px in all
	Frame( 1.0f, 0.0f );
	Release( MOUSE_LEFT );
	EXPECT_EQ( m_TargetA.CallsOf( "Orbit" ), ( Calls{ "Orbit.0", "Orbit.1", "Orbit.2", "Orbit.2", "Orbit.6" } ) );
}

TEST_F( InputBindEngineTest, AutoRepeatWithoutARunningGestureStartsNothing )
{
	Load( { { "Up", "Select" } } );
	m_Engine.SetKeyState( KEY_UP, true );
	m_Engine.HandleInputCode( KEY_UP, INPUT_EVENT_REPEAT, INPUT_EVENT_TRACK_ACTIVE );
	EXPECT_TRUE( m_TargetA.m_Calls.empty() );

	Press( KEY_UP );
	m_Engine.HandleInputCode( KEY_UP, INPUT_EVENT_REPEAT, INPUT_EVENT_TRACK_ACTIVE );
	EXPECT_EQ( m_TargetA.CallsOf( "Select" ), ( Calls{ "Select.0", "Select.5", "Select.3" } ) );
}

TEST_F( InputBindEngineTest, KeyStillDownAfterTheDelayRunsHeldOnce )
{
	Load( { { "F5", "Select" } } );
	Press( KEY_F1 + 4 );
	Frame();
	EXPECT_TRUE( m_TargetA.CallsOf( "Select" ) == ( Calls{ "Select.0", "Select.5" } ) );
	Plat_SetFloatTimeOverride( 100.0 + BIND_HELD_DELAY_SECONDS + 0.01 );
	Frame();
	Frame();
	Release( KEY_F1 + 4 );
	EXPECT_EQ( m_TargetA.CallsOf( "Select" ), ( Calls{ "Select.0", "Select.5", "Select.4", "Select.6" } ) );
}

TEST_F( InputBindEngineTest, ModifierCommandStartedOnOldWidgetEndsWhenFocusMoves )
{
	Load( { { "Alt", "Tool" } } );
	Press( KEY_ALT );
	EXPECT_EQ( m_TargetA.CallsOf( "Tool" ), ( Calls{ "Tool.0", "Tool.5" } ) );

	m_Host.m_Chain = { { &s_nFakeWidgetB, &m_WidgetB, true } };
	m_Engine.MarkDirty();
	EXPECT_EQ( m_TargetA.CallsOf( "Tool" ), ( Calls{ "Tool.0", "Tool.5", "Tool.6" } ) );
	// The key is still held: the new widget's modifier command starts at the change.
	EXPECT_EQ( m_TargetB.CallsOf( "Tool" ), ( Calls{ "Tool.0", "Tool.5" } ) );
	EXPECT_EQ( m_Engine.GetRunningGestureCount(), 1 );
}

TEST_F( InputBindEngineTest, FocusWidgetBindingWinsOverParentsOfEqualLength )
{
	// Two targets of one class in the chain: the focus widget's comes first, and only
	// the first of a class gets to run.
	Load( { { "Enter", "Select" } } );
	m_Host.m_Chain = { { &s_nFakeWidgetB, &m_WidgetB, true }, { &s_nFakeWidgetA, &m_WidgetA, true } };
	m_Engine.MarkDirty();
	Press( KEY_ENTER );
	EXPECT_EQ( m_TargetB.CallsOf( "Select" ).size(), 2u );
	EXPECT_TRUE( m_TargetA.CallsOf( "Select" ).empty() );
}

TEST_F( InputBindEngineTest, RequiredModifiersMustAllBeActive )
{
	Load( { { "G", "Guarded" } } );
	Press( KEY_A + ( 'G' - 'A' ) );
	Release( KEY_A + ( 'G' - 'A' ) );
	EXPECT_TRUE( m_TargetA.CallsOf( "Guarded" ).empty() );
	m_TargetA.m_nModifiers = 2 | 4;
	Press( KEY_A + ( 'G' - 'A' ) );
	EXPECT_EQ( m_TargetA.CallsOf( "Guarded" ), ( Calls{ "Guarded.0", "Guarded.5" } ) );
}

TEST_F( InputBindEngineTest, PressingAgainWhileTheGestureRunsDoesNotStartASecond )
{
	Load( { { "RMouse", "Pick" } } );
	Press( MOUSE_RIGHT );
	m_Engine.HandleInputCode( MOUSE_RIGHT, INPUT_EVENT_PRESS, INPUT_EVENT_TRACK_ACTIVE );
	Release( MOUSE_RIGHT );
	EXPECT_EQ( m_TargetA.CallsOf( "Pick" ), ( Calls{ "Pick.0", "Pick.5", "Pick.6" } ) );
}

TEST_F( InputBindEngineTest, RealDragCancelsAClickThatWaitsForRelease )
{
	Load( { { "RMouse", "Pick" }, { "LMouse", "Orbit" } } );
	Press( MOUSE_RIGHT );
	Press( MOUSE_LEFT );
	Frame( 10.0f, 0.0f );
	Release( MOUSE_RIGHT );
	Release( MOUSE_LEFT );
	EXPECT_EQ( m_TargetA.CallsOf( "Pick" ), ( Calls{ "Pick.0", "Pick.7" } ) );
	EXPECT_EQ( m_TargetA.CallsOf( "Orbit" ), ( Calls{ "Orbit.0", "Orbit.1", "Orbit.2", "Orbit.6" } ) );
}

TEST_F( InputBindEngineTest, InvokeFromCodeRunsPressClickAndRelease )
{
	EXPECT_TRUE( m_Engine.InvokeCommand( &m_TargetA, BindToken( "save" ) ) );
	EXPECT_EQ( m_TargetA.CallsOf( "Save" ), ( Calls{ "Save.0", "Save.5", "Save.6" } ) );
	EXPECT_FALSE( m_Engine.InvokeCommand( &m_TargetA, BindToken( "NoSuchCommand" ) ) );
	EXPECT_EQ( m_Engine.GetRunningGestureCount(), 0 );
}

TEST_F( InputBindEngineTest, TargetDestroyedMidGestureEndsItWithoutRunningStages )
{
	Load( { { "LMouse", "Orbit" } } );
	auto pTarget = std::make_unique<CInputBindTestTarget>();
	CBindTargetSet set;
	set.AddTarget( pTarget.get() );
	m_Host.m_Chain = { { &s_nFakeWidgetB, &set, true } };
	m_Engine.MarkDirty();
	Press( MOUSE_LEFT );
	ASSERT_EQ( m_Engine.GetRunningGestureCount(), 1 );
	set.RemoveTarget( pTarget.get() );
	pTarget.reset();
	EXPECT_EQ( m_Engine.GetRunningGestureCount(), 0 );
	Frame( 20.0f, 0.0f );
	Release( MOUSE_LEFT ); // must not reach the freed target
	EXPECT_EQ( m_Engine.GetRunningGestureCount(), 0 );
}

TEST_F( InputBindEngineTest, KeyReleasedWhileNobodyListenedEndsAtTheNextRebuild )
{
	Load( { { "Alt", "Tool" } } );
	Press( KEY_ALT );
	m_Host.m_Down[ KEY_ALT ] = false; // released in another program
	m_Engine.MarkDirty();
	EXPECT_EQ( m_TargetA.CallsOf( "Tool" ), ( Calls{ "Tool.0", "Tool.5", "Tool.6" } ) );
	EXPECT_FALSE( m_Engine.IsKeyDown( KEY_ALT ) );
}

TEST_F( InputBindEngineTest, InputFrameReachesEachTargetOfVisibleWidgetsOnce )
{
	CBindTargetSet hidden;
	hidden.AddTarget( &m_TargetB );
	CBindTargetSet twice;
	twice.AddTarget( &m_TargetA );
	m_Host.m_Chain = { { &s_nFakeWidgetA, &m_WidgetA, true }, { &s_nFakeWidgetA, &twice, true }, { &s_nFakeWidgetB, &hidden, false } };
	m_Engine.MarkDirty();
	Frame();
	EXPECT_EQ( m_TargetA.m_nInputFrames, 1 );
	EXPECT_EQ( m_TargetB.m_nInputFrames, 0 );
}

TEST_F( InputBindEngineTest, BindingTextNamesTheFirstSequence )
{
	Load( { { "Ctrl + Shift+S", "Save" }, { "F2", "Save" } } );
	CUtlString strText;
	m_Engine.GetBindingText( &m_TargetA, BindToken( "Save" ), &strText );
	EXPECT_STREQ( strText.Get(), "Ctrl+Shift+S" );
	m_Engine.GetBindingText( &m_TargetA, BindToken( "Orbit" ), &strText );
	EXPECT_TRUE( strText.IsEmpty() );
}
