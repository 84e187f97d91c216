// The KV3 form of definitions (load, save without defaults, round trips) and the dump.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "tests/pulse_runtime/pulsetestgraph.h"

namespace
{
const std::filesystem::path s_Samples = std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content/pulse/samples";

std::string ReadFile( const std::filesystem::path &path )
{
	std::ifstream file( path, std::ios::binary );
	std::ostringstream text;
	text << file.rdbuf();
	return text.str();
}

std::string SavedText( const CPulseGraphDef &def )
{
	CUtlString text, error;
	EXPECT_TRUE( PulseGraphDef_SaveText( def, &text, &error ) ) << error.Get();
	return text.Get();
}

TEST( PulseGraphDefIO, EverySampleSavesAsItLoadsAndRoundTrips )
{
	int nSamples = 0;
	for ( const auto &entry : std::filesystem::directory_iterator( s_Samples ) )
	{
		SCOPED_TRACE( entry.path().string() );
		++nSamples;
		PulseGraphMessages_t messages;
		CPulseGraphDefHandle hDef = PulseGraphDef_LoadFile( entry.path().c_str(), nullptr, &messages );
		ASSERT_TRUE( hDef ) << messages.ToText().Get();

		// The files hold no defaults, so the bound definition saves back to the same tree:
		// generic codes, not the typed forms binding made.
		std::string text = ReadFile( entry.path() );
		KeyValues3 original, saved;
		CUtlString error;
		ASSERT_TRUE( LoadKV3FromText( &original, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) );
		ASSERT_TRUE( PulseGraphDef_SaveKV3( *hDef, &saved, &error ) ) << error.Get();
		EXPECT_TRUE( saved.IsEqual( original ) ) << SavedText( *hDef );

		std::string first = SavedText( *hDef );
		PulseGraphMessages_t again;
		CPulseGraphDefHandle hReloaded = PulseGraphDef_LoadText( first.data(), first.size(), "again", &again );
		ASSERT_TRUE( hReloaded ) << again.ToText().Get();
		EXPECT_EQ( SavedText( *hReloaded ), first );
	}
	EXPECT_GE( nSamples, 9 );
}

TEST( PulseGraphDefIO, AnInstructionAtItsDefaultsSavesOnlyItsCode )
{
	CPulseGraphDef def;
	def.m_Chunks.emplace_back();
	def.m_Chunks[ 0 ].m_Instructions.emplace_back();
	PGDInstruction_t &changed = def.m_Chunks[ 0 ].m_Instructions.emplace_back();
	changed.m_nCode = PulseInstructionCode_t::JUMP;
	changed.m_nDestInstruction = 0;
	changed.m_nReg1 = 4;
	KeyValues3 saved;
	CUtlString error;
	ASSERT_TRUE( PulseGraphDef_SaveKV3( def, &saved, &error ) ) << error.Get();
	const KeyValues3 *pInstructions = saved.FindMember( "m_Chunks" )->GetArrayElement( 0 )->FindMember( "m_Instructions" );
	const KeyValues3 *pDefault = pInstructions->GetArrayElement( 0 );
	ASSERT_EQ( pDefault->GetMemberCount(), 1 );
	EXPECT_STREQ( pDefault->GetMemberString( "m_nCode" ), "INVALID" );
	const KeyValues3 *pJump = pInstructions->GetArrayElement( 1 );
	ASSERT_EQ( pJump->GetMemberCount(), 2 );
	EXPECT_STREQ( pJump->GetMemberString( "m_nCode" ), "JUMP" );
	EXPECT_EQ( pJump->GetMemberInt( "m_nReg1" ), 4 );
	// Only the members of the definition that differ from their defaults are there.
	EXPECT_EQ( saved.GetMemberCount(), 1 );
}

TEST( PulseGraphDefIO, NumbersAndTextsOfRegisterMapsBothNameRegisters )
{
	PulseRegisterMap_t map;
	CUtlString error;
	std::string text = PulseTestText( "{ m_Inparams = { a = 3 b = \"7\" c = 2.0 } m_InparamsWhichCanBeMoved = [ \"b\" ] m_Outparams = { retval = 1 } }" );
	KeyValues3 kv;
	ASSERT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) );
	map.m_Inparams = *kv.FindMember( "m_Inparams" );
	map.m_InparamsWhichCanBeMoved = { PulseSymbol_t( "b" ) };
	map.m_Outparams = *kv.FindMember( "m_Outparams" );
	ASSERT_TRUE( map.Bind( &error ) ) << error.Get();
	ASSERT_EQ( map.m_BoundIn.size(), 3u );
	EXPECT_EQ( map.m_BoundIn[ 1 ].m_nRegister, 7 );
	EXPECT_EQ( map.m_BoundIn[ 2 ].m_nRegister, 2 );
	CUtlString dump;
	map.AppendText( &dump );
	EXPECT_STREQ( dump.Get(), " in { R3->a, R7*MOVE=>b, R2->c } out { retval->R1 }" );
}

