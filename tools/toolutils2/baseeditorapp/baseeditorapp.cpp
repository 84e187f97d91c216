#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"

#include "core/host/hostpaths.h"

#include <algorithm>

#include "core/host/iprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "core/platform/platformmode.h"
#include "core/platform/platformtime.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/autosavenames.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/baseeditorapp/editorwaitcursor.h"
#include "tools/toolutils2/baseeditorapp/ibaseeditorwindow.h"
#include "tools/toolutils2/baseeditorapp/sessioncycling.h"
#include "tools/toolutils2/baseeditorapp/sessionversioncontrol.h"
#include "tools/toolutils2/baseeditorapp/toolframelistener.h"

// Settings are written at most this often, from the frame.
static constexpr double SETTINGS_SAVE_INTERVAL = 0.5;

CBaseEditorApp::CBaseEditorApp()
{
	m_AutosaveManager.SetApp( this );
	m_AutosaveManager.SetFileExists( []( const char *pPath ) { return EditorFiles::Exists( pPath ); } );
}

CBaseEditorApp::~CBaseEditorApp() = default;

static void NormalisePath( CUtlString *pPath )
{
	pPath->FixSlashes( CORRECT_PATH_SEPARATOR );
}

// ---------------------------------------------------------------------------------------
// Start, frame, shutdown

bool CBaseEditorApp::StartTool( int nToolId )
{
	m_nToolId = nToolId;
	m_AutosaveManager.SetMaxRecentFiles( GetMaxRecentFiles() );
	if ( !Init() )
		return false;

	KeyValues3 settings;
	if ( !LoadSettingsTable( &settings ) || !settings.IsTable() )
		settings.SetToEmptyTable();
	ReadToolSettingsEarly( &settings );
	m_EditorSettings.Read( settings.FindMember( "General" ) );
	m_AutosaveManager.ReadSettings( settings.FindMember( "RecentFiles" ), settings.FindMember( "NewFiles" ) );
	if ( const KeyValues3 *pBaseEditor = settings.FindMember( "BaseEditor" ) )
	{
		const char *pLoad = pBaseEditor->GetMemberString( "LastLoadDirectory", "" );
		if ( *pLoad )
			m_strLastLoadDirectory = pLoad;
		const char *pSave = pBaseEditor->GetMemberString( "LastSaveDirectory", "" );
		if ( *pSave )
			m_strLastSaveDirectory = pSave;
	}
	// The window's layout stands at the top of the table.
	m_RememberedLayout = settings;
	if ( IBaseEditorWindow *pWindow = GetMainWindow() )
		pWindow->RestoreLayout( &settings );
	RestoreToolSettings( &settings );
	m_AutosaveManager.CheckForRecovery();
	// Stored at once: a crash from here on must find the flag down. The window isn't up
	// yet, so the layout stays as it was read.
	m_EditorSettings.m_bClosedCorrectly = false;
	SaveSettings( nullptr );
	m_AutosaveManager.StartTimer();
	return true;
}

void CBaseEditorApp::ChangeEditorSettings( const CEditorSettings &settings )
{
	m_EditorSettings = settings;
	StoreSettingsNow();
}

void CBaseEditorApp::Frame()
{
	RunFrame();
	ToolFrame_RunListeners();
	m_AutosaveManager.Tick();
	if ( m_bSettingsDirty && Plat_FloatTime() - m_flLastSettingsSave >= SETTINGS_SAVE_INTERVAL )
		SaveSettings( GetMainWindow() );
}

void CBaseEditorApp::ShutdownTool()
{
	CloseAllSessions();
	m_bShutdown = true;
	Shutdown();
	// A headless run that left files to recover leaves the crash record for the next start.
	m_EditorSettings.m_bClosedCorrectly = !m_AutosaveManager.IsKeepingRecovery();
	// Always stored: a quick start and quit must not read as a crash next time.
	StoreSettingsNow();
	ShutdownDone();
}

