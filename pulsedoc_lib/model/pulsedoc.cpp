#include "pulsedoc_lib/model/pulsedoc.h"

#include <algorithm>
#include <cstring>
#include <map>
#include <string>

#include "core/host/safefilewrite.h"
#include "core/kv3/kv3serialize.h"
#include "core/platform/platformfile.h"
#include "pulsedoc_lib/compiler/pulsepointanalysis.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocconnections.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsedocroot.h"
#include "pulsedoc_lib/model/pulsenodedescriptions.h"
#include "tools/toolutils2/undo/undohistory.h"

// "tpulse", 3c9a4e71-2f0b-4d8e-9a61-5be0c7d2f418.
const KV3ID_t KV3_FORMAT_PULSEDOC = { "tpulse", 0x3c9a4e712f0b4d8eull, 0x9a615be0c7d2f418ull };

namespace
{
constexpr int UNDO_STEP_LIMIT = 200;

// The "// ..." lines (and blank ones) right after the header line, as they stand.
CUtlString LeadingCommentOf( const char *pText, size_t nLength )
{
	const char *pEnd = pText + nLength;
	const char *p = static_cast<const char *>( memchr( pText, '\n', nLength ) );
	if ( !p )
		return {};
	const char *pStart = ++p;
	const char *pKeep = pStart;
	while ( p < pEnd )
	{
		const char *pLineEnd = static_cast<const char *>( memchr( p, '\n', size_t( pEnd - p ) ) );
		if ( !pLineEnd )
			break;
		const char *q = p;
		while ( q < pLineEnd && ( *q == ' ' || *q == '\t' || *q == '\r' ) )
			++q;
		if ( q != pLineEnd && !( pLineEnd - q >= 2 && q[ 0 ] == '/' && q[ 1 ] == '/' ) )
			break;
		p = pLineEnd + 1;
		pKeep = p;
	}
	return CUtlString( pStart, size_t( pKeep - pStart ) );
}
} // namespace

CPulseDoc::CPulseDoc( const CPulseNodeDescriptions *pDescriptions )
	: m_pDescriptions( pDescriptions ? pDescriptions : &CPulseNodeDescriptions::GetRuntimeDescriptions() ), m_pRoot( std::make_unique<CPulseDoc_Root>() ),
	  m_pAnalysis( std::make_unique<CPulsePointAnalysis>() ), m_pUndoHistory( std::make_unique<CUndoHistory>( UNDO_STEP_LIMIT ) ),
	  m_pRedoHistory( std::make_unique<CUndoHistory>( UNDO_STEP_LIMIT ) )
{
	m_pRoot->SetDocRecursive( this );
	m_pUndoHistory->SetPartner( true, m_pRedoHistory.get() );
}

CPulseDoc::~CPulseDoc()
{
	// The histories hold snapshots, not nodes; they go before the tree.
	m_pUndoHistory.reset();
	m_pRedoHistory.reset();
}

bool CPulseDoc::LoadText( const char *pText, size_t nLength, CPulseDocMessages *pMessages )
{
	KeyValues3 root;
	CUtlString error;
	if ( !LoadKV3FromText( &root, &error, pText, nLength, KV3_FORMAT_PULSEDOC, KV3_LOAD_ANY_FORMAT ) )
	{
		pMessages->Report( PULSE_DOC_ERROR, -1, "%s", error.Get() );
		return false;
	}
	if ( !LoadKV3( root, pMessages ) )
		return false;
	m_LeadingComment = LeadingCommentOf( pText, nLength );
	return true;
}

bool CPulseDoc::LoadFile( const char *pPath, CPulseDocMessages *pMessages )
{
	std::string content;
	CUtlString reason;
	if ( !Plat_ReadWholeFile( pPath, &content, &reason ) )
	{
		// The reason alone ("No such file or directory") doesn't say which file.
		pMessages->Report( PULSE_DOC_ERROR, -1, "%s: %s", pPath, reason.Get() );
		return false;
	}
	return LoadText( content.data(), content.size(), pMessages );
}

