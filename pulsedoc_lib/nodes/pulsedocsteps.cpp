#include "pulsedoc_lib/nodes/pulsedocsteps.h"

#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/compiler/pulsepointanalysis.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/nodes/pulsedocinflowmethod.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Step_DebugLog, "Step_DebugLog", "Debug Log", "Writes its text to the graph's log.", PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Step_SetVar, "Step_SetVar", "Set Variable", "Sets a variable of the graph to a value.", PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Step_CallMethod, "Step_CallMethod", "Call Method", "Calls a method of this graph.", PULSE_NODE_CATEGORY_FLOW, false )

using enum PulseInstructionCode_t;

// Debug log.

CPulseDoc_Step_DebugLog::CPulseDoc_Step_DebugLog() : m_Text( this, "pText", CPulseValueFullType( PVAL_STRING ), "pText", "Text", "The text to write." )
{
	AddPort( &m_Text );
}

void CPulseDoc_Step_DebugLog::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Text.LoadKV3( reader.Take( "pText" ), reader.GetContext() );
}

void CPulseDoc_Step_DebugLog::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Text, pTable );
}

CUtlString CPulseDoc_Step_DebugLog::GetTitle() const
{
	CUtlString title( "Debug Log" );
	if ( m_Text.GetValueSource() == PULSE_VALUE_SOURCE_LITERAL && m_Text.GetLiteralValue().IsString() )
		title.AppendFormat( " \"%s\"", m_Text.GetLiteralValue().GetString() );
	return title;
}

void CPulseDoc_Step_DebugLog::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	pChunk->EmitCellInvoke( pPoint, this, "Run" );
}

void CPulseDoc_Step_DebugLog::WriteCellKeys( KeyValues3 *pCell, CPulseCompileContext * ) const
{
	pCell->SetMemberString( "_class", "CPulseCell_Step_DebugLog" );
}

// Set variable.

CPulseDoc_Step_SetVar::CPulseDoc_Step_SetVar() : m_Value( this, "m_Value", CPulseValueFullType(), "m_Value", "Value" )
{
	AddPort( &m_Value );
}

void CPulseDoc_Step_SetVar::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_VarDefID = -1;
	reader.TakeInt( "m_VarDefID", &m_VarDefID );
	m_Value.LoadKV3( reader.Take( "m_Value" ), reader.GetContext() );
	m_nArrayIndexDimension = 0;
	reader.TakeInt( "m_nArrayIndexDimension", &m_nArrayIndexDimension );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_ArrayIndexPorts )
		RemovePort( pPort.get() );
	m_ArrayIndexPorts.clear();
	if ( const KeyValues3 *pIndexes = reader.TakeArray( "m_ArrayIndexPorts" ) )
	{
		for ( int i = 0; i < pIndexes->GetArrayElementCount() && i < 8; ++i )
		{
			CUtlString name;
			name.Format( "index%d", i );
			auto pPort = std::make_unique<CBasePulseInparamPort>( this, name.Get(), CPulseValueFullType( PVAL_INT ), nullptr, "Index" );
			pPort->LoadKV3( pIndexes->GetArrayElement( i ), reader.GetContext() );
			AddPort( pPort.get() );
			m_ArrayIndexPorts.push_back( std::move( pPort ) );
		}
	}
	m_bDoNotNotifyListeners = false;
	reader.TakeBool( "m_bDoNotNotifyListeners", &m_bDoNotNotifyListeners );
	m_BlackboardReference.SetToNull();
	if ( const KeyValues3 *pBlackboard = reader.Take( "m_BlackboardReference" ) )
		m_BlackboardReference.CopyFrom( *pBlackboard );
}

void CPulseDoc_Step_SetVar::SaveOwnKeys( KeyValues3 *pTable ) const
{
	pTable->SetMemberInt( "m_VarDefID", m_VarDefID );
	SaveInparam( m_Value, pTable );
	if ( m_nArrayIndexDimension != 0 )
		pTable->SetMemberInt( "m_nArrayIndexDimension", m_nArrayIndexDimension );
	if ( !m_ArrayIndexPorts.empty() )
	{
		KeyValues3 *pIndexes = pTable->SetMemberEmptyArray( "m_ArrayIndexPorts" );
		for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_ArrayIndexPorts )
			pPort->SaveKV3( pIndexes->ArrayAddToTail() );
	}
	if ( m_bDoNotNotifyListeners )
		pTable->SetMemberBool( "m_bDoNotNotifyListeners", true );
	if ( !m_BlackboardReference.IsNull() )
		pTable->FindOrCreateMember( "m_BlackboardReference" )->CopyFrom( m_BlackboardReference );
}

