// Reading inputs from their KV3 tables, with the member names of the definition file.

#include <algorithm>
#include <cmath>
#include <strings.h>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/mathlib/colorgradient.h"
#include "core/mathlib/piecewisecurve.h"
#include "core/particles/sim/particleinputs.h"
#include "core/particles/sim/particlekv3read.h"
#include "core/particles/sim/particlenamedvaluebindings.h"

using namespace ParticleKV3;

namespace
{
const char *const s_FloatTypeNames[] = { "PF_TYPE_INVALID", "PF_TYPE_LITERAL", "PF_TYPE_NAMED_VALUE", "PF_TYPE_RANDOM_UNIFORM", "PF_TYPE_RANDOM_BIASED",
	"PF_TYPE_COLLECTION_AGE", "PF_TYPE_ENDCAP_AGE", "PF_TYPE_CONTROL_POINT_COMPONENT", "PF_TYPE_CONTROL_POINT_CHANGE_AGE", "PF_TYPE_CONTROL_POINT_SPEED",
	"PF_TYPE_PARTICLE_DETAIL_LEVEL", "PF_TYPE_CONCURRENT_DEF_COUNT", "PF_TYPE_CLOSEST_CAMERA_DISTANCE", "PF_TYPE_SNAPSHOT_COUNT",
	"PF_TYPE_RENDERER_CAMERA_DISTANCE", "PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT", "PF_TYPE_PARTICLE_NOISE", "PF_TYPE_PARTICLE_AGE",
	"PF_TYPE_PARTICLE_AGE_NORMALIZED", "PF_TYPE_PARTICLE_FLOAT", "PF_TYPE_PARTICLE_INITIAL_FLOAT", "PF_TYPE_PARTICLE_VECTOR_COMPONENT",
	"PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT", "PF_TYPE_PARTICLE_SPEED", "PF_TYPE_PARTICLE_NUMBER", "PF_TYPE_PARTICLE_NUMBER_NORMALIZED",
	"PF_TYPE_PARTICLE_ROPE_SEGMENT", "PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED", "PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE",
	"PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT", "PF_TYPE_COUNT" };
const char *const s_MapTypeNames[] = { "PF_MAP_TYPE_INVALID", "PF_MAP_TYPE_DIRECT", "PF_MAP_TYPE_MULT", "PF_MAP_TYPE_REMAP", "PF_MAP_TYPE_REMAP_BIASED",
	"PF_MAP_TYPE_CURVE", "PF_MAP_TYPE_NOTCHED", "PF_MAP_TYPE_ROUND", "PF_MAP_TYPE_COUNT" };
const char *const s_BiasNames[] = { "PF_BIAS_TYPE_INVALID", "PF_BIAS_TYPE_STANDARD", "PF_BIAS_TYPE_GAIN", "PF_BIAS_TYPE_EXPONENTIAL", "PF_BIAS_TYPE_COUNT" };
const char *const s_NoiseTypeNames[] = { "PF_NOISE_TYPE_PERLIN", "PF_NOISE_TYPE_SIMPLEX", "PF_NOISE_TYPE_WORLEY", "PF_NOISE_TYPE_CURL" };
const char *const s_NoiseModifierNames[] = { "PF_NOISE_MODIFIER_NONE", "PF_NOISE_MODIFIER_LINES", "PF_NOISE_MODIFIER_CLUMPS", "PF_NOISE_MODIFIER_RINGS" };
const char *const s_NoiseTurbulenceNames[] = { "PF_NOISE_TURB_NONE", "PF_NOISE_TURB_HIGHLIGHT", "PF_NOISE_TURB_FEEDBACK", "PF_NOISE_TURB_LOOPY",
	"PF_NOISE_TURB_CONTRAST", "PF_NOISE_TURB_ALTERNATE" };
const char *const s_RandomModeNames[] = { "PF_RANDOM_MODE_INVALID", "PF_RANDOM_MODE_CONSTANT", "PF_RANDOM_MODE_VARYING", "PF_RANDOM_MODE_COUNT" };
const char *const s_InputModeNames[] = { "PF_INPUT_MODE_INVALID", "PF_INPUT_MODE_CLAMPED", "PF_INPUT_MODE_LOOPED", "PF_INPUT_MODE_COUNT" };
const char *const s_RoundNames[] = { "PF_ROUND_TYPE_INVALID", "PF_ROUND_TYPE_NEAREST", "PF_ROUND_TYPE_FLOOR", "PF_ROUND_TYPE_CEIL", "PF_ROUND_TYPE_COUNT" };
const char *const s_VecTypeNames[] = { "PVEC_TYPE_INVALID", "PVEC_TYPE_LITERAL", "PVEC_TYPE_LITERAL_COLOR", "PVEC_TYPE_NAMED_VALUE",
	"PVEC_TYPE_PARTICLE_VECTOR", "PVEC_TYPE_PARTICLE_INITIAL_VECTOR", "PVEC_TYPE_PARTICLE_VELOCITY", "PVEC_TYPE_CP_VALUE",
	"PVEC_TYPE_CP_RELATIVE_POSITION", "PVEC_TYPE_CP_RELATIVE_DIR", "PVEC_TYPE_CP_RELATIVE_RANDOM_DIR", "PVEC_TYPE_FLOAT_COMPONENTS",
	"PVEC_TYPE_FLOAT_INTERP_CLAMPED", "PVEC_TYPE_FLOAT_INTERP_OPEN", "PVEC_TYPE_FLOAT_INTERP_GRADIENT", "PVEC_TYPE_RANDOM_UNIFORM",
	"PVEC_TYPE_RANDOM_UNIFORM_OFFSET", "PVEC_TYPE_CP_DELTA", "PVEC_TYPE_CLOSEST_CAMERA_POSITION", "PVEC_TYPE_COUNT" };
const char *const s_TransformTypeNames[] = { "PT_TYPE_INVALID", "PT_TYPE_NAMED_VALUE", "PT_TYPE_CONTROL_POINT", "PT_TYPE_CONTROL_POINT_RANGE", "PT_TYPE_COUNT" };
const char *const s_ModelTypeNames[] = { "PM_TYPE_INVALID", "PM_TYPE_NAMED_VALUE_MODEL", "PM_TYPE_NAMED_VALUE_EHANDLE", "PM_TYPE_CONTROL_POINT", "PM_TYPE_COUNT" };

template <size_t N> int Enum( const KeyValues3 *pTable, const char *pName, const char *const ( &names )[ N ], int nFirst, int nCurrent )
{
	return ReadEnum( Member( pTable, pName ), names, int( N ), nFirst, nCurrent );
}

void F( const KeyValues3 *pTable, const char *pName, float *pField ) { *pField = ReadFloat( Member( pTable, pName ), *pField ); }
void I( const KeyValues3 *pTable, const char *pName, int32_t *pField ) { *pField = ReadInt( Member( pTable, pName ), *pField ); }
void B( const KeyValues3 *pTable, const char *pName, bool *pField ) { *pField = ReadBool( Member( pTable, pName ), *pField ); }
void V( const KeyValues3 *pTable, const char *pName, Vector *pField ) { *pField = ReadVector( Member( pTable, pName ), *pField ); }
void S( const KeyValues3 *pTable, const char *pName, CUtlString *pField )
{
	const KeyValues3 *pValue = Member( pTable, pName );
	if ( pValue && pValue->IsString() )
		pField->Set( pValue->GetString() );
}

// A value that should have been a table or a plain value gets a text naming what it was.
bool RefuseKind( const KeyValues3 *pValue, const char *pWhat, CUtlString *pError )
{
	if ( pError )
		pError->Format( "%s is a '%s', not a table", pWhat, pValue->GetTypeAsString() );
	return false;
}

} // namespace

