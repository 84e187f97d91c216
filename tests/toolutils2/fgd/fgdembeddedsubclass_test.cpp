// Typed data references: a field that holds the data of a subclass picked by name is
// edited as a table of a generated class. Its selector lists the host's subclasses, the
// host maps the picked name to the class whose members the table shows, and the table
// keeps its embedded subclass tag through every write and through the file.

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/schema/schemasystem.h"
#include "core/schema/schemasystemtypescope.h"
#include "tools/toolutils2/fgd/entitysubclasshost.h"
#include "tools/toolutils2/fgd/fgdkv3defaults.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/fgdvalue.h"
#include "tools/toolutils2/fgd/gamedata.h"
#include "tools/toolutils2/fgd/kv3datawithfgdclass.h"
#include "tools/toolutils2/fgd/kv3fgdtoolattr.h"
#include "tools/toolutils2/fgd/zolfgdfromschema.h"
#include "tools/toolutils2/toolattr/toolattredit.h"

namespace
{
constexpr const char *s_pszSparkType = "CFgdTestSparkData";

struct ListRequest_t
{
	std::string m_ElementType;
	int m_nScope;
};

// What the host was asked while the classes were made.
std::vector<ListRequest_t> &ListRequests()
{
	static std::vector<ListRequest_t> s_Requests;
	return s_Requests;
}

const CSchemaClassInfo *RegisterSchemaClasses()
{
	CSchemaSystemTypeScope *pScope = SchemaSystem()->FindOrCreateTypeScopeForModule( "fgdembeddedsubclass_test" );
	CSchemaClassInfo *pHot = pScope->CreateClass( "CFgdTestSparkHot" );
	pHot->AddField( "m_flHeat", pScope->GetBuiltinType( SCHEMA_BUILTIN_FLOAT32 ) );

	CSchemaClassInfo *pOwner = pScope->CreateClass( "CFgdTestSparkOwner" );
	const CSchemaType *pByType = pScope->GetTypedDataRefType( s_pszSparkType, 0, 16 );
	pOwner->AddField( "m_Spark", pByType );
	pOwner->AddField( "m_Sparks", pScope->GetCollectionType( pByType, 24 ) );
	pOwner->AddField( "m_Scoped", pScope->GetTypedDataRefType( "", 3, 16 ) );
	pOwner->AddField( "m_flRate", pScope->GetBuiltinType( SCHEMA_BUILTIN_FLOAT32 ) );
	return pOwner;
}

// One set for the whole process: attributes are cached per variable for the life of the
// process, so the records they point into must live as long.
struct SparkWorld_t
{
	CGameData m_GameData;
	const CGameDataClass *m_pOwner = nullptr;
	const CGameDataClass *m_pHot = nullptr;
	const CGameDataClass *m_pPlainOwner = nullptr;
};

const SparkWorld_t &SparkWorld()
{
	static SparkWorld_t *s_pWorld = [] {
		auto *pWorld = new SparkWorld_t;
		SetEntitySubclassList( []( const char *pszElementType, int nScope, CUtlVector<CUtlString> *pNames ) {
			ListRequests().push_back( { pszElementType, nScope } );
			pNames->AddToTail( CUtlString( "spark_hot" ) );
			pNames->AddToTail( CUtlString( "spark_cold" ) );
		} );
		const CSchemaClassInfo *pOwner = RegisterSchemaClasses();
		CZolFgdFromSchema converter( &pWorld->m_GameData, "fgdembeddedsubclass_test" );
		pWorld->m_pOwner = converter.FindOrConvertClass( pOwner );
		pWorld->m_pHot = converter.FindOrConvertClass( SchemaSystem()->FindTypeScopeForModule( "fgdembeddedsubclass_test" )->FindDeclaredClass( "CFgdTestSparkHot" ) );
		SetEntitySubclassList( nullptr );

		// A plain struct from text, to show that only generated classes are tagged.
		static constexpr const char *s_pszText = R"(
@Struct = Range [
	m_flMin(float) : "Min" : "0"
]
@PointClass = PlainOwner [
	m_Range(struct(Range)) : "Range"
	m_flRate(float) : "Rate" : "100"
]
)";
		CFgdReader reader( &pWorld->m_GameData, "" );
		reader.LoadGameDataFromText( "plain.fgd", s_pszText, strlen( s_pszText ) );
		pWorld->m_pPlainOwner = pWorld->m_GameData.FindClass( "PlainOwner" );
		return pWorld;
	}();
	return *s_pWorld;
}

