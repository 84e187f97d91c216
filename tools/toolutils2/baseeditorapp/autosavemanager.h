#pragma once
// Timed autosaves, the lists of what is open, and recovery after a crash.
//
// The manager belongs to the application. It knows no file format: it asks a session to
// save into a path it names, and on recovery it opens the autosave as a session and gives
// the session its original name back. Autosaves go to a tree beside the content tree
// ("<content root>_toolsautosave\<tool>\", see autosavenames.h), numbered per file and
// kept within a space limit per directory.
//
// The lists: the recent files (newest first, with their closed correctly, autosaved and
// shown-in-list marks) and the names of sessions that have no file yet. The settings that
// steer it (CEditorSettings) belong to the application, which stores them at once when
// the manager changes one.
//
// Headless runs (test mode, the -headless start option: tests, batch commands, pictures)
// never ask the recovery question; they keep the crash record as it was, so the next
// interactive start still offers the recovery.

#include <cstdint>
#include <functional>
#include <vector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/editorsettings.h"

class CBaseEditorApp;
class CBaseEditorSession;
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

	// The application whose sessions, settings and tool name the manager uses. Without
	// one (tests of the lists alone) only the lists work.
	void SetApp( CBaseEditorApp *pApp ) { m_pApp = pApp; }
	void SetFileExists( FileExistsFn_t fn ) { m_fnFileExists = std::move( fn ); }
	// At least 10, whatever the application answers.
	void SetMaxRecentFiles( int nMax ) { m_nMaxRecentFiles = nMax < 10 ? 10 : nMax; }

	// The timer: the next autosave comes "Time Between Saves" minutes after the start and
	// after each run; when the application says not now, a second later.
	void StartTimer();
	void Tick();
	double GetNextAutosaveTime() const { return m_flNextAutosaveTime; }
	// Saves every session changed since its last autosave (every session with bForce)
	// into its next autosave file, marks its entry autosaved and keeps the directory
	// within its space. Stores the settings at once when it saved anything.
	void AutosaveAll( bool bForce );

	// Moves the file to the front of the recent list (adding it when new).
	void NoteFileOpened( const char *pPath, bool bDisplayInList );
	// The file was closed as it should be: it is no recovery candidate any more.
	void NoteFileClosed( const char *pPath );
	void NoteNewFile( const char *pName );
	void RemoveNewFile( const char *pName );
	void ClearRecentFiles();

	// At start, after the main window exists: after a crash, offers to open the latest
	// autosaves of the files that were open (see the file's comment for headless runs).
	void CheckForRecovery();
	// A headless run found files to recover and left them for the next interactive start.
	bool IsKeepingRecovery() const { return m_bKeepingRecovery; }

	void ReadSettings( const KeyValues3 *pRecentFiles, const KeyValues3 *pNewFiles );
	void WriteSettings( KeyValues3 *pRecentFiles, KeyValues3 *pNewFiles ) const;

	// The newest autosave of the file. True with its path in pResult when it is newer
	// than the file; false with the file itself in pResult when the file is newer or has
	// no autosave (pResult empty when the file doesn't exist either: then the answer is
	// true). False with pResult empty while autosaves are off or there is no autosave tree.
	bool FindLatestAutosave( const char *pPath, CUtlString *pResult );
	// The file an autosave was made from (autosavenames.h).
	void GetOriginalFileName( const char *pAutosavePath, CUtlString *pOut ) const;
	// "<content root>_toolsautosave\<tool name>\"; empty without a content root.
	void GetAutosaveRoot( CUtlString *pRoot ) const;
	// The next autosave name of the file. The autosave directory is checked (and made) on
	// the way; a fault there tells the user, turns autosaves off and answers false.
	bool MakeAutosaveName( const char *pPath, const char *pExtension, CUtlString *pName );

	const std::vector<AutosaveFileEntry_t> &GetRecentFiles() const { return m_RecentFiles; }
	const std::vector<CUtlString> &GetNewFiles() const { return m_NewFiles; }
	bool IsNewFile( const char *pName ) const;

private:
	// An autosave on disk that belongs to one file.
	struct AutosaveFile_t
	{
		CUtlString m_strPath;
		int m_nNumber = 0;
		int64_t m_nTime = 0;
	};

	int FindRecentFile( const char *pPath ) const;
	AutosaveFileEntry_t *FindRecentEntry( const char *pPath );
	void TrimRecentFiles();
	void MarkSettingsDirty();
	void DisableAutosaves( const char *pTitle, const char *pText );
	bool IsKeptCandidate( const char *pPath ) const;

	// The extension an autosave of the session takes: the file's own, or for a document
	// not yet saved, the one its save filter offers. False when there is none.
	bool GetAutosaveExtension( const CBaseEditorSession *pSession, const char *pPath, CUtlString *pExtension ) const;
	bool CheckAutosaveDirectory( const char *pDirectory );
	// Autosaves of the file in pDirectory, in the directory's order. pExtension limits them
	// to that extension; null takes every one of the base name.
	std::vector<AutosaveFile_t> ListAutosavesOf( const char *pDirectory, const char *pPath, const char *pExtension ) const;
	int ChooseAutosaveNumber( const char *pDirectory, const char *pPath ) const;
	// Removes the oldest autosaves below the directory while they take more than the limit,
	// never the one just written.
	void KeepWithinSpace( const char *pDirectory, const char *pJustWritten );
	// Whether another file of the directory has the same name but for case.
	bool HasCaseTwin( const char *pPath ) const;
	void RecoverFiles( const std::vector<CUtlString> &entries, const std::vector<CUtlString> &newFiles );

	CBaseEditorApp *m_pApp = nullptr;
	std::vector<AutosaveFileEntry_t> m_RecentFiles;
	std::vector<CUtlString> m_NewFiles;
	FileExistsFn_t m_fnFileExists;
	int m_nMaxRecentFiles = 100;
	double m_flNextAutosaveTime = 0.0;
	bool m_bTimerStarted = false;
	bool m_bKeepingRecovery = false;
	// What a headless run left for the next interactive start: their marks stay.
	std::vector<CUtlString> m_KeptCandidates;
};

// Test mode or the -headless start option: runs that no one watches.
bool IsHeadlessEditorRun();
