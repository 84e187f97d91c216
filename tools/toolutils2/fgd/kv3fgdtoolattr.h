#pragma once
// The attribute that presents one key, array element or map entry of a KV3 tree
// described by an FGD class. It holds no instance and caches no KV3 pointer: the value
// is found anew through the target resolver on every call, so edits of the tree never
// leave it dangling. One object serves every instance of a variable shape.

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/fgd/gamedatatype.h"
#include "tools/toolutils2/fgd/kv3fgdtargetresolver.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrarray.h"
#include "tools/toolutils2/toolattr/itoolattrkv3.h"
#include "tools/toolutils2/toolattr/itoolattrmap.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"

class CGameData;
class CGameDataClass;
class CGameDataVariable;

class CKV3FGDToolAttr : public IBaseToolAttr, public IToolAttr_Value, public IToolAttr_Array, public IToolAttr_Table, public IToolAttr_KV3, public IToolAttr_Map
{
public:
	// A described key: pVar of pClass. An undescribed key: pVar null, the KV3 kind as found.
	CKV3FGDToolAttr( IKV3FGDTargetResolver *pResolver, const char *pszKey, const CGameData *pGameData, const CGameDataClass *pClass,
		const CGameDataVariable *pVar, int nDepth = 0, KV3BasicType_t eKV3Type = KV3_TYPE_NULL, KV3SubType_t eKV3SubType = KV3_SUBTYPE_UNSPECIFIED );
	~CKV3FGDToolAttr() override;

	// The shared attribute of a root variable or of an undescribed root key; they live
	// for the process.
	static CKV3FGDToolAttr *GetRootAttribute( IKV3FGDTargetResolver *pResolver, const CGameData *pGameData, const CGameDataClass *pClass, const CGameDataVariable *pVar );
	static CKV3FGDToolAttr *GetUndescribedRootAttribute( IKV3FGDTargetResolver *pResolver, const char *pszKey, const KeyValues3 &value );
	// The attributes of a root table: the class's variables, then every key no variable names.
	static void GetRootAttributes( IKV3FGDTargetResolver *pResolver, HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes );

	const CGameDataVariable *GetVariable() const { return m_pVar; }
	GameDataType_t GetEffectiveType() const;
	// The stored value, or null when it can't be located.
	const KeyValues3 *ResolveForRead( HToolAttrTableInstance handle, KV3FGDResolveStatus_t *pStatus = nullptr ) const;
	// Opens the edit bracket at the root and finds or creates the whole key chain; every
	// call must be paired with EndWrite, even when it answered null.
	KeyValues3 *ResolveForWrite( HToolAttrTableInstance handle, int nFlags );
	void EndWrite( HToolAttrTableInstance handle, int nFlags );

