#include "pulsedoc_lib/nodes/pulsedocexprparts.h"

#include <cstdio>
#include <cstring>

#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocconnections.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"

#define PULSE_DOC_EXPR_TYPE( className, typeName, friendlyName, help )                                                        \
	PULSE_DOC_DEFINE_NODE_TYPE( className, typeName, friendlyName, help, PULSE_NODE_CATEGORY_VALUE, false )

PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprAdd, "ExprAdd", "Add +", "Adds two values. Represented in expressions as <tt>VALUE1 + VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprSub, "ExprSub", "Subtract -", "Subtracts the second value from the first. Represented in expressions as <tt>VALUE1 - VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprMul, "ExprMul", "Multiply *", "Multiplies two values. Represented in expressions as <tt>VALUE1 * VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprDiv, "ExprDiv", "Divide /", "Divides the first value by the second. Represented in expressions as <tt>VALUE1 / VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprMod, "ExprMod", "Modulo %", "The remainder of a division. Represented in expressions as <tt>VALUE1 % VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprLess, "ExprLess", "Less Than <", "Represented in expressions as <tt>VALUE1 < VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprLessEq, "ExprLessEq", "Less Than Or Equal <=", "Represented in expressions as <tt>VALUE1 <= VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprGreater, "ExprGreater", "Greater Than >", "Represented in expressions as <tt>VALUE1 > VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprGreaterEq, "ExprGreaterEq", "Greater Than Or Equal >=", "Represented in expressions as <tt>VALUE1 >= VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprEqual, "ExprEqual", "Equal ==", "Represented in expressions as <tt>VALUE1 == VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprNotEqual, "ExprNotEqual", "Not Equal !=", "Represented in expressions as <tt>VALUE1 != VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprAnd, "ExprAnd", "Logical And &&", "Represented in expressions as <tt>VALUE1 && VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprOr, "ExprOr", "Logical Or ||", "Represented in expressions as <tt>VALUE1 || VALUE2</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprNegate, "ExprNegate", "Negative -", "The value with its sign changed. Represented in expressions as <tt>-VALUE</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprNot, "ExprNot", "Logical Not !", "Represented in expressions as <tt>!VALUE</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprGetProperty, "ExprGetProperty", "Get Property", "A component of a value. Represented in expressions as <tt>VALUE.x</tt>" )
PULSE_DOC_EXPR_TYPE( CPulseDoc_Value_ExprTernaryConditional, "ExprTernaryConditional", "Ternary Conditional",
					 "Represented in expressions as <tt>CONDITION ? TRUE_VALUE : FALSE_VALUE</tt>" )

using enum PulseInstructionCode_t;

namespace
{
const CPulseValueFullType s_Any( PVAL_UNKNOWN );
thread_local int t_nTypeDepth = 0;

// The type an operand is converted to: its own when the base type stays.
CPulseValueFullType CastTypeFor( const CPulseValueFullType &from, PulseValueType_t eTo )
{
	return from.GetBaseType() == eTo ? from : CPulseValueFullType( eTo );
}

const char *BaseTypeName( const CPulseValueFullType &type )
{
	const char *pName = PulseValueType_GetName( type.GetBaseType() );
	return pName ? pName : "?";
}

CPulseValueFullType LiteralType( const KeyValues3 &value )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: return CPulseValueFullType( PVAL_BOOL );
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT: return CPulseValueFullType( PVAL_INT );
	case KV3_TYPE_DOUBLE: return CPulseValueFullType( PVAL_FLOAT );
	case KV3_TYPE_STRING: return CPulseValueFullType( PVAL_STRING );
	default: return s_Any;
	}
}

void AppendQuoted( const char *pText, CUtlString *pOut )
{
	pOut->Append( '"' );
	for ( const char *p = pText; *p; ++p )
	{
		switch ( *p )
		{
		case '"': pOut->Append( "\\\"" ); break;
		case '\\': pOut->Append( "\\\\" ); break;
		case '\n': pOut->Append( "\\n" ); break;
		case '\r': pOut->Append( "\\r" ); break;
		case '\t': pOut->Append( "\\t" ); break;
		default: pOut->Append( *p ); break;
		}
	}
	pOut->Append( '"' );
}
// Past the chunk's register limit every later value fails: that was said once.
void ReportUnknownArgument( CCompiledChunk *pChunk, const CPulseDocNode *pNode, const char *pMessage )
{
	if ( !pChunk->HasReachedLimit() )
		pChunk->GetContext()->ReportError( pNode, "%s", pMessage );
}
} // namespace

