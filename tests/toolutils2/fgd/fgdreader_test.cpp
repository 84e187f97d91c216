// The FGD reader on text an author would write, and on the mistakes they make.

#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>

#include "tests/core/support/capturelogginglistener.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
bool ReadText( CGameData *pGameData, const char *pszText )
{
	CFgdReader reader( pGameData, "" );
	return reader.LoadGameDataFromText( "test.fgd", pszText, strlen( pszText ) );
}

struct FgdErrorCase_t
{
	const char *m_pszName;
	const char *m_pszText;
	int m_nLine;
	int m_nColumn;
	const char *m_pszMessage;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const FgdErrorCase_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pszName;
}

class FgdReaderErrors : public testing::TestWithParam<FgdErrorCase_t>
{
};

TEST_P( FgdReaderErrors, ReportsMessageAtLineAndColumn )
{
	const FgdErrorCase_t &errorCase = GetParam();
	CGameData gameData;
	ReadText( &gameData, errorCase.m_pszText );
	ASSERT_FALSE( gameData.GetErrors().IsEmpty() ) << errorCase.m_pszText;
	const GameDataError_t &error = gameData.GetErrors()[ 0 ];
	EXPECT_STREQ( error.m_Message, errorCase.m_pszMessage );
	EXPECT_EQ( error.m_nLine, errorCase.m_nLine );
	EXPECT_EQ( error.m_nColumn, errorCase.m_nColumn );
	EXPECT_NE( strstr( error.m_Text, "FGD Parse error: " ), nullptr ) << error.m_Text.Get();
}

INSTANTIATE_TEST_SUITE_P( Fgd, FgdReaderErrors,
	testing::Values( FgdErrorCase_t { "MissingAt", "PointClass = A []", 1, 1, "Expected '@'" },
		FgdErrorCase_t { "FlagsLongName", "@PointClass = A\n[\n  spawnflags(flags) : \"Flags\" = [ 1 : \"x\" : 0 ]\n]\n", 3, 23, "Flag sets do not have long names" },
		FgdErrorCase_t { "UnknownType", "@PointClass = A\n[\n  m_x(widget) : \"X\"\n]\n", 3, 7, "'widget' is not a valid variable type" },
		FgdErrorCase_t { "UnknownMetaKey", "@PointClass = A\n[\n  m_x(float) [ colour = \"red\" ] : \"X\"\n]\n", 3, 16, "Unrecognized meta key: colour" },
		FgdErrorCase_t { "UnterminatedString", "@PointClass = A : \"open\n[]\n", 1, 19, "Newline in string literal" },
		FgdErrorCase_t { "UnclosedComment", "/* never closed\n@PointClass = A []\n", 1, 1, "No closing */ before end of file" },
		FgdErrorCase_t { "EqualsOnFloat", "@PointClass = A\n[\n  m_x(float) : \"X\" : \"1\" = [ ]\n]\n", 3, 26, "Didn't expect '=' for non-flags non-choices variable m_x" },
		FgdErrorCase_t { "OverrideBeforeClass", "@OverrideClass = Later [ m_x(float) ]\n@PointClass = Later []\n", 1, 18,
			"'OverrideClass' was specified but class 'Later' has not been previously defined." },
		FgdErrorCase_t { "UnclosedEntityGroupBlock", "@EntityGroup \"Particles\" { start_expanded = true\n", 1, 26, "Expected matching '{' '}'" },
		FgdErrorCase_t { "UnclosedNestedEntityGroupBlock", "@EntityGroup \"P\"\n{ a = { b = 1 }\n", 2, 1, "Expected matching '{' '}'" },
		FgdErrorCase_t { "BadChoiceDefault", "@PointClass = A\n[\n  m_mode(choices) : \"Mode\" : \"fast\" = [ \"slow\" : \"Slow\" ]\n]\n", 3, 3,
			"Variable m_mode has bad default value fast (no choices with that name or value)" } ),
	[]( const testing::TestParamInfo<FgdErrorCase_t> &info ) { return std::string( info.param.m_pszName ); } );

