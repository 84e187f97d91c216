#pragma once
// The value interface: a field read and written as a whole, as text or typed.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class IToolAttrHost;

class IToolAttr_Value
{
public:
	virtual ~IToolAttr_Value() = default;
	virtual bool SetFromString( HToolAttrTableInstance handle, const char *pszText, int nFlags ) = 0;
	// The empty string for a value kind without a text form.
	virtual void GetAsString( HToolAttrTableInstance handle, CUtlString *pOut ) const = 0;
	// True when a list was produced.
	virtual bool GetChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const = 0;
	virtual const ToolAttrRange_t<int64_t> *GetIntRange() const = 0;
	virtual const ToolAttrRange_t<float> *GetFloatRange() const = 0;
};

template <typename T>
class IToolAttr_TypedValue : public IToolAttr_Value
{
public:
	virtual void SetTyped( HToolAttrTableInstance handle, const T &value, int nFlags ) = 0;
	virtual void GetTyped( HToolAttrTableInstance handle, T &out ) const = 0;
	virtual void GetTypedDefault( HToolAttrTableInstance handle, T &out ) const = 0;
};
