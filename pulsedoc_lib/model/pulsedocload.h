#pragma once
// What loading a document's nodes needs: where problems go, the node descriptions that
// generic nodes take their shape from, the callbacks of the loader (undo reuses nodes),
// and a reader that takes a node's keys one by one and keeps the ones nobody took.

#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/graph/pulsegraphtypes.h"

class CPulseDoc;
class CPulseDocNode;
class CPulseDocMessages;
class CPulseNodeDescriptions;
class CPulseValueFullType;

class IPulseEditorLoadCallbacks
{
public:
	virtual ~IPulseEditorLoadCallbacks() = default;
	// Called once per node, before its own keys are read: a node to load into in place of
	// a new one (same id and class), or null.
	virtual CPulseDocNode *OnNodeLoading( PulseDocNodeID_t nID, const char *pClassName ) = 0;
};

class CPulseDocLoadContext
{
public:
	CPulseDoc *m_pDoc = nullptr;
	CPulseDocMessages *m_pMessages = nullptr;
	const CPulseNodeDescriptions *m_pDescriptions = nullptr;
	IPulseEditorLoadCallbacks *m_pCallbacks = nullptr;
	int m_nDepth = 0;
};

class CPulseDocKeyReader
{
public:
	// pPrefix names the table in reports ("pText" for a port's keys); empty for a node's.
	CPulseDocKeyReader( const KeyValues3 &table, CPulseDocNode *pNode, CPulseDocLoadContext *pContext, const char *pPrefix = "" );

	CPulseDocNode *GetNode() const { return m_pNode; }
	CPulseDocLoadContext *GetContext() const { return m_pContext; }

	// The member, marked as read; null when absent.
	const KeyValues3 *Take( const char *pKey );
	// Typed reads: absent leaves the default and answers false; a value of the wrong kind
	// is reported and leaves the default too.
	bool TakeInt( const char *pKey, int32_t *pValue );
	bool TakeBool( const char *pKey, bool *pValue );
	bool TakeFloat( const char *pKey, float *pValue );
	bool TakeString( const char *pKey, CUtlString *pValue );
	bool TakeFullType( const char *pKey, CPulseValueFullType *pValue );
	// An enumerator written by name (or as its number) among pNames[0..nCount).
	bool TakeEnum( const char *pKey, const char *const *pNames, int nCount, int *pValue );
	// A table; another kind is reported ("Class data is a '%s', not a table").
	const KeyValues3 *TakeTable( const char *pKey );
	const KeyValues3 *TakeArray( const char *pKey );

	void Warn( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
	// The members nobody took, in their order.
	void KeepRest( KeyValues3 *pExtra ) const;

private:
	void WrongKind( const char *pKey, const KeyValues3 &value, const char *pWanted );

	const KeyValues3 &m_Table;
	CPulseDocNode *m_pNode;
	CPulseDocLoadContext *m_pContext;
	std::vector<bool> m_Taken;
	CUtlString m_Prefix;
};
