// zol sim FILE: compiles a particle system definition (children found under the content
// root) and steps it headless at a fixed rate, printing a line per simulated second.
// Cameras and control point models can stand in for what the preview's view gives.

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string>
#include <vector>

#include "core/host/resourcesystem.h"
#include "core/particles/particlemodelresource.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "tools/zol/cli/clicommand.h"
#include "tools/zol/cli/clifile.h"

namespace
{
struct SimOptions_t
{
	const char *m_pFile = nullptr;
	double m_flSeconds = 5.0;
	int m_nFps = 60;
	uint64_t m_nSeed = 1;
	std::vector<std::pair<int, Vector>> m_ControlPoints;
	std::vector<ParticleCamera_t> m_Cameras;
	std::vector<std::pair<int, std::string>> m_ControlPointModels;
};

int Usage( const char *pProblem )
{
	fprintf( stderr, "zol sim: %s\nusage: zol sim FILE [--seconds S] [--fps F] [--seed N] [--cp N=x,y,z]... [--camera x,y,z]... [--cp-model N=FILE]...\n", pProblem );
	return 2;
}

bool ParseControlPoint( const char *pText, std::pair<int, Vector> *pOut )
{
	int nPoint;
	float x, y, z;
	char cTrailing;
	if ( sscanf( pText, "%d=%f,%f,%f%c", &nPoint, &x, &y, &z, &cTrailing ) != 4 || nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS )
		return false;
	*pOut = { nPoint, Vector( x, y, z ) };
	return true;
}

// A camera at x,y,z looking at control point 0's place at the start (the origin unless --cp moved it).
bool ParseCamera( const char *pText, ParticleCamera_t *pOut )
{
	float x, y, z;
	char cTrailing;
	if ( sscanf( pText, "%f,%f,%f%c", &x, &y, &z, &cTrailing ) != 3 || !std::isfinite( x ) || !std::isfinite( y ) || !std::isfinite( z ) )
		return false;
	pOut->m_vPosition = Vector( x, y, z );
	return true;
}

bool ParseControlPointModel( const char *pText, std::pair<int, std::string> *pOut )
{
	int nPoint, nConsumed = 0;
	if ( sscanf( pText, "%d=%n", &nPoint, &nConsumed ) != 1 || nConsumed == 0 || nPoint < 0 || nPoint >= MAX_PARTICLE_CONTROL_POINTS || !pText[ nConsumed ] )
		return false;
	*pOut = { nPoint, std::string( pText + nConsumed ) };
	return true;
}

// Answers 0 when the options are good, else the exit status.
int ParseOptions( int argc, char **argv, SimOptions_t *pOptions )
{
	for ( int i = 1; i < argc; ++i )
	{
		const char *pArg = argv[ i ];
		bool bHasValue = i + 1 < argc;
		if ( strcmp( pArg, "--seconds" ) == 0 && bHasValue )
		{
			pOptions->m_flSeconds = atof( argv[ ++i ] );
			if ( !( pOptions->m_flSeconds > 0.0 ) || pOptions->m_flSeconds > 3600.0 )
				return Usage( "--seconds takes a number above 0 and at most 3600" );
		}
		else if ( strcmp( pArg, "--fps" ) == 0 && bHasValue )
		{
			pOptions->m_nFps = atoi( argv[ ++i ] );
			if ( pOptions->m_nFps < 1 || pOptions->m_nFps > 1000 )
				return Usage( "--fps takes a whole number from 1 to 1000" );
		}
		else if ( strcmp( pArg, "--seed" ) == 0 && bHasValue )
		{
			pOptions->m_nSeed = strtoull( argv[ ++i ], nullptr, 10 );
		}
		else if ( strcmp( pArg, "--cp" ) == 0 && bHasValue )
		{
			std::pair<int, Vector> point;
			if ( !ParseControlPoint( argv[ ++i ], &point ) )
				return Usage( "--cp takes N=x,y,z with N from 0 to 63" );
			pOptions->m_ControlPoints.push_back( point );
		}
		else if ( strcmp( pArg, "--camera" ) == 0 && bHasValue )
		{
			ParticleCamera_t camera;
			if ( !ParseCamera( argv[ ++i ], &camera ) )
				return Usage( "--camera takes x,y,z" );
			pOptions->m_Cameras.push_back( camera );
		}
		else if ( strcmp( pArg, "--cp-model" ) == 0 && bHasValue )
		{
			std::pair<int, std::string> model;
			if ( !ParseControlPointModel( argv[ ++i ], &model ) )
				return Usage( "--cp-model takes N=FILE with N from 0 to 63" );
			pOptions->m_ControlPointModels.push_back( model );
		}
		else if ( pArg[ 0 ] == '-' )
		{
			return Usage( ( std::string( "unknown or incomplete option " ) + pArg ).c_str() );
		}
		else if ( !pOptions->m_pFile )
		{
			pOptions->m_pFile = pArg;
		}
		else
		{
			return Usage( "only one file can be simulated at a time" );
		}
	}
	return pOptions->m_pFile ? 0 : Usage( "no file given" );
}

// Loads a model file into the resource system under its name below the content root (or
// the path as given outside it); answers that name, or empty with the reason.
std::string LoadModel( IResourceSystem *pResources, const std::string &path, CUtlString *pError )
{
	std::string absolute = std::filesystem::absolute( path ).lexically_normal().string();
	CUtlBuffer buffer;
	if ( !ZolCliReadFile( absolute.c_str(), &buffer, pError ) )
		return {};
	std::string name = path;
	CUtlString root = CParticleDefinitionFileCompiler::FindContentRoot( absolute.c_str() );
	if ( !root.IsEmpty() )
		name = std::filesystem::path( absolute ).lexically_relative( root.Get() ).generic_string();
	std::unique_ptr<CResourceData> pData;
	CParticleModelCompiler compiler;
	if ( !compiler.Compile( buffer, name.c_str(), &pData, pError ) )
		return {};
	pResources->ReplaceResourceData( pResources->FindOrCreateBinding( name.c_str() ), std::shared_ptr<const CResourceData>( std::move( pData ) ) );
	return name;
}

void PrintBounds( const IParticleCollection &collection )
{
	if ( !collection.AreBoundsValid() )
	{
		printf( "bounds none" );
		return;
	}
	Vector vMin = collection.GetBoundsMin(), vMax = collection.GetBoundsMax();
	printf( "bounds (%.1f %.1f %.1f)-(%.1f %.1f %.1f)", vMin.x, vMin.y, vMin.z, vMax.x, vMax.y, vMax.z );
}

int RunSim( int argc, char **argv )
{
	SimOptions_t options;
	if ( int nStatus = ParseOptions( argc, argv, &options ) )
		return nStatus;

	// The file is named as the user typed it; its children are found under the content root.
	std::string path = std::filesystem::absolute( options.m_pFile ).lexically_normal().string();
	CParticleDefinitionFileCompiler compiler( CParticleDefinitionFileCompiler::FindContentRoot( path.c_str() ).Get(), ZolCliReadFile );
	CUtlString error;
	ParticleDefinitionPtr_t pDefinition = compiler.Compile( path.c_str(), &error );
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

	std::unique_ptr<IParticleCollection> pCollection = CreateParticleCollection( pDefinition, options.m_nSeed );
	for ( const auto &[ nPoint, vPosition ] : options.m_ControlPoints )
		pCollection->SetControlPoint( nPoint, vPosition );
	for ( const auto &[ nPoint, name ] : models )
		pCollection->SetControlPointModel( nPoint, name.c_str() );
	if ( !options.m_Cameras.empty() )
	{
		// Each camera looks at where the system starts.
		Vector vTarget = pCollection->GetControlPointPosition( 0 );
		for ( ParticleCamera_t &camera : options.m_Cameras )
		{
			Vector d( vTarget.x - camera.m_vPosition.x, vTarget.y - camera.m_vPosition.y, vTarget.z - camera.m_vPosition.z );
			camera.m_vForward = d;
		}
		pCollection->SetCameras( options.m_Cameras.data(), int( options.m_Cameras.size() ) );
	}

	const float flDt = 1.0f / float( options.m_nFps );
	const int nSteps = int( std::lround( options.m_flSeconds * options.m_nFps ) );
	int nPeak = 0, nPeakWithChildren = 0;
	for ( int nStep = 1; nStep <= nSteps; ++nStep )
	{
		pCollection->Simulate( flDt );
		nPeak = std::max( nPeak, pCollection->GetActiveParticleCount( false ) );
		nPeakWithChildren = std::max( nPeakWithChildren, pCollection->GetActiveParticleCount( true ) );
		if ( nStep % options.m_nFps == 0 || nStep == nSteps )
		{
			printf( "t=%.2f particles %d with children %d ", double( nStep ) / options.m_nFps, pCollection->GetActiveParticleCount( false ),
				pCollection->GetActiveParticleCount( true ) );
			PrintBounds( *pCollection );
			printf( "\n" );
		}
	}
	printf( "summary: %.2f s at %d fps, seed %llu, peak particles %d, with children %d, %s\n", double( nSteps ) / options.m_nFps, options.m_nFps,
		static_cast<unsigned long long>( options.m_nSeed ), nPeak, nPeakWithChildren, pCollection->IsFinished() ? "finished" : "still running" );
	return 0;
}

CZolCliCommandRegistrar s_SimCommand( { "sim", "sim FILE [--seconds S] [--fps F] [--seed N] [--cp N=x,y,z]... [--camera x,y,z]... [--cp-model N=FILE]...",
	"compiles a particle system and steps it headless, printing counts and bounds each second", RunSim } );
} // namespace
