#include "tools/toolutils2/fgd/kv3fgdtoolattr.h"

#include <cstdio>
#include <cstring>

#include "core/kv3/kv3membername.h"
#include "core/mathlib/color.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/fgdkv3defaults.h"
#include "tools/toolutils2/fgd/fgdvalue.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/toolattr/toolattredit.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"

namespace
{
const KeyValues3 &EmptyTable()
{
	static const KeyValues3 s_Empty = [] {
		KeyValues3 table;
		table.SetToEmptyTable();
		return table;
	}();
	return s_Empty;
}

std::string ShapeKey( const char *pszKey, const KeyValues3 *pValue )
{
	char szSuffix[ 32 ];
	snprintf( szSuffix, sizeof( szSuffix ), "|%d|%d", pValue ? int( pValue->GetType() ) : 0, pValue ? int( pValue->GetSubType() ) : 0 );
	return std::string( pszKey ) + szSuffix;
}

std::string VariableKey( const CGameDataClass *pClass, const CGameDataVariable *pVar )
{
	char szKey[ 64 ];
	snprintf( szKey, sizeof( szKey ), "%p|%p", static_cast<const void *>( pClass ), static_cast<const void *>( pVar ) );
	return szKey;
}

int ZoneFromName( const char *pszName )
{
	static const char *const s_Names[] = { "NONE", "LEFT", "INLINE", "RIGHT" };
	for ( int i = 0; i < 4; ++i )
		if ( !V_stricmp_fast( pszName, s_Names[ i ] ) )
			return i;
	return 3;
}

int ApplicableFromName( const char *pszName )
{
	static const char *const s_Names[] = { "ANY", "ARRAY_MEMBERS_VIA_PARENT", "ARRAY_PARENT_ONLY", "NOT_ARRAY_MEMBERS" };
	for ( int i = 0; i < 4; ++i )
		if ( !V_stricmp_fast( pszName, s_Names[ i ] ) )
			return i;
	return 0;
}

std::map<std::string, std::unique_ptr<CKV3FGDToolAttr>> &RootCache()
{
	static std::map<std::string, std::unique_ptr<CKV3FGDToolAttr>> s_Cache;
	return s_Cache;
}
} // namespace

CKV3FGDToolAttr::CKV3FGDToolAttr( IKV3FGDTargetResolver *pResolver, const char *pszKey, const CGameData *pGameData, const CGameDataClass *pClass,
	const CGameDataVariable *pVar, int nDepth, KV3BasicType_t eKV3Type, KV3SubType_t eKV3SubType )
	: m_pResolver( pResolver ), m_KeyText( pszKey ), m_pGameData( pGameData ), m_pClass( pClass ), m_pVar( pVar ), m_eKV3Type( eKV3Type ),
	  m_eKV3SubType( eKV3SubType ), m_nDepth( nDepth )
{
	if ( m_pVar )
	{
		if ( nDepth == 0 )
			m_Default.CopyFrom( m_pVar->m_DefaultKV3 );
		else
			WriteFGDValue( &m_Default, *m_pVar, nDepth, "" );
		if ( m_pVar->HasMetadata( "min" ) && m_pVar->HasMetadata( "max" ) )
		{
			m_bHasRange = true;
			CUtlString minText, maxText;
			FormatFGDValue( *m_pVar->m_KV3Metadata.FindMember( "min" ), GDTYPE_FLOAT, &minText );
			FormatFGDValue( *m_pVar->m_KV3Metadata.FindMember( "max" ), GDTYPE_FLOAT, &maxText );
			bool bBiased = m_pVar->GetMetadataBool( "biased" );
			m_IntRange = { V_atoi64( minText ), V_atoi64( maxText ), bBiased, 0 };
			m_FloatRange = { V_atof( minText ), V_atof( maxText ), bBiased, 0 };
		}
	}
	else
	{
		WriteFGDValue( &m_Default, GetOwnType(), "" );
	}
}

CKV3FGDToolAttr::~CKV3FGDToolAttr() = default;

CKV3FGDToolAttr *CKV3FGDToolAttr::GetRootAttribute( IKV3FGDTargetResolver *pResolver, const CGameData *pGameData, const CGameDataClass *pClass, const CGameDataVariable *pVar )
{
	char szResolver[ 32 ];
	snprintf( szResolver, sizeof( szResolver ), "%p|", static_cast<void *>( pResolver ) );
	std::unique_ptr<CKV3FGDToolAttr> &pAttr = RootCache()[ szResolver + VariableKey( pClass, pVar ) ];
	if ( !pAttr )
		pAttr = std::make_unique<CKV3FGDToolAttr>( pResolver, pVar->m_Name.Get(), pGameData, pClass, pVar );
	return pAttr.get();
}

CKV3FGDToolAttr *CKV3FGDToolAttr::GetUndescribedRootAttribute( IKV3FGDTargetResolver *pResolver, const char *pszKey, const KeyValues3 &value )
{
	char szResolver[ 32 ];
	snprintf( szResolver, sizeof( szResolver ), "%p|key|", static_cast<void *>( pResolver ) );
	std::unique_ptr<CKV3FGDToolAttr> &pAttr = RootCache()[ szResolver + ShapeKey( pszKey, &value ) ];
	if ( !pAttr )
		pAttr = std::make_unique<CKV3FGDToolAttr>( pResolver, pszKey, nullptr, nullptr, nullptr, 0, value.GetType(), value.GetSubType() );
	return pAttr.get();
}

void CKV3FGDToolAttr::GetRootAttributes( IKV3FGDTargetResolver *pResolver, HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	const CGameData *pGameData = pResolver->GetGameData( handle );
	const CGameDataClass *pDeclared = pResolver->GetFGDClass( handle );
	const KeyValues3 *pTree = pResolver->GetKV3( handle, nullptr );
	const CGameDataClass *pClass = ResolveFGDClass( pDeclared, pTree );
	if ( pClass )
	{
		for ( const CGameDataVariable *pVar : pClass->m_Variables )
			pAttributes->AddToTail( GetRootAttribute( pResolver, pGameData, pClass, pVar ) );
	}
	if ( !pTree )
		return;
	for ( int i = 0; i < pTree->GetMemberCount(); ++i )
	{
		const char *pszKey = pTree->GetMemberName( i );
		if ( pClass && pClass->FindVariable( pszKey ) )
			continue;
		pAttributes->AddToTail( GetUndescribedRootAttribute( pResolver, pszKey, *pTree->GetMember( i ) ) );
	}
}

