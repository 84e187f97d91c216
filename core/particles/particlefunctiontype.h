#pragma once
// The nine lists of a particle system definition. The value doubles as the list's index;
// PARTICLE_FUNCTION_ROOT names the root node, or all lists at once.

#include <cstdint>

enum ParticleFunctionType_t : int32_t
{
	PARTICLE_FUNCTION_PRE_EMISSION_OPERATOR = 0,
	PARTICLE_FUNCTION_EMITTER = 1,
	PARTICLE_FUNCTION_INITIALIZER = 2,
	PARTICLE_FUNCTION_OPERATOR = 3,
	PARTICLE_FUNCTION_FORCE_GENERATOR = 4,
	PARTICLE_FUNCTION_CONSTRAINT = 5,
	PARTICLE_FUNCTION_RENDERER = 6,
	PARTICLE_FUNCTION_CHILDREN = 7,
	PARTICLE_FUNCTION_NAMED_VALUE_LOCALS = 8,
	PARTICLE_FUNCTION_ROOT = 9,

	PARTICLE_FUNCTION_LIST_COUNT = 9,
	// Types 0 .. 6 hold function classes; children and variables have their own nodes.
	PARTICLE_FUNCTION_CLASS_LIST_COUNT = 7,
};

inline bool IsParticleFunctionList( int nType ) { return nType >= 0 && nType < PARTICLE_FUNCTION_LIST_COUNT; }

// The list's key in a definition's KV3 ("m_Emitters"); "" for anything but a list.
const char *GetParticleFunctionListKey( int nType );
// The list's word in undo descriptions, the clipboard and add buttons ("Emitter"); "" for anything but a list.
const char *GetParticleFunctionTypeWord( int nType );
