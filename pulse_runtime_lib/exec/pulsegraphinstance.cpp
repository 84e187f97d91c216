#include "pulse_runtime_lib/exec/pulsegraphinstance.h"

#include <algorithm>
#include <atomic>
#include <cstdarg>
#include <cstdlib>
#include <cstring>

#include "core/logging/logging.h"
#include "core/platform/platformtime.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"
#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"

CBasePulseGraphInstance::CBasePulseGraphInstance( IPulseSystem *pSystem ) : m_pSystem( pSystem ), m_pHistory( std::make_unique<CPulseGraphExecutionHistory>() )
{
}

CBasePulseGraphInstance::~CBasePulseGraphInstance()
{
	LoggingSystem_Log( LOG_PULSE, LS_DETAILED, "CBasePulseGraphInstance::~CBasePulseGraphInstance( %p )\n", static_cast<const void *>( this ) );
	Shutdown( false );
	m_hDef = CPulseGraphDefHandle();
}

CPulseExecCursor *CBasePulseGraphInstance::CreateCursor( CPulseExecCursor *pParent )
{
	auto *pCursor = new CPulseExecCursor( this, TakeNextCursorID(), pParent ? pParent->GetId() : -1 );
	m_Cursors.push_back( pCursor );
	if ( m_pSystem->IsTracing() )
	{
		std::vector<PulseCursorID_t> ancestors;
		for ( CPulseExecCursor *pAncestor = pParent; pAncestor; pAncestor = FindCursor( pAncestor->GetParentId() ) )
			ancestors.push_back( pAncestor->GetId() );
		m_pHistory->NoteCursor( pCursor->GetId(), ancestors, pParent ? pParent->GetCurrentFlowNode() : -1 );
	}
	return pCursor;
}

bool CBasePulseGraphInstance::SetDefinition( const CPulseGraphDefHandle &hDef )
{
	if ( m_bInitialised )
		Shutdown( true );
	m_hDef = hDef;
	return Init( m_bReloading, false );
}

void CBasePulseGraphInstance::SetSelfHandle( PulseGraphInstanceID_t nHandle )
{
	m_nSelfHandle = nHandle;
	if ( !m_bRegistered && m_pSystem )
	{
		m_pSystem->RegisterInstance( this );
		m_bRegistered = true;
	}
}

bool CBasePulseGraphInstance::Init( bool bReloading, bool bFromSave )
{
	CUtlString name;
	GetDebugName( &name );
	LoggingSystem_Log( LOG_PULSE, LS_DETAILED, "CBasePulseGraphInstance::InitInstance_Internal( %s; %p ) %s\n", name.Get(), static_cast<const void *>( this ),
					   bReloading ? "Reloading" : "NotReloading" );
	if ( !m_hDef || !m_hDef->IsBound() )
		return false;
	if ( !IsDomainAcceptable( m_hDef->m_DomainIdentifier, m_hDef->m_DomainSubType ) )
		return false;
	ConstructState();
	m_FlagBits.assign( ( size_t( m_hDef->GetVarCount() ) + 63 ) / 64, 0 );
	m_bInitialised = true;
	if ( !m_bRegistered )
	{
		m_nSelfHandle = m_pSystem->RegisterInstance( this );
		m_bRegistered = true;
	}
	m_pHistory->SetInstance( m_nSelfHandle, m_hDef->GetResourceName() );
	if ( bReloading || bFromSave )
		return true;
	std::vector<PulseSymbol_t> blackboards;
	m_hDef->EnumerateBlackboardResources( &blackboards );
	for ( const PulseSymbol_t &resource : blackboards )
	{
		if ( CBasePulseGraphInstance *pBlackboard = FindBlackboardInstance( resource.String() ) )
			pBlackboard->AddObservableListener( m_nSelfHandle );
	}
	return true;
}

void CBasePulseGraphInstance::ConstructState()
{
	size_t nSize = 0, nAlignment = 1;
	m_hDef->GetInstanceStateLayout( &nSize, &nAlignment );
	if ( nSize > sizeof( m_InlineState ) || nAlignment > 16 )
		m_pState = static_cast<unsigned char *>( std::aligned_alloc( std::max<size_t>( nAlignment, 16 ), ( nSize + 15 ) & ~size_t( 15 ) ) );
	else
		m_pState = m_InlineState;
	for ( const CPulse_Variable &var : m_hDef->m_Vars )
	{
		void *pValue = m_pState + var.m_nStateOffset;
		PulseValue_Construct( var.m_Type, pValue );
		PulseValue_LoadKV3( var.m_Type, pValue, &var.m_DefaultValue, nullptr );
	}
	for ( const CPulseGraphDef::StatefulCell_t &cell : m_hDef->GetStatefulCells() )
		cell.m_pCell->ConstructInstanceState( m_pState + cell.m_nOffset );
	for ( const CPulse_DomainValue &value : m_hDef->m_DomainValues )
		PulseValue_Construct( value.m_RequiredRuntimeType, m_pState + value.m_nStateOffset );
}

