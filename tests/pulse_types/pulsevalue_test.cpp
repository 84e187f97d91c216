#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueblock.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
template <typename T>
bool Equal( PulseValueType_t eType, const T &a, const T &b )
{
	return PulseValue_IsEqual( CPulseValueFullType( eType ), &a, &b );
}

TEST( PulseValueEquality, FloatsWithinOneThousandthAreEqual )
{
	EXPECT_TRUE( Equal( PVAL_FLOAT, 1.0005f, 1.0f ) );
	EXPECT_FALSE( Equal( PVAL_FLOAT, 1.002f, 1.0f ) );
}

TEST( PulseValueEquality, LargeFloatsUseARelativeTolerance )
{
	EXPECT_TRUE( Equal( PVAL_FLOAT, 10000.5f, 10000.0f ) );
	EXPECT_FALSE( Equal( PVAL_FLOAT, 10020.0f, 10000.0f ) );
}

TEST( PulseValueEquality, GameTimesDifferingInTheLastBitAreNotEqual )
{
	float flTime = 12.5f;
	float flNext = std::nextafter( flTime, 100.0f );
	EXPECT_FALSE( Equal( PVAL_GAMETIME, flTime, flNext ) );
	EXPECT_TRUE( Equal( PVAL_FLOAT, flTime, flNext ) );
}

TEST( PulseValueEquality, NaNEqualsNothing )
{
	float flNaN = std::numeric_limits<float>::quiet_NaN();
	EXPECT_FALSE( Equal( PVAL_FLOAT, flNaN, flNaN ) );
	EXPECT_FALSE( Equal( PVAL_GAMETIME, flNaN, flNaN ) );
	EXPECT_FALSE( Equal( PVAL_VEC3, Vector( flNaN, 0, 0 ), Vector( flNaN, 0, 0 ) ) );
	PulseTransform_t transform;
	transform.m_Orientation[ 3 ] = flNaN;
	EXPECT_FALSE( Equal( PVAL_TRANSFORM, transform, transform ) );
}

TEST( PulseValueEquality, VectorsCompareComponentsWithAnAbsoluteTolerance )
{
	EXPECT_TRUE( Equal( PVAL_VEC3, Vector( 1, 2, 3 ), Vector( 1.0009f, 2, 2.9991f ) ) );
	EXPECT_FALSE( Equal( PVAL_VEC3, Vector( 1000, 2, 3 ), Vector( 1000.01f, 2, 3 ) ) );
	EXPECT_FALSE( Equal( PVAL_VEC4, Vector4D( 0, 0, 0, 1 ), Vector4D( 0, 0, 0, 1.01f ) ) );
}

TEST( PulseValueEquality, AnglesMustMatchExactly )
{
	EXPECT_FALSE( Equal( PVAL_QANGLE, QAngle( 0, 90, 0 ), QAngle( 0, 90.0001f, 0 ) ) );
	EXPECT_TRUE( Equal( PVAL_QANGLE, QAngle( 0, 90, 0 ), QAngle( 0, 90, 0 ) ) );
}

TEST( PulseValueEquality, ColourAlphaCountsThoughTheTextHidesIt )
{
	EXPECT_FALSE( Equal( PVAL_COLOR_RGB, Color( 10, 20, 30, 255 ), Color( 10, 20, 30, 0 ) ) );

	CUtlString opaque, clear;
	Color a( 10, 20, 30, 255 ), b( 10, 20, 30, 0 );
	PulseValue_ToText( CPulseValueFullType( PVAL_COLOR_RGB ), &a, &opaque );
	PulseValue_ToText( CPulseValueFullType( PVAL_COLOR_RGB ), &b, &clear );
	EXPECT_STREQ( opaque.Get(), "10 20 30" );
	EXPECT_STREQ( opaque.Get(), clear.Get() );
}

TEST( PulseValueEquality, StringsIgnoreCaseAndNullEqualsEmpty )
{
	CPulseVariant a, b, empty, null;
	a.SetString( "Hello World" );
	b.SetString( "hello world" );
	empty.SetString( "" );
	null.SetType( CPulseValueFullType( PVAL_STRING ) );
	EXPECT_EQ( a, b );
	EXPECT_EQ( empty, null );
	EXPECT_NE( a, null );
}

TEST( PulseValueEquality, SoundEventNamesCompareExactly )
{
	PulseSoundEventName_t a( "Weapon.Fire" ), b( "weapon.fire" ), c( "Weapon.Fire" );
	EXPECT_FALSE( Equal( PVAL_SNDEVT_NAME, a, b ) );
	EXPECT_TRUE( Equal( PVAL_SNDEVT_NAME, a, c ) );
}

TEST( PulseValueEquality, ResourceNamesMatchIgnoringCaseAndSlashKind )
{
	CPulseResourceName a( "Models\\Props\\Crate.tmsh" ), b( "models/props/crate.tmsh" ), c( "models/props/crate2.tmsh" );
	EXPECT_TRUE( Equal( PVAL_RESOURCE_NAME, a, b ) );
	EXPECT_FALSE( Equal( PVAL_RESOURCE_NAME, a, c ) );
}

TEST( PulseValueEquality, LongResourceNameKeepsItsWholeText )
{
	std::string path( 300, 'a' );
	CPulseResourceName name( path.c_str() );
	EXPECT_EQ( std::string( name.Get() ), path );
	CPulseResourceName copy = name;
	EXPECT_TRUE( Equal( PVAL_RESOURCE_NAME, name, copy ) );
	EXPECT_NE( name.Get(), copy.Get() );
}

