#include "core/text/utlstring.h"

#include "core/text/pathtools.h"
#include "core/text/strtools.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <utility>

// Formats aside before touching the storage, so an argument may be this very string
// ("s.Format( "%s/%s", s.Get(), pName )").
static int FormatAside( std::string *pResult, const char *pFormat, va_list args )
{
	char stackBuffer[ 256 ];
	va_list copy;
	va_copy( copy, args );
	int nLength = vsnprintf( stackBuffer, sizeof( stackBuffer ), pFormat, copy );
	va_end( copy );
	if ( nLength < 0 )
		return nLength;
	if ( size_t( nLength ) < sizeof( stackBuffer ) )
	{
		pResult->assign( stackBuffer, size_t( nLength ) );
		return nLength;
	}
	pResult->resize( size_t( nLength ) + 1 );
	vsnprintf( pResult->data(), size_t( nLength ) + 1, pFormat, args );
	pResult->resize( size_t( nLength ) );
	return nLength;
}

void CUtlString::Set( const char *pString )
{
	m_Storage.assign( pString ? pString : "" );
}

void CUtlString::Set( const char *pString, size_t nLength )
{
	m_Storage.assign( pString ? pString : "", pString ? nLength : 0 );
}

int CUtlString::FormatV( const char *pFormat, va_list args )
{
	std::string text;
	int n = FormatAside( &text, pFormat, args );
	m_Storage = std::move( text );
	return n;
}

int CUtlString::Format( const char *pFormat, ... )
{
	std::string text;
	va_list args;
	va_start( args, pFormat );
	int n = FormatAside( &text, pFormat, args );
	va_end( args );
	m_Storage = std::move( text );
	return n;
}

int CUtlString::AppendFormat( const char *pFormat, ... )
{
	std::string text;
	va_list args;
	va_start( args, pFormat );
	int n = FormatAside( &text, pFormat, args );
	va_end( args );
	m_Storage += text;
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

void CUtlString::ToUpper()
{
	for ( char &c : m_Storage )
		c = char( toupper( (unsigned char)c ) );
}

bool CUtlString::IsEqual_CaseInsensitive( const char *pOther ) const
{
	return V_stricmp_fast( m_Storage.c_str(), pOther ) == 0;
}

const char *CUtlString::GetExtension() const
{
	const char *pExtension = V_GetFileExtension( m_Storage.c_str() );
	return pExtension ? pExtension : "";
}

const char *CUtlString::UnqualifiedFilename() const
{
	return V_UnqualifiedFileName( m_Storage.c_str() );
}

void CUtlString::Replace( char cFrom, char cTo )
{
	for ( char &c : m_Storage )
	{
		if ( c == cFrom )
			c = cTo;
	}
}

bool CUtlString::Replace( const char *pMatch, const char *pReplace, bool bCaseSensitive )
{
	CUtlString result;
	if ( !V_StrSubst( m_Storage.c_str(), pMatch, pReplace, &result, bCaseSensitive ) )
		return false;
	bool bChanged = result.m_Storage != m_Storage;
	m_Storage.swap( result.m_Storage );
	return bChanged;
}

void CUtlString::TrimWhitespace()
{
	const char *pBlanks = " \t\r\n\f\v";
	size_t nFirst = m_Storage.find_first_not_of( pBlanks );
	if ( nFirst == std::string::npos )
	{
		m_Storage.clear();
		return;
	}
	size_t nLast = m_Storage.find_last_not_of( pBlanks );
	m_Storage = m_Storage.substr( nFirst, nLast - nFirst + 1 );
}
