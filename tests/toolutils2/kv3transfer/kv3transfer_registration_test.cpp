#include <gtest/gtest.h>

#include <map>
#include <memory>
#include <optional>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/text/utlstring.h"

// Classes that are only ever reached through fields of CTestNestingOwner.
struct TestNestedByValue_t
{
	SCHEMA_CLASS( TestNestedByValue_t )
	SCHEMA_FIELD( float, m_flMax, 5.0f )
};
struct TestNestedInVector_t
{
	SCHEMA_CLASS( TestNestedInVector_t )
	SCHEMA_FIELD( int32_t, m_nSteps, 7 )
};
struct TestNestedInMap_t
{
	SCHEMA_CLASS( TestNestedInMap_t )
	SCHEMA_FIELD( CUtlString, m_Label, "mapped" )
};
struct TestNestedInOptional_t
{
	SCHEMA_CLASS( TestNestedInOptional_t )
	SCHEMA_FIELD( bool, m_bOn, true )
};
class CTestNestedPointee
{
	SCHEMA_CLASS( CTestNestedPointee )
	virtual ~CTestNestedPointee() = default;
	SCHEMA_FIELD( float, m_flScale, 2.5f )
	SCHEMA_FIELD( std::unique_ptr<CTestNestedPointee>, m_pNext, nullptr ) // leads back to itself
};

using TestNestedMap_t = std::map<CUtlString, TestNestedInMap_t>;

class CTestNestingOwner
{
	SCHEMA_CLASS( CTestNestingOwner )
	SCHEMA_FIELD( TestNestedByValue_t, m_Limits, {} )
	SCHEMA_FIELD( std::vector<TestNestedInVector_t>, m_Steps, {} )
	SCHEMA_FIELD( TestNestedMap_t, m_Named, {} )
	SCHEMA_FIELD( std::optional<TestNestedInOptional_t>, m_Switch, {} )
	SCHEMA_FIELD( std::unique_ptr<CTestNestedPointee>, m_pPointee, nullptr )
};

namespace
{
class KV3TransferNestedRegistration : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "kv3transfer_registration_tests" );
		RegisterKV3TransferClass<CTestNestingOwner>( m_pScope );
	}
	const KeyValues3 *DefaultsOf( const char *pszClass )
	{
		const CSchemaClassInfo *pClass = m_pScope->FindDeclaredClass( pszClass );
		return pClass ? pClass->GetDefaults() : nullptr;
	}
	CSchemaSystemTypeScope *m_pScope = nullptr;
};
} // namespace

TEST_F( KV3TransferNestedRegistration, ClassReachedOnlyThroughAFieldHasItsDefaults )
{
	const KeyValues3 *pDefaults = DefaultsOf( "TestNestedByValue_t" );
	ASSERT_NE( pDefaults, nullptr );
	EXPECT_EQ( pDefaults->GetMemberFloat( "m_flMax" ), 5.0f ) << "the nested class's defaults table is not empty";
}

TEST_F( KV3TransferNestedRegistration, ClassesInsideContainersAndPointersHaveTheirDefaults )
{
	ASSERT_NE( DefaultsOf( "TestNestedInVector_t" ), nullptr );
	EXPECT_EQ( DefaultsOf( "TestNestedInVector_t" )->GetMemberInt( "m_nSteps" ), 7 );
	ASSERT_NE( DefaultsOf( "TestNestedInMap_t" ), nullptr );
	EXPECT_STREQ( DefaultsOf( "TestNestedInMap_t" )->GetMemberString( "m_Label" ), "mapped" );
	ASSERT_NE( DefaultsOf( "TestNestedInOptional_t" ), nullptr );
	EXPECT_TRUE( DefaultsOf( "TestNestedInOptional_t" )->GetMemberBool( "m_bOn" ) );
	ASSERT_NE( DefaultsOf( "CTestNestedPointee" ), nullptr );
	EXPECT_EQ( DefaultsOf( "CTestNestedPointee" )->GetMemberFloat( "m_flScale" ), 2.5f );
}

TEST_F( KV3TransferNestedRegistration, ClassReachedOnlyThroughAPointerFieldCanBeLoadedByName )
{
	const CSchemaClassInfo *pPointee = m_pScope->FindDeclaredClass( "CTestNestedPointee" );
	ASSERT_NE( pPointee, nullptr );
	EXPECT_NE( pPointee->GetBinding().m_pfnLoadKV3, nullptr );

	KeyValues3 kv;
	kv.SetToEmptyTable();
	KeyValues3 *pPointer = kv.FindOrCreateMember( "m_pPointee" );
	pPointer->SetToEmptyTable();
	pPointer->SetMemberString( "_class", "CTestNestedPointee" );
	pPointer->SetMemberFloat( "m_flScale", 9.0f );
	CTestNestingOwner owner;
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &owner, &kv, &error ) ) << error.Get();
	ASSERT_NE( owner.m_pPointee, nullptr );
	EXPECT_EQ( owner.m_pPointee->m_flScale, 9.0f );
}
