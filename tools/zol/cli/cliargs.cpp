#include "tools/zol/cli/cliargs.h"

#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <string_view>

#include "core/particles/sim/particleruntimedefinition.h"

namespace fs = std::filesystem;

namespace
{
ZolCliRoots_t s_Roots;

// The nearest folder from here up with "game/gameinfo.gi" or "content/game/gameinfo.gi"
// (content/content/... files sit beside content/game), as its game folder.
std::string FindGameRootAbove( fs::path directory )
{
	std::error_code error;
	for ( ; !directory.empty(); directory = directory.parent_path() )
	{
		for ( const char *pCandidate : { "game", "content/game" } )
		{
			fs::path root = directory / pCandidate;
			if ( fs::exists( root / "gameinfo.gi", error ) )
				return root.string();
		}
		if ( directory == directory.root_path() )
			break;
	}
	return std::string();
}

std::string AbsoluteDirectory( const char *pPath )
{
	std::error_code error;
	fs::path path = fs::absolute( pPath, error );
	return error ? std::string() : path.lexically_normal().string();
}
} // namespace

bool ZolCliTakeRoots( int *pArgc, char **argv, ZolCliRoots_t *pRoots )
{
	int nOut = 1;
	for ( int i = 1; i < *pArgc; ++i )
	{
		const bool bGame = !strcmp( argv[ i ], "--game" );
		if ( !bGame && strcmp( argv[ i ], "--content" ) )
		{
			argv[ nOut++ ] = argv[ i ];
			continue;
		}
		if ( i + 1 >= *pArgc || !*argv[ i + 1 ] )
		{
			fprintf( stderr, "zol: %s needs a directory\n", argv[ i ] );
			return false;
		}
		const char *pDirectory = argv[ ++i ];
		std::error_code error;
		if ( !fs::is_directory( pDirectory, error ) )
		{
			fprintf( stderr, "zol: %s %s: %s\n", argv[ i - 1 ], pDirectory, fs::exists( pDirectory, error ) ? "not a directory" : "no such directory" );
			return false;
		}
		( bGame ? pRoots->m_GameRoot : pRoots->m_ContentRoot ) = AbsoluteDirectory( pDirectory );
	}
	argv[ nOut ] = nullptr;
	*pArgc = nOut;
	return true;
}

const ZolCliRoots_t &ZolCliRoots()
{
	return s_Roots;
}

void ZolCliSetRoots( const ZolCliRoots_t &roots )
{
	s_Roots = roots;
}

std::string ZolCliGameRootFor( const char *pFile )
{
	if ( !s_Roots.m_GameRoot.empty() )
		return s_Roots.m_GameRoot;
	std::error_code error;
	std::string root;
	if ( pFile && *pFile )
		root = FindGameRootAbove( fs::absolute( pFile, error ).lexically_normal().parent_path() );
	return root.empty() ? FindGameRootAbove( fs::current_path( error ) ) : root;
}

std::string ZolCliContentRootFor( const char *pFile )
{
	if ( !s_Roots.m_ContentRoot.empty() )
		return s_Roots.m_ContentRoot;
	return CParticleDefinitionFileCompiler::FindContentRoot( pFile ).Get();
}

bool ZolCliParseInt( const char *pText, long long nMin, long long nMax, long long *pOut )
{
	if ( !pText || !*pText )
		return false;
	char *pEnd = nullptr;
	errno = 0;
	long long nValue = strtoll( pText, &pEnd, 10 );
	if ( errno == ERANGE || *pEnd || pEnd == pText || nValue < nMin || nValue > nMax )
		return false;
	*pOut = nValue;
	return true;
}

bool ZolCliParseUInt64( const char *pText, uint64_t *pOut )
{
	// strtoull takes "-1" as the largest number: a sign is refused first.
	if ( !pText || !*pText || !( *pText >= '0' && *pText <= '9' ) )
		return false;
	char *pEnd = nullptr;
	errno = 0;
	unsigned long long nValue = strtoull( pText, &pEnd, 10 );
	if ( errno == ERANGE || *pEnd )
		return false;
	*pOut = nValue;
	return true;
}

bool ZolCliParseDouble( const char *pText, double flMin, double flMax, double *pOut )
{
	if ( !pText || !*pText )
		return false;
	char *pEnd = nullptr;
	errno = 0;
	double flValue = strtod( pText, &pEnd );
	if ( errno == ERANGE || *pEnd || pEnd == pText || !std::isfinite( flValue ) || flValue < flMin || flValue > flMax )
		return false;
	*pOut = flValue;
	return true;
}

bool ZolCliParseVector( const char *pText, float pOut[ 3 ] )
{
	std::string_view text( pText ? pText : "" );
	for ( int k = 0; k < 3; ++k )
	{
		size_t nComma = text.find( ',' );
		if ( ( k < 2 ) != ( nComma != std::string_view::npos ) )
			return false;
		std::string part( text.substr( 0, nComma ) );
		double flValue;
		// Each component must fit a float as well as be finite.
		if ( !ZolCliParseDouble( part.c_str(), -3.0e38, 3.0e38, &flValue ) )
			return false;
		pOut[ k ] = float( flValue );
		text = k < 2 ? text.substr( nComma + 1 ) : std::string_view();
	}
	return true;
}
