#include "pulse_runtime_lib/cells/pulsecells.h"

#include "core/kv3transfer/kv3transferobject.h"
#include "core/logging/logging.h"
#include "core/schema/schemasystem.h"
#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"
#include "pulse_runtime_lib/exec/pulsegraphinstance.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"

namespace
{
template <typename... Classes> void RegisterAll( CSchemaSystemTypeScope *pScope )
{
	( RegisterKV3TransferClass<Classes>( pScope ), ... );
}

void RegisterOnce()
{
	CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "pulse" );
	// The definition registers its records and the cell base through its fields.
	RegisterAll<CPulseGraphDef, CPulse_ResumePoint>( pScope );
	RegisterAll<CPulseCell_BaseFlow, CPulseCell_BaseRequirement, CPulseCell_BaseValue, CPulseCell_Unknown, CPulseCell_Inflow_BaseEntrypoint,
				CPulseCell_Inflow_Method, CPulseCell_Inflow_EventHandler, CPulseCell_Inflow_GraphHook, CPulseCell_Inflow_EntOutputHandler,
				CPulseCell_Inflow_ObservableVariableListener, CPulseCell_BaseYieldingInflow, CPulseCell_Inflow_Yield, CPulseCell_Inflow_Wait,
				CPulseCell_Step_DebugLog>( pScope );
}
} // namespace

void PulseRuntime_RegisterClasses()
{
	static const bool s_bRegistered = ( RegisterOnce(), true );
	(void)s_bRegistered;
}

CSchemaSystemTypeScope *PulseRuntime_GetTypeScope()
{
	PulseRuntime_RegisterClasses();
	return SchemaSystem()->FindOrCreateTypeScopeForModule( "pulse" );
}

// Descriptions in the dump.

void CPulseCell_Inflow_Method::AppendDescription( CUtlString *pText ) const
{
	pText->AppendFormat( "Method '%s' -> C%d", m_MethodName.String(), m_EntryChunk );
	m_RegisterMap.AppendText( pText );
}

void CPulseCell_Inflow_Method::GatherPublicInterface( std::vector<PulsePublicInterfaceRow_t> *pRows ) const
{
	PulsePublicInterfaceRow_t &row = pRows->emplace_back();
	row.m_eKind = PulsePublicInterfaceRow_t::KIND_METHOD;
	row.m_Name.Set( m_MethodName.String() );
	row.m_Description = m_Description;
	row.m_Type = m_ReturnType;
	row.m_bPublic = m_bIsPublic;
	row.m_Args = m_Args;
}

void CPulseCell_Inflow_EventHandler::AppendDescription( CUtlString *pText ) const
{
	pText->AppendFormat( "Event '%s' -> C%d", m_EventName.String(), m_EntryChunk );
	m_RegisterMap.AppendText( pText );
}

void CPulseCell_Inflow_GraphHook::AppendDescription( CUtlString *pText ) const
{
	pText->AppendFormat( "Hook '%s' -> C%d", m_HookName.String(), m_EntryChunk );
}

void CPulseCell_Inflow_EntOutputHandler::AppendDescription( CUtlString *pText ) const
{
	pText->AppendFormat( "Output '%s' of '%s' -> C%d", m_SourceOutput.String(), m_SourceEntity.String(), m_EntryChunk );
}

void CPulseCell_Inflow_Yield::AppendDescription( CUtlString *pText ) const
{
	pText->Append( "m_UnyieldResume " );
	m_UnyieldResume.AppendText( pText );
}

void CPulseCell_Inflow_Wait::AppendDescription( CUtlString *pText ) const
{
	pText->Append( "m_WakeResume " );
	m_WakeResume.AppendText( pText );
}

// The wait's yield state: when the wake is due, so a reload can schedule it again.
struct PulseWaitYieldState_t
{
	double m_flWakeTime = 0.0;
};

void *CPulseCell_Inflow_Wait::AllocYieldState() const
{
	return new PulseWaitYieldState_t;
}

void CPulseCell_Inflow_Wait::FreeYieldState( void *pState ) const
{
	delete static_cast<PulseWaitYieldState_t *>( pState );
}

bool CPulseCell_Inflow_Wait::SaveYieldState( CPulseExecCursor *, const void *pState, KeyValues3 *pKV ) const
{
	pKV->SetMemberDouble( "m_flWakeTime", static_cast<const PulseWaitYieldState_t *>( pState )->m_flWakeTime );
	return true;
}

bool CPulseCell_Inflow_Wait::LoadYieldState( CPulseExecCursor *pCursor, void *pState, const KeyValues3 *pKV ) const
{
	auto *pWait = static_cast<PulseWaitYieldState_t *>( pState );
	pWait->m_flWakeTime = pKV && pKV->IsTable() ? pKV->GetMemberDouble( "m_flWakeTime", pCursor->GetNow() ) : pCursor->GetNow();
	pCursor->GetGraphInstance()->GetSystem()->ScheduleWake( pCursor->GetHandle(), pWait->m_flWakeTime );
	return true;
}

