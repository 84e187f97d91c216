#pragma once
// The key of a KV3 table member: the 32-bit MurmurHash2 (seed 0x31415926) of the
// lower-cased name, with the name's text. Lookups compare the hash, then the text
// ignoring case.

#include <cstddef>
#include <cstdint>

// MurmurHash2 of the bytes as given.
uint32_t MurmurHash2( const void *pKey, size_t nLength, uint32_t nSeed );
// MurmurHash2 of the text lower-cased (ASCII), as KV3 keys and tool attribute type tags use.
uint32_t MurmurHash2LowerCase( const char *pString, size_t nLength, uint32_t nSeed );

constexpr uint32_t KV3_MEMBER_NAME_SEED = 0x31415926;

class CKV3MemberName
{
public:
	CKV3MemberName() = default;
	CKV3MemberName( const char *pString );                 // hashes the text
	CKV3MemberName( const char *pString, size_t nLength ); // text need not be terminated; it must outlive the name
	CKV3MemberName( uint32_t nHash, const char *pString, size_t nLength ) : m_nHash( nHash ), m_pString( pString ), m_nLength( nLength ) {}

	uint32_t GetHashCode() const { return m_nHash; }
	const char *GetString() const { return m_pString; }
	size_t GetLength() const { return m_nLength; }

private:
	uint32_t m_nHash = 0;
	const char *m_pString = "";
	size_t m_nLength = 0;
};
