#include "tools/zol/editor/functionlist/particlefunctionlist.h"

#include <QApplication>
#include <QCursor>
#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/host/iasset.h"
#include "core/host/iresourcesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/host/hostpaths.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandbuttons.h"
#include "tools/toolutils2/widgets/inputbind/bindablewidgetinfo.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/widgets/assetcontextmenu.h"
#include "tools/widgets/elidedlabel.h"
#include "tools/zol/editor/functionlist/assetparentchildmenu.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "tools/zol/editor/functionlist/particlechildwidget.h"
#include "tools/zol/editor/functionlist/particlefunctionchildren.h"
#include "tools/zol/editor/functionlist/particlefunctionliststyle.h"
#include "tools/zol/editor/functionlist/particlefunctionwidget.h"
#include "tools/zol/editor/functionlist/particlevariablewidget.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
QToolButton *MakeHeaderButton( const char *pIcon, const QString &toolTip, int nSize, QWidget *pParent )
{
	auto *pButton = new QToolButton( pParent );
	pButton->setIcon( QIcon( pIcon ) );
	pButton->setToolTip( toolTip );
	pButton->setFixedSize( nSize, nSize );
	pButton->setAutoRaise( true );
	pButton->setFocusPolicy( Qt::NoFocus );
	return pButton;
}

QIcon HistoryIcon( const char *pName )
{
	QIcon icon;
	icon.addFile( QStringLiteral( "game:tools/images/orvin_style/%1.png" ).arg( pName ), QSize(), QIcon::Normal );
	icon.addFile( QStringLiteral( "game:tools/images/orvin_style/%1_disabled.png" ).arg( pName ), QSize(), QIcon::Disabled );
	return icon;
}
} // namespace

