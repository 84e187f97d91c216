#include "tools/toolutils2/widgets/richitemlist/richitemlistpicker.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QSplitter>
#include <QTextBrowser>
#include <QTreeWidgetItemIterator>
#include <QVBoxLayout>

#include "core/host/ihelpsystem.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/richitemlist/arrowkeywidgets.h"
#include "tools/toolutils2/widgets/richitemlist/selectionlistitemdelegate.h"

namespace
{
// The choice number of a list item; groups have none.
constexpr int CHOICE_INDEX_ROLE = Qt::UserRole + 2;

const char *const HIGHLIGHT_STYLE = "background-color:#ffd24d;color:#000000";

// The text with the hits (byte ranges of its UTF-8 form) highlighted, as HTML.
QString HighlightedHtml( const QString &text, const CUtlVector<RichItemListTextHit_t> &hits )
{
	const QByteArray bytes = text.toUtf8();
	QString html;
	int nAt = 0;
	for ( const RichItemListTextHit_t &hit : hits )
	{
		if ( hit.m_nStart < nAt || hit.m_nStart + hit.m_nLength > bytes.size() )
			continue;
		html += QString::fromUtf8( bytes.mid( nAt, hit.m_nStart - nAt ) ).toHtmlEscaped();
		html += QStringLiteral( "<span style=\"%1\">" ).arg( HIGHLIGHT_STYLE );
		html += QString::fromUtf8( bytes.mid( hit.m_nStart, hit.m_nLength ) ).toHtmlEscaped();
		html += QStringLiteral( "</span>" );
		nAt = hit.m_nStart + hit.m_nLength;
	}
	html += QString::fromUtf8( bytes.mid( nAt ) ).toHtmlEscaped();
	return html;
}

const IHelpSystem *Help()
{
	return GetHelpSystem();
}

void BuildPickerCommands( CBindTargetDescriptor<CQRichItemListPicker> &d )
{
	d.AddClickCommand( "RichItemList_Accept", []( CQRichItemListPicker *pPicker ) { pPicker->AcceptIfPicked(); } );
	d.AddClickCommand( "RichItemList_Reject", []( CQRichItemListPicker *pPicker ) { pPicker->reject(); } );
}

CBindTargetDescriptor<CQRichItemListPicker> s_PickerCommands( "RichItemListPicker", "CQRichItemListPicker", &BuildPickerCommands );
} // namespace

