#pragma once
// The property panel, the widget the property editor system makes: rows for the
// properties of its targets as a property edit domain describes them. Rows are grouped by
// their group names and sorted by priority; tables, arrays, maps and KV3 values nest their
// rows below them. Each row's editor is the one its editor name asks the attribute editor
// factories for, or the panel's own plain editor where none answers; editors are kept in
// a pool between rebuilds. Several targets show the properties they share, with the
// value they agree on.
//
// The panel is the editors' host: an edit reaches the domain between NotifyBeforeChange
// and NotifyAfterChange, which the domain's listener makes one undo step. Rows are made
// anew (a rebuild) only when what they show changed shape, and values read again (a
// refresh) after edits; both happen on a zero timer, never inside a slot, and a rebuild
// waits for a drag in progress to end.

#include <QHash>
#include <QPointer>
#include <QWidget>

#include <functional>
#include <memory>
#include <vector>

#include "tools/toolutils2/widgets/propertyeditor/attributeeditorbase.h"
#include "tools/toolutils2/widgets/propertyeditor/propertypanelrow.h"

class CPropertyAttributeEditorFactoryBase;
class CQWidgetPool;
class KeyValues3;
class QLabel;
class QLineEdit;
class QScrollArea;
class QTimer;
class QVBoxLayout;

class CQPropertyPanel : public QWidget, public IPropertyEditorHost
{
	Q_OBJECT

public:
	// Rows of a table deeper than this stop nesting (a value that holds itself).
	static constexpr int MAX_ROW_DEPTH = 16;

	explicit CQPropertyPanel( QWidget *pParent = nullptr );
	~CQPropertyPanel() override;

	// Makes this the panel that the property editor system makes; false without a system.
	static bool InstallInPropertyEditorSystem();
	// The system's panel under a parent, installing this one first when none is.
	static CQPropertyPanel *CreateFromPropertyEditorSystem( QWidget *pParent );

	void SetDomain( IPropertyEditDomain *pDomain );
	// The things to show; several show what they share. The same targets again only read
	// the values again.
	void SetTargets( const CUtlVector<ZolPropertyTarget> &targets );
	const CUtlVector<ZolPropertyTarget> &GetTargets() const { return m_Targets; }
	void RequestRebuild();
	void RequestRefresh();
	// Runs a pending rebuild or refresh now, as the timer would.
	void FlushPending();
	bool HasPendingWork() const { return m_bRebuildPending || m_bRefreshPending; }

	// Rows by key ("m_flRate", "Group/m_flRate" for a grouped one, ".../[0]" for an
	// element, ".../m_flValue" inside a value); null when not shown.
	const PropertyPanelRow_t *FindRow( const QString &key ) const;
	CQAttributeEditor_Base *FindEditor( const QString &key ) const;
	CQPropertyRowWidget *FindRowWidget( const QString &key ) const;
	QStringList GetRowKeys() const;
	int GetRebuildCount() const { return m_nRebuildCount; }
	CQWidgetPool *GetPool() const { return m_pPool.get(); }
	QLabel *GetTitleLabel() const { return m_pTitle; }
	QScrollArea *GetScrollArea() const { return m_pScroll; }

	// Which groups and rows the user folded, as the window's settings keep them.
	void SaveSettings( KeyValues3 *pTable ) const;
	void RestoreSettings( const KeyValues3 *pTable );

	// IPropertyEditorHost
	void Apply( CPropertyEditorEditSlots *pEditor, PropEdModifyType_t eModifyType ) override;
	IPropertyEditDomain *GetDomain() const override { return m_pDomain; }
	void ReadCommonValueText( const CUtlVector<PropEdSpecificAttr_t> &targets, const ZolPropertyRowInfo &info, CUtlString *pOut, bool bFriendly,
		bool *pDiffer ) override;
	bool ReadCommonKV3( const CUtlVector<PropEdSpecificAttr_t> &targets, KeyValues3 *pOut, bool *pDiffer ) override;
	void WriteValueText( const CUtlVector<PropEdSpecificAttr_t> &targets, const char *pText ) override;
	void WriteKV3( const CUtlVector<PropEdSpecificAttr_t> &targets, const KeyValues3 &value ) override;
	void RegisterHelp( const char *pContext, const char *pId, const char *pFriendlyName, const char *pDescription, const char *pExtra ) override;
	bool LookupHelpText( const char *pContext, const char *pId, const char *pExtra, CUtlString *pOut, int nFlags ) override;

signals:
	// An edit was written: the name of the property and the modify type.
	void AttributeModified( const QString &name, int nModifyType );
	void RowsRebuilt();

protected:
	void resizeEvent( QResizeEvent *pEvent ) override;

private slots:
	void OnPendingTimer();

private:
	using RowList_t = std::vector<std::unique_ptr<PropertyPanelRow_t>>;

