#pragma once
// The KV3 tree: one value with a basic type and a subtype. Tables keep member order and
// find members by the MurmurHash2 of the lower-cased name, so lookups ignore case.
//
// Addresses are stable: a member value or array element keeps its address while
// siblings are added; only removing that value (or resetting its parent) frees it.

#include <cstddef>
#include <cstdint>

#include "core/kv3/kv3membername.h"

class CUtlString;
class CKV3Table;
class CKV3Array;

enum KV3BasicType_t : uint8_t
{
	KV3_TYPE_INVALID = 0,
	KV3_TYPE_NULL,
	KV3_TYPE_BOOL,
	KV3_TYPE_INT,
	KV3_TYPE_UINT,
	KV3_TYPE_DOUBLE,
	KV3_TYPE_STRING,
	KV3_TYPE_BINARY_BLOB,
	KV3_TYPE_ARRAY,
	KV3_TYPE_TABLE,
	KV3_TYPE_COUNT,
};

// Refines the basic type: the width of a number, the role of a string.
enum KV3SubType_t : uint8_t
{
	KV3_SUBTYPE_UNSPECIFIED = 0,
	KV3_SUBTYPE_INT8,
	KV3_SUBTYPE_INT16,
	KV3_SUBTYPE_INT32,
	KV3_SUBTYPE_INT64,
	KV3_SUBTYPE_UINT8,
	KV3_SUBTYPE_UINT16,
	KV3_SUBTYPE_UINT32,
	KV3_SUBTYPE_UINT64,
	KV3_SUBTYPE_FLOAT32,
	KV3_SUBTYPE_FLOAT64,
	KV3_SUBTYPE_STRING_RESOURCE_NAME, // a string naming a resource
	KV3_SUBTYPE_STRING_SOUNDEVENT,    // a string naming a sound event
	KV3_SUBTYPE_STRING_INTERFACE,     // reserved for user interface strings
	KV3_SUBTYPE_BINARY_BLOB_COMPRESSED, // reserved; stored uncompressed in memory
	KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS, // a table holding one embedded subclass
	KV3_SUBTYPE_COUNT,
};

// Text names of the basic types, "invalid" .. "table".
const char *KV3BasicTypeName( KV3BasicType_t eType );

class KeyValues3
{
public:
	KeyValues3(); // null
	KeyValues3( const KeyValues3 &other );             // deep copy
	KeyValues3 &operator=( const KeyValues3 &other );  // deep copy
	KeyValues3( KeyValues3 &&other ) noexcept;
	KeyValues3 &operator=( KeyValues3 &&other ) noexcept;
	~KeyValues3();

	KV3BasicType_t GetType() const { return m_eType; }
	KV3SubType_t GetSubType() const { return m_eSubType; }
	void SetSubType( KV3SubType_t eSubType ) { m_eSubType = eSubType; }
	const char *GetTypeAsString() const { return KV3BasicTypeName( m_eType ); }

	bool IsNull() const { return m_eType == KV3_TYPE_NULL; }
	bool IsTable() const { return m_eType == KV3_TYPE_TABLE; }
	bool IsArray() const { return m_eType == KV3_TYPE_ARRAY; }
	bool IsString() const { return m_eType == KV3_TYPE_STRING; }
	bool IsNumber() const { return m_eType == KV3_TYPE_INT || m_eType == KV3_TYPE_UINT || m_eType == KV3_TYPE_DOUBLE; }

	// Frees everything below and becomes null.
	void SetToNull();
	void SetToEmptyTable();
	void SetToEmptyArray();

	// Deep copy of another value into this one (this one's own children are freed).
	void CopyFrom( const KeyValues3 &other );
	// Deep equality: types, subtypes, values, member order and names, array order.
	bool IsEqual( const KeyValues3 &other ) const;

	// Scalar reads. Numbers convert between int, uint, double and bool; a value of
	// another kind answers the default.
	bool GetBool( bool bDefault = false ) const;
	int32_t GetInt( int32_t nDefault = 0 ) const;
	int64_t GetInt64( int64_t nDefault = 0 ) const;
	uint32_t GetUInt( uint32_t nDefault = 0 ) const;
	uint64_t GetUInt64( uint64_t nDefault = 0 ) const;
	float GetFloat( float flDefault = 0.0f ) const;
	double GetDouble( double flDefault = 0.0 ) const;
	// The string, or pDefault when the value is not a string.
	const char *GetString( const char *pDefault = "" ) const;
	size_t GetStringLength() const;
	const uint8_t *GetBinaryBlob() const; // null unless a blob
	size_t GetBinaryBlobSize() const;

	// Scalar writes: replace whatever the value held.
	void SetBool( bool bValue );
	void SetInt( int32_t nValue );   // int, subtype int32
	void SetInt64( int64_t nValue ); // int, subtype int64
	void SetUInt( uint32_t nValue ); // uint, subtype uint32
	void SetUInt64( uint64_t nValue );
	void SetFloat( float flValue );  // double, subtype float32
	void SetDouble( double flValue ); // double, subtype float64
	void SetString( const char *pString, KV3SubType_t eSubType = KV3_SUBTYPE_UNSPECIFIED );
	void SetString( const char *pString, size_t nLength, KV3SubType_t eSubType = KV3_SUBTYPE_UNSPECIFIED );
	void SetBinaryBlob( const uint8_t *pData, size_t nSize );

