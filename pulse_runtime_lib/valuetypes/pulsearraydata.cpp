#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "pulse_runtime_lib/valuetypes/pulsevalue.h"

namespace
{
// Large enough for the biggest element (a resource name) so inserts can stage a copy.
constexpr size_t MAX_ELEMENT_SIZE = 256;
constexpr uint16_t MAX_REF_COUNT = 0xFFFF;
constexpr uint32_t FIRST_CAPACITY = 4;
} // namespace

CPulseArrayData *CPulseArrayData::Allocate( size_t nElementSize, uint32_t nCapacity, uint16_t nRevision )
{
	void *pMemory = ::operator new( ELEMENTS_OFFSET + nElementSize * nCapacity, std::align_val_t( BLOCK_ALIGNMENT ) );
	CPulseArrayData *pArray = new ( pMemory ) CPulseArrayData;
	pArray->m_nRevision = nRevision;
	pArray->m_nCapacity = nCapacity;
	return pArray;
}

void CPulseArrayData::Free( CPulseArrayData *pArray )
{
	pArray->~CPulseArrayData();
	::operator delete( pArray, std::align_val_t( BLOCK_ALIGNMENT ) );
}

CPulseArrayData *CPulseArrayData::CloneBlock( const CPulseArrayData *pSource, const CPulseValueFullType &elementType, uint16_t nRevision )
{
	size_t nSize = PulseValue_GetSize( elementType );
	CPulseArrayData *pClone = Allocate( nSize, pSource->m_nCapacity, nRevision );
	for ( uint32_t i = 0; i < pSource->m_nCount; ++i )
		PulseValue_CopyConstruct( elementType, pClone->Elements() + i * nSize, pSource->Elements() + i * nSize );
	pClone->m_nCount = pSource->m_nCount;
	return pClone;
}

const void *CPulseArrayData::GetElement( const CPulseArrayData *pArray, const CPulseValueFullType &elementType, int nIndex )
{
	if ( nIndex < 0 || nIndex >= GetCount( pArray ) )
		return nullptr;
	return pArray->Elements() + size_t( nIndex ) * PulseValue_GetSize( elementType );
}

void CPulseArrayData::Assign( CPulseArrayData **ppTarget, CPulseArrayData *pSource, const CPulseValueFullType &elementType )
{
	if ( *ppTarget == pSource )
		return;
	CPulseArrayData *pShared = pSource;
	if ( pSource )
	{
		// A count that can't grow further means a copy instead of another share.
		if ( pSource->m_nRefCount == MAX_REF_COUNT )
			pShared = CloneBlock( pSource, elementType, uint16_t( pSource->m_nRevision + 1 ) );
		else
			++pSource->m_nRefCount;
	}
	Release( ppTarget, elementType );
	*ppTarget = pShared;
}

void CPulseArrayData::Release( CPulseArrayData **ppArray, const CPulseValueFullType &elementType )
{
	CPulseArrayData *pArray = *ppArray;
	*ppArray = nullptr;
	if ( !pArray || --pArray->m_nRefCount > 0 )
		return;
	size_t nSize = PulseValue_GetSize( elementType );
	for ( uint32_t i = 0; i < pArray->m_nCount; ++i )
		PulseValue_Destruct( elementType, pArray->Elements() + i * nSize );
	Free( pArray );
}

void CPulseArrayData::MakeUnique( CPulseArrayData **ppArray, const CPulseValueFullType &elementType )
{
	CPulseArrayData *pArray = *ppArray;
	if ( !pArray )
	{
		*ppArray = Allocate( PulseValue_GetSize( elementType ), 0, 0 );
		return;
	}
	if ( pArray->m_nRefCount == 1 )
		return;
	*ppArray = CloneBlock( pArray, elementType, uint16_t( pArray->m_nRevision + 1 ) );
	--pArray->m_nRefCount;
}

void CPulseArrayData::Reserve( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, uint32_t nNeeded )
{
	CPulseArrayData *pArray = *ppArray;
	if ( pArray->m_nCapacity >= nNeeded )
		return;
	uint64_t nGrown = pArray->m_nCapacity ? uint64_t( pArray->m_nCapacity ) * 2 : FIRST_CAPACITY;
	uint32_t nCapacity = uint32_t( std::min<uint64_t>( std::max<uint64_t>( nGrown, nNeeded ), UINT32_MAX ) );

	// Values are trivially relocatable, so the elements move as bytes.
	size_t nSize = PulseValue_GetSize( elementType );
	CPulseArrayData *pGrown = Allocate( nSize, nCapacity, pArray->m_nRevision );
	if ( pArray->m_nCount )
		memcpy( pGrown->Elements(), pArray->Elements(), nSize * pArray->m_nCount );
	pGrown->m_nCount = pArray->m_nCount;
	Free( pArray );
	*ppArray = pGrown;
}

