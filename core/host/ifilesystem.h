#pragma once
// The host's file system. Files are named either by an absolute path, or by a path
// relative to the search paths of a path id:
//
//   "GAME"         the game directories, leafiest first (with this content: the game root)
//   "CONTENT"      the content directories, leafiest first (the content root)
//   "GAMEROOT"     the game root alone
//   "CONTENTROOT"  the content root alone
//
// A relative name is looked up along the id's search paths in order; the first that
// has it wins. A null path id means every search path, in the order they were added.
// Paths that come back are absolute, with backslashes; names compare ignoring case and
// accept either slash. Files on disk are found whatever the case of their name.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/text/utlstring.h"

class CUtlBuffer;

constexpr const char *FILESYSTEM_INTERFACE_VERSION = "FileSystem_001";

constexpr const char *PATH_ID_GAME = "GAME";
constexpr const char *PATH_ID_CONTENT = "CONTENT";
constexpr const char *PATH_ID_GAMEROOT = "GAMEROOT";
constexpr const char *PATH_ID_CONTENTROOT = "CONTENTROOT";

enum FileFindFlags_t : unsigned
{
	FILE_FIND_FILES = 1u << 0,       // list files
	FILE_FIND_DIRECTORIES = 1u << 1, // list directories
	FILE_FIND_RECURSIVE = 1u << 2,   // also look in every subdirectory below
};

class IFileSystem
{
public:
	// Search paths. bAddToHead makes the new path the first (leafiest) of its id.
	virtual void AddSearchPath( const char *pPath, const char *pPathID, bool bAddToHead = false ) = 0;
	virtual void RemoveSearchPaths( const char *pPathID ) = 0;
	// The id's directories in search order (absolute, backslashes); answers the count.
	virtual int GetSearchPaths( const char *pPathID, CUtlVector<CUtlString> *pPaths ) const = 0;
	// Marks a directory (usually a search path, such as a base mod's content) as one
	// where nothing may be written.
	virtual void SetDirectoryUnmodifiable( const char *pPath, bool bUnmodifiable ) = 0;

	// Reads the whole file; the buffer is replaced. False with a reason when it can't.
	virtual bool ReadFile( const char *pFileName, const char *pPathID, CUtlBuffer *pBuffer, CUtlString *pError = nullptr ) = 0;
	// Writes the buffer's contents (from 0 to its put position) to the file; a relative
	// name goes under the id's first search path. Written as SafeWriteFile writes
	// (core/host/safefilewrite.h): never half a file, read-only files and links respected;
	// a file in a directory marked unmodifiable is refused too. Missing directories are made.
	virtual bool WriteFile( const char *pFileName, const char *pPathID, const CUtlBuffer &buffer, CUtlString *pError = nullptr ) = 0;
	// Makes the directory and every missing one above it; true when it exists after.
	virtual bool CreateDirHierarchy( const char *pPath, const char *pPathID = nullptr ) = 0;
	virtual bool RemoveFile( const char *pFileName, const char *pPathID = nullptr ) = 0;

	virtual bool FileExists( const char *pFileName, const char *pPathID = nullptr ) const = 0;
	virtual bool IsDirectory( const char *pPath, const char *pPathID = nullptr ) const = 0;
	// True when the existing file could be written now (not read only).
	virtual bool IsFileWritable( const char *pFileName, const char *pPathID = nullptr ) const = 0;
	// True when the file or directory lies where it can't ever be modified: inside a
	// directory marked unmodifiable, or in an existing directory that can't be written.
	// A relative name is taken as the id's first search path would write it.
	virtual bool IsPathUnmodifiable( const char *pPath, const char *pPathID = nullptr ) const = 0;
	// Nanoseconds since the epoch of the last modification, or 0 when the file doesn't
	// exist. Fine enough to tell two writes within one second apart.
	virtual int64_t GetFileTime( const char *pFileName, const char *pPathID = nullptr ) const = 0;

	// Lists what matches a wildcard pattern ('*' any run, '?' one character, ignoring
	// case) in the pattern's directory: "particles/*.tfxs" relative to each search path
	// of the id, or "C:/dir/*.tfxs" absolute. With FILE_FIND_RECURSIVE the name part is
	// matched in every directory below too. Results are absolute, sorted, and a relative
	// name found along several search paths appears once (from the first). Appends to
	// pResults and answers the count added.
	virtual int FindFiles( const char *pPattern, const char *pPathID, unsigned nFlags, CUtlVector<CUtlString> *pResults ) const = 0;

	// The absolute path of an existing file along the id's search paths; false when
	// none has it. An absolute name answers itself (normalised) when it exists.
	virtual bool RelativePathToFullPath( const char *pFileName, const char *pPathID, CUtlString *pFullPath ) const = 0;
	// The path relative to the first search path of the id that holds it (backslashes);
	// false when the path lies under none of them.
	virtual bool FullPathToRelativePath( const char *pFullPath, const char *pPathID, CUtlString *pRelativePath ) const = 0;
	// A path the id's first search path would write: absolute, backslashes, not
	// necessarily existing. False when the id has no search path.
	virtual bool MakeWritePath( const char *pFileName, const char *pPathID, CUtlString *pFullPath ) const = 0;

	// The file system's own test of a path: not empty, shorter than 260 characters, no
	// characters that no file name can hold.
	virtual bool IsPathValid( const char *pPath ) const = 0;

protected:
	~IFileSystem() = default;
};

// The connected file system, or null before the host has made one.
IFileSystem *GetFileSystem();
void SetFileSystem( IFileSystem *pFileSystem );
