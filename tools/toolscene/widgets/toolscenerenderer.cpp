#include "tools/toolscene/widgets/toolscenerenderer.h"

#include <QOpenGLContext>
#include <QOpenGLFunctions_3_3_Core>

#include <atomic>
#include <cstddef>
#include <cmath>
#include <vector>

#include "core/logging/logonce.h"
#include "tools/toolscene/toolscenemath.h"
#include "tools/toolscene/toolsceneview.h"

namespace
{
const char *const s_LineVertex = R"(#version 330 core
layout( location = 0 ) in vec3 aPosition;
layout( location = 1 ) in vec4 aColor;
uniform mat4 uViewProjection;
out vec4 vColor;
void main()
{
	gl_Position = uViewProjection * vec4( aPosition, 1.0 );
	vColor = aColor;
}
)";

const char *const s_ColorFragment = R"(#version 330 core
in vec4 vColor;
out vec4 oColor;
void main()
{
	oColor = vColor;
}
)";

// Flat shading: each triangle carries its own normal; a light from above and behind the eye.
const char *const s_MeshVertex = R"(#version 330 core
layout( location = 0 ) in vec3 aPosition;
layout( location = 1 ) in vec3 aNormal;
layout( location = 2 ) in vec4 aRow0;
layout( location = 3 ) in vec4 aRow1;
layout( location = 4 ) in vec4 aRow2;
layout( location = 5 ) in vec4 aColor;
uniform mat4 uViewProjection;
uniform vec3 uLightDirection;
out vec4 vColor;
void main()
{
	vec4 p = vec4( aPosition, 1.0 );
	vec3 world = vec3( dot( aRow0, p ), dot( aRow1, p ), dot( aRow2, p ) );
	vec3 normal = normalize( vec3( dot( aRow0.xyz, aNormal ), dot( aRow1.xyz, aNormal ), dot( aRow2.xyz, aNormal ) ) );
	float shade = 0.35 + 0.65 * max( dot( normal, uLightDirection ), 0.0 );
	gl_Position = uViewProjection * vec4( world, 1.0 );
	vColor = vec4( aColor.rgb * shade, aColor.a );
}
)";

const char *const s_SpriteVertex = R"(#version 330 core
layout( location = 0 ) in vec2 aCorner;
layout( location = 1 ) in vec4 aPositionRadius;
layout( location = 2 ) in vec4 aColor;
layout( location = 3 ) in float aRoll;
layout( location = 4 ) in vec3 aNormal;
uniform mat4 uViewProjection;
uniform vec3 uRight;
uniform vec3 uUp;
uniform vec3 uForward;
uniform int uOrientation;
out vec2 vTexCoord;
out vec4 vColor;
// The plane's axes for a sprite facing along n: seen from that side, up leans to world +Z
// (or +X for a sprite that faces straight up or down).
void AxesFacing( vec3 n, out vec3 right, out vec3 up )
{
	n = dot( n, n ) > 1e-12 ? normalize( n ) : vec3( 0.0, 0.0, 1.0 );
	vec3 reference = abs( n.z ) < 0.999 ? vec3( 0.0, 0.0, 1.0 ) : vec3( 1.0, 0.0, 0.0 );
	right = normalize( cross( reference, n ) );
	up = cross( n, right );
}
void main()
{
	vec3 right = uRight, up = uUp;
	if ( uOrientation == 1 )
	{
		// Turned about world Z only, toward the camera.
		vec3 side = cross( uForward, vec3( 0.0, 0.0, 1.0 ) );
		if ( dot( side, side ) > 1e-6 )
		{
			right = normalize( side );
			up = vec3( 0.0, 0.0, 1.0 );
		}
	}
	else if ( uOrientation == 2 )
		AxesFacing( vec3( 0.0, 0.0, 1.0 ), right, up );
	else if ( uOrientation == 3 )
		AxesFacing( aNormal, right, up );
	float c = cos( aRoll ), s = sin( aRoll );
	vec2 turned = vec2( aCorner.x * c - aCorner.y * s, aCorner.x * s + aCorner.y * c );
	vec3 world = aPositionRadius.xyz + ( right * turned.x + up * turned.y ) * aPositionRadius.w;
	gl_Position = uViewProjection * vec4( world, 1.0 );
	// Image rows run top to bottom.
	vTexCoord = vec2( aCorner.x * 0.5 + 0.5, 0.5 - aCorner.y * 0.5 );
	vColor = aColor;
}
)";

