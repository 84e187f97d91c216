#include "tools/zol/editor/functionlist/particlefunctionbasewidget.h"

#include <QCheckBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QMimeData>
#include <QToolButton>

#include "core/text/bufferstring.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "tools/zol/editor/functionlist/particlefunctionlist.h"
#include "tools/zol/editor/functionlist/writtenattributeslabel.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

CQParticleFunctionBaseWidget::CQParticleFunctionBaseWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode,
	ParticleFunctionType_t eType, int nIndex, bool bWithCheckBox, QWidget *pParent )
	: QWidget( pParent ), m_nType( eType ), m_nIndex( nIndex ), m_pSession( pSession ), m_pNode( pNode ), m_pList( pList )
{
	m_pLayout = new QHBoxLayout( this );
	m_pLayout->setContentsMargins( 0, 1, 0, 1 );
	m_pLayout->setSpacing( 2 );
	m_pEditButton = new CQEditFunctionButton( this, bWithCheckBox, this );
	m_pLayout->addWidget( m_pEditButton, 1 );
	connect( m_pEditButton, &QPushButton::clicked, this, &CQParticleFunctionBaseWidget::OnEdit );
	connect( m_pEditButton, &CQEditFunctionButton::EnableDisableBoxChanged, this, &CQParticleFunctionBaseWidget::OnEnableDisable );
}

void CQParticleFunctionBaseWidget::Detach()
{
	m_pNode = nullptr;
	m_pSession = nullptr;
	m_pList = nullptr;
	setEnabled( false );
}

QToolButton *CQParticleFunctionBaseWidget::AddToolButton( const char *pIconPath, const QString &toolTip )
{
	auto *pButton = new QToolButton( this );
	pButton->setObjectName( "ZOL_FunctionRowToolButton" );
	pButton->setIcon( QIcon( pIconPath ) );
	pButton->setToolTip( toolTip );
	pButton->setAutoRaise( true );
	pButton->setFocusPolicy( Qt::NoFocus );
	pButton->setFixedSize( 22, 22 );
	return pButton;
}

void CQParticleFunctionBaseWidget::SetWrittenAttributes( uint64_t nMask, uint64_t nConflicts )
{
	CQWrittenAttributesLabel *pLabel = m_pEditButton->GetAttributeLabel();
	CZolDoc *pDoc = m_pSession && m_pNode ? m_pSession->GetDoc() : nullptr;
	QStringList names;
	QList<bool> conflicts;
	for ( int nBit = 0; pDoc && nBit <= 48; ++nBit )
	{
		const uint64_t nBitMask = uint64_t( 1 ) << nBit;
		if ( !( nMask & nBitMask ) )
			continue;
		names.append( QString::fromUtf8( pDoc->GetAttributeLabel( nBit ) ) );
		conflicts.append( ( nConflicts & nBitMask ) != 0 );
	}
	pLabel->SetAttributes( names, conflicts );
}

void CQParticleFunctionBaseWidget::RefreshText()
{
	if ( !m_pNode )
		return;
	CBufferString name;
	CBufferString value;
	CBufferString hint;
	m_pNode->GetDisplayStrings( &name, &value, &hint );
	m_pEditButton->SetTexts( QString::fromUtf8( name.Get() ), QString::fromUtf8( value.Get() ), QString::fromUtf8( hint.Get() ) );
}

void CQParticleFunctionBaseWidget::RefreshEnabledBox()
{
	if ( m_pNode )
		m_pEditButton->SetEnabledBoxQuietly( m_pNode->IsEnabled() );
}

bool CQParticleFunctionBaseWidget::FillMimeData( QMimeData *pData )
{
	CZolDoc *pDoc = m_pSession && m_pNode ? m_pSession->GetDoc() : nullptr;
	if ( !pDoc || !pDoc->GetRoot() )
		return false;
	int nIndex = -1;
	int nType = -1;
	if ( !pDoc->GetRoot()->FindNode( m_pNode, &nIndex, &nType ) )
		return false;
	DraggableItem_t item;
	item.m_pOwner = m_pSession;
	item.m_nType = nType;
	item.m_nIndex = nIndex;
	pData->setData( QString::fromLatin1( PARTICLE_FUNCTION_MIME_TYPE ), item.Encode() );
	return true;
}

void CQParticleFunctionBaseWidget::OnEdit()
{
	if ( m_pList && m_pNode )
		m_pList->OnRowClicked( this, m_pEditButton->GetClickModifiers() );
}

void CQParticleFunctionBaseWidget::OnRemove()
{
	if ( !m_pSession || !m_pNode )
		return;
	// The removal rebuilds the list, which detaches this row: nothing of it is used after.
	CBaseZolNode *pNode = m_pNode;
	m_pSession->GetDoc()->RemoveElement( m_nType, pNode );
}

void CQParticleFunctionBaseWidget::OnEnableDisable( int nState )
{
	if ( !m_pSession || !m_pNode )
		return;
	m_pSession->GetDoc()->SetElementEnabled( m_pNode, nState == Qt::Checked );
}
