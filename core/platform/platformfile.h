#pragma once
// Whole-file reads of untrusted paths. Only regular files are read, and only up to a size
// limit, so that a name such as /dev/zero, a pipe or a huge file can't hang or exhaust
// the process. Failures answer a reason without the path: callers say which file.

#include <cstddef>
#include <string>

#include "core/text/utlstring.h"

class CUtlBuffer;

// What a definition, class description, model or settings file may reasonably be.
constexpr size_t PLAT_MAX_READ_FILE_BYTES = size_t( 64 ) << 20;

enum PlatReadFlags_t : unsigned
{
	// A pipe is read too (to its end, within the size limit): what a shell's "<(...)"
	// hands over. A pipe that no one writes to reads as empty, never blocks.
	PLAT_READ_ALLOW_PIPE = 1u << 0,
};

// Appends the file's bytes; false with the reason ("No such file or directory", "not a
// regular file", "larger than 64 MiB") when it can't.
bool Plat_ReadWholeFile( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pReason, size_t nMaxBytes = PLAT_MAX_READ_FILE_BYTES, unsigned nFlags = 0 );
bool Plat_ReadWholeFile( const char *pPath, std::string *pText, CUtlString *pReason, size_t nMaxBytes = PLAT_MAX_READ_FILE_BYTES, unsigned nFlags = 0 );