CQRichItemListPicker::CQRichItemListPicker( QWidget *pParent ) : QDialog( pParent )
{
	resize( 760, 460 );
	auto *pLayout = new QVBoxLayout( this );

	auto *pFilterRow = new QHBoxLayout;
	m_pFilterLabel = new QLabel( tr( "Filter name/description:" ), this );
	m_pFilter = new CQLineEditWithArrowEvents( this );
	m_pFilter->setClearButtonEnabled( true );
	m_pFilterLabel->setBuddy( m_pFilter );
	pFilterRow->addWidget( m_pFilterLabel );
	pFilterRow->addWidget( m_pFilter, 1 );
	pLayout->addLayout( pFilterRow );

	m_pSplitter = new QSplitter( Qt::Horizontal, this );
	m_pTree = new CQTreeWidgetWithArrowEvents( m_pSplitter );
	m_pTree->setColumnCount( 2 );
	m_pTree->setHeaderHidden( true );
	m_pTree->setSelectionMode( QAbstractItemView::SingleSelection );
	m_pTree->setRootIsDecorated( false );
	m_pTree->setUniformRowHeights( true );
	m_pTree->setItemDelegate( new CQSelectionListItemDelegate( m_pTree ) );
	// Names are what is read first: their column takes what they need.
	m_pTree->header()->setSectionResizeMode( 0, QHeaderView::ResizeToContents );
	m_pTree->header()->setSectionResizeMode( 1, QHeaderView::Stretch );
	m_pTree->header()->setStretchLastSection( true );
	m_pDescription = new QTextBrowser( m_pSplitter );
	m_pDescription->setOpenLinks( false );
	m_pSplitter->setStretchFactor( 0, 3 );
	m_pSplitter->setStretchFactor( 1, 2 );
	pLayout->addWidget( m_pSplitter, 1 );

	auto *pButtons = new QDialogButtonBox( QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this );
	for ( QAbstractButton *pButton : pButtons->buttons() )
	{
		// Enter is the binding's: no button may take it as well.
		if ( auto *pPush = qobject_cast<QPushButton *>( pButton ) )
		{
			pPush->setAutoDefault( false );
			pPush->setDefault( false );
		}
	}
	connect( pButtons, &QDialogButtonBox::accepted, this, &CQRichItemListPicker::AcceptIfPicked );
	connect( pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject );
	pLayout->addWidget( pButtons );

	connect( m_pFilter, &QLineEdit::textChanged, this, &CQRichItemListPicker::OnFilterChanged );
	connect( m_pFilter, &CQLineEditWithArrowEvents::ArrowUp, this, &CQRichItemListPicker::SelectPreviousChoice );
	connect( m_pFilter, &CQLineEditWithArrowEvents::ArrowDown, this, &CQRichItemListPicker::SelectNextChoice );
	connect( m_pTree, &CQTreeWidgetWithArrowEvents::ArrowUp, this, &CQRichItemListPicker::SelectPreviousChoice );
	connect( m_pTree, &CQTreeWidgetWithArrowEvents::ArrowDown, this, &CQRichItemListPicker::SelectNextChoice );
	connect( m_pTree, &QTreeWidget::currentItemChanged, this, &CQRichItemListPicker::OnCurrentItemChanged );
	connect( m_pTree, &QTreeWidget::itemSelectionChanged, this, &CQRichItemListPicker::OnCurrentItemChanged );
	connect( m_pTree, &QTreeWidget::itemDoubleClicked, this, &CQRichItemListPicker::OnItemDoubleClicked );

	CQInputBindManager::Get()->RegisterTarget( this, this );
	m_pFilter->setFocus();
}

CQRichItemListPicker::~CQRichItemListPicker()
{
	CQInputBindManager::Get()->UnregisterTarget( this );
}

const CBindTargetDescriptorBase *CQRichItemListPicker::GetBindTargetDescriptor() const
{
	return &s_PickerCommands;
}

void CQRichItemListPicker::SetScope( const char *pScope )
{
	m_Scope.Set( pScope );
	m_Filter.SetScope( pScope );
}

int CQRichItemListPicker::FindOrAddGroup( const char *pGroup )
{
	if ( !pGroup || !*pGroup )
		return -1;
	const QString name = QString::fromUtf8( pGroup );
	int nGroup = m_GroupNames.indexOf( name );
	if ( nGroup >= 0 )
		return nGroup;
	auto *pItem = new QTreeWidgetItem( m_pTree );
	pItem->setText( 0, name );
	QFont font = pItem->font( 0 );
	font.setBold( true );
	pItem->setFont( 0, font );
	pItem->setFlags( Qt::ItemIsEnabled );
	pItem->setFirstColumnSpanned( true );
	pItem->setExpanded( true );
	m_pTree->setRootIsDecorated( true );
	m_Groups.append( pItem );
	m_GroupNames.append( name );
	return m_Groups.size() - 1;
}

int CQRichItemListPicker::AddChoiceInternal( CQRichItemListPicker_Choice_Internal choice, const char *pGroup )
{
	choice.m_nGroup = FindOrAddGroup( pGroup );
	const int nChoice = m_Choices.size();
	choice.m_pItem = choice.m_nGroup >= 0 ? new QTreeWidgetItem( m_Groups[ choice.m_nGroup ] ) : new QTreeWidgetItem( m_pTree );
	choice.m_pItem->setData( 0, CHOICE_INDEX_ROLE, nChoice );
	if ( choice.m_nGroup >= 0 )
		m_Groups[ choice.m_nGroup ]->setExpanded( true );
	m_Choices.append( choice );

	RichItemListEntry_t &entry = m_Entries.Element( m_Entries.AddToTail() );
	entry.m_Name.Set( choice.m_Name.toUtf8().constData() );
	entry.m_Description.Set( choice.m_Description.toUtf8().constData() );
	entry.m_HelpKey = choice.m_HelpKey;
	entry.m_nGroup = choice.m_nGroup;
	m_Matches.AddToTail();
	RefreshItemTexts( nChoice );
	return nChoice;
}

