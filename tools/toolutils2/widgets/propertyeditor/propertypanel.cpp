#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMenu>
#include <QScrollArea>
#include <QScrollBar>
#include <QTimer>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

#include "core/host/ihelpsystem.h"
#include "core/host/ipropertyeditorsystem.h"
#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/propertyeditor/propertyattributeeditorfactory.h"
#include "tools/toolutils2/toolattr_propertydomain/ipropertyeditdomain.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditorcurve.h"
#include "tools/toolutils2/widgets/propertyeditor/attributeeditordomainagnostic.h"
#include "tools/toolutils2/widgets/propertyeditor/kv3valuepath.h"
#include "tools/toolutils2/widgets/propertyeditor/poolablewidget.h"

namespace
{
constexpr const char *ICON_ADD = "game:tools/images/common/add_sm.png";
constexpr const char *ICON_REMOVE = "game:tools/images/common/remove_sm.png";
constexpr int ROW_MINIMUM_HEIGHT = 22;
constexpr int LABEL_MINIMUM_WIDTH = 80;
constexpr double LABEL_MAXIMUM_SHARE = 0.45;

bool SameTarget( const ZolPropertyTarget &a, const ZolPropertyTarget &b )
{
	return a.m_pAttr == b.m_pAttr && a.m_hTable.m_pInstance == b.m_hTable.m_pInstance && a.m_hTable.m_pTable == b.m_hTable.m_pTable &&
		a.m_hTable.m_nTypeTag == b.m_hTable.m_nTypeTag && a.m_hTable.m_pNotifyRoot == b.m_hTable.m_pNotifyRoot;
}

// The "+" of an array or map row.
QToolButton *MakeAddButton( QWidget *pParent, const QString &objectName, const QString &toolTip )
{
	QToolButton *pAdd = new QToolButton( pParent );
	pAdd->setObjectName( objectName );
	pAdd->setAutoRaise( true );
	pAdd->setFocusPolicy( Qt::NoFocus );
	pAdd->setToolTip( toolTip );
	QIcon icon( ICON_ADD );
	if ( icon.pixmap( 16, 16 ).isNull() )
		pAdd->setText( QStringLiteral( "+" ) );
	else
		pAdd->setIcon( icon );
	return pAdd;
}

// Text that a short button shows when its picture is missing.
QString FallbackText( const CUtlString &command )
{
	if ( command == "reset_attr" )
		return QStringLiteral( "Reset" );
	if ( command == "remove_attr" )
		return QStringLiteral( "Remove" );
	if ( command == "inherit_attr" )
		return QStringLiteral( "Inherit" );
	if ( command == "override_attr" )
		return QStringLiteral( "Override" );
	return QStringLiteral( "..." );
}
} // namespace

CQPropertyPanel::CQPropertyPanel( QWidget *pParent ) : QWidget( pParent )
{
	setObjectName( QStringLiteral( "PropertyPanel" ) );
	QVBoxLayout *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 2 );
	m_pTitle = new QLabel( this );
	m_pTitle->setObjectName( QStringLiteral( "Title" ) );
	m_pTitle->setContentsMargins( 4, 2, 4, 2 );
	QFont titleFont = m_pTitle->font();
	titleFont.setBold( true );
	m_pTitle->setFont( titleFont );
	pLayout->addWidget( m_pTitle );

	m_pScroll = new QScrollArea( this );
	m_pScroll->setWidgetResizable( true );
	// Rows give up width rather than scroll sideways: labels and fields shrink.
	m_pScroll->setHorizontalScrollBarPolicy( Qt::ScrollBarAlwaysOff );
	m_pScroll->setFrameShape( QFrame::NoFrame );
	m_pContent = new QWidget( m_pScroll );
	m_pRowsLayout = new QVBoxLayout( m_pContent );
	m_pRowsLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pRowsLayout->setSpacing( 0 );
	m_pEmpty = new QLabel( QStringLiteral( "Select a function, a child, a variable or the base properties to edit them here." ), m_pContent );
	m_pEmpty->setObjectName( QStringLiteral( "Empty" ) );
	m_pEmpty->setWordWrap( true );
	m_pEmpty->setAlignment( Qt::AlignCenter );
	m_pEmpty->setEnabled( false );
	m_pEmpty->setContentsMargins( 8, 16, 8, 16 );
	m_pRowsLayout->addWidget( m_pEmpty );
	m_pRowsLayout->addStretch( 1 );
	m_pScroll->setWidget( m_pContent );
	pLayout->addWidget( m_pScroll, 1 );

	m_pPoolHolder = new QWidget( this );
	m_pPoolHolder->hide();
	m_pPool = std::make_unique<CQWidgetPool>( m_pPoolHolder );

	m_pTimer = new QTimer( this );
	m_pTimer->setSingleShot( true );
	m_pTimer->setInterval( 0 );
	connect( m_pTimer, &QTimer::timeout, this, &CQPropertyPanel::OnPendingTimer );
	UpdateTitle();
}