TEST( FgdReader, BadClassIsSkippedAndNextClassLoads )
{
	CGameData gameData;
	bool bLoaded = ReadText( &gameData,
		"@PointClass base(NoSuchBase) = Broken [ m_a(float) : \"A\" : \"1\" ]\n"
		"@PointClass = Fine [ m_b(integer) : \"B\" : 3 ]\n" );
	EXPECT_TRUE( bLoaded );
	EXPECT_EQ( gameData.FindClass( "Broken" ), nullptr );
	const CGameDataClass *pFine = gameData.FindClass( "Fine" );
	ASSERT_NE( pFine, nullptr );
	ASSERT_NE( pFine->FindVariable( "m_b" ), nullptr );
	EXPECT_EQ( pFine->FindVariable( "m_b" )->m_DefaultKV3.GetInt(), 3 );
	ASSERT_EQ( gameData.GetErrors().Count(), 1 );
	EXPECT_STREQ( gameData.GetErrors()[ 0 ].m_Message, "Undefined base class 'NoSuchBase" );
	EXPECT_EQ( gameData.GetErrors()[ 0 ].m_nLine, 1 );
}

TEST( FgdReader, WarningNamesClassThatFailedBeforeItsName )
{
	CGameData gameData;
	CCaptureLoggingListener capture;
	EXPECT_TRUE( ReadText( &gameData,
		"@PointClass size(1 2) = BadSize [ ]\n"
		"@PointClass base(NoSuchBase) = BadBase [ m_a(float) ]\n"
		"@PointClass = Fine [ ]\n" ) );
	EXPECT_EQ( capture.CountContaining( "WARNING: Failed to parse class 'BadSize'.\n" ), 1 );
	EXPECT_EQ( capture.CountContaining( "WARNING: Failed to parse class 'BadBase'.\n" ), 1 );
	EXPECT_EQ( gameData.FindClass( "BadSize" ), nullptr );
	EXPECT_NE( gameData.FindClass( "Fine" ), nullptr );
}

TEST( FgdReader, LastClassFailingInHeaderNamesItInTheError )
{
	CGameData gameData;
	EXPECT_FALSE( ReadText( &gameData, "@PointClass color(1 2) = Broken [ ]\n" ) );
	ASSERT_EQ( gameData.GetErrors().Count(), 2 );
	EXPECT_STREQ( gameData.GetErrors()[ 0 ].m_Message, "Expecting integers 'r' 'g' 'b'" );
	EXPECT_STREQ( gameData.GetErrors()[ 1 ].m_Message, "Error parsing class 'Broken'" );
	EXPECT_EQ( gameData.GetErrors()[ 1 ].m_nLine, 1 );
	EXPECT_EQ( gameData.GetErrors()[ 1 ].m_nColumn, 2 );
}

TEST( FgdReader, EntityGroupWithBalancedBadBlockIsAKV3SyntaxError )
{
	CGameData gameData;
	EXPECT_FALSE( ReadText( &gameData, "@EntityGroup \"Particles\" { start_expanded = }\n" ) );
	ASSERT_FALSE( gameData.GetErrors().IsEmpty() );
	const char *pszMessage = gameData.GetErrors()[ 0 ].m_Message;
	EXPECT_EQ( strncmp( pszMessage, "KV3 syntax error: ", 18 ), 0 ) << pszMessage;
	EXPECT_NE( strstr( pszMessage, " while parsing @entitygroup Particles" ), nullptr ) << pszMessage;
}

