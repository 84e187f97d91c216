#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/platform/platformmode.h"
#include "tests/toolutils2/support/recordingnotifyroot.h"
#include "tests/toolutils2/support/reflectiontestclasses.h"
#include "tools/toolutils2/toolattr/toolattrtable.h"

namespace
{
class ToolAttrOptions : public ::testing::Test
{
protected:
	void SetUp() override { RegisterReflectionTestClasses(); }
	void TearDown() override { EXPECT_EQ( GetOpenAttrEditCount(), 0 ) << "an edit bracket was left open"; }

	CTestOperator m_Op;
	CRecordingRoot m_Root;
	HToolAttrTableInstance m_Handle = MakeToolAttrHandle( &m_Op, &m_Root );
	CToolAttrGetForModifyAccess<int32_t, CTestOperator> m_CountAccess{ &CTestOperator::m_nCount };
	CBaseConcreteToolAttrValue<int32_t, CTestOperator> m_Count{ "m_nCount", "", &m_CountAccess };
};

// A table that answers every edit context query with its own name, to see queries reach it.
class CAnsweringTable : public CDefaultToolAttrTableForStruct<CTestOperator>
{
public:
	void FillEditContext( HToolAttrTableInstance, CToolEditContextQuery_Base *pQuery ) const override
	{
		if ( auto *pString = dynamic_cast<CToolEditContextQuery_String *>( pQuery ) )
		{
			pString->m_eKind = CToolEditContextQuery_String::KIND_CODE;
			pString->m_Source = "table";
		}
	}
};
} // namespace

TEST_F( ToolAttrOptions, GetSetFieldWritesThroughTheSetterOnce )
{
	CTestLayerSet set;
	HToolAttrTableInstance handle = MakeToolAttrHandle( &set, &m_Root );
	IBaseToolAttr *pRadius = handle.m_pTable->FindAttribute( handle, "m_flRadius" );
	ASSERT_NE( pRadius, nullptr );
	using GetSetAttr_t = CConcreteToolAttrGetSet<float, CTestLayerSet>;
	EXPECT_NE( dynamic_cast<GetSetAttr_t *>( pRadius ), nullptr ) << "declared with accessors";
	CUtlString label;
	pRadius->GetFriendlyName( handle, &label );
	EXPECT_STREQ( label.Get(), "Radius" );

	EXPECT_TRUE( pRadius->AsValue()->SetFromString( handle, "-3", 0 ) );
	EXPECT_EQ( set.m_nSetRadiusCalls, 1 );
	EXPECT_EQ( set.m_flRadius, 0.0f ) << "the setter's rule held";
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_flRadius=1", "changed m_flRadius=0" } ) )
		<< "the root hears the old value before and the setter's result after";
}

TEST_F( ToolAttrOptions, GetSetFieldResetsAndComparesThroughAccessors )
{
	CTestLayerSet set;
	HToolAttrTableInstance handle = MakeToolAttrHandle( &set );
	IBaseToolAttr *pRadius = handle.m_pTable->FindAttribute( handle, "m_flRadius" );
	ASSERT_NE( pRadius, nullptr );
	set.m_flRadius = 4.0f;
	bool bHasDefault = false;
	EXPECT_FALSE( pRadius->IsAtDefault( handle, &bHasDefault ) );
	EXPECT_TRUE( pRadius->ResetToDefault( handle ) );
	EXPECT_EQ( set.m_flRadius, 1.0f );
	EXPECT_EQ( set.m_nSetRadiusCalls, 1 );
	CUtlString text;
	pRadius->AsValue()->GetAsString( handle, &text );
	EXPECT_STREQ( text.Get(), "1" );
}

TEST_F( ToolAttrOptions, GetSetFieldIsStillLoadedAndSavedAsAMember )
{
	CTestLayerSet set;
	set.m_flRadius = 2.5f;
	KeyValues3 kv;
	ASSERT_TRUE( SaveKV3Object( set, &kv, nullptr ) );
	EXPECT_EQ( kv.GetMemberFloat( "m_flRadius" ), 2.5f );
	CTestLayerSet loaded;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, nullptr ) );
	EXPECT_EQ( loaded.m_flRadius, 2.5f );
}