bool CKV3FGDToolAttr::MetaBool( const char *pszKey ) const
{
	return m_pVar && m_pVar->GetMetadataBool( pszKey );
}

const char *CKV3FGDToolAttr::MetaString( const char *pszKey ) const
{
	return m_pVar ? m_pVar->GetMetadataString( pszKey ) : "";
}

GameDataType_t CKV3FGDToolAttr::GetOwnType() const
{
	switch ( m_eKV3Type )
	{
	case KV3_TYPE_BOOL: return GDTYPE_BOOLEAN;
	case KV3_TYPE_INT:
	case KV3_TYPE_UINT: return GDTYPE_INTEGER;
	case KV3_TYPE_DOUBLE: return GDTYPE_FLOAT;
	case KV3_TYPE_ARRAY: return GDTYPE_ARRAY;
	case KV3_TYPE_TABLE: return GDTYPE_STRUCT;
	case KV3_TYPE_STRING: return m_eKV3SubType == KV3_SUBTYPE_STRING_RESOURCE_NAME ? GDTYPE_RESOURCE_NAME : GDTYPE_STRING;
	default: return GDTYPE_STRING;
	}
}

GameDataType_t CKV3FGDToolAttr::GetEffectiveType() const
{
	return m_pVar ? m_pVar->GetTypeAtDepth( m_nDepth ) : GetOwnType();
}

IKV3FGDAdvancedAPI *CKV3FGDToolAttr::AdvancedAPI( HToolAttrTableInstance handle ) const
{
	return m_pResolver->GetAdvancedAPI( handle, this );
}

const KeyValues3 *CKV3FGDToolAttr::ResolveForRead( HToolAttrTableInstance handle, KV3FGDResolveStatus_t *pStatus ) const
{
	if ( m_nElementIndex >= 0 )
	{
		const KeyValues3 *pArray = m_pParentArray->ResolveForRead( handle, pStatus );
		return pArray && pArray->IsArray() ? pArray->GetArrayElement( m_nElementIndex ) : nullptr;
	}
	const KeyValues3 *pTable = m_pParentTable ? m_pParentTable->ResolveForRead( handle, pStatus )
		: m_pParentMap                         ? m_pParentMap->ResolveForRead( handle, pStatus )
		                                       : m_pResolver->GetKV3( handle, pStatus );
	if ( !pTable || m_bValueIsParent )
		return pTable;
	return pTable->IsTable() ? pTable->FindMember( m_KeyText.c_str() ) : nullptr;
}

KeyValues3 *CKV3FGDToolAttr::ResolveForWrite( HToolAttrTableInstance handle, int nFlags )
{
	m_bWritePending = true;
	KeyValues3 *pValue = nullptr;
	if ( m_nElementIndex >= 0 )
	{
		KeyValues3 *pArray = m_pParentArray->ResolveForWrite( handle, nFlags );
		pValue = pArray && pArray->IsArray() ? pArray->GetArrayElement( m_nElementIndex ) : nullptr;
	}
	else
	{
		KeyValues3 *pTable = nullptr;
		if ( CKV3FGDToolAttr *pParent = m_pParentTable ? m_pParentTable : m_pParentMap )
		{
			pTable = pParent->ResolveForWrite( handle, nFlags );
		}
		else
		{
			// Only the root opens the bracket, so a change deep in a tree notifies once.
			BeginAttrEdit( handle, this, nFlags );
			pTable = m_pResolver->GetKV3ForModify( handle, this );
		}
		if ( pTable && !m_bValueIsParent )
		{
			if ( !pTable->IsTable() )
				pTable->SetToEmptyTable();
			pValue = pTable->FindOrCreateMember( m_KeyText.c_str() );
		}
		else
		{
			pValue = pTable;
		}
	}
	if ( pValue && pValue->IsString() && m_Default.IsString() && m_Default.GetSubType() != KV3_SUBTYPE_UNSPECIFIED )
		pValue->SetSubType( m_Default.GetSubType() );
	// The table of an embedded subclass keeps its tag whatever was stored before.
	if ( pValue && m_Default.IsTable() && m_Default.GetSubType() == KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS )
	{
		if ( !pValue->IsTable() )
			pValue->SetToEmptyTable();
		pValue->SetSubType( KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
	}
	return pValue;
}

void CKV3FGDToolAttr::EndWrite( HToolAttrTableInstance handle, int nFlags )
{
	m_bWritePending = false;
	if ( m_nElementIndex >= 0 )
		return m_pParentArray->EndWrite( handle, nFlags );
	if ( CKV3FGDToolAttr *pParent = m_pParentTable ? m_pParentTable : m_pParentMap )
		return pParent->EndWrite( handle, nFlags );
	if ( IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle ) )
		pAdvanced->OnValueChanged( handle, this );
	EndAttrEdit( handle, this, nFlags );
}

void CKV3FGDToolAttr::WriteText( KeyValues3 *pValue, const char *pszText, int nDepth ) const
{
	if ( m_pVar )
		WriteFGDValue( pValue, *m_pVar, nDepth, pszText );
	else
		WriteFGDValue( pValue, nDepth == m_nDepth ? GetOwnType() : GDTYPE_STRING, pszText );
}

const char *CKV3FGDToolAttr::GetHelpContext() const
{
	return m_pClass ? m_pClass->m_HelpContextName.Get() : "";
}

