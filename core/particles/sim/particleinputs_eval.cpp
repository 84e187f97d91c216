// Evaluating inputs: once for the collection, or over a run of particles into arrays.

#include <algorithm>
#include <cmath>

#include "core/particles/sim/particleattributestorage.h"
#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particleinputs.h"
#include "core/particles/sim/particlenoise.h"
#include "core/particles/sim/particlesimmath.h"

using namespace ParticleMath;

namespace
{
constexpr uint32_t COLLECTION_KEY = 0xFFFFFFFFu;

float BiasStandard( float b, float x )
{
	float k = 1.0f / b - 2.0f;
	return x / ( k * ( 1.0f - x ) + 1.0f );
}

// An attribute value of a particle, or the attribute's default when it isn't stored.
inline float AttributeValue( const CParticleCollection &collection, int nAttribute, int nComponent, int i, bool bInitial )
{
	const float *pStream = bInitial ? collection.InitialStream( nAttribute, nComponent ) : collection.Stream( nAttribute, nComponent );
	return pStream ? pStream[ i ] : GetParticleAttributeDefault( nAttribute, nComponent );
}

inline Vector AttributeVector( const CParticleCollection &collection, int nAttribute, int i, bool bInitial )
{
	return Vector( AttributeValue( collection, nAttribute, 0, i, bInitial ), AttributeValue( collection, nAttribute, 1, i, bInitial ),
		AttributeValue( collection, nAttribute, 2, i, bInitial ) );
}

inline uint32_t ParticleKey( const CParticleCollection &collection, int i )
{
	const float *pID = collection.Stream( PARTICLE_ATTRIBUTE_PARTICLE_ID );
	return pID ? uint32_t( pID[ i ] ) : uint32_t( i );
}

inline Vector ParticleVelocity( const CParticleCollection &collection, int i )
{
	float flInvDt = collection.GetPreviousDt() > 0.0f ? 1.0f / collection.GetPreviousDt() : 0.0f;
	Vector vPos = AttributeVector( collection, PARTICLE_ATTRIBUTE_POSITION, i, false );
	Vector vPrev = AttributeVector( collection, PARTICLE_ATTRIBUTE_PREVIOUS_POSITION, i, false );
	return Scale( Sub( vPos, vPrev ), flInvDt );
}

float CameraDistance( const ParticleCamera_t &camera, const Vector &vPoint )
{
	return Length( Sub( vPoint, camera.m_vPosition ) );
}

// 1 when the point lies straight ahead of the camera, 0 beside it, -1 behind.
float CameraDotProduct( const ParticleCamera_t &camera, const Vector &vPoint )
{
	Vector vDir = Normalized( Sub( vPoint, camera.m_vPosition ) );
	return Dot( vDir, camera.m_vForward );
}

// How far from the centre of the screen the point shows, in half screen widths: 0 in the
// middle, 1 at the left or right edge. Points at or behind the camera plane lie far off screen.
float ScreenSpaceDistance( const ParticleCamera_t &camera, const Vector &vPoint )
{
	constexpr float BEHIND_CAMERA = 1.0e6f;
	Vector d = Sub( vPoint, camera.m_vPosition );
	float flDepth = Dot( d, camera.m_vForward );
	if ( flDepth <= 1.0e-3f )
		return BEHIND_CAMERA;
	float flLateral = Length( Sub( d, Scale( camera.m_vForward, flDepth ) ) );
	float flHalfFov = Clamp( camera.m_flFovDegrees, 1.0f, 179.0f ) * 0.5f * 3.14159265f / 180.0f;
	return flLateral / ( flDepth * std::tan( flHalfFov ) );
}

} // namespace

float ParticleBias( int nBiasType, float flParameter, float x )
{
	switch ( nBiasType )
	{
	case 1: // gain
	{
		float b = Clamp( ( flParameter + 1.0f ) * 0.5f, 0.0f, 1.0f );
		if ( b <= 0.0f )
			return 0.0f;
		if ( b >= 1.0f )
			return 1.0f;
		return x < 0.5f ? 0.5f * BiasStandard( b, 2.0f * x ) : 1.0f - 0.5f * BiasStandard( b, 2.0f - 2.0f * x );
	}
	case 2: // exponential
	{
		float e = flParameter < 0.0f ? 20.0f - Clamp( flParameter + 1.0f, 0.0f, 1.0f ) * 19.0f : 1.0f - Clamp( flParameter, 0.0f, 1.0f );
		if ( e <= 0.0f )
			return 1.0f;
		if ( x >= 1.0f )
			return 1.0f;
		if ( x <= 0.0f )
			return 0.0f;
		return std::exp( std::log( x ) * Clamp( e, 0.0f, 20.0f ) );
	}
	default: // standard
	{
		float b = Clamp( ( flParameter + 1.0f ) * 0.5f, 0.0f, 1.0f );
		if ( b <= 0.0f )
			return 0.0f;
		if ( b >= 1.0f )
			return 1.0f;
		return BiasStandard( b, x );
	}
	}
}

