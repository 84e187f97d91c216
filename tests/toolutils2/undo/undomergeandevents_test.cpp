#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "tests/toolutils2/undo/testundoable.h"
#include "tools/toolutils2/undo/undolistener.h"

namespace
{
using Values_t = std::vector<int>;

UndoMergeInfo_t MergeKey( const char *pKey )
{
	UndoMergeInfo_t merge;
	merge.m_MergeKey = pKey;
	return merge;
}

// A drag: every mouse move opens a step with the same key and changes the value.
void DragTo( CTestUndoable *pDoc, CUndoHistory *pHistory, int nValue, const UndoMergeInfo_t &merge )
{
	pHistory->BeginStep( "Drag", &merge );
	pHistory->NoteModified( pDoc );
	pDoc->m_Values = { nValue };
}

class CRecordingListener : public IUndoListener
{
public:
	CRecordingListener( std::vector<std::pair<char, int>> *pLog, char cName ) : m_pLog( pLog ), m_cName( cName ) {}
	void OnUndoEvent( UndoEvent_t eEvent ) override { m_pLog->emplace_back( m_cName, int( eEvent ) ); }

private:
	std::vector<std::pair<char, int>> *m_pLog;
	char m_cName;
};

// Merges only while the dragged distance stays small, and relabels the step.
class CDistanceMerge : public IUndoMergeFunc
{
public:
	void Merge( UndoMergeResult_t *pResult, const KeyValues3 &lastData, const char *pMergeKey ) override
	{
		m_LastKey = pMergeKey;
		int nTotal = lastData.GetMemberInt( "distance" ) + pResult->m_MergeData.GetMemberInt( "distance" );
		if ( nTotal > 10 )
			return;
		pResult->m_bMerge = true;
		pResult->m_Name.Format( "Drag %d", nTotal );
		pResult->m_MergeData.SetMemberInt( "distance", nTotal );
	}
	std::string m_LastKey;
};
} // namespace

TEST( UndoMerge, SameKeyTwiceInARowLeavesOneStepWithTheFirstSnapshot )
{
	CTestUndoable doc;
	TestUndoPair_t pair;
	doc.m_Values = { 0 };
	UndoMergeInfo_t drag = MergeKey( "drag" );
	DragTo( &doc, &pair.m_Undo, 1, drag );
	DragTo( &doc, &pair.m_Undo, 2, drag );
	DragTo( &doc, &pair.m_Undo, 3, drag );
	EXPECT_EQ( pair.m_Undo.GetStepCount(), 1 );
	EXPECT_EQ( doc.m_nSnapshotsTaken, 1 );

	pair.m_Undo.PerformUndo();
	EXPECT_EQ( doc.m_Values, ( Values_t{ 0 } ) );
}

TEST( UndoMerge, DifferentEmptyOrInterruptedKeysMakeSeparateSteps )
{
	CTestUndoable doc;
	TestUndoPair_t pair;
	DragTo( &doc, &pair.m_Undo, 1, MergeKey( "drag x" ) );
	DragTo( &doc, &pair.m_Undo, 2, MergeKey( "drag y" ) );
	DragTo( &doc, &pair.m_Undo, 3, MergeKey( "" ) );
	DragTo( &doc, &pair.m_Undo, 4, MergeKey( "" ) );
	pair.m_Undo.BeginStep( "Plain" );
	DragTo( &doc, &pair.m_Undo, 5, MergeKey( "drag y" ) );
	EXPECT_EQ( pair.m_Undo.GetStepCount(), 6 );
}