CQParticleFunctionList::CQParticleFunctionList( IZolNodeVariableContext *pVariableContext, QWidget *pParent )
	: QWidget( pParent ), m_pVariableContext( pVariableContext ), m_EventMap( this )
{
	setObjectName( "ZOL_ParticleFunctionList" );
	setAttribute( Qt::WA_StyledBackground );
	setStyleSheet( GetParticleFunctionListStyleSheet() );
	setFocusPolicy( Qt::StrongFocus );

	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 2, 2, 2, 2 );
	pLayout->setSpacing( 3 );

	auto *pTop = new QHBoxLayout;
	pTop->setSpacing( 2 );
	m_pPrevButton = MakeHeaderButton( "", tr( "Previous System" ), 24, this );
	m_pPrevButton->setIcon( HistoryIcon( "arrow_left" ) );
	m_pNextButton = MakeHeaderButton( "", tr( "Next System" ), 24, this );
	m_pNextButton->setIcon( HistoryIcon( "arrow_right" ) );
	m_pParentChildMenu = new CQAssetParentChildMenu( this, false );
	m_pTitle = new CQElidedLabel( this );
	m_pTitle->setObjectName( "ZOL_FunctionListTitle" );
	m_pTitle->setMinimumWidth( 32 );
	m_pTitle->SetElideMode( Qt::ElideLeft );
	m_pAssetMenuButton = MakeHeaderButton( "game:tools/images/common/dropdown_menu.png", tr( "Show Asset Menu" ), 20, this );
	pTop->addWidget( m_pPrevButton );
	pTop->addWidget( m_pNextButton );
	pTop->addWidget( m_pParentChildMenu );
	pTop->addWidget( m_pTitle, 1 );
	pTop->addWidget( m_pAssetMenuButton );
	pLayout->addLayout( pTop );

	auto *pCommands = new QHBoxLayout;
	pCommands->setSpacing( 4 );
	auto *pAddFunction = new CQBindableCommandAction( &m_SessionTarget, "AddFunction", "Add Function", this, COMMAND_TEXT_MODE_BUTTON );
	pAddFunction->setIcon( QIcon( "game:tools/images/common/add_sm.png" ) );
	auto *pAddChild = new CQBindableCommandAction( &m_SessionTarget, "AddChild", "Add Child", this, COMMAND_TEXT_MODE_BUTTON );
	pAddChild->setIcon( QIcon( "game:tools/images/common/add_sm_green.png" ) );
	m_pAddFunctionButton = new CQBindableCommandPushButton( pAddFunction, this );
	m_pAddFunctionButton->setObjectName( "ZOL_AddFunctionButton" );
	m_pAddChildButton = new CQBindableCommandPushButton( pAddChild, this );
	m_pAddChildButton->setObjectName( "ZOL_AddChildButton" );
	for ( QPushButton *pButton : { static_cast<QPushButton *>( m_pAddFunctionButton ), static_cast<QPushButton *>( m_pAddChildButton ) } )
	{
		pButton->setFocusPolicy( Qt::NoFocus );
		pButton->setMinimumHeight( 18 );
		pCommands->addWidget( pButton, 1 );
	}
	pLayout->addLayout( pCommands );

	m_pBaseButton = new CQEditFunctionButton( nullptr, false, this );
	m_pBaseButton->SetTexts( tr( "Base Properties" ), QString(), tr( "Edit global system properties" ) );
	pLayout->addWidget( m_pBaseButton );

	m_pList = new CQDraggableWidgetList( this );
	m_pList->setObjectName( "ZOL_FunctionRows" );
	m_pList->SetItemList( this );
	m_pList->SetMimeType( QString::fromLatin1( PARTICLE_FUNCTION_MIME_TYPE ) );
	pLayout->addWidget( m_pList, 1 );

	connect( m_pPrevButton, &QToolButton::clicked, this, &CQParticleFunctionList::PrevSystemPressed );
	connect( m_pNextButton, &QToolButton::clicked, this, &CQParticleFunctionList::NextSystemPressed );
	connect( m_pAssetMenuButton, &QToolButton::clicked, this, &CQParticleFunctionList::OnSessionAssetMenu );
	connect( m_pBaseButton, &QPushButton::clicked, this, &CQParticleFunctionList::SelectBaseProperties );
	connect( m_pParentChildMenu, &CQAssetParentChildMenu::ParentChildAssetSelected, this, &CQParticleFunctionList::OnParentChildAssetSelected );
	connect( m_pParentChildMenu, &CQAssetParentChildMenu::ParentChildAssetHovered, this, &CQParticleFunctionList::OnParentChildAssetHovered );

	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQParticleFunctionList::OnSelectionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQParticleFunctionList::OnFunctionListChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQParticleFunctionList::OnDocumentReplaced );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQParticleFunctionList::OnNodesModified );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQParticleFunctionList::OnFunctionEnableDisableChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_SESSION, &CQParticleFunctionList::OnPreviewConfigSelectionChanged );

	// Keys pressed with the focus here reach the shown session's commands first.
	CQInputBindManager::Get()->RegisterTarget( this, &m_SessionTarget );
	// Its developer help is that of the particle functions.
	if ( CQBindableWidgetInfo *pInfo = CQBindableWidgetInfo::FromObject( this ) )
		pInfo->GetTargets().SetHelpContext( "particles" );
	UpdateSessionWidgets();
	UpdateHistoryButtons();
}

CQParticleFunctionList::~CQParticleFunctionList()
{
	CQInputBindManager::Get()->UnregisterTarget( &m_SessionTarget );
	// Its popup tells it closed when it goes; this list must still be whole to hear it.
	delete m_pParentChildMenu;
	m_pParentChildMenu = nullptr;
	ClearRows();
}

// ---------------------------------------------------------------------------------------
// Session

void CQParticleFunctionList::GetSelectedClasses( CUtlVector<SelectedClass_t> *pClasses ) const
{
	pClasses->RemoveAll();
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	if ( !pDoc )
		return;
	CUtlVector<CBaseZolNode *> nodes;
	pDoc->GetSelectedNodes( nodes );
	for ( CBaseZolNode *pNode : nodes )
	{
		if ( !pNode->IsRootNode() )
			pClasses->AddToTail( { int( pNode->GetFunctionType() ), CUtlString( pNode->GetClassName() ) } );
	}
}

