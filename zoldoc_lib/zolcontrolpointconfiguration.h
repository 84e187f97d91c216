#pragma once
// One named preview setup of the root: which control points are driven how, and the
// preview state. Kept in its file form; only the name is read here.

#include "core/kv3/keyvalues3.h"

struct ZolControlPointConfiguration_t
{
	const char *GetName() const { return m_KV3.GetMemberString( "m_name" ); }

	KeyValues3 m_KV3; // m_name, m_drivers, m_previewState
};
