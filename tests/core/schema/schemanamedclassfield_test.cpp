#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemadeclare.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "core/schema/schematypeof.h"
#include "core/text/utlstring.h"

namespace
{
// Stands for a function class whose input type lives in a module loaded later.
struct NamedClassHolder_t
{
	SCHEMA_CLASS( NamedClassHolder_t )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_Rate, "CNamedClassTestInput", {}, { "MPropertyFriendlyName", "Rate" } )
	SCHEMA_FIELD( float, m_flPlain, 1.0f )
};

// The class that the later module registers under that name.
struct CNamedClassTestInput
{
	SCHEMA_CLASS( CNamedClassTestInput )
	SCHEMA_FIELD( float, m_flValue, 2.0f )
};

KeyValues3 RateTable( float flValue )
{
	KeyValues3 table;
	table.SetToEmptyTable();
	table.SetMemberString( "m_nType", "LITERAL" );
	table.SetMemberFloat( "m_flValue", flValue );
	return table;
}

// Load and save must keep the member's KV3 as it is, whatever the field's type says.
void ExpectTransferKeepsTheTable()
{
	KeyValues3 file;
	file.SetToEmptyTable();
	*file.SetMemberNull( "m_Rate" ) = RateTable( 7.0f );
	NamedClassHolder_t holder;
	CUtlString errors;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &holder, &file, &errors ) );
	EXPECT_STREQ( errors.Get(), "" );
	EXPECT_TRUE( holder.m_Rate.IsEqual( RateTable( 7.0f ) ) );

	KeyValues3 saved;
	ASSERT_TRUE( SaveKV3Object( holder, &saved, &errors ) );
	const KeyValues3 *pRate = saved.FindMember( "m_Rate" );
	ASSERT_NE( pRate, nullptr );
	EXPECT_TRUE( pRate->IsEqual( RateTable( 7.0f ) ) );
}
} // namespace

TEST( SchemaNamedClassField, ReadsAsPlainKV3UntilTheNamedClassIsRegisteredInItsScope )
{
	CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "namedclassfield_test" );
	const CSchemaClassInfo *pHolder = RegisterKV3TransferClass<NamedClassHolder_t>( pScope );
	ASSERT_NE( pHolder, nullptr );
	const CSchemaClassField *pRate = pHolder->FindField( "m_Rate" );
	ASSERT_NE( pRate, nullptr );
	EXPECT_STREQ( pRate->GetNamedClass(), "CNamedClassTestInput" );
	EXPECT_TRUE( pHolder->FindField( "m_flPlain" )->GetNamedClass() == nullptr );
	// The declaration's own metadata stays with the field.
	EXPECT_TRUE( pRate->HasMetadata( "MPropertyFriendlyName" ) );

	// Before the class exists the field is KV3, as an undeclared input always was.
	ASSERT_NE( pRate->GetType(), nullptr );
	EXPECT_TRUE( pRate->GetType()->IsAtomic( SCHEMA_ATOMIC_KV3 ) );
	ExpectTransferKeepsTheTable();

	// A class of that name in another scope doesn't count.
	CSchemaSystemTypeScope *pOtherScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "namedclassfield_test_other" );
	RegisterSchemaClass<CNamedClassTestInput>( pOtherScope );
	EXPECT_TRUE( pRate->GetType()->IsAtomic( SCHEMA_ATOMIC_KV3 ) );

	// Registered later in the field's own scope: asked again, the field has that class's type.
	const CSchemaClassInfo *pInput = RegisterSchemaClass<CNamedClassTestInput>( pScope );
	ASSERT_NE( pInput, nullptr );
	ASSERT_EQ( pRate->GetType()->GetCategory(), SCHEMA_TYPE_DECLARED_CLASS );
	EXPECT_EQ( pRate->GetType()->GetClass(), pInput );
	EXPECT_EQ( pRate->GetType(), pScope->GetClassType( pInput ) );
	ExpectTransferKeepsTheTable();

	// The defaults table still holds the member's KV3 default.
	KeyValues3 fieldDefault;
	EXPECT_TRUE( pHolder->GetFieldDefault( "m_Rate", &fieldDefault ) );
}
