#include "tools/toolutils2/fgd/kv3datawithfgdclass.h"

#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/kv3fgdtoolattr.h"
#include "tools/toolutils2/toolattr/toolattrhandle.h"

CKV3DataWithFGDClass::CKV3DataWithFGDClass( const CGameData *pGameData, const CGameDataClass *pClass ) : m_pGameData( pGameData ), m_pClass( pClass )
{
	m_KV3.SetToEmptyTable();
}

HToolAttrTableInstance CKV3DataWithFGDClass::GetHandle( IToolAttrNotifyRoot *pNotifyRoot )
{
	static const uint32_t s_nTag = ToolAttrTypeTag( "CBaseKV3DataWithFGDClass" );
	HToolAttrTableInstance handle;
	handle.m_pNotifyRoot = pNotifyRoot;
	handle.m_pszClassName = m_pClass ? m_pClass->GetName() : "";
	handle.m_nTypeTag = s_nTag;
	handle.m_pInstance = static_cast<CBaseKV3DataWithFGDClass *>( this );
	handle.m_pTable = this;
	return handle;
}

void CKV3DataWithFGDClass::GetAttributes( HToolAttrTableInstance handle, CUtlVector<IBaseToolAttr *> *pAttributes )
{
	CKV3FGDToolAttr::GetRootAttributes( &CToolAttrKV3FGDProvider<CBaseKV3DataWithFGDClass>::Get(), handle, pAttributes );
}

bool CKV3DataWithFGDClass::GetHelpInfo( HToolAttrTableInstance, CUtlString *pContext, CUtlString *pId ) const
{
	if ( !m_pClass )
		return false;
	pContext->Set( m_pClass->m_HelpContextName );
	pId->Format( "Element.%s", m_pClass->GetName() );
	return true;
}

bool CKV3DataWithFGDClass::GetDisplayName( HToolAttrTableInstance, CUtlString *pOut ) const
{
	if ( !m_pClass || m_pClass->m_FriendlyName.IsEmpty() )
		return false;
	pOut->Set( m_pClass->m_FriendlyName );
	return true;
}

