#pragma once
// Colours as text, as the colour tools exchange them through the clipboard and drags.
//
// One colour, as the colour grids copy it:   "RGBA\t<r>\t<g>\t<b>\t<a>"  (floats 0..1, 'g')
// A colour set, as swatches exchange it: one line per colour, "RGBA", "HSLA" or "HSVA"
// (the colour's own model), then four floats with 7 decimals, tab separated.

#include <QColor>
#include <QString>
#include <QVector>

class QMimeData;

// The MIME type of one colour (QMimeData's colour data).
inline constexpr const char *COLOR_MIME_TYPE = "application/x-color";

// The model a colour holds its components in (RGB, HSV, HSL, ...), as Qt keeps it.
inline QColor::Spec ColorModelOf( const QColor &color ) { return color.spec(); }

QString ColorToText( const QColor &color );
// One colour from the text of ColorToText or from the first line of a colour set;
// false (and *pColor untouched) when it doesn't read.
bool ColorFromText( const QString &text, QColor *pColor );

QString ColorSetToText( const QVector<QColor> &colors );
// Every line must read, else the set is empty. Blank lines are skipped.
QVector<QColor> ColorSetFromText( const QString &text );

// What a clipboard or drag holds: a colour set from the text, else one colour from the
// colour data; empty when neither reads.
QVector<QColor> ColorSetFromMimeData( const QMimeData *pData );
// Fills mime data with a set: its text, and the first colour as colour data.
void ColorSetToMimeData( const QVector<QColor> &colors, QMimeData *pData );