void CQParticleFunctionList::SelectClasses( const CUtlVector<SelectedClass_t> &classes )
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	if ( !pRoot )
		return;
	bool bFirst = true;
	for ( const SelectedClass_t &selected : classes )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( selected.m_nType );
		for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
		{
			CBaseZolNode *pNode = pRoot->GetNode( eType, i );
			if ( V_stricmp_fast( pNode->GetClassName(), selected.m_ClassName ) )
				continue;
			if ( bFirst )
				pDoc->SelectElement( pNode, false );
			else
				pDoc->AddElementToSelection( pNode, false );
			bFirst = false;
			break;
		}
	}
}

void CQParticleFunctionList::SetSession( CZolSession *pSession )
{
	CUtlVector<SelectedClass_t> noted;
	if ( m_pSession )
	{
		m_pSession->SetFunctionListScroll( m_pList->GetScrollValue() );
		CZolDoc *pDoc = m_pSession->GetDoc();
		const bool bOnlyBase = pDoc->GetSelection().Count() == 1 && pDoc->GetSelection()[ 0 ].IsRoot();
		// A reload leaves only the base properties selected: what the user had selected
		// before it is what to find again.
		if ( pSession == m_pSession && bOnlyBase )
			noted = m_SelectedClasses;
		else
			GetSelectedClasses( &noted );
	}

	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	m_EventMap.Detach( TOOL_EVENT_SLOT_SESSION );
	m_pSession = pSession;
	m_SessionTarget.SetTarget( pSession );
	CQInputBindManager::Get()->GetEngine().MarkDirty();
	m_pChildrenSection = nullptr;
	m_SelectionAnchor = ZolElementRef_t::None();
	if ( pSession )
	{
		m_EventMap.Attach( TOOL_EVENT_SLOT_SESSION, pSession->GetEventDispatcher() );
		m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, pSession->GetDoc()->GetEventDispatcher() );
	}
	UpdateHistoryButtons();
	UpdateSessionWidgets();
	UpdateTitle();
	RebuildList();

	if ( m_pSession )
	{
		SelectClasses( noted );
		m_pList->SetScrollValue( m_pSession->GetFunctionListScroll() );
	}
}

void CQParticleFunctionList::ForgetSession( CZolSession *pSession )
{
	if ( !pSession || pSession != m_pSession )
		return;
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	m_EventMap.Detach( TOOL_EVENT_SLOT_SESSION );
	m_pSession = nullptr;
	m_SessionTarget.SetTarget( nullptr );
	CQInputBindManager::Get()->GetEngine().MarkDirty();
	m_pChildrenSection = nullptr;
	m_SelectedClasses.RemoveAll();
	UpdateHistoryButtons();
	UpdateSessionWidgets();
	UpdateTitle();
	ClearRows();
}

void CQParticleFunctionList::UpdateHistoryButtons()
{
	CZolApp *pApp = ZolApp();
	const CEditorSessionHistory *pHistory = pApp ? &pApp->GetSessionHistory() : nullptr;
	const int nPosition = pHistory ? pHistory->GetPosition() : -1;
	m_pPrevButton->setEnabled( pHistory && nPosition > 0 );
	m_pNextButton->setEnabled( pHistory && nPosition >= 0 && nPosition + 1 < pHistory->Count() );
}

void CQParticleFunctionList::UpdateSessionWidgets()
{
	IAsset *pAsset = m_pSession ? m_pSession->GetAsset() : nullptr;
	m_pAssetMenuButton->setEnabled( pAsset != nullptr );
	m_pParentChildMenu->SetAsset( pAsset );
	m_pAddFunctionButton->setVisible( m_pSession != nullptr );
	m_pAddChildButton->setVisible( m_pSession != nullptr );
	m_pBaseButton->setVisible( m_pSession != nullptr );
}