// A ribbon from the tail (corner y 0) to the head (corner y 1), as wide as the radius
// each side, turned to face the eye. A trail without length shows as a square.
const char *const s_TrailVertex = R"(#version 330 core
layout( location = 0 ) in vec2 aCorner;
layout( location = 1 ) in vec4 aHeadRadius;
layout( location = 2 ) in vec4 aTail;
layout( location = 3 ) in vec4 aColor;
uniform mat4 uViewProjection;
uniform vec3 uEye;
uniform vec3 uUp;
out vec2 vTexCoord;
out vec4 vColor;
void main()
{
	float radius = aHeadRadius.w;
	vec3 head = aHeadRadius.xyz;
	vec3 tail = aTail.xyz;
	vec3 along = head - tail;
	if ( length( along ) < 1e-4 )
	{
		tail = head - uUp * radius;
		head = head + uUp * radius;
		along = head - tail;
	}
	float y = aCorner.y * 0.5 + 0.5;
	vec3 p = mix( tail, head, y );
	vec3 side = cross( along, uEye - p );
	if ( length( side ) < 1e-6 )
		side = cross( along, vec3( 0.0, 0.0, 1.0 ) );
	p += normalize( side ) * aCorner.x * radius;
	gl_Position = uViewProjection * vec4( p, 1.0 );
	vTexCoord = vec2( aCorner.x * 0.5 + 0.5, 1.0 - y );
	vColor = aColor;
}
)";

const char *const s_ParticleFragment = R"(#version 330 core
in vec2 vTexCoord;
in vec4 vColor;
uniform sampler2D uTexture;
uniform float uOverbright;
out vec4 oColor;
void main()
{
	vec4 t = texture( uTexture, vTexCoord );
	oColor = vec4( t.rgb * vColor.rgb * uOverbright, t.a * vColor.a );
}
)";

constexpr float s_Corners[ 8 ] = { -1.0f, -1.0f, 1.0f, -1.0f, -1.0f, 1.0f, 1.0f, 1.0f };

// OpenGL wants columns; the scene's matrices are rows.
void ToColumnMajor( const ToolSceneMath::Matrix4_t &m, float out[ 16 ] )
{
	for ( int r = 0; r < 4; ++r )
		for ( int c = 0; c < 4; ++c )
			out[ c * 4 + r ] = m.m[ r ][ c ];
}

uintptr_t Offset( size_t n )
{
	return uintptr_t( n );
}
} // namespace

void CToolSceneRenderer::ReportNoContext()
{
	Log_Once( LOG_GENERAL, LS_WARNING, "WARNING: Trying to create a CRenderContextPtr without a valid context.\n" );
}

CToolSceneRenderer::CToolSceneRenderer() = default;

CToolSceneRenderer::~CToolSceneRenderer()
{
	// GL objects need their context; the owner calls Shutdown while it is current.
}

