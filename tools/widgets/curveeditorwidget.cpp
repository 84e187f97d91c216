#include "tools/widgets/curveeditorwidget.h"

#include <QApplication>
#include <QClipboard>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QRadialGradient>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

#include "core/containers/utlbuffer.h"
#include "core/host/iprompt.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/logging/logging.h"
#include "core/text/utlstring.h"
#include "tools/widgets/modaleditcurvepointdialog.h"

namespace
{
constexpr double TANGENT_LENGTH_SHARE = 0.33;
constexpr double WHEEL_ZOOM_PER_UNIT = 0.001;
// The grid's steps are powers of ten between these exponents, at least this wide.
constexpr int GRID_MIN_EXPONENT = -2;
constexpr int GRID_MAX_EXPONENT = 3;
constexpr double GRID_MIN_PIXELS = 8.0;
constexpr double GRID_LIMIT = 1e6;
constexpr int CURVE_SAMPLE_PIXELS = 4;
const QColor DOMAIN_FILL( 66, 66, 66, 255 );
const QColor HANDLE_OUTLINE( 100, 100, 100 );
const QColor HANDLE_HIGHLIGHT( 230, 230, 70 );
const QColor KEY_FILL( 20, 50, 200 );
const QColor SELECTED_FILL( 170, 70, 70 );
const QColor INACTIVE_TANGENT( 50, 50, 60 );

// Modes offered where both sides are set at once.
const int s_BothSideModes[] = { CURVE_TANGENT_LINEAR, CURVE_TANGENT_SPLINE, CURVE_TANGENT_FREE };

bool IsFreeMirrorPair( const CurveTangents_t &tangents )
{
	return ( tangents.m_nIncomingTangent == CURVE_TANGENT_FREE && tangents.m_nOutgoingTangent == CURVE_TANGENT_MIRROR ) ||
		( tangents.m_nIncomingTangent == CURVE_TANGENT_MIRROR && tangents.m_nOutgoingTangent == CURVE_TANGENT_FREE );
}

bool IsCurrentBothMode( const CurveTangents_t &tangents, int nMode )
{
	if ( nMode == CURVE_TANGENT_FREE && IsFreeMirrorPair( tangents ) )
		return true;
	return tangents.m_nIncomingTangent == nMode && tangents.m_nOutgoingTangent == nMode;
}

// The mode's icon; the current one is framed in yellow.
QIcon ModeIcon( int nMode, bool bCurrent )
{
	QPixmap image = QIcon( QString::fromUtf8( GetCurveTangentModeIcon( nMode ) ) ).pixmap( 16, 16 );
	if ( image.isNull() || !bCurrent )
		return image.isNull() ? QIcon() : QIcon( image );
	QPainter painter( &image );
	painter.setPen( QPen( Qt::yellow, 1 ) );
	painter.drawRect( image.rect().adjusted( 0, 0, -1, -1 ) );
	return QIcon( image );
}

QAction *AddModeAction( QMenu *pMenu, int nMode, bool bCurrent )
{
	QAction *pAction = pMenu->addAction( ModeIcon( nMode, bCurrent ), QString::fromUtf8( GetCurveTangentModeLabel( nMode ) ) );
	pAction->setObjectName( QString::fromUtf8( GetCurveTangentModeLabel( nMode ) ) );
	if ( bCurrent )
	{
		QFont font = pAction->font();
		font.setBold( true );
		pAction->setFont( font );
	}
	return pAction;
}

double Distance( const QPointF &a, const QPointF &b )
{
	return std::hypot( a.x() - b.x(), a.y() - b.y() );
}
} // namespace

CQCurveEditorWidget::CQCurveEditorWidget( QWidget *pParent ) : CQMouseDragWidget( pParent )
{
	setFocusPolicy( Qt::StrongFocus );
	setMinimumSize( 120, 80 );
	m_Curve.Reset();
	m_flZoomX = m_Options.m_flInitialZoomX;
	m_flZoomY = m_Options.m_flInitialZoomY;
	UpdateTransform();
	RebuildHandles();
}

CQCurveEditorWidget::Options_t CQCurveEditorWidget::RowOptions( int nVerticalMargin )
{
	Options_t options;
	options.m_nLeftMargin = options.m_nRightMargin = 30;
	options.m_nTopMargin = options.m_nBottomMargin = nVerticalMargin;
	options.m_flKeyHandleRadius = 5.0f;
	options.m_flCurveLineWidth = 2.0f;
	options.m_bEditPointItem = true;
	options.m_bSetAllTangentMenus = true;
	return options;
}

void CQCurveEditorWidget::SetOptions( const Options_t &options )
{
	m_Options = options;
	UpdateTransform();
	RebuildHandles();
	update();
}

void CQCurveEditorWidget::SetCurve( const CPiecewiseCurve &curve, bool bMirrored, bool bEditable )
{
	// The owner hears the widget's change and sets the curve back: nothing to take then.
	if ( m_bAnnouncing )
		return;
	m_bMirrored = bMirrored;
	m_bEditable = bEditable;
	TakeCurve( curve );
	ResetView();
	m_Handles.clear();
	m_GuideLine.clear();
	m_nSelectedHandle = -1;
	if ( m_bEditable )
		RebuildHandles();
	update();
}

void CQCurveEditorWidget::TakeCurve( const CPiecewiseCurve &curve )
{
	if ( m_bMirrored )
		curve.FlipVertical( &m_Curve );
	else
		m_Curve = curve;
	if ( m_Curve.GetKeyCount() == 0 )
		m_Curve.Reset();
	m_vViewMin = QPointF( m_Curve.m_vDomainMins.x, m_Curve.m_vDomainMins.y );
	m_vViewMax = QPointF( m_Curve.m_vDomainMaxs.x, m_Curve.m_vDomainMaxs.y );
}

