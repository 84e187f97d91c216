#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulseresource.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluekv3.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
CPulseValueFullType T( const char *pText )
{
	return CPulseValueFullType::Parse( pText );
}

template <typename T_>
CPulseVariant Value( const char *pType, const T_ &value )
{
	return CPulseVariant( T( pType ), &value );
}

// Saves to KV3, writes that as text, reads the text back and loads a fresh value.
CPulseVariant RoundTripThroughText( const CPulseVariant &value, CUtlString *pText = nullptr )
{
	KeyValues3 saved;
	PulseValue_SaveKV3( value.GetType(), value.GetValue(), &saved );
	CUtlString text;
	EXPECT_TRUE( SaveKV3ToString( &saved, &text, KV3_FORMAT_GENERIC ) );
	KeyValues3 loaded;
	CUtlString error;
	EXPECT_TRUE( LoadKV3FromText( &loaded, &error, text.Get(), text.Length(), KV3_FORMAT_GENERIC ) ) << error.Get();
	CPulseVariant result( value.GetType() );
	CUtlString loadError;
	EXPECT_TRUE( PulseValue_LoadKV3( result.GetType(), result.GetValue(), &loaded, &loadError ) ) << loadError.Get() << "\n" << text.Get();
	if ( pText )
		*pText = text;
	return result;
}

CPulseVariant StringArray( std::initializer_list<const char *> texts )
{
	CPulseValueFullType elementType( PVAL_STRING );
	CPulseVariant array( CPulseValueFullType::MakeArray( elementType ) );
	for ( const char *pText : texts )
	{
		CPulseVariant element;
		element.SetString( pText );
		CPulseArrayData::AddToTail( static_cast<CPulseArrayData **>( array.GetValue() ), elementType, element.GetValue() );
	}
	return array;
}

struct RoundTripCase_t
{
	const char *m_pName;
	std::function<CPulseVariant()> m_fnValue;
};

void PrintTo( const RoundTripCase_t &test, std::ostream *pStream )
{
	*pStream << test.m_pName;
}

class KV3RoundTrip : public ::testing::TestWithParam<RoundTripCase_t>
{
};

TEST_P( KV3RoundTrip, LoadsBackAnEqualValue )
{
	CPulseVariant original = GetParam().m_fnValue();
	CUtlString text;
	CPulseVariant loaded = RoundTripThroughText( original, &text );
	EXPECT_TRUE( PulseValue_IsEqual( original.GetType(), original.GetValue(), loaded.GetValue() ) ) << text.Get();
}

