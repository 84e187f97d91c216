// Binding: generic operators to typed forms, and the refusals of validation.

#include <gtest/gtest.h>

#include "core/kv3/kv3serialize.h"
#include "tests/pulse_runtime/pulsetestgraph.h"

namespace
{
// A chunk of three registers (result, left, right) running one operator, then a return.
std::string OperatorGraph( const char *pCode, const char *pResult, const char *pLeft, const char *pRight )
{
	char body[ 1024 ];
	snprintf( body, sizeof( body ), R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "%s" m_nReg0 = 0 m_nReg1 = 1 m_nReg2 = 2 }, { m_nCode = "RETURN_VOID" } ]
		m_Registers = [ { m_nReg = 0 m_Type = "%s" }, { m_nReg = 1 m_Type = "%s" }, { m_nReg = 2 m_Type = "%s" } ] } ] })",
			  pCode, pResult, pLeft, pRight );
	return body;
}

struct TypedCase_t
{
	const char *m_pGeneric;
	const char *m_pResult;
	const char *m_pLeft;
	const char *m_pRight;
	PulseInstructionCode_t m_eTyped; // INVALID: refused
};

class PulseTypedBindingTest : public testing::TestWithParam<TypedCase_t>
{
};

TEST_P( PulseTypedBindingTest, PicksTheFormOfTheOperandTypes )
{
	const TypedCase_t &c = GetParam();
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = LoadTestGraph( OperatorGraph( c.m_pGeneric, c.m_pResult, c.m_pLeft, c.m_pRight ), &messages );
	if ( c.m_eTyped == PulseInstructionCode_t::INVALID )
	{
		EXPECT_FALSE( hDef );
		ASSERT_FALSE( messages.m_Errors.empty() );
		EXPECT_EQ( std::string( messages.m_Errors[ 0 ].Get() ).rfind( "C0:I0 (", 0 ), 0u ) << messages.m_Errors[ 0 ].Get();
		return;
	}
	ASSERT_TRUE( hDef ) << messages.ToText().Get();
	EXPECT_EQ( int( hDef->GetChunk( 0 )->GetCode( 0 ) ), int( c.m_eTyped ) ) << PulseInstructionCode_GetName( int( hDef->GetChunk( 0 )->GetCode( 0 ) ) );
	// The stored code stays generic: it is what a save writes.
	EXPECT_STREQ( PulseInstructionCode_GetName( int( hDef->GetChunk( 0 )->m_Instructions[ 0 ].m_nCode ) ), c.m_pGeneric );
}

using enum PulseInstructionCode_t;
const TypedCase_t s_TypedCases[] = {
	{ "ADD", "PVAL_INT", "PVAL_INT", "PVAL_INT", ADD_INT },
	{ "ADD", "PVAL_FLOAT", "PVAL_FLOAT", "PVAL_FLOAT", ADD_FLOAT },
	{ "ADD", "PVAL_STRING", "PVAL_STRING", "PVAL_STRING", ADD_STRING },
	{ "ADD", "PVAL_VEC3_WORLDSPACE", "PVAL_VEC3", "PVAL_VEC3_WORLDSPACE", ADD_VEC3_VEC3WS },
	{ "ADD", "PVAL_GAMETIME", "PVAL_FLOAT", "PVAL_GAMETIME", ADD_FLOAT_GAMETIME },
	{ "SUB", "PVAL_VEC3", "PVAL_VEC3_WORLDSPACE", "PVAL_VEC3_WORLDSPACE", SUB_VEC3WS_VEC3WS },
	{ "SUB", "PVAL_FLOAT", "PVAL_GAMETIME", "PVAL_GAMETIME", SUB_GAMETIME },
	{ "MUL", "PVAL_INT", "PVAL_INT", "PVAL_INT", MUL_INT },
	{ "DIV", "PVAL_FLOAT", "PVAL_FLOAT", "PVAL_FLOAT", DIV_FLOAT },
	{ "MOD", "PVAL_INT", "PVAL_INT", "PVAL_INT", MOD_INT },
	{ "LT", "PVAL_BOOL", "PVAL_GAMETIME", "PVAL_GAMETIME", LT_GAMETIME },
	{ "LTE", "PVAL_BOOL", "PVAL_INT", "PVAL_INT", LTE_INT },
	{ "EQ", "PVAL_BOOL", "PVAL_EHANDLE", "PVAL_EHANDLE", EQ_EHANDLE },
	{ "NE", "PVAL_BOOL", "PVAL_STRING", "PVAL_STRING", NE_STRING },
	{ "EQ", "PVAL_BOOL", "PVAL_ARRAY:PVAL_INT", "PVAL_ARRAY:PVAL_INT", EQ_ARRAY },
	{ "SCALE", "PVAL_VEC2", "PVAL_VEC2", "PVAL_FLOAT", SCALE_VEC2 },
	{ "SCALE_INV", "PVAL_VEC4", "PVAL_VEC4", "PVAL_FLOAT", SCALE_INV_VEC4 },
	{ "ELEMENT_ACCESS", "PVAL_FLOAT", "PVAL_VEC3_WORLDSPACE", "PVAL_INT", ELEMENT_ACCESS_VEC3WS },
	{ "ELEMENT_ACCESS", "PVAL_INT", "PVAL_COLOR_RGB", "PVAL_INT", ELEMENT_ACCESS_COLOR_RGB },
	// No form: mixed or unsupported types, integer division, a result of the wrong type.
	{ "ADD", "PVAL_INT", "PVAL_INT", "PVAL_STRING", INVALID },
	{ "DIV", "PVAL_INT", "PVAL_INT", "PVAL_INT", INVALID },
	{ "ADD", "PVAL_VEC3_WORLDSPACE", "PVAL_VEC3_WORLDSPACE", "PVAL_VEC3_WORLDSPACE", INVALID },
	{ "LT", "PVAL_INT", "PVAL_INT", "PVAL_INT", INVALID },
	{ "ADD", "PVAL_FLOAT", "PVAL_INT", "PVAL_INT", INVALID },
	{ "EQ", "PVAL_BOOL", "PVAL_ARRAY:PVAL_INT", "PVAL_ARRAY:PVAL_FLOAT", INVALID },
	{ "ELEMENT_ACCESS", "PVAL_FLOAT", "PVAL_VEC3", "PVAL_FLOAT", INVALID },
};
INSTANTIATE_TEST_SUITE_P( Operators, PulseTypedBindingTest, testing::ValuesIn( s_TypedCases ) );

