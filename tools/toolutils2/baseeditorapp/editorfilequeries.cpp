#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"

#include <unistd.h>

#include <cstring>

#include "core/host/hostpaths.h"
#include "core/host/ifilesystem.h"
#include "core/text/pathtools.h"

namespace EditorFiles
{
bool Exists( const char *pPath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pPath && *pPath && pFileSystem->FileExists( pPath );
}

bool AreCaseTwins( const char *pPathA, const char *pPathB )
{
	// Spelt exactly, without the file system's folding of case.
	CUtlString strA = Host_DiskPath( pPathA );
	CUtlString strB = Host_DiskPath( pPathB );
	return strcmp( strA, strB ) != 0 && access( strA, F_OK ) == 0 && access( strB, F_OK ) == 0;
}

bool IsDirectory( const char *pPath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pPath && *pPath && pFileSystem->IsDirectory( pPath );
}

// The nearest directory at or above the path that exists.
static CUtlString NearestExistingDirectory( const char *pPath )
{
	CUtlString strDirectory = Host_NormalizePath( pPath );
	while ( !strDirectory.IsEmpty() && !IsDirectory( strDirectory ) )
	{
		CUtlString strParent = strDirectory.DirName();
		if ( strParent == strDirectory )
			break;
		strDirectory = strParent;
	}
	return strDirectory;
}

static bool IsDirectoryWritable( const char *pDirectory )
{
	CUtlString strDisk;
	if ( !Host_FindOnDisk( pDirectory, &strDisk ) )
		return false;
	return access( strDisk.Get(), W_OK ) == 0;
}

bool IsWritable( const char *pPath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	if ( !pFileSystem || !pPath || !*pPath )
		return false;
	if ( pFileSystem->FileExists( pPath ) && !pFileSystem->IsDirectory( pPath ) )
		return pFileSystem->IsFileWritable( pPath );
	return IsDirectoryWritable( NearestExistingDirectory( pPath ) );
}

bool IsLocked( const char *pPath )
{
	// Where not even the directory takes a new file, nothing will ever be written.
	if ( !pPath || !*pPath )
		return false;
	CUtlString strDirectory = IsDirectory( pPath ) ? CUtlString( pPath ) : NearestExistingDirectory( CUtlString( pPath ).DirName() );
	return !strDirectory.IsEmpty() && !IsDirectoryWritable( strDirectory );
}

bool IsValidPath( const char *pPath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pFileSystem->IsPathValid( pPath );
}

bool FindInSearchPaths( const char *pRelativePath, const char *pPathId, CUtlString *pFullPath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pFileSystem->RelativePathToFullPath( pRelativePath, pPathId, pFullPath );
}

bool MakeRelative( const char *pFullPath, const char *pPathId, CUtlString *pRelativePath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pFileSystem->FullPathToRelativePath( pFullPath, pPathId, pRelativePath );
}

void GetRoot( const char *pPathId, CUtlString *pRoot )
{
	pRoot->Clear();
	IFileSystem *pFileSystem = GetFileSystem();
	CUtlVector<CUtlString> paths;
	if ( pFileSystem && pFileSystem->GetSearchPaths( pPathId, &paths ) > 0 )
		*pRoot = paths[ 0 ].Get();
}

void ListDirectory( const char *pDirectory, std::vector<CUtlString> *pNames )
{
	pNames->clear();
	IFileSystem *pFileSystem = GetFileSystem();
	if ( !pFileSystem || !pDirectory || !*pDirectory || !pFileSystem->IsDirectory( pDirectory ) )
		return;
	CUtlVector<CUtlString> results;
	pFileSystem->FindFiles( Host_JoinPath( pDirectory, "*" ), nullptr, FILE_FIND_FILES | FILE_FIND_DIRECTORIES, &results );
	for ( int i = 0; i < results.Count(); ++i )
		pNames->emplace_back( V_UnqualifiedFileName( results[ i ].Get() ) );
}

void FindFiles( const char *pPattern, std::vector<CUtlString> *pPaths )
{
	pPaths->clear();
	IFileSystem *pFileSystem = GetFileSystem();
	CUtlVector<CUtlString> results;
	if ( pFileSystem && pPattern && *pPattern )
		pFileSystem->FindFiles( pPattern, nullptr, FILE_FIND_FILES, &results );
	for ( int i = 0; i < results.Count(); ++i )
		pPaths->push_back( results[ i ] );
}

int64_t GetModificationTime( const char *pPath )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pPath && *pPath ? pFileSystem->GetFileTime( pPath ) : 0;
}

bool CreateDirectoryChain( const char *pDirectory )
{
	IFileSystem *pFileSystem = GetFileSystem();
	return pFileSystem && pDirectory && *pDirectory && pFileSystem->CreateDirHierarchy( pDirectory );
}
} // namespace EditorFiles