void CBaseEditorApp::OnOpenRequest( const ToolOpenRequest_t &request )
{
	switch ( request.m_nKind )
	{
	case TOOL_OPEN_REQUEST_ASSETS:
	{
		CEditorWaitCursor waitCursor;
		for ( const CUtlString &strName : request.m_Names )
			OpenAsset( strName, true, nullptr );
		break;
	}
	case TOOL_OPEN_REQUEST_FILES:
	{
		CEditorWaitCursor waitCursor;
		for ( const CUtlString &strName : request.m_Names )
			OpenFile( strName, true );
		break;
	}
	case TOOL_OPEN_REQUEST_ASSET_WITH_EXTRA:
		if ( request.m_Names.size() == 1 )
			OpenAsset( request.m_Names[ 0 ], true, request.m_pExtra );
		break;
	default:
		break;
	}
}

// ---------------------------------------------------------------------------------------
// Settings

// A tool with a name keeps its settings in the user's settings store; one without (a
// bare framework in tests) keeps them in memory only.
bool CBaseEditorApp::LoadSettingsTable( KeyValues3 *pTable )
{
	if ( !m_strToolName.IsEmpty() )
	{
		CUtlString strError;
		if ( !GetToolSettingsStore().Load( m_strToolName, &m_StoredSettings, &strError ) && !strError.IsEmpty() )
			Log_Warning( LOG_GENERAL, "%s: the settings could not be read, the defaults are used: %s\n", m_strToolName.Get(), strError.Get() );
	}
	*pTable = m_StoredSettings;
	return pTable->IsTable();
}

void CBaseEditorApp::StoreSettingsTable( const KeyValues3 &table )
{
	m_StoredSettings = table;
	if ( m_strToolName.IsEmpty() )
		return;
	CUtlString strError;
	if ( !GetToolSettingsStore().Save( m_strToolName, table, &strError ) )
		Log_Once( LOG_GENERAL, LS_WARNING, "%s: the settings could not be saved: %s\n", m_strToolName.Get(), strError.Get() );
}

void CBaseEditorApp::SaveSettings( IBaseEditorWindow *pWindow )
{
	KeyValues3 settings;
	if ( pWindow )
	{
		settings.SetToEmptyTable();
		pWindow->SaveLayout( &settings );
		m_RememberedLayout = settings;
	}
	else
	{
		// Without a window the last layout it gave is kept as it was.
		if ( m_RememberedLayout.IsTable() )
			settings = m_RememberedLayout;
		else
			settings.SetToEmptyTable();
	}
	m_EditorSettings.Write( settings.FindOrCreateMember( "General" ) );
	m_AutosaveManager.WriteSettings( settings.FindOrCreateMember( "RecentFiles" ), settings.FindOrCreateMember( "NewFiles" ) );
	KeyValues3 *pBaseEditor = settings.SetMemberEmptyTable( "BaseEditor" );
	pBaseEditor->SetMemberString( "LastLoadDirectory", m_strLastLoadDirectory );
	pBaseEditor->SetMemberString( "LastSaveDirectory", m_strLastSaveDirectory );
	SaveToolSettings( &settings );
	StoreSettingsTable( settings );
	m_bSettingsDirty = false;
	m_flLastSettingsSave = Plat_FloatTime();
}

// ---------------------------------------------------------------------------------------
// Active session and history

void CBaseEditorApp::SetActiveEditorSession( CBaseEditorSession *pSession, bool bSkipHistory, bool bShowWindow )
{
	if ( bShowWindow )
	{
		CBaseEditorSession *pShown = pSession ? pSession : m_pActiveSession;
		if ( IBaseEditorWindow *pWindow = pShown ? pShown->GetWindow() : GetMainWindow() )
			pWindow->BringUp();
	}
	if ( pSession == m_pActiveSession )
		return;
	CBaseEditorSession *pOld = m_pActiveSession;
	if ( !pSession )
		m_pActiveSession = nullptr;
	else
	{
		if ( std::find( m_Sessions.begin(), m_Sessions.end(), pSession ) == m_Sessions.end() )
			return;
		m_pActiveSession = pSession;
		if ( !bSkipHistory )
			m_SessionHistory.Push( pSession );
	}
	SessionActivated( pOld, m_pActiveSession );
	if ( IBaseEditorWindow *pWindow = GetWindowOf( m_pActiveSession ) )
		pWindow->OnActiveSessionChanged( m_pActiveSession );
}

