// Reading and writing the brace text form of KeyValues.

#include "core/keyvalues/keyvalues.h"

#include "core/containers/utlbuffer.h"
#include "core/host/safefilewrite.h"
#include "core/platform/platformfile.h"

#include <cstdio>
#include <cstring>
#include <string>
#include <utility>

namespace
{

enum KeyValuesTokenType_t
{
	KVTOKEN_END,
	KVTOKEN_STRING,
	KVTOKEN_OPEN_BRACE,
	KVTOKEN_CLOSE_BRACE,
	KVTOKEN_CONDITION, // "[$PLATFORM]" after a key: accepted and ignored
	KVTOKEN_ERROR,
};

struct KeyValuesToken_t
{
	KeyValuesTokenType_t m_eType = KVTOKEN_END;
	std::string m_strText;
	int m_nLine = 1;
	int m_nColumn = 1;
};

class CKeyValuesTextReader
{
public:
	CKeyValuesTextReader( const char *pText, size_t nLength ) : m_p( pText ), m_pEnd( pText + nLength ) {}

	// Reads every top-level pair as a subkey of pRoot; false with m_strError set on failure.
	bool ReadAll( KeyValues *pRoot )
	{
		while ( true )
		{
			KeyValuesToken_t token = NextToken();
			if ( token.m_eType == KVTOKEN_END )
				return true;
			if ( token.m_eType == KVTOKEN_CLOSE_BRACE )
				return Fail( token, "unexpected '}' outside any block" );
			if ( !ReadPair( pRoot, token, 0 ) )
				return false;
		}
	}

	const std::string &Error() const { return m_strError; }
	int ErrorLine() const { return m_nErrorLine; }
	int ErrorColumn() const { return m_nErrorColumn; }

private:
	// Reads the rest of a pair whose key token has been read.
	bool ReadPair( KeyValues *pParent, const KeyValuesToken_t &key, int nDepth )
	{
		if ( key.m_eType == KVTOKEN_ERROR )
			return Fail( key, key.m_strText.c_str() );
		if ( key.m_eType != KVTOKEN_STRING )
			return Fail( key, "expected a key name" );

		KeyValuesToken_t value = NextToken();
		if ( value.m_eType == KVTOKEN_CONDITION )
			value = NextToken();
		switch ( value.m_eType )
		{
		case KVTOKEN_STRING:
			pParent->CreateNewKey( key.m_strText.c_str() )->SetString( nullptr, value.m_strText.c_str() );
			return SkipCondition();
		case KVTOKEN_OPEN_BRACE:
			return ReadBlock( pParent->CreateNewKey( key.m_strText.c_str() ), key, nDepth + 1 );
		case KVTOKEN_ERROR:
			return Fail( value, value.m_strText.c_str() );
		case KVTOKEN_END:
			return Fail( value, ( "key '" + key.m_strText + "' has no value" ).c_str() );
		default:
			return Fail( value, ( "expected a value or '{' after key '" + key.m_strText + "'" ).c_str() );
		}
	}

	bool ReadBlock( KeyValues *pKey, const KeyValuesToken_t &key, int nDepth )
	{
		if ( nDepth > KeyValues::MAX_NESTING_DEPTH )
			return Fail( key, "blocks are nested too deeply" );
		while ( true )
		{
			KeyValuesToken_t token = NextToken();
			if ( token.m_eType == KVTOKEN_CLOSE_BRACE )
				return true;
			if ( token.m_eType == KVTOKEN_END )
			{
				char message[ 256 ];
				snprintf( message, sizeof( message ), "missing '}' to close '%.160s' (opened at %d:%d)", key.m_strText.c_str(), key.m_nLine, key.m_nColumn );
				return Fail( token, message );
			}
			if ( !ReadPair( pKey, token, nDepth ) )
				return false;
		}
	}

	// A condition may follow a value on the same pair.
	bool SkipCondition()
	{
		const char *pSave = m_p;
		int nLine = m_nLine, nColumn = m_nColumn;
		KeyValuesToken_t token = NextToken();
		if ( token.m_eType == KVTOKEN_ERROR )
			return Fail( token, token.m_strText.c_str() );
		if ( token.m_eType != KVTOKEN_CONDITION )
		{
			m_p = pSave;
			m_nLine = nLine;
			m_nColumn = nColumn;
		}
		return true;
	}

