#include <gtest/gtest.h>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
// An array value in a variant, so the test never leaks or double-frees by hand.
class PulseArrayData : public ::testing::Test
{
protected:
	PulseArrayData()
		: m_ArrayType( CPulseValueFullType::MakeArray( CPulseValueFullType( PVAL_STRING ) ) ),
		  m_ElementType( PVAL_STRING ),
		  m_Array( m_ArrayType )
	{
	}

	CPulseArrayData **Slot( CPulseVariant &variant ) { return static_cast<CPulseArrayData **>( variant.GetValue() ); }
	const CPulseArrayData *Block( const CPulseVariant &variant ) { return *static_cast<CPulseArrayData *const *>( variant.GetValue() ); }

	void Append( CPulseVariant &variant, const char *pText )
	{
		char *pValue = nullptr;
		PulseValue_SetString( &pValue, pText );
		CPulseArrayData::AddToTail( Slot( variant ), m_ElementType, &pValue );
		PulseValue_Destruct( m_ElementType, &pValue );
	}

	const char *At( const CPulseVariant &variant, int nIndex )
	{
		const void *pElement = CPulseArrayData::GetElement( Block( variant ), m_ElementType, nIndex );
		return pElement ? PulseValue_GetString( pElement ) : nullptr;
	}

	CUtlString Text( const CPulseVariant &variant )
	{
		CUtlString text;
		PulseValue_ToText( m_ArrayType, variant.GetValue(), &text );
		return text;
	}

	CPulseValueFullType m_ArrayType;
	CPulseValueFullType m_ElementType;
	CPulseVariant m_Array;
};

TEST_F( PulseArrayData, EmptyArrayIsNullAndPrintsAsBrackets )
{
	EXPECT_EQ( Block( m_Array ), nullptr );
	EXPECT_EQ( CPulseArrayData::GetCount( Block( m_Array ) ), 0 );
	EXPECT_STREQ( Text( m_Array ).Get(), "[]" );
}

TEST_F( PulseArrayData, AppendedElementsReadBackInOrder )
{
	Append( m_Array, "one" );
	Append( m_Array, "two" );
	Append( m_Array, "three" );
	EXPECT_EQ( CPulseArrayData::GetCount( Block( m_Array ) ), 3 );
	EXPECT_STREQ( At( m_Array, 2 ), "three" );
	EXPECT_EQ( At( m_Array, 3 ), nullptr );
	EXPECT_EQ( At( m_Array, -1 ), nullptr );
	EXPECT_STREQ( Text( m_Array ).Get(), "[ one, two, three ]" );
}

TEST_F( PulseArrayData, WritingASharedArrayLeavesTheOtherHolderUnchanged )
{
	Append( m_Array, "shared" );
	CPulseVariant other = m_Array;
	ASSERT_EQ( Block( other ), Block( m_Array ) );
	EXPECT_EQ( Block( m_Array )->GetRefCount(), 2 );
	uint16_t nRevision = Block( m_Array )->GetRevision();

	PulseValue_SetString( CPulseArrayData::GetElementForWrite( Slot( other ), m_ElementType, 0 ), "changed" );

	EXPECT_STREQ( At( m_Array, 0 ), "shared" );
	EXPECT_STREQ( At( other, 0 ), "changed" );
	EXPECT_NE( Block( other ), Block( m_Array ) );
	EXPECT_EQ( Block( other )->GetRevision(), nRevision + 1 );
	EXPECT_EQ( Block( m_Array )->GetRefCount(), 1 );
}

TEST_F( PulseArrayData, WritingAnUnsharedArrayKeepsItsBlock )
{
	Append( m_Array, "a" );
	const CPulseArrayData *pBefore = Block( m_Array );
	PulseValue_SetString( CPulseArrayData::GetElementForWrite( Slot( m_Array ), m_ElementType, 0 ), "b" );
	EXPECT_EQ( Block( m_Array ), pBefore );
	EXPECT_STREQ( At( m_Array, 0 ), "b" );
}

TEST_F( PulseArrayData, CapacityStartsAtFourThenDoubles )
{
	Append( m_Array, "0" );
	EXPECT_EQ( Block( m_Array )->GetCapacity(), 4 );
	for ( int i = 1; i < 5; ++i )
		Append( m_Array, "x" );
	EXPECT_EQ( Block( m_Array )->GetCapacity(), 8 );
	CPulseArrayData::SetCount( Slot( m_Array ), m_ElementType, 40 );
	EXPECT_EQ( Block( m_Array )->GetCapacity(), 40 );
	EXPECT_STREQ( At( m_Array, 0 ), "0" );
	EXPECT_STREQ( At( m_Array, 39 ), "" );
}

