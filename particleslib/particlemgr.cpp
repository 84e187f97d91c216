#include "particleslib/particlemgr.h"

#include <algorithm>
#include <atomic>
#include <cmath>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "core/console/concommand.h"
#include "core/logging/logging.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particlesimmath.h"
#include "core/platform/platformtime.h"
#include "core/text/strtools.h"
#include "core/threading/threadpool.h"
#include "particleslib/iparticleslibhost.h"
#include "particleslib/particleconvars.h"
#include "particleslib/particleeffect.h"
#include "particleslib/particleproperty.h"

namespace
{
// Every manager of the process, for the restart across all tools.
std::mutex &ManagersMutex()
{
	static std::mutex s_Mutex;
	return s_Mutex;
}
std::vector<CParticleMgr *> &Managers()
{
	static std::vector<CParticleMgr *> s_Managers;
	return s_Managers;
}

void DumpList( const CCommand &args, bool bSimulating )
{
	if ( IParticleSystemMgr *pHostMgr = GetParticleSystemMgr() )
		pHostMgr->DumpParticleList( args.ArgC() == 2 ? args.Arg( 1 ) : nullptr, bSimulating );
}

ConCommand cl_particles_dumplist( "cl_particles_dumplist", []( const CCommand &args ) { DumpList( args, false ); }, "Dump all new particles, optional name substring." );
ConCommand cl_particles_dumpsimlist( "cl_particles_dumpsimlist", []( const CCommand &args ) { DumpList( args, true ); },
	"Dump all simulating particles, optional name substring." );

constexpr double MAIN_THREAD_JOB_BUDGET_US = 200.0;
constexpr double WORKER_JOB_BUDGET_US = 500.0;
constexpr int MAX_LIMITED_JOBS = 100;
} // namespace

CParticleMgr::CParticleMgr()
{
	std::lock_guard lock( ManagersMutex() );
	Managers().push_back( this );
}

CParticleMgr::~CParticleMgr()
{
	Shutdown();
	std::lock_guard lock( ManagersMutex() );
	auto &managers = Managers();
	managers.erase( std::remove( managers.begin(), managers.end(), this ), managers.end() );
}

bool CParticleMgr::Init( IParticlesLibHost *pLibHost )
{
	m_pLibHost = pLibHost;
	m_bInitialized = pLibHost != nullptr;
	return m_bInitialized;
}

void CParticleMgr::Shutdown()
{
	{
		CThreadRecursiveMutexAutoLock lock( m_EffectListMutex );
		while ( CNewParticleEffect *pEffect = m_pFirstEffect )
		{
			RemoveEffect( pEffect );
			// The owner's effects go too: the manager is going.
			pEffect->m_bAllocated = true;
			pEffect->NotifyRemove();
		}
	}
	if ( m_pLibHost )
		m_pLibHost->Shutdown();
	m_pLibHost = nullptr;
	m_bInitialized = false;
}

void CParticleMgr::AddEffect( CNewParticleEffect *pEffect )
{
	CThreadRecursiveMutexAutoLock lock( m_EffectListMutex );
	pEffect->m_pPrev = nullptr;
	pEffect->m_pNext = m_pFirstEffect;
	if ( m_pFirstEffect )
		m_pFirstEffect->m_pPrev = pEffect;
	m_pFirstEffect = pEffect;
}

void CParticleMgr::RemoveEffect( CNewParticleEffect *pEffect )
{
	CThreadRecursiveMutexAutoLock lock( m_EffectListMutex );
	if ( !pEffect->m_pPrev && m_pFirstEffect != pEffect )
		return; // not linked
	if ( pEffect->m_pPrev )
		pEffect->m_pPrev->m_pNext = pEffect->m_pNext;
	else
		m_pFirstEffect = pEffect->m_pNext;
	if ( pEffect->m_pNext )
		pEffect->m_pNext->m_pPrev = pEffect->m_pPrev;
	pEffect->m_pNext = pEffect->m_pPrev = nullptr;
}

