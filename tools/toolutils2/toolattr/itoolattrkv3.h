#pragma once
// An attribute whose value is a KV3 subtree edited by a custom editor.

#include "tools/toolutils2/toolattr/toolattrhandle.h"

class KeyValues3;

class IToolAttr_KV3
{
public:
	virtual ~IToolAttr_KV3() = default;
	// Never null.
	virtual const KeyValues3 *GetKV3( HToolAttrTableInstance handle ) const = 0;
	// Opens an edit bracket; EndKV3Modify closes it.
	virtual KeyValues3 *GetKV3ForModify( HToolAttrTableInstance handle, int nFlags ) = 0;
	virtual void EndKV3Modify( HToolAttrTableInstance handle, int nFlags ) = 0;
};
