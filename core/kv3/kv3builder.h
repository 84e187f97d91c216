#pragma once
// Builds whole KV3 containers in one allocation each. Internal to core/kv3.
//
// Reading and deep copies make most containers, and a malloc per value and per name
// would dominate their cost; a container built here holds its records, its values, its
// member names and its values' strings in a single block.

#include <cstddef>
#include <cstdint>

#include "core/kv3/keyvalues3.h"

// A value that has been read but not placed yet. The reader collects a container's
// values like this, then makes the container from them at its closing bracket.
struct KV3PendingValue_t
{
	const char *m_pName; // member name (tables only); need not be NUL-terminated
	uint32_t m_nNameLength;
	uint32_t m_nNameHash;
	size_t m_nSourceOffset; // where the reader found the member name, for its messages
	KV3BasicType_t m_eType;
	KV3SubType_t m_eSubType;
	union
	{
		bool m_bValue;
		int64_t m_nValue;
		uint64_t m_uValue;
		double m_flValue;
		struct
		{
			const char *m_pData; // strings and blobs; must live until the container is built
			size_t m_nSize;
		} m_Bytes;
		CKV3Table *m_pTable; // owned by the pending value until it is placed
		CKV3Array *m_pArray;
	};
};

class [[gnu::visibility( "hidden" )]] CKV3Builder
{
public:
	// Both take over the containers among the values; table member names must be distinct.
	static CKV3Table *BuildTable( const KV3PendingValue_t *pValues, size_t nCount );
	static CKV3Array *BuildArray( const KV3PendingValue_t *pValues, size_t nCount );
	// Makes pDest (which holds no data) the value, with strings in memory of its own.
	static void Adopt( KeyValues3 *pDest, const KV3PendingValue_t &value );
	// Frees the containers of a value that will never be placed.
	static void FreePending( const KV3PendingValue_t &value );

	static CKV3Table *CopyTable( const CKV3Table &source );
	static CKV3Array *CopyArray( const CKV3Array &source );
	// Deep copy into pDest, which holds no data.
	static void CopyValue( KeyValues3 *pDest, const KeyValues3 &source );
	// A pending value with deep copies of value's containers; its strings and blobs still
	// point at value's data.
	static KV3PendingValue_t CopyToPending( const KeyValues3 &value );

private:
	// Source gives Count(), TextSize( i ) (name and payload bytes) and Get( i ).
	template <typename Source> static CKV3Table *MakeTable( const Source &source );
	template <typename Source> static CKV3Array *MakeArray( const Source &source );
	static void Place( KeyValues3 *pSlot, const KV3PendingValue_t &value, char *&pText );
};
