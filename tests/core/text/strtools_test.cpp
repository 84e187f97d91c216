#include "core/text/strtools.h"
#include "core/text/utlstring.h"

#include <gtest/gtest.h>

#include <climits>
#include <clocale>
#include <cmath>
#include <string>
#include <vector>

TEST( StrTools, CaseInsensitiveCompareOrdersLikeLowerCase )
{
	EXPECT_EQ( V_stricmp_fast( "Particles", "PARTICLES" ), 0 );
	EXPECT_LT( V_stricmp_fast( "alpha", "Beta" ), 0 );
	EXPECT_GT( V_stricmp_fast( "zeta", "Alpha" ), 0 );
	EXPECT_LT( V_stricmp_fast( "abc", "abcd" ), 0 );
	EXPECT_EQ( V_stricmp_fast( nullptr, "" ), 0 );
	EXPECT_EQ( V_strnicmp_fast( "Render_Sprites", "RENDER_models", 7 ), 0 );
	EXPECT_NE( V_strnicmp_fast( "Render_Sprites", "RENDER_models", 8 ), 0 );
	EXPECT_STREQ( V_stristr_fast( "C_OP_FadeAndKill", "fadeand" ), "FadeAndKill" );
	EXPECT_EQ( V_stristr_fast( "C_OP_FadeAndKill", "fadeout" ), nullptr );
	EXPECT_TRUE( V_StringHasSuffix_fast( "embers.TFXS", ".tfxs" ) );
	EXPECT_FALSE( V_StringHasSuffix_fast( "s", ".tfxs" ) );
}

TEST( StrTools, CopyNeverOverrunsAndSaysWhenItCut )
{
	char buffer[ 6 ];
	EXPECT_TRUE( V_strncpy( buffer, "fire", sizeof( buffer ) ) );
	EXPECT_STREQ( buffer, "fire" );
	EXPECT_FALSE( V_strncpy( buffer, "fireworks", sizeof( buffer ) ) );
	EXPECT_STREQ( buffer, "firew" );
	EXPECT_FALSE( V_strncat( buffer, "xyz", sizeof( buffer ) ) );
	EXPECT_STREQ( buffer, "firew" );

	char small[ 8 ] = "ab";
	EXPECT_TRUE( V_strncat( small, "cd", sizeof( small ) ) );
	EXPECT_STREQ( small, "abcd" );
}

TEST( StrTools, SnprintfCountsWhatItWrote )
{
	char buffer[ 8 ];
	EXPECT_EQ( V_snprintf( buffer, sizeof( buffer ), "%d-%s", 42, "ab" ), 5 );
	EXPECT_STREQ( buffer, "42-ab" );
	EXPECT_EQ( V_snprintf( buffer, sizeof( buffer ), "%s", "0123456789" ), 7 );
	EXPECT_STREQ( buffer, "0123456" );
}

struct AtoiCase_t
{
	const char *m_pText;
	int m_nExpected;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] static void PrintTo( const AtoiCase_t &testCase, std::ostream *pOut )
{
	*pOut << testing::PrintToString( testCase.m_pText );
}

class AtoiReads : public testing::TestWithParam<AtoiCase_t>
{
};

TEST_P( AtoiReads, TheLeadingNumber )
{
	EXPECT_EQ( V_atoi( GetParam().m_pText ), GetParam().m_nExpected ) << GetParam().m_pText;
}

INSTANTIATE_TEST_SUITE_P( Texts, AtoiReads,
	testing::Values( AtoiCase_t{ "42", 42 }, AtoiCase_t{ "  -17", -17 }, AtoiCase_t{ "+8", 8 }, AtoiCase_t{ "1'000", 1 },
		AtoiCase_t{ "12px", 12 }, AtoiCase_t{ "0x1F", 31 }, AtoiCase_t{ "abc", 0 }, AtoiCase_t{ "", 0 }, AtoiCase_t{ nullptr, 0 },
		AtoiCase_t{ "99999999999", INT_MAX }, AtoiCase_t{ "-99999999999", INT_MIN }, AtoiCase_t{ "-2147483648", INT_MIN } ) );

TEST( StrTools, AtofReadsDecimalsWhateverTheLocale )
{
	// A UI may switch the C locale to one with a decimal comma; file numbers must not care.
	const char *pOldLocale = setlocale( LC_NUMERIC, nullptr );
	std::string oldLocale = pOldLocale ? pOldLocale : "C";
	bool bSwitched = setlocale( LC_NUMERIC, "de_DE.UTF-8" ) != nullptr;
	EXPECT_FLOAT_EQ( V_atof( "1.5" ), 1.5f );
	EXPECT_DOUBLE_EQ( V_atod( " -2.25e2xyz" ), -225.0 );
	EXPECT_DOUBLE_EQ( V_atod( "+.5" ), 0.5 );
	EXPECT_EQ( V_atod( "x1" ), 0.0 );
	EXPECT_TRUE( std::isinf( V_atod( "1e999" ) ) );
	if ( bSwitched )
		setlocale( LC_NUMERIC, oldLocale.c_str() );
}