int CParticleMgr::GetEffectCount() const
{
	CThreadRecursiveMutexAutoLock lock( m_EffectListMutex );
	int nCount = 0;
	for ( CNewParticleEffect *pEffect = m_pFirstEffect; pEffect; pEffect = pEffect->m_pNext )
		++nCount;
	return nCount;
}

int CParticleMgr::RestartEffectsEverywhere( const char *pDefinitionName )
{
	if ( !pDefinitionName || !*pDefinitionName )
		return 0;
	int nRestarted = 0;
	std::lock_guard lock( ManagersMutex() );
	for ( CParticleMgr *pMgr : Managers() )
	{
		CThreadRecursiveMutexAutoLock listLock( pMgr->m_EffectListMutex );
		for ( CNewParticleEffect *pEffect = pMgr->m_pFirstEffect; pEffect; pEffect = pEffect->m_pNext )
		{
			if ( !pEffect->m_bRemove && !V_stricmp_fast( pEffect->GetName(), pDefinitionName ) )
			{
				pEffect->Restart();
				++nRestarted;
			}
		}
	}
	return nRestarted;
}

// ---------------------------------------------------------------------------------------
// The frame

void CParticleMgr::Simulate( float flTimeDelta, float flFrameTime, bool bPaused )
{
	IParticleSystemMgr *pHostMgr = GetParticleSystemMgr();
	if ( !pHostMgr || !m_pLibHost )
		return;
	CThreadRecursiveMutexAutoLock lock( m_EffectListMutex );
	ParticleFrameSettings_t settings;
	settings.m_flFallbackBase = float( cl_particle_fallback_base.GetInt() );
	settings.m_flFallbackMultiplier = cl_particle_fallback_multiplier.GetFloat();
	settings.m_flSimFallbackBaseMultiplier = cl_particle_sim_fallback_base_multiplier.GetFloat();
	settings.m_flSimFallbackThresholdMs = cl_particle_sim_fallback_threshold_ms.GetFloat();
	settings.m_nHostValue0 = m_pLibHost->GetHostManagerFrameValue( 0 );
	settings.m_nHostValue1 = m_pLibHost->GetHostManagerFrameValue( 1 );
	settings.m_bRender = m_pLibHost->GetHostManagerRenderFlag();
	pHostMgr->SetFrameSettings( settings );
	float flStep = std::min( flTimeDelta, 0.1f * flFrameTime );
	if ( flStep >= 0.0f )
		UpdateNewEffects( flStep, bPaused );
}

void CParticleMgr::PostUpdate()
{
	if ( !GetParticleSystemMgr() )
		return;
	{
		CThreadRecursiveMutexAutoLock lock( m_EffectListMutex );
		CNewParticleEffect *pNext = nullptr;
		for ( CNewParticleEffect *pEffect = m_pFirstEffect; pEffect; pEffect = pNext )
		{
			pNext = pEffect->m_pNext;
			if ( !pEffect->m_bRemove )
				continue;
			pEffect->RunQueuedCommands();
			RemoveEffect( pEffect );
			pEffect->NotifyRemove();
		}
	}
	if ( m_pLibHost )
		m_pLibHost->OnFrameUpdateDone();
}

