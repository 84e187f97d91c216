#pragma once
// The property edit domain of the particle editor: an edit of a property is an undoable
// step of the shown session's document, fields the document's behaviour version doesn't
// have are hidden, and the root's lists (which the function list edits) don't show as
// rows. It registers with the property editor system for its life. It is also the named
// value context of the shown session: the variables of its family, its configurations
// and attachments, for the editors and pickers that ask the nodes.

#include "tools/toolutils2/toolattr_propertydomain/itoolattrdomainlistener.h"
#include "tools/toolutils2/toolattr_propertydomain/toolattrpropertydomain.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"

class CPulseValueFullType;
class CZolSession;
class QComboBox;

class CZolKV3PropertyDomain : public CToolAttrPropertyDomain, public IToolAttrDomainListener, public CZolNamedValueContext
{
public:
	CZolKV3PropertyDomain();
	~CZolKV3PropertyDomain() override;
	CZolKV3PropertyDomain( const CZolKV3PropertyDomain & ) = delete;
	CZolKV3PropertyDomain &operator=( const CZolKV3PropertyDomain & ) = delete;

	// The session shown; the family of named values is read anew for it.
	void SetSession( CZolSession *pSession );
	CZolSession *GetSession() const { return m_pSession; }

	// The variable pickers' lists: the box is emptied and made non-editable, then holds
	// the current file's variables that fit the type, each with its type as tool tip.
	void FillVariableCombo( QComboBox *pCombo, const CPulseValueFullType &type );
	// Selects the variable of that name, telling no one; false when the box hasn't it.
	static bool SelectVariableInCombo( QComboBox *pCombo, const char *pName );

	// The version rule: a field with "particle_min_version" above the document's version,
	// or "particle_max_version" below it, is not the document's. False without a session.
	bool IsFieldHidden( IBaseToolAttr *pAttr ) const;

	// CToolAttrPropertyDomain. A node is named as the artist knows it: "Base Properties",
	// "Child fire", "Variable FireHeight", or its function's name.
	bool GetTargetDisplayName( const ZolPropertyTarget &target, CUtlString *pOut ) override;
	bool IsPropertyFiltered( IBaseToolAttr *pAttr, HToolAttrTableInstance handle ) override;
	void FillEditContext( const ZolPropertyTarget &property, CToolEditContextQuery_Base *pQuery ) override;

	// IToolAttrDomainListener: an edit opens (or, past its first step, continues) one undo
	// step, and announces itself as a change of the function list.
	void OnBeforeChange( const ZolPropertyBeforeChange_t &record ) override;
	void OnAfterChange( const ZolPropertyAfterChange_t &record ) override;
	void OnPropertyRebuild( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) override;

private:
	CZolSession *m_pSession = nullptr;
};
