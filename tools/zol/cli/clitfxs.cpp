#include "tools/zol/cli/clitfxs.h"

#include <cstring>
#include <filesystem>
#include <string>

#include "core/particles/hostparticlesystemmgr.h"
#include "core/particles/iparticlesystemmgr.h"
#include "zoldoc_lib/particlegamedata.h"

namespace
{
std::string FindGameRootAbove( std::filesystem::path directory )
{
	std::error_code error;
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

std::string FindDefinitionGameRoot( const char *pPath )
{
	std::error_code error;
	std::string root = FindGameRootAbove( std::filesystem::absolute( pPath, error ).parent_path() );
	return root.empty() ? FindGameRootAbove( std::filesystem::current_path( error ) ) : root;
}
} // namespace

void ConnectParticleHostForDefinition( const char *pFirstFile )
{
	SetParticleSystemMgr( HostParticleSystemMgr() );
	SetParticleGameRoot( FindDefinitionGameRoot( pFirstFile ).c_str() );
}

void PrintFileLines( FILE *pOut, const char *pFile, const char *pText )
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
