// Every function class the editor offers does something in the preview, and the
// behaviours that shape motion keep their promises over time.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <string>

#include "core/particles/particlefunctionclasses.h"
#include "core/particles/sim/particlesimfunction.h"
#include "core/schema/schemaclassinfo.h"
#include "core/schema/schemasystemtypescope.h"
#include "tests/core/particlesim/particlesimtestsupport.h"

namespace
{
struct FunctionListBase_t
{
	int m_nList;
	const char *m_pBaseClass;
};

// Pre-emission first: its classes may also count as operators.
const FunctionListBase_t s_ListBases[] = {
	{ PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR, "CParticleFunctionPreEmission" },
	{ PARTICLE_FUNCTION_EMITTER, "CParticleFunctionEmitter" },
	{ PARTICLE_FUNCTION_INITIALIZER, "CParticleFunctionInitializer" },
	{ PARTICLE_FUNCTION_OPERATOR, "CParticleFunctionOperator" },
	{ PARTICLE_FUNCTION_FORCE_GENERATOR, "CParticleFunctionForce" },
	{ PARTICLE_FUNCTION_CONSTRAINT, "CParticleFunctionConstraint" },
	{ PARTICLE_FUNCTION_RENDERER, "CParticleFunctionRenderer" },
};

// The list a declared function class belongs in, or -1 for bases and non-functions.
int ListOfClass( CSchemaSystemTypeScope *pScope, const CSchemaClassInfo *pClass )
{
	for ( const FunctionListBase_t &base : s_ListBases )
	{
		if ( pScope->FindDeclaredClass( base.m_pBaseClass ) == pClass )
			return -1;
	}
	for ( const FunctionListBase_t &base : s_ListBases )
	{
		const CSchemaClassInfo *pBase = pScope->FindDeclaredClass( base.m_pBaseClass );
		if ( pBase && pClass->IsA( pBase ) )
			return base.m_nList;
	}
	return -1;
}

// A burst with a lifetime and the one function under test in its own list.
std::string BodyWith( int nList, const char *pClassName, const std::string &fields = "" )
{
	std::string function = std::string( "[ { _class = \"" ) + pClassName + "\" " + fields + " } ]";
	std::string body = std::string( GetParticleFunctionListKey( nList ) ) + " = " + function + "\n";
	if ( nList != PARTICLE_FUNCTION_EMITTER )
		body += "m_Emitters = [ { _class = \"C_OP_InstantaneousEmitter\" m_nParticlesToEmit = 24 } ]\n";
	if ( nList != PARTICLE_FUNCTION_INITIALIZER )
		body += "m_Initializers = [ { _class = \"C_INIT_RandomLifeTime\" m_fLifetimeMin = 2.0 m_fLifetimeMax = 2.0 } ]\n";
	return body;
}

float MinAlongZ( CParticleCollection &c )
{
	float flMin = 1e30f;
	for ( int i = 0; i < c.Count(); ++i )
		flMin = std::min( flMin, c.Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ] - c.Stream( PARTICLE_ATTRIBUTE_RADIUS )[ i ] );
	return flMin;
}
} // namespace

TEST( ParticleBehaviours, EveryDeclaredFunctionClassHasABehaviourAndRuns )
{
	RegisterParticleFunctionClasses();
	CSchemaSystemTypeScope *pScope = ParticleTypeScope();
	int nChecked = 0;
	for ( int n = 0; n < pScope->GetClassCount(); ++n )
	{
		const CSchemaClassInfo *pClass = pScope->GetClass( n );
		int nList = ListOfClass( pScope, pClass );
		if ( nList < 0 )
			continue;
		const char *pName = pClass->GetName();
		EXPECT_NE( FindParticleSimFunctionFactory( pName ), nullptr ) << pName;
		// With its defaults the class compiles into its list, has a behaviour and runs.
		CUtlString error;
		ParticleDefinitionPtr_t pDef = CompileText( DefinitionText( BodyWith( nList, pName ) ), &error );
		ASSERT_TRUE( pDef ) << pName << ": " << error.Get();
		ASSERT_EQ( pDef->GetFunctions( nList ).size(), 1u ) << pName;
		EXPECT_TRUE( pDef->GetFunctions( nList )[ 0 ]->m_bHasBehaviour ) << pName;
		auto pCollection = MakeCollection( pDef );
		Step( pCollection.get(), 30 );
		for ( int i = 0; i < pCollection->Count(); ++i )
			EXPECT_TRUE( std::isfinite( pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ] ) ) << pName;
		++nChecked;
	}
	// The lists hold dozens of classes; a handful means the lookup above went wrong.
	EXPECT_GE( nChecked, 50 );
}

