#include "tools/widgets/slider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QTimer>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

#include "core/logging/logging.h"

namespace
{
constexpr double DRAG_SHIFT_FACTOR = 0.25;
constexpr double KEY_SHIFT_FACTOR = 4.0;
constexpr double WHEEL_SHIFT_FACTOR = 3.0;
constexpr double WHEEL_ALT_FACTOR = 0.25;
constexpr double WHEEL_MAX_ACCELERATION = 7.0;
} // namespace

CQSlider::CQSlider( QWidget *pParent ) : QWidget( pParent ), m_Values( 1, 0.0 ), m_Name( QStringLiteral( "CQSlider" ) )
{
	setMinimumSize( 60, 12 );
	setSizePolicy( QSizePolicy::Expanding, QSizePolicy::Fixed );
	setFocusPolicy( Qt::StrongFocus );
	setMouseTracking( true );
	m_pWheelTimer = new QTimer( this );
	m_pWheelTimer->setSingleShot( true );
	m_pWheelTimer->setInterval( WHEEL_SEQUENCE_MS );
	connect( m_pWheelTimer, &QTimer::timeout, this, &CQSlider::EndWheelSequence );
}

void CQSlider::SetRange( double flMinimum, double flMaximum )
{
	m_flMinimum = std::min( flMinimum, flMaximum );
	m_flMaximum = std::max( flMinimum, flMaximum );
	for ( double &flValue : m_Values )
		flValue = std::clamp( flValue, m_flMinimum, m_flMaximum );
	update();
}

void CQSlider::SetValueCount( int nCount )
{
	m_Values.resize( std::max( nCount, 1 ) );
	update();
}

void CQSlider::SetValue( double flValue, int nIndex )
{
	if ( nIndex < 0 || nIndex >= m_Values.size() || !std::isfinite( flValue ) )
		return;
	m_Values[ nIndex ] = std::clamp( flValue, m_flMinimum, m_flMaximum );
	update();
}

int CQSlider::TrackPixels() const
{
	return std::max( width() - 3, 1 );
}

double CQSlider::GetPixelStep() const
{
	return ( m_flMaximum - m_flMinimum ) / TrackPixels();
}

double CQSlider::ValueAtPixel( double x ) const
{
	return std::clamp( m_flMinimum + ( x - 1.0 ) * GetPixelStep(), m_flMinimum, m_flMaximum );
}

double CQSlider::PixelOfValue( double flValue ) const
{
	double flRange = m_flMaximum - m_flMinimum;
	return 1.0 + ( flRange > 0.0 ? ( flValue - m_flMinimum ) / flRange * TrackPixels() : 0.0 );
}

bool CQSlider::Change( int nIndex, double flDelta )
{
	double flOld = m_Values[ nIndex ];
	m_Values[ nIndex ] = std::clamp( flOld + flDelta, m_flMinimum, m_flMaximum );
	if ( m_Values[ nIndex ] == flOld )
		return false;
	update();
	emit valueChanged( nIndex );
	return true;
}

QSize CQSlider::sizeHint() const
{
	return QSize( 120, 12 );
}

QSize CQSlider::minimumSizeHint() const
{
	return QSize( 60, 12 );
}

void CQSlider::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	QRect track = rect().adjusted( 0, 2, -1, -3 );
	painter.setPen( palette().color( QPalette::Mid ) );
	painter.setBrush( palette().color( QPalette::Base ) );
	painter.drawRect( track );
	QColor fill = hasFocus() ? palette().color( QPalette::Highlight ) : palette().color( QPalette::Highlight ).darker( 130 );
	if ( !isEnabled() )
		fill = palette().color( QPalette::Disabled, QPalette::Mid );
	// The first value fills the track up to itself; the others show as marks.
	int nFill = int( std::lround( PixelOfValue( m_Values[ 0 ] ) ) );
	painter.fillRect( QRect( track.left() + 1, track.top() + 1, std::max( nFill - 1, 0 ), track.height() - 1 ), fill );
	painter.setPen( palette().color( QPalette::WindowText ) );
	for ( double flValue : m_Values )
	{
		int x = int( std::lround( PixelOfValue( flValue ) ) );
		painter.drawLine( x, 0, x, height() - 1 );
	}
}

void CQSlider::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton || m_eState == STATE_DRAGGING )
	{
		QWidget::mousePressEvent( pEvent );
		return;
	}
	if ( m_eState == STATE_WHEEL )
		EndWheelSequence();
	pEvent->accept();
	m_StartValues = m_Values;
	m_eState = STATE_DRAGGING;
	// The value nearest the pointer is the one that moves.
	m_nDragIndex = 0;
	for ( int i = 1; i < m_Values.size(); ++i )
	{
		if ( std::fabs( PixelOfValue( m_Values[ i ] ) - pEvent->x() ) < std::fabs( PixelOfValue( m_Values[ m_nDragIndex ] ) - pEvent->x() ) )
			m_nDragIndex = i;
	}
	m_nLastX = pEvent->x();
	emit sliderPressed();
	// A fine drag starts where the value is; a plain press puts the value under the pointer.
	if ( !( pEvent->modifiers() & Qt::ShiftModifier ) )
		Change( m_nDragIndex, ValueAtPixel( pEvent->x() ) - m_Values[ m_nDragIndex ] );
}