INSTANTIATE_TEST_SUITE_P( PulseValueKV3, KV3RoundTrip,
	::testing::Values( RoundTripCase_t { "Bool", [] { return Value( "PVAL_BOOL", true ); } },
		RoundTripCase_t { "Int", [] { return Value( "PVAL_INT", -123456 ); } },
		RoundTripCase_t { "Float", [] { return Value( "PVAL_FLOAT", 0.1f ); } },
		RoundTripCase_t { "String", [] { CPulseVariant v; v.SetString( "quote \" and\nnewline" ); return v; } },
		RoundTripCase_t { "NullString", [] { return CPulseVariant( T( "PVAL_STRING" ) ); } },
		RoundTripCase_t { "Vec2", [] { return Value( "PVAL_VEC2", Vector2D( 1.5f, -3 ) ); } },
		RoundTripCase_t { "Vec3", [] { return Value( "PVAL_VEC3", Vector( 1, 2, 3 ) ); } },
		RoundTripCase_t { "Angle", [] { return Value( "PVAL_QANGLE", QAngle( 10.1f, 20.2f, 30.3f ) ); } },
		RoundTripCase_t { "WorldVector", [] { return Value( "PVAL_VEC3_WORLDSPACE", Vector( -1, 0, 1e6f ) ); } },
		RoundTripCase_t { "Vec4", [] { return Value( "PVAL_VEC4", Vector4D( 1, 2, 3, 4 ) ); } },
		RoundTripCase_t { "Transform", [] { PulseTransform_t t; t.m_Position[ 1 ] = 7.25f; t.m_Orientation[ 3 ] = 1; return Value( "PVAL_TRANSFORM", t ); } },
		RoundTripCase_t { "ColorWithAlpha", [] { return Value( "PVAL_COLOR_RGB", Color( 1, 2, 3, 4 ) ); } },
		RoundTripCase_t { "GameTime", [] { return Value( "PVAL_GAMETIME", 1234.5678f ); } },
		RoundTripCase_t { "ValidEHandle", [] { return Value( "PVAL_EHANDLE:npc", uint32_t( 0x12345 ) ); } },
		RoundTripCase_t { "InvalidEHandle", [] { return CPulseVariant( T( "PVAL_EHANDLE" ) ); } },
		RoundTripCase_t { "ResourceName", [] { return Value( "PVAL_RESOURCE_NAME:tmsh", CPulseResourceName( "models/crate.tmsh" ) ); } },
		RoundTripCase_t { "SoundEventGuid", [] { PulseSoundEventGuid_t g; g.m_nWords[ 0 ] = 99; return Value( "PVAL_SNDEVT_GUID", g ); } },
		RoundTripCase_t { "SoundEventName", [] { return Value( "PVAL_SNDEVT_NAME", PulseSoundEventName_t( "Ambient.Wind.Loop" ) ); } },
		RoundTripCase_t { "EntityName", [] { return Value( "PVAL_ENTITY_NAME", CGlobalSymbol( "relay_start" ) ); } },
		RoundTripCase_t { "OpaqueHandle", [] { return CPulseVariant( T( "PVAL_OPAQUE_HANDLE" ) ); } },
		RoundTripCase_t { "TypesafeInt64", [] { return Value( "PVAL_TYPESAFE_INT64:Tick", int64_t( -9000000000LL ) ); } },
		RoundTripCase_t { "SchemaEnumWithoutNames", [] { return Value( "PVAL_SCHEMA_ENUM:Mode_t", int64_t( 4 ) ); } },
		RoundTripCase_t { "PanelHandle", [] { return CPulseVariant( T( "PVAL_VISTARA_PANEL_HANDLE" ) ); } },
		RoundTripCase_t { "ParticleObject", [] { return Value( "PVAL_PARTICLE_EHANDLE", uint64_t( 0xFFFFFFFFFFFFull ) ); } },
		RoundTripCase_t { "StringArray", [] { return StringArray( { "a", "B", "" } ); } },
		RoundTripCase_t { "EmptyArray", [] { return CPulseVariant( T( "PVAL_ARRAY:PVAL_INT" ) ); } },
		RoundTripCase_t { "VariantOfVector", [] { Vector v( 1, 2, 3 ); CPulseVariant inner( T( "PVAL_VEC3" ), &v ); return Value( "PVAL_VARIANT", inner ); } },
		RoundTripCase_t { "EmptyVariant", [] { return CPulseVariant( T( "PVAL_VARIANT" ) ); } } ),
	[]( const ::testing::TestParamInfo<RoundTripCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST( PulseValueKV3, InvalidHandleAndEmptyVariantAreWrittenAsNull )
{
	KeyValues3 kv;
	CPulseVariant handle( T( "PVAL_EHANDLE" ) );
	PulseValue_SaveKV3( handle.GetType(), handle.GetValue(), &kv );
	EXPECT_TRUE( kv.IsNull() );

	CPulseVariant empty;
	kv.SetInt( 1 );
	PulseValue_SaveKV3( T( "PVAL_VARIANT" ), &empty, &kv );
	EXPECT_TRUE( kv.IsNull() );
}

TEST( PulseValueKV3, VariantIsATypeTextAndValuePair )
{
	CPulseVariant inner;
	inner.SetInt( 12 );
	KeyValues3 kv;
	PulseValue_SaveKV3( T( "PVAL_VARIANT" ), &inner, &kv );
	ASSERT_TRUE( kv.IsArray() );
	ASSERT_EQ( kv.GetArrayElementCount(), 2 );
	EXPECT_STREQ( kv.GetArrayElement( 0 )->GetString(), "PVAL_INT" );
	EXPECT_EQ( kv.GetArrayElement( 1 )->GetInt(), 12 );
}

TEST( PulseValueKV3, SoundEventGuidStoresItsFirstEightBytes )
{
	PulseSoundEventGuid_t guid;
	guid.m_nWords[ 0 ] = 5;
	guid.m_nWords[ 2 ] = 1234; // not part of the saved form
	KeyValues3 kv;
	PulseValue_SaveKV3( T( "PVAL_SNDEVT_GUID" ), &guid, &kv );
	EXPECT_EQ( kv.GetUInt64(), 0xFFFFFFFF00000005ull );
}

TEST( PulseValueKV3, AnyNumberKindLoadsIntoAnyNumber )
{
	struct Case_t
	{
		std::function<void( KeyValues3 & )> m_fnSet;
		const char *m_pType;
		const char *m_pExpected;
	};
	for ( const Case_t &test : {
			  Case_t { []( KeyValues3 &kv ) { kv.SetDouble( 4.0 ); }, "PVAL_INT", "4" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetUInt( 9 ); }, "PVAL_FLOAT", "9" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetBool( true ); }, "PVAL_INT", "1" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetString( "2.5" ); }, "PVAL_FLOAT", "2.5" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetString( "-17" ); }, "PVAL_INT", "-17" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetInt( 0 ); }, "PVAL_BOOL", "false" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetInt( -1 ); }, "PVAL_TEST_HANDLE", "4294967295" },
			  Case_t { []( KeyValues3 &kv ) { kv.SetToNull(); }, "PVAL_INT", "0" },
		  } )
	{
		KeyValues3 kv;
		test.m_fnSet( kv );
		CPulseVariant value( T( test.m_pType ) );
		CUtlString error, text;
		EXPECT_TRUE( PulseValue_LoadKV3( value.GetType(), value.GetValue(), &kv, &error ) ) << test.m_pType << ": " << error.Get();
		PulseValue_ToText( value.GetType(), value.GetValue(), &text );
		EXPECT_STREQ( text.Get(), test.m_pExpected ) << test.m_pType;
	}
}

