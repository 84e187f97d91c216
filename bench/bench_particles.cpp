// The particle runtime on a realistic effect held at 100,000 live particles: a continuous
// emitter, seven initializers, eight operators and a sprite renderer whose draw data is
// read every frame. Reported as particle-function updates per second: each live particle
// passing through one operator or the renderer, and each newborn through one initializer.
// Goal: at least 100 million a second on one core. The threaded variant steps several
// such collections on the thread pool, as the manager does with effects.

#include <benchmark/benchmark.h>

#include <cstdio>
#include <memory>
#include <string>
#include <vector>

#include "core/containers/utlbuffer.h"
#include "core/particles/sim/iparticlecollection.h"
#include "core/particles/sim/particleruntimedefinition.h"
#include "core/threading/threadpool.h"

namespace
{
constexpr float STEP = 1.0f / 60.0f;
constexpr int LIVE_PARTICLES = 100000;

std::string EffectText( int nLiveParticles )
{
	// Lifetimes average one second, so the rate is the live count.
	return "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
		   "{ _class = \"CParticleSystemDefinition\"\n"
		   "  m_nMaxParticles = " +
		   std::to_string( nLiveParticles + nLiveParticles / 8 ) + "\n  m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = " +
		   std::to_string( nLiveParticles ) + ".0 } ]\n" + R"(
  m_Initializers = [
    { _class = "C_INIT_CreateWithinSphere" m_fRadiusMax = 20.0 m_fSpeedMin = 10.0 m_fSpeedMax = 40.0 },
    { _class = "C_INIT_RandomLifeTime" m_fLifetimeMin = 0.9 m_fLifetimeMax = 1.1 },
    { _class = "C_INIT_RandomRadius" m_flRadiusMin = 2.0 m_flRadiusMax = 6.0 },
    { _class = "C_INIT_RandomColor" m_ColorMin = [ 255, 120, 40, 255 ] m_ColorMax = [ 255, 200, 90, 255 ] },
    { _class = "C_INIT_RandomRotation" },
    { _class = "C_INIT_InitFloat" m_nOutputField = 5 m_InputValue = { m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMin = -90.0 m_flRandomMax = 90.0 } },
    { _class = "C_INIT_InitFloat" m_nOutputField = 7 m_InputValue = { m_nType = "PF_TYPE_RANDOM_UNIFORM" m_flRandomMin = 0.6 m_flRandomMax = 1.0 } },
  ]
  m_Operators = [
    { _class = "C_OP_BasicMovement" m_Gravity = [ 0.0, 0.0, -50.0 ] m_fDrag = 0.05 },
    { _class = "C_OP_Decay" },
    { _class = "C_OP_FadeInSimple" m_flFadeInTime = 0.1 },
    { _class = "C_OP_FadeOutSimple" m_flFadeOutTime = 0.4 },
    { _class = "C_OP_InterpolateRadius" m_flStartScale = 1.0 m_flEndScale = 0.2 },
    { _class = "C_OP_ColorInterpolate" m_ColorFade = [ 80, 20, 10, 255 ] },
    { _class = "C_OP_SpinUpdate" },
    { _class = "C_OP_SetFloat" m_nOutputField = 18 m_InputValue = { m_nType = "PF_TYPE_PARTICLE_AGE_NORMALIZED" m_nMapType = "PF_MAP_TYPE_REMAP" m_flOutput0 = 1.0 m_flOutput1 = 0.0 } },
  ]
  m_Renderers = [ { _class = "C_OP_RenderSprites" } ]
}
)";
}

ParticleDefinitionPtr_t CompileEffect( int nLiveParticles )
{
	std::string text = EffectText( nLiveParticles );
	CUtlBuffer buffer( text.data(), text.size() );
	CUtlString error;
	ParticleDefinitionPtr_t pDef = CompileParticleDefinition( &buffer, "bench", nullptr, &error );
	if ( !pDef )
		fprintf( stderr, "bench effect failed to compile: %s\n", error.Get() );
	return pDef;
}