float ParticleSampledCurve_t::Evaluate( float x ) const
{
	if ( !m_bValid )
		return 0.0f;
	float f = ( x - m_flDomainMin ) / ( m_flDomainMax - m_flDomainMin ) * float( SAMPLES - 1 );
	if ( !( f > 0.0f ) )
		return m_flValues[ 0 ];
	if ( f >= float( SAMPLES - 1 ) )
		return m_flValues[ SAMPLES - 1 ];
	int n = int( f );
	float t = f - float( n );
	return m_flValues[ n ] + ( m_flValues[ n + 1 ] - m_flValues[ n ] ) * t;
}

Vector ParticleSampledGradient_t::Evaluate( float t ) const
{
	if ( !m_bValid )
		return Vector( 1.0f, 1.0f, 1.0f );
	float f = Clamp( t, 0.0f, 1.0f ) * float( SAMPLES - 1 );
	int n = std::min( int( f ), SAMPLES - 2 );
	return ParticleMath::Lerp( m_Colors[ n ], m_Colors[ n + 1 ], f - float( n ) );
}

bool CSimFloatInput::IsPerParticleSource() const
{
	return m_nType >= PF_TYPE_PARTICLE_AGE || ( m_nType == PF_TYPE_PARTICLE_NOISE && m_bPerParticle ) ||
		   ( ( m_nType == PF_TYPE_RANDOM_UNIFORM || m_nType == PF_TYPE_RANDOM_BIASED ) && m_bPerParticle );
}

float CSimFloatInput::ApplyMap( float v ) const
{
	switch ( m_nMapType )
	{
	case PF_MAP_TYPE_MULT:
		return v * m_flMultFactor;
	case PF_MAP_TYPE_REMAP:
	case PF_MAP_TYPE_REMAP_BIASED:
	{
		float flRange = m_flInput1 - m_flInput0;
		float t = flRange != 0.0f ? ( v - m_flInput0 ) / flRange : ( v >= m_flInput1 ? 1.0f : 0.0f );
		t = m_nInputMode == 1 ? t - std::floor( t ) : Clamp( t, 0.0f, 1.0f );
		if ( m_nMapType == PF_MAP_TYPE_REMAP_BIASED )
			t = ParticleBias( m_nBiasType, m_flBiasParameter, t );
		return m_flOutput0 + ( m_flOutput1 - m_flOutput0 ) * t;
	}
	case PF_MAP_TYPE_CURVE:
	{
		float x = v;
		if ( m_nInputMode == 1 )
		{
			float flSpan = m_Curve.m_flDomainMax - m_Curve.m_flDomainMin;
			if ( flSpan > 0.0f )
				x = m_Curve.m_flDomainMin + ( x - m_Curve.m_flDomainMin ) - std::floor( ( x - m_Curve.m_flDomainMin ) / flSpan ) * flSpan;
		}
		return m_Curve.Evaluate( x );
	}
	case PF_MAP_TYPE_NOTCHED:
		return ( v >= m_flNotchedRangeMin && v <= m_flNotchedRangeMax ) ? m_flNotchedOutputInside : m_flNotchedOutputOutside;
	case PF_MAP_TYPE_ROUND:
		return m_nRoundType == 1 ? std::floor( v ) : ( m_nRoundType == 2 ? std::ceil( v ) : std::round( v ) );
	default:
		return v;
	}
}

float CSimFloatInput::RandomValue( const CParticleCollection &collection, uint32_t nKey ) const
{
	float u, flSign;
	if ( m_nRandomMode == 1 )
	{
		u = collection.Random().NextFloat();
		flSign = collection.Random().NextFloat();
	}
	else
	{
		// A constant random per particle (or per run): a hash of the particle and the
		// input's cache slot, so it needs no storage and survives reordering.
		uint32_t nA = m_nRandomSeed != -1 ? nKey : nKey ^ collection.GetRandomKey();
		uint32_t nB = m_nRandomSeed != -1 ? uint32_t( m_nRandomSeed ) * 2654435761u : uint32_t( m_nCacheOffset + 16 );
		u = ParticleHashFloat( nA, nB );
		flSign = ParticleHashFloat( nA, nB + 1 );
	}
	if ( m_nType == PF_TYPE_RANDOM_BIASED )
		u = ParticleBias( m_nBiasType, m_flBiasParameter, u );
	float v = m_flRandomMin + ( m_flRandomMax - m_flRandomMin ) * u;
	return ( m_bHasRandomSignFlip && flSign < 0.5f ) ? -v : v;
}

