#include "tools/toolutils2/undo/undorecord.h"

#include "tools/toolutils2/undo/undoable.h"

CUndoRecord::~CUndoRecord()
{
	if ( m_bReleaseOnDestruction )
		ReleaseReferences();
}

void CUndoRecord::ReleaseReferences()
{
	if ( m_bApplied )
		return;
	m_bApplied = true;
	switch ( m_eKind )
	{
	case UNDO_RECORD_MODIFIED:
		m_pModifiedObject->ReleaseUndoRef();
		m_pState->ReleaseUndoRef();
		m_pState->DestroyUndoState( false );
		if ( m_pModifiedParent )
			m_pModifiedParent->ReleaseUndoRef();
		break;
	case UNDO_RECORD_REMOVED:
		// The removal can no longer be undone, so the object lives nowhere else.
		m_pRemovedObject->ReleaseUndoRef();
		m_pRemovedObject->DestroyUndoState( true );
		break;
	case UNDO_RECORD_ADDED:
		m_pAddedObject->ReleaseUndoRef();
		break;
	}
}
