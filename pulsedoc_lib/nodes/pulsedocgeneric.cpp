#include "pulsedoc_lib/nodes/pulsedocgeneric.h"

#include <algorithm>
#include <cstring>

#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulsedocroot.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Flow_Generic, "Flow_Generic", "Generic Flow", "A flow node described by a node description.", PULSE_NODE_CATEGORY_FLOW,
							false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Value_Generic, "Value_Generic", "Generic Value", "The result of a library function.", PULSE_NODE_CATEGORY_VALUE, false )

using enum PulseInstructionCode_t;

// The value ports.

void CPulseGenericPorts::Init( CPulseDocNode *pNode, const PulseGenericShape_t *pShape, std::vector<CBasePulsePort *> *pPorts )
{
	m_pShape = pShape;
	m_Inparams.clear();
	m_Outparams.clear();
	if ( !pShape )
		return;
	for ( const PulseGenericShape_t::Param_t &param : pShape->m_Inparams )
	{
		auto pPort = std::make_unique<CBasePulseInparamPort>( pNode, param.m_Name.Get(), param.m_Type, nullptr, param.m_FriendlyName.Get(), param.m_Description.Get() );
		pPort->m_AssociatedInflow = param.m_AssociatedFlow;
		pPort->m_Metadata.CopyFrom( param.m_Metadata );
		if ( !param.m_DefaultValue.IsNull() )
			pPort->SetDefaultValue( param.m_DefaultValue );
		pPorts->push_back( pPort.get() );
		m_Inparams.push_back( std::move( pPort ) );
	}
	for ( const PulseGenericShape_t::Param_t &param : pShape->m_Outparams )
	{
		auto pPort = std::make_unique<CBasePulseOutparamPort>( pNode, param.m_Name.Get(), param.m_Type, param.m_FriendlyName.Get(), param.m_Description.Get() );
		pPort->m_AssociatedOutflow = param.m_AssociatedFlow;
		pPort->m_Metadata.CopyFrom( param.m_Metadata );
		pPorts->push_back( pPort.get() );
		m_Outparams.push_back( std::move( pPort ) );
	}
}

void CPulseGenericPorts::Load( CPulseDocKeyReader &reader, CPulseDocNode *, const std::vector<CBasePulsePort *> &ports )
{
	m_GenericKeys.SetToEmptyTable();
	m_OrphanPorts.SetToNull();
	if ( const KeyValues3 *pKeys = reader.TakeTable( "m_GenericKeys" ) )
		m_GenericKeys.CopyFrom( *pKeys );
	KeyValues3 portData;
	if ( const KeyValues3 *pPorts = reader.TakeTable( "m_GenericPorts" ) )
		portData.CopyFrom( *pPorts );
	for ( CBasePulsePort *pPort : ports )
	{
		// An input bound to a field of the cell lives in the keys, under the field's name.
		const PulseGenericShape_t::Param_t *pParam = pPort->AsInparam() && m_pShape ? m_pShape->FindInparam( pPort->GetName() ) : nullptr;
		if ( pParam && !pParam->m_FieldName.IsEmpty() )
		{
			const KeyValues3 *pValue = m_GenericKeys.FindMember( pParam->m_FieldName.Get() );
			pPort->LoadKV3( pValue, reader.GetContext() );
			m_GenericKeys.RemoveMember( pParam->m_FieldName.Get() );
			continue;
		}
		const KeyValues3 *pValue = portData.IsTable() ? portData.FindMember( pPort->GetName() ) : nullptr;
		pPort->LoadKV3( pValue, reader.GetContext() );
		if ( pValue )
			portData.RemoveMember( pPort->GetName() );
	}
	if ( portData.IsTable() && portData.GetMemberCount() > 0 )
	{
		m_OrphanPorts.CopyFrom( portData );
		if ( m_pShape )
		{
			for ( int i = 0; i < portData.GetMemberCount(); ++i )
				reader.Warn( "m_GenericPorts: '%s' has no port '%s' (kept as it is)", m_GenericNodeType.Get(), portData.GetMemberName( i ) );
		}
	}
}

