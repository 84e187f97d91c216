#pragma once
// 32-bit FNV-1a hashes of text, for hash tables of names.

#include <cstddef>
#include <cstdint>

constexpr uint32_t FNV1A_32_BASIS = 0x811c9dc5u;
constexpr uint32_t FNV1A_32_PRIME = 16777619u;

constexpr uint32_t HashStringFNV1a( const char *pString, size_t nLength )
{
	uint32_t nHash = FNV1A_32_BASIS;
	for ( size_t i = 0; i < nLength; ++i )
		nHash = ( nHash ^ uint8_t( pString[ i ] ) ) * FNV1A_32_PRIME;
	return nHash;
}

// The hash of the text with ASCII letters lower-cased, for names that ignore case.
constexpr uint32_t HashStringFNV1aLowerCase( const char *pString, size_t nLength )
{
	uint32_t nHash = FNV1A_32_BASIS;
	for ( size_t i = 0; i < nLength; ++i )
	{
		char c = pString[ i ];
		if ( c >= 'A' && c <= 'Z' )
			c = char( c + ( 'a' - 'A' ) );
		nHash = ( nHash ^ uint8_t( c ) ) * FNV1A_32_PRIME;
	}
	return nHash;
}
