// Instances and their yielded cursors as KV3, for reloads: a definition that was rebuilt
// takes over the running instance. A place in the code is told by node id and port name,
// not by chunk and instruction, so a save survives a rebuilt definition; registers go by
// their origin names.

#include <cstring>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/exec/pulseexeccursor.h"
#include "pulse_runtime_lib/exec/pulsegraphinstance.h"
#include "pulse_runtime_lib/system/ipulsesystem.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"

namespace
{
const CPulseValueFullType &VariantType()
{
	static const CPulseValueFullType s_Variant( PVAL_VARIANT );
	return s_Variant;
}

// The instruction of a definition where a saved frame stood: the CELL_INVOKE of a cell's
// port, or the PULSE_CALL_SYNC of a call.
bool FindLandingPoint( const CPulseGraphDef &def, PulseDocNodeID_t nNode, const char *pPort, bool bYield, int *pChunk, int *pInstruction )
{
	for ( size_t c = 0; c < def.m_Chunks.size(); ++c )
	{
		const CPulse_Chunk &chunk = def.m_Chunks[ c ];
		for ( size_t i = 0; i < chunk.m_Instructions.size(); ++i )
		{
			const PGDInstruction_t &instruction = chunk.m_Instructions[ i ];
			bool bMatch = false;
			if ( bYield && instruction.m_nCode == PulseInstructionCode_t::CELL_INVOKE )
			{
				const CPulse_InvokeBinding *pBinding = def.GetInvokeBinding( instruction.m_nInvokeBindingIndex );
				const CPulseCell_Base *pCell = pBinding ? def.GetCell( pBinding->m_nCellIndex ) : nullptr;
				bMatch = pCell && pCell->m_nEditorNodeID == nNode && strcmp( pBinding->m_FuncName.String(), pPort ) == 0;
			}
			else if ( !bYield && instruction.m_nCode == PulseInstructionCode_t::PULSE_CALL_SYNC )
			{
				const CPulse_CallInfo *pCall = def.GetCallInfo( instruction.m_nCallInfoIndex );
				bMatch = pCall && pCall->m_nEditorNodeID == nNode && strcmp( pCall->m_PortName.String(), pPort ) == 0;
			}
			if ( bMatch )
			{
				*pChunk = int( c );
				*pInstruction = int( i );
				return true;
			}
		}
	}
	return false;
}
} // namespace

