#include "core/containers/utlvector.h"
#include "core/containers/utlvectorfixedgrowable.h"
#include "core/platform/memalloc.h"
#include "core/text/utlstring.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace
{

// Counts live objects, so a test sees every construction has its destruction.
struct Tracked_t
{
	static inline int s_nLive = 0;
	std::string m_strValue;

	Tracked_t() { ++s_nLive; }
	Tracked_t( const char *pValue ) : m_strValue( pValue ) { ++s_nLive; }
	Tracked_t( const Tracked_t &other ) : m_strValue( other.m_strValue ) { ++s_nLive; }
	Tracked_t( Tracked_t &&other ) noexcept : m_strValue( std::move( other.m_strValue ) ) { ++s_nLive; }
	Tracked_t &operator=( const Tracked_t & ) = default;
	Tracked_t &operator=( Tracked_t && ) noexcept = default;
	~Tracked_t() { --s_nLive; }
	bool operator==( const Tracked_t &other ) const { return m_strValue == other.m_strValue; }
};

template <typename Vector>
std::vector<std::string> Texts( const Vector &vector )
{
	std::vector<std::string> texts;
	for ( const auto &element : vector )
		texts.push_back( element.m_strValue );
	return texts;
}

using Texts_t = std::vector<std::string>;

} // namespace

TEST( UtlVector, InsertAndRemoveInTheMiddleKeepNonTrivialElementsIntact )
{
	{
		CUtlVector<Tracked_t> list;
		for ( const char *pName : { "emitter", "initializer", "operator", "renderer" } )
			list.AddToTail( Tracked_t( pName ) );
		list.InsertBefore( 2, Tracked_t( "force" ) );
		list.AddToHead( Tracked_t( "pre-emission" ) );
		EXPECT_EQ( Texts( list ), ( Texts_t{ "pre-emission", "emitter", "initializer", "force", "operator", "renderer" } ) );

		list.Remove( 3 );
		EXPECT_EQ( Texts( list ), ( Texts_t{ "pre-emission", "emitter", "initializer", "operator", "renderer" } ) );
		list.RemoveMultiple( 1, 2 );
		EXPECT_EQ( Texts( list ), ( Texts_t{ "pre-emission", "operator", "renderer" } ) );
		list.FastRemove( 0 );
		EXPECT_EQ( Texts( list ), ( Texts_t{ "renderer", "operator" } ) );
		EXPECT_EQ( Tracked_t::s_nLive, 2 );
	}
	EXPECT_EQ( Tracked_t::s_nLive, 0 );
}

TEST( UtlVector, AddingItsOwnElementSurvivesGrowth )
{
	CUtlVector<CUtlString> names;
	names.AddToTail( CUtlString( "a long enough name that the string owns heap memory" ) );
	for ( int i = 0; i < 100; ++i )
		names.AddToTail( names[ 0 ] ); // the source lives in the block that growth frees
	names.InsertBefore( 50, names[ 99 ] );
	ASSERT_EQ( names.Count(), 102 );
	for ( const CUtlString &name : names )
		EXPECT_STREQ( name.Get(), "a long enough name that the string owns heap memory" );
}

TEST( UtlVector, FindRemoveAndSetCount )
{
	CUtlVector<int> values = { 5, 3, 9, 3 };
	EXPECT_EQ( values.Find( 3 ), 1 );
	EXPECT_EQ( values.Find( 7 ), CUtlVector<int>::InvalidIndex() );
	EXPECT_TRUE( values.HasElement( 9 ) );
	EXPECT_TRUE( values.FindAndRemove( 3 ) );
	EXPECT_EQ( values, ( CUtlVector<int>{ 5, 9, 3 } ) );
	EXPECT_FALSE( values.FindAndRemove( 42 ) );

	values.SetCount( 5 );
	EXPECT_EQ( values, ( CUtlVector<int>{ 5, 9, 3, 0, 0 } ) );
	values.SetCount( 1 );
	EXPECT_EQ( values, ( CUtlVector<int>{ 5 } ) );
	values.RemoveAll();
	EXPECT_TRUE( values.IsEmpty() );
	EXPECT_GT( values.NumAllocated(), 0 );
	values.Purge();
	EXPECT_EQ( values.NumAllocated(), 0 );
}