void CBasePulseGraphInstance::DestructState()
{
	for ( const CPulse_Variable &var : m_hDef->m_Vars )
		PulseValue_Destruct( var.m_Type, m_pState + var.m_nStateOffset );
	for ( const CPulseGraphDef::StatefulCell_t &cell : m_hDef->GetStatefulCells() )
		cell.m_pCell->DestructInstanceState( m_pState + cell.m_nOffset );
	for ( const CPulse_DomainValue &value : m_hDef->m_DomainValues )
		PulseValue_Destruct( value.m_RequiredRuntimeType, m_pState + value.m_nStateOffset );
	if ( m_pState != m_InlineState )
		std::free( m_pState );
	m_pState = m_InlineState;
}

void CBasePulseGraphInstance::Shutdown( bool bReloading )
{
	LoggingSystem_Log( LOG_PULSE, LS_DETAILED, "CBasePulseGraphInstance::Shutdown( %s; %p ) %s\n", m_hDef ? m_hDef->GetResourceName() : "",
					   static_cast<const void *>( this ), bReloading ? "Reloading" : "NotReloading" );
	std::vector<CPulseExecCursor *> cursors = m_Cursors;
	m_Cursors.clear();
	for ( CPulseExecCursor *pCursor : cursors )
		delete pCursor;
	m_YieldedCursors.clear();
	if ( !bReloading && m_bRegistered )
	{
		m_pSystem->UnregisterInstance( this );
		m_bRegistered = false;
	}
	if ( m_bInitialised )
	{
		DestructState();
		m_pHistory->Clear();
		m_bInitialised = false;
	}
}

