#include <gtest/gtest.h>

#include <unordered_set>

#include "core/text/utlstring.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"

namespace
{
// Texts that must survive parse -> print unchanged.
class FullTypeTextRoundTrip : public ::testing::TestWithParam<const char *>
{
};

TEST_P( FullTypeTextRoundTrip, PrintsTheTextItWasParsedFrom )
{
	CPulseValueFullType type;
	ASSERT_TRUE( type.FromString( GetParam() ) );
	EXPECT_STREQ( type.ToString().Get(), GetParam() );

	CPulseValueFullType reparsed = CPulseValueFullType::Parse( type.ToString().Get() );
	EXPECT_EQ( reparsed, type );
	EXPECT_EQ( reparsed.GetHash(), type.GetHash() );
}

INSTANTIATE_TEST_SUITE_P( PulseValueFullType, FullTypeTextRoundTrip,
	::testing::Values( "PVAL_VOID", "PVAL_BOOL", "PVAL_INT", "PVAL_FLOAT", "PVAL_STRING", "PVAL_VEC3", "PVAL_TRANSFORM_WORLDSPACE",
		"PVAL_COLOR_RGB", "PVAL_CURSOR_FLOW", "PVAL_VARIANT", "PVAL_UNKNOWN", "PVAL_PARTICLE_EHANDLE", "PVAL_EHANDLE",
		"PVAL_EHANDLE:npc_guard", "PVAL_RESOURCE:tmsh", "PVAL_SCHEMA_ENUM:ParticleAttachment_t", "PVAL_TYPESAFE_INT64:TickId",
		"PVAL_ARRAY:PVAL_VEC3", "PVAL_ARRAY:PVAL_ARRAY:PVAL_INT", "PVAL_ARRAY:PVAL_EHANDLE:prop_door",
		"PVAL_ARRAY:PVAL_VOID" ) );

// Texts that must be refused, leaving an invalid type.
class FullTypeTextRejected : public ::testing::TestWithParam<const char *>
{
};

TEST_P( FullTypeTextRejected, FailsAndLeavesAnInvalidType )
{
	CPulseValueFullType type( PVAL_EHANDLE, "previous" );
	EXPECT_FALSE( type.FromString( GetParam() ) );
	EXPECT_FALSE( type.IsValid() );
	EXPECT_FALSE( type.HasSubtype() );
	EXPECT_EQ( type.GetElementType(), nullptr );
}

INSTANTIATE_TEST_SUITE_P( PulseValueFullType, FullTypeTextRejected,
	::testing::Values( "", "PVAL_", "pval_int", "PVAL_INTEGER", " PVAL_INT", "Vector", ":PVAL_INT", "PVAL_ARRAY",
		"PVAL_ARRAY:", "PVAL_ARRAY:Vector", "PVAL_ARRAY:PVAL_ARRAY:nonsense" ) );

TEST( PulseValueFullType, NullTextIsRejected )
{
	CPulseValueFullType type( PVAL_INT );
	EXPECT_FALSE( type.FromString( nullptr ) );
	EXPECT_FALSE( type.IsValid() );
}

TEST( PulseValueFullType, TypeWithoutSubtypeIgnoresTextAfterTheColon )
{
	CPulseValueFullType type;
	ASSERT_TRUE( type.FromString( "PVAL_INT:whatever:else" ) );
	EXPECT_EQ( type, CPulseValueFullType( PVAL_INT ) );
	EXPECT_FALSE( type.HasSubtype() );
	EXPECT_STREQ( type.ToString().Get(), "PVAL_INT" );
}

TEST( PulseValueFullType, SubtypeKeepsEverythingAfterTheFirstColon )
{
	CPulseValueFullType type = CPulseValueFullType::Parse( "PVAL_RESOURCE_NAME:a:b" );
	EXPECT_STREQ( type.GetSubtype().String(), "a:b" );
}

TEST( PulseValueFullType, AliasesNameInvalidAndUnknownAndIgnoreTheRest )
{
	bool bOk = false;
	CPulseValueFullType invalid = CPulseValueFullType::Parse( "PVAL_INVALID:PVAL_INT", &bOk );
	EXPECT_TRUE( bOk );
	EXPECT_FALSE( invalid.IsValid() );

	CPulseValueFullType any = CPulseValueFullType::Parse( "PVAL_ANY:foo", &bOk );
	EXPECT_TRUE( bOk );
	EXPECT_EQ( any, CPulseValueFullType( PVAL_UNKNOWN ) );
}

TEST( PulseValueFullType, ArrayOfArraysOfIntegersParsesEveryLevel )
{
	CPulseValueFullType type = CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_ARRAY:PVAL_INT" );
	ASSERT_TRUE( type.IsArray() );
	ASSERT_TRUE( type.GetElementType()->IsArray() );
	EXPECT_EQ( type.GetElementType()->GetElementType()->GetBaseType(), PVAL_INT );
	EXPECT_EQ( type.GetElementType()->GetElementType()->GetElementType(), nullptr );
}

TEST( PulseValueFullType, ElementTypeExistsExactlyForArrays )
{
	CPulseValueFullType type( PVAL_INT );
	EXPECT_EQ( type.GetElementType(), nullptr );
	type.SetBaseType( PVAL_ARRAY );
	ASSERT_NE( type.GetElementType(), nullptr );
	EXPECT_FALSE( type.GetElementType()->IsValid() );
	type.SetBaseType( PVAL_FLOAT );
	EXPECT_EQ( type.GetElementType(), nullptr );
}

TEST( PulseValueFullType, SubtypeIsDroppedOnTypesThatDontUseOne )
{
	CPulseValueFullType vector( PVAL_VEC3, "ignored" );
	EXPECT_FALSE( vector.HasSubtype() );
	EXPECT_EQ( vector, CPulseValueFullType( PVAL_VEC3 ) );
}

TEST( PulseValueFullType, EqualityComparesSubtypeCaseSensitivelyAndTheElementChain )
{
	EXPECT_NE( CPulseValueFullType( PVAL_EHANDLE, "npc" ), CPulseValueFullType( PVAL_EHANDLE, "NPC" ) );
	EXPECT_NE( CPulseValueFullType( PVAL_EHANDLE, "npc" ), CPulseValueFullType( PVAL_EHANDLE ) );
	EXPECT_EQ( CPulseValueFullType( PVAL_EHANDLE, "npc" ), CPulseValueFullType( PVAL_EHANDLE, "npc" ) );
	EXPECT_NE( CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_INT" ), CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_FLOAT" ) );
	EXPECT_NE( CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_INT" ), CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_ARRAY:PVAL_INT" ) );
}

