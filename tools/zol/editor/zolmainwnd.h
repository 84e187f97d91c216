#pragma once
// The particle editor's one window, shared by all sessions: docks around the centre, the
// File, Edit and View menus, and a status bar. It holds no editing state: it hands the
// current session to each panel. All sessions share the one preview in the middle, so
// they make no sub-windows and the preview takes the multi-document area's place.

#include <memory>

#include "tools/toolutils2/inputbind/bindtarget.h"
#include "tools/toolutils2/widgets/baseeditorwnd/baseeditormdiwnd.h"

class CQParticleFunctionList;
class CQZolAssetPane;
class CQInputBindEditor;
class CQInputBindMenu;
class CQInputDebugger;
class IAsset;
class CQZolReferenceNavigatorWidget;
class CQZolStaleVersionToolBar;
class CQParticlePreview;
class CQParticlePreviewControls;
class CQZolPropertyWidget;
class CZolKV3PropertyDomain;
class CQUndoHistoryWidget;
class CZolSession;
class QDockWidget;
class QLabel;
class QStatusBar;

class CQZolMainWnd : public CQBaseEditorMdiWnd
{
	Q_OBJECT

public:
	explicit CQZolMainWnd( QWidget *pParent = nullptr );
	~CQZolMainWnd() override;

	void RunFrame();
	// Frames run so far; the panels that follow time read it.
	int GetFrameCount() const { return m_nFrameCount; }
	void SessionActivated( CZolSession *pOld, CZolSession *pNew );
	// The session is going away: drop every pointer to it.
	void ForgetSession( CZolSession *pSession );
	// The session loaded or saved its file: the panels that show it read it again.
	void OnSessionFileChanged( CZolSession *pSession );
	void ResetLayout();

	// The live preview in the middle.
	CQParticlePreview *GetPreview() const { return m_pPreview; }
	CQParticleFunctionList *GetFunctionList() const { return m_pFunctionList; }
	CQParticlePreviewControls *GetPreviewControls() const { return m_pPreviewControls; }
	QDockWidget *GetControlsDock() const { return m_pControlsDock; }
	CQZolAssetPane *GetAssetPane() const { return m_pAssetPane; }
	QDockWidget *GetAssetPaneDock() const { return m_pAssetPaneDock; }
	QDockWidget *GetFunctionDock() const { return m_pFunctionDock; }
	CQZolPropertyWidget *GetPropertyWidget() const { return m_pPropertyWidget; }
	QDockWidget *GetPropertyDock() const { return m_pPropertyDock; }
	CZolKV3PropertyDomain *GetPropertyDomain() const { return m_pDomain.get(); }
	QDockWidget *GetUndoDock() const { return m_pUndoDock; }
	CQUndoHistoryWidget *GetUndoHistoryWidget() const { return m_pUndoHistoryWidget; }
	QMenu *GetEditMenu() const { return m_pEditMenu; }
	QAction *GetEditAction( int nIndex ) const { return m_EditActions[ nIndex ]; }
	// Forwards the session commands (context "ZolSession") to the shown session.
	IBindTarget *GetSessionCommandTarget() { return &m_SessionTarget; }
	// The File menu's actions of the application's commands.
	QAction *GetFileSaveAction() const { return m_pFileSaveAction; }
	QAction *GetOpenDirectoryAction() const { return m_pOpenDirectoryAction; }
	QAction *GetSaveAllAction() const { return m_pSaveAllAction; }
	QAction *GetCloseAllAction() const { return m_pCloseAllAction; }
	QMenu *GetViewMenu() const { return m_pViewMenu; }
	CQInputBindMenu *GetHelpMenu() const { return m_pHelpMenu; }
	// The key bindings window, once "Show Key Bindings" made it; else null.
	CQInputBindEditor *GetInputBindEditor() const;
	CQInputDebugger *GetInputDebugger() const { return m_pInputDebugger; }
	QMenu *GetRecentDirectoriesMenu() const { return m_pRecentDirectoriesMenu; }
	// At most this many recent directories show in the submenu.
	static constexpr int MAX_RECENT_DIRECTORIES_SHOWN = 10;

