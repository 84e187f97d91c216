#include "tools/toolutils2/baseeditorapp/sessionversioncontrol.h"

#include "core/logging/logging.h"
#include "tools/toolutils2/baseeditorapp/baseeditorapp.h"

bool CSessionVersionControl::IsVersionControlUsable() const
{
	// No version control service is connected in this host.
	return false;
}

bool CSessionVersionControl::PromptToSyncNewVersion( const char * )
{
	return true;
}

bool CSessionVersionControl::WarnIfOpenByOtherUser( const char * )
{
	return true;
}

bool CSessionVersionControl::IsOpenByOtherUser( const char *, CUtlString *pNames )
{
	if ( pNames )
		pNames->Clear();
	return false;
}

bool CSessionVersionControl::AddFileToVersionControl( const char * )
{
	Log_Warning( LOG_GENERAL, "%s - Perforce unavailable: %s \n", "AddFileToVersionControl", "no version control service" );
	return false;
}
