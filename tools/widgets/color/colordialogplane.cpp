#include "tools/widgets/color/colordialogplane.h"

#include <QMouseEvent>
#include <QPainter>

#include <algorithm>

namespace
{
int ToPixel( int n ) { return std::clamp( n, 0, 255 ); }
int HueToPixel( int nHue ) { return std::clamp( nHue * 255 / 360, 0, 255 ); }
int PixelToHue( int nPixel ) { return nPixel * 360 / 255; }
} // namespace

CQColorDialog_ColorGradient::CQColorDialog_ColorGradient( QWidget *pParent ) : QWidget( pParent )
{
	setFixedSize( WIDTH, HEIGHT );
	m_Color = FatColor_t::FromRGB( 255, 255, 255 );
	RebuildImages();
}

void CQColorDialog_ColorGradient::SetMode( int nMode )
{
	nMode = std::clamp( nMode, 0, COLOR_DIALOG_MODE_COUNT - 1 );
	if ( nMode == m_nMode )
		return;
	m_nMode = nMode;
	RebuildImages();
	update();
}

void CQColorDialog_ColorGradient::SetColor( const FatColor_t &color )
{
	if ( color == m_Color )
		return;
	m_Color = color;
	RebuildImages();
	update();
}

void CQColorDialog_ColorGradient::GetCoordinates( const FatColor_t &c, int *pX, int *pY, int *pStrip ) const
{
	switch ( m_nMode )
	{
	case COLOR_DIALOG_MODE_H: *pX = c.s, *pY = c.v, *pStrip = HueToPixel( c.h ); break;
	case COLOR_DIALOG_MODE_S: *pX = HueToPixel( c.h ), *pY = c.v, *pStrip = c.s; break;
	case COLOR_DIALOG_MODE_V: *pX = HueToPixel( c.h ), *pY = c.s, *pStrip = c.v; break;
	case COLOR_DIALOG_MODE_R: *pX = c.g, *pY = c.b, *pStrip = c.r; break;
	case COLOR_DIALOG_MODE_G: *pX = c.r, *pY = c.b, *pStrip = c.g; break;
	default: *pX = c.r, *pY = c.g, *pStrip = c.b; break;
	}
	*pX = ToPixel( *pX );
	*pY = ToPixel( *pY );
	*pStrip = ToPixel( *pStrip );
}

// The colour at plane coordinates (x, y upwards) and strip value, from a base colour.
static FatColor_t ColorAt( int nMode, const FatColor_t &base, int x, int y, int nStrip )
{
	switch ( nMode )
	{
	case COLOR_DIALOG_MODE_H: return FatColor_t::FromHSV( PixelToHue( nStrip ), x, y, base.a );
	case COLOR_DIALOG_MODE_S: return FatColor_t::FromHSV( PixelToHue( x ), nStrip, y, base.a );
	case COLOR_DIALOG_MODE_V: return FatColor_t::FromHSV( PixelToHue( x ), y, nStrip, base.a );
	case COLOR_DIALOG_MODE_R: return FatColor_t::FromRGB( nStrip, x, y, base.a );
	case COLOR_DIALOG_MODE_G: return FatColor_t::FromRGB( x, nStrip, y, base.a );
	default: return FatColor_t::FromRGB( x, y, nStrip, base.a );
	}
}

FatColor_t CQColorDialog_ColorGradient::PickInPlane( const QPoint &pos ) const
{
	int x, y, nStrip;
	GetCoordinates( m_Color, &x, &y, &nStrip );
	int nPixelX = ToPixel( pos.x() - PLANE_LEFT );
	int nPixelY = 255 - ToPixel( pos.y() - PLANE_TOP );
	FatColor_t color = ColorAt( m_nMode, m_Color, nPixelX, nPixelY, nStrip );
	// The strip's hue stays exact (the pixel would round it).
	if ( m_nMode == COLOR_DIALOG_MODE_H && color.s > 0 )
		color = FatColor_t::FromHSV( m_Color.h, color.s, color.v, m_Color.a );
	return color;
}

FatColor_t CQColorDialog_ColorGradient::PickInStrip( const QPoint &pos ) const
{
	int x, y, nStrip;
	GetCoordinates( m_Color, &x, &y, &nStrip );
	int nPixel = ToPixel( pos.y() - PLANE_TOP );
	switch ( m_nMode )
	{
	// Components of the other model stay exact.
	case COLOR_DIALOG_MODE_H: return FatColor_t::FromHSV( PixelToHue( nPixel ), m_Color.s, m_Color.v, m_Color.a );
	case COLOR_DIALOG_MODE_S: return FatColor_t::FromHSV( m_Color.h, nPixel, m_Color.v, m_Color.a );
	case COLOR_DIALOG_MODE_V: return FatColor_t::FromHSV( m_Color.h, m_Color.s, nPixel, m_Color.a );
	case COLOR_DIALOG_MODE_R: return FatColor_t::FromRGB( nPixel, m_Color.g, m_Color.b, m_Color.a );
	case COLOR_DIALOG_MODE_G: return FatColor_t::FromRGB( m_Color.r, nPixel, m_Color.b, m_Color.a );
	default: return FatColor_t::FromRGB( m_Color.r, m_Color.g, nPixel, m_Color.a );
	}
}

