// Trees against their class: imprint, removal of keys at default, and writes through
// attributes into keys that don't exist yet.

#include <gtest/gtest.h>

#include <cstring>

#include "core/kv3/keyvalues3.h"
#include "tools/toolutils2/fgd/fgdkv3defaults.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/kv3datawithfgdclass.h"
#include "tools/toolutils2/fgd/kv3fgdtoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"
#include "tools/toolutils2/toolattr/toolattredit.h"

namespace
{
constexpr const char *s_pszClasses = R"(
@Struct = Range [
	m_flMin(float) : "Min" : "0"
	m_flMax(float) : "Max" : "1"
]
@Struct metadata { is_polymorphic = true } = Shape [
	m_flSize(float) : "Size" : "1"
]
@Struct base(Shape) = Sphere [
	m_flRadius(float) : "Radius" : "4"
]
@PointClass = Emitter [
	m_flRate(float) : "Rate" : "100"
	m_Range(struct(Range)) : "Range"
	m_Shape(struct(Shape)) : "Shape"
	m_Tint(color255alpha) : "Tint" : "255 255 255 255"
	m_Names(array(string)) : "Names"
]
)";

class FgdKV3Defaults : public testing::Test
{
protected:
	void SetUp() override
	{
		CFgdReader reader( &m_GameData, "" );
		ASSERT_TRUE( reader.LoadGameDataFromText( "classes.fgd", s_pszClasses, strlen( s_pszClasses ) ) );
		ASSERT_TRUE( m_GameData.GetErrors().IsEmpty() ) << m_GameData.GetErrors()[ 0 ].m_Text.Get();
		m_pEmitter = m_GameData.FindClass( "Emitter" );
	}

	CGameData m_GameData;
	const CGameDataClass *m_pEmitter = nullptr;
};

TEST_F( FgdKV3Defaults, ImprintKeepsClassKeyOnlyWherePolymorphic )
{
	KeyValues3 tree;
	tree.SetToEmptyTable();
	tree.SetMemberString( "_class", "Emitter" ); // a stale key on a plain class
	tree.SetMemberEmptyTable( "m_Shape" )->SetMemberString( "_class", "Sphere" );
	ImprintFGDClassOnKV3( &tree, m_pEmitter );

	EXPECT_FALSE( tree.HasMember( "_class" ) );
	EXPECT_DOUBLE_EQ( tree.GetMemberDouble( "m_flRate" ), 100.0 );
	const KeyValues3 *pRange = tree.FindMember( "m_Range" );
	ASSERT_NE( pRange, nullptr );
	EXPECT_FALSE( pRange->HasMember( "_class" ) );
	EXPECT_DOUBLE_EQ( pRange->GetMemberDouble( "m_flMax" ), 1.0 );
	const KeyValues3 *pShape = tree.FindMember( "m_Shape" );
	EXPECT_STREQ( pShape->GetMemberString( "_class" ), "Sphere" );
	EXPECT_DOUBLE_EQ( pShape->GetMemberDouble( "m_flRadius" ), 4.0 ); // the real class's member
}

TEST_F( FgdKV3Defaults, ImprintAddsClassKeyToPolymorphicTableWithoutOne )
{
	KeyValues3 tree;
	tree.SetToEmptyTable();
	ImprintFGDClassOnKV3( &tree, m_pEmitter );
	EXPECT_STREQ( tree.FindMember( "m_Shape" )->GetMemberString( "_class" ), "Shape" );
}

TEST_F( FgdKV3Defaults, StructWithAllMembersAtDefaultIsRemoved )
{
	KeyValues3 tree;
	tree.SetToEmptyTable();
	ImprintFGDClassOnKV3( &tree, m_pEmitter );
	tree.SetMemberDouble( "m_flRate", 250.0 );
	RemoveKeysAtDefault( &tree, m_pEmitter );

	EXPECT_FALSE( tree.HasMember( "m_Range" ) );
	EXPECT_FALSE( tree.HasMember( "m_Tint" ) );
	EXPECT_FALSE( tree.HasMember( "m_Names" ) );
	EXPECT_DOUBLE_EQ( tree.GetMemberDouble( "m_flRate" ), 250.0 );
	EXPECT_FALSE( tree.HasMember( "m_Shape" ) ) << "a polymorphic struct of its declared class at default goes too";
	EXPECT_EQ( tree.GetMemberCount(), 1 );
}

TEST_F( FgdKV3Defaults, StructWithOneChangedMemberKeepsOnlyThatMember )
{
	KeyValues3 tree;
	tree.SetToEmptyTable();
	ImprintFGDClassOnKV3( &tree, m_pEmitter );
	tree.FindMember( "m_Range" )->SetMemberDouble( "m_flMax", 8.0 );
	RemoveKeysAtDefault( &tree, m_pEmitter );
	const KeyValues3 *pRange = tree.FindMember( "m_Range" );
	ASSERT_NE( pRange, nullptr );
	EXPECT_EQ( pRange->GetMemberCount(), 1 );
	EXPECT_DOUBLE_EQ( pRange->GetMemberDouble( "m_flMax" ), 8.0 );
}

