#include "core/particles/particlesystemdefinitionrecords.h"

KeyValues3 ParticleControlPointNumberKV3( int nControlPoint )
{
	KeyValues3 value;
	value.SetInt( nControlPoint );
	return value;
}
