#include "core/text/bufferstring.h"

#include "core/platform/memalloc.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

CBufferString::CBufferString( CBufferString &&other ) noexcept
{
	*this = std::move( other );
}

CBufferString &CBufferString::operator=( const CBufferString &other )
{
	if ( this != &other )
		Set( other.Get(), other.Length() );
	return *this;
}

CBufferString &CBufferString::operator=( CBufferString &&other ) noexcept
{
	if ( this == &other )
		return *this;
	if ( other.IsInline() )
	{
		Set( other.Get(), other.Length() );
		other.Clear();
		return *this;
	}
	Purge();
	m_pString = std::exchange( other.m_pString, other.m_Inline );
	m_nLength = std::exchange( other.m_nLength, 0 );
	m_nCapacity = std::exchange( other.m_nCapacity, INLINE_CAPACITY );
	other.m_Inline[ 0 ] = 0;
	return *this;
}

void CBufferString::EnsureCapacity( size_t nCapacity )
{
	if ( nCapacity <= m_nCapacity )
		return;
	size_t nNewCapacity = m_nCapacity * 2;
	if ( nNewCapacity < nCapacity )
		nNewCapacity = nCapacity;
	if ( IsInline() )
	{
		char *pHeap = static_cast<char *>( g_pMemAlloc->Alloc( nNewCapacity ) );
		memcpy( pHeap, m_Inline, m_nLength + 1 );
		m_pString = pHeap;
	}
	else
	{
		m_pString = static_cast<char *>( g_pMemAlloc->Realloc( m_pString, nNewCapacity ) );
	}
	m_nCapacity = nNewCapacity;
}

void CBufferString::Set( const char *pString )
{
	Set( pString, pString ? strlen( pString ) : 0 );
}

void CBufferString::Set( const char *pString, size_t nLength )
{
	if ( !pString )
		nLength = 0;
	// The source may be our own text: move rather than copy.
	if ( pString >= m_pString && pString <= m_pString + m_nLength )
	{
		memmove( m_pString, pString, nLength );
		m_nLength = nLength;
		m_pString[ m_nLength ] = 0;
		return;
	}
	m_nLength = 0;
	m_pString[ 0 ] = 0;
	Append( pString, nLength );
}

void CBufferString::Append( const char *pString )
{
	Append( pString, pString ? strlen( pString ) : 0 );
}

void CBufferString::Append( const char *pString, size_t nLength )
{
	if ( !pString || nLength == 0 )
		return;
	// Appending our own text: keep its offset, the storage may move.
	bool bSelf = pString >= m_pString && pString < m_pString + m_nCapacity;
	size_t nSelfOffset = bSelf ? size_t( pString - m_pString ) : 0;
	EnsureCapacity( m_nLength + nLength + 1 );
	if ( bSelf )
		pString = m_pString + nSelfOffset;
	memmove( m_pString + m_nLength, pString, nLength );
	m_nLength += nLength;
	m_pString[ m_nLength ] = 0;
}

// Formats aside before touching our own text, so an argument may be this very string
// ("s.Format( "%s/%s", s.Get(), pName )").
static std::string FormatAside( const char *pFormat, va_list args )
{
	char stackBuffer[ 512 ];
	va_list copy;
	va_copy( copy, args );
	int nLength = vsnprintf( stackBuffer, sizeof( stackBuffer ), pFormat, copy );
	va_end( copy );
	if ( nLength < 0 )
		return std::string();
	if ( size_t( nLength ) < sizeof( stackBuffer ) )
		return std::string( stackBuffer, size_t( nLength ) );
	std::string big( size_t( nLength ) + 1, '\0' );
	vsnprintf( big.data(), big.size(), pFormat, args );
	big.resize( size_t( nLength ) );
	return big;
}

size_t CBufferString::AppendFormatV( const char *pFormat, va_list args )
{
	std::string text = FormatAside( pFormat, args );
	Append( text.data(), text.size() );
	return m_nLength;
}

size_t CBufferString::Format( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	std::string text = FormatAside( pFormat, args );
	va_end( args );
	Set( text.data(), text.size() );
	return m_nLength;
}

size_t CBufferString::AppendFormat( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	size_t nLength = AppendFormatV( pFormat, args );
	va_end( args );
	return nLength;
}

const char *CBufferString::StripExtension()
{
	if ( const char *pExtension = V_GetFileExtension( m_pString ) )
		Truncate( size_t( pExtension - 1 - m_pString ) );
	return m_pString;
}

const char *CBufferString::StripTrailingSlash()
{
	while ( m_nLength > 0 && V_IsPathSeparator( m_pString[ m_nLength - 1 ] ) )
		m_pString[ --m_nLength ] = 0;
	return m_pString;
}

const char *CBufferString::ToLowerFast()
{
	V_strlower_fast( m_pString );
	return m_pString;
}

const char *CBufferString::ToUpperFast()
{
	V_strupper_fast( m_pString );
	return m_pString;
}

const char *CBufferString::FixSlashes( char cSeparator )
{
	V_FixSlashes( m_pString, cSeparator );
	return m_pString;
}

void CBufferString::Replace( char cFrom, char cTo )
{
	for ( size_t i = 0; i < m_nLength; ++i )
	{
		if ( m_pString[ i ] == cFrom )
			m_pString[ i ] = cTo;
	}
}

void CBufferString::Truncate( size_t nLength )
{
	if ( nLength >= m_nLength )
		return;
	m_nLength = nLength;
	m_pString[ m_nLength ] = 0;
}

bool CBufferString::IsEqual( const char *pOther ) const
{
	return V_strcmp( m_pString, pOther ) == 0;
}

bool CBufferString::IsEqual_FastCaseInsensitive( const char *pOther ) const
{
	return V_stricmp_fast( m_pString, pOther ) == 0;
}

void CBufferString::Purge()
{
	if ( !IsInline() )
		g_pMemAlloc->Free( m_pString );
	m_pString = m_Inline;
	m_nCapacity = INLINE_CAPACITY;
	m_nLength = 0;
	m_Inline[ 0 ] = 0;
}
