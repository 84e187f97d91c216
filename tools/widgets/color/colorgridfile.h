#pragma once
// The colour grids of the colour picker as data: a titled list of named opaque colours,
// read from and written to KV3 ("generic" format):
//
//   { name = "Shared Colors"  colors = [ { name = "Ember"  value = [ 255, 120, 40 ] }, ... ] }
//
// An element of "value" may be any KV3 scalar, read as an integer and clamped to 0..255.
// Alpha isn't stored: grid colours are opaque. Nothing here knows of widgets.

#include <vector>

#include "core/mathlib/color.h"
#include "core/text/utlstring.h"

class KeyValues3;

struct ColorGridEntry_t
{
	Color m_Color;
	CUtlString m_strName;
};

struct ColorGridData_t
{
	CUtlString m_strName;
	std::vector<ColorGridEntry_t> m_Entries;
};

// The shared grid's file, relative to the game root.
inline constexpr const char *SHARED_COLORS_FILE = "tools/colors/shared_colors.txt";
// The host's tool file that keeps the user's own colours.
inline constexpr const char *CUSTOM_COLORS_TOOL_FILE = "custom_colors";

// Reads a grid table; false with the reason when it isn't one ("colors" missing or not an
// array, an entry that isn't a table or whose value isn't an array of three scalars).
bool ReadColorGrid( const KeyValues3 &table, ColorGridData_t *pGrid, CUtlString *pError );
void WriteColorGrid( const ColorGridData_t &grid, KeyValues3 *pTable );

// White, black, red, green, blue, titled "Default Colors": what a grid shows when its file
// can't be read.
ColorGridData_t DefaultColorGrid();

// The shared grid, through the host's file system ("GAME" path id).
bool LoadSharedColorGrid( ColorGridData_t *pGrid, CUtlString *pError );
bool SaveSharedColorGrid( const ColorGridData_t &grid, CUtlString *pError );
// The absolute path the shared grid is read from or would be written to; empty without a
// file system.
CUtlString GetSharedColorGridPath();

// Whether the host keeps tool files for this user (no home, no store).
bool IsCustomColorGridAvailable();
// The custom grid, through the host's tool file store. A user without the file yet has an
// empty grid and no error.
bool LoadCustomColorGrid( ColorGridData_t *pGrid, CUtlString *pError );
bool SaveCustomColorGrid( const ColorGridData_t &grid, CUtlString *pError );
