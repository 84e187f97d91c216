#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/mathlib/piecewisecurve.h"
#include "core/text/utlstring.h"

namespace
{
const char s_Header[] = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n";

bool ParseKV3( const char *pBody, KeyValues3 *pKV )
{
	std::string text = std::string( s_Header ) + pBody;
	CUtlString error;
	bool bOk = LoadKV3FromText( pKV, &error, text.data(), text.size(), KV3_FORMAT_GENERIC );
	EXPECT_TRUE( bOk ) << error.Get();
	return bOk;
}

// The textbook Hermite basis, written independently of the curve's Horner form.
float Hermite( float y0, float y1, float s0, float s1, float dx, float t )
{
	float t2 = t * t, t3 = t2 * t;
	return ( 2 * t3 - 3 * t2 + 1 ) * y0 + ( t3 - 2 * t2 + t ) * dx * s0 + ( -2 * t3 + 3 * t2 ) * y1 + ( t3 - t2 ) * dx * s1;
}

CPiecewiseCurve ThreeKeys( CurveTangentMode_t eMode )
{
	CPiecewiseCurve curve;
	curve.SetDomain( Vector2D( 0, 0 ), Vector2D( 4, 4 ) );
	curve.AddPoint( 0.0f, 0.0f, eMode, eMode, 0, 0 );
	curve.AddPoint( 1.0f, 2.0f, eMode, eMode, 0, 0 );
	curve.AddPoint( 3.0f, 1.0f, eMode, eMode, 0, 0 );
	return curve;
}
} // namespace

TEST( PiecewiseCurve, FewerThanTwoKeysEvaluateToTheInput )
{
	CPiecewiseCurve curve;
	EXPECT_FLOAT_EQ( curve.Evaluate( 0.3f ), 0.3f );
	curve.AddPoint( 0.5f, 7.0f, CURVE_TANGENT_SPLINE, CURVE_TANGENT_SPLINE, 0, 0 );
	EXPECT_FLOAT_EQ( curve.Evaluate( 0.3f ), 0.3f );
	EXPECT_FLOAT_EQ( curve.Evaluate( -12.0f ), -12.0f );
	curve.SetDomain( Vector2D( 0, 0 ), Vector2D( 1, 1 ) );
	EXPECT_FLOAT_EQ( curve.EvaluateClamped( 3.0f ), 1.0f );
	EXPECT_FLOAT_EQ( curve.EvaluateClamped( -3.0f ), 0.0f );
}

TEST( PiecewiseCurve, LinearTangentsGiveSlopesOfTheSidesAndHoldEndValuesOutside )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_LINEAR );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, 2.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeOutgoing, -0.5f );
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).m_flSlopeIncoming, 0.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 2 ).m_flSlopeOutgoing, 0.0f );
	// Linear on both sides of a segment is a straight line.
	EXPECT_NEAR( curve.Evaluate( 0.5f ), 1.0f, 1e-6f );
	EXPECT_NEAR( curve.Evaluate( 2.0f ), 1.5f, 1e-6f );
	EXPECT_FLOAT_EQ( curve.Evaluate( 1.0f ), 2.0f );
	EXPECT_FLOAT_EQ( curve.Evaluate( -5.0f ), 0.0f );
	EXPECT_FLOAT_EQ( curve.Evaluate( 50.0f ), 1.0f );
}

TEST( PiecewiseCurve, SplineTangentsUseTheCentralDifference )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_SPLINE );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, 1.0f / 3.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeOutgoing, 1.0f / 3.0f );
	// The ends take the slope of their only side.
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).m_flSlopeOutgoing, 2.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 2 ).m_flSlopeIncoming, -0.5f );
	for ( float x : { 0.25f, 0.5f, 0.9f } )
		EXPECT_NEAR( curve.Evaluate( x ), Hermite( 0, 2, 2.0f, 1.0f / 3.0f, 1, x ), 1e-5f ) << x;
	for ( float x : { 1.5f, 2.0f, 2.75f } )
		EXPECT_NEAR( curve.Evaluate( x ), Hermite( 2, 1, 1.0f / 3.0f, -0.5f, 2, ( x - 1 ) / 2 ), 1e-5f ) << x;
}

