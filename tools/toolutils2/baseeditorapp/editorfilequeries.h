#pragma once
// The framework's questions to the host's file system, in one place. Paths come in with
// either slash; answers use backslashes.

#include <cstdint>
#include <vector>

#include "core/text/utlstring.h"

namespace EditorFiles
{
bool Exists( const char *pPath );
// Two spellings of one name that are two files on disk: names that differ only in case.
bool AreCaseTwins( const char *pPathA, const char *pPathB );
bool IsDirectory( const char *pPath );
// The file (or, for a missing file, its directory) can be written now.
bool IsWritable( const char *pPath );
// The path lies where nothing may ever be modified.
bool IsLocked( const char *pPath );
// The file system's own validity test of a path's text.
bool IsValidPath( const char *pPath );
// Finds a relative path through the search paths of a path id ("CONTENT", "GAME").
bool FindInSearchPaths( const char *pRelativePath, const char *pPathId, CUtlString *pFullPath );
// The path relative to a path id's roots ("CONTENT", "CONTENTROOT", "GAMEROOT"); false
// when it lies under none of them.
bool MakeRelative( const char *pFullPath, const char *pPathId, CUtlString *pRelativePath );
// The first root of a path id, "" when none.
void GetRoot( const char *pPathId, CUtlString *pRoot );
// Names (not paths) of the directory's entries.
void ListDirectory( const char *pDirectory, std::vector<CUtlString> *pNames );
// Paths of the files that match a wildcard pattern in its directory, in the directory's
// order (sorted ignoring case).
void FindFiles( const char *pPattern, std::vector<CUtlString> *pPaths );
// Nanoseconds since the epoch of the last modification; 0 when the file doesn't exist.
int64_t GetModificationTime( const char *pPath );
bool CreateDirectoryChain( const char *pDirectory );
} // namespace EditorFiles
