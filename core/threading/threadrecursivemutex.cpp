#include "core/threading/threadrecursivemutex.h"

#include "core/platform/dbgassert.h"
#include "core/threading/threadtools.h"

constexpr uint32_t MUTEX_HELD = 1;
constexpr uint32_t MUTEX_WAITER = 2;
constexpr int MUTEX_YIELD_COUNT = 4;

bool CThreadRecursiveMutex::TryAcquire()
{
	uint32_t nState = m_nState.load( std::memory_order_relaxed );
	while ( !( nState & MUTEX_HELD ) )
	{
		if ( m_nState.compare_exchange_weak( nState, nState | MUTEX_HELD, std::memory_order_acquire, std::memory_order_relaxed ) )
			return true;
	}
	return false;
}

void CThreadRecursiveMutex::Lock()
{
	std::thread::id self = std::this_thread::get_id();
	if ( m_Owner.load( std::memory_order_relaxed ) == self )
	{
		++m_nDepth;
		return;
	}

	bool bAcquired = false;
	for ( int i = 0; i < m_nSpinCount && !bAcquired; ++i )
	{
		bAcquired = TryAcquire();
		if ( !bAcquired )
			ThreadPause();
	}
	for ( int i = 0; i < MUTEX_YIELD_COUNT && !bAcquired; ++i )
	{
		ThreadYield();
		bAcquired = TryAcquire();
	}
	if ( !bAcquired )
	{
		// Counted as a waiter, so Unlock knows to wake someone.
		m_nState.fetch_add( MUTEX_WAITER, std::memory_order_relaxed );
		while ( true )
		{
			uint32_t nState = m_nState.load( std::memory_order_relaxed );
			if ( !( nState & MUTEX_HELD ) )
			{
				if ( m_nState.compare_exchange_weak( nState, ( nState - MUTEX_WAITER ) | MUTEX_HELD, std::memory_order_acquire, std::memory_order_relaxed ) )
					break;
				continue;
			}
			m_nState.wait( nState, std::memory_order_relaxed );
		}
	}
	m_Owner.store( self, std::memory_order_relaxed );
	m_nDepth = 1;
}

bool CThreadRecursiveMutex::TryLock()
{
	std::thread::id self = std::this_thread::get_id();
	if ( m_Owner.load( std::memory_order_relaxed ) == self )
	{
		++m_nDepth;
		return true;
	}
	if ( !TryAcquire() )
		return false;
	m_Owner.store( self, std::memory_order_relaxed );
	m_nDepth = 1;
	return true;
}

void CThreadRecursiveMutex::Unlock()
{
	if ( !IsOwnedByCurrentThread() )
	{
		AssertMsg( false, "CThreadRecursiveMutex unlocked by a thread that doesn't own it" );
		return;
	}
	if ( --m_nDepth > 0 )
		return;
	m_Owner.store( std::thread::id(), std::memory_order_relaxed );
	uint32_t nPrevious = m_nState.fetch_sub( MUTEX_HELD, std::memory_order_release );
	if ( nPrevious >= MUTEX_WAITER )
		m_nState.notify_one();
}
