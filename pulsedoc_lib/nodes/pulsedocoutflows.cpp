#include "pulsedoc_lib/nodes/pulsedocoutflows.h"

#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/compiler/pulsepointanalysis.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/nodes/pulsedocinflowmethod.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_If, "Outflow_If", "Continue If", "Goes on at True or False by a condition.", PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_IntSwitch, "Outflow_IntSwitch", "Switch Branch ( int )", "Goes on at the exit of the first case equal to the value.",
							PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_Simultaneous, "Outflow_Simultaneous", "Sequential Branch", "Runs each branch to its end, one after another.",
							PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_Return, "Outflow_Return", "Return", "Ends the method, giving back its value.", PULSE_NODE_CATEGORY_FLOW, false )

using enum PulseInstructionCode_t;

// If.

CPulseDoc_Outflow_If::CPulseDoc_Outflow_If()
	: m_Condition( this, "m_Condition", CPulseValueFullType( PVAL_BOOL ), "m_Condition", "Condition" ), m_IsTrue( this, "True", "True", false ),
	  m_IsFalse( this, "False", "False", false )
{
	AddPort( &m_Condition );
	AddPort( &m_IsTrue );
	AddPort( &m_IsFalse );
	InitOutflowPoint( m_IsTrue );
	InitOutflowPoint( m_IsFalse );
}

void CPulseDoc_Outflow_If::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Condition.LoadKV3( reader.Take( "m_Condition" ), reader.GetContext() );
	m_bNotCondition = false;
	reader.TakeBool( "m_bNotCondition", &m_bNotCondition );
}

void CPulseDoc_Outflow_If::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Condition, pTable );
	if ( m_bNotCondition )
		pTable->SetMemberBool( "m_bNotCondition", true );
}

CUtlString CPulseDoc_Outflow_If::GetTitle() const
{
	return CUtlString( m_bNotCondition ? "Continue If Not" : "Continue If" );
}

void CPulseDoc_Outflow_If::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	pChunk->OpenValueScope( pPoint );
	uint16_t nCondition = m_Condition.CompileToRegister( pPoint, pChunk );
	if ( nCondition != PULSE_INVALID_REGISTER && m_bNotCondition )
		nCondition = pChunk->EmitOperator( pPoint, NOT, nCondition, PULSE_INVALID_REGISTER, CPulseValueFullType( PVAL_BOOL ), "not_condition", this );
	pChunk->CloseValueScope();
	if ( nCondition == PULSE_INVALID_REGISTER )
		return;
	pChunk->AppendBranch( pPoint, nCondition, &m_IsTrue.GetPoint(), &m_IsFalse.GetPoint() );
}

// Integer switch.

CPulseDoc_Outflow_IntSwitch::CPulseDoc_Outflow_IntSwitch()
	: m_SwitchValue( this, "nSwitchValue", CPulseValueFullType( PVAL_INT ), "m_SwitchValue", "Value", "Value to match" ),
	  m_DefaultCaseOutflow( this, "Default", "Default", true )
{
	m_Cases.SetToEmptyArray();
	AddPort( &m_SwitchValue );
	AddPort( &m_DefaultCaseOutflow );
	InitOutflowPoint( m_DefaultCaseOutflow );
}

void CPulseDoc_Outflow_IntSwitch::RebuildPorts()
{
	for ( const std::unique_ptr<CPulseOutflowPort> &pPort : m_CaseOutflows )
		RemovePort( pPort.get() );
	m_CaseOutflows.clear();
	for ( int i = 0; i < m_Cases.GetArrayElementCount(); ++i )
	{
		CUtlString name;
		const KeyValues3 *pCase = m_Cases.GetArrayElement( i );
		if ( pCase->GetType() == KV3_TYPE_INT || pCase->GetType() == KV3_TYPE_UINT )
			name.Format( "Case: %lld", (long long)pCase->GetInt64() );
		else
			name.Format( "Case: [%d]", i );
		auto pPort = std::make_unique<CPulseOutflowPort>( this, name.Get(), name.Get(), false );
		InitOutflowPoint( *pPort );
		AddPort( pPort.get() );
		m_CaseOutflows.push_back( std::move( pPort ) );
	}
}

