#pragma once
// The process's parameters: "-name value" pairs and "+command args" after the program.
// Names compare ignoring case. A token is a value unless it starts with '-' or '+'
// followed by something other than a digit, so "-scale -1.5" reads as a name and a value.
//
// Set it up once at start (CreateCmdLine); reads from other threads are safe after that.

#include <string>
#include <vector>

class CCommandLine
{
public:
	// argv[0] is the program.
	void CreateCmdLine( int argc, const char *const *argv );
	// Splits a whole command line the way a shell would for plain quoting: blanks
	// separate, double quotes group, \" is a quote inside quotes.
	void CreateCmdLine( const char *pCommandLine );

	// The parameters joined by spaces, quoted where they hold blanks.
	const char *GetCmdLine() const { return m_strCmdLine.c_str(); }

	// Index of the parameter (1 and up), or 0 when absent.
	int FindParm( const char *pName ) const;
	bool HasParm( const char *pName ) const { return FindParm( pName ) != 0; }
	// The parameter's own text, or null when absent; *ppValue gets the following value
	// or null when none follows.
	const char *CheckParm( const char *pName, const char **ppValue = nullptr ) const;

	// The value after the parameter, or the default when the parameter or its value is
	// missing (or, for numbers, isn't a number).
	const char *ParmValue( const char *pName, const char *pDefault = nullptr ) const;
	int ParmValue( const char *pName, int nDefault ) const;
	float ParmValue( const char *pName, float flDefault ) const;
	double ParmValue( const char *pName, double flDefault ) const;

	// Count of all tokens, the program included.
	int ParmCount() const { return int( m_Parms.size() ); }
	// The token at an index (0 is the program); "" out of range.
	const char *GetParm( int nIndex ) const;

	// Adds "-name value" (or replaces the value of a present name); pValue may be null.
	void AppendParm( const char *pName, const char *pValue );
	// Removes every occurrence of the parameter together with its value.
	void RemoveParm( const char *pName );

	// True when the token names a parameter rather than a value.
	static bool IsParmName( const char *pToken );

private:
	const char *ValueAfter( int nIndex ) const;
	const char *NumberAfter( int nIndex ) const;
	void RebuildCmdLine();

	std::vector<std::string> m_Parms;
	std::string m_strCmdLine;
};

// The process-wide command line.
CCommandLine *CommandLine();