TEST( PulseValueKV3, FractionIntoAnIntegerReportsTheLoss )
{
	KeyValues3 kv;
	kv.SetDouble( 3.5 );
	int32_t nValue = 99;
	CUtlString error;
	EXPECT_FALSE( PulseValue_LoadKV3( T( "PVAL_INT" ), &nValue, &kv, &error ) );
	EXPECT_EQ( nValue, 3 );
	EXPECT_STREQ( error.Get(), "Cast of 3.5 loses value information (returning 3)\n" );
}

TEST( PulseValueKV3, NonNumericKindReadsZeroAndNamesTheKind )
{
	KeyValues3 kv;
	kv.SetToEmptyTable();
	float flValue = 5.0f;
	CUtlString error;
	EXPECT_FALSE( PulseValue_LoadKV3( T( "PVAL_FLOAT" ), &flValue, &kv, &error ) );
	EXPECT_EQ( flValue, 0.0f );
	EXPECT_STREQ( error.Get(), "Unsupported KV3 basic type 'table' (9)!" );
}

TEST( PulseValueKV3, WrongCountOfVectorComponentsIsReported )
{
	KeyValues3 kv;
	kv.SetToEmptyArray();
	kv.ArrayAddToTail()->SetDouble( 1.0 );
	kv.ArrayAddToTail()->SetDouble( 2.0 );
	Vector value( 9, 9, 9 );
	CUtlString error;
	EXPECT_FALSE( PulseValue_LoadKV3( T( "PVAL_VEC3" ), &value, &kv, &error ) );
	EXPECT_EQ( value, Vector( 1, 2, 0 ) );
	EXPECT_FALSE( error.IsEmpty() );
}

TEST( PulseValueKV3, ThreeColourComponentsMeanOpaque )
{
	KeyValues3 kv;
	kv.SetToEmptyArray();
	for ( int n : { 10, 20, 30 } )
		kv.ArrayAddToTail()->SetInt( n );
	Color color;
	EXPECT_TRUE( PulseValue_LoadKV3( T( "PVAL_COLOR_RGB" ), &color, &kv, nullptr ) );
	EXPECT_EQ( color, Color( 10, 20, 30, 255 ) );
}

