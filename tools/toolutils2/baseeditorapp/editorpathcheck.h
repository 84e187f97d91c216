#pragma once
// Which kind of path a file would be saved to, and whether the tools allow it: content
// and game paths may only use lower-case letters, digits, "_", "-", slashes and single dots.

enum EditorPathClass_t : int
{
	EDITOR_PATH_VALID_RELATIVE = 0,
	EDITOR_PATH_VALID_GAME_ABSOLUTE = 1,
	EDITOR_PATH_VALID_CONTENT_ABSOLUTE = 2,
	EDITOR_PATH_VALID_EXTERNAL = 3,
	EDITOR_PATH_BAD_CHARACTERS = 4,
	EDITOR_PATH_INVALID = 5,
	EDITOR_PATH_OVERFLOW = 6,
};

constexpr int EDITOR_MAX_PATH = 260;

EditorPathClass_t ClassifyEditorPath( const char *pPath );
const char *GetEditorPathClassText( int nClass );
inline bool IsEditorPathClassRefused( EditorPathClass_t eClass )
{
	return eClass >= EDITOR_PATH_BAD_CHARACTERS;
}
// True when every character is allowed in a tools path.
bool HasOnlyToolsPathCharacters( const char *pPath );