IBaseEditorWindow *CBaseEditorApp::GetWindowOf( CBaseEditorSession *pSession )
{
	IBaseEditorWindow *pWindow = pSession ? pSession->GetWindow() : nullptr;
	return pWindow ? pWindow : GetMainWindow();
}

int CBaseEditorApp::FindSessionIndex( const CBaseEditorSession *pSession ) const
{
	auto it = std::find( m_Sessions.begin(), m_Sessions.end(), pSession );
	return it == m_Sessions.end() ? -1 : int( it - m_Sessions.begin() );
}

int CBaseEditorApp::OpenSessionCycling( bool bForward )
{
	int nSelected = StepSessionCycle( FindSessionIndex( m_pActiveSession ), int( m_Sessions.size() ), bForward );
	if ( IBaseEditorWindow *pWindow = GetMainWindow() )
		pWindow->ShowSessionCycling( nSelected );
	return nSelected;
}

void CBaseEditorApp::ActivateNextEditorSession()
{
	if ( CBaseEditorSession *pSession = m_SessionHistory.StepForward() )
		SetActiveEditorSession( pSession, true, true );
}

void CBaseEditorApp::ActivatePreviousEditorSession()
{
	if ( CBaseEditorSession *pSession = m_SessionHistory.StepBackward() )
		SetActiveEditorSession( pSession, true, true );
}

CBaseEditorSession *CBaseEditorApp::FindSessionByFile( const char *pPath ) const
{
	if ( !pPath || !*pPath )
		return nullptr;
	CUtlString strPath( pPath );
	NormalisePath( &strPath );
	// Names compare ignoring case, but two files may differ only in case: the exact
	// spelling wins, and a twin on disk is never taken for the file.
	CBaseEditorSession *pFolded = nullptr;
	for ( CBaseEditorSession *pSession : m_Sessions )
	{
		if ( !pSession->HasFile( strPath ) )
			continue;
		if ( !V_strcmp( pSession->GetFileName(), strPath ) )
			return pSession;
		if ( !pFolded )
			pFolded = pSession;
	}
	if ( pFolded && EditorFiles::AreCaseTwins( pFolded->GetFileName(), strPath ) )
		return nullptr;
	return pFolded;
}

// ---------------------------------------------------------------------------------------
// New

bool CBaseEditorApp::IsUntitledNameTaken( const char *pBaseName ) const
{
	char szBase[ EDITOR_MAX_PATH ];
	std::vector<CUtlString> entries;
	EditorFiles::ListDirectory( m_strDefaultDirectory, &entries );
	for ( const CUtlString &strEntry : entries )
	{
		V_FileBase( strEntry, szBase, sizeof( szBase ) );
		if ( !V_stricmp_fast( szBase, pBaseName ) )
			return true;
	}
	for ( CBaseEditorSession *pSession : m_Sessions )
	{
		V_FileBase( pSession->GetFileName(), szBase, sizeof( szBase ) );
		if ( !V_stricmp_fast( szBase, pBaseName ) )
			return true;
	}
	return false;
}

void CBaseEditorApp::MakeUntitledName( CUtlString *pName )
{
	// One counter for the whole process, raised before each try.
	static int s_nUntitledCounter = 0;
	CUtlString strBase;
	do
	{
		++s_nUntitledCounter;
		strBase.Format( "%s%d", m_strUntitledPrefix.Get(), s_nUntitledCounter );
	} while ( IsUntitledNameTaken( strBase ) );
	pName->Format( "%s\\%s", m_strDefaultDirectory.Get(), strBase.Get() );
}

CBaseEditorSession *CBaseEditorApp::NewSession()
{
	CUtlString strName;
	MakeUntitledName( &strName );
	CBaseEditorSession *pSession = CreateSession();
	if ( !pSession )
		return nullptr;
	if ( !pSession->New( strName ) )
	{
		DestroySession( pSession );
		return nullptr;
	}
	m_Sessions.push_back( pSession );
	pSession->OnAdded();
	pSession->SetNewFile( true );
	// No file yet: nothing locks it, so it is autosaved like any other.
	pSession->UpdateFileStatus();
	m_AutosaveManager.NoteNewFile( pSession->GetFileName() );
	if ( IBaseEditorWindow *pWindow = GetWindowOf( pSession ) )
		pWindow->OnSessionAdded( pSession );
	SetActiveEditorSession( pSession, false, true );
	return pSession;
}

