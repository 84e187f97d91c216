#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/toolutils2/support/recordingnotifyroot.h"
#include "tests/toolutils2/support/reflectiontestclasses.h"
#include "tools/toolutils2/toolattr/toolattrtable.h"

namespace
{
class ToolAttrMap : public ::testing::Test
{
protected:
	void SetUp() override { RegisterReflectionTestClasses(); }
	void TearDown() override { EXPECT_EQ( GetOpenAttrEditCount(), 0 ) << "an edit bracket was left open"; }

	IToolAttr_Map *Map( const char *pszName )
	{
		IBaseToolAttr *pAttr = m_Handle.m_pTable->FindAttribute( m_Handle, pszName );
		return pAttr ? pAttr->AsMap() : nullptr;
	}
	std::vector<std::string> Keys( const char *pszName )
	{
		CUtlVector<CUtlString> keys;
		Map( pszName )->GetKeys( m_Handle, &keys );
		std::vector<std::string> out;
		for ( const CUtlString &key : keys )
			out.emplace_back( key.Get() );
		return out;
	}

	CTestLayerSet m_Set;
	CRecordingRoot m_Root;
	HToolAttrTableInstance m_Handle = MakeToolAttrHandle( &m_Set, &m_Root );
};
} // namespace

TEST_F( ToolAttrMap, DeclaredMapIsAMapAttribute )
{
	for ( const char *pszName : { "m_Layers", "m_Weights", "m_BlendNames" } )
	{
		IBaseToolAttr *pAttr = m_Handle.m_pTable->FindAttribute( m_Handle, pszName );
		ASSERT_NE( pAttr, nullptr ) << pszName;
		EXPECT_EQ( pAttr->GetAttrType(), TOOLATTR_TYPE_MAP ) << pszName;
		EXPECT_NE( pAttr->AsMap(), nullptr ) << pszName;
		EXPECT_EQ( pAttr->AsValue(), nullptr ) << pszName << ": a map has no text form";
	}
	EXPECT_FALSE( Map( "m_Layers" )->HasIntegerKeys() );
	EXPECT_TRUE( Map( "m_Weights" )->HasIntegerKeys() );
	EXPECT_FALSE( Map( "m_BlendNames" )->HasIntegerKeys() );
}

TEST_F( ToolAttrMap, AddKeyInsertsADefaultEntryAndNotifiesOnce )
{
	IToolAttr_Map *pLayers = Map( "m_Layers" );
	EXPECT_TRUE( pLayers->AddKey( m_Handle, "smoke" ) );
	ASSERT_EQ( m_Set.m_Layers.count( "smoke" ), 1u );
	EXPECT_EQ( m_Set.m_Layers.at( "smoke" ).m_flValue, 1.0f ) << "the new entry holds the value type's defaults";
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_Layers", "changed m_Layers" } ) );

	m_Root.m_Events.clear();
	EXPECT_FALSE( pLayers->AddKey( m_Handle, "smoke" ) ) << "an existing key is not added twice";
	EXPECT_TRUE( m_Root.m_Events.empty() ) << "a refused edit announces nothing";
}

TEST_F( ToolAttrMap, KeysListInMapOrderAsText )
{
	m_Set.m_Weights = { { 10, 1.0f }, { -2, 0.5f } };
	m_Set.m_BlendNames = { { TEST_BLEND_MOD, "mod" }, { TEST_BLEND_NORMAL, "plain" } };
	EXPECT_EQ( Keys( "m_Weights" ), ( std::vector<std::string>{ "-2", "10" } ) );
	EXPECT_EQ( Keys( "m_BlendNames" ), ( std::vector<std::string>{ "TEST_BLEND_NORMAL", "TEST_BLEND_MOD" } ) );
}

TEST_F( ToolAttrMap, StructValuesAreEditableAsTableInstances )
{
	IToolAttr_Map *pLayers = Map( "m_Layers" );
	IBaseToolAttr *pFire = pLayers->GetElement( m_Handle, "fire", true );
	ASSERT_NE( pFire, nullptr ) << "asked to create, the element exists afterwards";
	EXPECT_STREQ( pFire->GetName(), "fire" ) << "rows show the key";
	EXPECT_EQ( pFire->GetAttrType(), TOOLATTR_TYPE_TABLE );
	EXPECT_EQ( pLayers->GetElement( m_Handle, "fire", false ), pFire ) << "element attributes are kept";

	HToolAttrTableInstance fire = pFire->GetTableInstance( m_Handle );
	ASSERT_TRUE( fire.IsValid() );
	IBaseToolAttr *pTime = fire.m_pTable->FindAttribute( fire, "m_flTime" );
	ASSERT_NE( pTime, nullptr );
	EXPECT_TRUE( pTime->AsValue()->SetFromString( fire, "0.25", 0 ) );
	EXPECT_EQ( m_Set.m_Layers.at( "fire" ).m_flTime, 0.25f );
	CUtlString text;
	pTime->AsValue()->GetAsString( fire, &text );
	EXPECT_STREQ( text.Get(), "0.25" );
}

