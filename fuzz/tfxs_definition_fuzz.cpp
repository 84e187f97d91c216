// Feeds arbitrary bytes through the whole path of a definition file: KV3 text, compile
// (with a tree of children), and a few steps of simulation. A refusal must say why; an
// accepted definition must stay within its budgets and give bounds that are in order.
// The run is kept small (particles and time bounded) so that a hang or a blow-up in the
// compile or the step shows up as one, not as a slow input.

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>

#include "core/containers/utlbuffer.h"
#include "core/particles/sim/particlecollection.h"
#include "core/particles/sim/particleruntimedefinition.h"

namespace
{
// What one input may allocate and step here; larger trees are fine but not stepped.
constexpr int64_t FUZZ_MAX_TREE_PARTICLES = 20000;
constexpr float FUZZ_MAX_PRESIMULATION_SECONDS = 0.5f;
constexpr int FUZZ_STEPS = 8;

[[noreturn]] void Stop( const char *pWhat, const char *pDetail )
{
	fprintf( stderr, "tfxs_definition_fuzz: %s\n%s\n", pWhat, pDetail );
	abort();
}

const char *const s_pLeafChild = "--- kv3 encoding=text:e21c7f3c-8a33-41c5-9977-a76d3a32aa0d format=tfxs63:a6e6a69e-52d3-4527-8b9c-ff3bb91aca3e ---\n"
								 "{ _class = \"CParticleSystemDefinition\" m_nMaxParticles = 8 m_Emitters = [ { _class = \"C_OP_ContinuousEmitter\" m_flEmitRate = 30.0 } ]"
								 " m_Operators = [ { _class = \"C_OP_BasicMovement\" }, { _class = \"C_OP_Decay\" } ] }\n";

void CheckBounds( const IParticleCollection &collection )
{
	if ( collection.AreBoundsValid() )
	{
		Vector vMin = collection.GetBoundsMin(), vMax = collection.GetBoundsMax();
		for ( int k = 0; k < 3; ++k )
		{
			if ( !std::isfinite( vMin[ k ] ) || !std::isfinite( vMax[ k ] ) || vMin[ k ] > vMax[ k ] )
				Stop( "bounds reported valid are not finite or not in order", collection.GetDefinition()->m_Name.Get() );
		}
	}
	if ( collection.GetActiveParticleCount( false ) > collection.GetAllocatedParticleCount() )
		Stop( "more particles than places", collection.GetDefinition()->m_Name.Get() );
	ParticleDrawData_t data;
	for ( int i = 0; i < collection.GetRendererCount(); ++i )
	{
		if ( !collection.GetDrawData( i, &data ) || data.m_nCount != collection.GetActiveParticleCount( false ) )
			Stop( "draw data that doesn't match the particles", collection.GetDefinition()->m_Name.Get() );
	}
	for ( const IParticleCollection *pChild = collection.GetFirstChild(); pChild; pChild = pChild->GetNextSibling() )
		CheckBounds( *pChild );
}
} // namespace

extern "C" int LLVMFuzzerTestOneInput( const uint8_t *pData, size_t nSize )
{
	// Children: the first reference compiles the input itself once more (its own children
	// then being a small fixed system), every later one shares that; a name beginning
	// "missing" is not found, so refusals of children are reached as well.
	ParticleDefinitionPtr_t pSelf, pLeaf;
	CUtlString leafError;
	{
		CUtlBuffer leaf( s_pLeafChild, strlen( s_pLeafChild ) );
		pLeaf = CompileParticleDefinition( &leaf, "leaf.tfxs", nullptr, &leafError );
		if ( !pLeaf )
			Stop( "the fixed child is refused", leafError.Get() );
	}
	ParticleChildResolver_t fnLeaf = [ & ]( const char *, CUtlString * ) { return pLeaf; };
	bool bCompilingSelf = false;
	ParticleChildResolver_t fnChild = [ & ]( const char *pPath, CUtlString *pError ) -> ParticleDefinitionPtr_t {
		if ( !strncmp( pPath, "missing", 7 ) )
		{
			pError->Format( "no such file '%s'", pPath );
			return nullptr;
		}
		if ( pSelf || bCompilingSelf )
			return pSelf ? pSelf : pLeaf;
		bCompilingSelf = true;
		CUtlBuffer again( pData, nSize );
		pSelf = CompileParticleDefinition( &again, "self.tfxs", fnLeaf, pError );
		bCompilingSelf = false;
		return pSelf;
	};

	CUtlBuffer buffer( pData, nSize );
	CUtlString error;
	ParticleDefinitionPtr_t pDef = CompileParticleDefinition( &buffer, "fuzz.tfxs", fnChild, &error );
	if ( !pDef )
	{
		if ( error.IsEmpty() )
			Stop( "a refusal without a reason", "" );
		return 0;
	}
	if ( pDef->m_nTreeSystems > PARTICLE_TREE_MAX_SYSTEMS || pDef->m_nTreeParticles > PARTICLE_TREE_MAX_PARTICLES )
		Stop( "a tree beyond the budget was accepted", "" );
	if ( !( pDef->m_flPreSimulationTime >= 0.0f && pDef->m_flPreSimulationTime <= PARTICLE_MAX_PRESIMULATION_SECONDS ) )
		Stop( "pre-simulation beyond its bound was accepted", "" );
	if ( pDef->m_nTreeParticles > FUZZ_MAX_TREE_PARTICLES || pDef->m_flPreSimulationTime > FUZZ_MAX_PRESIMULATION_SECONDS )
		return 0;
	for ( const ParticleChildInfo_t &child : pDef->m_Children )
	{
		if ( child.m_pDefinition->m_flPreSimulationTime > FUZZ_MAX_PRESIMULATION_SECONDS )
			return 0;
	}

	std::unique_ptr<IParticleCollection> pCollection = CreateParticleCollection( pDef, nSize );
	pCollection->SetControlPoint( 0, Vector( 1000.0f, -20.0f, 5.0f ) );
	for ( int i = 0; i < FUZZ_STEPS; ++i )
	{
		pCollection->Simulate( i == 3 ? 0.25f : 1.0f / 30.0f );
		CheckBounds( *pCollection );
	}
	pCollection->StopEmission( false, false, false, true );
	pCollection->Simulate( 1.0f / 30.0f );
	pCollection->IsFinished();
	CheckBounds( *pCollection );
	return 0;
}