int CKV3FGDToolAttr::GetAttrType() const
{
	if ( !m_pVar )
	{
		switch ( m_eKV3Type )
		{
		case KV3_TYPE_BOOL: return TOOLATTR_TYPE_BOOL;
		case KV3_TYPE_INT: return TOOLATTR_TYPE_INT;
		case KV3_TYPE_UINT: return TOOLATTR_TYPE_UINT;
		case KV3_TYPE_DOUBLE: return TOOLATTR_TYPE_FLOAT;
		case KV3_TYPE_ARRAY: return TOOLATTR_TYPE_ARRAY;
		case KV3_TYPE_TABLE: return TOOLATTR_TYPE_TABLE;
		default: return TOOLATTR_TYPE_STRING;
		}
	}
	switch ( GetEffectiveType() )
	{
	case GDTYPE_ANGLE: return TOOLATTR_TYPE_ANGLE;
	case GDTYPE_INTEGER:
	case GDTYPE_INTCHOICES: return TOOLATTR_TYPE_INT;
	case GDTYPE_COLOR255: return TOOLATTR_TYPE_COLOR;
	case GDTYPE_COLOR255ALPHA: return TOOLATTR_TYPE_COLOR_ALPHA;
	case GDTYPE_VECTOR:
	case GDTYPE_WORLD_POINT:
	case GDTYPE_LOCAL_POINT: return TOOLATTR_TYPE_VECTOR3;
	case GDTYPE_FLOAT: return TOOLATTR_TYPE_FLOAT;
	case GDTYPE_BOOLEAN: return TOOLATTR_TYPE_BOOL;
	case GDTYPE_CURVE:
	case GDTYPE_KV3: return TOOLATTR_TYPE_KV3;
	case GDTYPE_ARRAY: return TOOLATTR_TYPE_ARRAY;
	case GDTYPE_STRUCT: return TOOLATTR_TYPE_TABLE;
	case GDTYPE_FLAGCHOICES: return TOOLATTR_TYPE_FLAGS;
	case GDTYPE_STRINGMAP:
	case GDTYPE_INTMAP: return TOOLATTR_TYPE_MAP;
	case GDTYPE_VECTOR2D: return TOOLATTR_TYPE_VECTOR2;
	case GDTYPE_VECTOR4D: return TOOLATTR_TYPE_VECTOR4;
	default: return TOOLATTR_TYPE_STRING;
	}
}

int CKV3FGDToolAttr::GetEditHint() const
{
	if ( !m_pVar )
		return 0;
	if ( m_pVar->HasMetadata( "min" ) && m_pVar->HasMetadata( "max" ) )
		return TOOLATTR_EDIT_HINT_RANGE;
	if ( m_pVar->HasMetadata( "choice_name" ) )
		return TOOLATTR_EDIT_HINT_CHOICES;
	if ( m_pVar->HasMetadata( "suggestion_name" ) )
		return TOOLATTR_EDIT_HINT_SUGGESTIONS;
	static const int s_Hints[][ 2 ] = { { 7, 2 }, { 8, 2 }, { 72, 2 }, { 12, 6 }, { 30, 8 }, { 31, 8 }, { 46, 17 }, { 49, 7 }, { 51, 12 }, { 52, 14 },
		{ 53, 35 }, { 67, 41 }, { 82, 53 }, { 54, 15 }, { 55, 16 }, { 56, 18 }, { 57, 27 }, { 58, 28 }, { 59, 46 }, { 60, 48 }, { 61, 36 }, { 68, 3 },
		{ 84, 55 } };
	int nLast = m_pVar->m_FullType.GetLastType();
	for ( const auto &hint : s_Hints )
		if ( hint[ 0 ] == nLast )
			return hint[ 1 ];
	return 0;
}

const char *CKV3FGDToolAttr::GetEditHintParam() const
{
	if ( !m_pVar )
		return nullptr;
	switch ( m_pVar->m_FullType.GetLastType() )
	{
	case GDTYPE_RESOURCE:
	case GDTYPE_RESOURCE_NAME:
	case GDTYPE_LEDGE_CHOICE:
	case GDTYPE_SUBCLASS_CHOICE:
	case GDTYPE_KV3: return m_pVar->m_FullType.m_Param.Get();
	case GDTYPE_CURVE: return "CurveEditor";
	default: return nullptr;
	}
}

const KeyValues3 *CKV3FGDToolAttr::GetMetadata() const
{
	return m_pVar ? &m_pVar->m_KV3Metadata : &EmptyTable();
}

HToolAttrTableInstance CKV3FGDToolAttr::GetTableInstance( HToolAttrTableInstance handle )
{
	if ( GetAttrType() != TOOLATTR_TYPE_TABLE )
		return {};
	HToolAttrTableInstance nested = handle;
	nested.m_pTable = this;
	return nested;
}

bool CKV3FGDToolAttr::IsWritable( HToolAttrTableInstance handle ) const
{
	if ( !m_pVar )
		return true;
	if ( MetaBool( "propattr_force_readonly" ) )
		return false;
	if ( m_pVar->HasMetadata( "writable_func" ) )
	{
		const ToolAttrVisibilityFn_t &fn = ToolAttrHost()->FindVisibilityTest( MetaString( "writable_func" ) );
		return fn ? fn( handle, this ) : false;
	}
	return !MetaBool( "readonly" );
}

bool CKV3FGDToolAttr::IsHidden( HToolAttrTableInstance ) const
{
	return MetaBool( "hidden" );
}

bool CKV3FGDToolAttr::IsSuppressed( HToolAttrTableInstance handle ) const
{
	if ( !m_pVar )
		return false;
	if ( m_pVar->HasMetadata( "invisible_func" ) )
	{
		const ToolAttrVisibilityFn_t &fn = ToolAttrHost()->FindVisibilityTest( MetaString( "invisible_func" ) );
		return fn ? fn( handle, this ) : false;
	}
	return MetaBool( "suppressed_field" );
}

void CKV3FGDToolAttr::GetFriendlyName( HToolAttrTableInstance, CUtlString *pOut ) const
{
	if ( m_pParentMap )
		pOut->Set( m_KeyText.c_str() );
	else if ( m_pVar )
		pOut->Set( m_pVar->m_LongName );
}

int CKV3FGDToolAttr::GetAutoExpand() const
{
	if ( MetaBool( "autoexpand_self" ) )
		return 1;
	if ( m_pVar && GetEffectiveType() == GDTYPE_STRUCT )
	{
		const CGameDataClass *pClass = m_pVar->GetStructClass();
		return pClass && pClass->GetMetaBool( "autoexpand_self_class" ) ? 1 : 0;
	}
	return 0;
}

const char *CKV3FGDToolAttr::GetGroupName() const
{
	return MetaString( "group" );
}

