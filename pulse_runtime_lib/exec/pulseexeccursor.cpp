#include "pulse_runtime_lib/exec/pulseexeccursor.h"

#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <algorithm>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/exec/pulsegraphinstance.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"

#define PULSE_CURSOR_TRACE( pFormat, ... )                                                                                                \
	do                                                                                                                                    \
	{                                                                                                                                     \
		if ( LoggingSystem_IsChannelEnabled( LOG_PULSE, LS_DETAILED ) )                                                                   \
			LoggingSystem_Log( LOG_PULSE, LS_DETAILED, "Cursor[ ptr:%p | id:%d | graph:%p ]: " pFormat, static_cast<const void *>( this ), m_nId, \
							   static_cast<const void *>( m_pInstance ) __VA_OPT__(, ) __VA_ARGS__ );                                       \
	} while ( 0 )

CPulseRegisterBlock::~CPulseRegisterBlock()
{
	if ( m_pData != m_Inline )
		std::free( m_pData );
}

void CPulseRegisterBlock::SetSize( size_t nBytes )
{
	if ( nBytes <= m_nCapacity )
		return;
	if ( m_pData != m_Inline )
		std::free( m_pData );
	m_nCapacity = ( nBytes + 15 ) & ~size_t( 15 );
	m_pData = static_cast<unsigned char *>( std::aligned_alloc( 16, m_nCapacity ) );
}

void CPulseDetachBits::Reset( size_t nRegisters )
{
	m_nWords = ( nRegisters + 63 ) / 64;
	if ( m_nWords > INLINE_WORDS )
		m_Heap.assign( m_nWords, 0 );
	else
		std::fill( m_Inline, m_Inline + INLINE_WORDS, 0 );
}

void *PulseFrame_t::Register( int nRegister )
{
	return m_Registers.Data() + m_pChunk->m_RegisterOffsets[ size_t( nRegister ) ];
}

void PulseFrame_t::SetDetached( int nRegister, bool bDetached )
{
	uint64_t nBit = uint64_t( 1 ) << ( nRegister & 63 );
	if ( bDetached )
		m_DetachBits.Words()[ nRegister >> 6 ] |= nBit;
	else
		m_DetachBits.Words()[ nRegister >> 6 ] &= ~nBit;
}

bool PulseFrame_t::IsDetached( int nRegister ) const
{
	return ( m_DetachBits.Words()[ nRegister >> 6 ] >> ( nRegister & 63 ) ) & 1;
}

CPulseExecCursor::CPulseExecCursor( CBasePulseGraphInstance *pInstance, PulseCursorID_t nId, PulseCursorID_t nParentId )
	: m_pInstance( pInstance ), m_nId( nId ), m_nParentId( nParentId )
{
	PULSE_CURSOR_TRACE( "CPulseExecCursor()\n" );
}

CPulseExecCursor::~CPulseExecCursor()
{
	PULSE_CURSOR_TRACE( "~CPulseExecCursor()\n" );
	if ( m_eState == STATE_YIELDED )
		LeaveYield();
	m_pControl.reset();
	for ( std::unique_ptr<PulseFrame_t> &pFrame : m_Stack )
		DestroyRegisters( *pFrame );
	DestroyRegisters( m_Active );
}

CPulseExecCursor::ControlStorage_t &CPulseExecCursor::Control()
{
	if ( !m_pControl )
		m_pControl = std::make_unique<ControlStorage_t>();
	return *m_pControl;
}

PulseCursorHandle CPulseExecCursor::GetHandle() const
{
	return { m_pInstance->GetInstanceID(), m_nId, m_pYield ? m_pYield->m_nToken : -1 };
}

PulseCursorExecResult_t CPulseExecCursor::GetFinalResult() const
{
	return m_eFinalResult;
}

bool CPulseExecCursor::HasCompleted() const
{
	return ( m_nFlags & FLAG_COMPLETED ) != 0;
}