float CSimFloatInput::NoiseAt( const Vector &position, float flTime ) const
{
	// The same shaped noise, offset and scale as the editor's preview of this input.
	ParticleNoiseShape_t shape;
	shape.m_nType = m_nNoiseType;
	shape.m_nOctaves = m_nNoiseOctaves;
	shape.m_nTurbulence = m_nNoiseTurbulence;
	shape.m_nModifier = m_nNoiseModifier;
	shape.m_flTurbulenceScale = m_flNoiseTurbulenceScale;
	shape.m_flTurbulenceMix = m_flNoiseTurbulenceMix;
	shape.SetOffset( m_flNoiseOffset );
	const float flBase = m_flNoiseOffset + m_flNoiseOffset * 0.1f;
	Vector p = Add( Scale( position, m_flNoiseScale ), Scale( m_vecNoiseOffsetRate, flTime ) );
	p = Add( p, Vector( flBase, flBase, flBase ) );
	float m = ParticleShapedNoise( shape, p );
	m = std::isnan( m ) ? 0.0f : Clamp( m, 0.0f, 1.0f );
	return m_flNoiseOutputMin + ( m_flNoiseOutputMax - m_flNoiseOutputMin ) * m;
}

float CSimFloatInput::EvaluateSource( const CParticleCollection &c, int i ) const
{
	switch ( m_nType )
	{
	case PF_TYPE_LITERAL:
		return m_flLiteralValue;
	case PF_TYPE_NAMED_VALUE:
	{
		const ParticleNamedValue_t *pValue = c.GetNamedValue( m_nNamedValueSlot );
		return pValue ? pValue->m_flValue : 0.0f;
	}
	case PF_TYPE_RANDOM_UNIFORM:
	case PF_TYPE_RANDOM_BIASED:
		return RandomValue( c, i >= 0 ? ParticleKey( c, i ) : COLLECTION_KEY );
	case PF_TYPE_COLLECTION_AGE:
		return c.GetTime();
	case PF_TYPE_ENDCAP_AGE:
		return c.IsInEndCap() ? c.GetTime() - c.GetEndCapTime() : 0.0f;
	case PF_TYPE_CONTROL_POINT_COMPONENT:
		return c.GetControlPoint( m_nControlPoint ).m_vPosition[ m_nVectorComponent ];
	case PF_TYPE_CONTROL_POINT_CHANGE_AGE:
		return c.GetTime() - c.GetControlPoint( m_nControlPoint ).m_flChangeTime;
	case PF_TYPE_CONTROL_POINT_SPEED:
		return Length( c.GetControlPointVelocity( m_nControlPoint ) );
	case PF_TYPE_PARTICLE_DETAIL_LEVEL:
	{
		const float flLOD[] = { m_flLOD0, m_flLOD1, m_flLOD2, m_flLOD3 };
		return flLOD[ std::clamp( c.GetDetailLevel(), 0, 3 ) ];
	}
	case PF_TYPE_CONCURRENT_DEF_COUNT:
		return float( c.GetDefinition()->m_nLiveCollections.load( std::memory_order_relaxed ) );
	case PF_TYPE_CLOSEST_CAMERA_DISTANCE:
	{
		// From the system's origin to the nearest of the view's cameras.
		Vector vOrigin = c.GetControlPoint( 0 ).m_vPosition;
		const ParticleCamera_t *pCamera = c.FindClosestCamera( vOrigin );
		return pCamera ? Length( Sub( pCamera->m_vPosition, vOrigin ) ) : m_flNoCameraFallback;
	}
	case PF_TYPE_RENDERER_CAMERA_DISTANCE:
	case PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT:
	{
		// The renderer draws through the view's first camera.
		if ( c.GetCameras().empty() )
			return m_flNoCameraFallback;
		const ParticleCamera_t &camera = c.GetCameras().front();
		Vector vPoint = c.GetControlPoint( m_nControlPoint ).m_vPosition;
		if ( m_bUseBoundsCenter && c.AreBoundsValid() )
			vPoint = Scale( Add( c.GetBoundsMin(), c.GetBoundsMax() ), 0.5f );
		return m_nType == PF_TYPE_RENDERER_CAMERA_DISTANCE ? CameraDistance( camera, vPoint ) : CameraDotProduct( camera, vPoint );
	}
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE:
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT:
	{
		if ( c.GetCameras().empty() )
			return m_flNoCameraFallback;
		const ParticleCamera_t &camera = c.GetCameras().front();
		Vector vPoint = i >= 0 ? AttributeVector( c, PARTICLE_ATTRIBUTE_POSITION, i, false ) : c.GetControlPoint( 0 ).m_vPosition;
		return m_nType == PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE ? ScreenSpaceDistance( camera, vPoint ) : CameraDotProduct( camera, vPoint );
	}
	case PF_TYPE_PARTICLE_NOISE:
	{
		Vector p = ( m_bPerParticle && i >= 0 ) ? AttributeVector( c, m_nNoiseInputVectorAttribute, i, false ) : c.GetControlPoint( m_nControlPoint ).m_vPosition;
		return NoiseAt( p, c.GetTime() );
	}
	default:
		break;
	}
	if ( i < 0 )
		return 0.0f; // a per-particle source asked for the collection
	switch ( m_nType )
	{
	case PF_TYPE_PARTICLE_AGE:
		return c.GetTime() - AttributeValue( c, PARTICLE_ATTRIBUTE_CREATION_TIME, 0, i, false );
	case PF_TYPE_PARTICLE_AGE_NORMALIZED:
	{
		float flLife = AttributeValue( c, PARTICLE_ATTRIBUTE_LIFE_DURATION, 0, i, false );
		float flAge = c.GetTime() - AttributeValue( c, PARTICLE_ATTRIBUTE_CREATION_TIME, 0, i, false );
		return flLife > 0.0f ? flAge / flLife : 1.0f;
	}
	case PF_TYPE_PARTICLE_FLOAT:
		return AttributeValue( c, m_nScalarAttribute, 0, i, false );
	case PF_TYPE_PARTICLE_INITIAL_FLOAT:
		return AttributeValue( c, m_nScalarAttribute, 0, i, true );
	case PF_TYPE_PARTICLE_VECTOR_COMPONENT:
		return AttributeValue( c, m_nVectorAttribute, GetParticleAttributeComponentCount( m_nVectorAttribute ) == 3 ? m_nVectorComponent : 0, i, false );
	case PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT:
		return AttributeValue( c, m_nVectorAttribute, GetParticleAttributeComponentCount( m_nVectorAttribute ) == 3 ? m_nVectorComponent : 0, i, true );
	case PF_TYPE_PARTICLE_SPEED:
		return Length( ParticleVelocity( c, i ) );
	case PF_TYPE_PARTICLE_NUMBER:
		return float( m_bReverseOrder ? c.Count() - 1 - i : i );
	case PF_TYPE_PARTICLE_NUMBER_NORMALIZED:
		return c.Count() > 1 ? float( i ) / float( c.Count() - 1 ) : 0.0f;
	case PF_TYPE_PARTICLE_ROPE_SEGMENT:
	case PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED:
	{
		const float *pSegment = c.Stream( PARTICLE_ATTRIBUTE_ROPE_SEGMENT_POSITION );
		float flSegment = pSegment ? pSegment[ i ] : float( i );
		if ( m_bReverseOrder )
			flSegment = float( c.Count() - 1 ) - flSegment;
		return m_nType == PF_TYPE_PARTICLE_ROPE_SEGMENT ? flSegment : ( c.Count() > 1 ? flSegment / float( c.Count() - 1 ) : 0.0f );
	}
	default:
		return 0.0f;
	}
}

