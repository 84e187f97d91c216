#include "tests/zoldoc/zoldoctestsupport.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"

namespace
{
std::string SelectedClasses( const CZolDoc &doc )
{
	CUtlVector<CBaseZolNode *> nodes;
	doc.GetSelectedNodes( nodes );
	std::string classes;
	for ( const CBaseZolNode *pNode : nodes )
		classes += ( classes.empty() ? "" : " " ) + std::string( pNode->GetClassName() );
	return classes;
}
} // namespace

TEST_F( ZolDocFixture, SelectionOfANodeWhoseCreationWasUndoneResolvesToNothing )
{
	AddOperator();
	ASSERT_EQ( SelectedClasses( m_Doc ), "C_OP_Decay" );
	m_Doc.SelectElement( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 ), false );

	// Undo restores the selection recorded before the add: the new node never was selected there.
	m_Doc.Undo();
	EXPECT_EQ( SelectedClasses( m_Doc ), "" );

	// A pair kept from before, naming an index that is gone, resolves to nothing too.
	EXPECT_EQ( m_Doc.ResolveElementRef( { PARTICLE_FUNCTION_OPERATOR, 0 } ), nullptr );
}

TEST_F( ZolDocFixture, PairsThatNameNoNodeAreSkipped )
{
	AddOperator();
	struct Case_t
	{
		ZolElementRef_t m_Ref;
		bool m_bResolves;
	};
	const Case_t cases[] = {
		{ { PARTICLE_FUNCTION_ROOT, 0 }, true },
		{ { PARTICLE_FUNCTION_ROOT, 1 }, false },
		{ { PARTICLE_FUNCTION_ROOT, -1 }, false },
		{ { PARTICLE_FUNCTION_OPERATOR, 0 }, true },
		{ { PARTICLE_FUNCTION_OPERATOR, 1 }, false },
		{ { PARTICLE_FUNCTION_EMITTER, 0 }, false },
		{ { 12, 0 }, false },
	};
	for ( const Case_t &testCase : cases )
		EXPECT_EQ( m_Doc.ResolveElementRef( testCase.m_Ref ) != nullptr, testCase.m_bResolves ) << testCase.m_Ref.m_nType << "," << testCase.m_Ref.m_nIndex;
}

TEST_F( ZolDocFixture, SelectingTheRootOrNothingGivesTheirPairs )
{
	m_Doc.SelectElement( m_Doc.GetRoot(), false );
	ASSERT_EQ( m_Doc.GetSelection().Count(), 1 );
	EXPECT_EQ( m_Doc.GetSelection()[ 0 ], ZolElementRef_t::Root() );
	EXPECT_TRUE( m_Doc.HasSelection() );
	EXPECT_FALSE( m_Doc.HasNonBaseSelection() );

	m_Doc.SelectElement( nullptr, false );
	EXPECT_EQ( m_Doc.GetSelection()[ 0 ], ZolElementRef_t::None() );
	EXPECT_TRUE( m_Doc.HasNonBaseSelection() );
}

TEST_F( ZolDocFixture, AddingAnAlreadySelectedNodeKeepsTheOrder )
{
	CZolFunctionNode *pDecay = AddOperator( "C_OP_Decay" );
	CZolFunctionNode *pMove = AddOperator( "C_OP_BasicMovement" );
	m_Doc.SelectElement( pDecay, false );
	m_Doc.AddElementToSelection( pMove, false );
	m_Doc.AddElementToSelection( pDecay, false );
	EXPECT_EQ( SelectedClasses( m_Doc ), "C_OP_Decay C_OP_BasicMovement" );
}

TEST_F( ZolDocFixture, RemoveSelectedWithTwoNodesOfOneListRemovesExactlyThose )
{
	AddOperator( "C_OP_Decay" );
	AddOperator( "C_OP_BasicMovement" );
	AddOperator( "C_OP_SetFloat" );
	CZolRootNode *pRoot = m_Doc.GetRoot();
	m_Doc.SelectElement( pRoot->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 ), false );
	m_Doc.AddElementToSelection( pRoot->GetNode( PARTICLE_FUNCTION_OPERATOR, 1 ), false );
	m_Doc.AddElementToSelection( pRoot, false );

	m_Doc.BeginEdit( "Delete", true );
	m_Doc.RemoveSelected();

	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_SetFloat" );
	EXPECT_EQ( m_Doc.GetRoot(), pRoot );
	ASSERT_EQ( m_Doc.GetSelection().Count(), 1 );
	EXPECT_TRUE( m_Doc.GetSelection()[ 0 ].IsRoot() );
}

TEST_F( ZolDocFixture, ToggleSelectedFlipsFunctionsButLeavesTheRoot )
{
	CZolFunctionNode *pDecay = AddOperator( "C_OP_Decay" );
	CZolFunctionNode *pMove = AddOperator( "C_OP_BasicMovement" );
	pMove->SetEnabled( false );
	m_Doc.SelectElement( pDecay, false );
	m_Doc.AddElementToSelection( pMove, false );
	m_Doc.AddElementToSelection( m_Doc.GetRoot(), false );

	m_Doc.ToggleSelected();

	EXPECT_FALSE( pDecay->IsEnabled() );
	EXPECT_TRUE( pMove->IsEnabled() );
	EXPECT_FALSE( m_Doc.GetRoot()->GetReadKV3()->HasMember( "m_bDisableOperator" ) );
}

TEST_F( ZolDocFixture, UndoAndRedoRestoreNodesAndSelection )
{
	AddOperator( "C_OP_Decay" );
	AddRenderer( "C_OP_RenderSprites" );
	m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3ForModify()->SetMemberFloat( "m_flOpEndFadeInTime", 0.5f );
	m_Doc.SelectElement( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 ), true );

	m_Doc.BeginEdit( "Delete", true );
	m_Doc.RemoveSelected();
	ASSERT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "" );

	m_Doc.Undo();
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "C_OP_Decay" );
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_RENDERER ), "C_OP_RenderSprites" );
	EXPECT_FLOAT_EQ( m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_OPERATOR, 0 )->GetKV3()->GetMemberFloat( "m_flOpEndFadeInTime" ), 0.5f );
	EXPECT_EQ( SelectedClasses( m_Doc ), "C_OP_Decay" );

	m_Doc.Redo();
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_OPERATOR ), "" );
	EXPECT_EQ( ListClasses( PARTICLE_FUNCTION_RENDERER ), "C_OP_RenderSprites" );
	ASSERT_EQ( m_Doc.GetSelection().Count(), 1 );
	EXPECT_TRUE( m_Doc.GetSelection()[ 0 ].IsRoot() );
}
