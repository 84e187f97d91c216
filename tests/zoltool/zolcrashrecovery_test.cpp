// Crash and recovery end to end: the editor itself runs in a child process on a scratch
// content tree, makes an edit and autosaves it through a scripted run (--do), and is
// killed with SIGKILL; a fresh editor then starts on the same tree and settings and, with
// the scripted prompt answering the recovery question, shows what came back.

#include <gtest/gtest.h>

#include <poll.h>
#include <signal.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "core/host/hostpaths.h"
#include "core/kv3/keyvalues3.h"
#include "core/text/pathtools.h"
#include "tests/zoltool/zolapptestsupport.h"
#include "zoldoc_lib/zoldoc.h"
#include "zoldoc_lib/zolrootnode.h"

extern char **environ;

namespace
{
namespace fs = std::filesystem;

// The sanitized editor takes a while to start on a busy machine.
constexpr int CHILD_TIMEOUT_SECONDS = 180;

// The editor as a child process, its standard output read through a pipe.
class CChildEditor
{
public:
	CChildEditor( const fs::path &root, const std::vector<std::string> &arguments )
	{
		std::vector<std::string> args = { ZOL_EXECUTABLE, "--game", ( root / "game" ).string(), "--content", ( root / "content" ).string() };
		args.insert( args.end(), arguments.begin(), arguments.end() );
		std::vector<std::string> environment = { "ZOL_SETTINGS_DIR=" + ( root / "settings" ).string(), "QT_QPA_PLATFORM=offscreen" };
		for ( char **ppVariable = environ; *ppVariable; ++ppVariable )
		{
			if ( strncmp( *ppVariable, "ZOL_SETTINGS_DIR=", 17 ) && strncmp( *ppVariable, "QT_QPA_PLATFORM=", 16 ) )
				environment.emplace_back( *ppVariable );
		}
		std::vector<char *> argv;
		for ( std::string &arg : args )
			argv.push_back( arg.data() );
		argv.push_back( nullptr );
		std::vector<char *> envp;
		for ( std::string &variable : environment )
			envp.push_back( variable.data() );
		envp.push_back( nullptr );

		int pipeFds[ 2 ];
		if ( pipe( pipeFds ) != 0 )
			return;
		posix_spawn_file_actions_t actions;
		posix_spawn_file_actions_init( &actions );
		posix_spawn_file_actions_adddup2( &actions, pipeFds[ 1 ], STDOUT_FILENO );
		posix_spawn_file_actions_addclose( &actions, pipeFds[ 0 ] );
		if ( posix_spawn( &m_Pid, ZOL_EXECUTABLE, &actions, nullptr, argv.data(), envp.data() ) != 0 )
			m_Pid = -1;
		posix_spawn_file_actions_destroy( &actions );
		close( pipeFds[ 1 ] );
		m_nOutput = pipeFds[ 0 ];
	}

	~CChildEditor()
	{
		Kill();
		if ( m_nOutput >= 0 )
			close( m_nOutput );
	}

	bool IsRunning() const { return m_Pid > 0; }
	const std::string &GetOutput() const { return m_Output; }

	// Reads the child's output until it holds pText; false when the child ended first or
	// the time ran out.
	bool WaitForOutput( const char *pText )
	{
		auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds( CHILD_TIMEOUT_SECONDS );
		while ( m_Output.find( pText ) == std::string::npos )
		{
			if ( std::chrono::steady_clock::now() > deadline )
				return false;
			pollfd poller = { m_nOutput, POLLIN, 0 };
			if ( poll( &poller, 1, 200 ) <= 0 )
				continue;
			char chunk[ 4096 ];
			ssize_t nRead = read( m_nOutput, chunk, sizeof( chunk ) );
			if ( nRead <= 0 )
				return false;
			m_Output.append( chunk, size_t( nRead ) );
		}
		return true;
	}

