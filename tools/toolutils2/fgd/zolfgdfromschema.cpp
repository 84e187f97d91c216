#include "tools/toolutils2/fgd/zolfgdfromschema.h"

#include <cstdlib>
#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemaenuminfo.h"
#include "core/schema/schematype.h"
#include "core/text/friendlyname.h"
#include "tools/toolutils2/fgd/entitysubclasshost.h"
#include "tools/toolutils2/fgd/fgdvalue.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

namespace
{
// Class keys of the Ledge family that keep their name in the class metadata.
constexpr const char *s_LedgeClassKeys[] = { "MLedgeNodeType", "MLedgeOverlayType", "MLedgeUseLinkedEntityClasses", "MLedgeSingleton",
	"MLedgeFileExtension", "MLedgePreviewWidget", "MLedgeGroupNodeClass", "MLedgeClassGroup", "MLedgeExperimentalNodeSet",
	"MLedgeUsesComponentEditor", "MLedgeNodeTintColor", "MLedgeComponentValidParents", "MLedgeComponentValidGrandParents",
	"MLedgeComponentRequiresAncestor", "MLedgeVirtualNodeFactoryFn", "MLedgePreLoadFixupFn", "MLedgePostSaveFixupFn",
	"MLedgeOutlinerLeafNameFn", "MLedgeOutlinerLeafColorFn", "MLedgeOutlinerLeafDetailFn", "MLedgeHideNodeClass" };

struct RenamedKey_t
{
	const char *m_pszSchemaKey;
	const char *m_pszFgdKey;
};
constexpr RenamedKey_t s_LedgeRenamedClassKeys[] = {
	{ "MLedgeAnonymousNode", "ledge_anonymous_node" },
	{ "MLedgeOutlinerIconExpr", "ledge_outliner_icon_expr" },
	{ "MLedgeOutlinerDetailExpr", "ledge_outliner_details_expr" },
	{ "MLedgeOutlinerNameExpr", "ledge_outliner_name_expr" },
	{ "MLedgeOutlinerAssetNameExpr", "ledge_outliner_asset_name_expr" },
	{ "MLedgeOutlinerLabelExpr", "ledge_outliner_label_expr" },
	{ "MLedgeOutlinerDefaultExpanded", "ledge_outliner_default_expanded" },
};

// Field keys whose value is a plain flag of the variable.
constexpr RenamedKey_t s_FieldFlagKeys[] = {
	{ "MPropertyRequired", "required" },
	{ "MPropertyReadOnly", "propattr_force_readonly" },
	{ "MPropertyAutoExpandSelf", "autoexpand_self" },
	{ "MPropertyHideField", "hidden" },
	{ "MPropertySuppressField", "suppressed_field" },
	{ "MPropertyFlattenIntoParentRow", "propattr_flatten_into_parent_row" },
	{ "MPropertyFlattenIncludeLabel", "propattr_flatten_include_label" },
	{ "MPropertyAutoRebuildOnChange", "rebuild_propertyeditor_on_change" },
};

// A key alone means true; an integer or text is stored as it is.
void SetFromMetadata( KeyValues3 *pTable, const char *pszKey, const SchemaMetadataEntry_t &entry )
{
	switch ( entry.m_eType )
	{
	case SCHEMA_METADATA_INT:
		pTable->SetMemberInt64( pszKey, entry.m_nValue );
		break;
	case SCHEMA_METADATA_STRING:
		pTable->SetMemberString( pszKey, entry.m_pszValue );
		break;
	default:
		pTable->SetMemberBool( pszKey, entry.m_eType == SCHEMA_METADATA_NONE || entry.m_nValue != 0 );
		break;
	}
}

const char *MetadataText( const SchemaMetadataEntry_t *pEntry )
{
	return pEntry && pEntry->m_eType == SCHEMA_METADATA_STRING ? pEntry->m_pszValue : "";
}

// Metadata text in KV3 form, merged into a table. Bad text leaves the table as it was.
// Metadata texts in code quote their strings with single quotes, so that they sit in C++
// string literals unescaped; KV3 text wants double quotes.
CUtlString DoubleQuoteMetadataStrings( const char *pszText )
{
	CUtlString result;
	char cOpenQuote = 0;
	for ( const char *p = pszText; *p; ++p )
	{
		char c = *p;
		if ( cOpenQuote != 0 && c == '\\' && p[ 1 ] )
		{
			// An escape stays as written, with the character it escapes.
			result.Append( p, 2 );
			++p;
			continue;
		}
		if ( cOpenQuote == 0 && ( c == '\'' || c == '"' ) )
		{
			cOpenQuote = c;
			c = '"';
		}
		else if ( c == cOpenQuote )
		{
			cOpenQuote = 0;
			c = '"';
		}
		else if ( cOpenQuote == '\'' && c == '"' )
		{
			result.Append( "\\\"" );
			continue;
		}
		result.Append( &c, 1 );
	}
	return result;
}

void MergeCustomFgdMetadata( KeyValues3 *pTable, const char *pszText, bool bOverwrite )
{
	if ( !pszText || !*pszText )
		return;
	KeyValues3 parsed;
	CUtlString error;
	CUtlString text = DoubleQuoteMetadataStrings( pszText );
	if ( !LoadKV3FromText( &parsed, &error, text.Get(), text.Length(), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) || !parsed.IsTable() )
		return;
	for ( int i = 0; i < parsed.GetMemberCount(); ++i )
	{
		bool bCreated = false;
		KeyValues3 *pValue = pTable->FindOrCreateMember( parsed.GetMemberName( i ), &bCreated );
		if ( bCreated || bOverwrite )
			pValue->CopyFrom( *parsed.GetMember( i ) );
	}
}

// "first rest of the text": the first word and what follows the blanks after it.
void SplitFirstWord( const char *pszText, CUtlString *pFirst, CUtlString *pRest )
{
	const char *p = pszText;
	while ( *p == ' ' || *p == '\t' )
		++p;
	const char *pStart = p;
	while ( *p && *p != ' ' && *p != '\t' )
		++p;
	pFirst->Set( pStart, size_t( p - pStart ) );
	while ( *p == ' ' || *p == '\t' )
		++p;
	pRest->Set( p );
}

// A helper written "name", "name( a, b )" or "name { kv3 }".
bool SplitNameAndKV3Args( const char *pszText, GameDataHelper_t *pOut )
{
	const char *p = pszText;
	while ( *p == ' ' )
		++p;
	const char *pName = p;
	while ( *p && *p != '(' && *p != '{' && *p != ' ' )
		++p;
	pOut->m_Name.Set( pName, size_t( p - pName ) );
	if ( pOut->m_Name.IsEmpty() )
		return false;
	while ( *p == ' ' )
		++p;
	if ( *p == '{' )
	{
		CUtlString error;
		return LoadKV3FromText( &pOut->m_KV3, &error, p, strlen( p ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) && pOut->m_KV3.IsTable();
	}
	if ( *p == '(' )
	{
		const char *pClose = strchr( p, ')' );
		if ( !pClose )
			return false;
		std::string args( p + 1, pClose );
		size_t nStart = 0;
		while ( nStart <= args.size() )
		{
			size_t nComma = args.find( ',', nStart );
			std::string arg = args.substr( nStart, nComma == std::string::npos ? std::string::npos : nComma - nStart );
			size_t nFirst = arg.find_first_not_of( ' ' );
			size_t nLast = arg.find_last_not_of( ' ' );
			if ( nFirst != std::string::npos )
				pOut->m_Arguments.AddToTail( CUtlString( arg.substr( nFirst, nLast - nFirst + 1 ).c_str() ) );
			if ( nComma == std::string::npos )
				break;
			nStart = nComma + 1;
		}
	}
	return true;
}

const char *EnumeratorFriendlyName( const SchemaEnumeratorInfo_t &enumerator )
{
	const char *pszFriendly = MetadataText( enumerator.FindMetadata( "MPropertyFriendlyName" ) );
	return *pszFriendly ? pszFriendly : enumerator.m_pszName;
}

// Keys that travel as text: strings, and enumerations by name.
bool IsStringLikeKey( const CSchemaType *pKey )
{
	return pKey->IsAtomic( SCHEMA_ATOMIC_STRING ) || pKey->GetCategory() == SCHEMA_TYPE_DECLARED_ENUM;
}

using LeafChoiceProviderFn_t = void ( * )( HToolAttrTableInstance, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> * );

// A provider given by name, or as a function that gets a generated name.
void CopyProvider( CGameDataVariable *pVar, const CSchemaClassField &field, const char *pszNameKey, const char *pszFnKey, const char *pszFgdKey )
{
	const char *pszName = MetadataText( field.FindMetadata( pszNameKey ) );
	if ( *pszName )
	{
		pVar->m_KV3Metadata.SetMemberString( pszFgdKey, pszName );
		return;
	}
	const SchemaMetadataEntry_t *pFn = field.FindMetadata( pszFnKey );
	LeafChoiceProviderFn_t fn = pFn ? pFn->GetFunction<LeafChoiceProviderFn_t>() : nullptr;
	if ( fn )
	{
		CUtlString generated = ToolAttrHost()->RegisterAnonymousChoiceProvider( field.GetName(), fn );
		pVar->m_KV3Metadata.SetMemberString( pszFgdKey, generated.Get() );
	}
}

CUtlString EmbeddedSubClassName( const char *pszElementType, int nScope )
{
	CUtlString name;
	if ( pszElementType && *pszElementType )
		name.Format( "EmbeddedSubClass_%s", pszElementType );
	else
		name.Format( "EmbeddedSubClass_Scope_%d", nScope );
	return name;
}
} // namespace

CZolFgdFromSchema::CZolFgdFromSchema( CGameData *pGameData, const char *pszHelpContext )
	: m_pGameData( pGameData ), m_HelpContextName( pszHelpContext )
{
}

CGameDataClass *CZolFgdFromSchema::FindOrConvertClass( const CSchemaClassInfo *pSchemaClass )
{
	CGameDataClass *pClass = m_pGameData->FindClass( pSchemaClass->GetName() );
	if ( !pClass )
	{
		pClass = m_pGameData->CreateClassRecord();
		pClass->m_nClassType = GDCLASS_STRUCT;
		pClass->m_Name.Set( pSchemaClass->GetName() );
		// Entered before its fields are converted, so a field that refers back to the class finds it.
		m_pGameData->AddClass( pClass );
	}
	ConvertClass( pClass, pSchemaClass );
	return pClass;
}

CGameDataClass *CZolFgdFromSchema::FindOrMakeEmbeddedSubClass( const char *pszElementType, int nScope, const CUtlVector<CUtlString> &subclassNames )
{
	CUtlString name = EmbeddedSubClassName( pszElementType, nScope );
	if ( CGameDataClass *pKnown = m_pGameData->FindClass( name ) )
		return pKnown;

	CGameDataClass *pClass = m_pGameData->CreateClassRecord();
	pClass->m_nClassType = GDCLASS_STRUCT;
	pClass->m_Name = name;
	pClass->m_HelpContextName = m_HelpContextName;
	pClass->m_MetaData.SetToEmptyTable();
	pClass->m_MetaData.SetMemberBool( "IsEmbeddedSubClass", true );
	m_pGameData->AddClass( pClass );

	CUtlString error;
	CGameDataVariable *pName = m_pGameData->CreateVariable();
	pName->m_Name.Set( "_my_subclass_name" );
	pName->m_LongName.Set( "My Subclass Name" );
	pName->m_Description.Set(
		"A name that will be concatenated onto the end of the containing subclass name to generate the subclass name of this embedded subclass." );
	pName->m_FullType.m_eBaseType = GDTYPE_STRING;
	pName->m_DefaultKV3.SetString( "" );
	pName->m_KV3Metadata.SetMemberBool( "ShouldPunchThroughPolymorphism", true );
	pName->m_KV3Metadata.SetMemberInt( "sort_priority", -1 );
	pClass->AddVariable( pName, &error );

	CGameDataVariable *pSelector = m_pGameData->CreateVariable();
	pSelector->m_Name.Set( "_class" );
	pSelector->m_LongName.Set( "Class Name" );
	pSelector->m_Description.Set( "The name of the underlying class to allocate when using this subclass." );
	pSelector->m_FullType.m_eBaseType = GDTYPE_POLYMORPHIC_CLASS;
	pSelector->m_DefaultKV3.SetString( "" );
	// The stored name is an entity subclass; the host maps it to a class when resolving.
	pSelector->m_KV3Metadata.SetMemberBool( "LinkedEntityClass", true );
	CGameDataItemSet *pItems = m_pGameData->CreateItemSet();
	pItems->m_eType = GDTYPE_CHOICES;
	GameDataItem_t none;
	none.m_FriendlyName.Set( "(No class selected)" );
	pItems->m_Items.AddToTail( none );
	for ( const CUtlString &subclass : subclassNames )
	{
		GameDataItem_t item;
		item.m_Value = subclass;
		item.m_FriendlyName = subclass;
		pItems->m_Items.AddToTail( item );
	}
	pSelector->m_pItemSet = pItems;
	pClass->AddVariable( pSelector, &error );
	return pClass;
}

void CZolFgdFromSchema::SetTypeAtDepth( GameDataFullType_t *pOutType, int nDepth, GameDataType_t eType )
{
	if ( nDepth == 0 )
		pOutType->m_eBaseType = eType;
	else
		pOutType->m_NestedTypes.AddToTail( eType );
}

bool CZolFgdFromSchema::ConvertFieldType( CGameDataVariable *pVar, const CSchemaClassField &field, const CSchemaType *pType, GameDataFullType_t *pOutType )
{
	*pOutType = GameDataFullType_t();
	if ( const char *pszCustom = MetadataText( field.FindMetadata( "MPropertyCustomFGDType" ) ); *pszCustom )
	{
		CUtlString error;
		return pOutType->Parse( pszCustom, &error );
	}
	return ConvertTypeAtDepth( pVar, field, pType, pOutType, 0 );
}

bool CZolFgdFromSchema::ConvertTypeAtDepth( CGameDataVariable *pVar, const CSchemaClassField &field, const CSchemaType *pType, GameDataFullType_t *pOutType, int nDepth )
{
	if ( !pType )
		return false;
	KeyValues3 &meta = pVar->m_KV3Metadata;
	switch ( pType->GetCategory() )
	{
	case SCHEMA_TYPE_BUILTIN:
		if ( pType->IsBuiltin( SCHEMA_BUILTIN_BOOL ) )
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_BOOLEAN );
		else if ( pType->IsFloat() )
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_FLOAT );
		else if ( pType->IsInteger() )
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_INTEGER );
		else
			return false; // a lone char has no editor
		return true;

	case SCHEMA_TYPE_DECLARED_ENUM:
	{
		const CSchemaEnumInfo *pEnum = pType->GetEnum();
		bool bFlags = pEnum->IsFlagSet();
		CGameDataItemSet *pItems = m_pGameData->CreateItemSet();
		pItems->m_eType = bFlags ? GDTYPE_FLAGCHOICES : GDTYPE_CHOICES;
		pItems->m_bOverlappingBits = pEnum->HasMetadata( "MEnumFlagsWithOverlappingBits" );
		for ( int i = 0; i < pEnum->GetEnumeratorCount(); ++i )
		{
			const SchemaEnumeratorInfo_t &enumerator = pEnum->GetEnumerator( i );
			if ( enumerator.HasMetadata( "MPropertySuppressEnumerator" ) )
				continue;
			// A flag set offers bits only: "none" and combined values aren't choices of their own.
			if ( bFlags && ( enumerator.m_nValue == 0 || enumerator.HasMetadata( "MEnumeratorIsNotAFlag" ) ) )
				continue;
			GameDataItem_t item;
			item.m_Value.Set( enumerator.m_pszName );
			item.m_FriendlyName.Set( EnumeratorFriendlyName( enumerator ) );
			item.m_Description.Set( MetadataText( enumerator.FindMetadata( "MPropertyDescription" ) ) );
			item.m_iValue = int( enumerator.m_nValue );
			pItems->m_Items.AddToTail( item );
		}
		pVar->m_pItemSet = pItems;
		SetTypeAtDepth( pOutType, nDepth, pItems->m_eType );
		return true;
	}

	case SCHEMA_TYPE_DECLARED_CLASS:
	{
		const CSchemaClassInfo *pClass = pType->GetClass();
		if ( pClass->HasMetadata( "MIsBoxedIntegerType" ) )
		{
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_INTEGER );
			return true;
		}
		if ( pClass->HasMetadata( "MIsBoxedFloatType" ) )
		{
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_FLOAT );
			return true;
		}
		if ( const char *pszCustom = MetadataText( pClass->FindMetadata( "MPropertyCustomFGDType" ) ); *pszCustom )
		{
			GameDataFullType_t custom;
			CUtlString error;
			if ( !custom.Parse( pszCustom, &error ) )
				return false;
			SetTypeAtDepth( pOutType, nDepth, custom.m_eBaseType );
			for ( GameDataType_t eNested : custom.m_NestedTypes )
				pOutType->m_NestedTypes.AddToTail( eNested );
			pOutType->m_Param = custom.m_Param;
			return true;
		}
		FindOrConvertClass( pClass );
		if ( const char *pszEditor = MetadataText( pClass->FindMetadata( "MPropertyCustomEditor" ) ); *pszEditor )
		{
			// The editor sees plain KV3; the struct behind it still decides what is at default.
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_KV3 );
			pOutType->m_Param.Set( pszEditor );
			meta.SetMemberString( "ParticleCompileBinaryIdenticalHack_underlying_struct", pClass->GetName() );
			return true;
		}
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_STRUCT );
		pOutType->m_Param.Set( pClass->GetName() );
		return true;
	}

	case SCHEMA_TYPE_POLYMORPHIC_PTR:
	{
		const CSchemaClassInfo *pClass = pType->GetClass();
		FindOrConvertClass( pClass );
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_STRUCT );
		pOutType->m_Param.Set( pClass->GetName() );
		if ( pClass->HasMetadata( "MPropertyPolymorphicClass" ) )
			meta.SetMemberBool( "owns_polymorphic_data", true );
		return true;
	}

	case SCHEMA_TYPE_FIXED_ARRAY:
	{
		const CSchemaType *pElement = pType->GetElementType();
		if ( pElement && pElement->IsBuiltin( SCHEMA_BUILTIN_FLOAT32 ) && pType->GetCount() >= 2 && pType->GetCount() <= 4 )
		{
			static constexpr GameDataType_t s_FloatVectors[] = { GDTYPE_VECTOR2D, GDTYPE_VECTOR, GDTYPE_VECTOR4D };
			SetTypeAtDepth( pOutType, nDepth, s_FloatVectors[ pType->GetCount() - 2 ] );
			return true;
		}
		if ( pElement && pElement->IsBuiltin( SCHEMA_BUILTIN_CHAR ) )
		{
			SetTypeAtDepth( pOutType, nDepth, GDTYPE_STRING );
			return true;
		}
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_ARRAY );
		return ConvertTypeAtDepth( pVar, field, pElement, pOutType, nDepth + 1 );
	}

	case SCHEMA_TYPE_ATOMIC:
		break;
	}

	switch ( pType->GetAtomic() )
	{
	case SCHEMA_ATOMIC_VECTOR:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_VECTOR );
		return true;
	case SCHEMA_ATOMIC_VECTOR2D:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_VECTOR2D );
		return true;
	case SCHEMA_ATOMIC_VECTOR4D:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_VECTOR4D );
		return true;
	case SCHEMA_ATOMIC_QANGLE:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_ANGLE );
		return true;
	case SCHEMA_ATOMIC_COLOR:
		SetTypeAtDepth( pOutType, nDepth, field.HasMetadata( "MPropertyColorPlusAlpha" ) ? GDTYPE_COLOR255ALPHA : GDTYPE_COLOR255 );
		return true;
	case SCHEMA_ATOMIC_STRING:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_STRING );
		return true;
	case SCHEMA_ATOMIC_RESOURCE_HANDLE:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_RESOURCE );
		pOutType->m_Param.Set( pType->GetResourceType() );
		return true;
	case SCHEMA_ATOMIC_RESOURCE_NAME:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_RESOURCE_NAME );
		return true;
	case SCHEMA_ATOMIC_KV3:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_KV3 );
		return true;
	case SCHEMA_ATOMIC_COLLECTION:
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_ARRAY );
		return ConvertTypeAtDepth( pVar, field, pType->GetElementType(), pOutType, nDepth + 1 );
	case SCHEMA_ATOMIC_OPTIONAL:
		meta.SetMemberBool( "is_optional", true );
		return ConvertTypeAtDepth( pVar, field, pType->GetElementType(), pOutType, nDepth );
	case SCHEMA_ATOMIC_MAP:
	{
		const CSchemaType *pKey = pType->GetKeyType();
		if ( !pKey || ( !IsStringLikeKey( pKey ) && !pKey->IsInteger() ) )
			return false;
		SetTypeAtDepth( pOutType, nDepth, IsStringLikeKey( pKey ) ? GDTYPE_STRINGMAP : GDTYPE_INTMAP );
		bool bHasKeyList = false;
		if ( pKey->GetCategory() == SCHEMA_TYPE_DECLARED_ENUM )
		{
			KeyValues3 *pKeys = meta.SetMemberEmptyTable( "mapkeys" );
			const CSchemaEnumInfo *pEnum = pKey->GetEnum();
			for ( int i = 0; i < pEnum->GetEnumeratorCount(); ++i )
			{
				const SchemaEnumeratorInfo_t &enumerator = pEnum->GetEnumerator( i );
				KeyValues3 *pEntry = pKeys->SetMemberEmptyTable( enumerator.m_pszName );
				pEntry->SetMemberString( "friendly_name", EnumeratorFriendlyName( enumerator ) );
				pEntry->SetMemberString( "description", MetadataText( enumerator.FindMetadata( "MPropertyDescription" ) ) );
			}
			bHasKeyList = true;
		}
		CopyProvider( pVar, field, "MPropertyMapKeyChoiceName", "MPropertyMapKeyLeafChoiceProviderFn", "mapkeys_choice_name" );
		CopyProvider( pVar, field, "MPropertyMapKeySuggestionName", "MPropertyMapKeyLeafSuggestionProviderFn", "mapkeys_suggestion_name" );
		bHasKeyList = bHasKeyList || meta.HasMember( "mapkeys_choice_name" ) || meta.HasMember( "mapkeys_suggestion_name" );
		if ( pKey->IsAtomic( SCHEMA_ATOMIC_STRING ) && !bHasKeyList )
			meta.SetMemberBool( "mapkeys_is_suggestion", true );
		return ConvertTypeAtDepth( pVar, field, pType->GetElementType(), pOutType, nDepth + 1 );
	}
	case SCHEMA_ATOMIC_TYPED_DATA_REF:
	{
		// Edited as a table of the generated class whose selector offers the host's subclasses;
		// the host is asked once per family.
		const char *pszElementType = pType->GetTypedDataElementType();
		CGameDataClass *pEmbedded = m_pGameData->FindClass( EmbeddedSubClassName( pszElementType, pType->GetTypedDataScope() ) );
		if ( !pEmbedded )
		{
			CUtlVector<CUtlString> subclassNames;
			ListEntitySubclasses( pszElementType, pType->GetTypedDataScope(), &subclassNames );
			pEmbedded = FindOrMakeEmbeddedSubClass( pszElementType, pType->GetTypedDataScope(), subclassNames );
		}
		SetTypeAtDepth( pOutType, nDepth, GDTYPE_STRUCT );
		pOutType->m_Param = pEmbedded->m_Name;
		return true;
	}
	case SCHEMA_ATOMIC_NONE:
		break;
	}
	return false;
}