void CParticleMgr::UpdateNewEffects( float flTimeDelta, bool bPaused )
{
	if ( r_freezeparticles.GetBool() )
		return;
	const float flStep = flTimeDelta * r_particle_timescale.GetFloat();
	const int nMax = cl_particle_max_count.GetInt();
	const double flStart = Plat_FloatTime();

	ParticleSimList_t list;
	BuildParticleSimList( list, bPaused );
	m_flFrameStep = flStep;
	if ( EarlyRetireParticleSystems( list.Count(), list ) )
	{
		list.RemoveAll();
		BuildParticleSimList( list, bPaused );
	}

	int nCount = 0;
	if ( !list.IsEmpty() )
	{
		if ( nMax >= 1 )
		{
			for ( const ParticleSimListItem_t &item : list )
				nCount += item.m_pEffect->CountCollections();
		}
		m_pLibHost->FrameBegin();
		std::sort( list.begin(), list.end(), []( const ParticleSimListItem_t &a, const ParticleSimListItem_t &b ) { return a.m_nKey > b.m_nKey; } );
		SimulateParticles( list );
		m_pLibHost->FrameEnd();
	}
	for ( ParticleSimListItem_t &item : list )
		item.m_pEffect->DetectChanges();
	m_nLastSimListCount = list.Count();

	if ( IParticleSystemMgr *pHostMgr = GetParticleSystemMgr() )
		pHostMgr->SetLastSimulationTime( float( Plat_FloatTime() - flStart ) );
	// Reported when the count rises to the limit, not again every frame that it stays there.
	bool bOver = nMax >= 1 && nCount >= nMax;
	if ( bOver && !m_bOverLimit )
		ReportTooManySystems();
	m_bOverLimit = bOver;
}

void CParticleMgr::BuildParticleSimList( ParticleSimList_t &list, bool bPaused )
{
	if ( !cl_particle_simulate.GetBool() )
		return;
	// The collection keeps its own age: the group's clock is not pushed into it, so a
	// restart reads how long the system has run, whatever the scene's time.
	CUtlVectorFixedGrowableCompat<CNewParticleEffect *, 1024> sideList;
	for ( CNewParticleEffect *pEffect = m_pFirstEffect; pEffect; pEffect = pEffect->m_pNext )
	{
		if ( pEffect->m_bRemove || !pEffect->m_pParticles )
			continue;
		IParticleCollection *pCollection = pEffect->m_pParticles;
		if ( bPaused && !pEffect->m_bShouldSimulateDuringGamePaused && pEffect->GetGroup() == 0 )
			continue;
		int nActive = pCollection->GetActiveParticleCount( true );
		if ( pEffect->HasStarted() && nActive > 0 && !pEffect->HasQueuedCommands() )
		{
			sideList.AddToTail( pEffect );
			continue;
		}
		ParticleSimListItem_t &item = list[ list.AddToTail() ];
		item.m_pEffect = pEffect;
		item.m_nKey = pEffect->m_nSimCostTicks;
		item.bCulledStep = false;
		if ( pEffect->IsCulled() )
			pEffect->SetCulled( false );
	}
	if ( sideList.IsEmpty() )
		return;

	CUtlVectorFixedGrowableCompat<uint8_t, 1024> culled;
	culled.SetCount( sideList.Count() );
	std::fill( culled.begin(), culled.end(), uint8_t( 0 ) );
	int nResult = m_pLibHost->CullEffects( sideList.Count(), sideList.Base(), culled.Base() );
	for ( int i = 0; i < sideList.Count(); ++i )
	{
		CNewParticleEffect *pEffect = sideList[ i ];
		bool bCulled = nResult != PARTICLE_CULL_NONE && ( nResult != PARTICLE_CULL_BYTES || culled[ i ] != 0 );
		if ( bCulled )
		{
			if ( !pEffect->IsCulled() )
				pEffect->SetCulled( true );
			// The runtime's collections don't step while culled.
			continue;
		}
		pEffect->SetCulled( false );
		ParticleSimListItem_t &item = list[ list.AddToTail() ];
		item.m_pEffect = pEffect;
		item.m_nKey = pEffect->m_nSimCostTicks;
		item.bCulledStep = false;
	}
}

// ---------------------------------------------------------------------------------------
// Retirement

