#pragma once
// A fixed set of worker threads running queued jobs in order of submission.
//
// A job that hasn't started yet can be aborted (it then never runs) or taken over by a
// thread that waits for it (it then runs on the waiting thread), so waiting on a job
// from inside another job never deadlocks the pool.

#include <atomic>
#include <condition_variable>
#include <deque>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

enum JobStatus_t
{
	JOB_STATUS_PENDING,
	JOB_STATUS_IN_PROGRESS,
	JOB_STATUS_FINISHED,
	JOB_STATUS_ABORTED,
};

class CJob
{
public:
	CJob( const char *pName, std::function<void()> fnWork );

	const char *GetName() const { return m_strName.c_str(); }
	JobStatus_t GetStatus() const { return JobStatus_t( m_nStatus.load( std::memory_order_acquire ) ); }
	// Finished or aborted.
	bool IsDone() const;

	// Returns once the job has run or was aborted. A job still waiting in the queue runs
	// on the calling thread.
	void WaitForFinish();
	// Stops a job that hasn't started: answers true and the job never runs. A running or
	// finished job answers false; with bWait a running one is first waited for.
	bool Abort( bool bWait = true );

	// Runs the job here if nobody has started it; answers whether it did. For workers.
	bool TryExecute();

private:
	std::string m_strName;
	std::function<void()> m_fnWork;
	std::atomic<int> m_nStatus{ JOB_STATUS_PENDING };
};

using JobHandle_t = std::shared_ptr<CJob>;

class CThreadPool
{
public:
	// nThreads <= 0 uses DefaultThreadCount().
	explicit CThreadPool( int nThreads = 0 );
	// Aborts jobs that haven't started and joins the workers.
	~CThreadPool();
	CThreadPool( const CThreadPool & ) = delete;
	CThreadPool &operator=( const CThreadPool & ) = delete;

	// One less than the hardware threads (the main thread has work too), at least 1.
	static int DefaultThreadCount();
	int NumThreads() const { return int( m_Workers.size() ); }

	// The name is for debugging (32 characters are kept).
	JobHandle_t QueueJob( const char *pName, std::function<void()> fnWork );

	// Calls fnBody( i ) once for every i in [0, nCount), spread over the workers and the
	// calling thread, and returns when all calls are done. Safe to call from a job.
	void ParallelFor( int nCount, const std::function<void( int nIndex )> &fnBody, const char *pName = "ParallelFor" );

private:
	void WorkerMain();

	std::vector<std::thread> m_Workers;
	std::mutex m_QueueMutex;
	std::condition_variable m_QueueChanged;
	std::deque<JobHandle_t> m_Queue;
	bool m_bStopping = false;
};

// The process's pool, started on first use with "-threads N" from the command line or
// the default count. Never destroyed.
CThreadPool &ThreadPool();

// ParallelFor on the process's pool.
void ParallelFor( int nCount, const std::function<void( int nIndex )> &fnBody );