CPulseValueFullType PulseDoc_GetInputValueType( const CBasePulseInparamPort &port )
{
	const CPulseValueFullType declared = port.GetType();
	if ( declared.IsValid() && declared.GetBaseType() != PVAL_UNKNOWN )
		return declared;
	if ( t_nTypeDepth > 64 )
		return s_Any;
	struct Guard_t
	{
		Guard_t() { ++t_nTypeDepth; }
		~Guard_t() { --t_nTypeDepth; }
	} guard;
	CPulseDoc *pDoc = port.GetOwner() ? port.GetOwner()->GetDoc() : nullptr;
	switch ( port.GetValueSource() )
	{
	case PULSE_VALUE_SOURCE_LITERAL:
	case PULSE_VALUE_SOURCE_DOMAIN_VALUE: return LiteralType( port.GetLiteralValue() );
	case PULSE_VALUE_SOURCE_VAR:
	{
		const CPulseDoc_BaseValueDefinition *pDefinition = pDoc ? pDoc->FindValueDefinition( port.GetVarOrConstID() ) : nullptr;
		return pDefinition ? pDefinition->GetValueType() : s_Any;
	}
	case PULSE_VALUE_SOURCE_PORT:
	{
		if ( auto *pValue = dynamic_cast<const CPulseDoc_BaseValue *>( port.GetInternalSourceNode() ) )
			return pValue->GetResultType();
		const CPulseDoc_Connection_Inparam *pConnection = port.FindConnection();
		const CBasePulseOutparamPort *pOutparam = pConnection ? pConnection->FindSourceOutparam() : nullptr;
		if ( !pOutparam )
			return s_Any;
		CPulseValueFullType type = pOutparam->GetType();
		if ( ( !type.IsValid() || type.GetBaseType() == PVAL_UNKNOWN ) )
		{
			if ( auto *pValue = dynamic_cast<const CPulseDoc_BaseValue *>( pConnection->FindSourceNode() ) )
				return pValue->GetResultType();
		}
		return type;
	}
	case PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM:
	{
		const CBasePulseInparamPort *pMirrored = port.GetMirroredPort();
		if ( !pMirrored && pDoc )
		{
			CPulseDocNode *pAncestor = pDoc->FindNode( port.GetMirroredAncestorNodeID() );
			pMirrored = pAncestor ? pAncestor->FindInparam( port.GetMirroredAncestorInparamName() ) : nullptr;
		}
		return pMirrored && pMirrored != &port ? PulseDoc_GetInputValueType( *pMirrored ) : s_Any;
	}
	default: return s_Any;
	}
}

