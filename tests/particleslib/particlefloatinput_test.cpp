#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfercontext.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "particleslib/particlefloatinput.h"
#include "particleslib/particlenamedvaluebindings.h"
#include "tests/particleslib/particleinputtestsupport.h"

namespace
{
CParticleFloatInput LoadFloat( const KeyValues3 &kv, bool bExpectSuccess = true )
{
	CParticleFloatInput input;
	CUtlString error;
	bool bLoaded = LoadKV3ObjectInPlace( &input, &kv, &error );
	EXPECT_EQ( bLoaded, bExpectSuccess ) << error.Get();
	return input;
}

KeyValues3 SaveDelta( const CParticleFloatInput &input )
{
	KeyValues3 kv;
	CKV3TransferSaveContext context;
	context.SetSaveDeltaFromDefaults( true );
	CUtlString error;
	EXPECT_TRUE( SaveKV3Object( input, &kv, &error, &context ) ) << error.Get();
	return kv;
}
} // namespace

TEST( ParticleFloatInputLoad, BareValuesAreLiterals )
{
	KeyValues3 kv;
	kv.SetDouble( 2.5 );
	CParticleFloatInput input = LoadFloat( kv );
	EXPECT_EQ( input.m_nType, PF_TYPE_LITERAL );
	EXPECT_EQ( input.m_nMapType, PF_MAP_TYPE_DIRECT );
	EXPECT_FLOAT_EQ( input.m_flLiteralValue, 2.5f );

	kv.SetString( "2.5" );
	EXPECT_FLOAT_EQ( LoadFloat( kv ).m_flLiteralValue, 2.5f );
	kv.SetBool( true );
	EXPECT_FLOAT_EQ( LoadFloat( kv ).m_flLiteralValue, 1.0f );
	kv.SetInt( -7 );
	EXPECT_FLOAT_EQ( LoadFloat( kv ).m_flLiteralValue, -7.0f );
	kv.SetUInt64( 4000000000ull );
	EXPECT_FLOAT_EQ( LoadFloat( kv ).m_flLiteralValue, 4.0e9f );
	kv.SetToEmptyArray();
	EXPECT_FLOAT_EQ( LoadFloat( kv ).m_flLiteralValue, 0.0f );
	kv.SetString( "not a number" );
	EXPECT_FLOAT_EQ( LoadFloat( kv ).m_flLiteralValue, 0.0f );
}

TEST( ParticleFloatInputLoad, BareNumberReplacesAnEarlierSourceAndMap )
{
	CParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_NOISE;
	input.m_nMapType = PF_MAP_TYPE_CURVE;
	input.m_Curve.Reset();
	input.m_nInputMode = PF_INPUT_MODE_LOOPED;
	KeyValues3 kv;
	kv.SetInt( 4 );
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &input, &kv, &error ) );
	EXPECT_EQ( input.m_nType, PF_TYPE_LITERAL );
	EXPECT_EQ( input.m_nMapType, PF_MAP_TYPE_DIRECT );
	EXPECT_EQ( input.m_Curve.GetKeyCount(), 0 );
	EXPECT_EQ( input.m_nInputMode, PF_INPUT_MODE_LOOPED ); // the user's mode survives
}

TEST( ParticleFloatInputLoad, TableReadsEveryKindOfMember )
{
	KeyValues3 kv = ParseKV3Body( R"({
		m_nType = "PF_TYPE_PARTICLE_NOISE"
		m_nMapType = "pf_map_type_curve"
		m_NamedValue = "Wind_Speed"
		m_vecNoiseOffsetRate = [ 1, 2.5, -3 ]
		m_nNoiseOctaves = 3
		m_nNoiseType = "PF_NOISE_TYPE_WORLEY"
		m_strSnapshotSubset = "tips"
		m_bNoiseImgPreviewLive = false
		m_Curve = { m_spline = [ { x = 0 y = 1 }, { x = 1 y = 0 } ] m_tangents = [ {}, {} ] m_vDomainMaxs = [ 1, 1 ] }
	})" );
	CParticleFloatInput input = LoadFloat( kv );
	EXPECT_EQ( input.m_nType, PF_TYPE_PARTICLE_NOISE );
	EXPECT_EQ( input.m_nMapType, PF_MAP_TYPE_CURVE );
	EXPECT_STREQ( input.m_NamedValue.GetName(), "Wind_Speed" );
	EXPECT_EQ( input.m_NamedValue.GetToken(), CParticleNamedValueRef::MakeToken( "wind_speed" ) );
	EXPECT_EQ( input.m_vecNoiseOffsetRate, Vector( 1, 2.5f, -3 ) );
	EXPECT_EQ( input.m_nNoiseOctaves, 3 );
	EXPECT_EQ( input.m_nNoiseType, PF_NOISE_TYPE_WORLEY );
	EXPECT_STREQ( input.m_strSnapshotSubset.Get(), "tips" );
	EXPECT_FALSE( input.m_bNoiseImgPreviewLive );
	ASSERT_EQ( input.m_Curve.GetKeyCount(), 2 );
	EXPECT_FLOAT_EQ( input.m_Curve.Evaluate( 0.0f ), 1.0f );
	// Members the table lacks keep their defaults.
	EXPECT_FLOAT_EQ( input.m_flRandomMax, 1.0f );
	EXPECT_EQ( input.m_nScalarAttribute, 3 );
	EXPECT_EQ( input.m_nRandomSeed, -1 );
}

