#include "core/text/friendlyname.h"

#include "core/text/strtools.h"
#include "core/text/utlstring.h"

#include <string>

static bool IsLower( char c ) { return c >= 'a' && c <= 'z'; }
static bool IsUpper( char c ) { return c >= 'A' && c <= 'Z'; }
static bool IsDigit( char c ) { return c >= '0' && c <= '9'; }
static bool IsAlpha( char c ) { return IsLower( c ) || IsUpper( c ); }

// Skips what code names carry but a reader doesn't need: "m_" with its type mark
// ("fl", "n", "vec", ...), or a class's "C" / "C_" with a family tag ("OP_", "INIT_").
static const char *SkipCodePrefix( const char *p )
{
	if ( p[ 0 ] == 'm' && p[ 1 ] == '_' )
	{
		p += 2;
		const char *pMark = p;
		while ( IsLower( *pMark ) )
			++pMark;
		if ( pMark != p && IsUpper( *pMark ) )
			p = pMark;
		return p;
	}
	if ( p[ 0 ] == 'C' && p[ 1 ] == '_' )
	{
		p += 2;
		const char *pTag = p;
		while ( IsUpper( *pTag ) || IsDigit( *pTag ) )
			++pTag;
		if ( pTag != p && *pTag == '_' && pTag[ 1 ] )
			p = pTag + 1;
		return p;
	}
	if ( p[ 0 ] == 'C' && IsUpper( p[ 1 ] ) && IsLower( p[ 2 ] ) )
		return p + 1;
	return p;
}

static std::string MakeFriendlyName( const char *pCppName )
{
	const char *p = SkipCodePrefix( pCppName );
	std::string result;
	bool bPendingSpace = false;
	for ( size_t i = 0; p[ i ]; ++i )
	{
		char c = p[ i ];
		if ( c == '_' || c == ' ' )
		{
			bPendingSpace = !result.empty();
			continue;
		}
		if ( i > 0 && !bPendingSpace && !result.empty() )
		{
			char prev = p[ i - 1 ];
			char next = p[ i + 1 ];
			bool bLowerToUpper = IsLower( prev ) && IsUpper( c );
			bool bAcronymEnd = IsUpper( prev ) && IsUpper( c ) && IsLower( next );
			// "CP1Pos" -> "CP 1 Pos", but "2D" and "3rd" stay whole.
			bool bLetterDigit = ( IsAlpha( prev ) && IsDigit( c ) ) || ( IsDigit( prev ) && IsUpper( c ) && IsLower( next ) );
			bPendingSpace = bLowerToUpper || bAcronymEnd || bLetterDigit;
		}
		bool bWordStart = result.empty() || bPendingSpace;
		if ( bPendingSpace )
			result += ' ';
		bPendingSpace = false;
		result += ( bWordStart && IsLower( c ) ) ? char( c - ( 'a' - 'A' ) ) : c;
	}
	return result;
}

bool V_TryAndMakeFriendlyNameFromCppName( const char *pCppName, char *pOut, size_t nOutSize )
{
	std::string friendly = MakeFriendlyName( pCppName ? pCppName : "" );
	if ( friendly.empty() )
	{
		V_strncpy( pOut, pCppName, nOutSize );
		return false;
	}
	V_strncpy( pOut, friendly.c_str(), nOutSize );
	return true;
}

bool V_TryAndMakeFriendlyNameFromCppName( const char *pCppName, CUtlString *pOut )
{
	if ( !pOut )
		return false;
	std::string friendly = MakeFriendlyName( pCppName ? pCppName : "" );
	if ( friendly.empty() )
	{
		pOut->Set( pCppName );
		return false;
	}
	pOut->Set( friendly.c_str(), friendly.size() );
	return true;
}
