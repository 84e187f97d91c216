// Running graphs: the instruction families, yields and resumes, cancels, spawns, tags,
// the instruction limit, poison, reloads and the entries of an instance.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <limits>
#include <sstream>

#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"
#include "tests/pulse_runtime/pulsetestgraph.h"

// A cell that parks cursors and counts the cancels it is asked for; only a hard cancel
// ends its yield. Its "Fork" spawns a child at m_Child with an inherited tag.
class CPulseCell_Test_Hold : public CPulseCell_BaseYieldingInflow
{
	SCHEMA_DERIVED_CLASS( CPulseCell_Test_Hold, CPulseCell_BaseYieldingInflow )
	SCHEMA_FIELD( CPulse_ResumePoint, m_Released, {} )
	SCHEMA_FIELD( CPulse_ResumePoint, m_Child, {} )
	const CPulse_ResumePoint *GetResumePoint() const override { return &m_Released; }
	void GatherOutflows( std::vector<CPulse_OutflowConnection *> *pList ) override
	{
		pList->push_back( &m_Released );
		pList->push_back( &m_Child );
	}
	void OnCancelRequested( CPulseExecCursor *pCursor, PulseCursorCancelPriority_t ePriority ) const override
	{
		++s_nCancelRequests;
		if ( ePriority == PulseCursorCancelPriority_t::HardCancel )
			CPulseCell_BaseYieldingInflow::OnCancelRequested( pCursor, ePriority );
	}
	static inline int s_nCancelRequests = 0;
};

