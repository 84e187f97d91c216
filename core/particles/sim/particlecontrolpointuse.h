#pragma once
// Questions the manager answers about one function's table without a whole definition:
// which control points and named values it reads and writes, and which attributes it writes.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/particles/sim/controlpointusage.h"

class KeyValues3;

// The full records of what the function touches, as its inputs and fields report them.
void GetParticleFunctionControlPointUsage( const KeyValues3 *pFunction, CUtlVector<HostControlPointUsage_t> *pUsage );
// One record per control point or named value, flags joined: bit 0 read, bit 1 written.
void GetParticleFunctionControlPointUses( const KeyValues3 *pFunction, CUtlVector<ParticleControlPointUse_t> *pUses );
// Bit n: the function writes attribute n. 0 for a table that isn't a known function.
uint64_t GetParticleFunctionWrittenAttributes( const KeyValues3 *pFunction );