void CPulseDoc_Outflow_IntSwitch::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_SwitchValue.LoadKV3( reader.Take( "m_SwitchValue" ), reader.GetContext() );
	m_Cases.SetToEmptyArray();
	if ( const KeyValues3 *pCases = reader.TakeArray( "m_Cases" ) )
		m_Cases.CopyFrom( *pCases );
	RebuildPorts();
}

void CPulseDoc_Outflow_IntSwitch::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_SwitchValue, pTable );
	pTable->FindOrCreateMember( "m_Cases" )->CopyFrom( m_Cases );
}

CUtlString CPulseDoc_Outflow_IntSwitch::GetTitle() const
{
	CUtlString title( "Switch: " );
	for ( const std::unique_ptr<CPulseOutflowPort> &pPort : m_CaseOutflows )
		title.AppendFormat( " | %s", pPort->GetName() + 6 );
	return title;
}

void CPulseDoc_Outflow_IntSwitch::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseOutflow::Validate( pMessages );
	for ( int i = 0; i < m_Cases.GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pCase = m_Cases.GetArrayElement( i );
		if ( ( pCase->GetType() != KV3_TYPE_INT && pCase->GetType() != KV3_TYPE_UINT ) || pCase->GetInt64() < INT32_MIN || pCase->GetInt64() > INT32_MAX )
		{
			pMessages->Error( this, "case [%d] is an invalid case!", i );
			continue;
		}
		for ( int j = 0; j < i; ++j )
		{
			if ( m_Cases.GetArrayElement( j )->IsEqual( *pCase ) )
				pMessages->Warning( this, "case [%d] repeats case [%d]: the first one is taken", i, j );
		}
	}
}

void CPulseDoc_Outflow_IntSwitch::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	pChunk->OpenValueScope( pPoint );
	uint16_t nValue = m_SwitchValue.CompileToRegister( pPoint, pChunk );
	uint16_t nCondition = pChunk->AllocRegister( CPulseValueFullType( PVAL_BOOL ), "__case_cond", this );
	if ( nValue != PULSE_INVALID_REGISTER && nCondition != PULSE_INVALID_REGISTER )
	{
		for ( size_t i = 0; i < m_CaseOutflows.size(); ++i )
		{
			CUtlString name;
			name.Format( "__case_value_%d", int( i ) );
			uint16_t nCase = pChunk->EmitLiteral( pPoint, this, name.Get(), CPulseValueFullType( PVAL_INT ), *m_Cases.GetArrayElement( int( i ) ) );
			if ( nCase == PULSE_INVALID_REGISTER )
			{
				pChunk->GetContext()->ReportError( this, "case [%d] is an invalid case!", int( i ) );
				continue;
			}
			int nInstruction;
			PGDInstruction_t &equal = pChunk->AppendInstruction( EQ, pPoint, &nInstruction );
			equal.m_nReg0 = PulseRuntimeRegisterIndex_t( nCondition );
			equal.m_nReg1 = PulseRuntimeRegisterIndex_t( nValue );
			equal.m_nReg2 = PulseRuntimeRegisterIndex_t( nCase );
			pChunk->SetRegisterWriter( nCondition, nInstruction );
			pChunk->AppendBranchOne( pPoint, nCondition, &m_CaseOutflows[ i ]->GetPoint() );
		}
	}
	pChunk->CloseValueScope();
	pChunk->EnqueueCompileUnconditionalBranch( pPoint, &m_DefaultCaseOutflow.GetPoint() );
}

// Sequential branch.

void CPulseDoc_Outflow_Simultaneous::RebuildPorts()
{
	for ( const std::unique_ptr<CPulseOutflowPort> &pPort : m_Exits )
		RemovePort( pPort.get() );
	m_Exits.clear();
	for ( int i = 0; i < m_nNumExits; ++i )
	{
		CUtlString name;
		name.Format( "Branch %d", i + 1 );
		auto pPort = std::make_unique<CPulseOutflowPort>( this, name.Get(), name.Get(), false );
		InitOutflowPoint( *pPort );
		// Each branch is entered by a call of its own.
		pPort->GetPoint().ChainAdditionalPointPropertiesFn(
			[]( PulseSequencePointProperties_t *pProperties ) { pProperties->m_nEntryKind = PulseSequencePointProperties_t::ENTRY_SYNC_CALL; } );
		AddPort( pPort.get() );
		m_Exits.push_back( std::move( pPort ) );
	}
}

