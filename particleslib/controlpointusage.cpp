#include "particleslib/controlpointusage.h"

ControlPointUsage_t MakeControlPointUsage( int32_t nControlPoint, int32_t nUsageKind, uint8_t nAccessFlags )
{
	ControlPointUsage_t usage;
	usage.m_ID.m_nNumber = nControlPoint;
	usage.m_nUsageKind = nUsageKind;
	usage.m_nAccessFlags = nAccessFlags;
	const ControlPointUsageKindInfo_t &info = GetControlPointUsageKindInfo( nUsageKind );
	for ( int i = 0; i < 3; ++i )
		usage.m_flDefaults[ i ] = info.m_flDefaults[ i ];
	return usage;
}

void AddControlPointRead( CUtlVector<ControlPointUsage_t> &list, int32_t nControlPoint, int32_t nUsageKind )
{
	if ( nControlPoint < 0 )
		return;
	list.AddToTail( MakeControlPointUsage( nControlPoint, nUsageKind, CONTROL_POINT_ACCESS_READ ) );
}
