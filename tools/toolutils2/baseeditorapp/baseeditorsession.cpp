#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"

#include "core/host/hostpaths.h"

#include <algorithm>

#include "core/host/iprompt.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/autosavenames.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/baseeditorapp/ibaseeditorwindow.h"
#include "tools/toolutils2/baseeditorapp/ieditorsessionlistener.h"

CBaseEditorSession::CBaseEditorSession( CBaseEditorApp *pApp ) : m_pApp( pApp ), m_VersionControl( pApp )
{
}

CBaseEditorSession::~CBaseEditorSession()
{
	// A copy: a listener may remove itself while it hears this.
	std::vector<IEditorSessionListener *> listeners = m_Listeners;
	for ( IEditorSessionListener *pListener : listeners )
		pListener->OnSessionDestroyed( this );
}

void CBaseEditorSession::AddListener( IEditorSessionListener *pListener )
{
	if ( std::find( m_Listeners.begin(), m_Listeners.end(), pListener ) == m_Listeners.end() )
		m_Listeners.push_back( pListener );
}

void CBaseEditorSession::RemoveListener( IEditorSessionListener *pListener )
{
	m_Listeners.erase( std::remove( m_Listeners.begin(), m_Listeners.end(), pListener ), m_Listeners.end() );
}

void CBaseEditorSession::NotifyListeners( int nWhat )
{
	std::vector<IEditorSessionListener *> listeners = m_Listeners;
	for ( IEditorSessionListener *pListener : listeners )
		pListener->OnSessionChanged( this, nWhat );
}

bool CBaseEditorSession::QuerySave( bool bClearModified )
{
	if ( !IsModified() )
		return true;
	if ( IBaseEditorWindow *pWindow = GetWindow() )
		pWindow->BringUp();
	CUtlString strText;
	strText.Format( "<br>The file:<pre>\"%s\"</pre>has unsaved changes. Save them?", Host_DisplayPath( GetFileName() ).Get() );
	PromptButton_t eAnswer = GetPrompt()->Ask( PROMPT_ICON_QUESTION, "Save changes?", strText, PROMPT_BUTTON_YES | PROMPT_BUTTON_NO | PROMPT_BUTTON_CANCEL, PROMPT_BUTTON_YES );
	if ( eAnswer == PROMPT_BUTTON_YES )
		return m_pApp->SaveSession( this );
	if ( eAnswer == PROMPT_BUTTON_NO )
	{
		if ( bClearModified )
			SetModified( false );
		return true;
	}
	return false;
}

bool CBaseEditorSession::SetFileName( const char *pPath )
{
	if ( !V_strcmp( GetFileName(), pPath ? pPath : "" ) )
		return false;
	StoreFileName( pPath ? pPath : "" );
	++m_nFileNameChanges;
	UpdateFileStatus();
	OnFileNameChanged();
	NotifyListeners( 1 );
	return true;
}

bool CBaseEditorSession::HasFile( const char *pPath ) const
{
	const char *pFileName = GetFileName();
	return *pFileName && pPath && V_PathsMatch( pFileName, pPath );
}

bool CBaseEditorSession::UpdateFileStatus()
{
	const char *pFileName = GetFileName();
	if ( !*pFileName || IsAutosaveFileName( pFileName ) )
		return false;
	bool bOldReadOnly = m_bReadOnly;
	int nOldAction = m_nFileAction;
	bool bOldInVersionControl = m_bInVersionControl;
	bool bOldNotAtHead = m_bNotAtHead;

	// No version control service answers in this host: the file is known to none.
	m_bInVersionControl = false;
	m_nFileAction = EDITOR_FILE_ACTION_NONE;
	m_bNotAtHead = false;
	if ( EditorFiles::Exists( pFileName ) )
	{
		m_bLocked = EditorFiles::IsLocked( pFileName );
		m_bReadOnly = m_bLocked || !EditorFiles::IsWritable( pFileName );
	}
	else
	{
		m_bLocked = false;
		m_bReadOnly = false;
	}
	bool bChanged = bOldReadOnly != m_bReadOnly || nOldAction != m_nFileAction || bOldInVersionControl != m_bInVersionControl || bOldNotAtHead != m_bNotAtHead;
	if ( bChanged )
		NotifyListeners( 0 );
	return bChanged;
}

