#include "tools/zol/editor/assetmaintenance/zolstaleversiontoolbar.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include "core/host/iasset.h"
#include "core/host/iprompt.h"
#include "core/logging/logging.h"
#include "core/platform/platformmode.h"
#include "tools/toolutils2/baseeditorapp/sessionversioncontrol.h"
#include "tools/zol/editor/assetmaintenance/staleversionconfigdialog.h"
#include "tools/zol/editor/assetmaintenance/zolsessiondocuments.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolfilereport.h"
#include "zoldoc_lib/zolversionupgrade.h"

namespace
{
constexpr const char *UPGRADE_TITLE = "Upgrade Version";
constexpr const char *UPGRADE_CHILDREN_TITLE = "Upgrade Version + Children";

QToolButton *MakeTextButton( const char *pText, QWidget *pParent )
{
	auto *pButton = new QToolButton( pParent );
	pButton->setText( pText );
	pButton->setToolButtonStyle( Qt::ToolButtonTextOnly );
	return pButton;
}
} // namespace

CQZolStaleVersionToolBar::CQZolStaleVersionToolBar( QWidget *pParent ) : QToolBar( pParent ), m_EventMap( this )
{
	setMovable( false );
	setObjectName( "StaleVersionToolBar" );
	setMinimumHeight( 32 );
	auto *pBack = new QWidget( this );
	pBack->setAutoFillBackground( true );
	QPalette palette = pBack->palette();
	palette.setColor( pBack->backgroundRole(), Qt::darkRed );
	pBack->setPalette( palette );
	pBack->setSizePolicy( QSizePolicy::Expanding, QSizePolicy::Preferred );
	auto *pLayout = new QHBoxLayout( pBack );
	pLayout->addStretch();
	m_pLabel = new QLabel( pBack );
	// The window's style gives labels a dark text; on the dark red it must be light.
	m_pLabel->setStyleSheet( "color: white;" );
	pLayout->addWidget( m_pLabel );
	m_pUpgradeButton = MakeTextButton( UPGRADE_TITLE, pBack );
	pLayout->addWidget( m_pUpgradeButton );
	m_pUpgradeChildrenButton = MakeTextButton( UPGRADE_CHILDREN_TITLE, pBack );
	pLayout->addWidget( m_pUpgradeChildrenButton );
	pLayout->addStretch();
	addWidget( pBack );
	connect( m_pUpgradeButton, &QToolButton::clicked, this, &CQZolStaleVersionToolBar::UpgradeVersion );
	connect( m_pUpgradeChildrenButton, &QToolButton::clicked, this, &CQZolStaleVersionToolBar::UpgradeVersionRecursively );

	m_EventMap.MapEvent( TOOL_EVENT_SLOT_HUB, &CQZolStaleVersionToolBar::OnPreviewSessionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQZolStaleVersionToolBar::OnDocumentReplaced );
	CZolApp *pApp = ZolApp();
	if ( pApp && pApp->GetEventHub() )
		m_EventMap.Attach( TOOL_EVENT_SLOT_HUB, pApp->GetEventHub()->GetEventDispatcher() );
	SetSession( pApp ? pApp->GetPreviewSession() : nullptr );
}

CQZolStaleVersionToolBar::~CQZolStaleVersionToolBar() = default;

void CQZolStaleVersionToolBar::SetSession( CZolSession *pSession )
{
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	m_pSession = pSession;
	if ( pSession && pSession->GetDoc() )
		m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, pSession->GetDoc()->GetEventDispatcher() );
	Refresh();
}

void CQZolStaleVersionToolBar::OnPreviewSessionChanged( const ZolEvent_PreviewSessionChanged_t &event )
{
	SetSession( event.m_pSession );
}

void CQZolStaleVersionToolBar::OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & )
{
	Refresh();
}

