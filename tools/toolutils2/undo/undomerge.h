#pragma once
// Merging lets a run of like edits (a drag, typing in a field) share one undo step: a
// step opened with the same non-empty key as the last one continues it.

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"

struct UndoMergeResult_t
{
	bool m_bMerge = false;
	CUtlString m_Name;     // a non-empty name replaces the last step's label
	CUtlString m_MergeKey; // an empty key ends merging with this step
	KeyValues3 m_MergeData;
};

class IUndoMergeFunc
{
public:
	virtual ~IUndoMergeFunc() = default;
	// Decides whether the step being opened continues the last one. pResult arrives
	// filled from the request (not merging); pLastData is the last step's merge data.
	virtual void Merge( UndoMergeResult_t *pResult, const KeyValues3 &lastData, const char *pMergeKey ) = 0;
};

struct UndoMergeInfo_t
{
	CUtlString m_MergeKey;
	KeyValues3 m_MergeData;
	IUndoMergeFunc *m_pMergeFunc = nullptr; // null merges whenever the keys match
};
