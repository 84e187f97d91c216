// Every input mode evaluated from its KV3 table against a collection whose state the
// test sets: control points, named values, particle attributes, time.

#include <gtest/gtest.h>

#include <cmath>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/sim/particleinputs.h"
#include "core/particles/sim/particlenamedvaluebindings.h"
#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
// Three particles, control point 2 at (10, 20, 30) facing +y, named values declared.
class ParticleInputs : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_pDef = CompileBody( R"(m_flConstantLifespan = 2.0
			m_NamedValueLocals = [ { m_Name = "Speed" m_ValueType = "PVAL_FLOAT" m_DefaultConfig = { m_ConfigValue = 12.5 } },
				{ m_Name = "Wind" m_ValueType = "PVAL_VEC3" m_DefaultConfig = { m_ConfigValue = [ 1.0, 2.0, 3.0 ] } } ]
			m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 3 } ]
			m_Operators = [ { _class = "C_OP_SetFloat" m_nOutputField = 18 m_InputValue = 0.0 } ])" );
		ASSERT_TRUE( m_pDef );
		m_pCollection = MakeCollection( m_pDef, 5 );
		m_pCollection->SetControlPoint( 2, Vector( 10.0f, 20.0f, 30.0f ) );
		m_pCollection->SetControlPointOrientation( 2, Vector( 0, 1, 0 ), Vector( -1, 0, 0 ), Vector( 0, 0, 1 ) );
		Step( m_pCollection.get(), 1, 0.1f ); // born at 0.1
		Step( m_pCollection.get(), 5, 0.1f ); // now 0.6: each particle is 0.5 old
		ASSERT_EQ( m_pCollection->Count(), 3 );
		for ( int i = 0; i < 3; ++i )
		{
			m_pCollection->Stream( 18 )[ i ] = float( i ) * 10.0f;
			m_pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ] = 100.0f + float( i );
		}
		m_Bindings.SetSilent( true );
		m_Context.m_pBindings = const_cast<CHostNamedValueBindings *>( &m_pDef->m_NamedValues );
	}

	KeyValues3 Parse( const char *pText )
	{
		KeyValues3 kv;
		CUtlString error;
		std::string text = std::string( "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n" ) + pText;
		EXPECT_TRUE( LoadKV3FromText( &kv, &error, text.c_str(), text.size(), KV3_FORMAT_GENERIC ) ) << error.Get();
		return kv;
	}

	CSimFloatInput Float( const char *pText, bool bPerParticle = true )
	{
		CSimFloatInput input;
		CUtlString error;
		KeyValues3 kv = Parse( pText );
		EXPECT_TRUE( input.Load( &kv, &error ) ) << error.Get();
		input.Compile( &m_Context, bPerParticle );
		return input;
	}

	float PerParticle( const CSimFloatInput &input, int i )
	{
		float v = 0.0f;
		input.EvaluatePerParticle( *m_pCollection, i, 1, &v );
		return v;
	}

	CSimVecInput Vec( const char *pText )
	{
		CSimVecInput input;
		CUtlString error;
		KeyValues3 kv = Parse( pText );
		EXPECT_TRUE( input.Load( &kv, &error ) ) << error.Get();
		input.Compile( &m_Context, true );
		return input;
	}

	Vector VecAt( const CSimVecInput &input, int i )
	{
		Vector v;
		input.EvaluatePerParticle( *m_pCollection, i, 1, &v.x, &v.y, &v.z );
		return v;
	}

	ParticleDefinitionPtr_t m_pDef;
	std::unique_ptr<CParticleCollection> m_pCollection;
	CHostNamedValueBindings m_Bindings;
	ParticleInputCompileContext_t m_Context;
};

struct FloatCase_t
{
	const char *m_pText;
	int m_nParticle;
	float m_flExpected;
};
} // namespace