bool CKV3FGDToolAttr::GetHelpInfo( CUtlString *pContext, CUtlString *pId ) const
{
	if ( !m_pClass || !m_pVar || MetaBool( "no_help_info" ) || m_nElementIndex >= 0 )
		return false;
	pContext->Set( m_pVar->HasMetadata( "override_help_context_name" ) ? MetaString( "override_help_context_name" ) : m_pClass->m_HelpContextName.Get() );
	if ( m_pVar->HasMetadata( "override_help_id" ) )
	{
		pId->Set( MetaString( "override_help_id" ) );
	}
	else
	{
		const CGameDataClass *pDeclaring = m_pClass->FindDeclaringClass( m_pVar );
		pId->Format( "Attribute.%s.%s", ( pDeclaring ? pDeclaring : m_pClass )->GetName(), m_pVar->m_Name.Get() );
	}
	return true;
}

void CKV3FGDToolAttr::GetDescription( HToolAttrTableInstance, CUtlString *pOut ) const
{
	if ( !m_pVar )
		return;
	pOut->Set( m_pVar->HasMetadata( "override_description" ) ? MetaString( "override_description" ) : m_pVar->m_Description.Get() );
}

int CKV3FGDToolAttr::GetSortPriority() const
{
	return m_pVar ? m_pVar->GetMetadataInt( "sort_priority" ) : 0;
}

bool CKV3FGDToolAttr::IsRequired() const
{
	return !m_pVar || MetaBool( "required" );
}

bool CKV3FGDToolAttr::IsImportant() const
{
	return MetaBool( "important" );
}

bool CKV3FGDToolAttr::RemoveSpurious( HToolAttrTableInstance handle )
{
	bool bRemoved = false;
	if ( m_nElementIndex >= 0 )
		return false;
	CKV3FGDToolAttr *pParent = m_pParentTable ? m_pParentTable : m_pParentMap;
	KeyValues3 *pTable = nullptr;
	if ( pParent )
	{
		pTable = pParent->ResolveForWrite( handle, 0 );
	}
	else
	{
		BeginAttrEdit( handle, this, 0 );
		pTable = m_pResolver->GetKV3ForModify( handle, this );
	}
	if ( pTable && pTable->IsTable() )
		bRemoved = pTable->RemoveMember( m_KeyText.c_str() );
	if ( pParent )
		pParent->EndWrite( handle, 0 );
	else
		EndAttrEdit( handle, this, 0 );
	return bRemoved;
}

int CKV3FGDToolAttr::ArrayAncestorState( HToolAttrTableInstance handle ) const
{
	for ( const CKV3FGDToolAttr *pAttr = this; pAttr; )
	{
		if ( pAttr->m_pParentArray )
			return pAttr->m_pParentArray->GetOverrideState( handle );
		pAttr = pAttr->m_pParentTable ? pAttr->m_pParentTable : pAttr->m_pParentMap;
	}
	return -1;
}

int CKV3FGDToolAttr::GetOverrideState( HToolAttrTableInstance handle ) const
{
	if ( GetAttrType() == TOOLATTR_TYPE_TABLE )
		return TOOLATTR_OVERRIDE_NONE;
	if ( m_nElementIndex >= 0 )
		return m_pParentArray->GetOverrideState( handle );
	if ( m_pParentTable || m_pParentMap )
	{
		int nState = ArrayAncestorState( handle );
		return nState == TOOLATTR_OVERRIDE_INHERITING || nState == TOOLATTR_OVERRIDE_INHERITING_FIXED ? TOOLATTR_OVERRIDE_INHERITING_FIXED
			                                                                                             : TOOLATTR_OVERRIDE_NONE;
	}
	KV3FGDResolveStatus_t status;
	if ( ResolveForRead( handle, &status ) )
		return status.m_nResult == 1 ? TOOLATTR_OVERRIDE_OVERRIDING : TOOLATTR_OVERRIDE_NONE;
	KV3FGDResolveStatus_t inherited;
	inherited.m_bWantInherited = true;
	if ( ResolveForRead( handle, &inherited ) )
		return TOOLATTR_OVERRIDE_INHERITING;
	return inherited.m_nResult == 1 ? TOOLATTR_OVERRIDE_INHERITING : TOOLATTR_OVERRIDE_NONE;
}

void CKV3FGDToolAttr::SetOverride( HToolAttrTableInstance handle, bool bOverride )
{
	if ( !bOverride )
	{
		RemoveSpurious( handle );
		return;
	}
	KV3FGDResolveStatus_t inherited;
	inherited.m_bWantInherited = true;
	const KeyValues3 *pSeen = ResolveForRead( handle, &inherited );
	KeyValues3 copy;
	copy.CopyFrom( pSeen ? *pSeen : m_Default );
	if ( KeyValues3 *pValue = ResolveForWrite( handle, 0 ) )
		pValue->CopyFrom( copy );
	EndWrite( handle, 0 );
}

bool CKV3FGDToolAttr::IsAtDefault( HToolAttrTableInstance handle, bool *pHasDefault ) const
{
	if ( IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle ) )
	{
		bool bAtDefault = false;
		if ( pAdvanced->IsAtDefault( handle, &bAtDefault, pHasDefault ) )
			return bAtDefault;
	}
	if ( pHasDefault )
		*pHasDefault = true;
	if ( !m_pVar )
		return false;
	const KeyValues3 *pValue = ResolveForRead( handle );
	if ( !pValue )
		return true;
	return pValue->IsEqual( m_Default ) || TestValueAtDefault( *pValue, *m_pVar, m_nDepth );
}

bool CKV3FGDToolAttr::ResetToDefault( HToolAttrTableInstance handle )
{
	if ( IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle ) )
	{
		bool bResult = false;
		if ( pAdvanced->ResetToDefault( handle, this, &bResult ) )
			return bResult;
	}
	KeyValues3 *pValue = ResolveForWrite( handle, 0 );
	if ( pValue )
		pValue->CopyFrom( m_Default );
	EndWrite( handle, 0 );
	return pValue != nullptr;
}

