#include <gtest/gtest.h>

#include "particleslib/particlenamedvaluebindings.h"
#include "particleslib/particlenamedvalueref.h"
#include "tests/core/support/capturelogginglistener.h"

TEST( ParticleNamedValueBindings, DeclaredNamesResolveWithoutCase )
{
	CParticleNamedValueBindings bindings( "fx_fire" );
	EXPECT_EQ( bindings.AddDeclared( "Heat", CPulseValueFullType( PVAL_FLOAT ) ), 0 );
	EXPECT_EQ( bindings.AddDeclared( "Colour", CPulseValueFullType( PVAL_VEC3 ) ), 1 );
	EXPECT_EQ( bindings.AddDeclared( "heat", CPulseValueFullType( PVAL_FLOAT ) ), 0 );
	CCaptureLoggingListener log;
	EXPECT_EQ( bindings.Resolve( "HEAT", CPulseValueFullType( PVAL_FLOAT ) ), 0 );
	EXPECT_EQ( log.CountContaining( "referenced but not declared" ), 0 );
	EXPECT_STREQ( bindings.GetEntry( 1 ).m_ID.m_pName, "Colour" );
	EXPECT_EQ( bindings.GetEntry( 1 ).m_ID.m_nNumber, -1 );
	EXPECT_TRUE( bindings.HasTokenWithType( CParticleNamedValueRef::MakeToken( "colour" ), CPulseValueFullType( PVAL_VEC3 ) ) );
	EXPECT_FALSE( bindings.HasTokenWithType( CParticleNamedValueRef::MakeToken( "colour" ), CPulseValueFullType( PVAL_FLOAT ) ) );
}

TEST( ParticleNamedValueBindings, UndeclaredNamesGetAFallbackOfTheExpectedType )
{
	CParticleNamedValueBindings bindings( "fx_fire" );
	CCaptureLoggingListener log;
	CParticleNamedValueRef ref( "Gust" );
	bindings.Bind( ref, CPulseValueFullType( PVAL_TRANSFORM ) );
	EXPECT_EQ( ref.GetSlot(), 0 );
	EXPECT_EQ( bindings.GetEntry( 0 ).m_Type, CPulseValueFullType( PVAL_TRANSFORM ) );
	EXPECT_EQ( log.CountContaining( "Variable 'Gust' is referenced but not declared in this system (fx_fire). Adding a fallback now." ), 1 );
	// The fallback now exists: a second reference reuses it silently.
	CParticleNamedValueRef again( "gust" );
	bindings.Bind( again, CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_EQ( again.GetSlot(), 0 );
	EXPECT_EQ( log.CountContaining( "referenced but not declared" ), 1 );

	CParticleNamedValueRef empty;
	bindings.Bind( empty, CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_EQ( empty.GetSlot(), -1 );
	EXPECT_EQ( bindings.GetCount(), 1 );

	bindings.SetSilent( true );
	bindings.Resolve( "Quiet", CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_EQ( log.CountContaining( "Quiet" ), 0 );
	// Names stay valid as the table grows.
	for ( int i = 0; i < 40; ++i )
		bindings.AddDeclared( ( "v" + std::to_string( i ) ).c_str(), CPulseValueFullType( PVAL_INT ) );
	EXPECT_STREQ( bindings.GetEntry( 0 ).m_ID.m_pName, "Gust" );
}

TEST( ParticleNamedValueRef, TokenIgnoresCaseAndEmptyIsZero )
{
	EXPECT_EQ( CParticleNamedValueRef( "Wind" ).GetToken(), CParticleNamedValueRef( "WIND" ).GetToken() );
	EXPECT_NE( CParticleNamedValueRef( "Wind" ).GetToken(), 0u );
	EXPECT_EQ( CParticleNamedValueRef( "" ).GetToken(), 0u );
	EXPECT_TRUE( CParticleNamedValueRef().IsEmpty() );
	EXPECT_EQ( CParticleNamedValueRef().GetSlot(), -1 );
}
