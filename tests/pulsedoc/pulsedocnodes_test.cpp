// The node families one by one, each in a small document: it compiles, the runtime's
// validator accepts what it gives, and running it logs what a user would expect. The
// shipped documents cover the dice game's switch, events, calls and return; these cover
// what they don't (while and float loops, sequential branches, arguments, casts,
// constants) and the corners of the ones they do.

#include <gtest/gtest.h>

#include <tuple>

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoctest.h"

namespace
{
struct FamilyCase_t
{
	const char *m_pName;
	std::string m_Children;
	std::vector<std::string> m_Lines;
};

std::ostream &operator<<( std::ostream &stream, const FamilyCase_t &familyCase )
{
	return stream << familyCase.m_pName;
}

// scores = [ 1, 2, 3 ]; Main sets element nIndex to 20 and logs element 1.
std::string ArrayElementCase( int nIndex )
{
	return R"({ _class = "CPulseDoc_VariableDefinition" m_NodeID = 10 m_Name = "scores" m_Value = { m_Type = "PVAL_ARRAY:PVAL_INT" m_Value = [ 1, 2, 3 ] } },)" +
		MainRunning( R"({ _class = "CPulseDoc_Step_SetVar" m_NodeID = 3 m_VarDefID = 10 m_nArrayIndexDimension = 1 m_Value = )" + Literal( "PVAL_INT", "20" ) +
					 " m_ArrayIndexPorts = [ " + Literal( "PVAL_INT", std::to_string( nIndex ) ) + " ] }," + LogOf( 4, 5 ) ) +
		R"({ _class = "CPulseDoc_Value_VarOrConstReference" m_NodeID = 6 m_SourceID = 10 },)" +
		R"({ _class = "CPulseDoc_Value_ArrayElement" m_NodeID = 7 m_Children = [ )" + Inparam( 6, "value", "array" ) +
		R"( ] m_Array = { m_ValueSource = "port" } m_Index = )" + Literal( "PVAL_INT", "1" ) + " }," + Expression( 5, "\"\" + $e", { { "$e", 7, "element" } } );
}

std::vector<FamilyCase_t> FamilyCases()
{
	return {
		{ "IntegerLoopWithoutItsEndpointAndAStep",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_LoopIntegerRange" m_NodeID = 3 m_Children = [ )" + Outflow( "Loop", 5 ) + " ] m_Start = " +
					   Literal( "PVAL_INT", "0" ) + " m_Stop = " + Literal( "PVAL_INT", "7" ) + " m_Step = " + Literal( "PVAL_INT", "3" ) + " }," +
					   LogText( 4, "after" ) ) +
			  LogOf( 5, 6 ) + Expression( 6, "\"i \" + $i", { { "$i", 3, "value" } } ),
		  { "i 0", "i 3", "i 6", "after" } },
		{ "IntegerLoopCountingDown",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_LoopIntegerRange" m_NodeID = 3 m_Children = [ )" + Outflow( "Loop", 5 ) + " ] m_Start = " +
					   Literal( "PVAL_INT", "3" ) + " m_Stop = " + Literal( "PVAL_INT", "1" ) + " m_Step = " + Literal( "PVAL_INT", "-1" ) +
					   " m_bRangeIncludesEndpoint = true }," ) +
			  LogOf( 5, 6 ) + Expression( 6, "\"i \" + $i", { { "$i", 3, "value" } } ),
		  { "i 3", "i 2", "i 1" } },
		{ "FloatLoopGivesCountValuesEndsIncluded",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_LoopFloatRange" m_NodeID = 3 m_Children = [ )" + Outflow( "Loop", 5 ) + " ] m_Start = " +
					   Literal( "PVAL_FLOAT", "0.0" ) + " m_Stop = " + Literal( "PVAL_FLOAT", "1.0" ) + " m_Count = " + Literal( "PVAL_INT", "3" ) + " }," +
					   LogText( 4, "after" ) ) +
			  LogOf( 5, 6 ) + Expression( 6, "\"x \" + $x * 10", { { "$x", 3, "value" } } ),
		  { "x 0", "x 5", "x 10", "after" } },
		{ "WhileLoopRunsUntilItsConditionFails",
		  IntVariable( 10, "n", 0 ) +
			  MainRunning( R"({ _class = "CPulseDoc_Outflow_LoopWhile" m_NodeID = 3 m_Children = [ )" + Inparam( 6, "retval", "m_Condition" ) + "," +
						   Outflow( "Loop", 5 ) + R"( ] m_Condition = { m_ValueSource = "port" } },)" + LogOf( 4, 9 ) ) +
			  Expression( 6, "n < 3" ) + Group( 5, SetVar( 7, 10, 8 ) + LogOf( 11, 12 ) ) + Expression( 8, "n + 1" ) + Expression( 12, "\"n \" + n" ) +
			  Expression( 9, "\"done at \" + n" ),
		  { "n 1", "n 2", "n 3", "done at 3" } },
		{ "WhileLoopThatNeverHoldsRunsNoBody",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_LoopWhile" m_NodeID = 3 m_Children = [ )" + Outflow( "Loop", 5 ) + " ] m_Condition = " +
					   Literal( "PVAL_BOOL", "false" ) + " }," + LogText( 4, "after" ) ) +
			  LogText( 5, "body" ),
		  { "after" } },
		// Neither has a default exit, so each ends its group.
		{ "SequentialBranchesRunInTurn",
		  MainRunning( LogText( 4, "before" ) + R"({ _class = "CPulseDoc_Outflow_Simultaneous" m_NodeID = 3 m_nNumExits = 3 m_Children = [ )" +
					   Outflow( "Branch 1", 5 ) + "," + Outflow( "Branch 3", 6 ) + " ] }," ) +
			  Group( 5, LogText( 7, "first" ) + LogText( 8, "first again" ) ) + LogText( 6, "third" ),
		  { "before", "first", "first again", "third" } },
		{ "IfTakesFalseAndNotConditionTurnsIt",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_If" m_NodeID = 3 m_Children = [ )" + Outflow( "True", 5 ) + "," + Outflow( "False", 6 ) +
					   " ] m_Condition = " + Literal( "PVAL_BOOL", "false" ) + " }," ) +
			  LogText( 5, "yes" ) +
			  Group( 6, LogText( 9, "no" ) + R"({ _class = "CPulseDoc_Outflow_If" m_NodeID = 4 m_bNotCondition = true m_Children = [ )" +
							Outflow( "True", 7 ) + "," + Outflow( "False", 8 ) + " ] m_Condition = " + Literal( "PVAL_BOOL", "false" ) + " }," ) +
			  LogText( 7, "not false" ) + LogText( 8, "false" ),
		  { "no", "not false" } },
		{ "SwitchWithoutAMatchingCaseTakesDefault",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_IntSwitch" m_NodeID = 3 m_Children = [ )" + Outflow( "Case: 1", 5 ) + "," +
					   Outflow( "Default", 6 ) + " ] m_SwitchValue = " + Literal( "PVAL_INT", "7" ) + " m_Cases = [ 1, 2 ] }," ) +
			  LogText( 5, "one" ) + LogText( 6, "something else" ),
		  { "something else" } },
		{ "CallPassesArgumentsAndReturnsAValue",
		  MainRunning( R"({ _class = "CPulseDoc_Step_CallMethod" m_NodeID = 3 m_MethodNodeID = 20 m_ArgumentPorts = { a = )" + Literal( "PVAL_INT", "6" ) +
					   " b = " + Literal( "PVAL_INT", "7" ) + " } }," + LogOf( 4, 5 ) ) +
			  Expression( 5, "\"6 * 7 = \" + $r", { { "$r", 3, "retval" } } ) +
			  R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = 20 m_Name = "Times" m_Children = [ )" + Outflow( "", 21 ) +
			  R"( ] m_ReturnType = "PVAL_INT" m_Args = [ { m_Name = "a" m_Type = "PVAL_INT" }, { m_Name = "b" m_Type = "PVAL_INT" } ] },)" +
			  R"({ _class = "CPulseDoc_Outflow_Return" m_NodeID = 21 m_Children = [ )" + Inparam( 22, "retval", "m_ReturnValue" ) +
			  R"( ] m_ReturnValue = { m_ValueSource = "port" } },)" + Expression( 22, "$a * $b", { { "$a", 20, "a" }, { "$b", 20, "b" } } ),
		  { "6 * 7 = 42" } },
		// Dividing integers gives a float; the rest stays integer.
		{ "IntegerArithmetic",
		  MainRunning( LogOf( 3, 4 ) ) + Expression( 4, "\"\" + (17 / 5) + \" \" + (17 % 5) + \" \" + (2 - 9) * 3" ), { "3.4 2 -21" } },
		{ "FloatArithmeticAndMixedOperands",
		  MainRunning( LogOf( 3, 4 ) ) + Expression( 4, "\"\" + 1.5 * 4 + \" \" + (7 / 2.0) + \" \" + (3 > 2.5)" ), { "6 3.5 true" } },
		{ "LogicAndTheConditional",
		  IntVariable( 10, "lives", 0 ) + MainRunning( LogOf( 3, 4 ) ) +
			  Expression( 4, "(lives <= 0 && !false ? \"over\" : \"on\") + \" \" + (lives > 0 || 2 >= 2) + \" \" + (1 == 1.0) + \" \" + -lives" ),
		  { "over true true 0" } },
		// `zol pulse run` runs a graph in test mode.
		{ "LibraryFunctionAndCopy",
		  MainRunning( LogOf( 3, 4 ) ) + R"({ _class = "CPulseDoc_Value_Generic" m_NodeID = 5 m_GenericNodeType = "CPulseTestScriptLib::IsInTestMode" },)" +
			  R"({ _class = "CPulseDoc_Value_Copy" m_NodeID = 6 m_Children = [ )" + Inparam( 5, "retval", "value" ) + R"( ] m_Arg = { m_ValueSource = "port" } },)" +
			  Expression( 4, "\"test mode \" + $t", { { "$t", 6, "retval" } } ),
		  { "test mode true" } },
		{ "ConstantsAndVariableValues",
		  IntVariable( 10, "lives", 3 ) +
			  R"({ _class = "CPulseDoc_ConstantDefinition" m_NodeID = 11 m_Name = "BONUS" m_Value = { m_Type = "PVAL_INT" m_Value = 100 } },)" +
			  MainRunning( LogOf( 3, 4 ) ) + R"({ _class = "CPulseDoc_Value_VarOrConstReference" m_NodeID = 5 m_SourceID = 10 },)" +
			  R"({ _class = "CPulseDoc_Value_VarOrConstReference" m_NodeID = 6 m_SourceID = 11 },)" +
			  Expression( 4, "$l + \" lives, \" + $b", { { "$l", 5, "value" }, { "$b", 6, "value" } } ),
		  { "3 lives, 100" } },
		{ "ArrayElementSetThenRead", ArrayElementCase( 1 ), { "20" } },
		{ "ArrayElementSetAtTheFirstIndex", ArrayElementCase( 0 ), { "2" } },
		{ "ArrayElementOutsideTheArrayLeavesItAsItWas", ArrayElementCase( 3 ), { "Pulse: Bad array index 3 (array has 3 elements) (test.tpulse:3)", "2" } },
		{ "ArrayElementBelowTheArrayLeavesItAsItWas", ArrayElementCase( -1 ), { "Pulse: Bad array index -1 (array has 3 elements) (test.tpulse:3)", "2" } },
		{ "CastOfAFloatToAnInteger",
		  MainRunning( LogOf( 3, 4 ) ) + R"({ _class = "CPulseDoc_Cast" m_NodeID = 5 m_TargetType = "PVAL_INT")" +
			  R"( m_Source = { m_UserRefinedType = "PVAL_FLOAT" m_LiteralValue = 2.75 } },)" + Expression( 4, "\"as integer \" + $n", { { "$n", 5, "retval" } } ),
		  { "as integer 2" } },
	};
}

