#include "tools/zol/editor/assetmaintenance/particledefinitionitem.h"

#include <QFont>

CQParticleDefinitionItem::CQParticleDefinitionItem( const ZolReferenceRow_t &row, const std::vector<CUtlString> &keys ) : m_pRow( &row )
{
	setText( 0, QString::fromUtf8( row.m_Name.Get() ) );
	QFont font = this->font( 0 );
	font.setBold( row.m_bOpen );
	font.setItalic( row.m_bViaModifier );
	font.setStrikeOut( !row.m_bEnabled );
	setFont( 0, font );
	setForeground( 0, TextColor() );
	if ( row.m_pAsset )
		setToolTip( 0, QString::fromUtf8( row.m_Name.Get() ) );
	for ( size_t i = 0; i < keys.size(); ++i )
	{
		const ZolReferenceCell_t *pCell = row.FindCell( keys[ i ].Get() );
		// A cell without a glyph is an empty cell: the plain delegate draws it.
		if ( pCell && pCell->m_nGlyph != ZOL_GLYPH_NONE )
			setData( int( i ) + 1, ZOL_REFERENCE_CELL_ROLE, QVariant::fromValue( reinterpret_cast<quintptr>( pCell ) ) );
	}
}

const ZolReferenceCell_t *CQParticleDefinitionItem::GetCell( int nColumn ) const
{
	return reinterpret_cast<const ZolReferenceCell_t *>( data( nColumn, ZOL_REFERENCE_CELL_ROLE ).value<quintptr>() );
}

void CQParticleDefinitionItem::SetHighlighted( bool bHighlighted )
{
	m_bHighlighted = bHighlighted;
	if ( !m_Twins.empty() )
		setForeground( 0, bHighlighted ? HighlightColor() : TextColor() );
}

const QColor &CQParticleDefinitionItem::HighlightColor()
{
	static const QColor s_Color( 219, 112, 147 );
	return s_Color;
}

const QColor &CQParticleDefinitionItem::TextColor()
{
	static const QColor s_Color( 192, 192, 192 );
	return s_Color;
}