// ---------------------------------------------------------------------------------------
// Open

bool CBaseEditorApp::OfferSync( const char *pPath )
{
	CSessionVersionControl versionControl( this );
	return versionControl.PromptToSyncNewVersion( pPath );
}

bool CBaseEditorApp::CheckOtherUsers( const char *pPath )
{
	CSessionVersionControl versionControl( this );
	return versionControl.WarnIfOpenByOtherUser( pPath );
}

bool CBaseEditorApp::IsInContent( const char *pPath ) const
{
	CUtlString strRelative;
	if ( EditorFiles::MakeRelative( pPath, "CONTENT", &strRelative ) && strRelative.Get()[ 0 ] != '.' )
		return true;
	return m_bAllowGameFiles && EditorFiles::MakeRelative( pPath, "GAME", &strRelative ) && strRelative.Get()[ 0 ] != '.';
}

bool CBaseEditorApp::ResolveOpenPath( const char *pPath, CUtlString *pFullPath ) const
{
	if ( V_IsAbsolutePath( pPath ) )
	{
		*pFullPath = pPath;
		NormalisePath( pFullPath );
		return true;
	}
	return EditorFiles::FindInSearchPaths( pPath, "CONTENT", pFullPath ) || EditorFiles::FindInSearchPaths( pPath, "GAME", pFullPath );
}

bool CBaseEditorApp::ConfirmOutsideContent( const char *pPath )
{
	// An autosave lies outside the content tree by design: its original's place counts.
	bool bAutosave = IsAutosaveFileName( pPath );
	CUtlString strChecked( pPath );
	if ( bAutosave )
		m_AutosaveManager.GetOriginalFileName( pPath, &strChecked );
	if ( m_bSkipContentCheck || IsInContent( strChecked ) || Plat_IsInTestMode() )
		return true;
	CUtlString strContentRoot;
	EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
	PromptQuestion_t question;
	question.m_eIcon = PROMPT_ICON_QUESTION;
	question.m_strTitle = "Open File";
	question.m_strText.Format( "<br>%s<pre>\"%s\"</pre>is outside of the directory required for game content:<pre>\"%s\"\t</pre>", bAutosave ? "This autosave file's original file location:" : "The file:", strChecked.Get(), strContentRoot.Get() );
	question.m_strInformativeText = "The file must be saved in the game content directory before it can used in game.\nOpen anyway?";
	question.m_nButtons = PROMPT_BUTTON_YES | PROMPT_BUTTON_NO;
	question.m_eDefaultButton = PROMPT_BUTTON_YES;
	return GetPrompt()->Ask( question ) == PROMPT_BUTTON_YES;
}

CBaseEditorSession *CBaseEditorApp::OpenFile( const char *pPath, bool bTrackRecent, const void *pExtra )
{
	if ( m_bOpening )
	{
		Log_Warning( LOG_GENERAL, "Ignoring request to open file %s because the editor is currently in the process of opening another file.\n", pPath );
		return nullptr;
	}
	m_bOpening = true;
	CBaseEditorSession *pSession = OpenFileSteps( pPath, bTrackRecent );
	m_bOpening = false;
	if ( pSession )
	{
		if ( pExtra )
			pSession->ApplyOpenContext( pExtra );
		OnFileOpened( pSession, pSession->GetFileName() );
	}
	return pSession;
}

bool CBaseEditorApp::RefuseAutosaveOfOpenFile( const char *pPath )
{
	if ( !IsAutosaveFileName( pPath ) )
		return false;
	// Two sessions of one file would overwrite each other's work.
	CUtlString strOriginal;
	m_AutosaveManager.GetOriginalFileName( pPath, &strOriginal );
	if ( !FindSessionByFile( strOriginal ) )
		return false;
	GetPrompt()->Warning( "Unable to open", "The source file of this autosave is already open. Close it first to open this file." );
	return true;
}

