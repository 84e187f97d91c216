#include "core/host/hostpaths.h"

#include <algorithm>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include "core/text/strtools.h"

namespace fs = std::filesystem;

namespace
{
std::string WithSlashes( const char *pPath, char cSeparator )
{
	std::string text( pPath ? pPath : "" );
	for ( char &c : text )
	{
		if ( V_IsPathSeparator( c ) )
			c = cSeparator;
	}
	return text;
}

std::string Normalized( const char *pPath )
{
	std::string disk = WithSlashes( pPath, '/' );
	if ( disk.empty() )
		return disk;
	std::string normal = fs::path( disk ).lexically_normal().generic_string();
	while ( normal.size() > 1 && normal.back() == '/' )
		normal.pop_back();
	if ( normal == "." )
		normal.clear();
	return normal;
}
} // namespace

CUtlString Host_NormalizePath( const char *pPath )
{
	return CUtlString( WithSlashes( Normalized( pPath ).c_str(), '\\' ) );
}

CUtlString Host_DiskPath( const char *pPath )
{
	return CUtlString( Normalized( pPath ) );
}

CUtlString Host_DisplayPath( const char *pPath )
{
	CUtlString strPath( pPath ? pPath : "" );
#ifdef _WIN32
	strPath.FixSlashes( '\\' );
#else
	strPath.FixSlashes( '/' );
#endif
	return strPath;
}

CUtlString Host_JoinPath( const char *pDirectory, const char *pRelative )
{
	std::string joined( pDirectory ? pDirectory : "" );
	if ( pRelative && *pRelative )
	{
		if ( !joined.empty() )
			joined.push_back( '\\' );
		joined.append( pRelative );
	}
	return Host_NormalizePath( joined.c_str() );
}

namespace
{
// Finds the entry of pDirectory whose name equals pName ignoring case.
bool FindEntryIgnoringCase( const fs::path &directory, const std::string &name, fs::path *pFound )
{
	std::error_code error;
	fs::directory_iterator it( directory.empty() ? fs::path( "." ) : directory, error );
	if ( error )
		return false;
	for ( const fs::directory_entry &entry : it )
	{
		std::string entryName = entry.path().filename().string();
		if ( V_stricmp_fast( entryName.c_str(), name.c_str() ) == 0 )
		{
			*pFound = directory / entryName;
			return true;
		}
	}
	return false;
}

// Resolves as many leading components as exist; answers the count left unresolved.
size_t ResolveLeading( const std::string &disk, fs::path *pResolved, std::vector<std::string> *pRest )
{
	fs::path input( disk );
	fs::path resolved = input.root_path();
	std::vector<std::string> parts;
	for ( const fs::path &part : input.relative_path() )
		parts.push_back( part.string() );
	size_t i = 0;
	for ( ; i < parts.size(); ++i )
	{
		std::error_code error;
		fs::path exact = resolved / parts[ i ];
		if ( fs::exists( exact, error ) )
		{
			resolved = exact;
			continue;
		}
		fs::path found;
		if ( !FindEntryIgnoringCase( resolved, parts[ i ], &found ) )
			break;
		resolved = found;
	}
	pRest->assign( parts.begin() + long( i ), parts.end() );
	*pResolved = resolved;
	return parts.size() - i;
}
} // namespace

bool Host_FindOnDisk( const char *pPath, CUtlString *pDiskPath )
{
	std::string disk = Normalized( pPath );
	if ( disk.empty() )
		return false;
	std::error_code error;
	if ( fs::exists( disk, error ) )
	{
		pDiskPath->Set( disk.c_str() );
		return true;
	}
	fs::path resolved;
	std::vector<std::string> rest;
	if ( ResolveLeading( disk, &resolved, &rest ) != 0 )
		return false;
	pDiskPath->Set( resolved.generic_string().c_str() );
	return true;
}

