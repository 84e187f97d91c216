#include <gtest/gtest.h>

#include <string>

#include "tests/toolutils2/undo/testundoable.h"

namespace
{
using Values_t = std::vector<int>;

// Each test owns a document noted in the primary history of a fresh pair. The pair is
// declared after the document so it goes first, giving its references back.
struct UndoFixture : ::testing::Test
{
	int m_nLiveStates = 0;
	CTestUndoable m_Doc{ &m_nLiveStates };
	TestUndoPair_t m_Pair;

	UndoFixture()
	{
		m_Doc.m_pHistory = &m_Pair.m_Undo;
		m_nLiveStates = 0; // the document itself is not a snapshot
	}
	void Undo() { m_Pair.m_Undo.PerformUndo(); }
	void Redo() { m_Pair.m_Redo.PerformUndo(); }
};
} // namespace

using UndoHistory = UndoFixture;

TEST_F( UndoHistory, UndoRestoresTheStateBeforeEachStep )
{
	m_Doc.Append( 1, "Add 1" );
	m_Doc.Append( 2, "Add 2" );
	m_Doc.Append( 3, "Add 3" );
	ASSERT_EQ( m_Pair.m_Undo.GetStepCount(), 3 );

	Undo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 2 } ) );
	Undo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1 } ) );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 2 );
	EXPECT_STREQ( m_Pair.m_Undo.GetUndoName(), "Add 1" );
	EXPECT_STREQ( m_Pair.m_Redo.GetUndoName(), "Add 2" );
}

TEST_F( UndoHistory, RedoAfterUndoBringsTheEditBack )
{
	m_Doc.Append( 1, "Add 1" );
	m_Doc.Append( 2, "Add 2" );
	Undo();
	Undo();
	ASSERT_TRUE( m_Doc.m_Values.empty() );

	Redo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1 } ) );
	Redo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 2 } ) );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 2 );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 0 );
	EXPECT_STREQ( m_Pair.m_Undo.GetUndoName(), "Add 2" );

	// And the redone step can be undone again.
	Undo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1 } ) );
}

TEST_F( UndoHistory, ManyChangesInOneStepKeepOnlyTheFirstSnapshot )
{
	m_Doc.m_Values = { 7 };
	m_Pair.m_Undo.BeginStep( "Fill" );
	for ( int i = 0; i < 5; ++i )
	{
		m_Pair.m_Undo.NoteModified( &m_Doc );
		m_Doc.m_Values.push_back( i );
	}
	EXPECT_EQ( m_Doc.m_nSnapshotsTaken, 1 );
	ASSERT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
	EXPECT_EQ( m_Pair.m_Undo.GetStep( 0 )->GetRecordCount(), 1 );

	Undo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 7 } ) );
	EXPECT_EQ( m_Doc.m_nAppliedNotices, 1 );
}


TEST_F( UndoHistory, NewEditDiscardsTheRedoList )
{
	m_Doc.Append( 1, "a" );
	m_Doc.Append( 2, "b" );
	m_Doc.Append( 3, "c" );
	Undo();
	Undo();
	// The steps that undo opens on the redo side leave the older ones there.
	ASSERT_EQ( m_Pair.m_Redo.GetStepCount(), 2 );

	m_Doc.Append( 9, "d" );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 0 );
	EXPECT_FALSE( m_Pair.m_Redo.CanUndo() );
	Redo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 9 } ) );
	EXPECT_EQ( m_nLiveStates, 2 ); // the snapshots of "a" and "d"; the discarded ones are gone
}

TEST_F( UndoHistory, UndoWithNoStepsDoesNothing )
{
	Undo();
	Redo();
	EXPECT_TRUE( m_Doc.m_Values.empty() );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 0 );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 0 );
	EXPECT_STREQ( m_Pair.m_Undo.GetUndoName(), "" );
}

