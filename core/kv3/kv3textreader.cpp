#include "core/kv3/kv3textreader.h"

#include <charconv>
#include <cfloat>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <limits>

#if defined( __SSE2__ )
#include <emmintrin.h>
#endif

#include "core/kv3/kv3murmurhash.h"
#include "core/kv3/kv3table.h"
#include "core/kv3/kv3textsyntax.h"
#include "core/text/utlstring.h"

namespace
{
constexpr size_t ARENA_CHUNK_SIZE = 64 * 1024;
constexpr size_t MESSAGE_NAME_MAX = 60; // longer names are cut in messages

bool StartsWith( const char *p, const char *pEnd, const char *pText )
{
	size_t nLength = strlen( pText );
	return size_t( pEnd - p ) >= nLength && memcmp( p, pText, nLength ) == 0;
}

const char *SkipSpacesAndTabs( const char *p, const char *pEnd )
{
	while ( p < pEnd && ( *p == ' ' || *p == '\t' ) )
		++p;
	return p;
}

int HexValue( char c )
{
	if ( c >= '0' && c <= '9' )
		return c - '0';
	if ( ( c | 0x20 ) >= 'a' && ( c | 0x20 ) <= 'f' )
		return ( c | 0x20 ) - 'a' + 10;
	return -1;
}

// Four hex digits at p (the caller checked there are four bytes); -1 when malformed.
int32_t ReadHex4( const char *p )
{
	int32_t nValue = 0;
	for ( int i = 0; i < 4; ++i )
	{
		int nDigit = HexValue( p[ i ] );
		if ( nDigit < 0 )
			return -1;
		nValue = nValue * 16 + nDigit;
	}
	return nValue;
}

char *AppendUtf8( char *pOut, uint32_t nCodePoint )
{
	if ( nCodePoint < 0x80 )
	{
		*pOut++ = char( nCodePoint );
	}
	else if ( nCodePoint < 0x800 )
	{
		*pOut++ = char( 0xc0 | ( nCodePoint >> 6 ) );
		*pOut++ = char( 0x80 | ( nCodePoint & 0x3f ) );
	}
	else if ( nCodePoint < 0x10000 )
	{
		*pOut++ = char( 0xe0 | ( nCodePoint >> 12 ) );
		*pOut++ = char( 0x80 | ( ( nCodePoint >> 6 ) & 0x3f ) );
		*pOut++ = char( 0x80 | ( nCodePoint & 0x3f ) );
	}
	else
	{
		*pOut++ = char( 0xf0 | ( nCodePoint >> 18 ) );
		*pOut++ = char( 0x80 | ( ( nCodePoint >> 12 ) & 0x3f ) );
		*pOut++ = char( 0x80 | ( ( nCodePoint >> 6 ) & 0x3f ) );
		*pOut++ = char( 0x80 | ( nCodePoint & 0x3f ) );
	}
	return pOut;
}

// Scanning loops over a pointer in a register; the reader's m_p is updated once after.
inline bool IsDigit( char c )
{
	return static_cast<unsigned>( c - '0' ) < 10u;
}

inline const char *SkipNameChars( const char *p, const char *pEnd )
{
	while ( p < pEnd && KV3CharIs( *p, KV3_CHAR_NAME ) )
		++p;
	return p;
}

inline const char *SkipPlainStringChars( const char *p, const char *pEnd )
{
	while ( p < pEnd && !KV3CharIs( *p, KV3_CHAR_STRING_STOP ) )
		++p;
	return p;
}

// Runs of blanks are mostly a line break and indentation; 16 bytes at a time where SSE2 is.
inline const char *SkipBlankRun( const char *p, const char *pEnd )
{
#if defined( __SSE2__ )
	const __m128i space = _mm_set1_epi8( ' ' ), tab = _mm_set1_epi8( '\t' ), lineFeed = _mm_set1_epi8( '\n' ), carriageReturn = _mm_set1_epi8( '\r' );
	while ( pEnd - p >= 16 )
	{
		__m128i bytes = _mm_loadu_si128( reinterpret_cast<const __m128i *>( p ) );
		__m128i blanks = _mm_or_si128( _mm_or_si128( _mm_cmpeq_epi8( bytes, space ), _mm_cmpeq_epi8( bytes, tab ) ),
		                               _mm_or_si128( _mm_cmpeq_epi8( bytes, lineFeed ), _mm_cmpeq_epi8( bytes, carriageReturn ) ) );
		unsigned nOthers = ~unsigned( _mm_movemask_epi8( blanks ) ) & 0xffffu;
		if ( nOthers )
			return p + __builtin_ctz( nOthers );
		p += 16;
	}
#endif
	while ( p < pEnd && KV3CharIs( *p, KV3_CHAR_BLANK ) )
		++p;
	return p;
}

// Exactly rounded significand * 10^exponent when the significand fits 53 bits and the
// power of ten is itself exact (Clinger's fast path): one IEEE operation on two exact
// operands. False sends the caller to the general routine; most numbers take this road.
bool ExactDecimalToDouble( uint64_t nDigits, int nExponent, bool bNegative, double *pOut )
{
	static const double s_PowersOfTen[] = { 1e0, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11,
	                                        1e12, 1e13, 1e14, 1e15, 1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22 };
	constexpr int MAX_EXACT_POWER = 22;
	if ( nDigits > ( uint64_t( 1 ) << 53 ) || nExponent < -MAX_EXACT_POWER || nExponent > MAX_EXACT_POWER )
		return false;
	double flValue = double( nDigits );
	flValue = nExponent < 0 ? flValue / s_PowersOfTen[ -nExponent ] : flValue * s_PowersOfTen[ nExponent ];
	*pOut = bNegative ? -flValue : flValue;
	return true;
}

// Whether rounding an exactly rounded double to float gives the float nearest to the
// decimal it came from: true unless the double sits exactly halfway between two floats
// (where the second rounding could go the wrong way) or outside the normal float range.
bool DoubleRoundsToFloatExactly( double flValue )
{
	if ( flValue == 0.0 )
		return true;
	double flMagnitude = flValue < 0 ? -flValue : flValue;
	if ( flMagnitude < double( FLT_MIN ) || flMagnitude > double( FLT_MAX ) )
		return false;
	uint64_t nBits;
	memcpy( &nBits, &flValue, sizeof( nBits ) );
	constexpr uint64_t DROPPED_BITS = ( uint64_t( 1 ) << 29 ) - 1; // double mantissa bits a float lacks
	return ( nBits & DROPPED_BITS ) != ( uint64_t( 1 ) << 28 );
}

struct NumberSuffix_t
{
	const char *m_pText;
	bool m_bUnsigned;
	KV3SubType_t m_eSubType; // UNSPECIFIED: the default for the value
};

const NumberSuffix_t s_IntegerSuffixes[] = {
	{ "", false, KV3_SUBTYPE_UNSPECIFIED },
	{ "i8", false, KV3_SUBTYPE_INT8 },
	{ "i16", false, KV3_SUBTYPE_INT16 },
	{ "i32", false, KV3_SUBTYPE_INT32 },
	{ "i64", false, KV3_SUBTYPE_INT64 },
	{ "u", true, KV3_SUBTYPE_UNSPECIFIED },
	{ "u8", true, KV3_SUBTYPE_UINT8 },
	{ "u16", true, KV3_SUBTYPE_UINT16 },
	{ "u32", true, KV3_SUBTYPE_UINT32 },
	{ "u64", true, KV3_SUBTYPE_UINT64 },
};
} // namespace