TEST( PulseGraphDefIO, UnknownCellsKeepTheirKeysAndRootTyposAreWarned )
{
	PulseGraphMessages_t messages;
	std::string text = PulseTestText( "{ m_Chunk = [] m_Cells = [ { _class = \"CPulseCell_Teleport\" m_nEditorNodeID = 4 m_flRange = 2.0 } ] }" );
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadText( text.data(), text.size(), "typo", &messages );
	ASSERT_TRUE( hDef ) << messages.ToText().Get();
	ASSERT_EQ( messages.m_Warnings.size(), 2u );
	EXPECT_STREQ( messages.m_Warnings[ 0 ].Get(), "unknown key 'm_Chunk' (ignored)" );
	EXPECT_STREQ( messages.m_Warnings[ 1 ].Get(), "m_Cells[0]: Missing cell class 'CPulseCell_Teleport', replacing with 'CPulseCell_Unknown'" );
	auto *pUnknown = dynamic_cast<const CPulseCell_Unknown *>( hDef->GetCell( 0 ) );
	ASSERT_TRUE( pUnknown );
	EXPECT_EQ( pUnknown->m_nEditorNodeID, 4 );
	EXPECT_DOUBLE_EQ( pUnknown->m_UnknownKeys.GetMemberDouble( "m_flRange" ), 2.0 );
}

TEST( PulseGraphDefIO, RootsThatAreNoDefinitionAreRefused )
{
	for ( const char *pBody : { "[ 1, 2 ]", "{ _class = \"CParticleSystemDefinition\" }" } )
	{
		PulseGraphMessages_t messages;
		std::string text = PulseTestText( pBody );
		EXPECT_FALSE( PulseGraphDef_LoadText( text.data(), text.size(), "root", &messages ) );
		EXPECT_TRUE( messages.HasErrors() );
	}
}

TEST( PulseGraphDefQueries, VariablesOutOfRangeAnswerNeutralValues )
{
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = LoadTestGraph( R"({
		m_Vars = [ { m_Name = "speed" m_Type = "PVAL_FLOAT" m_DefaultValue = 1.0 m_nEditorNodeID = 5 },
		           { m_Name = "speed" m_Type = "PVAL_INT" m_nEditorNodeID = 6 } ] })", &messages );
	ASSERT_TRUE( hDef ) << messages.ToText().Get();
	EXPECT_EQ( hDef->FindVarByName( "speed" ), 0 );
	EXPECT_EQ( hDef->FindVarByEditorNodeID( 6 ), 1 );
	EXPECT_EQ( hDef->FindVarByName( "Speed" ), -1 );
	EXPECT_TRUE( hDef->GetVarDefaultValue( 7 ).IsNull() );
	EXPECT_TRUE( hDef->GetVarDefaultValue( -1 ).IsNull() );
	EXPECT_FALSE( hDef->GetVarType( 2 ).IsValid() );
	EXPECT_STREQ( hDef->GetVarName( 9 ), "" );
	EXPECT_EQ( hDef->GetVarEditorNodeID( 9 ), -1 );
}

