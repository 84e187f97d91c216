#include "tools/toolutils2/baseeditorapp/autosavemanager.h"

#include <cstdio>

#include "core/kv3/keyvalues3.h"
#include "core/text/pathtools.h"
#include "core/text/strtools.h"

int CAutosaveManager::FindRecentFile( const char *pPath ) const
{
	for ( size_t i = 0; i < m_RecentFiles.size(); ++i )
	{
		if ( V_PathsMatch( m_RecentFiles[ i ].m_strFileName.Get(), pPath ) )
			return int( i );
	}
	return -1;
}

void CAutosaveManager::TrimRecentFiles()
{
	if ( int( m_RecentFiles.size() ) > m_nMaxRecentFiles )
		m_RecentFiles.resize( size_t( m_nMaxRecentFiles ) );
}

void CAutosaveManager::NoteFileOpened( const char *pPath, bool bDisplayInList )
{
	if ( !pPath || !*pPath )
		return;
	AutosaveFileEntry_t entry;
	int nIndex = FindRecentFile( pPath );
	if ( nIndex >= 0 )
	{
		entry = m_RecentFiles[ size_t( nIndex ) ];
		m_RecentFiles.erase( m_RecentFiles.begin() + nIndex );
	}
	CUtlString strPath( pPath );
	strPath.FixSlashes();
	entry.m_strFileName = strPath;
	entry.m_bClosedCorrectly = false;
	// A file noted as shown stays shown; one that was only tracked may become shown.
	entry.m_bDisplayInList = entry.m_bDisplayInList || bDisplayInList;
	if ( nIndex < 0 )
		entry.m_bDisplayInList = bDisplayInList;
	m_RecentFiles.insert( m_RecentFiles.begin(), entry );
	TrimRecentFiles();
}

void CAutosaveManager::NoteFileClosed( const char *pPath )
{
	int nIndex = FindRecentFile( pPath );
	if ( nIndex >= 0 )
		m_RecentFiles[ size_t( nIndex ) ].m_bClosedCorrectly = true;
}

void CAutosaveManager::NoteNewFile( const char *pName )
{
	if ( !IsNewFile( pName ) )
		m_NewFiles.emplace_back( pName );
}

void CAutosaveManager::RemoveNewFile( const char *pName )
{
	for ( size_t i = 0; i < m_NewFiles.size(); ++i )
	{
		if ( V_PathsMatch( m_NewFiles[ i ].Get(), pName ) )
		{
			m_NewFiles.erase( m_NewFiles.begin() + long( i ) );
			return;
		}
	}
}

bool CAutosaveManager::IsNewFile( const char *pName ) const
{
	for ( const CUtlString &strName : m_NewFiles )
	{
		if ( V_PathsMatch( strName.Get(), pName ) )
			return true;
	}
	return false;
}

void CAutosaveManager::ClearRecentFiles()
{
	m_RecentFiles.clear();
}

void CAutosaveManager::ReadSettings( const KeyValues3 *pRecentFiles, const KeyValues3 *pNewFiles )
{
	m_RecentFiles.clear();
	m_NewFiles.clear();
	char szKey[ 64 ];
	if ( pRecentFiles && pRecentFiles->IsTable() )
	{
		for ( int i = 0; i < pRecentFiles->GetMemberCount(); ++i )
		{
			V_snprintf( szKey, sizeof( szKey ), "Filename %i", i );
			const KeyValues3 *pName = pRecentFiles->FindMember( szKey );
			if ( !pName || !pName->IsString() || !*pName->GetString() )
				continue;
			const char *pPath = pName->GetString();
			if ( FindRecentFile( pPath ) >= 0 || ( m_fnFileExists && !m_fnFileExists( pPath ) ) )
				continue;
			AutosaveFileEntry_t entry;
			entry.m_strFileName = pPath;
			entry.m_strFileName.FixSlashes();
			V_snprintf( szKey, sizeof( szKey ), "ClosedCorrectly %i", i );
			entry.m_bClosedCorrectly = pRecentFiles->GetMemberBool( szKey, true );
			V_snprintf( szKey, sizeof( szKey ), "Autosaved %i", i );
			entry.m_bAutosaved = pRecentFiles->GetMemberBool( szKey, false );
			V_snprintf( szKey, sizeof( szKey ), "DisplayInList %i", i );
			entry.m_bDisplayInList = pRecentFiles->GetMemberBool( szKey, true );
			m_RecentFiles.push_back( entry );
		}
		TrimRecentFiles();
	}
	if ( pNewFiles && pNewFiles->IsTable() )
	{
		for ( int i = 0; i < pNewFiles->GetMemberCount(); ++i )
		{
			V_snprintf( szKey, sizeof( szKey ), "NewFilename %i", i );
			const char *pName = pNewFiles->GetMemberString( szKey, "" );
			if ( *pName )
				NoteNewFile( pName );
		}
	}
}

void CAutosaveManager::WriteSettings( KeyValues3 *pRecentFiles, KeyValues3 *pNewFiles ) const
{
	char szKey[ 64 ];
	pRecentFiles->SetToEmptyTable();
	for ( size_t i = 0; i < m_RecentFiles.size(); ++i )
	{
		const AutosaveFileEntry_t &entry = m_RecentFiles[ i ];
		V_snprintf( szKey, sizeof( szKey ), "Filename %i", int( i ) );
		pRecentFiles->SetMemberString( szKey, entry.m_strFileName.Get() );
		V_snprintf( szKey, sizeof( szKey ), "ClosedCorrectly %i", int( i ) );
		pRecentFiles->SetMemberBool( szKey, entry.m_bClosedCorrectly );
		V_snprintf( szKey, sizeof( szKey ), "Autosaved %i", int( i ) );
		pRecentFiles->SetMemberBool( szKey, entry.m_bAutosaved );
		V_snprintf( szKey, sizeof( szKey ), "DisplayInList %i", int( i ) );
		pRecentFiles->SetMemberBool( szKey, entry.m_bDisplayInList );
	}
	pNewFiles->SetToEmptyTable();
	for ( size_t i = 0; i < m_NewFiles.size(); ++i )
	{
		V_snprintf( szKey, sizeof( szKey ), "NewFilename %i", int( i ) );
		pNewFiles->SetMemberString( szKey, m_NewFiles[ i ].Get() );
	}
}
