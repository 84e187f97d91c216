#pragma once
// Draws a tool scene without a window: an OpenGL 3.3 core context on an offscreen surface
// and a framebuffer of the picture's size, read back as an image. For pictures of batch
// commands and for the pixel tests; a QGuiApplication must exist.

#include <memory>

#include <QImage>

#include "core/text/utlstring.h"
#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/widgets/toolscenerenderer.h"

class CToolScene;
class QOffscreenSurface;
class QOpenGLContext;
class QOpenGLFramebufferObject;
struct ToolSceneView_t;

class COffscreenToolSceneWindow
{
public:
	COffscreenToolSceneWindow();
	~COffscreenToolSceneWindow();
	COffscreenToolSceneWindow( const COffscreenToolSceneWindow & ) = delete;
	COffscreenToolSceneWindow &operator=( const COffscreenToolSceneWindow & ) = delete;

	// False, with the reason, when no OpenGL 3.3 context can be had.
	bool Create( int nWidth, int nHeight, CUtlString *pError );
	int GetWidth() const { return m_nWidth; }
	int GetHeight() const { return m_nHeight; }

	// A picture of the scene (or of a draw list) seen by the view, at this window's size.
	QImage Render( const CToolScene &scene, ToolSceneView_t view );
	QImage Render( const CToolSceneDrawList &drawList, ToolSceneView_t view );
	CToolSceneRenderer &GetRenderer() { return m_Renderer; }

private:
	std::unique_ptr<QOpenGLContext> m_pContext;
	std::unique_ptr<QOffscreenSurface> m_pSurface;
	std::unique_ptr<QOpenGLFramebufferObject> m_pFramebuffer;
	CToolSceneRenderer m_Renderer;
	CToolSceneDrawList m_DrawList;
	int m_nWidth = 0;
	int m_nHeight = 0;
};