class FgdEmbeddedSubClass : public testing::Test
{
protected:
	void SetUp() override
	{
		m_pWorld = &SparkWorld();
		ASSERT_NE( m_pWorld->m_pOwner, nullptr );
		ASSERT_NE( m_pWorld->m_pHot, nullptr );
		ASSERT_NE( m_pWorld->m_pPlainOwner, nullptr );
	}
	void TearDown() override { SetEntitySubclassLookup( nullptr ); }

	const CGameDataVariable &Variable( const char *pszName ) const
	{
		const CGameDataVariable *pVar = m_pWorld->m_pOwner->FindVariable( pszName );
		EXPECT_NE( pVar, nullptr ) << pszName;
		static CGameDataVariable s_Missing;
		return pVar ? *pVar : s_Missing;
	}

	// The host maps "spark_hot" to the class of that name in the set; others are unknown.
	static void InstallHotLookup( int *pCalls )
	{
		SetEntitySubclassLookup( [ pCalls ]( const char *pszSubclass ) -> const char * {
			++*pCalls;
			return !strcmp( pszSubclass, "spark_hot" ) ? "CFgdTestSparkHot" : nullptr;
		} );
	}

	const SparkWorld_t *m_pWorld = nullptr;
};

TEST_F( FgdEmbeddedSubClass, ReferenceByElementTypeEditsGeneratedClassWithHostSubclasses )
{
	const CGameDataVariable &spark = Variable( "m_Spark" );
	EXPECT_EQ( spark.GetType(), GDTYPE_STRUCT );
	EXPECT_STREQ( spark.m_FullType.m_Param, "EmbeddedSubClass_CFgdTestSparkData" );
	const CGameDataClass *pEmbedded = spark.GetStructClass();
	ASSERT_NE( pEmbedded, nullptr );
	EXPECT_TRUE( pEmbedded->GetMetaBool( "IsEmbeddedSubClass" ) );

	const CGameDataVariable *pSelector = pEmbedded->GetSelectorVariable();
	ASSERT_NE( pSelector, nullptr );
	ASSERT_NE( pSelector->m_pItemSet, nullptr );
	const CUtlVector<GameDataItem_t> &items = pSelector->m_pItemSet->m_Items;
	ASSERT_EQ( items.Count(), 3 );
	EXPECT_STREQ( items[ 0 ].m_FriendlyName, "(No class selected)" );
	EXPECT_STREQ( items[ 1 ].m_Value, "spark_hot" );
	EXPECT_STREQ( items[ 2 ].m_Value, "spark_cold" );

	// The generated class is made once, and the host asked once, though two fields name
	// the element type.
	int nByType = 0;
	for ( const ListRequest_t &request : ListRequests() )
		nByType += request.m_ElementType == s_pszSparkType;
	EXPECT_EQ( nByType, 1 );
	EXPECT_EQ( Variable( "m_Sparks" ).GetStructClass(), pEmbedded );
}

TEST_F( FgdEmbeddedSubClass, ReferenceByScopeIsNamedByScopeNumber )
{
	const CGameDataVariable &scoped = Variable( "m_Scoped" );
	EXPECT_EQ( scoped.GetType(), GDTYPE_STRUCT );
	EXPECT_STREQ( scoped.m_FullType.m_Param, "EmbeddedSubClass_Scope_3" );
	ASSERT_NE( scoped.GetStructClass(), nullptr );
	bool bAskedByScope = false;
	for ( const ListRequest_t &request : ListRequests() )
		bAskedByScope |= request.m_ElementType.empty() && request.m_nScope == 3;
	EXPECT_TRUE( bAskedByScope );
}

