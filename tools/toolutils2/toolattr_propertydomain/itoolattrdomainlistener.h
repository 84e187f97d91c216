#pragma once
// Who hears of edits that go through a property edit domain: the document, which opens
// its undo step before a change and announces rebuilds after.

#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr_propertydomain/propertyrowinfo.h"

class IBaseToolAttr;

// How an edit arrives: at once, or as the begin, continuation and end of a drag.
enum PropEdModifyType_t : int
{
	PROPED_MODIFY_ONE_SHOT = 0,
	PROPED_MODIFY_BEGIN = 1,
	PROPED_MODIFY_CONTINUE = 2,
	PROPED_MODIFY_END = 3,
};

struct ZolPropertyBeforeChange_t
{
	const ZolPropertyTarget *m_pProperties = nullptr;
	int m_nCount = 0;
	PropEdModifyType_t m_eModifyType = PROPED_MODIFY_ONE_SHOT; // above 1 continues an open step
};

struct ZolPropertyAfterChange_t
{
	int m_nCode = 0; // passed on from the panel
};

class IToolAttrDomainListener
{
public:
	virtual void OnBeforeChange( const ZolPropertyBeforeChange_t &record ) = 0;
	virtual void OnAfterChange( const ZolPropertyAfterChange_t &record ) = 0;
	virtual void OnPropertyRebuild( HToolAttrTableInstance handle, IBaseToolAttr *pAttr ) = 0;

protected:
	~IToolAttrDomainListener() = default;
};
