#include <gtest/gtest.h>

#include <cfloat>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"

namespace
{
std::string Save( const KeyValues3 &kv, unsigned nFlags = 0 )
{
	CUtlBuffer buffer;
	CUtlString error;
	EXPECT_TRUE( SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_TFXS, &kv, &error, &buffer, nFlags ) ) << error.Get();
	return std::string( reinterpret_cast<const char *>( buffer.Base() ), buffer.TellPut() );
}

bool Load( const std::string &text, KeyValues3 *pKV, CUtlString *pError = nullptr )
{
	CUtlString error;
	bool bLoaded = LoadKV3FromText( pKV, &error, text.data(), text.size(), KV3_FORMAT_TFXS );
	if ( pError )
		*pError = error;
	return bLoaded;
}

// Writes, reads back and writes again: the tree must come back equal and the text identical.
void ExpectRoundTrip( const KeyValues3 &kv, std::string *pText = nullptr )
{
	std::string text = Save( kv );
	KeyValues3 back;
	CUtlString error;
	ASSERT_TRUE( Load( text, &back, &error ) ) << error.Get() << "\n" << text;
	EXPECT_TRUE( back.IsEqual( kv ) ) << text;
	EXPECT_EQ( back.GetType(), kv.GetType() );
	EXPECT_EQ( back.GetSubType(), kv.GetSubType() ) << text;
	EXPECT_EQ( Save( back ), text );
	if ( pText )
		*pText = text;
}

struct ValueCase_t
{
	const char *m_pName;
	void ( *m_fnMake )( KeyValues3 &kv );
	const char *m_pWritten; // the value's text, as it must appear in the file; null to skip
};

void PrintTo( const ValueCase_t &valueCase, std::ostream *pStream )
{
	*pStream << valueCase.m_pName;
}

const ValueCase_t s_ValueCases[] = {
	{ "Null", []( KeyValues3 &kv ) { kv.SetToNull(); }, "null" },
	{ "True", []( KeyValues3 &kv ) { kv.SetBool( true ); }, "true" },
	{ "False", []( KeyValues3 &kv ) { kv.SetBool( false ); }, "false" },
	{ "BoolWithSubtype", []( KeyValues3 &kv ) { kv.SetBool( true ); kv.SetSubType( KV3_SUBTYPE_INT8 ); }, "int8:true" },
	{ "NullWithSubtype", []( KeyValues3 &kv ) { kv.SetSubType( KV3_SUBTYPE_STRING_INTERFACE ); }, "interface:null" },
	{ "IntZero", []( KeyValues3 &kv ) { kv.SetInt( 0 ); }, "0" },
	{ "IntNegative", []( KeyValues3 &kv ) { kv.SetInt( -17 ); }, "-17" },
	{ "Int32Min", []( KeyValues3 &kv ) { kv.SetInt( INT32_MIN ); }, "-2147483648" },
	{ "Int32Max", []( KeyValues3 &kv ) { kv.SetInt( INT32_MAX ); }, "2147483647" },
	{ "Int64Small", []( KeyValues3 &kv ) { kv.SetInt64( 5 ); }, "5i64" },
	{ "Int64Large", []( KeyValues3 &kv ) { kv.SetInt64( int64_t( INT32_MAX ) + 1 ); }, "2147483648" },
	{ "Int64Min", []( KeyValues3 &kv ) { kv.SetInt64( INT64_MIN ); }, "-9223372036854775808" },
	{ "Int64Max", []( KeyValues3 &kv ) { kv.SetInt64( INT64_MAX ); }, "9223372036854775807" },
	{ "Int8", []( KeyValues3 &kv ) { kv.SetInt( -128 ); kv.SetSubType( KV3_SUBTYPE_INT8 ); }, "-128i8" },
	{ "Int16", []( KeyValues3 &kv ) { kv.SetInt( 300 ); kv.SetSubType( KV3_SUBTYPE_INT16 ); }, "300i16" },
	{ "Int8OutOfWidth", []( KeyValues3 &kv ) { kv.SetInt( 300 ); kv.SetSubType( KV3_SUBTYPE_INT8 ); }, "int8:300" },
	{ "Int32SubtypeWithInt64Value", []( KeyValues3 &kv ) { kv.SetInt64( INT64_MAX ); kv.SetSubType( KV3_SUBTYPE_INT32 ); }, "int32:9223372036854775807" },
	{ "IntUnspecified", []( KeyValues3 &kv ) { kv.SetInt( 9 ); kv.SetSubType( KV3_SUBTYPE_UNSPECIFIED ); }, "unspecified:9" },
	{ "UIntZero", []( KeyValues3 &kv ) { kv.SetUInt( 0 ); }, "0u" },
	{ "UInt32Max", []( KeyValues3 &kv ) { kv.SetUInt( UINT32_MAX ); }, "4294967295u" },
	{ "UInt64Large", []( KeyValues3 &kv ) { kv.SetUInt64( uint64_t( UINT32_MAX ) + 1 ); }, "4294967296u" },
	{ "UInt64Max", []( KeyValues3 &kv ) { kv.SetUInt64( UINT64_MAX ); }, "18446744073709551615u" },
	{ "UInt64Small", []( KeyValues3 &kv ) { kv.SetUInt64( 7 ); }, "7u64" },
	{ "UInt8", []( KeyValues3 &kv ) { kv.SetUInt( 255 ); kv.SetSubType( KV3_SUBTYPE_UINT8 ); }, "255u8" },
	{ "UInt16", []( KeyValues3 &kv ) { kv.SetUInt( 65535 ); kv.SetSubType( KV3_SUBTYPE_UINT16 ); }, "65535u16" },
	{ "UInt8OutOfWidth", []( KeyValues3 &kv ) { kv.SetUInt( 256 ); kv.SetSubType( KV3_SUBTYPE_UINT8 ); }, "uint8:256u" },
	{ "DoubleZero", []( KeyValues3 &kv ) { kv.SetDouble( 0.0 ); }, "0.0" },
	{ "DoubleNegativeZero", []( KeyValues3 &kv ) { kv.SetDouble( -0.0 ); }, "-0.0" },
	{ "DoubleTenth", []( KeyValues3 &kv ) { kv.SetDouble( 0.1 ); }, "0.1" },
	{ "DoubleWhole", []( KeyValues3 &kv ) { kv.SetDouble( 123456789012345680.0 ); }, "123456789012345680.0" },
	{ "DoubleHuge", []( KeyValues3 &kv ) { kv.SetDouble( 1e300 ); }, "1e+300" },
	{ "DoubleMax", []( KeyValues3 &kv ) { kv.SetDouble( DBL_MAX ); }, "1.7976931348623157e+308" },
	{ "DoubleMinNormal", []( KeyValues3 &kv ) { kv.SetDouble( DBL_MIN ); }, nullptr },
	{ "DoubleDenormal", []( KeyValues3 &kv ) { kv.SetDouble( std::numeric_limits<double>::denorm_min() ); }, "5e-324" },
	{ "DoubleNegativeDenormal", []( KeyValues3 &kv ) { kv.SetDouble( -std::numeric_limits<double>::denorm_min() ); }, "-5e-324" },
	{ "DoubleNaN", []( KeyValues3 &kv ) { kv.SetDouble( std::numeric_limits<double>::quiet_NaN() ); }, "nan" },
	{ "DoubleInfinity", []( KeyValues3 &kv ) { kv.SetDouble( HUGE_VAL ); }, "inf" },
	{ "DoubleMinusInfinity", []( KeyValues3 &kv ) { kv.SetDouble( -HUGE_VAL ); }, "-inf" },
	{ "FloatTenth", []( KeyValues3 &kv ) { kv.SetFloat( 0.1f ); }, "0.1f" },
	{ "FloatWhole", []( KeyValues3 &kv ) { kv.SetFloat( 15.0f ); }, "15.0f" },
	{ "FloatNegativeZero", []( KeyValues3 &kv ) { kv.SetFloat( -0.0f ); }, "-0.0f" },
	{ "FloatLarge", []( KeyValues3 &kv ) { kv.SetFloat( 1e30f ); }, "1e+30f" },
	{ "FloatMinNormal", []( KeyValues3 &kv ) { kv.SetFloat( FLT_MIN ); }, nullptr },
	{ "FloatDenormal", []( KeyValues3 &kv ) { kv.SetFloat( std::numeric_limits<float>::denorm_min() ); }, "1e-45f" },
	{ "FloatNaN", []( KeyValues3 &kv ) { kv.SetFloat( std::numeric_limits<float>::quiet_NaN() ); }, "nanf" },
	{ "FloatMinusInfinity", []( KeyValues3 &kv ) { kv.SetFloat( -HUGE_VALF ); }, "-inff" },
	{ "Float32SubtypeWithDoubleValue", []( KeyValues3 &kv ) { kv.SetDouble( 0.1 ); kv.SetSubType( KV3_SUBTYPE_FLOAT32 ); }, "float32:0.1" },
	{ "DoubleUnspecified", []( KeyValues3 &kv ) { kv.SetDouble( 2.5 ); kv.SetSubType( KV3_SUBTYPE_UNSPECIFIED ); }, "unspecified:2.5" },
	{ "StringEmpty", []( KeyValues3 &kv ) { kv.SetString( "" ); }, "\"\"" },
	{ "StringPlain", []( KeyValues3 &kv ) { kv.SetString( "C_OP_Decay" ); }, "\"C_OP_Decay\"" },
	{ "StringQuotesAndBackslashes", []( KeyValues3 &kv ) { kv.SetString( "say \"hi\" C:\\path\\" ); }, "\"say \\\"hi\\\" C:\\\\path\\\\\"" },
	{ "StringTabAndCarriageReturn", []( KeyValues3 &kv ) { kv.SetString( "a\tb\rc" ); }, "\"a\\tb\\rc\"" },
	{ "StringControlCharacters", []( KeyValues3 &kv ) { kv.SetString( "\x01\x1f\x7f" ); }, "\"\\u0001\\u001f\\u007f\"" },
	{ "StringEmbeddedNul", []( KeyValues3 &kv ) { kv.SetString( "a\0b", 3 ); }, "\"a\\u0000b\"" },
	{ "StringUtf8", []( KeyValues3 &kv ) { kv.SetString( "étincelle \xF0\x9F\x94\xA5 искра" ); }, "\"étincelle \xF0\x9F\x94\xA5 искра\"" },
	{ "StringInvalidUtf8", []( KeyValues3 &kv ) { kv.SetString( "\xff\xfe\xc3" ); }, nullptr },
	{ "StringLooksLikeEscape", []( KeyValues3 &kv ) { kv.SetString( "\\u0041" ); }, "\"\\\\u0041\"" },
	{ "StringTripleQuotes", []( KeyValues3 &kv ) { kv.SetString( "\"\"\"" ); }, "\"\\\"\\\"\\\"\"" },
	{ "StringOnlyNewline", []( KeyValues3 &kv ) { kv.SetString( "\n" ); }, nullptr },
	{ "MultiLine", []( KeyValues3 &kv ) { kv.SetString( "first line\nsecond line" ); }, nullptr },
	{ "MultiLineTrailingNewline", []( KeyValues3 &kv ) { kv.SetString( "line\n" ); }, nullptr },
	{ "MultiLineBlankLinesAround", []( KeyValues3 &kv ) { kv.SetString( "\n\nmiddle\n\n" ); }, nullptr },
	{ "MultiLineIndentedLines", []( KeyValues3 &kv ) { kv.SetString( "\tone tab\n    four spaces\n\t" ); }, nullptr },
	{ "MultiLineBlankOnlyLines", []( KeyValues3 &kv ) { kv.SetString( "   \n \t \n" ); }, nullptr },
	{ "MultiLineQuotesInside", []( KeyValues3 &kv ) { kv.SetString( "say \"\"\"\nthen \\n stays" ); }, nullptr },
	{ "MultiLineWithClosingLikeLine", []( KeyValues3 &kv ) { kv.SetString( "x\n  \"\"\" not the end" ); }, nullptr },
	{ "MultiLineWithCarriageReturns", []( KeyValues3 &kv ) { kv.SetString( "dos\r\nlines\r\n" ); }, nullptr },
	{ "ResourceName", []( KeyValues3 &kv ) { kv.SetString( "materials/particle/spark.timg", KV3_SUBTYPE_STRING_RESOURCE_NAME ); }, "resource:\"materials/particle/spark.timg\"" },
	{ "SoundEvent", []( KeyValues3 &kv ) { kv.SetString( "Spark.Hit", KV3_SUBTYPE_STRING_SOUNDEVENT ); }, "soundevent:\"Spark.Hit\"" },
	{ "InterfaceMultiLine", []( KeyValues3 &kv ) { kv.SetString( "a\nb", KV3_SUBTYPE_STRING_INTERFACE ); }, nullptr },
	{ "StringWithNumberSubtype", []( KeyValues3 &kv ) { kv.SetString( "x", KV3_SUBTYPE_UINT64 ); }, "uint64:\"x\"" },
	{ "BlobEmpty", []( KeyValues3 &kv ) { kv.SetBinaryBlob( nullptr, 0 ); }, "#[]" },
	{ "BlobOneByte", []( KeyValues3 &kv ) { uint8_t b = 0xab; kv.SetBinaryBlob( &b, 1 ); }, "#[ ab ]" },
	{ "BlobOneLine", []( KeyValues3 &kv ) { uint8_t bytes[ 32 ] = {}; kv.SetBinaryBlob( bytes, sizeof( bytes ) ); }, nullptr },
	{ "BlobSeveralLines", []( KeyValues3 &kv ) {
		  uint8_t bytes[ 256 ];
		  for ( int i = 0; i < 256; ++i )
			  bytes[ i ] = uint8_t( i );
		  kv.SetBinaryBlob( bytes, sizeof( bytes ) );
	  }, nullptr },
	{ "BlobCompressed", []( KeyValues3 &kv ) { uint8_t b[ 2 ] = { 1, 2 }; kv.SetBinaryBlob( b, 2 ); kv.SetSubType( KV3_SUBTYPE_BINARY_BLOB_COMPRESSED ); }, "compressed:#[ 01 02 ]" },
	{ "TableEmpty", []( KeyValues3 &kv ) { kv.SetToEmptyTable(); }, "{}" },
	{ "TableTagged", []( KeyValues3 &kv ) { kv.SetToEmptyTable(); kv.SetSubType( KV3_SUBTYPE_INT8 ); }, "int8:{}" },
	{ "TableNested", []( KeyValues3 &kv ) { kv.SetMemberEmptyTable( "a" )->SetMemberEmptyTable( "b" )->SetMemberString( "c", "deep\ntext" ); }, nullptr },
	{ "ArrayEmpty", []( KeyValues3 &kv ) { kv.SetToEmptyArray(); }, "[]" },
	{ "ArrayVector", []( KeyValues3 &kv ) { for ( float fl : { 0.0f, 0.5f, -1.0f } ) kv.ArrayAddToTail()->SetFloat( fl ); }, "[ 0.0f, 0.5f, -1.0f ]" },
	{ "ArrayMixedScalars", []( KeyValues3 &kv ) { kv.ArrayAddToTail()->SetInt( 1 ); kv.ArrayAddToTail(); kv.ArrayAddToTail()->SetBool( true ); kv.ArrayAddToTail()->SetUInt64( 3 ); }, "[ 1, null, true, 3u64 ]" },
	{ "ArrayTooLongForOneLine", []( KeyValues3 &kv ) { for ( int i = 0; i < 17; ++i ) kv.ArrayAddToTail()->SetInt( i ); }, nullptr },
	{ "ArrayTooWideForOneLine", []( KeyValues3 &kv ) { for ( int i = 0; i < 8; ++i ) kv.ArrayAddToTail()->SetDouble( 0.1 * ( i + 1 ) + 1e-9 ); }, nullptr },
	{ "ArrayOfStrings", []( KeyValues3 &kv ) { kv.ArrayAddToTail()->SetString( "a" ); kv.ArrayAddToTail()->SetString( "b\nc" ); }, nullptr },
	{ "ArrayNested", []( KeyValues3 &kv ) {
		  kv.ArrayAddToTail()->ArrayAddToTail()->ArrayAddToTail()->SetInt( 1 );
		  kv.ArrayAddToTail()->SetToEmptyArray();
		  kv.ArrayAddToTail()->SetMemberInt( "x", 2 );
	  }, nullptr },
	{ "ArrayTagged", []( KeyValues3 &kv ) { kv.ArrayAddToTail()->SetInt( 1 ); kv.SetSubType( KV3_SUBTYPE_FLOAT32 ); }, "float32:[ 1 ]" },
};