bool CQPropertyPanel::InstallInPropertyEditorSystem()
{
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	if ( !pSystem )
		return false;
	pSystem->SetPropertyPanelFactory( []( void *pParent ) -> void * { return static_cast<QWidget *>( new CQPropertyPanel( static_cast<QWidget *>( pParent ) ) ); } );
	// The panel's own editors of general kinds.
	CQAttributeEditor_Curve::RegisterFactory();
	return true;
}

CQPropertyPanel *CQPropertyPanel::CreateFromPropertyEditorSystem( QWidget *pParent )
{
	IPropertyEditorSystem *pSystem = GetPropertyEditorSystem();
	if ( !pSystem )
		return nullptr;
	if ( !pSystem->HasPropertyPanelFactory() )
		InstallInPropertyEditorSystem();
	CQAttributeEditor_Curve::RegisterFactory();
	void *pPanel = pSystem->CreatePropertyPanel( pParent );
	return qobject_cast<CQPropertyPanel *>( static_cast<QWidget *>( pPanel ) );
}

CQPropertyPanel::~CQPropertyPanel()
{
	// Editors first: they hold the host and their targets.
	DetachEditors();
}

void CQPropertyPanel::SetDomain( IPropertyEditDomain *pDomain )
{
	if ( m_pDomain == pDomain )
		return;
	DetachEditors();
	m_pDomain = pDomain;
	RequestRebuild();
}

void CQPropertyPanel::SetTargets( const CUtlVector<ZolPropertyTarget> &targets )
{
	bool bSame = targets.Count() == m_Targets.Count();
	for ( int i = 0; bSame && i < targets.Count(); ++i )
		bSame = SameTarget( targets[ i ], m_Targets[ i ] );
	if ( bSame )
	{
		RequestRefresh();
		return;
	}
	// The rows still point at the old targets, which may be gone: nothing may write
	// through them until they are made anew.
	DetachEditors();
	m_Targets = targets;
	UpdateTitle();
	RequestRebuild();
}

void CQPropertyPanel::RequestRebuild()
{
	m_bRebuildPending = true;
	m_pTimer->start();
}

void CQPropertyPanel::RequestRefresh()
{
	m_bRefreshPending = true;
	m_pTimer->start();
}

void CQPropertyPanel::FlushPending()
{
	if ( !HasPendingWork() )
		return;
	m_pTimer->stop();
	OnPendingTimer();
}

bool CQPropertyPanel::IsGestureInProgress() const
{
	bool bGesture = false;
	ForEachRow( m_Rows, [ & ]( PropertyPanelRow_t *pRow ) { bGesture = bGesture || ( pRow->m_pEditor && pRow->m_pEditor->IsInIncrementalUpdate() ); } );
	return bGesture;
}

void CQPropertyPanel::OnPendingTimer()
{
	// Rows stay while a drag goes on; the drag's end asks again.
	if ( IsGestureInProgress() )
	{
		m_pTimer->start( 50 );
		return;
	}
	bool bRebuild = m_bRebuildPending;
	m_bRebuildPending = m_bRefreshPending = false;
	if ( bRebuild )
	{
		RowList_t rows;
		BuildModel( &rows );
		Rebuild( &rows );
	}
	else
	{
		Refresh();
	}
}

//-----------------------------------------------------------------------------
// The widgets
//-----------------------------------------------------------------------------

void CQPropertyPanel::DetachEditors()
{
	ForEachRow( m_Rows, []( PropertyPanelRow_t *pRow ) {
		if ( pRow->m_pEditor )
			pRow->m_pEditor->DisconnectAndClear();
		pRow->m_Targets.RemoveAll();
	} );
}

void CQPropertyPanel::ReleaseRows()
{
	ForEachRow( m_Rows, [ this ]( PropertyPanelRow_t *pRow ) {
		if ( pRow->m_pEditor )
		{
			if ( pRow->m_pWidget )
				pRow->m_pWidget->SetEditor( nullptr );
			m_pPool->Return( pRow->m_pEditor );
			pRow->m_pEditor = nullptr;
		}
	} );
	ForEachRow( m_Rows, []( PropertyPanelRow_t *pRow ) {
		if ( pRow->m_pWidget )
		{
			pRow->m_pWidget->hide();
			// Later: a click of the row's own button may still be on the stack.
			pRow->m_pWidget->deleteLater();
			pRow->m_pWidget = nullptr;
		}
	} );
	m_Rows.clear();
}