char *CKV3TextReader::CArena::Alloc( size_t nSize )
{
	if ( nSize > m_nLeft )
	{
		size_t nChunk = nSize > ARENA_CHUNK_SIZE ? nSize : ARENA_CHUNK_SIZE;
		m_Chunks.emplace_back( new char[ nChunk ] );
		m_pNext = m_Chunks.back().get();
		m_nLeft = nChunk;
	}
	char *p = m_pNext;
	m_pNext += nSize;
	m_nLeft -= nSize;
	return p;
}

CKV3TextReader::CKV3TextReader( const char *pBase, size_t nSize )
	: m_pBase( pBase ), m_pEnd( pBase + nSize ), m_p( pBase )
{
}

CKV3TextReader::~CKV3TextReader()
{
	for ( const KV3PendingValue_t &value : m_Pending )
		CKV3Builder::FreePending( value );
}

bool CKV3TextReader::Fail( const char *pAt, const char *pFormat, ... )
{
	if ( m_pErrorAt )
		return false;
	m_pErrorAt = pAt;
	char message[ 512 ];
	va_list args;
	va_start( args, pFormat );
	vsnprintf( message, sizeof( message ), pFormat, args );
	va_end( args );
	m_strError = message;
	return false;
}

void CKV3TextReader::LineColumn( const char *pAt, int *pLine, int *pColumn ) const
{
	int nLine = 1;
	const char *pLineStart = m_pBase;
	for ( const char *p = m_pBase; p < pAt; ++p )
	{
		if ( *p == '\n' )
		{
			++nLine;
			pLineStart = p + 1;
		}
	}
	// Columns count characters, not bytes: UTF-8 continuation bytes don't start one.
	int nColumn = 1;
	for ( const char *p = pLineStart; p < pAt; ++p )
	{
		if ( ( static_cast<unsigned char>( *p ) & 0xc0 ) != 0x80 )
			++nColumn;
	}
	*pLine = nLine;
	*pColumn = nColumn;
}

void CKV3TextReader::GetError( CUtlString *pError ) const
{
	if ( !pError )
		return;
	int nLine = 1, nColumn = 1;
	LineColumn( m_pErrorAt ? m_pErrorAt : m_pBase, &nLine, &nColumn );
	pError->Format( "%d:%d: %s", nLine, nColumn, m_strError.c_str() );
}

std::string CKV3TextReader::Describe( const char *pAt ) const
{
	if ( pAt >= m_pEnd )
		return "the end of the text";
	unsigned char c = static_cast<unsigned char>( *pAt );
	char text[ 32 ];
	if ( c == '\n' || c == '\r' )
		return "the end of the line";
	if ( c >= 0x20 && c < 0x7f )
		snprintf( text, sizeof( text ), "'%c'", c );
	else
		snprintf( text, sizeof( text ), "byte 0x%02x", c );
	return text;
}

std::string CKV3TextReader::Quote( const char *pText, size_t nLength )
{
	std::string quoted = "\"";
	for ( size_t i = 0; i < nLength && i < MESSAGE_NAME_MAX; ++i )
	{
		unsigned char c = static_cast<unsigned char>( pText[ i ] );
		quoted += ( c < 0x20 || c == 0x7f ) ? '?' : char( c );
	}
	if ( nLength > MESSAGE_NAME_MAX )
		quoted += "...";
	return quoted + "\"";
}

// Blanks stand between almost every two tokens, so the common case stays inline and
// comments take the slow road.
inline bool CKV3TextReader::SkipBlanks()
{
	const char *p = m_p;
	// A single space (around '=') needs no run.
	if ( p < m_pEnd && KV3CharIs( *p, KV3_CHAR_BLANK ) )
	{
		++p;
		if ( p < m_pEnd && KV3CharIs( *p, KV3_CHAR_BLANK ) )
			p = SkipBlankRun( p, m_pEnd );
	}
	m_p = p;
	if ( p == m_pEnd || *p != '/' )
		return true;
	return SkipComments();
}

bool CKV3TextReader::SkipComments()
{
	for ( ;; )
	{
		while ( m_p < m_pEnd && KV3CharIs( *m_p, KV3_CHAR_BLANK ) )
			++m_p;
		if ( m_pEnd - m_p < 2 || m_p[ 0 ] != '/' )
			return true;
		if ( m_p[ 1 ] == '/' )
		{
			const void *pBreak = memchr( m_p, '\n', size_t( m_pEnd - m_p ) );
			m_p = pBreak ? static_cast<const char *>( pBreak ) : m_pEnd;
		}
		else if ( m_p[ 1 ] == '*' )
		{
			const char *pOpen = m_p;
			const char *p = m_p + 2;
			for ( ;; )
			{
				p = static_cast<const char *>( memchr( p, '*', size_t( m_pEnd - p ) ) );
				if ( !p || m_pEnd - p < 2 )
					return Fail( pOpen, "unterminated comment: '/*' has no '*/'" );
				if ( p[ 1 ] == '/' )
					break;
				++p;
			}
			m_p = p + 2;
		}
		else
		{
			return true;
		}
	}
}

bool CKV3TextReader::ReadHeader( size_t *pOffset, const KV3ID_t &format, unsigned nFlags )
{
	const char *p = m_pBase + *pOffset;
	if ( StartsWith( p, m_pEnd, "\xEF\xBB\xBF" ) )
		p += 3;
	while ( p < m_pEnd && KV3CharIs( *p, KV3_CHAR_BLANK ) )
		++p;
	const char *pHeader = p;
	bool bMagic = StartsWith( p, m_pEnd, KV3_HEADER_MARK );
	if ( bMagic )
	{
		p = SkipSpacesAndTabs( p + strlen( KV3_HEADER_MARK ), m_pEnd );
		bMagic = StartsWith( p, m_pEnd, KV3_HEADER_MAGIC );
		p += bMagic ? strlen( KV3_HEADER_MAGIC ) : 0;
		bMagic = bMagic && p < m_pEnd && ( *p == ' ' || *p == '\t' );
	}
	if ( !bMagic )
		return Fail( pHeader, "missing KV3 header: the text must start with a line like \"--- kv3 encoding=text:<guid> format=<name>:<guid> ---\"" );

	struct Id_t
	{
		const char *m_pAt = nullptr;
		const char *m_pName = nullptr;
		size_t m_nNameLength = 0;
		uint64_t m_nGuid0 = 0, m_nGuid1 = 0;
	} encoding, fileFormat;

	for ( ;; )
	{
		p = SkipSpacesAndTabs( p, m_pEnd );
		if ( p == m_pEnd || *p == '\n' || *p == '\r' )
			return Fail( p, "unterminated KV3 header: it must end with \"---\" on its first line" );
		if ( StartsWith( p, m_pEnd, KV3_HEADER_MARK ) )
		{
			p += strlen( KV3_HEADER_MARK );
			break;
		}
		const char *pAttribute = p;
		while ( p < m_pEnd && KV3CharIs( *p, KV3_CHAR_NAME ) )
			++p;
		size_t nKeyLength = size_t( p - pAttribute );
		if ( nKeyLength == 0 || p == m_pEnd || *p != '=' )
			return Fail( p, "expected key=name:guid in the KV3 header, found %s", Describe( p ).c_str() );
		const char *pName = ++p;
		while ( p < m_pEnd && ( KV3CharIs( *p, KV3_CHAR_NAME ) || *p == '.' || *p == '-' ) )
			++p;
		size_t nNameLength = size_t( p - pName );
		if ( nNameLength == 0 || p == m_pEnd || *p != ':' )
			return Fail( p, "expected name:guid after \"%.*s=\" in the KV3 header", int( nKeyLength ), pAttribute );
		const char *pGuid = ++p;
		while ( p < m_pEnd && ( KV3CharIs( *p, KV3_CHAR_HEX ) || *p == '-' ) )
			++p;
		Id_t id;
		id.m_pAt = pName;
		id.m_pName = pName;
		id.m_nNameLength = nNameLength;
		if ( !KV3ParseGuid( pGuid, size_t( p - pGuid ), &id.m_nGuid0, &id.m_nGuid1 ) )
			return Fail( pGuid, "malformed GUID in the KV3 header: expected xxxxxxxx-xxxx-xxxx-xxxx-xxxxxxxxxxxx" );
		// Keys other than these two are skipped so that later writers may add some.
		if ( nKeyLength == 8 && memcmp( pAttribute, "encoding", 8 ) == 0 )
			encoding = id;
		else if ( nKeyLength == 6 && memcmp( pAttribute, "format", 6 ) == 0 )
			fileFormat = id;
	}
	p = SkipSpacesAndTabs( p, m_pEnd );
	if ( p < m_pEnd && *p != '\n' && *p != '\r' )
		return Fail( p, "unexpected text after the closing \"---\" of the KV3 header" );

	if ( !encoding.m_pAt )
		return Fail( pHeader, "the KV3 header names no encoding" );
	if ( encoding.m_nGuid0 != KV3_ENCODING_TEXT.m_nGuid0 || encoding.m_nGuid1 != KV3_ENCODING_TEXT.m_nGuid1 )
		return Fail( encoding.m_pAt, "unsupported encoding \"%.*s\": only \"text\" can be read", int( encoding.m_nNameLength ), encoding.m_pName );
	if ( !fileFormat.m_pAt )
		return Fail( pHeader, "the KV3 header names no format" );
	// A generic reader takes any format, as does a caller that asks for any.
	bool bAnyFormat = ( nFlags & KV3_LOAD_ANY_FORMAT ) ||
	                  ( format.m_nGuid0 == KV3_FORMAT_GENERIC.m_nGuid0 && format.m_nGuid1 == KV3_FORMAT_GENERIC.m_nGuid1 );
	if ( !bAnyFormat && ( fileFormat.m_nGuid0 != format.m_nGuid0 || fileFormat.m_nGuid1 != format.m_nGuid1 ) )
	{
		return Fail( fileFormat.m_pAt, "the file's format is \"%.*s\" but \"%s\" was expected", int( fileFormat.m_nNameLength ), fileFormat.m_pName,
		             format.m_pName ? format.m_pName : "" );
	}
	*pOffset = size_t( p - m_pBase );
	return true;
}

