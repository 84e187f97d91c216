#pragma once
// The autosave manager's lists: the recent files (newest first, with their closed
// correctly, autosaved and shown-in-list marks) and the names of sessions that have no
// file yet. The timed autosave itself hooks in at Tick.

#include <functional>
#include <vector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/editorsettings.h"

class KeyValues3;

struct AutosaveFileEntry_t
{
	CUtlString m_strFileName; // absolute, backslashes
	bool m_bClosedCorrectly = true;
	bool m_bAutosaved = false;
	bool m_bDisplayInList = true;
};

class CAutosaveManager
{
public:
	// Whether a file exists; recent entries of missing files are dropped on read.
	using FileExistsFn_t = std::function<bool( const char * )>;

	void SetFileExists( FileExistsFn_t fn ) { m_fnFileExists = std::move( fn ); }
	// At least 10, whatever the application answers.
	void SetMaxRecentFiles( int nMax ) { m_nMaxRecentFiles = nMax < 10 ? 10 : nMax; }

	void Tick() {}
	// Moves the file to the front of the recent list (adding it when new).
	void NoteFileOpened( const char *pPath, bool bDisplayInList );
	void NoteFileClosed( const char *pPath );
	void NoteNewFile( const char *pName );
	void RemoveNewFile( const char *pName );
	void ClearRecentFiles();

	void ReadSettings( const KeyValues3 *pRecentFiles, const KeyValues3 *pNewFiles );
	void WriteSettings( KeyValues3 *pRecentFiles, KeyValues3 *pNewFiles ) const;

	const std::vector<AutosaveFileEntry_t> &GetRecentFiles() const { return m_RecentFiles; }
	const std::vector<CUtlString> &GetNewFiles() const { return m_NewFiles; }
	bool IsNewFile( const char *pName ) const;

private:
	int FindRecentFile( const char *pPath ) const;
	void TrimRecentFiles();

	std::vector<AutosaveFileEntry_t> m_RecentFiles;
	std::vector<CUtlString> m_NewFiles;
	FileExistsFn_t m_fnFileExists;
	int m_nMaxRecentFiles = 100;
};