bool CToolSceneRenderer::Initialize( QOpenGLContext *pContext )
{
	if ( m_pGL )
		return true;
	QOpenGLFunctions_3_3_Core *pGL = pContext && pContext->isValid() ? pContext->versionFunctions<QOpenGLFunctions_3_3_Core>() : nullptr;
	if ( !pGL || !pGL->initializeOpenGLFunctions() )
	{
		ReportNoContext();
		return false;
	}
	m_pGL = pGL;
	m_nLineProgram = BuildProgram( "lines", s_LineVertex, s_ColorFragment );
	m_nMeshProgram = BuildProgram( "models", s_MeshVertex, s_ColorFragment );
	m_nSpriteProgram = BuildProgram( "sprites", s_SpriteVertex, s_ParticleFragment );
	m_nTrailProgram = BuildProgram( "trails", s_TrailVertex, s_ParticleFragment );
	if ( !m_nLineProgram || !m_nMeshProgram || !m_nSpriteProgram || !m_nTrailProgram )
	{
		Shutdown();
		ReportNoContext();
		return false;
	}
	m_pGL->glGenVertexArrays( 1, &m_nVertexArray );
	unsigned int buffers[ 5 ];
	m_pGL->glGenBuffers( 5, buffers );
	m_nCornerBuffer = buffers[ 0 ];
	m_nLineBuffer = buffers[ 1 ];
	m_nSpriteBuffer = buffers[ 2 ];
	m_nTrailBuffer = buffers[ 3 ];
	m_nModelBuffer = buffers[ 4 ];
	m_pGL->glBindBuffer( GL_ARRAY_BUFFER, m_nCornerBuffer );
	m_pGL->glBufferData( GL_ARRAY_BUFFER, sizeof( s_Corners ), s_Corners, GL_STATIC_DRAW );

	// Untextured particles sample white; a texture that can't be had shows a checker.
	const uint8_t white[ 4 ] = { 255, 255, 255, 255 };
	uint8_t checker[ 8 * 8 * 4 ];
	for ( int y = 0; y < 8; ++y )
		for ( int x = 0; x < 8; ++x )
		{
			bool bOn = ( ( x / 2 ) + ( y / 2 ) ) % 2 == 0;
			uint8_t *p = checker + ( y * 8 + x ) * 4;
			p[ 0 ] = bOn ? 255 : 30;
			p[ 1 ] = bOn ? 0 : 30;
			p[ 2 ] = bOn ? 255 : 30;
			p[ 3 ] = 255;
		}
	unsigned int textures[ 2 ];
	m_pGL->glGenTextures( 2, textures );
	m_nWhiteTexture = textures[ 0 ];
	m_nStandInTexture = textures[ 1 ];
	for ( int i = 0; i < 2; ++i )
	{
		m_pGL->glBindTexture( GL_TEXTURE_2D, textures[ i ] );
		m_pGL->glTexImage2D( GL_TEXTURE_2D, 0, GL_RGBA8, i == 0 ? 1 : 8, i == 0 ? 1 : 8, 0, GL_RGBA, GL_UNSIGNED_BYTE, i == 0 ? white : checker );
		m_pGL->glTexParameteri( GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_NEAREST );
		m_pGL->glTexParameteri( GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_NEAREST );
	}
	return true;
}

void CToolSceneRenderer::Shutdown()
{
	if ( !m_pGL )
		return;
	for ( unsigned int nProgram : { m_nLineProgram, m_nMeshProgram, m_nSpriteProgram, m_nTrailProgram } )
	{
		if ( nProgram )
			m_pGL->glDeleteProgram( nProgram );
	}
	m_nLineProgram = m_nMeshProgram = m_nSpriteProgram = m_nTrailProgram = 0;
	unsigned int buffers[ 5 ] = { m_nCornerBuffer, m_nLineBuffer, m_nSpriteBuffer, m_nTrailBuffer, m_nModelBuffer };
	m_pGL->glDeleteBuffers( 5, buffers );
	for ( auto &[ pModel, mesh ] : m_Meshes )
		m_pGL->glDeleteBuffers( 1, &mesh.m_nBuffer );
	m_Meshes.clear();
	for ( auto &[ name, texture ] : m_Textures )
	{
		if ( texture.m_nTexture != m_nStandInTexture )
			m_pGL->glDeleteTextures( 1, &texture.m_nTexture );
	}
	m_Textures.clear();
	unsigned int textures[ 2 ] = { m_nWhiteTexture, m_nStandInTexture };
	m_pGL->glDeleteTextures( 2, textures );
	if ( m_nVertexArray )
		m_pGL->glDeleteVertexArrays( 1, &m_nVertexArray );
	m_nVertexArray = 0;
	m_pGL = nullptr;
}

