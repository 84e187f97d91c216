#pragma once
// What the "zol tfxs" commands share: the particle host connected as the editor connects
// it, for the game root a definition file sits under, and messages one line per "FILE: text".

#include <cstdio>

// Connects the host's particle manager and the class table's game root: the nearest
// ancestor folder of the file with "game/gameinfo.gi" (content/content/... files sit
// beside content/game), else of the working folder (version control hands over copies
// of old versions in a temporary folder), else none.
void ConnectParticleHostForDefinition( const char *pFirstFile );

// Each line of a text, as "FILE: line"; empty lines are left out.
void PrintFileLines( FILE *pOut, const char *pFile, const char *pText );
