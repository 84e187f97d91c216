#include "tools/widgets/color/colorgradienteditmodel.h"

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>

int ColorGradientBand_t::PixelOf( float flPosition ) const
{
	return m_nLeft + int( std::lround( flPosition * float( m_nRight - m_nLeft ) ) );
}

int HitTestColorGradientStops( const CColorGradient &gradient, const ColorGradientBand_t &band, int x, int y )
{
	int nBest = -1;
	int nBestDistance = INT_MAX;
	const int m = COLOR_GRADIENT_HANDLE_HIT_MARGIN;
	for ( int i = 0; i < gradient.GetStopCount(); ++i )
	{
		int nCentreX = band.PixelOf( gradient.GetStopPosition( i ) );
		int nLeft = nCentreX - band.m_nHandleWidth / 2;
		int nTop = band.m_nHandleTop;
		if ( x < nLeft - m || x >= nLeft + band.m_nHandleWidth + m || y < nTop - m || y >= nTop + band.m_nHandleHeight + m )
			continue;
		int nDistance = std::abs( x - nCentreX ) + std::abs( y - ( nTop + band.m_nHandleHeight / 2 ) );
		if ( nDistance < nBestDistance )
		{
			nBest = i;
			nBestDistance = nDistance;
		}
	}
	return nBest;
}

float ColorGradientPositionAt( const ColorGradientBand_t &band, int x )
{
	if ( band.m_nRight == band.m_nLeft )
		return x >= band.m_nLeft ? 1.0f : 0.0f;
	float t = float( x - band.m_nLeft ) / float( band.m_nRight - band.m_nLeft );
	return std::clamp( t, 0.0f, 1.0f );
}

bool IsInColorGradientBand( const ColorGradientBand_t &band, int x, int y )
{
	int nHalf = band.m_nHandleWidth / 2;
	return x >= band.m_nLeft - nHalf && x <= band.m_nRight + nHalf && y >= band.m_nTop && y < band.GetBottom();
}

void RandomizeColorGradient( CColorGradient *pGradient, bool bAlpha, std::mt19937 &random )
{
	auto uniform = [ &random ]( float flMin, float flMax ) { return std::uniform_real_distribution<float>( flMin, flMax )( random ); };
	auto channel = [ &random ]( int nMin, int nMax ) { return std::uniform_int_distribution<int>( nMin, nMax )( random ); };
	CColorGradient gradient;
	gradient.AddStop( 1.0f, Color( 0, 0, 0, 255 ) );
	gradient.AddStop( uniform( 0.1f, 0.6f ), Color( channel( 0, 255 ), channel( 0, 255 ), channel( 0, 255 ), bAlpha ? channel( 0, 128 ) : 255 ) );
	gradient.AddStop( uniform( 0.4f, 0.9f ), Color( channel( 0, 255 ), channel( 0, 255 ), channel( 0, 255 ), bAlpha ? channel( 128, 255 ) : 255 ) );
	if ( channel( 0, 1 ) )
		gradient.AddStop( 0.0f, Color( 255, 255, 255, 255 ) );
	if ( channel( 0, 1 ) )
		gradient.Reverse();
	*pGradient = gradient;
}

//-----------------------------------------------------------------------------
// History
//-----------------------------------------------------------------------------

void CColorGradientEditHistory::SetLimit( int nLimit )
{
	m_nLimit = nLimit;
	while ( m_nLimit >= 0 && int( m_Undo.size() ) > m_nLimit )
		m_Undo.pop_front();
}

void CColorGradientEditHistory::Push( const CColorGradient &before )
{
	m_Redo.clear();
	if ( m_nLimit == 0 )
		return;
	while ( m_nLimit > 0 && int( m_Undo.size() ) >= m_nLimit )
		m_Undo.pop_front();
	m_Undo.push_back( before );
}

