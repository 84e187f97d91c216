#pragma once
// Splits FGD text into words, string literals and single break characters, with the
// line and column of each token. Comments are skipped; a broken literal or comment
// comes back as an error token carrying its message.

#include <cstddef>

#include "core/text/utlstring.h"

enum FgdTokenType_t : int
{
	FGDTOKEN_EOF = 0,
	FGDTOKEN_WORD,
	FGDTOKEN_STRING, // m_Text without the quotes
	FGDTOKEN_PUNCT,  // one character of the break set
	FGDTOKEN_ERROR,  // m_Text is the message
};

struct FgdToken_t
{
	FgdTokenType_t m_eType = FGDTOKEN_EOF;
	CUtlString m_Text;
	int m_nLine = 1;
	int m_nColumn = 1;
	size_t m_nOffset = 0;

	bool Is( char c ) const { return m_eType == FGDTOKEN_PUNCT && m_Text.Length() == 1 && m_Text[ 0 ] == c; }
	bool IsWord( const char *pszWord ) const; // ignoring case
};

class CFgdTokenizer
{
public:
	CFgdTokenizer( const char *pText, size_t nLength );

	FgdToken_t Next();
	const FgdToken_t &Peek();

	// Skips tokens until the next one is '@' or the end; true when an '@' follows.
	bool SkipToNextAt();

	// For embedded blocks read by another parser: the offset of the next unread token,
	// and moving on to an offset past it.
	size_t GetOffsetOfNextToken();
	void SeekTo( size_t nOffset );

	const char *GetText() const { return m_pText; }
	size_t GetLength() const { return m_nLength; }

private:
	FgdToken_t Read();
	void SkipBlanksAndComments( FgdToken_t *pError );
	void Advance();

	const char *m_pText;
	size_t m_nLength;
	size_t m_nPos = 0;
	int m_nLine = 1;
	int m_nColumn = 1;
	bool m_bHasPeek = false;
	FgdToken_t m_Peek;
};
