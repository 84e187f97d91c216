// The property edit domain on a class description made for the test: each step of
// GetPropertyInfo, the buttons and their commands, metadata expressions, arrays with the
// type picker, and the edit slot sequences. Beeps and pickers go through a scripted prompt.

#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <string>
#include <vector>

#include "core/host/scriptedprompt.h"
#include "core/kv3/keyvalues3.h"
#include "core/logging/logging.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/kv3datawithfgdclass.h"
#include "tools/toolutils2/toolattr/basetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrarray.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr_propertydomain/propertyeditorslots.h"
#include "tools/toolutils2/toolattr_propertydomain/toolattrpropertydomain.h"

namespace
{
constexpr const char *s_pszClasses = R"(
@PointClass = DomainTestRow [
	m_nType(integer) : "Type" : "0"
	m_bEnabled(boolean) : "Enabled" : "1"
	m_flRate(float) { min = "0" max = "10" readonly_expr = "m_nType == 3" } : "Rate" : "1"
	m_Shown(string) { suppress_expr = "!m_bEnabled" } : "Shown When Enabled"
	m_Broken(string) { suppress_expr = "m_nType ==" readonly_expr = "m_nType ==" } : "Broken Expression"
	m_ModOnly(string) { suppress_expr = "mod != 'zoltest'" } : "Only In Zoltest"
	m_Optional(string) { is_optional = true } : "Optional"
	m_Reset(string) { reset_to_default_icon = true } : "Reset" : "abc"
	m_NoReset(string) { disable_reset_to_default = true } : "No Reset" : "abc"
	m_Forced(string) { propattr_force_readonly = true } : "Forced"
	m_Grid(array(array(integer))) : "Grid"
]
)";

// Hears what the domain tells the document.
class CRecordingListener : public IToolAttrDomainListener
{
public:
	void OnBeforeChange( const ZolPropertyBeforeChange_t &record ) override { m_Events.push_back( "before " + std::to_string( record.m_eModifyType ) ); }
	void OnAfterChange( const ZolPropertyAfterChange_t &record ) override { m_Events.push_back( "after " + std::to_string( record.m_nCode ) ); }
	void OnPropertyRebuild( HToolAttrTableInstance, IBaseToolAttr *pAttr ) override { m_Events.push_back( std::string( "rebuild " ) + pAttr->GetName() ); }
	std::vector<std::string> m_Events;
};

// Collects warnings of the "Zol" channel.
class CWarningCollector : public ILoggingListener
{
public:
	CWarningCollector() { LoggingSystem_AddListener( this ); }
	~CWarningCollector() { LoggingSystem_RemoveListener( this ); }
	void Log( const LoggingContext_t &context, const char *pMessage ) override
	{
		if ( context.m_nChannel == LOG_ZOL && context.m_eSeverity == LS_WARNING )
			m_Warnings.push_back( pMessage );
	}
	std::vector<std::string> m_Warnings;
};

class ToolAttrPropertyDomainTest : public testing::Test
{
protected:
	void SetUp() override
	{
		CFgdReader reader( &m_GameData, "" );
		ASSERT_TRUE( reader.LoadGameDataFromText( "domain.fgd", s_pszClasses, strlen( s_pszClasses ) ) );
		ASSERT_TRUE( m_GameData.GetErrors().IsEmpty() ) << m_GameData.GetErrors()[ 0 ].m_Text.Get();
		m_pData = std::make_unique<CKV3DataWithFGDClass>( &m_GameData, m_GameData.FindClass( "DomainTestRow" ) );
		m_Table.m_hTable = m_pData->GetHandle();
	}

	ZolPropertyTarget Property( const char *pszName )
	{
		return ZolPropertyTarget{ m_Table.m_hTable, m_pData->FindAttribute( m_Table.m_hTable, pszName ) };
	}
	ZolPropertyRowInfo Info( const char *pszName )
	{
		ZolPropertyRowInfo info;
		EXPECT_TRUE( m_Domain.GetPropertyInfo( Property( pszName ), &info ) ) << pszName;
		return info;
	}
	void Set( const char *pszName, const char *pszText ) { m_Domain.SetValueText( Property( pszName ), {}, pszText, 0 ); }

