#include "tools/zol/editor/zolsession.h"

#include <algorithm>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/iprompt.h"
#include "core/host/iresourcesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "core/particles/particlemodelresource.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/autosavenames.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/baseeditorapp/ibaseeditorwindow.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/zol/editor/particleassetcompiler.h"
#include "tools/zol/editor/zolapp.h"
#include "zoldoc_lib/izolpreviewtarget.h"
#include "zoldoc_lib/zolconfigurationreader.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zolcontrolpointundo.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolpersistedcontrolpoints.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

CZolSession::CZolSession( CBaseEditorApp *pApp ) : CSimpleSharedWindowEditorSession( pApp ), m_EventMap( this )
{
	CZolApp *pZolApp = GetZolApp();
	m_pEventHub = pZolApp ? pZolApp->GetEventHub() : nullptr;
	m_pDoc = std::make_unique<CZolDoc>( true );
	m_pDoc->SetEventHub( m_pEventHub );
	m_pControlPointState = std::make_unique<CZolControlPointState>( this );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnDocumentChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnFunctionEnableDisableChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnFunctionListChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnDocumentReplaced );
	m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, m_pDoc->GetEventDispatcher() );
}

CZolSession::~CZolSession()
{
	// The resource goes back to what the file holds.
	ReleaseAsset();
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	m_pNamedValueContext.reset();
	m_pDoc.reset();
	m_ControlPointUndoables.clear();
	m_pControlPointState->Clear();
	m_pControlPointState.reset();
}

void CZolSession::ReleaseAsset()
{
	if ( m_pAsset )
		m_pAsset->EndEditing();
	m_DefinitionUsage = CParticleDefinitionUsage();
	m_bUsageFromResource = false;
	if ( m_pAsset )
		m_pAsset->Release();
	m_pAsset = nullptr;
	m_hResource.Reset();
}

CZolApp *CZolSession::GetZolApp() const
{
	return static_cast<CZolApp *>( m_pApp );
}

// ---------------------------------------------------------------------------------------
// Document events

void CZolSession::MarkEdited()
{
	m_bNeedsRecompile = true;
	SetModified( true );
}

void CZolSession::OnDocumentChanged( const ZolEvent_DocumentModified_t & )
{
	MarkEdited();
}

void CZolSession::OnFunctionEnableDisableChanged( const ZolEvent_FunctionEnableDisableChanged_t & )
{
	MarkEdited();
}

void CZolSession::OnFunctionListChanged( const ZolEvent_FunctionListChanged_t & )
{
	MarkEdited();
	// Children may have come or gone: the family is found anew on the next query.
	if ( m_pNamedValueContext )
		m_pNamedValueContext->ClearNamedValueCache();
}

void CZolSession::OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & )
{
	if ( m_pNamedValueContext )
		m_pNamedValueContext->ClearNamedValueCache();
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	if ( !pRoot || !pRoot->FindConfiguration( m_CurrentConfigName ) )
		SelectFirstConfiguration();
	MarkEdited();
}

void CZolSession::SelectFirstConfiguration()
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	ZolControlPointConfiguration_t *pFirst = ( pRoot && pRoot->GetConfigurationCount() > 0 ) ? pRoot->GetConfiguration( 0 ) : nullptr;
	if ( pFirst && *pFirst->GetName() )
	{
		m_CurrentConfigName = pFirst->GetName();
		SelectConfiguration( pFirst );
		return;
	}
	m_CurrentConfigName.Clear();
	SendEvent( ZolEvent_ControlPointListChanged_t() );
}

// ---------------------------------------------------------------------------------------
// New, open, reload

bool CZolSession::New( const char *pName )
{
	CUtlString strName;
	strName.Format( "%s.tfxs", pName );
	StoreFileName( strName );
	IAssetSystem *pAssetSystem = GetAssetSystem();
	SetAsset( pAssetSystem ? pAssetSystem->FindAssetByAbsolutePath( strName ) : nullptr );
	m_pDoc->Reset();
	RecompileResource();
	return PostOpen();
}

int CZolSession::Open( const char *pPath, CUtlString *pError )
{
	if ( !LoadSession( pPath, pError ) )
		return EDITOR_OPEN_FAILED;
	if ( !PostOpen() )
		return EDITOR_OPEN_FAILED;
	// A file that couldn't be bound to its asset opens for editing, and the framework
	// shows why it won't preview.
	return pError && !pError->IsEmpty() ? EDITOR_OPEN_LOADED_WITH_ERRORS : EDITOR_OPEN_LOADED;
}