const std::vector<PulseCursorTag_t> &CPulseExecCursor::GetTags() const
{
	static const std::vector<PulseCursorTag_t> s_None;
	return m_pControl ? m_pControl->m_Tags : s_None;
}

const std::vector<std::pair<PulseCursorID_t, PulseCursorExecResult_t>> &CPulseExecCursor::GetResultSet() const
{
	static const std::vector<std::pair<PulseCursorID_t, PulseCursorExecResult_t>> s_None;
	return m_pControl ? m_pControl->m_ResultSet : s_None;
}

const CPulseCell_Base *CPulseExecCursor::GetYieldCell() const
{
	return m_pYield ? m_pYield->m_pCell : nullptr;
}

void *CPulseExecCursor::GetYieldState() const
{
	return m_pYield ? m_pYield->m_pCellState : nullptr;
}

PulseCursorCancelPriority_t CPulseExecCursor::GetRequestedCancelPriority() const
{
	return m_pYield ? m_pYield->m_eRequestedCancel : PulseCursorCancelPriority_t::None;
}

bool CPulseExecCursor::IsResumePending() const
{
	return m_pYield && m_pYield->m_bResumePending;
}

double CPulseExecCursor::GetNow() const
{
	return m_pInstance->GetNow();
}

void CPulseExecCursor::BuildHostTable()
{
	m_nFlags |= FLAG_HOST_TABLE;
	m_nHostMask = 0;
	for ( int nKind = 0; nKind < PULSE_HOST_INTERFACE_KINDS; ++nKind )
	{
		void *pInterface = QueryHostInterface( nKind );
		if ( !pInterface )
			pInterface = m_pInstance->QueryHostInterface( nKind );
		m_HostTable[ nKind ] = pInterface;
		if ( pInterface )
			m_nHostMask |= 1u << nKind;
	}
}

void CPulseExecCursor::Run( int nChunk, int nInstruction, const RunStart_t *pStart )
{
	if ( nChunk == -1 || m_eState != STATE_IDLE )
		return;
	IPulseSystem *pSystem = m_pInstance->GetSystem();
	int nToken = 0;
	if ( pSystem->EnterCursorRun( this, &nToken ) != 0 )
	{
		m_pInstance->OnRunawayCursors();
		Terminate( PulseCursorExecResult_t::Failed );
		return;
	}
	m_nFlags |= FLAG_RUNNING;
	SwitchFrame( m_Active, nChunk, nInstruction );
	if ( pStart && pStart->m_pArgs && pStart->m_pRegisterMap )
		WriteArgs( *pStart->m_pArgs, *pStart->m_pRegisterMap );
	int nCount = 0;
	if ( m_pInstance->IsPoisoned() )
		Terminate( PulseCursorExecResult_t::Failed );
	else if ( pSystem->IsTracing() )
		Interpret<true>( &nCount );
	else
		Interpret<false>( &nCount );
	EndRun( pStart );
	pSystem->ExitCursorRun( this, nToken );
}

void CPulseExecCursor::EndRun( const RunStart_t *pStart )
{
	if ( pStart && pStart->m_pReturnValue && !m_Active.m_ReturnSlot.IsEmpty() )
		*pStart->m_pReturnValue = m_Active.m_ReturnSlot;
	m_nFlags &= ~FLAG_RUNNING;
}

void CPulseExecCursor::DestroyRegisters( PulseFrame_t &frame )
{
	if ( !frame.m_pChunk )
		return;
	for ( uint16_t nRegister : frame.m_pChunk->m_OwningRegisters )
		PulseValue_Destruct( frame.m_pChunk->m_Registers[ nRegister ].m_Type, frame.Register( nRegister ) );
}