namespace
{
const std::filesystem::path s_Samples = std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content/pulse/samples";

std::string ReadSample( const char *pName )
{
	std::ifstream file( s_Samples / pName, std::ios::binary );
	std::ostringstream text;
	text << file.rdbuf();
	std::string content = text.str();
	return content.substr( content.find( '\n' ) + 1 ); // the body, without the header
}

// What the test functions saw.
struct Probe_t
{
	bool m_bHadTag = false;
	std::string m_Text;
	int m_nTagCount = -1;
	bool m_bReloadedAtOnce = false;
} g_Probe;
CPulseSystem *g_pReloadSystem = nullptr;
CPulseGraphDefHandle g_hReloadTarget;

int Hold( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	context.m_pCursor->Yield( context.m_pCell );
	return 0;
}

int Fork( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	CPulseVariant team;
	team.SetInt( 3 );
	context.m_pCursor->AddTag( PulseSymbol_t( "team" ), team, true, false );
	PulseCursorID_t nChild = -1;
	context.m_pCursor->SpawnChildCursor( static_cast<const CPulseCell_Test_Hold *>( context.m_pCell )->m_Child, nullptr, &nChild );
	return 0;
}

int Probe( const PulseCallContext_t &context, const PulseArgPack &in, PulseArgPack & )
{
	CPulseVariant team;
	team.SetInt( 3 );
	g_Probe.m_bHadTag = context.m_pCursor->HasTag( PulseSymbol_t( "team" ), team );
	g_Probe.m_Text = in.GetString( 0 );
	return 0;
}

int TagScoped( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	for ( int i = 0; i < 2; ++i )
	{
		CPulseVariant value;
		value.SetInt( i );
		context.m_pCursor->AddTag( PulseSymbol_t( "scoped" ), value, false, true );
	}
	return 0;
}

int CountTags( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	g_Probe.m_nTagCount = int( context.m_pCursor->GetTags().size() );
	return 0;
}

int ReloadNow( const PulseCallContext_t &context, const PulseArgPack &, PulseArgPack & )
{
	g_pReloadSystem->ReloadDefinition( g_hReloadTarget );
	g_Probe.m_bReloadedAtOnce = context.m_pInstance->GetDefinition() == g_hReloadTarget.Get();
	return 0;
}

const PulseFunctionBinding_t s_TestFunctions[] = {
	{ "CPulseCell_Test_Hold", "Hold", "Hold", "", {}, {}, PULSE_FUNCTION_FLAG_YIELDS, nullptr, 0, Hold },
	{ "CPulseCell_Test_Hold", "Fork", "Fork", "", {}, {}, PULSE_FUNCTION_FLAG_FLOW, nullptr, 0, Fork },
	{ "CPulseTestProbeLib", "Probe", "Probe", "", { { "pText", CPulseValueFullType( PVAL_STRING ) } }, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, Probe },
	{ "CPulseTestProbeLib", "TagScoped", "Tag Scoped", "", {}, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, TagScoped },
	{ "CPulseTestProbeLib", "CountTags", "Count Tags", "", {}, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, CountTags },
	{ "CPulseTestProbeLib", "ReloadNow", "Reload Now", "", {}, {}, PULSE_FUNCTION_FLAG_LIBRARY, nullptr, 0, ReloadNow },
};
const CPulseFunctionRegistrar s_Registrars[] = { CPulseFunctionRegistrar( &s_TestFunctions[ 0 ] ), CPulseFunctionRegistrar( &s_TestFunctions[ 1 ] ),
												 CPulseFunctionRegistrar( &s_TestFunctions[ 2 ] ), CPulseFunctionRegistrar( &s_TestFunctions[ 3 ] ),
												 CPulseFunctionRegistrar( &s_TestFunctions[ 4 ] ), CPulseFunctionRegistrar( &s_TestFunctions[ 5 ] ) };

class PulseExecTest : public PulseGraphTest
{
protected:
	void SetUp() override
	{
		static const bool s_bRegistered = ( RegisterKV3TransferClass<CPulseCell_Test_Hold>( PulseRuntime_GetTypeScope() ), true );
		(void)s_bRegistered;
		g_Probe = {};
		CPulseCell_Test_Hold::s_nCancelRequests = 0;
	}
};

// ---- Operators: one method computes a op b into its result.

struct OperatorCase_t
{
	const char *m_pName;
	const char *m_pCode;
	const char *m_pResultType;
	const char *m_pType;
	const char *m_pA;
	const char *m_pB;
	const char *m_pExpected; // KV3 text of the result
	bool m_bReportsDivideByZero;
};

class PulseOperatorTest : public PulseExecTest, public testing::WithParamInterface<OperatorCase_t>
{
};

TEST_P( PulseOperatorTest, ComputesTheTypedResult )
{
	const OperatorCase_t &c = GetParam();
	const char *pRightType = strcmp( c.m_pCode, "ELEMENT_ACCESS" ) == 0 ? "PVAL_INT" : strncmp( c.m_pCode, "SCALE", 5 ) == 0 ? "PVAL_FLOAT" : c.m_pType;
	char body[ 2048 ];
	snprintf( body, sizeof( body ), R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "%s" m_nReg0 = 0 m_nReg1 = 1 m_nReg2 = 2 }, { m_nCode = "RETURN_VALUE" m_nReg0 = 0 } ]
		m_Registers = [ { m_nReg = 0 m_Type = "%s" }, { m_nReg = 1 m_Type = "%s" }, { m_nReg = 2 m_Type = "%s" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Op" m_RegisterMap = { m_Outparams = { a = 1 b = 2 } } } ] })",
			  c.m_pCode, c.m_pResultType, c.m_pType, pRightType );
	CBasePulseGraphInstance &instance = Start( body );
	auto valueOf = []( const char *pType, const char *pText, PulseArgPack *pPack, const char *pName ) {
		KeyValues3 kv;
		CUtlString error;
		ASSERT_TRUE( LoadKV3FromText( &kv, &error, pText, strlen( pText ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) ) << error.Get();
		CPulseValueFullType type = CPulseValueFullType::Parse( pType );
		void *pValue = pPack->AddCopy( PulseSymbol_t( pName ), type, nullptr );
		PulseValue_LoadKV3( type, pValue, &kv, nullptr );
	};
	PulseArgPack args, expected;
	valueOf( c.m_pType, c.m_pA, &args, "a" );
	valueOf( pRightType, c.m_pB, &args, "b" );
	valueOf( c.m_pResultType, c.m_pExpected, &expected, "expected" );
	CPulseVariant result;
	ASSERT_TRUE( instance.RunMethod( "Op", &args, nullptr, &result ) );
	ASSERT_EQ( result.GetType(), expected.GetType( 0 ) );
	CUtlString resultText;
	PulseValue_ToText( result.GetType(), result.GetValue(), &resultText );
	EXPECT_TRUE( PulseValue_IsEqual( result.GetType(), result.GetValue(), expected.GetValue( 0 ) ) ) << resultText.Get();
	EXPECT_EQ( m_Log.Contains( "Divide by zero!" ), c.m_bReportsDivideByZero );
	EXPECT_EQ( m_System.GetFailedCursorCount(), 0 );
}

const OperatorCase_t s_Operators[] = {
	{ "IntegersWrap", "ADD", "PVAL_INT", "PVAL_INT", "2147483647", "1", "-2147483648", false },
	{ "ProductsWrap", "MUL", "PVAL_INT", "PVAL_INT", "65536", "65537", "65536", false },
	{ "RemainderTakesTheSignOfTheDividend", "MOD", "PVAL_INT", "PVAL_INT", "-7", "3", "-1", false },
	{ "RemainderByZeroIsZero", "MOD", "PVAL_INT", "PVAL_INT", "5", "0", "0", true },
	{ "MostNegativeRemainderMinusOne", "MOD", "PVAL_INT", "PVAL_INT", "-2147483648", "-1", "0", false },
	{ "FloatsDivide", "DIV", "PVAL_FLOAT", "PVAL_FLOAT", "1.0", "4.0", "0.25", false },
	{ "FloatRemainder", "MOD", "PVAL_FLOAT", "PVAL_FLOAT", "7.5", "2.0", "1.5", false },
	{ "FloatsCompareWithTolerance", "EQ", "PVAL_BOOL", "PVAL_FLOAT", "1.0005", "1.0", "true", false },
	{ "GameTimesCompareExactly", "EQ", "PVAL_BOOL", "PVAL_GAMETIME", "1.0000001", "1.0", "false", false },
	{ "StringsCompareWithoutCase", "EQ", "PVAL_BOOL", "PVAL_STRING", "\"Hello\"", "\"hELLO\"", "true", false },
	{ "StringsJoin", "ADD", "PVAL_STRING", "PVAL_STRING", "\"left \"", "null", "\"left \"", false },
	{ "LessIsFalseOnNaN", "LT", "PVAL_BOOL", "PVAL_FLOAT", "\"nan\"", "1.0", "false", false },
	{ "LessOrEqualOfInts", "LTE", "PVAL_BOOL", "PVAL_INT", "3", "3", "true", false },
	{ "ColorsCompareTheirAlpha", "EQ", "PVAL_BOOL", "PVAL_COLOR_RGB", "[ 1, 2, 3, 4 ]", "[ 1, 2, 3, 5 ]", "false", false },
	{ "DeadHandlesAreEqual", "EQ", "PVAL_BOOL", "PVAL_EHANDLE", "12345", "null", "true", false },
	{ "ElementIndexBelowIsTheFirst", "ELEMENT_ACCESS", "PVAL_FLOAT", "PVAL_VEC3", "[ 1.0, 2.0, 3.0 ]", "-5", "1.0", false },
	{ "ElementIndexAboveIsTheLast", "ELEMENT_ACCESS", "PVAL_FLOAT", "PVAL_VEC3", "[ 1.0, 2.0, 3.0 ]", "9", "3.0", false },
	{ "VectorsScale", "SCALE", "PVAL_VEC3", "PVAL_VEC3", "[ 1.0, -2.0, 3.0 ]", "2.0", "[ 2.0, -4.0, 6.0 ]", false },
	{ "VectorsScaleInversely", "SCALE_INV", "PVAL_VEC2", "PVAL_VEC2", "[ 1.0, -2.0 ]", "4.0", "[ 0.25, -0.5 ]", false },
	{ "VectorsAdd", "ADD", "PVAL_VEC4", "PVAL_VEC4", "[ 1.0, 2.0, 3.0, 4.0 ]", "[ 0.5, 0.5, 0.5, 0.5 ]", "[ 1.5, 2.5, 3.5, 4.5 ]", false },
};
INSTANTIATE_TEST_SUITE_P( Families, PulseOperatorTest, testing::ValuesIn( s_Operators ), []( const testing::TestParamInfo<OperatorCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST_F( PulseExecTest, NegatingZeroGivesNegativeZero )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "NEGATE" m_nReg0 = 0 m_nReg1 = 1 }, { m_nCode = "RETURN_VALUE" m_nReg0 = 0 } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_FLOAT" }, { m_nReg = 1 m_Type = "PVAL_FLOAT" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Neg" } ] })" );
	CPulseVariant result;
	ASSERT_TRUE( instance.RunMethod( "Neg", nullptr, nullptr, &result ) );
	ASSERT_TRUE( result.GetFloat() );
	EXPECT_EQ( *result.GetFloat(), 0.0f );
	EXPECT_TRUE( std::signbit( *result.GetFloat() ) );
}

