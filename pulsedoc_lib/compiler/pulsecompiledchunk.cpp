#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"

#include <algorithm>
#include <cstring>

#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsepointanalysis.h"
#include "pulsedoc_lib/compiler/pulsesequencepoint.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulseports.h"
#include "pulsedoc_lib/nodes/pulsedocflow.h"
#include "pulsedoc_lib/nodes/pulsedocvalue.h"

using enum PulseInstructionCode_t;

namespace
{
// What the runtime's 16-bit register offsets and numbers reach.
constexpr size_t MAX_REGISTER_BYTES = 0xFFFF;
constexpr int MAX_REGISTERS = 0x7FFF;
constexpr int MAX_INSTRUCTIONS = 0xFFFF;
// Value nodes nest this deep at most (a chain of expressions reading each other).
constexpr size_t MAX_VALUE_NODE_DEPTH = 200;

size_t AlignUp( size_t nValue, size_t nAlignment )
{
	return ( nValue + nAlignment - 1 ) / nAlignment * nAlignment;
}

CUtlString TypeText( const CPulseValueFullType &type )
{
	CUtlString text = type.ToString();
	return text.IsEmpty() ? CUtlString( "no type" ) : text;
}

// A conversion is due when a register is read as another type.
bool NeedsConversion( const CPulseValueFullType &from, const CPulseValueFullType &to )
{
	if ( from == to || to.GetBaseType() == PVAL_UNKNOWN )
		return false;
	// An array reads as an array of the same storage without a conversion.
	if ( from.IsArray() && to.IsArray() && to.GetElementType() && ( !to.GetElementType()->IsValid() || to.GetElementType()->GetBaseType() == PVAL_UNKNOWN ) )
		return false;
	return true;
}
} // namespace

CCompiledChunk::CCompiledChunk( CPulseCompileContext *pContext, int nIndex ) : m_pContext( pContext ), m_nIndex( nIndex )
{
}

PGDInstruction_t &CCompiledChunk::AppendInstruction( PulseInstructionCode_t eCode, const CPulseSequencePoint *pPoint, int *pIndex )
{
	if ( pIndex )
		*pIndex = GetInstructionCount();
	PGDInstruction_t &instruction = m_Instructions.emplace_back();
	instruction.m_nCode = eCode;
	CPulse_InstructionDebug &debug = m_DebugInfos.emplace_back();
	if ( pPoint && pPoint->GetOwner() )
		debug.m_nFlowNodeID = CPulseDocMessages::ReportedID( pPoint->GetOwner() );
	debug.m_nValueNodeID = m_ValueNodeStack.empty() ? -1 : CPulseDocMessages::ReportedID( m_ValueNodeStack.back() );
	if ( pPoint )
		debug.m_SequencePointName = CGlobalSymbol( pPoint->GetName() );
	if ( GetInstructionCount() > MAX_INSTRUCTIONS )
		CheckLimits( pPoint ? pPoint->GetOwner() : nullptr );
	return instruction;
}

void CCompiledChunk::CheckLimits( const CPulseDocNode *pNode )
{
	if ( m_bReportedLimit )
		return;
	if ( GetInstructionCount() > MAX_INSTRUCTIONS )
		m_pContext->ReportError( pNode, "Chunk %d needs more than %d instructions; the runtime's offsets reach no further", m_nIndex, MAX_INSTRUCTIONS );
	else if ( GetRegisterCount() >= MAX_REGISTERS )
		m_pContext->ReportError( pNode, "Chunk %d needs more than %d registers; the runtime's register numbers reach no further", m_nIndex, MAX_REGISTERS );
	else if ( m_nRegisterBytes > MAX_REGISTER_BYTES )
		m_pContext->ReportError( pNode, "Chunk %d needs more than %zu bytes of registers; the runtime's offsets reach no further", m_nIndex, MAX_REGISTER_BYTES );
	else
		return;
	m_bReportedLimit = true;
}

uint16_t CCompiledChunk::AllocRegister( const CPulseValueFullType &type, const char *pName, const CPulseDocNode *pNode, int nWrittenBy )
{
	if ( !PulseGraphDef_IsStorableType( type ) )
	{
		m_pContext->ReportError( pNode, "Cannot hold a value of type '%s' in a register (%s)", TypeText( type ).Get(), pName );
		return PULSE_INVALID_REGISTER;
	}
	size_t nOffset = AlignUp( m_nRegisterBytes, PulseValue_GetAlignment( type ) );
	if ( GetRegisterCount() >= MAX_REGISTERS || nOffset + PulseValue_GetSize( type ) > MAX_REGISTER_BYTES )
	{
		m_nRegisterBytes = std::max( m_nRegisterBytes, nOffset + PulseValue_GetSize( type ) );
		CheckLimits( pNode );
		return PULSE_INVALID_REGISTER;
	}
	m_nRegisterBytes = nOffset + PulseValue_GetSize( type );
	uint16_t nRegister = uint16_t( m_Registers.size() );
	// The type may be another register's (a copy of a register): taken before the list grows.
	CPulseValueFullType registerType( type );
	CPulse_RegisterInfo &info = m_Registers.emplace_back();
	info.m_nReg = PulseRuntimeRegisterIndex_t( nRegister );
	info.m_Type = registerType;
	info.m_OriginName.Set( pName );
	info.m_nWrittenByInstruction = nWrittenBy;
	// While a value scope is open, arrays (or every register) are its temporaries.
	if ( m_Scope.m_nDepth > 0 && m_Scope.m_nEnd < 0 && ( registerType.IsArray() || m_pContext->GetOptions().m_bEveryRegisterIsTemporary ) )
	{
		if ( m_Scope.m_TemporarySet.insert( nRegister ).second )
			m_Scope.m_Temporaries.push_back( nRegister );
	}
	return nRegister;
}

