#include "tools/zol/editor/functionlist/writtenattributeslabel.h"

#include <QFontMetrics>

namespace
{
QString Part( const QString &name, bool bConflict )
{
	const QString escaped = name.toHtmlEscaped();
	return bConflict ? QStringLiteral( "<font color=\"yellow\">%1</font>" ).arg( escaped ) : escaped;
}
} // namespace

CQWrittenAttributesLabel::CQWrittenAttributesLabel( QWidget *pParent ) : QLabel( pParent )
{
	setTextFormat( Qt::RichText );
	setAlignment( Qt::AlignRight | Qt::AlignVCenter );
	// What the name and value leave: nothing is asked for, all that is free is taken.
	setSizePolicy( QSizePolicy::Expanding, QSizePolicy::Preferred );
}

void CQWrittenAttributesLabel::SetAttributes( const QStringList &names, const QList<bool> &conflicts )
{
	m_Names = names;
	m_Conflicts = conflicts;
	QStringList parts;
	QStringList plain;
	m_bConflicts = false;
	for ( int i = 0; i < names.size(); ++i )
	{
		const bool bConflict = i < conflicts.size() && conflicts[ i ];
		m_bConflicts = m_bConflicts || bConflict;
		parts.append( Part( names[ i ], bConflict ) );
		plain.append( names[ i ].toHtmlEscaped() );
	}
	m_FullText = parts.join( QStringLiteral( "; " ) );
	QString toolTip;
	if ( m_bConflicts )
		toolTip = tr( "Other functions write to the same attribute(s)" );
	else if ( !names.isEmpty() )
		toolTip = tr( "Writes: %1" ).arg( plain.join( QStringLiteral( "; " ) ) );
	setToolTip( toolTip );
	updateGeometry();
	Fit();
}

QSize CQWrittenAttributesLabel::minimumSizeHint() const
{
	return QSize( 0, fontMetrics().height() );
}

QSize CQWrittenAttributesLabel::sizeHint() const
{
	return QSize( 0, fontMetrics().height() );
}

void CQWrittenAttributesLabel::resizeEvent( QResizeEvent *pEvent )
{
	QLabel::resizeEvent( pEvent );
	Fit();
}

void CQWrittenAttributesLabel::Fit()
{
	// As many whole attributes as fit, then "...".
	const QFontMetrics metrics = fontMetrics();
	const int nWidth = contentsRect().width();
	QString plain;
	QStringList parts;
	for ( int i = 0; i < m_Names.size(); ++i )
	{
		const QString next = plain.isEmpty() ? m_Names[ i ] : plain + QStringLiteral( "; " ) + m_Names[ i ];
		const bool bLast = i + 1 == m_Names.size();
		const int nNeeded = metrics.horizontalAdvance( bLast ? next : next + QStringLiteral( "; ..." ) );
		if ( nNeeded > nWidth && !parts.isEmpty() )
		{
			parts.append( QStringLiteral( "..." ) );
			break;
		}
		if ( nNeeded > nWidth )
		{
			parts.append( QStringLiteral( "..." ) );
			break;
		}
		plain = next;
		parts.append( Part( m_Names[ i ], i < m_Conflicts.size() && m_Conflicts[ i ] ) );
	}
	setText( parts.join( QStringLiteral( "; " ) ) );
}
