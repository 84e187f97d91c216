#pragma once
// Who hears of attribute edits: the document or node that owns the instances.

#include "tools/toolutils2/toolattr/toolattrhandle.h"

class IBaseToolAttr;

class IToolAttrNotifyRoot
{
public:
	virtual ~IToolAttrNotifyRoot() = default;
	virtual void OnAttrWillChange( HToolAttrTableInstance, IBaseToolAttr * ) {}
	virtual void OnAttrChanged( HToolAttrTableInstance, IBaseToolAttr * ) {}
	virtual void *GetReservedQuery() { return nullptr; }
	// The help context of attributes that have none.
	virtual const char *GetDefaultHelpContext() { return ""; }
};
