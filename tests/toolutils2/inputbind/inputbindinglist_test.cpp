// Binding files and input code names: what users write in the files.

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <unistd.h>

#include "core/host/filesystem.h"
#include "core/host/scriptedprompt.h"
#include "core/logging/logging.h"
#include "inputbindtesttarget.h"
#include "tools/toolutils2/inputbind/inputbindengine.h"
#include "tools/toolutils2/inputbind/inputbindinglist.h"

namespace fs = std::filesystem;

namespace
{
// Counts the messages of the input bind channel that contain a text.
class CCountingListener final : public ILoggingListener
{
public:
	explicit CCountingListener( const char *pNeedle ) : m_pNeedle( pNeedle ) { LoggingSystem_AddListener( this ); }
	~CCountingListener() { LoggingSystem_RemoveListener( this ); }
	void Log( const LoggingContext_t &context, const char *pMessage ) override
	{
		if ( context.m_nChannel == LOG_INPUTBIND() && std::strstr( pMessage, m_pNeedle ) )
			++m_nCount;
	}
	const char *m_pNeedle;
	int m_nCount = 0;
};

BindingLoadResult_t LoadText( CInputBindingList &list, const std::string &text, CUtlString *pError = nullptr )
{
	return list.LoadFromText( text.data(), text.size(), "test.txt", pError );
}
} // namespace

TEST( InputCodes, EveryNameReadsBackToItsCodeIgnoringCase )
{
	for ( InputCode_t nCode = 1; nCode < INPUT_CODE_COUNT; ++nCode )
	{
		std::string name = InputCodeName( nCode );
		EXPECT_EQ( InputCodeFromName( name.c_str() ), nCode ) << name;
		for ( char &c : name )
			c = char( std::tolower( static_cast<unsigned char>( c ) ) );
		EXPECT_EQ( InputCodeFromName( name.c_str() ), nCode ) << name;
	}
	EXPECT_EQ( InputCodeFromName( "Control" ), INPUT_CODE_NONE );
	EXPECT_EQ( InputCodeFromName( "<NONE>" ), INPUT_CODE_NONE );
	EXPECT_STREQ( InputCodeName( INPUT_CODE_COUNT ), "<NONE>" );
}

TEST( InputBindingList, SequencePartsAreTrimmedAndEmptyPartsDropped )
{
	std::vector<InputCode_t> sequence;
	ASSERT_TRUE( CInputBindingList::ParseSequence( "  ctrl +shift+  S ++", &sequence ) );
	CUtlString strText;
	CInputBindingList::FormatSequence( sequence, &strText );
	EXPECT_STREQ( strText.Get(), "Ctrl+Shift+S" );
	ASSERT_TRUE( CInputBindingList::ParseSequence( "", &sequence ) );
	EXPECT_TRUE( sequence.empty() );
	EXPECT_FALSE( CInputBindingList::ParseSequence( "Ctrl+Hyper", &sequence ) );
}

TEST( InputBindingList, UnknownKeyNameDropsOnlyThatBinding )
{
	CInputBindingList list;
	CCountingListener warnings( "" );
	ASSERT_EQ( LoadText( list, InputBindTestFile( { { "Ctrl+Hyper", "Save" }, { "Ctrl+S", "Save" } } ) ), BINDING_LOAD_OK );
	ASSERT_EQ( list.GetBindings().size(), 1u );
	CUtlString strText;
	CInputBindingList::FormatSequence( list.GetBindings()[ 0 ].m_Sequence, &strText );
	EXPECT_STREQ( strText.Get(), "Ctrl+S" );
	EXPECT_EQ( warnings.m_nCount, 0 ) << "an unknown key name is dropped without a message";
}

TEST( InputBindingList, MacroNameThatIsAlsoAKeyResolvesAsTheMacro )
{
	CInputBindingList list;
	std::string macros = "{ m_Name = \"F5\" m_Input = \"Ctrl+R\" }, { m_Name = \"save\" m_Input = \"Ctrl+S\" }";
	ASSERT_EQ( LoadText( list, InputBindTestFile( { { "F5", "Select" }, { "Save", "Save" } }, macros ) ), BINDING_LOAD_OK );
	ASSERT_EQ( list.GetBindings().size(), 1u ) << "macro names compare exactly: \"Save\" is no macro and no key";
	CUtlString strText;
	CInputBindingList::FormatSequence( list.GetBindings()[ 0 ].m_Sequence, &strText );
	EXPECT_STREQ( strText.Get(), "Ctrl+R" );
}

TEST( InputBindingList, SameBindingFromTwoFilesWarnsOnceAndKeepsTheFirst )
{
	CInputBindingList list;
	CCountingListener warnings( "Attempting to register the command Save for context InputBindTest multiple times" );
	ASSERT_EQ( LoadText( list, InputBindTestFile( { { "Ctrl+S", "Save" } } ) ), BINDING_LOAD_OK );
	ASSERT_EQ( LoadText( list, InputBindTestFile( { { "ctrl+s", "Save" }, { "F2", "Save" } } ) ), BINDING_LOAD_OK );
	EXPECT_EQ( warnings.m_nCount, 1 );
	ASSERT_EQ( list.GetBindings().size(), 2u );
	EXPECT_STREQ( list.GetBindings()[ 0 ].m_strCommand.Get(), "Save" );
	const InputBinding_t *pFirst = list.FindBinding( BindToken( "inputbindtest" ), BindToken( "SAVE" ) );
	EXPECT_EQ( pFirst, &list.GetBindings()[ 0 ] );
}

