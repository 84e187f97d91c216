#include "tools/zol/editor/zoladdvariabledialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QVBoxLayout>

#include "core/text/strtools.h"
#include "zoldoc_lib/zoleditabletype.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"

namespace
{
QString TypeText( const CPulseValueFullType &type )
{
	return QString::fromLatin1( type.ToString().Get() );
}
} // namespace

CQZolAddVariableDialog::CQZolAddVariableDialog( CZolNamedValueContext *pContext, QWidget *pParent ) : QDialog( pParent )
{
	setWindowTitle( "Add Variable" );
	setModal( true );
	resize( 500, 300 );
	if ( pContext )
		pContext->GetAllNamedValueInfo( &m_Records );

	m_pNameBox = new QComboBox( this );
	m_pNameBox->setEditable( true );
	m_pNameBox->setInsertPolicy( QComboBox::NoInsert );
	m_pTypeBox = new QComboBox( this );
	CUtlVector<CPulseValueFullType> types;
	GetZolNewVariableTypes( &types );
	for ( const CPulseValueFullType &type : types )
		m_pTypeBox->addItem( QString::fromLatin1( CZolEditableType( type ).GetFriendlyName().Get() ), TypeText( type ) );
	m_pTypeBox->setCurrentIndex( m_pTypeBox->findData( TypeText( CPulseValueFullType( PVAL_VEC3 ) ) ) );

	// Names of other files that this one lacks, once each, and the two lists of the text.
	QString strThisFile, strOtherFiles;
	QStringList offered;
	for ( const ZolNamedValueRecord_t &record : m_Records )
	{
		QString strName = QString::fromLatin1( record.m_Name.Get() );
		QString strLine = QString( "\n%1: %2" ).arg( strName, TypeText( record.m_Type ) );
		if ( record.m_bThisFile )
		{
			strThisFile += strLine;
			continue;
		}
		bool bInThisFile = false;
		for ( const ZolNamedValueRecord_t &other : m_Records )
			bInThisFile = bInThisFile || ( other.m_bThisFile && other.m_Name.IsEqual_CaseInsensitive( record.m_Name ) );
		if ( offered.contains( strName, Qt::CaseInsensitive ) )
			continue;
		offered.append( strName );
		strOtherFiles += strLine;
		if ( !bInThisFile )
			m_pNameBox->addItem( strName, TypeText( record.m_Type ) );
	}

	m_pStatus = new QLabel( this );
	m_pExisting = new QPlainTextEdit( this );
	m_pExisting->setReadOnly( true );
	m_pExisting->setPlainText( QString( "Existing variables in this file: %1\n\n" ).arg( strThisFile ) + QString( "Existing Variables in other files: %1\n\n" ).arg( strOtherFiles ) );
	m_pButtons = new QDialogButtonBox( QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this );
	connect( m_pButtons, &QDialogButtonBox::accepted, this, &QDialog::accept );
	connect( m_pButtons, &QDialogButtonBox::rejected, this, &QDialog::reject );

	QHBoxLayout *pRow = new QHBoxLayout;
	pRow->addWidget( new QLabel( "New Variable Name:", this ) );
	pRow->addWidget( m_pNameBox, 1 );
	pRow->addWidget( new QLabel( "Type:", this ) );
	pRow->addWidget( m_pTypeBox, 1 );
	QVBoxLayout *pLayout = new QVBoxLayout( this );
	pLayout->addLayout( pRow );
	pLayout->addWidget( m_pStatus );
	pLayout->addWidget( m_pExisting, 1 );
	pLayout->addWidget( m_pButtons );

	connect( m_pNameBox, &QComboBox::editTextChanged, this, &CQZolAddVariableDialog::OnNameChanged );
	// A name no file knows yet.
	QString strStart = "NewVar";
	auto isKnown = [ this ]( const QString &name ) {
		for ( const ZolNamedValueRecord_t &record : m_Records )
		{
			if ( record.m_Name.IsEqual_CaseInsensitive( name.toLatin1().constData() ) )
				return true;
		}
		return false;
	};
	for ( int n = 2; isKnown( strStart ); ++n )
		strStart = QString( "NewVar%1" ).arg( n );
	m_pNameBox->setEditText( strStart );
	OnNameChanged( strStart );
}

void CQZolAddVariableDialog::SetStatus( const char *pText, const char *pColour )
{
	m_pStatus->setText( pText );
	m_pStatus->setStyleSheet( QString( "color: %1;" ).arg( pColour ) );
}

int CQZolAddVariableDialog::FindOrAddType( const CPulseValueFullType &type )
{
	int nIndex = m_pTypeBox->findData( TypeText( type ) );
	if ( nIndex < 0 )
	{
		m_pTypeBox->addItem( QString::fromLatin1( CZolEditableType( type ).GetFriendlyName().Get() ), TypeText( type ) );
		nIndex = m_pTypeBox->count() - 1;
	}
	return nIndex;
}

void CQZolAddVariableDialog::OnNameChanged( const QString &name )
{
	QByteArray latin1 = name.toLatin1();
	const ZolNamedValueRecord_t *pThisFile = nullptr;
	const ZolNamedValueRecord_t *pOtherFile = nullptr;
	for ( const ZolNamedValueRecord_t &record : m_Records )
	{
		if ( !record.m_Name.IsEqual_CaseInsensitive( latin1.constData() ) )
			continue;
		if ( record.m_bThisFile && !pThisFile )
			pThisFile = &record;
		else if ( !record.m_bThisFile && !pOtherFile )
			pOtherFile = &record;
	}
	bool bOk = true;
	m_pTypeBox->setEnabled( true );
	if ( pThisFile )
	{
		SetStatus( "Duplicate name in this file", "red" );
		bOk = false;
	}
	else if ( name.isEmpty() )
	{
		SetStatus( "Must provide a name", "red" );
		bOk = false;
	}
	else if ( name.contains( '@' ) || name.contains( '!' ) || name.contains( '.' ) )
	{
		SetStatus( "Invalid character used", "red" );
		bOk = false;
	}
	else if ( pOtherFile )
	{
		SetStatus( "Shared Value", "green" );
		m_pTypeBox->setCurrentIndex( FindOrAddType( pOtherFile->m_Type ) );
		m_pTypeBox->setEnabled( false );
	}
	else
		SetStatus( "", "black" );
	m_pButtons->button( QDialogButtonBox::Ok )->setEnabled( bOk );
}

void CQZolAddVariableDialog::accept()
{
	if ( m_pButtons->button( QDialogButtonBox::Ok )->isEnabled() )
		QDialog::accept();
}

CUtlString CQZolAddVariableDialog::GetVariableName() const
{
	return CUtlString( m_pNameBox->currentText().toLatin1().constData() );
}

CPulseValueFullType CQZolAddVariableDialog::GetVariableType() const
{
	return CPulseValueFullType::Parse( m_pTypeBox->currentData().toString().toLatin1().constData() );
}