TEST( StrTools, StrictNumberParsingRejectsTrailingText )
{
	double flValue = 0.0;
	EXPECT_TRUE( V_StringToDouble( " 3.25 ", &flValue ) );
	EXPECT_DOUBLE_EQ( flValue, 3.25 );
	EXPECT_FALSE( V_StringToDouble( "3.25x", &flValue ) );
	EXPECT_FALSE( V_StringToDouble( "", &flValue ) );

	int64_t nValue = 0;
	EXPECT_TRUE( V_StringToInt64( "-9223372036854775808", &nValue ) );
	EXPECT_EQ( nValue, INT64_MIN );
	EXPECT_TRUE( V_StringToInt64( "0x10", &nValue ) );
	EXPECT_EQ( nValue, 16 );
	EXPECT_FALSE( V_StringToInt64( "1.5", &nValue ) );
	EXPECT_FALSE( V_StringToInt64( "9223372036854775808", &nValue ) );
}

TEST( StrTools, QsortPassesTheContextAndKeepsEqualsInOrder )
{
	struct Item_t
	{
		int m_nKey;
		int m_nOrder;
	};
	std::vector<Item_t> items = { { 3, 0 }, { 1, 1 }, { 3, 2 }, { 2, 3 }, { 1, 4 }, { 0, 5 }, { 2, 6 } };
	int nDirection = -1; // descending, chosen through the context
	V_qsort( items.data(), items.size(), sizeof( Item_t ),
		[]( void *pContext, const void *pA, const void *pB ) {
			int nSign = *static_cast<int *>( pContext );
			return nSign * ( static_cast<const Item_t *>( pA )->m_nKey - static_cast<const Item_t *>( pB )->m_nKey );
		},
		&nDirection );
	std::vector<std::pair<int, int>> sorted;
	for ( const Item_t &item : items )
		sorted.emplace_back( item.m_nKey, item.m_nOrder );
	std::vector<std::pair<int, int>> expected = { { 3, 0 }, { 3, 2 }, { 2, 3 }, { 2, 6 }, { 1, 1 }, { 1, 4 }, { 0, 5 } };
	EXPECT_EQ( sorted, expected );
}

TEST( StrTools, QsortSurvivesAComparisonThatLies )
{
	std::vector<int> values( 200 );
	for ( int i = 0; i < 200; ++i )
		values[ size_t( i ) ] = ( i * 7919 ) % 200;
	V_qsort( values.data(), values.size(), sizeof( int ), []( void *, const void *, const void * ) { return -1; }, nullptr );
	std::vector<int> counts( 200, 0 );
	for ( int value : values )
		++counts[ size_t( value ) ];
	for ( int count : counts )
		EXPECT_EQ( count, 1 ); // still a permutation of what went in
}

TEST( StrTools, StrSubstReplacesEveryMatch )
{
	char buffer[ 64 ];
	EXPECT_TRUE( V_StrSubst( "$dir/$name.$ext", "$name", "embers", buffer, sizeof( buffer ) ) );
	EXPECT_STREQ( buffer, "$dir/embers.$ext" );
	EXPECT_TRUE( V_StrSubst( "A-a-A", "a", "bb", buffer, sizeof( buffer ), false ) );
	EXPECT_STREQ( buffer, "bb-bb-bb" );
	EXPECT_FALSE( V_StrSubst( "aaaa", "a", "long", buffer, 8 ) );
	EXPECT_STREQ( buffer, "longlon" );

	CUtlString result;
	EXPECT_TRUE( V_StrSubst( "x.x.x", ".", "::", &result ) );
	EXPECT_STREQ( result.Get(), "x::x::x" );
	EXPECT_FALSE( V_StrSubst( "abc", "", "z", &result ) );
	EXPECT_STREQ( result.Get(), "abc" );
}

TEST( StrTools, FloatHelpersMatchTheirDefinitions )
{
	EXPECT_DOUBLE_EQ( V_fmodd( 7.5, 2.0 ), 1.5 );
	EXPECT_DOUBLE_EQ( V_fmodd( -7.5, 2.0 ), -1.5 );
	EXPECT_FLOAT_EQ( V_roundf( 2.5f ), 3.0f );
	EXPECT_FLOAT_EQ( V_roundf( -2.5f ), -3.0f );
	EXPECT_FLOAT_EQ( V_acosf( 1.0000001f ), 0.0f );
}
