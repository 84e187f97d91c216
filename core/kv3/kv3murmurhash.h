#pragma once
// MurmurHash2 (32-bit) as an inline template, so the text reader hashes member names
// without a call through the library's exported MurmurHash2LowerCase. Internal to core/kv3.

#include <cstddef>
#include <cstdint>

namespace KV3Murmur
{
constexpr uint32_t MULTIPLIER = 0x5bd1e995;
constexpr int SHIFT = 24;

inline uint8_t LowerAscii( uint8_t c )
{
	return ( c >= 'A' && c <= 'Z' ) ? uint8_t( c + ( 'a' - 'A' ) ) : c;
}

// Lower-cases the ASCII letters among four bytes at once.
inline uint32_t LowerAscii4( uint32_t nBytes )
{
	uint32_t nLow7 = nBytes & 0x7f7f7f7f;
	uint32_t nAboveZ = nLow7 + 0x25252525; // top bit set where the byte is above 'Z'
	uint32_t nFromA = nLow7 + 0x3f3f3f3f;  // top bit set where the byte is 'A' or above
	uint32_t nAscii = ~nBytes & 0x80808080;
	uint32_t nUpper = nAscii & ( nFromA ^ nAboveZ );
	return nBytes | ( nUpper >> 2 );
}

// LOWER hashes the text as if lower-cased, without making a lower-cased copy.
template <bool LOWER>
inline uint32_t Hash( const uint8_t *pData, size_t nLength, uint32_t nSeed )
{
	uint32_t nHash = nSeed ^ uint32_t( nLength );
	while ( nLength >= 4 )
	{
		uint32_t k = uint32_t( pData[ 0 ] ) | uint32_t( pData[ 1 ] ) << 8 | uint32_t( pData[ 2 ] ) << 16 | uint32_t( pData[ 3 ] ) << 24;
		if constexpr ( LOWER )
			k = LowerAscii4( k );
		k *= MULTIPLIER;
		k ^= k >> SHIFT;
		k *= MULTIPLIER;
		nHash *= MULTIPLIER;
		nHash ^= k;
		pData += 4;
		nLength -= 4;
	}
	auto byteAt = []( const uint8_t *p, size_t i ) { return uint32_t( LOWER ? LowerAscii( p[ i ] ) : p[ i ] ); };
	switch ( nLength )
	{
	case 3:
		nHash ^= byteAt( pData, 2 ) << 16;
		[[fallthrough]];
	case 2:
		nHash ^= byteAt( pData, 1 ) << 8;
		[[fallthrough]];
	case 1:
		nHash ^= byteAt( pData, 0 );
		nHash *= MULTIPLIER;
		break;
	default:
		break;
	}
	nHash ^= nHash >> 13;
	nHash *= MULTIPLIER;
	nHash ^= nHash >> 15;
	return nHash;
}
} // namespace KV3Murmur