uint16_t CCompiledChunk::AllocRegisterForPort( const CBasePulsePort *pPort, const CPulseValueFullType &type, int nWrittenBy )
{
	if ( !type.IsValid() )
	{
		m_pContext->ReportError( pPort->GetOwner(), "Invalid type for port '%s'", pPort->GetName() );
		return PULSE_INVALID_REGISTER;
	}
	if ( type.GetBaseType() == PVAL_UNKNOWN )
	{
		m_pContext->ReportError( pPort->GetOwner(), "Unspecified type for port '%s'", pPort->GetName() );
		return PULSE_INVALID_REGISTER;
	}
	CUtlString name;
	name.Format( "%d:%s", CPulseDocMessages::ReportedID( pPort->GetOwner() ), pPort->GetName() );
	return AllocRegister( type, name.Get(), pPort->GetOwner(), nWrittenBy );
}

void CCompiledChunk::SetRegisterWriter( uint16_t nRegister, int nInstruction )
{
	if ( nInstruction >= 0 && IsValidRegister( nRegister ) )
		m_Registers[ nRegister ].m_nWrittenByInstruction = nInstruction;
}

const CPulseValueFullType &CCompiledChunk::GetRegisterType( uint16_t nRegister ) const
{
	static const CPulseValueFullType s_Invalid;
	return IsValidRegister( nRegister ) ? m_Registers[ nRegister ].m_Type : s_Invalid;
}

// Outputs seen.

void CCompiledChunk::RecordOutparam( const CBasePulseOutparamPort *pPort, uint16_t nRegister )
{
	if ( !IsValidRegister( nRegister ) )
		return;
	if ( m_Scope.m_nDepth > 0 && m_Scope.m_TemporarySet.count( nRegister ) )
		m_OutputsScoped.emplace_back( pPort, nRegister );
	else
		m_OutputsLasting.emplace_back( pPort, nRegister );
}

uint16_t CCompiledChunk::FindOutparamRegister( const CBasePulseOutparamPort *pPort ) const
{
	for ( const auto *pList : { &m_OutputsScoped, &m_OutputsLasting } )
	{
		for ( auto it = pList->rbegin(); it != pList->rend(); ++it )
		{
			if ( it->first == pPort )
				return it->second;
		}
	}
	return PULSE_INVALID_REGISTER;
}

uint16_t CCompiledChunk::ReadOutput( const CPulseSequencePoint *pPoint, const CPulseDocNode *pSource, const CBasePulseOutparamPort *pOutparam, const CPulseDocNode *pReader,
									 const char *pInparam )
{
	if ( auto *pFlow = dynamic_cast<const CPulseDoc_BaseFlow *>( pSource ) )
	{
		// A flow node wrote the output when its step compiled: the read must be on a way
		// that passed it.
		const CPulsePointAnalysis &analysis = m_pContext->GetAnalysis();
		const CPulseSequencePoint *pSourcePoint = pFlow->GetOutparamSourcePoint( pOutparam );
		if ( !analysis.IsComplete() || ( pSourcePoint && pPoint && pSourcePoint == pPoint ) || ( pPoint && !analysis.Find( pPoint ) ) )
		{
			m_pContext->ReportError( pReader, "Cannot read from source point" );
			return PULSE_INVALID_REGISTER;
		}
		if ( pSourcePoint && pPoint && !analysis.Dominates( pSourcePoint, pPoint ) )
		{
			m_pContext->ReportError( pReader, "Parameter '%s' is not accessible for read by node '%d'", pOutparam->GetName(), CPulseDocMessages::ReportedID( pReader ) );
			return PULSE_INVALID_REGISTER;
		}
		uint16_t nRegister = FindOutparamRegister( pOutparam );
		if ( nRegister == PULSE_INVALID_REGISTER )
			m_pContext->ReportError( pReader, "Compiler error: Inparam was not already visited (%s reads '%s' of %s)", pInparam, pOutparam->GetName(),
									 pSource->DescribeForErrors().Get() );
		return nRegister;
	}
	auto *pValue = dynamic_cast<const CPulseDoc_BaseValue *>( pSource );
	if ( !pValue )
	{
		m_pContext->ReportError( pReader, "Cannot read '%s' of %s: it gives no value", pOutparam->GetName(), pSource->DescribeForErrors().Get() );
		return PULSE_INVALID_REGISTER;
	}
	if ( !m_pContext->SpendValueCompile( pReader ) || !PushValueNode( pValue ) )
		return PULSE_INVALID_REGISTER;
	size_t nSeen = m_OutputsScoped.size() + m_OutputsLasting.size();
	pValue->CompileValue( pPoint, this );
	PopValueNode();
	uint16_t nRegister = m_OutputsScoped.size() + m_OutputsLasting.size() > nSeen ? FindOutparamRegister( pOutparam ) : PULSE_INVALID_REGISTER;
	if ( nRegister == PULSE_INVALID_REGISTER && !m_pContext->GetMessages()->HasErrors() )
		m_pContext->ReportError( pReader, "Compiler error: Compiling expr didn't generate outparam" );
	return nRegister;
}

bool CCompiledChunk::PushValueNode( const CPulseDocNode *pNode )
{
	if ( std::find( m_ValueNodeStack.begin(), m_ValueNodeStack.end(), pNode ) != m_ValueNodeStack.end() )
	{
		m_pContext->ReportError( pNode, "Value nodes read each other in a circle: %s reads its own result", pNode->DescribeForErrors().Get() );
		return false;
	}
	if ( m_ValueNodeStack.size() >= MAX_VALUE_NODE_DEPTH )
	{
		m_pContext->ReportError( pNode, "Value nodes nest more than %zu deep", MAX_VALUE_NODE_DEPTH );
		return false;
	}
	m_ValueNodeStack.push_back( pNode );
	return true;
}

