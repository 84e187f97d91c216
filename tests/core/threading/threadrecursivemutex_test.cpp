#include "core/threading/threadrecursivemutex.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>
#include <thread>
#include <vector>

TEST( ThreadRecursiveMutex, OwnerMayTakeItAgain )
{
	CThreadRecursiveMutex mutex;
	mutex.Lock();
	EXPECT_TRUE( mutex.TryLock() );
	{
		CThreadRecursiveMutexAutoLock guard( mutex );
		EXPECT_EQ( mutex.GetDepth(), 3 );
	}
	EXPECT_EQ( mutex.GetDepth(), 2 );
	mutex.Unlock();
	EXPECT_TRUE( mutex.IsOwnedByCurrentThread() );
	mutex.Unlock();
	EXPECT_FALSE( mutex.IsOwnedByCurrentThread() );
	EXPECT_EQ( mutex.GetDepth(), 0 );
}

TEST( ThreadRecursiveMutex, OtherThreadsAreKeptOutUntilTheLastUnlock )
{
	CThreadRecursiveMutex mutex;
	mutex.Lock();
	mutex.Lock();

	bool bTryResult = true;
	std::thread( [ & ] { bTryResult = mutex.TryLock(); } ).join();
	EXPECT_FALSE( bTryResult );

	std::atomic<bool> bAcquired{ false };
	std::thread waiter( [ & ] {
		CThreadRecursiveMutexAutoLock guard( mutex );
		bAcquired = true;
	} );
	std::this_thread::sleep_for( std::chrono::milliseconds( 30 ) );
	EXPECT_FALSE( bAcquired.load() );
	mutex.Unlock();
	std::this_thread::sleep_for( std::chrono::milliseconds( 30 ) );
	EXPECT_FALSE( bAcquired.load() ); // still held once
	mutex.Unlock();
	waiter.join();
	EXPECT_TRUE( bAcquired.load() );
}

TEST( ThreadRecursiveMutex, CountersStayExactUnderContention )
{
	CThreadRecursiveMutex mutex( 10 ); // few spins, so waiters also sleep
	long long nCounter = 0; // deliberately unsynchronised apart from the mutex
	std::vector<std::thread> threads;
	for ( int t = 0; t < 4; ++t )
	{
		threads.emplace_back( [ & ] {
			for ( int i = 0; i < 20000; ++i )
			{
				std::lock_guard<CThreadRecursiveMutex> outer( mutex );
				CThreadRecursiveMutexAutoLock inner( mutex );
				++nCounter;
			}
		} );
	}
	for ( std::thread &thread : threads )
		thread.join();
	EXPECT_EQ( nCounter, 80000 );
}
