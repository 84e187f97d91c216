#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "tests/toolutils2/support/recordingnotifyroot.h"
#include "tests/toolutils2/support/reflectiontestclasses.h"
#include "tools/toolutils2/toolattr/itoolattrnotifyroot.h"
#include "tools/toolutils2/toolattr/toolattrtable.h"

namespace
{
class ToolAttrConcrete : public ::testing::Test
{
protected:
	void SetUp() override { RegisterReflectionTestClasses(); }
	void TearDown() override { EXPECT_EQ( GetOpenAttrEditCount(), 0 ) << "an edit bracket was left open"; }

	IBaseToolAttr *Find( const char *pszName ) { return m_Handle.m_pTable->FindAttribute( m_Handle, pszName ); }

	CTestOperator m_Op;
	CRecordingRoot m_Root;
	HToolAttrTableInstance m_Handle = MakeToolAttrHandle( &m_Op, &m_Root );
};
} // namespace

TEST( ToolAttrTypeTag, IsTheLowerCaseNameHash )
{
	EXPECT_EQ( ToolAttrTypeTag( "CBaseKV3DataWithFGDClass" ), 0x505a0621u );
	EXPECT_EQ( ToolAttrTypeTag( "cbasekv3datawithfgdclass" ), 0x505a0621u );
}

TEST_F( ToolAttrConcrete, TableListsOneSharedAttributePerMemberInOrder )
{
	CUtlVector<IBaseToolAttr *> first, second;
	m_Handle.m_pTable->GetAttributes( m_Handle, &first );
	CTestOperator other;
	m_Handle.m_pTable->GetAttributes( MakeToolAttrHandle( &other ), &second );
	ASSERT_EQ( first.Count(), 15 );
	EXPECT_TRUE( first == second ) << "every instance and every call sees the same attribute objects";
	EXPECT_STREQ( first[ 0 ]->GetName(), "m_flStrength" );
	EXPECT_STREQ( first[ 14 ]->GetName(), "m_pInput" );
	EXPECT_STREQ( first[ 0 ]->GetHelpId(), "attr.CTestOperator.m_flStrength" );
	EXPECT_STREQ( first[ 0 ]->GetHelpContext(), "reflection_tests" );
}

TEST_F( ToolAttrConcrete, FindAttributeIsExactInCase )
{
	EXPECT_NE( Find( "m_nCount" ), nullptr );
	EXPECT_EQ( Find( "m_ncount" ), nullptr );
}

TEST_F( ToolAttrConcrete, KindsFollowTheFieldTypes )
{
	const std::pair<const char *, int> expected[] = {
		{ "m_flStrength", TOOLATTR_TYPE_FLOAT }, { "m_nCount", TOOLATTR_TYPE_INT }, { "m_nAlpha", TOOLATTR_TYPE_UINT },
		{ "m_bEnabled", TOOLATTR_TYPE_BOOL }, { "m_nBlend", TOOLATTR_TYPE_INT }, { "m_vOffset", TOOLATTR_TYPE_VECTOR3 },
		{ "m_Tint", TOOLATTR_TYPE_COLOR_ALPHA }, { "m_Name", TOOLATTR_TYPE_STRING }, { "m_vRange", TOOLATTR_TYPE_VECTOR2 },
		{ "m_Start", TOOLATTR_TYPE_TABLE }, { "m_Curve", TOOLATTR_TYPE_ARRAY }, { "m_Named", TOOLATTR_TYPE_MAP },
		{ "m_pInput", TOOLATTR_TYPE_TABLE },
	};
	for ( const auto &[ pszName, nType ] : expected )
	{
		ASSERT_NE( Find( pszName ), nullptr ) << pszName;
		EXPECT_EQ( Find( pszName )->GetAttrType(), nType ) << pszName;
	}
}

TEST_F( ToolAttrConcrete, WriteThroughHandleChangesFieldAndNotifiesAroundIt )
{
	IToolAttr_Value *pValue = Find( "m_nCount" )->AsValue();
	ASSERT_NE( pValue, nullptr );
	EXPECT_TRUE( pValue->SetFromString( m_Handle, "12", 0 ) );
	EXPECT_EQ( m_Op.m_nCount, 12 );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_nCount=4", "changed m_nCount=12" } ) );
	EXPECT_FALSE( pValue->SetFromString( m_Handle, "twelve", 0 ) );
	EXPECT_EQ( m_Op.m_nCount, 12 );
}

