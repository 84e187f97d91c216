#pragma once
// Draws a tool scene's draw list with OpenGL 3.3 core through Qt's function table: lines,
// flat-shaded models, then particles (sprites and trail ribbons) instanced from buffers
// streamed once per frame. The same renderer draws into a widget's framebuffer or an
// offscreen one; it works in whatever context is current when its calls are made.

#include <map>
#include <memory>
#include <string>

#include "tools/toolscene/toolscenedrawlist.h"
#include "tools/toolscene/toolsceneimage.h"

class QOpenGLContext;
class QOpenGLFunctions_3_3_Core;
struct ToolSceneView_t;

class CToolSceneRenderer
{
public:
	CToolSceneRenderer();
	~CToolSceneRenderer();
	CToolSceneRenderer( const CToolSceneRenderer & ) = delete;
	CToolSceneRenderer &operator=( const CToolSceneRenderer & ) = delete;

	// Makes the GL objects in the current context. False, with the render system's warning
	// logged once, when there is no context or it can't do OpenGL 3.3 core.
	bool Initialize( QOpenGLContext *pContext );
	bool IsInitialized() const { return m_pGL != nullptr; }
	// Frees the GL objects; the context must be current.
	void Shutdown();

	// Draws into the framebuffer (0: the default one) a picture of the view's size.
	void Render( const CToolSceneDrawList &drawList, const ToolSceneView_t &view, unsigned int nFramebuffer );

	void SetClearColor( float r, float g, float b ) { m_ClearColor[ 0 ] = r, m_ClearColor[ 1 ] = g, m_ClearColor[ 2 ] = b; }
	// How many textures and models stand in for missing ones so far.
	int GetStandInTextureCount() const { return m_nStandInTextures; }

	// The warning of a frame without a render context, logged once per process.
	static void ReportNoContext();

private:
	struct Texture_t
	{
		unsigned int m_nTexture = 0;
		ToolSceneImagePtr_t m_pImage;
	};
	struct Mesh_t
	{
		std::weak_ptr<const CParticleModel> m_pModel;
		unsigned int m_nBuffer = 0;
		int m_nVertexCount = 0;
	};

	unsigned int BuildProgram( const char *pName, const char *pVertex, const char *pFragment );
	unsigned int FindTexture( const std::string &name );
	const Mesh_t *FindMesh( const ParticleModelPtr_t &pModel );
	void SetBlend( ToolSceneBlend_t eBlend );
	template <typename T> void StreamBuffer( unsigned int nBuffer, const std::vector<T> &data );
	enum MeshPass_t
	{
		MESH_PASS_BACKDROP,
		MESH_PASS_OPAQUE,
		MESH_PASS_TRANSLUCENT,
	};
	// Vertices of lines, or of triangles with GL_TRIANGLES (0x0004).
	void DrawLines( const std::vector<ToolSceneLineVertex_t> &lines, const float *pViewProjection, unsigned int nPrimitive = 0x0001 );
	void DrawMeshes( const CToolSceneDrawList &drawList, const float *pViewProjection, MeshPass_t ePass );
	// Instanced quads (the four corners of one buffer), one draw a batch: sprites, trails.
	struct InstanceAttribute_t
	{
		int m_nComponents;
		size_t m_nOffset;
	};
	void DrawQuadBatches( const std::vector<ToolSceneBatch_t> &batches, unsigned int nInstanceBuffer, int nStride, const InstanceAttribute_t *pAttributes,
		int nAttributes, unsigned int nProgram );
	void DrawSprites( const CToolSceneDrawList &drawList, const ToolSceneView_t &view, const float *pViewProjection );
	void DrawTrails( const CToolSceneDrawList &drawList, const ToolSceneView_t &view, const float *pViewProjection );

	QOpenGLFunctions_3_3_Core *m_pGL = nullptr;
	unsigned int m_nLineProgram = 0, m_nMeshProgram = 0, m_nSpriteProgram = 0, m_nTrailProgram = 0;
	unsigned int m_nVertexArray = 0;
	unsigned int m_nCornerBuffer = 0, m_nLineBuffer = 0, m_nSpriteBuffer = 0, m_nTrailBuffer = 0, m_nModelBuffer = 0;
	unsigned int m_nWhiteTexture = 0, m_nStandInTexture = 0;
	std::map<std::string, Texture_t> m_Textures;
	std::map<const CParticleModel *, Mesh_t> m_Meshes;
	float m_ClearColor[ 3 ] = { 0.16f, 0.16f, 0.18f };
	int m_nStandInTextures = 0;
};
