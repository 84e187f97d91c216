#include "tools/toolutils2/toolevents/tooleventdispatcher.h"

#include <algorithm>

CToolEventDispatcher::~CToolEventDispatcher()
{
	for ( CToolEventDispatcher *pParent : m_Parents )
		pParent->m_Children.erase( std::remove( pParent->m_Children.begin(), pParent->m_Children.end(), this ), pParent->m_Children.end() );
	for ( CToolEventDispatcher *pChild : m_Children )
		pChild->m_Parents.erase( std::remove( pChild->m_Parents.begin(), pChild->m_Parents.end(), this ), pChild->m_Parents.end() );
	// Copy first: a lifetime listener typically removes itself in its handler.
	std::vector<IToolEventDispatcherLifetimeListener *> listeners = m_LifetimeListeners;
	for ( IToolEventDispatcherLifetimeListener *pListener : listeners )
		pListener->OnDispatcherDestroyed( this );
}

void CToolEventDispatcher::AddListenerRecord( const ToolEventType_t &type, const Listener_t &listener )
{
	EventRecord_t &record = m_Events[ type.m_nId ];
	record.m_pName = type.m_pName;
	if ( std::find( record.m_Listeners.begin(), record.m_Listeners.end(), listener ) == record.m_Listeners.end() )
		record.m_Listeners.push_back( listener );
}

void CToolEventDispatcher::RemoveListenerRecord( const ToolEventType_t &type, const Listener_t &listener )
{
	auto it = m_Events.find( type.m_nId );
	if ( it == m_Events.end() )
		return;
	std::vector<Listener_t> &listeners = it->second.m_Listeners;
	listeners.erase( std::remove( listeners.begin(), listeners.end(), listener ), listeners.end() );
}

void CToolEventDispatcher::RemoveListenersOf( const void *pObject )
{
	for ( auto &[ nId, record ] : m_Events )
	{
		std::vector<Listener_t> &listeners = record.m_Listeners;
		listeners.erase( std::remove_if( listeners.begin(), listeners.end(), [ pObject ]( const Listener_t &l ) { return l.m_pObject == pObject; } ), listeners.end() );
	}
}

int CToolEventDispatcher::GetListenerCount( uint32_t nEventId ) const
{
	auto it = m_Events.find( nEventId );
	return it == m_Events.end() ? 0 : int( it->second.m_Listeners.size() );
}

void CToolEventDispatcher::DispatchRecord( const ToolEventType_t &type, const void *pPayload )
{
	auto it = m_Events.find( type.m_nId );
	if ( it != m_Events.end() )
	{
		// The copy lets listeners change the list; records are never erased, so the
		// reference stays valid even if a listener registers a new event type.
		EventRecord_t &record = it->second;
		std::vector<Listener_t> listeners = record.m_Listeners;
		record.m_bDispatching = true;
		for ( const Listener_t &listener : listeners )
			listener.m_pfnInvoke( listener.m_pObject, listener.m_Handler, pPayload );
		record.m_bDispatching = false;
	}
	std::vector<CToolEventDispatcher *> children = m_Children;
	for ( CToolEventDispatcher *pChild : children )
		pChild->DispatchRecord( type, pPayload );
}

void CToolEventDispatcher::AddChildDispatcher( CToolEventDispatcher *pChild )
{
	if ( pChild && pChild != this && std::find( m_Children.begin(), m_Children.end(), pChild ) == m_Children.end() )
	{
		m_Children.push_back( pChild );
		pChild->m_Parents.push_back( this );
	}
}

void CToolEventDispatcher::RemoveChildDispatcher( CToolEventDispatcher *pChild )
{
	m_Children.erase( std::remove( m_Children.begin(), m_Children.end(), pChild ), m_Children.end() );
	if ( pChild )
		pChild->m_Parents.erase( std::remove( pChild->m_Parents.begin(), pChild->m_Parents.end(), this ), pChild->m_Parents.end() );
}

void CToolEventDispatcher::AddLifetimeListener( IToolEventDispatcherLifetimeListener *pListener )
{
	if ( std::find( m_LifetimeListeners.begin(), m_LifetimeListeners.end(), pListener ) == m_LifetimeListeners.end() )
		m_LifetimeListeners.push_back( pListener );
}

void CToolEventDispatcher::RemoveLifetimeListener( IToolEventDispatcherLifetimeListener *pListener )
{
	m_LifetimeListeners.erase( std::remove( m_LifetimeListeners.begin(), m_LifetimeListeners.end(), pListener ), m_LifetimeListeners.end() );
}
