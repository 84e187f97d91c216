#include "tools/widgets/draggablewidgetlist.h"

#include <QDragEnterEvent>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>

#include <cstdint>
#include <cstring>

QByteArray DraggableItem_t::Encode() const
{
	QByteArray data( ENCODED_SIZE, '\0' );
	const uint64_t nOwner = uint64_t( uintptr_t( m_pOwner ) );
	const int32_t nType = m_nType;
	const int32_t nIndex = m_nIndex;
	memcpy( data.data(), &nOwner, 8 );
	memcpy( data.data() + 8, &nType, 4 );
	memcpy( data.data() + 12, &nIndex, 4 );
	return data;
}

bool DraggableItem_t::Decode( const QByteArray &data, DraggableItem_t *pOut )
{
	if ( data.size() != ENCODED_SIZE )
		return false;
	uint64_t nOwner = 0;
	int32_t nType = 0;
	int32_t nIndex = 0;
	memcpy( &nOwner, data.constData(), 8 );
	memcpy( &nType, data.constData() + 8, 4 );
	memcpy( &nIndex, data.constData() + 12, 4 );
	pOut->m_pOwner = reinterpret_cast<const void *>( uintptr_t( nOwner ) );
	pOut->m_nType = nType;
	pOut->m_nIndex = nIndex;
	return true;
}

// A line over the rows where a dragged row would land; it never takes the mouse.
class CQDraggableWidgetList::CQDropIndicator : public QWidget
{
public:
	explicit CQDropIndicator( QWidget *pParent ) : QWidget( pParent )
	{
		setAttribute( Qt::WA_TransparentForMouseEvents );
		hide();
	}

protected:
	void paintEvent( QPaintEvent * ) override
	{
		QPainter painter( this );
		QColor color = palette().color( QPalette::Highlight );
		painter.fillRect( QRect( 0, height() / 2 - 1, width(), 2 ), color );
		painter.fillRect( QRect( 0, 0, 2, height() ), color );
		painter.fillRect( QRect( width() - 2, 0, 2, height() ), color );
	}
};

CQDraggableWidgetList::CQDraggableWidgetList( QWidget *pParent ) : QScrollArea( pParent )
{
	setFrameShape( QFrame::NoFrame );
	setWidgetResizable( true );
	setHorizontalScrollBarPolicy( Qt::ScrollBarAlwaysOff );
	m_pContainer = new QWidget;
	m_pContainer->setObjectName( "DraggableWidgetListContainer" );
	m_pLayout = new QVBoxLayout( m_pContainer );
	m_pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pLayout->setSpacing( 0 );
	setWidget( m_pContainer );
	// Drags arrive at the viewport; the scroll area hands them to the handlers below.
	viewport()->setAcceptDrops( true );
	m_pIndicator = new CQDropIndicator( viewport() );
}

CQDraggableWidgetList::~CQDraggableWidgetList() = default;

void CQDraggableWidgetList::AddWidget( QWidget *pWidget )
{
	m_pLayout->addWidget( pWidget );
	// A layout shows new children only later, and hidden rows take no room: the scroll
	// range must count them at once.
	pWidget->show();
}

void CQDraggableWidgetList::AddSpacing( int nPixels )
{
	m_pLayout->addSpacing( nPixels );
}

void CQDraggableWidgetList::AddStretch( int nStretch )
{
	m_pLayout->addStretch( nStretch );
}

void CQDraggableWidgetList::Clear()
{
	while ( QLayoutItem *pItem = m_pLayout->takeAt( 0 ) )
	{
		if ( QWidget *pWidget = pItem->widget() )
		{
			pWidget->hide();
			m_Retired.append( pWidget );
		}
		delete pItem;
	}
	HideDropIndicator();
	ScheduleDeleteRetired();
}

void CQDraggableWidgetList::ScheduleDeleteRetired()
{
	if ( m_bDeleteScheduled || m_Retired.isEmpty() )
		return;
	m_bDeleteScheduled = true;
	QTimer::singleShot( 0, this, &CQDraggableWidgetList::DeleteRetired );
}

void CQDraggableWidgetList::DeleteRetired()
{
	m_bDeleteScheduled = false;
	// A running drag belongs to a row that may be among them; its end comes back here.
	if ( m_nActiveRowDrags > 0 )
		return;
	QVector<QPointer<QWidget>> retired;
	retired.swap( m_Retired );
	for ( const QPointer<QWidget> &pWidget : retired )
		delete pWidget.data();
}

