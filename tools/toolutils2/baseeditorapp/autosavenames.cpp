#include "tools/toolutils2/baseeditorapp/autosavenames.h"

#include <string>

#include "core/host/hostpaths.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"

namespace
{
constexpr const char *AUTOSAVE_SUFFIX = "_autosave";
constexpr size_t AUTOSAVE_SUFFIX_LENGTH = 9;

std::string WithBackslashes( const char *pPath )
{
	std::string path( pPath ? pPath : "" );
	for ( char &c : path )
	{
		if ( c == '/' )
			c = '\\';
	}
	return path;
}

// Directory, base name and extension of the last element; the directory has no trailing
// separator, the extension no dot.
struct PathParts_t
{
	std::string m_Directory;
	std::string m_BaseName;
	std::string m_Extension;
};

PathParts_t SplitPath( const std::string &path )
{
	PathParts_t parts;
	size_t nSlash = path.rfind( '\\' );
	std::string fileName = nSlash == std::string::npos ? path : path.substr( nSlash + 1 );
	if ( nSlash != std::string::npos )
		parts.m_Directory = path.substr( 0, nSlash );
	size_t nDot = fileName.rfind( '.' );
	parts.m_BaseName = nDot == std::string::npos ? fileName : fileName.substr( 0, nDot );
	if ( nDot != std::string::npos )
		parts.m_Extension = fileName.substr( nDot + 1 );
	return parts;
}

// The part of pPath below pDirectory: "" when they are the same, null when pPath lies
// elsewhere.
const char *RelativeTo( const char *pPath, const char *pDirectory )
{
	std::string directory = WithBackslashes( pDirectory );
	while ( directory.size() > 1 && directory.back() == '\\' )
		directory.pop_back();
	if ( directory.empty() )
		return nullptr;
	if ( V_PathsMatch( pPath, directory.c_str() ) )
		return pPath + V_strlen( pPath );
	return Host_PathInside( pPath, directory.c_str() );
}
} // namespace

bool IsAutosaveFileName( const char *pPath )
{
	std::string extension = SplitPath( WithBackslashes( pPath ) ).m_Extension;
	return extension.size() >= AUTOSAVE_SUFFIX_LENGTH && V_StringHasSuffix_fast( extension.c_str(), AUTOSAVE_SUFFIX );
}

void MakeAutosaveFileName( const char *pDirectory, const char *pBaseName, int nNumber, const char *pExtension, CUtlString *pOut )
{
	pOut->Format( "%s%s%03d.%s%s", pDirectory ? pDirectory : "", pBaseName ? pBaseName : "", nNumber, pExtension ? pExtension : "", AUTOSAVE_SUFFIX );
}

int GetAutosaveNumber( const char *pAutosavePath )
{
	std::string baseName = SplitPath( WithBackslashes( pAutosavePath ) ).m_BaseName;
	if ( baseName.size() < size_t( AUTOSAVE_NUMBER_DIGITS ) )
		return -1;
	int nNumber = 0;
	for ( size_t i = baseName.size() - AUTOSAVE_NUMBER_DIGITS; i < baseName.size(); ++i )
	{
		if ( baseName[ i ] < '0' || baseName[ i ] > '9' )
			return -1;
		nNumber = nNumber * 10 + ( baseName[ i ] - '0' );
	}
	return nNumber;
}

CUtlString GetAutosaveOriginalBaseName( const char *pAutosavePath )
{
	std::string baseName = SplitPath( WithBackslashes( pAutosavePath ) ).m_BaseName;
	if ( baseName.size() >= size_t( AUTOSAVE_NUMBER_DIGITS ) )
		baseName.resize( baseName.size() - AUTOSAVE_NUMBER_DIGITS );
	return CUtlString( baseName.c_str() );
}

void GetAutosaveDirectoryOf( const char *pPath, const char *pAutosaveRoot, const char *pContentRoot, CUtlString *pOut )
{
	std::string directory = SplitPath( WithBackslashes( pPath ) ).m_Directory;
	pOut->Set( pAutosaveRoot );
	if ( const char *pRelative = RelativeTo( directory.c_str(), pContentRoot ) )
	{
		if ( *pRelative )
			pOut->AppendFormat( "%s\\", pRelative );
		return;
	}
	// Outside the content tree: the file's own absolute directory, below a folder of its own.
	while ( !directory.empty() && directory.front() == '\\' )
		directory.erase( 0, 1 );
	pOut->AppendFormat( "%s\\%s%s", AUTOSAVE_EXTERNAL_FOLDER, directory.c_str(), directory.empty() ? "" : "\\" );
}

void GetAutosaveOriginalName( const char *pAutosavePath, const char *pAutosaveRoot, const char *pContentRoot, CUtlString *pOut )
{
	std::string path = WithBackslashes( pAutosavePath );
	if ( path.empty() )
	{
		pOut->Set( "recovered_autosave" );
		return;
	}
	PathParts_t parts = SplitPath( path );
	std::string extension = parts.m_Extension;
	if ( IsAutosaveFileName( path.c_str() ) )
		extension.resize( extension.size() - AUTOSAVE_SUFFIX_LENGTH );
	CUtlString baseName = GetAutosaveOriginalBaseName( path.c_str() );
	CUtlString fileName;
	fileName.Format( "%s%s%s", baseName.Get(), extension.empty() ? "" : ".", extension.c_str() );

	const char *pRelative = RelativeTo( parts.m_Directory.c_str(), pAutosaveRoot );
	if ( !pRelative )
	{
		pOut->Format( "%s\\%s", parts.m_Directory.c_str(), fileName.Get() );
		return;
	}
	size_t nExternal = V_strlen( AUTOSAVE_EXTERNAL_FOLDER );
	if ( !V_strnicmp_fast( pRelative, AUTOSAVE_EXTERNAL_FOLDER, nExternal ) && ( !pRelative[ nExternal ] || pRelative[ nExternal ] == '\\' ) )
	{
		pOut->Format( "%s\\%s", pRelative + nExternal, fileName.Get() );
		return;
	}
	std::string contentRoot = WithBackslashes( pContentRoot );
	while ( contentRoot.size() > 1 && contentRoot.back() == '\\' )
		contentRoot.pop_back();
	pOut->Format( "%s%s%s\\%s", contentRoot.c_str(), *pRelative ? "\\" : "", pRelative, fileName.Get() );
}
