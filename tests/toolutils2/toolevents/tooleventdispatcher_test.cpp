#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"

namespace
{
struct TestEvent_Changed_t
{
	DECLARE_TOOL_EVENT( TestEvent_Changed_t )
	int m_nValue;
};

struct TestEvent_Other_t
{
	DECLARE_TOOL_EVENT( TestEvent_Other_t )
};

struct CRecorder
{
	std::vector<std::string> *m_pLog;
	std::string m_Name;
	CToolEventDispatcher *m_pDispatcher = nullptr;

	void OnChanged( const TestEvent_Changed_t &event ) { m_pLog->push_back( m_Name + ":" + std::to_string( event.m_nValue ) ); }
	void OnChangedAgain( const TestEvent_Changed_t & ) { m_pLog->push_back( m_Name + ":again" ); }
	void OnOther( const TestEvent_Other_t & ) { m_pLog->push_back( m_Name + ":other" ); }
	void OnChangedRemoveSelf( const TestEvent_Changed_t &event )
	{
		OnChanged( event );
		m_pDispatcher->RemoveListener( this, &CRecorder::OnChangedRemoveSelf );
	}
};
} // namespace

TEST( ToolEventDispatcher, EventIdIsTheLowerCaseNameHash )
{
	EXPECT_EQ( MakeToolEventType( "CBaseKV3DataWithFGDClass" ).m_nId, 0x505a0621u );
	EXPECT_EQ( TestEvent_Changed_t::EventType().m_nId, MakeToolEventType( "testevent_changed_t" ).m_nId );
}

TEST( ToolEventDispatcher, ListenersHearTheirOwnEventTypeInRegistrationOrder )
{
	std::vector<std::string> log;
	CRecorder a{ &log, "a" }, b{ &log, "b" };
	CToolEventDispatcher dispatcher;
	dispatcher.AddListener( &b, &CRecorder::OnChanged );
	dispatcher.AddListener( &a, &CRecorder::OnChanged );
	dispatcher.AddListener( &a, &CRecorder::OnOther );
	dispatcher.Dispatch( TestEvent_Changed_t{ 7 } );
	EXPECT_EQ( log, ( std::vector<std::string>{ "b:7", "a:7" } ) );
}

TEST( ToolEventDispatcher, TheSamePairRegisteredTwiceIsOneListenerAndRemovedWhole )
{
	std::vector<std::string> log;
	CRecorder a{ &log, "a" };
	CToolEventDispatcher dispatcher;
	dispatcher.AddListener( &a, &CRecorder::OnChanged );
	dispatcher.AddListener( &a, &CRecorder::OnChanged );
	dispatcher.AddListener( &a, &CRecorder::OnChangedAgain );
	EXPECT_EQ( dispatcher.GetListenerCount<TestEvent_Changed_t>(), 2 );
	dispatcher.RemoveListener( &a, &CRecorder::OnChanged );
	dispatcher.Dispatch( TestEvent_Changed_t{ 1 } );
	EXPECT_EQ( log, ( std::vector<std::string>{ "a:again" } ) );
}

TEST( ToolEventDispatcher, AListenerMayRemoveItselfWhileItRuns )
{
	std::vector<std::string> log;
	CToolEventDispatcher dispatcher;
	CRecorder a{ &log, "a", &dispatcher }, b{ &log, "b" };
	dispatcher.AddListener( &a, &CRecorder::OnChangedRemoveSelf );
	dispatcher.AddListener( &b, &CRecorder::OnChanged );
	dispatcher.Dispatch( TestEvent_Changed_t{ 1 } );
	dispatcher.Dispatch( TestEvent_Changed_t{ 2 } );
	EXPECT_EQ( log, ( std::vector<std::string>{ "a:1", "b:1", "b:2" } ) );
}

TEST( ToolEventDispatcher, DispatchGoesOnInChildrenAndAChildThatDiesIsForgotten )
{
	std::vector<std::string> log;
	CRecorder parentListener{ &log, "parent" }, childListener{ &log, "child" };
	CToolEventDispatcher parent;
	parent.AddListener( &parentListener, &CRecorder::OnChanged );
	{
		CToolEventDispatcher child;
		child.AddListener( &childListener, &CRecorder::OnChanged );
		parent.AddChildDispatcher( &child );
		parent.Dispatch( TestEvent_Changed_t{ 3 } );
	}
	parent.Dispatch( TestEvent_Changed_t{ 4 } ); // must not reach the dead child
	EXPECT_EQ( log, ( std::vector<std::string>{ "parent:3", "child:3", "parent:4" } ) );
}

TEST( ToolEventMapRegistrationHelper, AttachingASlotReplacesWhatStoodThere )
{
	std::vector<std::string> log;
	CRecorder owner{ &log, "w" };
	CToolEventDispatcher documentA, documentB;
	CToolEventMapRegistrationHelper<CRecorder> map( &owner );
	map.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CRecorder::OnChanged );
	map.Attach( TOOL_EVENT_SLOT_DOCUMENT, &documentA );
	map.Attach( TOOL_EVENT_SLOT_DOCUMENT, &documentB );
	documentA.Dispatch( TestEvent_Changed_t{ 1 } );
	documentB.Dispatch( TestEvent_Changed_t{ 2 } );
	EXPECT_EQ( log, ( std::vector<std::string>{ "w:2" } ) );
	EXPECT_EQ( documentA.GetListenerCount<TestEvent_Changed_t>(), 0 );
}

TEST( ToolEventMapRegistrationHelper, ADyingDispatcherEmptiesItsSlotAndADyingHelperLeavesNoListener )
{
	std::vector<std::string> log;
	CRecorder owner{ &log, "w" };
	CToolEventDispatcher hub;
	{
		CToolEventMapRegistrationHelper<CRecorder> map( &owner );
		map.MapEvent( TOOL_EVENT_SLOT_HUB, &CRecorder::OnOther );
		{
			auto pDocument = std::make_unique<CToolEventDispatcher>();
			map.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CRecorder::OnChanged );
			map.Attach( TOOL_EVENT_SLOT_DOCUMENT, pDocument.get() );
			map.Attach( TOOL_EVENT_SLOT_HUB, &hub );
		}
		EXPECT_EQ( map.GetAttached( TOOL_EVENT_SLOT_DOCUMENT ), nullptr );
		EXPECT_EQ( map.GetAttached( TOOL_EVENT_SLOT_HUB ), &hub );
		hub.Dispatch( TestEvent_Other_t{} );
	}
	EXPECT_EQ( hub.GetListenerCount<TestEvent_Other_t>(), 0 );
	hub.Dispatch( TestEvent_Other_t{} );
	EXPECT_EQ( log, ( std::vector<std::string>{ "w:other" } ) );
}
