#include "tools/toolutils2/fgd/gamedatatype.h"

#include <cctype>
#include <cstring>

#include "core/text/strtools.h"

namespace
{
struct TypeInfo_t
{
	const char *m_pszName;
	GameDataDefaultKind_t m_eDefault;
};

constexpr TypeInfo_t s_Types[ GDTYPE_COUNT ] = {
	{ "angle", GDDEFAULT_TEXT },
	{ "target_destination", GDDEFAULT_TEXT },
	{ "target_name_or_class", GDDEFAULT_TEXT },
	{ "target_source", GDDEFAULT_TEXT },
	{ "integer", GDDEFAULT_INTEGER },
	{ "string", GDDEFAULT_TEXT },
	{ "string_instanced", GDDEFAULT_TEXT },
	{ "choices", GDDEFAULT_TEXT },
	{ "intchoices", GDDEFAULT_INTEGER },
	{ "flags", GDDEFAULT_INTEGER },
	{ "color255", GDDEFAULT_TEXT },
	{ "color255alpha", GDDEFAULT_TEXT },
	{ "sound", GDDEFAULT_TEXT },
	{ "vector", GDDEFAULT_TEXT },
	{ "npcclass", GDDEFAULT_TEXT },
	{ "filterclass", GDDEFAULT_TEXT },
	{ "float", GDDEFAULT_TEXT },
	{ "side", GDDEFAULT_TEXT },
	{ "sidelist", GDDEFAULT_TEXT },
	{ "vecline", GDDEFAULT_TEXT },
	{ "axis", GDDEFAULT_TEXT },
	{ "pointentityclass", GDDEFAULT_TEXT },
	{ "node_dest", GDDEFAULT_INTEGER },
	{ "script", GDDEFAULT_TEXT },
	{ "scriptlist", GDDEFAULT_TEXT },
	{ "instance_file", GDDEFAULT_TEXT },
	{ "instance_variable", GDDEFAULT_TEXT },
	{ "instance_parm", GDDEFAULT_TEXT },
	{ "boolean", GDDEFAULT_TEXT },
	{ "node_id", GDDEFAULT_INTEGER },
	{ "resource", GDDEFAULT_TEXT },
	{ "resource_name", GDDEFAULT_TEXT },
	{ "tag_list", GDDEFAULT_TEXT },
	{ "tag_list_dynamic", GDDEFAULT_TEXT },
	{ "world_point", GDDEFAULT_TEXT },
	{ "local_point", GDDEFAULT_TEXT },
	{ "localaxis", GDDEFAULT_TEXT },
	{ "node_id_List", GDDEFAULT_TEXT },
	{ "gameunitclass", GDDEFAULT_TEXT },
	{ "gameitemclass", GDDEFAULT_TEXT },
	{ "sequence", GDDEFAULT_TEXT },
	{ "bodygroupchoices", GDDEFAULT_TEXT },
	{ "modelstatechoices", GDDEFAULT_TEXT },
	{ "lod_level", GDDEFAULT_INTEGER },
	{ "text_block", GDDEFAULT_TEXT },
	{ "parentAttachment", GDDEFAULT_TEXT },
	{ "materialgroup", GDDEFAULT_TEXT },
	{ "collision_property", GDDEFAULT_TEXT },
	{ "surface_properties", GDDEFAULT_TEXT },
	{ "ledge_choice", GDDEFAULT_TEXT },
	{ "subclass_choice", GDDEFAULT_TEXT },
	{ "model_bone", GDDEFAULT_TEXT },
	{ "model_attachment", GDDEFAULT_TEXT },
	{ "propdataname", GDDEFAULT_TEXT },
	{ "model_bodygroup", GDDEFAULT_TEXT },
	{ "model_breakpiece", GDDEFAULT_TEXT },
	{ "model_morphchannel", GDDEFAULT_TEXT },
	{ "model_cloth_effect", GDDEFAULT_TEXT },
	{ "model_cloth_vertex_map", GDDEFAULT_TEXT },
	{ "model_cloth_node", GDDEFAULT_TEXT },
	{ "model_runtime_cloth_node", GDDEFAULT_TEXT },
	{ "model_physics_shape", GDDEFAULT_TEXT },
	{ "remove_key", GDDEFAULT_TEXT },
	{ "curve", GDDEFAULT_TEXT },
	{ "kv3", GDDEFAULT_TEXT },
	{ "array", GDDEFAULT_NONE },
	{ "struct", GDDEFAULT_NONE },
	{ "particle_cfg", GDDEFAULT_TEXT },
	{ "suggestions", GDDEFAULT_TEXT },
	{ "flagchoices", GDDEFAULT_TEXT },
	{ "stringmap", GDDEFAULT_TEXT },
	{ "intmap", GDDEFAULT_TEXT },
	{ "polymorphic_class", GDDEFAULT_TEXT },
	{ "vector2d", GDDEFAULT_TEXT },
	{ "vector4d", GDDEFAULT_TEXT },
	{ "vistara_image", GDDEFAULT_TEXT },
	{ "vistara_layout", GDDEFAULT_TEXT },
	{ "vistara_style", GDDEFAULT_TEXT },
	{ "vistara_video", GDDEFAULT_TEXT },
	{ "animgraph_enum", GDDEFAULT_TEXT },
	{ "animgraph", GDDEFAULT_TEXT },
	{ "npc_ability_name", GDDEFAULT_TEXT },
	{ "animgraph2_identifier", GDDEFAULT_TEXT },
	{ "localization_required", GDDEFAULT_TEXT },
	{ "animgraph2_clip", GDDEFAULT_TEXT },
};

bool IsValidType( GameDataType_t eType )
{
	return eType >= 0 && eType < GDTYPE_COUNT;
}

void SkipBlanks( const char *&p )
{
	while ( *p && isspace( static_cast<unsigned char>( *p ) ) )
		++p;
}

// type := word [ '(' ( type | param ) ')' ]
bool ParseTypeAt( const char *&p, GameDataFullType_t *pType, bool bNested, CUtlString *pError )
{
	SkipBlanks( p );
	const char *pStart = p;
	while ( *p && *p != '(' && *p != ')' && !isspace( static_cast<unsigned char>( *p ) ) )
		++p;
	CUtlString name( pStart, size_t( p - pStart ) );
	GameDataType_t eType = GameDataTypeFromName( name );
	if ( eType == GDTYPE_INVALID )
	{
		pError->Format( "'%s' is not a valid variable type", name.Get() );
		return false;
	}
	if ( bNested )
		pType->m_NestedTypes.AddToTail( eType );
	else
		pType->m_eBaseType = eType;

	SkipBlanks( p );
	if ( *p != '(' )
	{
		if ( GameDataTypeTakesNestedType( eType ) )
		{
			pError->Format( "'%s' needs a nested type", name.Get() );
			return false;
		}
		return true;
	}
	++p;
	if ( GameDataTypeTakesNestedType( eType ) )
	{
		if ( !ParseTypeAt( p, pType, true, pError ) )
			return false;
	}
	else
	{
		SkipBlanks( p );
		const char *pParam = p;
		while ( *p && *p != ')' )
			++p;
		CUtlString param( pParam, size_t( p - pParam ) );
		param.TrimWhitespace();
		if ( param.Length() >= 2 && param[ 0 ] == '"' && param[ param.Length() - 1 ] == '"' )
			param = CUtlString( param.Get() + 1, param.Length() - 2 );
		pType->m_Param = param;
	}
	SkipBlanks( p );
	if ( *p != ')' )
	{
		pError->Set( "Expecting ')' after type identifier" );
		return false;
	}
	++p;
	return true;
}
} // namespace