TEST( FgdReader, EntityTagFilterSelectsClassesByTagIgnoringCase )
{
	CGameData gameData;
	ASSERT_TRUE( ReadText( &gameData,
		"@VisGroupFilter { filter_type = \"entityTag\" tag = \"emitter\" group = \"Particles\" }\n"
		"@VisGroupFilter { filter_type = \"toolsMaterial\" material = \"emitter\" group = \"Tools\" }\n"
		"@PointClass tags(Emitter, Particles) = Fountain [ ]\n"
		"@PointClass tags(Renderer) = Sprites [ ]\n" ) );
	ASSERT_EQ( gameData.m_VisGroupFilters.Count(), 2 );
	const GameDataVisGroupFilter_t &byTag = gameData.m_VisGroupFilters[ 0 ];
	ASSERT_EQ( byTag.m_SelectedClasses.size(), 1u );
	EXPECT_STREQ( byTag.m_SelectedClasses[ 0 ], "Fountain" );
	EXPECT_TRUE( gameData.m_VisGroupFilters[ 1 ].m_SelectedClasses.empty() );

	// A class from a later file joins the filter of an earlier one.
	ASSERT_TRUE( ReadText( &gameData, "@PointClass tags(EMITTER) = Burst [ ]\n" ) );
	ASSERT_EQ( gameData.m_VisGroupFilters[ 0 ].m_SelectedClasses.size(), 2u );
	EXPECT_STREQ( gameData.m_VisGroupFilters[ 0 ].m_SelectedClasses[ 1 ], "Burst" );
}

TEST( FgdReader, BadLastClassFailsTheFile )
{
	CGameData gameData;
	EXPECT_FALSE( ReadText( &gameData, "@PointClass = Fine []\n@PointClass = Broken [ m_a( ]\n" ) );
	EXPECT_NE( gameData.FindClass( "Fine" ), nullptr );
}

TEST( FgdReader, DescriptionOfJoinedLiteralsIsOneText )
{
	CGameData gameData;
	ASSERT_TRUE( ReadText( &gameData, "@PointClass = A : \"First half, \" + \"second half.\" []" ) );
	EXPECT_STREQ( gameData.FindClass( "A" )->m_Description, "First half, second half." );
}

TEST( FgdReader, VariablesKeepTypesDefaultsAndBothMetadataForms )
{
	CGameData gameData;
	ASSERT_TRUE( ReadText( &gameData,
		"@Struct = Range [ m_flMin(float) : \"Min\" : \"0\" ]\n"
		"@PointClass = A\n[\n"
		"  m_flRate(float) [ group = \"Emission\", important, min = \"0\", max = \"10\" ] : \"Rate\" : \"2.5\" : \"Per second.\"\n"
		"  m_flExp(float) { min = \"1\" max = \"4\" biased = true } : \"Exponent\" : \"1\"\n"
		"  m_Range(struct(Range)) : \"Range\"\n"
		"  m_Lists(array(array(int))) : \"Lists\"\n"
		"  spawnflags(flags) = [ 1 : \"One\" : 1  4 : \"Four\" : 1  8 : \"Eight\" : 0 ]\n"
		"  input Fire(void) : \"Fires.\"\n"
		"  output OnFired(float)\n"
		"]\n" ) )
		<< ( gameData.GetErrors().IsEmpty() ? "" : gameData.GetErrors()[ 0 ].m_Text.Get() );
	const CGameDataClass *pClass = gameData.FindClass( "a" ); // names ignore case
	ASSERT_NE( pClass, nullptr );
	const CGameDataVariable *pRate = pClass->FindVariable( "m_flRate" );
	ASSERT_NE( pRate, nullptr );
	EXPECT_DOUBLE_EQ( pRate->m_DefaultKV3.GetDouble(), 2.5 );
	EXPECT_STREQ( pRate->GetMetadataString( "group" ), "Emission" );
	EXPECT_TRUE( pRate->GetMetadataBool( "important" ) );
	EXPECT_STREQ( pRate->m_Description, "Per second." );
	EXPECT_TRUE( pClass->FindVariable( "m_flExp" )->GetMetadataBool( "biased" ) );
	EXPECT_STREQ( pClass->FindVariable( "m_Range" )->m_FullType.m_Param, "Range" );
	const CGameDataVariable *pLists = pClass->FindVariable( "m_Lists" );
	EXPECT_EQ( pLists->GetTypeAtDepth( 1 ), GDTYPE_ARRAY );
	EXPECT_EQ( pLists->GetTypeAtDepth( 2 ), GDTYPE_INTEGER );
	EXPECT_EQ( pClass->FindVariable( "spawnflags" )->m_DefaultKV3.GetInt(), 5 );
	ASSERT_EQ( pClass->m_Inputs.Count(), 1 );
	EXPECT_STREQ( pClass->m_Outputs[ 0 ].m_Type, "float" );
}

