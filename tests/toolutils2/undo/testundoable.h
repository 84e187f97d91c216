#pragma once
// A small document for undo tests: a list of ints whose snapshot is a copy. It counts
// the history's references and snapshots so tests can see that nothing leaks or dangles.

#include <functional>
#include <vector>

#include "tools/toolutils2/undo/undoable.h"
#include "tools/toolutils2/undo/undohistory.h"

class CTestUndoable : public CBaseUndoable
{
public:
	std::vector<int> m_Values;
	CUndoHistory *m_pHistory = nullptr; // the history this object notes itself in
	IUndoable *m_pParent = nullptr;
	int m_nIndexInParent = -1;

	int m_nRefs = 0;
	bool m_bHeldByHistory = false;
	int m_nSnapshotsTaken = 0;
	int m_nStatesApplied = 0;
	int m_nAppliedNotices = 0;
	int *m_pLiveCounter = nullptr; // counts living objects made by or given to the history
	int m_nDestroyedAsRemoved = 0;
	std::function<void( CTestUndoable * )> m_OnApply; // runs inside ApplyUndoState

	explicit CTestUndoable( int *pLiveCounter = nullptr ) : m_pLiveCounter( pLiveCounter )
	{
		if ( m_pLiveCounter )
			++*m_pLiveCounter;
	}
	~CTestUndoable() override
	{
		if ( m_pLiveCounter )
			--*m_pLiveCounter;
	}

	// The document edit pattern: open the step, note the object, change it.
	void Append( int nValue, const char *pStepName )
	{
		if ( m_pHistory )
		{
			m_pHistory->BeginStep( pStepName );
			m_pHistory->NoteModified( this );
		}
		m_Values.push_back( nValue );
	}

	IUndoable *CreateUndoState() override
	{
		++m_nSnapshotsTaken;
		CTestUndoable *pState = new CTestUndoable( m_pLiveCounter );
		pState->m_Values = m_Values;
		return pState;
	}
	void ApplyUndoState( IUndoable *pState ) override
	{
		++m_nStatesApplied;
		m_Values = static_cast<CTestUndoable *>( pState )->m_Values;
		if ( m_OnApply )
			m_OnApply( this );
	}
	void DestroyUndoState( bool bRemovedObject ) override
	{
		if ( bRemovedObject )
			++m_nDestroyedAsRemoved;
		delete this;
	}
	void AddUndoRef() override { ++m_nRefs; }
	void ReleaseUndoRef() override { --m_nRefs; }
	void SetHeldByHistory( bool bHeld ) override { m_bHeldByHistory = bHeld; }
	void OnUndoStateApplied() override { ++m_nAppliedNotices; }
	IUndoable *GetUndoParent() const override { return m_pParent; }
	void SetUndoParent( IUndoable *pParent ) override { m_pParent = pParent; }
	int GetUndoIndexInParent() const override { return m_nIndexInParent; }
};

// A pair of histories as a document builds them.
struct TestUndoPair_t
{
	explicit TestUndoPair_t( int nLimit = 50 ) : m_Undo( nLimit ), m_Redo( nLimit ) { m_Undo.SetPartner( true, &m_Redo ); }
	CUndoHistory m_Undo;
	CUndoHistory m_Redo;
};
