#pragma once
// The edit vocabulary of an attribute editor without its widget: the slots that a
// concrete editor connects its widget's signals to, and the modify types they send. An
// edit is applied by handing the editor and the modify type to the panel's host, which
// writes the editor's value when it counts as modified and then clears modified.

#include "tools/toolutils2/toolattr_propertydomain/itoolattrdomainlistener.h"

class CPropertyEditorEditSlots;

class IPropertyEditorApplyHost
{
public:
	virtual void Apply( CPropertyEditorEditSlots *pEditor, PropEdModifyType_t eModifyType ) = 0;

protected:
	~IPropertyEditorApplyHost() = default;
};

class CPropertyEditorEditSlots
{
public:
	// Editors derive from this with a widget; the host finds the editor back by a cast.
	virtual ~CPropertyEditorEditSlots() = default;

	// A new row: the host, and every state cleared.
	void Initialize( IPropertyEditorApplyHost *pHost );

	void IndicateEditorStateModified() { m_bModified = true; }
	void UpdateAttributesFromEditor_OneShot_Unconditional();
	void UpdateAttributesFromEditor_OneShot_IfModified();
	void InitIncrementalOperation() { m_bInIncrementalUpdate = true; }
	void UpdateAttributesFromEditor_Incremental();
	void TermIncrementalOperation();
	void UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_Unconditional();
	void UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified();

	bool IsModified() const { return m_bModified; }
	void ClearModified() { m_bModified = false; }
	bool IsInIncrementalUpdate() const { return m_bInIncrementalUpdate; }
	bool IsBeginSent() const { return m_bBeginSent; }

private:
	void ApplyWith( PropEdModifyType_t eModifyType );

	IPropertyEditorApplyHost *m_pHost = nullptr;
	bool m_bModified = false;
	bool m_bInIncrementalUpdate = false;
	bool m_bBeginSent = false;
};