TEST( PiecewiseCurve, FreeTangentsKeepHandSetSlopes )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_FREE );
	curve.SetSlopeOutgoing( 0, 4.0f );
	curve.SetSlopeIncoming( 1, -1.0f );
	curve.RecomputeTangents();
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).m_flSlopeOutgoing, 4.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, -1.0f );
	EXPECT_NEAR( curve.Evaluate( 0.4f ), Hermite( 0, 2, 4.0f, -1.0f, 1, 0.4f ), 1e-5f );
}

TEST( PiecewiseCurve, MirrorCopiesTheOtherSideAndMirrorOnBothSidesIsFlat )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_SPLINE );
	curve.SetTangentModes( 1, CURVE_TANGENT_MIRROR, CURVE_TANGENT_LINEAR );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeOutgoing, -0.5f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, -0.5f );

	curve.SetTangentModes( 1, CURVE_TANGENT_LINEAR, CURVE_TANGENT_MIRROR );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, 2.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeOutgoing, 2.0f );

	curve.SetTangentModes( 1, CURVE_TANGENT_MIRROR, CURVE_TANGENT_MIRROR );
	EXPECT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, 0.0f );
	EXPECT_EQ( curve.GetKey( 1 ).m_flSlopeOutgoing, 0.0f );
}

TEST( PiecewiseCurve, SineTangentsDependOnTheDirectionOfEachSide )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_SINE );
	// Key 1: rising from the left over 1 unit, falling to the right over 2 units.
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeIncoming, -0.0413377f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).m_flSlopeOutgoing, 0.0413377f * 0.5f );
	// Key 0 rises to the right; its missing left side counts as flat with width 1.
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).m_flSlopeOutgoing, 1.60305f );
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).m_flSlopeIncoming, -1.60305f );
	EXPECT_NEAR( curve.Evaluate( 0.5f ), Hermite( 0, 2, 1.60305f, -0.0413377f, 1, 0.5f ), 1e-5f );
}

TEST( PiecewiseCurve, SegmentSearchAgreesFromAnyStart )
{
	CPiecewiseCurve curve;
	for ( int i = 0; i < 9; ++i )
		curve.AddPoint( float( i ), float( i * i ), CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0, 0 );
	for ( float x = -1.0f; x <= 9.0f; x += 0.25f )
	{
		int nSegment = curve.FindSegment( x );
		ASSERT_GE( nSegment, 1 );
		ASSERT_LE( nSegment, 8 );
		if ( x > 0.0f && x < 8.0f )
		{
			EXPECT_LE( curve.GetKey( nSegment - 1 ).x, x );
			EXPECT_GT( curve.GetKey( nSegment ).x, x );
		}
		for ( int nStart = 0; nStart < 10; ++nStart )
			EXPECT_EQ( curve.FindSegmentFrom( x, nStart ), nSegment ) << x << " from " << nStart;
	}
}

TEST( PiecewiseCurve, AddPointOverwritesAnEqualXAndKeepsOrder )
{
	CPiecewiseCurve curve;
	curve.Reset();
	EXPECT_EQ( curve.AddPoint( 0.5f, 0.2f, CURVE_TANGENT_FREE, CURVE_TANGENT_FREE, 1, 1 ), 1 );
	EXPECT_EQ( curve.AddPoint( 0.5f, 0.9f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0, 0 ), 1 );
	ASSERT_EQ( curve.GetKeyCount(), 3 );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).y, 0.9f );
	EXPECT_EQ( curve.GetTangents( 1 ).m_nIncomingTangent, CURVE_TANGENT_LINEAR );
	EXPECT_EQ( curve.AddPoint( -1.0f, 0.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0, 0 ), 0 );
	EXPECT_EQ( curve.AddPoint( 2.0f, 0.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR, 0, 0 ), 4 );
}