HostFindResult_t Host_FindOnDiskBelow( const char *pBase, const char *pRelative, CUtlString *pDiskPath, CUtlString *pClash )
{
	fs::path resolved( Normalized( pBase ) );
	std::string relative = Normalized( pRelative );
	if ( relative.empty() )
		return HOST_FIND_MISSING;
	for ( const fs::path &part : fs::path( relative ) )
	{
		const std::string name = part.string();
		std::error_code error;
		fs::directory_iterator it( resolved.empty() ? fs::path( "." ) : resolved, error );
		if ( error )
			return HOST_FIND_MISSING;
		std::vector<std::string> matches;
		for ( const fs::directory_entry &entry : it )
		{
			std::string entryName = entry.path().filename().string();
			if ( V_stricmp_fast( entryName.c_str(), name.c_str() ) == 0 )
				matches.push_back( entryName );
		}
		if ( matches.empty() )
			return HOST_FIND_MISSING;
		if ( matches.size() > 1 )
		{
			if ( pClash )
			{
				std::sort( matches.begin(), matches.end() );
				pClash->Format( "'%s' and '%s'", ( resolved / matches[ 0 ] ).generic_string().c_str(), ( resolved / matches[ 1 ] ).generic_string().c_str() );
			}
			return HOST_FIND_AMBIGUOUS;
		}
		resolved /= matches[ 0 ];
	}
	pDiskPath->Set( resolved.generic_string().c_str() );
	return HOST_FIND_FOUND;
}

CUtlString Host_DiskPathForWrite( const char *pPath )
{
	std::string disk = Normalized( pPath );
	std::error_code error;
	if ( disk.empty() || fs::exists( disk, error ) )
		return CUtlString( disk );
	fs::path resolved;
	std::vector<std::string> rest;
	ResolveLeading( disk, &resolved, &rest );
	for ( const std::string &part : rest )
		resolved /= part;
	return CUtlString( resolved.generic_string() );
}

namespace
{
char FoldCase( char c )
{
	return ( c >= 'A' && c <= 'Z' ) ? char( c - 'A' + 'a' ) : c;
}
} // namespace

bool Host_WildcardMatch( const char *pPattern, const char *pName )
{
	if ( !pPattern || !pName )
		return false;
	// Greedy match with one backtrack point: the last '*' seen.
	const char *pStar = nullptr;
	const char *pStarName = nullptr;
	while ( *pName )
	{
		if ( *pPattern == '*' )
		{
			pStar = pPattern++;
			pStarName = pName;
		}
		else if ( *pPattern == '?' || ( *pPattern && FoldCase( *pPattern ) == FoldCase( *pName ) ) )
		{
			++pPattern;
			++pName;
		}
		else if ( pStar )
		{
			pPattern = pStar + 1;
			pName = ++pStarName;
		}
		else
		{
			return false;
		}
	}
	while ( *pPattern == '*' )
		++pPattern;
	return *pPattern == '\0';
}

const char *Host_PathInside( const char *pPath, const char *pDirectory )
{
	if ( !pPath || !pDirectory || !*pDirectory )
		return nullptr;
	size_t nDirectory = V_strlen( pDirectory );
	while ( nDirectory > 1 && V_IsPathSeparator( pDirectory[ nDirectory - 1 ] ) )
		--nDirectory;
	for ( size_t i = 0; i < nDirectory; ++i )
	{
		char a = pPath[ i ];
		char b = pDirectory[ i ];
		if ( a == '\0' )
			return nullptr;
		if ( V_IsPathSeparator( a ) && V_IsPathSeparator( b ) )
			continue;
		if ( FoldCase( a ) != FoldCase( b ) )
			return nullptr;
	}
	if ( !V_IsPathSeparator( pPath[ nDirectory ] ) )
		return nullptr;
	const char *pRest = pPath + nDirectory;
	while ( V_IsPathSeparator( *pRest ) )
		++pRest;
	return pRest;
}
