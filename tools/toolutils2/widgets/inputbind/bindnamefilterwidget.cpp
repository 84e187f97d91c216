#include "tools/toolutils2/widgets/inputbind/bindnamefilterwidget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>

CQBindNameFilterWidget::CQBindNameFilterWidget( QWidget *pParent ) : QWidget( pParent )
{
	auto *pLayout = new QHBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	pLayout->addWidget( new QLabel( "Filter:", this ) );
	m_pEdit = new QLineEdit( this );
	m_pEdit->setClearButtonEnabled( true );
	m_pEdit->setToolTip( "Shows the commands whose names hold every word typed" );
	pLayout->addWidget( m_pEdit, 1 );
	setFocusProxy( m_pEdit );
	connect( m_pEdit, &QLineEdit::textChanged, this, &CQBindNameFilterWidget::FilterChanged );
	connect( m_pEdit, &QLineEdit::returnPressed, this, &CQBindNameFilterWidget::Accepted );
}

QString CQBindNameFilterWidget::GetText() const
{
	return m_pEdit->text();
}

void CQBindNameFilterWidget::Clear()
{
	m_pEdit->clear();
}

bool CQBindNameFilterWidget::Matches( const QString &strName ) const
{
	const QStringList words = m_pEdit->text().split( QLatin1Char( ' ' ), Qt::SkipEmptyParts );
	for ( const QString &word : words )
	{
		if ( !strName.contains( word, Qt::CaseInsensitive ) )
			return false;
	}
	return true;
}
