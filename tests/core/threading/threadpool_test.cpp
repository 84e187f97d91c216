#include "core/threading/threadpool.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <set>
#include <thread>
#include <vector>

TEST( ThreadPool, DefaultCountLeavesOneCoreForTheMainThread )
{
	int nHardware = int( std::thread::hardware_concurrency() );
	EXPECT_EQ( CThreadPool::DefaultThreadCount(), nHardware > 1 ? nHardware - 1 : 1 );
	CThreadPool pool( 3 );
	EXPECT_EQ( pool.NumThreads(), 3 );
}

TEST( ThreadPool, ParallelForVisitsEveryIndexExactlyOnce )
{
	CThreadPool pool( 3 );
	for ( int nCount : { 0, 1, 2, 7, 1000, 20000 } )
	{
		std::vector<std::atomic<int>> visits( static_cast<size_t>( nCount ) );
		pool.ParallelFor( nCount, [ & ]( int i ) { visits[ size_t( i ) ].fetch_add( 1 ); } );
		for ( int i = 0; i < nCount; ++i )
			ASSERT_EQ( visits[ size_t( i ) ].load(), 1 ) << "index " << i << " of " << nCount;
	}
}

TEST( ThreadPool, ParallelForSharesWorkWithTheWorkers )
{
	CThreadPool pool( 2 );
	std::mutex mutex;
	std::set<std::thread::id> threads;
	pool.ParallelFor( 64, [ & ]( int ) {
		std::this_thread::sleep_for( std::chrono::milliseconds( 2 ) );
		std::lock_guard<std::mutex> lock( mutex );
		threads.insert( std::this_thread::get_id() );
	} );
	EXPECT_TRUE( threads.count( std::this_thread::get_id() ) ); // the caller works too
	EXPECT_GE( threads.size(), 2u );
}

TEST( ThreadPool, NestedParallelForFromAJobDoesNotDeadlock )
{
	CThreadPool pool( 1 );
	std::atomic<int> nTotal{ 0 };
	pool.ParallelFor( 4, [ & ]( int ) { pool.ParallelFor( 50, [ & ]( int ) { nTotal.fetch_add( 1 ); } ); } );
	EXPECT_EQ( nTotal.load(), 200 );
}

TEST( ThreadPool, QueuedJobRunsAndCanBeWaitedFor )
{
	CThreadPool pool( 2 );
	std::atomic<int> nValue{ 0 };
	JobHandle_t job = pool.QueueJob( "SimulateParticles", [ & ] { nValue = 42; } );
	job->WaitForFinish();
	EXPECT_EQ( nValue.load(), 42 );
	EXPECT_EQ( job->GetStatus(), JOB_STATUS_FINISHED );
	EXPECT_STREQ( job->GetName(), "SimulateParticles" );
}

TEST( ThreadPool, AbortedJobNeverRuns )
{
	CThreadPool pool( 1 );
	std::atomic<bool> bRelease{ false };
	JobHandle_t blocker = pool.QueueJob( "blocker", [ & ] {
		while ( !bRelease.load() )
			std::this_thread::yield();
	} );
	std::atomic<int> nRuns{ 0 };
	JobHandle_t queued = pool.QueueJob( "queued", [ & ] { ++nRuns; } );
	EXPECT_TRUE( queued->Abort( true ) );
	EXPECT_EQ( queued->GetStatus(), JOB_STATUS_ABORTED );
	bRelease = true;
	blocker->WaitForFinish();
	EXPECT_FALSE( blocker->Abort( true ) ); // already done
	pool.ParallelFor( 8, []( int ) {} );    // the worker has moved past the aborted job
	EXPECT_EQ( nRuns.load(), 0 );
}

TEST( ThreadPool, WaitingOnAQueuedJobRunsItOnTheWaiter )
{
	CThreadPool pool( 1 );
	std::atomic<bool> bRelease{ false };
	JobHandle_t blocker = pool.QueueJob( "blocker", [ & ] {
		while ( !bRelease.load() )
			std::this_thread::yield();
	} );
	std::thread::id ranOn;
	JobHandle_t queued = pool.QueueJob( "queued", [ & ] { ranOn = std::this_thread::get_id(); } );
	queued->WaitForFinish();
	EXPECT_EQ( ranOn, std::this_thread::get_id() );
	bRelease = true;
	blocker->WaitForFinish();
}

TEST( ThreadPool, JobNamesAreCutTo32Characters )
{
	CThreadPool pool( 1 );
	JobHandle_t job = pool.QueueJob( "a job name that is much longer than thirty-two characters", [] {} );
	job->WaitForFinish();
	EXPECT_EQ( std::string( job->GetName() ).size(), 32u );
}

TEST( ThreadPool, ProcessWidePoolRunsParallelFor )
{
	std::atomic<int> nSum{ 0 };
	ParallelFor( 100, [ & ]( int i ) { nSum.fetch_add( i ); } );
	EXPECT_EQ( nSum.load(), 4950 );
	EXPECT_GE( ThreadPool().NumThreads(), 1 );
}
