#include <gtest/gtest.h>

#include <cstring>
#include <functional>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsearraydata.h"
#include "pulse_runtime_lib/valuetypes/pulsetypeservice.h"
#include "pulse_runtime_lib/valuetypes/pulsevalue.h"
#include "pulse_runtime_lib/valuetypes/pulsevalueconvert.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluestorage.h"
#include "pulse_runtime_lib/valuetypes/pulsevariant.h"

namespace
{
CPulseValueFullType T( const char *pText )
{
	bool bOk = false;
	CPulseValueFullType type = CPulseValueFullType::Parse( pText, &bOk );
	EXPECT_TRUE( bOk ) << pText;
	return type;
}

// Converts into a fresh variant of the target type and prints the result.
CUtlString ConvertToText( const CPulseVariant &source, const char *pTargetType, bool *pConverted = nullptr )
{
	CPulseVariant target( T( pTargetType ) );
	bool bConverted = PulseValue_Convert( source.GetType(), source.GetValue(), target.GetType(), target.GetValue() );
	if ( pConverted )
		*pConverted = bConverted;
	CUtlString text;
	PulseValue_ToText( target.GetType(), target.GetValue(), &text );
	return text;
}

template <typename T_>
CPulseVariant Value( const char *pType, const T_ &value )
{
	return CPulseVariant( T( pType ), &value );
}

CPulseVariant Text( const char *pText )
{
	CPulseVariant variant;
	variant.SetString( pText );
	return variant;
}

struct ConversionCase_t
{
	const char *m_pName;
	std::function<CPulseVariant()> m_fnSource;
	const char *m_pTargetType;
	const char *m_pExpected;
};

void PrintTo( const ConversionCase_t &test, std::ostream *pStream )
{
	*pStream << test.m_pName << " to " << test.m_pTargetType;
}

class ConversionTable : public ::testing::TestWithParam<ConversionCase_t>
{
};

TEST_P( ConversionTable, GivesTheDocumentedResult )
{
	CPulseVariant source = GetParam().m_fnSource();
	ASSERT_TRUE( PulseValue_CanConvert( source.GetType(), T( GetParam().m_pTargetType ) ) );
	bool bConverted = false;
	CUtlString result = ConvertToText( source, GetParam().m_pTargetType, &bConverted );
	EXPECT_TRUE( bConverted );
	EXPECT_STREQ( result.Get(), GetParam().m_pExpected );
}

INSTANTIATE_TEST_SUITE_P( PulseValueConvert, ConversionTable,
	::testing::Values( ConversionCase_t { "BoolToInt", [] { return Value( "PVAL_BOOL", true ); }, "PVAL_INT", "1" },
		ConversionCase_t { "BoolToFloat", [] { return Value( "PVAL_BOOL", true ); }, "PVAL_FLOAT", "1" },
		ConversionCase_t { "BoolToString", [] { return Value( "PVAL_BOOL", false ); }, "PVAL_STRING", "false" },
		ConversionCase_t { "IntToBool", [] { return Value( "PVAL_INT", -7 ); }, "PVAL_BOOL", "true" },
		ConversionCase_t { "IntToFloatRoundsToNearest", [] { return Value( "PVAL_INT", 16777217 ); }, "PVAL_FLOAT", "16777216" },
		ConversionCase_t { "IntToString", [] { return Value( "PVAL_INT", -42 ); }, "PVAL_STRING", "-42" },
		ConversionCase_t { "FloatToBool", [] { return Value( "PVAL_FLOAT", 0.0f ); }, "PVAL_BOOL", "false" },
		ConversionCase_t { "FloatToIntTruncates", [] { return Value( "PVAL_FLOAT", -2.9f ); }, "PVAL_INT", "-2" },
		ConversionCase_t { "HugeFloatToIntSaturates", [] { return Value( "PVAL_FLOAT", 1e20f ); }, "PVAL_INT", "2147483647" },
		ConversionCase_t { "FloatToString", [] { return Value( "PVAL_FLOAT", 2.5f ); }, "PVAL_STRING", "2.5" },
		ConversionCase_t { "GameTimeToString", [] { return Value( "PVAL_GAMETIME", 10.0f ); }, "PVAL_STRING", "10" },
		ConversionCase_t { "StringToBoolWord", [] { return Text( "True" ); }, "PVAL_BOOL", "true" },
		ConversionCase_t { "StringToBoolNumber", [] { return Text( "0" ); }, "PVAL_BOOL", "false" },
		ConversionCase_t { "NullStringToBool", [] { return CPulseVariant( CPulseValueFullType( PVAL_STRING ) ); }, "PVAL_BOOL", "false" },
		ConversionCase_t { "StringToIntStopsAtJunk", [] { return Text( "12abc" ); }, "PVAL_INT", "12" },
		ConversionCase_t { "StringToIntOfJunkIsZero", [] { return Text( "abc" ); }, "PVAL_INT", "0" },
		ConversionCase_t { "StringToFloat", [] { return Text( "0.125" ); }, "PVAL_FLOAT", "0.125" },
		ConversionCase_t { "Vec2ToString", [] { return Value( "PVAL_VEC2", Vector2D( 1.5f, -2 ) ); }, "PVAL_STRING", "1.5 -2" },
		ConversionCase_t { "VecToString", [] { return Value( "PVAL_VEC3", Vector( 1, 2.25f, 3 ) ); }, "PVAL_STRING", "1 2.25 3" },
		ConversionCase_t { "AngleToString", [] { return Value( "PVAL_QANGLE", QAngle( 0, 90, 0 ) ); }, "PVAL_STRING", "0 90 0" },
		ConversionCase_t { "Vec4ToString", [] { return Value( "PVAL_VEC4", Vector4D( 1, 2, 3, 4 ) ); }, "PVAL_STRING", "1 2 3 4" },
		ConversionCase_t { "ColorToStringShowsThreeChannels", [] { return Value( "PVAL_COLOR_RGB", Color( 255, 128, 0, 7 ) ); }, "PVAL_STRING", "255 128 0" },
		ConversionCase_t { "EntityNameToString", [] { return Value( "PVAL_ENTITY_NAME", CGlobalSymbol( "door_1" ) ); }, "PVAL_STRING", "door_1" },
		ConversionCase_t { "EntityNameDropsItsSubtype", [] { return Value( "PVAL_ENTITY_NAME:func_door", CGlobalSymbol( "door_1" ) ); }, "PVAL_ENTITY_NAME", "door_1" },
		ConversionCase_t { "UnnamedSchemaEnumPrintsItsNumber", [] { return Value( "PVAL_SCHEMA_ENUM:Mode_t", int64_t( 3 ) ); }, "PVAL_STRING", "3" },
		ConversionCase_t { "TestHandleToString", [] { return Value( "PVAL_TEST_HANDLE", uint32_t( 77 ) ); }, "PVAL_STRING", "77" },
		ConversionCase_t { "AnyTypeToVariant", [] { return Value( "PVAL_VEC3", Vector( 1, 2, 3 ) ); }, "PVAL_VARIANT", "1 2 3" } ),
	[]( const ::testing::TestParamInfo<ConversionCase_t> &info ) { return std::string( info.param.m_pName ); } );

TEST( PulseValueConvert, RefusedConversionLeavesTheTargetUntouched )
{
	struct Refused_t
	{
		const char *m_pFrom;
		const char *m_pTo;
	};
	for ( const Refused_t &refused : { Refused_t { "PVAL_VEC3", "PVAL_FLOAT" }, Refused_t { "PVAL_STRING", "PVAL_VEC3" },
			  Refused_t { "PVAL_TRANSFORM", "PVAL_STRING" }, Refused_t { "PVAL_ENTITY_NAME", "PVAL_ENTITY_NAME:func_door" },
			  Refused_t { "PVAL_OPAQUE_HANDLE", "PVAL_INT" },
			  Refused_t { "PVAL_ARRAY:PVAL_TRANSFORM", "PVAL_STRING" }, Refused_t { "PVAL_ARRAY:PVAL_VEC3", "PVAL_ARRAY:PVAL_INT" } } )
	{
		EXPECT_FALSE( PulseValue_CanConvert( T( refused.m_pFrom ), T( refused.m_pTo ) ) ) << refused.m_pFrom << " -> " << refused.m_pTo;
		CPulseVariant source( T( refused.m_pFrom ) );
		CPulseVariant target( T( refused.m_pTo ) );
		CPulseVariant before = target;
		EXPECT_FALSE( PulseValue_Convert( source.GetType(), source.GetValue(), target.GetType(), target.GetValue() ) );
		EXPECT_EQ( target, before );
	}
}

TEST( PulseValueConvert, UnknownConvertsBothWaysAtCompileTime )
{
	EXPECT_TRUE( PulseValue_CanConvert( T( "PVAL_UNKNOWN" ), T( "PVAL_VEC3" ) ) );
	EXPECT_TRUE( PulseValue_CanConvert( T( "PVAL_TRANSFORM" ), T( "PVAL_ANY" ) ) );
	EXPECT_TRUE( PulseValue_CanConvert( T( "PVAL_ARRAY:PVAL_TRANSFORM" ), T( "PVAL_ARRAY:PVAL_UNKNOWN" ) ) );
}

TEST( PulseValueConvert, ArrayConvertsElementByElementIntoANewArray )
{
	CPulseValueFullType intType( PVAL_INT );
	CPulseVariant ints( CPulseValueFullType::MakeArray( intType ) );
	CPulseArrayData **ppInts = static_cast<CPulseArrayData **>( ints.GetValue() );
	for ( int32_t n : { 1, 0, 5 } )
		CPulseArrayData::AddToTail( ppInts, intType, &n );

	EXPECT_STREQ( ConvertToText( ints, "PVAL_ARRAY:PVAL_FLOAT" ).Get(), "[ 1, 0, 5 ]" );
	EXPECT_STREQ( ConvertToText( ints, "PVAL_ARRAY:PVAL_BOOL" ).Get(), "[ true, false, true ]" );
	EXPECT_STREQ( ConvertToText( ints, "PVAL_STRING" ).Get(), "[ 1, 0, 5 ]" );
	EXPECT_EQ( ( *ppInts )->GetRefCount(), 1 ) << "conversion must not share the source block";
}

TEST( PulseValueConvert, EmptyArrayToStringIsBrackets )
{
	CPulseVariant empty( T( "PVAL_ARRAY:PVAL_INT" ) );
	EXPECT_STREQ( ConvertToText( empty, "PVAL_STRING" ).Get(), "[]" );
}

TEST( PulseValueConvert, VariantSourceConvertsFromTheTypeItHolds )
{
	CPulseVariant inner = Value( "PVAL_FLOAT", 7.75f );
	CPulseVariant variant( T( "PVAL_VARIANT" ), &inner );
	EXPECT_STREQ( ConvertToText( variant, "PVAL_INT" ).Get(), "7" );
}

// A scope where handles 1..9 are live, odd handles are "npc" objects, and "npc_guard"
// stands for "npc" at compile time.
class FakeScopeQueries : public IPulseTypeQueriesForScope
{
public:
	bool IsObjectTypeCompatible( const CPulseValueFullType &from, const CPulseValueFullType &to ) const override
	{
		return from.GetBaseType() == to.GetBaseType() && !strcmp( from.GetSubtype().String(), "npc_guard" ) && !strcmp( to.GetSubtype().String(), "npc" );
	}
	bool IsInstanceOf( const CPulseValueFullType &, const void *pValue, const CPulseValueFullType &to ) const override
	{
		uint32_t nHandle = *static_cast<const uint32_t *>( pValue );
		return !strcmp( to.GetSubtype().String(), "npc" ) && nHandle % 2 == 1;
	}
	bool IsLive( const CPulseValueFullType &, const void *pValue ) const override
	{
		uint32_t nHandle = *static_cast<const uint32_t *>( pValue );
		return nHandle >= 1 && nHandle <= 9;
	}
	CPulseValueFullType GetActualType( const CPulseValueFullType &type, const void * ) const override { return type; }
	bool GetEnumeratorName( CGlobalSymbol enumName, int64_t nValue, CUtlString *pName ) const override
	{
		if ( strcmp( enumName.String(), "Mode_t" ) || nValue != 1 )
			return false;
		pName->Set( "MODE_FAST" );
		return true;
	}
};

class PulseValueConvertWithScope : public ::testing::Test
{
protected:
	PulseValueConvertWithScope() : m_Hook( "[TEST]", &m_Queries ), m_Guard( m_Hook.GetScope() ) {}

