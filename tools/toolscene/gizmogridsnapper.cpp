#include "tools/toolscene/gizmogridsnapper.h"

#include <cmath>

float CGizmoGridSnapper::SnapDistance( float flValue ) const
{
	if ( !IsGridSnapOn() )
		return flValue;
	return std::round( flValue / m_flGridSize ) * m_flGridSize;
}

int CGizmoGridSnapper::SnapPoint( const Vector &vPoint, Vector *pOut ) const
{
	if ( !IsGridSnapOn() )
		return 0;
	for ( int i = 0; i < 3; ++i )
		( *pOut )[ i ] = std::round( ( vPoint[ i ] - m_vGridOffset[ i ] ) / m_flGridSize ) * m_flGridSize + m_vGridOffset[ i ];
	return 1;
}

float CGizmoGridSnapper::SnapAngle( float flDegrees ) const
{
	if ( !IsAngleSnapOn() )
		return flDegrees;
	return std::round( flDegrees / m_flAngleStep ) * m_flAngleStep;
}