bool CPulseExecCursor::Save( KeyValues3 *pKV ) const
{
	const CPulseGraphDef &def = *m_pInstance->GetDefinition();
	pKV->SetToEmptyTable();
	pKV->SetMemberInt( "cursor_id", m_nId );
	pKV->SetMemberInt( "parent_cursor_id", m_nParentId );

	// Names the place of a frame; false when it can't be named.
	auto saveFrame = [ & ]( const PulseFrame_t &frame, bool bActive, KeyValues3 *pFrameKV ) {
		pFrameKV->SetToEmptyTable();
		const PGDInstruction_t *pInstruction = frame.m_pChunk && frame.m_nInstruction >= 0 && frame.m_nInstruction < frame.m_pChunk->GetInstructionCount()
			? &frame.m_pChunk->m_Instructions[ size_t( frame.m_nInstruction ) ]
			: nullptr;
		PulseDocNodeID_t nNode = -1;
		const char *pPort = nullptr;
		if ( pInstruction && bActive && pInstruction->m_nCode == PulseInstructionCode_t::CELL_INVOKE )
		{
			const CPulse_InvokeBinding *pBinding = def.GetInvokeBinding( pInstruction->m_nInvokeBindingIndex );
			const CPulseCell_Base *pCell = pBinding ? def.GetCell( pBinding->m_nCellIndex ) : nullptr;
			if ( pCell && pCell == GetYieldCell() )
			{
				nNode = pCell->m_nEditorNodeID;
				pPort = pBinding->m_FuncName.String();
			}
		}
		else if ( pInstruction && !bActive && pInstruction->m_nCode == PulseInstructionCode_t::PULSE_CALL_SYNC )
		{
			if ( const CPulse_CallInfo *pCall = def.GetCallInfo( pInstruction->m_nCallInfoIndex ) )
			{
				nNode = pCall->m_nEditorNodeID;
				pPort = pCall->m_PortName.String();
			}
		}
		if ( !pPort )
		{
			Log_Warning( LOG_PULSE, "WARNING: Pulse failed to save yielded cursor - no yielding cell or landing pad (C%d:I%d)\n", frame.m_nChunk, frame.m_nInstruction );
			return;
		}
		pFrameKV->SetMemberInt( "node_id", nNode );
		pFrameKV->SetMemberString( "port_name", pPort );
		if ( bActive && m_pYield )
		{
			pFrameKV->SetMemberInt( "yield_token", m_pYield->m_nToken );
			pFrameKV->SetMemberInt( "requested_cancel", int( m_pYield->m_eRequestedCancel ) );
			KeyValues3 *pCellInfo = pFrameKV->SetMemberEmptyTable( "cell_info" );
			m_pYield->m_pCell->SaveYieldState( const_cast<CPulseExecCursor *>( this ), m_pYield->m_pCellState, pCellInfo );
		}
		KeyValues3 *pRegisters = pFrameKV->SetMemberEmptyTable( "registers" );
		for ( const CPulse_RegisterInfo &reg : frame.m_pChunk->m_Registers )
		{
			if ( reg.m_OriginName.IsEmpty() || !reg.IsLiveAt( frame.m_nInstruction ) || frame.IsDetached( reg.m_nReg ) )
				continue;
			PulseValue_SaveKV3( reg.m_Type, const_cast<PulseFrame_t &>( frame ).Register( reg.m_nReg ), pRegisters->FindOrCreateMember( reg.m_OriginName.Get() ) );
		}
	};
	saveFrame( m_Active, true, pKV->SetMemberEmptyTable( "active_frame" ) );
	KeyValues3 *pStack = pKV->SetMemberEmptyArray( "stack" );
	for ( const std::unique_ptr<PulseFrame_t> &pFrame : m_Stack )
		saveFrame( *pFrame, false, pStack->ArrayAddToTail() );
	pKV->SetMemberEmptyTable( "system_state" );
	pKV->SetMemberEmptyTable( "control_storage" );
	KeyValues3 *pObservers = pKV->SetMemberEmptyArray( "observer_cursors" );
	KeyValues3 *pTags = pKV->SetMemberEmptyArray( "tags" );
	KeyValues3 *pResults = pKV->SetMemberEmptyArray( "result_set" );
	if ( m_pControl )
	{
		for ( const PulseCursorHandle &observer : m_pControl->m_Observers )
		{
			KeyValues3 *pObserver = pObservers->ArrayAddToTail();
			pObserver->SetMemberUInt( "instance", observer.m_nInstance );
			pObserver->SetMemberInt( "cursor", observer.m_nCursor );
		}
		for ( const PulseCursorTag_t &tag : m_pControl->m_Tags )
		{
			KeyValues3 *pTag = pTags->ArrayAddToTail();
			pTag->SetMemberString( "m_Name", tag.m_Name.String() );
			PulseValue_SaveKV3( VariantType(), &tag.m_Value, pTag->SetMemberNull( "m_Value" ) );
			pTag->SetMemberBool( "m_bRemoveWhenOutOfScope", tag.m_bRemoveWhenOutOfScope );
			pTag->SetMemberBool( "m_bChildCursorsShouldInherit", tag.m_bChildCursorsShouldInherit );
			pTag->SetMemberInt( "m_nStackDepthWhenAdded", tag.m_nStackDepthWhenAdded );
		}
		for ( const auto &[ nCursor, eResult ] : m_pControl->m_ResultSet )
		{
			KeyValues3 *pResult = pResults->ArrayAddToTail();
			pResult->SetMemberInt( "cursor", nCursor );
			pResult->SetMemberInt( "result", int( eResult ) );
		}
	}
	return true;
}

