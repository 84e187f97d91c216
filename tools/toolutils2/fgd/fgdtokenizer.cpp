#include "tools/toolutils2/fgd/fgdtokenizer.h"

#include <cstring>

#include "core/text/strtools.h"

static bool IsBreakChar( char c )
{
	return strchr( "@()[]{}=&,:*|;'!", c ) != nullptr && c != '\0';
}

static bool IsBlank( char c )
{
	return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

bool FgdToken_t::IsWord( const char *pszWord ) const
{
	return m_eType == FGDTOKEN_WORD && m_Text.IsEqual_CaseInsensitive( pszWord );
}

CFgdTokenizer::CFgdTokenizer( const char *pText, size_t nLength ) : m_pText( pText ), m_nLength( nLength )
{
}

void CFgdTokenizer::Advance()
{
	if ( m_pText[ m_nPos ] == '\n' )
	{
		++m_nLine;
		m_nColumn = 1;
	}
	else
	{
		++m_nColumn;
	}
	++m_nPos;
}

void CFgdTokenizer::SkipBlanksAndComments( FgdToken_t *pError )
{
	while ( m_nPos < m_nLength )
	{
		char c = m_pText[ m_nPos ];
		if ( IsBlank( c ) || c == '\0' )
		{
			Advance();
			continue;
		}
		if ( c == '/' && m_nPos + 1 < m_nLength && m_pText[ m_nPos + 1 ] == '/' )
		{
			while ( m_nPos < m_nLength && m_pText[ m_nPos ] != '\n' )
				Advance();
			continue;
		}
		if ( c == '/' && m_nPos + 1 < m_nLength && m_pText[ m_nPos + 1 ] == '*' )
		{
			int nLine = m_nLine, nColumn = m_nColumn;
			Advance();
			Advance();
			while ( m_nPos + 1 < m_nLength && !( m_pText[ m_nPos ] == '*' && m_pText[ m_nPos + 1 ] == '/' ) )
				Advance();
			if ( m_nPos + 1 >= m_nLength )
			{
				while ( m_nPos < m_nLength )
					Advance();
				pError->m_eType = FGDTOKEN_ERROR;
				pError->m_Text = "No closing */ before end of file";
				pError->m_nLine = nLine;
				pError->m_nColumn = nColumn;
				return;
			}
			Advance();
			Advance();
			continue;
		}
		return;
	}
}

FgdToken_t CFgdTokenizer::Read()
{
	FgdToken_t token;
	SkipBlanksAndComments( &token );
	if ( token.m_eType == FGDTOKEN_ERROR )
		return token;
	token.m_nLine = m_nLine;
	token.m_nColumn = m_nColumn;
	token.m_nOffset = m_nPos;
	if ( m_nPos >= m_nLength )
		return token;

	char c = m_pText[ m_nPos ];
	if ( c == '"' )
	{
		Advance();
		size_t nStart = m_nPos;
		while ( m_nPos < m_nLength && m_pText[ m_nPos ] != '"' )
		{
			if ( m_pText[ m_nPos ] == '\n' )
			{
				token.m_eType = FGDTOKEN_ERROR;
				token.m_Text = "Newline in string literal";
				return token;
			}
			Advance();
		}
		if ( m_nPos >= m_nLength )
		{
			token.m_eType = FGDTOKEN_ERROR;
			token.m_Text = "Newline in string literal";
			return token;
		}
		token.m_eType = FGDTOKEN_STRING;
		token.m_Text.Set( m_pText + nStart, m_nPos - nStart );
		Advance();
		return token;
	}
	if ( IsBreakChar( c ) )
	{
		token.m_eType = FGDTOKEN_PUNCT;
		token.m_Text.Set( &c, 1 );
		Advance();
		return token;
	}
	size_t nStart = m_nPos;
	while ( m_nPos < m_nLength && !IsBlank( m_pText[ m_nPos ] ) && !IsBreakChar( m_pText[ m_nPos ] ) && m_pText[ m_nPos ] != '"' && m_pText[ m_nPos ] != '\0' )
	{
		if ( m_pText[ m_nPos ] == '/' && m_nPos + 1 < m_nLength && ( m_pText[ m_nPos + 1 ] == '/' || m_pText[ m_nPos + 1 ] == '*' ) )
			break;
		Advance();
	}
	token.m_eType = FGDTOKEN_WORD;
	token.m_Text.Set( m_pText + nStart, m_nPos - nStart );
	return token;
}

FgdToken_t CFgdTokenizer::Next()
{
	if ( m_bHasPeek )
	{
		m_bHasPeek = false;
		return m_Peek;
	}
	return Read();
}

const FgdToken_t &CFgdTokenizer::Peek()
{
	if ( !m_bHasPeek )
	{
		m_Peek = Read();
		m_bHasPeek = true;
	}
	return m_Peek;
}

bool CFgdTokenizer::SkipToNextAt()
{
	for ( ;; )
	{
		const FgdToken_t &token = Peek();
		if ( token.m_eType == FGDTOKEN_EOF )
			return false;
		if ( token.Is( '@' ) )
			return true;
		if ( token.m_eType == FGDTOKEN_ERROR && m_nPos >= m_nLength )
		{
			Next();
			return false;
		}
		Next();
	}
}

size_t CFgdTokenizer::GetOffsetOfNextToken()
{
	return Peek().m_nOffset;
}

void CFgdTokenizer::SeekTo( size_t nOffset )
{
	if ( m_bHasPeek && m_Peek.m_nOffset < m_nPos )
	{
		// Rewind to the peeked token so line counting restarts from its start.
		m_nPos = m_Peek.m_nOffset;
		m_nLine = m_Peek.m_nLine;
		m_nColumn = m_Peek.m_nColumn;
	}
	m_bHasPeek = false;
	if ( nOffset > m_nLength )
		nOffset = m_nLength;
	while ( m_nPos < nOffset )
		Advance();
}
