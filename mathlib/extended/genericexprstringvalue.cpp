#include "mathlib/extended/genericexprstringvalue.h"

#include <cstring>

#include "core/text/utlstring.h"

static void ReadTripleQuoted( const char *pText, size_t nLength, CUtlString *pOut )
{
	// The inside of the outer triple quotes, CR LF pairs made LF.
	std::string inside;
	for ( size_t i = 3; i < nLength - 3; ++i )
	{
		if ( pText[ i ] == '\r' && i + 1 < nLength - 3 && pText[ i + 1 ] == '\n' )
			continue;
		inside.push_back( pText[ i ] );
	}
	// Without its first and last character (the line ends after and before the quotes).
	if ( inside.size() >= 2 )
		inside = inside.substr( 1, inside.size() - 2 );
	else
		inside.clear();
	std::string value;
	for ( size_t i = 0; i < inside.size(); ++i )
	{
		if ( inside.compare( i, 4, "\\\"\"\"" ) == 0 )
		{
			value.append( "\"\"\"" );
			i += 3;
			continue;
		}
		value.push_back( inside[ i ] );
	}
	pOut->Set( value.c_str(), value.size() );
}

void GenericExprStringTokenValue( const char *pTokenText, CUtlString *pOut )
{
	const char *pText = pTokenText ? pTokenText : "";
	size_t nLength = strlen( pText );
	if ( nLength >= 6 && strncmp( pText, "\"\"\"", 3 ) == 0 && strncmp( pText + nLength - 3, "\"\"\"", 3 ) == 0 )
	{
		ReadTripleQuoted( pText, nLength, pOut );
		return;
	}

	// The opening quote, and the closing one when the string has it: an unterminated
	// string keeps everything after its opening quote.
	char cQuote = pText[ 0 ];
	bool bQuoted = cQuote == '"' || cQuote == '\'';
	std::string value;
	value.reserve( nLength );
	for ( size_t i = bQuoted ? 1 : 0; i < nLength; ++i )
	{
		char c = pText[ i ];
		if ( bQuoted && c == cQuote )
			break;
		if ( c == '\\' && i + 1 < nLength )
		{
			char cEscaped = pText[ ++i ];
			value.push_back( cEscaped == 'n' ? '\n' : cEscaped == 't' ? '\t' : cEscaped );
			continue;
		}
		value.push_back( c );
	}
	pOut->Set( value.c_str(), value.size() );
}