bool CZolSession::LoadSession( const char *pPath, CUtlString *pError )
{
	if ( !m_pDoc->LoadFromFile( pPath, nullptr, pError ) )
		return false;
	// An autosave is edited as its source: a later save replaces the source.
	if ( IsAutosaveFileName( pPath ) )
	{
		CUtlString strSource;
		m_pApp->GetAutosaveManager().GetOriginalFileName( pPath, &strSource );
		StoreFileName( strSource );
	}
	// A file that can't be bound stays editable; it just doesn't compile.
	BindAsset( pError );
	if ( CQZolMainWnd *pWindow = GetZolApp() ? GetZolApp()->GetZolMainWindow() : nullptr )
		pWindow->OnSessionFileChanged( this );
	return true;
}

bool CZolSession::BindAsset( CUtlString *pError )
{
	CUtlString strFile( GetFileName() );
	strFile.FixSlashes( '/' );
	if ( IsAutosaveFileName( strFile ) )
		return false;
	if ( m_pAsset )
		m_pAsset->EndEditing();

	CUtlString strRelative;
	IAssetSystem *pAssetSystem = GetAssetSystem();
	if ( !pAssetSystem || !EditorFiles::MakeRelative( strFile, "CONTENTROOT", &strRelative ) || strRelative.IsEmpty() || strRelative.Get()[ 0 ] == '.' )
	{
		SetAsset( nullptr );
		return false;
	}
	IAsset *pAsset = nullptr;
	if ( EditorFiles::Exists( strFile ) )
	{
		pAsset = pAssetSystem->FindAssetByContentPath( strRelative );
		// A file written since the content was indexed (a save under a new name).
		if ( !pAsset && pAssetSystem->Rescan() > 0 )
			pAsset = pAssetSystem->FindAssetByContentPath( strRelative );
		if ( !pAsset )
		{
			if ( pError && pError->IsEmpty() )
				pError->Format( "Unable to find asset for the file %s! Was this file added to a read-only path but not the asset database?", strFile.Get() );
			SetAsset( nullptr );
			return false;
		}
		if ( !V_PathsMatch( pAsset->GetAbsolutePath(), GetFileName() ) )
		{
			if ( pError )
				pError->Format( "This session's file path %s is overridden by a file %s in leafier mod. Unable to open.\n", GetFileName(), pAsset->GetAbsolutePath() );
			SetAsset( nullptr );
			return false;
		}
	}
	else
		pAsset = pAssetSystem->AddAssetForNewFile( strRelative );
	SetAsset( pAsset );
	if ( !m_pAsset )
		return false;
	RecompileResource();
	return true;
}

void CZolSession::SetAsset( IAsset *pAsset )
{
	m_DefinitionUsage = CParticleDefinitionUsage();
	m_bUsageFromResource = false;
	if ( pAsset && pAsset->GetType() == RESOURCE_TYPE_PARTICLE_SYSTEM )
		pAsset->AddRef();
	else
		pAsset = nullptr;
	if ( m_pAsset )
		m_pAsset->Release();
	m_pAsset = pAsset;
	if ( m_pAsset && !m_pAsset->IsResident() )
		m_pAsset->Load();

	CResourceHandle hResource;
	if ( m_pAsset )
	{
		if ( IResourceSystem *pResourceSystem = GetResourceSystem() )
			hResource = pResourceSystem->GetResource( m_pAsset->GetResourceName() );
		if ( hResource && hResource->GetType() != RESOURCE_TYPE_PARTICLE_SYSTEM )
			hResource.Reset();
	}
	m_hResource = std::move( hResource );
	if ( m_hResource )
		UpdateDefinitionUsage();
}

bool CZolSession::UpdateDefinitionUsage()
{
	std::shared_ptr<const CParticleSystemResourceData> pData = m_hResource ? m_hResource->GetDataAs<CParticleSystemResourceData>() : nullptr;
	if ( !pData || !pData->GetDefinition() )
		return false;
	const CParticleDefinitionUsage &usage = pData->GetDefinition()->m_Usage;
	m_bUsageFromResource = true;
	if ( usage == m_DefinitionUsage )
		return false;
	m_DefinitionUsage = usage;
	RebuildKnownControlPoints();
	SendEvent( ZolEvent_ControlPointListChanged_t() );
	return true;
}

void CZolSession::RebuildKnownControlPoints()
{
	m_pControlPointState->RebuildKnownControlPoints( m_DefinitionUsage );
}

void CZolSession::SetSelectedControlPoint( const ParticleParamID_t &key )
{
	if ( key == m_SelectedControlPoint )
		return;
	m_SelectedControlPoint = key;
	ZolEvent_PreviewConfigSelectionChanged_t event;
	event.m_pSession = this;
	SendEvent( event );
}

