#pragma once
// The host's Pulse service ("IPulseSystem_001"), as cursors and instances use it: runs
// are bracketed by it, instances register with it, yielded cursors are woken and resumed
// by it, and observers are told through it. CPulseSystem is the plain implementation.

#include "pulse_runtime_lib/exec/pulsecursortypes.h"

class CBasePulseGraphInstance;
class CPulseExecCursor;
class CPulseVariant;
class IPulseExecLog;
struct CPulse_OutflowConnection;

inline constexpr const char *PULSE_SYSTEM_INTERFACE_VERSION = "IPulseSystem_001";

class IPulseSystem
{
public:
	// At the start of every run: 0 lets it go on, anything else refuses it (runaway
	// cursor creation). *pToken pairs the run with its ExitCursorRun.
	virtual int EnterCursorRun( CPulseExecCursor *pCursor, int *pToken ) = 0;
	virtual void ExitCursorRun( CPulseExecCursor *pCursor, int nToken ) = 0;
	// An entry into an instance (a method, an event, a hook) has returned and its cursor
	// is dealt with: the moment for work that must not happen inside a run (reloads).
	virtual void OnEntryReturned() = 0;
	// The log of the running cursor, or null outside any run.
	virtual IPulseExecLog *GetCurrentLog() = 0;
	// Whether runs record every instruction into their instance's execution history.
	virtual bool IsTracing() const = 0;
	virtual void TraceInstruction( CPulseExecCursor *pCursor, int nCode, PulseDocNodeID_t nFlowNode ) = 0;
	// After SET_VAR_OBSERVABLE: wakes the listeners of the variable.
	virtual void OnObservableChanged( double flNow, CBasePulseGraphInstance *pInstance, int nVar, const CPulseVariant &oldValue, const CPulseVariant &newValue ) = 0;
	// Later calls Resume on the cursor with that point (which may be null).
	virtual void QueueCursorResume( CPulseExecCursor *pCursor, const CPulse_OutflowConnection *pResumePoint ) = 0;
	// Delivers NotifyObserved to a live observer.
	virtual void NotifyObserver( PulseCursorID_t nSubject, const PulseCursorHandle &observer, PulseCursorExecResult_t eResult ) = 0;
	// The cursor leaves its yield: drop what was held for it (wakes).
	virtual void OnCursorUnyield( CPulseExecCursor *pCursor ) = 0;
	// The cursor completed (succeeded, canceled or failed).
	virtual void OnCursorCompleted( CPulseExecCursor *pCursor, PulseCursorExecResult_t eResult ) = 0;
	virtual CBasePulseGraphInstance *FindInstance( PulseGraphInstanceID_t nID ) = 0;
	// A timer that calls Wake on the cursor of the handle at a time of GetTime's clock.
	virtual void ScheduleWake( const PulseCursorHandle &handle, double flTime ) = 0;
	virtual bool IsWakeScheduled( const PulseCursorHandle &handle ) const = 0;
	virtual void CancelWake( const PulseCursorHandle &handle ) = 0;

	// Instances.
	virtual PulseGraphInstanceID_t RegisterInstance( CBasePulseGraphInstance *pInstance ) = 0;
	virtual void UnregisterInstance( CBasePulseGraphInstance *pInstance ) = 0;
	// The first live instance of the definition of that resource name; null when none.
	virtual CBasePulseGraphInstance *FindInstanceOfResource( const char *pResourceName ) = 0;
	// The clock of wakes and cursors, in seconds.
	virtual double GetTime() const = 0;

	// What graphs write: DebugLog lines, and the test script library's checkpoints and failures.
	virtual void OnGraphLog( CBasePulseGraphInstance *pInstance, const char *pText ) = 0;
	virtual bool IsInTestMode() const = 0;
	virtual void RegisterTestCheckpoint( CBasePulseGraphInstance *pInstance, const char *pName ) = 0;
	virtual void IndicateTestFailure( CBasePulseGraphInstance *pInstance, const char *pMessage ) = 0;

protected:
	~IPulseSystem() = default;
};