TEST( PulseGraphDefQueries, CellsAreGatheredByClassAndItsBases )
{
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadFile( ( s_Samples / "yield.tpulsec" ).c_str(), nullptr, &messages );
	ASSERT_TRUE( hDef );
	std::vector<const CPulseCell_Base *> entries, yields;
	hDef->GatherCellsOfClass( "CPulseCell_Inflow_BaseEntrypoint", &entries );
	hDef->GatherCellsOfClass( "CPulseCell_BaseYieldingInflow", &yields );
	EXPECT_EQ( entries.size(), 2u ); // the method and the event handler
	ASSERT_EQ( yields.size(), 1u );
	EXPECT_STREQ( yields[ 0 ]->GetClassName(), "CPulseCell_Inflow_Yield" );
	EXPECT_TRUE( hDef->FindMethodCell( "Start" ) );
	EXPECT_FALSE( hDef->FindMethodCell( "start" ) );
	std::vector<PulsePublicInterfaceRow_t> rows;
	hDef->GatherPublicInterface( &rows );
	ASSERT_EQ( rows.size(), 1u );
	EXPECT_STREQ( rows[ 0 ].m_Name.Get(), "Start" );
}

TEST( PulseGraphDump, ShowsConstantsByStorageAndOutflowsByConnection )
{
	const char *pBody = R"({
		m_Chunks = [ { m_Instructions = [ { m_nCode = "GET_CONST" m_nReg0 = 0 m_nConstIdx = 0 }, { m_nCode = "CELL_INVOKE" m_nInvokeBindingIndex = 0 },
		                                  { m_nCode = "LAST_SERIALIZED_CODE" }, { m_nCode = "RETURN_VOID" } ]
		               m_Registers = [ { m_nReg = 0 m_Type = "PVAL_INT" m_OriginName = "count" m_nWrittenByInstruction = 0 } ] } ]
		m_Cells = [ { _class = "CPulseCell_Inflow_Yield" m_nEditorNodeID = 3 }, null ]
		m_InvokeBindings = [ { m_FuncName = "Pause" m_nCellIndex = 0 } ]
		m_Constants = [ { m_Type = "PVAL_INT" m_Value = 42 } ] })";
	std::string text = PulseTestText( pBody );
	PulseGraphMessages_t messages;
	CPulseGraphDefHandle hDef = PulseGraphDef_LoadText( text.data(), text.size(), "dump", &messages );
	ASSERT_TRUE( hDef ) << messages.ToText().Get();
	CUtlString unbound;
	hDef->Dump( &unbound );
	EXPECT_NE( unbound.View().find( "C0:I0  {F=-1        ,V=-1        } GetConst R0 <- C0 (PVAL_INT 42)\n" ), std::string::npos ) << unbound.Get();
	EXPECT_NE( unbound.View().find( "} [INVALID]\n" ), std::string::npos ) << unbound.Get();
	EXPECT_NE( unbound.View().find( "Cell0 EditorID:3 [CPulseCell_Inflow_Yield]: m_UnyieldResume Terminate()\n" ), std::string::npos ) << unbound.Get();
	EXPECT_NE( unbound.View().find( "  Cell1 - NULL\n" ), std::string::npos ) << unbound.Get();
	EXPECT_NE( unbound.View().find( "  R0:        PVAL_INT                     count [ written by I0 last-read I-1 ]\n" ), std::string::npos ) << unbound.Get();

	// Files never hold the serialization marker: binding refuses it, naming the place.
	EXPECT_FALSE( PulseGraphDef_Bind( hDef.Get(), &messages ) );
	EXPECT_STREQ( messages.m_Errors[ 0 ].Get(), "C0:I2 (LAST_SERIALIZED_CODE): LAST_SERIALIZED_CODE is a bound form; files hold only codes below LAST_SERIALIZED_CODE" );

	std::string fixed = pBody;
	fixed.replace( fixed.find( "LAST_SERIALIZED_CODE" ), 20, "NOP" );
	PulseGraphMessages_t fixedMessages;
	CPulseGraphDefHandle hBound = LoadTestGraph( fixed, &fixedMessages );
	ASSERT_TRUE( hBound ) << fixedMessages.ToText().Get();
	CUtlString bound;
	hBound->Dump( &bound );
	EXPECT_NE( bound.View().find( "GetInlineConst R0 <- C0 (PVAL_INT 42)\n" ), std::string::npos ) << bound.Get();
	EXPECT_NE( bound.View().find( "Invoke Cell0 [eid=3] Pause\n" ), std::string::npos ) << bound.Get();
}
} // namespace
