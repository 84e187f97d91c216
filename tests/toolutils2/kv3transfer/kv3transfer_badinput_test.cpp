#include <gtest/gtest.h>

#include <functional>
#include <ostream>
#include <string>

#include "core/kv3/keyvalues3.h"
#include "tests/toolutils2/support/reflectiontestclasses.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/kv3transfer/kv3transferresourceload.h"

namespace
{
// One bad (or merely loose) member value: what the member becomes and the exact report.
struct LenientCase_t
{
	const char *m_pszName;
	std::function<void( KeyValues3 & )> m_fnWrite;
	std::function<bool( const CTestOperator & )> m_fnCheck;
	const char *m_pszError; // "" when the read is clean
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const LenientCase_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pszName;
}

class KV3TransferLenientRead : public ::testing::TestWithParam<LenientCase_t>
{
protected:
	void SetUp() override { RegisterReflectionTestClasses(); }
};

std::string CaseName( const ::testing::TestParamInfo<LenientCase_t> &info ) { return info.param.m_pszName; }

const LenientCase_t s_LenientCases[] = {
	{ "FractionIntoInteger", []( KeyValues3 &kv ) { kv.SetMemberDouble( "m_nCount", 2.5 ); },
		[]( const CTestOperator &op ) { return op.m_nCount == 2; }, "m_nCount: Cast of 2.5 loses value information (returning 2)" },
	{ "TooLargeForByte", []( KeyValues3 &kv ) { kv.SetMemberInt( "m_nAlpha", 300 ); },
		[]( const CTestOperator &op ) { return op.m_nAlpha == 255; }, "m_nAlpha: Cast of 300 loses value information (returning 255)" },
	{ "NegativeIntoByte", []( KeyValues3 &kv ) { kv.SetMemberInt( "m_nAlpha", -1 ); },
		[]( const CTestOperator &op ) { return op.m_nAlpha == 0; }, "m_nAlpha: Cast of -1 loses value information (returning 0)" },
	{ "WholeDoubleIntoInteger", []( KeyValues3 &kv ) { kv.SetMemberDouble( "m_nCount", 7.0 ); },
		[]( const CTestOperator &op ) { return op.m_nCount == 7; }, "" },
	{ "StringIntoInteger", []( KeyValues3 &kv ) { kv.SetMemberString( "m_nCount", "ten" ); },
		[]( const CTestOperator &op ) { return op.m_nCount == 0; }, "m_nCount: Unsupported KV3 basic type 'string' (6)!" },
	{ "NullIntoInteger", []( KeyValues3 &kv ) { kv.SetMemberNull( "m_nCount" ); },
		[]( const CTestOperator &op ) { return op.m_nCount == 0; }, "" },
	{ "NumberIntoBool", []( KeyValues3 &kv ) { kv.SetMemberInt( "m_bEnabled", 0 ); },
		[]( const CTestOperator &op ) { return !op.m_bEnabled; }, "" },
	{ "HugeDoubleIntoFloat", []( KeyValues3 &kv ) { kv.SetMemberDouble( "m_flStrength", 1e300 ); },
		[]( const CTestOperator &op ) { return op.m_flStrength == std::numeric_limits<float>::max(); },
		"m_flStrength: Cast of 1e+300 loses value information (returning 3.40282e+38)" },
	{ "EnumeratorInOtherCase", []( KeyValues3 &kv ) { kv.SetMemberString( "m_nBlend", "test_blend_mod" ); },
		[]( const CTestOperator &op ) { return op.m_nBlend == TEST_BLEND_MOD; }, "" },
	{ "EnumAsNumber", []( KeyValues3 &kv ) { kv.SetMemberInt( "m_nBlend", 0 ); },
		[]( const CTestOperator &op ) { return op.m_nBlend == TEST_BLEND_NORMAL; }, "" },
	{ "EnumAsBool", []( KeyValues3 &kv ) { kv.SetMemberBool( "m_nBlend", true ); },
		[]( const CTestOperator &op ) { return op.m_nBlend == TEST_BLEND_ADD; }, "" },
	{ "UnknownEnumerator", []( KeyValues3 &kv ) { kv.SetMemberString( "m_nBlend", "TEST_BLEND_SCREEN" ); },
		[]( const CTestOperator &op ) { return op.m_nBlend == TEST_BLEND_ADD; },
		"m_nBlend: Unknown TestBlendMode_t value 'TEST_BLEND_SCREEN' (keeping TEST_BLEND_ADD)" },
	{ "EnumAsTable", []( KeyValues3 &kv ) { kv.SetMemberEmptyTable( "m_nBlend" ); },
		[]( const CTestOperator &op ) { return op.m_nBlend == TEST_BLEND_NORMAL; }, "m_nBlend: Unsupported KV3 basic type 'table' (9)!" },
	{ "NumberForNestedClass", []( KeyValues3 &kv ) { kv.SetMemberInt( "m_Start", 5 ); },
		[]( const CTestOperator &op ) { return op.m_Start.m_flValue == 1.0f; }, "m_Start: Class data is a 'int', not a table" },
	{ "NullForNestedClass", []( KeyValues3 &kv ) { kv.SetMemberNull( "m_Start" ); },
		[]( const CTestOperator &op ) { return op.m_Start.m_flValue == 1.0f; }, "" },
	{ "StringInArrayElement", []( KeyValues3 &kv ) {
		  KeyValues3 *pCurve = kv.SetMemberEmptyArray( "m_Curve" );
		  pCurve->ArrayAddToTail()->SetMemberFloat( "m_flTime", 1.0f );
		  pCurve->ArrayAddToTail()->SetMemberString( "m_flValue", "high" ); },
		[]( const CTestOperator &op ) { return op.m_Curve.size() == 2 && op.m_Curve[ 0 ].m_flTime == 1.0f && op.m_Curve[ 1 ].m_flValue == 0.0f; },
		"m_Curve[1].m_flValue: Unsupported KV3 basic type 'string' (6)!" },
	{ "TableForArray", []( KeyValues3 &kv ) { kv.SetMemberEmptyTable( "m_Weights" ); },
		[]( const CTestOperator &op ) { return op.m_Weights.empty(); }, "m_Weights: Expected an array, not a 'table' (using the default)" },
	{ "ShortVector", []( KeyValues3 &kv ) {
		  KeyValues3 *pOffset = kv.SetMemberEmptyArray( "m_vOffset" );
		  pOffset->ArrayAddToTail()->SetFloat( 4.0f );
		  pOffset->ArrayAddToTail()->SetFloat( 5.0f ); },
		[]( const CTestOperator &op ) { return op.m_vOffset == Vector( 4.0f, 5.0f, 1.0f ); }, "m_vOffset: Expected 3 numbers, found 2 (the missing ones keep their defaults)" },
	{ "ThreeChannelColourIsOpaque", []( KeyValues3 &kv ) {
		  KeyValues3 *pTint = kv.SetMemberEmptyArray( "m_Tint" );
		  for ( int n : { 10, 20, 30 } )
			  pTint->ArrayAddToTail()->SetInt( n ); },
		[]( const CTestOperator &op ) { return op.m_Tint == Color( 10, 20, 30, 255 ); }, "" },
	{ "UnknownPolymorphicClass", []( KeyValues3 &kv ) { kv.SetMemberEmptyTable( "m_pInput" )->SetMemberString( "_class", "CTestCurveInput" ); },
		[]( const CTestOperator &op ) { return op.m_pInput == nullptr; }, "m_pInput: Unknown class 'CTestCurveInput' for a 'CTestInput' (left empty)" },
	{ "PolymorphicClassOutsideTheFamily", []( KeyValues3 &kv ) { kv.SetMemberEmptyTable( "m_pInput" )->SetMemberString( "_class", "CTestOperator" ); },
		[]( const CTestOperator &op ) { return op.m_pInput == nullptr; }, "m_pInput: Unknown class 'CTestOperator' for a 'CTestInput' (left empty)" },
	{ "PolymorphicWithoutClassName", []( KeyValues3 &kv ) { kv.SetMemberEmptyTable( "m_pInput" )->SetMemberFloat( "m_flLiteral", 2.0f ); },
		[]( const CTestOperator &op ) { return op.m_pInput && op.m_pInput->m_flLiteral == 2.0f; },
		"m_pInput: Missing \"_class\" for a 'CTestInput' (reading it as one)" },
	{ "StringForMapIsNotLost", []( KeyValues3 &kv ) { kv.SetMemberString( "m_Named", "gravity" ); },
		[]( const CTestOperator &op ) { return op.m_Named.empty(); }, "m_Named: Expected a table, not a 'string' (using the default)" },
};

INSTANTIATE_TEST_SUITE_P( Members, KV3TransferLenientRead, ::testing::ValuesIn( s_LenientCases ), CaseName );
} // namespace