bool CKV3TextReader::ReadValue( size_t nOffset, KeyValues3 *pOut, size_t *pEnd )
{
	m_p = m_pBase + nOffset;
	m_Pending.clear();
	m_Frames.clear();
	m_Pending.push_back( KV3PendingValue_t {} );
	if ( !SkipBlanks() || !ReadValueInto( 0 ) )
		return false;

	while ( !m_Frames.empty() )
	{
		if ( !SkipBlanks() )
			return false;
		Frame_t &frame = m_Frames.back();
		if ( m_p == m_pEnd )
		{
			int nLine, nColumn;
			LineColumn( frame.m_pOpen, &nLine, &nColumn );
			return Fail( m_p, "unexpected end of the text: the %s opened at %d:%d has no closing '%c'", frame.m_bTable ? "table" : "array", nLine, nColumn,
			             frame.m_bTable ? '}' : ']' );
		}
		if ( frame.m_bTable )
		{
			if ( *m_p == '}' )
			{
				++m_p;
				if ( !CloseTable() )
					return false;
			}
			else if ( !ReadMember() )
			{
				return false;
			}
			continue;
		}
		if ( *m_p == ']' )
		{
			++m_p;
			CloseArray();
			continue;
		}
		if ( frame.m_bNeedComma )
		{
			if ( *m_p != ',' )
				return Fail( m_p, "expected ',' or ']' after an array element, found %s", Describe( m_p ).c_str() );
			++m_p;
			frame.m_bNeedComma = false;
			continue;
		}
		frame.m_bNeedComma = true; // before reading: the element may open a frame of its own
		m_Pending.push_back( KV3PendingValue_t {} );
		if ( !ReadValueInto( m_Pending.size() - 1 ) )
			return false;
	}

	CKV3Builder::Adopt( pOut, m_Pending[ 0 ] );
	m_Pending.clear();
	*pEnd = size_t( m_p - m_pBase );
	return true;
}

bool CKV3TextReader::ReadEnd( size_t nOffset )
{
	m_p = m_pBase + nOffset;
	if ( !SkipBlanks() )
		return false;
	if ( m_p != m_pEnd )
		return Fail( m_p, "unexpected %s after the value: a KV3 text holds one value (put several in a table)", Describe( m_p ).c_str() );
	return true;
}

bool CKV3TextReader::ReadMember()
{
	const char *pNameAt = m_p;
	const char *pName = nullptr;
	size_t nNameLength = 0;
	if ( KV3CharIs( *m_p, KV3_CHAR_NAME_START ) )
	{
		pName = m_p;
		m_p = SkipNameChars( m_p, m_pEnd );
		nNameLength = size_t( m_p - pName );
	}
	else if ( *m_p == '"' )
	{
		if ( StartsWith( m_p, m_pEnd, "\"\"\"" ) )
			return Fail( m_p, "a member name can't be a multi-line string" );
		if ( !ReadString( &pName, &nNameLength ) )
			return false;
	}
	else
	{
		return Fail( m_p, "expected a member name or '}', found %s (names other than letters, digits and '_' need double quotes)", Describe( m_p ).c_str() );
	}
	if ( nNameLength > UINT32_MAX )
		return Fail( pNameAt, "member name too long" );

	if ( !SkipBlanks() )
		return false;
	if ( m_p == m_pEnd || *m_p != '=' )
		return Fail( m_p, "expected '=' after member name %s, found %s", Quote( pName, nNameLength ).c_str(), Describe( m_p ).c_str() );
	++m_p;
	if ( !SkipBlanks() )
		return false;

	KV3PendingValue_t &value = m_Pending.emplace_back();
	value.m_pName = pName;
	value.m_nNameLength = uint32_t( nNameLength );
	value.m_nNameHash = KV3Murmur::Hash<true>( reinterpret_cast<const uint8_t *>( pName ), nNameLength, KV3_MEMBER_NAME_SEED );
	value.m_nSourceOffset = size_t( pNameAt - m_pBase );
	return ReadValueInto( m_Pending.size() - 1 );
}

