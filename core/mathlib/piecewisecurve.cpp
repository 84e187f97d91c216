#include "core/mathlib/piecewisecurve.h"

#include <algorithm>
#include <cstring>
#include <strings.h>
#include <utility>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transfernumbers.h"

namespace
{
struct TangentModeInfo_t
{
	const char *m_pszName;
	const char *m_pszLabel;
	const char *m_pszIcon;
};

const TangentModeInfo_t s_TangentModes[ CURVE_TANGENT_MODE_COUNT ] = {
	{ "CURVE_TANGENT_LINEAR", "Linear", "game:tools/images/common/curve_tangent_linear.png" },
	{ "CURVE_TANGENT_SPLINE", "Spline", "game:tools/images/common/curve_tangent_spline.png" },
	{ "CURVE_TANGENT_FREE", "Free", "game:tools/images/common/curve_tangent_free.png" },
	{ "CURVE_TANGENT_MIRROR", "Mirror", "game:tools/images/common/curve_tangent_mirror.png" },
	{ "CURVE_TANGENT_SINE", "Sine", "game:tools/images/common/curve_tangent_sine.png" },
};

bool IsKnownMode( int nMode ) { return nMode >= 0 && nMode < CURVE_TANGENT_MODE_COUNT; }

// The Sine mode's slopes: a steep start and a flat finish, scaled by the segment's width.
constexpr float SINE_SLOPE_STEEP = 1.60305f;
constexpr float SINE_SLOPE_FLAT = 0.0413377f;
} // namespace

const char *GetCurveTangentModeLabel( int nMode ) { return IsKnownMode( nMode ) ? s_TangentModes[ nMode ].m_pszLabel : ""; }
const char *GetCurveTangentModeIcon( int nMode ) { return IsKnownMode( nMode ) ? s_TangentModes[ nMode ].m_pszIcon : ""; }

void KV3Transfer_t<CurveTangentMode_t>::Load( CurveTangentMode_t &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	if ( pValue && pValue->IsString() )
	{
		value = CURVE_TANGENT_SPLINE;
		for ( int i = 0; i < CURVE_TANGENT_MODE_COUNT; ++i )
		{
			if ( strcasecmp( s_TangentModes[ i ].m_pszName, pValue->GetString() ) == 0 )
				value = static_cast<CurveTangentMode_t>( i );
		}
		return;
	}
	value = static_cast<CurveTangentMode_t>( KV3TransferReadInteger<int32_t>( pContext, pValue ) );
}

void KV3Transfer_t<CurveTangentMode_t>::Save( const CurveTangentMode_t &value, KeyValues3 *pValue, CKV3TransferSaveContext * )
{
	if ( IsKnownMode( value ) )
		pValue->SetString( s_TangentModes[ value ].m_pszName );
	else
		pValue->SetInt( value );
}

void CPiecewiseCurve::Reset()
{
	Clear();
	m_vDomainMins = Vector2D( 0.0f, 0.0f );
	m_vDomainMaxs = Vector2D( 1.0f, 1.0f );
	m_spline.push_back( CurveKey_t{ 0.0f, 0.0f, 0.0f, 0.0f } );
	m_spline.push_back( CurveKey_t{ 1.0f, 1.0f, 0.0f, 0.0f } );
	m_tangents.push_back( CurveTangents_t{ CURVE_TANGENT_SPLINE, CURVE_TANGENT_SPLINE } );
	m_tangents.push_back( CurveTangents_t{ CURVE_TANGENT_SPLINE, CURVE_TANGENT_SPLINE } );
	RecomputeTangents();
}

void CPiecewiseCurve::Clear()
{
	m_spline.clear();
	m_tangents.clear();
}

int CPiecewiseCurve::AddPoint( float x, float y, CurveTangentMode_t eIncoming, CurveTangentMode_t eOutgoing, float flSlopeIn, float flSlopeOut )
{
	EnforceOrder();
	const CurveKey_t key{ x, y, flSlopeIn, flSlopeOut };
	const CurveTangents_t tangents{ eIncoming, eOutgoing };
	int nIndex = 0;
	int nCount = GetKeyCount();
	while ( nIndex < nCount && m_spline[ nIndex ].x < x )
		++nIndex;
	if ( nIndex < nCount && m_spline[ nIndex ].x == x )
	{
		m_spline[ nIndex ] = key;
		m_tangents[ nIndex ] = tangents;
	}
	else
	{
		m_spline.insert( m_spline.begin() + nIndex, key );
		m_tangents.insert( m_tangents.begin() + nIndex, tangents );
	}
	RecomputeTangents();
	return nIndex;
}