void CQPropertyPanel::Rebuild( RowList_t *pNewRows )
{
	int nScroll = m_pScroll->verticalScrollBar()->value();
	m_pContent->setUpdatesEnabled( false );
	ReleaseRows();
	m_Rows = std::move( *pNewRows );
	for ( std::unique_ptr<PropertyPanelRow_t> &pRow : m_Rows )
		CreateRowWidgets( pRow.get() );
	m_pEmpty->setVisible( m_Rows.empty() );
	UpdateVisibility();
	UpdateLabelWidth();
	UpdateTitle();
	m_pContent->setUpdatesEnabled( true );
	m_pRowsLayout->activate();
	m_pScroll->verticalScrollBar()->setValue( nScroll );
	++m_nRebuildCount;
	emit RowsRebuilt();
}

void CQPropertyPanel::CreateRowWidgets( PropertyPanelRow_t *pRow )
{
	CQPropertyRowWidget *pWidget = new CQPropertyRowWidget( pRow, m_pContent );
	pWidget->setObjectName( pRow->m_Key );
	pWidget->setMinimumHeight( ROW_MINIMUM_HEIGHT );
	pRow->m_pWidget = pWidget;
	m_pRowsLayout->insertWidget( m_pRowsLayout->count() - 1, pWidget );
	pWidget->SetExpanded( m_Expanded.value( pRow->m_Key, pRow->m_bDefaultExpanded ) );
	const QString key = pRow->m_Key;
	connect( pWidget, &CQPropertyRowWidget::ExpandToggled, this, [ this, key ]( bool bExpanded ) {
		m_Expanded[ key ] = bExpanded;
		UpdateVisibility();
	} );
	connect( pWidget, &CQPropertyRowWidget::ContextMenuRequested, this, [ this, key ]( const QPoint &pos ) {
		if ( const PropertyPanelRow_t *pFound = FindRow( key ) )
			ShowRowMenu( const_cast<PropertyPanelRow_t *>( pFound ), pos );
	} );

	// The label's tool tip: the name, its field, and the help text when there is one.
	QString tip = QStringLiteral( "<b>%1</b>" ).arg( pRow->m_Label.toHtmlEscaped() );
	if ( pRow->m_eKind != PropertyPanelRow_t::KIND_GROUP && !pRow->m_Info.m_Name.IsEmpty() )
		tip += QStringLiteral( " (%1)" ).arg( QString::fromUtf8( pRow->m_Info.m_Name.Get() ).toHtmlEscaped() );
	CUtlString help;
	if ( !pRow->m_Info.m_HelpContext.IsEmpty() && LookupHelpText( pRow->m_Info.m_HelpContext.Get(), pRow->m_Info.m_HelpId.Get(), "", &help, 1 ) )
		tip += QStringLiteral( "<br>" ) + QString::fromUtf8( help.Get() ).toHtmlEscaped();
	pWidget->GetLabel()->setToolTip( tip );

	if ( pRow->m_bIsArray )
		pWidget->SetEditor( MakeArraySummary( pRow ) );
	else if ( pRow->m_bIsMap )
		pWidget->SetEditor( MakeMapSummary( pRow ) );
	else if ( pRow->m_eKind != PropertyPanelRow_t::KIND_GROUP )
		CreateEditor( pRow );
	UpdateButtons( pRow );
	for ( std::unique_ptr<PropertyPanelRow_t> &pChild : pRow->m_Children )
		CreateRowWidgets( pChild.get() );
}

