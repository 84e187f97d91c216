#include "pulse_runtime_lib/cells/pulsefunctionbinding.h"

#include <cstring>

namespace
{
std::vector<const PulseFunctionBinding_t *> &Registry()
{
	static std::vector<const PulseFunctionBinding_t *> s_Registry;
	return s_Registry;
}

int FindParam( const std::vector<PulseFunctionParam_t> &params, const char *pName )
{
	for ( size_t i = 0; i < params.size(); ++i )
	{
		if ( strcmp( params[ i ].m_pName, pName ) == 0 )
			return int( i );
	}
	return -1;
}
} // namespace

int PulseFunctionBinding_t::FindInput( const char *pName ) const
{
	return FindParam( m_Inputs, pName );
}

int PulseFunctionBinding_t::FindOutput( const char *pName ) const
{
	return FindParam( m_Outputs, pName );
}

CPulseFunctionRegistrar::CPulseFunctionRegistrar( const PulseFunctionBinding_t *pBinding )
{
	Registry().push_back( pBinding );
}

const PulseFunctionBinding_t *PulseFunctions_Find( const char *pClassName, const char *pMethodName )
{
	for ( const PulseFunctionBinding_t *pBinding : Registry() )
	{
		if ( strcmp( pBinding->m_pClassName, pClassName ) == 0 && strcmp( pBinding->m_pMethodName, pMethodName ) == 0 )
			return pBinding;
	}
	return nullptr;
}

const PulseFunctionBinding_t *PulseFunctions_FindLibrary( const char *pName )
{
	const char *pSeparator = strstr( pName, "::" );
	const PulseFunctionBinding_t *pFound = nullptr;
	for ( const PulseFunctionBinding_t *pBinding : Registry() )
	{
		if ( !pBinding->IsLibrary() )
			continue;
		if ( pSeparator )
		{
			size_t nClassLength = size_t( pSeparator - pName );
			if ( strlen( pBinding->m_pClassName ) == nClassLength && strncmp( pBinding->m_pClassName, pName, nClassLength ) == 0 &&
				 strcmp( pBinding->m_pMethodName, pSeparator + 2 ) == 0 )
				return pBinding;
		}
		else if ( strcmp( pBinding->m_pMethodName, pName ) == 0 )
		{
			if ( pFound )
				return nullptr; // ambiguous without its library
			pFound = pBinding;
		}
	}
	return pFound;
}

const std::vector<const PulseFunctionBinding_t *> &PulseFunctions_GetAll()
{
	return Registry();
}
