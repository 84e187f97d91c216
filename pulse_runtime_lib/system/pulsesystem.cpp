#include "pulse_runtime_lib/system/pulsesystem.h"

#include <algorithm>
#include <cstring>

#include "core/host/interfaceregistry.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"

CPulseSystem::CPulseSystem() : m_pRegistration( std::make_unique<CHostInterfaceReg>( PULSE_SYSTEM_INTERFACE_VERSION, static_cast<IPulseSystem *>( this ) ) )
{
}

CPulseSystem::~CPulseSystem() = default;

int CPulseSystem::EnterCursorRun( CPulseExecCursor *pCursor, int *pToken )
{
	if ( m_RunStack.empty() )
		m_nRunsThisEntry = 0;
	if ( int( m_RunStack.size() ) >= MAX_RUN_DEPTH )
		return 1;
	if ( ++m_nRunsThisEntry > MAX_RUNS_PER_ENTRY )
		return 2;
	*pToken = int( m_RunStack.size() );
	m_RunStack.push_back( pCursor );
	return 0;
}

void CPulseSystem::ExitCursorRun( CPulseExecCursor *, int nToken )
{
	m_RunStack.resize( size_t( std::max( nToken, 0 ) ) );
	// Resumes queued by the run go first in, first out, once the outermost run is over.
	if ( m_RunStack.empty() )
		DrainResumeQueue();
}

void CPulseSystem::OnEntryReturned()
{
	// The cursor of the entry is destroyed or parked by now, so a reload can tear the
	// instance's cursors down.
	if ( m_RunStack.empty() && !m_bDraining )
		RunPendingReloads();
}

IPulseExecLog *CPulseSystem::GetCurrentLog()
{
	return m_RunStack.empty() ? nullptr : m_RunStack.back();
}

void CPulseSystem::TraceInstruction( CPulseExecCursor *pCursor, int, PulseDocNodeID_t nFlowNode )
{
	pCursor->GetGraphInstance()->GetExecutionHistory().Add( { pCursor->GetId(), nFlowNode, float( m_flTime ), PULSE_HISTORY_INSTRUCTION, {} } );
}

void CPulseSystem::OnObservableChanged( double, CBasePulseGraphInstance *pInstance, int nVar, const CPulseVariant &oldValue, const CPulseVariant &newValue )
{
	pInstance->OnVariableChanged( nVar, oldValue, newValue );
}

void CPulseSystem::QueueCursorResume( CPulseExecCursor *pCursor, const CPulse_OutflowConnection *pResumePoint )
{
	m_Resumes.push_back( { pCursor->GetHandle(), pResumePoint } );
}

CPulseExecCursor *CPulseSystem::ResolveCursor( const PulseCursorHandle &handle )
{
	CBasePulseGraphInstance *pInstance = FindInstance( handle.m_nInstance );
	return pInstance ? pInstance->ResolveCursor( handle ) : nullptr;
}

int CPulseSystem::DrainResumeQueue( int nLimit )
{
	if ( m_bDraining )
		return 0;
	m_bDraining = true;
	int nRan = 0;
	while ( !m_Resumes.empty() && nRan < nLimit )
	{
		Resume_t resume = m_Resumes.front();
		m_Resumes.pop_front();
		CPulseExecCursor *pCursor = ResolveCursor( resume.m_Handle );
		if ( !pCursor )
			continue;
		++nRan;
		CBasePulseGraphInstance *pInstance = pCursor->GetGraphInstance();
		pCursor->Resume( resume.m_pResumePoint );
		pInstance->EndCursorRun( pCursor );
	}
	m_bDraining = false;
	return nRan;
}

void CPulseSystem::NotifyObserver( PulseCursorID_t nSubject, const PulseCursorHandle &observer, PulseCursorExecResult_t eResult )
{
	// An observer is known by instance and cursor: its token changes with every yield.
	CBasePulseGraphInstance *pInstance = FindInstance( observer.m_nInstance );
	if ( CPulseExecCursor *pCursor = pInstance ? pInstance->FindCursor( observer.m_nCursor ) : nullptr )
		pCursor->NotifyObserved( nSubject, eResult );
}

