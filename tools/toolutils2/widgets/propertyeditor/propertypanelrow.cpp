#include "tools/toolutils2/widgets/propertyeditor/propertypanelrow.h"

#include <algorithm>

#include <QContextMenuEvent>
#include <QFontMetrics>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QToolButton>

namespace
{
constexpr int INDENT_PER_DEPTH = 12;
constexpr int EXPANDER_SIZE = 14;
constexpr int BUTTON_SIZE = 18;
} // namespace

QString PropertyPanelRow_t::GetStructureKey() const
{
	QString key = QStringLiteral( "%1|%2|%3|%4|%5|%6|%7|%8|%9" )
					  .arg( int( m_eKind ) )
					  .arg( m_Key )
					  .arg( m_Info.m_nType )
					  .arg( QString::fromUtf8( m_Info.m_EditorSpec.Get() ) )
					  .arg( m_Info.m_bReadOnly )
					  .arg( m_nArrayCount )
					  .arg( m_nKV3Type * 2 + ( m_bKV3Curve ? 1 : 0 ) )
					  .arg( m_Info.m_nHint )
					  .arg( int( m_Children.size() ) );
	// The range decides the editor's form; the addresses decide what it writes.
	key += QStringLiteral( "|%1:%2" ).arg( m_Info.m_nRangeMin ).arg( m_Info.m_nRangeMax );
	for ( const PropEdSpecificAttr_t &target : m_Targets )
		key += QStringLiteral( "|%1:%2" ).arg( quintptr( target.m_Property.m_hTable.m_pInstance ) ).arg( quintptr( target.m_Property.m_pAttr ) );
	return key;
}

CQPropertyRowWidget::CQPropertyRowWidget( PropertyPanelRow_t *pRow, QWidget *pParent ) : QWidget( pParent ), m_pRow( pRow )
{
	m_pLayout = new QHBoxLayout( this );
	m_pLayout->setContentsMargins( 2, 1, 2, 1 );
	m_pLayout->setSpacing( 4 );

	m_pLabelArea = new QWidget( this );
	QHBoxLayout *pLabelLayout = new QHBoxLayout( m_pLabelArea );
	pLabelLayout->setContentsMargins( pRow->m_nDepth * INDENT_PER_DEPTH, 0, 0, 0 );
	pLabelLayout->setSpacing( 2 );
	m_pExpander = new QToolButton( m_pLabelArea );
	m_pExpander->setObjectName( QStringLiteral( "Expander" ) );
	m_pExpander->setAutoRaise( true );
	m_pExpander->setFixedSize( EXPANDER_SIZE, EXPANDER_SIZE );
	m_pExpander->setFocusPolicy( Qt::NoFocus );
	m_pExpander->setVisible( pRow->HasChildren() );
	connect( m_pExpander, &QToolButton::clicked, this, [ this ]() {
		SetExpanded( !m_bExpanded );
		emit ExpandToggled( m_bExpanded );
	} );
	pLabelLayout->addWidget( m_pExpander );
	if ( !pRow->HasChildren() )
		pLabelLayout->addSpacing( EXPANDER_SIZE );
	m_pLabel = new QLabel( m_pLabelArea );
	m_pLabel->setObjectName( QStringLiteral( "Label" ) );
	m_pLabel->setTextFormat( Qt::RichText );
	pLabelLayout->addWidget( m_pLabel, 1 );
	m_pLayout->addWidget( m_pLabelArea );

	m_pButtons = new QHBoxLayout();
	m_pButtons->setContentsMargins( 0, 0, 0, 0 );
	m_pButtons->setSpacing( 1 );
	if ( pRow->m_eKind == PropertyPanelRow_t::KIND_GROUP )
	{
		// A heading takes the whole width and a shade of its own.
		setAutoFillBackground( true );
		QPalette shade = palette();
		shade.setColor( QPalette::Window, shade.color( QPalette::Window ).darker( 115 ) );
		setPalette( shade );
		m_pLayout->setStretchFactor( m_pLabelArea, 1 );
	}
	else
	{
		m_pLayout->addStretch( 0 );
	}
	m_pLayout->addLayout( m_pButtons );
	SetExpanded( true );
	UpdateLabel();
}

void CQPropertyRowWidget::SetLabelWidth( int nWidth )
{
	if ( m_pRow->m_eKind == PropertyPanelRow_t::KIND_GROUP || nWidth == m_nLabelWidth )
		return;
	m_pLabelArea->setFixedWidth( nWidth );
	m_nLabelWidth = nWidth;
	UpdateLabel();
}

int CQPropertyRowWidget::GetLabelHint() const
{
	return m_pRow->m_nDepth * INDENT_PER_DEPTH + EXPANDER_SIZE + 2 + m_nFullLabelHint;
}