void CKV3FGDToolAttr::GetCustomCommands( HToolAttrTableInstance handle, CUtlVector<ToolAttrCustomCommand_t> *pCommands ) const
{
	if ( IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle ) )
		pAdvanced->AddCustomCommands( handle, this, pCommands );
	const KeyValues3 *pButtons = m_pVar ? m_pVar->m_KV3Metadata.FindMember( "bindable_command_buttons" ) : nullptr;
	if ( !pButtons )
		return;
	for ( int i = 0; i < pButtons->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pButton = pButtons->GetArrayElement( i );
		ToolAttrCustomCommand_t command;
		command.m_Name.Format( "_CustomCommand%d", pCommands->Count() );
		command.m_nZone = ZoneFromName( pButton->GetMemberString( "button_zone" ) );
		command.m_nApplicableTo = ApplicableFromName( pButton->GetMemberString( "applicable_to" ) );
		command.m_BindableTarget = pButton->GetMemberString( "target" );
		command.m_BindableCommand = pButton->GetMemberString( "command" );
		command.m_Icon = pButton->GetMemberString( "icon" );
		command.m_Tooltip = pButton->GetMemberString( "desc" );
		command.m_Label = command.m_BindableCommand;
		pCommands->AddToTail( command );
	}
}

int CKV3FGDToolAttr::RunCommand( HToolAttrTableInstance handle, const char *pszCommand )
{
	IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle );
	return pAdvanced ? pAdvanced->RunCommand( handle, this, pszCommand ) : TOOLATTR_COMMAND_NOT_HANDLED;
}

bool CKV3FGDToolAttr::GetDefaultColor( HToolAttrTableInstance, Color *pOut ) const
{
	const KeyValues3 *pColor = m_pVar ? m_pVar->m_KV3Metadata.FindMember( "default_color" ) : nullptr;
	if ( !pColor )
		return false;
	uint32_t n = ReadFGDColor( *pColor );
	pOut->SetColor( int( n & 0xff ), int( n >> 8 & 0xff ), int( n >> 16 & 0xff ), int( n >> 24 & 0xff ) );
	return true;
}

bool CKV3FGDToolAttr::GetIconName( HToolAttrTableInstance, CUtlString *pOut ) const
{
	if ( !m_pVar || !m_pVar->HasMetadata( "icon" ) )
		return false;
	pOut->Set( MetaString( "icon" ) );
	return true;
}

bool CKV3FGDToolAttr::IsEmpty( HToolAttrTableInstance handle ) const
{
	const KeyValues3 *pValue = ResolveForRead( handle );
	const KeyValues3 &value = pValue ? *pValue : m_Default;
	switch ( GetEffectiveType() )
	{
	case GDTYPE_FLOAT: return value.GetDouble() == 0.0;
	case GDTYPE_ARRAY: return value.GetArrayElementCount() == 0;
	default:
	{
		CUtlString text;
		GetAsString( handle, &text );
		return text.IsEmpty();
	}
	}
}

bool CKV3FGDToolAttr::GetAlert( HToolAttrTableInstance handle, CUtlString *pOut ) const
{
	if ( !m_pVar || !m_pVar->HasMetadata( "alert_func" ) )
		return false;
	const ToolAttrAlertFn_t &fn = ToolAttrHost()->FindAlertFunction( MetaString( "alert_func" ) );
	return fn ? fn( handle, this, pOut ) : false;
}

const char *CKV3FGDToolAttr::GetEditorSpec() const
{
	switch ( GetEffectiveType() )
	{
	case GDTYPE_TARGET_DESTINATION:
	case GDTYPE_TARGET_NAME_OR_CLASS:
	case GDTYPE_TARGET_SOURCE: return "BrakelEntityPicker()";
	case GDTYPE_MATERIALGROUP: return "ModelMaterialGroupName()";
	case GDTYPE_SURFACE_PROPERTIES: return "SurfacePropPicker()";
	case GDTYPE_VISTARA_IMAGE: return "VistaraImage()";
	case GDTYPE_VISTARA_LAYOUT: return "VistaraLayout()";
	case GDTYPE_VISTARA_STYLE: return "VistaraStyle()";
	case GDTYPE_VISTARA_VIDEO: return "VistaraVideo()";
	case GDTYPE_ANIMGRAPH: return "AnimgraphPicker()";
	case GDTYPE_ANIMGRAPH2_IDENTIFIER: return "ModelAnimGraph2Identifier()";
	case GDTYPE_ANIMGRAPH2_CLIP: return "AnimGraph2Clip()";
	default: return MetaString( "editor" );
	}
}

bool CKV3FGDToolAttr::RebuildsOnChange() const
{
	return m_bRebuild || MetaBool( "rebuild_propertyeditor_on_change" );
}

bool CKV3FGDToolAttr::SetFromString( HToolAttrTableInstance handle, const char *pszText, int nFlags )
{
	if ( IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle ) )
	{
		bool bResult = false;
		if ( pAdvanced->SetFromString( handle, this, pszText, nFlags, &bResult ) )
			return bResult;
	}
	KeyValues3 *pValue = ResolveForWrite( handle, nFlags );
	if ( pValue )
		WriteText( pValue, pszText, m_nDepth );
	EndWrite( handle, nFlags );
	return pValue != nullptr;
}

void CKV3FGDToolAttr::GetAsString( HToolAttrTableInstance handle, CUtlString *pOut ) const
{
	if ( IKV3FGDAdvancedAPI *pAdvanced = AdvancedAPI( handle ) )
	{
		if ( pAdvanced->GetAsString( handle, this, pOut ) )
			return;
	}
	const KeyValues3 *pValue = ResolveForRead( handle );
	FormatFGDValue( pValue ? *pValue : m_Default, GetEffectiveType(), pOut );
}

bool CKV3FGDToolAttr::GetChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const
{
	if ( !m_pVar )
		return false;
	IToolAttrHost *pRegistry = pHost ? pHost : ToolAttrHost();
	const char *pszProvider = m_pVar->HasMetadata( "choice_name" ) ? MetaString( "choice_name" ) : MetaString( "suggestion_name" );
	if ( *pszProvider )
	{
		const ToolAttrChoiceProviderFn_t &fn = pRegistry->FindChoiceProvider( pszProvider );
		if ( !fn )
			return false;
		fn( handle, this, pChoices );
		return true;
	}
	if ( !m_pVar->m_pItemSet )
		return false;
	for ( const GameDataItem_t &item : m_pVar->m_pItemSet->m_Items )
		pChoices->AddToTail( { item.m_Value, item.m_FriendlyName, item.m_Description, item.m_iValue } );
	return true;
}

