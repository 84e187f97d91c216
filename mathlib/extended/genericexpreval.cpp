// Evaluation of a generic expression tree. Both sides of a binary operator are always
// evaluated (there is no short circuit); a ternary evaluates only the arm it picks.

#include <charconv>
#include <climits>
#include <cmath>
#include <cstring>
#include <strings.h>

#include "core/kv3/keyvalues3.h"
#include "core/text/strtools.h"
#include "mathlib/extended/genericexpr.h"
#include "mathlib/extended/genericexprpart.h"

namespace
{
constexpr double MAX_EXACT_DOUBLE_INTEGER = 9007199254740992.0; // 2^53

bool IsIntegerKind( const KeyValues3 &value ) { return value.GetType() == KV3_TYPE_INT || value.GetType() == KV3_TYPE_UINT; }

// A value as a double, and whether that loses nothing: integers beyond 2^53 and text that
// is no number can't be read so.
bool ReadDoubleExactly( const KeyValues3 &value, double *pOut )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: *pOut = value.GetBool() ? 1.0 : 0.0; return true;
	case KV3_TYPE_INT: *pOut = double( value.GetInt64() ); return std::fabs( *pOut ) <= MAX_EXACT_DOUBLE_INTEGER;
	case KV3_TYPE_UINT: *pOut = double( value.GetUInt64() ); return *pOut <= MAX_EXACT_DOUBLE_INTEGER;
	case KV3_TYPE_DOUBLE: *pOut = value.GetDouble(); return true;
	case KV3_TYPE_STRING: return V_StringToDouble( value.GetString(), pOut );
	default: return false;
	}
}

// A value as a double for arithmetic and ordering: text through the number reader (0
// when no number starts it), kinds without a number 0.
double ReadDouble( const KeyValues3 &value )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: return value.GetBool() ? 1.0 : 0.0;
	case KV3_TYPE_INT: return double( value.GetInt64() );
	case KV3_TYPE_UINT: return double( value.GetUInt64() );
	case KV3_TYPE_DOUBLE: return value.GetDouble();
	case KV3_TYPE_STRING: return V_atod( value.GetString() );
	default: return 0.0;
	}
}

int64_t SaturateToInt64( double flValue )
{
	if ( std::isnan( flValue ) )
		return 0;
	if ( flValue >= 9223372036854775807.0 )
		return INT64_MAX;
	if ( flValue <= -9223372036854775808.0 )
		return INT64_MIN;
	return int64_t( flValue );
}

int64_t ReadInt64( const KeyValues3 &value )
{
	if ( value.GetType() == KV3_TYPE_INT )
		return value.GetInt64();
	if ( value.GetType() == KV3_TYPE_UINT )
		return value.GetUInt64() > uint64_t( INT64_MAX ) ? INT64_MAX : int64_t( value.GetUInt64() );
	return SaturateToInt64( ReadDouble( value ) );
}

// Integers stay int32 while both sides are int32 and the result fits.
bool IsWideInteger( const KeyValues3 &value )
{
	if ( value.GetType() == KV3_TYPE_UINT )
		return value.GetSubType() == KV3_SUBTYPE_UINT64 || value.GetUInt64() > uint64_t( INT32_MAX );
	return value.GetSubType() == KV3_SUBTYPE_INT64 || value.GetInt64() > INT32_MAX || value.GetInt64() < INT32_MIN;
}

void SetInteger( KeyValues3 *pResult, int64_t nValue, bool bWide )
{
	if ( !bWide && nValue >= INT32_MIN && nValue <= INT32_MAX )
		pResult->SetInt( int32_t( nValue ) );
	else
		pResult->SetInt64( nValue );
}

struct EvalContext_t
{
	const KeyValues3 *const *m_ppValues;
	int m_nValues;
	bool m_bUnknownAsString;
	CUtlString *m_pError;

	bool Fail( const char *pFormat, const char *pArgument ) const
	{
		if ( m_pError )
			m_pError->Format( pFormat, pArgument );
		return false;
	}
};

