#pragma once
// The dark red bar over the preview that says the shown system is at another behaviour
// version than the running one, with the two upgrades: the system alone, or the system
// and every enabled child below it (children open in the editor are upgraded in memory,
// closed ones written). It follows the preview's session and hides at the current version.

#include <functional>

#include <QToolBar>

#include "tools/toolutils2/toolevents/tooleventmapregistrationhelper.h"

class CZolSession;
class QLabel;
class QToolButton;
struct ZolEvent_DocumentReplaced_t;
struct ZolEvent_PreviewSessionChanged_t;

class CQZolStaleVersionToolBar : public QToolBar
{
	Q_OBJECT

public:
	// Asks before an upgrade from the version; true to go on.
	using ConfirmFn_t = std::function<bool( int nFromVersion )>;

	explicit CQZolStaleVersionToolBar( QWidget *pParent = nullptr );
	~CQZolStaleVersionToolBar() override;

	// The session shown; the application's preview session follows it through the event.
	void SetSession( CZolSession *pSession );
	CZolSession *GetSession() const { return m_pSession; }
	void Refresh();

	// Tests answer the question themselves; without an answerer the dialog asks, and a
	// batch run answers Cancel.
	void SetConfirmFn( ConfirmFn_t fn ) { m_fnConfirm = std::move( fn ); }

	QLabel *GetLabel() const { return m_pLabel; }
	QToolButton *GetUpgradeButton() const { return m_pUpgradeButton; }
	QToolButton *GetUpgradeChildrenButton() const { return m_pUpgradeChildrenButton; }

public slots:
	void UpgradeVersion();
	void UpgradeVersionRecursively();

private:
	void OnPreviewSessionChanged( const ZolEvent_PreviewSessionChanged_t &event );
	void OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & );
	bool Confirm( int nFromVersion );
	// False, with the user told, for a system newer than the running version.
	bool RefuseNewer();

	CZolSession *m_pSession = nullptr;
	QLabel *m_pLabel = nullptr;
	QToolButton *m_pUpgradeButton = nullptr;
	QToolButton *m_pUpgradeChildrenButton = nullptr;
	ConfirmFn_t m_fnConfirm;
	CToolEventMapRegistrationHelper<CQZolStaleVersionToolBar> m_EventMap;
};
