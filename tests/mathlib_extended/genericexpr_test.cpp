// The generic expression language through its public interface: one table of text,
// options and values against the value (kind and text) or the exact report lines, then
// the tree's own operations.

#include <gtest/gtest.h>

#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "mathlib/extended/genericexpr.h"
#include "mathlib/extended/genericexprpart.h"
#include "mathlib/extended/genericexprstringvalue.h"

namespace
{
// Values every row may use: a=3 (int32), b=2.5, s="4", t=true, o={ x = 0 }, big=2^53+1.
const char *const VALUES = "{ a = 3\n b = 2.5\n s = \"4\"\n t = true\n o = { x = 0 }\n big = 9007199254740993i64 }";

struct ExprCase_t
{
	const char *m_pText;
	const char *m_pExpected; // "kind text", "fail: message" or "parse: line|line|..."
	uint32_t m_nOptions = 0;
	bool m_bUnknownAsString = true;
};

std::ostream &operator<<( std::ostream &os, const ExprCase_t &row ) { return os << "\"" << row.m_pText << "\""; }

std::string KindAndText( const KeyValues3 &value )
{
	const char *pKind = value.GetTypeAsString();
	if ( value.GetType() == KV3_TYPE_INT )
		pKind = value.GetSubType() == KV3_SUBTYPE_INT64 ? "int64" : "int32";
	CUtlString text;
	if ( !GenericExprValueToText( value, &text ) )
		SaveKV3ToString( &value, &text, KV3_FORMAT_GENERIC, KV3_SAVE_NO_HEADER );
	return std::string( pKind ) + " " + text.Get();
}

std::string Outcome( const ExprCase_t &row )
{
	KeyValues3 values;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &values, &error, VALUES, strlen( VALUES ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) ) << error.Get();
	CGenericExpr expr;
	if ( !expr.Parse( row.m_pText, &error, row.m_nOptions ) )
	{
		std::string lines = error.Get();
		for ( char &c : lines )
			c = c == '\n' ? '|' : c;
		return "parse: " + lines;
	}
	KeyValues3 result;
	if ( expr.Evaluate( values, &result, &error, row.m_bUnknownAsString ) != GENERIC_EXPR_EVAL_OK )
		return std::string( "fail: " ) + error.Get();
	return KindAndText( result );
}

class GenericExprTableTest : public testing::TestWithParam<ExprCase_t>
{
};

TEST_P( GenericExprTableTest, GivesTheExpectedValueOrReport )
{
	EXPECT_EQ( Outcome( GetParam() ), GetParam().m_pExpected );
}

const ExprCase_t s_Arithmetic[] = {
	{ "1 + 2 * 3", "int32 7" },
	{ "(1 + 2) * 3", "int32 9" },
	{ "7 / 2", "int32 3" },
	{ "7 / 2.0", "double 3.5" },
	{ "10 - 4 - 3", "int32 3" },
	{ "2 * 3.0", "double 6" },
	{ "7 % 3", "int32 1" },
	{ "7.5 % 2", "double 1.5" },
	{ "-7 % 3", "int64 -1" },
	{ "-a", "int64 -3" },
	{ "-b", "double -2.5" },
	{ "-(1 + 1)", "int64 -2" },
	{ "-1 + 2", "int64 1" },
	{ "2147483647 + 1", "int64 2147483648" },
	{ "s * 2", "double 8" },
	{ "1 / 0", "fail: Integer division by zero" },
	{ "1 % 0", "fail: Integer modulo by zero" },
	{ "1.0 / 0", "double inf" },
};
INSTANTIATE_TEST_SUITE_P( Arithmetic, GenericExprTableTest, testing::ValuesIn( s_Arithmetic ) );

const ExprCase_t s_Strings[] = {
	{ "\"a\" + 1", "string a1" },
	{ "1 + 'a'", "string 1a" },
	{ "\"a\" + \"b\"", "string ab" },
	{ "\"x\" + 2.5", "string x2.5" },
	{ "\"x\" + true", "string xtrue" },
	{ "s + o", "double 4" }, // a table has no text: the sum is numeric
	{ "'single'", "string single" },
	{ "\"a\\\"b\"", "string a\"b" },
	{ "'it\\'s'", "string it's" },
	{ "\"tab\\tx\"", "string tab\tx" },
	{ "\"line\\nx\"", "string line\nx" },
	{ "\"\\101\"", "string 101" },
	{ "\"abc", "string abc" }, // unterminated: the text after the quote
	{ "'a\"b'", "string a\"b" },
	{ "\"a'b\"", "string a'b" },
};
INSTANTIATE_TEST_SUITE_P( Strings, GenericExprTableTest, testing::ValuesIn( s_Strings ) );

