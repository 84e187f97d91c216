#include "zoldoc_lib/zolnode.h"

#include "core/text/bufferstring.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"

CBaseZolNode::CBaseZolNode( CZolDoc *pDoc ) : m_pDoc( pDoc )
{
}

CBaseZolNode::~CBaseZolNode()
{
	if ( m_pDoc )
		m_pDoc->OnNodeDestroyed( this );
}

void CBaseZolNode::GetAttributes( HToolAttrTableInstance, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	// The class's attributes come with its FGD class; until a node has one it lists none.
	// "_class" is what the node is, not a value to edit, so it never shows.
	int nFirstOwn = pAttributes->Count();
	for ( int i = pAttributes->Count() - 1; i >= nFirstOwn; --i )
	{
		if ( !V_strcmp( ( *pAttributes )[ i ]->GetName(), "_class" ) )
			pAttributes->Remove( i );
	}
}

bool CBaseZolNode::GetHelpInfo( HToolAttrTableInstance, CUtlString *pContext, CUtlString *pId ) const
{
	return GetElementHelpInfo( pContext, pId );
}

bool CBaseZolNode::GetElementHelpInfo( CUtlString *pContext, CUtlString *pId ) const
{
	if ( pContext )
		pContext->Set( "particles" );
	if ( pId )
		pId->Set( GetClassName() );
	return true;
}

bool CBaseZolNode::GetDisplayName( HToolAttrTableInstance, CUtlString *pOut ) const
{
	pOut->Set( CZolDoc::GetFriendlyName( this ) );
	return true;
}

HToolAttrTableInstance CBaseZolNode::GetAttrInstance( HToolAttrTableInstance handle )
{
	return handle;
}


const CGameData *CBaseZolNode::GetGameData() const
{
	return GetParticleGameData();
}

const CGameDataClass *CBaseZolNode::GetFGDClass() const
{
	return FindParticleGameDataClass( GetClassName() );
}

KeyValues3 *CBaseZolNode::GetKV3ForModify()
{
	if ( m_pDoc )
		m_pDoc->NoteNodeModified( this );
	return &m_KV3;
}

void CBaseZolNode::SaveToKV3( KeyValues3 *pOut ) const
{
	pOut->CopyFrom( m_KV3 );
}

void CBaseZolNode::LoadFromKV3( const KeyValues3 *pIn )
{
	m_KV3.CopyFrom( *pIn );
}

void CBaseZolNode::TakeFromKV3( KeyValues3 *pIn )
{
	m_KV3 = static_cast<KeyValues3 &&>( *pIn );
	pIn->SetToNull();
}

bool CBaseZolNode::IsEnabled() const
{
	return !m_KV3.GetMemberBool( GetDisableKey(), false );
}

void CBaseZolNode::SetEnabled( bool bEnabled )
{
	m_KV3.SetMemberBool( GetDisableKey(), !bEnabled );
}

void CBaseZolNode::GetDisplayStrings( CBufferString *, CBufferString *, CBufferString * ) const
{
}

HToolAttrTableInstance CBaseZolNode::GetTableInstance()
{
	HToolAttrTableInstance handle;
	handle.m_pNotifyRoot = this;
	handle.m_pszClassName = GetClassName();
	handle.m_nTypeTag = ToolAttrTypeTag( GetClassName() );
	handle.m_pInstance = this;
	handle.m_pTable = this;
	return handle;
}
