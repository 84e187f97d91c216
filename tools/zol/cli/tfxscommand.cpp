// zol tfxs check|fmt: load particle system definition files as the editor does, and report
// why one is refused or what was read leniently, or print the text a save would write.

#include <cstdio>
#include <cstring>
#include <filesystem>
#include <string>

#include "core/containers/utlbuffer.h"
#include "core/particles/iparticlesystemmgr.h"
#include "core/particles/hostparticlesystemmgr.h"
#include "tools/zol/cli/clicommand.h"
#include "zoldoc_lib/particlegamedata.h"
#include "zoldoc_lib/zoldoc.h"

// The game root of a definition: the nearest ancestor folder with "game/gameinfo.gi"
// (content/content/... files sit beside content/game), else none.
static std::string FindDefinitionGameRoot( const char *pPath )
{
	std::error_code error;
	std::filesystem::path directory = std::filesystem::absolute( pPath, error ).parent_path();
	for ( ; !directory.empty(); directory = directory.parent_path() )
	{
		for ( const char *pCandidate : { "game", "content/game" } )
		{
			std::filesystem::path root = directory / pCandidate;
			if ( std::filesystem::exists( root / "gameinfo.gi", error ) )
				return root.string();
		}
		if ( directory == directory.root_path() )
			break;
	}
	return std::string();
}

// Each line of a text, as "FILE: line".
static void PrintLines( FILE *pOut, const char *pFile, const char *pText )
{
	const char *pLine = pText;
	while ( pLine && *pLine )
	{
		const char *pEnd = strchr( pLine, '\n' );
		size_t nLength = pEnd ? size_t( pEnd - pLine ) : strlen( pLine );
		if ( nLength )
			fprintf( pOut, "%s: %.*s\n", pFile, int( nLength ), pLine );
		pLine = pEnd ? pEnd + 1 : nullptr;
	}
}

static void ConnectParticleHost( const char *pFirstFile )
{
	SetParticleSystemMgr( HostParticleSystemMgr() );
	SetParticleGameRoot( FindDefinitionGameRoot( pFirstFile ).c_str() );
}

static int RunTfxs( int argc, char **argv )
{
	const char *pUsage = "usage: zol tfxs check FILE...\n       zol tfxs fmt FILE\n";
	const bool bCheck = argc >= 3 && !strcmp( argv[ 1 ], "check" );
	const bool bFormat = argc == 3 && !strcmp( argv[ 1 ], "fmt" );
	if ( !bCheck && !bFormat )
	{
		fprintf( stderr, "%s", pUsage );
		return 2;
	}
	ConnectParticleHost( argv[ 2 ] );

	int nStatus = 0;
	for ( int i = 2; i < argc; ++i )
	{
		CZolDoc doc( false );
		CUtlString error;
		if ( !doc.LoadFromFile( argv[ i ], "", &error ) )
		{
			PrintLines( bFormat ? stderr : stdout, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		PrintLines( bFormat ? stderr : stdout, argv[ i ], doc.GetLoadWarnings().Get() );
		if ( !bFormat )
			continue;
		CUtlBuffer buffer;
		if ( !doc.SaveToBuffer( &buffer, &error ) )
		{
			PrintLines( stderr, argv[ i ], error.Get() );
			nStatus = 1;
			continue;
		}
		fwrite( buffer.Base(), 1, buffer.Size(), stdout );
	}
	return nStatus;
}

static CZolCliCommandRegistrar s_TfxsCommand( { "tfxs", "tfxs check|fmt FILE...",
	"reports why particle system definitions are refused or read leniently (check), or prints one as a save writes it (fmt)", RunTfxs } );
