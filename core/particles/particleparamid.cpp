#include "core/particles/particleparamid.h"

#include <cstring>

#include "core/kv3/kv3membername.h"
#include "core/symbols/globalsymbol.h"

uint32_t ParticleParamID_t::TokenOf( const char *pName )
{
	if ( !pName || !*pName )
		return 0;
	return MurmurHash2LowerCase( pName, strlen( pName ), 0x31415926 );
}

ParticleParamID_t ParticleParamID_t::Named( const char *pName )
{
	uint32_t nToken = TokenOf( pName );
	if ( nToken == 0 )
		return ParticleParamID_t{};
	return ParticleParamID_t{ -1, nToken, CGlobalSymbol( pName ).String() };
}
