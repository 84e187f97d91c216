#pragma once
// The whole class description load of a game: the game root's "gameinfo.gi" names the FGD
// files under "fgd_files" in its "Brakel" block, and each is read into one set.

#include "core/text/utlstring.h"

class CGameData;

// Reads "<pszGameRoot>/gameinfo.gi" and every FGD file it names (relative to the game root).
// False when the information file or its list is missing, or a file fails; pReport
// (optional) receives what went wrong, the first failing file with its gathered errors.
bool LoadGameDataFromGameInfo( CGameData *pGameData, const char *pszGameRoot, CUtlString *pReport );
