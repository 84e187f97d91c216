#include "zoldoc_lib/zoldoc.h"

#include "core/kv3/keyvalues3.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/undo/undohistory.h"
#include "zoldoc_lib/iasset.h"
#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zolevents.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
constexpr const char *ROOT_CLASS_NAME = "CParticleSystemDefinition";
constexpr const char *PASTE_SYSTEM_DEFINITION_KEY = "System_Definition";

// Takes from the source only the keys the target already has: the clipboard may carry
// anything, a node keeps the shape of its class.
void OverlayKnownKeys( KeyValues3 *pTarget, const KeyValues3 *pSource )
{
	for ( int i = 0; i < pTarget->GetMemberCount(); ++i )
	{
		if ( const KeyValues3 *pValue = pSource->FindMember( pTarget->GetMemberNameEx( i ) ) )
			pTarget->GetMember( i )->CopyFrom( *pValue );
	}
}
} // namespace

CZolDoc::CZolDoc( bool bWithHistories )
{
	if ( !bWithHistories )
		return;
	m_pUndoHistory = new CUndoHistory( UNDO_STEP_LIMIT );
	m_pRedoHistory = new CUndoHistory( UNDO_STEP_LIMIT );
	m_pUndoHistory->SetPartner( true, m_pRedoHistory );
	m_pUndoHistory->AddListener( this );
}

CZolDoc::~CZolDoc()
{
	// The histories first: their snapshots are documents that must not outlive this one's root.
	delete m_pUndoHistory;
	delete m_pRedoHistory;
	m_pUndoHistory = nullptr;
	m_pRedoHistory = nullptr;
	delete m_pRoot;
	m_pRoot = nullptr;
}

void CZolDoc::Reset()
{
	delete m_pRoot;
	m_pRoot = new CZolRootNode( this );
	KeyValues3 *pTable = m_pRoot->GetWriteKV3();
	pTable->SetToEmptyTable();
	ImprintParticleClass( pTable, ROOT_CLASS_NAME );
	if ( !pTable->HasMember( "_class" ) )
		pTable->SetMemberString( "_class", ROOT_CLASS_NAME );
	UpdateRootVersion( m_pRoot );
}

//-----------------------------------------------------------------------------
// Undo
//-----------------------------------------------------------------------------

void CZolDoc::OpenUndoUnit( const char *pDescription, const UndoMergeInfo_t *pMerge )
{
	if ( !m_pUndoHistory )
		return;
	m_pUndoHistory->BeginStep( pDescription, pMerge );
	m_pUndoHistory->NoteModified( this );
}

void CZolDoc::BeginEdit( const char *pDescription, bool bNotify, const UndoMergeInfo_t *pMerge )
{
	OpenUndoUnit( pDescription, pMerge );
	if ( bNotify )
		SendEvent( ZolEvent_DocumentModified_t() );
}

void CZolDoc::NotifyModified()
{
	SendEvent( ZolEvent_DocumentModified_t() );
}

IUndoable *CZolDoc::CreateUndoState()
{
	CZolDoc *pState = new CZolDoc( false );
	pState->Reset();
	pState->ApplyUndoState( this );
	return pState;
}

void CZolDoc::ApplyUndoState( IUndoable *pState )
{
	const CZolDoc *pOther = dynamic_cast<const CZolDoc *>( pState );
	if ( !pOther || pOther == this )
		return;
	if ( !m_pRoot )
		m_pRoot = new CZolRootNode( this );
	KeyValues3 definition;
	if ( pOther->m_pRoot )
		pOther->m_pRoot->SaveRootToKV3( &definition );
	m_pRoot->TakeRootFromKV3( &definition );
	m_Selection = pOther->m_Selection;
	m_bUndoStateApplied = true;
}

void CZolDoc::OnUndoEvent( UndoEvent_t eEvent )
{
	if ( eEvent == UNDO_EVENT_BEFORE_UNDO )
		m_bUndoStateApplied = false;
	// A step of other objects only (a control point moved in the preview) leaves the
	// document as it was.
	if ( eEvent != UNDO_EVENT_AFTER_UNDO || !m_bUndoStateApplied )
		return;
	RebuildAttributeLabels();
	SendEvent( ZolEvent_DocumentReplaced_t() );
}

