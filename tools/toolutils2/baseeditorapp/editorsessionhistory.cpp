#include "tools/toolutils2/baseeditorapp/editorsessionhistory.h"

#include <cstddef>

void CEditorSessionHistory::Push( CBaseEditorSession *pSession )
{
	m_Entries.resize( size_t( m_nPosition + 1 ) );
	m_Entries.push_back( pSession );
	m_nPosition = int( m_Entries.size() ) - 1;
}

CBaseEditorSession *CEditorSessionHistory::StepForward()
{
	if ( m_nPosition + 1 >= Count() )
		return nullptr;
	return m_Entries[ ++m_nPosition ];
}

CBaseEditorSession *CEditorSessionHistory::StepBackward()
{
	if ( m_nPosition <= 0 )
		return nullptr;
	return m_Entries[ --m_nPosition ];
}

void CEditorSessionHistory::Remove( CBaseEditorSession *pSession )
{
	for ( int i = Count() - 1; i >= 0; --i )
	{
		if ( m_Entries[ i ] != pSession )
			continue;
		m_Entries.erase( m_Entries.begin() + i );
		if ( i <= m_nPosition )
			--m_nPosition;
	}
	if ( m_Entries.empty() )
		m_nPosition = -1;
	else if ( m_nPosition < 0 )
		m_nPosition = 0;
}