void CPulseExecCursor::SwitchFrame( PulseFrame_t &frame, int nChunk, int nInstruction )
{
	frame.m_nInstruction = nInstruction;
	if ( nChunk == frame.m_nChunk && frame.m_pChunk )
		return;
	frame.m_ReturnSlot.Clear();
	DestroyRegisters( frame );
	frame.m_nChunk = nChunk;
	frame.m_pChunk = m_pInstance->GetDefinition()->GetChunk( nChunk );
	if ( !frame.m_pChunk )
		return;
	frame.m_Registers.SetSize( frame.m_pChunk->m_nRegisterBytes );
	if ( frame.m_pChunk->m_nRegisterBytes > 0 )
		memcpy( frame.m_Registers.Data(), frame.m_pChunk->m_DefaultRegisters.data(), frame.m_pChunk->m_nRegisterBytes );
	frame.m_DetachBits.Reset( size_t( frame.m_pChunk->GetRegisterCount() ) );
}

void CPulseExecCursor::CopyFrame( PulseFrame_t &target, const PulseFrame_t &source )
{
	DestroyRegisters( target );
	target.m_nChunk = source.m_nChunk;
	target.m_nInstruction = source.m_nInstruction;
	target.m_pChunk = source.m_pChunk;
	target.m_DetachBits = source.m_DetachBits;
	target.m_ReturnSlot = source.m_ReturnSlot;
	if ( !source.m_pChunk )
		return;
	target.m_Registers.SetSize( source.m_pChunk->m_nRegisterBytes );
	if ( source.m_pChunk->m_nRegisterBytes > 0 )
		memcpy( target.m_Registers.Data(), source.m_Registers.Data(), source.m_pChunk->m_nRegisterBytes );
	for ( uint16_t nRegister : source.m_pChunk->m_OwningRegisters )
	{
		const CPulseValueFullType &type = source.m_pChunk->m_Registers[ nRegister ].m_Type;
		size_t nOffset = source.m_pChunk->m_RegisterOffsets[ nRegister ];
		PulseValue_CopyConstruct( type, target.m_Registers.Data() + nOffset, source.m_Registers.Data() + nOffset );
	}
}

void CPulseExecCursor::WriteArgs( const PulseArgPack &args, const PulseRegisterMap_t &map )
{
	const CPulse_Chunk *pChunk = m_Active.m_pChunk;
	if ( !pChunk )
		return;
	for ( const PulseRegisterMapEntry_t &entry : map.m_BoundOut )
	{
		int nArg = args.Find( entry.m_Name );
		if ( nArg < 0 || entry.m_nRegister >= pChunk->GetRegisterCount() )
			continue;
		const CPulseValueFullType &type = pChunk->m_Registers[ size_t( entry.m_nRegister ) ].m_Type;
		void *pRegister = m_Active.Register( entry.m_nRegister );
		m_Active.SetDetached( entry.m_nRegister, false );
		if ( args.GetType( nArg ) == type )
			PulseValue_Copy( type, pRegister, args.GetValue( nArg ) );
		else if ( !PulseValue_Convert( args.GetType( nArg ), args.GetValue( nArg ), type, pRegister ) )
			Error( "INTERNAL ERROR: Cannot convert or reinterpret from %s to %s", args.GetType( nArg ).ToString().Get(), type.ToString().Get() );
	}
}

void CPulseExecCursor::JumpOrLeap( int nChunk, int nInstruction, const PulseCallPlan_t *pCall )
{
	if ( nChunk < 0 || nInstruction < 0 )
	{
		ReturnFromChunk();
		return;
	}
	PulseArgPack args;
	const CPulseCell_Inflow_BaseEntrypoint *pTarget = nullptr;
	if ( pCall )
	{
		auto pSaved = std::make_unique<PulseFrame_t>();
		CopyFrame( *pSaved, m_Active );
		m_Stack.push_back( std::move( pSaved ) );
		for ( const PulseRegisterMapEntry_t &entry : pCall->m_pCallInfo->m_RegisterMap.m_BoundIn )
			args.AddCopy( entry.m_Name, m_Active.m_pChunk->m_Registers[ size_t( entry.m_nRegister ) ].m_Type, m_Active.Register( entry.m_nRegister ) );
		pTarget = dynamic_cast<const CPulseCell_Inflow_BaseEntrypoint *>( pCall->m_pTarget );
	}
	if ( m_nFlags & FLAG_IN_INVOKE )
		m_nFlags |= FLAG_MOVED_IN_INVOKE;
	SwitchFrame( m_Active, nChunk, nInstruction );
	if ( pTarget )
		WriteArgs( args, pTarget->m_RegisterMap );
	m_nFlags &= ~FLAG_STEP_ON;
}

