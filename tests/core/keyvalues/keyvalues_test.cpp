#include "core/keyvalues/keyvalues.h"
#include "core/containers/utlbuffer.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <memory>
#include <string>
#include <unistd.h>

static const char *const s_pGameInfo = R"(// Game information of the sample content
"GameInfo"
{
	game		"Zol Samples"
	title		"Zol \"Sample\" Effects"
	FileSystem
	{
		SearchPaths
		{
			Game	samples
			Game	core
			Mod		samples
		}
	}
	"Particles"
	{
		"Budget_SimulationUS"		"1500"
		"Budget_EstimatedTraceCostUS"	"15.5"
		"ZOL_AllowScreenSpaceOverlay"	"1"
	}
	ToolsEnvironment
	{
		SupportsActivities	true	[$WIN64]
	}
}
)";

static std::unique_ptr<KeyValues> LoadGameInfo()
{
	auto pGameInfo = std::make_unique<KeyValues>();
	CUtlString error;
	EXPECT_TRUE( pGameInfo->LoadFromBuffer( "gameinfo.gi", s_pGameInfo, &error ) ) << error.Get();
	return pGameInfo;
}

TEST( KeyValues, ReadsAGameInformationFile )
{
	std::unique_ptr<KeyValues> pGameInfo = LoadGameInfo();
	EXPECT_STREQ( pGameInfo->GetName(), "GameInfo" );
	EXPECT_STREQ( pGameInfo->GetString( "game" ), "Zol Samples" );
	EXPECT_STREQ( pGameInfo->GetString( "title" ), "Zol \"Sample\" Effects" );

	KeyValues *pParticles = pGameInfo->FindKey( "particles" );
	ASSERT_NE( pParticles, nullptr );
	EXPECT_EQ( pParticles->GetInt( "ZOL_AllowScreenSpaceOverlay", 0 ), 1 );
	EXPECT_EQ( pParticles->GetInt( "zol_allowscreenspaceoverlay", 0 ), 1 );
	EXPECT_EQ( pGameInfo->GetInt( "Particles/Budget_SimulationUS", 0 ), 1500 );
	EXPECT_FLOAT_EQ( pGameInfo->GetFloat( "Particles/Budget_EstimatedTraceCostUS", 15.0f ), 15.5f );
	EXPECT_FLOAT_EQ( pGameInfo->GetFloat( "Particles/Budget_Missing", 15.0f ), 15.0f );
	EXPECT_TRUE( pGameInfo->GetBool( "ToolsEnvironment/SupportsActivities" ) );
	EXPECT_EQ( pGameInfo->GetInt( "game", -1 ), -1 ); // text that isn't a number

	// Duplicate keys are all kept, in file order.
	std::string searchPaths;
	for ( KeyValues *pPath = pGameInfo->FindKey( "FileSystem/SearchPaths" )->GetFirstSubKey(); pPath; pPath = pPath->GetNextKey() )
		searchPaths += std::string( pPath->GetName() ) + "=" + pPath->GetString() + ";";
	EXPECT_EQ( searchPaths, "Game=samples;Game=core;Mod=samples;" );
}

TEST( KeyValues, IteratesBlocksAndValuesSeparately )
{
	std::unique_ptr<KeyValues> pGameInfo = LoadGameInfo();
	std::string blocks, values;
	for ( KeyValues *pKey = pGameInfo->GetFirstTrueSubKey(); pKey; pKey = pKey->GetNextTrueSubKey() )
		blocks += std::string( pKey->GetName() ) + ";";
	for ( KeyValues *pKey = pGameInfo->GetFirstValue(); pKey; pKey = pKey->GetNextValue() )
		values += std::string( pKey->GetName() ) + ";";
	EXPECT_EQ( blocks, "FileSystem;Particles;ToolsEnvironment;" );
	EXPECT_EQ( values, "game;title;" );
}

