#pragma once
// A recursive lock for short critical sections: the owning thread may take it again
// (each Lock needs its Unlock). A contended Lock spins, then yields, then sleeps until
// the owner lets go.

#include <atomic>
#include <cstdint>
#include <thread>

class CThreadRecursiveMutex
{
public:
	explicit CThreadRecursiveMutex( int nSpinCount = 200 ) : m_nSpinCount( nSpinCount ) {}
	CThreadRecursiveMutex( const CThreadRecursiveMutex & ) = delete;
	CThreadRecursiveMutex &operator=( const CThreadRecursiveMutex & ) = delete;

	void Lock();
	// Takes the lock if it is free or already this thread's; never waits.
	bool TryLock();
	// Only the owner may unlock.
	void Unlock();

	bool IsOwnedByCurrentThread() const { return m_Owner.load( std::memory_order_relaxed ) == std::this_thread::get_id(); }
	// How many times the owner holds it; meaningful on the owning thread only.
	int GetDepth() const { return IsOwnedByCurrentThread() ? m_nDepth : 0; }

	// The standard names, so std::lock_guard and std::unique_lock work too.
	void lock() { Lock(); }
	bool try_lock() { return TryLock(); }
	void unlock() { Unlock(); }

private:
	bool TryAcquire();

	// Bit 0: held. The rest counts sleeping waiters, two per waiter.
	std::atomic<uint32_t> m_nState{ 0 };
	std::atomic<std::thread::id> m_Owner{};
	int m_nDepth = 0; // touched by the owner only
	int m_nSpinCount;
};

// Holds a lock for a scope.
template <typename Mutex>
class CAutoLockT
{
public:
	explicit CAutoLockT( Mutex &mutex ) : m_Mutex( mutex ) { m_Mutex.Lock(); }
	~CAutoLockT() { m_Mutex.Unlock(); }
	CAutoLockT( const CAutoLockT & ) = delete;
	CAutoLockT &operator=( const CAutoLockT & ) = delete;

private:
	Mutex &m_Mutex;
};

using CThreadRecursiveMutexAutoLock = CAutoLockT<CThreadRecursiveMutex>;
