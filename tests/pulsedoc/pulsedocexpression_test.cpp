// Expression text into parts and back: the parts written back as text parse to the same
// parts and compute the same value, and a text a user writes that doesn't parse keeps
// what was written with the reason, and the graph doesn't compile while it stands.

#include <gtest/gtest.h>

#include "pulsedoc_lib/nodes/pulsedocexpression.h"
#include "pulsedoctest.h"

namespace
{
// Main logs the expression node 4; the graph has the variable "lives" (3) and the
// constant "BONUS" (10).
std::string LoggingExpression( const std::string &text )
{
	std::string escaped;
	for ( char c : text )
	{
		if ( c == '"' || c == '\\' )
			escaped += '\\';
		escaped += c;
	}
	return PulseDocText(
		R"({ _class = "CPulseDoc_VariableDefinition" m_NodeID = 10 m_Name = "lives" m_Value = { m_Type = "PVAL_INT" m_Value = 3 } },)"
		R"({ _class = "CPulseDoc_ConstantDefinition" m_NodeID = 11 m_Name = "BONUS" m_Value = { m_Type = "PVAL_INT" m_Value = 10 } },)" +
		MainRunning( R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 m_Children = [ { _class = "CPulseDoc_Connection_Inparam" m_SourceNode = 4 m_SourceOutparamName = "retval" m_ThisInparamName = "pText" } ] },)" ) +
		R"({ _class = "CPulseDoc_Value_Expression" m_NodeID = 4 m_ExprText = ")" + escaped + "\" }," );
}

class PulseDocExpressionTextTest : public testing::TestWithParam<const char *>
{
};

TEST_P( PulseDocExpressionTextTest, WrittenBackItParsesAgainAndComputesTheSame )
{
	const std::string text = std::string( "\"\" + (" ) + GetParam() + ")";
	const std::vector<std::string> lines = RunPulseDoc( LoggingExpression( text ) );
	ASSERT_EQ( lines.size(), 1u );

	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( LoggingExpression( text ) );
	auto *pExpression = dynamic_cast<CPulseDoc_Value_Expression *>( pCompiled->m_pDoc->FindNode( 4 ) );
	ASSERT_NE( pExpression, nullptr );
	const std::string rendered = pExpression->RenderText().Get();
	ASSERT_TRUE( pExpression->SetExpressionText( rendered.c_str() ) ) << rendered << ": " << pExpression->GetBadParseExprString();
	EXPECT_EQ( std::string( pExpression->RenderText().Get() ), rendered );
	EXPECT_EQ( RunPulseDoc( LoggingExpression( rendered ) ), lines ) << rendered;
}

INSTANTIATE_TEST_SUITE_P( Texts, PulseDocExpressionTextTest,
						  testing::Values( "1 + 2 * 3", "(1 + 2) * 3", "10 - 4 - 3", "10 - (4 - 3)", "lives * 2 + BONUS", "-lives + 1", "!(lives > 2)",
										   "lives >= 3 && BONUS != 10 || false", "lives > 2 ? \"many\" : \"few\"", "7 / 2.0 % 2", "1.5 * -2",
										   "\"a\" + lives + (1 + 2)" ) );

TEST( PulseDocExpressionText, ATextThatDoesntParseKeepsWhatWasWrittenAndItsReason )
{
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( LoggingExpression( "lives + 1" ) );
	ASSERT_TRUE( pCompiled->m_bCompiled ) << pCompiled->Messages();
	auto *pExpression = dynamic_cast<CPulseDoc_Value_Expression *>( pCompiled->m_pDoc->FindNode( 4 ) );
	ASSERT_NE( pExpression, nullptr );

	EXPECT_FALSE( pExpression->SetExpressionText( "lives + (" ) );
	EXPECT_STREQ( pExpression->GetExprText(), "lives + (" );
	EXPECT_STRNE( pExpression->GetBadParseExprString(), "" );
	CPulseDocMessages messages;
	PulseDocCompileResult_t result;
	EXPECT_FALSE( PulseDoc_Compile( pCompiled->m_pDoc.get(), &messages, &result ) );
	EXPECT_NE( std::string( messages.ToText().Get() ).find( "node 4: Expression 'lives + (': " ), std::string::npos ) << messages.ToText().Get();

	// Saved and loaded again, the text is still there to repair.
	CUtlString saved, error;
	ASSERT_TRUE( pCompiled->m_pDoc->SaveText( &saved, &error ) ) << error.Get();
	EXPECT_NE( std::string( saved.Get() ).find( "m_ExprText = \"lives + (\"" ), std::string::npos );

	EXPECT_TRUE( pExpression->SetExpressionText( "lives + 2" ) );
	EXPECT_STREQ( pExpression->GetBadParseExprString(), "" );
	messages = CPulseDocMessages();
	EXPECT_TRUE( PulseDoc_Compile( pCompiled->m_pDoc.get(), &messages, &result ) ) << messages.ToText().Get();
}

} // namespace
