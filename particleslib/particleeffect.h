#pragma once
// One live effect: a collection tree made by the host manager, the flags of its life, its
// bounds, a queue of commands that its next step runs, and a reference count. Effects are
// linked into their manager's list when made and deleted by the manager's PostUpdate.

#include <cstdint>
#include <functional>
#include <vector>

#include "core/mathlib/vector.h"
#include "core/particles/sim/particleruntimedefinition.h"

class CNewParticleEffect;
class CParticleMgr;
class CParticleProperty;
class IParticleCollection;
class IParticleEntity;
class ISceneObject;
class ISceneWorld;

class IParticleEffect
{
public:
	virtual const char *GetEffectTypeName() const = 0;
	virtual ~IParticleEffect() = default;
	virtual void Update( float flTimeDelta ) = 0;
	virtual void Reserved() {}
	virtual bool ShouldSimulate() const = 0;
	virtual void SetShouldSimulate( bool bSimulate ) = 0;
	virtual void NotifyRemove() = 0;
	virtual const Vector &GetSortOrigin() = 0;
};

// A weak handle: follows its effect through ReplaceWith, and reads null once the effect
// is gone.
class CParticleEffectHandle
{
public:
	CParticleEffectHandle() = default;
	explicit CParticleEffectHandle( CNewParticleEffect *pEffect ) { Set( pEffect ); }
	CParticleEffectHandle( const CParticleEffectHandle & ) = delete;
	CParticleEffectHandle &operator=( const CParticleEffectHandle & ) = delete;
	~CParticleEffectHandle() { Set( nullptr ); }

	void Set( CNewParticleEffect *pEffect );
	CNewParticleEffect *Get() const { return m_pEffect; }
	CNewParticleEffect *operator->() const { return m_pEffect; }
	explicit operator bool() const { return m_pEffect != nullptr; }

private:
	friend class CNewParticleEffect;
	CParticleEffectHandle *m_pNextHandle = nullptr;
	CParticleEffectHandle *m_pPrevHandle = nullptr;
	CNewParticleEffect *m_pEffect = nullptr;
};

class CNewParticleEffect final : public IParticleEffect
{
public:
	// The host manager makes the collection (with the lib host's seed for the owner); the
	// effect links itself at the head of the manager's list. Check IsValid afterwards.
	CNewParticleEffect( IParticleEntity *pOwner, const ParticleDefinitionPtr_t &pDefinition, CParticleMgr *pMgr, const char *pDebugName );
	~CNewParticleEffect() override;
	CNewParticleEffect( const CNewParticleEffect & ) = delete;
	CNewParticleEffect &operator=( const CNewParticleEffect & ) = delete;

	// IParticleEffect
	const char *GetEffectTypeName() const override { return "CNewParticleEffect"; }
	void Update( float flTimeDelta ) override;
	bool ShouldSimulate() const override { return m_bSimulate; }
	void SetShouldSimulate( bool bSimulate ) override { m_bSimulate = bSimulate; }
	void NotifyRemove() override;
	const Vector &GetSortOrigin() override { return m_vSortOrigin; }

	bool IsValid() const;
	const ParticleDefinitionPtr_t &GetDefinition() const { return m_pDefinition; }
	const char *GetName() const;
	CParticleMgr *GetManager() const { return m_pMgr; }
	IParticleCollection *GetCollection() const { return m_pParticles; }

	// Queued: the next step runs them, in the order given.
	void Restart();
	void StopEmission( bool bInfiniteOnly = false, bool bRemoveAllParticles = false, bool bWakeOnStop = false, bool bPlayEndCap = false );
	void QueueCommand( std::function<void()> fnCommand ) { m_Commands.push_back( std::move( fnCommand ) ); }
	bool HasQueuedCommands() const { return !m_Commands.empty(); }
	void RunQueuedCommands();

