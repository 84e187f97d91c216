#pragma once
// One change inside an undo step. A record holds references to the objects it names
// until it is applied or destroyed.

#include <cstdint>

class IUndoable;

enum UndoRecordKind_t : int32_t
{
	UNDO_RECORD_MODIFIED = 0,
	UNDO_RECORD_REMOVED = 1,
	UNDO_RECORD_ADDED = 2,
};

class CUndoRecord
{
public:
	explicit CUndoRecord( UndoRecordKind_t eKind ) : m_eKind( eKind ) {}
	~CUndoRecord();
	CUndoRecord( const CUndoRecord & ) = delete;
	CUndoRecord &operator=( const CUndoRecord & ) = delete;

	// Gives up what the record still holds; an applied record holds nothing.
	void ReleaseReferences();

	bool m_bReleaseOnDestruction = true;
	UndoRecordKind_t m_eKind;

	IUndoable *m_pModifiedObject = nullptr;
	IUndoable *m_pState = nullptr;
	IUndoable *m_pModifiedParent = nullptr;
	int32_t m_nModifiedIndex = -1;

	IUndoable *m_pRemovedObject = nullptr;
	IUndoable *m_pRemovedParent = nullptr;
	int32_t m_nRemovedIndex = -1;

	IUndoable *m_pAddedObject = nullptr;

	bool m_bApplied = false;
};
