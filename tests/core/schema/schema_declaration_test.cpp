#include <gtest/gtest.h>

#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schematypeof.h"

namespace
{
enum EmitShape_t : int32_t
{
	EMIT_SHAPE_SPHERE = 0,
	EMIT_SHAPE_BOX = 1,
	EMIT_SHAPE_HIDDEN = 7,
};
SCHEMA_ENUM_BEGIN( EmitShape_t )
	SCHEMA_ENUMERATOR( EMIT_SHAPE_SPHERE, { "MPropertyFriendlyName", "Sphere" } )
	SCHEMA_ENUMERATOR( EMIT_SHAPE_BOX )
	SCHEMA_ENUMERATOR( EMIT_SHAPE_HIDDEN, { "MPropertySuppressEnumerator" } )
SCHEMA_ENUM_END( { "MEnumFlagsWithOverlappingBits" } )

enum EmitFlags_t : uint8_t
{
	EMIT_FLAG_NONE = 0,
	EMIT_FLAG_LOOP = 1,
	EMIT_FLAG_BURST = 2,
};
SCHEMA_FLAGS_BEGIN( EmitFlags_t )
	SCHEMA_ENUMERATOR( EMIT_FLAG_NONE )
	SCHEMA_ENUMERATOR( EMIT_FLAG_LOOP )
	SCHEMA_ENUMERATOR( EMIT_FLAG_BURST )
SCHEMA_ENUM_END()

class CEmitterBase
{
	SCHEMA_CLASS( CEmitterBase, { "MPropertyPolymorphicClass" }, { "MParticleMinVersion", 3 } )
	virtual ~CEmitterBase() = default;
	SCHEMA_FIELD( bool, m_bEnabled, true, { "MPropertyFriendlyName", "Enabled" } )
};

struct SpawnRange_t
{
	SCHEMA_CLASS( SpawnRange_t )
	SCHEMA_FIELD( float, m_flMin, 0.1f )
	SCHEMA_FIELD( float, m_flMax, 2.5f, { "MPropertyAttributeRange", "0 10" } )
};

class CSmokeEmitter : public CEmitterBase
{
	SCHEMA_DERIVED_CLASS( CSmokeEmitter, CEmitterBase, { "MPropertyFriendlyName", "Smoke" } )
	SCHEMA_FIELD( EmitShape_t, m_nShape, EMIT_SHAPE_BOX )
	SCHEMA_FIELD( EmitFlags_t, m_nFlags, EMIT_FLAG_LOOP )
	SCHEMA_FIELD( SpawnRange_t, m_Range, {} )
	SCHEMA_FIELD( Vector, m_vDrift, ( Vector( 0, 0, 1 ) ) )
	SCHEMA_FIELD( std::vector<float>, m_Weights, {} )
	SCHEMA_FIELD( std::unique_ptr<CEmitterBase>, m_pChild, nullptr )
};

class CSchemaDeclarationTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "schema_declaration_test" );
		RegisterSchemaClass<CSmokeEmitter>( m_pScope );
	}
	CSchemaSystemTypeScope *m_pScope = nullptr;
};
} // namespace

TEST_F( CSchemaDeclarationTest, ScopeIsFoundByModuleName )
{
	EXPECT_EQ( SchemaSystem()->FindTypeScopeForModule( "schema_declaration_test" ), m_pScope );
	EXPECT_EQ( SchemaSystem()->FindTypeScopeForModule( "no_such_module" ), nullptr );
}

TEST_F( CSchemaDeclarationTest, FieldsKeepDeclaredOrderAndTypes )
{
	const CSchemaClassInfo *pClass = m_pScope->FindDeclaredClass( "CSmokeEmitter" );
	ASSERT_NE( pClass, nullptr );
	ASSERT_EQ( pClass->GetFieldCount(), 6 );
	const char *const expected[] = { "m_nShape", "m_nFlags", "m_Range", "m_vDrift", "m_Weights", "m_pChild" };
	for ( int i = 0; i < 6; ++i )
		EXPECT_STREQ( pClass->GetField( i ).GetName(), expected[ i ] ) << i;

	EXPECT_EQ( pClass->GetField( 0 ).GetType()->GetCategory(), SCHEMA_TYPE_DECLARED_ENUM );
	EXPECT_EQ( pClass->GetField( 2 ).GetType()->GetCategory(), SCHEMA_TYPE_DECLARED_CLASS );
	EXPECT_STREQ( pClass->GetField( 2 ).GetType()->GetClass()->GetName(), "SpawnRange_t" );
	EXPECT_TRUE( pClass->GetField( 3 ).GetType()->IsAtomic( SCHEMA_ATOMIC_VECTOR ) );
	EXPECT_STREQ( pClass->GetField( 4 ).GetType()->GetName(), "CUtlVector< float32 >" );
	EXPECT_EQ( pClass->GetField( 5 ).GetType()->GetCategory(), SCHEMA_TYPE_POLYMORPHIC_PTR );
}

TEST_F( CSchemaDeclarationTest, FieldSearchWalksBases )
{
	const CSchemaClassInfo *pClass = m_pScope->FindDeclaredClass( "CSmokeEmitter" );
	const CSchemaClassInfo *pDeclaring = nullptr;
	const CSchemaClassField *pField = pClass->FindField( "m_bEnabled", &pDeclaring );
	ASSERT_NE( pField, nullptr );
	EXPECT_STREQ( pDeclaring->GetName(), "CEmitterBase" );
	EXPECT_EQ( pClass->FindField( "m_bEnabledX" ), nullptr );

	std::vector<const CSchemaClassField *> fields;
	pClass->GetAllFields( fields );
	ASSERT_EQ( fields.size(), 7u );
	EXPECT_STREQ( fields[ 0 ]->GetName(), "m_bEnabled" );
}

