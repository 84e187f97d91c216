#include "tools/toolutils2/widgets/undo/undolistwidget.h"

#include <QHeaderView>
#include <QMouseEvent>

CQUndoListWidget::CQUndoListWidget( QWidget *pParent )
	: QTableWidget( 0, 2, pParent )
{
	horizontalHeader()->hide();
	verticalHeader()->hide();
	setShowGrid( false );
	verticalHeader()->setDefaultSectionSize( 16 );
	verticalHeader()->setMinimumSectionSize( 16 );
	setColumnWidth( 0, 12 );
	horizontalHeader()->setStretchLastSection( true );
	setSelectionMode( QAbstractItemView::NoSelection );
	setEditTriggers( QAbstractItemView::NoEditTriggers );
	setCursor( Qt::PointingHandCursor );
}

void CQUndoListWidget::mousePressEvent( QMouseEvent *pEvent )
{
	QTableWidget::mousePressEvent( pEvent );
	int nRow = rowAt( pEvent->pos().y() );
	if ( nRow >= 0 )
		emit RowClicked( nRow );
}

void CQUndoListWidget::mouseDoubleClickEvent( QMouseEvent *pEvent )
{
	QTableWidget::mouseDoubleClickEvent( pEvent );
	int nRow = rowAt( pEvent->pos().y() );
	if ( nRow >= 0 )
		emit RowDoubleClicked( nRow );
}
