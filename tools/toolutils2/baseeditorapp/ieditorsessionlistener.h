#pragma once
// Told of what happens to an editor session: its state changed (1 when the change was a new
// file name, 0 otherwise), or it is going away.

class CBaseEditorSession;

class IEditorSessionListener
{
public:
	virtual void OnSessionChanged( CBaseEditorSession *pSession, int nFileNameChanged ) = 0;
	virtual void OnSessionDestroyed( CBaseEditorSession *pSession ) = 0;

protected:
	~IEditorSessionListener() = default;
};
