#pragma once
// Whole-file reads and writes of the document. A read may name a path id, which the host's
// file system resolves when one is connected; "" and ids it can't resolve mean the path
// as given.

class CUtlBuffer;
class CUtlString;

// Appends the file's bytes to the buffer; false with the reason when it can't be read
// (missing, not a regular file, beyond the size limit of file reads).
bool ZolReadWholeFile( const char *pPath, const char *pPathId, CUtlBuffer *pBuffer, CUtlString *pReason = nullptr );

// Makes the directory chain of the path, writes the buffer to a temporary file beside it
// and renames that over the path, so a failed write leaves the old file as it was.
bool ZolWriteWholeFile( const char *pPath, const CUtlBuffer &buffer );
