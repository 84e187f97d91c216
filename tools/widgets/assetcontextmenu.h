#pragma once
// The menu of one asset: open it, copy its name or path, show its folder, and go to the
// assets of its kind that use it or that it uses.

#include <QMenu>

class IAsset;

class CQAssetContextMenu : public QMenu
{
	Q_OBJECT

public:
	CQAssetContextMenu( IAsset *pAsset, QWidget *pParent = nullptr );

	IAsset *GetAsset() const { return m_pAsset; }

signals:
	// The user chose to open the asset, or a parent or child of it.
	void OpenAsset( IAsset *pAsset );

private:
	void AddRelatives( const QString &title, bool bParents );

	IAsset *m_pAsset;
};
