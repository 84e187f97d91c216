#pragma once
// A transform property of a particle function: a variable, one control point, or a range
// of control points.

#include <cstdint>

#include "particleslib/particleinput.h"
#include "particleslib/particleinputenums.h"
#include "particleslib/particlenamedvalueref.h"

#define PARTICLE_TRANSFORM_INPUT_FGD_METADATA \
	"{ SkipImprintFGDClassOnKV3 = true SkipRemoveKeysInKV3AtFGDDefault = true KV3DefaultTestFnName = 'CParticleTransformInputDefaultTestFunc' }"

class CParticleTransformInput : public CParticleInput
{
	SCHEMA_DERIVED_CLASS( CParticleTransformInput, CParticleInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleTransformInput> },
						  { "MPropertyCustomEditor", "TransformInput()" }, { "MCustomFGDMetadata", PARTICLE_TRANSFORM_INPUT_FGD_METADATA } )

	SCHEMA_FIELD( ParticleTransformType_t, m_nType, PT_TYPE_CONTROL_POINT )
	SCHEMA_FIELD( CParticleNamedValueRef, m_NamedValue, {} )
	SCHEMA_FIELD( bool, m_bFollowNamedValue, false )
	SCHEMA_FIELD( bool, m_bSupportsDisabled, false )
	SCHEMA_FIELD( bool, m_bUseOrientation, true )
	SCHEMA_FIELD( int32_t, m_nControlPoint, 0 )
	SCHEMA_FIELD( int32_t, m_nControlPointRangeMax, 0 )
	SCHEMA_FIELD( float, m_flEndCPGrowthTime, 0.0f )

	// Without orientation a control point only needs a position.
	void CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const override;
	void ResolveNamedValues( CParticleNamedValueBindings &bindings ) override;

	static bool IsEquivalent( const CParticleTransformInput &a, const CParticleTransformInput &b );
};
