#include "core/particles/particlefunctiontype.h"

namespace
{
struct ParticleFunctionListInfo_t
{
	const char *m_pKey;
	const char *m_pWord;
};

// One table for keys and words so the clipboard, the file and the undo labels never disagree.
constexpr ParticleFunctionListInfo_t s_ListInfo[ PARTICLE_FUNCTION_LIST_COUNT ] = {
	{ "m_PreEmissionOperators", "Pre Emission Operator" },
	{ "m_Emitters", "Emitter" },
	{ "m_Initializers", "Initializer" },
	{ "m_Operators", "Operator" },
	{ "m_ForceGenerators", "ForceGenerator" },
	{ "m_Constraints", "Constraint" },
	{ "m_Renderers", "Renderer" },
	{ "m_Children", "Children" },
	{ "m_NamedValueLocals", "Variables" },
};
} // namespace

const char *GetParticleFunctionListKey( int nType )
{
	return IsParticleFunctionList( nType ) ? s_ListInfo[ nType ].m_pKey : "";
}

const char *GetParticleFunctionTypeWord( int nType )
{
	return IsParticleFunctionList( nType ) ? s_ListInfo[ nType ].m_pWord : "";
}