unsigned int CToolSceneRenderer::BuildProgram( const char *pName, const char *pVertex, const char *pFragment )
{
	auto compile = [ & ]( GLenum eType, const char *pSource ) -> unsigned int {
		unsigned int nShader = m_pGL->glCreateShader( eType );
		m_pGL->glShaderSource( nShader, 1, &pSource, nullptr );
		m_pGL->glCompileShader( nShader );
		int nOk = 0;
		m_pGL->glGetShaderiv( nShader, GL_COMPILE_STATUS, &nOk );
		if ( !nOk )
		{
			char log[ 1024 ] = {};
			m_pGL->glGetShaderInfoLog( nShader, sizeof( log ), nullptr, log );
			Log_Warning( LOG_GENERAL, "The %s shader of the tool scene doesn't compile: %s\n", pName, log );
			m_pGL->glDeleteShader( nShader );
			return 0;
		}
		return nShader;
	};
	unsigned int nVertex = compile( GL_VERTEX_SHADER, pVertex );
	unsigned int nFragment = compile( GL_FRAGMENT_SHADER, pFragment );
	if ( !nVertex || !nFragment )
		return 0;
	unsigned int nProgram = m_pGL->glCreateProgram();
	m_pGL->glAttachShader( nProgram, nVertex );
	m_pGL->glAttachShader( nProgram, nFragment );
	m_pGL->glLinkProgram( nProgram );
	m_pGL->glDeleteShader( nVertex );
	m_pGL->glDeleteShader( nFragment );
	int nOk = 0;
	m_pGL->glGetProgramiv( nProgram, GL_LINK_STATUS, &nOk );
	if ( !nOk )
	{
		char log[ 1024 ] = {};
		m_pGL->glGetProgramInfoLog( nProgram, sizeof( log ), nullptr, log );
		Log_Warning( LOG_GENERAL, "The %s shaders of the tool scene don't link: %s\n", pName, log );
		m_pGL->glDeleteProgram( nProgram );
		return 0;
	}
	return nProgram;
}

unsigned int CToolSceneRenderer::FindTexture( const std::string &name )
{
	if ( name.empty() )
		return m_nWhiteTexture;
	Texture_t &texture = m_Textures[ name ];
	CUtlString strError;
	ToolSceneImagePtr_t pImage = FindToolSceneImage( name.c_str(), &strError );
	if ( !pImage )
	{
		if ( LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, name.c_str(), "Texture '%s' can't be drawn (%s); particles show a stand-in\n", name.c_str(), strError.Get() ) )
			++m_nStandInTextures;
		if ( texture.m_nTexture && texture.m_nTexture != m_nStandInTexture )
			m_pGL->glDeleteTextures( 1, &texture.m_nTexture );
		texture.m_nTexture = m_nStandInTexture;
		texture.m_pImage = nullptr;
		return m_nStandInTexture;
	}
	if ( texture.m_pImage == pImage && texture.m_nTexture )
		return texture.m_nTexture;
	// A new image, or a new version of one: upload it.
	if ( !texture.m_nTexture || texture.m_nTexture == m_nStandInTexture )
		m_pGL->glGenTextures( 1, &texture.m_nTexture );
	texture.m_pImage = pImage;
	m_pGL->glBindTexture( GL_TEXTURE_2D, texture.m_nTexture );
	m_pGL->glPixelStorei( GL_UNPACK_ALIGNMENT, 1 );
	m_pGL->glTexImage2D( GL_TEXTURE_2D, 0, GL_RGBA8, pImage->m_nWidth, pImage->m_nHeight, 0, GL_RGBA, GL_UNSIGNED_BYTE, pImage->m_RGBA.data() );
	m_pGL->glGenerateMipmap( GL_TEXTURE_2D );
	m_pGL->glTexParameteri( GL_TEXTURE_2D, GL_TEXTURE_MIN_FILTER, GL_LINEAR_MIPMAP_LINEAR );
	m_pGL->glTexParameteri( GL_TEXTURE_2D, GL_TEXTURE_MAG_FILTER, GL_LINEAR );
	m_pGL->glTexParameteri( GL_TEXTURE_2D, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE );
	m_pGL->glTexParameteri( GL_TEXTURE_2D, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE );
	return texture.m_nTexture;
}