	// Waits until the child stopped itself (SIGSTOP); false when it ended or the time ran out.
	bool WaitForStop()
	{
		auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds( CHILD_TIMEOUT_SECONDS );
		while ( std::chrono::steady_clock::now() < deadline )
		{
			int nStatus = 0;
			pid_t nResult = waitpid( m_Pid, &nStatus, WUNTRACED | WNOHANG );
			if ( nResult == m_Pid )
			{
				if ( WIFSTOPPED( nStatus ) )
					return true;
				m_Pid = -1;
				return false;
			}
			usleep( 50 * 1000 );
		}
		return false;
	}

	// The crash: no chance to clean up or write anything more.
	void Kill()
	{
		if ( m_Pid <= 0 )
			return;
		kill( m_Pid, SIGKILL );
		int nStatus = 0;
		waitpid( m_Pid, &nStatus, 0 );
		m_Pid = -1;
	}

private:
	pid_t m_Pid = -1;
	int m_nOutput = -1;
	std::string m_Output;
};

class ZolCrashRecoveryTest : public ZolAppTest
{
protected:
	void SetUp() override
	{
		ZolAppTest::SetUp();
		m_strFire = MemoryPath( m_Root / "content/particles/samples/fire.tfxs" );
		m_FireBefore = ReadText( m_Root / "content/particles/samples/fire.tfxs" );
	}

	void TearDown() override
	{
		ZolAppTest::TearDown();
		Plat_SetTestMode( true );
		EXPECT_FALSE( m_Prompt.HasFailures() );
	}

	// Runs the editor on fire.tfxs with the steps, and kills it once it printed pUntil.
	void RunAndKill( const std::vector<std::string> &steps, const char *pUntil, bool bOpenFire = true )
	{
		std::vector<std::string> arguments;
		for ( const std::string &step : steps )
		{
			arguments.push_back( "--do" );
			arguments.push_back( step );
		}
		if ( bOpenFire )
			arguments.push_back( ( m_Root / "content/particles/samples/fire.tfxs" ).string() );
		CChildEditor child( m_Root, arguments );
		ASSERT_TRUE( child.IsRunning() );
		ASSERT_TRUE( child.WaitForOutput( pUntil ) ) << "the editor printed:\n" << child.GetOutput();
		child.Kill();
	}

	// A fresh editor, as an artist starts it: not headless, so it asks.
	void StartInteractively()
	{
		Plat_SetTestMode( false );
		Start();
	}

	// Starts a fresh editor that answers Yes to the recovery question; the one session it
	// must then have, or null.
	CZolSession *RecoverTheSession()
	{
		m_Prompt.ExpectQuestion( PROMPT_BUTTON_YES, "Recover Files?" );
		StartInteractively();
		if ( m_pApp->GetSessions().size() != 1 )
		{
			ADD_FAILURE() << m_pApp->GetSessions().size() << " sessions after the recovery";
			return nullptr;
		}
		return static_cast<CZolSession *>( m_pApp->GetSessions()[ 0 ] );
	}

	static int MaxParticles( CZolSession *pSession ) { return pSession->GetDoc()->GetRoot()->GetKV3()->GetMemberInt( "m_nMaxParticles" ); }

	fs::path AutosaveDirectory() const { return m_Root / "content_toolsautosave/particles/particles/samples"; }

	CUtlString m_strFire;
	std::string m_FireBefore;
};
} // namespace

TEST_F( ZolCrashRecoveryTest, EditComesBackUnderItsNameModifiedAndTheFileIsUnchanged )
{
	RunAndKill( { "set m_nMaxParticles 4321", "autosave" }, "zol: autosave: autosaved 1 of 1" );
	ASSERT_TRUE( fs::exists( AutosaveDirectory() / "fire001.tfxs_autosave" ) );

	CZolSession *pSession = RecoverTheSession();
	ASSERT_NE( pSession, nullptr );
	EXPECT_STREQ( pSession->GetFileName(), m_strFire );
	EXPECT_TRUE( pSession->IsModified() );
	EXPECT_FALSE( pSession->IsNewFile() );
	EXPECT_EQ( MaxParticles( pSession ), 4321 );
	EXPECT_EQ( ReadText( m_Root / "content/particles/samples/fire.tfxs" ), m_FireBefore );
	// The recovered session is the file's: its asset, and a save goes to the file.
	ASSERT_NE( pSession->GetAsset(), nullptr );
	EXPECT_STREQ( pSession->GetAsset()->GetPath(), "particles\\samples\\fire.tfxs" );
	ASSERT_TRUE( m_pApp->SaveSession( pSession ) );
	EXPECT_NE( ReadText( m_Root / "content/particles/samples/fire.tfxs" ).find( "4321" ), std::string::npos );
}

