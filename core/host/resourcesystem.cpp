#include "core/host/resourcesystem.h"

#include <atomic>

#include "core/text/strtools.h"

CUtlString ResourceNameKey( const char *pResourceName )
{
	CUtlString key( pResourceName );
	key.FixSlashes( '/' );
	key.ToLower();
	std::string &text = key.Storage();
	size_t nFirst = text.find_first_not_of( '/' );
	text.erase( 0, nFirst == std::string::npos ? text.size() : nFirst );
	// Doubled separators would make two names of one file.
	for ( size_t i = text.find( "//" ); i != std::string::npos; i = text.find( "//", i ) )
		text.erase( i, 1 );
	return key;
}

CResourceSystem::CResourceSystem() = default;
CResourceSystem::~CResourceSystem() = default;

CResourceBinding *CResourceSystem::FindOrCreateBinding( const char *pResourceName )
{
	CUtlString key = ResourceNameKey( pResourceName );
	if ( key.IsEmpty() )
		return nullptr;
	{
		std::shared_lock lock( m_BindingMutex );
		auto it = m_Bindings.find( key.Storage() );
		if ( it != m_Bindings.end() )
			return it->second.get();
	}
	std::unique_lock lock( m_BindingMutex );
	std::unique_ptr<CResourceBinding> &pBinding = m_Bindings[ key.Storage() ];
	if ( !pBinding )
	{
		CUtlString name( pResourceName );
		name.FixSlashes( '/' );
		// The first spelling stays as the name; lookups go by the key.
		while ( name.Length() && name[ 0 ] == '/' )
			name.Storage().erase( 0, 1 );
		pBinding = std::make_unique<CResourceBinding>( name.Get(), ResourceTypeFromExtension( name.GetExtension() ) );
	}
	return pBinding.get();
}

CResourceBinding *CResourceSystem::FindBinding( const char *pResourceName ) const
{
	CUtlString key = ResourceNameKey( pResourceName );
	std::shared_lock lock( m_BindingMutex );
	auto it = m_Bindings.find( key.Storage() );
	return it != m_Bindings.end() ? it->second.get() : nullptr;
}

void CResourceSystem::ReplaceResourceData( CResourceBinding *pBinding, std::shared_ptr<const CResourceData> pData )
{
	if ( !pBinding )
		return;
	pBinding->SetData( std::move( pData ) );
	CUtlVector<ResourceChange_t> changes;
	changes.AddToTail( ResourceChange_t{ pBinding->GetType(), CUtlString( pBinding->GetName() ) } );
	NotifyResourcesReloaded( changes );
}

void CResourceSystem::NotifyResourcesReloaded( const CUtlVector<ResourceChange_t> &changes )
{
	if ( changes.IsEmpty() )
		return;
	// A copy, so that a listener may add or remove listeners while it is told.
	CUtlVector<IResourceListener *> listeners;
	{
		std::lock_guard lock( m_ListenerMutex );
		listeners = m_Listeners;
	}
	for ( IResourceListener *pListener : listeners )
	{
		bool bStillListening;
		{
			std::lock_guard lock( m_ListenerMutex );
			bStillListening = m_Listeners.HasElement( pListener );
		}
		if ( bStillListening )
			pListener->OnResourcesReloaded( changes );
	}
}

void CResourceSystem::AddListener( IResourceListener *pListener )
{
	std::lock_guard lock( m_ListenerMutex );
	if ( pListener && !m_Listeners.HasElement( pListener ) )
		m_Listeners.AddToTail( pListener );
}

void CResourceSystem::RemoveListener( IResourceListener *pListener )
{
	std::lock_guard lock( m_ListenerMutex );
	int nIndex = m_Listeners.Find( pListener );
	if ( nIndex >= 0 )
		m_Listeners.Remove( nIndex );
}

int CResourceSystem::UnloadUnreferenced()
{
	int nUnloaded = 0;
	std::shared_lock lock( m_BindingMutex );
	for ( auto &entry : m_Bindings )
	{
		CResourceBinding *pBinding = entry.second.get();
		if ( pBinding->GetRefCount() == 0 && pBinding->IsLoaded() )
		{
			pBinding->SetData( nullptr );
			++nUnloaded;
		}
	}
	return nUnloaded;
}

int CResourceSystem::GetBindingCount() const
{
	std::shared_lock lock( m_BindingMutex );
	return int( m_Bindings.size() );
}

namespace
{
std::atomic<IResourceSystem *> g_pResourceSystem{ nullptr };
}

IResourceSystem *GetResourceSystem()
{
	return g_pResourceSystem.load( std::memory_order_acquire );
}

void SetResourceSystem( IResourceSystem *pResourceSystem )
{
	g_pResourceSystem.store( pResourceSystem, std::memory_order_release );
}
