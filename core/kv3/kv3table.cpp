#include "core/kv3/kv3table.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "core/kv3/keyvalues3.h"

bool KV3NamesMatch( const char *pA, const char *pB, size_t nLength )
{
	for ( size_t i = 0; i < nLength; ++i )
	{
		unsigned char a = static_cast<unsigned char>( pA[ i ] );
		unsigned char b = static_cast<unsigned char>( pB[ i ] );
		if ( a == b )
			continue;
		if ( ( a | 0x20 ) != ( b | 0x20 ) || ( a | 0x20 ) < 'a' || ( a | 0x20 ) > 'z' )
			return false;
	}
	return true;
}

CKV3Table *CKV3Table::Create()
{
	void *pMemory = malloc( sizeof( CKV3Table ) );
	CKV3Table *pTable = new ( pMemory ) CKV3Table;
	pTable->m_pBlockEnd = reinterpret_cast<const uint8_t *>( pTable + 1 );
	return pTable;
}

void CKV3Table::Destroy( CKV3Table *pTable )
{
	if ( !pTable )
		return;
	pTable->RemoveAll();
	if ( !pTable->IsInBlock( pTable->m_pMembers ) )
		free( pTable->m_pMembers );
	pTable->~CKV3Table();
	free( pTable );
}

bool CKV3Table::IsInBlock( const void *p ) const
{
	uintptr_t nAddress = reinterpret_cast<uintptr_t>( p );
	return nAddress >= reinterpret_cast<uintptr_t>( this ) && nAddress < reinterpret_cast<uintptr_t>( m_pBlockEnd );
}

void CKV3Table::FreeMember( const KV3Member_t &member )
{
	if ( IsInBlock( member.m_pValue ) )
		member.m_pValue->~KeyValues3();
	else
		delete member.m_pValue;
	if ( !IsInBlock( member.m_pName ) )
		free( const_cast<char *>( member.m_pName ) );
}

int CKV3Table::Find( uint32_t nHash, const char *pName, size_t nLength ) const
{
	if ( m_pIndex )
	{
		for ( uint32_t nSlot = nHash & m_nIndexMask;; nSlot = ( nSlot + 1 ) & m_nIndexMask )
		{
			int32_t nIndex = m_pIndex[ nSlot ];
			if ( nIndex < 0 )
				return -1;
			const KV3Member_t &member = m_pMembers[ nIndex ];
			if ( member.m_nHash == nHash && member.m_nNameLength == nLength && KV3NamesMatch( member.m_pName, pName, nLength ) )
				return nIndex;
		}
	}
	for ( int i = 0; i < m_nCount; ++i )
	{
		const KV3Member_t &member = m_pMembers[ i ];
		if ( member.m_nHash == nHash && member.m_nNameLength == nLength && KV3NamesMatch( member.m_pName, pName, nLength ) )
			return i;
	}
	return -1;
}

void CKV3Table::Reserve( int nCapacity )
{
	if ( nCapacity <= m_nCapacity )
		return;
	auto *pMembers = static_cast<KV3Member_t *>( malloc( sizeof( KV3Member_t ) * size_t( nCapacity ) ) );
	if ( m_nCount )
		memcpy( pMembers, m_pMembers, sizeof( KV3Member_t ) * size_t( m_nCount ) );
	if ( !IsInBlock( m_pMembers ) )
		free( m_pMembers );
	m_pMembers = pMembers;
	m_nCapacity = nCapacity;
}

KeyValues3 *CKV3Table::Append( const CKV3MemberName &name )
{
	if ( m_nCount == m_nCapacity )
		Reserve( m_nCapacity < 4 ? 4 : m_nCapacity * 2 );
	char *pName = static_cast<char *>( malloc( name.GetLength() + 1 ) );
	memcpy( pName, name.GetString(), name.GetLength() );
	pName[ name.GetLength() ] = 0;

	KV3Member_t &member = m_pMembers[ m_nCount ];
	member.m_nHash = name.GetHashCode();
	member.m_nNameLength = uint32_t( name.GetLength() );
	member.m_pName = pName;
	member.m_pValue = new KeyValues3;
	++m_nCount;

	if ( m_pIndex && uint32_t( m_nCount ) * 2 <= m_nIndexMask + 1 )
		IndexInsert( m_nCount - 1 );
	else if ( m_nCount >= INDEX_MIN_MEMBERS )
		RebuildIndex();
	return member.m_pValue;
}

void CKV3Table::Remove( int nIndex )
{
	if ( nIndex < 0 || nIndex >= m_nCount )
		return;
	FreeMember( m_pMembers[ nIndex ] );
	memmove( m_pMembers + nIndex, m_pMembers + nIndex + 1, sizeof( KV3Member_t ) * size_t( m_nCount - nIndex - 1 ) );
	--m_nCount;
	RebuildIndex();
}

void CKV3Table::RemoveAll()
{
	for ( int i = 0; i < m_nCount; ++i )
		FreeMember( m_pMembers[ i ] );
	m_nCount = 0;
	RebuildIndex();
}

void CKV3Table::Rename( int nIndex, const CKV3MemberName &name )
{
	KV3Member_t &member = m_pMembers[ nIndex ];
	char *pName = static_cast<char *>( malloc( name.GetLength() + 1 ) );
	memcpy( pName, name.GetString(), name.GetLength() );
	pName[ name.GetLength() ] = 0;
	if ( !IsInBlock( member.m_pName ) )
		free( const_cast<char *>( member.m_pName ) );
	member.m_pName = pName;
	member.m_nNameLength = uint32_t( name.GetLength() );
	member.m_nHash = name.GetHashCode();
	RebuildIndex();
}

void CKV3Table::RebuildIndex()
{
	free( m_pIndex );
	m_pIndex = nullptr;
	m_nIndexMask = 0;
	if ( m_nCount < INDEX_MIN_MEMBERS )
		return;
	// At most half full, so probes stay short and there is always an empty slot.
	uint32_t nSlots = 32;
	while ( nSlots < uint32_t( m_nCount ) * 4 )
		nSlots *= 2;
	m_pIndex = static_cast<int32_t *>( malloc( sizeof( int32_t ) * nSlots ) );
	memset( m_pIndex, 0xff, sizeof( int32_t ) * nSlots );
	m_nIndexMask = nSlots - 1;
	for ( int i = 0; i < m_nCount; ++i )
		IndexInsert( i );
}

void CKV3Table::IndexInsert( int nIndex )
{
	uint32_t nSlot = m_pMembers[ nIndex ].m_nHash & m_nIndexMask;
	while ( m_pIndex[ nSlot ] >= 0 )
		nSlot = ( nSlot + 1 ) & m_nIndexMask;
	m_pIndex[ nSlot ] = nIndex;
}