bool CZolSession::Reload()
{
	CUtlString strError;
	CUtlString strPath( GetFileName() );
	if ( !LoadSession( strPath, &strError ) )
	{
		CUtlString strText;
		strText.Format( "Failed to load '%s':\nError while loading the file:\n%s", strPath.Get(), strError.Get() );
		GetPrompt()->Warning( "Error opening file", strText );
		return false;
	}
	SetModified( false );
	RecompileResource();
	return true;
}

bool CZolSession::PostOpen()
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	if ( pRoot && pRoot->GetConfigurationCount() > 0 )
		SelectFirstConfiguration();
	else if ( pRoot )
	{
		// A file without configurations gets the "preview" one quietly: no modified mark,
		// no undo step.
		m_bSuppressModified = true;
		CUndoHistory::SetRecordingEnabled( false );
		AddConfiguration( "preview" );
		CUndoHistory::SetRecordingEnabled( true );
		m_bSuppressModified = false;
	}
	ApplyPersistedControlPoints();
	SetModified( false );
	return true;
}

// ---------------------------------------------------------------------------------------
// Modified mark, listeners

void CZolSession::NotifyListeners( int )
{
	CSimpleSharedWindowEditorSession::NotifyListeners( 0 );
}

void CZolSession::SetModified( bool bModified )
{
	if ( bModified && m_bSuppressModified )
		return;
	CSimpleSharedWindowEditorSession::SetModified( bModified );
	if ( m_pApp->GetActiveSession() == this )
	{
		if ( IBaseEditorWindow *pWindow = GetWindow() )
		{
			CUtlString strTitle;
			GetTitle( &strTitle, 0 );
			pWindow->SetWindowTitleText( strTitle );
		}
	}
}

// ---------------------------------------------------------------------------------------
// Save and compile

void CZolSession::FilterDrivers( KeyValues3 *pRoot ) const
{
	if ( !m_bUsageFromResource || !pRoot )
		return;
	KeyValues3 *pConfigurations = pRoot->FindMember( "m_controlPointConfigurations" );
	if ( !pConfigurations || !pConfigurations->IsArray() )
		return;
	for ( int nConfig = 0; nConfig < pConfigurations->GetArrayElementCount(); ++nConfig )
	{
		KeyValues3 *pConfig = pConfigurations->GetArrayElement( nConfig );
		if ( !pConfig->IsTable() )
		{
			Log_Once( LOG_ZOL, LS_WARNING, "Class data is a '%s', not a table\n", pConfig->GetTypeAsString() );
			continue;
		}
		KeyValues3 *pDrivers = pConfig->FindMember( "m_drivers" );
		if ( !pDrivers || !pDrivers->IsArray() )
			continue;
		for ( int nDriver = pDrivers->GetArrayElementCount() - 1; nDriver >= 0; --nDriver )
		{
			const KeyValues3 *pDriver = pDrivers->GetArrayElement( nDriver );
			if ( !pDriver->IsTable() )
			{
				Log_Once( LOG_ZOL, LS_WARNING, "Class data is a '%s', not a table\n", pDriver->GetTypeAsString() );
				continue;
			}
			// A saved tree leaves out values at their default: no number is point 0.
			ParticleParamID_t key = ParticleParamID_t::ControlPoint( 0 );
			if ( const KeyValues3 *pPoint = pDriver->FindMember( "m_iControlPoint" ) )
			{
				if ( pPoint->IsString() )
					key = ParticleParamID_t::Named( pPoint->GetString() );
				else if ( pPoint->IsNumber() )
					key = ParticleParamID_t::ControlPoint( int( pPoint->GetInt() ) );
				else
					key = ParticleParamID_t();
			}
			if ( !IsKnownControlPoint( key ) )
				pDrivers->ArrayRemoveElement( nDriver );
		}
	}
}

bool CZolSession::SaveToFile( const char *pOriginalPath, const char *pTargetPath, bool bAutosave )
{
	CUtlString strError;
	if ( !m_pDoc->SaveToFile( pTargetPath, &strError, [ this ]( KeyValues3 *pRoot ) { FilterDrivers( pRoot ); } ) )
	{
		Log_Warning( LOG_ZOL, "WARNING: Failed to save file '%s': %s\n", pTargetPath, strError.Get() );
		// The artist chose to save and must hear why it didn't happen; a failed autosave
		// only goes to the log.
		if ( !bAutosave )
		{
			CUtlString strText;
			strText.Format( "Failed to save '%s':\n%s", pTargetPath, strError.Get() );
			GetPrompt()->Warning( "Error saving file", strText );
		}
		return false;
	}
	// A save under a new name binds the new file; an autosave never changes the binding.
	if ( !bAutosave && !CUtlString( pOriginalPath ).IsEqual_CaseInsensitive( pTargetPath ) )
	{
		CUtlString strBindError;
		BindAsset( &strBindError );
		if ( m_pAsset )
			GetZolApp()->OnSessionSaved( this, pOriginalPath );
	}
	return true;
}

