#include <algorithm>
#include <atomic>

#include "core/text/bufferstring.h"
#include "particleslib/particlefloatinput.h"

namespace
{
std::atomic<ParticleNamedValueDisplayNameFn_t> s_pfnNamedValueDisplayName{ nullptr };

const char *ComponentName( int32_t nComponent )
{
	static const char *const s_Names[ 3 ] = { "X", "Y", "Z" };
	return nComponent >= 0 && nComponent < 3 ? s_Names[ nComponent ] : "?";
}
} // namespace

void SetParticleNamedValueDisplayNameFn( ParticleNamedValueDisplayNameFn_t pfnDisplayName ) { s_pfnNamedValueDisplayName.store( pfnDisplayName ); }

void GetParticleNamedValueDisplayName( const char *pszDomain, const char *pszName, CBufferString *pOut )
{
	ParticleNamedValueDisplayNameFn_t pfnDisplayName = s_pfnNamedValueDisplayName.load();
	if ( pfnDisplayName && pszDomain && *pszDomain && pfnDisplayName( pszDomain, pszName, pOut ) )
		return;
	pOut->Set( pszName );
}

void BuildDisplayString( const CParticleFloatInput &input, CBufferString *pText, const char *pszDomain )
{
	pText->Set( "" );
	const int nControlPoint = input.m_nControlPoint;
	switch ( input.m_nType )
	{
	case PF_TYPE_LITERAL: pText->Format( "%g", double( input.m_flLiteralValue ) ); break;
	case PF_TYPE_NAMED_VALUE:
	{
		CBufferString name;
		GetParticleNamedValueDisplayName( pszDomain, input.m_NamedValue.GetName(), &name );
		pText->Format( "%s", name.Get() );
		break;
	}
	case PF_TYPE_RANDOM_UNIFORM:
	case PF_TYPE_RANDOM_BIASED: pText->Format( "Random %g - %g", double( input.m_flRandomMin ), double( input.m_flRandomMax ) ); break;
	case PF_TYPE_COLLECTION_AGE: pText->Set( "Collection Age" ); break;
	case PF_TYPE_ENDCAP_AGE: pText->Set( "Endcap Age" ); break;
	case PF_TYPE_CONTROL_POINT_COMPONENT: pText->Format( "CP#%d.%s", nControlPoint, ComponentName( input.m_nVectorComponent ) ); break;
	case PF_TYPE_CONTROL_POINT_CHANGE_AGE: pText->Format( "Time Since CP#%d Changed", nControlPoint ); break;
	case PF_TYPE_CONTROL_POINT_SPEED: pText->Format( "CP#%d.%s Speed", nControlPoint, ComponentName( input.m_nVectorComponent ) ); break;
	case PF_TYPE_PARTICLE_DETAIL_LEVEL:
	{
		float flMin = std::min( { input.m_flLOD0, input.m_flLOD1, input.m_flLOD2, input.m_flLOD3 } );
		float flMax = std::max( { input.m_flLOD0, input.m_flLOD1, input.m_flLOD2, input.m_flLOD3 } );
		pText->Format( "LOD Value %g - %g", double( flMin ), double( flMax ) );
		break;
	}
	case PF_TYPE_CONCURRENT_DEF_COUNT: pText->Set( "Concurrent Definition Count" ); break;
	case PF_TYPE_CLOSEST_CAMERA_DISTANCE: pText->Set( "Closest Camera" ); break;
	case PF_TYPE_SNAPSHOT_COUNT: pText->Format( "CP#%d Snapshot Entry Count - Subset %s", nControlPoint, input.m_strSnapshotSubset.Get() ); break;
	case PF_TYPE_RENDERER_CAMERA_DISTANCE: pText->Format( "CP#%d Distance", nControlPoint ); break;
	case PF_TYPE_RENDERER_CAMERA_DOT_PRODUCT: pText->Format( "CP#%d Dot Product", nControlPoint ); break;
	case PF_TYPE_PARTICLE_NOISE: pText->Format( "Noise %g - %g", double( input.m_flNoiseOutputMin ), double( input.m_flNoiseOutputMax ) ); break;
	case PF_TYPE_PARTICLE_AGE: pText->Set( "Particle Age" ); break;
	case PF_TYPE_PARTICLE_AGE_NORMALIZED: pText->Set( "Particle Age (0-1)" ); break;
	case PF_TYPE_PARTICLE_FLOAT: pText->Format( "Attribute %d", input.m_nScalarAttribute ); break;
	case PF_TYPE_PARTICLE_INITIAL_FLOAT: pText->Format( "Initial Attribute %d", input.m_nScalarAttribute ); break;
	case PF_TYPE_PARTICLE_VECTOR_COMPONENT: pText->Format( "Attribute %d.%s", input.m_nVectorAttribute, ComponentName( input.m_nVectorComponent ) ); break;
	case PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT:
		pText->Format( "Initial Attribute %d.%s", input.m_nVectorAttribute, ComponentName( input.m_nVectorComponent ) );
		break;
	case PF_TYPE_PARTICLE_SPEED: pText->Set( "Particle Speed" ); break;
	case PF_TYPE_PARTICLE_NUMBER: pText->Set( "Particle Number" ); break;
	case PF_TYPE_PARTICLE_NUMBER_NORMALIZED: pText->Set( "Particle Number (0-1)" ); break;
	case PF_TYPE_PARTICLE_ROPE_SEGMENT: pText->Set( "Rope Segment Number" ); break;
	case PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED: pText->Set( "Rope Segment Number (0-1)" ); break;
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DISTANCE: pText->Set( "Particle SS Camera Distance" ); break;
	case PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT: pText->Set( "Particle SS Camera Dot Product" ); break;
	default: pText->Format( "Bad FloatInput %d", static_cast<int>( input.m_nType ) ); break;
	}

	switch ( input.m_nMapType )
	{
	case PF_MAP_TYPE_DIRECT: break;
	case PF_MAP_TYPE_MULT: pText->Append( " Scaled" ); break;
	case PF_MAP_TYPE_REMAP:
	case PF_MAP_TYPE_REMAP_BIASED: pText->Append( " Remapped" ); break;
	case PF_MAP_TYPE_CURVE: pText->Append( " Curve" ); break;
	case PF_MAP_TYPE_NOTCHED: pText->Append( " Notched" ); break;
	case PF_MAP_TYPE_ROUND: pText->Append( " Round" ); break;
	default: pText->AppendFormat( " (Bad Remap %d)", static_cast<int>( input.m_nMapType ) ); break;
	}
}