void PulseDoc_RenderInputText( const CBasePulseInparamPort &port, CUtlString *pOut )
{
	if ( auto *pPart = dynamic_cast<const CPulseDoc_Value_BaseExprPart *>( port.GetInternalSourceNode() ) )
	{
		CUtlString inner;
		pPart->RenderText( &inner );
		if ( pPart->IsAtomic() )
			pOut->Append( inner.Get() );
		else
			pOut->AppendFormat( "( %s )", inner.Get() );
		return;
	}
	if ( auto *pNode = port.GetInternalSourceNode() )
	{
		// A function call: its name and arguments.
		pOut->AppendFormat( "%s(", pNode->GetName() );
		std::vector<CBasePulsePort *> ports;
		pNode->GetPorts( &ports );
		bool bFirst = true;
		for ( CBasePulsePort *pArg : ports )
		{
			if ( !pArg->AsInparam() )
				continue;
			pOut->Append( bFirst ? " " : ", " );
			PulseDoc_RenderInputText( *pArg->AsInparam(), pOut );
			bFirst = false;
		}
		pOut->Append( bFirst ? ")" : " )" );
		return;
	}
	switch ( port.GetValueSource() )
	{
	case PULSE_VALUE_SOURCE_VAR:
	{
		CPulseDoc *pDoc = port.GetOwner()->GetDoc();
		const CPulseDoc_BaseValueDefinition *pDefinition = pDoc ? pDoc->FindValueDefinition( port.GetVarOrConstID() ) : nullptr;
		pOut->Append( pDefinition ? pDefinition->GetName() : "?" );
		return;
	}
	case PULSE_VALUE_SOURCE_MIRRORED_ANCESTOR_INPARAM: pOut->Append( port.GetMirroredAncestorInparamName() ); return;
	case PULSE_VALUE_SOURCE_LITERAL:
	{
		const KeyValues3 &value = port.GetLiteralValue();
		switch ( value.GetType() )
		{
		case KV3_TYPE_BOOL: pOut->Append( value.GetBool() ? "true" : "false" ); return;
		case KV3_TYPE_INT:
		case KV3_TYPE_UINT: pOut->AppendFormat( "%lld", (long long)value.GetInt64() ); return;
		case KV3_TYPE_DOUBLE:
		{
			char buffer[ 64 ];
			snprintf( buffer, sizeof( buffer ), "%.9g", value.GetDouble() );
			pOut->Append( buffer );
			// A whole number still reads as a float.
			if ( !strpbrk( buffer, ".eEn" ) )
				pOut->Append( ".0" );
			return;
		}
		case KV3_TYPE_STRING: AppendQuoted( value.GetString(), pOut ); return;
		default: pOut->Append( "0" ); return;
		}
	}
	default: pOut->Append( "?" ); return;
	}
}

// Every part.

CPulseDoc_Value_BaseExprPart::CPulseDoc_Value_BaseExprPart() : m_Retval( this, "retval", s_Any, "Result" )
{
	AddPort( &m_Retval );
}

// Binary operators.

CPulseDoc_Value_BaseExprOpBinary::CPulseDoc_Value_BaseExprOpBinary()
	: m_FirstArg( this, "first", s_Any, "m_FirstArg", "First Value" ), m_SecondArg( this, "second", s_Any, "m_SecondArg", "Second Value" )
{
	AddPort( &m_FirstArg );
	AddPort( &m_SecondArg );
}

void CPulseDoc_Value_BaseExprOpBinary::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_FirstArg.LoadKV3( reader.Take( "m_FirstArg" ), reader.GetContext() );
	m_SecondArg.LoadKV3( reader.Take( "m_SecondArg" ), reader.GetContext() );
}

void CPulseDoc_Value_BaseExprOpBinary::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_FirstArg, pTable );
	SaveInparam( m_SecondArg, pTable );
}

CPulseValueFullType CPulseDoc_Value_BaseExprOpBinary::GetResultType() const
{
	PulseOperatorChoice_t choice;
	if ( !PulseOperator_Resolve( GetOperator(), PulseDoc_GetInputValueType( m_FirstArg ).GetBaseType(), PulseDoc_GetInputValueType( m_SecondArg ).GetBaseType(), &choice ) )
		return s_Any;
	return CPulseValueFullType( choice.m_eResult );
}

void CPulseDoc_Value_BaseExprOpBinary::RenderText( CUtlString *pOut ) const
{
	PulseDoc_RenderInputText( m_FirstArg, pOut );
	pOut->AppendFormat( " %s ", PulseOperator_GetSymbol( GetOperator() ) );
	PulseDoc_RenderInputText( m_SecondArg, pOut );
}

