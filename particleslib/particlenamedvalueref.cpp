#include "particleslib/particlenamedvalueref.h"

#include <cstring>

#include "core/kv3/kv3membername.h"

uint32_t CParticleNamedValueRef::MakeToken( const char *pszName )
{
	if ( !pszName || !*pszName )
		return 0;
	return MurmurHash2LowerCase( pszName, std::strlen( pszName ), KV3_MEMBER_NAME_SEED );
}

void CParticleNamedValueRef::SetName( const char *pszName )
{
	m_Name.Set( pszName ? pszName : "" );
	m_nToken = MakeToken( m_Name.Get() );
}

void KV3Transfer_t<CParticleNamedValueRef>::Load( CParticleNamedValueRef &value, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	value.SetName( KV3TransferReadString( pContext, pValue ) );
	value.SetSlot( -1 );
}

void KV3Transfer_t<CParticleNamedValueRef>::Save( const CParticleNamedValueRef &value, KeyValues3 *pValue, CKV3TransferSaveContext * )
{
	pValue->SetString( value.GetName() );
}
