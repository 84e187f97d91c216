#pragma once
// The particle manager that this program provides in place of the engine's: it answers
// from the function classes registered in the "particles" scope, and reads each class's
// list, friendly name, exclusion group, version limits and attribute use from the
// metadata declared with the class (see particlefunction.h).

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

	// The schema class of a function list entry; null out of range.
	const CSchemaClassInfo *GetFunctionClass( ParticleFunctionType_t eType, int nIndex ) const;
	// The list that a function class belongs in, or PARTICLE_FUNCTION_ROOT for none.
	static ParticleFunctionType_t GetFunctionClassType( const CSchemaClassInfo *pClass );

private:
	std::vector<const CSchemaClassInfo *> m_Classes[ PARTICLE_FUNCTION_CLASS_LIST_COUNT ];
};

// Registers the particle classes on first use and returns the process's manager. Connect
// it with SetParticleSystemMgr( HostParticleSystemMgr() ).
IParticleSystemMgr *HostParticleSystemMgr();