void CPulseExecCursor::ReturnFromChunk()
{
	if ( m_Stack.empty() )
	{
		Terminate( PulseCursorExecResult_t::Succeeded );
		return;
	}
	PulseFrame_t &saved = *m_Stack.back();
	const PGDInstruction_t &call = saved.m_pChunk->m_Instructions[ size_t( saved.m_nInstruction ) ];
	if ( call.m_nCode != PulseInstructionCode_t::PULSE_CALL_SYNC )
	{
		Terminate( PulseCursorExecResult_t::Succeeded );
		return;
	}
	auto *pPlan = static_cast<const PulseCallPlan_t *>( saved.m_pChunk->m_OpData[ size_t( saved.m_nInstruction ) ].m_pData );
	PulseArgPack results;
	if ( !m_Active.m_ReturnSlot.IsEmpty() && dynamic_cast<const CPulseCell_Inflow_Method *>( pPlan->m_pTarget ) )
		results.AddCopy( PulseSymbol_t( "retval" ), m_Active.m_ReturnSlot.GetType(), m_Active.m_ReturnSlot.GetValue() );
	if ( m_nFlags & FLAG_IN_INVOKE )
		m_nFlags |= FLAG_MOVED_IN_INVOKE;
	CopyFrame( m_Active, saved );
	m_Active.m_ReturnSlot.Clear();
	WriteArgs( results, pPlan->m_pCallInfo->m_RegisterMap );
	DestroyRegisters( saved );
	m_Stack.pop_back();

	// A scoped tag goes when the stack unwinds below the depth it was added at; one per return.
	if ( m_pControl )
	{
		std::vector<PulseCursorTag_t> &tags = m_pControl->m_Tags;
		for ( size_t i = tags.size(); i-- > 0; )
		{
			if ( tags[ i ].m_bRemoveWhenOutOfScope && tags[ i ].m_nStackDepthWhenAdded > GetStackDepth() )
			{
				tags.erase( tags.begin() + std::ptrdiff_t( i ) );
				Complete( PulseCursorExecResult_t::OngoingNotify );
				break;
			}
		}
	}
	JumpOrLeap( m_Active.m_nChunk, m_Active.m_nInstruction, nullptr );
	m_nFlags |= FLAG_STEP_ON;
}

void CPulseExecCursor::Complete( PulseCursorExecResult_t eResult )
{
	PULSE_CURSOR_TRACE( "Completed with result:%d\n", int( eResult ) );
	if ( eResult != PulseCursorExecResult_t::OngoingNotify )
	{
		m_eFinalResult = eResult;
		m_nFlags |= FLAG_COMPLETED;
		if ( m_pInstance->GetSystem()->IsTracing() )
			m_pInstance->GetExecutionHistory().RetireCursor( m_nId, GetCurrentFlowNode(), float( GetNow() ) );
		m_pInstance->GetSystem()->OnCursorCompleted( this, eResult );
	}
	if ( !m_pControl )
		return;
	// Observers are told through the service, which resolves each handle afresh.
	std::vector<PulseCursorHandle> observers = m_pControl->m_Observers;
	for ( const PulseCursorHandle &observer : observers )
		m_pInstance->GetSystem()->NotifyObserver( m_nId, observer, eResult );
}

void CPulseExecCursor::Terminate( PulseCursorExecResult_t eResult )
{
	if ( m_eState == STATE_TERMINATED )
		return;
	if ( m_eState == STATE_YIELDED )
	{
		LeaveYield();
		m_eState = STATE_TERMINATED;
		Complete( eResult );
		if ( !IsRunning() )
			m_pInstance->DestroyCursor( this );
		return;
	}
	m_eState = STATE_TERMINATED;
	Complete( eResult );
}

