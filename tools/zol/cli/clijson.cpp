#include "tools/zol/cli/clijson.h"

#include <cstdio>

void AppendJsonString( std::string *pOut, const char *pText )
{
	pOut->push_back( '"' );
	for ( const char *p = pText; *p; ++p )
	{
		const unsigned char c = static_cast<unsigned char>( *p );
		switch ( c )
		{
		case '"': pOut->append( "\\\"" ); break;
		case '\\': pOut->append( "\\\\" ); break;
		case '\n': pOut->append( "\\n" ); break;
		case '\r': pOut->append( "\\r" ); break;
		case '\t': pOut->append( "\\t" ); break;
		default:
			if ( c < 0x20 )
			{
				char escaped[ 8 ];
				snprintf( escaped, sizeof( escaped ), "\\u%04x", c );
				pOut->append( escaped );
			}
			else
			{
				pOut->push_back( char( c ) );
			}
		}
	}
	pOut->push_back( '"' );
}
