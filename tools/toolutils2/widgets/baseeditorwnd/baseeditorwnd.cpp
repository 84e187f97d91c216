#include "tools/toolutils2/widgets/baseeditorwnd/baseeditorwnd.h"

#include <QApplication>
#include <QCloseEvent>
#include <QDockWidget>
#include <QFileInfo>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QWindow>

#include "core/host/hostpaths.h"
#include "core/kv3/keyvalues3.h"
#include "core/logging/logging.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/editorwaitcursor.h"
#include "tools/toolutils2/widgets/baseeditorwnd/gameimagepaths.h"
#include "tools/toolutils2/widgets/baseeditorwnd/sessioncyclewidget.h"

// Bumped when the dock layout changes so that old saved states are not applied: a state of
// another version is ignored and the window keeps its default layout.
static constexpr int LAYOUT_VERSION = 2;
static constexpr int MAX_RECENT_FILES_SHOWN = 10;

static void ShowWaitCursor( bool bBusy )
{
	if ( bBusy )
		QApplication::setOverrideCursor( Qt::WaitCursor );
	else
		QApplication::restoreOverrideCursor();
}

CQBaseEditorWnd::CQBaseEditorWnd( QWidget *pParent ) : QMainWindow( pParent )
{
	setDockNestingEnabled( true );
	setAnimated( false );
	setObjectName( "CQBaseEditorWnd" );
	CEditorWaitCursor::SetHook( &ShowWaitCursor );
}

CQBaseEditorWnd::~CQBaseEditorWnd() = default;

void CQBaseEditorWnd::SetApplication( CBaseEditorApp *pApp )
{
	m_pApp = pApp;
	RegisterGameImageSearchPaths();
	setWindowTitle( QString::fromUtf8( pApp->GetToolTitle() ) );
	connect( this, &CQBaseEditorWnd::WindowStateChanged, this, &CQBaseEditorWnd::OnMarkSettingsDirty );
	CreateChildren();
	BuildFileMenu();
	CreateWindowMenus();
}

void CQBaseEditorWnd::OnMarkSettingsDirty()
{
	if ( m_pApp )
		m_pApp->MarkSettingsDirty();
}

void CQBaseEditorWnd::BuildFileMenu()
{
	m_pFileMenu = menuBar()->addMenu( "&File" );
	m_pFileNewAction = m_pFileMenu->addAction( "&New", this, &CQBaseEditorWnd::OnFileNew, QKeySequence::New );
	m_pFileOpenAction = m_pFileMenu->addAction( "&Open", this, &CQBaseEditorWnd::OnFileOpen, QKeySequence::Open );
	m_pFileReloadAction = m_pFileMenu->addAction( "&Reload From Disk", this, &CQBaseEditorWnd::OnFileReload );
	m_pRecentFilesMenu = m_pFileMenu->addMenu( "&Recent Files" );
	m_pClearRecentFilesAction = new QAction( "Clear Recent File List", this );
	connect( m_pRecentFilesMenu, &QMenu::aboutToShow, this, &CQBaseEditorWnd::RebuildRecentFilesMenu );
	connect( m_pRecentFilesMenu, &QMenu::triggered, this, &CQBaseEditorWnd::LoadRecentFile );
	m_pFileMenu->addSeparator();
	m_pFileSaveAction = m_pFileMenu->addAction( "&Save", this, &CQBaseEditorWnd::OnFileSave, QKeySequence::Save );
	m_pFileSaveAsAction = m_pFileMenu->addAction( "Save &As...", this, &CQBaseEditorWnd::OnFileSaveAs, QKeySequence::SaveAs );
	m_pFileCloseAction = m_pFileMenu->addAction( "&Close", this, &CQBaseEditorWnd::OnFileClose, QKeySequence::Close );
	m_pFileMenu->addSeparator();
	m_pExitAction = m_pFileMenu->addAction( "E&xit", this, &QWidget::close );
	CreateFileMenu( m_pFileMenu );
	connect( m_pFileMenu, &QMenu::aboutToShow, this, &CQBaseEditorWnd::UpdateFileMenu );
	UpdateFileMenu();
}

void CQBaseEditorWnd::UpdateFileMenu()
{
	bool bHasSession = m_pApp && m_pApp->GetActiveSession();
	m_pFileSaveAction->setEnabled( bHasSession );
	m_pFileSaveAsAction->setEnabled( bHasSession );
	m_pFileReloadAction->setEnabled( bHasSession );
	m_pFileCloseAction->setEnabled( bHasSession );
	m_pRecentFilesMenu->setEnabled( m_pApp && !m_pApp->GetAutosaveManager().GetRecentFiles().empty() );
}

