#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "core/containers/utlscratchmemorypool.h"

TEST( UtlScratchMemoryPool, PiecesAreAlignedAndCounted )
{
	CUtlScratchMemoryPool pool( 256 );
	void *pA = pool.Alloc( 3 );
	void *pB = pool.Alloc( 40 );
	void *pC = pool.Alloc( 1, 4 );
	EXPECT_EQ( reinterpret_cast<uintptr_t>( pA ) % 16, 0u );
	EXPECT_EQ( reinterpret_cast<uintptr_t>( pB ) % 16, 0u ) << "the piece after 3 bytes still starts on 16";
	EXPECT_EQ( reinterpret_cast<uintptr_t>( pC ) % 4, 0u );
	EXPECT_GE( static_cast<char *>( pB ) - static_cast<char *>( pA ), 3 ) << "pieces don't overlap";
	EXPECT_EQ( pool.GetBytesUsed(), 44u ) << "padding is not counted";
	EXPECT_EQ( pool.GetBlockCount(), 1 );
	// Every byte handed out is usable (ASan checks the writes).
	memset( pA, 1, 3 );
	memset( pB, 2, 40 );
	memset( pC, 3, 1 );
	EXPECT_EQ( static_cast<unsigned char *>( pA )[ 2 ], 1 );
}

TEST( UtlScratchMemoryPool, FullPoolAddsABlockInsteadOfFailing )
{
	CUtlScratchMemoryPool pool( 32 );
	void *pA = pool.Alloc( 32 );
	void *pB = pool.Alloc( 10000 );
	ASSERT_NE( pA, nullptr );
	ASSERT_NE( pB, nullptr );
	memset( pA, 0, 32 );
	memset( pB, 0, 10000 );
	EXPECT_EQ( pool.GetBlockCount(), 2 );
	EXPECT_EQ( pool.GetBytesUsed(), 10032u );
}

TEST( UtlScratchMemoryPool, EmptyPoolMakesItsFirstBlockOnDemand )
{
	CUtlScratchMemoryPool pool;
	EXPECT_EQ( pool.GetBlockCount(), 0 );
	EXPECT_NE( pool.Alloc( 8 ), nullptr );
	EXPECT_EQ( pool.GetBlockCount(), 1 );
}

TEST( UtlScratchMemoryPool, ClearKeepsOneBlockForReuse )
{
	CUtlScratchMemoryPool pool( 64 );
	void *pFirst = pool.Alloc( 16 );
	pool.Alloc( 5000 );
	pool.Clear();
	EXPECT_EQ( pool.GetBytesUsed(), 0u );
	EXPECT_EQ( pool.GetBlockCount(), 1 );
	EXPECT_EQ( pool.Alloc( 16 ), pFirst ) << "the first block is filled again from its start";
}
