#include "zoldoc_lib/zolvariablenode.h"

#include "core/text/bufferstring.h"
#include "core/text/utlstring.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolevents.h"

CZolVariableNode::CZolVariableNode( CZolDoc *pDoc ) : CBaseZolNode( pDoc ), m_ValueType( PVAL_VEC3 )
{
	m_DefaultConfig.SetToEmptyTable();
}

void CZolVariableNode::SaveToKV3( KeyValues3 *pOut ) const
{
	pOut->CopyFrom( m_KV3 );
	CUtlString typeText;
	m_ValueType.ToString( &typeText );
	pOut->SetMemberString( "m_ValueType", typeText.Get() );
	KeyValues3 *pConfig = pOut->FindOrCreateMember( "m_DefaultConfig" );
	pConfig->CopyFrom( m_DefaultConfig );
	if ( !pConfig->IsTable() )
		pConfig->SetToEmptyTable();
}

void CZolVariableNode::LoadFromKV3( const KeyValues3 *pIn )
{
	m_KV3.CopyFrom( *pIn );
	ExtractTypedMembers();
}

void CZolVariableNode::TakeFromKV3( KeyValues3 *pIn )
{
	CBaseZolNode::TakeFromKV3( pIn );
	ExtractTypedMembers();
}

void CZolVariableNode::ExtractTypedMembers()
{
	m_DefaultConfig.SetToEmptyTable();
	if ( const KeyValues3 *pConfig = m_KV3.FindMember( "m_DefaultConfig" ) )
	{
		if ( pConfig->IsTable() )
			m_DefaultConfig.CopyFrom( *pConfig );
		m_KV3.RemoveMember( "m_DefaultConfig" );
	}

	// A missing or unreadable type keeps the type a new variable has.
	m_ValueType = CPulseValueFullType( PVAL_VEC3 );
	if ( const KeyValues3 *pType = m_KV3.FindMember( "m_ValueType" ) )
	{
		CPulseValueFullType loaded;
		if ( pType->IsString() && loaded.FromString( pType->GetString() ) )
			m_ValueType = loaded;
		m_KV3.RemoveMember( "m_ValueType" );
	}
}

void CZolVariableNode::GetDisplayStrings( CBufferString *pName, CBufferString *, CBufferString * ) const
{
	pName->Set( GetName() );
}

void CZolVariableNode::OnAttrWillChange( HToolAttrTableInstance, IBaseToolAttr * )
{
	if ( m_pDoc )
		m_pDoc->SendEvent( ZolEvent_PropertyDomainTopologyChanged_t() );
}
