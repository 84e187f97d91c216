#pragma once
// The particle editor's application on a scratch copy of the shipped game and content
// trees, with its own settings directory, the host's services and the scripted prompt.

#include <gtest/gtest.h>

#include <QApplication>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <unistd.h>

#include "core/host/assetsystem.h"
#include "core/host/hostservices.h"
#include "core/host/iasset.h"
#include "core/host/interfaceregistry.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/platform/platformmode.h"
#include "particleslib/particleinputclasses.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolmoduleexports.h"
#include "tools/zol/editor/zolsession.h"
#include "tests/zoltool/testqapplication.h"

// Paths in memory use backslashes, also on this platform.
inline CUtlString MemoryPath( const std::filesystem::path &path )
{
	CUtlString strPath( path.c_str() );
	strPath.FixSlashes( '\\' );
	return strPath;
}

inline void WriteText( const std::filesystem::path &path, const std::string &text )
{
	std::filesystem::create_directories( path.parent_path() );
	std::ofstream out( path );
	out << text;
}

inline std::string ReadText( const std::filesystem::path &path )
{
	std::ifstream in( path );
	return std::string( std::istreambuf_iterator<char>( in ), std::istreambuf_iterator<char>() );
}

class ZolAppTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		Plat_SetTestMode( true );
		m_Root = std::filesystem::temp_directory_path() / ( "zol_app_" + std::to_string( getpid() ) );
		std::filesystem::remove_all( m_Root );
		std::filesystem::create_directories( m_Root );
		std::filesystem::copy( std::filesystem::path( ZOL_SOURCE_DIR ) / "content" / "game", m_Root / "game", std::filesystem::copy_options::recursive );
		std::filesystem::create_directories( m_Root / "content/particles" );
		std::filesystem::copy( std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content/particles/samples", m_Root / "content/particles/samples", std::filesystem::copy_options::recursive );
		// Another directory: one system that holds fire as a child, one that holds nothing.
		std::string campfire = ReadText( m_Root / "content/particles/samples/campfire.tfxs" );
		ASSERT_NE( campfire.find( "particles/samples/fire.tfxs" ), std::string::npos );
		WriteText( m_Root / "content/particles/other/holder.tfxs", campfire );
		std::filesystem::copy_file( m_Root / "content/particles/samples/fire.tfxs", m_Root / "content/particles/other/lonely.tfxs" );
		std::filesystem::create_directories( m_Root / "settings" );
		GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );

		CUtlString strError;
		ASSERT_TRUE( m_Services.Init( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str(), &strError ) ) << strError.Get();
		RegisterParticleInputClasses();
		m_Services.SetParticleSystemMgr( HostParticleSystemMgr() );

		int nCode = -1;
		m_pApp = static_cast<CZolApp *>( static_cast<CBaseToolSystem2 *>( CreateInterface( "ToolSystem2_001", &nCode ) ) );
		ASSERT_NE( m_pApp, nullptr );
		m_pApp->SetCreatesMainWindow( false );
	}

	void Start()
	{
		ASSERT_TRUE( m_pApp->Connect( &Host_CreateInterface ) );
		ASSERT_TRUE( m_pApp->StartTool( 0 ) );
		m_bStarted = true;
	}

	void TearDown() override
	{
		if ( !m_pApp )
		{
			std::filesystem::remove_all( m_Root );
			return;
		}
		// Hooks of a test body must not outlive it.
		m_pApp->SetAssetPreviewUpdater( nullptr );
		if ( m_bStarted )
		{
			for ( CBaseEditorSession *pSession : m_pApp->GetSessions() )
				pSession->SetModified( false );
			EXPECT_TRUE( m_pApp->CloseAllSessions() );
			m_pApp->ShutdownTool();
			m_pApp->Disconnect();
		}
		m_pApp->SetCreatesMainWindow( false );
		m_pApp->SetPreviewSessionLocked( false );
		m_Services.SetParticleSystemMgr( nullptr );
		GetToolSettingsStore().SetDirectory( "" );
		std::filesystem::remove_all( m_Root );
	}

	CZolSession *Open( const char *pContentPath )
	{
		return static_cast<CZolSession *>( m_pApp->OpenFile( MemoryPath( m_Root / "content" / pContentPath ), true ) );
	}

	IAsset *Asset( const char *pContentPath ) { return m_Services.GetAssetSystem()->FindAssetByContentPath( pContentPath ); }

	std::filesystem::path m_Root;
	CHostServices m_Services;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	CZolApp *m_pApp = nullptr;
	bool m_bStarted = false;
};

// The application with its window, shown and active, on the shipped samples and models.
class ZolWindowAppTest : public ZolAppTest
{
protected:
	void SetUp() override
	{
		EnsureTestQApplication();
		ZolAppTest::SetUp();
		if ( HasFatalFailure() )
			return;
		std::filesystem::copy( std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content/models", m_Root / "content/models",
			std::filesystem::copy_options::recursive );
		m_Services.GetAssetSystem()->Rescan();
		m_pApp->SetCreatesMainWindow( true );
		Start();
		if ( HasFatalFailure() )
			return;
		m_pWindow = m_pApp->GetZolMainWindow();
		ASSERT_NE( m_pWindow, nullptr );
		m_pWindow->show();
		QApplication::setActiveWindow( m_pWindow );
		QApplication::processEvents();
	}

	CQZolMainWnd *m_pWindow = nullptr;
};
