#include "tools/toolutils2/widgets/inputbind/inputbindeditor.h"

#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QRegularExpression>
#include <QTableWidget>
#include <QVBoxLayout>

#include "tools/toolutils2/inputbind/inputbindinglist.h"

CQInputBindEditor::CQInputBindEditor( const CInputBindingList *pBindings, QWidget *pParent ) : QWidget( pParent ), m_pBindings( pBindings )
{
	setWindowTitle( "Key Bindings" );
	auto *pLayout = new QVBoxLayout( this );
	auto *pFindRow = new QHBoxLayout();
	pFindRow->addWidget( new QLabel( "Find:", this ) );
	m_pFind = new QLineEdit( this );
	m_pFind->setClearButtonEnabled( true );
	m_pFind->setToolTip( "Shows the bindings with the text in a column; * stands for any text, ? for one character" );
	pFindRow->addWidget( m_pFind, 1 );
	pLayout->addLayout( pFindRow );
	m_pTable = new QTableWidget( 0, 3, this );
	m_pTable->setHorizontalHeaderLabels( { "Context", "Command Name", "Input Sequence" } );
	m_pTable->setEditTriggers( QAbstractItemView::NoEditTriggers );
	m_pTable->setSelectionBehavior( QAbstractItemView::SelectRows );
	m_pTable->verticalHeader()->hide();
	m_pTable->horizontalHeader()->setStretchLastSection( true );
	m_pTable->setSortingEnabled( true );
	pLayout->addWidget( m_pTable, 1 );
	connect( m_pFind, &QLineEdit::textChanged, this, &CQInputBindEditor::ApplyFilter );
	resize( 640, 480 );
	Refresh();
}

void CQInputBindEditor::Refresh()
{
	m_pTable->setSortingEnabled( false );
	m_pTable->setRowCount( 0 );
	if ( m_pBindings )
	{
		const std::vector<InputBinding_t> &bindings = m_pBindings->GetBindings();
		m_pTable->setRowCount( int( bindings.size() ) );
		for ( size_t i = 0; i < bindings.size(); ++i )
		{
			CUtlString strSequence;
			CInputBindingList::FormatSequence( bindings[ i ].m_Sequence, &strSequence );
			const int nRow = int( i );
			m_pTable->setItem( nRow, 0, new QTableWidgetItem( QString::fromUtf8( bindings[ i ].m_strContext.Get() ) ) );
			m_pTable->setItem( nRow, 1, new QTableWidgetItem( QString::fromUtf8( bindings[ i ].m_strCommand.Get() ) ) );
			m_pTable->setItem( nRow, 2, new QTableWidgetItem( QString::fromUtf8( strSequence.Get() ) ) );
		}
	}
	m_pTable->setSortingEnabled( true );
	m_pTable->sortByColumn( 0, Qt::AscendingOrder );
	m_pTable->resizeColumnsToContents();
	ApplyFilter();
}

void CQInputBindEditor::ApplyFilter()
{
	const QString text = m_pFind->text().trimmed();
	// A word finds itself anywhere in a column; the wildcards narrow within it.
	const QRegularExpression pattern( text.isEmpty() ? QString() : QRegularExpression::wildcardToRegularExpression( "*" + text + "*" ), QRegularExpression::CaseInsensitiveOption );
	for ( int nRow = 0; nRow < m_pTable->rowCount(); ++nRow )
	{
		bool bShown = text.isEmpty();
		for ( int nColumn = 0; !bShown && nColumn < m_pTable->columnCount(); ++nColumn )
		{
			const QTableWidgetItem *pItem = m_pTable->item( nRow, nColumn );
			bShown = pItem && pattern.match( pItem->text() ).hasMatch();
		}
		m_pTable->setRowHidden( nRow, !bShown );
	}
}

int CQInputBindEditor::GetShownRowCount() const
{
	int nShown = 0;
	for ( int nRow = 0; nRow < m_pTable->rowCount(); ++nRow )
		nShown += m_pTable->isRowHidden( nRow ) ? 0 : 1;
	return nShown;
}