void CQZolStaleVersionToolBar::Refresh()
{
	const CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	const int nCurrent = CZolDoc::GetCurrentBehaviorVersion();
	if ( pDoc )
		m_pLabel->setText( QString( "This particle system is using old behavior version %1, while current version is %2!" )
							   .arg( pDoc->GetBehaviorVersion() )
							   .arg( nCurrent ) );
	// A file newer than this editor shows the bar too: its version is not the running one.
	setVisible( pDoc && pDoc->GetRoot() && pDoc->GetBehaviorVersion() != nCurrent );
}

bool CQZolStaleVersionToolBar::Confirm( int nFromVersion )
{
	if ( m_fnConfirm )
		return m_fnConfirm( nFromVersion );
	if ( Plat_IsInTestMode() || Plat_IsInHeadlessMode() )
	{
		Log_Msg( LOG_ZOL, "%s: a run without a user answers Cancel; nothing was upgraded.\n", UPGRADE_TITLE );
		return false;
	}
	CQStaleVersionConfigDialog dialog( nFromVersion, window() );
	return dialog.exec() == QDialog::Accepted;
}

bool CQZolStaleVersionToolBar::RefuseNewer()
{
	const CZolDoc *pDoc = m_pSession->GetDoc();
	if ( pDoc->GetBehaviorVersion() <= CZolDoc::GetCurrentBehaviorVersion() )
		return false;
	CUtlString text;
	text.Format( "This particle system uses behavior version %d, which is newer than this editor's %d.\nAn upgrade never brings a system down; it is left as it is.",
		pDoc->GetBehaviorVersion(), CZolDoc::GetCurrentBehaviorVersion() );
	GetPrompt()->Warning( UPGRADE_TITLE, text.Get(), window() );
	return true;
}

void CQZolStaleVersionToolBar::UpgradeVersion()
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	if ( !pDoc || !pDoc->GetRoot() || pDoc->IsCurrentBehaviorVersion() || RefuseNewer() )
		return;
	if ( Confirm( pDoc->GetBehaviorVersion() ) )
		pDoc->UpdateToCurrentVersion();
}

void CQZolStaleVersionToolBar::UpgradeVersionRecursively()
{
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	if ( !pDoc || !pDoc->GetRoot() || RefuseNewer() )
		return;
	CZolSessionDocuments documents;
	CZolFileReport report;
	CZolVersionUpgrade upgrade( &documents, &report );
	IAsset *pAsset = m_pSession->GetAsset();
	const int nLowest = upgrade.GetLowestVersion( *pDoc, pAsset );
	if ( nLowest == CZolDoc::GetCurrentBehaviorVersion() || !Confirm( nLowest ) )
		return;
	// Closed children are written at once; version control has them opened for edit first.
	upgrade.SetBeforeWrite( []( IAsset *pChild ) {
		CSessionVersionControl versionControl( ZolApp() );
		if ( !versionControl.IsVersionControlUsable() )
			return;
		versionControl.SetChangelist( "" );
		versionControl.CheckOutFile( pChild->GetAbsolutePath() );
	} );
	upgrade.UpgradeOpenDocument( pDoc, pAsset );
	upgrade.UpgradeChildren( *pDoc, pAsset );

	CUtlString status;
	status.Format( "Upgraded %d particle system%s; %d written, the open ones wait to be saved", upgrade.GetChangedCount(),
		upgrade.GetChangedCount() == 1 ? "" : "s", upgrade.GetWrittenCount() );
	if ( CZolApp *pApp = ZolApp() )
		pApp->ShowStatusMessage( status.Get(), 0 );
	if ( report.GetCount( ZOL_FINDING_WARNING ) + report.GetCount( ZOL_FINDING_ERROR ) == 0 )
		return;
	// What was passed over is told; the upgrades themselves stand in the status line.
	CUtlString text( "Some systems of the tree were passed over:\n" );
	CUtlVector<CUtlString> lines;
	report.GetSortedLines( &lines );
	for ( const CUtlString &line : lines )
	{
		if ( strstr( line.Get(), ": warning: " ) || strstr( line.Get(), ": error: " ) )
		{
			text.Append( "\n" );
			text.Append( line.Get() );
		}
	}
	GetPrompt()->Warning( UPGRADE_CHILDREN_TITLE, text.Get(), window() );
}