	CGameData m_GameData;
	std::unique_ptr<CKV3DataWithFGDClass> m_pData;
	ZolPropertyTarget m_Table;
	CRecordingListener m_Listener;
	CToolAttrPropertyDomain m_Domain{ &m_Listener };
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
};

TEST_F( ToolAttrPropertyDomainTest, InvalidTargetsYieldNothing )
{
	ZolPropertyRowInfo info;
	EXPECT_FALSE( m_Domain.GetPropertyInfo( ZolPropertyTarget{}, &info ) );
	EXPECT_FALSE( m_Domain.GetPropertyInfo( ZolPropertyTarget{ m_Table.m_hTable, nullptr }, &info ) );
	EXPECT_TRUE( m_Domain.IsTargetInvalid( ZolPropertyTarget{} ) );
	CUtlVector<ZolPropertyTarget> properties;
	m_Domain.GetProperties( ZolPropertyTarget{}, &properties );
	EXPECT_TRUE( properties.IsEmpty() );
	EXPECT_EQ( m_Domain.GetPropertyType( ZolPropertyTarget{} ), 0 );
	EXPECT_STREQ( ZolPropertyListLabel( nullptr, 0 ).Get(), "[NO_ATTRS]" );
	ZolPropertyTarget invalid;
	EXPECT_STREQ( ZolPropertyListLabel( &invalid, 1 ).Get(), "[INVALID_TARGET]" );
	ZolPropertyTarget nullAttr{ m_Table.m_hTable, nullptr };
	EXPECT_STREQ( ZolPropertyListLabel( &nullAttr, 1 ).Get(), "[NULL_ATTR]" );
	ZolPropertyTarget rate = Property( "m_flRate" );
	EXPECT_STREQ( ZolPropertyListLabel( &rate, 1 ).Get(), "Rate" );
}

TEST_F( ToolAttrPropertyDomainTest, PropertiesInTableOrderAndRowBasics )
{
	CUtlVector<ZolPropertyTarget> properties;
	m_Domain.GetProperties( m_Table, &properties );
	ASSERT_EQ( properties.Count(), 11 );
	EXPECT_STREQ( properties[ 0 ].m_pAttr->GetName(), "m_nType" );
	EXPECT_STREQ( properties[ 10 ].m_pAttr->GetName(), "m_Grid" );

	ZolPropertyRowInfo rate = Info( "m_flRate" );
	EXPECT_STREQ( rate.m_Name.Get(), "m_flRate" );
	EXPECT_STREQ( rate.m_FriendlyName.Get(), "Rate" );
	EXPECT_EQ( rate.m_nType, ZOL_PROPERTY_TYPE_FLOAT );
	EXPECT_FALSE( rate.m_bReadOnly );
	EXPECT_FALSE( rate.m_bDiffersFromDefault );
	EXPECT_EQ( rate.m_nHint, 1 );
	EXPECT_TRUE( rate.m_bRangeIsFloat );
	EXPECT_FLOAT_EQ( rate.m_flRangeMin, 0.0f );
	EXPECT_FLOAT_EQ( rate.m_flRangeMax, 10.0f );
	EXPECT_EQ( Info( "m_bEnabled" ).m_nType, ZOL_PROPERTY_TYPE_BOOL );
	EXPECT_EQ( Info( "m_nType" ).m_nType, ZOL_PROPERTY_TYPE_INT );

	// An array of arrays gives two dimension entries, and the type of its first element.
	ZolPropertyTarget grid = Property( "m_Grid" );
	EXPECT_EQ( m_Domain.GetPropertyType( grid ), 0 ); // empty: no element to type by
	EXPECT_EQ( m_Domain.ModifyArray( grid, {}, PROPED_ARRAY_INSERT, 0, 0 ), 1 );
	ZolPropertyPath first;
	first.AddToTail( 0 );
	EXPECT_EQ( m_Domain.ModifyArray( grid, first, PROPED_ARRAY_INSERT, 0, 0 ), 1 );
	EXPECT_EQ( m_Domain.GetPropertyType( grid ), ZOL_PROPERTY_TYPE_INT );
	ZolPropertyRowInfo gridInfo = Info( "m_Grid" );
	ASSERT_EQ( gridInfo.m_ArrayDimensions.Count(), 2 );
	EXPECT_FALSE( gridInfo.m_ArrayDimensions[ 0 ] ); // both levels can grow
	EXPECT_EQ( m_Domain.GetArrayCount( grid, first ), 1 );

	// A path through an index that no longer exists gives nothing, quietly.
	ZolPropertyPath gone;
	gone.AddToTail( 5 );
	CUtlString text;
	m_Domain.GetValueText( grid, gone, &text );
	EXPECT_STREQ( text.Get(), "<UNKNOWN>" );
	EXPECT_EQ( m_Domain.ResolveProperty( grid, gone, nullptr ), nullptr );
	EXPECT_EQ( m_Domain.GetArrayCount( grid, gone ), 0 );
}

