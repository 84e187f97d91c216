// Variables as their editors see them: the typed members of a variable node, their
// attributes, a type change, the typed "Value", the note of shared variables, and the
// value forms the state and the document agree on.

#include <gtest/gtest.h>

#include <cmath>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "pulse_runtime_lib/valuetypes/pulsevaluefulltype.h"
#include "tests/zoldoc/zoldoctestsupport.h"
#include "tools/toolutils2/toolattr/ibasetoolattr.h"
#include "tools/toolutils2/toolattr/itoolattrtable.h"
#include "tools/toolutils2/toolattr/itoolattrvalue.h"
#include "tools/toolutils2/toolattr/toolattrhost.h"
#include "zoldoc_lib/izolnodevariablecontext.h"
#include "zoldoc_lib/zolnamedvalue.h"
#include "zoldoc_lib/zolnamedvaluecache.h"
#include "zoldoc_lib/zolrootnode.h"
#include "zoldoc_lib/zolsharedvariablenote.h"
#include "zoldoc_lib/zolvariablenode.h"

namespace
{
IBaseToolAttr *FindAttr( HToolAttrTableInstance handle, const char *pName )
{
	return handle.m_pTable ? handle.m_pTable->FindAttribute( handle, pName ) : nullptr;
}

std::string Friendly( IBaseToolAttr *pAttr, HToolAttrTableInstance handle )
{
	CUtlString name;
	pAttr->GetFriendlyName( handle, &name );
	return name.Get();
}

class ZolVariable : public ZolDocFixture
{
protected:
	CZolVariableNode *Variable( int nIndex = 0 ) { return m_Doc.GetRoot()->GetNode( PARTICLE_FUNCTION_NAMED_VALUE_LOCALS, nIndex )->AsVariableNode(); }
	HToolAttrTableInstance ConfigHandle( CZolVariableNode *pNode )
	{
		return CZolVariableNode::GetDefaultConfigAttribute()->GetTableInstance( pNode->GetTableInstance() );
	}
};
} // namespace

