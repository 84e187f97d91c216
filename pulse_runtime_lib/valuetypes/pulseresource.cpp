#include "pulse_runtime_lib/valuetypes/pulseresource.h"

namespace
{
std::atomic<IPulseResourceSystem *> s_pResourceSystem { nullptr };
}

CPulseResourceBinding::CPulseResourceBinding( const char *pName, CGlobalSymbol typeTag, IPulseResourceSystem *pOwner )
	: m_Name( pName ), m_TypeTag( typeTag ), m_pOwner( pOwner )
{
}

void CPulseResourceBinding::Release()
{
	if ( m_nRefCount.fetch_sub( 1, std::memory_order_acq_rel ) != 1 )
		return;
	if ( m_pOwner )
		m_pOwner->OnLastReferenceReleased( this );
	else
		delete this;
}

void PulseResource_SetSystem( IPulseResourceSystem *pSystem )
{
	s_pResourceSystem.store( pSystem );
}

IPulseResourceSystem *PulseResource_GetSystem()
{
	return s_pResourceSystem.load();
}

CPulseResourceBinding *PulseResource_Resolve( const char *pName, CGlobalSymbol typeTag )
{
	if ( !pName || !*pName )
		return nullptr;
	if ( IPulseResourceSystem *pSystem = PulseResource_GetSystem() )
		return pSystem->ResolveResource( pName, typeTag );
	return new CPulseResourceBinding( pName, typeTag, nullptr );
}