bool ParticleSampledCurve_t::Load( const KeyValues3 *pCurve )
{
	m_bValid = false;
	if ( !pCurve || !pCurve->IsTable() )
		return false;
	CPiecewiseCurve curve;
	CUtlString error;
	// Reports of the lenient load (a cast, a stray member) don't stop a usable curve.
	LoadKV3ObjectInPlace( &curve, pCurve, &error );
	if ( curve.GetKeyCount() == 0 )
		return false;
	// The sampled range: the curve's domain when it has one, else the span of its keys.
	m_flDomainMin = curve.m_vDomainMins.x;
	m_flDomainMax = curve.m_vDomainMaxs.x;
	if ( !( m_flDomainMax > m_flDomainMin ) )
	{
		m_flDomainMin = curve.GetKey( 0 ).x;
		m_flDomainMax = curve.GetKey( curve.GetKeyCount() - 1 ).x;
		if ( !( m_flDomainMax > m_flDomainMin ) )
			m_flDomainMax = m_flDomainMin + 1.0f;
	}
	for ( int i = 0; i < SAMPLES; ++i )
	{
		float x = m_flDomainMin + ( m_flDomainMax - m_flDomainMin ) * float( i ) / float( SAMPLES - 1 );
		// A single key is a constant; Evaluate would hand back x itself.
		m_flValues[ i ] = curve.GetKeyCount() == 1 ? curve.GetKey( 0 ).y : curve.Evaluate( x );
	}
	m_bValid = true;
	return true;
}

