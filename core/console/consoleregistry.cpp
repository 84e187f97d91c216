#include "core/console/consoleregistry.h"

#include "core/console/concommand.h"
#include "core/console/convar.h"
#include "core/logging/logging.h"
#include "core/platform/platformmode.h"
#include "core/text/strtools.h"

CConsoleRegistry &ConsoleRegistry()
{
	static CConsoleRegistry *s_pRegistry = new CConsoleRegistry;
	return *s_pRegistry;
}

bool CConsoleRegistry::CaseInsensitiveLess_t::operator()( const std::string &a, const std::string &b ) const
{
	return V_stricmp_fast( a.c_str(), b.c_str() ) < 0;
}

bool CConsoleRegistry::Register( ConCommandBase *pCommand )
{
	if ( !pCommand || !*pCommand->GetName() )
		return false;
	bool bAdded;
	{
		std::lock_guard<std::mutex> lock( m_Mutex );
		bAdded = m_Commands.emplace( pCommand->GetName(), pCommand ).second;
	}
	if ( !bAdded )
		LoggingSystem_Log( LOG_CONSOLE, LS_WARNING, "Console: \"%s\" is already registered; the second one is ignored.\n", pCommand->GetName() );
	return bAdded;
}

void CConsoleRegistry::Unregister( ConCommandBase *pCommand )
{
	if ( !pCommand )
		return;
	std::lock_guard<std::mutex> lock( m_Mutex );
	auto it = m_Commands.find( pCommand->GetName() );
	if ( it != m_Commands.end() && it->second == pCommand )
		m_Commands.erase( it );
}

ConCommandBase *CConsoleRegistry::Find( const char *pName ) const
{
	std::lock_guard<std::mutex> lock( m_Mutex );
	auto it = m_Commands.find( pName ? pName : "" );
	return it == m_Commands.end() ? nullptr : it->second;
}

ConVar *CConsoleRegistry::FindVar( const char *pName ) const
{
	ConCommandBase *pCommand = Find( pName );
	return pCommand && !pCommand->IsCommand() ? static_cast<ConVar *>( pCommand ) : nullptr;
}

ConCommand *CConsoleRegistry::FindCommand( const char *pName ) const
{
	ConCommandBase *pCommand = Find( pName );
	return pCommand && pCommand->IsCommand() ? static_cast<ConCommand *>( pCommand ) : nullptr;
}

bool CConsoleRegistry::Execute( const char *pText, CUtlString *pError )
{
	if ( pError )
		pError->Clear();
	bool bAllOk = true;
	std::string command;
	bool bQuoted = false;
	const char *p = pText ? pText : "";
	while ( true )
	{
		char c = *p;
		bool bComment = !bQuoted && c == '/' && p[ 1 ] == '/';
		if ( c == 0 || bComment || ( !bQuoted && ( c == ';' || c == '\n' ) ) )
		{
			if ( !ExecuteOne( command.c_str(), pError ) )
				bAllOk = false;
			command.clear();
			if ( bComment )
			{
				while ( *p && *p != '\n' )
					++p;
				c = *p;
			}
			if ( c == 0 )
				break;
			++p;
			continue;
		}
		if ( c == '"' )
			bQuoted = !bQuoted;
		command += c;
		++p;
	}
	return bAllOk;
}

bool CConsoleRegistry::ExecuteOne( const char *pCommandText, CUtlString *pError )
{
	CCommand args;
	if ( !args.Tokenize( pCommandText ) )
		return true; // blank or comment only

	auto Fail = [ & ]( const char *pFormat, const char *pName ) {
		if ( pError )
		{
			pError->AppendFormat( pFormat, pName );
			pError->Append( '\n' );
		}
		return false;
	};

	ConCommandBase *pCommand = Find( args[ 0 ] );
	if ( !pCommand )
		return Fail( "Unknown command \"%s\"", args[ 0 ] );
	if ( pCommand->IsCommand() )
	{
		static_cast<ConCommand *>( pCommand )->Dispatch( args );
		return true;
	}

	ConVar *pVar = static_cast<ConVar *>( pCommand );
	if ( args.ArgC() == 1 )
	{
		CUtlString description;
		Describe( pVar, &description );
		LoggingSystem_LogDirect( LOG_CONSOLE, LS_MESSAGE, description.Get() );
		return true;
	}
	if ( pVar->IsFlagSet( FCVAR_READONLY ) )
		return Fail( "\"%s\" is read-only", pVar->GetName() );
	pVar->SetValue( args.ArgC() == 2 ? args[ 1 ] : args.ArgS() );
	return true;
}