	FakeScopeQueries m_Queries;
	CPulseModuleRegistrationHook m_Hook;
	CPulseTypeScopeGuard m_Guard;
};

TEST_F( PulseValueConvertWithScope, HandleToBoolNeedsALiveObject )
{
	EXPECT_STREQ( ConvertToText( Value( "PVAL_EHANDLE", uint32_t( 3 ) ), "PVAL_BOOL" ).Get(), "true" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_EHANDLE", uint32_t( 30 ) ), "PVAL_BOOL" ).Get(), "false" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_EHANDLE", PULSE_INVALID_EHANDLE ), "PVAL_BOOL" ).Get(), "false" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_TEST_HANDLE", uint32_t( 9 ) ), "PVAL_BOOL" ).Get(), "true" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_OPAQUE_HANDLE", uint32_t( 2 ) ), "PVAL_BOOL" ).Get(), "true" );
}

TEST( PulseValueConvert, NarrowingAHandleIsOfferedOnlyForCompatibleTypes )
{
	EXPECT_FALSE( PulseValue_CanConvert( T( "PVAL_EHANDLE" ), T( "PVAL_EHANDLE:npc" ) ) );
	EXPECT_TRUE( PulseValue_CanConvert( T( "PVAL_EHANDLE:npc" ), T( "PVAL_EHANDLE" ) ) );
	EXPECT_TRUE( PulseValue_CanConvert( T( "PVAL_EHANDLE:npc" ), T( "PVAL_TEST_HANDLE" ) ) );
}