TEST_F( ToolAttrPropertyDomainTest, SuppressExpressionEndsTheRowWithOnlyItsName )
{
	Set( "m_bEnabled", "0" );
	ZolPropertyRowInfo info = Info( "m_Shown" );
	EXPECT_TRUE( info.m_bSuppressed );
	EXPECT_STREQ( info.m_Name.Get(), "m_Shown" );
	EXPECT_TRUE( info.m_FriendlyName.IsEmpty() );
	EXPECT_EQ( info.m_nType, 0 );
	Set( "m_bEnabled", "1" );
	info = Info( "m_Shown" );
	EXPECT_FALSE( info.m_bSuppressed );
	EXPECT_STREQ( info.m_FriendlyName.Get(), "Shown When Enabled" );
}

TEST_F( ToolAttrPropertyDomainTest, ReadOnlyExpressionMarksItsFieldToRebuildThePanel )
{
	ZolPropertyTarget type = Property( "m_nType" );
	EXPECT_FALSE( Info( "m_flRate" ).m_bReadOnly );
	// Reading m_flRate's row evaluated "m_nType == 3": m_nType now rebuilds on change.
	EXPECT_TRUE( type.m_pAttr->RebuildsOnChange() );
	m_Listener.m_Events.clear();
	Set( "m_nType", "3" );
	EXPECT_TRUE( m_Domain.NeedsRebuild() );
	ASSERT_EQ( m_Listener.m_Events.size(), 1u );
	EXPECT_EQ( m_Listener.m_Events[ 0 ], "rebuild m_nType" );
	m_Domain.ClearRebuild();
	EXPECT_TRUE( Info( "m_flRate" ).m_bReadOnly );
}

TEST_F( ToolAttrPropertyDomainTest, SyntaxErrorFallsBackToTheDefaultAndLogsOnce )
{
	CWarningCollector warnings;
	ZolPropertyRowInfo info = Info( "m_Broken" );
	EXPECT_FALSE( info.m_bSuppressed );
	EXPECT_FALSE( info.m_bReadOnly );
	Info( "m_Broken" );
	ASSERT_EQ( warnings.m_Warnings.size(), 1u ) << "one text, logged once however often it is read";
	EXPECT_NE( warnings.m_Warnings[ 0 ].find( "suppress_expr of m_Broken" ), std::string::npos ) << warnings.m_Warnings[ 0 ];
	EXPECT_NE( warnings.m_Warnings[ 0 ].find( "Parser encountered 1 error(s)" ), std::string::npos ) << warnings.m_Warnings[ 0 ];
}

TEST_F( ToolAttrPropertyDomainTest, GlobalsAnswerTheModName )
{
	KeyValues3 value;
	EXPECT_TRUE( m_Domain.GetGlobalValue( "mod", &value ) );
	EXPECT_FALSE( m_Domain.GetGlobalValue( "game", &value ) );
	// No game information is loaded here: the mod name is empty, so the row is suppressed.
	EXPECT_TRUE( Info( "m_ModOnly" ).m_bSuppressed );
}

TEST_F( ToolAttrPropertyDomainTest, DefaultsGiveResetButtonsUnlessDisabled )
{
	EXPECT_EQ( Info( "m_Reset" ).FindButton( "reset_attr" ), nullptr ); // at its default
	Set( "m_Reset", "changed" );
	Set( "m_NoReset", "changed" );
	ZolPropertyRowInfo reset = Info( "m_Reset" );
	EXPECT_TRUE( reset.m_bDiffersFromDefault );
	const ZolPropertyRowButton *pReset = reset.FindButton( "reset_attr" );
	ASSERT_NE( pReset, nullptr );
	EXPECT_STREQ( pReset->m_Tooltip.Get(), "Reset to Default" );
	EXPECT_TRUE( pReset->m_bClickable );
	EXPECT_EQ( pReset->m_nZone, 2 );
	EXPECT_STREQ( pReset->m_Icon.Get(), "game:tools/images/propertyeditor/attr_reset.png" );
	ZolPropertyRowInfo noReset = Info( "m_NoReset" );
	EXPECT_TRUE( noReset.m_bDiffersFromDefault );
	EXPECT_EQ( noReset.FindButton( "reset_attr" ), nullptr );

	m_Domain.RunButtonCommand( "reset_attr", Property( "m_Reset" ), "" );
	EXPECT_TRUE( m_Domain.NeedsRebuild() );
	CUtlString text;
	m_Domain.GetValueText( Property( "m_Reset" ), {}, &text );
	EXPECT_STREQ( text.Get(), "abc" );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 0 );

	// A forced read-only row offers no reset.
	Set( "m_Forced", "x" );
	ZolPropertyRowInfo forced = Info( "m_Forced" );
	EXPECT_TRUE( forced.m_bReadOnly );
	EXPECT_EQ( forced.FindButton( "reset_attr" ), nullptr );
}

TEST_F( ToolAttrPropertyDomainTest, SpuriousValuesAreTintedSortedLastAndRemovable )
{
	m_pData->GetKV3ForModify()->SetMemberInt( "m_nStale", 5 );
	CUtlVector<ZolPropertyTarget> properties;
	m_Domain.GetProperties( m_Table, &properties );
	ASSERT_EQ( properties.Count(), 12 );
	ZolPropertyTarget stale = properties[ 11 ];
	ZolPropertyRowInfo info;
	ASSERT_TRUE( m_Domain.GetPropertyInfo( stale, &info ) );
	EXPECT_EQ( info.m_nSortPriority, -10000 );
	EXPECT_EQ( info.m_RowColor[ 0 ], 255 );
	EXPECT_EQ( info.m_RowColor[ 1 ], 60 );
	EXPECT_EQ( info.FindButton( "reset_attr" ), nullptr );
	const ZolPropertyRowButton *pRemove = info.FindButton( "remove_attr" );
	ASSERT_NE( pRemove, nullptr );
	EXPECT_EQ( pRemove->m_nApplicableKind, 3 );
	EXPECT_STREQ( pRemove->m_Tooltip.Get(), "Spurious value not expected in this class. Click to remove." );

	m_Domain.RunButtonCommand( "remove_attr", stale, nullptr );
	EXPECT_TRUE( m_Domain.NeedsRebuild() );
	EXPECT_FALSE( m_pData->GetKV3()->HasMember( "m_nStale" ) );

	// A read-only domain shows the button but it doesn't act.
	m_pData->GetKV3ForModify()->SetMemberInt( "m_nStale", 5 );
	m_Domain.SetReadOnly( true );
	m_Domain.GetProperties( m_Table, &properties );
	ASSERT_TRUE( m_Domain.GetPropertyInfo( properties[ 11 ], &info ) );
	EXPECT_TRUE( info.m_bReadOnly );
	EXPECT_EQ( info.FindButton( "remove_attr" ), nullptr );
}