const ExprCase_t s_Comparisons[] = {
	{ "2 < 3", "bool true" },
	{ "\"10\" > 9", "bool true" },
	{ "2.5 >= b", "bool true" },
	{ "1 <= 0", "bool false" },
	{ "\"\" == 0", "bool true" },
	{ "\"0\" == 0", "bool true" },
	{ "\"abc\" == 0", "bool false" },
	{ "\"abc\" == \"abc\"", "bool true" },
	{ "\"abc\" != \"ABC\"", "bool true" },
	{ "1 == 1.0", "bool true" },
	{ "true == 1", "bool true" },
	{ "s == 4", "bool true" },
	{ "o == o", "bool true" },
	{ "big == big", "bool true" },   // past 2^53: compared as KV3 values
	{ "big == 9007199254740992", "bool false" },
	{ "true && false", "bool false" },
	{ "false || 1", "bool true" },
	{ "!true", "bool false" },
	{ "!0", "bool true" },
	{ "!\"abc\"", "bool true" },
	{ "!\"1\"", "bool false" },
	{ "a == 3 && t", "bool true" },
};
INSTANTIATE_TEST_SUITE_P( Comparisons, GenericExprTableTest, testing::ValuesIn( s_Comparisons ) );

const ExprCase_t s_NamesAndParts[] = {
	{ "a", "int32 3" },
	{ "o.x", "int32 0" },
	{ "o", "table {\n\tx = 0\n}\n" },
	{ "x", "string x" },
	{ "x", "fail: Unknown variable x", 0, false },
	{ "trueish", "string trueish" },
	{ "a.x", "fail: Unknown property x" },
	{ "o.y", "fail: Unknown property y" },
	{ "f(1, a)", "fail: Functions not supported in this evaluator (f)" },
	{ "true ? 1 : x", "int32 1", 0, false }, // only the chosen arm is evaluated
	{ "false ? x : 2", "int32 2", 0, false },
	{ "false && x", "fail: Unknown variable x", 0, false }, // both sides are
	{ "false && x", "bool false" },
	{ "a > 2 ? \"big\" : \"small\"", "string big" },
	{ "(a > 2 ? 1 : 2) ? 3 : 4", "int32 3" },
	{ "$name", "parse: Disallowed variable name: $name" },
	{ "$name", "string $name", GENERIC_EXPR_ALLOW_DOLLAR_NAMES },
	{ "0x1F", "int32 31" },
	{ "017", "int32 17" },
	{ "1'000", "int32 1" },
	{ "1.", "double 1" },
	{ ".5", "double 0.5" },
	{ "1e3", "double 1000" },
	{ "2.5E-1", "double 0.25" },
	{ "1 + /* two */ 2 // and a comment", "int32 3" },
	{ "\t1\r\n+\n2 ", "int32 3" },
};
INSTANTIATE_TEST_SUITE_P( NamesAndParts, GenericExprTableTest, testing::ValuesIn( s_NamesAndParts ) );

const ExprCase_t s_Refused[] = {
	{ "", "parse: No input data for 'expr'. (Empty buffer.)|No data" },
	{ "a.b.c", "parse: org.antlr.runtime.RecognitionException: Unexpected token|Parser encountered 1 error(s)|No data" },
	{ "a ? b ? c : d : e", "parse: org.antlr.runtime.RecognitionException: Unexpected token|Parser encountered 1 error(s)|No data" },
	{ "--a", "parse: Unexpected token '-'|Parser encountered 1 error(s)|No data" },
	{ "!!a", "parse: Unexpected token '!'|Parser encountered 1 error(s)|No data" },
	{ "(1 + 2", "parse: Missing token CLOSE_PAREN|Parser encountered 1 error(s)|No data" },
	{ "1 2", "parse: Unwanted token '2' (Expecting EOF)|Parser encountered 1 error(s)|No data" },
	{ "a..b", "parse: Unwanted token '.' (Expecting ID)|Parser encountered 1 error(s)|No data" },
	{ "f(,)", "parse: Unwanted token ',' (Expecting CLOSE_PAREN)|Parser encountered 1 error(s)|No data" },
	{ "1 + )", "parse: Unexpected token ')'|Parser encountered 1 error(s)|No data" },
	{ "{", "parse: Unexpected token '{'|Parser encountered 1 error(s)|No data" },
	{ "a = 1", "parse: Unexpected token 'a'|Parser encountered 1 error(s)|No data" },
	{ "1 @ 2", "parse: org.antlr.runtime.RecognitionException: Unexpected token|Parser encountered 1 error(s)|No data" },
	{ "0x", "parse: Unexpected end of file|Unexpected token '<EOF>'|Lexer encountered 1 error(s)|Parser encountered 1 error(s)|No data" },
	{ "/* open", "parse: Unexpected end of file|Unexpected token '<EOF>'|Lexer encountered 1 error(s)|Parser encountered 1 error(s)|No data" },
	{ "\"\\q\"", "parse: Unexpected character '\\' (0x5C)|Unexpected token 'q'|Lexer encountered 1 error(s)|Parser encountered 1 error(s)|No data" },
};
INSTANTIATE_TEST_SUITE_P( Refused, GenericExprTableTest, testing::ValuesIn( s_Refused ) );

