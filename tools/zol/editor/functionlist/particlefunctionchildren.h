#pragma once
// The header of the children section. Particle systems dragged onto it from an asset list
// become children, all in one undo step.

#include "tools/zol/editor/functionlist/particlefunctiontype.h"

class CQParticleFunctionList;
class CZolSession;

class CQParticleFunctionChildren : public CQParticleFunctionType
{
	Q_OBJECT

public:
	explicit CQParticleFunctionChildren( CQParticleFunctionList *pList, QWidget *pParent = nullptr );

	void SetSession( CZolSession *pSession ) { m_pSession = pSession; }
	CZolSession *GetSession() const { return m_pSession; }

protected:
	void dragEnterEvent( QDragEnterEvent *pEvent ) override;
	void dragLeaveEvent( QDragLeaveEvent *pEvent ) override;
	void dropEvent( QDropEvent *pEvent ) override;

private:
	CQParticleFunctionList *m_pList;
	CZolSession *m_pSession = nullptr;
};
