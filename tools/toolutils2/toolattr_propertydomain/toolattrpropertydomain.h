#pragma once
// The property edit domain of tool attributes: rows, metadata expressions, buttons,
// arrays and maps, answered from IBaseToolAttr and its families. It has no widgets: the
// panel draws what it answers, and its beeps and pickers go through the prompt layer.
// Derived domains (the particle document's) filter properties and add a row flag.

#include "tools/toolutils2/toolattr_propertydomain/ipropertyeditdomain.h"
#include "tools/toolutils2/toolattr_propertydomain/itoolattrexpressionglobals.h"

class IToolAttrDomainListener;

class CToolAttrPropertyDomain : public IPropertyEditDomain, public IToolAttrExpressionGlobals
{
public:
	explicit CToolAttrPropertyDomain( IToolAttrDomainListener *pListener = nullptr );
	~CToolAttrPropertyDomain() override;

	// Rows of values that their class doesn't expect are tinted and offer removal.
	void SetSpuriousHandling( bool bOn ) { m_bSpuriousHandling = bOn; }
	// Every row read-only, buttons display-only; writes, array and map changes and
	// commands change nothing.
	void SetReadOnly( bool bReadOnly ) { m_bReadOnly = bReadOnly; }
	bool IsReadOnly() const { return m_bReadOnly; }

	bool NeedsRebuild() const override { return m_bRebuildNeeded; }
	void ClearRebuild() override { m_bRebuildNeeded = false; }
	bool GetTargetDisplayName( const ZolPropertyTarget &target, CUtlString *pOut ) override;
	bool IsTargetInvalid( const ZolPropertyTarget &target ) override { return !target.m_hTable.IsValid(); }
	CUtlString GetTargetIcon( const ZolPropertyTarget &target ) override;
	void GetProperties( const ZolPropertyTarget &target, CUtlVector<ZolPropertyTarget> *pProperties ) override;
	int GetPropertyType( const ZolPropertyTarget &property ) override;
	bool GetPropertyInfo( const ZolPropertyTarget &property, ZolPropertyRowInfo *pInfo ) override;
	void GetValueText( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlString *pOut ) override;
	void GetValueFriendlyText( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlString *pOut ) override;
	bool GetElementTarget( const ZolPropertyTarget &property, const ZolPropertyPath &path, ZolPropertyTarget *pOut ) override;
	void SetValueText( const ZolPropertyTarget &property, const ZolPropertyPath &path, const char *pText, int nFlags ) override;
	bool GetValueChoices( const ZolPropertyTarget &property, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override;
	void NotifyBeforeChange( const ZolPropertyTarget *pProperties, int nCount, PropEdModifyType_t eModifyType ) override;
	void NotifyAfterChange( int nCode ) override;
	int GetArrayCount( const ZolPropertyTarget &property, const ZolPropertyPath &path ) override;
	int ModifyArray( const ZolPropertyTarget &property, const ZolPropertyPath &path, PropEdArrayOperation_t eOperation, int a, int b ) override;
	bool GetArrayElementProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, int nIndex, ZolPropertyTarget *pOut ) override;
	bool GetHelpInfo( const ZolPropertyTarget &target, CUtlString *pContext, CUtlString *pId ) override;
	void RunButtonCommand( const char *pCommand, const ZolPropertyTarget &property, const char *pArgument ) override;
	bool IsKV3Property( const ZolPropertyTarget &property, const ZolPropertyPath &path ) override;
	void SetKV3( const ZolPropertyTarget &property, const ZolPropertyPath &path, const KeyValues3 &value, int nFlags ) override;
	bool GetKV3( const ZolPropertyTarget &property, const ZolPropertyPath &path, KeyValues3 *pOut ) override;
	IBaseToolAttr *ResolveProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, ZolPropertyTarget *pOut ) override;
	void CopyTarget( const ZolPropertyTarget &in, ZolPropertyTarget *pOut ) override { *pOut = in; }
	bool GetMapElementProperty( const ZolPropertyTarget &property, const ZolPropertyPath &path, const char *pKey, ZolPropertyTarget *pOut ) override;
	void FillEditContext( const ZolPropertyTarget &property, CToolEditContextQuery_Base *pQuery ) override;
	bool GetMapKeys( const ZolPropertyTarget &property, const ZolPropertyPath &path, CUtlVector<CUtlString> *pKeys ) override;
	bool ModifyMap( const ZolPropertyTarget &property, const ZolPropertyPath &path, PropEdMapOperation_t eOperation, const char *pKey ) override;

	// Derived domains hide properties and flag rows.
	virtual bool IsPropertyFiltered( IBaseToolAttr *pAttr, HToolAttrTableInstance handle );
	virtual bool GetRowExtraFlag( const ZolPropertyTarget &property );

	// IToolAttrExpressionGlobals: "mod" is the current game's name.
	bool GetGlobalValue( const char *pName, KeyValues3 *pValue ) override;

private:
	// The attribute at the end of the path, or null when any step is gone.
	static IBaseToolAttr *Walk( const ZolPropertyTarget &property, const ZolPropertyPath &path );
	static bool IsUsable( const ZolPropertyTarget &property ) { return property.m_hTable.IsValid() && property.m_pAttr; }
	void AfterValueWrite( const ZolPropertyTarget &property, IBaseToolAttr *pValueAttr );
	void AddOverrideButtons( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, ZolPropertyRowInfo *pInfo );
	void AddDefaultState( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, ZolPropertyRowInfo *pInfo );
	void AddHelpAndAlert( IBaseToolAttr *pAttr, HToolAttrTableInstance handle, ZolPropertyRowInfo *pInfo );
	static void FillHint( IBaseToolAttr *pAttr, const void *pIntRange, const void *pFloatRange, ZolPropertyRowInfo *pInfo );

	IToolAttrDomainListener *m_pListener;
	bool m_bRebuildNeeded = false;
	bool m_bSpuriousHandling = true;
	bool m_bReadOnly = false;
};
