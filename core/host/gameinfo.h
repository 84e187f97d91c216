#pragma once
// The host's game information: the "GameInfo" block of the game root's "gameinfo.gi",
// read with the older key/value tree. Keys are asked for by paths of names such as
// "Particles/Budget_SimulationUS"; paths and names compare ignoring case.

#include "core/containers/utlvector.h"
#include "core/keyvalues/keyvalues.h"
#include "core/text/utlstring.h"

class IFileSystem;

constexpr const char *GAMEINFO_FILE_NAME = "gameinfo.gi";
constexpr const char *GAMEINFO_INTERFACE_VERSION = "GameInfo_001";

class CGameInfo
{
public:
	CGameInfo();
	~CGameInfo();

	// Reads "gameinfo.gi" from the "GAME" path of the file system. On failure the
	// previous contents are gone, the answers are the defaults, and pError says why.
	bool Load( IFileSystem *pFileSystem, CUtlString *pError = nullptr );
	// Reads the text of a game information file.
	bool LoadFromText( const char *pText, const char *pSourceName = nullptr, CUtlString *pError = nullptr );
	bool IsLoaded() const { return m_bLoaded; }

	// The "GameInfo" block (an empty one before a load).
	const KeyValues *GetKeyValues() const { return &m_Root; }
	// A key by path under "GameInfo", or null.
	const KeyValues *FindKey( const char *pPath ) const;
	int GetInt( const char *pPath, int nDefault = 0 ) const;
	float GetFloat( const char *pPath, float flDefault = 0.0f ) const;
	const char *GetString( const char *pPath, const char *pDefault = "" ) const;
	bool GetBool( const char *pPath, bool bDefault = false ) const;

	// The game's name: the "game" key.
	const char *GetGameName() const { return GetString( "game" ); }

	// A list under a key such as "pulse_bindings": either a block whose values are the
	// entries (their names don't matter), or one value. Appends; answers the count added.
	int GetStringList( const char *pPath, CUtlVector<CUtlString> *pValues ) const;

private:
	KeyValues m_Root;
	bool m_bLoaded = false;
};

CGameInfo *GetGameInfo();
void SetGameInfo( CGameInfo *pGameInfo );
