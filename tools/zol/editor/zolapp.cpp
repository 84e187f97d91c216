#include "tools/zol/editor/zolapp.h"

#include <algorithm>

#include "core/host/iassetsystem.h"
#include "core/host/iprompt.h"
#include "core/host/resourcetype.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolevents.h"

static CZolApp *s_pZolApp = nullptr;

CZolApp *ZolApp()
{
	return s_pZolApp;
}

CZolApp::CZolApp()
{
	s_pZolApp = this;
}

CZolApp::~CZolApp()
{
	delete m_pMainWnd;
	m_pMainWnd = nullptr;
	if ( s_pZolApp == this )
		s_pZolApp = nullptr;
}

const char *const *CZolApp::GetNeededInterfaces() const
{
	// The scene, property editor and tool scene services join this list as they come to
	// the host; the preview cannot run without them.
	static const char *const s_pNeeded[] = { nullptr };
	return s_pNeeded;
}

bool CZolApp::Init()
{
	m_pPreviewSession = nullptr;
	m_pEventHub = std::make_unique<CZolEventHub>();
	if ( m_bCreatesMainWindow )
	{
		m_pMainWnd = new CQZolMainWnd();
		m_pMainWnd->SetApplication( this );
	}
	// Keys of what all editors share, then the particle editor's own.
	CQInputBindManager::Get()->LoadBindingsOnce( "tools/keybindings/shared_tool_key_bindings.txt" );
	CQInputBindManager::Get()->LoadBindingsOnce( "tools/keybindings/zol_key_bindings.txt" );
	SetToolName( "particles" );
	SetOpenFilter( "Particle System Definition (*.tfxs);;Particle System Definition Autosave (*.tfxs_autosave);;All Files (*)" );
	SetSaveFilter( "Particle System Definition (*.tfxs);;" );
	SetUntitledPrefix( "untitled_particle_" );
	CUtlString strContentRoot;
	EditorFiles::GetRoot( "CONTENTROOT", &strContentRoot );
	if ( !strContentRoot.IsEmpty() )
	{
		CUtlString strDefault;
		strDefault.Format( "%s\\particles", strContentRoot.Get() );
		SetDefaultDirectory( strDefault );
	}
	m_bPreviewSessionLocked = false;
	if ( IAssetSystem *pAssetSystem = GetAssetSystem() )
	{
		pAssetSystem->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, &m_ParticleCompiler );
		m_bParticleCompilerRegistered = true;
	}
	return true;
}

void CZolApp::RunFrame()
{
	for ( CBaseEditorSession *pSession : m_Sessions )
		static_cast<CZolSession *>( pSession )->RunFrame();
	if ( m_pMainWnd )
		m_pMainWnd->RunFrame();
}

void CZolApp::Shutdown()
{
	// The asset system outlives the tool; it must not keep a compiler that goes with it.
	if ( m_bParticleCompilerRegistered )
	{
		if ( IAssetSystem *pAssetSystem = GetAssetSystem() )
			pAssetSystem->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, nullptr );
		m_bParticleCompilerRegistered = false;
	}
	delete m_pMainWnd;
	m_pMainWnd = nullptr;
}

void CZolApp::OnOpenRequest( const ToolOpenRequest_t &request )
{
	if ( request.m_nKind == TOOL_OPEN_REQUEST_SHOW )
	{
		if ( m_pMainWnd )
			m_pMainWnd->BringUp();
		return;
	}
	CSimpleEditorSharedWindowApp<CZolSession, CQZolMainWnd>::OnOpenRequest( request );
}

void CZolApp::DestroySession( CBaseEditorSession *pSession )
{
	if ( pSession == m_pPreviewSession )
		SetPreviewSession( nullptr );
	if ( m_pMainWnd )
		m_pMainWnd->ForgetSession( static_cast<CZolSession *>( pSession ) );
	delete pSession;
}

void CZolApp::SessionActivated( CBaseEditorSession *pOld, CBaseEditorSession *pNew )
{
	if ( m_pMainWnd )
		m_pMainWnd->SessionActivated( static_cast<CZolSession *>( pOld ), static_cast<CZolSession *>( pNew ) );
	if ( !m_bPreviewSessionLocked )
		SetPreviewSession( static_cast<CZolSession *>( pNew ) );
}

void CZolApp::SetPreviewSession( CZolSession *pSession )
{
	if ( pSession == m_pPreviewSession )
		return;
	m_pPreviewSession = pSession;
	if ( CToolEventDispatcher *pHub = m_pEventHub ? m_pEventHub->GetEventDispatcher() : nullptr )
	{
		ZolEvent_PreviewSessionChanged_t event;
		event.m_pSession = pSession;
		pHub->Dispatch( event );
	}
}

