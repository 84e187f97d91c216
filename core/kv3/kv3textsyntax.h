#pragma once
// What the KV3 text reader and writer must agree on: character classes, type tags,
// number suffixes and the subtype a number gets when it has no suffix. Internal to
// core/kv3, and hidden from the library's users.
//
// The text form, in short:
//   --- kv3 encoding=text:<guid> format=<name>:<guid> ---
//   {
//   	name = value              one member per line; names other than [A-Za-z_][A-Za-z0-9_]* are quoted
//   	n = 5                     int; no suffix means int32 (int64 when it does not fit)
//   	n64 = 5i64                suffixes i8 i16 i32 i64; u u8 u16 u32 u64 for unsigned
//   	fl = 0.5f                 32-bit float; 0.5 alone is a double; nan inf -inf
//   	s = "text\n"              escapes \" \\ \n \t \r \uXXXX; other bytes as they are
//   	m = resource:"a/b.timg"   a type tag sets any other subtype
//   	t = """                   text on several lines, indented like the closing quotes
//   		line one
//   		line two
//   		"""
//   	b = #[ 00 ff ]            binary data in hex
//   	a = [ 1, 2, 3 ]           arrays; a comma after the last element is allowed
//   }
// Comments: // to the end of the line, /* ... */ anywhere blanks may stand.

#include <array>
#include <cstddef>
#include <cstdint>

#include "core/kv3/keyvalues3.h"

enum KV3CharClass_t : uint8_t
{
	KV3_CHAR_BLANK = 0x01,       // space, tab, CR, LF
	KV3_CHAR_NAME_START = 0x02,  // letters and '_'
	KV3_CHAR_NAME = 0x04,        // letters, digits and '_'
	KV3_CHAR_DIGIT = 0x08,
	KV3_CHAR_HEX = 0x10,
	KV3_CHAR_STRING_STOP = 0x20, // ends the plain run of a quoted string: '"', '\\', CR, LF
	KV3_CHAR_ESCAPED = 0x40,     // written escaped: '"', '\\', control characters, DEL
};

[[gnu::visibility( "hidden" )]] extern const std::array<uint8_t, 256> g_KV3CharClass;

inline bool KV3CharIs( char c, uint8_t nClass )
{
	return ( g_KV3CharClass[ static_cast<unsigned char>( c ) ] & nClass ) != 0;
}

// True when the name can stand without quotes.
[[gnu::visibility( "hidden" )]] bool KV3IsPlainName( const char *pName, size_t nLength );

// Type tags spell subtypes in text, e.g. resource:"x"; names are lower case.
[[gnu::visibility( "hidden" )]] const char *KV3SubTypeTagName( KV3SubType_t eSubType );
[[gnu::visibility( "hidden" )]] bool KV3SubTypeFromTagName( const char *pName, size_t nLength, KV3SubType_t *pSubType );

// The subtype an integer without width suffix reads as: int32 when it fits, else int64.
inline KV3SubType_t KV3DefaultIntSubType( int64_t nValue )
{
	return ( nValue >= INT32_MIN && nValue <= INT32_MAX ) ? KV3_SUBTYPE_INT32 : KV3_SUBTYPE_INT64;
}
inline KV3SubType_t KV3DefaultUIntSubType( uint64_t nValue )
{
	return nValue <= UINT32_MAX ? KV3_SUBTYPE_UINT32 : KV3_SUBTYPE_UINT64;
}

// Width suffixes: "i8".."i64" and "u8".."u64"; null for other subtypes.
[[gnu::visibility( "hidden" )]] const char *KV3IntSuffix( KV3SubType_t eSubType );
[[gnu::visibility( "hidden" )]] const char *KV3UIntSuffix( KV3SubType_t eSubType );
// Whether the value fits the width of an integer subtype (false for non-width subtypes).
[[gnu::visibility( "hidden" )]] bool KV3IntFits( int64_t nValue, KV3SubType_t eSubType );
[[gnu::visibility( "hidden" )]] bool KV3UIntFits( uint64_t nValue, KV3SubType_t eSubType );

// The header line starts with this; the reader also takes leading blanks and a UTF-8 BOM.
constexpr char KV3_HEADER_MARK[] = "---";
constexpr char KV3_HEADER_MAGIC[] = "kv3";
constexpr size_t KV3_GUID_TEXT_LENGTH = 36; // 8-4-4-4-12 hex digits

// Writes the GUID as 36 characters (no NUL).
[[gnu::visibility( "hidden" )]] void KV3FormatGuid( uint64_t nGuid0, uint64_t nGuid1, char *pOut );
[[gnu::visibility( "hidden" )]] bool KV3ParseGuid( const char *pText, size_t nLength, uint64_t *pGuid0, uint64_t *pGuid1 );
