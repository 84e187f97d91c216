#include "core/host/assetdragtext.h"

#include <cstring>

#include "core/host/iassetsystem.h"
#include "core/text/utlstring.h"

namespace
{
// "%20" and the like of a file URL.
CUtlString DecodePercent( const char *pText )
{
	CUtlString out;
	for ( const char *p = pText; *p; ++p )
	{
		auto hex = []( char c ) { return ( c >= '0' && c <= '9' ) ? c - '0' : ( c >= 'a' && c <= 'f' ) ? c - 'a' + 10 : ( c >= 'A' && c <= 'F' ) ? c - 'A' + 10 : -1; };
		if ( p[ 0 ] == '%' && p[ 1 ] && p[ 2 ] && hex( p[ 1 ] ) >= 0 && hex( p[ 2 ] ) >= 0 )
		{
			out.Append( char( hex( p[ 1 ] ) * 16 + hex( p[ 2 ] ) ) );
			p += 2;
			continue;
		}
		out.Append( *p );
	}
	return out;
}

IAsset *FindAsset( IAssetSystem *pAssetSystem, CUtlString name )
{
	name.TrimWhitespace();
	if ( name.IsEmpty() )
		return nullptr;
	if ( !strncmp( name.Get(), "file://", 7 ) )
		name = DecodePercent( name.Get() + 7 );
	if ( IAsset *pAsset = pAssetSystem->FindAssetByResourceName( name ) )
		return pAsset;
	if ( IAsset *pAsset = pAssetSystem->FindAssetByContentPath( name ) )
		return pAsset;
	return pAssetSystem->FindAssetByAbsolutePath( name );
}
} // namespace

int DecodeAssetsFromText( IAssetSystem *pAssetSystem, const char *pText, CUtlVector<IAsset *> *pAssets )
{
	if ( !pAssetSystem || !pText )
		return 0;
	int nAdded = 0;
	const char *pLine = pText;
	while ( *pLine )
	{
		const char *pEnd = pLine;
		while ( *pEnd && *pEnd != '\n' && *pEnd != '\r' )
			++pEnd;
		IAsset *pAsset = FindAsset( pAssetSystem, CUtlString( pLine, size_t( pEnd - pLine ) ) );
		if ( pAsset && !pAssets->HasElement( pAsset ) )
		{
			pAssets->AddToTail( pAsset );
			++nAdded;
		}
		pLine = *pEnd ? pEnd + 1 : pEnd;
	}
	return nAdded;
}
