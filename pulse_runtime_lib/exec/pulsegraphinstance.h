#pragma once
// One live copy of a graph: a counted reference to its definition, the block of
// per-instance state (variables, cell state, domain values), the live cursors and the
// link to the Pulse service. All entry into a graph goes through it: methods, events,
// hooks, variable changes, reloads. A domain derives from it to answer the host's
// queries.

#include <cstdint>
#include <memory>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "pulse_runtime_lib/exec/pulsecursortypes.h"
#include "pulse_runtime_lib/exec/pulseexecutionhistory.h"
#include "pulse_runtime_lib/exec/pulsehostinterfaces.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"

class IPulseSystem;
class CPulseExecCursor;
class CPulseCell_Inflow_BaseEntrypoint;
class PulseArgPack;
class CPulseVariant;

// Hears of a yielded cursor that a reload couldn't bring back.
class IPulseReloadListener
{
public:
	virtual void OnCursorNotRestored( CBasePulseGraphInstance *pInstance, PulseCursorID_t nCursor, const char *pReason ) = 0;

protected:
	~IPulseReloadListener() = default;
};

class CBasePulseGraphInstance : public IPulseHost_Unknown
{
public:
	explicit CBasePulseGraphInstance( IPulseSystem *pSystem );
	virtual ~CBasePulseGraphInstance();
	CBasePulseGraphInstance( const CBasePulseGraphInstance & ) = delete;
	CBasePulseGraphInstance &operator=( const CBasePulseGraphInstance & ) = delete;

	// A new cursor of this instance, the child of pParent (or a root).
	virtual CPulseExecCursor *CreateCursor( CPulseExecCursor *pParent );
	// Replaces the definition (which must be bound) and initialises: state block,
	// variables at their defaults, registration with the service. False when the domain
	// is refused or the definition isn't bound; the instance then has no state.
	bool SetDefinition( const CPulseGraphDefHandle &hDef );
	const CPulseGraphDef *GetDefinition() const { return m_hDef.Get(); }
	bool IsInitialised() const { return m_bInitialised; }
	IPulseSystem *GetSystem() const { return m_pSystem; }
	PulseGraphInstanceID_t GetInstanceID() const { return m_nSelfHandle; }
	// Stores the handle the service gave, registering when not yet registered.
	void SetSelfHandle( PulseGraphInstanceID_t nHandle );

	// Reload: saves the instance with its yielded cursors into a table and shuts down;
	// after SetDefinition with the new definition, EndGraphReload brings the saved state
	// back. The service runs reloads only between runs.
	void StartGraphReload( KeyValues3 *pSaved );
	void EndGraphReload( const KeyValues3 &saved, IPulseReloadListener *pListener );

	// Entries. Each starts a cursor at the entry cell's chunk with the arguments placed by
	// its register map; the handle of the cursor when it yielded, else empty. False when
	// there is no such entry (methods by m_MethodName, events by m_EventName, exact case).
	bool RunMethod( const char *pName, const PulseArgPack *pArgs, PulseCursorHandle *pHandle = nullptr, CPulseVariant *pResult = nullptr );
	bool FireEvent( const char *pName, const PulseArgPack *pArgs, PulseCursorHandle *pHandle = nullptr );
	bool RunGraphHook( const char *pName, const PulseArgPack *pArgs, CPulseVariant *pResult );
	// Starts a cursor at an entry cell (any of the above); pParent when called from a cursor.
	PulseCursorHandle StartCursorAtEntry( const CPulseCell_Inflow_BaseEntrypoint *pEntry, const PulseArgPack *pArgs, CPulseExecCursor *pParent, CPulseVariant *pResult );

	// Variables. SetVariable converts the value to the variable's type; false for an
	// unknown name.
	bool SetVariable( const char *pName, const KeyValues3 &value );
	bool SetVariableValue( int nVar, const CPulseValueFullType &type, const void *pValue );
	bool GetVariable( const char *pName, CPulseVariant *pValue ) const;
	unsigned char *GetStateBlock() { return m_pState; }
	void SetVariableDetached( int nVar, bool bDetached );
	void *GetVariableStorage( int nVar );
	const void *GetVariableStorage( int nVar ) const;
	// Observables: tells listener instances and this instance's listener cells.
	bool OnVariableChanged( int nVar, const CPulseVariant &oldValue, const CPulseVariant &newValue );
	virtual bool OnForeignVariableChanged( const char *pResource, PulseDocNodeID_t nVarID, const CPulseVariant &oldValue, const CPulseVariant &newValue );
	void AddObservableListener( PulseGraphInstanceID_t nListener );

