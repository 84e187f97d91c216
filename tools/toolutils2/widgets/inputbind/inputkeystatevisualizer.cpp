#include "tools/toolutils2/widgets/inputbind/inputkeystatevisualizer.h"

#include <QPainter>
#include <algorithm>

#include "tools/toolutils2/inputbind/inputbindengine.h"

CQInputKeyStateVisualizer::CQInputKeyStateVisualizer( const CInputBindEngine *pEngine, QWidget *pParent ) : QWidget( pParent ), m_pEngine( pEngine )
{
	QSizePolicy policy( QSizePolicy::Preferred, QSizePolicy::Preferred );
	policy.setHeightForWidth( true );
	setSizePolicy( policy );
	QFont font = this->font();
	font.setPointSizeF( font.pointSizeF() * 0.85 );
	setFont( font );
}

QStringList CQInputKeyStateVisualizer::GetDownCodes() const
{
	QStringList down;
	for ( InputCode_t nCode = 0; m_pEngine && nCode < INPUT_CODE_COUNT; ++nCode )
	{
		if ( m_pEngine->IsKeyDown( nCode ) )
			down.append( QString::fromUtf8( InputCodeName( nCode ) ) );
	}
	return down;
}

int CQInputKeyStateVisualizer::CellWidth() const
{
	// Most names fit; the few long ones (double clicks) are shortened with an ellipsis.
	return fontMetrics().horizontalAdvance( QStringLiteral( "Backspace" ) ) + 8;
}

int CQInputKeyStateVisualizer::CellHeight() const
{
	return fontMetrics().height() + 2;
}

int CQInputKeyStateVisualizer::ColumnCount( int nWidth ) const
{
	return std::max( 1, nWidth / CellWidth() );
}

QSize CQInputKeyStateVisualizer::sizeHint() const
{
	const int nWidth = CellWidth() * 8;
	return QSize( nWidth, heightForWidth( nWidth ) );
}

int CQInputKeyStateVisualizer::heightForWidth( int nWidth ) const
{
	const int nColumns = ColumnCount( nWidth );
	return ( ( int( INPUT_CODE_COUNT ) + nColumns - 1 ) / nColumns ) * CellHeight();
}

void CQInputKeyStateVisualizer::paintEvent( QPaintEvent * )
{
	QPainter painter( this );
	const int nColumns = ColumnCount( width() );
	const int nCellWidth = width() / nColumns;
	const int nCellHeight = CellHeight();
	const QPalette &pal = palette();
	for ( InputCode_t nCode = 0; nCode < INPUT_CODE_COUNT; ++nCode )
	{
		const int nIndex = int( nCode );
		const QRect cell( ( nIndex % nColumns ) * nCellWidth, ( nIndex / nColumns ) * nCellHeight, nCellWidth - 1, nCellHeight - 1 );
		const bool bDown = m_pEngine && m_pEngine->IsKeyDown( nCode );
		painter.fillRect( cell, bDown ? pal.color( QPalette::Highlight ) : pal.color( QPalette::Base ) );
		painter.setPen( pal.color( QPalette::Mid ) );
		painter.drawRect( cell );
		painter.setPen( bDown ? pal.color( QPalette::HighlightedText ) : pal.color( QPalette::Text ) );
		const QString strName = painter.fontMetrics().elidedText( QString::fromUtf8( InputCodeName( nCode ) ), Qt::ElideRight, cell.width() - 4 );
		painter.drawText( cell, Qt::AlignCenter, strName );
	}
}