CPiecewiseCurve CQCurveEditorWidget::GetCurve() const
{
	if ( !m_bMirrored )
		return m_Curve;
	CPiecewiseCurve flipped;
	m_Curve.FlipVertical( &flipped );
	return flipped;
}

void CQCurveEditorWidget::ResetView()
{
	m_flZoomX = m_Options.m_flInitialZoomX;
	m_flZoomY = m_Options.m_flInitialZoomY;
	m_flPanX = m_vViewMin.x();
	m_flPanY = m_vViewMin.y();
	UpdateTransform();
	RebuildHandles();
	update();
}

void CQCurveEditorWidget::SetMarkers( const QVector<float> &vertical, const QVector<float> &horizontal )
{
	m_VerticalMarkers = vertical;
	m_HorizontalMarkers = horizontal;
	update();
}

//-----------------------------------------------------------------------------
// The view
//-----------------------------------------------------------------------------

void CQCurveEditorWidget::UpdateTransform()
{
	double w = std::max( width() - 1, 1 ) - m_Options.m_nLeftMargin - m_Options.m_nRightMargin;
	double h = std::max( height() - 1, 1 ) - m_Options.m_nTopMargin - m_Options.m_nBottomMargin;
	w = std::max( w, 1.0 );
	h = std::max( h, 1.0 );
	double flRangeX = std::max( ( m_vViewMax.x() - m_vViewMin.x() ) * m_flZoomX, MIN_VISIBLE_RANGE );
	double flRangeY = std::max( ( m_vViewMax.y() - m_vViewMin.y() ) * m_flZoomY, MIN_VISIBLE_RANGE );
	m_flScaleX = w / flRangeX;
	m_flScaleY = -h / flRangeY;
	m_flOriginX = m_Options.m_nLeftMargin - m_flPanX * m_flScaleX;
	m_flOriginY = ( h + m_Options.m_nTopMargin ) - m_flPanY * m_flScaleY;
	m_PlotRect = QRectF( m_Options.m_nLeftMargin, m_Options.m_nTopMargin, w, h );
	m_flTangentHandleLength = float( std::min( w, h ) * TANGENT_LENGTH_SHARE );
}

QPointF CQCurveEditorWidget::CurveToScreen( double x, double y ) const
{
	return QPointF( m_flOriginX + x * m_flScaleX, m_flOriginY + y * m_flScaleY );
}

QPointF CQCurveEditorWidget::ScreenToCurve( const QPointF &pos ) const
{
	return QPointF( ( pos.x() - m_flOriginX ) / m_flScaleX, ( pos.y() - m_flOriginY ) / m_flScaleY );
}

QPointF CQCurveEditorWidget::Snap( const QPointF &curvePos, Qt::KeyboardModifiers modifiers ) const
{
	if ( !m_Options.m_bSnap )
		return curvePos;
	// Whole numbers, or tenths on an axis that shows two units or less.
	auto snap = [ & ]( double flValue, double flVisibleRange ) {
		double flUnit = flVisibleRange <= 2.0 ? 0.1 : 1.0;
		return double( std::roundf( float( flValue / flUnit ) ) ) * flUnit;
	};
	QPointF snapped = curvePos;
	if ( modifiers & Qt::ControlModifier )
		snapped.setX( snap( curvePos.x(), m_PlotRect.width() / m_flScaleX ) );
	if ( modifiers & Qt::AltModifier )
		snapped.setY( snap( curvePos.y(), m_PlotRect.height() / -m_flScaleY ) );
	return snapped;
}

//-----------------------------------------------------------------------------
// Handles
//-----------------------------------------------------------------------------

void CQCurveEditorWidget::RebuildHandles()
{
	int nSelectedKey = -1;
	int nSelectedSide = ZolCurveHandle::SIDE_KEY;
	if ( m_nSelectedHandle >= 0 && m_nSelectedHandle < int( m_Handles.size() ) )
	{
		nSelectedKey = m_Handles[ m_nSelectedHandle ].m_nKey;
		nSelectedSide = m_Handles[ m_nSelectedHandle ].m_nSide;
	}
	m_Handles.clear();
	m_GuideLine.clear();
	m_nSelectedHandle = -1;
	if ( !m_bEditable )
		return;

	for ( int i = 0; i < m_Curve.GetKeyCount(); ++i )
	{
		ZolCurveHandle handle;
		handle.m_Position = CurveToScreen( m_Curve.GetKey( i ).x, m_Curve.GetKey( i ).y );
		handle.m_flRadius = m_Options.m_flHitRadiusBase + 2.0f;
		handle.m_nKey = i;
		m_Handles.push_back( handle );
	}

	if ( m_Curve.IsValidIndex( nSelectedKey ) )
	{
		const CurveKey_t &key = m_Curve.GetKey( nSelectedKey );
		const CurveTangents_t &tangents = m_Curve.GetTangents( nSelectedKey );
		bool bPair = IsFreeMirrorPair( tangents );
		QPointF keyPos = CurveToScreen( key.x, key.y );
		int nFirstTangent = int( m_Handles.size() );
		for ( int nSide = ZolCurveHandle::SIDE_INCOMING; nSide <= ZolCurveHandle::SIDE_OUTGOING; ++nSide )
		{
			double flSlope = nSide == ZolCurveHandle::SIDE_INCOMING ? key.m_flSlopeIncoming : key.m_flSlopeOutgoing;
			QPointF direction = nSide == ZolCurveHandle::SIDE_INCOMING ? QPointF( -m_flScaleX, -flSlope * m_flScaleY ) : QPointF( m_flScaleX, flSlope * m_flScaleY );
			double flLength = std::hypot( direction.x(), direction.y() );
			if ( flLength > 0.0 )
				direction *= m_flTangentHandleLength / flLength;
			int nMode = nSide == ZolCurveHandle::SIDE_INCOMING ? tangents.m_nIncomingTangent : tangents.m_nOutgoingTangent;
			ZolCurveHandle handle;
			handle.m_Position = keyPos + direction;
			handle.m_flRadius = m_Options.m_flHitRadiusBase - 1.0f;
			handle.m_nKey = nSelectedKey;
			handle.m_nSide = nSide;
			handle.m_bHovered = nSide == nSelectedSide;
			handle.m_bActive = nMode == CURVE_TANGENT_FREE || bPair;
			handle.m_bMirrored = bPair;
			m_Handles.push_back( handle );
		}
		m_GuideLine = { nFirstTangent, nSelectedKey, nFirstTangent + 1 };
	}

	for ( int i = 0; i < int( m_Handles.size() ); ++i )
	{
		if ( m_Handles[ i ].m_nKey == nSelectedKey && m_Handles[ i ].m_nSide == nSelectedSide )
			m_nSelectedHandle = i;
	}
}