TEST_F( ZolCrashRecoveryTest, UnsavedNewDocumentComesBackAsOne )
{
	RunAndKill( { "new", "set m_nMaxParticles 777", "autosave" }, "zol: autosave: autosaved 1 of 1", false );

	CZolSession *pSession = RecoverTheSession();
	ASSERT_NE( pSession, nullptr );
	EXPECT_TRUE( pSession->IsNewFile() );
	EXPECT_TRUE( pSession->IsModified() );
	EXPECT_EQ( MaxParticles( pSession ), 777 );
	EXPECT_NE( strstr( V_UnqualifiedFileName( pSession->GetFileName() ), "untitled_particle_" ), nullptr ) << pSession->GetFileName();
	EXPECT_FALSE( fs::exists( Host_DiskPath( pSession->GetFileName() ).Get() ) ) << "never saved, so no file";
}

TEST_F( ZolCrashRecoveryTest, AutosaveOlderThanItsFileIsNotOffered )
{
	RunAndKill( { "set m_nMaxParticles 4321", "autosave" }, "zol: autosave: autosaved 1 of 1" );
	// The artist saved the file some other way after the last autosave.
	WriteText( m_Root / "content/particles/samples/fire.tfxs", m_FireBefore );
	fs::last_write_time( m_Root / "content/particles/samples/fire.tfxs", fs::file_time_type::clock::now() + std::chrono::seconds( 60 ) );

	StartInteractively();
	EXPECT_EQ( m_Prompt.FindRecord( "Recover Files?" ), nullptr );
	EXPECT_TRUE( m_pApp->GetSessions().empty() );
}

TEST_F( ZolCrashRecoveryTest, KillBetweenTheTemporaryAndTheRenameKeepsThePreviousAutosave )
{
	std::vector<std::string> arguments = { "--do", "set m_nMaxParticles 1111", "--do", "autosave", "--do", "set m_nMaxParticles 2222", "--do",
		"stop-before-rename *.tfxs_autosave", "--do", "autosave", ( m_Root / "content/particles/samples/fire.tfxs" ).string() };
	{
		CChildEditor child( m_Root, arguments );
		ASSERT_TRUE( child.IsRunning() );
		ASSERT_TRUE( child.WaitForStop() ) << "the editor printed:\n" << child.GetOutput();
		child.WaitForOutput( "zol: stopped before renaming" );
		EXPECT_NE( child.GetOutput().find( "fire002.tfxs_autosave\n" ), std::string::npos ) << child.GetOutput();
		child.Kill();
	}
	// The second autosave stands complete in its temporary, never renamed.
	std::vector<fs::path> temporaries;
	for ( const fs::directory_entry &entry : fs::directory_iterator( AutosaveDirectory() ) )
	{
		if ( entry.path().filename().string()[ 0 ] == '.' )
			temporaries.push_back( entry.path() );
	}
	ASSERT_EQ( temporaries.size(), 1u );
	EXPECT_NE( ReadText( temporaries[ 0 ] ).find( "2222" ), std::string::npos );
	EXPECT_FALSE( fs::exists( AutosaveDirectory() / "fire002.tfxs_autosave" ) );

	CZolSession *pSession = RecoverTheSession();
	ASSERT_NE( pSession, nullptr );
	EXPECT_STREQ( pSession->GetFileName(), m_strFire );
	EXPECT_EQ( MaxParticles( pSession ), 1111 ) << "the previous autosave, whole";
	EXPECT_EQ( ReadText( m_Root / "content/particles/samples/fire.tfxs" ), m_FireBefore );
}
