#pragma once
// Reading and writing KV3 text (the grammar is summed up in kv3textsyntax.h).
//
// A KV3 text file starts with a header naming its encoding and format, each with a
// 128-bit GUID, followed by one value (usually a table). Fragments without a header
// can be read from the middle of a larger text: see KV3_LOAD_FRAGMENT.

#include <cstddef>
#include <cstdint>

class KeyValues3;
class CUtlString;
class CUtlBuffer;

struct KV3ID_t
{
	const char *m_pName;
	uint64_t m_nGuid0; // first 8 bytes of the GUID, as written, big end first
	uint64_t m_nGuid1; // last 8 bytes
};

// Encodings.
extern const KV3ID_t KV3_ENCODING_TEXT; // "text", e21c7f3c-8a33-41c5-9977-a76d3a32aa0d
// Formats.
extern const KV3ID_t KV3_FORMAT_TFXS;    // "tfxs63", a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e: definition files
extern const KV3ID_t KV3_FORMAT_GENERIC; // "generic", 7412167c-06e9-4698-aff2-e63eb59037e7: clipboard and anything else

enum KV3LoadFlags_t : unsigned
{
	// The text has no header: one value is read starting at the buffer's get position,
	// and the get position is left just past it (trailing text is not an error).
	KV3_LOAD_FRAGMENT = 0x1,
	// Any format in the header is accepted, whatever format the caller names.
	KV3_LOAD_ANY_FORMAT = 0x2,
};

enum KV3SaveFlags_t : unsigned
{
	// Writes only the value, with no header (for embedding in other text).
	KV3_SAVE_NO_HEADER = 0x1,
};

// Nesting deeper than this is refused when reading, so a hostile file can't exhaust the stack.
constexpr int KV3_MAX_NESTING_DEPTH = 512;

// Reads KV3 text from the buffer's get position into pKV (which is reset first).
// On failure answers false, pKV is null, the get position is unchanged, and pError holds
// "line:col: message" (line and column count from 1, from the start of the buffer even
// for a fragment, columns in characters; pszSourceName, when given, is not part of the text).
// The header's encoding must be "text"; its format must match the one asked for, unless
// KV3_LOAD_ANY_FORMAT is given or the format asked for is "generic", which takes any.
// Duplicate member names in a table (ignoring case) are an error.
bool LoadKV3( KeyValues3 *pKV, CUtlString *pError, CUtlBuffer *pBuffer, const KV3ID_t &format, const char *pszSourceName = nullptr, unsigned nFlags = 0 );
// Convenience over a text in memory.
bool LoadKV3FromText( KeyValues3 *pKV, CUtlString *pError, const char *pText, size_t nLength, const KV3ID_t &format, unsigned nFlags = 0 );

// Appends KV3 text to the buffer. Output is deterministic: the same tree always gives
// the same bytes. Only the "text" encoding is supported; others fail with a message.
bool SaveKV3( const KV3ID_t &encoding, const KV3ID_t &format, const KeyValues3 *pKV, CUtlString *pError, CUtlBuffer *pBuffer, unsigned nFlags = 0 );
// Convenience: the text of a value with the given format (false and empty text when
// SaveKV3 would fail).
bool SaveKV3ToString( const KeyValues3 *pKV, CUtlString *pText, const KV3ID_t &format, unsigned nFlags = 0 );

// True when the text starts (after blanks) with a KV3 header.
bool LooksLikeKV3TextData( const char *pText, size_t nLength );