	// Asset maintenance: the bar of a stale behaviour version over the preview, and the
	// reference navigator's dock.
	CQZolStaleVersionToolBar *GetStaleVersionToolBar() const { return m_pStaleVersionToolBar; }
	CQZolReferenceNavigatorWidget *GetReferenceNavigator() const { return m_pReferenceNavigator; }
	QDockWidget *GetReferenceNavigatorDock() const { return m_pReferenceNavigatorDock; }

	enum EditAction_t
	{
		EDIT_CUT,
		EDIT_COPY,
		EDIT_PASTE,
		EDIT_UNDO,
		EDIT_REDO,
		EDIT_ACTION_COUNT
	};

public slots:
	void UpdateEditMenu();
	void OnToggleWindwLock( bool bLocked );
	// The property panel's notice of an edit: the function list shows what it changed.
	void OnPropertyAttributeModified( const QString &name, int nModifyType );
	// One selected system with a session that isn't shown: its session is shown.
	void OnZolAssetPaneSelectionChanged();
	void OnOpenSession( IAsset *pAsset );
	void RebuildRecentDirectoriesSubmenu();
	// Opens the trace of the key bindings at work ("Input Debugger").
	void ShowInputDebugger();
	void LoadRecentDirectory( QAction *pAction );
	// Shows the navigator, reads the modifier table again and rebuilds it.
	void ShowReferenceNavigatorWidget();

protected:
	void CreateChildren() override;
	void CreateFileMenu( QMenu *pMenu ) override;
	void SaveToolWindowSettings( KeyValues3 *pTable ) override;
	void RestoreToolWindowSettings( const KeyValues3 *pTable ) override;
	void showEvent( QShowEvent *pEvent ) override;

private:
	// Shares the window's width out between the docks and the preview.
	void ApplyDefaultDockSizes();

	QDockWidget *MakeDock( const char *pTitle, const char *pObjectName, QWidget *pContent, int nWidth, int nHeight );
	CZolSession *GetCurrentSession() const;
	// The stale version bar, the navigator's dock and its View menu entry.
	void CreateAssetMaintenanceChildren();

	CQZolAssetPane *m_pAssetPane = nullptr;
	QDockWidget *m_pAssetPaneDock = nullptr;
	QDockWidget *m_pFunctionDock = nullptr;
	QDockWidget *m_pControlsDock = nullptr;
	QDockWidget *m_pUndoDock = nullptr;
	QStatusBar *m_pStatusBar = nullptr;
	CQParticleFunctionList *m_pFunctionList = nullptr;
	CQParticlePreviewControls *m_pPreviewControls = nullptr;
	// The property panel's domain; it is also the named value context of the shown
	// session for the panels that add or pick variables.
	std::unique_ptr<CZolKV3PropertyDomain> m_pDomain;
	CQZolPropertyWidget *m_pPropertyWidget = nullptr;
	QDockWidget *m_pPropertyDock = nullptr;
	QMenu *m_pViewMenu = nullptr;
	QMenu *m_pRecentDirectoriesMenu = nullptr;
	CQInputBindMenu *m_pHelpMenu = nullptr;
	CQInputDebugger *m_pInputDebugger = nullptr;
	// The default layout waits for the window's first showing to know its size.
	bool m_bDefaultSizesPending = false;
	QMenu *m_pEditMenu = nullptr;
	QAction *m_EditActions[ EDIT_ACTION_COUNT ] = {};
	CBindTargetProxy m_SessionTarget;
	CQUndoHistoryWidget *m_pUndoHistoryWidget = nullptr;
	CQParticlePreview *m_pPreview = nullptr;
	QAction *m_pOpenDirectoryAction = nullptr;
	QAction *m_pSaveAllAction = nullptr;
	QAction *m_pCloseAllAction = nullptr;
	int m_nFrameCount = 0;
	CQZolStaleVersionToolBar *m_pStaleVersionToolBar = nullptr;
	CQZolReferenceNavigatorWidget *m_pReferenceNavigator = nullptr;
	QDockWidget *m_pReferenceNavigatorDock = nullptr;
};
