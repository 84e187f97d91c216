#include "tools/zol/editor/functionlist/particlefunctionwidget.h"

#include <QHBoxLayout>
#include <QToolButton>

#include "tools/zol/editor/functionlist/editfunctionbutton.h"
#include "zoldoc_lib/zolnode.h"

CQParticleFunctionWidget::CQParticleFunctionWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, ParticleFunctionType_t eType,
	int nIndex, QWidget *pParent )
	: CQParticleFunctionBaseWidget( pList, pSession, pNode, eType, nIndex, true, pParent )
{
	m_pRemoveButton = AddToolButton( "game:tools/images/common/remove_sm.png", tr( "Remove" ) );
	m_pLayout->addWidget( m_pRemoveButton );
	connect( m_pRemoveButton, &QToolButton::clicked, this, &CQParticleFunctionBaseWidget::OnRemove );
	RefreshEnabledBox();
	RefreshText();
}