class KV3TextRoundTrip : public testing::TestWithParam<ValueCase_t>
{
};

INSTANTIATE_TEST_SUITE_P( Values, KV3TextRoundTrip, testing::ValuesIn( s_ValueCases ),
                          []( const testing::TestParamInfo<ValueCase_t> &info ) { return std::string( info.param.m_pName ); } );
} // namespace

TEST_P( KV3TextRoundTrip, ValueComesBackExactlyAsRootMemberAndElement )
{
	KeyValues3 value;
	GetParam().m_fnMake( value );

	std::string rootText;
	ExpectRoundTrip( value, &rootText );
	if ( GetParam().m_pWritten )
	{
		EXPECT_NE( rootText.find( std::string( "\n" ) + GetParam().m_pWritten + "\n" ), std::string::npos ) << rootText;
	}

	// Deeper down, indentation and separators around the value change.
	KeyValues3 nested;
	*nested.SetMemberEmptyTable( "outer" )->FindOrCreateMember( "m_value" ) = value;
	KeyValues3 *pList = nested.SetMemberEmptyArray( "list" );
	*pList->ArrayAddToTail() = value;
	pList->ArrayAddToTail()->SetMemberInt( "after", 1 );
	*nested.FindOrCreateMember( "last" ) = value;
	std::string nestedText;
	ExpectRoundTrip( nested, &nestedText );
	if ( GetParam().m_pWritten )
	{
		EXPECT_NE( nestedText.find( std::string( "\tm_value = " ) + GetParam().m_pWritten + "\n" ), std::string::npos ) << nestedText;
	}
}

class KV3TextMemberName : public testing::TestWithParam<const char *>
{
};

INSTANTIATE_TEST_SUITE_P( OddNames, KV3TextMemberName,
                          testing::Values( "", "with space", "quo\"te", "a=b", "back\\slash", "ключ", "123", "1.5", "-", "true", "null", "nan", "inf",
                                           "resource", "resource:", "x\ny", "tab\there", "_ok", "a.b", "//not a comment", "/*", "}", "]", "#[",
                                           "\"\"\"", "\x01" ) );

TEST_P( KV3TextMemberName, OddMemberNamesRoundTripAndStayFindable )
{
	KeyValues3 kv;
	kv.SetMemberInt( "before", 1 );
	kv.SetMemberString( GetParam(), "value" );
	kv.SetMemberInt( "after", 2 );
	std::string text;
	ExpectRoundTrip( kv, &text );
	KeyValues3 back;
	ASSERT_TRUE( Load( text, &back ) );
	EXPECT_STREQ( back.GetMemberString( GetParam() ), "value" );
	EXPECT_STREQ( back.GetMemberName( 1 ), GetParam() );
}

TEST( KV3Text, WritesTheDocumentedLayout )
{
	KeyValues3 kv;
	kv.SetMemberString( "_class", "C_OP_Decay" );
	kv.SetMemberFloat( "m_flRadius", 2.5f );
	KeyValues3 *pOffset = kv.SetMemberEmptyArray( "m_vecOffset" );
	for ( float fl : { 0.0f, 0.0f, 1.0f } )
		pOffset->ArrayAddToTail()->SetFloat( fl );
	kv.SetMemberString( "m_hMaterial", "materials/spark.timg", KV3_SUBTYPE_STRING_RESOURCE_NAME );
	kv.SetMemberString( "m_Notes", "two\nlines" );
	kv.SetMemberEmptyArray( "m_Children" )->ArrayAddToTail()->SetMemberUInt( "m_nMask", 3 );
	kv.SetMemberString( "display name", "x" );

	EXPECT_EQ( Save( kv ),
	           "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
	           "{\n"
	           "\t_class = \"C_OP_Decay\"\n"
	           "\tm_flRadius = 2.5f\n"
	           "\tm_vecOffset = [ 0.0f, 0.0f, 1.0f ]\n"
	           "\tm_hMaterial = resource:\"materials/spark.timg\"\n"
	           "\tm_Notes = \"\"\"\n"
	           "\t\ttwo\n"
	           "\t\tlines\n"
	           "\t\t\"\"\"\n"
	           "\tm_Children = [\n"
	           "\t\t{\n"
	           "\t\t\tm_nMask = 3u\n"
	           "\t\t},\n"
	           "\t]\n"
	           "\t\"display name\" = \"x\"\n"
	           "}\n" );
	EXPECT_EQ( Save( kv, KV3_SAVE_NO_HEADER ).find( "---" ), std::string::npos );
}