bool CKV3TextReader::ReadValueInto( size_t nSlot )
{
	KV3SubType_t eTag = KV3_SUBTYPE_UNSPECIFIED;
	bool bTagged = false;
	for ( ;; )
	{
		if ( m_p == m_pEnd )
			break;
		char c = *m_p;
		if ( c == '{' || c == '[' )
			return OpenContainer( nSlot, c == '{', eTag );

		KV3PendingValue_t &value = m_Pending[ nSlot ];
		if ( c == '"' )
		{
			if ( !ReadString( &value.m_Bytes.m_pData, &value.m_Bytes.m_nSize ) )
				return false;
			value.m_eType = KV3_TYPE_STRING;
			value.m_eSubType = eTag;
			return true;
		}
		if ( c == '-' || IsDigit( c ) )
		{
			if ( !ReadNumber( value ) )
				return false;
			if ( bTagged )
				value.m_eSubType = eTag;
			return true;
		}
		if ( c == '#' )
		{
			if ( !ReadBlob( value ) )
				return false;
			value.m_eSubType = eTag;
			return true;
		}
		if ( !KV3CharIs( c, KV3_CHAR_NAME_START ) )
			break;

		const char *pWord = m_p;
		m_p = SkipNameChars( m_p, m_pEnd );
		size_t nWordLength = size_t( m_p - pWord );
		if ( m_p < m_pEnd && *m_p == ':' )
		{
			if ( bTagged )
				return Fail( pWord, "a value can have only one type tag" );
			if ( !KV3SubTypeFromTagName( pWord, nWordLength, &eTag ) )
				return Fail( pWord, "unknown type tag %s (known: resource soundevent interface compressed subclass int8 int16 int32 int64 uint8 uint16 uint32 uint64 float32 float64 unspecified)",
				             Quote( pWord, nWordLength ).c_str() );
			bTagged = true;
			++m_p;
			if ( !SkipBlanks() )
				return false;
			continue;
		}
		if ( !ReadWord( value, pWord, nWordLength ) )
			return false;
		if ( bTagged )
			value.m_eSubType = eTag;
		return true;
	}

	const KV3PendingValue_t &value = m_Pending[ nSlot ];
	if ( value.m_pName )
		return Fail( m_p, "expected a value for member %s, found %s", Quote( value.m_pName, value.m_nNameLength ).c_str(), Describe( m_p ).c_str() );
	return Fail( m_p, "expected a value, found %s", Describe( m_p ).c_str() );
}

bool CKV3TextReader::ReadWord( KV3PendingValue_t &value, const char *pWord, size_t nLength )
{
	auto is = [ & ]( const char *pKeyword ) { return strlen( pKeyword ) == nLength && memcmp( pKeyword, pWord, nLength ) == 0; };
	value.m_eSubType = KV3_SUBTYPE_UNSPECIFIED;
	if ( is( "null" ) )
	{
		value.m_eType = KV3_TYPE_NULL;
	}
	else if ( is( "true" ) || is( "false" ) )
	{
		value.m_eType = KV3_TYPE_BOOL;
		value.m_uValue = 0;
		value.m_bValue = nLength == 4;
	}
	else if ( is( "nan" ) || is( "inf" ) || is( "nanf" ) || is( "inff" ) )
	{
		value.m_eType = KV3_TYPE_DOUBLE;
		value.m_eSubType = nLength == 4 ? KV3_SUBTYPE_FLOAT32 : KV3_SUBTYPE_FLOAT64;
		value.m_flValue = pWord[ 0 ] == 'n' ? std::numeric_limits<double>::quiet_NaN() : std::numeric_limits<double>::infinity();
	}
	else
	{
		return Fail( pWord, "unknown word %s: text values need double quotes", Quote( pWord, nLength ).c_str() );
	}
	return true;
}

bool CKV3TextReader::ReadNumber( KV3PendingValue_t &value )
{
	const char *pStart = m_p;
	bool bNegative = *m_p == '-';
	if ( bNegative )
	{
		++m_p;
		if ( m_p < m_pEnd && *m_p == 'i' )
		{
			const char *pWord = m_p;
			m_p = SkipNameChars( m_p, m_pEnd );
			size_t nLength = size_t( m_p - pWord );
			if ( ( nLength == 3 && memcmp( pWord, "inf", 3 ) == 0 ) || ( nLength == 4 && memcmp( pWord, "inff", 4 ) == 0 ) )
			{
				value.m_eType = KV3_TYPE_DOUBLE;
				value.m_eSubType = nLength == 4 ? KV3_SUBTYPE_FLOAT32 : KV3_SUBTYPE_FLOAT64;
				value.m_flValue = -std::numeric_limits<double>::infinity();
				return true;
			}
			return Fail( pStart, "expected a number after '-'" );
		}
	}
	const char *p = m_p;
	if ( p == m_pEnd || !IsDigit( *p ) )
		return Fail( pStart, "expected a number after '-'" );

	// All digits, before and after the point, make one significand with a power of ten.
	uint64_t nDigits = 0;
	bool bOverflow = false;
	int nExponent = 0;
	auto addDigit = [ & ]( char c ) {
		uint64_t nDigit = uint64_t( c - '0' );
		if ( nDigits <= ( UINT64_MAX - 9 ) / 10 || nDigits <= ( UINT64_MAX - nDigit ) / 10 )
			nDigits = nDigits * 10 + nDigit;
		else
			bOverflow = true;
	};
	for ( ; p < m_pEnd && IsDigit( *p ); ++p )
		addDigit( *p );
	bool bReal = false;
	if ( p < m_pEnd && *p == '.' )
	{
		bReal = true;
		++p;
		if ( p == m_pEnd || !IsDigit( *p ) )
			return Fail( p, "expected a digit after the '.' of a number" );
		for ( ; p < m_pEnd && IsDigit( *p ); ++p )
		{
			addDigit( *p );
			--nExponent;
		}
	}
	if ( p < m_pEnd && ( *p == 'e' || *p == 'E' ) )
	{
		bReal = true;
		++p;
		bool bNegativeExponent = p < m_pEnd && *p == '-';
		if ( p < m_pEnd && ( *p == '+' || *p == '-' ) )
			++p;
		if ( p == m_pEnd || !IsDigit( *p ) )
			return Fail( p, "expected a digit in the exponent of a number" );
		int nWritten = 0;
		for ( ; p < m_pEnd && IsDigit( *p ); ++p )
			nWritten = nWritten < 100000 ? nWritten * 10 + ( *p - '0' ) : nWritten; // far out of range either way
		nExponent += bNegativeExponent ? -nWritten : nWritten;
	}
	m_p = p;
	const char *pNumberEnd = m_p;
	m_p = SkipNameChars( m_p, m_pEnd );
	const char *pSuffix = pNumberEnd;
	size_t nSuffixLength = size_t( m_p - pNumberEnd );
	int nNumberLength = int( pNumberEnd - pStart );
	if ( m_p < m_pEnd && *m_p == '.' )
		return Fail( pStart, "malformed number" );

	if ( bReal )
	{
		double flFast = 0;
		bool bFast = !bOverflow && ExactDecimalToDouble( nDigits, nExponent, bNegative, &flFast );
		if ( nSuffixLength == 0 )
		{
			double flValue = flFast;
			if ( !bFast )
			{
				std::from_chars_result result = std::from_chars( pStart, pNumberEnd, flValue );
				if ( result.ec != std::errc() || result.ptr != pNumberEnd )
					return Fail( pStart, "number %.*s is out of the range of a double", nNumberLength, pStart );
			}
			value.m_eSubType = KV3_SUBTYPE_FLOAT64;
			value.m_flValue = flValue;
		}
		else if ( nSuffixLength == 1 && *pSuffix == 'f' )
		{
			float flValue = float( flFast );
			if ( !bFast || !DoubleRoundsToFloatExactly( flFast ) )
			{
				std::from_chars_result result = std::from_chars( pStart, pNumberEnd, flValue );
				if ( result.ec != std::errc() || result.ptr != pNumberEnd )
					return Fail( pStart, "number %.*s is out of the range of a 32-bit float", nNumberLength, pStart );
			}
			value.m_eSubType = KV3_SUBTYPE_FLOAT32;
			value.m_flValue = flValue;
		}
		else
		{
			return Fail( pSuffix, "unknown suffix %s after a number: a real number takes only 'f' (32-bit float)", Quote( pSuffix, nSuffixLength ).c_str() );
		}
		value.m_eType = KV3_TYPE_DOUBLE;
		return true;
	}

	const NumberSuffix_t *pKind = nSuffixLength == 0 ? &s_IntegerSuffixes[ 0 ] : nullptr;
	for ( const NumberSuffix_t &suffix : s_IntegerSuffixes )
	{
		if ( pKind )
			break;
		if ( strlen( suffix.m_pText ) == nSuffixLength && memcmp( suffix.m_pText, pSuffix, nSuffixLength ) == 0 )
			pKind = &suffix;
	}
	if ( !pKind )
	{
		if ( nSuffixLength == 1 && *pSuffix == 'f' )
			return Fail( pSuffix, "a 32-bit float needs a '.' or an exponent, e.g. %.*s.0f", nNumberLength, pStart );
		return Fail( pSuffix, "unknown suffix %s after a number (known: i8 i16 i32 i64 u u8 u16 u32 u64, f after a real number)", Quote( pSuffix, nSuffixLength ).c_str() );
	}
	if ( bOverflow )
		return Fail( pStart, "integer %.*s is too large for 64 bits", nNumberLength, pStart );

	if ( pKind->m_bUnsigned )
	{
		if ( bNegative )
			return Fail( pStart, "an unsigned number can't be negative" );
		KV3SubType_t eSubType = pKind->m_eSubType == KV3_SUBTYPE_UNSPECIFIED ? KV3DefaultUIntSubType( nDigits ) : pKind->m_eSubType;
		if ( !KV3UIntFits( nDigits, eSubType ) )
			return Fail( pStart, "%.*s is too large for a %s", nNumberLength, pStart, KV3SubTypeTagName( eSubType ) );
		value.m_eType = KV3_TYPE_UINT;
		value.m_eSubType = eSubType;
		value.m_uValue = nDigits;
		return true;
	}

	int64_t nValue;
	if ( bNegative )
	{
		if ( nDigits > uint64_t( INT64_MAX ) + 1 )
			return Fail( pStart, "integer %.*s is too small for 64 bits", nNumberLength, pStart );
		nValue = nDigits == uint64_t( INT64_MAX ) + 1 ? INT64_MIN : -int64_t( nDigits );
	}
	else
	{
		if ( nDigits > uint64_t( INT64_MAX ) )
			return Fail( pStart, "integer %.*s is too large for a signed 64-bit number (add the suffix u for unsigned)", nNumberLength, pStart );
		nValue = int64_t( nDigits );
	}
	KV3SubType_t eSubType = pKind->m_eSubType == KV3_SUBTYPE_UNSPECIFIED ? KV3DefaultIntSubType( nValue ) : pKind->m_eSubType;
	if ( !KV3IntFits( nValue, eSubType ) )
		return Fail( pStart, "%.*s doesn't fit in an %s", nNumberLength, pStart, KV3SubTypeTagName( eSubType ) );
	value.m_eType = KV3_TYPE_INT;
	value.m_eSubType = eSubType;
	value.m_nValue = nValue;
	return true;
}

