#include "tools/widgets/mousedragwidget.h"

#include <QMouseEvent>

CQMouseDragWidget::CQMouseDragWidget( QWidget *pParent ) : QWidget( pParent )
{
	setMouseTracking( true );
}

void CQMouseDragWidget::OnMouseClick( QMouseEvent *, Qt::MouseButtons, const QPoint & ) {}
void CQMouseDragWidget::OnMouseDragStart( QMouseEvent *, Qt::MouseButtons, const QPoint & ) {}
void CQMouseDragWidget::OnMouseDrag( QMouseEvent *, Qt::MouseButtons, const QPoint &, const QPoint & ) {}
void CQMouseDragWidget::OnMouseDragEnd( QMouseEvent *, Qt::MouseButtons, const QPoint &, const QPoint & ) {}

void CQMouseDragWidget::mousePressEvent( QMouseEvent *pEvent )
{
	m_PressPos = pEvent->pos();
	m_LastMousePos = pEvent->pos();
	m_PressButtons = pEvent->buttons();
	m_bDragging = false;
	update();
}

void CQMouseDragWidget::mouseMoveEvent( QMouseEvent *pEvent )
{
	QPoint pos = pEvent->pos();
	bool bDraggingNow = ( pEvent->buttons() & m_PressButtons ) && ( pos - m_PressPos ).manhattanLength() > m_nDragThreshold;
	QPoint previous = m_LastMousePos;
	m_LastMousePos = pos;
	// Once begun, a drag lasts until the release, even back over the press.
	if ( bDraggingNow && !m_bDragging )
	{
		m_bDragging = true;
		OnMouseDragStart( pEvent, m_PressButtons, m_PressPos );
	}
	else if ( m_bDragging )
	{
		OnMouseDrag( pEvent, m_PressButtons, pos, previous - pos );
	}
	update();
}

void CQMouseDragWidget::mouseReleaseEvent( QMouseEvent *pEvent )
{
	m_LastMousePos = pEvent->pos();
	bool bWasDragging = m_bDragging;
	m_bDragging = false;
	if ( bWasDragging )
		OnMouseDragEnd( pEvent, Qt::MouseButtons( pEvent->button() ), m_PressPos, pEvent->pos() );
	else
		OnMouseClick( pEvent, Qt::MouseButtons( pEvent->button() ), pEvent->pos() );
	m_PressButtons = Qt::NoButton;
	update();
}

void CQMouseDragWidget::leaveEvent( QEvent *pEvent )
{
	m_LastMousePos = QPoint( -1, -1 );
	QWidget::leaveEvent( pEvent );
	update();
}
