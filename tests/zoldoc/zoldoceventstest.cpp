#include <functional>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tests/zoldoc/zoldoctestsupport.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
struct EventCase_t
{
	const char *m_pName;
	std::function<void( ZolDocFixture & )> m_fnSetup; // not recorded
	std::function<void( ZolDocFixture & )> m_fnOperation;
	const char *m_pEvents;   // the events the operation sends, in order
	int m_nNewSteps;         // undo units it opens
	const char *m_pUndoName; // the last unit's label, when it opens any
};

void PrintTo( const EventCase_t &eventCase, std::ostream *pOut )
{
	*pOut << eventCase.m_pName;
}

CTestAsset g_ChildAssetA( "particles\\children\\sparks.tfxs" );
CTestAsset g_ChildAssetB( "particles/children/smoke.tfxs" );

void Nothing( ZolDocFixture & ) {}
void TwoOperators( ZolDocFixture &f )
{
	f.AddOperator( "C_OP_Decay" );
	f.AddOperator( "C_OP_BasicMovement" );
}
CBaseZolNode *FirstOperator( ZolDocFixture &f )
{
	return f.m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 );
}

const EventCase_t s_EventCases[] = {
	{ "AddFunction", Nothing, []( ZolDocFixture &f ) { f.AddOperator(); }, "Selection List", 1, "Add Operator 'C_OP_Decay'" },
	{ "AddFunctionNamed", Nothing, []( ZolDocFixture &f ) { f.m_Doc.AddFunction( "Fade Out", "C_OP_Decay", PARTICLE_FUNCTION_OPERATOR ); }, "Selection List", 1, "Add Operator 'Fade Out'" },
	{ "AddFunctionUnknownClass", Nothing, []( ZolDocFixture &f ) { f.m_Doc.AddFunction( "", "C_OP_NoSuchThing", PARTICLE_FUNCTION_OPERATOR ); }, "Selection List", 1, "Add Operator 'C_OP_NoSuchThing'" },
	{ "AddChild", Nothing, []( ZolDocFixture &f ) { f.m_Doc.AddChild( &g_ChildAssetA ); }, "List", 1, "Add Child" },
	{ "AddChildren", Nothing, []( ZolDocFixture &f ) { IAsset *assets[] = { &g_ChildAssetA, &g_ChildAssetB }; f.m_Doc.AddChildren( 2, assets ); }, "Modified List List List", 1, "Add Children" },
	{ "AddNoChildren", Nothing, []( ZolDocFixture &f ) { f.m_Doc.AddChildren( 0, nullptr ); }, "", 0, nullptr },
	{ "SetChild", []( ZolDocFixture &f ) { f.m_Doc.AddChild( nullptr ); },
	  []( ZolDocFixture &f ) { f.m_Doc.SetChild( f.m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_CHILDREN, 0 )->AsChildNode(), &g_ChildAssetB ); }, "List", 1, "Set Child" },
	{ "AddVariable", Nothing, []( ZolDocFixture &f ) { f.m_Doc.AddVariable( "Speed", CPulseValueFullType( PVAL_FLOAT ) ); }, "List", 1, "Add Variable Speed" },
	{ "RemoveElement", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.RemoveElement( PARTICLE_FUNCTION_OPERATOR, FirstOperator( f ) ); }, "Modified List Selection", 1, "Remove 'Lifespan Decay'" },
	{ "RemoveSelected", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.RemoveSelected(); }, "Selection List", 0, nullptr },
	{ "MoveElement", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.MoveElement( FirstOperator( f ), 2 ); }, "Modified List", 1, "Move 'Lifespan Decay'" },
	{ "SetElementEnabled", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.SetElementEnabled( FirstOperator( f ), false ); }, "Modified EnableDisable", 1, "Toggle Lifespan Decay" },
	{ "ToggleSelected", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.ToggleSelected(); }, "Modified Modified EnableDisable", 1, "Toggle Selected" },
	{ "SelectElementUndoable", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.SelectElement( FirstOperator( f ), true ); }, "Selection", 1, "Select Element" },
	{ "SelectElementPlain", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.SelectElement( FirstOperator( f ), false ); }, "Selection", 0, nullptr },
	{ "AddElementToSelection", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.AddElementToSelection( FirstOperator( f ), true ); }, "Selection", 1, "Add Element To Selection" },
	{ "AddSelectedElementToSelection", TwoOperators,
	  []( ZolDocFixture &f ) { f.m_Doc.AddElementToSelection( f.m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 1 ), false ); }, "", 0, nullptr },
	{ "RemoveUnselectedFromSelection", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.RemoveElementFromSelection( FirstOperator( f ), true ); }, "Selection", 1, "Deselect Element" },
	{ "SelectBaseProperties", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.SelectBaseProperties(); }, "Selection", 1, "Select Base Properties" },
	{ "UpdateToCurrentVersion", []( ZolDocFixture &f ) { f.m_Doc.GetRoot()->GetWriteKV3()->SetMemberInt( "m_nBehaviorVersion", 3 ); },
	  []( ZolDocFixture &f ) { f.m_Doc.UpdateToCurrentVersion(); }, "Modified Replaced List", 1, "Update to Current Version" },
	{ "Paste", Nothing, []( ZolDocFixture &f ) { f.m_Doc.Paste( nullptr ); }, "Modified Selection List", 1, "Paste" },
	{ "BeginEditNotifying", Nothing, []( ZolDocFixture &f ) { f.m_Doc.BeginEdit( "Cut", true ); }, "Modified", 1, "Cut" },
	{ "BeginEditQuiet", Nothing, []( ZolDocFixture &f ) { f.m_Doc.BeginEdit( "Drag", false ); }, "", 1, "Drag" },
	{ "NotifyModified", Nothing, []( ZolDocFixture &f ) { f.m_Doc.NotifyModified(); }, "Modified", 0, nullptr },
	{ "UndoOfAdd", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.Undo(); }, "Replaced List", -1, "Add Operator 'C_OP_BasicMovement'" },
	{ "UndoOfSelection", []( ZolDocFixture &f ) { TwoOperators( f ); f.m_Doc.SelectBaseProperties(); }, []( ZolDocFixture &f ) { f.m_Doc.Undo(); }, "Replaced", -1, "Select Base Properties" },
	{ "FlushWrittenNodes", []( ZolDocFixture &f ) { TwoOperators( f ); FirstOperator( f )->GetKV3ForModify(); },
	  []( ZolDocFixture &f ) { f.m_Doc.FlushModifiedNodes(); }, "Nodes", 0, nullptr },
	{ "FlushNothing", TwoOperators, []( ZolDocFixture &f ) { f.m_Doc.FlushModifiedNodes(); }, "", 0, nullptr },
};

