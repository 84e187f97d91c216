#include "pulsedoc_lib/model/pulsedocroot.h"

#include "pulsedoc_lib/model/pulsedoc.h"
#include "pulsedoc_lib/model/pulsedocload.h"
#include "pulsedoc_lib/model/pulsedocmessages.h"
#include "pulsedoc_lib/model/pulseeditorundoloader.h"

PULSE_DOC_DEFINE_NODE_TYPE( CPulseDoc_Root, "Root", "Graph", "The root of a Pulse document.", PULSE_NODE_CATEGORY_OTHER, false )

namespace
{
// An undo step's snapshot: the whole document as KV3.
class CPulseDocUndoState final : public CBaseUndoable
{
public:
	KeyValues3 m_State;

	IUndoable *CreateUndoState() override
	{
		auto *pCopy = new CPulseDocUndoState;
		pCopy->m_State.CopyFrom( m_State );
		return pCopy;
	}
	void ApplyUndoState( IUndoable * ) override {}
};
} // namespace

void CPulseDoc_Root::LoadOwnKeys( CPulseDocKeyReader &reader )
{
	CUtlString text;
	m_DomainIdentifier = PulseSymbol_t();
	if ( reader.TakeString( "m_DomainIdentifier", &text ) )
		m_DomainIdentifier = PulseSymbol_t( text.Get() );
	m_DomainSubType.Clear();
	reader.TakeFullType( "m_DomainSubType", &m_DomainSubType );
	m_ParentMapName.Clear();
	reader.TakeString( "m_ParentMapName", &m_ParentMapName );
	m_ParentXmlName.Clear();
	reader.TakeString( "m_ParentXmlName", &m_ParentXmlName );
	m_vecGameBlackboards.clear();
	if ( const KeyValues3 *pBlackboards = reader.TakeArray( "m_vecGameBlackboards" ) )
	{
		for ( int i = 0; i < pBlackboards->GetArrayElementCount(); ++i )
		{
			if ( pBlackboards->GetArrayElement( i )->IsString() )
				m_vecGameBlackboards.emplace_back( pBlackboards->GetArrayElement( i )->GetString() );
			else
				reader.Warn( "m_vecGameBlackboards[%d]: a blackboard is named by a string", i );
		}
	}
	m_bAllowStateCells = false;
	reader.TakeBool( "m_bAllowStateCells", &m_bAllowStateCells );
}

void CPulseDoc_Root::SaveOwnKeys( KeyValues3 *pTable ) const
{
	if ( !m_DomainIdentifier.IsEmpty() )
		pTable->SetMemberString( "m_DomainIdentifier", m_DomainIdentifier.String() );
	if ( m_DomainSubType.IsValid() )
		pTable->SetMemberString( "m_DomainSubType", m_DomainSubType.ToString().Get() );
	if ( !m_ParentMapName.IsEmpty() )
		pTable->SetMemberString( "m_ParentMapName", m_ParentMapName.Get() );
	if ( !m_ParentXmlName.IsEmpty() )
		pTable->SetMemberString( "m_ParentXmlName", m_ParentXmlName.Get() );
	if ( !m_vecGameBlackboards.empty() )
	{
		KeyValues3 *pBlackboards = pTable->SetMemberEmptyArray( "m_vecGameBlackboards" );
		for ( const CUtlString &name : m_vecGameBlackboards )
			pBlackboards->ArrayAddToTail()->SetString( name.Get() );
	}
	if ( m_bAllowStateCells )
		pTable->SetMemberBool( "m_bAllowStateCells", true );
}

IUndoable *CPulseDoc_Root::CreateUndoState()
{
	auto *pState = new CPulseDocUndoState;
	SaveKV3( &pState->m_State );
	return pState;
}

void CPulseDoc_Root::ApplyUndoState( IUndoable *pState )
{
	auto *pSnapshot = dynamic_cast<CPulseDocUndoState *>( pState );
	if ( !pSnapshot || !m_pDoc )
		return;
	// The snapshot was saved by this document, so it loads; what it reports is dropped.
	CPulseDocMessages messages;
	CPulseEditorUndoLoader loader( m_pDoc );
	m_pDoc->LoadKV3( pSnapshot->m_State, &messages, &loader );
	loader.DropUnclaimedNodes();
	m_pDoc->NotifyChanged( PULSE_DOC_CHANGE_UNDO_APPLIED );
}
