#pragma once
// The plain Pulse service: a table of instances, a virtual clock that fires the wakes of
// waiting cursors in time order, the queue of resumes (first in, first out, run after the
// outermost entry returns and on each advance of the clock, a bounded number at a time),
// observers, reloads deferred to the end of the outermost run, and the graphs' log lines
// on the "Pulse" channel. While it lives it answers Host_CreateInterface as
// "IPulseSystem_001".

#include <cstdint>
#include <deque>
#include <memory>
#include <vector>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/exec/pulsegraphinstance.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"

class CHostInterfaceReg;

class CPulseSystem final : public IPulseSystem, public IPulseReloadListener
{
public:
	// Runs nested deeper than this, or more runs than this begun within one outermost
	// run, are refused: the graph is making cursors without end.
	static constexpr int MAX_RUN_DEPTH = 32;
	static constexpr int MAX_RUNS_PER_ENTRY = 4096;
	// Queued resumes run per drain; the rest wait for the next advance of the clock.
	static constexpr int MAX_RESUMES_PER_DRAIN = 1024;
	// Wakes fired per advance of the clock; the rest wait for the next one, so a cursor
	// that keeps waiting a moment can't hold the clock still.
	static constexpr int MAX_WAKES_PER_ADVANCE = 4096;

	CPulseSystem();
	~CPulseSystem();
	CPulseSystem( const CPulseSystem & ) = delete;
	CPulseSystem &operator=( const CPulseSystem & ) = delete;

	// The clock. AdvanceTo moves it forward to a time, firing every wake due on the way
	// at its own time (earliest first, then in the order they were scheduled) and running
	// the resumes they queue; then it runs what is still queued, up to the bound.
	void AdvanceTo( double flTime );
	void Advance( double flSeconds ) { AdvanceTo( m_flTime + flSeconds ); }
	// Runs queued resumes, up to the bound; answers how many ran.
	int DrainResumeQueue( int nLimit = MAX_RESUMES_PER_DRAIN );
	int GetScheduledWakeCount() const { return int( m_Wakes.size() ); }
	int GetQueuedResumeCount() const { return int( m_Resumes.size() ); }
	// The time of the next wake; false when none is scheduled.
	bool GetNextWakeTime( double *pTime ) const;

	// Every instruction of every run goes into its instance's execution history.
	void SetTracing( bool bTracing ) { m_bTracing = bTracing; }
	void SetTestMode( bool bTestMode ) { m_bTestMode = bTestMode; }
	const std::vector<CUtlString> &GetTestCheckpoints() const { return m_TestCheckpoints; }
	const std::vector<CUtlString> &GetTestFailures() const { return m_TestFailures; }
	// Every line graphs wrote with DebugLog, in order.
	const std::vector<CUtlString> &GetGraphLog() const { return m_GraphLog; }

	// Hands every instance of the definition's resource the new definition. Instances in
	// the middle of a run are reloaded when the outermost run ends; yielded cursors come
	// back where they were, by node and port, with their registers.
	void ReloadDefinition( const CPulseGraphDefHandle &hDef );
	int GetRunDepth() const { return int( m_RunStack.size() ); }
	int GetInstanceCount() const { return int( m_Instances.size() ); }
	// Cursors that reloads couldn't bring back.
	int GetLostCursorCount() const { return m_nLostCursors; }
	// Cursors that completed with a result (Failed: a halt, the instruction limit, poison).
	int GetCompletedCursorCount( PulseCursorExecResult_t eResult ) const { return m_nCompleted[ int( eResult ) & 3 ]; }
	int GetFailedCursorCount() const { return GetCompletedCursorCount( PulseCursorExecResult_t::Failed ); }

	// IPulseSystem.
	int EnterCursorRun( CPulseExecCursor *pCursor, int *pToken ) override;
	void ExitCursorRun( CPulseExecCursor *pCursor, int nToken ) override;
	void OnEntryReturned() override;
	IPulseExecLog *GetCurrentLog() override;
	bool IsTracing() const override { return m_bTracing; }
	void TraceInstruction( CPulseExecCursor *pCursor, int nCode, PulseDocNodeID_t nFlowNode ) override;
	void OnObservableChanged( double flNow, CBasePulseGraphInstance *pInstance, int nVar, const CPulseVariant &oldValue, const CPulseVariant &newValue ) override;
	void QueueCursorResume( CPulseExecCursor *pCursor, const CPulse_OutflowConnection *pResumePoint ) override;
	void NotifyObserver( PulseCursorID_t nSubject, const PulseCursorHandle &observer, PulseCursorExecResult_t eResult ) override;
	void OnCursorUnyield( CPulseExecCursor *pCursor ) override;
	void OnCursorCompleted( CPulseExecCursor *pCursor, PulseCursorExecResult_t eResult ) override;
	CBasePulseGraphInstance *FindInstance( PulseGraphInstanceID_t nID ) override;
	void ScheduleWake( const PulseCursorHandle &handle, double flTime ) override;
	bool IsWakeScheduled( const PulseCursorHandle &handle ) const override;
	void CancelWake( const PulseCursorHandle &handle ) override;
	PulseGraphInstanceID_t RegisterInstance( CBasePulseGraphInstance *pInstance ) override;
	void UnregisterInstance( CBasePulseGraphInstance *pInstance ) override;
	CBasePulseGraphInstance *FindInstanceOfResource( const char *pResourceName ) override;
	double GetTime() const override { return m_flTime; }
	void OnGraphLog( CBasePulseGraphInstance *pInstance, const char *pText ) override;
	bool IsInTestMode() const override { return m_bTestMode; }
	void RegisterTestCheckpoint( CBasePulseGraphInstance *pInstance, const char *pName ) override;
	void IndicateTestFailure( CBasePulseGraphInstance *pInstance, const char *pMessage ) override;

	// IPulseReloadListener.
	void OnCursorNotRestored( CBasePulseGraphInstance *pInstance, PulseCursorID_t nCursor, const char *pReason ) override;

private:
	struct Wake_t
	{
		PulseCursorHandle m_Handle;
		double m_flTime;
		uint64_t m_nSequence;
		double m_flScheduledAt; // the clock when the wake was asked for
	};
	struct Resume_t
	{
		PulseCursorHandle m_Handle;
		const CPulse_OutflowConnection *m_pResumePoint;
	};
	struct PendingReload_t
	{
		PulseGraphInstanceID_t m_nInstance;
		CPulseGraphDefHandle m_hDef;
	};

	void Reload( CBasePulseGraphInstance *pInstance, const CPulseGraphDefHandle &hDef );
	void RunPendingReloads();
	CPulseExecCursor *ResolveCursor( const PulseCursorHandle &handle );

	double m_flTime = 0.0;
	bool m_bTracing = false;
	bool m_bTestMode = false;
	bool m_bDraining = false;
	int m_nRunsThisEntry = 0;
	int m_nLostCursors = 0;
	int m_nCompleted[ 4 ] = {};
	PulseGraphInstanceID_t m_nNextInstanceID = 1;
	uint64_t m_nNextWakeSequence = 0;
	std::vector<std::pair<PulseGraphInstanceID_t, CBasePulseGraphInstance *>> m_Instances;
	std::vector<CPulseExecCursor *> m_RunStack;
	std::vector<Wake_t> m_Wakes;
	std::deque<Resume_t> m_Resumes;
	std::vector<PendingReload_t> m_PendingReloads;
	std::vector<CUtlString> m_TestCheckpoints;
	std::vector<CUtlString> m_TestFailures;
	std::vector<CUtlString> m_GraphLog;
	std::unique_ptr<CHostInterfaceReg> m_pRegistration;
};