// A collection run until births and deaths balance.
std::unique_ptr<IParticleCollection> WarmCollection( const ParticleDefinitionPtr_t &pDef, uint64_t nSeed )
{
	std::unique_ptr<IParticleCollection> pCollection = CreateParticleCollection( pDef, nSeed );
	for ( int i = 0; i < 90; ++i )
		pCollection->Simulate( STEP );
	return pCollection;
}

// Per step: every live particle through each operator and the renderer, each newborn
// through each initializer.
double UpdatesPerStep( const CParticleRuntimeDefinition &def, int nLive )
{
	double flPerParticle = double( def.GetFunctions( PARTICLE_FUNCTION_OPERATOR ).size() + def.GetFunctions( PARTICLE_FUNCTION_RENDERER ).size() );
	double flBirths = double( nLive ) * STEP; // one-second lifetimes
	return double( nLive ) * flPerParticle + flBirths * double( def.GetFunctions( PARTICLE_FUNCTION_INITIALIZER ).size() );
}

float ReadDrawData( const IParticleCollection &collection )
{
	ParticleDrawData_t data;
	collection.GetDrawData( 0, &data );
	return data.m_nCount > 0 ? data.m_pPosition[ 0 ][ data.m_nCount - 1 ] : 0.0f;
}

void BM_ParticleStepOneCore( benchmark::State &state )
{
	ParticleDefinitionPtr_t pDef = CompileEffect( LIVE_PARTICLES );
	if ( !pDef )
	{
		state.SkipWithError( "compile failed" );
		return;
	}
	std::unique_ptr<IParticleCollection> pCollection = WarmCollection( pDef, 1 );
	double flUpdates = 0.0;
	for ( auto _ : state )
	{
		pCollection->Simulate( STEP );
		benchmark::DoNotOptimize( ReadDrawData( *pCollection ) );
		flUpdates += UpdatesPerStep( *pDef, pCollection->GetActiveParticleCount( false ) );
	}
	state.counters[ "live" ] = double( pCollection->GetActiveParticleCount( false ) );
	state.counters[ "updates" ] = benchmark::Counter( flUpdates, benchmark::Counter::kIsRate );
}
BENCHMARK( BM_ParticleStepOneCore )->Unit( benchmark::kMillisecond )->UseRealTime();

// nCollections effects of 100,000 particles each, all stepped once per frame, either in
// turn on this thread or spread over the pool.
void StepMany( benchmark::State &state, bool bThreaded )
{
	int nCollections = int( state.range( 0 ) );
	ParticleDefinitionPtr_t pDef = CompileEffect( LIVE_PARTICLES );
	if ( !pDef )
	{
		state.SkipWithError( "compile failed" );
		return;
	}
	std::vector<std::unique_ptr<IParticleCollection>> collections;
	for ( int i = 0; i < nCollections; ++i )
		collections.push_back( WarmCollection( pDef, uint64_t( i + 1 ) ) );
	double flUpdates = 0.0;
	for ( auto _ : state )
	{
		auto step = [ &collections ]( int i ) {
			collections[ size_t( i ) ]->Simulate( STEP );
			benchmark::DoNotOptimize( ReadDrawData( *collections[ size_t( i ) ] ) );
		};
		if ( bThreaded )
			ParallelFor( nCollections, step );
		else
			for ( int i = 0; i < nCollections; ++i )
				step( i );
		for ( const auto &pCollection : collections )
			flUpdates += UpdatesPerStep( *pDef, pCollection->GetActiveParticleCount( false ) );
	}
	state.counters[ "updates" ] = benchmark::Counter( flUpdates, benchmark::Counter::kIsRate );
	state.counters[ "threads" ] = bThreaded ? double( ThreadPool().NumThreads() + 1 ) : 1.0;
}

void BM_ParticleStepManySerial( benchmark::State &state )
{
	StepMany( state, false );
}
void BM_ParticleStepManyThreaded( benchmark::State &state )
{
	StepMany( state, true );
}
BENCHMARK( BM_ParticleStepManySerial )->Arg( 4 )->Unit( benchmark::kMillisecond )->UseRealTime();
BENCHMARK( BM_ParticleStepManyThreaded )->Arg( 4 )->Unit( benchmark::kMillisecond )->UseRealTime();
} // namespace
