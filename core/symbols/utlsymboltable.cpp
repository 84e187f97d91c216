#include "core/symbols/utlsymboltable.h"

#include "core/text/stringhash.h"
#include "core/text/strtools.h"

CUtlSymbolTable::CUtlSymbolTable( bool bCaseInsensitive )
	: m_bCaseInsensitive( bCaseInsensitive ), m_Lookup( 16, KeyHash_t{ bCaseInsensitive }, KeyEqual_t{ bCaseInsensitive } )
{
}

CUtlSymbolTable::CUtlSymbolTable( const CUtlSymbolTable &other )
	: m_bCaseInsensitive( other.m_bCaseInsensitive ), m_Strings( other.m_Strings ),
	  m_Lookup( 16, KeyHash_t{ other.m_bCaseInsensitive }, KeyEqual_t{ other.m_bCaseInsensitive } )
{
	Rebuild();
}

CUtlSymbolTable &CUtlSymbolTable::operator=( const CUtlSymbolTable &other )
{
	if ( this == &other )
		return *this;
	m_bCaseInsensitive = other.m_bCaseInsensitive;
	m_Strings = other.m_Strings;
	m_Lookup = decltype( m_Lookup )( 16, KeyHash_t{ m_bCaseInsensitive }, KeyEqual_t{ m_bCaseInsensitive } );
	Rebuild();
	return *this;
}

// The lookup holds views of our own strings, which a copy must point at anew.
void CUtlSymbolTable::Rebuild()
{
	m_Lookup.clear();
	for ( size_t i = 0; i < m_Strings.size(); ++i )
		m_Lookup.emplace( m_Strings[ i ].m_strText, UtlSymId_t( i ) );
}

size_t CUtlSymbolTable::KeyHash_t::operator()( std::string_view key ) const
{
	return m_bCaseInsensitive ? HashStringFNV1aLowerCase( key.data(), key.size() ) : HashStringFNV1a( key.data(), key.size() );
}

bool CUtlSymbolTable::KeyEqual_t::operator()( std::string_view a, std::string_view b ) const
{
	if ( a.size() != b.size() )
		return false;
	return m_bCaseInsensitive ? V_strnicmp_fast( a.data(), b.data(), a.size() ) == 0 : a == b;
}

CUtlSymbol CUtlSymbolTable::AddString( const char *pString )
{
	return AddString( std::string_view( pString ? pString : "" ) );
}

CUtlSymbol CUtlSymbolTable::AddString( std::string_view string )
{
	auto it = m_Lookup.find( string );
	if ( it != m_Lookup.end() )
		return CUtlSymbol( it->second );
	UtlSymId_t nId = UtlSymId_t( m_Strings.size() );
	m_Strings.push_back( Entry_t{ std::string( string ), uint32_t( KeyHash_t{ m_bCaseInsensitive }( string ) ) } );
	m_Lookup.emplace( m_Strings.back().m_strText, nId );
	return CUtlSymbol( nId );
}

CUtlSymbol CUtlSymbolTable::Find( const char *pString ) const
{
	return Find( std::string_view( pString ? pString : "" ) );
}

CUtlSymbol CUtlSymbolTable::Find( std::string_view string ) const
{
	auto it = m_Lookup.find( string );
	return it == m_Lookup.end() ? CUtlSymbol() : CUtlSymbol( it->second );
}

const char *CUtlSymbolTable::String( CUtlSymbol symbol ) const
{
	if ( symbol.GetId() >= m_Strings.size() )
		return "";
	return m_Strings[ symbol.GetId() ].m_strText.c_str();
}

uint32_t CUtlSymbolTable::GetHash( CUtlSymbol symbol ) const
{
	if ( symbol.GetId() >= m_Strings.size() )
		return 0;
	return m_Strings[ symbol.GetId() ].m_nHash;
}

void CUtlSymbolTable::RemoveAll()
{
	m_Lookup.clear();
	m_Strings.clear();
}