void CPulseDoc_Step_SetVar::UpdateValueType()
{
	const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinition( m_VarDefID ) : nullptr;
	CPulseValueFullType type = pDefinition ? pDefinition->GetValueType() : CPulseValueFullType();
	if ( m_nArrayIndexDimension == 1 && type.IsArray() && type.GetElementType() )
		type = *type.GetElementType();
	m_Value.SetDeclaredType( type );
}

void CPulseDoc_Step_SetVar::OnDocumentLoaded( CPulseDocMessages * )
{
	UpdateValueType();
}

CUtlString CPulseDoc_Step_SetVar::GetTitle() const
{
	const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinition( m_VarDefID ) : nullptr;
	CUtlString title;
	title.Format( "Set %s", pDefinition ? pDefinition->GetName() : "<none>" );
	return title;
}

void CPulseDoc_Step_SetVar::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseStep::Validate( pMessages );
	const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinition( m_VarDefID ) : nullptr;
	if ( !m_BlackboardReference.IsNull() )
		pMessages->Error( this, "Setting a blackboard variable of another graph is not compiled by this build" );
	else if ( !pDefinition )
		pMessages->Error( this, "No target variable" );
	else if ( pDefinition->IsConstant() )
		pMessages->Error( this, "Cannot set constant '%s': only variables can be set", pDefinition->GetName() );
	if ( m_nArrayIndexDimension > 1 )
		pMessages->Error( this, "Higher-dimension arrays not suppported yet" );
	else if ( m_nArrayIndexDimension > int( m_ArrayIndexPorts.size() ) )
		pMessages->Error( this, "Too many dimensions of array index" );
	else if ( m_nArrayIndexDimension == 1 && pDefinition && !pDefinition->GetValueType().IsArray() )
		pMessages->Error( this, "Variable '%s' is no array: its elements can't be set", pDefinition->GetName() );
}

void CPulseDoc_Step_SetVar::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	CPulseCompileContext *pContext = pChunk->GetContext();
	auto *pVariable = dynamic_cast<const CPulseDoc_VariableDefinition *>( pContext->GetDoc()->FindValueDefinition( m_VarDefID ) );
	if ( !pVariable )
	{
		pContext->ReportError( this, "No target variable" );
		return;
	}
	int nVar = pContext->FindVar( m_VarDefID, this );
	if ( nVar < 0 )
		return;
	pChunk->OpenValueScope( pPoint );
	if ( !pVariable->m_bIsObservable )
		pChunk->SetScopeMoveVariable( nVar );
	uint16_t nValue = m_Value.CompileToRegister( pPoint, pChunk );
	if ( nValue == PULSE_INVALID_REGISTER )
	{
		pContext->ReportError( this, "Failed to compile value" );
		pChunk->CloseValueScope();
		return;
	}
	if ( m_nArrayIndexDimension == 1 && !m_ArrayIndexPorts.empty() )
	{
		uint16_t nIndex = m_ArrayIndexPorts[ 0 ]->CompileToRegister( pPoint, pChunk );
		if ( nIndex != PULSE_INVALID_REGISTER )
		{
			PGDInstruction_t &set = pChunk->AppendInstruction( SET_VAR_ARRAY_ELEMENT_1D, pPoint );
			set.m_nVar = nVar;
			set.m_nReg0 = PulseRuntimeRegisterIndex_t( nValue );
			set.m_nReg2 = PulseRuntimeRegisterIndex_t( nIndex );
		}
	}
	else
	{
		bool bNotify = pVariable->m_bIsObservable && !m_bDoNotNotifyListeners;
		PGDInstruction_t &set = pChunk->AppendInstruction( bNotify ? SET_VAR_OBSERVABLE : SET_VAR, pPoint );
		set.m_nVar = nVar;
		set.m_nReg0 = PulseRuntimeRegisterIndex_t( nValue );
	}
	pChunk->CloseValueScope();
}

// Call method.

namespace
{
const char *const s_CallModeNames[] = { "SYNC_WAIT_FOR_COMPLETION", "ASYNC_FIRE_AND_FORGET" };
}

CPulseDoc_Step_CallMethod::CPulseDoc_Step_CallMethod()
{
	// A synchronous call waits for the method: its entry is a point this one calls.
	m_StepPoint.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) {
		FillDefaultExitProperties( pProperties );
		const CPulseDoc_Inflow_Method *pMethod = FindMethod();
		if ( pMethod && m_nCallMode == PulseMethodCallMode_t::SYNC_WAIT_FOR_COMPLETION )
			pProperties->m_CalledPoints.push_back( pMethod->GetEntryPoint() );
	} );
}

const CPulseDoc_Inflow_Method *CPulseDoc_Step_CallMethod::FindMethod() const
{
	return m_pDoc ? dynamic_cast<const CPulseDoc_Inflow_Method *>( m_pDoc->FindNode( m_MethodNodeID ) ) : nullptr;
}

