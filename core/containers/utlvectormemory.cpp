#include "core/containers/utlvectormemory.h"

#include "core/platform/fatalerror.h"
#include "core/platform/memalloc.h"

#include <cstdint>
#include <cstring>

void *UtlVectorMemory_Alloc( void *pMemory, bool bRealloc, size_t nNewBytes, size_t nOldBytes )
{
	void *pNew;
	if ( bRealloc )
	{
		pNew = g_pMemAlloc->Realloc( pMemory, nNewBytes );
	}
	else
	{
		pNew = g_pMemAlloc->Alloc( nNewBytes );
		if ( pNew && pMemory && nOldBytes )
			memcpy( pNew, pMemory, nOldBytes < nNewBytes ? nOldBytes : nNewBytes );
	}
	if ( !pNew )
		UtlVectorMemory_FailedAllocation( nNewBytes, 1 );
	return pNew;
}

size_t UtlVectorMemory_CalcNewAllocationCount( size_t nAllocationCount, size_t nGrowSize, size_t nNewSize, size_t nBytesItem )
{
	if ( nBytesItem == 0 )
		nBytesItem = 1;
	const size_t nMaxCount = SIZE_MAX / nBytesItem;
	if ( nNewSize > nMaxCount )
		UtlVectorMemory_FailedAllocation( nNewSize, nBytesItem );

	if ( nGrowSize )
	{
		size_t nBlocks = nNewSize / nGrowSize + ( nNewSize % nGrowSize ? 1 : 0 );
		if ( nBlocks > nMaxCount / nGrowSize )
			UtlVectorMemory_FailedAllocation( nNewSize, nBytesItem );
		return nBlocks * nGrowSize;
	}

	size_t nCount = nAllocationCount;
	if ( nCount == 0 )
	{
		// Small first blocks waste little; 32 bytes holds several pointers or ints.
		nCount = 32 / nBytesItem;
		if ( nCount == 0 )
			nCount = 1;
	}
	while ( nCount < nNewSize )
	{
		if ( nCount > nMaxCount / 2 )
			return nNewSize; // doubling would overflow; what is needed still fits
		nCount *= 2;
	}
	return nCount;
}

void UtlVectorMemory_FailedAllocation( size_t nElementCount, size_t nBytesItem )
{
	Plat_FatalError( "Out of memory: could not allocate %zu elements of %zu bytes.\n", nElementCount, nBytesItem );
}
