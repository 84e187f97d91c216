#pragma once
// Fills a game data set from FGD text: sections, includes, classes with their
// variables, item sets, inputs and outputs, override classes, and the checks after a
// file. Errors go into the set's error list with file, line and column; a class that
// fails is dropped and the file goes on when a further '@' can be found.

#include <cstddef>

#include "core/text/utlstring.h"

class CGameData;

class CFgdReader
{
public:
	// pszGameRoot: the directory that include names are found against first.
	CFgdReader( CGameData *pGameData, const char *pszGameRoot );

	// Parses one file. pFromFile is the including file (or null); its directory is tried
	// when the game root doesn't have the name. pOutRelativeName, when given, receives
	// the name relative to the game root.
	bool LoadGameData( const char *pFileName, const char *pFromFile = nullptr, CUtlString *pOutRelativeName = nullptr );

	// Parses text that stands for the named file; includes resolve as for LoadGameData.
	bool LoadGameDataFromText( const char *pszFileName, const char *pText, size_t nLength );

	// The help context of a file: its path below the game root with forward slashes,
	// ".fgd" as "_fgd" and every slash after the first as '_'. False outside the root.
	bool MakeHelpContextName( const char *pszFullPath, CUtlString *pOut ) const;

	// Files nested deeper than this are refused, so an include loop ends.
	static constexpr int MAX_INCLUDE_DEPTH = 32;

private:
	bool ResolveFileName( const char *pFileName, const char *pFromFile, CUtlString *pOut ) const;

	CGameData *m_pGameData;
	CUtlString m_GameRoot;
	int m_nDepth = 0;
};
