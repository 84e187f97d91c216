#include "pulse_runtime_lib/graph/pulsegraphdef.h"

#include <cstdlib>
#include <cstring>

#include "core/logging/logging.h"
#include "core/schema/schemasystem.h"
#include "pulse_runtime_lib/cells/pulsecells.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"

PulseDocNodeID_t CPulse_Chunk::GetFlowNodeID( int nInstruction ) const
{
	if ( nInstruction < 0 || size_t( nInstruction ) >= m_InstructionDebugInfos.size() )
		return -1;
	return m_InstructionDebugInfos[ size_t( nInstruction ) ].m_nFlowNodeID;
}

PulseInstructionCode_t CPulse_Chunk::GetCode( int nInstruction ) const
{
	if ( size_t( nInstruction ) < m_BoundCodes.size() )
		return m_BoundCodes[ size_t( nInstruction ) ];
	return m_Instructions[ size_t( nInstruction ) ].m_nCode;
}

CPulseGraphDef::CPulseGraphDef() = default;

CPulseGraphDef::~CPulseGraphDef()
{
	if ( m_pConstantBuffer )
	{
		for ( const CPulse_Constant &constant : m_Constants )
		{
			if ( constant.m_nStorageOffset != PULSE_NO_STATE_OFFSET )
				PulseValue_Destruct( constant.m_Type, m_pConstantBuffer + constant.m_nStorageOffset );
		}
		std::free( m_pConstantBuffer );
	}
}

void CPulseGraphDef::Release() const
{
	if ( m_nRefCount.fetch_sub( 1, std::memory_order_acq_rel ) == 1 )
		delete this;
}

void CPulseGraphDef::EnumerateBlackboardResources( std::vector<PulseSymbol_t> *pList ) const
{
	std::vector<PulseSymbol_t> seen;
	for ( const CPulse_BlackboardReference &reference : m_BlackboardReferences )
	{
		if ( reference.m_BlackboardResource.IsEmpty() )
			continue;
		bool bSeen = false;
		for ( const PulseSymbol_t &name : seen )
			bSeen = bSeen || name == reference.m_BlackboardResource;
		if ( bSeen )
			continue;
		seen.push_back( reference.m_BlackboardResource );
		pList->push_back( reference.m_BlackboardResource );
	}
}

void CPulseGraphDef::GatherPublicInterface( std::vector<PulsePublicInterfaceRow_t> *pRows ) const
{
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
	{
		if ( pCell )
			pCell->GatherPublicInterface( pRows );
	}
	for ( const CPulse_PublicOutput &output : m_PublicOutputs )
	{
		PulsePublicInterfaceRow_t &row = pRows->emplace_back();
		row.m_eKind = PulsePublicInterfaceRow_t::KIND_OUTPUT;
		row.m_Name.Set( output.m_Name.String() );
		row.m_Description = output.m_Description;
		row.m_Args = output.m_Args;
	}
	for ( const CPulse_Variable &var : m_Vars )
	{
		PulsePublicInterfaceRow_t &row = pRows->emplace_back();
		row.m_eKind = PulsePublicInterfaceRow_t::KIND_VARIABLE;
		row.m_Name.Set( var.m_Name.String() );
		row.m_Description = var.m_Description;
		row.m_Type = var.m_Type;
		row.m_DefaultValue = var.m_DefaultValue;
		row.m_nKeysSource = var.m_nKeysSource;
		row.m_bPublicBlackboard = var.m_bIsPublicBlackboardVariable;
		row.m_bObservable = var.m_bIsObservable;
		row.m_nEditorNodeID = var.m_nEditorNodeID;
	}
	for ( const CPulse_OutputConnection &connection : m_OutputConnections )
	{
		PulsePublicInterfaceRow_t &row = pRows->emplace_back();
		row.m_eKind = PulsePublicInterfaceRow_t::KIND_OUTPUT_CONNECTION;
		row.m_Name.Set( connection.m_SourceOutput.String() );
		row.m_Description.Set( connection.m_SourceOutput.String() );
		row.m_TargetEntity.Set( connection.m_TargetEntity.String() );
		row.m_TargetInput.Set( connection.m_TargetInput.String() );
		row.m_Param.Set( connection.m_Param.String() );
	}
}

void CPulseGraphDef::GetDomainValuesOfType( PulseDomainValueType_t eType, std::vector<CGlobalSymbol> *pList ) const
{
	for ( const CPulse_DomainValue &value : m_DomainValues )
	{
		if ( value.m_nType == eType )
			pList->push_back( value.m_Value );
	}
}

const char *CPulseGraphDef::GetPublicOutputName( int nIndex ) const
{
	return nIndex >= 0 && size_t( nIndex ) < m_PublicOutputs.size() ? m_PublicOutputs[ size_t( nIndex ) ].m_Name.String() : "";
}

void CPulseGraphDef::GetInstanceStateLayout( size_t *pSize, size_t *pAlignment ) const
{
	*pSize = m_nStateSize;
	*pAlignment = m_nStateAlignment;
}

void CPulseGraphDef::DumpToConsole() const
{
	CUtlString text;
	Dump( &text );
	Msg( "%s", text.Get() );
}

int CPulseGraphDef::FindVarByEditorNodeID( PulseDocNodeID_t nID ) const
{
	for ( size_t i = 0; i < m_Vars.size(); ++i )
	{
		if ( m_Vars[ i ].m_nEditorNodeID == nID )
			return int( i );
	}
	return -1;
}

