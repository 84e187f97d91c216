#pragma once
// A busy cursor for the length of a scope. The logic only says when it is busy; the user
// interface installs the hook that shows it (none in tests and batch runs).

using EditorWaitCursorHookFn_t = void ( * )( bool bBusy );

class CEditorWaitCursor
{
public:
	CEditorWaitCursor();
	~CEditorWaitCursor();
	CEditorWaitCursor( const CEditorWaitCursor & ) = delete;
	CEditorWaitCursor &operator=( const CEditorWaitCursor & ) = delete;

	// Answers the previous hook.
	static EditorWaitCursorHookFn_t SetHook( EditorWaitCursorHookFn_t fn );
};
