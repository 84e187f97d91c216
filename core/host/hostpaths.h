#pragma once
// Path handling shared by the host's services: the in-memory form (backslashes), the
// disk form (forward slashes), finding a file whatever the case of its name, and
// wildcard names.

#include "core/text/utlstring.h"

// Backslashes, no doubled or trailing separators, "." and ".." folded away.
CUtlString Host_NormalizePath( const char *pPath );
// The same with forward slashes, as the operating system takes it.
CUtlString Host_DiskPath( const char *pPath );
// A path as the user reads it (titles, menus, messages): the platform's separator.
CUtlString Host_DisplayPath( const char *pPath );
// Joins a directory and a relative name into the in-memory form.
CUtlString Host_JoinPath( const char *pDirectory, const char *pRelative );

// The disk path of what exists at pPath, finding each component ignoring case when its
// exact spelling isn't there. False when nothing matches.
bool Host_FindOnDisk( const char *pPath, CUtlString *pDiskPath );
// Finds pRelative (forward or back slashes, no "..") below the existing directory pBase,
// each name ignoring case, as Host_FindOnDisk does; unlike it, a name that two entries
// on disk match ignoring case ("Fire.tfxs" and "fire.tfxs") is not taken as either of
// them: the answer is HOST_FIND_AMBIGUOUS with both disk paths in pClash ("A" and "B").
enum HostFindResult_t
{
	HOST_FIND_MISSING,
	HOST_FIND_FOUND,
	HOST_FIND_AMBIGUOUS,
};
HostFindResult_t Host_FindOnDiskBelow( const char *pBase, const char *pRelative, CUtlString *pDiskPath, CUtlString *pClash = nullptr );
// The disk path to create something at pPath: the existing directories above it are
// found ignoring case, the rest is taken as spelt.
CUtlString Host_DiskPathForWrite( const char *pPath );

// '*' matches any run of characters, '?' one; letters match ignoring case.
bool Host_WildcardMatch( const char *pPattern, const char *pName );

// When pPath lies inside pDirectory (ignoring case and separator kind), the rest of it
// without the leading separator; null otherwise.
const char *Host_PathInside( const char *pPath, const char *pDirectory );