float CSimFloatInput::EvaluateCollection( const CParticleCollection &collection ) const
{
	return ApplyMap( EvaluateSource( collection, -1 ) );
}

void CSimFloatInput::EvaluatePerParticle( const CParticleCollection &c, int nStart, int nCount, float *pOut ) const
{
	// The common sources get loops of their own; the rest go one particle at a time.
	switch ( m_nType )
	{
	case PF_TYPE_LITERAL:
	{
		float v = ApplyMap( m_flLiteralValue );
		std::fill( pOut, pOut + nCount, v );
		return;
	}
	case PF_TYPE_PARTICLE_AGE:
	case PF_TYPE_PARTICLE_AGE_NORMALIZED:
	{
		const float *pCreation = c.Stream( PARTICLE_ATTRIBUTE_CREATION_TIME ) + nStart;
		const float *pLife = c.Stream( PARTICLE_ATTRIBUTE_LIFE_DURATION ) + nStart;
		float flTime = c.GetTime();
		if ( m_nType == PF_TYPE_PARTICLE_AGE )
		{
			for ( int i = 0; i < nCount; ++i )
				pOut[ i ] = flTime - pCreation[ i ];
		}
		else
		{
			for ( int i = 0; i < nCount; ++i )
				pOut[ i ] = pLife[ i ] > 0.0f ? ( flTime - pCreation[ i ] ) / pLife[ i ] : 1.0f;
		}
		break;
	}
	case PF_TYPE_PARTICLE_FLOAT:
	{
		const float *pStream = c.Stream( m_nScalarAttribute );
		if ( pStream )
			std::copy( pStream + nStart, pStream + nStart + nCount, pOut );
		else
			std::fill( pOut, pOut + nCount, GetParticleAttributeDefault( m_nScalarAttribute, 0 ) );
		break;
	}
	default:
		for ( int i = 0; i < nCount; ++i )
			pOut[ i ] = EvaluateSource( c, nStart + i );
		break;
	}
	if ( m_nMapType == PF_MAP_TYPE_DIRECT )
		return;
	if ( m_nMapType == PF_MAP_TYPE_MULT )
	{
		for ( int i = 0; i < nCount; ++i )
			pOut[ i ] *= m_flMultFactor;
		return;
	}
	for ( int i = 0; i < nCount; ++i )
		pOut[ i ] = ApplyMap( pOut[ i ] );
}