int CQRichItemListPicker::AddChoice( const char *pName, const char *pDescription, const char *pGroup )
{
	CQRichItemListPicker_Choice_Internal choice;
	choice.m_Name = QString::fromUtf8( pName ? pName : "" );
	choice.m_Description = QString::fromUtf8( pDescription ? pDescription : "" );
	return AddChoiceInternal( choice, pGroup );
}

int CQRichItemListPicker::AddChoiceWithHelpKey( const char *pKey, const char *pGroup )
{
	CQRichItemListPicker_Choice_Internal choice;
	choice.m_HelpKey.Set( pKey );
	choice.m_bDynamicName = true;
	const IHelpSystem *pHelp = Help();
	const char *pTitle = pHelp ? pHelp->GetTitle( m_Scope.IsEmpty() ? nullptr : m_Scope.Get(), pKey ) : "";
	choice.m_Name = QString::fromUtf8( *pTitle ? pTitle : ( pKey ? pKey : "" ) );
	return AddChoiceInternal( choice, pGroup );
}

void CQRichItemListPicker::SetName( int nChoice, const char *pName )
{
	if ( nChoice < 0 || nChoice >= m_Choices.size() )
		return;
	m_Choices[ nChoice ].m_Name = QString::fromUtf8( pName ? pName : "" );
	m_Choices[ nChoice ].m_bDynamicName = false;
	m_Entries[ nChoice ].m_Name.Set( pName );
	RefreshItemTexts( nChoice );
}

void CQRichItemListPicker::SetSecondText( int nChoice, const char *pText )
{
	if ( nChoice < 0 || nChoice >= m_Choices.size() )
		return;
	m_Choices[ nChoice ].m_SecondText = QString::fromUtf8( pText ? pText : "" );
	m_Entries[ nChoice ].m_SecondText.Set( pText );
	RefreshItemTexts( nChoice );
}

void CQRichItemListPicker::SetDisabled( int nChoice, bool bDisabled )
{
	if ( nChoice < 0 || nChoice >= m_Choices.size() )
		return;
	m_Choices[ nChoice ].m_bDisabled = bDisabled;
	RefreshItemTexts( nChoice );
}

void CQRichItemListPicker::SetUserData( int nChoice, const QVariant &data )
{
	if ( nChoice >= 0 && nChoice < m_Choices.size() )
		m_Choices[ nChoice ].m_UserData = data;
}

void CQRichItemListPicker::SetIcon( int nChoice, const QIcon &icon )
{
	if ( nChoice < 0 || nChoice >= m_Choices.size() )
		return;
	m_Choices[ nChoice ].m_Icon = icon;
	m_Choices[ nChoice ].m_pItem->setIcon( 0, icon );
}

void CQRichItemListPicker::SetColor( int nChoice, const QColor &color )
{
	if ( nChoice < 0 || nChoice >= m_Choices.size() )
		return;
	m_Choices[ nChoice ].m_Color = color;
	RefreshItemTexts( nChoice );
}

int CQRichItemListPicker::GetChoiceOfItem( const QTreeWidgetItem *pItem ) const
{
	if ( !pItem )
		return -1;
	const QVariant data = pItem->data( 0, CHOICE_INDEX_ROLE );
	return data.isValid() ? data.toInt() : -1;
}

int CQRichItemListPicker::GetSelectedChoice() const
{
	const QList<QTreeWidgetItem *> selected = m_pTree->selectedItems();
	if ( selected.isEmpty() || selected.first()->isHidden() )
		return -1;
	return GetChoiceOfItem( selected.first() );
}

