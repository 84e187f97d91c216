#pragma once
// The particle editor's application: one per process, found by the host through the
// module's CreateInterface. It owns the main window, the sessions (through the framework)
// and the event hub that every session and document forwards to.

#include <functional>
#include <memory>
#include <vector>

#include "core/host/iresourcesystem.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/simpleeditorsharedwindowapp.h"
#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/zol/editor/particleassetcompiler.h"
#include "tools/toolutils2/toolevents/tooleventdispatcher.h"
#include "zoldoc_lib/izoleventhub.h"
#include "zoldoc_lib/zolworkingset.h"

class CPulseValueFullType;
class CQZolMainWnd;
class CQZolVariableConvertDialog;
class CZolNamedValueContext;
class CZolSession;

// The hub: a dispatcher that hears every session's and document's events after their own.
class CZolEventHub final : public IZolEventHub
{
public:
	CToolEventDispatcher *GetEventDispatcher() override { return m_nSuspendCount > 0 ? nullptr : &m_Events; }
	void Suspend() { ++m_nSuspendCount; }
	void Resume() { --m_nSuspendCount; }
	bool IsSuspended() const { return m_nSuspendCount > 0; }

private:
	CToolEventDispatcher m_Events;
	int m_nSuspendCount = 0;
};

class IAsset;

class CZolApp : public CSimpleEditorSharedWindowApp<CZolSession, CQZolMainWnd>, public IResourceListener, public IBindTarget
{
public:
	CZolApp();
	~CZolApp() override;

	// CBaseToolSystem2 / CBaseEditorApp
	const char *const *GetNeededInterfaces() const override;
	void OnOpenRequest( const ToolOpenRequest_t &request ) override;
	const char *GetCommandContextName() const override { return "ZolCommands"; }
	const char *GetApplicationName() const override { return "Zol"; }
	bool Init() override;
	void RunFrame() override;
	void Shutdown() override;
	void DestroySession( CBaseEditorSession *pSession ) override;
	void SessionActivated( CBaseEditorSession *pOld, CBaseEditorSession *pNew ) override;
	// The framework's steps, and "set KEY VALUE" (an edit of a member of the active
	// definition's root, as the property panel makes it) and "get KEY" (zolappscript.cpp).
	bool RunScriptStep( const char *pStep, CUtlString *pOutput ) override;
	// "select base", "select Emitter 0" or "select cp 1": selects in the active definition.
	bool RunSelectStep( const char *pArgs, CUtlString *pOutput );
	// Not while a dialog is up: a question may stand in the middle of an operation.
	bool CanAutosaveNow() override;
	bool OfferSync( const char * ) override { return true; }
	bool CheckOtherUsers( const char * ) override { return true; }
	void OnFileOpened( CBaseEditorSession *pSession, const char *pPath ) override;
	void RestoreToolSettings( const KeyValues3 *pTable ) override;
	void SaveToolSettings( KeyValues3 *pTable ) override;
	CBaseEditorSession *GetOtherSession( CBaseEditorSession *pSession ) override;
	IBaseEditorWindow *GetMainWindow() override;

	// IBindTarget: the commands of context "ZolApp" (zolappcommands.cpp).
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;

	// The preview commands: they run on the main window's preview (without a window, the
	// log says that none runs).
	void RestartPreview();
	void RestartGlobal();
	void StopSimulation( bool bPlayEndCaps );
	// IResourceListener: compiled particle systems that changed get their asset's
	// thumbnail refreshed.
	void OnResourcesReloaded( const CUtlVector<ResourceChange_t> &changes ) override;
	// Where refreshed thumbnails go; the asset preview service installs itself here.
	using AssetPreviewUpdateFn_t = std::function<void( IAsset * )>;
	void SetAssetPreviewUpdater( AssetPreviewUpdateFn_t fn ) { m_fnAssetPreviewUpdate = std::move( fn ); }

	// After a save under a new path: the asset of the old name leaves the asset list and
	// the session's new asset takes its place where the session shows.
	void OnSessionSaved( CZolSession *pSession, const char *pOldAssetName );
	// A line for the status bar; severity 3 marks a warning. The last one is kept.
	void ShowStatusMessage( const char *pText, int nSeverity );
	const char *GetLastStatusMessage() const { return m_strLastStatus.Get(); }
	bool IsScreenSpaceOverlayAllowed() const { return m_bAllowScreenSpaceOverlay; }
	bool IsScreenSpaceOverlayShown() const { return m_bShowScreenSpaceOverlay; }
	void SetScreenSpaceOverlayShown( bool bShow ) { m_bShowScreenSpaceOverlay = bShow; }

