#pragma once
// The row of a function of lists 0 to 6: enable check box, texts, handle, remove button.

#include "tools/zol/editor/functionlist/particlefunctionbasewidget.h"

class CQParticleFunctionWidget : public CQParticleFunctionBaseWidget
{
	Q_OBJECT

public:
	CQParticleFunctionWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, ParticleFunctionType_t eType, int nIndex,
		QWidget *pParent = nullptr );

	QToolButton *GetRemoveButton() const { return m_pRemoveButton; }

private:
	QToolButton *m_pRemoveButton = nullptr;
};