void CPulseDoc_Value_BaseExprOpBinary::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	uint16_t nFirst = m_FirstArg.CompileToRegister( pPoint, pChunk );
	if ( nFirst == PULSE_INVALID_REGISTER )
	{
		ReportUnknownArgument( pChunk, this, "Unknown type for first argument" );
		return;
	}
	uint16_t nSecond = m_SecondArg.CompileToRegister( pPoint, pChunk );
	if ( nSecond == PULSE_INVALID_REGISTER )
	{
		ReportUnknownArgument( pChunk, this, "Unknown type for second argument" );
		return;
	}
	const CPulseValueFullType first = pChunk->GetRegisterType( nFirst ), second = pChunk->GetRegisterType( nSecond );
	PulseOperatorChoice_t choice;
	bool bResolved = PulseOperator_Resolve( GetOperator(), first.GetBaseType(), second.GetBaseType(), &choice );
	// Arrays compare only with arrays of the same elements.
	if ( bResolved && first.IsArray() && second.IsArray() && first != second )
		bResolved = false;
	if ( !bResolved )
	{
		pContext->ReportError( this, "This operator not supported for argument types (%s,%s)", BaseTypeName( first ), BaseTypeName( second ) );
		return;
	}
	nFirst = pChunk->CastRegister( nFirst, pPoint, CastTypeFor( first, choice.m_eCastLeft ), this );
	nSecond = pChunk->CastRegister( nSecond, pPoint, CastTypeFor( second, choice.m_eCastRight ), this );
	if ( nFirst == PULSE_INVALID_REGISTER || nSecond == PULSE_INVALID_REGISTER )
	{
		pContext->ReportError( this, "Invalid register for arg: %s", nFirst == PULSE_INVALID_REGISTER ? "first" : "second" );
		return;
	}
	CUtlString name;
	name.Format( "%d:%s", CPulseDocMessages::ReportedID( this ), PulseOperator_GetSymbol( GetOperator() ) );
	uint16_t nResult = choice.m_bSwap ? pChunk->EmitOperator( pPoint, choice.m_eCode, nSecond, nFirst, CPulseValueFullType( choice.m_eResult ), name.Get(), this )
									  : pChunk->EmitOperator( pPoint, choice.m_eCode, nFirst, nSecond, CPulseValueFullType( choice.m_eResult ), name.Get(), this );
	pChunk->RecordOutparam( &m_Retval, nResult );
}

// Unary operators.

CPulseDoc_Value_BaseExprOpUnary::CPulseDoc_Value_BaseExprOpUnary() : m_Arg( this, "value", s_Any, "m_Arg", "Value" )
{
	AddPort( &m_Arg );
}

void CPulseDoc_Value_BaseExprOpUnary::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Arg.LoadKV3( reader.Take( "m_Arg" ), reader.GetContext() );
}

void CPulseDoc_Value_BaseExprOpUnary::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Arg, pTable );
}

CPulseValueFullType CPulseDoc_Value_BaseExprOpUnary::GetResultType() const
{
	PulseOperatorChoice_t choice;
	if ( !PulseOperator_Resolve( GetOperator(), PulseDoc_GetInputValueType( m_Arg ).GetBaseType(), PVAL_VOID, &choice ) )
		return s_Any;
	return CPulseValueFullType( choice.m_eResult );
}

void CPulseDoc_Value_BaseExprOpUnary::RenderText( CUtlString *pOut ) const
{
	pOut->Append( PulseOperator_GetSymbol( GetOperator() ) );
	PulseDoc_RenderInputText( m_Arg, pOut );
}

void CPulseDoc_Value_BaseExprOpUnary::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	uint16_t nArg = m_Arg.CompileToRegister( pPoint, pChunk );
	if ( nArg == PULSE_INVALID_REGISTER )
	{
		ReportUnknownArgument( pChunk, this, "Unknown type for argument" );
		return;
	}
	const CPulseValueFullType type = pChunk->GetRegisterType( nArg );
	PulseOperatorChoice_t choice;
	if ( !PulseOperator_Resolve( GetOperator(), type.GetBaseType(), PVAL_VOID, &choice ) )
	{
		pContext->ReportError( this, "Cannot handle argument type '%s' in '%s'", BaseTypeName( type ), PulseOperator_GetSymbol( GetOperator() ) );
		return;
	}
	nArg = pChunk->CastRegister( nArg, pPoint, CastTypeFor( type, choice.m_eCastLeft ), this );
	CUtlString name;
	name.Format( "%d:%s", CPulseDocMessages::ReportedID( this ), GetOperator() == PULSE_EXPR_NOT ? "not" : "negate" );
	uint16_t nResult = pChunk->EmitOperator( pPoint, choice.m_eCode, nArg, PULSE_INVALID_REGISTER, CPulseValueFullType( choice.m_eResult ), name.Get(), this );
	pChunk->RecordOutparam( &m_Retval, nResult );
}

