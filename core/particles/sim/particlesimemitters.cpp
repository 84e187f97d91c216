// Emitters: how many particles are born in a step.

#include <algorithm>
#include <climits>
#include <cmath>

#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particlefunctionreader.h"
#include "core/particles/sim/particlesimfunctionlist.h"

namespace
{
// A count from a float: NaN and negatives are none, anything beyond an int is cut to the
// largest, so that no definition can make the conversion overflow.
int CountFromFloat( double flCount )
{
	if ( !( flCount > 0.0 ) )
		return 0;
	return flCount >= double( INT_MAX ) ? INT_MAX : int( flCount );
}

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

	int Emit( CParticleCollection &collection, ParticleEmitterState_t &state, double flTime, float flDt ) const override
	{
		float flDuration = m_EmissionDuration.EvaluateCollection( collection );
		double flWindowStart = std::max( flTime - double( flDt ), double( m_flStartTime ) );
		double flWindowEnd = flDuration > 0.0f ? std::min( flTime, double( m_flStartTime ) + double( flDuration ) ) : flTime;
		if ( !( flWindowEnd > flWindowStart ) )
			return 0;
		float flRate = m_EmitRate.EvaluateCollection( collection );
		if ( !( flRate > 0.0f ) )
			return 0;
		// Owed beyond any collection's room is owed no further: the sum stays finite.
		double flOwed = std::min( state.m_flAccumulated + double( flRate ) * ( flWindowEnd - flWindowStart ), 1e15 );
		// A hair of slack, so that a rate of one per frame isn't lost to float rounding.
		double flWhole = std::floor( flOwed + 1e-4 );
		state.m_flAccumulated = std::max( 0.0, flOwed - flWhole );
		int nEmit = CountFromFloat( flWhole );
		return m_nLimitPerUpdate >= 0 ? std::min( nEmit, m_nLimitPerUpdate ) : nEmit;
	}

	bool IsEmissionFinished( const ParticleEmitterState_t &, double flTime ) const override
	{
		// A literal duration is known ahead; anything else runs until stopped.
		return m_EmissionDuration.IsConstant() && m_EmissionDuration.m_flLiteralValue > 0.0f &&
			   flTime >= double( m_flStartTime ) + double( m_EmissionDuration.m_flLiteralValue );
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

	int Emit( CParticleCollection &collection, ParticleEmitterState_t &state, double flTime, float flDt ) const override
	{
		if ( flTime < double( m_flStartTime ) )
			return 0;
		int nTarget = CountFromFloat( std::round( double( m_Count.EvaluateCollection( collection ) ) ) );
		int nMissing = std::max( 0, std::min( nTarget, collection.Capacity() ) - collection.Count() );
		if ( m_flEmissionRate <= 0.0f )
			return nMissing;
		// A rate spreads the refill out.
		state.m_flAccumulated += double( m_flEmissionRate ) * double( flDt );
		int nAllowed = int( std::floor( state.m_flAccumulated + 1e-4 ) );
		int nEmit = std::min( nAllowed, nMissing );
		state.m_flAccumulated = std::max( 0.0, state.m_flAccumulated - double( nEmit ) );
		return nEmit;
	}

	bool IsEmissionFinished( const ParticleEmitterState_t &, double ) const override { return false; }

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

	int Emit( CParticleCollection &collection, ParticleEmitterState_t &state, double flTime, float ) const override
	{
		if ( state.m_bEmittedOnce || flTime < double( m_StartTime.EvaluateCollection( collection ) ) )
			return 0;
		// The burst may be spread over frames: the accumulator holds what is still owed.
		if ( state.m_flAccumulated <= 0.0 )
			state.m_flAccumulated = double( CountFromFloat( std::round( double( m_ParticlesToEmit.EvaluateCollection( collection ) ) ) ) );
		int nEmit = CountFromFloat( state.m_flAccumulated );
		if ( m_nMaxPerFrame >= 0 )
			nEmit = std::min( nEmit, m_nMaxPerFrame );
		state.m_flAccumulated -= double( nEmit );
		state.m_bEmittedOnce = state.m_flAccumulated <= 0.0;
		return nEmit;
	}

	bool IsEmissionFinished( const ParticleEmitterState_t &state, double ) const override { return state.m_bEmittedOnce; }

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
