#include "pulsedoc_lib/model/pulsedocbasicnodes.h"

#include "pulse_runtime_lib/graph/pulsegraphbinder.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_UnknownFallback, "Unknown", "Missing", "A node whose class this build doesn't know.", PULSE_NODE_CATEGORY_OTHER, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_BlockComment, "BlockComment", "Comment", "A note or outline on the canvas.", PULSE_NODE_CATEGORY_OTHER, false )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_VariableDefinition, "VariableDefinition", "Variable", "A variable of the graph: each instance has its own value.",
							PULSE_NODE_CATEGORY_DEFINITION, true )
PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_ConstantDefinition, "ConstantDefinition", "Constant", "A named value of the graph that never changes.",
							PULSE_NODE_CATEGORY_DEFINITION, true )

// The stand-in.

void CPulseDoc_UnknownFallback::LoadKV3( const KeyValues3 &table, CPulseDocLoadContext *pContext )
{
	m_Table.CopyFrom( table );
	m_pDoc = pContext->m_pDoc;
	m_Children.clear();
	// Its id still counts, so references to it report the missing class.
	const KeyValues3 *pID = table.FindMember( "m_NodeID" );
	m_nNodeID = pID && ( pID->GetType() == KV3_TYPE_INT || pID->GetType() == KV3_TYPE_UINT ) && pID->GetInt64() >= 0 && pID->GetInt64() <= INT32_MAX ? pID->GetInt() : -1;
}

void CPulseDoc_UnknownFallback::SaveKV3( KeyValues3 *pTable ) const
{
	pTable->CopyFrom( m_Table );
}

const char *CPulseDoc_UnknownFallback::GetMissingClassName() const
{
	return m_Table.GetMemberString( "_class", "" );
}

void CPulseDoc_UnknownFallback::Validate( CPulseDocMessages *pMessages ) const
{
	pMessages->Error( this,
					  "Missing node class '%s'. Either delete this node from the outliner, edit the .tpulse file in notepad to repair, or post on "
					  "#tessel2-pulse-scripting for help.",
					  GetMissingClassName() );
}

// Comments.

void CPulseDoc_BlockComment::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_CommentText.Clear();
	reader.TakeString( "m_CommentText", &m_CommentText );
}

void CPulseDoc_BlockComment::SaveOwnKeys( KeyValues3 *pTable ) const
{
	if ( !m_CommentText.IsEmpty() )
		pTable->SetMemberString( "m_CommentText", m_CommentText.Get() );
}

// Typed values.

void CPulseEditableValue::Load( const KeyValues3 *pTable, CPulseDocKeyReader &reader, const char *pKey )
{
	m_Type.Clear();
	m_Value.SetToNull();
	if ( !pTable )
		return;
	if ( !pTable->IsTable() )
	{
		reader.Warn( "%s: Class data is a '%s', not a table", pKey, pTable->GetTypeAsString() );
		return;
	}
	CPulseDocKeyReader value( *pTable, reader.GetNode(), reader.GetContext(), pKey );
	value.TakeFullType( "m_Type", &m_Type );
	if ( const KeyValues3 *pValue = value.Take( "m_Value" ) )
		m_Value.CopyFrom( *pValue );
}

void CPulseEditableValue::Save( KeyValues3 *pTable ) const
{
	pTable->SetToEmptyTable();
	if ( m_Type.IsValid() )
		pTable->SetMemberString( "m_Type", m_Type.ToString().Get() );
	if ( !m_Value.IsNull() )
		pTable->FindOrCreateMember( "m_Value" )->CopyFrom( m_Value );
}

// Definitions.

void CPulseDoc_BaseValueDefinition::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	m_Value.Load( reader.Take( "m_Value" ), reader, "m_Value" );
	m_Description.Clear();
	reader.TakeString( "m_Description", &m_Description );
}

void CPulseDoc_BaseValueDefinition::SaveOwnKeys( KeyValues3 *pTable ) const
{
	m_Value.Save( pTable->FindOrCreateMember( "m_Value" ) );
	if ( !m_Description.IsEmpty() )
		pTable->SetMemberString( "m_Description", m_Description.Get() );
}

void CPulseDoc_BaseValueDefinition::Validate( CPulseDocMessages *pMessages ) const
{
	CPulseDocNode::Validate( pMessages );
	const char *pWhat = IsConstant() ? "Constant" : "Variable";
	if ( !PulseGraphDef_IsStorableType( m_Value.m_Type ) )
	{
		CUtlString type = m_Value.m_Type.ToString();
		pMessages->Error( this, "%s '%s' has the type '%s', which no value can have", pWhat, m_Name.Get(), type.IsEmpty() ? "no type" : type.Get() );
		return;
	}
	CPulseVariant variant( m_Value.m_Type );
	CUtlString error;
	if ( variant.GetValue() && !m_Value.m_Value.IsNull() && !PulseValue_LoadKV3( m_Value.m_Type, variant.GetValue(), &m_Value.m_Value, &error ) )
	{
		while ( !error.IsEmpty() && error.Storage().back() == '\n' )
			error.Storage().pop_back();
		pMessages->Error( this, "%s '%s': the value is no %s: %s", pWhat, m_Name.Get(), m_Value.m_Type.ToString().Get(), error.Get() );
	}
}

namespace
{
const char *const s_KeysSourceNames[] = { "PRIVATE", "CPP", "TLVL", "TMSH", "XML" };
}

void CPulseDoc_VariableDefinition::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	CPulseDoc_BaseValueDefinition::LoadOwnKeys( reader );
	int nSource = 0;
	reader.TakeEnum( "m_nKeysSource", s_KeysSourceNames, 5, &nSource );
	m_nKeysSource = PulseVariableKeysSource_t( nSource );
	m_bIsPublicBlackboardVariable = false;
	reader.TakeBool( "m_bIsPublicBlackboardVariable", &m_bIsPublicBlackboardVariable );
	m_bIsObservable = false;
	reader.TakeBool( "m_bIsObservable", &m_bIsObservable );
}

void CPulseDoc_VariableDefinition::SaveOwnKeys( KeyValues3 *pTable ) const
{
	CPulseDoc_BaseValueDefinition::SaveOwnKeys( pTable );
	if ( m_nKeysSource != PulseVariableKeysSource_t::PRIVATE )
		pTable->SetMemberString( "m_nKeysSource", s_KeysSourceNames[ int( m_nKeysSource ) ] );
	if ( m_bIsPublicBlackboardVariable )
		pTable->SetMemberBool( "m_bIsPublicBlackboardVariable", true );
	if ( m_bIsObservable )
		pTable->SetMemberBool( "m_bIsObservable", true );
}