TEST( KV3Text, ReadsHandWrittenTextWithCommentsAndLooseSpacing )
{
	const char *pText =
		"\xEF\xBB\xBF\r\n--- kv3 encoding=text:E21C7F3C-8A33-41C5-9977-A76D3A32AA0D format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e note=x:00000000-0000-0000-0000-000000000000 ---\r\n"
		"// a particle system\r\n"
		"{ /* inline */ a=1 b = [1,2,] // trailing comma\r\n"
		"\tc = \"\\/\\u00e9\\ud83d\\udd25\" d = resource: \"x\"\r\n"
		"\te = \"\"\"   \r\n"
		"\t\tline one\r\n"
		"\r\n"
		"\t\tline three\r\n"
		"\t\t\"\"\" f = #[0a0B\r\n ff] g = -inf h = 1E3 i = 2.5e-1f\r\n"
		"}/* done */\r\n";
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &kv, &error, pText, strlen( pText ), KV3_FORMAT_TFXS ) ) << error.Get();
	EXPECT_EQ( kv.GetMemberInt( "a" ), 1 );
	EXPECT_EQ( kv.FindMember( "b" )->GetArrayElementCount(), 2 );
	EXPECT_STREQ( kv.GetMemberString( "c" ), "/\xC3\xA9\xF0\x9F\x94\xA5" );
	EXPECT_EQ( kv.FindMember( "d" )->GetSubType(), KV3_SUBTYPE_STRING_RESOURCE_NAME );
	EXPECT_STREQ( kv.GetMemberString( "e" ), "line one\n\nline three" );
	const KeyValues3 *pBlob = kv.FindMember( "f" );
	ASSERT_EQ( pBlob->GetBinaryBlobSize(), 3u );
	EXPECT_EQ( pBlob->GetBinaryBlob()[ 1 ], 0x0b );
	EXPECT_EQ( kv.GetMemberDouble( "g" ), -HUGE_VAL );
	EXPECT_EQ( kv.GetMemberDouble( "h" ), 1000.0 );
	EXPECT_EQ( kv.FindMember( "i" )->GetSubType(), KV3_SUBTYPE_FLOAT32 );
	EXPECT_EQ( kv.GetMemberFloat( "i" ), 0.25f );
}

