#include "pulsedoc_lib/nodes/pulsedocvalues.h"

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulsedoc_lib/compiler/pulsecompilecontext.h"
#include "pulsedoc_lib/compiler/pulsecompiledchunk.h"
#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocbasicnodes.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Value_VarOrConstReference, "Value_VarReference", "Variable Value", "The value of a variable or constant of the graph.",
							PULSE_NODE_CATEGORY_VALUE, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Value_Copy, "Value_Copy", "Copy", "A copy of its value.", PULSE_NODE_CATEGORY_VALUE, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Cast, "Cast", "Cast", "Its source converted to another type.", PULSE_NODE_CATEGORY_VALUE, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Value_ArrayElement, "Value_ArrayElement", "Array Element", "One element of an array.", PULSE_NODE_CATEGORY_VALUE, false )

using enum PulseInstructionCode_t;

// Variable and constant values.

CPulseDoc_Value_VarOrConstReference::CPulseDoc_Value_VarOrConstReference() : m_Value( this, "value", CPulseValueFullType(), "Value" )
{
	AddPort( &m_Value );
}

void CPulseDoc_Value_VarOrConstReference::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_SourceID = -1;
	reader.TakeInt( "m_SourceID", &m_SourceID );
	m_BlackboardReference.SetToNull();
	if ( const KeyValues3 *pBlackboard = reader.Take( "m_BlackboardReference" ) )
		m_BlackboardReference.CopyFrom( *pBlackboard );
}

void CPulseDoc_Value_VarOrConstReference::SaveOwnKeys( KeyValues3 *pTable ) const
{
	pTable->SetMemberInt( "m_SourceID", m_SourceID );
	if ( !m_BlackboardReference.IsNull() )
		pTable->FindOrCreateMember( "m_BlackboardReference" )->CopyFrom( m_BlackboardReference );
}

void CPulseDoc_Value_VarOrConstReference::OnDocumentLoaded( CPulseDocMessages * )
{
	m_Value.SetType( GetResultType() );
}

CPulseValueFullType CPulseDoc_Value_VarOrConstReference::GetResultType() const
{
	const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinition( m_SourceID ) : nullptr;
	return pDefinition ? pDefinition->GetValueType() : CPulseValueFullType();
}

CUtlString CPulseDoc_Value_VarOrConstReference::GetTitle() const
{
	const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinition( m_SourceID ) : nullptr;
	if ( m_SourceID < 0 )
		return CUtlString( "<none>" );
	return CUtlString( pDefinition ? pDefinition->GetName() : "BAD REF" );
}

void CPulseDoc_Value_VarOrConstReference::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseValue::Validate( pMessages );
	if ( !m_BlackboardReference.IsNull() )
		pMessages->Error( this, "Reading a blackboard variable of another graph is not compiled by this build" );
	else if ( !m_pDoc || !m_pDoc->FindValueDefinition( m_SourceID ) )
		pMessages->Error( this, "Invalid value reference" );
}

void CPulseDoc_Value_VarOrConstReference::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	const CPulseDoc_BaseValueDefinition *pDefinition = m_pDoc ? m_pDoc->FindValueDefinition( m_SourceID ) : nullptr;
	if ( !pDefinition )
	{
		pChunk->GetContext()->ReportError( this, "Invalid value reference" );
		return;
	}
	uint16_t nRegister = pChunk->EmitValueDefinitionRead( pPoint, pDefinition, this );
	if ( nRegister == PULSE_INVALID_REGISTER )
	{
		pChunk->GetContext()->ReportError( this, "Invalid source register" );
		return;
	}
	pChunk->RecordOutparam( &m_Value, nRegister );
}

// Copy.

CPulseDoc_Value_Copy::CPulseDoc_Value_Copy()
	: m_Arg( this, "value", CPulseValueFullType( PVAL_UNKNOWN ), "m_Arg", "Value" ), m_Retval( this, "retval", CPulseValueFullType( PVAL_UNKNOWN ), "Result" )
{
	AddPort( &m_Arg );
	AddPort( &m_Retval );
}

void CPulseDoc_Value_Copy::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Arg.LoadKV3( reader.Take( "m_Arg" ), reader.GetContext() );
}

void CPulseDoc_Value_Copy::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Arg, pTable );
}

CPulseValueFullType CPulseDoc_Value_Copy::GetResultType() const
{
	return m_Arg.GetType();
}

void CPulseDoc_Value_Copy::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	uint16_t nSource = m_Arg.CompileToRegister( pPoint, pChunk );
	if ( nSource == PULSE_INVALID_REGISTER )
		return;
	CUtlString name;
	name.Format( "%d:retval", GetNodeID() );
	uint16_t nCopy = pChunk->AllocRegister( pChunk->GetRegisterType( nSource ), name.Get(), this );
	if ( nCopy == PULSE_INVALID_REGISTER )
		return;
	pChunk->MoveToRegister( pPoint, nSource, nCopy );
	pChunk->RecordOutparam( &m_Retval, nCopy );
}

// Cast.

CPulseDoc_Cast::CPulseDoc_Cast()
	: m_Source( this, "Source", CPulseValueFullType( PVAL_UNKNOWN ), "m_Source", "Source" ), m_Retval( this, "retval", CPulseValueFullType(), "Result" )
{
	AddPort( &m_Source );
	AddPort( &m_Retval );
}

void CPulseDoc_Cast::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_TargetType.Clear();
	reader.TakeFullType( "m_TargetType", &m_TargetType );
	m_Retval.SetType( m_TargetType );
	m_Source.LoadKV3( reader.Take( "m_Source" ), reader.GetContext() );
}

void CPulseDoc_Cast::SaveOwnKeys( KeyValues3 *pTable ) const
{
	if ( m_TargetType.IsValid() )
		pTable->SetMemberString( "m_TargetType", m_TargetType.ToString().Get() );
	SaveInparam( m_Source, pTable );
}

CUtlString CPulseDoc_Cast::GetTitle() const
{
	CUtlString title;
	title.Format( "Cast to %s", m_TargetType.IsValid() ? m_TargetType.GetDisplayText().Get() : "?" );
	return title;
}

void CPulseDoc_Cast::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDoc_BaseValue::Validate( pMessages );
	if ( !PulseGraphDef_IsStorableType( m_TargetType ) )
		pMessages->Error( this, "Cast to '%s': no value can have that type", m_TargetType.ToString().Get() );
}

void CPulseDoc_Cast::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	uint16_t nSource = m_Source.CompileToRegister( pPoint, pChunk );
	if ( nSource == PULSE_INVALID_REGISTER )
	{
		pChunk->GetContext()->ReportError( this, "Could not compile inparam Source" );
		return;
	}
	const CPulseValueFullType from = pChunk->GetRegisterType( nSource );
	CUtlString name;
	name.Format( "%d:retval", GetNodeID() );
	// The same base type only changes how the value is seen; others convert.
	bool bReinterpret = from.GetBaseType() == m_TargetType.GetBaseType() && from != m_TargetType;
	if ( !bReinterpret && from != m_TargetType && !PulseValue_CanConvert( from, m_TargetType ) )
	{
		pChunk->GetContext()->ReportError( this, "Cannot convert from %s to %s", from.ToString().Get(), m_TargetType.ToString().Get() );
		return;
	}
	uint16_t nResult = pChunk->AllocRegister( m_TargetType, name.Get(), this );
	if ( nResult == PULSE_INVALID_REGISTER )
		return;
	int nInstruction;
	PGDInstruction_t &convert = pChunk->AppendInstruction( bReinterpret ? REINTERPRET_INSTANCE : from == m_TargetType ? COPY : CONVERT_VALUE, pPoint, &nInstruction );
	convert.m_nReg0 = PulseRuntimeRegisterIndex_t( nResult );
	convert.m_nReg1 = PulseRuntimeRegisterIndex_t( nSource );
	pChunk->SetRegisterWriter( nResult, nInstruction );
	pChunk->RecordOutparam( &m_Retval, nResult );
}

// Array element.

CPulseDoc_Value_ArrayElement::CPulseDoc_Value_ArrayElement()
	: m_Array( this, "array", CPulseValueFullType( PVAL_UNKNOWN ), "m_Array", "Array" ), m_Index( this, "index", CPulseValueFullType( PVAL_INT ), "m_Index", "Index" ),
	  m_Element( this, "element", CPulseValueFullType( PVAL_UNKNOWN ), "Element" )
{
	AddPort( &m_Array );
	AddPort( &m_Index );
	AddPort( &m_Element );
}

void CPulseDoc_Value_ArrayElement::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Array.LoadKV3( reader.Take( "m_Array" ), reader.GetContext() );
	m_Index.LoadKV3( reader.Take( "m_Index" ), reader.GetContext() );
}

void CPulseDoc_Value_ArrayElement::SaveOwnKeys( KeyValues3 *pTable ) const
{
	SaveInparam( m_Array, pTable );
	SaveInparam( m_Index, pTable );
}

void CPulseDoc_Value_ArrayElement::CompileValue( const CPulseSequencePoint *pPoint, CCompiledChunk *pChunk ) const
{
	uint16_t nArray = m_Array.CompileToRegister( pPoint, pChunk );
	if ( nArray == PULSE_INVALID_REGISTER )
	{
		pChunk->GetContext()->ReportError( this, "Could not compile inparam array" );
		return;
	}
	uint16_t nIndex = m_Index.CompileToRegister( pPoint, pChunk );
	if ( nIndex == PULSE_INVALID_REGISTER )
	{
		pChunk->GetContext()->ReportError( this, "Failed to compile inparam index" );
		return;
	}
	const CPulseValueFullType arrayType = pChunk->GetRegisterType( nArray );
	if ( !arrayType.IsArray() || !arrayType.GetElementType() || !PulseGraphDef_IsStorableType( *arrayType.GetElementType() ) )
	{
		pChunk->GetContext()->ReportError( this, "Inparam is no longer an array!" );
		return;
	}
	CUtlString name;
	name.Format( "%d:element", GetNodeID() );
	uint16_t nElement = pChunk->EmitOperator( pPoint, GET_ARRAY_ELEMENT, nArray, nIndex, *arrayType.GetElementType(), name.Get(), this );
	pChunk->RecordOutparam( &m_Element, nElement );
}