TEST_F( UndoHistory, NoteModifiedWithoutAStepOpensAnUnnamedOne )
{
	m_Pair.m_Undo.NoteModified( &m_Doc );
	m_Doc.m_Values.push_back( 4 );
	ASSERT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
	EXPECT_STREQ( m_Pair.m_Undo.GetUndoName(), "" );
	Undo();
	EXPECT_TRUE( m_Doc.m_Values.empty() );
}

TEST_F( UndoHistory, StepNamesAreCutTo127Characters )
{
	std::string exact( 127, 'x' );
	std::string tooLong = std::string( 127, 'y' ) + "z";
	m_Pair.m_Undo.BeginStep( exact.c_str() );
	EXPECT_EQ( m_Pair.m_Undo.GetUndoName(), exact );
	m_Pair.m_Undo.BeginStep( tooLong.c_str() );
	EXPECT_EQ( m_Pair.m_Undo.GetUndoName(), std::string( 127, 'y' ) );
	EXPECT_EQ( m_Pair.m_Undo.GetStepName( 1 ), exact );
	EXPECT_STREQ( m_Pair.m_Undo.GetStepName( 2 ), "" );
	EXPECT_STREQ( m_Pair.m_Undo.GetStepName( -1 ), "" );
}


TEST( UndoHistoryLimit, OldestStepsAreDroppedBeyondTheLimit )
{
	CTestUndoable doc;
	TestUndoPair_t pair( 50 );
	doc.m_pHistory = &pair.m_Undo;
	for ( int i = 1; i <= 51; ++i )
		doc.Append( i, ( "Step " + std::to_string( i ) ).c_str() );
	EXPECT_EQ( pair.m_Undo.GetStepCount(), 50 );
	EXPECT_STREQ( pair.m_Undo.GetStepName( 49 ), "Step 2" );
	EXPECT_STREQ( pair.m_Undo.GetUndoName(), "Step 51" );

	for ( int i = 0; i < 60; ++i )
		pair.m_Undo.PerformUndo();
	EXPECT_EQ( doc.m_Values, ( Values_t{ 1 } ) );
	EXPECT_EQ( pair.m_Redo.GetStepCount(), 50 );
}

TEST( UndoHistoryLimit, LimitOfOneKeepsTheNewestStep )
{
	CTestUndoable doc;
	TestUndoPair_t pair( 1 );
	doc.m_pHistory = &pair.m_Undo;
	doc.Append( 1, "first" );
	doc.Append( 2, "second" );
	ASSERT_EQ( pair.m_Undo.GetStepCount(), 1 );
	EXPECT_STREQ( pair.m_Undo.GetUndoName(), "second" );
	pair.m_Undo.PerformUndo();
	EXPECT_EQ( doc.m_Values, ( Values_t{ 1 } ) );
}

TEST( UndoHistoryLimit, LimitIsClampedToOneThroughTenThousand )
{
	EXPECT_EQ( CUndoHistory( 0 ).GetStepLimit(), 1 );
	EXPECT_EQ( CUndoHistory( -3 ).GetStepLimit(), 1 );
	EXPECT_EQ( CUndoHistory( 20000 ).GetStepLimit(), 10000 );
	EXPECT_EQ( CUndoHistory( 50 ).GetStepLimit(), 50 );
}

TEST_F( UndoHistory, ChangeMadeWhileApplyingAStepIsNotRecorded )
{
	// A document that reacts to being restored by editing itself again, as one that
	// re-derives data would.
	m_Doc.m_OnApply = []( CTestUndoable *pDoc ) {
		EXPECT_FALSE( pDoc->m_pHistory->BeginStep( "Fix up" ) );
		pDoc->m_pHistory->NoteModified( pDoc );
		pDoc->m_Values.push_back( 100 );
	};
	m_Doc.Append( 1, "a" );
	m_Doc.Append( 2, "b" );
	Undo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 100 } ) );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
	ASSERT_EQ( m_Pair.m_Redo.GetStepCount(), 1 );
	EXPECT_EQ( m_Pair.m_Redo.GetStep( 0 )->GetRecordCount(), 1 );

	// The redo side applies while the undo side is idle; the fix-up must still not
	// open a step there nor add a second snapshot.
	Redo();
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1, 2, 100 } ) );
	EXPECT_EQ( m_Pair.m_Redo.GetStepCount(), 0 );
	ASSERT_EQ( m_Pair.m_Undo.GetStepCount(), 2 );
	EXPECT_EQ( m_Pair.m_Undo.GetStep( 0 )->GetRecordCount(), 1 );
	EXPECT_STREQ( m_Pair.m_Undo.GetUndoName(), "b" );
}