void CQBaseEditorWnd::RebuildRecentFilesMenu()
{
	m_pRecentFilesMenu->clear();
	QStringList paths;
	if ( m_pApp )
	{
		for ( const AutosaveFileEntry_t &entry : m_pApp->GetAutosaveManager().GetRecentFiles() )
		{
			QString path = QString::fromUtf8( entry.m_strFileName.Get() );
			if ( entry.m_bDisplayInList && QFileInfo::exists( QString( path ).replace( '\\', '/' ) ) )
				paths << path;
		}
	}
	if ( paths.isEmpty() )
	{
		m_pRecentFilesMenu->addAction( "<No recent files>" )->setEnabled( false );
	}
	else
	{
		QString prefix = QString::fromUtf8( m_pApp->GetDefaultDirectory() ) + "\\";
		for ( int i = 0; i < paths.size() && i < MAX_RECENT_FILES_SHOWN; ++i )
		{
			QString shown = paths[ i ];
			if ( shown.startsWith( prefix, Qt::CaseInsensitive ) )
				shown = shown.mid( prefix.size() );
			QAction *pAction = m_pRecentFilesMenu->addAction( QString( "&%1 - %2" ).arg( i + 1 ).arg( QString::fromUtf8( Host_DisplayPath( shown.toUtf8().constData() ).Get() ) ) );
			pAction->setData( paths[ i ] );
		}
	}
	m_pRecentFilesMenu->addSeparator();
	m_pRecentFilesMenu->addAction( m_pClearRecentFilesAction );
}

void CQBaseEditorWnd::LoadRecentFile( QAction *pAction )
{
	if ( !m_pApp || !pAction )
		return;
	if ( pAction == m_pClearRecentFilesAction )
	{
		m_pApp->GetAutosaveManager().ClearRecentFiles();
		m_pApp->MarkSettingsDirty();
		return;
	}
	QString path = pAction->data().toString();
	if ( !path.isEmpty() )
		m_pApp->OpenFile( path.toUtf8().constData(), true );
}

void CQBaseEditorWnd::OnFileNew()
{
	if ( m_pApp )
		m_pApp->NewSession();
}

void CQBaseEditorWnd::OnFileOpen()
{
	if ( m_pApp )
		m_pApp->ShowOpenDialog();
}

void CQBaseEditorWnd::OnFileSave()
{
	if ( m_pApp && !m_pApp->SaveActiveSession() && !m_pApp->GetActiveSession() )
		QApplication::beep();
}

void CQBaseEditorWnd::OnFileSaveAs()
{
	if ( m_pApp && m_pApp->GetActiveSession() )
		m_pApp->SaveSessionAs( m_pApp->GetActiveSession() );
	else
		QApplication::beep();
}

void CQBaseEditorWnd::OnFileClose()
{
	if ( !m_pApp || !m_pApp->GetActiveSession() )
	{
		QApplication::beep();
		return;
	}
	CEditorWaitCursor waitCursor;
	m_pApp->CloseSession( m_pApp->GetActiveSession() );
}

void CQBaseEditorWnd::OnFileReload()
{
	if ( m_pApp )
		m_pApp->ReloadActiveSession();
}

// ---------------------------------------------------------------------------------------
// IBaseEditorWindow

void CQBaseEditorWnd::BringUp()
{
	if ( isMaximized() )
	{
		if ( isHidden() )
		{
			showNormal();
			showMaximized();
		}
	}
	else if ( isMinimized() )
		showNormal();
	else if ( isHidden() )
		show();
	raise();
	activateWindow();
	for ( int i = m_HiddenFloatingDocks.size() - 1; i >= 0; --i )
	{
		QDockWidget *pDock = m_HiddenFloatingDocks[ i ];
		if ( pDock->isFloating() )
		{
			pDock->show();
			pDock->raise();
			m_HiddenFloatingDocks.remove( i );
		}
	}
}

CQSessionCycleWidget *CQBaseEditorWnd::GetSessionCycleWidget() const
{
	return m_pSessionCycleWidget.data();
}

void CQBaseEditorWnd::ShowSessionCycling( int nSelected )
{
	if ( !m_pApp )
		return;
	if ( m_pSessionCycleWidget )
	{
		m_pSessionCycleWidget->SetSelectedIndex( nSelected );
		return;
	}
	m_pSessionCycleWidget = new CQSessionCycleWidget( m_pApp, nSelected, this );
	m_pSessionCycleWidget->Popup();
}

void CQBaseEditorWnd::TakeFocus()
{
	setFocus( Qt::OtherFocusReason );
}

void CQBaseEditorWnd::SetWindowTitleText( const char *pTitle )
{
	setWindowTitle( QString::fromUtf8( pTitle ) );
}