void CPulseSystem::OnCursorUnyield( CPulseExecCursor *pCursor )
{
	PulseGraphInstanceID_t nInstance = pCursor->GetGraphInstance()->GetInstanceID();
	std::erase_if( m_Wakes, [ & ]( const Wake_t &wake ) { return wake.m_Handle.m_nInstance == nInstance && wake.m_Handle.m_nCursor == pCursor->GetId(); } );
}

void CPulseSystem::OnCursorCompleted( CPulseExecCursor *, PulseCursorExecResult_t eResult )
{
	++m_nCompleted[ int( eResult ) & 3 ];
}

CBasePulseGraphInstance *CPulseSystem::FindInstance( PulseGraphInstanceID_t nID )
{
	for ( const auto &[ nInstance, pInstance ] : m_Instances )
	{
		if ( nInstance == nID )
			return pInstance;
	}
	return nullptr;
}

void CPulseSystem::ScheduleWake( const PulseCursorHandle &handle, double flTime )
{
	CancelWake( handle );
	m_Wakes.push_back( { handle, flTime, m_nNextWakeSequence++, m_flTime } );
}

bool CPulseSystem::IsWakeScheduled( const PulseCursorHandle &handle ) const
{
	return std::any_of( m_Wakes.begin(), m_Wakes.end(), [ & ]( const Wake_t &wake ) { return wake.m_Handle == handle; } );
}

void CPulseSystem::CancelWake( const PulseCursorHandle &handle )
{
	std::erase_if( m_Wakes, [ & ]( const Wake_t &wake ) { return wake.m_Handle == handle; } );
}

bool CPulseSystem::GetNextWakeTime( double *pTime ) const
{
	if ( m_Wakes.empty() )
		return false;
	*pTime = std::min_element( m_Wakes.begin(), m_Wakes.end(), []( const Wake_t &a, const Wake_t &b ) { return a.m_flTime < b.m_flTime; } )->m_flTime;
	return true;
}

void CPulseSystem::AdvanceTo( double flTime )
{
	// A wake asked for during this advance that doesn't move the clock (a wait of zero or
	// less) fires on the next advance, as a resume queued on a tick would.
	const uint64_t nFirstNewSequence = m_nNextWakeSequence;
	auto firesNow = [ & ]( const Wake_t &wake ) {
		return wake.m_flTime <= flTime && ( wake.m_nSequence < nFirstNewSequence || wake.m_flTime > wake.m_flScheduledAt );
	};
	for ( int nFired = 0;; ++nFired )
	{
		auto itNext = m_Wakes.end();
		for ( auto it = m_Wakes.begin(); it != m_Wakes.end(); ++it )
		{
			if ( !firesNow( *it ) )
				continue;
			if ( itNext == m_Wakes.end() || it->m_flTime < itNext->m_flTime || ( it->m_flTime == itNext->m_flTime && it->m_nSequence < itNext->m_nSequence ) )
				itNext = it;
		}
		if ( itNext == m_Wakes.end() )
			break;
		if ( nFired >= MAX_WAKES_PER_ADVANCE )
		{
			LoggingSystem_LogOnceByKey( LOG_PULSE, LS_WARNING, "pulse_wakes_per_advance",
				"Pulse: more than %d wakes in one advance of the clock; the rest fire on the next.\n", MAX_WAKES_PER_ADVANCE );
			break;
		}
		Wake_t wake = *itNext;
		m_Wakes.erase( itNext );
		m_flTime = std::max( m_flTime, wake.m_flTime );
		if ( CPulseExecCursor *pCursor = ResolveCursor( wake.m_Handle ) )
			pCursor->Wake();
		DrainResumeQueue();
	}
	m_flTime = std::max( m_flTime, flTime );
	DrainResumeQueue();
	RunPendingReloads();
}

PulseGraphInstanceID_t CPulseSystem::RegisterInstance( CBasePulseGraphInstance *pInstance )
{
	for ( const auto &[ nInstance, pKnown ] : m_Instances )
	{
		if ( pKnown == pInstance )
			return nInstance;
	}
	PulseGraphInstanceID_t nID = m_nNextInstanceID++;
	m_Instances.emplace_back( nID, pInstance );
	return nID;
}

