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
	CUtlString editorText( pAttr->GetEditorName() );
	if ( const char *pszSpec = pAttr->GetEditorSpec(); pszSpec && *pszSpec )
		editorText.Set( pszSpec );
	if ( !editorText.IsEmpty() )
		return editorText;

	const char *pszParam = pAttr->GetEditHintParam() ? pAttr->GetEditHintParam() : "";
	switch ( pAttr->GetEditHint() )
	{
	case TOOLATTR_EDIT_HINT_GRADIENT: return CUtlString( "Gradient()" );
	case TOOLATTR_EDIT_HINT_TEXT_BLOCK: return CUtlString( "TextBlock()" );
	case TOOLATTR_EDIT_HINT_SOUND: return CUtlString( "SoundPicker()" );
	case TOOLATTR_EDIT_HINT_DATA_FILE: editorText.Format( "LedgeChoice( %s )", pszParam ); return editorText;
	case TOOLATTR_EDIT_HINT_RESOURCE: editorText.Format( "AssetBrowse( %s )", pszParam ); return editorText;
	default: break;
	}
	// A KV3 value names its editor in the hint's parameter.
	if ( pAttr->GetAttrType() == TOOLATTR_TYPE_KV3 && *pszParam )
	{
		editorText.Set( pszParam );
		if ( !strchr( pszParam, '(' ) )
			editorText += "()";
	}
	return editorText;
}