TEST_F( ZolVariable, TypedMembersLoadAndSaveWithoutTheirDefaults )
{
	KeyValues3 element;
	element.SetToEmptyTable();
	element.SetMemberString( "m_Name", "FireHeight" );
	element.SetMemberString( "m_ValueType", "PVAL_FLOAT" );
	KeyValues3 *pConfig = element.SetMemberEmptyTable( "m_DefaultConfig" );
	pConfig->SetMemberDouble( "m_ConfigValue", 48.0 );
	pConfig->SetMemberString( "m_strAttachmentName", "hand" );
	CZolVariableNode *pNode = m_Doc.AddVariable( "x", CPulseValueFullType( PVAL_VEC3 ) );
	pNode->LoadFromKV3( &element );
	EXPECT_EQ( pNode->GetValueType(), CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_STREQ( pNode->GetDefaultConfig().m_strAttachmentName.Get(), "hand" );
	EXPECT_STREQ( pNode->GetDefaultConfig().m_strEntityScope.Get(), "self" );
	EXPECT_EQ( pNode->GetReadKV3()->FindMember( "m_DefaultConfig" ), nullptr ) << "taken out of the table while the node lives";

	KeyValues3 saved;
	pNode->SaveToKV3( &saved );
	EXPECT_STREQ( saved.GetMemberString( "m_ValueType" ), "PVAL_FLOAT" );
	const KeyValues3 *pSaved = saved.FindMember( "m_DefaultConfig" );
	ASSERT_NE( pSaved, nullptr );
	EXPECT_EQ( pSaved->GetMemberCount(), 2 ) << "only the value and the attachment differ from their defaults";
	EXPECT_EQ( pSaved->GetMemberFloat( "m_ConfigValue" ), 48.0f );

	// An unreadable type keeps the type a new variable has.
	element.SetMemberString( "m_ValueType", "PVAL_NOTHING" );
	pNode->LoadFromKV3( &element );
	EXPECT_EQ( pNode->GetValueType(), CPulseValueFullType( PVAL_VEC3 ) );
}

TEST_F( ZolVariable, AttributesNameTheTypeTheDefaultConfigAndItsMembers )
{
	CZolVariableNode *pNode = m_Doc.AddVariable( "Wind", CPulseValueFullType( PVAL_VEC3 ) );
	HToolAttrTableInstance handle = pNode->GetTableInstance();
	IBaseToolAttr *pType = FindAttr( handle, "m_ValueType" );
	IBaseToolAttr *pConfig = FindAttr( handle, "m_DefaultConfig" );
	ASSERT_TRUE( pType && pConfig );
	EXPECT_EQ( Friendly( pType, handle ), "Variable Type" );
	EXPECT_EQ( Friendly( pConfig, handle ), "Default Config" );
	EXPECT_STREQ( pType->GetHelpId(), "attr.ParticleNamedValueSource_t.m_ValueType" );
	CUtlVector<ToolAttrGenericChoice_t> choices;
	ASSERT_TRUE( pType->AsValue()->GetChoices( nullptr, handle, &choices ) );
	EXPECT_EQ( choices.Count(), 5 );
	EXPECT_STREQ( choices[ 4 ].m_Value, "PVAL_RESOURCE:tmsh" );

	HToolAttrTableInstance config = ConfigHandle( pNode );
	CUtlVector<IBaseToolAttr *> members;
	config.m_pTable->GetAttributes( config, &members );
	std::string names;
	for ( IBaseToolAttr *pMember : members )
		names += Friendly( pMember, config ) + "|";
	EXPECT_EQ( names, "Configuration Name|Value|Binding Expression|Attach Type|Attach Entity Scope|Attach Location Name|" );
}

TEST_F( ZolVariable, TypeChangeWritesTheNewTypesDefaultAndUndoBringsTheOldBack )
{
	CZolVariableNode *pNode = m_Doc.AddVariable( "Wind", CPulseValueFullType( PVAL_VEC3 ) );
	m_Doc.FlushModifiedNodes();
	ASSERT_TRUE( FindAttr( ConfigHandle( pNode ), "m_ConfigValue" )->AsValue()->SetFromString( ConfigHandle( pNode ), "1 2 3", 0 ) );
	m_Recorder.Clear();

	m_Doc.BeginEdit( "Set Variable Type", true );
	IBaseToolAttr *pType = FindAttr( pNode->GetTableInstance(), "m_ValueType" );
	ASSERT_TRUE( pType->AsValue()->SetFromString( pNode->GetTableInstance(), "PVAL_FLOAT", 0 ) );
	EXPECT_EQ( pNode->GetValueType(), CPulseValueFullType( PVAL_FLOAT ) );
	EXPECT_TRUE( pNode->GetDefaultConfig().m_ConfigValue.IsNumber() );
	EXPECT_EQ( pNode->GetDefaultConfig().m_ConfigValue.GetFloat(), 0.0f );
	CUtlString text;
	FindAttr( ConfigHandle( pNode ), "m_ConfigValue" )->AsValue()->GetAsString( ConfigHandle( pNode ), &text );
	EXPECT_STREQ( text.Get(), "0" ) << "the value row now edits a float";
	m_Doc.FlushModifiedNodes();
	EXPECT_EQ( m_Recorder.Joined(), "Modified Topology Nodes" );
	EXPECT_FALSE( pType->AsValue()->SetFromString( pNode->GetTableInstance(), "not a type", 0 ) );

	m_Doc.Undo();
	pNode = Variable();
	EXPECT_EQ( pNode->GetValueType(), CPulseValueFullType( PVAL_VEC3 ) );
	FindAttr( ConfigHandle( pNode ), "m_ConfigValue" )->AsValue()->GetAsString( ConfigHandle( pNode ), &text );
	EXPECT_STREQ( text.Get(), "1 2 3" ) << "the undo copy links its record back to its own type";
}

struct ValueCase_t
{
	const char *m_pType;
	const char *m_pText;
	const char *m_pExpected; // null: refused
	int m_nAttrType;
};

class ZolVariableValue : public ZolVariable, public ::testing::WithParamInterface<ValueCase_t>
{
};

TEST_P( ZolVariableValue, IsTypedByTheVariableType )
{
	const ValueCase_t &c = GetParam();
	CZolVariableNode *pNode = m_Doc.AddVariable( "v", CPulseValueFullType::Parse( c.m_pType ) );
	HToolAttrTableInstance config = ConfigHandle( pNode );
	IBaseToolAttr *pValue = FindAttr( config, "m_ConfigValue" );
	ASSERT_NE( pValue, nullptr );
	EXPECT_EQ( pValue->GetAttrType(), c.m_nAttrType );
	EXPECT_EQ( pValue->AsValue()->SetFromString( config, c.m_pText, 0 ), c.m_pExpected != nullptr );
	EXPECT_EQ( pValue->IsWritable( config ), c.m_pExpected != nullptr );
	if ( !c.m_pExpected )
		return;
	CUtlString text;
	pValue->AsValue()->GetAsString( config, &text );
	EXPECT_STREQ( text.Get(), c.m_pExpected );
	// What the file stores reads back the same.
	KeyValues3 saved;
	pNode->SaveToKV3( &saved );
	pNode->LoadFromKV3( &saved );
	pValue->AsValue()->GetAsString( ConfigHandle( pNode ), &text );
	EXPECT_STREQ( text.Get(), c.m_pExpected );
}

INSTANTIATE_TEST_SUITE_P( Types, ZolVariableValue,
	::testing::Values( ValueCase_t{ "PVAL_FLOAT", "12.5", "12.5", TOOLATTR_TYPE_FLOAT }, ValueCase_t{ "PVAL_VEC3", "1 2 3", "1 2 3", TOOLATTR_TYPE_VECTOR3 },
		ValueCase_t{ "PVAL_TRANSFORM", "1 2 3 0 90 0", "1 2 3 0 90 0", TOOLATTR_TYPE_STRUCTURED },
		ValueCase_t{ "PVAL_RESOURCE:tmsh", "models/crate.tmsh", "models/crate.tmsh", TOOLATTR_TYPE_STRING },
		ValueCase_t{ "PVAL_PARTICLE_EHANDLE", "7", nullptr, TOOLATTR_TYPE_UINT } ) );

struct NoteCase_t
{
	const char *m_pLabel;
	std::vector<std::tuple<const char *, const char *, int, int>> m_Records; // file, type, parent depth, child depth
	const char *m_pShared;
	const char *m_pConflict;
};

class ZolSharedVariableNote : public ::testing::TestWithParam<NoteCase_t>
{
};

TEST_P( ZolSharedVariableNote, NamesFilesAndConflicts )
{
	CUtlVector<ZolNamedValueRecord_t> records;
	ZolNamedValueRecord_t own;
	own.m_Name = "Glow";
	own.m_Type = CPulseValueFullType( PVAL_FLOAT );
	own.m_FileName = "particles/me.tfxs";
	own.m_bThisFile = true;
	records.AddToTail( own );
	for ( const auto &[ pFile, pType, nUp, nDown ] : GetParam().m_Records )
	{
		ZolNamedValueRecord_t &record = records[ records.AddToTail() ];
		record.m_Name = "glow";
		record.m_Type = CPulseValueFullType::Parse( pType );
		record.m_FileName = pFile;
		record.m_nParentDepth = nUp;
		record.m_nChildDepth = nDown;
	}
	ZolSharedVariableNote_t note;
	BuildZolSharedVariableNote( "Glow", CPulseValueFullType( PVAL_FLOAT ), records, &note );
	EXPECT_STREQ( note.m_SharedText.Get(), GetParam().m_pShared );
	EXPECT_STREQ( note.m_ConflictText.Get(), GetParam().m_pConflict );
	EXPECT_EQ( note.m_bShared, *GetParam().m_pShared != 0 );
	EXPECT_EQ( note.m_bConflict, *GetParam().m_pConflict != 0 );
	if ( note.m_bShared )
		EXPECT_STREQ( note.m_SharedIcon.Get(), "game:tools/images/zol/named_value_shared.png" );
	if ( note.m_bConflict )
		EXPECT_STREQ( note.m_AlertIcon.Get(), "game:tools/images/propertyeditor/attr_alert.png" );
}

INSTANTIATE_TEST_SUITE_P( Cases, ZolSharedVariableNote,
	::testing::Values( NoteCase_t{ "alone", {}, "", "" },
		NoteCase_t{ "parent", { { "particles/up.tfxs", "PVAL_FLOAT", 1, 0 } }, "This variable is shared with parents:\nparticles/up.tfxs", "" },
		NoteCase_t{ "child", { { "particles/down.tfxs", "PVAL_FLOAT", 0, 2 } }, "This variable is shared with children:\nparticles/down.tfxs", "" },
		NoteCase_t{ "both with a conflict",
			{ { "particles/up.tfxs", "PVAL_FLOAT", 1, 0 }, { "particles/down.tfxs", "PVAL_VEC3", 0, 1 } },
			"This variable is shared with parents and children:\nparticles/up.tfxs\nparticles/down.tfxs",
			"Conflicting types for Glow:\n(this file): PVAL_FLOAT\nparticles/up.tfxs: PVAL_FLOAT\nparticles/down.tfxs: PVAL_VEC3" } ),
	[]( const ::testing::TestParamInfo<NoteCase_t> &info ) {
		std::string name = info.param.m_pLabel;
		for ( char &c : name )
			c = std::isalnum( static_cast<unsigned char>( c ) ) ? c : '_';
		return name;
	} );

TEST( ZolNamedValue, ValuesConvertBetweenTheTypesArtistsSwitchBetween )
{
	KeyValues3 number, out;
	number.SetDouble( 4.0 );
	ZolNamedValue_Convert( CPulseValueFullType( PVAL_VEC3 ), number, &out );
	ASSERT_EQ( out.GetArrayElementCount(), 3 );
	EXPECT_EQ( out.GetArrayElement( 1 )->GetFloat(), 4.0f );
	ZolNamedValue_Convert( CPulseValueFullType( PVAL_FLOAT ), out, &number );
	EXPECT_EQ( number.GetFloat(), 4.0f );
	KeyValues3 text;
	text.SetString( "no number" );
	ZolNamedValue_Convert( CPulseValueFullType( PVAL_FLOAT ), text, &out );
	EXPECT_EQ( out.GetFloat(), 0.0f ) << "what can't be read is the default";
	ZolNamedValue_GetDefault( CPulseValueFullType( PVAL_TRANSFORM ), &out );
	Vector vPosition;
	QAngle angles( 1, 1, 1 );
	ASSERT_TRUE( ZolNamedValue_ToTransform( CPulseValueFullType( PVAL_TRANSFORM ), out, &vPosition, &angles ) );
	EXPECT_EQ( angles, QAngle() ) << "a default transform is unturned";

	for ( const QAngle &turn : { QAngle( 0, 90, 0 ), QAngle( 30, -45, 10 ), QAngle( -80, 170, -20 ) } )
	{
		float q[ 4 ];
		ZolAnglesToQuaternion( turn, q );
		QAngle back = ZolQuaternionToAngles( q );
		EXPECT_NEAR( back.x, turn.x, 1e-3f );
		EXPECT_NEAR( back.y, turn.y, 1e-3f );
		EXPECT_NEAR( back.z, turn.z, 1e-3f );
	}
}

TEST_F( ZolVariable, ConfigurationFieldsListWhatTheContextKnows )
{
	struct CContext final : IZolNodeVariableContext
	{
		void GetDomainValues( const CPulseValueFullType &type, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override
		{
			pChoices->AddToTail();
			( *pChoices )[ 0 ].m_Value = type.ToString();
		}
		void GetAttachmentNames( const char *pEntity, CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override
		{
			pChoices->AddToTail();
			( *pChoices )[ 0 ].m_Value = pEntity;
		}
		void GetConfigurationNames( CUtlVector<ToolAttrGenericChoice_t> *pChoices ) override
		{
			pChoices->AddToTail();
			( *pChoices )[ 0 ].m_Value = "preview";
		}
		void GetSharedVariables( const char *, CUtlVector<ZolNamedValueRecord_t> * ) override {}
	} context;
	RegisterZolVariableChoiceProviders( ToolAttrHost() );
	CZolVariableNode *pNode = m_Doc.AddVariable( "Size", CPulseValueFullType( PVAL_FLOAT ) );
	pNode->GetDefaultConfigForModify().m_strEntityScope = "parent";
	pNode->SetVariableContext( &context );
	HToolAttrTableInstance config = ConfigHandle( pNode );
	const std::pair<const char *, const char *> expected[] = { { "m_ConfigName", "preview" }, { "m_strAttachmentName", "parent" }, { "m_BoundValuePath", "PVAL_FLOAT" } };
	for ( const auto &[ pField, pValue ] : expected )
	{
		CUtlVector<ToolAttrGenericChoice_t> choices;
		ASSERT_TRUE( FindAttr( config, pField )->AsValue()->GetChoices( ToolAttrHost(), config, &choices ) ) << pField;
		ASSERT_EQ( choices.Count(), 1 ) << pField;
		EXPECT_STREQ( choices[ 0 ].m_Value.Get(), pValue ) << pField;
	}
}
