#pragma once
// The fields every attribute family shares, and the plain answers of IBaseToolAttr.

#include <initializer_list>
#include <memory>
#include <vector>

#include "core/schema/schemametadata.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"

class CBaseToolAttr : public IBaseToolAttr
{
public:
	// The help id "%s.%s.%s" of pszHelpPrefix, owner and name is built only with a help context.
	CBaseToolAttr( const char *pszName, const char *pszOwnerClassName, const char *pszHelpContext, const char *pszHelpPrefix = "attr" );
	~CBaseToolAttr() override;

	// Reads the declaration's metadata: "MPropertyFriendlyName", "MPropertyDescription",
	// "MPropertyGroupName", "MPropertySortPriority", "MPropertyHideField",
	// "MPropertySuppressField", "MPropertyRequired", "MPropertyAutoExpandSelf",
	// "MPropertyAttributeEditor", "MPropertyAutoRebuildOnChange", and the edit context
	// answers "MPropertyEditContextOverrideValue" and "MPropertyEditContextOverrideKey"
	// ("<query key> <text>"); every entry with a value is also copied into the metadata
	// table under its own name.
	void ApplySchemaMetadata( std::initializer_list<SchemaMetadataEntry_t> metadata );

	const char *GetName() const override { return m_Name.Get(); }
	const char *GetOwnerClassName() const override { return m_OwnerClassName.Get(); }
	const char *GetHelpContext() const override { return m_HelpContext.Get(); }
	const char *GetHelpId() const override { return m_HelpId.Get(); }
	int GetEditHint() const override { return m_nEditHint; }
	const char *GetEditHintParam() const override { return m_EditHintParam.IsEmpty() ? nullptr : m_EditHintParam.Get(); }
	const KeyValues3 *GetMetadata() const override;

	IToolAttr_Value *AsValue() override { return nullptr; }
	IToolAttr_Array *AsArray() override { return nullptr; }
	HToolAttrTableInstance GetTableInstance( HToolAttrTableInstance ) override { return {}; }
	IToolAttr_KV3 *AsKV3() override { return nullptr; }
	void *GetReservedInterface0() override { return nullptr; }
	IToolAttr_Map *AsMap() override { return nullptr; }
	void *GetReservedInterface1() override { return nullptr; }

	bool IsWritable( HToolAttrTableInstance ) const override { return !m_bReadOnly; }
	bool IsHidden( HToolAttrTableInstance ) const override { return m_bHidden; }
	bool IsSuppressed( HToolAttrTableInstance ) const override { return m_bSuppressed; }
	void GetFriendlyName( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	int GetAutoExpand() const override { return m_nAutoExpand; }
	const char *GetGroupName() const override { return m_GroupName.Get(); }
	bool GetHelpInfo( CUtlString *pContext, CUtlString *pId ) const override;
	bool GetProceduralHelp( HToolAttrTableInstance, CUtlString *, CUtlString * ) const override { return false; }
	void GetDescription( HToolAttrTableInstance, CUtlString *pOut ) const override { *pOut = m_Description; }
	int GetSortPriority() const override { return m_nSortPriority; }
	bool IsRequired() const override { return m_bRequired; }
	bool IsImportant() const override { return false; }
	bool GetRowFlag() const override { return m_bRowFlag; }
	void IsSpurious( HToolAttrTableInstance, bool *pSpurious ) const override { *pSpurious = false; }
	bool RemoveSpurious( HToolAttrTableInstance ) override { return false; }
	int GetOverrideState( HToolAttrTableInstance ) const override { return TOOLATTR_OVERRIDE_NONE; }
	void SetOverride( HToolAttrTableInstance, bool ) override {}
	bool CaptureAsDefault( HToolAttrTableInstance ) override { return false; }
	bool ApplyCapturedDefault( HToolAttrTableInstance, HToolAttrTableInstance ) override { return false; }
	void GetCustomCommands( HToolAttrTableInstance, CUtlVector<ToolAttrCustomCommand_t> * ) const override {}
	int RunCommand( HToolAttrTableInstance, const char * ) override { return TOOLATTR_COMMAND_NOT_HANDLED; }
	int RunCommandWithArgument( HToolAttrTableInstance, const char *, const char * ) override { return TOOLATTR_COMMAND_NOT_HANDLED; }
	bool GetDefaultColor( HToolAttrTableInstance, Color * ) const override { return false; }
	bool GetIconName( HToolAttrTableInstance, CUtlString *pOut ) const override;
	bool IsEmpty( HToolAttrTableInstance ) const override { return false; }
	bool GetAlert( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	const char *GetEditorName() const override { return ""; }
	const char *GetEditorSpec() const override;
	void OnPreChange( HToolAttrTableInstance, int ) override {}
	void OnPostChange( HToolAttrTableInstance, int ) override {}
	void MarkRebuildOnChange() override { m_bRebuildOnChange = true; }
	bool RebuildsOnChange() const override { return m_bRebuildOnChange; }
	void Reserved( HToolAttrTableInstance ) override {}
	void FillEditContext( HToolAttrTableInstance handle, CToolEditContextQuery_Base *pQuery ) const override;
	const void *GetAttrClassMarker() const override { return nullptr; }

	// Declaration code fills these.
	CUtlString m_Name;
	CUtlString m_OwnerClassName;
	CUtlString m_HelpContext;
	CUtlString m_HelpId;
	int m_nEditHint = TOOLATTR_EDIT_HINT_NONE;
	CUtlString m_GroupName;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
	CUtlString m_EditHintParam;
	int m_nAutoExpand = 0;
	bool m_bSuppressed = false;
	bool m_bHidden = false;
	bool m_bRowFlag = true;
	bool m_bRebuildOnChange = false;
	int m_nSortPriority = 0;
	bool m_bRequired = false;
	bool m_bReadOnly = false;
	std::unique_ptr<KeyValues3> m_pMetadata;
	CUtlString m_Icon;

	// Edit context answers by query key: a code string, or the name of another attribute.
	struct EditContextEntry_t
	{
		CUtlString m_Key;
		CUtlString m_Text;
	};
	std::vector<EditContextEntry_t> m_EditContextCodes;
	std::vector<EditContextEntry_t> m_EditContextKeys;

private:
	static void AddEditContextEntry( std::vector<EditContextEntry_t> *pList, const char *pszKeyAndText );
};