bool CZolSession::RecompileResource()
{
	CUtlBuffer buffer;
	CUtlString strError;
	if ( !m_pDoc->SaveToBuffer( &buffer, &strError, [ this ]( KeyValues3 *pRoot ) { FilterDrivers( pRoot ); } ) )
	{
		LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, GetFileName(), "Unable to compile '%s': %s\n", GetFileName(), strError.Get() );
		return false;
	}
	m_LastCompiledText.Set( reinterpret_cast<const char *>( static_cast<const CUtlBuffer &>( buffer ).Base() ), size_t( buffer.TellPut() ) );
	++m_nCompileCount;

	// The definition's resource takes the edited text, so that the preview and whatever
	// refers to it see the edit before it is saved. A file outside the content tree (or
	// not yet saved) has no asset, and only the text is kept.
	if ( m_pAsset && !m_pAsset->CompileFromBuffer( buffer, &strError ) )
	{
		LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, GetFileName(), "Unable to compile '%s': %s\n", GetFileName(), strError.Get() );
		return false;
	}
	return true;
}

void CZolSession::RunFrame()
{
	UpdateDefinitionUsage();
	if ( m_bNeedsRecompile )
	{
		RecompileResource();
		m_bNeedsRecompile = false;
	}
	m_pDoc->FlushModifiedNodes();
}

// ---------------------------------------------------------------------------------------
// Clipboard

bool CZolSession::BuildSelectionClipboard( KeyValues3 *pOut ) const
{
	pOut->SetToEmptyTable();
	CUtlVector<CBaseZolNode *> nodes;
	m_pDoc->GetSelectedNodes( nodes );
	if ( nodes.IsEmpty() )
		return false;
	for ( CBaseZolNode *pNode : nodes )
	{
		if ( pNode == m_pDoc->GetRoot() )
		{
			KeyValues3 *pSystem = pOut->FindOrCreateMember( "System_Definition" );
			*pSystem = *pNode->GetKV3();
			pSystem->RemoveMember( "m_nBehaviorVersion" );
			for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
				pSystem->RemoveMember( CZolDoc::GetFunctionTypeName( nType ) );
			continue;
		}
		KeyValues3 *pList = pOut->FindOrCreateMember( CZolDoc::GetFunctionTypeName( pNode->GetFunctionType() ) );
		if ( !pList->IsArray() )
			pList->SetToEmptyArray();
		*pList->ArrayAddToTail() = *pNode->GetKV3();
	}
	return true;
}

bool CZolSession::WriteClipboard( const KeyValues3 &clipboard ) const
{
	CUtlString strText;
	if ( !SaveKV3ToString( &clipboard, &strText, KV3_FORMAT_GENERIC ) )
		return false;
	GetZolApp()->SetClipboardText( strText );
	return true;
}

bool CZolSession::ReadClipboard( KeyValues3 *pClipboard ) const
{
	CUtlString strText;
	GetZolApp()->GetClipboardText( &strText );
	CUtlString strError;
	return !strText.IsEmpty() && LoadKV3FromText( pClipboard, &strError, strText.Get(), strText.Length(), KV3_FORMAT_GENERIC );
}

bool CZolSession::CopySelection()
{
	KeyValues3 clipboard;
	return BuildSelectionClipboard( &clipboard ) && WriteClipboard( clipboard );
}

bool CZolSession::PasteFromClipboard()
{
	KeyValues3 clipboard;
	if ( !ReadClipboard( &clipboard ) || !clipboard.IsTable() )
		return false;
	m_pDoc->Paste( &clipboard );
	return true;
}

// ---------------------------------------------------------------------------------------
// Configurations

