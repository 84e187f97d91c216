#include "tools/zol/editor/zolmainwnd.h"

#include <QApplication>
#include <QClipboard>
#include <QDockWidget>
#include <QMenu>
#include <QMenuBar>
#include <QScreen>
#include <QScrollArea>
#include <QSignalBlocker>
#include <QStyle>
#include <QStatusBar>

#include "core/host/hostpaths.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/toolutils2/widgets/inputbind/bindablecommandaction.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmenu.h"
#include "tools/toolutils2/widgets/inputbind/inputdebugger.h"
#include "tools/toolutils2/widgets/undo/undohistorywidget.h"
#include "tools/widgets/assetthumbnail.h"
#include "tools/zol/editor/assetmaintenance/zolreferencenavigatorwidget.h"
#include "tools/zol/editor/assetmaintenance/zolstaleversiontoolbar.h"
#include "tools/zol/editor/functionlist/particlefunctionlist.h"
#include "tools/zol/editor/functionlist/particlesystemthumbnail.h"
#include "tools/toolutils2/widgets/propertyeditor/propertypanel.h"
#include "tools/zol/editor/particlepreview.h"
#include "tools/zol/editor/previewcontrols/particlepreviewcontrols.h"
#include "tools/zol/editor/properties/zolkv3propertydomain.h"
#include "tools/zol/editor/properties/zolpropertywidget.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolassetpane.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"

static constexpr int DOCK_MINIMUM_SIZE = 100;

// A path as the user reads it: as the content tree names it (the whole path outside it),
// with the platform's separator. Paths are kept with backslashes in memory.
static QString ShownPath( const char *pPath )
{
	CUtlString strShown;
	if ( !EditorFiles::MakeRelative( pPath, "CONTENT", &strShown ) || strShown.IsEmpty() || strShown.Get()[ 0 ] == '.' )
		strShown = pPath;
	return QString::fromUtf8( Host_DisplayPath( strShown ).Get() );
}

CQZolMainWnd::CQZolMainWnd( QWidget *pParent ) : CQBaseEditorMdiWnd( pParent )
{
	// Four panels and a preview want room: most of the screen, within sensible bounds.
	QSize size( 1280, 800 );
	if ( QScreen *pScreen = QGuiApplication::primaryScreen() )
	{
		const QRect available = pScreen->availableGeometry();
		size = QSize( qBound( 1280, available.width() - 80, 1800 ), qBound( 800, available.height() - 80, 1100 ) );
	}
	resize( size );
}

CQZolMainWnd::~CQZolMainWnd()
{
	// The panels that ask the domain (the property panel's editors, the function list's
	// variable context) go before it; members go before the window's children.
	delete m_pPropertyDock;
	m_pPropertyDock = nullptr;
	m_pPropertyWidget = nullptr;
	delete m_pFunctionDock;
	m_pFunctionDock = nullptr;
	m_pFunctionList = nullptr;
	delete m_pControlsDock;
	m_pControlsDock = nullptr;
	m_pPreviewControls = nullptr;
}

QDockWidget *CQZolMainWnd::MakeDock( const char *pTitle, const char *pObjectName, QWidget *pContent, int nWidth, int nHeight )
{
	QDockWidget *pDock = new QDockWidget( pTitle, this );
	pDock->setObjectName( pObjectName );
	pDock->setMinimumSize( DOCK_MINIMUM_SIZE, DOCK_MINIMUM_SIZE );
	pDock->setWidget( pContent );
	pContent->resize( nWidth, nHeight );
	return pDock;
}

