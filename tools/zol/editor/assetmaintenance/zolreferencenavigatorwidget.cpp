#include "tools/zol/editor/assetmaintenance/zolreferencenavigatorwidget.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QMenu>
#include <QPushButton>
#include <QTreeWidget>
#include <QVBoxLayout>

#include "core/host/igametoolsservice.h"
#include "tools/zol/editor/assetmaintenance/particledefinitionitem.h"
#include "tools/zol/editor/assetmaintenance/particlenavigatordelegate.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolmodifiertable.h"
#include "zoldoc_lib/zolreferencenavigator.h"

namespace
{
constexpr int FILE_COLUMN_WIDTH = 400;
constexpr int KEY_COLUMN_WIDTH = 36;
}

CQZolReferenceNavigatorWidget::CQZolReferenceNavigatorWidget( QWidget *pParent ) : QWidget( pParent )
{
	setWindowTitle( "Particle Reference Navigator" );
	resize( 800, 400 );
	m_pModel = std::make_unique<CZolReferenceNavigator>( &m_Documents );
	m_pModel->SetModifierTable( &GetModifierTable() );

	auto *pLayout = new QVBoxLayout( this );
	auto *pRow = new QHBoxLayout;
	m_pReloadButton = new QPushButton( QIcon( "game:tools/images/common/reload.png" ), "Reload", this );
	pRow->addWidget( m_pReloadButton );
	pRow->addStretch();
	pLayout->addLayout( pRow );
	m_pTree = new QTreeWidget( this );
	m_pTree->setObjectName( "ZOL_ReferenceNavigatorTree" );
	// The chart's colours read on a dark ground, as the function list's do.
	m_pTree->setStyleSheet( "QTreeWidget#ZOL_ReferenceNavigatorTree { background-color: #2b2d30; color: rgb(192, 192, 192); }" );
	m_pTree->setContextMenuPolicy( Qt::CustomContextMenu );
	m_pDelegate = new CQParticleNavigatorDelegate( m_pTree );
	pLayout->addWidget( m_pTree );
	m_pTree->setHeaderLabels( { "File", "" } );
	m_pTree->setRootIsDecorated( false );
	m_pTree->setExpandsOnDoubleClick( false );

	connect( m_pReloadButton, &QPushButton::clicked, this, &CQZolReferenceNavigatorWidget::OnRefresh );
	connect( m_pTree, &QTreeWidget::itemClicked, this, &CQZolReferenceNavigatorWidget::OnItemClicked );
	connect( m_pTree, &QTreeWidget::itemDoubleClicked, this, &CQZolReferenceNavigatorWidget::OnItemDoubleClicked );
	connect( m_pTree, &QTreeWidget::customContextMenuRequested, this, &CQZolReferenceNavigatorWidget::OnContextMenu );
}

CQZolReferenceNavigatorWidget::~CQZolReferenceNavigatorWidget()
{
	// The items point into the model: they go first.
	m_pTree->clear();
}

CZolModifierTable &CQZolReferenceNavigatorWidget::GetModifierTable()
{
	static CZolModifierTable s_Table;
	return s_Table;
}

void CQZolReferenceNavigatorWidget::OnReloadModifierInfo()
{
	GetModifierTable().Reload( GetGameToolsService() );
}

int CQZolReferenceNavigatorWidget::GetControlPointOfColumn( int nColumn ) const
{
	if ( nColumn < 1 || nColumn > int( m_Keys.size() ) )
		return -1;
	const CUtlString &key = m_Keys[ size_t( nColumn - 1 ) ];
	for ( int nControlPoint : m_pModel->GetControlPoints() )
	{
		if ( key == CZolReferenceNavigator::ControlPointKey( nControlPoint ) )
			return nControlPoint;
	}
	return -1;
}

