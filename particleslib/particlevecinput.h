#pragma once
// A vector property of a particle function: a literal vector or colour, a variable, a
// particle attribute, a control point value or direction, three float inputs, an
// interpolation or gradient driven by a float input, or a random range.

#include <cstdint>

#include "core/mathlib/color.h"
#include "core/mathlib/colorgradient.h"
#include "core/mathlib/vector.h"
#include "particleslib/particlefloatinput.h"

#define PARTICLE_VEC_INPUT_FGD_METADATA \
	"{ SkipImprintFGDClassOnKV3 = true SkipRemoveKeysInKV3AtFGDDefault = true KV3DefaultTestFnName = 'CParticleVecInputDefaultTestFunc' }"

class CParticleVecInput : public CParticleInput
{
	SCHEMA_DERIVED_CLASS( CParticleVecInput, CParticleInput, { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleVecInput> },
						  { "MCustomFGDMetadata", PARTICLE_VEC_INPUT_FGD_METADATA } )

	CParticleVecInput() = default;
	explicit CParticleVecInput( const Vector &vLiteral ) { m_vLiteralValue = vLiteral; }

	SCHEMA_FIELD( ParticleVecType_t, m_nType, PVEC_TYPE_LITERAL )
	SCHEMA_FIELD( Vector, m_vLiteralValue, ( Vector( 0.0f, 0.0f, 0.0f ) ) )
	SCHEMA_FIELD( Color, m_LiteralColor, ( Color( 0, 0, 0, 255 ) ) )
	SCHEMA_FIELD( CParticleNamedValueRef, m_NamedValue, {} )
	SCHEMA_FIELD( bool, m_bFollowNamedValue, false )
	SCHEMA_FIELD( ParticleAttributeIndex_t, m_nVectorAttribute, 6 )
	SCHEMA_FIELD( Vector, m_vVectorAttributeScale, ( Vector( 1.0f, 1.0f, 1.0f ) ) )
	SCHEMA_FIELD( int32_t, m_nControlPoint, 0 )
	SCHEMA_FIELD( int32_t, m_nDeltaControlPoint, 0 )
	SCHEMA_FIELD( Vector, m_vCPValueScale, ( Vector( 1.0f, 1.0f, 1.0f ) ) )
	SCHEMA_FIELD( Vector, m_vCPRelativePosition, ( Vector( 0.0f, 0.0f, 0.0f ) ) )
	SCHEMA_FIELD( Vector, m_vCPRelativeDir, ( Vector( 1.0f, 0.0f, 0.0f ) ) )
	SCHEMA_FIELD( CParticleFloatInput, m_FloatComponentX, {} )
	SCHEMA_FIELD( CParticleFloatInput, m_FloatComponentY, {} )
	SCHEMA_FIELD( CParticleFloatInput, m_FloatComponentZ, {} )
	SCHEMA_FIELD( CParticleFloatInput, m_FloatInterp, {} )
	SCHEMA_FIELD( float, m_flInterpInput0, 0.0f )
	SCHEMA_FIELD( float, m_flInterpInput1, 1.0f )
	SCHEMA_FIELD( Vector, m_vInterpOutput0, ( Vector( 0.0f, 0.0f, 0.0f ) ) )
	SCHEMA_FIELD( Vector, m_vInterpOutput1, ( Vector( 1.0f, 1.0f, 1.0f ) ) )
	SCHEMA_FIELD( CColorGradient, m_Gradient, {} )
	SCHEMA_FIELD( Vector, m_vRandomMin, ( Vector( 0.0f, 0.0f, 0.0f ) ) )
	SCHEMA_FIELD( Vector, m_vRandomMax, ( Vector( 0.0f, 0.0f, 0.0f ) ) )

	// Usage of the component inputs comes in the order X, Y, Z.
	void CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const override;
	void ResolveNamedValues( CParticleNamedValueBindings &bindings ) override;
	void AssignCacheOffset( int &nOffset ) override;
	void MarkInitialized() override;
	void GetReadAttributeMask( uint64_t *pMask ) const override;
	void GetReadInitialAttributeMask( uint64_t *pMask ) const override;

	// Compares only what the type uses; a gradient type compares nothing more.
	static bool IsEquivalent( const CParticleVecInput &a, const CParticleVecInput &b );

	// A value that isn't a table is a short form: "pvec_color_white", "pvec_color_black",
	// or three numbers for a literal vector.
	static bool KV3PreLoad( CParticleVecInput &input, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
};

class CPerParticleVecInput : public CParticleVecInput
{
	SCHEMA_DERIVED_CLASS( CPerParticleVecInput, CParticleVecInput, { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CPerParticleVecInput> },
						  { "MPropertyCustomEditor", "PerParticleVecInput()" } )
	CPerParticleVecInput() = default;
	explicit CPerParticleVecInput( const Vector &vLiteral ) : CParticleVecInput( vLiteral ) {}
	bool IsPerParticle() const override { return true; }
};

class CParticleCollectionVecInput : public CParticleVecInput
{
	SCHEMA_DERIVED_CLASS( CParticleCollectionVecInput, CParticleVecInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleCollectionVecInput> },
						  { "MPropertyCustomEditor", "CollectionVecInput()" } )
	CParticleCollectionVecInput() = default;
	explicit CParticleCollectionVecInput( const Vector &vLiteral ) : CParticleVecInput( vLiteral ) {}
};

class CParticleCollectionRendererVecInput : public CParticleCollectionVecInput
{
	SCHEMA_DERIVED_CLASS( CParticleCollectionRendererVecInput, CParticleCollectionVecInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleCollectionRendererVecInput> },
						  { "MPropertyCustomEditor", "CollectionRendererVecInput()" } )
	CParticleCollectionRendererVecInput() = default;
	explicit CParticleCollectionRendererVecInput( const Vector &vLiteral ) : CParticleCollectionVecInput( vLiteral ) {}
};

// The short text by which lists show the input ("(1,2,3)", "CP#2 Relative Pos").
void BuildDisplayString( const CParticleVecInput &input, CBufferString *pText, const char *pszDomain );