void CPulseGenericPorts::Save( KeyValues3 *pTable, const std::vector<CBasePulsePort *> &ports ) const
{
	pTable->SetMemberString( "m_GenericNodeType", m_GenericNodeType.Get() );
	KeyValues3 keys;
	keys.CopyFrom( m_GenericKeys );
	KeyValues3 portData;
	portData.SetToEmptyTable();
	for ( const CBasePulsePort *pPort : ports )
	{
		const PulseGenericShape_t::Param_t *pParam = const_cast<CBasePulsePort *>( pPort )->AsInparam() && m_pShape ? m_pShape->FindInparam( pPort->GetName() ) : nullptr;
		if ( pParam && !pParam->m_FieldName.IsEmpty() )
		{
			if ( !keys.IsTable() )
				keys.SetToEmptyTable();
			pPort->SaveKV3( keys.FindOrCreateMember( pParam->m_FieldName.Get() ) );
		}
		else if ( pPort->HasDataToSave() )
		{
			pPort->SaveKV3( portData.FindOrCreateMember( pPort->GetName() ) );
		}
	}
	for ( int i = 0; m_OrphanPorts.IsTable() && i < m_OrphanPorts.GetMemberCount(); ++i )
		portData.FindOrCreateMember( m_OrphanPorts.GetMemberNameEx( i ) )->CopyFrom( *m_OrphanPorts.GetMember( i ) );
	if ( keys.IsTable() && keys.GetMemberCount() > 0 )
		pTable->FindOrCreateMember( "m_GenericKeys" )->CopyFrom( keys );
	if ( portData.GetMemberCount() > 0 )
		pTable->FindOrCreateMember( "m_GenericPorts" )->CopyFrom( portData );
}

void CPulseGenericPorts::Validate( const CPulseDocNode *pNode, CPulseDocMessages *pMessages ) const
{
	if ( !m_pShape )
	{
		pMessages->Error( pNode, "Node '%s' is no longer present", m_GenericNodeType.IsEmpty() ? "(no .fgd entry)" : m_GenericNodeType.Get() );
		return;
	}
	const char *pProblems = m_pShape->m_Problems.Get();
	while ( *pProblems )
	{
		const char *pEnd = strchr( pProblems, '\n' );
		size_t nLength = pEnd ? size_t( pEnd - pProblems ) : strlen( pProblems );
		pMessages->Error( pNode, "Description '%s': %.*s", m_GenericNodeType.Get(), int( nLength ), pProblems );
		pProblems += nLength + ( pEnd ? 1 : 0 );
	}
}

// Generic flow nodes.

CPulseDoc_Flow_Generic::CPulseDoc_Flow_Generic() : m_OptionalSpontaneousPoint( "m_OptionalSpontaneousPoint", this )
{
}

const char *CPulseDoc_Flow_Generic::GetFriendlyName() const
{
	return m_Generic.m_pShape ? m_Generic.m_pShape->m_FriendlyName.Get() : GetNodeTypeInfo().m_pFriendlyName;
}

bool CPulseDoc_Flow_Generic::InflowLeavesFlow( const PulseGenericShape_t::Flow_t &inflow ) const
{
	if ( inflow.m_bYields || inflow.m_bTerminates )
		return true;
	if ( !m_Generic.m_pShape || m_Generic.m_pShape->m_bLibraryMethod )
		return false;
	const PulseFunctionBinding_t *pFunction = PulseFunctions_Find( m_Generic.m_GenericNodeType.Get(), inflow.m_Name.Get() );
	return pFunction && pFunction->MayLeaveFlow();
}