TEST_F( ParticleInputs, FloatSourcesAndMaps )
{
	const FloatCase_t cases[] = {
		{ "2.5", 0, 2.5f },
		{ "true", 0, 1.0f },
		{ "\"4.25\"", 0, 4.25f },
		{ "{ m_nType = \"PF_TYPE_LITERAL\" m_flLiteralValue = -3.0 }", 1, -3.0f },
		{ "{ m_nType = \"PF_TYPE_NAMED_VALUE\" m_NamedValue = \"speed\" }", 0, 12.5f },
		{ "{ m_nType = \"PF_TYPE_COLLECTION_AGE\" }", 0, 0.6f },
		{ "{ m_nType = \"PF_TYPE_ENDCAP_AGE\" }", 0, 0.0f },
		{ "{ m_nType = \"PF_TYPE_CONTROL_POINT_COMPONENT\" m_nControlPoint = 2 m_nVectorComponent = 1 }", 0, 20.0f },
		{ "{ m_nType = \"PF_TYPE_CONTROL_POINT_SPEED\" m_nControlPoint = 2 }", 0, 0.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_DETAIL_LEVEL\" m_flLOD0 = 1.0 m_flLOD1 = 2.0 m_flLOD2 = 3.0 m_flLOD3 = 4.0 }", 0, 4.0f },
		{ "{ m_nType = \"PF_TYPE_CONCURRENT_DEF_COUNT\" }", 0, 1.0f },
		{ "{ m_nType = \"PF_TYPE_CLOSEST_CAMERA_DISTANCE\" m_flNoCameraFallback = 77.0 }", 0, 77.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_AGE\" }", 2, 0.5f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_AGE_NORMALIZED\" }", 2, 0.25f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 }", 2, 20.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_VECTOR_COMPONENT\" m_nVectorAttribute = 0 m_nVectorComponent = 1 }", 1, 101.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_NUMBER\" }", 2, 2.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_NUMBER\" m_bReverseOrder = true }", 2, 0.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_NUMBER_NORMALIZED\" }", 1, 0.5f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_SPEED\" }", 0, 1000.0f }, // moved 100 units since the 0.1 s step
		// Map stages, on a particle float of 0, 10 or 20.
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_MULT\" m_flMultFactor = 0.5 }", 2, 10.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_REMAP\" m_flInput0 = 0.0 m_flInput1 = 20.0 m_flOutput0 = 100.0 m_flOutput1 = 200.0 }", 1, 150.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_REMAP\" m_flInput0 = 0.0 m_flInput1 = 5.0 m_flOutput0 = 0.0 m_flOutput1 = 1.0 }", 2, 1.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_REMAP\" m_nInputMode = \"PF_INPUT_MODE_LOOPED\" m_flInput0 = 0.0 m_flInput1 = 8.0 m_flOutput0 = 0.0 m_flOutput1 = 1.0 }", 1, 0.25f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_REMAP_BIASED\" m_flInput0 = 0.0 m_flInput1 = 20.0 m_flOutput0 = 0.0 m_flOutput1 = 1.0 m_flBiasParameter = 0.0 }", 1, 0.5f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_NOTCHED\" m_flNotchedRangeMin = 5.0 m_flNotchedRangeMax = 15.0 m_flNotchedOutputInside = 7.0 m_flNotchedOutputOutside = -7.0 }", 1, 7.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_NOTCHED\" m_flNotchedRangeMin = 5.0 m_flNotchedRangeMax = 15.0 m_flNotchedOutputInside = 7.0 m_flNotchedOutputOutside = -7.0 }", 2, -7.0f },
		{ "{ m_flLiteralValue = 2.5 m_nMapType = \"PF_MAP_TYPE_ROUND\" }", 0, 3.0f },
		{ "{ m_flLiteralValue = 2.7 m_nMapType = \"PF_MAP_TYPE_ROUND\" m_nRoundType = \"PF_ROUND_TYPE_FLOOR\" }", 0, 2.0f },
		{ "{ m_flLiteralValue = 2.1 m_nMapType = \"PF_MAP_TYPE_ROUND\" m_nRoundType = \"PF_ROUND_TYPE_CEIL\" }", 0, 3.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_CURVE\" m_Curve = { m_spline = [ { x = 0.0 y = 0.0 }, { x = 20.0 y = 40.0 } ] m_tangents = [ {}, {} ] } }", 1, 20.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_CURVE\" m_Curve = { m_spline = [ { x = 0.0 y = 5.0 }, { x = 4.0 y = 9.0 } ] m_tangents = [ {}, {} ] } }", 2, 9.0f },
		{ "{ m_nType = \"PF_TYPE_PARTICLE_FLOAT\" m_nScalarAttribute = 18 m_nMapType = \"PF_MAP_TYPE_CURVE\" m_nInputMode = \"PF_INPUT_MODE_LOOPED\" m_Curve = { m_spline = [ { x = 0.0 y = 0.0 m_flSlopeOutgoing = 1.0 }, { x = 8.0 y = 8.0 m_flSlopeIncoming = 1.0 } ] m_tangents = [ {}, {} ] } }", 1, 2.0f },
	};
	for ( const FloatCase_t &test : cases )
	{
		CSimFloatInput input = Float( test.m_pText );
		EXPECT_NEAR( PerParticle( input, test.m_nParticle ), test.m_flExpected, 0.02f ) << test.m_pText;
	}
}

