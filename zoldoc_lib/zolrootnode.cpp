#include "zoldoc_lib/zolrootnode.h"

#include "core/kv3transfer/kv3transfercontext.h"
#include "core/text/strtools.h"
#include "zoldoc_lib/zolconfigurationreader.h"
#include "zoldoc_lib/zolchildnode.h"
#include "zoldoc_lib/zolcontrolpointconfiguration.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolfunctioncatalogue.h"
#include "zoldoc_lib/zolfunctionnode.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
constexpr const char *CONFIGURATIONS_KEY = "m_controlPointConfigurations";
// Disabled children stop counting from this behaviour version on.
constexpr int FIRST_VERSION_SKIPPING_DISABLED_CHILDREN = 5;
} // namespace

CZolRootNode::~CZolRootNode()
{
	Clear();
}

void CZolRootNode::Clear()
{
	m_KV3.SetToNull();
	for ( CUtlVector<CBaseZolNode *> &nodes : m_Nodes )
		nodes.PurgeAndDeleteElements();
	m_Configurations.PurgeAndDeleteElements();
}

CBaseZolNode *CZolRootNode::AppendNode( ParticleFunctionType_t eType, CBaseZolNode *pNode )
{
	m_Nodes[ eType ].AddToTail( pNode );
	return pNode;
}

CZolChildNode *CZolRootNode::AddChildNode()
{
	CZolChildNode *pNode = new CZolChildNode( m_pDoc );
	ImprintParticleClass( pNode->GetWriteKV3(), pNode->GetClassName() );
	AppendNode( PARTICLE_FUNCTION_CHILDREN, pNode );
	return pNode;
}

CZolFunctionNode *CZolRootNode::AddFunctionNode( ParticleFunctionType_t eType, const char *pClass )
{
	if ( eType < 0 || eType >= PARTICLE_FUNCTION_CLASS_LIST_COUNT || !pClass )
		return nullptr;
	if ( FindParticleFunctionClass( eType, pClass ) < 0 )
		return nullptr;

	CZolFunctionNode *pNode = new CZolFunctionNode( m_pDoc, eType );
	KeyValues3 *pTable = pNode->GetWriteKV3();
	ImprintParticleClass( pTable, pClass );
	// Functions are polymorphic: the table names its class whatever the imprint left.
	if ( !pTable->HasMember( "_class" ) )
		pTable->SetMemberString( "_class", pClass );
	AppendNode( eType, pNode );

	ApplyDefaultArrayRule( this, eType, pNode );
	SanitiseFunctionFields( pNode, m_KV3.GetMemberInt( "m_nBehaviorVersion" ) );
	return pNode;
}

CZolVariableNode *CZolRootNode::AddVariableNode()
{
	CZolVariableNode *pNode = new CZolVariableNode( m_pDoc );
	ImprintParticleClass( pNode->GetWriteKV3(), pNode->GetClassName() );
	AppendNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, pNode );
	return pNode;
}

void CZolRootNode::RemoveFunctionNode( ParticleFunctionType_t eType, CBaseZolNode *pNode )
{
	if ( !IsParticleFunctionList( eType ) )
		return;
	if ( m_Nodes[ eType ].FindAndRemove( pNode ) )
		delete pNode;
}

void CZolRootNode::MoveNode( CBaseZolNode *pNode, int nNewIndex )
{
	int nOldIndex = -1;
	int nType = -1;
	if ( !FindNode( pNode, &nOldIndex, &nType ) )
		return;
	CUtlVector<CBaseZolNode *> &nodes = m_Nodes[ nType ];
	if ( nNewIndex < 0 || nNewIndex > nodes.Count() )
		return;
	// Insert first, then take out the old entry, which the insert pushed up when it
	// landed at or before it: nNewIndex is a gap of the list before the move.
	nodes.InsertBefore( nNewIndex, pNode );
	nodes.Remove( nNewIndex <= nOldIndex ? nOldIndex + 1 : nOldIndex );
}

int CZolRootNode::GetNodeCount( ParticleFunctionType_t eType ) const
{
	return IsParticleFunctionList( eType ) ? m_Nodes[ eType ].Count() : 0;
}

