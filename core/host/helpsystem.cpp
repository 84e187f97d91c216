#include "core/host/helpsystem.h"

#include <atomic>

#include "core/text/strtools.h"

namespace
{
std::string LowerKey( const char *pText )
{
	std::string key( pText ? pText : "" );
	V_strlower_fast( key.data() );
	return key;
}
} // namespace

void CHelpSystem::OpenScope( const char *pScope, int nFlags )
{
	std::lock_guard lock( m_Mutex );
	m_Scopes[ LowerKey( pScope ) ].m_nFlags = nFlags;
}

void CHelpSystem::AddEntry( const char *pScope, const char *pKey, const char *pTitle, const char *pText, const char *pFurtherText )
{
	if ( !pKey || !*pKey )
		return;
	std::lock_guard lock( m_Mutex );
	Entry_t &entry = m_Scopes[ LowerKey( pScope ) ].m_Entries[ LowerKey( pKey ) ];
	entry.m_strTitle.Set( pTitle );
	entry.m_strText.Set( pText );
	entry.m_strFurtherText.Set( pFurtherText );
}

const CHelpSystem::Entry_t *CHelpSystem::FindEntry( const char *pScope, const char *pKey ) const
{
	std::string key = LowerKey( pKey );
	if ( pScope )
	{
		auto scope = m_Scopes.find( LowerKey( pScope ) );
		if ( scope == m_Scopes.end() )
			return nullptr;
		auto entry = scope->second.m_Entries.find( key );
		return entry != scope->second.m_Entries.end() ? &entry->second : nullptr;
	}
	for ( const auto &scope : m_Scopes )
	{
		auto entry = scope.second.m_Entries.find( key );
		if ( entry != scope.second.m_Entries.end() )
			return &entry->second;
	}
	return nullptr;
}

const char *CHelpSystem::GetTitle( const char *pScope, const char *pKey ) const
{
	std::lock_guard lock( m_Mutex );
	const Entry_t *pEntry = FindEntry( pScope, pKey );
	// Entries are never removed, so the text outlives the lock.
	return pEntry ? pEntry->m_strTitle.Get() : "";
}

const char *CHelpSystem::GetText( const char *pScope, const char *pKey ) const
{
	std::lock_guard lock( m_Mutex );
	const Entry_t *pEntry = FindEntry( pScope, pKey );
	return pEntry ? pEntry->m_strText.Get() : "";
}

bool CHelpSystem::KeyTextContainsWord( const char *pScope, const char *pKey, const char *pWord ) const
{
	std::lock_guard lock( m_Mutex );
	const Entry_t *pEntry = FindEntry( pScope, pKey );
	if ( !pEntry )
		return false;
	for ( const CUtlString *pText : { &pEntry->m_strText, &pEntry->m_strFurtherText } )
	{
		if ( V_stristr_fast( pText->Get(), pWord ) )
			return true;
	}
	return false;
}

bool CHelpSystem::HasScope( const char *pScope ) const
{
	std::lock_guard lock( m_Mutex );
	return m_Scopes.count( LowerKey( pScope ) ) != 0;
}

int CHelpSystem::GetScopeFlags( const char *pScope ) const
{
	std::lock_guard lock( m_Mutex );
	auto scope = m_Scopes.find( LowerKey( pScope ) );
	return scope != m_Scopes.end() ? scope->second.m_nFlags : -1;
}

int CHelpSystem::GetEntryCount( const char *pScope ) const
{
	std::lock_guard lock( m_Mutex );
	auto scope = m_Scopes.find( LowerKey( pScope ) );
	return scope != m_Scopes.end() ? int( scope->second.m_Entries.size() ) : 0;
}

namespace
{
std::atomic<IHelpSystem *> g_pHelpSystem{ nullptr };
}

IHelpSystem *GetHelpSystem()
{
	return g_pHelpSystem.load( std::memory_order_acquire );
}

void SetHelpSystem( IHelpSystem *pHelpSystem )
{
	g_pHelpSystem.store( pHelpSystem, std::memory_order_release );
}
