// The text form of a definition (DumpToConsole, `zol pulse disasm`).

#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/graph/pulsegraphdef.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"

using enum PulseInstructionCode_t;

namespace
{
CUtlString TypeText( const CPulseValueFullType &type )
{
	return type.ToString();
}

const char *VarName( const CPulseGraphDef &def, int nVar )
{
	return def.GetVarName( nVar );
}

CUtlString ConstantText( const CPulseGraphDef &def, int nConstant )
{
	const CPulse_Constant *pConstant = def.GetConstant( nConstant );
	if ( !pConstant )
		return CUtlString( "?" );
	CPulseVariant value( pConstant->m_Type );
	CUtlString text;
	if ( value.GetValue() )
	{
		PulseValue_LoadKV3( pConstant->m_Type, value.GetValue(), &pConstant->m_Value, nullptr );
		PulseValue_ToText( pConstant->m_Type, value.GetValue(), &text );
	}
	CUtlString result;
	result.Format( "%s %s", TypeText( pConstant->m_Type ).Get(), text.Get() );
	return result;
}

CUtlString DomainValueText( const CPulseGraphDef &def, int nIndex )
{
	const CPulse_DomainValue *pValue = def.GetDomainValue( nIndex );
	CUtlString text;
	if ( !pValue )
		return CUtlString( "?" );
	const char *pKind = pValue->m_nType == PulseDomainValueType_t::ENTITY_NAME ? "EntityName" : pValue->m_nType == PulseDomainValueType_t::PANEL_ID ? "PanelID" : "UNKNOWN";
	text.Format( "%s '%s' (%s)", pKind, pValue->m_Value.String(), TypeText( pValue->m_RequiredRuntimeType ).Get() );
	return text;
}

CUtlString BlackboardText( const CPulseGraphDef &def, int nIndex )
{
	const CPulse_BlackboardReference *pReference = def.GetBlackboardReference( nIndex );
	CUtlString text;
	if ( pReference )
		text.Format( "%s::%s (%u)", pReference->m_BlackboardResource.String(), pReference->m_NodeName.String(), unsigned( pReference->m_nNodeID ) );
	return text;
}

const char *CalledMethodName( const CPulseGraphDef &def, int nCallInfo )
{
	const CPulse_CallInfo *pCall = def.GetCallInfo( nCallInfo );
	if ( !pCall )
		return "?";
	auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( def.FindCellByEditorNodeID( pCall->m_CallMethodID ) );
	return pMethod ? pMethod->m_MethodName.String() : pCall->m_PortName.String();
}

void AppendInstructionText( const CPulseGraphDef &def, const CPulse_Chunk &chunk, int nInstruction, CUtlString *pText )
{
	const PGDInstruction_t &in = chunk.m_Instructions[ size_t( nInstruction ) ];
	PulseInstructionCode_t eCode = chunk.GetCode( nInstruction );
	// Typed forms print as the generic code they come from; GET_CONST_INLINE_STORAGE has its own text.
	if ( eCode != GET_CONST_INLINE_STORAGE && int( eCode ) >= 0 && int( eCode ) < PULSE_INSTRUCTION_CODE_COUNT )
		eCode = PulseInstructionCode_GetGeneric( eCode );
	int r0 = in.m_nReg0, r1 = in.m_nReg1, r2 = in.m_nReg2;
	switch ( eCode )
	{
	case INVALID:
	case LAST_SERIALIZED_CODE: pText->Append( "[INVALID]" ); break;
	case IMMEDIATE_HALT: pText->Append( "[IMMEDIATE_HALT]" ); break;
	case RETURN_VOID: pText->Append( "[RETURN]" ); break;
	case RETURN_VALUE: pText->AppendFormat( "[RETURN R%d]", r0 ); break;
	case NOP: pText->Append( "[NOP]" ); break;
	case JUMP: pText->AppendFormat( "Jump to Instr I%d", in.m_nDestInstruction ); break;
	case JUMP_COND: pText->AppendFormat( "If (R%d) Jump to Instr I%d", r0, in.m_nDestInstruction ); break;
	case CHUNK_LEAP: pText->AppendFormat( "Leap to Chunk C%d", in.m_nChunk ); break;
	case CHUNK_LEAP_COND: pText->AppendFormat( "If (R%d) Leap to Chunk C%d", r0, in.m_nChunk ); break;
	case PULSE_CALL_SYNC: pText->AppendFormat( "Call C%d:I%d (%s)", in.m_nChunk, in.m_nDestInstruction, CalledMethodName( def, in.m_nCallInfoIndex ) ); break;
	case PULSE_CALL_ASYNC_FIRE: pText->AppendFormat( "Async Fire C%d:I%d", in.m_nChunk, in.m_nDestInstruction ); break;
	case CELL_INVOKE:
	{
		const CPulse_InvokeBinding *pBinding = def.GetInvokeBinding( in.m_nInvokeBindingIndex );
		int nCell = pBinding ? pBinding->m_nCellIndex : -1;
		const CPulseCell_Base *pCell = def.GetCell( nCell );
		pText->AppendFormat( "Invoke Cell%d [eid=%d] %s%s", nCell, pCell ? pCell->m_nEditorNodeID : -1, pCell ? "" : "NULL CELL ", pBinding ? pBinding->m_FuncName.String() : "?" );
		break;
	}
	case LIBRARY_INVOKE:
	{
		const CPulse_InvokeBinding *pBinding = def.GetInvokeBinding( in.m_nInvokeBindingIndex );
		pText->AppendFormat( "Invoke Lib %s", pBinding ? pBinding->m_FuncName.String() : "?" );
		break;
	}
	case SET_VAR: pText->AppendFormat( "SetVar V%d (%s) <- R%d", in.m_nVar, VarName( def, in.m_nVar ), r0 ); break;
	case GET_VAR: pText->AppendFormat( "GetVar R%d <- V%d (%s)", r0, in.m_nVar, VarName( def, in.m_nVar ) ); break;
	case GET_VAR_DETACH: pText->AppendFormat( "GetVar R%d <=MOVE*V%d (%s)", r0, in.m_nVar, VarName( def, in.m_nVar ) ); break;
	case DETACH_REGISTER: pText->AppendFormat( "Detach R%d", r0 ); break;
	case SET_VAR_ARRAY_ELEMENT_1D: pText->AppendFormat( "SetVarArrayElement1D V%d (%s) [ R%d ] <- R%d R%d", in.m_nVar, VarName( def, in.m_nVar ), r2, r0, r1 ); break;
	case SET_VAR_OBSERVABLE: pText->AppendFormat( "SetVar V%d (%s) <- R%d [*OBSERVABLE*]", in.m_nVar, VarName( def, in.m_nVar ), r0 ); break;
	case GET_CONST: pText->AppendFormat( "GetConst R%d <- C%d (%s)", r0, in.m_nConstIdx, ConstantText( def, in.m_nConstIdx ).Get() ); break;
	case GET_CONST_INLINE_STORAGE: pText->AppendFormat( "GetInlineConst R%d <- C%d (%s)", r0, in.m_nConstIdx, ConstantText( def, in.m_nConstIdx ).Get() ); break;
	case GET_ARRAY_ELEMENT: pText->AppendFormat( "GetArrayElement R%d <- R%d[ R%d ]", r0, r1, r2 ); break;
	case GET_DOMAIN_VALUE: pText->AppendFormat( "GetDomainValue R%d <- DV%d (%s)", r0, in.m_nDomainValueIdx, DomainValueText( def, in.m_nDomainValueIdx ).Get() ); break;
	case COPY: pText->AppendFormat( "Copy R%d <- R%d", r0, r1 ); break;
	case NOT: pText->AppendFormat( "Not R%d <- !R%d", r0, r1 ); break;
	case NEGATE: pText->AppendFormat( "Neg R%d <- -R%d", r0, r1 ); break;
	case ADD: pText->AppendFormat( "Add R%d <- R%d + R%d", r0, r1, r2 ); break;
	case SUB: pText->AppendFormat( "Sub R%d <- R%d - R%d", r0, r1, r2 ); break;
	case MUL: pText->AppendFormat( "Mul R%d <- R%d * R%d", r0, r1, r2 ); break;
	case DIV: pText->AppendFormat( "Div R%d <- R%d / R%d", r0, r1, r2 ); break;
	case MOD: pText->AppendFormat( "Mod R%d <- R%d %% R%d", r0, r1, r2 ); break;
	case LT: pText->AppendFormat( "Less R%d <- R%d < R%d", r0, r1, r2 ); break;
	case LTE: pText->AppendFormat( "LessEq R%d <- R%d <= R%d", r0, r1, r2 ); break;
	case EQ: pText->AppendFormat( "Eq R%d <- R%d == R%d", r0, r1, r2 ); break;
	case NE: pText->AppendFormat( "Neq R%d <- R%d != R%d", r0, r1, r2 ); break;
	case AND: pText->AppendFormat( "And R%d <- R%d && R%d", r0, r1, r2 ); break;
	case OR: pText->AppendFormat( "Or R%d <- R%d || R%d", r0, r1, r2 ); break;
	case SCALE: pText->AppendFormat( "Scale R%d <- R%d * R%d", r0, r1, r2 ); break;
	case SCALE_INV: pText->AppendFormat( "Scale INV R%d <- R%d / R%d", r0, r1, r2 ); break;
	case ELEMENT_ACCESS: pText->AppendFormat( "Element Access R%d <- R%d[R%d]", r0, r1, r2 ); break;
	case CONVERT_VALUE:
	case REINTERPRET_INSTANCE:
	{
		auto regType = [ &chunk ]( int nRegister ) {
			return nRegister >= 0 && nRegister < chunk.GetRegisterCount() ? TypeText( chunk.m_Registers[ size_t( nRegister ) ].m_Type ) : CUtlString( "?" );
		};
		pText->AppendFormat( "%s %s R%d <- %s R%d", eCode == CONVERT_VALUE ? "Convert" : "Reinterpret Instance", regType( r0 ).Get(), r0, regType( r1 ).Get(), r1 );
		break;
	}
	case GET_BLACKBOARD_REFERENCE: pText->AppendFormat( "GetBlackboardReference R%d <- BR%d (%s)", r0, in.m_nBlackboardReferenceIdx, BlackboardText( def, in.m_nBlackboardReferenceIdx ).Get() ); break;
	case SET_BLACKBOARD_REFERENCE: pText->AppendFormat( "SetBlackboardReference BR%d (%s) <- R%d ", in.m_nBlackboardReferenceIdx, BlackboardText( def, in.m_nBlackboardReferenceIdx ).Get(), r0 ); break;
	default:
	{
		const char *pName = PulseInstructionCode_GetName( int( eCode ) );
		pText->AppendFormat( "[***INVALID INSTRUCTION %d (%s)***]\n", int( eCode ), pName ? pName : "[unknown]" );
		return;
	}
	}
	pText->Append( '\n' );
}
} // namespace

