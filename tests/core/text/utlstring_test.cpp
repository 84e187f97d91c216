#include "core/text/utlstring.h"

#include <gtest/gtest.h>

#include <string>

TEST( UtlString, FormatMayUseItsOwnTextAsAnArgument )
{
	CUtlString path( "content" );
	path.Format( "%s/%s", path.Get(), "particles" );
	EXPECT_STREQ( path.Get(), "content/particles" );
	std::string longName( 300, 'z' );
	path.AppendFormat( "/%s/%s", longName.c_str(), path.Get() );
	EXPECT_EQ( std::string( path.Get() ), "content/particles/" + longName + "/content/particles" );
}

TEST( UtlString, PathPieces )
{
	CUtlString path( "content\\particles/fire.tfxs" );
	EXPECT_STREQ( path.DirName().Get(), "content\\particles" );
	EXPECT_STREQ( path.UnqualifiedFilename(), "fire.tfxs" );
	EXPECT_STREQ( path.GetExtension(), "tfxs" );
	path.StripFilename();
	EXPECT_STREQ( path.Get(), "content\\particles" );
	path.FixSlashes( '/' );
	EXPECT_STREQ( path.Get(), "content/particles" );
}

TEST( UtlString, ReplaceTrimAndCompare )
{
	CUtlString text( "  Fire and fire  " );
	text.TrimWhitespace();
	EXPECT_STREQ( text.Get(), "Fire and fire" );
	EXPECT_TRUE( text.Replace( "fire", "ice", false ) );
	EXPECT_STREQ( text.Get(), "ice and ice" );
	EXPECT_FALSE( text.Replace( "smoke", "steam" ) );
	EXPECT_TRUE( text.IsEqual_CaseInsensitive( "ICE AND ICE" ) );
	CUtlString nullText( nullptr );
	EXPECT_STREQ( nullText.Get(), "" );
}
