#pragma once
// What every command shares of its command line: the game and content roots (--game DIR,
// --content DIR, accepted before or after the command word), and strict reading of
// option values: a number is all number, in range, and finite, or the command refuses.

#include <cstdint>
#include <string>

struct ZolCliRoots_t
{
	std::string m_GameRoot;    // absolute, or empty when not given
	std::string m_ContentRoot; // absolute, or empty when not given
};

// Takes --game DIR and --content DIR out of argv (wherever they stand) into the roots, and
// answers the new argc. False, with the message printed, when one lacks its directory or
// names one that doesn't exist.
bool ZolCliTakeRoots( int *pArgc, char **argv, ZolCliRoots_t *pRoots );
// The roots taken from the command line.
const ZolCliRoots_t &ZolCliRoots();
void ZolCliSetRoots( const ZolCliRoots_t &roots );

// The game root a command works in for a file: --game, else the nearest folder above the
// file with "game/gameinfo.gi" or "content/game/gameinfo.gi", else the same above the
// working folder (version control hands over copies of old versions in a temporary
// folder). Empty when none exists.
std::string ZolCliGameRootFor( const char *pFile );
// The content root children of a definition resolve in: --content, else the folder above
// the "particles" folder that holds the file, else the file's own folder.
std::string ZolCliContentRootFor( const char *pFile );

// Whole decimal numbers in [nMin, nMax] with nothing after them.
bool ZolCliParseInt( const char *pText, long long nMin, long long nMax, long long *pOut );
bool ZolCliParseUInt64( const char *pText, uint64_t *pOut );
// Finite numbers in [flMin, flMax] with nothing after them.
bool ZolCliParseDouble( const char *pText, double flMin, double flMax, double *pOut );
// "x,y,z": three finite floats.
bool ZolCliParseVector( const char *pText, float pOut[ 3 ] );
