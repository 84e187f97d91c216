#pragma once
// An 8-bit-per-channel colour with alpha.

#include <cstdint>

class Color
{
public:
	constexpr Color() = default;
	constexpr Color( int nR, int nG, int nB, int nA = 255 )
		: m_Channels{ static_cast<uint8_t>( nR ), static_cast<uint8_t>( nG ), static_cast<uint8_t>( nB ), static_cast<uint8_t>( nA ) } {}

	int r() const { return m_Channels[ 0 ]; }
	int g() const { return m_Channels[ 1 ]; }
	int b() const { return m_Channels[ 2 ]; }
	int a() const { return m_Channels[ 3 ]; }
	void SetColor( int nR, int nG, int nB, int nA = 255 ) { *this = Color( nR, nG, nB, nA ); }

	uint8_t &operator[]( int i ) { return m_Channels[ i ]; }
	uint8_t operator[]( int i ) const { return m_Channels[ i ]; }
	// Packed as 0xAABBGGRR so that two colours compare as one 32-bit value.
	uint32_t GetRawColor() const { return uint32_t( m_Channels[ 0 ] ) | uint32_t( m_Channels[ 1 ] ) << 8 | uint32_t( m_Channels[ 2 ] ) << 16 | uint32_t( m_Channels[ 3 ] ) << 24; }
	bool operator==( const Color &other ) const { return GetRawColor() == other.GetRawColor(); }

private:
	uint8_t m_Channels[ 4 ] = { 0, 0, 0, 255 };
};
