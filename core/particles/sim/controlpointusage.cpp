#include "core/particles/sim/controlpointusage.h"

HostControlPointUsage_t HostControlPointUsage_t::Make( const ParticleParamID_t &id, int nUsageKind, uint8_t nAccess, int nComponent )
{
	HostControlPointUsage_t usage;
	usage.m_ID = id;
	usage.m_nComponent = nComponent;
	usage.m_nUsageKind = nUsageKind;
	usage.m_nAccess = nAccess;
	float flDefault = 0.0f;
	if ( nUsageKind == 6 )
		flDefault = 255.0f;
	else if ( nUsageKind == 7 || nUsageKind == 8 )
		flDefault = 1.0f;
	usage.m_flDefault[ 0 ] = usage.m_flDefault[ 1 ] = flDefault;
	usage.m_flDefault[ 2 ] = nUsageKind == 5 ? 1.0f : flDefault;
	return usage;
}
