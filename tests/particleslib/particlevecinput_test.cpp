#include <gtest/gtest.h>

#include <cstring>
#include <limits>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "particleslib/particlenamedvaluebindings.h"
#include "particleslib/particlevecinput.h"
#include "tests/particleslib/particleinputtestsupport.h"

namespace
{
CParticleVecInput LoadVec( const KeyValues3 &kv, CUtlString *pError = nullptr )
{
	CParticleVecInput input;
	CUtlString error;
	bool bLoaded = LoadKV3ObjectInPlace( &input, &kv, &error );
	if ( pError )
		pError->Set( error.Get() );
	else
		EXPECT_TRUE( bLoaded ) << error.Get();
	return input;
}
} // namespace

TEST( ParticleVecInputLoad, ColourNamesAreLiteralColours )
{
	KeyValues3 kv;
	kv.SetString( "PVEC_COLOR_WHITE" );
	CParticleVecInput white = LoadVec( kv );
	EXPECT_EQ( white.m_nType, PVEC_TYPE_LITERAL_COLOR );
	EXPECT_EQ( white.m_LiteralColor, Color( 255, 255, 255, 255 ) );
	kv.SetString( "pvec_color_black" );
	CParticleVecInput black = LoadVec( kv );
	EXPECT_EQ( black.m_nType, PVEC_TYPE_LITERAL_COLOR );
	EXPECT_EQ( black.m_LiteralColor, Color( 0, 0, 0, 255 ) );

	// It saves back as a table.
	KeyValues3 saved;
	ASSERT_TRUE( SaveKV3Object( white, &saved, nullptr ) );
	ASSERT_TRUE( saved.IsTable() );
	EXPECT_STREQ( saved.GetMemberString( "m_nType" ), "PVEC_TYPE_LITERAL_COLOR" );
	EXPECT_EQ( LoadVec( saved ).m_LiteralColor, Color( 255, 255, 255, 255 ) );
}

TEST( ParticleVecInputLoad, ArraysOfThreeNumbersAreLiteralVectors )
{
	CParticleVecInput floats = LoadVec( ParseKV3Body( "[ 1.5, -2, 3 ]" ) );
	EXPECT_EQ( floats.m_nType, PVEC_TYPE_LITERAL );
	EXPECT_EQ( floats.m_vLiteralValue, Vector( 1.5f, -2, 3 ) );
	CParticleVecInput ints = LoadVec( ParseKV3Body( "[ 4, 5, 6 ]" ) );
	EXPECT_EQ( ints.m_vLiteralValue, Vector( 4, 5, 6 ) );
}

TEST( ParticleVecInputLoad, UnreadableShortFormsReportAndKeepDefaults )
{
	for ( const char *pszBody : { "[ 1, 2 ]", "\"pvec_color_red\"", "7", "[ 1, \"a\", 3 ]" } )
	{
		CParticleVecInput input;
		input.m_nType = PVEC_TYPE_CP_VALUE;
		KeyValues3 kv = ParseKV3Body( pszBody );
		CUtlString error;
		EXPECT_FALSE( LoadKV3ObjectInPlace( &input, &kv, &error ) ) << pszBody;
		EXPECT_NE( std::strstr( error.Get(), "CParticleVecInput::MEmitKV3TransferPreLoadFn failed" ), nullptr ) << error.Get();
		EXPECT_EQ( input.m_nType, PVEC_TYPE_LITERAL ) << pszBody;
		EXPECT_EQ( input.m_vLiteralValue, Vector( 0, 0, 0 ) );
	}
}

TEST( ParticleVecInputLoad, TableWithNestedFloatInputsAndGradient )
{
	KeyValues3 kv = ParseKV3Body( R"({
		m_nType = "PVEC_TYPE_FLOAT_COMPONENTS"
		m_FloatComponentX = 2.5
		m_FloatComponentY = { m_nType = "PF_TYPE_CONTROL_POINT_COMPONENT" m_nControlPoint = 4 }
		m_FloatInterp = "3"
		m_Gradient = { m_Stops = [ { m_flPosition = 0.8 m_Color = [ 0, 0, 255 ] }, { m_flPosition = 0.2 m_Color = [ 255, 0, 0 ] } ] }
		m_vCPRelativeDir = [ 0, 0, 1 ]
	})" );
	CParticleVecInput input = LoadVec( kv );
	EXPECT_EQ( input.m_nType, PVEC_TYPE_FLOAT_COMPONENTS );
	EXPECT_FLOAT_EQ( input.m_FloatComponentX.m_flLiteralValue, 2.5f );
	EXPECT_EQ( input.m_FloatComponentY.m_nType, PF_TYPE_CONTROL_POINT_COMPONENT );
	EXPECT_FLOAT_EQ( input.m_FloatInterp.m_flLiteralValue, 3.0f );
	ASSERT_EQ( input.m_Gradient.GetStopCount(), 2 );
	EXPECT_EQ( input.m_Gradient.GetStopColor( 0 ), Color( 255, 0, 0 ) );
	EXPECT_EQ( input.m_vCPRelativeDir, Vector( 0, 0, 1 ) );
	EXPECT_EQ( input.m_vVectorAttributeScale, Vector( 1, 1, 1 ) );
	EXPECT_EQ( input.m_LiteralColor, Color( 0, 0, 0, 255 ) );
}

