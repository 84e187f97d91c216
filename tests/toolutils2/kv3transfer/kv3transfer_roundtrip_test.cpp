#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/schema/schemasystemtypescope.h"
#include "tests/toolutils2/support/reflectiontestclasses.h"
#include "core/kv3transfer/kv3transferaliastable.h"
#include "core/kv3transfer/kv3transferobject.h"

namespace
{
class KV3TransferRoundTrip : public ::testing::Test
{
protected:
	void SetUp() override { m_pScope = RegisterReflectionTestClasses(); }

	static void MakeEdited( CTestOperator &op )
	{
		op.m_flStrength = 0.75f;
		op.m_nCount = -3;
		op.m_nAlpha = 17;
		op.m_bEnabled = false;
		op.m_nBlend = TEST_BLEND_MOD;
		op.m_vOffset = Vector( 1.5f, -2.0f, 3.25f );
		op.m_Tint = Color( 1, 2, 3, 4 );
		op.m_Name = "embers";
		op.m_vRange = { { -1.0f, 2.0f } };
		op.m_Start.m_flValue = 0.3f;
		op.m_Curve = { { 0.0f, 0.5f }, { 1.0f, 0.25f } };
		op.m_Weights = { 0.1f, 0.2f };
		op.m_Named[ "gravity" ] = 9.8f;
		op.m_Named[ "drag" ] = 0.05f;
		op.m_flLimit = 12.0f;
		auto pRandom = std::make_unique<CTestRandomInput>();
		pRandom->m_flLiteral = 0.5f;
		pRandom->m_flMax = 7.0f;
		op.m_pInput = std::move( pRandom );
	}

	CSchemaSystemTypeScope *m_pScope = nullptr;
};
} // namespace

TEST_F( KV3TransferRoundTrip, FullSaveLoadsBackEqual )
{
	CTestOperator original;
	MakeEdited( original );

	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( original, &kv, &error ) ) << error.Get();
	EXPECT_EQ( kv.GetMemberCount(), 15 ) << "a full save writes every member";
	EXPECT_STREQ( kv.GetMemberString( "m_nBlend" ), "TEST_BLEND_MOD" ) << "enumerations are written by name";
	EXPECT_STREQ( kv.FindMember( "m_pInput" )->GetMemberString( "_class" ), "CTestRandomInput" );
	EXPECT_TRUE( kv.FindMember( "m_flLimit" )->IsNumber() );

	CTestOperator loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual( original, loaded ) );
	auto *pInput = dynamic_cast<CTestRandomInput *>( loaded.m_pInput.get() );
	ASSERT_NE( pInput, nullptr ) << "the real class comes back from \"_class\"";
	EXPECT_EQ( pInput->m_flMax, 7.0f );
	EXPECT_EQ( pInput->m_flLiteral, 0.5f );
	EXPECT_EQ( loaded.m_Named.at( "drag" ), 0.05f );
}

TEST_F( KV3TransferRoundTrip, DeltaSaveOfDefaultObjectIsEmpty )
{
	CTestOperator untouched;
	KeyValues3 kv;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	ASSERT_TRUE( SaveKV3Object( untouched, &kv, nullptr, &context ) );
	EXPECT_TRUE( kv.IsTable() );
	EXPECT_EQ( kv.GetMemberCount(), 0 );
}

TEST_F( KV3TransferRoundTrip, DeltaSaveKeepsOnlyChangesAndLoadsBackEqual )
{
	CTestOperator edited;
	edited.m_nCount = 9;
	edited.m_Start.m_flTime = 0.5f;
	edited.m_pInput = std::make_unique<CTestInput>();

	KeyValues3 kv;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	ASSERT_TRUE( SaveKV3Object( edited, &kv, nullptr, &context ) );
	ASSERT_EQ( kv.GetMemberCount(), 3 );
	EXPECT_EQ( kv.GetMemberInt( "m_nCount" ), 9 );
	const KeyValues3 *pStart = kv.FindMember( "m_Start" );
	ASSERT_NE( pStart, nullptr );
	EXPECT_EQ( pStart->GetMemberCount(), 1 ) << "a nested structure also leaves out its unchanged members";
	EXPECT_TRUE( pStart->HasMember( "m_flTime" ) );
	const KeyValues3 *pInput = kv.FindMember( "m_pInput" );
	ASSERT_NE( pInput, nullptr );
	EXPECT_EQ( pInput->GetMemberCount(), 1 ) << "only \"_class\": the input is at its own defaults";
	EXPECT_STREQ( pInput->GetMemberString( "_class" ), "CTestInput" );

	CTestOperator loaded;
	loaded.m_flStrength = 0.9f; // members absent from the file must take their defaults
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual( edited, loaded ) );
}

