#include "core/mathlib/colorgradient.h"

#include <algorithm>

namespace
{
constexpr Color OPAQUE_WHITE( 255, 255, 255, 255 );

float ClampUnit( float flValue ) { return std::min( std::max( flValue, 0.0f ), 1.0f ); }

bool PositionLess( const ColorGradientStop_t &a, const ColorGradientStop_t &b ) { return a.m_flPosition < b.m_flPosition; }
} // namespace

int CColorGradient::AddStop( float flPosition, Color color )
{
	ColorGradientStop_t stop;
	stop.m_flPosition = ClampUnit( flPosition );
	stop.m_Color = color;
	auto it = std::upper_bound( m_Stops.begin(), m_Stops.end(), stop, PositionLess );
	it = m_Stops.insert( it, stop );
	return static_cast<int>( it - m_Stops.begin() );
}

void CColorGradient::RemoveStop( int nIndex )
{
	if ( IsValidIndex( nIndex ) )
		m_Stops.erase( m_Stops.begin() + nIndex );
}

int CColorGradient::MoveStop( int nIndex, float flPosition )
{
	if ( !IsValidIndex( nIndex ) )
		return -1;
	Color color = m_Stops[ nIndex ].m_Color;
	RemoveStop( nIndex );
	return AddStop( flPosition, color );
}

void CColorGradient::SetStopColor( int nIndex, Color color )
{
	if ( IsValidIndex( nIndex ) )
		m_Stops[ nIndex ].m_Color = color;
}

Color CColorGradient::GetStopColor( int nIndex ) const
{
	return IsValidIndex( nIndex ) ? m_Stops[ nIndex ].m_Color : OPAQUE_WHITE;
}

float CColorGradient::GetStopPosition( int nIndex ) const
{
	return IsValidIndex( nIndex ) ? m_Stops[ nIndex ].m_flPosition : 0.0f;
}

Color CColorGradient::Evaluate( float t ) const
{
	if ( m_Stops.empty() )
		return OPAQUE_WHITE;
	// The last stop at or before t.
	ColorGradientStop_t probe;
	probe.m_flPosition = t;
	auto it = std::upper_bound( m_Stops.begin(), m_Stops.end(), probe, PositionLess );
	if ( it == m_Stops.begin() )
		return m_Stops.front().m_Color;
	size_t i = static_cast<size_t>( it - m_Stops.begin() ) - 1;
	if ( i + 1 >= m_Stops.size() )
		return m_Stops.back().m_Color;
	const ColorGradientStop_t &left = m_Stops[ i ];
	const ColorGradientStop_t &right = m_Stops[ i + 1 ];
	float flWidth = right.m_flPosition - left.m_flPosition;
	if ( flWidth < HARD_EDGE_WIDTH )
		return left.m_Color;
	float f = ( t - left.m_flPosition ) / flWidth;
	Color result;
	for ( int c = 0; c < 4; ++c )
	{
		float a = left.m_Color[ c ];
		float b = right.m_Color[ c ];
		result[ c ] = static_cast<uint8_t>( static_cast<int>( a + ( b - a ) * f ) );
	}
	return result;
}

void CColorGradient::Normalize()
{
	for ( ColorGradientStop_t &stop : m_Stops )
		stop.m_flPosition = ClampUnit( stop.m_flPosition );
	std::stable_sort( m_Stops.begin(), m_Stops.end(), PositionLess );
}

void CColorGradient::Reverse()
{
	for ( ColorGradientStop_t &stop : m_Stops )
		stop.m_flPosition = 1.0f - stop.m_flPosition;
	// Equal positions swap sides too, so a hard edge stays a hard edge of the same colours.
	std::reverse( m_Stops.begin(), m_Stops.end() );
}

void CColorGradient::KV3PostLoad( CColorGradient &gradient, const KeyValues3 *, CKV3TransferLoadContext * )
{
	gradient.Normalize();
}
