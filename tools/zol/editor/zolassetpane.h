#pragma once
// The "Current assets" pane: the particle systems of the content tree, or those open in the
// editor, in a list that a filter narrows. A double click or Enter asks for the system's
// session; a selection tells the window only in the test mode's absence (see the console
// variable "zol_disable_test_mode").

#include <vector>

#include <QWidget>

class IAsset;
class IAssetSystem;
class IWorkingSet;
class QComboBox;
class QLineEdit;
class QListWidget;
class QListWidgetItem;

class CQZolAssetPane : public QWidget
{
	Q_OBJECT

public:
	enum View_t
	{
		VIEW_BROWSE_ALL, // "Browse All Particle Systems"
		VIEW_OPEN,       // "Open Particle Systems", the working set
	};

	CQZolAssetPane( IAssetSystem *pAssetSystem, IWorkingSet *pWorkingSet, QWidget *pParent = nullptr );

	void SetView( View_t eView );
	View_t GetView() const;
	// Reads the shown view's assets again, keeping the selection where it can.
	void Refresh();
	// Selects the asset's row (nothing when it isn't shown), without telling anyone.
	void SelectAsset( IAsset *pAsset );
	void ClearSelection();
	std::vector<IAsset *> GetSelectedAssets() const;

	QComboBox *GetViewCombo() const { return m_pViewCombo; }
	QLineEdit *GetFilterEdit() const { return m_pFilter; }
	QListWidget *GetList() const { return m_pList; }

signals:
	void ZolAssetPaneSelectionChanged();
	void OpenSession( IAsset *pAsset );

private slots:
	void OnAssetSelectionChanged();
	void OnItemActivated( QListWidgetItem *pItem );
	void ApplyFilter();

private:
	IAsset *AssetOfItem( const QListWidgetItem *pItem ) const;

	IAssetSystem *m_pAssetSystem = nullptr;
	IWorkingSet *m_pWorkingSet = nullptr;
	QComboBox *m_pViewCombo = nullptr;
	QLineEdit *m_pFilter = nullptr;
	QListWidget *m_pList = nullptr;
	bool m_bSelecting = false;
};
