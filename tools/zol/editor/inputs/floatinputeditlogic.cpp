#include "tools/zol/editor/inputs/floatinputeditlogic.h"

#include <algorithm>
#include <cstdlib>

#include "particleslib/particlefloatinput.h"

std::vector<int> GetFloatInputTypeMenu( int nKind, bool bRenderer )
{
	std::vector<int> types;
	if ( nKind == FLOAT_INPUT_EDITOR_REMAP )
		return types;
	const int nLast = nKind == FLOAT_INPUT_EDITOR_PER_PARTICLE ? PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT : PF_TYPE_PARTICLE_NOISE;
	for ( int nType = PF_TYPE_LITERAL; nType <= nLast; ++nType )
	{
		// The renderer's camera types mean something only where a renderer asks.
		bool bRendererType = nType == PF_TYPE_RENDERER_CAMERA_DISTANCE || nType == PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT;
		if ( bRendererType && !bRenderer )
			continue;
		types.push_back( nType );
	}
	return types;
}

bool IsFloatInputTypeWithoutMap( int nType )
{
	return nType == PF_TYPE_LITERAL || nType == PF_TYPE_RANDOM_UNIFORM || nType == PF_TYPE_RANDOM_BIASED || nType == PF_TYPE_PARTICLE_DETAIL_LEVEL;
}

namespace
{
// The type the pages follow: a remap editor has no source of its own.
int PageType( const CParticleFloatInput &input, int nKind )
{
	return nKind == FLOAT_INPUT_EDITOR_REMAP ? int( PF_TYPE_INVALID ) : int( input.m_nType );
}

uint32_t TypePages( int nType, int nKind )
{
	switch ( nType )
	{
	case PF_TYPE_LITERAL: return FLOAT_PAGE_LITERAL;
	case PF_TYPE_NAMED_VALUE: return FLOAT_PAGE_NAMED_VALUE;
	case PF_TYPE_RANDOM_UNIFORM: return FLOAT_PAGE_RANDOM;
	case PF_TYPE_RANDOM_BIASED: return FLOAT_PAGE_RANDOM | FLOAT_PAGE_RANDOM_BIAS;
	case PF_TYPE_COLLECTION_AGE:
	case PF_TYPE_ENDCAP_AGE:
	case PF_TYPE_CONCURRENT_DEF_COUNT:
	case PF_TYPE_PARTICLE_AGE:
	case PF_TYPE_PARTICLE_AGE_NORMALIZED:
	case PF_TYPE_PARTICLE_SPEED:
	case PF_TYPE_PARTICLE_NUMBER_NORMALIZED:
	case PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED:
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE:
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT: return FLOAT_PAGE_TYPE_LABEL;
	case PF_TYPE_CONTROL_POINT_COMPONENT: return FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_COMPONENT;
	case PF_TYPE_CONTROL_POINT_CHANGE_AGE: return FLOAT_PAGE_CP_CHANGE_TIME;
	case PF_TYPE_CONTROL_POINT_SPEED: return FLOAT_PAGE_CONTROL_POINT;
	case PF_TYPE_PARTICLE_DETAIL_LEVEL: return FLOAT_PAGE_DETAIL_LEVEL;
	case PF_TYPE_CLOSEST_CAMERA_DISTANCE: return FLOAT_PAGE_CAMERA_FALLBACK;
	case PF_TYPE_SNAPSHOT_COUNT: return FLOAT_PAGE_SNAPSHOT | FLOAT_PAGE_CONTROL_POINT;
	case PF_TYPE_RENDERER_CAMERA_DISTANCE:
	case PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT: return FLOAT_PAGE_CONTROL_POINT | FLOAT_PAGE_CAMERA_BBOX;
	case PF_TYPE_PARTICLE_NOISE:
		// A system-wide noise is placed by a control point; a particle's by its own attribute.
		return FLOAT_PAGE_NOISE | ( nKind == FLOAT_INPUT_EDITOR_COLLECTION ? FLOAT_PAGE_CONTROL_POINT : FLOAT_PAGE_NOISE_ATTRIBUTE );
	case PF_TYPE_PARTICLE_FLOAT:
	case PF_TYPE_PARTICLE_INITIAL_FLOAT: return FLOAT_PAGE_ATTRIBUTE;
	case PF_TYPE_PARTICLE_VECTOR_COMPONENT:
	case PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT: return FLOAT_PAGE_ATTRIBUTE | FLOAT_PAGE_COMPONENT;
	case PF_TYPE_PARTICLE_NUMBER:
	case PF_TYPE_PARTICLE_ROPE_SEGMENT: return FLOAT_PAGE_REVERSE | FLOAT_PAGE_TYPE_LABEL;
	default: return 0;
	}
}

uint32_t MapPages( int nMapType )
{
	switch ( nMapType )
	{
	case PF_MAP_TYPE_MULT: return FLOAT_PAGE_MULTIPLY;
	case PF_MAP_TYPE_REMAP: return FLOAT_PAGE_INPUT_RANGE | FLOAT_PAGE_OUTPUT_RANGE;
	case PF_MAP_TYPE_REMAP_BIASED: return FLOAT_PAGE_INPUT_RANGE | FLOAT_PAGE_OUTPUT_RANGE | FLOAT_PAGE_MAP_BIAS;
	case PF_MAP_TYPE_CURVE: return FLOAT_PAGE_INPUT_RANGE | FLOAT_PAGE_OUTPUT_RANGE | FLOAT_PAGE_CURVE;
	case PF_MAP_TYPE_NOTCHED: return FLOAT_PAGE_NOTCHED;
	case PF_MAP_TYPE_ROUND: return FLOAT_PAGE_ROUND;
	default: return 0;
	}
}
} // namespace