TEST( ParticleFloatInputLoad, EnumerationsReadLeniently )
{
	// A name in any case, a number, a bool, null, and a number spelled as text.
	KeyValues3 kv = ParseKV3Body( R"({ m_nType = 2 m_nMapType = true m_nRandomMode = null m_nBiasType = "2" m_nRoundType = "pf_round_type_ceil" })" );
	CParticleFloatInput input = LoadFloat( kv );
	EXPECT_EQ( input.m_nType, PF_TYPE_RANDOM_UNIFORM );
	EXPECT_EQ( input.m_nMapType, PF_MAP_TYPE_MULT );
	EXPECT_EQ( input.m_nRandomMode, PF_RANDOM_MODE_CONSTANT );
	EXPECT_EQ( input.m_nBiasType, PF_BIAS_TYPE_EXPONENTIAL );
	EXPECT_EQ( input.m_nRoundType, PF_ROUND_TYPE_CEIL );

	KeyValues3 lossy = ParseKV3Body( "{ m_nType = 2.75 }" );
	CParticleFloatInput lossyInput;
	CUtlString error;
	EXPECT_FALSE( LoadKV3ObjectInPlace( &lossyInput, &lossy, &error ) );
	EXPECT_NE( std::strstr( error.Get(), "loses value information" ), nullptr ) << error.Get();
	EXPECT_EQ( lossyInput.m_nType, PF_TYPE_RANDOM_UNIFORM );

	KeyValues3 table = ParseKV3Body( "{ m_nMapType = { a = 1 } }" );
	EXPECT_EQ( LoadFloat( table, false ).m_nMapType, PF_MAP_TYPE_DIRECT );
}

TEST( ParticleFloatInputLoad, RemapInputWithoutATypeHasNoSource )
{
	KeyValues3 kv = ParseKV3Body( R"({ m_nMapType = "PF_MAP_TYPE_REMAP" m_flOutput1 = 5 })" );
	CParticleRemapFloatInput input;
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &input, &kv, &error ) ) << error.Get();
	EXPECT_EQ( input.m_nType, PF_TYPE_INVALID );
	EXPECT_FLOAT_EQ( input.m_flOutput1, 5.0f );

	KeyValues3 typed = ParseKV3Body( R"({ m_nType = "PF_TYPE_PARTICLE_AGE" })" );
	ASSERT_TRUE( LoadKV3ObjectInPlace( &input, &typed, &error ) );
	EXPECT_EQ( input.m_nType, PF_TYPE_PARTICLE_AGE );
	EXPECT_EQ( CParticleRemapFloatInput().m_nType, PF_TYPE_INVALID );
	EXPECT_EQ( CPerParticleFloatInput().m_nType, PF_TYPE_LITERAL );
}