TEST( PulseValueKV3, ArrayLoadReplacesASharedArrayWithoutTouchingTheOtherHolder )
{
	CPulseVariant original = StringArray( { "old" } );
	CPulseVariant shared = original;
	KeyValues3 kv;
	kv.SetToEmptyArray();
	kv.ArrayAddToTail()->SetString( "new" );
	kv.ArrayAddToTail()->SetInt( 5 ); // a number in a string array is a kind error
	CUtlString error;
	EXPECT_FALSE( PulseValue_LoadKV3( shared.GetType(), shared.GetValue(), &kv, &error ) );

	CUtlString text;
	PulseValue_ToText( shared.GetType(), shared.GetValue(), &text );
	EXPECT_STREQ( text.Get(), "[ new,  ]" );
	PulseValue_ToText( original.GetType(), original.GetValue(), &text );
	EXPECT_STREQ( text.Get(), "[ old ]" );
}

TEST( PulseValueKV3, VariantWithUnknownTypeTextLoadsEmpty )
{
	KeyValues3 kv;
	kv.SetToEmptyArray();
	kv.ArrayAddToTail()->SetString( "PVAL_NOT_A_TYPE" );
	kv.ArrayAddToTail()->SetInt( 1 );
	CPulseVariant variant;
	variant.SetString( "previous" );
	CUtlString error;
	EXPECT_FALSE( PulseValue_LoadKV3( T( "PVAL_VARIANT" ), &variant, &kv, &error ) );
	EXPECT_TRUE( variant.IsEmpty() );
	EXPECT_NE( strstr( error.Get(), "PVAL_NOT_A_TYPE" ), nullptr );
}

TEST( PulseValueKV3, ResourceLoadsAsABindingAndSavesItsName )
{
	KeyValues3 kv;
	kv.SetString( "models/crate.tmsh", KV3_SUBTYPE_STRING_RESOURCE_NAME );
	CPulseVariant resource( T( "PVAL_RESOURCE:tmsh" ) );
	ASSERT_TRUE( PulseValue_LoadKV3( resource.GetType(), resource.GetValue(), &kv, nullptr ) );
	const CPulseResourceBinding *pBinding = *static_cast<CPulseResourceBinding *const *>( resource.GetValue() );
	ASSERT_NE( pBinding, nullptr );
	EXPECT_STREQ( pBinding->GetTypeTag().String(), "tmsh" );

	KeyValues3 saved;
	PulseValue_SaveKV3( resource.GetType(), resource.GetValue(), &saved );
	EXPECT_STREQ( saved.GetString(), "models/crate.tmsh" );
	EXPECT_EQ( saved.GetSubType(), KV3_SUBTYPE_STRING_RESOURCE_NAME );

	kv.SetString( "" );
	EXPECT_TRUE( PulseValue_LoadKV3( resource.GetType(), resource.GetValue(), &kv, nullptr ) );
	EXPECT_EQ( *static_cast<CPulseResourceBinding *const *>( resource.GetValue() ), nullptr );
}

// Game times saved relative to a level start, as a host would.
class OffsetTimeHooks : public CPulseValueKV3Hooks
{
public:
	void SaveGameTime( float flTime, KeyValues3 *pKV ) const override { pKV->SetDouble( double( flTime ) - 100.0 ); }
	bool LoadGameTime( const KeyValues3 *pKV, float *pTime, CUtlString * ) const override
	{
		*pTime = float( pKV->GetDouble() + 100.0 );
		return true;
	}
};

TEST( PulseValueKV3, GameTimesGoThroughTheHostsHooks )
{
	OffsetTimeHooks hooks;
	float flTime = 130.0f;
	KeyValues3 kv;
	PulseValue_SaveKV3( T( "PVAL_GAMETIME" ), &flTime, &kv, &hooks );
	EXPECT_EQ( kv.GetDouble(), 30.0 );

	CPulseValueFullType arrayType = T( "PVAL_ARRAY:PVAL_GAMETIME" );
	KeyValues3 array;
	array.SetToEmptyArray();
	array.ArrayAddToTail()->SetDouble( 5.0 );
	CPulseVariant times( arrayType );
	ASSERT_TRUE( PulseValue_LoadKV3( arrayType, times.GetValue(), &array, nullptr, &hooks ) );
	const void *pFirst = CPulseArrayData::GetElement( *static_cast<CPulseArrayData *const *>( times.GetValue() ), *arrayType.GetElementType(), 0 );
	EXPECT_EQ( *static_cast<const float *>( pFirst ), 105.0f );
}
} // namespace
