#pragma once
// C string helpers. Every function reads a null pointer as the empty string and never
// writes past the destination size it is given; copies always terminate.
// Case folding is ASCII only ("fast"): names and paths here are ASCII.

#include <cstdarg>
#include <cstddef>
#include <cstdint>

#include "core/platform/floatmath.h"
#include "core/text/friendlyname.h"
#include "core/text/pathtools.h"

class CUtlString;

// Comparison. Results are <0, 0, >0 like strcmp.
int V_strcmp( const char *pA, const char *pB );
int V_strncmp( const char *pA, const char *pB, size_t nCount );
int V_stricmp_fast( const char *pA, const char *pB );
int V_strnicmp_fast( const char *pA, const char *pB, size_t nCount );
// First occurrence of pNeedle in pHaystack ignoring case, or null. An empty needle
// matches at the start.
const char *V_stristr_fast( const char *pHaystack, const char *pNeedle );
bool V_StringHasPrefix_fast( const char *pString, const char *pPrefix ); // ignoring case
bool V_StringHasSuffix_fast( const char *pString, const char *pSuffix ); // ignoring case

size_t V_strlen( const char *pString );

// Copies at most nDestSize - 1 characters and terminates. Answers false when it had to cut.
bool V_strncpy( char *pDest, const char *pSource, size_t nDestSize );
// Appends as much as fits and terminates; false when it had to cut.
bool V_strncat( char *pDest, const char *pSource, size_t nDestSize );
// printf into a fixed buffer; always terminates. Answers the count of characters
// written (without the terminator), which is less than the full length when cut.
int V_snprintf( char *pDest, size_t nDestSize, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
int V_vsnprintf( char *pDest, size_t nDestSize, const char *pFormat, va_list args );

void V_strlower_fast( char *pString );
void V_strupper_fast( char *pString );

// Numbers, independent of the C locale (a UI may switch the decimal point to ',').
// V_atoi reads leading blanks, an optional sign, then decimal digits or "0x" and hex
// digits, stopping at the first other character ("1'000" reads as 1); out of range
// values are clamped. V_atof reads a decimal or exponent form the same way and
// answers 0 when no number starts the text.
int V_atoi( const char *pString );
int64_t V_atoi64( const char *pString );
float V_atof( const char *pString );
double V_atod( const char *pString );
// Strict forms: the whole text, blanks around it aside, must be one number.
bool V_StringToInt64( const char *pString, int64_t *pResult );
bool V_StringToDouble( const char *pString, double *pResult );

// Sorts nCount elements of nElementSize bytes with a comparison that also gets
// pContext. Elements are moved as bytes, as with qsort. The order of equal elements
// is kept; an inconsistent comparison gives some order but never reads out of bounds.
using V_qsortCompareFn_t = int ( * )( void *pContext, const void *pA, const void *pB );
void V_qsort( void *pBase, size_t nCount, size_t nElementSize, V_qsortCompareFn_t fnCompare, void *pContext );

// Replaces every occurrence of pMatch in pIn with pReplace. Answers false when the
// result did not fit (it is then cut but terminated) or pMatch is empty (pIn copied).
bool V_StrSubst( const char *pIn, const char *pMatch, const char *pReplace, char *pOut, size_t nOutSize, bool bCaseSensitive = true );
// The same into a growing string; false only for an empty pMatch.
bool V_StrSubst( const char *pIn, const char *pMatch, const char *pReplace, CUtlString *pOut, bool bCaseSensitive = true );
