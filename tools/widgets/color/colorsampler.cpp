#include "tools/widgets/color/colorsampler.h"

#include <QGuiApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPixmap>
#include <QScreen>

CQColorSampler::CQColorSampler( QWidget *pParent ) : QToolButton( pParent )
{
	setText( QStringLiteral( "Sample" ) );
	setToolTip( QStringLiteral( "Press, move over any colour on the screen, and let go to take it" ) );
	setMinimumWidth( 80 );
}

QColor CQColorSampler::SampleScreen( const QPoint &globalPos )
{
	QScreen *pScreen = QGuiApplication::screenAt( globalPos );
	if ( !pScreen )
		return QColor();
	const QPoint local = globalPos - pScreen->geometry().topLeft();
	QImage image = pScreen->grabWindow( 0, local.x(), local.y(), 1, 1 ).toImage();
	if ( image.isNull() )
		return QColor();
	return QColor( image.pixel( 0, 0 ) );
}

void CQColorSampler::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton )
		return QToolButton::mousePressEvent( pEvent );
	m_bSampling = true;
	setDown( true );
	grabMouse( Qt::CrossCursor );
	grabKeyboard();
}

void CQColorSampler::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( !m_bSampling )
		return QToolButton::mouseMoveEvent( pEvent );
	m_Hovered = SampleScreen( pEvent->globalPos() );
	update();
}

void CQColorSampler::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( !m_bSampling )
		return QToolButton::mouseReleaseEvent( pEvent );
	StopSampling();
	QColor color = SampleScreen( pEvent->globalPos() );
	if ( color.isValid() )
		emit ColorSamplePicked( color );
}

void CQColorSampler::keyPressEvent( QKeyEvent *pEvent )
{
	if ( m_bSampling && pEvent->key() == Qt::Key_Escape )
	{
		StopSampling();
		return;
	}
	QToolButton::keyPressEvent( pEvent );
}

void CQColorSampler::StopSampling()
{
	m_bSampling = false;
	m_Hovered = QColor();
	releaseMouse();
	releaseKeyboard();
	setDown( false );
	update();
}

void CQColorSampler::paintEvent( QPaintEvent *pEvent )
{
	QToolButton::paintEvent( pEvent );
	if ( !m_bSampling || !m_Hovered.isValid() )
		return;
	QPainter painter( this );
	painter.fillRect( rect().adjusted( 3, 3, -3, -3 ), m_Hovered );
}
