#include "pulsedoc_lib/nodes/pulsedocloops.h"

#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedocload.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_LoopWhile, "Outflow_LoopWhile", "Loop While", "Runs Loop while the condition holds, then Completed.",
							PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_LoopIntegerRange, "Outflow_LoopIntegerRange", "Loop Range (Integer)", "Loop Through Integer Range",
							PULSE_NODE_CATEGORY_FLOW, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Outflow_LoopFloatRange, "Outflow_LoopFloatRange", "Loop Range (Float)", "Loop Through Float Range", PULSE_NODE_CATEGORY_FLOW,
							false )

using enum PulseInstructionCode_t;

namespace
{
const CPulseValueFullType s_Bool( PVAL_BOOL );
const CPulseValueFullType s_Int( PVAL_INT );
const CPulseValueFullType s_Float( PVAL_FLOAT );

CUtlString LiteralTitleText( const CBasePulseInparamPort &port )
{
	const KeyValues3 &value = port.GetLiteralValue();
	if ( port.GetValueSource() != PULSE_VALUE_SOURCE_LITERAL || value.IsNull() )
		return CUtlString( port.GetFriendlyName() );
	CUtlString text;
	if ( value.GetType() == KV3_TYPE_DOUBLE )
		text.Format( "%g", value.GetDouble() );
	else if ( value.IsNumber() )
		text.Format( "%lld", (long long)value.GetInt64() );
	else
		text.Set( value.IsString() ? value.GetString() : "?" );
	return text;
}
} // namespace

// Every loop.

CPulseDoc_Outflow_BaseLoop::CPulseDoc_Outflow_BaseLoop()
	: m_LoopHeader( "m_LoopHeader", this ), m_Inflow_Start( this, "Start", "Start", true, &m_LoopHeader ), m_Outflow_Completed( this, "Completed", "Completed", true ),
	  m_Outflow_Loop( this, "Loop", "Loop", false )
{
	// Start sets the loop up, then falls into the header.
	m_Inflow_Start.GetPoint().SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) { InitLoop( pPoint, pChunk ); } );
	m_LoopHeader.SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) {
		pProperties->AddNext( &m_Outflow_Loop.GetPoint() );
		pProperties->AddNext( &m_Outflow_Completed.GetPoint() );
		pProperties->m_bNoFallThrough = true;
	} );
	m_LoopHeader.SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) {
		pChunk->OpenValueScope( pPoint );
		uint16_t nCondition = CompileLoopCondition( pPoint, pChunk );
		pChunk->CloseValueScope();
		if ( nCondition == PULSE_INVALID_REGISTER )
			return;
		pChunk->AppendBranch( pPoint, nCondition, &m_Outflow_Loop.GetPoint(), &m_Outflow_Completed.GetPoint() );
	} );
	// Loop: the body as a call, then the step and back to the header.
	m_Outflow_Loop.GetPoint().SetPropertiesFn( [ this ]( PulseSequencePointProperties_t *pProperties ) {
		pProperties->AddNext( &m_LoopHeader );
		if ( const CPulseSequencePoint *pBody = m_Outflow_Loop.ResolveTarget() )
			pProperties->m_CalledPoints.push_back( pBody );
		pProperties->m_bNoFallThrough = true;
	} );
	m_Outflow_Loop.GetPoint().SetCompileFn( [ this ]( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) {
		CompileLoopBodyStart( pPoint, pChunk );
		pChunk->EmitCallToPoint( pPoint, m_Outflow_Loop.ResolveTarget(), "Loop", PULSE_CALL_SYNC );
		CompileLoopIncrement( pPoint, pChunk );
		pChunk->EnqueueCompileUnconditionalBranch( pPoint, &m_LoopHeader );
	} );
	m_OwnPoints.push_back( &m_LoopHeader );
	AddPort( &m_Inflow_Start );
	AddPort( &m_Outflow_Completed );
	AddPort( &m_Outflow_Loop );
	InitOutflowPoint( m_Outflow_Completed );
}

const CPulseSequencePoint *CPulseDoc_Outflow_BaseLoop::GetOutparamSourcePoint( const CBasePulseOutparamPort * ) const
{
	// The loop's outputs are set where the body starts.
	return &m_Outflow_Loop.GetPoint();
}

void CPulseDoc_Outflow_BaseLoop::EmitStep( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk, uint16_t nIndex, uint16_t nStep )
{
	if ( !pChunk->IsValidRegister( nIndex ) || !pChunk->IsValidRegister( nStep ) )
		return;
	PGDInstruction_t &add = pChunk->AppendInstruction( ADD, pPoint );
	add.m_nReg0 = PulseRuntimeRegisterIndex_t( nIndex );
	add.m_nReg1 = PulseRuntimeRegisterIndex_t( nIndex );
	add.m_nReg2 = PulseRuntimeRegisterIndex_t( nStep );
}

