#include "core/particles/sim/particledefinitionusage.h"

#include <cstring>

bool ParticleParamUsage_t::operator==( const ParticleParamUsage_t &other ) const
{
	return m_ID == other.m_ID && memcmp( m_nUsageKind, other.m_nUsageKind, sizeof( m_nUsageKind ) ) == 0 &&
		   memcmp( m_flDefaultOffset, other.m_flDefaultOffset, sizeof( m_flDefaultOffset ) ) == 0 &&
		   memcmp( m_bWritten, other.m_bWritten, sizeof( m_bWritten ) ) == 0 &&
		   memcmp( m_bHasDefaultOffset, other.m_bHasDefaultOffset, sizeof( m_bHasDefaultOffset ) ) == 0 &&
		   strcmp( m_NamedValueType.Get(), other.m_NamedValueType.Get() ) == 0 && memcmp( m_nReadMask, other.m_nReadMask, sizeof( m_nReadMask ) ) == 0 &&
		   memcmp( m_nWriteMask, other.m_nWriteMask, sizeof( m_nWriteMask ) ) == 0;
}

ParticleParamUsage_t &CParticleDefinitionUsage::FindOrAdd( const ParticleParamID_t &key )
{
	auto it = m_Records.find( key );
	if ( it != m_Records.end() )
		return it->second;
	ParticleParamUsage_t &record = m_Records[ key ];
	record.m_ID = key;
	return record;
}

void CParticleDefinitionUsage::Add( int nList, int nIndex, const HostControlPointUsage_t &usage )
{
	if ( usage.m_ID.IsNone() || !IsParticleFunctionList( nList ) )
		return;
	ParticleParamUsage_t &record = FindOrAdd( usage.m_ID );
	uint64_t nBit = nIndex >= 0 && nIndex < 64 ? uint64_t( 1 ) << nIndex : 0;
	if ( usage.m_nAccess & CONTROL_POINT_ACCESS_READ )
		record.m_nReadMask[ nList ] |= nBit;
	if ( usage.m_nAccess & ( CONTROL_POINT_ACCESS_WRITE | CONTROL_POINT_ACCESS_WRITE_SPECIAL ) )
		record.m_nWriteMask[ nList ] |= nBit;
	if ( record.m_NamedValueType.IsEmpty() && !usage.m_ValueType.IsEmpty() )
		record.m_NamedValueType = usage.m_ValueType;
	bool bHasDefault = usage.m_flDefault[ 0 ] != 0.0f || usage.m_flDefault[ 1 ] != 0.0f || usage.m_flDefault[ 2 ] != 0.0f;
	for ( int c = 0; c < 3; ++c )
	{
		if ( usage.m_nComponent >= 0 && usage.m_nComponent != c )
			continue;
		// The first use that names a kind decides it; later readers don't change how the point is edited.
		if ( record.m_nUsageKind[ c ] == 0 )
			record.m_nUsageKind[ c ] = usage.m_nUsageKind;
		if ( usage.m_nAccess & ( CONTROL_POINT_ACCESS_WRITE | CONTROL_POINT_ACCESS_WRITE_SPECIAL ) )
			record.m_bWritten[ c ] = true;
		if ( bHasDefault && !record.m_bHasDefaultOffset[ c ] )
		{
			record.m_bHasDefaultOffset[ c ] = true;
			record.m_flDefaultOffset[ c ] = usage.m_flDefault[ c ];
		}
	}
}

