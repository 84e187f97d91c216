// Values across branches, loops and calls: a value node read in more than one place, a
// variable read before and after it is set, loop indices of nested loops, the results of
// calls into other methods. Each run logs what the graph computes at that point, so a
// register reused too early or a value kept from an earlier round shows in the lines.

#include <gtest/gtest.h>

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoctest.h"

namespace
{
struct ScopeCase_t
{
	const char *m_pName;
	std::string m_Children;
	std::vector<std::string> m_Lines;
};

std::ostream &operator<<( std::ostream &stream, const ScopeCase_t &scopeCase )
{
	return stream << scopeCase.m_pName;
}

std::string IntLoop( int nID, int nStart, int nStop, int nBody, const std::string &extra = "" )
{
	return R"({ _class = "CPulseDoc_Outflow_LoopIntegerRange" m_NodeID = )" + std::to_string( nID ) + " m_Children = [ " + Outflow( "Loop", nBody ) +
		" ] m_Start = " + Literal( "PVAL_INT", std::to_string( nStart ) ) + " m_Stop = " + Literal( "PVAL_INT", std::to_string( nStop ) ) +
		" m_bRangeIncludesEndpoint = true " + extra + " },";
}

std::string If( int nID, int nCondition, int nTrue, int nFalse )
{
	return R"({ _class = "CPulseDoc_Outflow_If" m_NodeID = )" + std::to_string( nID ) + " m_Children = [ " + Inparam( nCondition, "retval", "m_Condition" ) +
		"," + Outflow( "True", nTrue ) + "," + Outflow( "False", nFalse ) + R"( ] m_Condition = { m_ValueSource = "port" } },)";
}

// A method "Twice" (node 30) that returns its argument doubled.
std::string TwiceMethod()
{
	return R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = 30 m_Name = "Twice" m_Children = [ )" + Outflow( "", 31 ) +
		R"( ] m_ReturnType = "PVAL_INT" m_Args = [ { m_Name = "a" m_Type = "PVAL_INT" } ] },)" +
		R"({ _class = "CPulseDoc_Outflow_Return" m_NodeID = 31 m_Children = [ )" + Inparam( 32, "retval", "m_ReturnValue" ) +
		R"( ] m_ReturnValue = { m_ValueSource = "port" } },)" + Expression( 32, "$a * 2", { { "$a", 30, "a" } } );
}

std::string CallTwice( int nID, const std::string &argument )
{
	return R"({ _class = "CPulseDoc_Step_CallMethod" m_NodeID = )" + std::to_string( nID ) + " m_MethodNodeID = 30 m_ArgumentPorts = { a = " + argument +
		" } },";
}

// A run starts at the graph's first method, so Main comes before the methods it calls.
std::string MainRunningThen( const std::string &methods, const std::string &steps )
{
	return MainRunning( steps ) + methods;
}

std::vector<ScopeCase_t> ScopeCases()
{
	return {
		// One expression read by the log of each branch, with the loop's index.
		{ "ValueReadInBothBranchesOfAnIfInALoop",
		  MainRunning( IntLoop( 3, 1, 4, 5 ) + LogText( 4, "end" ) ) + If( 5, 6, 7, 8 ) + Expression( 6, "$i % 2 == 0", { { "$i", 3, "value" } } ) +
			  LogOf( 7, 9 ) + Group( 8, LogText( 10, "odd" ) + LogOf( 11, 9 ) ) + Expression( 9, "\"i=\" + $i", { { "$i", 3, "value" } } ),
		  { "odd", "i=1", "i=2", "odd", "i=3", "i=4", "end" } },
		// The same expression node read before and after the variable it reads is set.
		{ "VariableReadBeforeAndAfterItIsSet",
		  IntVariable( 20, "n", 1 ) + MainRunning( LogOf( 3, 6 ) + SetVar( 4, 20, 7 ) + LogOf( 5, 6 ) ) + Expression( 6, "\"n=\" + n" ) +
			  Expression( 7, "n + 5" ),
		  { "n=1", "n=6" } },
		{ "VariableAccumulatesAcrossRounds",
		  IntVariable( 20, "sum", 0 ) + MainRunning( IntLoop( 3, 1, 4, 5 ) + LogOf( 4, 9 ) ) + Group( 5, SetVar( 6, 20, 7 ) + LogOf( 8, 10 ) ) +
			  Expression( 7, "sum + $i", { { "$i", 3, "value" } } ) + Expression( 9, "\"total \" + sum" ) + Expression( 10, "\"sum \" + sum" ),
		  { "sum 1", "sum 3", "sum 6", "sum 10", "total 10" } },
		{ "NestedLoopsReadBothIndices",
		  MainRunning( IntLoop( 3, 1, 2, 5 ) + LogText( 4, "end" ) ) + IntLoop( 5, 0, 1, 6 ) +
			  LogOf( 6, 7 ) + Expression( 7, "$i + \",\" + $j", { { "$i", 3, "value" }, { "$j", 5, "value" } } ),
		  { "1,0", "1,1", "2,0", "2,1", "end" } },
		{ "SwitchCasesReadTheSameValue",
		  MainRunning( IntLoop( 3, 1, 3, 5 ) ) + R"({ _class = "CPulseDoc_Outflow_IntSwitch" m_NodeID = 5 m_Children = [ )" +
			  Inparam( 3, "value", "nSwitchValue" ) + "," + Outflow( "Case: 1", 6 ) + "," + Outflow( "Case: 3", 7 ) + "," + Outflow( "Default", 8 ) +
			  R"( ] m_SwitchValue = { m_ValueSource = "port" } m_Cases = [ 1, 3 ] },)" + LogOf( 6, 9 ) + Group( 7, LogText( 10, "three" ) + LogOf( 11, 9 ) ) +
			  LogOf( 8, 9 ) + Expression( 9, "\"at \" + $i * 10", { { "$i", 3, "value" } } ),
		  { "at 10", "at 20", "three", "at 30" } },
		// Results of calls kept for the steps after them, each call its own.
		{ "ResultsOfTwoCallsReadAfterBoth",
		  MainRunningThen( TwiceMethod(), CallTwice( 3, Literal( "PVAL_INT", "4" ) ) + CallTwice( 4, Literal( "PVAL_INT", "10" ) ) + LogOf( 5, 6 ) ) +
			  Expression( 6, "$x + \" \" + $y", { { "$x", 3, "retval" }, { "$y", 4, "retval" } } ),
		  { "8 20" } },
		{ "CallInALoopWithTheIndexAsArgument",
		  MainRunningThen( TwiceMethod(), IntLoop( 3, 1, 3, 5 ) ) +
			  Group( 5, R"({ _class = "CPulseDoc_Step_CallMethod" m_NodeID = 6 m_MethodNodeID = 30 m_Children = [ )" + Inparam( 3, "value", "a" ) +
							R"( ] m_ArgumentPorts = { a = { m_ValueSource = "port" } } },)" + LogOf( 7, 8 ) ) +
			  Expression( 8, "$i + \"*2=\" + $r", { { "$i", 3, "value" }, { "$r", 6, "retval" } } ),
		  { "1*2=2", "2*2=4", "3*2=6" } },
		// A method called from two places, each reading its own result.
		{ "SameMethodFromBranchesOfAnIf",
		  MainRunningThen( TwiceMethod(), IntLoop( 3, 1, 2, 5 ) ) + If( 5, 6, 7, 8 ) + Expression( 6, "$i == 1", { { "$i", 3, "value" } } ) +
			  Group( 7, CallTwice( 9, Literal( "PVAL_INT", "100" ) ) + LogOf( 10, 11 ) ) + Group( 8, CallTwice( 12, Literal( "PVAL_INT", "7" ) ) + LogOf( 13, 14 ) ) +
			  Expression( 11, "\"first \" + $r", { { "$r", 9, "retval" } } ) + Expression( 14, "\"second \" + $r", { { "$r", 12, "retval" } } ),
		  { "first 200", "second 14" } },
	};
}

class PulseDocScopeTest : public testing::TestWithParam<ScopeCase_t>
{
};

TEST_P( PulseDocScopeTest, LogsTheValuesOfEachPoint )
{
	const ScopeCase_t &scopeCase = GetParam();
	const std::string text = PulseDocText( scopeCase.m_Children );
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( text );
	ASSERT_TRUE( pCompiled->m_bCompiled ) << pCompiled->Messages();
	std::vector<CUtlString> messages;
	EXPECT_TRUE( PulseGraphDef_Validate( pCompiled->m_Result.m_Definition, &messages ) );
	EXPECT_EQ( RunPulseDoc( text ), scopeCase.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Scopes, PulseDocScopeTest, testing::ValuesIn( ScopeCases() ),
						  []( const testing::TestParamInfo<ScopeCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace
