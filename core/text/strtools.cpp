#include "core/text/strtools.h"

#include "core/text/utlstring.h"

#include <algorithm>
#include <cctype>
#include <charconv>
#include <cmath>
#include <climits>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

static inline char ToLowerAscii( char c )
{
	return ( c >= 'A' && c <= 'Z' ) ? char( c + ( 'a' - 'A' ) ) : c;
}

static inline char ToUpperAscii( char c )
{
	return ( c >= 'a' && c <= 'z' ) ? char( c - ( 'a' - 'A' ) ) : c;
}

static inline const char *OrEmpty( const char *pString )
{
	return pString ? pString : "";
}

static inline bool IsBlank( char c )
{
	return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f' || c == '\v';
}

int V_strcmp( const char *pA, const char *pB )
{
	return strcmp( OrEmpty( pA ), OrEmpty( pB ) );
}

int V_strncmp( const char *pA, const char *pB, size_t nCount )
{
	return strncmp( OrEmpty( pA ), OrEmpty( pB ), nCount );
}

int V_strnicmp_fast( const char *pA, const char *pB, size_t nCount )
{
	pA = OrEmpty( pA );
	pB = OrEmpty( pB );
	for ( size_t i = 0; i < nCount; ++i )
	{
		unsigned char a = (unsigned char)ToLowerAscii( pA[ i ] );
		unsigned char b = (unsigned char)ToLowerAscii( pB[ i ] );
		if ( a != b )
			return a < b ? -1 : 1;
		if ( a == 0 )
			break;
	}
	return 0;
}

int V_stricmp_fast( const char *pA, const char *pB )
{
	return V_strnicmp_fast( pA, pB, SIZE_MAX );
}

const char *V_stristr_fast( const char *pHaystack, const char *pNeedle )
{
	pHaystack = OrEmpty( pHaystack );
	pNeedle = OrEmpty( pNeedle );
	size_t nNeedle = strlen( pNeedle );
	for ( const char *p = pHaystack; ; ++p )
	{
		if ( V_strnicmp_fast( p, pNeedle, nNeedle ) == 0 )
			return p;
		if ( !*p )
			return nullptr;
	}
}

bool V_StringHasPrefix_fast( const char *pString, const char *pPrefix )
{
	return V_strnicmp_fast( pString, pPrefix, V_strlen( pPrefix ) ) == 0;
}

bool V_StringHasSuffix_fast( const char *pString, const char *pSuffix )
{
	size_t nString = V_strlen( pString );
	size_t nSuffix = V_strlen( pSuffix );
	return nSuffix <= nString && V_stricmp_fast( pString + nString - nSuffix, pSuffix ) == 0;
}

size_t V_strlen( const char *pString )
{
	return pString ? strlen( pString ) : 0;
}

bool V_strncpy( char *pDest, const char *pSource, size_t nDestSize )
{
	if ( !pDest || nDestSize == 0 )
		return false;
	pSource = OrEmpty( pSource );
	size_t nLength = strlen( pSource );
	bool bFits = nLength < nDestSize;
	size_t nCopy = bFits ? nLength : nDestSize - 1;
	memmove( pDest, pSource, nCopy );
	pDest[ nCopy ] = 0;
	return bFits;
}

bool V_strncat( char *pDest, const char *pSource, size_t nDestSize )
{
	if ( !pDest || nDestSize == 0 )
		return false;
	size_t nHave = strnlen( pDest, nDestSize );
	if ( nHave == nDestSize )
	{
		pDest[ nDestSize - 1 ] = 0; // was not terminated within its size
		return false;
	}
	return V_strncpy( pDest + nHave, pSource, nDestSize - nHave );
}

int V_vsnprintf( char *pDest, size_t nDestSize, const char *pFormat, va_list args )
{
	if ( !pDest || nDestSize == 0 )
		return 0;
	int nLength = vsnprintf( pDest, nDestSize, OrEmpty( pFormat ), args );
	if ( nLength < 0 )
	{
		pDest[ 0 ] = 0;
		return 0;
	}
	return size_t( nLength ) < nDestSize ? nLength : int( nDestSize - 1 );
}

int V_snprintf( char *pDest, size_t nDestSize, const char *pFormat, ... )
{
	va_list args;
	va_start( args, pFormat );
	int nWritten = V_vsnprintf( pDest, nDestSize, pFormat, args );
	va_end( args );
	return nWritten;
}

void V_strlower_fast( char *pString )
{
	for ( char *p = pString; p && *p; ++p )
		*p = ToLowerAscii( *p );
}

void V_strupper_fast( char *pString )
{
	for ( char *p = pString; p && *p; ++p )
		*p = ToUpperAscii( *p );
}

int64_t V_atoi64( const char *pString )
{
	const char *p = OrEmpty( pString );
	while ( IsBlank( *p ) )
		++p;
	bool bNegative = false;
	if ( *p == '-' || *p == '+' )
		bNegative = *p++ == '-';
	int nBase = 10;
	if ( p[ 0 ] == '0' && ( p[ 1 ] == 'x' || p[ 1 ] == 'X' ) && isxdigit( (unsigned char)p[ 2 ] ) )
	{
		nBase = 16;
		p += 2;
	}
	// Accumulated as a negative number so INT64_MIN itself fits.
	int64_t nValue = 0;
	bool bOverflow = false;
	for ( ;; ++p )
	{
		int nDigit;
		if ( *p >= '0' && *p <= '9' )
			nDigit = *p - '0';
		else if ( nBase == 16 && ToLowerAscii( *p ) >= 'a' && ToLowerAscii( *p ) <= 'f' )
			nDigit = ToLowerAscii( *p ) - 'a' + 10;
		else
			break;
		if ( nValue < ( INT64_MIN + nDigit ) / nBase )
			bOverflow = true;
		else
			nValue = nValue * nBase - nDigit;
	}
	if ( bOverflow )
		return bNegative ? INT64_MIN : INT64_MAX;
	if ( bNegative )
		return nValue;
	return nValue == INT64_MIN ? INT64_MAX : -nValue;
}

int V_atoi( const char *pString )
{
	int64_t nValue = V_atoi64( pString );
	if ( nValue > INT_MAX )
		return INT_MAX;
	if ( nValue < INT_MIN )
		return INT_MIN;
	return int( nValue );
}

// Parses a number at p (after blanks and an optional '+'); answers the end or null.
static const char *ParseDouble( const char *p, double *pResult )
{
	while ( IsBlank( *p ) )
		++p;
	if ( *p == '+' && p[ 1 ] != '-' )
		++p;
	std::from_chars_result result = std::from_chars( p, p + strlen( p ), *pResult );
	if ( result.ec == std::errc::invalid_argument )
		return nullptr;
	// Out of range: from_chars leaves the value alone; clamp the way strtod does.
	if ( result.ec == std::errc::result_out_of_range )
	{
		const char *pExponent = strpbrk( p, "eE" );
		bool bTiny = pExponent && pExponent < result.ptr && pExponent[ 1 ] == '-';
		double flMagnitude = bTiny ? 0.0 : HUGE_VAL;
		*pResult = *p == '-' ? -flMagnitude : flMagnitude;
	}
	return result.ptr;
}

double V_atod( const char *pString )
{
	double flValue = 0.0;
	return ParseDouble( OrEmpty( pString ), &flValue ) ? flValue : 0.0;
}

float V_atof( const char *pString )
{
	return float( V_atod( pString ) );
}

bool V_StringToDouble( const char *pString, double *pResult )
{
	double flValue = 0.0;
	const char *pEnd = ParseDouble( OrEmpty( pString ), &flValue );
	if ( !pEnd )
		return false;
	while ( IsBlank( *pEnd ) )
		++pEnd;
	if ( *pEnd )
		return false;
	if ( pResult )
		*pResult = flValue;
	return true;
}

bool V_StringToInt64( const char *pString, int64_t *pResult )
{
	const char *p = OrEmpty( pString );
	while ( IsBlank( *p ) )
		++p;
	if ( *p == '+' && p[ 1 ] != '-' )
		++p;
	int nBase = 10;
	const char *pDigits = p;
	bool bNegative = *p == '-';
	if ( bNegative )
		++pDigits;
	if ( pDigits[ 0 ] == '0' && ( pDigits[ 1 ] == 'x' || pDigits[ 1 ] == 'X' ) )
	{
		nBase = 16;
		pDigits += 2;
	}
	// from_chars takes the sign itself only for base 10.
	int64_t nValue = 0;
	std::from_chars_result result;
	if ( nBase == 10 )
	{
		result = std::from_chars( p, p + strlen( p ), nValue, 10 );
	}
	else
	{
		uint64_t uMagnitude = 0;
		result = std::from_chars( pDigits, pDigits + strlen( pDigits ), uMagnitude, 16 );
		if ( result.ec == std::errc() )
		{
			if ( uMagnitude > ( bNegative ? uint64_t( INT64_MAX ) + 1 : uint64_t( INT64_MAX ) ) )
				return false;
			nValue = bNegative ? int64_t( 0 - uMagnitude ) : int64_t( uMagnitude );
		}
	}
	if ( result.ec != std::errc() )
		return false;
	const char *pEnd = result.ptr;
	while ( IsBlank( *pEnd ) )
		++pEnd;
	if ( *pEnd )
		return false;
	if ( pResult )
		*pResult = nValue;
	return true;
}

