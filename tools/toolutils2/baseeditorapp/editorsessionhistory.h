#pragma once
// The history of current sessions, for going back and forth through what the user was
// working on. Entries may repeat; a position marks the current one, -1 when empty.

#include <vector>

class CBaseEditorSession;

class CEditorSessionHistory
{
public:
	// Drops the entries ahead of the position, appends, and moves to the new end.
	void Push( CBaseEditorSession *pSession );
	// The session one step forwards / backwards, moving there; null when there is none.
	CBaseEditorSession *StepForward();
	CBaseEditorSession *StepBackward();
	// Removes every entry of the session; each one at or below the position moves it down.
	void Remove( CBaseEditorSession *pSession );

	int GetPosition() const { return m_nPosition; }
	int Count() const { return int( m_Entries.size() ); }
	CBaseEditorSession *GetEntry( int nIndex ) const { return m_Entries[ nIndex ]; }

private:
	std::vector<CBaseEditorSession *> m_Entries;
	int m_nPosition = -1;
};