void CCompiledChunk::PopValueNode()
{
	if ( !m_ValueNodeStack.empty() )
		m_ValueNodeStack.pop_back();
}

// Inputs and outputs of a node.

bool CCompiledChunk::CompileInparams( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, KeyValues3 *pMap, const char *pInflow )
{
	if ( !pMap->IsTable() )
		pMap->SetToEmptyTable();
	std::vector<CBasePulsePort *> ports;
	pNode->GetPorts( &ports );
	bool bOk = true;
	for ( CBasePulsePort *pPort : ports )
	{
		CBasePulseInparamPort *pInparam = pPort->AsInparam();
		if ( !pInparam )
			continue;
		if ( pInflow && !pInparam->m_AssociatedInflow.IsEmpty() && !( pInparam->m_AssociatedInflow == pInflow ) )
			continue;
		int nErrors = m_pContext->GetMessages()->GetErrorCount();
		uint16_t nRegister = pInparam->CompileToRegister( pPoint, this );
		if ( nRegister == PULSE_INVALID_REGISTER )
		{
			// Said only when nothing more telling was, now or (the register limit) before.
			if ( m_pContext->GetMessages()->GetErrorCount() == nErrors && !m_bReportedLimit )
				m_pContext->ReportError( pNode, "Unable to allocate register for inparam: %s", pInparam->GetName() );
			bOk = false;
			continue;
		}
		pMap->SetMemberInt( pInparam->GetName(), nRegister );
	}
	return bOk;
}

void CCompiledChunk::CompileOutparams( const CPulseSequencePoint *, const CPulseDocNode *pNode, KeyValues3 *pMap, int nWrittenBy, bool bAll )
{
	if ( !pMap->IsTable() )
		pMap->SetToEmptyTable();
	std::vector<CBasePulsePort *> ports;
	pNode->GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		CBasePulseOutparamPort *pOutparam = pPort->AsOutparam();
		if ( !pOutparam || ( !bAll && !m_pContext->IsOutparamRead( pNode, pOutparam->GetName() ) ) )
			continue;
		uint16_t nRegister = AllocRegisterForPort( pOutparam, pOutparam->GetType(), nWrittenBy );
		if ( nRegister == PULSE_INVALID_REGISTER )
			continue;
		RecordOutparam( pOutparam, nRegister );
		pMap->SetMemberInt( pOutparam->GetName(), nRegister );
	}
}

// Conversions.

uint16_t CCompiledChunk::CastRegister( uint16_t nRegister, const CPulseSequencePoint *pPoint, const CPulseValueFullType &type, const CPulseDocNode *pNode )
{
	if ( !IsValidRegister( nRegister ) )
		return PULSE_INVALID_REGISTER;
	const CPulseValueFullType from = GetRegisterType( nRegister );
	if ( !NeedsConversion( from, type ) )
		return nRegister;
	if ( !PulseValue_CanConvert( from, type ) )
	{
		m_pContext->ReportError( pNode, "Cannot convert from %s to %s", TypeText( from ).Get(), TypeText( type ).Get() );
		return PULSE_INVALID_REGISTER;
	}
	CUtlString name;
	name.Format( "cast<%s>( %s )", TypeText( type ).Get(), m_Registers[ nRegister ].m_OriginName.Get() );
	uint16_t nCast = AllocRegister( type, name.Get(), pNode );
	if ( nCast == PULSE_INVALID_REGISTER )
		return PULSE_INVALID_REGISTER;
	int nInstruction;
	PGDInstruction_t &convert = AppendInstruction( CONVERT_VALUE, pPoint, &nInstruction );
	convert.m_nReg0 = PulseRuntimeRegisterIndex_t( nCast );
	convert.m_nReg1 = PulseRuntimeRegisterIndex_t( nRegister );
	SetRegisterWriter( nCast, nInstruction );
	return nCast;
}

void CCompiledChunk::MoveToRegister( const CPulseSequencePoint *pPoint, uint16_t nFrom, uint16_t nTo )
{
	if ( !IsValidRegister( nFrom ) || !IsValidRegister( nTo ) )
		return;
	bool bConvert = NeedsConversion( GetRegisterType( nFrom ), GetRegisterType( nTo ) );
	int nInstruction;
	PGDInstruction_t &move = AppendInstruction( bConvert ? CONVERT_VALUE : COPY, pPoint, &nInstruction );
	move.m_nReg0 = PulseRuntimeRegisterIndex_t( nTo );
	move.m_nReg1 = PulseRuntimeRegisterIndex_t( nFrom );
	SetRegisterWriter( nTo, nInstruction );
}

// Literals and variables.

namespace
{
bool ParseInt( const char *pText, int64_t *pValue )
{
	char *pEnd = nullptr;
	long long n = strtoll( pText, &pEnd, 0 );
	if ( pEnd == pText || *pEnd )
		return false;
	*pValue = n;
	return true;
}

bool ParseDouble( const char *pText, double *pValue )
{
	char *pEnd = nullptr;
	double fl = strtod( pText, &pEnd );
	if ( pEnd == pText || *pEnd )
		return false;
	*pValue = fl;
	return true;
}

CUtlString LiteralText( const KeyValues3 &value )
{
	if ( value.IsString() )
		return CUtlString( value.GetString() );
	CUtlString text;
	if ( value.IsNumber() || value.GetType() == KV3_TYPE_BOOL )
		text.Format( "%g", value.GetDouble() );
	else
		text.Set( value.GetTypeAsString() );
	return text;
}

// The refusal of a literal other than empty for the types that only have that one.
const char *NullOnlyLiteralMessage( PulseValueType_t eType )
{
	switch ( eType )
	{
	case PVAL_EHANDLE: return "Can only assign an empty string literal to Entity Handles - no other values.";
	case PVAL_SNDEVT_GUID: return "Can only author a null SNDEVT_GUID literal value.";
	case PVAL_ENTITY_NAME: return "Can only assign an empty string literal to Entity Names - no other values.";
	default: return "Can only assign literal empty (invalid) - no other Panel Handle values.";
	}
}
} // namespace