void CPulseDoc_Flow_Generic::InitGeneric( const PulseGenericShape_t *pShape )
{
	m_Ports.clear();
	m_InflowPorts.clear();
	m_OutflowPorts.clear();
	m_OptionalSpontaneousPoint.SetEntry( false );
	std::vector<CBasePulsePort *> valuePorts;
	m_Generic.Init( this, pShape, &valuePorts );
	if ( !pShape )
		return;
	for ( const PulseGenericShape_t::Flow_t &inflow : pShape->m_Inflows )
	{
		PulseInflowMode_t eMode = inflow.m_bTerminates ? PULSE_INFLOW_TERMINATES : inflow.m_bYields ? PULSE_INFLOW_YIELDS : PULSE_INFLOW_SIMPLE;
		auto pPort = std::make_unique<CPulseInflowPort>( this, inflow.m_Name.Get(), inflow.m_FriendlyName.Get(), inflow.m_bDefault, nullptr, eMode );
		const PulseGenericShape_t::Flow_t *pInflow = &inflow;
		bool bLeaves = InflowLeavesFlow( inflow );
		pPort->GetPoint().SetPropertiesFn( [ this, pInflow, bLeaves ]( PulseSequencePointProperties_t *pProperties ) {
			if ( pInflow->m_bTerminates )
				return;
			// The default exit first: that is where a plain step falls through to.
			std::vector<CPulseOutflowPort *> outflows;
			GetOutflows( &outflows );
			std::stable_partition( outflows.begin(), outflows.end(), []( CPulseOutflowPort *pOutflow ) { return pOutflow->IsDefault(); } );
			for ( CPulseOutflowPort *pOutflow : outflows )
			{
				if ( pOutflow->IsBackedByVariable() )
					pProperties->m_bNoFallThrough = true;
				else
					pProperties->AddNext( &pOutflow->GetPoint() );
			}
			pProperties->m_bYields = pInflow->m_bYields;
			if ( bLeaves )
				pProperties->m_bNoFallThrough = true;
		} );
		pPort->GetPoint().SetCompileFn( [ this, pInflow ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) { CompileInflow( pPoint, pChunk, pInflow->m_Name.Get() ); } );
		AddPort( pPort.get() );
		m_InflowPorts.push_back( std::move( pPort ) );
	}
	for ( CBasePulsePort *pPort : valuePorts )
		AddPort( pPort );
	for ( const PulseGenericShape_t::Flow_t &outflow : pShape->m_Outflows )
	{
		auto pPort = std::make_unique<CPulseOutflowPort>( this, outflow.m_Name.Get(), outflow.m_FriendlyName.Get(), outflow.m_bDefault, outflow.m_bBackedByVariable );
		InitOutflowPoint( *pPort );
		AddPort( pPort.get() );
		m_OutflowPorts.push_back( std::move( pPort ) );
	}
	if ( pShape->m_bSpontaneous )
	{
		m_OptionalSpontaneousPoint.SetEntry( true );
		m_OptionalSpontaneousPoint.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) {
			FillDefaultExitProperties( pProperties );
			pProperties->m_nEntryKind = PulseSequencePointProperties_t::ENTRY_GRAPH;
		} );
		m_OptionalSpontaneousPoint.SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) { CompileEntry( pPoint, pChunk ); } );
	}
}

const CPulseSequencePoint *CPulseDoc_Flow_Generic::GetEntryPoint() const
{
	return m_OptionalSpontaneousPoint.IsEntry() ? &m_OptionalSpontaneousPoint : nullptr;
}

const CPulseSequencePoint *CPulseDoc_Flow_Generic::GetOutparamSourcePoint( const CBasePulseOutparamPort * ) const
{
	if ( m_OptionalSpontaneousPoint.IsEntry() )
		return &m_OptionalSpontaneousPoint;
	return GetDefaultInflowPoint() ? GetDefaultInflowPoint() : ( m_InflowPorts.empty() ? nullptr : &m_InflowPorts.front()->GetPoint() );
}

void CPulseDoc_Flow_Generic::GatherSequencePoints( std::vector<CPulseSequencePoint *> *pPoints )
{
	CPulseDoc_BaseFlow::GatherSequencePoints( pPoints );
	if ( m_OptionalSpontaneousPoint.IsEntry() )
		pPoints->push_back( &m_OptionalSpontaneousPoint );
}

