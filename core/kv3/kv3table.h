#pragma once
// The members of a KV3 table, in order. Internal to core/kv3: users go through KeyValues3.
//
// A table read from text or deep-copied is one allocation (see CKV3Builder): this header,
// the member records, the member values and the names. Members added later are allocated
// one by one; IsInBlock tells which is which when freeing.

#include <cstddef>
#include <cstdint>

#include "core/kv3/kv3membername.h"

class KeyValues3;

struct KV3Member_t
{
	uint32_t m_nHash;       // MurmurHash2 of the lower-cased name
	uint32_t m_nNameLength;
	const char *m_pName;    // NUL-terminated
	KeyValues3 *m_pValue;
};

class CKV3Table
{
public:
	static CKV3Table *Create();
	static void Destroy( CKV3Table *pTable );

	int Count() const { return m_nCount; }
	const KV3Member_t &Member( int nIndex ) const { return m_pMembers[ nIndex ]; }
	int Find( uint32_t nHash, const char *pName, size_t nLength ) const;
	int Find( const CKV3MemberName &name ) const { return Find( name.GetHashCode(), name.GetString(), name.GetLength() ); }
	// Appends a null member; the caller has checked that the name is absent.
	KeyValues3 *Append( const CKV3MemberName &name );
	void Remove( int nIndex );
	void RemoveAll();
	void Rename( int nIndex, const CKV3MemberName &name );

	// Small tables scan their hashes; from this size on a hash index answers lookups.
	static constexpr int INDEX_MIN_MEMBERS = 16;

private:
	friend class CKV3Builder;
	CKV3Table() = default;
	~CKV3Table() = default;

	bool IsInBlock( const void *p ) const;
	void FreeMember( const KV3Member_t &member );
	void Reserve( int nCapacity );
	void RebuildIndex();
	void IndexInsert( int nIndex );

	KV3Member_t *m_pMembers = nullptr;
	int32_t m_nCount = 0;
	int32_t m_nCapacity = 0;
	const uint8_t *m_pBlockEnd = nullptr; // the block runs from this object to here
	int32_t *m_pIndex = nullptr;          // open addressing, member index per slot, -1 when empty
	uint32_t m_nIndexMask = 0;
};

// ASCII case-insensitive equality of two texts of the same length, as member lookups use.
[[gnu::visibility( "hidden" )]] bool KV3NamesMatch( const char *pA, const char *pB, size_t nLength );