TEST_F( PulseValueConvertWithScope, NarrowingAHandleKeepsOnlyInstances )
{
	ASSERT_TRUE( PulseValue_CanConvert( T( "PVAL_EHANDLE:npc_guard" ), T( "PVAL_EHANDLE:npc" ) ) );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_EHANDLE:npc_guard", uint32_t( 3 ) ), "PVAL_EHANDLE:npc" ).Get(), "3" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_EHANDLE:npc_guard", uint32_t( 4 ) ), "PVAL_EHANDLE:npc" ).Get(), "4294967295" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_EHANDLE:npc_guard", uint32_t( 4 ) ), "PVAL_EHANDLE" ).Get(), "4" );
}

TEST_F( PulseValueConvertWithScope, ReinterpretNeedsAnInstanceForASubtype )
{
	uint32_t nOdd = 5, nEven = 6;
	EXPECT_TRUE( PulseValue_CanReinterpret( T( "PVAL_EHANDLE:prop" ), &nOdd, T( "PVAL_EHANDLE:npc" ) ) );
	EXPECT_FALSE( PulseValue_CanReinterpret( T( "PVAL_EHANDLE:prop" ), &nEven, T( "PVAL_EHANDLE:npc" ) ) );
	EXPECT_TRUE( PulseValue_CanReinterpret( T( "PVAL_EHANDLE:prop" ), &nEven, T( "PVAL_EHANDLE" ) ) );
	int32_t nInt = 1;
	EXPECT_FALSE( PulseValue_CanReinterpret( T( "PVAL_TYPESAFE_INT:a" ), &nInt, T( "PVAL_TYPESAFE_INT:b" ) ) );
	EXPECT_FALSE( PulseValue_CanReinterpret( T( "PVAL_INT" ), &nInt, T( "PVAL_FLOAT" ) ) );
}

