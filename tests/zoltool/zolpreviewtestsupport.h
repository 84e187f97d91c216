#pragma once
// The editor with its main window on a copy of the shipped content, for tests of the live
// preview: open a sample, run frames at a fixed rate, edit through the document.

#include <gtest/gtest.h>

#include <QApplication>

#include <filesystem>
#include <string>
#include <unistd.h>

#include "core/console/consoleregistry.h"
#include "core/console/convar.h"
#include "core/host/hostservices.h"
#include "core/host/interfaceregistry.h"
#include "core/host/scriptedprompt.h"
#include "core/host/toolsettingsstore.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/platform/platformmode.h"
#include "particleslib/particleinputclasses.h"
#include "tools/zol/editor/particlepreview.h"
#include "tools/zol/editor/zolapp.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "tools/zol/editor/zolmoduleexports.h"
#include "tools/zol/editor/zolsession.h"

class ZolPreviewTest : public ::testing::Test
{
protected:
	void SetUp() override
	{
		namespace fs = std::filesystem;
		Plat_SetTestMode( true );
		static int s_nArgc = 1;
		static char s_szName[] = "zol_preview_tests";
		static char *s_pArgv[] = { s_szName, nullptr };
		if ( !QApplication::instance() )
			new QApplication( s_nArgc, s_pArgv );
		m_Root = fs::temp_directory_path() / ( "zol_preview_" + std::to_string( getpid() ) );
		fs::remove_all( m_Root );
		fs::create_directories( m_Root / "content" );
		fs::copy( fs::path( ZOL_SOURCE_DIR ) / "content" / "game", m_Root / "game", fs::copy_options::recursive );
		fs::copy( fs::path( ZOL_SOURCE_DIR ) / "content" / "content", m_Root / "content", fs::copy_options::recursive );
		fs::create_directories( m_Root / "settings" );
		GetToolSettingsStore().SetDirectory( ( m_Root / "settings" ).c_str() );
		CUtlString strError;
		ASSERT_TRUE( m_Services.Init( ( m_Root / "game" ).c_str(), ( m_Root / "content" ).c_str(), &strError ) ) << strError.Get();
		RegisterParticleInputClasses();
		m_Services.SetParticleSystemMgr( HostParticleSystemMgr() );
		// Every frame is a sixtieth of a second, however long it took.
		m_pFrameRate = ConsoleRegistry().FindVar( "host_framerate" );
		ASSERT_NE( m_pFrameRate, nullptr );
		m_pFrameRate->SetValue( 60 );

		int nCode = -1;
		m_pApp = static_cast<CZolApp *>( static_cast<CBaseToolSystem2 *>( CreateInterface( "ToolSystem2_001", &nCode ) ) );
		ASSERT_NE( m_pApp, nullptr );
		m_pApp->SetCreatesMainWindow( true );
		ASSERT_TRUE( m_pApp->Connect( &Host_CreateInterface ) );
		ASSERT_TRUE( m_pApp->StartTool( 0 ) );
		m_pPreview = m_pApp->GetZolMainWindow() ? m_pApp->GetZolMainWindow()->GetPreview() : nullptr;
		ASSERT_NE( m_pPreview, nullptr );
	}

	void TearDown() override
	{
		if ( m_pApp )
		{
			for ( CBaseEditorSession *pSession : m_pApp->GetSessions() )
				pSession->SetModified( false );
			EXPECT_TRUE( m_pApp->CloseAllSessions() );
			m_pApp->ShutdownTool();
			m_pApp->Disconnect();
			m_pApp->SetCreatesMainWindow( false );
		}
		if ( m_pFrameRate )
			m_pFrameRate->Revert();
		m_Services.SetParticleSystemMgr( nullptr );
		GetToolSettingsStore().SetDirectory( "" );
		std::filesystem::remove_all( m_Root );
	}

	CZolSession *Open( const char *pContentPath )
	{
		CUtlString strPath( ( m_Root / "content" / pContentPath ).c_str() );
		strPath.FixSlashes( '\\' );
		return static_cast<CZolSession *>( m_pApp->OpenFile( strPath, true ) );
	}

	void Frames( int nFrames )
	{
		for ( int i = 0; i < nFrames; ++i )
			m_pApp->Frame();
	}

	std::filesystem::path m_Root;
	CHostServices m_Services;
	CScriptedPrompt m_Prompt;
	CScopedPrompt m_ScopedPrompt{ &m_Prompt };
	CZolApp *m_pApp = nullptr;
	CQParticlePreview *m_pPreview = nullptr;
	ConVar *m_pFrameRate = nullptr;
};