void *CPulseArrayData::GetElementForWrite( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nIndex )
{
	if ( nIndex < 0 || nIndex >= GetCount( *ppArray ) )
		return nullptr;
	MakeUnique( ppArray, elementType );
	return ( *ppArray )->Elements() + size_t( nIndex ) * PulseValue_GetSize( elementType );
}

void CPulseArrayData::SetCount( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nCount )
{
	uint32_t nNewCount = uint32_t( std::max( nCount, 0 ) );
	MakeUnique( ppArray, elementType );
	Reserve( ppArray, elementType, nNewCount );
	CPulseArrayData *pArray = *ppArray;
	size_t nSize = PulseValue_GetSize( elementType );
	for ( uint32_t i = nNewCount; i < pArray->m_nCount; ++i )
		PulseValue_Destruct( elementType, pArray->Elements() + i * nSize );
	for ( uint32_t i = pArray->m_nCount; i < nNewCount; ++i )
		PulseValue_Construct( elementType, pArray->Elements() + i * nSize );
	pArray->m_nCount = nNewCount;
	ReleaseIfEmpty( ppArray, elementType );
}

int CPulseArrayData::AddToTail( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, const void *pValue )
{
	int nIndex = GetCount( *ppArray );
	InsertBefore( ppArray, elementType, nIndex, pValue );
	return nIndex;
}

bool CPulseArrayData::InsertBefore( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nIndex, const void *pValue )
{
	if ( nIndex < 0 || nIndex > GetCount( *ppArray ) )
		return false;

	// Stage the new element first: pValue may point into this very block, which the
	// unsharing or growth below can move or free.
	size_t nSize = PulseValue_GetSize( elementType );
	alignas( 16 ) unsigned char staged[ MAX_ELEMENT_SIZE ];
	if ( pValue )
		PulseValue_CopyConstruct( elementType, staged, pValue );
	else
		PulseValue_Construct( elementType, staged );

	MakeUnique( ppArray, elementType );
	Reserve( ppArray, elementType, ( *ppArray )->m_nCount + 1 );
	CPulseArrayData *pArray = *ppArray;
	unsigned char *pSlot = pArray->Elements() + size_t( nIndex ) * nSize;
	memmove( pSlot + nSize, pSlot, ( pArray->m_nCount - uint32_t( nIndex ) ) * nSize );
	memcpy( pSlot, staged, nSize );
	++pArray->m_nCount;
	return true;
}

bool CPulseArrayData::Remove( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nIndex )
{
	if ( nIndex < 0 || nIndex >= GetCount( *ppArray ) )
		return false;
	MakeUnique( ppArray, elementType );
	CPulseArrayData *pArray = *ppArray;
	size_t nSize = PulseValue_GetSize( elementType );
	unsigned char *pSlot = pArray->Elements() + size_t( nIndex ) * nSize;
	PulseValue_Destruct( elementType, pSlot );
	memmove( pSlot, pSlot + nSize, ( pArray->m_nCount - uint32_t( nIndex ) - 1 ) * nSize );
	--pArray->m_nCount;
	ReleaseIfEmpty( ppArray, elementType );
	return true;
}

void CPulseArrayData::RemoveAll( CPulseArrayData **ppArray, const CPulseValueFullType &elementType )
{
	Release( ppArray, elementType );
}

void CPulseArrayData::ReleaseIfEmpty( CPulseArrayData **ppArray, const CPulseValueFullType &elementType )
{
	if ( *ppArray && ( *ppArray )->m_nCount == 0 )
		Release( ppArray, elementType );
}

bool CPulseArrayData::IsEqual( const CPulseArrayData *pA, const CPulseArrayData *pB, const CPulseValueFullType &elementType )
{
	if ( pA == pB )
		return true;
	if ( !pA || !pB || pA->m_nCount != pB->m_nCount )
		return false;
	size_t nSize = PulseValue_GetSize( elementType );
	for ( uint32_t i = 0; i < pA->m_nCount; ++i )
	{
		if ( !PulseValue_IsEqual( elementType, pA->Elements() + i * nSize, pB->Elements() + i * nSize ) )
			return false;
	}
	return true;
}
