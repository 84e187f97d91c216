#pragma once
// The KV3 form of literal particle inputs, for the defaults of input fields. The input
// classes live in a library that core can't see, so their literal tables are written here.

#include "core/kv3/keyvalues3.h"
#include "core/mathlib/vector.h"

// { m_nType = "PF_TYPE_LITERAL" m_flLiteralValue = flValue }
KeyValues3 ParticleFloatLiteral( float flValue );
// { m_nType = "PVEC_TYPE_LITERAL" m_vLiteralValue = [ x, y, z ] }
KeyValues3 ParticleVecLiteral( const Vector &vValue );
