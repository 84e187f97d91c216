#include "core/containers/utlbuffer.h"

#include <cstdarg>
#include <cstdio>
#include <utility>

CUtlBuffer::CUtlBuffer( const void *pMemory, size_t nSize, unsigned nFlags )
	: m_pExternal( static_cast<const uint8_t *>( pMemory ) ), m_nPut( nSize ), m_nFlags( nFlags | READ_ONLY )
{
	static const uint8_t s_Empty = 0;
	if ( !m_pExternal )
	{
		m_pExternal = &s_Empty;
		m_nPut = 0;
	}
}

CUtlBuffer::CUtlBuffer( CUtlBuffer &&other ) noexcept
{
	*this = std::move( other );
}

CUtlBuffer &CUtlBuffer::operator=( CUtlBuffer &&other ) noexcept
{
	m_Storage = std::move( other.m_Storage );
	m_pExternal = std::exchange( other.m_pExternal, nullptr );
	m_nPut = std::exchange( other.m_nPut, 0 );
	m_nGet = std::exchange( other.m_nGet, 0 );
	m_nFlags = std::exchange( other.m_nFlags, 0 );
	return *this;
}

const char *CUtlBuffer::String() const
{
	if ( m_pExternal )
		return reinterpret_cast<const char *>( m_pExternal ); // caller memory: terminated only if the caller did
	if ( m_Storage.empty() )
		return "";
	return reinterpret_cast<const char *>( m_Storage.data() );
}

void CUtlBuffer::EnsureCapacity( size_t nSize )
{
	if ( m_pExternal )
		return;
	if ( m_Storage.capacity() < nSize + 1 )
		m_Storage.reserve( nSize + 1 );
}

void CUtlBuffer::Put( const void *pData, size_t nSize )
{
	if ( m_pExternal || nSize == 0 )
		return;
	size_t nNeeded = m_nPut + nSize + 1;
	if ( m_Storage.capacity() < nNeeded )
		m_Storage.reserve( std::max( nNeeded, m_Storage.capacity() * 2 ) );
	m_Storage.resize( nNeeded );
	memcpy( m_Storage.data() + m_nPut, pData, nSize );
	m_nPut += nSize;
	m_Storage[ m_nPut ] = 0;
}

void CUtlBuffer::Printf( const char *pFormat, ... )
{
	char stackBuffer[ 512 ];
	va_list args;
	va_start( args, pFormat );
	va_list copy;
	va_copy( copy, args );
	int nLength = vsnprintf( stackBuffer, sizeof( stackBuffer ), pFormat, copy );
	va_end( copy );
	if ( nLength >= 0 && size_t( nLength ) < sizeof( stackBuffer ) )
	{
		Put( stackBuffer, size_t( nLength ) );
	}
	else if ( nLength >= 0 )
	{
		std::vector<char> big( size_t( nLength ) + 1 );
		vsnprintf( big.data(), big.size(), pFormat, args );
		Put( big.data(), size_t( nLength ) );
	}
	va_end( args );
}

size_t CUtlBuffer::Get( void *pData, size_t nSize )
{
	size_t nCount = std::min( nSize, GetBytesRemaining() );
	if ( nCount )
		memcpy( pData, Base() + m_nGet, nCount );
	m_nGet += nCount;
	return nCount;
}

void CUtlBuffer::Clear()
{
	m_nPut = m_nGet = 0;
	if ( !m_pExternal && !m_Storage.empty() )
	{
		m_Storage.resize( 1 );
		m_Storage[ 0 ] = 0;
	}
}

void CUtlBuffer::Purge()
{
	std::vector<uint8_t>().swap( m_Storage );
	m_pExternal = nullptr;
	m_nPut = m_nGet = 0;
}