bool Eval( const CGenericExprPart *pPart, const EvalContext_t &context, KeyValues3 *pOut );

bool EvalArithmetic( GenericExprBinaryOp_t eOp, const KeyValues3 &left, const KeyValues3 &right, const EvalContext_t &context, KeyValues3 *pOut )
{
	if ( eOp == BinAdd && ( left.IsString() || right.IsString() ) )
	{
		CUtlString leftText, rightText;
		if ( GenericExprValueToText( left, &leftText ) && GenericExprValueToText( right, &rightText ) )
		{
			leftText += rightText;
			pOut->SetString( leftText.Get(), leftText.Length() );
			return true;
		}
		// A side without text makes it a sum of numbers.
	}

	bool bIntegers = IsIntegerKind( left ) && IsIntegerKind( right );
	if ( eOp == BinMod && left.GetType() != KV3_TYPE_DOUBLE && right.GetType() != KV3_TYPE_DOUBLE )
		bIntegers = true;
	if ( bIntegers )
	{
		int64_t a = ReadInt64( left );
		int64_t b = ReadInt64( right );
		bool bWide = IsWideInteger( left ) || IsWideInteger( right );
		int64_t nResult = 0;
		bool bOverflow = false;
		switch ( eOp )
		{
		case BinAdd: bOverflow = __builtin_add_overflow( a, b, &nResult ); break;
		case BinSub: bOverflow = __builtin_sub_overflow( a, b, &nResult ); break;
		case BinMul: bOverflow = __builtin_mul_overflow( a, b, &nResult ); break;
		case BinDiv:
			if ( b == 0 )
				return context.Fail( "Integer division by zero%s", "" );
			bOverflow = ( a == INT64_MIN && b == -1 );
			nResult = bOverflow ? 0 : a / b;
			break;
		case BinMod:
			if ( b == 0 )
				return context.Fail( "Integer modulo by zero%s", "" );
			nResult = b == -1 ? 0 : a % b;
			break;
		default: break;
		}
		if ( bOverflow )
		{
			// Past the range of int64 the double result is kept as near as it goes.
			double flA = double( a ), flB = double( b );
			double flResult = eOp == BinAdd ? flA + flB : eOp == BinSub ? flA - flB : eOp == BinMul ? flA * flB : flA / flB;
			nResult = SaturateToInt64( flResult );
		}
		SetInteger( pOut, nResult, bWide );
		return true;
	}

	double a = ReadDouble( left );
	double b = ReadDouble( right );
	switch ( eOp )
	{
	case BinAdd: pOut->SetDouble( a + b ); break;
	case BinSub: pOut->SetDouble( a - b ); break;
	case BinMul: pOut->SetDouble( a * b ); break;
	case BinDiv: pOut->SetDouble( a / b ); break;
	case BinMod: pOut->SetDouble( std::fmod( a, b ) ); break;
	default: break;
	}
	return true;
}

bool EvalBinary( const CGenericExpr_Binary *pBinary, const EvalContext_t &context, KeyValues3 *pOut )
{
	KeyValues3 left, right;
	if ( !Eval( pBinary->m_pLeft, context, &left ) || !Eval( pBinary->m_pRight, context, &right ) )
		return false;
	switch ( pBinary->m_eOp )
	{
	case BinLt: pOut->SetBool( ReadDouble( left ) < ReadDouble( right ) ); return true;
	case BinGt: pOut->SetBool( ReadDouble( left ) > ReadDouble( right ) ); return true;
	case BinLtE: pOut->SetBool( ReadDouble( left ) <= ReadDouble( right ) ); return true;
	case BinGtE: pOut->SetBool( ReadDouble( left ) >= ReadDouble( right ) ); return true;
	case BinEq: pOut->SetBool( GenericExprValuesEqual( left, right ) ); return true;
	case BinNe: pOut->SetBool( !GenericExprValuesEqual( left, right ) ); return true;
	case BinLogAnd: pOut->SetBool( GenericExprValueToBool( left ) && GenericExprValueToBool( right ) ); return true;
	case BinLogOr: pOut->SetBool( GenericExprValueToBool( left ) || GenericExprValueToBool( right ) ); return true;
	case BinAdd:
	case BinSub:
	case BinMul:
	case BinDiv:
	case BinMod: return EvalArithmetic( pBinary->m_eOp, left, right, context, pOut );
	case BinInvalid: break;
	}
	return context.Fail( "Invalid binary operator%s", "" );
}

