#include "tools/zol/editor/assetmaintenance/particlenavigatordelegate.h"

#include <QPainter>
#include <QPolygonF>

#include "tools/zol/editor/assetmaintenance/particledefinitionitem.h"
#include "zoldoc_lib/zolreferencenavigator.h"

namespace
{
const QColor LIGHT_GREY( 192, 192, 192 );
const QColor DARK_GREY( 96, 96, 96 );
const QColor PALE_VIOLET_RED( 219, 112, 147 );

void DrawCircle( QPainter *pPainter, qreal x, qreal y, qreal flRadius, const QColor &color )
{
	pPainter->setBrush( color );
	pPainter->drawEllipse( QPointF( x, y ), flRadius, flRadius );
}

// The line runs through the cell, or starts or ends at its middle; below a writer a second
// line beside it says the value was written on its way down.
void DrawLine( QPainter *pPainter, const QRectF &rect, const ZolReferenceCell_t &cell )
{
	if ( cell.m_bLineStart && cell.m_bLineEnd )
		return;
	const qreal x = rect.center().x();
	const qreal top = cell.m_bLineStart ? rect.center().y() : rect.top();
	const qreal bottom = cell.m_bLineEnd ? rect.center().y() : rect.bottom();
	auto line = [ & ]( qreal lineX, const QColor &color ) { pPainter->fillRect( QRectF( lineX - 1, top, 2, bottom - top ), color ); };
	if ( cell.m_nDepth < 1 )
	{
		line( x, LIGHT_GREY );
		return;
	}
	line( x, DARK_GREY );
	line( x + 10, LIGHT_GREY );
}
} // namespace

void CQParticleNavigatorDelegate::DrawArrow( QPainter *pPainter, qreal x, qreal y, int nDirection, int nHead, int nTip, const QColor &color )
{
	const qreal d = nDirection < 0 ? -1.0 : 1.0;
	QPolygonF arrow;
	arrow << QPointF( x, y - 2 ) << QPointF( x + d * nHead, y - 2 ) << QPointF( x + d * nHead, y - 5 ) << QPointF( x + d * nTip, y )
		  << QPointF( x + d * nHead, y + 5 ) << QPointF( x + d * nHead, y + 2 ) << QPointF( x, y + 2 );
	pPainter->setBrush( color );
	pPainter->drawPolygon( arrow );
}

void CQParticleNavigatorDelegate::paint( QPainter *pPainter, const QStyleOptionViewItem &option, const QModelIndex &index ) const
{
	const auto *pCell = reinterpret_cast<const ZolReferenceCell_t *>( index.data( ZOL_REFERENCE_CELL_ROLE ).value<quintptr>() );
	if ( !pCell )
	{
		QStyledItemDelegate::paint( pPainter, option, index );
		return;
	}
	pPainter->save();
	pPainter->setRenderHint( QPainter::Antialiasing );
	pPainter->setPen( Qt::NoPen );
	if ( option.state & QStyle::State_Selected )
		pPainter->fillRect( option.rect, option.palette.highlight() );
	const QRectF rect( option.rect );
	const qreal x = rect.center().x();
	const qreal y = rect.center().y();
	const qreal flReadX = x + ( pCell->m_nDepth >= 1 ? 10 : 0 );
	switch ( pCell->m_nGlyph )
	{
	case ZOL_GLYPH_OUTSIDE_WORLD:
		pPainter->fillRect( QRectF( x - 1, y, 2, rect.bottom() - y ), LIGHT_GREY );
		DrawCircle( pPainter, x, y, 4, Qt::white );
		break;
	case ZOL_GLYPH_LINE:
		DrawLine( pPainter, rect, *pCell );
		break;
	case ZOL_GLYPH_READ:
		DrawLine( pPainter, rect, *pCell );
		DrawArrow( pPainter, flReadX, y, -1, 10, 15, QColor( Qt::green ) );
		DrawCircle( pPainter, flReadX, y, 3, LIGHT_GREY );
		break;
	case ZOL_GLYPH_WRITE:
		DrawLine( pPainter, rect, *pCell );
		DrawArrow( pPainter, x - 15, y, 1, 17, 22, QColor( Qt::red ) );
		DrawCircle( pPainter, x + 10, y, 3, LIGHT_GREY );
		break;
	case ZOL_GLYPH_READ_WRITE:
		DrawLine( pPainter, rect, *pCell );
		DrawArrow( pPainter, x - 5, y, 1, 7, 12, PALE_VIOLET_RED );
		DrawArrow( pPainter, x, y, -1, 10, 15, PALE_VIOLET_RED );
		DrawCircle( pPainter, x - 4, y, 3, LIGHT_GREY );
		DrawCircle( pPainter, x + 10, y, 3, LIGHT_GREY );
		break;
	case ZOL_GLYPH_WRITE_SPECIAL:
		DrawLine( pPainter, rect, *pCell );
		DrawArrow( pPainter, x - 5, y, 1, 7, 12, PALE_VIOLET_RED );
		DrawArrow( pPainter, x - 15, y, 1, 7, 12, PALE_VIOLET_RED );
		DrawCircle( pPainter, x + 10, y, 3, LIGHT_GREY );
		break;
	default:
		break;
	}
	pPainter->restore();
}
