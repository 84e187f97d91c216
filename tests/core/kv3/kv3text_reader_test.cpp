#include <gtest/gtest.h>

#include <charconv>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <cfloat>
#include <memory>
#include <vector>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"

namespace
{
const char s_Header[] = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";

bool LoadGeneric( const std::string &text, KeyValues3 *pKV, CUtlString *pError, unsigned nFlags = 0 )
{
	// An exact-size copy, so reading past the end is caught by the address sanitizer.
	std::unique_ptr<char[]> pCopy( new char[ text.size() ] );
	memcpy( pCopy.get(), text.data(), text.size() );
	return LoadKV3FromText( pKV, pError, pCopy.get(), text.size(), KV3_FORMAT_GENERIC, nFlags );
}

// "line:col: message" with line and column from 1.
bool HasPositionPrefix( const char *pError )
{
	int nLine = 0, nColumn = 0, nConsumed = 0;
	return sscanf( pError, "%d:%d: %n", &nLine, &nColumn, &nConsumed ) == 2 && nLine >= 1 && nColumn >= 1 && nConsumed > 0 && pError[ nConsumed ] != 0;
}

struct MalformedCase_t
{
	const char *m_pName;
	const char *m_pBody; // follows the header, so it starts on line 2
	const char *m_pPosition;
	const char *m_pMessage; // part of the message
};

void PrintTo( const MalformedCase_t &malformed, std::ostream *pStream )
{
	*pStream << malformed.m_pName;
}

const MalformedCase_t s_MalformedCases[] = {
	{ "MissingEquals", "{\n\tm_flRadius 5\n}", "3:13", "expected '=' after member name \"m_flRadius\", found '5'" },
	{ "UnterminatedString", "{\n\ts = \"abc\n}", "3:6", "unterminated string" },
	{ "UnclosedTable", "{\n\ta = 1\n", "4:1", "the table opened at 2:1 has no closing '}'" },
	{ "UnclosedArray", "{ a = [ 1,", "2:11", "the array opened at 2:7 has no closing ']'" },
	{ "MissingComma", "[ 1 2 ]", "2:5", "expected ',' or ']' after an array element, found '2'" },
	{ "EmptyElement", "[1,,2]", "2:4", "expected a value, found ','" },
	{ "DuplicateMember", "{ a = 1 a = 2 }", "2:9", "duplicate member \"a\" (first at 2:3" },
	{ "DuplicateMemberOtherCase", "{ m_Name = 1\n  M_NAME = 2 }", "3:3", "duplicate member \"M_NAME\" (first at 2:3" },
	{ "MissingValue", "{ a = }", "2:7", "expected a value for member \"a\", found '}'" },
	{ "MissingName", "{ = 1 }", "2:3", "expected a member name or '}', found '='" },
	{ "NameWithDash", "{ my-name = 1 }", "2:5", "expected '=' after member name \"my\", found '-'" },
	{ "MultiLineName", "{ \"\"\" = 1 }", "2:3", "a member name can't be a multi-line string" },
	{ "TextAfterValue", "{} extra", "2:4", "unexpected 'e' after the value" },
	{ "NoValue", "", "2:1", "expected a value, found the end of the text" },
	{ "UnquotedText", "{ a = hello }", "2:7", "unknown word \"hello\": text values need double quotes" },
	{ "UnknownTag", "{ a = foo:\"x\" }", "2:7", "unknown type tag \"foo\"" },
	{ "TwoTags", "{ a = resource:int8:5 }", "2:16", "only one type tag" },
	{ "Int64Overflow", "{ a = 9223372036854775808 }", "2:7", "integer 9223372036854775808 is too large" },
	{ "Int64Underflow", "{ a = -9223372036854775809 }", "2:7", "integer -9223372036854775809 is too small" },
	{ "UInt64Overflow", "{ a = 18446744073709551616u }", "2:7", "too large for 64 bits" },
	{ "Int8Overflow", "{ a = 128i8 }", "2:7", "128 doesn't fit in an int8" },
	{ "UInt8Overflow", "{ a = 256u8 }", "2:7", "256 is too large for a uint8" },
	{ "NegativeUnsigned", "{ a = -5u }", "2:7", "an unsigned number can't be negative" },
	{ "DoubleOutOfRange", "{ a = 1e999 }", "2:7", "out of the range of a double" },
	{ "FloatOutOfRange", "{ a = 1e39f }", "2:7", "out of the range of a 32-bit float" },
	{ "UnknownSuffix", "{ a = 1x }", "2:8", "unknown suffix \"x\"" },
	{ "FloatWithoutPoint", "{ a = 1f }", "2:8", "needs a '.' or an exponent, e.g. 1.0f" },
	{ "LoneMinus", "{ a = - }", "2:7", "expected a number after '-'" },
	{ "PointWithoutDigits", "{ a = 1.e5 }", "2:9", "expected a digit after the '.'" },
	{ "TwoPoints", "{ a = 1.5.3 }", "2:7", "malformed number" },
	{ "UnknownEscape", "{ a = \"\\q\" }", "2:8", "unknown escape \"\\q\"" },
	{ "ShortUnicodeEscape", "{ a = \"\\u12\" }", "2:8", "\\u must be followed by four hex digits" },
	{ "LoneHighSurrogate", "{ a = \"\\ud800x\" }", "2:8", "no low surrogate" },
	{ "LoneLowSurrogate", "{ a = \"\\udc00\" }", "2:8", "low surrogate without a high surrogate" },
	{ "UnterminatedComment", "/* never closed\n{}", "2:1", "unterminated comment" },
	{ "BadHexInBlob", "{ a = #[ 0g ] }", "2:10", "expected two hex digits or ']' in binary data, found 'g'" },
	{ "UnterminatedBlob", "{ a = #[ 00 ", "2:7", "unterminated binary data" },
	{ "HashWithoutBracket", "{ a = #00 }", "2:7", "expected '[' after '#'" },
	{ "TextAfterTripleQuotes", "{ a = \"\"\"x\n\"\"\" }", "2:10", "expected a line break after \"\"\"" },
	{ "UnterminatedMultiLine", "{ a = \"\"\"\n\tline\n", "2:7", "unterminated multi-line string" },
	{ "MultiLineUnderIndented", "{\n\ta = \"\"\"\n\tbad\n\t\t\"\"\"\n}", "4:1", "indented less than its closing" },
	{ "ColumnsCountCharacters", "{ \"ключ\" = }", "2:12", "expected a value for member \"ключ\"" },
	{ "ControlByte", "{ a = \x01 }", "2:7", "found byte 0x01" },
};

class KV3MalformedText : public testing::TestWithParam<MalformedCase_t>
{
};

INSTANTIATE_TEST_SUITE_P( Cases, KV3MalformedText, testing::ValuesIn( s_MalformedCases ),
                          []( const testing::TestParamInfo<MalformedCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace

TEST_P( KV3MalformedText, IsRefusedWithLineColumnAndAClearMessage )
{
	KeyValues3 kv;
	kv.SetMemberInt( "stale", 1 );
	CUtlString error;
	EXPECT_FALSE( LoadGeneric( std::string( s_Header ) + GetParam().m_pBody, &kv, &error ) );
	std::string message = error.Get();
	EXPECT_EQ( message.substr( 0, message.find( ": " ) ), GetParam().m_pPosition ) << message;
	EXPECT_NE( message.find( GetParam().m_pMessage ), std::string::npos ) << message;
	EXPECT_TRUE( kv.IsNull() );
}

TEST( KV3TextHeader, RefusesTextWithoutAHeader )
{
	for ( const char *pText : { "", "{}", "   \n{ a = 1 }", "--- kv4 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d ---\n{}" } )
	{
		KeyValues3 kv;
		CUtlString error;
		EXPECT_FALSE( LoadGeneric( pText, &kv, &error ) );
		EXPECT_NE( std::string( error.Get() ).find( "missing KV3 header" ), std::string::npos ) << error.Get();
		EXPECT_FALSE( LooksLikeKV3TextData( pText, strlen( pText ) ) );
	}
	KeyValues3 kv;
	CUtlString error;
	CUtlBuffer emptyFile;
	EXPECT_FALSE( LoadKV3( &kv, &error, &emptyFile, KV3_FORMAT_GENERIC ) );
	EXPECT_EQ( std::string( error.Get() ).find( "1:1: missing KV3 header" ), 0u ) << error.Get();

	const char *pFine = " \n--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n{}";
	EXPECT_TRUE( LooksLikeKV3TextData( pFine, strlen( pFine ) ) );
}

TEST( KV3TextHeader, ChecksEncodingAndFormat )
{
	struct HeaderCase_t
	{
		const char *m_pHeader;
		const char *m_pMessage; // null: loads
		unsigned m_nFlags;
	};
	const HeaderCase_t cases[] = {
		{ "--- kv3 encoding=binary:00000000-0000-0000-0000-000000000001 format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---", "1:18: unsupported encoding \"binary\"", 0 },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---", "1:67: the file's format is \"generic\" but \"tfxs63\" was expected", 0 },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---", nullptr, KV3_LOAD_ANY_FORMAT },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=renamed:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---", nullptr, 0 },
		{ "--- kv3 format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d ---", nullptr, 0 },
		{ "--- kv3 format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---", "1:1: the KV3 header names no encoding", 0 },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d ---", "1:1: the KV3 header names no format", 0 },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e", "1:74: malformed GUID", 0 },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e", "1:110: unterminated KV3 header", 0 },
		{ "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e --- {}", "1:115: unexpected text after the closing \"---\"", 0 },
		{ "--- kv3 encoding text", "1:17: expected key=name:guid", 0 },
	};
	for ( const HeaderCase_t &headerCase : cases )
	{
		std::string text = std::string( headerCase.m_pHeader ) + "\n{ n = 1 }\n";
		KeyValues3 kv;
		CUtlString error;
		bool bLoaded = LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_TFXS, headerCase.m_nFlags );
		if ( !headerCase.m_pMessage )
		{
			EXPECT_TRUE( bLoaded ) << headerCase.m_pHeader << ": " << error.Get();
			EXPECT_EQ( kv.GetMemberInt( "n" ), 1 );
			continue;
		}
		EXPECT_FALSE( bLoaded ) << headerCase.m_pHeader;
		EXPECT_EQ( std::string( error.Get() ).find( headerCase.m_pMessage ), 0u ) << error.Get();
	}
}

TEST( KV3TextHeader, GenericRequestAcceptsAnyFormat )
{
	std::string text = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n[ 1 ]";
	KeyValues3 kv;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get();
	EXPECT_EQ( kv.GetArrayElementCount(), 1 );
}

TEST( KV3TextFragment, ReadsOneValueAndLeavesTheGetPositionJustPastIt )
{
	std::string text = "outer text { a = 1\n b = \"}\" } [ 1, 2 ]\"after\" tail";
	CUtlBuffer buffer( text.data(), text.size() );
	buffer.SeekGet( strlen( "outer text" ) );

	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( LoadKV3( &kv, &error, &buffer, KV3_FORMAT_GENERIC, nullptr, KV3_LOAD_FRAGMENT ) ) << error.Get();
	EXPECT_EQ( kv.GetMemberInt( "a" ), 1 );
	EXPECT_EQ( buffer.TellGet(), text.find( "} [" ) + 1 );

	ASSERT_TRUE( LoadKV3( &kv, &error, &buffer, KV3_FORMAT_GENERIC, nullptr, KV3_LOAD_FRAGMENT ) ) << error.Get();
	EXPECT_EQ( kv.GetArrayElementCount(), 2 );
	EXPECT_EQ( buffer.TellGet(), text.find( "\"after\"" ) );

	ASSERT_TRUE( LoadKV3( &kv, &error, &buffer, KV3_FORMAT_GENERIC, nullptr, KV3_LOAD_FRAGMENT ) ) << error.Get();
	EXPECT_STREQ( kv.GetString(), "after" );
	EXPECT_EQ( buffer.TellGet(), text.find( " tail" ) );

	// Positions in messages count from the start of the buffer, not from the fragment.
	size_t nBefore = buffer.TellGet();
	EXPECT_FALSE( LoadKV3( &kv, &error, &buffer, KV3_FORMAT_GENERIC, nullptr, KV3_LOAD_FRAGMENT ) );
	EXPECT_EQ( std::string( error.Get() ).find( "2:28: unknown word \"tail\"" ), 0u ) << error.Get();
	EXPECT_EQ( buffer.TellGet(), nBefore );
}

TEST( KV3TextFragment, WritesWithoutHeaderReadBackAsFragments )
{
	KeyValues3 kv;
	kv.SetMemberFloat( "m_flRadius", 3.0f );
	CUtlBuffer buffer;
	buffer.PutString( "prefix " );
	CUtlString error;
	ASSERT_TRUE( SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &kv, &error, &buffer, KV3_SAVE_NO_HEADER ) );
	buffer.PutString( "suffix" );
	buffer.SeekGet( strlen( "prefix " ) );
	KeyValues3 back;
	ASSERT_TRUE( LoadKV3( &back, &error, &buffer, KV3_FORMAT_GENERIC, nullptr, KV3_LOAD_FRAGMENT ) ) << error.Get();
	EXPECT_TRUE( back.IsEqual( kv ) );
	EXPECT_EQ( std::string( reinterpret_cast<const char *>( buffer.PeekGet() ) ), "\nsuffix" );
}

TEST( KV3TextLimits, NestingUpToTheLimitReadsAndDeeperIsRefused )
{
	for ( int nDepth : { KV3_MAX_NESTING_DEPTH, KV3_MAX_NESTING_DEPTH + 1, 100000 } )
	{
		std::string text = s_Header + std::string( size_t( nDepth ), '[' ) + std::string( size_t( nDepth ), ']' );
		KeyValues3 kv;
		CUtlString error;
		bool bLoaded = LoadGeneric( text, &kv, &error );
		if ( nDepth <= KV3_MAX_NESTING_DEPTH )
		{
			EXPECT_TRUE( bLoaded ) << error.Get();
			int nMaxDepth = 0;
			kv.WalkWith( [ & ]( const KeyValues3 *, int nValueDepth ) { nMaxDepth = std::max( nMaxDepth, nValueDepth ); return true; } );
			EXPECT_EQ( nMaxDepth, nDepth - 1 );
			continue;
		}
		EXPECT_FALSE( bLoaded );
		EXPECT_EQ( std::string( error.Get() ), "2:" + std::to_string( KV3_MAX_NESTING_DEPTH + 1 ) + ": nesting is deeper than 512 levels" );
	}
}

TEST( KV3TextLimits, EveryTruncationParsesOrFailsCleanly )
{
	const char *pDocument = R"(--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---
// comment
{
	_class = "C_OP_Test" /* block */
	"quoted name" = "esc \" \\ \n \u00e9 \ud83d\udd25"
	m_nInt = -12i16
	m_nUInt = 18446744073709551615u
	m_flValue = 1.5e-3f
	m_flDouble = -0.0
	m_special = [ nan, inf, -inf, nanf, -inff ]
	m_hRes = resource:"a/b.timg"
	m_text = """
		multi
		line
		"""
	m_blob = #[ 00 ff 7f ]
	m_list = [ { a = true }, [], {}, null, ]
}
)";
	std::string full = pDocument;
	KeyValues3 reference;
	CUtlString error;
	ASSERT_TRUE( LoadGeneric( full, &reference, &error ) ) << error.Get();
	std::string body = full.substr( full.find( '\n' ) + 1 );
	for ( unsigned nFlags : { 0u, unsigned( KV3_LOAD_FRAGMENT ) } )
	{
		const std::string &whole = nFlags ? body : full;
		int nLoaded = 0;
		for ( size_t nLength = 0; nLength < whole.size(); ++nLength )
		{
			KeyValues3 kv;
			if ( LoadGeneric( whole.substr( 0, nLength ), &kv, &error, nFlags ) )
			{
				EXPECT_TRUE( kv.IsEqual( reference ) );
				++nLoaded;
				continue;
			}
			EXPECT_TRUE( HasPositionPrefix( error.Get() ) ) << nLength << ": " << error.Get();
			EXPECT_TRUE( kv.IsNull() );
		}
		// Only the prefix that stops before the final line break holds the whole table.
		EXPECT_EQ( nLoaded, 1 );
	}
}

// The reader takes a fast road for most reals; every result must still be the nearest
// double or float, also for decimals next to a point halfway between two floats.
TEST( KV3TextNumbers, RealsReadAsTheNearestDoubleOrFloat )
{
	uint64_t nState = 12345;
	auto next = [ &nState ] {
		nState = nState * 6364136223846793005ull + 1442695040888963407ull;
		return nState;
	};
	std::vector<std::string> texts;
	std::vector<bool> isFloat;
	char text[ 64 ];
	for ( int i = 0; i < 3000; ++i )
	{
		uint32_t nFloatBits = uint32_t( next() >> 32 ) & 0x7effffffu; // finite, not the top binade
		float flBelow;
		memcpy( &flBelow, &nFloatBits, sizeof( flBelow ) );
		if ( flBelow < FLT_MIN )
			continue;
		double flHalfway = ( double( flBelow ) + double( std::nextafter( flBelow, HUGE_VALF ) ) ) / 2.0;
		const char *pFormats[] = { "%.15e", "%.8e", "%.5e" }; // 16 digits: often a double at exactly the halfway point
		snprintf( text, sizeof( text ), pFormats[ i % 3 ], flHalfway );
		texts.push_back( text );
		isFloat.push_back( true );

		uint64_t nDoubleBits = next() & 0x7fefffffffffffffull;
		double flDouble;
		memcpy( &flDouble, &nDoubleBits, sizeof( flDouble ) );
		snprintf( text, sizeof( text ), i % 2 ? "%.17e" : "%.6e", flDouble * ( i % 4 == 0 ? 1e-300 : 1.0 ) );
		texts.push_back( text );
		isFloat.push_back( false );
	}
	std::string body = "[\n";
	for ( size_t i = 0; i < texts.size(); ++i )
		body += texts[ i ] + ( isFloat[ i ] ? "f,\n" : ",\n" );
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( LoadGeneric( s_Header + body + "]", &kv, &error ) ) << error.Get();
	ASSERT_EQ( kv.GetArrayElementCount(), int( texts.size() ) );
	for ( size_t i = 0; i < texts.size(); ++i )
	{
		const std::string &number = texts[ i ];
		double flRead = kv.GetArrayElement( int( i ) )->GetDouble();
		if ( isFloat[ i ] )
		{
			float flExpected = 0;
			std::from_chars( number.data(), number.data() + number.size(), flExpected );
			EXPECT_EQ( flRead, double( flExpected ) ) << number << "f";
		}
		else
		{
			double flExpected = 0;
			std::from_chars( number.data(), number.data() + number.size(), flExpected );
			EXPECT_EQ( flRead, flExpected ) << number;
		}
	}
}