// While.

CPulseDoc_Outflow_LoopWhile::CPulseDoc_Outflow_LoopWhile() : m_Condition( this, "m_Condition", s_Bool, "m_Condition", "Condition" )
{
	AddPort( &m_Condition );
}

void CPulseDoc_Outflow_LoopWhile::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Condition.LoadKV3( reader.Take( "m_Condition" ), reader.GetContext() );
}

void CPulseDoc_Outflow_LoopWhile::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Condition, pTable );
}

uint16_t CPulseDoc_Outflow_LoopWhile::CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	// Compiled at the header: the condition is evaluated afresh before every round.
	return m_Condition.CompileToRegister( pPoint, pChunk );
}

// Integer range.

CPulseDoc_Outflow_LoopIntegerRange::CPulseDoc_Outflow_LoopIntegerRange()
	: m_Start( this, "m_Start", s_Int, "m_Start", "Start" ), m_Stop( this, "m_Stop", s_Int, "m_Stop", "Stop" ),
	  m_Step( this, "m_Step", s_Int, "m_Step", "Step", "Increment Value by this amount each time through the loop" ),
	  m_Value( this, "value", s_Int, "Value", "The index of this round." )
{
	KeyValues3 one;
	one.SetInt( 1 );
	m_Step.SetDefaultValue( one );
	AddPort( &m_Start );
	AddPort( &m_Stop );
	AddPort( &m_Step );
	AddPort( &m_Value );
}

void CPulseDoc_Outflow_LoopIntegerRange::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Start.LoadKV3( reader.Take( "m_Start" ), reader.GetContext() );
	m_Stop.LoadKV3( reader.Take( "m_Stop" ), reader.GetContext() );
	m_Step.LoadKV3( reader.Take( "m_Step" ), reader.GetContext() );
	m_bRangeIncludesEndpoint = false;
	reader.TakeBool( "m_bRangeIncludesEndpoint", &m_bRangeIncludesEndpoint );
}

void CPulseDoc_Outflow_LoopIntegerRange::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Start, pTable );
	SaveInparam( m_Stop, pTable );
	SaveInparam( m_Step, pTable );
	if ( m_bRangeIncludesEndpoint )
		pTable->SetMemberBool( "m_bRangeIncludesEndpoint", true );
}

CUtlString CPulseDoc_Outflow_LoopIntegerRange::GetTitle() const
{
	CUtlString title, step;
	const KeyValues3 &stepValue = m_Step.GetLiteralValue();
	if ( m_Step.GetValueSource() == PULSE_VALUE_SOURCE_LITERAL && stepValue.IsNumber() && stepValue.GetInt64() != 1 )
		step.Format( " by %lld", (long long)stepValue.GetInt64() );
	title.Format( m_bRangeIncludesEndpoint ? "Loop From %s Through %s%s" : "Loop From %s Until %s%s", LiteralTitleText( m_Start ).Get(), LiteralTitleText( m_Stop ).Get(),
				  step.Get() );
	return title;
}

void CPulseDoc_Outflow_LoopIntegerRange::InitLoop( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	pChunk->OpenValueScope( pPoint );
	m_nStop = m_Stop.CompileToRegister( pPoint, pChunk );
	m_nStep = m_Step.CompileToRegister( pPoint, pChunk );
	uint16_t nStart = m_Start.CompileToRegister( pPoint, pChunk );
	pChunk->CloseValueScope();
	// The running index is a register of its own: the start may be someone else's output.
	m_nIndex = pChunk->AllocRegister( s_Int, "__index", this );
	pChunk->MoveToRegister( pPoint, nStart, m_nIndex );
	KeyValues3 zero;
	zero.SetInt( 0 );
	uint16_t nZero = pChunk->EmitLiteral( pPoint, this, "__zero", s_Int, zero );
	m_nStepAboveZero = pChunk->EmitOperator( pPoint, LT, nZero, m_nStep, s_Bool, "step > 0", this );
	m_nStepBelowZero = pChunk->EmitOperator( pPoint, LT, m_nStep, nZero, s_Bool, "step < 0", this );
}

uint16_t CPulseDoc_Outflow_LoopIntegerRange::CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	PulseInstructionCode_t eCompare = m_bRangeIncludesEndpoint ? LTE : LT;
	uint16_t nBelowStop = pChunk->EmitOperator( pPoint, eCompare, m_nIndex, m_nStop, s_Bool, "index < stop", this );
	uint16_t nAboveStop = pChunk->EmitOperator( pPoint, eCompare, m_nStop, m_nIndex, s_Bool, "stop > index", this );
	uint16_t nUp = pChunk->EmitOperator( pPoint, AND, m_nStepAboveZero, nBelowStop, s_Bool, "step > 0 && index < stop", this );
	uint16_t nDown = pChunk->EmitOperator( pPoint, AND, m_nStepBelowZero, nAboveStop, s_Bool, "step < 0 && index > stop", this );
	return pChunk->EmitOperator( pPoint, OR, nUp, nDown, s_Bool, "__loop_cond", this );
}

