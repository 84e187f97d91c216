#pragma once
// The variable types of class descriptions, their names in FGD text, and the full type
// record that nests them: "array(array(int))", "resource(timg)", "stringmap(float)".

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

enum GameDataType_t : int
{
	GDTYPE_ANGLE = 0,
	GDTYPE_TARGET_DESTINATION,
	GDTYPE_TARGET_NAME_OR_CLASS,
	GDTYPE_TARGET_SOURCE,
	GDTYPE_INTEGER,
	GDTYPE_STRING,
	GDTYPE_STRING_INSTANCED,
	GDTYPE_CHOICES,
	GDTYPE_INTCHOICES,
	GDTYPE_FLAGS,
	GDTYPE_COLOR255 = 10,
	GDTYPE_COLOR255ALPHA,
	GDTYPE_SOUND,
	GDTYPE_VECTOR,
	GDTYPE_NPCCLASS,
	GDTYPE_FILTERCLASS,
	GDTYPE_FLOAT,
	GDTYPE_SIDE,
	GDTYPE_SIDELIST,
	GDTYPE_VECLINE,
	GDTYPE_AXIS = 20,
	GDTYPE_POINTENTITYCLASS,
	GDTYPE_NODE_DEST,
	GDTYPE_SCRIPT,
	GDTYPE_SCRIPTLIST,
	GDTYPE_INSTANCE_FILE,
	GDTYPE_INSTANCE_VARIABLE,
	GDTYPE_INSTANCE_PARM,
	GDTYPE_BOOLEAN,
	GDTYPE_NODE_ID,
	GDTYPE_RESOURCE = 30,
	GDTYPE_RESOURCE_NAME,
	GDTYPE_TAG_LIST,
	GDTYPE_TAG_LIST_DYNAMIC,
	GDTYPE_WORLD_POINT,
	GDTYPE_LOCAL_POINT,
	GDTYPE_LOCALAXIS,
	GDTYPE_NODE_ID_LIST,
	GDTYPE_GAMEUNITCLASS,
	GDTYPE_GAMEITEMCLASS,
	GDTYPE_SEQUENCE = 40,
	GDTYPE_BODYGROUPCHOICES,
	GDTYPE_MODELSTATECHOICES,
	GDTYPE_LOD_LEVEL,
	GDTYPE_TEXT_BLOCK,
	GDTYPE_PARENT_ATTACHMENT,
	GDTYPE_MATERIALGROUP,
	GDTYPE_COLLISION_PROPERTY,
	GDTYPE_SURFACE_PROPERTIES,
	GDTYPE_LEDGE_CHOICE,
	GDTYPE_SUBCLASS_CHOICE = 50,
	GDTYPE_MODEL_BONE,
	GDTYPE_MODEL_ATTACHMENT,
	GDTYPE_PROPDATANAME,
	GDTYPE_MODEL_BODYGROUP,
	GDTYPE_MODEL_BREAKPIECE,
	GDTYPE_MODEL_MORPHCHANNEL,
	GDTYPE_MODEL_CLOTH_EFFECT,
	GDTYPE_MODEL_CLOTH_VERTEX_MAP,
	GDTYPE_MODEL_CLOTH_NODE,
	GDTYPE_MODEL_RUNTIME_CLOTH_NODE = 60,
	GDTYPE_MODEL_PHYSICS_SHAPE,
	GDTYPE_REMOVE_KEY,
	GDTYPE_CURVE,
	GDTYPE_KV3,
	GDTYPE_ARRAY,
	GDTYPE_STRUCT,
	GDTYPE_PARTICLE_CFG,
	GDTYPE_SUGGESTIONS,
	GDTYPE_FLAGCHOICES,
	GDTYPE_STRINGMAP = 70,
	GDTYPE_INTMAP,
	GDTYPE_POLYMORPHIC_CLASS,
	GDTYPE_VECTOR2D,
	GDTYPE_VECTOR4D,
	GDTYPE_VISTARA_IMAGE,
	GDTYPE_VISTARA_LAYOUT,
	GDTYPE_VISTARA_STYLE,
	GDTYPE_VISTARA_VIDEO,
	GDTYPE_ANIMGRAPH_ENUM,
	GDTYPE_ANIMGRAPH = 80,
	GDTYPE_NPC_ABILITY_NAME,
	GDTYPE_ANIMGRAPH2_IDENTIFIER,
	GDTYPE_LOCALIZATION_REQUIRED,
	GDTYPE_ANIMGRAPH2_CLIP,
	GDTYPE_COUNT,
	GDTYPE_INVALID = -1,
};

// How a default given as text in a file is stored.
enum GameDataDefaultKind_t : int
{
	GDDEFAULT_TEXT = 0,
	GDDEFAULT_INTEGER,
	GDDEFAULT_NONE,
};

// The name a file uses for the type ("integer" for GDTYPE_INTEGER); "" when out of range.
const char *GameDataTypeName( GameDataType_t eType );
// Accepts the names and their short forms ("int", "bool"), ignoring case; GDTYPE_INVALID if unknown.
GameDataType_t GameDataTypeFromName( const char *pszName );
GameDataDefaultKind_t GameDataTypeDefaultKind( GameDataType_t eType );
// Types written with a string parameter in parentheses, such as "resource(timg)".
bool GameDataTypeTakesParam( GameDataType_t eType );
// Types written around a nested type: array, stringmap, intmap.
bool GameDataTypeTakesNestedType( GameDataType_t eType );
// Types whose values come from an item set: flags, choices and their relatives.
bool GameDataTypeHasItemSet( GameDataType_t eType );

struct GameDataFullType_t
{
	GameDataType_t m_eBaseType = GDTYPE_STRING;
	CUtlVector<GameDataType_t> m_NestedTypes; // innermost last
	CUtlString m_Param;                        // resource kind, struct class, editor name

	// The base type at depth 0, the depth-th nested type below that; GDTYPE_INVALID past the end.
	GameDataType_t GetTypeAtDepth( int nDepth ) const;
	GameDataType_t GetLastType() const { return m_NestedTypes.IsEmpty() ? m_eBaseType : m_NestedTypes.Tail(); }
	int GetMaxDepth() const { return m_NestedTypes.Count(); }

	// Parses a type text; on failure answers false with a message in pError
	// ("'%s' is not a valid variable type" for an unknown name).
	bool Parse( const char *pszText, CUtlString *pError );
	void ToString( CUtlString *pOut ) const;
};