void CPulseExecCursor::AddTag( PulseSymbol_t name, const CPulseVariant &value, bool bChildCursorsShouldInherit, bool bRemoveWhenOutOfScope )
{
	std::vector<PulseCursorTag_t> &tags = Control().m_Tags;
	for ( PulseCursorTag_t &tag : tags )
	{
		if ( tag.m_Name == name && tag.m_Value.GetType() == value.GetType() && PulseValue_IsEqual( value.GetType(), tag.m_Value.GetValue(), value.GetValue() ) )
		{
			tag.m_bChildCursorsShouldInherit = tag.m_bChildCursorsShouldInherit || bChildCursorsShouldInherit;
			return;
		}
	}
	tags.push_back( { name, value, GetStackDepth(), bChildCursorsShouldInherit, bRemoveWhenOutOfScope } );
	if ( m_pInstance->GetSystem()->IsTracing() )
		m_pInstance->GetExecutionHistory().Add( { m_nId, GetCurrentFlowNode(), float( GetNow() ), PULSE_HISTORY_CURSOR_ADD_TAG, name } );
}

bool CPulseExecCursor::HasTag( PulseSymbol_t name, const CPulseVariant &value ) const
{
	for ( const PulseCursorTag_t &tag : GetTags() )
	{
		if ( tag.m_Name == name && tag.m_Value.GetType() == value.GetType() && PulseValue_IsEqual( value.GetType(), tag.m_Value.GetValue(), value.GetValue() ) )
			return true;
	}
	return false;
}

void CPulseExecCursor::RemoveTag( PulseSymbol_t name, const CPulseVariant &value )
{
	if ( !m_pControl )
		return;
	std::vector<PulseCursorTag_t> &tags = m_pControl->m_Tags;
	for ( size_t i = tags.size(); i-- > 0; )
	{
		const PulseCursorTag_t &tag = tags[ i ];
		if ( tag.m_Name == name && tag.m_Value.GetType() == value.GetType() && PulseValue_IsEqual( value.GetType(), tag.m_Value.GetValue(), value.GetValue() ) )
		{
			if ( m_pInstance->GetSystem()->IsTracing() )
				m_pInstance->GetExecutionHistory().Add( { m_nId, GetCurrentFlowNode(), float( GetNow() ), PULSE_HISTORY_CURSOR_REMOVE_TAG, name } );
			tags.erase( tags.begin() + std::ptrdiff_t( i ) );
			Complete( PulseCursorExecResult_t::OngoingNotify );
			return;
		}
	}
}

void CPulseExecCursor::ContinueAt( const CPulse_OutflowConnection &resumePoint, const PulseArgPack *pArgs )
{
	JumpOrLeap( resumePoint.m_nDestChunk, resumePoint.m_nInstruction, nullptr );
	if ( pArgs && resumePoint.IsConnected() && m_eState == STATE_IDLE )
		WriteArgs( *pArgs, resumePoint.m_OutflowRegisterMap );
}

void CPulseExecCursor::CopyInheritedTags( CPulseExecCursor *pChild ) const
{
	for ( const PulseCursorTag_t &tag : GetTags() )
	{
		if ( !tag.m_bChildCursorsShouldInherit )
			continue;
		PulseCursorTag_t copy = tag;
		copy.m_nStackDepthWhenAdded = pChild->GetStackDepth();
		pChild->Control().m_Tags.push_back( copy );
	}
}

