#pragma once
// Names of autosave files. The autosave tree mirrors the content tree: "c.tfxs" in the
// content directory "a\b", saved as number 4, is "<autosave root>a\b\c004.tfxs_autosave".
// A file outside the content tree keeps its autosaves under "<autosave root>@external\"
// followed by its own absolute directory, a folder that no content path can name ("@"
// isn't allowed in one), so its autosaves never mix with those of content files.
//
// Paths are in memory form (backslashes); either slash is accepted.

#include "core/text/utlstring.h"

constexpr int AUTOSAVE_NUMBER_DIGITS = 3;
constexpr const char *AUTOSAVE_EXTERNAL_FOLDER = "@external";

// True when the path's extension ends in "_autosave".
bool IsAutosaveFileName( const char *pPath );

// "%s%s%03d.%s%s": directory (with its trailing separator), base name, number, extension
// and "_autosave".
void MakeAutosaveFileName( const char *pDirectory, const char *pBaseName, int nNumber, const char *pExtension, CUtlString *pOut );

// The number of an autosave: the last three characters of its base name; -1 when those
// aren't three digits.
int GetAutosaveNumber( const char *pAutosavePath );
// The base name of the file an autosave was made from: its own without the number.
CUtlString GetAutosaveOriginalBaseName( const char *pAutosavePath );

// The directory that holds the autosaves of pPath, with a trailing backslash.
// pAutosaveRoot ends with a backslash.
void GetAutosaveDirectoryOf( const char *pPath, const char *pAutosaveRoot, const char *pContentRoot, CUtlString *pOut );

// The file an autosave was made from: the extension without "_autosave", the base name
// without its number, the directory relative to the autosave root placed under the content
// root (or, under the "@external" folder, the absolute directory it names). An autosave
// outside the autosave tree names a file beside itself; an empty path gives
// "recovered_autosave".
void GetAutosaveOriginalName( const char *pAutosavePath, const char *pAutosaveRoot, const char *pContentRoot, CUtlString *pOut );
