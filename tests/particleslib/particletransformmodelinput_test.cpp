#include <gtest/gtest.h>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "particleslib/particlemodelinput.h"
#include "particleslib/particlenamedvaluebindings.h"
#include "particleslib/particletransforminput.h"
#include "tests/particleslib/particleinputtestsupport.h"

namespace
{
std::vector<int> ReportedNumbers( const CParticleInput &input, int *pKind = nullptr )
{
	CUtlVector<ControlPointUsage_t> usage;
	input.CollectControlPointUsage( usage );
	std::vector<int> numbers;
	for ( int i = 0; i < usage.Count(); ++i )
	{
		numbers.push_back( usage[ i ].m_ID.m_nNumber );
		if ( pKind )
			*pKind = usage[ i ].m_nUsageKind;
	}
	return numbers;
}
} // namespace

TEST( ParticleTransformInput, UsageOfOnePointAndOfARange )
{
	CParticleTransformInput input;
	input.m_nControlPoint = 2;
	int nKind = 0;
	EXPECT_EQ( ReportedNumbers( input, &nKind ), std::vector<int>{ 2 } );
	EXPECT_EQ( nKind, 4 );

	input.m_nType = PT_TYPE_CONTROL_POINT_RANGE;
	input.m_nControlPointRangeMax = 5;
	EXPECT_EQ( ReportedNumbers( input ), ( std::vector<int>{ 2, 3, 4, 5 } ) );
	input.m_nControlPointRangeMax = 0; // below the start: the start still counts
	EXPECT_EQ( ReportedNumbers( input ), std::vector<int>{ 2 } );

	// A hostile maximum stops at the last control point.
	input.m_nControlPoint = 60;
	input.m_nControlPointRangeMax = 2000000000;
	EXPECT_EQ( ReportedNumbers( input ), ( std::vector<int>{ 60, 61, 62, 63 } ) );
	input.m_nControlPoint = 2147483647;
	EXPECT_EQ( ReportedNumbers( input ), std::vector<int>{ 2147483647 } );
	input.m_nControlPoint = 2;
	input.m_nControlPointRangeMax = 0;

	input.m_bUseOrientation = false;
	ReportedNumbers( input, &nKind );
	EXPECT_EQ( nKind, 2 );

	input.m_nType = PT_TYPE_NAMED_VALUE;
	EXPECT_TRUE( ReportedNumbers( input ).empty() );
	input.m_nType = PT_TYPE_CONTROL_POINT;
	input.m_nControlPoint = -1;
	EXPECT_TRUE( ReportedNumbers( input ).empty() );
}

TEST( ParticleTransformInput, TableRoundTripAndDefaults )
{
	CParticleTransformInput defaults;
	EXPECT_EQ( defaults.m_nType, PT_TYPE_CONTROL_POINT );
	EXPECT_TRUE( defaults.m_bUseOrientation );

	KeyValues3 kv = ParseKV3Body( R"({ m_nType = "PT_TYPE_NAMED_VALUE" m_NamedValue = "Hand" m_bFollowNamedValue = true m_flEndCPGrowthTime = 0.5 })" );
	CParticleTransformInput input;
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &input, &kv, &error ) ) << error.Get();
	EXPECT_EQ( input.m_nType, PT_TYPE_NAMED_VALUE );
	EXPECT_STREQ( input.m_NamedValue.GetName(), "Hand" );
	EXPECT_TRUE( input.m_bUseOrientation );
	KeyValues3 saved;
	ASSERT_TRUE( SaveKV3Object( input, &saved, &error ) );
	CParticleTransformInput reloaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &reloaded, &saved, &error ) );
	EXPECT_TRUE( SchemaValuesEqual<CParticleTransformInput>( reloaded, input ) );

	// Transforms have only the table form.
	KeyValues3 bare;
	bare.SetInt( 3 );
	EXPECT_FALSE( LoadKV3ObjectInPlace( &reloaded, &bare, &error ) );
}

TEST( ParticleTransformInput, NamedValueBindsAsATransform )
{
	CParticleNamedValueBindings bindings;
	bindings.SetSilent( true );
	CParticleTransformInput input;
	input.m_nType = PT_TYPE_NAMED_VALUE;
	input.m_NamedValue.SetName( "hand" );
	input.ResolveNamedValues( bindings );
	ASSERT_EQ( input.m_NamedValue.GetSlot(), 0 );
	EXPECT_EQ( bindings.GetEntry( 0 ).m_Type, CPulseValueFullType( PVAL_TRANSFORM ) );
}

TEST( ParticleModelInput, UsageOnlyForAControlPointModel )
{
	CParticleModelInput input;
	EXPECT_EQ( input.m_nControlPoint, -1 );
	input.m_nType = PM_TYPE_CONTROL_POINT;
	EXPECT_TRUE( ReportedNumbers( input ).empty() );
	input.m_nControlPoint = 1;
	int nKind = 0;
	EXPECT_EQ( ReportedNumbers( input, &nKind ), std::vector<int>{ 1 } );
	EXPECT_EQ( nKind, 10 );
	input.m_nType = PM_TYPE_NAMED_VALUE_MODEL;
	EXPECT_TRUE( ReportedNumbers( input ).empty() );
}

TEST( ParticleModelInput, NamedValuesBindByMode )
{
	CParticleNamedValueBindings bindings;
	bindings.SetSilent( true );
	CParticleModelInput model, entity;
	model.m_nType = PM_TYPE_NAMED_VALUE_MODEL;
	model.m_NamedValue.SetName( "Body" );
	entity.m_nType = PM_TYPE_NAMED_VALUE_EHANDLE;
	entity.m_NamedValue.SetName( "Owner" );
	model.ResolveNamedValues( bindings );
	entity.ResolveNamedValues( bindings );
	EXPECT_EQ( bindings.GetEntry( model.m_NamedValue.GetSlot() ).m_Type, CPulseValueFullType( PVAL_RESOURCE, "tmsh" ) );
	EXPECT_EQ( bindings.GetEntry( entity.m_NamedValue.GetSlot() ).m_Type, CPulseValueFullType( PVAL_PARTICLE_EHANDLE ) );
}

TEST( ParticleModelInput, TableRoundTrip )
{
	CParticleModelInput input;
	input.m_nType = PM_TYPE_NAMED_VALUE_EHANDLE;
	input.m_NamedValue.SetName( "Owner" );
	KeyValues3 kv;
	CUtlString error;
	ASSERT_TRUE( SaveKV3Object( input, &kv, &error ) );
	EXPECT_STREQ( kv.GetMemberString( "m_nType" ), "PM_TYPE_NAMED_VALUE_EHANDLE" );
	CParticleModelInput loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
	EXPECT_TRUE( SchemaValuesEqual<CParticleModelInput>( loaded, input ) );
}