static void SetBase64( KeyValues3 *pTable, const char *pKey, const QByteArray &data )
{
	pTable->SetMemberString( pKey, data.toBase64().constData() );
}

static QByteArray GetBase64( const KeyValues3 *pTable, const char *pKey )
{
	return QByteArray::fromBase64( QByteArray( pTable->GetMemberString( pKey, "" ) ) );
}

void CQBaseEditorWnd::SaveLayout( KeyValues3 *pTable )
{
	if ( !pTable->IsTable() )
		pTable->SetToEmptyTable();
	SetBase64( pTable, "geometry", saveGeometry() );
	SetBase64( pTable, "state", saveState( LAYOUT_VERSION ) );
	if ( QScreen *pScreen = screen() )
		pTable->SetMemberString( "screen", pScreen->name().toUtf8().constData() );
	KeyValues3 *pFloating = pTable->SetMemberEmptyTable( "floating" );
	for ( QDockWidget *pDock : findChildren<QDockWidget *>() )
	{
		if ( !pDock->isFloating() || pDock->objectName().isEmpty() )
			continue;
		KeyValues3 *pDockTable = pFloating->SetMemberEmptyTable( pDock->objectName().toUtf8().constData() );
		SetBase64( pDockTable, "geometry", pDock->saveGeometry() );
	}
	SaveToolWindowSettings( pTable );
}

void CQBaseEditorWnd::RestoreLayout( const KeyValues3 *pTable )
{
	if ( !pTable || !pTable->IsTable() )
		return;
	QByteArray geometry = GetBase64( pTable, "geometry" );
	if ( !geometry.isEmpty() )
		restoreGeometry( geometry );
	QByteArray state = GetBase64( pTable, "state" );
	m_bLayoutStateRestored = !state.isEmpty() && restoreState( state, LAYOUT_VERSION );
	if ( const KeyValues3 *pFloating = pTable->FindMember( "floating" ) )
	{
		for ( QDockWidget *pDock : findChildren<QDockWidget *>() )
		{
			const KeyValues3 *pDockTable = pDock->isFloating() ? pFloating->FindMember( pDock->objectName().toUtf8().constData() ) : nullptr;
			if ( pDockTable )
				pDock->restoreGeometry( GetBase64( pDockTable, "geometry" ) );
		}
	}
	if ( isMaximized() )
	{
		// Keep the normal geometry on the screen the window comes up on, so un-maximising
		// doesn't leave it off screen.
		QScreen *pTarget = screen();
		QString screenName = QString::fromUtf8( pTable->GetMemberString( "screen", "" ) );
		for ( QScreen *pScreen : QGuiApplication::screens() )
		{
			if ( pScreen->name() == screenName )
				pTarget = pScreen;
		}
		if ( pTarget )
		{
			QRect available = pTarget->availableGeometry();
			QMargins frame = windowHandle() ? windowHandle()->frameMargins() : QMargins();
			int nWidth = qMax( 100, available.width() - frame.left() - frame.right() - 31 );
			int nHeight = qMax( 100, available.height() - frame.top() - frame.bottom() - 31 );
			Log_Msg( LOG_GENERAL, "Updating window size to preserve settings for maximized window:\n  screen %s, %d x %d at %d, %d\n", pTarget->name().toUtf8().constData(), nWidth, nHeight, available.left() + 16, available.top() + 16 );
			setGeometry( available.left() + 16, available.top() + 16, nWidth, nHeight );
			showMaximized();
		}
	}
	RestoreToolWindowSettings( pTable );
}

// ---------------------------------------------------------------------------------------
// Events

void CQBaseEditorWnd::closeEvent( QCloseEvent *pEvent )
{
	// The window never closes: it hides once every session has closed.
	pEvent->ignore();
	if ( !m_pApp )
		return;
	m_pApp->SaveSettings( this );
	if ( !m_pApp->CloseAllSessions() )
		return;
	for ( QDockWidget *pDock : findChildren<QDockWidget *>() )
	{
		if ( pDock->isFloating() && pDock->isVisible() )
		{
			pDock->hide();
			m_HiddenFloatingDocks.push_back( pDock );
		}
	}
	hide();
	emit EditorWindowHidden();
}

void CQBaseEditorWnd::changeEvent( QEvent *pEvent )
{
	QMainWindow::changeEvent( pEvent );
	if ( pEvent->type() == QEvent::WindowStateChange )
		emit WindowStateChanged();
}

void CQBaseEditorWnd::moveEvent( QMoveEvent *pEvent )
{
	QMainWindow::moveEvent( pEvent );
	emit WindowStateChanged();
}

void CQBaseEditorWnd::resizeEvent( QResizeEvent *pEvent )
{
	QMainWindow::resizeEvent( pEvent );
	emit WindowStateChanged();
}