void CQPropertyPanel::CreateEditor( PropertyPanelRow_t *pRow )
{
	PropertyEditorInit_t init;
	init.m_pHost = this;
	init.m_Targets = pRow->m_Targets;
	init.m_Info = pRow->m_Info;
	init.m_KV3Path = pRow->m_KV3Path;
	QString name;
	ParseEditorSpec( pRow->m_Info.m_EditorSpec, &name, &init.m_Argument );

	CQAttributeEditor_Base *pEditor = nullptr;
	// A part of a KV3 value has no editor name of its own; a curve in it takes the curve's.
	if ( pRow->m_eKind == PropertyPanelRow_t::KIND_KV3_PART )
		name = pRow->m_bKV3Curve ? QString::fromUtf8( CQAttributeEditor_Curve::FACTORY_NAME ) : QString();
	CPropertyAttributeEditorFactoryBase *pFactory = FindFactory( name );
	if ( pFactory )
	{
		if ( CQPoolableWidget *pPooled = m_pPool->Take( name ) )
		{
			pEditor = static_cast<CQAttributeEditor_Base *>( pPooled );
			pEditor->Initialize( init );
			pEditor->ReadFromAttribute();
		}
		else if ( ( pEditor = pFactory->Create( init, pRow->m_pWidget, init.m_Argument.toUtf8().constData() ) ) != nullptr )
		{
			pEditor->SetPoolKey( name );
		}
		if ( pEditor && pFactory->GetFixedRowHeight() > 0 )
			pEditor->setFixedHeight( pFactory->GetFixedRowHeight() );
	}
	if ( !pEditor )
	{
		CQAttributeEditor_DomainAgnostic *pPlain = static_cast<CQAttributeEditor_DomainAgnostic *>( m_pPool->Take( QStringLiteral( "DomainAgnostic" ) ) );
		if ( !pPlain )
			pPlain = new CQAttributeEditor_DomainAgnostic( pRow->m_pWidget );
		pPlain->Initialize( init );
		pPlain->ReadFromAttribute();
		if ( pPlain->GetKind() == CQAttributeEditor_DomainAgnostic::KIND_NONE )
		{
			m_pPool->Return( pPlain );
			return;
		}
		pEditor = pPlain;
	}
	pRow->m_pEditor = pEditor;
	pRow->m_pWidget->SetEditor( pEditor );
}

QWidget *CQPropertyPanel::MakeArraySummary( PropertyPanelRow_t *pRow )
{
	QWidget *pSummary = new QWidget();
	QHBoxLayout *pLayout = new QHBoxLayout( pSummary );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	QLabel *pCount = new QLabel( pSummary );
	pCount->setObjectName( QStringLiteral( "Count" ) );
	pCount->setEnabled( false );
	if ( pRow->m_nArrayCount < 0 )
		pCount->setText( QStringLiteral( "(counts differ)" ) );
	else
		pCount->setText( pRow->m_nArrayCount == 1 ? QStringLiteral( "1 element" ) : QStringLiteral( "%1 elements" ).arg( pRow->m_nArrayCount ) );
	pLayout->addWidget( pCount );
	pLayout->addStretch( 1 );
	if ( pRow->m_bArrayResizable && pRow->m_nArrayCount >= 0 )
	{
		QToolButton *pAdd = MakeAddButton( pSummary, QStringLiteral( "AddElement" ), QStringLiteral( "Add an element at the end" ) );
		const QString key = pRow->m_Key;
		const int nCount = pRow->m_nArrayCount;
		connect( pAdd, &QToolButton::clicked, this, [ this, key, nCount ]() { ModifyRowArray( key, PROPED_ARRAY_INSERT, nCount ); } );
		pLayout->addWidget( pAdd );
	}
	return pSummary;
}

QWidget *CQPropertyPanel::MakeMapSummary( PropertyPanelRow_t *pRow )
{
	QWidget *pSummary = new QWidget();
	QHBoxLayout *pLayout = new QHBoxLayout( pSummary );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	QLabel *pCount = new QLabel( QStringLiteral( "%1 entries" ).arg( pRow->m_Children.size() ), pSummary );
	pCount->setObjectName( QStringLiteral( "Count" ) );
	pCount->setEnabled( false );
	pLayout->addWidget( pCount );
	if ( !pRow->m_Info.m_bReadOnly )
	{
		QLineEdit *pKey = new QLineEdit( pSummary );
		pKey->setObjectName( QStringLiteral( "NewKey" ) );
		pKey->setPlaceholderText( QStringLiteral( "New key" ) );
		pLayout->addWidget( pKey, 1 );
		QToolButton *pAdd = MakeAddButton( pSummary, QStringLiteral( "AddEntry" ), QStringLiteral( "Add an entry under the new key" ) );
		const QString key = pRow->m_Key;
		auto add = [ this, key, pKey ]() {
			QString newKey = pKey->text().trimmed();
			if ( !newKey.isEmpty() )
				ModifyRowMap( key, PROPED_MAP_ADD, newKey );
		};
		connect( pAdd, &QToolButton::clicked, this, add );
		connect( pKey, &QLineEdit::returnPressed, this, add );
		pLayout->addWidget( pAdd );
	}
	else
	{
		pLayout->addStretch( 1 );
	}
	return pSummary;
}