void CZolSession::AddUsageDrivers( KeyValues3 *pConfig ) const
{
	CUtlVector<ParticleParamID_t> keys;
	m_DefinitionUsage.GetKeys( &keys );
	std::vector<int> points;
	for ( const ParticleParamID_t &key : keys )
	{
		if ( !key.IsNamed() && !key.IsNone() && !m_DefinitionUsage.IsDriven( key ) )
			points.push_back( key.m_nNumber );
	}
	std::sort( points.begin(), points.end() );
	KeyValues3 *pDrivers = pConfig->FindOrCreateMember( "m_drivers" );
	if ( !pDrivers->IsArray() )
		pDrivers->SetToEmptyArray();
	// New drivers say their attach type: a file without it would read "follow the entity".
	for ( int nPoint : points )
	{
		KeyValues3 *pDriver = pDrivers->ArrayAddToTail();
		pDriver->SetToEmptyTable();
		pDriver->SetMemberInt( "m_iControlPoint", nPoint );
		pDriver->SetMemberString( "m_iAttachType", "PATTACH_WORLDORIGIN" );
		pDriver->SetMemberString( "m_attachmentName", "" );
		Vector vecOffset;
		if ( !m_DefinitionUsage.GetDefaultOffset( ParticleParamID_t::ControlPoint( nPoint ), &vecOffset ) )
			vecOffset = Vector();
		KeyValues3 *pOffset = pDriver->SetMemberEmptyArray( "m_vecOffset" );
		KeyValues3 *pAngles = pDriver->SetMemberEmptyArray( "m_angOffset" );
		for ( int i = 0; i < 3; ++i )
		{
			pOffset->ArrayAddToTail()->SetDouble( vecOffset[ i ] );
			pAngles->ArrayAddToTail()->SetDouble( 0.0 );
		}
		pDriver->SetMemberString( "m_entityName", "self" );
	}
}

ZolControlPointConfiguration_t *CZolSession::AddConfiguration( const char *pName )
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	if ( !pRoot || !pName || pRoot->FindConfiguration( pName ) )
		return nullptr;
	CUtlString strDescription;
	strDescription.Format( "Add Control Point Configuration '%s'", pName );
	m_pDoc->BeginEdit( strDescription, true );
	pRoot = m_pDoc->GetRoot();
	ZolControlPointConfiguration_t *pConfig = pRoot->FindOrAddConfiguration( pName );
	AddUsageDrivers( &pConfig->m_KV3 );
	// Selected once, so that its drivers reach the state; the replaced handler then finds
	// the current name standing.
	if ( V_stricmp_fast( m_CurrentConfigName, pName ) )
	{
		m_CurrentConfigName = pName;
		SelectConfiguration( pConfig );
	}
	m_pDoc->SendEvent( ZolEvent_DocumentReplaced_t() );
	return pRoot->FindConfiguration( pName ) ? pRoot->FindConfiguration( pName ) : pConfig;
}

ZolControlPointConfiguration_t *CZolSession::AddNewConfiguration()
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	if ( !pRoot )
		return nullptr;
	for ( const char *pName : { "preview", "game" } )
	{
		if ( !pRoot->FindConfiguration( pName ) )
			return AddConfiguration( pName );
	}
	CUtlString strName;
	for ( int n = pRoot->GetConfigurationCount() + 1;; ++n )
	{
		strName.Format( "Config %d", n );
		if ( !pRoot->FindConfiguration( strName ) )
			return AddConfiguration( strName );
	}
}

void CZolSession::RemoveConfiguration( ZolControlPointConfiguration_t *pConfig )
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	if ( !pRoot || !pConfig || pRoot->GetConfigurationCount() <= 1 )
		return;
	CUtlString strName( pConfig->GetName() );
	CUtlString strDescription;
	strDescription.Format( "Remove Control Point Configuration '%s'", strName.Get() );
	m_pDoc->BeginEdit( strDescription, true );
	// The undo snapshot made every node anew: find the record by name again.
	pRoot = m_pDoc->GetRoot();
	pRoot->RemoveConfiguration( pRoot->FindConfiguration( strName ) );
	if ( strName.IsEqual_CaseInsensitive( m_CurrentConfigName ) )
		SelectFirstConfiguration();
	m_pDoc->SendEvent( ZolEvent_DocumentReplaced_t() );
}

ZolControlPointConfiguration_t *CZolSession::GetCurrentConfiguration() const
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	return pRoot && !m_CurrentConfigName.IsEmpty() ? pRoot->FindConfiguration( m_CurrentConfigName ) : nullptr;
}

bool CZolSession::RenameCurrentConfiguration( const char *pName )
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	CUtlString strName( pName ? pName : "" );
	strName.TrimWhitespace();
	if ( !pRoot || m_CurrentConfigName.IsEmpty() || !pRoot->FindConfiguration( m_CurrentConfigName ) || strName.IsEmpty() ||
		 strName.IsEqual_CaseInsensitive( m_CurrentConfigName ) || pRoot->FindConfiguration( strName ) )
		return false;
	CUtlString strDescription;
	strDescription.Format( "Set Control Point Configuration Name '%s'", strName.Get() );
	m_pDoc->BeginEdit( strDescription, true );
	// The undo snapshot may make the records anew: find it by name again.
	ZolControlPointConfiguration_t *pConfig = m_pDoc->GetRoot()->FindConfiguration( m_CurrentConfigName );
	pConfig->m_KV3.SetMemberString( "m_name", strName );
	m_CurrentConfigName = strName;
	SendEvent( ZolEvent_ControlPointListChanged_t() );
	return true;
}

