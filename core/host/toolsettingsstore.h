#pragma once
// Tool settings: one KV3 table per tool, kept as a file in the user's settings
// directory. The directory is, in order: what SetDirectory was given, the environment
// variable ZOL_SETTINGS_DIR (tests point it at a scratch directory), then
// $XDG_CONFIG_HOME/zol, then $HOME/.config/zol.

#include "core/host/filesystem.h"
#include "core/text/utlstring.h"

class KeyValues3;

constexpr const char *TOOL_SETTINGS_DIRECTORY_ENV = "ZOL_SETTINGS_DIR";

class CToolSettingsStore
{
public:
	// Overrides the directory; an empty text goes back to the default.
	void SetDirectory( const char *pDirectory );
	// The directory in use (absolute, backslashes); empty when no home can be found.
	CUtlString GetDirectory() const;
	// The file of a tool's settings ("<directory>\<tool>_settings.kv3").
	CUtlString GetSettingsPath( const char *pToolName ) const;

	// Reads a tool's table. False when there is none or it can't be read; pTable is then
	// an empty table, and pError says why (empty when there simply is no file yet).
	bool Load( const char *pToolName, KeyValues3 *pTable, CUtlString *pError = nullptr ) const;
	// Writes a tool's table (replacing the file only once the new one is complete).
	bool Save( const char *pToolName, const KeyValues3 &table, CUtlString *pError = nullptr );

private:
	CUtlString m_strDirectory;
	mutable CFileSystem m_FileSystem; // absolute paths only
};

// The process-wide store.
CToolSettingsStore &GetToolSettingsStore();