bool ParticleSampledGradient_t::Load( const KeyValues3 *pGradient )
{
	m_bValid = false;
	if ( !pGradient || !pGradient->IsTable() )
		return false;
	CColorGradient gradient;
	CUtlString error;
	LoadKV3ObjectInPlace( &gradient, pGradient, &error );
	if ( gradient.GetStopCount() == 0 )
		return false;
	for ( int i = 0; i < SAMPLES; ++i )
	{
		Color color = gradient.Evaluate( float( i ) / float( SAMPLES - 1 ) );
		m_Colors[ i ] = Vector( float( color.r() ) / 255.0f, float( color.g() ) / 255.0f, float( color.b() ) / 255.0f );
	}
	m_bValid = true;
	return true;
}

bool CSimFloatInput::Load( const KeyValues3 *pValue, CUtlString *pError )
{
	if ( !pValue )
		return true;
	if ( !pValue->IsTable() )
	{
		if ( pValue->GetType() == KV3_TYPE_BINARY_BLOB )
			return RefuseKind( pValue, "Float input", pError );
		m_nType = PF_TYPE_LITERAL;
		m_nMapType = PF_MAP_TYPE_DIRECT;
		m_flLiteralValue = ( pValue->IsArray() || pValue->IsNull() ) ? 0.0f : ReadFloat( pValue, 0.0f );
		return true;
	}
	m_nType = Enum( pValue, "m_nType", s_FloatTypeNames, -1, m_nType );
	m_nMapType = Enum( pValue, "m_nMapType", s_MapTypeNames, -1, m_nMapType );
	F( pValue, "m_flLiteralValue", &m_flLiteralValue );
	S( pValue, "m_NamedValue", &m_NamedValue );
	I( pValue, "m_nControlPoint", &m_nControlPoint );
	I( pValue, "m_nScalarAttribute", &m_nScalarAttribute );
	I( pValue, "m_nVectorAttribute", &m_nVectorAttribute );
	I( pValue, "m_nVectorComponent", &m_nVectorComponent );
	m_nVectorComponent = std::clamp( m_nVectorComponent, 0, 2 );
	B( pValue, "m_bReverseOrder", &m_bReverseOrder );
	F( pValue, "m_flRandomMin", &m_flRandomMin );
	F( pValue, "m_flRandomMax", &m_flRandomMax );
	B( pValue, "m_bHasRandomSignFlip", &m_bHasRandomSignFlip );
	I( pValue, "m_nRandomSeed", &m_nRandomSeed );
	m_nRandomMode = Enum( pValue, "m_nRandomMode", s_RandomModeNames, -1, m_nRandomMode );
	F( pValue, "m_flLOD0", &m_flLOD0 );
	F( pValue, "m_flLOD1", &m_flLOD1 );
	F( pValue, "m_flLOD2", &m_flLOD2 );
	F( pValue, "m_flLOD3", &m_flLOD3 );
	I( pValue, "m_nNoiseInputVectorAttribute", &m_nNoiseInputVectorAttribute );
	F( pValue, "m_flNoiseOutputMin", &m_flNoiseOutputMin );
	F( pValue, "m_flNoiseOutputMax", &m_flNoiseOutputMax );
	F( pValue, "m_flNoiseScale", &m_flNoiseScale );
	m_flNoiseScale = std::clamp( m_flNoiseScale, 0.000001f, 100000.0f );
	V( pValue, "m_vecNoiseOffsetRate", &m_vecNoiseOffsetRate );
	F( pValue, "m_flNoiseOffset", &m_flNoiseOffset );
	m_flNoiseOffset = std::clamp( m_flNoiseOffset, -1000.0f, 1000.0f );
	I( pValue, "m_nNoiseOctaves", &m_nNoiseOctaves );
	m_nNoiseOctaves = std::clamp( m_nNoiseOctaves, 1, 4 );
	m_nNoiseTurbulence = Enum( pValue, "m_nNoiseTurbulence", s_NoiseTurbulenceNames, 0, m_nNoiseTurbulence );
	m_nNoiseType = Enum( pValue, "m_nNoiseType", s_NoiseTypeNames, 0, m_nNoiseType );
	m_nNoiseModifier = Enum( pValue, "m_nNoiseModifier", s_NoiseModifierNames, 0, m_nNoiseModifier );
	F( pValue, "m_flNoiseTurbulenceScale", &m_flNoiseTurbulenceScale );
	F( pValue, "m_flNoiseTurbulenceMix", &m_flNoiseTurbulenceMix );
	F( pValue, "m_flNoCameraFallback", &m_flNoCameraFallback );
	B( pValue, "m_bUseBoundsCenter", &m_bUseBoundsCenter );
	m_nInputMode = Enum( pValue, "m_nInputMode", s_InputModeNames, -1, m_nInputMode );
	F( pValue, "m_flMultFactor", &m_flMultFactor );
	F( pValue, "m_flInput0", &m_flInput0 );
	F( pValue, "m_flInput1", &m_flInput1 );
	F( pValue, "m_flOutput0", &m_flOutput0 );
	F( pValue, "m_flOutput1", &m_flOutput1 );
	F( pValue, "m_flNotchedRangeMin", &m_flNotchedRangeMin );
	F( pValue, "m_flNotchedRangeMax", &m_flNotchedRangeMax );
	F( pValue, "m_flNotchedOutputOutside", &m_flNotchedOutputOutside );
	F( pValue, "m_flNotchedOutputInside", &m_flNotchedOutputInside );
	m_nRoundType = Enum( pValue, "m_nRoundType", s_RoundNames, -1, m_nRoundType );
	m_nBiasType = Enum( pValue, "m_nBiasType", s_BiasNames, -1, m_nBiasType );
	F( pValue, "m_flBiasParameter", &m_flBiasParameter );
	m_Curve.Load( Member( pValue, "m_Curve" ) );
	return true;
}