const CToolSceneRenderer::Mesh_t *CToolSceneRenderer::FindMesh( const ParticleModelPtr_t &pModel )
{
	Mesh_t &mesh = m_Meshes[ pModel.get() ];
	// A model freed and another made at the same address is a different model.
	if ( mesh.m_nBuffer && mesh.m_pModel.lock() == pModel )
		return &mesh;
	std::vector<float> vertices;
	const std::vector<Vector> &positions = pModel->GetVertices();
	const std::vector<int> &triangles = pModel->GetTriangles();
	vertices.reserve( triangles.size() * 6 );
	for ( size_t t = 0; t + 2 < triangles.size(); t += 3 )
	{
		const Vector &a = positions[ size_t( triangles[ t ] ) ], &b = positions[ size_t( triangles[ t + 1 ] ) ], &c = positions[ size_t( triangles[ t + 2 ] ) ];
		Vector n = ToolSceneMath::Normalized( ToolSceneMath::Cross( ToolSceneMath::Sub( b, a ), ToolSceneMath::Sub( c, a ) ) );
		for ( const Vector *p : { &a, &b, &c } )
			vertices.insert( vertices.end(), { p->x, p->y, p->z, n.x, n.y, n.z } );
	}
	if ( !mesh.m_nBuffer )
		m_pGL->glGenBuffers( 1, &mesh.m_nBuffer );
	mesh.m_pModel = pModel;
	mesh.m_nVertexCount = int( vertices.size() / 6 );
	m_pGL->glBindBuffer( GL_ARRAY_BUFFER, mesh.m_nBuffer );
	m_pGL->glBufferData( GL_ARRAY_BUFFER, GLsizeiptr( vertices.size() * sizeof( float ) ), vertices.data(), GL_STATIC_DRAW );
	return &mesh;
}

template <typename T>
void CToolSceneRenderer::StreamBuffer( unsigned int nBuffer, const std::vector<T> &data )
{
	m_pGL->glBindBuffer( GL_ARRAY_BUFFER, nBuffer );
	// A fresh store each frame: the driver needn't wait for last frame's draws.
	m_pGL->glBufferData( GL_ARRAY_BUFFER, GLsizeiptr( data.size() * sizeof( T ) ), data.empty() ? nullptr : data.data(), GL_STREAM_DRAW );
}

void CToolSceneRenderer::SetBlend( ToolSceneBlend_t eBlend )
{
	switch ( eBlend )
	{
	case TOOLSCENE_BLEND_OPAQUE: m_pGL->glDisable( GL_BLEND ); break;
	case TOOLSCENE_BLEND_ALPHA:
		m_pGL->glEnable( GL_BLEND );
		m_pGL->glBlendFuncSeparate( GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA );
		break;
	case TOOLSCENE_BLEND_ADDITIVE:
		m_pGL->glEnable( GL_BLEND );
		m_pGL->glBlendFuncSeparate( GL_SRC_ALPHA, GL_ONE, GL_ZERO, GL_ONE );
		break;
	}
}