	// The cached value of a domain value, resolved afresh when it fails its validity test.
	const void *GetDomainValue( int nIndex );
	// A domain resolves a name to a value of the required type; false leaves the default.
	virtual bool ResolveDomainValue( const CPulse_DomainValue &, void * ) { return false; }
	// The instance that holds the blackboard of another graph; by default the service's
	// first instance of that resource.
	virtual CBasePulseGraphInstance *FindBlackboardInstance( const char *pResourceName );
	// Whether this domain takes graphs of this domain and subtype.
	virtual bool IsDomainAcceptable( PulseSymbol_t, const CPulseValueFullType & ) const { return true; }

	// The clock cursors read; the service's clock, or the platform's without a service.
	virtual double GetNow() const;
	virtual void OnRunawayCursors();
	virtual void OnInfiniteLoop( int nCount );
	// "POISONED " when poisoned, then "<file> (uid=<id>)".
	virtual void GetDebugName( CUtlString *pText ) const;
	virtual void ValueToText( const CPulseValueFullType &type, const void *pValue, CUtlString *pText ) const;
	// The type scope of the value operations run here; none at this level.
	virtual int GetTypeScope() const;
	bool IsPoisoned() const { return m_bPoisoned; }

	// Cursors.
	int GetCursorCount() const { return int( m_Cursors.size() ); }
	int GetYieldedCursorCount() const { return int( m_YieldedCursors.size() ); }
	// A yielded cursor by handle; null when the handle no longer resolves.
	CPulseExecCursor *ResolveCursor( const PulseCursorHandle &handle ) const;
	CPulseExecCursor *FindCursor( PulseCursorID_t nID ) const;
	// The rule after every run: a cursor that neither yielded nor is running is destroyed.
	void EndCursorRun( CPulseExecCursor *pCursor );
	void DestroyCursor( CPulseExecCursor *pCursor );
	void OnCursorYielded( CPulseExecCursor *pCursor );
	void OnCursorUnyielded( CPulseExecCursor *pCursor );
	PulseCursorID_t TakeNextCursorID() { return m_nNextCursorID++; }
	static PulseCursorYieldToken_t TakeNextYieldToken();

	// Queries of cells over the yielded cursors. Handles are gathered first, since a
	// cancel may destroy cursors; a handle that no longer resolves is passed over.
	void FindCursorsWithTag( PulseSymbol_t name, const CPulseVariant &value, PulseDocNodeID_t nExcludedNode, std::vector<PulseCursorHandle> *pHandles ) const;
	void KillCursorsWithTag( PulseSymbol_t name, const CPulseVariant &value, PulseCursorCancelPriority_t ePriority, PulseDocNodeID_t nExcludedNode );
	int CountYieldedAt( const CPulseCell_Base *pCell ) const;
	void CancelYieldedAt( const CPulseCell_Base *pCell, PulseCursorCancelPriority_t ePriority );
	void CompleteYieldedAt( const CPulseCell_Base *pCell, PulseCursorExecResult_t eResult, const CPulse_OutflowConnection *pResumePoint );

	CPulseGraphExecutionHistory &GetExecutionHistory() { return *m_pHistory; }
	// Stops every cursor (without running it), unregisters unless reloading, tears the state down.
	void Shutdown( bool bReloading );
	// The instance as KV3: variables by name, the cursor counter, listeners and every
	// yielded cursor. Load brings it back into this instance's (maybe newer) definition;
	// cursors that can't be placed are dropped, with a warning and a word to the listener.
	void Save( KeyValues3 *pKV ) const;
	void Load( const KeyValues3 &kv, IPulseReloadListener *pListener );

protected:
	bool Init( bool bReloading, bool bFromSave );

private:
	void ConstructState();
	void DestructState();
	const CPulseCell_Base *FindEntryCell( const char *pClassName, const char *pName ) const;

	IPulseSystem *m_pSystem;
	CPulseGraphDefHandle m_hDef;
	std::vector<CPulseExecCursor *> m_Cursors;        // every live cursor, owned
	std::vector<CPulseExecCursor *> m_YieldedCursors; // those yielded
	bool m_bInitialised = false;
	bool m_bRegistered = false;
	PulseGraphInstanceID_t m_nSelfHandle = PULSE_INVALID_INSTANCE_ID;
	PulseCursorID_t m_nNextCursorID = 1;
	IPulseReloadListener *m_pReloadListener = nullptr;
	bool m_bReloading = false; // between StartGraphReload and EndGraphReload
	// The state block: 128 bytes in place before it moves to the heap.
	alignas( 16 ) unsigned char m_InlineState[ 128 ];
	unsigned char *m_pState = m_InlineState;
	std::vector<uint64_t> m_FlagBits; // variables' detach bits
	std::unique_ptr<CPulseGraphExecutionHistory> m_pHistory;
	std::vector<PulseGraphInstanceID_t> m_ObservableListeners;
	bool m_bPoisoned = false;
};