TEST( PulseValueFullType, HashSeparatesDifferentTypesInASet )
{
	std::unordered_set<uint32_t> hashes;
	for ( const char *pText : { "PVAL_INT", "PVAL_FLOAT", "PVAL_EHANDLE", "PVAL_EHANDLE:npc", "PVAL_EHANDLE:prop", "PVAL_ARRAY:PVAL_INT",
			  "PVAL_ARRAY:PVAL_FLOAT" } )
		hashes.insert( CPulseValueFullType::Parse( pText ).GetHash() );
	EXPECT_EQ( hashes.size(), 7u );
}

TEST( PulseValueFullType, CopiesOwnTheirElementChain )
{
	CPulseValueFullType original = CPulseValueFullType::Parse( "PVAL_ARRAY:PVAL_ARRAY:PVAL_INT" );
	CPulseValueFullType copy = original;
	original.GetElementType()->SetBaseType( PVAL_STRING );
	EXPECT_STREQ( copy.ToString().Get(), "PVAL_ARRAY:PVAL_ARRAY:PVAL_INT" );

	// Assigning a type its own element must not read freed memory.
	copy = *copy.GetElementType();
	EXPECT_STREQ( copy.ToString().Get(), "PVAL_ARRAY:PVAL_INT" );

	CPulseValueFullType moved = std::move( copy );
	EXPECT_STREQ( moved.ToString().Get(), "PVAL_ARRAY:PVAL_INT" );
	EXPECT_FALSE( copy.IsValid() ); // NOLINT(bugprone-use-after-move): moved-from is defined as empty
}

struct DisplayCase_t
{
	const char *m_pTypeText;
	const char *m_pDisplay;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const DisplayCase_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pTypeText;
}

class FullTypeDisplayText : public ::testing::TestWithParam<DisplayCase_t>
{
};

TEST_P( FullTypeDisplayText, ShowsSubtypeOrFriendlyName )
{
	EXPECT_STREQ( CPulseValueFullType::Parse( GetParam().m_pTypeText ).GetDisplayText().Get(), GetParam().m_pDisplay );
}

INSTANTIATE_TEST_SUITE_P( PulseValueFullType, FullTypeDisplayText,
	::testing::Values( DisplayCase_t { "PVAL_VEC3", "Vector" }, DisplayCase_t { "PVAL_EHANDLE", "Entity Handle" },
		DisplayCase_t { "PVAL_EHANDLE:npc_guard", "npc_guard" }, DisplayCase_t { "PVAL_SNDEVT_GUID", "SoundEvent Instance Handle" },
		DisplayCase_t { "PVAL_CURSOR_FLOW", "PVAL_CURSOR_FLOW" }, DisplayCase_t { "PVAL_ARRAY:PVAL_FLOAT", "Array:Float" },
		DisplayCase_t { "PVAL_ARRAY:PVAL_ARRAY:PVAL_RESOURCE:tmsh", "Array:Array:tmsh" } ) );

TEST( PulseValueType, PickersHideOnlyTheInternalTypes )
{
	int nOffered = 0;
	for ( int i = PVAL_VOID; i <= PVAL_COUNT; ++i )
	{
		if ( !PulseValueType_IsSuppressedInPickers( PulseValueType_t( i ) ) )
			++nOffered;
	}
	EXPECT_TRUE( PulseValueType_IsSuppressedInPickers( PVAL_VARIANT ) );
	EXPECT_TRUE( PulseValueType_IsSuppressedInPickers( PVAL_UNKNOWN ) );
	EXPECT_TRUE( PulseValueType_IsSuppressedInPickers( PVAL_PARTICLE_EHANDLE ) );
	EXPECT_TRUE( PulseValueType_IsSuppressedInPickers( PVAL_COUNT ) );
	EXPECT_EQ( nOffered, 33 - 4 );
}

TEST( PulseValueType, EveryEnumeratorNameParsesBackToItsNumber )
{
	for ( int i = PVAL_VOID; i <= PVAL_COUNT; ++i )
	{
		PulseValueType_t eParsed;
		ASSERT_TRUE( PulseValueType_FromName( PulseValueType_GetName( PulseValueType_t( i ) ), &eParsed ) ) << i;
		EXPECT_EQ( eParsed, i );
	}
	EXPECT_EQ( PulseValueType_GetName( PulseValueType_t( 32 ) ), nullptr );
	EXPECT_EQ( PulseValueType_GetName( PulseValueType_t( -2 ) ), nullptr );
}
} // namespace