TEST_F( ToolAttrOptions, EditContextAnswersCodeAndKeyListsThenAsksTheTable )
{
	m_Count.ApplySchemaMetadata( { { "MPropertyEditContextOverrideValue", "browse_filter -cubemap -env" },
								   { "MPropertyEditContextOverrideKey", "sequence_model m_Name" } } );

	CToolEditContextQuery_String code( "browse_filter" );
	m_Count.FillEditContext( m_Handle, &code );
	EXPECT_EQ( code.m_eKind, CToolEditContextQuery_String::KIND_CODE );
	EXPECT_STREQ( code.m_Source.Get(), "code" );
	EXPECT_STREQ( code.m_Value.Get(), "-cubemap -env" );

	CToolEditContextQuery_String key( "sequence_model" );
	m_Count.FillEditContext( m_Handle, &key );
	EXPECT_EQ( key.m_eKind, CToolEditContextQuery_String::KIND_KEY_NAME );
	EXPECT_STREQ( key.m_Value.Get(), "m_Name" );
	EXPECT_EQ( key.m_nValueKeyHash, ToolAttrTypeTag( "m_Name" ) ) << "the same lower-case hash as member names";

	CAnsweringTable table;
	HToolAttrTableInstance handle = m_Handle;
	handle.m_pTable = &table;
	CToolEditContextQuery_String other( "Browse_Filter" );
	m_Count.FillEditContext( handle, &other );
	EXPECT_STREQ( other.m_Source.Get(), "table" ) << "keys are exact; an unanswered query goes on to the table";
}

TEST_F( ToolAttrOptions, DefaultColourIsFixedOrAskedOfTheOwner )
{
	Color colour;
	EXPECT_FALSE( m_Count.GetDefaultColor( m_Handle, &colour ) ) << "no colour unless one is declared";
	m_Count.m_DefaultColor = Color( 10, 20, 30, 255 );
	ASSERT_TRUE( m_Count.GetDefaultColor( m_Handle, &colour ) );
	EXPECT_EQ( colour, Color( 10, 20, 30, 255 ) );

	m_Count.m_fnDefaultColor = []( const CTestOperator *pOp, Color *pOut ) {
		*pOut = pOp->m_Tint;
		return pOp->m_bEnabled;
	};
	ASSERT_TRUE( m_Count.GetDefaultColor( m_Handle, &colour ) );
	EXPECT_EQ( colour, m_Op.m_Tint );
	m_Op.m_bEnabled = false;
	EXPECT_FALSE( m_Count.GetDefaultColor( m_Handle, &colour ) );
	HToolAttrTableInstance wrong = m_Handle;
	wrong.m_nTypeTag = 0;
	EXPECT_FALSE( m_Count.GetDefaultColor( wrong, &colour ) );
}

TEST_F( ToolAttrOptions, DevOnlyAttributeIsSuppressedOnlyOnACustomerMachine )
{
	m_Count.m_bDevOnly = true;
	EXPECT_FALSE( m_Count.IsSuppressed( m_Handle ) );
	Plat_SetRunningOnCustomerMachine( true );
	bool bSuppressed = m_Count.IsSuppressed( m_Handle );
	Plat_SetRunningOnCustomerMachine( false );
	EXPECT_TRUE( bSuppressed );
}

TEST_F( ToolAttrOptions, DevOnlyMetadataMarksTheDeclaredAttribute )
{
	CTestLayerSet set;
	HToolAttrTableInstance handle = MakeToolAttrHandle( &set );
	CUtlVector<IBaseToolAttr *> attributes;
	handle.m_pTable->GetAttributes( handle, &attributes );
	std::vector<std::string> suppressed;
	Plat_SetRunningOnCustomerMachine( true );
	for ( IBaseToolAttr *pAttr : attributes )
	{
		if ( pAttr->IsSuppressed( handle ) )
			suppressed.emplace_back( pAttr->GetName() );
	}
	Plat_SetRunningOnCustomerMachine( false );
	EXPECT_EQ( suppressed, std::vector<std::string>{ "m_nDebugSeed" } );
	EXPECT_FALSE( handle.m_pTable->FindAttribute( handle, "m_nDebugSeed" )->IsSuppressed( handle ) );
}

TEST_F( ToolAttrOptions, StateFunctionsMakeReadOnlyOrSuppressed )
{
	EXPECT_TRUE( m_Count.IsWritable( m_Handle ) );
	m_Count.m_fnState = []( const CTestOperator *pOp ) { return pOp->m_bEnabled ? int( TOOLATTR_STATE_NORMAL ) : int( TOOLATTR_STATE_READ_ONLY ); };
	m_Count.m_fnState2 = []( const CTestOperator *pOp ) { return pOp->m_nAlpha == 0 ? int( TOOLATTR_STATE_SUPPRESSED ) : int( TOOLATTR_STATE_NORMAL ); };
	EXPECT_TRUE( m_Count.IsWritable( m_Handle ) );
	EXPECT_FALSE( m_Count.IsSuppressed( m_Handle ) );
	m_Op.m_bEnabled = false;
	EXPECT_FALSE( m_Count.IsWritable( m_Handle ) ) << "the first state function";
	m_Op.m_bEnabled = true;
	m_Op.m_nAlpha = 0;
	EXPECT_TRUE( m_Count.IsSuppressed( m_Handle ) ) << "the second state function is consulted too";
}

