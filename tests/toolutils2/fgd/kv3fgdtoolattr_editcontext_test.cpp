// Edit context questions that editors ask KV3 rows, and the choices of array elements.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>

#include "core/kv3/kv3membername.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/kv3datawithfgdclass.h"
#include "tools/toolutils2/fgd/kv3fgdtoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrarray.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr/toolattrtypes.h"

namespace
{
constexpr const char *s_pszClasses = R"(
@Struct = SequencePick [
	m_Model(string) { MPropertyProvidesEditContextString = "model" } : "Model"
	m_Sequence(string) : "Sequence"
	m_Fixed(string) { edit_context_override = { model = { value = "models/fixed.tmsh" } } } : "Fixed"
	m_Linked(string) { edit_context_override = { model = { value = "m_OtherModel" value_is_key_name = true } } } : "Linked"
]
@PointClass = Host [
	m_SkinSource(string) { MPropertyProvidesEditContextString = "skin" } : "Skin Source"
	m_Pick(struct(SequencePick)) : "Pick"
	m_Modes(array(string)) : "Modes"
	m_flRate(float) : "Rate" : "1"
]
)";

class KV3FgdEditContext : public testing::Test
{
protected:
	void SetUp() override
	{
		CFgdReader reader( &m_GameData, "" );
		ASSERT_TRUE( reader.LoadGameDataFromText( "classes.fgd", s_pszClasses, strlen( s_pszClasses ) ) );
		ASSERT_TRUE( m_GameData.GetErrors().IsEmpty() ) << m_GameData.GetErrors()[ 0 ].m_Text.Get();
		m_pHost = m_GameData.FindClass( "Host" );
		m_pData = std::make_unique<CKV3DataWithFGDClass>( &m_GameData, m_pHost );
		m_Handle = m_pData->GetHandle();
	}

	// A member of the nested m_Pick table, with the handle its table gives.
	IBaseToolAttr *PickMember( const char *pszName, HToolAttrTableInstance *pHandle )
	{
		IBaseToolAttr *pPick = m_pData->FindAttribute( m_Handle, "m_Pick" );
		if ( !pPick )
			return nullptr;
		*pHandle = pPick->GetTableInstance( m_Handle );
		return pHandle->m_pTable ? pHandle->m_pTable->FindAttribute( *pHandle, pszName ) : nullptr;
	}

	CToolEditContextQuery_String Ask( const char *pszMember, const char *pszKey )
	{
		CToolEditContextQuery_String query( pszKey );
		HToolAttrTableInstance handle;
		IBaseToolAttr *pAttr = PickMember( pszMember, &handle );
		EXPECT_NE( pAttr, nullptr ) << pszMember;
		if ( pAttr )
			pAttr->FillEditContext( handle, &query );
		return query;
	}

	CGameData m_GameData;
	CGameDataClass *m_pHost = nullptr;
	std::unique_ptr<CKV3DataWithFGDClass> m_pData;
	HToolAttrTableInstance m_Handle;
};

TEST_F( KV3FgdEditContext, ProviderVariableAnswersForEveryRowOfItsClass )
{
	CToolEditContextQuery_String query = Ask( "m_Sequence", "model" );
	EXPECT_EQ( query.m_eKind, CToolEditContextQuery_String::KIND_KEY_NAME );
	EXPECT_STREQ( query.m_Value, "m_Model" );
	EXPECT_EQ( query.m_nValueKeyHash, MurmurHash2LowerCase( "m_Model", strlen( "m_Model" ), KV3_MEMBER_NAME_SEED ) );

	const CGameDataClass *pPick = m_GameData.FindClass( "SequencePick" );
	const KeyValues3 *pCache = pPick->m_MetaData.FindMember( "__CACHED_editcontext_provider_lookup" );
	ASSERT_NE( pCache, nullptr );
	EXPECT_STREQ( pCache->GetMemberString( "model" ), "m_Model" );
}

TEST_F( KV3FgdEditContext, OverrideWithFixedTextAnswersAsCode )
{
	CToolEditContextQuery_String query = Ask( "m_Fixed", "model" );
	EXPECT_EQ( query.m_eKind, CToolEditContextQuery_String::KIND_CODE );
	EXPECT_STREQ( query.m_Source, "code" );
	EXPECT_STREQ( query.m_Value, "models/fixed.tmsh" );
}

TEST_F( KV3FgdEditContext, OverrideNamingAKeyAnswersWithThatKey )
{
	CToolEditContextQuery_String query = Ask( "m_Linked", "model" );
	EXPECT_EQ( query.m_eKind, CToolEditContextQuery_String::KIND_KEY_NAME );
	EXPECT_STREQ( query.m_Value, "m_OtherModel" );
	EXPECT_EQ( query.m_nValueKeyHash, MurmurHash2LowerCase( "m_OtherModel", strlen( "m_OtherModel" ), KV3_MEMBER_NAME_SEED ) );
}

TEST_F( KV3FgdEditContext, NestedRowAsksTheClassThatHoldsItsTable )
{
	CToolEditContextQuery_String query = Ask( "m_Sequence", "skin" );
	EXPECT_EQ( query.m_eKind, CToolEditContextQuery_String::KIND_KEY_NAME );
	EXPECT_STREQ( query.m_Value, "m_SkinSource" );
}

TEST_F( KV3FgdEditContext, UnknownKeyStaysUnanswered )
{
	CToolEditContextQuery_String query = Ask( "m_Sequence", "texture" );
	EXPECT_EQ( query.m_eKind, CToolEditContextQuery_String::KIND_NONE );
	EXPECT_TRUE( query.m_Value.IsEmpty() );

	// A provider of an inner class doesn't answer for the outer one.
	CToolEditContextQuery_String outer( "model" );
	IBaseToolAttr *pRate = m_pData->FindAttribute( m_Handle, "m_flRate" );
	ASSERT_NE( pRate, nullptr );
	pRate->FillEditContext( m_Handle, &outer );
	EXPECT_EQ( outer.m_eKind, CToolEditContextQuery_String::KIND_NONE );
}

TEST_F( KV3FgdEditContext, ArrayOffersItsVariablesChoicesForElements )
{
	CGameDataItemSet *pSet = m_GameData.CreateItemSet();
	pSet->m_eType = GDTYPE_CHOICES;
	GameDataItem_t slow, fast;
	slow.m_Value = "slow";
	slow.m_FriendlyName = "Slow";
	fast.m_Value = "fast";
	fast.m_FriendlyName = "Fast";
	pSet->m_Items.AddToTail( slow );
	pSet->m_Items.AddToTail( fast );
	m_pHost->FindVariable( "m_Modes" )->m_pItemSet = pSet;

	IBaseToolAttr *pModes = m_pData->FindAttribute( m_Handle, "m_Modes" );
	ASSERT_NE( pModes, nullptr );
	ASSERT_NE( pModes->AsArray(), nullptr );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	ASSERT_TRUE( pModes->AsArray()->GetElementChoices( nullptr, m_Handle, &choices ) );
	ASSERT_EQ( choices.Count(), 2 );
	EXPECT_STREQ( choices[ 0 ].m_Value, "slow" );
	EXPECT_STREQ( choices[ 1 ].m_FriendlyName, "Fast" );

	// Without an item set there is nothing to offer.
	m_pHost->FindVariable( "m_Modes" )->m_pItemSet = nullptr;
	choices.RemoveAll();
	EXPECT_FALSE( pModes->AsArray()->GetElementChoices( nullptr, m_Handle, &choices ) );
	EXPECT_TRUE( choices.IsEmpty() );
}
} // namespace
