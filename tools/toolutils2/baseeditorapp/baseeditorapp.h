#pragma once
// The application half of every document editor: the list of sessions, the current one and
// the history of current ones, new, open, save, save as, reload and close with their
// questions and checks, untitled names, recent files and the tool settings. It knows no
// file format: a tool fills in the hooks and makes its own sessions.
//
// Every message and question goes through the prompt layer (core/host/iprompt.h), so the
// logic runs the same under tests, in batch and with real dialogs.

#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/autosavemanager.h"
#include "tools/toolutils2/baseeditorapp/basetoolsystem2.h"
#include "tools/toolutils2/baseeditorapp/editorpathcheck.h"
#include "tools/toolutils2/baseeditorapp/editorsessionhistory.h"

class CBaseEditorSession;
class IBaseEditorWindow;

class CBaseEditorApp : public CBaseToolSystem2
{
public:
	CBaseEditorApp();
	~CBaseEditorApp() override;

	// CBaseToolSystem2
	void ShutdownTool() override;
	bool StartTool( int nToolId ) override;
	void OnOpenRequest( const ToolOpenRequest_t &request ) override;
	void Frame() override;
	bool CloseRefused() override { return !CloseAllSessions(); }

	virtual CBaseEditorSession *NewSession();
	virtual CBaseEditorSession *OpenFile( const char *pPath, bool bTrackRecent, const void *pExtra = nullptr );
	virtual IBaseEditorWindow *GetActiveWidget() { return GetMainWindow(); }
	virtual const char *GetToolTitle() const { return m_strToolName.Get(); }
	// The name the user knows the program by, in questions such as the recovery's.
	virtual const char *GetApplicationName() const { return GetToolTitle(); }
	virtual const char *GetCommandContextName() const { return m_strToolName.Get(); }

	// Hooks of the tool.
	virtual bool Init() { return true; }
	virtual void RunFrame() {}
	virtual void Shutdown() {}
	virtual void ShutdownDone() {}
	virtual CBaseEditorSession *CreateSession() = 0;
	virtual void DestroySession( CBaseEditorSession *pSession ) = 0;
	virtual void SessionActivated( CBaseEditorSession *, CBaseEditorSession * ) {}
	virtual bool CanSaveSession( CBaseEditorSession * ) { return true; }
	virtual void OnFileStatesRefreshed() {}
	virtual bool SupportsVersionControl() const { return true; }
	virtual bool SupportsAutosave() const { return true; }
	// The autosave timer's permission: false puts the autosave off by a second. By default
	// not while a file is being opened.
	virtual bool CanAutosaveNow() { return !m_bOpening; }
	virtual bool SessionWantsFile( CBaseEditorSession *, const char * ) { return false; }
	virtual bool CanOpenFile( const char * ) { return true; }
	virtual void ReadToolSettingsEarly( const KeyValues3 * ) {}
	virtual bool HasVersionControlMenu() const { return true; }
	virtual bool OfferSync( const char *pPath );
	virtual bool CheckOtherUsers( const char *pPath );
	virtual void OnFileOpened( CBaseEditorSession *, const char * ) {}
	virtual void RestoreToolSettings( const KeyValues3 * ) { m_pSettingsLabel = "AppRestoreToolSettings"; }
	virtual void SaveToolSettings( KeyValues3 * ) { m_pSettingsLabel = "AppSaveToolSettings"; }
	virtual bool CanCloseSession( CBaseEditorSession * ) { return true; }
	virtual CBaseEditorSession *GetOtherSession( CBaseEditorSession * ) { return nullptr; }
	virtual bool UsesModFileLists() const { return false; }
	virtual int GetMaxRecentFiles() const { return 100; }
	virtual IBaseEditorWindow *GetMainWindow() = 0;

	CBaseEditorSession *GetActiveSession() const { return m_pActiveSession; }
	void SetActiveEditorSession( CBaseEditorSession *pSession, bool bSkipHistory, bool bShowWindow );
	// False when the user cancelled a save question; true also when nothing was done.
	bool CloseSession( CBaseEditorSession *pSession );
	bool CloseAllSessions();
	CBaseEditorSession *FindSessionByFile( const char *pPath ) const;
	bool SaveSession( CBaseEditorSession *pSession );
	bool SaveSessionAs( CBaseEditorSession *pSession );
	void ActivateNextEditorSession();
	void ActivatePreviousEditorSession();
	// Opens the session cycling popup on the main window with the session one step from
	// the active one selected. Answers the selected index (-1 when there are no sessions).
	int OpenSessionCycling( bool bForward );
	// The position of a session in the list, -1 when it isn't there.
	int FindSessionIndex( const CBaseEditorSession *pSession ) const;
	void MarkSettingsDirty() { m_bSettingsDirty = true; }
	void SaveSettings( IBaseEditorWindow *pWindow );
	void ShowOpenDialog();
	// The FileReload command on the active session.
	void ReloadActiveSession();
	// The FileSave command: focus to the window first, so an editor in progress commits.
	bool SaveActiveSession();
	CBaseEditorSession *OpenAsset( const char *pContentPath, bool bTrackRecent, const void *pExtra );