TEST( UndoMerge, MergeFunctionDecidesAndRelabels )
{
	CTestUndoable doc;
	TestUndoPair_t pair;
	CDistanceMerge distance;
	UndoMergeInfo_t merge = MergeKey( "move" );
	merge.m_pMergeFunc = &distance;
	merge.m_MergeData.SetMemberInt( "distance", 4 );

	DragTo( &doc, &pair.m_Undo, 1, merge ); // new step, data { distance 4 }
	DragTo( &doc, &pair.m_Undo, 2, merge ); // 8: merged
	EXPECT_EQ( distance.m_LastKey, "move" );
	ASSERT_EQ( pair.m_Undo.GetStepCount(), 1 );
	EXPECT_STREQ( pair.m_Undo.GetUndoName(), "Drag 8" );
	EXPECT_EQ( pair.m_Undo.GetStep( 0 )->GetMergeData().GetMemberInt( "distance" ), 8 );

	DragTo( &doc, &pair.m_Undo, 3, merge ); // 12: too far, a new step
	EXPECT_EQ( pair.m_Undo.GetStepCount(), 2 );
	EXPECT_STREQ( pair.m_Undo.GetUndoName(), "Drag" );
}


TEST( UndoEvents, ListenersOfBothHistoriesHearEveryEventInOrder )
{
	std::vector<std::pair<char, int>> log;
	CRecordingListener onUndo( &log, 'u' ), onRedo( &log, 'r' );
	CTestUndoable doc;
	TestUndoPair_t pair;
	doc.m_pHistory = &pair.m_Undo;
	pair.m_Undo.AddListener( &onUndo );
	pair.m_Redo.AddListener( &onRedo );

	doc.Append( 1, "a" );
	pair.m_Undo.PerformUndo();
	pair.m_Redo.PerformUndo();
	std::vector<std::pair<char, int>> expected = {
		{ 'u', UNDO_EVENT_STEP_OPENED }, { 'r', UNDO_EVENT_STEP_OPENED },
		{ 'u', UNDO_EVENT_BEFORE_UNDO }, { 'r', UNDO_EVENT_BEFORE_UNDO },
		{ 'u', UNDO_EVENT_AFTER_UNDO }, { 'r', UNDO_EVENT_AFTER_UNDO },
		// A redo happens on the redo history: its own listeners hear it first.
		{ 'r', UNDO_EVENT_BEFORE_UNDO }, { 'u', UNDO_EVENT_BEFORE_UNDO },
		{ 'r', UNDO_EVENT_AFTER_UNDO }, { 'u', UNDO_EVENT_AFTER_UNDO },
	};
	EXPECT_EQ( log, expected );

	pair.m_Undo.RemoveListener( &onUndo );
	pair.m_Redo.RemoveListener( &onRedo );
}


TEST( UndoEvents, RemovedListenerHearsNothingAndOthersKeepTheirOrder )
{
	std::vector<std::pair<char, int>> log;
	CRecordingListener a( &log, 'a' ), b( &log, 'b' ), c( &log, 'c' );
	TestUndoPair_t pair;
	pair.m_Undo.AddListener( &a );
	pair.m_Undo.AddListener( &b );
	pair.m_Undo.AddListener( &c );
	pair.m_Undo.RemoveListener( &b );
	pair.m_Undo.BeginStep( "x" );
	EXPECT_EQ( log, ( std::vector<std::pair<char, int>>{ { 'a', 2 }, { 'c', 2 } } ) );
	pair.m_Undo.RemoveListener( &a );
	pair.m_Undo.RemoveListener( &c );
}

TEST( UndoEvents, ListenerThatOpensAStepWhileOneIsOpeningIsRefused )
{
	struct CReopener : IUndoListener
	{
		CUndoHistory *m_pHistory = nullptr;
		int m_nRefused = 0;
		void OnUndoEvent( UndoEvent_t eEvent ) override
		{
			if ( eEvent == UNDO_EVENT_STEP_OPENED && !m_pHistory->BeginStep( "nested" ) )
				++m_nRefused;
		}
	} reopener;
	TestUndoPair_t pair;
	reopener.m_pHistory = &pair.m_Undo;
	pair.m_Undo.AddListener( &reopener );
	EXPECT_TRUE( pair.m_Undo.BeginStep( "outer" ) );
	EXPECT_EQ( reopener.m_nRefused, 1 );
	EXPECT_EQ( pair.m_Undo.GetStepCount(), 1 );
	pair.m_Undo.RemoveListener( &reopener );
}