void CQZolReferenceNavigatorWidget::OnRefresh()
{
	// A hidden window waits: the main window refreshes it when it shows.
	if ( !isVisible() )
		return;
	CUtlVector<IAsset *> systems;
	if ( CZolApp *pApp = ZolApp() )
	{
		for ( CBaseEditorSession *pSession : pApp->GetSessions() )
		{
			CZolSession *pZolSession = static_cast<CZolSession *>( pSession );
			if ( pZolSession->GetAsset() && pZolSession->GetDoc() )
				systems.AddToTail( pZolSession->GetAsset() );
		}
	}
	m_pTree->clear();
	m_pLastClicked = nullptr;
	m_pModel->Refresh( systems );

	m_Keys = m_pModel->GetKeys();
	QStringList headers( "File" );
	for ( const CUtlString &key : m_Keys )
		headers << QString::fromUtf8( key.Get() );
	headers << "";
	m_pTree->setColumnCount( headers.size() );
	m_pTree->setHeaderLabels( headers );
	// Key columns are narrow: the whole name stands in the tool tip.
	for ( int nColumn = 1; nColumn < headers.size() - 1; ++nColumn )
		m_pTree->headerItem()->setToolTip( nColumn, headers[ nColumn ] );
	for ( int nColumn = 1; nColumn < headers.size(); ++nColumn )
		m_pTree->setItemDelegateForColumn( nColumn, nColumn <= int( m_Keys.size() ) ? m_pDelegate : nullptr );

	// Items by tree and row, to link each row's twins once all stand.
	std::vector<std::vector<CQParticleDefinitionItem *>> items;
	for ( const ZolReferenceTree_t &tree : m_pModel->GetTrees() )
	{
		std::vector<CQParticleDefinitionItem *> &treeItems = items.emplace_back();
		for ( const ZolReferenceRow_t &row : tree.m_Rows )
		{
			auto *pItem = new CQParticleDefinitionItem( row, m_Keys );
			if ( row.m_nParent < 0 )
				m_pTree->addTopLevelItem( pItem );
			else
				treeItems[ size_t( row.m_nParent ) ]->addChild( pItem );
			treeItems.push_back( pItem );
		}
	}
	for ( size_t nTree = 0; nTree < items.size(); ++nTree )
	{
		for ( CQParticleDefinitionItem *pItem : items[ nTree ] )
		{
			for ( const auto &[ nTwinTree, nTwinRow ] : pItem->GetRow().m_Twins )
				pItem->GetTwins().push_back( items[ size_t( nTwinTree ) ][ size_t( nTwinRow ) ] );
		}
	}
	m_pTree->expandAll();
	m_pTree->setColumnWidth( 0, FILE_COLUMN_WIDTH );
	for ( int nColumn = 1; nColumn < headers.size(); ++nColumn )
		m_pTree->setColumnWidth( nColumn, KEY_COLUMN_WIDTH );
}

void CQZolReferenceNavigatorWidget::SetHighlight( CQParticleDefinitionItem *pItem, bool bHighlighted )
{
	pItem->SetHighlighted( bHighlighted );
	for ( CQParticleDefinitionItem *pTwin : pItem->GetTwins() )
		pTwin->SetHighlighted( bHighlighted );
}

void CQZolReferenceNavigatorWidget::OnItemClicked( QTreeWidgetItem *pItem, int )
{
	if ( m_pLastClicked )
		SetHighlight( m_pLastClicked, false );
	m_pLastClicked = static_cast<CQParticleDefinitionItem *>( pItem );
	if ( m_pLastClicked )
		SetHighlight( m_pLastClicked, true );
}

void CQZolReferenceNavigatorWidget::OnItemDoubleClicked( QTreeWidgetItem *pItem, int )
{
	IAsset *pAsset = pItem ? static_cast<CQParticleDefinitionItem *>( pItem )->GetAsset() : nullptr;
	if ( pAsset )
		CZolSessionDocuments::FindSession( pAsset, true );
}

QMenu *CQZolReferenceNavigatorWidget::CreateContextMenu( const QPoint &position )
{
	auto *pItem = static_cast<CQParticleDefinitionItem *>( m_pTree->itemAt( position ) );
	const int nControlPoint = pItem ? GetControlPointOfColumn( m_pTree->columnAt( position.x() ) ) : -1;
	if ( !pItem || !pItem->GetAsset() || nControlPoint < 0 )
		return nullptr;
	auto *pMenu = new QMenu( this );
	QAction *pConvert = pMenu->addAction( QString( "Convert Control Point #%1 to Variable... " ).arg( nControlPoint ) );
	IAsset *pAsset = pItem->GetAsset();
	connect( pConvert, &QAction::triggered, this, [ pAsset, nControlPoint ]() {
		CZolApp *pApp = ZolApp();
		if ( CZolSession *pSession = pApp ? CZolSessionDocuments::FindSession( pAsset, true ) : nullptr )
			pApp->ShowVariableConvertDialog( pSession, nControlPoint );
	} );
	return pMenu;
}

void CQZolReferenceNavigatorWidget::OnContextMenu( const QPoint &position )
{
	std::unique_ptr<QMenu> pMenu( CreateContextMenu( position ) );
	if ( pMenu )
		pMenu->exec( m_pTree->viewport()->mapToGlobal( position ) );
}