TEST_F( ToolAttrOptions, OverrideStateComesFromTheOwnerAndSettingItIsAnEdit )
{
	EXPECT_EQ( m_Count.GetOverrideState( m_Handle ), TOOLATTR_OVERRIDE_NONE );
	m_Count.m_fnGetOverrideState = []( const CTestOperator *pOp ) { return pOp->m_bEnabled ? int( TOOLATTR_OVERRIDE_OVERRIDING ) : int( TOOLATTR_OVERRIDE_INHERITING ); };
	m_Count.m_fnSetOverride = []( CTestOperator *pOp, bool bOverride ) { pOp->m_bEnabled = bOverride; };
	EXPECT_EQ( m_Count.GetOverrideState( m_Handle ), TOOLATTR_OVERRIDE_OVERRIDING );
	m_Count.SetOverride( m_Handle, false );
	EXPECT_EQ( m_Count.GetOverrideState( m_Handle ), TOOLATTR_OVERRIDE_INHERITING );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_nCount=4", "changed m_nCount=4" } ) );
}

TEST_F( ToolAttrOptions, CapturedDefaultBecomesTheDefaultAndAppliesToOtherInstances )
{
	CTestOperator other;
	HToolAttrTableInstance otherHandle = MakeToolAttrHandle( &other, &m_Root );
	EXPECT_FALSE( m_Count.ApplyCapturedDefault( otherHandle, m_Handle ) ) << "nothing captured yet";

	m_Op.m_nCount = 9;
	ASSERT_TRUE( m_Count.CaptureAsDefault( m_Handle ) );
	bool bHasDefault = false;
	EXPECT_TRUE( m_Count.IsAtDefault( m_Handle, &bHasDefault ) );
	EXPECT_FALSE( m_Count.IsAtDefault( otherHandle, &bHasDefault ) );

	ASSERT_TRUE( m_Count.ApplyCapturedDefault( otherHandle, m_Handle ) );
	EXPECT_EQ( other.m_nCount, 9 );
	EXPECT_EQ( m_Root.m_Events, ( std::vector<std::string>{ "will m_nCount=4", "changed m_nCount=9" } ) );

	other.m_nCount = 1;
	EXPECT_TRUE( m_Count.ResetToDefault( otherHandle ) );
	EXPECT_EQ( other.m_nCount, 9 ) << "reset goes to the captured default";
}

TEST_F( ToolAttrOptions, CaptureOfANestedTableReachesItsMembers )
{
	IBaseToolAttr *pStart = m_Handle.m_pTable->FindAttribute( m_Handle, "m_Start" );
	ASSERT_NE( pStart, nullptr );
	m_Op.m_Start.m_flTime = 0.5f;
	ASSERT_TRUE( pStart->CaptureAsDefault( m_Handle ) );

	CTestOperator other;
	HToolAttrTableInstance otherHandle = MakeToolAttrHandle( &other );
	bool bHasDefault = false;
	EXPECT_FALSE( pStart->IsAtDefault( otherHandle, &bHasDefault ) ) << "the declared 0 is no longer the default";
	EXPECT_TRUE( pStart->ApplyCapturedDefault( otherHandle, m_Handle ) );
	EXPECT_EQ( other.m_Start.m_flTime, 0.5f );

	// The attributes are shared by the process: give the next test the declared defaults back.
	CTestOperator pristine;
	ASSERT_TRUE( pStart->CaptureAsDefault( MakeToolAttrHandle( &pristine ) ) );
	EXPECT_TRUE( pStart->IsAtDefault( MakeToolAttrHandle( &pristine ), &bHasDefault ) );
}

TEST_F( ToolAttrOptions, CaptureWithWrongTypeTagDoesNothing )
{
	HToolAttrTableInstance wrong = m_Handle;
	wrong.m_nTypeTag = ToolAttrTypeTag( "CTestLayerSet" );
	m_Op.m_nCount = 9;
	EXPECT_FALSE( m_Count.CaptureAsDefault( wrong ) );
	bool bHasDefault = false;
	m_Op.m_nCount = 0;
	EXPECT_TRUE( m_Count.IsAtDefault( m_Handle, &bHasDefault ) ) << "the default stayed the declared 0 of the local attribute";
}
