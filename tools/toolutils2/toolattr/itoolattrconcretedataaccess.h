#pragma once
// How a concrete attribute reaches its field in an instance. The access object is shared
// by every instance; writes go between BeginEdit and EndEdit, which bracket the edit.

#include "tools/toolutils2/toolattr/toolattrhandle.h"

class IBaseToolAttr;

template <typename T>
class IToolAttrConcreteDataAccess
{
public:
	virtual ~IToolAttrConcreteDataAccess() = default;
	// Only called with a handle whose instance is the owner class.
	virtual const T &Get( HToolAttrTableInstance handle ) const = 0;
	virtual bool CanGet( HToolAttrTableInstance handle ) const = 0;
	virtual bool CanSet( HToolAttrTableInstance handle ) const = 0;
	virtual T &BeginEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) = 0;
	virtual void EndEdit( HToolAttrTableInstance handle, IBaseToolAttr *pAttr, int nFlags ) = 0;
};