CBaseEditorSession *CBaseEditorApp::OpenFileSteps( const char *pPath, bool bTrackRecent )
{
	CEditorWaitCursor waitCursor;
	CUtlString strPath;
	if ( !pPath || !*pPath || !ResolveOpenPath( pPath, &strPath ) )
		return nullptr;
	if ( !CanOpenFile( strPath ) )
		return nullptr;
	if ( !ConfirmOutsideContent( strPath ) )
		return nullptr;
	if ( !OfferSync( strPath ) || !CheckOtherUsers( strPath ) )
		return nullptr;
	if ( RefuseAutosaveOfOpenFile( strPath ) )
		return nullptr;

	if ( CBaseEditorSession *pOpen = FindSessionByFile( strPath ) )
	{
		SetActiveEditorSession( pOpen, false, true );
		return pOpen;
	}

	IPrompt *pPrompt = GetPrompt();
	if ( !EditorFiles::Exists( strPath ) )
	{
		CUtlString strText;
		strText.Format( "Cannot open '%s':\nThe file does not exist!", Host_DisplayPath( strPath ).Get() );
		pPrompt->Warning( "Error opening file", strText );
		return nullptr;
	}

	CBaseEditorSession *pSession = nullptr;
	for ( CBaseEditorSession *pCandidate : m_Sessions )
	{
		if ( SessionWantsFile( pCandidate, strPath ) )
			pSession = pCandidate;
	}
	bool bAdded = !pSession;
	if ( !pSession )
	{
		pSession = CreateSession();
		if ( !pSession )
			return nullptr;
		m_Sessions.push_back( pSession );
		pSession->OnAdded();
	}

	pSession->SetFileName( strPath );
	CUtlString strError;
	int nResult = pSession->Open( strPath, &strError );
	CUtlString strText;
	switch ( nResult )
	{
	case EDITOR_OPEN_FAILED:
		strText.Format( "Failed to load '%s':\nError while loading the file:\n%s", Host_DisplayPath( strPath ).Get(), strError.Get() );
		pPrompt->Warning( "Error opening file", strText );
		RemoveSessionFromList( pSession );
		DestroySession( pSession );
		return nullptr;
	case EDITOR_OPEN_LOADED:
		break;
	case EDITOR_OPEN_LOADED_WITH_ERRORS:
		strText.Format( "Loaded '%s':\nwith the following errors:\n%s", Host_DisplayPath( strPath ).Get(), strError.Get() );
		pPrompt->Warning( "File opened with errors", strText );
		break;
	case EDITOR_OPEN_CONTENT_COPY:
		pSession->SetFileName( "" );
		pSession->UpdateFileStatus();
		break;
	default:
		strText.Format( "Failed to load '%s':\nError while loading the file:\n%s", Host_DisplayPath( strPath ).Get(), strError.Get() );
		pPrompt->Warning( "Error opening file", strText );
		break;
	}

	if ( nResult != EDITOR_OPEN_CONTENT_COPY )
	{
		pSession->UpdateFileStatus();
		// An autosave opens as its original, and the original is what was worked on.
		if ( bTrackRecent )
			m_AutosaveManager.NoteFileOpened( *pSession->GetFileName() ? pSession->GetFileName() : strPath.Get(), true );
	}
	pSession->SetNewFile( false );
	if ( IBaseEditorWindow *pWindow = bAdded ? GetWindowOf( pSession ) : nullptr )
		pWindow->OnSessionAdded( pSession );
	SetActiveEditorSession( pSession, false, true );
	return pSession;
}

CBaseEditorSession *CBaseEditorApp::OpenAsset( const char *pContentPath, bool bTrackRecent, const void *pExtra )
{
	if ( !pContentPath || !*pContentPath )
		return nullptr;
	CUtlString strPath;
	bool bFound = EditorFiles::FindInSearchPaths( pContentPath, "CONTENT", &strPath );
	if ( !bFound && m_bAllowGameFiles )
		bFound = EditorFiles::FindInSearchPaths( pContentPath, "GAME", &strPath );
	if ( !bFound )
	{
		CUtlString strText;
		strText.Format( m_bAllowGameFiles ? "Cannot open asset '%s':\nNo corresponding game or content file!\n" : "Cannot open asset '%s':\nNo corresponding content file!\n", pContentPath );
		GetPrompt()->Warning( "Error opening asset", strText );
		return nullptr;
	}
	return OpenFile( strPath, bTrackRecent, pExtra );
}

