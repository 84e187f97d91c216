#include "core/text/bufferstring.h"
#include "tests/zoldoc/zoldoctestsupport.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

//-----------------------------------------------------------------------------
// Move: the new index names a gap of the list before the move.
//-----------------------------------------------------------------------------

namespace
{
struct MoveCase_t
{
	int m_nFrom;
	int m_nGap;
	const char *m_pResult;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const MoveCase_t &testCase, std::ostream *pOut )
{
	*pOut << "from " << testCase.m_nFrom << " to gap " << testCase.m_nGap;
}

class ZolDocMove : public ZolDocFixture, public ::testing::WithParamInterface<MoveCase_t>
{
};
} // namespace

TEST_P( ZolDocMove, MovesTheNodeIntoTheNamedGap )
{
	const char *classes[] = { "C_OP_Decay", "C_OP_BasicMovement", "C_OP_SetFloat" };
	for ( const char *pClass : classes )
		AddOperator( pClass );
	CBaseZolNode *pNode = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, GetParam().m_nFrom );

	m_Doc.MoveElement( pNode, GetParam().m_nGap );

	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), GetParam().m_pResult );
}

INSTANTIATE_TEST_SUITE_P( Gaps, ZolDocMove,
	::testing::Values( MoveCase_t{ 0, 0, "C_OP_Decay C_OP_BasicMovement C_OP_SetFloat" },
		MoveCase_t{ 0, 1, "C_OP_Decay C_OP_BasicMovement C_OP_SetFloat" },
		MoveCase_t{ 0, 2, "C_OP_BasicMovement C_OP_Decay C_OP_SetFloat" },
		MoveCase_t{ 0, 3, "C_OP_BasicMovement C_OP_SetFloat C_OP_Decay" },
		MoveCase_t{ 2, 0, "C_OP_SetFloat C_OP_Decay C_OP_BasicMovement" },
		MoveCase_t{ 2, 1, "C_OP_Decay C_OP_SetFloat C_OP_BasicMovement" },
		MoveCase_t{ 1, 3, "C_OP_Decay C_OP_SetFloat C_OP_BasicMovement" } ) );

//-----------------------------------------------------------------------------
// Runtime child index
//-----------------------------------------------------------------------------

namespace
{
struct ChildIndexCase_t
{
	int m_nVersion;
	int m_nChild;
	int m_nRuntimeIndex;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const ChildIndexCase_t &testCase, std::ostream *pOut )
{
	*pOut << "version " << testCase.m_nVersion << " child " << testCase.m_nChild;
}

class ZolDocRuntimeChildIndex : public ZolDocFixture, public ::testing::WithParamInterface<ChildIndexCase_t>
{
};
} // namespace

TEST_P( ZolDocRuntimeChildIndex, LeavesOutDisabledChildrenFromVersionFive )
{
	// enabled, disabled, enabled
	for ( int i = 0; i < 3; ++i )
		m_Doc.AddChild( nullptr )->SetEnabled( i != 1 );
	m_Doc.GetRoot()->GetWriteKV3()->SetMemberInt( "m_nBehaviorVersion", GetParam().m_nVersion );

	EXPECT_EQ( m_Doc.GetRoot()->GetRuntimeChildIndex( GetParam().m_nChild ), GetParam().m_nRuntimeIndex );
}

INSTANTIATE_TEST_SUITE_P( Versions, ZolDocRuntimeChildIndex,
	::testing::Values( ChildIndexCase_t{ 4, 2, 2 }, ChildIndexCase_t{ 5, 2, 1 }, ChildIndexCase_t{ 6, 2, 1 }, ChildIndexCase_t{ 5, 1, 1 },
		ChildIndexCase_t{ 5, 0, 0 }, ChildIndexCase_t{ 3, 1, 1 } ) );

TEST_F( ZolDocFixture, RuntimeChildIndexOfAnEmptyListIsZero )
{
	m_Doc.GetRoot()->GetWriteKV3()->SetMemberInt( "m_nBehaviorVersion", 5 );
	EXPECT_EQ( m_Doc.GetRoot()->GetRuntimeChildIndex( 3 ), 0 );
}

