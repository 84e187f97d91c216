// The application's commands: the ones the menus and keys run, in the order users see
// them, and the shipped key binding files naming only commands that exist.

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <unistd.h>
#include <vector>

#include "core/host/hostservices.h"
#include "core/host/interfaceregistry.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/platform/platformmode.h"
#include "particleslib/particleinputclasses.h"
#include "tools/toolutils2/inputbind/bindtargetdescriptor.h"
#include "tools/toolutils2/widgets/inputbind/inputbindmanager.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmoduleexports.h"

namespace fs = std::filesystem;

namespace
{
class ZolAppCommandsTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		Plat_SetTestMode( true );
		m_Root = fs::temp_directory_path() / ( "zol_commands_" + std::to_string( getpid() ) );
		fs::remove_all( m_Root );
		fs::create_directories( m_Root / "content/particles" );
		fs::create_directories( m_Root / "settings" );
		fs::copy( fs::path( ZOL_SOURCE_DIR ) / "content" / "game", m_Root / "game", fs::copy_options::recursive );
		GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );
		CUtlString strError;
		ASSERT_TRUE( m_Services.Init( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str(), &strError ) ) << strError.Get();
		RegisterParticleInputClasses();
		m_Services.SetParticleSystemMgr( HostParticleSystemMgr() );
		int nCode = -1;
		m_pApp = static_cast<CZolApp *>( static_cast<CBaseToolSystem2 *>( CreateInterface( "ToolSystem2_001", &nCode ) ) );
		ASSERT_NE( m_pApp, nullptr );
		m_pApp->SetCreatesMainWindow( false );
		ASSERT_TRUE( m_pApp->Connect( &Host_CreateInterface ) );
		ASSERT_TRUE( m_pApp->StartTool( 0 ) );
	}
	void TearDown() override
	{
		for ( CBaseEditorSession *pSession : m_pApp->GetSessions() )
			pSession->SetModified( false );
		EXPECT_TRUE( m_pApp->CloseAllSessions() );
		m_pApp->ShutdownTool();
		m_pApp->Disconnect();
		m_Services.SetParticleSystemMgr( nullptr );
		GetToolSettingsStore().SetDirectory( "" );
		fs::remove_all( m_Root );
	}

	fs::path m_Root;
	CHostServices m_Services;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	CZolApp *m_pApp = nullptr;
};

TEST_F( ZolAppCommandsTest, DescriptorListsTheCommandsInMenuOrder )
{
	const CBindTargetDescriptorBase *pDescriptor = m_pApp->GetBindTargetDescriptor();
	ASSERT_NE( pDescriptor, nullptr );
	EXPECT_STREQ( pDescriptor->GetTargetName(), "ZolApp" );
	EXPECT_STREQ( pDescriptor->GetClassName(), "CZolApp" );
	const std::vector<std::string> expected = { "FileNew", "FileOpen", "FileSave", "FileSaveAs", "FileClose", "FileReload", "ClearRecentFiles",
		"VersionControlAdd", "VersionControlCheckIn", "VersionControlCheckOut", "VersionControlCheckInAll", "VersionControlStatus",
		"ActivateNextEditorSession", "ActivatePreviousEditorSession", "NextSession", "PreviousSession", "FileOpenDir", "FileSaveAll",
		"FileCloseAll", "ResetLayout", "RestartPreview", "RestartGlobal", "StopSim", "StopSimWithEndcap" };
	std::vector<std::string> names;
	for ( int i = 0; i < pDescriptor->GetCommandCount(); ++i )
		names.push_back( pDescriptor->GetCommand( i )->GetName() );
	EXPECT_EQ( names, expected );
}

TEST_F( ZolAppCommandsTest, ShippedBindingsNameOnlyCommandsThatExist )
{
	CInputBindEngine &engine = CQInputBindManager::Get()->GetEngine();
	bool bZolFileLoaded = false;
	for ( const CUtlString &strFile : engine.GetBindingList().GetLoadedFiles() )
		bZolFileLoaded |= strFile.IsEqual_CaseInsensitive( "tools/keybindings/zol_key_bindings.txt" );
	EXPECT_TRUE( bZolFileLoaded );
	int nZolBindings = 0;
	for ( const InputBinding_t &binding : engine.GetBindingList().GetBindings() )
	{
		// Bindings of test targets loaded by other tests of this process don't count.
		if ( binding.m_strContext != "ZolApp" && binding.m_strContext != "SessionCycleWidget" && binding.m_strContext != "GlobalHotkeys" )
			continue;
		const CBindTargetDescriptorBase *pDescriptor = CBindTargetDescriptorBase::FindKnownDescriptor( binding.m_nContextToken );
		ASSERT_NE( pDescriptor, nullptr ) << binding.m_strContext.Get();
		EXPECT_NE( pDescriptor->FindCommand( binding.m_nCommandToken ), nullptr ) << binding.m_strContext.Get() << "." << binding.m_strCommand.Get();
		EXPECT_FALSE( binding.m_Sequence.empty() ) << binding.m_strCommand.Get();
		nZolBindings += binding.m_strContext == "ZolApp";
	}
	EXPECT_GE( nZolBindings, 10 );
}

TEST_F( ZolAppCommandsTest, CommandsRunTheFrameworkOperations )
{
	CQInputBindManager *pManager = CQInputBindManager::Get();
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "FileNew" ) ) );
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "FileNew" ) ) );
	ASSERT_EQ( m_pApp->GetSessions().size(), 2u );
	CBaseEditorSession *pSecond = m_pApp->GetActiveSession();
	EXPECT_EQ( pSecond, m_pApp->GetSessions()[ 1 ] );

	// Back through the history, then closing the active one leaves the other.
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "ActivatePreviousEditorSession" ) ) );
	EXPECT_EQ( m_pApp->GetActiveSession(), m_pApp->GetSessions()[ 0 ] );
	ASSERT_TRUE( pManager->InvokeCommand( m_pApp, BindToken( "FileClose" ) ) );
	ASSERT_EQ( m_pApp->GetSessions().size(), 1u );
	EXPECT_EQ( m_pApp->GetActiveSession(), pSecond );
	EXPECT_FALSE( pManager->InvokeCommand( m_pApp, BindToken( "NoSuchCommand" ) ) );
}
} // namespace