TEST( ParticleVecInputSave, RoundTripAndDeltaSave )
{
	CParticleCollectionVecInput input;
	input.m_nType = PVEC_TYPE_FLOAT_INTERP_GRADIENT;
	input.m_FloatInterp.m_nType = PF_TYPE_COLLECTION_AGE;
	input.m_Gradient.AddStop( 0.3f, Color( 10, 20, 30, 40 ) );
	input.m_NamedValue.SetName( "tint" );
	input.m_vRandomMax = Vector( 1, 2, 3 );
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( input, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( kv.FindMember( "m_vRandomMax" )->IsArray() );
	EXPECT_STREQ( kv.GetMemberString( "m_NamedValue" ), "tint" );
	CParticleCollectionVecInput loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual<CParticleCollectionVecInput>( loaded, input ) );

	KeyValues3 delta;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	ASSERT_TRUE( SaveKV3Object( input, &delta, &error, &context ) ) << error.Get();
	EXPECT_FALSE( delta.HasMember( "m_vLiteralValue" ) );
	EXPECT_FALSE( delta.HasMember( "m_FloatComponentX" ) );
	EXPECT_TRUE( delta.HasMember( "m_FloatInterp" ) );
	EXPECT_TRUE( delta.HasMember( "m_Gradient" ) );
	CParticleCollectionVecInput fromDelta;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &fromDelta, &delta, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual<CParticleCollectionVecInput>( fromDelta, input ) );
}

TEST( ParticleVecInputDisplay, TextsOfEveryKind )
{
	CParticleVecInput input( Vector( 1, 0.5f, -2 ) );
	EXPECT_EQ( DisplayText( input ), "(1,0.5,-2)" );
	input.m_nType = PVEC_TYPE_LITERAL_COLOR;
	input.m_LiteralColor = Color( 255, 128, 0, 10 );
	EXPECT_EQ( DisplayText( input ), "(255,128,0)" );
	input.m_nType = PVEC_TYPE_NAMED_VALUE;
	input.m_NamedValue.SetName( "Tint" );
	EXPECT_EQ( DisplayText( input ), "Tint" );
	input.m_nType = PVEC_TYPE_PARTICLE_INITIAL_VECTOR;
	EXPECT_EQ( DisplayText( input ), "Initial Attribute 6" );
	input.m_nType = PVEC_TYPE_CP_RELATIVE_POSITION;
	input.m_nControlPoint = 2;
	EXPECT_EQ( DisplayText( input ), "CP#2 Relative Pos" );
	input.m_nType = PVEC_TYPE_CP_RELATIVE_RANDOM_DIR;
	EXPECT_EQ( DisplayText( input ), "CP#2 Relative Random Dir" );
	input.m_nType = PVEC_TYPE_FLOAT_COMPONENTS;
	EXPECT_EQ( DisplayText( input ), "(3 Independent Floats)" );
	input.m_nType = PVEC_TYPE_FLOAT_INTERP_OPEN;
	EXPECT_EQ( DisplayText( input ), "Interp Open (0,0,0) - (1,1,1)" );
	input.m_nType = PVEC_TYPE_FLOAT_INTERP_CLAMPED;
	EXPECT_EQ( DisplayText( input ), "Interp Clamped (0,0,0) - (1,1,1)" );
	input.m_nType = PVEC_TYPE_RANDOM_UNIFORM;
	input.m_vRandomMin = Vector( -1, -1, 0 );
	input.m_vRandomMax = Vector( 1, 1, 2.5f );
	EXPECT_EQ( DisplayText( input ), "Random (-1,-1,0) - (1,1,2.5)" );
	input.m_nType = PVEC_TYPE_CP_DELTA;
	input.m_nDeltaControlPoint = 7;
	EXPECT_EQ( DisplayText( input ), "Delta between CP#2 and CP7" );
	input.m_nType = static_cast<ParticleVecType_t>( 23 );
	EXPECT_EQ( DisplayText( input ), "Bad VecInput 23" );
	input.m_nType = PVEC_TYPE_INVALID;
	EXPECT_EQ( DisplayText( input ), "" );
}

