#include "core/particles/sim/particlenamedvaluebindings.h"

#include "core/logging/logging.h"

int CHostNamedValueBindings::Declare( const ParticleNamedValueEntry_t &entry )
{
	int nExisting = Find( entry.m_ID.m_nToken );
	if ( nExisting >= 0 )
		return nExisting;
	int nSlot = m_Entries.AddToTail( entry );
	m_Entries[ nSlot ].m_bDeclared = true;
	m_SlotByToken[ entry.m_ID.m_nToken ] = nSlot;
	return nSlot;
}

int CHostNamedValueBindings::Find( uint32_t nToken ) const
{
	auto it = m_SlotByToken.find( nToken );
	return it == m_SlotByToken.end() ? -1 : it->second;
}

int CHostNamedValueBindings::Resolve( const char *pName, const char *pExpectedType )
{
	ParticleParamID_t id = ParticleParamID_t::Named( pName );
	if ( id.IsNone() )
		return -1;
	int nSlot = Find( id.m_nToken );
	if ( nSlot >= 0 )
		return nSlot;
	if ( !m_bSilent )
		Log_Warning( LOG_ZOL, "Variable '%s' is referenced but not declared in this system (%s). Adding a fallback now.\n", pName, m_SystemName.Get() );
	ParticleNamedValueEntry_t entry;
	entry.m_ID = id;
	entry.m_Type = pExpectedType;
	nSlot = m_Entries.AddToTail( entry );
	m_SlotByToken[ id.m_nToken ] = nSlot;
	return nSlot;
}