TEST_F( FgdKV3Defaults, ThreeIntegerColourEqualsOpaqueDefault )
{
	KeyValues3 tint;
	tint.SetToEmptyArray();
	for ( int i = 0; i < 3; ++i )
		tint.ArrayAddToTail()->SetInt( 255 );
	EXPECT_TRUE( TestValueAtDefault( tint, *m_pEmitter->FindVariable( "m_Tint" ) ) );
	tint.GetArrayElement( 0 )->SetInt( 10 );
	EXPECT_FALSE( TestValueAtDefault( tint, *m_pEmitter->FindVariable( "m_Tint" ) ) );
}

TEST_F( FgdKV3Defaults, StripUnknownKeysDropsUndescribedMembers )
{
	KeyValues3 tree;
	tree.SetToEmptyTable();
	KeyValues3 *pShape = tree.SetMemberEmptyTable( "shape" );
	pShape->SetMemberString( "_class", "Sphere" );
	pShape->SetMemberInt( "m_nLegacyKey", 3 );
	pShape->SetMemberDouble( "m_flRadius", 9.0 );
	StripUnknownKeys( &tree, &m_GameData );
	EXPECT_FALSE( pShape->HasMember( "m_nLegacyKey" ) );
	EXPECT_DOUBLE_EQ( pShape->GetMemberDouble( "m_flRadius" ), 9.0 );
	EXPECT_STREQ( pShape->GetMemberString( "_class" ), "Sphere" );
}

class CCountingRoot : public IToolAttrNotifyRoot
{
public:
	void OnAttrWillChange( HToolAttrTableInstance, IBaseToolAttr * ) override { ++m_nWillChange; }
	void OnAttrChanged( HToolAttrTableInstance, IBaseToolAttr * ) override { ++m_nChanged; }
	int m_nWillChange = 0;
	int m_nChanged = 0;
};

TEST_F( FgdKV3Defaults, WriteThroughMissingPathCreatesChainAndNotifiesOnce )
{
	CKV3DataWithFGDClass data( &m_GameData, m_pEmitter );
	CCountingRoot root;
	HToolAttrTableInstance handle = data.GetHandle( &root );
	IBaseToolAttr *pRange = data.FindAttribute( handle, "m_Range" );
	ASSERT_NE( pRange, nullptr );
	HToolAttrTableInstance rangeHandle = pRange->GetTableInstance( handle );
	ASSERT_TRUE( rangeHandle.IsValid() );
	IBaseToolAttr *pMax = rangeHandle.m_pTable->FindAttribute( rangeHandle, "m_flMax" );
	ASSERT_NE( pMax, nullptr );

	ASSERT_TRUE( pMax->AsValue()->SetFromString( rangeHandle, "7.5", 0 ) );
	EXPECT_DOUBLE_EQ( data.GetKV3()->FindMember( "m_Range" )->GetMemberDouble( "m_flMax" ), 7.5 );
	EXPECT_EQ( root.m_nWillChange, 1 );
	EXPECT_EQ( root.m_nChanged, 1 );
	EXPECT_EQ( GetOpenAttrEditCount(), 0 );

	CUtlString text;
	pMax->AsValue()->GetAsString( rangeHandle, &text );
	EXPECT_STREQ( text, "7.5" );
	bool bHasDefault = false;
	EXPECT_FALSE( pMax->IsAtDefault( rangeHandle, &bHasDefault ) );
	EXPECT_TRUE( pMax->ResetToDefault( rangeHandle ) );
	EXPECT_TRUE( pMax->IsAtDefault( rangeHandle, &bHasDefault ) );
}

TEST_F( FgdKV3Defaults, AttributeFindsValueAnewAfterTreeIsReplaced )
{
	CKV3DataWithFGDClass data( &m_GameData, m_pEmitter );
	HToolAttrTableInstance handle = data.GetHandle();
	IBaseToolAttr *pNames = data.FindAttribute( handle, "m_Names" );
	ASSERT_NE( pNames, nullptr );
	IToolAttr_Array *pArray = pNames->AsArray();
	ASSERT_NE( pArray, nullptr );
	ASSERT_NE( pArray->InsertElement( handle, 0 ), nullptr );
	pArray->GetElement( handle, 0 )->AsValue()->SetFromString( handle, "first", 0 );
	EXPECT_EQ( pArray->GetCount( handle ), 1 );

	data.GetKV3ForModify()->SetToEmptyTable(); // the element's value is gone
	EXPECT_EQ( pArray->GetCount( handle ), 0 );
	CUtlString text;
	pArray->GetElement( handle, 0 )->AsValue()->GetAsString( handle, &text );
	EXPECT_STREQ( text, "" );
}

TEST_F( FgdKV3Defaults, UnknownStoredKeyIsSpuriousAndRemovable )
{
	CKV3DataWithFGDClass data( &m_GameData, m_pEmitter );
	data.GetKV3ForModify()->SetMemberInt( "m_nOldKey", 4 );
	HToolAttrTableInstance handle = data.GetHandle();
	IBaseToolAttr *pOld = data.FindAttribute( handle, "m_nOldKey" );
	ASSERT_NE( pOld, nullptr );
	bool bSpurious = false;
	pOld->IsSpurious( handle, &bSpurious );
	EXPECT_TRUE( bSpurious );
	EXPECT_EQ( pOld->GetAttrType(), TOOLATTR_TYPE_INT );
	EXPECT_TRUE( pOld->RemoveSpurious( handle ) );
	EXPECT_FALSE( data.GetKV3()->HasMember( "m_nOldKey" ) );
}
} // namespace