std::vector<ConCommandBase *> CConsoleRegistry::GetAll() const
{
	std::lock_guard<std::mutex> lock( m_Mutex );
	std::vector<ConCommandBase *> all;
	all.reserve( m_Commands.size() );
	for ( const auto &entry : m_Commands )
		all.push_back( entry.second );
	return all;
}

void CConsoleRegistry::ListAll( CUtlString *pText, const char *pPrefix ) const
{
	if ( !pText )
		return;
	bool bCustomer = Plat_IsRunningOnCustomerMachine();
	for ( ConCommandBase *pCommand : GetAll() )
	{
		if ( pCommand->IsFlagSet( FCVAR_HIDDEN ) || ( bCustomer && pCommand->IsFlagSet( FCVAR_DEVELOPMENTONLY ) ) )
			continue;
		if ( pPrefix && !V_StringHasPrefix_fast( pCommand->GetName(), pPrefix ) )
			continue;
		const char *pValue = pCommand->IsCommand() ? "cmd" : static_cast<ConVar *>( pCommand )->GetString();
		pText->AppendFormat( "%-40s : %-8s : %s\n", pCommand->GetName(), pValue, pCommand->GetHelpText() );
	}
}

void CConsoleRegistry::Describe( const ConCommandBase *pCommand, CUtlString *pText ) const
{
	if ( !pCommand || !pText )
		return;
	if ( pCommand->IsCommand() )
	{
		pText->AppendFormat( "\"%s\"\n", pCommand->GetName() );
	}
	else
	{
		const ConVar *pVar = static_cast<const ConVar *>( pCommand );
		pText->AppendFormat( "\"%s\" = \"%s\" ( def. \"%s\" )", pVar->GetName(), pVar->GetString(), pVar->GetDefault() );
		float flBound;
		if ( pVar->GetMin( &flBound ) )
			pText->AppendFormat( " min. %g", double( flBound ) );
		if ( pVar->GetMax( &flBound ) )
			pText->AppendFormat( " max. %g", double( flBound ) );
		pText->Append( '\n' );
	}
	if ( *pCommand->GetHelpText() )
		pText->AppendFormat( " - %s\n", pCommand->GetHelpText() );
}

// Built in, so every tool can see what it has.
static ConCommand s_CvarList(
	"cvarlist",
	[]( const CCommand &args ) {
		CUtlString text;
		ConsoleRegistry().ListAll( &text, args.ArgC() > 1 ? args[ 1 ] : nullptr );
		LoggingSystem_LogDirect( LOG_CONSOLE, LS_MESSAGE, text.Get() );
	},
	"Lists console variables and commands, optionally those starting with a prefix." );

static ConCommand s_Help(
	"help",
	[]( const CCommand &args ) {
		if ( args.ArgC() < 2 )
		{
			LoggingSystem_Log( LOG_CONSOLE, LS_MESSAGE, "Usage: help <variable or command>\n" );
			return;
		}
		ConCommandBase *pCommand = ConsoleRegistry().Find( args[ 1 ] );
		if ( !pCommand )
		{
			LoggingSystem_Log( LOG_CONSOLE, LS_MESSAGE, "help: no variable or command named \"%s\"\n", args[ 1 ] );
			return;
		}
		CUtlString text;
		ConsoleRegistry().Describe( pCommand, &text );
		LoggingSystem_LogDirect( LOG_CONSOLE, LS_MESSAGE, text.Get() );
	},
	"Describes a console variable or command." );
