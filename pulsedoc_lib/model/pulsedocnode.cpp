#include "pulsedoc_lib/model/pulsedocnode.h"

#include <cmath>
#include <cstring>

#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulseports.h"

CPulseDocNode::~CPulseDocNode() = default;

void CPulseDocNode::SaveInparam( const CBasePulseInparamPort &port, KeyValues3 *pTable )
{
	port.SaveKV3( pTable->FindOrCreateMember( port.GetKey() ) );
}

void CPulseDocNode::SaveKV3( KeyValues3 *pTable ) const
{
	pTable->SetToEmptyTable();
	pTable->SetMemberString( "_class", GetNodeTypeInfo().m_pClassName );
	if ( SavesOwnKeysFirst() )
		SaveOwnKeys( pTable );
	if ( m_nNodeID >= 0 )
		pTable->SetMemberInt( "m_NodeID", m_nNodeID );
	if ( !m_Name.IsEmpty() )
		pTable->SetMemberString( "m_Name", m_Name.Get() );
	if ( !m_DebugName.IsEmpty() )
		pTable->SetMemberString( "m_DebugName", m_DebugName.Get() );
	if ( m_vPosition[ 0 ] != 0.0f || m_vPosition[ 1 ] != 0.0f )
	{
		KeyValues3 *pPosition = pTable->SetMemberEmptyArray( "m_vPosition" );
		pPosition->ArrayAddToTail()->SetFloat( m_vPosition[ 0 ] );
		pPosition->ArrayAddToTail()->SetFloat( m_vPosition[ 1 ] );
	}
	if ( m_flIdealWidth != 0.0f )
		pTable->SetMemberFloat( "m_flIdealWidth", m_flIdealWidth );
	if ( m_flIdealHeight != 0.0f )
		pTable->SetMemberFloat( "m_flIdealHeight", m_flIdealHeight );
	if ( !m_Children.empty() )
	{
		KeyValues3 *pChildren = pTable->SetMemberEmptyArray( "m_Children" );
		for ( const std::unique_ptr<CPulseDocNode> &pChild : m_Children )
			pChild->SaveKV3( pChildren->ArrayAddToTail() );
	}
	if ( !SavesOwnKeysFirst() )
		SaveOwnKeys( pTable );
	if ( m_ExtraKeys.IsTable() )
	{
		for ( int i = 0; i < m_ExtraKeys.GetMemberCount(); ++i )
		{
			bool bCreated = false;
			KeyValues3 *pMember = pTable->FindOrCreateMember( m_ExtraKeys.GetMemberNameEx( i ), &bCreated );
			if ( bCreated )
				pMember->CopyFrom( *m_ExtraKeys.GetMember( i ) );
		}
	}
}

namespace
{
// A child's node: the one the load callbacks hand back, a new one of its class, or the
// stand-in for a class this build doesn't know.
CPulseDocNode *CreateChild( const KeyValues3 &table, CPulseDocLoadContext *pContext, CPulseDocNode *pParent )
{
	const char *pClassName = table.GetMemberString( "_class", "" );
	int32_t nID = -1;
	if ( const KeyValues3 *pID = table.FindMember( "m_NodeID" ); pID && ( pID->GetType() == KV3_TYPE_INT || pID->GetType() == KV3_TYPE_UINT ) )
		nID = pID->GetInt();
	if ( pContext->m_pCallbacks )
	{
		if ( CPulseDocNode *pExisting = pContext->m_pCallbacks->OnNodeLoading( nID, pClassName ) )
			return pExisting;
	}
	if ( CPulseDocNode *pNode = PulseDoc_CreateNode( pClassName ) )
		return pNode;
	( void )pParent;
	return new CPulseDoc_UnknownFallback;
}
} // namespace

