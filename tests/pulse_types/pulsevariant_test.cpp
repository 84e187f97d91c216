#include <gtest/gtest.h>

#include <utility>

#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulseresource.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
CPulseVariant MakeStringArray( std::initializer_list<const char *> texts )
{
	CPulseValueFullType elementType( PVAL_STRING );
	CPulseVariant array( CPulseValueFullType::MakeArray( elementType ) );
	for ( const char *pText : texts )
	{
		CPulseVariant element;
		element.SetString( pText );
		CPulseArrayData::AddToTail( static_cast<CPulseArrayData **>( array.GetValue() ), elementType, element.GetValue() );
	}
	return array;
}

const CPulseArrayData *Block( const CPulseVariant &variant )
{
	return *static_cast<CPulseArrayData *const *>( variant.GetValue() );
}

TEST( PulseVariant, EmptyVariantHasNoValue )
{
	CPulseVariant variant;
	EXPECT_TRUE( variant.IsEmpty() );
	EXPECT_EQ( variant.GetValue(), nullptr );
	EXPECT_EQ( variant, CPulseVariant() );
}

TEST( PulseVariant, CopiedStringIsIndependentOfTheOriginal )
{
	CPulseVariant original;
	original.SetString( "first" );
	CPulseVariant copy = original;
	original.SetString( "second" );
	EXPECT_STREQ( copy.GetString(), "first" );
	EXPECT_STREQ( original.GetString(), "second" );
	EXPECT_NE( copy.GetString(), original.GetString() );
}

TEST( PulseVariant, AssigningAcrossTypesReplacesTheValue )
{
	CPulseVariant text;
	text.SetString( "owned text" );
	CPulseVariant array = MakeStringArray( { "a", "b" } );
	CPulseVariant number;
	number.SetInt( 5 );

	text = array; // string -> array: the string is freed
	EXPECT_EQ( text.GetType(), array.GetType() );
	EXPECT_EQ( Block( text ), Block( array ) );
	text = number; // array -> int: the reference is dropped
	EXPECT_EQ( Block( array )->GetRefCount(), 1 );
	ASSERT_NE( text.GetInt(), nullptr );
	EXPECT_EQ( *text.GetInt(), 5 );
}

TEST( PulseVariant, SelfAssignmentKeepsTheValue )
{
	CPulseVariant variant;
	variant.SetString( "stay" );
	CPulseVariant &alias = variant;
	variant = alias;
	EXPECT_STREQ( variant.GetString(), "stay" );
}

TEST( PulseVariant, AssigningAnElementOfItsOwnArrayIsSafe )
{
	CPulseValueFullType elementType( PVAL_VARIANT );
	CPulseVariant holder( CPulseValueFullType::MakeArray( elementType ) );
	CPulseArrayData **ppArray = static_cast<CPulseArrayData **>( holder.GetValue() );
	CPulseVariant inner;
	inner.SetString( "from inside" );
	CPulseArrayData::AddToTail( ppArray, elementType, &inner );

	const CPulseVariant &element = *static_cast<const CPulseVariant *>( CPulseArrayData::GetElement( *ppArray, elementType, 0 ) );
	holder = element; // frees the array that holds `element`
	EXPECT_STREQ( holder.GetString(), "from inside" );
}

TEST( PulseVariant, MovedFromVariantIsEmptyAndOwnsNothing )
{
	CPulseVariant source = MakeStringArray( { "x" } );
	const CPulseArrayData *pBlock = Block( source );
	CPulseVariant target( std::move( source ) );
	EXPECT_TRUE( source.IsEmpty() ); // NOLINT(bugprone-use-after-move): defined as empty
	EXPECT_EQ( Block( target ), pBlock );
	EXPECT_EQ( pBlock->GetRefCount(), 1 );

	CPulseVariant other;
	other.SetString( "replaced" );
	other = std::move( target );
	EXPECT_EQ( Block( other ), pBlock );
}

TEST( PulseVariant, SettingTheSameTypeKeepsTheValue )
{
	CPulseVariant variant;
	variant.SetString( "kept" );
	variant.SetType( CPulseValueFullType( PVAL_STRING ) );
	EXPECT_STREQ( variant.GetString(), "kept" );
	variant.SetType( CPulseValueFullType( PVAL_INT ) );
	EXPECT_EQ( *variant.GetInt(), 0 );
}

TEST( PulseVariant, LargeValuesLiveInAnAlignedBlock )
{
	PulseTransform_t transform;
	transform.m_Position[ 0 ] = 5.0f;
	transform.m_Orientation[ 3 ] = 1.0f;
	CPulseVariant variant( CPulseValueFullType( PVAL_TRANSFORM ), &transform );
	ASSERT_NE( variant.GetValue(), nullptr );
	EXPECT_EQ( reinterpret_cast<uintptr_t>( variant.GetValue() ) % 16, 0u );
	EXPECT_NE( variant.GetValue(), static_cast<const void *>( &variant ) );

	CPulseVariant copy = variant;
	EXPECT_NE( copy.GetValue(), variant.GetValue() );
	EXPECT_EQ( static_cast<const PulseTransform_t *>( copy.GetValue() )->m_Position[ 0 ], 5.0f );
	EXPECT_EQ( copy, variant );
}

TEST( PulseVariant, ResourceCopiesCountReferences )
{
	CPulseResourceBinding *pBinding = PulseResource_Resolve( "models/crate.tmsh", CGlobalSymbol( "tmsh" ) );
	ASSERT_NE( pBinding, nullptr );
	pBinding->AddRef(); // keep our own to watch the count
	{
		CPulseValueFullType type( PVAL_RESOURCE, "tmsh" );
		CPulseVariant a( type, &pBinding );
		CPulseVariant b = a;
		EXPECT_EQ( pBinding->GetRefCount(), 4 );
		b.Clear();
		EXPECT_EQ( pBinding->GetRefCount(), 3 );
	}
	EXPECT_EQ( pBinding->GetRefCount(), 2 );
	pBinding->Release();
	pBinding->Release();
}

TEST( PulseVariant, ValuesOfDifferentTypesCompareThroughConversion )
{
	CPulseVariant integer, floating, text;
	integer.SetInt( 3 );
	floating.SetFloat( 3.0f );
	text.SetString( "3" );
	EXPECT_EQ( integer, floating );
	EXPECT_EQ( floating, integer );
	EXPECT_EQ( text, integer ); // the int becomes "3"

	CPulseVariant vector { CPulseValueFullType( PVAL_VEC3 ) };
	EXPECT_NE( integer, vector );
}

TEST( PulseVariant, VariantHeldInAVariantCopiesDeeply )
{
	CPulseVariant inner;
	inner.SetString( "nested" );
	CPulseVariant outer( CPulseValueFullType( PVAL_VARIANT ), &inner );
	CPulseVariant copy = outer;
	inner.SetString( "changed" );
	EXPECT_STREQ( static_cast<const CPulseVariant *>( copy.GetValue() )->GetString(), "nested" );
}
} // namespace
