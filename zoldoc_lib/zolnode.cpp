#include "zoldoc_lib/zolnode.h"

#include "core/text/bufferstring.h"
#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/kv3fgdtargetresolver.h"
#include "tools/toolutils2/fgd/kv3fgdtoolattr.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"

namespace
{
// How the attributes of a node's class reach its table. A node's handle carries the tag
// of its own class (or of KV3 data with a class); the node itself is its notify root.
struct ZolNodeTargetTraits_t
{
	static CBaseZolNode *Cast( HToolAttrTableInstance handle )
	{
		static const uint32_t s_nKV3DataTag = ToolAttrTypeTag( "CBaseKV3DataWithFGDClass" );
		CBaseZolNode *pNode = dynamic_cast<CBaseZolNode *>( handle.m_pNotifyRoot );
		if ( !pNode || handle.m_pInstance != static_cast<void *>( pNode ) )
			return nullptr;
		if ( handle.m_nTypeTag != s_nKV3DataTag && handle.m_nTypeTag != ToolAttrTypeTag( pNode->GetClassName() ) )
			return nullptr;
		return pNode;
	}
};
using CZolNodeKV3Resolver = CToolAttrKV3FGDProvider<CBaseZolNode, ZolNodeTargetTraits_t>;
} // namespace

CBaseZolNode::CBaseZolNode( CZolDoc *pDoc ) : m_pDoc( pDoc )
{
}

CBaseZolNode::~CBaseZolNode()
{
	if ( m_pDoc )
		m_pDoc->OnNodeDestroyed( this );
}

void CBaseZolNode::GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	// The variables of the node's class, then the keys that no variable names. "_class"
	// is what the node is, not a value to edit, so it never shows.
	int nFirstOwn = pAttributes->Count();
	CKV3FGDToolAttr::GetRootAttributes( &CZolNodeKV3Resolver::Get(), handle, pAttributes );
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
