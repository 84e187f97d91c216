// The Pulse interpreter against Lua 5.4 on the same computations: straight-line typed
// integer and float arithmetic, and a summing loop. Each benchmark reports the time of a
// whole computation and, as the counter ns_per_instruction, the time per executed
// instruction (Pulse's bound instructions; Lua's VM instructions, counted once by a
// count hook outside the timing). Goal: Pulse at or below Lua's time per instruction.
// FireEvent into a handler of one instruction: goal under 1 microsecond.

#include <benchmark/benchmark.h>

#include <lua.hpp>

#include <string>

#include "core/logging/logging.h"
#include "pulse_runtime_lib/exec/pulseargpack.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/system/pulsesystem.h"

namespace
{
constexpr int STRAIGHT_LINE_OPERATIONS = 3000;
constexpr int LOOP_COUNT = 2000;

const char *const s_Header = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";

// A method "Run" of one chunk that returns register 0; args a (R0) and b (R1).
std::string MethodGraph( const std::string &instructions, const std::string &registers, const std::string &constants )
{
	return std::string( s_Header ) + "{ m_Chunks = [ { m_Instructions = [ " + instructions + " { m_nCode = \"RETURN_VALUE\" m_nReg0 = 0 } ] m_Registers = [ " + registers +
		" ] } ] m_Cells = [ { _class = \"CPulseCell_Inflow_Method\" m_EntryChunk = 0 m_MethodName = \"Run\" m_RegisterMap = { m_Outparams = { a = 0 b = 1 } } } ]" +
		" m_Constants = [ " + constants + " ] }";
}

// a, b, c rotate through adds, subtractions and products: one typed instruction each.
std::string StraightLineGraph( const char *pType )
{
	std::string instructions, registers;
	const char *const ops[] = { "ADD", "MUL", "SUB" };
	for ( int i = 0; i < STRAIGHT_LINE_OPERATIONS; ++i )
		instructions += std::string( "{ m_nCode = \"" ) + ops[ i % 3 ] + "\" m_nReg0 = " + std::to_string( i % 3 ) + " m_nReg1 = " + std::to_string( ( i + 1 ) % 3 ) +
			" m_nReg2 = " + std::to_string( ( i + 2 ) % 3 ) + " },";
	for ( int i = 0; i < 3; ++i )
		registers += "{ m_nReg = " + std::to_string( i ) + " m_Type = \"" + pType + "\" },";
	return MethodGraph( instructions, registers, "" );
}

std::string StraightLineLua( bool bFloat )
{
	std::string body = bFloat ? "return function( a, b ) local c = 1.0\n" : "return function( a, b ) local c = 1\n";
	const char *const names[] = { "a", "b", "c" };
	const char *const ops[] = { "+", "*", "-" };
	for ( int i = 0; i < STRAIGHT_LINE_OPERATIONS; ++i )
		body += std::string( names[ i % 3 ] ) + " = " + names[ ( i + 1 ) % 3 ] + " " + ops[ i % 3 ] + " " + names[ ( i + 2 ) % 3 ] + "\n";
	return body + "return a end";
}

// sum = 0; for i = 1 .. b: sum += i; returns sum (R0).
std::string LoopGraph()
{
	return MethodGraph( R"({ m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 }, { m_nCode = "GET_CONST" m_nReg0 = 2 m_nConstIdx = 1 }, { m_nCode = "GET_CONST" m_nReg0 = 3 m_nConstIdx = 1 },
		{ m_nCode = "ADD" m_nReg0 = 0 m_nReg1 = 0 m_nReg2 = 2 }, { m_nCode = "ADD" m_nReg0 = 2 m_nReg1 = 2 m_nReg2 = 3 },
		{ m_nCode = "LTE" m_nReg0 = 4 m_nReg1 = 2 m_nReg2 = 1 }, { m_nCode = "JUMP_COND" m_nReg0 = 4 m_nDestInstruction = 3 },)",
		R"({ m_nReg = 0 m_Type = "PVAL_INT" }, { m_nReg = 1 m_Type = "PVAL_INT" }, { m_nReg = 2 m_Type = "PVAL_INT" }, { m_nReg = 3 m_Type = "PVAL_INT" },
		{ m_nReg = 4 m_Type = "PVAL_BOOL" })",
		R"({ m_Type = "PVAL_INT" m_Value = 0 }, { m_Type = "PVAL_INT" m_Value = 1 })" );
}