TEST_F( PulseValueConvertWithScope, SchemaEnumPrintsItsEnumeratorName )
{
	EXPECT_STREQ( ConvertToText( Value( "PVAL_SCHEMA_ENUM:Mode_t", int64_t( 1 ) ), "PVAL_STRING" ).Get(), "MODE_FAST" );
	EXPECT_STREQ( ConvertToText( Value( "PVAL_SCHEMA_ENUM:Mode_t", int64_t( 2 ) ), "PVAL_STRING" ).Get(), "2" );
}

TEST( PulseTypeScope, ModuleNamesLookUpIgnoringCase )
{
	EXPECT_EQ( PulseTypeScope_FromName( "SERVER.DLL" ), PULSE_TYPE_SCOPE_SERVER );
	EXPECT_EQ( PulseTypeScope_FromName( "[test]" ), PULSE_TYPE_SCOPE_TEST );
	EXPECT_EQ( PulseTypeScope_FromName( "engine.dll" ), PULSE_TYPE_SCOPE_COUNT );
	EXPECT_STREQ( PulseTypeScope_GetName( 3 ), "resourcecompiler.dll" );
	EXPECT_STREQ( PulseTypeScope_GetName( 5 ), "[unknown]" );
}

TEST( PulseTypeScope, RegistrationEndsWithItsHook )
{
	FakeScopeQueries queries;
	{
		CPulseModuleRegistrationHook hook( "client.dll", &queries );
		EXPECT_EQ( CPulseScopeEnumeratingTypeService::Get().GetQueriesForScope( PULSE_TYPE_SCOPE_CLIENT ), &queries );
	}
	EXPECT_EQ( CPulseScopeEnumeratingTypeService::Get().GetQueriesForScope( PULSE_TYPE_SCOPE_CLIENT ), nullptr );
}
} // namespace