bool CKV3TextReader::ReadString( const char **ppText, size_t *pLength )
{
	if ( StartsWith( m_p, m_pEnd, "\"\"\"" ) )
		return ReadMultiLineString( ppText, pLength );

	const char *pOpen = m_p;
	const char *pStart = ++m_p;
	m_p = SkipPlainStringChars( m_p, m_pEnd );
	if ( m_p < m_pEnd && *m_p == '"' )
	{
		// No escapes: the text is used where it stands.
		*ppText = pStart;
		*pLength = size_t( m_p - pStart );
		++m_p;
		return true;
	}

	// Find the end first, so the decoded text (never longer) gets one allocation.
	const char *pClose = m_p;
	for ( ;; )
	{
		if ( pClose == m_pEnd || *pClose == '\n' || *pClose == '\r' )
			return Fail( pOpen, "unterminated string: a string in \"...\" ends on its own line (use \"\"\" for text on several lines)" );
		if ( *pClose == '"' )
			break;
		if ( *pClose == '\\' )
		{
			if ( m_pEnd - pClose < 2 || pClose[ 1 ] == '\n' || pClose[ 1 ] == '\r' )
				return Fail( pOpen, "unterminated string: a string in \"...\" ends on its own line (use \"\"\" for text on several lines)" );
			pClose += 2;
			continue;
		}
		++pClose;
	}

	char *pDecoded = m_Arena.Alloc( size_t( pClose - pStart ) );
	char *pOut = pDecoded;
	for ( const char *p = pStart; p < pClose; )
	{
		if ( *p != '\\' )
		{
			*pOut++ = *p++;
			continue;
		}
		const char *pEscape = p;
		char c = p[ 1 ];
		p += 2;
		switch ( c )
		{
		case '"': *pOut++ = '"'; break;
		case '\\': *pOut++ = '\\'; break;
		case '/': *pOut++ = '/'; break;
		case 'n': *pOut++ = '\n'; break;
		case 't': *pOut++ = '\t'; break;
		case 'r': *pOut++ = '\r'; break;
		case 'u':
		{
			int32_t nUnit = pClose - p >= 4 ? ReadHex4( p ) : -1;
			if ( nUnit < 0 )
				return Fail( pEscape, "\\u must be followed by four hex digits" );
			p += 4;
			uint32_t nCodePoint = uint32_t( nUnit );
			if ( nCodePoint >= 0xd800 && nCodePoint <= 0xdbff )
			{
				int32_t nLow = ( pClose - p >= 6 && p[ 0 ] == '\\' && p[ 1 ] == 'u' ) ? ReadHex4( p + 2 ) : -1;
				if ( nLow < 0xdc00 || nLow > 0xdfff )
					return Fail( pEscape, "\\u%04x starts a surrogate pair but no low surrogate \\udc00..\\udfff follows", nCodePoint );
				p += 6;
				nCodePoint = 0x10000 + ( ( nCodePoint - 0xd800 ) << 10 ) + ( uint32_t( nLow ) - 0xdc00 );
			}
			else if ( nCodePoint >= 0xdc00 && nCodePoint <= 0xdfff )
			{
				return Fail( pEscape, "\\u%04x is a low surrogate without a high surrogate before it", nCodePoint );
			}
			pOut = AppendUtf8( pOut, nCodePoint );
			break;
		}
		default:
			return Fail( pEscape, "unknown escape %s in a string (known: \\\" \\\\ \\/ \\n \\t \\r \\uXXXX)", Quote( pEscape, 2 ).c_str() );
		}
	}
	*ppText = pDecoded;
	*pLength = size_t( pOut - pDecoded );
	m_p = pClose + 1;
	return true;
}

bool CKV3TextReader::ReadMultiLineString( const char **ppText, size_t *pLength )
{
	const char *pOpen = m_p;
	const char *p = SkipSpacesAndTabs( m_p + 3, m_pEnd );
	if ( p < m_pEnd && *p == '\r' )
		++p;
	if ( p == m_pEnd || *p != '\n' )
		return Fail( p, "expected a line break after \"\"\": the text of a multi-line string starts on the next line" );
	const char *pContent = p + 1;

	// The closing """ is the first line that starts with it after blanks; those blanks
	// are the indent that every line of the text carries.
	const char *pLine = pContent;
	const char *pClose = nullptr;
	for ( ;; )
	{
		if ( pLine == m_pEnd )
			return Fail( pOpen, "unterminated multi-line string: no line with the closing \"\"\"" );
		const char *pFirst = SkipSpacesAndTabs( pLine, m_pEnd );
		if ( StartsWith( pFirst, m_pEnd, "\"\"\"" ) )
		{
			pClose = pFirst;
			break;
		}
		const void *pBreak = memchr( pLine, '\n', size_t( m_pEnd - pLine ) );
		pLine = pBreak ? static_cast<const char *>( pBreak ) + 1 : m_pEnd;
	}
	const char *pIndent = pLine;
	size_t nIndent = size_t( pClose - pLine );

	char *pDecoded = m_Arena.Alloc( size_t( pLine - pContent ) );
	char *pOut = pDecoded;
	for ( const char *pStart = pContent; pStart < pLine; )
	{
		if ( pStart != pContent )
			*pOut++ = '\n';
		const char *pBreak = static_cast<const char *>( memchr( pStart, '\n', size_t( pLine - pStart ) ) );
		const char *pNext = pBreak + 1; // every line before the closing one ends with '\n'
		const char *pLineEnd = ( pBreak > pStart && pBreak[ -1 ] == '\r' ) ? pBreak - 1 : pBreak;
		if ( size_t( pLineEnd - pStart ) >= nIndent && memcmp( pStart, pIndent, nIndent ) == 0 )
		{
			memcpy( pOut, pStart + nIndent, size_t( pLineEnd - ( pStart + nIndent ) ) );
			pOut += pLineEnd - ( pStart + nIndent );
		}
		else if ( SkipSpacesAndTabs( pStart, pLineEnd ) != pLineEnd )
		{
			return Fail( pStart, "this line of a multi-line string is indented less than its closing \"\"\"" );
		}
		pStart = pNext;
	}
	*ppText = pDecoded;
	*pLength = size_t( pOut - pDecoded );
	m_p = pClose + 3;
	return true;
}

