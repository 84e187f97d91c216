#pragma once
// A table of attributes: the fields of one class, listed for an instance.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class IBaseToolAttr;

class IToolAttr_Table
{
public:
	virtual ~IToolAttr_Table() = default;
	// Appends the attributes; a class with a base lists the base's first.
	virtual void GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes ) = 0;
	virtual bool GetHelpInfo( HToolAttrTableInstance handle, CUtlString *pContext, CUtlString *pId ) const = 0;
	virtual bool GetElementHelpInfo( CUtlString *pContext, CUtlString *pId ) const = 0;
	virtual bool GetDisplayName( HToolAttrTableInstance handle, CUtlString *pOut ) const = 0;
	virtual const char *GetIconName() const = 0;
	virtual bool IgnoresDefaults() const = 0;
	virtual bool HidesDefaultMark() const = 0;
	virtual bool GetFlattenIntoParent() const = 0;
	virtual HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) = 0;
	// The first attribute whose name equals pszName exactly (case included); null if none.
	virtual IBaseToolAttr *FindAttribute( HToolAttrTableInstance handle, const char *pszName ) = 0;
	virtual void FillEditContext( HToolAttrTableInstance handle, CToolEditContextQuery_Base *pQuery ) const = 0;
};