void CQPropertyPanel::UpdateButtons( PropertyPanelRow_t *pRow )
{
	CQPropertyRowWidget *pWidget = pRow->m_pWidget;
	if ( !pWidget )
		return;
	pWidget->ClearButtons();
	const QString key = pRow->m_Key;
	for ( const ZolPropertyRowButton &button : pRow->m_Info.m_Buttons )
	{
		// Zone 0 buttons stand in the row's menu only.
		if ( button.m_nZone == 0 && button.m_bClickable )
			continue;
		QString icon = QString::fromUtf8( button.m_Icon.Get() );
		QString tip = QString::fromUtf8( button.m_Tooltip.Get() );
		if ( !button.m_bClickable || button.m_bDisplayOnly )
		{
			pWidget->AddMark( icon, tip );
			continue;
		}
		QString command = QString::fromUtf8( button.m_Command.Get() );
		QToolButton *pButton = pWidget->AddButton( icon, FallbackText( button.m_Command ), tip, QStringLiteral( "Button_" ) + command );
		connect( pButton, &QToolButton::clicked, this, [ this, key, command ]() { RunRowCommand( key, command ); } );
	}
	// Elements of an array that can grow: insert before, remove.
	const PropertyPanelRow_t *pParent = pRow->m_pParent;
	if ( pRow->m_eKind == PropertyPanelRow_t::KIND_ELEMENT && pParent && pParent->m_bIsArray && pParent->m_bArrayResizable )
	{
		const QString arrayKey = pParent->m_Key;
		const int nIndex = pRow->m_nElementIndex;
		QToolButton *pInsert = pWidget->AddButton( ICON_ADD, QStringLiteral( "+" ), QStringLiteral( "Insert an element before this one" ), QStringLiteral( "InsertElement" ) );
		connect( pInsert, &QToolButton::clicked, this, [ this, arrayKey, nIndex ]() { ModifyRowArray( arrayKey, PROPED_ARRAY_INSERT, nIndex ); } );
		QToolButton *pRemove = pWidget->AddButton( ICON_REMOVE, QStringLiteral( "-" ), QStringLiteral( "Remove this element" ), QStringLiteral( "RemoveElement" ) );
		connect( pRemove, &QToolButton::clicked, this, [ this, arrayKey, nIndex ]() { ModifyRowArray( arrayKey, PROPED_ARRAY_REMOVE, nIndex ); } );
	}
	if ( pRow->m_eKind == PropertyPanelRow_t::KIND_MAP_ENTRY && pParent && !pParent->m_Info.m_bReadOnly )
	{
		const QString mapKey = pParent->m_Key;
		const QString entry = pRow->m_MapKey;
		QToolButton *pRemove = pWidget->AddButton( ICON_REMOVE, QStringLiteral( "-" ), QStringLiteral( "Remove this entry" ), QStringLiteral( "RemoveEntry" ) );
		connect( pRemove, &QToolButton::clicked, this, [ this, mapKey, entry ]() { ModifyRowMap( mapKey, PROPED_MAP_REMOVE, entry ); } );
	}
}

void CQPropertyPanel::UpdateVisibility()
{
	for ( std::unique_ptr<PropertyPanelRow_t> &pRoot : m_Rows )
	{
		// A row shows when every row above it is unfolded.
		std::vector<std::pair<PropertyPanelRow_t *, bool>> stack{ { pRoot.get(), true } };
		while ( !stack.empty() )
		{
			auto [ pRow, bVisible ] = stack.back();
			stack.pop_back();
			if ( pRow->m_pWidget )
				pRow->m_pWidget->setVisible( bVisible );
			bool bChildren = bVisible && ( !pRow->m_pWidget || pRow->m_pWidget->IsExpanded() );
			for ( auto it = pRow->m_Children.rbegin(); it != pRow->m_Children.rend(); ++it )
				stack.push_back( { it->get(), bChildren } );
		}
	}
}

void CQPropertyPanel::UpdateLabelWidth()
{
	int nHint = LABEL_MINIMUM_WIDTH;
	ForEachRow( m_Rows, [ & ]( PropertyPanelRow_t *pRow ) {
		if ( pRow->m_pWidget && pRow->m_eKind != PropertyPanelRow_t::KIND_GROUP )
			nHint = std::max( nHint, pRow->m_pWidget->GetLabelHint() );
	} );
	int nLimit = std::max( LABEL_MINIMUM_WIDTH, int( width() * LABEL_MAXIMUM_SHARE ) );
	m_nLabelWidth = std::min( nHint, nLimit );
	ForEachRow( m_Rows, [ this ]( PropertyPanelRow_t *pRow ) {
		if ( pRow->m_pWidget )
			pRow->m_pWidget->SetLabelWidth( m_nLabelWidth );
	} );
}

