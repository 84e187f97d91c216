#pragma once
// One variable of a class description: the KV3 key, its labels, full type, choices,
// default and metadata. Plain data owned by its game data set.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/fgd/gamedatatype.h"

class CGameData;
class CGameDataClass;

struct GameDataItem_t
{
	CUtlString m_Value;
	CUtlString m_FriendlyName;
	CUtlString m_Description;
	bool m_bDefault = false;
	bool m_bCustom = false;
	int m_iValue = 0; // the bit of a flag, or the number of an integer choice
};

class CGameDataItemSet
{
public:
	GameDataType_t m_eType = GDTYPE_CHOICES;
	CUtlVector<GameDataItem_t> m_Items;
	bool m_bOverlappingBits = false;

	// By value text (exact) or, for numbers, by value.
	const GameDataItem_t *FindItem( const char *pszValue ) const;
};

class CGameDataVariable
{
public:
	CGameData *m_pOwner = nullptr;
	CUtlString m_Name;
	CUtlString m_LongName;
	CUtlString m_Description;
	GameDataFullType_t m_FullType;
	CGameDataItemSet *m_pItemSet = nullptr; // owned by the set
	bool m_bUsingLegacyDefault = false;
	CUtlString m_LegacyDefaultStr;
	int32_t m_nLegacyDefaultInt = 0;
	KeyValues3 m_DefaultKV3;
	KeyValues3 m_KV3Metadata; // a table

	// Where the declaration stands, for messages about it after the file was read.
	CUtlString m_SourceFile;
	int m_nLine = 0;
	int m_nColumn = 0;

	GameDataType_t GetType() const { return m_FullType.m_eBaseType; }
	GameDataType_t GetTypeAtDepth( int nDepth ) const { return m_FullType.GetTypeAtDepth( nDepth ); }

	bool HasMetadata( const char *pszKey ) const { return m_KV3Metadata.HasMember( pszKey ); }
	bool GetMetadataBool( const char *pszKey, bool bDefault = false ) const;
	const char *GetMetadataString( const char *pszKey, const char *pszDefault = "" ) const;
	int GetMetadataInt( const char *pszKey, int nDefault = 0 ) const;

	// The class of a struct, kv3-with-underlying-struct or polymorphic variable; null if none.
	const CGameDataClass *GetStructClass() const;
	// The default as text, as a file would write it.
	void GetLegacyDefaultText( CUtlString *pOut ) const;
};