TEST( InputBindingList, MalformedTextLeavesEarlierBindingsAndSaysWhere )
{
	CInputBindingList list;
	ASSERT_EQ( LoadText( list, InputBindTestFile( { { "Ctrl+S", "Save" } } ) ), BINDING_LOAD_OK );
	CUtlString strError;
	std::string broken = InputBindTestFile( { { "F2", "Select" } } );
	broken.resize( broken.size() - 4 ); // cut the closing brackets
	EXPECT_EQ( LoadText( list, broken, &strError ), BINDING_LOAD_CANNOT_PARSE );
	EXPECT_FALSE( strError.IsEmpty() );
	std::string notATable = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=generic:7412167c-06e9-4698-aff2-e63eb59037e7 ---\n{ m_Bindings = 5 }\n";
	EXPECT_EQ( LoadText( list, notATable, &strError ), BINDING_LOAD_CANNOT_PARSE );
	EXPECT_EQ( list.GetBindings().size(), 1u );
	EXPECT_EQ( list.GetLoadedFiles().size(), 1u );
}

class InputBindFileTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		m_Root = fs::temp_directory_path() / ( "zol_inputbind_" + std::to_string( ::getpid() ) );
		fs::remove_all( m_Root );
		fs::create_directories( m_Root / "game" / "tools" / "keybindings" );
		fs::create_directories( m_Root / "content" );
		m_FileSystem.SetupFromRoots( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str() );
		SetFileSystem( &m_FileSystem );
	}
	void TearDown() override
	{
		SetFileSystem( nullptr );
		fs::remove_all( m_Root );
	}
	void Write( const char *pName, const std::string &text )
	{
		std::ofstream( m_Root / "game" / "tools" / "keybindings" / pName ) << text;
	}

	fs::path m_Root;
	CFileSystem m_FileSystem;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
};

TEST_F( InputBindFileTest, FileIsReadThroughTheGamePaths )
{
	Write( "mine.txt", InputBindTestFile( { { "Ctrl+S", "Save" } } ) );
	CInputBindEngine engine( nullptr );
	EXPECT_TRUE( engine.LoadBindings( "tools/keybindings/mine.txt" ) );
	EXPECT_EQ( engine.GetBindingList().GetBindings().size(), 1u );
	EXPECT_EQ( m_Prompt.GetRecords().Count(), 0 );
}

TEST_F( InputBindFileTest, MissingFileWarnsTheUserAndKeepsEarlierBindings )
{
	Write( "mine.txt", InputBindTestFile( { { "Ctrl+S", "Save" } } ) );
	CInputBindEngine engine( nullptr );
	ASSERT_TRUE( engine.LoadBindings( "tools/keybindings/mine.txt" ) );
	CCountingListener failures( "Failed to load bindings (" );
	EXPECT_FALSE( engine.LoadBindings( "tools/keybindings/gone.txt" ) );
	ASSERT_EQ( m_Prompt.GetRecords().Count(), 1 );
	EXPECT_STREQ( m_Prompt.GetRecords()[ 0 ].m_strTitle.Get(), "Input Binding Error" );
	EXPECT_STREQ( m_Prompt.GetRecords()[ 0 ].m_strText.Get(), "ERROR: Failed to open file for key bindings:\ntools/keybindings/gone.txt\n" );
	EXPECT_EQ( failures.m_nCount, 1 );
	EXPECT_EQ( engine.GetBindingList().GetBindings().size(), 1u );
}

TEST_F( InputBindFileTest, UnreadableTextWarnsTheUserWithTheReadMessage )
{
	Write( "broken.txt", "this is not kv3" );
	CInputBindEngine engine( nullptr );
	EXPECT_FALSE( engine.LoadBindings( "tools/keybindings/broken.txt" ) );
	ASSERT_EQ( m_Prompt.GetRecords().Count(), 1 );
	EXPECT_STREQ( m_Prompt.GetRecords()[ 0 ].m_strText.Get(), "ERROR: Failed to read key bindings from:\ntools/keybindings/broken.txt\n" );
}

TEST( InputBindingList, ShippedBindingFilesLoadWithEveryBindingKept )
{
	const char *pNames[] = { "global_key_bindings.txt", "shared_tool_key_bindings.txt", "zol_key_bindings.txt" };
	CInputBindingList list;
	CCountingListener duplicates( "multiple times" );
	size_t nEntries = 0;
	for ( const char *pName : pNames )
	{
		fs::path path = fs::path( ZOL_SOURCE_DIR ) / "content/game/tools/keybindings" / pName;
		std::ifstream file( path );
		std::string text( ( std::istreambuf_iterator<char>( file ) ), std::istreambuf_iterator<char>() );
		ASSERT_FALSE( text.empty() ) << path;
		CUtlString strError;
		ASSERT_EQ( LoadText( list, text, &strError ), BINDING_LOAD_OK ) << pName << ": " << strError.Get();
		for ( size_t nPos = text.find( "m_Command" ); nPos != std::string::npos; nPos = text.find( "m_Command", nPos + 1 ) )
			++nEntries;
	}
	// An unknown key name would drop its binding without a word: none may be lost.
	EXPECT_EQ( list.GetBindings().size(), nEntries );
	EXPECT_EQ( duplicates.m_nCount, 0 );
}
