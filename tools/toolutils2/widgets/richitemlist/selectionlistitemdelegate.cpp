#include "tools/toolutils2/widgets/richitemlist/selectionlistitemdelegate.h"

#include <QAbstractTextDocumentLayout>
#include <QApplication>
#include <QPainter>
#include <QTextDocument>

static constexpr int MARKER_SIZE = 14;

CQSelectionListItemDelegate::CQSelectionListItemDelegate( QObject *pParent )
	: QStyledItemDelegate( pParent ), m_MarkerIcon( "game:tools/images/common/filter_match_in_text.png" )
{
}

void CQSelectionListItemDelegate::paint( QPainter *pPainter, const QStyleOptionViewItem &option, const QModelIndex &index ) const
{
	const QVariant html = index.data( RICH_ITEM_HTML_ROLE );
	if ( !html.isValid() )
	{
		QStyledItemDelegate::paint( pPainter, option, index );
		return;
	}
	QStyleOptionViewItem opt = option;
	initStyleOption( &opt, index );
	const QString htmlText = html.toString();
	opt.text.clear();
	QStyle *pStyle = opt.widget ? opt.widget->style() : QApplication::style();
	pStyle->drawControl( QStyle::CE_ItemViewItem, &opt, pPainter, opt.widget );

	QRect textRect = pStyle->subElementRect( QStyle::SE_ItemViewItemText, &opt, opt.widget );
	const bool bMarker = index.data( RICH_ITEM_MARKER_ROLE ).toInt() == 1;
	if ( bMarker )
	{
		QRect markerRect( textRect.right() - MARKER_SIZE - 2, textRect.center().y() - MARKER_SIZE / 2, MARKER_SIZE, MARKER_SIZE );
		m_MarkerIcon.paint( pPainter, markerRect );
		textRect.setRight( markerRect.left() - 2 );
	}

	QTextDocument document;
	document.setDefaultFont( opt.font );
	document.setDocumentMargin( 0 );
	document.setHtml( htmlText );
	pPainter->save();
	pPainter->translate( textRect.left(), textRect.top() + ( textRect.height() - document.size().height() ) / 2 );
	pPainter->setClipRect( QRect( 0, 0, textRect.width(), textRect.height() ) );
	QAbstractTextDocumentLayout::PaintContext context;
	const bool bSelected = opt.state & QStyle::State_Selected;
	context.palette.setColor( QPalette::Text, opt.palette.color( bSelected ? QPalette::HighlightedText : QPalette::Text ) );
	document.documentLayout()->draw( pPainter, context );
	pPainter->restore();
}

QSize CQSelectionListItemDelegate::sizeHint( const QStyleOptionViewItem &option, const QModelIndex &index ) const
{
	// The plain text measures as the rich one does; the marker needs room of its own.
	QSize size = QStyledItemDelegate::sizeHint( option, index );
	if ( index.data( RICH_ITEM_HTML_ROLE ).isValid() )
		size.setWidth( size.width() + MARKER_SIZE + 4 );
	return size;
}