CBaseZolNode *CZolRootNode::GetNode( ParticleFunctionType_t eType, int nIndex ) const
{
	if ( !IsParticleFunctionList( eType ) || !m_Nodes[ eType ].IsValidIndex( nIndex ) )
		return nullptr;
	return m_Nodes[ eType ][ nIndex ];
}

int CZolRootNode::FindFunction( ParticleFunctionType_t eType, const char *pClass ) const
{
	if ( !IsParticleFunctionList( eType ) || !pClass )
		return -1;
	const CUtlVector<CBaseZolNode *> &nodes = m_Nodes[ eType ];
	for ( int i = 0; i < nodes.Count(); ++i )
	{
		if ( !V_stricmp_fast( nodes[ i ]->GetClassName(), pClass ) )
			return i;
	}
	return -1;
}

bool CZolRootNode::FindNode( const CBaseZolNode *pNode, int *pIndex, int *pType ) const
{
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		int nIndex = m_Nodes[ nType ].Find( const_cast<CBaseZolNode *>( pNode ) );
		if ( nIndex < 0 )
			continue;
		if ( pIndex )
			*pIndex = nIndex;
		if ( pType )
			*pType = nType;
		return true;
	}
	return false;
}

int CZolRootNode::GetEnabledCount( ParticleFunctionType_t eType ) const
{
	int nEnabled = 0;
	for ( int i = 0; i < GetNodeCount( eType ); ++i )
	{
		if ( m_Nodes[ eType ][ i ]->IsEnabled() )
			++nEnabled;
	}
	return nEnabled;
}

int CZolRootNode::GetRuntimeChildIndex( int nChild ) const
{
	if ( m_KV3.GetMemberInt( "m_nBehaviorVersion" ) < FIRST_VERSION_SKIPPING_DISABLED_CHILDREN )
		return nChild;
	const CUtlVector<CBaseZolNode *> &children = m_Nodes[ PARTICLE_FUNCTION_CHILDREN ];
	int nRuntimeIndex = 0;
	for ( int i = 0; i < nChild && i < children.Count(); ++i )
	{
		if ( children[ i ]->IsEnabled() )
			++nRuntimeIndex;
	}
	return nRuntimeIndex;
}

ZolControlPointConfiguration_t *CZolRootNode::GetConfiguration( int nIndex ) const
{
	return m_Configurations.IsValidIndex( nIndex ) ? m_Configurations[ nIndex ] : nullptr;
}

ZolControlPointConfiguration_t *CZolRootNode::FindConfiguration( const char *pName ) const
{
	for ( ZolControlPointConfiguration_t *pConfig : m_Configurations )
	{
		if ( !V_stricmp_fast( pConfig->GetName(), pName ? pName : "" ) )
			return pConfig;
	}
	return nullptr;
}

ZolControlPointConfiguration_t *CZolRootNode::FindOrAddConfiguration( const char *pName )
{
	if ( ZolControlPointConfiguration_t *pConfig = FindConfiguration( pName ) )
		return pConfig;
	// A new record is complete: every member of its preview state has its default.
	KeyValues3 named;
	named.SetMemberString( "m_name", pName ? pName : "" );
	CKV3TransferLoadContext context;
	ZolControlPointConfiguration_t *pConfig = new ZolControlPointConfiguration_t;
	ReadControlPointConfiguration( &named, &pConfig->m_KV3, &context );
	m_Configurations.AddToTail( pConfig );
	return pConfig;
}

void CZolRootNode::RemoveConfiguration( ZolControlPointConfiguration_t *pConfig )
{
	if ( m_Configurations.FindAndRemove( pConfig ) )
		delete pConfig;
}

