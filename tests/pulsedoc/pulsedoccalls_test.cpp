// Calls between methods: each method is a chunk of its own, and a call is fixed up to its
// method's chunk once every chunk is compiled. Chains of calls written in any order of
// the document, a method called from several places, calls inside loops and branches:
// the runtime's validator accepts the graph and the run logs the calls in turn.

#include <gtest/gtest.h>

#include <set>

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoctest.h"

namespace
{
struct CallCase_t
{
	const char *m_pName;
	std::string m_Children;
	std::vector<std::string> m_Lines;
	int m_nChunks; // Main and each method called
};

std::ostream &operator<<( std::ostream &stream, const CallCase_t &callCase )
{
	return stream << callCase.m_pName;
}

std::string Call( int nID, int nMethod, const char *pMode = "SYNC_WAIT_FOR_COMPLETION", const std::string &arguments = "" )
{
	return R"({ _class = "CPulseDoc_Step_CallMethod" m_NodeID = )" + std::to_string( nID ) + " m_MethodNodeID = " + std::to_string( nMethod ) +
		" m_nCallMode = \"" + pMode + "\" m_ArgumentPorts = { " + arguments + " } },";
}

// A method (node nID) without a value, whose exit runs the group nID + 1 of the given steps.
std::string Method( int nID, const char *pName, const std::string &steps, const std::string &args = "" )
{
	return R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = )" + std::to_string( nID ) + " m_Name = \"" + pName + "\" m_Children = [ " +
		Outflow( "", nID + 1 ) + " ] m_Args = [ " + args + " ] }," + Group( nID + 1, steps );
}

// Method "Chain<name>": logs its entry, calls the next, logs its exit.
std::string Link( int nID, const char *pName, int nNext )
{
	const std::string name = pName;
	return Method( nID, pName, LogText( nID + 2, "enter " + name ) + ( nNext ? Call( nID + 3, nNext ) : "" ) + LogText( nID + 4, "leave " + name ) );
}

const std::vector<std::string> s_ChainLines = { "enter A", "enter B", "enter C", "leave C", "leave B", "leave A", "back in Main" };

std::vector<CallCase_t> CallCases()
{
	const std::string main = MainRunning( Call( 3, 100 ) + LogText( 4, "back in Main" ) );
	return {
		{ "ChainDeclaredInTheOrderOfTheCalls", main + Link( 100, "A", 200 ) + Link( 200, "B", 300 ) + Link( 300, "C", 0 ), s_ChainLines, 4 },
		{ "ChainDeclaredBackwards", main + Link( 300, "C", 0 ) + Link( 200, "B", 300 ) + Link( 100, "A", 200 ), s_ChainLines, 4 },
		{ "ChainDeclaredOutOfOrder", main + Link( 200, "B", 300 ) + Link( 100, "A", 200 ) + Link( 300, "C", 0 ), s_ChainLines, 4 },
		{ "OneMethodCalledFromSeveralPlaces",
		  MainRunning( Call( 3, 100 ) + Call( 4, 200 ) + Call( 5, 100 ) ) + Method( 100, "Hello", LogText( 102, "hello" ) ) +
			  Method( 200, "Twice", Call( 202, 100 ) + Call( 203, 100 ) + LogText( 204, "twice done" ) ),
		  { "hello", "hello", "hello", "twice done", "hello" }, 3 },
		{ "CallsInALoopAndItsBranches",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_LoopIntegerRange" m_NodeID = 3 m_Children = [ )" + Outflow( "Loop", 5 ) + " ] m_Start = " +
					   Literal( "PVAL_INT", "0" ) + " m_Stop = " + Literal( "PVAL_INT", "3" ) + " }," + Call( 4, 300 ) ) +
			  R"({ _class = "CPulseDoc_Outflow_If" m_NodeID = 5 m_Children = [ )" + Inparam( 6, "retval", "m_Condition" ) + "," + Outflow( "True", 7 ) +
			  "," + Outflow( "False", 8 ) + R"( ] m_Condition = { m_ValueSource = "port" } },)" +
			  Expression( 6, "$i == 1", { { "$i", 3, "value" } } ) + Group( 7, Call( 9, 100 ) ) + Group( 8, Call( 10, 200 ) ) +
			  Method( 100, "One", LogText( 102, "one" ) ) + Method( 200, "Other", LogText( 202, "other" ) ) + Method( 300, "Last", LogText( 302, "last" ) ),
		  { "other", "one", "other", "last" }, 4 },
		{ "ArgumentsPassedDownAChain",
		  MainRunning( Call( 3, 100, "SYNC_WAIT_FOR_COMPLETION", "n = " + Literal( "PVAL_INT", "5" ) ) ) +
			  Method( 100, "Outer", LogOf( 102, 103 ) + R"({ _class = "CPulseDoc_Step_CallMethod" m_NodeID = 104 m_MethodNodeID = 200 m_Children = [ )" +
						  Inparam( 105, "retval", "m" ) + R"( ] m_ArgumentPorts = { m = { m_ValueSource = "port" } } },)",
					  R"({ m_Name = "n" m_Type = "PVAL_INT" })" ) +
			  Expression( 103, "\"outer \" + $n", { { "$n", 100, "n" } } ) + Expression( 105, "$n * 3", { { "$n", 100, "n" } } ) +
			  Method( 200, "Inner", LogOf( 202, 203 ), R"({ m_Name = "m" m_Type = "PVAL_INT" })" ) +
			  Expression( 203, "\"inner \" + $m", { { "$m", 200, "m" } } ),
		  { "outer 5", "inner 15" }, 3 },
	};
}

