#pragma once
// One row of the function list: the face of one node of the shown document. Rows hold
// the node by pointer for as long as they are current; the list rebuilds them for every
// structural change and forgets the old ones (Detach), so a row that is being deleted
// while it still handles an event touches no node.

#include <QWidget>

#include "core/particles/particlefunctiontype.h"
#include "tools/widgets/draggablewidgetlist.h"

class CBaseZolNode;
class CQEditFunctionButton;
class CQParticleFunctionList;
class CZolSession;
class QHBoxLayout;
class QToolButton;

class CQParticleFunctionBaseWidget : public QWidget, public IDraggableTargetItem
{
	Q_OBJECT

public:
	CQParticleFunctionBaseWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, ParticleFunctionType_t eType, int nIndex,
		bool bWithCheckBox, QWidget *pParent = nullptr );

	CQEditFunctionButton *GetEditButton() const { return m_pEditButton; }
	ParticleFunctionType_t GetType() const { return m_nType; }
	int GetIndex() const { return m_nIndex; }
	CBaseZolNode *GetNode() const { return m_pNode; }
	CZolSession *GetSession() const { return m_pSession; }
	// The list dropped the row: from now on it acts on nothing.
	void Detach();

	// The attributes the node writes, and those of them an earlier function writes too.
	virtual void SetWrittenAttributes( uint64_t nMask, uint64_t nConflicts );
	// Reads the node's display strings again.
	virtual void RefreshText();
	// The node's enabled state into the check box, without an undo step.
	void RefreshEnabledBox();

	// IDraggableTargetItem: session, type and the node's index at this moment.
	bool FillMimeData( QMimeData *pData ) override;

public slots:
	virtual void OnEdit();
	virtual void OnRemove();
	virtual void OnEnableDisable( int nState );

protected:
	// A tool button at the row's right, in the row's tool button style.
	QToolButton *AddToolButton( const char *pIconPath, const QString &toolTip );

	CQEditFunctionButton *m_pEditButton = nullptr;
	ParticleFunctionType_t m_nType;
	int m_nIndex;
	CZolSession *m_pSession;
	CBaseZolNode *m_pNode;
	CQParticleFunctionList *m_pList;
	QHBoxLayout *m_pLayout = nullptr;
};
