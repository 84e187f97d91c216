// Loading what users hand it: malformed files are refused with a message and never crash,
// a node of a class this build doesn't know survives a save and stops the compile, and
// value nodes connected in a circle are refused naming one of them.

#include <gtest/gtest.h>

#include <cstdio>
#include <fstream>

#include "pulsedoctest.h"

namespace
{
const char *const s_Header =
	"--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tpulse:3c9a4e71-2f0b-4d8e-9a61-5be0c7d2f418 ---\n";

struct MalformedCase_t
{
	const char *m_pName;
	std::string m_Text;
	std::string m_Message; // the first message
	bool m_bLoads;      // a document comes of it, with what it could read
};

std::ostream &operator<<( std::ostream &stream, const MalformedCase_t &malformed )
{
	return stream << malformed.m_pName;
}

std::vector<MalformedCase_t> MalformedCases()
{
	return {
		{ "Empty", "", "1:1: missing KV3 header: the text must start with a line like \"--- kv3 encoding=text:<guid> format=<name>:<guid> ---\"", false },
		{ "NotKV3", "hello world\n", "1:1: missing KV3 header: the text must start with a line like \"--- kv3 encoding=text:<guid> format=<name>:<guid> ---\"", false },
		{ "HeaderOnly", s_Header, "2:1: expected a value, found the end of the text", false },
		{ "UnclosedRoot", std::string( s_Header ) + "{ _class = \"CPulseDoc_Root\" m_Children = [ \n", "3:1: unexpected end of the text: the array opened at 2:42 has no closing ']'", false },
		{ "RootIsAnArray", std::string( s_Header ) + "[ 1, 2 ]\n", "the root is of type 'array', not a table of a document", false },
		{ "RootOfAnotherClass", std::string( s_Header ) + "{ _class = \"CPulseDoc_Group\" }\n", "the root is a 'CPulseDoc_Group', not a 'CPulseDoc_Root'", false },
		{ "RootWithoutClass", std::string( s_Header ) + "{ m_Children = [] }\n", "the root is a table without _class, not a 'CPulseDoc_Root'", false },
		{ "UnterminatedString", std::string( s_Header ) + "{ _class = \"CPulseDoc_Root\" m_DomainIdentifier = \"Base }\n", "2:50: unterminated string: a string in \"...\" ends on its own line (use \"\"\" for text on several lines)", false },
		{ "ChildrenNotAnArray", std::string( s_Header ) + "{ _class = \"CPulseDoc_Root\" m_Children = 5 }\n", "warning: m_Children: a 'int' where an array belongs (left at its default)", true },
		{ "ChildIsANumber", std::string( s_Header ) + "{ _class = \"CPulseDoc_Root\" m_Children = [ 5, ] }\n", "warning: m_Children[0]: Class data is a 'int', not a table", true },
		{ "ChildWithoutClass", std::string( s_Header ) + "{ _class = \"CPulseDoc_Root\" m_Children = [ { m_NodeID = 3 }, ] }\n", "node 3: warning: Missing document node '(no _class)', replacing with 'CPulseDoc_UnknownFallback'", true },
		{ "NodeIDIsAString", std::string( s_Header ) + "{ _class = \"CPulseDoc_Root\" m_Children = [ { _class = \"CPulseDoc_Group\" m_NodeID = \"x\" }, ] }\n", "warning: m_NodeID: a 'string' where an integer belongs (left at its default)", true },
		{ "DuplicateNodeIDs", PulseDocText( Group( 4, "" ) + Group( 4, "" ) ), "node 4: Node id 4 is taken by Group [ID=4] already; ids are unique in a document", true },
		{ "PositionIsAString", PulseDocText( R"({ _class = "CPulseDoc_Group" m_NodeID = 4 m_vPosition = "left" },)" ), "node 4: warning: m_vPosition: a 'string' where an array belongs (left at its default)", true },
		{ "ConnectionsAreATable", PulseDocText( R"({ _class = "CPulseDoc_Group" m_NodeID = 4 m_Children = { a = 1 } },)" ), "node 4: warning: m_Children: a 'table' where an array belongs (left at its default)", true },
		{ "LiteralOfTheWrongKind", PulseDocText( MainRunning( R"({ _class = "CPulseDoc_Step_DebugLog" m_NodeID = 3 pText = [ 1, 2 ] },)" ) ), "node 3: Malformed PVAL_STRING literal 'array'", true },
	};
}

class PulseDocMalformedTest : public testing::TestWithParam<MalformedCase_t>
{
};

TEST_P( PulseDocMalformedTest, IsReportedWhereItIsWrong )
{
	const MalformedCase_t &malformed = GetParam();
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( malformed.m_Text );
	EXPECT_EQ( pCompiled->m_bLoaded, malformed.m_bLoads ) << pCompiled->Messages();
	ASSERT_FALSE( pCompiled->m_Messages.GetMessages().empty() );
	EXPECT_EQ( std::string( pCompiled->m_Messages.GetMessages().front().ToText().Get() ), malformed.m_Message );
	// An error at load stops the compile; only warnings let it go on.
	if ( pCompiled->m_Messages.GetErrorCount() > 0 )
		EXPECT_FALSE( pCompiled->m_bCompiled ) << pCompiled->Messages();
	if ( !malformed.m_bLoads )
		EXPECT_GT( pCompiled->m_Messages.GetErrorCount(), 0 );
}

// The same faults through a file on disk: the text is the same, and a file that isn't
// there says which.
TEST_P( PulseDocMalformedTest, LoadsFromAFileAsFromText )
{
	const MalformedCase_t &malformed = GetParam();
	const std::string path = testing::TempDir() + "malformed_" + malformed.m_pName + ".tpulse";
	{
		std::ofstream file( path, std::ios::binary );
		file << malformed.m_Text;
	}
	CPulseDoc doc( &PulseDocTestDescriptions() );
	CPulseDocMessages messages;
	const bool bLoaded = doc.LoadFile( path.c_str(), &messages );
	EXPECT_EQ( bLoaded, malformed.m_bLoads );
	PulseDocCompileResult_t result;
	if ( bLoaded )
		PulseDoc_Compile( &doc, &messages, &result, {}, path.c_str() );
	ASSERT_FALSE( messages.GetMessages().empty() );
	EXPECT_EQ( std::string( messages.GetMessages().front().ToText().Get() ), malformed.m_Message );
	std::remove( path.c_str() );
}

INSTANTIATE_TEST_SUITE_P( Files, PulseDocMalformedTest, testing::ValuesIn( MalformedCases() ),
						  []( const testing::TestParamInfo<MalformedCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace

namespace
{
TEST( PulseDocLoadFile, AFileThatIsntThereIsNamed )
{
	const std::string path = testing::TempDir() + "no_such_folder/missing.tpulse";
	CPulseDoc doc( &PulseDocTestDescriptions() );
	CPulseDocMessages messages;
	EXPECT_FALSE( doc.LoadFile( path.c_str(), &messages ) );
	EXPECT_GT( messages.GetErrorCount(), 0 );
	ASSERT_FALSE( messages.GetMessages().empty() );
	EXPECT_EQ( std::string( messages.GetMessages().front().ToText().Get() ), path + ": No such file or directory" );
}

// A node of a class nobody knows, with data of its own, in a group between two steps.
const std::string s_UnknownNode = R"({ _class = "CPulseDoc_Step_Teleport" m_NodeID = 3 m_Destination = "spawn" m_vOffset = [ 1, 2, 3 ] m_Options = { bKeepVelocity = true nTries = 4 } },)";

std::string SavedText( const CPulseDoc &doc )
{
	CUtlString text, error;
	EXPECT_TRUE( doc.SaveText( &text, &error ) ) << error.Get();
	return text.Get() ? text.Get() : "";
}

TEST( PulseDocUnknownClass, KeepsTheNodesDataThroughASave )
{
	const std::string text = PulseDocText( MainRunning( LogText( 4, "before" ) + s_UnknownNode + LogText( 5, "after" ) ) );
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( text );
	ASSERT_TRUE( pCompiled->m_bLoaded ) << pCompiled->Messages();
	const std::string saved = SavedText( *pCompiled->m_pDoc );
	for ( const char *pLine : { "_class = \"CPulseDoc_Step_Teleport\"", "m_NodeID = 3", "m_Destination = \"spawn\"", "bKeepVelocity = true", "nTries = 4" } )
		EXPECT_NE( saved.find( pLine ), std::string::npos ) << pLine << " is not in\n" << saved;
	// Kept in its place among the group's steps.
	EXPECT_LT( saved.find( "\"before\"" ), saved.find( "CPulseDoc_Step_Teleport" ) );
	EXPECT_LT( saved.find( "CPulseDoc_Step_Teleport" ), saved.find( "\"after\"" ) );
	EXPECT_EQ( saved.find( "CPulseDoc_UnknownFallback" ), std::string::npos ) << saved;

	// Saved and loaded again, it saves to the same bytes, and still doesn't compile.
	std::unique_ptr<PulseDocCompiled_t> pReloaded = CompilePulseDocText( saved );
	ASSERT_TRUE( pReloaded->m_bLoaded ) << pReloaded->Messages();
	EXPECT_EQ( SavedText( *pReloaded->m_pDoc ), saved );
	EXPECT_FALSE( pReloaded->m_bCompiled );
}

struct UnknownCase_t
{
	const char *m_pName;
	std::string m_Children;
	std::string m_Error;
};

std::ostream &operator<<( std::ostream &stream, const UnknownCase_t &unknown )
{
	return stream << unknown.m_pName;
}

std::vector<UnknownCase_t> UnknownCases()
{
	const std::string tail =
		". Either delete this node from the outliner, edit the .tpulse file in notepad to repair, or post on #tessel2-pulse-scripting for help.";
	return {
		{ "StepInAGroup", MainRunning( LogText( 4, "before" ) + s_UnknownNode ), "node 3: Missing node class 'CPulseDoc_Step_Teleport'" + tail },
		{ "ValueNodeReadByALog",
		  MainRunning( LogOf( 4, 9 ) ) + R"({ _class = "CPulseDoc_Value_Dice" m_NodeID = 9 nSides = 6 },)",
		  "node 9: Missing node class 'CPulseDoc_Value_Dice'" + tail },
		{ "UnreachedNodeAmongTheRoots", MainRunning( LogText( 4, "hi" ) ) + R"({ _class = "CPulseDoc_Comment" m_NodeID = 12 m_Text = "later" },)",
		  "node 12: Missing node class 'CPulseDoc_Comment'" + tail },
		{ "FlowTargetOfAMethod",
		  R"({ _class = "CPulseDoc_Inflow_Method" m_NodeID = 1 m_Name = "Main" m_Children = [ { _class = "CPulseDoc_Connection_Outflow" m_DestFlowNodeID = 7 } ] },)"
		  R"({ _class = "CPulseDoc_Outflow_Teleport" m_NodeID = 7 },)",
		  "node 7: Missing node class 'CPulseDoc_Outflow_Teleport'" + tail },
	};
}

class PulseDocUnknownClassTest : public testing::TestWithParam<UnknownCase_t>
{
};

TEST_P( PulseDocUnknownClassTest, LoadsWithAWarningAndFailsToCompileNamingTheNode )
{
	const UnknownCase_t &unknown = GetParam();
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( PulseDocText( unknown.m_Children ) );
	ASSERT_TRUE( pCompiled->m_bLoaded ) << pCompiled->Messages();
	EXPECT_FALSE( pCompiled->m_bCompiled );
	EXPECT_FALSE( pCompiled->m_Result.m_bGenerated );
	bool bFound = false;
	for ( const PulseDocMessage_t &message : pCompiled->m_Messages.GetMessages() )
		bFound |= std::string( message.ToText().Get() ) == unknown.m_Error;
	EXPECT_TRUE( bFound ) << pCompiled->Messages();
}

INSTANTIATE_TEST_SUITE_P( Nodes, PulseDocUnknownClassTest, testing::ValuesIn( UnknownCases() ),
						  []( const testing::TestParamInfo<UnknownCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace

namespace
{
struct CycleCase_t
{
	const char *m_pName;
	std::string m_Children;
	std::string m_Error;
};

std::ostream &operator<<( std::ostream &stream, const CycleCase_t &cycle )
{
	return stream << cycle.m_pName;
}

std::vector<CycleCase_t> CycleCases()
{
	return {
		{ "ExpressionReadingItself", MainRunning( LogOf( 3, 5 ) ) + Expression( 5, "$a + 1", { { "$a", 5, "retval" } } ), "node 5: Value nodes read each other in a circle: Expression [ID=5] reads its own result" },
		{ "TwoExpressionsReadingEachOther",
		  MainRunning( LogOf( 3, 5 ) ) + Expression( 5, "$a + 1", { { "$a", 6, "retval" } } ) + Expression( 6, "$b * 2", { { "$b", 5, "retval" } } ), "node 5: Value nodes read each other in a circle: Expression [ID=5] reads its own result" },
		{ "ThreeValuesInARing",
		  MainRunning( LogOf( 3, 5 ) ) + Expression( 5, "$a + 1", { { "$a", 6, "retval" } } ) +
			  R"({ _class = "CPulseDoc_Value_Copy" m_NodeID = 6 m_Children = [ )" + Inparam( 7, "retval", "value" ) + R"( ] m_Arg = { m_ValueSource = "port" } },)" +
			  Expression( 7, "$c - 1", { { "$c", 5, "retval" } } ),
		  "node 5: Value nodes read each other in a circle: Expression [ID=5] reads its own result" },
	};
}

class PulseDocValueCycleTest : public testing::TestWithParam<CycleCase_t>
{
};

TEST_P( PulseDocValueCycleTest, IsRefusedNamingANodeOfTheCycle )
{
	const CycleCase_t &cycle = GetParam();
	std::unique_ptr<PulseDocCompiled_t> pCompiled = CompilePulseDocText( PulseDocText( cycle.m_Children ) );
	ASSERT_TRUE( pCompiled->m_bLoaded ) << pCompiled->Messages();
	EXPECT_FALSE( pCompiled->m_bCompiled );
	EXPECT_FALSE( pCompiled->m_Result.m_bGenerated );
	ASSERT_FALSE( pCompiled->m_Messages.GetMessages().empty() );
	EXPECT_EQ( std::string( pCompiled->m_Messages.GetMessages().front().ToText().Get() ), cycle.m_Error );
}

INSTANTIATE_TEST_SUITE_P( Values, PulseDocValueCycleTest, testing::ValuesIn( CycleCases() ),
						  []( const testing::TestParamInfo<CycleCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace
