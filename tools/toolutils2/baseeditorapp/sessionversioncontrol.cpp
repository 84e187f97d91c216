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

static constexpr const char *NO_SERVICE_REASON = "no version control service";

bool CSessionVersionControl::AddFileToVersionControl( const char * )
{
	Log_Warning( LOG_GENERAL, "%s - Perforce unavailable: %s \n", "AddFileToVersionControl", NO_SERVICE_REASON );
	return false;
}

int CSessionVersionControl::CheckOutFile( const char * )
{
	Log_Warning( LOG_GENERAL, "%s - Perforce unavailable: %s \n", "CheckOutFile", NO_SERVICE_REASON );
	return 2;
}

const char *CSessionVersionControl::GetLastError() const
{
	return NO_SERVICE_REASON;
}
