// Validation of what users get wrong when they write a document: each document has one
// fault and gets its message naming the node, and none of them compiles.

#include <gtest/gtest.h>

#include "pulsedoctest.h"

namespace
{
struct BrokenCase_t
{
	const char *m_pName;
	std::string m_Children;
	std::string m_Message; // the first message
};

std::ostream &operator<<( std::ostream &stream, const BrokenCase_t &brokenCase )
{
	return stream << brokenCase.m_pName;
}

const std::string s_Hello = R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 pText = { m_LiteralValueTypeWhenSaved = "PVAL_STRING" m_LiteralValue = "hi" } },)";

std::vector<BrokenCase_t> BrokenCases()
{
	return {
		{ "MethodNameWithADollar",
		  R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = 1 m_Name = "$Main" },)", "node 1: Node name is not valid: Illegal character: '$' ($Main)" },
		{ "MethodWithoutAName", R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = 1 },)", "node 1: Node name is not valid: Empty name not allowed ()" },
		{ "StepWithAName", MainRunning( R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 m_Name = "log" pText = { m_LiteralValue = "hi" } },)" ),
		  "node 3: Node should not have a name (log)" },
		{ "BranchBeforeTheLastStep",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_If" m_NodeID = 4 m_Condition = { m_LiteralValueTypeWhenSaved = "PVAL_BOOL" m_LiteralValue = true } },)" +
					   s_Hello ),
		  "node 4: No-default-outflow must be the last child" },
		{ "ConnectionIntoAnInputTheNodeHasnt",
		  MainRunning( R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 m_Children = [ { _class = "CPulseDoc_Connection_Inparam" m_SourceNode = 4 m_SourceOutparamName = "retval" m_ThisInparamName = "pTxet" } ] pText = { m_LiteralValue = "hi" } },)" ) +
			  R"({ _class = "CPulseDoc_Value_Expression" m_NodeID = 4 m_ExprText = "1" },)",
		  "node 3: Dest param 'pTxet' doesn't exist on parent Debug Log [ID=3]" },
		{ "ConnectionFromANodeThatIsntThere",
		  MainRunning( R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 m_Children = [ { _class = "CPulseDoc_Connection_Inparam" m_SourceNode = 44 m_SourceOutparamName = "retval" m_ThisInparamName = "pText" } ] pText = { m_ValueSource = "port" } },)" ),
		  "node 3: Destination Debug Log [ID=3]: Inparam source node not found: 44" },
		{ "OutflowThatTheNodeHasnt",
		  MainRunning( R"({ _class = "CPulseDoc_Outflow_If" m_NodeID = 3 m_Children = [ { _class = "CPulseDoc_Connection_Outflow" m_SourceOutflowName = "Maybe" m_DestFlowNodeID = 2 } ] m_Condition = { m_LiteralValue = true } },)" ),
		  "node 3: Source outflow 'Maybe' doesn't exist on parent Continue If [ID=3]" },
		{ "SetOfAVariableThatIsntThere", MainRunning( R"({ _class = "CPulseDoc_Step_SetVar" m_NodeID = 3 m_VarDefID = 77 m_Value = { m_LiteralValue = 1 } },)" ),
		  "node 3: No target variable" },
		{ "CallOfAMethodThatIsntThere", MainRunning( R"({ _class = "CPulseDoc_Step_CallMethod" m_NodeID = 3 m_MethodNodeID = 77 },)" ), "node 3: Target Input not found (77)" },
		{ "EventThatTheGameDoesntHave",
		  R"({ _class = "CPulseDoc_Flow_Generic" m_NodeID = 1 m_GenericNodeType = "OnExplode" m_Children = [ { _class = "CPulseDoc_Connection_Outflow" m_DestFlowNodeID = 3 } ] },)" +
			  s_Hello,
		  "node 1: Node 'OnExplode' is no longer present" },
		{ "CastToATypeNoValueHas",
		  MainRunning( R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 m_Children = [ { _class = "CPulseDoc_Connection_Inparam" m_SourceNode = 4 m_SourceOutparamName = "retval" m_ThisInparamName = "pText" } ] pText = { m_ValueSource = "port" } },)" ) +
			  R"({ _class = "CPulseDoc_Cast" m_NodeID = 4 m_TargetType = "PVAL_VOID" m_Source = { m_UserRefinedType = "PVAL_INT" m_LiteralValue = 1 } },)",
		  "node 4: Cast to 'PVAL_VOID': no value can have that type" },
	};
}

class PulseDocValidationTest : public testing::TestWithParam<BrokenCase_t>
{
};

TEST_P( PulseDocValidationTest, IsRefusedWithItsMessage )
{
	const BrokenCase_t &brokenCase = GetParam();
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( PulseDocText( brokenCase.m_Children ) );
	ASSERT_TRUE( pCompiled->m_bLoaded ) << pCompiled->Messages();
	EXPECT_FALSE( pCompiled->m_bCompiled );
	EXPECT_FALSE( pCompiled->m_Result.m_bGenerated );
	ASSERT_FALSE( pCompiled->m_Messages.GetMessages().empty() );
	const std::string first = pCompiled->m_Messages.GetMessages().front().ToText().Get();
	EXPECT_EQ( first.substr( 0, brokenCase.m_Message.size() ), brokenCase.m_Message ) << pCompiled->Messages();
}

INSTANTIATE_TEST_SUITE_P( Faults, PulseDocValidationTest, testing::ValuesIn( BrokenCases() ),
						  []( const testing::TestParamInfo<BrokenCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace
