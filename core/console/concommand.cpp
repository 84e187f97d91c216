#include "core/console/concommand.h"

#include <utility>

ConCommand::ConCommand( const char *pName, CommandCallbackFn_t fnCallback, const char *pHelp, int nFlags )
	: ConCommandBase( pName, pHelp, nFlags ), m_fnCallback( std::move( fnCallback ) )
{
	Register();
}

ConCommand::~ConCommand()
{
	Unregister();
}

void ConCommand::Dispatch( const CCommand &args ) const
{
	if ( m_fnCallback )
		m_fnCallback( args );
}