class PulseDocFamilyTest : public testing::TestWithParam<FamilyCase_t>
{
};

TEST_P( PulseDocFamilyTest, CompilesValidatesAndRuns )
{
	const FamilyCase_t &familyCase = GetParam();
	const std::string text = PulseDocText( familyCase.m_Children );
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( text );
	ASSERT_TRUE( pCompiled->m_bCompiled ) << pCompiled->Messages();
	std::vector<CUtlString> messages;
	EXPECT_TRUE( PulseGraphDef_Validate( pCompiled->m_Result.m_Definition, &messages ) );
	EXPECT_EQ( RunPulseDoc( text ), familyCase.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Families, PulseDocFamilyTest, testing::ValuesIn( FamilyCases() ),
						  []( const testing::TestParamInfo<FamilyCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace

namespace
{
std::string Repeated( const std::string &term, const char *pJoin, int nCount )
{
	std::string text = term;
	for ( int i = 1; i < nCount; ++i )
		text += pJoin + term;
	return text;
}

// The limits a big graph runs into are compile errors that say which, first.
TEST( PulseDocCompileErrors, AChunkBeyondTheRuntimesRegisterOffsetsIsRefused )
{
	std::string steps, values;
	for ( int i = 0; i < 120; ++i )
	{
		steps += LogOf( 1000 + i, 2000 + i );
		values += Expression( 2000 + i, Repeated( "\"ab\"", " + ", 150 ) );
	}
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( PulseDocText( MainRunning( steps ) + values ) );
	EXPECT_FALSE( pCompiled->m_bCompiled );
	EXPECT_FALSE( pCompiled->m_Result.m_bGenerated );
	ASSERT_FALSE( pCompiled->m_Messages.GetMessages().empty() );
	const std::string first = pCompiled->m_Messages.GetMessages().front().ToText().Get();
	EXPECT_NE( first.find( "Chunk 0 needs more than 65535 bytes of registers; the runtime's offsets reach no further" ), std::string::npos ) << first;
	// Said once: the expressions and inparams after it fail for the same reason.
	EXPECT_EQ( pCompiled->m_Messages.GetMessages().size(), 1u ) << pCompiled->Messages().substr( 0, 1000 );
}

TEST( PulseDocCompileErrors, ALongExpressionKeepsTheReasonInItsMessage )
{
	std::unique_ptr<PulseDocCompiled_t> pCompiled =
		CompilePulseDocText( PulseDocText( MainRunning( LogOf( 3, 4 ) ) + Expression( 4, Repeated( "\"ab\"", " + ", 400 ) ) ) );
	EXPECT_FALSE( pCompiled->m_bCompiled );
	EXPECT_NE( pCompiled->Messages().find( "...': Expression nested deeper than 256 levels" ), std::string::npos ) << pCompiled->Messages().substr( 0, 300 );
}
} // namespace