	bool Fail( const KeyValuesToken_t &at, const char *pMessage )
	{
		if ( m_strError.empty() )
		{
			m_strError = pMessage;
			m_nErrorLine = at.m_nLine;
			m_nErrorColumn = at.m_nColumn;
		}
		return false;
	}

	void Advance()
	{
		if ( *m_p == '\n' )
		{
			++m_nLine;
			m_nColumn = 1;
		}
		else
		{
			++m_nColumn;
		}
		++m_p;
	}

	void SkipBlanksAndComments()
	{
		while ( m_p < m_pEnd )
		{
			unsigned char c = (unsigned char)*m_p;
			if ( c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\f' || c == '\v' )
			{
				Advance();
			}
			else if ( c == '/' && m_p + 1 < m_pEnd && m_p[ 1 ] == '/' )
			{
				while ( m_p < m_pEnd && *m_p != '\n' )
					Advance();
			}
			else if ( c == 0xEF && m_pEnd - m_p >= 3 && (unsigned char)m_p[ 1 ] == 0xBB && (unsigned char)m_p[ 2 ] == 0xBF )
			{
				m_p += 3; // UTF-8 byte order mark
			}
			else
			{
				break;
			}
		}
	}

	KeyValuesToken_t NextToken()
	{
		SkipBlanksAndComments();
		KeyValuesToken_t token;
		token.m_nLine = m_nLine;
		token.m_nColumn = m_nColumn;
		if ( m_p >= m_pEnd )
			return token;

		char c = *m_p;
		if ( c == '{' || c == '}' )
		{
			Advance();
			token.m_eType = c == '{' ? KVTOKEN_OPEN_BRACE : KVTOKEN_CLOSE_BRACE;
			return token;
		}
		if ( c == '"' )
			return ReadQuoted( token );
		if ( c == '[' )
		{
			while ( m_p < m_pEnd && *m_p != ']' && *m_p != '\n' )
			{
				token.m_strText += *m_p;
				Advance();
			}
			if ( m_p >= m_pEnd || *m_p != ']' )
			{
				token.m_eType = KVTOKEN_ERROR;
				token.m_strText = "unterminated condition '['";
				return token;
			}
			Advance();
			token.m_eType = KVTOKEN_CONDITION;
			return token;
		}

		token.m_eType = KVTOKEN_STRING;
		while ( m_p < m_pEnd )
		{
			unsigned char ch = (unsigned char)*m_p;
			if ( ch == ' ' || ch == '\t' || ch == '\r' || ch == '\n' || ch == '"' || ch == '{' || ch == '}' || ch == 0 )
				break;
			token.m_strText += char( ch );
			Advance();
		}
		if ( token.m_strText.empty() )
		{
			token.m_eType = KVTOKEN_ERROR;
			token.m_strText = "unexpected character";
			Advance();
		}
		return token;
	}

	KeyValuesToken_t ReadQuoted( KeyValuesToken_t &token )
	{
		Advance(); // the opening quote
		while ( m_p < m_pEnd && *m_p != '"' )
		{
			char c = *m_p;
			if ( c == '\\' && m_p + 1 < m_pEnd )
			{
				Advance();
				char escaped = *m_p;
				switch ( escaped )
				{
				case 'n': c = '\n'; break;
				case 't': c = '\t'; break;
				case '\\': c = '\\'; break;
				case '"': c = '"'; break;
				default:
					// Unknown escapes stay as written: Windows paths often hold single backslashes.
					token.m_strText += '\\';
					c = escaped;
					break;
				}
			}
			token.m_strText += c;
			Advance();
		}
		if ( m_p >= m_pEnd )
		{
			token.m_eType = KVTOKEN_ERROR;
			token.m_strText = "unterminated quoted string";
			return token;
		}
		Advance(); // the closing quote
		token.m_eType = KVTOKEN_STRING;
		return token;
	}

	const char *m_p;
	const char *m_pEnd;
	int m_nLine = 1;
	int m_nColumn = 1;
	std::string m_strError;
	int m_nErrorLine = 0;
	int m_nErrorColumn = 0;
};

void AppendQuoted( CUtlString *pText, const char *pString )
{
	pText->Append( '"' );
	for ( const char *p = pString; *p; ++p )
	{
		switch ( *p )
		{
		case '"': pText->Append( "\\\"" ); break;
		case '\\': pText->Append( "\\\\" ); break;
		case '\n': pText->Append( "\\n" ); break;
		case '\t': pText->Append( "\\t" ); break;
		default: pText->Append( *p ); break;
		}
	}
	pText->Append( '"' );
}

void AppendIndent( CUtlString *pText, int nIndent )
{
	for ( int i = 0; i < nIndent; ++i )
		pText->Append( '\t' );
}

} // namespace

bool KeyValues::LoadFromBuffer( const char *pResourceName, const char *pText, CUtlString *pError )
{
	return LoadFromBuffer( pResourceName, pText, pText ? strlen( pText ) : 0, pError );
}

bool KeyValues::LoadFromBuffer( const char *pResourceName, const char *pText, size_t nLength, CUtlString *pError )
{
	Clear();
	KeyValues holder;
	CKeyValuesTextReader reader( pText ? pText : "", pText ? nLength : 0 );
	bool bOk = reader.ReadAll( &holder );
	if ( bOk && !holder.m_pSub )
	{
		bOk = false;
		if ( pError )
			pError->Format( "%s%s1:1: the text holds no keys", pResourceName ? pResourceName : "", pResourceName ? ":" : "" );
		return false;
	}
	if ( !bOk )
	{
		if ( pError )
			pError->Format( "%s%s%d:%d: %s", pResourceName ? pResourceName : "", pResourceName ? ":" : "", reader.ErrorLine(), reader.ErrorColumn(), reader.Error().c_str() );
		return false;
	}

	// This key becomes the first top-level key; the others follow as its peers.
	KeyValues *pFirst = std::exchange( holder.m_pSub, nullptr );
	m_strName = std::move( pFirst->m_strName );
	m_strValue = std::move( pFirst->m_strValue );
	m_bHasValue = pFirst->m_bHasValue;
	m_pSub = std::exchange( pFirst->m_pSub, nullptr );
	m_pLastSub = std::exchange( pFirst->m_pLastSub, nullptr );
	m_pPeer = std::exchange( pFirst->m_pPeer, nullptr );
	delete pFirst;
	if ( pError )
		pError->Clear();
	return true;
}

static std::string NativePath( const char *pPath )
{
	std::string path = pPath ? pPath : "";
#ifndef _WIN32
	// Paths in memory use backslashes; this platform's files want forward ones.
	for ( char &c : path )
	{
		if ( c == '\\' )
			c = '/';
	}
#endif
	return path;
}

bool KeyValues::LoadFromFile( const char *pPath, CUtlString *pError )
{
	Clear();
	std::string text;
	CUtlString reason;
	if ( !Plat_ReadWholeFile( NativePath( pPath ).c_str(), &text, &reason ) )
	{
		if ( pError )
			pError->Format( "%s: %s", pPath ? pPath : "", reason.Get() );
		return false;
	}
	return LoadFromBuffer( pPath, text.data(), text.size(), pError );
}

void KeyValues::WriteText( CUtlString *pText, int nIndent ) const
{
	for ( const KeyValues *pKey = this; pKey; pKey = pKey->m_pPeer )
	{
		AppendIndent( pText, nIndent );
		AppendQuoted( pText, pKey->m_strName.Get() );
		if ( pKey->m_pSub || !pKey->m_bHasValue )
		{
			pText->Append( '\n' );
			AppendIndent( pText, nIndent );
			pText->Append( "{\n" );
			if ( pKey->m_pSub )
				pKey->m_pSub->WriteText( pText, nIndent + 1 );
			AppendIndent( pText, nIndent );
			pText->Append( "}\n" );
		}
		else
		{
			pText->Append( "\t\t" );
			AppendQuoted( pText, pKey->m_strValue.Get() );
			pText->Append( '\n' );
		}
	}
}

CUtlString KeyValues::ToText() const
{
	CUtlString text;
	WriteText( &text, 0 );
	return text;
}

void KeyValues::SaveToBuffer( CUtlBuffer *pBuffer ) const
{
	if ( !pBuffer )
		return;
	CUtlString text = ToText();
	pBuffer->Put( text.Get(), text.Length() );
}

bool KeyValues::SaveToFile( const char *pPath, CUtlString *pError ) const
{
	CUtlString text = ToText();
	return SafeWriteFile( pPath, text.Get(), text.Length(), pError );
}