TEST_F( PulseArrayData, InsertAndRemoveShiftTheRest )
{
	Append( m_Array, "a" );
	Append( m_Array, "c" );
	char *pB = nullptr;
	PulseValue_SetString( &pB, "b" );
	EXPECT_TRUE( CPulseArrayData::InsertBefore( Slot( m_Array ), m_ElementType, 1, &pB ) );
	PulseValue_Destruct( m_ElementType, &pB );
	EXPECT_FALSE( CPulseArrayData::InsertBefore( Slot( m_Array ), m_ElementType, 5, nullptr ) );
	EXPECT_STREQ( Text( m_Array ).Get(), "[ a, b, c ]" );

	EXPECT_TRUE( CPulseArrayData::Remove( Slot( m_Array ), m_ElementType, 0 ) );
	EXPECT_FALSE( CPulseArrayData::Remove( Slot( m_Array ), m_ElementType, 2 ) );
	EXPECT_STREQ( Text( m_Array ).Get(), "[ b, c ]" );
}

TEST_F( PulseArrayData, AppendingAnElementOfTheSameArraySurvivesGrowth )
{
	for ( int i = 0; i < 4; ++i )
		Append( m_Array, "element that is long enough to live on the heap" );
	// The block is full, so this append moves it while reading from it.
	const void *pFirst = CPulseArrayData::GetElement( Block( m_Array ), m_ElementType, 0 );
	CPulseArrayData::AddToTail( Slot( m_Array ), m_ElementType, pFirst );
	EXPECT_STREQ( At( m_Array, 4 ), "element that is long enough to live on the heap" );
}

TEST_F( PulseArrayData, RemoveAllOfASharedArrayEmptiesOnlyThisHolder )
{
	Append( m_Array, "kept" );
	CPulseVariant other = m_Array;
	CPulseArrayData::RemoveAll( Slot( other ), m_ElementType );
	EXPECT_EQ( CPulseArrayData::GetCount( Block( other ) ), 0 );
	EXPECT_STREQ( At( m_Array, 0 ), "kept" );
}

TEST_F( PulseArrayData, EqualityIsElementWise )
{
	CPulseVariant other( m_ArrayType );
	EXPECT_EQ( m_Array, other );
	Append( m_Array, "Same" );
	Append( other, "same" );
	EXPECT_EQ( m_Array, other );
	Append( other, "more" );
	EXPECT_NE( m_Array, other );
}

TEST_F( PulseArrayData, EmptiedArrayEqualsAFreshEmptyArray )
{
	Append( m_Array, "a" );
	Append( m_Array, "b" );
	CPulseArrayData::Remove( Slot( m_Array ), m_ElementType, 0 );
	CPulseArrayData::Remove( Slot( m_Array ), m_ElementType, 0 );
	EXPECT_EQ( m_Array, CPulseVariant( m_ArrayType ) );

	CPulseArrayData::SetCount( Slot( m_Array ), m_ElementType, 3 );
	CPulseArrayData::SetCount( Slot( m_Array ), m_ElementType, 0 );
	EXPECT_EQ( m_Array, CPulseVariant( m_ArrayType ) );
}

TEST_F( PulseArrayData, NestedArraysReleaseEveryLevel )
{
	CPulseValueFullType innerType = m_ArrayType;
	CPulseVariant outer( CPulseValueFullType::MakeArray( innerType ) );
	CPulseArrayData **ppOuter = static_cast<CPulseArrayData **>( outer.GetValue() );
	Append( m_Array, "deep" );
	CPulseArrayData::AddToTail( ppOuter, innerType, m_Array.GetValue() );
	CPulseArrayData::AddToTail( ppOuter, innerType, m_Array.GetValue() );
	EXPECT_EQ( Block( m_Array )->GetRefCount(), 3 );

	CUtlString text;
	PulseValue_ToText( outer.GetType(), outer.GetValue(), &text );
	EXPECT_STREQ( text.Get(), "[ [ deep ], [ deep ] ]" );
	outer.Clear();
	EXPECT_EQ( Block( m_Array )->GetRefCount(), 1 );
}

TEST( PulseArrayDataAlignment, TransformElementsStaySixteenByteAligned )
{
	CPulseValueFullType elementType( PVAL_TRANSFORM );
	CPulseVariant array( CPulseValueFullType::MakeArray( elementType ) );
	CPulseArrayData **ppArray = static_cast<CPulseArrayData **>( array.GetValue() );
	CPulseArrayData::SetCount( ppArray, elementType, 9 );
	for ( int i = 0; i < 9; ++i )
		EXPECT_EQ( reinterpret_cast<uintptr_t>( CPulseArrayData::GetElement( *ppArray, elementType, i ) ) % 16, 0u ) << i;
}
} // namespace