uint32_t GetFloatInputPages( const CParticleFloatInput &input, int nKind, int nInstances )
{
	if ( nInstances > 1 )
		return FLOAT_PAGE_MULTI_SELECT;
	const int nType = PageType( input, nKind );
	uint32_t nPages = TypePages( nType, nKind );
	if ( nKind != FLOAT_INPUT_EDITOR_REMAP )
		nPages |= FLOAT_PAGE_TYPE_BUTTON;
	if ( IsFloatInputTypeWithoutMap( nType ) )
		return nPages;
	return nPages | FLOAT_PAGE_MAP_BUTTON | MapPages( input.m_nMapType );
}

int GetFloatInputMapAddition( int nMapType )
{
	switch ( nMapType )
	{
	case PF_MAP_TYPE_REMAP: return 20;
	case PF_MAP_TYPE_REMAP_BIASED: return 60;
	case PF_MAP_TYPE_CURVE: return 160;
	case PF_MAP_TYPE_NOTCHED: return 40;
	default: return 0;
	}
}

int GetFloatInputEditorHeight( const CParticleFloatInput &input, int nKind, int nInstances )
{
	if ( nInstances != 1 )
		return FLOAT_INPUT_ROW_HEIGHT;
	const int nMap = GetFloatInputMapAddition( input.m_nMapType );
	switch ( PageType( input, nKind ) )
	{
	case PF_TYPE_LITERAL: return 22;
	case PF_TYPE_RANDOM_UNIFORM: return 44;
	case PF_TYPE_RANDOM_BIASED: return 84;
	case PF_TYPE_PARTICLE_DETAIL_LEVEL: return 88;
	case PF_TYPE_INVALID: return 32 + nMap;
	case PF_TYPE_RENDERER_CAMERA_DISTANCE:
	case PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT: return 62 + nMap;
	case PF_TYPE_PARTICLE_NOISE: return 332 + nMap;
	default: return 42 + nMap;
	}
}

bool SetFloatInputType( CParticleFloatInput *pInput, int nType )
{
	if ( int( pInput->m_nType ) == nType )
		return false;
	pInput->m_nType = ParticleFloatType_t( nType );
	return true;
}

