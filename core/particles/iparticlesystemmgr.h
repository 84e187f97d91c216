#pragma once
// The host's particle manager, as far as the document asks it: which function classes
// exist for each list, the running behaviour version, attribute names, and what a
// function's table uses. The host connects it once; until then none is connected and
// the document answers without it (no classes, version 0, empty names).

#include <cstdint>
#include <memory>

#include "core/particles/particlefunctioninfo.h"
#include "core/particles/particlefunctiontype.h"

class IParticleCollection;
class KeyValues3;
class CParticleRuntimeDefinition;

// The name under which the host answers for its particle manager.
constexpr const char *PARTICLESYSTEMMGR_INTERFACE_VERSION = "ParticleSystemMgr003";

// What the manager of live effects hands over once a frame before stepping.
struct ParticleFrameSettings_t
{
	float m_flFallbackBase = 0.0f;
	float m_flFallbackMultiplier = 0.0f;
	float m_flSimFallbackBaseMultiplier = 0.0f;
	float m_flSimFallbackThresholdMs = 0.0f;
	int m_nHostValue0 = 0;
	int m_nHostValue1 = 0;
	bool m_bRender = false;
};

class IParticleSystemMgr
{
public:
	virtual int GetFunctionCount( ParticleFunctionType_t eType ) const = 0;
	virtual const char *GetFunctionClassName( ParticleFunctionType_t eType, int nIndex ) const = 0;
	virtual const char *GetFunctionFriendlyName( ParticleFunctionType_t eType, int nIndex ) const = 0;
	// -2 no limit, -1 one instance per list, 0 .. 5 the functions that all set one thing.
	virtual int GetFunctionExclusionGroup( ParticleFunctionType_t eType, int nIndex ) const = 0;
	// The schema binding of the class (in the "particles" scope); usually its own name.
	virtual const char *GetFunctionSchemaClass( ParticleFunctionType_t eType, int nIndex ) const = 0;
	virtual int GetCurrentBehaviorVersion() const = 0;
	// What moving a definition up to nVersion changes. Managers without a history answer "".
	virtual const char *GetBehaviorVersionChange( int nVersion ) const
	{
		(void)nVersion;
		return "";
	}
	virtual const char *GetParticleAttributeName( int nAttribute ) const = 0;
	virtual void GetFunctionInfo( const KeyValues3 *pFunction, ParticleFunctionInfo_t *pInfo ) const = 0;
	// Every use of a control point or named value that the function's table makes, one
	// record per use, with the input field that reported it. Replaces *pUsage; managers
	// that can't tell answer none.
	virtual void GetFunctionControlPointUsage( const KeyValues3 *pFunction, CUtlVector<HostControlPointUsage_t> *pUsage ) const
	{
		(void)pFunction;
		pUsage->RemoveAll();
	}

	// The runtime: the manager of live effects has its collections made and given back
	// here. A manager without a runtime makes none.
	virtual IParticleCollection *CreateParticleCollection( const std::shared_ptr<const CParticleRuntimeDefinition> &pDefinition, uint64_t nSeed )
	{
		(void)pDefinition;
		(void)nSeed;
		return nullptr;
	}
	virtual void DestroyParticleCollection( IParticleCollection *pCollection ) { (void)pCollection; }
	// A compiled definition by resource name ("particles/error/error.tfxs"); null when
	// there is none.
	virtual std::shared_ptr<const CParticleRuntimeDefinition> FindParticleSystemDefinition( const char *pName )
	{
		(void)pName;
		return nullptr;
	}
	// Per frame, before the effects step: the fallback settings and the lib host's values.
	virtual void SetFrameSettings( const ParticleFrameSettings_t &settings ) { (void)settings; }
	// Seconds the last frame's step took.
	virtual void SetLastSimulationTime( float flSeconds ) { (void)flSeconds; }
	// Prints the live collections, of definitions whose name holds pSubstring (all for
	// null); bSimulating leaves out the finished ones, which no longer step.
	virtual void DumpParticleList( const char *pSubstring, bool bSimulating ) const
	{
		(void)pSubstring;
		(void)bSimulating;
	}

protected:
	~IParticleSystemMgr() = default;
};

// The connected manager, or null.
IParticleSystemMgr *GetParticleSystemMgr();
void SetParticleSystemMgr( IParticleSystemMgr *pMgr );
