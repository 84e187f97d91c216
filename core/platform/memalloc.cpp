#include "core/platform/memalloc.h"

#include <cstdlib>

void *CStdMemAlloc::Alloc( size_t nSize )
{
	return malloc( nSize ? nSize : 1 );
}

void *CStdMemAlloc::Realloc( void *pMemory, size_t nSize )
{
	return realloc( pMemory, nSize ? nSize : 1 );
}

void CStdMemAlloc::Free( void *pMemory )
{
	free( pMemory );
}

// Constant-initialised, so it is valid before any constructor of any library runs.
static constinit CStdMemAlloc s_StdMemAlloc;
IMemAlloc *g_pMemAlloc = &s_StdMemAlloc;