TEST( ParticleFloatInputSave, FullSaveRoundTripsEveryField )
{
	CPerParticleFloatInput input;
	input.m_nType = PF_TYPE_PARTICLE_VECTOR_COMPONENT;
	input.m_nMapType = PF_MAP_TYPE_REMAP_BIASED;
	input.m_NamedValue.SetName( "gust" );
	input.m_nVectorAttribute = 14;
	input.m_nVectorComponent = 2;
	input.m_vecNoiseOffsetRate = Vector( 0.5f, 0, 2 );
	input.m_nBiasType = PF_BIAS_TYPE_GAIN;
	input.m_flBiasParameter = -0.25f;
	input.m_strSnapshotSubset = "rim";
	input.m_Curve.Reset();
	input.m_Curve.InsertPoint( 0.5f, 0.9f );
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( input, &kv, &error ) ) << error.Get();
	EXPECT_STREQ( kv.GetMemberString( "m_nType" ), "PF_TYPE_PARTICLE_VECTOR_COMPONENT" );
	EXPECT_STREQ( kv.GetMemberString( "m_nBiasType" ), "PF_BIAS_TYPE_GAIN" );
	EXPECT_STREQ( kv.GetMemberString( "m_NamedValue" ), "gust" );
	// Members are written in the declared order.
	EXPECT_STREQ( kv.GetMemberName( 0 ), "m_nType" );
	EXPECT_STREQ( kv.GetMemberName( kv.GetMemberCount() - 1 ), "m_Curve" );

	CPerParticleFloatInput loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual<CPerParticleFloatInput>( loaded, input ) );
}

TEST( ParticleFloatInputSave, UnnamedEnumValuesAreWrittenAsNumbers )
{
	CParticleFloatInput input;
	input.m_nType = static_cast<ParticleFloatType_t>( 57 );
	KeyValues3 kv;
	ASSERT_TRUE( SaveKV3Object( input, &kv, nullptr ) );
	EXPECT_TRUE( kv.FindMember( "m_nType" )->IsNumber() );
	EXPECT_EQ( kv.GetMemberInt( "m_nType" ), 57 );
	EXPECT_EQ( LoadFloat( kv ).m_nType, 57 );
}

TEST( ParticleFloatInputSave, DeltaSaveKeepsAttributesCurveAndOnlyAChangedName )
{
	CParticleFloatInput input( 2.0f );
	KeyValues3 kv = SaveDelta( input );
	EXPECT_TRUE( kv.HasMember( "m_flLiteralValue" ) );
	EXPECT_FALSE( kv.HasMember( "m_nType" ) );
	EXPECT_FALSE( kv.HasMember( "m_flRandomMax" ) );
	EXPECT_FALSE( kv.HasMember( "m_NamedValue" ) );
	EXPECT_EQ( kv.GetMemberInt( "m_nScalarAttribute" ), 3 );
	EXPECT_EQ( kv.GetMemberInt( "m_nVectorAttribute" ), 6 );
	EXPECT_FALSE( kv.HasMember( "m_nNoiseInputVectorAttribute" ) );
	ASSERT_TRUE( kv.HasMember( "m_Curve" ) );
	EXPECT_TRUE( kv.FindMember( "m_Curve" )->IsTable() );

	input.m_nScalarAttribute = 0;
	input.m_nNoiseInputVectorAttribute = 9;
	input.m_NamedValue.SetName( "x" );
	kv = SaveDelta( input );
	// Attribute 0 (the position) differs from the default 3, so it must be written.
	EXPECT_EQ( kv.GetMemberInt( "m_nScalarAttribute", -1 ), 0 );
	EXPECT_EQ( kv.GetMemberInt( "m_nNoiseInputVectorAttribute" ), 9 );
	EXPECT_STREQ( kv.GetMemberString( "m_NamedValue" ), "x" );
	// What a delta save leaves out comes back as the default.
	EXPECT_TRUE( SchemaValuesEqual<CParticleFloatInput>( LoadFloat( kv ), input ) );
}

