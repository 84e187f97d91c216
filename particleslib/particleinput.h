#pragma once
// The root of the typed input values that particle functions carry. Inputs live as KV3
// tables in a definition and become objects while they are edited, converted or bound
// for a compile; these virtual operations are what a compile asks of each.

#include <cstdint>

#include "core/containers/utlvector.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transferobject.h"
#include "core/schema/schemadeclare.h"
#include "particleslib/controlpointusage.h"

class CSchemaClassInfo;
class CParticleNamedValueBindings;

// The "MGetKV3ClassDefaults" function of an input class: the table of a default-constructed
// instance, saved once (thread-safely) and kept for the life of the process.
template <typename C> void WriteParticleInputClassDefaults( KeyValues3 *pOut );

// Random constants that aren't per-particle have no place in the cache block.
constexpr int PARTICLE_INPUT_NO_CACHE_OFFSET = -2;

class CParticleInput
{
	SCHEMA_CLASS( CParticleInput, { "MGetKV3ClassDefaults", &WriteParticleInputClassDefaults<CParticleInput> } )
	virtual ~CParticleInput() = default;

	// The schema class of the dynamic class; null until RegisterParticleInputClasses ran.
	virtual const CSchemaClassInfo *GetClassBinding() const;
	// Appends one usage per control point the input reads.
	virtual void CollectControlPointUsage( CUtlVector<ControlPointUsage_t> & ) const {}
	// Stores the binding slot of each variable the input names.
	virtual void ResolveNamedValues( CParticleNamedValueBindings & ) {}
	// Takes bytes of the shared per-particle cache block from the running offset.
	virtual void AssignCacheOffset( int & ) {}
	virtual void MarkInitialized() { m_bInitialized = true; }
	virtual bool IsPerParticle() const { return false; }
	// One bit per particle attribute the input reads (current and initial values).
	virtual void GetReadAttributeMask( uint64_t *pMask ) const { *pMask = 0; }
	virtual void GetReadInitialAttributeMask( uint64_t *pMask ) const { *pMask = 0; }

	bool IsInitialized() const { return m_bInitialized; }

protected:
	bool m_bInitialized = false;
};

// The bit of an attribute index in a read mask; indexes wrap at 64.
inline uint64_t ParticleAttributeBit( int32_t nAttribute ) { return uint64_t( 1 ) << ( static_cast<uint32_t>( nAttribute ) & 63u ); }

template <typename C> void WriteParticleInputClassDefaults( KeyValues3 *pOut )
{
	static const KeyValues3 s_Defaults = [] {
		KeyValues3 defaults;
		SaveKV3Object( C{}, &defaults, nullptr );
		return defaults;
	}();
	pOut->CopyFrom( s_Defaults );
}