uint16_t CCompiledChunk::EmitLiteral( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pPortName, const CPulseValueFullType &type,
									  const KeyValues3 &value )
{
	// The value as the constant stores it, checked against the type.
	KeyValues3 stored;
	stored.CopyFrom( value );
	const char *pText = value.IsString() ? value.GetString() : nullptr;
	CUtlString text = LiteralText( value );
	switch ( type.GetBaseType() )
	{
	case PVAL_VOID: m_pContext->ReportError( pNode, "Cannot generate literal for Void type" ); return PULSE_INVALID_REGISTER;
	case PVAL_VARIANT: m_pContext->ReportError( pNode, "Cannot generate literal for Variant directly - choose a specific type" ); return PULSE_INVALID_REGISTER;
	case PVAL_UNKNOWN: m_pContext->ReportError( pNode, "Cannot generate literal for Unknown type - choose a specific type" ); return PULSE_INVALID_REGISTER;
	case PVAL_BOOL:
		if ( pText )
		{
			int64_t n = 0;
			if ( !*pText )
				stored.SetBool( false );
			else if ( strcmp( pText, "true" ) == 0 || strcmp( pText, "false" ) == 0 )
				stored.SetBool( pText[ 0 ] == 't' );
			else if ( ParseInt( pText, &n ) )
				stored.SetBool( n != 0 );
			else
			{
				m_pContext->ReportError( pNode, "Malformed bool literal '%s'", pText );
				return PULSE_INVALID_REGISTER;
			}
		}
		else if ( value.GetType() != KV3_TYPE_BOOL && value.GetType() != KV3_TYPE_INT && value.GetType() != KV3_TYPE_UINT && !value.IsNull() )
		{
			m_pContext->ReportError( pNode, "Malformed bool literal '%s'", text.Get() );
			return PULSE_INVALID_REGISTER;
		}
		break;
	case PVAL_INT:
		if ( pText )
		{
			int64_t n = 0;
			if ( *pText && ( !ParseInt( pText, &n ) || n < INT32_MIN || n > INT32_MAX ) )
			{
				m_pContext->ReportError( pNode, "Malformed int literal '%s'", pText );
				return PULSE_INVALID_REGISTER;
			}
			stored.SetInt( int32_t( n ) );
		}
		else if ( value.GetType() != KV3_TYPE_INT && value.GetType() != KV3_TYPE_UINT && !value.IsNull() )
		{
			m_pContext->ReportError( pNode, "Malformed int literal '%s'", text.Get() );
			return PULSE_INVALID_REGISTER;
		}
		break;
	case PVAL_FLOAT:
		if ( pText )
		{
			double fl = 0.0;
			if ( *pText && !ParseDouble( pText, &fl ) )
			{
				m_pContext->ReportError( pNode, "Malformed float literal '%s'", pText );
				return PULSE_INVALID_REGISTER;
			}
			stored.SetFloat( float( fl ) );
		}
		else if ( !value.IsNumber() && !value.IsNull() )
		{
			m_pContext->ReportError( pNode, "Malformed float literal '%s'", text.Get() );
			return PULSE_INVALID_REGISTER;
		}
		break;
	case PVAL_EHANDLE:
	case PVAL_SNDEVT_GUID:
	case PVAL_ENTITY_NAME:
	case PVAL_VISTARA_PANEL_HANDLE:
		// Handles and names have one literal: empty.
		if ( !( value.IsNull() || ( pText && !*pText ) ) )
		{
			m_pContext->ReportError( pNode, "%s", NullOnlyLiteralMessage( type.GetBaseType() ) );
			return PULSE_INVALID_REGISTER;
		}
		stored.SetToNull();
		break;
	case PVAL_SCHEMA_ENUM: m_pContext->ReportError( pNode, "Unknown domain scope for enum constant" ); return PULSE_INVALID_REGISTER;
	case PVAL_STRING:
		// A number or bool where text belongs is its text.
		if ( value.IsNumber() || value.GetType() == KV3_TYPE_BOOL )
		{
			CUtlString number;
			if ( value.GetType() == KV3_TYPE_BOOL )
				number.Set( value.GetBool() ? "true" : "false" );
			else if ( value.GetType() == KV3_TYPE_DOUBLE )
				PulseValue_AppendFloatText( &number, value.GetDouble() );
			else
				number.Format( "%lld", (long long)value.GetInt64() );
			stored.SetString( number.Get() );
		}
		break;
	case PVAL_ARRAY:
		if ( !value.IsArray() )
			stored.SetToEmptyArray();
		break;
	default: break;
	}
	// Whatever stands now must load as the type, or the runtime would refuse the constant.
	CPulseVariant check( type );
	CUtlString error;
	if ( !PulseGraphDef_IsStorableType( type ) || ( check.GetValue() && !stored.IsNull() && !PulseValue_LoadKV3( type, check.GetValue(), &stored, &error ) ) )
	{
		m_pContext->ReportError( pNode, "Malformed %s literal '%s'", TypeText( type ).Get(), text.Get() );
		return PULSE_INVALID_REGISTER;
	}
	CUtlString name;
	name.Format( "%d:%s", CPulseDocMessages::ReportedID( pNode ), pPortName );
	uint16_t nRegister = AllocRegister( type, name.Get(), pNode );
	if ( nRegister == PULSE_INVALID_REGISTER )
		return PULSE_INVALID_REGISTER;
	int nInstruction;
	PGDInstruction_t &get = AppendInstruction( GET_CONST, pPoint, &nInstruction );
	get.m_nReg0 = PulseRuntimeRegisterIndex_t( nRegister );
	get.m_nConstIdx = PulseRuntimeConstantIndex_t( m_pContext->AddConstant( type, stored ) );
	SetRegisterWriter( nRegister, nInstruction );
	return nRegister;
}