void CQZolMainWnd::CreateChildren()
{
	setDockNestingEnabled( true );
	setAnimated( false );

	m_pPreview = new CQParticlePreview();
	m_pPreview->setMinimumSize( 320, 240 );
	ReplaceMdiArea( m_pPreview );

	m_pUndoHistoryWidget = new CQUndoHistoryWidget();
	m_pDomain = std::make_unique<CZolKV3PropertyDomain>();
	m_pPropertyWidget = new CQZolPropertyWidget( m_pDomain.get() );
	connect( m_pPropertyWidget, &CQZolPropertyWidget::AttributeModified, this, &CQZolMainWnd::OnPropertyAttributeModified );
	m_pPropertyDock = MakeDock( "Properties", "ZOL2_PropertyDock", m_pPropertyWidget, 300, 500 );
	CZolApp *pZolApp = ZolApp();
	m_pAssetPane = new CQZolAssetPane( GetAssetSystem(), pZolApp ? pZolApp->GetWorkingSet() : nullptr );
	connect( m_pAssetPane, &CQZolAssetPane::ZolAssetPaneSelectionChanged, this, &CQZolMainWnd::OnZolAssetPaneSelectionChanged );
	connect( m_pAssetPane, &CQZolAssetPane::OpenSession, this, &CQZolMainWnd::OnOpenSession );
	m_pAssetPaneDock = MakeDock( "Current assets", "ZOL2_AssetPaneDock", m_pAssetPane, 500, 500 );
	// The function list adds variables through the domain, the named value context of the
	// shown session.
	m_pFunctionList = new CQParticleFunctionList( m_pDomain.get() );
	m_pFunctionDock = MakeDock( "Functions", "ZOL2_FunctionDock", m_pFunctionList, 300, 500 );
	RegisterParticleSystemThumbnails();
	m_pPreviewControls = new CQParticlePreviewControls( m_pDomain.get() );
	// The controls are a tall form: on a small screen they scroll rather than squeeze the
	// preview and the property names.
	QScrollArea *pControlsScroll = new QScrollArea();
	pControlsScroll->setWidgetResizable( true );
	pControlsScroll->setFrameShape( QFrame::NoFrame );
	pControlsScroll->setWidget( m_pPreviewControls );
	m_pControlsDock = MakeDock( "Controls", "ZOL2_PreviewControlsDock", pControlsScroll, 500, 500 );
	m_pUndoDock = MakeDock( "Undo", "ZOL2_UndoDock", m_pUndoHistoryWidget, 300, 500 );
	ResetLayout();

	// The application's commands reach the keys while focus is anywhere in the window.
	CZolApp *pApp = static_cast<CZolApp *>( GetApplication() );
	if ( pApp )
		CQInputBindManager::Get()->RegisterTarget( this, pApp );
	// The Edit commands go to whichever session is shown.
	CQInputBindManager::Get()->RegisterTarget( this, &m_SessionTarget );

	m_pEditMenu = new QMenu( "&Edit", this );
	connect( m_pEditMenu, &QMenu::aboutToShow, this, &CQZolMainWnd::UpdateEditMenu );
	m_pViewMenu = new QMenu( "&View", this );
	if ( pApp )
		m_pViewMenu->addAction( new CQBindableCommandAction( pApp, "ResetLayout", "Default Layout", this ) );
	else
		m_pViewMenu->addAction( "Default Layout", this, &CQZolMainWnd::ResetLayout );
	m_pViewMenu->addSeparator();
	m_pViewMenu->addAction( m_pPropertyDock->toggleViewAction() );
	m_pViewMenu->addAction( m_pFunctionDock->toggleViewAction() );
	m_pViewMenu->addAction( m_pControlsDock->toggleViewAction() );
	m_pViewMenu->addAction( m_pUndoDock->toggleViewAction() );
	m_pViewMenu->addAction( m_pAssetPaneDock->toggleViewAction() );
	QAction *pSystemInformation = m_pViewMenu->addAction( "&Display System Information" );
	pSystemInformation->setCheckable( true );
	pSystemInformation->setChecked( true );
	connect( pSystemInformation, &QAction::toggled, m_pPreview, &CQParticlePreview::OnToggleSystemInformationDisplay );
	m_pViewMenu->addSeparator();
	QAction *pLock = m_pViewMenu->addAction( "&Toggle Window Lock" );
	pLock->setCheckable( true );
	pLock->setChecked( true );
	connect( pLock, &QAction::toggled, this, &CQZolMainWnd::OnToggleWindwLock );
	OnToggleWindwLock( true );
	CreateAssetMaintenanceChildren();

	m_pStatusBar = new QStatusBar( this );
	setStatusBar( m_pStatusBar );
	setWindowTitle( "Particle Editor" );

	if ( CZolApp *pApp = ZolApp() )
	{
		// Thumbnails of a particle system draw again when it compiles.
		pApp->SetAssetPreviewUpdater( []( IAsset *pAsset ) { CQAssetThumbnail::NotifyAssetChanged( pAsset ); } );
		pApp->SetClipboardHooks( []( const char *pText ) { QApplication::clipboard()->setText( QString::fromUtf8( pText ) ); },
			[]() { return CUtlString( QApplication::clipboard()->text().toUtf8().constData() ); } );
	}
}

