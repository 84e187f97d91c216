#include "particleslib/controlpointusage.h"

ControlPointUsage_t MakeControlPointUsage( int32_t nControlPoint, int32_t nUsageKind, uint8_t nAccessFlags )
{
	ControlPointUsage_t usage;
	usage.m_ID.m_nNumber = nControlPoint;
	usage.m_nUsageKind = nUsageKind;
	usage.m_nAccessFlags = nAccessFlags;
	float flDefault[ 3 ] = { 0.0f, 0.0f, 0.0f };
	switch ( nUsageKind )
	{
	case 5: flDefault[ 2 ] = 1.0f; break;
	case 6: flDefault[ 0 ] = flDefault[ 1 ] = flDefault[ 2 ] = 255.0f; break;
	case 7:
	case 8: flDefault[ 0 ] = flDefault[ 1 ] = flDefault[ 2 ] = 1.0f; break;
	default: break;
	}
	for ( int i = 0; i < 3; ++i )
		usage.m_flDefaults[ i ] = flDefault[ i ];
	return usage;
}

void AddControlPointRead( CUtlVector<ControlPointUsage_t> &list, int32_t nControlPoint, int32_t nUsageKind )
{
	if ( nControlPoint < 0 )
		return;
	list.AddToTail( MakeControlPointUsage( nControlPoint, nUsageKind, CONTROL_POINT_ACCESS_READ ) );
}