CZolSession *CZolApp::GetActiveZolSession() const
{
	return static_cast<CZolSession *>( GetActiveSession() );
}

CBaseEditorSession *CZolApp::GetOtherSession( CBaseEditorSession *pSession )
{
	if ( m_Sessions.size() < 2 )
		return nullptr;
	return m_Sessions[ 0 ] == pSession ? m_Sessions[ 1 ] : m_Sessions[ 0 ];
}

IBaseEditorWindow *CZolApp::GetMainWindow()
{
	return m_pMainWnd;
}

// ---------------------------------------------------------------------------------------
// Directories

void CZolApp::OpenDirectory( const char *pDirectory )
{
	if ( !pDirectory || !*pDirectory )
		return;
	CUtlString strDirectory( pDirectory );
	strDirectory.FixSlashes();
	m_RecentDirectories.erase( std::remove_if( m_RecentDirectories.begin(), m_RecentDirectories.end(), [ & ]( const CUtlString &s ) { return s.IsEqual_CaseInsensitive( strDirectory ); } ), m_RecentDirectories.end() );
	m_RecentDirectories.insert( m_RecentDirectories.begin(), strDirectory );
	MarkSettingsDirty();

	std::vector<CUtlString> names;
	EditorFiles::ListDirectory( strDirectory, &names );
	std::vector<CUtlString> files;
	for ( const CUtlString &strName : names )
	{
		const char *pExtension = V_GetFileExtension( strName );
		if ( pExtension && !V_stricmp_fast( pExtension, "tfxs" ) )
		{
			CUtlString strFile;
			strFile.Format( "%s\\%s", strDirectory.Get(), strName.Get() );
			files.push_back( strFile );
		}
	}
	for ( auto it = files.rbegin(); it != files.rend(); ++it )
		OpenFile( *it, true );
}

void CZolApp::ShowOpenDirectoryDialog()
{
	CUtlString strChosen;
	if ( GetPrompt()->GetExistingDirectory( "Open All In Directory", GetLastLoadDirectory(), &strChosen ) )
		OpenDirectory( strChosen );
}

void CZolApp::SaveAllSessions()
{
	std::vector<CBaseEditorSession *> sessions = m_Sessions;
	for ( CBaseEditorSession *pSession : sessions )
	{
		if ( pSession->IsModified() )
			SaveSession( pSession );
	}
}

// ---------------------------------------------------------------------------------------
// Settings

void CZolApp::RestoreToolSettings( const KeyValues3 *pTable )
{
	m_RecentDirectories.clear();
	const KeyValues3 *pDirectories = pTable ? pTable->FindMember( "RecentDirectories" ) : nullptr;
	if ( !pDirectories || !pDirectories->IsTable() )
		return;
	char szKey[ 32 ];
	for ( int i = 0; i < pDirectories->GetMemberCount(); ++i )
	{
		V_snprintf( szKey, sizeof( szKey ), "Directory %i", i );
		const KeyValues3 *pValue = pDirectories->FindMember( szKey );
		if ( !pValue || !pValue->IsString() )
			continue;
		CUtlString strDirectory( pValue->GetString() );
		if ( strDirectory.Length() >= 260 )
			continue;
		strDirectory.FixSlashes();
		if ( !EditorFiles::IsDirectory( strDirectory ) )
			continue;
		bool bDuplicate = std::any_of( m_RecentDirectories.begin(), m_RecentDirectories.end(), [ & ]( const CUtlString &s ) { return s.IsEqual_CaseInsensitive( strDirectory ); } );
		if ( !bDuplicate )
			m_RecentDirectories.push_back( strDirectory );
	}
}

void CZolApp::SaveToolSettings( KeyValues3 *pTable )
{
	KeyValues3 *pDirectories = pTable->SetMemberEmptyTable( "RecentDirectories" );
	char szKey[ 32 ];
	for ( size_t i = 0; i < m_RecentDirectories.size(); ++i )
	{
		V_snprintf( szKey, sizeof( szKey ), "Directory %i", int( i ) );
		pDirectories->SetMemberString( szKey, m_RecentDirectories[ i ] );
	}
}

// ---------------------------------------------------------------------------------------
// Clipboard

void CZolApp::SetClipboardHooks( ClipboardSetFn_t fnSet, ClipboardGetFn_t fnGet )
{
	m_fnClipboardSet = std::move( fnSet );
	m_fnClipboardGet = std::move( fnGet );
}

void CZolApp::SetClipboardText( const char *pText )
{
	if ( m_fnClipboardSet )
		m_fnClipboardSet( pText );
	else
		m_strClipboard = pText;
}

void CZolApp::GetClipboardText( CUtlString *pText ) const
{
	*pText = m_fnClipboardGet ? m_fnClipboardGet() : m_strClipboard;
}