void CBaseEditorSession::GetTitle( CUtlString *pOut, int nMode ) const
{
	pOut->Clear();
	const char *pFileName = GetFileName();
	if ( !*pFileName )
		return;
	char szBase[ EDITOR_MAX_PATH ];
	V_FileBase( pFileName, szBase, sizeof( szBase ) );
	if ( nMode == 0 )
	{
		if ( !EditorFiles::MakeRelative( pFileName, "CONTENT", pOut ) )
			*pOut = szBase;
		*pOut = Host_DisplayPath( *pOut );
	}
	else if ( nMode == 1 )
		*pOut = V_UnqualifiedFileName( pFileName );
	else
		*pOut = szBase;

	if ( m_bReadOnly )
		pOut->Append( " [ READ ONLY ]" );
	if ( m_VersionControl.IsVersionControlUsable() )
	{
		if ( m_bInVersionControl )
		{
			static const char *const s_pActionSuffixes[] = { "", " [ OPENED FOR ADD ]", " [ CHECKED OUT ]", " [ OPENED FOR DELETE ]", " [ OPENED FOR INTEGRATE ]" };
			if ( m_nFileAction > 0 && m_nFileAction <= 4 )
				pOut->Append( s_pActionSuffixes[ m_nFileAction ] );
			if ( m_bNotAtHead )
				pOut->Append( " [ NOT SYNCED TO LATEST REVISION ]" );
		}
		else
			pOut->Append( " [ NOT IN VERSION CONTROL ]" );
	}
	if ( IsModified() )
		pOut->Append( " *" );
}

bool CBaseEditorSession::CanAddToVersionControl() const
{
	return m_VersionControl.IsVersionControlUsable() && !m_bInVersionControl && *GetFileName();
}

bool CBaseEditorSession::CanCheckIn() const
{
	return m_VersionControl.IsVersionControlUsable() && m_bInVersionControl && ( m_nFileAction == EDITOR_FILE_ACTION_ADD || m_nFileAction == EDITOR_FILE_ACTION_EDIT );
}

bool CBaseEditorSession::CanCheckOut() const
{
	return m_VersionControl.IsVersionControlUsable() && m_bInVersionControl && m_nFileAction == EDITOR_FILE_ACTION_NONE;
}

void CBaseEditorSession::CheckOutIfNeeded()
{
	UpdateFileStatus();
}

void CBaseEditorSession::AddToVersionControl()
{
	if ( CanAddToVersionControl() && m_VersionControl.AddFileToVersionControl( GetFileName() ) )
		UpdateFileStatus();
}

void CBaseEditorSession::ConfirmReload()
{
	const char *pFileName = GetFileName();
	IPrompt *pPrompt = GetPrompt();
	if ( !*pFileName || !EditorFiles::Exists( pFileName ) )
	{
		CUtlString strText;
		strText.Format( "Cannot reload - The file\n\"%s\"\ndoes not exist.", Host_DisplayPath( pFileName ).Get() );
		pPrompt->Warning( "Cannot Reload", strText );
		return;
	}
	PromptQuestion_t question;
	question.m_nButtons = PROMPT_BUTTON_YES | PROMPT_BUTTON_NO;
	question.m_eDefaultButton = PROMPT_BUTTON_NO;
	if ( IsModified() )
	{
		question.m_eIcon = PROMPT_ICON_CRITICAL;
		question.m_strTitle = "Warning!";
		question.m_strText.Format( "The file:<pre>\"%s\"</pre>has unsaved changes. Do you want to discard them?", Host_DisplayPath( pFileName ).Get() );
		question.SetButtonLabel( PROMPT_BUTTON_YES, "Yes - Discard and reload from disk" );
		question.SetButtonLabel( PROMPT_BUTTON_NO, "Cancel and keep my changes" );
	}
	else
	{
		question.m_eIcon = PROMPT_ICON_QUESTION;
		question.m_strTitle = "Reload?";
		question.m_strText.Format( "Reload this file?<br><pre>\"%s\"</pre>", Host_DisplayPath( pFileName ).Get() );
		question.SetButtonLabel( PROMPT_BUTTON_YES, "Reload" );
		question.SetButtonLabel( PROMPT_BUTTON_NO, "Cancel" );
	}
	if ( pPrompt->Ask( question ) != PROMPT_BUTTON_NO )
		Reload();
}

void CSimpleBaseEditorSession::SetModified( bool bModified )
{
	m_bModified = bModified;
	// Every edit, not only the first, makes the next autosave take the session.
	if ( bModified )
		SetNeedsAutosave( true );
	NotifyListeners( 0 );
}

IBaseEditorWindow *CSimpleSharedWindowEditorSession::GetWindow() const
{
	return m_pSharedApp->GetMainWindow();
}
