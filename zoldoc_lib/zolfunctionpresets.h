#pragma once
// Old single-purpose initializers, offered as configurations of the general functions that
// replaced them: each preset adds its class and then writes its settings into the node.

#include "core/containers/utlvector.h"
#include "zoldoc_lib/zoldoc.h"

struct ZolFunctionPreset_t
{
	const char *m_pName;
	const char *m_pDescription;
	ParticleFunctionType_t m_eType;
	const char *m_pClass;
	// Run by AddFunction on the new node.
	CZolDoc::FunctionInitialiser_t m_fnInitialise;
};

// The presets in the order the picker shows them, ahead of the classes.
const CUtlVector<ZolFunctionPreset_t> &GetParticleFunctionPresets();
