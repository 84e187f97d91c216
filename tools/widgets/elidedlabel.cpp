#include "tools/widgets/elidedlabel.h"

#include <QPainter>

CQElidedLabel::CQElidedLabel( QWidget *pParent ) : QFrame( pParent )
{
	setSizePolicy( QSizePolicy::Expanding, QSizePolicy::Preferred );
}

void CQElidedLabel::SetText( const QString &text, int nKeep, int nKeepTail )
{
	if ( text == m_Text && nKeep == m_nKeep && nKeepTail == m_nKeepTail )
		return;
	m_Text = text;
	m_nKeep = qBound( 0, nKeep, text.size() );
	m_nKeepTail = qBound( 0, nKeepTail, text.size() - m_nKeep );
	UpdateToolTip();
	updateGeometry();
	update();
}

void CQElidedLabel::SetElideMode( Qt::TextElideMode eMode )
{
	m_eElideMode = eMode;
	UpdateToolTip();
	update();
}

QString CQElidedLabel::GetShownText() const
{
	const QFontMetrics metrics = fontMetrics();
	const int nWidth = contentsRect().width();
	if ( metrics.horizontalAdvance( m_Text ) <= nWidth )
		return m_Text;
	const QString kept = m_Text.left( m_nKeep );
	if ( m_nKeepTail <= 0 )
		return kept + metrics.elidedText( m_Text.mid( m_nKeep ), m_eElideMode, qMax( 0, nWidth - metrics.horizontalAdvance( kept ) ) );
	// The middle goes first, then the kept words; the tail is cut last, at its end.
	const QString tail = m_Text.right( m_nKeepTail );
	const QString middle = m_Text.mid( m_nKeep, m_Text.size() - m_nKeep - m_nKeepTail );
	const QString dots = QStringLiteral( "\u2026" );
	const int nTail = metrics.horizontalAdvance( tail );
	const int nRoomForMiddle = nWidth - metrics.horizontalAdvance( kept ) - nTail;
	if ( nRoomForMiddle >= metrics.horizontalAdvance( dots ) )
		return kept + metrics.elidedText( middle, m_eElideMode, nRoomForMiddle ) + tail;
	if ( nWidth >= nTail + metrics.horizontalAdvance( dots ) )
		return dots + tail;
	return metrics.elidedText( tail, Qt::ElideRight, nWidth );
}

QSize CQElidedLabel::sizeHint() const
{
	QFontMetrics metrics = fontMetrics();
	QMargins margins = contentsMargins();
	return QSize( metrics.horizontalAdvance( m_Text ) + margins.left() + margins.right(), metrics.height() + margins.top() + margins.bottom() );
}

QSize CQElidedLabel::minimumSizeHint() const
{
	QSize hint = sizeHint();
	return QSize( 0, hint.height() );
}

void CQElidedLabel::paintEvent( QPaintEvent *pEvent )
{
	QFrame::paintEvent( pEvent );
	QPainter painter( this );
	painter.setPen( palette().color( foregroundRole() ) );
	painter.drawText( contentsRect(), Qt::AlignLeft | Qt::AlignVCenter, GetShownText() );
}

void CQElidedLabel::resizeEvent( QResizeEvent *pEvent )
{
	QFrame::resizeEvent( pEvent );
	UpdateToolTip();
}

void CQElidedLabel::UpdateToolTip()
{
	setToolTip( GetShownText() == m_Text ? QString() : m_Text );
}
