#include "tools/toolutils2/baseeditorapp/basetoolsystem2.h"

#include "core/host/ifilesystem.h"
#include "core/text/strtools.h"

const char *const *CBaseToolSystem2::GetNeededInterfaces() const
{
	static const char *const s_pNone[] = { nullptr };
	return s_pNone;
}

bool CBaseToolSystem2::CheckNeededInterfaces( ToolCreateInterfaceFn_t fnFactory, CUtlString *pError ) const
{
	for ( const char *const *ppName = GetNeededInterfaces(); ppName && *ppName; ++ppName )
	{
		int nReturnCode = IFACE_FAILED;
		void *pInterface = fnFactory ? fnFactory( *ppName, &nReturnCode ) : nullptr;
		if ( !pInterface || nReturnCode != IFACE_OK )
		{
			if ( pError )
				pError->Format( "The host has no \"%s\", which the tool needs to start.", *ppName );
			return false;
		}
	}
	return true;
}

bool CBaseToolSystem2::Connect( ToolCreateInterfaceFn_t fnFactory )
{
	if ( !fnFactory )
		return false;
	m_fnFactory = fnFactory;
	++m_nConnectionCount;
	m_ConnectedInterfaces.clear();
	bool bAllAnswered = true;
	for ( const char *pName : GetFrameworkInterfaces() )
	{
		if ( FindInterface( pName ) )
			m_ConnectedInterfaces.emplace_back( pName );
		else
			bAllAnswered = false;
	}
	return bAllAnswered;
}

void CBaseToolSystem2::Disconnect()
{
	if ( m_nConnectionCount > 0 && --m_nConnectionCount == 0 )
	{
		m_ConnectedInterfaces.clear();
		m_fnFactory = nullptr;
	}
}

void *CBaseToolSystem2::QueryInterface( const char *pName )
{
	return ( pName && !V_strcmp( pName, TOOLSYSTEM2_INTERFACE_VERSION ) ) ? this : nullptr;
}

void *CBaseToolSystem2::FindInterface( const char *pName ) const
{
	if ( !m_fnFactory || !pName )
		return nullptr;
	int nReturnCode = 0;
	void *pInterface = m_fnFactory( pName, &nReturnCode );
	return nReturnCode == IFACE_OK ? pInterface : nullptr;
}

const std::vector<const char *> &CBaseToolSystem2::GetFrameworkInterfaces()
{
	// The file system; this host has no version control service to insist on.
	static const std::vector<const char *> s_Names = { FILESYSTEM_INTERFACE_VERSION };
	return s_Names;
}
