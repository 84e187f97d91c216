#include "tools/toolutils2/toolattr/basetoolattr.h"

#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3membername.h"
#include "core/text/friendlyname.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

CBaseToolAttr::CBaseToolAttr( const char *pszName, const char *pszOwnerClassName, const char *pszHelpContext, const char *pszHelpPrefix )
	: m_Name( pszName ), m_OwnerClassName( pszOwnerClassName ), m_HelpContext( pszHelpContext )
{
	if ( !m_HelpContext.IsEmpty() )
		m_HelpId.Format( "%s.%s.%s", pszHelpPrefix, m_OwnerClassName.Get(), m_Name.Get() );
}

CBaseToolAttr::~CBaseToolAttr() = default;

void CBaseToolAttr::ApplySchemaMetadata( std::initializer_list<SchemaMetadataEntry_t> metadata )
{
	for ( const SchemaMetadataEntry_t &entry : metadata )
	{
		const char *pszKey = entry.m_pszName;
		auto is = [ pszKey ]( const char *pszName ) { return std::strcmp( pszKey, pszName ) == 0; };
		if ( is( "MPropertyFriendlyName" ) )
			m_FriendlyName = entry.m_pszValue;
		else if ( is( "MPropertyDescription" ) )
			m_Description = entry.m_pszValue;
		else if ( is( "MPropertyGroupName" ) || is( "MPropertyStartGroup" ) )
			m_GroupName = entry.m_pszValue;
		else if ( is( "MPropertySortPriority" ) )
			m_nSortPriority = static_cast<int>( entry.m_nValue );
		else if ( is( "MPropertyHideField" ) )
			m_bHidden = true;
		else if ( is( "MPropertySuppressField" ) )
			m_bSuppressed = true;
		else if ( is( "MPropertyRequired" ) )
			m_bRequired = true;
		else if ( is( "MPropertyReadOnly" ) )
			m_bReadOnly = true;
		else if ( is( "MPropertyAutoExpandSelf" ) )
			m_nAutoExpand = 1;
		else if ( is( "MPropertyAutoRebuildOnChange" ) )
			m_bRebuildOnChange = true;
		else if ( is( "MPropertyAttributeEditor" ) )
			m_EditHintParam = entry.m_pszValue;
		else if ( is( "MPropertyEditContextOverrideValue" ) )
			AddEditContextEntry( &m_EditContextCodes, entry.m_pszValue );
		else if ( is( "MPropertyEditContextOverrideKey" ) )
			AddEditContextEntry( &m_EditContextKeys, entry.m_pszValue );

		if ( !m_pMetadata )
		{
			m_pMetadata = std::make_unique<KeyValues3>();
			m_pMetadata->SetToEmptyTable();
		}
		switch ( entry.m_eType )
		{
		case SCHEMA_METADATA_NONE: m_pMetadata->SetMemberBool( pszKey, true ); break;
		case SCHEMA_METADATA_INT: m_pMetadata->SetMemberInt64( pszKey, entry.m_nValue ); break;
		case SCHEMA_METADATA_STRING: m_pMetadata->SetMemberString( pszKey, entry.m_pszValue ); break;
		case SCHEMA_METADATA_FUNCTION: break; // functions are reached through the schema, not as data
		}
		// Named choice lists answer under the keys that GetChoices reads, as they do for
		// class descriptions made from the schema.
		if ( entry.m_eType == SCHEMA_METADATA_STRING && is( "MPropertyAttributeChoiceName" ) )
			m_pMetadata->SetMemberString( "choice_name", entry.m_pszValue );
		else if ( entry.m_eType == SCHEMA_METADATA_STRING && is( "MPropertyAttributeSuggestionName" ) )
			m_pMetadata->SetMemberString( "suggestion_name", entry.m_pszValue );
	}
	if ( const char *pszEditor = m_pMetadata ? m_pMetadata->GetMemberString( "MPropertyAttributeEditor", nullptr ) : nullptr )
		m_pMetadata->SetMemberString( "editor", pszEditor );
}

const KeyValues3 *CBaseToolAttr::GetMetadata() const
{
	static const KeyValues3 s_EmptyTable = [] {
		KeyValues3 table;
		table.SetToEmptyTable();
		return table;
	}();
	return m_pMetadata ? m_pMetadata.get() : &s_EmptyTable;
}

void CBaseToolAttr::GetFriendlyName( HToolAttrTableInstance, CUtlString *pOut ) const
{
	if ( !m_FriendlyName.IsEmpty() )
		*pOut = m_FriendlyName;
	else
		V_TryAndMakeFriendlyNameFromCppName( m_Name.Get(), pOut );
}

bool CBaseToolAttr::GetHelpInfo( CUtlString *pContext, CUtlString *pId ) const
{
	*pContext = m_HelpContext;
	*pId = m_HelpId;
	return !m_HelpId.IsEmpty();
}

bool CBaseToolAttr::GetIconName( HToolAttrTableInstance, CUtlString *pOut ) const
{
	*pOut = m_Icon;
	return !m_Icon.IsEmpty();
}

bool CBaseToolAttr::GetAlert( HToolAttrTableInstance handle, CUtlString *pOut ) const
{
	const char *pszName = GetMetadata()->GetMemberString( "alert_func", "" );
	const ToolAttrAlertFn_t &fn = ToolAttrHost()->FindAlertFunction( pszName );
	return fn ? fn( handle, this, pOut ) : false; // an unknown name is no alert and no error
}

const char *CBaseToolAttr::GetEditorSpec() const { return GetMetadata()->GetMemberString( "editor", "" ); }

void CBaseToolAttr::AddEditContextEntry( std::vector<EditContextEntry_t> *pList, const char *pszKeyAndText )
{
	// "<query key> <text>": the text may hold blanks of its own.
	const char *pszBlank = std::strchr( pszKeyAndText, ' ' );
	EditContextEntry_t &entry = pList->emplace_back();
	if ( !pszBlank )
	{
		entry.m_Key = pszKeyAndText;
		return;
	}
	entry.m_Key.Set( pszKeyAndText, pszBlank - pszKeyAndText );
	entry.m_Text = pszBlank + 1;
}

void CBaseToolAttr::FillEditContext( HToolAttrTableInstance handle, CToolEditContextQuery_Base *pQuery ) const
{
	if ( auto *pString = dynamic_cast<CToolEditContextQuery_String *>( pQuery ) )
	{
		for ( const EditContextEntry_t &entry : m_EditContextCodes )
		{
			if ( entry.m_Key == pString->m_Key )
			{
				pString->m_eKind = CToolEditContextQuery_String::KIND_CODE;
				pString->m_Source = "code";
				pString->m_Value = entry.m_Text;
				return;
			}
		}
		for ( const EditContextEntry_t &entry : m_EditContextKeys )
		{
			if ( entry.m_Key == pString->m_Key )
			{
				pString->m_eKind = CToolEditContextQuery_String::KIND_KEY_NAME;
				pString->m_Value = entry.m_Text;
				pString->m_nValueKeyHash = MurmurHash2LowerCase( entry.m_Text.Get(), entry.m_Text.Length(), KV3_MEMBER_NAME_SEED );
				return;
			}
		}
	}
	// Nothing of the attribute's own: the table may know.
	if ( handle.m_pTable )
		handle.m_pTable->FillEditContext( handle, pQuery );
}
