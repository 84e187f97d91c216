#pragma once
// Names a control point by number, or a named value by name. Only the identity is kept
// here; the tables and conversions that use it live with the control point state.

#include <cstdint>

struct ParticleParamID_t
{
	int32_t m_nNumber = -1; // control point 0 .. 63; -1 when named or none
	uint32_t m_nToken = 0;  // MurmurHash2 of the lower-cased name; 0 with number -1 means none
	const char *m_pName = nullptr; // lives as long as the process

	bool IsNone() const { return m_nNumber == -1 && m_nToken == 0; }
	bool IsNamed() const { return m_nNumber == -1 && m_nToken != 0; }
	bool operator==( const ParticleParamID_t &other ) const { return m_nNumber == other.m_nNumber && m_nToken == other.m_nToken; }
	bool operator!=( const ParticleParamID_t &other ) const { return !( *this == other ); }
};