class ZolDocEvents : public ZolDocFixture, public ::testing::WithParamInterface<EventCase_t>
{
};
} // namespace

TEST_P( ZolDocEvents, SendsItsEventsInOrderAndOpensItsUndoUnit )
{
	const EventCase_t &eventCase = GetParam();
	eventCase.m_fnSetup( *this );
	m_Recorder.Clear();
	const int nStepsBefore = m_Doc.GetUndoHistory()->GetStepCount();

	eventCase.m_fnOperation( *this );

	EXPECT_EQ( m_Recorder.Joined(), eventCase.m_pEvents );
	EXPECT_EQ( m_Doc.GetUndoHistory()->GetStepCount() - nStepsBefore, eventCase.m_nNewSteps );
	// An undo hands its unit to the redo side under the same label.
	if ( eventCase.m_pUndoName )
	{
		EXPECT_STREQ( ( eventCase.m_nNewSteps < 0 ? m_Doc.GetRedoHistory() : m_Doc.GetUndoHistory() )->GetUndoName(), eventCase.m_pUndoName );
	}
}

INSTANTIATE_TEST_SUITE_P( EveryOperation, ZolDocEvents, ::testing::ValuesIn( s_EventCases ),
	[]( const ::testing::TestParamInfo<EventCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST_F( ZolDocFixture, HubHearsEveryDocumentEventAfterTheDocument )
{
	std::vector<std::string> order;
	struct CTagger
	{
		std::vector<std::string> *m_pOrder;
		const char *m_pTag;
		void OnList( const ZolEvent_FunctionListChanged_t & ) { m_pOrder->push_back( m_pTag ); }
	};
	CTagger docTagger{ &order, "doc" };
	CTagger hubTagger{ &order, "hub" };
	m_Doc.GetEventDispatcher()->AddListener( &docTagger, &CTagger::OnList );
	m_Hub.m_Events.AddListener( &hubTagger, &CTagger::OnList );

	m_Doc.AddChild( nullptr );

	EXPECT_EQ( order, ( std::vector<std::string>{ "doc", "hub" } ) );
}

TEST_F( ZolDocFixture, SuspendedDocumentSendsNothingUntilResumedFully )
{
	CEventRecorder hubRecorder;
	hubRecorder.Listen( &m_Hub.m_Events );
	m_Doc.SuspendEvents();
	m_Doc.SuspendEvents();
	AddOperator();
	m_Doc.ResumeEvents();
	m_Doc.NotifyModified();
	EXPECT_EQ( m_Recorder.Joined(), "" );
	EXPECT_EQ( hubRecorder.Joined(), "" );

	m_Doc.ResumeEvents();
	m_Doc.NotifyModified();
	EXPECT_EQ( m_Recorder.Joined(), "Modified" );
	EXPECT_EQ( hubRecorder.Joined(), "Modified" );
}

TEST_F( ZolDocFixture, DocumentWithoutHubSendsNothingEvenToItsOwnListeners )
{
	m_Doc.SetEventHub( nullptr );
	AddOperator();
	EXPECT_EQ( m_Recorder.Joined(), "" );
}

TEST_F( ZolDocFixture, FlushTellsEachWrittenNodeOnceAndEmptiesTheSet )
{
	TwoOperators( *this );
	CBaseZolNode *pFirst = FirstOperator( *this );
	pFirst->GetKV3ForModify()->SetMemberFloat( "m_flOpStartFadeInTime", 1.0f );
	pFirst->GetKV3ForModify();
	m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 1 )->GetKV3ForModify();
	// Reads and the document's own structural writes are no edits of the user.
	pFirst->GetWriteKV3();
	pFirst->GetKV3();
	m_Recorder.Clear();

	m_Doc.FlushModifiedNodes();
	m_Doc.FlushModifiedNodes();

	EXPECT_EQ( m_Recorder.Joined(), "Nodes" );
	EXPECT_EQ( m_Recorder.m_NodesModifiedCounts, std::vector<int>{ 2 } );
}

TEST_F( ZolDocFixture, NodeWrittenThenRemovedByUndoIsNotToldLater )
{
	AddOperator();
	FirstOperator( *this )->GetKV3ForModify();
	m_Doc.Undo();
	m_Recorder.Clear();

	m_Doc.FlushModifiedNodes();

	EXPECT_EQ( m_Recorder.Joined(), "" );
}