//-----------------------------------------------------------------------------
// Attribute labels
//-----------------------------------------------------------------------------

TEST_F( ZolDocFixture, WithoutEnabledRenderersLabelsFallBackToAttributeNames )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 3, -1, "Sprite Size" } };
	AddRenderer( "C_OP_RenderSprites" );
	m_Doc.SetElementEnabled( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_RENDERER, 0 ), false );

	EXPECT_FALSE( m_Doc.HasAttributeLabels() );
	EXPECT_STREQ( m_Doc.GetAttributeLabel( 3 ), "Attribute 3" );
}

TEST_F( ZolDocFixture, LastEnabledRendererWinsAnAttribute )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 3, -1, "Sprite Size" }, { 7, -1, "Sprite Alpha" } };
	m_Mgr.m_Usage[ "C_OP_RenderTrails" ] = { { 3, -1, "Trail Width" } };
	AddRenderer( "C_OP_RenderSprites" );
	AddRenderer( "C_OP_RenderTrails" );

	EXPECT_STREQ( m_Doc.GetAttributeLabel( 3 ), "Trail Width" );
	EXPECT_STREQ( m_Doc.GetAttributeLabel( 7 ), "Sprite Alpha" );
	// Never set in between, past the end, or negative: the manager's names.
	EXPECT_STREQ( m_Doc.GetAttributeLabel( 5 ), "Attribute 5" );
	EXPECT_STREQ( m_Doc.GetAttributeLabel( 8 ), "Attribute 8" );
	EXPECT_STREQ( m_Doc.GetAttributeLabel( -1 ), "Attribute -1" );
}

TEST_F( ZolDocFixture, PerComponentLabelsJoinWithUnusedForGaps )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 6, 0, "Hue" }, { 6, 2, "Glow" } };
	m_Mgr.m_Usage[ "C_OP_RenderTrails" ] = { { 6, 2, "Trail Fade" }, { 6, -1, "ignored once per-component" } };
	AddRenderer( "C_OP_RenderSprites" );
	EXPECT_STREQ( m_Doc.GetAttributeLabel( 6 ), "Hue, Unused, Glow" );

	AddRenderer( "C_OP_RenderTrails" );
	// The form stays per-component; a whole-attribute record writes the first slot.
	EXPECT_STREQ( m_Doc.GetAttributeLabel( 6 ), "ignored once per-component, Unused, Trail Fade" );
}

TEST_F( ZolDocFixture, LabelsFollowUndoOfARendererRemoval )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 3, -1, "Sprite Size" } };
	AddRenderer( "C_OP_RenderSprites" );
	m_Doc.RemoveElement( PARTICLE_FUNCTION_RENDERER, m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_RENDERER, 0 ) );
	ASSERT_STREQ( m_Doc.GetAttributeLabel( 3 ), "Attribute 3" );

	m_Doc.Undo();

	EXPECT_STREQ( m_Doc.GetAttributeLabel( 3 ), "Sprite Size" );
}

//-----------------------------------------------------------------------------
// Paste
//-----------------------------------------------------------------------------

namespace
{
KeyValues3 MakeClipboard()
{
	KeyValues3 clipboard;
	KeyValues3 *pOperators = clipboard.SetMemberEmptyArray( "Operator" );
	KeyValues3 *pDecay = pOperators->ArrayAddToTail();
	pDecay->SetMemberString( "_class", "C_OP_Decay" );
	pOperators->ArrayAddToTail()->SetMemberString( "_class", "C_OP_FromAnotherBuild" );
	pOperators->ArrayAddToTail()->SetMemberInt( "m_nOpEndCapState", 1 ); // no class at all
	pOperators->ArrayAddToTail()->SetMemberString( "_class", "C_OP_BasicMovement" );

	KeyValues3 *pChild = clipboard.SetMemberEmptyArray( "Children" )->ArrayAddToTail();
	pChild->SetMemberString( "m_ChildRef", "particles/sparks.tfxs" );
	pChild->SetMemberFloat( "m_flDelay", 0.25f );
	pChild->SetMemberString( "m_SomethingElse", "dropped" );

	KeyValues3 *pVariable = clipboard.SetMemberEmptyArray( "Variables" )->ArrayAddToTail();
	pVariable->SetMemberString( "m_Name", "Speed" );
	pVariable->SetMemberString( "m_ValueType", "PVAL_FLOAT" );

	KeyValues3 *pDefinition = clipboard.SetMemberEmptyTable( "System_Definition" );
	pDefinition->SetMemberString( "_class", "CParticleSystemDefinition" );
	pDefinition->SetMemberString( "m_NotARootKey", "dropped" );
	return clipboard;
}
} // namespace