void CSimFloatInput::CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const
{
	bool bReadsPoint = m_nType == PF_TYPE_CONTROL_POINT_COMPONENT || m_nType == PF_TYPE_CONTROL_POINT_CHANGE_AGE || m_nType == PF_TYPE_CONTROL_POINT_SPEED ||
					   m_nType == PF_TYPE_SNAPSHOT_COUNT || m_nType == PF_TYPE_RENDERER_CAMERA_DISTANCE || m_nType == PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT ||
					   ( m_nType == PF_TYPE_PARTICLE_NOISE && !m_bPerParticle );
	if ( bReadsPoint && m_nControlPoint >= 0 )
		pUsage->AddToTail( HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( m_nControlPoint ), 2, CONTROL_POINT_ACCESS_READ ) );
	if ( m_nType == PF_TYPE_NAMED_VALUE && !m_NamedValue.IsEmpty() )
	{
		HostControlPointUsage_t usage = HostControlPointUsage_t::Make( ParticleParamID_t::Named( m_NamedValue.Get() ), CONTROL_POINT_USAGE_GENERIC, CONTROL_POINT_ACCESS_READ );
		usage.m_ValueType = "PVAL_FLOAT";
		pUsage->AddToTail( usage );
	}
}

uint64_t CSimFloatInput::GetReadAttributeMask() const
{
	switch ( m_nType )
	{
	case PF_TYPE_RANDOM_UNIFORM:
	case PF_TYPE_RANDOM_BIASED:
		return uint64_t( 1 ) << 11;
	case PF_TYPE_PARTICLE_NOISE:
		return ParticleAttributeBit( m_nNoiseInputVectorAttribute );
	case PF_TYPE_PARTICLE_AGE:
		return uint64_t( 1 ) << 8;
	case PF_TYPE_PARTICLE_AGE_NORMALIZED:
		return ( uint64_t( 1 ) << 8 ) | ( uint64_t( 1 ) << 1 );
	case PF_TYPE_PARTICLE_FLOAT:
		return ParticleAttributeBit( m_nScalarAttribute );
	case PF_TYPE_PARTICLE_VECTOR_COMPONENT:
		return ParticleAttributeBit( m_nVectorAttribute );
	case PF_TYPE_PARTICLE_SPEED:
		return 5;
	case PF_TYPE_PARTICLE_ROPE_SEGMENT:
	case PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED:
		return uint64_t( 1 ) << 48;
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE:
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT:
		return 1;
	default:
		return 0;
	}
}

uint64_t CSimFloatInput::GetReadInitialAttributeMask() const
{
	if ( m_nType == PF_TYPE_PARTICLE_INITIAL_FLOAT )
		return ParticleAttributeBit( m_nScalarAttribute );
	if ( m_nType == PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT )
		return ParticleAttributeBit( m_nVectorAttribute );
	return 0;
}