TEST_F( ToolAttrConcrete, WrongTypeTagDoesNothing )
{
	HToolAttrTableInstance wrong = m_Handle;
	wrong.m_nTypeTag = ToolAttrTypeTag( "CTestRandomInput" );
	IBaseToolAttr *pAttr = Find( "m_nCount" );
	EXPECT_FALSE( pAttr->AsValue()->SetFromString( wrong, "99", 0 ) );
	static_cast<IToolAttr_TypedValue<int32_t> *>( static_cast<CBaseConcreteToolAttrValue<int32_t, CTestOperator> *>( pAttr ) )->SetTyped( wrong, 98, 0 );
	EXPECT_EQ( m_Op.m_nCount, 4 );
	CUtlString text = "unchanged";
	pAttr->AsValue()->GetAsString( wrong, &text );
	EXPECT_STREQ( text.Get(), "0" ) << "reads answer the type's empty value";
	EXPECT_FALSE( pAttr->IsWritable( wrong ) );
	EXPECT_FALSE( pAttr->ResetToDefault( wrong ) );
	EXPECT_EQ( pAttr->RunCommand( wrong, "_CustomCommand0" ), TOOLATTR_COMMAND_FAILED );
	EXPECT_FALSE( Find( "m_Start" )->GetTableInstance( wrong ).IsValid() );
	EXPECT_TRUE( m_Root.m_Events.empty() ) << "no callback is called";
}

TEST_F( ToolAttrConcrete, NestedBracketsOnOnePairNotifyOnce )
{
	IBaseToolAttr *pAttr = Find( "m_flStrength" );
	BeginAttrEdit( m_Handle, pAttr, 0 );
	BeginAttrEdit( m_Handle, pAttr, 0 );
	EXPECT_EQ( m_Root.m_Events.size(), 1u );
	EndAttrEdit( m_Handle, pAttr, 0 );
	EXPECT_EQ( m_Root.m_Events.size(), 1u ) << "the inner end announces nothing";
	EndAttrEdit( m_Handle, pAttr, 0 );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_flStrength=0.100000001", "changed m_flStrength=0.100000001" } ) );
}

TEST_F( ToolAttrConcrete, SameAttributeOnTwoInstancesNotifiesTwice )
{
	CTestOperator other;
	HToolAttrTableInstance otherHandle = MakeToolAttrHandle( &other, &m_Root );
	IBaseToolAttr *pAttr = Find( "m_bEnabled" );
	BeginAttrEdit( m_Handle, pAttr, 0 );
	BeginAttrEdit( otherHandle, pAttr, 0 );
	EndAttrEdit( otherHandle, pAttr, 0 );
	EndAttrEdit( m_Handle, pAttr, 0 );
	EXPECT_EQ( m_Root.m_Events.size(), 4u );
}