void CQPropertyRowWidget::UpdateLabel()
{
	const ZolPropertyRowInfo &info = m_pRow->m_Info;
	const bool bBold = m_pRow->m_eKind == PropertyPanelRow_t::KIND_GROUP || info.m_bDiffersFromDefault;
	auto fnMarkUp = [ & ]( const QString &label ) {
		QString text = label.toHtmlEscaped();
		if ( bBold )
			text = QStringLiteral( "<b>%1</b>" ).arg( text );
		if ( info.m_RowColor[ 3 ] != 0 )
			text = QStringLiteral( "<span style=\"color:rgb(%1,%2,%3)\">%4</span>" ).arg( info.m_RowColor[ 0 ] ).arg( info.m_RowColor[ 1 ] ).arg( info.m_RowColor[ 2 ] ).arg( text );
		if ( info.m_bRequiredAndEmpty )
			text += QStringLiteral( " <span style=\"color:red\">*</span>" );
		return text;
	};
	QString text = fnMarkUp( m_pRow->m_Label );
	if ( m_pLabel->text() != text )
		m_pLabel->setText( text );
	m_nFullLabelHint = m_pLabel->sizeHint().width();
	// A label longer than its column ends in "..." (the whole of it in the tool tip) rather
	// than being cut off mid-letter.
	const int nRoom = m_nLabelWidth - ( m_pRow->m_nDepth * INDENT_PER_DEPTH + EXPANDER_SIZE + 2 );
	QString toolTip;
	if ( m_nLabelWidth >= 0 && m_nFullLabelHint > nRoom )
	{
		QFont font = m_pLabel->font();
		font.setBold( bBold );
		const QFontMetrics metrics( font );
		const int nMarks = m_nFullLabelHint - metrics.horizontalAdvance( m_pRow->m_Label );
		m_pLabel->setText( fnMarkUp( metrics.elidedText( m_pRow->m_Label, Qt::ElideRight, std::max( nRoom - nMarks, 0 ) ) ) );
		toolTip = m_pRow->m_Label;
	}
	m_pLabel->setToolTip( toolTip );
	m_pLabel->setEnabled( !info.m_bReadOnly || m_pRow->m_eKind == PropertyPanelRow_t::KIND_GROUP );
}

void CQPropertyRowWidget::SetEditor( QWidget *pEditor )
{
	if ( m_pEditor == pEditor )
		return;
	if ( m_pEditor )
		m_pLayout->removeWidget( m_pEditor );
	m_pEditor = pEditor;
	if ( !pEditor )
		return;
	pEditor->setParent( this );
	// The editor takes the room between the label and the buttons.
	int nStretch = m_pLayout->indexOf( m_pButtons );
	QLayoutItem *pSpacer = m_pLayout->itemAt( nStretch - 1 );
	if ( pSpacer && pSpacer->spacerItem() )
	{
		m_pLayout->removeItem( pSpacer );
		delete pSpacer;
		nStretch = m_pLayout->indexOf( m_pButtons );
	}
	m_pLayout->insertWidget( nStretch, pEditor, 1 );
	pEditor->show();
}

void CQPropertyRowWidget::SetExpanded( bool bExpanded )
{
	m_bExpanded = bExpanded;
	m_pExpander->setArrowType( bExpanded ? Qt::DownArrow : Qt::RightArrow );
}

void CQPropertyRowWidget::ClearButtons()
{
	while ( QLayoutItem *pItem = m_pButtons->takeAt( 0 ) )
	{
		if ( QWidget *pWidget = pItem->widget() )
		{
			pWidget->hide();
			pWidget->deleteLater();
		}
		delete pItem;
	}
}

QToolButton *CQPropertyRowWidget::AddButton( const QString &icon, const QString &fallbackText, const QString &toolTip, const QString &objectName )
{
	QToolButton *pButton = new QToolButton( this );
	pButton->setObjectName( objectName );
	pButton->setAutoRaise( true );
	pButton->setFocusPolicy( Qt::NoFocus );
	pButton->setToolTip( toolTip );
	QIcon image( icon );
	if ( !icon.isEmpty() && !image.pixmap( 16, 16 ).isNull() )
	{
		pButton->setIcon( image );
		pButton->setFixedSize( BUTTON_SIZE, BUTTON_SIZE );
	}
	else
	{
		pButton->setText( fallbackText );
	}
	m_pButtons->addWidget( pButton );
	return pButton;
}

void CQPropertyRowWidget::AddMark( const QString &icon, const QString &toolTip )
{
	QLabel *pMark = new QLabel( this );
	pMark->setObjectName( QStringLiteral( "Mark" ) );
	pMark->setToolTip( toolTip );
	QPixmap image = QIcon( icon ).pixmap( 16, 16 );
	if ( image.isNull() )
		pMark->setText( QStringLiteral( "!" ) );
	else
		pMark->setPixmap( image );
	m_pButtons->addWidget( pMark );
}

void CQPropertyRowWidget::contextMenuEvent( QContextMenuEvent *pEvent )
{
	emit ContextMenuRequested( pEvent->globalPos() );
	pEvent->accept();
}

void CQPropertyRowWidget::mouseDoubleClickEvent( QMouseEvent *pEvent )
{
	if ( m_pRow->HasChildren() )
	{
		SetExpanded( !m_bExpanded );
		emit ExpandToggled( m_bExpanded );
	}
	QWidget::mouseDoubleClickEvent( pEvent );
}