TEST( ParticleFloatInputFields, ClampingAccessorsAndReset )
{
	CParticleFloatInput input;
	input.SetNoiseOctaves( 0 );
	EXPECT_EQ( input.GetNoiseOctaves(), 1 );
	input.SetNoiseOctaves( 9 );
	EXPECT_EQ( input.GetNoiseOctaves(), 4 );
	input.SetNoiseOffset( -5000.0f );
	EXPECT_FLOAT_EQ( input.GetNoiseOffset(), -1000.0f );
	input.SetNoiseScale( 0.0f );
	EXPECT_FLOAT_EQ( input.GetNoiseScale(), 0.000001f );
	input.SetNoiseImgPreviewScale( 5000.0f );
	EXPECT_FLOAT_EQ( input.GetNoiseImgPreviewScale(), 1000.0f );

	input.m_nType = PF_TYPE_RANDOM_UNIFORM;
	input.m_flRandomMax = 8.0f;
	input.m_nRoundType = PF_ROUND_TYPE_FLOOR;
	input.m_bUseBoundsCenter = true;
	input.m_flNoCameraFallback = 3.0f;
	input.m_Curve.Reset();
	input.ResetToLiteral( 6.0f );
	EXPECT_EQ( input.m_nType, PF_TYPE_LITERAL );
	EXPECT_FLOAT_EQ( input.m_flLiteralValue, 6.0f );
	EXPECT_FLOAT_EQ( input.m_flRandomMax, 1.0f );
	EXPECT_EQ( input.GetNoiseOctaves(), 1 );
	EXPECT_EQ( input.m_Curve.GetKeyCount(), 0 );
	EXPECT_EQ( input.m_nRoundType, PF_ROUND_TYPE_FLOOR );
	EXPECT_TRUE( input.m_bUseBoundsCenter );
	EXPECT_FLOAT_EQ( input.m_flNoCameraFallback, 3.0f );
	EXPECT_FLOAT_EQ( input.GetNoiseImgPreviewScale(), 1000.0f );
}

TEST( ParticleFloatInputDisplay, TextsOfTypesAndMaps )
{
	CParticleFloatInput input( 2.5f );
	input.m_nMapType = PF_MAP_TYPE_MULT;
	EXPECT_EQ( DisplayText( input ), "2.5 Scaled" );

	input.m_nType = PF_TYPE_PARTICLE_NOISE;
	input.m_nMapType = PF_MAP_TYPE_CURVE;
	EXPECT_EQ( DisplayText( input ), "Noise 0 - 1 Curve" );

	input.m_nType = PF_TYPE_PARTICLE_DETAIL_LEVEL;
	input.m_nMapType = PF_MAP_TYPE_DIRECT;
	input.m_flLOD0 = 3;
	input.m_flLOD1 = 1;
	input.m_flLOD2 = 4;
	input.m_flLOD3 = 2;
	EXPECT_EQ( DisplayText( input ), "LOD Value 1 - 4" );

	input.m_nType = PF_TYPE_CONTROL_POINT_SPEED;
	input.m_nControlPoint = 3;
	input.m_nVectorComponent = 2;
	input.m_nMapType = PF_MAP_TYPE_REMAP_BIASED;
	EXPECT_EQ( DisplayText( input ), "CP#3.Z Speed Remapped" );

	input.m_nType = PF_TYPE_SNAPSHOT_COUNT;
	input.m_strSnapshotSubset = "tips";
	input.m_nMapType = PF_MAP_TYPE_NOTCHED;
	EXPECT_EQ( DisplayText( input ), "CP#3 Snapshot Entry Count - Subset tips Notched" );

	input.m_nType = PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT;
	input.m_nVectorAttribute = 6;
	input.m_nVectorComponent = 1;
	input.m_nMapType = PF_MAP_TYPE_ROUND;
	EXPECT_EQ( DisplayText( input ), "Initial Attribute 6.Y Round" );

	input.m_nType = PF_TYPE_RANDOM_BIASED;
	input.m_flRandomMin = -1.5f;
	input.m_flRandomMax = 20;
	input.m_nMapType = PF_MAP_TYPE_DIRECT;
	EXPECT_EQ( DisplayText( input ), "Random -1.5 - 20" );

	input.m_nType = static_cast<ParticleFloatType_t>( 40 );
	input.m_nMapType = static_cast<ParticleFloatMapType_t>( 9 );
	EXPECT_EQ( DisplayText( input ), "Bad FloatInput 40 (Bad Remap 9)" );
	input.m_nType = PF_TYPE_COUNT;
	input.m_nMapType = PF_MAP_TYPE_DIRECT;
	EXPECT_EQ( DisplayText( input ), "Bad FloatInput 29" );
}

namespace
{
bool TranslateForTest( const char *pszDomain, const char *pszName, CBufferString *pOut )
{
	if ( std::strcmp( pszDomain, "weather" ) != 0 || std::strcmp( pszName, "ws" ) != 0 )
		return false;
	pOut->Set( "Wind Speed" );
	return true;
}
} // namespace

