#include "pulsedoc_lib/nodes/pulsedocinflowmethod.h"

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Inflow_Method, "Inflow_Method", "Method",
							"Entry point that can be invoked from other parts of the graph, or be exposed to the public and called from outside the graph.",
							PULSE_NODE_CATEGORY_FLOW, true )

CUtlString CPulseDoc_Inflow_Method::GetArgPortName( size_t nArg ) const
{
	if ( !m_Args[ nArg ].m_Name.IsEmpty() )
		return m_Args[ nArg ].m_Name;
	// Unnamed arguments are told apart by their place among the unnamed.
	int nUnnamed = 0;
	for ( size_t i = 0; i < nArg; ++i )
		nUnnamed += m_Args[ i ].m_Name.IsEmpty() ? 1 : 0;
	CUtlString name;
	if ( nUnnamed == 0 )
		name.Set( "unnamed" );
	else
		name.Format( "unnamed%d", nUnnamed );
	return name;
}

void CPulseDoc_Inflow_Method::RebuildPorts()
{
	for ( const std::unique_ptr<CBasePulseOutparamPort> &pPort : m_ArgPorts )
		RemovePort( pPort.get() );
	m_ArgPorts.clear();
	for ( size_t i = 0; i < m_Args.size(); ++i )
	{
		CUtlString name = GetArgPortName( i );
		m_ArgPorts.push_back( std::make_unique<CBasePulseOutparamPort>( this, name.Get(), m_Args[ i ].m_Type, nullptr, m_Args[ i ].m_Description.Get() ) );
		AddPort( m_ArgPorts.back().get() );
	}
}

void CPulseDoc_Inflow_Method::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_ReturnType.Clear();
	reader.TakeFullType( "m_ReturnType", &m_ReturnType );
	m_Args.clear();
	if ( const KeyValues3 *pArgs = reader.TakeArray( "m_Args" ) )
	{
		for ( int i = 0; i < pArgs->GetArrayElementCount(); ++i )
		{
			const KeyValues3 *pArg = pArgs->GetArrayElement( i );
			if ( !pArg->IsTable() )
			{
				reader.Warn( "m_Args[%d]: Class data is a '%s', not a table", i, pArg->GetTypeAsString() );
				continue;
			}
			CUtlString where;
			where.Format( "m_Args[%d]", i );
			CPulseDocKeyReader argReader( *pArg, this, reader.GetContext(), where.Get() );
			Arg_t &arg = m_Args.emplace_back();
			argReader.TakeString( "m_Name", &arg.m_Name );
			argReader.TakeString( "m_Description", &arg.m_Description );
			argReader.TakeFullType( "m_Type", &arg.m_Type );
		}
	}
	m_bIsPublic = false;
	reader.TakeBool( "m_bIsPublic", &m_bIsPublic );
	m_Description.Clear();
	reader.TakeString( "m_Description", &m_Description );
	RebuildPorts();
}

void CPulseDoc_Inflow_Method::SaveOwnKeys( KeyValues3 *pTable ) const
{
	if ( m_ReturnType.IsValid() )
		pTable->SetMemberString( "m_ReturnType", m_ReturnType.ToString().Get() );
	if ( !m_Args.empty() )
	{
		KeyValues3 *pArgs = pTable->SetMemberEmptyArray( "m_Args" );
		for ( const Arg_t &arg : m_Args )
		{
			KeyValues3 *pArg = pArgs->ArrayAddToTail();
			pArg->SetToEmptyTable();
			pArg->SetMemberString( "m_Name", arg.m_Name.Get() );
			if ( !arg.m_Description.IsEmpty() )
				pArg->SetMemberString( "m_Description", arg.m_Description.Get() );
			pArg->SetMemberString( "m_Type", arg.m_Type.ToString().Get() );
		}
	}
	if ( m_bIsPublic )
		pTable->SetMemberBool( "m_bIsPublic", true );
	if ( !m_Description.IsEmpty() )
		pTable->SetMemberString( "m_Description", m_Description.Get() );
}

void CPulseDoc_Inflow_Method::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseInflow::Validate( pMessages );
	for ( size_t i = 0; i < m_Args.size(); ++i )
	{
		if ( !PulseGraphDef_IsStorableType( m_Args[ i ].m_Type ) )
			pMessages->Error( this, "Argument '%s' of method '%s' has no type an argument can have", GetArgPortName( i ).Get(), m_Name.Get() );
		for ( size_t j = 0; j < i; ++j )
		{
			if ( GetArgPortName( i ) == GetArgPortName( j ) )
				pMessages->Error( this, "Method '%s' has two arguments named '%s'", m_Name.Get(), GetArgPortName( i ).Get() );
		}
	}
	if ( m_ReturnType.IsValid() && !PulseGraphDef_IsStorableType( m_ReturnType ) )
		pMessages->Error( this, "Method '%s' returns '%s', which no value can be", m_Name.Get(), m_ReturnType.ToString().Get() );
}

void CPulseDoc_Inflow_Method::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	if ( !pContext->ClaimEntryName( "method", m_Name.Get() ) )
		pContext->ReportError( this, "Duplicate method '%s'", m_Name.Get() );
	KeyValues3 registerMap;
	registerMap.SetToEmptyTable();
	pChunk->EmitEntryRegisters( pPoint, this, &registerMap );

	KeyValues3 cell;
	cell.SetToEmptyTable();
	cell.SetMemberString( "_class", "CPulseCell_Inflow_Method" );
	cell.SetMemberInt( "m_EntryChunk", pChunk->GetIndex() );
	if ( registerMap.GetMemberCount() > 0 )
		cell.SetMemberEmptyTable( "m_RegisterMap" )->FindOrCreateMember( "m_Outparams" )->CopyFrom( registerMap );
	cell.SetMemberString( "m_MethodName", m_Name.Get() );
	if ( !m_Description.IsEmpty() )
		cell.SetMemberString( "m_Description", m_Description.Get() );
	cell.SetMemberBool( "m_bIsPublic", m_bIsPublic );
	if ( m_ReturnType.IsValid() )
		cell.SetMemberString( "m_ReturnType", m_ReturnType.ToString().Get() );
	if ( !m_Args.empty() )
	{
		KeyValues3 *pArgs = cell.SetMemberEmptyArray( "m_Args" );
		for ( size_t i = 0; i < m_Args.size(); ++i )
		{
			KeyValues3 *pArg = pArgs->ArrayAddToTail();
			pArg->SetToEmptyTable();
			pArg->SetMemberString( "m_Name", GetArgPortName( i ).Get() );
			pArg->SetMemberString( "m_Description", m_Args[ i ].m_Description.Get() );
			pArg->SetMemberString( "m_Type", m_Args[ i ].m_Type.ToString().Get() );
		}
	}
	pContext->AddEntryCell( this, cell );
}
