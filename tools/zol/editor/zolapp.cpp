#include "tools/zol/editor/zolapp.h"

#include <algorithm>

#include <QApplication>
#include <QStatusBar>

#include "core/host/gameinfo.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/ihelpsystem.h"
#include "core/host/iprompt.h"
#include "core/host/ipropertyeditorsystem.h"
#include "core/host/iscenesystem.h"
#include "core/host/itoolscenenodefactory.h"
#include "core/host/resourcetype.h"
#include "core/kv3/keyvalues3.h"
#include "core/logging/logging.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/autosavenames.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/toolutils2/baseeditorapp/sessionversioncontrol.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "tools/zol/editor/assetmaintenance/zolvariableconvertdialog.h"
#include "tools/zol/editor/zoladdvariabledialog.h"
#include "tools/zol/editor/zolattributeeditorfactories.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zolchoiceproviders.h"
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
	delete m_pVariableConvertDialog;
	delete m_pMainWnd;
	m_pMainWnd = nullptr;
	if ( s_pZolApp == this )
		s_pZolApp = nullptr;
}

const char *const *CZolApp::GetNeededInterfaces() const
{
	// The preview and the property panel can't run without these.
	static const char *const s_pNeeded[] = { SCENESYSTEM_INTERFACE_VERSION, PROPERTYEDITORSYSTEM_INTERFACE_VERSION, PARTICLESYSTEMMGR_INTERFACE_VERSION,
		TOOLSCENENODEFACTORY_INTERFACE_VERSION, nullptr };
	return s_pNeeded;
}

bool CZolApp::Init()
{
	m_pPreviewSession = nullptr;
	m_pEventHub = std::make_unique<CZolEventHub>();

	m_bAllowScreenSpaceOverlay = false;
	if ( const CGameInfo *pGameInfo = GetGameInfo() )
	{
		if ( const KeyValues *pParticles = pGameInfo->FindKey( "Particles" ) )
			m_bAllowScreenSpaceOverlay = pParticles->GetInt( "ZOL_AllowScreenSpaceOverlay", 0 ) != 0;
	}

	if ( m_bCreatesMainWindow )
	{
		m_pMainWnd = new CQZolMainWnd();
		m_pMainWnd->SetApplication( this );
	}
	// Help: one entry per function class, so the picker and the property panel can show
	// each class's title; then the scope of the graph editor.
	if ( IHelpSystem *pHelp = GetHelpSystem() )
	{
		pHelp->OpenScope( "particles", 1 );
		if ( IParticleSystemMgr *pMgr = GetParticleSystemMgr() )
		{
			for ( int nType = PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR; nType <= PARTICLE_FUNCTION_RENDERER; ++nType )
			{
				ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
				for ( int i = 0; i < pMgr->GetFunctionCount( eType ); ++i )
				{
					CUtlString strKey;
					strKey.Format( "Element.%s", pMgr->GetFunctionSchemaClass( eType, i ) );
					pHelp->AddEntry( "particles", strKey, pMgr->GetFunctionFriendlyName( eType, i ), "", "" );
				}
			}
		}
		pHelp->OpenScope( "pulse_editor", 0 );
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
	RegisterZolAttributeEditorFactories();
	RegisterParticleChoiceProviders( ToolAttrHost() );

	m_bPreviewSessionLocked = false;
	if ( IResourceSystem *pResourceSystem = GetResourceSystem(); pResourceSystem && !m_bResourceListenerAdded )
	{
		pResourceSystem->AddListener( this );
		m_bResourceListenerAdded = true;
	}
	if ( IAssetSystem *pAssetSystem = GetAssetSystem() )
	{
		pAssetSystem->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, &m_ParticleCompiler );
		m_bParticleCompilerRegistered = true;
	}
	GetParticleGameData();
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
	if ( m_bResourceListenerAdded )
	{
		if ( IResourceSystem *pResourceSystem = GetResourceSystem() )
			pResourceSystem->RemoveListener( this );
		m_bResourceListenerAdded = false;
	}
	// The asset system outlives the tool; it must not keep a compiler that goes with it.
	if ( m_bParticleCompilerRegistered )
	{
		if ( IAssetSystem *pAssetSystem = GetAssetSystem() )
			pAssetSystem->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, nullptr );
		m_bParticleCompilerRegistered = false;
	}
	delete m_pVariableConvertDialog;
	m_pVariableConvertDialog = nullptr;
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
	m_WorkingSet.Remove( static_cast<CZolSession *>( pSession )->GetAsset() );
	if ( m_pMainWnd )
		m_pMainWnd->ForgetSession( static_cast<CZolSession *>( pSession ) );
	delete pSession;
}

void CZolApp::SessionActivated( CBaseEditorSession *pOld, CBaseEditorSession *pNew )
{
	if ( pNew && static_cast<CZolSession *>( pNew )->GetAsset() )
		m_WorkingSet.Add( static_cast<CZolSession *>( pNew )->GetAsset() );
	if ( m_pMainWnd )
		m_pMainWnd->SessionActivated( static_cast<CZolSession *>( pOld ), static_cast<CZolSession *>( pNew ) );
	if ( !m_bPreviewSessionLocked )
		SetPreviewSession( static_cast<CZolSession *>( pNew ) );
}