bool CQCurveEditorWidget::SelectHandle( int nKey, int nSide )
{
	for ( int i = 0; i < int( m_Handles.size() ); ++i )
	{
		if ( m_Handles[ i ].m_nKey == nKey && m_Handles[ i ].m_nSide == nSide )
		{
			m_nSelectedHandle = i;
			RebuildHandles();
			update();
			return true;
		}
	}
	return false;
}

int CQCurveEditorWidget::HitTest( const QPointF &pos )
{
	int nBest = -1;
	double flBest = 0.0;
	for ( int i = 0; i < int( m_Handles.size() ); ++i )
	{
		double flDistance = Distance( m_Handles[ i ].m_Position, pos );
		if ( m_Handles[ i ].m_bVisible && flDistance <= m_Handles[ i ].m_flRadius && ( nBest < 0 || flDistance < flBest ) )
		{
			nBest = i;
			flBest = flDistance;
		}
	}
	for ( int i = 0; i < int( m_Handles.size() ); ++i )
		m_Handles[ i ].m_bHovered = i == nBest;
	return nBest;
}

int CQCurveEditorWidget::PressTest( const QPointF &pos ) const
{
	for ( int i = 0; i < int( m_Handles.size() ); ++i )
	{
		if ( m_Handles[ i ].m_bActive && m_Handles[ i ].m_bVisible && Distance( m_Handles[ i ].m_Position, pos ) <= m_Handles[ i ].m_flRadius )
			return i;
	}
	return -1;
}

void CQCurveEditorWidget::AnnounceChange()
{
	m_bAnnouncing = true;
	emit OnCurveUpdated();
	m_bAnnouncing = false;
}

//-----------------------------------------------------------------------------
// Mouse
//-----------------------------------------------------------------------------

void CQCurveEditorWidget::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( !m_bPanning && m_bEditable && !IsDragging() )
	{
		m_vPreview = Snap( ScreenToCurve( pEvent->pos() ), pEvent->modifiers() );
		int nHit = HitTest( pEvent->pos() );
		m_bShowAddPreview = nHit < 0 && ( pEvent->modifiers() & Qt::ShiftModifier ) && m_Options.m_bCanAddRemoveKeys;
	}
	CQMouseDragWidget::mouseMoveEvent( pEvent );
}

void CQCurveEditorWidget::OnMouseClick( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pos )
{
	if ( !m_bEditable || m_bPanning )
		return;
	int nHit = HitTest( pos );
	if ( buttons & Qt::LeftButton )
	{
		if ( m_bShowAddPreview && m_Options.m_bCanAddRemoveKeys )
		{
			m_nSelectedHandle = -1;
			int nLeft = 0;
			for ( int i = 0; i < m_Curve.GetKeyCount(); ++i )
			{
				if ( m_Curve.GetKey( i ).x <= m_vPreview.x() )
					nLeft = i;
			}
			CurveTangentMode_t eIncoming = m_Curve.GetKeyCount() > 0 ? m_Curve.GetTangents( nLeft ).m_nOutgoingTangent : CURVE_TANGENT_SPLINE;
			m_Curve.AddPoint( float( m_vPreview.x() ), float( m_vPreview.y() ), eIncoming, CURVE_TANGENT_SPLINE, 0.0f, 0.0f );
			RebuildHandles();
			AnnounceChange();
		}
		else if ( nHit < 0 && m_Options.m_bCanAddRemoveKeys )
		{
			QToolTip::showText( pEvent->globalPos(), QStringLiteral( "Use shift-click to add new control points" ), this );
		}
		m_nSelectedHandle = PressTest( pos );
		RebuildHandles();
		update();
		return;
	}
	if ( buttons & Qt::RightButton )
	{
		int nKey = -1;
		if ( nHit >= 0 )
			nKey = m_Handles[ nHit ].m_nKey;
		else if ( m_nSelectedHandle >= 0 )
			nKey = m_Handles[ m_nSelectedHandle ].m_nKey;
		ShowContextMenu( nKey, pEvent->globalPos() );
	}
}

void CQCurveEditorWidget::OnMouseDragStart( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &pressPos )
{
	if ( !m_bEditable )
		return;
	if ( ( buttons & Qt::RightButton ) || m_bPanning )
	{
		m_bPanning = true;
		setCursor( Qt::ClosedHandCursor );
		return;
	}
	m_nSelectedHandle = PressTest( pressPos );
	if ( ( pEvent->modifiers() & Qt::ShiftModifier ) && m_Options.m_bCanAddRemoveKeys )
	{
		QPointF at = ScreenToCurve( pressPos );
		int nKey = m_Curve.InsertPoint( float( at.x() ), float( at.y() ) );
		m_nSelectedHandle = -1;
		RebuildHandles();
		m_nSelectedHandle = nKey < int( m_Handles.size() ) ? nKey : -1;
		RebuildHandles();
	}
	update();
}