void CPulseDocNode::LoadKV3( const KeyValues3 &table, CPulseDocLoadContext *pContext )
{
	CPulseDocKeyReader reader( table, this, pContext );
	reader.Take( "_class" );
	m_nNodeID = -1;
	m_Name.Clear();
	m_DebugName.Clear();
	m_vPosition[ 0 ] = m_vPosition[ 1 ] = 0.0f;
	m_flIdealWidth = m_flIdealHeight = 0.0f;
	m_pDoc = pContext->m_pDoc;
	if ( SavesOwnKeysFirst() )
		LoadOwnKeys( reader );
	reader.TakeInt( "m_NodeID", &m_nNodeID );
	if ( m_nNodeID < -1 )
	{
		reader.Warn( "m_NodeID: %d is no node id (ids are 0 or above)", m_nNodeID );
		m_nNodeID = -1;
	}
	reader.TakeString( "m_Name", &m_Name );
	reader.TakeString( "m_DebugName", &m_DebugName );
	if ( const KeyValues3 *pPosition = reader.TakeArray( "m_vPosition" ) )
	{
		if ( pPosition->GetArrayElementCount() == 2 && pPosition->GetArrayElement( 0 )->IsNumber() && pPosition->GetArrayElement( 1 )->IsNumber() )
		{
			m_vPosition[ 0 ] = pPosition->GetArrayElement( 0 )->GetFloat();
			m_vPosition[ 1 ] = pPosition->GetArrayElement( 1 )->GetFloat();
		}
		else
		{
			reader.Warn( "m_vPosition: two numbers belong here (left at 0, 0)" );
		}
	}
	reader.TakeFloat( "m_flIdealWidth", &m_flIdealWidth );
	reader.TakeFloat( "m_flIdealHeight", &m_flIdealHeight );

	m_Children.clear();
	if ( const KeyValues3 *pChildren = reader.TakeArray( "m_Children" ) )
	{
		if ( pContext->m_nDepth >= PULSE_DOC_MAX_NODE_DEPTH )
		{
			pContext->m_pMessages->Error( this, "Stack depth limit hit (%d)", pContext->m_nDepth );
		}
		else
		{
			++pContext->m_nDepth;
			for ( int i = 0; i < pChildren->GetArrayElementCount(); ++i )
			{
				const KeyValues3 *pChildTable = pChildren->GetArrayElement( i );
				if ( !pChildTable->IsTable() )
				{
					// A null child falls away; the others keep their order.
					reader.Warn( "m_Children[%d]: Class data is a '%s', not a table", i, pChildTable->GetTypeAsString() );
					continue;
				}
				CPulseDocNode *pChild = CreateChild( *pChildTable, pContext, this );
				m_Children.emplace_back( pChild );
				pChild->m_pParent = this;
				pChild->LoadKV3( *pChildTable, pContext );
				if ( auto *pUnknown = dynamic_cast<CPulseDoc_UnknownFallback *>( pChild ) )
					pContext->m_pMessages->Warning( pUnknown, "Missing document node '%s', replacing with 'CPulseDoc_UnknownFallback'",
													*pUnknown->GetMissingClassName() ? pUnknown->GetMissingClassName() : "(no _class)" );
			}
			--pContext->m_nDepth;
		}
	}
	if ( !SavesOwnKeysFirst() )
		LoadOwnKeys( reader );
	reader.KeepRest( &m_ExtraKeys );
}

CUtlString CPulseDocNode::GetTitle() const
{
	CUtlString title( GetFriendlyName() );
	if ( GetNodeTypeInfo().m_bTakesName && !m_Name.IsEmpty() )
		title.AppendFormat( " '%s'", m_Name.Get() );
	return title;
}

void CPulseDocNode::GetPorts( std::vector<CBasePulsePort *> *pPorts ) const
{
	pPorts->insert( pPorts->end(), m_Ports.begin(), m_Ports.end() );
}

void CPulseDocNode::RemovePort( CBasePulsePort *pPort )
{
	std::erase( m_Ports, pPort );
}

CBasePulseInparamPort *CPulseDocNode::FindInparam( const char *pName ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( pPort->AsInparam() && strcmp( pPort->GetName(), pName ) == 0 )
			return pPort->AsInparam();
	}
	return nullptr;
}

CBasePulseOutparamPort *CPulseDocNode::FindOutparam( const char *pName ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( pPort->AsOutparam() && strcmp( pPort->GetName(), pName ) == 0 )
			return pPort->AsOutparam();
	}
	return nullptr;
}

