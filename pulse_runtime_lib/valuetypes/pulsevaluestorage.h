#pragma once
// The in-place layouts of the value types whose storage is more than a number or a
// pointer. Sizes and alignments are fixed: registers and variable blocks are laid out
// from them, and the static_asserts below hold them to the type table.
//
// Every layout is trivially relocatable (nothing points into itself), so array blocks
// may move their elements with memcpy when they grow.

#include <cstdint>

#include "core/mathlib/color.h"
#include "core/mathlib/qangle.h"
#include "core/mathlib/vector.h"
#include "core/mathlib/vector2d.h"
#include "core/mathlib/vector4d.h"
#include "pulse_runtime_lib/valuetypes/pulseinlinetext.h"

// PVAL_VEC2, PVAL_VEC3 (and PVAL_VEC3_WORLDSPACE), PVAL_QANGLE, PVAL_VEC4 and
// PVAL_COLOR_RGB store the foundation's Vector2D, Vector, QAngle, Vector4D and Color.
// A default colour value is all zero, alpha included (unlike a default Color).

// Position in an aligned 4-lane vector (the fourth lane is padding but is saved, so a
// value round-trips bit for bit), then the orientation quaternion.
struct alignas( 16 ) PulseTransform_t
{
	float m_Position[ 4 ] = {};
	float m_Orientation[ 4 ] = {};
};

constexpr uint32_t PULSE_INVALID_EHANDLE = 0xFFFFFFFFu;
constexpr uint32_t PULSE_INVALID_OPAQUE_HANDLE = 0xFFFFFFFFu;
constexpr uint32_t PULSE_INVALID_TEST_HANDLE = 0xFFFFFFFFu;
// Low word 0 (no panel), high word -1 (no serial).
constexpr uint64_t PULSE_INVALID_VISTARA_PANEL_HANDLE = 0xFFFFFFFF00000000ull;

// A playing sound's handle: word 0 is the guid, word 1 the channel (-1 for none).
struct PulseSoundEventGuid_t
{
	uint32_t m_nWords[ 5 ] = { 0, 0xFFFFFFFFu, 0, 0, 0 };
};

using PulseSoundEventName_t = CPulseInlineText<8>;

// A resource path with two 64-bit hashes of its normalised form (lower case, forward
// slashes). Equality compares the hashes, so "Models\A.tmsh" names "models/a.tmsh".
class CPulseResourceName
{
public:
	CPulseResourceName() = default;
	explicit CPulseResourceName( const char *pPath ) { Set( pPath ); }

	void Set( const char *pPath );
	const char *Get() const { return m_Path.Get(); }
	bool IsEmpty() const { return m_Path.IsEmpty(); }
	void Purge();

	uint64_t GetHash0() const { return m_nHash0; }
	uint64_t GetHash1() const { return m_nHash1; }
	bool IsSameResource( const CPulseResourceName &other ) const { return m_nHash0 == other.m_nHash0 && m_nHash1 == other.m_nHash1; }

private:
	uint64_t m_nHash0 = 0;
	uint64_t m_nHash1 = 0;
	CPulseInlineText<200> m_Path;
};

static_assert( sizeof( Vector2D ) == 8 && alignof( Vector2D ) == 4 );
static_assert( sizeof( Vector ) == 12 && alignof( Vector ) == 4 );
static_assert( sizeof( QAngle ) == 12 && alignof( QAngle ) == 4 );
static_assert( sizeof( Vector4D ) == 16 && alignof( Vector4D ) == 4 );
static_assert( sizeof( PulseTransform_t ) == 32 && alignof( PulseTransform_t ) == 16 );
static_assert( sizeof( Color ) == 4 && alignof( Color ) == 1 );
static_assert( sizeof( PulseSoundEventGuid_t ) == 20 && alignof( PulseSoundEventGuid_t ) == 4 );
static_assert( sizeof( PulseSoundEventName_t ) == 16 && alignof( PulseSoundEventName_t ) == 8 );
static_assert( sizeof( CPulseResourceName ) == 224 && alignof( CPulseResourceName ) == 8 );