TEST_F( UndoHistory, DisabledHistoryRecordsNothing )
{
	m_Doc.Append( 1, "a" );
	m_Pair.m_Undo.SetEnabled( false );
	EXPECT_FALSE( m_Pair.m_Undo.CanUndo() );
	EXPECT_FALSE( m_Pair.m_Undo.BeginStep( "b" ) );
	m_Pair.m_Undo.NoteModified( &m_Doc );
	Undo();
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
	EXPECT_EQ( m_Doc.m_Values, ( Values_t{ 1 } ) );

	m_Pair.m_Undo.SetEnabled( true );
	EXPECT_TRUE( m_Pair.m_Undo.CanUndo() );
}

TEST_F( UndoHistory, SuspendedRecordingRecordsNothing )
{
	CUndoHistory::SetRecordingEnabled( false );
	m_Doc.Append( 1, "a" );
	CUndoHistory::SetRecordingEnabled( true );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 0 );
	EXPECT_EQ( m_Doc.m_nSnapshotsTaken, 0 );
	m_Doc.Append( 2, "b" );
	EXPECT_EQ( m_Pair.m_Undo.GetStepCount(), 1 );
}

TEST_F( UndoHistory, UntrackedObjectIsNotSnapshotted )
{
	struct CUntracked : CTestUndoable
	{
		bool IsUndoTracked() const override { return false; }
	} untracked;
	m_Pair.m_Undo.BeginStep( "a" );
	m_Pair.m_Undo.NoteModified( &untracked );
	EXPECT_EQ( untracked.m_nSnapshotsTaken, 0 );
	EXPECT_EQ( m_Pair.m_Undo.GetStep( 0 )->GetRecordCount(), 0 );
}

TEST( UndoHistoryReferences, EveryReferenceAndSnapshotIsGivenBack )
{
	int nLiveStates = 0;
	CTestUndoable parent;
	CTestUndoable doc( &nLiveStates );
	nLiveStates = 0;
	doc.m_pParent = &parent;
	{
		TestUndoPair_t pair( 3 );
		doc.m_pHistory = &pair.m_Undo;
		for ( int i = 0; i < 6; ++i )
			doc.Append( i, "edit" ); // trimming destroys the oldest three
		pair.m_Undo.PerformUndo();
		pair.m_Undo.PerformUndo();
		pair.m_Redo.PerformUndo();
		EXPECT_GT( doc.m_nRefs, 0 );
		EXPECT_GT( parent.m_nRefs, 0 );
		EXPECT_EQ( nLiveStates, 3 );
	}
	EXPECT_EQ( doc.m_nRefs, 0 );
	EXPECT_EQ( parent.m_nRefs, 0 );
	EXPECT_EQ( nLiveStates, 0 );
}

TEST( UndoHistoryReferences, UndoPutsTheObjectBackUnderItsRecordedParent )
{
	CTestUndoable oldParent, newParent;
	CTestUndoable doc;
	TestUndoPair_t pair;
	doc.m_pParent = &oldParent;
	pair.m_Undo.BeginStep( "Reparent" );
	pair.m_Undo.NoteModified( &doc );
	doc.m_pParent = &newParent;
	pair.m_Undo.PerformUndo();
	EXPECT_EQ( doc.m_pParent, &oldParent );
	pair.m_Redo.PerformUndo();
	EXPECT_EQ( doc.m_pParent, &newParent );
}
