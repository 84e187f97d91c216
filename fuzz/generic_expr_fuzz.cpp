// Feeds arbitrary text to the generic expression parser and evaluates what it accepts.
// A refused text must say why and where; an accepted one must have a tree equal to a
// second parse of the same text, name every variable in its table, and evaluate to a
// status of 0 or 1 with a text for every failure. Nesting beyond the limit must be
// refused, never crash.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "mathlib/extended/genericexpr.h"
#include "mathlib/extended/genericexprpart.h"

namespace
{
[[noreturn]] void Stop( const char *pWhat, const std::string &text, const CUtlString &detail )
{
	fprintf( stderr, "generic_expr_fuzz: %s\ntext: %s\n%s\n", pWhat, text.c_str(), detail.Get() );
	abort();
}

const KeyValues3 &Values()
{
	static const KeyValues3 s_Values = [] {
		KeyValues3 values;
		values.SetMemberInt( "a", 3 );
		values.SetMemberDouble( "b", 2.5 );
		values.SetMemberString( "s", "text" );
		values.SetMemberBool( "t", true );
		values.SetMemberInt64( "big", INT64_MIN );
		KeyValues3 *pTable = values.SetMemberEmptyTable( "o" );
		pTable->SetMemberInt( "x", 0 );
		return values;
	}();
	return s_Values;
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	if ( nSize == 0 )
		return 0;
	// The first byte picks the options; the rest is the text.
	uint32_t nOptions = pData[ 0 ] & 1u;
	std::string text( reinterpret_cast<const char *>( pData + 1 ), nSize - 1 );

	CGenericExpr expr;
	CUtlString error;
	bool bParsed = expr.Parse( text.c_str(), &error, nOptions );
	size_t nLength = text.find( '\0' ) == std::string::npos ? text.size() : text.find( '\0' );
	if ( !bParsed )
	{
		if ( error.IsEmpty() || expr.HasTree() || expr.GetVariableCount() || expr.GetFunctionCount() )
			Stop( "a refused text without a report, or with a tree left", text, error );
		if ( expr.GetErrorOffset() < 0 || size_t( expr.GetErrorOffset() ) > nLength )
			Stop( "the error offset is outside the text", text, error );
		return 0;
	}
	if ( !error.IsEmpty() || expr.GetErrorOffset() != -1 )
		Stop( "an accepted text with a report", text, error );

	CGenericExpr again;
	if ( !again.Parse( text.c_str(), nullptr, nOptions ) || !again.GetRoot()->Equals( expr.GetRoot() ) || !expr.GetRoot()->Equals( again.GetRoot() ) )
		Stop( "a second parse differs", text, error );
	CUtlString tree;
	GenericExprDescribeTree( expr.GetRoot(), &tree );
	for ( int i = 0; i < expr.GetVariableCount(); ++i )
	{
		if ( expr.FindVariable( expr.GetVariableName( i ) ) != i )
			Stop( "a variable is missing from its table", text, tree );
	}

	for ( bool bUnknownAsString : { true, false } )
	{
		KeyValues3 result;
		int nStatus = expr.Evaluate( Values(), &result, &error, bUnknownAsString );
		if ( nStatus != GENERIC_EXPR_EVAL_OK && ( nStatus != GENERIC_EXPR_EVAL_FAILED || error.IsEmpty() ) )
			Stop( "an evaluation failed without a text", text, tree );
	}
	bool bValue = false;
	expr.EvaluateBool( Values(), &bValue, &error );
	return 0;
}
