#pragma once
// Raw memory of growable vectors, through g_pMemAlloc. Running out of memory is not an
// error a caller can handle here: it stops the process with a message.

#include <cstddef>

// A new block of nNewBytes. With bRealloc, pMemory is a heap block that is resized in
// place or moved (contents kept). Without, a fresh block is made and the first
// nOldBytes of pMemory, if given, are copied into it (pMemory stays as it was: it may
// be storage inside an object). Never answers null.
void *UtlVectorMemory_Alloc( void *pMemory, bool bRealloc, size_t nNewBytes, size_t nOldBytes );

// How many elements to allocate to hold nNewSize: multiples of nGrowSize when it is
// not 0, else doubling from nAllocationCount (starting with at least 32 bytes'
// worth). Stops the process if the byte size would overflow.
size_t UtlVectorMemory_CalcNewAllocationCount( size_t nAllocationCount, size_t nGrowSize, size_t nNewSize, size_t nBytesItem );

// Reports the failure and stops the process.
[[noreturn]] void UtlVectorMemory_FailedAllocation( size_t nElementCount, size_t nBytesItem );
