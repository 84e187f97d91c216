#include "tools/zol/editor/functionlist/particlechildwidget.h"

#include <QApplication>
#include <QCursor>
#include <QDragEnterEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPointer>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/kv3/keyvalues3.h"
#include "tools/widgets/assetcontextmenu.h"
#include "tools/widgets/assetthumbnail.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "tools/zol/editor/functionlist/particleassetdrop.h"
#include "tools/zol/editor/functionlist/writtenattributeslabel.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zoldoc.h"

namespace
{
QToolButton *MakeTextButton( const QString &text, QWidget *pParent )
{
	auto *pButton = new QToolButton( pParent );
	pButton->setObjectName( "ZOL_FunctionRowToolButton" );
	pButton->setText( text );
	pButton->setFocusPolicy( Qt::NoFocus );
	pButton->setAutoRaise( true );
	QFont font = pButton->font();
	font.setPixelSize( 11 );
	pButton->setFont( font );
	return pButton;
}

void OpenInApplication( IAsset *pAsset )
{
	CZolApp *pApp = ZolApp();
	if ( pApp && pAsset && pAsset->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM )
		pApp->OpenAsset( pAsset->GetPath(), true, nullptr );
}
} // namespace

CQParticleChildWidget::CQParticleChildWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, int nIndex, QWidget *pParent )
	: CQParticleFunctionBaseWidget( pList, pSession, pNode, PARTICLE_FUNCTION_CHILDREN, nIndex, true, pParent )
{
	setAcceptDrops( true );
	// The button goes into a column beside the thumbnail, over the row of tools.
	m_pLayout->removeWidget( m_pEditButton );
	m_pThumbnail = new CQAssetThumbnail( 64, this );
	m_pLayout->addWidget( m_pThumbnail );
	auto *pColumn = new QVBoxLayout;
	pColumn->setContentsMargins( 0, 0, 0, 0 );
	pColumn->setSpacing( 1 );
	pColumn->addWidget( m_pEditButton );
	auto *pTools = new QHBoxLayout;
	pTools->setContentsMargins( 2, 0, 0, 0 );
	pTools->setSpacing( 0 );
	m_pStatusLabel = new QLabel( this );
	m_pStatusLabel->setObjectName( "ZOL_ChildStatusLabel" );
	// The status gives way before the buttons do.
	m_pStatusLabel->setMinimumWidth( 1 );
	QFont statusFont = m_pStatusLabel->font();
	statusFont.setPixelSize( 10 );
	m_pStatusLabel->setFont( statusFont );
	pTools->addWidget( m_pStatusLabel, 1 );
	m_pBrowseButton = MakeTextButton( tr( "Browse" ), this );
	m_pAssetButton = MakeTextButton( tr( "Asset" ), this );
	m_pRemoveButton = MakeTextButton( tr( "Remove" ), this );
	m_pBrowseButton->setToolTip( tr( "Choose another particle system for this child" ) );
	m_pAssetButton->setToolTip( tr( "Show the child's asset menu" ) );
	m_pRemoveButton->setToolTip( tr( "Remove this child" ) );
	pTools->addWidget( m_pBrowseButton );
	pTools->addWidget( m_pAssetButton );
	pTools->addWidget( m_pRemoveButton );
	pColumn->addLayout( pTools );
	m_pLayout->addLayout( pColumn, 1 );

	connect( m_pBrowseButton, &QToolButton::clicked, this, &CQParticleChildWidget::OnBrowse );
	connect( m_pAssetButton, &QToolButton::clicked, this, &CQParticleChildWidget::OnAssetMenu );
	connect( m_pRemoveButton, &QToolButton::clicked, this, &CQParticleFunctionBaseWidget::OnRemove );
	connect( m_pEditButton, &CQEditFunctionButton::DoubleClicked, this, &CQParticleChildWidget::OnEditButtonDoubleClicked );
	RefreshEnabledBox();
	RefreshText();
	RefreshStatus();
}

void CQParticleChildWidget::SetWrittenAttributes( uint64_t, uint64_t )
{
	m_pEditButton->GetAttributeLabel()->Clear();
	m_pEditButton->GetAttributeLabel()->setToolTip( QString() );
}

