#include "core/host/ifilesystem.h"

#include <atomic>

namespace
{
std::atomic<IFileSystem *> g_pFileSystem{ nullptr };
}

IFileSystem *GetFileSystem()
{
	return g_pFileSystem.load( std::memory_order_acquire );
}

void SetFileSystem( IFileSystem *pFileSystem )
{
	g_pFileSystem.store( pFileSystem, std::memory_order_release );
}
