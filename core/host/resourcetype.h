#pragma once
// A resource or asset type is a four-character code, the file extension of its
// source: 'tfxs' particle system definitions, 'tmsh' meshes, 'timg' images.

#include <cstdint>

#include "core/text/utlstring.h"

using ResourceType_t = uint32_t;

constexpr ResourceType_t RESOURCE_TYPE_NONE = 0;

// The code of up to four characters, first character in the lowest byte.
constexpr ResourceType_t MakeResourceType( const char ( &code )[ 5 ] )
{
	return ResourceType_t( uint8_t( code[ 0 ] ) ) | ( ResourceType_t( uint8_t( code[ 1 ] ) ) << 8 ) |
		   ( ResourceType_t( uint8_t( code[ 2 ] ) ) << 16 ) | ( ResourceType_t( uint8_t( code[ 3 ] ) ) << 24 );
}

constexpr ResourceType_t RESOURCE_TYPE_PARTICLE_SYSTEM = MakeResourceType( "tfxs" );
constexpr ResourceType_t RESOURCE_TYPE_MESH = MakeResourceType( "tmsh" );
constexpr ResourceType_t RESOURCE_TYPE_IMAGE = MakeResourceType( "timg" );

// The code of an extension ("tfxs", ".TFXS"), lower-cased; RESOURCE_TYPE_NONE when it
// is empty or longer than four characters.
ResourceType_t ResourceTypeFromExtension( const char *pExtension );
// The code's text ("tfxs").
CUtlString ResourceTypeName( ResourceType_t nType );