uint16_t CCompiledChunk::FindVarRegister( PulseDocNodeID_t nDefinition ) const
{
	auto it = m_VarReads.find( nDefinition );
	return it == m_VarReads.end() ? PULSE_INVALID_REGISTER : it->second;
}

void CCompiledChunk::RememberVarRead( PulseDocNodeID_t nDefinition, uint16_t nRegister )
{
	if ( m_Scope.m_nDepth > 0 )
		m_VarReads[ nDefinition ] = nRegister;
}

uint16_t CCompiledChunk::EmitValueDefinitionRead( const CPulseSequencePoint *pPoint, const CPulseDoc_BaseValueDefinition *pDefinition, const CPulseDocNode *pReader )
{
	if ( pDefinition->IsConstant() )
		return EmitLiteral( pPoint, pDefinition, "value", pDefinition->GetValueType(), pDefinition->m_Value.m_Value );
	uint16_t nRegister = FindVarRegister( pDefinition->GetNodeID() );
	if ( nRegister != PULSE_INVALID_REGISTER )
		return nRegister;
	int nVar = m_pContext->FindVar( pDefinition->GetNodeID(), pReader );
	if ( nVar < 0 )
		return PULSE_INVALID_REGISTER;
	CUtlString name;
	name.Format( "%d:%s", pDefinition->GetNodeID(), "value" );
	nRegister = AllocRegister( pDefinition->GetValueType(), name.Get(), pReader );
	if ( nRegister == PULSE_INVALID_REGISTER )
		return PULSE_INVALID_REGISTER;
	int nInstruction;
	PGDInstruction_t &get = AppendInstruction( GET_VAR, pPoint, &nInstruction );
	get.m_nReg0 = PulseRuntimeRegisterIndex_t( nRegister );
	get.m_nVar = nVar;
	SetRegisterWriter( nRegister, nInstruction );
	RememberVarRead( pDefinition->GetNodeID(), nRegister );
	return nRegister;
}

uint16_t CCompiledChunk::EmitOperator( const CPulseSequencePoint *pPoint, PulseInstructionCode_t eCode, uint16_t nLeft, uint16_t nRight, const CPulseValueFullType &result,
									   const char *pName, const CPulseDocNode *pNode )
{
	if ( !IsValidRegister( nLeft ) || ( nRight != PULSE_INVALID_REGISTER && !IsValidRegister( nRight ) ) )
		return PULSE_INVALID_REGISTER;
	uint16_t nResult = AllocRegister( result, pName, pNode );
	if ( nResult == PULSE_INVALID_REGISTER )
		return PULSE_INVALID_REGISTER;
	int nInstruction;
	PGDInstruction_t &op = AppendInstruction( eCode, pPoint, &nInstruction );
	op.m_nReg0 = PulseRuntimeRegisterIndex_t( nResult );
	op.m_nReg1 = PulseRuntimeRegisterIndex_t( nLeft );
	if ( nRight != PULSE_INVALID_REGISTER )
		op.m_nReg2 = PulseRuntimeRegisterIndex_t( nRight );
	SetRegisterWriter( nResult, nInstruction );
	return nResult;
}

// Invokes.

int CCompiledChunk::EmitCellInvoke( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pMethod, const char *pInflow, bool bOutputs )
{
	OpenValueScope( pPoint );
	KeyValues3 in;
	in.SetToEmptyTable();
	CompileInparams( pPoint, pNode, &in, pInflow );
	int nInstruction;
	AppendInstruction( CELL_INVOKE, pPoint, &nInstruction );
	int nBinding = m_pContext->AddInvokeBinding();
	{
		CPulse_InvokeBinding &binding = m_pContext->GetInvokeBinding( nBinding );
		if ( in.GetMemberCount() > 0 )
			binding.m_RegisterMap.m_Inparams.CopyFrom( in );
		binding.m_FuncName = PulseSymbol_t( pMethod );
		binding.m_nCellIndex = m_pContext->AddCell( pNode );
		binding.m_nSrcChunk = m_nIndex;
		binding.m_nSrcInstruction = nInstruction;
	}
	m_Instructions[ size_t( nInstruction ) ].m_nInvokeBindingIndex = nBinding;
	if ( m_Scope.m_nDepth == 1 )
		SetScopeEnd();
	if ( bOutputs )
	{
		KeyValues3 out;
		CompileOutparams( pPoint, pNode, &out, nInstruction );
		if ( out.GetMemberCount() > 0 )
			m_pContext->GetInvokeBinding( nBinding ).m_RegisterMap.m_Outparams.CopyFrom( out );
	}
	CloseValueScope();
	return nInstruction;
}

