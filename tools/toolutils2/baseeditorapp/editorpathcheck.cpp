#include "tools/toolutils2/baseeditorapp/editorpathcheck.h"

#include "core/text/pathtools.h"
#include "core/text/strtools.h"
#include "core/text/utlstring.h"
#include "tools/toolutils2/baseeditorapp/editorfilequeries.h"

bool HasOnlyToolsPathCharacters( const char *pPath )
{
	char cPrevious = 0;
	for ( const char *p = pPath; *p; ++p )
	{
		char c = *p;
		bool bGood = ( c >= 'a' && c <= 'z' ) || ( c >= '0' && c <= '9' ) || c == '_' || c == '-' || c == '\\' || c == '/' || ( c == '.' && cPrevious != '.' );
		if ( !bGood )
			return false;
		cPrevious = c;
	}
	return true;
}

// A relative form that climbs out with a dot is not inside the root.
static bool IsUnderRoot( const char *pPath, const char *pPathId, CUtlString *pRelative )
{
	return EditorFiles::MakeRelative( pPath, pPathId, pRelative ) && pRelative->Get()[ 0 ] != '.';
}

EditorPathClass_t ClassifyEditorPath( const char *pPath )
{
	if ( !pPath || !EditorFiles::IsValidPath( pPath ) )
		return ( pPath && V_strlen( pPath ) >= size_t( EDITOR_MAX_PATH ) ) ? EDITOR_PATH_OVERFLOW : EDITOR_PATH_INVALID;
	if ( V_strlen( pPath ) >= size_t( EDITOR_MAX_PATH ) )
		return EDITOR_PATH_OVERFLOW;
	if ( V_IsAbsolutePath( pPath ) )
	{
		CUtlString strRelative;
		if ( IsUnderRoot( pPath, "CONTENTROOT", &strRelative ) )
			return HasOnlyToolsPathCharacters( strRelative ) ? EDITOR_PATH_VALID_CONTENT_ABSOLUTE : EDITOR_PATH_BAD_CHARACTERS;
		if ( IsUnderRoot( pPath, "GAMEROOT", &strRelative ) )
			return HasOnlyToolsPathCharacters( strRelative ) ? EDITOR_PATH_VALID_GAME_ABSOLUTE : EDITOR_PATH_BAD_CHARACTERS;
		return EDITOR_PATH_VALID_EXTERNAL;
	}
	return HasOnlyToolsPathCharacters( pPath ) ? EDITOR_PATH_VALID_RELATIVE : EDITOR_PATH_BAD_CHARACTERS;
}

const char *GetEditorPathClassText( int nClass )
{
	switch ( nClass )
	{
	case EDITOR_PATH_VALID_RELATIVE: return "Valid Relative Path";
	case EDITOR_PATH_VALID_GAME_ABSOLUTE: return "Valid Game Absolute Path";
	case EDITOR_PATH_VALID_CONTENT_ABSOLUTE: return "Valid Content Absolute Path";
	case EDITOR_PATH_VALID_EXTERNAL: return "Valid External Path";
	case EDITOR_PATH_BAD_CHARACTERS: return "The filename may only contain lower case alphanumeric characters, dashes, and underscores.";
	case EDITOR_PATH_INVALID: return "Invalid Path";
	case EDITOR_PATH_OVERFLOW: return "Path Overflow, must be less than 260 characters.";
	default: return "Unknown Path Class";
	}
}