void CParticleDefinitionUsage::AddChild( int nIndex, const CParticleDefinitionUsage &child )
{
	uint64_t nBit = nIndex >= 0 && nIndex < 64 ? uint64_t( 1 ) << nIndex : 0;
	for ( const auto &[ key, childRecord ] : child.m_Records )
	{
		ParticleParamUsage_t &record = FindOrAdd( key );
		bool bReads = false, bWrites = false;
		for ( int nList = 0; nList < PARTICLE_FUNCTION_LIST_COUNT; ++nList )
		{
			bReads |= childRecord.m_nReadMask[ nList ] != 0;
			bWrites |= childRecord.m_nWriteMask[ nList ] != 0;
		}
		if ( bReads )
			record.m_nReadMask[ PARTICLE_FUNCTION_CHILDREN ] |= nBit;
		if ( bWrites )
			record.m_nWriteMask[ PARTICLE_FUNCTION_CHILDREN ] |= nBit;
		if ( record.m_NamedValueType.IsEmpty() )
			record.m_NamedValueType = childRecord.m_NamedValueType;
		for ( int c = 0; c < 3; ++c )
		{
			if ( record.m_nUsageKind[ c ] == 0 )
				record.m_nUsageKind[ c ] = childRecord.m_nUsageKind[ c ];
			if ( !record.m_bHasDefaultOffset[ c ] && childRecord.m_bHasDefaultOffset[ c ] )
			{
				record.m_bHasDefaultOffset[ c ] = true;
				record.m_flDefaultOffset[ c ] = childRecord.m_flDefaultOffset[ c ];
			}
		}
	}
}

void CParticleDefinitionUsage::GetKeys( CUtlVector<ParticleParamID_t> *pKeys ) const
{
	pKeys->RemoveAll();
	for ( const auto &entry : m_Records )
		pKeys->AddToTail( entry.first );
}

const ParticleParamUsage_t *CParticleDefinitionUsage::Find( const ParticleParamID_t &key ) const
{
	auto it = m_Records.find( key );
	return it == m_Records.end() ? nullptr : &it->second;
}

bool CParticleDefinitionUsage::IsDriven( const ParticleParamID_t &key ) const
{
	const ParticleParamUsage_t *pRecord = Find( key );
	return pRecord && pRecord->m_bWritten[ 0 ] && pRecord->m_bWritten[ 1 ] && pRecord->m_bWritten[ 2 ];
}

int CParticleDefinitionUsage::GetFunctionFlags( int nList, int nIndex, const ParticleParamID_t &key ) const
{
	const ParticleParamUsage_t *pRecord = Find( key );
	if ( !pRecord || !IsParticleFunctionList( nList ) || nIndex < 0 || nIndex >= 64 )
		return 0;
	uint64_t nBit = uint64_t( 1 ) << nIndex;
	return ( ( pRecord->m_nReadMask[ nList ] & nBit ) ? 1 : 0 ) | ( ( pRecord->m_nWriteMask[ nList ] & nBit ) ? 2 : 0 );
}

int CParticleDefinitionUsage::GetUsageKind( const ParticleParamID_t &key, int nComponent ) const
{
	const ParticleParamUsage_t *pRecord = Find( key );
	return pRecord && nComponent >= 0 && nComponent < 3 ? pRecord->m_nUsageKind[ nComponent ] : 0;
}

bool CParticleDefinitionUsage::GetDefaultOffset( const ParticleParamID_t &key, Vector *pOffset ) const
{
	const ParticleParamUsage_t *pRecord = Find( key );
	if ( !pRecord || !( pRecord->m_bHasDefaultOffset[ 0 ] || pRecord->m_bHasDefaultOffset[ 1 ] || pRecord->m_bHasDefaultOffset[ 2 ] ) )
		return false;
	for ( int c = 0; c < 3; ++c )
		( *pOffset )[ c ] = pRecord->m_bHasDefaultOffset[ c ] ? pRecord->m_flDefaultOffset[ c ] : 0.0f;
	return true;
}

const char *CParticleDefinitionUsage::GetNamedValueType( const ParticleParamID_t &key ) const
{
	const ParticleParamUsage_t *pRecord = Find( key );
	return pRecord ? pRecord->m_NamedValueType.Get() : "";
}

bool CParticleDefinitionUsage::operator==( const CParticleDefinitionUsage &other ) const
{
	if ( m_Records.size() != other.m_Records.size() )
		return false;
	for ( const auto &[ key, record ] : m_Records )
	{
		const ParticleParamUsage_t *pOther = other.Find( key );
		if ( !pOther || !( *pOther == record ) )
			return false;
	}
	return true;
}
