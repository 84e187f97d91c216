// zol sim FILE: compiles a particle system definition (children found inside the content
// and game roots) and runs it headless on the preview's manager and particle host at a
// fixed rate, printing a line per simulated second, or every N frames. Cameras and control point models can stand in for what the
// preview's view gives; --dump writes every particle of every printed step as JSON lines.

#include <cmath>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/host/resourcesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/particlecollection.h"
#include "core/platform/platformfile.h"
#include "tools/toolscene/toolsceneparticlerun.h"
#include "tools/zol/cli/cliargs.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clidefinition.h"
#include "tools/zol/cli/simdump.h"
#include "zoldoc_lib/zolconfigurationplayer.h"

namespace
{
constexpr const char *SIM_USAGE = "sim FILE [--seconds S] [--fps F] [--seed N] [--every N] [--dump FILE.jsonl] [--config NAME] [--cp N=x,y,z]... [--camera x,y,z]... [--cp-model N=FILE]...";

struct SimOptions_t
{
	const char *m_pFile = nullptr;
	double m_flSeconds = 5.0;
	int m_nFps = 60;
	int m_nEvery = 0; // frames between printed lines; 0: one a second
	uint64_t m_nSeed = 1;
	const char *m_pDump = nullptr;
	const char *m_pConfig = nullptr; // a control point configuration of the file to play
	std::vector<std::pair<int, Vector>> m_ControlPoints;
	std::vector<ParticleCamera_t> m_Cameras;
	std::vector<std::pair<int, std::string>> m_ControlPointModels;
};

int Usage( const std::string &problem )
{
	fprintf( stderr, "zol sim: %s\nusage: zol %s\n", problem.c_str(), SIM_USAGE );
	return 2;
}

// "N=rest" with N a control point number; answers the rest, or null.
const char *ParseControlPointNumber( const char *pText, int *pPoint )
{
	const char *pEquals = strchr( pText, '=' );
	if ( !pEquals )
		return nullptr;
	long long nPoint;
	if ( !ZolCliParseInt( std::string( pText, size_t( pEquals - pText ) ).c_str(), 0, MAX_PARTICLE_CONTROL_POINTS - 1, &nPoint ) )
		return nullptr;
	*pPoint = int( nPoint );
	return pEquals + 1;
}

// Answers 0 when the options are good, else the exit status.
int ParseOptions( int argc, char **argv, SimOptions_t *pOptions )
{
	for ( int i = 1; i < argc; ++i )
	{
		const std::string option = argv[ i ];
		const bool bTakesValue = option == "--seconds" || option == "--fps" || option == "--seed" || option == "--cp" || option == "--camera" ||
								 option == "--cp-model" || option == "--every" || option == "--dump" || option == "--config";
		if ( bTakesValue && i + 1 >= argc )
			return Usage( option + " needs a value" );
		const char *pValue = bTakesValue ? argv[ ++i ] : nullptr;
		const std::string quoted = pValue ? std::string( " (got \"" ) + pValue + "\")" : std::string();
		if ( option == "--seconds" )
		{
			if ( !ZolCliParseDouble( pValue, 0.0, 3600.0, &pOptions->m_flSeconds ) || !( pOptions->m_flSeconds > 0.0 ) )
				return Usage( "--seconds takes a number above 0 and at most 3600" + quoted );
		}
		else if ( option == "--fps" )
		{
			long long nFps;
			if ( !ZolCliParseInt( pValue, 1, 1000, &nFps ) )
				return Usage( "--fps takes a whole number from 1 to 1000" + quoted );
			pOptions->m_nFps = int( nFps );
		}
		else if ( option == "--every" )
		{
			long long nEvery;
			if ( !ZolCliParseInt( pValue, 1, 1000000, &nEvery ) )
				return Usage( "--every takes a whole number of frames from 1 to 1000000" + quoted );
			pOptions->m_nEvery = int( nEvery );
		}
		else if ( option == "--seed" )
		{
			if ( !ZolCliParseUInt64( pValue, &pOptions->m_nSeed ) )
				return Usage( "--seed takes a whole number from 0 to 18446744073709551615" + quoted );
		}
		else if ( option == "--dump" )
		{
			if ( !*pValue )
				return Usage( "--dump needs a file name" );
			pOptions->m_pDump = pValue;
		}
		else if ( option == "--config" )
		{
			if ( !*pValue )
				return Usage( "--config needs a configuration name" );
			pOptions->m_pConfig = pValue;
		}
		else if ( option == "--cp" )
		{
			int nPoint;
			const char *pRest = ParseControlPointNumber( pValue, &nPoint );
			float v[ 3 ];
			if ( !pRest || !ZolCliParseVector( pRest, v ) )
				return Usage( "--cp takes N=x,y,z with N from 0 to 63 and finite numbers" + quoted );
			pOptions->m_ControlPoints.emplace_back( nPoint, Vector( v[ 0 ], v[ 1 ], v[ 2 ] ) );
		}
		else if ( option == "--camera" )
		{
			// A camera at x,y,z looks at control point 0's place at the start.
			float v[ 3 ];
			if ( !ZolCliParseVector( pValue, v ) )
				return Usage( "--camera takes x,y,z with finite numbers" + quoted );
			ParticleCamera_t camera;
			camera.m_vPosition = Vector( v[ 0 ], v[ 1 ], v[ 2 ] );
			pOptions->m_Cameras.push_back( camera );
		}
		else if ( option == "--cp-model" )
		{
			int nPoint;
			const char *pRest = ParseControlPointNumber( pValue, &nPoint );
			if ( !pRest || !*pRest )
				return Usage( "--cp-model takes N=FILE with N from 0 to 63" + quoted );
			pOptions->m_ControlPointModels.emplace_back( nPoint, std::string( pRest ) );
		}
		else if ( option.size() > 1 && option[ 0 ] == '-' )
		{
			return Usage( "unknown option " + option );
		}
		else if ( option.empty() )
		{
			return Usage( "an empty file name" );
		}
		else if ( !pOptions->m_pFile )
		{
			pOptions->m_pFile = argv[ i ];
		}
		else
		{
			return Usage( "only one file can be simulated at a time" );
		}
	}
	return pOptions->m_pFile ? 0 : Usage( "no file given" );
}

// Reads and compiles a model file into the resource system under the name given.
bool RegisterModel( IResourceSystem *pResources, const std::string &path, const std::string &name, CUtlString *pError )
{
	CUtlBuffer buffer;
	CUtlString reason;
	if ( !Plat_ReadWholeFile( path.c_str(), &buffer, &reason ) )
	{
		pError->Format( "%s: %s", path.c_str(), reason.Get() );
		return false;
	}
	std::unique_ptr<CResourceData> pData;
	CParticleModelCompiler compiler;
	if ( !compiler.Compile( buffer, name.c_str(), &pData, pError ) )
		return false;
	pResources->ReplaceResourceData( pResources->FindOrCreateBinding( name.c_str() ), std::shared_ptr<const CResourceData>( std::move( pData ) ) );
	return true;
}

// Loads a model file into the resource system under its name below the content root (or
// the path as given outside it); answers that name, or empty with the reason.
std::string LoadModel( IResourceSystem *pResources, const std::string &path, CUtlString *pError )
{
	std::error_code fsError;
	std::string absolute = std::filesystem::absolute( path, fsError ).lexically_normal().string();
	std::string name = path;
	std::string root = ZolCliContentRootFor( absolute.c_str() );
	if ( !root.empty() )
	{
		std::string relative = std::filesystem::path( absolute ).lexically_relative( root ).generic_string();
		if ( !relative.empty() && relative.compare( 0, 2, ".." ) != 0 )
			name = relative;
	}
	return RegisterModel( pResources, absolute, name, pError ) ? name : std::string();
}

// Plays the named configuration of the file on the collection, its preview model loaded
// from the content root for control points attached to it. False, said on stderr, when the
// file has no such configuration.
bool PlayConfiguration( const char *pFile, const char *pName, const CParticleRuntimeDefinition &definition, IResourceSystem *pResources, IParticleCollection *pCollection )
{
	CUtlBuffer buffer;
	KeyValues3 tree;
	CUtlString error;
	if ( !Plat_ReadWholeFile( pFile, &buffer, &error ) || !LoadKV3( &tree, &error, &buffer, KV3_FORMAT_TFXS, pFile ) )
	{
		fprintf( stderr, "%s: %s\n", pFile, error.Get() );
		return false;
	}
	const KeyValues3 *pConfiguration = FindZolConfiguration( tree, pName );
	const char *pModel = pConfiguration ? GetZolConfigurationPreviewModel( *pConfiguration ) : "";
	std::error_code fsError;
	std::string root = ZolCliContentRootFor( std::filesystem::absolute( pFile, fsError ).lexically_normal().string().c_str() );
	if ( *pModel && !root.empty() && !RegisterModel( pResources, ( std::filesystem::path( root ) / pModel ).string(), pModel, &error ) )
		fprintf( stderr, "%s: configuration '%s': the preview model can't be loaded (%s); attached control points stand at their offsets\n", pFile, pName, error.Get() );
	CUtlString warning;
	if ( !PlayZolConfiguration( tree, pName, definition.m_Usage, pCollection, &error, &warning ) )
	{
		fprintf( stderr, "%s: %s\n", pFile, error.Get() );
		return false;
	}
	if ( !warning.IsEmpty() )
		fprintf( stderr, "%s: configuration '%s': %s\n", pFile, pName, warning.Get() );
	return true;
}

// Particles of the whole tree left out of the bounds for a position or radius that isn't finite.
int CountNonFinite( const IParticleCollection &collection )
{
	int nCount = static_cast<const CParticleCollection &>( collection ).GetNonFiniteParticleCount();
	for ( const IParticleCollection *pChild = collection.GetFirstChild(); pChild; pChild = pChild->GetNextSibling() )
		nCount += CountNonFinite( *pChild );
	return nCount;
}

void PrintBounds( const IParticleCollection &collection )
{
	if ( !collection.AreBoundsValid() )
		printf( "bounds none" );
	else
	{
		// Every digit a float holds, so that a check can compare against exact values.
		Vector vMin = collection.GetBoundsMin(), vMax = collection.GetBoundsMax();
		printf( "bounds (%.9g %.9g %.9g)-(%.9g %.9g %.9g)", double( vMin.x ), double( vMin.y ), double( vMin.z ), double( vMax.x ), double( vMax.y ), double( vMax.z ) );
	}
	if ( int nNonFinite = CountNonFinite( collection ) )
		printf( " non-finite %d", nNonFinite );
}

// Seconds of a frame count: two decimals when they are exact, else every digit needed.
void PrintTime( int nStep, int nFps )
{
	if ( ( int64_t( nStep ) * 100 ) % nFps == 0 )
		printf( "t=%.2f", double( nStep ) / nFps );
	else
		printf( "t=%.9g", double( nStep ) / nFps );
}

int RunSim( int argc, char **argv )
{
	SimOptions_t options;
	if ( int nStatus = ParseOptions( argc, argv, &options ) )
		return nStatus;

	CUtlString error, warnings;
	ParticleDefinitionPtr_t pDefinition = ZolCliCompileDefinition( options.m_pFile, &error, &warnings );
	if ( !warnings.IsEmpty() )
		fprintf( stderr, "%s", warnings.Get() );
	if ( !pDefinition )
	{
		fprintf( stderr, "%s\n", error.Get() );
		return 1;
	}
	// Models reach collections through the resource system, as in the editor.
	CResourceSystem resources;
	SetResourceSystem( &resources );
	struct ResetResources_t
	{
		~ResetResources_t() { SetResourceSystem( nullptr ); }
	} resetResources;
	std::vector<std::pair<int, std::string>> models;
	for ( const auto &[ nPoint, modelPath ] : options.m_ControlPointModels )
	{
		std::string name = LoadModel( &resources, modelPath, &error );
		if ( name.empty() )
		{
			fprintf( stderr, "%s\n", error.Get() );
			return 1;
		}
		models.emplace_back( nPoint, name );
	}
	CSimDumpWriter dump;
	if ( options.m_pDump && !dump.Open( options.m_pDump, &error ) )
	{
		fprintf( stderr, "zol sim: %s\n", error.Get() );
		return 1;
	}

	// The preview's own machinery, headless: a tool scene whose particle node runs the
	// definition through the manager of live effects, one frame of the scene per step.
	SetParticleSystemMgr( HostParticleSystemMgr() );
	struct ResetParticleSystemMgr_t
	{
		~ResetParticleSystemMgr_t() { SetParticleSystemMgr( nullptr ); }
	} resetMgr;
	CToolSceneParticleRun run( pDefinition, options.m_nSeed );
	IParticleCollection *pCollection = run.GetCollection();
	if ( !pCollection )
	{
		fprintf( stderr, "%s: the particle system could not be made\n", options.m_pFile );
		return 1;
	}
	// A configuration places the system as the preview would; points given on the
	// command line then stand where they are told. What it placed stays placed: the node
	// no longer moves those points.
	if ( options.m_pConfig )
	{
		if ( !PlayConfiguration( options.m_pFile, options.m_pConfig, *pDefinition, &resources, pCollection ) )
			return 1;
		run.PinControlPoints();
	}
	for ( const auto &[ nPoint, vPosition ] : options.m_ControlPoints )
		run.SetControlPoint( nPoint, vPosition );
	for ( const auto &[ nPoint, name ] : models )
		pCollection->SetControlPointModel( nPoint, name.c_str() );
	if ( !options.m_Cameras.empty() )
	{
		// Each camera looks at where the system starts.
		Vector vTarget = pCollection->GetControlPointPosition( 0 );
		for ( ParticleCamera_t &camera : options.m_Cameras )
			camera.m_vForward = Vector( vTarget.x - camera.m_vPosition.x, vTarget.y - camera.m_vPosition.y, vTarget.z - camera.m_vPosition.z );
		run.SetCameras( options.m_Cameras );
	}

	const float flDt = 1.0f / float( options.m_nFps );
	const int nSteps = std::max( 1, int( std::lround( options.m_flSeconds * options.m_nFps ) ) );
	const int nEvery = options.m_nEvery > 0 ? options.m_nEvery : options.m_nFps;
	int nPeak = 0, nPeakWithChildren = 0;
	bool bToldNonFinite = false;
	// The scene steps particles at most a tenth of a second a frame: a longer frame is run
	// as that many equal frames.
	const int nFramesPerStep = std::max( 1, int( std::ceil( double( flDt ) / 0.1 - 1e-6 ) ) );
	for ( int nStep = 1; nStep <= nSteps; ++nStep )
	{
		for ( int nFrame = 0; nFrame < nFramesPerStep; ++nFrame )
			run.Frame( flDt / float( nFramesPerStep ) );
		if ( int nNonFinite = bToldNonFinite ? 0 : CountNonFinite( *pCollection ) )
		{
			fprintf( stderr, "%s: at frame %d, %d particles have a position or radius that isn't finite (NaN or infinite); the bounds leave them out\n",
				options.m_pFile, nStep, nNonFinite );
			bToldNonFinite = true;
		}
		nPeak = std::max( nPeak, pCollection->GetActiveParticleCount( false ) );
		nPeakWithChildren = std::max( nPeakWithChildren, pCollection->GetActiveParticleCount( true ) );
		if ( nStep % nEvery == 0 || nStep == nSteps )
		{
			PrintTime( nStep, options.m_nFps );
			printf( " particles %d with children %d ", pCollection->GetActiveParticleCount( false ), pCollection->GetActiveParticleCount( true ) );
			PrintBounds( *pCollection );
			printf( "\n" );
			if ( dump.IsOpen() && !dump.WriteStep( nStep, double( nStep ) / options.m_nFps, *pCollection, &error ) )
			{
				fprintf( stderr, "zol sim: %s\n", error.Get() );
				return 1;
			}
		}
	}
	if ( dump.IsOpen() && !dump.Close( &error ) )
	{
		fprintf( stderr, "zol sim: %s\n", error.Get() );
		return 1;
	}
	printf( "summary: %.2f s at %d fps, seed %llu, peak particles %d, with children %d, %s\n", double( nSteps ) / options.m_nFps, options.m_nFps,
		static_cast<unsigned long long>( options.m_nSeed ), nPeak, nPeakWithChildren, pCollection->IsFinished() ? "finished" : "still running" );
	return 0;
}

CZolCliCommandRegistrar s_SimCommand( { "sim", SIM_USAGE, "compiles a particle system and steps it headless, printing counts and bounds each second", RunSim } );
} // namespace