CGameDataVariable *CZolFgdFromSchema::ConvertField( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass, const CSchemaClassField &field, CUtlString *pCurrentGroup )
{
	const char *pszTransferName = MetadataText( field.FindMetadata( "MKV3TransferName" ) );
	const char *pszName = *pszTransferName ? pszTransferName : field.GetName();
	if ( pClass->FindVariable( pszName ) || field.HasMetadata( "MFgdFromSchemaCompletelySkipField" ) )
		return nullptr;

	CGameDataVariable *pVar = m_pGameData->CreateVariable();
	pVar->m_Name.Set( pszName );
	if ( !ConvertFieldType( pVar, field, field.GetType(), &pVar->m_FullType ) )
		return nullptr; // the record stays unused in the set

	const char *pszFriendly = MetadataText( field.FindMetadata( "MPropertyFriendlyName" ) );
	if ( *pszFriendly )
		pVar->m_LongName.Set( pszFriendly );
	else
		V_TryAndMakeFriendlyNameFromCppName( field.GetName(), &pVar->m_LongName );
	pVar->m_Description.Set( MetadataText( field.FindMetadata( "MPropertyDescription" ) ) );

	KeyValues3 &meta = pVar->m_KV3Metadata;
	for ( const RenamedKey_t &key : s_FieldFlagKeys )
	{
		if ( const SchemaMetadataEntry_t *pEntry = field.FindMetadata( key.m_pszSchemaKey ) )
			SetFromMetadata( &meta, key.m_pszFgdKey, *pEntry );
	}
	if ( const SchemaMetadataEntry_t *pEntry = field.FindMetadata( "MPropertySortPriority" ) )
		meta.SetMemberInt( "sort_priority", int32_t( pEntry->m_nValue ) );
	if ( const SchemaMetadataEntry_t *pEntry = field.FindMetadata( "MPropertyFlattenStretchFactor" ); pEntry && pEntry->m_nValue < 0xffffffffll )
		meta.SetMemberInt( "propattr_flatten_stretch_factor", int32_t( pEntry->m_nValue ) );

	if ( const char *pszStart = MetadataText( field.FindMetadata( "MPropertyStartGroup" ) ); *pszStart )
		pCurrentGroup->Set( pszStart );
	if ( const SchemaMetadataEntry_t *pGroupName = field.FindMetadata( "MPropertyGroupName" ) )
	{
		meta.SetMemberString( "group", MetadataText( pGroupName ) );
		pCurrentGroup->Set( "" );
	}
	else if ( !pCurrentGroup->IsEmpty() )
	{
		meta.SetMemberString( "group", pCurrentGroup->Get() );
	}

	// Defaults are stored as their KV3 value, exactly as a default instance saves them.
	const KeyValues3 *pDefaults = pSchemaClass->GetDefaults();
	if ( const KeyValues3 *pDefault = pDefaults->FindMember( field.GetName() ) )
		pVar->m_DefaultKV3.CopyFrom( *pDefault );
	else if ( const KeyValues3 *pByTransferName = pDefaults->FindMember( pszName ) )
		pVar->m_DefaultKV3.CopyFrom( *pByTransferName );
	// An embedded subclass has no default of its own but must stay a tagged table.
	if ( const CGameDataClass *pStruct = pVar->GetStructClass();
		 pVar->GetType() == GDTYPE_STRUCT && pStruct && pStruct->GetMetaBool( "IsEmbeddedSubClass" ) )
	{
		if ( !pVar->m_DefaultKV3.IsTable() )
			WriteFGDValue( &pVar->m_DefaultKV3, *pVar, 0, "" );
		pVar->m_DefaultKV3.SetSubType( KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
	}

	CopyProvider( pVar, field, "MPropertyAttributeChoiceName", "MPropertyLeafChoiceProviderFn", "choice_name" );
	if ( !meta.HasMember( "choice_name" ) )
		CopyProvider( pVar, field, "MPropertyAttributeSuggestionName", "MPropertyLeafSuggestionProviderFn", "suggestion_name" );

	if ( const char *pszEditor = MetadataText( field.FindMetadata( "MPropertyAttributeEditor" ) ); *pszEditor )
		meta.SetMemberString( "editor", pszEditor );
	if ( const SchemaMetadataEntry_t *pEntry = field.FindMetadata( "MLedgeUniqueMonotonicInt" ) )
		SetFromMetadata( &meta, "MLedgeUniqueMonotonicInt", *pEntry );
	if ( field.HasMetadata( "MLedgeEnableKey" ) )
		pClass->m_MetaData.SetMemberString( "MLedgeEnableKey", pszName );
	if ( const char *pszExpr = MetadataText( field.FindMetadata( "MPropertySuppressExpr" ) ); *pszExpr )
		meta.SetMemberString( "suppress_expr", pszExpr );
	if ( const char *pszExpr = MetadataText( field.FindMetadata( "MPropertyReadonlyExpr" ) ); *pszExpr )
		meta.SetMemberString( "readonly_expr", pszExpr );
	if ( const char *pszProvides = MetadataText( field.FindMetadata( "MPropertyProvidesEditContextString" ) ); *pszProvides )
	{
		meta.SetMemberString( "MPropertyProvidesEditContextString", pszProvides );
		meta.SetMemberBool( "rebuild_propertyeditor_on_change", true );
	}
	for ( const char *pszOverrideKey : { "MPropertyEditContextOverrideValue", "MPropertyEditContextOverrideKey" } )
	{
		const char *pszOverride = MetadataText( field.FindMetadata( pszOverrideKey ) );
		if ( !*pszOverride )
			continue;
		CUtlString queryKey, value;
		SplitFirstWord( pszOverride, &queryKey, &value );
		KeyValues3 *pOverrides = meta.FindOrCreateMember( "edit_context_override" );
		if ( !pOverrides->IsTable() )
			pOverrides->SetToEmptyTable();
		KeyValues3 *pEntry = pOverrides->SetMemberEmptyTable( queryKey.Get() );
		pEntry->SetMemberString( "value", value.Get() );
		if ( !strcmp( pszOverrideKey, "MPropertyEditContextOverrideKey" ) )
			pEntry->SetMemberBool( "value_is_key_name", true );
	}

	if ( const char *pszRange = MetadataText( field.FindMetadata( "MPropertyAttributeRange" ) ); *pszRange )
	{
		CUtlString first, rest, second, third;
		SplitFirstWord( pszRange, &first, &rest );
		bool bBiased = first.IsEqual_CaseInsensitive( "biased" );
		if ( bBiased )
			SplitFirstWord( rest.Get(), &first, &rest );
		SplitFirstWord( rest.Get(), &second, &third );
		if ( !first.IsEmpty() && !second.IsEmpty() )
		{
			meta.SetMemberString( "min", first.Get() );
			meta.SetMemberString( "max", second.Get() );
			if ( bBiased )
				meta.SetMemberBool( "biased", true );
		}
	}

	if ( ConvertsParticleFunctionKeys() )
	{
		if ( field.HasMetadata( "MParticleAdvancedField" ) )
			meta.SetMemberBool( "hidden", true );
		if ( const SchemaMetadataEntry_t *pEntry = field.FindMetadata( "MParticleMinVersion" ); pEntry && pEntry->m_nValue < 0xffffffffll )
			meta.SetMemberInt64( "particle_min_version", pEntry->m_nValue );
		if ( const SchemaMetadataEntry_t *pEntry = field.FindMetadata( "MParticleMaxVersion" ); pEntry && pEntry->m_nValue < 0xffffffffll )
			meta.SetMemberInt64( "particle_max_version", pEntry->m_nValue );
		if ( field.HasMetadata( "MParticleInputOptional" ) )
			meta.SetMemberBool( "MParticleInputOptional", true );
	}

	MergeCustomFgdMetadata( &meta, MetadataText( field.FindMetadata( "MCustomFGDMetadata" ) ), true );

	CUtlString error;
	if ( !pClass->AddVariable( pVar, &error ) )
		return nullptr;
	return pVar;
}

void CZolFgdFromSchema::AddPolymorphicSelector( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass )
{
	if ( pClass->GetSelectorVariable() )
		return;
	CGameDataVariable *pVar = m_pGameData->CreateVariable();
	pVar->m_Name.Set( "_class" );
	pVar->m_LongName.Set( "Class Name" );
	pVar->m_Description.Set( "What type of object this is." );
	pVar->m_FullType.m_eBaseType = GDTYPE_POLYMORPHIC_CLASS;
	pVar->m_FullType.m_Param.Set( pSchemaClass->GetName() );
	pVar->m_DefaultKV3.SetString( pSchemaClass->GetName() );
	pVar->m_KV3Metadata.SetMemberString( "auto_populate_derived_classes", pSchemaClass->GetName() );

	// The class and everything below it that can be made, nearest first.
	CGameDataItemSet *pItems = m_pGameData->CreateItemSet();
	pItems->m_eType = GDTYPE_CHOICES;
	CUtlVector<const CSchemaClassInfo *> pending;
	pending.AddToTail( pSchemaClass );
	for ( int i = 0; i < pending.Count(); ++i )
	{
		const CSchemaClassInfo *pCandidate = pending[ i ];
		for ( int d = 0; d < pCandidate->GetDerivedClassCount(); ++d )
			pending.AddToTail( pCandidate->GetDerivedClass( d ) );
		if ( !pCandidate->CanCreate() )
			continue;
		GameDataItem_t item;
		item.m_Value.Set( pCandidate->GetName() );
		const char *pszFriendly = MetadataText( pCandidate->FindMetadata( "MPropertyFriendlyName" ) );
		if ( *pszFriendly )
			item.m_FriendlyName.Set( pszFriendly );
		else
			V_TryAndMakeFriendlyNameFromCppName( pCandidate->GetName(), &item.m_FriendlyName );
		item.m_Description.Set( MetadataText( pCandidate->FindMetadata( "MPropertyDescription" ) ) );
		pItems->m_Items.AddToTail( item );
	}
	pVar->m_pItemSet = pItems;
	CUtlString error;
	pClass->AddVariable( pVar, &error );
}

void CZolFgdFromSchema::CopyClassMetadata( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass )
{
	KeyValues3 &meta = pClass->m_MetaData;
	// Entries that may stand several times are read from the class's own list.
	for ( int i = 0; i < pSchemaClass->GetMetadataCount(); ++i )
	{
		const SchemaMetadataEntry_t &entry = pSchemaClass->GetMetadata( i );
		if ( !strcmp( entry.m_pszName, "MPropertyAttributeEditorOverride" ) )
		{
			CUtlString varName, editor;
			SplitFirstWord( MetadataText( &entry ), &varName, &editor );
			if ( CGameDataVariable *pVar = pClass->FindVariable( varName.Get() ) )
				pVar->m_KV3Metadata.SetMemberString( "editor", editor.Get() );
		}
		else if ( !strcmp( entry.m_pszName, "MPropertySuppressBaseClassField" ) )
		{
			if ( CGameDataVariable *pVar = pClass->FindVariable( MetadataText( &entry ) ) )
				pVar->m_KV3Metadata.SetMemberBool( "suppressed_field", true );
		}
		else if ( !strcmp( entry.m_pszName, "MFgdHelper" ) )
		{
			GameDataHelper_t helper;
			if ( SplitNameAndKV3Args( MetadataText( &entry ), &helper ) )
				pClass->m_Helpers.AddToTail( helper );
		}
	}

	if ( const char *pszFriendly = MetadataText( pSchemaClass->FindMetadata( "MPropertyFriendlyName" ) ); *pszFriendly )
		pClass->m_FriendlyName.Set( pszFriendly );
	pClass->m_Description.Set( MetadataText( pSchemaClass->FindMetadata( "MPropertyDescription" ) ) );
	pClass->m_HelpContextName = m_HelpContextName;

	if ( pSchemaClass->HasMetadata( "MPropertyAutoExpandSelf" ) )
		meta.SetMemberBool( "autoexpand_self_class", true );
	if ( pSchemaClass->HasMetadata( "MHideInPolymorphicClassList" ) )
		meta.SetMemberBool( "MHideInPolymorphicClassList", true );
	if ( const char *pszKey = MetadataText( pSchemaClass->FindMetadata( "MPropertyArrayElementNameKey" ) ); *pszKey )
	{
		meta.SetMemberString( "element_name_key", pszKey );
		const CSchemaClassField *pKeyField = pSchemaClass->FindField( pszKey );
		const CSchemaType *pKeyType = pKeyField ? pKeyField->GetType() : nullptr;
		if ( pKeyType && pKeyType->GetCategory() == SCHEMA_TYPE_DECLARED_ENUM )
		{
			KeyValues3 *pMap = meta.SetMemberEmptyTable( "element_name_key_friendly_name_map" );
			const CSchemaEnumInfo *pEnum = pKeyType->GetEnum();
			for ( int i = 0; i < pEnum->GetEnumeratorCount(); ++i )
				pMap->SetMemberString( pEnum->GetEnumerator( i ).m_pszName, EnumeratorFriendlyName( pEnum->GetEnumerator( i ) ) );
		}
	}

	for ( const char *pszKey : s_LedgeClassKeys )
	{
		if ( const SchemaMetadataEntry_t *pEntry = pSchemaClass->FindMetadata( pszKey ) )
			SetFromMetadata( &meta, pszKey, *pEntry );
	}
	for ( const RenamedKey_t &key : s_LedgeRenamedClassKeys )
	{
		if ( const SchemaMetadataEntry_t *pEntry = pSchemaClass->FindMetadata( key.m_pszSchemaKey ) )
			SetFromMetadata( &meta, key.m_pszFgdKey, *pEntry );
	}

	MergeCustomFgdMetadata( &meta, MetadataText( pSchemaClass->FindMetadata( "MCustomFGDMetadata" ) ), false );
}

void CZolFgdFromSchema::ConvertClass( CGameDataClass *pClass, const CSchemaClassInfo *pSchemaClass )
{
	KeyValues3 *pModules = pClass->m_MetaData.FindOrCreateMember( "__populated_from_schema_modules" );
	if ( !pModules->IsArray() )
		pModules->SetToEmptyArray();
	for ( int i = 0; i < pModules->GetArrayElementCount(); ++i )
	{
		if ( !strcmp( pModules->GetArrayElement( i )->GetString(), pSchemaClass->GetModule() ) )
			return;
	}
	pModules->ArrayAddToTail()->SetString( pSchemaClass->GetModule() );
	KeyValues3 *pBinaryNames = pClass->m_MetaData.FindOrCreateMember( "__populated_from_schema_binary_names" );
	if ( !pBinaryNames->IsArray() )
		pBinaryNames->SetToEmptyArray();
	pBinaryNames->ArrayAddToTail()->SetString( pSchemaClass->GetBinaryName() );

	for ( int i = 0; i < pSchemaClass->GetBaseClassCount(); ++i )
	{
		CGameDataClass *pBase = FindOrConvertClass( pSchemaClass->GetBaseClass( i ) );
		if ( pBase != pClass && !pClass->m_Bases.HasElement( pBase ) )
			pClass->AddBase( pBase );
	}

	if ( pSchemaClass->HasMetadata( "MPropertyPolymorphicClass" ) )
		AddPolymorphicSelector( pClass, pSchemaClass );
	if ( pSchemaClass->IsPolymorphic() )
		pClass->m_MetaData.SetMemberBool( "is_polymorphic", true );

	CUtlString currentGroup;
	for ( int i = 0; i < pSchemaClass->GetFieldCount(); ++i )
		ConvertField( pClass, pSchemaClass, pSchemaClass->GetField( i ), &currentGroup );

	CopyClassMetadata( pClass, pSchemaClass );

	// Derived classes become records too, so that a table naming one in "_class" finds it.
	if ( pSchemaClass->HasMetadata( "MPropertyPolymorphicClass" ) )
	{
		for ( int i = 0; i < pSchemaClass->GetDerivedClassCount(); ++i )
			FindOrConvertClass( pSchemaClass->GetDerivedClass( i ) );
	}
}