QVariant CQRichItemListPicker::GetSelectedUserData() const
{
	const int nChoice = GetSelectedChoice();
	return nChoice >= 0 ? m_Choices[ nChoice ].m_UserData : QVariant();
}

bool CQRichItemListPicker::IsSelectedChoiceEnabled() const
{
	const int nChoice = GetSelectedChoice();
	return nChoice >= 0 && !m_Choices[ nChoice ].m_bDisabled;
}

bool CQRichItemListPicker::IsChoiceVisible( int nChoice ) const
{
	return nChoice >= 0 && nChoice < m_Choices.size() && !m_Choices[ nChoice ].m_pItem->isHidden();
}

bool CQRichItemListPicker::ShowsDescriptionMarker( int nChoice ) const
{
	return nChoice >= 0 && nChoice < m_Choices.size() && m_Choices[ nChoice ].m_pItem->data( 0, RICH_ITEM_MARKER_ROLE ).toInt() == 1;
}

bool CQRichItemListPicker::IsGroupVisible( const char *pGroup ) const
{
	const int nGroup = m_GroupNames.indexOf( QString::fromUtf8( pGroup ? pGroup : "" ) );
	return nGroup >= 0 && !m_Groups[ nGroup ]->isHidden();
}

QVector<int> CQRichItemListPicker::GetVisibleChoices() const
{
	// The order on screen: walk the tree, groups and all.
	QVector<int> visible;
	for ( QTreeWidgetItemIterator it( m_pTree ); *it; ++it )
	{
		QTreeWidgetItem *pItem = *it;
		const int nChoice = GetChoiceOfItem( pItem );
		if ( nChoice < 0 || pItem->isHidden() || ( pItem->parent() && pItem->parent()->isHidden() ) )
			continue;
		visible.append( nChoice );
	}
	return visible;
}

void CQRichItemListPicker::RefreshDynamicNames()
{
	const IHelpSystem *pHelp = Help();
	if ( !pHelp )
		return;
	for ( int i = 0; i < m_Choices.size(); ++i )
	{
		CQRichItemListPicker_Choice_Internal &choice = m_Choices[ i ];
		if ( !choice.m_bDynamicName )
			continue;
		const char *pTitle = pHelp->GetTitle( m_Scope.IsEmpty() ? nullptr : m_Scope.Get(), choice.m_HelpKey );
		if ( !*pTitle )
			continue;
		choice.m_Name = QString::fromUtf8( pTitle );
		m_Entries[ i ].m_Name.Set( pTitle );
	}
}

void CQRichItemListPicker::RefreshItemTexts( int nChoice )
{
	const CQRichItemListPicker_Choice_Internal &choice = m_Choices[ nChoice ];
	const RichItemListMatch_t *pMatch = m_bFiltered && nChoice < m_Matches.Count() ? &m_Matches[ nChoice ] : nullptr;
	static const CUtlVector<RichItemListTextHit_t> s_NoHits;

	QString name = HighlightedHtml( choice.m_Name, pMatch ? pMatch->m_NameHits : s_NoHits );
	QColor color;
	if ( choice.m_bDisabled )
		color = QColor( Qt::gray );
	else if ( choice.m_Color.isValid() )
		color = choice.m_Color;
	if ( color.isValid() )
		name = QStringLiteral( "<span style=\"color:%1\">%2</span>" ).arg( color.name(), name );
	QString second = QStringLiteral( "<span style=\"color:#808080\">%1</span>" ).arg( HighlightedHtml( choice.m_SecondText, pMatch ? pMatch->m_SecondTextHits : s_NoHits ) );

	QTreeWidgetItem *pItem = choice.m_pItem;
	// Plain texts too, for accessibility and for sorting; the delegate draws the HTML.
	pItem->setText( 0, choice.m_Name );
	pItem->setText( 1, choice.m_SecondText );
	pItem->setData( 0, RICH_ITEM_HTML_ROLE, name );
	pItem->setData( 1, RICH_ITEM_HTML_ROLE, second );
	pItem->setData( 0, RICH_ITEM_MARKER_ROLE, pMatch && pMatch->ShowsDescriptionMarker() ? 1 : 0 );
	pItem->setToolTip( 0, choice.m_bDisabled ? tr( "%1 (can't be added)" ).arg( choice.m_Name ) : QString() );
}

