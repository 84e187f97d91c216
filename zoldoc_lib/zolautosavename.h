#pragma once
// Names of autosave files: "c.tfxs" saved as number 4 is "c004.tfxs_autosave", in the
// autosave directory that mirrors the content directory of the source.

#include "core/text/utlstring.h"

// True when the path's extension ends in "_autosave".
bool IsZolAutosaveFile( const char *pPath );

// "%s%s%03d.%s%s": directory (with its trailing separator), base name, number, extension
// and "_autosave".
void MakeZolAutosaveFileName( const char *pDirectory, const char *pBaseName, int nNumber, const char *pExtension, CUtlString *pOut );

// The source file an autosave was made from: the extension without "_autosave", the base
// name without its three-digit number, the directory relative to pAutosaveRoot, placed under
// pContentRoot, with backslashes. An empty path gives "recovered_autosave".
void GetZolAutosaveSourceName( const char *pAutosavePath, const char *pAutosaveRoot, const char *pContentRoot, CUtlString *pOut );
