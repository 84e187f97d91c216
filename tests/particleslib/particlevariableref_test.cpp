// A function's reference to a variable of any type: its file form, its delta save, its
// comparison, and how the class description shows it.

#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "particleslib/particlevariableref.h"
#include "tests/particleslib/particleinputtestsupport.h"

namespace
{
// A function of the kind that would carry a variable reference.
class CTestVariableUser
{
	SCHEMA_CLASS( CTestVariableUser )
	SCHEMA_FIELD( float, m_flScale, 1.0f )
	SCHEMA_FIELD( CParticleVariableRef, m_Variable, {} )
};

KeyValues3 Save( const CTestVariableUser &user, bool bDelta )
{
	KeyValues3 kv;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( bDelta );
	CUtlString error;
	EXPECT_TRUE( SaveKV3Object( user, &kv, &error, &context ) ) << error.Get();
	return kv;
}
} // namespace

TEST( ParticleVariableRef, NameArrayTypeAndSubtypeSurviveARoundTrip )
{
	for ( const char *pType : { "PVAL_RESOURCE:tmsh", "PVAL_ARRAY:PVAL_VEC3", "PVAL_FLOAT", "PVAL_ARRAY:PVAL_ARRAY:PVAL_TRANSFORM" } )
	{
		CTestVariableUser user;
		user.m_Variable.m_variableName = "Crate Model";
		ASSERT_TRUE( user.m_Variable.m_variableType.FromString( pType ) ) << pType;
		KeyValues3 kv = Save( user, false );
		const KeyValues3 *pRef = kv.FindMember( "m_Variable" );
		ASSERT_NE( pRef, nullptr );
		ASSERT_TRUE( pRef->FindMember( "m_variableName" ) && pRef->FindMember( "m_variableName" )->IsString() );
		EXPECT_STREQ( pRef->FindMember( "m_variableName" )->GetString(), "Crate Model" );
		EXPECT_STREQ( pRef->FindMember( "m_variableType" )->GetString(), pType );

		CTestVariableUser loaded;
		CUtlString error;
		ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
		EXPECT_STREQ( loaded.m_Variable.m_variableName.Get(), "Crate Model" );
		EXPECT_EQ( loaded.m_Variable.m_variableType, user.m_Variable.m_variableType ) << pType;
		EXPECT_TRUE( SchemaValuesEqual( loaded, user ) );
	}
	// The subtype and the element type take part in equality.
	CParticleVariableRef a, b;
	a.m_variableName = b.m_variableName = "Prop";
	a.m_variableType.FromString( "PVAL_RESOURCE:tmsh" );
	b.m_variableType.FromString( "PVAL_RESOURCE:timg" );
	EXPECT_FALSE( SchemaValuesEqual( a, b ) );
	b.m_variableType.FromString( "PVAL_ARRAY:PVAL_RESOURCE:tmsh" );
	EXPECT_FALSE( SchemaValuesEqual( a, b ) );
}

TEST( ParticleVariableRef, DeltaSaveWritesOnlyWhatDiffersFromTheDefault )
{
	CTestVariableUser user;
	KeyValues3 kv = Save( user, true );
	EXPECT_EQ( kv.FindMember( "m_Variable" ), nullptr );
	EXPECT_EQ( kv.FindMember( "m_flScale" ), nullptr );

	user.m_Variable.m_variableName = "Speed";
	kv = Save( user, true );
	const KeyValues3 *pRef = kv.FindMember( "m_Variable" );
	ASSERT_NE( pRef, nullptr );
	EXPECT_NE( pRef->FindMember( "m_variableName" ), nullptr );
	EXPECT_EQ( pRef->FindMember( "m_variableType" ), nullptr );

	user.m_Variable.m_variableType = CPulseValueFullType( PVAL_FLOAT );
	kv = Save( user, true );
	pRef = kv.FindMember( "m_Variable" );
	ASSERT_NE( pRef, nullptr );
	ASSERT_NE( pRef->FindMember( "m_variableType" ), nullptr );
	EXPECT_STREQ( pRef->FindMember( "m_variableType" )->GetString(), "PVAL_FLOAT" );
}

TEST( ParticleVariableRef, BadTypeTextIsReportedAndLeavesNoType )
{
	KeyValues3 kv = ParseKV3Body( "{ m_Variable = { m_variableName = \"Wind\" m_variableType = \"PVAL_NOT_A_TYPE\" } }" );
	CTestVariableUser user;
	CUtlString error;
	EXPECT_FALSE( LoadKV3ObjectInPlace( &user, &kv, &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "PVAL_NOT_A_TYPE" ), std::string::npos ) << error.Get();
	EXPECT_STREQ( user.m_Variable.m_variableName.Get(), "Wind" );
	EXPECT_FALSE( user.m_Variable.m_variableType.IsValid() );

	// A missing or empty type is no fault: the reference has no type yet.
	kv = ParseKV3Body( "{ m_Variable = { m_variableName = \"Wind\" m_variableType = \"\" } }" );
	EXPECT_TRUE( LoadKV3ObjectInPlace( &user, &kv, &error ) ) << error.Get();
	EXPECT_FALSE( user.m_Variable.m_variableType.IsValid() );
	kv = ParseKV3Body( "{ m_Variable = { m_variableType = 5 } }" );
	EXPECT_FALSE( LoadKV3ObjectInPlace( &user, &kv, &error ) );
	EXPECT_FALSE( user.m_Variable.m_variableType.IsValid() );
}

TEST( ParticleVariableRef, TheClassDescriptionShowsBothFieldsAsText )
{
	CSchemaSystemTypeScope scope( "variableref_test" );
	const CSchemaClassInfo *pClass = RegisterKV3TransferClass<CParticleVariableRef>( &scope );
	ASSERT_NE( pClass, nullptr );
	ASSERT_EQ( pClass->GetFieldCount(), 2 );
	EXPECT_STREQ( pClass->GetField( 0 ).GetName(), "m_variableName" );
	EXPECT_STREQ( pClass->GetField( 1 ).GetName(), "m_variableType" );
	for ( int i = 0; i < 2; ++i )
		EXPECT_TRUE( pClass->GetField( i ).GetType()->IsAtomic( SCHEMA_ATOMIC_STRING ) ) << pClass->GetField( i ).GetName();
}