TEST( KeyValues, WrittenTextReadsBackTheSame )
{
	std::unique_ptr<KeyValues> pGameInfo = LoadGameInfo();
	pGameInfo->SetString( "Escapes", "tab\there\nline \\ \"quoted\"" );
	CUtlString text = pGameInfo->ToText();

	KeyValues reread;
	CUtlString error;
	ASSERT_TRUE( reread.LoadFromBuffer( nullptr, text.Get(), &error ) ) << error.Get();
	EXPECT_STREQ( reread.ToText().Get(), text.Get() );
	EXPECT_STREQ( reread.GetString( "Escapes" ), "tab\there\nline \\ \"quoted\"" );

	CUtlBuffer buffer;
	reread.SaveToBuffer( &buffer );
	EXPECT_EQ( std::string( buffer.String() ), std::string( text.Get() ) );
}

TEST( KeyValues, SetAndFindWithCreate )
{
	KeyValues root( "Settings" );
	root.SetInt( "Preview/DetailLevel", 3 );
	root.SetFloat( "Preview/TimeScale", 0.1f );
	root.SetBool( "Preview/Paused", true );
	EXPECT_EQ( root.GetInt( "preview/detaillevel" ), 3 );
	EXPECT_FLOAT_EQ( root.GetFloat( "Preview/TimeScale" ), 0.1f );
	EXPECT_STREQ( root.GetString( "Preview/TimeScale" ), "0.1" );
	EXPECT_TRUE( root.GetBool( "Preview/Paused" ) );

	EXPECT_EQ( root.FindKey( "Preview/Missing" ), nullptr );
	KeyValues *pCreated = root.FindKey( "Preview/Missing/Deep", true );
	ASSERT_NE( pCreated, nullptr );
	EXPECT_STREQ( pCreated->GetName(), "Deep" );
	EXPECT_EQ( root.FindKey( "Preview/Missing/Deep" ), pCreated );
	EXPECT_STREQ( root.GetString( "Preview/Missing/Deep", "none" ), "none" );

	// A value replaces a block.
	root.SetString( "Preview", "flat" );
	EXPECT_FALSE( root.FindKey( "Preview" )->HasSubKeys() );
	EXPECT_STREQ( root.GetString( "Preview" ), "flat" );

	EXPECT_TRUE( root.DeleteSubKey( "preview" ) );
	EXPECT_FALSE( root.DeleteSubKey( "preview" ) );
}

TEST( KeyValues, KeysAddedAfterRemovalsKeepTheirOrder )
{
	KeyValues root( "root" );
	root.SetInt( "a", 1 );
	root.SetInt( "b", 2 );
	root.SetInt( "c", 3 );
	EXPECT_TRUE( root.DeleteSubKey( "c" ) );
	root.SetInt( "d", 4 );
	EXPECT_TRUE( root.DeleteSubKey( "a" ) );
	root.SetInt( "e", 5 );
	std::string names;
	for ( KeyValues *pKey = root.GetFirstSubKey(); pKey; pKey = pKey->GetNextKey() )
		names += pKey->GetName();
	EXPECT_EQ( names, "bde" );

	root.SetString( nullptr, "flat" ); // drops every subkey
	root.SetInt( "f", 6 );
	EXPECT_STREQ( root.GetFirstSubKey()->GetName(), "f" );
	EXPECT_EQ( root.GetFirstSubKey()->GetNextKey(), nullptr );
}

TEST( KeyValues, CopyIsDeepAndIndependent )
{
	std::unique_ptr<KeyValues> pGameInfo = LoadGameInfo();
	std::unique_ptr<KeyValues> pCopy( pGameInfo->FindKey( "Particles" )->MakeCopy() );
	pGameInfo->SetInt( "Particles/Budget_SimulationUS", 1 );
	EXPECT_EQ( pCopy->GetInt( "Budget_SimulationUS" ), 1500 );
	EXPECT_EQ( pCopy->GetNextKey(), nullptr );
}

TEST( KeyValues, ExtraTopLevelKeysBecomePeers )
{
	KeyValues root;
	ASSERT_TRUE( root.LoadFromBuffer( nullptr, "first { a 1 } second { b 2 } third 3" ) );
	ASSERT_NE( root.GetNextKey(), nullptr );
	EXPECT_STREQ( root.GetNextKey()->GetName(), "second" );
	EXPECT_STREQ( root.GetNextKey()->GetNextKey()->GetString(), "3" );
}

struct KeyValuesErrorCase_t
{
	const char *m_pText;
	const char *m_pError;
};