void CQRichItemListPicker::ApplyOrder( const CUtlVector<int> &order )
{
	// Children of the root and of each group, each set in the new order where it changed.
	QList<QTreeWidgetItem *> parents;
	parents.append( m_pTree->invisibleRootItem() );
	for ( QTreeWidgetItem *pGroup : m_Groups )
		parents.append( pGroup );
	QTreeWidgetItem *pCurrent = m_pTree->currentItem();
	const bool bWasBlocked = m_pTree->blockSignals( true );
	for ( QTreeWidgetItem *pParent : parents )
	{
		QList<QTreeWidgetItem *> wanted;
		for ( int nChoice : order )
		{
			QTreeWidgetItem *pItem = m_Choices[ nChoice ].m_pItem;
			if ( ( pItem->parent() ? pItem->parent() : m_pTree->invisibleRootItem() ) == pParent )
				wanted.append( pItem );
		}
		bool bSame = true;
		int nChild = 0;
		for ( int i = 0; i < pParent->childCount() && bSame; ++i )
		{
			QTreeWidgetItem *pChild = pParent->child( i );
			if ( GetChoiceOfItem( pChild ) < 0 )
				continue;
			bSame = nChild < wanted.size() && wanted[ nChild ] == pChild;
			++nChild;
		}
		if ( bSame )
			continue;
		// Groups stay first among the root's children: only choices move.
		for ( QTreeWidgetItem *pItem : wanted )
			pParent->removeChild( pItem );
		int nFirstChoice = 0;
		while ( nFirstChoice < pParent->childCount() && GetChoiceOfItem( pParent->child( nFirstChoice ) ) < 0 )
			++nFirstChoice;
		pParent->insertChildren( pParent == m_pTree->invisibleRootItem() ? 0 : nFirstChoice, wanted );
	}
	for ( QTreeWidgetItem *pGroup : m_Groups )
		pGroup->setExpanded( true );
	if ( pCurrent )
	{
		m_pTree->setCurrentItem( pCurrent );
		pCurrent->setSelected( true );
	}
	m_pTree->blockSignals( bWasBlocked );
}

void CQRichItemListPicker::OnFilterChanged( const QString &text )
{
	const QByteArray filter = text.toUtf8();
	RefreshDynamicNames();
	m_Filter.Apply( filter.constData(), m_Entries, &m_Matches );
	m_bFiltered = !text.trimmed().isEmpty();
	CRichItemListFilter::GetDisplayOrder( m_Entries, m_Matches, &m_Order );
	ApplyOrder( m_Order );

	for ( int i = 0; i < m_Choices.size(); ++i )
	{
		m_Choices[ i ].m_pItem->setHidden( !m_Matches[ i ].m_bVisible );
		RefreshItemTexts( i );
	}
	for ( int nGroup = 0; nGroup < m_Groups.size(); ++nGroup )
		m_Groups[ nGroup ]->setHidden( !CRichItemListFilter::IsGroupVisible( nGroup, m_Entries, m_Matches ) );

	bool bCleared = false;
	QTreeWidgetItem *pCurrent = m_pTree->currentItem();
	if ( pCurrent && ( pCurrent->isHidden() || GetChoiceOfItem( pCurrent ) < 0 ) )
	{
		m_pTree->clearSelection();
		m_pTree->setCurrentItem( nullptr );
		bCleared = true;
	}
	const int nBest = m_bJumpToBestMatch ? CRichItemListFilter::FindBestMatch( filter.constData(), m_Order, m_Entries, m_Matches ) : -1;
	if ( nBest >= 0 )
		SetCurrentChoice( nBest );
	else if ( bCleared || ( m_bJumpToBestMatch && m_bFiltered && !HasSelection() ) )
	{
		const QVector<int> visible = GetVisibleChoices();
		if ( !visible.isEmpty() )
			SetCurrentChoice( visible.first() );
	}
	OnCurrentItemChanged();
}

