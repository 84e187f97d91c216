#include "tools/toolutils2/fgd/gameinfofgdload.h"

#include <filesystem>

#include "core/keyvalues/keyvalues.h"
#include "core/logging/logging.h"
#include "tools/toolutils2/fgd/fgdreader.h"
#include "tools/toolutils2/fgd/gamedata.h"

namespace
{
void Report( CUtlString *pReport, const char *pszText )
{
	Log_Warning( LOG_GENERAL, "%s", pszText );
	if ( pReport )
		pReport->Append( pszText );
}

// "fgd_files" is either a block of file entries or a single file name.
void CollectFileNames( const KeyValues *pFiles, CUtlVector<CUtlString> *pOut )
{
	if ( !pFiles->HasSubKeys() )
	{
		if ( *pFiles->GetString() )
			pOut->AddToTail( CUtlString( pFiles->GetString() ) );
		return;
	}
	for ( const KeyValues *pFile = pFiles->GetFirstSubKey(); pFile; pFile = pFile->GetNextKey() )
	{
		if ( !pFile->HasSubKeys() && *pFile->GetString() )
			pOut->AddToTail( CUtlString( pFile->GetString() ) );
	}
}
} // namespace

bool LoadGameDataFromGameInfo( CGameData *pGameData, const char *pszGameRoot, CUtlString *pReport )
{
	std::filesystem::path gameInfoPath = std::filesystem::path( pszGameRoot ) / "gameinfo.gi";
	KeyValues gameInfo;
	if ( !gameInfo.LoadFromFile( gameInfoPath.string().c_str() ) )
	{
		Report( pReport, "The gameinfo.gi file is missing or incomplete!\n" );
		return false;
	}
	const KeyValues *pBlock = gameInfo.FindKey( "Brakel" );
	if ( !pBlock || !pBlock->HasSubKeys() )
	{
		Report( pReport, "Failed to find the Brakel block in the gameinfo.gi file!\n" );
		return false;
	}
	CUtlVector<CUtlString> fileNames;
	if ( const KeyValues *pFiles = pBlock->FindKey( "fgd_files" ) )
		CollectFileNames( pFiles, &fileNames );
	if ( fileNames.IsEmpty() )
	{
		Report( pReport, "Failed to find mod fgd file from the gameinfo.gi file!\n" );
		return false;
	}

	CFgdReader reader( pGameData, pszGameRoot );
	bool bAllLoaded = true;
	for ( const CUtlString &fileName : fileNames )
	{
		int nErrorsBefore = pGameData->GetErrors().Count();
		if ( reader.LoadGameData( fileName.Get() ) )
			continue;
		// Only the first failure is reported in full; the remaining files still load.
		if ( bAllLoaded )
		{
			CUtlString text;
			text.Format( "Failed to load FGD file '%s'.", fileName.Get() );
			const CUtlVector<GameDataError_t> &errors = pGameData->GetErrors();
			if ( errors.Count() > nErrorsBefore )
			{
				text.Append( " Encountered errors:\n\n" );
				for ( int i = nErrorsBefore; i < errors.Count(); ++i )
					text.Append( errors[ i ].m_Text.Get() );
			}
			else
			{
				text.Append( "\n" );
			}
			Report( pReport, text.Get() );
		}
		bAllLoaded = false;
	}
	return bAllLoaded;
}