void CQSlider::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( m_eState != STATE_DRAGGING )
	{
		QWidget::mouseMoveEvent( pEvent );
		return;
	}
	pEvent->accept();
	int nDelta = pEvent->x() - m_nLastX;
	m_nLastX = pEvent->x();
	double flFactor = ( pEvent->modifiers() & Qt::ShiftModifier ) ? DRAG_SHIFT_FACTOR : 1.0;
	if ( nDelta != 0 )
		Change( m_nDragIndex, nDelta * GetPixelStep() * flFactor );
}

void CQSlider::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton || m_eState != STATE_DRAGGING )
	{
		QWidget::mouseReleaseEvent( pEvent );
		return;
	}
	pEvent->accept();
	m_eState = STATE_IDLE;
	emit sliderReleased();
}

void CQSlider::EndCancelSequence()
{
	if ( m_eState != STATE_DRAGGING )
		return;
	QVector<double> current = m_Values;
	m_Values = m_StartValues;
	update();
	for ( int i = 0; i < m_Values.size() && i < current.size(); ++i )
	{
		if ( current[ i ] != m_Values[ i ] )
			emit valueChanged( i );
	}
	m_eState = STATE_IDLE;
	emit sliderReleased();
}

void CQSlider::EndWheelSequence()
{
	if ( m_eState != STATE_WHEEL )
		return;
	m_pWheelTimer->stop();
	m_eState = STATE_IDLE;
	emit sliderReleased();
}

void CQSlider::keyPressEvent( QKeyEvent *pEvent )
{
	const bool bShift = pEvent->modifiers() & Qt::ShiftModifier;
	const bool bCtrl = pEvent->modifiers() & Qt::ControlModifier;
	switch ( pEvent->key() )
	{
	case Qt::Key_Left:
	case Qt::Key_Right:
	{
		double flStep = GetPixelStep() * ( bShift ? KEY_SHIFT_FACTOR : 1.0 );
		Change( 0, pEvent->key() == Qt::Key_Left ? -flStep : flStep );
		pEvent->accept();
		return;
	}
	case Qt::Key_Up:
	case Qt::Key_Down:
	{
		// In value units, not scaled by the range.
		double flStep = ( bCtrl ? 24.0 : 12.0 ) / TrackPixels();
		Change( 0, pEvent->key() == Qt::Key_Down ? -flStep : flStep );
		pEvent->accept();
		return;
	}
	case Qt::Key_Escape:
		if ( m_eState == STATE_DRAGGING )
		{
			EndCancelSequence();
			pEvent->accept();
			return;
		}
		break;
	default:
		break;
	}
	QWidget::keyPressEvent( pEvent );
}

void CQSlider::wheelEvent( QWheelEvent *pEvent )
{
	if ( m_eState == STATE_DRAGGING )
	{
		pEvent->ignore();
		return;
	}
	const bool bCtrl = pEvent->modifiers() & Qt::ControlModifier;
	const bool bAlt = pEvent->modifiers() & Qt::AltModifier;
	const bool bShift = pEvent->modifiers() & Qt::ShiftModifier;
	if ( bCtrl )
		setFocus( Qt::MouseFocusReason );
	// A slider without focus lets the wheel scroll what holds it.
	if ( !hasFocus() )
	{
		pEvent->ignore();
		return;
	}
	pEvent->accept();
	if ( bCtrl && bAlt )
	{
		Log_Msg( LOG_GENERAL, "CQSlider::wheelEvent - blend towards cursor/default\n" );
		return;
	}
	// Alt turns the wheel sideways on some platforms.
	int nDelta = pEvent->angleDelta().y() != 0 ? pEvent->angleDelta().y() : pEvent->angleDelta().x();
	if ( nDelta == 0 )
		return;
	double flStep = GetPixelStep() * ( nDelta < 0 ? -1.0 : 1.0 );
	if ( m_eState == STATE_WHEEL && m_WheelElapsed.isValid() && m_WheelElapsed.elapsed() < WHEEL_SEQUENCE_MS )
	{
		flStep *= double( WHEEL_SEQUENCE_MS - m_WheelElapsed.elapsed() ) / WHEEL_SEQUENCE_MS * WHEEL_MAX_ACCELERATION + 1.0;
	}
	else
	{
		if ( m_eState == STATE_WHEEL )
			EndWheelSequence();
		m_StartValues = m_Values;
		m_eState = STATE_WHEEL;
		emit sliderPressed();
	}
	m_WheelElapsed.start();
	m_pWheelTimer->start();
	if ( bShift )
		flStep *= WHEEL_SHIFT_FACTOR;
	if ( bAlt )
		flStep *= WHEEL_ALT_FACTOR;
	Change( 0, flStep );
}
