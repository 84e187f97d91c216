#include "core/particles/sim/controlpointusage.h"

HostControlPointUsage_t HostControlPointUsage_t::Make( const ParticleParamID_t &id, int nUsageKind, uint8_t nAccess, int nComponent )
{
	HostControlPointUsage_t usage;
	usage.m_ID = id;
	usage.m_nComponent = nComponent;
	usage.m_nUsageKind = nUsageKind;
	usage.m_nAccess = nAccess;
	const ControlPointUsageKindInfo_t &info = GetControlPointUsageKindInfo( nUsageKind );
	for ( int i = 0; i < 3; ++i )
		usage.m_flDefault[ i ] = info.m_flDefaults[ i ];
	return usage;
}