namespace
{
// Reports of the instance go to the running cursor's log, or straight to the channel.
void ReportTo( IPulseSystem *pSystem, const char *pFormat, ... ) __attribute__( ( format( printf, 2, 3 ) ) );
void ReportTo( IPulseSystem *pSystem, const char *pFormat, ... )
{
	char text[ 2048 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( text, sizeof( text ), pFormat, args );
	va_end( args );
	if ( IPulseExecLog *pLog = pSystem ? pSystem->GetCurrentLog() : nullptr )
		pLog->Warning( "%s", text );
	else
		Log_Warning( LOG_PULSE, "Pulse: %s\n", text );
}
} // namespace

PulseCursorHandle CBasePulseGraphInstance::StartCursorAtEntry( const CPulseCell_Inflow_BaseEntrypoint *pEntry, const PulseArgPack *pArgs, CPulseExecCursor *pParent, CPulseVariant *pResult )
{
	if ( !m_bInitialised || pEntry->m_EntryChunk < 0 )
		return {};
	CPulseExecCursor *pCursor = CreateCursor( pParent );
	if ( m_bPoisoned )
	{
		CUtlString name;
		GetDebugName( &name );
		ReportTo( m_pSystem, "Preventing new cursor (%s)", name.Get() );
		DestroyCursor( pCursor );
		return {};
	}
	CPulseExecCursor::RunStart_t start;
	start.m_pArgs = pArgs;
	start.m_pReturnValue = pResult;
	start.m_pRegisterMap = &pEntry->m_RegisterMap;
	pCursor->Run( pEntry->m_EntryChunk, 0, &start );
	PulseCursorHandle handle;
	if ( pCursor->IsYielded() )
		handle = pCursor->GetHandle();
	EndCursorRun( pCursor );
	m_pSystem->OnEntryReturned();
	return handle;
}

bool CBasePulseGraphInstance::RunMethod( const char *pName, const PulseArgPack *pArgs, PulseCursorHandle *pHandle, CPulseVariant *pResult )
{
	const CPulseCell_Inflow_Method *pMethod = m_hDef && m_bInitialised ? m_hDef->FindMethodCell( pName ) : nullptr;
	if ( !pMethod )
		return false;
	PulseCursorHandle handle = StartCursorAtEntry( pMethod, pArgs, nullptr, pResult );
	if ( pHandle )
		*pHandle = handle;
	return true;
}

bool CBasePulseGraphInstance::FireEvent( const char *pName, const PulseArgPack *pArgs, PulseCursorHandle *pHandle )
{
	auto *pHandler = static_cast<const CPulseCell_Inflow_BaseEntrypoint *>( m_hDef && m_bInitialised ? m_hDef->FindEventHandlerCell( pName ) : nullptr );
	if ( !pHandler )
		return false;
	PulseCursorHandle handle = StartCursorAtEntry( pHandler, pArgs, nullptr, nullptr );
	if ( pHandle )
		*pHandle = handle;
	return true;
}

bool CBasePulseGraphInstance::RunGraphHook( const char *pName, const PulseArgPack *pArgs, CPulseVariant *pResult )
{
	auto *pHook = static_cast<const CPulseCell_Inflow_BaseEntrypoint *>( m_hDef && m_bInitialised ? m_hDef->FindGraphHookCell( pName ) : nullptr );
	if ( !pHook || pHook->m_EntryChunk < 0 || m_bPoisoned )
		return false;
	StartCursorAtEntry( pHook, pArgs, nullptr, pResult );
	return true;
}

bool CBasePulseGraphInstance::SetVariable( const char *pName, const KeyValues3 &value )
{
	int nVar = m_hDef && m_bInitialised ? m_hDef->FindVarByName( pName ) : -1;
	if ( nVar < 0 )
		return false;
	const CPulseValueFullType &type = m_hDef->GetVarType( nVar );
	CPulseVariant converted( type );
	if ( converted.GetValue() )
		PulseValue_LoadKV3( type, converted.GetValue(), &value, nullptr );
	PulseValue_Copy( type, GetVariableStorage( nVar ), converted.GetValue() );
	return true;
}

bool CBasePulseGraphInstance::SetVariableValue( int nVar, const CPulseValueFullType &type, const void *pValue )
{
	if ( !m_bInitialised || nVar < 0 || nVar >= m_hDef->GetVarCount() )
		return false;
	const CPulseValueFullType &varType = m_hDef->GetVarType( nVar );
	if ( type == varType )
	{
		PulseValue_Copy( varType, GetVariableStorage( nVar ), pValue );
		return true;
	}
	return PulseValue_Convert( type, pValue, varType, GetVariableStorage( nVar ) );
}

bool CBasePulseGraphInstance::GetVariable( const char *pName, CPulseVariant *pValue ) const
{
	int nVar = m_hDef && m_bInitialised ? m_hDef->FindVarByName( pName ) : -1;
	if ( nVar < 0 )
		return false;
	pValue->SetValue( m_hDef->GetVarType( nVar ), GetVariableStorage( nVar ) );
	return true;
}

void *CBasePulseGraphInstance::GetVariableStorage( int nVar )
{
	return m_pState + m_hDef->m_Vars[ size_t( nVar ) ].m_nStateOffset;
}

const void *CBasePulseGraphInstance::GetVariableStorage( int nVar ) const
{
	return m_pState + m_hDef->m_Vars[ size_t( nVar ) ].m_nStateOffset;
}

void CBasePulseGraphInstance::SetVariableDetached( int nVar, bool bDetached )
{
	uint64_t nBit = uint64_t( 1 ) << ( nVar & 63 );
	if ( bDetached )
		m_FlagBits[ size_t( nVar >> 6 ) ] |= nBit;
	else
		m_FlagBits[ size_t( nVar >> 6 ) ] &= ~nBit;
}

bool CBasePulseGraphInstance::OnVariableChanged( int nVar, const CPulseVariant &oldValue, const CPulseVariant &newValue )
{
	const char *pResource = m_hDef->GetResourceName();
	PulseDocNodeID_t nVarID = m_hDef->GetVarEditorNodeID( nVar );
	bool bTaken = false;
	std::vector<PulseGraphInstanceID_t> listeners = m_ObservableListeners;
	for ( PulseGraphInstanceID_t nListener : listeners )
	{
		CBasePulseGraphInstance *pListener = m_pSystem->FindInstance( nListener );
		if ( pListener && pListener != this && pListener->OnForeignVariableChanged( pResource, nVarID, oldValue, newValue ) )
			bTaken = true;
	}
	if ( OnForeignVariableChanged( pResource, nVarID, oldValue, newValue ) )
		bTaken = true;
	return bTaken;
}

bool CBasePulseGraphInstance::OnForeignVariableChanged( const char *pResource, PulseDocNodeID_t nVarID, const CPulseVariant &oldValue, const CPulseVariant &newValue )
{
	if ( !m_bInitialised )
		return false;
	bool bTaken = false;
	std::vector<const CPulseCell_Base *> cells;
	m_hDef->GatherCellsOfClass( "CPulseCell_Inflow_ObservableVariableListener", &cells );
	bool bOwnGraph = strcmp( pResource, m_hDef->GetResourceName() ) == 0;
	for ( const CPulseCell_Base *pCell : cells )
	{
		auto *pListener = static_cast<const CPulseCell_Inflow_ObservableVariableListener *>( pCell );
		const CPulse_BlackboardReference *pReference = m_hDef->GetBlackboardReference( pListener->m_nBlackboardReference );
		bool bMatches;
		if ( pListener->m_bSelfReference )
			bMatches = bOwnGraph && ( !pReference || pReference->m_nNodeID == nVarID );
		else
			bMatches = pReference && pReference->m_nNodeID == nVarID && strcmp( pReference->m_BlackboardResource.String(), pResource ) == 0;
		if ( !bMatches )
			continue;
		PulseArgPack args;
		args.AddRef( PulseSymbol_t( "previous_value" ), &oldValue.GetType(), const_cast<void *>( oldValue.GetValue() ) );
		args.AddRef( PulseSymbol_t( "current_value" ), &newValue.GetType(), const_cast<void *>( newValue.GetValue() ) );
		StartCursorAtEntry( pListener, &args, nullptr, nullptr );
		bTaken = true;
	}
	// Cursors waiting on observables test again; one may end another, so handles first.
	std::vector<PulseCursorHandle> handles;
	for ( CPulseExecCursor *pCursor : m_YieldedCursors )
		handles.push_back( pCursor->GetHandle() );
	for ( const PulseCursorHandle &handle : handles )
	{
		if ( CPulseExecCursor *pCursor = ResolveCursor( handle ) )
			pCursor->NotifyObserved( -1, PulseCursorExecResult_t::OngoingNotify );
	}
	return bTaken;
}

void CBasePulseGraphInstance::AddObservableListener( PulseGraphInstanceID_t nListener )
{
	if ( std::find( m_ObservableListeners.begin(), m_ObservableListeners.end(), nListener ) == m_ObservableListeners.end() )
		m_ObservableListeners.push_back( nListener );
}

const void *CBasePulseGraphInstance::GetDomainValue( int nIndex )
{
	const CPulse_DomainValue &value = m_hDef->m_DomainValues[ size_t( nIndex ) ];
	void *pCached = m_pState + value.m_nStateOffset;
	if ( !PulseValue_IsValid( value.m_RequiredRuntimeType, pCached ) )
		ResolveDomainValue( value, pCached );
	return pCached;
}

CBasePulseGraphInstance *CBasePulseGraphInstance::FindBlackboardInstance( const char *pResourceName )
{
	return m_pSystem->FindInstanceOfResource( pResourceName );
}

double CBasePulseGraphInstance::GetNow() const
{
	return m_pSystem ? m_pSystem->GetTime() : Plat_FloatTime();
}

void CBasePulseGraphInstance::OnRunawayCursors()
{
	if ( m_bPoisoned )
		return;
	CUtlString name;
	GetDebugName( &name );
	ReportTo( m_pSystem, "Probable runaway cursor creation detected! Permanently disabling this graph instance (%s)", name.Get() );
	m_bPoisoned = true;
}

void CBasePulseGraphInstance::OnInfiniteLoop( int nCount )
{
	CUtlString name;
	GetDebugName( &name );
	ReportTo( m_pSystem, "Probable infinite loop detected! Terminating pulse cursor after %d consecutive instructions (%s)", nCount, name.Get() );
}

void CBasePulseGraphInstance::GetDebugName( CUtlString *pText ) const
{
	CUtlString file( m_hDef ? m_hDef->GetResourceName() : "" );
	pText->Format( "%s%s (uid=%d)", m_bPoisoned ? "POISONED " : "", file.UnqualifiedFilename(), int( m_nSelfHandle ) );
}

void CBasePulseGraphInstance::ValueToText( const CPulseValueFullType &type, const void *pValue, CUtlString *pText ) const
{
	PulseValue_ToText( type, pValue, pText );
}

int CBasePulseGraphInstance::GetTypeScope() const
{
	return PULSE_TYPE_SCOPE_COUNT;
}

CPulseExecCursor *CBasePulseGraphInstance::ResolveCursor( const PulseCursorHandle &handle ) const
{
	if ( handle.m_nInstance != m_nSelfHandle )
		return nullptr;
	for ( CPulseExecCursor *pCursor : m_YieldedCursors )
	{
		if ( pCursor->GetId() == handle.m_nCursor )
			return pCursor->GetHandle().m_nToken == handle.m_nToken ? pCursor : nullptr;
	}
	return nullptr;
}

CPulseExecCursor *CBasePulseGraphInstance::FindCursor( PulseCursorID_t nID ) const
{
	for ( CPulseExecCursor *pCursor : m_Cursors )
	{
		if ( pCursor->GetId() == nID )
			return pCursor;
	}
	return nullptr;
}

void CBasePulseGraphInstance::EndCursorRun( CPulseExecCursor *pCursor )
{
	if ( !pCursor->IsYielded() && !pCursor->IsRunning() )
		DestroyCursor( pCursor );
}

void CBasePulseGraphInstance::DestroyCursor( CPulseExecCursor *pCursor )
{
	auto it = std::find( m_Cursors.begin(), m_Cursors.end(), pCursor );
	if ( it != m_Cursors.end() )
		m_Cursors.erase( it );
	delete pCursor;
}

void CBasePulseGraphInstance::OnCursorYielded( CPulseExecCursor *pCursor )
{
	m_YieldedCursors.push_back( pCursor );
}

void CBasePulseGraphInstance::OnCursorUnyielded( CPulseExecCursor *pCursor )
{
	auto it = std::find( m_YieldedCursors.begin(), m_YieldedCursors.end(), pCursor );
	if ( it != m_YieldedCursors.end() )
		m_YieldedCursors.erase( it );
}

PulseCursorYieldToken_t CBasePulseGraphInstance::TakeNextYieldToken()
{
	static std::atomic<PulseCursorYieldToken_t> s_nNext { 1 };
	return s_nNext.fetch_add( 1, std::memory_order_relaxed );
}

void CBasePulseGraphInstance::FindCursorsWithTag( PulseSymbol_t name, const CPulseVariant &value, PulseDocNodeID_t nExcludedNode, std::vector<PulseCursorHandle> *pHandles ) const
{
	for ( CPulseExecCursor *pCursor : m_YieldedCursors )
	{
		if ( nExcludedNode != -1 && pCursor->GetYieldCell() && pCursor->GetYieldCell()->m_nEditorNodeID == nExcludedNode )
			continue;
		if ( pCursor->HasTag( name, value ) )
			pHandles->push_back( pCursor->GetHandle() );
	}
}

void CBasePulseGraphInstance::KillCursorsWithTag( PulseSymbol_t name, const CPulseVariant &value, PulseCursorCancelPriority_t ePriority, PulseDocNodeID_t nExcludedNode )
{
	std::vector<PulseCursorHandle> handles;
	FindCursorsWithTag( name, value, nExcludedNode, &handles );
	for ( const PulseCursorHandle &handle : handles )
	{
		if ( CPulseExecCursor *pCursor = ResolveCursor( handle ) )
			pCursor->RequestCancel( ePriority );
	}
}

int CBasePulseGraphInstance::CountYieldedAt( const CPulseCell_Base *pCell ) const
{
	return int( std::count_if( m_YieldedCursors.begin(), m_YieldedCursors.end(), [ pCell ]( CPulseExecCursor *pCursor ) { return pCursor->GetYieldCell() == pCell; } ) );
}

void CBasePulseGraphInstance::CancelYieldedAt( const CPulseCell_Base *pCell, PulseCursorCancelPriority_t ePriority )
{
	std::vector<PulseCursorHandle> handles;
	for ( CPulseExecCursor *pCursor : m_YieldedCursors )
	{
		if ( pCursor->GetYieldCell() == pCell )
			handles.push_back( pCursor->GetHandle() );
	}
	for ( const PulseCursorHandle &handle : handles )
	{
		if ( CPulseExecCursor *pCursor = ResolveCursor( handle ) )
			pCursor->RequestCancel( ePriority );
	}
}

void CBasePulseGraphInstance::CompleteYieldedAt( const CPulseCell_Base *pCell, PulseCursorExecResult_t eResult, const CPulse_OutflowConnection *pResumePoint )
{
	std::vector<PulseCursorHandle> handles;
	for ( CPulseExecCursor *pCursor : m_YieldedCursors )
	{
		if ( pCursor->GetYieldCell() == pCell && !pCursor->IsResumePending() )
			handles.push_back( pCursor->GetHandle() );
	}
	for ( const PulseCursorHandle &handle : handles )
	{
		if ( CPulseExecCursor *pCursor = ResolveCursor( handle ) )
			pCursor->CompleteYield( eResult, pResumePoint, nullptr );
	}
}
