#pragma once
// What an instance ran, for a debugger: an entry per instruction and per cursor event,
// kept only while the service traces, in a bounded ring (the newest entries win). Node
// and cursor descriptions are added at first sight.

#include <cstdint>
#include <map>
#include <vector>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"

// unFlags of an entry.
enum PulseHistoryFlags_t : uint32_t
{
	PULSE_HISTORY_INSTRUCTION = 1 << 0,
	PULSE_HISTORY_CURSOR_ADD_TAG = 1 << 1,
	PULSE_HISTORY_CURSOR_REMOVE_TAG = 1 << 2,
	PULSE_HISTORY_CURSOR_RETIRED = 1 << 3,
};

struct PulseGraphExecutionHistoryEntry_t
{
	PulseCursorID_t nCursorID = -1;
	PulseDocNodeID_t nEditorID = -1;
	float flExecTime = 0.0f;
	uint32_t unFlags = 0;
	PulseSymbol_t tagName;
};

struct PulseGraphExecutionHistoryNodeDesc_t
{
	CUtlString strCellDesc;
	CUtlString strBindingName;
};

struct PulseGraphExecutionHistoryCursorDesc_t
{
	std::vector<PulseCursorID_t> vecAncestorCursorIDs;
	PulseDocNodeID_t nSpawnNodeID = -1;
	PulseDocNodeID_t nRetiredAtNodeID = -1;
	float flLastReferenced = 0.0f;
	int32_t nLastValidEntryIdx = -1;
};

class CPulseGraphExecutionHistory
{
public:
	static constexpr size_t DEFAULT_CAPACITY = 4096;

	explicit CPulseGraphExecutionHistory( size_t nCapacity = DEFAULT_CAPACITY ) : m_nCapacity( nCapacity ? nCapacity : 1 ) {}

	void SetInstance( PulseGraphInstanceID_t nID, const char *pFileName )
	{
		m_nInstanceID = nID;
		m_strFileName.Set( pFileName );
	}
	void Add( const PulseGraphExecutionHistoryEntry_t &entry );
	void NoteCursor( PulseCursorID_t nCursor, const std::vector<PulseCursorID_t> &ancestors, PulseDocNodeID_t nSpawnNode );
	void RetireCursor( PulseCursorID_t nCursor, PulseDocNodeID_t nNode, float flTime );
	void NoteNode( PulseDocNodeID_t nNode, const char *pCellDesc, const char *pBindingName );
	void Clear();

	// Oldest first.
	std::vector<PulseGraphExecutionHistoryEntry_t> GetEntries() const;
	size_t GetTotalAdded() const { return m_nTotal; }
	const std::map<PulseCursorID_t, PulseGraphExecutionHistoryCursorDesc_t> &GetCursorDescs() const { return m_mapCursorDesc; }
	const std::map<PulseDocNodeID_t, PulseGraphExecutionHistoryNodeDesc_t> &GetNodeDescs() const { return m_mapCellDesc; }

private:
	PulseGraphInstanceID_t m_nInstanceID = 0;
	CUtlString m_strFileName;
	size_t m_nCapacity;
	size_t m_nTotal = 0;
	std::vector<PulseGraphExecutionHistoryEntry_t> m_vecHistory; // a ring once full
	std::map<PulseDocNodeID_t, PulseGraphExecutionHistoryNodeDesc_t> m_mapCellDesc;
	std::map<PulseCursorID_t, PulseGraphExecutionHistoryCursorDesc_t> m_mapCursorDesc;
};
