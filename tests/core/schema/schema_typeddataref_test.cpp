// Typed data references in the schema: one descriptor per family of subclasses, named by
// element type or, without one, by scope number.

#include <gtest/gtest.h>

#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"

namespace
{
CSchemaSystemTypeScope *Scope()
{
	return SchemaSystem()->FindOrCreateTypeScopeForModule( "schema_typeddataref_test" );
}
} // namespace

TEST( SchemaTypedDataRef, ElementTypeNamesOneDescriptor )
{
	const CSchemaType *pSpark = Scope()->GetTypedDataRefType( "CSparkData", 0, 16 );
	ASSERT_NE( pSpark, nullptr );
	EXPECT_TRUE( pSpark->IsAtomic( SCHEMA_ATOMIC_TYPED_DATA_REF ) );
	EXPECT_STREQ( pSpark->GetTypedDataElementType(), "CSparkData" );
	EXPECT_EQ( pSpark->GetTypedDataScope(), -1 ) << "an element type makes the scope irrelevant";
	EXPECT_EQ( pSpark->GetSize(), 16u );

	// Fields of the same family share the descriptor, whatever scope they mention.
	EXPECT_EQ( Scope()->GetTypedDataRefType( "CSparkData", 4, 16 ), pSpark );
	EXPECT_NE( Scope()->GetTypedDataRefType( "CFlameData", 0, 16 ), pSpark );
}

TEST( SchemaTypedDataRef, ScopeNamesDescriptorWithoutElementType )
{
	const CSchemaType *pScope2 = Scope()->GetTypedDataRefType( "", 2, 16 );
	const CSchemaType *pScope3 = Scope()->GetTypedDataRefType( nullptr, 3, 16 );
	ASSERT_NE( pScope2, nullptr );
	ASSERT_NE( pScope3, nullptr );
	EXPECT_NE( pScope2, pScope3 );
	EXPECT_STREQ( pScope3->GetTypedDataElementType(), "" );
	EXPECT_EQ( pScope3->GetTypedDataScope(), 3 );
	EXPECT_EQ( Scope()->GetTypedDataRefType( "", 3, 16 ), pScope3 );
	EXPECT_NE( pScope2->GetNameHash(), pScope3->GetNameHash() );
}
