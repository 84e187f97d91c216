#pragma once
// Data held as a KV3 table together with the class description that says which keys
// the table may have. Document nodes derive from this; the attributes of the KV3 family
// (CKV3FGDToolAttr) reach the tree and its class through it.

#include "tools/toolutils2/toolattr/itoolattrtable.h"

class KeyValues3;
class CGameData;      // a set of class descriptions
class CGameDataClass; // one class record of a set

class CBaseKV3DataWithFGDClass : public IToolAttr_Table
{
public:
	virtual ~CBaseKV3DataWithFGDClass() = default;

	// The class description set; null while the object has none.
	virtual const CGameData *GetGameData() const = 0;
	// The class record of this object; null while the object has none.
	virtual const CGameDataClass *GetFGDClass() const = 0;
	// The table of this object as a read sees it.
	virtual const KeyValues3 *GetKV3() const = 0;
	// The same table, after the owner was told that it is about to change.
	virtual KeyValues3 *GetKV3ForModify() = 0;
	// Owners that keep an inherited view answer it here; most read GetKV3.
	virtual const KeyValues3 *GetKV3ForRead() const { return GetKV3(); }

	// The first of GetAttributes whose name equals pszName exactly.
	IBaseToolAttr *FindAttribute( HToolAttrTableInstance handle, const char *pszName ) override;
};
