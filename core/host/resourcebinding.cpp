#include "core/host/resourcebinding.h"

#include "core/platform/dbgassert.h"

CResourceBinding::CResourceBinding( const char *pName, ResourceType_t nType ) : m_strName( pName ), m_nType( nType )
{
}

int CResourceBinding::Release()
{
	int nLeft = m_nRefCount.fetch_sub( 1, std::memory_order_acq_rel ) - 1;
	AssertMsg( nLeft >= 0, "Resource '%s' released more often than referenced", m_strName.Get() );
	return nLeft;
}

std::shared_ptr<const CResourceData> CResourceBinding::GetData() const
{
	std::lock_guard lock( m_DataMutex );
	return m_pData;
}

void CResourceBinding::SetData( std::shared_ptr<const CResourceData> pData )
{
	std::shared_ptr<const CResourceData> pOld;
	{
		std::lock_guard lock( m_DataMutex );
		pOld = std::move( m_pData );
		m_pData = std::move( pData );
		m_nDataVersion.fetch_add( 1, std::memory_order_acq_rel );
	}
	// pOld goes here, outside the lock, in case its destructor is slow.
}
