#pragma once
// One attribute describes one field of one class to editors. Every generic read, write,
// reset, command and query goes through these operations, with the instance in the handle.
// Queries for an interface the attribute doesn't offer answer null.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

class KeyValues3;
class Color;
class IToolAttr_Value;
class IToolAttr_Array;
class IToolAttr_KV3;
class IToolAttr_Map;

class IBaseToolAttr
{
public:
	virtual ~IBaseToolAttr() = default;

	virtual const char *GetName() const = 0;
	virtual const char *GetOwnerClassName() const = 0;
	virtual const char *GetHelpContext() const = 0;
	virtual const char *GetHelpId() const = 0;
	virtual int GetAttrType() const = 0;
	virtual int GetEditHint() const = 0;
	virtual const char *GetEditHintParam() const = 0;
	// Never null: an empty table when the attribute has no metadata.
	virtual const KeyValues3 *GetMetadata() const = 0;

	virtual IToolAttr_Value *AsValue() = 0;
	virtual IToolAttr_Array *AsArray() = 0;
	// The handle of the nested table; the empty handle when the attribute is no table.
	virtual HToolAttrTableInstance GetTableInstance( HToolAttrTableInstance handle ) = 0;
	virtual IToolAttr_KV3 *AsKV3() = 0;
	virtual void *GetReservedInterface0() = 0;
	virtual IToolAttr_Map *AsMap() = 0;
	virtual void *GetReservedInterface1() = 0;

	virtual bool IsWritable( HToolAttrTableInstance handle ) const = 0;
	virtual bool IsHidden( HToolAttrTableInstance handle ) const = 0;
	virtual bool IsSuppressed( HToolAttrTableInstance handle ) const = 0;
	virtual void GetFriendlyName( HToolAttrTableInstance handle, CUtlString *pOut ) const = 0;
	virtual int GetAutoExpand() const = 0;
	virtual const char *GetGroupName() const = 0;
	virtual bool GetHelpInfo( CUtlString *pContext, CUtlString *pId ) const = 0;
	virtual bool GetProceduralHelp( HToolAttrTableInstance handle, CUtlString *pContext, CUtlString *pId ) const = 0;
	virtual void GetDescription( HToolAttrTableInstance handle, CUtlString *pOut ) const = 0;
	virtual int GetSortPriority() const = 0;
	virtual bool IsRequired() const = 0;
	virtual bool IsImportant() const = 0;
	virtual bool GetRowFlag() const = 0;
	virtual void IsSpurious( HToolAttrTableInstance handle, bool *pSpurious ) const = 0;
	virtual bool RemoveSpurious( HToolAttrTableInstance handle ) = 0;
	virtual int GetOverrideState( HToolAttrTableInstance handle ) const = 0;
	virtual void SetOverride( HToolAttrTableInstance handle, bool bOverride ) = 0;
	virtual bool IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const = 0;
	virtual bool ResetToDefault( HToolAttrTableInstance handle ) = 0;
	virtual bool CaptureAsDefault( HToolAttrTableInstance handle ) = 0;
	virtual bool ApplyCapturedDefault( HToolAttrTableInstance handle, HToolAttrTableInstance source ) = 0;
	virtual void GetCustomCommands( HToolAttrTableInstance handle, CUtlVector<ToolAttrCustomCommand_t> *pCommands ) const = 0;
	virtual int RunCommand( HToolAttrTableInstance handle, const char *pszCommand ) = 0;
	virtual int RunCommandWithArgument( HToolAttrTableInstance handle, const char *pszCommand, const char *pszArgument ) = 0;
	virtual bool GetDefaultColor( HToolAttrTableInstance handle, Color *pOut ) const = 0;
	virtual bool GetIconName( HToolAttrTableInstance handle, CUtlString *pOut ) const = 0;
	virtual bool IsEmpty( HToolAttrTableInstance handle ) const = 0;
	virtual bool GetAlert( HToolAttrTableInstance handle, CUtlString *pOut ) const = 0;
	virtual const char *GetEditorName() const = 0;
	virtual const char *GetEditorSpec() const = 0;
	virtual void OnPreChange( HToolAttrTableInstance handle, int nFlags ) = 0;
	virtual void OnPostChange( HToolAttrTableInstance handle, int nFlags ) = 0;
	virtual void MarkRebuildOnChange() = 0;
	virtual bool RebuildsOnChange() const = 0;
	virtual void Reserved( HToolAttrTableInstance handle ) = 0;
	virtual void FillEditContext( HToolAttrTableInstance handle, CToolEditContextQuery_Base *pQuery ) const = 0;
	// Identifies a custom attribute family by the address of a static object; null otherwise.
	virtual const void *GetAttrClassMarker() const = 0;
};
