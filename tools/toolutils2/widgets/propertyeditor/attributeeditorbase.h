#pragma once
// The base of every editor that the property panel places into a row. An editor shows the
// value of its targets (one property per selected object) and writes a whole value back
// when the user changes it. It never writes on its own: its slots hand it to the panel's
// host with a modify type, and the host brackets the write as one undoable change (a drag
// is a begin, continuations and an end, which the document keeps as one step).
//
// A concrete editor connects its widget's signals to the slots below, reads its targets in
// ReadFromAttribute and writes them in WriteToAttribute, through the host's operations,
// which work with every domain.

#include <QList>
#include <QMetaObject>
#include <QString>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr_propertydomain/propertyeditorslots.h"
#include "tools/toolutils2/toolattr_propertydomain/propertyrowinfo.h"
#include "tools/toolutils2/widgets/propertyeditor/poolablewidget.h"

class IPropertyEditDomain;
class KeyValues3;

// One value an editor edits: a property and the array indices down to the value.
struct PropEdSpecificAttr_t
{
	ZolPropertyTarget m_Property;
	ZolPropertyPath m_Path;
};
Q_DECLARE_METATYPE( PropEdSpecificAttr_t )

// What the panel offers its editors.
class IPropertyEditorHost : public IPropertyEditorApplyHost
{
public:
	virtual IPropertyEditDomain *GetDomain() const = 0;
	// The value text of the targets (friendly text, where the domain has one, with
	// bFriendly); *pDiffer when they don't agree, pOut then holding the first's.
	virtual void ReadCommonValueText( const CUtlVector<PropEdSpecificAttr_t> &targets, const ZolPropertyRowInfo &info, CUtlString *pOut, bool bFriendly,
		bool *pDiffer ) = 0;
	// The KV3 value of the targets, likewise; false when the first has none.
	virtual bool ReadCommonKV3( const CUtlVector<PropEdSpecificAttr_t> &targets, KeyValues3 *pOut, bool *pDiffer ) = 0;
	// Writes to every target; only while the host applies the editor's change.
	virtual void WriteValueText( const CUtlVector<PropEdSpecificAttr_t> &targets, const char *pText ) = 0;
	virtual void WriteKV3( const CUtlVector<PropEdSpecificAttr_t> &targets, const KeyValues3 &value ) = 0;
	virtual void RegisterHelp( const char *pContext, const char *pId, const char *pFriendlyName, const char *pDescription, const char *pExtra ) = 0;
	// True when a text was found.
	virtual bool LookupHelpText( const char *pContext, const char *pId, const char *pExtra, CUtlString *pOut, int nFlags ) = 0;

protected:
	~IPropertyEditorHost() = default;
};

// What an editor is made for: its host, its targets and the row's record.
struct PropertyEditorInit_t
{
	IPropertyEditorHost *m_pHost = nullptr;
	CUtlVector<PropEdSpecificAttr_t> m_Targets;
	ZolPropertyRowInfo m_Info;
	// The argument of the editor text, "Name( argument )".
	QString m_Argument;
	// Below a KV3 value: the member names and array indices down to the edited part;
	// empty for the value itself.
	QStringList m_KV3Path;
};

class CQAttributeEditor_Base : public CQPoolableWidget, public CPropertyEditorEditSlots
{
	Q_OBJECT

public:
	explicit CQAttributeEditor_Base( QWidget *pParent = nullptr );
	~CQAttributeEditor_Base() override;

	virtual void MarkInitialized() { m_bInitialized = true; }
	// Drops every connection and forgets the targets; the next use initialises again.
	virtual void DisconnectAndClear();
	// Writes the editor's value to every target, through the host.
	virtual void WriteToAttribute() = 0;
	// Shows the targets' value.
	virtual void ReadFromAttribute() = 0;
	virtual int GetTargetCount() const { return m_Targets.Count(); }
	virtual const PropEdSpecificAttr_t &GetTarget( int nIndex ) const { return m_Targets[ nIndex ]; }
	// Stores the host, targets and row record, clears the edit state, and connects.
	virtual void Initialize( const PropertyEditorInit_t &init );
	// The value as text, and a text to show; plain editors answer as a line edit would.
	virtual QString GetValueText() const { return QString(); }
	virtual void SetWidgetText( const QString & ) {}
	// True while the user is in the middle of typing into it: a refresh leaves it alone.
	virtual bool IsBeingEdited() const { return false; }

	bool IsInitialized() const { return m_bInitialized; }
	IPropertyEditorHost *GetHost() const { return m_pHost; }
	const CUtlVector<PropEdSpecificAttr_t> &GetTargets() const { return m_Targets; }
	const ZolPropertyRowInfo &GetRowInfo() const { return m_Info; }
	bool IsReadOnly() const { return m_Info.m_bReadOnly; }

	// Tells the targets' change, after the host has written it.
	void NotifyAttributeModified( PropEdModifyType_t eModifyType );

	// CQPoolableWidget
	void OnReturnedToPool() override { DisconnectAndClear(); }

signals:
	void OnAttributeModified( PropEdSpecificAttr_t attr, PropEdModifyType_t eModifyType );

public slots:
	void IndicateEditorStateModified() { CPropertyEditorEditSlots::IndicateEditorStateModified(); }
	void UpdateAttributesFromEditor_OneShot_Unconditional() { CPropertyEditorEditSlots::UpdateAttributesFromEditor_OneShot_Unconditional(); }
	void UpdateAttributesFromEditor_OneShot_IfModified() { CPropertyEditorEditSlots::UpdateAttributesFromEditor_OneShot_IfModified(); }
	void InitIncrementalOperation() { CPropertyEditorEditSlots::InitIncrementalOperation(); }
	void UpdateAttributesFromEditor_Incremental() { CPropertyEditorEditSlots::UpdateAttributesFromEditor_Incremental(); }
	void TermIncrementalOperation() { CPropertyEditorEditSlots::TermIncrementalOperation(); }
	void UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_Unconditional()
	{
		CPropertyEditorEditSlots::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_Unconditional();
	}
	void UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified()
	{
		CPropertyEditorEditSlots::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified();
	}

protected:
	// A connection that DisconnectAndClear drops.
	void Track( const QMetaObject::Connection &connection ) { m_Connections.append( connection ); }
	// Connects the widget's signals to the slots; called by Initialize.
	virtual void ConnectSignals() {}

	QList<QMetaObject::Connection> m_Connections;
	bool m_bInitialized = false;
	IPropertyEditorHost *m_pHost = nullptr;
	CUtlVector<PropEdSpecificAttr_t> m_Targets;
	ZolPropertyRowInfo m_Info;
};
