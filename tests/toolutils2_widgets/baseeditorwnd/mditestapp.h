#pragma once
// An editor for the window tests: plain sessions that each show in a sub-window of a
// CQBaseEditorMdiWnd (unless told not to), with the scripted prompt answering questions.

#include <QCoreApplication>
#include <QLabel>
#include <QMdiSubWindow>

#include "core/host/scriptedprompt.h"
#include "core/platform/platformmode.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/widgets/baseeditorwnd/baseeditormdiwnd.h"

class CMdiTestSession final : public CSimpleSharedWindowEditorSession
{
public:
	CMdiTestSession( CBaseEditorApp *pApp, bool bMakesSubWindow ) : CSimpleSharedWindowEditorSession( pApp ), m_bMakesSubWindow( bMakesSubWindow ) {}

	bool New( const char *pName ) override
	{
		CUtlString strName;
		strName.Format( "%s.txt", pName );
		StoreFileName( strName );
		return true;
	}
	int Open( const char *, CUtlString * ) override { return EDITOR_OPEN_LOADED; }
	bool Reload() override { return true; }
	bool SaveToFile( const char *, const char *, bool ) override { return true; }
	QMdiSubWindow *CreateSubWindow() override
	{
		if ( !m_bMakesSubWindow )
			return nullptr;
		QMdiSubWindow *pSubWindow = new QMdiSubWindow();
		pSubWindow->setWidget( new QLabel( QString::fromUtf8( GetFileName() ) ) );
		pSubWindow->setWindowTitle( QString::fromUtf8( GetFileName() ) );
		return pSubWindow;
	}

private:
	bool m_bMakesSubWindow;
};

// A window that shares one view between all sessions, as the particle editor does.
class CQSharedViewTestWnd final : public CQBaseEditorMdiWnd
{
public:
	QLabel *m_pSharedView = nullptr;

protected:
	void CreateChildren() override
	{
		m_pSharedView = new QLabel( "shared view" );
		ReplaceMdiArea( m_pSharedView );
	}
};

class CMdiTestApp final : public CBaseEditorApp
{
public:
	explicit CMdiTestApp( bool bSharedView = false ) : m_bSharedView( bSharedView )
	{
		Plat_SetTestMode( true );
		m_pWindow = bSharedView ? new CQSharedViewTestWnd() : new CQBaseEditorMdiWnd();
		m_pWindow->resize( 800, 600 );
		m_pWindow->SetApplication( this );
	}
	~CMdiTestApp() override
	{
		// What a test left unsaved goes without asking.
		for ( CBaseEditorSession *pSession : GetSessions() )
			pSession->SetModified( false );
		CloseAllSessions();
		delete m_pWindow;
		// Sub-windows and popups go with deferred deletes; run them while the app lives.
		QCoreApplication::sendPostedEvents( nullptr, QEvent::DeferredDelete );
	}

	CBaseEditorSession *CreateSession() override { return new CMdiTestSession( this, !m_bSharedView ); }
	void DestroySession( CBaseEditorSession *pSession ) override { delete pSession; }
	IBaseEditorWindow *GetMainWindow() override { return m_pWindow; }

	CQBaseEditorMdiWnd *GetWindow() const { return m_pWindow; }

private:
	bool m_bSharedView;
	CQBaseEditorMdiWnd *m_pWindow = nullptr;
};
