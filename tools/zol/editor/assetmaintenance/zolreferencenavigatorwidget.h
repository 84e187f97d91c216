#pragma once
// The "Particle Reference Navigator": for the particle systems open in the editor, the
// tree of each top-level system (and of systems the game's modifiers put in its place),
// one row per system and one column per control point and variable, with who writes and
// who reads each drawn as a swimlane chart. "Reload" builds it anew from the open
// documents (unsaved edits included) and the files of the rest. A double click opens a
// system; a right click on a control point's cell offers its conversion to a variable.

#include <memory>
#include <vector>

#include <QWidget>

#include "tools/zol/editor/assetmaintenance/zolsessiondocuments.h"

class CQParticleDefinitionItem;
class CQParticleNavigatorDelegate;
class CZolModifierTable;
class CZolReferenceNavigator;
class QMenu;
class QPushButton;
class QTreeWidget;
class QTreeWidgetItem;

class CQZolReferenceNavigatorWidget : public QWidget
{
	Q_OBJECT

public:
	explicit CQZolReferenceNavigatorWidget( QWidget *pParent = nullptr );
	~CQZolReferenceNavigatorWidget() override;

	QTreeWidget *GetTree() const { return m_pTree; }
	QPushButton *GetReloadButton() const { return m_pReloadButton; }
	const CZolReferenceNavigator &GetModel() const { return *m_pModel; }
	CQParticleDefinitionItem *GetLastClickedItem() const { return m_pLastClicked; }
	// The control point of a key column, or -1 for another column.
	int GetControlPointOfColumn( int nColumn ) const;
	// The menu of a cell (at a position of the tree's viewport): the conversion of its
	// control point to a variable. Null where there is nothing to offer; the caller owns it.
	QMenu *CreateContextMenu( const QPoint &position );
	// The process's modifier table, kept between refreshes.
	static CZolModifierTable &GetModifierTable();

public slots:
	void OnRefresh();
	void OnReloadModifierInfo();
	void OnItemDoubleClicked( QTreeWidgetItem *pItem, int column );
	void OnItemClicked( QTreeWidgetItem *pItem, int column );

private:
	void OnContextMenu( const QPoint &position );
	void SetHighlight( CQParticleDefinitionItem *pItem, bool bHighlighted );

	QPushButton *m_pReloadButton = nullptr;
	QTreeWidget *m_pTree = nullptr;
	CQParticleDefinitionItem *m_pLastClicked = nullptr;
	CQParticleNavigatorDelegate *m_pDelegate = nullptr;
	CZolSessionDocuments m_Documents;
	std::unique_ptr<CZolReferenceNavigator> m_pModel;
	std::vector<CUtlString> m_Keys;
};
