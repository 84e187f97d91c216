#pragma once
// One unit of undo: the records of everything changed between two BeginStep calls.

#include <cstdint>
#include <memory>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/undo/undorecord.h"

class CUndoHistory;

class CUndoStep
{
public:
	static constexpr int MAX_NAME_LENGTH = 127;

	// Takes the next id of the process-wide counter; a null name leaves the step unnamed.
	CUndoStep( CUndoHistory *pHistory, const char *pName );
	~CUndoStep();
	CUndoStep( const CUndoStep & ) = delete;
	CUndoStep &operator=( const CUndoStep & ) = delete;

	// Cut to MAX_NAME_LENGTH bytes without a message.
	void SetName( const char *pName );
	const char *GetName() const { return m_szName; }
	uint32_t GetId() const { return m_nId; }
	CUndoHistory *GetHistory() const { return m_pHistory; }

	int GetRecordCount() const { return int( m_Records.size() ); }
	CUndoRecord *GetRecord( int nIndex ) const { return m_Records[ size_t( nIndex ) ].get(); }
	void AddRecord( std::unique_ptr<CUndoRecord> pRecord ) { m_Records.push_back( std::move( pRecord ) ); }

	const CUtlString &GetMergeKey() const { return m_MergeKey; }
	const KeyValues3 &GetMergeData() const { return m_MergeData; }
	void SetMerge( const CUtlString &key, const KeyValues3 &data );
	void ClearMerge();

private:
	std::vector<std::unique_ptr<CUndoRecord>> m_Records;
	CUndoHistory *m_pHistory;
	uint32_t m_nId;
	char m_szName[ MAX_NAME_LENGTH + 1 ];
	bool m_bReleaseOnDestruction = true;
	CUtlString m_MergeKey;
	KeyValues3 m_MergeData;
};
