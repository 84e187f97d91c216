#include "tools/toolutils2/widgets/undo/undohistorywidget.h"

#include <QAction>
#include <QToolBar>
#include <QVBoxLayout>

#include "tools/toolutils2/undo/undohistory.h"
#include "tools/toolutils2/widgets/undo/undolistwidget.h"

CQUndoHistoryWidget::CQUndoHistoryWidget( QWidget *pParent )
	: QWidget( pParent )
{
	m_pToolBar = new QToolBar( this );
	m_pToolBar->setIconSize( QSize( 16, 16 ) );
	m_pUndoAction = m_pToolBar->addAction( QIcon( "game:tools/images/common/undo_sm.png" ), tr( "Undo" ), this, &CQUndoHistoryWidget::PerformSingleUndo );
	m_pRedoAction = m_pToolBar->addAction( QIcon( "game:tools/images/common/redo_sm.png" ), tr( "Redo" ), this, &CQUndoHistoryWidget::PerformSingleRedo );
	m_pUndoAction->setEnabled( false );
	m_pRedoAction->setEnabled( false );

	m_pList = new CQUndoListWidget( this );
	connect( m_pList, &CQUndoListWidget::RowClicked, this, &CQUndoHistoryWidget::UndoOrRedoByRow );
	connect( m_pList, &CQUndoListWidget::RowDoubleClicked, this, &CQUndoHistoryWidget::UndoOrRedoByRow );

	QVBoxLayout *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->setSpacing( 0 );
	pLayout->addWidget( m_pToolBar );
	pLayout->addWidget( m_pList );
}

CQUndoHistoryWidget::~CQUndoHistoryWidget()
{
	if ( m_pHistory )
		m_pHistory->RemoveListener( this );
}

void CQUndoHistoryWidget::SetUndoHistory( CUndoHistory *pHistory )
{
	if ( m_pHistory )
		m_pHistory->RemoveListener( this );
	m_pHistory = pHistory;
	if ( m_pHistory )
		m_pHistory->AddListener( this );
	RebuildList();
}

CUndoHistory *CQUndoHistoryWidget::GetPrimaryHistory() const
{
	if ( !m_pHistory )
		return nullptr;
	return ( m_pHistory->IsPrimary() || !m_pHistory->GetPartner() ) ? m_pHistory : m_pHistory->GetPartner();
}

CUndoHistory *CQUndoHistoryWidget::GetRedoHistory() const
{
	CUndoHistory *pPrimary = GetPrimaryHistory();
	return pPrimary ? pPrimary->GetPartner() : nullptr;
}

QString CQUndoHistoryWidget::GetUndoActionText( const CUndoHistory *pUndoHistory )
{
	if ( !pUndoHistory || !pUndoHistory->CanUndo() )
		return tr( "Cannot Undo" );
	return tr( "Undo %1" ).arg( QString::fromUtf8( pUndoHistory->GetUndoName() ) );
}

QString CQUndoHistoryWidget::GetRedoActionText( const CUndoHistory *pRedoHistory )
{
	if ( !pRedoHistory || !pRedoHistory->CanUndo() )
		return tr( "Cannot Redo" );
	return tr( "Redo %1" ).arg( QString::fromUtf8( pRedoHistory->GetUndoName() ) );
}

void CQUndoHistoryWidget::OnUndoEvent( UndoEvent_t )
{
	if ( !m_bSuppressRebuild )
		RebuildList();
}

void CQUndoHistoryWidget::PerformSingleUndo()
{
	if ( CUndoHistory *pPrimary = GetPrimaryHistory() )
		pPrimary->PerformUndo();
}

void CQUndoHistoryWidget::PerformSingleRedo()
{
	if ( CUndoHistory *pRedo = GetRedoHistory() )
		pRedo->PerformUndo();
}

void CQUndoHistoryWidget::UndoOrRedoByRow( int nRow )
{
	CUndoHistory *pPrimary = GetPrimaryHistory();
	if ( !pPrimary || nRow < 0 )
		return;
	CUndoHistory *pRedo = pPrimary->GetPartner();
	int nUndoCount = pPrimary->GetStepCount();
	int nRedoCount = pRedo ? pRedo->GetStepCount() : 0;

	// Every single undo sends its events; the list is rebuilt once, at the end.
	m_bSuppressRebuild = true;
	if ( nRow < nUndoCount )
	{
		for ( int i = 0; i < nUndoCount - nRow - 1; ++i )
			pPrimary->PerformUndo();
	}
	else if ( nRow - nUndoCount < nRedoCount )
	{
		for ( int i = 0; i < nRow - nUndoCount + 1; ++i )
			pRedo->PerformUndo();
	}
	m_bSuppressRebuild = false;
	RebuildList();
}

void CQUndoHistoryWidget::RebuildList()
{
	m_pList->setRowCount( 0 );
	CUndoHistory *pPrimary = GetPrimaryHistory();
	if ( !pPrimary )
	{
		m_pUndoAction->setEnabled( false );
		m_pRedoAction->setEnabled( false );
		return;
	}
	CUndoHistory *pRedo = pPrimary->GetPartner();
	int nUndoCount = pPrimary->GetStepCount();
	int nRedoCount = pRedo ? pRedo->GetStepCount() : 0;
	m_pList->setRowCount( nUndoCount + nRedoCount );

	const QIcon itemIcon( "game:tools/images/common/undo_list_item.png" );
	for ( int nRow = 0; nRow < nUndoCount; ++nRow )
	{
		QTableWidgetItem *pItem = new QTableWidgetItem( itemIcon, QString::fromUtf8( pPrimary->GetStepName( nUndoCount - 1 - nRow ) ) );
		pItem->setFlags( pItem->flags() & ~Qt::ItemIsEditable );
		m_pList->setItem( nRow, 1, pItem );
	}
	QTableWidgetItem *pActiveItem = nullptr;
	if ( nUndoCount > 0 )
	{
		pActiveItem = new QTableWidgetItem( QIcon( "game:tools/images/common/undo_list_active.png" ), QString() );
		pActiveItem->setFlags( pActiveItem->flags() & ~Qt::ItemIsEditable );
		m_pList->setItem( nUndoCount - 1, 0, pActiveItem );
	}
	for ( int i = 0; i < nRedoCount; ++i )
	{
		QTableWidgetItem *pItem = new QTableWidgetItem( itemIcon, QString::fromUtf8( pRedo->GetStepName( i ) ) );
		QFont font = pItem->font();
		font.setItalic( true );
		pItem->setFont( font );
		pItem->setFlags( Qt::NoItemFlags );
		m_pList->setItem( nUndoCount + i, 1, pItem );
	}

	if ( pActiveItem )
		m_pList->scrollToItem( pActiveItem, QAbstractItemView::PositionAtCenter );
	m_pUndoAction->setEnabled( pPrimary->CanUndo() );
	m_pRedoAction->setEnabled( pRedo && pRedo->CanUndo() );
}