void CQParticleFunctionList::UpdateTitle()
{
	if ( !m_pSession )
	{
		m_pTitle->SetText( QString() );
		return;
	}
	CUtlString strPath( m_pSession->GetFileName() );
	CUtlString strRelative;
	if ( EditorFiles::MakeRelative( strPath, "CONTENT", &strRelative ) && !strRelative.IsEmpty() && strRelative.Get()[ 0 ] != '.' )
		strPath = strRelative;
	strPath = Host_DisplayPath( strPath );
	const QString prefix = tr( "Now editing: " );
	// The file's name stays readable longest; its folders give way first.
	const QString path = QString::fromUtf8( strPath.Get() );
	const QString name = QString::fromUtf8( V_UnqualifiedFileName( strPath.Get() ) );
	m_pTitle->SetText( prefix + path, prefix.size(), name.size() );
}

// ---------------------------------------------------------------------------------------
// Rows

void CQParticleFunctionList::GetSectionOrder( CUtlVector<ParticleFunctionType_t> *pOrder ) const
{
	pOrder->RemoveAll();
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	if ( !pRoot )
		return;
	if ( pRoot->GetReadKV3()->GetMemberBool( "m_bEnableNamedValues", false ) )
		pOrder->AddToTail( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS );
	for ( int nType = PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR; nType <= PARTICLE_FUNCTION_CHILDREN; ++nType )
		pOrder->AddToTail( ParticleFunctionType_t( nType ) );
}

void CQParticleFunctionList::ClearRows()
{
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
		pRow->Detach();
	m_Widgets.clear();
	m_Headers.clear();
	m_pChildrenSection = nullptr;
	m_pList->Clear();
}

void CQParticleFunctionList::RebuildList()
{
	const int nScroll = m_pList->GetScrollValue();
	ClearRows();
	++m_nRebuildCount;
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	if ( !pRoot )
		return;

	CUtlVector<ParticleFunctionType_t> order;
	GetSectionOrder( &order );
	for ( ParticleFunctionType_t eType : order )
	{
		if ( eType == PARTICLE_FUNCTION_CHILDREN )
		{
			m_pChildrenSection = new CQParticleFunctionChildren( this );
			m_pChildrenSection->SetSession( m_pSession );
			connect( m_pChildrenSection, &CQParticleFunctionType::AddFunctionOfType, this, &CQParticleFunctionList::OnAddFunctionOfType );
			m_Headers.append( m_pChildrenSection );
			m_pList->AddWidget( m_pChildrenSection );
			// Only slots that hold a node get a row.
			for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
			{
				if ( CBaseZolNode *pNode = pRoot->GetNode( eType, i ) )
				{
					auto *pRow = new CQParticleChildWidget( this, m_pSession, pNode, i );
					m_Widgets.append( pRow );
					m_pList->AddWidget( pRow );
				}
			}
			continue;
		}
		auto *pHeader = new CQParticleFunctionType( eType );
		connect( pHeader, &CQParticleFunctionType::AddFunctionOfType, this, &CQParticleFunctionList::OnAddFunctionOfType );
		m_Headers.append( pHeader );
		m_pList->AddWidget( pHeader );
		for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
		{
			CBaseZolNode *pNode = pRoot->GetNode( eType, i );
			CQParticleFunctionBaseWidget *pRow;
			if ( eType == PARTICLE_FUNCTION_NAMED_VALUE_LOCALS )
				pRow = new CQParticleVariableWidget( this, m_pSession, pNode, i );
			else
				pRow = new CQParticleFunctionWidget( this, m_pSession, pNode, eType, i );
			m_Widgets.append( pRow );
			m_pList->AddWidget( pRow );
		}
		RefreshWrittenAttributes( eType );
		m_pList->AddSpacing( 4 );
	}
	m_pList->AddStretch( 1 );
	UpdateSelectionFromDocument( true );
	RefreshControlPointColors();
	m_pList->SetScrollValue( nScroll );
}