void CToolSceneRenderer::Render( const CToolSceneDrawList &drawList, const ToolSceneView_t &view, unsigned int nFramebuffer )
{
	if ( !m_pGL )
	{
		ReportNoContext();
		return;
	}
	m_pGL->glBindFramebuffer( GL_FRAMEBUFFER, nFramebuffer );
	m_pGL->glViewport( 0, 0, view.m_nWidth, view.m_nHeight );
	m_pGL->glClearColor( m_ClearColor[ 0 ], m_ClearColor[ 1 ], m_ClearColor[ 2 ], 1.0f );
	m_pGL->glClearDepth( 1.0 );
	m_pGL->glDepthMask( GL_TRUE );
	m_pGL->glClear( GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT );
	m_pGL->glEnable( GL_DEPTH_TEST );
	m_pGL->glDepthFunc( GL_LEQUAL );
	m_pGL->glDisable( GL_CULL_FACE );
	m_pGL->glBindVertexArray( m_nVertexArray );

	float viewProjection[ 16 ];
	ToColumnMajor( view.m_ViewProjection, viewProjection );

	// The ground comes first and hides nothing. Solid things write depth; particles test
	// against it but don't write, so they don't hide each other.
	SetBlend( TOOLSCENE_BLEND_OPAQUE );
	m_pGL->glDepthMask( GL_FALSE );
	DrawMeshes( drawList, viewProjection, MESH_PASS_BACKDROP );
	DrawLines( drawList.GetBackdropLines(), viewProjection );
	m_pGL->glDepthMask( GL_TRUE );
	SetBlend( TOOLSCENE_BLEND_OPAQUE );
	DrawMeshes( drawList, viewProjection, MESH_PASS_OPAQUE );
	DrawLines( drawList.GetLines(), viewProjection );
	m_pGL->glDepthMask( GL_FALSE );
	DrawMeshes( drawList, viewProjection, MESH_PASS_TRANSLUCENT );
	DrawTrails( drawList, view, viewProjection );
	DrawSprites( drawList, view, viewProjection );
	// Handles last, over everything.
	if ( !drawList.GetOverlayTriangles().empty() )
	{
		m_pGL->glDisable( GL_DEPTH_TEST );
		SetBlend( TOOLSCENE_BLEND_ALPHA );
		DrawLines( drawList.GetOverlayTriangles(), viewProjection, GL_TRIANGLES );
		m_pGL->glEnable( GL_DEPTH_TEST );
	}
	m_pGL->glDepthMask( GL_TRUE );
	m_pGL->glDisable( GL_BLEND );
	m_pGL->glBindVertexArray( 0 );
	m_pGL->glUseProgram( 0 );
}

void CToolSceneRenderer::DrawLines( const std::vector<ToolSceneLineVertex_t> &lines, const float *pViewProjection, unsigned int nPrimitive )
{
	if ( lines.empty() )
		return;
	m_pGL->glUseProgram( m_nLineProgram );
	m_pGL->glUniformMatrix4fv( m_pGL->glGetUniformLocation( m_nLineProgram, "uViewProjection" ), 1, GL_FALSE, pViewProjection );
	StreamBuffer( m_nLineBuffer, lines );
	const GLsizei nStride = sizeof( ToolSceneLineVertex_t );
	m_pGL->glEnableVertexAttribArray( 0 );
	m_pGL->glEnableVertexAttribArray( 1 );
	m_pGL->glVertexAttribPointer( 0, 3, GL_FLOAT, GL_FALSE, nStride, reinterpret_cast<const void *>( Offset( offsetof( ToolSceneLineVertex_t, m_Position ) ) ) );
	m_pGL->glVertexAttribPointer( 1, 4, GL_FLOAT, GL_FALSE, nStride, reinterpret_cast<const void *>( Offset( offsetof( ToolSceneLineVertex_t, m_Color ) ) ) );
	m_pGL->glDrawArrays( nPrimitive, 0, GLsizei( lines.size() ) );
	m_pGL->glDisableVertexAttribArray( 0 );
	m_pGL->glDisableVertexAttribArray( 1 );
}

