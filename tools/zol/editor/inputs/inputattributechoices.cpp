// The particle attributes the input editors' combos offer. Kept apart from the inputs'
// headers, which have their own notion of an attribute's bit.

#include "core/particles/particleattributes.h"
#include "tools/zol/editor/inputs/floatinputeditlogic.h"

std::vector<FloatInputAttributeChoice_t> GetFloatInputAttributeChoices( uint64_t nMask, bool bInitial )
{
	std::vector<FloatInputAttributeChoice_t> choices;
	for ( int i = 0; i < PARTICLE_ATTRIBUTE_COUNT; ++i )
	{
		if ( !( nMask & ParticleAttributeBit( i ) ) )
			continue;
		const char *pName = GetParticleAttributeName( i );
		if ( !pName || !*pName )
			continue;
		choices.push_back( { i, bInitial ? std::string( "Initial " ) + pName : std::string( pName ) } );
	}
	return choices;
}