// The bound functions of these cells.
namespace
{
// Releasing a cell: the calling flow ends here, and every cursor parked at the cell goes
// on at the cell's resume point (Resume) or is cancelled (Abort).
int ReleaseCell( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	if ( !context.m_pCell )
		return PULSE_CALL_MISSING_TARGET;
	context.m_pCursor->ReturnFromChunk();
	context.m_pInstance->CompleteYieldedAt( context.m_pCell, PulseCursorExecResult_t::Succeeded, context.m_pCell->GetResumePoint() );
	return 0;
}

int AbortCell( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	if ( !context.m_pCell )
		return PULSE_CALL_MISSING_TARGET;
	context.m_pCursor->ReturnFromChunk();
	context.m_pInstance->CancelYieldedAt( context.m_pCell, PulseCursorCancelPriority_t::HardCancel );
	return 0;
}

int Pause( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	if ( !context.m_pCell )
		return PULSE_CALL_MISSING_TARGET;
	context.m_pCursor->Yield( context.m_pCell );
	return 0;
}

int Wait( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	if ( !context.m_pCell )
		return PULSE_CALL_MISSING_TARGET;
	CPulseExecCursor *pCursor = context.m_pCursor;
	pCursor->Yield( context.m_pCell );
	double flWakeTime = pCursor->GetNow() + double( in.Get<float>( 0 ) );
	static_cast<PulseWaitYieldState_t *>( pCursor->GetYieldState() )->m_flWakeTime = flWakeTime;
	context.m_pInstance->GetSystem()->ScheduleWake( pCursor->GetHandle(), flWakeTime );
	return 0;
}

int DebugLog( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	if ( !context.m_pCell )
		return PULSE_CALL_MISSING_TARGET;
	const char *pText = in.GetString( 0 );
	if ( IPulseSystem *pSystem = context.m_pInstance->GetSystem() )
		pSystem->OnGraphLog( context.m_pInstance, pText );
	else
		Log_Msg( LOG_PULSE, "%s\n", pText );
	return 0;
}

const PulseFunctionBinding_t s_YieldPause = { "CPulseCell_Inflow_Yield", "Pause", "Pause", "Park the cursor here until the yield is resumed.", {}, {},
											  PULSE_FUNCTION_FLAG_YIELDS, "MPulseCellInflow_IsDefault", 0, Pause };
const PulseFunctionBinding_t s_YieldResume = { "CPulseCell_Inflow_Yield", "Resume", "Resume", "Release every cursor parked here.", {}, {},
											   PULSE_FUNCTION_FLAG_FLOW, "MPulseCursorTerminates", 0, ReleaseCell };
const PulseFunctionBinding_t s_YieldAbort = { "CPulseCell_Inflow_Yield", "Abort", "Abort", "Cancel every cursor parked here.", {}, {},
											  PULSE_FUNCTION_FLAG_FLOW, "MPulseCursorTerminates", 0, AbortCell };
const PulseFunctionBinding_t s_WaitWait = { "CPulseCell_Inflow_Wait", "Wait", "Wait", "Pause the cursor at this point.",
											{ { "flDurationSec", CPulseValueFullType( PVAL_FLOAT ), "Seconds to wait." } }, {},
											PULSE_FUNCTION_FLAG_YIELDS, "MPulseCellInflow_IsDefault", 0, Wait };
const PulseFunctionBinding_t s_WaitImmediateWake = { "CPulseCell_Inflow_Wait", "ImmediateWake", "Immediate Wake",
													 "Immediately reactivate any waiting cursors regardless of how long they have been waiting.", {}, {},
													 PULSE_FUNCTION_FLAG_FLOW, "MPulseCursorTerminates", 0, ReleaseCell };
const PulseFunctionBinding_t s_WaitAbort = { "CPulseCell_Inflow_Wait", "Abort", "Abort", "Cancel any waiting cursors.", {}, {},
											 PULSE_FUNCTION_FLAG_FLOW, "MPulseCursorTerminates", 0, AbortCell };
const PulseFunctionBinding_t s_DebugLogRun = { "CPulseCell_Step_DebugLog", "Run", "Run", "Write the text to the graph's log.",
											   { { "pText", CPulseValueFullType( PVAL_STRING ), "The text to write." } }, {}, 0, nullptr, 0, DebugLog };

const CPulseFunctionRegistrar s_Registrars[] = { CPulseFunctionRegistrar( &s_YieldPause ), CPulseFunctionRegistrar( &s_YieldResume ),
												 CPulseFunctionRegistrar( &s_YieldAbort ), CPulseFunctionRegistrar( &s_WaitWait ),
												 CPulseFunctionRegistrar( &s_WaitImmediateWake ), CPulseFunctionRegistrar( &s_WaitAbort ),
												 CPulseFunctionRegistrar( &s_DebugLogRun ) };
} // namespace