bool CPulseDoc::LoadKV3( const KeyValues3 &root, CPulseDocMessages *pMessages, IPulseEditorLoadCallbacks *pCallbacks )
{
	if ( !root.IsTable() )
	{
		pMessages->Report( PULSE_DOC_ERROR, -1, "the root is of type '%s', not a table of a document", root.GetTypeAsString() );
		return false;
	}
	const char *pClass = root.GetMemberString( "_class", "" );
	if ( !*pClass )
	{
		pMessages->Report( PULSE_DOC_ERROR, -1, "the root is a table without _class, not a 'CPulseDoc_Root'" );
		return false;
	}
	if ( strcmp( pClass, "CPulseDoc_Root" ) != 0 )
	{
		pMessages->Report( PULSE_DOC_ERROR, -1, "the root is a '%s', not a 'CPulseDoc_Root'", pClass );
		return false;
	}
	CPulseDocLoadContext context;
	context.m_pDoc = this;
	context.m_pMessages = pMessages;
	context.m_pDescriptions = m_pDescriptions;
	context.m_pCallbacks = pCallbacks;
	// Load callbacks reload this same document (undo, redo): the comment of its file stays,
	// and listeners hear of the undo rather than of a new document.
	const bool bReload = pCallbacks != nullptr;
	if ( !bReload )
		m_LeadingComment.Clear();
	m_pRoot->LoadKV3( root, &context );
	m_pRoot->SetDocRecursive( this );
	// Duplicate ids are reported by Validate, so that they stop a compile too.
	RebuildNodeTable();
	std::vector<CPulseDocNode *> nodes;
	GatherNodes( &nodes );
	for ( CPulseDocNode *pNode : nodes )
		pNode->OnDocumentLoaded( pMessages );
	SetTopologyDirty();
	if ( !bReload )
		NotifyChanged( PULSE_DOC_CHANGE_LOADED );
	return true;
}

void CPulseDoc::SaveKV3( KeyValues3 *pRoot ) const
{
	m_pRoot->SaveKV3( pRoot );
}

bool CPulseDoc::SaveText( CUtlString *pText, CUtlString *pError ) const
{
	KeyValues3 root;
	SaveKV3( &root );
	CUtlString text;
	if ( !SaveKV3ToString( &root, &text, KV3_FORMAT_PULSEDOC ) )
	{
		pError->Set( "the document could not be written as KV3 text" );
		return false;
	}
	// The file's comment lines go back where they were: right after the header.
	size_t nHeaderEnd = text.Storage().find( '\n' );
	if ( !m_LeadingComment.IsEmpty() && nHeaderEnd != std::string::npos )
		text.Storage().insert( nHeaderEnd + 1, m_LeadingComment.Storage() );
	*pText = std::move( text );
	return true;
}

bool CPulseDoc::SaveFile( const char *pPath, CUtlString *pError ) const
{
	CUtlString text;
	if ( !SaveText( &text, pError ) )
		return false;
	return SafeWriteFile( pPath, text.Get(), text.Length(), pError );
}

CPulseDocNode *CPulseDoc::FindNode( PulseDocNodeID_t nID ) const
{
	if ( nID < 0 )
		return nullptr;
	auto it = m_Nodes.find( nID );
	return it == m_Nodes.end() ? nullptr : it->second;
}

PulseDocNodeID_t CPulseDoc::AllocNodeID()
{
	PulseDocNodeID_t nMax = 0;
	for ( const auto &[ nID, pNode ] : m_Nodes )
		nMax = std::max( nMax, nID );
	return nMax + 1;
}

void CPulseDoc::GatherNodes( std::vector<CPulseDocNode *> *pNodes ) const
{
	pNodes->push_back( m_pRoot.get() );
	m_pRoot->GatherSubtree( pNodes );
}

void CPulseDoc::RebuildNodeTable( CPulseDocMessages *pMessages )
{
	m_Nodes.clear();
	std::vector<CPulseDocNode *> nodes;
	GatherNodes( &nodes );
	for ( CPulseDocNode *pNode : nodes )
	{
		if ( pNode->GetNodeID() < 0 )
			continue;
		auto [ it, bNew ] = m_Nodes.emplace( pNode->GetNodeID(), pNode );
		if ( !bNew && pMessages )
			pMessages->Error( pNode, "Node id %d is taken by %s already; ids are unique in a document", pNode->GetNodeID(), it->second->DescribeForErrors().Get() );
	}
}

void CPulseDoc::GatherConnectionsInto( const CPulseDocNode *pNode, const char *pInparam, std::vector<const CPulseDoc_Connection_Inparam *> *pList ) const
{
	for ( const std::unique_ptr<CPulseDocNode> &pChild : pNode->GetChildren() )
	{
		auto *pConnection = dynamic_cast<const CPulseDoc_Connection_Inparam *>( pChild.get() );
		if ( pConnection && pConnection->m_ThisInparamName == pInparam )
			pList->push_back( pConnection );
	}
}

void CPulseDoc::GatherConnectionsFrom( const CPulseDocNode *pNode, const char *pOutparam, std::vector<const CPulseDoc_Connection_Inparam *> *pList ) const
{
	std::vector<CPulseDocNode *> nodes;
	GatherNodes( &nodes );
	for ( const CPulseDocNode *pCandidate : nodes )
	{
		auto *pConnection = dynamic_cast<const CPulseDoc_Connection_Inparam *>( pCandidate );
		if ( pConnection && pConnection->m_nSourceNode == pNode->GetNodeID() && pConnection->m_SourceOutparamName == pOutparam )
			pList->push_back( pConnection );
	}
}

