#include "core/text/utlstring.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>

static int AppendFormatV( std::string &storage, const char *pFormat, va_list args )
{
	va_list copy;
	va_copy( copy, args );
	char stackBuffer[ 256 ];
	int nLength = vsnprintf( stackBuffer, sizeof( stackBuffer ), pFormat, copy );
	va_end( copy );
	if ( nLength < 0 )
		return nLength;
	if ( size_t( nLength ) < sizeof( stackBuffer ) )
	{
		storage.append( stackBuffer, size_t( nLength ) );
		return nLength;
	}
	size_t nOld = storage.size();
	storage.resize( nOld + size_t( nLength ) + 1 );
	vsnprintf( storage.data() + nOld, size_t( nLength ) + 1, pFormat, args );
	storage.resize( nOld + size_t( nLength ) );
	return nLength;
}

int CUtlString::Format( const char *pFormat, ... )
{
	m_Storage.clear();
	va_list args;
	va_start( args, pFormat );
	int n = AppendFormatV( m_Storage, pFormat, args );
	va_end( args );
	return n;
}

int CUtlString::AppendFormat( const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	int n = AppendFormatV( m_Storage, pFormat, args );
	va_end( args );
	return n;
}

void CUtlString::FixSlashes( char cSeparator )
{
	for ( char &c : m_Storage )
	{
		if ( c == '/' || c == '\\' )
			c = cSeparator;
	}
}

static size_t LastSeparator( const std::string &s )
{
	return s.find_last_of( "/\\" );
}

CUtlString CUtlString::DirName() const
{
	size_t nSep = LastSeparator( m_Storage );
	if ( nSep == std::string::npos )
		return CUtlString();
	return CUtlString( m_Storage.data(), nSep );
}

void CUtlString::StripFilename()
{
	size_t nSep = LastSeparator( m_Storage );
	m_Storage.resize( nSep == std::string::npos ? 0 : nSep );
}

void CUtlString::StripExtension()
{
	size_t nDot = m_Storage.find_last_of( '.' );
	size_t nSep = LastSeparator( m_Storage );
	if ( nDot != std::string::npos && ( nSep == std::string::npos || nDot > nSep ) )
		m_Storage.resize( nDot );
}

void CUtlString::ToLower()
{
	for ( char &c : m_Storage )
		c = char( tolower( (unsigned char)c ) );
}
