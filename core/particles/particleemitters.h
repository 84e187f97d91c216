#pragma once
// Emitters: functions that decide when particles are born and how many.
// Particle inputs are kept as their raw KV3 tables until the input types are declared.

#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunction.h"

class C_OP_ContinuousEmitter : public CParticleFunctionEmitter
{
	SCHEMA_DERIVED_CLASS( C_OP_ContinuousEmitter, CParticleFunctionEmitter, { "MPropertyFriendlyName", "Continuous Emitter" } )
	SCHEMA_FIELD( KeyValues3, m_flEmitRate, {}, { "MPropertyFriendlyName", "rate" } )
	SCHEMA_FIELD( float, m_flStartTime, 0.0f, { "MPropertyFriendlyName", "start time" } )
};

class C_OP_InstantaneousEmitter : public CParticleFunctionEmitter
{
	SCHEMA_DERIVED_CLASS( C_OP_InstantaneousEmitter, CParticleFunctionEmitter, { "MPropertyFriendlyName", "Instantaneous Emitter" } )
	SCHEMA_FIELD( KeyValues3, m_nParticlesToEmit, {}, { "MPropertyFriendlyName", "particle count" } )
};
