// The class descriptions of a game, loaded from the files its gameinfo.gi names.

#include <unistd.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "tools/toolutils2/fgd/gameinfofgdload.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace fs = std::filesystem;

namespace
{
class GameInfoFgdLoad : public testing::Test
{
protected:
	void SetUp() override
	{
		m_Root = fs::temp_directory_path() / ( std::string( "zol_gameinfo_fgd_" ) + testing::UnitTest::GetInstance()->current_test_info()->name() + "_" + std::to_string( getpid() ) );
		fs::remove_all( m_Root );
		fs::create_directories( m_Root / "mod" );
		Write( "mod/first.fgd", "@Struct = First [ m_flA(float) : \"A\" : \"1\" ]\n" );
		Write( "mod/second.fgd", "@Struct = Second [ m_nB(int) : \"B\" : 2 ]\n" );
	}
	void TearDown() override { fs::remove_all( m_Root ); }

	void Write( const char *pszRelative, const std::string &text )
	{
		std::ofstream( m_Root / pszRelative ) << text;
	}

	bool Load()
	{
		return LoadGameDataFromGameInfo( &m_GameData, m_Root.string().c_str(), &m_Report );
	}

	fs::path m_Root;
	CGameData m_GameData;
	CUtlString m_Report;
};

TEST_F( GameInfoFgdLoad, LoadsEveryListedFile )
{
	Write( "gameinfo.gi", "\"GameInfo\"\n{\n\t\"Brakel\"\n\t{\n\t\t\"fgd_files\"\n\t\t{\n\t\t\tfgd \"mod/first.fgd\"\n\t\t\tfgd \"mod/second.fgd\"\n\t\t}\n\t}\n}\n" );
	EXPECT_TRUE( Load() ) << m_Report.Get();
	EXPECT_TRUE( m_Report.IsEmpty() ) << m_Report.Get();
	EXPECT_NE( m_GameData.FindClass( "First" ), nullptr );
	ASSERT_NE( m_GameData.FindClass( "Second" ), nullptr );
	EXPECT_NE( m_GameData.FindClass( "Second" )->FindVariable( "m_nB" ), nullptr );
}

TEST_F( GameInfoFgdLoad, MissingListedFileIsNamedAndTheOthersStillLoad )
{
	Write( "gameinfo.gi", "GameInfo { Brakel { fgd_files { fgd \"mod/missing.fgd\" fgd \"mod/second.fgd\" } } }\n" );
	EXPECT_FALSE( Load() );
	EXPECT_NE( std::string( m_Report.Get() ).find( "Failed to load FGD file 'mod/missing.fgd'. Encountered errors:\n\n" ), std::string::npos ) << m_Report.Get();
	EXPECT_NE( std::string( m_Report.Get() ).find( "Unable to find fgd file mod/missing.fgd!" ), std::string::npos ) << m_Report.Get();
	EXPECT_NE( m_GameData.FindClass( "Second" ), nullptr );
}

TEST_F( GameInfoFgdLoad, BrokenFileReportsItsParseErrors )
{
	Write( "mod/broken.fgd", "@Struct = Broken [ m_x(nosuchtype) ]\n" );
	Write( "gameinfo.gi", "GameInfo { Brakel { fgd_files { fgd \"mod/broken.fgd\" } } }\n" );
	EXPECT_FALSE( Load() );
	std::string report = m_Report.Get();
	EXPECT_EQ( report.rfind( "Failed to load FGD file 'mod/broken.fgd'. Encountered errors:\n\n", 0 ), 0u ) << report;
	EXPECT_NE( report.find( "'nosuchtype' is not a valid variable type" ), std::string::npos ) << report;
}

struct BadGameInfoCase_t
{
	const char *m_pszName;
	const char *m_pszGameInfo; // null: no file at all
	const char *m_pszReport;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] void PrintTo( const BadGameInfoCase_t &testCase, std::ostream *pOut )
{
	*pOut << testCase.m_pszName;
}

class GameInfoFgdLoadBadFile : public GameInfoFgdLoad, public testing::WithParamInterface<BadGameInfoCase_t>
{
};

TEST_P( GameInfoFgdLoadBadFile, ReportsWhatIsMissing )
{
	if ( GetParam().m_pszGameInfo )
		Write( "gameinfo.gi", GetParam().m_pszGameInfo );
	EXPECT_FALSE( Load() );
	EXPECT_STREQ( m_Report.Get(), GetParam().m_pszReport );
	EXPECT_EQ( m_GameData.GetClassCount(), 0 );
}

INSTANTIATE_TEST_SUITE_P( Cases, GameInfoFgdLoadBadFile,
	testing::Values( BadGameInfoCase_t{ "NoFile", nullptr, "The gameinfo.gi file is missing or incomplete!\n" },
		BadGameInfoCase_t{ "Unparsable", "GameInfo { Brakel {", "The gameinfo.gi file is missing or incomplete!\n" },
		BadGameInfoCase_t{ "NoBlock", "GameInfo { game \"x\" }\n", "Failed to find the Brakel block in the gameinfo.gi file!\n" },
		BadGameInfoCase_t{ "NoList", "GameInfo { Brakel { other 1 } }\n", "Failed to find mod fgd file from the gameinfo.gi file!\n" },
		BadGameInfoCase_t{ "EmptyList", "GameInfo { Brakel { fgd_files { } } }\n", "Failed to find mod fgd file from the gameinfo.gi file!\n" } ),
	[]( const testing::TestParamInfo<BadGameInfoCase_t> &info ) { return std::string( info.param.m_pszName ); } );

TEST( GameInfoFgdLoadShipped, ShippedGameInfoLoadsTheShippedClassesCleanly )
{
	CGameData gameData;
	CUtlString report;
	EXPECT_TRUE( LoadGameDataFromGameInfo( &gameData, ZOL_SOURCE_DIR "/content/game", &report ) ) << report.Get();
	EXPECT_TRUE( gameData.GetErrors().IsEmpty() );
	EXPECT_NE( gameData.FindClass( "ZolEmitContinuously" ), nullptr );
	EXPECT_NE( gameData.FindClass( "ZolOperatorBase" ), nullptr );
}
} // namespace