const char *const s_LoopLua = "return function( a, b ) local sum = 0 for i = 1, b do sum = sum + i end return sum end";

class CPulseBench
{
public:
	explicit CPulseBench( const std::string &text )
	{
		LoggingSystem_SetChannelMinimumSeverity( LOG_PULSE, LS_WARNING );
		PulseGraphMessages_t messages;
		m_hDef = PulseGraphDef_LoadText( text.data(), text.size(), "bench.tpulsec", &messages );
		m_bOk = m_hDef && PulseGraphDef_Bind( m_hDef.Get(), &messages ) && m_Instance.SetDefinition( m_hDef );
		m_Error = messages.ToText().Get();
	}
	bool m_bOk = false;
	std::string m_Error;
	CPulseSystem m_System;
	CPulseGraphDefHandle m_hDef;
	CBasePulseGraphInstance m_Instance { &m_System };
};

void RunPulse( benchmark::State &state, const std::string &text, PulseValueType_t eType, int nArgB, int64_t nInstructions )
{
	CPulseBench bench( text );
	if ( !bench.m_bOk )
	{
		state.SkipWithError( bench.m_Error.c_str() );
		return;
	}
	PulseArgPack args;
	CPulseValueFullType type( eType );
	void *pA = args.AddCopy( PulseSymbol_t( "a" ), type, nullptr );
	void *pB = args.AddCopy( PulseSymbol_t( "b" ), type, nullptr );
	if ( eType == PVAL_FLOAT )
	{
		*static_cast<float *>( pA ) = 1.0001f;
		*static_cast<float *>( pB ) = 0.9999f;
	}
	else
	{
		*static_cast<int32_t *>( pA ) = 3;
		*static_cast<int32_t *>( pB ) = nArgB;
	}
	CPulseVariant result;
	for ( auto _ : state )
	{
		bench.m_Instance.RunMethod( "Run", &args, nullptr, &result );
		benchmark::DoNotOptimize( result.GetValue() );
	}
	if ( bench.m_System.GetFailedCursorCount() > 0 )
		state.SkipWithError( "the computation failed" );
	state.counters[ "instructions" ] = double( nInstructions );
	state.counters[ "ns_per_instruction" ] = benchmark::Counter( double( nInstructions ) * double( state.iterations() ) * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert );
}

int64_t g_nLuaCount = 0;
void CountHook( lua_State *, lua_Debug * )
{
	++g_nLuaCount;
}

void RunLua( benchmark::State &state, const std::string &source, bool bFloat, int nArgB )
{
	lua_State *L = luaL_newstate();
	if ( luaL_loadstring( L, source.c_str() ) != LUA_OK || lua_pcall( L, 0, 1, 0 ) != LUA_OK )
	{
		state.SkipWithError( lua_tostring( L, -1 ) );
		lua_close( L );
		return;
	}
	int nFunction = luaL_ref( L, LUA_REGISTRYINDEX );
	auto call = [ & ]() {
		lua_rawgeti( L, LUA_REGISTRYINDEX, nFunction );
		if ( bFloat )
		{
			lua_pushnumber( L, 1.0001 );
			lua_pushnumber( L, 0.9999 );
		}
		else
		{
			lua_pushinteger( L, 3 );
			lua_pushinteger( L, nArgB );
		}
		lua_call( L, 2, 1 );
		benchmark::DoNotOptimize( lua_tonumber( L, -1 ) );
		lua_pop( L, 1 );
	};
	// The VM instructions of one computation, counted outside the timing.
	g_nLuaCount = 0;
	lua_sethook( L, CountHook, LUA_MASKCOUNT, 1 );
	call();
	lua_sethook( L, nullptr, 0, 0 );
	int64_t nInstructions = g_nLuaCount;
	for ( auto _ : state )
		call();
	lua_close( L );
	state.counters[ "instructions" ] = double( nInstructions );
	state.counters[ "ns_per_instruction" ] = benchmark::Counter( double( nInstructions ) * double( state.iterations() ) * 1e-9, benchmark::Counter::kIsRate | benchmark::Counter::kInvert );
}

