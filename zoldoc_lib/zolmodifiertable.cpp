#include "zoldoc_lib/zolmodifiertable.h"

#include <cctype>

#include "core/host/igametoolsservice.h"

namespace
{
std::string Key( const char *pPath )
{
	std::string key( pPath ? pPath : "" );
	for ( char &c : key )
		c = c == '\\' ? '/' : char( std::tolower( static_cast<unsigned char>( c ) ) );
	return key;
}
} // namespace

void CZolModifierTable::AddPair( const char *pSource, const char *pTarget )
{
	if ( !pSource || !pTarget || !*pSource || !*pTarget || Key( pTarget ) == NULL_TARGET )
		return;
	m_Entries[ Key( pSource ) ].push_back( CUtlString( pTarget ) );
	m_Entries[ Key( pTarget ) ].push_back( CUtlString( pSource ) );
}

void CZolModifierTable::Reload( IGameToolsService *pService )
{
	Clear();
	if ( !pService )
		return;
	CUtlVector<AssetModifierPair_t> pairs;
	pService->GetAssetModifiers( "particle", &pairs );
	for ( const AssetModifierPair_t &pair : pairs )
		AddPair( pair.m_Source.Get(), pair.m_Target.Get() );
}

const std::vector<CUtlString> *CZolModifierTable::Find( const char *pPath ) const
{
	auto it = m_Entries.find( Key( pPath ) );
	return it == m_Entries.end() ? nullptr : &it->second;
}