// Float operations hand their result on to the next one without a trip through memory;
// a register another operation overwrote in between must be read afresh. Each stale read
// below would change the answer (12 or 4 instead of 3).
TEST_F( PulseExecTest, AFloatChainSeesEveryWriteBetweenItsOperations )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [
			{ m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 }, { m_nCode = "GET_CONST" m_nReg0 = 1 m_nConstIdx = 1 },
			{ m_nCode = "MUL" m_nReg0 = 2 m_nReg1 = 0 m_nReg2 = 1 }, { m_nCode = "ADD" m_nReg0 = 2 m_nReg1 = 2 m_nReg2 = 2 },
			{ m_nCode = "COPY" m_nReg0 = 2 m_nReg1 = 1 }, { m_nCode = "SUB" m_nReg0 = 0 m_nReg1 = 2 m_nReg2 = 0 },
			{ m_nCode = "MUL" m_nReg0 = 3 m_nReg1 = 0 m_nReg2 = 1 }, { m_nCode = "GET_CONST" m_nReg0 = 3 m_nConstIdx = 0 },
			{ m_nCode = "ADD" m_nReg0 = 0 m_nReg1 = 3 m_nReg2 = 0 }, { m_nCode = "RETURN_VALUE" m_nReg0 = 0 } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_FLOAT" }, { m_nReg = 1 m_Type = "PVAL_FLOAT" }, { m_nReg = 2 m_Type = "PVAL_FLOAT" }, { m_nReg = 3 m_Type = "PVAL_FLOAT" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" } ]
		m_Constants = [ { m_Type = "PVAL_FLOAT" m_Value = 2.0 }, { m_Type = "PVAL_FLOAT" m_Value = 3.0 } ] })" );
	CPulseVariant result;
	ASSERT_TRUE( instance.RunMethod( "Main", nullptr, nullptr, &result ) );
	ASSERT_TRUE( result.GetFloat() );
	EXPECT_EQ( *result.GetFloat(), 3.0f );
}