bool CPulseExecCursor::Load( const KeyValues3 *pKV, IPulseReloadListener *pListener )
{
	const CPulseGraphDef &def = *m_pInstance->GetDefinition();
	auto refuse = [ & ]( const char *pReason ) {
		if ( pListener )
			pListener->OnCursorNotRestored( m_pInstance, m_nId, pReason );
		return false;
	};
	auto loadFrame = [ & ]( const KeyValues3 *pFrameKV, bool bActive, PulseFrame_t *pFrame ) -> bool {
		PulseDocNodeID_t nNode = pFrameKV ? pFrameKV->GetMemberInt( "node_id", -1 ) : -1;
		const char *pPort = pFrameKV ? pFrameKV->GetMemberString( "port_name", "" ) : "";
		int nChunk = -1, nInstruction = -1;
		if ( !FindLandingPoint( def, nNode, pPort, bActive, &nChunk, &nInstruction ) )
		{
			Log_Warning( LOG_PULSE, "WARNING: Pulse failed to restore yielded cursor - no yielding cell or landing pad (%d:%s)\n", nNode, pPort );
			return false;
		}
		SwitchFrame( *pFrame, nChunk, nInstruction );
		if ( bActive )
		{
			const PGDInstruction_t &instruction = pFrame->m_pChunk->m_Instructions[ size_t( nInstruction ) ];
			const CPulseCell_Base *pCell = def.GetCell( def.GetInvokeBinding( instruction.m_nInvokeBindingIndex )->m_nCellIndex );
			Yield( pCell );
			m_pYield->m_nToken = pFrameKV->GetMemberInt( "yield_token", m_pYield->m_nToken );
			m_pYield->m_eRequestedCancel = PulseCursorCancelPriority_t( pFrameKV->GetMemberInt( "requested_cancel", 0 ) & 3 );
			const KeyValues3 *pCellInfo = pFrameKV->FindMember( "cell_info" );
			if ( !pCell->LoadYieldState( this, m_pYield->m_pCellState, pCellInfo && pCellInfo->IsTable() ? pCellInfo : nullptr ) )
			{
				Log_Warning( LOG_PULSE, "WARNING: Pulse failed to restore yielded cursor - error with cell state (%d:%s)\n", nNode, pPort );
				LeaveYield();
				return false;
			}
		}
		// Registers by origin name; one the chunk no longer has is dropped.
		if ( const KeyValues3 *pRegisters = pFrameKV->FindMember( "registers" ) )
		{
			for ( const CPulse_RegisterInfo &reg : pFrame->m_pChunk->m_Registers )
			{
				const KeyValues3 *pValue = reg.m_OriginName.IsEmpty() ? nullptr : pRegisters->FindMember( reg.m_OriginName.Get() );
				if ( pValue && !PulseValue_LoadKV3( reg.m_Type, pFrame->Register( reg.m_nReg ), pValue, nullptr ) )
				{
					PulseValue_Destruct( reg.m_Type, pFrame->Register( reg.m_nReg ) );
					PulseValue_Construct( reg.m_Type, pFrame->Register( reg.m_nReg ) );
				}
			}
		}
		return true;
	};

	if ( const KeyValues3 *pStack = pKV->FindMember( "stack" ) )
	{
		for ( int i = 0; i < pStack->GetArrayElementCount(); ++i )
		{
			auto pFrame = std::make_unique<PulseFrame_t>();
			if ( !loadFrame( pStack->GetArrayElement( i ), false, pFrame.get() ) )
			{
				DestroyRegisters( *pFrame );
				return refuse( "a method call it was in is gone" );
			}
			m_Stack.push_back( std::move( pFrame ) );
		}
	}
	if ( !loadFrame( pKV->FindMember( "active_frame" ), true, &m_Active ) )
		return refuse( "the node it waited at is gone" );

	if ( const KeyValues3 *pTags = pKV->FindMember( "tags" ) )
	{
		for ( int i = 0; i < pTags->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pTag = pTags->GetArrayElement( i );
			PulseCursorTag_t tag;
			tag.m_Name = PulseSymbol_t( pTag->GetMemberString( "m_Name", "" ) );
			if ( const KeyValues3 *pValue = pTag->FindMember( "m_Value" ) )
				PulseValue_LoadKV3( VariantType(), &tag.m_Value, pValue, nullptr );
			tag.m_bRemoveWhenOutOfScope = pTag->GetMemberBool( "m_bRemoveWhenOutOfScope" );
			tag.m_bChildCursorsShouldInherit = pTag->GetMemberBool( "m_bChildCursorsShouldInherit" );
			tag.m_nStackDepthWhenAdded = pTag->GetMemberInt( "m_nStackDepthWhenAdded" );
			Control().m_Tags.push_back( tag );
		}
	}
	if ( const KeyValues3 *pObservers = pKV->FindMember( "observer_cursors" ) )
	{
		for ( int i = 0; i < pObservers->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pObserver = pObservers->GetArrayElement( i );
			Control().m_Observers.push_back( { pObserver->GetMemberUInt( "instance" ), pObserver->GetMemberInt( "cursor", -1 ), -1 } );
		}
	}
	return true;
}