void CPulseDoc_Flow_Generic::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Generic.m_GenericNodeType.Clear();
	reader.TakeString( "m_GenericNodeType", &m_Generic.m_GenericNodeType );
	const CPulseNodeDescriptions *pDescriptions = reader.GetContext()->m_pDescriptions;
	InitGeneric( pDescriptions ? pDescriptions->FindShape( m_Generic.m_GenericNodeType.Get() ) : nullptr );
	m_Generic.Load( reader, this, m_Ports );
}

void CPulseDoc_Flow_Generic::SaveOwnKeys( KeyValues3 *pTable ) const
{
	m_Generic.Save( pTable, m_Ports );
}

void CPulseDoc_Flow_Generic::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseFlow::Validate( pMessages );
	m_Generic.Validate( this, pMessages );
}

void CPulseDoc_Flow_Generic::CompileInflow( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk, const char *pInflow ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	const PulseGenericShape_t *pShape = m_Generic.m_pShape;
	if ( !pShape )
		return;
	if ( pShape->m_bStateCell && !pContext->GetDoc()->GetRoot()->m_bAllowStateCells )
		pContext->ReportError( this, "State cells not allowed on this graph. Enable in the Edit menu" );
	if ( pShape->m_bLibraryMethod )
	{
		pChunk->EmitLibraryInvoke( pPoint, this, m_Generic.m_GenericNodeType.Get(), pInflow );
		return;
	}
	const PulseFunctionBinding_t *pFunction = PulseFunctions_Find( pShape->m_ClassName.Get(), pInflow );
	if ( !pFunction )
	{
		pContext->ReportError( this, "No runtime function '%s::%s' for this node", pShape->m_ClassName.Get(), pInflow );
		return;
	}
	pChunk->EmitCellInvoke( pPoint, this, pInflow, pInflow, !pFunction->MayLeaveFlow() );
	// The description ends the flow here, but the function doesn't move the cursor.
	const PulseGenericShape_t::Flow_t *pFlow = nullptr;
	for ( const PulseGenericShape_t::Flow_t &inflow : pShape->m_Inflows )
		pFlow = inflow.m_Name == pInflow ? &inflow : pFlow;
	if ( pFlow && ( pFlow->m_bYields || pFlow->m_bTerminates ) && !pFunction->MayLeaveFlow() )
		pChunk->AppendInstruction( RETURN_VOID, pPoint );
}

void CPulseDoc_Flow_Generic::CompileEntry( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	const PulseGenericShape_t *pShape = m_Generic.m_pShape;
	const char *pName = m_Generic.m_GenericNodeType.Get();
	bool bHook = pShape && pShape->m_bHook && !pShape->m_bGlobalEvent;
	if ( !pContext->ClaimEntryName( bHook ? "hook" : "event", pName ) )
		pContext->ReportError( this, bHook ? "Duplicate hook reference '%s'" : "Duplicate event reference '%s'", pName );
	KeyValues3 registerMap;
	registerMap.SetToEmptyTable();
	pChunk->EmitEntryRegisters( pPoint, this, &registerMap );
	KeyValues3 cell;
	cell.SetToEmptyTable();
	cell.SetMemberString( "_class", bHook ? "CPulseCell_Inflow_GraphHook" : "CPulseCell_Inflow_EventHandler" );
	cell.SetMemberInt( "m_EntryChunk", pChunk->GetIndex() );
	if ( registerMap.GetMemberCount() > 0 )
		cell.SetMemberEmptyTable( "m_RegisterMap" )->FindOrCreateMember( "m_Outparams" )->CopyFrom( registerMap );
	cell.SetMemberString( bHook ? "m_HookName" : "m_EventName", pShape ? pShape->m_ClassName.Get() : pName );
	pContext->AddEntryCell( this, cell );
}

