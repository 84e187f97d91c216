#include "core/kv3/kv3membername.h"

#include <cstring>

#include "core/kv3/kv3murmurhash.h"

uint32_t MurmurHash2( const void *pKey, size_t nLength, uint32_t nSeed )
{
	return KV3Murmur::Hash<false>( static_cast<const uint8_t *>( pKey ), nLength, nSeed );
}

uint32_t MurmurHash2LowerCase( const char *pString, size_t nLength, uint32_t nSeed )
{
	return KV3Murmur::Hash<true>( reinterpret_cast<const uint8_t *>( pString ), nLength, nSeed );
}

CKV3MemberName::CKV3MemberName( const char *pString )
	: CKV3MemberName( pString, pString ? strlen( pString ) : 0 )
{
}

CKV3MemberName::CKV3MemberName( const char *pString, size_t nLength )
	: m_nHash( MurmurHash2LowerCase( pString ? pString : "", pString ? nLength : 0, KV3_MEMBER_NAME_SEED ) ),
	  m_pString( pString ? pString : "" ), m_nLength( pString ? nLength : 0 )
{
}