TEST_F( CSchemaDeclarationTest, BaseMetadataIsSeenFromDerivedClass )
{
	const CSchemaClassInfo *pClass = m_pScope->FindDeclaredClass( "CSmokeEmitter" );
	const SchemaMetadataEntry_t *pVersion = pClass->FindMetadata( "MParticleMinVersion" );
	ASSERT_NE( pVersion, nullptr );
	EXPECT_EQ( pVersion->m_eType, SCHEMA_METADATA_INT );
	EXPECT_EQ( pVersion->m_nValue, 3 );
	// The derived class's own entry wins over nothing; the base has none of that name.
	EXPECT_STREQ( pClass->FindMetadata( "MPropertyFriendlyName" )->m_pszValue, "Smoke" );
	EXPECT_FALSE( m_pScope->FindDeclaredClass( "CEmitterBase" )->HasMetadata( "MPropertyFriendlyName" ) );

	const CSchemaClassField *pRange = m_pScope->FindDeclaredClass( "SpawnRange_t" )->FindField( "m_flMax" );
	EXPECT_STREQ( pRange->FindMetadata( "MPropertyAttributeRange" )->m_pszValue, "0 10" );
}

TEST_F( CSchemaDeclarationTest, PolymorphicClassesAreFlaggedAndListDerived )
{
	const CSchemaClassInfo *pBase = m_pScope->FindDeclaredClass( "CEmitterBase" );
	const CSchemaClassInfo *pDerived = m_pScope->FindDeclaredClass( "CSmokeEmitter" );
	EXPECT_EQ( pBase->GetFlags() & SCHEMA_CLASS_FLAG_POLYMORPHIC, 0x40000u );
	EXPECT_FALSE( m_pScope->FindDeclaredClass( "SpawnRange_t" )->IsPolymorphic() );
	ASSERT_EQ( pBase->GetDerivedClassCount(), 1 );
	EXPECT_EQ( pBase->GetDerivedClass( 0 ), pDerived );
	EXPECT_TRUE( pDerived->IsA( pBase ) );
	EXPECT_FALSE( pBase->IsA( pDerived ) );
	EXPECT_EQ( SchemaSystem()->FindClassByTypeInfo( typeid( CSmokeEmitter ) ), pDerived );
}

TEST_F( CSchemaDeclarationTest, EnumeratorsCarryTheirOwnMetadata )
{
	const CSchemaEnumInfo *pEnum = m_pScope->FindDeclaredEnum( "EmitShape_t" );
	ASSERT_NE( pEnum, nullptr );
	EXPECT_FALSE( pEnum->IsFlagSet() );
	EXPECT_TRUE( pEnum->HasMetadata( "MEnumFlagsWithOverlappingBits" ) );
	ASSERT_EQ( pEnum->GetEnumeratorCount(), 3 );
	EXPECT_STREQ( pEnum->GetEnumerator( 0 ).FindMetadata( "MPropertyFriendlyName" )->m_pszValue, "Sphere" );
	EXPECT_TRUE( pEnum->GetEnumerator( 2 ).HasMetadata( "MPropertySuppressEnumerator" ) );
	EXPECT_EQ( pEnum->FindEnumeratorByName( "emit_shape_hidden" )->m_nValue, 7 );
	EXPECT_EQ( pEnum->FindEnumeratorByValue( 1 )->m_pszName, std::string( "EMIT_SHAPE_BOX" ) );
	EXPECT_TRUE( m_pScope->FindDeclaredEnum( "EmitFlags_t" )->IsFlagSet() );
	EXPECT_EQ( m_pScope->FindDeclaredEnum( "EmitFlags_t" )->GetSize(), 1u );
}

TEST_F( CSchemaDeclarationTest, UpcastFollowsTheRealLayout )
{
	const CSchemaClassInfo *pDerived = m_pScope->FindDeclaredClass( "CSmokeEmitter" );
	const CSchemaClassInfo *pBase = m_pScope->FindDeclaredClass( "CEmitterBase" );
	CSmokeEmitter emitter;
	EXPECT_EQ( pDerived->CastTo( static_cast<void *>( &emitter ), pBase ), static_cast<void *>( static_cast<CEmitterBase *>( &emitter ) ) );
	EXPECT_EQ( pDerived->CastTo( static_cast<void *>( &emitter ), m_pScope->FindDeclaredClass( "SpawnRange_t" ) ), nullptr );
}

TEST_F( CSchemaDeclarationTest, ValueEqualityComparesMembersAndPointees )
{
	CSmokeEmitter a, b;
	EXPECT_TRUE( SchemaValuesEqual( a, b ) );
	b.m_Range.m_flMax = 3.0f;
	EXPECT_FALSE( SchemaValuesEqual( a, b ) );
	b.m_Range.m_flMax = a.m_Range.m_flMax;
	a.m_pChild = std::make_unique<CSmokeEmitter>();
	EXPECT_FALSE( SchemaValuesEqual( a, b ) );
	b.m_pChild = std::make_unique<CEmitterBase>();
	EXPECT_FALSE( SchemaValuesEqual( a, b ) ) << "a different real class is a different value";
	b.m_pChild = std::make_unique<CSmokeEmitter>();
	EXPECT_TRUE( SchemaValuesEqual( a, b ) );
	b.m_bEnabled = false;
	EXPECT_FALSE( SchemaValuesEqual( a, b ) ) << "base members take part";
}
