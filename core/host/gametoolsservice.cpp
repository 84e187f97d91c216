#include "core/host/gametoolsservice.h"

#include "core/containers/utlbuffer.h"
#include "core/host/ifilesystem.h"
#include "core/kv3/keyvalues3.h"
#include "core/kv3/kv3serialize.h"
#include "core/logging/logging.h"
#include "core/logging/logonce.h"
#include "core/text/strtools.h"

namespace
{
IGameToolsService *s_pGameToolsService = nullptr;
}

IGameToolsService *GetGameToolsService()
{
	return s_pGameToolsService;
}

void SetGameToolsService( IGameToolsService *pService )
{
	s_pGameToolsService = pService;
}

void CGameToolsService::GetAssetModifiers( const char *pKind, CUtlVector<AssetModifierPair_t> *pPairs )
{
	pPairs->RemoveAll();
	CUtlBuffer text;
	if ( !m_pFileSystem || !m_pFileSystem->ReadFile( MODIFIERS_FILE, "GAME", &text ) )
		return;
	KeyValues3 table;
	CUtlString error;
	if ( !LoadKV3( &table, &error, &text, KV3_FORMAT_GENERIC, MODIFIERS_FILE ) )
	{
		LoggingSystem_LogOnceByKey( LOG_GENERAL, LS_WARNING, MODIFIERS_FILE, "%s: %s\n", MODIFIERS_FILE, error.Get() );
		return;
	}
	const KeyValues3 *pList = table.IsTable() ? table.FindMember( "modifiers" ) : nullptr;
	if ( !pList || !pList->IsArray() )
		return;
	for ( int i = 0; i < pList->GetArrayElementCount(); ++i )
	{
		const KeyValues3 *pEntry = pList->GetArrayElement( i );
		if ( !pEntry->IsTable() || V_stricmp_fast( pEntry->GetMemberString( "type", "" ), pKind ? pKind : "" ) )
			continue;
		const char *pSource = pEntry->GetMemberString( "source", "" );
		const char *pTarget = pEntry->GetMemberString( "target", "" );
		if ( *pSource && *pTarget )
			pPairs->AddToTail( AssetModifierPair_t{ CUtlString( pSource ), CUtlString( pTarget ) } );
	}
}