bool Eval( const CGenericExprPart *pPart, const EvalContext_t &context, KeyValues3 *pOut )
{
	if ( !pPart )
		return context.Fail( "No expression!%s", "" );
	switch ( pPart->GetKind() )
	{
	case GENERIC_EXPR_UNARY:
	{
		auto *pUnary = static_cast<const CGenericExpr_Unary *>( pPart );
		KeyValues3 operand;
		if ( !Eval( pUnary->m_pOperand, context, &operand ) )
			return false;
		if ( pUnary->m_eOp == UnNot )
			pOut->SetBool( !GenericExprValueToBool( operand ) );
		else if ( pUnary->m_eOp == UnNegate && IsIntegerKind( operand ) )
		{
			int64_t nValue = ReadInt64( operand );
			pOut->SetInt64( nValue == INT64_MIN ? INT64_MAX : -nValue );
		}
		else if ( pUnary->m_eOp == UnNegate )
			pOut->SetDouble( -ReadDouble( operand ) );
		else
			return context.Fail( "Invalid unary operator%s", "" );
		return true;
	}
	case GENERIC_EXPR_BINARY: return EvalBinary( static_cast<const CGenericExpr_Binary *>( pPart ), context, pOut );
	case GENERIC_EXPR_TERNARY_CONDITIONAL:
	{
		auto *pTernary = static_cast<const CGenericExpr_TernaryConditional *>( pPart );
		KeyValues3 condition;
		if ( !Eval( pTernary->m_pCondition, context, &condition ) )
			return false;
		return Eval( GenericExprValueToBool( condition ) ? pTernary->m_pTrue : pTernary->m_pFalse, context, pOut );
	}
	case GENERIC_EXPR_STRING_LITERAL:
	{
		const CUtlString &text = static_cast<const CGenericExpr_StringLiteral *>( pPart )->m_Text;
		pOut->SetString( text.Get(), text.Length() );
		return true;
	}
	case GENERIC_EXPR_FLOAT_LITERAL: pOut->SetDouble( static_cast<const CGenericExpr_FloatLiteral *>( pPart )->m_flValue ); return true;
	case GENERIC_EXPR_INT_LITERAL: pOut->SetInt( static_cast<const CGenericExpr_IntLiteral *>( pPart )->m_nValue ); return true;
	case GENERIC_EXPR_BOOL_LITERAL: pOut->SetBool( static_cast<const CGenericExpr_BoolLiteral *>( pPart )->m_bValue ); return true;
	case GENERIC_EXPR_VARIABLE_REFERENCE:
	{
		auto *pVariable = static_cast<const CGenericExpr_VariableReference *>( pPart );
		int nIndex = pVariable->m_nSymbolIndex;
		const KeyValues3 *pValue = ( context.m_ppValues && nIndex >= 0 && nIndex < context.m_nValues ) ? context.m_ppValues[ nIndex ] : nullptr;
		if ( pValue )
		{
			pOut->CopyFrom( *pValue );
			return true;
		}
		if ( !context.m_bUnknownAsString )
			return context.Fail( "Unknown variable %s", pVariable->m_Name.Get() );
		pOut->SetString( pVariable->m_Name.Get(), pVariable->m_Name.Length() );
		return true;
	}
	case GENERIC_EXPR_PROPERTY:
	{
		auto *pProperty = static_cast<const CGenericExpr_Property *>( pPart );
		KeyValues3 object;
		if ( !Eval( pProperty->m_pObject, context, &object ) )
			return false;
		const KeyValues3 *pMember = object.IsTable() ? object.FindMember( CKV3MemberName( pProperty->m_Name.Get() ) ) : nullptr;
		if ( !pMember )
			return context.Fail( "Unknown property %s", pProperty->m_Name.Get() );
		pOut->CopyFrom( *pMember );
		return true;
	}
	case GENERIC_EXPR_FUNCTION_CALL:
		return context.Fail( "Functions not supported in this evaluator (%s)", static_cast<const CGenericExpr_FunctionCall *>( pPart )->m_Name.Get() );
	}
	return context.Fail( "Unknown expression part%s", "" );
}
} // namespace

