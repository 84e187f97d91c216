#include "core/console/concommandbase.h"

#include "core/console/consoleregistry.h"

ConCommandBase::ConCommandBase( const char *pName, const char *pHelp, int nFlags )
	: m_pName( pName ? pName : "" ), m_pHelp( pHelp ? pHelp : "" ), m_nFlags( nFlags )
{
}

void ConCommandBase::Register()
{
	m_bRegistered = ConsoleRegistry().Register( this );
}

void ConCommandBase::Unregister()
{
	if ( m_bRegistered )
		ConsoleRegistry().Unregister( this );
	m_bRegistered = false;
}