	CZolEventHub *GetEventHub() const { return m_pEventHub.get(); }
	// The particle systems open in the editor, newest first: the asset pane's view of them.
	CZolWorkingSet *GetWorkingSet() { return &m_WorkingSet; }
	IAssetCompiler *GetParticleCompiler() { return &m_ParticleCompiler; }
	CQZolMainWnd *GetZolMainWindow() const { return m_pMainWnd; }
	CZolSession *GetPreviewSession() const { return m_pPreviewSession; }
	void SetPreviewSession( CZolSession *pSession );
	bool IsPreviewSessionLocked() const { return m_bPreviewSessionLocked; }
	void SetPreviewSessionLocked( bool bLocked ) { m_bPreviewSessionLocked = bLocked; }
	CZolSession *GetActiveZolSession() const;

	// "Open All In Directory".
	void OpenDirectory( const char *pDirectory );
	void ShowOpenDirectoryDialog();
	const std::vector<CUtlString> &GetRecentDirectories() const { return m_RecentDirectories; }
	// Saves each modified session through the framework.
	void SaveAllSessions();

	// The clipboard: in-process text unless the window installs the system's.
	void SetClipboardText( const char *pText );
	void GetClipboardText( CUtlString *pText ) const;
	using ClipboardSetFn_t = std::function<void( const char * )>;
	using ClipboardGetFn_t = std::function<CUtlString()>;
	void SetClipboardHooks( ClipboardSetFn_t fnSet, ClipboardGetFn_t fnGet );

	// A refused command's beep; headless runs have nothing to beep with and only count it.
	void Beep();
	int GetBeepCount() const { return m_nBeepCount; }

	// Asks for a new variable's name and type: the add variable dialog over the main
	// window. Without a window (a batch run) nothing is asked, the log says so, and the
	// answer is no. Tests install their own way of answering.
	bool RunAddVariableDialog( CZolNamedValueContext *pContext, CUtlString *pName, CPulseValueFullType *pType );
	using AddVariableDialogFn_t = std::function<bool( CZolNamedValueContext *, CUtlString *, CPulseValueFullType * )>;
	void SetAddVariableDialogRunner( AddVariableDialogFn_t fn ) { m_fnAddVariableDialog = std::move( fn ); }

	// "Convert Control Point #N to Variable" for the session's family: the one dialog of
	// the application, made at first use over the window and kept.
	void ShowVariableConvertDialog( CZolSession *pSession, int nControlPoint );
	CQZolVariableConvertDialog *GetVariableConvertDialog() const { return m_pVariableConvertDialog; }

	// Whether the main window is made by Init; tests of the logic run without one.
	void SetCreatesMainWindow( bool bCreate ) { m_bCreatesMainWindow = bCreate; }

private:
	CQZolMainWnd *m_pMainWnd = nullptr;
	CQZolVariableConvertDialog *m_pVariableConvertDialog = nullptr;
	std::unique_ptr<CZolEventHub> m_pEventHub;
	// Turns edited and loaded definitions into what the preview simulates.
	CParticleAssetCompiler m_ParticleCompiler;
	bool m_bParticleCompilerRegistered = false;
	std::vector<CUtlString> m_RecentDirectories;
	bool m_bPreviewSessionLocked = false;
	bool m_bAllowScreenSpaceOverlay = false;
	bool m_bShowScreenSpaceOverlay = false;
	CZolSession *m_pPreviewSession = nullptr;
	bool m_bCreatesMainWindow = true;
	bool m_bResourceListenerAdded = false;
	AssetPreviewUpdateFn_t m_fnAssetPreviewUpdate;
	CUtlString m_strLastStatus;
	CUtlString m_strClipboard;
	ClipboardSetFn_t m_fnClipboardSet;
	ClipboardGetFn_t m_fnClipboardGet;
	AddVariableDialogFn_t m_fnAddVariableDialog;
	CZolWorkingSet m_WorkingSet;
	int m_nBeepCount = 0;
};

// The one application of the module.
CZolApp *ZolApp();
