#include "core/text/bufferstring.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>

TEST( BufferString, MovesToTheHeapWhenTextOutgrowsInlineStorage )
{
	CBufferString text( "particles/" );
	EXPECT_TRUE( text.IsInline() );
	std::string expected = "particles/";
	for ( int i = 0; i < 40; ++i )
	{
		text.AppendFormat( "%d/", i );
		expected += std::to_string( i ) + "/";
	}
	EXPECT_FALSE( text.IsInline() );
	EXPECT_STREQ( text.Get(), expected.c_str() );
	EXPECT_EQ( text.Length(), expected.size() );
}

TEST( BufferString, FormatMayUseItsOwnTextAsAnArgument )
{
	CBufferString path( "content/particles" );
	path.Format( "%s/%s", path.Get(), "fire.tfxs" );
	EXPECT_STREQ( path.Get(), "content/particles/fire.tfxs" );

	std::string longName( 150, 'x' );
	path.AppendFormat( "|%s|%s", path.Get(), longName.c_str() );
	EXPECT_EQ( std::string( path.Get() ), "content/particles/fire.tfxs|content/particles/fire.tfxs|" + longName );

	std::string before = path.Get();
	path.Append( path.Get() );
	EXPECT_EQ( std::string( path.Get() ), before + before );
}

TEST( BufferString, StripExtensionAndLowerCase )
{
	CBufferString name( "Particles/Fire.V2/Embers.TFXS" );
	EXPECT_STREQ( name.StripExtension(), "Particles/Fire.V2/Embers" );
	EXPECT_STREQ( name.StripExtension(), "Particles/Fire.V2/Embers" );
	EXPECT_STREQ( name.ToLowerFast(), "particles/fire.v2/embers" );
	EXPECT_STREQ( name.FixSlashes(), "particles\\fire.v2\\embers" );
	EXPECT_TRUE( name.IsEqual_FastCaseInsensitive( "PARTICLES\\FIRE.V2\\EMBERS" ) );
}

TEST( BufferString, CopiesAndMovesKeepTheText )
{
	CBufferString shortText( "short" );
	CBufferString longText( std::string( 300, 'y' ).c_str() );

	CBufferString copy = longText;
	EXPECT_STREQ( copy.Get(), longText.Get() );

	CBufferString moved = std::move( longText );
	EXPECT_EQ( moved.Length(), 300u );
	EXPECT_TRUE( longText.IsEmpty() );

	CBufferString movedShort = std::move( shortText );
	EXPECT_STREQ( movedShort.Get(), "short" );
	EXPECT_TRUE( movedShort.IsInline() );

	moved = movedShort;
	EXPECT_STREQ( moved.Get(), "short" );
	moved.Purge();
	EXPECT_TRUE( moved.IsInline() );
	EXPECT_STREQ( moved.Get(), "" );
}