int CPulseGraphDef::FindVarByName( const char *pName ) const
{
	for ( size_t i = 0; i < m_Vars.size(); ++i )
	{
		if ( strcmp( m_Vars[ i ].m_Name.String(), pName ? pName : "" ) == 0 )
			return int( i );
	}
	return -1;
}

namespace
{
template <typename T> const T *At( const std::vector<T> &vector, int i )
{
	return i >= 0 && size_t( i ) < vector.size() ? &vector[ size_t( i ) ] : nullptr;
}
} // namespace

const KeyValues3 &CPulseGraphDef::GetVarDefaultValue( int i ) const
{
	static const KeyValues3 s_Null;
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar ? pVar->m_DefaultValue : s_Null;
}

PulseVariableKeysSource_t CPulseGraphDef::GetVarKeysSource( int i ) const
{
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar ? pVar->m_nKeysSource : PulseVariableKeysSource_t::PRIVATE;
}

const char *CPulseGraphDef::GetVarName( int i ) const
{
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar ? pVar->m_Name.String() : "";
}

const char *CPulseGraphDef::GetVarDescription( int i ) const
{
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar ? pVar->m_Description.Get() : "";
}

PulseDocNodeID_t CPulseGraphDef::GetVarEditorNodeID( int i ) const
{
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar ? pVar->m_nEditorNodeID : -1;
}

bool CPulseGraphDef::IsVarPublicBlackboard( int i ) const
{
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar && pVar->m_bIsPublicBlackboardVariable;
}

bool CPulseGraphDef::IsVarObservable( int i ) const
{
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar && pVar->m_bIsObservable;
}

const CPulseValueFullType &CPulseGraphDef::GetVarType( int i ) const
{
	static const CPulseValueFullType s_Invalid;
	const CPulse_Variable *pVar = At( m_Vars, i );
	return pVar ? pVar->m_Type : s_Invalid;
}

void CPulseGraphDef::GatherCellsOfClass( const char *pClassName, std::vector<const CPulseCell_Base *> *pList ) const
{
	const CSchemaClassInfo *pWanted = PulseRuntime_GetTypeScope()->FindDeclaredClass( pClassName );
	if ( !pWanted )
		return;
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
	{
		const CSchemaClassInfo *pClass = pCell ? pCell->GetSchemaClass() : nullptr;
		if ( pClass && pClass->IsA( pWanted ) )
			pList->push_back( pCell.get() );
	}
}

const CSchemaClassInfo *CPulseGraphDef::GetSchemaClass() const
{
	PulseRuntime_RegisterClasses();
	return SchemaSystem()->FindClassByTypeInfo( typeid( CPulseGraphDef ) );
}

const CPulseCell_Inflow_Method *CPulseGraphDef::FindMethodCell( const char *pName ) const
{
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
	{
		auto *pMethod = dynamic_cast<const CPulseCell_Inflow_Method *>( pCell.get() );
		if ( pMethod && strcmp( pMethod->m_MethodName.String(), pName ) == 0 )
			return pMethod;
	}
	return nullptr;
}

const CPulseCell_Base *CPulseGraphDef::FindEventHandlerCell( const char *pName ) const
{
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
	{
		auto *pHandler = dynamic_cast<const CPulseCell_Inflow_EventHandler *>( pCell.get() );
		if ( pHandler && strcmp( pHandler->m_EventName.String(), pName ) == 0 )
			return pHandler;
	}
	return nullptr;
}

const CPulseCell_Base *CPulseGraphDef::FindGraphHookCell( const char *pName ) const
{
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
	{
		auto *pHook = dynamic_cast<const CPulseCell_Inflow_GraphHook *>( pCell.get() );
		if ( pHook && strcmp( pHook->m_HookName.String(), pName ) == 0 )
			return pHook;
	}
	return nullptr;
}

const CPulse_Chunk *CPulseGraphDef::GetChunk( int i ) const
{
	return At( m_Chunks, i );
}

const CPulseCell_Base *CPulseGraphDef::GetCell( int i ) const
{
	const std::unique_ptr<CPulseCell_Base> *ppCell = At( m_Cells, i );
	return ppCell ? ppCell->get() : nullptr;
}

const CPulseCell_Base *CPulseGraphDef::FindCellByEditorNodeID( PulseDocNodeID_t nID ) const
{
	for ( const std::unique_ptr<CPulseCell_Base> &pCell : m_Cells )
	{
		if ( pCell && pCell->m_nEditorNodeID == nID )
			return pCell.get();
	}
	return nullptr;
}

const CPulse_CallInfo *CPulseGraphDef::GetCallInfo( int i ) const
{
	return At( m_CallInfos, i );
}

const CPulse_InvokeBinding *CPulseGraphDef::GetInvokeBinding( int i ) const
{
	return At( m_InvokeBindings, i );
}

const CPulse_Constant *CPulseGraphDef::GetConstant( int i ) const
{
	return At( m_Constants, i );
}

const CPulse_DomainValue *CPulseGraphDef::GetDomainValue( int i ) const
{
	return At( m_DomainValues, i );
}

const CPulse_BlackboardReference *CPulseGraphDef::GetBlackboardReference( int i ) const
{
	return At( m_BlackboardReferences, i );
}

const void *CPulseGraphDef::GetConstantStorage( int i ) const
{
	const CPulse_Constant *pConstant = At( m_Constants, i );
	if ( !pConstant || !m_pConstantBuffer || pConstant->m_nStorageOffset == PULSE_NO_STATE_OFFSET )
		return nullptr;
	return m_pConstantBuffer + pConstant->m_nStorageOffset;
}
