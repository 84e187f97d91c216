#include "tools/toolutils2/toolattr_propertydomain/propertyrowinfo.h"

#include <cstring>

#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

const ZolPropertyRowButton *ZolPropertyRowInfo::FindButton( const char *pCommand ) const
{
	for ( const ZolPropertyRowButton &button : m_Buttons )
	{
		if ( button.m_Command == pCommand )
			return &button;
	}
	return nullptr;
}

CUtlString ZolEditorSpec::ForAttribute( const IBaseToolAttr *pAttr )
{
	if ( !pAttr )
		return CUtlString();
	CUtlString spec( pAttr->GetEditorName() );
	if ( const char *pszSpec = pAttr->GetEditorSpec(); pszSpec && *pszSpec )
		spec.Set( pszSpec );
	if ( !spec.IsEmpty() )
		return spec;

	const char *pszParam = pAttr->GetEditHintParam() ? pAttr->GetEditHintParam() : "";
	switch ( pAttr->GetEditHint() )
	{
	case TOOLATTR_EDIT_HINT_GRADIENT: return CUtlString( "Gradient()" );
	case TOOLATTR_EDIT_HINT_TEXT_BLOCK: return CUtlString( "TextBlock()" );
	case TOOLATTR_EDIT_HINT_SOUND: return CUtlString( "SoundPicker()" );
	case TOOLATTR_EDIT_HINT_DATA_FILE: spec.Format( "LedgeChoice( %s )", pszParam ); return spec;
	case TOOLATTR_EDIT_HINT_RESOURCE: spec.Format( "AssetBrowse( %s )", pszParam ); return spec;
	default: break;
	}
	// A KV3 value names its editor in the hint's parameter.
	if ( pAttr->GetAttrType() == TOOLATTR_TYPE_KV3 && *pszParam )
	{
		spec.Set( pszParam );
		if ( !strchr( pszParam, '(' ) )
			spec += "()";
	}
	return spec;
}