void WidenFloatInputCurveDomain( CParticleFloatInput *pInput )
{
	CPiecewiseCurve &curve = pInput->m_Curve;
	Vector2D vMins = curve.m_vDomainMins;
	Vector2D vMaxs = curve.m_vDomainMaxs;
	vMins.x = std::min( vMins.x, 0.0f );
	vMins.y = std::min( vMins.y, 0.0f );
	vMaxs.x = std::max( vMaxs.x, 1.0f );
	vMaxs.y = std::max( vMaxs.y, 1.0f );
	curve.SetDomain( vMins, vMaxs );
}

bool SetFloatInputMapType( CParticleFloatInput *pInput, int nMapType )
{
	if ( int( pInput->m_nMapType ) == nMapType )
		return false;
	pInput->m_nMapType = ParticleFloatMapType_t( nMapType );
	if ( nMapType == PF_MAP_TYPE_CURVE && pInput->m_Curve.GetKeyCount() < 2 )
	{
		WidenFloatInputCurveDomain( pInput );
		pInput->m_Curve.AddPoint( 0.0f, 0.0f, CURVE_TANGENT_SPLINE, CURVE_TANGENT_SPLINE, 0.0f, 0.0f );
		pInput->m_Curve.AddPoint( 1.0f, 1.0f, CURVE_TANGENT_SPLINE, CURVE_TANGENT_SPLINE, 0.0f, 0.0f );
		pInput->m_Curve.RecomputeTangents();
	}
	return true;
}

void GetFloatInputRange( const CParticleFloatInput &input, float *pInput0, float *pInput1, float *pOutput0, float *pOutput1 )
{
	if ( input.m_nMapType == PF_MAP_TYPE_CURVE )
	{
		*pInput0 = input.m_Curve.m_vDomainMins.x;
		*pInput1 = input.m_Curve.m_vDomainMaxs.x;
		*pOutput0 = input.m_Curve.m_vDomainMins.y;
		*pOutput1 = input.m_Curve.m_vDomainMaxs.y;
		return;
	}
	*pInput0 = input.m_flInput0;
	*pInput1 = input.m_flInput1;
	*pOutput0 = input.m_flOutput0;
	*pOutput1 = input.m_flOutput1;
}

bool SetFloatInputRange( CParticleFloatInput *pInput, float flInput0, float flInput1, float flOutput0, float flOutput1 )
{
	bool bChanged = false;
	if ( pInput->m_nMapType == PF_MAP_TYPE_CURVE )
	{
		bChanged = pInput->m_Curve.SetDomain( Vector2D( flInput0, flOutput0 ), Vector2D( flInput1, flOutput1 ) );
	}
	else if ( pInput->m_flInput0 != flInput0 || pInput->m_flInput1 != flInput1 || pInput->m_flOutput0 != flOutput0 || pInput->m_flOutput1 != flOutput1 )
	{
		pInput->m_flInput0 = flInput0;
		pInput->m_flInput1 = flInput1;
		pInput->m_flOutput0 = flOutput0;
		pInput->m_flOutput1 = flOutput1;
		bChanged = true;
	}
	return bChanged;
}

uint64_t GetFloatInputAttributeMask( int nType )
{
	return ( nType == PF_TYPE_PARTICLE_FLOAT || nType == PF_TYPE_PARTICLE_INITIAL_FLOAT ) ? FLOAT_INPUT_FLOAT_ATTRIBUTES : FLOAT_INPUT_VECTOR_ATTRIBUTES;
}

bool IsFloatInputInitialAttributeType( int nType )
{
	return nType == PF_TYPE_PARTICLE_INITIAL_FLOAT || nType == PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT;
}

int ParseControlPointNumber( const char *pText )
{
	char *pEnd = nullptr;
	long nValue = std::strtol( pText ? pText : "", &pEnd, 10 );
	if ( pEnd == pText )
		return 0;
	return int( std::clamp( nValue, 0L, 63L ) );
}
