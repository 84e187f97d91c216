// Emitters: how many particles are born in a step.

#include <algorithm>
#include <cmath>

#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlesimfunctionlist.h"

namespace
{
class CContinuousEmitter final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_EmitRate = CSimFloatInput( 100.0f );
		reader.FloatInput( "m_flEmitRate", &m_EmitRate, false );
		m_flStartTime = reader.Float( "m_flStartTime", 0.0f );
		m_EmissionDuration = CSimFloatInput( 0.0f );
		reader.FloatInput( "m_flEmissionDuration", &m_EmissionDuration, false );
		m_nLimitPerUpdate = reader.Int( "m_nLimitPerUpdate", -1 );
	}

	int Emit( CParticleCollection &collection, ParticleEmitterState_t &state, float flTime, float flDt ) const override
	{
		float flDuration = m_EmissionDuration.EvaluateCollection( collection );
		float flWindowStart = std::max( flTime - flDt, m_flStartTime );
		float flWindowEnd = flDuration > 0.0f ? std::min( flTime, m_flStartTime + flDuration ) : flTime;
		if ( flWindowEnd <= flWindowStart )
			return 0;
		float flRate = std::max( 0.0f, m_EmitRate.EvaluateCollection( collection ) );
		state.m_flAccumulated += double( flRate ) * double( flWindowEnd - flWindowStart );
		// A hair of slack, so that a rate of one per frame isn't lost to float rounding.
		double flWhole = std::floor( state.m_flAccumulated + 1e-4 );
		state.m_flAccumulated = std::max( 0.0, state.m_flAccumulated - flWhole );
		return m_nLimitPerUpdate >= 0 ? std::min( int( flWhole ), m_nLimitPerUpdate ) : int( flWhole );
	}

	bool IsEmissionFinished( const ParticleEmitterState_t &, float flTime ) const override
	{
		// A literal duration is known ahead; anything else runs until stopped.
		return m_EmissionDuration.IsConstant() && m_EmissionDuration.m_flLiteralValue > 0.0f && flTime >= m_flStartTime + m_EmissionDuration.m_flLiteralValue;
	}

private:
	CSimFloatInput m_EmitRate;
	CSimFloatInput m_EmissionDuration;
	float m_flStartTime = 0.0f;
	int m_nLimitPerUpdate = -1;
};

// Keeps the count of live particles at a target, replacing those that die.
class CMaintainEmitter final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_Count = CSimFloatInput( 100.0f );
		reader.FloatInput( "m_nParticlesToMaintain", &m_Count, false );
		m_flStartTime = reader.Float( "m_flStartTime", 0.0f );
		m_flEmissionRate = reader.Float( "m_flEmissionRate", 0.0f );
	}

	int Emit( CParticleCollection &collection, ParticleEmitterState_t &state, float flTime, float flDt ) const override
	{
		if ( flTime < m_flStartTime )
			return 0;
		int nMissing = std::max( 0, int( std::lround( m_Count.EvaluateCollection( collection ) ) ) - collection.Count() );
		if ( m_flEmissionRate <= 0.0f )
			return nMissing;
		// A rate spreads the refill out.
		state.m_flAccumulated += double( m_flEmissionRate ) * double( flDt );
		int nAllowed = int( std::floor( state.m_flAccumulated + 1e-4 ) );
		int nEmit = std::min( nAllowed, nMissing );
		state.m_flAccumulated = std::max( 0.0, state.m_flAccumulated - double( nEmit ) );
		return nEmit;
	}

	bool IsEmissionFinished( const ParticleEmitterState_t &, float ) const override { return false; }

private:
	CSimFloatInput m_Count;
	float m_flStartTime = 0.0f, m_flEmissionRate = 0.0f;
};

class CInstantaneousEmitter final : public CParticleSimFunction
{
public:
	void Read( CParticleFunctionReader &reader ) override
	{
		m_ParticlesToEmit = CSimFloatInput( 100.0f );
		reader.FloatInput( "m_nParticlesToEmit", &m_ParticlesToEmit, false );
		m_StartTime = CSimFloatInput( 0.0f );
		reader.FloatInput( "m_flStartTime", &m_StartTime, false );
		m_nMaxPerFrame = reader.Int( "m_nMaxEmittedPerFrame", -1 );
	}

	int Emit( CParticleCollection &collection, ParticleEmitterState_t &state, float flTime, float ) const override
	{
		if ( state.m_bEmittedOnce || flTime < m_StartTime.EvaluateCollection( collection ) )
			return 0;
		// The burst may be spread over frames: the accumulator holds what is still owed.
		if ( state.m_flAccumulated <= 0.0 )
			state.m_flAccumulated = std::max( 0.0, double( std::lround( m_ParticlesToEmit.EvaluateCollection( collection ) ) ) );
		int nEmit = int( state.m_flAccumulated );
		if ( m_nMaxPerFrame >= 0 )
			nEmit = std::min( nEmit, m_nMaxPerFrame );
		state.m_flAccumulated -= double( nEmit );
		state.m_bEmittedOnce = state.m_flAccumulated <= 0.0;
		return nEmit;
	}

	bool IsEmissionFinished( const ParticleEmitterState_t &state, float ) const override { return state.m_bEmittedOnce; }

private:
	CSimFloatInput m_ParticlesToEmit;
	CSimFloatInput m_StartTime;
	int m_nMaxPerFrame = -1;
};

const ParticleSimFunctionEntry_t s_Emitters[] = {
	{ "C_OP_ContinuousEmitter", CreateParticleSimFunction<CContinuousEmitter> },
	{ "C_OP_InstantaneousEmitter", CreateParticleSimFunction<CInstantaneousEmitter> },
	{ "C_OP_MaintainEmitter", CreateParticleSimFunction<CMaintainEmitter> },
};
} // namespace

const ParticleSimFunctionEntry_t *GetParticleEmitterFunctions( int *pCount )
{
	*pCount = int( sizeof( s_Emitters ) / sizeof( s_Emitters[ 0 ] ) );
	return s_Emitters;
}
