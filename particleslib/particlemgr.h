#pragma once
// The manager of live effects: one per tool scene. Once a frame it lists the effects to
// step, retires the too expensive new ones, steps the list (largest cost first, on the
// thread pool when asked) and, after the frame, deletes the effects that are done.

#include <cstdint>

#include "core/containers/utlvectorfixedgrowable.h"
#include "core/threading/threadrecursivemutex.h"

class CNewParticleEffect;
class IParticlesLibHost;

struct ParticleSimListItem_t
{
	CNewParticleEffect *m_pEffect = nullptr;
	// The effect's cost when it was listed: the list steps the dearest first.
	int64_t m_nKey = 0;
	bool bCulledStep = false;
};

using ParticleSimList_t = CUtlVectorFixedGrowableCompat<ParticleSimListItem_t, 1024>;

class CParticleMgr
{
public:
	CParticleMgr();
	~CParticleMgr();
	CParticleMgr( const CParticleMgr & ) = delete;
	CParticleMgr &operator=( const CParticleMgr & ) = delete;

	bool Init( IParticlesLibHost *pLibHost );
	// Deletes every effect, then tells the lib host.
	void Shutdown();

	// The frame: the step (at most 0.1 × flFrameTime), then PostUpdate.
	void Simulate( float flTimeDelta, float flFrameTime, bool bPaused );
	// Deletes the effects marked for removal.
	void PostUpdate();

	// The list of effects, under its lock; effects link themselves when made.
	void AddEffect( CNewParticleEffect *pEffect );
	void RemoveEffect( CNewParticleEffect *pEffect );
	CNewParticleEffect *GetFirstEffect() const { return m_pFirstEffect; }
	int GetEffectCount() const;
	CThreadRecursiveMutex &GetEffectListMutex() { return m_EffectListMutex; }

	IParticlesLibHost *GetLibHost() const { return m_pLibHost; }
	bool IsInitialized() const { return m_bInitialized; }
	void SetRetirementEnabled( bool bEnabled ) { m_bRetirementEnabled = bEnabled; }
	// The step of the last frame, after the time scale.
	float GetFrameStep() const { return m_flFrameStep; }
	// How many effects the last frame stepped.
	int GetLastSimListCount() const { return m_nLastSimListCount; }

	// Queues a restart on every live effect of the named definition, in every manager of
	// the process (every tool's view). Answers how many.
	static int RestartEffectsEverywhere( const char *pDefinitionName );

private:
	void UpdateNewEffects( float flTimeDelta, bool bPaused );
	void BuildParticleSimList( ParticleSimList_t &list, bool bPaused );
	bool EarlyRetireParticleSystems( int nCount, ParticleSimList_t &list );
	void SimulateParticles( ParticleSimList_t &list );
	void SimulateParticlesLimited( ParticleSimList_t &list );
	void StepEntry( ParticleSimListItem_t &item );
	void ReportTooManySystems() const;

	IParticlesLibHost *m_pLibHost = nullptr;
	bool m_bInitialized = false;
	bool m_bRetirementEnabled = true;
	CNewParticleEffect *m_pFirstEffect = nullptr;
	mutable CThreadRecursiveMutex m_EffectListMutex{ 200 };
	// Written before the workers start; read by all of them.
	float m_flFrameStep = 0.0f;
	int m_nLastSimListCount = 0;
	bool m_bOverLimit = false;
};