void CPulseDoc_Flow_Generic::WriteCellKeys( KeyValues3 *pCell, CPulseCompileContext *pContext ) const
{
	// Entries wrote their cell when they compiled; library calls have none.
	if ( pCell->HasMember( "_class" ) || !m_Generic.m_pShape || m_Generic.m_pShape->m_bLibraryMethod )
		return;
	pCell->SetMemberString( "_class", m_Generic.m_pShape->m_ClassName.Get() );
	for ( int i = 0; m_Generic.m_GenericKeys.IsTable() && i < m_Generic.m_GenericKeys.GetMemberCount(); ++i )
		pCell->FindOrCreateMember( m_Generic.m_GenericKeys.GetMemberNameEx( i ) )->CopyFrom( *m_Generic.m_GenericKeys.GetMember( i ) );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_Generic.m_Inparams )
	{
		const PulseGenericShape_t::Param_t *pParam = m_Generic.m_pShape->FindInparam( pPort->GetName() );
		if ( pParam && !pParam->m_FieldName.IsEmpty() && !pPort->GetLiteralValue().IsNull() )
			pCell->FindOrCreateMember( pParam->m_FieldName.Get() )->CopyFrom( pPort->GetLiteralValue() );
	}
	for ( const std::unique_ptr<CPulseOutflowPort> &pOutflow : m_OutflowPorts )
	{
		KeyValues3 *pConnection = pCell->SetMemberEmptyTable( pOutflow->GetName() );
		const PulsePointCompileRecord_t *pRecord = pContext->FindRecord( &pOutflow->GetPoint() );
		if ( !pRecord )
			continue;
		pConnection->SetMemberString( "m_SourceOutflowName", pOutflow->GetName() );
		pConnection->SetMemberInt( "m_nDestChunk", pRecord->m_nChunk );
		pConnection->SetMemberInt( "m_nInstruction", pRecord->m_nInstruction );
	}
}

// Generic values.

const char *CPulseDoc_Value_Generic::GetFriendlyName() const
{
	return m_Generic.m_pShape ? m_Generic.m_pShape->m_FriendlyName.Get() : GetNodeTypeInfo().m_pFriendlyName;
}

void CPulseDoc_Value_Generic::SetFunction( const char *pClassName, const CPulseNodeDescriptions &descriptions )
{
	m_Generic.m_GenericNodeType.Set( pClassName );
	m_Ports.clear();
	std::vector<CBasePulsePort *> ports;
	m_Generic.Init( this, descriptions.FindShape( pClassName ), &ports );
	for ( CBasePulsePort *pPort : ports )
		AddPort( pPort );
}

void CPulseDoc_Value_Generic::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Generic.m_GenericNodeType.Clear();
	reader.TakeString( "m_GenericNodeType", &m_Generic.m_GenericNodeType );
	const CPulseNodeDescriptions *pDescriptions = reader.GetContext()->m_pDescriptions;
	m_Ports.clear();
	std::vector<CBasePulsePort *> ports;
	m_Generic.Init( this, pDescriptions ? pDescriptions->FindShape( m_Generic.m_GenericNodeType.Get() ) : nullptr, &ports );
	for ( CBasePulsePort *pPort : ports )
		AddPort( pPort );
	m_Generic.Load( reader, this, m_Ports );
}

void CPulseDoc_Value_Generic::SaveOwnKeys( KeyValues3 *pTable ) const
{
	m_Generic.Save( pTable, m_Ports );
}

void CPulseDoc_Value_Generic::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseValue::Validate( pMessages );
	m_Generic.Validate( this, pMessages );
	if ( m_Generic.m_pShape && !m_Generic.m_pShape->m_bLibraryMethod )
		pMessages->Error( this, "'%s' is no value function: only library functions give values", m_Generic.m_GenericNodeType.Get() );
}

CPulseValueFullType CPulseDoc_Value_Generic::GetResultType() const
{
	return m_Generic.m_Outparams.empty() ? CPulseValueFullType() : m_Generic.m_Outparams.front()->GetType();
}

void CPulseDoc_Value_Generic::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	if ( !m_Generic.m_pShape || !m_Generic.m_pShape->m_bLibraryMethod )
		return;
	pChunk->EmitLibraryInvoke( pPoint, this, m_Generic.m_GenericNodeType.Get(), nullptr, true, true );
}
