#include <gtest/gtest.h>

#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/mathlib/colorgradient.h"
#include "core/text/utlstring.h"

namespace
{
const char s_Header[] = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";

void ExpectColor( Color actual, int r, int g, int b, int a )
{
	EXPECT_EQ( actual.r(), r );
	EXPECT_EQ( actual.g(), g );
	EXPECT_EQ( actual.b(), b );
	EXPECT_EQ( actual.a(), a );
}
} // namespace

TEST( ColorGradient, EmptyIsOpaqueWhiteAndOneStopIsEverywhere )
{
	CColorGradient gradient;
	ExpectColor( gradient.Evaluate( 0.3f ), 255, 255, 255, 255 );
	gradient.AddStop( 0.4f, Color( 10, 20, 30, 40 ) );
	for ( float t : { -1.0f, 0.0f, 0.4f, 0.9f, 3.0f } )
		ExpectColor( gradient.Evaluate( t ), 10, 20, 30, 40 );
}

TEST( ColorGradient, InterpolatesBetweenStopsAndHoldsEndsOutside )
{
	CColorGradient gradient;
	gradient.AddStop( 0.75f, Color( 200, 0, 100, 255 ) );
	gradient.AddStop( 0.25f, Color( 0, 100, 100, 55 ) );
	ASSERT_EQ( gradient.GetStopCount(), 2 );
	EXPECT_FLOAT_EQ( gradient.GetStopPosition( 0 ), 0.25f );
	ExpectColor( gradient.Evaluate( 0.5f ), 100, 50, 100, 155 );
	// 0.3 is a tenth of the way: channels are cut, not rounded.
	ExpectColor( gradient.Evaluate( 0.3f ), 20, 90, 100, 75 );
	ExpectColor( gradient.Evaluate( 0.1f ), 0, 100, 100, 55 );
	ExpectColor( gradient.Evaluate( 0.75f ), 200, 0, 100, 255 );
	ExpectColor( gradient.Evaluate( 1.0f ), 200, 0, 100, 255 );
}

TEST( ColorGradient, EqualPositionsMakeAHardEdgeWithTheLaterStopToTheRight )
{
	CColorGradient gradient;
	gradient.AddStop( 0.0f, Color( 0, 0, 0 ) );
	gradient.AddStop( 0.5f, Color( 255, 0, 0 ) );
	gradient.AddStop( 0.5f, Color( 0, 0, 255 ) );
	gradient.AddStop( 1.0f, Color( 0, 0, 0 ) );
	EXPECT_EQ( gradient.GetStopColor( 1 ), Color( 255, 0, 0 ) );
	EXPECT_EQ( gradient.GetStopColor( 2 ), Color( 0, 0, 255 ) );
	EXPECT_GT( gradient.Evaluate( 0.4999f ).r(), 250 );
	ExpectColor( gradient.Evaluate( 0.5f ), 0, 0, 255, 255 );
	EXPECT_GT( gradient.Evaluate( 0.5001f ).b(), 250 );
}

TEST( ColorGradient, StopEditsIgnoreBadIndexesAndClampPositions )
{
	CColorGradient gradient;
	EXPECT_EQ( gradient.AddStop( 7.0f, Color( 1, 2, 3 ) ), 0 );
	EXPECT_FLOAT_EQ( gradient.GetStopPosition( 0 ), 1.0f );
	gradient.AddStop( -2.0f, Color( 4, 5, 6 ) );
	EXPECT_FLOAT_EQ( gradient.GetStopPosition( 0 ), 0.0f );
	EXPECT_EQ( gradient.MoveStop( 0, 2.0f ), 1 );
	EXPECT_EQ( gradient.GetStopColor( 1 ), Color( 4, 5, 6 ) );
	EXPECT_EQ( gradient.MoveStop( 5, 0.5f ), -1 );
	gradient.RemoveStop( 9 );
	gradient.SetStopColor( -1, Color( 9, 9, 9 ) );
	EXPECT_EQ( gradient.GetStopCount(), 2 );
	EXPECT_EQ( gradient.GetStopColor( 12 ), Color( 255, 255, 255, 255 ) );
	EXPECT_EQ( gradient.GetStopPosition( 12 ), 0.0f );
}

TEST( ColorGradient, KV3LoadClampsAndSortsStops )
{
	std::string text = std::string( s_Header ) + R"({ m_Stops = [
		{ m_flPosition = 1.5 m_Color = [ 0, 0, 255 ] },
		{ m_flPosition = -0.5 m_Color = [ 255, 0, 0, 128 ] },
		{ m_flPosition = 0.5 m_Color = [ 0, 255, 0 ] } ] })";
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &kv, &error, text.data(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get();
	CColorGradient gradient;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &gradient, &kv, &error ) ) << error.Get();
	ASSERT_EQ( gradient.GetStopCount(), 3 );
	EXPECT_FLOAT_EQ( gradient.GetStopPosition( 0 ), 0.0f );
	EXPECT_EQ( gradient.GetStopColor( 0 ), Color( 255, 0, 0, 128 ) );
	EXPECT_FLOAT_EQ( gradient.GetStopPosition( 2 ), 1.0f );
	EXPECT_EQ( gradient.GetStopColor( 2 ), Color( 0, 0, 255, 255 ) );
}

TEST( ColorGradient, KV3RoundTrip )
{
	CColorGradient gradient;
	gradient.AddStop( 0.1f, Color( 1, 2, 3, 4 ) );
	gradient.AddStop( 0.9f, Color( 250, 251, 252, 253 ) );
	KeyValues3 saved;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( gradient, &saved, &error ) ) << error.Get();
	ASSERT_TRUE( saved.FindMember( "m_Stops" ) && saved.FindMember( "m_Stops" )->IsArray() );
	CColorGradient loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &saved, &error ) ) << error.Get();
	ASSERT_EQ( loaded.GetStopCount(), 2 );
	EXPECT_EQ( loaded.GetStopColor( 1 ), Color( 250, 251, 252, 253 ) );
	EXPECT_FLOAT_EQ( loaded.GetStopPosition( 0 ), 0.1f );
}

TEST( ColorGradient, ReverseMirrorsTheLookAndKeepsAHardEdgeSharp )
{
	CColorGradient gradient;
	gradient.AddStop( 0.2f, Color( 255, 0, 0 ) );
	gradient.AddStop( 0.6f, Color( 0, 255, 0 ) );
	gradient.AddStop( 0.6f, Color( 0, 0, 255 ) );
	CColorGradient reversed = gradient;
	reversed.Reverse();
	ASSERT_EQ( reversed.GetStopCount(), 3 );
	for ( float t : { 0.0f, 0.1f, 0.3f, 0.55f, 0.7f, 0.9f, 1.0f } )
	{
		// Channels are cut to integers from either end: they may differ by one.
		Color a = reversed.Evaluate( 1.0f - t ), b = gradient.Evaluate( t );
		for ( int c = 0; c < 4; ++c )
			EXPECT_NEAR( a[ c ], b[ c ], 1 ) << "t " << t << " channel " << c;
	}
	// The edge at 0.6 is at 0.4 now, blue to its left and green to its right.
	EXPECT_GT( reversed.Evaluate( 0.39f ).b(), 250 );
	EXPECT_GT( reversed.Evaluate( 0.41f ).g(), 200 );
	for ( int i = 1; i < reversed.GetStopCount(); ++i )
		EXPECT_LE( reversed.GetStopPosition( i - 1 ), reversed.GetStopPosition( i ) );
}