void CQZolMainWnd::CreateAssetMaintenanceChildren()
{
	m_pStaleVersionToolBar = new CQZolStaleVersionToolBar( this );
	addToolBar( Qt::TopToolBarArea, m_pStaleVersionToolBar );
	// The navigator is a tool window: it floats until the user docks it, and lives on hidden.
	m_pReferenceNavigator = new CQZolReferenceNavigatorWidget();
	m_pReferenceNavigatorDock = MakeDock( "Particle Reference Navigator", "ZOL2_ReferenceNavigatorDock", m_pReferenceNavigator, 800, 400 );
	addDockWidget( Qt::BottomDockWidgetArea, m_pReferenceNavigatorDock );
	m_pReferenceNavigatorDock->setFloating( true );
	m_pReferenceNavigatorDock->resize( 800, 400 );
	m_pReferenceNavigatorDock->hide();
	m_pViewMenu->addSeparator();
	m_pViewMenu->addAction( "Show Reference Navigator", this, &CQZolMainWnd::ShowReferenceNavigatorWidget );
}

void CQZolMainWnd::ShowReferenceNavigatorWidget()
{
	m_pReferenceNavigatorDock->show();
	m_pReferenceNavigatorDock->raise();
	m_pReferenceNavigator->OnReloadModifierInfo();
	m_pReferenceNavigator->OnRefresh();
}

void CQZolMainWnd::CreateFileMenu( QMenu *pMenu )
{
	// The File menu is the framework's. Its entries become the application's bindable
	// commands, so they show their keys and run as the keys do; the editor's own entries
	// join them. Edit and View follow it.
	if ( CZolApp *pApp = static_cast<CZolApp *>( GetApplication() ) )
	{
		auto replace = [ & ]( QAction *&pOld, const char *pCommand, const char *pLabel ) {
			QAction *pNew = new CQBindableCommandAction( pApp, pCommand, pLabel, this );
			if ( pOld )
			{
				pMenu->insertAction( pOld, pNew );
				pMenu->removeAction( pOld );
				delete pOld;
			}
			pOld = pNew;
		};
		replace( m_pFileNewAction, "FileNew", "&New" );
		replace( m_pFileOpenAction, "FileOpen", "&Open" );
		replace( m_pFileReloadAction, "FileReload", "&Reload From Disk" );
		replace( m_pFileSaveAction, "FileSave", "&Save" );
		replace( m_pFileSaveAsAction, "FileSaveAs", "Save &As..." );
		replace( m_pFileCloseAction, "FileClose", "&Close" );
		// Not in a menu yet: the recent files submenu adds it when it opens.
		delete m_pClearRecentFilesAction;
		m_pClearRecentFilesAction = new CQBindableCommandAction( pApp, "ClearRecentFiles", "Clear Recent File List", this );

		m_pOpenDirectoryAction = new CQBindableCommandAction( pApp, "FileOpenDir", "Open All In &Directory...", this );
		pMenu->insertAction( m_pFileReloadAction, m_pOpenDirectoryAction );
		m_pRecentDirectoriesMenu = new QMenu( "&Recent Directories", this );
		connect( m_pRecentDirectoriesMenu, &QMenu::aboutToShow, this, &CQZolMainWnd::RebuildRecentDirectoriesSubmenu );
		connect( m_pRecentDirectoriesMenu, &QMenu::triggered, this, &CQZolMainWnd::LoadRecentDirectory );
		QList<QAction *> fileActions = pMenu->actions();
		const int nAfterRecentFiles = fileActions.indexOf( GetRecentFilesMenu()->menuAction() ) + 1;
		pMenu->insertMenu( nAfterRecentFiles < fileActions.size() ? fileActions[ nAfterRecentFiles ] : nullptr, m_pRecentDirectoriesMenu );
		m_pSaveAllAction = new CQBindableCommandAction( pApp, "FileSaveAll", "Save &All", this );
		pMenu->insertAction( m_pFileCloseAction, m_pSaveAllAction );
		m_pCloseAllAction = new CQBindableCommandAction( pApp, "FileCloseAll", "Close All", this );
		QList<QAction *> actions = pMenu->actions();
		int nClose = actions.indexOf( m_pFileCloseAction );
		pMenu->insertAction( nClose + 1 < actions.size() ? actions[ nClose + 1 ] : nullptr, m_pCloseAllAction );
	}
	menuBar()->addMenu( m_pEditMenu );
	menuBar()->addMenu( m_pViewMenu );
	m_pHelpMenu = new CQInputBindMenu( "&Help", this );
	m_pHelpMenu->SetAboutText( "Zol, the particle effects editor.\nFor effect artists: author particle system definitions (*.tfxs) and watch them live while you edit." );
	QAction *pDebugger = new QAction( "Input Debugger", m_pHelpMenu );
	connect( pDebugger, &QAction::triggered, this, &CQZolMainWnd::ShowInputDebugger );
	m_pHelpMenu->insertAction( m_pHelpMenu->GetAboutAction(), pDebugger );
	// A menu bar shows a menu's icon in place of its title: the bar's entry is an action of
	// its own that opens the menu, so "Help" reads as a word.
	QAction *pHelpEntry = new QAction( "&Help", this );
	pHelpEntry->setMenu( m_pHelpMenu );
	menuBar()->addAction( pHelpEntry );
	UpdateEditMenu();
}