TEST( ParticleFloatInputDisplay, NamedValuesShowTheirDomainNameOrTheName )
{
	CParticleFloatInput input;
	input.m_nType = PF_TYPE_NAMED_VALUE;
	EXPECT_EQ( DisplayText( input ), "" ); // an empty reference is legal
	input.m_NamedValue.SetName( "ws" );
	EXPECT_EQ( DisplayText( input, "weather" ), "ws" );
	SetParticleNamedValueDisplayNameFn( &TranslateForTest );
	EXPECT_EQ( DisplayText( input, "weather" ), "Wind Speed" );
	EXPECT_EQ( DisplayText( input, "" ), "ws" );
	input.m_NamedValue.SetName( "other" );
	EXPECT_EQ( DisplayText( input, "weather" ), "other" );
	SetParticleNamedValueDisplayNameFn( nullptr );
}

TEST( ParticleFloatInputEquivalence, OnlyLiteralsAndAttributeReadsCanMatch )
{
	CParticleFloatInput a( 1.0f ), b( 1.0f );
	a.m_nMapType = b.m_nMapType = PF_MAP_TYPE_REMAP;
	a.m_flOutput1 = b.m_flOutput1 = 4.0f;
	EXPECT_TRUE( CParticleFloatInput::IsEquivalent( a, b ) );
	b.m_flInput0 = 0.5f;
	EXPECT_FALSE( CParticleFloatInput::IsEquivalent( a, b ) );
	// Fields of other map types don't matter.
	b.m_flInput0 = 0.0f;
	b.m_flMultFactor = 9.0f;
	EXPECT_TRUE( CParticleFloatInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PF_TYPE_RANDOM_UNIFORM;
	EXPECT_FALSE( CParticleFloatInput::IsEquivalent( a, b ) );

	a.m_nType = b.m_nType = PF_TYPE_PARTICLE_INITIAL_FLOAT;
	EXPECT_TRUE( CParticleFloatInput::IsEquivalent( a, b ) );
	b.m_nScalarAttribute = 7;
	EXPECT_FALSE( CParticleFloatInput::IsEquivalent( a, b ) );

	CParticleFloatInput c( 1.0f ), d( 1.0f );
	c.m_nMapType = d.m_nMapType = PF_MAP_TYPE_CURVE;
	EXPECT_FALSE( CParticleFloatInput::IsEquivalent( c, d ) );
	CParticleFloatInput e( std::numeric_limits<float>::quiet_NaN() ), f = e;
	EXPECT_FALSE( CParticleFloatInput::IsEquivalent( e, f ) );
	CParticleFloatInput g( 1.0f ), h( 1.0f );
	h.m_nMapType = PF_MAP_TYPE_MULT;
	EXPECT_FALSE( CParticleFloatInput::IsEquivalent( g, h ) );
}

TEST( ParticleFloatInputCompile, ControlPointUsageByTypeAndInputKind )
{
	CParticleCollectionFloatInput collection;
	CPerParticleFloatInput perParticle;
	for ( int nType = PF_TYPE_INVALID; nType <= PF_TYPE_COUNT; ++nType )
	{
		collection.m_nType = perParticle.m_nType = static_cast<ParticleFloatType_t>( nType );
		collection.m_nControlPoint = perParticle.m_nControlPoint = 5;
		CUtlVector<ControlPointUsage_t> collectionUsage, perParticleUsage;
		collection.CollectControlPointUsage( collectionUsage );
		perParticle.CollectControlPointUsage( perParticleUsage );
		bool bReadsControlPoint = nType == 6 || nType == 7 || nType == 8 || nType == 12 || nType == 13 || nType == 14;
		EXPECT_EQ( collectionUsage.Count(), bReadsControlPoint || nType == PF_TYPE_PARTICLE_NOISE ? 1 : 0 ) << nType;
		EXPECT_EQ( perParticleUsage.Count(), bReadsControlPoint ? 1 : 0 ) << nType;
		if ( collectionUsage.Count() == 1 )
		{
			EXPECT_EQ( collectionUsage[ 0 ].m_ID.m_nNumber, 5 );
			EXPECT_EQ( collectionUsage[ 0 ].m_nUsageKind, 2 );
			EXPECT_EQ( collectionUsage[ 0 ].m_nAccessFlags, 1 );
			EXPECT_EQ( collectionUsage[ 0 ].m_nComponent, -1 );
			EXPECT_FALSE( collectionUsage[ 0 ].m_ValueType.IsValid() );
		}
	}
	collection.m_nType = PF_TYPE_CONTROL_POINT_COMPONENT;
	collection.m_nControlPoint = -1;
	CUtlVector<ControlPointUsage_t> none;
	collection.CollectControlPointUsage( none );
	EXPECT_EQ( none.Count(), 0 );
}

TEST( ParticleFloatInputCompile, ReadMasksFollowTheSource )
{
	CParticleFloatInput input;
	auto mask = [ & ]( ParticleFloatType_t eType ) {
		input.m_nType = eType;
		uint64_t nMask = 99;
		input.GetReadAttributeMask( &nMask );
		return nMask;
	};
	auto initialMask = [ & ]( ParticleFloatType_t eType ) {
		input.m_nType = eType;
		uint64_t nMask = 99;
		input.GetReadInitialAttributeMask( &nMask );
		return nMask;
	};
	input.m_nScalarAttribute = 10;
	input.m_nVectorAttribute = 70; // wraps to bit 6
	input.m_nNoiseInputVectorAttribute = 33;
	EXPECT_EQ( mask( PF_TYPE_LITERAL ), 0u );
	EXPECT_EQ( mask( PF_TYPE_RANDOM_UNIFORM ), 2048u );
	EXPECT_EQ( mask( PF_TYPE_RANDOM_BIASED ), 2048u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_NOISE ), uint64_t( 1 ) << 33 );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_AGE ), 256u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_AGE_NORMALIZED ), 258u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_FLOAT ), 1024u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_VECTOR_COMPONENT ), 64u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_SPEED ), 5u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_ROPE_SEGMENT_NORMALIZED ), uint64_t( 1 ) << 48 );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_SCREENSPACE_CAMERA_DOT_PRODUCT ), 1u );
	EXPECT_EQ( mask( PF_TYPE_PARTICLE_INITIAL_FLOAT ), 0u );
	EXPECT_EQ( initialMask( PF_TYPE_PARTICLE_INITIAL_FLOAT ), 1024u );
	EXPECT_EQ( initialMask( PF_TYPE_PARTICLE_INITIAL_VECTOR_COMPONENT ), 64u );
	EXPECT_EQ( initialMask( PF_TYPE_PARTICLE_FLOAT ), 0u );
}

