#pragma once
// A float property of a particle function: a source (literal, variable, random range,
// control point, particle attribute, noise...) followed by a mapping stage (multiply,
// remap, curve, notch, round). The fields of every source stand side by side; only
// those of the current type and map type mean anything.

#include <cstdint>

#include "core/mathlib/piecewisecurve.h"
#include "core/mathlib/vector.h"
#include "core/text/utlstring.h"
#include "particleslib/particleinput.h"
#include "particleslib/particleinputenums.h"
#include "particleslib/particlenamedvalueref.h"

class CBufferString;

#define PARTICLE_FLOAT_INPUT_FGD_METADATA \
	"{ SkipImprintFGDClassOnKV3 = true SkipRemoveKeysInKV3AtFGDDefault = true KV3DefaultTestFnName = 'CParticleFloatInputDefaultTestFunc' }"

class CParticleFloatInput : public CParticleInput
{
	SCHEMA_DERIVED_CLASS( CParticleFloatInput, CParticleInput, { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleFloatInput> },
						  { "MCustomFGDMetadata", PARTICLE_FLOAT_INPUT_FGD_METADATA } )

	CParticleFloatInput() = default;
	explicit CParticleFloatInput( float flLiteral ) { m_flLiteralValue = flLiteral; }

	SCHEMA_FIELD( ParticleFloatType_t, m_nType, PF_TYPE_LITERAL )
	SCHEMA_FIELD( ParticleFloatMapType_t, m_nMapType, PF_MAP_TYPE_DIRECT )
	SCHEMA_FIELD( float, m_flLiteralValue, 0.0f )
	SCHEMA_FIELD( CParticleNamedValueRef, m_NamedValue, {} )
	SCHEMA_FIELD( int32_t, m_nControlPoint, 0 )
	SCHEMA_FIELD( ParticleAttributeIndex_t, m_nScalarAttribute, 3 )
	SCHEMA_FIELD( ParticleAttributeIndex_t, m_nVectorAttribute, 6 )
	SCHEMA_FIELD( int32_t, m_nVectorComponent, 0 )
	SCHEMA_FIELD( bool, m_bReverseOrder, false )
	SCHEMA_FIELD( float, m_flRandomMin, 0.0f )
	SCHEMA_FIELD( float, m_flRandomMax, 1.0f )
	SCHEMA_FIELD( bool, m_bHasRandomSignFlip, false )
	SCHEMA_FIELD( int32_t, m_nRandomSeed, -1 )
	SCHEMA_FIELD( ParticleFloatRandomMode_t, m_nRandomMode, PF_RANDOM_MODE_CONSTANT )
	SCHEMA_FIELD( CUtlString, m_strSnapshotSubset, {} )
	SCHEMA_FIELD( float, m_flLOD0, 0.0f )
	SCHEMA_FIELD( float, m_flLOD1, 0.0f )
	SCHEMA_FIELD( float, m_flLOD2, 0.0f )
	SCHEMA_FIELD( float, m_flLOD3, 0.0f )
	SCHEMA_FIELD( ParticleAttributeIndex_t, m_nNoiseInputVectorAttribute, 0 )
	SCHEMA_FIELD( float, m_flNoiseOutputMin, 0.0f )
	SCHEMA_FIELD( float, m_flNoiseOutputMax, 1.0f )
	SCHEMA_FIELD_GETSET( float, m_flNoiseScale, 0.1f, GetNoiseScale, SetNoiseScale )
	SCHEMA_FIELD( Vector, m_vecNoiseOffsetRate, ( Vector( 0.0f, 0.0f, 0.0f ) ) )
	SCHEMA_FIELD_GETSET( float, m_flNoiseOffset, 0.0f, GetNoiseOffset, SetNoiseOffset )
	SCHEMA_FIELD_GETSET( int32_t, m_nNoiseOctaves, 1, GetNoiseOctaves, SetNoiseOctaves )
	SCHEMA_FIELD( PFNoiseTurbulence_t, m_nNoiseTurbulence, PF_NOISE_TURB_NONE )
	SCHEMA_FIELD( PFNoiseType_t, m_nNoiseType, PF_NOISE_TYPE_PERLIN )
	SCHEMA_FIELD( PFNoiseModifier_t, m_nNoiseModifier, PF_NOISE_MODIFIER_NONE )
	SCHEMA_FIELD( float, m_flNoiseTurbulenceScale, 1.0f )
	SCHEMA_FIELD( float, m_flNoiseTurbulenceMix, 0.5f )
	SCHEMA_FIELD_GETSET( float, m_flNoiseImgPreviewScale, 1.0f, GetNoiseImgPreviewScale, SetNoiseImgPreviewScale )
	SCHEMA_FIELD( bool, m_bNoiseImgPreviewLive, true )
	SCHEMA_FIELD( float, m_flNoCameraFallback, 0.0f )
	SCHEMA_FIELD( bool, m_bUseBoundsCenter, false )
	SCHEMA_FIELD( ParticleFloatInputMode_t, m_nInputMode, PF_INPUT_MODE_CLAMPED )
	SCHEMA_FIELD( float, m_flMultFactor, 1.0f )
	SCHEMA_FIELD( float, m_flInput0, 0.0f )
	SCHEMA_FIELD( float, m_flInput1, 1.0f )
	SCHEMA_FIELD( float, m_flOutput0, 0.0f )
	SCHEMA_FIELD( float, m_flOutput1, 1.0f )
	SCHEMA_FIELD( float, m_flNotchedRangeMin, 0.0f )
	SCHEMA_FIELD( float, m_flNotchedRangeMax, 1.0f )
	SCHEMA_FIELD( float, m_flNotchedOutputOutside, 0.0f )
	SCHEMA_FIELD( float, m_flNotchedOutputInside, 1.0f )
	SCHEMA_FIELD( ParticleFloatRoundType_t, m_nRoundType, PF_ROUND_TYPE_NEAREST )
	SCHEMA_FIELD( ParticleFloatBiasType_t, m_nBiasType, PF_BIAS_TYPE_STANDARD )
	SCHEMA_FIELD( float, m_flBiasParameter, 0.0f )
	SCHEMA_FIELD( CPiecewiseCurve, m_Curve, {} )

