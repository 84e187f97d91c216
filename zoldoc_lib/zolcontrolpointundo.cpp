#include "zoldoc_lib/zolcontrolpointundo.h"

CZolControlPointUndoable::CZolControlPointUndoable( CZolControlPointState *pState, const ParticleParamID_t &key ) : m_pState( pState ), m_Key( key ) {}

IUndoable *CZolControlPointUndoable::CreateUndoState()
{
	auto *pSnapshot = new CZolControlPointUndoable( nullptr, m_Key );
	if ( const ZolControlPointRecord_t *pRecord = m_pState ? m_pState->FindRecord( m_Key ) : nullptr )
	{
		pSnapshot->m_bHasRecord = true;
		pSnapshot->m_Record = *pRecord;
	}
	return pSnapshot;
}

void CZolControlPointUndoable::ApplyUndoState( IUndoable *pState )
{
	const auto *pSnapshot = dynamic_cast<const CZolControlPointUndoable *>( pState );
	if ( !m_pState || !pSnapshot || pSnapshot == this )
		return;
	m_pState->RestoreRecord( m_Key, pSnapshot->m_bHasRecord ? &pSnapshot->m_Record : nullptr );
}
