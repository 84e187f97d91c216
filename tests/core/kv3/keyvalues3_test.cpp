#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>
#include <utility>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"

namespace
{
std::string MemberName( int i )
{
	return "m_nMember" + std::to_string( i );
}

KeyValues3 TableWithMembers( int nCount )
{
	KeyValues3 kv;
	kv.SetToEmptyTable();
	for ( int i = 0; i < nCount; ++i )
		kv.SetMemberInt( MemberName( i ).c_str(), i );
	return kv;
}

// A table read from text lives in one block; the tests check both kinds of storage.
KeyValues3 ParsedTable( const char *pBody )
{
	std::string text = std::string( "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n" ) + pBody;
	KeyValues3 kv;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get();
	return kv;
}
} // namespace

TEST( KV3MemberName, HashIsMurmur2OfLowerCasedName )
{
	EXPECT_EQ( CKV3MemberName( "CBaseKV3DataWithFGDClass" ).GetHashCode(), 0x505a0621u );
	EXPECT_EQ( CKV3MemberName( "cbasekv3datawithfgdclass" ).GetHashCode(), 0x505a0621u );
	EXPECT_EQ( MurmurHash2( "cbasekv3datawithfgdclass", 24, KV3_MEMBER_NAME_SEED ), 0x505a0621u );
	EXPECT_NE( MurmurHash2( "CBaseKV3DataWithFGDClass", 24, KV3_MEMBER_NAME_SEED ), 0x505a0621u );
}

TEST( KV3MemberName, LowerCaseHashFoldsOnlyAsciiLetters )
{
	// Every byte value, at every position of a word, against hashing a lower-cased copy.
	for ( int nByte = 0; nByte < 256; ++nByte )
	{
		for ( size_t nLength = 1; nLength <= 9; ++nLength )
		{
			std::string text( nLength, 'Q' );
			text[ size_t( nByte ) % nLength ] = char( nByte );
			std::string lower = text;
			for ( char &c : lower )
				c = ( c >= 'A' && c <= 'Z' ) ? char( c + 32 ) : c;
			ASSERT_EQ( MurmurHash2LowerCase( text.data(), text.size(), KV3_MEMBER_NAME_SEED ), MurmurHash2( lower.data(), lower.size(), KV3_MEMBER_NAME_SEED ) )
				<< "byte " << nByte << " length " << nLength;
		}
	}
}

TEST( KeyValues3, StartsAsNull )
{
	KeyValues3 kv;
	EXPECT_TRUE( kv.IsNull() );
	EXPECT_STREQ( kv.GetTypeAsString(), "null" );
	EXPECT_EQ( kv.GetMemberCount(), 0 );
	EXPECT_EQ( kv.GetArrayElementCount(), 0 );
}

class KeyValues3TableSize : public testing::TestWithParam<int>
{
};

// Sizes on both sides of the point where tables switch from scanning to a hash index.
INSTANTIATE_TEST_SUITE_P( SmallAndLarge, KeyValues3TableSize, testing::Values( 1, 15, 16, 17, 300 ) );

TEST_P( KeyValues3TableSize, FindsMembersIgnoringCaseAndKeepsTheirSpelling )
{
	KeyValues3 kv = TableWithMembers( GetParam() );
	for ( int i = 0; i < GetParam(); ++i )
	{
		std::string upper = MemberName( i );
		for ( char &c : upper )
			c = char( toupper( c ) );
		const KeyValues3 *pMember = kv.FindMember( upper.c_str() );
		ASSERT_NE( pMember, nullptr ) << upper;
		EXPECT_EQ( pMember->GetInt(), i );
		EXPECT_EQ( kv.FindMemberIndex( upper.c_str() ), i );
		EXPECT_EQ( MemberName( i ), kv.GetMemberName( i ) );
	}
	EXPECT_EQ( kv.FindMember( "m_nMissing" ), nullptr );

	bool bCreated = true;
	kv.FindOrCreateMember( "M_NMEMBER0", &bCreated );
	EXPECT_FALSE( bCreated );
	EXPECT_EQ( kv.GetMemberCount(), GetParam() );
}

