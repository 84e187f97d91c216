#include "core/host/propertyeditorsystem.h"

#include <atomic>

#include "core/logging/logging.h"
#include "core/text/strtools.h"

namespace
{
std::string LowerName( const char *pName )
{
	std::string name( pName ? pName : "" );
	V_strlower_fast( name.data() );
	return name;
}
} // namespace

bool CPropertyEditorSystem::RegisterAttributeEditorFactory( const char *pName, IAttributeEditorFactory *pFactory )
{
	if ( !pName || !*pName || !pFactory )
		return false;
	std::lock_guard lock( m_Mutex );
	if ( !m_Factories.emplace( LowerName( pName ), pFactory ).second )
	{
		Log_Warning( LOG_GENERAL, "An attribute editor factory named '%s' is already registered\n", pName );
		return false;
	}
	return true;
}

IAttributeEditorFactory *CPropertyEditorSystem::FindAttributeEditorFactory( const char *pName ) const
{
	std::lock_guard lock( m_Mutex );
	auto it = m_Factories.find( LowerName( pName ) );
	return it != m_Factories.end() ? it->second : nullptr;
}

int CPropertyEditorSystem::GetAttributeEditorFactoryCount() const
{
	std::lock_guard lock( m_Mutex );
	return int( m_Factories.size() );
}

void CPropertyEditorSystem::RegisterPropertyDomain( IPropertyEditDomain *pDomain )
{
	std::lock_guard lock( m_Mutex );
	if ( pDomain && !m_Domains.HasElement( pDomain ) )
		m_Domains.AddToTail( pDomain );
}

void CPropertyEditorSystem::RemovePropertyDomain( IPropertyEditDomain *pDomain )
{
	std::lock_guard lock( m_Mutex );
	int nIndex = m_Domains.Find( pDomain );
	if ( nIndex >= 0 )
		m_Domains.Remove( nIndex );
}

bool CPropertyEditorSystem::IsPropertyDomainRegistered( IPropertyEditDomain *pDomain ) const
{
	std::lock_guard lock( m_Mutex );
	return m_Domains.HasElement( pDomain );
}

void CPropertyEditorSystem::SetPropertyPanelFactory( PropertyPanelFactoryFn_t fnFactory )
{
	std::lock_guard lock( m_Mutex );
	m_fnPanelFactory = std::move( fnFactory );
}

bool CPropertyEditorSystem::HasPropertyPanelFactory() const
{
	std::lock_guard lock( m_Mutex );
	return bool( m_fnPanelFactory );
}

void *CPropertyEditorSystem::CreatePropertyPanel( void *pParentWidget )
{
	PropertyPanelFactoryFn_t fnFactory;
	{
		std::lock_guard lock( m_Mutex );
		fnFactory = m_fnPanelFactory;
	}
	if ( !fnFactory )
	{
		Log_Warning( LOG_GENERAL, "No property panel can be made: the widget layer has installed no panel factory\n" );
		return nullptr;
	}
	return fnFactory( pParentWidget );
}

namespace
{
std::atomic<IPropertyEditorSystem *> g_pPropertyEditorSystem{ nullptr };
}

IPropertyEditorSystem *GetPropertyEditorSystem()
{
	return g_pPropertyEditorSystem.load( std::memory_order_acquire );
}

void SetPropertyEditorSystem( IPropertyEditorSystem *pSystem )
{
	g_pPropertyEditorSystem.store( pSystem, std::memory_order_release );
}