TEST_F( FgdEmbeddedSubClass, VectorOfReferencesIsArrayOfGeneratedTables )
{
	const CGameDataVariable &sparks = Variable( "m_Sparks" );
	EXPECT_EQ( sparks.GetType(), GDTYPE_ARRAY );
	EXPECT_EQ( sparks.GetTypeAtDepth( 1 ), GDTYPE_STRUCT );
	EXPECT_STREQ( sparks.m_FullType.m_Param, "EmbeddedSubClass_CFgdTestSparkData" );
	EXPECT_TRUE( sparks.m_DefaultKV3.IsNull() || sparks.m_DefaultKV3.IsArray() ) << "an array default must not become a table";
}

TEST_F( FgdEmbeddedSubClass, DefaultAndTextWritesOfEmbeddedTableCarryTheTag )
{
	const CGameDataVariable &spark = Variable( "m_Spark" );
	ASSERT_TRUE( spark.m_DefaultKV3.IsTable() );
	EXPECT_EQ( spark.m_DefaultKV3.GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );

	KeyValues3 written;
	WriteFGDValue( &written, spark, 0, "" );
	ASSERT_TRUE( written.IsTable() );
	EXPECT_EQ( written.GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );

	KeyValues3 element;
	WriteFGDValue( &element, Variable( "m_Sparks" ), 1, "" );
	ASSERT_TRUE( element.IsTable() );
	EXPECT_EQ( element.GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );

	KeyValues3 plain;
	WriteFGDValue( &plain, *m_pWorld->m_pPlainOwner->FindVariable( "m_Range" ), 0, "" );
	ASSERT_TRUE( plain.IsTable() );
	EXPECT_EQ( plain.GetSubType(), KV3_SUBTYPE_UNSPECIFIED );
}

