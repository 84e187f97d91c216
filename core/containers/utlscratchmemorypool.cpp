#include "core/containers/utlscratchmemorypool.h"

#include "core/platform/dbgassert.h"
#include "core/platform/fatalerror.h"
#include "core/platform/memalloc.h"

#include <cstdint>

namespace
{
// Later blocks are at least this big, so many small requests after the counted first
// block don't each cost an allocation.
constexpr size_t SCRATCH_MIN_BLOCK_BYTES = 4096;
constexpr size_t SCRATCH_MAX_ALIGNMENT = 16;
} // namespace

struct CUtlScratchMemoryPool::Block_t
{
	Block_t *m_pNext;
	size_t m_nSize;
	size_t m_nUsed;
	// The data follows the header.
	unsigned char *Data() { return reinterpret_cast<unsigned char *>( this + 1 ); }
};

CUtlScratchMemoryPool::CUtlScratchMemoryPool( size_t nFirstBlockBytes )
{
	if ( nFirstBlockBytes )
		AddBlock( nFirstBlockBytes );
}

CUtlScratchMemoryPool::~CUtlScratchMemoryPool()
{
	while ( Block_t *pBlock = m_pHead )
	{
		m_pHead = pBlock->m_pNext;
		g_pMemAlloc->Free( pBlock );
	}
}

CUtlScratchMemoryPool::Block_t *CUtlScratchMemoryPool::AddBlock( size_t nMinBytes )
{
	constexpr size_t nHeader = sizeof( Block_t );
	if ( nMinBytes > SIZE_MAX - nHeader - SCRATCH_MAX_ALIGNMENT )
		Plat_FatalError( "Out of memory: scratch block of %zu bytes is too large.\n", nMinBytes );
	void *pMemory = g_pMemAlloc->Alloc( nHeader + nMinBytes + SCRATCH_MAX_ALIGNMENT );
	if ( !pMemory )
		Plat_FatalError( "Out of memory: could not allocate a scratch block of %zu bytes.\n", nMinBytes );
	Block_t *pBlock = static_cast<Block_t *>( pMemory );
	pBlock->m_pNext = m_pHead;
	// The heap may align less than the data wants; the extra room covers the shift.
	pBlock->m_nSize = nMinBytes + SCRATCH_MAX_ALIGNMENT;
	pBlock->m_nUsed = 0;
	m_pHead = pBlock;
	return pBlock;
}

void *CUtlScratchMemoryPool::Alloc( size_t nBytes, size_t nAlignment )
{
	if ( nAlignment == 0 || nAlignment > SCRATCH_MAX_ALIGNMENT || ( nAlignment & ( nAlignment - 1 ) ) )
	{
		AssertMsg( false, "scratch alignment must be a power of two up to 16" );
		nAlignment = SCRATCH_MAX_ALIGNMENT;
	}
	for ( int nTry = 0; nTry < 2; ++nTry )
	{
		if ( Block_t *pBlock = m_pHead )
		{
			uintptr_t nBase = reinterpret_cast<uintptr_t>( pBlock->Data() );
			uintptr_t nStart = ( nBase + pBlock->m_nUsed + nAlignment - 1 ) & ~uintptr_t( nAlignment - 1 );
			size_t nOffset = nStart - nBase;
			if ( nOffset <= pBlock->m_nSize && nBytes <= pBlock->m_nSize - nOffset )
			{
				pBlock->m_nUsed = nOffset + nBytes;
				m_nBytesUsed += nBytes;
				return pBlock->Data() + nOffset;
			}
		}
		AddBlock( nBytes > SCRATCH_MIN_BLOCK_BYTES ? nBytes : SCRATCH_MIN_BLOCK_BYTES );
	}
	Plat_FatalError( "Scratch pool could not place %zu bytes.\n", nBytes );
}

void CUtlScratchMemoryPool::Clear()
{
	Block_t *pFirst = nullptr;
	while ( Block_t *pBlock = m_pHead )
	{
		m_pHead = pBlock->m_pNext;
		if ( m_pHead )
			g_pMemAlloc->Free( pBlock );
		else
			pFirst = pBlock;
	}
	if ( pFirst )
	{
		pFirst->m_nUsed = 0;
		pFirst->m_pNext = nullptr;
	}
	m_pHead = pFirst;
	m_nBytesUsed = 0;
}

int CUtlScratchMemoryPool::GetBlockCount() const
{
	int nCount = 0;
	for ( const Block_t *pBlock = m_pHead; pBlock; pBlock = pBlock->m_pNext )
		++nCount;
	return nCount;
}
