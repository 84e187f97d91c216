#pragma once
// What the manager of live effects reads of a definition: culling, fallback, aggregation
// and batching. The simulation itself doesn't use these.

#include "core/text/utlstring.h"

class KeyValues3;

struct ParticleManagerTraits_t
{
	bool m_bScreenSpaceEffect = false;
	float m_flCullRadius = 0.0f;
	float m_flCullFillCost = 1.0f;
	int m_nCullControlPoint = 0;
	CUtlString m_Fallback; // resource name of the replacement definition
	int m_nFallbackMaxCount = -1;
	float m_flMaxDrawDistance = 100000.0f;
	float m_flAggregateRadius = 0.0f;
	int m_nAggregationMinAvailableParticles = 0;
	bool m_bShouldBatch = false;
	int m_nGroupID = 0;
};

void ReadParticleManagerTraits( const KeyValues3 *pRoot, ParticleManagerTraits_t *pTraits );