void CQZolMainWnd::ResetLayout()
{
	QDockWidget *pDocks[] = { m_pPropertyDock, m_pAssetPaneDock, m_pFunctionDock, m_pControlsDock, m_pUndoDock };
	for ( QDockWidget *pDock : pDocks )
	{
		pDock->setFloating( false );
		pDock->show();
	}
	addDockWidget( Qt::LeftDockWidgetArea, m_pFunctionDock );
	addDockWidget( Qt::BottomDockWidgetArea, m_pAssetPaneDock );
	splitDockWidget( m_pFunctionDock, m_pPropertyDock, Qt::Horizontal );
	addDockWidget( Qt::RightDockWidgetArea, m_pControlsDock );
	splitDockWidget( m_pControlsDock, m_pUndoDock, Qt::Vertical );
	ApplyDefaultDockSizes();
	// Before the first showing the window's size is not final: the sizes wait for it.
	m_bDefaultSizesPending = !isVisible();
}

void CQZolMainWnd::ApplyDefaultDockSizes()
{
	// The function rows need a function's name and what it writes, the property rows a
	// label and an editor side by side (a float input's range rows the widest of them,
	// 420 where there is room), the controls their form; the preview keeps the rest.
	const int nWidth = width();
	const int nControlsWanted = m_pPreviewControls->sizeHint().width() + m_pControlsDock->style()->pixelMetric( QStyle::PM_ScrollBarExtent ) + 8;
	const int nFunctions = qMax( 230, nWidth * 18 / 100 );
	const int nProperties = qBound( 300, nWidth * 33 / 100, 420 );
	// The controls scroll rather than take the preview's room below 420.
	const int nControls = qBound( 280, nWidth - nFunctions - nProperties - 420, qMax( 280, nControlsWanted ) );
	resizeDocks( { m_pFunctionDock, m_pPropertyDock, m_pControlsDock }, { nFunctions, nProperties, nControls }, Qt::Horizontal );
	resizeDocks( { m_pControlsDock, m_pUndoDock }, { height() * 3 / 4, height() / 4 }, Qt::Vertical );
	resizeDocks( { m_pAssetPaneDock }, { 120 }, Qt::Vertical );
}

void CQZolMainWnd::showEvent( QShowEvent *pEvent )
{
	CQBaseEditorMdiWnd::showEvent( pEvent );
	if ( m_bDefaultSizesPending )
	{
		m_bDefaultSizesPending = false;
		ApplyDefaultDockSizes();
	}
}

void CQZolMainWnd::OnZolAssetPaneSelectionChanged()
{
	CZolApp *pApp = ZolApp();
	const std::vector<IAsset *> selected = m_pAssetPane->GetSelectedAssets();
	if ( !pApp || selected.size() != 1 )
		return;
	CBaseEditorSession *pSession = pApp->FindSessionByFile( selected[ 0 ]->GetAbsolutePath() );
	if ( pSession && pSession != pApp->GetActiveSession() )
		pApp->SetActiveEditorSession( pSession, false, true );
}

void CQZolMainWnd::OnOpenSession( IAsset *pAsset )
{
	// An open system's session is shown; another one opens.
	if ( CZolApp *pApp = ZolApp(); pApp && pAsset )
		pApp->OpenFile( pAsset->GetAbsolutePath(), true );
}

CQInputBindEditor *CQZolMainWnd::GetInputBindEditor() const
{
	return m_pHelpMenu ? m_pHelpMenu->GetInputBindEditor() : nullptr;
}

