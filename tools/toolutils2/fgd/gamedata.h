#pragma once
// A set of class descriptions: every class by name, with the records the FGD reader and
// the schema conversion make. Attributes and nodes point into the set; it outlives them.

#include <cstdint>
#include <memory>
#include <unordered_map>
#include <vector>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/fgd/gamedataclass.h"
#include "tools/toolutils2/fgd/gamedatavariable.h"

// One reader error with where it stands; m_Text is the full formatted message.
struct GameDataError_t
{
	CUtlString m_File;
	int m_nLine = 0; // 0 when the error has no position
	int m_nColumn = 0;
	CUtlString m_Message;
	CUtlString m_Text;
};

struct GameDataGridNav_t
{
	bool m_bSet = false;
	int m_nEdgeSize = 0;
	int m_nOffsetX = 0;
	int m_nOffsetY = 0;
	int m_nPickHeight = 0;
};

enum GameDataVisGroupFilterType_t : int
{
	GDVISFILTER_TOOLS_MATERIAL = 0, // "toolsMaterial"
	GDVISFILTER_ENTITY_TAG = 1,     // "entityTag"
	GDVISFILTER_ASSET_TAG = 2,      // "assetTag"
};

struct GameDataVisGroupFilter_t
{
	GameDataVisGroupFilterType_t m_eType = GDVISFILTER_TOOLS_MATERIAL;
	KeyValues3 m_KV3;
	// For an "entityTag" filter: the classes whose tags hold its "tag", ignoring case.
	// Refreshed after every file the reader finishes.
	std::vector<CUtlString> m_SelectedClasses;
};

struct GameDataEntityGroup_t
{
	CUtlString m_Name;
	bool m_bStartExpanded = false;
};

// 32-bit FNV-1a of the lower-cased name: the key of the class map.
uint32_t GameDataClassNameHash( const char *pszName );

class CGameData
{
public:
	CGameData();
	~CGameData();
	CGameData( const CGameData & ) = delete;
	CGameData &operator=( const CGameData & ) = delete;

	// Ignores case, as class names in files do.
	CGameDataClass *FindClass( const char *pszName ) const;
	int GetClassCount() const { return int( m_Classes.size() ); }
	CGameDataClass *GetClass( int nIndex ) const { return m_Classes[ nIndex ]; }

	// Records the set owns. A new class enters the class map only through AddClass.
	CGameDataClass *CreateClassRecord();
	CGameDataVariable *CreateVariable();
	CGameDataItemSet *CreateItemSet();
	// Enters a class under its name; false when the name is taken.
	bool AddClass( CGameDataClass *pClass );
	// Takes a class out of the map (its record stays, as others may point at it).
	void RemoveClass( CGameDataClass *pClass );

	void AddError( const GameDataError_t &error );
	const CUtlVector<GameDataError_t> &GetErrors() const { return m_Errors; }
	void ClearErrors() { m_Errors.RemoveAll(); }

	bool IsFileIncluded( const char *pszFile ) const;
	void AddIncludedFile( const char *pszFile );

	GameDataGridNav_t m_GridNav;
	CUtlVector<GameDataVisGroupFilter_t> m_VisGroupFilters;
	CUtlVector<GameDataEntityGroup_t> m_EntityGroups;
	CUtlVector<CGameDataClass *> m_BaseClasses;

private:
	std::vector<CGameDataClass *> m_Classes; // in the order they entered
	std::unordered_multimap<uint32_t, CGameDataClass *> m_ClassMap;
	std::vector<std::unique_ptr<CGameDataClass>> m_ClassRecords;
	std::vector<std::unique_ptr<CGameDataVariable>> m_VariableRecords;
	std::vector<std::unique_ptr<CGameDataItemSet>> m_ItemSetRecords;
	CUtlVector<CUtlString> m_IncludedFiles;
	CUtlVector<GameDataError_t> m_Errors;
};