	// IBaseToolAttr
	const char *GetName() const override { return m_KeyText.c_str(); }
	const char *GetOwnerClassName() const override { return ""; }
	const char *GetHelpContext() const override;
	const char *GetHelpId() const override { return ""; }
	int GetAttrType() const override;
	int GetEditHint() const override;
	const char *GetEditHintParam() const override;
	const KeyValues3 *GetMetadata() const override;
	IToolAttr_Value *AsValue() override { return this; }
	IToolAttr_Array *AsArray() override { return GetAttrType() == TOOLATTR_TYPE_ARRAY ? this : nullptr; }
	HToolAttrTableInstance GetTableInstance( HToolAttrTableInstance handle ) override;
	IToolAttr_KV3 *AsKV3() override { return GetAttrType() == TOOLATTR_TYPE_KV3 ? this : nullptr; }
	void *GetReservedInterface0() override { return nullptr; }
	IToolAttr_Map *AsMap() override { return GetAttrType() == TOOLATTR_TYPE_MAP ? this : nullptr; }
	void *GetReservedInterface1() override { return nullptr; }
	bool IsWritable( HToolAttrTableInstance handle ) const override;
	bool IsHidden( HToolAttrTableInstance handle ) const override;
	bool IsSuppressed( HToolAttrTableInstance handle ) const override;
	void GetFriendlyName( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	int GetAutoExpand() const override;
	const char *GetGroupName() const override;
	bool GetHelpInfo( CUtlString *pContext, CUtlString *pId ) const override;
	bool GetProceduralHelp( HToolAttrTableInstance, CUtlString *, CUtlString * ) const override { return false; }
	void GetDescription( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	int GetSortPriority() const override;
	bool IsRequired() const override;
	bool IsImportant() const override;
	bool GetRowFlag() const override { return true; }
	void IsSpurious( HToolAttrTableInstance handle, bool *pSpurious ) const override { ( void )handle; *pSpurious = m_pVar == nullptr; }
	bool RemoveSpurious( HToolAttrTableInstance handle ) override;
	int GetOverrideState( HToolAttrTableInstance handle ) const override;
	void SetOverride( HToolAttrTableInstance handle, bool bOverride ) override;
	bool IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const override;
	bool ResetToDefault( HToolAttrTableInstance handle ) override;
	// A key's default belongs to its class description, which saving also strips against; a captured one would change what removed keys read back as.
	bool CaptureAsDefault( HToolAttrTableInstance ) override { return false; }
	bool ApplyCapturedDefault( HToolAttrTableInstance, HToolAttrTableInstance ) override { return false; }
	void GetCustomCommands( HToolAttrTableInstance handle, CUtlVector<ToolAttrCustomCommand_t> *pCommands ) const override;
	int RunCommand( HToolAttrTableInstance handle, const char *pszCommand ) override;
	int RunCommandWithArgument( HToolAttrTableInstance handle, const char *pszCommand, const char * ) override { return RunCommand( handle, pszCommand ); }
	bool GetDefaultColor( HToolAttrTableInstance handle, Color *pOut ) const override;
	bool GetIconName( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	bool IsEmpty( HToolAttrTableInstance handle ) const override;
	bool GetAlert( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	const char *GetEditorName() const override { return ""; }
	const char *GetEditorSpec() const override;
	void OnPreChange( HToolAttrTableInstance, int ) override {}
	void OnPostChange( HToolAttrTableInstance, int ) override {}
	void MarkRebuildOnChange() override { m_bRebuild = true; }
	bool RebuildsOnChange() const override;
	void Reserved( HToolAttrTableInstance ) override {}
	// Serves both the row and, for a struct, the table interface.
	void FillEditContext( HToolAttrTableInstance handle, CToolEditContextQuery_Base *pQuery ) const override;
	const void *GetAttrClassMarker() const override { return nullptr; }

	// IToolAttr_Value
	bool SetFromString( HToolAttrTableInstance handle, const char *pszText, int nFlags ) override;
	void GetAsString( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	bool GetChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const override;
	const ToolAttrRange_t<int64_t> *GetIntRange() const override { return m_bHasRange ? &m_IntRange : nullptr; }
	const ToolAttrRange_t<float> *GetFloatRange() const override { return m_bHasRange ? &m_FloatRange : nullptr; }

	// IToolAttr_Array
	int GetCount( HToolAttrTableInstance handle ) const override;
	IBaseToolAttr *GetElement( HToolAttrTableInstance handle, int nIndex ) override;
	IBaseToolAttr *InsertElement( HToolAttrTableInstance handle, int nIndex ) override;
	void RemoveElements( HToolAttrTableInstance handle, int nIndex, int nCount ) override;
	void SwapElements( HToolAttrTableInstance handle, int nA, int nB ) override;
	bool GetElementChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const override;
	bool CanResize() const override { return true; }
	const ToolAttrRange_t<int64_t> *GetElementIntRange() const override { return GetIntRange(); }
	const ToolAttrRange_t<float> *GetElementFloatRange() const override { return GetFloatRange(); }
	bool GetElementTypes( HToolAttrTableInstance handle, CUtlVector<ToolAttrElementType_t> *pTypes ) const override;
	IBaseToolAttr *InsertElementOfType( HToolAttrTableInstance handle, int nIndex, const ToolAttrElementType_t &type ) override;
	int GetElementTypeMode() const override;

	// IToolAttr_Table
	void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) override;
	bool GetHelpInfo( HToolAttrTableInstance handle, CUtlString *pContext, CUtlString *pId ) const override;
	bool GetElementHelpInfo( CUtlString *, CUtlString * ) const override { return false; }
	bool GetDisplayName( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	const char *GetIconName() const override { return ""; }
	bool IgnoresDefaults() const override { return false; }
	bool HidesDefaultMark() const override { return false; }
	bool GetFlattenIntoParent() const override;
	HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) override { return handle; }
	IBaseToolAttr *FindAttribute( HToolAttrTableInstance handle, const char *pszName ) override;

	// IToolAttr_KV3
	const KeyValues3 *GetKV3( HToolAttrTableInstance handle ) const override;
	KeyValues3 *GetKV3ForModify( HToolAttrTableInstance handle, int nFlags ) override { return ResolveForWrite( handle, nFlags ); }
	void EndKV3Modify( HToolAttrTableInstance handle, int nFlags ) override { EndWrite( handle, nFlags ); }

	// IToolAttr_Map
	bool HasIntegerKeys() const override { return GetEffectiveType() == GDTYPE_INTMAP; }
	IBaseToolAttr *GetElement( HToolAttrTableInstance handle, const char *pszKey, bool bCreate ) override;
	void GetKeys( HToolAttrTableInstance handle, CUtlVector<CUtlString> *pKeys ) const override;
	bool AddKey( HToolAttrTableInstance handle, const char *pszKey ) override;
	bool RemoveKey( HToolAttrTableInstance handle, const char *pszKey ) override;
	bool RenameKey( HToolAttrTableInstance handle, const char *pszOldKey, const char *pszNewKey ) override;
	bool GetKeyChoices( HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const override;

private:
	bool MetaBool( const char *pszKey ) const;
	const char *MetaString( const char *pszKey ) const;
	GameDataType_t GetOwnType() const;
	CUtlString NormalizeMapKey( const char *pszKey ) const;
	void WriteText( KeyValues3 *pValue, const char *pszText, int nDepth ) const;
	CKV3FGDToolAttr *GetChild( const std::string &cacheKey, const char *pszKey, const CGameDataClass *pClass, const CGameDataVariable *pVar, int nDepth,
		const KeyValues3 *pStored );
	IKV3FGDAdvancedAPI *AdvancedAPI( HToolAttrTableInstance handle ) const;
	int ArrayAncestorState( HToolAttrTableInstance handle ) const;
	bool FillEditContextOverride( CToolEditContextQuery_String *pQuery ) const;

	IKV3FGDTargetResolver *m_pResolver;
	std::string m_KeyText;
	const CGameData *m_pGameData;
	const CGameDataClass *m_pClass;
	const CGameDataVariable *m_pVar;
	KeyValues3 m_Default;
	ToolAttrRange_t<int64_t> m_IntRange {};
	ToolAttrRange_t<float> m_FloatRange {};
	bool m_bHasRange = false;
	bool m_bRebuild = false;
	bool m_bWritePending = false;
	bool m_bValueIsParent = false;
	KV3BasicType_t m_eKV3Type;
	KV3SubType_t m_eKV3SubType;
	std::vector<std::unique_ptr<CKV3FGDToolAttr>> m_Elements;
	std::map<std::string, std::unique_ptr<CKV3FGDToolAttr>> m_Children;
	int m_nDepth;
	int m_nElementIndex = -1;
	CKV3FGDToolAttr *m_pParentArray = nullptr;
	CKV3FGDToolAttr *m_pParentTable = nullptr;
	CKV3FGDToolAttr *m_pParentMap = nullptr;
};