TEST_F( KV3TransferRoundTrip, DefaultReadFromFileNumberEqualsDeclaredDefault )
{
	// A file stores 0.1 as a double; read into the float member it must equal the 0.1f
	// default exactly, or every delta save would write it back.
	KeyValues3 kv;
	kv.SetMemberDouble( "m_flStrength", 0.1 );
	CTestOperator loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, nullptr ) );

	KeyValues3 saved;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	ASSERT_TRUE( SaveKV3Object( loaded, &saved, nullptr, &context ) );
	EXPECT_FALSE( saved.HasMember( "m_flStrength" ) );
}

TEST_F( KV3TransferRoundTrip, NullPointerSavesAsNullAndLoadsAsNull )
{
	CTestOperator original;
	KeyValues3 kv;
	ASSERT_TRUE( SaveKV3Object( original, &kv, nullptr ) );
	ASSERT_NE( kv.FindMember( "m_pInput" ), nullptr );
	EXPECT_TRUE( kv.FindMember( "m_pInput" )->IsNull() );

	CTestOperator loaded;
	loaded.m_pInput = std::make_unique<CTestInput>();
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, nullptr ) );
	EXPECT_EQ( loaded.m_pInput, nullptr );
}

TEST_F( KV3TransferRoundTrip, SchemaDefaultsTableHoldsEveryFieldWithItsType )
{
	const CSchemaClassInfo *pClass = m_pScope->FindDeclaredClass( "CTestOperator" );
	ASSERT_NE( pClass, nullptr );
	const KeyValues3 *pDefaults = pClass->GetDefaults();
	EXPECT_EQ( pDefaults->GetMemberCount(), pClass->GetFieldCount() );
	KeyValues3 strength;
	ASSERT_TRUE( pClass->GetFieldDefault( "m_flStrength", &strength ) );
	EXPECT_EQ( strength.GetFloat(), 0.1f );
	KeyValues3 blend;
	ASSERT_TRUE( pClass->GetFieldDefault( "m_nBlend", &blend ) );
	EXPECT_STREQ( blend.GetString(), "TEST_BLEND_ADD" );
	KeyValues3 missing;
	EXPECT_FALSE( pClass->GetFieldDefault( "m_flNoSuchField", &missing ) );

	const CSchemaClassInfo *pDerived = m_pScope->FindDeclaredClass( "CTestRandomInput" );
	KeyValues3 literal;
	ASSERT_TRUE( pDerived->GetFieldDefault( "m_flLiteral", &literal ) ) << "base fields are in the derived class's table";
	EXPECT_EQ( literal.GetFloat(), 0.1f );
}

TEST_F( KV3TransferRoundTrip, RenamedMemberLoadsThroughAliasTable )
{
	KeyValues3 kv;
	kv.SetMemberInt( "m_nOldCount", 12 );
	CKV3TransferAliasTable aliases;
	aliases.AddAlias( "m_nOldCount", "m_nCount" );
	CKV3TransferLoadContext context;
	context.SetAliasTable( &aliases );
	CTestOperator loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, nullptr, &context ) );
	EXPECT_EQ( loaded.m_nCount, 12 );
}

TEST_F( KV3TransferRoundTrip, SaveCountsScratchBytesOfArrays )
{
	CTestOperator op;
	op.m_Weights = { 1.0f, 2.0f, 3.0f };
	op.m_Curve.resize( 2 );
	CKV3TransferSaveContext context;
	KeyValues3 kv;
	ASSERT_TRUE( SaveKV3Object( op, &kv, nullptr, &context ) );
	EXPECT_EQ( context.GetScratchBytes(), 3 * sizeof( float ) + 2 * sizeof( TestCurvePoint_t ) );
}
