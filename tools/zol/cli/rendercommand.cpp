// zol render FILE --at S --out PNG: runs a particle system definition headless in the
// preview's scene and draws one frame offscreen with OpenGL, as the preview would show it.
// Needs a display for OpenGL (xvfb-run provides one); without one it says so and fails.

#include <QGuiApplication>
#include <QImage>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/host/assetsystem.h"
#include "core/host/hostservices.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlesystemresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "tools/toolscene/toolsceneparticlerun.h"
#include "tools/toolscene/widgets/offscreentoolscenewindow.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clidefinition.h"

namespace
{
constexpr int RENDER_FPS = 60;
constexpr double MAX_SECONDS = 3600.0;
constexpr int MAX_SIDE = 8192;

struct RenderOptions_t
{
	const char *m_pFile = nullptr;
	const char *m_pOut = nullptr;
	double m_flAt = -1.0;
	int m_nWidth = 640;
	int m_nHeight = 480;
	uint64_t m_nSeed = 1;
	bool m_bCamera = false;
	bool m_bCameraTarget = false;
	Vector m_vCamera;
	Vector m_vCameraTarget;
};

const char *const s_pUsage = "render FILE --at S --out PNG [--size WxH] [--seed N] [--camera x,y,z[:x,y,z]]";

int Usage( const char *pProblem )
{
	fprintf( stderr, "zol render: %s\nusage: zol %s\n", pProblem, s_pUsage );
	return 2;
}

bool ParseVector( const std::string &text, Vector *pOut )
{
	float v[ 3 ];
	if ( !ZolCliParseVector( text.c_str(), v ) )
		return false;
	*pOut = Vector( v[ 0 ], v[ 1 ], v[ 2 ] );
	return true;
}

// "x,y,z" looks at the system, "x,y,z:x,y,z" at the point after the colon.
bool ParseCamera( const char *pText, RenderOptions_t *pOptions )
{
	std::string text( pText );
	size_t nColon = text.find( ':' );
	if ( !ParseVector( text.substr( 0, nColon ), &pOptions->m_vCamera ) )
		return false;
	pOptions->m_bCamera = true;
	if ( nColon == std::string::npos )
		return true;
	pOptions->m_bCameraTarget = true;
	return ParseVector( text.substr( nColon + 1 ), &pOptions->m_vCameraTarget );
}

int ParseOptions( int argc, char **argv, RenderOptions_t *pOptions )
{
	for ( int i = 1; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		const char *pValue = i + 1 < argc ? argv[ i + 1 ] : nullptr;
		if ( !strcmp( pArg, "--at" ) && pValue )
		{
			if ( !ZolCliParseDouble( argv[ ++i ], 0.0, MAX_SECONDS, &pOptions->m_flAt ) )
				return Usage( "--at takes seconds from 0 to 3600" );
		}
		else if ( !strcmp( pArg, "--out" ) && pValue )
			pOptions->m_pOut = argv[ ++i ];
		else if ( !strcmp( pArg, "--size" ) && pValue )
		{
			std::string size( argv[ ++i ] );
			size_t nX = size.find( 'x' );
			long long nWidth = 0, nHeight = 0;
			if ( nX == std::string::npos || !ZolCliParseInt( size.substr( 0, nX ).c_str(), 1, MAX_SIDE, &nWidth ) ||
				 !ZolCliParseInt( size.substr( nX + 1 ).c_str(), 1, MAX_SIDE, &nHeight ) )
				return Usage( "--size takes WxH, each from 1 to 8192" );
			pOptions->m_nWidth = int( nWidth );
			pOptions->m_nHeight = int( nHeight );
		}
		else if ( !strcmp( pArg, "--seed" ) && pValue )
		{
			if ( !ZolCliParseUInt64( argv[ ++i ], &pOptions->m_nSeed ) )
				return Usage( "--seed takes a whole number from 0 to 18446744073709551615" );
		}
		else if ( !strcmp( pArg, "--camera" ) && pValue )
		{
			if ( !ParseCamera( argv[ ++i ], pOptions ) )
				return Usage( "--camera takes x,y,z (looking at the system) or x,y,z:x,y,z (looking at a point)" );
		}
		else if ( pArg[ 0 ] == '-' )
			return Usage( ( std::string( "unknown or incomplete option " ) + pArg ).c_str() );
		else if ( !pOptions->m_pFile )
			pOptions->m_pFile = pArg;
		else
			return Usage( "only one file can be drawn at a time" );
	}
	if ( !pOptions->m_pFile )
		return Usage( "no file given" );
	if ( pOptions->m_flAt < 0.0 )
		return Usage( "--at is needed" );
	if ( !pOptions->m_pOut )
		return Usage( "--out is needed" );
	return 0;
}

int RunRender( int argc, char **argv )
{
	RenderOptions_t options;
	if ( int nStatus = ParseOptions( argc, argv, &options ) )
		return nStatus;

	namespace fs = std::filesystem;
	std::string path = fs::absolute( options.m_pFile ).lexically_normal().string();
	if ( !fs::is_regular_file( path ) )
	{
		fprintf( stderr, "zol render: %s: no such file\n", options.m_pFile );
		return 1;
	}
	// Textures, models and children are found under the roots of the file, as in the editor.
	std::string contentRoot = ZolCliContentRootFor( path.c_str() );
	std::string gameRoot = ZolCliGameRootFor( path.c_str() );
	if ( gameRoot.empty() )
		gameRoot = contentRoot;
	CHostServices services;
	CUtlString strError;
	if ( !services.Init( gameRoot.c_str(), contentRoot.c_str(), &strError ) )
	{
		fprintf( stderr, "zol render: %s\n", strError.Get() );
		return 1;
	}
	CParticleAssetCompiler particleCompiler;
	services.GetAssetSystem()->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, &particleCompiler );
	services.SetParticleSystemMgr( HostParticleSystemMgr() );
	struct ServicesCleanup_t
	{
		CHostServices &m_Services;
		~ServicesCleanup_t()
		{
			m_Services.GetAssetSystem()->RegisterCompiler( RESOURCE_TYPE_PARTICLE_SYSTEM, nullptr );
			m_Services.SetParticleSystemMgr( nullptr );
		}
	} cleanup{ services };