// The element of an array shares the array's variable, so its choices are the variable's.
bool CKV3FGDToolAttr::GetElementChoices( IToolAttrHost *pHost, HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const
{
	if ( GetAttrType() != TOOLATTR_TYPE_ARRAY )
		return false;
	return GetChoices( pHost, handle, pChoices );
}

int CKV3FGDToolAttr::GetCount( HToolAttrTableInstance handle ) const
{
	const KeyValues3 *pValue = ResolveForRead( handle );
	return ( pValue ? pValue : &m_Default )->GetArrayElementCount();
}

IBaseToolAttr *CKV3FGDToolAttr::GetElement( HToolAttrTableInstance handle, int nIndex )
{
	if ( nIndex < 0 )
		return nullptr;
	const KeyValues3 *pArray = ResolveForRead( handle );
	std::string elementKey = m_KeyText + "[]";
	while ( int( m_Elements.size() ) <= nIndex )
	{
		int nNew = int( m_Elements.size() );
		std::unique_ptr<CKV3FGDToolAttr> pElement;
		if ( m_pVar )
		{
			pElement = std::make_unique<CKV3FGDToolAttr>( m_pResolver, elementKey.c_str(), m_pGameData, m_pClass, m_pVar, m_nDepth + 1 );
		}
		else
		{
			const KeyValues3 *pStored = pArray ? pArray->GetArrayElement( nNew ) : nullptr;
			pElement = std::make_unique<CKV3FGDToolAttr>( m_pResolver, elementKey.c_str(), m_pGameData, nullptr, nullptr, m_nDepth + 1,
				pStored ? pStored->GetType() : KV3_TYPE_STRING, pStored ? pStored->GetSubType() : KV3_SUBTYPE_UNSPECIFIED );
		}
		pElement->m_nElementIndex = nNew;
		pElement->m_pParentArray = this;
		m_Elements.push_back( std::move( pElement ) );
	}
	return m_Elements[ nIndex ].get();
}

IBaseToolAttr *CKV3FGDToolAttr::InsertElement( HToolAttrTableInstance handle, int nIndex )
{
	KeyValues3 *pArray = ResolveForWrite( handle, 0 );
	bool bInserted = false;
	if ( pArray )
	{
		if ( !pArray->IsArray() )
			pArray->SetToEmptyArray();
		if ( KeyValues3 *pNew = pArray->ArrayInsertBefore( nIndex ) )
		{
			bInserted = true;
			if ( m_pVar )
				WriteText( pNew, "", m_nDepth + 1 );
		}
	}
	EndWrite( handle, 0 );
	return bInserted ? GetElement( handle, nIndex ) : nullptr;
}

void CKV3FGDToolAttr::RemoveElements( HToolAttrTableInstance handle, int nIndex, int nCount )
{
	KeyValues3 *pArray = ResolveForWrite( handle, 0 );
	if ( pArray && pArray->IsArray() )
	{
		for ( int i = nIndex + nCount - 1; i >= nIndex; --i )
			pArray->ArrayRemoveElement( i );
	}
	EndWrite( handle, 0 );
}

void CKV3FGDToolAttr::SwapElements( HToolAttrTableInstance handle, int nA, int nB )
{
	KeyValues3 *pArray = ResolveForWrite( handle, 0 );
	KeyValues3 *pA = pArray ? pArray->GetArrayElement( nA ) : nullptr;
	KeyValues3 *pB = pArray ? pArray->GetArrayElement( nB ) : nullptr;
	if ( pA && pB && pA != pB )
		std::swap( *pA, *pB );
	EndWrite( handle, 0 );
}

bool CKV3FGDToolAttr::GetElementTypes( HToolAttrTableInstance, CUtlVector<ToolAttrElementType_t> *pTypes ) const
{
	const CGameDataClass *pClass = m_pVar ? m_pVar->GetStructClass() : nullptr;
	const CGameDataVariable *pSelector = pClass ? pClass->GetSelectorVariable() : nullptr;
	if ( !pSelector || !pSelector->m_pItemSet )
		return false;
	for ( const GameDataItem_t &item : pSelector->m_pItemSet->m_Items )
		pTypes->AddToTail( { item.m_Value, item.m_FriendlyName, item.m_Description } );
	return true;
}

IBaseToolAttr *CKV3FGDToolAttr::InsertElementOfType( HToolAttrTableInstance handle, int nIndex, const ToolAttrElementType_t &type )
{
	IBaseToolAttr *pElement = InsertElement( handle, nIndex );
	if ( !pElement )
		return nullptr;
	HToolAttrTableInstance elementHandle = pElement->GetTableInstance( handle );
	if ( elementHandle.IsValid() )
	{
		if ( IBaseToolAttr *pClassAttr = elementHandle.m_pTable->FindAttribute( elementHandle, "_class" ) )
			pClassAttr->AsValue()->SetFromString( elementHandle, type.m_Value, 0 );
	}
	return pElement;
}

int CKV3FGDToolAttr::GetElementTypeMode() const
{
	return MetaBool( "owns_polymorphic_data" ) ? 2 : 0;
}

CKV3FGDToolAttr *CKV3FGDToolAttr::GetChild( const std::string &cacheKey, const char *pszKey, const CGameDataClass *pClass, const CGameDataVariable *pVar,
	int nDepth, const KeyValues3 *pStored )
{
	std::unique_ptr<CKV3FGDToolAttr> &pChild = m_Children[ cacheKey ];
	if ( !pChild )
	{
		pChild = std::make_unique<CKV3FGDToolAttr>( m_pResolver, pszKey, m_pGameData, pClass, pVar, nDepth, pStored ? pStored->GetType() : KV3_TYPE_NULL,
			pStored ? pStored->GetSubType() : KV3_SUBTYPE_UNSPECIFIED );
	}
	return pChild.get();
}

void CKV3FGDToolAttr::GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	const KeyValues3 *pTable = ResolveForRead( handle );
	const CGameDataClass *pDeclared = m_pVar ? m_pVar->GetStructClass() : nullptr;
	const CGameDataClass *pRefined = ResolveFGDClass( pDeclared, pTable );
	KeyValues3 listed;
	listed.SetToEmptyTable();
	auto listClass = [ & ]( const CGameDataClass *pClass, bool bPolymorphicFilter ) {
		for ( const CGameDataVariable *pVar : pClass->m_Variables )
		{
			if ( listed.HasMember( pVar->m_Name.Get() ) )
				continue;
			if ( pVar->GetType() == GDTYPE_POLYMORPHIC_CLASS && !MetaBool( "owns_polymorphic_data" ) )
				continue;
			if ( bPolymorphicFilter && !pVar->GetMetadataBool( "ShouldPunchThroughPolymorphism" ) )
				continue;
			listed.SetMemberBool( pVar->m_Name.Get(), true );
			CKV3FGDToolAttr *pChild = GetChild( VariableKey( pClass, pVar ), pVar->m_Name, pClass, pVar, 0, nullptr );
			pChild->m_pParentTable = this;
			pAttributes->AddToTail( pChild );
		}
	};
	if ( pDeclared && pRefined != pDeclared )
		listClass( pDeclared, true );
	if ( pRefined )
		listClass( pRefined, false );
	if ( !pTable || !pTable->IsTable() )
		return;
	for ( int i = 0; i < pTable->GetMemberCount(); ++i )
	{
		const char *pszKey = pTable->GetMemberName( i );
		if ( listed.HasMember( pszKey ) || ( pRefined && pRefined->FindVariable( pszKey ) ) )
			continue;
		const KeyValues3 *pStored = pTable->GetMember( i );
		CKV3FGDToolAttr *pChild = GetChild( ShapeKey( pszKey, pStored ), pszKey, nullptr, nullptr, 0, pStored );
		pChild->m_pParentTable = this;
		pAttributes->AddToTail( pChild );
	}
}

