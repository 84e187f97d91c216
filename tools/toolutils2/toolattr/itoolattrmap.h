#pragma once
// An attribute over a keyed collection; each entry is an attribute of its own.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class IBaseToolAttr;

class IToolAttr_Map
{
public:
	virtual ~IToolAttr_Map() = default;
	virtual bool HasIntegerKeys() const = 0;
	virtual IBaseToolAttr *GetElement( HToolAttrTableInstance handle, const char *pszKey, bool bCreate ) = 0;
	virtual void GetKeys( HToolAttrTableInstance handle, CUtlVector<CUtlString> *pKeys ) const = 0;
	virtual bool AddKey( HToolAttrTableInstance handle, const char *pszKey ) = 0;
	virtual bool RemoveKey( HToolAttrTableInstance handle, const char *pszKey ) = 0;
	virtual bool RenameKey( HToolAttrTableInstance handle, const char *pszOldKey, const char *pszNewKey ) = 0;
	// True when the list is closed, false when it only suggests.
	virtual bool GetKeyChoices( HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const = 0;
};