std::string Nested( int nDepth ) { return std::string( nDepth, '(' ) + "1" + std::string( nDepth, ')' ); }

TEST( GenericExprTest, NestingUpToTheLimitParsesAndDeeperIsRefused )
{
	CGenericExpr expr;
	CUtlString error;
	EXPECT_TRUE( expr.Parse( Nested( GENERIC_EXPR_MAX_NESTING ).c_str(), &error ) ) << error.Get();
	EXPECT_FALSE( expr.Parse( Nested( 100000 ).c_str(), &error ) );
	EXPECT_STREQ( error.Get(), "Expression nested deeper than 256 levels\nNo data" );
	EXPECT_EQ( expr.GetErrorOffset(), GENERIC_EXPR_MAX_NESTING );

	// A long chain nests without parentheses: the tree's depth is limited too.
	std::string chain = "1";
	for ( int i = 0; i < 5000; ++i )
		chain += "+1";
	EXPECT_FALSE( expr.Parse( chain.c_str(), &error ) );
	EXPECT_STREQ( error.Get(), "Expression nested deeper than 256 levels\nNo data" );
	std::string calls;
	for ( int i = 0; i < 300; ++i )
		calls += "f(";
	calls += "1" + std::string( 300, ')' );
	EXPECT_FALSE( expr.Parse( calls.c_str(), &error ) );
}

TEST( GenericExprTest, ReportsTheOffsetOfTheFirstError )
{
	CGenericExpr expr;
	CUtlString error;
	EXPECT_FALSE( expr.Parse( "a + (b * ", &error ) );
	EXPECT_EQ( expr.GetErrorOffset(), 9 );
	EXPECT_FALSE( expr.Parse( "m_nType == 3 &&& m_bEnabled", &error ) );
	EXPECT_EQ( expr.GetErrorOffset(), 15 );
	EXPECT_FALSE( expr.Parse( "1 + $x", &error ) );
	EXPECT_EQ( expr.GetErrorOffset(), 4 );
	EXPECT_TRUE( expr.Parse( "1", &error ) );
	EXPECT_EQ( expr.GetErrorOffset(), -1 );
}

TEST( GenericExprTest, SymbolTablesListNamesOnceInOrderButNotPropertyNames )
{
	CGenericExpr expr;
	ASSERT_TRUE( expr.Parse( "b + f(a, o.x, g()) + a * -c ? d : !b" ) );
	ASSERT_EQ( expr.GetVariableCount(), 5 );
	const char *pExpected[] = { "b", "a", "o", "c", "d" };
	for ( int i = 0; i < 5; ++i )
		EXPECT_STREQ( expr.GetVariableName( i ), pExpected[ i ] );
	EXPECT_EQ( expr.FindVariable( "x" ), -1 );
	EXPECT_EQ( expr.FindVariable( "A" ), -1 ); // names keep their case
	ASSERT_EQ( expr.GetFunctionCount(), 2 );
	EXPECT_STREQ( expr.GetFunctionName( 0 ), "f" );
	EXPECT_STREQ( expr.GetFunctionName( 1 ), "g" );

	// A failed parse leaves nothing behind.
	EXPECT_FALSE( expr.Parse( "a +" ) );
	EXPECT_FALSE( expr.HasTree() );
	EXPECT_EQ( expr.GetVariableCount(), 0 );
	EXPECT_EQ( expr.GetFunctionCount(), 0 );
}