TEST_F( ParticleInputs, RandomInputsStayInRangeConstantPerParticleUnlessVarying )
{
	CSimFloatInput constant = Float( "{ m_nType = \"PF_TYPE_RANDOM_UNIFORM\" m_flRandomMin = 3.0 m_flRandomMax = 4.0 }" );
	CSimFloatInput varying = Float( "{ m_nType = \"PF_TYPE_RANDOM_UNIFORM\" m_flRandomMin = 3.0 m_flRandomMax = 4.0 m_nRandomMode = \"PF_RANDOM_MODE_VARYING\" }" );
	CSimFloatInput flipped = Float( "{ m_nType = \"PF_TYPE_RANDOM_UNIFORM\" m_flRandomMin = 3.0 m_flRandomMax = 4.0 m_bHasRandomSignFlip = true }" );
	EXPECT_GE( constant.m_nCacheOffset, 0 );
	EXPECT_EQ( varying.m_nCacheOffset, -2 );
	EXPECT_EQ( flipped.m_nCacheOffset, constant.m_nCacheOffset + 4 ) << "each constant random takes its own cache slot";
	float flFirst = PerParticle( constant, 1 );
	EXPECT_EQ( PerParticle( constant, 1 ), flFirst );
	EXPECT_NE( PerParticle( constant, 0 ), flFirst );
	bool bVaried = false, bNegative = false, bPositive = false;
	for ( int n = 0; n < 64; ++n )
	{
		float v = PerParticle( varying, 1 );
		EXPECT_GE( v, 3.0f );
		EXPECT_LE( v, 4.0f );
		bVaried |= v != flFirst;
		float f = PerParticle( flipped, n % 3 );
		EXPECT_GE( std::fabs( f ), 3.0f );
		EXPECT_LE( std::fabs( f ), 4.0f );
		m_pCollection->Stream( PARTICLE_ATTRIBUTE_PARTICLE_ID )[ n % 3 ] += 3.0f; // new particles, new constants
		bNegative |= f < 0.0f;
		bPositive |= f > 0.0f;
	}
	EXPECT_TRUE( bVaried );
	EXPECT_TRUE( bNegative && bPositive );
}

TEST_F( ParticleInputs, BiasedRandomLeansTheWayItsParameterSays )
{
	CSimFloatInput low = Float( "{ m_nType = \"PF_TYPE_RANDOM_BIASED\" m_flRandomMin = 0.0 m_flRandomMax = 1.0 m_flBiasParameter = -0.8 m_nRandomMode = \"PF_RANDOM_MODE_VARYING\" }" );
	CSimFloatInput high = Float( "{ m_nType = \"PF_TYPE_RANDOM_BIASED\" m_flRandomMin = 0.0 m_flRandomMax = 1.0 m_flBiasParameter = 0.8 m_nRandomMode = \"PF_RANDOM_MODE_VARYING\" }" );
	float flLow = 0.0f, flHigh = 0.0f;
	for ( int n = 0; n < 400; ++n )
	{
		flLow += PerParticle( low, 0 );
		flHigh += PerParticle( high, 0 );
	}
	EXPECT_LT( flLow / 400.0f, 0.3f );
	EXPECT_GT( flHigh / 400.0f, 0.7f );
}