const CPulseDoc_BaseValueDefinition *CPulseDoc::FindValueDefinition( PulseDocNodeID_t nID ) const
{
	return dynamic_cast<const CPulseDoc_BaseValueDefinition *>( FindNode( nID ) );
}

const CPulseDoc_BaseValueDefinition *CPulseDoc::FindValueDefinitionByName( const char *pName ) const
{
	std::vector<CPulseDocNode *> nodes;
	GatherNodes( &nodes );
	for ( const CPulseDocNode *pNode : nodes )
	{
		auto *pDefinition = dynamic_cast<const CPulseDoc_BaseValueDefinition *>( pNode );
		if ( pDefinition && strcmp( pDefinition->GetName(), pName ) == 0 )
			return pDefinition;
	}
	return nullptr;
}

void CPulseDoc::Validate( CPulseDocMessages *pMessages ) const
{
	std::vector<CPulseDocNode *> nodes;
	GatherNodes( &nodes );
	// The id table keeps the first node of an id: a connection to a duplicate would reach
	// whichever came first in the file.
	std::map<PulseDocNodeID_t, const CPulseDocNode *> ids;
	for ( const CPulseDocNode *pNode : nodes )
	{
		if ( pNode->GetNodeID() < 0 )
			continue;
		auto [ it, bNew ] = ids.emplace( pNode->GetNodeID(), pNode );
		if ( !bNew )
			pMessages->Error( pNode, "Node id %d is taken by %s already; ids are unique in a document", pNode->GetNodeID(), it->second->DescribeForErrors().Get() );
	}
	for ( const CPulseDocNode *pNode : nodes )
		pNode->Validate( pMessages );
	for ( const CPulseDocNode *pNode : nodes )
		pNode->ValidateLate( pMessages );
}

const CPulsePointAnalysis &CPulseDoc::GetAnalysis()
{
	if ( m_bAnalysisDirty )
	{
		// Cleared first: the analysis asks the document, which must not start it again.
		m_bAnalysisDirty = false;
		m_pAnalysis->Run( *this );
	}
	return *m_pAnalysis;
}

// Undo.

void CPulseDoc::BeginEdit( const char *pLabel )
{
	m_pUndoHistory->BeginStep( pLabel );
	m_pUndoHistory->NoteModified( m_pRoot.get() );
}

CPulseDocNode *CPulseDoc::AddNode( CPulseDocNode *pNode, CPulseDocNode *pParent, const char *pLabel )
{
	BeginEdit( pLabel );
	if ( pNode->GetNodeID() < 0 || FindNode( pNode->GetNodeID() ) )
		pNode->SetNodeID( AllocNodeID() );
	( pParent ? pParent : m_pRoot.get() )->AddChild( pNode );
	RebuildNodeTable();
	SetTopologyDirty();
	NotifyChanged( PULSE_DOC_CHANGE_EDIT );
	return pNode;
}

void CPulseDoc::RemoveNode( CPulseDocNode *pNode, const char *pLabel )
{
	if ( !pNode || !pNode->GetParent() )
		return;
	BeginEdit( pLabel );
	PulseDocNodeID_t nID = pNode->GetNodeID();
	std::unique_ptr<CPulseDocNode> pOwned = pNode->GetParent()->DetachChild( pNode );
	RebuildNodeTable();
	SetTopologyDirty();
	NotifyNodeRemoved( nID );
	NotifyChanged( PULSE_DOC_CHANGE_EDIT );
}

bool CPulseDoc::CanUndo() const
{
	return m_pUndoHistory->CanUndo();
}

bool CPulseDoc::CanRedo() const
{
	return m_pRedoHistory->CanUndo();
}

void CPulseDoc::Undo()
{
	m_pUndoHistory->PerformUndo();
}

void CPulseDoc::Redo()
{
	m_pRedoHistory->PerformUndo();
}

// Listeners.

void CPulseDoc::AddListener( IPulseDocListener *pListener )
{
	if ( std::find( m_Listeners.begin(), m_Listeners.end(), pListener ) == m_Listeners.end() )
		m_Listeners.push_back( pListener );
}

void CPulseDoc::RemoveListener( IPulseDocListener *pListener )
{
	std::erase( m_Listeners, pListener );
}

void CPulseDoc::NotifyChanged( PulseDocChangeKind_t eKind )
{
	std::vector<IPulseDocListener *> listeners = m_Listeners;
	for ( IPulseDocListener *pListener : listeners )
		pListener->OnPulseDocChanged( eKind );
}

void CPulseDoc::NotifyNodeRemoved( PulseDocNodeID_t nID )
{
	std::vector<IPulseDocListener *> listeners = m_Listeners;
	for ( IPulseDocListener *pListener : listeners )
		pListener->OnPulseDocNodeRemoved( nID );
}