	// The model.
	void BuildModel( RowList_t *pRows );
	void AddPropertyRows( const CUtlVector<ZolPropertyTarget> &tables, PropertyPanelRow_t *pParent, const QString &keyPrefix, int nDepth, RowList_t *pOut );
	void FillChildren( PropertyPanelRow_t *pRow );
	// A nested row of pRow (an element, a map entry) for the property fnTarget gives each
	// of its targets, with its rows below; null when a target has none.
	using NestedTargetFn_t = std::function<bool( const PropEdSpecificAttr_t &target, ZolPropertyTarget *pOut )>;
	PropertyPanelRow_t *AddNestedRow( PropertyPanelRow_t *pRow, int eKind, const QString &step, const NestedTargetFn_t &fnTarget );
	void AddKV3PartRows( PropertyPanelRow_t *pRow, const KeyValues3 &value );
	static void SortRows( RowList_t *pRows );
	static bool SameStructure( const RowList_t &a, const RowList_t &b );

	// The widgets.
	void Rebuild( RowList_t *pNewRows );
	void Refresh();
	void ReleaseRows();
	void CreateRowWidgets( PropertyPanelRow_t *pRow );
	void CreateEditor( PropertyPanelRow_t *pRow );
	QWidget *MakeArraySummary( PropertyPanelRow_t *pRow );
	QWidget *MakeMapSummary( PropertyPanelRow_t *pRow );
	void UpdateButtons( PropertyPanelRow_t *pRow );
	void UpdateVisibility();
	void UpdateLabelWidth();
	void UpdateTitle();
	void ShowRowMenu( PropertyPanelRow_t *pRow, const QPoint &globalPos );
	bool IsGestureInProgress() const;
	void DetachEditors();

	// Edits that are no editor's: buttons, array and map changes, all one undo step.
	void RunRowCommand( const QString &rowKey, const QString &command );
	void ModifyRowArray( const QString &rowKey, int nOperation, int nIndex );
	void ModifyRowMap( const QString &rowKey, int nOperation, const QString &mapKey );
	void BeginPanelEdit( const PropertyPanelRow_t *pRow );
	void EndPanelEdit( const PropertyPanelRow_t *pRow, int nModifyType );

	// Calls fn on every row, depth first.
	template <typename Fn> void ForEachRow( const RowList_t &rows, Fn &&fn ) const
	{
		for ( const std::unique_ptr<PropertyPanelRow_t> &pRow : rows )
		{
			fn( pRow.get() );
			ForEachRow( pRow->m_Children, fn );
		}
	}
	static void ParseEditorSpec( const CUtlString &editor, QString *pName, QString *pArgument );
	// The factory registered under the editor name, or null.
	static CPropertyAttributeEditorFactoryBase *FindFactory( const QString &name );

	IPropertyEditDomain *m_pDomain = nullptr;
	CUtlVector<ZolPropertyTarget> m_Targets;
	RowList_t m_Rows;
	QScrollArea *m_pScroll = nullptr;
	QWidget *m_pContent = nullptr;
	QVBoxLayout *m_pRowsLayout = nullptr;
	QLabel *m_pTitle = nullptr;
	QLabel *m_pEmpty = nullptr;
	QWidget *m_pPoolHolder = nullptr;
	std::unique_ptr<CQWidgetPool> m_pPool;
	QTimer *m_pTimer = nullptr;
	bool m_bRebuildPending = false;
	bool m_bRefreshPending = false;
	bool m_bApplying = false;
	int m_nRebuildCount = 0;
	int m_nLabelWidth = 120;
	// Rows the user folded or unfolded, by key: true when unfolded.
	QHash<QString, bool> m_Expanded;
};
