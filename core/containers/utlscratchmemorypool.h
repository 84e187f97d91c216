#pragma once
// Memory that is handed out in pieces and given back all at once, when the pool dies:
// loading compiled data sizes one block up front (the save counted the bytes), so the
// arrays of a whole object tree come out of a single allocation. Pieces are never freed
// one by one, so whatever lives in them (vectors lent the memory) must be destroyed
// before the pool.

#include <cstddef>

class CUtlScratchMemoryPool
{
public:
	// nFirstBlockBytes is the room made before the first request; 0 waits for it.
	explicit CUtlScratchMemoryPool( size_t nFirstBlockBytes = 0 );
	~CUtlScratchMemoryPool();
	CUtlScratchMemoryPool( const CUtlScratchMemoryPool & ) = delete;
	CUtlScratchMemoryPool &operator=( const CUtlScratchMemoryPool & ) = delete;

	// nBytes aligned to nAlignment (a power of two, at most 16), valid until the pool is
	// destroyed or cleared. A full pool adds a block, so this never answers null; running
	// out of memory stops the process.
	void *Alloc( size_t nBytes, size_t nAlignment = 16 );

	// Forgets every piece and frees all blocks but the first, which is kept for reuse.
	void Clear();

	// Bytes handed out by Alloc, without alignment padding.
	size_t GetBytesUsed() const { return m_nBytesUsed; }
	int GetBlockCount() const;

private:
	struct Block_t;
	Block_t *AddBlock( size_t nMinBytes );

	Block_t *m_pHead = nullptr; // the block being filled; older ones follow
	size_t m_nBytesUsed = 0;
};