TEST_F( FgdEmbeddedSubClass, TagSurvivesSaveAndLoadOfTheFile )
{
	KeyValues3 tree;
	tree.SetToEmptyTable();
	KeyValues3 *pSpark = tree.FindOrCreateMember( "m_Spark" );
	WriteFGDValue( pSpark, Variable( "m_Spark" ), 0, "" );
	pSpark->SetMemberString( "_class", "spark_hot" );

	CUtlString text;
	ASSERT_TRUE( SaveKV3ToString( &tree, &text, KV3_FORMAT_GENERIC ) );
	KeyValues3 loaded;
	CUtlString error;
	ASSERT_TRUE( LoadKV3FromText( &loaded, &error, text.Get(), text.Length(), KV3_FORMAT_GENERIC ) ) << error.Get() << "\n" << text.Get();
	const KeyValues3 *pLoaded = loaded.FindMember( "m_Spark" );
	ASSERT_NE( pLoaded, nullptr );
	EXPECT_EQ( pLoaded->GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
	EXPECT_STREQ( pLoaded->GetMemberString( "_class" ), "spark_hot" );
}

TEST_F( FgdEmbeddedSubClass, MemberWriteRetagsAnUntaggedStoredTable )
{
	CKV3DataWithFGDClass data( &m_pWorld->m_GameData, m_pWorld->m_pOwner );
	data.GetKV3ForModify()->SetMemberEmptyTable( "m_Spark" ); // as an older file stored it
	HToolAttrTableInstance handle = data.GetHandle();
	IBaseToolAttr *pSpark = data.FindAttribute( handle, "m_Spark" );
	ASSERT_NE( pSpark, nullptr );
	HToolAttrTableInstance sparkHandle = pSpark->GetTableInstance( handle );
	ASSERT_TRUE( sparkHandle.IsValid() );
	IBaseToolAttr *pName = sparkHandle.m_pTable->FindAttribute( sparkHandle, "_my_subclass_name" );
	ASSERT_NE( pName, nullptr );

	ASSERT_TRUE( pName->AsValue()->SetFromString( sparkHandle, "_tip", 0 ) );
	const KeyValues3 *pStored = data.GetKV3()->FindMember( "m_Spark" );
	ASSERT_NE( pStored, nullptr );
	EXPECT_EQ( pStored->GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
	EXPECT_STREQ( pStored->GetMemberString( "_my_subclass_name" ), "_tip" );
	EXPECT_EQ( GetOpenAttrEditCount(), 0 );
}

TEST_F( FgdEmbeddedSubClass, InsertedArrayElementIsTaggedTable )
{
	CKV3DataWithFGDClass data( &m_pWorld->m_GameData, m_pWorld->m_pOwner );
	HToolAttrTableInstance handle = data.GetHandle();
	IBaseToolAttr *pSparks = data.FindAttribute( handle, "m_Sparks" );
	ASSERT_NE( pSparks, nullptr );
	ASSERT_NE( pSparks->AsArray(), nullptr );
	ASSERT_NE( pSparks->AsArray()->InsertElement( handle, 0 ), nullptr );

	const KeyValues3 *pArray = data.GetKV3()->FindMember( "m_Sparks" );
	ASSERT_NE( pArray, nullptr );
	ASSERT_EQ( pArray->GetArrayElementCount(), 1 );
	const KeyValues3 *pElement = pArray->GetArrayElement( 0 );
	ASSERT_TRUE( pElement->IsTable() );
	EXPECT_EQ( pElement->GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
}

TEST_F( FgdEmbeddedSubClass, HostLookupMapsPickedSubclassToItsClass )
{
	int nCalls = 0;
	InstallHotLookup( &nCalls );
	const CGameDataClass *pEmbedded = Variable( "m_Spark" ).GetStructClass();
	KeyValues3 table;
	table.SetToEmptyTable();
	table.SetMemberString( "_class", "spark_hot" );
	EXPECT_EQ( ResolveFGDClass( pEmbedded, &table ), m_pWorld->m_pHot );
	EXPECT_EQ( nCalls, 1 );

	// Imprint fills in the members of the class the host named and keeps the pick and
	// the generated class's own members: that class isn't a base of the host's.
	ImprintFGDClassOnKV3( &table, pEmbedded );
	EXPECT_TRUE( table.HasMember( "m_flHeat" ) );
	EXPECT_TRUE( table.HasMember( "_my_subclass_name" ) );
	EXPECT_STREQ( table.GetMemberString( "_class" ), "spark_hot" );
}

TEST_F( FgdEmbeddedSubClass, LoadKeepsPickWithoutHostAndRestoresTag )
{
	// No lookup installed, as in a tool that can't ask the host: the pick must survive.
	CUtlString error;
	constexpr const char *s_pszFile = "{ m_Spark = { _class = \"spark_cold\" _my_subclass_name = \"_tip\" } }";
	KeyValues3 tree;
	ASSERT_TRUE( LoadKV3FromText( &tree, &error, s_pszFile, strlen( s_pszFile ), KV3_FORMAT_GENERIC, KV3_LOAD_FRAGMENT ) ) << error.Get();
	ImprintFGDClassOnKV3( &tree, m_pWorld->m_pOwner );
	const KeyValues3 *pSpark = tree.FindMember( "m_Spark" );
	ASSERT_NE( pSpark, nullptr );
	EXPECT_STREQ( pSpark->GetMemberString( "_class" ), "spark_cold" );
	EXPECT_STREQ( pSpark->GetMemberString( "_my_subclass_name" ), "_tip" );
	EXPECT_EQ( pSpark->GetSubType(), KV3_SUBTYPE_TABLE_EMBEDDED_SUBCLASS );
}

TEST_F( FgdEmbeddedSubClass, PanelRowsOfPickedSubclassComeFromTheHostsClass )
{
	int nCalls = 0;
	InstallHotLookup( &nCalls );
	CKV3DataWithFGDClass data( &m_pWorld->m_GameData, m_pWorld->m_pOwner );
	data.GetKV3ForModify()->SetMemberEmptyTable( "m_Spark" )->SetMemberString( "_class", "spark_hot" );
	HToolAttrTableInstance handle = data.GetHandle();
	IBaseToolAttr *pSpark = data.FindAttribute( handle, "m_Spark" );
	ASSERT_NE( pSpark, nullptr );
	HToolAttrTableInstance sparkHandle = pSpark->GetTableInstance( handle );
	ASSERT_TRUE( sparkHandle.IsValid() );
	EXPECT_NE( sparkHandle.m_pTable->FindAttribute( sparkHandle, "m_flHeat" ), nullptr );
	EXPECT_NE( sparkHandle.m_pTable->FindAttribute( sparkHandle, "_my_subclass_name" ), nullptr );
}

TEST_F( FgdEmbeddedSubClass, SubclassNameIsNeverTakenAsClassName )
{
	const CGameDataClass *pEmbedded = Variable( "m_Spark" ).GetStructClass();
	KeyValues3 table;
	table.SetToEmptyTable();
	// Even a stored text that happens to be a class name goes through the host first.
	table.SetMemberString( "_class", "CFgdTestSparkHot" );
	EXPECT_EQ( ResolveFGDClass( pEmbedded, &table ), pEmbedded ) << "no lookup installed";

	int nCalls = 0;
	InstallHotLookup( &nCalls );
	EXPECT_EQ( ResolveFGDClass( pEmbedded, &table ), pEmbedded ) << "the host doesn't know that subclass";
	table.SetMemberString( "_class", "" );
	EXPECT_EQ( ResolveFGDClass( pEmbedded, &table ), pEmbedded );
	EXPECT_EQ( nCalls, 1 ) << "an empty name is no subclass and isn't asked for";
}

TEST_F( FgdEmbeddedSubClass, PlainPolymorphicSelectorDoesNotAskTheHost )
{
	int nCalls = 0;
	InstallHotLookup( &nCalls );
	CGameData &gameData = const_cast<CGameData &>( m_pWorld->m_GameData );
	static constexpr const char *s_pszText = R"(
@Struct metadata { is_polymorphic = true } = FgdEmbedShape [
	m_flSize(float) : "Size" : "1"
]
@Struct base(FgdEmbedShape) = FgdEmbedRing [
	m_flInner(float) : "Inner" : "0.5"
]
)";
	if ( !gameData.FindClass( "FgdEmbedShape" ) )
	{
		CFgdReader reader( &gameData, "" );
		ASSERT_TRUE( reader.LoadGameDataFromText( "shapes.fgd", s_pszText, strlen( s_pszText ) ) );
	}
	KeyValues3 table;
	table.SetToEmptyTable();
	table.SetMemberString( "_class", "FgdEmbedRing" );
	EXPECT_EQ( ResolveFGDClass( gameData.FindClass( "FgdEmbedShape" ), &table ), gameData.FindClass( "FgdEmbedRing" ) );
	EXPECT_EQ( nCalls, 0 );
}

TEST_F( FgdEmbeddedSubClass, CapturingDefaultLeavesClassDefaultInForce )
{
	CKV3DataWithFGDClass data( &m_pWorld->m_GameData, m_pWorld->m_pPlainOwner );
	HToolAttrTableInstance handle = data.GetHandle();
	IBaseToolAttr *pRate = data.FindAttribute( handle, "m_flRate" );
	ASSERT_NE( pRate, nullptr );
	ASSERT_TRUE( pRate->AsValue()->SetFromString( handle, "42", 0 ) );
	EXPECT_FALSE( pRate->CaptureAsDefault( handle ) );
	EXPECT_FALSE( pRate->ApplyCapturedDefault( handle, handle ) );

	// A key removed at save reads back as the class default, so reset must give that too.
	ASSERT_TRUE( pRate->ResetToDefault( handle ) );
	CUtlString text;
	pRate->AsValue()->GetAsString( handle, &text );
	EXPECT_STREQ( text, "100" );
	KeyValues3 saved;
	saved.CopyFrom( *data.GetKV3() );
	RemoveKeysAtDefault( &saved, m_pWorld->m_pPlainOwner );
	EXPECT_FALSE( saved.HasMember( "m_flRate" ) );
}
} // namespace
