#include "tools/widgets/elidedcheckbox.h"

#include <QStyleOptionButton>
#include <QStylePainter>

CQElidedCheckBox::CQElidedCheckBox( const QString &text, QWidget *pParent ) : QCheckBox( text, pParent )
{
}

int CQElidedCheckBox::GetTextRoom() const
{
	QStyleOptionButton option;
	initStyleOption( &option );
	return style()->subElementRect( QStyle::SE_CheckBoxContents, &option, this ).width();
}

QString CQElidedCheckBox::GetShownText() const
{
	return fontMetrics().elidedText( text(), Qt::ElideRight, GetTextRoom() );
}

QSize CQElidedCheckBox::minimumSizeHint() const
{
	QStyleOptionButton option;
	initStyleOption( &option );
	const int nIndicator = style()->pixelMetric( QStyle::PM_IndicatorWidth, &option, this );
	return QSize( nIndicator + style()->pixelMetric( QStyle::PM_CheckBoxLabelSpacing, &option, this ), QCheckBox::minimumSizeHint().height() );
}

void CQElidedCheckBox::paintEvent( QPaintEvent * )
{
	QStylePainter painter( this );
	QStyleOptionButton option;
	initStyleOption( &option );
	option.text = GetShownText();
	painter.drawControl( QStyle::CE_CheckBox, option );
}

void CQElidedCheckBox::resizeEvent( QResizeEvent *pEvent )
{
	QCheckBox::resizeEvent( pEvent );
	setToolTip( GetShownText() == text() ? QString() : text() );
}
