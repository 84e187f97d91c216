#pragma once
// One console command line split into arguments: blanks separate, double quotes group
// ("zol_title \"My Effect\"" gives two arguments), and \" stands for a quote inside
// quotes.

#include <string>
#include <vector>

class CCommand
{
public:
	CCommand() = default;
	explicit CCommand( const char *pCommandLine ) { Tokenize( pCommandLine ); }

	// Replaces the arguments with those of the text; answers whether there is any.
	bool Tokenize( const char *pCommandLine );
	void Reset();

	int ArgC() const { return int( m_Args.size() ); }
	// The argument at an index (0 is the command's name); "" out of range.
	const char *Arg( int nIndex ) const;
	const char *operator[]( int nIndex ) const { return Arg( nIndex ); }
	// Everything after the name as written, quotes included, without surrounding blanks.
	const char *ArgS() const { return m_strArgS.c_str(); }
	// The whole command line as given.
	const char *GetCommandString() const { return m_strCommand.c_str(); }

	// The argument after "-name" (ignoring case), or pDefault when absent.
	const char *FindArg( const char *pName, const char *pDefault = nullptr ) const;
	int FindArgInt( const char *pName, int nDefault ) const;

private:
	std::vector<std::string> m_Args;
	std::string m_strArgS;
	std::string m_strCommand;
};