TEST( ParticleBias, CurvesMeetTheirEndsAndTheIdentity )
{
	for ( int nType : { 0, 1, 2 } )
	{
		EXPECT_NEAR( ParticleBias( nType, 0.0f, 0.3f ), 0.3f, 1e-5f ) << nType;
		EXPECT_NEAR( ParticleBias( nType, 0.5f, 1.0f ), 1.0f, 1e-5f ) << nType;
	}
	EXPECT_EQ( ParticleBias( 0, -1.0f, 0.7f ), 0.0f ); // a degenerate bias is a constant
	EXPECT_EQ( ParticleBias( 0, 1.0f, 0.2f ), 1.0f );
	EXPECT_GT( ParticleBias( 0, 0.5f, 0.5f ), 0.5f );
	EXPECT_NEAR( ParticleBias( 1, 0.5f, 0.5f ), 0.5f, 1e-5f ) << "gain is symmetric about the middle";
}

TEST_F( ParticleInputs, NoiseStaysInItsOutputRangeAndMoves )
{
	for ( int nType = 0; nType < 4; ++nType )
	{
		CUtlString text;
		text.Format( "{ m_nType = \"PF_TYPE_PARTICLE_NOISE\" m_nNoiseInputVectorAttribute = 0 m_flNoiseOutputMin = 5.0 m_flNoiseOutputMax = 9.0 m_flNoiseScale = 0.37 m_nNoiseType = %d m_nNoiseOctaves = 3 }", nType );
		CSimFloatInput noise = Float( text.Get() );
		float flMin = 1e9f, flMax = -1e9f;
		for ( int n = 0; n < 50; ++n )
		{
			m_pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ 0 ] = float( n ) * 1.7f;
			float v = PerParticle( noise, 0 );
			flMin = std::min( flMin, v );
			flMax = std::max( flMax, v );
		}
		EXPECT_GE( flMin, 5.0f ) << nType;
		EXPECT_LE( flMax, 9.0f ) << nType;
		EXPECT_GT( flMax - flMin, 0.1f ) << "noise type " << nType << " should vary along its input";
	}
}

TEST_F( ParticleInputs, UndeclaredNamedValueFallsBackToADefault )
{
	CSimFloatInput input = Float( "{ m_nType = \"PF_TYPE_NAMED_VALUE\" m_NamedValue = \"Nowhere\" }" );
	EXPECT_GE( input.m_nNamedValueSlot, 0 );
	EXPECT_EQ( PerParticle( input, 0 ), 0.0f ) << "a slot the collection doesn't hold reads as the type's default";
}