void CQPropertyPanel::UpdateTitle()
{
	if ( !m_pDomain || m_Targets.IsEmpty() )
	{
		m_pTitle->setText( QStringLiteral( "Nothing selected" ) );
		return;
	}
	QStringList names;
	for ( const ZolPropertyTarget &target : m_Targets )
	{
		CUtlString name;
		if ( !m_pDomain->IsTargetInvalid( target ) )
			m_pDomain->GetTargetDisplayName( target, &name );
		names.append( QString::fromUtf8( name.Get() ) );
	}
	names.removeDuplicates();
	if ( m_Targets.Count() == 1 )
		m_pTitle->setText( names.value( 0 ) );
	else
		m_pTitle->setText( QStringLiteral( "%1 selected: %2" ).arg( m_Targets.Count() ).arg( names.join( QStringLiteral( ", " ) ) ) );
	m_pTitle->setToolTip( m_pTitle->text() );
}

void CQPropertyPanel::Refresh()
{
	RowList_t rows;
	BuildModel( &rows );
	if ( !SameStructure( m_Rows, rows ) )
	{
		Rebuild( &rows );
		return;
	}
	// Same rows: their records, marks and buttons follow the domain, editors read again.
	std::vector<std::pair<PropertyPanelRow_t *, PropertyPanelRow_t *>> pairs;
	std::vector<std::pair<const RowList_t *, const RowList_t *>> lists{ { &m_Rows, &rows } };
	while ( !lists.empty() )
	{
		auto [ pOld, pNew ] = lists.back();
		lists.pop_back();
		for ( size_t i = 0; i < pOld->size(); ++i )
		{
			pairs.push_back( { ( *pOld )[ i ].get(), ( *pNew )[ i ].get() } );
			lists.push_back( { &( *pOld )[ i ]->m_Children, &( *pNew )[ i ]->m_Children } );
		}
	}
	for ( auto [ pOld, pNew ] : pairs )
	{
		pOld->m_Info = pNew->m_Info;
		pOld->m_Label = pNew->m_Label;
		if ( !pOld->m_pWidget )
			continue;
		pOld->m_pWidget->UpdateLabel();
		UpdateButtons( pOld );
		CQAttributeEditor_Base *pEditor = pOld->m_pEditor;
		if ( pEditor && !pEditor->IsInIncrementalUpdate() && !pEditor->IsBeingEdited() )
			pEditor->ReadFromAttribute();
	}
	UpdateTitle();
}

void CQPropertyPanel::resizeEvent( QResizeEvent *pEvent )
{
	QWidget::resizeEvent( pEvent );
	UpdateLabelWidth();
}

void CQPropertyPanel::ShowRowMenu( PropertyPanelRow_t *pRow, const QPoint &globalPos )
{
	QMenu menu( this );
	const QString key = pRow->m_Key;
	for ( const ZolPropertyRowButton &button : pRow->m_Info.m_Buttons )
	{
		if ( !button.m_bClickable || button.m_bDisplayOnly || button.m_Command.IsEmpty() )
			continue;
		QString command = QString::fromUtf8( button.m_Command.Get() );
		QString label = button.m_Tooltip.IsEmpty() ? command : QString::fromUtf8( button.m_Tooltip.Get() );
		menu.addAction( label, this, [ this, key, command ]() { RunRowCommand( key, command ); } );
	}
	if ( !pRow->m_Info.m_Name.IsEmpty() )
	{
		if ( !menu.isEmpty() )
			menu.addSeparator();
		QString name = QString::fromUtf8( pRow->m_Info.m_Name.Get() );
		menu.addAction( QStringLiteral( "Copy Name \"%1\"" ).arg( name ), this, [ name ]() { QApplication::clipboard()->setText( name ); } );
	}
	if ( !menu.isEmpty() )
		menu.exec( globalPos );
}

const PropertyPanelRow_t *CQPropertyPanel::FindRow( const QString &key ) const
{
	const PropertyPanelRow_t *pFound = nullptr;
	ForEachRow( m_Rows, [ & ]( PropertyPanelRow_t *pRow ) {
		if ( !pFound && pRow->m_Key == key )
			pFound = pRow;
	} );
	return pFound;
}

CQAttributeEditor_Base *CQPropertyPanel::FindEditor( const QString &key ) const
{
	const PropertyPanelRow_t *pRow = FindRow( key );
	return pRow ? pRow->m_pEditor : nullptr;
}