TEST_F( PulseExecTest, CopyBetweenTypesLeavesTheTargetAndConvertConverts )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [
			{ m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 }, { m_nCode = "GET_CONST" m_nReg0 = 1 m_nConstIdx = 1 },
			{ m_nCode = "COPY" m_nReg0 = 0 m_nReg1 = 1 }, { m_nCode = "CONVERT_VALUE" m_nReg0 = 2 m_nReg1 = 1 },
			{ m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VALUE" m_nReg0 = 0 } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" }, { m_nReg = 1 m_Type = "PVAL_FLOAT" }, { m_nReg = 2 m_Type = "PVAL_STRING" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" }, { _class = "CPulseCell_Step_DebugLog" } ]
		m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = { pText = 2 } } m_FuncName = "Run" m_nCellIndex = 1 } ]
		m_Constants = [ { m_Type = "PVAL_INT" m_Value = 7 }, { m_Type = "PVAL_FLOAT" m_Value = 2.5 } ] })" );
	CPulseVariant result;
	ASSERT_TRUE( instance.RunMethod( "Main", nullptr, nullptr, &result ) );
	ASSERT_TRUE( result.GetInt() );
	EXPECT_EQ( *result.GetInt(), 7 );
	ASSERT_EQ( m_System.GetGraphLog().size(), 1u );
	EXPECT_STREQ( m_System.GetGraphLog()[ 0 ].Get(), "2.5" );
}

// ---- Yields, resumes and handles

TEST_F( PulseExecTest, AYieldedCursorResumesAndItsHandleGoesStale )
{
	CBasePulseGraphInstance &instance = Start( ReadSample( "yield.tpulsec" ) );
	PulseCursorHandle handle;
	ASSERT_TRUE( instance.RunMethod( "Start", nullptr, &handle ) );
	ASSERT_FALSE( handle.IsEmpty() );
	ASSERT_TRUE( instance.ResolveCursor( handle ) );
	EXPECT_EQ( instance.GetYieldedCursorCount(), 1 );

	// Completing the yield from outside takes a fresh token at once: the old handle no
	// longer resolves while the resume waits in the queue.
	const CPulseCell_Base *pYieldCell = instance.ResolveCursor( handle )->GetYieldCell();
	instance.CompleteYieldedAt( pYieldCell, PulseCursorExecResult_t::Succeeded, pYieldCell->GetResumePoint() );
	EXPECT_FALSE( instance.ResolveCursor( handle ) );
	EXPECT_EQ( m_System.GetQueuedResumeCount(), 1 );
	EXPECT_EQ( m_System.DrainResumeQueue(), 1 );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	ASSERT_EQ( m_System.GetGraphLog().size(), 2u );
	EXPECT_STREQ( m_System.GetGraphLog()[ 1 ].Get(), "released" );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Succeeded ), 1 );
}

TEST_F( PulseExecTest, ResumesQueueFirstInFirstOut )
{
	CBasePulseGraphInstance &instance = Start( ReadSample( "yield.tpulsec" ) );
	for ( int i = 0; i < 3; ++i )
		instance.RunMethod( "Start", nullptr );
	EXPECT_EQ( instance.GetYieldedCursorCount(), 3 );
	ASSERT_TRUE( instance.FireEvent( "Go", nullptr ) );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	std::vector<std::string> lines;
	for ( const CUtlString &line : m_System.GetGraphLog() )
		lines.emplace_back( line.Get() );
	EXPECT_EQ( lines, std::vector<std::string>( { "waiting for the go", "waiting for the go", "waiting for the go", "go!", "released", "released", "released" } ) );
}

TEST_F( PulseExecTest, WaitsWakeOnTheVirtualClockAndRestartTheCount )
{
	CBasePulseGraphInstance &instance = Start( ReadSample( "wait.tpulsec" ) );
	instance.RunMethod( "Main", nullptr );
	EXPECT_EQ( m_System.GetScheduledWakeCount(), 1 );
	double flNext = 0.0;
	ASSERT_TRUE( m_System.GetNextWakeTime( &flNext ) );
	EXPECT_DOUBLE_EQ( flNext, 1.0 );
	m_System.AdvanceTo( 0.99 );
	EXPECT_EQ( m_System.GetGraphLog().size(), 1u );
	m_System.AdvanceTo( 2.0 );
	EXPECT_EQ( m_System.GetGraphLog().size(), 3u );
	m_System.AdvanceTo( 10.0 );
	EXPECT_EQ( m_System.GetGraphLog().size(), 4u );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
}

// A cursor that waits no time in an endless loop must not hold the clock: each advance
// fires the wakes that were due when it began, and the new ones wait for the next.
TEST_F( PulseExecTest, AWaitOfNoTimeInALoopFiresOncePerAdvance )
{
	std::string text = ReadSample( "wait.tpulsec" );
	auto replace = [ &text ]( const std::string &from, const std::string &to ) {
		size_t at = text.find( from );
		ASSERT_NE( at, std::string::npos ) << from;
		text.replace( at, from.size(), to );
	};
	replace( "{ m_Type = \"PVAL_FLOAT\" m_Value = 1.0 }", "{ m_Type = \"PVAL_FLOAT\" m_Value = 0.0 }" );
	replace( "{ m_Type = \"PVAL_INT\" m_Value = 3 }", "{ m_Type = \"PVAL_INT\" m_Value = 2000000000 }" );
	CBasePulseGraphInstance &instance = Start( text );
	instance.RunMethod( "Main", nullptr );
	EXPECT_EQ( m_System.GetGraphLog().size(), 1u );
	m_System.AdvanceTo( 1.0 );
	EXPECT_EQ( m_System.GetGraphLog().size(), 2u );
	m_System.AdvanceTo( 1.0 );
	EXPECT_EQ( m_System.GetGraphLog().size(), 3u );
	EXPECT_EQ( instance.GetYieldedCursorCount(), 1 );
}

