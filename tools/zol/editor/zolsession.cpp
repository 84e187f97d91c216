#include "tools/zol/editor/zolsession.h"

#include "core/containers/utlbuffer.h"
#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/iprompt.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/baseeditorapp/ibaseeditorwindow.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "tools/zol/editor/zolapp.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnode.h"
#include "zoldoc_lib/zolrootnode.h"

CZolSession::CZolSession( CBaseEditorApp *pApp ) : CSimpleSharedWindowEditorSession( pApp ), m_EventMap( this )
{
	CZolApp *pZolApp = GetZolApp();
	m_pEventHub = pZolApp ? pZolApp->GetEventHub() : nullptr;
	m_pDoc = std::make_unique<CZolDoc>( true );
	m_pDoc->SetEventHub( m_pEventHub );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnDocumentChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnFunctionEnableDisableChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnFunctionListChanged );
	m_EventMap.MapEvent( TOOL_EVENT_SLOT_DOCUMENT, &CZolSession::OnDocumentReplaced );
	m_EventMap.Attach( TOOL_EVENT_SLOT_DOCUMENT, m_pDoc->GetEventDispatcher() );
}

CZolSession::~CZolSession()
{
	// The resource goes back to what the file holds.
	if ( m_bAssetEdited )
	{
		if ( IAsset *pAsset = FindEditedAsset() )
			pAsset->EndEditing();
	}
	m_EventMap.Detach( TOOL_EVENT_SLOT_DOCUMENT );
	m_pDoc.reset();
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
}

void CZolSession::OnDocumentReplaced( const ZolEvent_DocumentReplaced_t & )
{
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
	m_pDoc->Reset();
	RecompileResource();
	return PostOpen();
}

int CZolSession::Open( const char *pPath, CUtlString *pError )
{
	if ( !LoadSession( pPath, pError ) )
		return EDITOR_OPEN_FAILED;
	return PostOpen() ? EDITOR_OPEN_LOADED : EDITOR_OPEN_FAILED;
}

bool CZolSession::LoadSession( const char *pPath, CUtlString *pError )
{
	if ( !m_pDoc->LoadFromFile( pPath, nullptr, pError ) )
		return false;
	// Binding the file's asset and resource comes with the host's asset system; until
	// then the session compiles into memory only.
	RecompileResource();
	return true;
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
		if ( ZolControlPointConfiguration_t *pConfig = AddConfiguration( "preview" ) )
			SelectConfiguration( pConfig );
		CUndoHistory::SetRecordingEnabled( true );
		m_bSuppressModified = false;
	}
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
	// The compiled definition's control point usage decides which drivers stay; it comes
	// from the particle system manager once the resource is bound.
	(void)pRoot;
}

bool CZolSession::SaveToFile( const char *pOriginalPath, const char *pTargetPath, bool bAutosave )
{
	CUtlString strError;
	if ( !m_pDoc->SaveToFile( pTargetPath, &strError, [ this ]( KeyValues3 *pRoot ) { FilterDrivers( pRoot ); } ) )
	{
		Log_Warning( LOG_ZOL, "WARNING: Failed to save file '%s': %s\n", pTargetPath, strError.Get() );
		return false;
	}
	(void)pOriginalPath;
	(void)bAutosave;
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
	if ( IAsset *pAsset = FindEditedAsset() )
	{
		if ( !pAsset->CompileFromBuffer( buffer, &strError ) )
		{
			LoggingSystem_LogOnceByKey( LOG_ZOL, LS_WARNING, GetFileName(), "Unable to compile '%s': %s\n", GetFileName(), strError.Get() );
			return false;
		}
		m_bAssetEdited = true;
	}
	return true;
}

IAsset *CZolSession::FindEditedAsset() const
{
	IAssetSystem *pAssetSystem = GetAssetSystem();
	const char *pFileName = GetFileName();
	if ( !pAssetSystem || !pFileName || !*pFileName || IsNewFile() )
		return nullptr;
	return pAssetSystem->FindAssetByAbsolutePath( pFileName );
}

void CZolSession::RunFrame()
{
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

bool CZolSession::CopySelection()
{
	KeyValues3 clipboard;
	CUtlString strText;
	if ( !BuildSelectionClipboard( &clipboard ) || !SaveKV3ToString( &clipboard, &strText, KV3_FORMAT_GENERIC ) )
		return false;
	GetZolApp()->SetClipboardText( strText );
	return true;
}

bool CZolSession::PasteFromClipboard()
{
	CUtlString strText;
	GetZolApp()->GetClipboardText( &strText );
	KeyValues3 clipboard;
	CUtlString strError;
	if ( strText.IsEmpty() || !LoadKV3FromText( &clipboard, &strError, strText.Get(), strText.Length(), KV3_FORMAT_GENERIC ) || !clipboard.IsTable() )
		return false;
	m_pDoc->Paste( &clipboard );
	return true;
}

// ---------------------------------------------------------------------------------------
// Configurations

ZolControlPointConfiguration_t *CZolSession::AddConfiguration( const char *pName )
{
	CZolRootNode *pRoot = m_pDoc->GetRoot();
	if ( !pRoot || !pName || pRoot->FindConfiguration( pName ) )
		return nullptr;
	CUtlString strDescription;
	strDescription.Format( "Add Control Point Configuration '%s'", pName );
	m_pDoc->BeginEdit( strDescription, true );
	ZolControlPointConfiguration_t *pConfig = pRoot->FindOrAddConfiguration( pName );
	if ( V_stricmp_fast( m_CurrentConfigName, pName ) )
		m_CurrentConfigName = pName;
	m_pDoc->SendEvent( ZolEvent_DocumentReplaced_t() );
	return pRoot->FindConfiguration( pName ) ? pRoot->FindConfiguration( pName ) : pConfig;
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

void CZolSession::SelectConfiguration( ZolControlPointConfiguration_t *pConfig )
{
	if ( !pConfig )
		return;
	m_CurrentConfigName = pConfig->GetName();
	SendEvent( ZolEvent_ControlPointListChanged_t() );
}

// ---------------------------------------------------------------------------------------
// Children

bool CZolSession::CanBeChild( const char *pChildPath )
{
	const char *pFileName = GetFileName();
	if ( !*pFileName || !pChildPath )
		return true;
	CUtlString strParentDir = CUtlString( pFileName ).DirName();
	CUtlString strChildDir = CUtlString( pChildPath ).DirName();
	if ( !V_PathsMatch( strParentDir, strChildDir ) )
	{
		CUtlString strText;
		strText.Format( "WARNING: The parent particle system is in a different directory from the child!<br>Parent dir: %s<br>Child dir: %s<br><font color=red><h2>Proceed?</h2></font>", strParentDir.Get(), strChildDir.Get() );
		if ( GetPrompt()->Ask( PROMPT_ICON_QUESTION, "Parent/Child Directory Mismatch", strText, PROMPT_BUTTON_YES | PROMPT_BUTTON_NO, PROMPT_BUTTON_NO ) != PROMPT_BUTTON_YES )
			return false;
	}
	// The asset system's parent list catches deeper cycles; a system is always its own.
	if ( V_PathsMatch( pFileName, pChildPath ) )
	{
		GetPrompt()->Warning( "Error choosing asset", "This asset is cannot be a child because it is already a parent!" );
		return false;
	}
	return true;
}
