#include "core/host/resourcetype.h"

#include "core/text/strtools.h"

ResourceType_t ResourceTypeFromExtension( const char *pExtension )
{
	if ( !pExtension )
		return RESOURCE_TYPE_NONE;
	if ( *pExtension == '.' )
		++pExtension;
	size_t nLength = V_strlen( pExtension );
	if ( nLength == 0 || nLength > 4 )
		return RESOURCE_TYPE_NONE;
	ResourceType_t nType = 0;
	for ( size_t i = 0; i < nLength; ++i )
	{
		char c = pExtension[ i ];
		if ( c >= 'A' && c <= 'Z' )
			c = char( c - 'A' + 'a' );
		nType |= ResourceType_t( uint8_t( c ) ) << ( 8 * i );
	}
	return nType;
}

CUtlString ResourceTypeName( ResourceType_t nType )
{
	CUtlString name;
	for ( int i = 0; i < 4; ++i )
	{
		char c = char( ( nType >> ( 8 * i ) ) & 0xFF );
		if ( c )
			name.Append( c );
	}
	return name;
}