TEST( UtlVector, SortIsStableAndTakesAComparisonOfPointers )
{
	CUtlVector<std::pair<int, const char *>> entries = { { 2, "b" }, { 1, "a" }, { 2, "c" }, { 0, "z" } };
	entries.Sort( []( const std::pair<int, const char *> *pA, const std::pair<int, const char *> *pB ) { return pA->first - pB->first; } );
	EXPECT_STREQ( entries[ 0 ].second, "z" );
	EXPECT_STREQ( entries[ 1 ].second, "a" );
	EXPECT_STREQ( entries[ 2 ].second, "b" );
	EXPECT_STREQ( entries[ 3 ].second, "c" );
}

TEST( UtlVector, CopyAndMoveOwnTheirElements )
{
	{
		CUtlVector<Tracked_t> original;
		original.AddToTail( "x" );
		original.AddToTail( "y" );
		CUtlVector<Tracked_t> copy = original;
		copy[ 0 ].m_strValue = "changed";
		EXPECT_EQ( Texts( original ), ( Texts_t{ "x", "y" } ) );

		CUtlVector<Tracked_t> moved = std::move( original );
		EXPECT_EQ( Texts( moved ), ( Texts_t{ "x", "y" } ) );
		EXPECT_EQ( original.Count(), 0 );

		copy.Swap( moved );
		EXPECT_EQ( Texts( copy ), ( Texts_t{ "x", "y" } ) );
		EXPECT_EQ( Texts( moved ), ( Texts_t{ "changed", "y" } ) );
	}
	EXPECT_EQ( Tracked_t::s_nLive, 0 );
}

TEST( UtlVector, MoveOnlyElements )
{
	CUtlVector<std::unique_ptr<int>> owners;
	for ( int i = 0; i < 20; ++i )
		owners.AddToTail( std::make_unique<int>( i ) );
	owners.InsertBefore( 0, std::make_unique<int>( -1 ) );
	owners.Remove( 10 );
	ASSERT_EQ( owners.Count(), 20 );
	EXPECT_EQ( *owners[ 0 ], -1 );
	EXPECT_EQ( *owners[ 10 ], 10 );
	EXPECT_EQ( *owners.Tail(), 19 );
}

TEST( UtlVectorFixedGrowable, GrowsPastItsInlineStorageAndBack )
{
	{
		CUtlVectorFixedGrowable<Tracked_t, 4> list;
		EXPECT_TRUE( list.IsInline() );
		for ( int i = 0; i < 4; ++i )
			list.AddToTail( std::to_string( i ).c_str() );
		EXPECT_TRUE( list.IsInline() );
		list.InsertBefore( 2, "middle" );
		EXPECT_FALSE( list.IsInline() );
		EXPECT_EQ( Texts( list ), ( Texts_t{ "0", "1", "middle", "2", "3" } ) );
		list.Purge();
		EXPECT_TRUE( list.IsInline() );
		list.AddToTail( "again" );
		EXPECT_EQ( Texts( list ), ( Texts_t{ "again" } ) );
	}
	EXPECT_EQ( Tracked_t::s_nLive, 0 );
}

TEST( UtlVectorFixedGrowable, MovesElementsOutOfInlineStorage )
{
	{
		CUtlVectorFixedGrowable<Tracked_t, 8> inlineList;
		inlineList.AddToTail( "a" );
		inlineList.AddToTail( "b" );
		CUtlVector<Tracked_t> heapList = std::move( inlineList );
		EXPECT_EQ( Texts( heapList ), ( Texts_t{ "a", "b" } ) );
		EXPECT_EQ( inlineList.Count(), 0 );

		CUtlVectorFixedGrowable<Tracked_t, 8> back = std::move( heapList );
		EXPECT_EQ( Texts( back ), ( Texts_t{ "a", "b" } ) );
		CUtlVectorFixedGrowable<Tracked_t, 8> copy = back;
		EXPECT_TRUE( copy.IsInline() );
		EXPECT_EQ( Texts( copy ), ( Texts_t{ "a", "b" } ) );
	}
	EXPECT_EQ( Tracked_t::s_nLive, 0 );
}

