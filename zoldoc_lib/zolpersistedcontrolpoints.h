#pragma once
// The control points the user has pinned: each keeps its transform across sessions and
// configurations for as long as the process runs. Nothing stores the table on disk.

#include <unordered_map>

#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/particles/particleparamid.h"

class CZolPersistedControlPoints
{
public:
	struct Entry_t
	{
		Vector m_vPosition;
		QAngle m_Angles;
	};

	// The one table of the process.
	static CZolPersistedControlPoints &Get();

	bool IsPersisted( const ParticleParamID_t &key ) const { return m_Entries.count( key ) != 0; }
	const Entry_t *Find( const ParticleParamID_t &key ) const;
	void Set( const ParticleParamID_t &key, const Vector &vPosition, const QAngle &angles );
	void Remove( const ParticleParamID_t &key ) { m_Entries.erase( key ); }
	void Clear() { m_Entries.clear(); }
	const std::unordered_map<ParticleParamID_t, Entry_t, ParticleParamIDHash_t> &GetEntries() const { return m_Entries; }

private:
	std::unordered_map<ParticleParamID_t, Entry_t, ParticleParamIDHash_t> m_Entries;
};
