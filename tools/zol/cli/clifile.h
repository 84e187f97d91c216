#pragma once
// Whole-file reads for command line tools, with an error text an artist understands.

#include "core/containers/utlbuffer.h"
#include "core/text/utlstring.h"

bool ZolCliReadFile( const char *pPath, CUtlBuffer *pBuffer, CUtlString *pError );