TEST_F( ZolDocFixture, PasteAddsValidElementsKeepingOnlyKeysTheNewNodeHas )
{
	KeyValues3 clipboard = MakeClipboard();

	m_Doc.Paste( &clipboard );

	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_Decay C_OP_BasicMovement" );
	const KeyValues3 *pChild = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_CHILDREN, 0 )->GetKV3();
	EXPECT_STREQ( pChild->GetMemberString( "m_ChildRef" ), "particles/sparks.tfxs" );
	EXPECT_FLOAT_EQ( pChild->GetMemberFloat( "m_flDelay" ), 0.25f );
	EXPECT_FALSE( pChild->HasMember( "m_SomethingElse" ) );

	// A variable's type is no key of its table: it keeps the type a new variable has.
	CZolVariableNode *pVariable = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->AsVariableNode();
	EXPECT_STREQ( pVariable->GetName(), "Speed" );
	EXPECT_EQ( pVariable->GetValueType(), CPulseValueFullType( PVAL_VEC3 ) );

	EXPECT_FALSE( m_Doc.GetRoot()->GetKV3()->HasMember( "m_NotARootKey" ) );
	EXPECT_EQ( m_Doc.GetBehaviorVersion(), m_Mgr.m_nCurrentVersion );
}

TEST_F( ZolDocFixture, PastedNodesBecomeTheSelectionInCreationOrder )
{
	KeyValues3 clipboard = MakeClipboard();

	m_Doc.Paste( &clipboard );

	const ZolElementRef_t expected[] = { { PARTICLE_FUNCTION_OPERATOR, 0 }, { PARTICLE_FUNCTION_OPERATOR, 1 }, { PARTICLE_FUNCTION_CHILDREN, 0 },
		{ PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 }, ZolElementRef_t::Root() };
	ASSERT_EQ( m_Doc.GetSelection().Count(), 5 );
	for ( int i = 0; i < 5; ++i )
		EXPECT_EQ( m_Doc.GetSelection()[ i ], expected[ i ] ) << i;
}

TEST_F( ZolDocFixture, PasteIsOneUndoUnit )
{
	KeyValues3 clipboard = MakeClipboard();
	m_Doc.Paste( &clipboard );

	m_Doc.Undo();

	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
		EXPECT_EQ( m_Doc.GetRoot()->GetNodeCount( ParticleFunctionType_t( nType ) ), 0 ) << nType;
	EXPECT_STREQ( m_Doc.GetRedoHistory()->GetUndoName(), "Paste" );
}

//-----------------------------------------------------------------------------
// History limits and merging
//-----------------------------------------------------------------------------

TEST_F( ZolDocFixture, HistoryKeepsTheLastFiftyEdits )
{
	for ( int i = 0; i < CZolDoc::UNDO_STEP_LIMIT + 1; ++i )
		m_Doc.AddChild( nullptr );

	EXPECT_EQ( m_Doc.GetUndoHistory()->GetStepCount(), 50 );
	for ( int i = 0; i < 60; ++i )
		m_Doc.Undo();
	// The oldest edit can no longer be undone.
	EXPECT_EQ( m_Doc.GetRoot()->GetNodeCount( PARTICLE_FUNCTION_CHILDREN ), 1 );
	EXPECT_EQ( m_Doc.GetRedoHistory()->GetStepCount(), 50 );
}

TEST_F( ZolDocFixture, NewEditAfterUndoDiscardsRedo )
{
	AddOperator( "C_OP_Decay" );
	AddOperator( "C_OP_BasicMovement" );
	m_Doc.Undo();
	ASSERT_EQ( m_Doc.GetRedoHistory()->GetStepCount(), 1 );

	AddOperator( "C_OP_SetFloat" );

	EXPECT_EQ( m_Doc.GetRedoHistory()->GetStepCount(), 0 );
	m_Doc.Redo();
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_Decay C_OP_SetFloat" );
}