bool CQParticleFunctionList::RowsMatchDocument() const
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	if ( !pRoot )
		return m_Widgets.isEmpty() && m_Headers.isEmpty();
	CUtlVector<ParticleFunctionType_t> order;
	GetSectionOrder( &order );
	if ( order.Count() != m_Headers.size() )
		return false;
	int nRow = 0;
	for ( int nSection = 0; nSection < order.Count(); ++nSection )
	{
		const ParticleFunctionType_t eType = order[ nSection ];
		if ( m_Headers[ nSection ]->GetType() != eType )
			return false;
		for ( int i = 0; i < pRoot->GetNodeCount( eType ); ++i )
		{
			CBaseZolNode *pNode = pRoot->GetNode( eType, i );
			if ( !pNode )
				continue;
			if ( nRow >= m_Widgets.size() || m_Widgets[ nRow ]->GetType() != eType || m_Widgets[ nRow ]->GetNode() != pNode ||
				 m_Widgets[ nRow ]->GetIndex() != i )
				return false;
			++nRow;
		}
	}
	return nRow == m_Widgets.size();
}

void CQParticleFunctionList::RefreshRows()
{
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		pRow->RefreshText();
		pRow->RefreshEnabledBox();
		if ( auto *pChild = qobject_cast<CQParticleChildWidget *>( pRow ) )
			pChild->RefreshStatus();
	}
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
		RefreshWrittenAttributes( ParticleFunctionType_t( nType ) );
	UpdateSelectionFromDocument( true );
	RefreshControlPointColors();
}

CQParticleFunctionBaseWidget *CQParticleFunctionList::FindRow( const CBaseZolNode *pNode ) const
{
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		if ( pRow->GetNode() == pNode )
			return pRow;
	}
	return nullptr;
}

CQParticleFunctionType *CQParticleFunctionList::GetSectionHeader( ParticleFunctionType_t eType ) const
{
	for ( CQParticleFunctionType *pHeader : m_Headers )
	{
		if ( pHeader->GetType() == eType )
			return pHeader;
	}
	return nullptr;
}

// ---------------------------------------------------------------------------------------
// Selection

void CQParticleFunctionList::UpdateSelectionFromDocument( bool bRemember )
{
	CUtlVector<CBaseZolNode *> nodes;
	if ( CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr )
		pDoc->GetSelectedNodes( nodes );
	ApplySelection( nodes, bRemember );
}

void CQParticleFunctionList::UpdateSelection( const CUtlVector<CBaseZolNode *> &nodes )
{
	ApplySelection( nodes, true );
}

void CQParticleFunctionList::ApplySelection( const CUtlVector<CBaseZolNode *> &nodes, bool bRemember )
{
	bool bRoot = false;
	for ( CBaseZolNode *pNode : nodes )
		bRoot = bRoot || pNode->IsRootNode();
	m_pBaseButton->SetActive( bRoot );
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
		pRow->GetEditButton()->SetActive( pRow->GetNode() && nodes.HasElement( pRow->GetNode() ) );
	if ( bRemember )
		GetSelectedClasses( &m_SelectedClasses );
}