TEST( GenericExprTest, ValueTableByIndexTreatsNullAndShortTablesAsNotGiven )
{
	CGenericExpr expr;
	ASSERT_TRUE( expr.Parse( "a + b" ) );
	KeyValues3 one, result;
	one.SetInt( 1 );
	const KeyValues3 *values[] = { &one, nullptr };
	CUtlString error;
	EXPECT_EQ( expr.Evaluate( values, 2, &result, &error, false ), GENERIC_EXPR_EVAL_FAILED );
	EXPECT_STREQ( error.Get(), "Unknown variable b" );
	EXPECT_EQ( expr.Evaluate( values, 1, &result, &error ), GENERIC_EXPR_EVAL_OK );
	EXPECT_STREQ( result.GetString(), "1b" );
}

TEST( GenericExprTest, BooleanFormAndAnEmptyExpression )
{
	KeyValues3 values;
	values.SetMemberInt( "m_nType", 3 );
	values.SetMemberBool( "m_bEnabled", true );
	bool bValue = false;
	CUtlString error;
	EXPECT_TRUE( GenericExprEvaluateBool( "m_nType == 3 && m_bEnabled", values, &bValue, &error ) );
	EXPECT_TRUE( bValue );
	EXPECT_TRUE( GenericExprEvaluateBool( "m_nType - 3", values, &bValue, &error ) );
	EXPECT_FALSE( bValue );
	EXPECT_FALSE( GenericExprEvaluateBool( "m_nType ==", values, &bValue, &error ) );
	EXPECT_STREQ( error.Get(), "No expression!" );

	CGenericExpr empty;
	EXPECT_FALSE( empty.EvaluateBool( values, &bValue, &error ) );
	EXPECT_STREQ( error.Get(), "No expression!" );
}

TEST( GenericExprTest, TreesDescribeCompareAndSwapChildren )
{
	CGenericExpr expr, same, other;
	ASSERT_TRUE( expr.Parse( "a > 1 ? f(\"x\", 2.5) : !o.y" ) );
	ASSERT_TRUE( same.Parse( "a>1?f(\"x\",2.5):!o.y" ) );
	ASSERT_TRUE( other.Parse( "a > 1 ? f('x', 2.5) : !o.y" ) ); // single quotes differ
	EXPECT_TRUE( expr.GetRoot()->Equals( same.GetRoot() ) );
	EXPECT_FALSE( expr.GetRoot()->Equals( other.GetRoot() ) );

	CUtlString tree;
	GenericExprDescribeTree( expr.GetRoot(), &tree );
	EXPECT_STREQ( tree.Get(),
		"TernaryConditional\n"
		"  BinGt\n"
		"    Var( a )\n"
		"    Int( 1 )\n"
		"  Func( f )\n"
		"    String( x )\n"
		"    Float( 2.500000 )\n"
		"  UnNot\n"
		"    Prop( y )\n"
		"      Var( o )\n" );

	CGenericExprPart *pRoot = expr.GetRoot();
	EXPECT_EQ( pRoot->GetChildCount(), 3 );
	EXPECT_EQ( pRoot->GetChildSlot( 3 ), nullptr );
	auto *pCall = static_cast<CGenericExpr_FunctionCall *>( *pRoot->GetChildSlot( 1 ) );
	EXPECT_EQ( pCall->GetArgumentCount(), 2 );
	EXPECT_EQ( pCall->GetArgument( 2 ), nullptr );

	// Swap the arms through their slots: the tree now reads "a > 1 ? !o.y : f(...)".
	std::swap( *pRoot->GetChildSlot( 1 ), *pRoot->GetChildSlot( 2 ) );
	CGenericExpr swapped;
	ASSERT_TRUE( swapped.Parse( "a > 1 ? !o.y : f(\"x\", 2.5)" ) );
	EXPECT_TRUE( pRoot->Equals( swapped.GetRoot() ) );
	EXPECT_FALSE( pRoot->Equals( same.GetRoot() ) );

	CGenericExprPart *pDetached = expr.DetachRoot();
	EXPECT_FALSE( expr.HasTree() );
	delete pDetached;
}

TEST( GenericExprTest, StringTokenValues )
{
	CUtlString value;
	GenericExprStringTokenValue( "\"\"\"\nline one\r\nline \\\"\"\" two\n\"\"\"", &value );
	EXPECT_STREQ( value.Get(), "line one\nline \"\"\" two" );
	GenericExprStringTokenValue( "'a\\\\b'", &value );
	EXPECT_STREQ( value.Get(), "a\\b" );
	GenericExprStringTokenValue( "\"", &value );
	EXPECT_STREQ( value.Get(), "" );
}
} // namespace
