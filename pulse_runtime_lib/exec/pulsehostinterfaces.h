#pragma once
// What cells and bound functions see of the cursor that runs them, and the host's
// interfaces a domain adds. A plain function gets IPulseHost_Cursor; a flow function
// (one that may move or park the cursor) gets IPulseHost_YieldingCursor.

#include "pulse_runtime_lib/exec/pulsecursortypes.h"

class CBasePulseGraphInstance;
class CPulseExecCursor;
class CPulseCell_Base;
class CPulseVariant;
class PulseArgPack;
struct CPulse_OutflowConnection;

// Reports of a running graph: each goes to the "Pulse" log channel as
// "Pulse: <text> (<resource>:<flow node>)".
class IPulseExecLog
{
public:
	virtual void Warning( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) ) = 0;
	virtual void Error( const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) ) = 0;

protected:
	~IPulseExecLog() = default;
};

// Domain interfaces a cursor's host table can hold; a bound function names the kinds it
// needs in its required mask.
constexpr int PULSE_HOST_INTERFACE_KINDS = 5;

class IPulseHost_Unknown
{
public:
	// The host interface of a kind (0 .. PULSE_HOST_INTERFACE_KINDS-1), or null.
	virtual void *QueryHostInterface( int ) { return nullptr; }

protected:
	~IPulseHost_Unknown() = default;
};

class IPulseHost_Cursor
{
public:
	virtual CBasePulseGraphInstance *GetGraphInstance() const = 0;
	virtual CPulseExecCursor *GetCursor() = 0;

protected:
	~IPulseHost_Cursor() = default;
};

class IPulseHost_YieldingCursor : public IPulseHost_Cursor
{
public:
	// Pops a frame, or ends the cursor (Succeeded) when the stack is empty.
	virtual void ReturnFromChunk() = 0;
	// Ends the cursor now, yielded or not.
	virtual void Terminate( PulseCursorExecResult_t eResult ) = 0;
	virtual void AddTag( PulseSymbol_t name, const CPulseVariant &value, bool bChildCursorsShouldInherit, bool bRemoveWhenOutOfScope ) = 0;
	virtual bool HasTag( PulseSymbol_t name, const CPulseVariant &value ) const = 0;
	virtual void RemoveTag( PulseSymbol_t name, const CPulseVariant &value ) = 0;
	// Goes to a resume point, its arguments written into its register map's outputs.
	virtual void ContinueAt( const CPulse_OutflowConnection &resumePoint, const PulseArgPack *pArgs ) = 0;
	// Runs a child cursor from the resume point with a copy of this cursor's registers;
	// the handle when it yielded. With an observer slot, the child's id goes there and
	// this cursor observes the child.
	virtual PulseCursorHandle SpawnChildCursor( const CPulse_OutflowConnection &resumePoint, const PulseArgPack *pArgs, PulseCursorID_t *pObserverSlot ) = 0;
	// Parks the cursor at the cell.
	virtual void Yield( const CPulseCell_Base *pCell ) = 0;
	// A yielding cell is done: the cursor goes on at the resume point once the service
	// runs its queued resume.
	virtual void CompleteYield( PulseCursorExecResult_t eResult, const CPulse_OutflowConnection *pResumePoint, const PulseArgPack *pArgs ) = 0;

protected:
	~IPulseHost_YieldingCursor() = default;
};
