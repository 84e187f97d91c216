#include "core/symbols/globalsymbol.h"
#include "core/symbols/utlsymboltable.h"
#include "core/symbols/utlsymboltablemt.h"
#include "core/text/stringhash.h"

#include <gtest/gtest.h>

#include <cstring>
#include <set>
#include <string>
#include <thread>
#include <vector>

TEST( UtlSymbolTable, InternsEachStringOnceInOrderOfAddition )
{
	CUtlSymbolTable table;
	CUtlSymbol emitters = table.AddString( "m_Emitters" );
	CUtlSymbol operators = table.AddString( "m_Operators" );
	EXPECT_EQ( table.AddString( "m_Emitters" ), emitters );
	EXPECT_NE( emitters, operators );
	EXPECT_EQ( emitters.GetId(), 0u );
	EXPECT_EQ( operators.GetId(), 1u );
	EXPECT_EQ( table.GetNumStrings(), 2 );
	EXPECT_STREQ( table.String( operators ), "m_Operators" );
	EXPECT_STREQ( table.String( CUtlSymbol() ), "" );
	EXPECT_STREQ( table.String( CUtlSymbol( 57 ) ), "" );
}

TEST( UtlSymbolTable, FindDoesNotAdd )
{
	CUtlSymbolTable table;
	EXPECT_FALSE( table.Find( "missing" ).IsValid() );
	EXPECT_EQ( table.GetNumStrings(), 0 );
	CUtlSymbol symbol = table.AddString( "present" );
	EXPECT_EQ( table.Find( "present" ), symbol );
	EXPECT_TRUE( table.HasElement( "present" ) );
}

TEST( UtlSymbolTable, CaseSensitiveTableKeepsSpellingsApart )
{
	CUtlSymbolTable table( false );
	EXPECT_NE( table.AddString( "Fire" ), table.AddString( "fire" ) );
	EXPECT_FALSE( table.Find( "FIRE" ).IsValid() );
}

TEST( UtlSymbolTable, CaseInsensitiveTableKeepsTheFirstSpelling )
{
	CUtlSymbolTable table( true );
	CUtlSymbol symbol = table.AddString( "QLineEdit" );
	EXPECT_EQ( table.AddString( "qlineedit" ), symbol );
	EXPECT_EQ( table.Find( "QLINEEDIT" ), symbol );
	EXPECT_STREQ( table.String( symbol ), "QLineEdit" );
	EXPECT_EQ( table.GetHash( symbol ), HashStringFNV1aLowerCase( "qlineedit", 9 ) );
	EXPECT_EQ( table.GetNumStrings(), 1 );
}

TEST( UtlSymbolTable, TextStaysPutWhileTheTableGrowsAndCopiesStandAlone )
{
	CUtlSymbolTable table;
	const char *pFirst = table.String( table.AddString( "first" ) );
	for ( int i = 0; i < 10000; ++i )
		table.AddString( ( "name" + std::to_string( i ) ).c_str() );
	EXPECT_EQ( table.String( table.Find( "first" ) ), pFirst );

	CUtlSymbolTable copy = table;
	table.RemoveAll();
	EXPECT_EQ( table.GetNumStrings(), 0 );
	EXPECT_FALSE( table.Find( "first" ).IsValid() );
	EXPECT_STREQ( copy.String( copy.Find( "name9999" ) ), "name9999" );
	EXPECT_EQ( copy.GetNumStrings(), 10001 );
}

TEST( UtlSymbolTableMT, ThreadsAddingTheSameNamesGetTheSameSymbols )
{
	CUtlSymbolTableMT table( true );
	std::vector<std::vector<CUtlSymbol>> results( 4 );
	std::vector<std::thread> threads;
	for ( int t = 0; t < 4; ++t )
	{
		threads.emplace_back( [ &, t ] {
			for ( int i = 0; i < 500; ++i )
				results[ size_t( t ) ].push_back( table.AddString( ( ( t % 2 ? "NAME" : "name" ) + std::to_string( i ) ).c_str() ) );
		} );
	}
	for ( std::thread &thread : threads )
		thread.join();
	EXPECT_EQ( table.GetNumStrings(), 500 );
	for ( int t = 1; t < 4; ++t )
		EXPECT_EQ( results[ size_t( t ) ], results[ 0 ] );
}

TEST( GlobalSymbol, EqualTextGivesTheSamePointer )
{
	CGlobalSymbol a( "InflowPort" );
	std::string text = "Inflow";
	text += "Port";
	CGlobalSymbol b( text.c_str() );
	EXPECT_EQ( a, b );
	EXPECT_EQ( a.String(), b.String() );
	EXPECT_NE( a, CGlobalSymbol( "inflowport" ) ); // case matters here
	EXPECT_EQ( a.GetHash(), HashStringFNV1a( "InflowPort", 10 ) );
}

TEST( GlobalSymbol, EmptyTextIsTheNullSymbol )
{
	CGlobalSymbol empty( "" );
	EXPECT_FALSE( empty.IsValid() );
	EXPECT_EQ( empty, CGlobalSymbol() );
	EXPECT_STREQ( empty.String(), "" );
	EXPECT_EQ( empty.GetHash(), 0u );
}

TEST( GlobalSymbol, FindDoesNotIntern )
{
	EXPECT_FALSE( CGlobalSymbol::Find( "never_interned_symbol_text" ).IsValid() );
	CGlobalSymbol made( "interned_symbol_text" );
	EXPECT_EQ( CGlobalSymbol::Find( "interned_symbol_text" ), made );
}

TEST( GlobalSymbolTable, ProcessWideTableIgnoresCase )
{
	CUtlSymbol symbol = GlobalSymbolTable().AddString( "Target" );
	EXPECT_EQ( GlobalSymbolTable().Find( "TARGET" ), symbol );
	EXPECT_TRUE( GlobalSymbolTable().IsCaseInsensitive() );
	EXPECT_FALSE( GlobalSymbolTableCaseSensitive().IsCaseInsensitive() );
}
