// The application's bindable commands, context "ZolApp". Keys come from the binding
// files; the menus run the same commands through bindable actions.

#include <algorithm>

#include "core/logging/logging.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/editorwaitcursor.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmainwnd.h"

static void BuildZolAppCommands( CBindTargetDescriptor<CZolApp> &d )
{
	d.AddClickCommand( "FileNew", []( CZolApp *pApp ) { pApp->NewSession(); } );
	d.AddClickCommand( "FileOpen", []( CZolApp *pApp ) { pApp->ShowOpenDialog(); } );
	d.AddClickCommand( "FileSave", []( CZolApp *pApp ) { pApp->SaveActiveSession(); } );
	d.AddClickCommand( "FileSaveAs", []( CZolApp *pApp ) {
		if ( CBaseEditorSession *pSession = pApp->GetActiveSession() )
			pApp->SaveSessionAs( pSession );
	} );
	d.AddClickCommand( "FileClose", []( CZolApp *pApp ) {
		if ( CBaseEditorSession *pSession = pApp->GetActiveSession() )
		{
			CEditorWaitCursor waitCursor;
			pApp->CloseSession( pSession );
		}
	} );
	d.AddClickCommand( "FileReload", []( CZolApp *pApp ) { pApp->ReloadActiveSession(); } );
	d.AddClickCommand( "ClearRecentFiles", []( CZolApp *pApp ) {
		pApp->GetAutosaveManager().ClearRecentFiles();
		pApp->MarkSettingsDirty();
	} );
	d.AddClickCommand( "VersionControlAdd", []( CZolApp *pApp ) {
		CBaseEditorSession *pSession = pApp->GetActiveSession();
		if ( pSession && pSession->CanAddToVersionControl() )
			pSession->AddToVersionControl();
	} );
	// This host has no version control service: check in and status have nothing to
	// talk to, and the framework offers no operation for them.
	d.AddClickCommand( "VersionControlCheckIn", []( CZolApp * ) { Log_Msg( LOG_ZOL, "Version control is not available.\n" ); } );
	d.AddClickCommand( "VersionControlCheckOut", []( CZolApp *pApp ) {
		CBaseEditorSession *pSession = pApp->GetActiveSession();
		if ( pSession && pSession->CanCheckOut() )
			pSession->CheckOutIfNeeded();
	} );
	d.AddClickCommand( "VersionControlCheckInAll", []( CZolApp * ) { Log_Msg( LOG_ZOL, "Version control is not available.\n" ); } );
	d.AddClickCommand( "VersionControlStatus", []( CZolApp * ) { Log_Msg( LOG_ZOL, "Version control is not available.\n" ); } );
	d.AddClickCommand( "ActivateNextEditorSession", []( CZolApp *pApp ) { pApp->ActivateNextEditorSession(); } );
	d.AddClickCommand( "ActivatePreviousEditorSession", []( CZolApp *pApp ) { pApp->ActivatePreviousEditorSession(); } );
	d.AddClickCommand( "NextSession", []( CZolApp *pApp ) { pApp->CycleSession( true ); } );
	d.AddClickCommand( "PreviousSession", []( CZolApp *pApp ) { pApp->CycleSession( false ); } );
	d.AddClickCommand( "FileOpenDir", []( CZolApp *pApp ) { pApp->ShowOpenDirectoryDialog(); } );
	d.AddClickCommand( "FileSaveAll", []( CZolApp *pApp ) { pApp->SaveAllSessions(); } );
	d.AddClickCommand( "FileCloseAll", []( CZolApp *pApp ) { pApp->CloseAllSessions(); } );
	d.AddClickCommand( "ResetLayout", []( CZolApp *pApp ) {
		if ( CQZolMainWnd *pWindow = pApp->GetZolMainWindow() )
			pWindow->ResetLayout();
	} );
	d.AddClickCommand( "RestartPreview", []( CZolApp *pApp ) { pApp->RestartPreview(); } );
	d.AddClickCommand( "RestartGlobal", []( CZolApp *pApp ) { pApp->RestartGlobal(); } );
	d.AddClickCommand( "StopSim", []( CZolApp *pApp ) { pApp->StopSimulation( false ); } );
	d.AddClickCommand( "StopSimWithEndcap", []( CZolApp *pApp ) { pApp->StopSimulation( true ); } );
}

static CBindTargetDescriptor<CZolApp> s_ZolAppCommands( "ZolApp", "CZolApp", &BuildZolAppCommands );

const CBindTargetDescriptorBase *CZolApp::GetBindTargetDescriptor() const
{
	return &s_ZolAppCommands;
}

void CZolApp::CycleSession( bool bForward )
{
	const int nCount = int( m_Sessions.size() );
	if ( nCount < 2 )
		return;
	auto it = std::find( m_Sessions.begin(), m_Sessions.end(), GetActiveSession() );
	int nIndex = it == m_Sessions.end() ? 0 : int( it - m_Sessions.begin() );
	nIndex = ( nIndex + ( bForward ? 1 : nCount - 1 ) ) % nCount;
	SetActiveEditorSession( m_Sessions[ size_t( nIndex ) ], false, true );
}

void CZolApp::RestartPreview()
{
	Log_Msg( LOG_ZOL, "RestartPreview: no preview is running.\n" );
}

void CZolApp::RestartGlobal()
{
	Log_Msg( LOG_ZOL, "RestartGlobal: no preview is running.\n" );
}

void CZolApp::StopSimulation( bool bPlayEndCaps )
{
	Log_Msg( LOG_ZOL, "%s: no preview is running.\n", bPlayEndCaps ? "StopSimWithEndcap" : "StopSim" );
}