void CToolSceneRenderer::DrawMeshes( const CToolSceneDrawList &drawList, const float *pViewProjection, MeshPass_t ePass )
{
	const bool bTranslucent = ePass == MESH_PASS_TRANSLUCENT;
	const auto &batches = drawList.GetModelBatches();
	if ( batches.empty() )
		return;
	m_pGL->glUseProgram( m_nMeshProgram );
	m_pGL->glUniformMatrix4fv( m_pGL->glGetUniformLocation( m_nMeshProgram, "uViewProjection" ), 1, GL_FALSE, pViewProjection );
	Vector vLight = ToolSceneMath::Normalized( Vector( -0.4f, 0.3f, 0.85f ) );
	m_pGL->glUniform3f( m_pGL->glGetUniformLocation( m_nMeshProgram, "uLightDirection" ), vLight.x, vLight.y, vLight.z );
	if ( ePass == MESH_PASS_BACKDROP )
		StreamBuffer( m_nModelBuffer, drawList.GetModels() );
	SetBlend( bTranslucent ? TOOLSCENE_BLEND_ALPHA : TOOLSCENE_BLEND_OPAQUE );
	for ( int i = 0; i < 6; ++i )
		m_pGL->glEnableVertexAttribArray( GLuint( i ) );
	for ( int i = 2; i < 6; ++i )
		m_pGL->glVertexAttribDivisor( GLuint( i ), 1 );
	const GLsizei nStride = sizeof( ToolSceneModelInstance_t );
	for ( const ToolSceneBatch_t &batch : batches )
	{
		MeshPass_t eBatchPass = batch.m_bBackdrop ? MESH_PASS_BACKDROP : batch.m_eBlend != TOOLSCENE_BLEND_OPAQUE ? MESH_PASS_TRANSLUCENT : MESH_PASS_OPAQUE;
		if ( eBatchPass != ePass || !batch.m_pModel || batch.m_nCount <= 0 )
			continue;
		const Mesh_t *pMesh = FindMesh( batch.m_pModel );
		if ( !pMesh || pMesh->m_nVertexCount == 0 )
			continue;
		m_pGL->glBindBuffer( GL_ARRAY_BUFFER, pMesh->m_nBuffer );
		m_pGL->glVertexAttribPointer( 0, 3, GL_FLOAT, GL_FALSE, 6 * sizeof( float ), nullptr );
		m_pGL->glVertexAttribPointer( 1, 3, GL_FLOAT, GL_FALSE, 6 * sizeof( float ), reinterpret_cast<const void *>( Offset( 3 * sizeof( float ) ) ) );
		m_pGL->glBindBuffer( GL_ARRAY_BUFFER, m_nModelBuffer );
		size_t nBase = size_t( batch.m_nFirst ) * sizeof( ToolSceneModelInstance_t );
		for ( int nRow = 0; nRow < 3; ++nRow )
			m_pGL->glVertexAttribPointer( GLuint( 2 + nRow ), 4, GL_FLOAT, GL_FALSE, nStride, reinterpret_cast<const void *>( Offset( nBase + size_t( nRow ) * 4 * sizeof( float ) ) ) );
		m_pGL->glVertexAttribPointer( 5, 4, GL_FLOAT, GL_FALSE, nStride, reinterpret_cast<const void *>( Offset( nBase + offsetof( ToolSceneModelInstance_t, m_Color ) ) ) );
		m_pGL->glDrawArraysInstanced( GL_TRIANGLES, 0, pMesh->m_nVertexCount, batch.m_nCount );
	}
	for ( int i = 0; i < 6; ++i )
	{
		m_pGL->glVertexAttribDivisor( GLuint( i ), 0 );
		m_pGL->glDisableVertexAttribArray( GLuint( i ) );
	}
}

void CToolSceneRenderer::DrawQuadBatches( const std::vector<ToolSceneBatch_t> &batches, unsigned int nInstanceBuffer, int nStride,
	const InstanceAttribute_t *pAttributes, int nAttributes, unsigned int nProgram )
{
	const int nOverbright = m_pGL->glGetUniformLocation( nProgram, "uOverbright" );
	const int nOrientation = m_pGL->glGetUniformLocation( nProgram, "uOrientation" );
	m_pGL->glUniform1i( m_pGL->glGetUniformLocation( nProgram, "uTexture" ), 0 );
	m_pGL->glBindBuffer( GL_ARRAY_BUFFER, m_nCornerBuffer );
	m_pGL->glEnableVertexAttribArray( 0 );
	m_pGL->glVertexAttribPointer( 0, 2, GL_FLOAT, GL_FALSE, 0, nullptr );
	for ( int i = 1; i <= nAttributes; ++i )
	{
		m_pGL->glEnableVertexAttribArray( GLuint( i ) );
		m_pGL->glVertexAttribDivisor( GLuint( i ), 1 );
	}
	m_pGL->glActiveTexture( GL_TEXTURE0 );
	for ( const ToolSceneBatch_t &batch : batches )
	{
		if ( batch.m_nCount <= 0 )
			continue;
		m_pGL->glBindTexture( GL_TEXTURE_2D, FindTexture( batch.m_Texture ) );
		m_pGL->glBindBuffer( GL_ARRAY_BUFFER, nInstanceBuffer );
		SetBlend( batch.m_eBlend );
		m_pGL->glUniform1f( nOverbright, batch.m_flOverbright );
		if ( nOrientation >= 0 )
			m_pGL->glUniform1i( nOrientation, batch.m_nOrientation );
		// Without base instances (OpenGL 4.2), each batch points the attributes at its first.
		const size_t nBase = size_t( batch.m_nFirst ) * size_t( nStride );
		for ( int i = 0; i < nAttributes; ++i )
			m_pGL->glVertexAttribPointer( GLuint( i + 1 ), pAttributes[ i ].m_nComponents, GL_FLOAT, GL_FALSE, nStride,
				reinterpret_cast<const void *>( Offset( nBase + pAttributes[ i ].m_nOffset ) ) );
		m_pGL->glDrawArraysInstanced( GL_TRIANGLE_STRIP, 0, 4, batch.m_nCount );
	}
	for ( int i = 0; i <= nAttributes; ++i )
	{
		m_pGL->glVertexAttribDivisor( GLuint( i ), 0 );
		m_pGL->glDisableVertexAttribArray( GLuint( i ) );
	}
}