TEST( PiecewiseCurve, InsertPointContinuesTheLeftKeysOutgoingMode )
{
	CPiecewiseCurve curve;
	curve.Reset();
	curve.SetTangentModes( 0, CURVE_TANGENT_SPLINE, CURVE_TANGENT_SINE );
	int nIndex = curve.InsertPoint( 0.5f, 0.5f );
	EXPECT_EQ( nIndex, 1 );
	EXPECT_EQ( curve.GetTangents( 1 ).m_nIncomingTangent, CURVE_TANGENT_SINE );
	EXPECT_EQ( curve.GetTangents( 1 ).m_nOutgoingTangent, CURVE_TANGENT_SPLINE );
}

TEST( PiecewiseCurve, EnforceOrderPushesCloseKeysApart )
{
	CPiecewiseCurve curve;
	curve.m_spline = { CurveKey_t{ 0.0f, 0.0f, 0, 0 }, CurveKey_t{ 0.00005f, 1.0f, 0, 0 }, CurveKey_t{ 1.0f, 1.0f, 0, 0 } };
	curve.m_tangents.resize( 2 );
	curve.EnforceOrder();
	ASSERT_EQ( curve.GetKeyCount(), 2 ); // the shorter vector decides
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).x, 0.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).x, 0.0001f );
}

TEST( PiecewiseCurve, SetPointStaysBetweenNeighboursAndInsideTheDomain )
{
	CPiecewiseCurve curve;
	curve.Reset();
	curve.InsertPoint( 0.5f, 0.5f );
	curve.SetPoint( 1, 5.0f, -3.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).x, 1.0f - 0.0001f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).y, 0.0f );
	curve.SetPoint( 0, -4.0f, 9.0f, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR );
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).x, 0.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).y, 1.0f );
	curve.SetPoint( 17, 0, 0, CURVE_TANGENT_LINEAR, CURVE_TANGENT_LINEAR ); // ignored
	curve.RemovePoint( -1 );
	EXPECT_EQ( curve.GetKeyCount(), 3 );
}

TEST( PiecewiseCurve, RescaleMapsKeysAndFlipsTheXAxis )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_LINEAR );
	CPiecewiseCurve flipped = curve;
	EXPECT_TRUE( curve.Rescale( Vector2D( 0, 0 ), Vector2D( 8, 2 ) ) );
	EXPECT_FLOAT_EQ( curve.GetKey( 2 ).x, 6.0f );
	EXPECT_FLOAT_EQ( curve.GetKey( 1 ).y, 1.0f );
	EXPECT_EQ( curve.m_vDomainMaxs, Vector2D( 8, 2 ) );

	flipped.Rescale( Vector2D( 4, 0 ), Vector2D( 0, 4 ) );
	EXPECT_EQ( flipped.m_vDomainMins, Vector2D( 0, 0 ) );
	EXPECT_EQ( flipped.m_vDomainMaxs, Vector2D( 4, 4 ) );
	ASSERT_EQ( flipped.GetKeyCount(), 3 );
	// The old last key (x 3) is now first at x 1, and the old first (x 0) last at x 4.
	EXPECT_FLOAT_EQ( flipped.GetKey( 0 ).x, 1.0f );
	EXPECT_FLOAT_EQ( flipped.GetKey( 0 ).y, 1.0f );
	EXPECT_FLOAT_EQ( flipped.GetKey( 2 ).x, 4.0f );
	EXPECT_FLOAT_EQ( flipped.Evaluate( 2.5f ), 1.75f ); // between (1,1) and (3,2)
}

TEST( PiecewiseCurve, FlipVerticalMirrorsValuesInTheDomain )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_SPLINE );
	CPiecewiseCurve flipped;
	curve.FlipVertical( &flipped );
	ASSERT_EQ( flipped.GetKeyCount(), 3 );
	for ( float x : { 0.0f, 0.5f, 1.7f, 3.0f } )
		EXPECT_NEAR( flipped.Evaluate( x ), 4.0f - curve.Evaluate( x ), 1e-5f );
}