Vector CSimVecInput::EvaluateOne( const CParticleCollection &c, int i ) const
{
	switch ( m_nType )
	{
	case PVEC_TYPE_LITERAL:
		return m_vLiteralValue;
	case PVEC_TYPE_LITERAL_COLOR:
		return Vector( float( m_LiteralColor[ 0 ] ) / 255.0f, float( m_LiteralColor[ 1 ] ) / 255.0f, float( m_LiteralColor[ 2 ] ) / 255.0f );
	case PVEC_TYPE_NAMED_VALUE:
	{
		const ParticleNamedValue_t *pValue = c.GetNamedValue( m_nNamedValueSlot );
		return pValue ? pValue->m_vValue : Vector();
	}
	case PVEC_TYPE_PARTICLE_VECTOR:
		return i >= 0 ? Mul( AttributeVector( c, m_nVectorAttribute, i, false ), m_vVectorAttributeScale ) : Vector();
	case PVEC_TYPE_PARTICLE_INITIAL_VECTOR:
		return i >= 0 ? Mul( AttributeVector( c, m_nVectorAttribute, i, true ), m_vVectorAttributeScale ) : Vector();
	case PVEC_TYPE_PARTICLE_VELOCITY:
		return i >= 0 ? Mul( ParticleVelocity( c, i ), m_vVectorAttributeScale ) : Vector();
	case PVEC_TYPE_CP_VALUE:
		return Mul( c.GetControlPoint( m_nControlPoint ).m_vPosition, m_vCPValueScale );
	case PVEC_TYPE_CP_RELATIVE_POSITION:
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		return LocalToWorld( cp.m_vPosition, cp.m_vForward, cp.m_vRight, cp.m_vUp, m_vCPRelativePosition );
	}
	case PVEC_TYPE_CP_RELATIVE_DIR:
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		return LocalToWorld( Vector(), cp.m_vForward, cp.m_vRight, cp.m_vUp, m_vCPRelativeDir );
	}
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR:
	{
		const ParticleControlPoint_t &cp = c.GetControlPoint( m_nControlPoint );
		CParticleRandom &random = c.Random();
		Vector vLocal( random.RandomFloat( m_vRandomMin.x, m_vRandomMax.x ), random.RandomFloat( m_vRandomMin.y, m_vRandomMax.y ),
			random.RandomFloat( m_vRandomMin.z, m_vRandomMax.z ) );
		return Normalized( LocalToWorld( Vector(), cp.m_vForward, cp.m_vRight, cp.m_vUp, vLocal ) );
	}
	case PVEC_TYPE_FLOAT_COMPONENTS:
	{
		if ( i < 0 )
			return Vector( m_FloatComponentX.EvaluateCollection( c ), m_FloatComponentY.EvaluateCollection( c ), m_FloatComponentZ.EvaluateCollection( c ) );
		Vector v;
		m_FloatComponentX.EvaluatePerParticle( c, i, 1, &v.x );
		m_FloatComponentY.EvaluatePerParticle( c, i, 1, &v.y );
		m_FloatComponentZ.EvaluatePerParticle( c, i, 1, &v.z );
		return v;
	}
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT:
	{
		float f = 0.0f;
		if ( i < 0 )
			f = m_FloatInterp.EvaluateCollection( c );
		else
			m_FloatInterp.EvaluatePerParticle( c, i, 1, &f );
		float flRange = m_flInterpInput1 - m_flInterpInput0;
		float t = flRange != 0.0f ? ( f - m_flInterpInput0 ) / flRange : 0.0f;
		if ( m_nType == PVEC_TYPE_FLOAT_INTERP_GRADIENT )
			return m_Gradient.Evaluate( t );
		if ( m_nType == PVEC_TYPE_FLOAT_INTERP_CLAMPED )
			t = Clamp( t, 0.0f, 1.0f );
		return ParticleMath::Lerp( m_vInterpOutput0, m_vInterpOutput1, t );
	}
	case PVEC_TYPE_RANDOM_UNIFORM:
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET:
	{
		CParticleRandom &random = c.Random();
		Vector v( random.RandomFloat( m_vRandomMin.x, m_vRandomMax.x ), random.RandomFloat( m_vRandomMin.y, m_vRandomMax.y ),
			random.RandomFloat( m_vRandomMin.z, m_vRandomMax.z ) );
		if ( m_nType == PVEC_TYPE_RANDOM_UNIFORM_OFFSET && i >= 0 )
			v = Add( v, Mul( AttributeVector( c, m_nVectorAttribute, i, false ), m_vVectorAttributeScale ) );
		return v;
	}
	case PVEC_TYPE_CP_DELTA:
		return Sub( c.GetControlPoint( m_nDeltaControlPoint ).m_vPosition, c.GetControlPoint( m_nControlPoint ).m_vPosition );
	case PVEC_TYPE_CLOSEST_CAMERA_POSITION:
	{
		// Without a camera: where the system stands.
		Vector vOrigin = c.GetControlPoint( 0 ).m_vPosition;
		const ParticleCamera_t *pCamera = c.FindClosestCamera( vOrigin );
		return pCamera ? pCamera->m_vPosition : vOrigin;
	}
	default:
		return Vector();
	}
}

Vector CSimVecInput::EvaluateCollection( const CParticleCollection &collection ) const
{
	return EvaluateOne( collection, -1 );
}

