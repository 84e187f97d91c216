// Undo and redo of document edits on the shipped summing loop: a deleted node comes back
// with its id and its connections, nodes kept across the reload stay the same objects,
// listeners hear of it, and the document runs as before.

#include <gtest/gtest.h>

#include <fstream>

#include "pulsedoc_lib/model/pulsedocnode.h"
#include "pulsedoc_lib/model/pulsedocnodetype.h"
#include "pulsedoctest.h"

namespace
{
struct ChangeRecorder_t final : IPulseDocListener
{
	std::vector<PulseDocChangeKind_t> m_Kinds;
	std::vector<PulseDocNodeID_t> m_Removed;
	void OnPulseDocChanged( PulseDocChangeKind_t eKind ) override { m_Kinds.push_back( eKind ); }
	void OnPulseDocNodeRemoved( PulseDocNodeID_t nID ) override { m_Removed.push_back( nID ); }
};

class PulseDocUndoTest : public testing::Test
{
protected:
	void SetUp() override
	{
		std::ifstream file( PulseDocTestSourceDir() + "/content/content/pulse/documents/summing_loop.tpulse", std::ios::binary );
		m_Original.assign( std::istreambuf_iterator<char>( file ), {} );
		CPulseDocMessages messages;
		ASSERT_TRUE( m_Doc.LoadText( m_Original.data(), m_Original.size(), &messages ) ) << messages.ToText().Get();
		m_Doc.AddListener( &m_Changes );
	}
	void TearDown() override { m_Doc.RemoveListener( &m_Changes ); }

	std::string Saved() const
	{
		CUtlString text, error;
		EXPECT_TRUE( m_Doc.SaveText( &text, &error ) ) << error.Get();
		return text.Get();
	}

	// What the document logs when it runs now.
	std::vector<std::string> Run() { return RunPulseDoc( Saved() ); }

	std::string m_Original;
	CPulseDoc m_Doc { &PulseDocTestDescriptions() };
	ChangeRecorder_t m_Changes;
};

TEST_F( PulseDocUndoTest, UndoOfADeleteBringsTheNodeBackWithItsConnections )
{
	const std::vector<std::string> before = Run();
	ASSERT_EQ( before, std::vector<std::string>{ "1 + 2 + ... + 10 = 55" } );
	CPulseDocNode *pLoop = m_Doc.FindNode( 3 );
	CPulseDocNode *pSetVar = m_Doc.FindNode( 5 );
	ASSERT_TRUE( pLoop && pSetVar && m_Doc.FindNode( 6 ) );

	// The expression the loop body adds with, connected to the loop's value.
	m_Doc.RemoveNode( m_Doc.FindNode( 6 ) );
	EXPECT_EQ( m_Doc.FindNode( 6 ), nullptr );
	EXPECT_EQ( m_Changes.m_Removed, std::vector<PulseDocNodeID_t>{ 6 } );
	EXPECT_TRUE( m_Doc.CanUndo() );
	std::unique_ptr<PulseDocCompiled_t> pBroken = CompilePulseDocText( Saved() );
	EXPECT_FALSE( pBroken->m_bCompiled ) << "the set variable lost its value's source";

	m_Changes.m_Kinds.clear();
	m_Doc.Undo();
	EXPECT_EQ( m_Changes.m_Kinds, std::vector<PulseDocChangeKind_t>{ PULSE_DOC_CHANGE_UNDO_APPLIED } );
	CPulseDocNode *pBack = m_Doc.FindNode( 6 );
	ASSERT_NE( pBack, nullptr );
	EXPECT_STREQ( pBack->GetNodeTypeInfo().m_pClassName, "CPulseDoc_Value_Expression" );
	std::vector<const CPulseDoc_Connection_Inparam *> fromLoop;
	m_Doc.GatherConnectionsFrom( pLoop, "value", &fromLoop );
	EXPECT_EQ( fromLoop.size(), 1u );
	// Nodes the delete didn't touch are the objects they were.
	EXPECT_EQ( m_Doc.FindNode( 3 ), pLoop );
	EXPECT_EQ( m_Doc.FindNode( 5 ), pSetVar );
	EXPECT_EQ( Saved(), m_Original );
	EXPECT_EQ( Run(), before );

	EXPECT_TRUE( m_Doc.CanRedo() );
	m_Doc.Redo();
	EXPECT_EQ( m_Doc.FindNode( 6 ), nullptr );
	EXPECT_EQ( m_Doc.FindNode( 3 ), pLoop );
	m_Doc.Undo();
	EXPECT_EQ( Saved(), m_Original );
}

TEST_F( PulseDocUndoTest, UndoOfAnAddTakesTheNodeAwayAndRedoGivesItTheSameID )
{
	CPulseDocNode *pGroup = m_Doc.FindNode( 2 );
	ASSERT_NE( pGroup, nullptr );
	CPulseDocNode *pLog = m_Doc.AddNode( PulseDoc_CreateNode( "CPulseDoc_Step_DebugLog" ), pGroup );
	const PulseDocNodeID_t nID = pLog->GetNodeID();
	EXPECT_GT( nID, 10 ) << "a new id is above every id in use";
	EXPECT_EQ( m_Doc.FindNode( nID ), pLog );
	EXPECT_NE( Saved(), m_Original );

	m_Doc.Undo();
	EXPECT_EQ( m_Doc.FindNode( nID ), nullptr );
	EXPECT_EQ( Saved(), m_Original );
	EXPECT_FALSE( m_Doc.CanUndo() );

	m_Doc.Redo();
	ASSERT_NE( m_Doc.FindNode( nID ), nullptr );
	EXPECT_EQ( m_Doc.FindNode( nID )->GetParent(), pGroup );
}

TEST_F( PulseDocUndoTest, EditsUndoInTheOppositeOrder )
{
	m_Doc.RemoveNode( m_Doc.FindNode( 4 ) );
	const std::string afterFirst = Saved();
	m_Doc.RemoveNode( m_Doc.FindNode( 7 ) );
	m_Doc.Undo();
	EXPECT_EQ( Saved(), afterFirst );
	EXPECT_EQ( m_Doc.FindNode( 4 ), nullptr );
	ASSERT_NE( m_Doc.FindNode( 7 ), nullptr );
	m_Doc.Undo();
	EXPECT_EQ( Saved(), m_Original );
	EXPECT_FALSE( m_Doc.CanUndo() );
}
} // namespace