// Three runs of about 9,000 instructions each: the limit counts per run.
const char *const s_LongLoops = R"({ m_Chunks = [ { m_Instructions = [
		{ m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 }, { m_nCode = "GET_CONST" m_nReg0 = 1 m_nConstIdx = 1 },
		{ m_nCode = "GET_CONST" m_nReg0 = 2 m_nConstIdx = 2 }, { m_nCode = "GET_CONST" m_nReg0 = 5 m_nConstIdx = 3 },
		{ m_nCode = "GET_CONST" m_nReg0 = 3 m_nConstIdx = 3 },
		{ m_nCode = "ADD" m_nReg0 = 3 m_nReg1 = 3 m_nReg2 = 0 }, { m_nCode = "LTE" m_nReg0 = 4 m_nReg1 = 3 m_nReg2 = 1 },
		{ m_nCode = "JUMP_COND" m_nReg0 = 4 m_nDestInstruction = 5 },
		{ m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 },
		{ m_nCode = "ADD" m_nReg0 = 5 m_nReg1 = 5 m_nReg2 = 0 }, { m_nCode = "LT" m_nReg0 = 4 m_nReg1 = 5 m_nReg2 = 2 },
		{ m_nCode = "JUMP_COND" m_nReg0 = 4 m_nDestInstruction = 4 }, { m_nCode = "RETURN_VOID" } ]
	m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" }, { m_nReg = 1 m_Type = "PVAL_INT" }, { m_nReg = 2 m_Type = "PVAL_INT" }, { m_nReg = 3 m_Type = "PVAL_INT" },
	                { m_nReg = 4 m_Type = "PVAL_BOOL" }, { m_nReg = 5 m_Type = "PVAL_INT" }, { m_nReg = 6 m_Type = "PVAL_FLOAT" } ] } ]
	m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" },
	            { _class = "CPulseCell_Inflow_Wait" m_WakeResume = { m_nDestChunk = 0 m_nInstruction = 9 } } ]
	m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = { flDurationSec = 6 } } m_FuncName = "Wait" m_nCellIndex = 1 } ]
	m_Constants = [ { m_Type = "PVAL_INT" m_Value = 1 }, { m_Type = "PVAL_INT" m_Value = INNER }, { m_Type = "PVAL_INT" m_Value = 3 }, { m_Type = "PVAL_INT" m_Value = 0 } ] })";

TEST_F( PulseExecTest, ALoopAcrossWaitsIsNoRunaway )
{
	std::string body = s_LongLoops;
	body.replace( body.find( "INNER" ), 5, "2990" );
	CBasePulseGraphInstance &instance = Start( body );
	instance.RunMethod( "Main", nullptr );
	// Its waits take no time, so each wakes on the next advance of the clock.
	for ( double flTime = 1.0; flTime <= 4.0; flTime += 1.0 )
		m_System.AdvanceTo( flTime );
	EXPECT_EQ( m_System.GetFailedCursorCount(), 0 );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Succeeded ), 1 );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
}

TEST_F( PulseExecTest, TheTenThousandAndFirstInstructionStopsTheCursor )
{
	// 5 set-up instructions, then 3 per pass: pass 3332 ends at instruction 10001.
	std::string body = s_LongLoops;
	body.replace( body.find( "INNER" ), 5, "3331" );
	CBasePulseGraphInstance &instance = Start( body );
	instance.RunMethod( "Main", nullptr );
	EXPECT_EQ( m_System.GetFailedCursorCount(), 1 );
	EXPECT_TRUE( m_Log.Contains( "Probable infinite loop detected! Terminating pulse cursor after 10001 consecutive instructions (test.tpulsec (uid=1))" ) );
	EXPECT_EQ( instance.GetCursorCount(), 0 );

	// One pass fewer fits: 10,000 instructions run.
	body = s_LongLoops;
	body.replace( body.find( "INNER" ), 5, "3330" );
	CBasePulseGraphInstance &second = Start( body );
	second.RunMethod( "Main", nullptr );
	EXPECT_EQ( m_System.GetFailedCursorCount(), 1 );
	EXPECT_EQ( second.GetYieldedCursorCount(), 1 );
}

// ---- Cancels

const char *const s_HoldGraph = R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 },
		{ m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 1 }, { m_nCode = "RETURN_VOID" } ]
	m_Registers = [ { m_nReg = 0 m_Type = "PVAL_STRING" m_OriginName = "note" } ] } ]
	m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" }, { _class = "CPulseCell_Step_DebugLog" },
	            { _class = "CPulseCell_Test_Hold" m_nEditorNodeID = 12 m_Released = { m_nDestChunk = 0 m_nInstruction = 1 } } ]
	m_InvokeBindings = [ { m_FuncName = "Hold" m_nCellIndex = 2 }, { m_RegisterMap = { m_Inparams = { pText = 0 } } m_FuncName = "Run" m_nCellIndex = 1 } ]
	m_Constants = [ { m_Type = "PVAL_STRING" m_Value = "went on" } ] })";

