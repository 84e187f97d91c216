#pragma once
// The editor with its main window, for tests of the live preview: the application test's
// content (with the shipped textures and models), frames at a fixed rate of 60 a second.

#include "core/console/consoleregistry.h"
#include "core/console/convar.h"
#include "tools/zol/editor/particlepreview.h"
#include "tools/zol/editor/zolmainwnd.h"
#include "zolapptestsupport.h"

class ZolPreviewTest : public ZolAppTest
{
protected:
	void SetUp() override
	{
		ZolAppTest::SetUp();
		if ( HasFatalFailure() )
			return;
		for ( const char *pFolder : { "materials", "models" } )
			std::filesystem::copy( std::filesystem::path( ZOL_SOURCE_DIR ) / "content/content" / pFolder, m_Root / "content" / pFolder, std::filesystem::copy_options::recursive );
		m_Services.GetAssetSystem()->Rescan();
		EnsureTestQApplication();
		// Every frame is a sixtieth of a second, however long it took.
		m_pFrameRate = ConsoleRegistry().FindVar( "host_framerate" );
		ASSERT_NE( m_pFrameRate, nullptr );
		m_pFrameRate->SetValue( 60 );
		m_pApp->SetCreatesMainWindow( true );
		Start();
		m_pPreview = m_pApp->GetZolMainWindow() ? m_pApp->GetZolMainWindow()->GetPreview() : nullptr;
		ASSERT_NE( m_pPreview, nullptr );
	}

	void TearDown() override
	{
		if ( m_pFrameRate )
			m_pFrameRate->Revert();
		ZolAppTest::TearDown();
	}

	void Frames( int nFrames )
	{
		for ( int i = 0; i < nFrames; ++i )
			m_pApp->Frame();
	}

	CQParticlePreview *m_pPreview = nullptr;
	ConVar *m_pFrameRate = nullptr;
};