// Attributes of a hand-made table for what class descriptions don't show: inheritance,
// commands and arrays of owned objects.
class CTestAttr : public CBaseToolAttr, public IToolAttr_Array
{
public:
	explicit CTestAttr( const char *pszName ) : CBaseToolAttr( pszName, "TestOwner", "" ) {}
	int GetAttrType() const override { return m_bArray ? TOOLATTR_TYPE_ARRAY : TOOLATTR_TYPE_STRING; }
	int GetOverrideState( HToolAttrTableInstance ) const override { return m_nOverrideState; }
	void SetOverride( HToolAttrTableInstance, bool bOverride ) override { m_nOverrideState = bOverride ? 1 : 2; }
	bool IsAtDefault( HToolAttrTableInstance, bool *pHasDefault ) const override { *pHasDefault = true; return true; }
	bool ResetToDefault( HToolAttrTableInstance ) override { return true; }
	int RunCommand( HToolAttrTableInstance, const char *pszCommand ) override
	{
		m_Commands.push_back( pszCommand );
		return m_nCommandAnswer;
	}
	int RunCommandWithArgument( HToolAttrTableInstance, const char *pszCommand, const char *pszArgument ) override
	{
		m_Commands.push_back( std::string( pszCommand ) + "(" + pszArgument + ")" );
		return m_nArgumentAnswer;
	}
	IToolAttr_Array *AsArray() override { return m_bArray ? this : nullptr; }

	int GetCount( HToolAttrTableInstance ) const override { return int( m_Elements.size() ); }
	IBaseToolAttr *GetElement( HToolAttrTableInstance, int nIndex ) override { return nIndex >= 0 && nIndex < int( m_Elements.size() ) ? this : nullptr; }
	IBaseToolAttr *InsertElement( HToolAttrTableInstance, int nIndex ) override
	{
		m_Elements.insert( m_Elements.begin() + nIndex, "plain" );
		return this;
	}
	void RemoveElements( HToolAttrTableInstance, int nIndex, int nCount ) override { m_Elements.erase( m_Elements.begin() + nIndex, m_Elements.begin() + nIndex + nCount ); }
	void SwapElements( HToolAttrTableInstance, int a, int b ) override { std::swap( m_Elements[ a ], m_Elements[ b ] ); }
	bool GetElementChoices( IToolAttrHost *, HToolAttrTableInstance, CUtlVector<ToolAttrGenericChoice_t> * ) const override { return false; }
	bool CanResize() const override { return true; }
	const ToolAttrRange_t<int64_t> *GetElementIntRange() const override { return nullptr; }
	const ToolAttrRange_t<float> *GetElementFloatRange() const override { return nullptr; }
	bool GetElementTypes( HToolAttrTableInstance, CUtlVector<ToolAttrElementType_t> *pTypes ) const override
	{
		for ( const char *pszType : m_Types )
			pTypes->AddToTail( ToolAttrElementType_t{ pszType, pszType, "a test type" } );
		return !m_Types.empty();
	}
	IBaseToolAttr *InsertElementOfType( HToolAttrTableInstance, int nIndex, const ToolAttrElementType_t &type ) override
	{
		m_Elements.insert( m_Elements.begin() + nIndex, type.m_Value.Get() );
		return this;
	}
	int GetElementTypeMode() const override { return 2; }

	int m_nOverrideState = 0;
	int m_nCommandAnswer = TOOLATTR_COMMAND_DONE;
	int m_nArgumentAnswer = TOOLATTR_COMMAND_NOT_HANDLED;
	bool m_bArray = false;
	std::vector<const char *> m_Types;
	std::vector<std::string> m_Elements;
	std::vector<std::string> m_Commands;
};

