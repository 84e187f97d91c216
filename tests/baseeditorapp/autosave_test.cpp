// Autosave and crash recovery of the editor framework on a scratch tree: names and their
// originals, numbering with gaps and reuse, the space limit, the timer, the directory
// checks, and recovery after a crash with both answers, headless, with autosaves older than
// their file, of unsaved documents and of files outside the content tree. File times are
// set, never waited for.

#include <gtest/gtest.h>

#include <chrono>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "core/host/hostpaths.h"
#include "core/platform/platformtime.h"
#include "core/text/pathtools.h"
#include "tests/baseeditorapp/baseeditortestapp.h"
#include "tests/core/support/capturelogginglistener.h"
#include "tools/toolutils2/baseeditorapp/autosavenames.h"

namespace fs = std::filesystem;

namespace
{
constexpr const char *TOOL_NAME = "testtool";

std::string ReadText( const fs::path &path )
{
	std::ifstream in( path );
	return std::string( std::istreambuf_iterator<char>( in ), std::istreambuf_iterator<char>() );
}

// Sets a file's modification time this many seconds from now (negative: in the past).
void SetAge( const fs::path &path, int nSecondsFromNow )
{
	fs::last_write_time( path, fs::file_time_type::clock::now() + std::chrono::seconds( nSecondsFromNow ) );
}

void WriteSized( const fs::path &path, size_t nBytes, int nSecondsFromNow )
{
	fs::create_directories( path.parent_path() );
	std::ofstream( path, std::ios::binary ) << std::string( nBytes, 'x' );
	SetAge( path, nSecondsFromNow );
}

const AutosaveFileEntry_t *FindEntry( CTestApp &app, const char *pPath )
{
	for ( const AutosaveFileEntry_t &entry : app.GetAutosaveManager().GetRecentFiles() )
	{
		if ( V_PathsMatch( entry.m_strFileName, pPath ) )
			return &entry;
	}
	return nullptr;
}

class AutosaveTest : public BaseEditorAppTest
{
protected:
	void SetUp() override
	{
		BaseEditorAppTest::SetUp();
		fs::create_directories( m_Root / "settings" );
		GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );
		Start( m_App );
	}

	void TearDown() override
	{
		Plat_ClearFloatTimeOverride();
		for ( CBaseEditorSession *pSession : m_App.GetSessions() )
			pSession->SetModified( false );
		m_App.ShutdownTool();
		BaseEditorAppTest::TearDown();
		Plat_SetTestMode( true );
	}

	void Start( CTestApp &app )
	{
		app.UseToolName( TOOL_NAME );
		app.UseDefaultDirectory( Native( m_Root / "content" / "particles" ) );
		ASSERT_TRUE( app.StartTool( 1 ) );
	}

	fs::path AutosaveDirectory() const { return m_Root / "content_toolsautosave" / TOOL_NAME / "particles"; }

	CTestSession *OpenAndEdit( const char *pRelative, const char *pText )
	{
		auto *pSession = static_cast<CTestSession *>( m_App.OpenFile( MakeFile( pRelative ), true ) );
		if ( pSession )
			pSession->Edit( pText );
		return pSession;
	}

	void SetMaxSaves( int nMax )
	{
		CEditorSettings settings = m_App.GetEditorSettings();
		settings.m_nMaxSavesPerMap = nMax;
		m_App.ChangeEditorSettings( settings );
	}

	// What the settings file holds at this moment: what a crash would leave.
	std::string StoredSettings() const { return ReadText( m_Root / "settings" / ( std::string( TOOL_NAME ) + "_settings.kv3" ) ); }

	// Runs a session of the tool, then leaves the disk as a crash at the end of fnWork would
	// have: the settings file as it stood then, the autosaves in place.
	void RunAndCrash( const std::function<void()> &fnWork )
	{
		fnWork();
		std::string atCrash = StoredSettings();
		for ( CBaseEditorSession *pSession : m_App.GetSessions() )
			pSession->SetModified( false );
		m_App.ShutdownTool();
		std::ofstream( m_Root / "settings" / ( std::string( TOOL_NAME ) + "_settings.kv3" ) ) << atCrash;
	}

	// An edit of a.txt and a new document, both autosaved, then the crash; answers the new
	// document's name.
	CUtlString CrashWithAnEditAndANewDocument()
	{
		CUtlString strUntitled;
		RunAndCrash( [ & ] {
			OpenAndEdit( "particles/a.txt", "edited a" );
			auto *pNew = static_cast<CTestSession *>( m_App.NewSession() );
			pNew->Edit( "a new document" );
			strUntitled = pNew->GetFileName();
			m_App.GetAutosaveManager().AutosaveAll( false );
		} );
		return strUntitled;
	}
};
} // namespace

// ---------------------------------------------------------------------------------------
// Names

TEST( AutosaveNames, MapAFileToItsAutosaveDirectoryAndBack )
{
	const char *pRoot = "\\data\\content_toolsautosave\\particles\\";
	const char *pContent = "\\data\\content";
	struct Case_t
	{
		const char *m_pFile;
		const char *m_pDirectory;
	};
	for ( const Case_t &c : { Case_t{ "\\data\\content\\a\\b\\c.tfxs", "\\data\\content_toolsautosave\\particles\\a\\b\\" },
			  Case_t{ "/data/content/c.tfxs", "\\data\\content_toolsautosave\\particles\\" },
			  Case_t{ "\\home\\artist\\drafts\\c.tfxs", "\\data\\content_toolsautosave\\particles\\@external\\home\\artist\\drafts\\" } } )
	{
		CUtlString strDirectory;
		GetAutosaveDirectoryOf( c.m_pFile, pRoot, pContent, &strDirectory );
		EXPECT_STREQ( strDirectory, c.m_pDirectory ) << c.m_pFile;
		CUtlString strAutosave;
		MakeAutosaveFileName( strDirectory, "c", 4, "tfxs", &strAutosave );
		EXPECT_TRUE( IsAutosaveFileName( strAutosave ) );
		EXPECT_EQ( GetAutosaveNumber( strAutosave ), 4 );
		CUtlString strOriginal;
		GetAutosaveOriginalName( strAutosave, pRoot, pContent, &strOriginal );
		CUtlString strExpected( c.m_pFile );
		strExpected.FixSlashes( '\\' );
		EXPECT_STREQ( strOriginal, strExpected ) << strAutosave.Get();
	}

	CUtlString strOriginal;
	// An autosave copied elsewhere names a file beside itself.
	GetAutosaveOriginalName( "\\tmp\\c012.tfxs_autosave", pRoot, pContent, &strOriginal );
	EXPECT_STREQ( strOriginal, "\\tmp\\c.tfxs" );
	GetAutosaveOriginalName( "", pRoot, pContent, &strOriginal );
	EXPECT_STREQ( strOriginal, "recovered_autosave" );
	EXPECT_FALSE( IsAutosaveFileName( "\\a_autosave\\c.tfxs" ) );
	EXPECT_EQ( GetAutosaveNumber( "\\x\\cab.tfxs_autosave" ), -1 );
}

// ---------------------------------------------------------------------------------------
// Numbering

struct NumberingCase_t
{
	const char *m_pName;
	int m_nMaxSaves;
	// Autosaves of a.txt that exist: number and age in seconds.
	std::vector<std::pair<int, int>> m_Existing;
	int m_nExpected;
};

class AutosaveNumbering : public AutosaveTest, public ::testing::WithParamInterface<NumberingCase_t>
{
};

TEST_P( AutosaveNumbering, TakesTheNextNumberTheGapOrTheOldest )
{
	const NumberingCase_t &numbering = GetParam();
	SetMaxSaves( numbering.m_nMaxSaves );
	char szName[ 64 ];
	for ( const auto &[ nNumber, nAge ] : numbering.m_Existing )
	{
		snprintf( szName, sizeof( szName ), "a%03d.txt_autosave", nNumber );
		WriteSized( AutosaveDirectory() / szName, 10, nAge );
	}
	// Autosaves of other files never count.
	WriteSized( AutosaveDirectory() / "a2001.txt_autosave", 10, -1 );
	WriteSized( AutosaveDirectory() / "b004.txt_autosave", 10, -1 );

	CTestSession *pSession = OpenAndEdit( "particles/a.txt", "edited" );
	ASSERT_NE( pSession, nullptr );
	m_App.GetAutosaveManager().AutosaveAll( false );
	snprintf( szName, sizeof( szName ), "a%03d.txt_autosave", numbering.m_nExpected );
	EXPECT_EQ( ReadText( AutosaveDirectory() / szName ), "edited" );
	// Whatever the numbering did, no autosave went away.
	for ( const auto &existing : numbering.m_Existing )
	{
		snprintf( szName, sizeof( szName ), "a%03d.txt_autosave", existing.first );
		EXPECT_TRUE( fs::exists( AutosaveDirectory() / szName ) ) << szName;
	}
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "test.txt" ) ) << "the directory check leaves nothing behind";
}

INSTANTIATE_TEST_SUITE_P( Numbers, AutosaveNumbering,
	::testing::Values( NumberingCase_t{ "First", 5, {}, 1 },
		NumberingCase_t{ "Next", 5, { { 1, -20 }, { 2, -10 } }, 3 },
		NumberingCase_t{ "AboveAGap", 5, { { 1, -30 }, { 2, -20 }, { 4, -10 } }, 5 },
		NumberingCase_t{ "IntoTheLastGap", 5, { { 1, -40 }, { 2, -30 }, { 4, -20 }, { 5, -10 } }, 3 },
		NumberingCase_t{ "AtTheLimitTheOldest", 5, { { 1, -20 }, { 2, -30 }, { 3, -90 }, { 4, -10 }, { 5, -50 } }, 3 },
		// After the limit went down, higher numbers are neither counted nor replaced.
		NumberingCase_t{ "LoweredLimitIgnoresHigherNumbers", 3, { { 1, -20 }, { 2, -30 }, { 3, -10 }, { 4, -90 }, { 5, -80 } }, 2 } ),
	[]( const ::testing::TestParamInfo<NumberingCase_t> &info ) { return std::string( info.param.m_pName ); } );

// ---------------------------------------------------------------------------------------
// Saving

TEST_F( AutosaveTest, OnlyChangedSessionsAreSavedAndTheMarkIsStoredAtOnce )
{
	CTestSession *pA = OpenAndEdit( "particles/a.txt", "first edit" );
	m_App.OpenFile( MakeFile( "particles/b.txt" ), true );
	ASSERT_NE( pA, nullptr );

	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_EQ( ReadText( AutosaveDirectory() / "a001.txt_autosave" ), "first edit" );
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "b001.txt_autosave" ) );
	EXPECT_EQ( ReadText( m_Root / "content/particles/a.txt" ), "data" ) << "an autosave never touches the file";
	EXPECT_FALSE( pA->NeedsAutosave() );
	EXPECT_TRUE( pA->IsModified() );
	ASSERT_NE( FindEntry( m_App, pA->GetFileName() ), nullptr );
	EXPECT_TRUE( FindEntry( m_App, pA->GetFileName() )->m_bAutosaved );
	EXPECT_NE( StoredSettings().find( "\"Autosaved 1\" = true" ), std::string::npos ) << StoredSettings();

	// Nothing new: nothing saved. Each further edit, not only the first, counts.
	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "a002.txt_autosave" ) );
	pA->Edit( "second edit" );
	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_EQ( ReadText( AutosaveDirectory() / "a002.txt_autosave" ), "second edit" );

	// Closing it as it should clears the mark.
	pA->SetModified( false );
	ASSERT_TRUE( m_App.CloseSession( pA ) );
	const AutosaveFileEntry_t *pEntry = FindEntry( m_App, Native( m_Root / "content/particles/a.txt" ) );
	ASSERT_NE( pEntry, nullptr );
	EXPECT_TRUE( pEntry->m_bClosedCorrectly );
	EXPECT_FALSE( pEntry->m_bAutosaved );
}

TEST_F( AutosaveTest, UntitledDocumentTakesTheSaveFiltersExtension )
{
	m_App.m_bNewNamesWithoutExtension = true;
	m_App.UseSaveFilter( "Text Document (*.txt);;" );
	auto *pNew = static_cast<CTestSession *>( m_App.NewSession() );
	ASSERT_NE( pNew, nullptr );
	ASSERT_EQ( V_GetFileExtension( pNew->GetFileName() ), nullptr );
	pNew->Edit( "draft" );
	m_App.GetAutosaveManager().AutosaveAll( false );

	CUtlString strBase( V_UnqualifiedFileName( pNew->GetFileName() ) );
	EXPECT_EQ( ReadText( AutosaveDirectory() / ( std::string( strBase ) + "001.txt_autosave" ) ), "draft" );
	EXPECT_TRUE( m_App.GetAutosaveManager().IsNewFile( pNew->GetFileName() ) );
	CUtlString strLatest;
	EXPECT_TRUE( m_App.GetAutosaveManager().FindLatestAutosave( pNew->GetFileName(), &strLatest ) );
	EXPECT_TRUE( V_PathsMatch( strLatest, Native( AutosaveDirectory() / ( std::string( strBase ) + "001.txt_autosave" ) ) ) ) << strLatest.Get();
}

TEST_F( AutosaveTest, SpaceLimitRemovesTheOldestAutosavesAndNothingElse )
{
	CEditorSettings settings = m_App.GetEditorSettings();
	settings.m_nMaxAutosaveSpace = 1;
	m_App.ChangeEditorSettings( settings );
	const size_t nPiece = 400 * 1024;
	WriteSized( AutosaveDirectory() / "b001.txt_autosave", nPiece, -300 );
	WriteSized( AutosaveDirectory() / "c001.txt_autosave", nPiece, -200 );
	WriteSized( AutosaveDirectory() / "deeper/d001.txt_autosave", nPiece, -250 );
	// Not autosaves, or not here: neither counted nor removed, however old or big.
	WriteSized( AutosaveDirectory() / "notes.txt", 3 * nPiece, -900 );
	WriteSized( m_Root / "elsewhere/big001.txt_autosave", 3 * nPiece, -900 );
	fs::create_symlink( m_Root / "elsewhere/big001.txt_autosave", AutosaveDirectory() / "link001.txt_autosave" );
	fs::create_directory_symlink( m_Root / "elsewhere", AutosaveDirectory() / "linked_directory" );

	ASSERT_NE( OpenAndEdit( "particles/a.txt", "edited" ), nullptr );
	CCaptureLoggingListener log;
	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_TRUE( fs::exists( AutosaveDirectory() / "a001.txt_autosave" ) );
	// 1.2 MB of autosaves with the new one: the oldest goes, then it fits.
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "b001.txt_autosave" ) );
	EXPECT_EQ( log.CountContaining( "Deleting autosave file: " ), 1 );
	EXPECT_TRUE( fs::exists( AutosaveDirectory() / "deeper/d001.txt_autosave" ) );
	EXPECT_TRUE( fs::exists( AutosaveDirectory() / "c001.txt_autosave" ) );
	EXPECT_TRUE( fs::exists( AutosaveDirectory() / "notes.txt" ) );
	EXPECT_TRUE( fs::is_symlink( AutosaveDirectory() / "link001.txt_autosave" ) );
	EXPECT_TRUE( fs::exists( m_Root / "elsewhere/big001.txt_autosave" ) );

	// Under a lower limit the subtree's next oldest goes, never the one just written.
	settings.m_nMaxAutosaveSpace = 0;
	m_App.ChangeEditorSettings( settings );
	m_App.GetActiveSession()->SetModified( true );
	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "deeper/d001.txt_autosave" ) );
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "c001.txt_autosave" ) );
	EXPECT_TRUE( fs::exists( AutosaveDirectory() / "a002.txt_autosave" ) );
	EXPECT_TRUE( fs::exists( m_Root / "elsewhere/big001.txt_autosave" ) );
}

TEST_F( AutosaveTest, TimerWaitsItsPeriodAndRetriesASecondAfterARefusal )
{
	Plat_SetFloatTimeOverride( 1000.0 );
	CAutosaveManager &manager = m_App.GetAutosaveManager();
	manager.StartTimer();
	EXPECT_DOUBLE_EQ( manager.GetNextAutosaveTime(), 1000.0 + 15 * 60 );
	ASSERT_NE( OpenAndEdit( "particles/a.txt", "edited" ), nullptr );

	Plat_SetFloatTimeOverride( 1899.0 );
	m_App.Frame();
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "a001.txt_autosave" ) );

	m_App.m_bAllowAutosave = false;
	Plat_SetFloatTimeOverride( 1901.0 );
	m_App.Frame();
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "a001.txt_autosave" ) );
	EXPECT_DOUBLE_EQ( manager.GetNextAutosaveTime(), 1902.0 ) << "a second later, not a period later";

	m_App.m_bAllowAutosave = true;
	Plat_SetFloatTimeOverride( 1901.5 );
	m_App.Frame();
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "a001.txt_autosave" ) );
	Plat_SetFloatTimeOverride( 1902.5 );
	m_App.Frame();
	EXPECT_TRUE( fs::exists( AutosaveDirectory() / "a001.txt_autosave" ) );
	EXPECT_DOUBLE_EQ( manager.GetNextAutosaveTime(), 1902.5 + 15 * 60 );
}

// ---------------------------------------------------------------------------------------
// Directory checks

TEST_F( AutosaveTest, DirectoryThatCantBeMadeTurnsAutosavesOffAndSaysSo )
{
	std::ofstream( m_Root / "content_toolsautosave" ) << "a file where the directory would be";
	CTestSession *pA = OpenAndEdit( "particles/a.txt", "edited" );
	m_App.GetAutosaveManager().AutosaveAll( false );
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Unable to create autosave directory" );
	ASSERT_NE( pRecord, nullptr );
	EXPECT_STREQ( pRecord->m_strText, "The autosave directory does not exist and could not be created.\nThe autosave feature will be disabled." );
	EXPECT_FALSE( m_App.GetEditorSettings().m_bAutosavesEnabled );
	EXPECT_NE( StoredSettings().find( "\"Autosaves Enabled\" = false" ), std::string::npos ) << "stored at once";
	EXPECT_TRUE( pA->NeedsAutosave() );
	CUtlString strLatest;
	EXPECT_FALSE( m_App.GetAutosaveManager().FindLatestAutosave( pA->GetFileName(), &strLatest ) );
}

TEST_F( AutosaveTest, DirectoryThatTakesNoFileTurnsAutosavesOffWithTheFileError )
{
	fs::create_directories( AutosaveDirectory() / "test.txt" );
	ASSERT_NE( OpenAndEdit( "particles/a.txt", "edited" ), nullptr );
	m_App.GetAutosaveManager().AutosaveAll( false );
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Directory error" );
	ASSERT_NE( pRecord, nullptr );
	EXPECT_STREQ( pRecord->m_strText, "There is a problem with the autosave directory: The file could not be opened.\nThe autosave feature will be disabled." );
	EXPECT_FALSE( m_App.GetEditorSettings().m_bAutosavesEnabled );
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "a001.txt_autosave" ) );
}

// ---------------------------------------------------------------------------------------
// Latest autosave

TEST_F( AutosaveTest, LatestAutosaveIsTheNewestOfItsOwnAndOnlyWhenNewerThanTheFile )
{
	CUtlString strA = MakeFile( "particles/a.txt" );
	SetAge( m_Root / "content/particles/a.txt", -100 );
	WriteSized( AutosaveDirectory() / "a001.txt_autosave", 5, -50 );
	WriteSized( AutosaveDirectory() / "a002.txt_autosave", 5, -10 );
	WriteSized( AutosaveDirectory() / "a003.txt_autosave", 5, -30 );
	// Newer, but of another kind of file.
	WriteSized( AutosaveDirectory() / "a004.dat_autosave", 5, -1 );
	CAutosaveManager &manager = m_App.GetAutosaveManager();
	CUtlString strLatest;
	EXPECT_TRUE( manager.FindLatestAutosave( strA, &strLatest ) );
	EXPECT_TRUE( V_PathsMatch( strLatest, Native( AutosaveDirectory() / "a002.txt_autosave" ) ) ) << strLatest.Get();

	SetAge( m_Root / "content/particles/a.txt", 0 );
	EXPECT_FALSE( manager.FindLatestAutosave( strA, &strLatest ) );
	EXPECT_STREQ( strLatest, strA );

	CUtlString strB = MakeFile( "particles/b.txt" );
	EXPECT_FALSE( manager.FindLatestAutosave( strB, &strLatest ) );
	EXPECT_STREQ( strLatest, strB );
	EXPECT_TRUE( manager.FindLatestAutosave( Native( m_Root / "content/particles/none.txt" ), &strLatest ) );
	EXPECT_TRUE( strLatest.IsEmpty() );
}

TEST_F( AutosaveTest, NamesThatDifferOnlyInCaseKeepTheirOwnAutosaves )
{
	CTestSession *pUpper = OpenAndEdit( "particles/Fire.txt", "upper" );
	CTestSession *pLower = OpenAndEdit( "particles/fire.txt", "lower" );
	ASSERT_TRUE( pUpper && pLower );
	ASSERT_NE( pUpper, pLower );
	CCaptureLoggingListener log;
	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_EQ( ReadText( AutosaveDirectory() / "Fire001.txt_autosave" ), "upper" );
	EXPECT_EQ( ReadText( AutosaveDirectory() / "fire001.txt_autosave" ), "lower" );
	EXPECT_GE( log.CountContaining( "differ only in case" ), 1 );

	// Even when the twin's autosave is newer, each finds its own.
	SetAge( AutosaveDirectory() / "Fire001.txt_autosave", 50 );
	CUtlString strLatest;
	EXPECT_TRUE( m_App.GetAutosaveManager().FindLatestAutosave( pLower->GetFileName(), &strLatest ) );
	EXPECT_STREQ( V_UnqualifiedFileName( strLatest ), "fire001.txt_autosave" );
}

// ---------------------------------------------------------------------------------------
// Recovery

TEST_F( AutosaveTest, RecoveryReopensEditsUnderTheirNamesAndUnsavedDocuments )
{
	CUtlString strA = Native( m_Root / "content/particles/a.txt" );
	CUtlString strUntitled = CrashWithAnEditAndANewDocument();

	Plat_SetTestMode( false );
	CTestApp app;
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Recover Files?" );
	Start( app );
	const CScriptedPrompt::Record_t *pQuestion = m_Prompt.FindRecord( "Recover Files?" );
	ASSERT_NE( pQuestion, nullptr );
	EXPECT_EQ( strncmp( pQuestion->m_strText, "testtool did not shut down correctly the last time it was used.\n", 64 ), 0 ) << pQuestion->m_strText.Get();
	ASSERT_EQ( app.GetSessions().size(), 2u );

	auto *pA = static_cast<CTestSession *>( app.FindSessionByFile( strA ) );
	ASSERT_NE( pA, nullptr );
	EXPECT_STREQ( pA->GetFileName(), strA );
	EXPECT_STREQ( pA->GetText(), "edited a" );
	EXPECT_TRUE( pA->IsModified() );
	EXPECT_FALSE( pA->IsNewFile() );
	EXPECT_EQ( ReadText( m_Root / "content/particles/a.txt" ), "data" );
	ASSERT_NE( FindEntry( app, strA ), nullptr );
	EXPECT_TRUE( FindEntry( app, strA )->m_bAutosaved );

	auto *pNew = static_cast<CTestSession *>( app.FindSessionByFile( strUntitled ) );
	ASSERT_NE( pNew, nullptr );
	EXPECT_STREQ( pNew->GetText(), "a new document" );
	EXPECT_TRUE( pNew->IsModified() );
	EXPECT_TRUE( pNew->IsNewFile() ) << "a save still asks where it goes";
	EXPECT_TRUE( app.GetAutosaveManager().IsNewFile( strUntitled ) );
	EXPECT_FALSE( fs::exists( Host_DiskPath( strUntitled ).Get() ) );

	for ( CBaseEditorSession *pSession : app.GetSessions() )
		pSession->SetModified( false );
	app.ShutdownTool();
}

TEST_F( AutosaveTest, DecliningRecoveryClearsTheMarksAndOpensNothing )
{
	CUtlString strUntitled = CrashWithAnEditAndANewDocument();

	Plat_SetTestMode( false );
	CTestApp app;
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Recover Files?" );
	Start( app );
	EXPECT_TRUE( app.GetSessions().empty() );
	const AutosaveFileEntry_t *pEntry = FindEntry( app, Native( m_Root / "content/particles/a.txt" ) );
	ASSERT_NE( pEntry, nullptr );
	EXPECT_TRUE( pEntry->m_bClosedCorrectly );
	EXPECT_FALSE( pEntry->m_bAutosaved );
	EXPECT_FALSE( app.GetAutosaveManager().IsNewFile( strUntitled ) );
	app.ShutdownTool();

	// Asked once: the next start asks nothing.
	CTestApp next;
	Start( next );
	EXPECT_TRUE( next.GetSessions().empty() );
	next.ShutdownTool();
}