void CBasePulseGraphInstance::Save( KeyValues3 *pKV ) const
{
	pKV->SetToEmptyTable();
	pKV->SetMemberString( "m_hDef", m_hDef ? m_hDef->GetResourceName() : "", KV3_SUBTYPE_STRING_RESOURCE_NAME );
	pKV->SetMemberUInt( "self_handle", m_nSelfHandle );
	KeyValues3 *pVars = pKV->SetMemberEmptyTable( "instance" )->SetMemberEmptyTable( "vars" );
	if ( m_bInitialised )
	{
		for ( int i = 0; i < m_hDef->GetVarCount(); ++i )
			PulseValue_SaveKV3( m_hDef->GetVarType( i ), GetVariableStorage( i ), pVars->FindOrCreateMember( m_hDef->GetVarName( i ) ) );
	}
	pKV->SetMemberInt( "next_cursor_id", m_nNextCursorID );
	KeyValues3 *pListeners = pKV->SetMemberEmptyArray( "observable_listeners" );
	for ( PulseGraphInstanceID_t nListener : m_ObservableListeners )
		pListeners->ArrayAddToTail()->SetUInt( nListener );
	KeyValues3 *pCursors = pKV->SetMemberEmptyArray( "cursors" );
	for ( CPulseExecCursor *pCursor : m_YieldedCursors )
		pCursor->Save( pCursors->ArrayAddToTail() );
	pKV->SetMemberEmptyTable( "system_state" );
}

void CBasePulseGraphInstance::Load( const KeyValues3 &kv, IPulseReloadListener *pListener )
{
	if ( !m_bInitialised )
		return;
	if ( const KeyValues3 *pVars = kv.FindMember( "instance" ) ? kv.FindMember( "instance" )->FindMember( "vars" ) : nullptr )
	{
		for ( int i = 0; i < m_hDef->GetVarCount(); ++i )
		{
			const KeyValues3 *pValue = pVars->FindMember( m_hDef->GetVarName( i ) );
			const CPulseValueFullType &type = m_hDef->GetVarType( i );
			// A value that doesn't fit the variable's new type leaves its default.
			if ( pValue && !PulseValue_LoadKV3( type, GetVariableStorage( i ), pValue, nullptr ) )
			{
				PulseValue_Destruct( type, GetVariableStorage( i ) );
				PulseValue_Construct( type, GetVariableStorage( i ) );
				PulseValue_LoadKV3( type, GetVariableStorage( i ), &m_hDef->GetVarDefaultValue( i ), nullptr );
			}
		}
	}
	m_nNextCursorID = std::max( m_nNextCursorID, PulseCursorID_t( kv.GetMemberInt( "next_cursor_id", 1 ) ) );
	if ( const KeyValues3 *pListeners = kv.FindMember( "observable_listeners" ) )
	{
		for ( int i = 0; i < pListeners->GetArrayElementCount(); ++i )
			AddObservableListener( pListeners->GetArrayElement( i )->GetUInt() );
	}
	if ( const KeyValues3 *pCursors = kv.FindMember( "cursors" ) )
	{
		for ( int i = 0; i < pCursors->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pCursorKV = pCursors->GetArrayElement( i );
			auto *pCursor = new CPulseExecCursor( this, pCursorKV->GetMemberInt( "cursor_id", TakeNextCursorID() ), pCursorKV->GetMemberInt( "parent_cursor_id", -1 ) );
			m_Cursors.push_back( pCursor );
			if ( !pCursor->Load( pCursorKV, pListener ) )
				DestroyCursor( pCursor );
		}
	}
}

void CBasePulseGraphInstance::StartGraphReload( KeyValues3 *pSaved )
{
	LoggingSystem_Log( LOG_PULSE, LS_DETAILED, "CBasePulseGraphInstance::StartGraphReload( %p ) %s\n", static_cast<const void *>( this ), m_hDef ? m_hDef->GetResourceName() : "" );
	Save( pSaved );
	Shutdown( true );
	m_bReloading = true;
}

void CBasePulseGraphInstance::EndGraphReload( const KeyValues3 &saved, IPulseReloadListener *pListener )
{
	LoggingSystem_Log( LOG_PULSE, LS_DETAILED, "CBasePulseGraphInstance::EndGraphReload( %p ) %s\n", static_cast<const void *>( this ), m_hDef ? m_hDef->GetResourceName() : "" );
	m_bReloading = false;
	m_pReloadListener = pListener;
	Load( saved, pListener );
	m_pReloadListener = nullptr;
}
