#pragma once
// One open file of an editor. The framework (CBaseEditorApp) creates sessions through the
// tool, and drives new, open, save, reload and close through the virtual operations here;
// the tool fills in the file format.

#include <vector>

#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/sessionversioncontrol.h"

class CBaseEditorApp;
class IBaseEditorWindow;
class IEditorSessionListener;
// Only named here: the session side never builds a widget itself, a tool's session does.
class QMdiSubWindow;

// Answers of Open.
enum EditorOpenResult_t : int
{
	EDITOR_OPEN_FAILED = 0,
	EDITOR_OPEN_LOADED = 2,
	EDITOR_OPEN_LOADED_WITH_ERRORS = 3,
	EDITOR_OPEN_CONTENT_COPY = 4,
};

// What the version control layer says about the file.
enum EditorFileAction_t : int
{
	EDITOR_FILE_ACTION_NONE = 0,
	EDITOR_FILE_ACTION_ADD = 1,
	EDITOR_FILE_ACTION_EDIT = 2,
	EDITOR_FILE_ACTION_DELETE = 3,
	EDITOR_FILE_ACTION_INTEGRATE = 4,
};

class CBaseEditorSession
{
public:
	explicit CBaseEditorSession( CBaseEditorApp *pApp );
	virtual ~CBaseEditorSession();
	CBaseEditorSession( const CBaseEditorSession & ) = delete;
	CBaseEditorSession &operator=( const CBaseEditorSession & ) = delete;

	// False means the user cancelled.
	virtual bool QuerySave( bool bClearModified );
	virtual bool New( const char *pName ) = 0;
	virtual int Open( const char *pPath, CUtlString *pError ) = 0;
	virtual bool Reload() = 0;
	virtual void OnAdded() {}
	virtual void NotifyListeners( int nWhat );
	virtual bool SetFileName( const char *pPath );
	virtual bool IsModified() const = 0;
	virtual void SetModified( bool bModified ) = 0;
	// "" when none.
	virtual const char *GetFileName() const = 0;
	// A name for the first save.
	virtual bool GetSuggestedFileName( CUtlString * ) const { return false; }
	virtual void SetNeedsAutosave( bool bNeedsAutosave ) = 0;
	virtual bool NeedsAutosave() const = 0;
	virtual bool UsesCheckOut() const { return true; }
	virtual bool SaveToFile( const char *pOriginalPath, const char *pTargetPath, bool bAutosave ) = 0;
	virtual void GetSaveFilter( CUtlString *pFilter ) const { pFilter->Clear(); }
	virtual bool HasFile( const char *pPath ) const;
	virtual bool Close() { return QuerySave( true ); }
	virtual IBaseEditorWindow *GetWindow() const = 0;
	virtual void ApplyOpenContext( const void * ) {}
	virtual void AddToVersionControl();
	virtual void OnFileNameChanged() {}
	// The sub-window that shows this session in a window with a multi-document area; the
	// window owns it from then on. Null (the default) for a session that has none, such
	// as one shown in a view that all sessions share.
	virtual QMdiSubWindow *CreateSubWindow() { return nullptr; }

	// Works read only, version state and head mark out anew; answers whether any changed.
	bool UpdateFileStatus();
	// Mode 0: content-relative path; 1: file name with extension; other: base name. Then
	// the status suffixes and " *" when modified.
	void GetTitle( CUtlString *pOut, int nMode ) const;
	bool CanAddToVersionControl() const;
	bool CanCheckIn() const;
	bool CanCheckOut() const;
	void CheckOutIfNeeded();
	// The reload question; runs Reload unless the user keeps the changes.
	void ConfirmReload();

	void AddListener( IEditorSessionListener *pListener );
	void RemoveListener( IEditorSessionListener *pListener );

	CBaseEditorApp *GetApp() const { return m_pApp; }
	bool IsReadOnly() const { return m_bReadOnly; }
	bool IsLocked() const { return m_bLocked; }
	bool IsInVersionControl() const { return m_bInVersionControl; }
	int GetFileAction() const { return m_nFileAction; }
	bool IsNotAtHead() const { return m_bNotAtHead; }
	bool IsNewFile() const { return m_bNewFile; }
	void SetNewFile( bool bNewFile ) { m_bNewFile = bNewFile; }
	int GetFileNameChangeCount() const { return m_nFileNameChanges; }

	// A locked file is never autosaved: the autosave manager skips it and SetNeedsAutosave
	// keeps false.
	bool CanEverAutosave() const { return !m_bLocked; }

protected:
	// Stores the name without side effects; SetFileName adds the status and the listeners.
	virtual void StoreFileName( const char *pPath ) = 0;

	CBaseEditorApp *m_pApp;
	bool m_bReadOnly = true;
	bool m_bLocked = true;
	bool m_bInVersionControl = false;
	int m_nFileAction = EDITOR_FILE_ACTION_NONE;
	bool m_bNotAtHead = false;
	bool m_bNewFile = true;
	CSessionVersionControl m_VersionControl;
	int m_nFileNameChanges = 0;
	std::vector<IEditorSessionListener *> m_Listeners;
};

// A session that keeps its file name, modified mark and autosave mark itself.
class CSimpleBaseEditorSession : public CBaseEditorSession
{
public:
	using CBaseEditorSession::CBaseEditorSession;

	bool IsModified() const override { return m_bModified; }
	void SetModified( bool bModified ) override;
	const char *GetFileName() const override { return m_strFileName.Get(); }
	void SetNeedsAutosave( bool bNeedsAutosave ) override { m_bNeedsAutosave = bNeedsAutosave && CanEverAutosave(); }
	bool NeedsAutosave() const override { return m_bNeedsAutosave; }

protected:
	void StoreFileName( const char *pPath ) override { m_strFileName = pPath; }

	CUtlString m_strFileName;
	bool m_bModified = false;
	bool m_bNeedsAutosave = false;
};

// A session whose window is the application's one main window.
class CSimpleSharedWindowEditorSession : public CSimpleBaseEditorSession
{
public:
	explicit CSimpleSharedWindowEditorSession( CBaseEditorApp *pApp ) : CSimpleBaseEditorSession( pApp ), m_pSharedApp( pApp ) {}

	IBaseEditorWindow *GetWindow() const override;

protected:
	CBaseEditorApp *m_pSharedApp;
};