CPulseInflowPort *CPulseDocNode::FindInflow( const char *pName ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( pPort->AsInflow() && strcmp( pPort->GetName(), pName ) == 0 )
			return pPort->AsInflow();
	}
	return nullptr;
}

CPulseOutflowPort *CPulseDocNode::FindOutflow( const char *pName ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( pPort->AsOutflow() && strcmp( pPort->GetName(), pName ) == 0 )
			return pPort->AsOutflow();
	}
	return nullptr;
}

CPulseOutflowPort *CPulseDocNode::FindOutflowAssociatedWith( const CBasePulsePort *pPort ) const
{
	const char *pName = pPort->m_Metadata.GetMemberString( "associated_outflow_name", "" );
	return *pName ? FindOutflow( pName ) : nullptr;
}

CPulseInflowPort *CPulseDocNode::FindInflowAssociatedWith( const CBasePulsePort *pPort ) const
{
	const char *pName = pPort->m_Metadata.GetMemberString( "associated_inflow_name", "" );
	return *pName ? FindInflow( pName ) : nullptr;
}

void CPulseDocNode::WriteCellKeys( KeyValues3 *, CPulseCompileContext * ) const
{
}

void CPulseDocNode::GatherSequencePoints( std::vector<CPulseSequencePoint *> * )
{
}

void CPulseDocNode::Validate( CPulseDocMessages *pMessages ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( const CBasePulsePort *pPort : ports )
		pPort->Validate( pMessages );
	if ( GetNodeTypeInfo().m_bTakesName )
	{
		if ( m_Name.IsEmpty() )
			pMessages->Error( this, "Node name is not valid: %s (%s)", "Empty name not allowed", m_Name.Get() );
		else if ( strchr( m_Name.Get(), '$' ) )
			pMessages->Error( this, "Node name is not valid: %s (%s)", "Illegal character: '$'", m_Name.Get() );
	}
	else if ( !m_Name.IsEmpty() )
	{
		pMessages->Error( this, "Node should not have a name (%s)", m_Name.Get() );
	}
}

void CPulseDocNode::DescribeForErrors( CUtlString *pOut ) const
{
	pOut->Format( "%s [ID=%d]", GetFriendlyName(), m_nNodeID );
}

CUtlString CPulseDocNode::DescribeForErrors() const
{
	CUtlString text;
	DescribeForErrors( &text );
	return text;
}

void CPulseDocNode::SnapPosition( float flGrid )
{
	if ( !( flGrid > 0.0f ) )
		return;
	for ( float &flValue : m_vPosition )
		flValue = std::floor( flValue / flGrid + 0.5f ) * flGrid;
}

CPulseDocNode *CPulseDocNode::AddChild( CPulseDocNode *pChild, int nIndex )
{
	pChild->m_pParent = this;
	pChild->SetDocRecursive( m_pDoc );
	if ( nIndex < 0 || size_t( nIndex ) > m_Children.size() )
		m_Children.emplace_back( pChild );
	else
		m_Children.emplace( m_Children.begin() + nIndex, pChild );
	return pChild;
}

std::unique_ptr<CPulseDocNode> CPulseDocNode::DetachChild( CPulseDocNode *pChild )
{
	for ( auto it = m_Children.begin(); it != m_Children.end(); ++it )
	{
		if ( it->get() != pChild )
			continue;
		std::unique_ptr<CPulseDocNode> pOwned = std::move( *it );
		m_Children.erase( it );
		pOwned->m_pParent = nullptr;
		return pOwned;
	}
	return nullptr;
}

void CPulseDocNode::GatherSubtree( std::vector<CPulseDocNode *> *pNodes )
{
	for ( const std::unique_ptr<CPulseDocNode> &pChild : m_Children )
	{
		pNodes->push_back( pChild.get() );
		pChild->GatherSubtree( pNodes );
	}
}

void CPulseDocNode::SetDocRecursive( CPulseDoc *pDoc )
{
	m_pDoc = pDoc;
	for ( const std::unique_ptr<CPulseDocNode> &pChild : m_Children )
		pChild->SetDocRecursive( pDoc );
}