void CQZolMainWnd::ShowInputDebugger()
{
	if ( !m_pInputDebugger )
	{
		m_pInputDebugger = new CQInputDebugger( CQInputBindManager::Get(), "Zol", this );
		m_pInputDebugger->setWindowFlag( Qt::Window );
	}
	m_pInputDebugger->show();
	m_pInputDebugger->raise();
}

void CQZolMainWnd::RebuildRecentDirectoriesSubmenu()
{
	m_pRecentDirectoriesMenu->clear();
	CZolApp *pApp = ZolApp();
	int nShown = 0;
	if ( pApp )
	{
		for ( const CUtlString &strDirectory : pApp->GetRecentDirectories() )
		{
			if ( nShown >= MAX_RECENT_DIRECTORIES_SHOWN )
				break;
			// The list keeps a deleted folder (it may come back); the menu leaves it out.
			if ( !EditorFiles::IsDirectory( strDirectory ) )
				continue;
			++nShown;
			QAction *pAction = m_pRecentDirectoriesMenu->addAction( QString( "&%1 - %2" ).arg( nShown ).arg( ShownPath( strDirectory ) ) );
			pAction->setData( QString::fromUtf8( strDirectory.Get() ) );
		}
	}
	if ( nShown == 0 )
		m_pRecentDirectoriesMenu->addAction( "<No recent directories>" )->setEnabled( false );
}

void CQZolMainWnd::LoadRecentDirectory( QAction *pAction )
{
	CZolApp *pApp = ZolApp();
	const QString path = pAction ? pAction->data().toString() : QString();
	if ( pApp && !path.isEmpty() )
		pApp->OpenDirectory( path.toUtf8().constData() );
}

void CQZolMainWnd::OnToggleWindwLock( bool bLocked )
{
	QDockWidget *pDocks[] = { m_pPropertyDock, m_pAssetPaneDock, m_pFunctionDock, m_pControlsDock, m_pUndoDock };
	for ( QDockWidget *pDock : pDocks )
		pDock->setFeatures( bLocked ? QDockWidget::NoDockWidgetFeatures : QDockWidget::DockWidgetFeatures( 7 ) );
}

CZolSession *CQZolMainWnd::GetCurrentSession() const
{
	CZolApp *pApp = ZolApp();
	return pApp ? pApp->GetActiveZolSession() : nullptr;
}

void CQZolMainWnd::UpdateEditMenu()
{
	if ( !m_EditActions[ EDIT_CUT ] )
	{
		auto add = [ this ]( const char *pCommand, const char *pLabel ) {
			QAction *pAction = new CQBindableCommandAction( &m_SessionTarget, pCommand, pLabel, this );
			m_pEditMenu->addAction( pAction );
			return pAction;
		};
		m_EditActions[ EDIT_CUT ] = add( "Cut", "Cut" );
		m_EditActions[ EDIT_COPY ] = add( "Copy", "Copy" );
		m_EditActions[ EDIT_PASTE ] = add( "Paste", "Paste" );
		m_pEditMenu->addSeparator();
		m_EditActions[ EDIT_UNDO ] = add( "Undo", "&Undo" );
		m_EditActions[ EDIT_REDO ] = add( "Redo", "&Redo" );
		m_pEditMenu->addSeparator();
	}
	CZolSession *pSession = GetCurrentSession();
	CZolDoc *pDoc = pSession ? pSession->GetDoc() : nullptr;
	CUndoHistory *pUndo = pDoc ? pDoc->GetUndoHistory() : nullptr;
	CUndoHistory *pRedo = pDoc ? pDoc->GetRedoHistory() : nullptr;
	static_cast<CQBindableCommandAction *>( m_EditActions[ EDIT_UNDO ] )->SetLabel( CQUndoHistoryWidget::GetUndoActionText( pUndo ).toUtf8().constData() );
	m_EditActions[ EDIT_UNDO ]->setEnabled( pUndo && pUndo->CanUndo() );
	static_cast<CQBindableCommandAction *>( m_EditActions[ EDIT_REDO ] )->SetLabel( CQUndoHistoryWidget::GetRedoActionText( pRedo ).toUtf8().constData() );
	m_EditActions[ EDIT_REDO ]->setEnabled( pRedo && pRedo->CanUndo() );
	m_EditActions[ EDIT_CUT ]->setEnabled( pSession != nullptr );
	m_EditActions[ EDIT_COPY ]->setEnabled( pSession != nullptr );
	m_EditActions[ EDIT_PASTE ]->setEnabled( pSession != nullptr );
}

void CQZolMainWnd::RunFrame()
{
	++m_nFrameCount;
	if ( m_pPreview )
		m_pPreview->Update();
}

