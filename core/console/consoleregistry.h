#pragma once
// The process-wide table of console variables and commands, by name ignoring case.
// Variables and commands register themselves (see ConCommandBase); the host's console,
// the command line and tests run text through Execute.

#include "core/text/utlstring.h"

#include <map>
#include <mutex>
#include <string>
#include <vector>

class ConCommandBase;
class ConCommand;
class ConVar;

class CConsoleRegistry
{
public:
	// False (with a warning) when the name is taken: the first registration stands.
	bool Register( ConCommandBase *pCommand );
	void Unregister( ConCommandBase *pCommand );

	ConCommandBase *Find( const char *pName ) const;
	ConVar *FindVar( const char *pName ) const;
	ConCommand *FindCommand( const char *pName ) const;

	// Runs console text: commands are separated by ';' or line breaks outside quotes, and
	// "//" starts a comment. "name args..." runs a command; "variable value" sets a
	// variable; "variable" alone prints it on the console channel. Answers false when
	// any part failed, with one line per failure in pError.
	bool Execute( const char *pText, CUtlString *pError = nullptr );

	// Everything registered, sorted by name ignoring case.
	std::vector<ConCommandBase *> GetAll() const;
	// One line per variable or command whose name starts with pPrefix (ignoring case):
	// "name : value : help", "cmd" standing for the value of a command. Hidden ones
	// are left out, and development-only ones on customer machines.
	void ListAll( CUtlString *pText, const char *pPrefix = nullptr ) const;
	// "name" = "value" ( def. "default" ), bounds and help, for one variable or command.
	void Describe( const ConCommandBase *pCommand, CUtlString *pText ) const;

private:
	bool ExecuteOne( const char *pCommandText, CUtlString *pError );

	struct CaseInsensitiveLess_t
	{
		bool operator()( const std::string &a, const std::string &b ) const;
	};

	mutable std::mutex m_Mutex;
	std::map<std::string, ConCommandBase *, CaseInsensitiveLess_t> m_Commands;
};

// Safe to call during static initialisation; never destroyed, so static variables
// can leave it during static destruction.
CConsoleRegistry &ConsoleRegistry();
