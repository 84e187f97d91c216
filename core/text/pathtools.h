#pragma once
// Path helpers. Paths in memory use backslashes, paths in files forward slashes; every
// function here accepts both kinds as separators.

#include <cstddef>

constexpr char CORRECT_PATH_SEPARATOR = '\\';
constexpr char INCORRECT_PATH_SEPARATOR = '/';

inline bool V_IsPathSeparator( char c )
{
	return c == '\\' || c == '/';
}

// Turns every separator into cSeparator, in place.
void V_FixSlashes( char *pPath, char cSeparator = CORRECT_PATH_SEPARATOR );
// Collapses runs of separators into one (keeping a leading pair, as in "\\server").
void V_FixDoubleSlashes( char *pPath );
// True when both name the same path ignoring case and separator kind; doubled
// separators and a trailing separator don't matter.
bool V_PathsMatch( const char *pPathA, const char *pPathB );

// The part after the last separator ("a/b/c.txt" -> "c.txt"); points into pPath.
const char *V_UnqualifiedFileName( const char *pPath );
// The extension without its dot ("a/b.tfxs" -> "tfxs"), pointing into pPath, or null
// when the file name has none.
const char *V_GetFileExtension( const char *pPath );
// Copies the extension (without its dot) into pOut; "" when none.
void V_FileExtension( const char *pPath, char *pOut, size_t nOutSize );
// Copies the path without its extension ("a/b.c" -> "a/b"; "a.b/c" stays).
void V_StripExtension( const char *pPath, char *pOut, size_t nOutSize );
// Copies the file name without directory and extension ("a/b/c.txt" -> "c").
void V_FileBase( const char *pPath, char *pOut, size_t nOutSize );
// Removes the last separator and what follows it, in place ("a/b/c" -> "a/b", "c" -> "").
void V_StripFilename( char *pPath );
// Removes separators at the end, in place.
void V_StripTrailingSlash( char *pPath );
// Joins a directory and a file name with exactly one separator between them.
void V_ComposeFileName( const char *pPath, const char *pFileName, char *pDest, size_t nDestSize );
// True for "/x", "\x", "C:\x" and "\\server".
bool V_IsAbsolutePath( const char *pPath );