TEST( UtlVectorFixedGrowable, WorksThroughAPlainVectorReference )
{
	CUtlVectorFixedGrowable<int, 2> values;
	CUtlVector<int> &asVector = values;
	for ( int i = 0; i < 10; ++i )
		asVector.AddToTail( i * i );
	EXPECT_EQ( values.Count(), 10 );
	EXPECT_EQ( values[ 9 ], 81 );
	EXPECT_FALSE( values.IsInline() );
}

namespace
{

// Passes through to the standard heap and counts blocks still held.
class CCountingMemAlloc final : public IMemAlloc
{
public:
	void *Alloc( size_t nSize ) override
	{
		++m_nLiveBlocks;
		return m_Std.Alloc( nSize );
	}
	void *Realloc( void *pMemory, size_t nSize ) override
	{
		if ( !pMemory )
			++m_nLiveBlocks;
		++m_nReallocs;
		return m_Std.Realloc( pMemory, nSize );
	}
	void Free( void *pMemory ) override
	{
		if ( pMemory )
			--m_nLiveBlocks;
		m_Std.Free( pMemory );
	}

	int m_nLiveBlocks = 0;
	int m_nReallocs = 0;

private:
	CStdMemAlloc m_Std;
};

} // namespace

TEST( UtlVectorMemory, VectorsTakeAndGiveBackMemoryThroughTheHook )
{
	CCountingMemAlloc counting;
	IMemAlloc *pPrevious = g_pMemAlloc;
	g_pMemAlloc = &counting;
	{
		CUtlVector<int> numbers;
		for ( int i = 0; i < 1000; ++i )
			numbers.AddToTail( i );
		EXPECT_EQ( counting.m_nLiveBlocks, 1 );
		EXPECT_GT( counting.m_nReallocs, 0 ); // plain data grows in place where it can

		CUtlVector<CUtlString> names;
		for ( int i = 0; i < 100; ++i )
			names.AddToTail( CUtlString( "name" ) );
		EXPECT_EQ( counting.m_nLiveBlocks, 2 );

		CUtlVectorFixedGrowable<int, 16> small;
		for ( int i = 0; i < 16; ++i )
			small.AddToTail( i );
		EXPECT_EQ( counting.m_nLiveBlocks, 2 ); // still inside the object
		small.AddToTail( 16 );
		EXPECT_EQ( counting.m_nLiveBlocks, 3 );
	}
	EXPECT_EQ( counting.m_nLiveBlocks, 0 );
	g_pMemAlloc = pPrevious;
}

TEST( UtlVectorMemory, AllocationCountsGrowGeometricallyOrByTheGrowSize )
{
	EXPECT_EQ( UtlVectorMemory_CalcNewAllocationCount( 0, 0, 1, 4 ), 8u );   // 32 bytes of ints
	EXPECT_EQ( UtlVectorMemory_CalcNewAllocationCount( 0, 0, 1, 100 ), 1u ); // big elements: one
	EXPECT_EQ( UtlVectorMemory_CalcNewAllocationCount( 8, 0, 9, 4 ), 16u );
	EXPECT_EQ( UtlVectorMemory_CalcNewAllocationCount( 8, 0, 100, 4 ), 128u );
	EXPECT_EQ( UtlVectorMemory_CalcNewAllocationCount( 0, 10, 25, 4 ), 30u );
}

TEST( UtlVectorMemoryDeathTest, OverflowingAllocationStopsTheProcess )
{
	EXPECT_DEATH( UtlVectorMemory_CalcNewAllocationCount( 0, 0, SIZE_MAX / 2, 16 ), "Out of memory" );
}