PulseCursorHandle CPulseExecCursor::SpawnChildCursor( const CPulse_OutflowConnection &resumePoint, const PulseArgPack *pArgs, PulseCursorID_t *pObserverSlot )
{
	if ( !resumePoint.IsConnected() )
		return {};
	CPulseExecCursor *pChild = m_pInstance->CreateCursor( this );
	if ( !pChild )
		return {};
	CopyFrame( pChild->m_Active, m_Active );
	pChild->m_Active.m_ReturnSlot.Clear();
	CopyInheritedTags( pChild );
	if ( pObserverSlot )
	{
		*pObserverSlot = pChild->GetId();
		pChild->Control();
	}
	RunStart_t start;
	start.m_pArgs = pArgs;
	start.m_pRegisterMap = &resumePoint.m_OutflowRegisterMap;
	pChild->Run( resumePoint.m_nDestChunk, resumePoint.m_nInstruction, &start );
	PulseCursorHandle handle;
	if ( pChild->IsYielded() )
	{
		handle = pChild->GetHandle();
		if ( pObserverSlot )
			pChild->RegisterObserver( { m_pInstance->GetInstanceID(), m_nId, -1 } );
	}
	else if ( pObserverSlot )
	{
		Control().m_ResultSet.push_back( { pChild->GetId(), pChild->GetFinalResult() } );
	}
	m_pInstance->EndCursorRun( pChild );
	return handle;
}

void CPulseExecCursor::Yield( const CPulseCell_Base *pCell )
{
	if ( m_eState != STATE_IDLE )
		return;
	m_eState = STATE_YIELDED;
	m_pYield = std::make_unique<YieldRecord_t>();
	m_pYield->m_pCell = pCell;
	m_pYield->m_pCellState = pCell->AllocYieldState();
	m_pYield->m_nToken = CBasePulseGraphInstance::TakeNextYieldToken();
	m_pInstance->OnCursorYielded( this );
	PULSE_CURSOR_TRACE( "Yielded at cell ptr:%p id:%d\n", static_cast<const void *>( pCell ), pCell->m_nEditorNodeID );
}

void CPulseExecCursor::LeaveYield()
{
	if ( !m_pYield )
		return;
	PULSE_CURSOR_TRACE( "Resumed from cell ptr:%p id:%d\n", static_cast<const void *>( m_pYield->m_pCell ), m_pYield->m_pCell->m_nEditorNodeID );
	m_pInstance->GetSystem()->OnCursorUnyield( this );
	m_pInstance->OnCursorUnyielded( this );
	m_pYield->m_pCell->FreeYieldState( m_pYield->m_pCellState );
	m_pYield.reset();
	m_eState = STATE_IDLE;
}

void CPulseExecCursor::CompleteYield( PulseCursorExecResult_t eResult, const CPulse_OutflowConnection *pResumePoint, const PulseArgPack *pArgs )
{
	if ( m_eState != STATE_YIELDED )
		return;
	bool bConnected = pResumePoint && pResumePoint->IsConnected();
	if ( eResult == PulseCursorExecResult_t::Succeeded && m_pYield->m_eRequestedCancel == PulseCursorCancelPriority_t::CancelOnSucceeded )
	{
		Terminate( PulseCursorExecResult_t::Canceled );
		return;
	}
	if ( ( eResult == PulseCursorExecResult_t::Canceled || eResult == PulseCursorExecResult_t::Failed ) && !bConnected )
	{
		Terminate( eResult );
		return;
	}
	if ( bConnected && pArgs )
	{
		SwitchFrame( m_Active, pResumePoint->m_nDestChunk, pResumePoint->m_nInstruction );
		WriteArgs( *pArgs, pResumePoint->m_OutflowRegisterMap );
	}
	m_pYield->m_nToken = CBasePulseGraphInstance::TakeNextYieldToken();
	m_pYield->m_bResumePending = true;
	m_pYield->m_ePendingResult = eResult;
	m_pInstance->GetSystem()->QueueCursorResume( this, pResumePoint );
}

void CPulseExecCursor::Resume( const CPulse_OutflowConnection *pResumePoint )
{
	if ( m_eState != STATE_YIELDED )
		return;
	LeaveYield();
	if ( pResumePoint && pResumePoint->IsConnected() )
	{
		Run( pResumePoint->m_nDestChunk, pResumePoint->m_nInstruction );
		return;
	}
	// Unconnected: the flow goes back to its caller, after the instruction that yielded.
	ReturnFromChunk();
	if ( m_eState == STATE_IDLE )
		Run( m_Active.m_nChunk, m_Active.m_nInstruction + 1 );
}

