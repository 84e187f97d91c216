#include "tools/zol/editor/zolassetpane.h"

#include <algorithm>

#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QListWidget>
#include <QSignalBlocker>
#include <QVBoxLayout>

#include "core/console/convar.h"
#include "core/host/hostpaths.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/iworkingset.h"
#include "core/host/resourcetype.h"

// While tests drive the editor a selection in the pane must not switch sessions under them;
// an artist turns this on to have a click show the system's session.
static ConVar zol_disable_test_mode( "zol_disable_test_mode", "0", FCVAR_NONE, "A selection in the asset pane shows the session of the selected particle system." );

CQZolAssetPane::CQZolAssetPane( IAssetSystem *pAssetSystem, IWorkingSet *pWorkingSet, QWidget *pParent )
	: QWidget( pParent ), m_pAssetSystem( pAssetSystem ), m_pWorkingSet( pWorkingSet )
{
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 2, 2, 2, 2 );
	auto *pBar = new QHBoxLayout();
	m_pViewCombo = new QComboBox( this );
	m_pViewCombo->addItem( "Browse All Particle Systems" );
	m_pViewCombo->addItem( "Open Particle Systems" );
	m_pFilter = new QLineEdit( this );
	m_pFilter->setPlaceholderText( "Filter" );
	m_pFilter->setClearButtonEnabled( true );
	pBar->addWidget( m_pViewCombo );
	pBar->addWidget( m_pFilter, 1 );
	pLayout->addLayout( pBar );
	m_pList = new QListWidget( this );
	m_pList->setSelectionMode( QAbstractItemView::ExtendedSelection );
	// Names side by side in columns: a wide, low pane shows many at once.
	m_pList->setFlow( QListView::TopToBottom );
	m_pList->setWrapping( true );
	m_pList->setResizeMode( QListView::Adjust );
	pLayout->addWidget( m_pList, 1 );

	connect( m_pViewCombo, QOverload<int>::of( &QComboBox::currentIndexChanged ), this, &CQZolAssetPane::Refresh );
	connect( m_pFilter, &QLineEdit::textChanged, this, &CQZolAssetPane::ApplyFilter );
	connect( m_pList, &QListWidget::itemSelectionChanged, this, &CQZolAssetPane::OnAssetSelectionChanged );
	connect( m_pList, &QListWidget::itemActivated, this, &CQZolAssetPane::OnItemActivated );
	Refresh();
}

void CQZolAssetPane::SetView( View_t eView )
{
	m_pViewCombo->setCurrentIndex( int( eView ) );
}

CQZolAssetPane::View_t CQZolAssetPane::GetView() const
{
	return View_t( m_pViewCombo->currentIndex() );
}

void CQZolAssetPane::Refresh()
{
	CUtlVector<IAsset *> assets;
	if ( GetView() == VIEW_OPEN )
	{
		if ( m_pWorkingSet )
			m_pWorkingSet->AppendTo( &assets );
	}
	else if ( m_pAssetSystem )
		m_pAssetSystem->GetAssets( &assets, RESOURCE_TYPE_PARTICLE_SYSTEM );

	// The same names keep their rows: a refresh may come from a click on one of them.
	QStringList names;
	for ( IAsset *pAsset : assets )
	{
		if ( pAsset )
			names << QString::fromUtf8( pAsset->GetResourceName() );
	}
	bool bSame = names.size() == m_pList->count();
	for ( int i = 0; bSame && i < names.size(); ++i )
		bSame = m_pList->item( i )->data( Qt::UserRole ).toString() == names[ i ];
	if ( bSame )
		return;

	const std::vector<IAsset *> selected = GetSelectedAssets();
	m_bSelecting = true;
	m_pList->clear();
	for ( IAsset *pAsset : assets )
	{
		if ( !pAsset )
			continue;
		// The name is kept to find the asset again: the index may drop an asset between
		// two refreshes.
		auto *pItem = new QListWidgetItem( QString::fromUtf8( Host_DisplayPath( pAsset->GetResourceName() ).Get() ), m_pList );
		pItem->setData( Qt::UserRole, QString::fromUtf8( pAsset->GetResourceName() ) );
		pItem->setToolTip( QString::fromUtf8( Host_DisplayPath( pAsset->GetAbsolutePath() ).Get() ) );
		if ( std::find( selected.begin(), selected.end(), pAsset ) != selected.end() )
			pItem->setSelected( true );
	}
	m_bSelecting = false;
	ApplyFilter();
}

void CQZolAssetPane::ApplyFilter()
{
	const QString filter = m_pFilter->text().trimmed();
	for ( int i = 0; i < m_pList->count(); ++i )
	{
		QListWidgetItem *pItem = m_pList->item( i );
		pItem->setHidden( !filter.isEmpty() && !pItem->text().contains( filter, Qt::CaseInsensitive ) );
	}
}

IAsset *CQZolAssetPane::AssetOfItem( const QListWidgetItem *pItem ) const
{
	if ( !pItem || !m_pAssetSystem )
		return nullptr;
	return m_pAssetSystem->FindAssetByResourceName( pItem->data( Qt::UserRole ).toString().toUtf8().constData() );
}

std::vector<IAsset *> CQZolAssetPane::GetSelectedAssets() const
{
	std::vector<IAsset *> assets;
	for ( QListWidgetItem *pItem : m_pList->selectedItems() )
	{
		if ( IAsset *pAsset = AssetOfItem( pItem ) )
			assets.push_back( pAsset );
	}
	return assets;
}

void CQZolAssetPane::SelectAsset( IAsset *pAsset )
{
	m_bSelecting = true;
	m_pList->clearSelection();
	for ( int i = 0; pAsset && i < m_pList->count(); ++i )
	{
		QListWidgetItem *pItem = m_pList->item( i );
		if ( AssetOfItem( pItem ) == pAsset )
		{
			pItem->setSelected( true );
			m_pList->setCurrentItem( pItem, QItemSelectionModel::NoUpdate );
			m_pList->scrollToItem( pItem );
		}
	}
	m_bSelecting = false;
}

void CQZolAssetPane::ClearSelection()
{
	m_bSelecting = true;
	m_pList->clearSelection();
	m_bSelecting = false;
}

void CQZolAssetPane::OnAssetSelectionChanged()
{
	if ( !m_bSelecting && zol_disable_test_mode.GetBool() )
		emit ZolAssetPaneSelectionChanged();
}

void CQZolAssetPane::OnItemActivated( QListWidgetItem *pItem )
{
	if ( IAsset *pAsset = AssetOfItem( pItem ) )
		emit OpenSession( pAsset );
}