// Names the case in test output instead of dumping its bytes.
[[maybe_unused]] static void PrintTo( const KeyValuesErrorCase_t &testCase, std::ostream *pOut )
{
	*pOut << testing::PrintToString( testCase.m_pText );
}

class KeyValuesBadText : public testing::TestWithParam<KeyValuesErrorCase_t>
{
};

TEST_P( KeyValuesBadText, FailsWithLineAndColumn )
{
	KeyValues root( "before" );
	root.SetString( "stale", "value" );
	CUtlString error;
	EXPECT_FALSE( root.LoadFromBuffer( "bad.txt", GetParam().m_pText, &error ) );
	EXPECT_STREQ( error.Get(), GetParam().m_pError );
	EXPECT_EQ( root.GetFirstSubKey(), nullptr ); // nothing half-read stays behind
}

INSTANTIATE_TEST_SUITE_P( Errors, KeyValuesBadText,
	testing::Values(
		KeyValuesErrorCase_t{ "", "bad.txt:1:1: the text holds no keys" },
		KeyValuesErrorCase_t{ "// only a comment\n", "bad.txt:1:1: the text holds no keys" },
		KeyValuesErrorCase_t{ "\"GameInfo\"\n{\n\tgame \"x\"\n", "bad.txt:4:1: missing '}' to close 'GameInfo' (opened at 1:1)" },
		KeyValuesErrorCase_t{ "root\n{\n  key\n}\n", "bad.txt:4:1: expected a value or '{' after key 'key'" },
		KeyValuesErrorCase_t{ "root { key \"unterminated }\n", "bad.txt:1:12: unterminated quoted string" },
		KeyValuesErrorCase_t{ "root { }\n}", "bad.txt:2:1: unexpected '}' outside any block" },
		KeyValuesErrorCase_t{ "{ a b }", "bad.txt:1:1: expected a key name" },
		KeyValuesErrorCase_t{ "lonely", "bad.txt:1:7: key 'lonely' has no value" },
		KeyValuesErrorCase_t{ "root { a b [$X }", "bad.txt:1:12: unterminated condition '['" } ) );

TEST( KeyValues, DeepNestingIsRefusedNotOverflowed )
{
	std::string text;
	for ( int i = 0; i < 100000; ++i )
		text += "k{";
	KeyValues root;
	CUtlString error;
	EXPECT_FALSE( root.LoadFromBuffer( nullptr, text.c_str(), &error ) );
	EXPECT_NE( std::string( error.Get() ).find( "nested too deeply" ), std::string::npos ) << error.Get();

	std::string allowed;
	for ( int i = 0; i < KeyValues::MAX_NESTING_DEPTH; ++i )
		allowed += "k{";
	allowed += std::string( size_t( KeyValues::MAX_NESTING_DEPTH ), '}' );
	EXPECT_TRUE( root.LoadFromBuffer( nullptr, allowed.c_str(), &error ) ) << error.Get();
}

TEST( KeyValues, LongListsAreFreedWithoutDeepRecursion )
{
	std::string text = "root {";
	for ( int i = 0; i < 200000; ++i )
		text += " k v";
	text += " }";
	KeyValues root;
	ASSERT_TRUE( root.LoadFromBuffer( nullptr, text.c_str() ) );
	root.Clear();
	EXPECT_EQ( root.GetFirstSubKey(), nullptr );
}

TEST( KeyValues, LoadsAndSavesFiles )
{
	char path[] = "/tmp/zol_keyvalues_XXXXXX";
	int fd = mkstemp( path );
	ASSERT_GE( fd, 0 );
	close( fd );

	std::unique_ptr<KeyValues> pGameInfo = LoadGameInfo();
	CUtlString error;
	ASSERT_TRUE( pGameInfo->SaveToFile( path, &error ) ) << error.Get();
	KeyValues reread;
	ASSERT_TRUE( reread.LoadFromFile( path, &error ) ) << error.Get();
	EXPECT_EQ( reread.GetInt( "Particles/Budget_SimulationUS" ), 1500 );
	remove( path );

	EXPECT_FALSE( reread.LoadFromFile( "/nonexistent/dir/gameinfo.gi", &error ) );
	EXPECT_STREQ( error.Get(), "/nonexistent/dir/gameinfo.gi: No such file or directory" );
}