TEST( FgdReader, IncludeBesideTheIncludingFileIsFound )
{
	namespace fs = std::filesystem;
	fs::path dir = fs::temp_directory_path() / ( "zol_fgd_include_test_" + std::to_string( getpid() ) );
	fs::create_directories( dir / "sub" );
	std::ofstream( dir / "sub" / "base.fgd" ) << "@BaseClass = SharedBase [ m_x(float) : \"X\" : \"1\" ]\n";
	std::ofstream( dir / "sub" / "main.fgd" ) << "@include \"base.fgd\"\n@PointClass base(SharedBase) = User []\n";
	CGameData gameData;
	CFgdReader reader( &gameData, ( dir / "elsewhere" ).string().c_str() );
	EXPECT_TRUE( reader.LoadGameData( ( dir / "sub" / "main.fgd" ).string().c_str() ) );
	const CGameDataClass *pUser = gameData.FindClass( "User" );
	ASSERT_NE( pUser, nullptr );
	EXPECT_NE( pUser->FindVariable( "m_x" ), nullptr );
	fs::remove_all( dir );
}

// Each file includes the next one twice, 25 deep: read once each, it is 26 files, not 2^25.
TEST( FgdReader, EachIncludedFileIsReadOnce )
{
	namespace fs = std::filesystem;
	fs::path dir = fs::temp_directory_path() / ( "zol_fgd_include_once_" + std::to_string( ::getpid() ) );
	fs::create_directories( dir );
	const int nDepth = 25;
	for ( int i = 0; i < nDepth; ++i )
		std::ofstream( dir / ( "f" + std::to_string( i ) + ".fgd" ) ) << "@include \"f" << i + 1 << ".fgd\"\n@include \"f" << i + 1 << ".fgd\"\n@BaseClass = C" << i << " []\n";
	std::ofstream( dir / ( "f" + std::to_string( nDepth ) + ".fgd" ) ) << "@BaseClass = Last []\n";
	CGameData gameData;
	CFgdReader reader( &gameData, "" );
	auto tStart = std::chrono::steady_clock::now();
	EXPECT_TRUE( reader.LoadGameData( ( dir / "f0.fgd" ).string().c_str() ) );
	EXPECT_LT( std::chrono::duration<double>( std::chrono::steady_clock::now() - tStart ).count(), 5.0 );
	EXPECT_TRUE( gameData.GetErrors().IsEmpty() );
	EXPECT_EQ( gameData.GetClassCount(), nDepth + 1 );
	EXPECT_NE( gameData.FindClass( "Last" ), nullptr );
	fs::remove_all( dir );
}

TEST( FgdReader, ADeviceNamedAsAFileIsRefusedWithTheReason )
{
	CGameData gameData;
	CFgdReader reader( &gameData, "" );
	EXPECT_FALSE( reader.LoadGameData( "/dev/zero" ) );
	ASSERT_EQ( gameData.GetErrors().Count(), 1 );
	EXPECT_STREQ( gameData.GetErrors()[ 0 ].m_Message.Get(), "Unable to read fgd file /dev/zero: not a regular file (a device, pipe or socket)" );
}

TEST( FgdReader, ShippedSampleFilesLoadWithoutErrors )
{
	CGameData gameData;
	CFgdReader reader( &gameData, ZOL_SOURCE_DIR "/content/game" );
	EXPECT_TRUE( reader.LoadGameData( "zol/zol_particles.fgd" ) );
	for ( const GameDataError_t &error : gameData.GetErrors() )
		ADD_FAILURE() << error.m_Text.Get();
	const CGameDataClass *pEmit = gameData.FindClass( "ZolEmitContinuously" );
	ASSERT_NE( pEmit, nullptr );
	EXPECT_NE( pEmit->FindVariable( "m_bInfinite" ), nullptr ); // from the override class
	EXPECT_STREQ( pEmit->m_HelpContextName, "zol/zol_particles_fgd" );
}
} // namespace
