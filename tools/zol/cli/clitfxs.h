#pragma once
// What the "zol tfxs" commands share: the particle host connected as the editor connects
// it, for the game root a definition file sits under, and messages one line per "FILE: text".

#include <cstdio>

// Connects the host's particle manager and the class table's game root, the one of
// ZolCliGameRootFor: --game, else found above the file or the working folder.
void ConnectParticleHostForDefinition( const char *pFirstFile );

// Each line of a text, as "FILE: line" (the line alone without a file, for lines that
// name their file); empty lines are left out.
void PrintFileLines( FILE *pOut, const char *pFile, const char *pText );