void CToolSceneRenderer::DrawSprites( const CToolSceneDrawList &drawList, const ToolSceneView_t &view, const float *pViewProjection )
{
	if ( drawList.GetSpriteBatches().empty() )
		return;
	m_pGL->glUseProgram( m_nSpriteProgram );
	m_pGL->glUniformMatrix4fv( m_pGL->glGetUniformLocation( m_nSpriteProgram, "uViewProjection" ), 1, GL_FALSE, pViewProjection );
	m_pGL->glUniform3f( m_pGL->glGetUniformLocation( m_nSpriteProgram, "uRight" ), view.m_vRight.x, view.m_vRight.y, view.m_vRight.z );
	m_pGL->glUniform3f( m_pGL->glGetUniformLocation( m_nSpriteProgram, "uUp" ), view.m_vUp.x, view.m_vUp.y, view.m_vUp.z );
	m_pGL->glUniform3f( m_pGL->glGetUniformLocation( m_nSpriteProgram, "uForward" ), view.m_vForward.x, view.m_vForward.y, view.m_vForward.z );
	StreamBuffer( m_nSpriteBuffer, drawList.GetSprites() );
	static const InstanceAttribute_t s_Attributes[] = { { 4, offsetof( ToolSceneSpriteInstance_t, m_Position ) },
		{ 4, offsetof( ToolSceneSpriteInstance_t, m_Color ) }, { 1, offsetof( ToolSceneSpriteInstance_t, m_flRoll ) },
		{ 3, offsetof( ToolSceneSpriteInstance_t, m_Normal ) } };
	DrawQuadBatches( drawList.GetSpriteBatches(), m_nSpriteBuffer, sizeof( ToolSceneSpriteInstance_t ), s_Attributes, 4, m_nSpriteProgram );
}

void CToolSceneRenderer::DrawTrails( const CToolSceneDrawList &drawList, const ToolSceneView_t &view, const float *pViewProjection )
{
	if ( drawList.GetTrailBatches().empty() )
		return;
	m_pGL->glUseProgram( m_nTrailProgram );
	m_pGL->glUniformMatrix4fv( m_pGL->glGetUniformLocation( m_nTrailProgram, "uViewProjection" ), 1, GL_FALSE, pViewProjection );
	m_pGL->glUniform3f( m_pGL->glGetUniformLocation( m_nTrailProgram, "uEye" ), view.m_vEye.x, view.m_vEye.y, view.m_vEye.z );
	m_pGL->glUniform3f( m_pGL->glGetUniformLocation( m_nTrailProgram, "uUp" ), view.m_vUp.x, view.m_vUp.y, view.m_vUp.z );
	StreamBuffer( m_nTrailBuffer, drawList.GetTrails() );
	static const InstanceAttribute_t s_Attributes[] = { { 4, offsetof( ToolSceneTrailInstance_t, m_Head ) }, { 4, offsetof( ToolSceneTrailInstance_t, m_Tail ) },
		{ 4, offsetof( ToolSceneTrailInstance_t, m_Color ) } };
	DrawQuadBatches( drawList.GetTrailBatches(), m_nTrailBuffer, sizeof( ToolSceneTrailInstance_t ), s_Attributes, 3, m_nTrailProgram );
}