void CZolSession::SelectConfigurationByName( const char *pName )
{
	if ( !pName || !*pName )
	{
		m_CurrentConfigName.Clear();
		SendEvent( ZolEvent_ControlPointListChanged_t() );
		return;
	}
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	ZolControlPointConfiguration_t *pConfig = pRoot ? pRoot->FindConfiguration( pName ) : nullptr;
	if ( !pConfig || m_CurrentConfigName.IsEqual_CaseInsensitive( pConfig->GetName() ) )
		return;
	m_CurrentConfigName = pConfig->GetName();
	SelectConfiguration( pConfig );
}

void CZolSession::SelectConfiguration( const ZolControlPointConfiguration_t *pConfig )
{
	if ( !pConfig )
		return;
	m_PreviewState = ParticlePreviewState_t();
	if ( const KeyValues3 *pPreviewState = pConfig->m_KV3.FindMember( "m_previewState" ) )
	{
		CUtlString strError;
		CKV3TransferLoadContext context;
		LoadKV3ObjectInPlace( &m_PreviewState, pPreviewState, &strError, &context );
	}
	CUtlString strModel( m_PreviewState.m_previewModel );
	SetPreviewModel( strModel, true );
	ZolEvent_PreviewStateChanged_t stateChanged;
	stateChanged.m_bModelStands = false;
	SendEvent( stateChanged );
	m_pControlPointState->ApplyDrivers( pConfig->m_KV3 );
	SendEvent( ZolEvent_ControlPointListChanged_t() );
	ApplyToPreview();
}

void CZolSession::StoreStateInConfiguration( ZolControlPointConfiguration_t *pConfig ) const
{
	if ( !pConfig )
		return;
	m_pControlPointState->StoreDrivers( &pConfig->m_KV3 );
	KeyValues3 *pPreviewState = pConfig->m_KV3.FindOrCreateMember( "m_previewState" );
	CUtlString strError;
	SaveKV3Object( m_PreviewState, pPreviewState, &strError );
	// Back to the complete form every configuration of the document has.
	KeyValues3 stored( pConfig->m_KV3 );
	CKV3TransferLoadContext context;
	ReadControlPointConfiguration( &stored, &pConfig->m_KV3, &context );
}

bool CZolSession::CopyConfiguration() const
{
	ZolControlPointConfiguration_t temporary;
	if ( const ZolControlPointConfiguration_t *pCurrent = GetCurrentConfiguration() )
		temporary.m_KV3 = pCurrent->m_KV3;
	else
	{
		CKV3TransferLoadContext context;
		ReadControlPointConfiguration( nullptr, &temporary.m_KV3, &context );
	}
	StoreStateInConfiguration( &temporary );
	KeyValues3 clipboard;
	clipboard.SetToEmptyTable();
	*clipboard.FindOrCreateMember( "ControlPointConfiguration" ) = temporary.m_KV3;
	return WriteClipboard( clipboard );
}

bool CZolSession::PasteConfiguration()
{
	KeyValues3 clipboard;
	if ( !ReadClipboard( &clipboard ) )
	{
		GetZolApp()->Beep();
		return false;
	}
	const KeyValues3 *pPasted = clipboard.IsTable() ? clipboard.FindMember( "ControlPointConfiguration" ) : nullptr;
	if ( !pPasted )
		return true;
	ZolControlPointConfiguration_t temporary;
	CKV3TransferLoadContext context;
	ReadControlPointConfiguration( pPasted, &temporary.m_KV3, &context );
	SelectConfiguration( &temporary );
	return true;
}

// ---------------------------------------------------------------------------------------
// The preview setup

void CZolSession::ApplyToPreview()
{
	m_pControlPointState->ApplyToPreview( m_pPreviewTarget );
}

const char *CZolSession::GetEntityModel( int nEntity ) const
{
	return nEntity >= 0 && nEntity < 3 ? m_EntityModels[ nEntity ].Get() : "";
}

void CZolSession::GetWearableModels( CUtlVector<CUtlString> *pModels ) const
{
	*pModels = m_WearableModels;
}