int CPiecewiseCurve::InsertPoint( float x, float y )
{
	EnforceOrder();
	CurveTangentMode_t eIncoming = CURVE_TANGENT_SPLINE;
	if ( GetKeyCount() > 0 )
	{
		int nLeft = 0;
		for ( int i = 0; i < GetKeyCount(); ++i )
		{
			if ( m_spline[ i ].x <= x )
				nLeft = i;
		}
		eIncoming = m_tangents[ nLeft ].m_nOutgoingTangent;
	}
	return AddPoint( x, y, eIncoming, CURVE_TANGENT_SPLINE, 0.0f, 0.0f );
}

void CPiecewiseCurve::RemovePoint( int nIndex )
{
	EnforceOrder();
	if ( !IsValidIndex( nIndex ) )
		return;
	m_spline.erase( m_spline.begin() + nIndex );
	m_tangents.erase( m_tangents.begin() + nIndex );
	RecomputeTangents();
}

void CPiecewiseCurve::SetPoint( int nIndex, float x, float y, CurveTangentMode_t eIncoming, CurveTangentMode_t eOutgoing )
{
	EnforceOrder();
	if ( !IsValidIndex( nIndex ) )
		return;
	float flLow = nIndex > 0 ? m_spline[ nIndex - 1 ].x + MIN_KEY_SPACING : m_vDomainMins.x;
	float flHigh = nIndex + 1 < GetKeyCount() ? m_spline[ nIndex + 1 ].x - MIN_KEY_SPACING : m_vDomainMaxs.x;
	// max then min, so that a squeezed key stays next to its left neighbour.
	x = std::min( std::max( x, flLow ), flHigh );
	y = std::min( std::max( y, m_vDomainMins.y ), m_vDomainMaxs.y );
	CurveKey_t &key = m_spline[ nIndex ];
	key.x = x;
	key.y = y;
	m_tangents[ nIndex ] = CurveTangents_t{ eIncoming, eOutgoing };
	RecomputeTangents();
}

void CPiecewiseCurve::SetTangentModes( int nIndex, CurveTangentMode_t eIncoming, CurveTangentMode_t eOutgoing )
{
	EnforceOrder();
	if ( !IsValidIndex( nIndex ) )
		return;
	m_tangents[ nIndex ] = CurveTangents_t{ eIncoming, eOutgoing };
	RecomputeTangents();
}

bool CPiecewiseCurve::SetDomain( const Vector2D &vMins, const Vector2D &vMaxs )
{
	if ( m_vDomainMins == vMins && m_vDomainMaxs == vMaxs )
		return false;
	m_vDomainMins = vMins;
	m_vDomainMaxs = vMaxs;
	return true;
}

void CPiecewiseCurve::SetSlopeIncoming( int nIndex, float flSlope )
{
	EnforceOrder();
	if ( !IsValidIndex( nIndex ) )
		return;
	m_spline[ nIndex ].m_flSlopeIncoming = flSlope;
	RecomputeTangents();
}

void CPiecewiseCurve::SetSlopeOutgoing( int nIndex, float flSlope )
{
	EnforceOrder();
	if ( !IsValidIndex( nIndex ) )
		return;
	m_spline[ nIndex ].m_flSlopeOutgoing = flSlope;
	RecomputeTangents();
}

int CPiecewiseCurve::FindSegment( float x ) const
{
	int nCount = GetKeyCount();
	if ( nCount < 2 )
		return 0;
	int nLow = 1;
	int nHigh = nCount - 1;
	int nFound = 1;
	while ( nLow <= nHigh )
	{
		nFound = ( nLow + nHigh ) / 2;
		float flKeyX = m_spline[ nFound ].x;
		if ( flKeyX == x )
			break;
		if ( flKeyX < x )
			nLow = nFound + 1;
		else
			nHigh = nFound - 1;
	}
	if ( m_spline[ nFound ].x <= x && nFound < nCount - 1 )
		++nFound;
	return nFound;
}