TEST_P( KV3TransferLenientRead, TakesWhatItCanAndReportsTheRestExactly )
{
	const LenientCase_t &testCase = GetParam();
	KeyValues3 kv;
	testCase.m_fnWrite( kv );
	kv.SetMemberString( "m_Name", "after the bad member" );

	CTestOperator loaded;
	CUtlString error;
	bool bSucceeded = LoadKV3ObjectInPlace( &loaded, &kv, &error );
	EXPECT_STREQ( error.Get(), testCase.m_pszError );
	EXPECT_EQ( bSucceeded, *testCase.m_pszError == '\0' );
	EXPECT_TRUE( testCase.m_fnCheck( loaded ) );
	EXPECT_STREQ( loaded.m_Name.Get(), "after the bad member" ) << "the load goes on past a bad member";
}

TEST( KV3TransferErrors, EveryProblemIsReportedOnItsOwnLine )
{
	RegisterReflectionTestClasses();
	KeyValues3 kv;
	kv.SetMemberString( "m_nCount", "many" );
	kv.SetMemberDouble( "m_nAlpha", 0.5 );
	CTestOperator loaded;
	CUtlString error;
	EXPECT_FALSE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) );
	EXPECT_STREQ( error.Get(), "m_nCount: Unsupported KV3 basic type 'string' (6)!\n"
							   "m_nAlpha: Cast of 0.5 loses value information (returning 0)" );
}

