#pragma once
// What the particle manager reports about one function's table. Control point use is
// added with the function list that shows it.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/particles/sim/controlpointusage.h"
#include "core/text/utlstring.h"

// A renderer's statement of what it uses a particle attribute for. A negative component
// speaks for the attribute as a whole.
struct ParticleAttributeUsage_t
{
	int m_nAttribute = 0;
	int m_nComponent = -1;
	CUtlString m_Text;
};

struct ParticleFunctionInfo_t
{
	uint64_t m_nWrittenAttributes = 0; // bit n: the function writes attribute n
	CUtlVector<ParticleAttributeUsage_t> m_AttributeUsage;
	// The control points and named values the function reads (flag 1) or writes (flag 2).
	CUtlVector<ParticleControlPointUse_t> m_ControlPointUses;
};
