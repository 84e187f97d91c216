#pragma once
// The editor window whose centre is a multi-document area: each session that makes a
// sub-window shows in it, activating a sub-window makes its session current, and closing
// one closes its session (asking about unsaved changes first).
//
// A window whose sessions all share one view can put that view in the centre instead
// (ReplaceMdiArea); sessions then make no sub-windows and everything else stays.

#include <QHash>
#include <QPointer>

#include "tools/toolutils2/widgets/baseeditorwnd/baseeditorwnd.h"

class CBaseEditorSession;
class CQMdiArea;
class QMdiSubWindow;

class CQBaseEditorMdiWnd : public CQBaseEditorWnd
{
	Q_OBJECT

public:
	explicit CQBaseEditorMdiWnd( QWidget *pParent = nullptr );
	~CQBaseEditorMdiWnd() override;

	// Null once a derived window has replaced the area.
	CQMdiArea *GetMdiArea() const;
	QMdiSubWindow *FindSubWindow( const CBaseEditorSession *pSession ) const;
	CBaseEditorSession *FindSubWindowSession( QMdiSubWindow *pSubWindow ) const;

	// IBaseEditorWindow
	void OnSessionAdded( CBaseEditorSession *pSession ) override;
	void OnSessionRemoved( CBaseEditorSession *pSession ) override;
	void OnActiveSessionChanged( CBaseEditorSession *pSession ) override;

public slots:
	// The session of the sub-window becomes current, without history and without showing.
	void SubWindowActivated( QMdiSubWindow *pSubWindow );

protected:
	// Puts pCentral in the middle instead of the area; the area and its menu go.
	void ReplaceMdiArea( QWidget *pCentral );
	void CreateWindowMenus() override;
	bool eventFilter( QObject *pWatched, QEvent *pEvent ) override;

private:
	void ForgetSubWindow( QMdiSubWindow *pSubWindow );
	// Makes the area's active sub-window the session's (none for a session without one).
	void SyncAreaToSession( CBaseEditorSession *pSession );

	QPointer<CQMdiArea> m_pMdiArea;
	QHash<QMdiSubWindow *, CBaseEditorSession *> m_SubWindowSessions;
	// Set while the window itself moves the area's activation, so that the signal it
	// causes doesn't come back as a user's choice.
	bool m_bSyncingActivation = false;
};
