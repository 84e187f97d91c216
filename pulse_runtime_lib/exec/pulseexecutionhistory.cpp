#include "pulse_runtime_lib/exec/pulseexecutionhistory.h"

void CPulseGraphExecutionHistory::Add( const PulseGraphExecutionHistoryEntry_t &entry )
{
	if ( m_vecHistory.size() < m_nCapacity )
		m_vecHistory.push_back( entry );
	else
		m_vecHistory[ m_nTotal % m_nCapacity ] = entry;
	++m_nTotal;
	auto it = m_mapCursorDesc.find( entry.nCursorID );
	if ( it != m_mapCursorDesc.end() )
	{
		it->second.flLastReferenced = entry.flExecTime;
		it->second.nLastValidEntryIdx = int32_t( ( m_nTotal - 1 ) % m_nCapacity );
	}
}

void CPulseGraphExecutionHistory::NoteCursor( PulseCursorID_t nCursor, const std::vector<PulseCursorID_t> &ancestors, PulseDocNodeID_t nSpawnNode )
{
	auto [ it, bAdded ] = m_mapCursorDesc.try_emplace( nCursor );
	if ( bAdded )
	{
		it->second.vecAncestorCursorIDs = ancestors;
		it->second.nSpawnNodeID = nSpawnNode;
	}
}

void CPulseGraphExecutionHistory::RetireCursor( PulseCursorID_t nCursor, PulseDocNodeID_t nNode, float flTime )
{
	auto it = m_mapCursorDesc.find( nCursor );
	if ( it != m_mapCursorDesc.end() )
		it->second.nRetiredAtNodeID = nNode;
	Add( { nCursor, nNode, flTime, PULSE_HISTORY_CURSOR_RETIRED, {} } );
}

void CPulseGraphExecutionHistory::NoteNode( PulseDocNodeID_t nNode, const char *pCellDesc, const char *pBindingName )
{
	auto [ it, bAdded ] = m_mapCellDesc.try_emplace( nNode );
	if ( bAdded )
	{
		it->second.strCellDesc.Set( pCellDesc );
		it->second.strBindingName.Set( pBindingName );
	}
}

void CPulseGraphExecutionHistory::Clear()
{
	m_vecHistory.clear();
	m_nTotal = 0;
	m_mapCellDesc.clear();
	m_mapCursorDesc.clear();
}

std::vector<PulseGraphExecutionHistoryEntry_t> CPulseGraphExecutionHistory::GetEntries() const
{
	if ( m_nTotal <= m_nCapacity )
		return m_vecHistory;
	std::vector<PulseGraphExecutionHistoryEntry_t> entries;
	entries.reserve( m_nCapacity );
	size_t nStart = m_nTotal % m_nCapacity;
	for ( size_t i = 0; i < m_nCapacity; ++i )
		entries.push_back( m_vecHistory[ ( nStart + i ) % m_nCapacity ] );
	return entries;
}
