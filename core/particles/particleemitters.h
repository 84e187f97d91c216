#pragma once
// Emitters: functions that decide when particles are born and how many. Particle inputs
// are KV3 tables typed by their input class's name (SCHEMA_FIELD_NAMED_CLASS).

#include <cstdint>

#include "core/kv3/keyvalues3.h"
#include "core/particles/particlefunction.h"
#include "core/particles/particleinputliterals.h"

class C_OP_ContinuousEmitter : public CParticleFunctionEmitter
{
	SCHEMA_DERIVED_CLASS( C_OP_ContinuousEmitter, CParticleFunctionEmitter, { "MPropertyFriendlyName", "Continuous Emitter" } )
	// Particles per second.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flEmitRate, "CParticleCollectionFloatInput", ParticleFloatLiteral( 100.0f ), { "MPropertyFriendlyName", "rate" } )
	SCHEMA_FIELD( float, m_flStartTime, 0.0f, { "MPropertyFriendlyName", "start time" } )
	// Seconds of emission after the start; 0 emits forever.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flEmissionDuration, "CParticleCollectionFloatInput", ParticleFloatLiteral( 0.0f ),
							  { "MPropertyFriendlyName", "emission duration" } )
	// -1: no limit on the particles born in one step.
	SCHEMA_FIELD( int32_t, m_nLimitPerUpdate, -1, { "MPropertyFriendlyName", "emission count limit per update" }, { "MParticleAdvancedField" } )
};

class C_OP_InstantaneousEmitter : public CParticleFunctionEmitter
{
	SCHEMA_DERIVED_CLASS( C_OP_InstantaneousEmitter, CParticleFunctionEmitter, { "MPropertyFriendlyName", "Instantaneous Emitter" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_nParticlesToEmit, "CParticleCollectionFloatInput", ParticleFloatLiteral( 100.0f ), { "MPropertyFriendlyName", "particle count" } )
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_flStartTime, "CParticleCollectionFloatInput", ParticleFloatLiteral( 0.0f ), { "MPropertyFriendlyName", "emission start time" } )
	// -1: the whole burst in the first step.
	SCHEMA_FIELD( int32_t, m_nMaxEmittedPerFrame, -1, { "MPropertyFriendlyName", "maximum emission per frame" }, { "MParticleAdvancedField" } )
};

class C_OP_MaintainEmitter : public CParticleFunctionEmitter
{
	SCHEMA_DERIVED_CLASS( C_OP_MaintainEmitter, CParticleFunctionEmitter, { "MPropertyFriendlyName", "Maintain Count Emitter" } )
	// Replaces dead particles so that this many live.
	SCHEMA_FIELD_NAMED_CLASS( KeyValues3, m_nParticlesToMaintain, "CParticleCollectionFloatInput", ParticleFloatLiteral( 100.0f ), { "MPropertyFriendlyName", "count to maintain" } )
	SCHEMA_FIELD( float, m_flStartTime, 0.0f, { "MPropertyFriendlyName", "start time" } )
	// Particles per second while refilling; 0 refills at once.
	SCHEMA_FIELD( float, m_flEmissionRate, 0.0f, { "MPropertyFriendlyName", "emission rate" } )
};