class CTestTable : public IToolAttr_Table
{
public:
	void GetAttributes( HToolAttrTableInstance, CUtlVector<IBaseToolAttr *> *pAttributes ) override
	{
		for ( CTestAttr *pAttr : m_Attributes )
			pAttributes->AddToTail( pAttr );
	}
	bool GetHelpInfo( HToolAttrTableInstance, CUtlString *, CUtlString * ) const override { return false; }
	bool GetElementHelpInfo( CUtlString *, CUtlString * ) const override { return false; }
	bool GetDisplayName( HToolAttrTableInstance, CUtlString *pOut ) const override { pOut->Set( "Test Table" ); return true; }
	const char *GetIconName() const override { return ""; }
	bool IgnoresDefaults() const override { return false; }
	bool HidesDefaultMark() const override { return false; }
	bool GetFlattenIntoParent() const override { return false; }
	HToolAttrTableInstance GetAttrInstance( HToolAttrTableInstance handle ) override { return handle; }
	IBaseToolAttr *FindAttribute( HToolAttrTableInstance, const char * ) override { return nullptr; }
	void FillEditContext( HToolAttrTableInstance, CToolEditContextQuery_Base * ) const override {}
	std::vector<CTestAttr *> m_Attributes;
};

class ToolAttrDomainButtonsTest : public testing::Test
{
protected:
	ZolPropertyTarget Target( CTestAttr *pAttr )
	{
		HToolAttrTableInstance handle;
		handle.m_pInstance = this;
		handle.m_pTable = &m_Table;
		return ZolPropertyTarget{ handle, pAttr };
	}
	CTestAttr m_Attr{ "m_Value" };
	CTestTable m_Table;
	CToolAttrPropertyDomain m_Domain;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
};

TEST_F( ToolAttrDomainButtonsTest, OverrideStatesGiveInheritAndOverrideButtons )
{
	ZolPropertyRowInfo info;
	m_Attr.m_nOverrideState = 1;
	ASSERT_TRUE( m_Domain.GetPropertyInfo( Target( &m_Attr ), &info ) );
	const ZolPropertyRowButton *pInherit = info.FindButton( "inherit_attr" );
	ASSERT_NE( pInherit, nullptr );
	EXPECT_STREQ( pInherit->m_Tooltip.Get(), "This value is overriding a base node. Click to inherit." );
	EXPECT_STREQ( pInherit->m_Icon.Get(), "game:tools/images/propertyeditor/overlay_inherit.png" );
	EXPECT_STREQ( pInherit->m_HoverIcon.Get(), "game:tools/images/propertyeditor/overlay_inherit_hover.png" );
	EXPECT_TRUE( pInherit->m_bClickable );
	EXPECT_EQ( pInherit->m_nZone, 2 );
	EXPECT_FALSE( info.m_bReadOnly );
	m_Domain.RunButtonCommand( "inherit_attr", Target( &m_Attr ), nullptr );
	EXPECT_EQ( m_Attr.m_nOverrideState, 2 );
	EXPECT_TRUE( m_Domain.NeedsRebuild() );

	ASSERT_TRUE( m_Domain.GetPropertyInfo( Target( &m_Attr ), &info ) );
	const ZolPropertyRowButton *pOverride = info.FindButton( "override_attr" );
	ASSERT_NE( pOverride, nullptr );
	EXPECT_STREQ( pOverride->m_Tooltip.Get(), "This value is currently inherited from a base node. Click to override." );
	EXPECT_TRUE( info.m_bReadOnly );
	m_Domain.RunButtonCommand( "override_attr", Target( &m_Attr ), nullptr );
	EXPECT_EQ( m_Attr.m_nOverrideState, 1 );

	m_Attr.m_nOverrideState = 3;
	ASSERT_TRUE( m_Domain.GetPropertyInfo( Target( &m_Attr ), &info ) );
	EXPECT_TRUE( info.m_bReadOnly );
	EXPECT_TRUE( info.m_Buttons.IsEmpty() );

	// A read-only domain says so in the tooltip and makes the button display-only.
	m_Attr.m_nOverrideState = 2;
	m_Domain.SetReadOnly( true );
	ASSERT_TRUE( m_Domain.GetPropertyInfo( Target( &m_Attr ), &info ) );
	pOverride = info.FindButton( "override_attr" );
	ASSERT_NE( pOverride, nullptr );
	EXPECT_STREQ( pOverride->m_Tooltip.Get(), "This value is currently inherited from a base node." );
	EXPECT_TRUE( pOverride->m_bDisplayOnly );
	EXPECT_FALSE( pOverride->m_bClickable );
}

