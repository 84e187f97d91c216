#include "core/host/interfaceregistry.h"

#include <mutex>

#include "core/text/strtools.h"

namespace
{
// A function-local head, so that static registrations in any order find it made.
CHostInterfaceReg *&ListHead()
{
	static CHostInterfaceReg *s_pHead = nullptr;
	return s_pHead;
}

std::recursive_mutex &ListMutex()
{
	static std::recursive_mutex s_Mutex;
	return s_Mutex;
}
} // namespace

CHostInterfaceReg::CHostInterfaceReg( const char *pName, InstantiateInterfaceFn_t fnCreate ) : m_pName( pName ), m_fnCreate( fnCreate )
{
	std::lock_guard lock( ListMutex() );
	m_pNext = ListHead();
	ListHead() = this;
}

CHostInterfaceReg::CHostInterfaceReg( const char *pName, void *pInterface ) : m_pName( pName ), m_pInterface( pInterface )
{
	std::lock_guard lock( ListMutex() );
	m_pNext = ListHead();
	ListHead() = this;
}

CHostInterfaceReg::~CHostInterfaceReg()
{
	std::lock_guard lock( ListMutex() );
	for ( CHostInterfaceReg **ppEntry = &ListHead(); *ppEntry; ppEntry = &( *ppEntry )->m_pNext )
	{
		if ( *ppEntry == this )
		{
			*ppEntry = m_pNext;
			break;
		}
	}
}

const CHostInterfaceReg *CHostInterfaceReg::GetFirst()
{
	std::lock_guard lock( ListMutex() );
	return ListHead();
}

void *Host_CreateInterface( const char *pName, int *pReturnCode )
{
	std::lock_guard lock( ListMutex() );
	for ( const CHostInterfaceReg *pEntry = ListHead(); pEntry && pName; pEntry = pEntry->GetNext() )
	{
		if ( V_strcmp( pEntry->GetName(), pName ) == 0 )
		{
			if ( pReturnCode )
				*pReturnCode = IFACE_OK;
			return pEntry->Create();
		}
	}
	if ( pReturnCode )
		*pReturnCode = IFACE_FAILED;
	return nullptr;
}
