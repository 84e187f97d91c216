// The session's bindable commands, context "ZolSession": the Edit menu and its keys reach
// the shown session through the main window's proxy target. A command with nothing to act
// on beeps and changes nothing.

#include "core/host/iasset.h"
#include "core/host/iassetsystem.h"
#include "core/host/iprompt.h"
#include "core/logging/logging.h"
#include "core/text/pathtools.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolsession.h"
#include "zoldoc_lib/zoldoc.h"

static void Beep()
{
	ZolApp()->Beep();
}

static void BeepUnless( bool bDone )
{
	if ( !bDone )
		Beep();
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
	d.AddClickCommand( "AddFunction", []( CZolSession * ) {
		// The function picker is the function list's; until it is part of the editor there
		// is nothing to choose from here.
		Log_Msg( LOG_ZOL, "AddFunction: the function picker is not available.\n" );
		Beep();
	} );
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

CZolChildNode *CZolSession::BrowseAndAddChild()
{
	// The pick goes through the prompt layer's file dialog, started in the content
	// tree's particle folder; only files the asset system knows can be children.
	CUtlString strStart;
	EditorFiles::GetRoot( "CONTENTROOT", &strStart );
	if ( !strStart.IsEmpty() )
		strStart.Format( "%s\\particles", CUtlString( strStart ).Get() );
	CUtlString strChosen;
	if ( !GetPrompt()->GetOpenFileName( "Add a child particle system", strStart, "Particle System Definition (*.tfxs)", &strChosen ) || strChosen.IsEmpty() )
		return nullptr;
	IAssetSystem *pAssetSystem = GetAssetSystem();
	IAsset *pChild = pAssetSystem ? pAssetSystem->FindAssetByAbsolutePath( strChosen ) : nullptr;
	if ( !pChild )
	{
		CUtlString strText;
		strText.Format( "'%s' is not a particle system of the content tree.", strChosen.Get() );
		GetPrompt()->Warning( "Error choosing asset", strText );
		return nullptr;
	}
	if ( !CanBeChild( pChild ) )
		return nullptr;
	return m_pDoc->AddChild( pChild );
}