// Properties.

CPulseDoc_Value_ExprGetProperty::CPulseDoc_Value_ExprGetProperty() : m_ObjectParam( this, "_Target", s_Any, "m_ObjectParam", "Object" )
{
	AddPort( &m_ObjectParam );
}

void CPulseDoc_Value_ExprGetProperty::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_ObjectParam.LoadKV3( reader.Take( "m_ObjectParam" ), reader.GetContext() );
	m_PropertyName.Clear();
	reader.TakeString( "m_PropertyName", &m_PropertyName );
}

void CPulseDoc_Value_ExprGetProperty::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_ObjectParam, pTable );
	pTable->SetMemberString( "m_PropertyName", m_PropertyName.Get() );
}

int CPulseDoc_Value_ExprGetProperty::FindComponent( PulseValueType_t eType, const char *pName )
{
	static const char *const s_Vector = "xyzw", *const s_Color = "rgb";
	int nCount = eType == PVAL_VEC2 ? 2 : eType == PVAL_VEC3 || eType == PVAL_VEC3_WORLDSPACE ? 3 : eType == PVAL_VEC4 ? 4 : eType == PVAL_COLOR_RGB ? 3 : 0;
	const char *pLetters = eType == PVAL_COLOR_RGB ? s_Color : s_Vector;
	if ( strlen( pName ) != 1 )
		return -1;
	const char *pFound = strchr( pLetters, pName[ 0 ] );
	return pFound && pFound - pLetters < nCount ? int( pFound - pLetters ) : -1;
}

CPulseValueFullType CPulseDoc_Value_ExprGetProperty::GetResultType() const
{
	PulseValueType_t eType = PulseDoc_GetInputValueType( m_ObjectParam ).GetBaseType();
	if ( FindComponent( eType, m_PropertyName.Get() ) < 0 )
		return s_Any;
	return CPulseValueFullType( eType == PVAL_COLOR_RGB ? PVAL_INT : PVAL_FLOAT );
}

void CPulseDoc_Value_ExprGetProperty::RenderText( CUtlString *pOut ) const
{
	PulseDoc_RenderInputText( m_ObjectParam, pOut );
	pOut->AppendFormat( ".%s", m_PropertyName.Get() );
}

void CPulseDoc_Value_ExprGetProperty::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	uint16_t nObject = m_ObjectParam.CompileToRegister( pPoint, pChunk );
	if ( nObject == PULSE_INVALID_REGISTER )
	{
		pContext->ReportError( this, "Could not compile Property source" );
		return;
	}
	PulseValueType_t eType = pChunk->GetRegisterType( nObject ).GetBaseType();
	int nComponent = FindComponent( eType, m_PropertyName.Get() );
	if ( nComponent < 0 )
	{
		pContext->ReportError( this, "Failed to compile Property: %s", m_PropertyName.Get() );
		return;
	}
	KeyValues3 index;
	index.SetInt( nComponent );
	uint16_t nIndex = pChunk->EmitLiteral( pPoint, this, m_PropertyName.Get(), CPulseValueFullType( PVAL_INT ), index );
	CUtlString name;
	name.Format( "%d:.%s", CPulseDocMessages::ReportedID( this ), m_PropertyName.Get() );
	uint16_t nResult = pChunk->EmitOperator( pPoint, ELEMENT_ACCESS, nObject, nIndex, GetResultType(), name.Get(), this );
	pChunk->RecordOutparam( &m_Retval, nResult );
}

// The ternary conditional.

CPulseDoc_Value_ExprTernaryConditional::CPulseDoc_Value_ExprTernaryConditional()
	: m_Condition( this, "condition", CPulseValueFullType( PVAL_BOOL ), "m_Condition", "Condition" ), m_TrueVal( this, "true_value", s_Any, "m_TrueVal", "True Value" ),
	  m_FalseVal( this, "false_value", s_Any, "m_FalseVal", "False Value" )
{
	AddPort( &m_Condition );
	AddPort( &m_TrueVal );
	AddPort( &m_FalseVal );
}