TEST( KV3Text, FormattingTwiceGivesTheSameText )
{
	const char *pText = R"(--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---
{   _class = "CParticleSystemDefinition"  m_nBehaviorVersion = 12
	m_nMaxParticles = 64  m_flConstantRadius = 15.0f   m_ConstantColor = [255, 200, 160, 255]
	m_Renderers = [ { _class = "C_OP_RenderSprites" m_vecTexturesInput = [ { m_hTexture = resource:"materials/particle/spark.timg" } ] } ]
	m_Operators = [ { _class = "C_OP_Decay" }, { _class = "C_OP_FadeOut" m_flFadeOutTimeMin = 0.25f m_bEaseInOut = true },
	]
	m_Children = []  m_controlPointConfigurations = [ { m_name = "preview" m_drivers = [ { m_iAttachType = "PATTACH_WORLDORIGIN" m_vecOffset = [0.0, 0.0, 64.0] } ] } ]
}
)";
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &kv, &error, pText, strlen( pText ), KV3_FORMAT_TFXS ) ) << error.Get();
	std::string first = Save( kv );
	KeyValues3 again;
	ASSERT_TRUE( Load( first, &again ) );
	EXPECT_TRUE( again.IsEqual( kv ) );
	EXPECT_EQ( Save( again ), first );
}

TEST( KV3Text, SaveRefusesWhatCouldNotBeReadBack )
{
	KeyValues3 deep;
	KeyValues3 *pLevel = &deep;
	for ( int i = 0; i < KV3_MAX_NESTING_DEPTH; ++i )
		pLevel = pLevel->ArrayAddToTail();
	pLevel->SetToEmptyArray(); // one container more than a reader takes

	CUtlBuffer buffer;
	CUtlString error;
	EXPECT_FALSE( SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &deep, &error, &buffer ) );
	EXPECT_NE( std::string( error.Get() ).find( "nested too deeply" ), std::string::npos ) << error.Get();
	EXPECT_EQ( buffer.TellPut(), 0u );

	KeyValues3 fine;
	const KV3ID_t binary = { "binary", 1, 2 };
	EXPECT_FALSE( SaveKV3( binary, KV3_FORMAT_GENERIC, &fine, &error, &buffer ) );
	EXPECT_NE( std::string( error.Get() ).find( "unsupported encoding \"binary\"" ), std::string::npos ) << error.Get();
	const KV3ID_t badName = { "has space", 1, 2 };
	EXPECT_FALSE( SaveKV3( KV3_ENCODING_TEXT, badName, &fine, &error, &buffer ) );
	EXPECT_EQ( buffer.TellPut(), 0u );
}

TEST( KV3Text, SaveToStringWritesTheGivenFormat )
{
	KeyValues3 kv;
	kv.SetMemberInt( "n", 1 );
	CUtlString text;
	ASSERT_TRUE( SaveKV3ToString( &kv, &text, KV3_FORMAT_GENERIC ) );
	EXPECT_NE( std::string( text.Get() ).find( "format=generic:7412167c-06e9-4698-aff2-e63eb59037e7" ), std::string::npos );
	EXPECT_TRUE( LooksLikeKV3TextData( text.Get(), text.Length() ) );
}