void CZolApp::SetPreviewSession( CZolSession *pSession )
{
	if ( pSession == m_pPreviewSession )
		return;
	// The selected control point carries over to a session that knows it too.
	ParticleParamID_t carriedKey;
	int nCarriedMode = 0;
	if ( m_pPreviewSession )
	{
		carriedKey = m_pPreviewSession->GetSelectedControlPoint();
		nCarriedMode = m_pPreviewSession->GetControlPointEditMode( carriedKey );
	}
	m_pPreviewSession = pSession;
	// Pinned control points stand where they were pinned in whatever session shows.
	if ( pSession )
		pSession->ApplyPersistedControlPoints();
	if ( CToolEventDispatcher *pHub = m_pEventHub ? m_pEventHub->GetEventDispatcher() : nullptr )
	{
		ZolEvent_PreviewSessionChanged_t event;
		event.m_pSession = pSession;
		pHub->Dispatch( event );
	}
	if ( pSession && !carriedKey.IsNone() && pSession->IsKnownControlPoint( carriedKey ) )
	{
		pSession->SetSelectedControlPoint( carriedKey );
		pSession->SetControlPointEditMode( carriedKey, nCarriedMode );
	}
}

CZolSession *CZolApp::GetActiveZolSession() const
{
	return static_cast<CZolSession *>( GetActiveSession() );
}

bool CZolApp::CanAutosaveNow()
{
	return CSimpleEditorSharedWindowApp<CZolSession, CQZolMainWnd>::CanAutosaveNow() && !QApplication::activeModalWidget();
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

void CZolApp::OnFileOpened( CBaseEditorSession *, const char *pPath )
{
	CSessionVersionControl versionControl( this );
	CUtlString strUsers;
	if ( !versionControl.IsOpenByOtherUser( pPath, &strUsers ) || strUsers.IsEmpty() )
		return;
	CUtlString strText;
	strText.Format( "This file is currently opened by: %s", strUsers.Get() );
	ShowStatusMessage( strText, 3 );
}

void CZolApp::ShowStatusMessage( const char *pText, int nSeverity )
{
	m_strLastStatus = pText;
	if ( nSeverity >= 3 )
		Log_Warning( LOG_ZOL, "%s\n", pText );
	if ( m_pMainWnd )
		m_pMainWnd->statusBar()->showMessage( QString::fromUtf8( pText ) );
}

void CZolApp::OnResourcesReloaded( const CUtlVector<ResourceChange_t> &changes )
{
	IAssetSystem *pAssetSystem = GetAssetSystem();
	if ( !pAssetSystem || !m_fnAssetPreviewUpdate )
		return;
	for ( const ResourceChange_t &change : changes )
	{
		if ( change.m_nType != RESOURCE_TYPE_PARTICLE_SYSTEM )
			continue;
		IAsset *pAsset = pAssetSystem->FindAssetByResourceName( change.m_strName );
		if ( pAsset && pAsset->IsResident() )
			m_fnAssetPreviewUpdate( pAsset );
	}
}

void CZolApp::OnSessionSaved( CZolSession *pSession, const char *pOldAssetName )
{
	// The asset pane and the preview rebind through the session-activated path; what
	// stays here is telling the panels that the session's asset changed.
	IAssetSystem *pAssetSystem = GetAssetSystem();
	if ( pOldAssetName && pAssetSystem )
		m_WorkingSet.Remove( pAssetSystem->FindAssetByAbsolutePath( pOldAssetName ) );
	if ( m_pMainWnd && pSession )
		m_pMainWnd->OnSessionFileChanged( pSession );
	if ( !pSession || !pSession->GetAsset() )
		return;
	m_WorkingSet.Add( pSession->GetAsset() );
	if ( pSession == m_pPreviewSession )
	{
		if ( CToolEventDispatcher *pHub = m_pEventHub ? m_pEventHub->GetEventDispatcher() : nullptr )
		{
			ZolEvent_PreviewSessionChanged_t event;
			event.m_pSession = pSession;
			pHub->Dispatch( event );
		}
	}
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
		if ( pExtension && V_strnicmp_fast( pExtension, "tfxs", 4 ) == 0 && ( !pExtension[ 4 ] || IsAutosaveFileName( strName ) ) )
		{
			CUtlString strFile;
			strFile.Format( "%s\\%s", strDirectory.Get(), strName.Get() );
			files.push_back( strFile );
		}
	}
	// An autosave whose source is open would replace the open session's file: refuse the
	// whole directory rather than open half of it.
	for ( const CUtlString &strFile : files )
	{
		if ( !IsAutosaveFileName( strFile ) )
			continue;
		CUtlString strSource;
		GetAutosaveManager().GetOriginalFileName( strFile, &strSource );
		if ( FindSessionByFile( strSource ) )
		{
			CUtlString strText;
			strText.Format( "The source file of the autosave '%s' is already open.\nClose it first to open this file.", V_UnqualifiedFileName( strFile ) );
			GetPrompt()->Warning( "Unable to open", strText );
			return;
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

void CZolApp::Beep()
{
	++m_nBeepCount;
	if ( qApp )
		QApplication::beep();
}

bool CZolApp::RunAddVariableDialog( CZolNamedValueContext *pContext, CUtlString *pName, CPulseValueFullType *pType )
{
	if ( m_fnAddVariableDialog )
		return m_fnAddVariableDialog( pContext, pName, pType );
	if ( !m_pMainWnd )
	{
		Log_Msg( LOG_ZOL, "Add Variable: there is no window to ask in; no variable was added.\n" );
		return false;
	}
	CQZolAddVariableDialog dialog( pContext, m_pMainWnd );
	if ( dialog.exec() != QDialog::Accepted )
		return false;
	*pName = dialog.GetVariableName();
	*pType = dialog.GetVariableType();
	return true;
}

void CZolApp::ShowVariableConvertDialog( CZolSession *pSession, int nControlPoint )
{
	if ( !m_pVariableConvertDialog )
		m_pVariableConvertDialog = new CQZolVariableConvertDialog( m_pMainWnd );
	m_pVariableConvertDialog->Show( pSession, nControlPoint );
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
