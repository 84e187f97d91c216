#include "core/particles/sim/particlemanagertraits.h"

#include <algorithm>

#include "core/kv3/keyvalues3.h"
#include "core/particles/sim/particlekv3read.h"

using namespace ParticleKV3;

void ReadParticleManagerTraits( const KeyValues3 *pRoot, ParticleManagerTraits_t *pTraits )
{
	pTraits->m_bScreenSpaceEffect = ReadBool( Member( pRoot, "m_bScreenSpaceEffect" ), false );
	pTraits->m_flCullRadius = std::max( 0.0f, ReadFloat( Member( pRoot, "m_flCullRadius" ), 0.0f ) );
	pTraits->m_flCullFillCost = ReadFloat( Member( pRoot, "m_flCullFillCost" ), 1.0f );
	pTraits->m_nCullControlPoint = std::clamp( ReadInt( Member( pRoot, "m_nCullControlPoint" ), 0 ), 0, 63 );
	const KeyValues3 *pFallback = Member( pRoot, "m_hFallback" );
	pTraits->m_Fallback = pFallback && pFallback->IsString() ? pFallback->GetString() : "";
	pTraits->m_nFallbackMaxCount = ReadInt( Member( pRoot, "m_nFallbackMaxCount" ), -1 );
	pTraits->m_flMaxDrawDistance = ReadFloat( Member( pRoot, "m_flMaxDrawDistance" ), 100000.0f );
	pTraits->m_flAggregateRadius = std::max( 0.0f, ReadFloat( Member( pRoot, "m_flAggregateRadius" ), 0.0f ) );
	pTraits->m_nAggregationMinAvailableParticles = std::max( 0, ReadInt( Member( pRoot, "m_nAggregationMinAvailableParticles" ), 0 ) );
	pTraits->m_bShouldBatch = ReadBool( Member( pRoot, "m_bShouldBatch" ), false );
	pTraits->m_nGroupID = ReadInt( Member( pRoot, "m_nGroupID" ), 0 );
}
