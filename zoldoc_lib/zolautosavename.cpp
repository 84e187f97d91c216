#include "zoldoc_lib/zolautosavename.h"

#include <string>

#include "core/text/strtools.h"

namespace
{
constexpr const char *AUTOSAVE_SUFFIX = "_autosave";
constexpr size_t AUTOSAVE_SUFFIX_LENGTH = 9;
constexpr size_t NUMBER_DIGITS = 3;

std::string WithForwardSlashes( const char *pPath )
{
	std::string path( pPath ? pPath : "" );
	for ( char &c : path )
	{
		if ( c == '\\' )
			c = '/';
	}
	return path;
}

// The extension of the last path element, without the dot; "" when it has none.
std::string GetExtension( const std::string &path )
{
	size_t nSlash = path.rfind( '/' );
	size_t nDot = path.rfind( '.' );
	if ( nDot == std::string::npos || ( nSlash != std::string::npos && nDot < nSlash ) )
		return std::string();
	return path.substr( nDot + 1 );
}
} // namespace

bool IsZolAutosaveFile( const char *pPath )
{
	std::string extension = GetExtension( WithForwardSlashes( pPath ) );
	return extension.size() >= AUTOSAVE_SUFFIX_LENGTH && !V_stricmp_fast( extension.c_str() + extension.size() - AUTOSAVE_SUFFIX_LENGTH, AUTOSAVE_SUFFIX );
}

void MakeZolAutosaveFileName( const char *pDirectory, const char *pBaseName, int nNumber, const char *pExtension, CUtlString *pOut )
{
	pOut->Format( "%s%s%03d.%s%s", pDirectory ? pDirectory : "", pBaseName ? pBaseName : "", nNumber, pExtension ? pExtension : "", AUTOSAVE_SUFFIX );
}

void GetZolAutosaveSourceName( const char *pAutosavePath, const char *pAutosaveRoot, const char *pContentRoot, CUtlString *pOut )
{
	std::string path = WithForwardSlashes( pAutosavePath );
	if ( path.empty() )
	{
		pOut->Set( "recovered_autosave" );
		return;
	}
	std::string extension = GetExtension( path );
	size_t nSuffix = extension.size() >= AUTOSAVE_SUFFIX_LENGTH ? extension.size() - AUTOSAVE_SUFFIX_LENGTH : extension.size();
	if ( nSuffix < extension.size() && V_stricmp_fast( extension.c_str() + nSuffix, AUTOSAVE_SUFFIX ) )
		nSuffix = extension.size();
	std::string sourceExtension = extension.substr( 0, nSuffix );

	size_t nSlash = path.rfind( '/' );
	std::string directory = nSlash == std::string::npos ? std::string() : path.substr( 0, nSlash );
	std::string fileName = nSlash == std::string::npos ? path : path.substr( nSlash + 1 );
	std::string baseName = extension.empty() ? fileName : fileName.substr( 0, fileName.size() - extension.size() - 1 );
	if ( baseName.size() >= NUMBER_DIGITS )
		baseName.resize( baseName.size() - NUMBER_DIGITS );

	std::string root = WithForwardSlashes( pAutosaveRoot );
	while ( !root.empty() && root.back() == '/' )
		root.pop_back();
	std::string relative = directory;
	if ( !root.empty() && directory.size() >= root.size() && !V_strnicmp_fast( directory.c_str(), root.c_str(), root.size() ) )
		relative = directory.substr( root.size() );

	std::string text = WithForwardSlashes( pContentRoot ) + relative + "\\" + baseName + "." + sourceExtension;
	for ( char &c : text )
	{
		if ( c == '/' )
			c = '\\';
	}
	pOut->Set( text.c_str() );
}
