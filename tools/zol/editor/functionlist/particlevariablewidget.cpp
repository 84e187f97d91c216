#include "tools/zol/editor/functionlist/particlevariablewidget.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QToolButton>

#include "pulse_runtime_lib/valuetypes/pulsevaluetype.h"
#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "tools/zol/editor/functionlist/writtenattributeslabel.h"
#include "zoldoc_lib/zolvariablenode.h"

CQParticleVariableWidget::CQParticleVariableWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, int nIndex, QWidget *pParent )
	: CQParticleFunctionBaseWidget( pList, pSession, pNode, PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, nIndex, false, pParent )
{
	m_pRemoveButton = AddToolButton( "game:tools/images/common/remove_sm.png", tr( "Remove" ) );
	m_pLayout->addWidget( m_pRemoveButton );
	connect( m_pRemoveButton, &QToolButton::clicked, this, &CQParticleFunctionBaseWidget::OnRemove );
	RefreshText();
}

void CQParticleVariableWidget::SetWrittenAttributes( uint64_t, uint64_t )
{
	CZolVariableNode *pVariable = m_pNode ? m_pNode->AsVariableNode() : nullptr;
	const char *pType = pVariable ? PulseValueType_GetFriendlyName( pVariable->GetValueType().GetBaseType() ) : nullptr;
	if ( pType && *pType )
		m_pEditButton->GetAttributeLabel()->SetAttributes( { QString::fromUtf8( pType ) }, { false } );
	else
		m_pEditButton->GetAttributeLabel()->Clear();
	m_pEditButton->GetAttributeLabel()->setToolTip( QString() );
}

void CQParticleVariableWidget::RefreshText()
{
	CQParticleFunctionBaseWidget::RefreshText();
	// The type is part of what a variable's row says, and it can change with an edit.
	SetWrittenAttributes( 0, 0 );
}