bool CKV3FGDToolAttr::GetHelpInfo( HToolAttrTableInstance handle, CUtlString *pContext, CUtlString *pId ) const
{
	const CGameDataClass *pClass = m_pVar ? ResolveFGDClass( m_pVar->GetStructClass(), ResolveForRead( handle ) ) : nullptr;
	if ( !pClass )
		return false;
	pContext->Set( pClass->m_HelpContextName );
	pId->Format( "Element.%s", pClass->GetName() );
	return true;
}

bool CKV3FGDToolAttr::GetDisplayName( HToolAttrTableInstance handle, CUtlString *pOut ) const
{
	const KeyValues3 *pTable = ResolveForRead( handle );
	const CGameDataClass *pClass = m_pVar ? ResolveFGDClass( m_pVar->GetStructClass(), pTable ) : nullptr;
	if ( !pClass )
		return false;
	const char *pszNameKey = pClass->GetMetaString( "element_name_key" );
	const KeyValues3 *pName = *pszNameKey && pTable ? pTable->FindMember( pszNameKey ) : nullptr;
	if ( pName && pName->IsString() )
	{
		const KeyValues3 *pMap = pClass->m_MetaData.FindMember( "element_name_key_friendly_name_map" );
		const KeyValues3 *pLabel = pMap ? pMap->FindMember( pName->GetString() ) : nullptr;
		pOut->Set( pLabel && pLabel->IsString() ? pLabel->GetString() : pName->GetString() );
		return true;
	}
	if ( pClass->m_FriendlyName.IsEmpty() )
		return false;
	pOut->Set( pClass->m_FriendlyName );
	return true;
}

bool CKV3FGDToolAttr::GetFlattenIntoParent() const
{
	return MetaBool( "propattr_flatten_into_parent_row" );
}

IBaseToolAttr *CKV3FGDToolAttr::FindAttribute( HToolAttrTableInstance handle, const char *pszName )
{
	CUtlVector<IBaseToolAttr *> attributes;
	GetAttributes( handle, &attributes );
	for ( IBaseToolAttr *pAttr : attributes )
	{
		if ( !V_strcmp( pAttr->GetName(), pszName ) )
			return pAttr;
	}
	return nullptr;
}

const KeyValues3 *CKV3FGDToolAttr::GetKV3( HToolAttrTableInstance handle ) const
{
	const KeyValues3 *pValue = ResolveForRead( handle );
	return pValue ? pValue : &m_Default;
}

CUtlString CKV3FGDToolAttr::NormalizeMapKey( const char *pszKey ) const
{
	CUtlString key( pszKey );
	if ( HasIntegerKeys() )
		key.Format( "%d", V_atoi( pszKey ) );
	return key;
}

IBaseToolAttr *CKV3FGDToolAttr::GetElement( HToolAttrTableInstance handle, const char *pszKey, bool bCreate )
{
	CUtlString key = NormalizeMapKey( pszKey );
	const KeyValues3 *pTable = ResolveForRead( handle );
	const KeyValues3 *pStored = pTable ? pTable->FindMember( key.Get() ) : nullptr;
	if ( !pStored )
	{
		if ( !bCreate || !AddKey( handle, key ) )
			return nullptr;
		pTable = ResolveForRead( handle );
		pStored = pTable ? pTable->FindMember( key.Get() ) : nullptr;
	}
	CKV3FGDToolAttr *pChild = GetChild( "map|" + ShapeKey( key, pStored ), key, m_pClass, m_pVar, m_nDepth + 1, pStored );
	pChild->m_pParentMap = this;
	return pChild;
}

void CKV3FGDToolAttr::GetKeys( HToolAttrTableInstance handle, CUtlVector<CUtlString> *pKeys ) const
{
	const KeyValues3 *pTable = ResolveForRead( handle );
	for ( int i = 0; pTable && i < pTable->GetMemberCount(); ++i )
		pKeys->AddToTail( CUtlString( pTable->GetMemberName( i ) ) );
}

bool CKV3FGDToolAttr::AddKey( HToolAttrTableInstance handle, const char *pszKey )
{
	CUtlString key = NormalizeMapKey( pszKey );
	const KeyValues3 *pTable = ResolveForRead( handle );
	if ( pTable && pTable->HasMember( key.Get() ) )
		return false;
	bool bAdded = false;
	if ( KeyValues3 *pMap = ResolveForWrite( handle, 0 ) )
	{
		if ( !pMap->IsTable() )
			pMap->SetToEmptyTable();
		KeyValues3 *pValue = pMap->FindOrCreateMember( key.Get(), &bAdded );
		if ( bAdded )
			WriteText( pValue, "", m_nDepth + 1 );
	}
	EndWrite( handle, 0 );
	return bAdded;
}

