#include "tools/toolscene/widgets/offscreentoolscenewindow.h"

#include <QOffscreenSurface>
#include <QOpenGLContext>
#include <QOpenGLFramebufferObject>
#include <QOpenGLFunctions>

#include "tools/toolscene/toolscene.h"
#include "tools/toolscene/toolsceneview.h"

static constexpr int MAX_PICTURE_SIDE = 8192;

COffscreenToolSceneWindow::COffscreenToolSceneWindow() = default;

COffscreenToolSceneWindow::~COffscreenToolSceneWindow()
{
	if ( m_pContext && m_pSurface && m_pContext->makeCurrent( m_pSurface.get() ) )
	{
		m_Renderer.Shutdown();
		m_pFramebuffer.reset();
		m_pContext->doneCurrent();
	}
}

bool COffscreenToolSceneWindow::Create( int nWidth, int nHeight, CUtlString *pError )
{
	if ( nWidth < 1 || nHeight < 1 || nWidth > MAX_PICTURE_SIDE || nHeight > MAX_PICTURE_SIDE )
	{
		pError->Format( "a picture of %dx%d pixels can't be made; each side must be 1 to %d", nWidth, nHeight, MAX_PICTURE_SIDE );
		return false;
	}
	QSurfaceFormat format;
	format.setVersion( 3, 3 );
	format.setProfile( QSurfaceFormat::CoreProfile );
	format.setDepthBufferSize( 24 );
	m_pContext = std::make_unique<QOpenGLContext>();
	m_pContext->setFormat( format );
	if ( !m_pContext->create() )
	{
		CToolSceneRenderer::ReportNoContext();
		pError->Set( "no OpenGL context can be made here (no display, or no OpenGL driver); run it under xvfb-run" );
		m_pContext.reset();
		return false;
	}
	m_pSurface = std::make_unique<QOffscreenSurface>();
	m_pSurface->setFormat( m_pContext->format() );
	m_pSurface->create();
	if ( !m_pSurface->isValid() || !m_pContext->makeCurrent( m_pSurface.get() ) )
	{
		CToolSceneRenderer::ReportNoContext();
		pError->Set( "the OpenGL context can't be used on an offscreen surface" );
		m_pSurface.reset();
		m_pContext.reset();
		return false;
	}
	if ( !m_Renderer.Initialize( m_pContext.get() ) )
	{
		pError->Format( "the OpenGL context (version %d.%d) can't do OpenGL 3.3 core", m_pContext->format().majorVersion(), m_pContext->format().minorVersion() );
		m_pContext->doneCurrent();
		m_pSurface.reset();
		m_pContext.reset();
		return false;
	}
	QOpenGLFramebufferObjectFormat framebufferFormat;
	framebufferFormat.setAttachment( QOpenGLFramebufferObject::CombinedDepthStencil );
	m_pFramebuffer = std::make_unique<QOpenGLFramebufferObject>( nWidth, nHeight, framebufferFormat );
	if ( !m_pFramebuffer->isValid() )
	{
		pError->Format( "no framebuffer of %dx%d pixels can be made", nWidth, nHeight );
		m_Renderer.Shutdown();
		m_pFramebuffer.reset();
		m_pContext->doneCurrent();
		m_pSurface.reset();
		m_pContext.reset();
		return false;
	}
	m_nWidth = nWidth;
	m_nHeight = nHeight;
	return true;
}

QImage COffscreenToolSceneWindow::Render( const CToolScene &scene, ToolSceneView_t view )
{
	view.m_nWidth = m_nWidth;
	view.m_nHeight = m_nHeight;
	view.Compute();
	scene.BuildDrawList( m_DrawList, view );
	return Render( m_DrawList, view );
}

QImage COffscreenToolSceneWindow::Render( const CToolSceneDrawList &drawList, ToolSceneView_t view )
{
	if ( !m_pContext || !m_pFramebuffer || !m_pContext->makeCurrent( m_pSurface.get() ) )
	{
		CToolSceneRenderer::ReportNoContext();
		return QImage();
	}
	view.m_nWidth = m_nWidth;
	view.m_nHeight = m_nHeight;
	view.Compute();
	m_Renderer.Render( drawList, view, m_pFramebuffer->handle() );
	m_pContext->functions()->glFinish();
	QImage image = m_pFramebuffer->toImage();
	return image.convertToFormat( QImage::Format_RGB32 );
}
