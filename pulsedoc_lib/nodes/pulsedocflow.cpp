#include "pulsedoc_lib/nodes/pulsedocflow.h"

#include "pulsedoc_lib/model/pulsedocmessages.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Group, "Group", "Group", "Runs its flow children one after another, then goes on at its own exit.", PULSE_NODE_CATEGORY_FLOW,
							false )

CPulseDoc_BaseFlow *PulseDoc_FirstFlowChild( const CPulseDocNode *pNode )
{
	for ( const std::unique_ptr<CPulseDocNode> &pChild : pNode->GetChildren() )
	{
		if ( auto *pFlow = dynamic_cast<CPulseDoc_BaseFlow *>( pChild.get() ) )
			return pFlow;
	}
	return nullptr;
}

CPulseDoc_BaseFlow *PulseDoc_NextFlowSibling( const CPulseDocNode *pNode )
{
	const CPulseDocNode *pParent = pNode->GetParent();
	if ( !dynamic_cast<const CPulseDoc_BaseFlow *>( pParent ) )
		return nullptr;
	bool bAfter = false;
	for ( const std::unique_ptr<CPulseDocNode> &pChild : pParent->GetChildren() )
	{
		if ( pChild.get() == pNode )
			bAfter = true;
		else if ( bAfter )
		{
			if ( auto *pFlow = dynamic_cast<CPulseDoc_BaseFlow *>( pChild.get() ) )
				return pFlow;
		}
	}
	return nullptr;
}

// Every flow node.

void CPulseDoc_BaseFlow::GetInflows( std::vector<CPulseInflowPort *> *pInflows ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( CPulseInflowPort *pInflow = pPort->AsInflow() )
			pInflows->push_back( pInflow );
	}
}

void CPulseDoc_BaseFlow::GetOutflows( std::vector<CPulseOutflowPort *> *pOutflows ) const
{
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( CPulseOutflowPort *pOutflow = pPort->AsOutflow() )
			pOutflows->push_back( pOutflow );
	}
}

const CPulseSequencePoint *CPulseDoc_BaseFlow::GetDefaultInflowPoint() const
{
	std::vector<CPulseInflowPort *> inflows;
	GetInflows( &inflows );
	for ( CPulseInflowPort *pInflow : inflows )
	{
		if ( pInflow->IsDefault() )
			return GetInflowEntry( pInflow );
	}
	return nullptr;
}

CPulseOutflowPort *CPulseDoc_BaseFlow::GetDefaultOutflow() const
{
	std::vector<CPulseOutflowPort *> outflows;
	GetOutflows( &outflows );
	for ( CPulseOutflowPort *pOutflow : outflows )
	{
		if ( pOutflow->IsDefault() )
			return pOutflow;
	}
	return nullptr;
}

const CPulseSequencePoint *CPulseDoc_BaseFlow::GetInflowEntry( const CPulseInflowPort *pInflow ) const
{
	return pInflow ? &pInflow->GetPoint() : nullptr;
}

const CPulseSequencePoint *CPulseDoc_BaseFlow::GetOutparamSourcePoint( const CBasePulseOutparamPort * ) const
{
	return m_OwnPoints.empty() ? GetDefaultInflowPoint() : m_OwnPoints.front();
}

void CPulseDoc_BaseFlow::GatherSequencePoints( std::vector<CPulseSequencePoint *> *pPoints )
{
	pPoints->insert( pPoints->end(), m_OwnPoints.begin(), m_OwnPoints.end() );
	std::vector<CBasePulsePort *> ports;
	GetPorts( &ports );
	for ( CBasePulsePort *pPort : ports )
	{
		if ( CPulseInflowPort *pInflow = pPort->AsInflow() )
			pPoints->push_back( &pInflow->GetPoint() );
		else if ( CPulseOutflowPort *pOutflow = pPort->AsOutflow() )
			pPoints->push_back( &pOutflow->GetPoint() );
	}
}

void CPulseDoc_BaseFlow::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDocNode::Validate( pMessages );
	// Flow children run one after another: only the first may lack a way in, only the
	// last a way on.
	std::vector<const CPulseDoc_BaseFlow *> flows;
	for ( const std::unique_ptr<CPulseDocNode> &pChild : m_Children )
	{
		if ( auto *pFlow = dynamic_cast<const CPulseDoc_BaseFlow *>( pChild.get() ) )
			flows.push_back( pFlow );
	}
	for ( size_t i = 0; i < flows.size(); ++i )
	{
		if ( i + 1 < flows.size() && !flows[ i ]->GetDefaultOutflow() )
			pMessages->Error( flows[ i ], "No-default-outflow must be the last child" );
		if ( i > 0 && !flows[ i ]->GetDefaultInflowPoint() )
			pMessages->Error( flows[ i ], "No-default-inflow must be the first child" );
	}
}