TEST_F( ToolAttrConcrete, NestedTableWritesReachTheStructAndTheRoot )
{
	HToolAttrTableInstance nested = Find( "m_Start" )->GetTableInstance( m_Handle );
	ASSERT_TRUE( nested.IsValid() );
	IBaseToolAttr *pTime = nested.m_pTable->FindAttribute( nested, "m_flTime" );
	ASSERT_NE( pTime, nullptr );
	bool bHasDefault = false;
	EXPECT_TRUE( Find( "m_Start" )->IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( pTime->AsValue()->SetFromString( nested, "0.5", 0 ) );
	EXPECT_EQ( m_Op.m_Start.m_flTime, 0.5f );
	EXPECT_EQ( m_Root.m_Events.size(), 2u );
	EXPECT_FALSE( Find( "m_Start" )->IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( Find( "m_Start" )->ResetToDefault( m_Handle ) );
	EXPECT_EQ( m_Op.m_Start.m_flTime, 0.0f );
}

TEST_F( ToolAttrConcrete, ArrayElementsAreMadeLazilyAndKept )
{
	IToolAttr_Array *pArray = Find( "m_Weights" )->AsArray();
	ASSERT_NE( pArray, nullptr );
	IBaseToolAttr *pFifth = pArray->GetElement( m_Handle, 5 );
	ASSERT_NE( pFifth, nullptr );
	for ( int i = 0; i <= 5; ++i )
		EXPECT_NE( pArray->GetElement( m_Handle, i ), nullptr );
	EXPECT_EQ( pArray->GetElement( m_Handle, 5 ), pFifth ) << "later calls give the same pointers";
	EXPECT_STREQ( pFifth->GetName(), "m_Weights" );
}

TEST_F( ToolAttrConcrete, ArrayEditsGoThroughTheArrayBracket )
{
	IBaseToolAttr *pWeights = Find( "m_Weights" );
	IToolAttr_Array *pArray = pWeights->AsArray();
	pArray->InsertElement( m_Handle, 0 );
	pArray->InsertElement( m_Handle, 1 );
	ASSERT_EQ( m_Op.m_Weights.size(), 2u );
	m_Root.m_Events.clear();

	EXPECT_TRUE( pArray->GetElement( m_Handle, 1 )->AsValue()->SetFromString( m_Handle, "0.25", 0 ) );
	EXPECT_EQ( m_Op.m_Weights[ 1 ], 0.25f );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_Weights", "changed m_Weights" } ) );

	pArray->SwapElements( m_Handle, 0, 1 );
	EXPECT_EQ( m_Op.m_Weights[ 0 ], 0.25f );
	pArray->RemoveElements( m_Handle, 0, 5 );
	EXPECT_TRUE( m_Op.m_Weights.empty() );
	CUtlString text = "stale";
	pArray->GetElement( m_Handle, 1 )->AsValue()->GetAsString( m_Handle, &text );
	EXPECT_STREQ( text.Get(), "0" ) << "an element that no longer exists reads as empty";
}

TEST_F( ToolAttrConcrete, PolymorphicPointerShowsItsRealClass )
{
	IBaseToolAttr *pInput = Find( "m_pInput" );
	EXPECT_FALSE( pInput->GetTableInstance( m_Handle ).IsValid() ) << "a null object has no table";
	m_Op.m_pInput = std::make_unique<CTestRandomInput>();
	HToolAttrTableInstance nested = pInput->GetTableInstance( m_Handle );
	ASSERT_TRUE( nested.IsValid() );
	EXPECT_STREQ( nested.m_pszClassName, "CTestRandomInput" );
	CUtlVector<IBaseToolAttr *> attributes;
	nested.m_pTable->GetAttributes( nested, &attributes );
	ASSERT_EQ( attributes.Count(), 3 );
	EXPECT_STREQ( attributes[ 0 ]->GetName(), "m_flLiteral" ) << "base members first";
	EXPECT_TRUE( attributes[ 2 ]->AsValue()->SetFromString( nested, "4", 0 ) );
	EXPECT_EQ( static_cast<CTestRandomInput *>( m_Op.m_pInput.get() )->m_flMax, 4.0f );
	bool bHasDefault = false;
	EXPECT_FALSE( pInput->IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( pInput->ResetToDefault( m_Handle ) );
	EXPECT_EQ( m_Op.m_pInput, nullptr );
}

TEST_F( ToolAttrConcrete, DefaultsCompareExactlyAndReset )
{
	IBaseToolAttr *pStrength = Find( "m_flStrength" );
	bool bHasDefault = false;
	EXPECT_TRUE( pStrength->IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( bHasDefault );
	m_Op.m_flStrength = 0.2f;
	EXPECT_FALSE( pStrength->IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( pStrength->ResetToDefault( m_Handle ) );
	EXPECT_EQ( m_Op.m_flStrength, 0.1f );
}

TEST_F( ToolAttrConcrete, NoDefaultBitMakesResetANoOp )
{
	CToolAttrGetForModifyAccess<int32_t, CTestOperator> access( &CTestOperator::m_nCount );
	CBaseConcreteToolAttrValue<int32_t, CTestOperator> attr( "m_nCount", "", &access );
	attr.m_nDefaultFlags = TOOLATTR_DEFAULT_FLAG_NO_DEFAULT;
	m_Op.m_nCount = 77;
	bool bHasDefault = false;
	EXPECT_TRUE( attr.IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_TRUE( attr.ResetToDefault( m_Handle ) );
	EXPECT_EQ( m_Op.m_nCount, 77 );
	EXPECT_TRUE( m_Root.m_Events.empty() ) << "no write happened";
}

TEST_F( ToolAttrConcrete, CommandNumberOutsideTheListGoesToGeneralHandlers )
{
	CToolAttrGetForModifyAccess<int32_t, CTestOperator> access( &CTestOperator::m_nCount );
	CBaseConcreteToolAttrValue<int32_t, CTestOperator> attr( "m_nCount", "", &access );
	std::vector<std::string> ran;
	for ( int i = 0; i < 3; ++i )
	{
		ToolAttrCommand_t<CTestOperator> &command = attr.m_Commands.emplace_back();
		command.m_fnModify = [ &ran, i ]( CTestOperator * ) {
			ran.push_back( "list " + std::to_string( i ) );
			return true;
		};
	}
	attr.m_fnCommandModify = [ &ran ]( CTestOperator *, const char *pszCommand ) {
		ran.push_back( std::string( "general " ) + pszCommand );
		return int( TOOLATTR_COMMAND_DONE );
	};
	EXPECT_EQ( attr.RunCommand( m_Handle, "_CustomCommand2" ), TOOLATTR_COMMAND_DONE );
	EXPECT_EQ( attr.RunCommand( m_Handle, "_CustomCommand7" ), TOOLATTR_COMMAND_DONE );
	EXPECT_EQ( ran, ( std::vector<std::string>{ "list 2", "general _CustomCommand7" } ) );
}

TEST_F( ToolAttrConcrete, EnumOffersNamedChoicesWithoutSuppressedOnes )
{
	IToolAttr_Value *pBlend = Find( "m_nBlend" )->AsValue();
	CUtlVector<ToolAttrGenericChoice_t> choices;
	ASSERT_TRUE( pBlend->GetChoices( nullptr, m_Handle, &choices ) );
	ASSERT_EQ( choices.Count(), 3 );
	EXPECT_STREQ( choices[ 1 ].m_FriendlyName.Get(), "Additive" );
	EXPECT_STREQ( choices[ 2 ].m_FriendlyName.Get(), "TEST_BLEND_MOD" );
	EXPECT_TRUE( pBlend->SetFromString( m_Handle, "test_blend_normal", 0 ) );
	EXPECT_EQ( m_Op.m_nBlend, TEST_BLEND_NORMAL );
	CUtlString text;
	pBlend->GetAsString( m_Handle, &text );
	EXPECT_STREQ( text.Get(), "TEST_BLEND_NORMAL" );
}

TEST_F( ToolAttrConcrete, MetadataGivesLabelRangeAndTable )
{
	IBaseToolAttr *pStrength = Find( "m_flStrength" );
	CUtlString label;
	pStrength->GetFriendlyName( m_Handle, &label );
	EXPECT_STREQ( label.Get(), "Strength" );
	EXPECT_EQ( pStrength->GetEditHint(), TOOLATTR_EDIT_HINT_RANGE );
	ASSERT_NE( pStrength->AsValue()->GetFloatRange(), nullptr );
	EXPECT_EQ( pStrength->AsValue()->GetFloatRange()->m_Max, 1.0f );
	EXPECT_STREQ( pStrength->GetMetadata()->GetMemberString( "MPropertyAttributeRange" ), "0 1" );
	EXPECT_EQ( Find( "m_nCount" )->GetMetadata()->GetMemberCount(), 0 ) << "no metadata is an empty table, not null";
}

TEST_F( ToolAttrConcrete, UnknownAlertFunctionGivesNoAlert )
{
	CToolAttrGetForModifyAccess<int32_t, CTestOperator> access( &CTestOperator::m_nCount );
	CBaseConcreteToolAttrValue<int32_t, CTestOperator> attr( "m_nCount", "", &access );
	attr.ApplySchemaMetadata( { { "alert_func", "NoSuchAlertFunction" } } );
	CUtlString text;
	EXPECT_FALSE( attr.GetAlert( m_Handle, &text ) );
	EXPECT_TRUE( text.IsEmpty() );
}

TEST( ToolAttrHostRegistry, FirstRegistrationStandsAndUnknownNamesFindNothing )
{
	CToolAttrHost host;
	EXPECT_TRUE( host.RegisterVisibilityTest( "is_advanced", []( HToolAttrTableInstance, const IBaseToolAttr * ) { return true; } ) );
	EXPECT_FALSE( host.RegisterVisibilityTest( "is_advanced", []( HToolAttrTableInstance, const IBaseToolAttr * ) { return false; } ) );
	EXPECT_TRUE( host.FindVisibilityTest( "is_advanced" )( {}, nullptr ) );
	EXPECT_FALSE( host.FindVisibilityTest( "is_hidden" ) );

	CUtlString first = host.RegisterAnonymousChoiceProvider( "m_nCount", []( HToolAttrTableInstance, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> * ) {} );
	CUtlString second = host.RegisterAnonymousChoiceProvider( "m_nCount", []( HToolAttrTableInstance, const IBaseToolAttr *, CUtlVector<ToolAttrGenericChoice_t> * ) {} );
	EXPECT_STREQ( first.Get(), "Anon_0!m_nCount" );
	EXPECT_STREQ( second.Get(), "Anon_2!m_nCount" );
	EXPECT_TRUE( host.FindChoiceProvider( second.Get() ) );

	host.RegisterStringChoiceProvider( "shapes", []( HToolAttrTableInstance, const IBaseToolAttr *, CUtlVector<ToolAttrStringChoice_t> *pOut ) {
		pOut->AddToTail( { "sphere", "Sphere", "A ball" } );
	} );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	host.FindChoiceProvider( "shapes" )( {}, nullptr, &choices );
	ASSERT_EQ( choices.Count(), 1 );
	EXPECT_STREQ( choices[ 0 ].m_Description.Get(), "A ball" );
}

TEST_F( ToolAttrConcrete, ValueMembersAreConcreteAttributesThatGetSetAttributesBuildOn )
{
	using FloatAttr_t = CConcreteToolAttr<float, CTestOperator>;
	using BlendAttr_t = CConcreteToolAttr<TestBlendMode_t, CTestOperator>;
	EXPECT_NE( dynamic_cast<FloatAttr_t *>( Find( "m_flStrength" ) ), nullptr );
	EXPECT_NE( dynamic_cast<BlendAttr_t *>( Find( "m_nBlend" ) ), nullptr );

	CTestLayerSet set;
	HToolAttrTableInstance handle = MakeToolAttrHandle( &set );
	IBaseToolAttr *pRadius = handle.m_pTable->FindAttribute( handle, "m_flRadius" );
	using RadiusAttr_t = CConcreteToolAttr<float, CTestLayerSet, void>;
	using RadiusValue_t = CBaseConcreteToolAttrValue<float, CTestLayerSet>;
	auto *pConcrete = dynamic_cast<RadiusAttr_t *>( pRadius );
	ASSERT_NE( pConcrete, nullptr ) << "the accessor attribute sits on the concrete value layer";
	EXPECT_NE( dynamic_cast<RadiusValue_t *>( pConcrete ), nullptr );
}

TEST_F( ToolAttrConcrete, ClassReachedOnlyThroughAFieldGetsItsAttributeTable )
{
	const CSchemaClassInfo *pPoint = SchemaSystem()->FindOrCreateTypeScopeForModule( "reflection_tests" )->FindDeclaredClass( "TestCurvePoint_t" );
	ASSERT_NE( pPoint, nullptr );
	ASSERT_NE( pPoint->GetBinding().m_pfnGetAttributeTable, nullptr );
	EXPECT_EQ( pPoint->GetBinding().m_pfnGetAttributeTable(), ToolAttrTableFor<TestCurvePoint_t>() );
	EXPECT_EQ( pPoint->GetDefaults()->GetMemberFloat( "m_flValue" ), 1.0f );
}