void CQParticleFunctionList::OnRowClicked( CQParticleFunctionBaseWidget *pRow, Qt::KeyboardModifiers modifiers )
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CBaseZolNode *pNode = pRow ? pRow->GetNode() : nullptr;
	if ( !pDoc || !pNode )
		return;
	const int nClicked = m_Widgets.indexOf( pRow );
	CBaseZolNode *pAnchor = pDoc->ResolveElementRef( m_SelectionAnchor );
	CQParticleFunctionBaseWidget *pAnchorRow = pAnchor ? FindRow( pAnchor ) : nullptr;
	if ( ( modifiers & Qt::ShiftModifier ) && pAnchorRow && nClicked >= 0 )
	{
		// From the row clicked last to this one, in the order shown: one undo step.
		const int nFrom = m_Widgets.indexOf( pAnchorRow );
		const int nStep = nClicked >= nFrom ? 1 : -1;
		pDoc->BeginEdit( "Select Elements", false );
		pDoc->SelectElement( pAnchor, false );
		for ( int i = nFrom + nStep; i != nClicked + nStep; i += nStep )
		{
			if ( CBaseZolNode *pRangeNode = m_Widgets[ i ]->GetNode() )
				pDoc->AddElementToSelection( pRangeNode, false );
		}
	}
	else if ( modifiers & Qt::ControlModifier )
	{
		pDoc->AddElementToSelection( pNode, true );
		m_SelectionAnchor = pDoc->GetElementRef( pNode );
	}
	else
	{
		pDoc->SelectElement( pNode, true );
		m_SelectionAnchor = pDoc->GetElementRef( pNode );
	}
	// A click on a row that was selected already changes nothing in the document, but the
	// button has toggled itself: show the document's selection again.
	UpdateSelectionFromDocument( true );
}

void CQParticleFunctionList::SelectBaseProperties()
{
	if ( CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr )
		pDoc->SelectBaseProperties();
	UpdateSelectionFromDocument( true );
}

// ---------------------------------------------------------------------------------------
// Refreshing in place

void CQParticleFunctionList::RefreshWrittenAttributes( ParticleFunctionType_t eType )
{
	int nFirst = -1;
	for ( int i = 0; i < m_Widgets.size() && nFirst < 0; ++i )
	{
		if ( m_Widgets[ i ]->GetType() == eType )
			nFirst = i;
	}
	if ( nFirst < 0 )
		return;
	if ( eType == PARTICLE_FUNCTION_CHILDREN || eType == PARTICLE_FUNCTION_NAMED_VALUE_LOCALS )
	{
		for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
		{
			if ( pRow->GetType() == eType )
				pRow->SetWrittenAttributes( 0, 0 );
		}
		return;
	}
	// Disabled functions count too: the later of two writers shows the conflict.
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	uint64_t nWrittenBefore = 0;
	for ( int i = nFirst; i < m_Widgets.size() && m_Widgets[ i ]->GetType() == eType; ++i )
	{
		CQParticleFunctionBaseWidget *pRow = m_Widgets[ i ];
		ParticleFunctionInfo_t info;
		if ( pMgr && pRow->GetNode() )
			pMgr->GetFunctionInfo( pRow->GetNode()->GetReadKV3(), &info );
		pRow->SetWrittenAttributes( info.m_nWrittenAttributes, info.m_nWrittenAttributes & nWrittenBefore );
		nWrittenBefore |= info.m_nWrittenAttributes;
	}
}

void CQParticleFunctionList::RefreshCheckedType()
{
	for ( int i = m_Widgets.size() - 1; i >= 0; --i )
	{
		if ( m_Widgets[ i ]->GetEditButton()->isChecked() )
		{
			RefreshWrittenAttributes( m_Widgets[ i ]->GetType() );
			return;
		}
	}
}

void CQParticleFunctionList::RefreshEnabledState()
{
	// Every row, not only the checked ones: an undo-free toggle from elsewhere shows too.
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
		pRow->RefreshEnabledBox();
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
		RefreshWrittenAttributes( ParticleFunctionType_t( nType ) );
	RefreshControlPointColors();
}

void CQParticleFunctionList::RefreshChildStatus()
{
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		if ( pRow->GetEditButton()->isChecked() )
		{
			if ( auto *pChild = qobject_cast<CQParticleChildWidget *>( pRow ) )
				pChild->RefreshStatus();
			return;
		}
	}
}

