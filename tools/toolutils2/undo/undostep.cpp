#include "tools/toolutils2/undo/undostep.h"

#include <cstring>

// Ids are unique across all histories, so the pair's duplicate test can tell a step of
// the undo side from one of the redo side.
static uint32_t s_nNextUndoStepId = 1;

CUndoStep::CUndoStep( CUndoHistory *pHistory, const char *pName )
	: m_pHistory( pHistory ), m_nId( s_nNextUndoStepId++ )
{
	m_Records.reserve( 16 );
	SetName( pName );
}

CUndoStep::~CUndoStep()
{
	// Records give up their references in the order they were made.
	for ( std::unique_ptr<CUndoRecord> &pRecord : m_Records )
	{
		pRecord->m_bReleaseOnDestruction = m_bReleaseOnDestruction;
		pRecord.reset();
	}
}

void CUndoStep::SetName( const char *pName )
{
	size_t nLength = pName ? strnlen( pName, MAX_NAME_LENGTH ) : 0;
	memmove( m_szName, pName ? pName : "", nLength ); // the name may be this step's own
	m_szName[ nLength ] = '\0';
}

void CUndoStep::SetMerge( const CUtlString &key, const KeyValues3 &data )
{
	m_MergeKey = key;
	m_MergeData.CopyFrom( data );
}

void CUndoStep::ClearMerge()
{
	m_MergeKey.Clear();
	m_MergeData.SetToNull();
}
