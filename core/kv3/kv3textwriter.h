#pragma once
// Writes a KV3 tree as text (grammar in kv3textsyntax.h). Internal to core/kv3: users
// call SaveKV3.
//
// Layout is fixed so that the same tree always gives the same bytes: tabs for indent,
// one member per line, short arrays of numbers on one line, other arrays one element per
// line with a comma after each.

#include <cstddef>
#include <cstdint>
#include <memory>

#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"

class CUtlBuffer;
class CUtlString;

class [[gnu::visibility( "hidden" )]] CKV3TextWriter
{
public:
	explicit CKV3TextWriter( CUtlBuffer *pOut );
	~CKV3TextWriter();
	CKV3TextWriter( const CKV3TextWriter & ) = delete;
	CKV3TextWriter &operator=( const CKV3TextWriter & ) = delete;

	// Refuses trees the reader would refuse (too deep, invalid values), before writing anything.
	static bool CanWrite( const KeyValues3 &value, CUtlString *pError );
	// False with a message when the format name can't stand in a header.
	bool WriteHeader( const KV3ID_t &encoding, const KV3ID_t &format, CUtlString *pError );
	// The value and a final line break; the tree must have passed CanWrite.
	void WriteRootValue( const KeyValues3 &value );
	void Flush();

	// Arrays of at most this many numbers, bools or nulls that fit in this many bytes stay on one line.
	static constexpr int ONE_LINE_ARRAY_MAX_ELEMENTS = 16;
	static constexpr size_t ONE_LINE_ARRAY_MAX_BYTES = 100;
	// Blobs longer than this many bytes break into lines of this many.
	static constexpr size_t BLOB_BYTES_PER_LINE = 32;
	// Room for any number with its type tag and suffix.
	static constexpr size_t MAX_SCALAR_TEXT = 64;

	// The text of a null, bool, int, uint or double, with tag and suffix; answers its length.
	static size_t FormatScalar( const KeyValues3 &value, char *pOut );

private:
	void Append( const char *pData, size_t nSize );
	void Append( char c )
	{
		if ( m_nUsed == CHUNK_SIZE )
			Flush();
		m_pChunk[ m_nUsed++ ] = c;
	}
	void AppendTabs( int nCount );
	void AppendTagPrefix( KV3SubType_t eSubType );

	// The first reason the tree can't be written, or null. Recursion is bounded by the depth check.
	static const char *FindUnwritable( const KeyValues3 &value, int nDepth );
	void WriteValue( const KeyValues3 &value, int nIndent );
	void WriteTable( const KeyValues3 &value, int nIndent );
	void WriteArray( const KeyValues3 &value, int nIndent );
	void WriteName( const char *pName, size_t nLength );
	void WriteQuoted( const char *pText, size_t nLength );
	void WriteMultiLine( const char *pText, size_t nLength, int nIndent );
	void WriteBlob( const uint8_t *pData, size_t nSize, int nIndent );
	// Writes the array on one line if it is short enough; false leaves the output as it was.
	bool TryWriteOneLineArray( const KeyValues3 &value );

	static constexpr size_t CHUNK_SIZE = 64 * 1024;
	CUtlBuffer *m_pOut;
	std::unique_ptr<char[]> m_pChunk; // output gathers here and goes to m_pOut in big pieces
	size_t m_nUsed = 0;
};