int CQParticleFunctionList::GetControlPointFlags( const CQParticleFunctionBaseWidget *pRow ) const
{
	CBaseZolNode *pNode = pRow->GetNode();
	if ( !m_pSession || !pNode )
		return 0;
	const ParticleParamID_t &selected = m_pSession->GetSelectedControlPoint();
	if ( selected.IsNone() )
		return 0;
	if ( CZolVariableNode *pVariable = pNode->AsVariableNode() )
		return selected.IsNamed() && selected.m_nToken == ParticleParamID_t::TokenOf( pVariable->GetName() ) ? 1 : 0;
	if ( pNode->IsChildNode() )
	{
		CZolRootNode *pRoot = m_pSession->GetDoc()->GetRoot();
		if ( !pRoot || !pNode->IsEnabled() )
			return 0;
		return m_pSession->GetDefinitionUsage().GetFunctionFlags( PARTICLE_FUNCTION_CHILDREN, pRoot->GetRuntimeChildIndex( pRow->GetIndex() ), selected );
	}
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pMgr )
		return 0;
	ParticleFunctionInfo_t info;
	pMgr->GetFunctionInfo( pNode->GetReadKV3(), &info );
	int nFlags = 0;
	for ( const ParticleControlPointUse_t &use : info.m_ControlPointUses )
	{
		if ( use.m_ID == selected )
			nFlags |= use.m_nFlags;
	}
	return nFlags;
}

void CQParticleFunctionList::RefreshControlPointColors()
{
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		const int nFlags = GetControlPointFlags( pRow ) & 3;
		// No use: the style sheet's light blue.
		QColor color;
		if ( nFlags == 1 )
			color = QColor( Qt::darkGreen );
		else if ( nFlags == 2 )
			color = QColor( Qt::darkYellow );
		else if ( nFlags == 3 )
			color = QColor( Qt::darkCyan );
		pRow->GetEditButton()->SetNameColor( color );
	}
}

// ---------------------------------------------------------------------------------------
// Document and session events

void CQParticleFunctionList::OnSelectionChanged( const ZolEvent_SelectionChanged_t & )
{
	UpdateSelectionFromDocument( true );
}

void CQParticleFunctionList::OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & )
{
	// The end of a property edit says the list changed, though its rows still stand.
	if ( RowsMatchDocument() )
		RefreshRows();
	else
		RebuildList();
}

void CQParticleFunctionList::OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & )
{
	// Every node was made anew: no row may keep its pointer. A load leaves only the base
	// properties selected; the classes selected before it are kept for SetSession.
	const int nScroll = m_pList->GetScrollValue();
	CUtlVector<SelectedClass_t> remembered = m_SelectedClasses;
	RebuildList();
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	if ( pDoc && pDoc->GetSelection().Count() == 1 && pDoc->GetSelection()[ 0 ].IsRoot() )
		m_SelectedClasses = remembered;
	m_pList->SetScrollValue( nScroll );
}

void CQParticleFunctionList::OnNodesModified( const ZolEvent_NodesModified_t &event )
{
	if ( !event.m_pNodeSet )
		return;
	bool bTypes[ PARTICLE_FUNCTION_LIST_COUNT ] = {};
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		if ( !pRow->GetNode() || !event.m_pNodeSet->count( pRow->GetNode() ) )
			continue;
		pRow->RefreshText();
		if ( auto *pChild = qobject_cast<CQParticleChildWidget *>( pRow ) )
			pChild->RefreshStatus();
		if ( pRow->GetType() >= 0 && pRow->GetType() < PARTICLE_FUNCTION_LIST_COUNT )
			bTypes[ pRow->GetType() ] = true;
	}
	// An edit may change what a function writes or which control point it reads.
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		if ( bTypes[ nType ] )
			RefreshWrittenAttributes( ParticleFunctionType_t( nType ) );
	}
	RefreshControlPointColors();
}

void CQParticleFunctionList::OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & )
{
	RefreshEnabledState();
}

void CQParticleFunctionList::OnPreviewConfigSelectionChanged( const ZolEvent_PreviewConfigSelectionChanged_t & )
{
	RefreshControlPointColors();
}

// ---------------------------------------------------------------------------------------
// Slots

