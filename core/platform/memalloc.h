#pragma once
// The process's allocator for containers. Tests may swap g_pMemAlloc to count or fail
// allocations; swap it only while no container holds memory from the previous one.

#include <cstddef>

class IMemAlloc
{
public:
	virtual void *Alloc( size_t nSize ) = 0;
	// Keeps the first min(old, new) bytes; a null block behaves as Alloc.
	virtual void *Realloc( void *pMemory, size_t nSize ) = 0;
	virtual void Free( void *pMemory ) = 0;

protected:
	~IMemAlloc() = default;
};

// The standard heap. Zero-byte requests answer a valid, distinct block.
class CStdMemAlloc final : public IMemAlloc
{
public:
	void *Alloc( size_t nSize ) override;
	void *Realloc( void *pMemory, size_t nSize ) override;
	void Free( void *pMemory ) override;
};

extern IMemAlloc *g_pMemAlloc;
