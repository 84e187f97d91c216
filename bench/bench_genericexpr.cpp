// Parse and evaluation of typical metadata expressions. Goal: evaluating a parsed
// expression takes under 1 microsecond.

#include <benchmark/benchmark.h>

#include "core/kv3/keyvalues3.h"
#include "mathlib/extended/genericexpr.h"

namespace
{
const char *const SIMPLE = "m_nType == 3 && m_bEnabled";
const char *const TERNARY = "m_flRate > 2.5 ? f(m_nType) : m_nType * 2 + 1";
const char *const TERNARY_NO_CALL = "m_flRate > 2.5 ? m_nType - 1 : m_nType * 2 + 1";

KeyValues3 Values()
{
	KeyValues3 values;
	values.SetMemberInt( "m_nType", 3 );
	values.SetMemberBool( "m_bEnabled", true );
	values.SetMemberDouble( "m_flRate", 1.5 );
	return values;
}

void BM_GenericExprParse( benchmark::State &state, const char *pText )
{
	for ( auto _ : state )
	{
		CGenericExpr expr;
		benchmark::DoNotOptimize( expr.Parse( pText ) );
	}
}
BENCHMARK_CAPTURE( BM_GenericExprParse, comparison_and, SIMPLE );
BENCHMARK_CAPTURE( BM_GenericExprParse, ternary_with_call, TERNARY );

// Values by index, as the property domain hands them over.
void BM_GenericExprEvaluate( benchmark::State &state, const char *pText )
{
	CGenericExpr expr;
	expr.Parse( pText );
	KeyValues3 values = Values();
	const KeyValues3 *table[ 8 ] = {};
	for ( int i = 0; i < expr.GetVariableCount(); ++i )
		table[ i ] = values.FindMember( expr.GetVariableName( i ) );
	KeyValues3 result;
	for ( auto _ : state )
	{
		benchmark::DoNotOptimize( expr.Evaluate( table, expr.GetVariableCount(), &result, nullptr ) );
	}
}
BENCHMARK_CAPTURE( BM_GenericExprEvaluate, comparison_and, SIMPLE );
BENCHMARK_CAPTURE( BM_GenericExprEvaluate, ternary_arithmetic, TERNARY_NO_CALL );
// The call fails by design in this evaluator: the cost of the failure path.
BENCHMARK_CAPTURE( BM_GenericExprEvaluate, ternary_with_call, TERNARY );

// Values looked up by name in a KV3 table, as a breakpoint's log text does.
void BM_GenericExprEvaluateByName( benchmark::State &state )
{
	CGenericExpr expr;
	expr.Parse( SIMPLE );
	KeyValues3 values = Values();
	bool bResult = false;
	for ( auto _ : state )
	{
		benchmark::DoNotOptimize( expr.EvaluateBool( values, &bResult, nullptr ) );
	}
}
BENCHMARK( BM_GenericExprEvaluateByName );
} // namespace
