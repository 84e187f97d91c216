#include "tools/widgets/draghandlewidget.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include "tools/widgets/draggablewidgetlist.h"

CQDragHandleWidget::CQDragHandleWidget( IDraggableTargetItem *pItem, QWidget *pParent )
	: QWidget( pParent ), m_pItem( pItem ), m_DragPixmap( "game:tools/images/propertyeditor/array_item_drag.png" )
{
	setFixedSize( 16, 16 );
	setCursor( Qt::OpenHandCursor );
	setAttribute( Qt::WA_Hover );
	setToolTip( tr( "Drag to move" ) );
}

void CQDragHandleWidget::mousePressEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() != Qt::LeftButton )
	{
		QWidget::mousePressEvent( pEvent );
		return;
	}
	m_bPressed = true;
	m_bDragStarted = false;
	m_PressPos = pEvent->pos();
	setCursor( Qt::ClosedHandCursor );
	if ( m_pItem )
		m_pItem->OnDragPress();
	pEvent->accept();
}

void CQDragHandleWidget::mouseMoveEvent( QMouseEvent *pEvent )
{
	if ( !m_bPressed || m_bDragStarted || !( pEvent->buttons() & Qt::LeftButton ) )
	{
		QWidget::mouseMoveEvent( pEvent );
		return;
	}
	if ( ( pEvent->pos() - m_PressPos ).manhattanLength() > QApplication::startDragDistance() )
	{
		m_bDragStarted = true;
		StartDrag();
	}
}

void CQDragHandleWidget::mouseReleaseEvent( QMouseEvent *pEvent )
{
	if ( pEvent->button() == Qt::LeftButton && m_bPressed )
	{
		m_bPressed = false;
		setCursor( Qt::OpenHandCursor );
		if ( m_pItem )
			m_pItem->OnDragRelease();
	}
	QWidget::mouseReleaseEvent( pEvent );
}

void CQDragHandleWidget::StartDrag()
{
	setCursor( Qt::OpenHandCursor );
	auto *pData = new QMimeData;
	// An item with nothing to drag: the press ends with the button's release.
	if ( !m_pItem || !m_pItem->FillMimeData( pData ) )
	{
		delete pData;
		return;
	}
	// The drop may rebuild the list that holds this row; the list keeps cleared rows
	// alive until the drag is over, and this handle checks that it still exists.
	QPointer<CQDraggableWidgetList> pList;
	for ( QWidget *pAncestor = parentWidget(); pAncestor && !pList; pAncestor = pAncestor->parentWidget() )
		pList = qobject_cast<CQDraggableWidgetList *>( pAncestor );
	if ( pList )
		pList->BeginRowDrag();
	QPointer<CQDragHandleWidget> pSelf( this );
	auto *pDrag = new QDrag( this );
	pDrag->setMimeData( pData );
	if ( !m_DragPixmap.isNull() )
	{
		pDrag->setPixmap( m_DragPixmap );
		pDrag->setHotSpot( QPoint( m_DragPixmap.width() / 2, m_DragPixmap.height() / 2 ) );
	}
	pDrag->exec( Qt::CopyAction | Qt::MoveAction, Qt::MoveAction );
	if ( pList )
		pList->EndRowDrag();
	// The drag took the button's release: the press ends here.
	if ( pSelf && m_bPressed )
	{
		m_bPressed = false;
		if ( m_pItem )
			m_pItem->OnDragRelease();
	}
}

void CQDragHandleWidget::paintEvent( QPaintEvent * )
{
	// Two columns of three dots: the usual sign of something to grab.
	QPainter painter( this );
	painter.setRenderHint( QPainter::Antialiasing );
	QColor color = palette().color( isEnabled() ? QPalette::Active : QPalette::Disabled, QPalette::WindowText );
	color.setAlpha( underMouse() || m_bPressed ? 230 : 140 );
	painter.setPen( Qt::NoPen );
	painter.setBrush( color );
	for ( int nColumn = 0; nColumn < 2; ++nColumn )
	{
		for ( int nRow = 0; nRow < 3; ++nRow )
			painter.drawEllipse( QPointF( 5.5 + nColumn * 5.0, 3.5 + nRow * 4.5 ), 1.4, 1.4 );
	}
}
