// Fuse programs and symbol tables round trip through KV3, boxed indexes as plain numbers.

#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemavalueequal.h"
#include "mathlib/extended/fuseprogram.h"

namespace
{
class FuseProgramTest : public testing::Test
{
protected:
	void SetUp() override { RegisterFuseClasses( SchemaSystem()->FindOrCreateTypeScopeForModule( "fuse_test" ) ); }
};

TEST_F( FuseProgramTest, ProgramRoundTripsWithIndexesAsPlainNumbers )
{
	CFuseProgram program;
	program.m_programBuffer = { 0x01, 0xFF, 0x00, 0x7A };
	program.m_variablesRead = { FuseVariableIndex_t{}, FuseVariableIndex_t{} };
	program.m_variablesRead[ 0 ].m_Value = 2;
	program.m_variablesRead[ 1 ].m_Value = 7;
	program.m_variablesWritten.resize( 1 );
	program.m_variablesWritten[ 0 ].m_Value = 3;
	program.m_nMaxTempVarsUsed = 5;

	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( program, &kv, &error ) ) << error.Get();
	const KeyValues3 *pRead = kv.FindMember( "m_variablesRead" );
	ASSERT_NE( pRead, nullptr );
	ASSERT_EQ( pRead->GetArrayElementCount(), 2 );
	EXPECT_TRUE( pRead->GetArrayElement( 1 )->IsNumber() );
	EXPECT_EQ( pRead->GetArrayElement( 1 )->GetInt(), 7 );
	EXPECT_EQ( kv.GetMemberInt( "m_nMaxTempVarsUsed" ), 5 );

	CFuseProgram loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_EQ( loaded.m_programBuffer, program.m_programBuffer );
	EXPECT_TRUE( SchemaValuesEqual( loaded, program ) );
	// A boxed index written as a table by older data still reads.
	KeyValues3 table;
	table.SetMemberInt( "m_Value", 9 );
	FuseVariableIndex_t index;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &index, &table, &error ) ) << error.Get();
	EXPECT_EQ( index.m_Value, 9 );
}

TEST_F( FuseProgramTest, SymbolTableRoundTripsAndFindsByName )
{
	CFuseSymbolTable symbols;
	symbols.AddConstant( "PI", 3.25f );
	symbols.AddVariable( "speed", FuseVariableType_t::FLOAT32, 1, FuseVariableAccess_t::READ_ONLY );
	symbols.AddVariable( "colour", FuseVariableType_t::UINT8, 4, FuseVariableAccess_t::WRITABLE );
	symbols.AddFunction( "clamp", 3, true );
	ASSERT_TRUE( symbols.MapsAreConsistent() );

	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( symbols, &kv, &error ) ) << error.Get();
	const KeyValues3 *pVariables = kv.FindMember( "m_variables" );
	ASSERT_NE( pVariables, nullptr );
	EXPECT_STREQ( pVariables->GetArrayElement( 0 )->GetMemberString( "m_eVarType" ), "FLOAT32" );
	EXPECT_STREQ( pVariables->GetArrayElement( 0 )->GetMemberString( "m_eAccess" ), "READ_ONLY" );

	CFuseSymbolTable loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual( loaded, symbols ) );
	EXPECT_TRUE( loaded.MapsAreConsistent() );
	ASSERT_NE( loaded.FindVariable( "colour" ), nullptr );
	EXPECT_EQ( loaded.FindVariable( "colour" )->m_nNumComponents, 4 );
	EXPECT_EQ( loaded.FindVariable( "colour" )->m_nIndex.m_Value, 1 );
	ASSERT_NE( loaded.FindFunction( "clamp" ), nullptr );
	EXPECT_TRUE( loaded.FindFunction( "clamp" )->m_bIsPure );
	EXPECT_FLOAT_EQ( loaded.FindConstant( "pi" )->m_flValue, 3.25f ); // tokens ignore case
	EXPECT_EQ( loaded.FindConstant( "tau" ), nullptr );

	// A map entry that points past its list is caught, not followed.
	loaded.m_functionMap[ FuseNameToken( "ghost" ) ] = 5;
	EXPECT_FALSE( loaded.MapsAreConsistent() );
	EXPECT_EQ( loaded.FindFunction( "ghost" ), nullptr );
}
} // namespace