TEST( KV3TransferErrors, DepthLimitStopsReadingAndNamesThePath )
{
	RegisterReflectionTestClasses();
	KeyValues3 root;
	KeyValues3 *pLevel = &root;
	for ( int i = 0; i < 200; ++i )
	{
		pLevel = pLevel->SetMemberEmptyTable( "m_pNext" );
		pLevel->SetMemberString( "_class", "CTestChain" );
	}

	CTestChain chain;
	CUtlString error;
	EXPECT_FALSE( LoadKV3ObjectInPlace( &chain, &root, &error ) );

	std::string expectedPath = "m_pNext";
	for ( int i = 1; i < 63; ++i )
		expectedPath += ".m_pNext";
	EXPECT_EQ( std::string( error.Get() ), expectedPath + ": Stack depth limit hit (64)" );

	int nDepth = 1;
	for ( const CTestChain *pLink = chain.m_pNext.get(); pLink; pLink = pLink->m_pNext.get() )
		++nDepth;
	EXPECT_EQ( nDepth, 64 ) << "objects below the limit are not read";
}

TEST( KV3TransferErrors, DoubleSaveOfOneMemberIsReported )
{
	CKV3TransferSaveContext context;
	KeyValues3 table;
	table.SetToEmptyTable();
	context.AddMember( &table, "m_flRadius" )->SetFloat( 1.0f );
	EXPECT_TRUE( context.HasSucceeded() );
	context.AddMember( &table, "m_flRadius" )->SetFloat( 2.0f );
	EXPECT_FALSE( context.HasSucceeded() );
	EXPECT_STREQ( context.GetErrorText(), "Double-save to Member 'm_flRadius'" );
	EXPECT_EQ( table.GetMemberCount(), 1 );
	EXPECT_EQ( table.GetMemberFloat( "m_flRadius" ), 2.0f ) << "the second write overwrites";
}

TEST( KV3TransferErrors, UnsupportedClassModeNullsTheValue )
{
	CKV3TransferSaveContext context;
	KeyValues3 value;
	value.SetInt( 3 );
	EXPECT_FALSE( context.BeginClass( &value, 7, "" ) );
	EXPECT_TRUE( value.IsNull() );
	EXPECT_STREQ( context.GetErrorText(), "Failed to save unsupported class" );
}

TEST( KV3TransferErrors, PathShowsIndicesTokensAndEmptyNames )
{
	CKV3TransferLoadContext context;
	context.PushMember( "m_Children" );
	context.PushIndex( 2 );
	context.PushMember( "" );
	context.PushToken( 0xbeef );
	CUtlString path;
	context.FormatPath( path );
	EXPECT_STREQ( path.Get(), "m_Children[2].<empty member name>{0xbeef}" );
}

