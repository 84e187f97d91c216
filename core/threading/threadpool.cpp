#include "core/threading/threadpool.h"

#include "core/platform/commandline.h"
#include "core/threading/threadtools.h"

#include <algorithm>

constexpr size_t MAX_JOB_NAME_LENGTH = 32;

CJob::CJob( const char *pName, std::function<void()> fnWork ) : m_strName( pName ? pName : "" ), m_fnWork( std::move( fnWork ) )
{
	if ( m_strName.size() > MAX_JOB_NAME_LENGTH )
		m_strName.resize( MAX_JOB_NAME_LENGTH );
}

bool CJob::IsDone() const
{
	int nStatus = m_nStatus.load( std::memory_order_acquire );
	return nStatus == JOB_STATUS_FINISHED || nStatus == JOB_STATUS_ABORTED;
}

bool CJob::TryExecute()
{
	int nExpected = JOB_STATUS_PENDING;
	if ( !m_nStatus.compare_exchange_strong( nExpected, JOB_STATUS_IN_PROGRESS, std::memory_order_acquire ) )
		return false;
	if ( m_fnWork )
		m_fnWork();
	m_fnWork = nullptr; // let go of what the work captured
	m_nStatus.store( JOB_STATUS_FINISHED, std::memory_order_release );
	m_nStatus.notify_all();
	return true;
}

void CJob::WaitForFinish()
{
	if ( TryExecute() )
		return;
	int nStatus;
	while ( ( nStatus = m_nStatus.load( std::memory_order_acquire ) ) == JOB_STATUS_IN_PROGRESS )
		m_nStatus.wait( nStatus, std::memory_order_acquire );
}

bool CJob::Abort( bool bWait )
{
	int nExpected = JOB_STATUS_PENDING;
	if ( m_nStatus.compare_exchange_strong( nExpected, JOB_STATUS_ABORTED, std::memory_order_acq_rel ) )
	{
		m_nStatus.notify_all();
		return true;
	}
	if ( bWait )
		WaitForFinish();
	return false;
}

int CThreadPool::DefaultThreadCount()
{
	return std::max( 1, GetHardwareThreadCount() - 1 );
}

CThreadPool::CThreadPool( int nThreads )
{
	if ( nThreads <= 0 )
		nThreads = DefaultThreadCount();
	m_Workers.reserve( size_t( nThreads ) );
	for ( int i = 0; i < nThreads; ++i )
		m_Workers.emplace_back( [ this ] { WorkerMain(); } );
}

CThreadPool::~CThreadPool()
{
	std::deque<JobHandle_t> abandoned;
	{
		std::lock_guard<std::mutex> lock( m_QueueMutex );
		m_bStopping = true;
		abandoned.swap( m_Queue );
	}
	m_QueueChanged.notify_all();
	for ( const JobHandle_t &job : abandoned )
		job->Abort( true );
	for ( std::thread &worker : m_Workers )
		worker.join();
}

JobHandle_t CThreadPool::QueueJob( const char *pName, std::function<void()> fnWork )
{
	JobHandle_t job = std::make_shared<CJob>( pName, std::move( fnWork ) );
	{
		std::lock_guard<std::mutex> lock( m_QueueMutex );
		if ( m_bStopping )
		{
			job->Abort( false );
			return job;
		}
		m_Queue.push_back( job );
	}
	m_QueueChanged.notify_one();
	return job;
}

void CThreadPool::WorkerMain()
{
	while ( true )
	{
		JobHandle_t job;
		{
			std::unique_lock<std::mutex> lock( m_QueueMutex );
			m_QueueChanged.wait( lock, [ this ] { return m_bStopping || !m_Queue.empty(); } );
			if ( m_Queue.empty() )
				return; // stopping
			job = std::move( m_Queue.front() );
			m_Queue.pop_front();
		}
		// An aborted job, or one a waiter took over, is simply dropped.
		job->TryExecute();
	}
}

void CThreadPool::ParallelFor( int nCount, const std::function<void( int nIndex )> &fnBody, const char *pName )
{
	if ( nCount <= 0 )
		return;
	std::atomic<int> nNextIndex{ 0 };
	auto fnDrain = [ & ] {
		int nIndex;
		while ( ( nIndex = nNextIndex.fetch_add( 1, std::memory_order_relaxed ) ) < nCount )
			fnBody( nIndex );
	};

	int nHelpers = std::min( NumThreads(), nCount - 1 );
	std::vector<JobHandle_t> helpers;
	helpers.reserve( size_t( nHelpers ) );
	for ( int i = 0; i < nHelpers; ++i )
		helpers.push_back( QueueJob( pName, fnDrain ) );

	fnDrain();

	// Every index is taken; helpers that never started have nothing left to do, and
	// those still running finish their last index before we return.
	for ( const JobHandle_t &helper : helpers )
		helper->Abort( true );
}

CThreadPool &ThreadPool()
{
	static CThreadPool *s_pPool = new CThreadPool( CommandLine()->ParmValue( "-threads", 0 ) );
	return *s_pPool;
}

void ParallelFor( int nCount, const std::function<void( int nIndex )> &fnBody )
{
	ThreadPool().ParallelFor( nCount, fnBody );
}