const char *GameDataTypeName( GameDataType_t eType )
{
	return IsValidType( eType ) ? s_Types[ eType ].m_pszName : "";
}

GameDataType_t GameDataTypeFromName( const char *pszName )
{
	if ( !pszName )
		return GDTYPE_INVALID;
	if ( !V_stricmp_fast( pszName, "int" ) )
		return GDTYPE_INTEGER;
	if ( !V_stricmp_fast( pszName, "bool" ) )
		return GDTYPE_BOOLEAN;
	for ( int i = 0; i < GDTYPE_COUNT; ++i )
	{
		if ( !V_stricmp_fast( pszName, s_Types[ i ].m_pszName ) )
			return GameDataType_t( i );
	}
	return GDTYPE_INVALID;
}

GameDataDefaultKind_t GameDataTypeDefaultKind( GameDataType_t eType )
{
	return IsValidType( eType ) ? s_Types[ eType ].m_eDefault : GDDEFAULT_NONE;
}

bool GameDataTypeTakesParam( GameDataType_t eType )
{
	switch ( eType )
	{
	case GDTYPE_RESOURCE:
	case GDTYPE_RESOURCE_NAME:
	case GDTYPE_KV3:
	case GDTYPE_STRUCT:
	case GDTYPE_LEDGE_CHOICE:
	case GDTYPE_SUBCLASS_CHOICE:
	case GDTYPE_POLYMORPHIC_CLASS:
		return true;
	default:
		return false;
	}
}

bool GameDataTypeTakesNestedType( GameDataType_t eType )
{
	return eType == GDTYPE_ARRAY || eType == GDTYPE_STRINGMAP || eType == GDTYPE_INTMAP;
}

bool GameDataTypeHasItemSet( GameDataType_t eType )
{
	switch ( eType )
	{
	case GDTYPE_CHOICES:
	case GDTYPE_INTCHOICES:
	case GDTYPE_FLAGS:
	case GDTYPE_TAG_LIST:
	case GDTYPE_SUGGESTIONS:
	case GDTYPE_FLAGCHOICES:
		return true;
	default:
		return false;
	}
}

GameDataType_t GameDataFullType_t::GetTypeAtDepth( int nDepth ) const
{
	if ( nDepth <= 0 )
		return m_eBaseType;
	return nDepth <= m_NestedTypes.Count() ? m_NestedTypes[ nDepth - 1 ] : GDTYPE_INVALID;
}

bool GameDataFullType_t::Parse( const char *pszText, CUtlString *pError )
{
	GameDataFullType_t parsed;
	const char *p = pszText ? pszText : "";
	if ( !ParseTypeAt( p, &parsed, false, pError ) )
		return false;
	SkipBlanks( p );
	if ( *p )
	{
		pError->Set( "Expecting ')' after type identifier" );
		return false;
	}
	*this = parsed;
	return true;
}

void GameDataFullType_t::ToString( CUtlString *pOut ) const
{
	pOut->Set( GameDataTypeName( m_eBaseType ) );
	int nOpen = 0;
	for ( GameDataType_t eNested : m_NestedTypes )
	{
		pOut->Append( '(' );
		pOut->Append( GameDataTypeName( eNested ) );
		++nOpen;
	}
	if ( GameDataTypeTakesParam( GetLastType() ) && !m_Param.IsEmpty() )
	{
		pOut->AppendFormat( "(%s)", m_Param.Get() );
	}
	while ( nOpen-- > 0 )
		pOut->Append( ')' );
}
