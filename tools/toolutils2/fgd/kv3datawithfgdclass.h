#pragma once
// A KV3 table with its class description and nothing else: the plain owner of such
// data, for command line tools, tests and any object that doesn't track changes.

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/fgd/basekv3datawithfgdclass.h"

class IToolAttrNotifyRoot;

class CKV3DataWithFGDClass : public CBaseKV3DataWithFGDClass
{
public:
	CKV3DataWithFGDClass( const CGameData *pGameData, const CGameDataClass *pClass );

	// The handle that attributes of this object take.
	HToolAttrTableInstance GetHandle( IToolAttrNotifyRoot *pNotifyRoot = nullptr );

	const CGameData *GetGameData() const override { return m_pGameData; }
	const CGameDataClass *GetFGDClass() const override { return m_pClass; }
	const KeyValues3 *GetKV3() const override { return &m_KV3; }
	KeyValues3 *GetKV3ForModify() override { return &m_KV3; }

	void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) override;
	bool GetHelpInfo( HToolAttrTableInstance handle, CUtlString *pContext, CUtlString *pId ) const override;
	bool GetElementHelpInfo( CUtlString *, CUtlString * ) const override { return false; }
	bool GetDisplayName( HToolAttrTableInstance handle, CUtlString *pOut ) const override;
	const char *GetIconName() const override { return ""; }
	bool IgnoresDefaults() const override { return false; }
	bool HidesDefaultMark() const override { return false; }
	bool GetFlattenIntoParent() const override { return false; }
	HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) override { return handle; }
	void FillEditContext( HToolAttrTableInstance, CToolEditContextQuery_Base * ) const override {}

private:
	const CGameData *m_pGameData;
	const CGameDataClass *m_pClass;
	KeyValues3 m_KV3;
};