void CPulseDoc_Outflow_Simultaneous::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_nNumExits = 2;
	reader.TakeInt( "m_nNumExits", &m_nNumExits );
	if ( m_nNumExits < 0 || m_nNumExits > 64 )
	{
		reader.Warn( "m_nNumExits: %d exits is not between 0 and 64 (2 taken)", m_nNumExits );
		m_nNumExits = 2;
	}
	RebuildPorts();
}

void CPulseDoc_Outflow_Simultaneous::SaveOwnKeys( KeyValues3 *pTable ) const
{
	pTable->SetMemberInt( "m_nNumExits", m_nNumExits );
}

void CPulseDoc_Outflow_Simultaneous::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	for ( const std::unique_ptr<CPulseOutflowPort> &pExit : m_Exits )
		pChunk->EmitCallToPoint( pPoint, &pExit->GetPoint(), pExit->GetName(), PULSE_CALL_SYNC );
	pChunk->AppendInstruction( RETURN_VOID, pPoint );
}

// Return.

CPulseDoc_Outflow_Return::CPulseDoc_Outflow_Return() : m_ReturnValue( this, "m_ReturnValue", CPulseValueFullType(), "m_ReturnValue", "Return Value" )
{
	AddPort( &m_ReturnValue );
}

void CPulseDoc_Outflow_Return::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_ReturnValue.LoadKV3( reader.Take( "m_ReturnValue" ), reader.GetContext() );
}

void CPulseDoc_Outflow_Return::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_ReturnValue, pTable );
}

void CPulseDoc_Outflow_Return::GatherMethods( std::vector<const CPulseDoc_Inflow_Method *> *pMethods, bool *pOtherEntry ) const
{
	*pOtherEntry = false;
	if ( !m_pDoc )
		return;
	std::vector<const CPulseSequencePoint *> entries;
	m_pDoc->GetAnalysis().GatherOriginatingEntries( &m_PrimaryPoint, &entries );
	for ( const CPulseSequencePoint *pEntry : entries )
	{
		if ( auto *pMethod = dynamic_cast<const CPulseDoc_Inflow_Method *>( pEntry->GetOwner() ) )
			pMethods->push_back( pMethod );
		else
			*pOtherEntry = true;
	}
}

CUtlString CPulseDoc_Outflow_Return::GetTitle() const
{
	std::vector<const CPulseDoc_Inflow_Method *> methods;
	bool bOtherEntry = false;
	GatherMethods( &methods, &bOtherEntry );
	CUtlString title;
	if ( methods.size() + ( bOtherEntry ? 1 : 0 ) > 1 )
		title.Set( "End (multiple)" );
	else if ( bOtherEntry )
		title.Set( "End (?unknown inflow type?)" );
	else if ( methods.empty() )
		title.Set( "End <unbound>" );
	else
		title.Format( "End %s", methods[ 0 ]->GetName() );
	return title;
}

void CPulseDoc_Outflow_Return::CompileStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	std::vector<const CPulseDoc_Inflow_Method *> methods;
	bool bOtherEntry = false;
	GatherMethods( &methods, &bOtherEntry );
	CPulseValueFullType type;
	for ( const CPulseDoc_Inflow_Method *pMethod : methods )
	{
		if ( !type.IsValid() )
			type = pMethod->m_ReturnType;
		else if ( type != pMethod->m_ReturnType )
			pChunk->GetContext()->ReportError( this, "Methods '%s' and '%s' both end here but return different types", methods[ 0 ]->GetName(), pMethod->GetName() );
	}
	if ( !type.IsValid() )
	{
		pChunk->AppendInstruction( RETURN_VOID, pPoint );
		return;
	}
	m_ReturnValue.SetDeclaredType( type );
	pChunk->OpenValueScope( pPoint );
	uint16_t nValue = m_ReturnValue.CompileToRegister( pPoint, pChunk );
	pChunk->CloseValueScope();
	if ( nValue == PULSE_INVALID_REGISTER )
	{
		pChunk->GetContext()->ReportError( this, "Failed to compile return" );
		return;
	}
	PGDInstruction_t &ret = pChunk->AppendInstruction( RETURN_VALUE, pPoint );
	ret.m_nReg0 = PulseRuntimeRegisterIndex_t( nValue );
}
