#include "pulsedoc_lib/model/pulsedocnodetype.h"

#include <cstring>

namespace
{
std::vector<const PulseDocNodeTypeInfo_t *> &Registry()
{
	static std::vector<const PulseDocNodeTypeInfo_t *> s_Registry;
	return s_Registry;
}
} // namespace

CPulseDocNodeTypeRegistrar::CPulseDocNodeTypeRegistrar( const PulseDocNodeTypeInfo_t *pInfo )
{
	Registry().push_back( pInfo );
}

const PulseDocNodeTypeInfo_t *PulseDoc_FindNodeType( const char *pClassName )
{
	for ( const PulseDocNodeTypeInfo_t *pInfo : Registry() )
	{
		if ( strcmp( pInfo->m_pClassName, pClassName ) == 0 )
			return pInfo;
	}
	return nullptr;
}

CPulseDocNode *PulseDoc_CreateNode( const char *pClassName )
{
	const PulseDocNodeTypeInfo_t *pInfo = PulseDoc_FindNodeType( pClassName );
	return pInfo ? pInfo->m_pfnCreate() : nullptr;
}

const std::vector<const PulseDocNodeTypeInfo_t *> &PulseDoc_GetNodeTypes()
{
	return Registry();
}
