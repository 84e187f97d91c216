#include "tools/widgets/elidedcheckbox.h"

#include <QStyleOptionButton>
#include <QStylePainter>

CQElidedCheckBox::CQElidedCheckBox( const QString &text, QWidget *pParent ) : QCheckBox( text, pParent )
{
	// A check box never gives up width below its text; this one may.
	setSizePolicy( QSizePolicy::Preferred, sizePolicy().verticalPolicy() );
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

void CQElidedCheckBox::SetElides( bool bElides )
{
	if ( bElides == m_bElides )
		return;
	m_bElides = bElides;
	updateGeometry();
}

QSize CQElidedCheckBox::minimumSizeHint() const
{
	if ( !m_bElides )
		return QCheckBox::minimumSizeHint();
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
