#include <gtest/gtest.h>

#include <string>
#include <utility>

#include "core/containers/utlvector.h"
#include "core/containers/utlvectorfixedgrowable.h"

namespace
{
// Counts live objects, so a test sees that elements in lent memory are still destroyed.
struct Counted_t
{
	static inline int s_nLive = 0;
	std::string m_strValue = "a text long enough to live on the heap, not in the string";

	Counted_t() { ++s_nLive; }
	Counted_t( const Counted_t &other ) : m_strValue( other.m_strValue ) { ++s_nLive; }
	Counted_t( Counted_t &&other ) noexcept : m_strValue( std::move( other.m_strValue ) ) { ++s_nLive; }
	Counted_t &operator=( const Counted_t & ) = default;
	Counted_t &operator=( Counted_t && ) noexcept = default;
	~Counted_t() { --s_nLive; }
};

// Storage that a vector must never hand to the heap's free (ASan reports it if it does).
template <typename T, int N> struct LentStorage_t
{
	T *Get() { return reinterpret_cast<T *>( m_Bytes ); }
	alignas( 16 ) unsigned char m_Bytes[ sizeof( T ) * N ];
};
} // namespace

TEST( UtlVectorExternalMemory, ElementsLiveInTheLentMemoryAndAreDestroyedButNotFreed )
{
	LentStorage_t<Counted_t, 4> storage;
	{
		CUtlVector<Counted_t> vector;
		vector.SetExternalMemory( storage.Get(), 4 );
		vector.SetCount( 3 );
		EXPECT_TRUE( vector.IsExternallyAllocated() );
		EXPECT_EQ( vector.Base(), storage.Get() );
		EXPECT_EQ( vector.NumAllocated(), 4 );
		EXPECT_EQ( Counted_t::s_nLive, 3 );
	}
	EXPECT_EQ( Counted_t::s_nLive, 0 ) << "leaving scope destroyed the elements";
}

TEST( UtlVectorExternalMemory, GrowingPastTheLentMemoryMovesToTheHeap )
{
	LentStorage_t<int, 2> storage;
	CUtlVector<int> numbers;
	numbers.SetExternalMemory( storage.Get(), 2 );
	numbers.AddToTail( 10 );
	numbers.AddToTail( 20 );
	numbers.AddToTail( 30 );
	EXPECT_FALSE( numbers.IsExternallyAllocated() );
	EXPECT_NE( numbers.Base(), storage.Get() );
	ASSERT_EQ( numbers.Count(), 3 );
	EXPECT_EQ( numbers[ 0 ], 10 );
	EXPECT_EQ( numbers[ 2 ], 30 );

	LentStorage_t<Counted_t, 1> strings;
	{
		CUtlVector<Counted_t> vector;
		vector.SetExternalMemory( strings.Get(), 1 );
		vector.AddToTail();
		vector.AddToTail();
		EXPECT_FALSE( vector.IsExternallyAllocated() );
		EXPECT_EQ( Counted_t::s_nLive, 2 );
	}
	EXPECT_EQ( Counted_t::s_nLive, 0 );
}

TEST( UtlVectorExternalMemory, MovingHandsTheLentMemoryOnWithoutOwningIt )
{
	LentStorage_t<Counted_t, 2> storage;
	{
		CUtlVector<Counted_t> source;
		source.SetExternalMemory( storage.Get(), 2 );
		source.SetCount( 2 );
		CUtlVectorFixedGrowable<Counted_t, 1> target( std::move( source ) );
		EXPECT_EQ( target.Base(), storage.Get() );
		EXPECT_TRUE( target.IsExternallyAllocated() );
		EXPECT_FALSE( source.IsExternallyAllocated() );
		EXPECT_EQ( source.Count(), 0 );
		EXPECT_EQ( Counted_t::s_nLive, 2 );
	}
	EXPECT_EQ( Counted_t::s_nLive, 0 );
}

TEST( UtlVectorExternalMemory, PurgeLetsGoAndTheVectorUsesTheHeapAgain )
{
	LentStorage_t<int, 4> storage;
	CUtlVector<int> numbers;
	numbers.AddToTail( 1 ); // a heap block, freed by SetExternalMemory
	numbers.SetExternalMemory( storage.Get(), 4 );
	numbers.AddToTail( 2 );
	EXPECT_EQ( numbers.Base(), storage.Get() );
	numbers.Purge();
	EXPECT_FALSE( numbers.IsExternallyAllocated() );
	numbers.AddToTail( 3 );
	EXPECT_NE( numbers.Base(), storage.Get() );
	EXPECT_EQ( numbers[ 0 ], 3 );
}
