#include "particleslib/particlefloatinput.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "particleslib/particlenamedvaluebindings.h"

void CParticleFloatInput::ResetToLiteral( float flLiteral )
{
	// The editor's own settings survive a reset: they describe how the user works, not the value.
	const ParticleFloatInputMode_t nInputMode = m_nInputMode;
	const ParticleFloatRoundType_t nRoundType = m_nRoundType;
	const float flPreviewScale = m_flNoiseImgPreviewScale;
	const float flNoCameraFallback = m_flNoCameraFallback;
	const bool bUseBoundsCenter = m_bUseBoundsCenter;
	const bool bInitialized = m_bInitialized;

	*this = CParticleFloatInput( flLiteral );
	m_nInputMode = nInputMode;
	m_nRoundType = nRoundType;
	m_flNoiseImgPreviewScale = flPreviewScale;
	m_flNoCameraFallback = flNoCameraFallback;
	m_bUseBoundsCenter = bUseBoundsCenter;
	m_bInitialized = bInitialized;
}

void CParticleFloatInput::SetNoiseOctaves( const int32_t &nOctaves ) { m_nNoiseOctaves = std::min( std::max( nOctaves, 1 ), 4 ); }
void CParticleFloatInput::SetNoiseOffset( const float &flOffset ) { m_flNoiseOffset = std::min( std::max( flOffset, -1000.0f ), 1000.0f ); }
void CParticleFloatInput::SetNoiseScale( const float &flScale ) { m_flNoiseScale = std::min( std::max( flScale, 0.000001f ), 100000.0f ); }
void CParticleFloatInput::SetNoiseImgPreviewScale( const float &flScale ) { m_flNoiseImgPreviewScale = std::min( std::max( flScale, 0.001f ), 1000.0f ); }

void CParticleFloatInput::CollectControlPointUsage( CUtlVector<ControlPointUsage_t> &list ) const
{
	switch ( m_nType )
	{
	case PF_TYPE_CONTROL_POINT_COMPONENT:
	case PF_TYPE_CONTROL_POINT_CHANGE_AGE:
	case PF_TYPE_CONTROL_POINT_SPEED:
	case PF_TYPE_SNAPSHOT_COUNT:
	case PF_TYPE_RENDERER_CAMERA_DISTANCE:
	case PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT: AddControlPointRead( list, m_nControlPoint, CONTROL_POINT_USAGE_POSITION ); break;
	case PF_TYPE_PARTICLE_NOISE:
		// A per-particle noise samples at a particle attribute instead.
		if ( !IsPerParticle() )
			AddControlPointRead( list, m_nControlPoint, CONTROL_POINT_USAGE_POSITION );
		break;
	default: break;
	}
}

void CParticleFloatInput::ResolveNamedValues( CParticleNamedValueBindings &bindings )
{
	if ( m_nType == PF_TYPE_NAMED_VALUE )
		bindings.Bind( m_NamedValue, CPulseValueFullType( PVAL_FLOAT ) );
}

void CParticleFloatInput::AssignCacheOffset( int &nOffset )
{
	bool bRandom = m_nType == PF_TYPE_RANDOM_UNIFORM || m_nType == PF_TYPE_RANDOM_BIASED;
	if ( bRandom && m_nRandomMode == PF_RANDOM_MODE_CONSTANT )
	{
		m_nCacheOffset = nOffset;
		nOffset += static_cast<int>( sizeof( float ) );
	}
	else
	{
		m_nCacheOffset = PARTICLE_INPUT_NO_CACHE_OFFSET;
	}
}

void CParticleFloatInput::GetReadAttributeMask( uint64_t *pMask ) const
{
	switch ( m_nType )
	{
	case PF_TYPE_RANDOM_UNIFORM:
	case PF_TYPE_RANDOM_BIASED: *pMask = ParticleAttributeBit( 11 ); break; // the particle's random seed
	case PF_TYPE_PARTICLE_NOISE: *pMask = ParticleAttributeBit( m_nNoiseInputVectorAttribute ); break;
	case PF_TYPE_PARTICLE_AGE: *pMask = ParticleAttributeBit( 8 ); break;
	case PF_TYPE_PARTICLE_AGE_NORMALIZED: *pMask = ParticleAttributeBit( 8 ) | ParticleAttributeBit( 1 ); break;
	case PF_TYPE_PARTICLE_FLOAT: *pMask = ParticleAttributeBit( m_nScalarAttribute ); break;
	case PF_TYPE_PARTICLE_VECTOR_COMPONENT: *pMask = ParticleAttributeBit( m_nVectorAttribute ); break;
	case PF_TYPE_PARTICLE_SPEED: *pMask = ParticleAttributeBit( 0 ) | ParticleAttributeBit( 2 ); break;
	case PF_TYPE_PARTICLE_ROPE_SEGMENT:
	case PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED: *pMask = ParticleAttributeBit( 48 ); break;
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE:
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT: *pMask = ParticleAttributeBit( 0 ); break;
	default: *pMask = 0; break;
	}
}