bool CColorGradientEditHistory::Undo( CColorGradient *pCurrent )
{
	if ( m_Undo.empty() )
		return false;
	m_Redo.push_back( std::move( *pCurrent ) );
	*pCurrent = std::move( m_Undo.back() );
	m_Undo.pop_back();
	return true;
}

bool CColorGradientEditHistory::Redo( CColorGradient *pCurrent )
{
	if ( m_Redo.empty() )
		return false;
	m_Undo.push_back( std::move( *pCurrent ) );
	*pCurrent = std::move( m_Redo.back() );
	m_Redo.pop_back();
	return true;
}

void CColorGradientEditHistory::Clear()
{
	m_Undo.clear();
	m_Redo.clear();
}

//-----------------------------------------------------------------------------
// The editor's model
//-----------------------------------------------------------------------------

void CColorGradientEditModel::SetGradient( const CColorGradient &gradient, bool bAlpha )
{
	m_Gradient = gradient;
	m_bAlpha = bAlpha;
	m_nSelectedStop = -1;
	m_nStopUnderMouse = -1;
	EndDrag();
}

void CColorGradientEditModel::UpdateHover( int x, int y )
{
	m_nStopUnderMouse = HitTestColorGradientStops( m_Gradient, m_Band, x, y );
	m_bMouseInBand = IsInColorGradientBand( m_Band, x, y );
	m_flPositionUnderMouse = ColorGradientPositionAt( m_Band, x );
}