TEST( ParticleFloatInputCompile, CacheOffsetsOnlyForConstantRandoms )
{
	CParticleFloatInput uniform, biased, varying, literal;
	uniform.m_nType = PF_TYPE_RANDOM_UNIFORM;
	biased.m_nType = PF_TYPE_RANDOM_BIASED;
	varying.m_nType = PF_TYPE_RANDOM_UNIFORM;
	varying.m_nRandomMode = PF_RANDOM_MODE_VARYING;
	EXPECT_EQ( literal.m_nCacheOffset, -1 );
	int nOffset = 16;
	uniform.AssignCacheOffset( nOffset );
	varying.AssignCacheOffset( nOffset );
	biased.AssignCacheOffset( nOffset );
	literal.AssignCacheOffset( nOffset );
	EXPECT_EQ( uniform.m_nCacheOffset, 16 );
	EXPECT_EQ( biased.m_nCacheOffset, 20 );
	EXPECT_EQ( varying.m_nCacheOffset, -2 );
	EXPECT_EQ( literal.m_nCacheOffset, -2 );
	EXPECT_EQ( nOffset, 24 );
}

TEST( ParticleFloatInputCompile, NamedValueBindsAsAFloatSlot )
{
	CParticleNamedValueBindings bindings( "fx_test" );
	bindings.SetSilent( true );
	bindings.AddDeclared( "Other", CPulseValueFullType( PVAL_VEC3 ) );
	CParticleFloatInput input;
	input.m_nType = PF_TYPE_NAMED_VALUE;
	input.m_NamedValue.SetName( "Strength" );
	input.ResolveNamedValues( bindings );
	EXPECT_EQ( input.m_NamedValue.GetSlot(), 1 );
	EXPECT_EQ( bindings.GetEntry( 1 ).m_Type, CPulseValueFullType( PVAL_FLOAT ) );

	CParticleFloatInput literal;
	literal.m_NamedValue.SetName( "Strength" );
	literal.ResolveNamedValues( bindings );
	EXPECT_EQ( literal.m_NamedValue.GetSlot(), -1 ); // only the named-value type binds
	EXPECT_FALSE( literal.IsInitialized() );
	literal.MarkInitialized();
	EXPECT_TRUE( literal.IsInitialized() );
}
