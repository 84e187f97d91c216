#pragma once
// Attributes that a function writes after an earlier function of its list already wrote
// them: the function list marks those functions.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/particles/particlefunctiontype.h"

class CZolRootNode;

// One mask per function of the list, in list order: the attributes it writes that a
// function before it (enabled or not) writes too. Lists other than 0 .. 6 have none.
void GetParticleWriteConflicts( const CZolRootNode *pRoot, ParticleFunctionType_t eType, CUtlVector<uint64_t> *pConflicts );
