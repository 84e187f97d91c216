#include "core/host/helpsystem.h"

#include <atomic>
#include <cstring>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
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

const CUtlString *CHelpSystem::FindFileText( const char *pScope, const char *pKey ) const
{
	const std::string key = LowerKey( pKey );
	for ( const auto &scope : m_FileTexts )
	{
		if ( pScope && scope.first != LowerKey( pScope ) )
			continue;
		auto text = scope.second.find( key );
		if ( text != scope.second.end() )
			return &text->second;
	}
	return nullptr;
}

const char *CHelpSystem::GetText( const char *pScope, const char *pKey ) const
{
	std::lock_guard lock( m_Mutex );
	const Entry_t *pEntry = FindEntry( pScope, pKey );
	if ( pEntry && !pEntry->m_strText.IsEmpty() )
		return pEntry->m_strText.Get();
	// Texts are never removed, so they outlive the lock.
	const CUtlString *pFileText = pEntry ? FindFileText( pScope, pKey ) : nullptr;
	return pFileText ? pFileText->Get() : "";
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
	const CUtlString *pFileText = pEntry->m_strText.IsEmpty() ? FindFileText( pScope, pKey ) : nullptr;
	return pFileText && V_stristr_fast( pFileText->Get(), pWord );
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

int CHelpSystem::LoadTextsFromKV3Text( const char *pText, const char *pSourceName, CUtlString *pError )
{
	KeyValues3 file;
	CUtlString strError;
	if ( !LoadKV3FromText( &file, &strError, pText ? pText : "", pText ? strlen( pText ) : 0, KV3_FORMAT_GENERIC ) )
	{
		if ( pError )
			pError->Format( "%s: %s", pSourceName ? pSourceName : "", strError.Get() );
		return 0;
	}
	const KeyValues3 *pEntries = file.FindMember( "m_Entries" );
	const std::string scope = LowerKey( file.GetMemberString( "m_Scope" ) );
	int nRead = 0;
	std::lock_guard lock( m_Mutex );
	for ( int i = 0; pEntries && i < pEntries->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pEntry = pEntries->GetArrayElement( i );
		const char *pKey = pEntry ? pEntry->GetMemberString( "m_Key" ) : "";
		if ( !*pKey )
			continue;
		m_FileTexts[ scope ][ LowerKey( pKey ) ].Set( pEntry->GetMemberString( "m_Text" ) );
		++nRead;
	}
	return nRead;
}

int CHelpSystem::LoadTextFiles( IFileSystem *pFileSystem, CUtlString *pErrors )
{
	if ( !pFileSystem )
		return 0;
	CUtlVector<CUtlString> files;
	pFileSystem->FindFiles( "tools/help/*.txt", PATH_ID_GAME, FILE_FIND_FILES, &files );
	int nRead = 0;
	for ( const CUtlString &file : files )
	{
		CUtlBuffer buffer;
		CUtlString strError;
		if ( !pFileSystem->ReadFile( file, nullptr, &buffer, &strError ) )
			strError.Format( "%s: %s", file.Get(), CUtlString( strError ).Get() );
		else
			nRead += LoadTextsFromKV3Text( buffer.String(), file, &strError );
		if ( !strError.IsEmpty() && pErrors )
			pErrors->AppendFormat( "%s\n", strError.Get() );
	}
	return nRead;
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