CQPropertyRowWidget *CQPropertyPanel::FindRowWidget( const QString &key ) const
{
	const PropertyPanelRow_t *pRow = FindRow( key );
	return pRow ? pRow->m_pWidget : nullptr;
}

QStringList CQPropertyPanel::GetRowKeys() const
{
	QStringList keys;
	ForEachRow( m_Rows, [ & ]( PropertyPanelRow_t *pRow ) { keys.append( pRow->m_Key ); } );
	return keys;
}

void CQPropertyPanel::SaveSettings( KeyValues3 *pTable ) const
{
	KeyValues3 *pExpanded = pTable->SetMemberEmptyTable( "expanded" );
	for ( auto it = m_Expanded.begin(); it != m_Expanded.end(); ++it )
		pExpanded->SetMemberBool( it.key().toUtf8().constData(), it.value() );
}

void CQPropertyPanel::RestoreSettings( const KeyValues3 *pTable )
{
	const KeyValues3 *pExpanded = pTable ? pTable->FindMember( "expanded" ) : nullptr;
	if ( !pExpanded || !pExpanded->IsTable() )
		return;
	for ( int i = 0; i < pExpanded->GetMemberCount(); ++i )
		m_Expanded[ QString::fromUtf8( pExpanded->GetMemberName( i ) ) ] = pExpanded->GetMember( i )->GetBool();
	RequestRebuild();
}

//-----------------------------------------------------------------------------
// Edits
//-----------------------------------------------------------------------------

void CQPropertyPanel::Apply( CPropertyEditorEditSlots *pSlots, PropEdModifyType_t eModifyType )
{
	CQAttributeEditor_Base *pEditor = dynamic_cast<CQAttributeEditor_Base *>( pSlots );
	if ( !pEditor || !pEditor->IsModified() )
		return;
	pEditor->ClearModified();
	if ( m_bApplying )
		return;
	// A read-only row, or an editor whose rows are gone, writes nothing.
	if ( !m_pDomain || pEditor->GetHost() != this || pEditor->IsReadOnly() || pEditor->GetTargets().IsEmpty() )
	{
		if ( pEditor->GetHost() == this )
			pEditor->ReadFromAttribute();
		return;
	}
	CUtlVector<ZolPropertyTarget> properties;
	for ( const PropEdSpecificAttr_t &target : pEditor->GetTargets() )
		properties.AddToTail( target.m_Property );
	QString name = QString::fromUtf8( pEditor->GetRowInfo().m_Name.Get() );

	m_bApplying = true;
	m_pDomain->NotifyBeforeChange( properties.Base(), properties.Count(), eModifyType );
	pEditor->WriteToAttribute();
	m_pDomain->NotifyAfterChange( 0 );
	m_bApplying = false;

	pEditor->NotifyAttributeModified( eModifyType );
	emit AttributeModified( name, eModifyType );
	if ( m_pDomain->NeedsRebuild() )
	{
		m_pDomain->ClearRebuild();
		RequestRebuild();
	}
	else
	{
		RequestRefresh();
	}
}

void CQPropertyPanel::BeginPanelEdit( const PropertyPanelRow_t *pRow )
{
	CUtlVector<ZolPropertyTarget> properties;
	for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
		properties.AddToTail( target.m_Property );
	m_bApplying = true;
	m_pDomain->NotifyBeforeChange( properties.Base(), properties.Count(), PROPED_MODIFY_ONE_SHOT );
}

void CQPropertyPanel::EndPanelEdit( const PropertyPanelRow_t *pRow, int nModifyType )
{
	m_pDomain->NotifyAfterChange( 0 );
	m_bApplying = false;
	emit AttributeModified( QString::fromUtf8( pRow->m_Info.m_Name.Get() ), nModifyType );
	m_pDomain->ClearRebuild();
	// The rows' shape may have changed; nothing may write through them meanwhile.
	DetachEditors();
	RequestRebuild();
}

void CQPropertyPanel::RunRowCommand( const QString &rowKey, const QString &command )
{
	const PropertyPanelRow_t *pRow = FindRow( rowKey );
	if ( !pRow || !m_pDomain || pRow->m_Targets.IsEmpty() || m_bApplying )
		return;
	QByteArray commandText = command.toUtf8();
	BeginPanelEdit( pRow );
	for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
		m_pDomain->RunButtonCommand( commandText.constData(), target.m_Property, "" );
	EndPanelEdit( pRow, PROPED_MODIFY_ONE_SHOT );
}

