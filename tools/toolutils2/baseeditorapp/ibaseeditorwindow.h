#pragma once
// What the framework's logic asks of an editor's main window. The Qt window implements it;
// the logic and its tests never see a widget.

class CBaseEditorSession;
class KeyValues3;

class IBaseEditorWindow
{
public:
	// Shown normally if hidden or minimised (a maximised one stays maximised), raised,
	// activated, and the floating docks that hiding took away come back.
	virtual void BringUp() = 0;
	// Keyboard focus on the window, so an editor in progress commits its value.
	virtual void TakeFocus() = 0;
	virtual void SetWindowTitleText( const char *pTitle ) = 0;
	// Layout into and out of the tool settings table.
	virtual void SaveLayout( KeyValues3 *pTable ) = 0;
	virtual void RestoreLayout( const KeyValues3 *pTable ) = 0;

	// The session joined the list with its file loaded or made new.
	virtual void OnSessionAdded( CBaseEditorSession * ) {}
	// The session has closed and is about to be destroyed: drop everything that shows it.
	virtual void OnSessionRemoved( CBaseEditorSession * ) {}
	// The application's current session changed (null: none).
	virtual void OnActiveSessionChanged( CBaseEditorSession * ) {}
	// Shows the session cycling popup with the session of that index in the application's
	// list selected (-1: none).
	virtual void ShowSessionCycling( int ) {}

protected:
	~IBaseEditorWindow() = default;
};