int CPiecewiseCurve::FindSegmentFrom( float x, int nStart ) const
{
	int nCount = GetKeyCount();
	if ( nCount < 2 )
		return 0;
	int nFound = std::min( std::max( nStart, 1 ), nCount - 1 );
	while ( nFound > 1 && m_spline[ nFound - 1 ].x > x )
		--nFound;
	while ( nFound < nCount - 1 && m_spline[ nFound ].x <= x )
		++nFound;
	return nFound;
}

float CPiecewiseCurve::Evaluate( float x ) const
{
	// A shorter tangent vector would be a broken curve; the keys alone decide.
	if ( GetKeyCount() < 2 )
		return x;
	int nRight = FindSegment( x );
	const CurveKey_t &left = m_spline[ nRight - 1 ];
	const CurveKey_t &right = m_spline[ nRight ];
	float s0 = left.m_flSlopeOutgoing;
	float s1 = right.m_flSlopeIncoming;
	float dx = right.x - left.x;
	float dy = right.y - left.y;
	float t = dx != 0.0f ? ( x - left.x ) / dx : x - left.x;
	t = std::min( std::max( t, 0.0f ), 1.0f );
	// Horner form of the Hermite cubic; this order of operations is the reference rounding.
	return ( ( ( ( s0 + s1 ) * dx - 2.0f * dy ) * t + ( -s1 - 2.0f * s0 ) * dx + 3.0f * dy ) * t + s0 * dx ) * t + left.y;
}

float CPiecewiseCurve::EvaluateClamped( float x ) const
{
	float flValue = Evaluate( x );
	return std::min( std::max( flValue, m_vDomainMins.y ), m_vDomainMaxs.y );
}

bool CPiecewiseCurve::Rescale( const Vector2D &a, const Vector2D &b )
{
	EnforceOrder();
	const Vector2D vOldMins = m_vDomainMins;
	const Vector2D vOldMaxs = m_vDomainMaxs;
	auto map = [ & ]( float flValue, int nAxis ) {
		float flRange = vOldMaxs[ nAxis ] - vOldMins[ nAxis ];
		float flOffset = flValue - vOldMins[ nAxis ];
		if ( flRange == 0.0f )
			return flOffset > 0.0f ? b[ nAxis ] : a[ nAxis ];
		return a[ nAxis ] + flOffset / flRange * ( b[ nAxis ] - a[ nAxis ] );
	};

	float flOldRangeY = vOldMaxs.y - vOldMins.y;
	float k = flOldRangeY > 0.001f ? ( b.y - a.y ) / flOldRangeY : 1.0f;
	bool bFlipX = a.x > b.x;
	if ( bFlipX )
		k = -k;

	for ( CurveKey_t &key : m_spline )
	{
		key.x = map( key.x, 0 );
		key.y = map( key.y, 1 );
		key.m_flSlopeIncoming *= k;
		key.m_flSlopeOutgoing *= k;
		if ( bFlipX )
			std::swap( key.m_flSlopeIncoming, key.m_flSlopeOutgoing );
	}
	if ( bFlipX )
	{
		std::reverse( m_spline.begin(), m_spline.end() );
		std::reverse( m_tangents.begin(), m_tangents.end() );
		for ( CurveTangents_t &tangents : m_tangents )
			std::swap( tangents.m_nIncomingTangent, tangents.m_nOutgoingTangent );
	}

	m_vDomainMins = Vector2D( std::min( a.x, b.x ), std::min( a.y, b.y ) );
	m_vDomainMaxs = Vector2D( std::max( a.x, b.x ), std::max( a.y, b.y ) );
	RecomputeTangents();
	return true;
}

void CPiecewiseCurve::FlipVertical( CPiecewiseCurve *pOut ) const
{
	if ( !pOut || pOut == this )
		return;
	pOut->Clear();
	pOut->m_vDomainMins = m_vDomainMins;
	pOut->m_vDomainMaxs = m_vDomainMaxs;
	int nCount = static_cast<int>( std::min( m_spline.size(), m_tangents.size() ) );
	for ( int i = 0; i < nCount; ++i )
	{
		const CurveKey_t &key = m_spline[ i ];
		const CurveTangents_t &tangents = m_tangents[ i ];
		// Mirroring the values mirrors the hand-set slopes too.
		pOut->AddPoint( key.x, m_vDomainMins.y + m_vDomainMaxs.y - key.y, tangents.m_nIncomingTangent, tangents.m_nOutgoingTangent, -key.m_flSlopeIncoming,
						-key.m_flSlopeOutgoing );
	}
}

