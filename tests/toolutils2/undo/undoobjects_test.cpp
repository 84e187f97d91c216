#include <gtest/gtest.h>

#include <algorithm>

#include "tests/toolutils2/undo/testundoable.h"
#include "tools/toolutils2/undo/undoobjecthost.h"

namespace
{
// A container of child objects that undo takes objects out of and puts back into.
class CTestObjectHost : public IUndoObjectHost
{
public:
	std::vector<IUndoable *> m_Children;
	int m_nRedoStepsOpened = 0;

	void RemoveUndoObject( IUndoable *pObject ) override
	{
		m_Children.erase( std::remove( m_Children.begin(), m_Children.end(), pObject ), m_Children.end() );
	}
	void RestoreUndoObject( IUndoable *pObject, IUndoable *, int nIndex ) override
	{
		nIndex = std::clamp( nIndex, 0, int( m_Children.size() ) );
		m_Children.insert( m_Children.begin() + nIndex, pObject );
	}
	void OnRedoStepOpened( CUndoHistory * ) override { ++m_nRedoStepsOpened; }
};

struct UndoObjectsFixture : ::testing::Test
{
	int m_nLive = 0;
	CTestUndoable m_Parent;
	CTestObjectHost m_Host;
	CTestUndoable *m_pFirst = new CTestUndoable( &m_nLive );
	CTestUndoable *m_pSecond = new CTestUndoable( &m_nLive );
	// Children still in the container at the end are the test's to delete, after the
	// histories have given back theirs.
	struct CChildCleanup
	{
		CTestObjectHost *m_pHost;
		~CChildCleanup()
		{
			for ( IUndoable *pChild : m_pHost->m_Children )
				delete pChild;
		}
	} m_Cleanup{ &m_Host };
	CUndoHistory m_Undo{ 50, &m_Host };
	CUndoHistory m_Redo{ 50, &m_Host };

	UndoObjectsFixture()
	{
		m_Undo.SetPartner( true, &m_Redo );
		for ( CTestUndoable *pChild : { m_pFirst, m_pSecond } )
		{
			pChild->m_nIndexInParent = int( m_Host.m_Children.size() );
			pChild->m_pParent = &m_Parent;
			m_Host.m_Children.push_back( pChild );
		}
	}
	// The way a container removes a child: note it, then take it out. From here on the
	// history owns the child.
	void RemoveChild( CTestUndoable *pChild )
	{
		m_Undo.BeginStep( "Remove" );
		EXPECT_EQ( m_Undo.NoteRemoved( pChild ), UNDO_NOTE_RECORDED );
		m_Host.RemoveUndoObject( pChild );
		pChild->m_pParent = nullptr;
	}
};
} // namespace

using UndoObjects = UndoObjectsFixture;

TEST_F( UndoObjects, UndoingARemovalPutsTheObjectBackInPlace )
{
	RemoveChild( m_pFirst );
	EXPECT_TRUE( m_pFirst->m_bHeldByHistory );
	ASSERT_EQ( m_Host.m_Children, ( std::vector<IUndoable *>{ m_pSecond } ) );

	m_Undo.PerformUndo();
	EXPECT_EQ( m_Host.m_Children, ( std::vector<IUndoable *>{ m_pFirst, m_pSecond } ) );
	EXPECT_EQ( m_pFirst->m_pParent, &m_Parent );
	EXPECT_FALSE( m_pFirst->m_bHeldByHistory );
	EXPECT_EQ( m_Host.m_nRedoStepsOpened, 1 );

	// Redoing takes it out again, through the record the undo left on the redo side.
	m_Redo.PerformUndo();
	EXPECT_EQ( m_Host.m_Children, ( std::vector<IUndoable *>{ m_pSecond } ) );
	EXPECT_EQ( m_pFirst->m_pParent, nullptr );
	EXPECT_TRUE( m_pFirst->m_bHeldByHistory );
}

TEST_F( UndoObjects, RemovalIsRecordedOncePerStepAndNotWhileDisabled )
{
	m_Undo.BeginStep( "Remove" );
	EXPECT_EQ( m_Undo.NoteRemoved( m_pFirst ), UNDO_NOTE_RECORDED );
	EXPECT_EQ( m_Undo.NoteRemoved( m_pFirst ), UNDO_NOTE_ALREADY_RECORDED );
	EXPECT_EQ( m_Undo.GetStep( 0 )->GetRecordCount(), 1 );
	m_Host.RemoveUndoObject( m_pFirst );

	m_Undo.SetEnabled( false );
	EXPECT_EQ( m_Undo.NoteRemoved( m_pSecond ), UNDO_NOTE_NOT_RECORDED );
	EXPECT_EQ( m_pSecond->m_nRefs, 0 );
}


TEST_F( UndoObjects, ObjectWhoseRemovalCanNoLongerBeUndoneIsDestroyed )
{
	RemoveChild( m_pFirst );
	EXPECT_EQ( m_nLive, 2 );
	// A limit of one step: the next edit pushes the removal out.
	CUndoHistory shortUndo( 1, &m_Host );
	shortUndo.BeginStep( "Remove" );
	shortUndo.NoteRemoved( m_pSecond );
	m_Host.RemoveUndoObject( m_pSecond );
	shortUndo.BeginStep( "Other" );
	EXPECT_EQ( m_nLive, 1 );
}

TEST_F( UndoObjects, UndoingAnAdditionTakesTheObjectOut )
{
	CTestUndoable *pAdded = new CTestUndoable( &m_nLive );
	pAdded->m_nIndexInParent = 2;
	m_Undo.BeginStep( "Add" );
	pAdded->m_pParent = &m_Parent;
	m_Host.m_Children.push_back( pAdded );
	m_Undo.NoteAdded( pAdded );

	m_Undo.PerformUndo();
	EXPECT_EQ( m_Host.m_Children.size(), 2u );
	EXPECT_EQ( pAdded->m_pParent, nullptr );
	ASSERT_EQ( m_Redo.GetStepCount(), 1 );

	m_Redo.PerformUndo();
	EXPECT_EQ( m_Host.m_Children.back(), pAdded );
	EXPECT_EQ( pAdded->m_pParent, &m_Parent );

	// Undone again and then dropped by a new edit: the object lived only in the redo
	// list, so it is destroyed with it.
	m_Undo.PerformUndo();
	EXPECT_EQ( m_nLive, 3 );
	m_Undo.BeginStep( "New edit" );
	EXPECT_EQ( m_nLive, 2 );
}