TEST_F( PulseExecTest, CancelsAskTheCellOncePerPriorityAndAHardOneEndsTheCursor )
{
	CBasePulseGraphInstance &instance = Start( s_HoldGraph );
	PulseCursorHandle handle;
	instance.RunMethod( "Main", nullptr, &handle );
	CPulseExecCursor *pCursor = instance.ResolveCursor( handle );
	ASSERT_TRUE( pCursor );
	pCursor->RequestCancel( PulseCursorCancelPriority_t::SoftCancel );
	EXPECT_EQ( CPulseCell_Test_Hold::s_nCancelRequests, 1 );
	pCursor->RequestCancel( PulseCursorCancelPriority_t::SoftCancel );
	pCursor->RequestCancel( PulseCursorCancelPriority_t::CancelOnSucceeded );
	EXPECT_EQ( CPulseCell_Test_Hold::s_nCancelRequests, 1 );
	ASSERT_TRUE( instance.ResolveCursor( handle ) );
	pCursor->RequestCancel( PulseCursorCancelPriority_t::HardCancel );
	EXPECT_EQ( CPulseCell_Test_Hold::s_nCancelRequests, 2 );
	EXPECT_FALSE( instance.ResolveCursor( handle ) );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Canceled ), 1 );
	EXPECT_TRUE( m_System.GetGraphLog().empty() );
}

TEST_F( PulseExecTest, CancelOnSucceededLetsTheCellFinishThenEndsTheCursor )
{
	CBasePulseGraphInstance &instance = Start( s_HoldGraph );
	PulseCursorHandle handle;
	instance.RunMethod( "Main", nullptr, &handle );
	CPulseExecCursor *pCursor = instance.ResolveCursor( handle );
	ASSERT_TRUE( pCursor );
	pCursor->RequestCancel( PulseCursorCancelPriority_t::CancelOnSucceeded );
	EXPECT_EQ( CPulseCell_Test_Hold::s_nCancelRequests, 0 );
	ASSERT_TRUE( instance.ResolveCursor( handle ) );
	const CPulseCell_Base *pCell = pCursor->GetYieldCell();
	instance.CompleteYieldedAt( pCell, PulseCursorExecResult_t::Succeeded, pCell->GetResumePoint() );
	m_System.DrainResumeQueue();
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Canceled ), 1 );
	EXPECT_TRUE( m_System.GetGraphLog().empty() );
}

TEST_F( PulseExecTest, AbortCancelsEveryCursorParkedAtTheCell )
{
	std::string body = ReadSample( "yield.tpulsec" );
	body.replace( body.find( "m_FuncName = \"Resume\"" ), 21, "m_FuncName = \"Abort\"" );
	CBasePulseGraphInstance &instance = Start( body );
	instance.RunMethod( "Start", nullptr );
	instance.RunMethod( "Start", nullptr );
	instance.FireEvent( "Go", nullptr );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Canceled ), 2 );
	EXPECT_FALSE( m_Log.Contains( "released" ) );
}

// ---- Spawns and tags

TEST_F( PulseExecTest, ASpawnedChildCopiesRegistersAndInheritedTags )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 },
			{ m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" },
			{ m_nCode = "LIBRARY_INVOKE" m_nInvokeBindingIndex = 1 }, { m_nCode = "RETURN_VOID" } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_STRING" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" },
		            { _class = "CPulseCell_Test_Hold" m_Child = { m_nDestChunk = 0 m_nInstruction = 3 } } ]
		m_InvokeBindings = [ { m_FuncName = "Fork" m_nCellIndex = 1 }, { m_RegisterMap = { m_Inparams = { pText = 0 } } m_FuncName = "CPulseTestProbeLib::Probe" } ]
		m_Constants = [ { m_Type = "PVAL_STRING" m_Value = "from the parent" } ] })" );
	instance.RunMethod( "Main", nullptr );
	EXPECT_TRUE( g_Probe.m_bHadTag );
	EXPECT_EQ( g_Probe.m_Text, "from the parent" );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Succeeded ), 2 );
}

TEST_F( PulseExecTest, ScopedTagsLeaveWithTheCallOnePerReturn )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [
		{ m_Instructions = [ { m_nCode = "PULSE_CALL_SYNC" m_nChunk = 1 m_nCallInfoIndex = 0 }, { m_nCode = "LIBRARY_INVOKE" m_nInvokeBindingIndex = 1 }, { m_nCode = "RETURN_VOID" } ] },
		{ m_Instructions = [ { m_nCode = "LIBRARY_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" },
		            { _class = "CPulseCell_Inflow_Method" m_nEditorNodeID = 20 m_EntryChunk = 1 m_MethodName = "Inner" } ]
		m_InvokeBindings = [ { m_FuncName = "TagScoped" }, { m_FuncName = "CountTags" } ]
		m_CallInfos = [ { m_PortName = "Call" m_CallMethodID = 20 } ] })" );
	instance.RunMethod( "Main", nullptr );
	EXPECT_EQ( g_Probe.m_nTagCount, 1 );
}