void CZolDoc::GetEnabledCounts( int ( &counts )[ PARTICLE_FUNCTION_LIST_COUNT ] ) const
{
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
		counts[ nType ] = m_pRoot ? m_pRoot->GetEnabledCount( ParticleFunctionType_t( nType ) ) : 0;
}

void CZolDoc::PerformHistoryUndo( CUndoHistory *pHistory )
{
	if ( !pHistory )
		return;
	int before[ PARTICLE_FUNCTION_LIST_COUNT ];
	int after[ PARTICLE_FUNCTION_LIST_COUNT ];
	GetEnabledCounts( before );
	pHistory->PerformUndo();
	GetEnabledCounts( after );
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		if ( before[ nType ] != after[ nType ] )
		{
			RebuildAttributeLabels();
			SendEvent( ZolEvent_FunctionListChanged_t() );
			return;
		}
	}
}

void CZolDoc::Undo()
{
	PerformHistoryUndo( m_pUndoHistory );
}

void CZolDoc::Redo()
{
	PerformHistoryUndo( m_pRedoHistory );
}

//-----------------------------------------------------------------------------
// Structure
//-----------------------------------------------------------------------------

void CZolDoc::WriteChildReference( CZolChildNode *pChild, IAsset *pAsset )
{
	if ( !pChild || !pAsset )
		return;
	CUtlString path( pAsset->GetPath() );
	path.FixSlashes( '/' );
	if ( V_stricmp_fast( path.Get(), pChild->GetChildRef() ) )
		pChild->GetWriteKV3()->SetMemberString( "m_ChildRef", path.Get() );
}

CZolChildNode *CZolDoc::AddChildInUnit( IAsset *pAsset )
{
	if ( !m_pRoot )
		return nullptr;
	CZolChildNode *pChild = m_pRoot->AddChildNode();
	WriteChildReference( pChild, pAsset );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
	return pChild;
}

CZolChildNode *CZolDoc::AddChild( IAsset *pAsset )
{
	OpenUndoUnit( "Add Child" );
	return AddChildInUnit( pAsset );
}

void CZolDoc::AddChildren( int nCount, IAsset **ppAssets )
{
	if ( nCount <= 0 )
		return;
	// All children of one drop are one undo step.
	OpenUndoUnit( "Add Children" );
	SendEvent( ZolEvent_DocumentModified_t() );
	for ( int i = 0; i < nCount; ++i )
		AddChildInUnit( ppAssets[ i ] );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
}

void CZolDoc::SetChild( CZolChildNode *pChild, IAsset *pAsset )
{
	OpenUndoUnit( "Set Child" );
	WriteChildReference( pChild, pAsset );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
}

CZolFunctionNode *CZolDoc::AddFunction( const char *pName, const char *pClass, ParticleFunctionType_t eType, const FunctionInitialiser_t &fnInitialise )
{
	CUtlString description;
	description.Format( "Add %s '%s'", GetFunctionTypeName( eType ), ( pName && *pName ) ? pName : ( pClass ? pClass : "" ) );
	OpenUndoUnit( description.Get() );

	CZolFunctionNode *pNode = m_pRoot ? m_pRoot->AddFunctionNode( eType, pClass ) : nullptr;
	if ( pNode && fnInitialise )
		fnInitialise( pNode );
	SetSelection( pNode ? GetElementRef( pNode ) : ZolElementRef_t::None() );
	SendEvent( ZolEvent_SelectionChanged_t() );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
	return pNode;
}

CZolVariableNode *CZolDoc::AddVariable( const char *pName, const CPulseValueFullType &type )
{
	if ( !m_pRoot )
		return nullptr;
	CUtlString description;
	description.Format( "Add Variable %s", pName ? pName : "" );
	OpenUndoUnit( description.Get() );

	CZolVariableNode *pNode = m_pRoot->AddVariableNode();
	pNode->SetName( pName ? pName : "" );
	pNode->SetValueType( type );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
	return pNode;
}

void CZolDoc::RemoveElement( ParticleFunctionType_t eType, CBaseZolNode *pNode )
{
	if ( !m_pRoot )
		return;
	CUtlString description;
	description.Format( "Remove '%s'", GetFriendlyName( pNode ) );
	OpenUndoUnit( description.Get() );
	SendEvent( ZolEvent_DocumentModified_t() );

	m_pRoot->RemoveFunctionNode( eType, pNode );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
	SetSelection( ZolElementRef_t::Root() );
	SendEvent( ZolEvent_SelectionChanged_t() );
}

