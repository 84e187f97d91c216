#pragma once
// The particle manager that this program provides in place of the engine's: it answers
// from the function classes registered in the "particles" scope, and reads each class's
// list, friendly name, exclusion group, version limits and attribute use from the
// metadata declared with the class (see particlefunction.h).

#include <functional>
#include <mutex>
#include <vector>

#include "core/particles/iparticlesystemmgr.h"

class CSchemaClassInfo;

class CHostParticleSystemMgr final : public IParticleSystemMgr
{
public:
	// Builds the class lists from what the scope holds now.
	CHostParticleSystemMgr();

	int GetFunctionCount( ParticleFunctionType_t eType ) const override;
	const char *GetFunctionClassName( ParticleFunctionType_t eType, int nIndex ) const override;
	const char *GetFunctionFriendlyName( ParticleFunctionType_t eType, int nIndex ) const override;
	int GetFunctionExclusionGroup( ParticleFunctionType_t eType, int nIndex ) const override;
	const char *GetFunctionSchemaClass( ParticleFunctionType_t eType, int nIndex ) const override;
	int GetCurrentBehaviorVersion() const override;
	const char *GetBehaviorVersionChange( int nVersion ) const override;
	const char *GetParticleAttributeName( int nAttribute ) const override;
	void GetFunctionInfo( const KeyValues3 *pFunction, ParticleFunctionInfo_t *pInfo ) const override;
	void GetFunctionControlPointUsage( const KeyValues3 *pFunction, CUtlVector<HostControlPointUsage_t> *pUsage ) const override;

	// The runtime: collections of the simulation in core/particles/sim/, tracked while
	// they live.
	IParticleCollection *CreateParticleCollection( const std::shared_ptr<const CParticleRuntimeDefinition> &pDefinition, uint64_t nSeed ) override;
	void DestroyParticleCollection( IParticleCollection *pCollection ) override;
	std::shared_ptr<const CParticleRuntimeDefinition> FindParticleSystemDefinition( const char *pName ) override;
	void SetFrameSettings( const ParticleFrameSettings_t &settings ) override { m_FrameSettings = settings; }
	void SetLastSimulationTime( float flSeconds ) override { m_flLastSimulationTime = flSeconds; }
	void DumpParticleList( const char *pSubstring, bool bSimulating ) const override;

	const ParticleFrameSettings_t &GetFrameSettings() const { return m_FrameSettings; }
	float GetLastSimulationTime() const { return m_flLastSimulationTime; }
	int GetLiveCollectionCount() const;
	// Where definitions by name come from: the resource system (loading the asset on
	// demand) unless a batch command that has no asset system installs its own.
	using DefinitionFinderFn_t = std::function<std::shared_ptr<const CParticleRuntimeDefinition>( const char *pName, CUtlString *pError )>;
	void SetDefinitionFinder( DefinitionFinderFn_t fn ) { m_fnFindDefinition = std::move( fn ); }

	// The schema class of a function list entry; null out of range.
	const CSchemaClassInfo *GetFunctionClass( ParticleFunctionType_t eType, int nIndex ) const;
	// The list that a function class belongs in, or PARTICLE_FUNCTION_ROOT for none.
	static ParticleFunctionType_t GetFunctionClassType( const CSchemaClassInfo *pClass );

private:
	std::vector<const CSchemaClassInfo *> m_Classes[ PARTICLE_FUNCTION_CLASS_LIST_COUNT ];

	mutable std::mutex m_CollectionsMutex;
	std::vector<IParticleCollection *> m_Collections;
	ParticleFrameSettings_t m_FrameSettings;
	float m_flLastSimulationTime = 0.0f;
	DefinitionFinderFn_t m_fnFindDefinition;
};

// Registers the particle classes on first use and returns the process's manager. Connect
// it with SetParticleSystemMgr( HostParticleSystemMgr() ).
IParticleSystemMgr *HostParticleSystemMgr();
// The same object with its runtime side.
CHostParticleSystemMgr *HostParticleSystemMgrRuntime();