void V_qsort( void *pBase, size_t nCount, size_t nElementSize, V_qsortCompareFn_t fnCompare, void *pContext )
{
	if ( !pBase || nCount < 2 || nElementSize == 0 || !fnCompare )
		return;
	uint8_t *pBytes = static_cast<uint8_t *>( pBase );
	auto Element = [ & ]( size_t nIndex ) { return pBytes + nIndex * nElementSize; };

	// Bottom-up merge sort of indices: stable, and it only ever compares valid elements,
	// whatever the comparison answers.
	std::vector<size_t> order( nCount ), scratch( nCount );
	for ( size_t i = 0; i < nCount; ++i )
		order[ i ] = i;
	for ( size_t nWidth = 1; nWidth < nCount; nWidth *= 2 )
	{
		for ( size_t nLeft = 0; nLeft < nCount; nLeft += 2 * nWidth )
		{
			size_t nMid = std::min( nLeft + nWidth, nCount );
			size_t nRight = std::min( nLeft + 2 * nWidth, nCount );
			size_t a = nLeft, b = nMid, out = nLeft;
			while ( a < nMid && b < nRight )
			{
				if ( fnCompare( pContext, Element( order[ b ] ), Element( order[ a ] ) ) < 0 )
					scratch[ out++ ] = order[ b++ ];
				else
					scratch[ out++ ] = order[ a++ ];
			}
			while ( a < nMid )
				scratch[ out++ ] = order[ a++ ];
			while ( b < nRight )
				scratch[ out++ ] = order[ b++ ];
		}
		order.swap( scratch );
	}

	std::vector<uint8_t> sorted( nCount * nElementSize );
	for ( size_t i = 0; i < nCount; ++i )
		memcpy( sorted.data() + i * nElementSize, Element( order[ i ] ), nElementSize );
	memcpy( pBytes, sorted.data(), sorted.size() );
}

// Calls fnPiece for each stretch of the result in order; shared by both forms.
template <typename Fn>
static bool SubstituteInto( const char *pIn, const char *pMatch, const char *pReplace, bool bCaseSensitive, Fn &&fnPiece )
{
	pIn = OrEmpty( pIn );
	pReplace = OrEmpty( pReplace );
	size_t nMatch = V_strlen( pMatch );
	if ( nMatch == 0 )
	{
		fnPiece( pIn, strlen( pIn ) );
		return false;
	}
	size_t nReplace = strlen( pReplace );
	const char *p = pIn;
	while ( *p )
	{
		const char *pFound = bCaseSensitive ? strstr( p, pMatch ) : V_stristr_fast( p, pMatch );
		if ( !pFound )
			break;
		fnPiece( p, size_t( pFound - p ) );
		fnPiece( pReplace, nReplace );
		p = pFound + nMatch;
	}
	fnPiece( p, strlen( p ) );
	return true;
}

bool V_StrSubst( const char *pIn, const char *pMatch, const char *pReplace, char *pOut, size_t nOutSize, bool bCaseSensitive )
{
	if ( !pOut || nOutSize == 0 )
		return false;
	// Built aside first: pOut may be the same memory as pIn.
	std::string result;
	bool bReplaced = SubstituteInto( pIn, pMatch, pReplace, bCaseSensitive, [ & ]( const char *p, size_t n ) { result.append( p, n ); } );
	bool bFits = V_strncpy( pOut, result.c_str(), nOutSize );
	return bReplaced && bFits;
}

bool V_StrSubst( const char *pIn, const char *pMatch, const char *pReplace, CUtlString *pOut, bool bCaseSensitive )
{
	if ( !pOut )
		return false;
	std::string result;
	bool bReplaced = SubstituteInto( pIn, pMatch, pReplace, bCaseSensitive, [ & ]( const char *p, size_t n ) { result.append( p, n ); } );
	pOut->Set( result.c_str(), result.size() );
	return bReplaced;
}
