#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"

#include <string>

namespace
{
// MurmurHash64A; two seeds give the two words of a 128-bit name hash.
uint64_t MurmurHash64( const void *pKey, size_t nLength, uint64_t nSeed )
{
	constexpr uint64_t m = 0xc6a4a7935bd1e995ull;
	constexpr int r = 47;
	uint64_t h = nSeed ^ ( nLength * m );

	const unsigned char *pData = static_cast<const unsigned char *>( pKey );
	const unsigned char *pEnd = pData + ( nLength / 8 ) * 8;
	for ( ; pData != pEnd; pData += 8 )
	{
		uint64_t k;
		memcpy( &k, pData, sizeof( k ) );
		k *= m;
		k ^= k >> r;
		k *= m;
		h ^= k;
		h *= m;
	}

	switch ( nLength & 7 )
	{
	case 7: h ^= uint64_t( pData[ 6 ] ) << 48; [[fallthrough]];
	case 6: h ^= uint64_t( pData[ 5 ] ) << 40; [[fallthrough]];
	case 5: h ^= uint64_t( pData[ 4 ] ) << 32; [[fallthrough]];
	case 4: h ^= uint64_t( pData[ 3 ] ) << 24; [[fallthrough]];
	case 3: h ^= uint64_t( pData[ 2 ] ) << 16; [[fallthrough]];
	case 2: h ^= uint64_t( pData[ 1 ] ) << 8; [[fallthrough]];
	case 1:
		h ^= uint64_t( pData[ 0 ] );
		h *= m;
	}

	h ^= h >> r;
	h *= m;
	h ^= h >> r;
	return h;
}
} // namespace

void CPulseResourceName::Set( const char *pPath )
{
	m_Path.Set( pPath );
	if ( m_Path.IsEmpty() )
	{
		m_nHash0 = m_nHash1 = 0;
		return;
	}

	std::string normalised( m_Path.Get(), m_Path.Length() );
	for ( char &c : normalised )
	{
		if ( c == '\\' )
			c = '/';
		else if ( c >= 'A' && c <= 'Z' )
			c = char( c - 'A' + 'a' );
	}
	m_nHash0 = MurmurHash64( normalised.data(), normalised.size(), 0x5a4f4c5245534e30ull );
	m_nHash1 = MurmurHash64( normalised.data(), normalised.size(), 0x5a4f4c5245534e31ull );
}

void CPulseResourceName::Purge()
{
	m_Path.Purge();
	m_nHash0 = m_nHash1 = 0;
}