bool CKV3FGDToolAttr::RemoveKey( HToolAttrTableInstance handle, const char *pszKey )
{
	CUtlString key = NormalizeMapKey( pszKey );
	KeyValues3 *pMap = ResolveForWrite( handle, 0 );
	bool bRemoved = pMap && pMap->RemoveMember( key.Get() );
	EndWrite( handle, 0 );
	return bRemoved;
}

bool CKV3FGDToolAttr::RenameKey( HToolAttrTableInstance handle, const char *pszOldKey, const char *pszNewKey )
{
	CUtlString oldKey = NormalizeMapKey( pszOldKey ), newKey = NormalizeMapKey( pszNewKey );
	KeyValues3 *pMap = ResolveForWrite( handle, 0 );
	bool bRenamed = pMap && pMap->RenameMember( oldKey.Get(), newKey.Get() );
	EndWrite( handle, 0 );
	return bRenamed;
}

bool CKV3FGDToolAttr::GetKeyChoices( HToolAttrTableInstance handle, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) const
{
	if ( !m_pVar )
		return false;
	const char *pszChoice = MetaString( "mapkeys_choice_name" );
	const char *pszSuggestion = MetaString( "mapkeys_suggestion_name" );
	if ( *pszChoice || *pszSuggestion )
	{
		const ToolAttrChoiceProviderFn_t &fn = ToolAttrHost()->FindChoiceProvider( *pszChoice ? pszChoice : pszSuggestion );
		if ( fn )
			fn( handle, this, pChoices );
		return *pszChoice != '\0';
	}
	const KeyValues3 *pKeys = m_pVar->m_KV3Metadata.FindMember( "mapkeys" );
	if ( !pKeys )
		return false;
	for ( int i = 0; i < pKeys->GetMemberCount(); ++i )
	{
		const KeyValues3 *pEntry = pKeys->GetMember( i );
		pChoices->AddToTail( { pKeys->GetMemberName( i ), pEntry->GetMemberString( "friendly_name" ), pEntry->GetMemberString( "description" ), 0 } );
	}
	return !MetaBool( "mapkeys_is_suggestion" );
}

namespace
{
void AnswerKeyName( CToolEditContextQuery_String *pQuery, const char *pszKeyName )
{
	pQuery->m_eKind = CToolEditContextQuery_String::KIND_KEY_NAME;
	pQuery->m_Value = pszKeyName;
	pQuery->m_nValueKeyHash = MurmurHash2LowerCase( pszKeyName, strlen( pszKeyName ), KV3_MEMBER_NAME_SEED );
}

// The variable that declares "MPropertyProvidesEditContextString" for a key answers it
// for its whole class. The lookup is cached in the class's metadata on first use: the
// one write a class description allows after it is built.
const char *FindEditContextProvider( const CGameDataClass *pClass, const char *pszKey )
{
	if ( !pClass )
		return nullptr;
	constexpr const char *pszCacheKey = "__CACHED_editcontext_provider_lookup";
	const KeyValues3 *pCache = pClass->m_MetaData.FindMember( pszCacheKey );
	if ( !pCache || !pCache->IsTable() )
	{
		KeyValues3 lookup;
		lookup.SetToEmptyTable();
		for ( const CGameDataVariable *pVar : pClass->m_Variables )
		{
			const char *pszProvided = pVar->GetMetadataString( "MPropertyProvidesEditContextString" );
			if ( *pszProvided && !lookup.HasMember( pszProvided ) )
				lookup.SetMemberString( pszProvided, pVar->m_Name );
		}
		KeyValues3 &metaData = const_cast<CGameDataClass *>( pClass )->m_MetaData;
		if ( !metaData.IsTable() )
			metaData.SetToEmptyTable();
		metaData.FindOrCreateMember( pszCacheKey )->CopyFrom( lookup );
		pCache = pClass->m_MetaData.FindMember( pszCacheKey );
	}
	const KeyValues3 *pProvider = pCache->FindMember( pszKey );
	return pProvider ? pProvider->GetString() : nullptr;
}
} // namespace

bool CKV3FGDToolAttr::FillEditContextOverride( CToolEditContextQuery_String *pQuery ) const
{
	if ( !m_pVar )
		return false;
	const KeyValues3 *pOverrides = m_pVar->m_KV3Metadata.FindMember( "edit_context_override" );
	const KeyValues3 *pEntry = pOverrides && pOverrides->IsTable() ? pOverrides->FindMember( pQuery->m_Key.Get() ) : nullptr;
	if ( !pEntry || !pEntry->IsTable() )
		return false;
	const char *pszValue = pEntry->GetMemberString( "value" );
	if ( pEntry->GetMemberBool( "value_is_key_name" ) )
	{
		AnswerKeyName( pQuery, pszValue );
		return true;
	}
	pQuery->m_eKind = CToolEditContextQuery_String::KIND_CODE;
	pQuery->m_Source = "code";
	pQuery->m_Value = pszValue;
	return true;
}

// The attribute's own override first, then its class's provider; a nested attribute then
// asks the attribute that holds it, and the root asks the table of the handle.
void CKV3FGDToolAttr::FillEditContext( HToolAttrTableInstance handle, CToolEditContextQuery_Base *pQuery ) const
{
	if ( auto *pString = dynamic_cast<CToolEditContextQuery_String *>( pQuery ) )
	{
		if ( FillEditContextOverride( pString ) )
			return;
		if ( const char *pszProvider = FindEditContextProvider( m_pClass, pString->m_Key ) )
		{
			AnswerKeyName( pString, pszProvider );
			return;
		}
	}
	const CKV3FGDToolAttr *pHolder = m_pParentArray ? m_pParentArray : m_pParentTable ? m_pParentTable : m_pParentMap;
	if ( pHolder )
	{
		pHolder->FillEditContext( handle, pQuery );
		return;
	}
	if ( handle.m_pTable && handle.m_pTable != static_cast<const IToolAttr_Table *>( this ) )
		handle.m_pTable->FillEditContext( handle, pQuery );
}