int CCompiledChunk::EmitLibraryInvoke( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pFunction, const char *pInflow, bool bOutputs,
									   bool bAllOutputs )
{
	if ( !PulseFunctions_FindLibrary( pFunction ) )
	{
		m_pContext->ReportError( pNode, "Missing library func '%s'", pFunction );
		return -1;
	}
	OpenValueScope( pPoint );
	KeyValues3 in;
	in.SetToEmptyTable();
	CompileInparams( pPoint, pNode, &in, pInflow );
	int nInstruction;
	AppendInstruction( LIBRARY_INVOKE, pPoint, &nInstruction );
	int nBinding = m_pContext->AddInvokeBinding();
	{
		CPulse_InvokeBinding &binding = m_pContext->GetInvokeBinding( nBinding );
		binding.m_RegisterMap.m_Inparams.CopyFrom( in );
		binding.m_FuncName = PulseSymbol_t( pFunction );
		binding.m_nSrcChunk = m_nIndex;
		binding.m_nSrcInstruction = nInstruction;
	}
	m_Instructions[ size_t( nInstruction ) ].m_nInvokeBindingIndex = nBinding;
	if ( m_Scope.m_nDepth == 1 )
		SetScopeEnd();
	if ( bOutputs )
	{
		KeyValues3 out;
		CompileOutparams( pPoint, pNode, &out, nInstruction, bAllOutputs );
		if ( out.GetMemberCount() > 0 )
			m_pContext->GetInvokeBinding( nBinding ).m_RegisterMap.m_Outparams.CopyFrom( out );
	}
	CloseValueScope();
	return nInstruction;
}

uint16_t CCompiledChunk::WriteLibraryCall( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, const char *pFunction, const std::vector<uint16_t> &args )
{
	const PulseFunctionBinding_t *pBinding = PulseFunctions_FindLibrary( pFunction );
	if ( !pBinding )
	{
		m_pContext->ReportError( pNode, "Missing library func '%s'", pFunction );
		return PULSE_INVALID_REGISTER;
	}
	if ( pBinding->m_Inputs.size() != args.size() )
	{
		m_pContext->ReportError( pNode, "Internal Error WriteLibraryCall(%s): expected %d arg(s)", pFunction, int( pBinding->m_Inputs.size() ) );
		return PULSE_INVALID_REGISTER;
	}
	if ( pBinding->m_Outputs.size() != 1 )
	{
		m_pContext->ReportError( pNode, "Internal Error WriteLibraryCall(%s): expected 1 retval", pFunction );
		return PULSE_INVALID_REGISTER;
	}
	KeyValues3 in;
	in.SetToEmptyTable();
	for ( size_t i = 0; i < args.size(); ++i )
	{
		uint16_t nArg = CastRegister( args[ i ], pPoint, pBinding->m_Inputs[ i ].m_Type, pNode );
		if ( nArg == PULSE_INVALID_REGISTER )
			return PULSE_INVALID_REGISTER;
		in.SetMemberInt( pBinding->m_Inputs[ i ].m_pName, nArg );
	}
	CUtlString name;
	name.Format( "%d:%s", CPulseDocMessages::ReportedID( pNode ), pBinding->m_Outputs[ 0 ].m_pName );
	uint16_t nResult = AllocRegister( pBinding->m_Outputs[ 0 ].m_Type, name.Get(), pNode );
	if ( nResult == PULSE_INVALID_REGISTER )
		return PULSE_INVALID_REGISTER;
	int nInstruction;
	AppendInstruction( LIBRARY_INVOKE, pPoint, &nInstruction );
	int nBinding = m_pContext->AddInvokeBinding();
	CPulse_InvokeBinding &binding = m_pContext->GetInvokeBinding( nBinding );
	binding.m_RegisterMap.m_Inparams.CopyFrom( in );
	binding.m_RegisterMap.m_Outparams.SetToEmptyTable();
	binding.m_RegisterMap.m_Outparams.SetMemberInt( pBinding->m_Outputs[ 0 ].m_pName, nResult );
	binding.m_FuncName = PulseSymbol_t( pFunction );
	binding.m_nSrcChunk = m_nIndex;
	binding.m_nSrcInstruction = nInstruction;
	m_Instructions[ size_t( nInstruction ) ].m_nInvokeBindingIndex = nBinding;
	SetRegisterWriter( nResult, nInstruction );
	return nResult;
}

void CCompiledChunk::EmitEntryRegisters( const CPulseSequencePoint *pPoint, const CPulseDocNode *pNode, KeyValues3 *pRegisterMap )
{
	KeyValues3 in;
	CompileInparams( pPoint, pNode, &in );
	AppendInstruction( NOP, pPoint );
	// Every argument gets its register, read or not: callers pass them by name.
	CompileOutparams( pPoint, pNode, pRegisterMap, -1, true );
}

