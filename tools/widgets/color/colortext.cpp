#include "tools/widgets/color/colortext.h"

#include <QMimeData>
#include <QStringList>

namespace
{
// Four floats after the colour model word; false unless all four read and lie in 0..1.
bool ReadFourComponents( const QStringList &fields, float *pOut )
{
	if ( fields.size() != 5 )
		return false;
	for ( int i = 0; i < 4; ++i )
	{
		bool bOk = false;
		float flValue = fields[ i + 1 ].trimmed().toFloat( &bOk );
		if ( !bOk || !( flValue >= 0.0f && flValue <= 1.0f ) )
			return false;
		pOut[ i ] = flValue;
	}
	return true;
}

bool ColorFromLine( const QString &line, QColor *pColor )
{
	const QStringList fields = line.trimmed().split( QLatin1Char( '\t' ) );
	float c[ 4 ];
	if ( fields.isEmpty() || !ReadFourComponents( fields, c ) )
		return false;
	const QString model = fields[ 0 ].trimmed();
	if ( model.compare( QLatin1String( "RGBA" ), Qt::CaseInsensitive ) == 0 )
		*pColor = QColor::fromRgbF( c[ 0 ], c[ 1 ], c[ 2 ], c[ 3 ] );
	else if ( model.compare( QLatin1String( "HSLA" ), Qt::CaseInsensitive ) == 0 )
		*pColor = QColor::fromHslF( c[ 0 ], c[ 1 ], c[ 2 ], c[ 3 ] );
	else if ( model.compare( QLatin1String( "HSVA" ), Qt::CaseInsensitive ) == 0 )
		*pColor = QColor::fromHsvF( c[ 0 ], c[ 1 ], c[ 2 ], c[ 3 ] );
	else
		return false;
	return true;
}

QString ColorLine( const QColor &color )
{
	auto f = []( qreal value ) { return QString::number( value, 'f', 7 ); };
	switch ( ColorModelOf( color ) )
	{
	case QColor::Hsl:
		return QStringLiteral( "HSLA\t%1\t%2\t%3\t%4" ).arg( f( color.hslHueF() < 0 ? 0 : color.hslHueF() ), f( color.hslSaturationF() ), f( color.lightnessF() ), f( color.alphaF() ) );
	case QColor::Hsv:
		return QStringLiteral( "HSVA\t%1\t%2\t%3\t%4" ).arg( f( color.hsvHueF() < 0 ? 0 : color.hsvHueF() ), f( color.hsvSaturationF() ), f( color.valueF() ), f( color.alphaF() ) );
	default:
	{
		QColor rgb = color.toRgb();
		return QStringLiteral( "RGBA\t%1\t%2\t%3\t%4" ).arg( f( rgb.redF() ), f( rgb.greenF() ), f( rgb.blueF() ), f( rgb.alphaF() ) );
	}
	}
}
} // namespace

QString ColorToText( const QColor &color )
{
	QColor rgb = color.toRgb();
	return QStringLiteral( "RGBA\t%1\t%2\t%3\t%4" )
		.arg( QString::number( rgb.redF(), 'g' ), QString::number( rgb.greenF(), 'g' ), QString::number( rgb.blueF(), 'g' ), QString::number( rgb.alphaF(), 'g' ) );
}

bool ColorFromText( const QString &text, QColor *pColor )
{
	const QStringList lines = text.split( QLatin1Char( '\n' ), Qt::SkipEmptyParts );
	if ( lines.isEmpty() )
		return false;
	return ColorFromLine( lines.first(), pColor );
}

QString ColorSetToText( const QVector<QColor> &colors )
{
	QStringList lines;
	for ( const QColor &color : colors )
		lines << ColorLine( color );
	return lines.join( QLatin1Char( '\n' ) );
}

QVector<QColor> ColorSetFromText( const QString &text )
{
	QVector<QColor> colors;
	for ( const QString &line : text.split( QLatin1Char( '\n' ) ) )
	{
		if ( line.trimmed().isEmpty() )
			continue;
		QColor color;
		if ( !ColorFromLine( line, &color ) )
			return {};
		colors.append( color );
	}
	return colors;
}

QVector<QColor> ColorSetFromMimeData( const QMimeData *pData )
{
	if ( !pData )
		return {};
	if ( pData->hasText() )
	{
		QVector<QColor> colors = ColorSetFromText( pData->text() );
		if ( !colors.isEmpty() )
			return colors;
	}
	if ( pData->hasFormat( QString::fromLatin1( COLOR_MIME_TYPE ) ) )
	{
		QColor color = qvariant_cast<QColor>( pData->colorData() );
		if ( color.isValid() )
			return { color };
	}
	return {};
}

void ColorSetToMimeData( const QVector<QColor> &colors, QMimeData *pData )
{
	if ( colors.isEmpty() )
		return;
	pData->setText( ColorSetToText( colors ) );
	pData->setColorData( colors.first() );
}
