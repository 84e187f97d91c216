#pragma once
// The row of a variable (list 8): its name, and its value type where other rows show the
// attributes they write. Variables can't be switched off.

#include "tools/zol/editor/functionlist/particlefunctionbasewidget.h"

class CQParticleVariableWidget : public CQParticleFunctionBaseWidget
{
	Q_OBJECT

public:
	CQParticleVariableWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, int nIndex, QWidget *pParent = nullptr );

	// The value type's friendly name; the parameters don't apply to variables.
	void SetWrittenAttributes( uint64_t nMask, uint64_t nConflicts ) override;
	void RefreshText() override;
	QToolButton *GetRemoveButton() const { return m_pRemoveButton; }

private:
	QToolButton *m_pRemoveButton = nullptr;
};
