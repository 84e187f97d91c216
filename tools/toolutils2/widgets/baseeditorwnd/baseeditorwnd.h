#pragma once
// The main window every editor of the family shares: the File menu with recent files, the
// layout saved into and restored from the tool settings, and a close that asks about
// unsaved work and then hides the window rather than destroying it.

#include <QMainWindow>
#include <QPointer>
#include <QVector>

#include "tools/toolutils2/baseeditorapp/ibaseeditorwindow.h"

class CBaseEditorApp;
class CQSessionCycleWidget;
class QAction;
class QDockWidget;
class QMenu;

class CQBaseEditorWnd : public QMainWindow, public IBaseEditorWindow
{
	Q_OBJECT

public:
	explicit CQBaseEditorWnd( QWidget *pParent = nullptr );
	~CQBaseEditorWnd() override;

	// Takes the application: title, settings link, children and the File menu.
	void SetApplication( CBaseEditorApp *pApp );
	CBaseEditorApp *GetApplication() const { return m_pApp; }

	// IBaseEditorWindow
	void BringUp() override;
	void TakeFocus() override;
	void SetWindowTitleText( const char *pTitle ) override;
	void SaveLayout( KeyValues3 *pTable ) override;
	void RestoreLayout( const KeyValues3 *pTable ) override;
	// Opens the popup, or moves its selection to nSelected when it is already up.
	void ShowSessionCycling( int nSelected ) override;

	QMenu *GetFileMenu() const { return m_pFileMenu; }
	QMenu *GetRecentFilesMenu() const { return m_pRecentFilesMenu; }
	// Docks that hiding the window has hidden, to come back with it.
	const QVector<QDockWidget *> &GetHiddenFloatingDocks() const { return m_HiddenFloatingDocks; }
	// The session cycling popup while it is up, else null.
	CQSessionCycleWidget *GetSessionCycleWidget() const;

signals:
	void WindowStateChanged();
	// The window hid itself after all sessions closed: the host may quit.
	void EditorWindowHidden();

public slots:
	void OnFileNew();
	void OnFileOpen();
	void OnFileSave();
	void OnFileSaveAs();
	void OnFileClose();
	void OnFileReload();
	void UpdateFileMenu();
	void RebuildRecentFilesMenu();
	void LoadRecentFile( QAction *pAction );
	void OnMarkSettingsDirty();

protected:
	// Tool hooks.
	virtual void CreateChildren() {}
	virtual void CreateFileMenu( QMenu * ) {}
	virtual void SaveToolWindowSettings( KeyValues3 * ) {}
	virtual void RestoreToolWindowSettings( const KeyValues3 * ) {}
	// Menus of the window itself, after the File menu and what the tool added to the bar.
	virtual void CreateWindowMenus() {}

	void closeEvent( QCloseEvent *pEvent ) override;
	void changeEvent( QEvent *pEvent ) override;
	void moveEvent( QMoveEvent *pEvent ) override;
	void resizeEvent( QResizeEvent *pEvent ) override;

	QAction *m_pFileNewAction = nullptr;
	QAction *m_pFileOpenAction = nullptr;
	QAction *m_pFileReloadAction = nullptr;
	QAction *m_pFileSaveAction = nullptr;
	QAction *m_pFileSaveAsAction = nullptr;
	QAction *m_pFileCloseAction = nullptr;
	QAction *m_pClearRecentFilesAction = nullptr;
	QAction *m_pExitAction = nullptr;
	// The last RestoreLayout put the docks where a saved state had them.
	bool m_bLayoutStateRestored = false;

private:
	void BuildFileMenu();

	CBaseEditorApp *m_pApp = nullptr;
	QMenu *m_pFileMenu = nullptr;
	QMenu *m_pRecentFilesMenu = nullptr;
	QVector<QDockWidget *> m_HiddenFloatingDocks;
	QPointer<CQSessionCycleWidget> m_pSessionCycleWidget;
};