void CBaseEditorApp::ShowOpenDialog()
{
	CUtlVector<CUtlString> chosen;
	PromptFileRequest_t request;
	request.m_eKind = m_bMultipleOpen ? PROMPT_KIND_OPEN_FILES : PROMPT_KIND_OPEN_FILE;
	request.m_strTitle = "Open";
	request.m_strStartPath = m_strLastLoadDirectory;
	request.m_strFilter = m_strOpenFilter;
	if ( !GetPrompt()->RunFileDialog( request, &chosen ) || chosen.Count() == 0 )
		return;
	CUtlString strDirectory( chosen[ 0 ].Get() );
	NormalisePath( &strDirectory );
	m_strLastLoadDirectory = strDirectory.DirName();
	MarkSettingsDirty();
	// One autosave whose original is open stops the whole choice, before anything opens.
	for ( int i = 0; i < chosen.Count(); ++i )
	{
		CUtlString strName( chosen[ i ].Get() );
		NormalisePath( &strName );
		if ( RefuseAutosaveOfOpenFile( strName ) )
			return;
	}
	for ( int i = 0; i < chosen.Count(); ++i )
	{
		CUtlString strName( chosen[ i ].Get() );
		NormalisePath( &strName );
		OpenFile( strName, true );
	}
}

// ---------------------------------------------------------------------------------------
// Save

bool CBaseEditorApp::CheckSaveTarget( CBaseEditorSession *pSession, const char *pPath )
{
	static const char *const s_pReason = "A new location must be selected in order to save the file.";
	void *pParent = nullptr;
	(void)pSession;
	CUtlString strText;
	if ( EditorFiles::IsLocked( pPath ) )
	{
		strText.Format( "The file <pre>\"%s\"</pre> is in a directory which cannot be modified.<br>%s", pPath, s_pReason );
		GetPrompt()->Warning( "Save session", strText, pParent );
		return false;
	}
	EditorPathClass_t eClass = ClassifyEditorPath( pPath );
	if ( IsEditorPathClassRefused( eClass ) )
	{
		strText.Format( "<pre>\"%s\"</pre> Is not an allowed file path. %s<br><br>%s", pPath, GetEditorPathClassText( eClass ), s_pReason );
		GetPrompt()->Warning( "Save session", strText, pParent );
		return false;
	}
	return true;
}

bool CBaseEditorApp::SaveSession( CBaseEditorSession *pSession )
{
	if ( !pSession || !CanSaveSession( pSession ) )
		return false;
	const char *pFileName = pSession->GetFileName();
	bool bNew = pSession->IsNewFile();
	// A new session goes straight to Save As without a refusal it couldn't have avoided.
	bool bTargetOk = !bNew && CheckSaveTarget( pSession, pFileName );
	bool bWritable = true;
	if ( !bNew && pSession->UsesCheckOut() )
	{
		pSession->CheckOutIfNeeded();
		bWritable = !EditorFiles::Exists( pFileName ) || EditorFiles::IsWritable( pFileName );
	}
	if ( !bNew && bTargetOk && bWritable )
	{
		CEditorWaitCursor waitCursor;
		CUtlString strName( pFileName );
		if ( !pSession->SaveToFile( strName, strName, false ) )
			return false;
		pSession->SetModified( false );
		return true;
	}
	return SaveSessionAs( pSession );
}

bool CBaseEditorApp::SaveActiveSession()
{
	if ( !m_pActiveSession )
		return false;
	if ( IBaseEditorWindow *pWindow = m_pActiveSession->GetWindow() )
		pWindow->TakeFocus();
	return SaveSession( m_pActiveSession );
}