namespace
{
struct RetireRecord_t
{
	CNewParticleEffect *m_pEffect;
	float m_flArea;
};

// Projects a point; false behind the eye.
bool ProjectToScreen( const ParticleViewMatrix_t &m, const Vector &v, float *pX, float *pY )
{
	float w = m.m[ 3 ][ 0 ] * v.x + m.m[ 3 ][ 1 ] * v.y + m.m[ 3 ][ 2 ] * v.z + m.m[ 3 ][ 3 ];
	if ( !( w > 1e-6f ) )
		return false;
	*pX = ( m.m[ 0 ][ 0 ] * v.x + m.m[ 0 ][ 1 ] * v.y + m.m[ 0 ][ 2 ] * v.z + m.m[ 0 ][ 3 ] ) / w;
	*pY = ( m.m[ 1 ][ 0 ] * v.x + m.m[ 1 ][ 1 ] * v.y + m.m[ 1 ][ 2 ] * v.z + m.m[ 1 ][ 3 ] ) / w;
	return true;
}
} // namespace

bool CParticleMgr::EarlyRetireParticleSystems( int nCount, ParticleSimList_t &list )
{
	if ( !m_bRetirementEnabled || nCount == 0 )
		return false;
	std::vector<ParticleLibView_t> views;
	std::vector<ParticleViewMatrix_t> matrices;
	if ( !m_pLibHost->GetViews( &views, &matrices ) || views.empty() )
		return false;
	size_t nViews = std::min( views.size(), matrices.size() );
	views.resize( nViews );
	matrices.resize( nViews );
	const float flBudget = cl_particle_retire_cost.GetFloat() * 1000.0f;
	if ( flBudget == 0.0f )
		return false;

	const int nFrame = m_pLibHost->GetFrameNumber();
	std::vector<const CParticleRuntimeDefinition *> gathered;
	for ( const ParticleSimListItem_t &item : list )
	{
		if ( item.bCulledStep )
			continue;
		const CParticleRuntimeDefinition *pDefinition = item.m_pEffect->GetDefinition().get();
		if ( !pDefinition || !( pDefinition->m_ManagerTraits.m_flCullRadius > 0.0f ) || !item.m_pEffect->m_bIsFirstFrame )
			continue;
		if ( pDefinition->m_nLastRetirementCheckFrame.exchange( nFrame ) == nFrame )
			continue;
		gathered.push_back( pDefinition );
	}
	if ( gathered.empty() )
		return false;
	for ( ParticleSimListItem_t &item : list )
		item.m_pEffect->m_bShouldPerformCullCheck = true;
	std::vector<float> tangents;
	for ( const ParticleLibView_t &view : views )
		tangents.push_back( std::tan( view.m_flFovDegrees * 0.5f * 3.14159265f / 180.0f ) );

	IParticleSystemMgr *pHostMgr = GetParticleSystemMgr();
	for ( const CParticleRuntimeDefinition *pDefinition : gathered )
	{
		const ParticleManagerTraits_t &traits = pDefinition->m_ManagerTraits;
		const float r = traits.m_flCullRadius;
		for ( size_t nView = 0; nView < views.size(); ++nView )
		{
			const ParticleLibView_t &view = views[ nView ];
			std::vector<RetireRecord_t> records;
			float flTotal = 0.0f;
			for ( const ParticleSimListItem_t &item : list )
			{
				CNewParticleEffect *pEffect = item.m_pEffect;
				if ( pEffect->GetDefinition().get() != pDefinition || !pEffect->m_bShouldPerformCullCheck || !pEffect->m_pParticles )
					continue;
				Vector vPoint = pEffect->m_pParticles->GetControlPointPosition( traits.m_nCullControlPoint );
				float cx, cy;
				if ( !ProjectToScreen( matrices[ nView ], vPoint, &cx, &cy ) )
					continue;
				Vector d = ParticleMath::Sub( vPoint, view.m_vEye );
				float flDistSq = ParticleMath::Dot( d, d );
				float s = flDistSq > r * r ? tangents[ nView ] * 0.5f * r / std::sqrt( flDistSq - r * r ) : 1.0f;
				s *= float( view.m_nWidth );
				float x0 = std::max( cx - s, float( view.m_nX ) ), x1 = std::min( cx + s, float( view.m_nX + view.m_nWidth ) );
				float y0 = std::max( cy - s, float( view.m_nY ) ), y1 = std::min( cy + s, float( view.m_nY + view.m_nHeight ) );
				float flArea = std::max( 0.0f, x1 - x0 ) * std::max( 0.0f, y1 - y0 ) * traits.m_flCullFillCost;
				records.push_back( { pEffect, flArea } );
				flTotal += flArea;
			}
			if ( flTotal <= flBudget )
				continue;
			ParticleDefinitionPtr_t pFallback = traits.m_Fallback.IsEmpty() || !pHostMgr ? nullptr : pHostMgr->FindParticleSystemDefinition( traits.m_Fallback.Get() );
			if ( !pFallback && records.size() < 2 )
				continue;
			std::sort( records.begin(), records.end(), []( const RetireRecord_t &a, const RetireRecord_t &b ) { return a.m_flArea > b.m_flArea; } );
			bool bReplaced = false;
			for ( const RetireRecord_t &record : records )
			{
				if ( flTotal <= flBudget )
					break;
				if ( !record.m_pEffect->m_bIsFirstFrame )
					continue;
				if ( CNewParticleEffect *pNew = record.m_pEffect->ReplaceWith( pFallback ) )
					pNew->Update( m_flFrameStep );
				flTotal -= record.m_flArea;
				bReplaced = true;
			}
			if ( bReplaced )
				break;
		}
	}
	for ( ParticleSimListItem_t &item : list )
		item.m_pEffect->m_bShouldPerformCullCheck = false;
	return true;
}