void CSimVecInput::EvaluatePerParticle( const CParticleCollection &c, int nStart, int nCount, float *pX, float *pY, float *pZ ) const
{
	if ( m_nType == PVEC_TYPE_FLOAT_COMPONENTS )
	{
		m_FloatComponentX.EvaluatePerParticle( c, nStart, nCount, pX );
		m_FloatComponentY.EvaluatePerParticle( c, nStart, nCount, pY );
		m_FloatComponentZ.EvaluatePerParticle( c, nStart, nCount, pZ );
		return;
	}
	bool bUniform = IsConstant() || m_nType == PVEC_TYPE_NAMED_VALUE || m_nType == PVEC_TYPE_CP_VALUE || m_nType == PVEC_TYPE_CP_RELATIVE_POSITION ||
					m_nType == PVEC_TYPE_CP_RELATIVE_DIR || m_nType == PVEC_TYPE_CP_DELTA || m_nType == PVEC_TYPE_CLOSEST_CAMERA_POSITION;
	if ( bUniform )
	{
		Vector v = EvaluateOne( c, -1 );
		std::fill( pX, pX + nCount, v.x );
		std::fill( pY, pY + nCount, v.y );
		std::fill( pZ, pZ + nCount, v.z );
		return;
	}
	for ( int i = 0; i < nCount; ++i )
	{
		Vector v = EvaluateOne( c, nStart + i );
		pX[ i ] = v.x;
		pY[ i ] = v.y;
		pZ[ i ] = v.z;
	}
}

void CSimVecInput::CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const
{
	auto add = [ pUsage ]( int nPoint ) {
		if ( nPoint >= 0 )
			pUsage->AddToTail( HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( nPoint ), 4, CONTROL_POINT_ACCESS_READ ) );
	};
	switch ( m_nType )
	{
	case PVEC_TYPE_CP_VALUE:
	case PVEC_TYPE_CP_RELATIVE_POSITION:
	case PVEC_TYPE_CP_RELATIVE_DIR:
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR:
		add( m_nControlPoint );
		break;
	case PVEC_TYPE_CP_DELTA:
		add( m_nControlPoint );
		add( m_nDeltaControlPoint );
		break;
	case PVEC_TYPE_FLOAT_COMPONENTS:
		m_FloatComponentX.CollectControlPointUsage( pUsage );
		m_FloatComponentY.CollectControlPointUsage( pUsage );
		m_FloatComponentZ.CollectControlPointUsage( pUsage );
		break;
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT:
		m_FloatInterp.CollectControlPointUsage( pUsage );
		break;
	case PVEC_TYPE_NAMED_VALUE:
		if ( !m_NamedValue.IsEmpty() )
		{
			HostControlPointUsage_t usage = HostControlPointUsage_t::Make( ParticleParamID_t::Named( m_NamedValue.Get() ), CONTROL_POINT_USAGE_GENERIC, CONTROL_POINT_ACCESS_READ );
			usage.m_ValueType = "PVAL_VEC3";
			pUsage->AddToTail( usage );
		}
		break;
	default:
		break;
	}
}

uint64_t CSimVecInput::GetReadAttributeMask() const
{
	switch ( m_nType )
	{
	case PVEC_TYPE_PARTICLE_VECTOR:
	case PVEC_TYPE_RANDOM_UNIFORM_OFFSET:
		return ParticleAttributeBit( m_nVectorAttribute );
	case PVEC_TYPE_PARTICLE_VELOCITY:
		return 5;
	case PVEC_TYPE_CP_RELATIVE_RANDOM_DIR:
		return 0x200100;
	case PVEC_TYPE_FLOAT_COMPONENTS:
		return m_FloatComponentX.GetReadAttributeMask() | m_FloatComponentY.GetReadAttributeMask() | m_FloatComponentZ.GetReadAttributeMask();
	case PVEC_TYPE_FLOAT_INTERP_CLAMPED:
	case PVEC_TYPE_FLOAT_INTERP_OPEN:
	case PVEC_TYPE_FLOAT_INTERP_GRADIENT:
		return m_FloatInterp.GetReadAttributeMask();
	default:
		return 0;
	}
}

uint64_t CSimVecInput::GetReadInitialAttributeMask() const
{
	uint64_t nMask = m_nType == PVEC_TYPE_PARTICLE_INITIAL_VECTOR ? ParticleAttributeBit( m_nVectorAttribute ) : 0;
	if ( m_nType == PVEC_TYPE_FLOAT_COMPONENTS )
		nMask |= m_FloatComponentX.GetReadInitialAttributeMask() | m_FloatComponentY.GetReadInitialAttributeMask() | m_FloatComponentZ.GetReadInitialAttributeMask();
	if ( m_nType >= PVEC_TYPE_FLOAT_INTERP_CLAMPED && m_nType <= PVEC_TYPE_FLOAT_INTERP_GRADIENT )
		nMask |= m_FloatInterp.GetReadInitialAttributeMask();
	return nMask;
}