// Steps 1 to 5 of Save As: the dialog and the normalised answer.
bool CBaseEditorApp::ChooseSaveAsPath( CBaseEditorSession *pSession, CUtlString *pChosen )
{
	CUtlString strStart( pSession->GetFileName() );
	CUtlString strSuggested;
	if ( pSession->IsNewFile() && pSession->GetSuggestedFileName( &strSuggested ) && !strSuggested.IsEmpty() )
	{
		CUtlString strDirectory = m_strLastSaveDirectory.IsEmpty() ? strStart.DirName() : m_strLastSaveDirectory;
		strStart.Format( "%s\\%s", strDirectory.Get(), strSuggested.Get() );
	}
	NormalisePath( &strStart );

	CUtlString strDirectory = strStart.DirName();
	if ( strDirectory.IsEmpty() )
		strDirectory = m_strLastSaveDirectory;
	if ( !EditorFiles::IsDirectory( strDirectory ) || EditorFiles::IsLocked( strDirectory ) )
	{
		if ( !EditorFiles::IsDirectory( m_strDefaultDirectory ) )
			EditorFiles::CreateDirectoryChain( m_strDefaultDirectory );
		strStart.Format( "%s\\%s", m_strDefaultDirectory.Get(), V_UnqualifiedFileName( pSession->GetFileName() ) );
	}
	strStart.StripExtension();

	CUtlString strFilter;
	pSession->GetSaveFilter( &strFilter );
	if ( strFilter.IsEmpty() )
		strFilter = m_strSaveFilter;

	CUtlString strChosen;
	if ( !GetPrompt()->GetSaveFileName( "Save Session", strStart, strFilter, &strChosen ) || strChosen.IsEmpty() )
		return false;

	// Backslashes, and the new file's own name in lower case.
	NormalisePath( &strChosen );
	std::string &storage = strChosen.Storage();
	size_t nNameStart = storage.find_last_of( CORRECT_PATH_SEPARATOR );
	nNameStart = nNameStart == std::string::npos ? 0 : nNameStart + 1;
	for ( size_t i = nNameStart; i < storage.size(); ++i )
		storage[ i ] = char( tolower( (unsigned char)storage[ i ] ) );
	m_strLastSaveDirectory = strChosen.DirName();
	MarkSettingsDirty();
	*pChosen = strChosen;
	return true;
}

bool CBaseEditorApp::SaveSessionAs( CBaseEditorSession *pSession )
{
	if ( !pSession )
		return false;
	IPrompt *pPrompt = GetPrompt();
	for ( ;; )
	{
		CUtlString strNew;
		if ( !ChooseSaveAsPath( pSession, &strNew ) )
			return false;

		if ( !IsInContent( strNew ) && !Plat_IsInTestMode() )
		{
			CUtlString strContentRoot;
			EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
			PromptQuestion_t question;
			question.m_eIcon = PROMPT_ICON_QUESTION;
			question.m_strTitle = "Save File";
			question.m_strText.Format( "<br>The file:<pre>\"%s\"</pre>is outside of the directory required for game content:<pre>\"%s\"</pre>", strNew.Get(), strContentRoot.Get() );
			question.m_strInformativeText = "If the file is saved in this location it cannot be used in game.\nSave here anyway?";
			question.m_nButtons = PROMPT_BUTTON_YES | PROMPT_BUTTON_NO;
			question.m_eDefaultButton = PROMPT_BUTTON_YES;
			if ( pPrompt->Ask( question ) != PROMPT_BUTTON_YES )
				return false;
		}

		CBaseEditorSession *pOther = FindSessionByFile( strNew );
		if ( pOther && pOther != pSession )
		{
			pPrompt->Warning( "Unable to save", "There is already another open editor session with this pathname." );
			return false;
		}

		if ( !CheckSaveTarget( pSession, strNew ) )
			continue;

		CUtlString strOld( pSession->GetFileName() );
		pSession->SetFileName( strNew );
		bool bSaved;
		{
			CEditorWaitCursor waitCursor;
			bSaved = pSession->SaveToFile( strOld, strNew, false );
		}
		if ( bSaved )
		{
			m_AutosaveManager.NoteFileOpened( strNew, false );
			if ( pSession->IsNewFile() )
			{
				m_AutosaveManager.RemoveNewFile( strOld );
				pSession->SetNewFile( false );
			}
			pSession->SetModified( false );
		}
		else
			pSession->SetFileName( strOld );
		pSession->UpdateFileStatus();
		return bSaved;
	}
}

