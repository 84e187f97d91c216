#pragma once
// An attribute over a growable list; each element is an attribute of its own.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class IBaseToolAttr;
class IToolAttrHost;
class KeyValues3;

struct ToolAttrElementType_t
{
	CUtlString m_Value; // the class name (or other type text)
	CUtlString m_FriendlyName;
	CUtlString m_Description;
};

class IToolAttr_Array
{
public:
	virtual ~IToolAttr_Array() = default;
	virtual int GetCount( HToolAttrTableInstance handle ) const = 0;
	// Element attributes are created on first request and kept: later calls give the same.
	virtual IBaseToolAttr *GetElement( HToolAttrTableInstance handle, int nIndex ) = 0;
	virtual IBaseToolAttr *InsertElement( HToolAttrTableInstance handle, int nIndex ) = 0;
	virtual void RemoveElements( HToolAttrTableInstance handle, int nIndex, int nCount ) = 0;
	virtual void SwapElements( HToolAttrTableInstance handle, int nA, int nB ) = 0;
	virtual bool GetElementChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const = 0;
	virtual bool CanResize() const = 0;
	virtual const ToolAttrRange_t<int64_t> *GetElementIntRange() const = 0;
	virtual const ToolAttrRange_t<float> *GetElementFloatRange() const = 0;
	virtual bool GetElementTypes( HToolAttrTableInstance handle, CUtlVector<ToolAttrElementType_t> *pTypes ) const = 0;
	virtual IBaseToolAttr *InsertElementOfType( HToolAttrTableInstance handle, int nIndex, const ToolAttrElementType_t &type ) = 0;
	// 0 one element type, 1 a list of types, 2 a list of types and the elements are owned objects.
	virtual int GetElementTypeMode() const = 0;
};
