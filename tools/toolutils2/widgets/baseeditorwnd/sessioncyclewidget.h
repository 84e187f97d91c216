#pragma once
// The popup that walks the open sessions: one button per session, the selected one in
// bold, its file below. It stays up while the key that keeps it active is held, and on
// closing makes the selected session current and brings up its window.
//
// Bind context "SessionCycleWidget": KeepActive (a modifier command: held while its key
// is down, also when the key went down before the popup came up), NextSession and
// PreviousSession.

#include <functional>
#include <vector>

#include <QFrame>
#include <QPointer>
#include <QVector>

#include "tools/toolutils2/inputbind/bindtarget.h"

class CBaseEditorApp;
class CBaseEditorSession;
class QLabel;
class QPushButton;
class QTimer;

class CQSessionCycleWidget : public QFrame, public IBindTarget
{
	Q_OBJECT

public:
	using KeepActiveQueryFn_t = std::function<bool()>;

	// nSelected indexes the application's session list; -1 selects none.
	CQSessionCycleWidget( CBaseEditorApp *pApp, int nSelected, QWidget *pCentreOn );
	~CQSessionCycleWidget() override;

	// Shows the popup at its size, centred on the window it was made for, with focus.
	void Popup();

	int GetSelectedIndex() const { return m_nSelected; }
	// Out of range selects none.
	void SetSelectedIndex( int nIndex );
	// The NextSession and PreviousSession commands: one step, wrapping around.
	void SelectNextSession();
	void SelectPreviousSession();

	// Whether the command that keeps the popup up is still held; by default the KeepActive
	// command's own state.
	void SetKeepActiveQuery( KeepActiveQueryFn_t fnIsKeepActiveHeld ) { m_fnIsKeepActiveHeld = std::move( fnIsKeepActiveHeld ); }

	int GetSessionButtonCount() const { return m_Buttons.size(); }
	QPushButton *GetSessionButton( int nIndex ) const { return m_Buttons.value( nIndex, nullptr ); }
	QLabel *GetFileNameLabel() const { return m_pFileNameLabel; }

	// IBindTarget
	const CBindTargetDescriptorBase *GetBindTargetDescriptor() const override;
	// The KeepActive command's gesture: from its press to its release or cancel.
	void SetKeepActiveHeld( bool bHeld ) { m_bKeepActiveHeld = bHeld; }
	bool IsKeepActiveCommandHeld() const { return m_bKeepActiveHeld; }

public slots:
	// Closes the popup once KeepActive has been let go.
	void CheckForKeepActive();
	// Selects the session of that index and closes, which activates it.
	void CloseAndSetActiveSession( int nIndex );

protected:
	bool event( QEvent *pEvent ) override;
	void closeEvent( QCloseEvent *pEvent ) override;

private:
	void UpdateSelection();
	CBaseEditorSession *GetSelectedSession() const;

	CBaseEditorApp *m_pApp;
	// The list as it was at opening; a session that closed meanwhile is skipped.
	std::vector<CBaseEditorSession *> m_Sessions;
	QVector<QPushButton *> m_Buttons;
	QLabel *m_pFileNameLabel = nullptr;
	QTimer *m_pKeepActiveTimer = nullptr;
	QPointer<QWidget> m_pCentreOn;
	KeepActiveQueryFn_t m_fnIsKeepActiveHeld;
	int m_nSelected = -1;
	bool m_bKeepActiveHeld = false;
	bool m_bClosed = false;
};