TEST( ParticleVecInputDisplay, RandomOffsetTextDependsOnRangeAndScale )
{
	CParticleVecInput input;
	input.m_nType = PVEC_TYPE_RANDOM_UNIFORM_OFFSET;
	input.m_nVectorAttribute = 0;
	input.m_vRandomMin = Vector( -1, 0, 0 );
	input.m_vRandomMax = Vector( 1, 0, 0 );
	EXPECT_EQ( DisplayText( input ), "Random Offset from 0 (-1,0,0) - (1,0,0) " );
	input.m_vRandomMax = input.m_vRandomMin;
	EXPECT_EQ( DisplayText( input ), "Offset from 0 " );
	input.m_vVectorAttributeScale = Vector( 2, 1, 1 );
	EXPECT_EQ( DisplayText( input ), "Offset from 0 Scale: (2,1,1) " );
}

TEST( ParticleVecInputEquivalence, ComparesWhatTheTypeUses )
{
	CParticleVecInput a( Vector( 1, 2, 3 ) ), b( Vector( 1, 2, 3 ) );
	b.m_nControlPoint = 9; // unused by a literal
	EXPECT_TRUE( CParticleVecInput::IsEquivalent( a, b ) );
	b.m_vLiteralValue.z = 4;
	EXPECT_FALSE( CParticleVecInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PVEC_TYPE_CP_VALUE;
	a.m_nControlPoint = 9;
	EXPECT_TRUE( CParticleVecInput::IsEquivalent( a, b ) );
	b.m_vCPValueScale = Vector( 2, 2, 2 );
	EXPECT_FALSE( CParticleVecInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PVEC_TYPE_FLOAT_INTERP_GRADIENT;
	b.m_Gradient.AddStop( 0.5f, Color( 1, 2, 3 ) );
	EXPECT_TRUE( CParticleVecInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PVEC_TYPE_FLOAT_COMPONENTS;
	EXPECT_TRUE( CParticleVecInput::IsEquivalent( a, b ) );
	b.m_FloatComponentY.m_flLiteralValue = 1;
	EXPECT_FALSE( CParticleVecInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PVEC_TYPE_NAMED_VALUE;
	a.m_NamedValue.SetName( "Tint" );
	b.m_NamedValue.SetName( "TINT" );
	EXPECT_TRUE( CParticleVecInput::IsEquivalent( a, b ) );
	b.m_bFollowNamedValue = true;
	EXPECT_FALSE( CParticleVecInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PVEC_TYPE_RANDOM_UNIFORM;
	a.m_vRandomMin = b.m_vRandomMin = Vector( std::numeric_limits<float>::quiet_NaN(), 0, 0 );
	EXPECT_FALSE( CParticleVecInput::IsEquivalent( a, b ) );
	b.m_nType = PVEC_TYPE_RANDOM_UNIFORM_OFFSET;
	EXPECT_FALSE( CParticleVecInput::IsEquivalent( a, b ) );
}

TEST( ParticleVecInputCompile, UsageForwardsThroughComponentsInOrder )
{
	CParticleVecInput input;
	input.m_nType = PVEC_TYPE_FLOAT_COMPONENTS;
	input.m_FloatComponentX.m_nType = PF_TYPE_CONTROL_POINT_SPEED;
	input.m_FloatComponentX.m_nControlPoint = 3;
	input.m_FloatComponentY.m_nType = PF_TYPE_LITERAL;
	input.m_FloatComponentY.m_nControlPoint = 8;
	input.m_FloatComponentZ.m_nType = PF_TYPE_RENDERER_CAMERA_DISTANCE;
	input.m_FloatComponentZ.m_nControlPoint = 1;
	input.m_FloatInterp.m_nType = PF_TYPE_CONTROL_POINT_COMPONENT; // unused by this type
	input.m_FloatInterp.m_nControlPoint = 9;
	CUtlVector<ControlPointUsage_t> usage;
	input.CollectControlPointUsage( usage );
	ASSERT_EQ( usage.Count(), 2 );
	EXPECT_EQ( usage[ 0 ].m_ID.m_nNumber, 3 );
	EXPECT_EQ( usage[ 1 ].m_ID.m_nNumber, 1 );
	EXPECT_EQ( usage[ 0 ].m_nUsageKind, 2 );

	input.m_nType = PVEC_TYPE_FLOAT_INTERP_OPEN;
	usage.RemoveAll();
	input.CollectControlPointUsage( usage );
	ASSERT_EQ( usage.Count(), 1 );
	EXPECT_EQ( usage[ 0 ].m_ID.m_nNumber, 9 );

	input.m_nType = PVEC_TYPE_CP_DELTA;
	input.m_nControlPoint = 4;
	input.m_nDeltaControlPoint = 6;
	usage.RemoveAll();
	input.CollectControlPointUsage( usage );
	ASSERT_EQ( usage.Count(), 2 );
	EXPECT_EQ( usage[ 0 ].m_ID.m_nNumber, 4 );
	EXPECT_EQ( usage[ 1 ].m_ID.m_nNumber, 6 );
	EXPECT_EQ( usage[ 1 ].m_nUsageKind, 4 );

	for ( ParticleVecType_t eType : { PVEC_TYPE_CP_VALUE, PVEC_TYPE_CP_RELATIVE_POSITION, PVEC_TYPE_CP_RELATIVE_DIR, PVEC_TYPE_CP_RELATIVE_RANDOM_DIR } )
	{
		input.m_nType = eType;
		usage.RemoveAll();
		input.CollectControlPointUsage( usage );
		ASSERT_EQ( usage.Count(), 1 ) << eType;
		EXPECT_EQ( usage[ 0 ].m_nUsageKind, 4 );
		EXPECT_EQ( usage[ 0 ].m_nAccessFlags, 1 );
	}
	for ( ParticleVecType_t eType : { PVEC_TYPE_LITERAL, PVEC_TYPE_NAMED_VALUE, PVEC_TYPE_RANDOM_UNIFORM, PVEC_TYPE_CLOSEST_CAMERA_POSITION } )
	{
		input.m_nType = eType;
		usage.RemoveAll();
		input.CollectControlPointUsage( usage );
		EXPECT_EQ( usage.Count(), 0 ) << eType;
	}
}

TEST( ParticleVecInputCompile, MasksCacheAndInitialisationForwardToFloatInputs )
{
	CPerParticleVecInput input;
	EXPECT_TRUE( input.IsPerParticle() );
	EXPECT_FALSE( CParticleCollectionRendererVecInput().IsPerParticle() );
	input.m_nType = PVEC_TYPE_FLOAT_COMPONENTS;
	input.m_FloatComponentX.m_nType = PF_TYPE_PARTICLE_AGE;
	input.m_FloatComponentZ.m_nType = PF_TYPE_RANDOM_UNIFORM;
	uint64_t nMask = 0;
	input.GetReadAttributeMask( &nMask );
	EXPECT_EQ( nMask, 256u | 2048u );
	int nOffset = 0;
	input.AssignCacheOffset( nOffset );
	EXPECT_EQ( nOffset, 4 );
	EXPECT_EQ( input.m_FloatComponentZ.m_nCacheOffset, 0 );
	EXPECT_EQ( input.m_FloatComponentX.m_nCacheOffset, -2 );
	input.MarkInitialized();
	EXPECT_TRUE( input.IsInitialized() );
	EXPECT_TRUE( input.m_FloatComponentY.IsInitialized() );
	EXPECT_FALSE( input.m_FloatInterp.IsInitialized() );

	input.m_nType = PVEC_TYPE_CP_RELATIVE_RANDOM_DIR;
	input.GetReadAttributeMask( &nMask );
	EXPECT_EQ( nMask, 0x200100u );
	input.m_nType = PVEC_TYPE_RANDOM_UNIFORM_OFFSET;
	input.m_nVectorAttribute = 64 + 4;
	input.GetReadAttributeMask( &nMask );
	EXPECT_EQ( nMask, 16u );
	input.m_nType = PVEC_TYPE_PARTICLE_VELOCITY;
	input.GetReadAttributeMask( &nMask );
	EXPECT_EQ( nMask, 5u );
	input.m_nType = PVEC_TYPE_PARTICLE_INITIAL_VECTOR;
	input.GetReadAttributeMask( &nMask );
	EXPECT_EQ( nMask, 0u );
	input.GetReadInitialAttributeMask( &nMask );
	EXPECT_EQ( nMask, 16u );
}

TEST( ParticleVecInputCompile, NamedValueBindsAsAVectorSlot )
{
	CParticleNamedValueBindings bindings( "fx_test" );
	bindings.SetSilent( true );
	CParticleVecInput input;
	input.m_nType = PVEC_TYPE_NAMED_VALUE;
	input.m_NamedValue.SetName( "Tint" );
	input.ResolveNamedValues( bindings );
	ASSERT_EQ( input.m_NamedValue.GetSlot(), 0 );
	EXPECT_EQ( bindings.GetEntry( 0 ).m_Type, CPulseValueFullType( PVAL_VEC3 ) );
}
