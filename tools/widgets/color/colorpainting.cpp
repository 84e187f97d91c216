#include "tools/widgets/color/colorpainting.h"

#include <QPainter>
#include <QRect>

void PaintCheckerboard( QPainter &painter, const QRect &rect, int nCell )
{
	painter.save();
	painter.setClipRect( rect, Qt::IntersectClip );
	painter.fillRect( rect, QColor( 204, 204, 204 ) );
	const QColor dark( 153, 153, 153 );
	for ( int y = rect.top(); y <= rect.bottom(); y += nCell )
	{
		for ( int x = rect.left(); x <= rect.right(); x += nCell )
		{
			if ( ( ( x - rect.left() ) / nCell + ( y - rect.top() ) / nCell ) % 2 )
				painter.fillRect( QRect( x, y, nCell, nCell ), dark );
		}
	}
	painter.restore();
}

void PaintColorOverCheckerboard( QPainter &painter, const QRect &rect, const QColor &color )
{
	if ( color.alpha() < 255 )
		PaintCheckerboard( painter, rect );
	painter.fillRect( rect, color );
}
