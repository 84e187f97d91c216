#pragma once
// The version control calls of a session that may need a question. This host has no
// version control service, so the layer reports itself as not usable and every operation
// is the answer of a file that no version control knows: nothing to sync, nobody else has
// it open, nothing to check out.

#include "core/text/utlstring.h"

class CBaseEditorApp;

class CSessionVersionControl
{
public:
	explicit CSessionVersionControl( CBaseEditorApp *pApp = nullptr ) : m_pApp( pApp ) {}
	CBaseEditorApp *GetApp() const { return m_pApp; }

	// The service exists, is connected, the "Perforce Integration" setting is on and the
	// application supports version control.
	bool IsVersionControlUsable() const;

	// True: the caller goes on with the file it has.
	bool PromptToSyncNewVersion( const char *pPath );
	// True: no other user has the file open, or the user goes on anyway.
	bool WarnIfOpenByOtherUser( const char *pPath );
	// Names of other users that have the file open; false when none or unknown.
	bool IsOpenByOtherUser( const char *pPath, CUtlString *pNames );
	bool AddFileToVersionControl( const char *pPath );
	// 0 checked out, 1 the user declined, 2 failed (GetLastError says why).
	int CheckOutFile( const char *pPath );
	// The service's last error, or why there is no service.
	const char *GetLastError() const;

	void SetChangelist( const char *pName ) { m_strChangelist = pName; }

private:
	CBaseEditorApp *m_pApp;
	CUtlString m_strChangelist;
};
