#include "tools/toolutils2/toolattr/toolattrvaluetext.h"

#include <cerrno>
#include <cmath>

static bool IsBlankTail( const char *pszText )
{
	while ( *pszText == ' ' || *pszText == '\t' )
		++pszText;
	return *pszText == '\0';
}

bool ToolAttrParseInt64( const char *pszText, int64_t *pOut )
{
	char *pEnd = nullptr;
	errno = 0;
	long long nValue = std::strtoll( pszText, &pEnd, 10 );
	if ( pEnd == pszText || errno == ERANGE || !IsBlankTail( pEnd ) )
		return false;
	*pOut = nValue;
	return true;
}

bool ToolAttrParseUInt64( const char *pszText, uint64_t *pOut )
{
	while ( *pszText == ' ' || *pszText == '\t' )
		++pszText;
	if ( *pszText == '-' )
		return false;
	char *pEnd = nullptr;
	errno = 0;
	unsigned long long nValue = std::strtoull( pszText, &pEnd, 10 );
	if ( pEnd == pszText || errno == ERANGE || !IsBlankTail( pEnd ) )
		return false;
	*pOut = nValue;
	return true;
}

bool ToolAttrParseDouble( const char *pszText, double *pOut )
{
	char *pEnd = nullptr;
	double flValue = std::strtod( pszText, &pEnd );
	if ( pEnd == pszText || !IsBlankTail( pEnd ) )
		return false;
	*pOut = flValue;
	return true;
}

bool ToolAttrParseFloat( const char *pszText, float *pOut )
{
	double flValue;
	if ( !ToolAttrParseDouble( pszText, &flValue ) )
		return false;
	*pOut = static_cast<float>( flValue );
	return true;
}

bool ToolAttrParseBool( const char *pszText, bool *pOut )
{
	CUtlString text( pszText );
	text.ToLower();
	std::string &s = text.Storage();
	while ( !s.empty() && ( s.back() == ' ' || s.back() == '\t' ) )
		s.pop_back();
	size_t nFirst = s.find_first_not_of( " \t" );
	s.erase( 0, nFirst == std::string::npos ? s.size() : nFirst );
	if ( s == "1" || s == "true" || s == "yes" )
		*pOut = true;
	else if ( s == "0" || s == "false" || s == "no" )
		*pOut = false;
	else
		return false;
	return true;
}

bool ToolAttrParseFloats( const char *pszText, float *pOut, int nCount )
{
	float values[ 4 ] = {};
	const char *pCursor = pszText;
	for ( int i = 0; i < nCount && i < 4; ++i )
	{
		char *pEnd = nullptr;
		values[ i ] = std::strtof( pCursor, &pEnd );
		if ( pEnd == pCursor )
			return false;
		pCursor = pEnd;
	}
	if ( !IsBlankTail( pCursor ) )
		return false;
	for ( int i = 0; i < nCount; ++i )
		pOut[ i ] = values[ i ];
	return true;
}

void ToolAttrFormatFloats( const float *pValues, int nCount, CUtlString *pOut )
{
	pOut->Clear();
	for ( int i = 0; i < nCount; ++i )
		pOut->AppendFormat( i ? " %.9g" : "%.9g", static_cast<double>( pValues[ i ] ) );
}

bool ToolAttrValueTraits_t<Color>::FromString( const char *pszText, Color *pOut )
{
	int channels[ 4 ] = { 0, 0, 0, 255 };
	int nRead = 0;
	int nConsumed = 0;
	nRead = sscanf( pszText, "%d %d %d %n", &channels[ 0 ], &channels[ 1 ], &channels[ 2 ], &nConsumed );
	if ( nRead != 3 )
		return false;
	const char *pRest = pszText + nConsumed;
	if ( *pRest )
	{
		int nExtra = 0;
		if ( sscanf( pRest, "%d %n", &channels[ 3 ], &nExtra ) != 1 || pRest[ nExtra ] )
			return false;
	}
	for ( int n : channels )
	{
		if ( n < 0 || n > 255 )
			return false;
	}
	*pOut = Color( channels[ 0 ], channels[ 1 ], channels[ 2 ], channels[ 3 ] );
	return true;
}
