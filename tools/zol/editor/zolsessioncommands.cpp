// The session's bindable commands, context "ZolSession": the Edit menu and its keys reach
// the shown session through the main window's proxy target. A command with nothing to act
// on beeps and changes nothing.

#include <QApplication>
#include <QTimer>
#include <algorithm>

#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/iprompt.h"
#include "core/logging/logging.h"
#include "core/text/pathtools.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/zol/editor/functionlist/pickparticlefunctionui.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolnamedvaluecontext.h"

static void Beep()
{
	ZolApp()->Beep();
}

static void BeepUnless( bool bDone )
{
	if ( !bDone )
		Beep();
}

// The picker runs an event loop of its own. Started from within a command, the keys typed
// into it would meet the bindings of the window that ran the command: it opens once the
// command is over.
static void OpenPickerAfterTheCommand( CZolSession *pSession )
{
	CZolApp *pApp = ZolApp();
	CQZolMainWnd *pWindow = pApp ? pApp->GetZolMainWindow() : nullptr;
	if ( !qApp || !pWindow )
	{
		pSession->AddElement( PARTICLE_FUNCTION_ROOT, nullptr );
		return;
	}
	QTimer::singleShot( 0, pWindow, [ pApp, pSession ]() {
		const std::vector<CBaseEditorSession *> &sessions = pApp->GetSessions();
		if ( std::find( sessions.begin(), sessions.end(), pSession ) != sessions.end() )
			pSession->AddElement( PARTICLE_FUNCTION_ROOT, nullptr );
	} );
}

static void BuildZolSessionCommands( CBindTargetDescriptor<CZolSession> &d )
{
	d.AddClickCommand( "Undo", []( CZolSession *pSession ) { pSession->GetDoc()->Undo(); } );
	d.AddClickCommand( "Redo", []( CZolSession *pSession ) { pSession->GetDoc()->Redo(); } );
	d.AddClickCommand( "Cut", []( CZolSession *pSession ) { BeepUnless( pSession->CutSelection() ); } );
	d.AddClickCommand( "Copy", []( CZolSession *pSession ) { BeepUnless( pSession->GetDoc()->HasSelection() && pSession->CopySelection() ); } );
	d.AddClickCommand( "Paste", []( CZolSession *pSession ) { BeepUnless( pSession->PasteFromClipboard() ); } );
	d.AddClickCommand( "Delete", []( CZolSession *pSession ) { BeepUnless( pSession->DeleteSelection() ); } );
	d.AddClickCommand( "Toggle", []( CZolSession *pSession ) { BeepUnless( pSession->ToggleSelection() ); } );
	d.AddClickCommand( "AddFunction", &OpenPickerAfterTheCommand );
	d.AddClickCommand( "AddChild", []( CZolSession *pSession ) { pSession->BrowseAndAddChild(); } );
}

static CBindTargetDescriptor<CZolSession> s_ZolSessionCommands( "ZolSession", "CZolSession", &BuildZolSessionCommands );

const CBindTargetDescriptorBase *CZolSession::GetBindTargetDescriptor() const
{
	return &s_ZolSessionCommands;
}

bool CZolSession::CutSelection()
{
	if ( !m_pDoc->HasSelection() )
		return false;
	// The root can't go: cutting it alone copies it and removes nothing.
	m_pDoc->BeginEdit( "Cut", true );
	CopySelection();
	m_pDoc->RemoveSelected();
	return true;
}

bool CZolSession::DeleteSelection()
{
	if ( !m_pDoc->HasNonBaseSelection() )
		return false;
	m_pDoc->BeginEdit( "Delete", true );
	m_pDoc->RemoveSelected();
	return true;
}

bool CZolSession::ToggleSelection()
{
	if ( !m_pDoc->HasNonBaseSelection() )
		return false;
	m_pDoc->ToggleSelected();
	return true;
}

IAsset *CZolSession::PickChildAsset( const char *pTitle )
{
	// The pick goes through the prompt layer's file dialog, started in the content
	// tree's particle folder; only files the asset system knows can be children.
	CUtlString strStart;
	EditorFiles::GetRoot( "CONTENTROOT", &strStart );
	if ( !strStart.IsEmpty() )
		strStart.Format( "%s\\particles", CUtlString( strStart ).Get() );
	CUtlString strChosen;
	if ( !GetPrompt()->GetOpenFileName( pTitle, strStart, "Particle System Definition (*.tfxs)", &strChosen ) || strChosen.IsEmpty() )
		return nullptr;
	IAssetSystem *pAssetSystem = GetAssetSystem();
	IAsset *pChild = pAssetSystem ? pAssetSystem->FindAssetByAbsolutePath( strChosen ) : nullptr;
	if ( !pChild || pChild->GetType() != RESOURCE_TYPE_PARTICLE_SYSTEM )
	{
		CUtlString strText;
		strText.Format( "'%s' is not a particle system of the content tree.", strChosen.Get() );
		GetPrompt()->Warning( "Error choosing asset", strText );
		return nullptr;
	}
	return pChild;
}

CZolChildNode *CZolSession::BrowseAndAddChild()
{
	IAsset *pChild = PickChildAsset( "Add a child particle system" );
	if ( !pChild || !CanBeChild( pChild ) )
		return nullptr;
	return m_pDoc->AddChild( pChild );
}

bool CZolSession::BrowseForChild( CZolChildNode *pChild )
{
	// The dialog runs while frames go on; the node is found again by its place.
	const ZolElementRef_t ref = m_pDoc->GetElementRef( pChild );
	IAsset *pAsset = PickChildAsset( "Select a child particle system" );
	if ( !pAsset || !CanBeChild( pAsset ) )
		return false;
	CBaseZolNode *pNode = m_pDoc->ResolveElementRef( ref );
	if ( !pNode || !pNode->AsChildNode() )
		return false;
	m_pDoc->SetChild( pNode->AsChildNode(), pAsset );
	return true;
}

bool CZolSession::AddElement( ParticleFunctionType_t eType, IZolNodeVariableContext *pHint )
{
	if ( eType == PARTICLE_FUNCTION_CHILDREN )
		return BrowseAndAddChild() != nullptr;
	if ( eType == PARTICLE_FUNCTION_NAMED_VALUE_LOCALS )
	{
		// Variables are named and typed in their own dialog, which lists the variables
		// around this system through the context; without one nothing is asked.
		if ( !pHint )
			return false;
		CZolNamedValueContext *pContext = dynamic_cast<CZolNamedValueContext *>( pHint );
		CUtlString strName;
		CPulseValueFullType type;
		if ( !GetZolApp()->RunAddVariableDialog( pContext ? pContext : GetNamedValueContext(), &strName, &type ) )
			return false;
		return m_pDoc->AddVariable( strName, type ) != nullptr;
	}
	// The picker is a dialog: headless runs have nobody to choose.
	CZolApp *pApp = GetZolApp();
	CQZolMainWnd *pWindow = pApp ? pApp->GetZolMainWindow() : nullptr;
	if ( !qApp || !pWindow )
	{
		Log_Msg( LOG_ZOL, "AddFunction: no window to choose a function in.\n" );
		Beep();
		return false;
	}
	CQPickParticleFunctionUI picker( m_pDoc.get(), pWindow );
	picker.setWindowTitle( "Add..." );
	picker.Populate( eType );
	return picker.exec() == 1;
}
