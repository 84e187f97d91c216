#pragma once
// Names a control point by number, or a named value by name. Only the identity is kept
// here; the tables and conversions that use it live with the control point state.

#include <cstddef>
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

	static ParticleParamID_t ControlPoint( int nNumber ) { return ParticleParamID_t{ nNumber, 0, nullptr }; }
	// The name is interned, so the identifier may outlive the text it was made from.
	static ParticleParamID_t Named( const char *pName );
	// The token of a name: MurmurHash2 of its lower-cased text, 0 for an empty name.
	static uint32_t TokenOf( const char *pName );
};

// Hash tables keyed by an identifier: Jenkins's integer hash of the number, with the
// token folded in.
struct ParticleParamIDHash_t
{
	size_t operator()( const ParticleParamID_t &id ) const
	{
		uint32_t h = uint32_t( id.m_nNumber );
		h = ( h + 0x7ed55d16 ) + ( h << 12 );
		h = ( h ^ 0xc761c23c ) ^ ( h >> 19 );
		h = ( h + 0x165667b1 ) + ( h << 5 );
		h = ( h + 0xd3a2646c ) ^ ( h << 9 );
		h = ( h + 0xfd7046c5 ) + ( h << 3 );
		h = ( h ^ 0xb55a4f09 ) ^ ( h >> 16 );
		return h ^ ( id.m_nToken + 0x9E3779B9 + ( h << 6 ) + ( h >> 2 ) );
	}
};