// ---------------------------------------------------------------------------------------
// Stepping

void CParticleMgr::StepEntry( ParticleSimListItem_t &item )
{
	CNewParticleEffect *pEffect = item.m_pEffect;
	IParticleCollection *pCollection = pEffect->m_pParticles;
	const uint64_t nStart = Plat_GetClockTicks();
	const float flStep = m_flFrameStep * pEffect->GetStepRate();
	pEffect->Update( flStep );
	if ( item.bCulledStep )
		pCollection->SimulateCulled( flStep );
	else
	{
		pEffect->RunQueuedCommands();
		if ( pEffect->m_bNeedsBBoxUpdate )
		{
			if ( !pEffect->m_bAutoUpdateBBox || pEffect->RecalculateBounds() )
				pEffect->m_bNeedsBBoxUpdate = false;
		}
		if ( pEffect->m_bIsFirstFrame )
		{
			pCollection->Simulate( flStep );
			pEffect->m_bIsFirstFrame = false;
		}
		else if ( pEffect->ShouldSimulate() )
			pCollection->Simulate( flStep );
	}
	if ( pCollection->IsFinished() && !pEffect->m_bDontRemove )
		pEffect->m_bRemove = true;
	const uint64_t nEnd = Plat_GetClockTicks();
	if ( nEnd > nStart )
	{
		int64_t d = int64_t( nEnd - nStart );
		int64_t nPrevious = pEffect->m_nSimCostTicks ? pEffect->m_nSimCostTicks : d;
		pEffect->m_nSimCostTicks = ( nPrevious * 15 + d ) / 16;
	}
}

void CParticleMgr::SimulateParticles( ParticleSimList_t &list )
{
	if ( !r_threaded_particles.GetBool() || list.Count() < 2 )
	{
		for ( ParticleSimListItem_t &item : list )
			StepEntry( item );
		return;
	}
	if ( !r_limit_particle_job_duration.GetBool() )
	{
		ThreadPool().ParallelFor( list.Count(), [ this, &list ]( int nIndex ) { StepEntry( list[ nIndex ] ); }, "CParticleMgr::SimulateParticles()" );
		return;
	}
	SimulateParticlesLimited( list );
}