TEST_F( ToolAttrDomainButtonsTest, InheritedOptionalValueHasTwoButtonsAndIsReadOnly )
{
	m_Attr.ApplySchemaMetadata( { { "is_optional" } } );
	m_Attr.m_nOverrideState = 2;
	ZolPropertyRowInfo info;
	ASSERT_TRUE( m_Domain.GetPropertyInfo( Target( &m_Attr ), &info ) );
	ASSERT_EQ( info.m_Buttons.Count(), 2 );
	EXPECT_STREQ( info.m_Buttons[ 0 ].m_Command.Get(), "override_attr" );
	const ZolPropertyRowButton &optional = info.m_Buttons[ 1 ];
	EXPECT_TRUE( optional.m_Command.IsEmpty() );
	EXPECT_TRUE( optional.m_bDisplayOnly );
	EXPECT_STREQ( optional.m_Tooltip.Get(), "Optional properties not fully supported in property editor (text editor required)" );
	EXPECT_STREQ( optional.m_Icon.Get(), "game:tools/images/propertyeditor/attr_alert.png" );
	EXPECT_TRUE( info.m_bReadOnly );
}

TEST_F( ToolAttrDomainButtonsTest, CommandsWithAndWithoutArgumentsAndTheWarningWhenOneFails )
{
	CUtlVector<CUtlString> unused;
	( void )unused;
	m_Domain.RunButtonCommand( "DoIt", Target( &m_Attr ), nullptr );
	// With an argument the attribute is asked with it first; "not handled" falls through.
	m_Domain.RunButtonCommand( "DoIt", Target( &m_Attr ), "42" );
	EXPECT_EQ( m_Attr.m_Commands, ( std::vector<std::string>{ "DoIt", "DoIt(42)", "DoIt" } ) );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 0 );
	m_Attr.m_nArgumentAnswer = TOOLATTR_COMMAND_DONE;
	m_Domain.RunButtonCommand( "DoIt", Target( &m_Attr ), "7" );
	EXPECT_EQ( m_Attr.m_Commands.back(), "DoIt(7)" );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 0 );

	CWarningCollector warnings;
	m_Attr.m_nCommandAnswer = TOOLATTR_COMMAND_FAILED;
	m_Domain.RunButtonCommand( "Explode", Target( &m_Attr ), nullptr );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 1 );
	ASSERT_EQ( warnings.m_Warnings.size(), 1u );
	EXPECT_EQ( warnings.m_Warnings[ 0 ], "ToolAttr command 'Explode' failed.\n" );
	m_Attr.m_nArgumentAnswer = TOOLATTR_COMMAND_FAILED;
	m_Domain.RunButtonCommand( "Explode", Target( &m_Attr ), "1" );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 2 );
	// The alert button does nothing, and fails nothing.
	m_Domain.RunButtonCommand( "alert_attr", Target( &m_Attr ), nullptr );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 2 );
}