void CPulseDoc_Outflow_LoopIntegerRange::CompileLoopBodyStart( const CPulseSequencePoint *, CCompiledChunk *pChunk )
{
	pChunk->RecordOutparam( &m_Value, m_nIndex );
}

void CPulseDoc_Outflow_LoopIntegerRange::CompileLoopIncrement( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	EmitStep( pPoint, pChunk, m_nIndex, m_nStep );
}

// Float range.

CPulseDoc_Outflow_LoopFloatRange::CPulseDoc_Outflow_LoopFloatRange()
	: m_Start( this, "m_Start", s_Float, "m_Start", "Start" ), m_Stop( this, "m_Stop", s_Float, "m_Stop", "Stop" ),
	  m_Count( this, "m_Count", s_Int, "m_Count", "Count", "How many values, the first and last included." ),
	  m_Value( this, "value", s_Float, "Value", "The value of this round." ), m_StepSize( this, "step", s_Float, "Step Size", "The spacing of each value in the output range." )
{
	AddPort( &m_Start );
	AddPort( &m_Stop );
	AddPort( &m_Count );
	AddPort( &m_Value );
	AddPort( &m_StepSize );
}

void CPulseDoc_Outflow_LoopFloatRange::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Start.LoadKV3( reader.Take( "m_Start" ), reader.GetContext() );
	m_Stop.LoadKV3( reader.Take( "m_Stop" ), reader.GetContext() );
	m_Count.LoadKV3( reader.Take( "m_Count" ), reader.GetContext() );
}

void CPulseDoc_Outflow_LoopFloatRange::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Start, pTable );
	SaveInparam( m_Stop, pTable );
	SaveInparam( m_Count, pTable );
}

CUtlString CPulseDoc_Outflow_LoopFloatRange::GetTitle() const
{
	CUtlString title, steps;
	if ( m_Count.GetValueSource() == PULSE_VALUE_SOURCE_LITERAL && m_Count.GetLiteralValue().IsNumber() )
		steps.Format( " in %d steps", m_Count.GetLiteralValue().GetInt() );
	title.Format( "Loop From %s Through %s%s", LiteralTitleText( m_Start ).Get(), LiteralTitleText( m_Stop ).Get(), steps.Get() );
	return title;
}

void CPulseDoc_Outflow_LoopFloatRange::InitLoop( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	KeyValues3 zero, one;
	zero.SetInt( 0 );
	one.SetInt( 1 );
	m_nIndex = pChunk->EmitLiteral( pPoint, this, "__index", s_Int, zero );
	m_nIncrement = pChunk->EmitLiteral( pPoint, this, "__increment", s_Int, one );
	pChunk->OpenValueScope( pPoint );
	m_nCount = m_Count.CompileToRegister( pPoint, pChunk );
	m_nStartValue = m_Start.CompileToRegister( pPoint, pChunk );
	uint16_t nStop = m_Stop.CompileToRegister( pPoint, pChunk );
	pChunk->CloseValueScope();
	// An integer counter lands the last value on the stop without float drift.
	uint16_t nSpan = pChunk->EmitOperator( pPoint, SUB, nStop, m_nStartValue, s_Float, "end - start", this );
	uint16_t nSteps = pChunk->EmitOperator( pPoint, SUB, m_nCount, m_nIncrement, s_Int, "count - 1", this );
	uint16_t nStepsAsFloat = pChunk->CastRegister( nSteps, pPoint, s_Float, this );
	m_nDelta = pChunk->EmitOperator( pPoint, DIV, nSpan, nStepsAsFloat, s_Float, "(end - start) / (count - 1)", this );
}

uint16_t CPulseDoc_Outflow_LoopFloatRange::CompileLoopCondition( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	return pChunk->EmitOperator( pPoint, LT, m_nIndex, m_nCount, s_Bool, "index < stop", this );
}

void CPulseDoc_Outflow_LoopFloatRange::CompileLoopBodyStart( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	uint16_t nIndex = pChunk->CastRegister( m_nIndex, pPoint, s_Float, this );
	uint16_t nOffset = pChunk->EmitOperator( pPoint, MUL, nIndex, m_nDelta, s_Float, "index * delta", this );
	uint16_t nValue = pChunk->EmitOperator( pPoint, ADD, m_nStartValue, nOffset, s_Float, "start + (index * delta)", this );
	pChunk->RecordOutparam( &m_Value, nValue );
	pChunk->RecordOutparam( &m_StepSize, m_nDelta );
}

void CPulseDoc_Outflow_LoopFloatRange::CompileLoopIncrement( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk )
{
	EmitStep( pPoint, pChunk, m_nIndex, m_nIncrement );
}