void CSimFloatInput::Compile( ParticleInputCompileContext_t *pContext, bool bPerParticle )
{
	m_bPerParticle = bPerParticle;
	if ( m_nType == PF_TYPE_NAMED_VALUE && pContext && pContext->m_pBindings )
		m_nNamedValueSlot = pContext->m_pBindings->Resolve( m_NamedValue.Get(), "PVAL_FLOAT" );
	if ( ( m_nType == PF_TYPE_RANDOM_UNIFORM || m_nType == PF_TYPE_RANDOM_BIASED ) && m_nRandomMode == 0 && pContext )
	{
		m_nCacheOffset = pContext->m_nCacheOffset;
		pContext->m_nCacheOffset += 4;
	}
	else
	{
		m_nCacheOffset = -2;
	}
}

bool CSimVecInput::Load( const KeyValues3 *pValue, CUtlString *pError )
{
	if ( !pValue )
		return true;
	if ( !pValue->IsTable() )
	{
		if ( pValue->IsString() && strcasecmp( pValue->GetString(), "pvec_color_white" ) == 0 )
		{
			m_nType = PVEC_TYPE_LITERAL_COLOR;
			m_LiteralColor[ 0 ] = m_LiteralColor[ 1 ] = m_LiteralColor[ 2 ] = m_LiteralColor[ 3 ] = 255;
			return true;
		}
		if ( pValue->IsString() && strcasecmp( pValue->GetString(), "pvec_color_black" ) == 0 )
		{
			m_nType = PVEC_TYPE_LITERAL_COLOR;
			m_LiteralColor[ 0 ] = m_LiteralColor[ 1 ] = m_LiteralColor[ 2 ] = 0;
			m_LiteralColor[ 3 ] = 255;
			return true;
		}
		if ( !pValue->IsArray() || pValue->GetArrayElementCount() < 3 )
		{
			if ( pError )
				pError->Format( "Vector input is a '%s', neither a table nor three numbers", pValue->GetTypeAsString() );
			return false;
		}
		m_nType = PVEC_TYPE_LITERAL;
		m_vLiteralValue = ReadVector( pValue, Vector() );
		return true;
	}
	m_nType = Enum( pValue, "m_nType", s_VecTypeNames, -1, m_nType );
	V( pValue, "m_vLiteralValue", &m_vLiteralValue );
	int rgba[ 4 ];
	if ( ReadColor( Member( pValue, "m_LiteralColor" ), rgba ) )
	{
		for ( int i = 0; i < 4; ++i )
			m_LiteralColor[ i ] = uint8_t( std::clamp( rgba[ i ], 0, 255 ) );
	}
	S( pValue, "m_NamedValue", &m_NamedValue );
	B( pValue, "m_bFollowNamedValue", &m_bFollowNamedValue );
	I( pValue, "m_nVectorAttribute", &m_nVectorAttribute );
	V( pValue, "m_vVectorAttributeScale", &m_vVectorAttributeScale );
	I( pValue, "m_nControlPoint", &m_nControlPoint );
	I( pValue, "m_nDeltaControlPoint", &m_nDeltaControlPoint );
	V( pValue, "m_vCPValueScale", &m_vCPValueScale );
	V( pValue, "m_vCPRelativePosition", &m_vCPRelativePosition );
	V( pValue, "m_vCPRelativeDir", &m_vCPRelativeDir );
	CSimFloatInput *pComponents[] = { &m_FloatComponentX, &m_FloatComponentY, &m_FloatComponentZ, &m_FloatInterp };
	const char *pComponentNames[] = { "m_FloatComponentX", "m_FloatComponentY", "m_FloatComponentZ", "m_FloatInterp" };
	for ( int i = 0; i < 4; ++i )
	{
		if ( !pComponents[ i ]->Load( Member( pValue, pComponentNames[ i ] ), pError ) )
			return false;
	}
	F( pValue, "m_flInterpInput0", &m_flInterpInput0 );
	F( pValue, "m_flInterpInput1", &m_flInterpInput1 );
	V( pValue, "m_vInterpOutput0", &m_vInterpOutput0 );
	V( pValue, "m_vInterpOutput1", &m_vInterpOutput1 );
	m_Gradient.Load( Member( pValue, "m_Gradient" ) );
	V( pValue, "m_vRandomMin", &m_vRandomMin );
	V( pValue, "m_vRandomMax", &m_vRandomMax );
	return true;
}