TEST_F( ParticleInputs, VectorSources )
{
	struct VecCase_t
	{
		const char *m_pText;
		Vector m_vExpected;
	};
	const VecCase_t cases[] = {
		{ "[ 1.0, 2.0, 3.0 ]", Vector( 1, 2, 3 ) },
		{ "\"pvec_color_white\"", Vector( 1, 1, 1 ) },
		{ "{ m_nType = \"PVEC_TYPE_LITERAL_COLOR\" m_LiteralColor = [ 255, 0, 51, 255 ] }", Vector( 1, 0, 0.2f ) },
		{ "{ m_nType = \"PVEC_TYPE_NAMED_VALUE\" m_NamedValue = \"Wind\" }", Vector( 1, 2, 3 ) },
		{ "{ m_nType = \"PVEC_TYPE_PARTICLE_VECTOR\" m_nVectorAttribute = 0 m_vVectorAttributeScale = [ 0.0, 1.0, 0.0 ] }", Vector( 0, 101, 0 ) },
		{ "{ m_nType = \"PVEC_TYPE_CP_VALUE\" m_nControlPoint = 2 m_vCPValueScale = [ 1.0, 0.5, 2.0 ] }", Vector( 10, 10, 60 ) },
		{ "{ m_nType = \"PVEC_TYPE_CP_RELATIVE_POSITION\" m_nControlPoint = 2 m_vCPRelativePosition = [ 5.0, 0.0, 1.0 ] }", Vector( 10, 25, 31 ) },
		{ "{ m_nType = \"PVEC_TYPE_CP_RELATIVE_DIR\" m_nControlPoint = 2 }", Vector( 0, 1, 0 ) },
		{ "{ m_nType = \"PVEC_TYPE_FLOAT_COMPONENTS\" m_FloatComponentX = 4.0 m_FloatComponentY = { m_nType = \"PF_TYPE_PARTICLE_NUMBER\" } m_FloatComponentZ = { m_nType = \"PF_TYPE_NAMED_VALUE\" m_NamedValue = \"Speed\" } }", Vector( 4, 1, 12.5f ) },
		{ "{ m_nType = \"PVEC_TYPE_FLOAT_INTERP_CLAMPED\" m_FloatInterp = 3.0 m_flInterpInput0 = 0.0 m_flInterpInput1 = 2.0 m_vInterpOutput0 = [ 0.0, 0.0, 0.0 ] m_vInterpOutput1 = [ 10.0, 20.0, 30.0 ] }", Vector( 10, 20, 30 ) },
		{ "{ m_nType = \"PVEC_TYPE_FLOAT_INTERP_OPEN\" m_FloatInterp = 3.0 m_flInterpInput0 = 0.0 m_flInterpInput1 = 2.0 m_vInterpOutput0 = [ 0.0, 0.0, 0.0 ] m_vInterpOutput1 = [ 10.0, 20.0, 30.0 ] }", Vector( 15, 30, 45 ) },
		{ "{ m_nType = \"PVEC_TYPE_FLOAT_INTERP_GRADIENT\" m_FloatInterp = 0.5 m_Gradient = { m_Stops = [ { m_flPosition = 0.0 m_Color = [ 0, 0, 0, 255 ] }, { m_flPosition = 1.0 m_Color = [ 255, 255, 0, 255 ] } ] } }", Vector( 0.5f, 0.5f, 0 ) },
		{ "{ m_nType = \"PVEC_TYPE_CP_DELTA\" m_nControlPoint = 0 m_nDeltaControlPoint = 2 }", Vector( 10, 20, 30 ) },
	};
	for ( const VecCase_t &test : cases )
	{
		Vector v = VecAt( Vec( test.m_pText ), 1 );
		for ( int k = 0; k < 3; ++k )
			EXPECT_NEAR( v[ k ], test.m_vExpected[ k ], 0.02f ) << test.m_pText << " component " << k;
	}
}

TEST_F( ParticleInputs, RandomVectorsStayInTheirBox )
{
	CSimVecInput random = Vec( "{ m_nType = \"PVEC_TYPE_RANDOM_UNIFORM\" m_vRandomMin = [ -1.0, 5.0, 0.0 ] m_vRandomMax = [ 1.0, 6.0, 0.0 ] }" );
	CSimVecInput offset = Vec( "{ m_nType = \"PVEC_TYPE_RANDOM_UNIFORM_OFFSET\" m_nVectorAttribute = 0 m_vRandomMin = [ 0.0, 1.0, 0.0 ] m_vRandomMax = [ 0.0, 2.0, 0.0 ] }" );
	CSimVecInput direction = Vec( "{ m_nType = \"PVEC_TYPE_CP_RELATIVE_RANDOM_DIR\" m_nControlPoint = 2 m_vRandomMin = [ -1.0, -1.0, -1.0 ] m_vRandomMax = [ 1.0, 1.0, 1.0 ] }" );
	for ( int n = 0; n < 32; ++n )
	{
		Vector v = VecAt( random, 0 );
		EXPECT_TRUE( v.x >= -1.0f && v.x <= 1.0f && v.y >= 5.0f && v.y <= 6.0f && v.z == 0.0f );
		Vector o = VecAt( offset, 2 );
		EXPECT_TRUE( o.y >= 103.0f && o.y <= 104.0f ) << o.y;
		Vector d = VecAt( direction, 0 );
		EXPECT_NEAR( std::sqrt( d.x * d.x + d.y * d.y + d.z * d.z ), 1.0f, 1e-3f );
	}
}