	// Tables. Member operations on a value that is not a table: reads answer
	// nothing, writes first turn the value into an empty table.
	int GetMemberCount() const;
	const char *GetMemberName( int nIndex ) const;
	CKV3MemberName GetMemberNameEx( int nIndex ) const;
	KeyValues3 *GetMember( int nIndex );
	const KeyValues3 *GetMember( int nIndex ) const;
	int FindMemberIndex( const CKV3MemberName &name ) const; // -1 when absent
	KeyValues3 *FindMember( const CKV3MemberName &name );
	const KeyValues3 *FindMember( const CKV3MemberName &name ) const;
	bool HasMember( const CKV3MemberName &name ) const { return FindMemberIndex( name ) >= 0; }
	// Finds the member or appends a new null member of that name.
	KeyValues3 *FindOrCreateMember( const CKV3MemberName &name, bool *pCreated = nullptr );
	bool RemoveMember( const CKV3MemberName &name );
	void RemoveMember( int nIndex ); // out of range: nothing happens
	void RemoveAllMembers();
	// Renames a member in place, keeping its position; false if absent or the new name is taken.
	bool RenameMember( const CKV3MemberName &oldName, const CKV3MemberName &newName );

	// Typed member reads with a default for a missing member or a value of another kind.
	bool GetMemberBool( const CKV3MemberName &name, bool bDefault = false ) const;
	int32_t GetMemberInt( const CKV3MemberName &name, int32_t nDefault = 0 ) const;
	int64_t GetMemberInt64( const CKV3MemberName &name, int64_t nDefault = 0 ) const;
	uint32_t GetMemberUInt( const CKV3MemberName &name, uint32_t nDefault = 0 ) const;
	uint64_t GetMemberUInt64( const CKV3MemberName &name, uint64_t nDefault = 0 ) const;
	float GetMemberFloat( const CKV3MemberName &name, float flDefault = 0.0f ) const;
	double GetMemberDouble( const CKV3MemberName &name, double flDefault = 0.0 ) const;
	const char *GetMemberString( const CKV3MemberName &name, const char *pDefault = "" ) const;

	// Typed member writes, creating the member when missing; they return the member.
	KeyValues3 *SetMemberBool( const CKV3MemberName &name, bool bValue );
	KeyValues3 *SetMemberInt( const CKV3MemberName &name, int32_t nValue );
	KeyValues3 *SetMemberInt64( const CKV3MemberName &name, int64_t nValue );
	KeyValues3 *SetMemberUInt( const CKV3MemberName &name, uint32_t nValue );
	KeyValues3 *SetMemberUInt64( const CKV3MemberName &name, uint64_t nValue );
	KeyValues3 *SetMemberFloat( const CKV3MemberName &name, float flValue );
	KeyValues3 *SetMemberDouble( const CKV3MemberName &name, double flValue );
	KeyValues3 *SetMemberString( const CKV3MemberName &name, const char *pValue, KV3SubType_t eSubType = KV3_SUBTYPE_UNSPECIFIED );
	KeyValues3 *SetMemberNull( const CKV3MemberName &name );
	KeyValues3 *SetMemberEmptyTable( const CKV3MemberName &name );
	KeyValues3 *SetMemberEmptyArray( const CKV3MemberName &name );

	// Arrays. Element operations on a value that is not an array: reads answer
	// nothing, writes first turn the value into an empty array.
	int GetArrayElementCount() const;
	KeyValues3 *GetArrayElement( int nIndex );
	const KeyValues3 *GetArrayElement( int nIndex ) const;
	KeyValues3 *ArrayAddToTail();                 // appends a null element
	KeyValues3 *ArrayInsertBefore( int nIndex );  // inserts a null element at 0..count; null when out of range
	void ArrayRemoveElement( int nIndex );        // out of range: nothing happens
	void ArrayRemoveAll();
	void ArrayReserve( int nCount );

	// Visits this value and every value below it, depth first in order, with the depth
	// (0 for this value). Returning false from the visitor skips that value's children.
	using WalkFn_t = bool ( * )( const KeyValues3 *pValue, int nDepth, void *pContext );
	void Walk( WalkFn_t fnVisit, void *pContext ) const;
	template <typename Fn> void WalkWith( Fn &&fn ) const
	{
		Walk( []( const KeyValues3 *pValue, int nDepth, void *pCtx ) { return ( *static_cast<Fn *>( pCtx ) )( pValue, nDepth ); }, &fn );
	}

private:
	friend class CKV3Builder;
	friend class CKV3TextWriter;

	// Set when m_String or m_Blob points into its parent container's block instead of
	// memory of its own (see CKV3Builder); such data is never freed by this value.
	static constexpr uint8_t FLAG_BORROWED_DATA = 0x1;

	CKV3Table *EnsureTable();
	CKV3Array *EnsureArray();
	void FreeData();
	void TakeFrom( KeyValues3 &other ); // moves other's data here; this must hold no data
	void ReplaceWith( KeyValues3 &&temp ); // frees this value's data, then takes temp's

	KV3BasicType_t m_eType = KV3_TYPE_NULL;
	KV3SubType_t m_eSubType = KV3_SUBTYPE_UNSPECIFIED;
	uint8_t m_nFlags = 0;
	union
	{
		bool m_bValue;
		int64_t m_nValue;
		uint64_t m_uValue;
		double m_flValue;
		struct
		{
			char *m_pChars; // NUL-terminated, owned
			size_t m_nLength;
		} m_String;
		struct
		{
			uint8_t *m_pBytes; // owned
			size_t m_nSize;
		} m_Blob;
		CKV3Table *m_pTable;
		CKV3Array *m_pArray;
	};
};
