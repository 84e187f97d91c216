#pragma once
// Two small buttons that show how many particle systems use the shown one (P) and how
// many it uses (C). A click opens a popup tree of them, up to eight levels deep; a click
// on an entry opens that system, and resting the mouse on one tells who listens which
// system it is (the preview highlights it).

#include <QPointer>
#include <QWidget>

#include "core/containers/utlvector.h"

class IAsset;
class QBoxLayout;
class QFrame;
class QGridLayout;
class QPushButton;

class CQAssetParentChildMenu : public QWidget
{
	Q_OBJECT

public:
	static constexpr int MAX_DEPTH = 8;

	CQAssetParentChildMenu( QWidget *pParent, bool bVertical = false );
	~CQAssetParentChildMenu() override;

	// False, and no buttons, for no asset or an asset of another kind than particle systems.
	bool SetAsset( IAsset *pAsset );
	IAsset *GetAsset() const { return m_pAsset; }
	QPushButton *GetParentButton() const { return m_pParentButton; }
	QPushButton *GetChildButton() const { return m_pChildButton; }
	// The open popup, if any.
	QFrame *GetPopup() const { return m_pPopup; }
	IAsset *GetHoveredAsset() const { return m_pHoveredAsset; }

public slots:
	void OpenMenuForParentsOfAsset();
	void OpenMenuForChildrenOfAsset();
	void OnSelectAsset( void *pAsset );
	void OnMouseEnterAsset( void *pAsset );
	void OnMouseLeaveAsset( void *pAsset );
	void OnPopupClose();

signals:
	void ParentChildAssetSelected( IAsset *pAsset );
	void ParentChildAssetHovered( IAsset *pAsset );

private:
	void RefreshButtons();
	void OpenMenu( bool bChildren );
	// Adds one level of the tree; answers the rows it added. nLastRow is the last row in
	// use, which the level's first entry shares.
	int BuildLevel( QGridLayout *pGrid, IAsset *pAsset, int nDepth, bool bChildren, int nLastRow );
	void GetRelatives( IAsset *pAsset, bool bChildren, CUtlVector<IAsset *> *pRelatives ) const;

	bool m_bVertical;
	IAsset *m_pAsset = nullptr;
	IAsset *m_pHoveredAsset = nullptr;
	QBoxLayout *m_pLayout = nullptr;
	QPushButton *m_pParentButton = nullptr;
	QPushButton *m_pChildButton = nullptr;
	QPointer<QFrame> m_pPopup;
};
