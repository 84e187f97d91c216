// The application's bindable commands, context "ZolApp". Keys come from the binding
// files; the menus run the same commands through bindable actions.

#include "core/logging/logging.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"
#include "tools/toolutils2/baseeditorapp/editorwaitcursor.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/zol/editor/particlepreview.h"
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
	d.AddClickCommand( "VersionControlAdd", []( CZolApp *pApp ) { pApp->VersionControlAdd(); } );
	d.AddClickCommand( "VersionControlCheckIn", []( CZolApp *pApp ) { pApp->VersionControlCheckIn(); } );
	d.AddClickCommand( "VersionControlCheckOut", []( CZolApp *pApp ) { pApp->VersionControlCheckOut(); } );
	d.AddClickCommand( "VersionControlCheckInAll", []( CZolApp *pApp ) { pApp->VersionControlCheckInAll(); } );
	d.AddClickCommand( "VersionControlStatus", []( CZolApp *pApp ) { pApp->VersionControlStatus(); } );
	d.AddClickCommand( "ActivateNextEditorSession", []( CZolApp *pApp ) { pApp->ActivateNextEditorSession(); } );
	d.AddClickCommand( "ActivatePreviousEditorSession", []( CZolApp *pApp ) { pApp->ActivatePreviousEditorSession(); } );
	d.AddClickCommand( "NextSession", []( CZolApp *pApp ) { pApp->OpenSessionCycling( true ); } );
	d.AddClickCommand( "PreviousSession", []( CZolApp *pApp ) { pApp->OpenSessionCycling( false ); } );
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

static CQParticlePreview *FindPreview( const CZolApp *pApp, const char *pCommand )
{
	CQZolMainWnd *pWindow = pApp->GetZolMainWindow();
	CQParticlePreview *pPreview = pWindow ? pWindow->GetPreview() : nullptr;
	if ( !pPreview )
		Log_Msg( LOG_ZOL, "%s: no preview is running.\n", pCommand );
	return pPreview;
}

void CZolApp::RestartPreview()
{
	if ( CQParticlePreview *pPreview = FindPreview( this, "RestartPreview" ) )
		pPreview->RestartPreview();
}

void CZolApp::RestartGlobal()
{
	if ( CQParticlePreview *pPreview = FindPreview( this, "RestartGlobal" ) )
		pPreview->RestartGlobal();
}

void CZolApp::StopSimulation( bool bPlayEndCaps )
{
	if ( CQParticlePreview *pPreview = FindPreview( this, bPlayEndCaps ? "StopSimWithEndcap" : "StopSim" ) )
		pPreview->StopSim( bPlayEndCaps );
}
