#pragma once
// The editor's main window shown on the virtual display, with the preview laid out at its
// size, for tests that draw and click for real.

#include <gtest/gtest.h>

#include <QApplication>
#include <QTest>

#include "tests/zoltool/zolpreviewtestsupport.h"
#include "tools/toolscene/widgets/qtoolscenewidget.h"

class ZolPreviewGLTest : public ZolPreviewTest
{
protected:
	void SetUp() override
	{
		ZolPreviewTest::SetUp();
		if ( HasFatalFailure() )
			return;
		m_pWindow = m_pApp->GetZolMainWindow();
		m_pWindow->resize( 1280, 800 );
		m_pWindow->show();
		ASSERT_TRUE( QTest::qWaitForWindowExposed( m_pWindow ) );
		// No window manager runs on the virtual display to make it active.
		QApplication::setActiveWindow( m_pWindow );
		m_pScene = m_pPreview->GetSceneWidget();
		// The docks are laid out once the window's events have run: only then does the
		// preview have its size (a busy machine runs them late).
		ASSERT_TRUE( QTest::qWaitFor( [ this ]() { return m_pScene->width() >= 320 && m_pScene->height() >= 240; }, 5000 ) )
			<< "the preview is " << m_pScene->width() << "x" << m_pScene->height();
	}
	QImage Picture()
	{
		QImage image = m_pScene->grabFramebuffer();
		EXPECT_TRUE( m_pScene->HasRenderContext() ) << "no OpenGL 3.3 context for the preview";
		return image;
	}

	QWidget *m_pWindow = nullptr;
	CQToolSceneWidget *m_pScene = nullptr;
};
