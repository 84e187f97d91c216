#pragma once
// Whole-file reads and writes of the document. A read may name a path id, which the host's
// file system resolves when one is connected; "" and ids it can't resolve mean the path
// as given.

class CUtlBuffer;
class CUtlString;

// Appends the file's bytes to the buffer; false with the reason when it can't be read
// (missing, not a regular file, beyond the size limit of file reads).
bool ZolReadWholeFile( const char *pPath, const char *pPathId, CUtlBuffer *pBuffer, CUtlString *pReason = nullptr );

// Writes the buffer through the safe write layer (core/host/safefilewrite.h): the
// directory chain is made, a crash never leaves half a file, read-only files are refused
// and links written through. False with the reason in pError (which may be null).
bool ZolWriteWholeFile( const char *pPath, const CUtlBuffer &buffer, CUtlString *pError = nullptr );