TEST_P( KeyValues3TableSize, RemovingMembersKeepsOrderAndLookups )
{
	KeyValues3 kv = TableWithMembers( GetParam() );
	EXPECT_TRUE( kv.RemoveMember( "M_nMember0" ) );
	EXPECT_FALSE( kv.RemoveMember( "m_nMember0" ) );
	kv.RemoveMember( kv.GetMemberCount() - 1 ); // by index: the last
	kv.RemoveMember( 1000 );                    // out of range: nothing
	int nLeft = GetParam() - 2 < 0 ? 0 : GetParam() - 2;
	ASSERT_EQ( kv.GetMemberCount(), nLeft );
	for ( int i = 0; i < nLeft; ++i )
	{
		EXPECT_EQ( MemberName( i + 1 ), kv.GetMemberName( i ) );
		EXPECT_EQ( kv.FindMemberIndex( MemberName( i + 1 ).c_str() ), i );
	}
	kv.RemoveAllMembers();
	EXPECT_EQ( kv.GetMemberCount(), 0 );
	EXPECT_TRUE( kv.IsTable() );
}

TEST_P( KeyValues3TableSize, ParsedTableFindsMembersIgnoringCase )
{
	std::string body = "{\n";
	for ( int i = 0; i < GetParam(); ++i )
		body += MemberName( i ) + " = " + std::to_string( i ) + "\n";
	KeyValues3 kv = ParsedTable( ( body + "}" ).c_str() );
	for ( int i = 0; i < GetParam(); ++i )
		EXPECT_EQ( kv.GetMemberInt( ( "M_N" + MemberName( i ).substr( 3 ) ).c_str(), -1 ), i );
}

TEST( KeyValues3, MemberValuesKeepTheirAddressWhileSiblingsAreAdded )
{
	for ( bool bParsed : { false, true } )
	{
		KeyValues3 kv = bParsed ? ParsedTable( "{ first = \"one\" list = [ 1, 2 ] }" ) : KeyValues3();
		if ( !bParsed )
		{
			kv.SetMemberString( "first", "one" );
			kv.SetMemberEmptyArray( "list" )->ArrayAddToTail()->SetInt( 1 );
			kv.FindMember( "list" )->ArrayAddToTail()->SetInt( 2 );
		}
		KeyValues3 *pFirst = kv.FindMember( "first" );
		KeyValues3 *pList = kv.FindMember( "list" );
		KeyValues3 *pElement = pList->GetArrayElement( 1 );
		for ( int i = 0; i < 500; ++i )
		{
			kv.SetMemberInt( MemberName( i ).c_str(), i );
			pList->ArrayInsertBefore( 0 )->SetInt( -i );
		}
		EXPECT_EQ( kv.FindMember( "first" ), pFirst );
		EXPECT_STREQ( pFirst->GetString(), "one" );
		EXPECT_EQ( pList->GetArrayElement( 501 ), pElement );
		EXPECT_EQ( pElement->GetInt(), 2 );
	}
}

TEST( KeyValues3, RenameKeepsPositionAndRefusesTakenNames )
{
	KeyValues3 kv = TableWithMembers( 3 );
	EXPECT_TRUE( kv.RenameMember( "m_nMember1", "m_flRadius" ) );
	EXPECT_STREQ( kv.GetMemberName( 1 ), "m_flRadius" );
	EXPECT_EQ( kv.GetMemberInt( "M_FLRADIUS" ), 1 );
	EXPECT_FALSE( kv.HasMember( "m_nMember1" ) );
	EXPECT_FALSE( kv.RenameMember( "m_flRadius", "M_NMEMBER2" ) );
	EXPECT_FALSE( kv.RenameMember( "m_nAbsent", "m_nOther" ) );
	EXPECT_TRUE( kv.RenameMember( "m_flRadius", "M_FLRADIUS" ) ); // its own name in other case
	EXPECT_STREQ( kv.GetMemberName( 1 ), "M_FLRADIUS" );
}

TEST( KeyValues3, DeepCopyIsIndependentOfTheOriginal )
{
	for ( bool bParsed : { false, true } )
	{
		KeyValues3 original = ParsedTable( "{ name = \"spark\" children = [ { radius = 2.5 } ] }" );
		if ( !bParsed )
		{
			original.SetToNull();
			original.SetMemberString( "name", "spark" );
			original.SetMemberEmptyArray( "children" )->ArrayAddToTail()->SetMemberDouble( "radius", 2.5 );
		}
		KeyValues3 copy( original );
		EXPECT_TRUE( copy.IsEqual( original ) );
		copy.SetMemberString( "name", "smoke" );
		copy.FindMember( "children" )->GetArrayElement( 0 )->SetMemberDouble( "radius", 9.0 );
		EXPECT_STREQ( original.GetMemberString( "name" ), "spark" );
		EXPECT_EQ( original.FindMember( "children" )->GetArrayElement( 0 )->GetMemberDouble( "radius" ), 2.5 );
		EXPECT_FALSE( copy.IsEqual( original ) );

		KeyValues3 assigned;
		assigned.SetInt( 4 );
		assigned.CopyFrom( original );
		EXPECT_TRUE( assigned.IsEqual( original ) );
	}
}