void CQCurveEditorWidget::OnMouseDrag( QMouseEvent *pEvent, Qt::MouseButtons, const QPoint &pos, const QPoint &delta )
{
	if ( m_bPanning )
	{
		// The curve follows the pointer.
		double dx = m_Options.m_bPanZoomX ? -delta.x() / m_flScaleX : 0.0;
		double dy = m_Options.m_bPanZoomY ? -delta.y() / m_flScaleY : 0.0;
		m_flPanX -= dx;
		m_flPanY -= dy;
		UpdateTransform();
		RebuildHandles();
		update();
		return;
	}
	if ( MoveSelectedHandle( pEvent->modifiers(), pos ) )
		update();
}

bool CQCurveEditorWidget::MoveSelectedHandle( Qt::KeyboardModifiers modifiers, const QPoint &pos )
{
	if ( m_nSelectedHandle < 0 || m_nSelectedHandle >= int( m_Handles.size() ) )
		return false;
	ZolCurveHandle handle = m_Handles[ m_nSelectedHandle ];
	if ( handle.m_nSide == ZolCurveHandle::SIDE_KEY )
		MoveKey( modifiers, handle.m_nKey, pos );
	else
		MoveTangent( handle, pos );
	return true;
}

void CQCurveEditorWidget::OnMouseDragEnd( QMouseEvent *pEvent, Qt::MouseButtons buttons, const QPoint &, const QPoint &pos )
{
	if ( !m_bPanning && !( buttons & Qt::RightButton ) )
	{
		if ( !MoveSelectedHandle( pEvent->modifiers(), pos ) )
			return;
		RebuildHandles();
		update();
		AnnounceChange();
		return;
	}
	m_bPanning = false;
	setCursor( Qt::ArrowCursor );
	RebuildHandles();
	update();
}

void CQCurveEditorWidget::MoveKey( Qt::KeyboardModifiers modifiers, int nKey, const QPointF &pixelPos )
{
	if ( !m_Curve.IsValidIndex( nKey ) )
		return;
	QPointF at = Snap( ScreenToCurve( pixelPos ), modifiers );
	float x = float( at.x() );
	float y = float( at.y() );
	const float flSpacing = CPiecewiseCurve::MIN_KEY_SPACING;
	bool bCrossing = false;
	// Past a neighbour the key changes places with it, and lands just beyond it: one
	// neighbour per move, however far the pointer went.
	if ( nKey > 0 && m_Curve.GetKey( nKey - 1 ).x > x )
	{
		bCrossing = true;
		x = std::max( x, m_Curve.GetKey( nKey - 1 ).x - flSpacing );
	}
	else if ( nKey + 1 < m_Curve.GetKeyCount() && m_Curve.GetKey( nKey + 1 ).x < x )
	{
		bCrossing = true;
		x = std::min( x, m_Curve.GetKey( nKey + 1 ).x + flSpacing );
	}
	const CurveTangents_t tangents = m_Curve.GetTangents( nKey );
	if ( !bCrossing )
	{
		m_Curve.SetPoint( nKey, x, y, tangents.m_nIncomingTangent, tangents.m_nOutgoingTangent );
	}
	else
	{
		const CurveKey_t key = m_Curve.GetKey( nKey );
		y = std::clamp( y, m_Curve.m_vDomainMins.y, m_Curve.m_vDomainMaxs.y );
		bool bSelected = m_nSelectedHandle >= 0 && m_Handles[ m_nSelectedHandle ].m_nKey == nKey && m_Handles[ m_nSelectedHandle ].m_nSide == ZolCurveHandle::SIDE_KEY;
		m_Curve.RemovePoint( nKey );
		int nNew = m_Curve.AddPoint( x, y, tangents.m_nIncomingTangent, tangents.m_nOutgoingTangent, key.m_flSlopeIncoming, key.m_flSlopeOutgoing );
		if ( bSelected )
		{
			// The handle follows its key to its new place.
			m_nSelectedHandle = -1;
			RebuildHandles();
			m_nSelectedHandle = nNew;
		}
	}
	RebuildHandles();
}

void CQCurveEditorWidget::MoveTangent( const ZolCurveHandle &handle, const QPointF &pixelPos )
{
	if ( !m_Curve.IsValidIndex( handle.m_nKey ) )
		return;
	QPointF at = ScreenToCurve( pixelPos );
	const CurveKey_t &key = m_Curve.GetKey( handle.m_nKey );
	double kx = key.x, ky = key.y, px = at.x(), py = at.y();
	int nSide = handle.m_nSide;
	bool bToOutgoing = nSide == ZolCurveHandle::SIDE_OUTGOING;
	if ( handle.m_bMirrored )
	{
		// Either handle of a free and mirrored pair works from the side the pointer is on,
		// and sets the free side's slope.
		nSide = px < kx ? ZolCurveHandle::SIDE_INCOMING : ZolCurveHandle::SIDE_OUTGOING;
		bToOutgoing = m_Curve.GetTangents( handle.m_nKey ).m_nIncomingTangent == CURVE_TANGENT_MIRROR;
	}
	const double flFloor = CPiecewiseCurve::MIN_KEY_SPACING;
	double flSlope = nSide == ZolCurveHandle::SIDE_INCOMING ? ( ky - py ) / std::max( kx - px, flFloor ) : ( py - ky ) / std::max( px - kx, flFloor );
	if ( bToOutgoing )
		m_Curve.SetSlopeOutgoing( handle.m_nKey, float( flSlope ) );
	else
		m_Curve.SetSlopeIncoming( handle.m_nKey, float( flSlope ) );
	RebuildHandles();
}

