#pragma once
// Painting shared by the colour widgets: the grey checkerboard that shows through
// transparent colours, and conversions between the kit's colours and Qt's.

#include <QColor>

#include "core/mathlib/color.h"

class QPainter;
class QRect;

// Light and dark squares of nCell pixels, clipped to the rectangle.
void PaintCheckerboard( QPainter &painter, const QRect &rect, int nCell = 4 );
// Fills the rectangle with the colour, over a checkerboard when it isn't opaque.
void PaintColorOverCheckerboard( QPainter &painter, const QRect &rect, const QColor &color );

inline QColor ToQColor( const Color &color ) { return QColor( color.r(), color.g(), color.b(), color.a() ); }
inline Color FromQColor( const QColor &color )
{
	QColor rgb = color.toRgb();
	return Color( rgb.red(), rgb.green(), rgb.blue(), rgb.alpha() );
}
