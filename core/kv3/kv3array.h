#pragma once
// The elements of a KV3 array. Internal to core/kv3: users go through KeyValues3.
//
// Elements are held by pointer so each keeps its address while others are inserted.
// An array read from text or deep-copied is one allocation (see CKV3Builder); elements
// added later are allocated one by one.

#include <cstddef>
#include <cstdint>

class KeyValues3;

class CKV3Array
{
public:
	static CKV3Array *Create();
	static void Destroy( CKV3Array *pArray );

	int Count() const { return m_nCount; }
	KeyValues3 *Element( int nIndex ) const { return m_ppElements[ nIndex ]; }
	// Inserts a null element at nIndex, 0..Count().
	KeyValues3 *InsertBefore( int nIndex );
	void Remove( int nIndex );
	void RemoveAll();
	void Reserve( int nCapacity );

private:
	friend class CKV3Builder;
	CKV3Array() = default;
	~CKV3Array() = default;

	bool IsInBlock( const void *p ) const;
	void FreeElement( KeyValues3 *pElement );

	KeyValues3 **m_ppElements = nullptr;
	int32_t m_nCount = 0;
	int32_t m_nCapacity = 0;
	const uint8_t *m_pBlockEnd = nullptr; // the block runs from this object to here
};