void CZolDoc::RemoveSelected()
{
	// Every pair is resolved before the first removal: removing shifts the indexes of
	// the nodes behind it, and later pairs would then name the wrong nodes.
	CUtlVector<CBaseZolNode *> selected;
	GetSelectedNodes( selected );
	for ( CBaseZolNode *pNode : selected )
	{
		if ( pNode != m_pRoot )
			m_pRoot->RemoveFunctionNode( pNode->GetFunctionType(), pNode );
	}
	SetSelection( ZolElementRef_t::Root() );
	SendEvent( ZolEvent_SelectionChanged_t() );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
}

void CZolDoc::MoveElement( CBaseZolNode *pNode, int nNewIndex )
{
	if ( !m_pRoot )
		return;
	CUtlString description;
	description.Format( "Move '%s'", GetFriendlyName( pNode ) );
	OpenUndoUnit( description.Get() );
	SendEvent( ZolEvent_DocumentModified_t() );

	m_pRoot->MoveNode( pNode, nNewIndex );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
}

void CZolDoc::SetElementEnabled( CBaseZolNode *pNode, bool bEnabled )
{
	CUtlString description;
	description.Format( "Toggle %s", GetFriendlyName( pNode ) );
	OpenUndoUnit( description.Get() );
	SendEvent( ZolEvent_DocumentModified_t() );

	if ( pNode )
		pNode->SetEnabled( bEnabled );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionEnableDisableChanged_t() );
}

void CZolDoc::ToggleSelected()
{
	OpenUndoUnit( "Toggle Selected" );
	SendEvent( ZolEvent_DocumentModified_t() );

	CUtlVector<CBaseZolNode *> selected;
	GetSelectedNodes( selected );
	for ( CBaseZolNode *pNode : selected )
	{
		if ( pNode != m_pRoot )
			pNode->SetEnabled( !pNode->IsEnabled() );
	}
	SendEvent( ZolEvent_DocumentModified_t() );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionEnableDisableChanged_t() );
}

void CZolDoc::UpdateToCurrentVersion( CUtlVector<CUtlString> *pChanges )
{
	if ( !m_pRoot )
		return;
	OpenUndoUnit( "Update to Current Version" );
	SendEvent( ZolEvent_DocumentModified_t() );

	UpdateRootVersion( m_pRoot, m_bKeepsUnknownFunctions, pChanges );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_DocumentReplaced_t() );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
}

void CZolDoc::Paste( const KeyValues3 *pClipboard )
{
	if ( !m_pRoot )
		return;
	OpenUndoUnit( "Paste" );
	SendEvent( ZolEvent_DocumentModified_t() );
	const int nVersion = GetBehaviorVersion();

	CUtlVector<ZolElementRef_t> pasted;
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		const ParticleFunctionType_t eType = ParticleFunctionType_t( nType );
		const KeyValues3 *pElements = pClipboard ? pClipboard->FindMember( GetFunctionTypeName( nType ) ) : nullptr;
		if ( !pElements )
			continue;
		for ( int i = 0; i < pElements->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pElement = pElements->GetArrayElement( i );
			CBaseZolNode *pNode = nullptr;
			if ( eType == PARTICLE_FUNCTION_NAMED_VALUE_LOCALS )
			{
				pNode = m_pRoot->AddVariableNode();
			}
			else if ( eType == PARTICLE_FUNCTION_CHILDREN )
			{
				pNode = m_pRoot->AddChildNode();
			}
			else
			{
				// Elements of unknown or out-of-version classes are dropped without a word:
				// the clipboard may come from another build.
				const KeyValues3 *pClass = pElement->FindMember( "_class" );
				if ( !pClass || !pClass->IsString() || !IsFunctionValidForVersion( eType, pClass->GetString(), nVersion ) )
					continue;
				pNode = m_pRoot->AddFunctionNode( eType, pClass->GetString() );
			}
			if ( !pNode )
				continue;
			OverlayKnownKeys( pNode->GetWriteKV3(), pElement );
			if ( CZolFunctionNode *pFunction = pNode->AsFunctionNode() )
				SanitiseFunctionFields( pFunction, nVersion );
			pasted.AddToTail( { nType, m_pRoot->GetNodeCount( eType ) - 1 } );
		}
	}

	if ( const KeyValues3 *pDefinition = pClipboard ? pClipboard->FindMember( PASTE_SYSTEM_DEFINITION_KEY ) : nullptr )
	{
		OverlayKnownKeys( m_pRoot->GetWriteKV3(), pDefinition );
		SanitiseForVersion( m_pRoot, nVersion );
		pasted.AddToTail( ZolElementRef_t::Root() );
	}

	m_Selection = pasted;
	SendEvent( ZolEvent_SelectionChanged_t() );
	RebuildAttributeLabels();
	SendEvent( ZolEvent_FunctionListChanged_t() );
}

