#include "core/kv3/kv3array.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "core/kv3/keyvalues3.h"

CKV3Array *CKV3Array::Create()
{
	void *pMemory = malloc( sizeof( CKV3Array ) );
	CKV3Array *pArray = new ( pMemory ) CKV3Array;
	pArray->m_pBlockEnd = reinterpret_cast<const uint8_t *>( pArray + 1 );
	return pArray;
}

void CKV3Array::Destroy( CKV3Array *pArray )
{
	if ( !pArray )
		return;
	pArray->RemoveAll();
	if ( !pArray->IsInBlock( pArray->m_ppElements ) )
		free( pArray->m_ppElements );
	pArray->~CKV3Array();
	free( pArray );
}

bool CKV3Array::IsInBlock( const void *p ) const
{
	uintptr_t nAddress = reinterpret_cast<uintptr_t>( p );
	return nAddress >= reinterpret_cast<uintptr_t>( this ) && nAddress < reinterpret_cast<uintptr_t>( m_pBlockEnd );
}

void CKV3Array::FreeElement( KeyValues3 *pElement )
{
	if ( IsInBlock( pElement ) )
		pElement->~KeyValues3();
	else
		delete pElement;
}

void CKV3Array::Reserve( int nCapacity )
{
	if ( nCapacity <= m_nCapacity )
		return;
	auto **ppElements = static_cast<KeyValues3 **>( malloc( sizeof( KeyValues3 * ) * size_t( nCapacity ) ) );
	if ( m_nCount )
		memcpy( ppElements, m_ppElements, sizeof( KeyValues3 * ) * size_t( m_nCount ) );
	if ( !IsInBlock( m_ppElements ) )
		free( m_ppElements );
	m_ppElements = ppElements;
	m_nCapacity = nCapacity;
}

KeyValues3 *CKV3Array::InsertBefore( int nIndex )
{
	if ( nIndex < 0 || nIndex > m_nCount )
		return nullptr;
	if ( m_nCount == m_nCapacity )
		Reserve( m_nCapacity < 4 ? 4 : m_nCapacity * 2 );
	memmove( m_ppElements + nIndex + 1, m_ppElements + nIndex, sizeof( KeyValues3 * ) * size_t( m_nCount - nIndex ) );
	KeyValues3 *pElement = new KeyValues3;
	m_ppElements[ nIndex ] = pElement;
	++m_nCount;
	return pElement;
}

void CKV3Array::Remove( int nIndex )
{
	if ( nIndex < 0 || nIndex >= m_nCount )
		return;
	FreeElement( m_ppElements[ nIndex ] );
	memmove( m_ppElements + nIndex, m_ppElements + nIndex + 1, sizeof( KeyValues3 * ) * size_t( m_nCount - nIndex - 1 ) );
	--m_nCount;
}

void CKV3Array::RemoveAll()
{
	for ( int i = 0; i < m_nCount; ++i )
		FreeElement( m_ppElements[ i ] );
	m_nCount = 0;
}