int GenericExprEvaluate( const CGenericExprPart *pPart, const KeyValues3 *const *ppValues, int nValues, KeyValues3 *pResult, CUtlString *pError, bool bUnknownAsString )
{
	EvalContext_t context{ ppValues, nValues, bUnknownAsString, pError };
	KeyValues3 scratch;
	KeyValues3 *pOut = pResult ? pResult : &scratch;
	if ( !Eval( pPart, context, pOut ) )
	{
		pOut->SetToNull();
		return GENERIC_EXPR_EVAL_FAILED;
	}
	return GENERIC_EXPR_EVAL_OK;
}

bool GenericExprValueToBool( const KeyValues3 &value )
{
	switch ( value.GetType() )
	{
	case KV3_TYPE_BOOL: return value.GetBool();
	case KV3_TYPE_INT: return value.GetInt64() != 0;
	case KV3_TYPE_UINT: return value.GetUInt64() != 0;
	case KV3_TYPE_DOUBLE: return value.GetDouble() != 0.0;
	case KV3_TYPE_STRING:
	{
		double flValue = 0.0;
		if ( V_StringToDouble( value.GetString(), &flValue ) )
			return flValue != 0.0;
		return strcasecmp( value.GetString(), "true" ) == 0;
	}
	default: return false;
	}
}

bool GenericExprValuesEqual( const KeyValues3 &a, const KeyValues3 &b )
{
	if ( a.IsString() && b.IsString() )
		return a.GetStringLength() == b.GetStringLength() && memcmp( a.GetString(), b.GetString(), a.GetStringLength() ) == 0;
	// An empty string stands for the integer 0.
	const KeyValues3 *pString = a.IsString() ? &a : b.IsString() ? &b : nullptr;
	const KeyValues3 *pOther = pString == &a ? &b : &a;
	if ( pString && pString->GetStringLength() == 0 && IsIntegerKind( *pOther ) && ReadInt64( *pOther ) == 0 )
		return true;
	double flA = 0.0, flB = 0.0;
	if ( ReadDoubleExactly( a, &flA ) && ReadDoubleExactly( b, &flB ) )
		return flA == flB;
	return a.IsEqual( b );
}

bool GenericExprValueToText( const KeyValues3 &value, CUtlString *pOut )
{
	char buffer[ 64 ];
	switch ( value.GetType() )
	{
	case KV3_TYPE_STRING: pOut->Set( value.GetString(), value.GetStringLength() ); return true;
	case KV3_TYPE_BOOL: pOut->Set( value.GetBool() ? "true" : "false" ); return true;
	case KV3_TYPE_INT: pOut->Format( "%lld", static_cast<long long>( value.GetInt64() ) ); return true;
	case KV3_TYPE_UINT: pOut->Format( "%llu", static_cast<unsigned long long>( value.GetUInt64() ) ); return true;
	case KV3_TYPE_DOUBLE:
	{
		std::to_chars_result result = std::to_chars( buffer, buffer + sizeof( buffer ) - 1, value.GetDouble() );
		*result.ptr = 0;
		pOut->Set( buffer );
		return true;
	}
	default: return false;
	}
}
