#include "core/host/gameinfo.h"

#include <atomic>

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"

CGameInfo::CGameInfo() : m_Root( "GameInfo" )
{
}

CGameInfo::~CGameInfo() = default;

bool CGameInfo::Load( IFileSystem *pFileSystem, CUtlString *pError )
{
	m_Root.Clear();
	m_bLoaded = false;
	if ( !pFileSystem )
	{
		if ( pError )
			pError->Set( "No file system to read the game information from" );
		return false;
	}
	CUtlBuffer buffer;
	if ( !pFileSystem->ReadFile( GAMEINFO_FILE_NAME, PATH_ID_GAME, &buffer, pError ) )
		return false;
	return LoadFromText( buffer.String(), GAMEINFO_FILE_NAME, pError );
}

bool CGameInfo::LoadFromText( const char *pText, const char *pSourceName, CUtlString *pError )
{
	m_Root.Clear();
	m_bLoaded = false;
	KeyValues file;
	if ( !file.LoadFromBuffer( pSourceName, pText ? pText : "", pError ) )
		return false;
	// The block is the first top-level key named "GameInfo"; a file without one is refused.
	for ( const KeyValues *pKey = &file; pKey; pKey = pKey->GetNextKey() )
	{
		if ( CUtlString( pKey->GetName() ).IsEqual_CaseInsensitive( "GameInfo" ) && pKey->HasSubKeys() )
		{
			for ( const KeyValues *pSub = pKey->GetFirstSubKey(); pSub; pSub = pSub->GetNextKey() )
				m_Root.AddSubKey( pSub->MakeCopy() );
			m_bLoaded = true;
			return true;
		}
	}
	if ( pError )
		pError->Format( "%s has no \"GameInfo\" block", pSourceName ? pSourceName : "The game information" );
	return false;
}

const KeyValues *CGameInfo::FindKey( const char *pPath ) const
{
	return m_Root.FindKey( pPath );
}

int CGameInfo::GetInt( const char *pPath, int nDefault ) const
{
	const KeyValues *pKey = FindKey( pPath );
	return pKey ? pKey->GetInt( nullptr, nDefault ) : nDefault;
}

float CGameInfo::GetFloat( const char *pPath, float flDefault ) const
{
	const KeyValues *pKey = FindKey( pPath );
	return pKey ? pKey->GetFloat( nullptr, flDefault ) : flDefault;
}

const char *CGameInfo::GetString( const char *pPath, const char *pDefault ) const
{
	const KeyValues *pKey = FindKey( pPath );
	return pKey && !pKey->HasSubKeys() ? pKey->GetString( nullptr, pDefault ) : pDefault;
}

bool CGameInfo::GetBool( const char *pPath, bool bDefault ) const
{
	const KeyValues *pKey = FindKey( pPath );
	return pKey ? pKey->GetBool( nullptr, bDefault ) : bDefault;
}

int CGameInfo::GetStringList( const char *pPath, CUtlVector<CUtlString> *pValues ) const
{
	const KeyValues *pKey = FindKey( pPath );
	if ( !pKey || !pValues )
		return 0;
	int nBefore = pValues->Count();
	if ( !pKey->HasSubKeys() )
	{
		if ( *pKey->GetString() )
			pValues->AddToTail( CUtlString( pKey->GetString() ) );
		return pValues->Count() - nBefore;
	}
	for ( const KeyValues *pEntry = pKey->GetFirstSubKey(); pEntry; pEntry = pEntry->GetNextKey() )
	{
		if ( !pEntry->HasSubKeys() && *pEntry->GetString() )
			pValues->AddToTail( CUtlString( pEntry->GetString() ) );
	}
	return pValues->Count() - nBefore;
}

namespace
{
std::atomic<CGameInfo *> g_pGameInfo{ nullptr };
}

CGameInfo *GetGameInfo()
{
	return g_pGameInfo.load( std::memory_order_acquire );
}

void SetGameInfo( CGameInfo *pGameInfo )
{
	g_pGameInfo.store( pGameInfo, std::memory_order_release );
}
