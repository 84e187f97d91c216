#pragma once
// The run-time form of the typed inputs that function fields hold (float, vector,
// transform, model). Each is read once from its KV3 table at compile, with the field
// names of the definition file, and evaluated either once for the collection or over a
// run of particles into an array, so the per-particle work is a tight loop per input.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/mathlib/vector.h"
#include "core/particles/particleinputtypes.h"
#include "core/particles/particleparamid.h"
#include "core/particles/sim/controlpointusage.h"
#include "core/text/utlstring.h"

class KeyValues3;
class CParticleCollection;
class CParticleModel;
class CHostNamedValueBindings;

// Bias curves shared by random and remap stages; p in -1 .. 1, x in 0 .. 1.
float ParticleBias( int nBiasType, float flParameter, float x );

// What compile hands every input: named value slots, the running cache offset.
struct ParticleInputCompileContext_t
{
	CHostNamedValueBindings *m_pBindings = nullptr;
	int m_nCacheOffset = 0;
};

// A sampled curve or gradient: evaluation is an index and a lerp in the hot loop.
struct ParticleSampledCurve_t
{
	static constexpr int SAMPLES = 128;
	float m_flDomainMin = 0.0f;
	float m_flDomainMax = 1.0f;
	float m_flValues[ SAMPLES ] = {};
	bool m_bValid = false;
	bool Load( const KeyValues3 *pCurve );
	float Evaluate( float x ) const;
};

struct ParticleSampledGradient_t
{
	static constexpr int SAMPLES = 128;
	Vector m_Colors[ SAMPLES ]; // 0 .. 1 per channel
	bool m_bValid = false;
	bool Load( const KeyValues3 *pGradient );
	Vector Evaluate( float t ) const;
};

class CSimFloatInput
{
public:
	CSimFloatInput() = default;
	explicit CSimFloatInput( float flLiteral ) : m_flLiteralValue( flLiteral ) {}

	// A table is read member by member; any other value is a plain literal. Answers
	// false with a text for a value that can't be an input.
	bool Load( const KeyValues3 *pValue, CUtlString *pError );
	void Compile( ParticleInputCompileContext_t *pContext, bool bPerParticle );

	// The same value for every particle and every step: a literal, whatever its map.
	bool IsConstant() const { return m_nType == PF_TYPE_LITERAL; }
	bool IsPerParticleSource() const;

	float EvaluateCollection( const CParticleCollection &collection ) const;
	// One value for each particle of [nStart, nStart + nCount).
	void EvaluatePerParticle( const CParticleCollection &collection, int nStart, int nCount, float *pOut ) const;
	// The mapping stage alone, for tests and for callers that already have a source.
	float ApplyMap( float flValue ) const;

	void CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const;
	uint64_t GetReadAttributeMask() const;
	uint64_t GetReadInitialAttributeMask() const;

	// Fields, named as in the definition file.
	int32_t m_nType = PF_TYPE_LITERAL;
	int32_t m_nMapType = PF_MAP_TYPE_DIRECT;
	float m_flLiteralValue = 0.0f;
	CUtlString m_NamedValue;
	int32_t m_nControlPoint = 0;
	int32_t m_nScalarAttribute = 3;
	int32_t m_nVectorAttribute = 6;
	int32_t m_nVectorComponent = 0;
	bool m_bReverseOrder = false;
	float m_flRandomMin = 0.0f;
	float m_flRandomMax = 1.0f;
	bool m_bHasRandomSignFlip = false;
	int32_t m_nRandomSeed = -1;
	int32_t m_nRandomMode = 0;
	float m_flLOD0 = 0.0f, m_flLOD1 = 0.0f, m_flLOD2 = 0.0f, m_flLOD3 = 0.0f;
	int32_t m_nNoiseInputVectorAttribute = 0;
	float m_flNoiseOutputMin = 0.0f;
	float m_flNoiseOutputMax = 1.0f;
	float m_flNoiseScale = 0.1f;
	Vector m_vecNoiseOffsetRate;
	float m_flNoiseOffset = 0.0f;
	int32_t m_nNoiseOctaves = 1;
	int32_t m_nNoiseTurbulence = 0;
	int32_t m_nNoiseType = 0;
	int32_t m_nNoiseModifier = 0;
	float m_flNoiseTurbulenceScale = 1.0f;
	float m_flNoiseTurbulenceMix = 0.5f;
	float m_flNoCameraFallback = 0.0f;
	bool m_bUseBoundsCenter = false;
	int32_t m_nInputMode = 0;
	float m_flMultFactor = 1.0f;
	float m_flInput0 = 0.0f, m_flInput1 = 1.0f;
	float m_flOutput0 = 0.0f, m_flOutput1 = 1.0f;
	float m_flNotchedRangeMin = 0.0f, m_flNotchedRangeMax = 1.0f;
	float m_flNotchedOutputOutside = 0.0f, m_flNotchedOutputInside = 1.0f;
	int32_t m_nRoundType = 0;
	int32_t m_nBiasType = 0;
	float m_flBiasParameter = 0.0f;
	ParticleSampledCurve_t m_Curve;