ParticleTransform_t CSimTransformInput::Evaluate( const CParticleCollection &c, int nParticle ) const
{
	ParticleTransform_t transform;
	if ( m_nType == PT_TYPE_NAMED_VALUE )
	{
		const ParticleNamedValue_t *pValue = c.GetNamedValue( m_nNamedValueSlot );
		if ( pValue )
		{
			transform.m_vOrigin = pValue->m_vValue;
			transform.m_vForward = pValue->m_vForward;
			transform.m_vRight = pValue->m_vRight;
			transform.m_vUp = pValue->m_vUp;
		}
		return transform;
	}
	if ( m_nType != PT_TYPE_CONTROL_POINT && m_nType != PT_TYPE_CONTROL_POINT_RANGE )
	{
		transform.m_bValid = false;
		return transform;
	}
	int nPoint = m_nControlPoint;
	if ( m_nType == PT_TYPE_CONTROL_POINT_RANGE && m_nControlPointRangeMax > m_nControlPoint )
	{
		int nRange = m_nControlPointRangeMax - m_nControlPoint + 1;
		float u = nParticle >= 0 ? ParticleHashFloat( ParticleKey( c, nParticle ) ^ c.GetRandomKey(), 0x5EED ) : c.Random().NextFloat();
		nPoint = m_nControlPoint + std::min( int( u * float( nRange ) ), nRange - 1 );
	}
	const ParticleControlPoint_t &cp = c.GetControlPoint( nPoint );
	transform.m_vOrigin = cp.m_vPosition;
	if ( m_bUseOrientation )
	{
		transform.m_vForward = cp.m_vForward;
		transform.m_vRight = cp.m_vRight;
		transform.m_vUp = cp.m_vUp;
	}
	return transform;
}

void CSimTransformInput::CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const
{
	int nKind = m_bUseOrientation ? 4 : 2;
	if ( m_nType == PT_TYPE_CONTROL_POINT && m_nControlPoint >= 0 )
		pUsage->AddToTail( HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( m_nControlPoint ), nKind, CONTROL_POINT_ACCESS_READ ) );
	else if ( m_nType == PT_TYPE_CONTROL_POINT_RANGE && m_nControlPoint >= 0 )
	{
		int nLast = std::max( m_nControlPoint, std::min( m_nControlPointRangeMax, MAX_PARTICLE_CONTROL_POINTS - 1 ) );
		for ( int n = m_nControlPoint; n <= nLast; ++n )
			pUsage->AddToTail( HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( n ), nKind, CONTROL_POINT_ACCESS_READ ) );
	}
	else if ( m_nType == PT_TYPE_NAMED_VALUE && !m_NamedValue.IsEmpty() )
	{
		HostControlPointUsage_t usage = HostControlPointUsage_t::Make( ParticleParamID_t::Named( m_NamedValue.Get() ), CONTROL_POINT_USAGE_GENERIC, CONTROL_POINT_ACCESS_READ );
		usage.m_ValueType = "PVAL_TRANSFORM";
		pUsage->AddToTail( usage );
	}
}

const CParticleModel *CSimModelInput::GetModel( const CParticleCollection &c ) const
{
	switch ( m_nType )
	{
	case PM_TYPE_NAMED_VALUE_MODEL:
	{
		const ParticleNamedValue_t *pValue = c.GetNamedValue( m_nNamedValueSlot );
		return pValue ? pValue->m_pModel.get() : nullptr;
	}
	case PM_TYPE_CONTROL_POINT:
		return c.GetControlPointModel( m_nControlPoint );
	default:
		return nullptr;
	}
}

const char *CSimModelInput::GetModelName( const CParticleCollection &c ) const
{
	const CParticleModel *pModel = GetModel( c );
	return pModel ? pModel->GetName() : "";
}

void CSimModelInput::CollectControlPointUsage( CUtlVector<HostControlPointUsage_t> *pUsage ) const
{
	if ( m_nType == PM_TYPE_CONTROL_POINT && m_nControlPoint >= 0 )
		pUsage->AddToTail( HostControlPointUsage_t::Make( ParticleParamID_t::ControlPoint( m_nControlPoint ), 10, CONTROL_POINT_ACCESS_READ ) );
	else if ( ( m_nType == PM_TYPE_NAMED_VALUE_MODEL || m_nType == PM_TYPE_NAMED_VALUE_EHANDLE ) && !m_NamedValue.IsEmpty() )
	{
		HostControlPointUsage_t usage = HostControlPointUsage_t::Make( ParticleParamID_t::Named( m_NamedValue.Get() ), CONTROL_POINT_USAGE_GENERIC, CONTROL_POINT_ACCESS_READ );
		usage.m_ValueType = m_nType == PM_TYPE_NAMED_VALUE_MODEL ? "PVAL_RESOURCE:tmsh" : "PVAL_PARTICLE_EHANDLE";
		pUsage->AddToTail( usage );
	}
}