void CParticleFloatInput::GetReadInitialAttributeMask( uint64_t *pMask ) const
{
	switch ( m_nType )
	{
	case PF_TYPE_PARTICLE_INITIAL_FLOAT: *pMask = ParticleAttributeBit( m_nScalarAttribute ); break;
	case PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT: *pMask = ParticleAttributeBit( m_nVectorAttribute ); break;
	default: *pMask = 0; break;
	}
}

bool CParticleFloatInput::IsEquivalent( const CParticleFloatInput &a, const CParticleFloatInput &b )
{
	if ( a.m_nType != b.m_nType || a.m_nMapType != b.m_nMapType )
		return false;

	// Floats compare by value, so a NaN on either side is never equivalent.
	auto sameRange = [ & ] { return a.m_flInput0 == b.m_flInput0 && a.m_flInput1 == b.m_flInput1 && a.m_flOutput0 == b.m_flOutput0 && a.m_flOutput1 == b.m_flOutput1; };
	switch ( a.m_nMapType )
	{
	case PF_MAP_TYPE_MULT:
		if ( !( a.m_flMultFactor == b.m_flMultFactor ) )
			return false;
		break;
	case PF_MAP_TYPE_REMAP:
		if ( !sameRange() )
			return false;
		break;
	case PF_MAP_TYPE_REMAP_BIASED:
		if ( !sameRange() || a.m_nBiasType != b.m_nBiasType || !( a.m_flBiasParameter == b.m_flBiasParameter ) )
			return false;
		break;
	case PF_MAP_TYPE_CURVE: return false; // curves are only ever equal as KV3
	case PF_MAP_TYPE_NOTCHED:
		if ( !( a.m_flNotchedRangeMin == b.m_flNotchedRangeMin && a.m_flNotchedRangeMax == b.m_flNotchedRangeMax &&
				a.m_flNotchedOutputOutside == b.m_flNotchedOutputOutside && a.m_flNotchedOutputInside == b.m_flNotchedOutputInside ) )
			return false;
		break;
	case PF_MAP_TYPE_ROUND:
		if ( a.m_nRoundType != b.m_nRoundType )
			return false;
		break;
	default: break;
	}

	switch ( a.m_nType )
	{
	case PF_TYPE_LITERAL: return a.m_flLiteralValue == b.m_flLiteralValue;
	case PF_TYPE_PARTICLE_FLOAT:
	case PF_TYPE_PARTICLE_INITIAL_FLOAT: return a.m_nScalarAttribute == b.m_nScalarAttribute;
	default: return false; // two random sources with one range still draw different values
	}
}

namespace
{
// The number a bare value stands for.
float ReadLiteralNumber( const KeyValues3 *pValue )
{
	switch ( pValue ? pValue->GetType() : KV3_TYPE_NULL )
	{
	case KV3_TYPE_BOOL: return pValue->GetBool() ? 1.0f : 0.0f;
	case KV3_TYPE_INT: return static_cast<float>( pValue->GetInt64() );
	case KV3_TYPE_UINT: return static_cast<float>( pValue->GetUInt64() );
	case KV3_TYPE_DOUBLE: return static_cast<float>( pValue->GetDouble() );
	case KV3_TYPE_STRING: return std::strtof( pValue->GetString(), nullptr );
	default: return 0.0f;
	}
}
} // namespace

bool CParticleFloatInput::KV3PreLoad( CParticleFloatInput &input, const KeyValues3 *pValue, CKV3TransferLoadContext * )
{
	if ( pValue && pValue->IsTable() )
		return false;
	input.ResetToLiteral( ReadLiteralNumber( pValue ) );
	return true;
}

int CParticleFloatInput::KV3IsMemberAtDefault( const char *pszMember, const CParticleFloatInput &defaultInput ) const
{
	if ( std::strcmp( pszMember, "m_NamedValue" ) == 0 )
		return m_NamedValue.GetToken() == 0;
	// Attribute indexes are written unless 0, so a file says which attribute it reads even
	// when that is the usual one. A 0 that differs from the default is written too: left
	// out, it would load back as the default.
	auto attributeAtDefault = []( int32_t nValue, int32_t nDefault ) { return nValue == 0 && nDefault == 0; };
	if ( std::strcmp( pszMember, "m_nScalarAttribute" ) == 0 )
		return attributeAtDefault( m_nScalarAttribute, defaultInput.m_nScalarAttribute );
	if ( std::strcmp( pszMember, "m_nVectorAttribute" ) == 0 )
		return attributeAtDefault( m_nVectorAttribute, defaultInput.m_nVectorAttribute );
	if ( std::strcmp( pszMember, "m_nNoiseInputVectorAttribute" ) == 0 )
		return attributeAtDefault( m_nNoiseInputVectorAttribute, defaultInput.m_nNoiseInputVectorAttribute );
	if ( std::strcmp( pszMember, "m_Curve" ) == 0 )
		return 0;
	return -1;
}

void CParticleRemapFloatInput::KV3PostLoad( CParticleRemapFloatInput &input, const KeyValues3 *pTable, CKV3TransferLoadContext * )
{
	if ( pTable && !pTable->HasMember( "m_nType" ) )
		input.m_nType = PF_TYPE_INVALID;
}