void CPulseDoc_BaseFlow::FillDefaultExitProperties( PulseSequencePointProperties_t *pProperties ) const
{
	if ( CPulseOutflowPort *pExit = GetDefaultOutflow() )
		pProperties->AddNext( &pExit->GetPoint() );
}

void CPulseDoc_BaseFlow::FillAllExitsProperties( PulseSequencePointProperties_t *pProperties ) const
{
	std::vector<CPulseOutflowPort *> outflows;
	GetOutflows( &outflows );
	for ( CPulseOutflowPort *pOutflow : outflows )
		pProperties->AddNext( &pOutflow->GetPoint() );
	pProperties->m_bNoFallThrough = true;
}

void CPulseDoc_BaseFlow::InitOutflowPoint( CPulseOutflowPort &port )
{
	CPulseOutflowPort *pPort = &port;
	port.GetPoint().SetPropertiesFn( [ pPort ]( PulseSequencePointProperties_t *pProperties ) {
		pProperties->AddNext( pPort->ResolveTarget() );
		pProperties->m_bBackedByVariable = pPort->IsBackedByVariable();
	} );
	port.GetPoint().SetNoOpCompilePoint();
}

// Entries.

CPulseDoc_BaseInflow::CPulseDoc_BaseInflow() : m_PrimaryPoint( "PrimaryPoint", this ), m_OutDefault( this, "OutDefault", "Out Default", true )
{
	m_PrimaryPoint.SetEntry( true );
	m_PrimaryPoint.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) {
		FillDefaultExitProperties( pProperties );
		pProperties->m_nEntryKind = PulseSequencePointProperties_t::ENTRY_GRAPH;
	} );
	m_PrimaryPoint.SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) { CompileStep( pPoint, pChunk ); } );
	m_OwnPoints.push_back( &m_PrimaryPoint );
	AddPort( &m_OutDefault );
	InitOutflowPoint( m_OutDefault );
}

// Steps.

CPulseDoc_BaseStep::CPulseDoc_BaseStep()
	: m_StepPoint( "StepPoint", this ), m_InDefault( this, "InDefault", "In Default", true, &m_StepPoint ), m_OutDefault( this, "OutDefault", "Out Default", true )
{
	m_StepPoint.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) { FillDefaultExitProperties( pProperties ); } );
	m_StepPoint.SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) { CompileStep( pPoint, pChunk ); } );
	m_OwnPoints.push_back( &m_StepPoint );
	AddPort( &m_InDefault );
	AddPort( &m_OutDefault );
	InitOutflowPoint( m_OutDefault );
}

// Outflows.

CPulseDoc_BaseOutflow::CPulseDoc_BaseOutflow() : m_PrimaryPoint( "PrimaryPoint", this ), m_InDefault( this, "InDefault", "In Default", true, &m_PrimaryPoint )
{
	m_PrimaryPoint.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) { FillAllExitsProperties( pProperties ); } );
	m_PrimaryPoint.SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) { CompileStep( pPoint, pChunk ); } );
	m_OwnPoints.push_back( &m_PrimaryPoint );
	AddPort( &m_InDefault );
}

// Groups.

CPulseDoc_Group::CPulseDoc_Group()
	: m_PrimaryPoint( "PrimaryPoint", this ), m_InDefault( this, "InDefault", "In Default", true, &m_PrimaryPoint ), m_OutDefault( this, "OutDefault", "Out Default", true )
{
	m_PrimaryPoint.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) {
		const CPulseDoc_BaseFlow *pFirst = PulseDoc_FirstFlowChild( this );
		if ( pFirst && pFirst->GetDefaultInflowPoint() )
			pProperties->AddNext( pFirst->GetDefaultInflowPoint() );
		else
			pProperties->AddNext( &m_OutDefault.GetPoint() );
	} );
	m_PrimaryPoint.SetNoOpCompilePoint();
	m_OwnPoints.push_back( &m_PrimaryPoint );
	AddPort( &m_InDefault );
	AddPort( &m_OutDefault );
	InitOutflowPoint( m_OutDefault );
}
