#include "pulsedoc_lib/model/pulsedocconnections.h"

#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulseports.h"
#include "pulsedoc_lib/nodes/pulsedocflow.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Connection_Inparam, "Connection_Inparam", "Inparam Connection", "A link that specifies where data comes from",
							PULSE_NODE_CATEGORY_CONNECTION, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Connection_Outflow, "Connection_Outflow", "Outflow Connection", "A link from one block to another", PULSE_NODE_CATEGORY_CONNECTION,
							false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_ConnectionAnchorPoint, "ConnectionAnchorPoint", "Anchor Point", "An anchor point for a connection", PULSE_NODE_CATEGORY_CONNECTION,
							false )

// Inparam connections.

void CPulseDoc_Connection_Inparam::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_nSourceNode = -1;
	m_SourceOutparamName.Clear();
	m_ThisInparamName.Clear();
	reader.TakeInt( "m_SourceNode", &m_nSourceNode );
	reader.TakeString( "m_SourceOutparamName", &m_SourceOutparamName );
	reader.TakeString( "m_ThisInparamName", &m_ThisInparamName );
}

void CPulseDoc_Connection_Inparam::SaveOwnKeys( KeyValues3 *pTable ) const
{
	pTable->SetMemberInt( "m_SourceNode", m_nSourceNode );
	pTable->SetMemberString( "m_SourceOutparamName", m_SourceOutparamName.Get() );
	pTable->SetMemberString( "m_ThisInparamName", m_ThisInparamName.Get() );
}

CPulseDocNode *CPulseDoc_Connection_Inparam::FindSourceNode() const
{
	return m_pDoc ? m_pDoc->FindNode( m_nSourceNode ) : nullptr;
}

CBasePulseOutparamPort *CPulseDoc_Connection_Inparam::FindSourceOutparam() const
{
	CPulseDocNode *pSource = FindSourceNode();
	return pSource ? pSource->FindOutparam( m_SourceOutparamName.Get() ) : nullptr;
}

void CPulseDoc_Connection_Inparam::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDocNode::Validate( pMessages );
	if ( !m_pParent )
	{
		pMessages->Error( this, "Inparam connection not a child of a node" );
		return;
	}
	CUtlString parent = m_pParent->DescribeForErrors();
	if ( !m_pParent->FindInparam( m_ThisInparamName.Get() ) )
		pMessages->Error( this, "Dest param '%s' doesn't exist on parent %s", m_ThisInparamName.Get(), parent.Get() );
	CPulseDocNode *pSource = FindSourceNode();
	if ( !pSource )
	{
		pMessages->Error( this, "Destination %s: Inparam source node not found: %d", parent.Get(), m_nSourceNode );
		return;
	}
	if ( dynamic_cast<const CPulseDoc_UnknownFallback *>( pSource ) )
		return;
	if ( !pSource->FindOutparam( m_SourceOutparamName.Get() ) )
		pMessages->Error( this, "Destination %s: Outparam '%s' doesn't exist on source %s", parent.Get(), m_SourceOutparamName.Get(), pSource->DescribeForErrors().Get() );
}

// Outflow connections.

void CPulseDoc_Connection_Outflow::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_SourceOutflowName.Clear();
	m_nDestFlowNodeID = -1;
	m_DestInflowName.Clear();
	reader.TakeString( "m_SourceOutflowName", &m_SourceOutflowName );
	reader.TakeInt( "m_DestFlowNodeID", &m_nDestFlowNodeID );
	reader.TakeString( "m_DestInflowName", &m_DestInflowName );
}

void CPulseDoc_Connection_Outflow::SaveOwnKeys( KeyValues3 *pTable ) const
{
	if ( !m_SourceOutflowName.IsEmpty() )
		pTable->SetMemberString( "m_SourceOutflowName", m_SourceOutflowName.Get() );
	pTable->SetMemberInt( "m_DestFlowNodeID", m_nDestFlowNodeID );
	if ( !m_DestInflowName.IsEmpty() )
		pTable->SetMemberString( "m_DestInflowName", m_DestInflowName.Get() );
}

CPulseOutflowPort *CPulseDoc_Connection_Outflow::FindSourceOutflow() const
{
	auto *pFlow = dynamic_cast<CPulseDoc_BaseFlow *>( m_pParent );
	if ( !pFlow )
		return nullptr;
	return m_SourceOutflowName.IsEmpty() ? pFlow->GetDefaultOutflow() : pFlow->FindOutflow( m_SourceOutflowName.Get() );
}

CPulseDocNode *CPulseDoc_Connection_Outflow::FindDestNode() const
{
	return m_pDoc ? m_pDoc->FindNode( m_nDestFlowNodeID ) : nullptr;
}

CPulseInflowPort *CPulseDoc_Connection_Outflow::FindDestInflow() const
{
	auto *pDest = dynamic_cast<CPulseDoc_BaseFlow *>( FindDestNode() );
	if ( !pDest )
		return nullptr;
	if ( !m_DestInflowName.IsEmpty() )
		return pDest->FindInflow( m_DestInflowName.Get() );
	std::vector<CPulseInflowPort *> inflows;
	pDest->GetInflows( &inflows );
	for ( CPulseInflowPort *pInflow : inflows )
	{
		if ( pInflow->IsDefault() )
			return pInflow;
	}
	return nullptr;
}

void CPulseDoc_Connection_Outflow::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDocNode::Validate( pMessages );
	if ( !dynamic_cast<CPulseDoc_BaseFlow *>( m_pParent ) )
	{
		pMessages->Error( this, "Outflow connection not a child of a flow node" );
		return;
	}
	CUtlString parent = m_pParent->DescribeForErrors();
	if ( !FindSourceOutflow() )
		pMessages->Error( this, "Source outflow '%s' doesn't exist on parent %s", m_SourceOutflowName.Get(), parent.Get() );
	CPulseDocNode *pDest = FindDestNode();
	if ( !pDest )
	{
		pMessages->Error( this, "Connection on %s: Outflow destination node not found: %d", parent.Get(), m_nDestFlowNodeID );
		return;
	}
	// A node of a class this build doesn't know says so itself.
	if ( dynamic_cast<const CPulseDoc_UnknownFallback *>( pDest ) )
		return;
	if ( !FindDestInflow() )
		pMessages->Error( this, "Connection on %s: Destination inflow '%s' doesn't exist on destination %s", parent.Get(), m_DestInflowName.Get(),
						  pDest->DescribeForErrors().Get() );
}
