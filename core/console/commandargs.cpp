#include "core/console/commandargs.h"

#include "core/text/strtools.h"

static bool IsBlank( char c )
{
	return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

void CCommand::Reset()
{
	m_Args.clear();
	m_strArgS.clear();
	m_strCommand.clear();
}

bool CCommand::Tokenize( const char *pCommandLine )
{
	Reset();
	m_strCommand = pCommandLine ? pCommandLine : "";
	const char *p = m_strCommand.c_str();
	while ( true )
	{
		while ( IsBlank( *p ) )
			++p;
		if ( !*p )
			break;
		if ( m_Args.size() == 1 )
		{
			// Everything from the first argument on, trailing blanks trimmed.
			m_strArgS = p;
			while ( !m_strArgS.empty() && IsBlank( m_strArgS.back() ) )
				m_strArgS.pop_back();
		}
		std::string arg;
		if ( *p == '"' )
		{
			++p;
			while ( *p && *p != '"' )
			{
				if ( p[ 0 ] == '\\' && p[ 1 ] == '"' )
					++p;
				arg += *p++;
			}
			if ( *p == '"' )
				++p;
		}
		else
		{
			while ( *p && !IsBlank( *p ) && *p != '"' )
				arg += *p++;
		}
		m_Args.push_back( std::move( arg ) );
	}
	return !m_Args.empty();
}

const char *CCommand::Arg( int nIndex ) const
{
	if ( nIndex < 0 || size_t( nIndex ) >= m_Args.size() )
		return "";
	return m_Args[ size_t( nIndex ) ].c_str();
}

const char *CCommand::FindArg( const char *pName, const char *pDefault ) const
{
	for ( size_t i = 1; i + 1 < m_Args.size(); ++i )
	{
		if ( V_stricmp_fast( m_Args[ i ].c_str(), pName ) == 0 )
			return m_Args[ i + 1 ].c_str();
	}
	return pDefault;
}

int CCommand::FindArgInt( const char *pName, int nDefault ) const
{
	const char *pValue = FindArg( pName );
	int64_t nValue = 0;
	return pValue && V_StringToInt64( pValue, &nValue ) ? int( nValue ) : nDefault;
}
