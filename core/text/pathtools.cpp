#include "core/text/pathtools.h"

#include "core/text/strtools.h"

#include <cstring>
#include <string>

void V_FixSlashes( char *pPath, char cSeparator )
{
	for ( char *p = pPath; p && *p; ++p )
	{
		if ( V_IsPathSeparator( *p ) )
			*p = cSeparator;
	}
}

void V_FixDoubleSlashes( char *pPath )
{
	if ( !pPath || !*pPath )
		return;
	// A leading pair names a network share; keep it.
	char *pWrite = pPath + ( V_IsPathSeparator( pPath[ 0 ] ) && V_IsPathSeparator( pPath[ 1 ] ) ? 2 : 0 );
	const char *pRead = pWrite;
	while ( *pRead )
	{
		if ( V_IsPathSeparator( *pRead ) && pWrite > pPath && V_IsPathSeparator( pWrite[ -1 ] ) )
		{
			++pRead;
			continue;
		}
		*pWrite++ = *pRead++;
	}
	*pWrite = 0;
}

namespace
{

// Walks a path as its normal form: lower case, one '/' per run of separators, no
// trailing separator (unless the path is only separators).
class CPathCursor
{
public:
	explicit CPathCursor( const char *pPath ) : m_p( pPath ? pPath : "" )
	{
		m_pEnd = m_p + strlen( m_p );
		while ( m_pEnd > m_p + 1 && V_IsPathSeparator( m_pEnd[ -1 ] ) )
			--m_pEnd;
	}

	bool AtEnd() const { return m_p >= m_pEnd; }

	char Next()
	{
		char c = *m_p++;
		if ( V_IsPathSeparator( c ) )
		{
			while ( m_p < m_pEnd && V_IsPathSeparator( *m_p ) )
				++m_p;
			return '/';
		}
		return ( c >= 'A' && c <= 'Z' ) ? char( c + ( 'a' - 'A' ) ) : c;
	}

private:
	const char *m_p;
	const char *m_pEnd;
};

} // namespace

bool V_PathsMatch( const char *pPathA, const char *pPathB )
{
	CPathCursor a( pPathA ), b( pPathB );
	while ( !a.AtEnd() && !b.AtEnd() )
	{
		if ( a.Next() != b.Next() )
			return false;
	}
	return a.AtEnd() && b.AtEnd();
}

const char *V_UnqualifiedFileName( const char *pPath )
{
	if ( !pPath )
		return "";
	const char *pName = pPath;
	for ( const char *p = pPath; *p; ++p )
	{
		if ( V_IsPathSeparator( *p ) )
			pName = p + 1;
	}
	return pName;
}

const char *V_GetFileExtension( const char *pPath )
{
	const char *pName = V_UnqualifiedFileName( pPath );
	const char *pDot = strrchr( pName, '.' );
	return pDot ? pDot + 1 : nullptr;
}

void V_FileExtension( const char *pPath, char *pOut, size_t nOutSize )
{
	const char *pExtension = V_GetFileExtension( pPath );
	V_strncpy( pOut, pExtension ? pExtension : "", nOutSize );
}

void V_StripExtension( const char *pPath, char *pOut, size_t nOutSize )
{
	if ( !pOut || nOutSize == 0 )
		return;
	const char *pExtension = V_GetFileExtension( pPath );
	size_t nKeep = pExtension ? size_t( pExtension - 1 - pPath ) : V_strlen( pPath );
	if ( nKeep >= nOutSize )
		nKeep = nOutSize - 1;
	memmove( pOut, pPath ? pPath : "", nKeep );
	pOut[ nKeep ] = 0;
}

void V_FileBase( const char *pPath, char *pOut, size_t nOutSize )
{
	V_StripExtension( V_UnqualifiedFileName( pPath ), pOut, nOutSize );
}

void V_StripFilename( char *pPath )
{
	if ( !pPath )
		return;
	char *pName = const_cast<char *>( V_UnqualifiedFileName( pPath ) );
	if ( pName == pPath )
		*pPath = 0;
	else
		pName[ -1 ] = 0;
}

void V_StripTrailingSlash( char *pPath )
{
	size_t nLength = V_strlen( pPath );
	while ( nLength > 0 && V_IsPathSeparator( pPath[ nLength - 1 ] ) )
		pPath[ --nLength ] = 0;
}

void V_ComposeFileName( const char *pPath, const char *pFileName, char *pDest, size_t nDestSize )
{
	if ( !pDest || nDestSize == 0 )
		return;
	pPath = pPath ? pPath : "";
	pFileName = pFileName ? pFileName : "";
	while ( V_IsPathSeparator( *pFileName ) )
		++pFileName;
	size_t nPath = strlen( pPath );
	while ( nPath > 0 && V_IsPathSeparator( pPath[ nPath - 1 ] ) )
		--nPath;
	// Built aside: pDest may overlap either input.
	std::string joined( pPath, nPath );
	if ( nPath > 0 && *pFileName )
		joined += CORRECT_PATH_SEPARATOR;
	joined += pFileName;
	V_strncpy( pDest, joined.c_str(), nDestSize );
}

bool V_IsAbsolutePath( const char *pPath )
{
	if ( !pPath || !*pPath )
		return false;
	if ( V_IsPathSeparator( pPath[ 0 ] ) )
		return true;
	bool bDriveLetter = ( pPath[ 0 ] >= 'a' && pPath[ 0 ] <= 'z' ) || ( pPath[ 0 ] >= 'A' && pPath[ 0 ] <= 'Z' );
	return bDriveLetter && pPath[ 1 ] == ':' && V_IsPathSeparator( pPath[ 2 ] );
}
