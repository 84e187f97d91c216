#pragma once
// A model property of a particle function: a model or entity variable, or the model at a
// control point.

#include <cstdint>

#include "particleslib/particleinput.h"
#include "particleslib/particleinputenums.h"
#include "particleslib/particlenamedvalueref.h"

class CParticleModelInput : public CParticleInput
{
	SCHEMA_DERIVED_CLASS( CParticleModelInput, CParticleInput, { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleModelInput> },
						  { "MPropertyCustomEditor", "ModelInput()" },
						  { "MCustomFGDMetadata",
							"{ SkipImprintFGDClassOnKV3 = true SkipRemoveKeysInKV3AtFGDDefault = true KV3DefaultTestFnName = 'CParticleModelInputDefaultTestFunc' }" } )

	SCHEMA_FIELD( ParticleModelType_t, m_nType, PM_TYPE_INVALID )
	SCHEMA_FIELD( CParticleNamedValueRef, m_NamedValue, {} )
	SCHEMA_FIELD( int32_t, m_nControlPoint, -1 )

	void CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const override;
	void ResolveNamedValues( CParticleNamedValueBindings &bindings ) override;

	static bool IsEquivalent( const CParticleModelInput &a, const CParticleModelInput &b );
};
