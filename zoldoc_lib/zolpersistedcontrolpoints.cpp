#include "zoldoc_lib/zolpersistedcontrolpoints.h"

CZolPersistedControlPoints &CZolPersistedControlPoints::Get()
{
	static CZolPersistedControlPoints s_Table;
	return s_Table;
}

const CZolPersistedControlPoints::Entry_t *CZolPersistedControlPoints::Find( const ParticleParamID_t &key ) const
{
	auto it = m_Entries.find( key );
	return it == m_Entries.end() ? nullptr : &it->second;
}

void CZolPersistedControlPoints::Set( const ParticleParamID_t &key, const Vector &vPosition, const QAngle &angles )
{
	m_Entries[ key ] = Entry_t{ vPosition, angles };
}
