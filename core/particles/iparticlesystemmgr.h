#pragma once
// The host's particle manager, as far as the document asks it: which function classes
// exist for each list, the running behaviour version, attribute names, and what a
// function's table uses. The host connects it once; until then none is connected and
// the document answers without it (no classes, version 0, empty names).

#include "core/particles/particlefunctioninfo.h"
#include "core/particles/particlefunctiontype.h"

class KeyValues3;

// The name under which the host answers for its particle manager.
constexpr const char *PARTICLESYSTEMMGR_INTERFACE_VERSION = "ParticleSystemMgr003";

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

protected:
	~IParticleSystemMgr() = default;
};

// The connected manager, or null.
IParticleSystemMgr *GetParticleSystemMgr();
void SetParticleSystemMgr( IParticleSystemMgr *pMgr );