	// Straight to the collection.
	void SetControlPoint( int nPoint, const Vector &vPosition );
	void SetControlPointOrientation( int nPoint, const Vector &vForward, const Vector &vRight, const Vector &vUp );
	void SetControlPointEntity( int nPoint, IParticleEntity *pEntity );
	void SetDrawOnlyForSplitScreenUser( int nUser );
	void SetMaxDetailLevel( int nLevel );

	// The effect that replaces this one with another definition (retirement's fallback):
	// control points copied, handles and the property's entry moved over. Null for an
	// empty definition; this one stops and goes either way.
	CNewParticleEffect *ReplaceWith( const ParticleDefinitionPtr_t &pDefinition );

	int AddRef() { return ++m_RefCount; }
	int Release();
	int GetRefCount() const { return m_RefCount; }

	// Bounds: a valid box, or the sort origin as a point.
	bool RecalculateBounds();
	// Keeps m_LastMin and m_LastMax in step with the collection's bounds.
	void DetectChanges();

	// Whether the collection has reached the time at which it first runs.
	bool HasStarted() const;
	bool IsFinished() const;
	// The collection and its children.
	int CountCollections() const;

	// The lists of the frame read these; the tool scene's collections have no groups and
	// step at rate 1.
	int GetGroup() const;
	float GetStepRate() const { return 1.0f; }
	bool IsCulled() const { return m_bCulled; }
	void SetCulled( bool bCulled ) { m_bCulled = bCulled; }

	// The manager's list and the weak handles.
	CParticleEffectHandle *m_pFirstHandle = nullptr;
	CNewParticleEffect *m_pNext = nullptr;
	CNewParticleEffect *m_pPrev = nullptr;
	IParticleCollection *m_pParticles = nullptr;
	const char *m_pDebugName = nullptr;

	bool m_bDontRemove : 1;
	bool m_bRemove : 1;
	bool m_bNeedsBBoxUpdate : 1;
	bool m_bIsFirstFrame : 1;
	bool m_bAutoUpdateBBox : 1;
	bool m_bAllocated : 1;
	bool m_bSimulate : 1;
	bool m_bShouldPerformCullCheck : 1;
	bool m_bForceNoDraw : 1;
	bool m_bSuppressScreenSpaceEffect : 1;
	bool m_bShouldSave : 1;
	bool m_bShouldSimulateDuringGamePaused : 1;
	bool m_bShouldCheckFoW : 1;
	bool m_bIsAsyncCreate : 1;
	bool m_bFreezeTransitionActive : 1;
	bool m_bFreezeTargetState : 1;
	bool m_bCanFreeze : 1;

	int64_t m_nSimCostTicks = 0;
	Vector m_vSortOrigin;
	float m_flScale = 1.0f;
	IParticleEntity *m_hOwner = nullptr;
	CParticleProperty *m_pOwningParticleProperty = nullptr;
	float m_flFreezeTransitionStart = 0.0f;
	float m_flFreezeTransitionDuration = 0.0f;
	float m_flFreezeTransitionOverride = 3.402823466e+38f;
	Vector m_LastMin{ 1e6f, 1e6f, 1e6f };
	Vector m_LastMax{ -1e6f, -1e6f, -1e6f };
	int m_nSplitScreenUser = -1;
	Vector m_vecAggregationCenter;

private:
	friend class CParticleEffectHandle;
	void MoveHandlesTo( CNewParticleEffect *pOther );

	CParticleMgr *m_pMgr;
	ParticleDefinitionPtr_t m_pDefinition;
	std::vector<std::function<void()>> m_Commands;
	int m_RefCount = 0;
	bool m_bCulled = false;
	ISceneWorld *m_pSceneWorld = nullptr;
	ISceneObject *m_pSceneObject = nullptr;
};

// The process-wide lock of effect creation and destruction.
class CThreadRecursiveMutex;
CThreadRecursiveMutex &ParticleEffectCreationMutex();
