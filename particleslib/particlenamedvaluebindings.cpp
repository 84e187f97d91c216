#include "particleslib/particlenamedvaluebindings.h"

#include <cctype>

#include "particleslib/particleslogging.h"
#include "particleslib/particlenamedvalueref.h"

namespace
{
// Names compare without case, as their tokens do.
std::string LowerCaseKey( const char *pszName )
{
	std::string key( pszName ? pszName : "" );
	for ( char &c : key )
		c = static_cast<char>( std::tolower( static_cast<unsigned char>( c ) ) );
	return key;
}
} // namespace

int CParticleNamedValueBindings::Append( const char *pszName, const CPulseValueFullType &type )
{
	int nSlot = m_Entries.AddToTail();
	m_Names.AddToTail( CUtlString( pszName ) );
	// The names vector moves its strings when it grows; point entries at stable texts by
	// re-pointing them all, which stays cheap for the few variables a system has.
	for ( int i = 0; i < m_Entries.Count(); ++i )
		m_Entries[ i ].m_ID.m_pName = m_Names[ i ].Get();
	Entry_t &entry = m_Entries[ nSlot ];
	entry.m_ID.m_nNumber = -1;
	entry.m_ID.m_nToken = CParticleNamedValueRef::MakeToken( pszName );
	entry.m_Type = type;
	m_SlotByName.emplace( LowerCaseKey( pszName ), nSlot );
	m_TokenTypes.emplace( entry.m_ID.m_nToken, type.GetHash() );
	return nSlot;
}

int CParticleNamedValueBindings::AddDeclared( const char *pszName, const CPulseValueFullType &type )
{
	auto it = m_SlotByName.find( LowerCaseKey( pszName ) );
	if ( it != m_SlotByName.end() )
		return it->second;
	return Append( pszName, type );
}

int CParticleNamedValueBindings::Resolve( const char *pszName, const CPulseValueFullType &expectedType )
{
	auto it = m_SlotByName.find( LowerCaseKey( pszName ) );
	if ( it != m_SlotByName.end() )
		return it->second;
	if ( !m_bSilent )
	{
		LoggingSystem_Log( ParticlesLogChannel(), LS_WARNING, "Variable '%s' is referenced but not declared in this system (%s). Adding a fallback now.\n", pszName,
						   m_SystemName.Get() );
	}
	return Append( pszName, expectedType );
}

void CParticleNamedValueBindings::Bind( CParticleNamedValueRef &ref, const CPulseValueFullType &expectedType )
{
	ref.SetSlot( ref.IsEmpty() ? -1 : Resolve( ref.GetName(), expectedType ) );
}

bool CParticleNamedValueBindings::HasTokenWithType( uint32_t nToken, const CPulseValueFullType &type ) const
{
	return m_TokenTypes.count( { nToken, type.GetHash() } ) != 0;
}