bool CKV3TextReader::ReadBlob( KV3PendingValue_t &value )
{
	const char *pOpen = m_p;
	if ( m_pEnd - m_p < 2 || m_p[ 1 ] != '[' )
		return Fail( m_p, "expected '[' after '#': binary data is written #[ 00 ff ... ]" );
	const char *p = m_p + 2;
	const char *pClose = static_cast<const char *>( memchr( p, ']', size_t( m_pEnd - p ) ) );
	if ( !pClose )
		return Fail( pOpen, "unterminated binary data: '#[' has no ']'" );

	char *pDecoded = m_Arena.Alloc( size_t( pClose - p ) / 2 );
	char *pOut = pDecoded;
	for ( ;; )
	{
		while ( p < pClose && KV3CharIs( *p, KV3_CHAR_BLANK ) )
			++p;
		if ( p == pClose )
			break;
		int nHigh = HexValue( p[ 0 ] );
		int nLow = pClose - p >= 2 ? HexValue( p[ 1 ] ) : -1;
		if ( nHigh < 0 || nLow < 0 )
			return Fail( p, "expected two hex digits or ']' in binary data, found %s", Describe( nHigh < 0 ? p : p + 1 ).c_str() );
		*pOut++ = char( nHigh * 16 + nLow );
		p += 2;
	}
	value.m_eType = KV3_TYPE_BINARY_BLOB;
	value.m_Bytes.m_pData = pDecoded;
	value.m_Bytes.m_nSize = size_t( pOut - pDecoded );
	m_p = pClose + 1;
	return true;
}

bool CKV3TextReader::OpenContainer( size_t nSlot, bool bTable, KV3SubType_t eTag )
{
	if ( m_Frames.size() >= size_t( KV3_MAX_NESTING_DEPTH ) )
		return Fail( m_p, "nesting is deeper than %d levels", KV3_MAX_NESTING_DEPTH );
	Frame_t &frame = m_Frames.emplace_back();
	frame.m_nTarget = nSlot;
	frame.m_nFirst = m_Pending.size();
	frame.m_pOpen = m_p;
	frame.m_eTag = eTag;
	frame.m_bTable = bTable;
	frame.m_bNeedComma = false;
	++m_p;
	return true;
}

bool CKV3TextReader::CheckDuplicates( size_t nFirst )
{
	size_t nCount = m_Pending.size() - nFirst;
	const KV3PendingValue_t *pValues = m_Pending.data() + nFirst;
	auto fail = [ & ]( const KV3PendingValue_t &first, const KV3PendingValue_t &again ) {
		int nLine, nColumn;
		LineColumn( m_pBase + first.m_nSourceOffset, &nLine, &nColumn );
		return Fail( m_pBase + again.m_nSourceOffset, "duplicate member %s (first at %d:%d; names ignore case)", Quote( again.m_pName, again.m_nNameLength ).c_str(),
		             nLine, nColumn );
	};
	auto same = []( const KV3PendingValue_t &a, const KV3PendingValue_t &b ) {
		return a.m_nNameHash == b.m_nNameHash && a.m_nNameLength == b.m_nNameLength && KV3NamesMatch( a.m_pName, b.m_pName, a.m_nNameLength );
	};

	if ( nCount < size_t( CKV3Table::INDEX_MIN_MEMBERS ) )
	{
		for ( size_t i = 1; i < nCount; ++i )
		{
			for ( size_t j = 0; j < i; ++j )
			{
				if ( same( pValues[ i ], pValues[ j ] ) )
					return fail( pValues[ j ], pValues[ i ] );
			}
		}
		return true;
	}

	size_t nSlots = 32;
	while ( nSlots < nCount * 2 )
		nSlots *= 2;
	m_DuplicateIndex.assign( nSlots, -1 );
	size_t nMask = nSlots - 1;
	for ( size_t i = 0; i < nCount; ++i )
	{
		size_t nSlot = pValues[ i ].m_nNameHash & nMask;
		for ( ; m_DuplicateIndex[ nSlot ] >= 0; nSlot = ( nSlot + 1 ) & nMask )
		{
			const KV3PendingValue_t &other = pValues[ m_DuplicateIndex[ nSlot ] ];
			if ( same( pValues[ i ], other ) )
				return fail( other, pValues[ i ] );
		}
		m_DuplicateIndex[ nSlot ] = int32_t( i );
	}
	return true;
}

bool CKV3TextReader::CloseTable()
{
	Frame_t frame = m_Frames.back();
	if ( !CheckDuplicates( frame.m_nFirst ) )
		return false;
	CKV3Table *pTable = CKV3Builder::BuildTable( m_Pending.data() + frame.m_nFirst, m_Pending.size() - frame.m_nFirst );
	m_Pending.resize( frame.m_nFirst );
	KV3PendingValue_t &target = m_Pending[ frame.m_nTarget ];
	target.m_eType = KV3_TYPE_TABLE;
	target.m_eSubType = frame.m_eTag;
	target.m_pTable = pTable;
	m_Frames.pop_back();
	return true;
}

void CKV3TextReader::CloseArray()
{
	Frame_t frame = m_Frames.back();
	CKV3Array *pArray = CKV3Builder::BuildArray( m_Pending.data() + frame.m_nFirst, m_Pending.size() - frame.m_nFirst );
	m_Pending.resize( frame.m_nFirst );
	KV3PendingValue_t &target = m_Pending[ frame.m_nTarget ];
	target.m_eType = KV3_TYPE_ARRAY;
	target.m_eSubType = frame.m_eTag;
	target.m_pArray = pArray;
	m_Frames.pop_back();
}