void CPiecewiseCurve::EnforceOrder()
{
	size_t nCount = std::min( m_spline.size(), m_tangents.size() );
	m_spline.resize( nCount );
	m_tangents.resize( nCount );
	for ( size_t i = 1; i < nCount; ++i )
		m_spline[ i ].x = std::max( m_spline[ i ].x, m_spline[ i - 1 ].x + MIN_KEY_SPACING );
}

void CPiecewiseCurve::RecomputeTangents()
{
	EnforceOrder();
	int nCount = GetKeyCount();
	for ( int i = 0; i < nCount; ++i )
	{
		CurveKey_t &key = m_spline[ i ];
		const CurveTangents_t &tangents = m_tangents[ i ];
		bool bHasPrev = i > 0;
		bool bHasNext = i + 1 < nCount;
		float flPrevDx = bHasPrev ? key.x - m_spline[ i - 1 ].x : 0.0f;
		float flPrevDy = bHasPrev ? key.y - m_spline[ i - 1 ].y : 0.0f;
		float flNextDx = bHasNext ? m_spline[ i + 1 ].x - key.x : 0.0f;
		float flNextDy = bHasNext ? m_spline[ i + 1 ].y - key.y : 0.0f;
		float flPrev = bHasPrev ? flPrevDy / flPrevDx : 0.0f;
		float flNext = bHasNext ? flNextDy / flNextDx : 0.0f;
		float flCentre;
		if ( bHasPrev && bHasNext )
			flCentre = ( m_spline[ i + 1 ].y - m_spline[ i - 1 ].y ) / ( m_spline[ i + 1 ].x - m_spline[ i - 1 ].x );
		else
			flCentre = bHasPrev ? flPrev : flNext;

		switch ( tangents.m_nIncomingTangent )
		{
		case CURVE_TANGENT_LINEAR: key.m_flSlopeIncoming = flPrev; break;
		case CURVE_TANGENT_SPLINE: key.m_flSlopeIncoming = flCentre; break;
		case CURVE_TANGENT_MIRROR: key.m_flSlopeIncoming = 0.0f; break; // settled by the outgoing side below
		case CURVE_TANGENT_SINE:
		{
			float s = flPrevDx != 0.0f ? 1.0f / flPrevDx : 1.0f;
			key.m_flSlopeIncoming = flPrevDy > 0.0f ? -SINE_SLOPE_FLAT * s : -SINE_SLOPE_STEEP * s;
			break;
		}
		default: break; // Free and unknown modes keep the stored slope
		}

		switch ( tangents.m_nOutgoingTangent )
		{
		case CURVE_TANGENT_LINEAR: key.m_flSlopeOutgoing = flNext; break;
		case CURVE_TANGENT_SPLINE: key.m_flSlopeOutgoing = flCentre; break;
		case CURVE_TANGENT_MIRROR: key.m_flSlopeOutgoing = key.m_flSlopeIncoming; break;
		case CURVE_TANGENT_SINE:
		{
			float s = flNextDx != 0.0f ? 1.0f / flNextDx : 1.0f;
			key.m_flSlopeOutgoing = flNextDy > 0.0f ? SINE_SLOPE_STEEP * s : SINE_SLOPE_FLAT * s;
			break;
		}
		default: break;
		}

		if ( tangents.m_nIncomingTangent == CURVE_TANGENT_MIRROR )
			key.m_flSlopeIncoming = key.m_flSlopeOutgoing;
	}
}

void CPiecewiseCurve::KV3PostLoad( CPiecewiseCurve &curve, const KeyValues3 *, CKV3TransferLoadContext * )
{
	curve.RecomputeTangents();
}

int CPiecewiseCurve::KV3IsMemberAtDefault( const char *, const CPiecewiseCurve & ) const
{
	return 0;
}