TEST( ParticleBehaviours, CollideWithPlaneKeepsEveryParticleAboveTheGround )
{
	for ( const char *pResponse : { "PARTICLE_COLLISION_BOUNCE", "PARTICLE_COLLISION_SLIDE" } )
	{
		auto pCollection = MakeCollection( CompileBody( std::string( R"(
			m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 40 } ]
			m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 20.0 m_fSpeedMin = 100.0 m_fSpeedMax = 300.0 },
				{ _class = "C_INIT_RandomRadius" m_flRadiusMin = 1.0 m_flRadiusMax = 4.0 },
				{ _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 10.0 m_fLifetimeMax = 10.0 } ]
			m_Operators = [ { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -900.0 ] } ]
			m_Constraints = [ { _class = "C_OP_CollideWithPlane" m_flPlaneOffset = -30.0 m_nResponse = ")" ) +
																 pResponse + R"(" } ])" ) );
		ASSERT_TRUE( pCollection );
		float flLowest = 1e30f;
		for ( int nStep = 0; nStep < 180; ++nStep )
		{
			Step( pCollection.get(), 1 );
			flLowest = std::min( flLowest, MinAlongZ( *pCollection ) );
		}
		EXPECT_EQ( pCollection->Count(), 40 ) << pResponse;
		EXPECT_GE( flLowest, -30.0f - 1e-3f ) << pResponse;
		// Gravity did bring them down to the ground.
		EXPECT_LT( MinAlongZ( *pCollection ), -29.0f ) << pResponse;
	}
}

TEST( ParticleBehaviours, CollideWithPlaneCanKillWhatHitsTheGround )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 20 } ]
		m_Initializers = [ { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 5.0 },
			{ _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 10.0 m_fLifetimeMax = 10.0 } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -900.0 ] } ]
		m_Constraints = [ { _class = "C_OP_CollideWithPlane" m_flPlaneOffset = -40.0 m_flRadiusScale = 0.0 m_nResponse = "PARTICLE_COLLISION_KILL" } ])" ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 2 );
	EXPECT_EQ( pCollection->Count(), 20 );
	Step( pCollection.get(), 90 );
	EXPECT_EQ( pCollection->Count(), 0 );
}

TEST( ParticleBehaviours, OscillateScalarSwingsTheValueUpAndDown )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 4 } ]
		m_Initializers = [ { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 10.0 m_fLifetimeMax = 10.0 },
			{ _class = "C_INIT_InitFloat" m_nOutputField = 18 m_InputValue = 5.0 } ]
		m_Operators = [ { _class = "C_OP_OscillateScalar" m_nField = 18 m_RateMin = 4.0 m_RateMax = 4.0 m_bProportional = false } ])" ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 1 );
	ASSERT_EQ( pCollection->Count(), 4 );
	float flStart = pCollection->Stream( PARTICLE_ATTRIBUTE_SCRATCH_FLOAT )[ 0 ];
	float flHigh = flStart, flLow = flStart;
	for ( int nStep = 0; nStep < 60; ++nStep )
	{
		Step( pCollection.get(), 1 );
		float flValue = pCollection->Stream( PARTICLE_ATTRIBUTE_SCRATCH_FLOAT )[ 0 ];
		flHigh = std::max( flHigh, flValue );
		flLow = std::min( flLow, flValue );
	}
	// Four per second at the peak, once a second: a swing of about 4 / pi either way.
	EXPECT_GT( flHigh - flStart, 0.5f );
	EXPECT_GT( flStart - flLow, 0.5f );
	EXPECT_GT( flHigh - flLow, 1.0f );
	// After a whole wave it is back where it started.
	EXPECT_NEAR( pCollection->Stream( PARTICLE_ATTRIBUTE_SCRATCH_FLOAT )[ 0 ], flStart, 0.2f );
}

TEST( ParticleBehaviours, OscillatingPositionDoesNotDrift )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 1 } ]
		m_Initializers = [ { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 10.0 m_fLifetimeMax = 10.0 } ]
		m_Operators = [ { _class = "C_OP_BasicMovement" },
			{ _class = "C_OP_OscillateVector" m_RateMin = [ 0.0, 0.0, 100.0 ] m_RateMax = [ 0.0, 0.0, 100.0 ] m_bProportional = false } ])" ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 1 );
	ASSERT_EQ( pCollection->Count(), 1 );
	float flStart = pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ 0 ];
	float flHighest = flStart;
	for ( int nStep = 0; nStep < 60; ++nStep )
	{
		Step( pCollection.get(), 1 );
		flHighest = std::max( flHighest, pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ 0 ] );
	}
	EXPECT_GT( flHighest - flStart, 10.0f );
	EXPECT_NEAR( pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ 0 ], flStart, 3.0f );
}

TEST( ParticleBehaviours, RingWaveSpreadsParticlesEvenlyOnItsRadius )
{
	auto pCollection = MakeCollection( CompileBody( R"(
		m_Emitters = [ { _class = "C_OP_InstantaneousEmitter" m_nParticlesToEmit = 8 } ]
		m_Initializers = [ { _class = "C_INIT_RingWave" m_flInitialRadius = 50.0 m_flParticlesPerOrbit = 8.0 } ])" ) );
	ASSERT_TRUE( pCollection );
	Step( pCollection.get(), 1 );
	ASSERT_EQ( pCollection->Count(), 8 );
	float flSumX = 0.0f, flSumY = 0.0f;
	for ( int i = 0; i < 8; ++i )
	{
		float x = pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 0 )[ i ], y = pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 1 )[ i ];
		EXPECT_NEAR( std::sqrt( x * x + y * y ), 50.0f, 1e-2f );
		EXPECT_NEAR( pCollection->Stream( PARTICLE_ATTRIBUTE_POSITION, 2 )[ i ], 0.0f, 1e-3f );
		flSumX += x;
		flSumY += y;
	}
	// Evenly spaced points around a circle balance out at its centre.
	EXPECT_NEAR( flSumX, 0.0f, 1e-2f );
	EXPECT_NEAR( flSumY, 0.0f, 1e-2f );
}