void CColorGradientEditModel::EndDrag()
{
	m_bDragging = false;
	m_bDragMoved = false;
	m_bAddedOnPress = false;
	m_bTakenOut = false;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::LeftPress( int x, int y )
{
	UpdateHover( x, y );
	EndDrag();
	m_nSelectedStop = m_nStopUnderMouse;
	Result_t eResult = EDIT_NONE;
	if ( m_nSelectedStop < 0 )
	{
		if ( !m_bMouseInBand )
			return EDIT_NONE;
		// A new stop of the colour that is already there: the look doesn't change.
		Snapshot();
		float flPosition = m_flPositionUnderMouse;
		m_nSelectedStop = m_Gradient.AddStop( flPosition, m_Gradient.Evaluate( flPosition ) );
		m_nStopUnderMouse = m_nSelectedStop;
		m_bAddedOnPress = true;
		eResult = EDIT_CHANGING;
	}
	m_bDragging = true;
	m_nDragStartX = x;
	m_nDragStartY = y;
	m_flDragStartPosition = m_Gradient.GetStopPosition( m_nSelectedStop );
	return eResult;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::MiddlePress( int x, int y )
{
	UpdateHover( x, y );
	if ( m_nStopUnderMouse < 0 )
		return EDIT_NONE;
	m_nSelectedStop = m_nStopUnderMouse;
	m_nStopUnderMouse = -1;
	return DeleteSelectedStop();
}

CColorGradientEditModel::Result_t CColorGradientEditModel::MouseMove( int x, int y )
{
	if ( !m_bDragging )
	{
		UpdateHover( x, y );
		return EDIT_NONE;
	}
	m_bMouseInBand = IsInColorGradientBand( m_Band, x, y );
	if ( !m_bDragMoved )
	{
		if ( std::abs( x - m_nDragStartX ) + std::abs( y - m_nDragStartY ) < DRAG_THRESHOLD )
			return EDIT_NONE;
		m_bDragMoved = true;
		// A stop added by this press is already one step: the drag joins it.
		if ( !m_bAddedOnPress )
			Snapshot();
	}
	float flTarget = ColorGradientPositionAt( m_Band, m_Band.PixelOf( m_flDragStartPosition ) + ( x - m_nDragStartX ) );
	m_flPositionUnderMouse = flTarget;
	bool bOff = y < m_Band.m_nTop - TAKE_OUT_DISTANCE || y > m_Band.GetBottom() + TAKE_OUT_DISTANCE;
	if ( bOff )
	{
		if ( m_bTakenOut )
			return EDIT_NONE;
		m_bTakenOut = true;
		m_TakenOutColor = m_Gradient.GetStopColor( m_nSelectedStop );
		m_Gradient.RemoveStop( m_nSelectedStop );
		m_nSelectedStop = -1;
		m_nStopUnderMouse = -1;
		return EDIT_CHANGING;
	}
	if ( m_bTakenOut )
	{
		m_bTakenOut = false;
		m_nSelectedStop = m_Gradient.AddStop( flTarget, m_TakenOutColor );
	}
	else
	{
		m_nSelectedStop = m_Gradient.MoveStop( m_nSelectedStop, flTarget );
	}
	m_nStopUnderMouse = m_nSelectedStop;
	return EDIT_CHANGING;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::LeftRelease()
{
	if ( !m_bDragging )
		return EDIT_NONE;
	Result_t eResult = ( m_bDragMoved || m_bAddedOnPress ) ? EDIT_FINISHED : EDIT_NONE;
	EndDrag();
	return eResult;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::Leave()
{
	Result_t eResult = LeftRelease();
	m_nStopUnderMouse = -1;
	m_bMouseInBand = false;
	return eResult;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::DeleteSelectedStop()
{
	if ( !m_Gradient.IsValidIndex( m_nSelectedStop ) )
		return EDIT_NONE;
	Snapshot();
	m_Gradient.RemoveStop( m_nSelectedStop );
	m_nSelectedStop = -1;
	EndDrag();
	return EDIT_FINISHED;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::MoveSelectedStop( float flPosition )
{
	if ( !m_Gradient.IsValidIndex( m_nSelectedStop ) )
		return EDIT_NONE;
	if ( std::clamp( flPosition, 0.0f, 1.0f ) == m_Gradient.GetStopPosition( m_nSelectedStop ) )
		return EDIT_NONE;
	Snapshot();
	m_nSelectedStop = m_Gradient.MoveStop( m_nSelectedStop, flPosition );
	return EDIT_FINISHED;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::Clear()
{
	if ( m_Gradient.GetStopCount() == 0 )
		return EDIT_NONE;
	return Replace( CColorGradient() );
}

CColorGradientEditModel::Result_t CColorGradientEditModel::Reverse()
{
	CColorGradient reversed = m_Gradient;
	reversed.Reverse();
	return Replace( reversed );
}

CColorGradientEditModel::Result_t CColorGradientEditModel::Randomize( std::mt19937 &random )
{
	CColorGradient randomized;
	RandomizeColorGradient( &randomized, m_bAlpha, random );
	return Replace( randomized );
}

CColorGradientEditModel::Result_t CColorGradientEditModel::Replace( const CColorGradient &gradient )
{
	Snapshot();
	m_Gradient = gradient;
	m_nSelectedStop = -1;
	EndDrag();
	return EDIT_FINISHED;
}

CColorGradientEditModel::Result_t CColorGradientEditModel::SetSelectedStopColor( Color color, bool bFirstOfRun )
{
	if ( !m_Gradient.IsValidIndex( m_nSelectedStop ) )
		return EDIT_NONE;
	if ( bFirstOfRun )
		Snapshot();
	m_Gradient.SetStopColor( m_nSelectedStop, color );
	return EDIT_CHANGING;
}

bool CColorGradientEditModel::Undo()
{
	EndDrag();
	if ( !m_History.Undo( &m_Gradient ) )
		return false;
	m_nSelectedStop = -1;
	return true;
}

bool CColorGradientEditModel::Redo()
{
	EndDrag();
	if ( !m_History.Redo( &m_Gradient ) )
		return false;
	m_nSelectedStop = -1;
	return true;
}

bool CColorGradientEditModel::ClearSelection()
{
	if ( m_nSelectedStop < 0 )
		return false;
	m_nSelectedStop = -1;
	return true;
}