void CZolRootNode::SaveRootToKV3( KeyValues3 *pOut ) const
{
	pOut->CopyFrom( m_KV3 );
	if ( m_Configurations.Count() )
	{
		KeyValues3 *pArray = pOut->SetMemberEmptyArray( CONFIGURATIONS_KEY );
		pArray->ArrayReserve( m_Configurations.Count() );
		for ( const ZolControlPointConfiguration_t *pConfig : m_Configurations )
			pArray->ArrayAddToTail()->CopyFrom( pConfig->m_KV3 );
	}
	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		const CUtlVector<CBaseZolNode *> &nodes = m_Nodes[ nType ];
		if ( nodes.IsEmpty() )
			continue;
		KeyValues3 *pArray = pOut->SetMemberEmptyArray( GetParticleFunctionListKey( nType ) );
		pArray->ArrayReserve( nodes.Count() );
		for ( const CBaseZolNode *pNode : nodes )
			pNode->SaveToKV3( pArray->ArrayAddToTail() );
	}
}

void CZolRootNode::LoadRootFromKV3( const KeyValues3 *pIn )
{
	LoadRoot( const_cast<KeyValues3 *>( pIn ), false );
}

void CZolRootNode::TakeRootFromKV3( KeyValues3 *pIn )
{
	LoadRoot( pIn, true );
}

void CZolRootNode::LoadRoot( KeyValues3 *pIn, bool bTake )
{
	auto fnLoadValue = [ bTake ]( KeyValues3 *pTarget, KeyValues3 *pSource ) {
		if ( bTake )
			*pTarget = static_cast<KeyValues3 &&>( *pSource );
		else
			pTarget->CopyFrom( *pSource );
	};

	Clear();
	if ( !pIn->IsTable() )
	{
		fnLoadValue( &m_KV3, pIn );
		return;
	}
	// The lists and configurations become objects, so only the rest is copied into the table.
	m_KV3.SetToEmptyTable();
	KeyValues3 *pLists[ PARTICLE_FUNCTION_LIST_COUNT ] = {};
	KeyValues3 *pConfigurations = nullptr;
	for ( int i = 0; i < pIn->GetMemberCount(); ++i )
	{
		CKV3MemberName name = pIn->GetMemberNameEx( i );
		KeyValues3 *pMember = pIn->GetMember( i );
		if ( !V_stricmp_fast( name.GetString(), CONFIGURATIONS_KEY ) )
		{
			pConfigurations = pMember;
			continue;
		}
		bool bList = false;
		for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT && !bList; ++nType )
		{
			if ( !V_stricmp_fast( name.GetString(), GetParticleFunctionListKey( nType ) ) )
			{
				pLists[ nType ] = pMember;
				bList = true;
			}
		}
		if ( !bList )
			fnLoadValue( m_KV3.FindOrCreateMember( name ), pMember );
	}

	if ( pConfigurations )
	{
		for ( int i = 0; i < pConfigurations->GetArrayElementCount(); ++i )
		{
			ZolControlPointConfiguration_t *pConfig = new ZolControlPointConfiguration_t;
			fnLoadValue( &pConfig->m_KV3, pConfigurations->GetArrayElement( i ) );
			m_Configurations.AddToTail( pConfig );
		}
	}

	for ( int nType = 0; nType < PARTICLE_FUNCTION_LIST_COUNT; ++nType )
	{
		KeyValues3 *pList = pLists[ nType ];
		if ( !pList )
			continue;
		CUtlVector<CBaseZolNode *> &nodes = m_Nodes[ nType ];
		nodes.EnsureCapacity( pList->GetArrayElementCount() );
		for ( int i = 0; i < pList->GetArrayElementCount(); ++i )
		{
			CBaseZolNode *pNode;
			if ( nType == PARTICLE_FUNCTION_CHILDREN )
				pNode = new CZolChildNode( m_pDoc );
			else if ( nType == PARTICLE_FUNCTION_NAMED_VALUE_LOCALS )
				pNode = new CZolVariableNode( m_pDoc );
			else
				pNode = new CZolFunctionNode( m_pDoc, ParticleFunctionType_t( nType ) );
			if ( bTake )
				pNode->TakeFromKV3( pList->GetArrayElement( i ) );
			else
				pNode->LoadFromKV3( pList->GetArrayElement( i ) );
			nodes.AddToTail( pNode );
		}
	}
}
