#include "tools/zol/editor/previewcontrols/previewcontrolsupport.h"

#include <QFile>
#include <QIcon>
#include <QWidget>

QIcon PreviewControlsIcon( const char *pPath )
{
	return QFile::exists( pPath ) ? QIcon( pPath ) : QIcon();
}

void ApplyRowHighlight( QWidget *pRow, bool bHighlighted )
{
	QPalette palette = pRow->parentWidget() ? pRow->parentWidget()->palette() : QPalette();
	if ( bHighlighted )
	{
		palette.setColor( QPalette::WindowText, Qt::gray );
		palette.setColor( QPalette::Text, Qt::gray );
		palette.setColor( QPalette::Button, Qt::gray );
	}
	pRow->setPalette( palette );
	QFont font = pRow->font();
	font.setBold( bHighlighted );
	pRow->setFont( font );
}

static ControlPointConversionFn_t &ConversionHandler()
{
	static ControlPointConversionFn_t s_fn;
	return s_fn;
}

void SetControlPointConversionHandler( ControlPointConversionFn_t fn )
{
	ConversionHandler() = std::move( fn );
}

const ControlPointConversionFn_t &GetControlPointConversionHandler()
{
	return ConversionHandler();
}
