#include <strings.h>

#include "core/particles/sim/particlesimfunctionlist.h"

const char *const g_ParticleSetMethodNames[ 6 ] = { "PARTICLE_SET_REPLACE_VALUE", "PARTICLE_SET_SCALE_INITIAL_VALUE", "PARTICLE_SET_ADD_TO_INITIAL_VALUE",
	"PARTICLE_SET_RAMP_CURRENT_VALUE", "PARTICLE_SET_SCALE_CURRENT_VALUE", "PARTICLE_SET_ADD_TO_CURRENT_VALUE" };

void ApplyParticleSetMethod( int nMethod, float *pTarget, const float *pValues, int n )
{
	switch ( nMethod )
	{
	case PARTICLE_SET_SCALE_INITIAL_VALUE:
	case PARTICLE_SET_SCALE_CURRENT_VALUE:
		for ( int i = 0; i < n; ++i )
			pTarget[ i ] *= pValues[ i ];
		break;
	case PARTICLE_SET_ADD_TO_INITIAL_VALUE:
	case PARTICLE_SET_ADD_TO_CURRENT_VALUE:
		for ( int i = 0; i < n; ++i )
			pTarget[ i ] += pValues[ i ];
		break;
	default:
		for ( int i = 0; i < n; ++i )
			pTarget[ i ] = pValues[ i ];
		break;
	}
}

ParticleSimFunctionFactory_t FindParticleSimFunctionFactory( const char *pClassName, const char **ppClassName )
{
	if ( !pClassName )
		return nullptr;
	using GetTable_t = const ParticleSimFunctionEntry_t *( * )( int * );
	static const GetTable_t s_Families[] = { GetParticleEmitterFunctions, GetParticleInitializerFunctions, GetParticleOperatorFunctions,
		GetParticleForceAndConstraintFunctions, GetParticleRendererFunctions };
	for ( GetTable_t pfnTable : s_Families )
	{
		int nCount = 0;
		const ParticleSimFunctionEntry_t *pEntries = pfnTable( &nCount );
		for ( int i = 0; i < nCount; ++i )
		{
			if ( strcasecmp( pEntries[ i ].m_pClassName, pClassName ) == 0 )
			{
				if ( ppClassName )
					*ppClassName = pEntries[ i ].m_pClassName;
				return pEntries[ i ].m_pfnCreate;
			}
		}
	}
	return nullptr;
}