void CQParticleFunctionList::PrevSystemPressed()
{
	if ( CZolApp *pApp = ZolApp() )
		pApp->ActivatePreviousEditorSession();
}

void CQParticleFunctionList::NextSystemPressed()
{
	if ( CZolApp *pApp = ZolApp() )
		pApp->ActivateNextEditorSession();
}

void CQParticleFunctionList::OnSessionAssetMenu()
{
	IAsset *pAsset = m_pSession ? m_pSession->GetAsset() : nullptr;
	if ( !pAsset )
	{
		QApplication::beep();
		return;
	}
	CQAssetContextMenu menu( pAsset, this );
	connect( &menu, &CQAssetContextMenu::OpenAsset, this, &CQParticleFunctionList::OnParentChildAssetSelected );
	menu.exec( QCursor::pos() );
}

void CQParticleFunctionList::OnParentChildAssetSelected( IAsset *pAsset )
{
	CZolApp *pApp = ZolApp();
	if ( pApp && pAsset && pAsset->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM )
		pApp->OpenAsset( pAsset->GetPath(), true, nullptr );
}

void CQParticleFunctionList::OnParentChildAssetHovered( IAsset *pAsset )
{
	// Only a particle system whose compiled form exists can be shown.
	IResourceSystem *pResources = GetResourceSystem();
	CResourceHandle hResource = pAsset && pResources ? pResources->GetResource( pAsset->GetResourceName() ) : CResourceHandle();
	const bool bShowable = hResource && hResource->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM;
	emit ParticleSystemHovered( bShowable ? pAsset : nullptr );
}

void CQParticleFunctionList::OnAddFunctionOfType( ParticleFunctionType_t eType )
{
	if ( m_pSession )
		m_pSession->AddElement( eType, m_pVariableContext );
}

// ---------------------------------------------------------------------------------------
// Dragging rows

const void *CQParticleFunctionList::GetDragOwner() const
{
	return m_pSession;
}

bool CQParticleFunctionList::FindDropPosition( const QPoint &globalPoint, int nType, int *pIndex ) const
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	if ( !pRoot || nType < 0 || nType > PARTICLE_FUNCTION_CHILDREN )
		return false;
	*pIndex = pRoot->GetNodeCount( ParticleFunctionType_t( nType ) );
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		if ( pRow->GetType() != nType )
			continue;
		const int nMiddle = pRow->mapToGlobal( QPoint( 0, pRow->height() / 2 ) ).y();
		if ( nMiddle > globalPoint.y() )
		{
			*pIndex = pRow->GetIndex();
			break;
		}
	}
	return true;
}

bool CQParticleFunctionList::GetDropIndicator( int nType, int nIndex, QWidget **ppWidget, int *pOffset ) const
{
	CQParticleFunctionBaseWidget *pLast = nullptr;
	for ( CQParticleFunctionBaseWidget *pRow : m_Widgets )
	{
		if ( pRow->GetType() != nType )
			continue;
		if ( pRow->GetIndex() == nIndex )
		{
			*ppWidget = pRow;
			*pOffset = 0;
			return true;
		}
		pLast = pRow;
	}
	if ( !pLast )
		return false;
	*ppWidget = pLast;
	*pOffset = pLast->height();
	return true;
}

void CQParticleFunctionList::MoveItem( int nType, int nFrom, int nTo )
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	CZolRootNode *pRoot = pDoc ? pDoc->GetRoot() : nullptr;
	if ( !pRoot || nType < 0 || nType > PARTICLE_FUNCTION_CHILDREN )
		return;
	const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
	CBaseZolNode *pNode = pRoot->GetNode( eType, nFrom );
	if ( !pNode || nTo < 0 || nTo > pRoot->GetNodeCount( eType ) )
		return;
	// The move rebuilds the rows; the node itself survives it.
	pDoc->RemoveElementFromSelection( pNode, false );
	pDoc->MoveElement( pNode, nTo );
	pDoc->SelectElement( pNode, false );
}
