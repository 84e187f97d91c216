#pragma once
// Every file the tools write goes through here: documents, autosaves, settings, pictures
// and whatever a command line tool writes.
//
// A write never leaves half a file. The bytes go to a temporary file of a unique name in
// the target's own directory, which is flushed to disk and then renamed over the target;
// a crash at any moment leaves either the old file or the new one. The temporary's name
// starts with a dot and ends in ".tmp", so no pattern for the target's kind of file
// matches it.
//
// What the artist marked as not to be written stays untouched: a file without its owner's
// write bit (read only, as a file not checked out is), a file the system marks immutable
// or append-only, a directory without its owner's write bit. The mode bits decide, not
// access(): a privileged process could write anything, but a read-only file must still
// count as such. A symbolic link is written through: its target gets the new bytes and
// the link stays a link. A replaced file keeps its permissions (and, where the process
// may, its owner); a new one gets the usual ones of the process.
//
// Paths may use either slash. A missing directory chain is made. Directories whose names
// differ from what is on disk only in case are found; the file itself is written under the
// name as spelt, so of two files that differ only in case the one named gets the bytes.
// (The file system's WriteFile finds an existing file whatever its case first.)

#include <cstddef>

class CUtlBuffer;
class CUtlString;

// Writes nSize bytes to the file. False, with a message naming the file and the reason in
// pError (which may be null), when the file was not written; the old file is then as it was.
bool SafeWriteFile( const char *pPath, const void *pData, size_t nSize, CUtlString *pError = nullptr );
// The buffer's contents, from 0 to its put position.
bool SafeWriteFile( const char *pPath, const CUtlBuffer &buffer, CUtlString *pError = nullptr );
// Whether a write of the file would be refused, without writing anything: the same
// refusals and the same message as SafeWriteFile's. A dry run tells with it what a real
// run would refuse.
bool SafeWriteCheck( const char *pPath, CUtlString *pError = nullptr );

// Called after the temporary file is complete and on disk, just before it is renamed over
// the target. Crash tests stop the process here; null (the default) calls nothing.
// Answers the hook it replaces.
using SafeWriteBeforeRenameFn_t = void ( * )( const char *pTemporaryPath, const char *pTargetPath );
SafeWriteBeforeRenameFn_t SafeWrite_SetBeforeRenameHook( SafeWriteBeforeRenameFn_t fnHook );
