#include "tools/toolutils2/widgets/inputbind/inputbindcommandlist.h"

#include <QKeyEvent>
#include <QListWidget>
#include <QVBoxLayout>
#include <algorithm>

#include "core/host/iprompt.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/inputbind/bindtargetset.h"
#include "tools/toolutils2/widgets/inputbind/bindnamefilterwidget.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"

static constexpr int COMMAND_ROW_ROLE = Qt::UserRole + 1;

CQInputBindCommandList::CQInputBindCommandList( QWidget *pParent ) : QWidget( pParent )
{
	auto *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 4, 4, 4, 4 );
	m_pFilter = new CQBindNameFilterWidget( this );
	pLayout->addWidget( m_pFilter );
	m_pList = new QListWidget( this );
	m_pList->setMinimumSize( 440, 300 );
	m_pList->setSelectionMode( QAbstractItemView::SingleSelection );
	pLayout->addWidget( m_pList, 1 );
	setFocusProxy( m_pFilter );
	connect( m_pFilter, &CQBindNameFilterWidget::FilterChanged, this, &CQInputBindCommandList::ApplyFilter );
	connect( m_pFilter, &CQBindNameFilterWidget::Accepted, this, &CQInputBindCommandList::RunFirstShown );
	connect( m_pList, &QListWidget::itemClicked, this, &CQInputBindCommandList::RunItem );
	// Return on a row runs it too; not through itemActivated, which some styles also
	// send for a single click and so would run the command twice.
	m_pList->installEventFilter( this );
}

bool CQInputBindCommandList::eventFilter( QObject *pWatched, QEvent *pEvent )
{
	if ( pWatched == m_pList && pEvent->type() == QEvent::KeyPress )
	{
		const int nKey = static_cast<QKeyEvent *>( pEvent )->key();
		if ( nKey == Qt::Key_Return || nKey == Qt::Key_Enter )
		{
			RunFirstShown();
			return true;
		}
	}
	return QWidget::eventFilter( pWatched, pEvent );
}

void CQInputBindCommandList::Refresh()
{
	CQInputBindManager *pManager = CQInputBindManager::Get();
	CInputBindEngine &engine = pManager->GetEngine();
	if ( !engine.IsHandlingInput() )
		engine.UpdateActiveBindings();

	m_Commands.clear();
	m_pList->clear();
	// A target reached through more than one widget (a proxy, a shared target) is listed
	// once, for the widget nearest the focus.
	std::vector<const IBindTarget *> seen;
	for ( const BindChainLink_t &link : engine.GetFocusChain() )
	{
		if ( !link.m_pTargets )
			continue;
		for ( IBindTarget *pTarget : link.m_pTargets->GetTargets() )
		{
			const CBindTargetDescriptorBase *pDescriptor = pTarget->GetBindTargetDescriptor();
			const IBindTarget *pIdentity = pTarget->GetBindTargetIdentity();
			if ( !pDescriptor || std::find( seen.begin(), seen.end(), pIdentity ) != seen.end() )
				continue;
			seen.push_back( pIdentity );
			for ( int i = 0; i < pDescriptor->GetCommandCount(); ++i )
			{
				const CBindableCommand *pCommand = pDescriptor->GetCommand( i );
				QString strText = QStringLiteral( "%1.%2" ).arg( QString::fromUtf8( pDescriptor->GetTargetName() ), QString::fromUtf8( pCommand->GetName() ) );
				const QString strBinding = pManager->GetBindingText( nullptr, pTarget, pCommand->GetToken() );
				if ( !strBinding.isEmpty() )
					strText += QStringLiteral( " [" ) + strBinding + QStringLiteral( "]" );
				auto *pItem = new QListWidgetItem( strText, m_pList );
				pItem->setData( COMMAND_ROW_ROLE, int( m_Commands.size() ) );
				m_Commands.push_back( { pTarget, pCommand->GetToken() } );
			}
		}
	}
	m_pFilter->Clear();
	ApplyFilter();
}

QStringList CQInputBindCommandList::GetShownCommands() const
{
	QStringList shown;
	for ( int nRow = 0; nRow < m_pList->count(); ++nRow )
	{
		if ( !m_pList->item( nRow )->isHidden() )
			shown.append( m_pList->item( nRow )->text() );
	}
	return shown;
}

void CQInputBindCommandList::ApplyFilter()
{
	QListWidgetItem *pFirst = nullptr;
	for ( int nRow = 0; nRow < m_pList->count(); ++nRow )
	{
		QListWidgetItem *pItem = m_pList->item( nRow );
		const bool bShown = m_pFilter->Matches( pItem->text() );
		pItem->setHidden( !bShown );
		if ( bShown && !pFirst )
			pFirst = pItem;
	}
	m_pList->setCurrentItem( pFirst );
}

void CQInputBindCommandList::RunFirstShown()
{
	QListWidgetItem *pItem = m_pList->currentItem();
	if ( pItem && !pItem->isHidden() )
		RunItem( pItem );
}

void CQInputBindCommandList::RunItem( QListWidgetItem *pItem )
{
	const int nRow = pItem ? pItem->data( COMMAND_ROW_ROLE ).toInt() : -1;
	if ( nRow < 0 || size_t( nRow ) >= m_Commands.size() )
		return;
	const Command_t command = m_Commands[ size_t( nRow ) ];
	emit CommandChosen();
	// The target must still be in the chain: the engine refuses one that left it.
	if ( !CQInputBindManager::Get()->InvokeCommand( command.m_pTarget, command.m_nToken ) )
		GetPrompt()->Beep();
}
