#include "tools/toolutils2/fgd/gamedatavariable.h"

#include "core/text/strtools.h"
#include "tools/toolutils2/fgd/gamedata.h"

const GameDataItem_t *CGameDataItemSet::FindItem( const char *pszValue ) const
{
	for ( const GameDataItem_t &item : m_Items )
	{
		if ( item.m_Value == pszValue )
			return &item;
	}
	int64_t nValue = 0;
	if ( !V_StringToInt64( pszValue, &nValue ) )
		return nullptr;
	for ( const GameDataItem_t &item : m_Items )
	{
		int64_t nItem = 0;
		if ( V_StringToInt64( item.m_Value, &nItem ) && nItem == nValue )
			return &item;
	}
	return nullptr;
}

bool CGameDataVariable::GetMetadataBool( const char *pszKey, bool bDefault ) const
{
	const KeyValues3 *pValue = m_KV3Metadata.FindMember( pszKey );
	if ( !pValue )
		return bDefault;
	if ( pValue->IsString() )
	{
		const char *pszText = pValue->GetString();
		return !V_stricmp_fast( pszText, "true" ) || !V_stricmp_fast( pszText, "yes" ) || V_atoi( pszText ) != 0;
	}
	if ( pValue->IsNull() )
		return true; // a bare key in brackets
	return pValue->GetBool( bDefault );
}

const char *CGameDataVariable::GetMetadataString( const char *pszKey, const char *pszDefault ) const
{
	const KeyValues3 *pValue = m_KV3Metadata.FindMember( pszKey );
	return pValue && pValue->IsString() ? pValue->GetString() : pszDefault;
}

int CGameDataVariable::GetMetadataInt( const char *pszKey, int nDefault ) const
{
	const KeyValues3 *pValue = m_KV3Metadata.FindMember( pszKey );
	if ( !pValue )
		return nDefault;
	if ( pValue->IsString() )
		return V_atoi( pValue->GetString() );
	return pValue->GetInt( nDefault );
}

const CGameDataClass *CGameDataVariable::GetStructClass() const
{
	if ( !m_pOwner )
		return nullptr;
	const char *pszUnderlying = GetMetadataString( "ParticleCompileBinaryIdenticalHack_underlying_struct" );
	if ( *pszUnderlying )
		return m_pOwner->FindClass( pszUnderlying );
	return m_FullType.m_Param.IsEmpty() ? nullptr : m_pOwner->FindClass( m_FullType.m_Param );
}

void CGameDataVariable::GetLegacyDefaultText( CUtlString *pOut ) const
{
	if ( GameDataTypeDefaultKind( GetType() ) == GDDEFAULT_INTEGER )
		pOut->Format( "%d", m_nLegacyDefaultInt );
	else
		pOut->Set( m_LegacyDefaultStr );
}