TEST_F( ToolAttrMap, ValueElementsWriteThroughTheMapBracket )
{
	IToolAttr_Map *pWeights = Map( "m_Weights" );
	ASSERT_TRUE( pWeights->AddKey( m_Handle, "3" ) );
	m_Root.m_Events.clear();
	IBaseToolAttr *pThree = pWeights->GetElement( m_Handle, "3", false );
	ASSERT_NE( pThree, nullptr );
	ASSERT_NE( pThree->AsValue(), nullptr );
	EXPECT_TRUE( pThree->AsValue()->SetFromString( m_Handle, "0.75", 0 ) );
	EXPECT_EQ( m_Set.m_Weights.at( 3 ), 0.75f );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_Weights", "changed m_Weights" } ) );
}

TEST_F( ToolAttrMap, MissingKeyWithoutCreateGivesNoElementAndNoWrite )
{
	EXPECT_EQ( Map( "m_Layers" )->GetElement( m_Handle, "nothing", false ), nullptr );
	EXPECT_TRUE( m_Set.m_Layers.empty() );
	EXPECT_TRUE( m_Root.m_Events.empty() );
}

TEST_F( ToolAttrMap, RemoveKeyErasesTheEntryAndItsElementReadsEmpty )
{
	m_Set.m_Weights = { { 1, 0.5f }, { 2, 0.25f } };
	IToolAttr_Map *pWeights = Map( "m_Weights" );
	IBaseToolAttr *pOne = pWeights->GetElement( m_Handle, "1", false );
	ASSERT_NE( pOne, nullptr );
	EXPECT_TRUE( pWeights->RemoveKey( m_Handle, "1" ) );
	EXPECT_EQ( m_Set.m_Weights, ( TestIndexMap_t{ { 2, 0.25f } } ) );
	EXPECT_EQ( m_Root.m_Events.size(), 2u );
	EXPECT_FALSE( pWeights->RemoveKey( m_Handle, "1" ) ) << "a key that isn't there can't be removed";

	EXPECT_FALSE( pOne->IsWritable( m_Handle ) ) << "the element of a removed key can't be written";
	CUtlString text = "stale";
	pOne->AsValue()->GetAsString( m_Handle, &text );
	EXPECT_STREQ( text.Get(), "0" );
}

TEST_F( ToolAttrMap, RenameKeyMovesTheValueButNeverOverwrites )
{
	m_Set.m_Layers[ "old" ].m_flTime = 0.5f;
	m_Set.m_Layers[ "taken" ].m_flTime = 0.9f;
	IToolAttr_Map *pLayers = Map( "m_Layers" );
	EXPECT_TRUE( pLayers->RenameKey( m_Handle, "old", "new" ) );
	EXPECT_EQ( m_Set.m_Layers.count( "old" ), 0u );
	EXPECT_EQ( m_Set.m_Layers.at( "new" ).m_flTime, 0.5f );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_Layers", "changed m_Layers" } ) );

	EXPECT_FALSE( pLayers->RenameKey( m_Handle, "new", "taken" ) );
	EXPECT_EQ( m_Set.m_Layers.at( "taken" ).m_flTime, 0.9f ) << "the existing entry is kept";
	EXPECT_FALSE( pLayers->RenameKey( m_Handle, "absent", "other" ) );
	EXPECT_EQ( m_Set.m_Layers.size(), 2u );
}

// Keys that are not the canonical text of a key must not add, remove or rename anything.
struct BadMapKey_t
{
	const char *m_pszCase;
	const char *m_pszMap;
	const char *m_pszKey;
};
// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const BadMapKey_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pszCase;
}
class ToolAttrMapBadKey : public ToolAttrMap, public ::testing::WithParamInterface<BadMapKey_t>
{
};

TEST_P( ToolAttrMapBadKey, KeyThatIsNoKeyOfTheMapIsRefused )
{
	const BadMapKey_t &param = GetParam();
	IToolAttr_Map *pMap = Map( param.m_pszMap );
	EXPECT_FALSE( pMap->AddKey( m_Handle, param.m_pszKey ) );
	EXPECT_EQ( pMap->GetElement( m_Handle, param.m_pszKey, true ), nullptr );
	EXPECT_TRUE( Keys( param.m_pszMap ).empty() );
	EXPECT_TRUE( m_Root.m_Events.empty() );
}

