#pragma once
// Snapshot undo. Two histories form a pair: the primary one holds the undo steps, its
// partner the redo steps. Before its first change in a step an object is noted, and the
// history keeps a snapshot the object made of itself; undoing a step records the present
// state into the partner and hands the snapshots back, newest first.
//
// The caller's sequence for an edit: BeginStep( label ), NoteModified( object ), change.

#include <cstdint>
#include <map>
#include <memory>
#include <vector>

#include "tools/toolutils2/undo/undolistener.h"
#include "tools/toolutils2/undo/undomerge.h"
#include "tools/toolutils2/undo/undostep.h"

class IUndoable;
class IUndoObjectHost;

enum UndoNoteResult_t : int
{
	UNDO_NOTE_NOT_RECORDED = 0,
	UNDO_NOTE_RECORDED = 1,
	UNDO_NOTE_ALREADY_RECORDED = 2,
};

class CUndoHistory
{
public:
	static constexpr int MIN_STEP_LIMIT = 1;
	static constexpr int MAX_STEP_LIMIT = 10000;

	// The limit is clamped to MIN_STEP_LIMIT..MAX_STEP_LIMIT. The host is needed only
	// for objects noted as removed or added.
	explicit CUndoHistory( int nStepLimit, IUndoObjectHost *pObjectHost = nullptr );
	virtual ~CUndoHistory();
	CUndoHistory( const CUndoHistory & ) = delete;
	CUndoHistory &operator=( const CUndoHistory & ) = delete;

	virtual UndoNoteResult_t NoteRemoved( IUndoable *pObject );

	// Links this history to its partner, and the partner back with the opposite role.
	void SetPartner( bool bPrimary, CUndoHistory *pPartner );
	CUndoHistory *GetPartner() const { return m_pPartner; }
	bool IsPrimary() const { return m_bPrimary; }

	void AddListener( IUndoListener *pListener );
	void RemoveListener( IUndoListener *pListener );

	// Opens a new step, or continues the last one when pMerge's key matches it. False
	// when nothing was opened: a step is being opened already, or recording is off or busy.
	bool BeginStep( const char *pName, const UndoMergeInfo_t *pMerge = nullptr );
	// Keeps a snapshot of the object in the current step, once per step; opens an
	// unnamed step if there is none.
	void NoteModified( IUndoable *pObject );
	void NoteAdded( IUndoable *pObject );

	// Undoes the last step on the primary history, redoes it on the partner.
	void PerformUndo();

	bool CanUndo() const;
	// The last step's name, or "".
	const char *GetUndoName() const;
	// The name of the step n places before the last, or "" out of range.
	const char *GetStepName( int n ) const;
	int GetStepCount() const { return int( m_Steps.size() ); }
	// The step n places before the last, or null.
	const CUndoStep *GetStep( int n ) const;
	int GetStepLimit() const { return m_nStepLimit; }

	void SetEnabled( bool bEnabled ) { m_bEnabled = bEnabled; }
	bool IsEnabled() const { return m_bEnabled; }
	// True while an undo is applied or a snapshot is taken on this history.
	bool IsBusy() const { return m_nState != STATE_IDLE; }
	void SetObjectHost( IUndoObjectHost *pObjectHost ) { m_pObjectHost = pObjectHost; }

	// The process-wide switch, on from start, that stops all recording when off.
	static void SetRecordingEnabled( bool bEnabled );
	static bool IsRecordingEnabled();

private:
	enum State_t : int
	{
		STATE_IDLE = 0,
		STATE_BUSY = 1,
	};

	bool PassesGuard() const;
	CUndoHistory *GetMapOwner();
	void OpenStep( const char *pName, bool bFromUndo, const UndoMergeInfo_t *pMerge );
	bool TryMerge( const char *pName, const UndoMergeInfo_t *pMerge );
	void Trim();
	void DestroyAllSteps();
	// The step that records go into, opening an unnamed one when needed; null when the
	// object must not be recorded.
	CUndoStep *GetRecordingStep( IUndoable *pObject );
	bool IsDuplicate( IUndoable *pObject, const CUndoStep *pStep, UndoRecordKind_t eKind );
	void ApplyRecord( CUndoRecord *pRecord );
	void SendEvent( UndoEvent_t eEvent );

	std::vector<std::unique_ptr<CUndoStep>> m_Steps; // oldest first
	std::map<IUndoable *, uint32_t> m_ObjectStepIds;  // object -> id of the last step that noted it
	std::map<IUndoable *, uint32_t> m_ObjectKinds;    // object -> bits 1 << kind noted in that step
	int m_nStepLimit;
	IUndoObjectHost *m_pObjectHost;
	CUndoHistory *m_pPartner = nullptr;
	bool m_bPrimary = false;
	State_t m_nState = STATE_IDLE;
	bool m_bEnabled = true;
	bool m_bOpeningStep = false;
	std::vector<IUndoListener *> m_Listeners;
};
