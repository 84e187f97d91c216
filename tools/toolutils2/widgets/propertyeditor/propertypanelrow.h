#pragma once
// One row of the property panel: what it shows (the model, built from the domain's answers
// at every rebuild and refresh) and its widget (label, editor, buttons). Rows nest: a
// group holds its properties, a table its fields, an array its elements, a map its
// entries, a KV3 value its parts.

#include <QStringList>
#include <QWidget>

#include <memory>
#include <vector>

#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"

class CQAttributeEditor_Base;
class QHBoxLayout;
class QLabel;
class QToolButton;

struct PropertyPanelRow_t
{
	enum Kind_t
	{
		KIND_GROUP,     // a heading over the properties of one group name
		KIND_PROPERTY,  // a property of a table
		KIND_ELEMENT,   // an element of an array
		KIND_MAP_ENTRY, // an entry of a map
		KIND_KV3_PART,  // a member or element inside a KV3 value
	};

	Kind_t m_eKind = KIND_PROPERTY;
	// Names from the top, '/' between: unique among the rows, kept through rebuilds.
	QString m_Key;
	QString m_Label;
	// One per target of the panel.
	CUtlVector<PropEdSpecificAttr_t> m_Targets;
	ZolPropertyRowInfo m_Info;
	QStringList m_KV3Path;
	// KV3 parts: the part's KV3 kind, and whether it is a curve (edited as one).
	int m_nKV3Type = -1;
	bool m_bKV3Curve = false;
	bool m_bIsArray = false;
	bool m_bArrayResizable = false;
	// The element count when every target agrees, else -1.
	int m_nArrayCount = -1;
	bool m_bIsMap = false;
	int m_nElementIndex = -1;
	QString m_MapKey;
	int m_nDepth = 0;
	bool m_bDefaultExpanded = true;
	PropertyPanelRow_t *m_pParent = nullptr;
	std::vector<std::unique_ptr<PropertyPanelRow_t>> m_Children;

	// While shown.
	class CQPropertyRowWidget *m_pWidget = nullptr;
	CQAttributeEditor_Base *m_pEditor = nullptr;

	bool HasChildren() const { return !m_Children.empty(); }
	// What must stay the same for the row's widgets to be kept through a refresh.
	QString GetStructureKey() const;
};

// The widget of a row: indent, expander and label in a column of the panel's label
// width; the editor; the buttons.
class CQPropertyRowWidget : public QWidget
{
	Q_OBJECT

public:
	CQPropertyRowWidget( PropertyPanelRow_t *pRow, QWidget *pParent );

	PropertyPanelRow_t *GetRow() const { return m_pRow; }
	void SetLabelWidth( int nWidth );
	int GetLabelHint() const;
	// The label's text, colour and marks from the row's record.
	void UpdateLabel();
	void SetEditor( QWidget *pEditor );
	QWidget *GetEditor() const { return m_pEditor; }
	QLabel *GetLabel() const { return m_pLabel; }
	QToolButton *GetExpander() const { return m_pExpander; }
	void SetExpanded( bool bExpanded );
	bool IsExpanded() const { return m_bExpanded; }
	// Buttons follow the label and editor, in order.
	QHBoxLayout *GetButtonLayout() const { return m_pButtons; }
	void ClearButtons();
	QToolButton *AddButton( const QString &icon, const QString &fallbackText, const QString &toolTip, const QString &objectName );
	void AddMark( const QString &icon, const QString &toolTip );

signals:
	void ExpandToggled( bool bExpanded );
	void ContextMenuRequested( const QPoint &globalPos );

protected:
	void contextMenuEvent( QContextMenuEvent *pEvent ) override;
	void mouseDoubleClickEvent( QMouseEvent *pEvent ) override;

private:
	PropertyPanelRow_t *m_pRow;
	QWidget *m_pLabelArea = nullptr;
	QToolButton *m_pExpander = nullptr;
	QLabel *m_pLabel = nullptr;
	QWidget *m_pEditor = nullptr;
	QHBoxLayout *m_pLayout = nullptr;
	QHBoxLayout *m_pButtons = nullptr;
	bool m_bExpanded = true;
	// The label column's width (-1: a heading, as wide as the row) and the room the whole
	// label would take, measured before it is cut to fit.
	int m_nLabelWidth = -1;
	int m_nFullLabelHint = 0;
};