TEST_F( ParticleInputs, TransformsFollowControlPointsAndOrientation )
{
	auto load = [ this ]( const char *pText ) {
		CSimTransformInput input;
		KeyValues3 kv = Parse( pText );
		EXPECT_TRUE( input.Load( &kv, nullptr ) );
		input.Compile( &m_Context );
		return input;
	};
	ParticleTransform_t oriented = load( "{ m_nType = \"PT_TYPE_CONTROL_POINT\" m_nControlPoint = 2 }" ).Evaluate( *m_pCollection );
	EXPECT_EQ( oriented.m_vOrigin, Vector( 10, 20, 30 ) );
	EXPECT_EQ( oriented.m_vForward, Vector( 0, 1, 0 ) );
	ParticleTransform_t positionOnly = load( "{ m_nType = \"PT_TYPE_CONTROL_POINT\" m_nControlPoint = 2 m_bUseOrientation = false }" ).Evaluate( *m_pCollection );
	EXPECT_EQ( positionOnly.m_vForward, Vector( 1, 0, 0 ) );
	CSimTransformInput range = load( "{ m_nType = \"PT_TYPE_CONTROL_POINT_RANGE\" m_nControlPoint = 1 m_nControlPointRangeMax = 2 }" );
	bool bSawOne = false, bSawTwo = false;
	for ( int n = 0; n < 40; ++n )
	{
		Vector vOrigin = range.Evaluate( *m_pCollection ).m_vOrigin;
		bSawTwo |= vOrigin == Vector( 10, 20, 30 );
		bSawOne |= vOrigin == Vector( 0, 0, 0 );
	}
	EXPECT_TRUE( bSawOne && bSawTwo );
	EXPECT_FALSE( load( "{ m_nType = \"PT_TYPE_INVALID\" }" ).Evaluate( *m_pCollection ).m_bValid );
}

TEST_F( ParticleInputs, InputsReportTheControlPointsTheyRead )
{
	CUtlVector<HostControlPointUsage_t> usage;
	Float( "{ m_nType = \"PF_TYPE_CONTROL_POINT_COMPONENT\" m_nControlPoint = 4 }" ).CollectControlPointUsage( &usage );
	Float( "{ m_nType = \"PF_TYPE_PARTICLE_NOISE\" m_nControlPoint = 9 }", true ).CollectControlPointUsage( &usage ); // per particle: no point
	Vec( "{ m_nType = \"PVEC_TYPE_CP_DELTA\" m_nControlPoint = 1 m_nDeltaControlPoint = 3 }" ).CollectControlPointUsage( &usage );
	CSimTransformInput transform;
	KeyValues3 kv = Parse( "{ m_nType = \"PT_TYPE_CONTROL_POINT_RANGE\" m_nControlPoint = 6 m_nControlPointRangeMax = 2 m_bUseOrientation = false }" );
	transform.Load( &kv, nullptr );
	transform.CollectControlPointUsage( &usage );
	CSimModelInput model;
	KeyValues3 modelKV = Parse( "{ m_nType = \"PM_TYPE_CONTROL_POINT\" m_nControlPoint = -1 }" );
	model.Load( &modelKV, nullptr );
	model.CollectControlPointUsage( &usage );

	ASSERT_EQ( usage.Count(), 4 );
	EXPECT_EQ( usage[ 0 ].m_ID.m_nNumber, 4 );
	EXPECT_EQ( usage[ 0 ].m_nUsageKind, 2 );
	EXPECT_EQ( usage[ 1 ].m_ID.m_nNumber, 1 );
	EXPECT_EQ( usage[ 1 ].m_nUsageKind, 4 );
	EXPECT_EQ( usage[ 2 ].m_ID.m_nNumber, 3 );
	EXPECT_EQ( usage[ 3 ].m_ID.m_nNumber, 6 ) << "a range that ends below its start still reports its start";
	EXPECT_EQ( usage[ 3 ].m_nUsageKind, 2 ) << "without orientation only a position is needed";
	for ( const HostControlPointUsage_t &record : usage )
		EXPECT_EQ( record.m_nAccess, CONTROL_POINT_ACCESS_READ );
}

TEST_F( ParticleInputs, BadInputValuesAreRefused )
{
	CSimVecInput vec;
	CUtlString error;
	KeyValues3 kv = Parse( "[ 1.0, 2.0 ]" );
	EXPECT_FALSE( vec.Load( &kv, &error ) );
	EXPECT_FALSE( error.IsEmpty() );
	CSimTransformInput transform;
	KeyValues3 number = Parse( "5" );
	EXPECT_FALSE( transform.Load( &number, &error ) );
	EXPECT_NE( strstr( error.Get(), "not a table" ), nullptr ) << error.Get();
}