void CQCurveEditorWidget::wheelEvent( QWheelEvent *pEvent )
{
	if ( !m_bEditable )
	{
		pEvent->ignore();
		return;
	}
	pEvent->accept();
	QPointF mouse = pEvent->position();
	QPointF before = ScreenToCurve( mouse );
	double flStep = pEvent->angleDelta().y() * WHEEL_ZOOM_PER_UNIT;
	if ( m_Options.m_bPanZoomX )
		m_flZoomX = std::clamp( m_flZoomX - flStep, double( MIN_ZOOM ), double( MAX_ZOOM ) );
	if ( m_Options.m_bPanZoomY )
		m_flZoomY = std::clamp( m_flZoomY - flStep, double( MIN_ZOOM ), double( MAX_ZOOM ) );
	if ( pEvent->modifiers() & Qt::ControlModifier )
		m_flZoomY = 1.0;
	if ( pEvent->modifiers() & Qt::AltModifier )
		m_flZoomX = 1.0;
	UpdateTransform();
	// The point under the pointer stays there.
	QPointF after = ScreenToCurve( mouse );
	m_flPanX += before.x() - after.x();
	m_flPanY += before.y() - after.y();
	UpdateTransform();
	RebuildHandles();
	HitTest( mouse );
	update();
}

void CQCurveEditorWidget::keyPressEvent( QKeyEvent *pEvent )
{
	if ( !m_bEditable )
	{
		QWidget::keyPressEvent( pEvent );
		return;
	}
	switch ( pEvent->key() )
	{
	case Qt::Key_F: ResetView(); return;
	case Qt::Key_Delete:
	case Qt::Key_Backspace:
		if ( m_Options.m_bCanAddRemoveKeys && m_nSelectedHandle >= 0 )
		{
			int nKey = m_Handles[ m_nSelectedHandle ].m_nKey;
			m_nSelectedHandle = -1;
			m_Curve.RemovePoint( nKey );
			RebuildHandles();
			update();
			AnnounceChange();
		}
		return;
	case Qt::Key_Shift:
		if ( m_Options.m_bCanAddRemoveKeys )
		{
			m_bShowAddPreview = true;
			update();
		}
		return;
	default: break;
	}
	QWidget::keyPressEvent( pEvent );
}

void CQCurveEditorWidget::keyReleaseEvent( QKeyEvent *pEvent )
{
	if ( pEvent->key() == Qt::Key_Shift )
	{
		m_bShowAddPreview = false;
		update();
		return;
	}
	QWidget::keyReleaseEvent( pEvent );
}

void CQCurveEditorWidget::resizeEvent( QResizeEvent *pEvent )
{
	QWidget::resizeEvent( pEvent );
	UpdateTransform();
	RebuildHandles();
}

//-----------------------------------------------------------------------------
// Tangent modes, point edit, menus
//-----------------------------------------------------------------------------

bool CQCurveEditorWidget::SetKeyModes( int nPoint, int nIncoming, int nOutgoing )
{
	auto valid = []( int nMode ) { return nMode >= 0 && nMode < CURVE_TANGENT_MODE_COUNT; };
	if ( !m_Curve.IsValidIndex( nPoint ) || !valid( nIncoming ) || !valid( nOutgoing ) )
		return false;
	m_Curve.SetTangentModes( nPoint, CurveTangentMode_t( nIncoming ), CurveTangentMode_t( nOutgoing ) );
	RebuildHandles();
	update();
	AnnounceChange();
	return true;
}

void CQCurveEditorWidget::SetIncomingTangent( int nPoint, int nMode )
{
	if ( m_Curve.IsValidIndex( nPoint ) )
		SetKeyModes( nPoint, nMode, m_Curve.GetTangents( nPoint ).m_nOutgoingTangent );
}

void CQCurveEditorWidget::SetOutgoingTangent( int nPoint, int nMode )
{
	if ( m_Curve.IsValidIndex( nPoint ) )
		SetKeyModes( nPoint, m_Curve.GetTangents( nPoint ).m_nIncomingTangent, nMode );
}

void CQCurveEditorWidget::SetBothTangents( int nPoint, int nMode )
{
	if ( !m_Curve.IsValidIndex( nPoint ) || nMode < 0 || nMode >= CURVE_TANGENT_MODE_COUNT )
		return;
	// The incoming side first, its slopes settled with the outgoing side as it was; then
	// the outgoing side. Free on both sides is a free side and a side that mirrors it.
	m_Curve.SetTangentModes( nPoint, CurveTangentMode_t( nMode ), m_Curve.GetTangents( nPoint ).m_nOutgoingTangent );
	SetKeyModes( nPoint, nMode, nMode == CURVE_TANGENT_FREE ? CURVE_TANGENT_MIRROR : nMode );
}

void CQCurveEditorWidget::SetAllTangents( int nMode, bool bIncoming, bool bOutgoing )
{
	if ( nMode < 0 || nMode >= CURVE_TANGENT_MODE_COUNT )
		return;
	for ( int i = 0; i < m_Curve.GetKeyCount(); ++i )
	{
		const CurveTangents_t &tangents = m_Curve.GetTangents( i );
		m_Curve.SetTangentModes( i, bIncoming ? CurveTangentMode_t( nMode ) : tangents.m_nIncomingTangent, bOutgoing ? CurveTangentMode_t( nMode ) : tangents.m_nOutgoingTangent );
	}
	RebuildHandles();
	update();
	AnnounceChange();
}

void CQCurveEditorWidget::ModalPointEdit( int nPoint, QPoint p )
{
	if ( !m_Curve.IsValidIndex( nPoint ) )
		return;
	const CurveKey_t &key = m_Curve.GetKey( nPoint );
	bool bAccepted = false;
	Vector2D edited = CQModalEditCurvePointDialog::Edit( this, p, Vector2D( key.x, key.y ), m_Curve.m_vDomainMins, m_Curve.m_vDomainMaxs, &bAccepted );
	if ( !bAccepted || !m_Curve.IsValidIndex( nPoint ) )
		return;
	const CurveTangents_t tangents = m_Curve.GetTangents( nPoint );
	m_Curve.SetPoint( nPoint, edited.x, edited.y, tangents.m_nIncomingTangent, tangents.m_nOutgoingTangent );
	RebuildHandles();
	update();
	AnnounceChange();
}

