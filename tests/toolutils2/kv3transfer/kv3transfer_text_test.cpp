#include <gtest/gtest.h>

#include <string>

#include "core/containers/utlbuffer.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "tests/toolutils2/support/reflectiontestclasses.h"
#include "tools/toolutils2/toolattr/toolattrtable.h"

// Objects go to KV3 text as a file on disk holds them and come back: what the editor saves
// is what it opens again, full and as a delta from the class defaults.

namespace
{
// Saves the object, writes the tree as KV3 text, reads the text into a new tree and loads
// a fresh object from it. The text is kept for the checks.
template <typename T> bool ThroughText( const T &original, T *pLoaded, bool bDelta, std::string *pText )
{
	KeyValues3 saved;
	CKV3TransferSaveContext saveContext;
	saveContext.SetSaveDeltaFromDefaults( bDelta );
	CUtlString error;
	EXPECT_TRUE( SaveKV3Object( original, &saved, &error, &saveContext ) ) << error.Get();

	CUtlBuffer buffer;
	EXPECT_TRUE( SaveKV3( KV3_ENCODING_TEXT, KV3_FORMAT_GENERIC, &saved, &error, &buffer ) ) << error.Get();
	pText->assign( reinterpret_cast<const char *>( buffer.Base() ), buffer.TellPut() );

	KeyValues3 read;
	if ( !LoadKV3( &read, &error, &buffer, KV3_FORMAT_GENERIC ) )
	{
		ADD_FAILURE() << "the written text doesn't read back: " << error.Get() << "\n" << *pText;
		return false;
	}
	bool bLoaded = LoadKV3ObjectInPlace( pLoaded, &read, &error );
	EXPECT_TRUE( bLoaded ) << error.Get();
	return bLoaded;
}

void Edit( CTestOperator &op )
{
	op.m_flStrength = 0.3f;
	op.m_nCount = -12;
	op.m_nAlpha = 200;
	op.m_bEnabled = false;
	op.m_nBlend = TEST_BLEND_MOD;
	op.m_vOffset = Vector( 0.1f, -1e-7f, 12345.678f );
	op.m_Tint = Color( 9, 8, 7, 6 );
	op.m_Name = "line one\nline \"two\"\ttab";
	op.m_vRange = { { -0.5f, 3.0f } };
	op.m_Start = { 0.25f, 0.125f };
	op.m_Curve = { { 0.0f, 1.0f }, { 0.5f, 0.7f }, { 1.0f, 0.0f } };
	op.m_Weights = { 1.0f / 3.0f, 2.0f };
	op.m_Named = { { "gravity", -9.81f }, { "with space", 1.0f }, { "", 2.0f } };
	op.m_flLimit = 0.0f;
	auto pInput = std::make_unique<CTestRandomInput>();
	pInput->m_flLiteral = 0.2f;
	pInput->m_flMin = -1.0f;
	op.m_pInput = std::move( pInput );
}

class KV3TransferText : public ::testing::TestWithParam<bool>
{
protected:
	void SetUp() override { RegisterReflectionTestClasses(); }
};
} // namespace

TEST_P( KV3TransferText, EditedOperatorComesBackEqual )
{
	CTestOperator original;
	Edit( original );
	CTestOperator loaded;
	loaded.m_nCount = 99; // must be overwritten, not kept
	std::string text;
	ASSERT_TRUE( ThroughText( original, &loaded, GetParam(), &text ) );
	EXPECT_TRUE( SchemaValuesEqual( original, loaded ) ) << text;
	auto *pInput = dynamic_cast<CTestRandomInput *>( loaded.m_pInput.get() );
	ASSERT_NE( pInput, nullptr ) << "the pointer comes back as its real class\n" << text;
	EXPECT_EQ( pInput->m_flMin, -1.0f );
	EXPECT_EQ( loaded.m_Name, original.m_Name ) << "control characters and quotes survive the text";
	ASSERT_TRUE( loaded.m_flLimit.has_value() ) << "an optional set to zero is not an empty optional";
	EXPECT_EQ( *loaded.m_flLimit, 0.0f );
}

TEST_P( KV3TransferText, UntouchedOperatorComesBackEqual )
{
	CTestOperator original;
	CTestOperator loaded;
	Edit( loaded );
	std::string text;
	ASSERT_TRUE( ThroughText( original, &loaded, GetParam(), &text ) );
	EXPECT_TRUE( SchemaValuesEqual( original, loaded ) ) << text;
	EXPECT_EQ( loaded.m_pInput, nullptr );
}

TEST_P( KV3TransferText, MapsOfEveryKeyKindComeBackEqual )
{
	CTestLayerSet original;
	original.m_Layers[ "smoke" ] = { 0.5f, 0.25f };
	original.m_Layers[ "fire" ] = {};
	original.m_Weights = { { -3, 0.5f }, { 0, 1.0f }, { 2000000000, 2.0f } };
	original.m_BlendNames = { { TEST_BLEND_NORMAL, "plain" }, { TEST_BLEND_MOD, "" } };
	original.SetRadius( 7.5f );
	original.m_Inputs.push_back( std::make_unique<CTestRandomInput>() );
	original.m_Inputs.push_back( nullptr );
	original.m_NamedInputs[ "base" ] = std::make_unique<CTestInput>();
	original.m_NamedInputs[ "base" ]->m_flLiteral = 4.0f;
	CTestLayerSet loaded;
	std::string text;
	ASSERT_TRUE( ThroughText( original, &loaded, GetParam(), &text ) );
	EXPECT_TRUE( SchemaValuesEqual( original, loaded ) ) << text;
	EXPECT_EQ( loaded.m_Layers.count( "fire" ), 1u ) << "an entry at its defaults is still an entry\n" << text;
	ASSERT_EQ( loaded.m_Inputs.size(), 2u ) << text;
	EXPECT_NE( dynamic_cast<CTestRandomInput *>( loaded.m_Inputs[ 0 ].get() ), nullptr );
	EXPECT_EQ( loaded.m_Inputs[ 1 ], nullptr );
}

INSTANTIATE_TEST_SUITE_P( Saves, KV3TransferText, ::testing::Values( false, true ),
						  []( const ::testing::TestParamInfo<bool> &info ) { return std::string( info.param ? "Delta" : "Full" ); } );

TEST( KV3TransferTextDelta, DeltaTextHoldsOnlyTheChangedMembers )
{
	RegisterReflectionTestClasses();
	CTestOperator original;
	original.m_nBlend = TEST_BLEND_NORMAL;
	original.m_Curve.resize( 1 );
	CTestOperator loaded;
	std::string text;
	ASSERT_TRUE( ThroughText( original, &loaded, true, &text ) );
	EXPECT_NE( text.find( "m_nBlend = \"TEST_BLEND_NORMAL\"" ), std::string::npos ) << text;
	EXPECT_NE( text.find( "m_Curve" ), std::string::npos ) << text;
	for ( const char *pszUnchanged : { "m_flStrength", "m_nCount", "m_Tint", "m_Start", "m_pInput", "m_Named" } )
		EXPECT_EQ( text.find( pszUnchanged ), std::string::npos ) << pszUnchanged << " is at its default\n" << text;
}
