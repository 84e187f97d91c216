#pragma once
// What the property panel asks about the things it shows: which properties a target
// has, how each row looks, which text a value has, which commands its buttons run. The
// panel knows nothing of attributes; CToolAttrPropertyDomain answers from them.

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr_propertydomain/itoolattrdomainlistener.h"
#include "tools/toolutils2/toolattr_propertydomain/propertyrowinfo.h"

class KeyValues3;
struct ToolAttrGenericChoice_t;
class CToolEditContextQuery_Base;

// ModifyArray operations.
enum PropEdArrayOperation_t : int
{
	PROPED_ARRAY_INSERT = 0, // at index a
	PROPED_ARRAY_REMOVE = 1, // b elements from index a
	PROPED_ARRAY_SWAP = 2,   // elements a and b
};

// ModifyMap operations.
enum PropEdMapOperation_t : int
{
	PROPED_MAP_ADD = 0,    // a new entry under the key
	PROPED_MAP_REMOVE = 1, // the entry of the key
};

class IPropertyEditDomain
{
public:
	virtual ~IPropertyEditDomain() = default;

	virtual bool NeedsRebuild() const = 0;
	virtual void ClearRebuild() = 0;
	virtual bool GetTargetDisplayName( const ZolPropertyTarget &target, CUtlString *pOut ) = 0;
	virtual bool IsTargetInvalid( const ZolPropertyTarget &target ) = 0;
	virtual CUtlString GetTargetIcon( const ZolPropertyTarget &target ) = 0;
	virtual void GetProperties( const ZolPropertyTarget &target, CUtlVector<ZolPropertyTarget> *pProperties ) = 0;
	virtual int GetPropertyType( const ZolPropertyTarget &property ) = 0;
	virtual bool GetPropertyInfo( const ZolPropertyTarget &property, ZolPropertyRowInfo *pInfo ) = 0;
	virtual void GetValueText( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlString *pOut ) = 0;
	virtual void GetValueFriendlyText( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlString *pOut ) = 0;
	virtual bool GetElementTarget( const ZolPropertyTarget &property, const ZolPropertyPath &path, ZolPropertyTarget *pOut ) = 0;
	virtual void SetValueText( const ZolPropertyTarget &property, const ZolPropertyPath &path, const char *pText, int nFlags ) = 0;
	virtual bool GetValueChoices( const ZolPropertyTarget &property, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) = 0;
	virtual void NotifyBeforeChange( const ZolPropertyTarget *pProperties, int nCount, PropEdModifyType_t eModifyType ) = 0;
	virtual void NotifyAfterChange( int nCode ) = 0;
	virtual int GetArrayCount( const ZolPropertyTarget &property, const ZolPropertyPath &path ) = 0;
	virtual int ModifyArray( const ZolPropertyTarget &property, const ZolPropertyPath &path, PropEdArrayOperation_t eOperation, int a, int b ) = 0;
	virtual bool GetArrayElementProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, int nIndex, ZolPropertyTarget *pOut ) = 0;
	virtual bool GetHelpInfo( const ZolPropertyTarget &target, CUtlString *pContext, CUtlString *pId ) = 0;
	virtual void RunButtonCommand( const char *pCommand, const ZolPropertyTarget &property, const char *pArgument ) = 0;
	virtual bool IsKV3Property( const ZolPropertyTarget &property, const ZolPropertyPath &path ) = 0;
	virtual void SetKV3( const ZolPropertyTarget &property, const ZolPropertyPath &path, const KeyValues3 &value, int nFlags ) = 0;
	virtual bool GetKV3( const ZolPropertyTarget &property, const ZolPropertyPath &path, KeyValues3 *pOut ) = 0;
	virtual IBaseToolAttr *ResolveProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, ZolPropertyTarget *pOut ) = 0;
	virtual void CopyTarget( const ZolPropertyTarget &in, ZolPropertyTarget *pOut ) = 0;
	virtual bool GetMapElementProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, const char *pKey, ZolPropertyTarget *pOut ) = 0;
	virtual void FillEditContext( const ZolPropertyTarget &property, CToolEditContextQuery_Base *pQuery ) = 0;
	// The keys of a map, in its order; false when the value is no map.
	virtual bool GetMapKeys( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlVector<CUtlString> *pKeys ) = 0;
	// Adds or removes a map entry; false when nothing changed (a key taken, or absent).
	virtual bool ModifyMap( const ZolPropertyTarget &property, const ZolPropertyPath &path, PropEdMapOperation_t eOperation, const char *pKey ) = 0;
};

// The undo step's name for a list of properties: "[NO_ATTRS]", "[INVALID_TARGET]",
// "[NULL_ATTR]", else the first property's friendly name.
CUtlString ZolPropertyListLabel( const ZolPropertyTarget *pProperties, int nCount );
