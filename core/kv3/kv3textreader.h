#pragma once
// Reads KV3 text (grammar in kv3textsyntax.h). Internal to core/kv3: users call LoadKV3.
//
// A hand-written scanner over the raw bytes, bounded by the end of the buffer (which need
// not be NUL-terminated). Nesting is followed with an explicit stack, not recursion, so
// hostile input can't exhaust the call stack. Values of a container gather on a pending
// stack and become the container, in one allocation, at its closing bracket.
// Line and column are only worked out when there is an error to report.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/kv3/kv3builder.h"
#include "core/kv3/kv3serialize.h"

class CUtlString;

class [[gnu::visibility( "hidden" )]] CKV3TextReader
{
public:
	// The whole buffer; messages count lines and columns from its start.
	CKV3TextReader( const char *pBase, size_t nSize );
	~CKV3TextReader();
	CKV3TextReader( const CKV3TextReader & ) = delete;
	CKV3TextReader &operator=( const CKV3TextReader & ) = delete;

	// Reads and checks the header at *pOffset and moves *pOffset past it.
	bool ReadHeader( size_t *pOffset, const KV3ID_t &format, unsigned nFlags );
	// Reads one value at nOffset (blanks and comments first) into pOut, which holds no
	// data; *pEnd is the offset just past the value.
	bool ReadValue( size_t nOffset, KeyValues3 *pOut, size_t *pEnd );
	// Checks that only blanks and comments follow nOffset.
	bool ReadEnd( size_t nOffset );

	// "line:col: message" of the failure.
	void GetError( CUtlString *pError ) const;

private:
	struct Frame_t
	{
		size_t m_nTarget;       // pending slot that receives the container
		size_t m_nFirst;        // first pending slot of its values
		const char *m_pOpen;    // its opening bracket
		KV3SubType_t m_eTag;    // subtype from a type tag before the bracket
		bool m_bTable;
		bool m_bNeedComma;      // arrays: an element was read, so ',' or ']' comes next
	};

	// Bump allocator for strings that need decoding; freed with the reader.
	class CArena
	{
	public:
		char *Alloc( size_t nSize );

	private:
		std::vector<std::unique_ptr<char[]>> m_Chunks;
		char *m_pNext = nullptr;
		size_t m_nLeft = 0;
	};

	bool Fail( const char *pAt, const char *pFormat, ... ) __attribute__( ( format( printf, 3, 4 ) ) );
	void LineColumn( const char *pAt, int *pLine, int *pColumn ) const;
	std::string Describe( const char *pAt ) const; // "'x'" or "the end of the text", for messages
	static std::string Quote( const char *pText, size_t nLength );

	bool SkipBlanks();
	bool SkipComments();
	bool ReadMember();
	bool ReadValueInto( size_t nSlot );
	bool ReadWord( KV3PendingValue_t &value, const char *pWord, size_t nLength );
	bool ReadNumber( KV3PendingValue_t &value );
	bool ReadString( const char **ppText, size_t *pLength );
	bool ReadMultiLineString( const char **ppText, size_t *pLength );
	bool ReadBlob( KV3PendingValue_t &value );
	bool OpenContainer( size_t nSlot, bool bTable, KV3SubType_t eTag );
	bool CloseTable();
	void CloseArray();
	bool CheckDuplicates( size_t nFirst );

	const char *m_pBase;
	const char *m_pEnd;
	const char *m_p;
	std::vector<KV3PendingValue_t> m_Pending;
	std::vector<Frame_t> m_Frames;
	std::vector<int32_t> m_DuplicateIndex; // scratch for large tables
	CArena m_Arena;

	const char *m_pErrorAt = nullptr;
	std::string m_strError;
};