QMenu *CQCurveEditorWidget::CreateGeneralMenu( QWidget *pParent )
{
	QMenu *pMenu = new QMenu( pParent );
	pMenu->addAction( QStringLiteral( "Copy Curve" ), this, &CQCurveEditorWidget::CopyCurveToClipboard )->setObjectName( QStringLiteral( "CopyCurve" ) );
	QAction *pPaste = pMenu->addAction( QStringLiteral( "Paste Curve" ), this, &CQCurveEditorWidget::PasteCurveFromClipboard );
	pPaste->setObjectName( QStringLiteral( "PasteCurve" ) );
	pPaste->setEnabled( ClipboardHoldsCurve() );
	if ( m_Options.m_bSetAllTangentMenus )
	{
		pMenu->addSeparator();
		struct SubMenu_t
		{
			const char *m_pTitle;
			bool m_bIncoming;
			bool m_bOutgoing;
		};
		const SubMenu_t subMenus[] = { { "Set All Tangents", true, true }, { "Set All Incoming Tangents", true, false }, { "Set All Outgoing Tangents", false, true } };
		for ( const SubMenu_t &sub : subMenus )
		{
			QMenu *pSub = pMenu->addMenu( QString::fromUtf8( sub.m_pTitle ) );
			pSub->setObjectName( QString::fromUtf8( sub.m_pTitle ) );
			int nModes = sub.m_bIncoming && sub.m_bOutgoing ? 3 : CURVE_TANGENT_MODE_COUNT;
			for ( int i = 0; i < nModes; ++i )
			{
				int nMode = sub.m_bIncoming && sub.m_bOutgoing ? s_BothSideModes[ i ] : i;
				connect( AddModeAction( pSub, nMode, false ), &QAction::triggered, this,
					[ this, nMode, sub ]() { SetAllTangents( nMode, sub.m_bIncoming, sub.m_bOutgoing ); } );
			}
		}
	}
	return pMenu;
}

QMenu *CQCurveEditorWidget::CreateKeyMenu( int nKey )
{
	if ( !m_Curve.IsValidIndex( nKey ) )
		return CreateGeneralMenu( this );
	QMenu *pMenu = new QMenu( this );
	const CurveTangents_t tangents = m_Curve.GetTangents( nKey );
	if ( m_Options.m_bTangentMenus )
	{
		for ( int nMode : s_BothSideModes )
			connect( AddModeAction( pMenu, nMode, IsCurrentBothMode( tangents, nMode ) ), &QAction::triggered, this, [ this, nKey, nMode ]() { SetBothTangents( nKey, nMode ); } );
		QMenu *pIncoming = pMenu->addMenu( QStringLiteral( "Incoming" ) );
		pIncoming->setObjectName( QStringLiteral( "Incoming" ) );
		QMenu *pOutgoing = pMenu->addMenu( QStringLiteral( "Outgoing" ) );
		pOutgoing->setObjectName( QStringLiteral( "Outgoing" ) );
		for ( int nMode = 0; nMode < CURVE_TANGENT_MODE_COUNT; ++nMode )
		{
			connect( AddModeAction( pIncoming, nMode, tangents.m_nIncomingTangent == nMode ), &QAction::triggered, this,
				[ this, nKey, nMode ]() { SetIncomingTangent( nKey, nMode ); } );
			connect( AddModeAction( pOutgoing, nMode, tangents.m_nOutgoingTangent == nMode ), &QAction::triggered, this,
				[ this, nKey, nMode ]() { SetOutgoingTangent( nKey, nMode ); } );
		}
	}
	if ( m_Options.m_bEditPointItem )
	{
		pMenu->addSeparator();
		QPointF keyPos = CurveToScreen( m_Curve.GetKey( nKey ).x, m_Curve.GetKey( nKey ).y );
		QPoint at = mapToGlobal( keyPos.toPoint() );
		pMenu->addAction( QStringLiteral( "Edit Point ..." ), this, [ this, nKey, at ]() { ModalPointEdit( nKey, at ); } )->setObjectName( QStringLiteral( "EditPoint" ) );
	}
	pMenu->addSeparator();
	QMenu *pGeneral = CreateGeneralMenu( pMenu );
	for ( QAction *pAction : pGeneral->actions() )
		pMenu->addAction( pAction );
	return pMenu;
}

void CQCurveEditorWidget::ShowContextMenu( int nKey, const QPoint &globalPos )
{
	QMenu *pMenu = nKey >= 0 ? CreateKeyMenu( nKey ) : CreateGeneralMenu( this );
	pMenu->exec( globalPos );
	pMenu->deleteLater();
}

//-----------------------------------------------------------------------------
// Clipboard
//-----------------------------------------------------------------------------

