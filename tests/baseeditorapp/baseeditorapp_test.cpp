// The editor framework's open, save, close and history rules, driven through the scripted
// prompt on a real file system in a scratch directory.

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>
#include <cstring>

#include "core/host/toolsettingsstore.h"
#include "core/text/pathtools.h"
#include "tests/baseeditorapp/baseeditortestapp.h"

namespace fs = std::filesystem;


TEST_F( BaseEditorAppTest, OpeningAnOpenFileActivatesItsSessionAndCreatesNothing )
{
	CUtlString strA = MakeFile( "particles/a.txt" );
	CUtlString strB = MakeFile( "particles/b.txt" );
	CBaseEditorSession *pA = m_App.OpenFile( strA, true );
	CBaseEditorSession *pB = m_App.OpenFile( strB, true );
	ASSERT_TRUE( pA && pB );
	EXPECT_EQ( m_App.GetActiveSession(), pB );

	CUtlString strUpper( strA );
	strUpper.ToUpper();
	EXPECT_EQ( m_App.OpenFile( strUpper, true ), pA );
	EXPECT_EQ( m_App.GetSessions().size(), 2u );
	EXPECT_EQ( m_App.GetActiveSession(), pA );
	EXPECT_EQ( m_App.GetSessionHistory().Count(), 3 );
	EXPECT_FALSE( pA->IsNewFile() );
}

TEST_F( BaseEditorAppTest, OpenDuringAnotherOpenIsDropped )
{
	CUtlString strA = MakeFile( "particles/a.txt" );
	m_App.m_strNestedOpen = MakeFile( "particles/b.txt" );
	CBaseEditorSession *pA = m_App.OpenFile( strA, true );
	ASSERT_NE( pA, nullptr );
	EXPECT_EQ( m_App.m_pNestedResult, nullptr );
	EXPECT_EQ( m_App.GetSessions().size(), 1u );
	EXPECT_FALSE( m_App.IsOpening() );
}

TEST_F( BaseEditorAppTest, FailedLoadShowsTheErrorAndLeavesNoSession )
{
	CUtlString strA = MakeFile( "particles/a.txt" );
	m_App.m_nOpenResult = EDITOR_OPEN_FAILED;
	m_Prompt.ExpectMessage( "Error opening file" );
	EXPECT_EQ( m_App.OpenFile( strA, true ), nullptr );
	EXPECT_TRUE( m_App.GetSessions().empty() );
	EXPECT_EQ( m_App.m_nDestroyed, 1 );
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Error opening file" );
	ASSERT_NE( pRecord, nullptr );
	EXPECT_NE( strstr( pRecord->m_strText, "bad data on line 3" ), nullptr );
	EXPECT_TRUE( m_App.GetAutosaveManager().GetRecentFiles().empty() );
}

TEST_F( BaseEditorAppTest, MissingFileIsReportedAndNothingOpens )
{
	m_Prompt.ExpectMessage( "Error opening file" );
	EXPECT_EQ( m_App.OpenFile( Native( m_Root / "content" / "particles" / "gone.txt" ), true ), nullptr );
	EXPECT_TRUE( m_App.GetSessions().empty() );
}

TEST_F( BaseEditorAppTest, ContentCopyLeavesTheSessionWithoutAFileName )
{
	m_App.m_nOpenResult = EDITOR_OPEN_CONTENT_COPY;
	CBaseEditorSession *pSession = m_App.OpenFile( MakeFile( "particles/a.txt" ), true );
	ASSERT_NE( pSession, nullptr );
	EXPECT_STREQ( pSession->GetFileName(), "" );
	EXPECT_TRUE( m_App.GetAutosaveManager().GetRecentFiles().empty() );
}

TEST_F( BaseEditorAppTest, SaveAsOntoAnotherSessionsFileIsRefusedButOwnFileIsNot )
{
	CUtlString strA = MakeFile( "particles/a.txt" );
	CUtlString strB = MakeFile( "particles/b.txt" );
	CBaseEditorSession *pA = m_App.OpenFile( strA, true );
	m_App.OpenFile( strB, true );

	m_Prompt.ExpectSaveFile( strB, "Save Session" );
	m_Prompt.ExpectMessage( "Unable to save" );
	EXPECT_FALSE( m_App.SaveSessionAs( pA ) );
	EXPECT_STREQ( pA->GetFileName(), strA.Get() );

	m_Prompt.ExpectSaveFile( strA, "Save Session" );
	EXPECT_TRUE( m_App.SaveSessionAs( pA ) );
	EXPECT_FALSE( pA->IsModified() );
}

TEST_F( BaseEditorAppTest, SaveAsLowerCasesTheNewNameAndRefusesBadCharacters )
{
	CBaseEditorSession *pA = m_App.OpenFile( MakeFile( "particles/a.txt" ), true );
	// The last component is lower-cased, so this one passes the path check.
	m_Prompt.ExpectSaveFile( Native( m_Root / "content" / "particles" / "NewName.txt" ), "Save Session" );
	EXPECT_TRUE( m_App.SaveSessionAs( pA ) );
	EXPECT_TRUE( fs::exists( m_Root / "content" / "particles" / "newname.txt" ) );

	// An upper-case directory inside the content tree is refused, and the dialog comes again.
	fs::create_directories( m_Root / "content" / "Bad" );
	m_Prompt.ExpectSaveFile( Native( m_Root / "content" / "Bad" / "c.txt" ), "Save Session" );
	m_Prompt.ExpectMessage( "Save session" );
	m_Prompt.ExpectCancelledDialog( PROMPT_KIND_SAVE_FILE, "Save Session" );
	EXPECT_FALSE( m_App.SaveSessionAs( pA ) );
	EXPECT_FALSE( fs::exists( m_Root / "content" / "Bad" / "c.txt" ) );
	// The refusal says why; the dialog records share its title, so look for the message.
	const CScriptedPrompt::Record_t *pRefusal = nullptr;
	for ( const CScriptedPrompt::Record_t &record : m_Prompt.GetRecords() )
	{
		if ( record.m_eKind == PROMPT_KIND_MESSAGE )
			pRefusal = &record;
	}
	ASSERT_NE( pRefusal, nullptr );
	EXPECT_NE( strstr( pRefusal->m_strText, "lower case" ), nullptr );
}

TEST_F( BaseEditorAppTest, SavingANewSessionGoesThroughSaveAsAndLeavesTheNewFilesList )
{
	CBaseEditorSession *pNew = m_App.NewSession();
	ASSERT_NE( pNew, nullptr );
	CUtlString strUntitled( pNew->GetFileName() );
	EXPECT_TRUE( m_App.GetAutosaveManager().IsNewFile( strUntitled ) );

	CUtlString strTarget = Native( m_Root / "content" / "particles" / "fresh.txt" );
	m_Prompt.ExpectSaveFile( strTarget, "Save Session" );
	EXPECT_TRUE( m_App.SaveSession( pNew ) );
	EXPECT_FALSE( pNew->IsNewFile() );
	EXPECT_FALSE( m_App.GetAutosaveManager().IsNewFile( strUntitled ) );
	EXPECT_TRUE( fs::exists( m_Root / "content" / "particles" / "fresh.txt" ) );
}

TEST_F( BaseEditorAppTest, CancelOnSaveChangesStopsCloseAllAndKeepsTheRest )
{
	CBaseEditorSession *pA = m_App.OpenFile( MakeFile( "particles/a.txt" ), true );
	CBaseEditorSession *pB = m_App.OpenFile( MakeFile( "particles/b.txt" ), true );
	CBaseEditorSession *pC = m_App.OpenFile( MakeFile( "particles/c.txt" ), true );
	pB->SetModified( true );
	pC->SetModified( true );

	m_Prompt.ExpectQuestion( PROMPT_BUTTON_CANCEL, "Save changes?" );
	EXPECT_FALSE( m_App.CloseAllSessions() );
	ASSERT_EQ( m_App.GetSessions().size(), 2u );
	EXPECT_EQ( m_App.GetSessions()[ 0 ], pB );
	EXPECT_EQ( m_App.GetSessions()[ 1 ], pC );
	EXPECT_TRUE( pB->IsModified() );
	(void)pA;

	// No discards the changes and closes.
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
	EXPECT_TRUE( m_App.CloseAllSessions() );
	EXPECT_TRUE( m_App.GetSessions().empty() );
	EXPECT_EQ( m_App.GetActiveSession(), nullptr );
}

TEST_F( BaseEditorAppTest, UntitledNamesSkipFilesOnDiskAndKeepCounting )
{
	CBaseEditorSession *pFirst = m_App.NewSession();
	ASSERT_NE( pFirst, nullptr );
	char szBase[ 260 ];
	V_FileBase( pFirst->GetFileName(), szBase, sizeof( szBase ) );
	int nFirst = atoi( szBase + strlen( "untitled_" ) );

	// The next two numbers are taken on disk, in any letter case.
	MakeFile( ( "particles/untitled_" + std::to_string( nFirst + 1 ) + ".txt" ).c_str() );
	MakeFile( ( "particles/UNTITLED_" + std::to_string( nFirst + 2 ) + ".dat" ).c_str() );
	CBaseEditorSession *pSecond = m_App.NewSession();
	V_FileBase( pSecond->GetFileName(), szBase, sizeof( szBase ) );
	EXPECT_EQ( atoi( szBase + strlen( "untitled_" ) ), nFirst + 3 );
	EXPECT_EQ( m_App.GetActiveSession(), pSecond );
}

TEST_F( BaseEditorAppTest, RecentFilesAreNewestFirstAndSurviveTheSettings )
{
	CUtlString strA = MakeFile( "particles/a.txt" );
	CUtlString strB = MakeFile( "particles/b.txt" );
	m_App.OpenFile( strA, true );
	m_App.OpenFile( strB, true );
	m_App.CloseAllSessions();
	m_App.OpenFile( strA, true );
	const auto &recent = m_App.GetAutosaveManager().GetRecentFiles();
	ASSERT_EQ( recent.size(), 2u );
	EXPECT_TRUE( V_PathsMatch( recent[ 0 ].m_strFileName, strA ) );
	EXPECT_TRUE( V_PathsMatch( recent[ 1 ].m_strFileName, strB ) );

	m_App.SaveSettings( nullptr );
	m_App.MarkSettingsDirty();
	m_App.SaveSettings( nullptr );
	// A deleted file drops out when the settings are read again.
	fs::remove( m_Root / "content" / "particles" / "b.txt" );
	CTestApp other;
	const KeyValues3 &stored = m_App.GetStoredSettings();
	ASSERT_TRUE( stored.IsTable() );
	other.GetAutosaveManager().ReadSettings( stored.FindMember( "RecentFiles" ), stored.FindMember( "NewFiles" ) );
	ASSERT_EQ( other.GetAutosaveManager().GetRecentFiles().size(), 1u );
	EXPECT_TRUE( V_PathsMatch( other.GetAutosaveManager().GetRecentFiles()[ 0 ].m_strFileName, strA ) );
}

TEST_F( BaseEditorAppTest, ClosingASessionInTheHistoryRemovesItsEntries )
{
	CBaseEditorSession *pA = m_App.OpenFile( MakeFile( "particles/a.txt" ), true );
	CBaseEditorSession *pB = m_App.OpenFile( MakeFile( "particles/b.txt" ), true );
	CBaseEditorSession *pC = m_App.OpenFile( MakeFile( "particles/c.txt" ), true );
	m_App.SetActiveEditorSession( pB, false, false );
	// History: a b c b, at the end.
	ASSERT_EQ( m_App.GetSessionHistory().Count(), 4 );
	m_App.ActivatePreviousEditorSession();
	EXPECT_EQ( m_App.GetActiveSession(), pC );

	EXPECT_TRUE( m_App.CloseSession( pB ) );
	EXPECT_EQ( m_App.GetSessionHistory().Count(), 2 );
	EXPECT_EQ( m_App.GetSessionHistory().GetPosition(), 1 );
	m_App.ActivatePreviousEditorSession();
	EXPECT_EQ( m_App.GetActiveSession(), pA );
	m_App.ActivateNextEditorSession();
	EXPECT_EQ( m_App.GetActiveSession(), pC );
}

TEST_F( BaseEditorAppTest, ReloadAsksBeforeDiscardingChanges )
{
	CBaseEditorSession *pA = m_App.OpenFile( MakeFile( "particles/a.txt" ), true );
	pA->SetModified( true );
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Warning!" );
	pA->ConfirmReload();
	const CScriptedPrompt::Record_t *pRecord = m_Prompt.FindRecord( "Warning!" );
	ASSERT_NE( pRecord, nullptr );
	EXPECT_EQ( pRecord->m_eDefaultButton, PROMPT_BUTTON_NO );
	EXPECT_TRUE( pA->IsModified() );
	// The changes are still there, so closing asks about them.
	m_Prompt.ExpectQuestion( PROMPT_BUTTON_NO, "Save changes?" );
}

TEST_F( BaseEditorAppTest, NamedToolKeepsItsRecentFilesInTheUserSettingsAcrossRuns )
{
	fs::create_directories( m_Root / "settings" );
	GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );
	CUtlString strA = MakeFile( "particles/a.txt" );
	{
		CTestApp first;
		first.UseToolName( "testtool" );
		ASSERT_TRUE( first.StartTool( 1 ) );
		first.OpenFile( strA, true );
		first.ShutdownTool();
	}
	EXPECT_TRUE( fs::exists( m_Root / "settings" / "testtool_settings.kv3" ) );

	CTestApp second;
	second.UseToolName( "testtool" );
	ASSERT_TRUE( second.StartTool( 1 ) );
	const auto &recent = second.GetAutosaveManager().GetRecentFiles();
	ASSERT_EQ( recent.size(), 1u );
	EXPECT_TRUE( V_PathsMatch( recent[ 0 ].m_strFileName, strA ) );
	second.ShutdownTool();
	GetToolSettingsStore().SetDirectory( "" );
}

TEST_F( BaseEditorAppTest, DamagedSettingsFileStartsTheToolWithDefaults )
{
	fs::create_directories( m_Root / "settings" );
	GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );
	std::ofstream( m_Root / "settings" / "testtool_settings.kv3" ) << "{ this is not kv3 \"";
	CTestApp app;
	app.UseToolName( "testtool" );
	ASSERT_TRUE( app.StartTool( 1 ) );
	EXPECT_TRUE( app.GetAutosaveManager().GetRecentFiles().empty() );
	// Shutting down writes good settings over the damaged file.
	app.ShutdownTool();
	KeyValues3 stored;
	EXPECT_TRUE( GetToolSettingsStore().Load( "testtool", &stored ) );
	EXPECT_TRUE( stored.IsTable() );
	GetToolSettingsStore().SetDirectory( "" );
}

TEST_F( BaseEditorAppTest, VersionControlCommandsWithoutAServiceSayWhyAndChangeNothing )
{
	// Nothing to act on: no box at all.
	EXPECT_FALSE( m_App.VersionControlCheckOut() );
	EXPECT_FALSE( m_App.VersionControlCheckIn() );
	EXPECT_EQ( m_Prompt.GetRecords().Count(), 0 );

	CBaseEditorSession *pSession = m_App.OpenFile( MakeFile( "particles/a.txt" ), true );
	ASSERT_NE( pSession, nullptr );
	EXPECT_FALSE( pSession->CanAddToVersionControl() );
	EXPECT_FALSE( m_App.VersionControlAdd() );
	EXPECT_EQ( m_Prompt.GetRecords().Count(), 0 ) << "adding needs a service, and there is none to fail";

	EXPECT_FALSE( m_App.VersionControlCheckOut() );
	const CScriptedPrompt::Record_t *pCheckOut = m_Prompt.FindRecord( "Check Out failed" );
	ASSERT_NE( pCheckOut, nullptr );
	EXPECT_EQ( strncmp( pCheckOut->m_strText, "Could not check out file\n", 25 ), 0 ) << pCheckOut->m_strText.Get();
	EXPECT_GT( pCheckOut->m_strText.Length(), 25u ) << "the reason follows";

	EXPECT_FALSE( m_App.VersionControlCheckIn() );
	EXPECT_FALSE( m_App.VersionControlCheckInAll() );
	EXPECT_FALSE( m_App.VersionControlStatus() );
	EXPECT_NE( m_Prompt.FindRecord( "Check In" ), nullptr );
	EXPECT_NE( m_Prompt.FindRecord( "Check In All" ), nullptr );
	EXPECT_NE( m_Prompt.FindRecord( "Status" ), nullptr );
	EXPECT_FALSE( pSession->IsModified() );
	EXPECT_FALSE( pSession->IsInVersionControl() );
}
