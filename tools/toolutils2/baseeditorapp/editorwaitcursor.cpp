#include "tools/toolutils2/baseeditorapp/editorwaitcursor.h"

static EditorWaitCursorHookFn_t s_fnWaitCursorHook = nullptr;

CEditorWaitCursor::CEditorWaitCursor()
{
	if ( s_fnWaitCursorHook )
		s_fnWaitCursorHook( true );
}

CEditorWaitCursor::~CEditorWaitCursor()
{
	if ( s_fnWaitCursorHook )
		s_fnWaitCursorHook( false );
}

EditorWaitCursorHookFn_t CEditorWaitCursor::SetHook( EditorWaitCursorHookFn_t fn )
{
	EditorWaitCursorHookFn_t fnOld = s_fnWaitCursorHook;
	s_fnWaitCursorHook = fn;
	return fnOld;
}
