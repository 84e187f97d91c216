#pragma once
// What a compiled definition tells of its parameters: per control point and named value,
// the usage kind, default offset and written flag of each component, the named value's
// type, and which functions read and write it (one bit per runtime index, per list).

#include <cstdint>
#include <unordered_map>

#include "core/containers/utlvector.h"
#include "core/mathlib/vector.h"
#include "core/particles/particlefunctiontype.h"
#include "core/particles/particleparamid.h"
#include "core/particles/sim/controlpointusage.h"
#include "core/text/utlstring.h"

struct ParticleParamUsage_t
{
	ParticleParamID_t m_ID;
	int m_nUsageKind[ 3 ] = {};
	float m_flDefaultOffset[ 3 ] = {};
	bool m_bWritten[ 3 ] = {};
	bool m_bHasDefaultOffset[ 3 ] = {};
	CUtlString m_NamedValueType;
	uint64_t m_nReadMask[ PARTICLE_FUNCTION_LIST_COUNT ] = {};
	uint64_t m_nWriteMask[ PARTICLE_FUNCTION_LIST_COUNT ] = {};

	bool operator==( const ParticleParamUsage_t &other ) const;
};

class CParticleDefinitionUsage
{
public:
	// Merges one use by the function with runtime index nIndex of list nList.
	void Add( int nList, int nIndex, const HostControlPointUsage_t &usage );
	// A child's whole usage counts as the use of the child's runtime index in list 7.
	void AddChild( int nIndex, const CParticleDefinitionUsage &child );

	void GetKeys( CUtlVector<ParticleParamID_t> *pKeys ) const;
	bool Has( const ParticleParamID_t &key ) const { return m_Records.count( key ) != 0; }
	const ParticleParamUsage_t *Find( const ParticleParamID_t &key ) const;
	bool IsDriven( const ParticleParamID_t &key ) const;
	// Bit 0 from the read mask, bit 1 from the write mask.
	int GetFunctionFlags( int nList, int nIndex, const ParticleParamID_t &key ) const;
	int GetUsageKind( const ParticleParamID_t &key, int nComponent ) const;
	bool GetDefaultOffset( const ParticleParamID_t &key, Vector *pOffset ) const;
	const char *GetNamedValueType( const ParticleParamID_t &key ) const;
	int Count() const { return int( m_Records.size() ); }

	// Exact comparison of every record; the id only tells which compile made it.
	bool operator==( const CParticleDefinitionUsage &other ) const;
	uint32_t m_nID = 0;

private:
	ParticleParamUsage_t &FindOrAdd( const ParticleParamID_t &key );
	std::unordered_map<ParticleParamID_t, ParticleParamUsage_t, ParticleParamIDHash_t> m_Records;
};