// A call to a point of the graph (m_CallMethodID -1) runs in a frame of its own and
// comes back; in the same chunk the callee sees the caller's registers, and what it
// writes there is gone after the return.
TEST_F( PulseExecTest, ACallToAPointInTheSameChunkSeesTheCallersRegistersAndComesBack )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [
			{ m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 },
			{ m_nCode = "PULSE_CALL_SYNC" m_nChunk = 0 m_nDestInstruction = 4 m_nCallInfoIndex = 0 },
			{ m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 },
			{ m_nCode = "RETURN_VOID" },
			{ m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 },
			{ m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 1 },
			{ m_nCode = "RETURN_VOID" } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_STRING" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" }, { _class = "CPulseCell_Step_DebugLog" } ]
		m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = { pText = 0 } } m_FuncName = "Run" m_nCellIndex = 1 } ]
		m_CallInfos = [ { m_PortName = "Call" } ]
		m_Constants = [ { m_Type = "PVAL_STRING" m_Value = "before" }, { m_Type = "PVAL_STRING" m_Value = "inside" } ] })" );
	instance.RunMethod( "Main", nullptr );
	ASSERT_EQ( m_System.GetGraphLog().size(), 2u );
	EXPECT_STREQ( m_System.GetGraphLog()[ 0 ].Get(), "before" );
	EXPECT_STREQ( m_System.GetGraphLog()[ 1 ].Get(), "before" );
	EXPECT_EQ( m_System.GetCompletedCursorCount( PulseCursorExecResult_t::Succeeded ), 1 );
}

TEST( PulseBinderTest, ACallToAPointPassesNothing )
{
	EXPECT_EQ( RefusalOf( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "PULSE_CALL_SYNC" m_nChunk = 0 m_nDestInstruction = 1 m_nCallInfoIndex = 0 }, { m_nCode = "RETURN_VOID" } ]
		m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" } ]
		m_CallInfos = [ { m_RegisterMap = { m_Inparams = { x = 0 } } } ] })" ),
			   "CallInfo0: a call to a point of the graph takes no arguments and gives no result\n" );
}

// ---- Poison

TEST_F( PulseExecTest, RunawayCursorCreationPoisonsTheInstanceForGood )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "PULSE_CALL_ASYNC_FIRE" m_nChunk = 0 m_nCallInfoIndex = 0 }, { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_nEditorNodeID = 30 m_EntryChunk = 0 m_MethodName = "Storm" } ]
		m_CallInfos = [ { m_PortName = "Call" m_CallMethodID = 30 } ] })" );
	CUtlString name;
	instance.GetDebugName( &name );
	EXPECT_STREQ( name.Get(), "test.tpulsec (uid=1)" );
	instance.RunMethod( "Storm", nullptr );
	EXPECT_TRUE( instance.IsPoisoned() );
	EXPECT_EQ( m_Log.Count( "Probable runaway cursor creation detected! Permanently disabling this graph instance (test.tpulsec (uid=1))" ), 1 );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	EXPECT_GT( m_System.GetFailedCursorCount(), 0 );
	instance.GetDebugName( &name );
	EXPECT_STREQ( name.Get(), "POISONED test.tpulsec (uid=1)" );

	int nFailed = m_System.GetFailedCursorCount();
	instance.RunMethod( "Storm", nullptr );
	EXPECT_TRUE( m_Log.Contains( "Preventing new cursor (POISONED test.tpulsec (uid=1))" ) );
	EXPECT_EQ( m_System.GetFailedCursorCount(), nFailed );
	instance.OnRunawayCursors();
	EXPECT_EQ( m_Log.Count( "Probable runaway cursor creation detected!" ), 1 );
}

// ---- Reload

TEST_F( PulseExecTest, AReloadCarriesAWaitingCursorIntoTheNewDefinition )
{
	std::string body = ReadSample( "wait.tpulsec" );
	CBasePulseGraphInstance &instance = Start( body, "pulse/wait.tpulsec" );
	instance.RunMethod( "Main", nullptr );
	m_System.AdvanceTo( 1.5 );
	ASSERT_EQ( m_System.GetGraphLog().size(), 2u );

	std::string edited = body;
	edited.replace( edited.find( "\"tick \"" ), 7, "\"TICK \"" );
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hNew = LoadTestGraph( edited, &messages, "pulse/wait.tpulsec" );
	ASSERT_TRUE( hNew );
	m_System.ReloadDefinition( hNew );
	EXPECT_EQ( instance.GetDefinition(), hNew.Get() );
	EXPECT_EQ( instance.GetYieldedCursorCount(), 1 );
	EXPECT_EQ( m_System.GetScheduledWakeCount(), 1 );
	m_System.AdvanceTo( 10.0 );
	std::vector<std::string> lines;
	for ( const CUtlString &line : m_System.GetGraphLog() )
		lines.emplace_back( line.Get() );
	// The tick counter came back from its register: the new code goes on at 3.
	EXPECT_EQ( lines, std::vector<std::string>( { "tick 1", "tick 2", "TICK 3", "done waiting" } ) );
}