	CUtlString strWarnings;
	ParticleDefinitionPtr_t pDefinition = ZolCliCompileDefinition( options.m_pFile, &strError, &strWarnings );
	if ( !strWarnings.IsEmpty() )
		fprintf( stderr, "%s", strWarnings.Get() );
	if ( !pDefinition )
	{
		fprintf( stderr, "%s\n", strError.Get() );
		return 1;
	}

	// Without a display, Qt's offscreen platform still starts; it just can't make a context,
	// which is reported below instead of Qt stopping the process.
	if ( !getenv( "QT_QPA_PLATFORM" ) && !getenv( "DISPLAY" ) && !getenv( "WAYLAND_DISPLAY" ) )
		setenv( "QT_QPA_PLATFORM", "offscreen", 1 );
	int nQtArgc = 1;
	char szName[] = "zol";
	char *qtArgv[] = { szName, nullptr };
	QGuiApplication app( nQtArgc, qtArgv );
	COffscreenToolSceneWindow window;
	if ( !window.Create( options.m_nWidth, options.m_nHeight, &strError ) )
	{
		fprintf( stderr, "zol render: %s\n", strError.Get() );
		return 1;
	}

	CToolSceneParticleRun run( pDefinition, options.m_nSeed );
	ToolSceneView_t view;
	if ( options.m_bCamera )
	{
		// A camera looks at the point given, else where the system starts.
		Vector vTarget = options.m_bCameraTarget ? options.m_vCameraTarget : ( run.GetCollection() ? run.GetCollection()->GetControlPointPosition( 0 ) : Vector() );
		view.LookAt( options.m_vCamera, vTarget );
		view.m_nWidth = options.m_nWidth;
		view.m_nHeight = options.m_nHeight;
		view.Compute();
		run.SetCameras( { view.GetParticleCamera() } );
	}
	run.RunFor( options.m_flAt, RENDER_FPS );
	// Without a camera given, the picture frames what the system covered; camera-driven
	// inputs then ran with their no-camera values, as in a headless simulation.
	if ( !options.m_bCamera )
		view = run.GetFramingView( options.m_nWidth, options.m_nHeight );
	QImage image = window.Render( run.GetScene(), view );
	if ( image.isNull() || !image.save( QString::fromLocal8Bit( options.m_pOut ), "PNG" ) )
	{
		fprintf( stderr, "zol render: could not write %s\n", options.m_pOut );
		return 1;
	}
	IParticleCollection *pCollection = run.GetCollection();
	printf( "%s: %.2f s, %d particles (with children %d), %dx%d\n", options.m_pOut, run.GetFrameCount() / double( RENDER_FPS ),
		pCollection ? pCollection->GetActiveParticleCount( false ) : 0, pCollection ? pCollection->GetActiveParticleCount( true ) : 0, options.m_nWidth,
		options.m_nHeight );
	return 0;
}

CZolCliCommandRegistrar s_RenderCommand( { "render", s_pUsage, "runs a particle system headless and draws one frame of it with OpenGL into a PNG", RunRender } );
} // namespace