void CQDraggableWidgetList::BeginRowDrag()
{
	++m_nActiveRowDrags;
}

void CQDraggableWidgetList::EndRowDrag()
{
	if ( m_nActiveRowDrags > 0 )
		--m_nActiveRowDrags;
	if ( m_nActiveRowDrags == 0 )
		ScheduleDeleteRetired();
	HideDropIndicator();
}

int CQDraggableWidgetList::GetScrollValue() const
{
	return verticalScrollBar()->value();
}

void CQDraggableWidgetList::SetScrollValue( int nValue )
{
	// Rows added just now aren't laid out yet, and the scroll range would cut the value.
	m_pLayout->activate();
	// Asking again for a resizable widget has the scroll area fit it and its range now.
	setWidgetResizable( true );
	verticalScrollBar()->setValue( nValue );
}

bool CQDraggableWidgetList::EvaluateDrag( const QMimeData *pData, const QPoint &globalPoint, DraggableItem_t *pSource, int *pDropIndex ) const
{
	if ( !m_pItems || !pData || m_MimeType.isEmpty() || !pData->hasFormat( m_MimeType ) )
		return false;
	DraggableItem_t item;
	if ( !DraggableItem_t::Decode( pData->data( m_MimeType ), &item ) )
		return false;
	const void *pOwner = m_pItems->GetDragOwner();
	if ( !pOwner || item.m_pOwner != pOwner )
		return false;
	int nIndex = -1;
	if ( !m_pItems->FindDropPosition( globalPoint, item.m_nType, &nIndex ) )
		return false;
	if ( pSource )
		*pSource = item;
	if ( pDropIndex )
		*pDropIndex = nIndex;
	return true;
}

bool CQDraggableWidgetList::TrackDrag( QDropEvent *pEvent )
{
	DraggableItem_t source;
	int nIndex = -1;
	if ( !EvaluateDrag( pEvent->mimeData(), viewport()->mapToGlobal( pEvent->pos() ), &source, &nIndex ) )
	{
		HideDropIndicator();
		pEvent->ignore();
		return false;
	}
	pEvent->acceptProposedAction();
	QWidget *pAt = nullptr;
	int nOffset = 0;
	if ( !m_pItems->GetDropIndicator( source.m_nType, nIndex, &pAt, &nOffset ) || !pAt || !viewport()->isAncestorOf( pAt ) )
	{
		HideDropIndicator();
		return true;
	}
	const QPoint topLeft = pAt->mapTo( viewport(), QPoint( 0, 0 ) );
	m_pIndicator->setGeometry( topLeft.x(), topLeft.y() + nOffset - 3, pAt->width(), 6 );
	m_pIndicator->show();
	m_pIndicator->raise();
	return true;
}

void CQDraggableWidgetList::HideDropIndicator()
{
	m_pIndicator->hide();
}

bool CQDraggableWidgetList::IsDropIndicatorShown() const
{
	return m_pIndicator->isVisible();
}

QRect CQDraggableWidgetList::GetDropIndicatorRect() const
{
	return m_pIndicator->geometry();
}

void CQDraggableWidgetList::dragEnterEvent( QDragEnterEvent *pEvent )
{
	TrackDrag( pEvent );
}

void CQDraggableWidgetList::dragMoveEvent( QDragMoveEvent *pEvent )
{
	TrackDrag( pEvent );
}

void CQDraggableWidgetList::dragLeaveEvent( QDragLeaveEvent *pEvent )
{
	HideDropIndicator();
	pEvent->accept();
}

void CQDraggableWidgetList::dropEvent( QDropEvent *pEvent )
{
	HideDropIndicator();
	DraggableItem_t source;
	int nIndex = -1;
	if ( !EvaluateDrag( pEvent->mimeData(), viewport()->mapToGlobal( pEvent->pos() ), &source, &nIndex ) )
	{
		pEvent->ignore();
		return;
	}
	pEvent->acceptProposedAction();
	// Onto its own place, or just below itself, the row stays where it is.
	if ( IsMove( source.m_nIndex, nIndex ) )
		m_pItems->MoveItem( source.m_nType, source.m_nIndex, nIndex );
}