TEST_F( ZolDocFixture, ManyWritesInOneUnitUndoToTheStateBeforeTheFirst )
{
	AddOperator( "C_OP_Decay" );
	m_Doc.BeginEdit( "Edit Fade", true );
	CBaseZolNode *pNode = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 );
	pNode->GetKV3ForModify()->SetMemberFloat( "m_flFade", 1.0f );
	m_Doc.BeginEdit( "Edit Fade", true ); // a nested begin of the same edit opens its own unit
	m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3ForModify()->SetMemberFloat( "m_flFade", 2.0f );

	m_Doc.Undo();
	EXPECT_FLOAT_EQ( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3()->GetMemberFloat( "m_flFade" ), 1.0f );
	m_Doc.Undo();
	EXPECT_FALSE( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3()->HasMember( "m_flFade" ) );
}

TEST_F( ZolDocFixture, MergedEditsShareOneUnitWithTheFirstSnapshot )
{
	AddOperator( "C_OP_Decay" );
	UndoMergeInfo_t merge;
	merge.m_MergeKey = "drag m_flFade";
	for ( int i = 1; i <= 3; ++i )
	{
		m_Doc.BeginEdit( "Drag Fade", false, &merge );
		m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3ForModify()->SetMemberFloat( "m_flFade", float( i ) );
	}
	EXPECT_EQ( m_Doc.GetUndoHistory()->GetStepCount(), 2 );

	m_Doc.Undo();

	EXPECT_FALSE( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3()->HasMember( "m_flFade" ) );
	m_Doc.Redo();
	EXPECT_FLOAT_EQ( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3()->GetMemberFloat( "m_flFade" ), 3.0f );
}

TEST_F( ZolDocFixture, DisabledHistoryRecordsNoEdit )
{
	m_Doc.GetUndoHistory()->SetEnabled( false );
	m_Doc.AddChild( nullptr );
	m_Doc.GetUndoHistory()->SetEnabled( true );
	EXPECT_EQ( m_Doc.GetUndoHistory()->GetStepCount(), 0 );
}

TEST_F( ZolDocFixture, SnapshotsAreDocumentsWithoutHistoryOrEvents )
{
	AddOperator();
	m_Recorder.Clear();
	IUndoable *pState = m_Doc.CreateUndoState();
	CZolDoc *pSnapshot = dynamic_cast<CZolDoc *>( pState );
	ASSERT_NE( pSnapshot, nullptr );
	EXPECT_EQ( pSnapshot->GetUndoHistory(), nullptr );
	EXPECT_EQ( pSnapshot->GetEventHub(), nullptr );
	EXPECT_EQ( pSnapshot->GetRoot()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR ), 1 );
	pSnapshot->AddChild( nullptr ); // records nothing, tells nobody
	EXPECT_EQ( m_Recorder.Joined(), "" );
	pState->DestroyUndoState( false );
}

//-----------------------------------------------------------------------------
// Nodes
//-----------------------------------------------------------------------------

TEST_F( ZolDocFixture, ChildReferenceIsStoredWithForwardSlashes )
{
	CTestAsset asset( "particles\\fire\\embers.tfxs" );
	CZolChildNode *pChild = m_Doc.AddChild( &asset );
	EXPECT_STREQ( pChild->GetChildRef(), "particles/fire/embers.tfxs" );

	CBufferString name, value, hint;
	pChild->GetDisplayStrings( &name, &value, &hint );
	EXPECT_STREQ( name.Get(), "embers" );
	EXPECT_STREQ( hint.Get(), "particles/fire/embers.tfxs" );

	// A null asset leaves the reference alone.
	m_Doc.SetChild( pChild, nullptr );
	EXPECT_STREQ( pChild->GetChildRef(), "particles/fire/embers.tfxs" );
}

