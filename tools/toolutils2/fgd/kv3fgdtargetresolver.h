#pragma once
// What an attribute of the KV3 family asks for the tree it presents, and the one
// stateless resolver per target class that answers by the handle's type tag.

#include <cstring>

#include "tools/toolutils2/fgd/basekv3datawithfgdclass.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class IBaseToolAttr;
class KeyValues3;
class CGameData;
class CGameDataClass;

// Lets an owner take over a value that it represents its own way.
class IKV3FGDAdvancedAPI
{
public:
	virtual ~IKV3FGDAdvancedAPI() = default;
	virtual void OnValueChanged( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) = 0;
	virtual void AddCustomCommands( HToolAttrTableInstance handle, const IBaseToolAttr *pAttr, CUtlVector<ToolAttrCustomCommand_t> *pCommands ) = 0;
	virtual int RunCommand( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, const char *pszCommand ) = 0;
	virtual bool IsAtDefault( HToolAttrTableInstance handle, bool *pAtDefault, bool *pHasDefault ) = 0;
	virtual bool ResetToDefault( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, bool *pResult ) = 0;
	virtual bool SetFromString( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, const char *pszText, int nFlags, bool *pResult ) = 0;
	virtual bool GetAsString( HToolAttrTableInstance handle, const IBaseToolAttr *pAttr, CUtlString *pOut ) = 0;
};

struct KV3FGDResolveStatus_t
{
	bool m_bWantInherited = false;             // set by the caller: the view with inherited values
	const CGameDataClass *m_pBaseClass = nullptr; // filled by a target that has a base description
	int m_nResult = 0;                          // 1 when that class has the variable, else 2
};

class IKV3FGDTargetResolver
{
public:
	virtual ~IKV3FGDTargetResolver() = default;
	virtual const CGameData *GetGameData( HToolAttrTableInstance handle ) const = 0;
	virtual const CGameDataClass *GetFGDClass( HToolAttrTableInstance handle ) const = 0;
	virtual KeyValues3 *GetKV3ForModify( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) const = 0;
	virtual const KeyValues3 *GetKV3( HToolAttrTableInstance handle, KV3FGDResolveStatus_t *pStatus ) const = 0;
	virtual IKV3FGDAdvancedAPI *GetAdvancedAPI( HToolAttrTableInstance, const IBaseToolAttr * ) const { return nullptr; }
};

// The target a handle stands for when it carries the tag of the class name, else null.
template <typename T>
T *KV3FGDCastByTag( HToolAttrTableInstance handle, const char *pszClassName )
{
	static const uint32_t s_nTag = ToolAttrTypeTag( pszClassName );
	if ( !handle.m_pInstance || handle.m_nTypeTag != s_nTag )
		return nullptr;
	return static_cast<T *>( handle.m_pInstance );
}

// How a handle finds its target T: by the tag of T's class name. Specialise, or pass other
// traits to the provider, for targets found another way.
template <typename T> struct KV3FGDTargetTraits
{
	static T *Cast( HToolAttrTableInstance handle ) { return KV3FGDCastByTag<T>( handle, T::GetToolAttrClassName() ); }
};
template <> struct KV3FGDTargetTraits<CBaseKV3DataWithFGDClass>
{
	static CBaseKV3DataWithFGDClass *Cast( HToolAttrTableInstance handle ) { return KV3FGDCastByTag<CBaseKV3DataWithFGDClass>( handle, "CBaseKV3DataWithFGDClass" ); }
};

template <typename T, typename Traits = KV3FGDTargetTraits<T>>
class CToolAttrKV3FGDProvider : public IKV3FGDTargetResolver
{
public:
	static CToolAttrKV3FGDProvider &Get()
	{
		static CToolAttrKV3FGDProvider s_Provider;
		return s_Provider;
	}

	const CGameData *GetGameData( HToolAttrTableInstance handle ) const override
	{
		const T *pTarget = Traits::Cast( handle );
		return pTarget ? pTarget->GetGameData() : nullptr;
	}
	const CGameDataClass *GetFGDClass( HToolAttrTableInstance handle ) const override
	{
		const T *pTarget = Traits::Cast( handle );
		return pTarget ? pTarget->GetFGDClass() : nullptr;
	}
	KeyValues3 *GetKV3ForModify( HToolAttrTableInstance handle, IBaseToolAttr * ) const override
	{
		T *pTarget = Traits::Cast( handle );
		return pTarget ? pTarget->GetKV3ForModify() : nullptr;
	}
	const KeyValues3 *GetKV3( HToolAttrTableInstance handle, KV3FGDResolveStatus_t *pStatus ) const override
	{
		const T *pTarget = Traits::Cast( handle );
		if ( !pTarget )
			return nullptr;
		return pStatus && pStatus->m_bWantInherited ? pTarget->GetKV3ForRead() : pTarget->GetKV3();
	}
};