void CQRichItemListPicker::SetCurrentChoice( int nChoice )
{
	if ( nChoice < 0 || nChoice >= m_Choices.size() )
		return;
	QTreeWidgetItem *pItem = m_Choices[ nChoice ].m_pItem;
	m_pTree->setCurrentItem( pItem );
	pItem->setSelected( true );
	m_pTree->scrollToItem( pItem );
}

void CQRichItemListPicker::StepChoice( int nStep )
{
	const QVector<int> visible = GetVisibleChoices();
	if ( visible.isEmpty() )
		return;
	const int nAt = visible.indexOf( GetSelectedChoice() );
	int nNext;
	if ( nAt < 0 )
		nNext = nStep > 0 ? 0 : visible.size() - 1;
	else
		nNext = qBound( 0, nAt + nStep, visible.size() - 1 );
	SetCurrentChoice( visible[ nNext ] );
}

void CQRichItemListPicker::SelectPreviousChoice()
{
	StepChoice( -1 );
}

void CQRichItemListPicker::SelectNextChoice()
{
	StepChoice( 1 );
}

QString CQRichItemListPicker::GetDescriptionText() const
{
	return m_pDescription->toPlainText();
}

void CQRichItemListPicker::OnCurrentItemChanged()
{
	const int nChoice = GetSelectedChoice();
	if ( nChoice < 0 )
	{
		m_pDescription->clear();
		return;
	}
	const CQRichItemListPicker_Choice_Internal &choice = m_Choices[ nChoice ];
	QString description = choice.m_Description;
	if ( !choice.m_HelpKey.IsEmpty() )
	{
		const IHelpSystem *pHelp = Help();
		description = QString::fromUtf8( pHelp ? pHelp->GetText( m_Scope.IsEmpty() ? nullptr : m_Scope.Get(), choice.m_HelpKey ) : "" );
	}
	QString html = QStringLiteral( "<h3>%1</h3>" ).arg( choice.m_Name.toHtmlEscaped() );
	if ( !choice.m_SecondText.isEmpty() )
		html += QStringLiteral( "<p style=\"color:#808080\">%1</p>" ).arg( choice.m_SecondText.toHtmlEscaped() );
	if ( !description.isEmpty() )
		html += QStringLiteral( "<p>%1</p>" ).arg( description.toHtmlEscaped().replace( '\n', QStringLiteral( "<br>" ) ) );
	else
		html += QStringLiteral( "<p style=\"color:#808080\">%1</p>" ).arg( tr( "No description." ) );
	m_pDescription->setHtml( html );
}

void CQRichItemListPicker::OnItemDoubleClicked( QTreeWidgetItem *pItem )
{
	if ( GetChoiceOfItem( pItem ) >= 0 )
		AcceptIfPicked();
}

void CQRichItemListPicker::AcceptIfPicked()
{
	if ( !HasSelection() )
	{
		QApplication::beep();
		return;
	}
	accept();
}

void CQRichItemListPicker::showEvent( QShowEvent *pEvent )
{
	QDialog::showEvent( pEvent );
	OnFilterChanged( m_pFilter->text() );
	// The keys go to the filter, and through it to the bindings of this dialog.
	activateWindow();
	m_pFilter->setFocus();
}

void CQRichItemListPicker::keyPressEvent( QKeyEvent *pEvent )
{
	// Enter and Esc are the bindings' (RichItemList_Accept and _Reject); the dialog must
	// not act on them a second time.
	switch ( pEvent->key() )
	{
	case Qt::Key_Return:
	case Qt::Key_Enter:
	case Qt::Key_Escape:
		pEvent->accept();
		return;
	default:
		QDialog::keyPressEvent( pEvent );
	}
}