TEST( PulseBinding, NegateIsUnary )
{
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = LoadTestGraph( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "NEGATE" m_nReg0 = 0 m_nReg1 = 1 }, { m_nCode = "RETURN_VOID" } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_VEC3" }, { m_nReg = 1 m_Type = "PVAL_VEC3" } ] } ] })", &messages );
	ASSERT_TRUE( hDef ) << messages.ToText().Get();
	EXPECT_EQ( hDef->GetChunk( 0 )->GetCode( 0 ), NEGATE_VEC3 );
}

struct RefusalCase_t
{
	const char *m_pName;
	const char *m_pBody;
	const char *m_pMessage;
};

class PulseValidationTest : public testing::TestWithParam<RefusalCase_t>
{
};

TEST_P( PulseValidationTest, RefusesWithAMessageNamingThePlace )
{
	std::string refusal = RefusalOf( GetParam().m_pBody );
	EXPECT_NE( refusal.find( GetParam().m_pMessage ), std::string::npos ) << refusal;
}

const RefusalCase_t s_Refusals[] = {
	{ "MissingOperand", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "COPY" m_nReg0 = 0 }, { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" } ] } ] })",
	  "C0:I0 (COPY): m_nReg1 is R-1, but the chunk has 1 register(s)" },
	{ "JumpOutOfChunk", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "JUMP" m_nDestInstruction = -3 } ] } ] })", "C0:I0 (JUMP): the destination I-3 is outside C0 (1 instruction(s))" },
	{ "CallIntoMissingChunk", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "PULSE_CALL_SYNC" m_nChunk = 4 m_nCallInfoIndex = 0 }, { m_nCode = "RETURN_VOID" } ] } ] })",
	  "C0:I0 (PULSE_CALL_SYNC): m_nCallInfoIndex is 0, but m_CallInfos has 0 entries" },
	{ "LeapIntoEmptyChunk", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CHUNK_LEAP" m_nChunk = 1 } ] }, {} ] })", "C0:I0 (CHUNK_LEAP): leaps to C1, which has no instructions" },
	{ "FallsOffTheEnd", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "NOP" } ] } ] })",
	  "C0:I0 (NOP): the last instruction of the chunk doesn't end its flow" },
	{ "ConditionNotBool", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "JUMP_COND" m_nReg0 = 0 }, { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" } ] } ] })",
	  "C0:I0 (JUMP_COND): the condition (R0) holds PVAL_INT, not PVAL_BOOL" },
	{ "VariableOfAnotherType", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "SET_VAR" m_nVar = 0 m_nReg0 = 0 }, { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_STRING" } ] } ]
		m_Vars = [ { m_Name = "speed" m_Type = "PVAL_FLOAT" } ] })",
	  "C0:I0 (SET_VAR): the register (R0) holds PVAL_STRING, but V0 'speed' is PVAL_FLOAT" },
	{ "BadVariableDefault", R"({ m_Vars = [ { m_Name = "speed" m_Type = "PVAL_FLOAT" m_DefaultValue = [ 1, 2 ] } ] })", "V0 'speed': the default value is no PVAL_FLOAT" },
	{ "RegisterNumberedWrongly", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 3 m_Type = "PVAL_INT" } ] } ] })", "C0: register 0 says it is R3" },
	{ "RegisterWithoutType", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 } ] } ] })",
	  "C0: R0 has 'PVAL_VOID', not a type a register can hold" },
	{ "DebugRecordsMiscounted", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] m_InstructionDebugInfos = [ {}, {} ] } ] })", "C0: 2 debug records for 1 instructions" },
	{ "FunctionUnknownToTheCell", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Step_DebugLog" } ] m_InvokeBindings = [ { m_FuncName = "Shout" m_nCellIndex = 0 } ] })",
	  "Invoke0 'Shout': Cell0 (CPulseCell_Step_DebugLog) has no function 'Shout'" },
	{ "ArgumentNotOfTheFunction", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_STRING" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Step_DebugLog" } ] m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = { text = 0 } } m_FuncName = "Run" m_nCellIndex = 0 } ] })",
	  "Invoke0 'Run': 'text' is not a parameter of CPulseCell_Step_DebugLog::Run" },
	{ "ArgumentThatCantConvert", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_TRANSFORM" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Step_DebugLog" } ] m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = { pText = 0 } } m_FuncName = "Run" m_nCellIndex = 0 } ] })",
	  "C0:I0 (CELL_INVOKE): 'pText' (R0) holds PVAL_TRANSFORM, which can't be passed as PVAL_STRING" },
	{ "InvokeOnAnEmptyCell", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ null ] m_InvokeBindings = [ { m_FuncName = "Run" m_nCellIndex = 0 } ] })",
	  "Invoke0 'Run': Cell0 is empty" },
	{ "LibraryFunctionUnknown", R"({ m_InvokeBindings = [ { m_FuncName = "Teleport" } ] })", "Invoke0 'Teleport': no library has a function 'Teleport'" },
	{ "EntryChunkMissing", R"({ m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 2 m_MethodName = "Main" } ] })", "Cell0 (CPulseCell_Inflow_Method): the entry chunk C2 does not exist" },
	{ "ArgumentRegisterMissing", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" m_RegisterMap = { m_Outparams = { n = 3 } } } ] })",
	  "Cell0 (CPulseCell_Inflow_Method): 'n' goes to R3, but C0 has 0 register(s)" },
	{ "ResumePointOutside", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Wait" m_WakeResume = { m_nDestChunk = 0 m_nInstruction = 5 } } ] })",
	  "Cell0 (CPulseCell_Inflow_Wait): the outflow '' goes to I5, outside C0 (1 instruction(s))" },
	{ "CallArgumentUnknownToTheMethod", R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_nEditorNodeID = 7 m_EntryChunk = 0 m_MethodName = "Square" } ]
		m_CallInfos = [ { m_RegisterMap = { m_Inparams = { x = 0 } } m_CallMethodID = 7 } ] })",
	  "CallInfo0: 'x' is not a parameter of method 'Square'" },
	{ "RegisterMapNotATable", R"({ m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = [ 1 ] } m_FuncName = "AssertTrue" } ] })", "Invoke0 'AssertTrue': m_Inparams is a 'array', not a table" },
};
INSTANTIATE_TEST_SUITE_P( Definitions, PulseValidationTest, testing::ValuesIn( s_Refusals ), []( const testing::TestParamInfo<RefusalCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST( PulseBinding, ValidateTakesACompilersKV3AndAnswersEveryFault )
{
	std::string text = PulseTestText( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "NOP" m_nReg0 = 2 }, { m_nCode = "JUMP" m_nDestInstruction = 9 }, { m_nCode = "NOP" } ] } ] })" );
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) );
	std::vector<CUtlString> messages;
	EXPECT_FALSE( PulseGraphDef_Validate( kv, &messages ) );
	ASSERT_EQ( messages.size(), 2u );
	EXPECT_STREQ( messages[ 0 ].Get(), "C0:I1 (JUMP): the destination I9 is outside C0 (3 instruction(s))" );
	EXPECT_STREQ( messages[ 1 ].Get(), "C0:I2 (NOP): the last instruction of the chunk doesn't end its flow (a return, jump or leap must follow)" );

	text = PulseTestText( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] } ] })" );
	ASSERT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) );
	messages.clear();
	EXPECT_TRUE( PulseGraphDef_Validate( kv, &messages ) );
	EXPECT_TRUE( messages.empty() );
}

TEST( PulseBinding, ARegisterFileBeyondSixteenBitOffsetsIsRefused )
{
	std::string registers;
	for ( int i = 0; i < 300; ++i )
		registers += "{ m_nReg = " + std::to_string( i ) + " m_Type = \"PVAL_RESOURCE_NAME\" },";
	std::string refusal = RefusalOf( "{ m_Chunks = [ { m_Instructions = [ { m_nCode = \"RETURN_VOID\" } ] m_Registers = [ " + registers + " ] } ] }" );
	EXPECT_NE( refusal.find( "C0: the registers need 67200 bytes, more than the 65535 their offsets reach" ), std::string::npos ) << refusal;
}
} // namespace