void CQZolMainWnd::SessionActivated( CZolSession *, CZolSession *pNew )
{
	m_pDomain->SetSession( pNew );
	{
		const QSignalBlocker blocker( m_pFunctionList );
		const QSignalBlocker propertyBlocker( m_pPropertyWidget );
		m_pFunctionList->SetSession( pNew );
		m_pPropertyWidget->SetSession( pNew );
	}
	m_SessionTarget.SetTarget( pNew );
	CQInputBindManager::Get()->GetEngine().MarkDirty();
	// The keys shown next to the Edit entries come from the shown session's commands.
	for ( QAction *pAction : m_EditActions )
	{
		if ( pAction )
			static_cast<CQBindableCommandAction *>( pAction )->RefreshText();
	}
	m_pUndoHistoryWidget->SetUndoHistory( pNew ? pNew->GetDoc()->GetUndoHistory() : nullptr );
	// The application keeps the working set; the pane shows it and the session's system.
	m_pAssetPane->Refresh();
	if ( pNew && pNew->GetAsset() )
		m_pAssetPane->SelectAsset( pNew->GetAsset() );
	else
		m_pAssetPane->ClearSelection();
	if ( pNew && *pNew->GetFileName() )
	{
		CUtlString strTitle;
		pNew->GetTitle( &strTitle, 0 );
		setWindowTitle( QString::fromUtf8( strTitle.Get() ) );
		m_pStatusBar->showMessage( ShownPath( pNew->GetFileName() ) );
	}
	else
	{
		setWindowTitle( "Particle Editor" );
		m_pStatusBar->clearMessage();
	}
}

void CQZolMainWnd::OnSessionFileChanged( CZolSession *pSession )
{
	if ( pSession && m_pFunctionList->GetSession() == pSession )
	{
		const QSignalBlocker blocker( m_pFunctionList );
		m_pFunctionList->SetSession( pSession );
	}
	// A reload made the document anew: the panel attaches to it again.
	if ( pSession && m_pPropertyWidget->GetSession() == pSession )
		m_pPropertyWidget->SetSession( pSession );
}

void CQZolMainWnd::OnPropertyAttributeModified( const QString &name, int nModifyType )
{
	// The first step of a drag says nothing yet; the function list follows the others.
	if ( nModifyType == 1 || !GetCurrentSession() )
		return;
	if ( name == "m_bDisableOperator" || name == "m_bDisableChild" )
		m_pFunctionList->RefreshEnabledState();
	if ( name == "m_bEndCap" || name == "m_flDelay" )
		m_pFunctionList->RefreshChildStatus();
	m_pFunctionList->RefreshCheckedType();
}

void CQZolMainWnd::SaveToolWindowSettings( KeyValues3 *pTable )
{
	CQBaseEditorMdiWnd::SaveToolWindowSettings( pTable );
	m_pPropertyWidget->GetPanel()->SaveSettings( pTable->SetMemberEmptyTable( "property_editor_settings" ) );
}

void CQZolMainWnd::RestoreToolWindowSettings( const KeyValues3 *pTable )
{
	CQBaseEditorMdiWnd::RestoreToolWindowSettings( pTable );
	// The docks stand where the saved state put them: the first showing keeps them there.
	if ( m_bLayoutStateRestored )
		m_bDefaultSizesPending = false;
	if ( const KeyValues3 *pSettings = pTable ? pTable->FindMember( "property_editor_settings" ) : nullptr )
		m_pPropertyWidget->GetPanel()->RestoreSettings( pSettings );
}

void CQZolMainWnd::ForgetSession( CZolSession *pSession )
{
	m_pFunctionList->ForgetSession( pSession );
	// The application took its system out of the working set.
	m_pAssetPane->Refresh();
	if ( pSession && m_pPropertyWidget->GetSession() == pSession )
		m_pPropertyWidget->SetSession( nullptr );
	if ( pSession && m_pDomain->GetSession() == pSession )
		m_pDomain->SetSession( nullptr );
	if ( pSession && m_SessionTarget.GetTarget() == pSession )
	{
		m_SessionTarget.SetTarget( nullptr );
		CQInputBindManager::Get()->GetEngine().MarkDirty();
	}
	if ( pSession && m_pUndoHistoryWidget->GetUndoHistory() == pSession->GetDoc()->GetUndoHistory() )
		m_pUndoHistoryWidget->SetUndoHistory( nullptr );
}