void CPulseGraphDef::Dump( CUtlString *pText ) const
{
	pText->Append( "== PulseGraphDef ==\n" );
	pText->AppendFormat( "Domain: %s\n", m_DomainIdentifier.String() );
	pText->AppendFormat( "Parent Map: %s\n", m_ParentMapName.IsEmpty() ? "<none>" : m_ParentMapName.String() );
	std::vector<PulseSymbol_t> blackboards;
	EnumerateBlackboardResources( &blackboards );
	pText->Append( "Game Blackboards: " );
	if ( blackboards.empty() )
		pText->Append( "<none>\n" );
	else
	{
		pText->Append( "[ " );
		for ( size_t i = 0; i < blackboards.size(); ++i )
			pText->AppendFormat( "%s%s", i ? ", " : "", blackboards[ i ].String() );
		pText->Append( " ]\n" );
	}

	pText->AppendFormat( "%d Cells:\n", int( m_Cells.size() ) );
	for ( size_t i = 0; i < m_Cells.size(); ++i )
	{
		const CPulseCell_Base *pCell = m_Cells[ i ].get();
		if ( !pCell )
		{
			pText->AppendFormat( "  Cell%d - NULL\n", int( i ) );
			continue;
		}
		CUtlString description;
		pCell->AppendDescription( &description );
		pText->AppendFormat( "  Cell%d EditorID:%d [%s]: %s\n", int( i ), pCell->m_nEditorNodeID, pCell->GetClassName(), description.Get() );
	}

	pText->AppendFormat( "%d Vars:\n", int( m_Vars.size() ) );
	for ( size_t i = 0; i < m_Vars.size(); ++i )
		pText->AppendFormat( "  V%d: '%s' (%s)\n", int( i ), m_Vars[ i ].m_Name.String(), TypeText( m_Vars[ i ].m_Type ).Get() );

	pText->AppendFormat( "%d PublicOutputs:\n", int( m_PublicOutputs.size() ) );
	for ( size_t i = 0; i < m_PublicOutputs.size(); ++i )
		pText->AppendFormat( "  Output%d: '%s' (%s)\n", int( i ), m_PublicOutputs[ i ].m_Name.String(), m_PublicOutputs[ i ].m_Description.Get() );

	pText->AppendFormat( "%d OutputConnections:\n", int( m_OutputConnections.size() ) );
	for ( size_t i = 0; i < m_OutputConnections.size(); ++i )
	{
		const CPulse_OutputConnection &connection = m_OutputConnections[ i ];
		pText->AppendFormat( "  Output Connection %d: '%s' -> '%s' : %s( %s )\n", int( i ), connection.m_SourceOutput.String(), connection.m_TargetEntity.String(),
							 connection.m_TargetInput.String(), connection.m_Param.String() );
	}

	pText->AppendFormat( "%d CallInfos:\n", int( m_CallInfos.size() ) );
	for ( size_t i = 0; i < m_CallInfos.size(); ++i )
	{
		const CPulse_CallInfo &call = m_CallInfos[ i ];
		CUtlString text;
		text.Format( "NodeID %d port '%s' called from C%d:I%d", call.m_nEditorNodeID, call.m_PortName.String(), call.m_nSrcChunk, call.m_nSrcInstruction );
		call.m_RegisterMap.AppendText( &text );
		pText->AppendFormat( "  CallInfo%d: %s\n", int( i ), text.Get() );
	}

	pText->AppendFormat( "%d InvokeBindings:\n", int( m_InvokeBindings.size() ) );
	for ( size_t i = 0; i < m_InvokeBindings.size(); ++i )
	{
		const CPulse_InvokeBinding &binding = m_InvokeBindings[ i ];
		CUtlString text;
		text.Format( "'%s'", binding.m_FuncName.String() );
		binding.m_RegisterMap.AppendText( &text );
		if ( binding.m_nCellIndex >= 0 )
			pText->AppendFormat( "  Invoke%d: Cell%d %s\n", int( i ), binding.m_nCellIndex, text.Get() );
		else
			pText->AppendFormat( "  Invoke%d: LibraryFunc %s\n", int( i ), text.Get() );
	}

	pText->AppendFormat( "%d Chunks:\n", int( m_Chunks.size() ) );
	for ( size_t c = 0; c < m_Chunks.size(); ++c )
	{
		const CPulse_Chunk &chunk = m_Chunks[ c ];
		pText->AppendFormat( "[ Chunk%d ]", int( c ) );
		const CPulseCell_Inflow_Method *pMethod = nullptr;
		for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
		{
			auto *pCandidate = dynamic_cast<const CPulseCell_Inflow_Method *>( pCell.get() );
			if ( pCandidate && pCandidate->m_EntryChunk == int( c ) && !pMethod )
				pMethod = pCandidate;
		}
		if ( pMethod )
			pText->AppendFormat( " ** Entrypoint For Method '%s'", pMethod->m_MethodName.String() );
		// Registers lay out only when bound; before that the size is what they add up to.
		uint32_t nBytes = chunk.m_nRegisterBytes;
		if ( !m_bBound )
		{
			nBytes = 0;
			for ( const CPulse_RegisterInfo &reg : chunk.m_Registers )
				nBytes += uint32_t( PulseValue_GetSize( reg.m_Type ) );
		}
		pText->AppendFormat( " %d register(s) %d byte(s)\n", chunk.GetRegisterCount(), int( nBytes ) );
		for ( const CPulse_RegisterInfo &reg : chunk.m_Registers )
		{
			CUtlString usage;
			if ( reg.m_nWrittenByInstruction < 0 )
				usage.Format( "[ written at chunk start last-read I%d ]", reg.m_nLastReadByInstruction );
			else
				usage.Format( "[ written by I%d last-read I%d ]", reg.m_nWrittenByInstruction, reg.m_nLastReadByInstruction );
			if ( pMethod )
			{
				PulseRegisterMap_t map = pMethod->m_RegisterMap;
				CUtlString ignored;
				map.Bind( &ignored );
				for ( const PulseRegisterMapEntry_t &entry : map.m_BoundIn )
				{
					if ( entry.m_nRegister == reg.m_nReg )
						usage.AppendFormat( " <-- Retval '%s'", entry.m_Name.String() );
				}
				for ( const PulseRegisterMapEntry_t &entry : map.m_BoundOut )
				{
					if ( entry.m_nRegister == reg.m_nReg )
						usage.AppendFormat( " <-- Arg '%s'", entry.m_Name.String() );
				}
			}
			pText->AppendFormat( "  R%d: %15s %25s %s\n", reg.m_nReg, TypeText( reg.m_Type ).Get(), reg.m_OriginName.Get(), usage.Get() );
		}
		pText->AppendFormat( "%d instruction(s)\n", chunk.GetInstructionCount() );
		for ( int i = 0; i < chunk.GetInstructionCount(); ++i )
		{
			const CPulse_InstructionDebug *pDebug = size_t( i ) < chunk.m_InstructionDebugInfos.size() ? &chunk.m_InstructionDebugInfos[ size_t( i ) ] : nullptr;
			pText->AppendFormat( "  C%d:I%-2d {F=%-10d,V=%-10d} ", int( c ), i, pDebug ? pDebug->m_nFlowNodeID : -1, pDebug ? pDebug->m_nValueNodeID : -1 );
			AppendInstructionText( *this, chunk, i, pText );
		}
	}
}