TEST( KV3TransferResources, MissingLoadInterfaceIsReportedByName )
{
	RegisterReflectionTestClasses();
	KeyValues3 kv;
	kv.SetMemberString( "m_hTexture", "materials/smoke.timg", KV3_SUBTYPE_STRING_RESOURCE_NAME );
	kv.SetMemberFloat( "m_flScale", 2.0f );
	CTestTextured loaded;
	CUtlString error;
	EXPECT_FALSE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) );
	EXPECT_STREQ( error.Get(), "m_hTexture: Missing required transfer interface: IKV3TransferInterface_ResourceLoad" );
	EXPECT_EQ( loaded.m_flScale, 2.0f );
}

TEST( KV3TransferResources, ClassWithoutResourcesNeedsNoInterfaces )
{
	RegisterReflectionTestClasses();
	KeyValues3 kv;
	kv.SetMemberInt( "m_nCount", 5 );
	CTestOperator loaded;
	CUtlString error;
	EXPECT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error ) ) << error.Get();
}

TEST( KV3TransferResources, StockLoaderKeepsNameAndResolvesThroughLookup )
{
	RegisterReflectionTestClasses();
	int nResource = 0;
	CKV3Transfer_EmptyResourceLoadInterface loader( [ & ]( const char *pszName, const char *pszType ) -> void * {
		return std::string( pszName ) == "materials/smoke.timg" && std::string( pszType ) == "timg" ? &nResource : nullptr;
	} );
	KeyValues3 kv;
	kv.SetMemberString( "m_hTexture", "materials\\smoke.timg" );
	CKV3TransferLoadContext context;
	context.AddInterface( IKV3TransferInterface_ResourceLoad::s_pszInterfaceName, static_cast<IKV3TransferInterface_ResourceLoad *>( &loader ) );
	CTestTextured loaded;
	CUtlString error;
	ASSERT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, &error, &context ) ) << error.Get();
	EXPECT_STREQ( loaded.m_hTexture.m_Name.Get(), "materials/smoke.timg" );
	EXPECT_EQ( loaded.m_hTexture.m_pBinding, &nResource );

	KeyValues3 saved;
	ASSERT_TRUE( SaveKV3Object( loaded, &saved, &error ) );
	EXPECT_STREQ( saved.GetMemberString( "m_hTexture" ), "materials/smoke.timg" );
	EXPECT_EQ( saved.FindMember( "m_hTexture" )->GetSubType(), KV3_SUBTYPE_STRING_RESOURCE_NAME );
}

TEST( KV3TransferResources, EmptyTextClearsHandleAndSucceeds )
{
	RegisterReflectionTestClasses();
	CKV3Transfer_EmptyResourceLoadInterface loader;
	KeyValues3 kv;
	kv.SetMemberString( "m_hTexture", "" );
	CKV3TransferLoadContext context;
	context.AddInterface( IKV3TransferInterface_ResourceLoad::s_pszInterfaceName, static_cast<IKV3TransferInterface_ResourceLoad *>( &loader ) );
	CTestTextured loaded;
	loaded.m_hTexture.m_Name = "old.timg";
	EXPECT_TRUE( LoadKV3ObjectInPlace( &loaded, &kv, nullptr, &context ) );
	EXPECT_TRUE( loaded.m_hTexture.m_Name.IsEmpty() );
	EXPECT_FALSE( loaded.m_hTexture.IsValid() );
}

TEST( KV3TransferResources, UnparsableNameAndUnloadedResourceAreReported )
{
	RegisterReflectionTestClasses();
	CKV3Transfer_AssertAlreadyLoadedResourceLoadInterface loader( []( const char *, const char * ) -> void * { return nullptr; } );
	const char *const texts[] = { "../outside.timg", "materials/smoke.timg" };
	const char *const errors[] = { "m_hTexture: Invalid timg resource name '../outside.timg' (left empty)",
		"m_hTexture: Resource 'materials/smoke.timg' (timg) is not loaded\nm_hTexture: Invalid timg resource name 'materials/smoke.timg' (left empty)" };
	for ( int i = 0; i < 2; ++i )
	{
		KeyValues3 kv;
		kv.SetMemberString( "m_hTexture", texts[ i ] );
		CKV3TransferLoadContext context;
		context.AddInterface( IKV3TransferInterface_ResourceLoad::s_pszInterfaceName, static_cast<IKV3TransferInterface_ResourceLoad *>( &loader ) );
		CTestTextured loaded;
		CUtlString error;
		EXPECT_FALSE( LoadKV3ObjectInPlace( &loaded, &kv, &error, &context ) );
		EXPECT_STREQ( error.Get(), errors[ i ] );
	}
}
