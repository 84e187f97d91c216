#include "core/platform/commandline.h"

#include <cctype>
#include <cstdlib>
#include <strings.h>

CCommandLine *CommandLine()
{
	static CCommandLine *s_pCommandLine = new CCommandLine;
	return s_pCommandLine;
}

bool CCommandLine::IsParmName( const char *pToken )
{
	if ( !pToken || ( pToken[ 0 ] != '-' && pToken[ 0 ] != '+' ) )
		return false;
	unsigned char c = (unsigned char)pToken[ 1 ];
	return c != 0 && !isdigit( c ) && c != '.';
}

void CCommandLine::CreateCmdLine( int argc, const char *const *argv )
{
	m_Parms.clear();
	for ( int i = 0; i < argc; ++i )
		m_Parms.emplace_back( argv && argv[ i ] ? argv[ i ] : "" );
	RebuildCmdLine();
}

void CCommandLine::CreateCmdLine( const char *pCommandLine )
{
	m_Parms.clear();
	const char *p = pCommandLine ? pCommandLine : "";
	while ( true )
	{
		while ( *p && isspace( (unsigned char)*p ) )
			++p;
		if ( !*p )
			break;
		std::string token;
		bool bQuoted = false;
		while ( *p && ( bQuoted || !isspace( (unsigned char)*p ) ) )
		{
			if ( *p == '"' )
			{
				bQuoted = !bQuoted;
				++p;
			}
			else if ( bQuoted && p[ 0 ] == '\\' && p[ 1 ] == '"' )
			{
				token += '"';
				p += 2;
			}
			else
			{
				token += *p++;
			}
		}
		m_Parms.push_back( std::move( token ) );
	}
	RebuildCmdLine();
}

int CCommandLine::FindParm( const char *pName ) const
{
	if ( !pName || !*pName )
		return 0;
	for ( size_t i = 1; i < m_Parms.size(); ++i )
	{
		if ( strcasecmp( m_Parms[ i ].c_str(), pName ) == 0 )
			return int( i );
	}
	return 0;
}

const char *CCommandLine::ValueAfter( int nIndex ) const
{
	if ( nIndex <= 0 || size_t( nIndex ) + 1 >= m_Parms.size() )
		return nullptr;
	const char *pNext = m_Parms[ size_t( nIndex ) + 1 ].c_str();
	return IsParmName( pNext ) ? nullptr : pNext;
}

const char *CCommandLine::CheckParm( const char *pName, const char **ppValue ) const
{
	int nIndex = FindParm( pName );
	if ( ppValue )
		*ppValue = ValueAfter( nIndex );
	return nIndex ? m_Parms[ size_t( nIndex ) ].c_str() : nullptr;
}

const char *CCommandLine::ParmValue( const char *pName, const char *pDefault ) const
{
	const char *pValue = ValueAfter( FindParm( pName ) );
	return pValue ? pValue : pDefault;
}

const char *CCommandLine::NumberAfter( int nIndex ) const
{
	const char *pValue = ValueAfter( nIndex );
	if ( !pValue || !*pValue )
		return nullptr;
	char *pEnd = nullptr;
	strtod( pValue, &pEnd );
	return *pEnd == 0 ? pValue : nullptr;
}

int CCommandLine::ParmValue( const char *pName, int nDefault ) const
{
	const char *pValue = NumberAfter( FindParm( pName ) );
	return pValue ? int( strtol( pValue, nullptr, 10 ) ) : nDefault;
}

float CCommandLine::ParmValue( const char *pName, float flDefault ) const
{
	const char *pValue = NumberAfter( FindParm( pName ) );
	return pValue ? strtof( pValue, nullptr ) : flDefault;
}

double CCommandLine::ParmValue( const char *pName, double flDefault ) const
{
	const char *pValue = NumberAfter( FindParm( pName ) );
	return pValue ? strtod( pValue, nullptr ) : flDefault;
}

const char *CCommandLine::GetParm( int nIndex ) const
{
	if ( nIndex < 0 || size_t( nIndex ) >= m_Parms.size() )
		return "";
	return m_Parms[ size_t( nIndex ) ].c_str();
}

void CCommandLine::AppendParm( const char *pName, const char *pValue )
{
	if ( !pName || !*pName )
		return;
	if ( m_Parms.empty() )
		m_Parms.emplace_back(); // no program name was given
	int nIndex = FindParm( pName );
	if ( nIndex )
	{
		bool bHasValue = ValueAfter( nIndex ) != nullptr;
		auto itValue = m_Parms.begin() + nIndex + 1;
		if ( bHasValue && pValue )
			*itValue = pValue;
		else if ( bHasValue )
			m_Parms.erase( itValue );
		else if ( pValue )
			m_Parms.insert( itValue, pValue );
	}
	else
	{
		m_Parms.emplace_back( pName );
		if ( pValue )
			m_Parms.emplace_back( pValue );
	}
	RebuildCmdLine();
}

void CCommandLine::RemoveParm( const char *pName )
{
	while ( int nIndex = FindParm( pName ) )
	{
		auto it = m_Parms.begin() + nIndex;
		bool bHasValue = ValueAfter( nIndex ) != nullptr;
		m_Parms.erase( it, it + ( bHasValue ? 2 : 1 ) );
	}
	RebuildCmdLine();
}

void CCommandLine::RebuildCmdLine()
{
	m_strCmdLine.clear();
	for ( const std::string &parm : m_Parms )
	{
		if ( !m_strCmdLine.empty() )
			m_strCmdLine += ' ';
		bool bNeedsQuotes = parm.empty() || parm.find_first_of( " \t\"" ) != std::string::npos;
		if ( !bNeedsQuotes )
		{
			m_strCmdLine += parm;
			continue;
		}
		m_strCmdLine += '"';
		for ( char c : parm )
		{
			if ( c == '"' )
				m_strCmdLine += '\\';
			m_strCmdLine += c;
		}
		m_strCmdLine += '"';
	}
}