void CSimVecInput::Compile( ParticleInputCompileContext_t *pContext, bool bPerParticle )
{
	m_bPerParticle = bPerParticle;
	if ( m_nType == PVEC_TYPE_NAMED_VALUE && pContext && pContext->m_pBindings )
		m_nNamedValueSlot = pContext->m_pBindings->Resolve( m_NamedValue.Get(), "PVAL_VEC3" );
	if ( m_nType == PVEC_TYPE_FLOAT_COMPONENTS )
	{
		m_FloatComponentX.Compile( pContext, bPerParticle );
		m_FloatComponentY.Compile( pContext, bPerParticle );
		m_FloatComponentZ.Compile( pContext, bPerParticle );
	}
	else if ( m_nType >= PVEC_TYPE_FLOAT_INTERP_CLAMPED && m_nType <= PVEC_TYPE_FLOAT_INTERP_GRADIENT )
	{
		m_FloatInterp.Compile( pContext, bPerParticle );
	}
}

bool CSimTransformInput::Load( const KeyValues3 *pValue, CUtlString *pError )
{
	if ( !pValue )
		return true;
	if ( !pValue->IsTable() )
		return RefuseKind( pValue, "Transform input", pError );
	m_nType = Enum( pValue, "m_nType", s_TransformTypeNames, 0, m_nType );
	S( pValue, "m_NamedValue", &m_NamedValue );
	B( pValue, "m_bFollowNamedValue", &m_bFollowNamedValue );
	B( pValue, "m_bSupportsDisabled", &m_bSupportsDisabled );
	B( pValue, "m_bUseOrientation", &m_bUseOrientation );
	I( pValue, "m_nControlPoint", &m_nControlPoint );
	I( pValue, "m_nControlPointRangeMax", &m_nControlPointRangeMax );
	F( pValue, "m_flEndCPGrowthTime", &m_flEndCPGrowthTime );
	return true;
}

void CSimTransformInput::Compile( ParticleInputCompileContext_t *pContext )
{
	if ( m_nType == PT_TYPE_NAMED_VALUE && pContext && pContext->m_pBindings )
		m_nNamedValueSlot = pContext->m_pBindings->Resolve( m_NamedValue.Get(), "PVAL_TRANSFORM" );
}

bool CSimModelInput::Load( const KeyValues3 *pValue, CUtlString *pError )
{
	if ( !pValue )
		return true;
	if ( !pValue->IsTable() )
		return RefuseKind( pValue, "Model input", pError );
	m_nType = Enum( pValue, "m_nType", s_ModelTypeNames, 0, m_nType );
	S( pValue, "m_NamedValue", &m_NamedValue );
	I( pValue, "m_nControlPoint", &m_nControlPoint );
	return true;
}

void CSimModelInput::Compile( ParticleInputCompileContext_t *pContext )
{
	if ( !pContext || !pContext->m_pBindings )
		return;
	if ( m_nType == PM_TYPE_NAMED_VALUE_MODEL )
		m_nNamedValueSlot = pContext->m_pBindings->Resolve( m_NamedValue.Get(), "PVAL_RESOURCE:tmsh" );
	else if ( m_nType == PM_TYPE_NAMED_VALUE_EHANDLE )
		m_nNamedValueSlot = pContext->m_pBindings->Resolve( m_NamedValue.Get(), "PVAL_PARTICLE_EHANDLE" );
}