//-----------------------------------------------------------------------------
// Selection
//-----------------------------------------------------------------------------

ZolElementRef_t CZolDoc::GetElementRef( const CBaseZolNode *pNode ) const
{
	if ( !pNode || !m_pRoot )
		return ZolElementRef_t::None();
	if ( pNode == m_pRoot )
		return ZolElementRef_t::Root();
	int nIndex = -1;
	int nType = -1;
	if ( !m_pRoot->FindNode( pNode, &nIndex, &nType ) )
		return ZolElementRef_t::None();
	return { nType, nIndex };
}

CBaseZolNode *CZolDoc::ResolveElementRef( const ZolElementRef_t &ref ) const
{
	if ( !m_pRoot )
		return nullptr;
	if ( ref.m_nType == PARTICLE_FUNCTION_ROOT )
		return ref.m_nIndex == 0 ? m_pRoot : nullptr;
	return m_pRoot->GetNode( ParticleFunctionType_t( ref.m_nType ), ref.m_nIndex );
}

void CZolDoc::SetSelection( const ZolElementRef_t &ref )
{
	m_Selection.RemoveAll();
	m_Selection.AddToTail( ref );
}

void CZolDoc::SelectElement( CBaseZolNode *pNode, bool bUndoable )
{
	if ( bUndoable )
		OpenUndoUnit( "Select Element" );
	SetSelection( GetElementRef( pNode ) );
	SendEvent( ZolEvent_SelectionChanged_t() );
}

void CZolDoc::AddElementToSelection( CBaseZolNode *pNode, bool bUndoable )
{
	if ( bUndoable )
		OpenUndoUnit( "Add Element To Selection" );
	ZolElementRef_t ref = GetElementRef( pNode );
	if ( m_Selection.HasElement( ref ) )
		return;
	m_Selection.AddToTail( ref );
	SendEvent( ZolEvent_SelectionChanged_t() );
}

void CZolDoc::RemoveElementFromSelection( CBaseZolNode *pNode, bool bUndoable )
{
	if ( bUndoable )
		OpenUndoUnit( "Deselect Element" );
	m_Selection.FindAndRemove( GetElementRef( pNode ) );
	SendEvent( ZolEvent_SelectionChanged_t() );
}

void CZolDoc::SelectBaseProperties()
{
	OpenUndoUnit( "Select Base Properties" );
	SetSelection( ZolElementRef_t::Root() );
	SendEvent( ZolEvent_SelectionChanged_t() );
}

void CZolDoc::GetSelectedNodes( CUtlVector<CBaseZolNode *> &nodes ) const
{
	nodes.RemoveAll();
	for ( const ZolElementRef_t &ref : m_Selection )
	{
		if ( CBaseZolNode *pNode = ResolveElementRef( ref ) )
			nodes.AddToTail( pNode );
	}
}

bool CZolDoc::HasNonBaseSelection() const
{
	return m_Selection.Count() > 1 || ( m_Selection.Count() == 1 && !m_Selection[ 0 ].IsRoot() );
}

//-----------------------------------------------------------------------------
// Modified nodes
//-----------------------------------------------------------------------------

void CZolDoc::NoteNodeModified( CBaseZolNode *pNode )
{
	if ( pNode && pNode->GetDoc() == this )
		m_ModifiedNodes.insert( pNode );
}

void CZolDoc::OnNodeDestroyed( CBaseZolNode *pNode )
{
	m_ModifiedNodes.erase( pNode );
}

