#pragma once
// The random source of one collection tree. Each tree owns one, so trees step on
// different threads without sharing state, and the same seed replays the same run.

#include <cstdint>

class CParticleRandom
{
public:
	explicit CParticleRandom( uint64_t nSeed = 0 ) { Seed( nSeed ); }

	void Seed( uint64_t nSeed )
	{
		m_nState = 0;
		m_nIncrement = ( nSeed << 1u ) | 1u;
		Next();
		m_nState += 0x853c49e6748fea9bULL ^ nSeed;
		Next();
	}

	// PCG32: small state, good statistics, cheap enough for per-particle use.
	uint32_t Next()
	{
		uint64_t nOld = m_nState;
		m_nState = nOld * 6364136223846793005ULL + m_nIncrement;
		uint32_t nXorShifted = uint32_t( ( ( nOld >> 18u ) ^ nOld ) >> 27u );
		uint32_t nRot = uint32_t( nOld >> 59u );
		return ( nXorShifted >> nRot ) | ( nXorShifted << ( ( -nRot ) & 31 ) );
	}

	// In [0, 1).
	float NextFloat() { return float( Next() >> 8 ) * ( 1.0f / 16777216.0f ); }
	float RandomFloat( float flMin, float flMax ) { return flMin + ( flMax - flMin ) * NextFloat(); }
	int RandomInt( int nMin, int nMax ) { return nMax <= nMin ? nMin : nMin + int( Next() % uint32_t( nMax - nMin + 1 ) ); }

private:
	uint64_t m_nState = 0;
	uint64_t m_nIncrement = 1;
};

// A stateless random in [0, 1) for a pair of keys: the same particle and slot always
// give the same value, which is how per-particle constant randoms need no storage.
inline float ParticleHashFloat( uint32_t nA, uint32_t nB )
{
	uint32_t h = nA * 0x9E3779B1u ^ ( nB + 0x7F4A7C15u + ( nA << 6 ) + ( nA >> 2 ) );
	h ^= h >> 16;
	h *= 0x85EBCA6Bu;
	h ^= h >> 13;
	h *= 0xC2B2AE35u;
	h ^= h >> 16;
	return float( h >> 8 ) * ( 1.0f / 16777216.0f );
}