void CPulseExecCursor::NotifyObserved( PulseCursorID_t nSubject, PulseCursorExecResult_t eResult )
{
	PULSE_CURSOR_TRACE( "Observer notifying cell ptr:%p id:%d of result:%d from Subject:%d\n", static_cast<const void *>( GetYieldCell() ),
						GetYieldCell() ? GetYieldCell()->m_nEditorNodeID : -1, int( eResult ), nSubject );
	if ( m_eState == STATE_YIELDED )
		m_pYield->m_pCell->OnObservedResult( this, nSubject, eResult );
}

void CPulseExecCursor::Wake()
{
	if ( m_eState == STATE_YIELDED )
		m_pYield->m_pCell->OnWake( this );
}

void CPulseExecCursor::RequestCancel( PulseCursorCancelPriority_t ePriority )
{
	if ( m_eState != STATE_YIELDED || ePriority == PulseCursorCancelPriority_t::None )
		return;
	if ( m_pYield->m_bResumePending )
	{
		// A success already on its way is turned into a cancel; anything else stands.
		if ( m_pYield->m_ePendingResult == PulseCursorExecResult_t::Succeeded )
			Terminate( PulseCursorExecResult_t::Canceled );
		return;
	}
	if ( int( ePriority ) <= int( m_pYield->m_eRequestedCancel ) )
		return;
	m_pYield->m_eRequestedCancel = ePriority;
	if ( ePriority == PulseCursorCancelPriority_t::CancelOnSucceeded )
		return;
	m_pYield->m_pCell->OnCancelRequested( this, ePriority );
}

void CPulseExecCursor::RegisterObserver( const PulseCursorHandle &observer )
{
	CBasePulseGraphInstance *pObserverInstance = m_pInstance->GetSystem()->FindInstance( observer.m_nInstance );
	if ( pObserverInstance && pObserverInstance != m_pInstance && pObserverInstance->GetDefinition() &&
		 pObserverInstance->GetDefinition()->m_DomainIdentifier != m_pInstance->GetDefinition()->m_DomainIdentifier )
	{
		Warning( "Cannot reference domain '%s' from '%s'\n", m_pInstance->GetDefinition()->m_DomainIdentifier.String(),
				 pObserverInstance->GetDefinition()->m_DomainIdentifier.String() );
		return;
	}
	PULSE_CURSOR_TRACE( "Register observer:%d\n", observer.m_nCursor );
	std::vector<PulseCursorHandle> &observers = Control().m_Observers;
	for ( const PulseCursorHandle &existing : observers )
	{
		if ( existing.m_nInstance == observer.m_nInstance && existing.m_nCursor == observer.m_nCursor )
			return;
	}
	observers.push_back( observer );
}

PulseDocNodeID_t CPulseExecCursor::GetCurrentFlowNode() const
{
	return m_Active.m_pChunk ? m_Active.m_pChunk->GetFlowNodeID( m_Active.m_nInstruction ) : -1;
}

void CPulseExecCursor::Report( bool bError, const char *pFormat, va_list args )
{
	char text[ 2048 ];
	vsnprintf( text, sizeof( text ), pFormat, args );
	size_t nLength = strlen( text );
	while ( nLength > 0 && text[ nLength - 1 ] == '\n' )
		text[ --nLength ] = '\0';
	const CPulseGraphDef *pDef = m_pInstance->GetDefinition();
	LoggingSystem_Log( LOG_PULSE, bError ? LS_ERROR : LS_WARNING, "Pulse: %s (%s:%d)\n", text, pDef ? pDef->GetResourceName() : "", GetCurrentFlowNode() );
}

void CPulseExecCursor::Warning( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	Report( false, pFormat, args );
	va_end( args );
}

void CPulseExecCursor::Error( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	Report( true, pFormat, args );
	va_end( args );
}