TEST_F( ZolDocFixture, SetterFunctionsShowTheAttributeTheySet )
{
	m_Mgr.m_Usage[ "C_OP_RenderSprites" ] = { { 7, -1, "Sprite Alpha" } };
	AddRenderer( "C_OP_RenderSprites" );
	CZolFunctionNode *pSetter = m_Doc.AddFunction( nullptr, "C_INIT_InitFloat", PARTICLE_FUNCTION_INITIALIZER );
	pSetter->GetWriteKV3()->SetMemberInt( "m_nOutputField", 7 );
	pSetter->GetWriteKV3()->SetMemberEmptyTable( "m_InputValue" )->SetMemberString( "m_nType", "PF_TYPE_RANDOM_UNIFORM" );
	CZolFunctionNode *pOther = AddOperator( "C_OP_Decay" );

	CBufferString name, value, hint;
	pSetter->GetDisplayStrings( &name, &value, &hint );
	EXPECT_STREQ( name.Get(), "Sprite Alpha" );
	EXPECT_STREQ( value.Get(), "= Random 0 - 1" );
	EXPECT_STREQ( hint.Get(), "Edit node" );

	pOther->GetDisplayStrings( &name, &value, &hint );
	EXPECT_STREQ( name.Get(), "Lifespan Decay" );
	EXPECT_STREQ( value.Get(), "" );
}

TEST_F( ZolDocFixture, UnknownClassAddsNothingAndSelectsNothing )
{
	EXPECT_EQ( m_Doc.AddFunction( nullptr, "C_OP_RenderSprites", PARTICLE_FUNCTION_OPERATOR ), nullptr );
	EXPECT_EQ( m_Doc.GetRoot()->GetNodeCount( PARTICLE_FUNCTION_OPERATOR ), 0 );
	ASSERT_EQ( m_Doc.GetSelection().Count(), 1 );
	EXPECT_EQ( m_Doc.GetSelection()[ 0 ], ZolElementRef_t::None() );
}

TEST_F( ZolDocFixture, UpdateToCurrentVersionDropsFunctionsTheManagerNoLongerHas )
{
	AddOperator( "C_OP_Decay" );
	AddOperator( "C_OP_BasicMovement" );
	m_Doc.GetRoot()->GetWriteKV3()->SetMemberInt( "m_nBehaviorVersion", 3 );
	m_Mgr.m_Classes.erase( m_Mgr.m_Classes.begin() + 4 ); // C_OP_Decay

	m_Doc.UpdateToCurrentVersion();

	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_BasicMovement" );
	EXPECT_TRUE( m_Doc.IsCurrentBehaviorVersion() );
}

TEST_F( ZolDocFixture, VariableKeepsTypeAndConfigurationThroughUndo )
{
	m_Doc.AddVariable( "Tint", CPulseValueFullType( PVAL_FLOAT ) );
	m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->AsVariableNode()->GetDefaultConfigForModify().m_ConfigName = "base";
	m_Doc.AddChild( nullptr );

	m_Doc.Undo();

	CZolVariableNode *pVariable = m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, 0 )->AsVariableNode();
	EXPECT_STREQ( pVariable->GetName(), "Tint" );
	EXPECT_EQ( pVariable->GetValueType(), CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_STREQ( pVariable->GetDefaultConfig().m_ConfigName.Get(), "base" );
	EXPECT_FALSE( pVariable->GetKV3()->HasMember( "m_ValueType" ) );
}

TEST( ZolDocWithoutRoot, OperationsDoNothingInsteadOfCrashing )
{
	CZolDoc doc;
	CTestAsset asset( "particles/a.tfxs" );
	KeyValues3 clipboard;
	clipboard.SetMemberEmptyArray( "Children" )->ArrayAddToTail();

	EXPECT_EQ( doc.AddChild( &asset ), nullptr );
	EXPECT_EQ( doc.AddFunction( nullptr, "C_OP_Decay", PARTICLE_FUNCTION_OPERATOR ), nullptr );
	EXPECT_EQ( doc.AddVariable( "Speed", CPulseValueFullType( PVAL_FLOAT ) ), nullptr );
	doc.Paste( &clipboard );
	doc.UpdateToCurrentVersion();
	doc.RemoveSelected();
	EXPECT_EQ( doc.GetRoot(), nullptr );
	EXPECT_EQ( doc.GetBehaviorVersion(), 0 );
}
