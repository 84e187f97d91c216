#include "tools/toolutils2/widgets/baseeditorwnd/baseeditormdiwnd.h"

#include <QCloseEvent>
#include <QMdiSubWindow>
#include <QMenu>
#include <QMenuBar>

#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/widgets/baseeditorwnd/mdiarea.h"

CQBaseEditorMdiWnd::CQBaseEditorMdiWnd( QWidget *pParent ) : CQBaseEditorWnd( pParent )
{
	m_pMdiArea = new CQMdiArea( this );
	setCentralWidget( m_pMdiArea );
	connect( m_pMdiArea, &QMdiArea::subWindowActivated, this, &CQBaseEditorMdiWnd::SubWindowActivated );
}

CQBaseEditorMdiWnd::~CQBaseEditorMdiWnd()
{
	// The area's children go after this object: their closing must not reach back here.
	for ( QMdiSubWindow *pSubWindow : m_SubWindowSessions.keys() )
	{
		pSubWindow->removeEventFilter( this );
		disconnect( pSubWindow, nullptr, this, nullptr );
	}
	m_SubWindowSessions.clear();
	if ( m_pMdiArea )
		disconnect( m_pMdiArea, nullptr, this, nullptr );
}

CQMdiArea *CQBaseEditorMdiWnd::GetMdiArea() const
{
	return m_pMdiArea.data();
}

void CQBaseEditorMdiWnd::ReplaceMdiArea( QWidget *pCentral )
{
	if ( m_pMdiArea )
	{
		for ( QMdiSubWindow *pSubWindow : m_SubWindowSessions.keys() )
		{
			pSubWindow->removeEventFilter( this );
			disconnect( pSubWindow, nullptr, this, nullptr );
		}
		m_SubWindowSessions.clear();
		disconnect( m_pMdiArea, nullptr, this, nullptr );
		// takeCentralWidget hands the area back instead of deleting it later itself.
		delete takeCentralWidget();
	}
	setCentralWidget( pCentral );
}

void CQBaseEditorMdiWnd::CreateWindowMenus()
{
	if ( m_pMdiArea )
		menuBar()->addMenu( m_pMdiArea->GetWindowMenu() );
}

QMdiSubWindow *CQBaseEditorMdiWnd::FindSubWindow( const CBaseEditorSession *pSession ) const
{
	for ( auto it = m_SubWindowSessions.cbegin(); it != m_SubWindowSessions.cend(); ++it )
	{
		if ( it.value() == pSession )
			return it.key();
	}
	return nullptr;
}

CBaseEditorSession *CQBaseEditorMdiWnd::FindSubWindowSession( QMdiSubWindow *pSubWindow ) const
{
	return m_SubWindowSessions.value( pSubWindow, nullptr );
}

void CQBaseEditorMdiWnd::OnSessionAdded( CBaseEditorSession *pSession )
{
	if ( !m_pMdiArea || !pSession || FindSubWindow( pSession ) )
		return;
	QMdiSubWindow *pSubWindow = pSession->CreateSubWindow();
	if ( !pSubWindow )
		return;
	pSubWindow->setAttribute( Qt::WA_DeleteOnClose );
	m_SubWindowSessions.insert( pSubWindow, pSession );
	connect( pSubWindow, &QObject::destroyed, this, [ this, pSubWindow ]() { m_SubWindowSessions.remove( pSubWindow ); } );
	// The framework makes the new session current with history right after; showing the
	// sub-window must not make it current first, which would leave the history without it.
	m_bSyncingActivation = true;
	m_pMdiArea->addSubWindow( pSubWindow );
	pSubWindow->show();
	m_bSyncingActivation = false;
	// After the area's own filter, so that this one sees a close first and can refuse it.
	pSubWindow->installEventFilter( this );
}

void CQBaseEditorMdiWnd::OnSessionRemoved( CBaseEditorSession *pSession )
{
	if ( QMdiSubWindow *pSubWindow = FindSubWindow( pSession ) )
		ForgetSubWindow( pSubWindow );
	CQBaseEditorWnd::OnSessionRemoved( pSession );
}

void CQBaseEditorMdiWnd::ForgetSubWindow( QMdiSubWindow *pSubWindow )
{
	m_SubWindowSessions.remove( pSubWindow );
	pSubWindow->removeEventFilter( this );
	disconnect( pSubWindow, nullptr, this, nullptr );
	m_bSyncingActivation = true;
	if ( m_pMdiArea )
		m_pMdiArea->removeSubWindow( pSubWindow );
	pSubWindow->hide();
	m_bSyncingActivation = false;
	pSubWindow->deleteLater();
	// The area may have moved on to another sub-window by itself; the framework decides
	// which session follows a closed one.
	if ( CBaseEditorApp *pApp = GetApplication() )
		SyncAreaToSession( pApp->GetActiveSession() );
}

void CQBaseEditorMdiWnd::SyncAreaToSession( CBaseEditorSession *pSession )
{
	QMdiSubWindow *pSubWindow = FindSubWindow( pSession );
	if ( !m_pMdiArea || m_pMdiArea->activeSubWindow() == pSubWindow )
		return;
	m_bSyncingActivation = true;
	m_pMdiArea->setActiveSubWindow( pSubWindow );
	m_bSyncingActivation = false;
}

void CQBaseEditorMdiWnd::OnActiveSessionChanged( CBaseEditorSession *pSession )
{
	CQBaseEditorWnd::OnActiveSessionChanged( pSession );
	SyncAreaToSession( pSession );
}

void CQBaseEditorMdiWnd::SubWindowActivated( QMdiSubWindow *pSubWindow )
{
	// Null means the area lost its active sub-window (the whole window was deactivated,
	// say): the current session stays what it was.
	if ( m_bSyncingActivation || !pSubWindow )
		return;
	CBaseEditorApp *pApp = GetApplication();
	CBaseEditorSession *pSession = FindSubWindowSession( pSubWindow );
	if ( pApp && pSession )
		pApp->SetActiveEditorSession( pSession, true, false );
}

bool CQBaseEditorMdiWnd::eventFilter( QObject *pWatched, QEvent *pEvent )
{
	if ( pEvent->type() != QEvent::Close )
		return CQBaseEditorWnd::eventFilter( pWatched, pEvent );
	QMdiSubWindow *pSubWindow = qobject_cast<QMdiSubWindow *>( pWatched );
	CBaseEditorSession *pSession = FindSubWindowSession( pSubWindow );
	CBaseEditorApp *pApp = GetApplication();
	if ( !pSession || !pApp )
		return CQBaseEditorWnd::eventFilter( pWatched, pEvent );
	// A closed session takes its sub-window out of the area (OnSessionRemoved); a refused
	// or cancelled close keeps both.
	if ( !pApp->CloseSession( pSession ) )
	{
		pEvent->ignore();
		return true;
	}
	if ( FindSubWindowSession( pSubWindow ) == pSession )
	{
		// A tool that refused to close the session (CanCloseSession) keeps it listed;
		// its sub-window stays too.
		pEvent->ignore();
		return true;
	}
	return false;
}