bool CZolSession::SetPreviewModel( const char *pName, bool bForce )
{
	CUtlString strName( pName ? pName : "" );
	if ( !bForce && strName.IsEqual_CaseInsensitive( m_PreviewState.m_previewModel ) )
		return false;
	m_PreviewState.m_previewModel = strName;
	for ( CUtlString &model : m_EntityModels )
		model = strName;
	// The host has no item service: nothing fits a model, nothing is worn.
	m_WearableModels.RemoveAll();

	CUtlString strError;
	ParticleModelPtr_t pModel = strName.IsEmpty() ? nullptr : FindParticleModel( strName, &strError );
	// A hitbox set or material group the model lacks becomes its first, or none.
	std::vector<CUtlString> sets;
	if ( pModel )
		pModel->GetHitboxSetNames( &sets );
	if ( !std::any_of( sets.begin(), sets.end(), [ this ]( const CUtlString &set ) { return set.IsEqual_CaseInsensitive( m_PreviewState.m_hitboxSetName ); } ) )
		m_PreviewState.m_hitboxSetName = sets.empty() ? CUtlString() : sets[ 0 ];
	if ( !pModel || !pModel->FindMaterialGroup( m_PreviewState.m_materialGroupName ) )
		m_PreviewState.m_materialGroupName = pModel && !pModel->GetMaterialGroups().empty() ? pModel->GetMaterialGroups()[ 0 ].m_Name : CUtlString();
	// Body groups the model doesn't have go.
	std::vector<ParticlePreviewBodyGroup_t> &groups = m_PreviewState.m_vecBodyGroups;
	groups.erase( std::remove_if( groups.begin(), groups.end(),
					  [ &pModel ]( const ParticlePreviewBodyGroup_t &group ) {
						  return !pModel || std::none_of( pModel->GetBodyGroups().begin(), pModel->GetBodyGroups().end(),
											   [ &group ]( const ParticleModelBodyGroup_t &each ) { return each.m_Name.IsEqual_CaseInsensitive( group.m_bodyGroupName ); } );
					  } ),
		groups.end() );
	// A sequence stays where the model has it (an animation clip path on its own);
	// otherwise the model's first, or none.
	if ( !m_PreviewState.m_bSequenceNameIsAnimClipPath && ( !pModel || !pModel->FindSequence( m_PreviewState.m_sequenceName ) ) )
		m_PreviewState.m_sequenceName = pModel && !pModel->GetSequences().empty() ? pModel->GetSequences()[ 0 ].m_Name : CUtlString();
	if ( !strName.IsEmpty() )
		m_pControlPointState->ValidateAttachments();
	// No items: only "none" stands.
	m_PreviewState.m_nModSpecificData = 0;
	return true;
}

void CZolSession::SetBodyGroup( const char *pName, int nValue )
{
	std::vector<ParticlePreviewBodyGroup_t> &groups = m_PreviewState.m_vecBodyGroups;
	auto it = std::find_if( groups.begin(), groups.end(), [ pName ]( const ParticlePreviewBodyGroup_t &group ) { return group.m_bodyGroupName.IsEqual_CaseInsensitive( pName ); } );
	if ( nValue == 0 && it == groups.end() )
		return;
	if ( it != groups.end() && it->m_nValue == nValue )
		return;
	if ( nValue == 0 )
		groups.erase( it );
	else if ( it != groups.end() )
		it->m_nValue = nValue;
	else
	{
		ParticlePreviewBodyGroup_t group;
		group.m_bodyGroupName = pName;
		group.m_nValue = nValue;
		groups.push_back( group );
	}
	ZolEvent_PreviewStateChanged_t event;
	event.m_bModelStands = true;
	SendEvent( event );
}

int CZolSession::GetBodyGroup( const char *pName ) const
{
	for ( const ParticlePreviewBodyGroup_t &group : m_PreviewState.m_vecBodyGroups )
	{
		if ( group.m_bodyGroupName.IsEqual_CaseInsensitive( pName ) )
			return group.m_nValue;
	}
	return 0;
}

void CZolSession::BeginControlPointEdit( const ParticleParamID_t &key, const char *pDescription )
{
	CUndoHistory *pHistory = m_pDoc ? m_pDoc->GetUndoHistory() : nullptr;
	if ( !pHistory || key.IsNone() )
		return;
	std::unique_ptr<CZolControlPointUndoable> &pUndoable = m_ControlPointUndoables[ key ];
	if ( !pUndoable )
		pUndoable = std::make_unique<CZolControlPointUndoable>( m_pControlPointState.get(), key );
	pHistory->BeginStep( pDescription );
	pHistory->NoteModified( pUndoable.get() );
}

bool CZolSession::SetControlPointTransform( const ParticleParamID_t &key, const Vector &vPosition, const QAngle &angles, const char *pDescription )
{
	if ( m_pControlPointState->GetPosition( key ) == vPosition && m_pControlPointState->GetAngles( key ) == angles && m_pControlPointState->FindRecord( key ) )
		return false;
	BeginControlPointEdit( key, pDescription );
	return m_pControlPointState->SetTransform( key, vPosition, angles );
}