void CPulseDoc_Step_CallMethod::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	int nMode = 0;
	reader.TakeEnum( "m_nCallMode", s_CallModeNames, 2, &nMode );
	m_nCallMode = PulseMethodCallMode_t( nMode );
	m_MethodNodeID = -1;
	reader.TakeInt( "m_MethodNodeID", &m_MethodNodeID );
	m_ArgData.SetToNull();
	if ( const KeyValues3 *pArgs = reader.TakeTable( "m_ArgumentPorts" ) )
		m_ArgData.CopyFrom( *pArgs );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_ArgPorts )
		RemovePort( pPort.get() );
	m_ArgPorts.clear();
	if ( m_pRetval )
		RemovePort( m_pRetval.get() );
	m_pRetval.reset();
}

void CPulseDoc_Step_CallMethod::RebuildPorts()
{
	KeyValues3 data;
	data.CopyFrom( m_ArgData );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_ArgPorts )
	{
		// What the ports hold now survives the rebuild.
		if ( !data.IsTable() )
			data.SetToEmptyTable();
		pPort->SaveKV3( data.FindOrCreateMember( pPort->GetName() ) );
		RemovePort( pPort.get() );
	}
	m_ArgPorts.clear();
	if ( m_pRetval )
		RemovePort( m_pRetval.get() );
	m_pRetval.reset();
	const CPulseDoc_Inflow_Method *pMethod = FindMethod();
	if ( !pMethod )
		return;
	CPulseDocLoadContext context;
	CPulseDocMessages ignored;
	context.m_pDoc = m_pDoc;
	context.m_pMessages = &ignored;
	for ( size_t i = 0; i < pMethod->m_Args.size(); ++i )
	{
		CUtlString name = pMethod->GetArgPortName( i );
		auto pPort = std::make_unique<CBasePulseInparamPort>( this, name.Get(), pMethod->m_Args[ i ].m_Type );
		pPort->LoadKV3( data.IsTable() ? data.FindMember( name.Get() ) : nullptr, &context );
		AddPort( pPort.get() );
		m_ArgPorts.push_back( std::move( pPort ) );
	}
	if ( pMethod->m_ReturnType.IsValid() )
	{
		m_pRetval = std::make_unique<CBasePulseOutparamPort>( this, "retval", pMethod->m_ReturnType, "Result" );
		AddPort( m_pRetval.get() );
	}
}

void CPulseDoc_Step_CallMethod::OnDocumentLoaded( CPulseDocMessages * )
{
	RebuildPorts();
}

void CPulseDoc_Step_CallMethod::SaveOwnKeys( KeyValues3 *pTable ) const
{
	if ( m_nCallMode != PulseMethodCallMode_t::SYNC_WAIT_FOR_COMPLETION )
		pTable->SetMemberString( "m_nCallMode", s_CallModeNames[ int( m_nCallMode ) ] );
	pTable->SetMemberInt( "m_MethodNodeID", m_MethodNodeID );
	KeyValues3 args;
	args.CopyFrom( m_ArgData );
	for ( const std::unique_ptr<CBasePulseInparamPort> &pPort : m_ArgPorts )
	{
		if ( !args.IsTable() )
			args.SetToEmptyTable();
		pPort->SaveKV3( args.FindOrCreateMember( pPort->GetName() ) );
	}
	if ( args.IsTable() && args.GetMemberCount() > 0 )
		pTable->FindOrCreateMember( "m_ArgumentPorts" )->CopyFrom( args );
}

CUtlString CPulseDoc_Step_CallMethod::GetTitle() const
{
	const CPulseDoc_Inflow_Method *pMethod = FindMethod();
	CUtlString title;
	title.Format( "Call %s", pMethod ? pMethod->GetName() : "<none>" );
	return title;
}

void CPulseDoc_Step_CallMethod::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseStep::Validate( pMessages );
	if ( !FindMethod() )
		pMessages->Error( this, "Target Input not found (%d)", m_MethodNodeID );
}

void CPulseDoc_Step_CallMethod::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	const CPulseDoc_Inflow_Method *pMethod = FindMethod();
	if ( !pMethod )
	{
		pChunk->GetContext()->ReportError( this, "Target Input not found (%d)", m_MethodNodeID );
		return;
	}
	// A method that can't yield is waited for whatever the mode asks.
	bool bCanYield = pChunk->GetContext()->GetAnalysis().GetCanYield( pMethod->GetEntryPoint() );
	bool bAsync = bCanYield && m_nCallMode == PulseMethodCallMode_t::ASYNC_FIRE_AND_FORGET;
	pChunk->EmitCall( pPoint, m_MethodNodeID, bAsync ? PULSE_CALL_ASYNC_FIRE : PULSE_CALL_SYNC, this );
}
