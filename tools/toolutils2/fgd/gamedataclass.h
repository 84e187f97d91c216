#pragma once
// One class of a class description set: kind, names, bases, variables, inputs and
// outputs, helpers, tags and metadata. Plain data owned by its game data set.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"

class CGameData;
class CGameDataVariable;

// m_nClassType values, by the section word that declares them.
enum GameDataClassKind_t : int
{
	GDCLASS_INVALID = 0,
	GDCLASS_BASE = 1,
	GDCLASS_STRUCT,
	GDCLASS_OVERRIDE,
	GDCLASS_POINT,
	GDCLASS_SOLID,
	GDCLASS_NPC,
	GDCLASS_FILTER,
	GDCLASS_MOVE,
	GDCLASS_KEYFRAME,
	GDCLASS_PATH,
	GDCLASS_PATHNODE,
	GDCLASS_CABLE,
	GDCLASS_NAVLINK,
	GDCLASS_MODELGAMEDATA,
	GDCLASS_MODELBREAKCOMMAND,
	GDCLASS_MODELANIMEVENT,
	GDCLASS_LEDGE,
	GDCLASS_LEDGEDERIVED,
};

class CClassInputOutputBase
{
public:
	CUtlString m_Name;
	CUtlString m_Type;
	CUtlString m_Description;
	CUtlString m_CppDeclaration;
	KeyValues3 m_MetaData;
};
class CClassInput : public CClassInputOutputBase
{
};
class CClassOutput : public CClassInputOutputBase
{
};

struct GameDataHelper_t
{
	CUtlString m_Name;
	CUtlVector<CUtlString> m_Arguments;
	KeyValues3 m_KV3; // the block of a helper written as "word { ... }"
};

struct GameDataColor_t
{
	uint8_t r = 220, g = 30, b = 220, a = 255;
};

class CGameDataClass
{
public:
	CGameData *m_pGameData = nullptr;
	int m_nClassType = GDCLASS_INVALID;
	CUtlString m_Name;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
	CUtlString m_HelpContextName;
	CUtlVector<CGameDataClass *> m_Bases;
	CUtlVector<CGameDataVariable *> m_Variables; // inherited ones first, as merged
	CUtlVector<CClassInput> m_Inputs;
	CUtlVector<CClassOutput> m_Outputs;
	CUtlVector<GameDataHelper_t> m_Helpers;
	CUtlVector<CUtlString> m_Tags;
	GameDataColor_t m_rgbColor;
	float m_bmins[ 3 ] = { -8.0f, -8.0f, -8.0f };
	float m_bmaxs[ 3 ] = { 8.0f, 8.0f, 8.0f };
	bool m_bHalfGridSnap = false;
	KeyValues3 m_MetaData; // a table

	const char *GetName() const { return m_Name.Get(); }
	bool IsBaseClass() const { return m_nClassType == GDCLASS_BASE; }

	// Exact in case, as KV3 keys are stored.
	CGameDataVariable *FindVariable( const char *pszName ) const;
	int FindVariableIndex( const char *pszName ) const;
	// The class (this or a base) whose own declaration brought the variable in.
	const CGameDataClass *FindDeclaringClass( const CGameDataVariable *pVar ) const;
	// The last variable of type polymorphic_class: it names the real class of a table.
	CGameDataVariable *GetSelectorVariable() const;
	bool IsPolymorphic() const { return m_MetaData.GetMemberBool( "is_polymorphic" ); }
	bool GetMetaBool( const char *pszKey ) const { return m_MetaData.GetMemberBool( pszKey ); }
	const char *GetMetaString( const char *pszKey ) const { return m_MetaData.GetMemberString( pszKey ); }
	bool HasTag( const char *pszTag ) const; // ignoring case

	// Adds a base and merges its variables, inputs and outputs that this class lacks.
	void AddBase( CGameDataClass *pBase );
	// Adds a variable or replaces the one of that name; false (with a message) when a
	// variable of that name already stands with another type.
	bool AddVariable( CGameDataVariable *pVar, CUtlString *pError );
	void AddTag( const char *pszTag ); // skips one already there, ignoring case
	// Merges another class's members into this one (an override class).
	void MergeFrom( const CGameDataClass &other );
};
