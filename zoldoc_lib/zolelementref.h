#pragma once
// A node named by position. Node objects don't survive an undo, so selection and every
// cross-reference hold these pairs; a pair that no longer resolves is simply ignored.

#include <cstdint>

#include "core/particles/particlefunctiontype.h"

struct ZolElementRef_t
{
	int32_t m_nType = PARTICLE_FUNCTION_ROOT;
	int32_t m_nIndex = -1;

	// { 9, 0 }: the root, which the user knows as base properties.
	static constexpr ZolElementRef_t Root() { return { PARTICLE_FUNCTION_ROOT, 0 }; }
	// { 9, -1 }: nothing.
	static constexpr ZolElementRef_t None() { return { PARTICLE_FUNCTION_ROOT, -1 }; }

	bool IsRoot() const { return m_nType == PARTICLE_FUNCTION_ROOT && m_nIndex == 0; }
	bool operator==( const ZolElementRef_t &other ) const { return m_nType == other.m_nType && m_nIndex == other.m_nIndex; }
	bool operator!=( const ZolElementRef_t &other ) const { return !( *this == other ); }
};
