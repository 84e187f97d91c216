#include "core/threading/threadtools.h"

#include <chrono>

void ThreadSleep( unsigned nMilliseconds )
{
	std::this_thread::sleep_for( std::chrono::milliseconds( nMilliseconds ) );
}

void ThreadYield()
{
	std::this_thread::yield();
}

void ThreadPause()
{
#if defined( __x86_64__ ) || defined( __i386__ )
	__builtin_ia32_pause();
#elif defined( __aarch64__ )
	asm volatile( "yield" );
#endif
}

std::thread::id ThreadGetCurrentId()
{
	return std::this_thread::get_id();
}

int GetHardwareThreadCount()
{
	unsigned nCount = std::thread::hardware_concurrency();
	return nCount ? int( nCount ) : 1;
}