class PulseDocCallTest : public testing::TestWithParam<CallCase_t>
{
};

TEST_P( PulseDocCallTest, CallsReachTheirMethods )
{
	const CallCase_t &callCase = GetParam();
	const std::string text = PulseDocText( callCase.m_Children );
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( text );
	ASSERT_TRUE( pCompiled->m_bCompiled ) << pCompiled->Messages();
	std::vector<CUtlString> messages;
	EXPECT_TRUE( PulseGraphDef_Validate( pCompiled->m_Result.m_Definition, &messages ) );
	const KeyValues3 *pChunks = pCompiled->m_Result.m_Definition.FindMember( "m_Chunks" );
	ASSERT_NE( pChunks, nullptr );
	EXPECT_EQ( pChunks->GetArrayElementCount(), callCase.m_nChunks );
	// A call into a method is fixed up to the start of the method's chunk, and each method
	// called has one. (A loop runs its body as a call within its own chunk.)
	std::set<int64_t> called;
	for ( int nChunk = 0; nChunk < pChunks->GetArrayElementCount(); ++nChunk )
	{
		const KeyValues3 *pInstructions = pChunks->GetArrayElement( nChunk )->FindMember( "m_Instructions" );
		for ( int i = 0; pInstructions && i < pInstructions->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pInstruction = pInstructions->GetArrayElement( i );
			if ( std::string( pInstruction->GetMemberString( "m_nCode", "" ) ).rfind( "PULSE_CALL", 0 ) != 0 )
				continue;
			const int64_t nTarget = pInstruction->GetMemberInt64( "m_nChunk", -1 );
			if ( nTarget == nChunk )
				continue;
			EXPECT_EQ( pInstruction->GetMemberInt64( "m_nDestInstruction", 0 ), 0 ) << "C" << nChunk << " I" << i;
			EXPECT_GE( nTarget, 0 );
			EXPECT_LT( nTarget, pChunks->GetArrayElementCount() );
			called.insert( nTarget );
		}
	}
	EXPECT_EQ( int( called.size() ), callCase.m_nChunks - 1 );
	EXPECT_EQ( RunPulseDoc( text ), callCase.m_Lines );
}

INSTANTIATE_TEST_SUITE_P( Calls, PulseDocCallTest, testing::ValuesIn( CallCases() ),
						  []( const testing::TestParamInfo<CallCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace
