// Class descriptions made from declared classes: the rows the editor shows for data
// declared in code must have the right type, choices and defaults.

#include <gtest/gtest.h>

#include <array>
#include <cstdint>
#include <memory>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schematypeof.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/zolfgdfromschema.h"

enum FgdTestShape_t : int32_t
{
	FGDTEST_SHAPE_SPHERE,
	FGDTEST_SHAPE_BOX,
	FGDTEST_SHAPE_INTERNAL,
};
SCHEMA_ENUM_BEGIN( FgdTestShape_t )
	SCHEMA_ENUMERATOR( FGDTEST_SHAPE_SPHERE, { "MPropertyFriendlyName", "Sphere" }, { "MPropertyDescription", "Round" } )
	SCHEMA_ENUMERATOR( FGDTEST_SHAPE_BOX )
	SCHEMA_ENUMERATOR( FGDTEST_SHAPE_INTERNAL, { "MPropertySuppressEnumerator" } )
SCHEMA_ENUM_END()

enum FgdTestFlags_t : uint32_t
{
	FGDTEST_FLAG_NONE = 0,
	FGDTEST_FLAG_A = 1,
	FGDTEST_FLAG_B = 2,
	FGDTEST_FLAG_BOTH = 3,
};
SCHEMA_FLAGS_BEGIN( FgdTestFlags_t )
	SCHEMA_ENUMERATOR( FGDTEST_FLAG_NONE )
	SCHEMA_ENUMERATOR( FGDTEST_FLAG_A, { "MPropertyFriendlyName", "First" } )
	SCHEMA_ENUMERATOR( FGDTEST_FLAG_B )
	SCHEMA_ENUMERATOR( FGDTEST_FLAG_BOTH, { "MEnumeratorIsNotAFlag" } )
SCHEMA_ENUM_END()

class CFgdTestGradient
{
	SCHEMA_CLASS( CFgdTestGradient, { "MPropertyCustomEditor", "GradientEditor" } )
	SCHEMA_FIELD( float, m_flStart, 0.25f )
};

class CFgdTestShapeBase
{
	SCHEMA_CLASS( CFgdTestShapeBase, { "MPropertyPolymorphicClass" }, { "MPropertyFriendlyName", "Shape" } )
	virtual ~CFgdTestShapeBase() = default;
	SCHEMA_FIELD( float, m_flSize, 2.0f )
};

class CFgdTestSphere : public CFgdTestShapeBase
{
	SCHEMA_DERIVED_CLASS( CFgdTestSphere, CFgdTestShapeBase, { "MPropertyFriendlyName", "Sphere Shape" } )
	SCHEMA_FIELD( float, m_flRadius, 4.0f )
};

using FgdTestFloat2_t = std::array<float, 2>;
using FgdTestFloat3_t = std::array<float, 3>;
using FgdTestFloat4_t = std::array<float, 4>;

class CFgdTestEmitter
{
	SCHEMA_CLASS( CFgdTestEmitter, { "MPropertyFriendlyName", "Test Emitter" } )
	SCHEMA_FIELD( float, m_flRate, 0.1f, { "MPropertyFriendlyName", "Rate" }, { "MPropertyAttributeRange", "biased 0 10" } )
	SCHEMA_FIELD( FgdTestShape_t, m_nShape, FGDTEST_SHAPE_BOX )
	SCHEMA_FIELD( FgdTestFlags_t, m_nFlags, FGDTEST_FLAG_B )
	SCHEMA_FIELD( FgdTestFloat2_t, m_vOffset2, ( FgdTestFloat2_t{ 1.0f, 2.0f } ) )
	SCHEMA_FIELD( FgdTestFloat3_t, m_vOffset3, ( FgdTestFloat3_t{ 1.0f, 2.0f, 3.0f } ) )
	SCHEMA_FIELD( FgdTestFloat4_t, m_vOffset4, ( FgdTestFloat4_t{ 1.0f, 2.0f, 3.0f, 4.5f } ) )
	SCHEMA_FIELD( CFgdTestGradient, m_Gradient, {} )
	SCHEMA_FIELD( std::unique_ptr<CFgdTestShapeBase>, m_pShape, nullptr )
	SCHEMA_FIELD( int32_t, m_nCount, 7, { "MPropertyStartGroup", "Limits" } )
	SCHEMA_FIELD( int32_t, m_nLimit, -3 )
	SCHEMA_FIELD( int32_t, m_nLoose, 1, { "MPropertyGroupName", "Other" } )
	SCHEMA_FIELD( bool, m_bInternal, false, { "MFgdFromSchemaCompletelySkipField" } )
};

namespace
{
class ZolFgdFromSchema : public testing::Test
{
protected:
	void SetUp() override
	{
		CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "fgdfromschema_test" );
		// Every declared class is registered for transfer at start-up; a nested one
		// registered only through its field has no defaults table.
		RegisterKV3TransferClass<CFgdTestGradient>( pScope );
		RegisterKV3TransferClass<CFgdTestSphere>( pScope );
		m_pSchemaClass = RegisterKV3TransferClass<CFgdTestEmitter>( pScope );
		CZolFgdFromSchema converter( &m_GameData, "fgdfromschema_test" );
		m_pClass = converter.FindOrConvertClass( m_pSchemaClass );
		ASSERT_NE( m_pClass, nullptr );
	}

	const CGameDataVariable &Variable( const char *pszName )
	{
		const CGameDataVariable *pVar = m_pClass->FindVariable( pszName );
		EXPECT_NE( pVar, nullptr ) << pszName;
		static CGameDataVariable s_Missing;
		return pVar ? *pVar : s_Missing;
	}

	CGameData m_GameData;
	const CSchemaClassInfo *m_pSchemaClass = nullptr;
	CGameDataClass *m_pClass = nullptr;
};

TEST_F( ZolFgdFromSchema, EnumOffersItsEnumeratorsAsChoicesWithoutSuppressedOnes )
{
	const CGameDataVariable &var = Variable( "m_nShape" );
	EXPECT_EQ( var.GetType(), GDTYPE_CHOICES );
	ASSERT_NE( var.m_pItemSet, nullptr );
	ASSERT_EQ( var.m_pItemSet->m_Items.Count(), 2 );
	const GameDataItem_t &sphere = var.m_pItemSet->m_Items[ 0 ];
	EXPECT_STREQ( sphere.m_Value.Get(), "FGDTEST_SHAPE_SPHERE" );
	EXPECT_STREQ( sphere.m_FriendlyName.Get(), "Sphere" );
	EXPECT_STREQ( sphere.m_Description.Get(), "Round" );
	const GameDataItem_t &box = var.m_pItemSet->m_Items[ 1 ];
	EXPECT_STREQ( box.m_Value.Get(), "FGDTEST_SHAPE_BOX" );
	EXPECT_STREQ( box.m_FriendlyName.Get(), "FGDTEST_SHAPE_BOX" );
	EXPECT_EQ( box.m_iValue, 1 );
	// The default must name a choice, or the row shows a value the list doesn't have.
	EXPECT_NE( var.m_pItemSet->FindItem( var.m_DefaultKV3.GetString() ), nullptr ) << var.m_DefaultKV3.GetString();
}

TEST_F( ZolFgdFromSchema, FlagSetOffersOnlyRealBits )
{
	const CGameDataVariable &var = Variable( "m_nFlags" );
	EXPECT_EQ( var.GetType(), GDTYPE_FLAGCHOICES );
	ASSERT_NE( var.m_pItemSet, nullptr );
	EXPECT_EQ( var.m_pItemSet->m_eType, GDTYPE_FLAGCHOICES );
	ASSERT_EQ( var.m_pItemSet->m_Items.Count(), 2 );
	EXPECT_STREQ( var.m_pItemSet->m_Items[ 0 ].m_FriendlyName.Get(), "First" );
	EXPECT_EQ( var.m_pItemSet->m_Items[ 0 ].m_iValue, 1 );
	EXPECT_STREQ( var.m_pItemSet->m_Items[ 1 ].m_Value.Get(), "FGDTEST_FLAG_B" );
	EXPECT_EQ( var.m_pItemSet->m_Items[ 1 ].m_iValue, 2 );
}

struct FloatArrayCase_t
{
	const char *m_pszField;
	GameDataType_t m_eType;
	std::array<float, 4> m_Default;
	int m_nCount;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const FloatArrayCase_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pszField;
}

class ZolFgdFromSchemaFloatArray : public ZolFgdFromSchema, public testing::WithParamInterface<FloatArrayCase_t>
{
};

TEST_P( ZolFgdFromSchemaFloatArray, FixedFloatArrayBecomesVectorWithItsDefault )
{
	const FloatArrayCase_t &test = GetParam();
	const CGameDataVariable &var = Variable( test.m_pszField );
	EXPECT_EQ( var.GetType(), test.m_eType );
	EXPECT_TRUE( var.m_FullType.m_NestedTypes.IsEmpty() );
	ASSERT_TRUE( var.m_DefaultKV3.IsArray() );
	ASSERT_EQ( var.m_DefaultKV3.GetArrayElementCount(), test.m_nCount );
	for ( int i = 0; i < test.m_nCount; ++i )
		EXPECT_FLOAT_EQ( var.m_DefaultKV3.GetArrayElement( i )->GetFloat(), test.m_Default[ i ] ) << i;
}

INSTANTIATE_TEST_SUITE_P( Sizes, ZolFgdFromSchemaFloatArray,
	testing::Values( FloatArrayCase_t{ "m_vOffset2", GDTYPE_VECTOR2D, { 1.0f, 2.0f }, 2 },
		FloatArrayCase_t{ "m_vOffset3", GDTYPE_VECTOR, { 1.0f, 2.0f, 3.0f }, 3 },
		FloatArrayCase_t{ "m_vOffset4", GDTYPE_VECTOR4D, { 1.0f, 2.0f, 3.0f, 4.5f }, 4 } ),
	[]( const testing::TestParamInfo<FloatArrayCase_t> &info ) { return "Floats" + std::to_string( info.param.m_nCount ); } );

TEST_F( ZolFgdFromSchema, CustomEditorStructIsKV3WithItsClassBehind )
{
	const CGameDataVariable &var = Variable( "m_Gradient" );
	EXPECT_EQ( var.GetType(), GDTYPE_KV3 );
	EXPECT_STREQ( var.m_FullType.m_Param.Get(), "GradientEditor" );
	EXPECT_STREQ( var.GetMetadataString( "ParticleCompileBinaryIdenticalHack_underlying_struct" ), "CFgdTestGradient" );
	// The class behind must be described too, or its default test finds nothing.
	const CGameDataClass *pGradient = m_GameData.FindClass( "CFgdTestGradient" );
	ASSERT_NE( pGradient, nullptr );
	const CGameDataVariable *pStart = pGradient->FindVariable( "m_flStart" );
	ASSERT_NE( pStart, nullptr );
	EXPECT_FLOAT_EQ( pStart->m_DefaultKV3.GetFloat(), 0.25f );
	ASSERT_TRUE( var.m_DefaultKV3.IsTable() );
	EXPECT_FLOAT_EQ( var.m_DefaultKV3.GetMemberFloat( "m_flStart" ), 0.25f );
}

TEST_F( ZolFgdFromSchema, PolymorphicBaseGetsClassSelectorListingDerivedClasses )
{
	const CGameDataVariable &field = Variable( "m_pShape" );
	EXPECT_EQ( field.GetType(), GDTYPE_STRUCT );
	EXPECT_STREQ( field.m_FullType.m_Param.Get(), "CFgdTestShapeBase" );
	EXPECT_TRUE( field.GetMetadataBool( "owns_polymorphic_data" ) );

	const CGameDataClass *pBase = m_GameData.FindClass( "CFgdTestShapeBase" );
	ASSERT_NE( pBase, nullptr );
	EXPECT_TRUE( pBase->IsPolymorphic() );
	const CGameDataVariable *pSelector = pBase->GetSelectorVariable();
	ASSERT_NE( pSelector, nullptr );
	EXPECT_STREQ( pSelector->m_Name.Get(), "_class" );
	EXPECT_STREQ( pSelector->m_LongName.Get(), "Class Name" );
	EXPECT_STREQ( pSelector->m_Description.Get(), "What type of object this is." );
	EXPECT_STREQ( pSelector->GetMetadataString( "auto_populate_derived_classes" ), "CFgdTestShapeBase" );
	ASSERT_NE( pSelector->m_pItemSet, nullptr );
	ASSERT_NE( pSelector->m_pItemSet->FindItem( "CFgdTestSphere" ), nullptr );
	EXPECT_STREQ( pSelector->m_pItemSet->FindItem( "CFgdTestSphere" )->m_FriendlyName.Get(), "Sphere Shape" );

	// A table naming the derived class must find it, with the base's members first.
	const CGameDataClass *pSphere = m_GameData.FindClass( "CFgdTestSphere" );
	ASSERT_NE( pSphere, nullptr );
	ASSERT_EQ( pSphere->m_Variables.Count(), 3 );
	EXPECT_STREQ( pSphere->m_Variables[ 0 ]->m_Name.Get(), "_class" );
	EXPECT_STREQ( pSphere->m_Variables[ 1 ]->m_Name.Get(), "m_flSize" );
	EXPECT_STREQ( pSphere->m_Variables[ 2 ]->m_Name.Get(), "m_flRadius" );
	EXPECT_EQ( pSphere->GetSelectorVariable(), pSelector );
}

TEST_F( ZolFgdFromSchema, DefaultsAreTheClassDefaultsExactly )
{
	const KeyValues3 *pDefaults = m_pSchemaClass->GetDefaults();
	int nCompared = 0;
	for ( const CGameDataVariable *pVar : m_pClass->m_Variables )
	{
		const KeyValues3 *pExpected = pDefaults->FindMember( pVar->m_Name.Get() );
		ASSERT_NE( pExpected, nullptr ) << pVar->m_Name.Get();
		EXPECT_TRUE( pVar->m_DefaultKV3.IsEqual( *pExpected ) ) << pVar->m_Name.Get();
		EXPECT_FALSE( pVar->m_bUsingLegacyDefault ) << pVar->m_Name.Get();
		++nCompared;
	}
	EXPECT_EQ( nCompared, 11 );
	EXPECT_FLOAT_EQ( Variable( "m_flRate" ).m_DefaultKV3.GetFloat(), 0.1f );
	EXPECT_EQ( Variable( "m_nLimit" ).m_DefaultKV3.GetInt(), -3 );
	EXPECT_EQ( Variable( "m_nLimit" ).GetType(), GDTYPE_INTEGER );
}

TEST_F( ZolFgdFromSchema, FieldKeysBecomeVariableMetadata )
{
	const CGameDataVariable &rate = Variable( "m_flRate" );
	EXPECT_EQ( rate.GetType(), GDTYPE_FLOAT );
	EXPECT_STREQ( rate.m_LongName.Get(), "Rate" );
	EXPECT_STREQ( rate.GetMetadataString( "min" ), "0" );
	EXPECT_STREQ( rate.GetMetadataString( "max" ), "10" );
	EXPECT_TRUE( rate.GetMetadataBool( "biased" ) );
	EXPECT_FALSE( rate.HasMetadata( "group" ) );

	// A started group holds for the following fields until a field names its own.
	EXPECT_STREQ( Variable( "m_nCount" ).GetMetadataString( "group" ), "Limits" );
	EXPECT_STREQ( Variable( "m_nLimit" ).GetMetadataString( "group" ), "Limits" );
	EXPECT_STREQ( Variable( "m_nLoose" ).GetMetadataString( "group" ), "Other" );
	EXPECT_STREQ( Variable( "m_nLimit" ).m_LongName.Get(), "Limit" );

	EXPECT_EQ( m_pClass->FindVariable( "m_bInternal" ), nullptr );
	EXPECT_STREQ( m_pClass->m_FriendlyName.Get(), "Test Emitter" );
	EXPECT_STREQ( m_pClass->m_HelpContextName.Get(), "fgdfromschema_test" );
}

TEST_F( ZolFgdFromSchema, ConvertingAgainAddsNothing )
{
	int nVariables = m_pClass->m_Variables.Count();
	int nClasses = m_GameData.GetClassCount();
	CZolFgdFromSchema converter( &m_GameData );
	EXPECT_EQ( converter.FindOrConvertClass( m_pSchemaClass ), m_pClass );
	EXPECT_EQ( m_pClass->m_Variables.Count(), nVariables );
	EXPECT_EQ( m_GameData.GetClassCount(), nClasses );
}

TEST( ZolFgdFromSchemaEmbedded, TypedDataReferenceClassOffersNoClassThenHostSubclasses )
{
	CGameData gameData;
	CZolFgdFromSchema converter( &gameData );
	CUtlVector<CUtlString> subclasses;
	subclasses.AddToTail( CUtlString( "spark_small" ) );
	subclasses.AddToTail( CUtlString( "spark_large" ) );
	CGameDataClass *pClass = converter.FindOrMakeEmbeddedSubClass( "CSparkData", 0, subclasses );
	ASSERT_NE( pClass, nullptr );
	EXPECT_STREQ( pClass->GetName(), "EmbeddedSubClass_CSparkData" );
	EXPECT_EQ( gameData.FindClass( "EmbeddedSubClass_CSparkData" ), pClass );
	EXPECT_TRUE( pClass->GetMetaBool( "IsEmbeddedSubClass" ) );

	const CGameDataVariable *pName = pClass->FindVariable( "_my_subclass_name" );
	ASSERT_NE( pName, nullptr );
	EXPECT_STREQ( pName->m_LongName, "My Subclass Name" );
	EXPECT_STREQ( pName->m_Description,
		"A name that will be concatenated onto the end of the containing subclass name to generate the subclass name of this embedded subclass." );
	EXPECT_TRUE( pName->GetMetadataBool( "ShouldPunchThroughPolymorphism" ) );
	EXPECT_EQ( pName->GetMetadataInt( "sort_priority" ), -1 );

	const CGameDataVariable *pSelector = pClass->GetSelectorVariable();
	ASSERT_NE( pSelector, nullptr );
	EXPECT_STREQ( pSelector->m_Name, "_class" );
	EXPECT_STREQ( pSelector->m_LongName, "Class Name" );
	EXPECT_STREQ( pSelector->m_Description, "The name of the underlying class to allocate when using this subclass." );
	EXPECT_TRUE( pSelector->GetMetadataBool( "LinkedEntityClass" ) );
	ASSERT_NE( pSelector->m_pItemSet, nullptr );
	const CUtlVector<GameDataItem_t> &items = pSelector->m_pItemSet->m_Items;
	ASSERT_EQ( items.Count(), 3 );
	EXPECT_STREQ( items[ 0 ].m_Value, "" );
	EXPECT_STREQ( items[ 0 ].m_FriendlyName, "(No class selected)" );
	EXPECT_STREQ( items[ 1 ].m_Value, "spark_small" );
	EXPECT_STREQ( items[ 2 ].m_Value, "spark_large" );
}

TEST( ZolFgdFromSchemaEmbedded, ScopedReferenceIsNamedByScopeAndMadeOnce )
{
	CGameData gameData;
	CZolFgdFromSchema converter( &gameData );
	CUtlVector<CUtlString> none;
	CGameDataClass *pFirst = converter.FindOrMakeEmbeddedSubClass( "", 7, none );
	ASSERT_NE( pFirst, nullptr );
	EXPECT_STREQ( pFirst->GetName(), "EmbeddedSubClass_Scope_7" );
	int nClasses = gameData.GetClassCount();
	EXPECT_EQ( converter.FindOrMakeEmbeddedSubClass( nullptr, 7, none ), pFirst );
	EXPECT_EQ( gameData.GetClassCount(), nClasses );
	EXPECT_EQ( pFirst->m_Variables.Count(), 2 );
	ASSERT_EQ( pFirst->GetSelectorVariable()->m_pItemSet->m_Items.Count(), 1 );
}
} // namespace