TEST( KeyValues3, ValuesMovedOutOfAParsedTableOutliveIt )
{
	KeyValues3 moved;
	KeyValues3 copied;
	{
		KeyValues3 kv = ParsedTable( "{ s = \"text in the table's block\" b = #[ 01 02 ] }" );
		moved = std::move( *kv.FindMember( "s" ) );
		copied = *kv.FindMember( "b" );
		EXPECT_TRUE( kv.FindMember( "s" )->IsNull() );
	}
	EXPECT_STREQ( moved.GetString(), "text in the table's block" );
	ASSERT_EQ( copied.GetBinaryBlobSize(), 2u );
	EXPECT_EQ( copied.GetBinaryBlob()[ 1 ], 2 );
}

TEST( KeyValues3, AssigningAChildToItsParentKeepsTheChild )
{
	KeyValues3 kv = ParsedTable( "{ inner = { value = 7 list = [ \"a\" ] } }" );
	kv = *kv.FindMember( "inner" );
	EXPECT_EQ( kv.GetMemberInt( "value" ), 7 );
	kv = std::move( *kv.FindMember( "list" ) );
	ASSERT_EQ( kv.GetArrayElementCount(), 1 );
	EXPECT_STREQ( kv.GetArrayElement( 0 )->GetString(), "a" );

	KeyValues3 text;
	text.SetString( "prefix-name" );
	text.SetString( text.GetString() + 7 ); // from its own storage
	EXPECT_STREQ( text.GetString(), "name" );
}

TEST( KeyValues3, StringsKeepEmbeddedNulsAndSubtype )
{
	KeyValues3 kv;
	kv.SetString( "a\0b", 3, KV3_SUBTYPE_STRING_RESOURCE_NAME );
	EXPECT_EQ( kv.GetStringLength(), 3u );
	EXPECT_EQ( memcmp( kv.GetString(), "a\0b", 3 ), 0 );
	EXPECT_EQ( kv.GetSubType(), KV3_SUBTYPE_STRING_RESOURCE_NAME );
	kv.SetString( nullptr );
	EXPECT_STREQ( kv.GetString( "default" ), "" );
}

TEST( KeyValues3, EqualityComparesTypesSubtypesOrderAndBits )
{
	auto make = []( auto fnSetup ) {
		KeyValues3 kv;
		fnSetup( kv );
		return kv;
	};
	KeyValues3 intValue = make( []( KeyValues3 &kv ) { kv.SetInt( 1 ); } );
	EXPECT_FALSE( intValue.IsEqual( make( []( KeyValues3 &kv ) { kv.SetInt64( 1 ); } ) ) );
	EXPECT_FALSE( intValue.IsEqual( make( []( KeyValues3 &kv ) { kv.SetUInt( 1 ); } ) ) );
	EXPECT_FALSE( make( []( KeyValues3 &kv ) { kv.SetDouble( 0.0 ); } ).IsEqual( make( []( KeyValues3 &kv ) { kv.SetDouble( -0.0 ); } ) ) );
	EXPECT_TRUE( make( []( KeyValues3 &kv ) { kv.SetDouble( NAN ); } ).IsEqual( make( []( KeyValues3 &kv ) { kv.SetDouble( -NAN ); } ) ) );
	EXPECT_FALSE( make( []( KeyValues3 &kv ) { kv.SetString( "a\0b", 3 ); } ).IsEqual( make( []( KeyValues3 &kv ) { kv.SetString( "a\0c", 3 ); } ) ) );

	KeyValues3 ab = make( []( KeyValues3 &kv ) { kv.SetMemberInt( "a", 1 ); kv.SetMemberInt( "b", 2 ); } );
	KeyValues3 ba = make( []( KeyValues3 &kv ) { kv.SetMemberInt( "b", 2 ); kv.SetMemberInt( "a", 1 ); } );
	KeyValues3 upper = make( []( KeyValues3 &kv ) { kv.SetMemberInt( "A", 1 ); kv.SetMemberInt( "b", 2 ); } );
	EXPECT_TRUE( ab.IsEqual( KeyValues3( ab ) ) );
	EXPECT_FALSE( ab.IsEqual( ba ) );
	EXPECT_FALSE( ab.IsEqual( upper ) );
}