TEST( PulseValueDefaults, HandlesStartInvalidAndEverythingElseZero )
{
	CPulseVariant ehandle { CPulseValueFullType( PVAL_EHANDLE ) };
	EXPECT_EQ( *static_cast<const uint32_t *>( ehandle.GetValue() ), PULSE_INVALID_EHANDLE );
	CPulseVariant panel { CPulseValueFullType( PVAL_VISTARA_PANEL_HANDLE ) };
	EXPECT_EQ( *static_cast<const uint64_t *>( panel.GetValue() ), PULSE_INVALID_VISTARA_PANEL_HANDLE );

	CPulseVariant guid { CPulseValueFullType( PVAL_SNDEVT_GUID ) };
	const uint32_t *pWords = static_cast<const PulseSoundEventGuid_t *>( guid.GetValue() )->m_nWords;
	EXPECT_EQ( pWords[ 0 ], 0u );
	EXPECT_EQ( pWords[ 1 ], 0xFFFFFFFFu );
	EXPECT_EQ( pWords[ 4 ], 0u );

	CPulseVariant color { CPulseValueFullType( PVAL_COLOR_RGB ) };
	EXPECT_EQ( static_cast<const Color *>( color.GetValue() )->a(), 0 );
}

TEST( PulseValueValidity, HandlesAreInvalidWithoutATypeService )
{
	uint32_t nHandle = 7;
	EXPECT_FALSE( PulseValue_IsValid( CPulseValueFullType( PVAL_EHANDLE ), &nHandle ) );
	CGlobalSymbol noName;
	EXPECT_FALSE( PulseValue_IsValid( CPulseValueFullType( PVAL_ENTITY_NAME ), &noName ) );
	float flAnything = 3.0f;
	EXPECT_TRUE( PulseValue_IsValid( CPulseValueFullType( PVAL_FLOAT ), &flAnything ) );
}

TEST( PulseValueText, FloatsDropZerosThatAddNothing )
{
	struct Case_t
	{
		float m_flValue;
		const char *m_pText;
	};
	for ( const Case_t &test : { Case_t { 1.5f, "1.5" }, Case_t { 2.0f, "2" }, Case_t { -0.25f, "-0.25" }, Case_t { 100.0f, "100" },
			  Case_t { 0.0000001f, "0" } } )
	{
		CUtlString text;
		PulseValue_ToText( CPulseValueFullType( PVAL_FLOAT ), &test.m_flValue, &text );
		EXPECT_STREQ( text.Get(), test.m_pText );
	}
}

TEST( PulseValueBlockLayout, PlacesEachValueAtItsAlignment )
{
	CPulseValueFullType types[] = { CPulseValueFullType( PVAL_BOOL ), CPulseValueFullType( PVAL_TRANSFORM ), CPulseValueFullType( PVAL_INT ),
		CPulseValueFullType( PVAL_STRING ), CPulseValueFullType( PVAL_COLOR_RGB ), CPulseValueFullType( PVAL_VARIANT ) };
	CPulseValueBlockLayout layout;
	ASSERT_TRUE( layout.Build( types, 6, nullptr ) );
	EXPECT_EQ( layout.GetOffset( 0 ), 0 );
	EXPECT_EQ( layout.GetOffset( 1 ), 16 );
	EXPECT_EQ( layout.GetOffset( 2 ), 48 );
	EXPECT_EQ( layout.GetOffset( 3 ), 56 );
	EXPECT_EQ( layout.GetOffset( 4 ), 64 );
	EXPECT_EQ( layout.GetOffset( 5 ), 80 );
	EXPECT_EQ( layout.GetSize(), 112u );
	EXPECT_EQ( layout.GetAlignment(), 16u );
}

TEST( PulseValueBlockLayout, BuildsCopiesAndDestroysOwnedValues )
{
	CPulseValueFullType types[] = { CPulseValueFullType( PVAL_STRING ), CPulseValueFullType( PVAL_VARIANT ),
		CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_STRING" ) };
	CPulseValueBlockLayout layout;
	ASSERT_TRUE( layout.Build( types, 3, nullptr ) );

	alignas( 16 ) unsigned char source[ 64 ], target[ 64 ];
	ASSERT_LE( layout.GetSize(), sizeof( source ) );
	layout.ConstructAll( source );
	layout.ConstructAll( target );
	PulseValue_SetString( layout.GetValue( source, 0 ), "register text" );
	static_cast<CPulseVariant *>( layout.GetValue( source, 1 ) )->SetString( "variant text" );
	layout.CopyAll( target, source );
	layout.DestructAll( source );

	EXPECT_STREQ( PulseValue_GetString( layout.GetValue( target, 0 ) ), "register text" );
	EXPECT_STREQ( static_cast<CPulseVariant *>( layout.GetValue( target, 1 ) )->GetString(), "variant text" );
	layout.DestructAll( target );
}

TEST( PulseValueBlockLayout, RefusesABlockBeyondSixteenBitOffsets )
{
	std::vector<CPulseValueFullType> types( 300, CPulseValueFullType( PVAL_RESOURCE_NAME ) );
	CPulseValueBlockLayout layout;
	CUtlString error;
	EXPECT_FALSE( layout.Build( types.data(), int( types.size() ), &error ) );
	EXPECT_FALSE( error.IsEmpty() );
	EXPECT_EQ( layout.GetCount(), 0 );
}
} // namespace
