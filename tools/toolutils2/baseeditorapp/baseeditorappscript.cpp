// The framework's steps of a scripted run.

#include <algorithm>
#include <cstring>

#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"
#include "tools/toolutils2/baseeditorapp/baseeditorsession.h"

bool CBaseEditorApp::RunScriptStep( const char *pStep, CUtlString *pOutput )
{
	pOutput->Clear();
	if ( !strcmp( pStep, "new" ) )
	{
		CBaseEditorSession *pSession = NewSession();
		if ( !pSession )
		{
			pOutput->Set( "no new document could be made" );
			return false;
		}
		pOutput->Format( "new document %s", pSession->GetFileName() );
		return true;
	}
	if ( !strcmp( pStep, "autosave" ) )
	{
		auto fnWaiting = []( const CBaseEditorSession *pSession ) { return pSession->IsModified() && pSession->NeedsAutosave(); };
		long nBefore = std::count_if( m_Sessions.begin(), m_Sessions.end(), fnWaiting );
		m_AutosaveManager.AutosaveAll( false );
		long nAfter = std::count_if( m_Sessions.begin(), m_Sessions.end(), fnWaiting );
		pOutput->Format( "autosaved %ld of %ld changed document(s)", nBefore - nAfter, nBefore );
		return true;
	}
	if ( !strcmp( pStep, "report" ) )
	{
		pOutput->Format( "%d document(s) open", int( m_Sessions.size() ) );
		for ( CBaseEditorSession *pSession : m_Sessions )
			pOutput->AppendFormat( "\n\"%s\" modified=%d new=%d", pSession->GetFileName(), int( pSession->IsModified() ), int( pSession->IsNewFile() ) );
		return true;
	}
	pOutput->Format( "unknown step \"%s\"", pStep );
	return false;
}