void CParticleMgr::SimulateParticlesLimited( ParticleSimList_t &list )
{
	// Short jobs leave the pool free for others: each takes entries until its budget is
	// spent and then, if at least two entries are left, queues its successor. The calling
	// thread takes entries with no limit until none are left.
	struct LimitedJobs_t
	{
		std::atomic<int> m_nNext{ 0 };
		std::mutex m_JobsMutex;
		CUtlVectorFixedGrowable<JobHandle_t, MAX_LIMITED_JOBS> m_Jobs;
	} state;
	const int nCount = list.Count();
	CThreadPool &pool = ThreadPool();
	std::function<void()> fnQueueJob;
	auto fnJob = [ & ]() {
		const uint64_t nStart = Plat_GetClockTicks();
		for ( ;; )
		{
			if ( Plat_MicrosecondsSince( nStart ) > WORKER_JOB_BUDGET_US )
				break;
			int nIndex = state.m_nNext.fetch_add( 1 );
			if ( nIndex >= nCount )
				return;
			StepEntry( list[ nIndex ] );
		}
		if ( nCount - state.m_nNext.load() >= 2 )
			fnQueueJob();
	};
	fnQueueJob = [ & ]() {
		std::lock_guard lock( state.m_JobsMutex );
		if ( state.m_Jobs.Count() < MAX_LIMITED_JOBS )
			state.m_Jobs.AddToTail( pool.QueueJob( "SimulateParticles", fnJob ) );
	};
	for ( int i = 0; i < pool.NumThreads(); ++i )
		fnQueueJob();
	// The main thread's own share: the budget only decides when it looks at the jobs; it
	// keeps taking entries until none are left.
	for ( ;; )
	{
		const uint64_t nStart = Plat_GetClockTicks();
		bool bDone = false;
		while ( Plat_MicrosecondsSince( nStart ) <= MAIN_THREAD_JOB_BUDGET_US )
		{
			int nIndex = state.m_nNext.fetch_add( 1 );
			if ( nIndex >= nCount )
			{
				bDone = true;
				break;
			}
			StepEntry( list[ nIndex ] );
		}
		if ( bDone )
			break;
	}
	// A job may queue its successor while the list is emptied, so take them one at a time.
	for ( ;; )
	{
		JobHandle_t pJob;
		{
			std::lock_guard lock( state.m_JobsMutex );
			if ( state.m_Jobs.IsEmpty() )
				break;
			pJob = state.m_Jobs.Tail();
			state.m_Jobs.RemoveMultipleFromTail( 1 );
		}
		pJob->Abort( true );
	}
}

// ---------------------------------------------------------------------------------------
// The report

void CParticleMgr::ReportTooManySystems() const
{
	struct SystemCount_t
	{
		int m_nEffects = 0;
		int m_nParticles = 0;
	};
	std::map<std::string, SystemCount_t> counts;
	for ( CNewParticleEffect *pEffect = m_pFirstEffect; pEffect; pEffect = pEffect->m_pNext )
	{
		SystemCount_t &count = counts[ pEffect->GetName() ];
		++count.m_nEffects;
		if ( pEffect->m_pParticles )
			count.m_nParticles += pEffect->m_pParticles->GetActiveParticleCount( false );
	}
	std::vector<std::pair<std::string, SystemCount_t>> sorted( counts.begin(), counts.end() );
	std::stable_sort( sorted.begin(), sorted.end(), []( const auto &a, const auto &b ) { return a.second.m_nParticles > b.second.m_nParticles; } );
	Msg( "Too many simultaneously active particle systems!\n" );
	Msg( "Name\t\t\t\t\tCount\t\tParticle Count\n" );
	for ( const auto &[ name, count ] : sorted )
		Msg( "%30s\t\t%5d\t\t%5d\n", name.c_str(), count.m_nEffects, count.m_nParticles );
}