void CPulseDoc_Value_ExprTernaryConditional::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Condition.LoadKV3( reader.Take( "m_Condition" ), reader.GetContext() );
	m_TrueVal.LoadKV3( reader.Take( "m_TrueVal" ), reader.GetContext() );
	m_FalseVal.LoadKV3( reader.Take( "m_FalseVal" ), reader.GetContext() );
}

void CPulseDoc_Value_ExprTernaryConditional::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Condition, pTable );
	SaveInparam( m_TrueVal, pTable );
	SaveInparam( m_FalseVal, pTable );
}

CPulseValueFullType CPulseDoc_Value_ExprTernaryConditional::GetResultType() const
{
	CPulseValueFullType a = PulseDoc_GetInputValueType( m_TrueVal ), b = PulseDoc_GetInputValueType( m_FalseVal );
	if ( a == b )
		return a;
	PulseValueType_t eCommon = PulseOperator_CommonType( a.GetBaseType(), b.GetBaseType() );
	return eCommon == PVAL_VOID ? s_Any : CPulseValueFullType( eCommon );
}

void CPulseDoc_Value_ExprTernaryConditional::RenderText( CUtlString *pOut ) const
{
	PulseDoc_RenderInputText( m_Condition, pOut );
	pOut->Append( " ? " );
	PulseDoc_RenderInputText( m_TrueVal, pOut );
	pOut->Append( " : " );
	PulseDoc_RenderInputText( m_FalseVal, pOut );
}

void CPulseDoc_Value_ExprTernaryConditional::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	const CPulseValueFullType type = GetResultType();
	if ( !type.IsValid() || type.GetBaseType() == PVAL_UNKNOWN )
	{
		pContext->ReportError( this, "Could not determine type of result" );
		return;
	}
	uint16_t nCondition = m_Condition.CompileToRegister( pPoint, pChunk );
	if ( nCondition == PULSE_INVALID_REGISTER )
	{
		pContext->ReportError( this, "Expected bool-convertible condition for ternary ?: expression" );
		return;
	}
	CUtlString name;
	name.Format( "%d:?:", CPulseDocMessages::ReportedID( this ) );
	uint16_t nResult = pChunk->AllocRegister( type, name.Get(), this );
	if ( nResult == PULSE_INVALID_REGISTER )
		return;
	// Only the arm taken runs, so neither may lean on a variable read of the other.
	CCompiledChunk::VarReads_t reads = pChunk->GetVarReads();
	int nToTrue;
	PGDInstruction_t &toTrue = pChunk->AppendInstruction( JUMP_COND, pPoint, &nToTrue );
	toTrue.m_nReg0 = PulseRuntimeRegisterIndex_t( nCondition );
	uint16_t nFalse = m_FalseVal.CompileToRegister( pPoint, pChunk );
	if ( nFalse != PULSE_INVALID_REGISTER )
		pChunk->MoveToRegister( pPoint, pChunk->CastRegister( nFalse, pPoint, type, this ), nResult );
	int nToEnd;
	pChunk->AppendInstruction( JUMP, pPoint, &nToEnd );
	pChunk->SetVarReads( reads );
	pChunk->GetInstruction( nToTrue ).m_nDestInstruction = pChunk->GetInstructionCount();
	uint16_t nTrue = m_TrueVal.CompileToRegister( pPoint, pChunk );
	if ( nTrue != PULSE_INVALID_REGISTER )
		pChunk->MoveToRegister( pPoint, pChunk->CastRegister( nTrue, pPoint, type, this ), nResult );
	pChunk->SetVarReads( reads );
	pChunk->GetInstruction( nToEnd ).m_nDestInstruction = pChunk->GetInstructionCount();
	if ( nFalse == PULSE_INVALID_REGISTER || nTrue == PULSE_INVALID_REGISTER )
		return;
	pChunk->RecordOutparam( &m_Retval, nResult );
}
