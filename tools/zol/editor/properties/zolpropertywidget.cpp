#include "tools/zol/editor/properties/zolpropertywidget.h"

#include <QSplitter>
#include <QVBoxLayout>

#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"
#include "tools/zol/editor/properties/zolkv3propertydomain.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"

namespace
{
constexpr int PANEL_MINIMUM_SIZE = 100;
}

CQZolPropertyWidget::CQZolPropertyWidget( CZolKV3PropertyDomain *pDomain, QWidget *pParent ) : QWidget( pParent ), m_EventMap( this ), m_pDomain( pDomain )
{
	QVBoxLayout *pLayout = new QVBoxLayout( this );
	pLayout->setContentsMargins( 0, 0, 0, 0 );
	m_pSplitter = new QSplitter( Qt::Vertical, this );
	pLayout->addWidget( m_pSplitter );
	m_pPanel = CQPropertyPanel::CreateFromPropertyEditorSystem( m_pSplitter );
	if ( !m_pPanel )
		m_pPanel = new CQPropertyPanel( m_pSplitter );
	m_pPanel->setMinimumSize( PANEL_MINIMUM_SIZE, PANEL_MINIMUM_SIZE );
	m_pSplitter->addWidget( m_pPanel );
	m_pPanel->SetDomain( pDomain );
	connect( m_pPanel, &CQPropertyPanel::AttributeModified, this, &CQZolPropertyWidget::AttributeModified );

	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQZolPropertyWidget::OnSelectionChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQZolPropertyWidget::OnDocumentReplaced );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQZolPropertyWidget::OnFunctionEnableDisableChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQZolPropertyWidget::OnFunctionListChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CQZolPropertyWidget::OnPropertyDomainTopologyChanged );
}

CQZolPropertyWidget::~CQZolPropertyWidget() = default;

void CQZolPropertyWidget::SetSession( CZolSession *pSession )
{
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	m_EventMap.Detach( TOOL_EVENT_SLOT_SESSION );
	m_pSession = pSession;
	if ( pSession )
	{
		m_EventMap.Attach( TOOL_EVENT_SLOT_SESSION, pSession->GetEventDispatcher() );
		m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, pSession->GetDoc()->GetEventDispatcher() );
	}
	ShowSelection( true );
}

void CQZolPropertyWidget::ShowSelection( bool bForce )
{
	CUtlVector<ZolPropertyTarget> targets;
	CZolDoc *pDoc = m_pSession ? m_pSession->GetDoc() : nullptr;
	if ( pDoc )
	{
		CUtlVector<CBaseZolNode *> nodes;
		pDoc->GetSelectedNodes( nodes );
		for ( CBaseZolNode *pNode : nodes )
		{
			// The node's editors ask the domain about variables, configurations and models.
			pNode->SetVariableContext( m_pDomain );
			targets.AddToTail( ZolPropertyTarget{ pNode->GetTableInstance(), nullptr } );
		}
	}
	if ( bForce )
		m_pPanel->SetTargets( CUtlVector<ZolPropertyTarget>() );
	m_pPanel->SetTargets( targets );
}

void CQZolPropertyWidget::OnSelectionChanged( const ZolEvent_SelectionChanged_t & )
{
	ShowSelection();
}

void CQZolPropertyWidget::OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & )
{
	// Every node was made anew: nothing of the old rows may be used.
	m_pDomain->ClearNamedValueCache();
	ShowSelection( true );
}

void CQZolPropertyWidget::OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & )
{
	m_pDomain->ClearNamedValueCache();
	ShowSelection();
}

void CQZolPropertyWidget::OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & )
{
	m_pDomain->ClearNamedValueCache();
	ShowSelection();
}

void CQZolPropertyWidget::OnPropertyDomainTopologyChanged( const ZolEvent_PropertyDomainTopologyChanged_t & )
{
	m_pPanel->RequestRebuild();
}