void CCompiledChunk::EmitCall( const CPulseSequencePoint *pPoint, PulseDocNodeID_t nTarget, PulseInstructionCode_t eCode, const CPulseDocNode *pNode )
{
	auto *pMethod = dynamic_cast<const CPulseDoc_BaseInflow *>( m_pContext->GetDoc()->FindNode( nTarget ) );
	if ( !pMethod || strcmp( pMethod->GetNodeTypeInfo().m_pClassName, "CPulseDoc_Inflow_Method" ) != 0 )
	{
		m_pContext->ReportError( pNode, "Target Input not found (%d)", nTarget );
		return;
	}
	OpenValueScope( pPoint );
	KeyValues3 in;
	in.SetToEmptyTable();
	CompileInparams( pPoint, pNode, &in );
	int nInstruction;
	AppendInstruction( eCode, pPoint, &nInstruction );
	int nCall = m_pContext->AddCallInfo();
	{
		CPulse_CallInfo &call = m_pContext->GetCallInfo( nCall );
		call.m_PortName = PulseSymbol_t( "Call" );
		call.m_nEditorNodeID = pNode->GetNodeID();
		call.m_RegisterMap.m_Inparams.CopyFrom( in );
		call.m_CallMethodID = nTarget;
		call.m_nSrcChunk = m_nIndex;
		call.m_nSrcInstruction = nInstruction;
	}
	m_Instructions[ size_t( nInstruction ) ].m_nCallInfoIndex = nCall;
	if ( m_Scope.m_nDepth == 1 )
		SetScopeEnd();
	// Only a call that waits comes back with a result.
	if ( eCode == PULSE_CALL_SYNC )
	{
		KeyValues3 out;
		CompileOutparams( pPoint, pNode, &out, nInstruction );
		if ( out.GetMemberCount() > 0 )
			m_pContext->GetCallInfo( nCall ).m_RegisterMap.m_Outparams.CopyFrom( out );
	}
	CloseValueScope();
	m_pContext->QueueCall( m_nIndex, nInstruction, pMethod->GetEntryPoint() );
}

void CCompiledChunk::EmitCallToPoint( const CPulseSequencePoint *pPoint, const CPulseSequencePoint *pTarget, const char *pName, PulseInstructionCode_t eCode )
{
	if ( !pTarget )
		return;
	int nInstruction;
	AppendInstruction( eCode, pPoint, &nInstruction );
	int nCall = m_pContext->AddCallInfo();
	CPulse_CallInfo &call = m_pContext->GetCallInfo( nCall );
	call.m_PortName = PulseSymbol_t( pName );
	call.m_nEditorNodeID = pPoint && pPoint->GetOwner() ? CPulseDocMessages::ReportedID( pPoint->GetOwner() ) : -1;
	call.m_nSrcChunk = m_nIndex;
	call.m_nSrcInstruction = nInstruction;
	m_Instructions[ size_t( nInstruction ) ].m_nCallInfoIndex = nCall;
	m_pContext->QueueCall( m_nIndex, nInstruction, pTarget );
}

// Branches.

void CCompiledChunk::AppendBranch( const CPulseSequencePoint *pPoint, uint16_t nCondition, const CPulseSequencePoint *pTrue, const CPulseSequencePoint *pFalse )
{
	int nTrue, nFalse;
	AppendInstruction( INVALID, pPoint, &nTrue );
	AppendInstruction( INVALID, pPoint, &nFalse );
	m_pContext->QueueBranch( nCondition, m_nIndex, nTrue, pTrue );
	m_pContext->QueueBranch( PULSE_INVALID_REGISTER, m_nIndex, nFalse, pFalse );
	if ( m_pContext->GetOptions().m_nVerbosity >= 1 )
		m_pContext->GetLog().AppendFormat( "        Chunk%d - AppendBranch -> true I%d (%s) : false I%d (%s)\n", m_nIndex, nTrue, pTrue ? pTrue->GetPortNameForLogs() : "No Port",
										   nFalse, pFalse ? pFalse->GetPortNameForLogs() : "No Port" );
}

void CCompiledChunk::AppendBranchOne( const CPulseSequencePoint *pPoint, uint16_t nCondition, const CPulseSequencePoint *pTarget )
{
	int nTrue;
	AppendInstruction( INVALID, pPoint, &nTrue );
	m_pContext->QueueBranch( nCondition, m_nIndex, nTrue, pTarget );
	if ( m_pContext->GetOptions().m_nVerbosity >= 1 )
		m_pContext->GetLog().AppendFormat( "        Chunk%d - AppendBranch -> true I%d (%s)\n", m_nIndex, nTrue, pTarget ? pTarget->GetPortNameForLogs() : "No Port" );
}

void CCompiledChunk::EnqueueCompileUnconditionalBranch( const CPulseSequencePoint *pPoint, const CPulseSequencePoint *pTarget )
{
	int nInstruction;
	AppendInstruction( INVALID, pPoint, &nInstruction );
	m_pContext->QueueBranch( PULSE_INVALID_REGISTER, m_nIndex, nInstruction, pTarget );
	if ( m_pContext->GetOptions().m_nVerbosity >= 1 )
		m_pContext->GetLog().AppendFormat( "        Chunk%d - EnqueueCompileUnconditionalBranch -> I%d (%s)\n", m_nIndex, nInstruction,
										   pTarget ? pTarget->GetPortNameForLogs() : "No Port" );
}

// Value scopes.

void CCompiledChunk::OpenValueScope( const CPulseSequencePoint *pPoint )
{
	if ( m_Scope.m_nDepth == 0 )
	{
		m_Scope.m_nFirst = GetInstructionCount();
		m_Scope.m_pPoint = pPoint;
	}
	++m_Scope.m_nDepth;
}

void CCompiledChunk::CloseValueScope()
{
	if ( m_Scope.m_nDepth <= 0 )
		return;
	if ( --m_Scope.m_nDepth > 0 )
		return;
	if ( m_Scope.m_nEnd < 0 )
		m_Scope.m_nEnd = GetInstructionCount();
	DetachTemporaries();
	m_Scope = ValueScope_t();
	m_OutputsScoped.clear();
	m_VarReads.clear();
}