void CZolDoc::FlushModifiedNodes()
{
	if ( m_ModifiedNodes.empty() )
		return;
	CUtlVector<CBaseZolNode *> nodes;
	nodes.EnsureCapacity( int( m_ModifiedNodes.size() ) );
	for ( CBaseZolNode *pNode : m_ModifiedNodes )
		nodes.AddToTail( pNode );

	ZolEvent_NodesModified_t event;
	event.m_pNodeSet = &m_ModifiedNodes;
	event.m_ppNodes = nodes.Base();
	event.m_nNodeCount = nodes.Count();
	SendEvent( event );
	m_ModifiedNodes.clear();
}

//-----------------------------------------------------------------------------
// Queries and labels
//-----------------------------------------------------------------------------

const char *CZolDoc::GetFriendlyName( const CBaseZolNode *pNode )
{
	return pNode ? GetParticleFunctionFriendlyName( pNode->GetClassName() ) : "";
}

int CZolDoc::GetBehaviorVersion() const
{
	return m_pRoot ? m_pRoot->GetReadKV3()->GetMemberInt( "m_nBehaviorVersion", 0 ) : 0;
}

int CZolDoc::GetCurrentBehaviorVersion()
{
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	return pMgr ? pMgr->GetCurrentBehaviorVersion() : 0;
}

void CZolDoc::RebuildAttributeLabels()
{
	m_AttributeLabels.RemoveAll();
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	if ( !pMgr || !m_pRoot )
		return;

	struct AttributeSlots_t
	{
		bool m_bSet = false;
		bool m_bPerComponent = false;
		CUtlString m_Slots[ 3 ];
	};
	CUtlVector<AttributeSlots_t> slots;

	for ( int i = 0; i < m_pRoot->GetNodeCount( PARTICLE_FUNCTION_RENDERER ); ++i )
	{
		const CBaseZolNode *pRenderer = m_pRoot->GetNode( PARTICLE_FUNCTION_RENDERER, i );
		if ( !pRenderer->IsEnabled() )
			continue;
		ParticleFunctionInfo_t info;
		pMgr->GetFunctionInfo( pRenderer->GetReadKV3(), &info );
		for ( const ParticleAttributeUsage_t &usage : info.m_AttributeUsage )
		{
			if ( usage.m_nAttribute < 0 || usage.m_nComponent > 2 )
				continue;
			if ( usage.m_nAttribute >= slots.Count() )
				slots.SetCount( usage.m_nAttribute + 1 );
			AttributeSlots_t &entry = slots[ usage.m_nAttribute ];
			// The first record decides the form; later ones, the last renderer's included, overwrite text.
			if ( !entry.m_bSet )
			{
				entry.m_bSet = true;
				entry.m_bPerComponent = usage.m_nComponent >= 0;
			}
			entry.m_Slots[ usage.m_nComponent < 0 ? 0 : usage.m_nComponent ] = usage.m_Text;
		}
	}

	int nLength = 0;
	for ( int i = 0; i < slots.Count(); ++i )
	{
		if ( slots[ i ].m_bSet )
			nLength = i + 1;
	}
	m_AttributeLabels.SetCount( nLength );
	for ( int i = 0; i < nLength; ++i )
	{
		const AttributeSlots_t &entry = slots[ i ];
		if ( !entry.m_bSet )
			continue;
		if ( !entry.m_bPerComponent )
		{
			m_AttributeLabels[ i ] = entry.m_Slots[ 0 ];
			continue;
		}
		CUtlString label;
		for ( int nComponent = 0; nComponent < 3; ++nComponent )
		{
			if ( nComponent )
				label.Append( ", " );
			label.Append( entry.m_Slots[ nComponent ].Length() ? entry.m_Slots[ nComponent ].Get() : "Unused" );
		}
		m_AttributeLabels[ i ] = label;
	}
}

const char *CZolDoc::GetAttributeLabel( int nAttribute ) const
{
	if ( m_AttributeLabels.IsValidIndex( nAttribute ) && m_AttributeLabels[ nAttribute ].Length() )
		return m_AttributeLabels[ nAttribute ].Get();
	const IParticleSystemMgr *pMgr = GetParticleSystemMgr();
	const char *pName = pMgr ? pMgr->GetParticleAttributeName( nAttribute ) : nullptr;
	return pName ? pName : "";
}