TEST_F( ToolAttrDomainButtonsTest, InsertingIntoAnArrayOfOwnedObjectsPicksTheType )
{
	m_Attr.m_bArray = true;
	ZolPropertyTarget array = Target( &m_Attr );
	// No types to pick from: a beep, nothing inserted.
	EXPECT_EQ( m_Domain.ModifyArray( array, {}, PROPED_ARRAY_INSERT, 0, 0 ), 0 );
	EXPECT_EQ( m_Prompt.GetBeepCount(), 1 );
	EXPECT_TRUE( m_Attr.m_Elements.empty() );

	m_Attr.m_Types = { "CSpring", "CDamper" };
	m_Prompt.ExpectPickItem( 1, "New Item Type" );
	EXPECT_EQ( m_Domain.ModifyArray( array, {}, PROPED_ARRAY_INSERT, 0, 0 ), 1 );
	ASSERT_EQ( m_Prompt.GetRecords().Count(), 1 );
	EXPECT_EQ( m_Prompt.GetRecords()[ 0 ].m_Items.Count(), 2 );
	m_Prompt.ExpectPickItem( -1, "New Item Type" ); // cancelled
	EXPECT_EQ( m_Domain.ModifyArray( array, {}, PROPED_ARRAY_INSERT, 0, 0 ), 0 );
	m_Prompt.ExpectPickItem( 0, "New Item Type" );
	EXPECT_EQ( m_Domain.ModifyArray( array, {}, PROPED_ARRAY_INSERT, 1, 0 ), 1 );
	EXPECT_EQ( m_Attr.m_Elements, ( std::vector<std::string>{ "CDamper", "CSpring" } ) );
	EXPECT_EQ( m_Domain.ModifyArray( array, {}, PROPED_ARRAY_SWAP, 0, 1 ), 1 );
	EXPECT_EQ( m_Attr.m_Elements, ( std::vector<std::string>{ "CSpring", "CDamper" } ) );
	EXPECT_EQ( m_Domain.ModifyArray( array, {}, PROPED_ARRAY_REMOVE, 0, 1 ), 1 );
	EXPECT_EQ( m_Attr.m_Elements, ( std::vector<std::string>{ "CDamper" } ) );
	EXPECT_FALSE( m_Prompt.HasFailures() );
	EXPECT_EQ( m_Prompt.GetPendingCount(), 0 );
}

// The host side of an apply: records the modify types it was handed.
class CRecordingApplyHost : public IPropertyEditorApplyHost
{
public:
	void Apply( CPropertyEditorEditSlots *pEditor, PropEdModifyType_t eModifyType ) override
	{
		m_Applied.push_back( std::to_string( eModifyType ) + ( pEditor->IsModified() ? "w" : "" ) );
		pEditor->ClearModified();
	}
	std::vector<std::string> m_Applied; // modify type, "w" when the value was written
};

struct SlotCase_t
{
	const char *m_pName;
	std::vector<void ( CPropertyEditorEditSlots::* )()> m_Slots;
	std::vector<std::string> m_Expected;
};

class PropertyEditorSlotsTest : public testing::TestWithParam<SlotCase_t>
{
};

TEST_P( PropertyEditorSlotsTest, SendsTheModifyTypesInOrder )
{
	CRecordingApplyHost host;
	CPropertyEditorEditSlots slots;
	slots.Initialize( &host );
	for ( auto pSlot : GetParam().m_Slots )
		( slots.*pSlot )();
	EXPECT_EQ( host.m_Applied, GetParam().m_Expected );
}

using S = CPropertyEditorEditSlots;
INSTANTIATE_TEST_SUITE_P( Sequences, PropertyEditorSlotsTest,
	testing::Values( SlotCase_t{ "OneShotUnconditional", { &S::UpdateAttributesFromEditor_OneShot_Unconditional }, { "0w" } },
		SlotCase_t{ "OneShotIfModifiedUnmodified", { &S::UpdateAttributesFromEditor_OneShot_IfModified }, { "0" } },
		SlotCase_t{ "OneShotIfModified", { &S::IndicateEditorStateModified, &S::UpdateAttributesFromEditor_OneShot_IfModified }, { "0w" } },
		SlotCase_t{ "DragBeginContinueEnd",
			{ &S::InitIncrementalOperation, &S::UpdateAttributesFromEditor_Incremental, &S::UpdateAttributesFromEditor_Incremental, &S::TermIncrementalOperation },
			{ "1w", "2w", "3w" } },
		SlotCase_t{ "TermWithoutUpdateSendsNothing", { &S::InitIncrementalOperation, &S::TermIncrementalOperation }, {} },
		SlotCase_t{ "AutomaticInsideADrag",
			{ &S::InitIncrementalOperation, &S::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_Unconditional,
				&S::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified, &S::TermIncrementalOperation },
			{ "1w", "2w", "3w" } },
		SlotCase_t{ "AutomaticOutsideADrag",
			{ &S::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_Unconditional, &S::UpdateAttributesFromEditor_AutomaticOneShotOrIncremental_IfModified },
			{ "0w", "0" } } ),
	[]( const testing::TestParamInfo<SlotCase_t> &info ) { return info.param.m_pName; } );
} // namespace
