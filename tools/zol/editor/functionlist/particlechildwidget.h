#pragma once
// The row of a child system (list 7): a thumbnail of the child, the enable check box, its
// end cap and delay, and buttons to pick another file, show the child's asset menu or
// remove it. A particle system dragged onto the row becomes this child's file; a double
// click opens the child.

#include "tools/zol/editor/functionlist/particlefunctionbasewidget.h"

class CQAssetThumbnail;
class IAsset;
class QLabel;

class CQParticleChildWidget : public CQParticleFunctionBaseWidget
{
	Q_OBJECT

public:
	CQParticleChildWidget( CQParticleFunctionList *pList, CZolSession *pSession, CBaseZolNode *pNode, int nIndex, QWidget *pParent = nullptr );

	// Children write no attributes: the third label stays empty.
	void SetWrittenAttributes( uint64_t nMask, uint64_t nConflicts ) override;
	void RefreshText() override;
	// "Endcap", "Delay(%.2f)" from the node.
	void RefreshStatus();
	// The asset that the node's reference names, or null.
	IAsset *GetChildAsset() const;

	QLabel *GetStatusLabel() const { return m_pStatusLabel; }
	CQAssetThumbnail *GetThumbnail() const { return m_pThumbnail; }
	QToolButton *GetBrowseButton() const { return m_pBrowseButton; }
	QToolButton *GetAssetButton() const { return m_pAssetButton; }
	QToolButton *GetRemoveButton() const { return m_pRemoveButton; }

	// The status text of a child's table.
	static QString BuildStatusText( bool bEndCap, float flDelay );

public slots:
	void OnBrowse();
	void OnAssetMenu();
	void OnEditButtonDoubleClicked();

protected:
	void mouseDoubleClickEvent( QMouseEvent *pEvent ) override;
	void dragEnterEvent( QDragEnterEvent *pEvent ) override;
	void dragLeaveEvent( QDragLeaveEvent *pEvent ) override;
	void dropEvent( QDropEvent *pEvent ) override;

private:
	QLabel *m_pStatusLabel = nullptr;
	CQAssetThumbnail *m_pThumbnail = nullptr;
	QToolButton *m_pBrowseButton = nullptr;
	QToolButton *m_pAssetButton = nullptr;
	QToolButton *m_pRemoveButton = nullptr;
};