	// Compile results.
	int m_nNamedValueSlot = -1;
	int m_nCacheOffset = -1;
	bool m_bPerParticle = false;

private:
	float EvaluateSource( const CParticleCollection &collection, int nParticle ) const;
	float RandomValue( const CParticleCollection &collection, uint32_t nKey ) const;
	float NoiseAt( const Vector &position, float flTime ) const;
};

class CSimVecInput
{
public:
	CSimVecInput() = default;
	explicit CSimVecInput( const Vector &vLiteral ) : m_vLiteralValue( vLiteral ) {}

	bool Load( const KeyValues3 *pValue, CUtlString *pError );
	void Compile( ParticleInputCompileContext_t *pContext, bool bPerParticle );

	bool IsConstant() const { return m_nType == PVEC_TYPE_LITERAL || m_nType == PVEC_TYPE_LITERAL_COLOR; }
	Vector EvaluateCollection( const CParticleCollection &collection ) const;
	// Three arrays, one per component, for [nStart, nStart + nCount).
	void EvaluatePerParticle( const CParticleCollection &collection, int nStart, int nCount, float *pX, float *pY, float *pZ ) const;

	void CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const;
	uint64_t GetReadAttributeMask() const;
	uint64_t GetReadInitialAttributeMask() const;

	int32_t m_nType = PVEC_TYPE_LITERAL;
	Vector m_vLiteralValue;
	uint8_t m_LiteralColor[ 4 ] = { 0, 0, 0, 255 };
	CUtlString m_NamedValue;
	bool m_bFollowNamedValue = false;
	int32_t m_nVectorAttribute = 6;
	Vector m_vVectorAttributeScale{ 1.0f, 1.0f, 1.0f };
	int32_t m_nControlPoint = 0;
	int32_t m_nDeltaControlPoint = 0;
	Vector m_vCPValueScale{ 1.0f, 1.0f, 1.0f };
	Vector m_vCPRelativePosition;
	Vector m_vCPRelativeDir{ 1.0f, 0.0f, 0.0f };
	CSimFloatInput m_FloatComponentX, m_FloatComponentY, m_FloatComponentZ;
	CSimFloatInput m_FloatInterp;
	float m_flInterpInput0 = 0.0f, m_flInterpInput1 = 1.0f;
	Vector m_vInterpOutput0;
	Vector m_vInterpOutput1{ 1.0f, 1.0f, 1.0f };
	ParticleSampledGradient_t m_Gradient;
	Vector m_vRandomMin, m_vRandomMax;

	int m_nNamedValueSlot = -1;
	bool m_bPerParticle = false;

private:
	Vector EvaluateOne( const CParticleCollection &collection, int nParticle ) const;
};

struct ParticleTransform_t
{
	Vector m_vOrigin;
	Vector m_vForward{ 1.0f, 0.0f, 0.0f };
	Vector m_vRight{ 0.0f, -1.0f, 0.0f };
	Vector m_vUp{ 0.0f, 0.0f, 1.0f };
	bool m_bValid = true;
};

class CSimTransformInput
{
public:
	bool Load( const KeyValues3 *pValue, CUtlString *pError );
	void Compile( ParticleInputCompileContext_t *pContext );
	// nParticle picks among a control point range; -1 for the collection.
	ParticleTransform_t Evaluate( const CParticleCollection &collection, int nParticle = -1 ) const;
	void CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const;

	int32_t m_nType = PT_TYPE_CONTROL_POINT;
	CUtlString m_NamedValue;
	bool m_bFollowNamedValue = false;
	bool m_bSupportsDisabled = false;
	bool m_bUseOrientation = true;
	int32_t m_nControlPoint = 0;
	int32_t m_nControlPointRangeMax = 0;
	float m_flEndCPGrowthTime = 0.0f;
	int m_nNamedValueSlot = -1;
};

class CSimModelInput
{
public:
	bool Load( const KeyValues3 *pValue, CUtlString *pError );
	void Compile( ParticleInputCompileContext_t *pContext );
	// The model the input stands for: a model variable's model (type 1) or the model its
	// control point carries (type 3). An entity variable (type 2) names no model the
	// runtime can reach headless, so it gives null, as does anything not bound.
	const CParticleModel *GetModel( const CParticleCollection &collection ) const;
	// The model's resource name, or "" when there is none.
	const char *GetModelName( const CParticleCollection &collection ) const;
	// The control point the model follows, or -1.
	int GetControlPoint() const { return m_nType == PM_TYPE_CONTROL_POINT ? m_nControlPoint : -1; }
	void CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const;

	int32_t m_nType = PM_TYPE_INVALID;
	CUtlString m_NamedValue;
	int32_t m_nControlPoint = -1;
	int m_nNamedValueSlot = -1;
};