INSTANTIATE_TEST_SUITE_P( Keys, ToolAttrMapBadKey,
						  ::testing::Values( BadMapKey_t{ "WordForInteger", "m_Weights", "three" }, BadMapKey_t{ "LeadingZeros", "m_Weights", "007" },
											 BadMapKey_t{ "EmptyInteger", "m_Weights", "" }, BadMapKey_t{ "IntegerOutOfRange", "m_Weights", "99999999999" },
											 BadMapKey_t{ "UnknownEnumerator", "m_BlendNames", "TEST_BLEND_NONE" } ),
						  []( const ::testing::TestParamInfo<BadMapKey_t> &info ) { return std::string( info.param.m_pszCase ); } );

TEST_F( ToolAttrMap, EnumKeysAreChosenFromTheEnumerators )
{
	IToolAttr_Map *pBlendNames = Map( "m_BlendNames" );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	EXPECT_TRUE( pBlendNames->GetKeyChoices( m_Handle, &choices ) ) << "the list is closed";
	ASSERT_EQ( choices.Count(), 3 );
	EXPECT_STREQ( choices[ 1 ].m_Value.Get(), "TEST_BLEND_ADD" );
	EXPECT_STREQ( choices[ 1 ].m_FriendlyName.Get(), "Additive" );

	EXPECT_TRUE( pBlendNames->AddKey( m_Handle, "test_blend_add" ) );
	EXPECT_EQ( m_Set.m_BlendNames.count( TEST_BLEND_ADD ), 1u );
	CUtlVector<ToolAttrGenericChoice_t> none;
	EXPECT_FALSE( Map( "m_Layers" )->GetKeyChoices( m_Handle, &none ) ) << "string keys have no list of their own";
	EXPECT_EQ( none.Count(), 0 );
}

TEST_F( ToolAttrMap, MapWithAnEntryIsNotAtDefaultUntilReset )
{
	IBaseToolAttr *pLayers = m_Handle.m_pTable->FindAttribute( m_Handle, "m_Layers" );
	bool bHasDefault = false;
	EXPECT_TRUE( pLayers->IsAtDefault( m_Handle, &bHasDefault ) );
	ASSERT_TRUE( pLayers->AsMap()->AddKey( m_Handle, "dust" ) );
	EXPECT_FALSE( pLayers->IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( pLayers->ResetToDefault( m_Handle ) );
	EXPECT_TRUE( m_Set.m_Layers.empty() );
}

TEST_F( ToolAttrMap, WrongTypeTagLeavesTheMapAlone )
{
	HToolAttrTableInstance wrong = m_Handle;
	wrong.m_nTypeTag = ToolAttrTypeTag( "CTestOperator" );
	m_Set.m_Weights[ 1 ] = 1.0f;
	IToolAttr_Map *pWeights = Map( "m_Weights" );
	EXPECT_FALSE( pWeights->AddKey( wrong, "2" ) );
	EXPECT_FALSE( pWeights->RemoveKey( wrong, "1" ) );
	EXPECT_FALSE( pWeights->RenameKey( wrong, "1", "5" ) );
	EXPECT_EQ( pWeights->GetElement( wrong, "1", true ), nullptr );
	CUtlVector<CUtlString> keys;
	pWeights->GetKeys( wrong, &keys );
	EXPECT_EQ( keys.Count(), 0 );
	EXPECT_EQ( m_Set.m_Weights, ( TestIndexMap_t{ { 1, 1.0f } } ) );
	EXPECT_TRUE( m_Root.m_Events.empty() );
}

TEST_F( ToolAttrMap, ContainersOfOwnedObjectsResetToEmpty )
{
	m_Set.m_Inputs.push_back( std::make_unique<CTestInput>() );
	m_Set.m_NamedInputs[ "base" ] = std::make_unique<CTestInput>();
	for ( const char *pszName : { "m_Inputs", "m_NamedInputs" } )
	{
		IBaseToolAttr *pAttr = m_Handle.m_pTable->FindAttribute( m_Handle, pszName );
		ASSERT_NE( pAttr, nullptr ) << pszName;
		bool bHasDefault = false;
		EXPECT_FALSE( pAttr->IsAtDefault( m_Handle, &bHasDefault ) ) << pszName;
		EXPECT_TRUE( pAttr->ResetToDefault( m_Handle ) ) << pszName;
		EXPECT_TRUE( pAttr->IsAtDefault( m_Handle, &bHasDefault ) ) << pszName;
	}
	EXPECT_TRUE( m_Set.m_Inputs.empty() );
	EXPECT_TRUE( m_Set.m_NamedInputs.empty() );
}