void CCompiledChunk::GatherReadsAndWrites( const PGDInstruction_t &in, std::vector<int> *pReads, std::vector<int> *pWrites ) const
{
	auto mapRegisters = []( const KeyValues3 &map, std::vector<int> *pList ) {
		for ( int i = 0; map.IsTable() && i < map.GetMemberCount(); ++i )
			pList->push_back( map.GetMember( i )->GetInt() );
	};
	switch ( in.m_nCode )
	{
	case JUMP_COND:
	case CHUNK_LEAP_COND:
	case SET_VAR:
	case SET_VAR_OBSERVABLE:
	case SET_BLACKBOARD_REFERENCE:
	case RETURN_VALUE: pReads->push_back( in.m_nReg0 ); break;
	case SET_VAR_ARRAY_ELEMENT_1D:
		pReads->push_back( in.m_nReg0 );
		pReads->push_back( in.m_nReg2 );
		break;
	case COPY:
	case NOT:
	case NEGATE:
	case CONVERT_VALUE:
	case REINTERPRET_INSTANCE:
		pReads->push_back( in.m_nReg1 );
		pWrites->push_back( in.m_nReg0 );
		break;
	case GET_VAR:
	case GET_VAR_DETACH:
	case DETACH_REGISTER:
	case GET_CONST:
	case GET_DOMAIN_VALUE:
	case GET_BLACKBOARD_REFERENCE: pWrites->push_back( in.m_nReg0 ); break;
	case CELL_INVOKE:
	case LIBRARY_INVOKE:
		if ( in.m_nInvokeBindingIndex >= 0 )
		{
			const CPulse_InvokeBinding &binding = m_pContext->GetInvokeBinding( in.m_nInvokeBindingIndex );
			mapRegisters( binding.m_RegisterMap.m_Inparams, pReads );
			mapRegisters( binding.m_RegisterMap.m_Outparams, pWrites );
		}
		break;
	case PULSE_CALL_SYNC:
	case PULSE_CALL_ASYNC_FIRE:
		if ( in.m_nCallInfoIndex >= 0 )
		{
			const CPulse_CallInfo &call = m_pContext->GetCallInfo( in.m_nCallInfoIndex );
			mapRegisters( call.m_RegisterMap.m_Inparams, pReads );
			mapRegisters( call.m_RegisterMap.m_Outparams, pWrites );
		}
		break;
	default:
		if ( ( in.m_nCode >= ADD && in.m_nCode <= OR ) || ( in.m_nCode >= SCALE && in.m_nCode <= ELEMENT_ACCESS ) || in.m_nCode == GET_ARRAY_ELEMENT )
		{
			pReads->push_back( in.m_nReg1 );
			pReads->push_back( in.m_nReg2 );
			pWrites->push_back( in.m_nReg0 );
		}
		break;
	}
}

void CCompiledChunk::DetachTemporaries()
{
	int nFirst = std::max( m_Scope.m_nFirst, 0 ), nEnd = std::min( m_Scope.m_nEnd, GetInstructionCount() );
	// A variable whose value the scope writes back takes its reads by moving them.
	if ( m_Scope.m_nMoveVar >= 0 )
	{
		for ( int i = nFirst; i < nEnd; ++i )
		{
			if ( m_Instructions[ size_t( i ) ].m_nCode == GET_VAR && m_Instructions[ size_t( i ) ].m_nVar == m_Scope.m_nMoveVar )
				m_Instructions[ size_t( i ) ].m_nCode = GET_VAR_DETACH;
		}
	}
	if ( m_Scope.m_Temporaries.empty() )
		return;
	// 1. The last reader of each temporary, in the whole chunk up to the scope's end.
	std::unordered_map<int, int> lastReader;
	std::vector<int> reads, writes;
	for ( int i = 0; i < nEnd; ++i )
	{
		reads.clear();
		writes.clear();
		GatherReadsAndWrites( m_Instructions[ size_t( i ) ], &reads, &writes );
		for ( int nRegister : reads )
		{
			if ( nRegister >= 0 && m_Scope.m_TemporarySet.count( uint16_t( nRegister ) ) )
				lastReader[ nRegister ] = i;
		}
	}
	// 2. A call that reads a temporary last takes it over; the rest are kept.
	std::vector<uint16_t> kept;
	for ( int i = nFirst; i < nEnd; ++i )
	{
		PGDInstruction_t &in = m_Instructions[ size_t( i ) ];
		for ( uint16_t nRegister : m_Scope.m_Temporaries )
		{
			auto it = lastReader.find( nRegister );
			if ( it == lastReader.end() || it->second != i )
				continue;
			bool bMoved = false;
			if ( ( in.m_nCode == CELL_INVOKE || in.m_nCode == LIBRARY_INVOKE ) && in.m_nInvokeBindingIndex >= 0 )
			{
				CPulse_InvokeBinding &binding = m_pContext->GetInvokeBinding( in.m_nInvokeBindingIndex );
				const KeyValues3 &map = binding.m_RegisterMap.m_Inparams;
				for ( int nMember = 0; map.IsTable() && nMember < map.GetMemberCount(); ++nMember )
				{
					if ( map.GetMember( nMember )->GetInt() != nRegister )
						continue;
					binding.m_RegisterMap.m_InparamsWhichCanBeMoved.push_back( PulseSymbol_t( map.GetMemberName( nMember ) ) );
					bMoved = true;
				}
			}
			if ( bMoved )
				m_Registers[ nRegister ].m_nLastReadByInstruction = i;
			else if ( std::find( kept.begin(), kept.end(), nRegister ) == kept.end() )
				kept.push_back( nRegister );
		}
	}
	// 3. The kept ones are detached after the scope, last first.
	for ( auto it = kept.rbegin(); it != kept.rend(); ++it )
	{
		int nInstruction;
		PGDInstruction_t &detach = AppendInstruction( DETACH_REGISTER, m_Scope.m_pPoint, &nInstruction );
		detach.m_nReg0 = PulseRuntimeRegisterIndex_t( *it );
		m_Registers[ *it ].m_nLastReadByInstruction = nInstruction;
	}
}