	// Not in the schema: where the per-particle random constant lives in the cache block.
	int32_t m_nCacheOffset = -1;

	// The defaults again, with this literal; the input mode, round type, preview zoom,
	// camera fallback and bounds-centre choice stay as they are.
	void ResetToLiteral( float flLiteral );

	// Accessors that keep their fields in range.
	int32_t GetNoiseOctaves() const { return m_nNoiseOctaves; }
	void SetNoiseOctaves( const int32_t &nOctaves );
	float GetNoiseOffset() const { return m_flNoiseOffset; }
	void SetNoiseOffset( const float &flOffset );
	float GetNoiseScale() const { return m_flNoiseScale; }
	void SetNoiseScale( const float &flScale );
	float GetNoiseImgPreviewScale() const { return m_flNoiseImgPreviewScale; }
	void SetNoiseImgPreviewScale( const float &flScale );

	void CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const override;
	void ResolveNamedValues( CParticleNamedValueBindings &bindings ) override;
	void AssignCacheOffset( int &nOffset ) override;
	void GetReadAttributeMask( uint64_t *pMask ) const override;
	void GetReadInitialAttributeMask( uint64_t *pMask ) const override;

	// Whether the two inputs give the same values. Only literals and attribute reads can
	// be; random sources and curve maps never are.
	static bool IsEquivalent( const CParticleFloatInput &a, const CParticleFloatInput &b );

	// Transfer hooks: any value that isn't a table is a plain literal; a delta save keeps
	// the attribute indexes unless they are 0, and always writes the curve.
	static bool KV3PreLoad( CParticleFloatInput &input, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext );
	int KV3IsMemberAtDefault( const char *pszMember, const CParticleFloatInput &defaultInput ) const;
};

class CPerParticleFloatInput : public CParticleFloatInput
{
	SCHEMA_DERIVED_CLASS( CPerParticleFloatInput, CParticleFloatInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CPerParticleFloatInput> },
						  { "MPropertyCustomEditor", "PerParticleFloatInput()" } )
	CPerParticleFloatInput() = default;
	explicit CPerParticleFloatInput( float flLiteral ) : CParticleFloatInput( flLiteral ) {}
	bool IsPerParticle() const override { return true; }
};

class CParticleCollectionFloatInput : public CParticleFloatInput
{
	SCHEMA_DERIVED_CLASS( CParticleCollectionFloatInput, CParticleFloatInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleCollectionFloatInput> },
						  { "MPropertyCustomEditor", "CollectionFloatInput()" } )
	CParticleCollectionFloatInput() = default;
	explicit CParticleCollectionFloatInput( float flLiteral ) : CParticleFloatInput( flLiteral ) {}
};

// Only the map stage is edited: the source is whatever the function feeds in.
class CParticleRemapFloatInput : public CParticleFloatInput
{
	SCHEMA_DERIVED_CLASS( CParticleRemapFloatInput, CParticleFloatInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleRemapFloatInput> },
						  { "MPropertyCustomEditor", "RemapFloatInput()" } )
	CParticleRemapFloatInput() { m_nType = PF_TYPE_INVALID; }

	// A table without "m_nType" keeps the class's own default, no source.
	static void KV3PostLoad( CParticleRemapFloatInput &input, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext );
};

class CParticleCollectionRendererFloatInput : public CParticleCollectionFloatInput
{
	SCHEMA_DERIVED_CLASS( CParticleCollectionRendererFloatInput, CParticleCollectionFloatInput,
						  { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleCollectionRendererFloatInput> },
						  { "MPropertyCustomEditor", "CollectionRendererFloatInput()" } )
	CParticleCollectionRendererFloatInput() = default;
	explicit CParticleCollectionRendererFloatInput( float flLiteral ) : CParticleCollectionFloatInput( flLiteral ) {}
};

// The short text by which lists show the input ("2.5 Scaled", "Noise 0 - 1 Curve").
// pszDomain is the system's named value domain, or "".
void BuildDisplayString( const CParticleFloatInput &input, CBufferString *pText, const char *pszDomain );

// How a variable's name is shown in a domain; answers false when the domain has no
// translation for it. The document installs one; without it names show as they are.
using ParticleNamedValueDisplayNameFn_t = bool ( * )( const char *pszDomain, const char *pszName, CBufferString *pOut );
void SetParticleNamedValueDisplayNameFn( ParticleNamedValueDisplayNameFn_t pfnDisplayName );
void GetParticleNamedValueDisplayName( const char *pszDomain, const char *pszName, CBufferString *pOut );