void CBaseEditorApp::ReloadActiveSession()
{
	if ( m_pActiveSession )
		m_pActiveSession->ConfirmReload();
}

// ---------------------------------------------------------------------------------------
// Close

void CBaseEditorApp::RemoveSessionFromList( CBaseEditorSession *pSession )
{
	m_Sessions.erase( std::remove( m_Sessions.begin(), m_Sessions.end(), pSession ), m_Sessions.end() );
	m_SessionHistory.Remove( pSession );
	if ( m_pActiveSession == pSession )
	{
		m_pActiveSession = nullptr;
		SessionActivated( pSession, nullptr );
	}
}

bool CBaseEditorApp::CloseSession( CBaseEditorSession *pSession )
{
	if ( m_bOpening )
		return false;
	if ( !pSession || !CanCloseSession( pSession ) || std::find( m_Sessions.begin(), m_Sessions.end(), pSession ) == m_Sessions.end() )
		return true;
	if ( !pSession->Close() )
		return false;
	if ( pSession == m_pActiveSession )
		SetActiveEditorSession( GetOtherSession( pSession ), false, false );
	RemoveSessionFromList( pSession );
	if ( IBaseEditorWindow *pWindow = GetWindowOf( pSession ) )
		pWindow->OnSessionRemoved( pSession );
	CUtlString strName( pSession->GetFileName() );
	m_AutosaveManager.RemoveNewFile( strName );
	DestroySession( pSession );
	if ( !strName.IsEmpty() && !FindSessionByFile( strName ) )
		m_AutosaveManager.NoteFileClosed( strName );
	return true;
}

bool CBaseEditorApp::CloseAllSessions()
{
	std::vector<CBaseEditorSession *> sessions = m_Sessions;
	for ( CBaseEditorSession *pSession : sessions )
	{
		if ( !CloseSession( pSession ) )
			return false;
	}
	return true;
}

// ---------------------------------------------------------------------------------------
// Version control commands

bool CBaseEditorApp::VersionControlAdd()
{
	if ( !m_pActiveSession )
		return false;
	CSessionVersionControl versionControl( this );
	if ( !versionControl.IsVersionControlUsable() )
		return false;
	m_pActiveSession->AddToVersionControl();
	if ( m_pActiveSession->IsInVersionControl() )
		return true;
	CUtlString strText;
	strText.Format( "Could not add file to version control: %s", versionControl.GetLastError() );
	GetPrompt()->Warning( "Add failed", strText );
	return false;
}

bool CBaseEditorApp::VersionControlCheckOut()
{
	if ( !m_pActiveSession )
		return false;
	CSessionVersionControl versionControl( this );
	if ( versionControl.CheckOutFile( m_pActiveSession->GetFileName() ) == 0 )
	{
		m_pActiveSession->UpdateFileStatus();
		return true;
	}
	CUtlString strText;
	strText.Format( "Could not check out file\n%s", versionControl.GetLastError() );
	GetPrompt()->Warning( "Check Out failed", strText );
	return false;
}

// The check-in and status dialogs need a connected service; without one the user hears
// why nothing opens.
static bool WarnVersionControlUnavailable( CBaseEditorApp *pApp, const char *pTitle )
{
	CSessionVersionControl versionControl( pApp );
	if ( versionControl.IsVersionControlUsable() )
		return false;
	CUtlString strText;
	strText.Format( "Version control is not available: %s", versionControl.GetLastError() );
	GetPrompt()->Warning( pTitle, strText );
	return true;
}

bool CBaseEditorApp::VersionControlCheckIn()
{
	if ( !m_pActiveSession || WarnVersionControlUnavailable( this, "Check In" ) )
		return false;
	return m_pActiveSession->CanCheckIn();
}

bool CBaseEditorApp::VersionControlCheckInAll()
{
	if ( m_Sessions.empty() || WarnVersionControlUnavailable( this, "Check In All" ) )
		return false;
	return std::any_of( m_Sessions.begin(), m_Sessions.end(), []( CBaseEditorSession *pSession ) { return pSession->CanCheckIn(); } );
}

bool CBaseEditorApp::VersionControlStatus()
{
	return !WarnVersionControlUnavailable( this, "Status" );
}