TEST( KeyValues3, WalkVisitsInOrderWithDepthAndCanSkipChildren )
{
	KeyValues3 kv = ParsedTable( "{ a = 1 list = [ { deep = true }, 2 ] skipped = { hidden = 3 } }" );
	std::vector<std::pair<int, std::string>> visits;
	kv.WalkWith( [ & ]( const KeyValues3 *pValue, int nDepth ) {
		visits.emplace_back( nDepth, pValue->GetTypeAsString() );
		return !( pValue->IsTable() && pValue->HasMember( "hidden" ) );
	} );
	std::vector<std::pair<int, std::string>> expected = {
		{ 0, "table" }, { 1, "int" }, { 1, "array" }, { 2, "table" }, { 3, "bool" }, { 2, "int" }, { 1, "table" },
	};
	EXPECT_EQ( visits, expected );
}

TEST( KeyValues3, TypedReadsAnswerTheDefaultForMissingOrOtherKinds )
{
	KeyValues3 kv;
	kv.SetMemberString( "name", "spark" );
	kv.SetMemberDouble( "huge", 1e300 );
	kv.SetMemberDouble( "nan", NAN );
	kv.SetMemberUInt64( "max", UINT64_MAX );
	kv.SetMemberBool( "on", true );
	EXPECT_EQ( kv.GetMemberInt( "missing", 42 ), 42 );
	EXPECT_EQ( kv.GetMemberInt( "name", 42 ), 42 );
	EXPECT_STREQ( kv.GetMemberString( "huge", "fallback" ), "fallback" );
	EXPECT_EQ( kv.GetMemberInt( "huge" ), INT32_MAX ); // saturates instead of overflowing
	EXPECT_EQ( kv.GetMemberInt64( "nan", 5 ), 0 );
	EXPECT_EQ( kv.GetMemberUInt64( "max" ), UINT64_MAX );
	EXPECT_EQ( kv.GetMemberFloat( "on" ), 1.0f );
	EXPECT_TRUE( kv.GetMemberBool( "huge" ) );
}

TEST( KeyValues3, MemberWritesTurnAnotherKindIntoATable )
{
	KeyValues3 kv;
	kv.SetInt( 3 );
	EXPECT_EQ( kv.GetMemberCount(), 0 );
	EXPECT_EQ( kv.GetMemberName( 0 ), nullptr );
	EXPECT_EQ( kv.GetMember( 0 ), nullptr );
	kv.SetMemberInt( "x", 1 );
	EXPECT_TRUE( kv.IsTable() );
	EXPECT_EQ( kv.GetMemberCount(), 1 );
	kv.ArrayAddToTail();
	EXPECT_TRUE( kv.IsArray() );
	EXPECT_EQ( kv.GetArrayElementCount(), 1 );
}

TEST( KeyValues3, ArrayInsertAndRemoveKeepOrder )
{
	KeyValues3 kv;
	kv.ArrayAddToTail()->SetInt( 1 );
	kv.ArrayAddToTail()->SetInt( 3 );
	kv.ArrayInsertBefore( 1 )->SetInt( 2 );
	kv.ArrayInsertBefore( 0 )->SetInt( 0 );
	kv.ArrayInsertBefore( 4 )->SetInt( 4 );
	EXPECT_EQ( kv.ArrayInsertBefore( 6 ), nullptr );
	EXPECT_EQ( kv.ArrayInsertBefore( -1 ), nullptr );
	ASSERT_EQ( kv.GetArrayElementCount(), 5 );
	for ( int i = 0; i < 5; ++i )
		EXPECT_EQ( kv.GetArrayElement( i )->GetInt(), i );
	kv.ArrayRemoveElement( 2 );
	kv.ArrayRemoveElement( 9 );
	EXPECT_EQ( kv.GetArrayElement( 2 )->GetInt(), 3 );
	EXPECT_EQ( kv.GetArrayElement( 4 ), nullptr );
	kv.ArrayRemoveAll();
	EXPECT_EQ( kv.GetArrayElementCount(), 0 );
}