bool CQCurveEditorWidget::CurveToText( const CPiecewiseCurve &curve, QString *pText, QString *pError )
{
	KeyValues3 table;
	CUtlString error;
	if ( !SaveKV3Object( curve, &table, &error ) )
	{
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	CUtlBuffer buffer;
	if ( !SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &table, &error, &buffer ) )
	{
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	*pText = QString::fromUtf8( reinterpret_cast<const char *>( buffer.Base() ), int( buffer.TellPut() ) );
	return true;
}

bool CQCurveEditorWidget::CurveFromText( const QString &text, CPiecewiseCurve *pCurve, QString *pError )
{
	QByteArray bytes = text.toUtf8();
	if ( !LooksLikeKV3TextData( bytes.constData(), size_t( bytes.size() ) ) )
	{
		*pError = QStringLiteral( "The clipboard holds no KV3 text" );
		return false;
	}
	KeyValues3 table;
	CUtlString error;
	CUtlBuffer buffer( bytes.constData(), size_t( bytes.size() ), CUtlBuffer::READ_ONLY );
	if ( !LoadKV3( &table, &error, &buffer, KV3_FORMAT_GENERIC ) )
	{
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	if ( !table.IsTable() || !table.HasMember( "m_spline" ) )
	{
		*pError = QStringLiteral( "The KV3 text holds no curve" );
		return false;
	}
	CPiecewiseCurve curve;
	if ( !LoadKV3ObjectInPlace( &curve, &table, &error ) )
	{
		Log_Warning( LOG_GENERAL, "LoadKV3ObjectInPlace error: %s\n", error.Get() );
		*pError = QString::fromUtf8( error.Get() );
		return false;
	}
	*pCurve = curve;
	return true;
}

bool CQCurveEditorWidget::ClipboardHoldsCurve()
{
	CPiecewiseCurve curve;
	QString error;
	return CurveFromText( QApplication::clipboard()->text(), &curve, &error );
}

void CQCurveEditorWidget::CopyCurveToClipboard()
{
	QString text, error;
	if ( !CurveToText( GetCurve(), &text, &error ) )
	{
		GetPrompt()->Warning( "Failed to copy", QStringLiteral( "Error copying to clipboard: %1" ).arg( error ).toUtf8().constData(), this );
		return;
	}
	QApplication::clipboard()->setText( text );
}

void CQCurveEditorWidget::PasteCurveFromClipboard()
{
	CPiecewiseCurve pasted;
	QString error;
	if ( !CurveFromText( QApplication::clipboard()->text(), &pasted, &error ) )
	{
		GetPrompt()->Warning( "Failed to paste", QStringLiteral( "Error pasting clipboard data: %1" ).arg( error ).toUtf8().constData(), this );
		return;
	}
	TakeCurve( pasted );
	m_nSelectedHandle = -1;
	UpdateTransform();
	RebuildHandles();
	update();
	AnnounceChange();
}

//-----------------------------------------------------------------------------
// Painting
//-----------------------------------------------------------------------------

void CQCurveEditorWidget::PaintGrid( QPainter &painter )
{
	for ( int nAxis = 0; nAxis < 2; ++nAxis )
	{
		double flScale = std::fabs( nAxis == 0 ? m_flScaleX : m_flScaleY );
		double flStep = std::pow( 10.0, GRID_MAX_EXPONENT );
		for ( int nExponent = GRID_MIN_EXPONENT; nExponent <= GRID_MAX_EXPONENT; ++nExponent )
		{
			if ( std::pow( 10.0, nExponent ) * flScale >= GRID_MIN_PIXELS )
			{
				flStep = std::pow( 10.0, nExponent );
				break;
			}
		}
		QPointF low = ScreenToCurve( m_PlotRect.bottomLeft() );
		QPointF high = ScreenToCurve( m_PlotRect.topRight() );
		double flLow = std::clamp( nAxis == 0 ? low.x() : low.y(), -GRID_LIMIT, GRID_LIMIT );
		double flHigh = std::clamp( nAxis == 0 ? high.x() : high.y(), -GRID_LIMIT, GRID_LIMIT );
		// Worked in hundredths, so that lines on multiples of ten and a hundred are found exactly.
		long long nStep = std::max( 1LL, std::llround( flStep * 100.0 ) );
		long long nFirst = (long long)std::floor( flLow / flStep ) * nStep;
		for ( long long n = nFirst; n <= std::llround( flHigh * 100.0 ); n += nStep )
		{
			QColor color = n == 0 ? QColor( Qt::darkCyan ) : n % 10000 == 0 ? QColor( Qt::darkGreen ) : n % 1000 == 0 ? QColor( Qt::darkBlue ) : QColor( Qt::darkGray );
			painter.setPen( QPen( color, 1 ) );
			double flValue = n / 100.0;
			if ( nAxis == 0 )
			{
				double x = CurveToScreen( flValue, 0 ).x();
				painter.drawLine( QPointF( x, m_PlotRect.top() ), QPointF( x, m_PlotRect.bottom() ) );
			}
			else
			{
				double y = CurveToScreen( 0, flValue ).y();
				painter.drawLine( QPointF( m_PlotRect.left(), y ), QPointF( m_PlotRect.right(), y ) );
			}
		}
	}
}

void CQCurveEditorWidget::PaintCurve( QPainter &painter )
{
	if ( m_Curve.GetKeyCount() < 2 )
		return;
	painter.setPen( QPen( Qt::gray, m_Options.m_flCurveLineWidth, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin ) );
	QPainterPath path;
	double flStart = ScreenToCurve( m_PlotRect.topLeft() ).x();
	double flEnd = ScreenToCurve( m_PlotRect.topRight() ).x();
	double flStep = CURVE_SAMPLE_PIXELS / m_flScaleX;
	int nSegment = m_Curve.FindSegment( float( flStart ) );
	bool bFirst = true;
	for ( double x = flStart; x <= flEnd + flStep; x += flStep )
	{
		nSegment = m_Curve.FindSegmentFrom( float( x ), nSegment );
		float y = m_Options.m_bClampDrawingToDomain ? m_Curve.EvaluateClamped( float( x ) ) : m_Curve.Evaluate( float( x ) );
		QPointF point = CurveToScreen( x, y );
		if ( bFirst )
			path.moveTo( point );
		else
			path.lineTo( point );
		bFirst = false;
	}
	painter.drawPath( path );
}

void CQCurveEditorWidget::PaintHandles( QPainter &painter )
{
	if ( !m_bEditable )
	{
		if ( m_Curve.GetKeyCount() >= 8 )
			return;
		painter.setPen( Qt::NoPen );
		painter.setBrush( Qt::lightGray );
		for ( int i = 0; i < m_Curve.GetKeyCount(); ++i )
			painter.drawEllipse( CurveToScreen( m_Curve.GetKey( i ).x, m_Curve.GetKey( i ).y ), 2.0, 2.0 );
		return;
	}
	if ( m_GuideLine.size() == 3 )
	{
		painter.setPen( QPen( Qt::yellow, 1, Qt::DashLine ) );
		painter.drawLine( m_Handles[ m_GuideLine[ 0 ] ].m_Position, m_Handles[ m_GuideLine[ 1 ] ].m_Position );
		painter.drawLine( m_Handles[ m_GuideLine[ 1 ] ].m_Position, m_Handles[ m_GuideLine[ 2 ] ].m_Position );
	}
	const float flRadius = m_Options.m_flKeyHandleRadius;
	for ( int i = 0; i < int( m_Handles.size() ); ++i )
	{
		const ZolCurveHandle &handle = m_Handles[ i ];
		bool bSelected = i == m_nSelectedHandle;
		if ( handle.m_nSide != ZolCurveHandle::SIDE_KEY )
		{
			painter.setPen( Qt::NoPen );
			painter.setBrush( handle.m_bActive ? ( bSelected || handle.m_bHovered ? HANDLE_HIGHLIGHT : QColor( Qt::white ) ) : INACTIVE_TANGENT );
			double flDot = handle.m_bActive ? std::min( 3.0, flRadius * 0.5 ) : flRadius * 0.25;
			painter.drawEllipse( handle.m_Position, flDot, flDot );
			continue;
		}
		QColor base = bSelected ? SELECTED_FILL : KEY_FILL;
		QRadialGradient gradient( handle.m_Position, flRadius );
		gradient.setColorAt( 0.0, bSelected ? base.darker( 150 ) : base.lighter( 150 ) );
		gradient.setColorAt( 1.0, base.darker( 125 ) );
		painter.setBrush( gradient );
		painter.setPen( QPen( bSelected || handle.m_bHovered ? HANDLE_HIGHLIGHT : HANDLE_OUTLINE, 2 ) );
		painter.drawEllipse( handle.m_Position, flRadius, flRadius );
		if ( bSelected || handle.m_bHovered )
		{
			const CurveKey_t &key = m_Curve.GetKey( handle.m_nKey );
			QString text = QStringLiteral( "(%1,%2)" ).arg( key.x, 0, 'f', 2 ).arg( key.y, 0, 'f', 2 );
			// Towards the middle of the widget, two radii away.
			QPointF toCentre = QPointF( rect().center() ) - handle.m_Position;
			double flLength = std::hypot( toCentre.x(), toCentre.y() );
			QPointF at = handle.m_Position + ( flLength > 0 ? toCentre * ( 2.0 * flRadius / flLength ) : QPointF() );
			if ( at.x() < handle.m_Position.x() )
				at.rx() -= painter.fontMetrics().horizontalAdvance( text );
			painter.setPen( Qt::black );
			painter.drawText( at + QPointF( 1, 1 ), text );
			painter.setPen( Qt::white );
			painter.drawText( at, text );
		}
	}
	if ( m_bShowAddPreview )
	{
		painter.setPen( QPen( HANDLE_HIGHLIGHT, 1, Qt::DotLine ) );
		painter.setBrush( Qt::NoBrush );
		QPointF at = CurveToScreen( m_vPreview.x(), m_vPreview.y() );
		painter.drawEllipse( at, flRadius, flRadius );
	}
}

void CQCurveEditorWidget::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	painter.setRenderHint( QPainter::Antialiasing );
	painter.fillRect( rect(), palette().color( QPalette::Window ).darker( 140 ) );
	painter.save();
	painter.setClipRect( m_PlotRect );
	if ( m_Options.m_bDrawDomainRect )
	{
		QRectF domain( CurveToScreen( m_Curve.m_vDomainMins.x, m_Curve.m_vDomainMaxs.y ), CurveToScreen( m_Curve.m_vDomainMaxs.x, m_Curve.m_vDomainMins.y ) );
		painter.fillRect( domain.normalized(), DOMAIN_FILL );
	}
	PaintGrid( painter );
	painter.setPen( QPen( Qt::red, 1 ) );
	for ( float x : m_VerticalMarkers )
	{
		double sx = CurveToScreen( x, 0 ).x();
		painter.drawLine( QPointF( sx, m_PlotRect.top() ), QPointF( sx, m_PlotRect.bottom() ) );
		painter.drawText( QPointF( sx + 2, m_PlotRect.top() + 12 ), QString::number( x, 'f', 2 ) );
	}
	for ( float y : m_HorizontalMarkers )
	{
		double sy = CurveToScreen( 0, y ).y();
		painter.drawLine( QPointF( m_PlotRect.left(), sy ), QPointF( m_PlotRect.right(), sy ) );
		painter.drawText( QPointF( m_PlotRect.left() + 2, sy - 2 ), QString::number( y, 'f', 2 ) );
	}
	PaintCurve( painter );
	painter.restore();

	// Numbers along the edges.
	painter.setPen( palette().color( QPalette::WindowText ) );
	if ( m_Options.m_bShowXLabels )
	{
		QPointF low = ScreenToCurve( m_PlotRect.bottomLeft() ), high = ScreenToCurve( m_PlotRect.topRight() );
		painter.drawText( QPointF( m_PlotRect.left(), m_PlotRect.bottom() + 14 ), QString::number( low.x(), 'g', 3 ) );
		QString right = QString::number( high.x(), 'g', 3 );
		painter.drawText( QPointF( m_PlotRect.right() - painter.fontMetrics().horizontalAdvance( right ), m_PlotRect.bottom() + 14 ), right );
	}
	if ( m_Options.m_bShowYLabels )
	{
		QPointF low = ScreenToCurve( m_PlotRect.bottomLeft() ), high = ScreenToCurve( m_PlotRect.topRight() );
		QString top = QString::number( high.y(), 'g', 3 ), bottom = QString::number( low.y(), 'g', 3 );
		painter.drawText( QPointF( m_PlotRect.left() - 4 - painter.fontMetrics().horizontalAdvance( top ), m_PlotRect.top() + 10 ), top );
		painter.drawText( QPointF( m_PlotRect.left() - 4 - painter.fontMetrics().horizontalAdvance( bottom ), m_PlotRect.bottom() ), bottom );
	}
	PaintHandles( painter );
}