QRect CQColorDialog_ColorGradient::GetPlaneHitRect() const
{
	return QRect( QPoint( PLANE_LEFT, PLANE_TOP ), QPoint( PLANE_LEFT + 255, PLANE_TOP + 255 ) ).adjusted( -HIT_MARGIN, -HIT_MARGIN, HIT_MARGIN, HIT_MARGIN );
}

QRect CQColorDialog_ColorGradient::GetStripHitRect() const
{
	return QRect( QPoint( STRIP_LEFT, PLANE_TOP ), QPoint( STRIP_LEFT + STRIP_WIDTH - 1, PLANE_TOP + 255 ) ).adjusted( -HIT_MARGIN, -HIT_MARGIN, HIT_MARGIN, HIT_MARGIN );
}

void CQColorDialog_ColorGradient::RebuildImages()
{
	int x0, y0, nStrip;
	GetCoordinates( m_Color, &x0, &y0, &nStrip );
	m_Plane = QImage( PLANE_SIZE, PLANE_SIZE, QImage::Format_RGB32 );
	for ( int row = 0; row < PLANE_SIZE; ++row )
	{
		auto *pLine = reinterpret_cast<QRgb *>( m_Plane.scanLine( row ) );
		int y = 255 - row;
		for ( int x = 0; x < PLANE_SIZE; ++x )
		{
			FatColor_t c = ColorAt( m_nMode, m_Color, x, y, nStrip );
			pLine[ x ] = qRgb( c.r, c.g, c.b );
		}
	}
	// The strip runs through its component with the others of the current colour; the hue
	// strip shows pure hues, which a dark or grey colour would hide.
	m_Strip = QImage( STRIP_WIDTH, PLANE_SIZE, QImage::Format_RGB32 );
	for ( int row = 0; row < PLANE_SIZE; ++row )
	{
		FatColor_t c = m_nMode == COLOR_DIALOG_MODE_H ? FatColor_t::FromHSV( PixelToHue( row ), 255, 255 ) : ColorAt( m_nMode, m_Color, x0, y0, row );
		auto *pLine = reinterpret_cast<QRgb *>( m_Strip.scanLine( row ) );
		for ( int x = 0; x < STRIP_WIDTH; ++x )
			pLine[ x ] = qRgb( c.r, c.g, c.b );
	}
}

void CQColorDialog_ColorGradient::Pick( const QPoint &pos )
{
	FatColor_t color = m_eDrag == DRAG_PLANE ? PickInPlane( pos ) : PickInStrip( pos );
	emit OnColorPicked( color );
}

void CQColorDialog_ColorGradient::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton )
		return;
	if ( GetPlaneHitRect().contains( pEvent->pos() ) )
		m_eDrag = DRAG_PLANE;
	else if ( GetStripHitRect().contains( pEvent->pos() ) )
		m_eDrag = DRAG_STRIP;
	else
		return;
	Pick( pEvent->pos() );
}

void CQColorDialog_ColorGradient::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( m_eDrag != DRAG_NONE )
		Pick( pEvent->pos() );
}

void CQColorDialog_ColorGradient::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( m_eDrag == DRAG_NONE || pEvent->button() != Qt::LeftButton )
		return;
	Pick( pEvent->pos() );
	m_eDrag = DRAG_NONE;
}

void CQColorDialog_ColorGradient::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	painter.drawImage( PLANE_LEFT, PLANE_TOP, m_Plane );
	painter.drawImage( STRIP_LEFT, PLANE_TOP, m_Strip );
	painter.setPen( QColor( 73, 73, 73 ) );
	painter.drawRect( PLANE_LEFT - 1, PLANE_TOP - 1, PLANE_SIZE + 1, PLANE_SIZE + 1 );
	painter.drawRect( STRIP_LEFT - 1, PLANE_TOP - 1, STRIP_WIDTH + 1, PLANE_SIZE + 1 );

	int x, y, nStrip;
	GetCoordinates( m_Color, &x, &y, &nStrip );
	// A ring on the plane, in the contrast of the colour under it.
	painter.setRenderHint( QPainter::Antialiasing );
	const bool bLight = m_Color.v > 160 && m_Color.s < 120;
	painter.setPen( QPen( bLight ? Qt::black : Qt::white, 1.5 ) );
	painter.setBrush( Qt::NoBrush );
	painter.drawEllipse( QPointF( PLANE_LEFT + x + 0.5, PLANE_TOP + ( 255 - y ) + 0.5 ), 5.0, 5.0 );
	// Arrows either side of the strip.
	painter.setPen( Qt::NoPen );
	painter.setBrush( palette().windowText() );
	const qreal sy = PLANE_TOP + nStrip + 0.5;
	const QPointF left[] = { { STRIP_LEFT - 7.0, sy - 4 }, { STRIP_LEFT - 2.0, sy }, { STRIP_LEFT - 7.0, sy + 4 } };
	const QPointF right[] = { { STRIP_LEFT + STRIP_WIDTH + 7.0, sy - 4 }, { STRIP_LEFT + STRIP_WIDTH + 2.0, sy }, { STRIP_LEFT + STRIP_WIDTH + 7.0, sy + 4 } };
	painter.drawPolygon( left, 3 );
	painter.drawPolygon( right, 3 );
}
