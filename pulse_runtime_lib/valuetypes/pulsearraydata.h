#pragma once
// The value of a PVAL_ARRAY: a pointer to a shared, reference-counted block, or null for
// the empty array. A block never stays empty: removing its last element frees it, so
// every empty array is null and compares equal to every other. Assigning an array shares the block; any write first makes the
// writer's block unique (copy on write), so other holders never see the change.
//
// The block doesn't know its element type (it lives in the full type beside the value),
// so every operation takes it. Counts are not atomic: a block stays on one thread.

#include <cstddef>
#include <cstdint>

#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

class CPulseArrayData
{
public:
	CPulseArrayData( const CPulseArrayData & ) = delete;
	CPulseArrayData &operator=( const CPulseArrayData & ) = delete;

	uint16_t GetRefCount() const { return m_nRefCount; }
	uint16_t GetRevision() const { return m_nRevision; }
	int GetCapacity() const { return int( m_nCapacity ); }

	// Reading. A null array has no elements.
	static int GetCount( const CPulseArrayData *pArray ) { return pArray ? int( pArray->m_nCount ) : 0; }
	// Null when the index is out of range.
	static const void *GetElement( const CPulseArrayData *pArray, const CPulseValueFullType &elementType, int nIndex );

	// Sharing. *ppTarget takes a reference to pSource (dropping its old one).
	static void Assign( CPulseArrayData **ppTarget, CPulseArrayData *pSource, const CPulseValueFullType &elementType );
	// Drops the reference; the last one destroys the elements and the block. Leaves null.
	static void Release( CPulseArrayData **ppArray, const CPulseValueFullType &elementType );

	// Writing; each first makes *ppArray unique, building a block if it was null.
	static void MakeUnique( CPulseArrayData **ppArray, const CPulseValueFullType &elementType );
	// Null when the index is out of range.
	static void *GetElementForWrite( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nIndex );
	// New elements take the element type's default; removed ones are destroyed.
	// Writes to a shared array leave the other holders' arrays as they were.
	static void SetCount( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nCount );
	// Copies the value in (null means the default); returns the new element's index.
	static int AddToTail( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, const void *pValue );
	// nIndex may equal the count; false when it is out of range.
	static bool InsertBefore( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nIndex, const void *pValue );
	static bool Remove( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, int nIndex );
	static void RemoveAll( CPulseArrayData **ppArray, const CPulseValueFullType &elementType );

	// The same block, or both present with equal counts and equal elements.
	static bool IsEqual( const CPulseArrayData *pA, const CPulseArrayData *pB, const CPulseValueFullType &elementType );

private:
	// Elements start here so that 16-byte aligned types (transforms, variants) stay aligned.
	static constexpr size_t ELEMENTS_OFFSET = 16;
	static constexpr size_t BLOCK_ALIGNMENT = 16;

	CPulseArrayData() = default;
	static CPulseArrayData *Allocate( size_t nElementSize, uint32_t nCapacity, uint16_t nRevision );
	static void Free( CPulseArrayData *pArray );
	static CPulseArrayData *CloneBlock( const CPulseArrayData *pSource, const CPulseValueFullType &elementType, uint16_t nRevision );
	static void Reserve( CPulseArrayData **ppArray, const CPulseValueFullType &elementType, uint32_t nNeeded );
	static void ReleaseIfEmpty( CPulseArrayData **ppArray, const CPulseValueFullType &elementType );

	unsigned char *Elements() { return reinterpret_cast<unsigned char *>( this ) + ELEMENTS_OFFSET; }
	const unsigned char *Elements() const { return reinterpret_cast<const unsigned char *>( this ) + ELEMENTS_OFFSET; }

	uint16_t m_nRefCount = 1;
	uint16_t m_nRevision = 0;
	uint32_t m_nCount = 0;
	uint32_t m_nCapacity = 0;
};
static_assert( sizeof( CPulseArrayData ) <= 16 );