void CPulseSystem::UnregisterInstance( CBasePulseGraphInstance *pInstance )
{
	PulseGraphInstanceID_t nInstance = pInstance->GetInstanceID();
	std::erase_if( m_Instances, [ pInstance ]( const auto &entry ) { return entry.second == pInstance; } );
	std::erase_if( m_Wakes, [ nInstance ]( const Wake_t &wake ) { return wake.m_Handle.m_nInstance == nInstance; } );
	std::erase_if( m_PendingReloads, [ nInstance ]( const PendingReload_t &reload ) { return reload.m_nInstance == nInstance; } );
}

CBasePulseGraphInstance *CPulseSystem::FindInstanceOfResource( const char *pResourceName )
{
	for ( const auto &[ nInstance, pInstance ] : m_Instances )
	{
		if ( pInstance->GetDefinition() && strcmp( pInstance->GetDefinition()->GetResourceName(), pResourceName ) == 0 )
			return pInstance;
	}
	return nullptr;
}

void CPulseSystem::OnGraphLog( CBasePulseGraphInstance *, const char *pText )
{
	m_GraphLog.emplace_back( pText );
	Log_Msg( LOG_PULSE, "%s\n", pText );
}

void CPulseSystem::RegisterTestCheckpoint( CBasePulseGraphInstance *, const char *pName )
{
	m_TestCheckpoints.emplace_back( pName );
	Log_Msg( LOG_PULSE, "Test checkpoint: %s\n", pName );
}

void CPulseSystem::IndicateTestFailure( CBasePulseGraphInstance *pInstance, const char *pMessage )
{
	m_TestFailures.emplace_back( pMessage );
	CUtlString name;
	pInstance->GetDebugName( &name );
	Log_Warning( LOG_PULSE, "Test failure: %s (%s)\n", pMessage, name.Get() );
}

void CPulseSystem::OnCursorNotRestored( CBasePulseGraphInstance *pInstance, PulseCursorID_t nCursor, const char *pReason )
{
	++m_nLostCursors;
	CUtlString name;
	pInstance->GetDebugName( &name );
	Log_Warning( LOG_PULSE, "Pulse: cursor %d of %s was not restored after the reload: %s\n", nCursor, name.Get(), pReason );
}

void CPulseSystem::ReloadDefinition( const CPulseGraphDefHandle &hDef )
{
	std::vector<PulseGraphInstanceID_t> ids;
	for ( const auto &[ nInstance, pInstance ] : m_Instances )
	{
		if ( pInstance->GetDefinition() && pInstance->GetDefinition() != hDef.Get() && strcmp( pInstance->GetDefinition()->GetResourceName(), hDef->GetResourceName() ) == 0 )
			ids.push_back( nInstance );
	}
	for ( PulseGraphInstanceID_t nInstance : ids )
		m_PendingReloads.push_back( { nInstance, hDef } );
	if ( m_RunStack.empty() && !m_bDraining )
		RunPendingReloads();
}

void CPulseSystem::RunPendingReloads()
{
	if ( m_PendingReloads.empty() || !m_RunStack.empty() || m_bDraining )
		return;
	// Resumes on their way name places in the old definition: they run first, all of them.
	DrainResumeQueue( int( m_Resumes.size() ) );
	std::vector<PendingReload_t> reloads;
	reloads.swap( m_PendingReloads );
	for ( const PendingReload_t &reload : reloads )
	{
		if ( CBasePulseGraphInstance *pInstance = FindInstance( reload.m_nInstance ) )
			Reload( pInstance, reload.m_hDef );
	}
}

void CPulseSystem::Reload( CBasePulseGraphInstance *pInstance, const CPulseGraphDefHandle &hDef )
{
	KeyValues3 saved;
	pInstance->StartGraphReload( &saved );
	pInstance->SetDefinition( hDef );
	pInstance->EndGraphReload( saved, this );
}