void CZolSession::SetControlPointPersisted( const ParticleParamID_t &key, bool bPersisted )
{
	CZolPersistedControlPoints &persisted = CZolPersistedControlPoints::Get();
	if ( persisted.IsPersisted( key ) == bPersisted )
		return;
	CZolSession *pPreview = GetZolApp()->GetPreviewSession();
	if ( bPersisted && !pPreview )
		return;
	if ( bPersisted )
		persisted.Set( key, pPreview->m_pControlPointState->GetPosition( key ), pPreview->m_pControlPointState->GetAngles( key ) );
	else
		persisted.Remove( key );
	if ( pPreview )
		pPreview->OnControlPointStateChanged( key );
}

void CZolSession::ApplyPersistedControlPoints()
{
	for ( const auto &[ key, entry ] : CZolPersistedControlPoints::Get().GetEntries() )
		m_pControlPointState->SetTransform( key, entry.m_vPosition, entry.m_Angles );
}

// ---------------------------------------------------------------------------------------
// IZolControlPointStateHost

void CZolSession::OnControlPointStateChanged( const ParticleParamID_t &key )
{
	ZolEvent_ControlPointValueChanged_t event;
	event.m_ControlPoint = key;
	SendEvent( event );
}

void CZolSession::OnNamedValueStateChanged( const ParticleParamID_t &key )
{
	ZolEvent_NamedValueChanged_t event;
	event.m_NamedValue = key;
	SendEvent( event );
}

void CZolSession::OnEditModeChanged( const ParticleParamID_t &key )
{
	if ( key != m_SelectedControlPoint )
		return;
	ZolEvent_PreviewConfigSelectionChanged_t selection;
	selection.m_pSession = this;
	SendEvent( selection );
}

bool CZolSession::GetDeclaredValue( const ParticleParamID_t &key, KeyValues3 *pValue ) const
{
	const CZolRootNode *pRoot = m_pDoc ? m_pDoc->GetRoot() : nullptr;
	for ( int i = 0; pRoot && i < pRoot->GetNodeCount( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS ); ++i )
	{
		const CZolVariableNode *pVariable = pRoot->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, i )->AsVariableNode();
		if ( pVariable && ParticleParamID_t::Named( pVariable->GetName() ) == key )
		{
			pVariable->GetDefaultConfig().GetValue( pValue );
			return true;
		}
	}
	return false;
}

// ---------------------------------------------------------------------------------------
// Variables and the family

CZolNamedValueContext *CZolSession::GetNamedValueContext()
{
	if ( !m_pNamedValueContext )
		m_pNamedValueContext = std::make_unique<CZolNamedValueContext>( this, m_pControlPointState.get() );
	return m_pNamedValueContext.get();
}

const CZolDoc *CZolSession::FindOpenDocument( IAsset *pAsset ) const
{
	for ( CBaseEditorSession *pSession : GetZolApp()->GetSessions() )
	{
		CZolSession *pZolSession = static_cast<CZolSession *>( pSession );
		if ( pAsset && pZolSession->GetAsset() == pAsset )
			return pZolSession->GetDoc();
	}
	return nullptr;
}

// ---------------------------------------------------------------------------------------
// Children

bool CZolSession::CanBeChild( IAsset *pChild )
{
	if ( !m_pAsset )
		return true;
	if ( !pChild )
		return false;
	CUtlString strParentDir = CUtlString( m_pAsset->GetPath() ).DirName();
	CUtlString strChildDir = CUtlString( pChild->GetPath() ).DirName();
	if ( !V_PathsMatch( strParentDir, strChildDir ) )
	{
		CUtlString strText;
		strText.Format( "WARNING: The parent particle system is in a different directory from the child!<br>Parent dir: %s<br>Child dir: %s<br><font color=red><h2>Proceed?</h2></font>", strParentDir.Get(), strChildDir.Get() );
		if ( GetPrompt()->Ask( PROMPT_ICON_QUESTION, "Parent/Child Directory Mismatch", strText, PROMPT_BUTTON_YES | PROMPT_BUTTON_NO, PROMPT_BUTTON_NO ) != PROMPT_BUTTON_YES )
			return false;
	}
	// A child that already stands above this system would make a cycle.
	bool bIsParent = pChild == m_pAsset;
	if ( !bIsParent )
	{
		CUtlVector<IAsset *> parents;
		m_pAsset->GetParents( &parents, true );
		for ( IAsset *pParent : parents )
			bIsParent = bIsParent || pParent == pChild;
	}
	if ( bIsParent )
	{
		GetPrompt()->Warning( "Error choosing asset", "This asset is cannot be a child because it is already a parent!" );
		return false;
	}
	return true;
}