TEST( PiecewiseCurve, KV3RoundTripKeepsKeysModesAndDomain )
{
	CPiecewiseCurve curve = ThreeKeys( CURVE_TANGENT_SPLINE );
	curve.SetTangentModes( 1, CURVE_TANGENT_FREE, CURVE_TANGENT_MIRROR );
	curve.SetSlopeIncoming( 1, 3.5f );
	KeyValues3 saved;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( curve, &saved, &error ) ) << error.Get();
	const KeyValues3 *pTangents = saved.FindMember( "m_tangents" );
	ASSERT_TRUE( pTangents && pTangents->IsArray() );
	EXPECT_STREQ( pTangents->GetArrayElement( 1 )->GetMemberString( "m_nOutgoingTangent" ), "CURVE_TANGENT_MIRROR" );
	ASSERT_TRUE( saved.FindMember( "m_vDomainMaxs" ) && saved.FindMember( "m_vDomainMaxs" )->IsArray() );

	CPiecewiseCurve loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &saved, &error ) ) << error.Get();
	ASSERT_EQ( loaded.GetKeyCount(), 3 );
	EXPECT_EQ( loaded.m_vDomainMaxs, Vector2D( 4, 4 ) );
	EXPECT_FLOAT_EQ( loaded.GetKey( 1 ).m_flSlopeIncoming, 3.5f );
	EXPECT_FLOAT_EQ( loaded.GetKey( 1 ).m_flSlopeOutgoing, 3.5f );
	for ( float x : { 0.2f, 1.2f, 2.9f } )
		EXPECT_FLOAT_EQ( loaded.Evaluate( x ), curve.Evaluate( x ) );
}

TEST( PiecewiseCurve, KV3LoadReadsLooseTangentsAndRecomputesSlopes )
{
	KeyValues3 kv;
	ASSERT_TRUE( ParseKV3( R"({
		m_spline = [ { x = 0.0 y = 0.0 m_flSlopeIncoming = 9.0 m_flSlopeOutgoing = 9.0 }, { x = 2 y = 1 } ]
		m_tangents = [ { m_nIncomingTangent = "curve_tangent_linear" m_nOutgoingTangent = "NOT_A_MODE" }, { m_nIncomingTangent = 0 m_nOutgoingTangent = true } ]
		m_vDomainMaxs = [ 2, 1 ]
	})", &kv ) );
	CPiecewiseCurve curve;
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &curve, &kv, &error ) ) << error.Get();
	EXPECT_EQ( curve.GetTangents( 0 ).m_nIncomingTangent, CURVE_TANGENT_LINEAR );
	EXPECT_EQ( curve.GetTangents( 0 ).m_nOutgoingTangent, CURVE_TANGENT_SPLINE );
	EXPECT_EQ( curve.GetTangents( 1 ).m_nOutgoingTangent, CURVE_TANGENT_SPLINE );
	// The stale slopes in the file are replaced by the modes' own.
	EXPECT_FLOAT_EQ( curve.GetKey( 0 ).m_flSlopeOutgoing, 0.5f );
	EXPECT_EQ( curve.m_vDomainMins, Vector2D( 0, 0 ) );
}

TEST( PiecewiseCurve, KV3LoadOfANonTableReportsAndLeavesAnEmptyCurve )
{
	KeyValues3 kv;
	kv.SetString( "curve" );
	CPiecewiseCurve curve;
	curve.Reset();
	CUtlString error;
	EXPECT_FALSE( LoadKV3ObjectInPlace( &curve, &kv, &error ) );
	EXPECT_NE( std::strstr( error.Get(), "Class data is a 'string', not a table" ), nullptr ) << error.Get();
	EXPECT_EQ( curve.GetKeyCount(), 0 );
}

TEST( PiecewiseCurve, KV3TangentNumberTooLargeReportsTheCast )
{
	KeyValues3 kv;
	ASSERT_TRUE( ParseKV3( "{ m_spline = [ { x = 0 } ] m_tangents = [ { m_nIncomingTangent = 5000000000 } ] }", &kv ) );
	CPiecewiseCurve curve;
	CUtlString error;
	LoadKV3ObjectInPlace( &curve, &kv, &error );
	EXPECT_NE( std::strstr( error.Get(), "loses value information" ), nullptr ) << error.Get();
}
