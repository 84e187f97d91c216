#include "core/kv3/kv3builder.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "core/kv3/kv3array.h"
#include "core/kv3/kv3table.h"

static_assert( sizeof( CKV3Table ) % alignof( KV3Member_t ) == 0 && sizeof( KV3Member_t ) % alignof( KeyValues3 ) == 0 );
static_assert( sizeof( CKV3Array ) % alignof( KeyValues3 * ) == 0 && sizeof( KeyValues3 * ) % alignof( KeyValues3 ) == 0 );

namespace
{
// Empty strings and blobs share this instead of memory of their own.
char s_EmptyBytes[ 1 ] = { 0 };

bool HasPayload( KV3BasicType_t eType )
{
	return eType == KV3_TYPE_STRING || eType == KV3_TYPE_BINARY_BLOB;
}

// Bytes a string or blob takes in a block: strings keep their terminating NUL.
size_t PayloadSize( KV3BasicType_t eType, size_t nSize )
{
	if ( nSize == 0 || !HasPayload( eType ) )
		return 0;
	return eType == KV3_TYPE_STRING ? nSize + 1 : nSize;
}

size_t PayloadSize( const KeyValues3 &value )
{
	if ( value.IsString() )
		return PayloadSize( KV3_TYPE_STRING, value.GetStringLength() );
	if ( value.GetType() == KV3_TYPE_BINARY_BLOB )
		return PayloadSize( KV3_TYPE_BINARY_BLOB, value.GetBinaryBlobSize() );
	return 0;
}

struct PendingTableSource_t
{
	const KV3PendingValue_t *m_pValues;
	size_t m_nCount;
	size_t Count() const { return m_nCount; }
	size_t TextSize( size_t i ) const { return m_pValues[ i ].m_nNameLength + 1 + PayloadSize( m_pValues[ i ].m_eType, m_pValues[ i ].m_Bytes.m_nSize ); }
	const KV3PendingValue_t &Get( size_t i ) const { return m_pValues[ i ]; }
};

struct PendingArraySource_t
{
	const KV3PendingValue_t *m_pValues;
	size_t m_nCount;
	size_t Count() const { return m_nCount; }
	size_t TextSize( size_t i ) const { return PayloadSize( m_pValues[ i ].m_eType, m_pValues[ i ].m_Bytes.m_nSize ); }
	const KV3PendingValue_t &Get( size_t i ) const { return m_pValues[ i ]; }
};

struct TableCopySource_t
{
	const CKV3Table &m_Table;
	size_t Count() const { return size_t( m_Table.Count() ); }
	size_t TextSize( size_t i ) const
	{
		const KV3Member_t &member = m_Table.Member( int( i ) );
		return member.m_nNameLength + 1 + PayloadSize( *member.m_pValue );
	}
	KV3PendingValue_t Get( size_t i ) const
	{
		const KV3Member_t &member = m_Table.Member( int( i ) );
		KV3PendingValue_t value = CKV3Builder::CopyToPending( *member.m_pValue );
		value.m_pName = member.m_pName;
		value.m_nNameLength = member.m_nNameLength;
		value.m_nNameHash = member.m_nHash;
		return value;
	}
};

struct ArrayCopySource_t
{
	const CKV3Array &m_Array;
	size_t Count() const { return size_t( m_Array.Count() ); }
	size_t TextSize( size_t i ) const { return PayloadSize( *m_Array.Element( int( i ) ) ); }
	KV3PendingValue_t Get( size_t i ) const { return CKV3Builder::CopyToPending( *m_Array.Element( int( i ) ) ); }
};

// Names always go to the block, even empty ones, because tables free names outside it.
char *CopyBytes( char *&pText, const char *pData, size_t nSize, bool bTerminate )
{
	char *pCopy = pText;
	if ( nSize )
		memcpy( pCopy, pData, nSize );
	pText += nSize;
	if ( bTerminate )
		*pText++ = 0;
	return pCopy;
}
} // namespace

void CKV3Builder::Place( KeyValues3 *pSlot, const KV3PendingValue_t &value, char *&pText )
{
	pSlot->m_eType = value.m_eType;
	pSlot->m_eSubType = value.m_eSubType;
	if ( HasPayload( value.m_eType ) )
	{
		size_t nSize = value.m_Bytes.m_nSize;
		pSlot->m_String.m_pChars = nSize ? CopyBytes( pText, value.m_Bytes.m_pData, nSize, value.m_eType == KV3_TYPE_STRING ) : s_EmptyBytes;
		pSlot->m_String.m_nLength = value.m_Bytes.m_nSize;
		pSlot->m_nFlags = KeyValues3::FLAG_BORROWED_DATA;
	}
	else if ( value.m_eType == KV3_TYPE_TABLE )
		pSlot->m_pTable = value.m_pTable;
	else if ( value.m_eType == KV3_TYPE_ARRAY )
		pSlot->m_pArray = value.m_pArray;
	else
		pSlot->m_uValue = value.m_uValue;
}

template <typename Source>
CKV3Table *CKV3Builder::MakeTable( const Source &source )
{
	size_t nCount = source.Count();
	size_t nTextSize = 0;
	for ( size_t i = 0; i < nCount; ++i )
		nTextSize += source.TextSize( i );

	// Layout: the table, its member records, its values, then names and strings.
	size_t nBlockSize = sizeof( CKV3Table ) + nCount * ( sizeof( KV3Member_t ) + sizeof( KeyValues3 ) ) + nTextSize;
	auto *pBlock = static_cast<uint8_t *>( malloc( nBlockSize ) );
	CKV3Table *pTable = new ( pBlock ) CKV3Table;
	pTable->m_pBlockEnd = pBlock + nBlockSize;
	auto *pMembers = reinterpret_cast<KV3Member_t *>( pBlock + sizeof( CKV3Table ) );
	auto *pSlots = reinterpret_cast<KeyValues3 *>( pMembers + nCount );
	char *pText = reinterpret_cast<char *>( pSlots + nCount );

	pTable->m_pMembers = nCount ? pMembers : nullptr;
	pTable->m_nCount = pTable->m_nCapacity = int32_t( nCount );
	for ( size_t i = 0; i < nCount; ++i )
	{
		const KV3PendingValue_t &value = source.Get( i ); // binds to a temporary for copy sources
		KV3Member_t &member = pMembers[ i ];
		member.m_nHash = value.m_nNameHash;
		member.m_nNameLength = value.m_nNameLength;
		member.m_pName = CopyBytes( pText, value.m_pName, value.m_nNameLength, true );
		member.m_pValue = new ( pSlots + i ) KeyValues3;
		Place( member.m_pValue, value, pText );
	}
	if ( nCount >= size_t( CKV3Table::INDEX_MIN_MEMBERS ) )
		pTable->RebuildIndex();
	return pTable;
}

template <typename Source>
CKV3Array *CKV3Builder::MakeArray( const Source &source )
{
	size_t nCount = source.Count();
	size_t nTextSize = 0;
	for ( size_t i = 0; i < nCount; ++i )
		nTextSize += source.TextSize( i );

	// Layout: the array, its element pointers, its elements, then strings.
	size_t nBlockSize = sizeof( CKV3Array ) + nCount * ( sizeof( KeyValues3 * ) + sizeof( KeyValues3 ) ) + nTextSize;
	auto *pBlock = static_cast<uint8_t *>( malloc( nBlockSize ) );
	CKV3Array *pArray = new ( pBlock ) CKV3Array;
	pArray->m_pBlockEnd = pBlock + nBlockSize;
	auto **ppElements = reinterpret_cast<KeyValues3 **>( pBlock + sizeof( CKV3Array ) );
	auto *pSlots = reinterpret_cast<KeyValues3 *>( ppElements + nCount );
	char *pText = reinterpret_cast<char *>( pSlots + nCount );

	pArray->m_ppElements = nCount ? ppElements : nullptr;
	pArray->m_nCount = pArray->m_nCapacity = int32_t( nCount );
	for ( size_t i = 0; i < nCount; ++i )
	{
		ppElements[ i ] = new ( pSlots + i ) KeyValues3;
		Place( ppElements[ i ], source.Get( i ), pText );
	}
	return pArray;
}

CKV3Table *CKV3Builder::BuildTable( const KV3PendingValue_t *pValues, size_t nCount )
{
	return MakeTable( PendingTableSource_t { pValues, nCount } );
}

CKV3Array *CKV3Builder::BuildArray( const KV3PendingValue_t *pValues, size_t nCount )
{
	return MakeArray( PendingArraySource_t { pValues, nCount } );
}

CKV3Table *CKV3Builder::CopyTable( const CKV3Table &source )
{
	return MakeTable( TableCopySource_t { source } );
}

CKV3Array *CKV3Builder::CopyArray( const CKV3Array &source )
{
	return MakeArray( ArrayCopySource_t { source } );
}

KV3PendingValue_t CKV3Builder::CopyToPending( const KeyValues3 &value )
{
	KV3PendingValue_t pending {};
	pending.m_eType = value.m_eType;
	pending.m_eSubType = value.m_eSubType;
	if ( HasPayload( value.m_eType ) )
	{
		pending.m_Bytes.m_pData = value.m_String.m_pChars;
		pending.m_Bytes.m_nSize = value.m_String.m_nLength;
	}
	else if ( value.m_eType == KV3_TYPE_TABLE )
		pending.m_pTable = CopyTable( *value.m_pTable );
	else if ( value.m_eType == KV3_TYPE_ARRAY )
		pending.m_pArray = CopyArray( *value.m_pArray );
	else
		pending.m_uValue = value.m_uValue;
	return pending;
}

void CKV3Builder::Adopt( KeyValues3 *pDest, const KV3PendingValue_t &value )
{
	pDest->m_eType = value.m_eType;
	pDest->m_eSubType = value.m_eSubType;
	pDest->m_nFlags = 0;
	if ( HasPayload( value.m_eType ) )
	{
		size_t nSize = value.m_Bytes.m_nSize;
		char *pCopy = s_EmptyBytes;
		if ( nSize )
		{
			pCopy = static_cast<char *>( malloc( nSize + 1 ) );
			memcpy( pCopy, value.m_Bytes.m_pData, nSize );
			pCopy[ nSize ] = 0;
		}
		else
		{
			pDest->m_nFlags = KeyValues3::FLAG_BORROWED_DATA;
		}
		pDest->m_String.m_pChars = pCopy;
		pDest->m_String.m_nLength = nSize;
	}
	else if ( value.m_eType == KV3_TYPE_TABLE )
		pDest->m_pTable = value.m_pTable;
	else if ( value.m_eType == KV3_TYPE_ARRAY )
		pDest->m_pArray = value.m_pArray;
	else
		pDest->m_uValue = value.m_uValue;
}

void CKV3Builder::CopyValue( KeyValues3 *pDest, const KeyValues3 &source )
{
	Adopt( pDest, CopyToPending( source ) );
}

void CKV3Builder::FreePending( const KV3PendingValue_t &value )
{
	if ( value.m_eType == KV3_TYPE_TABLE )
		CKV3Table::Destroy( value.m_pTable );
	else if ( value.m_eType == KV3_TYPE_ARRAY )
		CKV3Array::Destroy( value.m_pArray );
}
