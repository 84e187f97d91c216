#include "core/kv3/kv3textsyntax.h"

#include <array>
#include <cstring>

namespace
{
constexpr std::array<uint8_t, 256> MakeCharClasses()
{
	std::array<uint8_t, 256> classes {};
	for ( int c = 0; c < 256; ++c )
	{
		uint8_t n = 0;
		bool bLetter = ( c >= 'a' && c <= 'z' ) || ( c >= 'A' && c <= 'Z' );
		bool bDigit = c >= '0' && c <= '9';
		if ( c == ' ' || c == '\t' || c == '\r' || c == '\n' )
			n |= KV3_CHAR_BLANK;
		if ( bLetter || c == '_' )
			n |= KV3_CHAR_NAME_START | KV3_CHAR_NAME;
		if ( bDigit )
			n |= KV3_CHAR_NAME | KV3_CHAR_DIGIT | KV3_CHAR_HEX;
		if ( ( c >= 'a' && c <= 'f' ) || ( c >= 'A' && c <= 'F' ) )
			n |= KV3_CHAR_HEX;
		if ( c == '"' || c == '\\' || c == '\r' || c == '\n' )
			n |= KV3_CHAR_STRING_STOP;
		if ( c == '"' || c == '\\' || c < 0x20 || c == 0x7f )
			n |= KV3_CHAR_ESCAPED;
		classes[ size_t( c ) ] = n;
	}
	return classes;
}

const char *const s_TagNames[ KV3_SUBTYPE_COUNT ] = {
	"unspecified", "int8", "int16", "int32", "int64", "uint8", "uint16", "uint32", "uint64",
	"float32", "float64", "resource", "soundevent", "interface", "compressed", "subclass",
};
} // namespace

constinit const std::array<uint8_t, 256> g_KV3CharClass = MakeCharClasses();

bool KV3IsPlainName( const char *pName, size_t nLength )
{
	if ( nLength == 0 || !KV3CharIs( pName[ 0 ], KV3_CHAR_NAME_START ) )
		return false;
	for ( size_t i = 1; i < nLength; ++i )
	{
		if ( !KV3CharIs( pName[ i ], KV3_CHAR_NAME ) )
			return false;
	}
	return true;
}

const char *KV3SubTypeTagName( KV3SubType_t eSubType )
{
	return eSubType < KV3_SUBTYPE_COUNT ? s_TagNames[ eSubType ] : nullptr;
}

bool KV3SubTypeFromTagName( const char *pName, size_t nLength, KV3SubType_t *pSubType )
{
	for ( int i = 0; i < KV3_SUBTYPE_COUNT; ++i )
	{
		if ( strlen( s_TagNames[ i ] ) == nLength && memcmp( s_TagNames[ i ], pName, nLength ) == 0 )
		{
			*pSubType = KV3SubType_t( i );
			return true;
		}
	}
	return false;
}

const char *KV3IntSuffix( KV3SubType_t eSubType )
{
	switch ( eSubType )
	{
	case KV3_SUBTYPE_INT8: return "i8";
	case KV3_SUBTYPE_INT16: return "i16";
	case KV3_SUBTYPE_INT32: return "i32";
	case KV3_SUBTYPE_INT64: return "i64";
	default: return nullptr;
	}
}

const char *KV3UIntSuffix( KV3SubType_t eSubType )
{
	switch ( eSubType )
	{
	case KV3_SUBTYPE_UINT8: return "u8";
	case KV3_SUBTYPE_UINT16: return "u16";
	case KV3_SUBTYPE_UINT32: return "u32";
	case KV3_SUBTYPE_UINT64: return "u64";
	default: return nullptr;
	}
}

bool KV3IntFits( int64_t nValue, KV3SubType_t eSubType )
{
	switch ( eSubType )
	{
	case KV3_SUBTYPE_INT8: return nValue >= INT8_MIN && nValue <= INT8_MAX;
	case KV3_SUBTYPE_INT16: return nValue >= INT16_MIN && nValue <= INT16_MAX;
	case KV3_SUBTYPE_INT32: return nValue >= INT32_MIN && nValue <= INT32_MAX;
	case KV3_SUBTYPE_INT64: return true;
	default: return false;
	}
}

bool KV3UIntFits( uint64_t nValue, KV3SubType_t eSubType )
{
	switch ( eSubType )
	{
	case KV3_SUBTYPE_UINT8: return nValue <= UINT8_MAX;
	case KV3_SUBTYPE_UINT16: return nValue <= UINT16_MAX;
	case KV3_SUBTYPE_UINT32: return nValue <= UINT32_MAX;
	case KV3_SUBTYPE_UINT64: return true;
	default: return false;
	}
}

void KV3FormatGuid( uint64_t nGuid0, uint64_t nGuid1, char *pOut )
{
	static const char s_Hex[] = "0123456789abcdef";
	char *p = pOut;
	for ( int i = 0; i < 32; ++i )
	{
		if ( i == 8 || i == 12 || i == 16 || i == 20 )
			*p++ = '-';
		uint64_t nWord = i < 16 ? nGuid0 : nGuid1;
		int nShift = 60 - 4 * ( i % 16 );
		*p++ = s_Hex[ ( nWord >> nShift ) & 0xf ];
	}
}

bool KV3ParseGuid( const char *pText, size_t nLength, uint64_t *pGuid0, uint64_t *pGuid1 )
{
	if ( nLength != KV3_GUID_TEXT_LENGTH )
		return false;
	uint64_t nWords[ 2 ] = { 0, 0 };
	int nDigit = 0;
	for ( size_t i = 0; i < nLength; ++i )
	{
		char c = pText[ i ];
		if ( i == 8 || i == 13 || i == 18 || i == 23 )
		{
			if ( c != '-' )
				return false;
			continue;
		}
		if ( !KV3CharIs( c, KV3_CHAR_HEX ) )
			return false;
		uint64_t nNibble = c <= '9' ? uint64_t( c - '0' ) : uint64_t( ( c | 0x20 ) - 'a' + 10 );
		nWords[ nDigit / 16 ] = ( nWords[ nDigit / 16 ] << 4 ) | nNibble;
		++nDigit;
	}
	*pGuid0 = nWords[ 0 ];
	*pGuid1 = nWords[ 1 ];
	return true;
}