TEST_F( PulseExecTest, AReloadDropsACursorWhoseNodeIsGone )
{
	CBasePulseGraphInstance &instance = Start( ReadSample( "wait.tpulsec" ), "pulse/wait.tpulsec" );
	instance.RunMethod( "Main", nullptr );
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hNew = LoadTestGraph( ReadSample( "hello.tpulsec" ), &messages, "pulse/wait.tpulsec" );
	ASSERT_TRUE( hNew );
	m_System.ReloadDefinition( hNew );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	EXPECT_EQ( m_System.GetLostCursorCount(), 1 );
	EXPECT_TRUE( m_Log.Contains( "WARNING: Pulse failed to restore yielded cursor - no yielding cell or landing pad (72:Wait)" ) );
	EXPECT_EQ( m_System.GetScheduledWakeCount(), 0 );
}

TEST_F( PulseExecTest, AReloadDuringARunWaitsForTheOutermostRunToEnd )
{
	CBasePulseGraphInstance &instance = Start( R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "LIBRARY_INVOKE" m_nInvokeBindingIndex = 0 }, { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" } ]
		m_InvokeBindings = [ { m_FuncName = "CPulseTestProbeLib::ReloadNow" } ] })",
											   "pulse/reload.tpulsec" );
	PulseGraphMessages_t messages;
	g_hReloadTarget = LoadTestGraph( ReadSample( "hello.tpulsec" ), &messages, "pulse/reload.tpulsec" );
	g_pReloadSystem = &m_System;
	instance.RunMethod( "Main", nullptr );
	EXPECT_FALSE( g_Probe.m_bReloadedAtOnce );
	EXPECT_EQ( instance.GetDefinition(), g_hReloadTarget.Get() );
	g_hReloadTarget = CPulseGraphDefHandle();
}

// ---- Entries, variables

TEST_F( PulseExecTest, EntriesAndVariablesByUnknownNamesDoNothing )
{
	CBasePulseGraphInstance &instance = Start( ReadSample( "variables.tpulsec" ) );
	EXPECT_FALSE( instance.FireEvent( "Main", nullptr ) );
	EXPECT_FALSE( instance.RunMethod( "main", nullptr ) );
	EXPECT_EQ( instance.GetCursorCount(), 0 );
	KeyValues3 value;
	value.SetString( "40" );
	EXPECT_FALSE( instance.SetVariable( "Counter", value ) );
	ASSERT_TRUE( instance.SetVariable( "counter", value ) );
	CPulseVariant counter;
	ASSERT_TRUE( instance.GetVariable( "counter", &counter ) );
	ASSERT_TRUE( counter.GetInt() );
	EXPECT_EQ( *counter.GetInt(), 40 );
	instance.RunMethod( "Main", nullptr );
	EXPECT_STREQ( m_System.GetGraphLog()[ 0 ].Get(), "counter is now 50" );
}

TEST_F( PulseExecTest, ObservableListenersOfOtherGraphsHearOnlyTheirVariable )
{
	const char *pBlackboard = R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 }, { m_nCode = "SET_VAR_OBSERVABLE" m_nVar = 0 m_nReg0 = 0 },
			{ m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Raise" } ]
		m_Vars = [ { m_Name = "alarm" m_Type = "PVAL_INT" m_bIsObservable = true m_bIsPublicBlackboardVariable = true m_nEditorNodeID = 5 } ]
		m_Constants = [ { m_Type = "PVAL_INT" m_Value = 3 } ] })";
	CBasePulseGraphInstance &blackboard = Start( pBlackboard, "pulse/alarm.tpulsec" );
	auto listener = [ & ]( const char *pResource, int nNode ) {
		char body[ 2048 ];
		snprintf( body, sizeof( body ), R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "CONVERT_VALUE" m_nReg0 = 2 m_nReg1 = 1 }, { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 },
				{ m_nCode = "RETURN_VOID" } ] m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" }, { m_nReg = 1 m_Type = "PVAL_INT" }, { m_nReg = 2 m_Type = "PVAL_STRING" } ] } ]
			m_Cells = [ { _class = "CPulseCell_Inflow_ObservableVariableListener" m_EntryChunk = 0 m_nBlackboardReference = 0
			              m_RegisterMap = { m_Outparams = { previous_value = 0 current_value = 1 } } }, { _class = "CPulseCell_Step_DebugLog" } ]
			m_BlackboardReferences = [ { m_BlackboardResource = "%s" m_nNodeID = %d m_NodeName = "alarm" } ]
			m_InvokeBindings = [ { m_RegisterMap = { m_Inparams = { pText = 2 } } m_FuncName = "Run" m_nCellIndex = 1 } ] })",
				  pResource, nNode );
		PulseGraphMessages_t messages;
		CPulseGraphDefHandle hDef = LoadTestGraph( body, &messages, "pulse/listener.tpulsec" );
		EXPECT_TRUE( hDef ) << messages.ToText().Get();
		auto pInstance = std::make_unique<CBasePulseGraphInstance>( &m_System );
		EXPECT_TRUE( pInstance->SetDefinition( hDef ) );
		return pInstance;
	};
	auto pHears = listener( "pulse/alarm.tpulsec", 5 );
	auto pOtherVariable = listener( "pulse/alarm.tpulsec", 6 );
	auto pOtherGraph = listener( "pulse/siren.tpulsec", 5 );
	blackboard.RunMethod( "Raise", nullptr );
	ASSERT_EQ( m_System.GetGraphLog().size(), 1u );
	EXPECT_STREQ( m_System.GetGraphLog()[ 0 ].Get(), "3" );
}
} // namespace