TEST_F( AutosaveTest, HeadlessRunAsksNothingAndLeavesTheRecoveryForTheNextStart )
{
	RunAndCrash( [ & ] {
		OpenAndEdit( "particles/a.txt", "edited a" );
		m_App.GetAutosaveManager().AutosaveAll( false );
	} );

	// Test mode: a headless run.
	{
		CTestApp headless;
		Start( headless );
		EXPECT_TRUE( headless.GetSessions().empty() );
		EXPECT_TRUE( headless.GetAutosaveManager().IsKeepingRecovery() );
		// Opening and closing the file in the meantime changes nothing of it either.
		CBaseEditorSession *pA = headless.OpenFile( Native( m_Root / "content/particles/a.txt" ), true );
		ASSERT_NE( pA, nullptr );
		EXPECT_TRUE( headless.CloseSession( pA ) );
		headless.ShutdownTool();
	}
	EXPECT_NE( StoredSettings().find( "\"Closed Correctly\" = false" ), std::string::npos );

	Plat_SetTestMode( false );
	CTestApp app;
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Recover Files?" );
	Start( app );
	ASSERT_EQ( app.GetSessions().size(), 1u );
	EXPECT_STREQ( static_cast<CTestSession *>( app.GetSessions()[ 0 ] )->GetText(), "edited a" );
	app.GetSessions()[ 0 ]->SetModified( false );
	app.ShutdownTool();
}

TEST_F( AutosaveTest, AutosaveOlderThanItsFileIsNotOffered )
{
	RunAndCrash( [ & ] {
		OpenAndEdit( "particles/a.txt", "edited a" );
		m_App.GetAutosaveManager().AutosaveAll( false );
	} );
	// The file was saved after its last autosave.
	std::ofstream( m_Root / "content/particles/a.txt" ) << "saved later";
	SetAge( m_Root / "content/particles/a.txt", 60 );

	Plat_SetTestMode( false );
	CTestApp app;
	Start( app );
	EXPECT_EQ( m_Prompt.FindRecord( "Recover Files?" ), nullptr );
	EXPECT_TRUE( app.GetSessions().empty() );
	app.ShutdownTool();
}

TEST_F( AutosaveTest, FileOutsideTheContentTreeRecoversFromAFolderOfItsOwn )
{
	fs::create_directories( m_Root / "drafts" );
	std::ofstream( m_Root / "drafts/a.txt" ) << "outside";
	CUtlString strOutside = Native( m_Root / "drafts/a.txt" );
	RunAndCrash( [ & ] {
		auto *pSession = static_cast<CTestSession *>( m_App.OpenFile( strOutside, true ) );
		ASSERT_NE( pSession, nullptr );
		pSession->Edit( "edited outside" );
		m_App.GetAutosaveManager().AutosaveAll( false );
	} );
	fs::path externalDirectory = m_Root / "content_toolsautosave" / TOOL_NAME / AUTOSAVE_EXTERNAL_FOLDER / m_Root.relative_path() / "drafts";
	EXPECT_EQ( ReadText( externalDirectory / "a001.txt_autosave" ), "edited outside" );

	Plat_SetTestMode( false );
	CTestApp app;
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Recover Files?" );
	// Its place is outside the content tree, as the question says.
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Open File" );
	Start( app );
	const CScriptedPrompt::Record_t *pOpen = m_Prompt.FindRecord( "Open File" );
	ASSERT_NE( pOpen, nullptr );
	EXPECT_NE( strstr( pOpen->m_strText, "This autosave file's original file location:" ), nullptr );
	ASSERT_EQ( app.GetSessions().size(), 1u );
	CTestSession *pSession = static_cast<CTestSession *>( app.GetSessions()[ 0 ] );
	EXPECT_STREQ( pSession->GetFileName(), strOutside );
	EXPECT_STREQ( pSession->GetText(), "edited outside" );
	EXPECT_EQ( ReadText( m_Root / "drafts/a.txt" ), "outside" );
	pSession->SetModified( false );
	app.ShutdownTool();
}

TEST_F( AutosaveTest, AutosaveOfAnOpenFileIsRefused )
{
	CTestSession *pA = OpenAndEdit( "particles/a.txt", "edited" );
	ASSERT_NE( pA, nullptr );
	m_App.GetAutosaveManager().AutosaveAll( false );
	EXPECT_EQ( m_App.OpenFile( Native( AutosaveDirectory() / "a001.txt_autosave" ), true ), nullptr );
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Unable to open" );
	ASSERT_NE( pRecord, nullptr );
	EXPECT_STREQ( pRecord->m_strText, "The source file of this autosave is already open. Close it first to open this file." );
	// The same through the open dialog.
	m_Prompt.ExpectOpenFile( Native( AutosaveDirectory() / "a001.txt_autosave" ) );
	m_App.ShowOpenDialog();
	EXPECT_EQ( m_Prompt.CountRecords( PROMPT_KIND_MESSAGE ), 2 );
	EXPECT_EQ( m_App.GetSessions().size(), 1u );
}