	// The version control commands, on the active session (check in all: every session).
	// Where version control can't act the user is told why; false when nothing was done.
	bool VersionControlAdd();
	bool VersionControlCheckOut();
	bool VersionControlCheckIn();
	bool VersionControlCheckInAll();
	bool VersionControlStatus();

	const std::vector<CBaseEditorSession *> &GetSessions() const { return m_Sessions; }
	const CEditorSessionHistory &GetSessionHistory() const { return m_SessionHistory; }
	CAutosaveManager &GetAutosaveManager() { return m_AutosaveManager; }
	const CEditorSettings &GetEditorSettings() const { return m_EditorSettings; }
	// Every change of the editor settings comes here, and the settings are stored at once.
	void ChangeEditorSettings( const CEditorSettings &settings );
	// Writes the settings now, not at the next frame: for what must survive a crash.
	void StoreSettingsNow() { SaveSettings( GetMainWindow() ); }

	// A step of a scripted run (the tools host's --do option: crash tests, demonstrations):
	// "new" makes a new document, "autosave" does what the autosave timer does when its
	// time comes, "report" lists the sessions with their marks. A tool adds steps of its
	// own. Answers what to tell the user, or false with the reason in pOutput.
	virtual bool RunScriptStep( const char *pStep, CUtlString *pOutput );

	// Untitled names: "<default directory>\<prefix><n>", n one counter per process.
	void MakeUntitledName( CUtlString *pName );

	bool IsOpening() const { return m_bOpening; }
	bool IsShutdown() const { return m_bShutdown; }
	bool AreSettingsDirty() const { return m_bSettingsDirty; }
	const char *GetOpenFilter() const { return m_strOpenFilter.Get(); }
	const char *GetSaveFilter() const { return m_strSaveFilter.Get(); }
	const char *GetDefaultDirectory() const { return m_strDefaultDirectory.Get(); }
	const char *GetLastLoadDirectory() const { return m_strLastLoadDirectory.Get(); }
	const char *GetLastSaveDirectory() const { return m_strLastSaveDirectory.Get(); }
	const char *GetToolName() const { return m_strToolName.Get(); }
	const KeyValues3 &GetRememberedLayout() const { return m_RememberedLayout; }
	// The settings as the host stores them: built by SaveSettings, read by StartTool.
	const KeyValues3 &GetStoredSettings() const { return m_StoredSettings; }

protected:
	// Called by the tool from Init.
	void SetToolName( const char *pName ) { m_strToolName = pName; }
	void SetOpenFilter( const char *pFilter ) { m_strOpenFilter = pFilter; }
	void SetSaveFilter( const char *pFilter ) { m_strSaveFilter = pFilter; }
	void SetUntitledPrefix( const char *pPrefix ) { m_strUntitledPrefix = pPrefix; }
	void SetDefaultDirectory( const char *pDirectory ) { m_strDefaultDirectory = pDirectory; }
	void SetAllowGameFiles( bool bAllow ) { m_bAllowGameFiles = bAllow; }
	void SetSkipContentCheck( bool bSkip ) { m_bSkipContentCheck = bSkip; }
	void SetMultipleOpen( bool bMultiple ) { m_bMultipleOpen = bMultiple; }

	// Reads and writes the host's per-tool settings store.
	virtual bool LoadSettingsTable( KeyValues3 *pTable );
	virtual void StoreSettingsTable( const KeyValues3 &table );

	// The save target check; false after telling the user why.
	bool CheckSaveTarget( CBaseEditorSession *pSession, const char *pPath );
	bool IsInContent( const char *pPath ) const;

	CUtlString m_strLastLoadDirectory;
	CUtlString m_strOpenFilter = "All Files (*)";
	CBaseEditorSession *m_pActiveSession = nullptr;
	std::vector<CBaseEditorSession *> m_Sessions;
	bool m_bShutdown = false;
	CUtlString m_strLastSaveDirectory;
	CUtlString m_strSaveFilter = "All Files (*)";
	CUtlString m_strDefaultDirectory;
	CUtlString m_strUntitledPrefix = "untitled_";
	CAutosaveManager m_AutosaveManager;
	CEditorSettings m_EditorSettings;
	KeyValues3 m_RememberedLayout;
	bool m_bSettingsDirty = false;
	double m_flLastSettingsSave = 0.0;
	bool m_bAllowGameFiles = false;
	bool m_bSkipContentCheck = false;
	bool m_bMultipleOpen = false;
	bool m_bOpening = false;
	const char *m_pSettingsLabel = nullptr;
	CEditorSessionHistory m_SessionHistory;

private:
	CBaseEditorSession *OpenFileSteps( const char *pPath, bool bTrackRecent );
	bool ResolveOpenPath( const char *pPath, CUtlString *pFullPath ) const;
	bool ConfirmOutsideContent( const char *pPath );
	// Tells the user and answers true for an autosave whose original is open.
	bool RefuseAutosaveOfOpenFile( const char *pPath );
	void RemoveSessionFromList( CBaseEditorSession *pSession );
	bool ChooseSaveAsPath( CBaseEditorSession *pSession, CUtlString *pChosen );
	bool IsUntitledNameTaken( const char *pBaseName ) const;
	// Tells the session's window (or the main window) about the list and the active one.
	IBaseEditorWindow *GetWindowOf( CBaseEditorSession *pSession );

	CUtlString m_strToolName;
	KeyValues3 m_StoredSettings;
};
