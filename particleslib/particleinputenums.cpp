#include "particleslib/particleinputenums.h"

#include <cerrno>
#include <climits>
#include <cstdlib>

#include "core/kv3/keyvalues3.h"
#include "core/kv3transfer/kv3transfernumbers.h"

namespace
{
struct MenuRow_t
{
	const char *m_pszLabel;
	const char *m_pszIcon;
};

// Indexed by value; PF_TYPE_COUNT ("Disabled") ends the table.
const MenuRow_t s_FloatTypeRows[] = {
	{ "Literal Float", "float_literal.png" },
	{ "Named Value", "float_named_value.png" },
	{ "Random Uniform", "float_random_uniform.png" },
	{ "Random Biased", "float_random_biased.png" },
	{ "Collection Time", "float_collection_age.png" },
	{ "EndCap Time", "float_endcap_age.png" },
	{ "CP Component", "float_cp.png" },
	{ "Time Since CP Changed", "float_cp_age.png" },
	{ "CP Speed", "float_cp_speed.png" },
	{ "Detail Level", "detail_level.png" },
	{ "Concurrent System Count", "concurrent_collections.png" },
	{ "Closest Camera Distance", "cam_closest_distance.png" },
	{ "Snapshot Element Count", "snapshot_count.png" },
	{ "Camera Distance", "cam_distance.png" },
	{ "Camera Dot Product", "cam_dot_product.png" },
	{ "Noise", "float_noise.png" },
	{ "Particle Age", "float_age.png" },
	{ "Particle Age (0-1)", "float_age_normalized.png" },
	{ "Per-Particle Float", "float_attr_float.png" },
	{ "Per-Particle Initial Float", "float_attr_float.png" },
	{ "Per-Particle Vector Component", "float_attr_vec.png" },
	{ "Per-Particle Initial Vector Component", "float_attr_vec.png" },
	{ "Per-Particle Speed", "float_speed.png" },
	{ "Per-Particle Number", "float_number.png" },
	{ "Per-Particle Number Percent of Total Count (0-1)", "float_number_normalized.png" },
	{ "Per-Particle Rope Segment Number", "segment_number.png" },
	{ "Per-Particle Rope Segment Number (0-1)", "segment_number_normalized.png" },
	{ "Per-Particle ScreenSpace Camera Distance", "cam_distance.png" },
	{ "Per-Particle ScreenSpace Camera Dot Product", "cam_dot_product.png" },
	{ "Disabled", "disabled.png" },
};
static_assert( sizeof( s_FloatTypeRows ) / sizeof( s_FloatTypeRows[ 0 ] ) == PF_TYPE_COUNT + 1 );

const MenuRow_t s_MapTypeRows[] = {
	{ "Direct Value Copy", "float_map_direct.png" },
	{ "Multiply", "float_map_mult.png" },
	{ "Linear Remap", "float_map_remap.png" },
	{ "Biased Remap", "float_map_remap_biased.png" },
	{ "Curve", "float_map_curve.png" },
	{ "Notched", "float_map_notched.png" },
	{ "Round", "float_map_rounded.png" },
};
static_assert( sizeof( s_MapTypeRows ) / sizeof( s_MapTypeRows[ 0 ] ) == PF_MAP_TYPE_COUNT );

template <size_t N> const MenuRow_t *FindRow( const MenuRow_t ( &rows )[ N ], int nValue )
{
	return nValue >= 0 && static_cast<size_t>( nValue ) < N ? &rows[ nValue ] : nullptr;
}
} // namespace

const char *GetParticleFloatTypeMenuLabel( int nType )
{
	const MenuRow_t *pRow = FindRow( s_FloatTypeRows, nType );
	return pRow ? pRow->m_pszLabel : "";
}

const char *GetParticleFloatTypeIcon( int nType )
{
	const MenuRow_t *pRow = FindRow( s_FloatTypeRows, nType );
	return pRow ? pRow->m_pszIcon : "";
}

const char *GetParticleFloatMapTypeMenuLabel( int nMapType )
{
	const MenuRow_t *pRow = FindRow( s_MapTypeRows, nMapType );
	return pRow ? pRow->m_pszLabel : "";
}

const char *GetParticleFloatMapTypeIcon( int nMapType )
{
	const MenuRow_t *pRow = FindRow( s_MapTypeRows, nMapType );
	return pRow ? pRow->m_pszIcon : "";
}

int32_t KV3ReadParticleInputEnum( const SchemaEnumDesc_t &desc, const KeyValues3 *pValue, CKV3TransferLoadContext *pContext )
{
	if ( !pValue || pValue->IsNull() )
		return 0;
	if ( pValue->IsString() )
	{
		const char *pszText = pValue->GetString();
		for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
		{
			if ( strcasecmp( enumerator.m_pszName, pszText ) == 0 )
				return static_cast<int32_t>( enumerator.m_nValue );
		}
		// Hand-written files sometimes hold the number as text.
		errno = 0;
		long long nValue = std::strtoll( pszText, nullptr, 10 );
		if ( errno != 0 || nValue < INT32_MIN || nValue > INT32_MAX )
			return 0;
		return static_cast<int32_t>( nValue );
	}
	return KV3TransferReadInteger<int32_t>( pContext, pValue );
}

void KV3WriteParticleInputEnum( const SchemaEnumDesc_t &desc, int32_t nValue, KeyValues3 *pValue )
{
	for ( const SchemaEnumeratorDesc_t &enumerator : desc.m_Enumerators )
	{
		if ( enumerator.m_nValue == nValue )
		{
			pValue->SetString( enumerator.m_pszName );
			return;
		}
	}
	pValue->SetInt( nValue );
}