// The bound instructions a run executes: the operations plus the return.
constexpr int64_t STRAIGHT_LINE_INSTRUCTIONS = STRAIGHT_LINE_OPERATIONS + 1;
constexpr int64_t LOOP_INSTRUCTIONS = 3 + 4 * int64_t( LOOP_COUNT ) + 1;

void BM_Pulse_IntArithmetic( benchmark::State &state ) { RunPulse( state, StraightLineGraph( "PVAL_INT" ), PVAL_INT, 5, STRAIGHT_LINE_INSTRUCTIONS ); }
void BM_Lua_IntArithmetic( benchmark::State &state ) { RunLua( state, StraightLineLua( false ), false, 5 ); }
void BM_Pulse_FloatArithmetic( benchmark::State &state ) { RunPulse( state, StraightLineGraph( "PVAL_FLOAT" ), PVAL_FLOAT, 0, STRAIGHT_LINE_INSTRUCTIONS ); }
void BM_Lua_FloatArithmetic( benchmark::State &state ) { RunLua( state, StraightLineLua( true ), true, 0 ); }
void BM_Pulse_SumLoop( benchmark::State &state ) { RunPulse( state, LoopGraph(), PVAL_INT, LOOP_COUNT, LOOP_INSTRUCTIONS ); }
void BM_Lua_SumLoop( benchmark::State &state ) { RunLua( state, s_LoopLua, false, LOOP_COUNT ); }

// The fixed cost of a call: a method that returns its first argument.
void BM_Pulse_EmptyMethod( benchmark::State &state ) { RunPulse( state, MethodGraph( "", R"({ m_nReg = 0 m_Type = "PVAL_INT" }, { m_nReg = 1 m_Type = "PVAL_INT" })", "" ), PVAL_INT, 0, 1 ); }
void BM_Lua_EmptyMethod( benchmark::State &state ) { RunLua( state, "return function( a, b ) return a end", false, 0 ); }

// FireEvent into a handler whose chunk is a single return.
void BM_Pulse_FireEvent( benchmark::State &state )
{
	CPulseBench bench( std::string( s_Header ) + R"({ m_Chunks = [ { m_Instructions = [ { m_nCode = "RETURN_VOID" } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Method" m_EntryChunk = 0 m_MethodName = "Main" },
		            { _class = "CPulseCell_Inflow_EventHandler" m_EntryChunk = 0 m_EventName = "OnTouch" } ] })" );
	if ( !bench.m_bOk )
	{
		state.SkipWithError( bench.m_Error.c_str() );
		return;
	}
	for ( auto _ : state )
		benchmark::DoNotOptimize( bench.m_Instance.FireEvent( "OnTouch", nullptr ) );
}
} // namespace

BENCHMARK( BM_Pulse_IntArithmetic );
BENCHMARK( BM_Lua_IntArithmetic );
BENCHMARK( BM_Pulse_FloatArithmetic );
BENCHMARK( BM_Lua_FloatArithmetic );
BENCHMARK( BM_Pulse_SumLoop );
BENCHMARK( BM_Lua_SumLoop );
BENCHMARK( BM_Pulse_EmptyMethod );
BENCHMARK( BM_Lua_EmptyMethod );
BENCHMARK( BM_Pulse_FireEvent );
