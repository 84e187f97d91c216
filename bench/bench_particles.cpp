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
#include "benchparticleeffect.h"

namespace
{
constexpr float STEP = 1.0f / 60.0f;
constexpr int LIVE_PARTICLES = 100000;

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