void CQPropertyPanel::ModifyRowArray( const QString &rowKey, int nOperation, int nIndex )
{
	const PropertyPanelRow_t *pRow = FindRow( rowKey );
	if ( !pRow || !m_pDomain || pRow->m_Targets.IsEmpty() || !pRow->m_bArrayResizable || m_bApplying )
		return;
	BeginPanelEdit( pRow );
	for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
		m_pDomain->ModifyArray( target.m_Property, target.m_Path, PropEdArrayOperation_t( nOperation ), nIndex, nOperation == PROPED_ARRAY_REMOVE ? 1 : 0 );
	EndPanelEdit( pRow, PROPED_MODIFY_ONE_SHOT );
}

void CQPropertyPanel::ModifyRowMap( const QString &rowKey, int nOperation, const QString &mapKey )
{
	const PropertyPanelRow_t *pRow = FindRow( rowKey );
	if ( !pRow || !m_pDomain || pRow->m_Targets.IsEmpty() || pRow->m_Info.m_bReadOnly || m_bApplying )
		return;
	QByteArray key = mapKey.toUtf8();
	BeginPanelEdit( pRow );
	for ( const PropEdSpecificAttr_t &target : pRow->m_Targets )
		m_pDomain->ModifyMap( target.m_Property, target.m_Path, PropEdMapOperation_t( nOperation ), key.constData() );
	EndPanelEdit( pRow, PROPED_MODIFY_ONE_SHOT );
}

//-----------------------------------------------------------------------------
// Host operations
//-----------------------------------------------------------------------------

void CQPropertyPanel::ReadCommonValueText( const CUtlVector<PropEdSpecificAttr_t> &targets, const ZolPropertyRowInfo &, CUtlString *pOut, bool bFriendly,
	bool *pDiffer )
{
	pOut->Clear();
	*pDiffer = false;
	if ( !m_pDomain )
		return;
	for ( int i = 0; i < targets.Count(); ++i )
	{
		CUtlString text;
		if ( bFriendly )
			m_pDomain->GetValueFriendlyText( targets[ i ].m_Property, targets[ i ].m_Path, &text );
		if ( !bFriendly || text.IsEmpty() )
			m_pDomain->GetValueText( targets[ i ].m_Property, targets[ i ].m_Path, &text );
		if ( i == 0 )
			*pOut = text;
		else if ( !( text == *pOut ) )
			*pDiffer = true;
	}
}

bool CQPropertyPanel::ReadCommonKV3( const CUtlVector<PropEdSpecificAttr_t> &targets, KeyValues3 *pOut, bool *pDiffer )
{
	*pDiffer = false;
	pOut->SetToNull();
	if ( !m_pDomain || targets.IsEmpty() )
		return false;
	if ( !m_pDomain->GetKV3( targets[ 0 ].m_Property, targets[ 0 ].m_Path, pOut ) )
		return false;
	for ( int i = 1; i < targets.Count() && !*pDiffer; ++i )
	{
		KeyValues3 other;
		*pDiffer = !m_pDomain->GetKV3( targets[ i ].m_Property, targets[ i ].m_Path, &other ) || !other.IsEqual( *pOut );
	}
	return true;
}

void CQPropertyPanel::WriteValueText( const CUtlVector<PropEdSpecificAttr_t> &targets, const char *pText )
{
	// Only inside an apply: between the domain's before and after.
	if ( !m_pDomain || !m_bApplying )
		return;
	for ( const PropEdSpecificAttr_t &target : targets )
		m_pDomain->SetValueText( target.m_Property, target.m_Path, pText, 0 );
}

void CQPropertyPanel::WriteKV3( const CUtlVector<PropEdSpecificAttr_t> &targets, const KeyValues3 &value )
{
	if ( !m_pDomain || !m_bApplying )
		return;
	for ( const PropEdSpecificAttr_t &target : targets )
		m_pDomain->SetKV3( target.m_Property, target.m_Path, value, 0 );
}

void CQPropertyPanel::RegisterHelp( const char *pContext, const char *pId, const char *pFriendlyName, const char *pDescription, const char *pExtra )
{
	if ( IHelpSystem *pHelp = GetHelpSystem() )
		pHelp->AddEntry( pContext, pId, pFriendlyName, pDescription, pExtra );
}

bool CQPropertyPanel::LookupHelpText( const char *pContext, const char *pId, const char *, CUtlString *pOut, int )
{
	IHelpSystem *pHelp = GetHelpSystem();
	const char *pText = pHelp && pContext && pId ? pHelp->GetText( pContext, pId ) : "";
	pOut->Set( pText );
	return *pText != 0;
}