void CQParticleChildWidget::RefreshText()
{
	CQParticleFunctionBaseWidget::RefreshText();
	m_pThumbnail->SetAsset( GetChildAsset() );
}

QString CQParticleChildWidget::BuildStatusText( bool bEndCap, float flDelay )
{
	QStringList parts;
	if ( bEndCap )
		parts.append( QStringLiteral( "Endcap" ) );
	if ( flDelay != 0.0f )
		parts.append( QString::asprintf( "Delay(%.2f)", double( flDelay ) ) );
	return parts.join( QStringLiteral( "; " ) );
}

void CQParticleChildWidget::RefreshStatus()
{
	if ( !m_pNode )
		return;
	const KeyValues3 *pTable = m_pNode->GetReadKV3();
	m_pStatusLabel->setText( BuildStatusText( pTable->GetMemberBool( "m_bEndCap", false ), pTable->GetMemberFloat( "m_flDelay", 0.0f ) ) );
}

IAsset *CQParticleChildWidget::GetChildAsset() const
{
	CZolChildNode *pChild = m_pNode ? m_pNode->AsChildNode() : nullptr;
	IAssetSystem *pAssetSystem = GetAssetSystem();
	if ( !pChild || !pAssetSystem || !*pChild->GetChildRef() )
		return nullptr;
	return pAssetSystem->FindAssetByResourceName( pChild->GetChildRef() );
}

void CQParticleChildWidget::OnBrowse()
{
	CZolChildNode *pChild = m_pNode ? m_pNode->AsChildNode() : nullptr;
	if ( !m_pSession || !pChild )
		return;
	// The file dialog runs its own event loop; this row may be gone when it returns.
	m_pSession->BrowseForChild( pChild );
}

void CQParticleChildWidget::OnAssetMenu()
{
	IAsset *pAsset = GetChildAsset();
	if ( !pAsset )
	{
		QApplication::beep();
		return;
	}
	CQAssetContextMenu menu( pAsset, this );
	connect( &menu, &CQAssetContextMenu::OpenAsset, &menu, []( IAsset *pOpen ) { OpenInApplication( pOpen ); } );
	menu.exec( QCursor::pos() );
}

void CQParticleChildWidget::OnEditButtonDoubleClicked()
{
	OpenInApplication( GetChildAsset() );
}

void CQParticleChildWidget::mouseDoubleClickEvent( QMouseEvent *pEvent )
{
	CQParticleFunctionBaseWidget::mouseDoubleClickEvent( pEvent );
	OnEditButtonDoubleClicked();
}

void CQParticleChildWidget::dragEnterEvent( QDragEnterEvent *pEvent )
{
	EnterParticleSystemDrag( this, pEvent, m_pNode != nullptr );
}

void CQParticleChildWidget::dragLeaveEvent( QDragLeaveEvent *pEvent )
{
	LeaveParticleSystemDrag( this, pEvent );
}

void CQParticleChildWidget::dropEvent( QDropEvent *pEvent )
{
	CUtlVector<IAsset *> assets;
	CZolChildNode *pChild = m_pNode ? m_pNode->AsChildNode() : nullptr;
	if ( !TakeParticleSystemDrop( this, pEvent, pChild && m_pSession, &assets ) )
		return;
	QPointer<CQParticleChildWidget> pSelf( this );
	CZolSession *pSession = m_pSession;
	IAsset *pAsset = assets[ 0 ];
	// CanBeChild may ask a question; the row must still stand for the node afterwards.
	if ( !pSession->CanBeChild( pAsset ) || !pSelf || !m_pNode )
		return;
	CUtlString path( pAsset->GetPath() );
	path.FixSlashes( '/' );
	if ( path.IsEqual_CaseInsensitive( pChild->GetChildRef() ) )
		return;
	pSession->GetDoc()->BeginEdit( "Set Child", true );
	pChild->GetKV3ForModify()->SetMemberString( "m_ChildRef", path.Get() );
	m_pThumbnail->SetAsset( pAsset );
}
