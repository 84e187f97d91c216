#pragma once
// An ordered list of colour stops over 0..1 and the colour at any point between them.
// Vector inputs map values through one, and the gradient widgets edit one in place.

#include <vector>

#include "core/mathlib/color.h"
#include "core/schema/schemadeclare.h"

class KeyValues3;
class CKV3TransferLoadContext;

struct ColorGradientStop_t
{
	SCHEMA_CLASS( ColorGradientStop_t )
	SCHEMA_FIELD( float, m_flPosition, 0.0f )
	SCHEMA_FIELD( Color, m_Color, ( Color( 0, 0, 0, 255 ) ) )
};

class CColorGradient
{
	SCHEMA_CLASS( CColorGradient )
	// Sorted by position; stops with equal positions keep the order they were added in.
	SCHEMA_FIELD( std::vector<ColorGradientStop_t>, m_Stops, {} )

	// Stops closer than this count as one place: the colour jumps there.
	static constexpr float HARD_EDGE_WIDTH = 1e-5f;

	int GetStopCount() const { return static_cast<int>( m_Stops.size() ); }
	bool IsValidIndex( int nIndex ) const { return nIndex >= 0 && nIndex < GetStopCount(); }
	void Clear() { m_Stops.clear(); }

	// The position is clamped to 0..1; a stop already at that position stays ahead of the
	// new one. Answers the new stop's index.
	int AddStop( float flPosition, Color color );
	void RemoveStop( int nIndex );
	// Answers the stop's new index, or -1 for an index out of range.
	int MoveStop( int nIndex, float flPosition );
	void SetStopColor( int nIndex, Color color );
	// Opaque white and 0 for an index out of range.
	Color GetStopColor( int nIndex ) const;
	float GetStopPosition( int nIndex ) const;

	// Opaque white without stops; the end colours hold outside the stops.
	Color Evaluate( float t ) const;

	// Clamps positions to 0..1 and sorts the stops, keeping the order of equal ones.
	void Normalize();
	// Mirrors the gradient: every position p becomes 1 - p.
	void Reverse();

	// A file may hold stops out of range or out of order.
	static void KV3PostLoad( CColorGradient &gradient, const KeyValues3 *pTable, CKV3TransferLoadContext *pContext );
};
