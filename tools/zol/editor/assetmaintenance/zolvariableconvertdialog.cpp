#include "tools/zol/editor/assetmaintenance/zolvariableconvertdialog.h"

#include <QComboBox>
#include <QDialogButtonBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTextBrowser>
#include <QTextDocument>
#include <QUrl>
#include <QVBoxLayout>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvaluecache.h"
#include "zoldoc_lib/zolnodelink.h"
#include "zoldoc_lib/zolvariableconversion.h"
#include "zoldoc_lib/zolvariableconversionreport.h"

CQZolVariableConvertDialog::CQZolVariableConvertDialog( QWidget *pParent ) : QDialog( pParent )
{
	resize( 800, 300 );
	auto *pLayout = new QVBoxLayout( this );

	auto *pRow = new QHBoxLayout;
	pRow->addWidget( new QLabel( "New Variable Name:", this ) );
	m_pNameEdit = new QLineEdit( this );
	pRow->addWidget( m_pNameEdit, 1 );
	pRow->addWidget( new QLabel( "Type:", this ) );
	m_pTypeBox = new QComboBox( this );
	for ( int n = 0; n < PVAL_COUNT; ++n )
	{
		const PulseValueType_t eType = PulseValueType_t( n );
		const char *pFriendly = PulseValueType_GetFriendlyName( eType );
		if ( pFriendly && !PulseValueType_IsSuppressedInPickers( eType ) )
			m_pTypeBox->addItem( QString::fromUtf8( pFriendly ), QString::fromUtf8( PulseValueType_GetName( eType ) ) );
	}
	pRow->addWidget( m_pTypeBox, 1 );
	pLayout->addLayout( pRow );

	m_pStatus = new QLabel( this );
	pLayout->addWidget( m_pStatus );

	m_pReport = new QTextBrowser( this );
	m_pReport->setOpenLinks( false );
	m_pReport->setOpenExternalLinks( false );
	// The report's infos are white: they read on the dark ground the editor's lists have.
	m_pReport->setStyleSheet( "QTextBrowser { background-color: #2b2d30; color: rgb(220, 220, 220); }" );
	m_pReport->document()->setDefaultStyleSheet( "a { color: rgb(142, 197, 224); }" );
	pLayout->addWidget( m_pReport );

	auto *pButtonRow = new QHBoxLayout;
	m_pButtons = new QDialogButtonBox( this );
	m_pApplyButton = m_pButtons->addButton( QDialogButtonBox::Apply );
	pButtonRow->addWidget( m_pButtons, 1 );
	pLayout->addLayout( pButtonRow );

	connect( m_pNameEdit, &QLineEdit::textEdited, this, &CQZolVariableConvertDialog::OnNameChanged );
	connect( m_pTypeBox, QOverload<int>::of( &QComboBox::currentIndexChanged ), this, &CQZolVariableConvertDialog::OnTypeChanged );
	connect( m_pReport, &QTextBrowser::anchorClicked, this, &CQZolVariableConvertDialog::OnLinkClicked );
	connect( m_pApplyButton, &QPushButton::clicked, this, &CQZolVariableConvertDialog::OnApply );
}

CQZolVariableConvertDialog::~CQZolVariableConvertDialog() = default;

void CQZolVariableConvertDialog::Show( CZolSession *pSession, int nControlPoint )
{
	setWindowTitle( QString( "Convert Control Point #%1 to Variable" ).arg( nControlPoint ) );
	show();
	m_pReport->clear();
	m_pApplyButton->setEnabled( true );

	// The family: the system, its parents and its children, open ones as they are edited.
	m_pPlan = std::make_unique<CZolVariableConversionPlan>( &m_Documents, nControlPoint );
	CUtlVector<IAsset *> family;
	if ( pSession )
	{
		CZolNamedValueCache cache( pSession );
		cache.GetDependencyAssets( &family );
	}
	for ( IAsset *pAsset : family )
		m_pPlan->AddDocument( pAsset );
	m_pPlan->BuildActionList();

	const CPulseValueFullType &type = m_pPlan->GetVariableType();
	if ( type.IsValid() )
	{
		const QSignalBlocker blocker( m_pTypeBox );
		const int nIndex = m_pTypeBox->findData( QString::fromUtf8( PulseValueType_GetName( type.GetBaseType() ) ) );
		if ( nIndex >= 0 )
			m_pTypeBox->setCurrentIndex( nIndex );
	}
	m_pPlan->SetVariableName( CZolVariableConversionPlan::DEFAULT_VARIABLE_NAME );
	{
		const QSignalBlocker blocker( m_pNameEdit );
		m_pNameEdit->setText( CZolVariableConversionPlan::DEFAULT_VARIABLE_NAME );
	}
	m_pPlan->DryRun();
	ShowReport();
	raise();
	activateWindow();
}

void CQZolVariableConvertDialog::OnNameChanged()
{
	if ( !m_pPlan )
		return;
	m_pPlan->SetVariableName( m_pNameEdit->text().toUtf8().constData() );
	m_pPlan->DryRun();
	ShowReport();
}

void CQZolVariableConvertDialog::OnTypeChanged()
{
	if ( !m_pPlan )
		return;
	CPulseValueFullType type;
	type.FromString( m_pTypeBox->currentData().toString().toUtf8().constData() );
	// A model type keeps the subtype the build found: a model variable is of "tmsh".
	if ( type.GetBaseType() == m_pPlan->GetVariableType().GetBaseType() )
		type = m_pPlan->GetVariableType();
	m_pPlan->SetVariableType( type );
	m_pPlan->DryRun();
	ShowReport();
}

void CQZolVariableConvertDialog::OnApply()
{
	if ( !m_pPlan || m_pPlan->IsApplied() )
		return;
	m_pApplyButton->setEnabled( false );
	m_pPlan->Apply();
	ShowReport();
}

void CQZolVariableConvertDialog::OnLinkClicked( const QUrl &link )
{
	ZolNodeLink_t node;
	if ( !ParseZolNodeLink( link.fragment( QUrl::FullyDecoded ).toUtf8().constData(), &node ) )
		return;
	CZolSession *pSession = CZolSessionDocuments::FindSession( node.m_pAsset, true );
	CZolDoc *pDoc = pSession ? pSession->GetDoc() : nullptr;
	if ( !pDoc || !node.HasNode() )
		return;
	if ( CBaseZolNode *pNode = pDoc->ResolveElementRef( { node.m_nType, node.m_nIndex } ) )
		pDoc->SelectElement( pNode, true );
}

void CQZolVariableConvertDialog::ShowReport()
{
	if ( !m_pPlan )
		return;
	m_pReport->setHtml( QString::fromUtf8( BuildZolConversionReportHtml( *m_pPlan ).Get() ) );
	bool bError = false;
	m_pStatus->setText( QString::fromUtf8( GetZolConversionStatusText( *m_pPlan, &bError ) ) );
	m_pStatus->setStyleSheet( bError ? "color: red;" : "color: black;" );
}
